// SPDX-License-Identifier: MIT

#include "FitCurves.h"

#include "HausdorffJudge.h"
#include "ShortMemory.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <new>
#include <random>
#include <vector>

namespace {

using trammel::CurveFitter;
using trammel::FitCurves;

typedef TPoint<double> Pt;
typedef std::vector<Pt> Pts;

constexpr double kPi = 3.14159265358979323846;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

long Count(CPath const& path, CPathCode code) {
    return std::count(path.mCtls.begin(), path.mCtls.end(), static_cast<char>(code));
}

Pts Sampled(int n, std::function<Pt(double)> const& curve) {
    Pts points;
    for (int i = 0; i < n; ++i) {
        points.push_back(curve(static_cast<double>(i) / (n - 1)));
    }
    return points;
}
Pts Circle(int n, double radius) {
    Pts points = Sampled(n, [&](double t) {
        return Pt(radius * std::cos(2 * kPi * t), radius * std::sin(2 * kPi * t));
    });
    points.back() = points.front();
    return points;
}
Pt Handwriting(double t) {
    double const a = 40 * t;
    return Pt(8 * a + 30 * std::sin(a * 1.1) + 10 * std::sin(2.3 * a + 1),
              60 * std::sin(a) + 25 * std::sin(1.7 * a) + 8 * std::sin(3.1 * a));
}
/// The corners of a polygon with many points on its sides, the corners among them.
Pts Sides(Pts const& corners, int points) {
    Pts all = {corners[0]};
    for (std::size_t i = 1; i < corners.size(); ++i) {
        for (int k = 1; k < points; ++k) {
            all.push_back(corners[i - 1] + (corners[i] - corners[i - 1]) * (1.0 * k / points));
        }
        all.push_back(corners[i]);
    }
    return all;
}
/// A random stroke of one of several kinds, about as large as `size`.
Pts RandomStroke(std::mt19937_64& random, double size) {
    std::uniform_real_distribution<double> unit(-1, 1);
    std::normal_distribution<double> normal;
    int const kind = static_cast<int>(random() % 6);
    auto const n = static_cast<int>(2 + random() % 300);
    double const noise = random() % 2 == 0 ? 0.0 : 0.005;
    double const a = unit(random) * 9;
    double const b = unit(random) * 9;
    double const c = unit(random);
    Pt walker;
    Pts const points = Sampled(n, [&](double t) {
        Pt p;
        switch (kind) {
        case 0: // waves
            p = Pt(t * 2 - 1, 0.5 * std::sin(a * t) + 0.2 * std::sin(b * t));
            break;
        case 1: // loops
            p = Pt(0.8 * std::sin(a * t), 0.8 * std::cos(b * t + c));
            break;
        case 2: // cusps
            p = Pt(std::pow(t - 0.5, 2) * 3, std::pow(t - 0.5, 3) * 8 + c * t);
            break;
        case 3: // a walk
            p = walker += Pt(unit(random), unit(random)) * 0.1;
            break;
        case 4: // to and fro
            p = Pt(std::sin(3 * a * t), c * std::sin(3 * a * t));
            break;
        default: // noise
            p = Pt(unit(random), unit(random));
            break;
        }
        return p + Pt(normal(random), normal(random)) * noise;
    });
    Pts scaled;
    for (Pt const& p : points) {
        scaled.push_back(p * size);
    }
    return scaled;
}

/// The turn at each joint of two elements, as the sine of the angle between their directions.
std::vector<double> TurnsAtJoints(CPath const& path) {
    hausdorff::Elements const elements = hausdorff::ElementsOf(path);
    std::vector<double> turns;
    for (std::size_t i = 1; i < elements.size(); ++i) {
        Pt const in = elements[i - 1].p[3] - elements[i - 1].p[2];
        Pt const out = elements[i].p[1] - elements[i].p[0];
        turns.push_back((in.h * out.v - in.v * out.h) / std::hypot(in.h, in.v) /
                        std::hypot(out.h, out.v));
    }
    return turns;
}

TEST(FitCurves, KeepsTheDistanceThatItReturnsAndItIsWithinTheTolerance) {
    std::mt19937_64 random(20240611);
    for (int i = 0; i < 200; ++i) {
        double const size = std::ldexp(1.0, static_cast<int>(random() % 60) - 30);
        Pts const stroke = RandomStroke(random, size);
        double const tolerance = size * std::pow(10.0, -1.0 - 0.015 * static_cast<double>(i));
        CPath fit;
        double const kept = FitCurves(stroke, tolerance, 1.0, fit);
        EXPECT_LE(kept, tolerance) << i;
        EXPECT_TRUE(
            hausdorff::Keeps(hausdorff::ElementsOf(stroke), hausdorff::ElementsOf(fit), kept))
            << i << " " << tolerance / size;
    }
}

TEST(FitCurves, KeepsTheDistanceOfAnExcursionBetweenTheSamples) {
    // One point of many is far away: a check of some points would not find it.
    for (int at : {37, 200, 401, 555, 803}) {
        Pts stroke = Sampled(1000, [](double t) { return Pt(100 * t, 10 * std::sin(4 * t)); });
        stroke[static_cast<std::size_t>(at)] += Pt(0, 3);
        CPath fit;
        double const kept = FitCurves(stroke, 0.5, kPi, fit);
        EXPECT_LE(kept, 0.5);
        EXPECT_TRUE(
            hausdorff::Keeps(hausdorff::ElementsOf(stroke), hausdorff::ElementsOf(fit), kept));
    }
}

TEST(FitCurves, KeepsTheDistanceFarFromTheOrigin) {
    Pts stroke = Sampled(4000, Handwriting);
    for (Pt& p : stroke) {
        p += Pt(1e9, -3e9);
    }
    CPath fit;
    double const kept = FitCurves(stroke, 0.1, 1.0, fit);
    EXPECT_LE(kept, 0.1);
    EXPECT_TRUE(hausdorff::Keeps(hausdorff::ElementsOf(stroke), hausdorff::ElementsOf(fit), kept));
    EXPECT_LT(fit.mCtls.size(), 80U);
}

TEST(FitCurves, BeginsAndEndsAtTheEndsBitForBit) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 100; ++i) {
        Pts const stroke = RandomStroke(random, 1.0);
        CPath fit;
        FitCurves(stroke, 0.1, 1.0, fit);
        EXPECT_EQ(fit.mPts.front(), stroke.front());
        EXPECT_EQ(fit.mPts.back(), stroke.back());
        EXPECT_EQ(Count(fit, kPathClose), 0);
        EXPECT_EQ(Count(fit, kPathMove), 1);
    }
}

