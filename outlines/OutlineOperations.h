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
// - Contours are closed to the last bit and bound the region by either fill rule. They cross
//   neither themselves nor each other, and meet in single points at most. Where outlines run beside
//   each other nearer than d, parts of them whose ends were moved may cross by less than d.
// - Every element is one of an operand bit for bit, or a part of one with ends moved by no more
//   than d, or a line within d of a contact. In a contact, outlines come nearer to each other than
//   d without crossing at an angle.
// - Where a contour of an operand survives it keeps its start, and contours keep the order of the
//   operands. An outer contour with its holes runs in the direction of most of its sources.
// - Where outlines come no closer to each other than d, except by crossing at an angle, the
//   contours are the true ones.
// - A drawing that is moved or turned has the same result, moved or turned, to the rounding of its
//   coordinates. Outlines that run beside each other nearer than d are an exception.
// - The bits are the same on every machine.
//
// docs/outlines.md names the test of each sentence. Exact topology is not promised: details smaller
// than d may vanish.
//
// Cost: in practice O(n log n + k) for n elements and k places where they meet. Union() leaves out
// most places that lie inside of many outlines. Outlines that are nearly the same take more, up to
// a bound of 2^17 tests and 64 for each pair of arcs that may meet. Where that does not suffice the
// work is begun anew with a distance that is 4 times as large. All calls end, and throw nothing but
// std::bad_alloc. The path that gets the result may be an operand. Calls share no state, so all are
// safe from any thread.
//
// Source: docs/outlines.md describes the method.

#ifndef TRAMMEL_OUTLINEOPERATIONS_H
#define TRAMMEL_OUTLINEOPERATIONS_H

#include "CPath.h"
#include "ElementSource.h"
#include "FillRule.h"
#include "PolygonArrangement.h"
#include "Tgcp.h"
#include "TrammelExport.h"

#include <cstddef>
#include <utility>
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
///
/// Where many outlines overlap much, near ones are united in groups, and the results again. There
/// are about log8(n) such stages for n outlines. The distances that the stages keep add up.
/// \param sources  as above, with the index of the outline as operand
TRAMMEL_API double Union(std::vector<CPath> const& outlines, FillRule rule, double tolerance,
                         CPath& out, std::vector<ElementSource>* sources = nullptr);

/// Sets `out` to contours without overlaps that bound the same region by either rule as `outline`
/// does by `rule`. Returns the distance that is kept.
/// \param sources  as above
TRAMMEL_API double RemoveOverlap(CPath const& outline, FillRule rule, double tolerance, CPath& out,
                                 std::vector<ElementSource>* sources = nullptr);

/// Sets `out` to the stretches of lines that lie inside a region, or to those outside. Returns the
/// distance that is kept.
///
/// The lines are subpaths as drawn: a subpath that is not closed has no line back to its start. The
/// stretches are in the order of the lines and run as they do. A subpath that is closed and nowhere
/// cut stays closed. Stretches along the region's outline count as inside. A subpath without length
/// has none, and is left out.
///
/// Every point of the lines that is farther than d from the region's outline is in `out` exactly
/// when it is asked for, moved by no more than d.
/// \param region  with `rule` the region; an empty path has no points
/// \param sources  as above; the lines are operand 0
TRAMMEL_API double ClipOpen(CPath const& lines, CPath const& region, FillRule rule, bool inside,
                            double tolerance, CPath& out,
                            std::vector<ElementSource>* sources = nullptr);

/// A connected part of the plane, which no outline of an operand divides.
struct OutlineFace {
    CPath outline; ///< an outer contour, which runs from the h direction toward v, and its holes
    std::vector<ElementSource> sources; ///< an entry for each element code of the outline
    /// The operands that wind around the face, in increasing order.
    std::vector<OperandWinding> windings;
};

/// The faces into which the outlines of operands divide the plane, to divide, trim and merge.
///
/// The functions are safe from any thread as long as none changes the arrangement.
class TRAMMEL_API OutlineArrangement {
public:
    /// Divides the plane by the outlines. They may overlap themselves and each other. The tolerance
    /// and the distance that is kept are as above. Throws std::bad_alloc.
    OutlineArrangement(std::vector<CPath> const& operands, double tolerance);

    /// Returns the bounded faces, in the order of the first elements on their outer contours. Faces
    /// that no operand winds around are there, too, such as a yard between several operands.
    std::vector<OutlineFace> const& Faces() const& noexcept { return mFaces; }
    /// Returns the same for an arrangement that ends here. A loop over these faces may outlive it.
    std::vector<OutlineFace> Faces() && noexcept { return std::move(mFaces); }

    /// Returns the distance that is kept: each point farther from all outlines lies in one face
    /// with its winding numbers, or in none.
    double Distance() const noexcept { return mDistance; }
    /// Sets `out` to the region of some faces together, see Union(), and returns the distance that
    /// is kept for them. `faces` are indices into Faces(), in any order. One that is there twice
    /// counts once, and one beyond the last counts as absent.
    double Merge(std::vector<std::size_t> const& faces, CPath& out) const;

private:
    std::vector<OutlineFace> mFaces;
    double mTolerance;
    double mDistance;
};

} // namespace trammel

#endif
