// SPDX-License-Identifier: MIT

#include "SvgShapes.h"

#include <trammel/Shapes.h>

#include <algorithm>

namespace tool {

namespace {

typedef TPoint<double> Pt;

/// How far the curves of a circle may be from it, as a share of the radius. Its length is then
/// right to more digits than are printed.
constexpr double kShare = 2e-9;

double Tolerance(double hRadius, double vRadius) { return std::max(hRadius, vRadius) * kShare; }

} // namespace

CPath RectanglePath(TRect<double> const& r, double hRadius, double vRadius) {
    if (hRadius == 0.0 || vRadius == 0.0) {
        return PolylinePath({r.TopLeft(), r.TopRight(), r.BottomRight(), r.BottomLeft()}, true);
    }
    return trammel::RoundedRectPath(r, hRadius, vRadius, Tolerance(hRadius, vRadius));
}

CPath EllipsePath(Pt const& centre, double hRadius, double vRadius) {
    return trammel::EllipsePath(centre, hRadius, vRadius, 0.0, Tolerance(hRadius, vRadius));
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

} // namespace tool
