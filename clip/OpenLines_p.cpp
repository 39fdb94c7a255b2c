// SPDX-License-Identifier: MIT

#include "OpenLines_p.h"

#include "ChainGraph_p.h"
#include "Contours_p.h"
#include "WestRays_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace trammel_detail {

namespace {

/// Returns the box, widened by a double to each side in x or in y where it has no width or height.
Box<double> WithArea(Box<double> box) {
    auto const widen = [](double& low, double& high) {
        if (low == high) {
            low = std::max(std::nextafter(low, -HUGE_VAL), std::numeric_limits<double>::lowest());
            high = std::min(std::nextafter(high, HUGE_VAL), std::numeric_limits<double>::max());
        }
    };
    widen(box.lowX, box.highX);
    widen(box.lowY, box.highY);
    return box;
}

typedef unsigned char Sides; // see OpenPieces::sides

/// Returns the sides of each edge, by the number of its first vertex.
ScratchVector<Sides> SidesOf(ChainGraph const& graph) {
    // The first of equal chains is labelled for all.
    ScratchVector<char> listed(graph.chains.size(), 0, graph.chains.get_allocator());
    for (HalfEdge const equal : graph.equals) {
        if (equal != kNone) {
            listed[equal / 2] = 1;
        }
    }
    ScratchVector<Sides> sides(graph.lines.points.size(), 0, graph.chains.get_allocator());
    for (Number i = 0; i < graph.chains.size(); ++i) {
        if (listed[i] != 0) {
            continue;
        }
        Chain const& chain = graph.chains[i];
        unsigned const left = chain.left;
        unsigned const right = left ^ chain.operands;
        for (Number k = 0; k < chain.count; ++k) {
            sides[graph.VertexOf(chain, k)] = static_cast<Sides>(left | right << 1);
        }
        for (HalfEdge equal = graph.equals[i]; equal != kNone; equal = graph.equals[equal / 2]) {
            sides[graph.chains[equal / 2].first] =
                static_cast<Sides>(equal % 2 == 0 ? left | right << 1 : right | left << 1);
        }
    }
    return sides;
}

} // namespace

OpenPieces LabelOpenLines(BooleanOperand const& open, BooleanOperand& contours,
                          WindingRegion const& region, Scratch* scratch) {
    OpenPieces pieces{GridLines(scratch), ScratchVector<Sides>(scratch), ClipGrid(0, 0, 1, 1)};
    if (open.Count() == 0) {
        return pieces;
    }
    Box<double> const where = open.Bounds();
    contours.Keep(where);
    Box<double> all = contours.Bounds();
    all.Include(where);
    all = WithArea(all);
    pieces.grid = ClipGrid(all.lowX, all.lowY, all.highX, all.highY);
    WindingRegion withOpen = region;
    // The two ways along an open line cancel each other, so its rule does not matter.
    withOpen.rules.push_back({false, 0});
    auto const owner = static_cast<std::uint32_t>(region.rules.size());
    GridLines lines(scratch);
    contours.AppendLinesWithOrigins(Wider(where, all), 0, pieces.grid, lines);
    open.AppendOpenLines(owner, contours.GivenCount(), pieces.grid, lines);
    pieces.grid.FinishAdding();

    CutLines const cut(std::move(lines), pieces.grid, Recheck::kWhereNeeded);
    ChainGraph graph(cut.lines, cut.incidences, EqualChains::kList);
    WestRays rays(cut.lines, cut.tree);
    LabelByWinding(graph, rays, withOpen);
    ScratchVector<Sides> const sides = SidesOf(graph);
    for (std::size_t line = 0; line < cut.lines.Count(); ++line) {
        if (cut.lines.owners[line] != owner) {
            continue;
        }
        // The way back begins at the first edge that runs against its origin.
        bool back = false;
        for (std::size_t i = cut.lines.Begin(line); i < cut.lines.End(line) && !back; ++i) {
            back = IsReversed(cut.lines.origins[i]);
            pieces.lines.points.push_back(cut.lines.points[i]);
            pieces.lines.origins.push_back(cut.lines.origins[i]);
            pieces.sides.push_back(sides[i]);
        }
        pieces.lines.ends.push_back(pieces.lines.points.size());
    }
    return pieces;
}

} // namespace trammel_detail
