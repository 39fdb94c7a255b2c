// SPDX-License-Identifier: MIT
//
// Arc length by Gauss-Legendre quadrature of the speed, with an error bound known beforehand.
//
// A cubic's derivative, read as a complex number, is a quadratic z(t). The speed |z(t)| is the root
// of z(t) times its conjugate polynomial, so it is analytic but for the two zeros of z and their
// conjugates: one complex square root tells where the integrand can be hard, whatever the curve.
//
// On a piece of the curve, mapped to -1 <= w <= 1, let E be the largest ellipse with foci -1 and 1
// that has no zero inside. If a is its half-axis along the reals, 1/q = (a + sqrt(a² - 1))² and M
// the maximum of the speed on E, then the coefficients of the speed's Chebyshev series are at most
// 2 M q^(k/2) [Bernstein; Trefethen, theorem 8.1]. The formula with n nodes is exact up to degree
// 2n - 1, odd terms vanish by symmetry, and an even term of degree k >= 4 is off by at most
// 2 + 2/(k² - 1) <= 32/15. Summed up, the error is at most
//
//     (64/15) M q^n / (1 - q)            [Trefethen, theorem 19.3]
//
// A zero lies at w when (|w - 1| + |w + 1|)/2 = a, and those are its distances from the piece's
// ends in units of half the piece, so a takes two square roots for each zero. The number of nodes
// is chosen by the bound; where 32 do not suffice, the piece is divided beside the zero that is
// nearest. Pieces at cusps become small soon, by a factor of 5, and their length by one of 25.

#include "AccurateCurve.h"
#include "AccurateCurve_p.h"

#include "CBSpline.h"
#include "CBezier.h"
#include "CPath.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace trammel {

