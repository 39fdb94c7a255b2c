// SPDX-License-Identifier: MIT

// The arithmetic of flattening, written for either vector of four doubles (Vector_p.h).
// queries/AccurateFlatten.cpp tells the method. Each of two files compiles it for one vector, by
// way of FlattenPackForms_p.h, and no other file includes this header. Not installed.

#ifndef TRAMMEL_FLATTENKERNELFORMS_P_H
#define TRAMMEL_FLATTENKERNELFORMS_P_H

#include "FlattenKernels_p.h"
#include "Vector_p.h"

#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// Returns the curve with v and h of its points in turn.
[[gnu::always_inline]] inline FlatCubic CubicOf(double const* points) {
    Double2 const p0 = Double2::Load(points);
    Double2 const p1 = Double2::Load(points + 2);
    Double2 const p2 = Double2::Load(points + 4);
    Double2 const p3 = Double2::Load(points + 6);
    Double2 const a = p1 - p0;
    Double2 const middle = p2 - p1;
    Double2 const b = middle - a;
    Double2 const last = p3 - p2;
    Double2 const c = (last - middle) - b;
    Double2 const end = p3 - p0;
    return {Lane<1>(a), Lane<0>(a),   Lane<1>(b),   Lane<0>(b),    Lane<1>(c),
            Lane<0>(c), Lane<1>(end), Lane<0>(end), Lane<1>(last), Lane<0>(last)};
}

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

// ------------------------------------------------------------------------------------------------
// Few and some chords

/// The vectors of a cubic that a density takes: a third of the derivative is a + 2bt + ct².
template <class Vector> struct BendCubic { Vector aH, aV, bH, bV, cH, cV; };

/// Chords per unit of the parameter, and nearly the inverse.
template <class Vector> struct Density { Vector chords, inverse; };

/// The width of a panel as it counts for the density in its middle.
struct PanelShape {
    double speed; ///< the mean of (2x)² over the panel; half of it does better in trials
    double bend;  ///< the mean of x² over the panel
};
constexpr PanelShape ShapeOf(int panels) {
    double const square = 1.0 / (12.0 * panels * panels);
    return {2.0 * square, square};
}
inline constexpr PanelShape kFewShape = ShapeOf(kFewPanels);
inline constexpr PanelShape kSomeShape = ShapeOf(kSomePanels);

/// Returns the density of panels from the derivatives in their middles, at `t`.
///
/// Speed and bend are means over the panel, as they are 0 only for a moment: at a cusp and where
/// the curve turns the other way. The density is neither 0, infinite nor NaN. It is at least 1/16,
/// so that the parameters keep enough digits.
template <class Vector>
[[gnu::always_inline]] inline Density<Vector> DensityOf(BendCubic<Vector> const& c, Vector const& t,
                                                        Vector const& scale,
                                                        PanelShape const& shape) {
    Vector const turnH = c.bH + c.cH * t;
    Vector const turnV = c.bV + c.cV * t;
    Vector const h = c.aH + (c.bH + turnH) * t;
    Vector const v = c.aV + (c.bV + turnV) * t;
    Vector const bend = h * turnV - v * turnH;
    Vector const rise = h * c.cV - v * c.cH;
    Vector const bends = bend * bend + Vector(shape.bend) * (rise * rise);
    Vector const speeds = (h * h + v * v) + Vector(shape.speed) * (turnH * turnH + turnV * turnV);
    // The density is sqrt(scale·bend / speed), so its fourth power is wanted.
    Vector const fourth = (scale * scale) * bends / speeds;
    Vector const x = Min(Max(fourth, Vector(0x1p-16)), Vector(0x1p200));
    // A step of Newton's method for the inverse; the error falls to 0.25 %, which suffices.
    Vector const rough = RoughInverseFourthRoot(x);
    Vector const rough2 = rough * rough;
    Vector const y = rough * (Vector(1.25) - (Vector(0.25) * x) * (rough2 * rough2));
    return {(x * y) * (y * y), y};
}

