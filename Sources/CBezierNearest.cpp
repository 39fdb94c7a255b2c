// SPDX-License-Identifier: MIT

#include "CBezier.h"

#include "CubicHalves_p.h"
#include "Flatness_p.h"
#include "Halve_p.h"
#include "PointMath_p.h"
#include "TLine.h"
#include "Vector_p.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using trammel_detail::Abs;
using trammel_detail::CubicHalves;
using trammel_detail::Distance;
using trammel_detail::Double2;
using trammel_detail::FlatnessFilter;
using trammel_detail::Halve;
using trammel_detail::Mask2;

/// Halves one coordinate of two cubics. Keeps the first half in the lanes where the mask is set,
/// else the second one.
inline void HalveToward(Mask2 const& first, Double2& p0, Double2& p1, Double2& p2, Double2& p3) {
    CubicHalves<Double2> const halves(p0, p1, p2, p3);
    p0 = Select(first, p0, halves.middle);
    p1 = Select(first, halves.left1, halves.right1);
    p2 = Select(first, halves.left2, halves.right2);
    p3 = Select(first, halves.middle, p3);
}

/// Decides one step literally: true when the search goes on in the first half of `c`.
bool TowardStartExactly(CBezier const& c, TPoint<double> const& pt, double tolerance) {
    TLine<double> const chord(c.TPt(0.5 - tolerance), c.TPt(0.5 + tolerance));
    return chord.Perpendicular().HalfSpace(pt) == 1;
}

/// Decides the bisection's steps, from a cheap estimate wherever that leaves no doubt.
///
/// The literal decision takes the points A and B of the curve at 0.5 -+ t, where t is the
/// tolerance. It turns the chord a quarter about its middle M and takes a second quarter turn for
/// the perpendicular. Then it asks for the sign of the perpendicular's product with the vector from
/// the turned chord's start to the point p.
///
/// In exact arithmetic that is the sign of -d·r with d = B - A and r = p - M, as the turned chord's
/// start lies at a right angle to d from M. By Taylor's formula
///
///     d = 3/2 t (P3 + P2 - P1 - P0) + 2 t³ (P3 - 3 P2 + 3 P1 - P0)
///     M = (P0 + 3 P1 + 3 P2 + P3)/8 + 3/2 t² (P0 - P1 - P2 + P3)
///
/// Let u = 2^-53, S a bound on the coordinates of the curve and t <= 1/8, so that |d| <= 3S in the
/// sum of its components. Terms of order u² are covered by the slack at the end.
///
///   literal    A and B are off by 14uS in each component (three steps P + (Q - P)·w with 3.5uS
///              each, and the rounding of 0.5 -+ t), M by 17uS. The quarter turn's sine is 1 and
///              its cosine, of the rounded angle, less than u, so turning adds 3u of the vector:
///              the turned ends are off by 56uS, the second perpendicular by 130uS, and the product
///              by uS(130 |r| + 196 |d|) + 4u |d| |r|, magnitudes being sums of components.
///   estimate   d is off by 4uS, M by 8uS, the product by uS(4 |r| + 8 |d|) + 4u |d| |r|.
///
/// Together that is at most uS(158 |r| + 204 |d|), less than half of the bound uS 2^9 (|r| + |d|)
/// that is used. The literal form decides in these cases:
///
///   - the estimate is inside the bound;
///   - products could overflow or underflow;
///   - the curve is so small that uS is not far above the smallest number there is. Each of some
///     dozen products on the way to A, B and d may lose that much, which the model leaves out.
class SideFilter {
public:
    SideFilter(CBezier const& whole, double tolerance)
        : mBound(FlatnessFilter::SizeOf(whole) * 0x1p-44), mFirst(1.5 * tolerance),
          mThird(2.0 * tolerance * tolerance * tolerance), mSecond(1.5 * tolerance * tolerance) {}

    /// True when estimates may be made for the pieces of `whole`.
    static bool Serves(CBezier const& whole, TPoint<double> const& pt, double tolerance) {
        double const size = FlatnessFilter::SizeOf(whole);
        return tolerance >= 0x1p-40 && tolerance <= 0.125 && size >= 0x1p-960 && size <= 0x1p400 &&
               std::abs(pt.h) <= 0x1p400 && std::abs(pt.v) <= 0x1p400;
    }

    /// Estimates the literal product's negative and its error's bound. `Number` is double, or a
    /// vector of doubles that are computed side by side.
    template <class Number> struct Estimate {
        Number product;
        Number magnitude; ///< |r| + |d|
    };
    template <class Number>
    Estimate<Number> Of(Number const& h0, Number const& v0, Number const& h1, Number const& v1,
                        Number const& h2, Number const& v2, Number const& h3, Number const& v3,
                        TPoint<double> const& pt) const {
        Number const dh = mFirst * ((h3 - h0) + (h2 - h1)) + mThird * ((h3 - h0) - 3.0 * (h2 - h1));
        Number const dv = mFirst * ((v3 - v0) + (v2 - v1)) + mThird * ((v3 - v0) - 3.0 * (v2 - v1));
        Number const rh =
            pt.h - (((h0 + h3) + 3.0 * (h1 + h2)) * 0.125 + mSecond * ((h0 + h3) - (h1 + h2)));
        Number const rv =
            pt.v - (((v0 + v3) + 3.0 * (v1 + v2)) * 0.125 + mSecond * ((v0 + v3) - (v1 + v2)));
        return Estimate<Number>{dh * rh + dv * rv, Abs(rh) + Abs(rv) + (Abs(dh) + Abs(dv))};
    }
    double Bound() const { return mBound; }

