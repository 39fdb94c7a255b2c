// SPDX-License-Identifier: MIT

// Rings on their way to the polygon engine and back. Not installed.

#ifndef TRAMMEL_POLYGONRINGS_P_H
#define TRAMMEL_POLYGONRINGS_P_H

#include "Boolean_p.h"
#include "PolygonWithHoles.h"
#include "TPoint.h"
#include "TPoly.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <vector>

namespace trammel_detail {

/// Adds a ring to an operand of the engine. It has to stay as it is while the operand is used.
void Add(TPolygon<double> const& ring, std::uint32_t owner, BooleanOperand& operand);
void Add(trammel::Ring const& ring, std::uint32_t owner, BooleanOperand& operand);
void Add(std::vector<TPolygon<double>> const& rings, std::uint32_t owner, BooleanOperand& operand);

/// A contour of a result, and the vertex at which its ring begins.
struct RingPlace {
    GridPoint at;
    std::size_t contour;
    std::size_t first; ///< among the points of all contours
};

/// Returns the contours in the order of the rings. A ring begins at its vertex of least v, of
/// several at that of least h. Rings are in the order of these, and of their second vertices.
std::vector<RingPlace> PlacesOf(WindingResult const& result);

/// Returns the number of a ring's vertices.
std::size_t VertexCount(WindingResult const& result, RingPlace const& place);
/// Writes the vertices of a ring. Outer contours of the engine run from +y toward +x, which is from
/// +h toward +v.
void WriteVertices(WindingResult const& result, RingPlace const& place, TPoint<double>* out);

/// Returns the outer rings in their order, each with the holes that lie directly in it. Leaves out
/// holes that lie in none. If `contours` is not null, it gets the contour of each outer ring.
std::vector<trammel::PolygonWithHoles> ToPolygons(WindingResult const& result,
                                                  std::vector<std::size_t>* contours = nullptr);

/// Returns combine()'s result. Throws std::bad_alloc.
template <class Combine> auto Try(Combine&& combine) {
    try {
        return combine();
    } catch (std::length_error const&) {
        throw std::bad_alloc(); // more edges than 32 bits count
    }
}

} // namespace trammel_detail

#endif
