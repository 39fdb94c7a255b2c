// SPDX-License-Identifier: MIT

// FlattenWithin keeps its distance from the curve, with hardly more points than the fewest.

#include "AccurateCurve.h"

#include "AccurateCurve_p.h"
#include "CBSpline.h"
#include "CBezier.h"
#include "CPath.h"
#include "CurveTruth.h"
#include "Finite.h"
#include "PolygonSupport.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TRect.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cfenv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using trammel::FlattenInto;
using trammel::FlattenTo;
using trammel::FlattenWithin;
using trammel::TightBounds;
using trammel_test::AnyCurve;
using trammel_test::At;
using trammel_test::ExpectTheSameInBothForms;
using trammel_test::IsFinite;
using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Length;
using trammel_test::PointsOf;
using trammel_test::PolygonLength;
using trammel_test::Random;
using trammel_test::SegmentDistance;
using trammel_test::SpecialCurves;
using trammel_test::Text;
using trammel_test::Wide;
using trammel_test::Widened;
using trammel_test::WidePt;

typedef TPoint<double> Pt;

/// The Hausdorff distance of the curve and the polyline, by dense samples of both.
Wide HausdorffDistance(CBezier const& curve, std::vector<Pt> const& points) {
    std::size_t const samples = std::max<std::size_t>(1500, 8 * points.size());
    std::vector<WidePt> onCurve;
    for (std::size_t i = 0; i <= samples; ++i) {
        onCurve.push_back(At(curve, static_cast<Wide>(i) / static_cast<Wide>(samples)));
    }
    Wide worst = 0;
    for (WidePt const& p : onCurve) {
        Wide least = Length(p - Widened(points.front()));
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            least = std::min(least, SegmentDistance(p, Widened(points[i]), Widened(points[i + 1])));
        }
        worst = std::max(worst, least);
    }
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        for (int k = 0; k < 4; ++k) {
            WidePt const a = Widened(points[i]);
            WidePt const p = a + (Widened(points[i + 1]) - a) * (k / 4.0L);
            Wide least = Widened(kInf);
            for (std::size_t j = 0; j + 1 < onCurve.size(); ++j) {
                least = std::min(least, SegmentDistance(p, onCurve[j], onCurve[j + 1]));
            }
            worst = std::max(worst, least);
        }
    }
    return worst;
}

/// The fewest points, by the longest chord that keeps the tolerance, one after another.
std::size_t FewestPoints(CBezier const& curve, double tolerance) {
    auto const keeps = [&](Wide a, Wide b) {
        for (int i = 1; i < 40; ++i) {
            if (SegmentDistance(At(curve, a + (b - a) * i / 40), At(curve, a), At(curve, b)) >
                Widened(tolerance)) {
                return false;
            }
        }
        return true;
    };
    std::size_t count = 1;
    for (Wide t = 0; t < 1; ++count) {
        if (keeps(t, 1)) {
            return count + 1;
        }
        Wide lo = t;
        Wide hi = 1;
        // The first failure from here on, roughly, then exactly.
        for (Wide step = 1e-3L; t + step < 1; step *= 1.3L) {
            if (!keeps(t, t + step)) {
                hi = t + step;
                break;
            }
            lo = t + step;
        }
        for (int i = 0; i < 30; ++i) {
            (keeps(t, (lo + hi) / 2) ? lo : hi) = (lo + hi) / 2;
        }
        t = lo;
    }
    return count;
}

TEST(FlattenWithin, KeepsTheDistanceBothWays) {
    Random random(31);
    for (int i = 0; i < 200; ++i) {
        CBezier const curve = AnyCurve(random);
        for (double const tolerance : {300.0, 120.0, 60.0, 30.0, 3.0, 0.3, 0.03}) {
            TPolygon<double> polygon;
            double const kept = FlattenWithin(curve, tolerance, polygon);
            ASSERT_EQ(kept, tolerance);
            std::vector<Pt> const points = PointsOf(polygon);
            ASSERT_TRUE(points.front() == curve.P0 && points.back() == curve.P3);
            // The samples are not so dense that they would find it all exactly.
            ASSERT_LE(HausdorffDistance(curve, points), 1.0001 * tolerance + 1e-5)
                << Text(curve) << " at " << tolerance;
        }
    }
}

