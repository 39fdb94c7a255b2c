// SPDX-License-Identifier: MIT

// CBSpline: one quadratic segment (three points, the quadratic Bezier form).
//
// The curve runs from P0 to P2, pulled toward P1. It offers what it takes to turn such a segment
// into points; for evaluation, hit tests and measuring raise it to a CBezier. It follows the
// pattern of CBezier and differs from it on purpose:
//
// - the first level is not forced;
// - it has settings of its own, with twice the tolerance;
// - flatness is tested along the axes instead of across the chord;
// - midpoints are a + (b - a)·0.5.
//
// Threads: as for CBezier. Const members of one curve, and all members of different curves, may run
// at the same time. Change the class-wide settings, and read or set the counter, only while no
// other thread generates points.
//
// Nothing is reported; NaN and infinities propagate, and a curve with a NaN slope is subdivided to
// the full depth. Arguments are read before anything is written.

#ifndef TRAMMEL_CBSPLINE_H
#define TRAMMEL_CBSPLINE_H

#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

template <class T> class TPolygon;

/// A quadratic segment.
class TRAMMEL_API CBSpline {
public:
    TPoint<double> P0; ///< start point
    TPoint<double> P1; ///< control point
    TPoint<double> P2; ///< end point

    /// Receives each generated point and the opaque pointer that the caller passed.
    typedef void (*PointDataProc)(TPoint<double> const&, void*);

    /// The flatness tolerance of GenerateSegment in coordinate units (inclusive); 2.0 at load.
    static double mMaxError;
    /// The depth that AddSegmentToPoly passes to GenerateSegment; 15 at load.
    static std::int16_t mRecursionLimit;
    /// Points delivered by the generator, ever. A diagnostic; wraps.
    static std::int32_t mCount;

    /// Three points at the origin.
    CBSpline() = default;
    /// The curve from `p0` to `p2` with control point `p1`.
    CBSpline(TPoint<double> const& p0, TPoint<double> const& p1, TPoint<double> const& p2)
        : P0(p0), P1(p1), P2(p2) {}
    CBSpline(CBSpline const&) = default;
    CBSpline& operator=(CBSpline const&) = default;

    /// Same as ISet.
    void Set(TPoint<double> const& p0, TPoint<double> const& p1, TPoint<double> const& p2) {
        ISet(p0, p1, p2);
    }
    /// Stores the three points as they are.
    void ISet(TPoint<double> const& p0, TPoint<double> const& p1, TPoint<double> const& p2) {
        *this = CBSpline(p0, p1, p2);
    }
    /// Returns the class-wide flatness tolerance.
    static double CurveError() { return mMaxError; }
    /// Installs a class-wide flatness tolerance; unlike CBezier's it does not return the previous
    /// one. For one thread, while no other generates points.
    static void SetCurveError(double e) { mMaxError = e; }

    /// Splits at the middle into `left` and `right`, of which one may be this curve; returns the
    /// split point.
    TPoint<double> Divide(CBSpline& left, CBSpline& right) const;
    /// True when P1 is within `tolerance` (coordinate units, inclusive) of the chord, measured
    /// vertically or, failing that, horizontally. A curve with coincident ends is flat whatever P1.
    bool Flat(double tolerance) const;
    /// The bounds of the three points, which contain the curve. With P0 and P2 both at the origin
    /// they are P1 alone (see TRect's union).
    TRect<double> Extents() const { return TRect<double>(P0, P2) | P1; }

    /// Delivers the split points of a recursive halving, in order of increasing parameter, never P0
    /// or P2. A curve is halved while `depth`, less 1 for each level, is above 0 and it is not flat
    /// by mMaxError: at most 2^(depth-1) - 1 points. This setting is read anew for each curve, so
    /// `proc` may change it while no other thread generates points. No allocation. What `proc`
    /// throws passes through. By recursive midpoint subdivision (de Casteljau).
    void GenerateSegment(PointDataProc proc, void* data, short depth) const;
    /// Appends P0, the generated points (none when all three points are equal) and P2 to `poly`,
    /// leaving out points equal to their predecessor in it.
    /// \param error flatness tolerance, whatever mMaxError is
    void AddSegmentToPoly(TPolygon<double>& poly, double error) const;
    /// Appends a point to a polygon unless it repeats the last one.
    static void AddPtToPoly(TPoint<double> const& pt, TPolygon<double>& poly);
};

static_assert(sizeof(CBSpline) == 48 && offsetof(CBSpline, P1) == 16 &&
              offsetof(CBSpline, P2) == 32);
static_assert(std::is_trivially_copyable_v<CBSpline>);
static_assert(std::is_standard_layout_v<CBSpline>);

#endif
