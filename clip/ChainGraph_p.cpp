// SPDX-License-Identifier: MIT

#include "ChainGraph_p.h"

#include "EdgeTree_p.h"
#include "MortonOrder_p.h"
#include "Predicates_p.h"
#include "SortFew_p.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>

namespace trammel_detail {

/// The first edge along a half-edge.
struct ChainGraph::DirectedEdge {
    GridPoint origin;
    GridPoint target;
    HalfEdge half;
    bool lower; // whether it runs down, or to the left
};

/// Where one chain of a line ends and the next one begins.
struct ChainGraph::Passage {
    GridPoint at;
    Number chain; // that begins there
};

ChainGraph::ChainGraph(GridLines const& cutLines, ScratchVector<Incidence> const& incidences,
                       EqualChains equal)
    : lines(cutLines), chains(incidences.get_allocator()), links(incidences.get_allocator()),
      equals(incidences.get_allocator()) {
    MakeChains(incidences);
    if (equal == EqualChains::kList) {
        equals.assign(chains.size(), kNone);
    }
    links.resize(2 * chains.size());
    MakeCrossingNodes(incidences);
    MakeSharedNodes();
}

/// True when edge s comes before t, turning counterclockwise from east around their common origin.
bool ChainGraph::TurnsFirst(DirectedEdge const& s, DirectedEdge const& t) {
    if (s.lower != t.lower) {
        return t.lower;
    }
    Int128 const cross = Cross(s.origin, s.target, t.target);
    if (cross != 0) {
        return cross > 0;
    }
    // The edges have one direction. Equal ones keep the order of their numbers.
    return s.target != t.target ? s.target < t.target : s.half < t.half;
}

/// Brings the passages of each node together.
void ChainGraph::SortByPlace(ScratchVector<Passage>& passages) {
    auto const before = [](Passage const& p, Passage const& q) { return p.at < q.at; };
    std::size_t const kFew = 32;
    if (passages.size() <= kFew) {
        SortFew(passages.data(), passages.data() + passages.size(), before);
        return;
    }
    // Passages go into buckets along Morton's curve, with fewer than three to a bucket if they are
    // spread evenly. Then each bucket is sorted.
    int bits = 1;
    while (passages.size() >> bits > 2 && bits < kMortonBits) {
        ++bits;
    }
    ScratchVector<std::size_t> ends(std::size_t{1} << bits, 0, passages.get_allocator());
    ScratchVector<Number> buckets(passages.size(), passages.get_allocator());
    for (std::size_t i = 0; i < passages.size(); ++i) {
        buckets[i] = static_cast<Number>(MortonCode(passages[i].at) >> (kMortonBits - bits));
        ++ends[buckets[i]];
    }
    std::size_t sum = 0;
    for (std::size_t& end : ends) {
        sum += std::exchange(end, sum);
    }
    ScratchVector<Passage> sorted(passages.size(), passages.get_allocator());
    for (std::size_t i = 0; i < passages.size(); ++i) {
        sorted[ends[buckets[i]]++] = passages[i];
    }
    Passage* begin = sorted.data();
    for (std::size_t const size : ends) {
        Passage* const end = sorted.data() + size;
        SortFew(begin, end, before);
        begin = end;
    }
    passages = std::move(sorted);
}

/// Appends the two edges of each passage, in counterclockwise order around each node.
void ChainGraph::AppendEdgesAt(ScratchVector<Passage> const& passages,
                               ScratchVector<DirectedEdge>& edges) const {
    auto const append = [&](GridPoint from, GridPoint to, HalfEdge half) {
        edges.emplace_back(from, to, half, to < from);
    };
    std::size_t begin = 0;
    for (std::size_t i = 0; i < passages.size(); ++i) {
        GridPoint const at = passages[i].at;
        Number const next = passages[i].chain;
        Number const last = chains[next].previous;
        append(at, PointOf(chains[next], 1), 2 * next);
        append(at, PointOf(chains[last], chains[last].count - 1), 2 * last + 1);
        if (i + 1 == passages.size() || passages[i + 1].at != at) {
            SortFew(edges.data() + begin, edges.data() + edges.size(), TurnsFirst);
            begin = edges.size();
        }
    }
}

void ChainGraph::MakeChains(ScratchVector<Incidence> const& incidences) {
    // Cutting lines may have given them more edges than a tree takes.
    if (lines.points.size() > EdgeTree::kMostEdges) {
        throw std::length_error("ChainGraph");
    }
    std::size_t most = lines.Count();
    for (Incidence const incidence : incidences) {
        most += incidence != kSingle ? 1 : 0;
    }
    chains.resize(most);
    Number count = 0;
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        auto const begin = static_cast<Number>(lines.Begin(line));
        auto const end = static_cast<Number>(lines.End(line));
        Number const firstChain = count;
        for (Number i = begin; i < end; ++i) {
            if (incidences[i] != kSingle) {
                Chain& chain = chains[count];
                chain.line = static_cast<Number>(line);
                chain.first = i;
                chain.previous = count - 1;
                chain.other = kNone;
                chain.closed = false;
                chain.operands = lines.operands[line];
                ++count;
                chain.next = count;
            }
        }
        if (firstChain == count) {
            chains[count] = {
                static_cast<Number>(line), begin, end - begin, count, count, kNone, true,
                lines.operands[line]};
            ++count;
            continue;
        }
        chains[firstChain].previous = count - 1;
        chains[count - 1].next = firstChain;
        for (Number i = firstChain; i + 1 < count; ++i) {
            chains[i].count = chains[i + 1].first - chains[i].first;
        }
        chains[count - 1].count = end - chains[count - 1].first + chains[firstChain].first - begin;
    }
    chains.resize(count);
}