TEST(FlattenWithin, KeepsFineTolerancesOnEveryChord) {
    Random random(32);
    for (int i = 0; i < 60; ++i) {
        CBezier const curve = AnyCurve(random);
        for (double const tolerance : {1e-3, 1e-5}) {
            TPolygon<double> polygon;
            ASSERT_EQ(FlattenWithin(curve, tolerance, polygon), tolerance);
            std::vector<Pt> const points = PointsOf(polygon);
            // Both run alike, so the chord that is near is among the next ones.
            Wide const limit = Widened(tolerance) * 1.0000001L + 1e-12L;
            std::size_t const samples = 20 * points.size();
            std::size_t chord = 0;
            for (std::size_t k = 0; k <= samples; ++k) {
                WidePt const p = At(curve, static_cast<Wide>(k) / static_cast<Wide>(samples));
                Wide least = Widened(kInf);
                std::size_t const begin = chord;
                for (std::size_t j = begin; j < begin + 30 && j + 1 < points.size(); ++j) {
                    Wide const distance =
                        SegmentDistance(p, Widened(points[j]), Widened(points[j + 1]));
                    if (distance < least) {
                        least = distance;
                        chord = j;
                    }
                    if (distance <= limit) {
                        break;
                    }
                }
                ASSERT_LE(least, limit) << Text(curve) << " at " << tolerance << ", " << k;
            }
        }
    }
}

TEST(FlattenWithin, TakesHardlyMoreThanTheFewestPoints) {
    Random random(33);
    std::size_t ours = 0;
    std::size_t fewest = 0;
    for (int i = 0; i < 150; ++i) {
        CBezier const curve(random.Point(100), random.Point(100), random.Point(100),
                            random.Point(100));
        for (double const tolerance : {1.0, 0.1, 0.01}) {
            TPolygon<double> polygon;
            FlattenWithin(curve, tolerance, polygon);
            auto const count = static_cast<std::size_t>(polygon.LastIndex() + 1);
            std::size_t const least = FewestPoints(curve, tolerance);
            EXPECT_LE(static_cast<double>(count), 1.25 * static_cast<double>(least) + 4)
                << Text(curve) << " at " << tolerance;
            ours += count;
            fewest += least;
        }
    }
    std::printf("%zu points, fewest %zu\n", ours, fewest);
    EXPECT_LE(static_cast<double>(ours), 1.1 * static_cast<double>(fewest));
}

/// Checks the flattening's ends and both distances; returns how many points there are.
std::size_t ExpectKept(CBezier const& curve, double tolerance) {
    TPolygon<double> polygon;
    EXPECT_EQ(FlattenWithin(curve, tolerance, polygon), tolerance);
    std::vector<Pt> const points = PointsOf(polygon);
    EXPECT_TRUE(points.front() == curve.P0 && points.back() == curve.P3);
    Wide const size = PolygonLength(curve);
    EXPECT_LE(HausdorffDistance(curve, points), 1.0001L * Widened(tolerance) + 1e-7L * size)
        << Text(curve) << " at " << tolerance;
    return points.size();
}

/// A quadratic curve, raised: any, nearly straight, doubling back on itself sharply or exactly.
CBezier AnyRaised(Random& random) {
    CBSpline c(random.Point(100), random.Point(100), random.Point(100));
    switch (random.Integer(0, 4)) {
    case 0: // along a line, or nearly
        c.P1 = c.P0 + (c.P2 - c.P0) * random.Uniform(-1, 2);
        break;
    case 1: // beyond an end: a turn back, as sharp as the disturbance is small
        c.P1 = c.P0 + (c.P2 - c.P0) * random.Uniform(1.2, 3) +
               random.Point(std::ldexp(1.0, -random.Integer(0, 40)));
        break;
    case 2: // out and back
        c.P2 = c.P0;
        break;
    default:
        break;
    }
    return trammel_detail::Raised(c);
}

// A few chords are found in another way than many, and some curves fall back from the one to the
// other. Each curve is flattened at tolerances just above and below the ones where the number of
// points changes.
TEST(FlattenWithin, KeepsTheDistanceWhereTheNumberOfPointsChanges) {
    Random random(37);
    std::array<int, 14> seen = {};
    for (int i = 0; i < 60; ++i) {
        CBezier curve = i % 3 == 0 ? AnyCurve(random) : AnyRaised(random);
        if (i % 3 == 2) { // a third difference that begins to matter
            curve.P1 += random.Point(std::ldexp(1.0, -random.Integer(0, 50)));
        }
        auto const count = [&](double tolerance) {
            TPolygon<double> polygon;
            FlattenWithin(curve, tolerance, polygon);
            return static_cast<std::size_t>(polygon.LastIndex() + 1);
        };
        for (std::size_t wanted = 2; wanted <= 12; ++wanted) {
            double fine = 1e-3;
            double coarse = 300.0;
            if (count(fine) <= wanted) {
                continue;
            }
            for (int step = 0; step < 60; ++step) {
                double const middle = std::sqrt(fine * coarse);
                (count(middle) > wanted ? fine : coarse) = middle;
            }
            ++seen[std::min<std::size_t>(ExpectKept(curve, coarse), 13)];
            ++seen[std::min<std::size_t>(ExpectKept(curve, fine), 13)];
        }
    }
    for (std::size_t points = 2; points < 13; ++points) {
        EXPECT_GT(seen[points], 20) << points;
    }
}

