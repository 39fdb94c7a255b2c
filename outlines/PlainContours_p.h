// SPDX-License-Identifier: MIT

// Contours of which it is plain that they do not overlap. Not installed.

#ifndef TRAMMEL_PLAINCONTOURS_P_H
#define TRAMMEL_PLAINCONTOURS_P_H

#include "CPath.h"

namespace trammel_detail {

/// True when contours are seen to cross neither themselves nor each other, and to have winding
/// numbers of 0 and 1 only. False where that is not so or not plain: where hulls of elements meet.
///
/// O(n log n) and the pairs of elements whose bounds meet.
/// \param contours closed ones with finite coordinates.
bool AreContoursPlain(CPath const& contours);

} // namespace trammel_detail

#endif
