// SPDX-License-Identifier: MIT

// The cubic against its step-by-step form in tests/plain: to the last bit, for curves of every
// kind.

#include "CBezier.h"

#include "BezierSupport.h"
#include "Dispatch_p.h"
#include "PolygonSupport.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TRect.h"
#include "TestSupport.h"
#include "plain/Comparing.h"
#include "plain/PlainBezier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using plain::Random;
using plain::SameBits;
using plain::StepUlps;
using trammel_test::Bezier;
using trammel_test::Describe;
using trammel_test::Generated;
using trammel_test::GeneratedGlobally;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Plain;
using trammel_test::PointsOf;
using trammel_test::Rounds;
using trammel_test::SameCurve;
using trammel_test::SamePoints;
using trammel_test::Text;

typedef TPoint<double> Pt;
typedef TRect<double> Box;
typedef std::vector<Pt> Points;
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();

enum class Kind {
    Drawing,    ///< as drawn: coordinates of hundreds
    Grid,       ///< small whole numbers: coincident points, vertical and horizontal chords, cusps
    NearlyFlat, ///< control points within a few tolerances of the chord
    SShape,     ///< middle on the chord
    Loop,       ///< coincident ends
    Degenerate, ///< control points on the ends
    Scaled,     ///< any size from 1e-300 to 1e300
    Mixed,      ///< each coordinate of another size
    Denormal,   ///< a few of the smallest steps
    Steep,      ///< chord nearly vertical or nearly horizontal
    Offset,     ///< small and far from the origin: cancellation
    Special,    ///< NaN, infinities, largest numbers
};

CBezier MakeCurve(Random& random, Kind kind) {
    CBezier c(random.Pt(0, 500), random.Pt(0, 500), random.Pt(0, 500), random.Pt(0, 500));
    Pt* const points[] = {&c.P0, &c.P1, &c.P2, &c.P3};
    switch (kind) {
    case Kind::Drawing:
        break;
    case Kind::Grid:
        for (Pt* p : points) {
            *p = Pt(random.Int(-4, 4), random.Int(-4, 4));
        }
        c *= random.OneIn(2) ? 1.0 : 16.0;
        break;
    case Kind::NearlyFlat: {
        Pt const d = c.P3 - c.P0;
        Pt const normal = Pt(-d.v, d.h) / (d.Length() + 1e-9);
        double const reach = random.Decade(-6, 0.5);
        c.P1 = c.P0 + d * random.Unit() + normal * random.Uniform(-reach, reach);
        c.P2 = c.P0 + d * random.Unit() + normal * random.Uniform(-reach, reach);
        break;
    }
    case Kind::SShape:
        c.P3 = c.P1 + c.P2 - c.P0;
        break;
    case Kind::Loop:
        c.P3 = c.P0;
        if (random.OneIn(4)) {
            c.P2 = c.P1;
        }
        break;
    case Kind::Degenerate:
        if (random.OneIn(2)) {
            c.P1 = c.P0;
        }
        if (random.OneIn(2)) {
            c.P2 = c.P3;
        }
        if (random.OneIn(3)) {
            c.P2 = c.P1;
        }
        if (random.OneIn(5)) {
            c.P3 = c.P0;
        }
        break;
    case Kind::Scaled:
        c *= random.Decade(-300, 297);
        break;
    case Kind::Mixed:
        for (Pt* p : points) {
            *p = Pt(random.Uniform(-1, 1) * random.Decade(-12, 12),
                    random.Uniform(-1, 1) * random.Decade(-12, 12));
        }
        break;
    case Kind::Denormal:
        for (Pt* p : points) {
            *p = Pt(random.Int(-40, 40) * kTiny, random.Int(-40, 40) * kTiny);
        }
        break;
    case Kind::Steep: {
        double const slant = random.Decade(-20, -1);
        c.P3 = c.P0 + Pt(random.Uniform(-1, 1) * slant, random.Uniform(-400, 400));
        if (random.OneIn(2)) {
            for (Pt* p : points) {
                std::swap(p->h, p->v);
            }
        }
        break;
    }
    case Kind::Offset:
        c += Pt(random.Uniform(-1, 1), random.Uniform(-1, 1)) * random.Decade(4, 14);
        break;
    case Kind::Special: {
        double const specials[] = {kNaN, kInf, -kInf, kMax, -kMax, -0.0, kTiny, 1e154, 1e-162};
        Pt& p = *points[random.Int(0, 3)];
        (random.OneIn(2) ? p.h : p.v) = specials[random.Int(0, 8)];
        if (random.OneIn(2)) {
            (random.OneIn(2) ? c.P0.h : c.P3.v) = specials[random.Int(0, 8)];
        }
        break;
    }
    }
    return c;
}