    /// Below this the estimate's products may have lost bits.
    static constexpr double kSmallestBound = 0x1p-1000;

private:
    double mBound;
    double mFirst;
    double mThird;
    double mSecond;
};

/// Decides one step: true when the search goes on in the first half of `c`.
bool TowardStart(CBezier const& c, TPoint<double> const& pt, double tolerance) {
    if (SideFilter::Serves(c, pt, tolerance)) {
        SideFilter const filter(c, tolerance);
        auto const estimate =
            filter.Of(c.P0.h, c.P0.v, c.P1.h, c.P1.v, c.P2.h, c.P2.v, c.P3.h, c.P3.v, pt);
        double const bound = filter.Bound() * estimate.magnitude;
        if (std::abs(estimate.product) > bound && bound >= SideFilter::kSmallestBound) {
            return estimate.product < 0.0;
        }
    }
    return TowardStartExactly(c, pt, tolerance);
}

/// Does the bisection of FindDividedTValue from 0 to 1 on both halves of a curve, side by side.
/// Lane 0 holds the piece of the left half, lane 1 the piece of the right half. Requires
/// SideFilter::Serves, by which no middle is ever one of its bounds.
void BisectHalves(CBezier const& whole, CBezier const& left, CBezier const& right,
                  TPoint<double> const& pt, double tolerance, double& tLeft, double& tRight) {
    SideFilter const filter(whole, tolerance);
    Double2 h0 = Double2::Of(left.P0.h, right.P0.h);
    Double2 v0 = Double2::Of(left.P0.v, right.P0.v);
    Double2 h1 = Double2::Of(left.P1.h, right.P1.h);
    Double2 v1 = Double2::Of(left.P1.v, right.P1.v);
    Double2 h2 = Double2::Of(left.P2.h, right.P2.h);
    Double2 v2 = Double2::Of(left.P2.v, right.P2.v);
    Double2 h3 = Double2::Of(left.P3.h, right.P3.h);
    Double2 v3 = Double2::Of(left.P3.v, right.P3.v);
    Double2 lo = 0.0;
    double width = 1.0; // hi - lo, the same power of two in both lanes: exact
    Double2 middle;
    do {
        auto const estimate = filter.Of(h0, v0, h1, v1, h2, v2, h3, v3, pt);
        Double2 const bound = filter.Bound() * estimate.magnitude;
        Mask2 toStart = estimate.product < -bound;
        unsigned const decided =
            ((toStart | (estimate.product > bound)) & (bound >= SideFilter::kSmallestBound)).Bits();
        for (int lane = 0; lane < 2; ++lane) {
            if (__builtin_expect((decided >> lane & 1U) == 0, 0)) {
                CBezier const piece(
                    TPoint<double>(h0[lane], v0[lane]), TPoint<double>(h1[lane], v1[lane]),
                    TPoint<double>(h2[lane], v2[lane]), TPoint<double>(h3[lane], v3[lane]));
                toStart.Set(lane, TowardStartExactly(piece, pt, tolerance));
            }
        }
        HalveToward(toStart, h0, h1, h2, h3);
        HalveToward(toStart, v0, v1, v2, v3);
        width *= 0.5;
        middle = lo + width;
        lo = Select(toStart, lo, middle);
    } while (width > tolerance);
    tLeft = trammel_detail::Lane<0>(middle);
    tRight = trammel_detail::Lane<1>(middle);
}

} // namespace

double CBezier::FindTValue(TPoint<double> const& pt, double tolerance, double t0, double t1) const {
    double bestT = 0.5;
    double bestDistance = std::numeric_limits<double>::max();
    double const distance0 = Distance(TPt(t0), pt);
    double const distance1 = Distance(TPt(t1), pt);
    CBezier left;
    CBezier right;
    Halve(*this, left, right);
    double tLeft = 0.0;
    double tRight = 0.0;
    if (t0 == 0.0 && t1 == 1.0 && SideFilter::Serves(*this, pt, tolerance)) {
        BisectHalves(*this, left, right, pt, tolerance, tLeft, tRight);
    } else {
        if (0.5 > t0) {
            tLeft = left.FindDividedTValue(pt, tolerance, 2.0 * t0, std::min(1.0, 2.0 * t1));
        }
        if (t1 > 0.5) {
            tRight = right.FindDividedTValue(pt, tolerance, std::max(0.0, 2.0 * t0 - 1.0),
                                             2.0 * t1 - 1.0);
        }
    }
    if (0.5 > t0) {
        bestT = tLeft / 2.0;
        bestDistance = Distance(TPt(bestT), pt);
    }
    if (t1 > 0.5) {
        double const distance = Distance(right.TPt(tRight), pt);
        if (bestDistance > distance) {
            bestDistance = distance;
            bestT = tRight / 2.0 + 0.5;
        }
    }
    if (bestDistance >= distance0) {
        return t0;
    }
    if (bestDistance >= distance1) {
        return t1;
    }
    return bestT;
}

double CBezier::FindDividedTValue(TPoint<double> const& pt, double tolerance, double lo,
                                  double hi) {
    CBezier current(*this);
    double middle;
    bool stuck;
    do {
        middle = (lo + hi) / 2.0;
        // A middle that is one of the bounds halves nothing: all further middles would be the same.
        stuck = middle == lo || middle == hi;
        CBezier left;
        CBezier right;
        Halve(current, left, right);
        if (TowardStart(current, pt, tolerance)) {
            current = left;
            hi = middle;
        } else {
            current = right;
            lo = middle;
        }
    } while (hi - lo > tolerance && !stuck);
    return middle;
}
