// SPDX-License-Identifier: MIT

// Bounds from the zeros of the derivative in each coordinate.

#include "AccurateCurve.h"
#include "AccurateCurve_p.h"
#include "Box_p.h"
#include "CPath.h"
#include "PathWalk_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace trammel {

namespace {

using trammel_detail::Pt;
using trammel_detail::ScaledPoints;

/// The distance by which a computed extremum may be inside the true one, as a part of the control
/// points' extent. Let e be the extent and u = 2^-53. Relative to P0 the derivative's coefficients
/// are at most 6e. Its zeros leave a residue below 32·u·e over a parameter range of at most 1, and
/// evaluation adds less than 16·u·e.
constexpr double kMargin = 0x1p-46;
/// Products of two numbers of this size keep all their bits. Smaller numbers are multiplied by
/// kMagnify, after which even the products of the smallest ones keep them.
constexpr double kSmall = 0x1p-400;
constexpr double kMagnify = 0x1p600;

/// The range of one coordinate of a curve.
struct Range {
    double lo;
    double hi;
};

/// Returns the range of the cubic with coefficients p0 to p3.
Range CubicRange(double p0, double p1, double p2, double p3) {
    Range const ends = {std::min(p0, p3), std::max(p0, p3)};
    Range const hull = {std::min(ends.lo, std::min(p1, p2)), std::max(ends.hi, std::max(p1, p2))};
    if (hull.lo == ends.lo && hull.hi == ends.hi) {
        return ends;
    }
    // The derivative's coefficients are d0, d1, d2; as a polynomial, a + 2bt + ct².
    double const d0 = p1 - p0;
    double const d1 = p2 - p1;
    double const d2 = p3 - p2;
    double const b = d1 - d0;
    double const c = (d0 - d1) + (d2 - d1);
    // The zeros are quotients, so a common factor changes nothing. Both coordinates are scaled
    // alike, and one may be far smaller than the other. Its squares must not underflow.
    double const factor = hull.hi - hull.lo < kSmall ? kMagnify : 1.0;
    double const zeroA = d0 * factor;
    double const zeroB = b * factor;
    double const zeroC = c * factor;
    double const root =
        std::sqrt(std::max(zeroB * zeroB - zeroA * zeroC, 0.0)); // where it only touches zero: none
    double const s = zeroB >= 0.0 ? -(zeroB + root) : root - zeroB;
    double lo = ends.lo;
    double hi = ends.hi;
    double const margin = kMargin * (hull.hi - hull.lo);
    for (double const zero : {s / zeroC, zeroA / s}) {
        if (!(zero > 0.0 && zero < 1.0)) {
            continue;
        }
        // The value is taken relative to the nearer end, by Horner's rule.
        double const x =
            zero < 0.5 ? p0 + (3.0 * d0 + (3.0 * b + c * zero) * zero) * zero
                       : p3 - (3.0 * d2 - (3.0 * (d2 - d1) - c * (1.0 - zero)) * (1.0 - zero)) *
                                  (1.0 - zero);
        // The last addition is rounded to a unit of the coordinate itself.
        double const infinity = std::numeric_limits<double>::infinity();
        lo = std::min(lo, std::nextafter(x - margin, -infinity));
        hi = std::max(hi, std::nextafter(x + margin, infinity));
    }
    return {std::max(lo, hull.lo), std::min(hi, hull.hi)};
}

/// Returns the range of the quadratic with coefficients p0 to p2.
Range QuadraticRange(double p0, double p1, double p2) {
    Range const ends = {std::min(p0, p2), std::max(p0, p2)};
    if (p1 >= ends.lo && p1 <= ends.hi) {
        return ends;
    }
    // The derivative vanishes at d0/(d0 - d1). The differences have opposite signs, or one is 0.
    double const d0 = p1 - p0;
    double const d1 = p2 - p1;
    double const x = p0 + d0 * (d0 / (d0 - d1));
    double const margin = kMargin * (std::abs(d0) + std::abs(d1));
    double const infinity = std::numeric_limits<double>::infinity();
    double const lo = std::min(ends.lo, std::nextafter(x - margin, -infinity));
    double const hi = std::max(ends.hi, std::nextafter(x + margin, infinity));
    return {std::max(lo, std::min(ends.lo, p1)), std::min(hi, std::max(ends.hi, p1))};
}

/// Returns the ranges as a rectangle in the input's unit.
///
/// Where points were scaled, the smallest of them may have been rounded, and sides near zero are
/// rounded once more. Such sides grow by a unit. Then they are brought between the control points
/// (outside) and the ends (inside), which are known exactly.
template <std::size_t N>
TRect<double> InputUnit(std::array<Pt, N> const& points, ScaledPoints<N> const& p, Range const& h,
                        Range const& v) {
    if (!p.Scaled()) {
        return TRect<double>(h.lo, v.lo, h.hi, v.hi);
    }
    auto const bring = [&](Range const& range, double Pt::*coordinate) {
        double const first = points.front().*coordinate;
        double const last = points.back().*coordinate;
        Range const ends = {std::min(first, last), std::max(first, last)};
        Range hull = ends;
        for (Pt const& point : points) {
            hull.lo = std::min(hull.lo, point.*coordinate);
            hull.hi = std::max(hull.hi, point.*coordinate);
        }
        double const infinity = std::numeric_limits<double>::infinity();
        double const tiny = std::numeric_limits<double>::min();
        double lo = p.Up(range.lo);
        double hi = p.Up(range.hi);
        lo = std::abs(lo) < tiny ? std::nextafter(lo, -infinity) : lo;
        hi = std::abs(hi) < tiny ? std::nextafter(hi, infinity) : hi;
        return Range{std::max(std::min(lo, ends.lo), hull.lo),
                     std::min(std::max(hi, ends.hi), hull.hi)};
    };
    Range const rangeH = bring(h, &Pt::h);
    Range const rangeV = bring(v, &Pt::v);
    return TRect<double>(rangeH.lo, rangeV.lo, rangeH.hi, rangeV.hi);
}

TRect<double> NoBounds() {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    return TRect<double>(nan, nan, nan, nan);
}

bool Finite(TRect<double> const& r) {
    return std::isfinite(r.left) && std::isfinite(r.top) && std::isfinite(r.right) &&
           std::isfinite(r.bottom);
}

} // namespace