/// The parameters in a panel are first + y·(each + y·more), where y is the integral of the density.
///
/// The inverse of the density is taken as linear in y. It has the value of the panel in its middle,
/// and a slope by the neighbours' values.
template <class Vector> struct PanelLine {
    Vector first, each, more;

    /// `index` counts panels of the width. `start` is the integral up to the panel, in widths.
    [[gnu::always_inline]] inline PanelLine(double width, Vector const& index, Vector const& start,
                                            Density<Vector> const& density,
                                            Vector const& inverseBefore,
                                            Vector const& inverseBehind) {
        Vector const slope = (inverseBehind - inverseBefore) * (Vector(0.25) * density.chords);
        // The parameters increase.
        Vector const turn = Min(Max(slope, Vector(-0.95)), Vector(0.95));
        Vector const rest = Vector(1.0) - turn;
        Vector const from = start * density.inverse;
        Vector const turned = turn * from;
        Vector const rate = Vector(width) * density.inverse;
        first = Vector(width) * (index - from * (rest - turned));
        each = rate * (rest - (turned + turned));
        more = rate * (turn * density.inverse);
    }
};

/// The vectors of a cubic that its points and chords take, as they stand in a FlatPack.
template <class Vector> struct ChordCubic {
    Vector bH, bV, cH, cV, threeAH, threeAV, threeBH, threeBV;
    Vector quarter; ///< of the square of c
    Vector originH, originV;
};

/// Parameters, and points relative to the start.
template <class Vector> struct ChordEnds { Vector t, h, v; };

/// Returns the points at four parameters.
template <class Vector>
[[gnu::always_inline]] inline ChordEnds<Vector> EndsAt(ChordCubic<Vector> const& c,
                                                       Vector const& t) {
    return {t, (c.threeAH + (c.threeBH + c.cH * t) * t) * t,
            (c.threeAV + (c.threeBV + c.cV * t) * t) * t};
}

/// Stores the points at four parameters: v and h in turn, as sums of the origin and the point.
/// Returns the mask of the chords to them that are known to keep the tolerance, whose square is
/// `limit`. `before` holds the ends of the chords before, and gets these.
///
/// Let w be a sixth of the second derivative in the middle of a chord d of width h. The curve's
/// distance from the chord's line is
///
///     3h²·s(1 - s)·|d x w + (s - 1/2)·h/3·(d x c)| / |d|,   0 <= s <= 1
///
/// Its maximum is a convex function of the two products. So linear interpolation bounds it, between
/// quotients of 0, 3/2 and infinity. The curve does not leave the chord at an end where no second
/// derivative on it is longer than 2·|d|/h².
///
/// A curve runs onward if no two of its derivatives point more than a right angle apart. Then it
/// does not leave any chord at an end, and its chords are as long as they have to be.
template <bool kOnward, class Vector>
[[gnu::always_inline]] inline unsigned StoreChords(ChordCubic<Vector> const& c, Vector const& limit,
                                                   Vector const& t, ChordEnds<Vector>& before,
                                                   double* out) {
    ChordEnds<Vector> const ends = EndsAt(c, t);
    double* const to[4] = {out, out + 2, out + 4, out + 6};
    StorePairs(c.originV + ends.v, c.originH + ends.h, to);
    Vector const width = t - Preceding(before.t, t);
    Vector const dh = ends.h - Preceding(before.h, ends.h);
    Vector const dv = ends.v - Preceding(before.v, ends.v);
    before = ends;
    Vector const middle = t - Vector(0.5) * width;
    Vector const wh = c.bH + c.cH * middle;
    Vector const wv = c.bV + c.cV * middle;
    Vector const square = dh * dh + dv * dv;
    Vector const width2 = width * width;
    Vector const mean = Abs(dh * wv - dv * wh);
    Vector const change = width * Abs(dh * c.cV - dv * c.cH);
    Vector const off = width2 * Max(Vector(0.75) * mean + Vector(0.00759) * change,
                                    Vector(0.68921) * mean + Vector(0.048113) * change);
    auto const near = off * off <= limit * square;
    if constexpr (kOnward) {
        return near.Bits();
    } else {
        Vector const second = (wh * wh + wv * wv) + width2 * c.quarter;
        auto const within = (width2 * width2) * second <= Vector(1.0 / 18.0) * square;
        return (near & within & IsChord(square, limit)).Bits();
    }
}