/// The deviation of a random piece of the curve, a few steps off: the tolerance at which that
/// piece is just flat, or just not.
double CriticalTolerance(Random& random, CBezier const& c) {
    plain::Bezier piece = Plain(c);
    for (int depth = random.Int(0, 6); depth > 0; --depth) {
        plain::Bezier left;
        plain::Bezier right;
        piece.Divide(left, right);
        piece = random.OneIn(2) ? left : right;
    }
    return StepUlps(piece.Deviation(), random.Int(-3, 3));
}

double MakeTolerance(Random& random, CBezier const& c) {
    switch (random.Int(0, 9)) {
    case 0:
        return 0.001;
    case 1:
        return 1.0;
    case 2:
        return random.Decade(-4, 2);
    case 3:
        return random.OneIn(20) ? -random.Decade(-4, 2) : 0.1;
    case 4:
        return random.OneIn(4) ? 0.0 : 0.25;
    default:
        return CriticalTolerance(random, c);
    }
}

/// Runs the same on the library and on the plain form, from the same settings and counters, and
/// expects the counters to agree afterwards.
class Comparison {
public:
    Comparison(double maxError, std::int16_t limit) {
        CBezier::mMaxError = plain::state.maxError = maxError;
        CBezier::mRecursionLimit = plain::state.recursionLimit = limit;
        CBezier::mCount = plain::state.mCount = 1000;
        gCount = plain::state.gCount = 10;
        maxCount = plain::state.maxCount = 50;
    }
    bool Agrees() const {
        return CBezier::mCount == plain::state.mCount && gCount == plain::state.gCount &&
               maxCount == plain::state.maxCount &&
               SameBits(CBezier::mMaxError, plain::state.maxError);
    }
};

/// Makes the kernels take one of their forms for as long as it lives.
class KernelForm {
public:
    explicit KernelForm(bool portable) { trammel_detail::UsePortableForms(portable); }
    ~KernelForm() { trammel_detail::UsePortableForms(false); }
    KernelForm(KernelForm const&) = delete;
    KernelForm& operator=(KernelForm const&) = delete;
};

void CompareGeneration(CBezier const& c, double tolerance, std::int16_t limit) {
    plain::Bezier const same = Plain(c);
    ASSERT_EQ(c.Flat(tolerance), same.Flat(tolerance));
    {
        Comparison const comparison(0.5, limit);
        TPolygon<double> poly;
        c.Flatten(poly, tolerance);
        Points expected;
        same.Flatten(expected, tolerance);
        ASSERT_PRED_FORMAT2(SamePoints, PointsOf(poly), expected);
        ASSERT_TRUE(comparison.Agrees()) << gCount << " " << plain::state.gCount;
    }
    for (bool const force : {false, true}) {
        Comparison const comparison(tolerance, limit);
        Points const points =
            force ? Generated(c, force, limit) : GeneratedGlobally(c, force, limit);
        Points expected;
        same.GenerateSegment([&](Pt const& p) { expected.push_back(p); }, force, limit);
        ASSERT_PRED_FORMAT2(SamePoints, points, expected);
        ASSERT_TRUE(comparison.Agrees());
    }
}