TRect<double> TightBounds(CBezier const& curve) {
    std::array<Pt, 4> const points = {curve.P0, curve.P1, curve.P2, curve.P3};
    ScaledPoints<4> const p(points);
    if (!p.Finite()) {
        return NoBounds();
    }
    Range const h = CubicRange(p[0].h, p[1].h, p[2].h, p[3].h);
    Range const v = CubicRange(p[0].v, p[1].v, p[2].v, p[3].v);
    return InputUnit(points, p, h, v);
}

TRect<double> TightBounds(CBSpline const& curve) {
    std::array<Pt, 3> const points = {curve.P0, curve.P1, curve.P2};
    ScaledPoints<3> const p(points);
    if (!p.Finite()) {
        return NoBounds();
    }
    Range const h = QuadraticRange(p[0].h, p[1].h, p[2].h);
    Range const v = QuadraticRange(p[0].v, p[1].v, p[2].v);
    return InputUnit(points, p, h, v);
}

TRect<double> TightBounds(CPath const& path) {
    // TRect's union would leave out a point at the origin.
    trammel_detail::Box<double> box;
    for (trammel_detail::SegmentCursor segment(path); segment.Next();) {
        TRect<double> const r = segment.IsCurve()
                                    ? TightBounds(segment.Curve())
                                    : TRect<double>(segment.Line().mStart, segment.Line().mEnd);
        if (!Finite(r)) {
            return NoBounds();
        }
        box.Include({r.left, r.top, r.right, r.bottom});
    }
    bool const any = box.lowX <= box.highX;
    return any ? TRect<double>(box.lowX, box.lowY, box.highX, box.highY) : TRect<double>();
}

} // namespace trammel
