// SPDX-License-Identifier: MIT

// The arithmetic of flattening, written for either vector of four doubles (Vector_p.h).
// queries/AccurateFlatten.cpp tells the method. Each of two files compiles it for one vector, and
// no other file includes this header. Not installed.

#ifndef TRAMMEL_FLATTENKERNELFORMS_P_H
#define TRAMMEL_FLATTENKERNELFORMS_P_H

#include "FlattenKernels_p.h"
#include "Vector_p.h"

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

/// Computes the plan's densities and sums for `panels` panels.
template <class Vector>
[[gnu::always_inline]] inline void Integrate(FlatCubic const& c, double scale, int panels,
                                             FlatPlan& plan) {
    plan.panels = panels;
    double const width = 1.0 / panels;
    Vector const aH = Vector(c.aH);
    Vector const aV = Vector(c.aV);
    Vector const twoBH = Vector(2.0 * c.bH);
    Vector const twoBV = Vector(2.0 * c.bV);
    Vector const cH = Vector(c.cH);
    Vector const cV = Vector(c.cV);
    Vector const bend0 = Vector(c.aH * c.bV - c.aV * c.bH);
    Vector const bend1 = Vector(c.aH * c.cV - c.aV * c.cH);
    Vector const bend2 = Vector(c.bH * c.cV - c.bV * c.cH);
    double speed[kManyPanels + 8]; // entry i + 1 is for the start of panel i
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
}

template <class Vector>
[[gnu::always_inline]] inline double PlanFlatteningForm(FlatCubic const& curve, double scale,
                                                        FlatPlan& plan) {
    // With n equal steps of the parameter the curve keeps the tolerance when its second differences
    // are no longer than 4n²/3 tolerances. Nearly all curves that take twice kFewPoints such steps
    // take more than kFewPoints steps of equal bend.
    constexpr double kMost = 4.0 * kFewPoints * kFewPoints;
    bool const many = SquaredBend(curve) * (scale * scale) > kMost * kMost;
    if (!many) {
        Integrate<Vector>(curve, scale, kFewPanels, plan);
    }
    if (many || plan.sums[kFewPanels] > kFewPoints) {
        Integrate<Vector>(curve, scale, kManyPanels, plan);
    }
    return plan.sums[plan.panels];
}

