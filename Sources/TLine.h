// SPDX-License-Identifier: MIT

// TLine: a directed segment of two points, which serves as the infinite line through them as well.
//
// As a segment it has a length, a parameter (0 at mStart, 1 at mEnd), a hit test and segment
// intersection. As a line it has a slope, perpendicular feet, distances and line intersection. Each
// operation says which it is. Coordinates are doubles, angles radians, v grows downward.
//
// Degenerate: nothing is reported. A zero length or a NaN flows through the arithmetic into
// infinities or NaN, except where an operation says otherwise. Arguments are read before anything
// is written. Nothing throws. No shared state: safe in any thread.

#ifndef TRAMMEL_TLINE_H
#define TRAMMEL_TLINE_H

#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"
#include "UScalar.h"
#include "UTrigonometry.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <type_traits>

namespace trammel_detail {

/// A cosine within this distance of 1 or -1, inclusive, counts as exactly 1 or -1. Lines whose
/// directions agree to the last few bits are thus parallel.
inline constexpr double kParallelCosine = 1e-15;

/// The distance beyond its segments' boxes, in coordinate units, within which a crossing still
/// counts. It is the epsilon of single precision, in which the platform's coordinates come.
inline constexpr double kSegmentSlack = 1.1920928955078125e-07;

} // namespace trammel_detail

