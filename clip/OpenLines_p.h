// SPDX-License-Identifier: MIT

// Open lines, cut by the contours of a region. Not installed.

#ifndef TRAMMEL_OPENLINES_P_H
#define TRAMMEL_OPENLINES_P_H

#include "Boolean_p.h"
#include "Grid_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"
#include "WindingLabels_p.h"

namespace trammel_detail {

/// Open lines that are cut, in no particular order.
struct OpenPieces {
    /// The vertices of each line from its first to its last. A vertex has the origin of the edge
    /// to the next one. The last vertex has any origin.
    GridLines lines;
    /// One a vertex: 1 if the points to the left of the edge to the next one belong to the region
    /// (y up), + 2 if the points to the right do. Nothing is told at the last vertex of a line.
    ScratchVector<unsigned char> sides;
    ClipGrid grid;
};

/// Cuts open lines wherever they meet the contours of a region, themselves or each other, and tells
/// on which sides of each edge the region lies. The two sides differ along its boundary only.
///
/// The contours in `contours` are as for CombineByWinding(), of either group. Contours that do not
/// matter are removed. Edges have origins as if `contours` were the first operand and `open` the
/// second. Throws what CombineByWinding() does.
OpenPieces LabelOpenLines(BooleanOperand const& open, BooleanOperand& contours,
                          WindingRegion const& region, Scratch* scratch);

} // namespace trammel_detail

#endif
