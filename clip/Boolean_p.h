// SPDX-License-Identifier: MIT

// Boolean operations on polygons: the whole engine behind one call. Not installed.
//
// docs/clipping.md describes the steps and why the result is right.

#ifndef TRAMMEL_BOOLEAN_P_H
#define TRAMMEL_BOOLEAN_P_H

#include "Box_p.h"
#include "Grid_p.h"
#include "Lines_p.h"
#include "Linker_p.h"
#include "Scratch_p.h"

#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// Whether the edges of a result tell where they come from.
///
/// Each edge of a result lies on an edge that the caller gave, save for the rounding: its ends are
/// within the engine's bound of that edge (docs/clipping.md). It is the result's origin, see Origin
/// in Lines_p.h. The caller's edges are numbered from 0 in the order in which they were given, all
/// contours one after the other. Edge i of a contour runs from its vertex i to the next one, and
/// the last edge back to vertex 0. Contours, vertices and edges that are left out count, too. The
/// edges of the second operand follow those of the first.
///
/// Where edges of several contours coincide, the origin has the lowest of their numbers. Spikes of
/// a contour are taken out first and do not count. A part of an edge so short that rounding turns
/// it has the direction of the whole edge.
enum class Origins {
    kLeftOut,
    kKept, ///< GridLines::origins of the result has an element for each vertex
};

/// One operand: closed contours whose vertices stay where the caller has them.
class BooleanOperand {
public:
    /// Keeps its working memory in `scratch`, or on the heap for null.
    explicit BooleanOperand(Scratch* scratch) : mContours(scratch) {}

    /// Adds a contour of `count` vertices, with x and y in turns. `owner` is for
    /// CombineByWinding(). A contour is ignored that has:
    ///
    /// - fewer than three vertices, or
    /// - no width or no height, or
    /// - a coordinate that is not finite.
    void Add(double const* coordinates, std::size_t count, std::uint32_t owner = 0);
    /// Adds an open line in the same way, for LabelOpenLines(). It is ignored if it has fewer than
    /// two vertices or a coordinate that is not finite.
    void AddOpen(double const* coordinates, std::size_t count);

    /// Returns the box of all contours that are not ignored.
    Box<double> const& Bounds() const { return mBounds; }
    /// Returns the number of contours that are not ignored.
    std::size_t Count() const { return mContours.size(); }
    /// Returns the number of their vertices.
    std::size_t VertexCount() const;
    /// Returns the number of edges that were given, also of contours that are ignored.
    std::size_t GivenCount() const { return mGiven; }

    /// Keeps the contours whose boxes meet `where`, and drops the others.
    void Keep(Box<double> const& where);

    /// Appends a line for each contour, which bounds operand `bit`. The lines enclose the right
    /// points within `where` only: of three vertices in a row beyond the same side of `where`, the
    /// one in the middle is left out. It matters on that side alone.
    void AppendLines(Operands bit, Box<double> const& where, ClipGrid& grid,
                     GridLines& lines) const;
    /// Appends the same lines with the contours' owners.
    void AppendOwnedLines(Box<double> const& where, ClipGrid& grid, GridLines& lines) const;
    /// Appends the same with origins. The operand's edges have the numbers from `firstEdge` on. An
    /// edge that stands for several beyond a side of `where` has the number of the first.
    void AppendLinesWithOrigins(Box<double> const& where, std::size_t firstEdge, ClipGrid& grid,
                                GridLines& lines) const;

    /// Appends open lines as closed ones that run along them and back again. Those of the way back
    /// have reversed origins. Lines that are one point of the grid are left out.
    void AppendOpenLines(std::uint32_t owner, std::size_t firstEdge, ClipGrid& grid,
                         GridLines& lines) const;

private:
    /// A contour or an open line that is not ignored.
    struct Contour {
        double const* coordinates;
        std::size_t count;
        Box<double> bounds;
        std::uint32_t owner;
        std::uint32_t firstEdge; // of those given
    };
    bool Measure(double const* coordinates, std::size_t count, Box<double>& bounds);
    void CheckNumbers(std::size_t firstEdge) const;
    template <class Note, class Close>
    void AppendPoints(Box<double> const& where, ClipGrid& grid, GridLines& lines, Note&& note,
                      Close&& close) const;

    ScratchVector<Contour> mContours;
    Box<double> mBounds;
    std::size_t mGiven = 0;
};

/// Returns a box that is wider by more than edges move, for operands within `all`. A cut moves an
/// edge by a step of the grid and a doubles' spacing, and the margins hold dozens of these. An edge
/// that stands for several lies beyond the box, and so on the boundary of no result.
Box<double> Wider(Box<double> const& where, Box<double> const& all);

/// The contours of a result. Contour `i` is the one that is listed in place `i`, see
/// OrderContours().
struct BooleanResult {
    RegionContours resolved;
    ScratchVector<std::size_t> order;
    ClipGrid grid;

    std::size_t Count() const { return order.size(); }
    bool IsHole(std::size_t i) const { return resolved.holes[order[i]] != 0; }
    std::size_t VertexCount(std::size_t i) const {
        return resolved.contours.End(order[i]) - resolved.contours.Begin(order[i]);
    }
    /// Returns the vertices of contour `i`, which grid.ToDoubles() turns into doubles.
    GridPoint const* Vertices(std::size_t i) const {
        return resolved.contours.points.data() + resolved.contours.Begin(order[i]);
    }
};

/// Returns the contours of the region of two operands. In `region` the first one has bit 1 and the
/// second one bit 2. Removes contours that do not matter from the operands. Throws std::bad_alloc
/// and std::length_error.
BooleanResult Combine(BooleanOperand& first, BooleanOperand& second, RegionOf const& region,
                      Scratch* scratch);

/// The contours of a result in no particular order.
struct WindingResult {
    RegionContours resolved;
    ClipGrid grid;
    /// True for the union of one operand whose contours are the result as they are. No edge was cut
    /// then, and none was left out.
    bool unchanged = false;
};

/// Returns the contours of a region by winding numbers. The owners of the contours are the numbers
/// of region.rules: those of the first group are in `first`, those of the second in `second`.
/// Removes contours that do not matter from both. Throws std::bad_alloc and std::length_error, with
/// origins also for more than EdgeTree::kMostEdges edges given.
WindingResult CombineByWinding(BooleanOperand& first, BooleanOperand& second,
                               WindingRegion const& region, Scratch* scratch,
                               Origins origins = Origins::kLeftOut);
/// Returns the contours of the union of operands, which are the contours' owners from 0 to
/// owners - 1 in this order. Throws what CombineByWinding() does.
WindingResult UniteByWinding(BooleanOperand const& operands, std::uint32_t owners, bool evenOdd,
                             Scratch* scratch, Origins origins = Origins::kLeftOut);

} // namespace trammel_detail

#endif