// A second difference of 400/3 tolerances: up to there a few chords are tried.
TEST(FlattenWithin, KeepsTheDistanceAtTheGreatestBendOfAFewChords) {
    for (double const width : {1.0, 40.0, 200.0, 1000.0, 1e5}) {
        for (double const third : {0.0, 1e-9, -1e-9, 3.0, -200.0}) {
            // Second differences of 400/3 and of that and the third difference.
            double const bend = 400.0 / 3.0;
            CBezier const curve({0, 0}, {width / 3, -bend}, {2 * width / 3, -bend}, {width, third});
            double tolerance = 1.0;
            for (int ulps = -2; ulps <= 2; ++ulps) {
                tolerance = 1.0 + ulps * 0x1p-52;
                ExpectKept(curve, tolerance);
            }
            ExpectKept(curve, 0.999);
            ExpectKept(curve, 1.001);
        }
    }
}

TEST(FlattenWithin, TakesTheChordThatKeepsTheTolerance) {
    // v = 12t(1 - t), so 3 above the chord.
    CBezier const curve({0, 0}, {10, 4}, {20, 4}, {30, 0});
    for (Pt const& place : {Pt(0, 0), Pt(7, -3)}) {
        CBezier const placed(curve.P0 + place, curve.P1 + place, curve.P2 + place,
                             curve.P3 + place);
        EXPECT_EQ(ExpectKept(placed, 3.0000001), 2U);
        EXPECT_EQ(ExpectKept(placed, 2.9999999), 3U);
    }
    // The ends are no farther apart than the tolerance, but the curve leaves them.
    EXPECT_GE(ExpectKept(CBezier({0, 0}, {4, 1}, {-3, 1}, {1, 0}), 1.0), 3U);
    EXPECT_GE(ExpectKept(CBezier({0, 0}, {9, 0.1}, {-8, 0.1}, {1, 0}), 1.0), 4U);
}

TEST(FlattenWithin, TakesNoMorePointsWhereTheToleranceIsCoarser) {
    Random random(39);
    for (int i = 0; i < 500; ++i) {
        CBezier const curve = AnyCurve(random);
        // The control polygon is at most 850 long, so the curve is nowhere farther from its chord.
        EXPECT_EQ(ExpectKept(curve, 850.0), curve.P0 == curve.P3 ? 1U : 2U) << Text(curve);
    }
}

// A chord may be as short as can be beside the tolerance.
TEST(FlattenWithin, KeepsToleranceCoarserThanTheChordIsLong) {
    Random random(40);
    std::array<int, 3> seen = {};
    for (int i = 0; i < 300; ++i) {
        double const gap = std::ldexp(1.0, -random.Integer(0, 400));
        CBezier const curve({0, 0}, random.Point(100), random.Point(100), random.Point(gap));
        for (double const tolerance : {90.0, 60.0, 40.0, 20.0}) {
            std::size_t const points = ExpectKept(curve, tolerance);
            ++seen[std::min<std::size_t>(points, 4) - 2];
        }
    }
    EXPECT_GT(seen[0], 100);
    EXPECT_GT(seen[1], 100);
    EXPECT_GT(seen[2], 10);
}

