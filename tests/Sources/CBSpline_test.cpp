// SPDX-License-Identifier: MIT

#include "CBSpline.h"

#include "CBezier.h"
#include "PolygonSupport.h"
#include "TPoly.h"
#include "plain/Comparing.h"
#include "plain/PlainSpline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::PointsOf;
using trammel_test::Text;

typedef TPoint<double> Pt;
typedef std::vector<Pt> Points;

CBSpline const kArch(Pt(0, 0), Pt(50, 100), Pt(100, 0));

void Collect(Pt const& p, void* points) { static_cast<Points*>(points)->push_back(p); }

Points Generated(CBSpline const& c, short depth) {
    Points points;
    c.GenerateSegment(Collect, &points, depth);
    return points;
}

Points Flattened(CBSpline const& c, double error) {
    TPolygon<double> polygon;
    c.AddSegmentToPoly(polygon, error);
    return PointsOf(polygon);
}

plain::Spline Plain(CBSpline const& c) { return plain::Spline{c.P0, c.P1, c.P2}; }

bool SameCurve(CBSpline const& a, plain::Spline const& b) {
    return plain::SameBits(a.P0, b.p0) && plain::SameBits(a.P1, b.p1) &&
           plain::SameBits(a.P2, b.p2);
}

bool SamePoints(Points const& a, Points const& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!plain::SameBits(a[i], b[i])) {
            return false;
        }
    }
    return true;
}

/// Every test begins and ends with the settings of a fresh process; the cubic's counters stay as
/// they were throughout.
class Spline : public testing::Test {
protected:
    void SetUp() override {
        Reset();
        mGCount = gCount;
        mMaxCount = maxCount;
        mCubicCount = CBezier::mCount;
    }
    void TearDown() override {
        EXPECT_EQ(gCount, mGCount);
        EXPECT_EQ(maxCount, mMaxCount);
        EXPECT_EQ(CBezier::mCount, mCubicCount);
        EXPECT_EQ(CBezier::mMaxError, 1.0);
        Reset();
    }

private:
    static void Reset() {
        CBSpline::mMaxError = 2.0;
        CBSpline::mRecursionLimit = 15;
        CBSpline::mCount = 0;
        plain::splineState = plain::SplineState();
    }

    std::int32_t mGCount = 0;
    std::int32_t mMaxCount = 0;
    std::int32_t mCubicCount = 0;
};

// The settings before anyone changes them.
double const kErrorAtLoad = CBSpline::mMaxError;
std::int16_t const kLimitAtLoad = CBSpline::mRecursionLimit;
std::int32_t const kCountAtLoad = CBSpline::mCount;

TEST_F(Spline, SettingsHaveTheirValuesAtLoad) {
    EXPECT_EQ(kErrorAtLoad, 2.0);
    EXPECT_EQ(kLimitAtLoad, 15);
    EXPECT_EQ(kCountAtLoad, 0);
    EXPECT_NE(static_cast<void*>(&CBSpline::mMaxError), static_cast<void*>(&CBezier::mMaxError));
    EXPECT_NE(&CBSpline::mRecursionLimit, &CBezier::mRecursionLimit);
    EXPECT_NE(&CBSpline::mCount, &CBezier::mCount);
}

TEST_F(Spline, IsThreePointsAndNothingElse) {
    static_assert(sizeof(CBSpline) == 48);
    static_assert(offsetof(CBSpline, P0) == 0 && offsetof(CBSpline, P1) == 16 &&
                  offsetof(CBSpline, P2) == 32);
    static_assert(std::is_trivially_copyable_v<CBSpline> && !std::is_polymorphic_v<CBSpline>);
    static_assert(std::is_same_v<decltype(CBSpline::mRecursionLimit), std::int16_t>);
    static_assert(std::is_same_v<decltype(CBSpline::mCount), std::int32_t>);
    static_assert(std::is_void_v<decltype(CBSpline::SetCurveError(1.0))>);
    CBSpline const none;
    EXPECT_SAME(none.P0, Pt(0, 0));
    EXPECT_SAME(none.P1, Pt(0, 0));
    EXPECT_SAME(none.P2, Pt(0, 0));
}