TEST(FitCurves, ClosesAStrokeThatReturnsToItsStartAndIsSmoothThere) {
    CPath fit;
    FitCurves(Circle(1000, 100), 0.1, 1.0, fit);
    EXPECT_EQ(fit.mCtls.back(), kPathClose);
    EXPECT_EQ(fit.mPts.back(), fit.mPts.front());
    EXPECT_EQ(fit.mPts.front(), Pt(100, 0));
    Pt const out = fit.mPts[1] - fit.mPts[0];
    Pt const in = fit.mPts.back() - fit.mPts[fit.mPts.size() - 2];
    EXPECT_NEAR((in.h * out.v - in.v * out.h) / std::hypot(in.h, in.v) / std::hypot(out.h, out.v),
                0, 1e-12);
}

TEST(FitCurves, MakesFewCurves) {
    CPath fit;
    FitCurves(Circle(10000, 100), 0.0271, 1.0, fit); // the distance of the usual four quarters
    EXPECT_EQ(Count(fit, kPathCurve), 4);
    EXPECT_EQ(Count(fit, kPathLine), 0);
    fit.clear();
    // A parabola is one curve.
    FitCurves(Sampled(500, [](double t) { return Pt(100 * t, 80 * t * t); }), 0.05, 1.0, fit);
    EXPECT_EQ(Count(fit, kPathCurve), 1);
    EXPECT_EQ(Count(fit, kPathLine), 0);
    fit.clear();
    FitCurves(Sampled(10000, Handwriting), 1.0, 1.0, fit);
    EXPECT_LE(Count(fit, kPathCurve) + Count(fit, kPathLine), 40);
}

TEST(FitCurves, CurvesMeetSmoothly) {
    CPath fit;
    FitCurves(Sampled(5000, Handwriting), 0.5, 4.0, fit);
    EXPECT_EQ(Count(fit, kPathLine), 0);
    for (double const turn : TurnsAtJoints(fit)) {
        EXPECT_NEAR(turn, 0.0, 1e-12);
    }
}

