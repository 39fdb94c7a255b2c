// SPDX-License-Identifier: MIT

// Paths against their step-by-step form in tests/plain, to the last bit; laws of lengths; and the
// stack that queries take.

#include "CPath.h"

#include "CBezier.h"
#include "PathSupport.h"
#include "TLine.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TRect.h"
#include "TestSupport.h"
#include "UTrigonometry.h"
#include "plain/Comparing.h"
#include "plain/PlainBezier.h"
#include "plain/PlainPath.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace {

using plain::Random;
using plain::RandomFraction;
using plain::StepUlps;
using trammel_test::kC;
using trammel_test::LibraryPath;
using trammel_test::Path;
using trammel_test::Rounds;
using trammel_test::State;
using trammel_test::Text;

typedef TPoint<double> Pt;

Pt RandomPt(Random& random, bool grid) {
    if (grid) {
        double const h = random.Int(-3, 3);
        return Pt(h, random.Int(-3, 3));
    }
    return random.Pt(-200, 200);
}

/// Builds both paths alike by `count` random operations.
void BuildAlike(Random& random, int count, bool grid, CPath& path, plain::Path& same) {
    for (; count > 0; --count) {
        Pt const a = RandomPt(random, grid);
        Pt const b = RandomPt(random, grid);
        Pt const c = RandomPt(random, grid);
        switch (random.Int(0, 9)) {
        case 0:
            path.MoveTo(a);
            same.MoveTo(a);
            break;
        case 1:
        case 2:
        case 3:
            path.LineTo(a);
            same.LineTo(a);
            break;
        case 4:
        case 5:
        case 6:
            path.CurveTo(a, b, c);
            same.CurveTo(a, b, c);
            break;
        case 7:
            path.ClosePath();
            same.ClosePath();
            break;
        case 8:
            if (random.OneIn(3)) {
                double const start = random.Uniform(-7, 7);
                double const sweep =
                    random.OneIn(2) ? random.Uniform(-7, 7) : random.Int(-5, 5) * pi / 2.0;
                path.Arc(a, b.h, b.v, start, sweep);
                same.Arc(a, b.h, b.v, start, sweep);
            }
            break;
        default:
            if (random.OneIn(4)) { // a code that nobody knows
                char const code = static_cast<char>(random.Int(4, 255));
                path.mCtls.push_back(code);
                same.codes.push_back(code);
            }
            break;
        }
    }
}

TEST_F(Path, AgreesWithThePlainForm) {
    Random random(21);
    for (int i = 0; i < Rounds(1500); ++i) {
        bool const grid = random.OneIn(3);
        CPath path;
        plain::Path same;
        BuildAlike(random, random.Int(0, 10), grid, path, same);
        SCOPED_TRACE(State(same));
        ASSERT_EQ(State(path), State(same));
        ASSERT_EQ(path.Closed(), same.Closed());
        ASSERT_SAME(path.Length(), same.Length());
        for (int k = 0; k < 2; ++k) {
            double const t = RandomFraction(random);
            ASSERT_SAME(path.TPt(t), same.TPt(t)) << t;
            Pt const p = RandomPt(random, grid);
            ASSERT_SAME(path.FindTValue(p), same.FindTValue(p)) << Text(p);
        }
        double const t0 = RandomFraction(random);
        double const t1 = RandomFraction(random);
        SCOPED_TRACE(testing::Message() << t0 << " to " << t1);
        CPath a;
        CPath b;
        plain::Path plainA;
        plain::Path plainB;
        BuildAlike(random, random.Int(0, 2), grid, a, plainA);
        BuildAlike(random, random.Int(0, 2), grid, b, plainB);
        CPath out(a);
        plain::Path plainOut = plainA;
        path.GetTRange(t0, t1, out);
        same.GetTRange(t0, t1, plainOut);
        ASSERT_EQ(State(out), State(plainOut));
        path.RemoveTRange(t0, t1, a, b);
        same.RemoveTRange(t0, t1, plainA, plainB);
        ASSERT_EQ(State(a), State(plainA));
        ASSERT_EQ(State(b), State(plainB));
        path.Append(a);
        same.Append(plainA);
        ASSERT_EQ(State(path), State(same));
    }
}

