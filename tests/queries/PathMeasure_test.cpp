// SPDX-License-Identifier: MIT

#include "PathMeasure.h"

#include "CBezier.h"
#include "CMatrix3x3.h"
#include "SvgPath.h"
#include "TLine.h"
#include "TestSupport.h"
#include "UTrigonometry.h"
#include "plain/Comparing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace {

using plain::Random;
using plain::RandomFraction;
using plain::SameBits;
using plain::StepUlps;
using trammel::PathMeasure;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Rounds;
using trammel_test::Text;

typedef TPoint<double> Pt;

/// Everything in the path, to the last bit.
std::string State(CPath const& path) {
    std::string text;
    for (char const code : path.mCtls) {
        text += std::to_string(code) + " ";
    }
    return text + Text(path.mPts) + " at " + Text(path.mCurrentPt) + (path.mOpen ? " open " : " ") +
           Text(path.mBounds);
}

/// Puts back the depth of subdivision, which some tests set low so that curves which never become
/// flat cost little, and sees to it that measuring leaves the tolerance alone.
class Measure : public trammel_test::WithoutLeaks {
protected:
    void SetUp() override {
        WithoutLeaks::SetUp();
        mLimit = CBezier::mRecursionLimit;
    }
    void TearDown() override {
        CBezier::mRecursionLimit = mLimit;
        EXPECT_EQ(CBezier::mMaxError, 1.0);
        WithoutLeaks::TearDown();
    }

private:
    std::int16_t mLimit = 0;
};

/// (0, 0), (10, 0), (10, 10), (0, 10), closed: 40 long.
CPath Square() {
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(10, 0)).LineTo(Pt(10, 10)).LineTo(Pt(0, 10)).ClosePath();
    return path;
}

// ---------------------------------------------------------------------------------------------
// The path's own answers

void ExpectSamePoint(CPath const& path, PathMeasure const& measure, double t) {
    Pt const expected = path.TPt(t);
    ASSERT_SAME(measure.TPt(t), expected) << Text(t);
    ASSERT_SAME(measure.PtAtLength(t * path.Length()), expected) << Text(t);
    ASSERT_SAME(measure.At(t).point, expected) << Text(t);
}

void ExpectSameNearest(CPath const& path, PathMeasure const& measure, Pt const& p) {
    double const expected = path.FindTValue(p);
    ASSERT_SAME(measure.FindTValue(p), expected) << Text(p);
    PathMeasure::Nearest const nearest = measure.FindNearest(p);
    ASSERT_SAME(nearest.t, expected) << Text(p);
    ASSERT_SAME(measure.Distance(p), nearest.distance) << Text(p);
    if (nearest.element == PathMeasure::kNoElement) {
        ASSERT_SAME(nearest.distance, kInf);
        ASSERT_SAME(nearest.t, 0.0);
    } else {
        ASSERT_SAME(nearest.t, nearest.length / path.Length());
        ASSERT_SAME(nearest.distance, TLine<double>(p, nearest.point).Length());
    }
}

void ExpectSameRange(CPath const& path, PathMeasure const& measure, double t0, double t1,
                     CPath const& before) {
    CPath expected(before);
    CPath found(before);
    path.GetTRange(t0, t1, expected);
    measure.GetTRange(t0, t1, found);
    ASSERT_EQ(State(found), State(expected)) << Text(t0) << " " << Text(t1);
    CPath byLength(before);
    measure.GetLengthRange(t0 * path.Length(), t1 * path.Length(), byLength);
    ASSERT_EQ(State(byLength), State(expected)) << Text(t0) << " " << Text(t1);
}

/// Compares all answers for some fractions and points.
void ExpectSame(CPath const& path, std::vector<double> const& fractions,
                std::vector<Pt> const& points) {
    SCOPED_TRACE(path.mCtls.size() < 20 ? State(path) : std::string());
    PathMeasure const measure(path);
    ASSERT_SAME(measure.Length(), path.Length());
    for (double const t : fractions) {
        ASSERT_NO_FATAL_FAILURE(ExpectSamePoint(path, measure, t));
    }
    for (Pt const& p : points) {
        ASSERT_NO_FATAL_FAILURE(ExpectSameNearest(path, measure, p));
    }
    CPath before;
    for (std::size_t i = 1; i < fractions.size(); i += 2) {
        ASSERT_NO_FATAL_FAILURE(
            ExpectSameRange(path, measure, fractions[i - 1], fractions[i], before));
        before.MoveTo(Pt(1, 2)).LineTo(Pt(3, static_cast<double>(i)));
    }
}

