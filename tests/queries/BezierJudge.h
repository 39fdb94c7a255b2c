// SPDX-License-Identifier: MIT

// The crossings of cubic curves by an independent library, which computes with algebraic numbers.

#ifndef TRAMMEL_BEZIERJUDGE_H
#define TRAMMEL_BEZIERJUDGE_H

#include "CBezier.h"

#include <vector>

namespace trammel_test {

/// Returns the points in which two curves cross or touch, without those at an end of either one.
/// Requires control points with whole numbers, and curves that do not cross themselves. Curves that
/// are lines have even speed.
std::vector<TPoint<double>> JudgedMeetings(CBezier const& a, CBezier const& b);

} // namespace trammel_test

#endif
