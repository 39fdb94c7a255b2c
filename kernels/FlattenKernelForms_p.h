// SPDX-License-Identifier: MIT

// The arithmetic of flattening, written for either vector of four doubles (Vector_p.h).
// queries/AccurateFlatten.cpp tells the method. Each of two files compiles it for one vector, and
// no other file includes this header. Not installed.

#ifndef TRAMMEL_FLATTENKERNELFORMS_P_H
#define TRAMMEL_FLATTENKERNELFORMS_P_H

#include "FlattenKernels_p.h"
#include "Vector_p.h"

#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// Four places on a curve: parameters, points relative to the start, thirds of the derivatives.
template <class Vector> struct PlaceLanes { Vector t, h, v, dh, dv; };

/// Returns for each place of `b` the one before it. The one before the first is the last of `a`.
template <class Vector>
[[gnu::always_inline]] inline PlaceLanes<Vector> Preceding(PlaceLanes<Vector> const& a,
                                                           PlaceLanes<Vector> const& b) {
    return {Preceding(a.t, b.t), Preceding(a.h, b.h), Preceding(a.v, b.v), Preceding(a.dh, b.dh),
            Preceding(a.dv, b.dv)};
}

/// The coefficients of one cubic, each in all lanes.
template <class Vector> struct CubicLanes {
    Vector aH, aV, twoBH, twoBV, threeAH, threeAV, threeBH, threeBV, cH, cV;
    Vector endH, endV, lastH, lastV;

    [[gnu::always_inline]] inline explicit CubicLanes(FlatCubic const& c)
        : aH(Vector(c.aH)), aV(Vector(c.aV)), twoBH(Vector(2.0 * c.bH)), twoBV(Vector(2.0 * c.bV)),
          threeAH(Vector(3.0 * c.aH)), threeAV(Vector(3.0 * c.aV)), threeBH(Vector(3.0 * c.bH)),
          threeBV(Vector(3.0 * c.bV)), cH(Vector(c.cH)), cV(Vector(c.cV)), endH(Vector(c.endH)),
          endV(Vector(c.endV)), lastH(Vector(c.lastH)), lastV(Vector(c.lastV)) {}
    [[gnu::always_inline]] inline PlaceLanes<Vector> Start() const {
        Vector const zero = Vector(0.0);
        return {zero, zero, zero, aH, aV};
    }
    /// Returns the places at four parameters. For 1, and for a NaN, that is the end exactly.
    [[gnu::always_inline]] inline PlaceLanes<Vector> At(Vector const& t) const {
        auto const inside = t < Vector(1.0);
        Vector const riseH = cH * t;
        Vector const riseV = cV * t;
        return {t, Select(inside, (threeAH + (threeBH + riseH) * t) * t, endH),
                Select(inside, (threeAV + (threeBV + riseV) * t) * t, endV),
                Select(inside, aH + (twoBH + riseH) * t, lastH),
                Select(inside, aV + (twoBV + riseV) * t, lastV)};
    }
};

/// Returns |B' x B''| / 18 at four parameters.
template <class Vector>
[[gnu::always_inline]] inline Vector BendOf(FlatCubic const& c, Vector const& t) {
    Vector const bend0 = Vector(c.aH * c.bV - c.aV * c.bH);
    Vector const bend1 = Vector(c.aH * c.cV - c.aV * c.cH);
    Vector const bend2 = Vector(c.bH * c.cV - c.bV * c.cH);
    return Abs(bend0 + (bend1 + bend2 * t) * t);
}

/// Returns the mask of the lanes in which the piece from one place to the other keeps the
/// tolerance. `limit` is the square of the tolerance.
template <class Vector>
[[gnu::always_inline]] inline auto Keep(PlaceLanes<Vector> const& from,
                                        PlaceLanes<Vector> const& to, Vector const& limit) {
    Vector const h = to.h - from.h;
    Vector const v = to.v - from.v;
    Vector const square = h * h + v * v;
    ChordDeviation<Vector> const off =
        DeviationOf(to.t - from.t, h, v, square, from.dh, from.dv, to.dh, to.dv);
    return (off.Square() <= limit * square) & IsChord(square, limit);
}