Pt RandomPt(Random& random, bool grid) {
    if (grid) {
        double const h = random.Int(-3, 3);
        return Pt(h, random.Int(-3, 3));
    }
    return random.Pt(-200, 200);
}

CPath RandomPath(Random& random, int count, bool grid) {
    CPath path;
    for (; count > 0; --count) {
        Pt const a = RandomPt(random, grid);
        Pt const b = RandomPt(random, grid);
        Pt const c = RandomPt(random, grid);
        switch (random.Int(0, 9)) {
        case 0:
            path.MoveTo(a);
            break;
        case 1:
        case 2:
        case 3:
            path.LineTo(a);
            break;
        case 4:
        case 5:
        case 6:
            path.CurveTo(a, b, c);
            break;
        case 7:
            path.ClosePath();
            break;
        case 8:
            if (random.OneIn(3)) {
                path.Arc(a, b.h, b.v, random.Uniform(-7, 7), random.Uniform(-7, 7));
            }
            break;
        default: // what the building operations would not add
            if (random.OneIn(4)) {
                path.AddCtl(static_cast<char>(random.Int(4, 255)));
            } else if (random.OneIn(4)) {
                path.AddCtl(kPathClose);
            } else if (random.OneIn(4)) {
                path.AddCtl(kPathLine).AddPt(path.CurrentPoint());
            }
            break;
        }
    }
    return path;
}

TEST_F(Measure, AgreesWithRandomPaths) {
    Random random(31);
    for (int i = 0; i < Rounds(1500); ++i) {
        bool const grid = random.OneIn(3);
        CPath const path = RandomPath(random, random.Int(0, 12), grid);
        std::vector<double> fractions;
        std::vector<Pt> points;
        for (int k = 0; k < 4; ++k) {
            fractions.push_back(RandomFraction(random));
            points.push_back(RandomPt(random, grid));
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(path, fractions, points)) << i;
    }
}

TEST_F(Measure, AgreesWithLongOutlines) {
    // A thousand elements, near enough to each other that many are about as near to a point.
    Random random(32);
    for (int i = 0; i < Rounds(6); ++i) {
        CPath path;
        Pt at(0, 0);
        for (int k = 0; k < 1000; ++k) {
            at += random.Pt(-10, 10);
            if (random.OneIn(40)) {
                path.ClosePath().MoveTo(at);
            } else if (i % 3 == 0 || (i % 3 == 1 && random.OneIn(2))) {
                path.LineTo(at);
            } else {
                Pt const c1 = at + random.Pt(-5, 5);
                path.CurveTo(c1, at + random.Pt(-5, 5), at);
            }
        }
        std::vector<double> fractions = {0.0, 1.0, 0.5, 0.5};
        std::vector<Pt> points = {Pt(0, 0), at};
        for (int k = 0; k < 10; ++k) {
            fractions.push_back(random.Unit());
            points.push_back(path.TPt(random.Unit()) + random.Pt(-10, 10));
            points.push_back(at * random.Uniform(-3, 3));
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(path, fractions, points)) << i;
    }
}

