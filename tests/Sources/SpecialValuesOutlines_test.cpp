// SPDX-License-Identifier: MIT

// Special values in operations on outlines, in shapes and in text.

#include "Finite.h"
#include "SpecialValues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

using trammel::FillRule;
using trammel::NewCrossings;
using trammel::Ring;
using trammel_test::IsFinite;
using trammel_test::special::Case;
using trammel_test::special::Draw;
using trammel_test::special::Pt;
using trammel_test::special::Use;

namespace {

/// What holds for each result whose distance is at least the tolerance asked for.
void ExpectResult(CPath const& out, double kept, double tolerance) {
    EXPECT_TRUE(IsFinite(out));
    EXPECT_GE(kept, 0.0);
    EXPECT_FALSE(kept < tolerance);
}

void TryRegions(Draw& d) {
    CPath const a = d.Path();
    CPath const b = d.Path();
    double const tolerance = d.Value();
    CPath out;
    double kept = trammel::Boolean(d.Flag() ? kPolyUnion : kPolyDifference, a, FillRule::kNonZero,
                                   b, FillRule::kEvenOdd, tolerance, out);
    ExpectResult(out, kept, tolerance);
    kept = trammel::RemoveOverlap(a, FillRule::kEvenOdd, tolerance, out);
    ExpectResult(out, kept, tolerance);
    kept = trammel::ClipOpen(a, b, FillRule::kNonZero, d.Flag(), tolerance, out);
    ExpectResult(out, kept, tolerance);
    trammel::OutlineArrangement const parts({a, b}, tolerance);
    EXPECT_FALSE(parts.Distance() < tolerance);
    for (trammel::OutlineFace const& face : parts.Faces()) {
        EXPECT_TRUE(IsFinite(face.outline));
    }
    trammel::AreaWithin const area = trammel::RegionArea(a, FillRule::kNonZero, tolerance);
    EXPECT_FALSE(area.area < 0.0);
    EXPECT_FALSE(area.error < 0.0);
}

void TryPen(Draw& d) {
    CPath const path = d.Path();
    trammel::StrokeStyle style;
    style.width = d.Value();
    style.miterLimit = d.Value();
    style.dashes = {d.Value(), d.Value()};
    style.dashOffset = d.Value();
    double const tolerance = d.Value();
    CPath out;
    double kept = trammel::Stroke(path, style, tolerance, out);
    ExpectResult(out, kept, tolerance);
    if (!(style.width > 0.0) || std::isinf(style.width)) {
        EXPECT_TRUE(out.mCtls.empty());
    }
    double const distance = d.Value();
    kept = trammel::Offset(path, FillRule::kNonZero, distance, trammel::StrokeJoin::kRound,
                           d.Value(), tolerance, out);
    ExpectResult(out, kept, tolerance);
    if (!std::isfinite(distance)) {
        EXPECT_TRUE(out.mCtls.empty());
    }
}

void TryFewer(Draw& d) {
    std::vector<Pt> const points = {d.Point(), d.Point(), d.Point(), d.Point(), d.Point()};
    double const tolerance = d.Value();
    double const allowed = tolerance > 0.0 ? tolerance : 0.0;
    CPath out;
    EXPECT_LE(trammel::FitCurves(points, tolerance, d.Value(), out), allowed);
    EXPECT_TRUE(IsFinite(out));
    CPath const path = d.Path();
    NewCrossings const crossings = d.Flag() ? NewCrossings::kAllow : NewCrossings::kAvoid;
    EXPECT_LE(trammel::Simplify(path, tolerance, out), allowed);
    EXPECT_LE(trammel::Simplify(path, tolerance, crossings, out), allowed);
    std::vector<Ring> rings;
    EXPECT_LE(trammel::SimplifyRings({points, points}, tolerance, crossings, rings), allowed);
    ASSERT_EQ(rings.size(), 2U);
    for (Pt const& p : rings[0]) {
        EXPECT_TRUE(IsFinite(p));
    }
}

void TryRings(Draw& d) {
    std::vector<TPolygon<double>> const a = {d.Polygon(4)};
    std::vector<TPolygon<double>> const b = {d.Polygon(3), d.Polygon(5)};
    for (TPolygon<double> const& ring :
         trammel::Boolean(kPolyXor, a, FillRule::kNonZero, b, FillRule::kEvenOdd)) {
        EXPECT_TRUE(ring.Closed());
        EXPECT_GE(ring.LastIndex(), 2);
        EXPECT_TRUE(std::isfinite(ring.Bounds().right) && std::isfinite(ring.Bounds().top));
    }
    Use(static_cast<double>(trammel::Union(b, FillRule::kNonZero).size()));
    for (trammel::PolygonWithHoles const& polygon : trammel::ToPolygons(b, FillRule::kEvenOdd)) {
        EXPECT_TRUE(IsFinite(trammel::PathOf(polygon)));
    }
    trammel::PolygonArrangement const parts({a, b});
    EXPECT_EQ(parts.Merged({parts.Faces().size()}).size(), 0U);
    for (trammel::ArrangementFace const& face : parts.Faces()) {
        EXPECT_TRUE(IsFinite(trammel::PathOf(face.polygon)));
    }
}

void TryShapes(Draw& d) {
    Pt const center = d.Point();
    double const h = d.Value();
    double const v = d.Value();
    double const angle = d.Value();
    double const tolerance = d.Value();
    EXPECT_TRUE(IsFinite(trammel::CirclePath(center, h, tolerance)));
    EXPECT_TRUE(IsFinite(trammel::EllipsePath(center, h, v, angle, tolerance)));
    EXPECT_TRUE(IsFinite(trammel::RoundedRectPath(d.Rect(), h, v, tolerance)));
    EXPECT_TRUE(IsFinite(trammel::RegularPolygonPath(center, h, 5, angle)));
    EXPECT_TRUE(IsFinite(trammel::StarPath(center, h, v, 5, angle)));
    CPath arc;
    trammel::AddArc(arc, trammel::EllipticalArc{center, h, v, angle, d.Value(), d.Value()},
                    tolerance);
    EXPECT_TRUE(IsFinite(arc));
    CPath path;
    path.MoveTo({1, 2});
    Pt const end = d.Point();
    trammel::ArcTo(path, h, v, angle, d.Flag(), true, end, tolerance);
    EXPECT_TRUE(path.mPts.size() == 1 || !(path.mPts.back() != end) || std::isnan(end.h) ||
                std::isnan(end.v));
}

void TryBuilding(Draw& d) {
    CPath path;
    Pt const p[] = {d.Point(), d.Point(), d.Point(), d.Point(), d.Point()};
    trammel::QuadTo(path, p[0], p[1]);
    trammel::SmoothQuadTo(path, p[2]);
    trammel::SmoothCurveTo(path, p[3], p[4]);
    trammel::AddCurve(path, p[1], p[3], p[0]);
    trammel::LineBy(path, p[2]);
    EXPECT_EQ(trammel::Reversed(path).mPts.size(), path.mPts.size());
    EXPECT_EQ(trammel::Transformed(path, d.Matrix()).mCtls, path.mCtls);
    EXPECT_EQ(trammel::SplitSubpaths(path).size(), path.mCtls.empty() ? 0U : 1U);
    Use(static_cast<double>(trammel::ToString(path).size()));
    CPath const written = d.Path();
    if (IsFinite(written)) {
        trammel::SvgPathResult const read = trammel::ReadSvgPath(trammel::WriteSvgPath(written));
        EXPECT_FALSE(read.error.has_value());
        EXPECT_TRUE(IsFinite(read.path));
    } else {
        EXPECT_THROW(trammel::WriteSvgPath(written), std::invalid_argument);
    }
}

} // namespace

std::vector<Case> trammel_test::special::OutlineCases() {
    return {
        {"Regions", TryRegions}, {"Pen", TryPen},       {"Fewer", TryFewer},
        {"Rings", TryRings},     {"Shapes", TryShapes}, {"Building", TryBuilding},
    };
}
