// SPDX-License-Identifier: MIT

// The arcs of a map: stretches of vertices between the places where rings come together. Not
// installed.

#ifndef TRAMMEL_RINGARCS_P_H
#define TRAMMEL_RINGARCS_P_H

#include "TPoint.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// Rings as sequences of arcs. Arcs that rings share are there once, in one direction.
struct RingArcs {
    /// The vertices by number. Equal ones are one, and numbers rise with h, then v.
    std::vector<TPoint<double>> vertices;
    /// The numbers of the vertices of each arc, two or more. A closed one ends where it begins.
    std::vector<std::vector<std::size_t>> arcs;
    /// An arc as a part of a ring.
    struct Use {
        std::size_t arc;
        bool isReversed;
    };
    /// The arcs of each ring; none for rings of less than two vertices.
    std::vector<std::vector<Use>> rings;

    /// O(n log n) for rings of finite vertices, each of which differs from the next one; the last
    /// one from the first.
    explicit RingArcs(std::vector<std::vector<TPoint<double>>> const& of);
};

} // namespace trammel_detail

#endif
