// SPDX-License-Identifier: MIT

// Where two lines meet, when this is clear without the cells of curves. Not installed.

#ifndef TRAMMEL_LINEMEETS_P_H
#define TRAMMEL_LINEMEETS_P_H

#include "Cubic_p.h"
#include "CurveMeets_p.h"

namespace trammel_detail {

/// The outcome for two lines.
enum class LinesMeet { kNever, kMeet, kUnclear };

/// Finds the crossing of two lines, as cubics of even speed, that is clear of their ends.
LinesMeet MeetOfLines(Cubic const& a, Cubic const& b, double accuracy, CurveMeet& meet);

/// Finds the meet of two lines at ends. Short lines, and lines of a small angle or along each
/// other, are not clear. The rules are those of the cells in CurveCells_p.cpp.
LinesMeet MeetOfLinesAtEnds(Cubic const& a, Cubic const& b, double accuracy, CurveMeet& meet);

} // namespace trammel_detail

#endif
