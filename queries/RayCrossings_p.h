// SPDX-License-Identifier: MIT

// Crossings of an outline's segments with the ray from a point, its origin, toward +h. Not
// installed.
//
// +1 counts where the segment crosses toward +v, -1 where it crosses toward -v. A point is beyond
// the ray's line when its v is greater than the origin's, and ahead when its h is. A segment that
// ends beyond the line and does not start there crosses the line once, plus pairs of crossings that
// cancel. Segments that follow each other share an end to the last bit, and so do the halves of a
// curve. So rounding never counts a crossing twice or leaves one out: the count is exact for a
// contour of slightly moved control points.

#ifndef TRAMMEL_RAYCROSSINGS_P_H
#define TRAMMEL_RAYCROSSINGS_P_H

#include "ContourWalk_p.h"
#include "TPoint.h"
#include "Vector_p.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// Where a point lies as seen from the origin: kBeyond where its v is greater, and kAhead where its
/// h is. Of a NaN neither is set.
typedef unsigned Side;
constexpr Side kBeyond = 1;
constexpr Side kAhead = 2;

inline Side SideOf(Double2 const& p, Double2 const& origin) { return (p > origin).Bits(); }

/// True when the points of a segment lie on both sides of the origin in both coordinates. `all` has
/// what the sides of its points have in common, `any` what one of them has.
inline bool Surrounds(Side all, Side any) { return (all ^ any) == (kBeyond | kAhead); }

/// Returns the crossings of a segment whose points do not surround the origin, by the sides of its
/// ends: a segment stays in the hull of its points. The same holds for a chain of segments.
inline int PlainCrossings(Side all, Side start, Side end) {
    int const beyond = static_cast<int>(end & kBeyond) - static_cast<int>(start & kBeyond);
    return (all & kAhead) != 0 ? beyond : 0;
}

// The next two take points as seen from the origin, v in lane 0 and h in lane 1. They return false
// where rounding could tell the wrong side, and for coordinates that are not finite. Otherwise
// `crossings` gets the exact number, whether or not the points surround the origin.

/// Returns the cross products of a direction with two points: positive where the turn to the point
/// is from h toward v. `margin` gets what they may be off by: more than 4u of the two products'
/// sum, and more than what underflow takes. Where a product overflows it is infinite or NaN.
inline Double2 CrossesOf(Double2 const& direction, Double2 const& a, Double2 const& b,
                         Double2& margin) {
    Double2 const swapped = Double2::Of(Lane<1>(direction), Lane<0>(direction));
    Double2 const ofA = swapped * a; // h v, v h
    Double2 const ofB = swapped * b;
    Double2 const first = Firsts(ofA, ofB);
    Double2 const second = Seconds(ofA, ofB);
    margin = (Abs(first) + Abs(second)) * 0x1p-50 + 0x1p-900;
    return first - second;
}

/// The crossings of a line from `a` to `b`, unless the origin is too near to it.
inline bool LineTells(Double2 const& a, Double2 const& b, int& crossings) {
    Double2 margin;
    Double2 const cross = CrossesOf(a, b, b, margin);
    int const side = static_cast<int>((cross > margin).Bits() & 1U) -
                     static_cast<int>((-cross > margin).Bits() & 1U);
    int const beyond = static_cast<int>(Lane<0>(b) > 0.0) - static_cast<int>(Lane<0>(a) > 0.0);
    crossings = beyond == side ? beyond : 0;
    return side != 0;
}

/// The crossings of a cubic, if all its control points lie on one side of the line through the
/// origin along its chord. It then crosses the ray as its chord does.
inline bool ChordTells(Double2 const& p0, Double2 const& p1, Double2 const& p2, Double2 const& p3,
                       int& crossings) {
    Double2 const chord = p3 - p0;
    Double2 margin01;
    Double2 margin23;
    Double2 const cross01 = CrossesOf(chord, p0, p1, margin01);
    Double2 const cross23 = CrossesOf(chord, p2, p3, margin23);
    unsigned const left = (cross01 > margin01).Bits() & (cross23 > margin23).Bits();
    unsigned const right = (-cross01 > margin01).Bits() & (-cross23 > margin23).Bits();
    int const side = static_cast<int>(left == 3) - static_cast<int>(right == 3);
    int const beyond = static_cast<int>(Lane<0>(p3) > 0.0) - static_cast<int>(Lane<0>(p0) > 0.0);
    // Along the ray the chord is ahead where the turn from it to its start is toward the ray.
    crossings = beyond == -side ? beyond : 0;
    return side != 0;
}

/// Returns the crossings of a line whose ends surround the origin; 0 when a coordinate is not
/// finite.
int CrossingsOfLineAround(TPoint<double> const& a, TPoint<double> const& b,
                          TPoint<double> const& origin);
/// Returns the crossings of a cubic whose control points surround the origin; 0 when a coordinate
/// is not finite.
int CrossingsOfCurveAround(TPoint<double> const& p0, TPoint<double> const& p1,
                           TPoint<double> const& p2, TPoint<double> const& p3,
                           TPoint<double> const& origin);

/// Returns the crossings of a line whose ends are at `a`, as WindingNumber counts them.
int CrossingsOfLine(TPoint<double> const* a, TPoint<double> const& origin);
/// Returns the crossings of a cubic whose control points are at `a`, as WindingNumber counts them.
int CrossingsOfCurve(TPoint<double> const* a, TPoint<double> const& origin);

/// The same for a line or a cubic.
inline int CrossingsOfSegment(TPoint<double> const* a, bool isCurve, TPoint<double> const& origin) {
    Double2 const p = CoordinatesAt(&origin);
    Double2 const p0 = CoordinatesAt(a) - p;
    Double2 const p1 = CoordinatesAt(a + 1) - p;
    int crossings = 0;
    if (!isCurve) {
        return LineTells(p0, p1, crossings) ? crossings : CrossingsOfLine(a, origin);
    }
    return ChordTells(p0, p1, CoordinatesAt(a + 2) - p, CoordinatesAt(a + 3) - p, crossings)
               ? crossings
               : CrossingsOfCurve(a, origin);
}

/// The number of bits that are set in a byte.
inline constexpr std::array<std::int8_t, 256> kBitCounts = [] {
    std::array<std::int8_t, 256> counts{};
    for (std::size_t i = 1; i < counts.size(); ++i) {
        counts[i] = static_cast<std::int8_t>(counts[i / 2] + static_cast<int>(i % 2));
    }
    return counts;
}();

/// Returns how many of the lowest eight bits are set. The others are 0.
inline int CountOfBits(unsigned bits) { return kBitCounts[bits]; }

} // namespace trammel_detail

#endif
