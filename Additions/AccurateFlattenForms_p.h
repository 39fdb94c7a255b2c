// SPDX-License-Identifier: MIT
//
// The arithmetic of flattening, written for any kind of pack (UPack_p.h). AccurateFlatten.cpp tells
// the method. Not installed.

#ifndef TRAMMEL_ACCURATEFLATTENFORMS_P_H
#define TRAMMEL_ACCURATEFLATTENFORMS_P_H

#include "AccurateFlatten_p.h"
#include "UPack_p.h"

#include <cstdint>
#include <type_traits>

namespace trammel_detail {

/// `x` in every lane; a double has one.
template <class Number> [[gnu::always_inline]] inline Number Filled(double x) {
    if constexpr (std::is_same_v<Number, double>) {
        return x;
    } else {
        return Number::All(x);
    }
}
template <class Number> [[gnu::always_inline]] inline Number AbsOf(Number const& x) {
    if constexpr (std::is_same_v<Number, double>) {
        return __builtin_fabs(x);
    } else {
        return Number::Abs(x);
    }
}
/// The greater one; `b` where `a` is NaN.
template <class Pack> [[gnu::always_inline]] inline Pack GreaterOf(Pack const& a, Pack const& b) {
    return Pack::Choose(b < a, a, b);
}

/// Upper bounds on how far a piece and its chord are apart, times the chord's length.
template <class Number> struct Deviation {
    Number across; ///< from the line through the ends
    Number along;  ///< beyond the ends
};

/// Of a piece over a parameter range `h`, with the chord (dh, dv) of squared length `square`, and
/// thirds of the derivatives at its ends.
template <class Number>
[[gnu::always_inline]] inline Deviation<Number>
DeviationOf(Number const& h, Number const& dh, Number const& dv, Number const& square,
            Number const& v0h, Number const& v0v, Number const& v1h, Number const& v1v) {
    Number const e1 = h * (dh * v0v - dv * v0h);
    Number const e2 = h * (dv * v1h - dh * v1v);
    // By magnitudes instead of comparisons: the greater of |e1| and |e2|, and the lesser one,
    // negative when on the other side of the chord, which counts 11/36 when positive, and
    // 4/9 - 1/sqrt(12), rounded down, when negative.
    Number const half = Filled<Number>(0.5);
    Number const sum = AbsOf(e1 + e2);
    Number const difference = AbsOf(e1 - e2);
    Number const greater = half * (sum + difference);
    Number const lesser = half * (sum - difference);
    constexpr double kSame = 11.0 / 36.0;
    constexpr double kOpposite = 0.1557;
    Number const across = Filled<Number>(4.0 / 9.0) * greater +
                          Filled<Number>(0.5 * (kSame + kOpposite)) * lesser +
                          Filled<Number>(0.5 * (kSame - kOpposite)) * AbsOf(lesser);
    // Control points at a1 and square - a2, the ends at 0 and square; distances from the middle.
    Number const middle = half * square;
    Number const a1 = AbsOf(h * (dh * v0h + dv * v0v) - middle);
    Number const a2 = AbsOf(h * (dh * v1h + dv * v1v) - middle);
    Number const beyond = half * (a1 + a2 + AbsOf(a1 - a2)) - middle;
    return {across, Filled<Number>(0.375) * (beyond + AbsOf(beyond))};
}

/// 0, 1, 2 and 3.
inline constexpr double kCounting[4] = {0.0, 1.0, 2.0, 3.0};

/// Takes the plan's densities and sums from `panels` panels.
template <class Pack>
[[gnu::always_inline]] inline void Integrate(FlatCubic const& c, double scale, int panels,
                                             FlatPlan& plan) {
    plan.panels = panels;
    double const width = 1.0 / panels;
    Pack const aH = Pack::All(c.aH);
    Pack const aV = Pack::All(c.aV);
    Pack const twoBH = Pack::All(2.0 * c.bH);
    Pack const twoBV = Pack::All(2.0 * c.bV);
    Pack const cH = Pack::All(c.cH);
    Pack const cV = Pack::All(c.cV);
    Pack const bend0 = Pack::All(c.aH * c.bV - c.aV * c.bH);
    Pack const bend1 = Pack::All(c.aH * c.cV - c.aV * c.cH);
    Pack const bend2 = Pack::All(c.bH * c.cV - c.bV * c.cH);
    double speed[kManyPanels + 8]; // with one more on either side
    for (int i = 0; i <= panels; i += 4) {
        Pack const t = (Pack::All(i) + Pack::Load(kCounting)) * Pack::All(width);
        Pack const h = aH + (twoBH + cH * t) * t;
        Pack const v = aV + (twoBV + cV * t) * t;
        Pack::Sqrt(h * h + v * v).Store(speed + i + 1);
        (Pack::Abs(bend0 + (bend1 + bend2 * t) * t) * Pack::All(scale)).Store(plan.density + i);
    }
    speed[0] = 0.0;
    speed[panels + 2] = 0.0;
    Pack const still = Pack::All(0x1p-1022);
    for (int i = 0; i <= panels; i += 4) {
        // Where the curve stands still the bend is infinite, for a moment; what is near counts.
        Pack const near = Pack::All(0.25) * (Pack::Load(speed + i) + Pack::Load(speed + i + 2));
        Pack const fast = GreaterOf(GreaterOf(Pack::Load(speed + i + 1), near), still);
        Pack::Sqrt(Pack::Load(plan.density + i) / fast).Store(plan.density + i);
    }
    double sum = 0.0;
    double const* const d = plan.density;
    double const share = 0.5 * width;
    plan.sums[0] = 0.0;
    for (int i = 0; i < panels; i += 4) {
        // So that but one addition waits for the panels before.
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

template <class Pack>
[[gnu::always_inline]] inline double PlanFlatteningForm(FlatCubic const& curve, double scale,
                                                        FlatPlan& plan) {
    Integrate<Pack>(curve, scale, kFewPanels, plan);
    if (plan.sums[kFewPanels] > kFewPoints) {
        Integrate<Pack>(curve, scale, kManyPanels, plan);
    }
    return plan.sums[plan.panels];
}

/// Stores the parameters at the ends of the next chords; returns how many.
template <class Pack>
[[gnu::always_inline]] inline int NextParameters(FlatPlan& plan, double (&t)[FlatRun::kRoom + 8]) {
    int filled = 0;
    double const panels = plan.panels;
    double const width = 1.0 / panels;
    Pack const zero = Pack::All(0.0);
    Pack const one = Pack::All(1.0);
    while (filled < FlatRun::kRoom && plan.done < plan.chords) {
        // Chords that end in this panel; in the last one, all that remain.
        int const panel = plan.panel;
        int end = plan.chords;
        if (panel + 1 < plan.panels) {
            double const ends = plan.sums[panel + 1] * plan.perChord;
            if (ends < end) { // false for a NaN
                end = static_cast<int>(ends);
            }
        }
        int here = end - plan.done;
        if (here <= FlatRun::kRoom - filled) {
            ++plan.panel;
        } else {
            here = FlatRun::kRoom - filled;
        }
        if (here <= 0) {
            continue;
        }
        // The density is linear: with its values r0 and r1, the integral up to x is
        // r0·x + (r1 - r0)·x²/2 panels, solved for x in the form that does not cancel.
        double const density = plan.density[panel];
        Pack const r0 = Pack::All(density);
        Pack const rise = Pack::All(2.0 * (plan.density[panel + 1] - density));
        Pack const square = r0 * r0;
        Pack const sum = Pack::All(plan.sums[panel]);
        for (int k = 0; k < here; k += 4) {
            Pack const chord = Pack::All(plan.done + 1 + k) + Pack::Load(kCounting);
            Pack const y =
                GreaterOf((chord * Pack::All(plan.step) - sum) * Pack::All(panels), zero);
            Pack const root = Pack::Sqrt(GreaterOf(square + rise * y, zero));
            Pack const x = (y + y) / (r0 + root);
            Pack const inside = Pack::Choose(x < one, x, one); // 1 for a NaN
            ((Pack::All(panel) + inside) * Pack::All(width)).Store(t + 1 + filled + k);
        }
        filled += here;
        plan.done += here;
    }
    if (plan.done == plan.chords && filled > 0) {
        t[filled] = 1.0;
    }
    one.Store(t + 1 + filled); // for the rest of the last pack
    return filled;
}

template <class Pack>
[[gnu::always_inline]] inline void NextFlatRunForm(FlatCubic const& c, double tolerance,
                                                   FlatPlan& plan, FlatRun& run) {
    int const count = NextParameters<Pack>(plan, run.t);
    run.count = count;
    run.failing = 0;
    Pack const aH = Pack::All(c.aH);
    Pack const aV = Pack::All(c.aV);
    Pack const bH = Pack::All(c.bH);
    Pack const bV = Pack::All(c.bV);
    Pack const cH = Pack::All(c.cH);
    Pack const cV = Pack::All(c.cV);
    Pack const three = Pack::All(3.0);
    for (int i = 1; i <= count; i += 4) {
        Pack const t = Pack::Load(run.t + i);
        Pack const riseH = cH * t;
        Pack const riseV = cV * t;
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
    Pack const limit = Pack::All(tolerance * tolerance);
    std::uint64_t keeping = 0;
    for (int i = 0; i < count; i += 4) {
        Pack const chordH = Pack::Load(run.h + i + 1) - Pack::Load(run.h + i);
        Pack const chordV = Pack::Load(run.v + i + 1) - Pack::Load(run.v + i);
        Pack const square = chordH * chordH + chordV * chordV;
        Deviation<Pack> const off =
            DeviationOf(Pack::Load(run.t + i + 1) - Pack::Load(run.t + i), chordH, chordV, square,
                        Pack::Load(run.dh + i), Pack::Load(run.dv + i), Pack::Load(run.dh + i + 1),
                        Pack::Load(run.dv + i + 1));
        auto const keeps =
            (off.across * off.across + off.along * off.along <= limit * square) & (limit < square);
        keeping |= std::uint64_t{keeps.Bits()} << static_cast<unsigned>(i);
    }
    run.failing = ~keeping & ((std::uint64_t{1} << static_cast<unsigned>(count)) - 1);
}

} // namespace trammel_detail

#endif
