// SPDX-License-Identifier: MIT

// AccurateCurve: length, nearest point, flattening and bounds of curves, each to an accuracy that
// the caller names and that is kept.
//
// The curves' own functions of these purposes (CBezier::Length, FindTValue, Flatten, Extents) keep
// their definitions by subdivision and control points. Choose the functions here where a result has
// to be right within a known distance. They work by quadrature, by isolating roots, and by verified
// chords. They read no class-wide setting and write none.
//
// Accuracies are distances in coordinate units, and guarantees: the result is off by no more,
// except for the rounding of doubles, which each function states. An accuracy finer than rounding
// allows (0, negative, NaN) gives the finest that there is. Curves of any size are measured alike:
// one scaled by a power of two has the same results scaled, bit for bit, with the accuracy scaled
// along.
//
// A NaN or infinite coordinate of a curve or a point gives NaN in all results, and so does a NaN
// for a parameter, a length or a fraction. Nothing is reported. Every call ends. None allocates,
// except in the polygon or path that it fills. They share no state, so all are safe from any
// thread.

#ifndef TRAMMEL_ACCURATECURVE_H
#define TRAMMEL_ACCURATECURVE_H

#include "CBSpline.h"
#include "CBezier.h"
#include "CPath.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <cstddef>
#include <memory>
#include <type_traits>
#include <vector>