void CompareQueries(Random& random, CBezier c, double tolerance, std::int16_t limit) {
    plain::Bezier const same = Plain(c);
    double const t = random.OneIn(8) ? random.Int(0, 4) / 4.0 : random.Uniform(-0.2, 1.2);
    double const u = random.OneIn(8) ? random.Int(0, 4) / 4.0 : random.Uniform(-0.2, 1.2);
    // A point on or beside the curve.
    Pt const on = c.TPt(random.Unit());
    double const beside = random.OneIn(2) ? 1.0 : tolerance;
    Pt const pt = on + random.Pt(-1, 1) * beside;
    Comparison const comparison(tolerance, limit);

    ASSERT_SAME(c.TPt(t), same.TPt(t));
    ASSERT_SAME(c.Extents(), same.Extents());
    CBezier left;
    CBezier right;
    plain::Bezier plainLeft;
    plain::Bezier plainRight;
    ASSERT_SAME(c.Divide(left, right), same.Divide(plainLeft, plainRight));
    ASSERT_TRUE(SameCurve(left, plainLeft) && SameCurve(right, plainRight));
    ASSERT_SAME(c.Divide(left, right, t), same.Divide(plainLeft, plainRight, t));
    ASSERT_TRUE(SameCurve(left, plainLeft) && SameCurve(right, plainRight));
    ASSERT_SAME(c.Divide(left, right, pt), same.Divide(plainLeft, plainRight, pt));
    ASSERT_TRUE(SameCurve(left, plainLeft) && SameCurve(right, plainRight));
    c.GetTRange(t, u, left);
    ASSERT_TRUE(SameCurve(left, same.GetTRange(t, u)));

    ASSERT_SAME(c.FindTValue(pt, 0.001, 0.0, 1.0), same.FindTValue(pt, 0.001, 0.0, 1.0));
    double const step = random.Decade(-17, 0);
    ASSERT_SAME(c.FindTValue(pt, step, t, u), same.FindTValue(pt, step, t, u));
    ASSERT_SAME(c.FindDividedTValue(pt, step, t, u), same.FindDividedTValue(pt, step, t, u));
    ASSERT_TRUE(comparison.Agrees());

    ASSERT_EQ(c.HitTest(pt, beside), same.HitTest(pt, beside));
    ASSERT_TRUE(comparison.Agrees());
    Box const r(pt.h, pt.v, pt.h + random.Uniform(-1, 1) * beside * 8,
                pt.v + random.Uniform(-1, 1) * beside * 8);
    ASSERT_EQ(c.Intersects(r), same.Intersects(r));
    ASSERT_TRUE(comparison.Agrees());
    ASSERT_SAME(c.Length(), same.Length());
    ASSERT_TRUE(comparison.Agrees());
    ASSERT_SAME(c.PercentT(t), same.PercentT(t));
    ASSERT_TRUE(comparison.Agrees());
    ASSERT_SAME(c.TPercent(t), same.TPercent(t));
    ASSERT_TRUE(comparison.Agrees());
}

class BezierComparison : public Bezier, public ::testing::WithParamInterface<Kind> {
protected:
    std::int16_t Limit(Random& random) const {
        // Curves that do not become flat use all of the depth.
        switch (GetParam()) {
        case Kind::Drawing:
        case Kind::NearlyFlat:
        case Kind::SShape:
        case Kind::Loop:
        case Kind::Degenerate:
            return static_cast<std::int16_t>(random.OneIn(4) ? random.Int(-1, 9) : 15);
        case Kind::Special:
            return static_cast<std::int16_t>(random.Int(-1, 5));
        default:
            return static_cast<std::int16_t>(random.Int(-1, 8));
        }
    }
    std::uint64_t Seed() const { return 100 + static_cast<std::uint64_t>(GetParam()); }
};