inline constexpr double kFewMiddles[kFewPanels] = {0.125, 0.375, 0.625, 0.875};
/// The numbers of chords.
inline constexpr double kNumbers[kSomeChords] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11,
                                                 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22,
                                                 23, 24, 25, 26, 27, 28, 29, 30, 31, 32};
/// The parameter as a function of the integral of the density.
template <class Vector> struct FewPanels {
    Vector sums[kFewPanels - 1]; ///< the integrals up to the ends of the panels but the last
    Vector first[kFewPanels];    ///< see PanelLine
    Vector each[kFewPanels];
    Vector more[kFewPanels];

    [[gnu::always_inline]] inline Vector At(Vector const& y) const {
        Vector from = first[0];
        Vector rate = each[0];
        Vector rise = more[0];
        for (int i = 0; i + 1 < kFewPanels; ++i) {
            auto const beyond = sums[i] <= y;
            from = Select(beyond, first[i + 1], from);
            rate = Select(beyond, each[i + 1], rate);
            rise = Select(beyond, more[i + 1], rise);
        }
        return from + y * (rate + y * rise);
    }
};

/// Tells whether the chord from end to end is near enough to the curve's line. StoreChords says
/// how. Between quotients of 3/2 and infinity there is one of 6 more.
template <class Number>
[[gnu::always_inline]] inline auto
IsNearWhole(Number const& endH, Number const& endV, Number const& limit, Number const& bH,
            Number const& bV, Number const& cH, Number const& cV) {
    Number const square = endH * endH + endV * endV;
    Number const wh = bH + Number(0.5) * cH;
    Number const wv = bV + Number(0.5) * cV;
    Number const mean = Abs(endH * wv - endV * wh);
    Number const change = Abs(endH * cV - endV * cH);
    Number const off = Max(Max(Number(0.75) * mean + Number(0.00759) * change,
                               Number(0.71886) * mean + Number(0.02835) * change),
                           Number(0.6003) * mean + Number(0.048113) * change);
    return off * off <= limit * square;
}
/// The scalar's root, beside those of the vectors.
[[gnu::always_inline]] inline double Sqrt(double x) { return __builtin_sqrt(x); }
/// Returns whether both hold.
[[gnu::always_inline]] inline bool Both(bool a, bool b) { return a && b; }
template <class Mask> [[gnu::always_inline]] inline Mask Both(Mask const& a, Mask const& b) {
    return a & b;
}
/// Tells whether that chord keeps the tolerance, whose square is `limit`.
template <class Number>
[[gnu::always_inline]] inline auto
KeepsWhole(Number const& endH, Number const& endV, Number const& limit, Number const& aH,
           Number const& aV, Number const& lastH, Number const& lastV) {
    Number const square = endH * endH + endV * endV;
    ChordDeviation<Number> const off =
        DeviationOf(Number(1.0), endH, endV, square, aH, aV, lastH, lastV);
    return Both(off.Square() <= limit * square, IsChord(square, limit));
}

/// The tolerances at which a curve is planned, as factors of the bend divided by the speed.
[[gnu::always_inline]] inline double FewScale(double tolerance) {
    return 0.75 / (kPlanned * tolerance);
}
[[gnu::always_inline]] inline double SomeScale(double tolerance) {
    return 0.75 / (kPlannedForSome * tolerance);
}

/// The squared bends up to which one chord, at most four, a few and some are tried, in squared
/// tolerances. No more chords of equal bend are planned than equal steps of the parameter; but the
/// plan is off by some per cent.
inline constexpr double kOneBend = kMostBend * kMostBend;
inline constexpr double kFourBend = kOneBend * Biquadrate(3.9);
inline constexpr double kEvenFour = kOneBend * Biquadrate(4);
inline constexpr double kEvenBend = kOneBend * Biquadrate(kFewChords);
inline constexpr double kFewBend = kOneBend * Biquadrate(kFewSteps);
inline constexpr double kSomeBend = kOneBend * Biquadrate(kSomeSteps);
/// The finest tolerance for these, as a part of the sum of the coordinates' magnitudes. Coarser
/// ones are above kFinest of the size.
inline constexpr double kFineBeside = 0x1p-38;

