// SPDX-License-Identifier: MIT

#include "PolygonArrangement.h"

#include "Faces_p.h"
#include "PolygonRings_p.h"
#include "Scratch_p.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <utility>

namespace trammel {

using trammel_detail::Add;
using trammel_detail::BooleanOperand;
using trammel_detail::Scratch;

int WindingNumberOf(ArrangementFace const& face, std::size_t operand) noexcept {
    auto const found = std::lower_bound(
        face.windings.begin(), face.windings.end(), operand,
        [](OperandWinding const& winding, std::size_t sought) { return winding.operand < sought; });
    return found != face.windings.end() && found->operand == operand ? found->winding : 0;
}

PolygonArrangement::PolygonArrangement(std::vector<std::vector<TPolygon<double>>> const& operands) {
    if (operands.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::bad_alloc();
    }
    auto const count = static_cast<std::uint32_t>(operands.size());
    Scratch scratch;
    BooleanOperand all(&scratch);
    for (std::uint32_t i = 0; i < count; ++i) {
        Add(operands[i], i, all);
    }
    trammel_detail::Faces const faces =
        trammel_detail::Try([&] { return trammel_detail::FacesOf(all, count, &scratch); });
    std::vector<std::size_t> contours;
    std::vector<PolygonWithHoles> polygons = ToPolygons(faces.rings, &contours);
    mFaces.reserve(polygons.size());
    for (std::size_t i = 0; i < polygons.size(); ++i) {
        std::size_t const contour = contours[i];
        ArrangementFace face;
        face.polygon = std::move(polygons[i]);
        for (std::size_t k = contour == 0 ? 0 : faces.ends[contour - 1]; k < faces.ends[contour];
             ++k) {
            // The engine's x is our v.
            face.windings.push_back({faces.windings[k].owner, -faces.windings[k].winding});
        }
        mFaces.push_back(std::move(face));
    }
}

std::vector<PolygonWithHoles>
PolygonArrangement::Merged(std::vector<std::size_t> const& faces) const {
    std::vector<char> chosen(mFaces.size(), 0);
    for (std::size_t const i : faces) {
        if (i < chosen.size()) {
            chosen[i] = 1;
        }
    }
    Scratch scratch;
    BooleanOperand all(&scratch);
    for (std::size_t i = 0; i < mFaces.size(); ++i) {
        if (chosen[i] != 0) {
            Add(mFaces[i].polygon.outer, 0, all);
            for (Ring const& hole : mFaces[i].polygon.holes) {
                Add(hole, 0, all);
            }
        }
    }
    return ToPolygons(trammel_detail::Try([&] { return UniteByWinding(all, 1, true, &scratch); }));
}

} // namespace trammel