inline constexpr double kCounting[4] = {0.0, 1.0, 2.0, 3.0};

template <class Vector>
[[gnu::always_inline]] inline double PlanFlatteningForm(FlatCubic const& c, double scale,
                                                        FlatPlan& plan) {
    constexpr int panels = kPanels;
    constexpr double width = 1.0 / panels;
    Vector const aH = Vector(c.aH);
    Vector const aV = Vector(c.aV);
    Vector const twoBH = Vector(2.0 * c.bH);
    Vector const twoBV = Vector(2.0 * c.bV);
    Vector const cH = Vector(c.cH);
    Vector const cV = Vector(c.cV);
    Vector const bend0 = Vector(c.aH * c.bV - c.aV * c.bH);
    Vector const bend1 = Vector(c.aH * c.cV - c.aV * c.cH);
    Vector const bend2 = Vector(c.bH * c.cV - c.bV * c.cH);
    double speed[kPanels + 8]; // entry i + 1 is for the start of panel i
    for (int i = 0; i <= panels; i += 4) {
        Vector const t = (Vector(i) + Vector::Load(kCounting)) * Vector(width);
        Vector const h = aH + (twoBH + cH * t) * t;
        Vector const v = aV + (twoBV + cV * t) * t;
        Sqrt(h * h + v * v).Store(speed + i + 1);
        (Abs(bend0 + (bend1 + bend2 * t) * t) * Vector(scale)).Store(plan.density + i);
    }
    speed[0] = 0.0;
    speed[panels + 2] = 0.0;
    Vector const still = Vector(0x1p-1022);
    for (int i = 0; i <= panels; i += 4) {
        // Where the curve stands still, the bend is infinite for a moment. There the speeds at the
        // neighbouring panels count.
        Vector const near = Vector(0.25) * (Vector::Load(speed + i) + Vector::Load(speed + i + 2));
        Vector const fast = Max(Max(Vector::Load(speed + i + 1), near), still);
        Sqrt(Vector::Load(plan.density + i) / fast).Store(plan.density + i);
    }
    double sum = 0.0;
    double const* const d = plan.density;
    double const share = 0.5 * width;
    plan.sums[0] = 0.0;
    for (int i = 0; i < panels; i += 4) {
        // In this order only one addition waits for the panels before.
        double const one = share * (d[i] + d[i + 1]);
        double const two = one + share * (d[i + 1] + d[i + 2]);
        double const third = share * (d[i + 2] + d[i + 3]);
        double const four = two + (third + share * (d[i + 3] + d[i + 4]));
        plan.sums[i + 1] = sum + one;
        plan.sums[i + 2] = sum + two;
        plan.sums[i + 3] = sum + (two + third);
        sum += four;
        plan.sums[i + 4] = sum;
    }
    return sum;
}

/// Stores the parameters at the ends of the next chords. Returns their number.
template <class Vector>
[[gnu::always_inline]] inline int NextParameters(FlatPlan& plan, double (&t)[FlatRun::kRoom + 8]) {
    int filled = 0;
    constexpr double panels = kPanels;
    constexpr double width = 1.0 / panels;
    Vector const zero = Vector(0.0);
    Vector const one = Vector(1.0);
    while (filled < FlatRun::kRoom && plan.done < plan.chords) {
        // So many chords end in this panel or before it. In the last panel all of them do.
        int const panel = plan.panel;
        int end = plan.chords;
        if (panel + 1 < kPanels) {
            double const ends = plan.sums[panel + 1] * plan.perChord;
            if (ends < end) { // false for a NaN
                end = static_cast<int>(ends);
            }
        }
        // This is never negative: rounding is monotone, so neither the sums nor their multiples
        // decrease.
        int here = end - plan.done;
        if (here <= FlatRun::kRoom - filled) {
            ++plan.panel;
        } else {
            here = FlatRun::kRoom - filled;
        }
        // The density is linear: with its values r0 and r1, the integral up to x is
        // r0·x + (r1 - r0)·x²/2 panels, solved for x in the form that does not cancel.
        double const density = plan.density[panel];
        Vector const r0 = Vector(density);
        Vector const rise = Vector(2.0 * (plan.density[panel + 1] - density));
        Vector const square = r0 * r0;
        Vector const sum = Vector(plan.sums[panel]);
        // One vector is computed for no chords, too: a branch could not be predicted.
        int k = 0;
        do {
            Vector const chord = Vector(plan.done + 1 + k) + Vector::Load(kCounting);
            Vector const y = Max((chord * Vector(plan.step) - sum) * Vector(panels), zero);
            Vector const root = Sqrt(Max(square + rise * y, zero));
            Vector const x = (y + y) / (r0 + root);
            Vector const inside = Select(x < one, x, one); // 1 for a NaN
            ((Vector(panel) + inside) * Vector(width)).Store(t + 1 + filled + k);
            k += 4;
        } while (k < here);
        filled += here;
        plan.done += here;
    }
    if (plan.done == plan.chords && filled > 0) {
        t[filled] = 1.0;
    }
    one.Store(t + 1 + filled); // for the rest of the last vector
    return filled;
}