/// The control points' differences, v in lane 0 and h in lane 1.
struct ChordPoints {
    Double2 p0, a, middle, last, b, b2;
    double sum;  ///< of the coordinates' magnitudes
    double bend; ///< the square of the longer second difference

    [[gnu::always_inline]] inline explicit ChordPoints(double const* points)
        : p0(Double2::Load(points)) {
        Double2 const p1 = Double2::Load(points + 2);
        Double2 const p2 = Double2::Load(points + 4);
        Double2 const p3 = Double2::Load(points + 6);
        a = p1 - p0;
        last = p3 - p2;
        middle = p2 - p1;
        b = middle - a;
        b2 = last - middle;
        Double2 const sums = (Abs(p0) + Abs(p1)) + (Abs(p2) + Abs(p3));
        sum = Lane<0>(sums) + Lane<1>(sums);
        Double2 const bends = b * b;
        Double2 const bends2 = b2 * b2;
        bend = Max(Lane<0>(bends) + Lane<1>(bends), Lane<0>(bends2) + Lane<1>(bends2));
    }
};

/// Returns the vectors of a curve, its coefficients in all lanes.
template <class Vector>
[[gnu::always_inline]] inline BendCubic<Vector> BendOf(ChordPoints const& p) {
    Double2 const c = p.b2 - p.b;
    return {Vector(Lane<1>(p.a)), Vector(Lane<0>(p.a)), Vector(Lane<1>(p.b)),
            Vector(Lane<0>(p.b)), Vector(Lane<1>(c)),   Vector(Lane<0>(c))};
}
/// Returns what points and chords take besides.
template <class Vector>
[[gnu::always_inline]] inline ChordCubic<Vector>
ChordsOf(BendCubic<Vector> const& c, Vector const& originH, Vector const& originV) {
    Vector const three = Vector(3.0);
    return {c.bH,         c.bV,         c.cH,
            c.cV,         three * c.aH, three * c.aV,
            three * c.bH, three * c.bV, Vector(0.25) * (c.cH * c.cH + c.cV * c.cV),
            originH,      originV};
}

/// Returns a mask of that many ones.
[[gnu::always_inline]] inline std::uint64_t Ones(int count) {
    return (std::uint64_t{1} << static_cast<unsigned>(count)) - 1;
}

/// Returns the least whole number that is not less. `x` is from 0 to some million.
[[gnu::always_inline]] inline int Ceiling(double x) {
    int const whole = static_cast<int>(x);
    return whole + (whole < x ? 1 : 0);
}

/// The number of equal steps of the parameter with which a curve keeps the tolerance, two at least
/// and kFewChords at most, and the number's inverse.
template <class Vector> struct EvenCount {
    Vector count = Vector(2.0);
    Vector inverse = Vector(0.5);

    [[gnu::always_inline]] inline EvenCount(Vector const& bend, Vector const& limit) {
        for (int i = 2; i < kFewChords; ++i) {
            auto const more = limit * Vector(kOneBend * Biquadrate(i)) < bend;
            count = Select(more, Vector(i + 1), count);
            inverse = Select(more, Vector(1.0 / (i + 1)), inverse);
        }
    }
};
/// Tells whether a curve is nearly quadratic. The arguments are the squared lengths of the longer
/// second difference of the control points and of the third one.
template <class Number>
[[gnu::always_inline]] inline auto IsQuadratic(Number const& bend, Number const& third) {
    return Number(0x1p40) * third <= bend;
}
/// Tells of such a curve whether `count` equal steps are as few as steps of equal bend. The
/// arguments are the squared lengths of the control points' differences, and the product of the
/// first one and the first second one.
///
/// The density is the root of |a x b| / |v|, where v is a third of the derivative. It is a convex
/// function of |v|, and |v| one of the parameter. So the mean of the lengths, with the middle one
/// counted twice, bounds the integral from below.
template <class Number>
[[gnu::always_inline]] inline auto IsEven(Number const& first, Number const& middle,
                                          Number const& last, Number const& product,
                                          Number const& count, Number const& tolerance) {
    Number const speed = Sqrt(first) + Number(2.0) * Sqrt(middle) + Sqrt(last);
    Number const before = count - Number(1.0);
    return before * before * tolerance * speed < Number(3.0) * Abs(product);
}

