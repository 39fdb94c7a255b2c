// SPDX-License-Identifier: MIT

#include "Divide.h"

#include <trammel/Moments.h>
#include <trammel/OutlineOperations.h>

#include <algorithm>
#include <cmath>

namespace tool {

Division DivideOutlines(std::vector<Outline const*> const& outlines, double tolerance) {
    double const half = tolerance / 2.0;
    Division division;
    division.parts.resize(outlines.size());
    division.below.resize(outlines.size());
    std::vector<CPath> regions(outlines.size());
    for (std::size_t i = 0; i < outlines.size(); ++i) {
        division.distance =
            std::max(division.distance, trammel::RemoveOverlap(outlines[i]->path, outlines[i]->rule,
                                                               half, regions[i]));
    }
    trammel::OutlineArrangement const arrangement(regions, half);
    division.distance += arrangement.Distance();
    for (trammel::OutlineFace const& face : arrangement.Faces()) {
        if (face.windings.empty()) { // a gap, which nothing covers
            continue;
        }
        std::size_t const top = face.windings.back().operand;
        division.parts[top].push_back(face.outline);
        for (std::size_t i = 0; i + 1 < face.windings.size(); ++i) {
            division.below[top].insert(face.windings[i].operand);
        }
    }
    auto const size = [](CPath const& part) { return std::abs(trammel::SignedArea(part)); };
    for (std::vector<CPath>& parts : division.parts) {
        auto const largest =
            std::max_element(parts.begin(), parts.end(),
                             [&](CPath const& a, CPath const& b) { return size(a) < size(b); });
        if (largest != parts.end()) {
            std::rotate(parts.begin(), largest, largest + 1);
        }
    }
    return division;
}

} // namespace tool
