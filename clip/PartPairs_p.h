// SPDX-License-Identifier: MIT

// Pairs of parts of cut edges that may meet, without a tree. Not installed.

#ifndef TRAMMEL_PARTPAIRS_P_H
#define TRAMMEL_PARTPAIRS_P_H

#include "Cuts_p.h"
#include "EdgeSplit_p.h"
#include "EdgeTree_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"

namespace trammel_detail {

/// Finds the pairs of parts that may meet after the first round of cutting, one of them active.
/// Parts of two edges meet only near a cut or a near miss of these edges, or near their common end,
/// see Clearances. So each active part is held against the parts of edges that come near its own
/// edge there. Pairs whose boxes have no point in common are left out, and a pair can come twice.
///
/// `sorted` has the cuts of the edges with their other edges, and `parts` is what ApplyCuts() made
/// of them. `lines` has the parts, and `tree` is over these. Returns false if a tree costs less,
/// with no pairs.
bool FindPartPairs(SortedCuts const& sorted, PartsOfEdges const& parts, EdgeTree const& tree,
                   GridLines const& lines, ScratchVector<EdgePair>& pairs);

} // namespace trammel_detail

#endif
