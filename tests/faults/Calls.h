// SPDX-License-Identifier: MIT

// The parts of the table of Faults.h, and short names for their lines.

#ifndef TRAMMEL_CALLS_H
#define TRAMMEL_CALLS_H

#include "Faults.h"

namespace trammel_test {

typedef TPoint<double> Pt;
typedef Arguments A;

inline constexpr WhenShort kThrows = WhenShort::kThrows;
inline constexpr WhenShort kUnchanged = WhenShort::kUnchanged;
inline constexpr WhenShort kThrowsPart = WhenShort::kThrowsPart;
inline constexpr WhenShort kPartial = WhenShort::kPartial;
inline constexpr WhenShort kEndsProcess = WhenShort::kEndsProcess;

/// Points, rectangles, lines, matrices and numbers, and what the platform gives.
std::vector<Call> PlaneCalls();
/// Polygons in blocks and in objects, and the clipper's records.
std::vector<Call> PolygonCalls();

} // namespace trammel_test

#endif