/// Appends a segment whose nearest point to `p` is about `distance` away, in one of the shapes for
/// which its box is as near as that, or nearly so.
void AddSegmentAtDistance(Random& random, Pt const& p, double distance, plain::Path& path) {
    double const reach = distance * random.Uniform(0.0, 3.0);
    double const side = random.OneIn(2) ? distance : -distance;
    bool const upright = random.OneIn(2);
    auto const at = [&](double along, double across) {
        return upright ? Pt(p.h + across, p.v + along) : Pt(p.h + along, p.v + across);
    };
    path.MoveTo(at(-reach, side));
    switch (random.Int(0, 3)) {
    case 0: // passes p at the distance, along the box's edge
        path.LineTo(at(random.Uniform(0.0, 1.0) * reach, side));
        break;
    case 1: // begins or ends there
        path.LineTo(at(0.0, side));
        path.LineTo(at(random.Uniform(-1.0, 1.0) * reach, 2.0 * side));
        break;
    case 2: // a straight curve along the box's edge
        path.CurveTo(at(-reach / 3.0, side), at(reach / 3.0, side), at(reach, side));
        break;
    default: // ends there, coming from farther away
        path.CurveTo(at(-reach, 2.0 * side), at(0.0, 2.0 * side), at(0.0, side));
        break;
    }
    if (random.OneIn(4)) {
        path.ClosePath();
    }
}

TEST_F(Path, NearestOfSegmentsAtAlmostTheSameDistanceAgreesWithThePlainForm) {
    // Segments whose boxes decide by the last bits: nothing may be left out that wins or ties.
    CBezier::mRecursionLimit = plain::state.recursionLimit = 5;
    Random random(25);
    for (int i = 0; i < 6000; ++i) {
        // The distance against the place: as large, or down to where only few of its bits count.
        double const size = random.OneIn(8) ? random.Decade(-320, 307) : random.Decade(-3, 9);
        Pt const p = random.Pt(-size, size);
        double const distance = size * random.Decade(-14, 1);
        plain::Path same;
        for (int k = random.Int(2, 6); k > 0; --k) {
            double const d = random.OneIn(2) ? distance : StepUlps(distance, random.Int(-6, 6));
            AddSegmentAtDistance(random, p, d, same);
        }
        CPath const path = LibraryPath(same);
        ASSERT_SAME(path.FindTValue(p), same.FindTValue(p)) << i << " " << State(same);
        Pt const beside(StepUlps(p.h, random.Int(-3, 3)), StepUlps(p.v, random.Int(-3, 3)));
        ASSERT_SAME(path.FindTValue(beside), same.FindTValue(beside)) << i << " " << State(same);
    }
}

TEST_F(Path, NearestWithCoordinatesThatOverflowAgreesWithThePlainForm) {
    CBezier::mRecursionLimit = plain::state.recursionLimit = 4;
    Random random(26);
    auto const point = [&] { return plain::WildPoint(random); };
    for (int i = 0; i < 20000; ++i) {
        plain::Path same;
        for (int k = random.Int(1, 5); k > 0; --k) {
            Pt const a = point();
            Pt const b = point();
            if (random.OneIn(2)) {
                same.LineTo(a);
            } else {
                same.CurveTo(a, b, point());
            }
        }
        CPath const path = LibraryPath(same);
        Pt const p = point();
        ASSERT_SAME(path.FindTValue(p), same.FindTValue(p)) << i << " " << State(same) << Text(p);
    }
}

