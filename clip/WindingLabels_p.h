// SPDX-License-Identifier: MIT

// The sides of chains by the winding numbers of any number of operands. Not installed.

#ifndef TRAMMEL_WINDINGLABELS_P_H
#define TRAMMEL_WINDINGLABELS_P_H

#include "ChainGraph_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"
#include "WestRays_p.h"

#include <array>
#include <cstdint>

namespace trammel_detail {

/// Tells for each set of operands whether the points in these and in no others belong to the
/// region. The index is the set, Operands from 0 to 3. Points in no operand never belong to it.
typedef std::array<bool, 4> RegionOf;

/// How lines enclose the points of one operand.
struct WindingRule {
    bool evenOdd;        ///< points with an odd winding number are inside, else all with any but 0
    unsigned char group; ///< 0 or 1
};

/// A region by the winding numbers of operands, GridLines::owners. Each of two groups of operands
/// holds the points that lie in at least one operand of the group. In `region` the first group has
/// bit 1 and the second one bit 2.
struct WindingRegion {
    /// Makes the region without rules.
    WindingRegion(RegionOf const& of, Scratch* scratch) : rules(scratch), region(of) {}

    ScratchVector<WindingRule> rules; ///< by operand
    RegionOf region;
};

/// Labels the chains of a graph that lists equal chains. Afterwards Chain::left is 1 where the
/// points to the left belong to the region, else 0, and Chain::operands is 1 where the two sides
/// differ.
///
/// Cost: that of a WindingWalk, whatever the number of operands.
void LabelByWinding(ChainGraph& graph, WestRays& rays, WindingRegion const& region);

} // namespace trammel_detail

#endif