void ChainGraph::MakeCrossingNodes(ScratchVector<Incidence> const& incidences) {
    Incidence const last =
        incidences.empty() ? kSingle : *std::max_element(incidences.begin(), incidences.end());
    if (last < kFirstCrossing) {
        return;
    }
    // For each crossing, the first chain that begins there. A crossing without a second chain has
    // become a shared vertex on the other edge.
    ScratchVector<Number> firstAt((last - kFirstCrossing) / 2 + 1, kNone,
                                  chains.get_allocator().GetScratch());
    for (Number i = 0; i < chains.size(); ++i) {
        if (chains[i].closed || incidences[chains[i].first] < kFirstCrossing) {
            continue;
        }
        Incidence const incidence = incidences[chains[i].first] - kFirstCrossing;
        Number const first = firstAt[incidence / 2];
        if (first == kNone) {
            firstAt[incidence / 2] = i;
            continue;
        }
        chains[i].other = first;
        chains[first].other = i;
        bool const left = incidence % 2 != 0;
        HalfEdge const out[2] = {2 * first, 2 * i};
        HalfEdge const in[2] = {2 * chains[first].previous + 1, 2 * chains[i].previous + 1};
        HalfEdge const second = left ? out[1] : in[1];
        HalfEdge const fourth = left ? in[1] : out[1];
        links[out[0]] = {nodeCount, fourth};
        links[second] = {nodeCount, out[0]};
        links[in[0]] = {nodeCount, second};
        links[fourth] = {nodeCount, in[0]};
        ++nodeCount;
    }
}

void ChainGraph::MakeSharedNodes() {
    std::size_t const kUsual = 32;
    ScratchVector<Passage> passages(chains.get_allocator().GetScratch());
    passages.reserve(std::min<std::size_t>(chains.size(), kUsual));
    for (Number i = 0; i < chains.size(); ++i) {
        if (chains[i].other == kNone && !chains[i].closed) {
            passages.emplace_back(lines.points[chains[i].first], i);
        }
    }
    if (passages.empty()) {
        return;
    }
    SortByPlace(passages);
    ScratchVector<DirectedEdge> edges(chains.get_allocator().GetScratch());
    edges.reserve(2 * passages.size());
    AppendEdgesAt(passages, edges);
    MergeEqualChains(edges);
    ScratchVector<HalfEdge> node(chains.get_allocator().GetScratch());
    node.reserve(kUsual);
    for (std::size_t i = 0; i < edges.size(); ++i) {
        if (chains[edges[i].half / 2].operands != 0) {
            node.push_back(edges[i].half);
        }
        if (i + 1 == edges.size() || edges[i + 1].origin != edges[i].origin) {
            AddNode(node.data(), node.data() + node.size());
            node.clear();
        }
    }
}

void ChainGraph::AddNode(HalfEdge const* begin, HalfEdge const* end) {
    if (begin == end) {
        return;
    }
    HalfEdge last = end[-1];
    for (HalfEdge const* i = begin; i < end; ++i) {
        links[*i] = {nodeCount, last};
        last = *i;
    }
    ++nodeCount;
}

void ChainGraph::MergeEqualChains(ScratchVector<DirectedEdge> const& edges) {
    // Equal chains have one edge each. The first stands for all. Each is met at both of its ends
    // and counted at one of them.
    for (std::size_t i = 0; i + 1 < edges.size();) {
        std::size_t j = i + 1;
        while (j < edges.size() && edges[j].origin == edges[i].origin &&
               edges[j].target == edges[i].target) {
            ++j;
        }
        bool const several = j > i + 1 && edges[i].origin < edges[i].target;
        if (several && !equals.empty()) {
            ListEqualChains(&edges[i], &edges[i] + (j - i));
        } else if (several) {
            Chain& first = chains[edges[i].half / 2];
            for (std::size_t k = i + 1; k < j; ++k) {
                first.operands ^= std::exchange(chains[edges[k].half / 2].operands, Operands{0});
            }
        }
        i = j;
    }
}

void ChainGraph::ListEqualChains(DirectedEdge const* begin, DirectedEdge const* end) {
    HalfEdge const first = begin->half;
    for (DirectedEdge const* edge = begin + 1; edge < end; ++edge) {
        Number const chain = edge->half / 2;
        equals[chain] = std::exchange(equals[first / 2], 2 * chain + (edge->half ^ first) % 2);
        chains[chain].operands = 0;
    }
}

} // namespace trammel_detail
