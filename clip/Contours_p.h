// SPDX-License-Identifier: MIT

// From closed lines on the grid to the contours of the region that they bound. Not installed.
#ifndef TRAMMEL_CONTOURS_P_H
#define TRAMMEL_CONTOURS_P_H

#include "Crossings_p.h"
#include "Grid_p.h"
#include "Lines_p.h"
#include "Linker_p.h"

#include <cstddef>
#include <optional>

namespace trammel_detail {

/// Lines that are cut, with what LinkContours() needs. The lines may be in another order.
struct CutLines {
    CutLines(GridLines uncut, ClipGrid const& grid, Recheck recheck);
    // The tree refers to the lines.
    CutLines(CutLines const&) = delete;
    CutLines& operator=(CutLines const&) = delete;

    GridLines lines;
    ScratchVector<Incidence> incidences;
    std::optional<EdgeTree> tree;
};

/// Returns the contours of a region. An operand is what its lines enclose by the even-odd rule. The
/// lines may cross, touch, coincide and run in any direction.
///
/// Cost: see CutAtCrossings() and LinkContours().
RegionContours ContoursOf(GridLines lines, RegionOf const& region, ClipGrid const& grid,
                          Recheck recheck = Recheck::kWhereNeeded);

/// What there is after the cutting.
struct CutTally {
    std::size_t vertices = 0;
    bool meet = false; ///< whether a vertex lies on another one, or edges met there
};

/// Returns the contours of a region by the winding numbers of operands, which are those of the
/// lines' owners. Adds to `*tally` unless it is null.
RegionContours ContoursOf(GridLines lines, WindingRegion const& region, ClipGrid const& grid,
                          CutTally* tally = nullptr);

} // namespace trammel_detail

#endif
