// SPDX-License-Identifier: MIT

// The integral of a curve's speed, written for either vector of four doubles (Vector_p.h).
// queries/AccurateLength.cpp tells the method. Each of two files compiles it for one vector, and
// so do the two for places, by way of PlaceKernelForms_p.h. Not installed.

#ifndef TRAMMEL_LENGTHKERNELFORMS_P_H
#define TRAMMEL_LENGTHKERNELFORMS_P_H

#include "LengthKernels_p.h"
#include "Vector_p.h"

#include <cstdint>

namespace trammel_detail {

/// A third of a cubic's derivative on a piece of its parameters, as A + Bw + Cw², -1 <= w <= 1.
/// Every vector has one number in all lanes.
template <class Vector> struct PieceSpeed {
    Vector middle;
    Vector half; ///< half of the piece's width
    Vector aH, aV, bH, bV, cH, cV;

    [[gnu::always_inline]] PieceSpeed(SpeedCurve const& curve, double from, double to) {
        double const width = to - from;
        Vector const widths = Vector(width);
        middle = Vector(from + 0.5 * width);
        half = Vector(0.5 * width);
        Vector const square = half * half;
        Vector const riseH = Vector(curve.cH) * middle + Vector(curve.bH);
        Vector const riseV = Vector(curve.cV) * middle + Vector(curve.bV);
        aH = Vector(curve.aH) + (Vector(curve.bH) + riseH) * middle;
        aV = Vector(curve.aV) + (Vector(curve.bV) + riseV) * middle;
        bH = riseH * widths;
        bV = riseV * widths;
        cH = Vector(curve.cH) * square;
        cV = Vector(curve.cV) * square;
    }
    // Upper bounds on the coefficients' magnitudes.
    [[gnu::always_inline]] Vector SizeA() const { return Abs(aH) + Abs(aV); }
    [[gnu::always_inline]] Vector SizeB() const { return Abs(bH) + Abs(bV); }
    [[gnu::always_inline]] Vector SizeC() const { return Abs(cH) + Abs(cV); }
    /// Returns the integral by the formula with 4·steps nodes, which begins at `formula`.
    [[gnu::always_inline]] double Integral(double const* formula, long steps) const {
        Vector sum = Vector(0.0);
        for (long i = 0; i < steps; ++i, formula += 8) {
            Vector const w = Vector::Load(formula);
            Vector const h = aH + w * (bH + w * cH);
            Vector const v = aV + w * (bV + w * cV);
            sum = sum + Vector::Load(formula + 4) * Sqrt(h * h + v * v);
        }
        return 3.0 * Lane<0>(half) * Sum(sum);
    }
};

// ------------------------------------------------------------------------------------------------
// The length by the zeros, piece by piece

/// The largest half-axis that the bound asks for. Larger ellipses gain nothing: with this one, the
/// fewest nodes are already right to 2^-50.
inline constexpr double kLargestAxis = 64.0;
/// A division leaves at least this part of a piece on either side.
inline constexpr double kLeastPart = 0.2;
/// At most so many pieces wait for their turn. Each division at a cusp makes the length of a piece
/// 25 times smaller, and 25^-64 < 2^-297 is nothing beside the rounding.
inline constexpr int kMostPending = 64;
/// The bound's factor 512/63 / sqrt(pi) / (2n - 2)^(3/2) for the formulas of n = 4, 8, 12, ...
/// nodes, rounded up.
inline constexpr double kGaussFactors[kGaussFormulas] = {
    0.311981,  0.0875312, 0.0444346,  0.0279044,  0.0195740,
    0.0146967, 0.0115549, 0.00939221, 0.00782904, 0.00665601};

/// Returns the length from `t0` to `t1` within `accuracy`.
template <class Vector>
[[gnu::noinline]] double LengthByZeros(SpeedCurve& curve, double t0, double t1, double accuracy,
                                       double const (&table)[kGaussEntries]) {
    if (!curve.zerosKnown) {
        FindZeros(curve);
    }
    // Each zero stands in two lanes, for its distances from both ends of a piece.
    Vector const zerosH = LowHalves(Vector(curve.zeroH[0]), Vector(curve.zeroH[1]));
    Vector const zerosV = LowHalves(Vector(curve.zeroV[0]), Vector(curve.zeroV[1]));
    Vector const zerosV2 = zerosV * zerosV;
    // `left` is the error that the pieces to come may still have. Each piece takes as much as its
    // own bound says, and at most a quarter of what is left; the last piece may take all of it. So
    // the sum of the errors never exceeds the accuracy.
    double left = accuracy;
    double ends[kMostPending];
    int pending = 0;
    double sum = 0.0;
    double from = t0;
    double to = t1;
    for (;;) {
        PieceSpeed<Vector> const piece(curve, from, to);
        double const width = to - from;
        double const half = Lane<0>(piece.half);
        double const sizeA = piece.SizeA()[0];
        double const sizeB = piece.SizeB()[0];
        double const sizeC = piece.SizeC()[0];
        Vector const alongH = zerosH - FirstsTwice(Vector(from), Vector(to));
        Vector const distances = Sqrt(alongH * alongH + zerosV2);
        // The comparisons below are false for a zero that does not exist.
        double const sum0 = Lane<0>(distances) + Lane<1>(distances);
        double const sum1 = Lane<2>(distances) + Lane<3>(distances);
        double const nearest = Min(sum1, Min(sum0, kLargestAxis * width));
        double const axis = Max(nearest / width, 1.0);
        double const axis2 = axis * axis;
        double const inverse = axis - __builtin_sqrt(axis2 - 1.0);
        double const q = inverse * inverse;
        double const bound = 3.0 * half *
                             __builtin_sqrt((sizeA + (sizeB * axis + sizeC * axis2)) *
                                            (sizeB * axis + 2.0 * (sizeC * axis2)));
        double const allowed = pending == 0 ? left : 0.25 * left;
        double const share = allowed * (1.0 - q);
        double const q2 = q * q;
        double const q4 = q2 * q2;
        double power = q4;
        int steps = 1;
        while (steps <= kGaussFormulas && !(power * (bound * kGaussFactors[steps - 1]) <= share)) {
            power *= q4;
            ++steps;
        }
        if (steps > kGaussFormulas) {
            // Both the length and its approximation lie between 0 and `longest`. So a piece for
            // which that is allowed need not be divided, wherever the zeros are.
            double const zero = sum0 == nearest   ? curve.zeroH[0]
                                : sum1 == nearest ? curve.zeroH[1]
                                                  : from + half;
            double const longest = 6.0 * half * (sizeA + sizeB + sizeC);
            double const split = Min(Max(zero, from + kLeastPart * width), to - kLeastPart * width);
            if (longest > allowed && pending < kMostPending && split > from && split < to) {
                ends[pending++] = to;
                to = split;
                continue;
            }
            steps = 2;
            left -= Min(longest, 0.5 * left);
        } else if (pending > 0) {
            double const used = power * (bound * kGaussFactors[steps - 1]);
            left -= Min(used / (1.0 - q), 0.5 * left);
        }
        sum += piece.Integral(table + GaussStart(steps), steps);
        if (pending == 0) {
            return sum;
        }
        from = to;
        to = ends[--pending];
    }
}

// ------------------------------------------------------------------------------------------------
// The length by pieces from zero to zero

/// The formulas for these pieces: a fourth of their numbers of nodes, and their places in the
/// table.
inline constexpr int kChoices = 4;
inline constexpr int kChoiceSteps[kChoices] = {2, 4, 7, 10};
inline constexpr long kChoiceStarts[kChoices] = {GaussStart(2), GaussStart(4), GaussStart(7),
                                                 GaussStart(10)};
/// They suffice when the square of the bound divided by the accuracy is less than 2 to this power.
inline constexpr int kRatios = 72;

/// For each formula the ellipse that must be free of zeros: a zero (x, y) is outside when
/// x²·across + y²·along >= 1. Row e is for squares of the bound divided by the accuracy up to 2^e.
struct LeastEllipses {
    struct Row {
        double across[kChoices];
        double along[kChoices];
    };
    Row rows[kRatios] = {};

