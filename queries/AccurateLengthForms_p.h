// SPDX-License-Identifier: MIT

// The integral of a curve's speed, written for any kind of pack (Pack_p.h). Included by the files
// that compile it for one kind each, and by the test of its parts. AccurateLength.cpp tells the
// method. Not installed.

#ifndef TRAMMEL_ACCURATELENGTHFORMS_P_H
#define TRAMMEL_ACCURATELENGTHFORMS_P_H

#include "AccurateLength_p.h"
#include "CBezier.h"
#include "Pack_p.h"

#include <cstdint>

namespace trammel_detail {

// Plain expressions instead of the standard library's functions, which might not be inlined.

[[gnu::always_inline]] inline constexpr double Lesser(double a, double b) { return a < b ? a : b; }
[[gnu::always_inline]] inline constexpr double Greater(double a, double b) { return a > b ? a : b; }

/// A third of a cubic's derivative on a piece of its parameters, as A + Bw + Cw², -1 <= w <= 1.
/// Every number fills a pack.
template <class Pack> struct PieceSpeed {
    Pack middle;
    Pack half; ///< of the piece's width
    Pack aH, aV, bH, bV, cH, cV;

    [[gnu::always_inline]] PieceSpeed(SpeedCurve const& curve, double from, double to) {
        double const width = to - from;
        Pack const widths = Pack::All(width);
        middle = Pack::All(from + 0.5 * width);
        half = Pack::All(0.5 * width);
        Pack const square = half * half;
        Pack const riseH = Pack::All(curve.cH) * middle + Pack::All(curve.bH);
        Pack const riseV = Pack::All(curve.cV) * middle + Pack::All(curve.bV);
        aH = Pack::All(curve.aH) + (Pack::All(curve.bH) + riseH) * middle;
        aV = Pack::All(curve.aV) + (Pack::All(curve.bV) + riseV) * middle;
        bH = riseH * widths;
        bV = riseV * widths;
        cH = Pack::All(curve.cH) * square;
        cV = Pack::All(curve.cV) * square;
    }
    // Upper bounds on the coefficients' magnitudes.
    [[gnu::always_inline]] Pack SizeA() const { return Pack::Abs(aH) + Pack::Abs(aV); }
    [[gnu::always_inline]] Pack SizeB() const { return Pack::Abs(bH) + Pack::Abs(bV); }
    [[gnu::always_inline]] Pack SizeC() const { return Pack::Abs(cH) + Pack::Abs(cV); }
    /// The integral by the formula with 4·steps nodes, which begins there.
    [[gnu::always_inline]] double Integral(double const* formula, long steps) const {
        Pack sum = Pack::All(0.0);
        for (long i = 0; i < steps; ++i, formula += 8) {
            Pack const w = Pack::Load(formula);
            Pack const h = aH + w * (bH + w * cH);
            Pack const v = aV + w * (bV + w * cV);
            sum = sum + Pack::Load(formula + 4) * Pack::Sqrt(h * h + v * v);
        }
        return 3.0 * half.First() * sum.Total();
    }
};

// ------------------------------------------------------------------------------------------------
// By the zeros, piece by piece

/// The largest half-axis that the bound asks for. Larger ellipses gain nothing: here 4 nodes are
/// right to 2^-50.
inline constexpr double kLargestAxis = 64.0;
/// The part of a piece that a division leaves at least on either side.
inline constexpr double kLeastPart = 0.2;
/// Pieces waiting for their turn: by then a piece has length 0.
inline constexpr int kMostPending = 64;
/// The bound's 512/63 / sqrt(pi) / (2n - 2)^(3/2) for the formulas, rounded up.
inline constexpr double kGaussFactors[kGaussFormulas] = {
    0.311981,  0.0875312, 0.0444346,  0.0279044,  0.0195740,
    0.0146967, 0.0115549, 0.00939221, 0.00782904, 0.00665601};

/// The length from `t0` to `t1` within `accuracy`.
template <class Pack>
[[gnu::noinline]] double LengthByZeros(SpeedCurve& curve, double t0, double t1, double accuracy,
                                       double const (&table)[kGaussEntries]) {
    if (!curve.zerosKnown) {
        FindZeros(curve);
    }
    // Each twice, for the distances from both ends.
    Pack const zerosH = Pack::FirstTwos(Pack::All(curve.zeroH[0]), Pack::All(curve.zeroH[1]));
    Pack const zerosV = Pack::FirstTwos(Pack::All(curve.zeroV[0]), Pack::All(curve.zeroV[1]));
    Pack const zerosV2 = zerosV * zerosV;
    // What the pieces to come may still be off by. Each takes what its own bound says, at most a
    // quarter of what is left (the last piece all of it), so that the sum never exceeds the whole.
    double left = accuracy;
    double ends[kMostPending];
    int pending = 0;
    double sum = 0.0;
    double from = t0;
    double to = t1;
    for (;;) {
        PieceSpeed<Pack> const piece(curve, from, to);
        double const width = to - from;
        double const half = piece.half.First();
        double const sizeA = piece.SizeA().First();
        double const sizeB = piece.SizeB().First();
        double const sizeC = piece.SizeC().First();
        Pack const alongH = zerosH - Pack::Firsts(Pack::All(from), Pack::All(to));
        Pack const distances = Pack::Sqrt(alongH * alongH + zerosV2);
        // Comparisons that are false for a zero that does not exist.
        double const sum0 = distances.LowSum();
        double const sum1 = distances.HighSum();
        double const nearest = Lesser(sum1, Lesser(sum0, kLargestAxis * width));
        double const axis = Greater(nearest / width, 1.0);
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
            // Both the length and its approximation lie between 0 and this, so the piece may be as
            // short as that, wherever the zeros are.
            double const zero = sum0 == nearest   ? curve.zeroH[0]
                                : sum1 == nearest ? curve.zeroH[1]
                                                  : from + half;
            double const longest = 6.0 * half * (sizeA + sizeB + sizeC);
            double const split =
                Lesser(Greater(zero, from + kLeastPart * width), to - kLeastPart * width);
            if (longest > allowed && pending < kMostPending && split > from && split < to) {
                ends[pending++] = to;
                to = split;
                continue;
            }
            steps = 2;
            left -= Lesser(longest, 0.5 * left);
        } else if (pending > 0) {
            double const used = power * (bound * kGaussFactors[steps - 1]);
            left -= Lesser(used / (1.0 - q), 0.5 * left);
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
// By pieces from zero to zero

/// The formulas that these pieces are measured by, as quarters of the numbers of nodes.
inline constexpr int kChoices = 4;
inline constexpr int kChoiceSteps[kChoices] = {2, 4, 7, 10};
/// Where they begin in the table.
inline constexpr long kChoiceStarts[kChoices] = {GaussStart(2), GaussStart(4), GaussStart(7),
                                                 GaussStart(10)};
/// Ratios of the bound to the accuracy that they can do with: their squares are below 2 to this.
inline constexpr int kRatios = 72;

/// The ellipses that must be free of zeros for each of the formulas, as x²·across + y²·along >= 1.
/// Row e is for squares of the ratio up to 2^e.
struct LeastEllipses {
    struct Row {
        double across[kChoices];
        double along[kChoices];
    };
    Row rows[kRatios] = {};

    constexpr LeastEllipses() {
        double least = 1.0; // 2^-e
        for (Row& row : rows) {
            for (int i = 0; i < kChoices; ++i) {
                double const axis = HalfAxis(kChoiceSteps[i], least);
                row.across[i] = 1.0 / (axis * axis);
                row.along[i] = 1.0 / (axis * axis - 1.0);
            }
            least *= 0.5;
        }
    }

private:
    // No ellipse is smaller than the one of the first radius; the last one suffices for all.
    static constexpr double kLeastRadius = 1.05;
    static constexpr double kGreatestRadius = 16.0;

    /// Whether the ellipse of the radius does, given the square of how much smaller than the bound
    /// the error is to be.
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
    /// The half-axis of the smallest ellipse that does, rounded up.
    static constexpr double HalfAxis(int steps, double square) {
        double less = kLeastRadius;
        double enough = kLeastRadius;
        if (!Suffices(steps, less, square)) {
            enough = kGreatestRadius;
            for (int i = 0; i < 24; ++i) {
                double const middle = 0.5 * (less + enough);
                (Suffices(steps, middle, square) ? enough : less) = middle;
            }
        }
        return 0.5 * (enough + 1.0 / enough) * (1.0 + 1e-9);
    }
};
inline constexpr LeastEllipses kLeastEllipses;

/// The zero of a curve that rests at an end, but for the one there; NaN or infinite where there is
/// none. Both zeros' sum is -2b/c, their product a/c.
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

/// Where a curve's zeros are, to kZeroError of the parameter or, farther than 8 away, to nearly
/// that times as much. Those at ends where the curve rests are put far away.
struct ZeroPlaces {
    double h0, h1; ///< twice the real parts
    double v0, v1; ///< the squares of twice the imaginary parts

    // They are (-b ± s)/c, s² = b² - ac =: d.
    [[gnu::always_inline]] explicit ZeroPlaces(SpeedCurve const& z) {
        if (__builtin_expect(static_cast<long>(z.restsAtStart || z.restsAtEnd), 0) != 0) {
            // One is 0 or 1, and no obstacle.
            OtherZero const other(z);
            Set(other.h, other.v, kFar, 0.0);
            DropMissing();
            return;
        }
        double const squareC = z.cH * z.cH + z.cV * z.cV;
        double const squareB = z.bH * z.bH + z.bV * z.bV;
        double const squareSize = z.size * z.size;
        // "<=", so that a curve that is one point has its zeros far away, too, instead of NaNs.
        bool const small = 256.0 * squareC <= squareSize;
        if (small && squareC * squareSize < 0x1p-44 * (squareB * squareB)) {
            // As in the derivative of a quadratic: one at -a/(2b), the other one far away.
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
            // The farther one by the greater of -b - s and s - b, the other one as a over that.
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
        // The same with less to wait for.
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
    /// What does not exist is far away.
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

// With u = 2^-53 and P = |b|² + |ac|, the parts of d are sums of four products, off by at most
// 3·u·P each, so d by 2^-50.9·P. The root of that, 2^-25.4 of the root of P, bounds what s is off
// by, as |sqrt(x) - sqrt(y)| <= sqrt(|x - y|). Its parts are roots of differences that are off by
// at most 4·u·P, which adds at most 2^-25.5 for both. In all, s is off by 2^-24.4·sqrt(P).
//
// As P is at most twice the squared size, the zeros are off by sqrt(2)·16·2^-24.4 < 2^-19.8 where c
// is more than a sixteenth of the size. The greater of b + s and b - s has no less than the
// squared magnitude |b|² + |d|, that is P/2, so where c is less the zeros are right to 2^-23.8 of
// their magnitude; and of -a/(b + s), -a/(2b) is off by little more than a fourth of
// |ac/b²| < 2^-22, the other one being about 2b/c, beyond 2^22, as b is at most the size. Zeros
// more than 8 away are outside of all ellipses, anyway.
// Beside a zero at an end the other one is a quotient. Where that is within 8, c is no less than a
// 20th of the size, so the roundings of a, b and c matter little.
//
// Underflow does no harm. A zero within 8 means that b or c is no less than a 400th of the size,
// and sizes are 2^-156 at least (points of ordinary size may differ by a rounding). Where both are
// less, the zeros are far away, and stay so with whatever is lost of d or c², be they infinite or
// NaN.

/// What a zero's place may be off by, of the parameter.
inline constexpr double kZeroError = 0x1p-19;
/// What is added to a piece's width for that: x² times across plus y² times along is the square of
/// a norm, and 20.5 at most times the usual one; x and y are twice the place.
inline constexpr double kZeroMargin = 0x1p-13;
static_assert(2.0 * 20.5 * kZeroError < kZeroMargin);
static_assert(kLeastEllipses.rows[0].along[kChoices - 1] < 20.5 * 20.5);

/// Which formulas suffice for a piece, as bits.
template <class Pack> class Choice {
public:
    [[gnu::always_inline]] Choice(LeastEllipses::Row const& row, ZeroPlaces const& zeros)
        : mZeros(zeros), mAcross(Pack::Load(row.across)),
          mAlong0(Pack::All(zeros.v0) * Pack::Load(row.along)),
          mAlong1(Pack::All(zeros.v1) * Pack::Load(row.along)) {}

    [[gnu::always_inline]] unsigned Of(double from, double to) const {
        double const width = (to - from) + kZeroMargin;
        double const twiceMiddle = from + to;
        double const x0 = mZeros.h0 - twiceMiddle;
        double const x1 = mZeros.h1 - twiceMiddle;
        Pack const square = Pack::All(width * width);
        auto const outside0 = square <= Pack::All(x0 * x0) * mAcross + mAlong0;
        auto const outside1 = square <= Pack::All(x1 * x1) * mAcross + mAlong1;
        return (outside0 & outside1).Bits();
    }

private:
    ZeroPlaces const& mZeros;
    Pack mAcross;
    Pack mAlong0, mAlong1;
};

/// Where to divide a piece for the sake of the zeros: at their real parts, if they are inside of
/// the ellipse of q = 11/20, else at the piece's end.
struct Cuts {
    double first, second;

    template <class Pack>
    [[gnu::always_inline]] static Cuts Of(ZeroPlaces const& zeros, double from, double to) {
        constexpr double kAxis2 = 1.045 * 1.045;
        constexpr double kAlong = kAxis2 / (kAxis2 - 1.0);
        double const width = to - from;
        double const x0 = zeros.h0 - (from + to);
        double const x1 = zeros.h1 - (from + to);
        double const place0 = Lesser(Greater(0.5 * zeros.h0, from), to);
        double const place1 = Lesser(Greater(0.5 * zeros.h1, from), to);
        Pack const squares =
            Pack::Of(x0 * x0 + zeros.v0 * kAlong, x1 * x1 + zeros.v1 * kAlong, 0.0, 0.0);
        Pack const cuts = Pack::Choose(squares < Pack::All(width * width * kAxis2),
                                       Pack::Of(place0, place1, 0.0, 0.0), Pack::All(to));
        double const cut0 = cuts.First();
        double const cut1 = cuts.Second();
        return Cuts{Lesser(cut0, cut1), Greater(cut0, cut1)};
    }
};

/// The row for the curve and the accuracy; kRatios or more where there is none.
///
/// Logarithms are read off the bits, 2^52 for a factor of 2, as if they were straight between
/// powers of two. They are less than 0.0861 above that, and never below: so 0.0861 is added for the
/// bound, and none is needed for the limit. A bound that underflows has bits for too much.
[[gnu::always_inline]] inline std::int64_t RatioRow(SpeedCurve const& z, double accuracy) {
    // Of the whole curve, from 0 to 1, and 9/4 for its three times half of the width.
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
/// Ends of pieces that may wait for their turn. It is 21 at most: the first two, and one for every
/// division that the piece at hand is the former part of. Each left it 0.8 of the width at most, so
/// after 19 (0.8^19 < 2^-6) it is not wide enough for another.
inline constexpr int kMostEnds = 24;

template <class Pack>
[[gnu::always_inline]] inline double SpeedLengthForm(SpeedCurve& curve, double t0, double t1,
                                                     double accuracy,
                                                     double const (&table)[kGaussEntries]) {
    double const least = kLengthRounding * curve.size;
    double const within = accuracy > least ? accuracy : least; // a NaN gives the least
    std::int64_t const row = RatioRow(curve, within);
    if (row >= kRatios) {
        return LengthByZeros<Pack>(curve, t0, t1, within, table);
    }
    ZeroPlaces const zeros(curve);
    Choice<Pack> const choice(kLeastEllipses.rows[row], zeros);
    auto const integral = [&](double from, double to, int i) __attribute__((always_inline)) {
        return PieceSpeed<Pack>(curve, from, to)
            .Integral(table + kChoiceStarts[i], kChoiceSteps[i]);
    };
    unsigned const whole = choice.Of(t0, t1);
    if ((whole & 1U) != 0) { // apart from the next, as the processor goes on with a known formula
        return integral(t0, t1, 0);
    }
    if ((whole & 4U) != 0) {
        return integral(t0, t1, (whole & 2U) != 0 ? 1 : 2);
    }
    Cuts const cuts = Cuts::Of<Pack>(zeros, t0, t1);
    double ends[kMostEnds];
    ends[0] = t1;
    ends[1] = cuts.second;
    int pending = 2;
    double sum = 0.0;
    double from = t0;
    double to = cuts.first;
    for (;;) {
        if (from < to) {
            double const width = to - from;
            unsigned const suffice = choice.Of(from, to);
            if (suffice != 0) {
                sum += integral(from, to, __builtin_ctz(suffice));
            } else if (width > kNarrowest && pending < kMostEnds) {
                double const nearest = zeros.v0 < zeros.v1 ? zeros.h0 : zeros.h1;
                ends[pending++] = to;
                to = nearest < from + to ? from + kLeastPart * width : to - kLeastPart * width;
                continue;
            } else {
                // Its part of the accuracy is no less than what p^(3/2) leaves for it.
                sum += LengthByZeros<Pack>(curve, from, to, width * within, table);
            }
        }
        if (pending == 0) {
            return sum;
        }
        from = to;
        to = ends[--pending];
    }
}

/// CurveLength in either form.
template <class Pack>
[[gnu::always_inline]] inline double CurveLengthForm(CBezier const& c, double accuracy,
                                                     double const (&table)[kGaussEntries]) {
    SpeedCurve curve = SpeedCurveOf(c.P1.h - c.P0.h, c.P1.v - c.P0.v, c.P2.h - c.P1.h,
                                    c.P2.v - c.P1.v, c.P3.h - c.P2.h, c.P3.v - c.P2.v);
    if (!(curve.size >= kLeastMeasured && curve.size <= kGreatestMeasured)) {
        return __builtin_nan("");
    }
    return SpeedLengthForm<Pack>(curve, 0.0, 1.0, accuracy, table);
}

} // namespace trammel_detail

#endif
