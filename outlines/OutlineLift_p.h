// SPDX-License-Identifier: MIT

// From arcs to polygons, and from the polygons of a result back to curves. Not installed.
//
// docs/outlines.md describes the steps.

#ifndef TRAMMEL_OUTLINELIFT_P_H
#define TRAMMEL_OUTLINELIFT_P_H

#include "Boolean_p.h"
#include "CPath.h"
#include "ElementSource.h"
#include "Faces_p.h"
#include "OpenLines_p.h"
#include "OutlineArcs_p.h"
#include "PieceCertificates_p.h"
#include "TPoint.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace trammel_detail {

/// An edge of a flat outline: the chord of a part of an element.
struct FlatEdge {
    Index element;
    Index arc;   ///< kNoIndex for a whole line that no arc stands for
    Index part;  ///< of the arc, see CertifiedParts
    Index next;  ///< the point where the edge ends
    double from; ///< parameters on the element; from < to
    double to;
};

/// Outlines as polygons: the chords of certified parts.
class FlatOutlines {
public:
    /// Takes the arcs apart where there are curves, and else takes the lines as they are. Refers to
    /// the arcs.
    explicit FlatOutlines(OutlineArcs& arcs);

    /// Adds the polygons of operand `number` to the engine's, whose owner they get. The polygons of
    /// all operands have to be added in order, and have to outlive the engine's work.
    void AddTo(BooleanOperand& operand, std::uint32_t number, std::uint32_t owner) const;
    /// Adds all polygons with their operands' numbers as owners.
    void AddAll(BooleanOperand& operand) const;
    /// Adds the open lines.
    void AddOpenTo(BooleanOperand& operand) const;

    /// Returns a distance that regions of these polygons keep once they are lifted, in the
    /// drawing's units.
    double DistanceKept() const;

    OutlineArcs const& arcs;
    std::optional<CertifiedParts> parts; ///< only where there are curves
    std::vector<FlatEdge> edges;         ///< of all polygons
    std::vector<TPoint<double>> points;  ///< where the edges begin, and where open lines end
    std::vector<std::size_t> ends;       ///< of the points of each contour
};

/// Returns a distance, in work units, that regions of outlines without curves keep.
double WorkDistanceOfLines(WorkFrame const& frame);

/// Makes curves of a result again. `path` gets its contours. `sources` gets an entry for each of
/// their elements unless it is null.
void LiftResult(WindingResult const& result, FlatOutlines const& flat, CPath& path,
                std::vector<trammel::ElementSource>* sources);

/// Does the same, and appends the contours to `contours`.
void LiftResult(WindingResult const& result, FlatOutlines const& flat, StretchContours& contours);

/// Makes curves of open lines again, of their stretches inside the region or of those outside. The
/// stretches along its boundary count as inside.
void LiftOpen(OpenPieces const& pieces, bool inside, FlatOutlines const& flat, CPath& path,
              std::vector<trammel::ElementSource>* sources);

/// A face, as OutlineArrangement has it.
struct LiftedFace {
    CPath outline;
    std::vector<trammel::ElementSource> sources;
    std::size_t ring; ///< its outer ring
};

/// Makes curves of faces again, in the order of the first edges on their outer rings.
std::vector<LiftedFace> LiftFaces(Faces const& faces, FlatOutlines const& flat);

} // namespace trammel_detail

#endif