namespace trammel {

// Length

/// The arc length, right within `accuracy` plus 2^-48 of the control polygon's length.
///
/// Cusps, loops and curves that double back are measured like any other. Infinite where it exceeds
/// the range of double. Cost: one to a few dozen pieces of at most 40 square roots, four of them at
/// once where the processor has such; the number of digits asked for matters little.
/// Source: Gauss-Legendre quadrature; error by the ellipse of analyticity around each piece and by
/// the branch points outside, known beforehand [Trefethen, Approximation Theory and Approximation
/// Practice, chapters 3 and 19].
TRAMMEL_API double ArcLength(CBezier const& curve, double accuracy);
/// The arc length from parameter `t0` to `t1`, each limited to [0, 1]; negative when t1 < t0. Right
/// within the same bound.
TRAMMEL_API double ArcLength(CBezier const& curve, double t0, double t1, double accuracy);
/// The same for a quadratic curve.
TRAMMEL_API double ArcLength(CBSpline const& curve, double accuracy);
/// The length of all segments, closing ones included, and of the same segments as CPath::Length.
/// Each of n curves gets the n-th part of `accuracy`; lines are right to rounding. O(n).
TRAMMEL_API double ArcLength(CPath const& path, double accuracy);

/// The parameter at which the arc length from the start reaches `length`: the length up to it is
/// `length` within `accuracy` plus 2^-47 of the control polygon's length.
///
/// 0 for lengths of 0 and less, 1 for those of the whole curve and more; a NaN gives NaN. Where the
/// curve (nearly) stands still, many parameters have (nearly) the same length, and it is one of
/// them.
/// Source: Newton's method on ArcLength, in a bracket that is halved where it does not shrink.
TRAMMEL_API double ParameterAtLength(CBezier const& curve, double length, double accuracy);
/// The parameter at which `fraction` of the arc length is reached, to the accuracy of
/// ParameterAtLength. 0 for fractions of 0 and less and for a curve without length, 1 for 1 and
/// more.
TRAMMEL_API double ParameterAtFraction(CBezier const& curve, double fraction, double accuracy);

// Nearest point

/// A place on a curve, and how far from the point asked about it is.
struct TRAMMEL_API CurvePoint {
    double t;             ///< the parameter, from 0 to 1
    TPoint<double> point; ///< the curve's TPt(t)
    double distance;      ///< coordinate units
};

/// The point of the curve nearest to `pt`, the whole curve searched and its ends included.
///
/// `distance` exceeds the least distance by at most `accuracy` plus 2^-44 of the greatest distance
/// of a control point from `pt`. Of several points as near as that it is one of them. `t` is as
/// sharp as the distance makes it: a distance of 0 within a gives a point within a; but around the
/// centre of an arc all points are equally near.
///
/// Cost: mostly one to ten pieces and some steps of Newton's method; at most some hundreds, where
/// the curve keeps nearly the same distance.
/// Source: subdivision of the squared distance in Bernstein form. Pieces whose least coefficient is
/// not below the best distance are dropped. Descartes' rule isolates critical points [Farin; Lane
/// and Riesenfeld, Bounds on a Polynomial, BIT 21, 1981].
TRAMMEL_API CurvePoint NearestPoint(CBezier const& curve, TPoint<double> const& pt,
                                    double accuracy);
/// The same for a quadratic curve. `point` is off by rounding as that of a cubic is.
TRAMMEL_API CurvePoint NearestPoint(CBSpline const& curve, TPoint<double> const& pt,
                                    double accuracy);

// Flatten

/// The most points into which FlattenWithin makes one curve. Reached where the tolerance is some
/// 2^-34 of the curve's size and less; one curve takes at most a megabyte.
inline constexpr long kMostFlatPoints = 65536;

/// Appends the curve to `poly`: P0, points of the curve in order of increasing parameter, P3,
/// leaving out those equal to their predecessor. Returns the distance that is kept.
///
/// Every point of the curve is within that distance of the polyline, and every point of the
/// polyline within that distance of the curve (the Hausdorff distance). To it comes the rounding of
/// the points themselves: 2^-50 of the greatest coordinate, and 2^-1074. The distance is
/// `tolerance`, or 2^-40 of the curve's size if that is more, or what kMostFlatPoints points could
/// achieve. A curve that is straight gives its ends and, where it doubles back, the turning points.
///
/// Points lie as densely as the bend demands, within about a twentieth of the fewest possible for
/// points on the curve. With a NaN or infinite coordinate P0 and P3 are appended, and NaN is
/// returned.
/// Cost: 4 to 65 samples of the bend, and one or two evaluations a point. Each chord is verified,
/// except for quadratic curves in equal steps, whose second differences bound the distance. Points
/// are worked on four at a time, and appended many at a time. Source: equal steps of the integral
/// of the square root of the bend [Levien, Flattening quadratic Béziers, 2019]. The distance of a
/// cubic from its chord is taken by its control points.
TRAMMEL_API double FlattenWithin(CBezier const& curve, double tolerance, TPolygon<double>& poly);
/// The same for a quadratic curve.
TRAMMEL_API double FlattenWithin(CBSpline const& curve, double tolerance, TPolygon<double>& poly);
/// Delivers the points (P0 and P3 included, none left out) to `proc` with `data`. No allocation;
/// what `proc` throws passes through.
TRAMMEL_API double FlattenWithin(CBezier const& curve, double tolerance,
                                 CBezier::PointDataProc proc, void* data);
/// Appends the path to `out` with its curves made lines, subpaths and closes as they are. Returns
/// the greatest of the curves' distances, 0 without curves, and NaN where a curve has a NaN or
/// infinite coordinate.
///
/// Curves keep `tolerance` each. An element without a move before it begins with one, at the point
/// from which it is measured. `out` may be this path. O(n). Memory exhaustion is std::bad_alloc,
/// and `out` is then as it was.
TRAMMEL_API double FlattenWithin(CPath const& path, double tolerance, CPath& out);

/// What FlattenInto tells about a curve.
struct TRAMMEL_API Flattened {
    std::size_t count; ///< the points of the flattening, stored or not
    double distance;   ///< the distance that is kept, as FlattenWithin returns it
};

/// Stores in `points` what FlattenWithin delivers: P0, points in between, P3, none left out.
/// Returns how many points there are, at most kMostFlatPoints, and the distance.
///
/// Where they are more than `capacity`, the first `capacity` points are stored. The caller then
/// calls again with as much room as the count says. Nothing beyond `capacity` is touched; within
/// it, points behind the last one may be overwritten. `points` may be null where `capacity` is 0.
/// P0 and P3 are exact: curves that meet have the same points there. No allocation.
///
/// Degenerate: with a NaN or infinite coordinate the points are P0 and P3, and the distance is NaN.
/// A curve of no length gives P0 and P3, too. A tolerance of 0, a negative one and a NaN give the
/// finest that there is, and an infinite one two points.
TRAMMEL_API Flattened FlattenInto(CBezier const& curve, double tolerance, TPoint<double>* points,
                                  std::size_t capacity);

/// A contour of FlatContours.
struct TRAMMEL_API FlatContour {
    std::size_t begin; ///< the index of its first point
    std::size_t end;   ///< the index behind its last point
    bool closed;       ///< a line from the last point to the first belongs to it
};

/// The contours of a path, made lines.
struct FlatContours {
    std::vector<TPoint<double>> points;
    std::vector<FlatContour> contours; ///< in order, one behind the other without gaps
};

/// Makes the path's curves lines, within `tolerance` as FlattenWithin does. Replaces the content of
/// `out`, and keeps its memory for the next path. Returns the greatest of the curves' distances, 0
/// without curves, and NaN where a curve has a NaN or infinite coordinate.
///
/// A contour has the ends of all its segments, exactly, and the points in between. Points of no
/// segment, as of a move after which nothing is drawn, do not count. Closing lines are not stored:
/// the contour is marked as closed. An element without a move before it begins a contour at the
/// point from which it is measured. O(n). Memory exhaustion is std::bad_alloc, and `out` then has a
/// part of the contours. Four curves are planned at a time; they have the points they have alone.
TRAMMEL_API double FlattenInto(CPath const& path, double tolerance, FlatContours& out);

} // namespace trammel