/// Stores the points at the ends of equal steps. `inverse` is that of their number.
template <class Vector>
[[gnu::always_inline]] inline void StoreEven(ChordCubic<Vector> const& c, Vector const& inverse,
                                             bool few, double* out) {
    for (int i = 0; i < (few ? 4 : kFewChords); i += 4) {
        Vector const t = Vector::Load(kNumbers + i) * inverse;
        ChordEnds<Vector> const ends = EndsAt(c, t);
        double* const at = out + std::ptrdiff_t{2} * i;
        double* const to[4] = {at, at + 2, at + 4, at + 6};
        StorePairs(c.originV + ends.v, c.originH + ends.h, to);
    }
}

/// The most chords that MendChords divides.
inline constexpr int kMended = 4;

/// Verifies the chords that fail again, by the longer test that decides. If no more than `most`
/// fail then, divides them in the middle, where that suffices. Returns the number of chords.
template <class Vector>
[[gnu::noinline]] int MendChords(double const* points, double tolerance, int most, double* out,
                                 int count, FlatChords& chords) {
    chords.t[0] = 0.0;
    CubicLanes<Vector> const cubic(CubicOf(points));
    Vector const limit = Vector(tolerance * tolerance);
    for (std::uint64_t left = chords.failing; left != 0;) {
        auto const i = static_cast<unsigned>(__builtin_ctzll(left)) & ~3U;
        unsigned const keeping = Keep(cubic.At(Vector::Load(chords.t + i)),
                                      cubic.At(Vector::Load(chords.t + 1 + i)), limit)
                                     .Bits();
        chords.failing &= ~(std::uint64_t{keeping} << i);
        left &= ~(std::uint64_t{15} << i);
    }
    if (chords.failing == 0) {
        return count;
    }
    int failing[kMended] = {};
    int added = 0;
    for (std::uint64_t left = chords.failing; left != 0; left &= left - 1) {
        if (added == most) {
            return count;
        }
        failing[added++] = __builtin_ctzll(left);
    }
    if (count + added > kChordRoom) {
        return count;
    }
    double from[kMended];
    double to[kMended];
    for (int i = 0; i < kMended; ++i) {
        int const chord = failing[i < added ? i : 0];
        from[i] = chords.t[chord];
        to[i] = chords.t[chord + 1];
    }
    Vector const t0 = Vector::Load(from);
    Vector const t1 = Vector::Load(to);
    PlaceLanes<Vector> const middle = cubic.At(t0 + Vector(0.5) * (t1 - t0));
    auto const keeps = Keep(cubic.At(t0), middle, limit) & Keep(middle, cubic.At(t1), limit);
    if (keeps.Bits() != 15U) {
        return count;
    }
    double h[kMended];
    double v[kMended];
    middle.h.Store(h);
    middle.v.Store(v);
    int last = count - 1;
    for (int i = added - 1; i >= 0; --i) {
        for (; last >= failing[i]; --last) {
            Double2::Load(out + std::ptrdiff_t{2} * last)
                .Store(out + std::ptrdiff_t{2} * (last + i + 1));
        }
        double* const point = out + std::ptrdiff_t{2} * (failing[i] + i);
        point[0] = points[0] + v[i];
        point[1] = points[1] + h[i];
    }
    chords.failing = 0;
    return count + added;
}

inline constexpr double kSomeMiddles[kSomePanels] = {
    1.0 / 32,  3.0 / 32,  5.0 / 32,  7.0 / 32,  9.0 / 32,  11.0 / 32, 13.0 / 32, 15.0 / 32,
    17.0 / 32, 19.0 / 32, 21.0 / 32, 23.0 / 32, 25.0 / 32, 27.0 / 32, 29.0 / 32, 31.0 / 32};
