// SPDX-License-Identifier: MIT

// Where the elements that outlines share begin and end. Not installed.

#ifndef TRAMMEL_OUTLINENODES_P_H
#define TRAMMEL_OUTLINENODES_P_H

#include "Cubic_p.h"

#include <vector>

namespace trammel_detail {

/// Returns -1, 0 or 1 for the order of two curves by their control points.
int CompareCurves(Cubic const& a, Cubic const& b);

/// Finds the joints that belong to all outlines.
///
/// For each subpath and each of its elements the result tells whether its start is a node. That is
/// so where a subpath begins or ends. It is also so where subpaths pass through a point with
/// different neighbours, in whichever direction. Coordinates that are not finite make nodes, too.
/// O(n log n).
std::vector<std::vector<char>> FindNodes(std::vector<std::vector<Cubic>> const& subpaths);

} // namespace trammel_detail

#endif
