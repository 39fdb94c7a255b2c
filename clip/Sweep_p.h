// SPDX-License-Identifier: MIT

// The boundary of a boolean operation's result by libpolyclipping's sweep.
#ifndef TRAMMEL_SWEEP_P_H
#define TRAMMEL_SWEEP_P_H

#include "Contours_p.h"
#include "Grid_p.h"
#include "Lines_p.h"

namespace trammel_detail {

/// Replaces the operands' lines by lines that bound the region by the even-odd rule, on points of
/// `grid` that are doubles; they belong to operand 1, and may cross by rounding. Returns false if
/// the sweep did not succeed.
///
/// It takes other ways than CutAtCrossings(), and is there for the case that this does not settle.
/// No drawing is known for which it does not.
bool SweepBoundary(RegionOf const& region, ClipGrid const& grid, GridLines& lines);

/// What the result of SweepBoundary() is the boundary of.
inline constexpr RegionOf kInsideSwept = {false, true, false, true};

} // namespace trammel_detail

#endif
