// SPDX-License-Identifier: MIT

// CBezier: one cubic Bezier segment.
//
// Four points: the curve runs from P0 (parameter 0) to P3 (parameter 1), leaving toward P1 and
// arriving from P2. Everything that turns a curve into points (flattening, hit test, rectangle
// test, length) goes through one adaptive subdivision, GenerateSegment.
//
// Threads: const members of one curve, and all members of different curves, may run at the same
// time. The whole process shares the class-wide settings (mMaxError, mRecursionLimit): change them
// only while no other thread generates points. It shares the counters (mCount, gCount, maxCount),
// too. They are exact where one thread generates points. Where several do, also one after the
// other, they count a part. Read or set them only while no other thread generates points.
//
// Nothing is reported: NaN and infinities propagate. A NaN deviation is never flat, so the
// subdivision of a curve with a NaN goes to the full depth nearly everywhere, up to
// 2^(mRecursionLimit - 1) - 1 points. Arguments are read before anything is written.

#ifndef TRAMMEL_CBEZIER_H
#define TRAMMEL_CBEZIER_H

#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

class CMatrix3x3;
template <class T> class TPolygon;

/// Invocations of the cubic's generator, recursive ones included, since the last Flatten began.
/// A diagnostic that nothing decides by; wraps.
extern TRAMMEL_API std::int32_t gCount;
/// The largest value that gCount has reached. A diagnostic; never reset by the library.
extern TRAMMEL_API std::int32_t maxCount;

/// A cubic Bezier segment.
class TRAMMEL_API CBezier {
public:
    TPoint<double> P0; ///< start point
    TPoint<double> P1; ///< first control point
    TPoint<double> P2; ///< second control point
    TPoint<double> P3; ///< end point

    /// Receives each generated point and the opaque pointer that the caller passed.
    typedef void (*PointDataProc)(TPoint<double> const&, void*);
    /// Receives each generated point.
    typedef void (*PointProc)(TPoint<double> const&);

    /// The flatness tolerance of GenerateSegment in coordinate units (inclusive); 1.0 at load. Read
    /// by HitTest, Intersects and direct generation; Flatten brings its own.
    static double mMaxError;
    /// The depth that Flatten, HitTest and Intersects pass to GenerateSegment; 15 at load, which
    /// allows 16,383 points for a curve. A limit n allows 2^(n-1) - 1: curves that never become
    /// flat (NaN, negative tolerance) use them all, so time doubles with each step.
    static std::int16_t mRecursionLimit;
    /// Points delivered by the generator, ever. A diagnostic; wraps.
    static std::int32_t mCount;

    /// State of a hit test while the generator runs; handed to HitTestPt.
    struct HitInfoRec {
        bool hit;              ///< set once a segment passed within the tolerance
        TPoint<double> testPt; ///< the point being tested
        TPoint<double> lastPt; ///< the start of the next segment
        double tolerance;      ///< the hit distance in coordinate units, inclusive

        /// The points at the origin; `hit` and `tolerance` are for the user to set.
        HitInfoRec() {} // NOLINT(modernize-use-equals-default): the rest stays unset
    };

    /// State of a rectangle test while the generator runs; handed to ContainsPt.
    struct IntersectInfoRec {
        bool hit;           ///< set once a point lay in the rectangle
        TRect<double> rect; ///< the rectangle being tested

        /// The null rectangle; `hit` is for the user to set.
        IntersectInfoRec() {} // NOLINT(modernize-use-equals-default): the rest stays unset
    };

    // Create

    /// Four points at the origin.
    constexpr CBezier() = default;
    /// The curve from `p0` to `p3` with control points `p1` and `p2`.
    constexpr CBezier(TPoint<double> const& p0, TPoint<double> const& p1, TPoint<double> const& p2,
                      TPoint<double> const& p3)
        : P0(p0), P1(p1), P2(p2), P3(p3) {}
    CBezier(CBezier const&) = default;
    CBezier& operator=(CBezier const&) = default;

    // Set

    /// Same as ISet.
    constexpr void Set(TPoint<double> const& p0, TPoint<double> const& p1, TPoint<double> const& p2,
                       TPoint<double> const& p3) {
        ISet(p0, p1, p2, p3);
    }
    /// Stores the four points as they are.
    constexpr void ISet(TPoint<double> const& p0, TPoint<double> const& p1,
                        TPoint<double> const& p2, TPoint<double> const& p3) {
        *this = CBezier(p0, p1, p2, p3);
    }
    /// Returns the class-wide flatness tolerance.
    static double CurveError() { return mMaxError; }
    /// Installs a class-wide flatness tolerance (coordinate units) and returns the previous one, to
    /// be put back later. For one thread, while no other generates points. Any value is taken: 0
    /// and less subdivide to the full depth (0 stops at exactly flat curves), NaN never finds a
    /// curve flat.
    static double SetCurveError(double e);