inline constexpr double kSomeIndices[kSomePanels] = {0, 1, 2,  3,  4,  5,  6,  7,
                                                     8, 9, 10, 11, 12, 13, 14, 15};

/// The number of each panel, as often as there are chords.
struct PanelNumbers {
    std::uint8_t rows[kSomePanels][kSomeChords];
};
constexpr PanelNumbers NumbersOfPanels() {
    PanelNumbers numbers{};
    for (int i = 0; i < kSomePanels; ++i) {
        for (std::uint8_t& number : numbers.rows[i]) {
            number = static_cast<std::uint8_t>(i);
        }
    }
    return numbers;
}
inline constexpr PanelNumbers kPanelNumbers = NumbersOfPanels();

/// Stores a panel's number for all chords.
template <class Vector> [[gnu::always_inline]] inline void StorePanel(int panel, std::uint8_t* to) {
    static_assert(kSomeChords == sizeof(Vector), "one vector has all the numbers");
    Vector::Load(kPanelNumbers.rows[panel]).Store(to);
}

template <class Vector>
[[gnu::noinline]] int SomeChords(double const* points, double tolerance, double* out,
                                 FlatChords& chords) {
    ChordPoints const p(points);
    BendCubic<Vector> const c = BendOf<Vector>(p);
    double densities[kSomePanels];
    double inverses[kSomePanels + 2]; // with one more at either end
    double sums[kSomePanels];         // up to the panels' ends, in panels' widths
    Vector sum = Vector(0.0);
    Vector const scale = Vector(SomeScale(tolerance));
    for (int i = 0; i < kSomePanels; i += 4) {
        Density<Vector> const density =
            DensityOf(c, Vector::Load(kSomeMiddles + i), scale, kSomeShape);
        density.chords.Store(densities + i);
        density.inverse.Store(inverses + 1 + i);
        sum = sum + RunningSums(density.chords);
        sum.Store(sums + i);
        sum = Vector(Lane<3>(sum));
    }
    inverses[0] = inverses[1];
    inverses[kSomePanels + 1] = inverses[kSomePanels];
    double const total = Lane<0>(sum);
    double const planned = total * (1.0 / kSomePanels);
    if (!(planned <= kSomeChords)) {
        return 0;
    }
    int const count = Ceiling(planned);
    double const step = total / count;
    double const perChord = count / total;
    double first[kSomePanels];
    double each[kSomePanels];
    double more[kSomePanels];
    Vector before = Vector(0.0);
    for (int i = 0; i < kSomePanels; i += 4) {
        Vector const sumsHere = Vector::Load(sums + i);
        PanelLine<Vector> const line(1.0 / kSomePanels, Vector::Load(kSomeIndices + i),
                                     Preceding(before, sumsHere),
                                     {Vector::Load(densities + i), Vector::Load(inverses + 1 + i)},
                                     Vector::Load(inverses + i), Vector::Load(inverses + 2 + i));
        before = sumsHere;
        line.first.Store(first + i);
        line.each.Store(each + i);
        line.more.Store(more + i);
    }
    // The panel of each chord's end. A panel overwrites what the one before it stored for its ends.
    std::uint8_t panels[2 * kSomeChords];
    StorePanel<Vector>(0, panels);
#pragma GCC unroll 16
    for (int i = 1; i < kSomePanels; ++i) {
        StorePanel<Vector>(i, panels + static_cast<std::ptrdiff_t>(sums[i - 1] * perChord));
    }
    ChordCubic<Vector> const cubic = ChordsOf(c, Vector(Lane<1>(p.p0)), Vector(Lane<0>(p.p0)));
    Vector const limit = Vector(tolerance * tolerance);
    Vector const zero = Vector(0.0);
    Vector const last = Vector(count);
    ChordEnds<Vector> ends = {zero, zero, zero};
    std::uint64_t keeping = 0;
    for (int i = 0; i < count; i += 4) {
        Vector const number = Vector::Load(kNumbers + i);
        Vector const y = number * Vector(step);
        int const j0 = panels[i];
        int const j1 = panels[i + 1];
        int const j2 = panels[i + 2];
        int const j3 = panels[i + 3];
        Vector const inside = Vector::Of(first[j0], first[j1], first[j2], first[j3]) +
                              y * (Vector::Of(each[j0], each[j1], each[j2], each[j3]) +
                                   y * Vector::Of(more[j0], more[j1], more[j2], more[j3]));
        Vector const t = Select(number < last, inside, Vector(1.0));
        t.Store(chords.t + 1 + i);
        keeping |=
            std::uint64_t{StoreChords<false>(cubic, limit, t, ends, out + std::ptrdiff_t{2} * i)}
            << static_cast<unsigned>(i);
    }
    chords.failing = ~keeping & Ones(count);
    return chords.failing == 0 ? count
                               : MendChords<Vector>(points, tolerance, kMended, out, count, chords);
}