TEST(FlattenWithin, TakesHardlyMoreThanTheFewestPointsOfDrawnCurves) {
    Random random(38);
    std::size_t ours = 0;
    std::size_t fewest = 0;
    for (int i = 0; i < 300; ++i) {
        // A turn by up to a right angle, one arm up to three times as long as the other.
        double const turn = random.Uniform(0.3, 1.6);
        double const arm = random.Uniform(1, 3);
        Pt const first(random.Uniform(2, 30), 0);
        Pt const second = Pt(std::cos(turn), std::sin(turn)) * first.h * arm;
        CBezier curve({0, 0}, first * 0.6, first + second * 0.4, first + second);
        if (i % 2 == 0) { // a quadratic one
            curve.P1 = first * (2.0 / 3.0);
            curve.P2 = first + second * (1.0 / 3.0);
        }
        for (double const tolerance : {0.25, 0.1}) {
            std::size_t const count = ExpectKept(curve, tolerance);
            std::size_t const least = FewestPoints(curve, tolerance);
            EXPECT_LE(count, least + 1) << Text(curve) << " at " << tolerance;
            ours += count;
            fewest += least;
        }
    }
    std::printf("%zu points, fewest %zu\n", ours, fewest);
    EXPECT_LE(static_cast<double>(ours), 1.05 * static_cast<double>(fewest));
}

TEST(FlattenWithin, MakesStraightCurvesTheirEndsAndTurns) {
    TPolygon<double> line;
    FlattenWithin(CBezier({0, 0}, {1, 1}, {5, 5}, {9, 9}), 1e-6, line);
    EXPECT_EQ(Text(PointsOf(line)), "(0, 0) (9, 9)");
    TPolygon<double> back; // h = 9t(1 - t), up to 2.25
    FlattenWithin(CBezier({0, 0}, {3, 0}, {3, 0}, {0, 0}), 1e-6, back);
    ASSERT_EQ(back.LastIndex(), 2);
    EXPECT_NEAR(back.GetPt(1).h, 2.25, 1e-6);
    TPolygon<double> twice; // two turns
    FlattenWithin(CBezier({0, 0}, {30, 30}, {-20, -20}, {10, 10}), 1e-6, twice);
    EXPECT_EQ(twice.LastIndex(), 3);
    TPolygon<double> point;
    FlattenWithin(CBezier({1, 2}, {1, 2}, {1, 2}, {1, 2}), 1e-6, point);
    EXPECT_EQ(Text(PointsOf(point)), "(1, 2)");
}

TEST(FlattenWithin, DeliversWhatItAppends) {
    Random random(34);
    for (int i = 0; i < 200; ++i) {
        CBezier const curve = AnyCurve(random);
        double const tolerance = i % 2 == 0 ? 0.01 : 2.0; // many chords or few
        TPolygon<double> polygon;
        polygon.Append({-1, -1}, true);
        double const kept = FlattenWithin(curve, tolerance, polygon);
        std::vector<Pt> points = {Pt(-1, -1)};
        auto const add = [](Pt const& p, void* data) {
            auto& list = *static_cast<std::vector<Pt>*>(data);
            if (list.back() != p) {
                list.push_back(p);
            }
        };
        EXPECT_EQ(FlattenWithin(curve, tolerance, add, &points), kept);
        ASSERT_EQ(Text(PointsOf(polygon)), Text(points));
    }
    TPolygon<double> a;
    TPolygon<double> b;
    FlattenWithin(CBSpline({0, 0}, {30, 60}, {60, 0}), 0.01, a);
    FlattenWithin(CBezier({0, 0}, {20, 40}, {40, 40}, {60, 0}), 0.01, b);
    EXPECT_EQ(a.LastIndex(), b.LastIndex());
}

TEST(FlattenWithin, IsTheSameOnEveryProcessor) {
    ExpectTheSameInBothForms([] {
        Random random(36);
        std::vector<double> results;
        for (int i = 0; i < 1000; ++i) {
            CBezier const curve = i % 2 == 0 ? AnyCurve(random) : AnyRaised(random);
            for (double const tolerance : {10.0, 0.1, 1e-3, 1e-5}) {
                TPolygon<double> polygon;
                results.push_back(FlattenWithin(curve, tolerance, polygon));
                for (Pt const& p : PointsOf(polygon)) {
                    results.push_back(p.h);
                    results.push_back(p.v);
                }
            }
        }
        return results;
    });
    ExpectTheSameInBothForms([] {
        Random random(43);
        CPath path;
        for (int i = 0; i < 2000; ++i) {
            double const scale = random.Uniform(0.01, 1);
            CBezier const curve = (i % 7 < 4 ? AnyRaised(random) : AnyCurve(random)) * scale;
            path.MoveTo(curve.P0).CurveTo(curve.P1, curve.P2, curve.P3);
        }
        trammel::FlatContours flat;
        std::vector<double> results = {FlattenInto(path, 0.1, flat)};
        for (Pt const& p : flat.points) {
            results.push_back(p.h);
            results.push_back(p.v);
        }
        return results;
    });
}