    // Query

    /// Copies the four points out.
    void Get(TPoint<double>& p0, TPoint<double>& p1, TPoint<double>& p2, TPoint<double>& p3) const {
        CBezier const curve(*this);
        p0 = curve.P0;
        p1 = curve.P1;
        p2 = curve.P2;
        p3 = curve.P3;
    }
    /// True when all four points are equal.
    constexpr bool operator==(CBezier const& b) const {
        return P0 == b.P0 && P1 == b.P1 && P2 == b.P2 && P3 == b.P3;
    }
    /// True when any point differs.
    constexpr bool operator!=(CBezier const& b) const { return !(*this == b); }
    /// The point at parameter `t`: P0 and P3 exactly at 0 and 1, elsewhere by de Casteljau's
    /// construction with steps a + (b - a)·t. Not limited to [0, 1]; NaN gives NaN.
    constexpr TPoint<double> TPt(double t) const {
        if (t == 0.0) {
            return P0;
        }
        if (t == 1.0) {
            return P3;
        }
        TPoint<double> const a = P0 + (P1 - P0) * t;
        TPoint<double> const b = P1 + (P2 - P1) * t;
        TPoint<double> const c = P2 + (P3 - P2) * t;
        TPoint<double> const d = a + (b - a) * t;
        TPoint<double> const e = b + (c - b) * t;
        return d + (e - d) * t;
    }
    /// TPt(0.5).
    constexpr TPoint<double> MidPt() const { return TPt(0.5); }
    /// The bounds of the four points, which contain the curve and are in general larger. With P0
    /// and P3 both at the origin they start from the null rectangle: the bounds of P1 and P2 alone.
    TRect<double> Extents() const { return TRect<double>(P0, P3) | P1 | P2; }
    /// True when the curve's deviation from its chord is at most `tolerance` (coordinate units,
    /// inclusive).
    ///
    /// The deviation is the distance of the curve's middle from the line through P0 and P3; when
    /// the chord has no slope (coincident ends), the distance from P0 to the middle of P1 and P2.
    /// Only the middle is measured: a symmetric S is flat. A NaN deviation is not flat.
    bool Flat(double tolerance) const;

    // Divide

    /// Splits at the middle into `left` and `right`, one of which may be this curve; returns the
    /// split point. Midpoints are formed as (a + b)/2, so the split point may differ from MidPt()
    /// in the last bits.
    TPoint<double> Divide(CBezier& left, CBezier& right) const;
    /// Splits at parameter `t`, not limited to [0, 1]; returns the split point.
    TPoint<double> Divide(CBezier& left, CBezier& right, double t) const;
    /// Splits at the parameter nearest `pt`, searched with tolerance 0 (the result is then 0, 0.5
    /// or 1); returns the split point. For another precision split at FindTValue's result.
    TPoint<double> Divide(CBezier& left, CBezier& right, TPoint<double> const& pt) const;
    /// Stores the piece between two parameters in `out`.
    ///
    /// t0 <= 0 begins at the start, t1 >= 1 ends at the end. The end is rescaled by
    /// (t1 - t0)/(1 - t0) with t0 as given, so a negative t0 shifts it; t0 = 1 with t1 < 1 divides
    /// by zero.
    void GetTRange(double t0, double t1, CBezier& out) const;

    // Generate points

    /// Delivers the split points of a recursive halving, in order of increasing parameter, never P0
    /// or P3.
    ///
    /// A curve is halved while `depth`, less 1 for each level, is above 0 and it is not flat by
    /// mMaxError. This setting is read anew for each curve, and the counters are up to date at each
    /// point. So `proc` may look at them and, while no other thread generates points, change them.
    /// `force` halves the first level in any case. At most 2^(depth-1) - 1 points; a depth of 1 or
    /// less gives none, or one when forced. No allocation. What `proc` throws passes through. By
    /// recursive midpoint subdivision (de Casteljau).
    void GenerateSegment(PointDataProc proc, void* data, bool force, short depth) const;
    /// The same for a callback without data.
    void GenerateSegment(PointProc proc, bool force, short depth) const;
    /// Appends the curve to `poly`: P0, the generated points and P3. Leaves out points equal to
    /// their predecessor in `poly`.
    ///
    /// The first level is forced, so that even a flat curve yields its middle. No points are
    /// generated when P0 = P1 and P2 = P3.
    ///
    /// \param error flatness tolerance in coordinate units, inclusive, whatever mMaxError is.
    ///              Deviation is judged as by Flat, so it is no guaranteed distance for S-shaped
    ///              curves.
    void Flatten(TPolygon<double>& poly, double error) const;
    /// The same as Flatten.
    void AddSegmentToPoly(TPolygon<double>& poly, double error) const;