    constexpr LeastEllipses() {
        double least = 1.0; // 2^-e
        for (Row& row : rows) {
            row = RowFor(least);
            least *= 0.5;
        }
    }
    /// Returns the row for accuracies with this square of the accuracy divided by the bound.
    static constexpr Row RowFor(double square) {
        Row row = {};
        for (int i = 0; i < kChoices; ++i) {
            double const axis = HalfAxis(kChoiceSteps[i], square);
            row.across[i] = 1.0 / (axis * axis);
            row.along[i] = 1.0 / (axis * axis - 1.0);
        }
        return row;
    }
    /// Returns the half-axis of the smallest ellipse that suffices for 4·steps nodes, rounded up.
    /// `square` is the square of the accuracy divided by the bound. The ellipse of the radius
    /// `greatest` must suffice.
    static constexpr double HalfAxis(int steps, double square, double greatest = kGreatestRadius) {
        double less = kLeastRadius;
        double enough = kLeastRadius;
        if (!Suffices(steps, less, square)) {
            enough = greatest;
            for (int i = 0; i < 24; ++i) {
                double const middle = 0.5 * (less + enough);
                (Suffices(steps, middle, square) ? enough : less) = middle;
            }
        }
        return 0.5 * (enough + 1.0 / enough) * (1.0 + 1e-9);
    }

private:
    // No ellipse is smaller than the ellipse of the least radius. The ellipse of the greatest
    // radius suffices for every row.
    static constexpr double kLeastRadius = 1.05;
    static constexpr double kGreatestRadius = 16.0;

