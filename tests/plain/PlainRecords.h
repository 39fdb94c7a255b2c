// SPDX-License-Identifier: MIT

// The records that the plain forms work on: the library's own points and rectangles, and chains of
// points in a vector. The benchmarks compile the plain forms with records of their own
// (benchmarks/plain/records/plain). So the plain forms use only the names declared here.

#ifndef TRAMMEL_PLAINRECORDS_H
#define TRAMMEL_PLAINRECORDS_H

#include "TPoint.h"
#include "TRect.h"

#include <vector>

namespace plain {

typedef TPoint<double> Pt;
typedef TRect<double> Rect;
/// An open chain of points.
typedef std::vector<Pt> Points;

} // namespace plain

#endif
