// SPDX-License-Identifier: MIT

// A sweep over edges that do not cross, which tells the edge directly west of each. Not installed.

#ifndef TRAMMEL_WESTSWEEP_P_H
#define TRAMMEL_WESTSWEEP_P_H

#include "ChainGraph_p.h"
#include "Lines_p.h"
#include "Predicates_p.h"
#include "Scratch_p.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace trammel_detail {

/// An edge that is not horizontal, from its lower end to its upper one.
struct SweptEdge {
    GridPoint low;
    GridPoint high;
    Number number;
};

/// Calls visit(edge, west) for all edges, in the order of their lower ends, upwards and from west
/// to east. `west` points to the edge that is directly west, just above the lower end. It is null
/// for none. Two edges must be equal or have nothing in common but ends. Of equal edges the one
/// with the lowest number counts as the westmost.
///
/// Cost: O(n log n).
template <class Visit> void SweepWest(ScratchVector<SweptEdge> edges, Visit&& visit) {
    // Of two edges that reach one height, the lower end of the one that begins later lies beside
    // the other, or the two begin at one point.
    auto const turnsWest = [](SweptEdge const& e, SweptEdge const& f) {
        int const side = SideOf(e.low, e.high, f.high);
        return side != 0 ? side < 0 : e.number < f.number;
    };
    auto const isWest = [&](Number i, Number j) {
        SweptEdge const& e = edges[i];
        SweptEdge const& f = edges[j];
        if (e.low == f.low) {
            return turnsWest(e, f);
        }
        return e.low < f.low ? SideOf(e.low, e.high, f.low) < 0 : SideOf(f.low, f.high, e.low) > 0;
    };
    std::sort(edges.begin(), edges.end(), [&](SweptEdge const& e, SweptEdge const& f) {
        return e.low != f.low ? e.low < f.low : turnsWest(e, f);
    });
    ScratchVector<Number> ends(edges.get_allocator());
    for (Number i = 0; i < edges.size(); ++i) {
        ends.push_back(i);
    }
    std::sort(ends.begin(), ends.end(),
              [&](Number i, Number j) { return edges[i].high.y < edges[j].high.y; });
    std::set<Number, decltype(isWest)> open(isWest);
    auto end = ends.begin();
    for (Number i = 0; i < edges.size(); ++i) {
        for (; end != ends.end() && edges[*end].high.y <= edges[i].low.y; ++end) {
            open.erase(*end);
        }
        auto const at = open.insert(i).first;
        visit(edges[i], at == open.begin() ? nullptr : &edges[*std::prev(at)]);
    }
}

} // namespace trammel_detail

#endif
