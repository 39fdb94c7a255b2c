// SPDX-License-Identifier: MIT

// Operations on outlines: union, intersection, difference and exclusive-or of regions that curves
// bound. Results keep the curves.
//
// The functions of PolygonOperations.h do the same for polygons. Choose the functions here for
// paths.
//
// An outline bounds a region by its contours, as in Winding.h: every subpath counts as closed,
// whether it is or not. Contours may cross themselves and each other, overlap, have cusps, loops
// and no area, and run in either direction. A contour with a NaN or infinite coordinate is absent.
//
// Each function takes a tolerance in coordinate units, and returns the distance d that it keeps.
// That is the tolerance, or more: rounding needs some 2^-30 of the drawing's size, and outlines
// that run beside each other closer than the work allows may need more still. A tolerance that is
// 0, negative or NaN asks for the least distance. These hold for every result:
//
// - Every point farther than d from all outlines of the operands is inside the result exactly when
//   the operands' fill rules and the operation say so.
// - Contours are closed to the last bit. They cross neither themselves nor each other, and meet in
//   single points at most. They bound the region by either fill rule.
// - Every element is one of an operand bit for bit, or a part of one with ends moved by no more
//   than d, or a line within d of a contact. In a contact, outlines come nearer to each other than
//   d without crossing at an angle.
// - Where a contour of an operand survives it keeps its start, and contours keep the order of the
//   operands. An outer contour with its holes runs in the direction of most of its sources.
//
// Exact topology is not promised: details smaller than d may vanish.
//
// Cost: in practice O(n log n + k) for n elements and k places where they meet. Outlines that are
// nearly the same take more, up to a bound of 2^17 tests and 64 for each pair of arcs that may
// meet. Where that does not suffice the work is begun anew with a distance that is 8 times as
// large. All calls end, and throw nothing but std::bad_alloc. The path that gets the result may be
// an operand. Calls share no state, so all are safe from any thread.
//
// Source: docs/outlines.md describes the method.

#ifndef TRAMMEL_OUTLINEOPERATIONS_H
#define TRAMMEL_OUTLINEOPERATIONS_H

#include "CPath.h"
#include "ElementSource.h"
#include "FillRule.h"
#include "Tgcp.h"
#include "TrammelExport.h"

#include <vector>

namespace trammel {

/// Sets `out` to the region `a` `op` `b`, where `a` and `b` are the regions that the outlines bound
/// by their rules. Returns the distance that is kept. An operation outside of the four gives an
/// empty path.
/// \param sources  gets an entry for each element code of `out`; may be null
TRAMMEL_API double Boolean(TPolyOp op, CPath const& a, FillRule ruleA, CPath const& b,
                           FillRule ruleB, double tolerance, CPath& out,
                           std::vector<ElementSource>* sources = nullptr);

/// Sets `out` to the region of all outlines together. Each one holds the points that it alone holds
/// by `rule`, so their directions do not matter. Returns the distance that is kept.
/// \param sources  as above, with the index of the outline as operand
TRAMMEL_API double Union(std::vector<CPath> const& outlines, FillRule rule, double tolerance,
                         CPath& out, std::vector<ElementSource>* sources = nullptr);

/// Sets `out` to contours without overlaps that bound the same region by either rule as `outline`
/// does by `rule`. Returns the distance that is kept.
/// \param sources  as above
TRAMMEL_API double RemoveOverlap(CPath const& outline, FillRule rule, double tolerance, CPath& out,
                                 std::vector<ElementSource>* sources = nullptr);

} // namespace trammel

#endif