TEST_F(Spline, StoresItsPointsAsTheyAre) {
    Pt const a(-0.0, kNaN);
    Pt const b(kInf, 5e-324);
    Pt const c(1e308, -kInf);
    plain::Spline const expected{a, b, c};
    EXPECT_TRUE(SameCurve(CBSpline(a, b, c), expected));
    CBSpline set;
    set.Set(a, b, c);
    EXPECT_TRUE(SameCurve(set, expected));
    CBSpline iset;
    iset.ISet(a, b, c);
    EXPECT_TRUE(SameCurve(iset, expected));
    CBSpline turned(Pt(1, 2), Pt(3, 4), Pt(5, 6)); // from its own points
    turned.Set(turned.P2, turned.P0, turned.P1);
    EXPECT_TRUE(SameCurve(turned, {Pt(5, 6), Pt(1, 2), Pt(3, 4)}));
    turned.ISet(turned.P2, turned.P1, turned.P0);
    EXPECT_TRUE(SameCurve(turned, {Pt(3, 4), Pt(1, 2), Pt(5, 6)}));
}

TEST_F(Spline, CurveErrorIsWhatWasSet) {
    EXPECT_EQ(CBSpline::CurveError(), 2.0);
    for (double const error : {0.25, 0.0, -1.0, kInf, 1e-300}) {
        CBSpline::SetCurveError(error);
        EXPECT_EQ(CBSpline::CurveError(), error);
        EXPECT_EQ(CBSpline::mMaxError, error);
    }
    CBSpline::SetCurveError(kNaN);
    EXPECT_TRUE(std::isnan(CBSpline::CurveError()));
    EXPECT_EQ(CBezier::CurveError(), 1.0) << "the cubic has its own";
}

// Splitting

TEST_F(Spline, DividesAtTheMiddle) {
    CBSpline left;
    CBSpline right;
    EXPECT_SAME(kArch.Divide(left, right), Pt(50, 50));
    EXPECT_TRUE(SameCurve(left, {Pt(0, 0), Pt(25, 50), Pt(50, 50)}));
    EXPECT_TRUE(SameCurve(right, {Pt(50, 50), Pt(75, 50), Pt(100, 0)}));
}

TEST_F(Spline, TheMidpointIsTheFirstPlusHalfTheDifference) {
    // Here (a + b)/2 overflows and a + (b - a)/2 does not.
    CBSpline left;
    CBSpline right;
    CBSpline const wide(Pt(1e308, 1), Pt(1.5e308, 1), Pt(1e308, 1));
    EXPECT_SAME(wide.Divide(left, right), Pt(1.25e308, 1));
    // And here they differ in the last bit.
    double const a = 0.1;
    double const b = 0.7000000000000001;
    bool differs = false;
    for (int i = 0; i < 100; ++i) {
        double const c = b + i * 0.013;
        CBSpline(Pt(a, a), Pt(c, c), Pt(c, c)).Divide(left, right);
        ASSERT_SAME(left.P1.h, a + (c - a) * 0.5);
        differs = differs || left.P1.h != (a + c) / 2.0;
    }
    EXPECT_TRUE(differs);
}

TEST_F(Spline, DividesIntoItself) {
    CBSpline expectedLeft;
    CBSpline expectedRight;
    kArch.Divide(expectedLeft, expectedRight);
    CBSpline other;
    CBSpline c = kArch;
    EXPECT_SAME(c.Divide(c, other), Pt(50, 50));
    EXPECT_TRUE(SameCurve(c, Plain(expectedLeft)));
    EXPECT_TRUE(SameCurve(other, Plain(expectedRight)));
    c = kArch;
    EXPECT_SAME(c.Divide(other, c), Pt(50, 50));
    EXPECT_TRUE(SameCurve(other, Plain(expectedLeft)));
    EXPECT_TRUE(SameCurve(c, Plain(expectedRight)));
}

// Flatness

