// SPDX-License-Identifier: MIT

// SimplifyRings: polygons and whole maps with fewer vertices.
//
// The result keeps a subset of the vertices. Each straight line of it and the piece of the ring
// that it replaces are within a distance d of each other, the Hausdorff distance. d is at most the
// tolerance, and the functions return it.
//
// Neighbours keep their common border. Vertices with the same coordinates are one vertex, on
// whatever rings they are. Where rings come together or part, the vertex is a node, which stays.
// The arcs from node to node are simplified once for all rings that share them, in either
// direction. So rings that share a stretch of vertices share the same stretch of the result.
//
// With NewCrossings::kAvoid, nothing crosses or touches anew: two pieces that had no point in
// common, or only a vertex where both end, are as far from it afterwards. Pieces for which this
// does not hold get more of their vertices, or all of them. Pieces that met before may still meet.
// Whether lines meet is decided exactly, as long as no product of coordinates leaves the range of
// normal doubles.
//
// Nothing comes to the other side then, either: a ring winds around all points of another as often
// as before, where the two have no point in common. So an island stays in the sea and a lake on the
// land, however small they are. A line that has passed a vertex gets more vertices of its piece.
//
// - Rings stay in order, run the same way round, and have their first vertex repeated at the end if
//   they had it. A ring may begin at another of its vertices.
// - A ring of three vertices or more keeps three at least, however small it is.
// - A tolerance of 0 or less and a NaN count as 0: then every vertex stays.
// - Vertices with a NaN or infinite coordinate are absent, and so are repetitions of the vertex
//   before. A ring without other vertices is empty.
//
// The functions share no state: all are safe from any thread. Without memory they throw
// std::bad_alloc, and `out` is as before.
//
// Source: D. Douglas, T. Peucker, 1973. Where its splits are lopsided many times, a piece is split
// in the middle, so that the cost is O(n log n) for every input. Boxes upright and along the
// lines (S. Gottschalk, M. Lin, D. Manocha, 1996) find the pairs that may meet. That a line must
// not pass a vertex is the test of A. Saalfeld, 1999.

#ifndef TRAMMEL_SIMPLIFYRINGS_H
#define TRAMMEL_SIMPLIFYRINGS_H

#include "NewCrossings.h"
#include "PolygonWithHoles.h"
#include "TrammelExport.h"

#include <vector>

namespace trammel {

/// Replaces `out` by the rings with fewer vertices, and returns the distance that is kept. `out`
/// may be `rings` itself.
///
/// Cost: O(n log n); with kAvoid also O(k) for k pairs of lines whose boxes meet, upright and along
/// the lines, in at most 24 rounds, mostly two or three. An arc is tested by its ends and by one
/// vertex between that it keeps. For each of these vertices in the boxes of its piece, a line also
/// looks at all edges of the piece. The sum of these edges is at most 65,536 plus four times the
/// edges of the piece. A line that would need more gets more vertices, even where it has passed
/// nothing. So does a line that meets another one, where 16,384 pairs of boxes do not suffice to
/// find two edges of their pieces that meet.
/// \param tolerance in coordinate units, inclusive.
TRAMMEL_API double SimplifyRings(std::vector<Ring> const& rings, double tolerance,
                                 NewCrossings crossings, std::vector<Ring>& out);

/// The same for the outer rings and holes of a whole map together. `out` may be `map` itself.
TRAMMEL_API double SimplifyMap(std::vector<PolygonWithHoles> const& map, double tolerance,
                               NewCrossings crossings, std::vector<PolygonWithHoles>& out);

} // namespace trammel

#endif
