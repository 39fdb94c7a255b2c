// SPDX-License-Identifier: MIT

// Flattening of four curves at a time: the arithmetic of FlattenChordForms_p.h, with a curve in
// each lane. Each of two files compiles it for one vector, and no other file includes this header.
// Not installed.

#ifndef TRAMMEL_FLATTENPACKFORMS_P_H
#define TRAMMEL_FLATTENPACKFORMS_P_H

#include "FlattenChordForms_p.h"
#include "FlattenKernels_p.h"
#include "Vector_p.h"

#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// Four cubics, one in each lane: the control points' differences, and what planning takes.
template <class Vector> struct PackedCurves {
    Vector originH, originV, middleH, middleV, lastH, lastV, endH, endV;
    BendCubic<Vector> c;
    Vector sum;  ///< of the coordinates' magnitudes
    Vector bend; ///< the square of the longer second difference

    [[gnu::always_inline]] inline explicit PackedCurves(double const* const (&curves)[kPack]) {
        Vector v0 = Vector::Load(curves[0]);
        Vector h0 = Vector::Load(curves[1]);
        Vector v1 = Vector::Load(curves[2]);
        Vector h1 = Vector::Load(curves[3]);
        Transpose(v0, h0, v1, h1);
        Vector v2 = Vector::Load(curves[0] + 4);
        Vector h2 = Vector::Load(curves[1] + 4);
        Vector v3 = Vector::Load(curves[2] + 4);
        Vector h3 = Vector::Load(curves[3] + 4);
        Transpose(v2, h2, v3, h3);
        originH = h0;
        originV = v0;
        c.aH = h1 - h0;
        c.aV = v1 - v0;
        middleH = h2 - h1;
        middleV = v2 - v1;
        lastH = h3 - h2;
        lastV = v3 - v2;
        endH = h3 - h0;
        endV = v3 - v0;
        c.bH = middleH - c.aH;
        c.bV = middleV - c.aV;
        Vector const b2H = lastH - middleH;
        Vector const b2V = lastV - middleV;
        c.cH = b2H - c.bH;
        c.cV = b2V - c.bV;
        sum = ((Abs(v0) + Abs(v1)) + (Abs(v2) + Abs(v3))) +
              ((Abs(h0) + Abs(h1)) + (Abs(h2) + Abs(h3)));
        bend = Max(c.bV * c.bV + c.bH * c.bH, b2V * b2V + b2H * b2H);
    }
};

/// The plan of few chords of four curves.
template <class Vector> struct PackedPlan {
    FewPanels<Vector> panels;
    Vector total; ///< the integral of the density

    [[gnu::always_inline]] inline PackedPlan(BendCubic<Vector> const& c, double tolerance) {
        Density<Vector> densities[kFewPanels];
        for (int i = 0; i < kFewPanels; ++i) {
            densities[i] =
                DensityOf(c, Vector(kFewMiddles[i]), Vector(FewScale(tolerance)), kFewShape);
        }
        panels.sums[0] = densities[0].chords;
        panels.sums[1] = densities[0].chords + densities[1].chords;
        panels.sums[2] = panels.sums[1] + densities[2].chords;
        total = panels.sums[1] + (densities[2].chords + densities[3].chords);
        for (int i = 0; i < kFewPanels; ++i) {
            PanelLine<Vector> const line(1.0 / kFewPanels, Vector(i),
                                         i == 0 ? Vector(0.0) : panels.sums[i == 0 ? 0 : i - 1],
                                         densities[i], densities[i == 0 ? 0 : i - 1].inverse,
                                         densities[i == kFewPanels - 1 ? i : i + 1].inverse);
            panels.first[i] = line.first;
            panels.each[i] = line.each;
            panels.more[i] = line.more;
        }
    }
};

/// Stores the end of each curve's chord of that number.
template <class Vector>
[[gnu::always_inline]] inline void StorePacked(ChordCubic<Vector> const& cubic,
                                               ChordEnds<Vector> const& ends, int number,
                                               FlatPack& pack) {
    std::ptrdiff_t const at = std::ptrdiff_t{2} * (number - 1);
    double* const to[4] = {pack.points[0] + at, pack.points[1] + at, pack.points[2] + at,
                           pack.points[3] + at};
    StorePairs(cubic.originV + ends.v, cubic.originH + ends.h, to);
}

/// The chords of four curves.
struct PackedChords {
    double t[kFewChords + 1][kPack]; ///< the parameters at the ends of chord 1 and so on
    double h[kFewChords + 1][kPack]; ///< the ends, relative to the start
    double v[kFewChords + 1][kPack];
    unsigned failing[kFewChords + 1]; ///< bit i: the chord of curve i fails
};

