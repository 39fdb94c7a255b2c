// SPDX-License-Identifier: MIT

// Boost.Geometry with doubles. It asks for valid operands and has no function that makes them so.

#include "Peer.h"

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/multi_polygon.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>

#include <memory>

namespace peers {
namespace {

namespace bg = boost::geometry;
using Point = bg::model::d2::point_xy<double>;
using Polygon = bg::model::polygon<Point>;
using MultiPolygon = bg::model::multi_polygon<Polygon>;

void Append(operands::Ring const& ring, bg::model::ring<Point>& to) {
    for (TPoint<double> const& p : ring) {
        to.push_back(Point(p.h, p.v));
    }
}

MultiPolygon Convert(operands::Operand const& operand) {
    MultiPolygon all;
    for (operands::Area const& area : operand.areas) {
        Polygon polygon;
        Append(area.outer, polygon.outer());
        for (operands::Ring const& hole : area.holes) {
            polygon.inners().emplace_back();
            Append(hole, polygon.inners().back());
        }
        all.push_back(polygon);
    }
    bg::correct(all); // closes, and sets the directions
    return all;
}

class BoostJob : public Job {
public:
    explicit BoostJob(operands::Pair const& pair)
        : mFirst(Convert(pair.first)), mSecond(Convert(pair.second)) {}

    void Run(TPolyOp op) override {
        mResult.clear();
        switch (op) {
        case kPolyDifference:
            bg::difference(mFirst, mSecond, mResult);
            break;
        case kPolyIntersection:
            bg::intersection(mFirst, mSecond, mResult);
            break;
        case kPolyXor:
            bg::sym_difference(mFirst, mSecond, mResult);
            break;
        case kPolyUnion:
            bg::union_(mFirst, mSecond, mResult);
            break;
        }
    }

    double Area() const override { return bg::area(mResult); }

private:
    MultiPolygon mFirst;
    MultiPolygon mSecond;
    MultiPolygon mResult;
};

} // namespace

Peer BoostGeometry() {
    return {"boost", false, false, false, [](operands::Pair const& pair) -> std::unique_ptr<Job> {
                return std::make_unique<BoostJob>(pair);
            }};
}

} // namespace peers