TEST_F(Spline, FlatMeasuresTheControlPointAlongTheAxes) {
    struct Case {
        char const* name;
        CBSpline curve;
        double tolerance;
        bool flat;
    };
    for (Case const& each : std::vector<Case>{
             {"on the chord", {Pt(0, 0), Pt(50, 0), Pt(100, 0)}, 0.0, true},
             {"beyond the chord's ends", {Pt(0, 0), Pt(500, 0), Pt(100, 0)}, 0.0, true},
             {"a closed loop", {Pt(3, 4), Pt(500, 600), Pt(3, 4)}, 0.0, true},
             {"a closed loop, negative", {Pt(3, 4), Pt(500, 600), Pt(3, 4)}, -1.0, true},
             {"a closed loop, NaN tolerance", {Pt(3, 4), Pt(5, 6), Pt(3, 4)}, kNaN, true},
             {"a point", {Pt(3, 4), Pt(3, 4), Pt(3, 4)}, 0.0, true},
             {"horizontal chord, at the tolerance", {Pt(0, 0), Pt(50, 2), Pt(100, 0)}, 2.0, true},
             {"horizontal chord, above", {Pt(0, 0), Pt(50, 2), Pt(100, 0)}, 1.99, false},
             {"horizontal chord, below", {Pt(0, 0), Pt(50, -2), Pt(100, 0)}, 2.0, true},
             {"vertical chord, at the tolerance", {Pt(0, 0), Pt(2, 50), Pt(0, 100)}, 2.0, true},
             {"vertical chord, above", {Pt(0, 0), Pt(2, 50), Pt(0, 100)}, 1.99, false},
             {"vertical chord, control in line", {Pt(7, 0), Pt(7, 50), Pt(7, 100)}, 0.0, true},
             {"vertical chord upward", {Pt(7, 100), Pt(5, 50), Pt(7, 0)}, 2.0, true},
             // Chord of slope 4: 4 vertically and 1 horizontally, 0.97 across.
             {"steep, horizontal decides", {Pt(0, 0), Pt(26, 100), Pt(50, 200)}, 1.0, true},
             {"steep, below both", {Pt(0, 0), Pt(26, 100), Pt(50, 200)}, 0.99, false},
             // Chord of slope 1/4: 1 vertically and 4 horizontally.
             {"shallow, vertical decides", {Pt(0, 0), Pt(100, 26), Pt(200, 50)}, 1.0, true},
             {"shallow, below both", {Pt(0, 0), Pt(100, 26), Pt(200, 50)}, 0.99, false},
             {"negative slope", {Pt(0, 50), Pt(100, 26), Pt(200, 0)}, 1.0, true},
             {"the arch", {Pt(0, 0), Pt(50, 100), Pt(100, 0)}, 99.0, false},
             {"the arch, generous", {Pt(0, 0), Pt(50, 100), Pt(100, 0)}, 100.0, true},
             {"negative tolerance", {Pt(0, 0), Pt(50, 0), Pt(100, 0)}, -1e-300, false},
             {"NaN tolerance", {Pt(0, 0), Pt(50, 0), Pt(100, 0)}, kNaN, false},
             {"infinite tolerance", {Pt(0, 0), Pt(50, 1e308), Pt(100, 1)}, kInf, true},
             {"NaN end", {Pt(0, 0), Pt(1, 1), Pt(kNaN, 2)}, kInf, false},
             {"NaN control", {Pt(0, 0), Pt(1, kNaN), Pt(2, 2)}, kInf, false},
             {"the same NaN at both ends", {Pt(kNaN, 0), Pt(1, 1), Pt(kNaN, 0)}, kInf, false},
             {"control at the start", {Pt(5, 5), Pt(5, 5), Pt(6, 9)}, 0.0, true},
         }) {
        EXPECT_EQ(each.curve.Flat(each.tolerance), each.flat) << each.name;
        EXPECT_EQ(Plain(each.curve).Flat(each.tolerance), each.flat) << each.name;
    }
}

// Generation

TEST_F(Spline, DeliversSplitPointsInOrder) {
    CBSpline::SetCurveError(10.0);
    // Dividing quarters the control point's distance from the chord: 100, 25, 6.25.
    EXPECT_EQ(Text(Generated(kArch, 15)), Text(Points{{25, 37.5}, {50, 50}, {75, 37.5}}));
    EXPECT_EQ(CBSpline::mCount, 3);
    EXPECT_EQ(Text(Generated(kArch, 2)), "(50, 50)");
    EXPECT_EQ(CBSpline::mCount, 4);
}

