// SPDX-License-Identifier: MIT

#include "WindingLabels_p.h"

#include "WindingWalk_p.h"

#include <cstddef>

namespace trammel_detail {

namespace {

/// The winding numbers of one point at a time, which is moved across chains.
class Place {
public:
    Place(ChainGraph const& graph, WindingRegion const& region, Scratch* scratch)
        : mGraph(graph), mRegion(region), mWinding(region.rules.size(), 0, scratch) {}

    /// True when the place is in the region.
    bool InRegion() const {
        return mRegion.region[(mInside[0] != 0 ? 1U : 0U) | (mInside[1] != 0 ? 2U : 0U)];
    }
    /// Crosses a chain and all that equal it, clockwise around the node that `half` leaves.
    void Cross(HalfEdge half) {
        ForEqual(mGraph, half, [this](std::size_t line, int step) { Turn(line, step); });
    }
    /// Crosses a half-edge in the same way, and labels its chain.
    void CrossAndLabel(HalfEdge half, Chain& chain) {
        bool const before = InRegion();
        Cross(half);
        bool const after = InRegion();
        chain.left = (half % 2 == 0 ? before : after) ? 1 : 0;
        chain.operands = before != after ? 1 : 0;
    }
    /// Adds `step` to the winding number of a line's operand.
    void Turn(std::size_t line, int step) {
        std::uint32_t const owner = mGraph.lines.owners[line];
        WindingRule const rule = mRegion.rules[owner];
        std::int32_t& winding = mWinding[owner];
        mInside[rule.group] -= IsInside(winding, rule) ? 1U : 0U;
        winding += step;
        mInside[rule.group] += IsInside(winding, rule) ? 1U : 0U;
    }

private:
    static bool IsInside(std::int32_t winding, WindingRule rule) {
        return rule.evenOdd ? winding % 2 != 0 : winding != 0;
    }

    ChainGraph const& mGraph;
    WindingRegion const& mRegion;
    ScratchVector<std::int32_t> mWinding;          // by operand
    std::array<std::size_t, 2> mInside = {{0, 0}}; // by group: the operands that hold the place
};

} // namespace

void LabelByWinding(ChainGraph& graph, WestRays& rays, WindingRegion const& region) {
    Place place(graph, region, graph.chains.get_allocator().GetScratch());
    WindingWalk<Place>(graph, place).VisitAll(rays);
}

} // namespace trammel_detail