/// Computes the `count` places of a run from their parameters, and verifies the chords.
template <class Vector>
[[gnu::always_inline]] inline void Verify(FlatCubic const& c, double tolerance, int count,
                                          FlatRun& run) {
    run.count = count;
    CubicLanes<Vector> const lanes(c);
    PlaceLanes<Vector> before = {Vector(run.t[0]), Vector(run.h[0]), Vector(run.v[0]),
                                 Vector(run.dh[0]), Vector(run.dv[0])};
    Vector const limit = Vector(tolerance * tolerance);
    std::uint64_t keeping = 0;
    for (int i = 0; i < count; i += 4) {
        PlaceLanes<Vector> const places = lanes.At(Vector::Load(run.t + i + 1));
        places.h.Store(run.h + i + 1);
        places.v.Store(run.v + i + 1);
        places.dh.Store(run.dh + i + 1);
        places.dv.Store(run.dv + i + 1);
        auto const keeps = Keep(Preceding(before, places), places, limit);
        keeping |= std::uint64_t{keeps.Bits()} << static_cast<unsigned>(i);
        before = places;
    }
    run.failing = ~keeping & ((std::uint64_t{1} << static_cast<unsigned>(count)) - 1);
}

template <class Vector>
[[gnu::always_inline]] inline void NextFlatRunForm(FlatCubic const& c, double tolerance,
                                                   FlatPlan& plan, FlatRun& run) {
    Verify<Vector>(c, tolerance, NextParameters<Vector>(plan, run.t), run);
}

/// Chords per unit of the parameter, about constant on a panel, and the inverse.
template <class Vector> struct Density { Vector chords, inverse; };

/// Returns the densities of four panels from the first two derivatives in their middles. (h, v) is
/// a third of the first one. (turnH, turnV) is a third of the second one, times the panel's width.
template <class Vector>
[[gnu::always_inline]] inline Density<Vector> DensityOf(Vector const& h, Vector const& v,
                                                        Vector const& turnH, Vector const& turnV,
                                                        Vector const& scaledBend) {
    // The mean of the squared speed over the panel: it is not 0 beside a cusp. The density is
    // sqrt(bend / speed), so its fourth power is wanted.
    Vector const square = (h * h + v * v) + Vector(1.0 / 12.0) * (turnH * turnH + turnV * turnV);
    Vector const fourth = scaledBend * scaledBend / square;
    // Neither 0, infinite nor NaN.
    Vector const x = Min(Max(fourth, Vector(0x1p-200)), Vector(0x1p200));
    // A step of Newton's method for the inverse; the error falls to 0.25 %, which suffices.
    Vector const rough = RoughInverseFourthRoot(x);
    Vector const rough2 = rough * rough;
    Vector const y = rough * (Vector(1.25) - (Vector(0.25) * x) * (rough2 * rough2));
    return {(x * y) * (y * y), y};
}

inline constexpr double kSomeMiddles[kSomePanels] = {
    1.0 / 32,  3.0 / 32,  5.0 / 32,  7.0 / 32,  9.0 / 32,  11.0 / 32, 13.0 / 32, 15.0 / 32,
    17.0 / 32, 19.0 / 32, 21.0 / 32, 23.0 / 32, 25.0 / 32, 27.0 / 32, 29.0 / 32, 31.0 / 32};