TEST_F(Measure, AgreesWithDrawnOutlines) {
    std::vector<CPath> outlines;
    outlines.push_back(trammel::ReadSvgPath("M50 90 C0 50 20 10 50 30 C80 10 100 50 50 90 Z").path);
    outlines.push_back( // a lowercase g with its counters
        trammel::ReadSvgPath("M45 30q0 -10 -4 -15.5 -4 -5.5 -11 -5.5 -7.5 0 -11.5 5.5 -4 5.5 -4 "
                             "15.5 0 10 4 15.5 4 5.5 11.5 5.5 7 0 11 -5.5 4 -5.5 4 -15.5z m9 21q0 "
                             "14 -6.5 21 -6.5 7 -19 7 -5 0 -9 -.7 -4 -.7 -8 -2.2v-9q4 2 8 3 4 1 8 "
                             "1 9 0 13.5 -4.5 4.500 -5 4.5 -14v-4.500q-3 5 -7.500 7.500 -4.500 "
                             "2.500 -10.500 2.500 -10.500 0 -17 -8 -6.500 -8 -6.500 -21.500 0 "
                             "-13.500 6.500 -21.500 6.500 -8 17 -8 6 0 10.500 2.500 4.500 2.500 "
                             "7.500 7.500v-8.500h9z")
            .path);
    CPath shapes;
    shapes.RRect(TRect<double>(0, 0, 200, 100), 40);
    shapes.Arc(Pt(100, 50), 30, 0, 2 * pi);
    shapes.RRect(TRect<double>(20, 20, 40, 40), 0);
    outlines.push_back(shapes);
    shapes.Transform(CMatrix3x3().Rotate(0.3).Scale(0.01));
    outlines.push_back(shapes);
    Random random(33);
    for (CPath const& outline : outlines) {
        ASSERT_FALSE(outline.mCtls.empty());
        std::vector<double> fractions;
        std::vector<Pt> points;
        for (int k = 0; k <= 100; ++k) {
            fractions.push_back(k / 100.0);
            fractions.push_back(random.Unit());
            points.push_back(random.Pt(-20, 220));
            points.push_back(outline.TPt(k / 100.0)); // ties at the joints of segments
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(outline, fractions, points));
    }
}

TEST_F(Measure, AgreesAtTheEndsOfSegments) {
    // Fractions at which the sums of lengths are reached exactly, and their neighbours.
    Random random(34);
    for (int i = 0; i < 200; ++i) {
        CPath path;
        path.MoveTo(RandomPt(random, true));
        std::vector<double> sums;
        CPath part = path;
        for (int k = 0; k < 6; ++k) {
            Pt const to = RandomPt(random, true);
            if (random.OneIn(2)) {
                path.LineTo(to);
            } else {
                path.CurveTo(RandomPt(random, true), RandomPt(random, true), to);
            }
            sums.push_back(path.Length());
        }
        std::vector<double> fractions;
        for (double const sum : sums) {
            for (int const step : {-1, 0, 1}) {
                fractions.push_back(StepUlps(sum / path.Length(), step));
            }
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(path, fractions, {}));
        PathMeasure const measure(path);
        for (double const sum : sums) { // by length there is no rounding on the way
            Pt const p = measure.PtAtLength(sum);
            ASSERT_SAME(measure.AtLength(sum).point, p);
        }
    }
}

TEST_F(Measure, TiesAreWonByTheLastCurveOrTheFirstLine) {
    // Rings of segments around the point, all touching the same distance exactly.
    Random random(35);
    for (int i = 0; i < Rounds(2000); ++i) {
        Pt const p(random.Int(-5, 5), random.Int(-5, 5));
        CPath path;
        for (int k = random.Int(1, 40); k > 0; --k) {
            double const h = random.OneIn(2) ? 8 : -8;
            if (random.OneIn(3)) {
                path.MoveTo(p + Pt(-8, 2 * h));
                path.CurveTo(p + Pt(-8, 2 * h), p + Pt(0, 2 * h), p + Pt(0, h));
            } else if (random.OneIn(2)) {
                path.MoveTo(p + Pt(h, -8)).LineTo(p + Pt(h, random.Int(0, 8)));
            } else {
                path.MoveTo(p + Pt(h, 0)).LineTo(p + Pt(2 * h, random.Int(-8, 8)));
            }
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(path, {0.2, 0.7}, {p, p + Pt(0.25, 0)})) << i;
        ASSERT_SAME(PathMeasure(path).Distance(p), 8.0);
    }
}

TEST_F(Measure, SegmentsAtAlmostTheSameDistanceAreToldApart) {
    // Boxes that decide by the last bits of coordinates far larger than the distance.
    CBezier::mRecursionLimit = 5;
    Random random(36);
    for (int i = 0; i < Rounds(3000); ++i) {
        double const size = random.OneIn(8) ? random.Decade(-320, 307) : random.Decade(-3, 9);
        Pt const p = random.Pt(-size, size);
        double const distance = size * random.Decade(-14, 1);
        CPath path;
        for (int k = random.Int(2, 30); k > 0; --k) {
            double const d = StepUlps(distance, random.Int(-6, 6)) * (random.OneIn(2) ? 1.0 : -1.0);
            double const reach = distance * random.Uniform(0, 3);
            if (random.OneIn(2)) {
                path.MoveTo(p + Pt(-reach, d)).LineTo(p + Pt(reach, d));
            } else if (random.OneIn(2)) {
                path.MoveTo(p + Pt(d, 0)).LineTo(p + Pt(2 * d, random.Uniform(-1, 1) * reach));
            } else {
                path.MoveTo(p + Pt(d, -reach));
                path.CurveTo(p + Pt(d, -reach / 3), p + Pt(d, reach / 3), p + Pt(d, reach));
            }
        }
        Pt const beside(StepUlps(p.h, random.Int(-3, 3)), StepUlps(p.v, random.Int(-3, 3)));
        ASSERT_NO_FATAL_FAILURE(ExpectSame(path, {}, {p, beside})) << i;
    }
}