TEST_P(BezierComparison, GenerationAgreesAtAndAroundCriticalTolerances) {
    Random random(Seed());
    for (int i = 0; i < 2000; ++i) {
        CBezier const c = MakeCurve(random, GetParam());
        double const tolerance = MakeTolerance(random, c);
        std::int16_t const full = Limit(random);
        // Tolerance that nothing meets: as many points as the depth allows.
        std::int16_t const limit =
            tolerance > 1e-5 ? full : std::min<std::int16_t>(full, std::int16_t{8});
        SCOPED_TRACE(testing::Message() << "curve " << i << ": " << Describe(c) << ", tolerance "
                                        << Text(tolerance) << ", depth " << limit);
        KernelForm const form(i % 2 == 0);
        CompareGeneration(c, tolerance, limit);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_P(BezierComparison, FlatnessAgreesWithinAFewUlpsOfTheDeviation) {
    Random random(Seed() + 1000);
    for (int i = 0; i < 3000; ++i) {
        CBezier const c = MakeCurve(random, GetParam());
        plain::Bezier const same = Plain(c);
        double const deviation = same.Deviation();
        for (int ulps : {-1000000, -100, -3, -2, -1, 0, 1, 2, 3, 100, 1000000}) {
            double tolerance = deviation;
            if (std::abs(ulps) < 1000) {
                tolerance = StepUlps(deviation, ulps);
            } else {
                tolerance *= 1.0 + ulps * 0x1p-52;
            }
            // Depth 2 divides once, and only if the curve itself is not flat.
            CBezier::mMaxError = tolerance;
            bool const flat = same.Flat(tolerance);
            ASSERT_EQ(c.Flat(tolerance), flat) << Describe(c) << " " << ulps;
            ASSERT_EQ(Generated(c, false, 2).empty(), flat) << Describe(c) << " " << ulps;
        }
    }
}

TEST_P(BezierComparison, QueriesAgree) {
    Random random(Seed() + 2000);
    for (int i = 0; i < 1000; ++i) {
        CBezier const c = MakeCurve(random, GetParam());
        double const tolerance = std::max(0.01, MakeTolerance(random, c));
        std::int16_t const limit = Limit(random);
        SCOPED_TRACE(testing::Message() << "curve " << i << ": " << Describe(c) << ", tolerance "
                                        << Text(tolerance) << ", depth " << limit);
        KernelForm const form(i % 2 == 0);
        CompareQueries(random, c, tolerance, limit);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(Bezier, LongCurvesAgreeWithThePlainForm) {
    Random random(73);
    for (int i = 0; i < 60; ++i) {
        double const size = random.Decade(3, 7); // up to the 16,383 points that the depth allows
        CBezier const c(random.Pt(0, size), random.Pt(0, size), random.Pt(0, size),
                        random.Pt(0, size));
        plain::Bezier const same = Plain(c);
        SCOPED_TRACE(Describe(c));
        KernelForm const form(i % 2 == 0);
        CompareGeneration(c, 0.001, 15);
        ASSERT_FALSE(HasFatalFailure());
        double const t = random.Uniform(-0.1, 1.1);
        Comparison const comparison(0.001, 15);
        ASSERT_SAME(c.Length(), same.Length());
        ASSERT_SAME(c.PercentT(t), same.PercentT(t));
        ASSERT_TRUE(comparison.Agrees());
    }
}

// The bisection's product nearly vanishes on the line through the middle of a piece at a right
// angle to its chord. The points lie on that line, or as near to it as rounding comes.
TEST_F(Bezier, NearestParameterAgreesWhereTheSideIsInDoubt) {
    Random random(74);
    for (int i = 0; i < 20000; ++i) {
        CBezier c = MakeCurve(random, static_cast<Kind>(random.Int(0, 5)));
        plain::Bezier const same = Plain(c);
        double const step = random.OneIn(2) ? 0.001 : random.Decade(-6, -1);
        plain::Bezier piece = same;
        for (int depth = random.Int(0, 8); depth > 0; --depth) {
            plain::Bezier left;
            plain::Bezier right;
            piece.Divide(left, right);
            piece = random.OneIn(2) ? left : right;
        }
        Pt const a = piece.TPt(0.5 - step);
        Pt const b = piece.TPt(0.5 + step);
        Pt const normal(a.v - b.v, b.h - a.h);
        Pt pt = (a + b) / 2.0 + normal * (random.Uniform(-1, 1) * random.Decade(0, 6));
        pt.h = StepUlps(pt.h, random.Int(-4, 4));
        ASSERT_SAME(c.FindTValue(pt, step, 0.0, 1.0), same.FindTValue(pt, step, 0.0, 1.0))
            << Describe(c) << " " << Text(pt.h) << " " << Text(pt.v) << " " << Text(step);
        ASSERT_SAME(c.FindDividedTValue(pt, step, 0.0, 1.0),
                    same.FindDividedTValue(pt, step, 0.0, 1.0))
            << Describe(c);
    }
}

// The curve is some denormal units long, so that each of its products is off by one. The point is
// so far away that the estimate's terms are ordinary numbers.
TEST_F(Bezier, NearestParameterOfTinyCurvesToFarPointsAgrees) {
    Random random(75);
    for (int i = 0; i < Rounds(100000); ++i) {
        double const size = std::ldexp(1.0, -random.Int(950, 1070));
        auto const small = [&] { return Pt(random.Uniform(-1, 1), random.Uniform(-1, 1)) * size; };
        CBezier c(small(), small(), small(), small());
        plain::Bezier const same = Plain(c);
        Pt const pt(std::ldexp(random.Uniform(-1, 1), random.Int(0, 400)),
                    std::ldexp(random.Uniform(-1, 1), random.Int(0, 400)));
        double const step = std::ldexp(1.0, -random.Int(3, 40));
        ASSERT_SAME(c.FindTValue(pt, step, 0.0, 1.0), same.FindTValue(pt, step, 0.0, 1.0))
            << Describe(c) << " " << Text(pt.h) << " " << Text(pt.v) << " " << Text(step);
        ASSERT_SAME(c.FindDividedTValue(pt, step, 0.1, 0.9),
                    same.FindDividedTValue(pt, step, 0.1, 0.9))
            << Describe(c) << " " << Text(pt.h) << " " << Text(pt.v) << " " << Text(step);
    }
}

std::string KindName(testing::TestParamInfo<Kind> const& info) {
    char const* const names[] = {"Drawing", "Grid",  "NearlyFlat", "SShape", "Loop",   "Degenerate",
                                 "Scaled",  "Mixed", "Denormal",   "Steep",  "Offset", "Special"};
    return names[static_cast<int>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(AllKinds, BezierComparison,
                         testing::Values(Kind::Drawing, Kind::Grid, Kind::NearlyFlat, Kind::SShape,
                                         Kind::Loop, Kind::Degenerate, Kind::Scaled, Kind::Mixed,
                                         Kind::Denormal, Kind::Steep, Kind::Offset, Kind::Special),
                         KindName);

} // namespace
