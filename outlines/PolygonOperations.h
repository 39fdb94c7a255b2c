// SPDX-License-Identifier: MIT

// Polygon operations: union, intersection, difference and exclusive-or of regions by either fill
// rule, the union of many polygons at once, and rings without overlaps.
//
// The functions of Tgcp.h and gpc.h read contours by the even-odd rule, take two operands, and keep
// the order of vertices that their interface promises. Choose the functions here for the nonzero
// rule, SVG's default, and for many operands.
//
// A region is bounded by closed rings, which may cross themselves and each other, overlap, and run
// in either direction. A ring counts as closed whether it is marked as closed or not. A ring with a
// NaN or infinite coordinate or fewer than three vertices counts as absent, and so does one whose
// bounds have no area. Winding numbers are those of Winding.h.
//
// Results are rings that bound the region by either rule. Those of type TPolygon are marked as
// closed.
//
// - Outer rings have a positive SignedArea() (Moments.h): they run from the +h direction toward +v.
//   Rings of holes have a negative one. So winding numbers are 1 inside and 0 outside.
// - Rings cross neither themselves nor each other. They meet in single points at most, and no ring
//   has a vertex twice.
// - A ring begins at its vertex of least v, of several at that of least h. The rings are in that
//   order, too. Rings that begin at one vertex are in the order of their second vertices. No rings
//   stand for an empty region.
//
// Accuracy: the plane is a grid of up to 2^61 steps along each axis of the operands' bounds, or of
// the doubles where those are coarser. A vertex that survives is the same double. A crossing of two
// edges is right within 2^-52 of the bounds' extent, or is the nearest double if that is coarser.
// An edge moves by as much where it is cut. Edges can be cut again where that makes them meet
// anew, and by Union() once in each of its stages. In all they move by less than some 2^-50 of the
// extent, or some spacings of the doubles there. A point farther from all rings is inside the
// result exactly when winding numbers, rules and operation say so. Details smaller than a step may
// vanish. All this holds wherever the operands lie and however large they are, from 1e-300 upwards.
//
// Cost: in practice O(n log n + k) for n vertices and k points where edges meet. It does not grow
// with the number of operands. At worst it is the number of pairs of edges whose bounds meet. All
// calls end, and throw nothing but std::bad_alloc. They share no state, so all are safe from any
// thread.
//
// Source: docs/clipping.md describes the engine.

#ifndef TRAMMEL_POLYGONOPERATIONS_H
#define TRAMMEL_POLYGONOPERATIONS_H

#include "FillRule.h"
#include "PolygonWithHoles.h"
#include "TPoly.h"
#include "Tgcp.h"
#include "TrammelExport.h"

#include <vector>

namespace trammel {

/// Returns the rings of the region `a` `op` `b`, where `a` and `b` are the regions that the rings
/// of each bound by their rules. An operation outside of the four gives no rings.
TRAMMEL_API std::vector<TPolygon<double>>
Boolean(TPolyOp op, std::vector<TPolygon<double>> const& a, FillRule ruleA,
        std::vector<TPolygon<double>> const& b, FillRule ruleB);

/// Returns the rings of the region of all polygons together. Each polygon is one ring, which holds
/// the points that it alone holds by `rule`. So their directions do not matter.
TRAMMEL_API std::vector<TPolygon<double>> Union(std::vector<TPolygon<double>> const& polygons,
                                                FillRule rule);
/// Returns the same for polygons of several rings each, such as outer rings with holes.
TRAMMEL_API std::vector<TPolygon<double>>
Union(std::vector<std::vector<TPolygon<double>>> const& polygons, FillRule rule);

/// Returns rings without overlaps that bound the same region by either rule as `rings` do by
/// `rule`.
TRAMMEL_API std::vector<TPolygon<double>> RemoveOverlap(std::vector<TPolygon<double>> const& rings,
                                                        FillRule rule);

/// Returns the same region as polygons with holes: each outer ring with the holes that lie directly
/// in it. Rings are as above, and polygons are in the order of their outer rings. The polygons have
/// no point in common but vertices.
TRAMMEL_API std::vector<PolygonWithHoles> ToPolygons(std::vector<TPolygon<double>> const& rings,
                                                     FillRule rule);

/// Returns the region `a` `op` `b` as polygons with holes. Each of `a` and `b` stands for all
/// points in at least one of its polygons, so the polygons of one list may overlap. A polygon holds
/// the points that its rings hold by the even-odd rule, which is its region where its holes lie in
/// the outer ring and do not overlap. An operation outside of the four gives no polygons.
TRAMMEL_API std::vector<PolygonWithHoles>
Boolean(TPolyOp op, std::vector<PolygonWithHoles> const& a, std::vector<PolygonWithHoles> const& b);
/// Returns the region of all polygons together, in the same form and by the same rule.
TRAMMEL_API std::vector<PolygonWithHoles> Union(std::vector<PolygonWithHoles> const& polygons);

} // namespace trammel

#endif