TEST(FitCurves, KeepsCornersBitForBit) {
    Pts const corners = {Pt(0.1, 0.3), Pt(103, 7), Pt(90, 55), Pt(140, 101), Pt(3, 99)};
    for (int points : {1, 3, 50, 1000}) {
        CPath fit;
        FitCurves(Sides(corners, points), 0.3, 0.6, fit);
        EXPECT_EQ(fit.mPts, corners) << points;
    }
    // Between curves, too
    Pts stroke =
        Sampled(300, [](double t) { return Pt(40 * std::cos(2 * t), 40 * std::sin(2 * t)); });
    Pt const corner = stroke.back();
    for (int i = 1; i < 300; ++i) {
        stroke.push_back(corner + Pt(0.1 * i, 0.001 * i * i));
    }
    CPath fit;
    FitCurves(stroke, 0.1, 0.6, fit);
    EXPECT_EQ(std::count(fit.mPts.begin(), fit.mPts.end(), corner), 1);
}

TEST(FitCurves, MakesStraightRunsLines) {
    Pts const square = {Pt(0, 0), Pt(100, 0), Pt(100, 100), Pt(0, 100), Pt(0, 0)};
    CPath fit;
    FitCurves(Sides(square, 500), 0.5, 1.0, fit);
    EXPECT_EQ(fit.mPts, Pts(square.begin(), square.end() - 1)); // the close draws the last side
    EXPECT_EQ(fit.mCtls.back(), kPathClose);
    // Two sides with half circles between them
    Pts const stadium = Sampled(5000, [](double t) {
        double const s = t * (400 + 100 * kPi);
        if (s < 200) {
            return Pt(s, 0);
        }
        if (s < 200 + 50 * kPi) {
            return Pt(200 + 50 * std::sin(s / 50 - 4), 50 - 50 * std::cos(s / 50 - 4));
        }
        if (s < 400 + 50 * kPi) {
            return Pt(400 + 50 * kPi - s, 100);
        }
        double const a = (s - 400) / 50 - kPi;
        return Pt(-50 * std::sin(a), 50 + 50 * std::cos(a));
    });
    fit.clear();
    FitCurves(stadium, 0.1, 1.0, fit);
    EXPECT_EQ(Count(fit, kPathLine), 2);
    for (hausdorff::Element const& e : hausdorff::ElementsOf(fit)) {
        if (e.isLine) {
            EXPECT_NEAR(e.p[0].v, e.p[3].v, 0.1);
            EXPECT_GT(std::abs(e.p[0].h - e.p[3].h), 190);
        }
    }
    // They meet the curves smoothly.
    for (double const turn : TurnsAtJoints(fit)) {
        EXPECT_NEAR(turn, 0.0, 1e-9);
    }
}

TEST(FitCurves, LeavesOutEqualPointsOnlyAtToleranceZero) {
    Pts const stroke = {Pt(0, 0), Pt(0, 0), Pt(1, 3), Pt(1, 3), Pt(1, 3), Pt(4, 4), Pt(-1, 7)};
    Pts const distinct = {Pt(0, 0), Pt(1, 3), Pt(4, 4), Pt(-1, 7)};
    for (double const tolerance : {0.0, -1.0, kNaN}) {
        CPath fit;
        EXPECT_EQ(FitCurves(stroke, tolerance, 1.0, fit), 0.0);
        EXPECT_EQ(fit.mPts, distinct);
        EXPECT_EQ(Count(fit, kPathLine), 3);
    }
}

TEST(FitCurves, TakesAnyCoordinatesAndTolerances) {
    CPath fit;
    EXPECT_EQ(FitCurves({}, 1.0, 1.0, fit), 0.0);
    EXPECT_TRUE(fit.mCtls.empty());
    FitCurves({Pt(kNaN, 1), Pt(2, kInfinity)}, 1.0, 1.0, fit);
    EXPECT_TRUE(fit.mCtls.empty());
    EXPECT_EQ(FitCurves({Pt(1, 2), Pt(1, 2), Pt(kNaN, 2)}, 1.0, 1.0, fit), 0.0);
    EXPECT_EQ(fit.mPts, Pts{Pt(1, 2)});
    EXPECT_EQ(fit.mCtls, std::vector<char>{kPathMove});
    fit.clear();
    EXPECT_EQ(FitCurves({Pt(1, 2), Pt(kInfinity, 2), Pt(3, 4)}, 1.0, 1.0, fit), 0.0);
    EXPECT_EQ(fit.mPts, (Pts{Pt(1, 2), Pt(3, 4)}));

    Pts const line = Sampled(100, [](double t) { return Pt(3 * t, 4 * t); });
    fit.clear();
    EXPECT_LE(FitCurves(line, 1e-9, 1.0, fit), 1e-9);
    EXPECT_EQ(fit.mPts, (Pts{Pt(0, 0), Pt(3, 4)}));

    // To and fro: three times along one line
    fit.clear();
    Pts const fro = {Pt(0, 0), Pt(5, 0), Pt(10, 0), Pt(6, 0), Pt(2, 0), Pt(8, 0), Pt(20, 0)};
    EXPECT_LE(FitCurves(fro, 0.1, 1.0, fit), 0.1);
    EXPECT_EQ(fit.mPts, (Pts{Pt(0, 0), Pt(10, 0), Pt(2, 0), Pt(20, 0)}));

    // All within the tolerance
    fit.clear();
    EXPECT_LE(FitCurves(Sampled(50, Handwriting), kInfinity, 1.0, fit), 1000.0);
    EXPECT_EQ(fit.mPts.size(), 2U);
}