/// Returns the parameters at which few chords end.
template <class Vector>
[[gnu::always_inline]] inline Vector FewEnds(FewPanels<Vector> const& panels, Vector const& number,
                                             Vector const& step, Vector const& last) {
    return Select(number < last, panels.At(number * step), Vector(1.0));
}

/// The number of few chords for an integral of the density over four panels, and its inverse. The
/// number is the integral's, rounded up, but two at least and `kMost` at most. Comparisons find it
/// sooner than a rounding and a division.
template <int kMost, class Vector> struct FewCount {
    Vector count = Vector(2.0);
    Vector inverse = Vector(0.5);

    [[gnu::always_inline]] inline explicit FewCount(Vector const& total) {
        for (int i = 2; i < kMost; ++i) {
            auto const more = Vector(kFewPanels * i) < total;
            count = Select(more, Vector(i + 1), count);
            inverse = Select(more, Vector(1.0 / (i + 1)), inverse);
        }
    }
};

/// Two to four chords, or two to kFewChords. Returns 0 for more, and where they do not keep the
/// tolerance.
template <int kMost, class Vector>
[[gnu::always_inline]] inline int FewChords(double const* points, ChordPoints const& p,
                                            double tolerance, double* out, FlatChords& chords) {
    BendCubic<Vector> const c = BendOf<Vector>(p);
    Density<Vector> const density =
        DensityOf(c, Vector::Load(kFewMiddles), Vector(FewScale(tolerance)), kFewShape);
    Vector const sums = RunningSums(density.chords);
    Vector const total = Vector(Lane<3>(sums));
    if (!(Lane<3>(sums) <= kFewPanels * kMost)) {
        return 0;
    }
    FewCount<kMost, Vector> const few(total);
    Vector const last = few.count;
    Vector const step = total * few.inverse;
    auto const count = static_cast<int>(Lane<0>(last));
    Vector const zero = Vector(0.0);
    Vector const inverse = density.inverse;
    PanelLine<Vector> const line(1.0 / kFewPanels, Vector::Load(kCounting), Preceding(zero, sums),
                                 density, Preceding(Vector(Lane<0>(inverse)), inverse),
                                 Following(inverse, Vector(Lane<3>(inverse))));
    FewPanels<Vector> const panels = {
        {Vector(Lane<0>(sums)), Vector(Lane<1>(sums)), Vector(Lane<2>(sums))},
        {Vector(Lane<0>(line.first)), Vector(Lane<1>(line.first)), Vector(Lane<2>(line.first)),
         Vector(Lane<3>(line.first))},
        {Vector(Lane<0>(line.each)), Vector(Lane<1>(line.each)), Vector(Lane<2>(line.each)),
         Vector(Lane<3>(line.each))},
        {Vector(Lane<0>(line.more)), Vector(Lane<1>(line.more)), Vector(Lane<2>(line.more)),
         Vector(Lane<3>(line.more))}};
    ChordCubic<Vector> const cubic = ChordsOf(c, Vector(Lane<1>(p.p0)), Vector(Lane<0>(p.p0)));
    Vector const limit = Vector(tolerance * tolerance);
    ChordEnds<Vector> ends = {zero, zero, zero};
    unsigned keeping = 0;
    for (int i = 0; i < kMost; i += 4) { // the points beyond the last one, too: no branch
        Vector const t = FewEnds(panels, Vector::Load(kNumbers + i), step, last);
        t.Store(chords.t + 1 + i);
        keeping |= StoreChords<false>(cubic, limit, t, ends, out + std::ptrdiff_t{2} * i)
                   << static_cast<unsigned>(i);
    }
    chords.failing = ~std::uint64_t{keeping} & Ones(count);
    if (chords.failing == 0) {
        return count;
    }
    // Where more than one fails, the longer plan takes fewer chords.
    int const mended = MendChords<Vector>(points, tolerance, 1, out, count, chords);
    return chords.failing == 0 ? mended : 0;
}