    /// True when the ellipse of the radius suffices, with `square` the square of the accuracy
    /// divided by the bound.
    static constexpr bool Suffices(int steps, double radius, double square) {
        double const inverse = 1.0 / radius;
        double const axis = 0.5 * (radius + inverse);
        double const q = inverse * inverse;
        double error = kGaussFactors[steps - 1] * (axis * axis) / (1.0 - q);
        for (int i = 0; i < steps; ++i) {
            error *= (q * q) * (q * q);
        }
        return error * error <= square;
    }
};
inline constexpr LeastEllipses kLeastEllipses;

/// The other zero of a curve that rests at an end; NaN or infinite where there is none. The sum of
/// both zeros is -2b/c, their product a/c.
struct OtherZero {
    double h, v;

    [[gnu::always_inline]] explicit OtherZero(SpeedCurve const& z) {
        double const inverse = 1.0 / (z.cH * z.cH + z.cV * z.cV);
        double const aH = z.restsAtStart ? -2.0 * z.bH : z.aH;
        double const aV = z.restsAtStart ? -2.0 * z.bV : z.aV;
        h = (aH * z.cH + aV * z.cV) * inverse;
        v = (aV * z.cH - aH * z.cV) * inverse;
        if (z.restsAtStart && z.restsAtEnd) {
            h = __builtin_nan("");
        }
    }
};

/// Where a curve's zeros are, to kZeroError of the parameter. A zero farther than 8 away is right
/// to nearly kZeroError times its distance. Those at ends where the curve rests are put far away.
struct ZeroPlaces {
    double h0, h1; ///< twice the real parts
    double v0, v1; ///< the squares of twice the imaginary parts

