// SPDX-License-Identifier: MIT

#include "Combine.h"

#include "Outlines.h"

#include <trammel/PolygonOperations.h>
#include <trammel/TPoly.h>

#include <cmath>
#include <utility>

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

std::vector<TPolygon<double>> RegionOf(std::vector<Outline> const& outlines, double error) {
    std::vector<std::vector<TPolygon<double>>> byRule[2];
    for (Outline const& outline : outlines) {
        bool const evenOdd = outline.rule == trammel::FillRule::kEvenOdd;
        byRule[evenOdd ? 1 : 0].push_back(Flatten(outline.path, error - outline.arcDistance));
    }
    std::vector<TPolygon<double>> region;
    if (!byRule[0].empty()) {
        region = trammel::Union(byRule[0], trammel::FillRule::kNonZero);
    }
    if (!byRule[1].empty()) {
        std::vector<TPolygon<double>> other =
            trammel::Union(byRule[1], trammel::FillRule::kEvenOdd);
        region = region.empty() ? std::move(other)
                                : trammel::Boolean(kPolyUnion, region, trammel::FillRule::kNonZero,
                                                   other, trammel::FillRule::kNonZero);
    }
    return region;
}

AreaFigures FiguresOf(std::vector<TPolygon<double>> const& rings) {
    AreaFigures figures;
    for (TPolygon<double> const& ring : rings) {
        std::vector<Pt> points;
        double twice = 0.0; // from the first point, as in EnclosedArea, with its sign
        for (long i = 0; i <= ring.LastIndex(); ++i) {
            points.push_back(ring.GetPt(i));
            if (i >= 2) {
                Pt const a = points[points.size() - 2] - points.front();
                Pt const b = points.back() - points.front();
                twice += a.h * b.v - a.v * b.h;
            }
        }
        double const area = EnclosedArea(points);
        figures.area += twice < 0.0 ? -area : area;
        figures.holes += twice < 0.0 ? 1 : 0;
        figures.vertices += points.size();
    }
    figures.contours = rings.size();
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