TEST_F(Spline, DepthAllowsOneLevelLess) {
    CBSpline::SetCurveError(-1.0); // nothing but coincident ends is flat
    for (short depth = 2; depth <= 12; ++depth) {
        EXPECT_EQ(Generated(kArch, depth).size(), (std::size_t{1} << (depth - 1)) - 1) << depth;
    }
    EXPECT_EQ(Generated(kArch, 15).size(), 16383u);
    CBSpline::mCount = 0;
    for (int depth : {1, 0, -1, -100, -32768}) {
        EXPECT_TRUE(Generated(kArch, static_cast<short>(depth)).empty()) << depth;
    }
    EXPECT_EQ(CBSpline::mCount, 0);
}

TEST_F(Spline, AFlatCurveDeliversNothing) {
    EXPECT_TRUE(Generated(CBSpline(Pt(0, 0), Pt(50, 0), Pt(100, 0)), 15).empty());
    EXPECT_TRUE(Generated(CBSpline(Pt(3, 4), Pt(500, 600), Pt(3, 4)), 15).empty());
    EXPECT_TRUE(Generated(CBSpline(Pt(0, 0), Pt(50, 2), Pt(100, 0)), 15).empty());
    EXPECT_EQ(CBSpline::mCount, 0);
}

TEST_F(Spline, TheGeneratorReadsTheClassWideError) {
    // At 5 the steep quarters are flat by their horizontal distance, 4.17, the others not.
    for (auto const& [error, count] :
         std::vector<std::pair<double, std::size_t>>{{100.0, 0}, {24.0, 3}, {5.0, 5}, {2.0, 7}}) {
        CBSpline::SetCurveError(error);
        EXPECT_EQ(Generated(kArch, 15).size(), count) << error;
    }
}

TEST_F(Spline, CountsEachPointAfterItsDelivery) {
    struct Seen {
        static void Note(Pt const&, void* counts) {
            static_cast<std::vector<std::int32_t>*>(counts)->push_back(CBSpline::mCount);
        }
    };
    std::vector<std::int32_t> counts;
    CBSpline::SetCurveError(10.0);
    kArch.GenerateSegment(Seen::Note, &counts, 15);
    EXPECT_EQ(counts, (std::vector<std::int32_t>{0, 1, 2}));
    EXPECT_EQ(CBSpline::mCount, 3);
}

TEST_F(Spline, TheCounterWraps) {
    CBSpline::mCount = INT32_MAX;
    EXPECT_EQ(Generated(kArch, 2).size(), 1u);
    EXPECT_EQ(CBSpline::mCount, INT32_MIN);
}

TEST_F(Spline, TheCubicsCountersAreNotTouched) {
    std::int32_t const oldCount = gCount;
    std::int32_t const oldMax = maxCount;
    gCount = 123;
    maxCount = 4;
    Flattened(kArch, 0.01);
    Generated(kArch, 15);
    EXPECT_EQ(gCount, 123);
    EXPECT_EQ(maxCount, 4);
    gCount = oldCount;
    maxCount = oldMax;
}

/// Throws at a given delivery.
struct Thrower {
    int left;
    static void Deliver(Pt const&, void* self) {
        if (--static_cast<Thrower*>(self)->left < 0) {
            throw std::string("enough");
        }
    }
};

TEST_F(Spline, WhatTheCallbackThrowsPassesThrough) {
    CBSpline::SetCurveError(0.01);
    Thrower thrower = {5};
    EXPECT_THROW(kArch.GenerateSegment(Thrower::Deliver, &thrower, 15), std::string);
    EXPECT_EQ(CBSpline::mCount, 5);
}

TEST_F(Spline, TheGreatestDepthFitsTheStack) {
    // With NaN no curve is flat: 32,766 levels down to the first point, then back up from there.
    CBSpline const endless(Pt(kNaN, 0), Pt(1, 1), Pt(2, 0));
    for (int const deliveries : {0, 1, 1000}) {
        CBSpline::mCount = 0;
        Thrower thrower = {deliveries};
        EXPECT_THROW(endless.GenerateSegment(Thrower::Deliver, &thrower, 32767), std::string);
        EXPECT_EQ(CBSpline::mCount, deliveries);
    }
}

