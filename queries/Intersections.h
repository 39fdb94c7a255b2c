// SPDX-License-Identifier: MIT

// Intersections: where lines, curves and paths meet each other.
//
// Each function appends the places to `out` and returns the distance that it has kept, here called
// d. That is `accuracy`, a distance in coordinate units, or more in two cases:
//
// - An accuracy finer than rounding allows (0, negative, NaN) gives the finest that there is:
//   2^-40 of the greatest difference of two coordinates of the two segments. Where no two segments
//   are finite, that is 0.
// - Segments that run beside each other in a confusing way take more work than is allowed. The
//   distance is then the least of 16, 256 ... times the accuracy at which they do not. No input is
//   known that has this effect.
//
// A place where the two outlines come within d of each other goes on for as long as they stay
// within d. These are guarantees, save for the rounding of points and parameters themselves:
//
// - The two points of a place are within d of each other.
// - There is a place wherever the outlines cross, and wherever they come within d/4.
// - A place is told once. So each crossing at an angle has a place of its own, unless the outlines
//   stay within d all the way to another crossing or contact. Places that are no farther apart
//   than 2 d along both outlines may be told as one.
//
// The kind of a place tells what happens there; see IntersectionKind. Two branches of either
// outline leave the place. The outlines cross when their branches alternate around it. Several
// crossings within one place count as one if their number is odd, and as a contact if it is even.
//
// A segment with a NaN or infinite coordinate is absent. A segment whose points are all equal is a
// point. Coordinates of any magnitude are treated alike. Every call ends. All are safe from any
// thread. Memory exhaustion is std::bad_alloc, and `out` may then have some of the places.
//
// Source: subdivision with the convex hull property and cones of tangents [Sederberg, Meyers, Loop
// detection in surface patch intersections, Computer Aided Geometric Design 5, 1988]. Curves that
// run beside each other are compared as graphs; docs/intersections.md explains all steps.

#ifndef TRAMMEL_INTERSECTIONS_H
#define TRAMMEL_INTERSECTIONS_H

#include "CBezier.h"
#include "CPath.h"
#include "TLine.h"
#include "TPoint.h"
#include "TrammelExport.h"

#include <cstddef>
#include <vector>

namespace trammel {

/// What happens at a place where two outlines meet.
enum class IntersectionKind {
    kCrossing, ///< they change sides
    kContact,  ///< they touch and keep their sides: a tangent, or a corner
    kEnd,      ///< one of them begins or ends there, so that nobody can tell sides
    kOverlap,  ///< they coincide along a stretch
};

/// A place as one of the two outlines sees it.
struct TRAMMEL_API IntersectionPlace {
    std::size_t element; ///< index of the element in CPath::mCtls; 0 for a line and a curve
    double t;            ///< the parameter on the element, from 0 to 1; of an overlap, its start
    double endT;         ///< the parameter at the end of an overlap; of others the same as `t`
};

/// A place where two outlines meet.
struct TRAMMEL_API Intersection {
    IntersectionKind kind;
    /// True when the first outline changes to another side of the second one here. The outlines
    /// would then cross an odd number of times if one of them were moved a little. It is always
    /// true for crossings, and never for contacts and ends. Of overlaps that follow each other
    /// along the outlines, the first one tells for all, however they run to and fro.
    bool crosses;
    IntersectionPlace a;  ///< on the first outline; a.t <= a.endT
    IntersectionPlace b;  ///< on the second outline; b.t > b.endT where it runs against the first
    TPoint<double> point; ///< the first outline's point at a.t
    TPoint<double> endPoint; ///< the first outline's point at a.endT
};

/// Appends the places where two curves meet, in the order of their parameters on `a`.
///
/// A place is of kind kEnd when an end of either curve lies in it. A curve that is straight within
/// the accuracy and runs back has an overlap for each of its ways along the other one. Cost: about
/// a microsecond for two curves; some tens where they touch or nearly coincide, at most some
/// milliseconds. A call allocates small lists of its own beside `out`.
TRAMMEL_API double AppendIntersections(CBezier const& a, CBezier const& b, double accuracy,
                                       std::vector<Intersection>& out);
/// The same for a curve and a line, which is a segment with its two ends.
TRAMMEL_API double AppendIntersections(CBezier const& a, TLine<double> const& b, double accuracy,
                                       std::vector<Intersection>& out);
/// The same for a line and a curve.
TRAMMEL_API double AppendIntersections(TLine<double> const& a, CBezier const& b, double accuracy,
                                       std::vector<Intersection>& out);
/// The same for two lines.
TRAMMEL_API double AppendIntersections(TLine<double> const& a, TLine<double> const& b,
                                       double accuracy, std::vector<Intersection>& out);

/// Appends the places where two paths meet, in the order of the element and the parameter on `a`.
///
/// A path runs as CPath::Length measures it: an element before any move begins at (0, 0), and one
/// after a close at the last point drawn. A close is a line to the subpath's start. Elements that
/// follow each other are one outline. So a place at a vertex is told once, for one of the elements
/// there, and what happens there is decided with the branches of all of them. Overlaps are told for
/// each pair of elements that coincide. A place is of kind kEnd where an open subpath begins or
/// ends. The area inside plays no part.
///
/// Cost: O(n log n + k log k) for n elements whose boxes are about as long as wide, and k pairs of
/// elements that come near each other. Memory O(n + k).
TRAMMEL_API double AppendIntersections(CPath const& a, CPath const& b, double accuracy,
                                       std::vector<Intersection>& out);
/// The same for a path and a curve.
TRAMMEL_API double AppendIntersections(CPath const& a, CBezier const& b, double accuracy,
                                       std::vector<Intersection>& out);
/// The same for a curve and a path.
TRAMMEL_API double AppendIntersections(CBezier const& a, CPath const& b, double accuracy,
                                       std::vector<Intersection>& out);
/// The same for a path and a line.
TRAMMEL_API double AppendIntersections(CPath const& a, TLine<double> const& b, double accuracy,
                                       std::vector<Intersection>& out);
/// The same for a line and a path.
TRAMMEL_API double AppendIntersections(TLine<double> const& a, CPath const& b, double accuracy,
                                       std::vector<Intersection>& out);

/// Appends the places where a path meets itself. Of each place `a` is the part that comes first.
///
/// The joint of two elements that follow each other is no such place, unless the second one runs
/// back along the first: that is an overlap. Nor is a joint where others come by: these are told by
/// their own elements. Cost: as for two paths.
TRAMMEL_API double AppendSelfIntersections(CPath const& path, double accuracy,
                                           std::vector<Intersection>& out);
/// The same for a curve: the knot of a loop, or the stretches where a straight curve runs back,
/// each between two turning points. A loop whose sides stay within d of each other may be left out.
TRAMMEL_API double AppendSelfIntersections(CBezier const& curve, double accuracy,
                                           std::vector<Intersection>& out);

/// Returns the places where two outlines meet, which are lines, curves or paths.
template <class OutlineA, class OutlineB>
std::vector<Intersection> Intersections(OutlineA const& a, OutlineB const& b, double accuracy) {
    std::vector<Intersection> places;
    AppendIntersections(a, b, accuracy, places);
    return places;
}

/// Returns the places where an outline, a curve or a path, meets itself.
template <class Outline>
std::vector<Intersection> SelfIntersections(Outline const& outline, double accuracy) {
    std::vector<Intersection> places;
    AppendSelfIntersections(outline, accuracy, places);
    return places;
}

} // namespace trammel

#endif
