// SPDX-License-Identifier: MIT

#include "BezierJudge.h"

#include <CGAL/Arr_Bezier_curve_traits_2.h>
#include <CGAL/Arrangement_2.h>
#include <CGAL/CORE_algebraic_number_traits.h>
#include <CGAL/Cartesian.h>

#include <utility>
#include <vector>

namespace trammel_test {

namespace {

typedef CGAL::CORE_algebraic_number_traits Numbers;
typedef CGAL::Cartesian<Numbers::Rational> Rationals;
typedef CGAL::Cartesian<Numbers::Algebraic> Algebraics;
typedef CGAL::Arr_Bezier_curve_traits_2<Rationals, Algebraics, Numbers> Traits;
typedef CGAL::Arrangement_2<Traits> Arrangement;

Rationals::Point_2 PointOf(TPoint<double> const& p) {
    return Rationals::Point_2(static_cast<int>(p.h), static_cast<int>(p.v));
}

Traits::Curve_2 CurveOf(CBezier const& c) {
    std::vector<Rationals::Point_2> points{PointOf(c.P0), PointOf(c.P1), PointOf(c.P2),
                                           PointOf(c.P3)};
    if ((c.P1 - c.P0) * 3.0 == c.P3 - c.P0 && (c.P2 - c.P0) * 3.0 == (c.P3 - c.P0) * 2.0) {
        points = {points.front(), points.back()};
    }
    return Traits::Curve_2(points.begin(), points.end());
}

} // namespace

std::vector<TPoint<double>> JudgedMeetings(CBezier const& a, CBezier const& b) {
    std::vector<Traits::Curve_2> const curves{CurveOf(a), CurveOf(b)};
    Arrangement arrangement;
    CGAL::insert(arrangement, curves.begin(), curves.end());
    std::vector<TPoint<double>> points;
    for (auto v = arrangement.vertices_begin(); v != arrangement.vertices_end(); ++v) {
        if (v->degree() > 2) {
            std::pair<double, double> at = v->point().approximate();
            // Known points need no more, others are held in boxes that shrink.
            while (!v->point().is_exact() && v->point().refine()) {
                std::pair<double, double> const finer = v->point().approximate();
                bool const same = finer == at;
                at = finer;
                if (same) {
                    break;
                }
            }
            points.emplace_back(at.first, at.second);
        }
    }
    return points;
}

} // namespace trammel_test
