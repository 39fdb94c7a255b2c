// SPDX-License-Identifier: MIT

// From closed lines on the clipper's grid to the contours of the region that they bound.
#ifndef TRAMMEL_CONTOURS_P_H
#define TRAMMEL_CONTOURS_P_H

#include "Crossings_p.h"
#include "Grid_p.h"
#include "Lines_p.h"
#include "Linker_p.h"

namespace trammel_detail {

/// The contours of the region of points that lie in certain operands, each of them being what is
/// inside its lines by the even-odd rule. The lines may cross, touch, coincide and run in any
/// direction.
///
/// Cost: see CutAtCrossings() and LinkContours().
RegionContours ContoursOf(GridLines const& lines, RegionOf const& region, ClipGrid const& grid,
                          Recheck recheck = Recheck::kWhereNeeded);

} // namespace trammel_detail

#endif
