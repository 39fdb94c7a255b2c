// SPDX-License-Identifier: MIT

// Proofs that pieces of outlines do not meet. Not installed.

#ifndef TRAMMEL_APARTPIECES_P_H
#define TRAMMEL_APARTPIECES_P_H

#include "Box_p.h"
#include "Cubic_p.h"
#include "TPoint.h"

namespace trammel_detail {

/// Returns the box of a curve's control points.
Box<double> HullBox(Cubic const& c);

/// True when the curve goes forward along its chord all the time. Then it does not cross itself.
bool GoesForward(Cubic const& c);

/// True when a curve, and one that begins at its end, have no other point in common.
bool MeetAtJointOnly(Cubic const& before, Cubic const& behind);

/// True when it is proven that two curves have no point in common but ends of both that are equal.
/// False where it is not so, or takes more than some hundred steps. Hulls nearer to each other than
/// `margin` count as meeting, so it should exceed the rounding of coordinates.
bool AreApart(Cubic const& a, Cubic const& b, double margin);

/// True when it is proven that the curve does not cross or touch itself; see AreApart.
bool IsFreeOfLoops(Cubic const& c, double margin);

/// True when it is proven that no point of the curve is within `distance` of `p`; see AreApart.
bool KeepsAway(Cubic const& c, TPoint<double> const& p, double distance);

} // namespace trammel_detail

#endif