// All points lie within a step of the search for corners.
TEST(FitCurves, FitsALoopThatIsSmallBesideTheTolerance) {
    for (double const tolerance : {1.0, 3.0, 100.0, 1e6, 1e300}) {
        CPath path;
        EXPECT_LE(FitCurves({Pt(0, 0), Pt(1, 0), Pt(1, 1), Pt(0, 0)}, tolerance, 0.5, path),
                  tolerance);
        ASSERT_FALSE(path.mPts.empty());
        EXPECT_EQ(path.mPts.front(), Pt(0, 0));
        EXPECT_EQ(path.mCtls.back(), kPathClose);
    }
}

TEST(FitCurves, GivesAStrokeScaledByAPowerOfTwoTheSameFitScaled) {
    Pts const stroke = Sampled(400, Handwriting);
    CPath fit;
    double const kept = FitCurves(stroke, 0.5, 1.0, fit);
    for (int const exponent : {-900, -300, -100, 60, 100, 300, 900}) {
        double const scale = std::ldexp(1.0, exponent);
        Pts scaled;
        for (Pt const& p : stroke) {
            scaled.push_back(p * scale);
        }
        CPath fitScaled;
        EXPECT_EQ(FitCurves(scaled, 0.5 * scale, 1.0, fitScaled), kept * scale);
        ASSERT_EQ(fitScaled.mCtls, fit.mCtls) << exponent;
        for (std::size_t i = 0; i < fit.mPts.size(); ++i) {
            EXPECT_EQ(fitScaled.mPts[i], fit.mPts[i] * scale) << exponent;
        }
    }
    // Details beside numbers that are out of all proportion
    CPath far;
    EXPECT_EQ(FitCurves({Pt(0, 0), Pt(10, 30), Pt(20, 0), Pt(1e300, 0)}, 1.0, 1.0, far), 0.0);
    EXPECT_EQ(far.mPts.size(), 4U);
    // Numbers at the end of the range
    Pts const wild = {Pt(1e308, -1e308), Pt(-1e308, 5e307), Pt(1e-308, 3), Pt(5e-324, 1e308)};
    for (double const tolerance : {0.0, 1.0, 1e300, 1e308}) {
        CPath fitWild;
        EXPECT_LE(FitCurves(wild, tolerance, 1.0, fitWild), tolerance);
        EXPECT_EQ(fitWild.mPts.front(), wild.front());
        EXPECT_EQ(fitWild.mPts.back(), wild.back());
    }
}

TEST(FitCurves, MakesNoCornersBeyondAHalfTurnAndOfEveryPointAtZero) {
    Pts const corners = {Pt(0, 0), Pt(10, 0), Pt(10, 10), Pt(20, 10), Pt(20, 20)};
    CPath fit;
    FitCurves(corners, 0.01, 0.0, fit);
    EXPECT_EQ(fit.mPts, corners);
    for (double const angle : {4.0, kNaN}) {
        fit.clear();
        FitCurves(Circle(100, 10), 1.0, angle, fit);
        EXPECT_EQ(Count(fit, kPathLine), 0);
    }
}

TEST(FitCurves, LeavesThePathAsBeforeWithoutMemory) {
    Pts const stroke = Sampled(2000, Handwriting);
    CPath before;
    before.MoveTo(Pt(1, 1)).LineTo(Pt(2, 3));
    bool failed = true;
    for (long allocations = 0; failed; ++allocations) {
        CPath fit = before;
        failed = false;
        try {
            trammel_test::ShortMemory const memory(allocations);
            FitCurves(stroke, 0.5, 1.0, fit);
        } catch (std::bad_alloc const&) {
            failed = true;
        }
        if (failed) {
            EXPECT_EQ(fit.mPts, before.mPts);
            EXPECT_EQ(fit.mCtls, before.mCtls);
        } else {
            EXPECT_EQ(fit.mPts[0], Pt(1, 1));
            EXPECT_EQ(fit.mPts[2], stroke[0]);
        }
    }
}

