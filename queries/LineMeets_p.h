// SPDX-License-Identifier: MIT

// Where lines meet each other and curves, when this is clear without the cells of curves. Not
// installed.

#ifndef TRAMMEL_LINEMEETS_P_H
#define TRAMMEL_LINEMEETS_P_H

#include "Cubic_p.h"
#include "CurveMeet_p.h"

namespace trammel_detail {

/// The outcome for two lines.
enum class LinesMeet { kNever, kMeet, kUnclear };

/// Finds the crossing of two lines, as cubics of even speed, that is clear of their ends.
LinesMeet MeetOfLines(Cubic const& a, Cubic const& b, double accuracy, CurveMeet& meet);

/// Finds the meet of two lines at ends. Short lines, and lines of a small angle or along each
/// other, are not clear. The rules are those of the cells in CurveCells_p.cpp.
LinesMeet MeetOfLinesAtEnds(Cubic const& a, Cubic const& b, double accuracy, CurveMeet& meet);

/// Finds the crossings of a line, as a cubic of even speed, and a curve. All are at an angle, and
/// clear of ends and of each other. Returns false where a place is not so clear, or may not be.
/// \param lineFirst whether the line is the outline A of the meets, and the curve B
bool MeetsOfLineAndCurve(Cubic const& line, Cubic const& curve, double accuracy, bool lineFirst,
                         CurveMeets& meets);

} // namespace trammel_detail

#endif
