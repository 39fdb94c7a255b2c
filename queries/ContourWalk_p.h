// SPDX-License-Identifier: MIT

// The walk over the contours of an outline, for queries on the region that they bound. Not
// installed.

#ifndef TRAMMEL_CONTOURWALK_P_H
#define TRAMMEL_CONTOURWALK_P_H

#include "CFPolygonRef.h"
#include "CPath.h"
#include "PathCursor.h"
#include "PointRun_p.h"
#include "PolygonPoints_p.h"
#include "TPoint.h"
#include "TPoly.h"
#include "Vector_p.h"

#include <vector>

namespace trammel_detail {

/// Returns the coordinates of the point at an address, aligned or not: v in lane 0 and h in lane 1.
inline Double2 CoordinatesAt(void const* p) { return Double2::Load(p); }
/// Returns the point with these coordinates: v is in lane 0 and h in lane 1.
inline TPoint<double> PointOf(Double2 const& coordinates) {
    return TPoint<double>(Lane<1>(coordinates), Lane<0>(coordinates));
}
/// Returns the point at an address, aligned or not.
inline TPoint<double> PointAt(void const* p) { return PointOf(CoordinatesAt(p)); }

/// Goes through the contours of a path. A contour begins with a move, or where drawing goes on
/// after a close, and at (0, 0) before any move. It ends before the next move, with a close, or
/// with the path. The walk calls these members of the visitor:
///
///     Begin(p)            for each move
///     LineTo(p)           for each line
///     CurveTo(c1, c2, e)  for each curve: control points and end
///     Close()             for each close, and at the end in any case
///
/// No Close() comes before a move: Begin() ends a contour that is still open. The visitor starts at
/// (0, 0), and after a Close() it goes on from the last point drawn.
/// Points are given by their addresses, which stay good as long as the path does not change.
///
/// The walk is always inlined, so that a local visitor's members stay in registers.
template <class Visitor>
[[gnu::always_inline]] inline void WalkContours(CPath const& path, Visitor& visitor) {
    for (ElementCursor element(path); element.Next();) {
        TPoint<double> const* const points = element.Points();
        switch (element.Code()) {
        case kPathMove:
            visitor.Begin(points);
            break;
        case kPathLine:
            visitor.LineTo(points);
            break;
        case kPathCurve:
            visitor.CurveTo(points, points + 1, points + 2);
            break;
        case kPathClose:
            visitor.Close();
            break;
        default:
            break;
        }
    }
    visitor.Close();
}

/// Goes through the only contour of a polygon in the same way. The addresses are those of v and h
/// in turn and need not be aligned, so they come as `char const*`.
template <class Visitor> void WalkContours(PointRun const& points, Visitor& visitor) {
    for (long i = 0; i < points.count; ++i) {
        char const* const p = points.bytes + i * kPointBytes;
        if (i == 0) {
            visitor.Begin(p);
        } else {
            visitor.LineTo(p);
        }
    }
    visitor.Close();
}
template <class Visitor>
void WalkContours(std::vector<TPoint<double>> const& ring, Visitor& visitor) {
    WalkContours(PointsOf(ring), visitor);
}
template <class Visitor> void WalkContours(TPolygon<double> const& polygon, Visitor& visitor) {
    WalkContours(PointsOf(polygon), visitor);
}
template <class Visitor> void WalkContours(CFPolygonRef const& polygon, Visitor& visitor) {
    WalkContours(PointsOf(polygon), visitor);
}

} // namespace trammel_detail

#endif
