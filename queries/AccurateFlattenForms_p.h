// SPDX-License-Identifier: MIT
//
// The arithmetic of flattening, written for any kind of pack (Pack_p.h). AccurateFlatten.cpp tells
// the method. Not installed.

#ifndef TRAMMEL_ACCURATEFLATTENFORMS_P_H
#define TRAMMEL_ACCURATEFLATTENFORMS_P_H

#include "AccurateFlatten_p.h"
#include "Pack_p.h"

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

/// Places on a curve: parameters, points relative to the start, thirds of the derivatives.
template <class Pack> struct PlaceLanes { Pack t, h, v, dh, dv; };

/// The places before `b`, the one before the first being the last one of `a`.
template <class Pack>
[[gnu::always_inline]] inline PlaceLanes<Pack> Preceding(PlaceLanes<Pack> const& a,
                                                         PlaceLanes<Pack> const& b) {
    return {Pack::Preceding(a.t, b.t), Pack::Preceding(a.h, b.h), Pack::Preceding(a.v, b.v),
            Pack::Preceding(a.dh, b.dh), Pack::Preceding(a.dv, b.dv)};
}

/// A cubic in all lanes.
template <class Pack> struct CubicLanes {
    Pack aH, aV, twoBH, twoBV, threeAH, threeAV, threeBH, threeBV, cH, cV;
    Pack endH, endV, lastH, lastV;

    [[gnu::always_inline]] inline explicit CubicLanes(FlatCubic const& c)
        : aH(Pack::All(c.aH)), aV(Pack::All(c.aV)), twoBH(Pack::All(2.0 * c.bH)),
          twoBV(Pack::All(2.0 * c.bV)), threeAH(Pack::All(3.0 * c.aH)),
          threeAV(Pack::All(3.0 * c.aV)), threeBH(Pack::All(3.0 * c.bH)),
          threeBV(Pack::All(3.0 * c.bV)), cH(Pack::All(c.cH)), cV(Pack::All(c.cV)),
          endH(Pack::All(c.endH)), endV(Pack::All(c.endV)), lastH(Pack::All(c.lastH)),
          lastV(Pack::All(c.lastV)) {}
    [[gnu::always_inline]] inline PlaceLanes<Pack> Start() const {
        Pack const zero = Pack::All(0.0);
        return {zero, zero, zero, aH, aV};
    }
    /// At 1, and for a NaN, the end exactly.
    [[gnu::always_inline]] inline PlaceLanes<Pack> At(Pack const& t) const {
        auto const inside = t < Pack::All(1.0);
        Pack const riseH = cH * t;
        Pack const riseV = cV * t;
        return {t, Pack::Choose(inside, (threeAH + (threeBH + riseH) * t) * t, endH),
                Pack::Choose(inside, (threeAV + (threeBV + riseV) * t) * t, endV),
                Pack::Choose(inside, aH + (twoBH + riseH) * t, lastH),
                Pack::Choose(inside, aV + (twoBV + riseV) * t, lastV)};
    }
};

/// |B' x B''| / 18.
template <class Pack> [[gnu::always_inline]] inline Pack BendOf(FlatCubic const& c, Pack const& t) {
    Pack const bend0 = Pack::All(c.aH * c.bV - c.aV * c.bH);
    Pack const bend1 = Pack::All(c.aH * c.cV - c.aV * c.cH);
    Pack const bend2 = Pack::All(c.bH * c.cV - c.bV * c.cH);
    return Pack::Abs(bend0 + (bend1 + bend2 * t) * t);
}

