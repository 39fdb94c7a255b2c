// SPDX-License-Identifier: MIT

#include "SvgShapes.h"

#include <trammel/UTrigonometry.h>

namespace tool {

namespace {

typedef TPoint<double> Pt;

/// Adds a quarter of an ellipse that starts at the path's current point, at `startAngle` around
/// `centre`, and ends exactly at `end`.
void AddQuarter(CPath& path, Pt const& centre, double hRadius, double vRadius, double startAngle,
                Pt const& end) {
    CPath quarter;
    quarter.Arc(centre, hRadius, vRadius, startAngle, pi / 2.0);
    // The arc is a move and then curves. Rounding can move its last point off the sum of centre and
    // radius.
    quarter.mPts.back() = end;
    for (std::size_t i = 1; i + 2 < quarter.mPts.size(); i += 3) {
        path.CurveTo(quarter.mPts[i], quarter.mPts[i + 1], quarter.mPts[i + 2]);
    }
    path.LineTo(end); // has no effect unless the radius vanishes beside the centre's coordinates
}

} // namespace

CPath RectanglePath(TRect<double> const& r, double hRadius, double vRadius) {
    if (hRadius == 0.0 || vRadius == 0.0) {
        return PolylinePath({r.TopLeft(), r.TopRight(), r.BottomRight(), r.BottomLeft()}, true);
    }
    TRect<double> inner = r;
    inner.Inset(hRadius, vRadius);
    CPath path;
    path.MoveTo(Pt(inner.left, r.top));
    path.LineTo(Pt(inner.right, r.top));
    AddQuarter(path, inner.TopRight(), hRadius, vRadius, -pi / 2.0, Pt(r.right, inner.top));
    path.LineTo(Pt(r.right, inner.bottom));
    AddQuarter(path, inner.BottomRight(), hRadius, vRadius, 0.0, Pt(inner.right, r.bottom));
    path.LineTo(Pt(inner.left, r.bottom));
    AddQuarter(path, inner.BottomLeft(), hRadius, vRadius, pi / 2.0, Pt(r.left, inner.bottom));
    path.LineTo(Pt(r.left, inner.top));
    AddQuarter(path, inner.TopLeft(), hRadius, vRadius, pi, Pt(inner.left, r.top));
    path.ClosePath();
    return path;
}

CPath EllipsePath(Pt const& centre, double hRadius, double vRadius) {
    TRect<double> const box(centre, hRadius, vRadius);
    Pt const right(box.right, centre.v);
    Pt const bottom(centre.h, box.bottom);
    Pt const left(box.left, centre.v);
    Pt const top(centre.h, box.top);
    CPath path;
    path.MoveTo(right);
    AddQuarter(path, centre, hRadius, vRadius, 0.0, bottom);
    AddQuarter(path, centre, hRadius, vRadius, pi / 2.0, left);
    AddQuarter(path, centre, hRadius, vRadius, pi, top);
    AddQuarter(path, centre, hRadius, vRadius, -pi / 2.0, right);
    path.ClosePath();
    return path;
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
