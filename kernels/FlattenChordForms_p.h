// SPDX-License-Identifier: MIT

// The arithmetic of flattening into few and some chords, written for either vector of four doubles
// (Vector_p.h). queries/AccurateFlatten.cpp tells the method. Each of two files compiles it for one
// vector, also by way of FlattenPackForms_p.h, and no other file includes this header. Not
// installed.

#ifndef TRAMMEL_FLATTENCHORDFORMS_P_H
#define TRAMMEL_FLATTENCHORDFORMS_P_H

#include "FlattenKernels_p.h"
#include "Vector_p.h"

#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// The vectors of a cubic that a density takes: a third of the derivative is a + 2bt + ct².
template <class Vector> struct BendCubic { Vector aH, aV, bH, bV, cH, cV; };

/// Chords per unit of the parameter, and nearly the inverse.
template <class Vector> struct Density { Vector chords, inverse; };

/// The width of a panel as it counts for the density in its middle. The means over the panel would
/// be 4 and 1 times the mean of x². With the numbers below fewer chords fail.
struct PanelShape {
    double speed; ///< times the square of the speed's change
    double bend;  ///< times the square of the bend's change
};
constexpr PanelShape ShapeOf(int panels, double speed, double bend) {
    double const square = 1.0 / (12.0 * panels * panels);
    return {speed * square, bend * square};
}
inline constexpr PanelShape kFewShape = ShapeOf(kFewPanels, 2.0, 1.5);
inline constexpr PanelShape kSomeShape = ShapeOf(kSomePanels, 0.25, 3.0);