TEST_F(Measure, AgreesOnSpecialCoordinatesAndFractions) {
    CBezier::mRecursionLimit = 4;
    Random random(37);
    auto const number = [&] { return plain::WildNumber(random); };
    auto const point = [&] { return plain::WildPoint(random); };
    for (int i = 0; i < Rounds(20000); ++i) {
        CPath path;
        for (int k = random.Int(1, 6); k > 0; --k) {
            Pt const a = point();
            Pt const b = point();
            if (random.OneIn(2)) {
                path.LineTo(a);
            } else if (random.OneIn(6)) {
                path.ClosePath();
            } else {
                path.CurveTo(a, b, point());
            }
        }
        ASSERT_NO_FATAL_FAILURE(
            ExpectSame(path, {number(), number(), random.Unit(), number()}, {point(), point()}))
            << i;
    }
}

TEST_F(Measure, PathsWithTooFewPointsAreMeasuredAsFarAsTheyGo) {
    Random random(38);
    for (int i = 0; i < 500; ++i) {
        CPath path;
        for (int k = random.Int(0, 8); k > 0; --k) {
            path.AddCtl(static_cast<char>(random.Int(0, 4)));
        }
        for (int k = random.Int(0, 8); k > 0; --k) {
            path.AddPt(random.Pt(-9, 9));
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(path, {0.0, 0.3, 1.0, 1.5}, {Pt(1, 1)})) << i;
    }
}

TEST_F(Measure, CurvesTooLongForATableAreMeasuredAnew) {
    // Some 5,000 points beside some 200.
    CPath path;
    path.MoveTo(Pt(0, 0)).CurveTo(Pt(0, 2e6), Pt(3e6, 1e6), Pt(1e6, 0));
    path.CurveTo(Pt(1e6 + 300, 20), Pt(1e6 + 100, 500), Pt(1e6 + 400, 400));
    path.LineTo(Pt(0, -10)).ClosePath();
    ASSERT_NO_FATAL_FAILURE(ExpectSame(path, {0.0, 0.1, 0.25, 0.9999, 0.4, 0.9, 0.65, 1.0},
                                       {Pt(5e5, 5e5), Pt(1e6, 100), Pt(0, 0)}));
    CPath tip; // all at and around the number of points up to which the flattening is kept
    for (int i = 0; i < 40; ++i) {
        double const size = 10000.0 * std::pow(1.08, i);
        tip.MoveTo(Pt(0, 0)).CurveTo(Pt(0, size), Pt(size, size), Pt(size, 1));
    }
    ASSERT_NO_FATAL_FAILURE(ExpectSame(tip, {0.001, 0.01, 0.1, 0.2, 0.4, 0.6, 0.8, 0.99}, {}));
}

// ---------------------------------------------------------------------------------------------
// Places

TEST_F(Measure, PlacesOnASquareAreExact) {
    PathMeasure const measure(Square());
    EXPECT_SAME(measure.Length(), 40.0);
    PathMeasure::Place place = measure.At(0.375);
    EXPECT_SAME(place.point, Pt(10, 5));
    EXPECT_SAME(place.direction, Pt(0, 1));
    EXPECT_EQ(place.element, 2U);
    EXPECT_SAME(place.parameter, 0.5);
    place = measure.AtLength(32.5);
    EXPECT_SAME(place.point, Pt(0, 7.5));
    EXPECT_SAME(place.direction, Pt(0, -1));
    EXPECT_EQ(place.element, 4U); // the close
    EXPECT_SAME(place.parameter, 0.25);
    place = measure.At(0.5); // at a corner the segment that ends there
    EXPECT_SAME(place.point, Pt(10, 10));
    EXPECT_EQ(place.element, 2U);
    EXPECT_SAME(place.parameter, 1.0);
    place = measure.AtLength(-4); // extended backward
    EXPECT_SAME(place.point, Pt(-4, 0));
    EXPECT_EQ(place.element, 1U);
    EXPECT_SAME(place.parameter, -0.4);
}

