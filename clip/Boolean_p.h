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

/// One operand: closed contours whose vertices stay where the caller has them.
class BooleanOperand {
public:
    /// Keeps its working memory in `scratch`, or on the heap for null.
    explicit BooleanOperand(Scratch* scratch) : mContours(scratch) {}

    /// Adds a contour of `count` vertices, with x and y in turns. A contour that cannot enclose
    /// anything is ignored, and so is one that has a coordinate which is not finite. `owner` is for
    /// CombineByWinding().
    void Add(double const* coordinates, std::size_t count, std::uint32_t owner = 0);

    /// Returns the box of all contours.
    Box<double> const& Bounds() const { return mBounds; }
    /// Returns the number of contours.
    std::size_t Count() const { return mContours.size(); }
    /// Returns the number of vertices.
    std::size_t VertexCount() const;

    /// Keeps the contours whose boxes meet `where`, and drops the others.
    void Keep(Box<double> const& where);

    /// Appends a line for each contour, which bounds operand `bit`. The lines enclose the right
    /// points within `where` only: of three vertices in a row beyond the same side of `where`, the
    /// one in the middle is left out. It matters on that side alone.
    void AppendLines(Operands bit, Box<double> const& where, ClipGrid& grid,
                     GridLines& lines) const;
    /// Appends the same lines with the contours' owners.
    void AppendOwnedLines(Box<double> const& where, ClipGrid& grid, GridLines& lines) const;

private:
    /// A contour that can enclose something.
    struct Contour {
        double const* coordinates;
        std::size_t count;
        Box<double> bounds;
        std::uint32_t owner;
    };
    template <class Close>
    void AppendPoints(Box<double> const& where, ClipGrid& grid, GridLines& lines,
                      Close&& close) const;

    ScratchVector<Contour> mContours;
    Box<double> mBounds;
};

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
};

/// Returns the contours of a region by winding numbers. The owners of the contours are the numbers
/// of region.rules: those of the first group are in `first`, those of the second in `second`.
/// Removes contours that do not matter from both. Throws std::bad_alloc and std::length_error.
WindingResult CombineByWinding(BooleanOperand& first, BooleanOperand& second,
                               WindingRegion const& region, Scratch* scratch);
/// Returns the contours of the union of operands, which are the contours' owners from 0 to
/// owners - 1 in this order. Throws std::bad_alloc and std::length_error.
WindingResult UniteByWinding(BooleanOperand const& operands, std::uint32_t owners, bool evenOdd,
                             Scratch* scratch);

} // namespace trammel_detail

#endif
