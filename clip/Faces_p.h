// SPDX-License-Identifier: MIT

// The parts into which the contours of operands divide the plane. Not installed.

#ifndef TRAMMEL_FACES_P_H
#define TRAMMEL_FACES_P_H

#include "Boolean_p.h"
#include "ChainGraph_p.h"
#include "Grid_p.h"
#include "Linker_p.h"
#include "Scratch_p.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace trammel_detail {

/// The winding number of one operand.
struct OwnerWinding {
    std::uint32_t owner;
    std::int32_t winding;
};

/// The faces: the connected parts into which the contours of operands divide the plane. Edges on
/// whose two sides all winding numbers agree do not divide it.
///
/// Each face but the unbounded one has one ring that is no hole. Where faces have an edge in
/// common, each has a ring along it. Rings run as those of a region, see RegionContours.
struct Faces {
    /// Makes no faces.
    explicit Faces(Scratch* scratch)
        : rings{RegionContours(scratch), ClipGrid(0, 0, 1, 1)}, across(scratch), ends(scratch),
          windings(scratch) {}

    WindingResult rings;
    /// By vertex of the rings: the ring along the other side of the edge that begins there.
    ScratchVector<Number> across;
    /// By ring: where its face's winding numbers end in `windings`. They begin where the ring
    /// before has its end. Each operand with another number than 0 is there, in increasing order.
    ScratchVector<std::size_t> ends;
    ScratchVector<OwnerWinding> windings;
};

/// Returns the faces of operands, which are the contours' owners from 0 to owners - 1. Throws what
/// CombineByWinding() does.
///
/// OutersOf() of Faces::rings tells to which face a hole belongs. Holes in the unbounded face
/// belong to themselves.
///
/// Cost: as ContoursOf(), and O(w log w) for all winding numbers listed.
Faces FacesOf(BooleanOperand const& operands, std::uint32_t owners, Scratch* scratch,
              Origins origins = Origins::kLeftOut);

} // namespace trammel_detail

#endif
