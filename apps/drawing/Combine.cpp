// SPDX-License-Identifier: MIT

#include "Combine.h"

#include "Outlines.h"

#include <trammel/TPoly.h>

#include <cmath>

namespace tool {

typedef TPoint<double> Pt;

void AddContours(Tgpc_polygon& polygon, CPath const& path, double error) {
    for (TPolygon<double> const& subpath : Flatten(path, error)) {
        Tgcp_contour contour;
        for (long i = 0; i <= subpath.LastIndex(); ++i) {
            contour.Vertices().push_back(subpath.GetPt(i));
        }
        // The closing edge of a contour is implied.
        while (contour.size() > 1 && contour.Vertices().back() == contour.Vertices().front()) {
            contour.Vertices().pop_back();
        }
        polygon.AddContour(contour);
    }
}

double EnclosedArea(std::vector<Pt> const& ring) {
    // Points count from the first one, so that a place far from the origin costs no digits.
    double twice = 0.0;
    for (std::size_t i = 2; i < ring.size(); ++i) {
        Pt const a = ring[i - 1] - ring[0];
        Pt const b = ring[i] - ring[0];
        twice += a.h * b.v - a.v * b.h;
    }
    return std::abs(twice) / 2.0;
}

Tgpc_polygon Combined(TPolyOp operation, Tgpc_polygon const& a, Tgpc_polygon const& b) {
    Tgpc_polygon result;
    Tgpc_polygon_clip(operation, a, b, result);
    return result;
}

Tgpc_polygon Untangled(Tgpc_polygon const& polygon) {
    return Combined(kPolyUnion, polygon, Tgpc_polygon());
}

AreaFigures FiguresOf(Tgpc_polygon const& result) {
    AreaFigures figures;
    for (Tgcp_contour const& contour : result.mContours) {
        double const area = EnclosedArea(contour.Vertices());
        figures.area += contour.mHole ? -area : area;
        figures.holes += contour.mHole ? 1 : 0;
        figures.vertices += contour.size();
    }
    figures.contours = result.mContours.size();
    return figures;
}

CPath PathOf(Tgpc_polygon const& polygon) {
    CPath path;
    for (Tgcp_contour const& contour : polygon.mContours) {
        std::vector<Pt> const& points = contour.Vertices();
        if (points.empty()) {
            continue;
        }
        path.MoveTo(points.front());
        for (std::size_t i = 1; i < points.size(); ++i) {
            path.LineTo(points[i]);
        }
        path.ClosePath();
    }
    return path;
}

} // namespace tool