inline constexpr double kSomeEnds[kSomePanels + 1] = {
    0.0,      1.0 / 16,  2.0 / 16,  3.0 / 16,  4.0 / 16,  5.0 / 16,  6.0 / 16,  7.0 / 16, 8.0 / 16,
    9.0 / 16, 10.0 / 16, 11.0 / 16, 12.0 / 16, 13.0 / 16, 14.0 / 16, 15.0 / 16, 1.0};
/// The numbers of chords, and three more for whole vectors.
inline constexpr double kNumbers[kSomeChords + 4] = {
    1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17, 18,
    19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36};

/// The density is taken as constant on each panel. The parameters at which chords end are then a
/// linear function of their numbers there.
template <class Vector>
[[gnu::always_inline]] inline int SomeChordsForm(FlatCubic const& c, double scale, double tolerance,
                                                 FlatRun& run) {
    double chords[kSomePanels];
    double inverses[kSomePanels];
    {
        Vector const bend0 = Vector(scale * (c.aH * c.bV - c.aV * c.bH));
        Vector const bend1 = Vector(scale * (c.aH * c.cV - c.aV * c.cH));
        Vector const bend2 = Vector(scale * (c.bH * c.cV - c.bV * c.cH));
        Vector const width = Vector(2.0 / kSomePanels);
        for (int i = 0; i < kSomePanels; i += 4) {
            Vector const t = Vector::Load(kSomeMiddles + i);
            Vector const riseH = Vector(c.cH) * t;
            Vector const riseV = Vector(c.cV) * t;
            Density<Vector> const density = DensityOf(
                Vector(c.aH) + (Vector(2.0 * c.bH) + riseH) * t,
                Vector(c.aV) + (Vector(2.0 * c.bV) + riseV) * t, width * (Vector(c.bH) + riseH),
                width * (Vector(c.bV) + riseV), bend0 + (bend1 + bend2 * t) * t);
            density.chords.Store(chords + i);
            density.inverse.Store(inverses + i);
        }
    }
    double sums[kSomePanels + 1]; // in panels' widths
    sums[0] = 0.0;
    double sum = 0.0;
    for (int i = 0; i < kSomePanels; i += 4) { // only one addition waits for the panels before
        double const two = chords[i] + chords[i + 1];
        sums[i + 1] = sum + chords[i];
        sums[i + 2] = sum + two;
        sums[i + 3] = sum + (two + chords[i + 2]);
        sum += two + (chords[i + 2] + chords[i + 3]);
        sums[i + 4] = sum;
    }
    double const planned = sum * (1.0 / kSomePanels);
    if (!(planned <= kSomeChords)) {
        return 0;
    }
    int const whole = static_cast<int>(planned);
    int const count = whole < planned ? whole + 1 : whole;
    double const step = sum / count;
    double const perChord = count / sum;
    // Parameters are first + number·each, between the panel's ends.
    constexpr double kWidth = 1.0 / kSomePanels;
    double first[kSomePanels];
    double each[kSomePanels];
    double ends[kSomePanels];
    for (int i = 0; i < kSomePanels; i += 4) {
        Vector const rate = Vector::Load(inverses + i) * Vector(kWidth);
        (rate * Vector(step)).Store(each + i);
        (Vector::Load(kSomeEnds + i) - rate * Vector::Load(sums + i)).Store(first + i);
        (Vector::Load(sums + i + 1) * Vector(perChord)).Store(ends + i);
    }
    ends[kSomePanels - 1] = count;
    int done = 0;
    for (int panel = 0; panel < kSomePanels; ++panel) {
        int const end = static_cast<int>(ends[panel]);
        Vector const each4 = Vector(each[panel]);
        Vector const first4 = Vector(first[panel]);
        Vector const least = Vector(kSomeEnds[panel]);
        Vector const most = Vector(kSomeEnds[panel + 1]);
        // Four are stored even for none: a branch could not be predicted.
        do {
            Vector const t = first4 + Vector::Load(kNumbers + done) * each4;
            Min(Max(t, least), most).Store(run.t + 1 + done);
            done += 4;
        } while (done < end);
        done = end;
    }
    run.t[0] = 0.0;
    run.t[count] = 1.0;
    Vector(1.0).Store(run.t + 1 + count); // for the rest of the last vector
    run.h[0] = 0.0;
    run.v[0] = 0.0;
    run.dh[0] = c.aH;
    run.dv[0] = c.aV;
    Verify<Vector>(c, tolerance, count, run);
    return count;
}

