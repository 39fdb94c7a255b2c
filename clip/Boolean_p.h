// SPDX-License-Identifier: MIT

// Boolean operations on polygons: the whole engine behind one call. Not installed.
//
// docs/clipping.md describes the steps and why the result is right.

#ifndef TRAMMEL_BOOLEAN_P_H
#define TRAMMEL_BOOLEAN_P_H

#include "Box_p.h"
#include "Contours_p.h"
#include "Grid_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"

#include <cstddef>

namespace trammel_detail {

/// One operand: closed contours whose vertices stay where the caller has them.
class BooleanOperand {
public:
    explicit BooleanOperand(Scratch* scratch) : mContours(scratch) {}

    /// Adds a contour of `count` vertices, with x and y in turns. A contour that cannot enclose
    /// anything is ignored, and so is one that has a coordinate which is not finite.
    void Add(double const* coordinates, std::size_t count);

    Box<double> const& Bounds() const { return mBounds; }
    /// Returns the number of contours.
    std::size_t Count() const { return mContours.size(); }
    /// Returns the number of vertices.
    std::size_t VertexCount() const;

    /// Leaves out the contours whose boxes do not meet `where`.
    void Keep(Box<double> const& where);

    /// Appends a line for each contour, which bounds operand `bit`. The interior has to be right
    /// within `where` only. Of three vertices in a row beyond the same side of `where`, the one in
    /// the middle matters on that side alone. It is left out.
    void AppendLines(Operands bit, Box<double> const& where, ClipGrid& grid,
                     GridLines& lines) const;

private:
    /// A contour that can enclose something.
    struct Contour {
        double const* coordinates;
        std::size_t count;
        Box<double> bounds;
    };

    ScratchVector<Contour> mContours;
    Box<double> mBounds;
};

/// The contours of a result in the order in which they are listed, see OrderContours().
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

/// Returns the contours of the region of two operands, the first of which is operand 1 of `region`
/// and the second operand 2. Leaves out contours of the operands that do not matter. Throws
/// std::bad_alloc and std::length_error.
BooleanResult Combine(BooleanOperand& first, BooleanOperand& second, RegionOf const& region,
                      Scratch* scratch);

} // namespace trammel_detail

#endif