// Points of a curve far from the origin coincide by rounding.
TEST(FlattenWithin, LeavesOutPointsEqualToTheirPredecessor) {
    TPolygon<double> polygon;
    double const far = 0x1p52;
    FlattenWithin(CBezier({far, far}, {far + 1, far + 5}, {far + 4, far + 6}, {far + 8, far}), 1e-6,
                  polygon);
    ASSERT_GT(polygon.LastIndex(), 5);
    ASSERT_LT(polygon.LastIndex(), 40);
    for (long i = 1; i <= polygon.LastIndex(); ++i) {
        ASSERT_NE(polygon.GetPt(i), polygon.GetPt(i - 1)) << i;
    }
}

TEST(FlattenWithin, ScalesExactlyByPowersOfTwo) {
    Random random(35);
    for (int i = 0; i < 200; ++i) {
        CBezier const curve = AnyCurve(random);
        double const tolerance = i % 2 == 0 ? 0.01 : 2.0; // many chords or few
        TPolygon<double> plain;
        FlattenWithin(curve, tolerance, plain);
        for (int const power : {-900, -101, 7, 99, 900}) {
            double const scale = std::ldexp(1.0, power);
            TPolygon<double> scaled;
            ASSERT_EQ(FlattenWithin(curve * scale, tolerance * scale, scaled), tolerance * scale);
            ASSERT_EQ(scaled.LastIndex(), plain.LastIndex()) << power;
            for (long k = 0; k <= plain.LastIndex(); ++k) {
                ASSERT_EQ(scaled.GetPt(k), plain.GetPt(k) * scale);
            }
        }
    }
}

// A coordinate that all points share does not tell how small the curve is. Its turns are found.
TEST(FlattenWithin, KeepsTheTurnsOfCurvesFarSmallerThanACommonCoordinate) {
    for (double const at : {0.0, 1.0, -0x1p300, kHuge}) {
        for (int const power : {-500, -700, -1000}) {
            double const unit = std::ldexp(1.0, power);
            CBezier const curve(Pt(at, 0), Pt(at, 3 * unit), Pt(at, 3 * unit), Pt(at, 0));
            std::vector<Pt> points;
            double const kept = FlattenWithin(
                curve, 1e-6 * unit,
                [](Pt const& p, void* data) { static_cast<std::vector<Pt>*>(data)->push_back(p); },
                &points);
            EXPECT_EQ(kept, 1e-6 * unit);
            double farthest = 0.0;
            for (Pt const& p : points) {
                EXPECT_EQ(p.h, at);
                farthest = std::max(farthest, p.v);
            }
            EXPECT_NEAR(farthest / unit, 2.25, 1e-6) << at << ' ' << power;
            TPolygon<double> polygon;
            EXPECT_EQ(FlattenWithin(curve, 1e-6 * unit, polygon), kept);
            EXPECT_EQ(Text(PointsOf(polygon)), Text(points));
        }
    }
}

TEST(FlattenWithin, MakesNoMorePointsThanTheLimit) {
    for (double const size : {1e-300, 1.0, 1e300}) {
        for (double const tolerance : {0.0, 1e-30 * size, 1e-15 * size, -1.0, kNaN}) {
            TPolygon<double> polygon;
            CBezier const curve = CBezier({0, 0}, {0, 1}, {1, 1}, {1, 0.3}) * size;
            double const kept = FlattenWithin(curve, tolerance, polygon);
            EXPECT_LE(polygon.LastIndex() + 1, trammel::kMostFlatPoints);
            EXPECT_GT(polygon.LastIndex() + 1, trammel::kMostFlatPoints * 9 / 10);
            EXPECT_GT(kept, 1e-12 * size);
            EXPECT_LT(kept, 1e-9 * size); // what so many points achieve
        }
    }
}

TEST(FlattenWithin, OfSpecialCurvesEndsAndIsNaNWithoutNumbers) {
    for (CBezier const& curve : SpecialCurves()) {
        for (double const tolerance : {1e-3, 1e290, kInf}) {
            long count = 0;
            double const kept = FlattenWithin(
                curve, tolerance, [](Pt const&, void* n) { ++*static_cast<long*>(n); }, &count);
            ASSERT_EQ(std::isnan(kept), !IsFinite(curve)) << Text(curve);
            ASSERT_GE(count, 2);
            ASSERT_LE(count, IsFinite(curve) ? trammel::kMostFlatPoints : 2);
            if (count > 100) {
                break; // the others take their time, too
            }
        }
    }
}