/// Generates with a negative tolerance to the first delivery, and with an infinite one from there.
struct OneChain {
    Points points;
    double* error;
    static void Deliver(Pt const& p, void* self) {
        OneChain* const chain = static_cast<OneChain*>(self);
        chain->points.push_back(p);
        *chain->error = kInf;
    }
};

TEST_F(Spline, ADeepChainComesBackInOrder) {
    for (int const depth : {20, 33, 34, 64, 65, 66, 200, 1000, 32767}) {
        CBSpline const c(Pt(0, 0), Pt(0, 0), Pt(1e308, 1e308));
        CBSpline::SetCurveError(-1.0);
        OneChain ours = {{}, &CBSpline::mMaxError};
        c.GenerateSegment(OneChain::Deliver, &ours, static_cast<short>(depth));
        plain::splineState.maxError = -1.0;
        OneChain plainly = {{}, &plain::splineState.maxError};
        Plain(c).GenerateSegment([&](Pt const& p) { OneChain::Deliver(p, &plainly); }, depth);
        EXPECT_TRUE(SamePoints(ours.points, plainly.points)) << depth;
        // Each level divides the end by 4, until it meets the start: no later than 1,050 levels.
        EXPECT_GE(ours.points.size(), static_cast<std::size_t>(std::min(depth - 1, 1000)));
        EXPECT_LE(ours.points.size(), 1100u);
    }
}

TEST_F(Spline, GeneratesWhatThePlainFormDoes) {
    plain::Random random(53);
    std::array<double, 18> const adversaries = {0.0,
                                                -0.0,
                                                1.0,
                                                -1.0,
                                                5e-324,
                                                -5e-324,
                                                1e-300,
                                                1e300,
                                                1e308,
                                                -1e308,
                                                kInf,
                                                -kInf,
                                                kNaN,
                                                0.1,
                                                1e15,
                                                3.0,
                                                2.2250738585072014e-308,
                                                1.7976931348623157e308};
    std::array<double, 12> const errors = {2.0,  1.0,  0.001,  0.0,   -0.0,  -1.0,
                                           kNaN, kInf, 1e-300, 1e300, 100.0, 0.25};
    for (int i = 0; i < 20000; ++i) {
        auto const coordinate = [&](double scale) {
            return random.OneIn(3) ? adversaries[static_cast<std::size_t>(random.Int(0, 17))]
                                   : random.Uniform(-scale, scale);
        };
        double const scale = random.OneIn(4) ? random.Decade(-20, 20) : 100.0;
        bool const ordinary = random.OneIn(2);
        auto const point = [&] {
            if (ordinary) {
                return random.Pt(-scale, scale);
            }
            double const h = coordinate(scale);
            return Pt(h, coordinate(scale));
        };
        Pt const p0 = point();
        Pt const p1 = random.OneIn(12) ? p0 : point();
        Pt p2 = random.OneIn(12) ? p0 : random.OneIn(12) ? p1 : point();
        if (random.OneIn(10)) {
            p2.v = p0.v; // a horizontal chord
        } else if (random.OneIn(10)) {
            p2.h = p0.h; // a vertical one
        }
        CBSpline const c(p0, p1, p2);
        plain::Spline const p = Plain(c);
        double const error =
            random.OneIn(2) ? errors[static_cast<std::size_t>(random.Int(0, 11))] : 0.01 * scale;
        SCOPED_TRACE(Text(Points{p0, p1, p2}) + " error " + Text(error));

        CBSpline left;
        CBSpline right;
        plain::Spline plainLeft;
        plain::Spline plainRight;
        ASSERT_SAME(c.Divide(left, right), p.Divide(plainLeft, plainRight));
        ASSERT_TRUE(SameCurve(left, plainLeft) && SameCurve(right, plainRight));
        ASSERT_EQ(c.Flat(error), p.Flat(error));

        short const depth = static_cast<short>(random.Int(-1, 9));
        CBSpline::mMaxError = plain::splineState.maxError = error;
        CBSpline::mCount = plain::splineState.mCount = random.Int(-5, 5);
        Points expected;
        p.GenerateSegment([&](Pt const& pt) { expected.push_back(pt); }, depth);
        ASSERT_TRUE(SamePoints(Generated(c, depth), expected));
        ASSERT_EQ(CBSpline::mCount, plain::splineState.mCount);

        CBSpline::mMaxError = plain::splineState.maxError = 2.0;
        CBSpline::mRecursionLimit = plain::splineState.recursionLimit = depth;
        Points chain = {p2};
        TPolygon<double> polygon;
        polygon.Append(p2, true);
        p.AddSegment(chain, error);
        c.AddSegmentToPoly(polygon, error);
        ASSERT_TRUE(SamePoints(PointsOf(polygon), chain));
        ASSERT_EQ(CBSpline::mCount, plain::splineState.mCount);
        ASSERT_EQ(CBSpline::mMaxError, 2.0);
    }
}