TEST_F(Path, ManySegmentsAreMeasuredLikeFew) {
    // Beyond the number whose lengths are kept without a block.
    Random random(27);
    plain::Path same;
    for (int i = 0; i < 300; ++i) {
        same.LineTo(random.Pt(0, 100));
        if (random.OneIn(7)) {
            Pt const a = random.Pt(0, 100);
            Pt const b = random.Pt(0, 100);
            same.CurveTo(a, b, random.Pt(0, 100));
        }
    }
    CPath const path = LibraryPath(same);
    for (double t : {0.0, 0.01, 0.3, 0.45, 0.7, 0.999, 1.0, 1.5}) {
        EXPECT_SAME(path.TPt(t), same.TPt(t)) << t;
        CPath out;
        plain::Path plainOut;
        path.GetTRange(0.8 * t, t, out);
        same.GetTRange(0.8 * t, t, plainOut);
        EXPECT_EQ(State(out), State(plainOut)) << t;
    }
    for (int i = 0; i < 20; ++i) {
        Pt const p = random.Pt(-50, 150);
        EXPECT_SAME(path.FindTValue(p), same.FindTValue(p)) << Text(p);
    }
}

TEST_F(Path, CircularArcsAgreeWithThePlainForm) {
    Random random(22);
    for (int i = 0; i < 2000; ++i) {
        Pt const centre = random.Pt(-100, 100);
        double const radius = random.Uniform(-50, 50);
        double const start = random.OneIn(3) ? random.Int(-4, 4) * pi / 2.0 : random.Uniform(-9, 9);
        double const sweep =
            random.OneIn(3) ? random.Int(-9, 9) * pi / 2.0 : random.Uniform(-20, 20);
        CPath path;
        path.Arc(centre, radius, start, sweep);
        plain::Path same;
        same.Arc(centre, radius, radius, start, sweep);
        ASSERT_EQ(State(path), State(same)) << radius << " " << start << " " << sweep;
    }
}

TEST_F(Path, PointsAtCumulatedFractionsAreTheVertices) {
    Random random(23);
    for (int i = 0; i < 200; ++i) {
        CPath path;
        path.MoveTo(random.Pt(-100, 100));
        std::vector<double> lengths;
        int const count = random.Int(1, 8);
        for (int k = 0; k < count; ++k) {
            Pt const from = path.CurrentPoint();
            Pt const to = random.Pt(-100, 100);
            if (random.OneIn(2)) {
                path.LineTo(to);
                lengths.push_back(TLine<double>(from, to).Length());
            } else {
                Pt const c1 = random.Pt(-100, 100);
                Pt const c2 = random.Pt(-100, 100);
                path.CurveTo(c1, c2, to);
                lengths.push_back(CBezier(from, c1, c2, to).Length());
            }
        }
        double const total = path.Length();
        double sum = 0.0;
        std::size_t at = 0;
        for (int k = 0; k < count; ++k) {
            sum += lengths[static_cast<std::size_t>(k)];
            at += path.mCtls[static_cast<std::size_t>(k) + 1] == kC ? 3 : 1;
            Pt const expected = path.mPts[at];
            Pt const found = path.TPt(sum / total);
            EXPECT_NEAR(found.h, expected.h, 1e-9) << i << " " << k;
            EXPECT_NEAR(found.v, expected.v, 1e-9) << i << " " << k;
        }
        EXPECT_SAME(total, sum);
    }
}

TEST_F(Path, LengthsOfPiecesOfALinePathAddUp) {
    Random random(24);
    for (int i = 0; i < 200; ++i) {
        CPath path;
        for (int k = random.Int(2, 9); k > 0; --k) {
            path.LineTo(random.Pt(-100, 100));
        }
        if (random.OneIn(2)) {
            path.ClosePath();
        }
        double const t0 = random.Unit();
        double const t1 = random.Uniform(t0, 1.0);
        CPath before;
        CPath between;
        CPath after;
        path.GetTRange(0.0, t0, before);
        path.GetTRange(t0, t1, between);
        path.GetTRange(t1, 1.0, after);
        double const total = path.Length();
        EXPECT_NEAR(before.Length(), t0 * total, 1e-9 * total);
        EXPECT_NEAR(between.Length(), (t1 - t0) * total, 1e-9 * total);
        EXPECT_NEAR(before.Length() + between.Length() + after.Length(), total, 1e-9 * total);
    }
}