namespace trammel_detail {

typedef void (*FlatPointsProc)(TPoint<double> const* points, std::size_t count, void* data);
enum class FlatStep { kBegin, kPoints, kOpenEnd, kClosedEnd };
typedef void (*FlatStepProc)(FlatStep step, TPoint<double> const* points, std::size_t count,
                             void* data);
/// What the templates below call: `proc` gets many points at a time.
TRAMMEL_API double FlattenByRuns(CBezier const& curve, double tolerance, FlatPointsProc proc,
                                 void* data);
TRAMMEL_API double FlattenByRuns(CPath const& path, double tolerance, FlatStepProc proc,
                                 void* data);

} // namespace trammel_detail

namespace trammel {

/// Calls use(point) for each point of the flattening, P0 and P3 included, none left out. Returns
/// the distance that is kept, as FlattenWithin does. No allocation; what `use` throws passes
/// through.
template <class Use> double FlattenTo(CBezier const& curve, double tolerance, Use&& use) {
    typedef std::remove_reference_t<Use>* Called;
    auto const pass = [](TPoint<double> const* points, std::size_t count, void* data) {
        Called const called = *static_cast<Called*>(data);
        for (std::size_t i = 0; i < count; ++i) {
            (*called)(points[i]);
        }
    };
    Called called = std::addressof(use); // apart, because `use` may be const and `data` is not
    return trammel_detail::FlattenByRuns(curve, tolerance, pass, &called);
}

/// Hands the contours of a path to `sink`: sink.Begin(point) for the first point of each,
/// sink.Point(point) for each other one, and sink.End(closed) at its end. The points are those of
/// FlattenInto, and so is the result. No allocation; what the sink throws passes through.
template <class Sink> double FlattenTo(CPath const& path, double tolerance, Sink& sink) {
    auto const pass = [](trammel_detail::FlatStep step, TPoint<double> const* points,
                         std::size_t count, void* data) {
        Sink& to = *static_cast<Sink*>(data);
        switch (step) {
        case trammel_detail::FlatStep::kBegin:
            to.Begin(*points);
            break;
        case trammel_detail::FlatStep::kPoints:
            for (std::size_t i = 0; i < count; ++i) {
                to.Point(points[i]);
            }
            break;
        default:
            to.End(step == trammel_detail::FlatStep::kClosedEnd);
            break;
        }
    };
    return trammel_detail::FlattenByRuns(path, tolerance, pass, std::addressof(sink));
}

// Bounds

/// The bounds of the curve itself, not of its control points.
///
/// They contain every point of the curve. Each side is beyond the curve by at most 2^-45 of the
/// control points' extent in that direction, plus two units in the last place. Sides that an end or
/// a control point determines are exact. The bounds are never outside the box of the control points
/// (which Extents() is, unless some lie at the origin). Source: the zeros of the derivative in each
/// coordinate.
TRAMMEL_API TRect<double> TightBounds(CBezier const& curve);
/// The same for a quadratic curve.
TRAMMEL_API TRect<double> TightBounds(CBSpline const& curve);
/// The bounds of all segments as CPath::Length measures them, of each curve as above. A move after
/// which nothing is drawn does not count. The null rectangle for a path without segments. O(n).
TRAMMEL_API TRect<double> TightBounds(CPath const& path);

} // namespace trammel

#endif