// Flattening

TEST_F(Spline, FlattensTheArch) {
    Points const points = Flattened(kArch, 2.0);
    EXPECT_EQ(Text(points), Text(Points{{0, 0},
                                        {12.5, 21.875},
                                        {25, 37.5},
                                        {37.5, 46.875},
                                        {50, 50},
                                        {62.5, 46.875},
                                        {75, 37.5},
                                        {87.5, 21.875},
                                        {100, 0}}));
    for (Pt const& p : points) { // on the curve, at a dyadic parameter
        double const t = p.h / 100.0;
        EXPECT_EQ(p.v, 200.0 * t * (1.0 - t));
        EXPECT_EQ(std::floor(t * 8.0), t * 8.0);
    }
}

TEST_F(Spline, AStraightCurveFlattensToItsEnds) {
    EXPECT_EQ(Text(Flattened(CBSpline(Pt(0, 0), Pt(50, 0), Pt(100, 0)), 2.0)), "(0, 0) (100, 0)");
    EXPECT_EQ(CBSpline::mCount, 0);
}

TEST_F(Spline, CoincidentEndsFlattenToOnePointWhateverTheControl) {
    for (Pt const& control : Points{{3, 4}, {500, 600}, {-1e300, 1e300}, {kNaN, kInf}}) {
        EXPECT_EQ(Text(Flattened(CBSpline(Pt(3, 4), control, Pt(3, 4)), 0.001)), "(3, 4)");
    }
}

TEST_F(Spline, OnlyThreeEqualPointsSkipTheGenerator) {
    // With a negative tolerance whatever is generated has points, its straight form too.
    CBSpline::mRecursionLimit = 3;
    EXPECT_EQ(Text(Flattened(CBSpline(Pt(8, 8), Pt(8, 8), Pt(0, 8)), -1.0)),
              "(8, 8) (7.5, 8) (6, 8) (3.5, 8) (0, 8)");
    EXPECT_EQ(Text(Flattened(CBSpline(Pt(8, 8), Pt(0, 8), Pt(0, 8)), -1.0)),
              "(8, 8) (4.5, 8) (2, 8) (0.5, 8) (0, 8)");
    EXPECT_EQ(CBSpline::mCount, 6);
    EXPECT_EQ(Text(Flattened(CBSpline(Pt(8, 8), Pt(8, 8), Pt(8, 8)), -1.0)), "(8, 8)");
    EXPECT_EQ(CBSpline::mCount, 6);
}

TEST_F(Spline, AppendsToWhatThePolygonHolds) {
    TPolygon<double> polygon;
    CBSpline const first(Pt(0, 0), Pt(5, 0), Pt(10, 0));
    first.AddSegmentToPoly(polygon, 2.0);
    CBSpline(Pt(10, 0), Pt(10, 5), Pt(10, 10)).AddSegmentToPoly(polygon, 2.0);
    CBSpline(Pt(20, 10), Pt(25, 10), Pt(30, 10)).AddSegmentToPoly(polygon, 2.0);
    EXPECT_EQ(Text(PointsOf(polygon)), "(0, 0) (10, 0) (10, 10) (20, 10) (30, 10)");
    EXPECT_FALSE(polygon.Closed());
}

