// SPDX-License-Identifier: MIT

// Intersections beside CGAL's arrangements of Bézier curves, where the machine has CGAL.

#include "BezierJudge.h"
#include "Intersections.h"
#include "PathSegments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace {

using trammel::Intersection;
using trammel::IntersectionKind;

typedef TPoint<double> Pt;
typedef std::vector<Intersection> Places;

constexpr double kFine = 1e-9;

class Random {
public:
    explicit Random(unsigned seed) : mGenerator(seed) {}
    int Below(unsigned n) { return static_cast<int>(mGenerator() % n); }
    Pt Whole(unsigned size) {
        int const h = Below(size);
        return Pt(h, Below(size));
    }
    /// A curve without a loop, as the judge has trouble with loops.
    CBezier Curve() {
        while (true) {
            Pt const p0 = Whole(200);
            Pt const p1 = Whole(200);
            Pt const p2 = Whole(200);
            CBezier const curve(p0, p1, p2, Whole(200));
            if (trammel::SelfIntersections(curve, kFine).empty()) {
                return curve;
            }
        }
    }
    /// A closed outline about a point, of lines and curves, as a letter has them.
    CPath Outline(Pt const& centre) {
        CPath path;
        constexpr int kCorners = 6;
        double const turn = Below(100) / 100.0;
        auto const at = [&](double part) {
            double const angle = (part + turn) * 6.283 / kCorners;
            double const radius = 60 + Below(60);
            return centre +
                   Pt(std::round(radius * std::cos(angle)), std::round(radius * std::sin(angle)));
        };
        Pt const start = at(0);
        path.MoveTo(start);
        for (int i = 1; i <= kCorners; ++i) {
            Pt const c1 = at(i - 0.7);
            Pt const c2 = at(i - 0.3);
            Pt const end = i < kCorners ? at(i) : start;
            if (Below(3) == 0) {
                path.LineTo(end);
            } else {
                path.CurveTo(c1, c2, end);
            }
        }
        return path.ClosePath();
    }

private:
    std::mt19937 mGenerator;
};

/// Requires that each place is a crossing or contact, and that the points are the judge's.
void Compare(Places const& places, std::vector<Pt> const& judged) {
    ASSERT_EQ(places.size(), judged.size());
    for (Intersection const& p : places) {
        EXPECT_EQ(p.kind, IntersectionKind::kCrossing);
        double nearest = 1e9;
        for (Pt const& q : judged) {
            nearest = std::min(nearest, std::hypot(p.point.h - q.h, p.point.v - q.v));
        }
        EXPECT_LT(nearest, kFine);
    }
}

TEST(IntersectionsByArrangement, OfCurvesWithWholeNumbersAreCrossingsOfTheArrangement) {
    Random random(1);
    std::size_t compared = 0;
    for (int i = 0; i < 120; ++i) {
        SCOPED_TRACE(i);
        CBezier const a = random.Curve();
        CBezier const b = random.Curve();
        std::vector<Pt> const judged = trammel_test::JudgedMeetings(a, b);
        Compare(trammel::Intersections(a, b, kFine), judged);
        compared += judged.size();
    }
    EXPECT_GT(compared, 80U);
}

TEST(IntersectionsByArrangement, OfOutlinesLikeLettersAreCrossingsOfTheArrangement) {
    Random random(2);
    std::size_t compared = 0;
    for (int i = 0; i < 12; ++i) {
        SCOPED_TRACE(i);
        CPath const a = random.Outline(Pt(100, 100));
        CPath const b = random.Outline(Pt(141, 133));
        std::vector<Pt> judged;
        auto const segmentsOf = [](CPath const& path) {
            std::vector<trammel::PathSegment> segments;
            for (trammel::PathSegment const& s : trammel::Segments(path)) {
                if (s.start != s.end) { // the close may be a point, which is no curve for the judge
                    segments.push_back(s);
                }
            }
            return segments;
        };
        auto const curveOf = [](trammel::PathSegment const& s) {
            // Thirds are no whole numbers: all is three times as large.
            return s.IsCurve() ? CBezier(s.start, s.control1, s.control2, s.end) * 3.0
                               : CBezier(s.start * 3.0, s.start * 2.0 + s.end,
                                         s.start + s.end * 2.0, s.end * 3.0);
        };
        for (trammel::PathSegment const& s : segmentsOf(a)) {
            for (trammel::PathSegment const& t : segmentsOf(b)) {
                for (Pt const& p : trammel_test::JudgedMeetings(curveOf(s), curveOf(t))) {
                    judged.push_back(p / 3.0);
                }
            }
        }
        Compare(trammel::Intersections(a, b, kFine), judged);
        compared += judged.size();
    }
    EXPECT_GT(compared, 20U);
}

} // namespace
