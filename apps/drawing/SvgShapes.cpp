// SPDX-License-Identifier: MIT

#include "SvgShapes.h"

#include <trammel/Shapes.h>

namespace tool {

namespace {

typedef TPoint<double> Pt;

} // namespace

CPath RectanglePath(TRect<double> const& r, double hRadius, double vRadius, double tolerance) {
    if (hRadius == 0.0 || vRadius == 0.0) {
        return PolylinePath({r.TopLeft(), r.TopRight(), r.BottomRight(), r.BottomLeft()}, true);
    }
    return trammel::RoundedRectPath(r, hRadius, vRadius, tolerance);
}

CPath PolylinePath(std::vector<Pt> const& points, bool closed) {
    CPath path;
    for (Pt const& p : points) {
        path.LineTo(p); // the first is a move, because no subpath is open
    }
    if (closed) {
        path.ClosePath();
    }
    return path;
}

CPath DrawnLines(std::vector<Pt> const& points) {
    CPath path = PolylinePath(points, false);
    if (points.size() > 1 && path.mCtls.size() == 1) {
        path.AddCtl(kPathLine).AddPt(points.front()); // LineTo drops it
    }
    return path;
}

} // namespace tool
