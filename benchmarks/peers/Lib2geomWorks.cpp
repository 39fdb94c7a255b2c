// SPDX-License-Identifier: MIT

#include "Lib2geomPath.h"
#include "Works.h"

#include <2geom/affine.h>
#include <2geom/sbasis-geometric.h>
#include <2geom/transforms.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace peers {
namespace {

typedef std::shared_ptr<Geom::CubicBezier> Curve;
typedef std::shared_ptr<std::vector<Geom::Path>> Paths;

} // namespace

void RegisterLib2geomWorks() {
    CurveWorks<Curve> curves;
    curves.convert = [](CBezier const& c) {
        return std::make_shared<Geom::CubicBezier>(To2geom(c.P0), To2geom(c.P1), To2geom(c.P2),
                                                   To2geom(c.P3));
    };
    curves.length = [](Curve const& curve) { return curve->length(0.001); };
    curves.nearest = [](Curve const& curve, TPoint<double> const& p) {
        return curve->nearestTime(To2geom(p));
    };
    curves.hit = [](Curve const& curve, TPoint<double> const& p, double tolerance) {
        Geom::Rect box = curve->boundsFast();
        box.expandBy(tolerance);
        Geom::Point const point = To2geom(p);
        if (!box.contains(point)) {
            return false;
        }
        return Geom::distance(curve->pointAt(curve->nearestTime(point)), point) <= tolerance;
    };
    curves.intersect = [](Curve const& a, Curve const& b) {
        return static_cast<double>(a->intersect(*b).size());
    };
    curves.intersectLine = [](TLine<double> const& line, Curve const& curve) {
        Geom::LineSegment const segment(To2geom(line.mStart), To2geom(line.mEnd));
        return static_cast<double>(segment.intersect(*curve).size());
    };
    RegisterCurves("2geom", curves);

    PathWorks<Paths> paths;
    paths.convert = [](CPath const& path) {
        Lib2geomPathBuilder builder;
        path.ForAll(builder);
        return builder.mPaths;
    };
    paths.length = [](Paths const& list) {
        double length = 0.0;
        for (Geom::Path const& path : *list) {
            for (Geom::Curve const& curve : path) {
                length += curve.length(0.001);
            }
        }
        return length;
    };
    paths.intersect = [](Paths const& a, Paths const& b) {
        double places = 0.0;
        for (Geom::Path const& p : *a) {
            for (Geom::Path const& q : *b) {
                places += static_cast<double>(p.intersect(q).size());
            }
        }
        return places;
    };
    paths.nearest = [](Paths const& list, TPoint<double> const& p) {
        double least = std::numeric_limits<double>::infinity();
        for (Geom::Path const& path : *list) {
            double distance = 0.0;
            path.nearestTime(To2geom(p), &distance);
            least = std::min(least, distance);
        }
        return least;
    };
    paths.contains = [](Paths const& list, TPoint<double> const& p) {
        int winding = 0;
        for (Geom::Path const& path : *list) {
            winding += path.winding(To2geom(p));
        }
        return winding % 2 != 0;
    };
    paths.bounds = [](Paths const& list) {
        Geom::OptRect box;
        for (Geom::Path const& path : *list) {
            box.unionWith(path.boundsExact());
        }
        return box ? box->left() + box->top() + box->right() + box->bottom() : 0.0;
    };
    paths.area = [](Paths const& list) {
        double sum = 0.0;
        for (Geom::Path const& path : *list) {
            Geom::Point centroid;
            double area = 0.0;
            Geom::centroid(path.toPwSb(), centroid, area);
            sum -= area; // 2geom counts turns the other way round
        }
        return sum;
    };
    RegisterPaths("2geom", paths);
    RegisterRegions("2geom", paths);
    RegisterShapes("2geom", paths);

    typedef std::vector<Geom::Point> Points;
    PolygonWorks<Points> polygons;
    polygons.convert = [](truth::Chain const& ring) {
        auto points = std::make_shared<Points>();
        for (TPoint<double> const& p : ring) {
            points->push_back(To2geom(p));
        }
        return points;
    };
    polygons.bounds = [](Points const& points) {
        Geom::Rect const box = Geom::Rect::from_range(points.begin(), points.end());
        return box.left() + box.top() + box.right() + box.bottom();
    };
    Geom::Affine const turn =
        Geom::Translate(-500.0, -500.0) * Geom::Rotate(1.0) * Geom::Translate(500.0, 500.0);
    polygons.transform = [turn](Points& points) {
        for (Geom::Point& p : points) {
            p *= turn;
        }
    };
    RegisterPolygons("2geom", polygons);
}

} // namespace peers