    // The zeros are (-b ± s)/c, where s² = b² - ac =: d.
    [[gnu::always_inline]] explicit ZeroPlaces(SpeedCurve const& z) {
        if (__builtin_expect(static_cast<long>(z.restsAtStart || z.restsAtEnd), 0) != 0) {
            // The zero at 0 or 1 is no obstacle.
            OtherZero const other(z);
            Set(other.h, other.v, kFar, 0.0);
            DropMissing();
            return;
        }
        double const squareC = z.cH * z.cH + z.cV * z.cV;
        double const squareB = z.bH * z.bH + z.bV * z.bV;
        double const squareSize = z.size * z.size;
        // With "<=" a curve that is one point has its zeros far away, too, instead of NaNs.
        bool const small = 256.0 * squareC <= squareSize;
        if (small && squareC * squareSize < 0x1p-44 * (squareB * squareB)) {
            // The curve is nearly a quadratic: one zero is at -a/(2b), the other one far away.
            double const inverse = 0.5 / squareB;
            Set(-(z.aH * z.bH + z.aV * z.bV) * inverse, (z.aH * z.bV - z.aV * z.bH) * inverse, kFar,
                0.0);
            return;
        }
        double const dH = (z.bH * z.bH - z.bV * z.bV) - (z.aH * z.cH - z.aV * z.cV);
        double const dV = (z.bH * z.bV + z.bH * z.bV) - (z.aH * z.cV + z.aV * z.cH);
        double const magnitude = __builtin_sqrt(dH * dH + dV * dV);
        double const inverse = 1.0 / squareC;
        double const overH = z.cH * inverse; // the conjugate of 1/c
        double const overV = z.cV * inverse;
        constexpr double kRootOfHalf = 0x1.6a09e667f3bcdp-1;
        double const sign = __builtin_copysign(kRootOfHalf, dV);
        double const rootH = __builtin_sqrt(__builtin_fabs(magnitude + dH));
        double const rootV = __builtin_sqrt(__builtin_fabs(magnitude - dH));
        if (small) {
            // The greater one of -b - s and s - b, divided by c, is the farther zero. The other
            // zero is a divided by it.
            double const sH = kRootOfHalf * rootH;
            double const sV = sign * rootV;
            double const same = __builtin_copysign(1.0, z.bH * sH + z.bV * sV);
            double const qH = -(z.bH + same * sH);
            double const qV = -(z.bV + same * sV);
            double const inverseQ = 1.0 / (qH * qH + qV * qV);
            Set(qH * overH + qV * overV, qV * overH - qH * overV,
                (z.aH * qH + z.aV * qV) * inverseQ, (z.aV * qH - z.aH * qV) * inverseQ);
            DropMissing();
            return;
        }
        // The same in an order in which fewer operations wait for others.
        double const middleH = -(z.bH * overH + z.bV * overV);
        double const middleV = z.bH * overV - z.bV * overH;
        double const offH = rootH * (kRootOfHalf * overH) + rootV * (sign * overV);
        double const offV = rootV * (sign * overH) - rootH * (kRootOfHalf * overV);
        Set(middleH - offH, middleV - offV, middleH + offH, middleV + offV);
    }

private:
    static constexpr double kFar = 1e100;

    [[gnu::always_inline]] void Set(double zero0H, double zero0V, double zero1H, double zero1V) {
        h0 = zero0H + zero0H;
        h1 = zero1H + zero1H;
        v0 = 4.0 * (zero0V * zero0V);
        v1 = 4.0 * (zero1V * zero1V);
    }
    /// Puts a zero that does not exist far away.
    [[gnu::always_inline]] void DropMissing() {
        if (!(__builtin_fabs(h0) < kFar && v0 < kFar)) { // a NaN, too
            h0 = kFar;
            v0 = 0.0;
        }
        if (!(__builtin_fabs(h1) < kFar && v1 < kFar)) {
            h1 = kFar;
            v1 = 0.0;
        }
    }
};

// How far the places are off. Let u = 2^-53 and P = |b|² + |ac|.
//
// The parts of d are sums of four products. Each part is off by at most 3·u·P, so d is off by
// 2^-50.9·P. As |sqrt(x) - sqrt(y)| <= sqrt(|x - y|), s is off by the root of that,
// 2^-25.4·sqrt(P). The parts of s are roots of differences that are off by at most 4·u·P. That adds
// at most 2^-25.5·sqrt(P) for both parts. In all, s is off by 2^-24.4·sqrt(P).
//
// P is at most twice the squared size. There are four cases:
//
//   c is more than a sixteenth of the size: the zeros are off by sqrt(2)·16·2^-24.4 < 2^-19.8.
//   c is less: the greater one of b + s and b - s has a squared magnitude of at least |b|² + |d|,
//     which is at least P/2. So the zeros are right to 2^-23.8 of their magnitude.
//   c is so small that -a/(2b) stands for -a/(b + s): that is off by little more than a fourth of
//     |ac/b²| < 2^-22. The other zero is about 2b/c, beyond 2^22, as b is at most the size.
//   one zero is at an end: the other one is a quotient. Where it is within 8, c is no less than a
//     20th of the size, so the roundings of a, b and c matter little.
//
// Zeros more than 8 away are outside of all ellipses anyway.
//
// Underflow does no harm. Where a zero is within 8, b or c is no less than a 400th of the size.
// Sizes are 2^-156 at least, as points of ordinary size may differ by a rounding. Where b and c are
// less, the zeros are far away. They stay there whatever is lost of d or c², be they infinite or
// NaN.

/// A zero's place may be off by this much of the parameter.
inline constexpr double kZeroError = 0x1p-19;
/// This is added to a piece's width for that error. x²·across + y²·along is the square of a norm of
/// (x, y), which is twice the place. The norm is at most 20.5 times the usual one.
inline constexpr double kZeroMargin = 0x1p-13;
static_assert(2.0 * 20.5 * kZeroError < kZeroMargin);
static_assert(kLeastEllipses.rows[0].along[kChoices - 1] < 20.5 * 20.5);

/// Tells which formulas suffice for a piece.
template <class Vector> class Choice {
public:
    [[gnu::always_inline]] Choice(LeastEllipses::Row const& row, ZeroPlaces const& zeros)
        : mZeros(zeros), mAcross(Vector::Load(row.across)),
          mAlong0(Vector(zeros.v0) * Vector::Load(row.along)),
          mAlong1(Vector(zeros.v1) * Vector::Load(row.along)) {}

    /// Returns a number whose bit i tells whether formula i suffices for the piece.
    [[gnu::always_inline]] unsigned Of(double from, double to) const {
        double const width = (to - from) + kZeroMargin;
        double const twiceMiddle = from + to;
        double const x0 = mZeros.h0 - twiceMiddle;
        double const x1 = mZeros.h1 - twiceMiddle;
        Vector const square = Vector(width * width);
        auto const outside0 = square <= Vector(x0 * x0) * mAcross + mAlong0;
        auto const outside1 = square <= Vector(x1 * x1) * mAcross + mAlong1;
        return (outside0 & outside1).Bits();
    }

private:
    ZeroPlaces const& mZeros;
    Vector mAcross;
    Vector mAlong0, mAlong1;
};

/// Where to divide a piece because of the zeros: at the real part of a zero that is inside of the
/// ellipse of q = 11/20, else at the piece's end.
struct Cuts {
    double first, second;

