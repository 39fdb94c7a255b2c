// SPDX-License-Identifier: MIT

// Cut lines as a graph: nodes where lines meet, and chains of edges between them. Not installed.

#ifndef TRAMMEL_CHAINGRAPH_P_H
#define TRAMMEL_CHAINGRAPH_P_H

#include "Intersections_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"

#include <cstdint>
#include <limits>

namespace trammel_detail {

/// The number of a line, an edge, a chain or a node. There are at most EdgeTree::kMostEdges of
/// each.
typedef std::uint32_t Number;

inline constexpr Number kNone = std::numeric_limits<Number>::max();

/// Edges of a line that follow each other from one node to the next, or a whole line without any.
struct Chain {
    Number line;
    Number first;          ///< its first edge
    Number count;          ///< of edges
    Number next;           ///< the chain of the line that begins where this one ends
    Number previous;       ///< the chain of the line that ends where this one begins
    Number other;          ///< at a crossing of two edges, the other chain that begins where this
                           ///< one begins; else kNone
    bool closed;           ///< a whole line, without nodes
    Operands operands;     ///< in which its two sides differ. Of equal chains the first one has
                           ///< those of all, by the even-odd rule, and the others have none.
    Operands left = 0;     ///< that the points to its left lie in
    bool labelled = false; ///< whether `left` is known
    bool followed = false; ///< whether the chains that continue it through crossings are labelled
    bool bounds = false;   ///< whether it is on the boundary of the region
};

/// A chain as seen from the node at one of its ends, which it leaves along the chain: 2 * the
/// chain's number for its first vertex, + 1 for its last one.
typedef Number HalfEdge;

/// Returns the same chain as seen from its other end.
inline HalfEdge Twin(HalfEdge half) { return half ^ 1; }

/// What becomes of equal chains, the first of which stands for all.
enum class EqualChains {
    kCancel, ///< the first has the operands in which its sides differ by the even-odd rule
    kList,   ///< the first has a list of the others, see ChainGraph::equals
};

/// The graph of cut lines. Around each node the half-edges that leave it are linked in a cycle.
/// A chain whose operands are 0 is in no cycle: an equal chain stands for it, or cancels it.
struct ChainGraph {
    /// Where a half-edge is. The two numbers are mostly needed together.
    struct Link {
        Number node;
        HalfEdge nextClockwise;
    };

    /// `incidences` has an element for each vertex of the lines. Refers to the lines, which must
    /// stay as they are. Throws std::length_error for more than EdgeTree::kMostEdges edges.
    ChainGraph(GridLines const& cutLines, ScratchVector<Incidence> const& incidences,
               EqualChains equal);

    /// Returns the node that a half-edge leaves.
    Number NodeOf(HalfEdge half) const { return links[half].node; }
    /// Returns the next half-edge of its node.
    HalfEdge NextClockwise(HalfEdge half) const { return links[half].nextClockwise; }
    /// Returns the number among all points of the chain's vertex number k, 0 <= k <= chain.count.
    Number VertexOf(Chain const& chain, Number k) const {
        Number const i = chain.first + k;
        auto const end = static_cast<Number>(lines.End(chain.line));
        return i < end ? i : i - end + static_cast<Number>(lines.Begin(chain.line));
    }
    GridPoint PointOf(Chain const& chain, Number k) const {
        return lines.points[VertexOf(chain, k)];
    }
    /// Returns the number within the chain of its first edge that is not horizontal, chain.count
    /// for none.
    Number FirstNotHorizontal(Chain const& chain) const {
        Number k = 0;
        while (k < chain.count && PointOf(chain, k).y == PointOf(chain, k + 1).y) {
            ++k;
        }
        return k;
    }

    GridLines const& lines;
    ScratchVector<Chain> chains;
    Number nodeCount = 0;
    ScratchVector<Link> links; ///< by half-edge
    /// By chain: the next one of a list of equal chains, or kNone. An even half-edge runs in the
    /// direction of the list's first chain, an odd one in the other. Empty where they cancel.
    ScratchVector<HalfEdge> equals;

private:
    struct DirectedEdge;
    struct Passage;

    void MakeChains(ScratchVector<Incidence> const& incidences);
    /// Makes the nodes at crossings of two edges.
    void MakeCrossingNodes(ScratchVector<Incidence> const& incidences);
    /// Makes the other nodes, and merges equal chains.
    void MakeSharedNodes();
    /// Links half-edges, which are in counterclockwise order, around a new node.
    void AddNode(HalfEdge const* begin, HalfEdge const* end);
    void MergeEqualChains(ScratchVector<DirectedEdge> const& edges);
    /// Puts equal chains in the list of the first. `begin` to `end` are their edges from one end.
    void ListEqualChains(DirectedEdge const* begin, DirectedEdge const* end);
    static bool TurnsFirst(DirectedEdge const& s, DirectedEdge const& t);
    static void SortByPlace(ScratchVector<Passage>& passages);
    void AppendEdgesAt(ScratchVector<Passage> const& passages,
                       ScratchVector<DirectedEdge>& edges) const;
};

} // namespace trammel_detail

#endif