TEST_F(Measure, BeyondTheEndIsTheStartOfTheLastSubpathOnNoElement) {
    CPath path = Square();
    path.MoveTo(Pt(70, 80));
    PathMeasure const measure(path);
    for (double const length : {40.5, kInf, kNaN}) {
        PathMeasure::Place const place = measure.AtLength(length);
        EXPECT_SAME(place.point, Pt(70, 80));
        EXPECT_SAME(place.direction, Pt(0, 0));
        EXPECT_EQ(place.element, PathMeasure::kNoElement);
        EXPECT_SAME(place.parameter, 0.0);
    }
}

TEST_F(Measure, EmptyOutlinesHaveNoLengthAndNoPlaces) {
    PathMeasure const measure{CPath()};
    EXPECT_SAME(measure.Length(), 0.0);
    EXPECT_SAME(measure.TPt(0.5), Pt(0, 0));
    EXPECT_SAME(measure.FindTValue(Pt(1, 1)), 0.0);
    EXPECT_SAME(measure.Distance(Pt(1, 1)), kInf);
    EXPECT_EQ(measure.FindNearest(Pt(1, 1)).element, PathMeasure::kNoElement);
    CPath out;
    measure.GetTRange(0.2, 0.7, out);
    EXPECT_EQ(State(out), "0 (0, 0) at (0, 0) open [0, 0, 0, 0]");
}

TEST_F(Measure, NotFinitePointsAreNearToNothing) {
    PathMeasure const measure(Square());
    for (Pt const& p : {Pt(kNaN, 1), Pt(1, kNaN), Pt(kInf, 1), Pt(1, -kInf), Pt(kInf, kNaN)}) {
        EXPECT_SAME(measure.Distance(p), kInf);
        EXPECT_SAME(measure.FindTValue(p), 0.0);
    }
}

TEST_F(Measure, NearestTellsThePlace) {
    CPath path = Square();
    path.MoveTo(Pt(100, 0)).CurveTo(Pt(100, 0), Pt(140, 30), Pt(140, 30)); // straight, 50 long
    PathMeasure const measure(path);
    PathMeasure::Nearest nearest = measure.FindNearest(Pt(13, 5));
    EXPECT_SAME(nearest.distance, 3.0);
    EXPECT_SAME(nearest.length, 15.0);
    EXPECT_SAME(nearest.t, 15.0 / 90.0);
    EXPECT_SAME(nearest.point, Pt(10, 5));
    EXPECT_EQ(nearest.element, 2U);
    EXPECT_SAME(nearest.parameter, 0.5);
    nearest = measure.FindNearest(Pt(148, 36));
    EXPECT_SAME(nearest.distance, 10.0);
    EXPECT_SAME(nearest.length, 90.0);
    EXPECT_SAME(nearest.t, 1.0);
    EXPECT_SAME(nearest.point, Pt(140, 30));
    EXPECT_EQ(nearest.element, 6U);
    EXPECT_SAME(nearest.parameter, 1.0);
}

TEST_F(Measure, PlacesLieOnTheirElements) {
    Random random(39);
    for (int i = 0; i < 300; ++i) {
        CPath const path = RandomPath(random, 12, false);
        PathMeasure const measure(path);
        for (double const t : {0.0, 0.15, 0.5, 0.77, 1.0}) {
            PathMeasure::Place const place = measure.At(t);
            if (place.element == PathMeasure::kNoElement) {
                continue;
            }
            // Walk to the element.
            Pt start;
            Pt current;
            std::size_t at = 0;
            for (std::size_t k = 0; k < place.element; ++k) {
                char const code = path.mCtls[k];
                std::size_t const count = code == kPathCurve                       ? 3
                                          : code == kPathMove || code == kPathLine ? 1
                                                                                   : 0;
                at += count;
                if (count > 0) {
                    current = path.mPts[at - 1];
                }
                if (code == kPathMove) {
                    start = current;
                }
            }
            switch (path.mCtls[place.element]) {
            case kPathLine:
                ASSERT_SAME(place.point,
                            TLine<double>(current, path.mPts[at]).TPt(place.parameter));
                break;
            case kPathClose:
                ASSERT_SAME(place.point, TLine<double>(current, start).TPt(place.parameter));
                break;
            case kPathCurve:
                ASSERT_SAME(place.point,
                            CBezier(current, path.mPts[at], path.mPts[at + 1], path.mPts[at + 2])
                                .TPt(place.parameter));
                break;
            default:
                FAIL() << "a place on an element without extent";
            }
        }
    }
}

