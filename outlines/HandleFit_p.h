// SPDX-License-Identifier: MIT

// The lengths of a cubic's handles from the area and the moment that it shall have. Not installed.

#ifndef TRAMMEL_HANDLEFIT_P_H
#define TRAMMEL_HANDLEFIT_P_H

#include "Cubic_p.h"
#include "PointMath_p.h"
#include "TPoint.h"

#include <array>

namespace trammel_detail {

/// The area and the first moment of the fan that a run of an outline spans from the run's start.
struct FanMoments {
    double area = 0.0;
    TPoint<double> moment;

    /// Adds the triangle of a line; points are counted from the start of the run.
    void AddLine(TPoint<double> const& p, TPoint<double> const& q) {
        double const cross = Cross(p, q - p);
        area += cross * 0.5;
        moment += (p + q) * (cross / 6.0);
    }
    /// Adds the fan of a cubic; points are counted from the start of the run.
    void AddCurve(Cubic const& c);
};

/// The lengths of both handles, in units of the chord.
struct HandleLengths {
    double start;
    double end;
};

/// Returns two candidates for the handles of a cubic from (0, 0) to `chord`. It leaves in the
/// direction `u`, and its second handle lies in the direction `w` from its end.
///
/// The first candidate has the area and the moment along the chord that are asked for, where
/// Newton's method finds such lengths. The second one has equal lengths, and the area if there are
/// such.
///
/// Directions have length 1. Lengths are finite and not negative. Source: R. Levien, Fitting cubic
/// Bézier curves, 2021, with Newton's method in place of the quartic equation.
std::array<HandleLengths, 2> FitHandles(TPoint<double> const& chord, TPoint<double> const& u,
                                        TPoint<double> const& w, FanMoments const& wanted);

} // namespace trammel_detail

#endif
