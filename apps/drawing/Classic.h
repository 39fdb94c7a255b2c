// SPDX-License-Identifier: MIT

// Figures of the classic calls: those of CPath, CBezier and TPolygon. Their curves are subdivided
// up to a limit, so that the figures are approximate. Outlines.h has the accurate ones.

#ifndef TRAMMEL_APP_CLASSIC_H
#define TRAMMEL_APP_CLASSIC_H

#include <trammel/CPath.h>
#include <trammel/TPoint.h>
#include <trammel/TPoly.h>

#include <vector>

namespace tool {

/// Returns one polygon for each subpath, with curves flattened by CBezier::Flatten. It is closed if
/// the subpath is.
std::vector<TPolygon<double>> ClassicFlatten(CPath const& path, double error);

/// True when an odd number of the subpaths contain `p` by TPolygon::Contains, flattened to a
/// millionth of the outline's size.
bool ClassicContains(CPath const& path, TPoint<double> const& p);

/// True when TLine::HitTest or CBezier::HitTest says so of a segment. The curves' error is set to a
/// 16th of the tolerance, and to at least a millionth of the outline's size.
bool ClassicHits(CPath const& path, TPoint<double> const& p, double tolerance);

} // namespace tool

#endif