/// A directed segment, or the infinite line through its two points. T is double.
template <class T> struct TRAMMEL_API TLine {
    static_assert(std::is_same_v<T, double>, "TLine exists for double only");

    TPoint<T> mStart; ///< the point at parameter 0
    TPoint<T> mEnd;   ///< the point at parameter 1

    // Create

    /// Makes a line with both points at the origin.
    constexpr TLine() = default;
    /// Makes the line from `a` to `b`.
    constexpr TLine(TPoint<T> const& a, TPoint<T> const& b) : mStart(a), mEnd(b) {}
    TLine(TLine const&) = default;
    TLine& operator=(TLine const&) = default;

    // Set

    /// Makes this the segment from `a` to `b`.
    constexpr TLine& Set(TPoint<T> const& a, TPoint<T> const& b) { return *this = TLine(a, b); }

    // Query

    /// True when both start points and both end points are equal; the reversed segment differs.
    constexpr bool operator==(TLine const& other) const {
        return mStart == other.mStart && mEnd == other.mEnd;
    }
    /// Returns the direction mEnd - mStart.
    constexpr TPoint<T> Delta() const { return mEnd - mStart; }
    /// Returns the segment's bounding rectangle, in order.
    TRect<T> Bounds() const { return TRect<T>(mStart, mEnd); }
    /// Returns the segment's length, by hypot: no overflow or underflow before the result's own.
    double Length() const { return Delta().Hypotenuse(); }
    /// Returns the direction's angle in radians, atan2(v, h), in [-pi, pi].
    double Angle() const { return Delta().Angle(); }
    /// Returns the direction's v / h: ±infinity for a vertical line, NaN for coincident points.
    double Slope() const { return Delta().Slope(); }
    /// Returns the point at parameter `t`, mStart + Delta()·t; not limited to [0, 1].
    constexpr TPoint<T> TPt(double t) const { return mStart + Delta() * t; }
    /// Returns the point at parameter 0.5.
    constexpr TPoint<T> MidPt() const { return TPt(0.5); }

    // Arithmetic

    /// Moves both points by `p`.
    constexpr TLine& operator+=(TPoint<T> const& p) {
        TPoint<T> const by = p;
        mStart += by;
        mEnd += by;
        return *this;
    }
    constexpr TLine operator+(TPoint<T> const& p) const { return TLine(*this) += p; }

    // Geometry

    /// Rotates both points about the origin, as TPoint::Rotate does.
    TLine& Rotate(double angle) {
        mStart.Rotate(angle);
        mEnd.Rotate(angle);
        return *this;
    }
    /// Rotates both points about `c`, as TPoint::Rotate does.
    TLine& Rotate(double angle, TPoint<T> const& c) {
        TPoint<T> const centre = c;
        mStart.Rotate(angle, centre);
        mEnd.Rotate(angle, centre);
        return *this;
    }
    /// Returns the segment turned by a quarter turn (pi/2) about `c`.
    TLine Perpendicular(TPoint<T> const& c) const { return TLine(*this).Rotate(pi / 2.0, c); }
    /// Returns the segment turned by a quarter turn about its middle.
    TLine Perpendicular() const { return Perpendicular(MidPt()); }
    /// Returns the same as Perpendicular(): a segment on the perpendicular bisector.
    TLine PerpendicularBisector() const { return Perpendicular(); }
    /// Returns the scalar product of the two directions.
    constexpr double Dot(TLine const& other) const {
        TPoint<T> const d = Delta();
        TPoint<T> const e = other.Delta();
        return d.h * e.h + d.v * e.v;
    }
    /// Returns the cosine of the angle between the two directions. Within 1e-15 (inclusive) of 1 or
    /// -1 it is exactly 1 or -1. A zero-length line gives NaN.
    ///
    /// The product of the two squared lengths overflows when both are longer than about 1e77, and
    /// underflows when both are shorter than about 1e-81. The result is then no cosine but 0, an
    /// infinity or NaN.
    double CosTheta(TLine const& other) const;
    /// Returns the angle between the two directions in [0, pi]; NaN where CosTheta is or where it
    /// exceeds 1.
    double DeltaAngle(TLine const& other) const { return std::acos(CosTheta(other)); }
    /// Returns +1 when `p` lies on the side toward which a quarter turn (from +h toward +v) takes
    /// the direction, -1 otherwise. Points on the line where the products cancel, mStart and NaN
    /// give -1.
    ///
    /// It is computed by way of the rotated segment, not by a cross product. Near the line the
    /// rounding on that way decides.
    int HalfSpace(TPoint<T> p) const {
        return Perpendicular(mStart).Dot(TLine(mStart, p)) > 0.0 ? 1 : -1;
    }
    /// Returns the foot of the perpendicular from `p` onto the infinite line; exact for horizontal
    /// and vertical lines. For coincident points it is (mStart.h, p.v), as for a vertical line.
    TPoint<T> PerpendicularPt(TPoint<T> const& p) const {
        TPoint<T> const d = Delta();
        if (d.h == 0.0) {
            return TPoint<T>(mStart.h, p.v);
        }
        if (d.v == 0.0) {
            return TPoint<T>(p.h, mStart.v);
        }
        double const m = d.Slope();
        double const n = -1.0 / m;
        double const x = (n * p.h - m * mStart.h - p.v + mStart.v) / (n - m);
        double const y = n * x - n * p.h + p.v;
        return TPoint<T>(x, y);
    }
    /// Returns the distance from `p` to the infinite line, not to the segment.
    double Distance(TPoint<T> const& p) const { return TLine(p, PerpendicularPt(p)).Length(); }
    /// True when `p` is about within `tolerance` (coordinate units) of the segment.
    ///
    /// The point has to lie in the segment's box grown by the tolerance. Then a segment is hit when
    /// it is shorter than the tolerance (exclusive) in either direction. Any other segment is hit
    /// when the point's vertical or horizontal offset from its line is within the tolerance
    /// (inclusive). A negative tolerance and NaN give false.
    ///
    /// Beside a slanted line this reaches less far than the perpendicular distance would, at 45
    /// degrees as far as tolerance/sqrt(2). Beyond its ends it reaches a little farther.
    bool HitTest(TPoint<T> const& p, double tolerance) const;
    /// Stores the crossing of the two infinite lines in `where` and returns true. Returns false,
    /// and leaves `where` untouched, when either line has coincident points, or when CosTheta is
    /// exactly ±1 (parallel to within 1e-15, coincident lines included).
    bool Intersects(TLine const& other, TPoint<T>& where) const;
    /// Stores the point of the infinite line at horizontal coordinate `x`; not for vertical lines
    /// (infinite or NaN v).
    void YIntersect(double x, TPoint<T>& where) const {
        double const m = Slope();
        where = TPoint<T>(x, m * x + (mStart.v - m * mStart.h));
    }
    /// Stores the crossing of the two infinite lines in `where`. Returns true when it lies in the
    /// boxes of both segments, grown by 2^-23, edges inclusive: end points count. `where` is
    /// written wherever the lines cross, and untouched when they do not.
    bool SegmentsIntersect(TLine const& other, TPoint<T>& where) const;
    /// Returns the point at `distance` (coordinate units) along the segment, from mStart toward
    /// mEnd or, when `fromStart` is false, back from mEnd. It is not limited to the segment. On a
    /// segment of length 0 it is the end that the distance is measured from.
    TPoint<T> CalcPtFromEnd(double distance, bool fromStart) const {
        double const length = Length();
        double const f = length != 0.0 ? distance / length : 0.0;
        return TPt(fromStart ? f : 1.0 - f);
    }
    /// Moves mStart (or mEnd, when `fromStart` is false) to CalcPtFromEnd(distance, fromStart).
    /// This cuts `distance` off that end, or lengthens it by a negative distance.
    void TrimEnd(double distance, bool fromStart) {
        TPoint<T> const p = CalcPtFromEnd(distance, fromStart);
        (fromStart ? mStart : mEnd) = p;
    }
    /// Returns the parameter of the segment's point nearest `p`, as a ratio of lengths. The point
    /// is the foot of the perpendicular, clamped into the segment's box and measured from mStart.
    /// The result is in [0, 1] up to rounding; it is NaN for a segment of length 0.
    double FindTValue(TPoint<T> const& p) const {
        TPoint<T> const nearest = PinPtToLineSeg(PerpendicularPt(p));
        return TLine(mStart, nearest).Length() / Length();
    }
    /// Returns `p` clamped into the segment's bounding box: first h, then v. This is no projection;
    /// off a slanted segment the result need not lie on it.
    TPoint<T> PinPtToLineSeg(TPoint<T> const& p) const {
        TPoint<T> out = p;
        PinValueToRange(std::min(mStart.h, mEnd.h), std::max(mStart.h, mEnd.h), out.h);
        PinValueToRange(std::min(mStart.v, mEnd.v), std::max(mStart.v, mEnd.v), out.v);
        return out;
    }
};

extern template struct TLine<double>;

static_assert(sizeof(TLine<double>) == 32 && offsetof(TLine<double>, mEnd) == 16);
static_assert(std::is_trivially_copyable_v<TLine<double>>);
static_assert(std::is_standard_layout_v<TLine<double>>);

#endif