TEST(FlattenWithin, MakesLinesOfAPath) {
    CPath path;
    path.MoveTo({0, 0}).LineTo({10, 0}).CurveTo({20, 0}, {20, 10}, {10, 10}).ClosePath();
    path.CurveTo({0, 30}, {10, 30}, {10, 20}); // without a move: from (10, 10)
    CPath lines;
    lines.MoveTo({-5, -5}).LineTo({-5, -6});
    EXPECT_EQ(FlattenWithin(path, 0.5, lines), 0.5);
    TPolygon<double> first;
    TPolygon<double> second;
    FlattenWithin(CBezier({10, 0}, {20, 0}, {20, 10}, {10, 10}), 0.5, first);
    FlattenWithin(CBezier({10, 10}, {0, 30}, {10, 30}, {10, 20}), 0.5, second);
    std::string points =
        "(-5, -5) (-5, -6) (0, 0) " + Text(PointsOf(first)) + " " + Text(PointsOf(second));
    EXPECT_EQ(Text(lines.mPts), points);
    EXPECT_FALSE(lines.TestContents(CPath::kContainsCurves));
    EXPECT_EQ(std::count(lines.mCtls.begin(), lines.mCtls.end(), char{kPathMove}), 3);
    EXPECT_EQ(std::count(lines.mCtls.begin(), lines.mCtls.end(), char{kPathClose}), 1);
    EXPECT_EQ(lines.Bounds(),
              TRect<double>(-5, -6, TightBounds(lines).right, TightBounds(lines).bottom));

    CPath itself = path;
    FlattenWithin(itself, 0.5, itself);
    EXPECT_EQ(itself.mPts.size(), path.mPts.size() + lines.mPts.size() - 2);
    CPath nothing;
    EXPECT_EQ(FlattenWithin(CPath(), 0.5, nothing), 0.0);
    EXPECT_EQ(nothing.size(), 0U);
    path.CurveTo({0, kNaN}, {10, 30}, {10, 20.5});
    EXPECT_TRUE(std::isnan(FlattenWithin(path, 0.5, nothing)));
}

TEST(FlattenWithin, OfAPathIsNaNWhereverTheCurveWithoutNumbersIs) {
    for (int bad = 0; bad < 3; ++bad) {
        CPath path;
        path.MoveTo({0, 0});
        for (int i = 0; i < 3; ++i) {
            path.CurveTo({0, i == bad ? kInf : 20.0}, {10, 30}, {10.0 * i, 20});
        }
        CPath lines;
        EXPECT_TRUE(std::isnan(FlattenWithin(path, 0.5, lines))) << bad;
    }
}

// ------------------------------------------------------------------------------------------------
// FlattenInto, FlattenTo

std::vector<Pt> Into(CBezier const& curve, double tolerance) {
    std::size_t const count = FlattenInto(curve, tolerance, nullptr, 0).count;
    std::vector<Pt> points(count);
    EXPECT_EQ(FlattenInto(curve, tolerance, points.data(), count).count, count);
    return points;
}

/// The points of FlattenWithin, none left out.
std::vector<Pt> Delivered(CBezier const& curve, double tolerance) {
    std::vector<Pt> points;
    FlattenWithin(
        curve, tolerance,
        [](Pt const& p, void* data) { static_cast<std::vector<Pt>*>(data)->push_back(p); },
        &points);
    return points;
}

TEST(FlattenInto, StoresThePointsOfFlattenWithin) {
    Random random(41);
    for (int i = 0; i < 1000; ++i) {
        double const size = std::ldexp(1.0, random.Integer(-300, 300));
        CBezier const curve = AnyCurve(random) * size;
        for (double const tolerance : {100.0 * size, 3.0 * size, 0.1 * size, 1e-3 * size}) {
            std::vector<Pt> const points = Delivered(curve, tolerance);
            ASSERT_EQ(Text(Into(curve, tolerance)), Text(points)) << Text(curve);
            std::vector<Pt> handed;
            double const kept =
                FlattenTo(curve, tolerance, [&handed](Pt const& p) { handed.push_back(p); });
            ASSERT_EQ(Text(handed), Text(points)) << Text(curve);
            ASSERT_EQ(kept, FlattenInto(curve, tolerance, nullptr, 0).distance);
        }
    }
}

