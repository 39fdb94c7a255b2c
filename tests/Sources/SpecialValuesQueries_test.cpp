// SPDX-License-Identifier: MIT

// Special values in queries about curves, outlines and polygons.

#include "Finite.h"
#include "SpecialValues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

using trammel::FillRule;
using trammel::Intersection;
using trammel_test::IsFinite;
using trammel_test::special::Case;
using trammel_test::special::Draw;
using trammel_test::special::IsNaN;
using trammel_test::special::Pt;
using trammel_test::special::Segment;
using trammel_test::special::Use;

namespace {

bool IsFraction(double t) { return t >= 0.0 && t <= 1.0; }

/// Equal, or both NaN.
bool Same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }
bool Same(Pt const& a, Pt const& b) { return Same(a.h, b.h) && Same(a.v, b.v); }

void TryAccurateCurve(Draw& d) {
    CBezier const curve = d.Curve();
    Pt const p = d.Point();
    double const accuracy = d.Value();
    double const where = d.Value();
    bool const isFinite = IsFinite(curve);

    EXPECT_EQ(std::isnan(trammel::ArcLength(curve, accuracy)), !isFinite);
    EXPECT_FALSE(trammel::ArcLength(curve, accuracy) < 0.0);
    EXPECT_EQ(std::isnan(trammel::ArcLength(curve, where, 0.5, accuracy)),
              !isFinite || std::isnan(where));
    for (double const t : {trammel::ParameterAtLength(curve, where, accuracy),
                           trammel::ParameterAtFraction(curve, where, accuracy)}) {
        EXPECT_EQ(std::isnan(t), !isFinite || std::isnan(where));
        EXPECT_TRUE(std::isnan(t) || IsFraction(t));
    }
    trammel::CurvePoint const nearest = trammel::NearestPoint(curve, p, accuracy);
    if (isFinite && IsFinite(p)) {
        EXPECT_TRUE(IsFraction(nearest.t));
        EXPECT_GE(nearest.distance, 0.0);
    } else {
        EXPECT_TRUE(std::isnan(nearest.t) && IsNaN(nearest.point) && std::isnan(nearest.distance));
    }
    TRect<double> const bounds = trammel::TightBounds(curve);
    EXPECT_EQ(std::isnan(bounds.left), !isFinite);
    EXPECT_EQ(std::isnan(bounds.bottom), !isFinite);
}

void TryFlattening(Draw& d) {
    CBezier const curve = d.Curve();
    double const tolerance = d.Value();
    Pt ends[2] = {Pt(1, 2), Pt(3, 4)};
    trammel::Flattened const flattened = trammel::FlattenInto(curve, tolerance, ends, 2);
    EXPECT_EQ(std::isnan(flattened.distance), !IsFinite(curve));
    EXPECT_GE(flattened.count, 2U);
    EXPECT_LE(flattened.count, static_cast<std::size_t>(trammel::kMostFlatPoints));
    EXPECT_TRUE(Same(ends[0], curve.P0));
    if (flattened.count == 2) {
        EXPECT_TRUE(Same(ends[1], curve.P3));
    }
    std::size_t delivered = 0;
    double const kept =
        trammel::FlattenTo(curve, tolerance, [&delivered](Pt const&) { ++delivered; });
    EXPECT_EQ(delivered, flattened.count);
    EXPECT_TRUE(Same(kept, flattened.distance));
}

void TryRegion(Draw& d) {
    CPath const path = d.Path();
    Pt const p = d.Point();
    int const winding = trammel::WindingNumber(path, p);
    EXPECT_EQ(trammel::PreparedOutline(path).WindingNumber(p), winding);
    EXPECT_EQ(trammel::Contains(path, p, FillRule::kEvenOdd), winding % 2 != 0);
    if (!IsFinite(p)) {
        EXPECT_EQ(winding, 0);
    }
    Use(trammel::SignedArea(path));
    Use(trammel::MomentsOf(path).centroid);
    EXPECT_EQ(trammel::ContourAreas(path).size(), 2U);

    TPolygon<double> const polygon = d.Polygon(5);
    EXPECT_EQ(trammel::PreparedPolygon(polygon).Contains(p), polygon.Contains(p));
    EXPECT_EQ(trammel::PreparedOutline(polygon).WindingNumber(p),
              trammel::WindingNumber(polygon, p));
    trammel::PolygonWithHoles region;
    region.outer = {d.Point(), d.Point(), d.Point()};
    region.holes = {{d.Point(), d.Point(), d.Point()}};
    Use(trammel::Area(region));
    Use(trammel::Bounds(region).TopLeft());
    trammel::OrientRings(region);
    EXPECT_FALSE(trammel::SignedArea(region.outer) < 0.0);
    EXPECT_FALSE(trammel::Contains(region, Pt(std::nan(""), 0.0), FillRule::kNonZero));
}

