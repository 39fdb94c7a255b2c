// SPDX-License-Identifier: MIT

// The arc length is the integral of the speed. Gauss-Legendre quadrature takes it, with a bound on
// the error that is known beforehand.
//
// A cubic's derivative, read as a complex number, is a quadratic z(t). The speed |z(t)| is the root
// of z(t) times its conjugate polynomial. So it is analytic everywhere except at the two zeros of z
// and their conjugates. These four places tell where the integral can be hard, for every curve.
//
// A piece of the curve is mapped to -1 <= w <= 1, where z(w) = A + Bw + Cw². Take an ellipse with
// foci -1 and 1 that has no zero inside. Let a be its half-axis along the reals, and let
// q = (a - sqrt(a² - 1))². With w = (u + 1/u)/2, |u| > 1, the speed's Chebyshev series has the
// coefficients
//
//     a_k = 1/(pi i) times the integral of speed(u) / u^(k + 1) du around the circle |u| = 1
//
// [Trefethen, chapter 3]. The circle can be widened without end, except for a cut from each of the
// four zeros along its ray to infinity. The speed counts with opposite signs on the two sides of a
// cut. So |a_k| is at most 2/pi times the sum over the cuts of the integral of
// |speed| / r^(k + 1) dr, r = |u|. On the cut from a zero w1 with |u| = r1, where r = r1·e^x and
// b = (r1 + 1/r1)/2,
//
//     |w| and |w1|        are at most b·e^x, the ellipse's half-axis for r,
//     |z| or |conjugate|  = |w - w1| |B + C(w + w1)| <= |w - w1| (|B| + 2|C|b) e^x,
//     |w - w1|            <= (r - r1)(1 + 1/(r·r1))/2 <= b(e^x - 1) <= b·x·e^x,
//     the other factor    <= (|A| + |B|b + |C|b²) e^(2x).
//
// The speed is the root of the product of both, and dr = r dx. The formula with n nodes is exact up
// to degree 2n - 1, and odd terms vanish by symmetry. An even term of degree k >= 8 is off by at
// most 2 + 2/(k² - 1) <= 128/63 [Trefethen, theorem 19.3]. The sum of 1/r^(k + 1) over the even k
// from 2n on is r^(-2n - 1)/(1 - 1/r²). There remains the integral of sqrt(x) e^(2x - 2nx) dx,
// which is sqrt(pi)/2 · (2n - 2)^(-3/2). The bound for a cut falls as b grows, and b is at least a
// on all four cuts. So the error is at most
//
//     512/63 / sqrt(pi) / (2n - 2)^(3/2) · S · q^n / (1 - q),
//     S = sqrt((|A| + |B|a + |C|a²) a (|B| + 2|C|a)),
//
// This bound is some ten times the error of random curves, and four times the worst error found.
// The length of a piece is 3 times half its width times the integral over w, and so is the error.
//
// The proof needs magnitudes |A|, |B| and |C| that obey the triangle inequality and are no less
// than the true ones. So |h| + |v| serves as magnitude.
//
// S is at most a² times its value for a = 1. For a piece with the part p of the whole width, S is
// at most sqrt(p) times its value for the whole. So the error of a piece is at most p^(3/2) times
//
//     3/2 · S(whole, a = 1) · 512/63 / sqrt(pi) / (2n - 2)^(3/2) · a² · q^n / (1 - q).
//
// Each piece gets a share of the accuracy: p^(3/2) for a piece that is measured like this, and p
// for a piece that is measured in the other way below. However the curve is divided, the shares
// never add up to more than 1. So a piece may take any formula for which the factor of p^(3/2) is
// within the accuracy. This holds where no zero is inside of an ellipse that depends only on n and
// on the ratio of S to the accuracy. A table has these ellipses, by n and by powers of two of the
// ratio's square.
//
// Where no formula is right for the whole curve, the curve is divided at the real parts of the
// zeros nearby. A piece that ends beside a zero needs about the square root of the number of nodes
// that a piece around the zero needs. So hardly any piece is divided further. It is enough to know
// the zeros to half of the digits.
//
// A zero on the reals coincides with its conjugate, and the speed is |w - w1| times an analytic
// function. So this zero has no cut unless it is inside of the piece. Drawn curves often have the
// first two control points at one place, or the last two. Their zero is exactly at that end, and
// every piece is measured as if it did not exist.
//
// The other way serves accuracies finer than the table, and the last bits beside a cusp. It goes
// from piece to piece and takes the ellipse through the nearest zero. For a zero at w the half-axis
// is a = (|w - 1| + |w + 1|)/2. Here |w - 1| and |w + 1| are the distances of the zero from the
// piece's ends, in units of half the piece. Where the formula of most nodes does not suffice, the
// piece is divided beside that zero. Each division at a cusp makes the piece shorter by a factor of
// 5 in its parameter and by a factor of 25 in its length.