TEST(CurveFitter, KeepsTheToleranceAtEveryMoment) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 12; ++i) {
        Pts stroke;
        while (stroke.size() < 700) {
            Pts const more = RandomStroke(random, 100.0);
            Pt const shift = stroke.empty() ? Pt() : stroke.back() - more.front();
            for (Pt const& p : more) {
                stroke.push_back(p + shift);
            }
        }
        double const tolerance = i % 2 == 0 ? 1.0 : 0.01;
        CurveFitter fitter(tolerance, 1.0);
        for (std::size_t k = 0; k < stroke.size(); ++k) {
            fitter.Add(stroke[k]);
            if (k % 299 == 5) {
                Pts const soFar(stroke.begin(), stroke.begin() + static_cast<long>(k) + 1);
                hausdorff::Elements all = hausdorff::ElementsOf(fitter.Finished());
                hausdorff::Elements const tail = hausdorff::ElementsOf(fitter.Tail());
                all.insert(all.end(), tail.begin(), tail.end());
                EXPECT_TRUE(hausdorff::Keeps(hausdorff::ElementsOf(soFar), all, tolerance));
            }
        }
        fitter.Finish();
        EXPECT_LE(fitter.Distance(), tolerance);
        EXPECT_TRUE(hausdorff::Keeps(hausdorff::ElementsOf(stroke),
                                     hausdorff::ElementsOf(fitter.Finished()), fitter.Distance()));
        EXPECT_EQ(fitter.Finished().mPts.front(), stroke.front());
        EXPECT_EQ(fitter.Finished().mPts.back(), stroke.back());
        EXPECT_TRUE(fitter.Tail().mCtls.empty());
    }
}

TEST(CurveFitter, NeverChangesWhatIsFinishedAndGoesOnWhereItEnds) {
    CurveFitter fitter(0.2, 4.0);
    CPath before;
    long steps = 0;
    for (int i = 0; i < 5000; ++i) {
        fitter.Add(Handwriting(i * 0.0002));
        CPath const& now = fitter.Finished();
        ASSERT_GE(now.mCtls.size(), before.mCtls.size());
        if (now.mCtls.size() > before.mCtls.size()) {
            ++steps;
            EXPECT_TRUE(std::equal(before.mPts.begin(), before.mPts.end(), now.mPts.begin()));
            EXPECT_TRUE(std::equal(before.mCtls.begin(), before.mCtls.end(), now.mCtls.begin()));
            CPath const tail = fitter.Tail();
            EXPECT_EQ(tail.mPts.front(), now.mPts.back());
            EXPECT_EQ(tail.mPts.back(), Handwriting(i * 0.0002));
        }
        before = now;
    }
    EXPECT_GT(steps, 3);
    fitter.Finish();
    EXPECT_EQ(Count(fitter.Finished(), kPathMove), 1);
    EXPECT_LE(fitter.Finished().mCtls.size(), 120U);
    for (double const turn : TurnsAtJoints(fitter.Finished())) {
        EXPECT_NEAR(turn, 0.0, 1e-9);
    }
}

TEST(CurveFitter, FinishesALongLineInParts) {
    CurveFitter fitter(0.5, 1.0);
    for (int i = 0; i < 50000; ++i) {
        fitter.Add(Pt(i, 2.0 * i));
    }
    EXPECT_GT(fitter.Finished().CurrentPoint().h, 50000.0 - CurveFitter::kMostWaiting);
    EXPECT_LT(fitter.Finished().mCtls.size(), 20U);
}

TEST(CurveFitter, DrawsSeveralStrokesIntoOnePath) {
    CurveFitter fitter(0.5, 1.0);
    fitter.Finish();
    EXPECT_TRUE(fitter.Finished().mCtls.empty());
    fitter.Add(Pt(1, 2));
    fitter.Add(Pt(kNaN, 2));
    fitter.Add(Pt(1, 2));
    EXPECT_TRUE(fitter.Tail().mCtls.empty());
    fitter.Finish();
    fitter.Add(Pt(5, 5));
    fitter.Add(Pt(9, 5));
    fitter.Finish();
    EXPECT_EQ(fitter.Finished().mPts, (Pts{Pt(1, 2), Pt(5, 5), Pt(9, 5)}));
    EXPECT_EQ(fitter.Finished().mCtls, (std::vector<char>{kPathMove, kPathMove, kPathLine}));
}

} // namespace