void ExpectPlaces(std::vector<Intersection> const& places, double kept, double accuracy) {
    EXPECT_GE(kept, 0.0);
    EXPECT_FALSE(kept < accuracy);
    for (Intersection const& place : places) {
        EXPECT_TRUE(IsFraction(place.a.t) && IsFraction(place.a.endT));
        EXPECT_TRUE(IsFraction(place.b.t) && IsFraction(place.b.endT));
        EXPECT_TRUE(IsFinite(place.point) && IsFinite(place.endPoint));
    }
}

void TryIntersections(Draw& d) {
    CBezier const curve = d.Curve();
    CBezier const other = d.Curve();
    Segment const line = d.Line();
    double const accuracy = d.Value();
    std::vector<Intersection> places;
    double kept = trammel::AppendIntersections(curve, other, accuracy, places);
    ExpectPlaces(places, kept, accuracy);
    if (!IsFinite(curve)) {
        EXPECT_TRUE(places.empty());
    }
    places.clear();
    kept = trammel::AppendIntersections(curve, line, accuracy, places);
    ExpectPlaces(places, kept, accuracy);
    places.clear();
    kept = trammel::AppendSelfIntersections(curve, accuracy, places);
    ExpectPlaces(places, kept, accuracy);
    places.clear();
    CPath const path = d.Path();
    kept = trammel::AppendIntersections(path, d.Path(), accuracy, places);
    ExpectPlaces(places, kept, accuracy);
}

void TryPathMeasure(Draw& d) {
    CPath const path = d.Path();
    trammel::PathMeasure const measure(path);
    double const t = d.Value();
    Pt const p = d.Point();
    EXPECT_TRUE(Same(measure.Length(), path.Length()));
    EXPECT_TRUE(Same(measure.TPt(t), path.TPt(t)));
    EXPECT_TRUE(Same(measure.At(t).point, path.TPt(t)));
    EXPECT_TRUE(Same(measure.FindTValue(p), path.FindTValue(p)));
    EXPECT_GE(measure.Distance(p), 0.0);
    CPath piece;
    CPath same;
    measure.GetTRange(t, 0.75, piece);
    path.GetTRange(t, 0.75, same);
    EXPECT_EQ(piece.mCtls, same.mCtls);
}

void TryOutlineMeasure(Draw& d) {
    CPath const path = d.Path();
    trammel::OutlineMeasure const measure(path);
    double const t = d.Value();
    double const length = d.Value();
    Pt const p = d.Point();
    EXPECT_GE(measure.Length(), 0.0);
    EXPECT_TRUE(Same(measure.At(t).point, measure.TPt(t)));
    trammel::OutlineMeasure::Place const place = measure.AtLength(length);
    EXPECT_TRUE(Same(place.point, measure.PtAtLength(length)));
    if (std::isnan(length)) {
        EXPECT_TRUE(IsNaN(place.point));
        EXPECT_EQ(place.element, trammel::OutlineMeasure::kNone);
    } else {
        EXPECT_TRUE(IsFinite(place.point) || place.element == trammel::OutlineMeasure::kNone);
    }
    trammel::OutlineMeasure::Nearest const nearest = measure.FindNearest(p, length);
    EXPECT_GE(nearest.distance, 0.0);
    EXPECT_GE(nearest.length, 0.0);
    if (!IsFinite(p)) {
        EXPECT_EQ(nearest.element, trammel::OutlineMeasure::kNone);
    }
    CPath piece;
    measure.GetTRange(t, std::nan(""), piece);
    EXPECT_TRUE(piece.mCtls.empty());
    measure.GetLengthRange(length, t, piece);
    for (Pt const& q : piece.mPts) {
        EXPECT_TRUE(IsFinite(q));
    }
}

} // namespace

std::vector<Case> trammel_test::special::QueryCases() {
    return {
        {"AccurateCurve", TryAccurateCurve},
        {"Flattening", TryFlattening},
        {"Region", TryRegion},
        {"Intersections", TryIntersections},
        {"PathMeasure", TryPathMeasure},
        {"OutlineMeasure", TryOutlineMeasure},
    };
}