#include "AccurateCurve.h"
#include "AccurateCurve_p.h"

#include "CBSpline.h"
#include "CBezier.h"
#include "CPath.h"
#include "PathWalk_p.h"
#include "PointMath_p.h"
#include "Speed_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace trammel {

namespace {

using trammel_detail::IsFinite;
using trammel_detail::kLengthRounding;
using trammel_detail::Measured;
using trammel_detail::Pt;
using trammel_detail::ScaledPoints;
using trammel_detail::SolveLength;
using trammel_detail::Speed;
using trammel_detail::SpeedOf;

/// Returns the whole curve's length; NaN where the points must be scaled first or are not finite.
double LengthUnscaled(CBezier const& curve, double accuracy) {
    return trammel_detail::CurveLength(&curve.P0.v, accuracy, trammel_detail::kGaussTable.entries);
}

/// Returns the parameter at which the length wanted(p, total) is reached. `p` are the scaled points
/// and `total` is the whole length.
template <class Wanted>
double ParameterAt(CBezier const& curve, double accuracy, Wanted const& wanted) {
    ScaledPoints<4> const p = Measured(curve);
    if (!p.Finite()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    Speed speed = SpeedOf(p);
    double const least = kLengthRounding * speed.Size();
    double const asked = p.Down(accuracy);
    double const within = asked > least ? asked : least;
    double const total = speed.Length(0.0, 1.0, 0.125 * within);
    double const target = wanted(p, total);
    if (target <= 0.0) {
        return 0.0;
    }
    if (target >= total) {
        return 1.0;
    }
    return std::isnan(target) ? target : SolveLength(speed, 0.0, 1.0, target, total, within);
}

} // namespace

double ArcLength(CBezier const& curve, double accuracy) {
    // The usual case takes no copies of the points.
    double const length = LengthUnscaled(curve, accuracy);
    if (!std::isnan(length)) {
        return length;
    }
    return ArcLength(curve, 0.0, 1.0, accuracy);
}

double ArcLength(CBezier const& curve, double t0, double t1, double accuracy) {
    ScaledPoints<4> const p = Measured(curve);
    if (!p.Finite() || std::isnan(t0) || std::isnan(t1)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    double const from = std::min(std::max(t0, 0.0), 1.0);
    double const to = std::min(std::max(t1, 0.0), 1.0);
    if (from == to) {
        return 0.0;
    }
    double const within = p.Down(accuracy);
    return p.Up(from < to ? SpeedOf(p).Length(from, to, within)
                          : -SpeedOf(p).Length(to, from, within));
}

double ArcLength(CBSpline const& curve, double accuracy) {
    std::array<Pt, 3> points = {curve.P0, curve.P1, curve.P2};
    trammel_detail::DropCommon(points);
    ScaledPoints<3> const p(points);
    if (!p.Finite()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    // The derivative 2·((1 - t)·d0 + t·d1) is written as a quadratic, up to the factor of 2/3.
    Pt const d0 = p[1] - p[0];
    Pt const d1 = p[2] - p[1];
    Speed speed(d0, (d0 + d1) * 0.5, d1);
    return p.Up(2.0 / 3.0 * speed.Length(0.0, 1.0, 1.5 * p.Down(accuracy)));
}

double ArcLength(CPath const& path, double accuracy) {
    auto const curves = std::count(path.mCtls.begin(), path.mCtls.end(), char{kPathCurve});
    double const each = accuracy / static_cast<double>(std::max<std::ptrdiff_t>(curves, 1));
    double sum = 0.0;
    for (trammel_detail::SegmentCursor segment(path); segment.Next();) {
        if (segment.IsCurve()) {
            sum += ArcLength(segment.Curve(), each); // a NaN stays
        } else {
            TLine<double> const line = segment.Line();
            if (!IsFinite(line.mStart) || !IsFinite(line.mEnd)) {
                return std::numeric_limits<double>::quiet_NaN();
            }
            sum += trammel_detail::Distance(line.mStart, line.mEnd);
        }
    }
    return sum;
}

double ParameterAtLength(CBezier const& curve, double length, double accuracy) {
    return ParameterAt(curve, accuracy, [length](ScaledPoints<4> const& p, double /*total*/) {
        return p.Down(length);
    });
}

double ParameterAtFraction(CBezier const& curve, double fraction, double accuracy) {
    return ParameterAt(curve, accuracy, [fraction](ScaledPoints<4> const&, double total) {
        // A fraction outside of 0 to 1 asks for the nearer end. A curve without length is at its
        // start for every fraction.
        return fraction <= 0.0 ? 0.0 : fraction >= 1.0 ? total : fraction * total;
    });
}

} // namespace trammel