/// Equal steps of the parameter. Returns 0 where they are not known to be few.
template <class Vector>
[[gnu::always_inline]] inline int EvenChords(ChordPoints const& p, double tolerance, double limit,
                                             double* out) {
    auto const square = [](Double2 const& d) __attribute__((always_inline)) {
        Double2 const squares = d * d;
        return Lane<0>(squares) + Lane<1>(squares);
    };
    if (!IsQuadratic(p.bend, square(p.b2 - p.b)) || p.bend > limit * kEvenBend) {
        return 0;
    }
    EvenCount<Vector> const even(Vector(p.bend), Vector(limit));
    double const product = Lane<1>(p.a) * Lane<0>(p.b) - Lane<0>(p.a) * Lane<1>(p.b);
    if (!IsEven(square(p.a), square(p.middle), square(p.last), product, Lane<0>(even.count),
                tolerance)) {
        return 0;
    }
    ChordCubic<Vector> const cubic =
        ChordsOf(BendOf<Vector>(p), Vector(Lane<1>(p.p0)), Vector(Lane<0>(p.p0)));
    StoreEven(cubic, even.inverse, p.bend <= limit * kEvenFour, out);
    return static_cast<int>(Lane<0>(even.count));
}

template <class Vector>
[[gnu::always_inline]] inline int DivideIntoChordsForm(double const* points, double tolerance,
                                                       double* out, FlatChords& chords) {
    ChordPoints const p(points);
    double const limit = tolerance * tolerance;
    if (!(p.sum >= 0x1p-100 && p.sum <= 0x1p100 && tolerance > kFineBeside * p.sum)) { // or a NaN
        return -1;
    }
    chords.failing = 0;
    if (p.bend <= limit * kOneBend) {
        return 1;
    }
    if (p.bend > limit * kFewBend) {
        return p.bend <= limit * kSomeBend ? SomeChords<Vector>(points, tolerance, out, chords) : 0;
    }
    int const even = EvenChords<Vector>(p, tolerance, limit, out);
    if (even != 0) {
        return even;
    }
    // Whether one chord does is found out before the plan: the processor then guesses wrong less.
    Double2 const end = Double2::Load(points + 6) - p.p0;
    Double2 const c = p.b2 - p.b;
    double const square = Lane<0>(end) * Lane<0>(end) + Lane<1>(end) * Lane<1>(end);
    if (!IsChord(square, limit)) { // the ends are as good as equal
        double const first = Lane<0>(p.a) * Lane<0>(p.a) + Lane<1>(p.a) * Lane<1>(p.a);
        double const last = Lane<0>(p.last) * Lane<0>(p.last) + Lane<1>(p.last) * Lane<1>(p.last);
        if (ReachOf(1.0, square, Max(first, last)) <= tolerance) {
            return 1;
        }
    }
    if (IsNearWhole(Lane<1>(end), Lane<0>(end), limit, Lane<1>(p.b), Lane<0>(p.b), Lane<1>(c),
                    Lane<0>(c)) &&
        KeepsWhole(Lane<1>(end), Lane<0>(end), limit, Lane<1>(p.a), Lane<0>(p.a), Lane<1>(p.last),
                   Lane<0>(p.last))) {
        return 1;
    }
    int const count = p.bend <= limit * kFourBend
                          ? FewChords<4, Vector>(points, p, tolerance, out, chords)
                          : FewChords<kFewChords, Vector>(points, p, tolerance, out, chords);
    return count != 0 ? count : SomeChords<Vector>(points, tolerance, out, chords);
}

} // namespace trammel_detail

#endif