/// Returns the density of panels from the derivatives in their middles, at `t`.
///
/// Speed and bend are means over the panel, as they are 0 only for a moment: at a cusp and where
/// the curve turns the other way. The density is neither 0, infinite nor NaN. It is at least 0.06,
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
/// and a slope by the neighbours' values. Those are means over panels, and means vary less than the
/// density. So the slope counts 0.36 in place of 0.25, and fewer chords fail.
template <class Vector> struct PanelLine {
    Vector first, each, more;

    /// `index` counts panels of the width. `start` is the integral up to the panel, in widths.
    [[gnu::always_inline]] inline PanelLine(double width, Vector const& index, Vector const& start,
                                            Density<Vector> const& density,
                                            Vector const& inverseBefore,
                                            Vector const& inverseBehind) {
        Vector const slope = (inverseBehind - inverseBefore) * (Vector(0.36) * density.chords);
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

/// The vectors of a cubic that its points and chords take.
///
/// w is an eighth of the second derivative, which is linear. `startH` and `startV` are w at 0, and
/// `riseH` and `riseV` half of its change from 0 to 1.
template <class Vector> struct ChordCubic {
    Vector startH, startV, riseH, riseV;
    Vector threeAH, threeAV, threeBH, threeBV, cH, cV;
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

/// Stores four points: v and h in turn, as sums of the origin and the point.
template <class Vector>
[[gnu::always_inline]] inline void StoreEnds(ChordCubic<Vector> const& c,
                                             ChordEnds<Vector> const& ends, double* out) {
    double* const to[4] = {out, out + 2, out + 4, out + 6};
    StorePairs(c.originV + ends.v, c.originH + ends.h, to);
}

/// Returns the mask of the chords between places that are known to keep the tolerance, whose square
/// is `limit`.
///
/// Let w be the vector in the middle of a chord d of width h, and r half of its change over the
/// unit of the parameter. From the chord's start the curve runs along
///
///     s·d - 4h²·s(1 - s)·(w + (s - 1/2)·2h/3·r),   0 <= s <= 1
///
/// The maximum of its distance from the chord's line is a convex function of d x w and d x r. So
/// linear interpolation bounds it, between quotients of 0, 3/4 and infinity.
///
/// Let g be h²·(|d·w| + h/3·|d·r|). Along the chord, the curve is not before the start by more than
/// the least value of s·(d² - 4g·(1 - s)) says, divided by |d|. It is 0 where 4g is below d², and
/// else -(g - d²/4)²/g, which is above d²/4 - g. The same holds behind the end.
template <class Vector>
[[gnu::always_inline]] inline unsigned KeepChords(ChordCubic<Vector> const& c, Vector const& limit,
                                                  ChordEnds<Vector> const& from,
                                                  ChordEnds<Vector> const& to) {
    Vector const width = to.t - from.t;
    Vector const twice = to.t + from.t;
    Vector const dh = to.h - from.h;
    Vector const dv = to.v - from.v;
    Vector const wh = c.startH + c.riseH * twice;
    Vector const wv = c.startV + c.riseV * twice;
    Vector const square = dh * dh + dv * dv;
    Vector const width2 = width * width;
    Vector const mean = Abs(dh * wv - dv * wh);
    Vector const change = width * Abs(dh * c.riseV - dv * c.riseH);
    Vector const off = width2 * Max(mean + Vector(0.02024) * change,
                                    Vector(0.91895) * mean + Vector(0.1283014) * change);
    Vector const along = Abs(dh * wh + dv * wv);
    Vector const shift = width * Abs(dh * c.riseH + dv * c.riseV);
    Vector const beyond =
        Max(width2 * (along + Vector(1.0 / 3.0) * shift) - Vector(0.25) * square, Vector(0.0));
    auto const near = off * off + beyond * beyond <= limit * square;
    return (near & IsChord(square, limit)).Bits();
}

/// Returns for each place of `to` the one before it. The one before the first is the last of
/// `before`, which then gets these.
template <class Vector>
[[gnu::always_inline]] inline ChordEnds<Vector> Before(ChordEnds<Vector>& before,
                                                       ChordEnds<Vector> const& to) {
    ChordEnds<Vector> const from = {Preceding(before.t, to.t), Preceding(before.h, to.h),
                                    Preceding(before.v, to.v)};
    before = to;
    return from;
}

/// Stores the points at four parameters, and returns the chords to them that KeepChords tells.
/// `before` holds the ends of the chords before, and gets these.
template <class Vector>
[[gnu::always_inline]] inline unsigned StoreChords(ChordCubic<Vector> const& c, Vector const& limit,
                                                   Vector const& t, ChordEnds<Vector>& before,
                                                   double* out) {
    ChordEnds<Vector> const ends = EndsAt(c, t);
    StoreEnds(c, ends, out);
    return KeepChords(c, limit, Before(before, ends), ends);
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

/// Tells whether the chord from end to end is near enough to the curve's line. KeepChords says how;
/// here w is a sixth of the second derivative. The quotients are 0, 3/2, 6 and infinity.
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

// The squared bends, in squared tolerances, up to which a way of dividing is tried. As many chords
// of equal bend do as equal steps of the parameter, or fewer; but the plan is off by some per cent.
inline constexpr double kOneBend = kMostBend * kMostBend;              ///< one chord
inline constexpr double kFourBend = kOneBend * Biquadrate(3.9);        ///< at most four chords
inline constexpr double kEvenFour = kOneBend * Biquadrate(4);          ///< at most four equal steps
inline constexpr double kEvenBend = kOneBend * Biquadrate(kFewChords); ///< a few equal steps
inline constexpr double kFewBend = kOneBend * Biquadrate(kFewSteps);   ///< a few chords
inline constexpr double kSomeBend = kOneBend * Biquadrate(kSomeSteps); ///< some chords
/// The finest tolerance for these, as a part of the sum of the coordinates' magnitudes. Coarser
/// ones are above kFinest of the size.
inline constexpr double kFineBeside = 0x1p-38;
/// Between these sums of the coordinates' magnitudes no product overflows, or underflows in a way
/// that matters.
inline constexpr double kLeastSum = 0x1p-100;
inline constexpr double kGreatestSum = 0x1p100;
/// Tells whether a curve can be divided here: not where its sum is a NaN.
template <class Number>
[[gnu::always_inline]] inline auto IsOrdinary(Number const& sum, Number const& tolerance) {
    return Both(Both(sum >= Number(kLeastSum), sum <= Number(kGreatestSum)),
                tolerance > Number(kFineBeside) * sum);
}

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
    Vector const part = Vector(0.75);
    Vector const half = Vector(0.375);
    return {part * c.bH,  part * c.bV,  half * c.cH, half * c.cV, three * c.aH, three * c.aV,
            three * c.bH, three * c.bV, c.cH,        c.cV,        originH,      originV};
}

/// Returns a mask of that many ones.
[[gnu::always_inline]] inline std::uint64_t Ones(int count) {
    return (std::uint64_t{1} << static_cast<unsigned>(count)) - 1;
}

/// Returns the least whole number that is not less than `x`, which is from 0 to some million.
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
        StoreEnds(c, EndsAt(c, t), out + std::ptrdiff_t{2} * i);
    }
}

/// Places on a curve with the derivatives there.
template <class Vector> struct ChordPlaces {
    ChordEnds<Vector> ends;
    Vector slopeH, slopeV;

    [[gnu::always_inline]] inline ChordPlaces(ChordCubic<Vector> const& c, Vector const& t)
        : ends(EndsAt(c, t)) {
        Vector const riseH = c.cH * t;
        Vector const riseV = c.cV * t;
        Vector const two = Vector(2.0);
        Vector const three = Vector(3.0);
        slopeH = c.threeAH + (two * c.threeBH + three * riseH) * t;
        slopeV = c.threeAV + (two * c.threeBV + three * riseV) * t;
    }
};
/// Returns the mask of the chords between places that keep the tolerance by the test that decides.
template <class Vector>
[[gnu::always_inline]] inline unsigned Keep(ChordPlaces<Vector> const& from,
                                            ChordPlaces<Vector> const& to, Vector const& limit) {
    Vector const h = to.ends.h - from.ends.h;
    Vector const v = to.ends.v - from.ends.v;
    Vector const square = h * h + v * v;
    Vector const third = Vector(1.0 / 3.0) * (to.ends.t - from.ends.t);
    ChordDeviation<Vector> const off =
        DeviationOf(third, h, v, square, from.slopeH, from.slopeV, to.slopeH, to.slopeV);
    return ((off.Square() <= limit * square) & IsChord(square, limit)).Bits();
}

/// The most chords that MendChords divides at a time, and the most that it adds to some chords.
inline constexpr int kMended = 4;
inline constexpr int kAdded = 8;

/// Verifies failing chords again, by the longer test that decides. Divides chords in the middle
/// where they fail again, and their halves, too. Adds no more than `most` chords. Returns the
/// number of chords, and sets which of them fail still. Where more than four fail, they stay as
/// they are.
template <class Vector>
[[gnu::noinline]] int MendChords(ChordCubic<Vector> const& cubic, double tolerance, int most,
                                 double* out, int count, FlatChords& chords) {
    chords.t[0] = 0.0;
    double* const t = chords.t;
    Vector const limit = Vector(tolerance * tolerance);
    int const room = count + most < kChordRoom ? count + most : kChordRoom;
    while (chords.failing != 0) {
        int failing[kMended];
        int fail = 0;
        std::uint64_t left = chords.failing;
        for (int& chord : failing) { // one of them again where there are fewer
            chord = __builtin_ctzll(left != 0 ? left : chords.failing);
            fail += left != 0 ? 1 : 0;
            left &= left - 1;
        }
        if (left != 0) {
            return count;
        }
        Vector const from = Vector::Of(t[failing[0]], t[failing[1]], t[failing[2]], t[failing[3]]);
        Vector const to =
            Vector::Of(t[failing[0] + 1], t[failing[1] + 1], t[failing[2] + 1], t[failing[3] + 1]);
        ChordPlaces<Vector> const begin(cubic, from);
        ChordPlaces<Vector> const middle(cubic, Vector(0.5) * (from + to));
        ChordPlaces<Vector> const end(cubic, to);
        unsigned const divided = ~Keep(begin, end, limit) & static_cast<unsigned>(Ones(fail));
        int const added = __builtin_popcount(divided);
        if (count + added > room) {
            return count;
        }
        unsigned const first = divided & ~Keep(begin, middle, limit);
        unsigned const second = divided & ~Keep(middle, end, limit);
        double points[2 * kMended];
        double middles[kMended];
        StoreEnds(cubic, middle.ends, points);
        middle.ends.t.Store(middles);
        chords.failing = 0;
        int last = count - 1;
        count += added;
        int shift = added;
        for (unsigned rest = divided; rest != 0; --shift) {
            int const i = 31 - __builtin_clz(rest);
            rest ^= 1U << static_cast<unsigned>(i);
            int const chord = failing[i];
            for (; last >= chord; --last) {
                t[last + 1 + shift] = t[last + 1];
                Double2::Load(out + std::ptrdiff_t{2} * last)
                    .Store(out + std::ptrdiff_t{2} * (last + shift));
            }
            int const half = chord + shift - 1;
            t[half + 1] = middles[i];
            Double2::Load(points + std::ptrdiff_t{2} * i).Store(out + std::ptrdiff_t{2} * half);
            std::uint64_t const fails = (first >> static_cast<unsigned>(i) & 1U) |
                                        (second >> static_cast<unsigned>(i) & 1U) << 1U;
            chords.failing |= fails << static_cast<unsigned>(half);
        }
    }
    return count;
}

/// The vectors that hold the panels of a plan for some chords. Lane j of vector i is panel
/// kSomeVectors·j + i. So most panels have their neighbours in the same lane.
inline constexpr int kSomeVectors = kSomePanels / 4;
constexpr int PanelAt(int place) { return kSomeVectors * (place % 4) + place / 4; }
constexpr int PlaceOfPanel(int panel) { return 4 * (panel % kSomeVectors) + panel / kSomeVectors; }

/// The panels' middles and numbers in that order. The place of each panel, as often as there are
/// chords.
struct SomePanels {
    double middles[kSomePanels];
    double numbers[kSomePanels];
    std::uint8_t places[kSomePanels][kSomeChords];
};
constexpr SomePanels PlacedPanels() {
    SomePanels panels{};
    for (int i = 0; i < kSomePanels; ++i) {
        panels.numbers[i] = PanelAt(i);
        panels.middles[i] = (PanelAt(i) + 0.5) / kSomePanels;
        for (std::uint8_t& place : panels.places[i]) {
            place = static_cast<std::uint8_t>(PlaceOfPanel(i));
        }
    }
    return panels;
}
inline constexpr SomePanels kSomePlaced = PlacedPanels();

/// Stores a panel's place for all chords.
template <class Vector> [[gnu::always_inline]] inline void StorePlace(int panel, std::uint8_t* to) {
    static_assert(kSomeChords == sizeof(Vector), "one vector has all the places");
    Vector::Load(kSomePlaced.places[panel]).Store(to);
}

/// Where this is added to a number below 2^51, the nearest whole number is in the sum's last bits.
inline constexpr double kWhole = 0x1.8p52;

/// Up to kSomeChords chords. Returns 0 for more.
///
/// The chords' parameters, points and tests have a loop each. In one loop for all, a processor
/// would not look far enough ahead to begin with the next vector while one waits.
template <class Vector>
[[gnu::noinline]] int SomeChords(ChordPoints const& p, double tolerance, double* out,
                                 FlatChords& chords) {
    BendCubic<Vector> const c = BendOf<Vector>(p);
    Vector const scale = Vector(SomeScale(tolerance));
    Density<Vector> densities[kSomeVectors];
    Vector starts[kSomeVectors]; // integrals up to the panels, in panels' widths
    Vector sum = Vector(0.0);
    for (int i = 0; i < kSomeVectors; ++i) {
        densities[i] = DensityOf(c, Vector::Load(kSomePlaced.middles + std::ptrdiff_t{4} * i),
                                 scale, kSomeShape);
        starts[i] = sum;
        sum = sum + densities[i].chords;
    }
    Vector const ends = RunningSums(sum);
    Vector const lanes = Preceding(Vector(0.0), ends);
    for (Vector& start : starts) {
        start = lanes + start;
    }
    double const total = Lane<3>(ends);
    double const planned = total * (1.0 / kSomePanels);
    if (!(planned <= kSomeChords)) {
        return 0;
    }
    int const count = Ceiling(planned);
    double const step = total / count;
    Vector const perChord = Vector(count * (1.0 / total));
    double firsts[kSomePanels]; // the first chord that ends in each panel, in the last bits
    for (int i = 0; i < kSomeVectors; ++i) {
        // A sum below kWhole would have other last bits, where the processor rounds downwards.
        (Max(starts[i] * perChord - Vector(0.5), Vector(0.0)) + Vector(kWhole))
            .Store(firsts + std::ptrdiff_t{4} * i);
    }
    // The place of each chord's panel. A panel overwrites what the one before it stored for its
    // ends.
    std::uint8_t places[2 * kSomeChords];
    StorePlace<Vector>(0, places);
#pragma GCC unroll 16
    for (int i = 1; i < kSomePanels; ++i) {
        std::uint64_t bits;
        __builtin_memcpy(&bits, firsts + PlaceOfPanel(i), sizeof bits);
        StorePlace<Vector>(i, places + static_cast<std::uint32_t>(bits));
    }
    double first[kSomePanels];
    double each[kSomePanels];
    double more[kSomePanels];
    for (int i = 0; i < kSomeVectors; ++i) {
        Vector const own = densities[i].inverse;
        Vector const before =
            i > 0 ? densities[i > 0 ? i - 1 : 0].inverse
                  : Preceding(Vector(Lane<0>(own)), densities[kSomeVectors - 1].inverse);
        Vector const behind = i + 1 < kSomeVectors
                                  ? densities[i + 1 < kSomeVectors ? i + 1 : i].inverse
                                  : Following(densities[0].inverse, Vector(Lane<3>(own)));
        PanelLine<Vector> const line(1.0 / kSomePanels,
                                     Vector::Load(kSomePlaced.numbers + std::ptrdiff_t{4} * i),
                                     starts[i], densities[i], before, behind);
        line.first.Store(first + std::ptrdiff_t{4} * i);
        line.each.Store(each + std::ptrdiff_t{4} * i);
        line.more.Store(more + std::ptrdiff_t{4} * i);
    }
    ChordCubic<Vector> const cubic = ChordsOf(c, Vector(Lane<1>(p.p0)), Vector(Lane<0>(p.p0)));
    Vector const last = Vector(count);
    double h[kSomeChords];
    double v[kSomeChords];
    for (int i = 0; i < count; i += 4) {
        Vector const number = Vector::Load(kNumbers + i);
        Vector const y = number * Vector(step);
        int const j0 = places[i];
        int const j1 = places[i + 1];
        int const j2 = places[i + 2];
        int const j3 = places[i + 3];
        Vector const inside = Vector::Of(first[j0], first[j1], first[j2], first[j3]) +
                              y * (Vector::Of(each[j0], each[j1], each[j2], each[j3]) +
                                   y * Vector::Of(more[j0], more[j1], more[j2], more[j3]));
        ChordEnds<Vector> const at = EndsAt(cubic, Select(number < last, inside, Vector(1.0)));
        at.t.Store(chords.t + 1 + i);
        at.h.Store(h + i);
        at.v.Store(v + i);
        StoreEnds(cubic, at, out + std::ptrdiff_t{2} * i);
    }
    Vector const limit = Vector(tolerance * tolerance);
    ChordEnds<Vector> before = {Vector(0.0), Vector(0.0), Vector(0.0)};
    std::uint64_t keeping = 0;
    for (int i = 0; i < count; i += 4) {
        ChordEnds<Vector> const at = {Vector::Load(chords.t + 1 + i), Vector::Load(h + i),
                                      Vector::Load(v + i)};
        unsigned const keep = KeepChords(cubic, limit, Before(before, at), at);
        keeping |= std::uint64_t{keep} << static_cast<unsigned>(i);
    }
    chords.failing = ~keeping & Ones(count);
    return chords.failing == 0 ? count : MendChords(cubic, tolerance, kAdded, out, count, chords);
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
[[gnu::always_inline]] inline int FewChords(ChordPoints const& p, double tolerance, double* out,
                                            FlatChords& chords) {
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
        keeping |= StoreChords(cubic, limit, t, ends, out + std::ptrdiff_t{2} * i)
                   << static_cast<unsigned>(i);
    }
    chords.failing = ~std::uint64_t{keeping} & Ones(count);
    if (chords.failing == 0) {
        return count;
    }
    // Where more than one fails, the longer plan takes fewer chords.
    int const mended = MendChords(cubic, tolerance, 1, out, count, chords);
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
    if (!IsOrdinary(p.sum, tolerance)) {
        return -1;
    }
    chords.failing = 0;
    if (p.bend <= limit * kOneBend) {
        return 1;
    }
    if (p.bend > limit * kFewBend) {
        return p.bend <= limit * kSomeBend ? SomeChords<Vector>(p, tolerance, out, chords) : 0;
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
                          ? FewChords<4, Vector>(p, tolerance, out, chords)
                          : FewChords<kFewChords, Vector>(p, tolerance, out, chords);
    return count != 0 ? count : SomeChords<Vector>(p, tolerance, out, chords);
}

} // namespace trammel_detail

#endif
