// SPDX-License-Identifier: MIT

#include "Combine.h"

#include "Outlines.h"

#include <trammel/Moments.h>
#include <trammel/OutlineOperations.h>
#include <trammel/PathSegments.h>
#include <trammel/PolygonOperations.h>
#include <trammel/TPoly.h>
#include <trammel/Winding.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace tool {

typedef TPoint<double> Pt;

namespace {

/// The rule for contours without overlaps, for which either rule will do.
constexpr trammel::FillRule kAnyRule = trammel::FillRule::kNonZero;

/// The error to flatten lines with, of which all values do the same.
constexpr double kNoError = 1.0;

bool IsLines(CPath const& path) { return !path.TestContents(CPath::kContainsCurves); }

/// Returns the region of outlines that have one rule. An outline alone covers what it encloses.
Region UnionOf(std::vector<CPath> const& outlines, trammel::FillRule rule, double tolerance) {
    Region region;
    if (std::all_of(outlines.begin(), outlines.end(), IsLines)) {
        std::vector<std::vector<TPolygon<double>>> polygons;
        polygons.reserve(outlines.size());
        for (CPath const& outline : outlines) {
            polygons.push_back(Flatten(outline, kNoError));
        }
        region.path = PathOf(trammel::Union(polygons, rule));
        return region;
    }
    region.distance = trammel::Union(outlines, rule, tolerance, region.path);
    return region;
}

/// Returns a point on the segment, none that drawings prefer: contours may touch in such points.
Pt InnerPoint(trammel::PathSegment const& segment) {
    constexpr double t = 0.3819660112501051; // the golden section
    if (segment.IsCurve()) {
        return CBezier(segment.start, segment.control1, segment.control2, segment.end).TPt(t);
    }
    return segment.start + (segment.end - segment.start) * t;
}

} // namespace

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

Region RegionOf(std::vector<Outline> const& outlines, double tolerance) {
    std::vector<CPath> byRule[2];
    double arcDistance = 0.0;
    for (Outline const& outline : outlines) {
        bool const evenOdd = outline.rule == trammel::FillRule::kEvenOdd;
        byRule[evenOdd ? 1 : 0].push_back(outline.path);
        arcDistance = std::max(arcDistance, outline.arcDistance);
    }
    if (byRule[0].empty() || byRule[1].empty()) {
        bool const evenOdd = byRule[0].empty();
        Region region = UnionOf(byRule[evenOdd ? 1 : 0],
                                evenOdd ? trammel::FillRule::kEvenOdd : kAnyRule, tolerance);
        region.distance += arcDistance;
        return region;
    }
    double const half = tolerance / 2.0;
    Region region = Combined(kPolyUnion, UnionOf(byRule[0], trammel::FillRule::kNonZero, half),
                             UnionOf(byRule[1], trammel::FillRule::kEvenOdd, half), half);
    region.distance += arcDistance;
    return region;
}

Region Combined(TPolyOp operation, Region const& a, Region const& b, double tolerance) {
    Region result;
    if (IsLines(a.path) && IsLines(b.path)) {
        result.path = PathOf(trammel::Boolean(operation, Flatten(a.path, kNoError), kAnyRule,
                                              Flatten(b.path, kNoError), kAnyRule));
    } else {
        result.distance =
            trammel::Boolean(operation, a.path, kAnyRule, b.path, kAnyRule, tolerance, result.path);
    }
    result.distance += std::max(a.distance, b.distance);
    return result;
}

AreaFigures FiguresOf(Region const& region) {
    AreaFigures figures;
    std::vector<CPath> const contours = SplitSubpaths(region.path);
    std::vector<TRect<double>> bounds;
    bounds.reserve(contours.size());
    for (CPath const& contour : contours) {
        bounds.push_back(DrawnBounds(contour));
    }
    for (std::size_t i = 0; i < contours.size(); ++i) {
        bool first = true;
        bool hole = false;
        for (trammel::PathSegment const& segment : trammel::Segments(contours[i])) {
            if (segment.start == segment.end && !segment.IsCurve()) {
                continue;
            }
            ++figures.vertices;
            figures.curves += segment.IsCurve() ? 1 : 0;
            if (first) {
                first = false;
                Pt const p = InnerPoint(segment);
                for (std::size_t k = 0; k < contours.size(); ++k) {
                    if (k != i && bounds[k].Contains(p) &&
                        trammel::WindingNumber(contours[k], p) != 0) {
                        hole = !hole;
                    }
                }
            }
        }
        double const area = std::abs(trammel::SignedArea(contours[i]));
        figures.area += hole ? -area : area;
        figures.holes += hole ? 1 : 0;
    }
    figures.contours = contours.size();
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