/// The parameters in the middles of four panels.
inline constexpr double kMiddles[4] = {0.125, 0.375, 0.625, 0.875};

/// A curve for which few more chords than one are planned may keep the tolerance with one.
inline constexpr double kPerhapsOne = 2.0;

/// Row n holds j/n for j = 1, 2, ... up to n, then ones.
inline constexpr double kShares[kFewChords + 1][kFewChords] = {
    {1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0}, // unused
    {1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0},
    {1.0 / 2, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0},
    {1.0 / 3, 2.0 / 3, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0},
    {1.0 / 4, 2.0 / 4, 3.0 / 4, 1.0, 1.0, 1.0, 1.0, 1.0},
    {1.0 / 5, 2.0 / 5, 3.0 / 5, 4.0 / 5, 1.0, 1.0, 1.0, 1.0},
    {1.0 / 6, 2.0 / 6, 3.0 / 6, 4.0 / 6, 5.0 / 6, 1.0, 1.0, 1.0},
    {1.0 / 7, 2.0 / 7, 3.0 / 7, 4.0 / 7, 5.0 / 7, 6.0 / 7, 1.0, 1.0},
    {1.0 / 8, 2.0 / 8, 3.0 / 8, 4.0 / 8, 5.0 / 8, 6.0 / 8, 7.0 / 8, 1.0}};

/// The integral of the density, which is taken as constant on each of four panels. The unit is a
/// panel's width, a fourth of the parameter.
template <class Vector> struct FewPanels {
    double total;       ///< the integral over all panels
    Vector total4;      ///< `total` in all lanes
    Vector sums[3];     ///< the integrals up to the ends of the first three panels
    Vector inverses[4]; ///< the inverses of the densities

    [[gnu::always_inline]] inline FewPanels(CubicLanes<Vector> const& c, FlatCubic const& curve,
                                            double scale) {
        Vector const t = Vector::Load(kMiddles);
        Vector const width = Vector(0.25);
        Vector const riseH = c.cH * t;
        Vector const riseV = c.cV * t;
        Density<Vector> const density =
            DensityOf(c.aH + (c.twoBH + riseH) * t, c.aV + (c.twoBV + riseV) * t,
                      width * (c.twoBH + (riseH + riseH)), width * (c.twoBV + (riseV + riseV)),
                      BendOf<Vector>(curve, t) * Vector(scale));
        double d[4];
        double inverse[4];
        density.chords.Store(d);
        density.inverse.Store(inverse);
        double const two = d[0] + d[1];
        sums[0] = Vector(d[0]);
        sums[1] = Vector(two);
        sums[2] = Vector(two + d[2]);
        total = two + (d[2] + d[3]);
        total4 = Vector(total);
        for (int i = 0; i < 4; ++i) {
            inverses[i] = Vector(inverse[i]);
        }
    }
    /// Returns the parameters up to which the given shares of the integral lie.
    [[gnu::always_inline]] inline Vector At(Vector const& share) const {
        Vector const y = share * total4;
        Vector sum = Vector(0.0);
        Vector panel = sum;
        Vector inverse = inverses[0];
        for (int i = 0; i < 3; ++i) {
            auto const beyond = sums[i] <= y;
            sum = Select(beyond, sums[i], sum);
            panel = Select(beyond, Vector(i + 1), panel);
            inverse = Select(beyond, inverses[i + 1], inverse);
        }
        return (panel + (y - sum) * inverse) * Vector(0.25);
    }
};

