// SPDX-License-Identifier: MIT

// The union of many operands in stages: first of near operands, then of the results. Not installed.

#ifndef TRAMMEL_STAGES_P_H
#define TRAMMEL_STAGES_P_H

#include "Contours_p.h"
#include "Grid_p.h"
#include "Lines_p.h"
#include "Linker_p.h"

#include <cstdint>

namespace trammel_detail {

/// Returns the contours of the union of the operands 0 to owners - 1. The lines of each owner come
/// one after the other. Edges of the contours have origins if the lines' edges have them.
///
/// All edges are cut at once where operands overlap little. Where they overlap much, most crossings
/// lie within other operands. Then near operands are united first, by eights, as long as that makes
/// enough vertices vanish. A sixteenth of the work of a stage tells.
///
/// Cost: as ContoursOf(), but with the crossings that the stages meet. There are at most
/// log8(owners) stages.
/// \param cut  gets what there is after the last stage is cut
RegionContours UniteInStages(GridLines lines, std::uint32_t owners, bool evenOdd,
                             ClipGrid const& grid, CutTally& cut);

} // namespace trammel_detail

#endif
