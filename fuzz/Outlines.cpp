// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "AnyOutline.h"
#include "Moments.h"
#include "OutlineMeasure.h"
#include "PreparedOutline.h"
#include "RegionArea.h"
#include "TPoly.h"
#include "Winding.h"
#include "identity/Identity.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <vector>

namespace fuzz {

namespace {

using identity::Digest;
using trammel::FillRule;
using trammel::OutlineMeasure;
using trammel::PreparedOutline;

/// What the error bounds of an outline count with.
struct Size {
    double length = 0.0; ///< of the closed control polygons, or more
    double extent = 0.0; ///< the greatest, in h or v
    bool finite = true;

    explicit Size(std::vector<Pt> const& points) {
        Pt low(0, 0); // where drawing begins without a move
        Pt high = low;
        for (Pt const& p : points) {
            finite = finite && std::isfinite(p.h) && std::isfinite(p.v);
            low = Pt(std::min(low.h, p.h), std::min(low.v, p.v));
            high = Pt(std::max(high.h, p.h), std::max(high.v, p.v));
        }
        extent = std::max(high.h - low.h, high.v - low.v);
        // Each point ends one line at most, and another one closes its contour.
        length = 4.0 * extent * static_cast<double>(points.size() + 1);
    }
    double Area() const { return length * extent; }
};

void Windings(CPath const& path, Input& in) {
    PreparedOutline const prepared(path);
    PreparedOutline const ring(path.mPts);
    std::vector<Pt> points;
    for (int i = in.Int(0, 30); i >= 0; --i) {
        // Often at the height of a point, at one, or between two.
        Pt p = in.Point();
        if (!path.mPts.empty() && i % 4 != 0) {
            Pt const& a = path.mPts[in.Byte() % path.mPts.size()];
            Pt const& b = path.mPts[in.Byte() % path.mPts.size()];
            p = i % 4 == 1 ? Pt(p.h, a.v) : i % 4 == 2 ? a : a * 0.5 + b * 0.5;
        }
        Require(prepared.WindingNumber(p) == trammel::WindingNumber(path, p),
                "a prepared outline winds as the path");
        Require(ring.WindingNumber(p) == trammel::WindingNumber(path.mPts, p),
                "a prepared ring winds as the ring");
        points.push_back(p);
    }
    // Many at a time, and the ring as a polygon.
    TPolygon<double> const polygon(path.mPts);
    PreparedOutline const same(polygon);
    std::vector<int> windings(points.size());
    bool inside[31];
    prepared.WindingNumbers(points.data(), points.size(), windings.data());
    prepared.Contains(points.data(), points.size(), FillRule::kEvenOdd, inside);
    for (std::size_t i = 0; i < points.size(); ++i) {
        Require(windings[i] == prepared.WindingNumber(points[i]), "many points wind as each one");
        Require(inside[i] == prepared.Contains(points[i], FillRule::kEvenOdd),
                "many points are inside as each one is");
        Require(same.WindingNumber(points[i]) == ring.WindingNumber(points[i]) &&
                    trammel::WindingNumber(polygon, points[i]) == ring.WindingNumber(points[i]),
                "a polygon winds as its ring");
    }
}

void Places(CPath const& path, Input& in, Size const& size) {
    OutlineMeasure const measure(path);
    double const length = measure.Length();
    double const t[] = {in.Number(), in.Int(0, 64) / 64.0, in.Int(0, 255) / 255.0, -1.0, 2.0};
    Pt points[std::size(t)];
    measure.TPts(t, std::size(t), points);
    Pt const p = in.Point();
    double const accuracy = in.Tolerance(size.extent);
    OutlineMeasure::Nearest const nearest = measure.FindNearest(p, accuracy);
    double const off =
        std::max(accuracy, 0.0) + 0x1p-44 * (size.extent + std::abs(p.h) + std::abs(p.v)) * 2.0;
    for (std::size_t i = 0; i < std::size(t); ++i) {
        OutlineMeasure::Place const place = measure.At(t[i]);
        Digest one;
        Digest same;
        Digest ofMany;
        one.Add(place.point);
        same.Add(measure.TPt(t[i]));
        ofMany.Add(points[i]);
        Require(one == same && one == ofMany, "the point at a fraction is that of its place");
        if (!std::isfinite(length) || std::isnan(t[i])) {
            continue;
        }
        Require(place.length >= 0.0 && place.length <= length, "a place lies on the outline");
        double const other = measure.At(t[1]).length;
        Require(t[i] < t[1] ? place.length <= other : place.length >= other,
                "places are in the order of their fractions");
        if (size.finite && std::isfinite(off) && place.element != OutlineMeasure::kNone) {
            Require(nearest.distance <= (place.point - p).Hypotenuse() + off,
                    "no place is nearer than the nearest one");
        }
    }
    OutlineMeasure::Place places[std::size(t)];
    OutlineMeasure::Place atLengths[std::size(t)];
    OutlineMeasure::Nearest nearests[std::size(t)];
    measure.Places(t, std::size(t), places);
    measure.PlacesAtLengths(t, std::size(t), atLengths);
    measure.FindNearest(points, std::size(t), nearests, accuracy);
    for (std::size_t i = 0; i < std::size(t); ++i) {
        Digest many;
        Digest one;
        many.Add(places[i].point);
        many.Add(atLengths[i].point);
        many.Add(atLengths[i].parameter);
        many.Add(nearests[i].distance);
        one.Add(measure.At(t[i]).point);
        one.Add(measure.AtLength(t[i]).point);
        one.Add(measure.AtLength(t[i]).parameter);
        one.Add(measure.FindNearest(points[i], accuracy).distance);
        Require(many == one, "many places are those of each one");
    }
    Digest distance;
    Digest same;
    distance.Add(measure.Distance(p, accuracy));
    same.Add(nearest.distance);
    Require(distance == same, "the distance is that of the nearest place");
    CPath piece;
    measure.GetTRange(t[0], t[1], piece);
    measure.GetTRange(t[1], t[2], piece);
}

void Areas(CPath const& path, Input& in, Size const& size) {
    double const area = trammel::SignedArea(path);
    double const ofMoments = trammel::MomentsOf(path).area;
    std::vector<double> const contours = trammel::ContourAreas(path);
    Digest ring;
    Digest polygon;
    ring.Add(trammel::SignedArea(path.mPts));
    ring.Add(trammel::MomentsOf(path.mPts).area);
    polygon.Add(trammel::SignedArea(TPolygon<double>(path.mPts)));
    polygon.Add(trammel::MomentsOf(TPolygon<double>(path.mPts)).area);
    Require(ring == polygon, "a polygon has the area of its ring");
    double sum = 0.0;
    for (double const contour : contours) {
        sum += contour;
    }
    double const bound = size.Area() * 0x1p-40 + 1e-300;
    if (!size.finite || !std::isfinite(bound * 0x1p50)) {
        return;
    }
    Require(std::abs(area - ofMoments) <= bound, "the moments have the area");
    Require(std::abs(area - sum) <= bound, "the contours' areas add up");
    // All coordinates are finite, so no contour is left out.
    double const accuracy = in.Tolerance(size.extent * size.extent);
    trammel::AreaWithin const nonZero = trammel::RegionArea(path, FillRule::kNonZero, accuracy);
    trammel::AreaWithin const evenOdd = trammel::RegionArea(path, FillRule::kEvenOdd, accuracy);
    double const slack = nonZero.error + evenOdd.error + bound;
    Require(evenOdd.area <= nonZero.area + slack, "a point within by even-odd is within");
    Require(nonZero.area <= size.extent * size.extent + slack, "a region lies in its box");
    if (contours.size() == 1) {
        // Both integrals differ only in how often they count a point.
        Require(std::abs(area) <= nonZero.area * static_cast<double>(path.mCtls.size() + 1) * 3.0 +
                                      slack * static_cast<double>(path.mCtls.size() + 1) * 3.0,
                "no winding number is greater than the number of segments allows");
    }
}

} // namespace

void Outlines(Input& in) {
    // Areas of regions take long where wild curves lie over each other.
    bool const few = in.Flag();
    CPath const path = AnyOutline(in, few ? 8 : in.Flag() ? 12 : 200);
    Size const size(path.mPts);
    if (few) {
        Areas(path, in, size);
    }
    Windings(path, in);
    Places(path, in, size);
}

} // namespace fuzz