namespace {

using trammel_detail::Dot;
using trammel_detail::Pt;
using trammel_detail::ScaledPoints;
using trammel_detail::Square;
using trammel_detail::Taxicab;

/// Half of the nodes (those above 0) of the Gauss-Legendre formula with 2·Half nodes, and their
/// weights.
template <std::size_t Half> struct GaussFormula {
    std::array<double, Half> nodes;
    std::array<double, Half> weights;
};

constexpr GaussFormula<2> kGauss4 = {{0.33998104358485626, 0.8611363115940526},
                                     {0.6521451548625461, 0.34785484513745385}};
constexpr GaussFormula<4> kGauss8 = {
    {0.1834346424956498, 0.525532409916329, 0.7966664774136267, 0.9602898564975363},
    {0.362683783378362, 0.31370664587788727, 0.22238103445337448, 0.10122853629037626}};
constexpr GaussFormula<6> kGauss12 = {{0.1252334085114689, 0.3678314989981802, 0.5873179542866175,
                                       0.7699026741943047, 0.9041172563704749, 0.9815606342467192},
                                      {0.24914704581340277, 0.2334925365383548, 0.20316742672306592,
                                       0.16007832854334622, 0.10693932599531843,
                                       0.04717533638651183}};
constexpr GaussFormula<8> kGauss16 = {
    {0.09501250983763744, 0.2816035507792589, 0.45801677765722737, 0.6178762444026438,
     0.755404408355003, 0.8656312023878318, 0.9445750230732326, 0.9894009349916499},
    {0.1894506104550685, 0.18260341504492358, 0.16915651939500254, 0.14959598881657674,
     0.12462897125553388, 0.09515851168249279, 0.062253523938647894, 0.027152459411754096}};
constexpr GaussFormula<12> kGauss24 = {
    {0.06405689286260563, 0.1911188674736163, 0.3150426796961634, 0.4337935076260451,
     0.5454214713888396, 0.6480936519369755, 0.7401241915785544, 0.820001985973903,
     0.8864155270044011, 0.9382745520027328, 0.9747285559713095, 0.9951872199970213},
    {0.12793819534675216, 0.1258374563468283, 0.12167047292780339, 0.1155056680537256,
     0.10744427011596563, 0.09761865210411388, 0.08619016153195327, 0.0733464814110803,
     0.05929858491543678, 0.04427743881741981, 0.028531388628933663, 0.0123412297999872}};
constexpr GaussFormula<16> kGauss32 = {
    {0.04830766568773832, 0.1444719615827965, 0.23928736225213706, 0.33186860228212767,
     0.42135127613063533, 0.5068999089322294, 0.5877157572407623, 0.6630442669302152,
     0.7321821187402897, 0.7944837959679424, 0.84936761373257, 0.8963211557660521,
     0.9349060759377397, 0.9647622555875064, 0.9856115115452684, 0.9972638618494816},
    {0.0965400885147278, 0.09563872007927486, 0.09384439908080457, 0.09117387869576389,
     0.08765209300440381, 0.08331192422694675, 0.07819389578707031, 0.0723457941088485,
     0.06582222277636185, 0.058684093478535544, 0.050998059262376175, 0.04283589802222668,
     0.03427386291302143, 0.02539206530926206, 0.01627439473090567, 0.007018610009470096}};

/// No answer can be finer than this part of the control polygon's length: the rounding of some tens
/// of additions. Finer accuracies are taken as this one.
constexpr double kRounding = 0x1p-50;
/// The largest half-axis that the bound asks for. Larger ellipses gain nothing: here 8 nodes are
/// right to the last bit.
constexpr double kLargestAxis = 64.0;
/// The part of a piece that a division leaves at least on either side.
constexpr double kLeastPart = 0.2;
/// Pieces waiting for their turn: by then a piece has length 0.
constexpr std::size_t kMostPending = 64;

// Complex numbers are points, h the real part.

Pt Product(Pt const& a, Pt const& b) { return Pt(a.h * b.h - a.v * b.v, a.h * b.v + a.v * b.h); }
/// NaN when `b` is 0.
Pt Quotient(Pt const& a, Pt const& b) {
    double const inverse = 1.0 / Square(b);
    return Pt((a.h * b.h + a.v * b.v) * inverse, (a.v * b.h - a.h * b.v) * inverse);
}
Pt SquareRoot(Pt const& a) {
    double const x = std::sqrt((std::sqrt(Square(a)) + std::abs(a.h)) * 0.5);
    if (x == 0.0) {
        return Pt();
    }
    double const y = a.v / (2.0 * x);
    return a.h >= 0.0 ? Pt(x, y) : Pt(std::abs(y), std::copysign(x, a.v));
}

/// The speed of a curve, and its integral. Everything is relative to three times the unit.
class Speed {
public:
    /// The derivative with Bezier coefficients 3·d0, 3·d1, 3·d2.
    Speed(Pt const& d0, Pt const& d1, Pt const& d2)
        : mA(d0), mB(d1 - d0), mC((d0 - d1) + (d2 - d1)), mD2(d2),
          mSize(Taxicab(d0) + Taxicab(d1) + Taxicab(d2)) {
        // The zeros of a + 2bt + ct²; the one of greater magnitude from c, the other one from a, so
        // that neither loses digits. Where there is none, its coordinates become NaN or huge.
        Pt const root = SquareRoot(Product(mB, mB) - Product(mA, mC));
        Pt const s = Dot(mB, root) >= 0.0 ? -(mB + root) : root - mB;
        mZeros[0] = Quotient(s, mC);
        mZeros[1] = Quotient(mA, s);
    }
    /// A bound on the curve's length, at most sqrt(2) times the control polygon's.
    double Size() const { return mSize; }
    /// The derivative's length at `t`.
    double At(double t) const {
        return 3.0 * std::sqrt(Square(t < 0.5 ? Value(t) : ValueFromEnd(1.0 - t)));
    }
    /// The length between two parameters from 0 to 1, t0 <= t1, right within `accuracy` and the
    /// rounding, 2^-50 of the size.
    double Length(double t0, double t1, double accuracy) const;

private:
    Pt Value(double t) const { return mA + (mB * 2.0 + mC * t) * t; }
    /// The same seen from the end, so that a curve that stops there really does.
    Pt ValueFromEnd(double s) const { return mD2 - (mB * 2.0 + mC * 2.0 - mC * s) * s; }

    Pt mA;
    Pt mB;
    Pt mC;
    Pt mD2;
    std::array<Pt, 2> mZeros;
    double mSize;
};

/// The quadratic A + Bw + Cw² on a piece, -1 <= w <= 1.
struct PieceSpeed {
    Pt a;
    Pt b;
    Pt c;

