// SPDX-License-Identifier: MIT

// The lengths of a cubic's handles from the area and the moment that it shall have. Not installed.

#ifndef TRAMMEL_HANDLEFIT_P_H
#define TRAMMEL_HANDLEFIT_P_H

#include "Cubic_p.h"
#include "PointMath_p.h"
#include "TPoint.h"

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

/// Candidates for the handles of a cubic from (0, 0) to `chord`. It leaves in the direction `u`,
/// and its second handle lies in the direction `w` from its end.
///
/// The first candidates have the area and the moment along the chord that are asked for, where
/// Newton's method finds such lengths. There may be two: flat arcs have two solutions beside each
/// other. The last candidate has equal lengths, and the area if there are such.
///
/// Directions have length 1. Lengths are finite and positive. Source: R. Levien, Fitting cubic
/// Bézier curves, 2021, with Newton's method in place of the quartic equation.
class HandleFit {
public:
    HandleFit(TPoint<double> const& chord, TPoint<double> const& u, TPoint<double> const& w,
              FanMoments const& wanted);

    /// Gives the next candidate; false where there is none.
    bool Next(HandleLengths& lengths);

private:
    bool Solve(HandleLengths start, HandleLengths& lengths) const;

    /// The directions in the frame in which the chord leads from (0, 0) to (1, 0), and the
    /// integrals
    double mUx, mUy, mWx, mWy, mCross, mArea, mMoment;
    double mEqual; ///< equal lengths
    HandleLengths mFirst = {0.0, 0.0};
    int mAttempt = 0;
};

} // namespace trammel_detail

#endif