PathMeasure OfCurve(Pt const& p0, Pt const& p1, Pt const& p2, Pt const& p3) {
    CPath path;
    path.MoveTo(p0).CurveTo(p1, p2, p3);
    return PathMeasure(path);
}

TEST_F(Measure, DirectionsAtTheEndsOfCurves) {
    PathMeasure const ordinary = OfCurve(Pt(0, 0), Pt(0, 5), Pt(15, 6), Pt(12, 10));
    EXPECT_SAME(ordinary.At(0.0).direction, Pt(0, 1));
    EXPECT_SAME(ordinary.At(1.0).direction, Pt(-0.6, 0.8));
    // A control point on its end: the next one tells.
    PathMeasure const doubledStart = OfCurve(Pt(0, 0), Pt(0, 0), Pt(3, 4), Pt(20, 4));
    EXPECT_SAME(doubledStart.At(0.0).direction, Pt(0.6, 0.8));
    PathMeasure const doubledEnd = OfCurve(Pt(0, 0), Pt(7, 0), Pt(10, 4), Pt(10, 4));
    EXPECT_SAME(doubledEnd.At(1.0).direction, Pt(0.6, 0.8));
    PathMeasure const straight = OfCurve(Pt(0, 0), Pt(0, 0), Pt(3, 4), Pt(3, 4));
    EXPECT_SAME(straight.At(0.0).direction, Pt(0.6, 0.8));
    EXPECT_SAME(straight.At(1.0).direction, Pt(0.6, 0.8));
    PathMeasure const tripledStart = OfCurve(Pt(1, 1), Pt(1, 1), Pt(1, 1), Pt(4, 5));
    EXPECT_SAME(tripledStart.At(0.0).direction, Pt(0.6, 0.8));
    PathMeasure const tripledEnd = OfCurve(Pt(1, 1), Pt(4, 5), Pt(4, 5), Pt(4, 5));
    EXPECT_SAME(tripledEnd.At(1.0).direction, Pt(0.6, 0.8));
}

TEST_F(Measure, DirectionTurnsAroundAtACusp) {
    // The derivative vanishes at 0.5, at (4, 6), where the curve comes down and goes back up.
    PathMeasure const measure = OfCurve(Pt(0, 0), Pt(8, 8), Pt(0, 8), Pt(8, 0));
    PathMeasure::Place const before = measure.At(0.4999);
    PathMeasure::Place const behind = measure.At(0.5001);
    EXPECT_NEAR(before.point.v, 6.0, 2e-3);
    EXPECT_NEAR(behind.point.v, 6.0, 2e-3);
    EXPECT_NEAR(before.direction.v, 1.0, 1e-3);
    EXPECT_NEAR(behind.direction.v, -1.0, 1e-3);
}

TEST_F(Measure, DirectionsAreOfLengthOneAndFollowThePath) {
    Random random(40);
    for (int i = 0; i < 300; ++i) {
        CPath path;
        path.MoveTo(random.Pt(-100, 100));
        Pt const c1 = random.Pt(-100, 100);
        Pt const c2 = random.Pt(-100, 100);
        path.CurveTo(c1, c2, random.Pt(-100, 100));
        path.LineTo(random.Pt(-100, 100));
        PathMeasure const measure(path);
        CBezier const curve(path.mPts[0], path.mPts[1], path.mPts[2], path.mPts[3]);
        for (int k = 0; k <= 20; ++k) {
            PathMeasure::Place const place = measure.At(k / 20.0);
            ASSERT_NEAR(place.direction.Hypotenuse(), 1.0, 1e-15);
            if (place.element == 1) {
                double const t = std::min(place.parameter, 1.0 - 1e-7);
                Pt const step = curve.TPt(t + 1e-7) - curve.TPt(t);
                if (step.Hypotenuse() > 1e-6) { // not at a cusp
                    Pt const along = step / step.Hypotenuse();
                    ASSERT_NEAR(along.h * place.direction.h + along.v * place.direction.v, 1.0,
                                1e-3);
                }
            } else {
                TLine<double> const line(path.mPts[3], path.mPts[4]);
                ASSERT_SAME(place.direction, line.Delta() / line.Length());
            }
        }
    }
}

