// SPDX-License-Identifier: MIT

// Simplify: outlines of fewer elements, within a distance that is proven.
//
// The result keeps within a distance d of the outline, which is at most the tolerance. Every point
// of the outline is within d of the result, and every point of the result within d of the outline
// (the Hausdorff distance). The same holds for each run of elements and the element in its place,
// even for two pens that draw both from end to end (the Fréchet distance). Each element is proven
// by itself, with the control points of the difference; nothing is sampled.
//
// - Runs of curves that meet smoothly become one curve. It has the ends of the run, bit for bit,
//   and its directions there, to rounding. No curve ends where it begins.
// - Runs of lines that continue each other become one line. The directions of neighbours differ by
//   less than 2^-10 radians then. A run with a horizontal or a vertical line only becomes another
//   such line.
// - All other elements stay, bit for bit. So do corners: joints at which the directions differ by
//   more than 2^-4 radians. Smooth joints are gone or stay as smooth as they were.
// - Subpaths stay in order, open or closed, with their start points.
//
// Asked about crossings, the functions also keep what outlines have in common, as SimplifyRings.h
// does for polygons. Elements with the same points, in either direction, are one element. A joint
// at which a subpath begins or ends, or where subpaths have different neighbours, is a node, which
// stays. Runs between nodes are simplified once for all outlines that share them.
//
// With NewCrossings::kAvoid, nothing crosses or touches anew. A curve or line that replaces a run
// has only common ends with other elements of the result, and no other point in common. It does not
// cross or touch itself either. Where that is not proven, the run is halved, and at last its
// elements stay. So elements that cross others stay as they are, and only they may. No run comes to
// lie on the other side of another one, if the two have no end in common. Proofs compare hulls of
// control points, with a margin of 2^-44 of the greatest coordinate.
//
// A tolerance of 0 or less and a NaN count as 0: then everything stays. Elements with a NaN or
// infinite coordinate stay, too. Unknown codes, and elements whose points do not suffice, are left
// out, and each subpath begins with a move, as in PathStructure.h. Coordinates may have any
// magnitude.
//
// The functions share no state: all are safe from any thread. Without memory they throw
// std::bad_alloc, and `out` is as before.

#ifndef TRAMMEL_SIMPLIFY_H
#define TRAMMEL_SIMPLIFY_H

#include "CPath.h"
#include "NewCrossings.h"
#include "TrammelExport.h"

#include <vector>

namespace trammel {

/// Replaces `out` by the outline with fewer elements, and returns the distance that is kept: 0
/// where all curves stay and no line was moved. `out` may be the outline itself.
///
/// Cost: O(n log n), some microseconds for each curve of the outline. Source: curves with the area
/// and moment of their runs [R. Levien, Fitting cubic Bézier curves, 2021].
/// \param tolerance in coordinate units, inclusive.
TRAMMEL_API double Simplify(CPath const& outline, double tolerance, CPath& out);

/// The same with nodes, and without new crossings if asked. `out` may be the outline itself.
///
/// Cost: O(n log n); with kAvoid also O(k) for k pairs of elements whose boxes meet, in at most 24
/// rounds, mostly two or three. A pair takes at most 400 steps.
/// \param tolerance in coordinate units, inclusive.
TRAMMEL_API double Simplify(CPath const& outline, double tolerance, NewCrossings crossings,
                            CPath& out);

/// The same for all outlines of a drawing or a map together, in order. `out` may be `outlines`
/// itself.
TRAMMEL_API double SimplifyOutlines(std::vector<CPath> const& outlines, double tolerance,
                                    NewCrossings crossings, std::vector<CPath>& out);

} // namespace trammel

#endif