TEST(FlattenInto, StoresAsManyPointsAsThereIsRoomForAndCountsAll) {
    Pt const untouched(-7, -7);
    for (double const tolerance : {300.0, 3.0, 0.5, 0.1, 1e-2, 1e-3}) {
        CBezier const curve({0, 0}, {30, 80}, {70, -90}, {100, 20});
        std::vector<Pt> const all = Delivered(curve, tolerance);
        for (std::size_t capacity = 0; capacity < all.size() + 12; ++capacity) {
            std::vector<Pt> points(capacity + 10, untouched);
            trammel::Flattened const result =
                FlattenInto(curve, tolerance, points.data(), capacity);
            ASSERT_EQ(result.count, all.size());
            ASSERT_EQ(result.distance, tolerance);
            std::size_t const stored = std::min(capacity, all.size());
            ASSERT_TRUE(
                std::equal(all.begin(), all.begin() + static_cast<long>(stored), points.begin()));
            for (std::size_t i = capacity; i < points.size(); ++i) {
                ASSERT_EQ(points[i], untouched) << capacity;
            }
        }
    }
}

TEST(FlattenInto, OfSpecialCurvesEndsWithTheirEndPoints) {
    for (CBezier const& curve : SpecialCurves()) {
        for (double const tolerance : {1.0, 1e290, kInf}) {
            std::vector<Pt> points(200);
            trammel::Flattened const result = FlattenInto(curve, tolerance, points.data(), 200);
            ASSERT_EQ(std::isnan(result.distance), !IsFinite(curve)) << Text(curve);
            ASSERT_GE(result.count, 2U);
            ASSERT_LE(result.count, static_cast<std::size_t>(trammel::kMostFlatPoints));
            ASSERT_EQ(Text(points.front()), Text(curve.P0));
            if (result.count <= 200) {
                ASSERT_EQ(Text(points[result.count - 1]), Text(curve.P3));
            } else {
                break; // finer ones take their time, too
            }
        }
    }
}

TEST(FlattenInto, OfAToleranceWithoutMeaningTakesTheFinest) {
    CBezier const curve({0, 0}, {1, 2}, {3, -1}, {4, 1});
    std::size_t const finest = FlattenInto(curve, 0.0, nullptr, 0).count;
    EXPECT_GT(finest, 60000U);
    EXPECT_EQ(FlattenInto(curve, -1.0, nullptr, 0).count, finest);
    EXPECT_EQ(FlattenInto(curve, kNaN, nullptr, 0).count, finest);
    EXPECT_EQ(FlattenInto(curve, kInf, nullptr, 0).count, 2U);
}

/// Writes contours as text, by the callbacks.
struct ContourText {
    std::string text;
    void Begin(Pt const& p) { text += "[" + Text(p); }
    void Point(Pt const& p) { text += " " + Text(p); }
    void End(bool closed) { text += closed ? " z]" : "]"; }
};

std::string TextOf(trammel::FlatContours const& flat) {
    ContourText out;
    std::size_t begin = 0;
    for (trammel::FlatContour const& contour : flat.contours) {
        EXPECT_EQ(contour.begin, begin);
        out.Begin(flat.points[contour.begin]);
        for (std::size_t i = contour.begin + 1; i < contour.end; ++i) {
            out.Point(flat.points[i]);
        }
        out.End(contour.closed);
        begin = contour.end;
    }
    EXPECT_EQ(begin, flat.points.size());
    return out.text;
}

TEST(FlattenInto, OfAPathTellsContoursAndWhetherTheyAreClosed) {
    CPath path;
    path.MoveTo({9, 9}).MoveTo({0, 0}).LineTo({10, 0}).CurveTo({10, 4}, {10, 8}, {10, 12});
    path.ClosePath()
        .CurveTo({8, 9.5}, {5, 5.5}, {3, 3})
        .MoveTo({5, 5})
        .LineTo({6, 5})
        .MoveTo({7, 7});
    trammel::FlatContours flat;
    for (int i = 0; i < 2; ++i) { // the second call replaces what the first one stored
        EXPECT_EQ(FlattenInto(path, 0.5, flat), 0.5);
        EXPECT_EQ(TextOf(flat), "[(0, 0) (10, 0) (10, 12) z][(10, 12) (3, 3)][(5, 5) (6, 5)]");
    }
    ContourText handed;
    EXPECT_EQ(FlattenTo(path, 0.5, handed), 0.5);
    EXPECT_EQ(handed.text, TextOf(flat));
    EXPECT_EQ(FlattenInto(CPath(), 0.5, flat), 0.0);
    EXPECT_TRUE(flat.points.empty() && flat.contours.empty());
}