/// Stores the parameters at the ends of the next chords. Returns their number.
template <class Vector>
[[gnu::always_inline]] inline int NextParameters(FlatPlan& plan, double (&t)[FlatRun::kRoom + 8]) {
    int filled = 0;
    double const panels = plan.panels;
    double const width = 1.0 / panels;
    Vector const zero = Vector(0.0);
    Vector const one = Vector(1.0);
    while (filled < FlatRun::kRoom && plan.done < plan.chords) {
        // So many chords end in this panel or before it. In the last panel all of them do.
        int const panel = plan.panel;
        int end = plan.chords;
        if (panel + 1 < plan.panels) {
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

template <class Vector>
[[gnu::always_inline]] inline void NextFlatRunForm(FlatCubic const& c, double tolerance,
                                                   FlatPlan& plan, FlatRun& run) {
    int const count = NextParameters<Vector>(plan, run.t);
    run.count = count;
    run.failing = 0;
    Vector const aH = Vector(c.aH);
    Vector const aV = Vector(c.aV);
    Vector const bH = Vector(c.bH);
    Vector const bV = Vector(c.bV);
    Vector const cH = Vector(c.cH);
    Vector const cV = Vector(c.cV);
    Vector const three = Vector(3.0);
    for (int i = 1; i <= count; i += 4) {
        Vector const t = Vector::Load(run.t + i);
        Vector const riseH = cH * t;
        Vector const riseV = cV * t;
        ((three * aH + (three * bH + riseH) * t) * t).Store(run.h + i);
        ((three * aV + (three * bV + riseV) * t) * t).Store(run.v + i);
        (aH + ((bH + bH) + riseH) * t).Store(run.dh + i);
        (aV + ((bV + bV) + riseV) * t).Store(run.dv + i);
    }
    if (count > 0 && run.t[count] == 1.0) {
        run.h[count] = c.endH;
        run.v[count] = c.endV;
        run.dh[count] = c.lastH;
        run.dv[count] = c.lastV;
    }
    Vector const limit = Vector(tolerance * tolerance);
    std::uint64_t keeping = 0;
    for (int i = 0; i < count; i += 4) {
        Vector const chordH = Vector::Load(run.h + i + 1) - Vector::Load(run.h + i);
        Vector const chordV = Vector::Load(run.v + i + 1) - Vector::Load(run.v + i);
        Vector const square = chordH * chordH + chordV * chordV;
        ChordDeviation<Vector> const off =
            DeviationOf(Vector::Load(run.t + i + 1) - Vector::Load(run.t + i), chordH, chordV,
                        square, Vector::Load(run.dh + i), Vector::Load(run.dv + i),
                        Vector::Load(run.dh + i + 1), Vector::Load(run.dv + i + 1));
        auto const keeps = (off.Square() <= limit * square) & IsChord(square, limit);
        keeping |= std::uint64_t{keeps.Bits()} << static_cast<unsigned>(i);
    }
    run.failing = ~keeping & ((std::uint64_t{1} << static_cast<unsigned>(count)) - 1);
}

/// The parameters in the middles of four panels.
inline constexpr double kMiddles[4] = {0.125, 0.375, 0.625, 0.875};

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
        Vector const h = c.aH + (c.twoBH + c.cH * t) * t;
        Vector const v = c.aV + (c.twoBV + c.cV * t) * t;
        Vector const speed = Sqrt(h * h + v * v);
        Vector const density = Sqrt(BendOf<Vector>(curve, t) * Vector(scale) / speed);
        double d[4];
        double inverse[4];
        density.Store(d);
        (Vector(1.0) / density).Store(inverse);
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
    /// Returns the parameters up to which the given shares of the integral lie. They are NaN on a
    /// panel without density. Only a share of 0 or 1 lies on such a panel.
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
/// integral. True when all chords keep the tolerance, whose square is `limit`.
template <class Vector>
[[gnu::always_inline]] inline bool DivideIntoFew(CubicLanes<Vector> const& c,
                                                 FewPanels<Vector> const& panels, int chords,
                                                 double limit, FlatRun& run) {
    PlaceLanes<Vector> before = c.Start();
    unsigned keeping = 0;
    for (int i = 0; i < chords; i += 4) {
        Vector const share = Vector::Load(kShares[chords] + i);
        Vector const t = Select(share < Vector(1.0), panels.At(share), Vector(1.0));
        PlaceLanes<Vector> const places = c.At(t);
        places.h.Store(run.h + 1 + i);
        places.v.Store(run.v + 1 + i);
        auto const keeps = Keep(Preceding(before, places), places, Vector(limit));
        keeping |= keeps.Bits() << static_cast<unsigned>(i);
        before = places;
    }
    return (~keeping & ((1U << static_cast<unsigned>(chords)) - 1)) == 0;
}

template <class Vector>
[[gnu::always_inline]] inline int FewChordsForm(FlatCubic const& c, double scale, double tolerance,
                                                FlatRun& run) {
    CubicLanes<Vector> const lanes(c);
    FewPanels<Vector> const panels(lanes, c, scale);
    double const planned = 0.25 * panels.total;
    if (!(planned > 1.0 && planned <= kFewChords)) { // also for a NaN
        return 0;
    }
    int const whole = static_cast<int>(planned);
    int const chords = whole < planned ? whole + 1 : whole;
    double const limit = tolerance * tolerance;
    if (DivideIntoFew(lanes, panels, chords, limit, run)) {
        return chords;
    }
    if (chords < kFewChords && DivideIntoFew(lanes, panels, chords + 1, limit, run)) {
        return chords + 1;
    }
    return 0;
}

} // namespace trammel_detail

#endif
