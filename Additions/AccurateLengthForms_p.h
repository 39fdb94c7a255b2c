// SPDX-License-Identifier: MIT
//
// The integral of a curve's speed, written for any kind of pack (UPack_p.h). Included by the files
// that compile it for one kind each, and by nothing else. AccurateLength.cpp tells the method. Not
// installed.

#ifndef TRAMMEL_ACCURATELENGTHFORMS_P_H
#define TRAMMEL_ACCURATELENGTHFORMS_P_H

#include "AccurateLength_p.h"
#include "UPack_p.h"

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
    /// The integral by the formula with 4·steps nodes.
    [[gnu::always_inline]] double Integral(double const (&table)[kGaussEntries], long steps) const {
        double const* formula = table + 4 * steps * (steps - 1);
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
// By ellipses without zeros

/// An ellipse with foci -1 and 1, covered by discs around points of the real axis. As a cover is
/// symmetric, the half with positive reals is given, from 0 on.
template <int Discs> struct Cover {
    double axis;             ///< the half-axis along the reals, at least that for q
    double height;           ///< the other one
    double seams[Discs + 1]; ///< disc i covers the ellipse from seam i to i + 1
    double centres[Discs];
    double radii[Discs];

    /// Whether the discs cover the ellipse, with some room, given 1/sqrt(q), rounded up. The
    /// squared distance of the ellipse's points from a centre is a convex function of their real
    /// part, so the seams tell.
    constexpr bool Covers(double inverseRoot) const {
        bool covers = axis >= 0.5 * (inverseRoot + 1.0 / inverseRoot) &&
                      height >= 0.5 * (inverseRoot - 1.0 / inverseRoot) && seams[0] == 0.0 &&
                      seams[Discs] == axis;
        for (int i = 0; i < Discs; ++i) {
            for (int k = i; k <= i + 1; ++k) {
                double const x = seams[k];
                double const y2 = height * height * (1.0 - x * x / (axis * axis));
                double const off = x - centres[i];
                covers = covers && off * off + y2 <= radii[i] * radii[i] * (1.0 - 1e-6);
            }
        }
        return covers;
    }
};

/// The ellipses of q = 11/20 and q = 7/10.
inline constexpr Cover<2> kWide = {
    1.04502, 0.3034, {0.0, 0.739, 1.04502}, {0.338, 0.817}, {0.455, 0.229}};
inline constexpr Cover<4> kNarrow = {1.01595,
                                     0.17929,
                                     {0.0, 0.389, 0.718, 0.939, 1.01595},
                                     {0.188, 0.536, 0.803, 0.947},
                                     {0.261, 0.222, 0.153, 0.069}};
static_assert(kWide.Covers(1.3484) && kNarrow.Covers(1.195229));

/// (512/63 / sqrt(pi) / (2n - 2)^(3/2) · q^n / (1 - q))² for q = 11/20 and n = 4, 8 and so on,
/// rounded up.
inline constexpr int kWideLeast = 1; ///< steps
inline constexpr double kWideErrors[8] = {4.027e-03, 2.654e-06, 5.728e-09, 1.891e-11,
                                          7.793e-14, 3.679e-16, 1.904e-18, 1.053e-20};
/// The same for q = 7/10 and n = 12, 16 and so on.
inline constexpr int kNarrowLeast = 3;
inline constexpr double kNarrowErrors[8] = {4.205e-06, 9.561e-08, 2.712e-09, 8.814e-11,
                                            3.141e-12, 1.196e-13, 4.792e-15, 1.997e-16};
static_assert(kNarrowLeast + 7 == kGaussFormulas && kWideErrors[7] < kNarrowErrors[7]);

/// Where to divide a piece, by the narrow discs that are free of zeros, as bits: first those on the
/// left, from the middle outwards, then those on the right. In the middle of the first discs from
/// the left that are not free, but not near an end.
struct Divisions {
    double at[256] = {};

    constexpr Divisions() {
        for (int free = 0; free < 255; ++free) {
            int first = 0; // of the discs from left to right
            while (Free(free, first)) {
                ++first;
            }
            int last = first;
            while (last < 7 && !Free(free, last + 1)) {
                ++last;
            }
            double const middle = 0.5 * (Centre(first) + Centre(last));
            at[free] = Lesser(Greater(middle, -kFarthest), kFarthest);
        }
    }

private:
    static constexpr double kFarthest = 0.8;

    static constexpr bool Free(int free, int disc) {
        return (free >> (disc < 4 ? 3 - disc : disc) & 1) != 0;
    }
    static constexpr double Centre(int disc) {
        return disc < 4 ? -kNarrow.centres[3 - disc] : kNarrow.centres[disc - 4];
    }
};
inline constexpr Divisions kDivisions;

// A disc is free of zeros when z(centre + radius·u) = p0 + p1·u + p2·u² has none in the unit disc.
// By Schur and Cohn that is so when |p0| > |p2| and |conj(p0) p1 - p2 conj(p1)| < |p0|² - |p2|²
// [Marden, Geometry of Polynomials, section 42].
//
// Both sides vanish when the zeros are each other's mirror images in the circle, one of them maybe
// deep inside, and rounding would decide then. So the right side is made less by more than both are
// off by. With u = 2^-53 and s = |A| + |B| + |C|, by the sums of their coordinates' magnitudes,
// p0 is at most s, p1 at most s/2, p2 at most s/4 and each off by at most four times u of that
// (p2 by two). Then |p0|² - |p2|² is off by at most 13·u·s², the left side by 13·u·s², and
// comparing squares adds 2·u·s²: 28·u·s² < 2^-48·s² in all.

/// What is taken from |p0|² - |p2|², as a part of s²; with room.
inline constexpr double kFreeMargin = 0x1p-46;

/// Whether discs with these p0, p1, p2 and |p2|², increased by the margin, are free, as bits.
template <class Pack>
[[gnu::always_inline]] inline unsigned Free(Pack const& p0H, Pack const& p0V, Pack const& p1H,
                                            Pack const& p1V, Pack const& p2H, Pack const& p2V,
                                            Pack const& p2Square) {
    Pack const constant = (p0H * p0H + p0V * p0V) - p2Square;
    Pack const linearH = (p0H - p2H) * p1H + (p0V - p2V) * p1V;
    Pack const linearV = (p0H + p2H) * p1V - (p0V + p2V) * p1H;
    auto const positive = Pack::All(0.0) < constant;
    auto const greater = linearH * linearH + linearV * linearV < constant * constant;
    return (positive & greater).Bits();
}

/// Whether the discs of the wide ellipse are free.
template <class Pack> [[gnu::always_inline]] inline bool WideIsFree(PieceSpeed<Pack> const& z) {
    static constexpr double kCentres[4] = {-kWide.centres[1], -kWide.centres[0], kWide.centres[0],
                                           kWide.centres[1]};
    static constexpr double kRadii[4] = {kWide.radii[1], kWide.radii[0], kWide.radii[0],
                                         kWide.radii[1]};
    Pack const centre = Pack::Load(kCentres);
    Pack const radius = Pack::Load(kRadii);
    Pack const slopeH = centre * z.cH;
    Pack const slopeV = centre * z.cV;
    Pack const square = radius * radius;
    Pack const p2H = square * z.cH;
    Pack const p2V = square * z.cV;
    Pack const size = z.SizeA() + z.SizeB() + z.SizeC();
    return Free(z.aH + centre * (z.bH + slopeH), z.aV + centre * (z.bV + slopeV),
                radius * (z.bH + (slopeH + slopeH)), radius * (z.bV + (slopeV + slopeV)), p2H, p2V,
                (p2H * p2H + p2V * p2V) + Pack::All(kFreeMargin) * (size * size)) == 0xF;
}

/// Which discs of the narrow ellipse are free, as bits in the order of Divisions. Those to the left
/// and to the right have much in common.
template <class Pack> [[gnu::always_inline]] inline unsigned NarrowFree(PieceSpeed<Pack> const& z) {
    Pack const centre = Pack::Load(kNarrow.centres);
    Pack const radius = Pack::Load(kNarrow.radii);
    Pack const square = radius * radius;
    Pack const twice = radius * (centre + centre);
    Pack const even = centre * centre;
    Pack const even0H = z.aH + even * z.cH;
    Pack const even0V = z.aV + even * z.cV;
    Pack const odd0H = centre * z.bH;
    Pack const odd0V = centre * z.bV;
    Pack const even1H = radius * z.bH;
    Pack const even1V = radius * z.bV;
    Pack const odd1H = twice * z.cH;
    Pack const odd1V = twice * z.cV;
    Pack const p2H = square * z.cH;
    Pack const p2V = square * z.cV;
    Pack const size = z.SizeA() + z.SizeB() + z.SizeC();
    Pack const p2Square = (p2H * p2H + p2V * p2V) + Pack::All(kFreeMargin) * (size * size);
    return Free(even0H - odd0H, even0V - odd0V, even1H - odd1H, even1V - odd1V, p2H, p2V,
                p2Square) |
           Free(even0H + odd0H, even0V + odd0V, even1H + odd1H, even1V + odd1V, p2H, p2V, p2Square)
               << 4U;
}

/// Bits of the errors that are at most `limit` when multiplied by `factor`.
template <class Pack>
[[gnu::always_inline]] inline unsigned Suffice(double const (&errors)[8], Pack const& factor,
                                               Pack const& limit) {
    return (Pack::Load(errors) * factor <= limit).Bits() |
           (Pack::Load(errors + 4) * factor <= limit).Bits() << 4U;
}

// ------------------------------------------------------------------------------------------------
// By the zeros themselves

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
        sum += piece.Integral(table, steps);
        if (pending == 0) {
            return sum;
        }
        from = to;
        to = ends[--pending];
    }
}

