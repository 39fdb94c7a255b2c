// SPDX-License-Identifier: MIT

// PolygonArrangement: the parts into which the rings of polygons divide the plane, and how often
// each polygon winds around each part.
//
// Drawing applications divide, trim and merge with it:
//
// - Divide: the faces themselves, each a polygon of its own.
// - Trim: each face goes to the topmost operand around it.
// - Merge: Merged() joins the faces that are chosen into one region. With the faces inside of what
//   an operation says, this is that operation.
//
// Rings of operands are as in PolygonOperations.h, with the same ones absent. Accuracy and
// exceptions are the same, too.

#ifndef TRAMMEL_POLYGONARRANGEMENT_H
#define TRAMMEL_POLYGONARRANGEMENT_H

#include "FillRule.h"
#include "PolygonWithHoles.h"
#include "TPoly.h"
#include "TrammelExport.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace trammel {

/// How often the rings of one operand wind around a face. Rings from the +h direction toward +v
/// count as +1, see WindingNumber().
struct OperandWinding {
    std::size_t operand; ///< its index among the operands
    int winding;         ///< not 0
};

/// A connected part of the plane. No ring of an operand runs through it but where the winding
/// numbers of all operands are the same on both sides.
struct ArrangementFace {
    /// The face, with rings as in ToPolygons(). Different faces have no point in common but on
    /// their rings, and an edge of two faces has the same ends in both.
    PolygonWithHoles polygon;
    /// The operands that wind around the face, in increasing order.
    std::vector<OperandWinding> windings;
};

/// Returns how often an operand winds around a face, 0 for an operand that there is not.
/// O(log n) for n operands around the face.
TRAMMEL_API int WindingNumberOf(ArrangementFace const& face, std::size_t operand) noexcept;

/// The faces into which the rings of operands divide the plane.
///
/// The functions are safe from any thread as long as none changes the arrangement.
class TRAMMEL_API PolygonArrangement {
public:
    /// Divides the plane by the rings of each operand. Operands may overlap themselves and each
    /// other. No operands make no faces.
    ///
    /// Cost: in practice O(n log n + k + w log w) for n vertices, k points where edges meet, and w
    /// winding numbers in all faces. At worst n and k stand for the number of pairs of edges whose
    /// bounds meet. Throws std::bad_alloc, also for more than 2^32 - 1 operands.
    explicit PolygonArrangement(std::vector<std::vector<TPolygon<double>>> const& operands);

    /// Returns the bounded faces, in the order of the first vertices of their outer rings. Faces
    /// that no operand winds around are there, too, such as a yard between several operands.
    std::vector<ArrangementFace> const& Faces() const& noexcept { return mFaces; }
    /// Returns the same for an arrangement that ends here, such as PolygonArrangement(operands). A
    /// loop over these faces may outlive it.
    std::vector<ArrangementFace> Faces() && noexcept { return std::move(mFaces); }

    /// Returns the region of some faces together, as ToPolygons() does. `faces` are indices into
    /// Faces(), in any order. One that is there twice counts once, and one beyond the last counts
    /// as absent.
    ///
    /// Edges between two of the faces vanish. The vertices along the others stay. Cost: as
    /// ToPolygons() for the rings of these faces.
    std::vector<PolygonWithHoles> Merged(std::vector<std::size_t> const& faces) const;

private:
    std::vector<ArrangementFace> mFaces;
};

} // namespace trammel

#endif
