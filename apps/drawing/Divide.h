// SPDX-License-Identifier: MIT

// Divide: outlines divided by each other into parts that do not overlap.

#ifndef TRAMMEL_APP_DIVIDE_H
#define TRAMMEL_APP_DIVIDE_H

#include "Drawing.h"

#include <trammel/CPath.h>

#include <cstddef>
#include <set>
#include <vector>

namespace tool {

/// The parts of outlines.
struct Division {
    /// The parts that each outline shows, in the order of the outlines, the largest part first. A
    /// part belongs to the last of the outlines that cover it. An outline that others cover
    /// altogether has none.
    std::vector<std::vector<CPath>> parts;
    /// For each outline, the outlines that lie under its parts: what they show there goes.
    std::vector<std::set<std::size_t>> below;
    double distance = 0.0; ///< points farther than this from all outlines are in the right part
};

/// Divides outlines by each other. Each covers what it encloses by its own rule, every subpath
/// taken as closed, and its own overlaps do not divide it.
///
/// Parts do not overlap. Each is connected, has holes where it needs them, and lies inside or
/// outside of each outline as a whole.
/// \param tolerance  the distance to keep; more where the work needs it
Division DivideOutlines(std::vector<Outline const*> const& outlines, double tolerance);

} // namespace tool

#endif