/// Computes and stores the points that divide the curve into `chords` chords by equal shares of the
/// integral: v and h in turn, as sums of the origin and the point. True when all chords keep the
/// tolerance, whose square is `limit`.
template <class Vector>
[[gnu::always_inline]] inline bool
DivideIntoFew(CubicLanes<Vector> const& c, FewPanels<Vector> const& panels, int chords,
              double limit, Vector const& originH, Vector const& originV, double* out) {
    PlaceLanes<Vector> before = c.Start();
    unsigned keeping = 0;
    for (int i = 0; i < chords; i += 4) {
        Vector const share = Vector::Load(kShares[chords] + i);
        Vector const t = Select(share < Vector(1.0), panels.At(share), Vector(1.0));
        PlaceLanes<Vector> const places = c.At(t);
        double* const begin = out + std::ptrdiff_t{2} * i;
        double* const to[4] = {begin, begin + 2, begin + 4, begin + 6};
        StorePairs(originV + places.v, originH + places.h, to);
        auto const keeps = Keep(Preceding(before, places), places, Vector(limit));
        keeping |= keeps.Bits() << static_cast<unsigned>(i);
        before = places;
    }
    return (~keeping & ((1U << static_cast<unsigned>(chords)) - 1)) == 0;
}

template <class Vector>
[[gnu::always_inline]] inline int FewChordsForm(double const* points, double tolerance,
                                                double* out) {
    // v in lane 0, h in lane 1
    Double2 const p0 = Double2::Load(points);
    Double2 const p1 = Double2::Load(points + 2);
    Double2 const p2 = Double2::Load(points + 4);
    Double2 const p3 = Double2::Load(points + 6);
    Double2 const a = p1 - p0;
    Double2 const middle = p2 - p1;
    Double2 const last = p3 - p2;
    Double2 const b = middle - a;
    Double2 const b2 = last - middle;
    Double2 const end = p3 - p0;
    Double2 const sizes = (Abs(a) + Abs(middle)) + Abs(last);
    Double2 const sums = (Abs(p0) + Abs(p1)) + (Abs(p2) + Abs(p3));
    double const size = Lane<0>(sizes) + Lane<1>(sizes);
    double const sum = Lane<0>(sums) + Lane<1>(sums);
    double const finest = kFinest * size;
    double const limit = tolerance * tolerance;
    if (!(sum >= 0x1p-100 && sum <= 0x1p100 && size >= 0x1p-60 * sum)) { // also for a NaN
        return -1;
    }
    if (!(tolerance > finest)) {
        return 0;
    }
    Double2 const bends = b * b;
    Double2 const bends2 = b2 * b2;
    double const bend = Max(Lane<0>(bends) + Lane<1>(bends), Lane<0>(bends2) + Lane<1>(bends2));
    if (bend <= limit * (kMostBend * kMostBend)) {
        return 1;
    }
    if (bend > limit * (kMostBend * kMostBend * Biquadrate(kFewSteps))) {
        return 0;
    }
    FlatCubic c;
    c.aH = Lane<1>(a);
    c.aV = Lane<0>(a);
    c.bH = Lane<1>(b);
    c.bV = Lane<0>(b);
    c.cH = Lane<1>(b2) - c.bH;
    c.cV = Lane<0>(b2) - c.bV;
    c.endH = Lane<1>(end);
    c.endV = Lane<0>(end);
    c.lastH = Lane<1>(last);
    c.lastV = Lane<0>(last);
    CubicLanes<Vector> const lanes(c);
    FewPanels<Vector> const panels(lanes, c, 0.75 / (kPlanned * tolerance));
    double const planned = 0.25 * panels.total;
    if (!(planned <= kFewChords)) {
        return 0;
    }
    if (planned <= kPerhapsOne) {
        double const square = c.endH * c.endH + c.endV * c.endV;
        ChordDeviation<double> const off =
            DeviationOf(1.0, c.endH, c.endV, square, c.aH, c.aV, c.lastH, c.lastV);
        if (IsChord(square, limit) && off.Square() <= limit * square) {
            return 1;
        }
        if (planned <= 1.0) {
            return 0;
        }
    }
    int const whole = static_cast<int>(planned);
    int const chords = whole < planned ? whole + 1 : whole;
    Vector const originH = Vector(Lane<1>(p0));
    Vector const originV = Vector(Lane<0>(p0));
    if (DivideIntoFew(lanes, panels, chords, limit, originH, originV, out)) {
        return chords;
    }
    if (chords < kFewChords &&
        DivideIntoFew(lanes, panels, chords + 1, limit, originH, originV, out)) {
        return chords + 1;
    }
    return 0;
}

} // namespace trammel_detail

#endif
