// SPDX-License-Identifier: MIT

// A run of curves, and one curve in its place. Not installed.

#ifndef TRAMMEL_CURVERUN_P_H
#define TRAMMEL_CURVERUN_P_H

#include "Cubic_p.h"
#include "HandleFit_p.h"
#include "TPoint.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// Returns the direction in which a curve leaves its start, of length 1; (0, 0) for a curve of no
/// length.
TPoint<double> StartDirection(Cubic const& c);

/// Finds one curve for runs of curves that begin with the same one.
class CurveRun {
public:
    /// The curves from `first` on follow each other without a gap, and are finite.
    CurveRun(std::vector<Cubic> const& curves, std::size_t first, double tolerance);

    /// Looks for a curve in place of those up to `last`, with their ends and directions. Returns
    /// false where none is proven to keep the tolerance. O(last - first), but the integrals are
    /// gathered once.
    bool FitUpTo(std::size_t last, Cubic& fit, double& distance);

private:
    /// A curve of the run, beside the first one.
    struct Sums {
        FanMoments fan; ///< of the curves up to this one
        double step;    ///< the parameters that the curve takes, if all are parts of one cubic
        double steps;   ///< the same for all curves up to this one
    };

    bool Match(std::size_t last, Cubic const& fit, double& distance) const;

    std::vector<Cubic> const& mCurves;
    std::size_t mFirst;
    double mTolerance;
    TPoint<double> mAnchor;
    std::vector<Sums> mSums;
};

} // namespace trammel_detail

#endif
