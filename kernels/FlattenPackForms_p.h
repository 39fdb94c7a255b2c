// SPDX-License-Identifier: MIT

// Flattening of four curves at a time: the arithmetic of FlattenKernelForms_p.h, with a curve in
// each lane. Each of two files compiles it for one vector, and no other file includes this header.
// Not installed.

#ifndef TRAMMEL_FLATTENPACKFORMS_P_H
#define TRAMMEL_FLATTENPACKFORMS_P_H

#include "FlattenKernelForms_p.h"
#include "FlattenKernels_p.h"
#include "Vector_p.h"

#include <cstddef>
#include <cstdint>

namespace trammel_detail {

template <class Vector>
[[gnu::always_inline]] inline void PlanPackForm(double const* const (&curves)[kPack],
                                                double tolerance, FlatPack& pack) {
    pack.tolerance = tolerance;
    pack.limit = tolerance * tolerance;
    for (int i = 0; i < kPack; ++i) {
        pack.curves[i] = curves[i];
    }
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
    BendCubic<Vector> c;
    c.aH = h1 - h0;
    c.aV = v1 - v0;
    Vector const middleH = h2 - h1;
    Vector const middleV = v2 - v1;
    Vector const lastH = h3 - h2;
    Vector const lastV = v3 - v2;
    c.bH = middleH - c.aH;
    c.bV = middleV - c.aV;
    Vector const b2H = lastH - middleH;
    Vector const b2V = lastV - middleV;
    c.cH = b2H - c.bH;
    c.cV = b2V - c.bV;
    Vector const sum =
        ((Abs(v0) + Abs(v1)) + (Abs(v2) + Abs(v3))) + ((Abs(h0) + Abs(h1)) + (Abs(h2) + Abs(h3)));
    Vector const bend = Max(c.bV * c.bV + c.bH * c.bH, b2V * b2V + b2H * b2H);
    Vector const limit = Vector(pack.limit);
    auto const ordinary = (sum >= Vector(0x1p-100)) & (sum <= Vector(0x1p100)) &
                          (Vector(tolerance) > Vector(kFineBeside) * sum);
    Vector const endH = h3 - h0;
    Vector const endV = v3 - v0;
    auto const tried =
        ordinary & (bend <= limit * Vector(kFewBend)) & IsChord(endV * endV + endH * endH, limit);
    if (tried.Bits() == 0) {
        Vector(0.0).Store(pack.chords);
        return;
    }
    ChordCubic<Vector> const cubic = ChordsOf(c, h0, v0);
    Vector const numbers[kPackNumbers] = {
        cubic.startH,  cubic.startV,  cubic.riseH,   cubic.riseV,   cubic.steep,
        cubic.threeAH, cubic.threeAV, cubic.threeBH, cubic.threeBV, cubic.cH,
        cubic.cV,      cubic.originH, cubic.originV};
    for (int i = 0; i < kPackNumbers; ++i) {
        numbers[i].Store(pack.numbers[i]);
    }
    auto const quadratic = tried & IsQuadratic(bend, c.cV * c.cV + c.cH * c.cH) &
                           (bend <= limit * Vector(kEvenBend)) & (bend > limit * Vector(kOneBend));
    pack.even = 0;
    double evenChords[kPack];
    if (quadratic.Bits() != 0) {
        EvenCount<Vector> const even(bend, limit);
        Vector const product = c.aH * c.bV - c.aV * c.bH;
        pack.even = (quadratic &
                     IsEven(c.aV * c.aV + c.aH * c.aH, middleV * middleV + middleH * middleH,
                            lastV * lastV + lastH * lastH, product, even.count, Vector(tolerance)))
                        .Bits();
        even.inverse.Store(pack.inverse);
        even.count.Store(evenChords);
        if ((tried.Bits() & ~pack.even) == 0) {
            Select(tried, even.count, Vector(0.0)).Store(pack.chords);
            return;
        }
    }
    FewPanels<Vector> panels;
    Density<Vector> densities[kFewPanels];
    for (int i = 0; i < kFewPanels; ++i) {
        densities[i] = DensityOf(c, Vector(kFewMiddles[i]), Vector(FewScale(tolerance)), kFewShape);
    }
    panels.sums[0] = densities[0].chords;
    panels.sums[1] = densities[0].chords + densities[1].chords;
    panels.sums[2] = panels.sums[1] + densities[2].chords;
    Vector const total = panels.sums[1] + (densities[2].chords + densities[3].chords);
    for (int i = 0; i < kFewPanels; ++i) {
        PanelLine<Vector> const line(1.0 / kFewPanels, Vector(i),
                                     i == 0 ? Vector(0.0) : panels.sums[i == 0 ? 0 : i - 1],
                                     densities[i], densities[i == 0 ? 0 : i - 1].inverse,
                                     densities[i == kFewPanels - 1 ? i : i + 1].inverse);
        panels.first[i] = line.first;
        panels.each[i] = line.each;
        panels.more[i] = line.more;
    }
    auto one = bend <= limit * Vector(kOneBend);
    auto const near = IsNearWhole(endH, endV, limit, c.bH, c.bV, c.cH, c.cV);
    if ((tried & near).Bits() != 0) {
        one = one | (near & KeepsWhole(endH, endV, limit, c.aH, c.aV, lastH, lastV));
    }
    Vector const turns =
        Min(Min(c.aH * middleH + c.aV * middleV, middleH * lastH + middleV * lastV),
            c.aH * lastH + c.aV * lastV);
    pack.onward = (turns >= Vector(0.0)).Bits();
    Vector const most = Select(bend <= limit * Vector(kFourBend), Vector(4.0), Vector(kFewChords));
    auto const few = total <= Vector(kFewPanels) * most;
    FewCount<kFewChords, Vector> const several(total);
    Vector const count = Select(one, Vector(1.0), several.count);
    Select(tried & (one | few), count, Vector(0.0)).Store(pack.chords);
    for (unsigned even = pack.even; even != 0; even &= even - 1) {
        int const curve = __builtin_ctz(even);
        pack.chords[curve] = evenChords[curve];
    }
    Vector const step = total * several.inverse;
    Vector const four = Vector(4.0);
    for (auto& ends : pack.t) {
        Vector const before = &ends == &pack.t[0] ? Vector(0.0) : four;
        Vector t0 = FewEnds(panels, before + Vector(1.0), step, count);
        Vector t1 = FewEnds(panels, before + Vector(2.0), step, count);
        Vector t2 = FewEnds(panels, before + Vector(3.0), step, count);
        Vector t3 = FewEnds(panels, before + four, step, count);
        Transpose(t0, t1, t2, t3);
        t0.Store(ends[0]);
        t1.Store(ends[1]);
        t2.Store(ends[2]);
        t3.Store(ends[3]);
        if ((tried & few & (count > four)).Bits() == 0) {
            break;
        }
    }
}

template <class Vector>
[[gnu::always_inline]] inline ChordCubic<Vector> CubicOfPack(FlatPack const& pack, int curve) {
    double const* const n = pack.numbers[0] + curve;
    auto const number = [n](int i) __attribute__((always_inline)) {
        return Vector(n[std::ptrdiff_t{kPack} * i]);
    };
    return {number(0), number(1), number(2), number(3),  number(4),  number(5), number(6),
            number(7), number(8), number(9), number(10), number(11), number(12)};
}

/// Returns the chords of a curve of a pack that are not known to keep the tolerance.
template <bool kOnward, class Vector>
[[gnu::always_inline]] inline unsigned StorePacked(FlatPack const& pack, int curve, int count,
                                                   double* out) {
    ChordCubic<Vector> const cubic = CubicOfPack<Vector>(pack, curve);
    Vector const zero = Vector(0.0);
    Vector const limit = Vector(pack.limit);
    ChordEnds<Vector> ends = {zero, zero, zero};
    unsigned keeping =
        StoreChords<kOnward>(cubic, limit, Vector::Load(pack.t[0][curve]), ends, out);
    if (count > 4) {
        keeping |= StoreChords<kOnward>(cubic, limit, Vector::Load(pack.t[1][curve]), ends, out + 8)
                   << 4U;
    }
    return ~keeping & static_cast<unsigned>(Ones(count));
}

template <class Vector>
[[gnu::always_inline]] inline int DividePackedForm(FlatPack const& pack, int curve, int count,
                                                   double* out) {
    if ((pack.even >> static_cast<unsigned>(curve) & 1U) != 0) {
        StoreEven(CubicOfPack<Vector>(pack, curve), Vector(pack.inverse[curve]), count <= 4, out);
        return count;
    }
    bool const onward = (pack.onward >> static_cast<unsigned>(curve) & 1U) != 0;
    unsigned const failing = onward ? StorePacked<true, Vector>(pack, curve, count, out)
                                    : StorePacked<false, Vector>(pack, curve, count, out);
    if (failing == 0) {
        return count;
    }
    FlatChords chords;
    chords.failing = failing;
    Vector::Load(pack.t[0][curve]).Store(chords.t + 1);
    Vector::Load(pack.t[1][curve]).Store(chords.t + 5); // means nothing for up to four chords
    int const mended =
        MendChords(CubicOfPack<Vector>(pack, curve), pack.tolerance, 1, out, count, chords);
    return chords.failing == 0 ? mended : 0;
}

} // namespace trammel_detail

#endif