TEST_F(Spline, TheErrorHoldsForOneFlatteningOnly) {
    CBSpline::SetCurveError(7.0);
    EXPECT_EQ(Flattened(kArch, 2.0).size(), 9u);
    EXPECT_EQ(CBSpline::CurveError(), 7.0);
    EXPECT_GT(Flattened(kArch, 0.001).size(), 100u);
    EXPECT_EQ(CBSpline::CurveError(), 7.0);
}

TEST_F(Spline, FlatteningUsesTheClassWideDepth) {
    for (std::int16_t const limit : {std::int16_t{0}, std::int16_t{1}}) {
        CBSpline::mRecursionLimit = limit;
        EXPECT_EQ(Text(Flattened(kArch, 0.001)), "(0, 0) (100, 0)");
    }
    CBSpline::mRecursionLimit = 2;
    EXPECT_EQ(Text(Flattened(kArch, 0.001)), "(0, 0) (50, 50) (100, 0)");
    CBSpline::mRecursionLimit = 15;
    CBSpline const never(Pt(0, 0), Pt(0, kNaN), Pt(2, 0));
    EXPECT_EQ(Flattened(never, 1.0).size(), 16383u + 2);
}

TEST_F(Spline, FlattenedPointsLieOnTheCurve) {
    plain::Random random(7);
    for (int i = 0; i < 20; ++i) {
        CBSpline const c(random.Pt(-100, 100), random.Pt(-100, 100), random.Pt(-100, 100));
        Points const points = Flattened(c, 0.01);
        EXPECT_SAME(points.front(), c.P0);
        EXPECT_SAME(points.back(), c.P2);
        double before = -1.0;
        for (std::size_t k = 1; k + 1 < points.size(); ++k) {
            // The dyadic parameter whose point this is, by search from the last one on.
            double best = kInf;
            double at = 0.0;
            for (int n = 1; n < 4096; ++n) {
                double const t = n / 4096.0;
                Pt const on =
                    c.P0 * ((1 - t) * (1 - t)) + c.P1 * (2 * t * (1 - t)) + c.P2 * (t * t);
                double const distance = std::hypot(on.h - points[k].h, on.v - points[k].v);
                if (distance < best) {
                    best = distance;
                    at = t;
                }
            }
            ASSERT_LT(best, 1e-12);
            ASSERT_GT(at, before) << "in the order of the parameter";
            before = at;
        }
    }
}

TEST_F(Spline, AddPtToPolyLeavesOutRepetitions) {
    TPolygon<double> polygon;
    for (Pt const& p : Points{{1, 2}, {1, 2}, {3, 4}, {3, 4}, {1, 2}, {0.0, 0}, {-0.0, 0}}) {
        CBSpline::AddPtToPoly(p, polygon);
    }
    EXPECT_EQ(Text(PointsOf(polygon)), "(1, 2) (3, 4) (1, 2) (0, 0)");
}

// Bounds

TEST_F(Spline, ExtentsAreThoseOfTheThreePoints) {
    EXPECT_EQ(Text(kArch.Extents()), "[0, 0, 100, 100]");
    EXPECT_EQ(Text(CBSpline(Pt(5, 1), Pt(-3, 9), Pt(7, 4)).Extents()), "[-3, 1, 7, 9]");
    EXPECT_EQ(Text(CBSpline(Pt(7, 4), Pt(6, 2), Pt(5, 1)).Extents()), "[5, 1, 7, 4]");
    EXPECT_EQ(Text(CBSpline(Pt(0, 0), Pt(30, 40), Pt(0, 0)).Extents()), "[30, 40, 30, 40]")
        << "the null rectangle counts as none";
    EXPECT_EQ(Text(CBSpline().Extents()), "[0, 0, 0, 0]");
    plain::Random random(8);
    for (int i = 0; i < 200; ++i) {
        CBSpline const c(random.Pt(-9, 9), random.Pt(-9, 9), random.Pt(-9, 9));
        TRect<double> const box = c.Extents();
        for (Pt const& p : Flattened(c, 0.01)) {
            ASSERT_TRUE(box.Contains(p));
        }
    }
}

} // namespace