TEST(FlattenInto, OfAPathHasThePointsOfItsCurves) {
    Random random(42);
    trammel::FlatContours flat; // keeps its memory, for shorter paths and longer ones
    for (int i = 0; i < 50; ++i) {
        CPath path;
        ContourText expected;
        for (int contour = 0; contour < 3; ++contour) {
            Pt at = random.Point(100);
            path.MoveTo(at);
            expected.Begin(at);
            int const segments = random.Integer(1, 60);
            for (int k = 0; k < segments; ++k) {
                CBezier curve = AnyCurve(random);
                curve = CBezier(at, curve.P1, curve.P2, curve.P3);
                if (k % 5 == 2) { // it goes on in one direction, at an uneven speed
                    Pt const ahead = random.Point(1);
                    Pt const slow = at + ahead * 0.5;
                    Pt const fast = slow + (ahead + random.Point(0.3)) * 15.0;
                    curve = CBezier(at, slow, fast, fast + (ahead + random.Point(0.3)) * 10.0);
                }
                if (i % 3 == 2 || k % 3 == 1) {
                    curve = trammel_detail::Raised(CBSpline(at, curve.P1, curve.P3));
                }
                if (curve.P3 == at) {
                    continue; // a path absorbs it
                }
                if (k % 4 == 3) {
                    path.LineTo(curve.P3);
                    expected.Point(curve.P3);
                } else {
                    path.CurveTo(curve.P1, curve.P2, curve.P3);
                    std::vector<Pt> const points = Into(curve, 0.3);
                    for (std::size_t p = 1; p < points.size(); ++p) {
                        expected.Point(points[p]);
                    }
                }
                at = curve.P3;
            }
            if (contour % 2 == 0) {
                path.ClosePath();
            }
            expected.End(contour % 2 == 0);
        }
        EXPECT_EQ(FlattenInto(path, 0.3, flat), 0.3);
        ASSERT_TRUE(TextOf(flat) == expected.text) << i;
        ContourText handed;
        FlattenTo(path, 0.3, handed);
        ASSERT_TRUE(handed.text == expected.text) << i;
    }
}

TEST(FlattenInto, StaysWithinItsMemoryWhicheverWayNumbersAreRounded) {
    std::vector<int> const directions = {
        FE_TONEAREST,
#ifdef FE_DOWNWARD
        FE_DOWNWARD,
#endif
#ifdef FE_TOWARDZERO
        FE_TOWARDZERO,
#endif
#ifdef FE_UPWARD
        FE_UPWARD,
#endif
    };
    CBezier const curve({0, 0}, {300, 0}, {390, 0}, {400, 100});
    for (int const direction : directions) {
        std::fesetround(direction);
        std::vector<Pt> const points = Into(curve, 0.1);
        std::fesetround(FE_TONEAREST);
        EXPECT_GE(points.size(), 20U) << direction;
        EXPECT_LE(points.size(), 40U) << direction;
        EXPECT_EQ(points.back(), Pt(400, 100)) << direction;
    }
}

TEST(FlattenInto, PathThatBeginsWithACurveBeginsAtTheOrigin) {
    CPath path;
    CPath begun;
    begun.MoveTo(Pt(0, 0));
    for (int i = 0; i < 9; ++i) {
        Pt const at(10.0 * i, 0);
        begun.CurveTo(at + Pt(2, 8), at + Pt(8, -8), at + Pt(10, 0));
    }
    path.mCtls.assign(begun.mCtls.begin() + 1, begun.mCtls.end());
    path.mPts.assign(begun.mPts.begin() + 1, begun.mPts.end());
    trammel::FlatContours flat;
    trammel::FlatContours expected;
    FlattenInto(path, 0.01, flat);
    FlattenInto(begun, 0.01, expected);
    EXPECT_EQ(TextOf(flat), TextOf(expected));
}

TEST(FlattenInto, PathEndsWhereItsPointsDo) {
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(5, 5));
    path.mCtls.insert(path.mCtls.end(), {kPathCurve, kPathLine});
    path.mPts.insert(path.mPts.end(), {Pt(6, 6), Pt(7, 7)}); // a curve takes three
    trammel::FlatContours flat;
    FlattenInto(path, 0.1, flat);
    trammel::FlatContours expected;
    FlattenInto(CPath().MoveTo(Pt(0, 0)).LineTo(Pt(5, 5)), 0.1, expected);
    EXPECT_EQ(TextOf(flat), TextOf(expected));
}

} // namespace