    /// The integral of its magnitude over the piece. Both coordinates are evaluated, not their
    /// squares' quartic, which would lose half of the digits beside a cusp.
    template <std::size_t Half> double Integral(GaussFormula<Half> const& formula) const {
        std::array<double, 2> sums = {0.0, 0.0};
        for (std::size_t i = 0; i < Half; i += 2) {
            for (std::size_t lane = 0; lane < 2; ++lane) {
                double const x = formula.nodes[i + lane];
                double const evenH = a.h + c.h * (x * x);
                double const evenV = a.v + c.v * (x * x);
                double const oddH = b.h * x;
                double const oddV = b.v * x;
                double const ph = evenH + oddH;
                double const pv = evenV + oddV;
                double const mh = evenH - oddH;
                double const mv = evenV - oddV;
                sums[lane] += formula.weights[i + lane] *
                              (std::sqrt(ph * ph + pv * pv) + std::sqrt(mh * mh + mv * mv));
            }
        }
        return sums[0] + sums[1];
    }
};

double Speed::Length(double t0, double t1, double accuracy) const {
    // What the pieces to come may still be off by. Each takes what its own bound says, at most a
    // quarter of what is left (the last piece all of it), so that the sum never exceeds the whole.
    double const least = kRounding * mSize;
    double left = accuracy > least ? accuracy : least; // a NaN gives the least
    std::array<double, kMostPending> ends;
    std::size_t pending = 0;
    double sum = 0.0;
    double from = t0;
    double to = t1;
    for (;;) {
        double const width = to - from;
        double const half = 0.5 * width;
        double const middle = from + half;
        PieceSpeed const piece = {middle < 0.5 ? Value(middle) : ValueFromEnd(1.0 - middle),
                                  (mB + mC * middle) * width, mC * (half * half)};

        double axis = kLargestAxis * width;
        double zero = middle;
        for (Pt const& z : mZeros) {
            double const v = z.v * z.v;
            double const a = z.h - from;
            double const b = z.h - to;
            double const sum2 = std::sqrt(a * a + v) + std::sqrt(b * b + v);
            if (sum2 < axis) { // false for a zero that does not exist
                axis = sum2;
                zero = z.h;
            }
        }
        axis = std::max(axis / width, 1.0);
        double const inverse = axis - std::sqrt(axis * axis - 1.0);
        double const q = inverse * inverse;

        // |A| + |B|a + |C|a² bounds the speed on the ellipse; by Cauchy and Schwarz so does the
        // root, at the price of a factor of at most sqrt(3). The integral is 3·half·(...).
        double const axis2 = axis * axis;
        double const bound = 3.0 * half * (64.0 / 15.0) *
                             std::sqrt(3.0 * (Square(piece.a) +
                                              axis2 * (Square(piece.b) + axis2 * Square(piece.c))));
        double const allowed = pending == 0 ? left : 0.25 * left;
        double const share = allowed * (1.0 - q);
        double const q2 = q * q;
        double const q4 = q2 * q2;
        double const q8 = q4 * q4;
        double const q16 = q8 * q8;
        double used = 0.0;
        double integral = 0.0;
        if (bound * q8 <= share) {
            if (bound * q4 <= share) {
                used = bound * q4;
                integral = piece.Integral(kGauss4);
            } else {
                used = bound * q8;
                integral = piece.Integral(kGauss8);
            }
        } else if (bound * q16 <= share) {
            if (bound * q8 * q4 <= share) {
                used = bound * q8 * q4;
                integral = piece.Integral(kGauss12);
            } else {
                used = bound * q16;
                integral = piece.Integral(kGauss16);
            }
        } else if (bound * q16 * q16 <= share) {
            if (bound * q16 * q8 <= share) {
                used = bound * q16 * q8;
                integral = piece.Integral(kGauss24);
            } else {
                used = bound * q16 * q16;
                integral = piece.Integral(kGauss32);
            }
        } else {
            // Both the length and its approximation lie between 0 and this, so the piece may be as
            // short as that, wherever the zeros are.
            double const longest =
                6.0 * half * (Taxicab(piece.a) + Taxicab(piece.b) + Taxicab(piece.c));
            double const split =
                std::min(std::max(zero, from + kLeastPart * width), to - kLeastPart * width);
            if (longest > allowed && pending < kMostPending && split > from && split < to) {
                ends[pending++] = to;
                to = split;
                continue;
            }
            integral = piece.Integral(kGauss8);
            left -= std::min(longest, 0.5 * left);
        }
        if (used > 0.0) {
            left -= std::min(used / (1.0 - q), 0.5 * left);
        }
        sum += 3.0 * half * integral;
        if (pending == 0) {
            return sum;
        }
        from = to;
        to = ends[--pending];
    }
}

Speed SpeedOf(ScaledPoints<4> const& p) { return Speed(p[1] - p[0], p[2] - p[1], p[3] - p[2]); }

/// The parameter at which `target` of the length `total` is reached, 0 < target < total, so that
/// the length up to there is `target` within `accuracy`.
double SolveLength(Speed const& speed, double target, double total, double accuracy) {
    double const least = 2.0 * kRounding * speed.Size();
    double const enough = std::max(0.5 * accuracy, least);
    double step =
        0.125 * accuracy; // of each integral; halved each time, so that the sum is bounded

    double lo = 0.0;
    double hi = 1.0;
    double lengthLo = 0.0;
    double lengthHi = total;
    // First guess: the cubic that, as a function of the length, has the right values and slopes at
    // the ends; slopes limited so that it is monotone [Fritsch and Carlson].
    double const u = target / total;
    double const slope0 = std::min(total / speed.At(0.0), 3.0);
    double const slope1 = std::min(total / speed.At(1.0), 3.0);
    double t = u * (slope0 + u * (3.0 - 2.0 * slope0 - slope1 + u * (slope0 + slope1 - 2.0)));
    // Newton's steps, while they stay in the bracket and halve it in three; bisection otherwise.
    double widthBefore = 2.0;
    for (int i = 1; lo < hi; ++i) {
        if (!(t > lo && t < hi) || (i % 3 == 0 && hi - lo > 0.5 * widthBefore)) {
            t = lo + 0.5 * (hi - lo);
            if (t == lo || t == hi) {
                break;
            }
        }
        if (i % 3 == 0) {
            widthBefore = hi - lo;
        }
        double const length = t - lo < hi - t ? lengthLo + speed.Length(lo, t, step)
                                              : lengthHi - speed.Length(t, hi, step);
        step *= 0.5;
        double const off = length - target;
        if (std::abs(off) <= enough) {
            return t;
        }
        (off < 0.0 ? lo : hi) = t;
        (off < 0.0 ? lengthLo : lengthHi) = length;
        t -= off / speed.At(t);
    }
    return target - lengthLo <= lengthHi - target ? lo : hi;
}

/// `wanted(total)` tells the length looked for, given the whole.
template <class Wanted>
double ParameterAt(CBezier const& curve, double accuracy, Wanted const& wanted) {
    ScaledPoints<4> const p({curve.P0, curve.P1, curve.P2, curve.P3});
    if (!p.Finite()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    Speed const speed = SpeedOf(p);
    double const least = kRounding * speed.Size();
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
    return std::isnan(target) ? target : SolveLength(speed, target, total, within);
}

/// Adds up the segments of a path.
struct LengthSum {
    double accuracy;
    double sum = 0.0;
    bool finite = true;

    void Move(Pt const&) {}
    void Line(Pt const& from, Pt const& to) {
        for (double const x : {from.h, from.v, to.h, to.v}) {
            finite = finite && std::isfinite(x);
        }
        sum += (to - from).Hypotenuse();
    }
    void Close(Pt const& from, Pt const& start) { Line(from, start); }
    void Curve(CBezier const& curve) { sum += ArcLength(curve, accuracy); } // a NaN stays
};

} // namespace

double ArcLength(CBezier const& curve, double accuracy) {
    return ArcLength(curve, 0.0, 1.0, accuracy);
}

double ArcLength(CBezier const& curve, double t0, double t1, double accuracy) {
    ScaledPoints<4> const p({curve.P0, curve.P1, curve.P2, curve.P3});
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
    ScaledPoints<3> const p({curve.P0, curve.P1, curve.P2});
    if (!p.Finite()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    // The derivative 2·((1 - t)·d0 + t·d1) as a quadratic, up to the factor of 2/3.
    Pt const d0 = p[1] - p[0];
    Pt const d1 = p[2] - p[1];
    Speed const speed(d0, (d0 + d1) * 0.5, d1);
    return p.Up(2.0 / 3.0 * speed.Length(0.0, 1.0, 1.5 * p.Down(accuracy)));
}

double ArcLength(CPath const& path, double accuracy) {
    auto const curves = std::count(path.mCtls.begin(), path.mCtls.end(), char{kPathCurve});
    LengthSum lengths = {accuracy / static_cast<double>(std::max<std::ptrdiff_t>(curves, 1))};
    trammel_detail::ForEachSegment(path, lengths);
    return lengths.finite ? lengths.sum : std::numeric_limits<double>::quiet_NaN();
}

double ParameterAtLength(CBezier const& curve, double length, double accuracy) {
    return ParameterAt(curve, accuracy, [length](ScaledPoints<4> const& p, double /*total*/) {
        return p.Down(length);
    });
}

double ParameterAtFraction(CBezier const& curve, double fraction, double accuracy) {
    return ParameterAt(curve, accuracy, [fraction](ScaledPoints<4> const&, double total) {
        // A curve without length is at its start up to fraction 0, else at its end.
        return fraction <= 0.0 ? 0.0 : fraction >= 1.0 ? total : fraction * total;
    });
}

} // namespace trammel