    /// Appends a point to a polygon unless it repeats the last one.
    static void AddPtToPoly(TPoint<double> const& pt, TPolygon<double>& poly);
    /// Grows a rectangle by a point.
    static void AddPtToBoundsRect(TPoint<double> const& pt, TRect<double>& rect);
    /// Tests the segment from the last point to `pt`, unless there was a hit already.
    static void HitTestPt(TPoint<double> const& pt, HitInfoRec& rec);
    /// Tests whether the rectangle contains `pt`, unless there was a hit already.
    static void ContainsPt(TPoint<double> const& pt, IntersectInfoRec& rec);

    // Measure

    /// The parameter in [t0, t1] nearest to `pt`, by half-plane bisection of the two halves of the
    /// curve and comparison with the range's ends, which win ties (t0 before t1).
    /// \param tolerance step of the parameter at which the bisection ends; also the half-length of
    ///                  the chord that decides the side. 0.001 serves well; 0 decides by a chord of
    ///                  length 0, always the same side.
    /// Fast, not exact: now and then it settles in the wrong part of a winding curve. A reversed
    /// range gives what the steps give.
    double FindTValue(TPoint<double> const& pt, double tolerance, double t0, double t1) const;
    /// Does the bisection of FindTValue: halves the whole curve toward `pt` and, in step, the range
    /// from `lo` to `hi`. It ends when the range is no longer than `tolerance`, or its middle is
    /// one of its ends, but not before one step. Returns the last middle.
    double FindDividedTValue(TPoint<double> const& pt, double tolerance, double lo, double hi);
    /// True when `pt` is within `tolerance` (inclusive, see TLine::HitTest) of the curve flattened
    /// by mMaxError. Points outside Extents() grown by the tolerance are rejected at once.
    bool HitTest(TPoint<double> const& pt, double tolerance) const;
    /// True when P0, P3 or a generated point (flattening by mMaxError) lies in `r`, edges
    /// inclusive. The segments between the points are not tested: a thin rectangle can slip
    /// through.
    bool Intersects(TRect<double> r) const;
    /// Returns the arc length: the length of a flattening at 0.001, whatever mMaxError is. Except
    /// for rounding it is never more than the true length.
    ///
    /// The tolerance is absolute, so the relative error shrinks with the size of the curve.
    /// Measured errors are 7.5e-7 on average and 4e-6 at worst for random curves 1000 units across.
    /// For the curves of a font at 100 units to the em they are 6e-5 and 1.5e-3.
    double Length() const;
    /// The parameter at which `fraction` of the arc length is reached, to about 0.001: found as the
    /// parameter nearest to that point of a flattening at 0.001.
    double PercentT(double fraction) const;
    /// The fraction of the arc length reached at parameter `t` (not limited to [0, 1]); NaN for a
    /// curve of length 0.
    double TPercent(double t) const;

    // Arithmetic: on each of the four points

    CBezier& operator+=(TPoint<double> const& p);
    CBezier& operator-=(TPoint<double> const& p);
    /// Component by component.
    CBezier& operator*=(TPoint<double> const& p);
    /// Component by component; zero divisors give infinities or NaN.
    CBezier& operator/=(TPoint<double> const& p);
    CBezier& operator*=(double s);
    /// A zero divisor gives infinities or NaN.
    CBezier& operator/=(double s);
    CBezier operator+(TPoint<double> const& p) const { return CBezier(*this) += p; }
    CBezier operator-(TPoint<double> const& p) const { return CBezier(*this) -= p; }
    CBezier operator*(TPoint<double> const& p) const { return CBezier(*this) *= p; }
    CBezier operator/(TPoint<double> const& p) const { return CBezier(*this) /= p; }
    CBezier operator*(double s) const { return CBezier(*this) *= s; }
    CBezier operator/(double s) const { return CBezier(*this) /= s; }

    // Geometry: transforms the four points, which transforms the curve exactly

    /// Scales about the origin.
    CBezier& Scale(double s) { return *this *= s; }
    CBezier& Scale(double sx, double sy) { return *this *= TPoint<double>(sx, sy); }
    CBezier& Scale(TPoint<double> const& s) { return *this *= s; }
    /// Rotates about the origin by `angle` radians, as TPoint::Rotate does.
    CBezier& Rotate(double angle);
    /// Rotates about `center`, as TPoint::Rotate does.
    CBezier& Rotate(double angle, TPoint<double> const& center);
    /// Maps through the matrix.
    CBezier& Transform(CMatrix3x3 const& m);
};

static_assert(sizeof(CBezier) == 64 && offsetof(CBezier, P1) == 16 && offsetof(CBezier, P2) == 32 &&
              offsetof(CBezier, P3) == 48);
static_assert(std::is_trivially_copyable_v<CBezier>);
static_assert(std::is_standard_layout_v<CBezier>);

#endif