/// Mends the failing chords of a curve, or leaves the curve to DivideIntoChords.
template <class Vector>
[[gnu::noinline]] void MendLane(ChordCubic<Vector> const& c, double tolerance, int lane,
                                PackedChords const& packed, FlatPack& pack) {
    auto const all = [lane](Vector const& x) __attribute__((always_inline)) {
        return Vector(x[lane]);
    };
    ChordCubic<Vector> const cubic = {
        all(c.startH),  all(c.startV),  all(c.riseH), all(c.riseV), all(c.threeAH), all(c.threeAV),
        all(c.threeBH), all(c.threeBV), all(c.cH),    all(c.cV),    all(c.originH), all(c.originV)};
    auto const count = static_cast<int>(pack.chords[lane]);
    FlatChords chords;
    chords.failing = 0;
    for (int i = 1; i <= count; ++i) {
        chords.t[i] = packed.t[i][lane];
        std::uint64_t const fails = packed.failing[i] >> static_cast<unsigned>(lane) & 1U;
        chords.failing |= fails << static_cast<unsigned>(i - 1);
    }
    int const mended = MendChords(cubic, tolerance, 1, pack.points[lane], count, chords);
    pack.chords[lane] = chords.failing == 0 ? mended : 0;
}

template <class Vector>
[[gnu::always_inline]] inline void DividePackForm(double const* const (&curves)[kPack],
                                                  double tolerance, FlatPack& pack) {
    PackedCurves<Vector> const p(curves);
    BendCubic<Vector> const& c = p.c;
    Vector const limit = Vector(tolerance * tolerance);
    Vector const zero = Vector(0.0);
    Vector const one = Vector(1.0);
    auto const tried = IsOrdinary(p.sum, Vector(tolerance)) & (p.bend <= limit * Vector(kFewBend)) &
                       IsChord(p.endV * p.endV + p.endH * p.endH, limit);
    if (tried.Bits() == 0) {
        zero.Store(pack.chords);
        return;
    }
    auto whole = p.bend <= limit * Vector(kOneBend);
    auto const quadratic = tried & IsQuadratic(p.bend, c.cV * c.cV + c.cH * c.cH) &
                           (p.bend <= limit * Vector(kEvenBend)) &
                           (p.bend > limit * Vector(kOneBend));
    EvenCount<Vector> const steps(p.bend, limit);
    Vector const product = c.aH * c.bV - c.aV * c.bH;
    auto const even =
        quadratic & IsEven(c.aV * c.aV + c.aH * c.aH, p.middleV * p.middleV + p.middleH * p.middleH,
                           p.lastV * p.lastV + p.lastH * p.lastH, product, steps.count,
                           Vector(tolerance));
    if ((tried.Bits() & ~(even | whole).Bits()) != 0) {
        auto const near = IsNearWhole(p.endH, p.endV, limit, c.bH, c.bV, c.cH, c.cV);
        if ((tried & near).Bits() != 0) {
            whole =
                whole | (near & KeepsWhole(p.endH, p.endV, limit, c.aH, c.aV, p.lastH, p.lastV));
        }
    }
    Vector const unplanned = Select(even, steps.count, Select(whole, one, zero));
    unsigned const planned = tried.Bits() & ~(even | whole).Bits();
    if (planned == 0) {
        Vector const counts = Select(tried, unplanned, zero);
        ChordCubic<Vector> const cubic = ChordsOf(c, p.originH, p.originV);
        counts.Store(pack.chords);
        for (int i = 1; (counts > Vector(i)).Bits() != 0; ++i) {
            StorePacked(cubic, EndsAt(cubic, Vector(i) * steps.inverse), i, pack);
        }
        return;
    }
    PackedPlan<Vector> const plan(c, tolerance);
    FewCount<kFewChords, Vector> const several(plan.total);
    Vector const most =
        Select(p.bend <= limit * Vector(kFourBend), Vector(4.0), Vector(kFewChords));
    auto const few = even | whole | (plan.total <= Vector(kFewPanels) * most);
    Vector const counts = Select(tried & few, Select(even | whole, unplanned, several.count), zero);
    Vector const step = plan.total * several.inverse;
    ChordEnds<Vector> before = {zero, zero, zero};
    PackedChords chords;
    counts.Store(pack.chords);
    unsigned failing = 0;
    int longest = 0;
    while (longest < kFewChords && (counts > Vector(longest)).Bits() != 0) {
        Vector const number = Vector(++longest);
        Select(even, number * steps.inverse, FewEnds(plan.panels, number, step, counts))
            .Store(chords.t[longest]);
    }
    ChordCubic<Vector> const cubic = ChordsOf(c, p.originH, p.originV);
    for (int i = 1; i <= longest; ++i) {
        ChordEnds<Vector> const ends = EndsAt(cubic, Vector::Load(chords.t[i]));
        StorePacked(cubic, ends, i, pack);
        ends.h.Store(chords.h[i]);
        ends.v.Store(chords.v[i]);
    }
    for (int i = 1; i <= longest; ++i) {
        ChordEnds<Vector> const ends = {Vector::Load(chords.t[i]), Vector::Load(chords.h[i]),
                                        Vector::Load(chords.v[i])};
        unsigned const verified = (counts >= Vector(i)).Bits() & planned;
        chords.failing[i] = verified & ~KeepChords(cubic, limit, before, ends);
        failing |= chords.failing[i];
        before = ends;
    }
    for (; failing != 0; failing &= failing - 1) {
        MendLane(cubic, tolerance, __builtin_ctz(failing), chords, pack);
    }
}

} // namespace trammel_detail

#endif
