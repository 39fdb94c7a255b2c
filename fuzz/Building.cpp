// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "AccurateCurve.h"
#include "Moments.h"
#include "PathBuilding.h"
#include "PathSegments.h"
#include "PathStructure.h"
#include "Shapes.h"
#include "identity/Identity.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace fuzz {

namespace {

using identity::Digest;

Digest DigestOf(CPath const& path) {
    Digest digest;
    digest.Add(path.mPts);
    for (char const code : path.mCtls) {
        digest.Add(std::int32_t{code});
    }
    return digest;
}

bool IsFinite(CPath const& path) {
    return std::all_of(path.mPts.begin(), path.mPts.end(),
                       [](Pt const& p) { return std::isfinite(p.h) && std::isfinite(p.v); });
}

/// Requires that the bounds that are kept have all points. They may have a move that was replaced.
void CheckBounds(CPath const& path) {
    if (IsFinite(path)) {
        Box const kept = path.Bounds();
        Box const found = CPath(path).InvalBounds().Bounds();
        // A NaN of a move that was replaced stays in the bounds, too.
        Require(!(kept.left > found.left || kept.top > found.top || kept.right < found.right ||
                  kept.bottom < found.bottom),
                "the bounds have all points");
    }
}

/// Adds a segment, and the same one by the function that takes differences to `other`.
void AddSegment(Input& in, CPath& path, CPath& other) {
    Pt const at = path.CurrentPoint();
    Pt const c1 = in.Point();
    Pt const c2 = in.Point();
    Pt const e = in.Point();
    switch (in.Int(0, 6)) {
    case 0:
        path.MoveTo(at + e);
        trammel::MoveBy(other, e);
        break;
    case 1:
        trammel::QuadTo(path, at + c1, at + e);
        trammel::QuadBy(other, c1, e);
        break;
    case 2:
        trammel::SmoothCurveTo(path, at + c2, at + e);
        trammel::SmoothCurveBy(other, c2, e);
        break;
    case 3:
        trammel::SmoothQuadTo(path, at + e);
        trammel::SmoothQuadBy(other, e);
        break;
    case 4: {
        bool const large = in.Flag();
        bool const positive = in.Flag();
        double const tolerance = in.Tolerance(std::abs(c1.h) + std::abs(c1.v));
        trammel::ArcTo(path, c1.h, c1.v, c2.h, large, positive, at + e, tolerance);
        trammel::ArcBy(other, c1.h, c1.v, c2.h, large, positive, e, tolerance);
        break;
    }
    default:
        trammel::AddCurve(path, at + c1, at + c2, at + e);
        trammel::CurveBy(other, c1, c2, e);
    }
    Require(DigestOf(path) == DigestOf(other), "differences draw what points do");
}

/// Adds what needs no other path beside.
void AddPart(Input& in, CPath& path) {
    Pt const p = in.Point();
    double const radius = in.Number();
    double const tolerance = in.Tolerance(radius);
    switch (in.Int(0, 7)) {
    case 0:
        path.ClosePath();
        break;
    case 1:
        path.LineTo(p);
        break;
    case 2: {
        trammel::EllipticalArc arc;
        arc.center = p;
        arc.hRadius = radius;
        arc.vRadius = in.Number();
        arc.rotation = in.Number();
        arc.startAngle = in.Number();
        arc.sweep = in.Number();
        trammel::AddArc(path, arc, tolerance);
        break;
    }
    case 3: {
        double const start = in.Number();
        path.Arc(p, radius, start, std::fmod(in.Number(), 100.0)); // a curve for each quarter
        break;
    }
    case 4:
        path.RRect(in.Rect(), radius);
        break;
    case 5:
        path.Append(CPath(path));
        break;
    case 6:
        trammel::AppendSubpaths(path, path);
        break;
    default:
        trammel::LineBy(path, p);
    }
}

void CheckStructure(CPath const& path, Input& in) {
    CPath parts;
    std::vector<CPath> const split = trammel::SplitSubpaths(path);
    for (CPath const& part : split) {
        trammel::AppendSubpaths(parts, part);
    }
    CPath whole;
    trammel::AppendSubpaths(whole, path);
    Require(DigestOf(parts) == DigestOf(whole), "the subpaths make the path");
    Require(DigestOf(trammel::Reversed(trammel::Reversed(whole))) == DigestOf(whole),
            "a path that is reversed twice is the same");
    CPath const closed = trammel::WithSubpathsClosed(path);
    for (trammel::Subpath const& subpath : trammel::Subpaths(closed)) {
        Require(subpath.Closed() || subpath.begin() == subpath.end(), "a subpath was closed");
    }
    for (auto const closing : {trammel::ClosingLine::kKeep, trammel::ClosingLine::kDrop}) {
        CPath const open = trammel::WithSubpathsOpened(path, closing);
        Require(std::find(open.mCtls.begin(), open.mCtls.end(), kPathClose) == open.mCtls.end(),
                "a subpath was opened");
    }
    bool const numbers = std::none_of(path.mPts.begin(), path.mPts.end(), [](Pt const& p) {
        return std::isnan(p.h) || std::isnan(p.v);
    });
    Require(trammel::Equal(path, path) == numbers, "a path equals itself unless it has a NaN");
    if (IsFinite(path)) {
        Require(trammel::Equal(trammel::Transformed(path, CMatrix3x3()), path),
                "the unit matrix moves nothing");
    }
    std::size_t point = 0;
    for (std::size_t i = 0; i < path.mCtls.size(); ++i) {
        Require(trammel::FirstPointOf(path, i) == point, "points follow their elements");
        char const code = path.mCtls[i];
        point += code == kPathCurve ? 3 : code == kPathClose ? 0 : 1;
    }
    CPath changed = path;
    std::size_t const index = in.Byte();
    Pt const p = in.Point();
    try {
        trammel::SetPoint(changed, index, p);
        Require(index < path.mPts.size(), "only a point that there is can be replaced");
        CheckBounds(changed);
    } catch (std::out_of_range const&) {
        Require(index >= path.mPts.size(), "a point that there is can be replaced");
    }
}

/// Requires that a shape around a centre is closed, and within its radius and the tolerance.
void CheckShape(CPath const& shape, Pt const& center, double radius, double tolerance) {
    if (shape.mCtls.empty()) {
        return;
    }
    Require(IsFinite(shape), "a shape is finite");
    Require(shape.mCtls.back() == kPathClose, "a shape is closed");
    double const size = std::abs(radius) + std::max(std::abs(center.h), std::abs(center.v));
    if (!(size < 1e150)) {
        return;
    }
    double const reach =
        std::abs(radius) + (tolerance > 0.0 ? tolerance : 0.0) + size * 0x1p-40 + 0x1p-1070;
    Box const bounds = trammel::TightBounds(shape);
    Require(bounds.left >= center.h - reach && bounds.right <= center.h + reach &&
                bounds.top >= center.v - reach && bounds.bottom <= center.v + reach,
            "a shape stays within its radius");
    Require(trammel::SignedArea(shape) >= -size * size * 0x1p-36, "a shape runs from h toward v");
}

void CheckShapes(Input& in) {
    Pt const center = in.Point();
    double const radius = in.Number();
    double const other = in.Number();
    double const tolerance = in.Tolerance(radius);
    double const angle = in.Number();
    std::size_t const count = in.Byte() % 64;
    double const greater = std::max(std::abs(radius), std::abs(other));
    CheckShape(trammel::CirclePath(center, radius, tolerance), center, radius, tolerance);
    CheckShape(trammel::EllipsePath(center, radius, other, angle, tolerance), center, greater,
               tolerance);
    CPath const polygon = trammel::RegularPolygonPath(center, radius, count, angle);
    CPath const star = trammel::StarPath(center, radius, other, count, angle);
    if (radius > 0.0 && other > 0.0) {
        CheckShape(polygon, center, radius, 0.0);
        CheckShape(star, center, greater, 0.0);
    }
    Box const rect = in.Rect();
    trammel::CornerRadii radii;
    radii.topLeft = in.Point();
    radii.topRight = in.Point();
    radii.bottomRight = in.Point();
    radii.bottomLeft = in.Point();
    for (CPath const& path : {trammel::RoundedRectPath(rect, radii, tolerance),
                              trammel::RoundedRectPath(rect, radius, other, tolerance)}) {
        double const size = std::max(
            {std::abs(rect.left), std::abs(rect.right), std::abs(rect.top), std::abs(rect.bottom)});
        Box const bounds = trammel::TightBounds(path);
        Require(path.mPts.empty() || IsFinite(path), "a rounded rectangle is finite");
        Require(path.mPts.empty() || !(size < 1e150) ||
                    (bounds.Width() <= std::abs(rect.right - rect.left) + size * 0x1p-40 &&
                     bounds.Height() <= std::abs(rect.bottom - rect.top) + size * 0x1p-40),
                "a rounded rectangle stays within the rectangle");
    }
}

} // namespace

void Building(Input& in) {
    CPath path;
    for (int i = in.Int(0, 12); i > 0; --i) {
        if (in.Flag()) {
            CPath other = path;
            AddSegment(in, path, other);
        } else if (path.mPts.size() < 1000) { // which doubles sometimes
            AddPart(in, path);
        }
        CheckBounds(path);
    }
    CheckStructure(path, in);
    CheckShapes(in);
}

} // namespace fuzz
