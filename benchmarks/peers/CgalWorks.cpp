// SPDX-License-Identifier: MIT

#include "Works.h"

#include <CGAL/Aff_transformation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_2.h>
#include <CGAL/Polygon_2_algorithms.h>

#include <cmath>
#include <memory>

namespace peers {
namespace {

typedef CGAL::Exact_predicates_inexact_constructions_kernel Kernel;
typedef CGAL::Polygon_2<Kernel> Polygon;

} // namespace

void RegisterCgalWorks() {
    PolygonWorks<Polygon> polygons;
    polygons.convert = [](truth::Chain const& ring) {
        auto polygon = std::make_shared<Polygon>();
        for (TPoint<double> const& p : ring) {
            polygon->push_back(Kernel::Point_2(p.h, p.v));
        }
        return polygon;
    };
    polygons.contains = [](Polygon const& polygon, TPoint<double> const& p) {
        return CGAL::bounded_side_2(polygon.vertices_begin(), polygon.vertices_end(),
                                    Kernel::Point_2(p.h, p.v)) == CGAL::ON_BOUNDED_SIDE;
    };
    polygons.bounds = [](Polygon const& polygon) {
        CGAL::Bbox_2 const box = polygon.bbox();
        return box.xmin() + box.ymin() + box.xmax() + box.ymax();
    };
    double const c = std::cos(1.0);
    double const s = std::sin(1.0);
    CGAL::Aff_transformation_2<Kernel> const turn(c, -s, 500.0 - 500.0 * c + 500.0 * s, s, c,
                                                  500.0 - 500.0 * s - 500.0 * c);
    polygons.transform = [turn](Polygon& polygon) { polygon = CGAL::transform(turn, polygon); };
    RegisterPolygons("cgal", polygons);
}

} // namespace peers