// ------------------------------------------------------------------------------------------------

/// Accuracies finer than this part of the curve's size are not within the reach of the ellipses.
inline constexpr double kFinestByEllipses = 0x1p-34;
/// Pieces are divided that often before their zeros are looked for.
inline constexpr int kQuickDivisions = 3;
template <class Pack>
[[gnu::always_inline]] inline double SpeedLengthForm(SpeedCurve& curve, double t0, double t1,
                                                     double accuracy,
                                                     double const (&table)[kGaussEntries]) {
    struct Waiting {
        double to;
        double accuracy;
        int divisions;
    };
    Waiting waiting[kQuickDivisions + 1];
    int pending = 0;
    double const least = kLengthRounding * curve.size;
    double const within = accuracy > least ? accuracy : least; // a NaN gives the least
    if (within < kFinestByEllipses * (curve.size * (t1 - t0))) {
        return LengthByZeros<Pack>(curve, t0, t1, within, table);
    }
    double sum = 0.0;
    double from = t0;
    Waiting now = {t1, within, 0};
    for (;;) {
        PieceSpeed<Pack> const piece(curve, from, now.to);
        Pack const sizeB = Pack::All(kWide.axis) * piece.SizeB();
        Pack const sizeC = Pack::All(kWide.axis * kWide.axis) * piece.SizeC();
        Pack const factor = (Pack::All(9.0) * (piece.half * piece.half)) *
                            ((piece.SizeA() + (sizeB + sizeC)) * (sizeB + (sizeC + sizeC)));
        Pack const limit = Pack::All(now.accuracy * now.accuracy);
        constexpr unsigned kNone = 0x100;
        int const wideSteps =
            kWideLeast + __builtin_ctz(kNone | Suffice<Pack>(kWideErrors, factor, limit));
        int steps = kGaussFormulas + 1;
        unsigned narrow = 0xFF;
        if (wideSteps <= kWideLeast + 7) { // else the narrow ellipse does not suffice, either
            if (WideIsFree(piece)) {
                steps = wideSteps;
            } else {
                narrow = NarrowFree(piece);
                int const narrowSteps =
                    kNarrowLeast +
                    __builtin_ctz(kNone | Suffice<Pack>(kNarrowErrors, factor, limit));
                steps = narrow == 0xFF ? narrowSteps : steps;
            }
        }
        if (steps <= kGaussFormulas) {
            sum += piece.Integral(table, steps);
        } else if (narrow != 0xFF && now.divisions < kQuickDivisions &&
                   now.accuracy < piece.half.First() * curve.size) { // not so short anyway
            double const split = piece.middle.First() + piece.half.First() * kDivisions.at[narrow];
            now.accuracy *= 0.5;
            ++now.divisions;
            waiting[pending++] = now;
            now.to = split;
            continue;
        } else {
            sum += LengthByZeros<Pack>(curve, from, now.to, now.accuracy, table);
        }
        if (pending == 0) {
            return sum;
        }
        from = now.to;
        now = waiting[--pending];
    }
}

} // namespace trammel_detail

#endif
