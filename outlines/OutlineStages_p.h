// SPDX-License-Identifier: MIT

// Unions of very many outlines, group by group. Not installed.

#ifndef TRAMMEL_OUTLINESTAGES_P_H
#define TRAMMEL_OUTLINESTAGES_P_H

#include "CPath.h"
#include "ElementSource.h"
#include "OutlineArcs_p.h"

#include <cstdint>
#include <vector>

namespace trammel_detail {

/// Unites near outlines in groups, and the results again, until few are left. Where outlines
/// overlap much, most crossings lie inside of others, and each stage leaves those out that are
/// inside its groups. So the time is O(n log n + k) where only the k crossings near the result
/// count.
///
/// False where that does not pay, such as for few outlines or where they overlap little. Nothing is
/// changed then. `arcs` has the outlines of operands 0 to count - 1, and is not taken apart.
/// \param kept  the tolerance, which becomes the distance that is kept: the sum over
///              the stages if that is more
/// \param sources  as LiftResult() has it
bool UniteInStages(OutlineArcs const& arcs, std::uint32_t count, bool evenOdd, double& kept,
                   CPath& path, std::vector<trammel::ElementSource>* sources);

} // namespace trammel_detail

#endif