/// In which lanes a piece from one place to the other keeps the tolerance, whose square is `limit`.
template <class Pack>
[[gnu::always_inline]] inline auto Keep(PlaceLanes<Pack> const& from, PlaceLanes<Pack> const& to,
                                        Pack const& limit) {
    Pack const h = to.h - from.h;
    Pack const v = to.v - from.v;
    Pack const square = h * h + v * v;
    Deviation<Pack> const off =
        DeviationOf(to.t - from.t, h, v, square, from.dh, from.dv, to.dh, to.dv);
    return (off.across * off.across + off.along * off.along <= limit * square) & (limit < square);
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
    // With n steps of equal parameters the curve keeps the tolerance where its second differences
    // are no longer than 4n²/3 tolerances. Of those that take twice kFewPoints such steps nearly
    // all have more than kFewPoints of equal bend.
    constexpr double kMost = 4.0 * kFewPoints * kFewPoints;
    bool const many = SquaredBend(curve) * (scale * scale) > kMost * kMost;
    if (!many) {
        Integrate<Pack>(curve, scale, kFewPanels, plan);
    }
    if (many || plan.sums[kFewPanels] > kFewPoints) {
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
        // Never negative: rounding keeps order, so neither the sums nor their multiples decrease.
        int here = end - plan.done;
        if (here <= FlatRun::kRoom - filled) {
            ++plan.panel;
        } else {
            here = FlatRun::kRoom - filled;
        }
        // The density is linear: with its values r0 and r1, the integral up to x is
        // r0·x + (r1 - r0)·x²/2 panels, solved for x in the form that does not cancel.
        double const density = plan.density[panel];
        Pack const r0 = Pack::All(density);
        Pack const rise = Pack::All(2.0 * (plan.density[panel + 1] - density));
        Pack const square = r0 * r0;
        Pack const sum = Pack::All(plan.sums[panel]);
        // One pack for no chords, too: a branch could not foresee which panels have none.
        int k = 0;
        do {
            Pack const chord = Pack::All(plan.done + 1 + k) + Pack::Load(kCounting);
            Pack const y =
                GreaterOf((chord * Pack::All(plan.step) - sum) * Pack::All(panels), zero);
            Pack const root = Pack::Sqrt(GreaterOf(square + rise * y, zero));
            Pack const x = (y + y) / (r0 + root);
            Pack const inside = Pack::Choose(x < one, x, one); // 1 for a NaN
            ((Pack::All(panel) + inside) * Pack::All(width)).Store(t + 1 + filled + k);
            k += 4;
        } while (k < here);
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

/// The middles of four panels.
inline constexpr double kMiddles[4] = {0.125, 0.375, 0.625, 0.875};

/// At [n], j/n for j from 1 on; 1 from n on.
inline constexpr double kShares[kFewChords + 1][kFewChords] = {
    {1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0}, // none
    {1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0},
    {1.0 / 2, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0},
    {1.0 / 3, 2.0 / 3, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0},
    {1.0 / 4, 2.0 / 4, 3.0 / 4, 1.0, 1.0, 1.0, 1.0, 1.0},
    {1.0 / 5, 2.0 / 5, 3.0 / 5, 4.0 / 5, 1.0, 1.0, 1.0, 1.0},
    {1.0 / 6, 2.0 / 6, 3.0 / 6, 4.0 / 6, 5.0 / 6, 1.0, 1.0, 1.0},
    {1.0 / 7, 2.0 / 7, 3.0 / 7, 4.0 / 7, 5.0 / 7, 6.0 / 7, 1.0, 1.0},
    {1.0 / 8, 2.0 / 8, 3.0 / 8, 4.0 / 8, 5.0 / 8, 6.0 / 8, 7.0 / 8, 1.0}};

/// The integral of the density in units of four, the density constant on each of four panels.
template <class Pack> struct FewPanels {
    double total;
    Pack total4;
    Pack sums[3];     ///< up to the ends of all panels but the last one
    Pack inverses[4]; ///< of the densities

    [[gnu::always_inline]] inline FewPanels(CubicLanes<Pack> const& c, FlatCubic const& curve,
                                            double scale) {
        Pack const t = Pack::Load(kMiddles);
        Pack const h = c.aH + (c.twoBH + c.cH * t) * t;
        Pack const v = c.aV + (c.twoBV + c.cV * t) * t;
        Pack const speed = Pack::Sqrt(h * h + v * v);
        Pack const density = Pack::Sqrt(BendOf<Pack>(curve, t) * Pack::All(scale) / speed);
        double d[4];
        double inverse[4];
        density.Store(d);
        (Pack::All(1.0) / density).Store(inverse);
        double const two = d[0] + d[1];
        sums[0] = Pack::All(d[0]);
        sums[1] = Pack::All(two);
        sums[2] = Pack::All(two + d[2]);
        total = two + (d[2] + d[3]);
        total4 = Pack::All(total);
        for (int i = 0; i < 4; ++i) {
            inverses[i] = Pack::All(inverse[i]);
        }
    }
    /// The parameters up to which the given shares of the integral lie. NaN where they lie on a
    /// panel without density, which only a share of 0 or 1 does.
    [[gnu::always_inline]] inline Pack At(Pack const& share) const {
        Pack const y = share * total4;
        Pack sum = Pack::All(0.0);
        Pack panel = sum;
        Pack inverse = inverses[0];
        for (int i = 0; i < 3; ++i) {
            auto const beyond = sums[i] <= y;
            sum = Pack::Choose(beyond, sums[i], sum);
            panel = Pack::Choose(beyond, Pack::All(i + 1), panel);
            inverse = Pack::Choose(beyond, inverses[i + 1], inverse);
        }
        return (panel + (y - sum) * inverse) * Pack::All(0.25);
    }
};

/// Computes the points that divide the curve into `chords` by equal shares of the integral, and
/// stores them; true when all chords keep the tolerance, whose square is `limit`.
template <class Pack>
[[gnu::always_inline]] inline bool DivideIntoFew(CubicLanes<Pack> const& c,
                                                 FewPanels<Pack> const& panels, int chords,
                                                 double limit, FlatRun& run) {
    PlaceLanes<Pack> before = c.Start();
    unsigned keeping = 0;
    for (int i = 0; i < chords; i += 4) {
        Pack const share = Pack::Load(kShares[chords] + i);
        Pack const t = Pack::Choose(share < Pack::All(1.0), panels.At(share), Pack::All(1.0));
        PlaceLanes<Pack> const places = c.At(t);
        places.h.Store(run.h + 1 + i);
        places.v.Store(run.v + 1 + i);
        auto const keeps = Keep(Preceding(before, places), places, Pack::All(limit));
        keeping |= keeps.Bits() << static_cast<unsigned>(i);
        before = places;
    }
    return (~keeping & ((1U << static_cast<unsigned>(chords)) - 1)) == 0;
}

template <class Pack>
[[gnu::always_inline]] inline int FewChordsForm(FlatCubic const& c, double scale, double tolerance,
                                                FlatRun& run) {
    CubicLanes<Pack> const lanes(c);
    FewPanels<Pack> const panels(lanes, c, scale);
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