TEST_F(Path, LengthsOfPiecesOfACurvedPathAddUpApproximately) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.CurveTo(Pt(30, 60), Pt(90, 80), Pt(120, 0));
    path.LineTo(Pt(180, 10));
    path.Arc(Pt(180, 60), 50.0, -pi / 2.0, pi);
    double const total = path.Length();
    for (int i = 1; i < 20; ++i) {
        double const t = i / 20.0;
        CPath before;
        CPath after;
        path.GetTRange(0.0, t, before);
        path.GetTRange(t, 1.0, after);
        // Fractions of a curve are resolved to 0.001 of its parameter at either side.
        EXPECT_NEAR(before.Length() + after.Length(), total, 0.005 * total) << t;
        EXPECT_NEAR(before.Length(), t * total, 0.005 * total) << t;
    }
}

// Threads of embedded and of some script engines have no more stack than this. Sanitizers enlarge
// the frames, and without optimisation each inlined operation of the kernels has a place of its
// own.
#if defined(__SANITIZE_ADDRESS__) || !defined(__OPTIMIZE__)
constexpr std::size_t kSmallStack = std::size_t{512} << 10;
#else
constexpr std::size_t kSmallStack = std::size_t{64} << 10;
#endif

void AskEverythingOnce(CPath const& path, CBezier const& curve, double& sum) {
    TPolygon<double> polygon;
    curve.Flatten(polygon, 0.001);
    CPath piece;
    CPath rest;
    path.GetTRange(0.2, 0.7, piece);
    path.RemoveTRange(0.2, 0.7, piece, rest);
    sum = curve.Length() + curve.PercentT(0.3) + curve.TPercent(0.3) + path.Length() +
          path.TPt(0.6).h + path.FindTValue(Pt(1, 2)) + polygon.Length() + polygon.TPt(0.6).h +
          polygon.TPt(1e-5).h + (curve.HitTest(Pt(1, 2), 1.0) ? 1.0 : 0.0) +
          (curve.Intersects(TRect<double>(1, 2, 3, 4)) ? 1.0 : 0.0) +
          (polygon.Contains(Pt(1, 2)) ? 1.0 : 0.0);
}

TEST_F(Path, QueriesOfCurvesPathsAndPolygonsFitIntoASmallStack) {
    struct Question {
        CPath path;
        CBezier curve;
        double sum = 0.0;
    };
    // A flattening of few points, one of many, and one that is walked as deep as it may be.
    double const nan = std::numeric_limits<double>::quiet_NaN();
    for (double const size : {100.0, 1e7, nan}) {
        Question question;
        question.curve = CBezier({0, 0}, {size, 0}, {50, size}, {100, 100});
        question.path.MoveTo(question.curve.P0);
        question.path.CurveTo(question.curve.P1, question.curve.P2, question.curve.P3);
        question.path.LineTo(Pt(300, 100));
        question.path.ClosePath();
        double sum = 0.0;
        AskEverythingOnce(question.path, question.curve, sum); // also binds the library's functions
        pthread_attr_t attributes;
        ASSERT_EQ(pthread_attr_init(&attributes), 0);
        ASSERT_EQ(pthread_attr_setstacksize(&attributes, kSmallStack), 0);
        auto const ask = [](void* data) -> void* {
            Question& q = *static_cast<Question*>(data);
            AskEverythingOnce(q.path, q.curve, q.sum);
            return nullptr;
        };
        pthread_t thread;
        ASSERT_EQ(pthread_create(&thread, &attributes, ask, &question), 0);
        ASSERT_EQ(pthread_join(thread, nullptr), 0);
        ASSERT_EQ(pthread_attr_destroy(&attributes), 0);
        EXPECT_TRUE(question.sum == sum || std::isnan(sum));
    }
}

} // namespace