TEST_F(Measure, DirectionOfAMerePointIsNull) {
    CPath path;
    path.MoveTo(Pt(3, 3)).AddCtl(kPathLine).AddPt(Pt(3, 3));
    PathMeasure::Place const place = PathMeasure(path).At(0.0);
    EXPECT_EQ(place.element, 1U);
    EXPECT_SAME(place.direction, Pt(0, 0));
}

// ---------------------------------------------------------------------------------------------
// Many at once

TEST_F(Measure, ManyPlacesAtOnceAreTheSingleOnes) {
    Random random(41);
    for (int i = 0; i < 300; ++i) {
        CPath const path = RandomPath(random, random.Int(0, 60), random.OneIn(2));
        PathMeasure const measure(path);
        std::vector<double> fractions;
        for (int k = random.Int(0, 60); k > 0; --k) {
            fractions.push_back(random.OneIn(20) ? kNaN : RandomFraction(random));
        }
        int const order = random.Int(0, 2);
        if (order > 0) {
            fractions.erase(std::remove_if(fractions.begin(), fractions.end(),
                                           [](double t) { return std::isnan(t); }),
                            fractions.end());
            std::sort(fractions.begin(), fractions.end());
        }
        if (order > 1) {
            std::reverse(fractions.begin(), fractions.end());
        }
        std::size_t const count = fractions.size();
        std::vector<double> lengths;
        for (double const t : fractions) {
            lengths.push_back(t * measure.Length());
        }
        std::vector<Pt> points(count);
        std::vector<Pt> pointsAtLengths(count);
        std::vector<PathMeasure::Place> places(count);
        std::vector<PathMeasure::Place> placesAtLengths(count);
        measure.TPts(fractions.data(), count, points.data());
        measure.PtsAtLengths(lengths.data(), count, pointsAtLengths.data());
        measure.Places(fractions.data(), count, places.data());
        measure.PlacesAtLengths(lengths.data(), count, placesAtLengths.data());
        for (std::size_t k = 0; k < count; ++k) {
            PathMeasure::Place const place = measure.At(fractions[k]);
            ASSERT_SAME(points[k], place.point) << i;
            ASSERT_SAME(pointsAtLengths[k], place.point);
            for (PathMeasure::Place const& other : {places[k], placesAtLengths[k]}) {
                ASSERT_SAME(other.point, place.point);
                ASSERT_SAME(other.direction, place.direction);
                ASSERT_EQ(other.element, place.element);
                ASSERT_SAME(other.parameter, place.parameter);
            }
        }
    }
}

// ---------------------------------------------------------------------------------------------
// The object

TEST_F(Measure, DoesNotFollowThePath) {
    CPath path = Square();
    PathMeasure const measure(path);
    path.LineTo(Pt(500, 500)).LineTo(Pt(0, 900));
    path.clear();
    EXPECT_SAME(measure.Length(), 40.0);
    EXPECT_SAME(measure.TPt(0.375), Pt(10, 5));
    CPath piece;
    measure.GetTRange(0.25, 0.5, piece);
    EXPECT_SAME(piece.Length(), 10.0);
}

TEST_F(Measure, CopiesLiveOn) {
    PathMeasure kept{CPath()};
    {
        PathMeasure original(Square());
        PathMeasure const copy(original);
        kept = copy;
        PathMeasure const moved(std::move(original));
        EXPECT_SAME(original.Length(),
                    40.0); // NOLINT(bugprone-use-after-move): it stays an outline
        EXPECT_SAME(moved.Length(), 40.0);
    }
    EXPECT_SAME(kept.FindTValue(Pt(12, 5)), 0.375);
}

TEST_F(Measure, CutsAreAppendedToTheOutput) {
    CPath out;
    out.MoveTo(Pt(1, 1)).LineTo(Pt(2, 2)).MoveTo(Pt(3, 3));
    PathMeasure(Square()).GetLengthRange(5, 12, out);
    EXPECT_EQ(State(out), "0 1 0 1 1 (1, 1) (2, 2) (5, 0) (10, 0) (10, 2) at (10, 2) open "
                          "[1, 0, 10, 3]");
}

} // namespace
