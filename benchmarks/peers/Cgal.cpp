// SPDX-License-Identifier: MIT

// CGAL's regularized operations on polygon sets, with exact constructions. No coordinate is ever
// rounded; no other library here offers that, and it takes its time. Operands must be valid.

#include "Peer.h"

#include <CGAL/Boolean_set_operations_2.h>
#include <CGAL/Exact_predicates_exact_constructions_kernel.h>
#include <CGAL/Polygon_set_2.h>

#include <iterator>
#include <memory>
#include <vector>

namespace peers {
namespace {

using Kernel = CGAL::Exact_predicates_exact_constructions_kernel;
using Polygon = CGAL::Polygon_2<Kernel>;
using PolygonWithHoles = CGAL::Polygon_with_holes_2<Kernel>;
using PolygonSet = CGAL::Polygon_set_2<Kernel>;

Polygon Convert(operands::Ring const& ring, CGAL::Orientation orientation) {
    Polygon polygon;
    for (TPoint<double> const& p : ring) {
        polygon.push_back(Kernel::Point_2(p.h, p.v));
    }
    if (polygon.orientation() != orientation) {
        polygon.reverse_orientation();
    }
    return polygon;
}

PolygonSet Convert(operands::Operand const& operand) {
    PolygonSet set;
    std::vector<PolygonWithHoles> polygons;
    for (operands::Area const& area : operand.areas) {
        PolygonWithHoles polygon(Convert(area.outer, CGAL::COUNTERCLOCKWISE));
        for (operands::Ring const& hole : area.holes) {
            polygon.add_hole(Convert(hole, CGAL::CLOCKWISE));
        }
        polygons.push_back(polygon);
    }
    set.join(polygons.begin(), polygons.end());
    return set;
}

class CgalJob : public Job {
public:
    explicit CgalJob(operands::Pair const& pair)
        : mFirst(Convert(pair.first)), mSecond(Convert(pair.second)) {}

    void Run(TPolyOp op) override {
        PolygonSet set;
        switch (op) {
        case kPolyDifference:
            set.difference(mFirst, mSecond);
            break;
        case kPolyIntersection:
            set.intersection(mFirst, mSecond);
            break;
        case kPolyXor:
            set.symmetric_difference(mFirst, mSecond);
            break;
        case kPolyUnion:
            set.join(mFirst, mSecond);
            break;
        }
        mResult.clear();
        set.polygons_with_holes(std::back_inserter(mResult));
    }

    double Area() const override {
        double area = 0.0;
        for (PolygonWithHoles const& polygon : mResult) {
            area += CGAL::to_double(polygon.outer_boundary().area());
            for (auto hole = polygon.holes_begin(); hole != polygon.holes_end(); ++hole) {
                area += CGAL::to_double(hole->area());
            }
        }
        return area;
    }

private:
    PolygonSet mFirst;
    PolygonSet mSecond;
    std::vector<PolygonWithHoles> mResult;
};

} // namespace

Peer Cgal() {
    return {"cgal", false, false, true, [](operands::Pair const& pair) -> std::unique_ptr<Job> {
                return std::make_unique<CgalJob>(pair);
            }};
}

} // namespace peers
