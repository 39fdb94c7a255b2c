// SPDX-License-Identifier: MIT

// The search for the nearest point of a curve, for callers that have a near point already. Not
// installed.

#ifndef TRAMMEL_NEARESTPOINT_P_H
#define TRAMMEL_NEARESTPOINT_P_H

#include "AccurateCurve.h"
#include "CBezier.h"
#include "TPoint.h"

namespace trammel_detail {

/// Does what trammel::NearestPoint does, and searches only what may be nearer than `limit`. Where
/// nothing is, it returns any point of the curve.
trammel::CurvePoint NearestPointWithin(CBezier const& curve, TPoint<double> const& pt,
                                       double accuracy, double limit);

} // namespace trammel_detail

#endif
