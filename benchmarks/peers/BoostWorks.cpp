// SPDX-License-Identifier: MIT

#include "Works.h"

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/linestring.hpp>
#include <boost/geometry/geometries/multi_linestring.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>

#include <cmath>
#include <memory>

namespace peers {
namespace {

namespace bg = boost::geometry;

typedef bg::model::d2::point_xy<double> Point;
typedef bg::model::polygon<Point> Polygon;
typedef bg::model::linestring<Point> Line;

Point ToBoost(TPoint<double> const& p) { return {p.h, p.v}; }

} // namespace

void RegisterBoostWorks() {
    PolygonWorks<Polygon> polygons;
    polygons.convert = [](truth::Chain const& ring) {
        auto polygon = std::make_shared<Polygon>();
        for (TPoint<double> const& p : ring) {
            polygon->outer().push_back(ToBoost(p));
        }
        bg::correct(*polygon);
        return polygon;
    };
    polygons.contains = [](Polygon const& polygon, TPoint<double> const& p) {
        return bg::within(ToBoost(p), polygon);
    };
    polygons.bounds = [](Polygon const& polygon) {
        bg::model::box<Point> box;
        bg::envelope(polygon, box);
        return box.min_corner().x() + box.min_corner().y() + box.max_corner().x() +
               box.max_corner().y();
    };
    double const c = std::cos(1.0);
    double const s = std::sin(1.0);
    bg::strategy::transform::matrix_transformer<double, 2, 2> const turn(
        c, -s, 500.0 - 500.0 * c + 500.0 * s, s, c, 500.0 - 500.0 * s - 500.0 * c, 0.0, 0.0, 1.0);
    polygons.transform = [turn](Polygon& polygon) {
        for (Point& p : polygon.outer()) {
            bg::transform(p, p, turn);
        }
    };
    polygons.clip = [](Polygon const& polygon, TLine<double> const& line) {
        Line const segment = {ToBoost(line.mStart), ToBoost(line.mEnd)};
        bg::model::multi_linestring<Line> pieces;
        bg::intersection(segment, polygon, pieces);
        return bg::length(pieces);
    };
    RegisterPolygons("boost", polygons);
}

} // namespace peers
