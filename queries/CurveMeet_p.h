// SPDX-License-Identifier: MIT

// A place where two cubic curves meet. Not installed.

#ifndef TRAMMEL_CURVEMEET_P_H
#define TRAMMEL_CURVEMEET_P_H

#include "ShortList_p.h"

namespace trammel_detail {

/// A stretch of two curves, A and B, in which they stay near each other.
struct CurveMeet {
    double s0; ///< where the stretch begins on A
    double s1; ///< where it ends on A, not less than s0
    double t0; ///< the parameter on B beside s0
    double t1; ///< the parameter on B beside s1
    double s;  ///< the place on A: where they cross, or come nearest to each other
    double t;  ///< the place on B
    /// The side of B on which A lies before the stretch. It is 1 where the turn from B's direction
    /// toward A is from h toward v, and -1 where it is from v toward h. It is 0 where it is not
    /// known, and where A begins in the stretch.
    int before;
    int after;    ///< the same after the stretch
    bool overlap; ///< whether the curves coincide along the stretch
};

/// The meets of two curves, which are nine at most, unless the curves nearly coincide.
typedef ShortList<CurveMeet, 4> CurveMeets;

} // namespace trammel_detail

#endif
