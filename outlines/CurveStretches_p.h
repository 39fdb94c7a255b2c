// SPDX-License-Identifier: MIT

// Where a curve bends more than a pen's circle. Not installed.

#ifndef TRAMMEL_CURVESTRETCHES_P_H
#define TRAMMEL_CURVESTRETCHES_P_H

#include "Cubic_p.h"

#include <vector>

namespace trammel_detail {

/// A part of a curve on which its curvature stays on one side of the pen's.
struct CurveStretch {
    double from = 0.0;
    double to = 1.0;
    /// 1 where the radius of curvature is less than the pen's and the curve turns toward its
    /// normal, -1 where it turns away from it, 0 where the radius is greater.
    int fold = 0;
    /// The part is no longer than what was named, and turns as at a cusp.
    bool tiny = false;
};

/// Appends the stretches of a curve in order.
/// \param radius of the pen, above 0.
/// \param tiny the length below which a part at a cusp is not divided.
/// \param isRound whether all joins and caps are round. Then many parts whose fold no bound tells
///                are each what their middles are. With others, patches would count a wrong fold
///                against what the pen paints, so a neighbour decides for all of them.
void SplitAtCurvature(Cubic const& c, double radius, double tiny, bool isRound,
                      std::vector<CurveStretch>& out);

} // namespace trammel_detail

#endif
