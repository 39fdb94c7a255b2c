// SPDX-License-Identifier: MIT

// Edges of which there are many copies, so that one can stand for all. Not installed.

#ifndef TRAMMEL_EDGECOPIES_P_H
#define TRAMMEL_EDGECOPIES_P_H

#include "Intersections_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"

#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// True when a sample of the edges of `lines` has very many copies. To hold all of these against
/// each other would cost much more than to find the copies.
bool HasManyCopies(GridLines const& lines);

/// The edges of closed lines that equal others, in either direction. The first of equal edges
/// stands for all, and the others are its copies.
class EdgeCopies {
public:
    explicit EdgeCopies(GridLines const& lines);

    /// Marks copies with kCopy in `active`, which has an element for each edge or none.
    /// The first edge is active if one of its copies was.
    void MarkIn(ScratchVector<char>& active) const;
    /// Sets kShared at the ends of all equal edges.
    void ShareEnds(ScratchVector<Incidence>& incidences) const;
    /// Gives the cuts of first edges to their copies, too. Other edges may cross several there, so
    /// the cuts become kShared.
    void CutCopies(ScratchVector<Cut>& cuts) const;

private:
    struct Edge {
        GridPoint low;
        GridPoint high;
        std::uint32_t number;
        std::uint32_t second; ///< the number of its second vertex
        bool turned;          ///< whether it runs from high to low

        GridEdge Directed() const { return turned ? GridEdge{high, low} : GridEdge{low, high}; }
    };
    /// Equal edges from `begin` to `end` of mEdges, two or more.
    struct Class {
        std::size_t begin;
        std::size_t end;
    };

    std::size_t mCount; // of all edges
    ScratchVector<Edge> mEdges;
    ScratchVector<Class> mClasses;
};

} // namespace trammel_detail

#endif