    template <class Vector>
    [[gnu::always_inline]] static Cuts Of(ZeroPlaces const& zeros, double from, double to) {
        constexpr double kAxis2 = 1.045 * 1.045;
        constexpr double kAlong = kAxis2 / (kAxis2 - 1.0);
        double const width = to - from;
        double const x0 = zeros.h0 - (from + to);
        double const x1 = zeros.h1 - (from + to);
        double const place0 = Min(Max(0.5 * zeros.h0, from), to);
        double const place1 = Min(Max(0.5 * zeros.h1, from), to);
        Vector const squares =
            Vector::Of(x0 * x0 + zeros.v0 * kAlong, x1 * x1 + zeros.v1 * kAlong, 0.0, 0.0);
        Vector const cuts = Select(squares < Vector(width * width * kAxis2),
                                   Vector::Of(place0, place1, 0.0, 0.0), Vector(to));
        double const cut0 = Lane<0>(cuts);
        double const cut1 = Lane<1>(cuts);
        return Cuts{Min(cut0, cut1), Max(cut0, cut1)};
    }
};

/// Returns the row for the curve and the accuracy, kRatios or more where there is none.
///
/// The bits of a number give its logarithm, 2^52 for each factor of 2, as if it were straight
/// between powers of two. The true logarithm is less than 0.0861 above that, and never below it. So
/// 0.0861 is added for the bound, and nothing for the limit. For a bound that underflows the bits
/// give too great a logarithm, which only asks for more nodes.
[[gnu::always_inline]] inline std::int64_t RatioRow(SpeedCurve const& z, double accuracy) {
    // The bound holds for the whole curve, from 0 to 1. The factor 9/4 is the square of three
    // times half of its width.
    double const cH = 0.25 * z.cH;
    double const cV = 0.25 * z.cV;
    double const sizeC = __builtin_fabs(cH) + __builtin_fabs(cV);
    double const sizeB = __builtin_fabs(z.bH + (cH + cH)) + __builtin_fabs(z.bV + (cV + cV));
    double const sizeA = __builtin_fabs(z.aH + (z.bH + cH)) + __builtin_fabs(z.aV + (z.bV + cV));
    double const bound = (sizeA + (sizeB + sizeC)) * (sizeB + (sizeC + sizeC));
    double const limit = accuracy * accuracy;
    std::int64_t boundBits = 0;
    std::int64_t limitBits = 0;
    __builtin_memcpy(&boundBits, &bound, sizeof bound);
    __builtin_memcpy(&limitBits, &limit, sizeof limit);
    constexpr double kLogarithm = 1.16993; // of 9/4, to base 2, rounded up
    constexpr auto kRoom = static_cast<std::int64_t>((1.0 + kLogarithm + 0.0861) * 0x1p52);
    std::int64_t const row = (boundBits - limitBits + kRoom) >> 52;
    return row < 0 ? 0 : row;
}

/// Pieces wider than this are divided where no formula suffices.
inline constexpr double kNarrowest = 0x1p-6;
/// The room for ends of pieces that wait for their turn. At most 21 wait: the first two, and one
/// for every division that made the piece at hand. Each of these left at most 0.8 of the width, so
/// after 19 of them (0.8^19 < 2^-6) the piece is too narrow for another.
inline constexpr int kMostEnds = 24;

/// Divides the parameters from `t0` to `t1` into pieces, and calls visit(from, to, formula) for
/// each in order. The formula suffices for the piece. It is negative for a narrow piece beside a
/// zero for which none suffices.
template <class Vector, class Visit>
[[gnu::always_inline]] inline void ForPieces(Choice<Vector> const& choice, ZeroPlaces const& zeros,
                                             double t0, double t1, Visit const& visit) {
    Cuts const cuts = Cuts::Of<Vector>(zeros, t0, t1);
    double ends[kMostEnds];
    ends[0] = t1;
    ends[1] = cuts.second;
    int pending = 2;
    double from = t0;
    double to = cuts.first;
    for (;;) {
        if (from < to) {
            double const width = to - from;
            unsigned const suffice = choice.Of(from, to);
            if (suffice == 0 && width > kNarrowest && pending < kMostEnds) {
                double const nearest = zeros.v0 < zeros.v1 ? zeros.h0 : zeros.h1;
                ends[pending++] = to;
                to = nearest < from + to ? from + kLeastPart * width : to - kLeastPart * width;
                continue;
            }
            visit(from, to, suffice != 0 ? __builtin_ctz(suffice) : -1);
        }
        if (pending == 0) {
            return;
        }
        from = to;
        to = ends[--pending];
    }
}

template <class Vector>
[[gnu::always_inline]] inline double SpeedLengthForm(SpeedCurve& curve, double t0, double t1,
                                                     double accuracy,
                                                     double const (&table)[kGaussEntries]) {
    double const least = kLengthRounding * curve.size;
    double const within = accuracy > least ? accuracy : least; // a NaN gives the least
    std::int64_t const row = RatioRow(curve, within);
    if (row >= kRatios) {
        return LengthByZeros<Vector>(curve, t0, t1, within, table);
    }
    ZeroPlaces const zeros(curve);
    Choice<Vector> const choice(kLeastEllipses.rows[row], zeros);
    auto const integral = [&](double from, double to, int i) __attribute__((always_inline)) {
        return PieceSpeed<Vector>(curve, from, to)
            .Integral(table + kChoiceStarts[i], kChoiceSteps[i]);
    };
    unsigned const whole = choice.Of(t0, t1);
    if ((whole & 1U) != 0) { // a case of its own, as the compiler then knows the formula
        return integral(t0, t1, 0);
    }
    if ((whole & 4U) != 0) {
        return integral(t0, t1, (whole & 2U) != 0 ? 1 : 2);
    }
    double sum = 0.0;
    ForPieces<Vector>(
        choice, zeros, t0, t1, [&](double from, double to, int i) __attribute__((always_inline)) {
            // Let p be a piece's part of all parameters. A piece by a formula is off
            // by at most p^(3/2) <= p of the accuracy, and a piece without one by p
            // of it. All p add up to 1 at most.
            sum += i >= 0 ? integral(from, to, i)
                          : LengthByZeros<Vector>(curve, from, to, (to - from) * within, table);
        });
    return sum;
}

/// See CurveLength.
template <class Vector>
[[gnu::always_inline]] inline double CurveLengthForm(double const* p, double accuracy,
                                                     double const (&table)[kGaussEntries]) {
    SpeedCurve curve =
        SpeedCurveOf(p[3] - p[1], p[2] - p[0], p[5] - p[3], p[4] - p[2], p[7] - p[5], p[6] - p[4]);
    if (!(curve.size >= kLeastMeasured && curve.size <= kGreatestMeasured)) {
        return __builtin_nan("");
    }
    return SpeedLengthForm<Vector>(curve, 0.0, 1.0, accuracy, table);
}

} // namespace trammel_detail

#endif
