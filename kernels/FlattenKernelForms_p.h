// SPDX-License-Identifier: MIT

// The arithmetic of flattening into many chords, written for either vector of four doubles
// (Vector_p.h). queries/AccurateFlatten.cpp tells the method. Each of two files compiles it for one
// vector, and no other file includes this header. Not installed.

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

} // namespace trammel_detail

#endif
