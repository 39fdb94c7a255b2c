// SPDX-License-Identifier: MIT

#include "TLine.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <type_traits>

using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Random;
using trammel_test::SameBits;

namespace {

using DPoint = TPoint<double>;
using DRect = TRect<double>;
using Line = TLine<double>;

Line MakeLine(double h1, double v1, double h2, double v2) {
    return {DPoint(h1, v1), DPoint(h2, v2)};
}

Line RandomLine(Random& random, double reach) {
    DPoint const a = random.Point(reach);
    return {a, random.Point(reach)};
}

bool SameLine(Line const& a, Line const& b) {
    return SameBits(a.mStart, b.mStart) && SameBits(a.mEnd, b.mEnd);
}

void ExpectNear(DPoint const& got, DPoint const& want, double tolerance) {
    EXPECT_NEAR(got.h, want.h, tolerance);
    EXPECT_NEAR(got.v, want.v, tolerance);
}

TEST(TLine, IsTwoPoints) {
    EXPECT_EQ(sizeof(Line), 32U);
    EXPECT_EQ(offsetof(Line, mStart), 0U);
    EXPECT_EQ(offsetof(Line, mEnd), 16U);
    EXPECT_FALSE(std::is_polymorphic_v<Line>);
    Line const none;
    EXPECT_TRUE(none.mStart.Null() && none.mEnd.Null());
    Line const line(DPoint(1.0, 2.0), DPoint(3.0, 4.0));
    EXPECT_EQ(line.mStart, DPoint(1.0, 2.0));
    EXPECT_EQ(line.mEnd, DPoint(3.0, 4.0));
    Line const copy(line);
    EXPECT_TRUE(copy == line);
    Line set;
    EXPECT_EQ(&set.Set(DPoint(1.0, 2.0), DPoint(3.0, 4.0)), &set);
    EXPECT_TRUE(set == line);
}

TEST(TLine, EqualityKnowsNoReversal) {
    Line const line = MakeLine(1.0, 2.0, 3.0, 4.0);
    EXPECT_TRUE(line == MakeLine(1.0, 2.0, 3.0, 4.0));
    EXPECT_FALSE(line == MakeLine(3.0, 4.0, 1.0, 2.0));
    EXPECT_FALSE(line == MakeLine(1.0, 2.0, 3.0, 5.0));
    EXPECT_FALSE(line == MakeLine(0.0, 2.0, 3.0, 4.0));
    Line const nan = MakeLine(kNaN, 2.0, 3.0, 4.0);
    EXPECT_FALSE(nan == nan); // NOLINT(misc-redundant-expression)
}

TEST(TLine, MovesByAPoint) {
    Line line = MakeLine(1.0, 2.0, 3.0, 4.0);
    EXPECT_TRUE(line + DPoint(10.0, -1.0) == MakeLine(11.0, 1.0, 13.0, 3.0));
    EXPECT_TRUE(line == MakeLine(1.0, 2.0, 3.0, 4.0));
    EXPECT_EQ(&(line += DPoint(10.0, -1.0)), &line);
    EXPECT_TRUE(line == MakeLine(11.0, 1.0, 13.0, 3.0));
}

TEST(TLine, MayBeItsOwnArgument) {
    Line line = MakeLine(1.0, 2.0, 3.0, 5.0);
    line += line.mStart;
    EXPECT_TRUE(line == MakeLine(2.0, 4.0, 4.0, 7.0));
    line += line.mEnd;
    EXPECT_TRUE(line == MakeLine(6.0, 11.0, 8.0, 14.0));
    line.Set(line.mEnd, line.mStart);
    EXPECT_TRUE(line == MakeLine(8.0, 14.0, 6.0, 11.0));
    line = MakeLine(1.0, 2.0, 3.0, 5.0);
    Line const start = Line(line).Rotate(0.5, DPoint(1.0, 2.0));
    Line const end = Line(line).Rotate(0.5, DPoint(3.0, 5.0));
    Line turned = line;
    turned.Rotate(0.5, turned.mStart);
    EXPECT_TRUE(SameLine(turned, start));
    turned = line;
    turned.Rotate(0.5, turned.mEnd);
    EXPECT_TRUE(SameLine(turned, end));
    // `where` may be an end of either line.
    Line a = MakeLine(0.0, 0.0, 1.0, 1.0);
    Line b = MakeLine(0.0, 1.0, 1.0, 0.0);
    EXPECT_TRUE(a.Intersects(b, a.mStart));
    EXPECT_TRUE(a == MakeLine(0.5, 0.5, 1.0, 1.0));
    a = MakeLine(0.0, 0.0, 1.0, 1.0);
    EXPECT_TRUE(a.SegmentsIntersect(b, a.mStart));
    EXPECT_TRUE(a == MakeLine(0.5, 0.5, 1.0, 1.0));
    a = MakeLine(0.0, 0.0, 1.0, 1.0);
    EXPECT_TRUE(a.SegmentsIntersect(b, b.mEnd));
    EXPECT_TRUE(b == MakeLine(0.0, 1.0, 0.5, 0.5));
    a = MakeLine(0.0, 0.0, 1.0, 1.0);
    b = MakeLine(5.0, 4.0, 4.0, 5.0); // crosses the line at (4.5, 4.5), outside the segment
    EXPECT_FALSE(a.SegmentsIntersect(b, a.mEnd));
    EXPECT_TRUE(a == MakeLine(0.0, 0.0, 4.5, 4.5));
    a = MakeLine(0.0, 1.0, 2.0, 5.0);
    a.YIntersect(1.0, a.mStart);
    EXPECT_TRUE(a == MakeLine(1.0, 3.0, 2.0, 5.0));
    b = MakeLine(2.0, 0.0, 2.0, 7.0); // vertical
    EXPECT_TRUE(b.Intersects(MakeLine(0.0, 0.0, 4.0, 4.0), b.mEnd));
    EXPECT_TRUE(b == MakeLine(2.0, 0.0, 2.0, 2.0));
}

TEST(TLine, DescribesItsDirection) {
    Line const line = MakeLine(1.0, 2.0, 4.0, 6.0);
    EXPECT_EQ(line.Delta(), DPoint(3.0, 4.0));
    EXPECT_EQ(line.Length(), 5.0);
    EXPECT_EQ(line.Slope(), 4.0 / 3.0);
    EXPECT_EQ(line.Angle(), std::atan2(4.0, 3.0));
    EXPECT_EQ(MakeLine(0.0, 0.0, 0.0, 5.0).Slope(), kInf);
    EXPECT_EQ(MakeLine(0.0, 5.0, 0.0, 0.0).Slope(), -kInf);
    EXPECT_TRUE(std::isnan(MakeLine(1.0, 1.0, 1.0, 1.0).Slope()));
    EXPECT_EQ(MakeLine(1.0, 1.0, 1.0, 1.0).Length(), 0.0);
    EXPECT_EQ(MakeLine(0.0, 5.0, 0.0, 0.0).Angle(), -pi / 2.0);
    EXPECT_DOUBLE_EQ(MakeLine(0.0, 0.0, 3e200, 4e200).Length(), 5e200); // hypot
    Random random(801);
    for (int i = 0; i < 1000; ++i) {
        Line const l = RandomLine(random, 100.0);
        double const dh = l.mEnd.h - l.mStart.h;
        double const dv = l.mEnd.v - l.mStart.v;
        ASSERT_DOUBLE_EQ(l.Length(), std::hypot(dh, dv));
        ASSERT_EQ(l.Slope(), dv / dh);
        ASSERT_EQ(l.Angle(), std::atan2(dv, dh));
    }
}

TEST(TLine, BoundsAreInOrder) {
    EXPECT_EQ(MakeLine(5.0, 1.0, 2.0, 7.0).Bounds(), DRect(2.0, 1.0, 5.0, 7.0));
    EXPECT_EQ(MakeLine(5.0, 1.0, 5.0, 1.0).Bounds(), DRect(5.0, 1.0, 5.0, 1.0));
}

TEST(TLine, TPtIsNotLimitedToTheSegment) {
    Line const line = MakeLine(1.0, 2.0, 5.0, -6.0);
    EXPECT_EQ(line.TPt(0.0), DPoint(1.0, 2.0));
    EXPECT_EQ(line.TPt(0.25), DPoint(2.0, 0.0));
    EXPECT_EQ(line.TPt(1.0), DPoint(5.0, -6.0));
    EXPECT_EQ(line.TPt(-1.0), DPoint(-3.0, 10.0));
    EXPECT_EQ(line.TPt(2.0), DPoint(9.0, -14.0));
    EXPECT_EQ(line.MidPt(), DPoint(3.0, -2.0));
    EXPECT_TRUE(std::isnan(line.TPt(kNaN).h));
    Random random(802);
    for (int i = 0; i < 1000; ++i) {
        Line const l = RandomLine(random, 100.0);
        double const t = random.Uniform(-2.0, 3.0);
        ASSERT_TRUE(SameBits(l.TPt(t), DPoint(l.mStart.h + (l.mEnd.h - l.mStart.h) * t,
                                              l.mStart.v + (l.mEnd.v - l.mStart.v) * t)));
        ASSERT_TRUE(SameBits(l.MidPt(), l.TPt(0.5)));
    }
}

TEST(TLine, RotatesBothPointsAsPointsDo) {
    Random random(803);
    for (int i = 0; i < 300; ++i) {
        Line const line = RandomLine(random, 100.0);
        DPoint const c = random.Point(100.0);
        double const angle = random.Uniform(-7.0, 7.0);
        Line turned = line;
        EXPECT_EQ(&turned.Rotate(angle), &turned);
        ASSERT_TRUE(SameLine(
            turned, Line(DPoint(line.mStart).Rotate(angle), DPoint(line.mEnd).Rotate(angle))));
        turned = line;
        EXPECT_EQ(&turned.Rotate(angle, c), &turned);
        ASSERT_TRUE(SameLine(turned, Line(DPoint(line.mStart).Rotate(angle, c),
                                          DPoint(line.mEnd).Rotate(angle, c))));
    }
}

TEST(TLine, PerpendicularIsAQuarterTurn) {
    Line const line = MakeLine(1.0, 1.0, 5.0, 1.0);
    Line const about = line.Perpendicular(DPoint(0.0, 0.0));
    ExpectNear(about.mStart, DPoint(-1.0, 1.0), 1e-15);
    ExpectNear(about.mEnd, DPoint(-1.0, 5.0), 1e-15);
    Line const middle = line.Perpendicular();
    ExpectNear(middle.mStart, DPoint(3.0, -1.0), 1e-15);
    ExpectNear(middle.mEnd, DPoint(3.0, 3.0), 1e-15);
    EXPECT_TRUE(line == MakeLine(1.0, 1.0, 5.0, 1.0));
    Random random(804);
    for (int i = 0; i < 300; ++i) {
        Line const l = RandomLine(random, 100.0);
        DPoint const c = random.Point(100.0);
        ASSERT_TRUE(SameLine(l.Perpendicular(c), Line(l).Rotate(pi / 2.0, c)));
        ASSERT_TRUE(SameLine(l.Perpendicular(), l.Perpendicular(l.MidPt())));
        ASSERT_TRUE(SameLine(l.PerpendicularBisector(), l.Perpendicular()));
        ExpectNear(l.PerpendicularBisector().MidPt(), l.MidPt(), 1e-12);
        EXPECT_NEAR(l.Dot(l.Perpendicular()), 0.0, 1e-9);
        // Any point of the bisector is as far from one end as from the other.
        DPoint const p = l.PerpendicularBisector().TPt(random.Uniform(-2.0, 3.0));
        EXPECT_NEAR(Hypotenuse(p, l.mStart), Hypotenuse(p, l.mEnd), 1e-9);
    }
}

TEST(TLine, DotIsTheScalarProductOfTheDirections) {
    EXPECT_EQ(MakeLine(1.0, 1.0, 3.0, 4.0).Dot(MakeLine(0.0, 0.0, 5.0, -7.0)), -11.0);
    EXPECT_EQ(MakeLine(1.0, 1.0, 3.0, 4.0).Dot(MakeLine(9.0, 9.0, 9.0, 9.0)), 0.0);
    Random random(805);
    for (int i = 0; i < 300; ++i) {
        Line const a = RandomLine(random, 100.0);
        Line const b = RandomLine(random, 100.0);
        DPoint const d = a.Delta();
        DPoint const e = b.Delta();
        ASSERT_EQ(a.Dot(b), d.h * e.h + d.v * e.v);
    }
}

TEST(TLineCosTheta, IsTheCosineBetweenTheDirections) {
    Line const axis = MakeLine(0.0, 0.0, 1.0, 0.0);
    EXPECT_EQ(axis.CosTheta(MakeLine(5.0, 5.0, 5.0, 9.0)), 0.0);
    EXPECT_EQ(axis.CosTheta(MakeLine(5.0, 5.0, 8.0, 9.0)), 0.6);
    EXPECT_EQ(axis.CosTheta(MakeLine(5.0, 5.0, 2.0, 9.0)), -0.6);
    EXPECT_EQ(axis.CosTheta(MakeLine(0.0, 7.0, 3.0, 7.0)), 1.0);
    EXPECT_EQ(axis.CosTheta(MakeLine(3.0, 7.0, 0.0, 7.0)), -1.0);
    Random random(806);
    for (int i = 0; i < 1000; ++i) {
        Line const a = RandomLine(random, 100.0);
        Line const b = RandomLine(random, 100.0);
        DPoint const d = a.Delta();
        DPoint const e = b.Delta();
        double const c =
            (d.h * e.h + d.v * e.v) / std::sqrt((d.h * d.h + d.v * d.v) * (e.h * e.h + e.v * e.v));
        ASSERT_LT(std::abs(c), 1.0 - 1e-14); // so no snapping here
        ASSERT_EQ(a.CosTheta(b), c);
    }
}

TEST(TLineCosTheta, SnapsWithin1em15OfOne) {
    Line const axis = MakeLine(0.0, 0.0, 1.0, 0.0);
    EXPECT_EQ(axis.CosTheta(MakeLine(0.0, 0.0, 1.0, 1e-16)), 1.0);
    EXPECT_EQ(axis.CosTheta(MakeLine(0.0, 0.0, 1.0, 4e-8)), 1.0); // 8e-16 off
    EXPECT_EQ(axis.CosTheta(MakeLine(0.0, 0.0, -1.0, 4e-8)), -1.0);
    double const near = axis.CosTheta(MakeLine(0.0, 0.0, 1.0, 5e-8)); // 1.25e-15 off
    EXPECT_LT(near, 1.0);
    EXPECT_GT(near, 1.0 - 2e-15);
    double const nearOpposite = axis.CosTheta(MakeLine(0.0, 0.0, -1.0, 5e-8));
    EXPECT_GT(nearOpposite, -1.0);
    EXPECT_LT(nearOpposite, -1.0 + 2e-15);
}

TEST(TLineCosTheta, OfALineAndItselfOrItsReverseIsOne) {
    Random random(807);
    for (int i = 0; i < 1000; ++i) {
        Line const line = RandomLine(random, 100.0);
        ASSERT_EQ(line.CosTheta(line), 1.0);
        ASSERT_EQ(line.CosTheta(Line(line.mEnd, line.mStart)), -1.0);
    }
}

TEST(TLineCosTheta, FlowsThroughDegenerateInput) {
    Line const axis = MakeLine(0.0, 0.0, 1.0, 0.0);
    EXPECT_TRUE(std::isnan(axis.CosTheta(MakeLine(3.0, 3.0, 3.0, 3.0))));
    EXPECT_TRUE(std::isnan(MakeLine(3.0, 3.0, 3.0, 3.0).CosTheta(axis)));
    EXPECT_TRUE(std::isnan(axis.CosTheta(MakeLine(0.0, kNaN, 1.0, 1.0))));
    // The product of the squared lengths overflows or underflows.
    Line const huge = MakeLine(0.0, 0.0, 1e100, 0.0);
    EXPECT_EQ(huge.CosTheta(huge), 0.0);
    Line const tiny = MakeLine(0.0, 0.0, 1e-100, 0.0);
    EXPECT_EQ(tiny.CosTheta(tiny), kInf);
    EXPECT_TRUE(std::isnan(tiny.CosTheta(MakeLine(0.0, 0.0, 0.0, 1e-100))));
}

TEST(TLine, DeltaAngleIsInZeroToPi) {
    Line const axis = MakeLine(0.0, 0.0, 1.0, 0.0);
    EXPECT_EQ(axis.DeltaAngle(MakeLine(0.0, 0.0, 7.0, 0.0)), 0.0);
    EXPECT_EQ(axis.DeltaAngle(MakeLine(0.0, 0.0, -7.0, 0.0)), pi);
    EXPECT_EQ(axis.DeltaAngle(MakeLine(0.0, 0.0, 0.0, 7.0)), pi / 2.0);
    EXPECT_EQ(axis.DeltaAngle(MakeLine(0.0, 0.0, 0.0, -7.0)), pi / 2.0);
    EXPECT_EQ(axis.DeltaAngle(MakeLine(0.0, 0.0, 3.0, 4.0)), std::acos(0.6));
    EXPECT_TRUE(std::isnan(axis.DeltaAngle(MakeLine(1.0, 1.0, 1.0, 1.0))));
}

TEST(TLineHalfSpace, IsPlusOneWhereAQuarterTurnLeads) {
    Line axis = MakeLine(0.0, 0.0, 1.0, 0.0);
    EXPECT_EQ(axis.HalfSpace(DPoint(0.5, 1.0)), 1);
    EXPECT_EQ(axis.HalfSpace(DPoint(0.5, -1.0)), -1);
    EXPECT_EQ(axis.HalfSpace(DPoint(50.0, 1e-9)), 1);
    Line reversed = MakeLine(1.0, 0.0, 0.0, 0.0);
    EXPECT_EQ(reversed.HalfSpace(DPoint(0.5, 1.0)), -1);
    EXPECT_EQ(reversed.HalfSpace(DPoint(0.5, -1.0)), 1);
}

TEST(TLineHalfSpace, IsMinusOneInDoubt) {
    Line line = MakeLine(3.0, 4.0, 7.0, 5.0);
    EXPECT_EQ(line.HalfSpace(line.mStart), -1);
    EXPECT_EQ(line.HalfSpace(DPoint(kNaN, 0.0)), -1);
    Line point = MakeLine(3.0, 4.0, 3.0, 4.0);
    EXPECT_EQ(point.HalfSpace(DPoint(9.0, 9.0)), -1);
}

TEST(TLineHalfSpace, GoesByTheRotatedSegment) {
    Random random(808);
    for (int i = 0; i < 2000; ++i) {
        Line line = RandomLine(random, 100.0);
        // Every other point on the line, up to rounding: there the way of computing shows.
        DPoint const p = i % 2 == 0 ? random.Point(100.0) : line.TPt(random.Uniform(-2.0, 3.0));
        Line const turned(DPoint(line.mStart).Rotate(pi / 2.0, line.mStart),
                          DPoint(line.mEnd).Rotate(pi / 2.0, line.mStart));
        DPoint const n = turned.mEnd - turned.mStart;
        DPoint const q = p - line.mStart;
        ASSERT_EQ(line.HalfSpace(p), n.h * q.h + n.v * q.v > 0.0 ? 1 : -1);
        DPoint const d = line.Delta();
        double const cross = d.h * q.v - d.v * q.h;
        if (std::abs(cross) > 1e-6) {
            ASSERT_EQ(line.HalfSpace(p), cross > 0.0 ? 1 : -1);
        }
    }
}

TEST(TLinePerpendicularPt, IsExactForVerticalAndHorizontalLines) {
    EXPECT_EQ(MakeLine(2.0, 0.0, 2.0, 5.0).PerpendicularPt(DPoint(7.0, 9.5)), DPoint(2.0, 9.5));
    EXPECT_EQ(MakeLine(0.0, 2.0, 5.0, 2.0).PerpendicularPt(DPoint(7.25, 9.0)), DPoint(7.25, 2.0));
    // Without direction as for a vertical line.
    EXPECT_EQ(MakeLine(2.0, 3.0, 2.0, 3.0).PerpendicularPt(DPoint(7.0, 9.0)), DPoint(2.0, 9.0));
}

TEST(TLinePerpendicularPt, IsTheFootOnASlantedLine) {
    EXPECT_EQ(MakeLine(0.0, 0.0, 4.0, 4.0).PerpendicularPt(DPoint(0.0, 4.0)), DPoint(2.0, 2.0));
    EXPECT_EQ(MakeLine(0.0, 0.0, 4.0, 4.0).PerpendicularPt(DPoint(10.0, 0.0)), DPoint(5.0, 5.0));
    Random random(809);
    for (int i = 0; i < 1000; ++i) {
        Line const line = RandomLine(random, 100.0);
        DPoint const p = random.Point(100.0);
        DPoint const& s = line.mStart;
        double const m = (line.mEnd.v - s.v) / (line.mEnd.h - s.h);
        double const n = -1.0 / m;
        double const x = (n * p.h - m * s.h - p.v + s.v) / (n - m);
        double const y = n * x - n * p.h + p.v;
        DPoint const foot = line.PerpendicularPt(p);
        ASSERT_TRUE(SameBits(foot, DPoint(x, y)));
        if (std::abs(m) > 0.1 && std::abs(m) < 10.0 && line.Length() > 1.0) {
            ASSERT_NEAR(Line(p, foot).Dot(line) / line.Length(), 0.0, 1e-9);
        }
    }
}

TEST(TLinePerpendicularPt, TakesANaNDirectionForSlanted) {
    DPoint const foot = MakeLine(0.0, 0.0, kNaN, 5.0).PerpendicularPt(DPoint(1.0, 2.0));
    EXPECT_TRUE(std::isnan(foot.h) && std::isnan(foot.v));
    EXPECT_TRUE(std::isnan(MakeLine(0.0, 0.0, 5.0, kNaN).PerpendicularPt(DPoint(1.0, 2.0)).h));
    // A vertical line is found so before its NaN matters.
    EXPECT_EQ(MakeLine(1.0, 0.0, 1.0, kNaN).PerpendicularPt(DPoint(7.0, 8.0)), DPoint(1.0, 8.0));
}

TEST(TLine, DistanceIsToTheInfiniteLine) {
    EXPECT_EQ(MakeLine(0.0, 2.0, 5.0, 2.0).Distance(DPoint(100.0, 9.0)), 7.0);
    EXPECT_EQ(MakeLine(2.0, 0.0, 2.0, 5.0).Distance(DPoint(-1.0, 90.0)), 3.0);
    EXPECT_EQ(MakeLine(0.0, 0.0, 4.0, 4.0).Distance(DPoint(20.0, 20.0)), 0.0);
    EXPECT_DOUBLE_EQ(MakeLine(0.0, 0.0, 4.0, 4.0).Distance(DPoint(0.0, 4.0)), std::hypot(2.0, 2.0));
    EXPECT_TRUE(std::isnan(MakeLine(0.0, 0.0, 4.0, 4.0).Distance(DPoint(kNaN, 4.0))));
}

TEST(TLineHitTest, NeedsThePointInTheGrownBox) {
    Line const line = MakeLine(0.0, 0.0, 10.0, 10.0);
    EXPECT_TRUE(line.HitTest(DPoint(5.0, 5.0), 0.0));
    EXPECT_TRUE(line.HitTest(DPoint(11.0, 11.0), 1.0)); // the box's corner, inclusive
    EXPECT_FALSE(line.HitTest(DPoint(11.001, 11.001), 1.0));
    EXPECT_FALSE(line.HitTest(DPoint(-1.001, -1.001), 1.0));
    EXPECT_TRUE(MakeLine(10.0, 10.0, 0.0, 0.0).HitTest(DPoint(-1.0, -1.0), 1.0));
}

TEST(TLineHitTest, OffsetsAreInclusive) {
    Line const line = MakeLine(0.0, 0.0, 10.0, 10.0);
    EXPECT_TRUE(line.HitTest(DPoint(5.0, 6.0), 1.0));
    EXPECT_FALSE(line.HitTest(DPoint(5.0, std::nextafter(6.0, 7.0)), 1.0));
    Line const steep = MakeLine(0.0, 0.0, 2.0, 20.0);
    EXPECT_TRUE(steep.HitTest(DPoint(1.5, 5.0), 1.0)); // horizontally 1 away, vertically 10
    EXPECT_FALSE(steep.HitTest(DPoint(1.5, 4.9), 1.0));
    Line const flat = MakeLine(0.0, 0.0, 20.0, 2.0);
    EXPECT_TRUE(flat.HitTest(DPoint(5.0, 1.5), 1.0)); // vertically 1 away, horizontally 10
    EXPECT_FALSE(flat.HitTest(DPoint(4.9, 1.5), 1.0));
}

TEST(TLineHitTest, TheBoxIsTestEnoughWhenNarrowerThanTheTolerance) {
    Line const line = MakeLine(0.0, 0.0, 1.0, 10.0);
    EXPECT_TRUE(line.HitTest(DPoint(-2.0, 12.0), 2.0)); // any point of the box
    EXPECT_TRUE(line.HitTest(DPoint(3.0, -2.0), 2.0));
    // An extent that equals the tolerance is not narrower.
    EXPECT_FALSE(line.HitTest(DPoint(-1.0, 5.0), 1.0));
    EXPECT_TRUE(line.HitTest(DPoint(-1.0, 5.0), std::nextafter(1.0, 2.0)));
    Line const flat = MakeLine(0.0, 0.0, 10.0, 1.0);
    EXPECT_FALSE(flat.HitTest(DPoint(5.0, -1.0), 1.0));
    EXPECT_TRUE(flat.HitTest(DPoint(5.0, -1.0), std::nextafter(1.0, 2.0)));
    EXPECT_TRUE(MakeLine(3.0, 3.0, 3.0, 3.0).HitTest(DPoint(4.0, 2.0), 1.0)); // a point
}

TEST(TLineHitTest, WithoutToleranceHitsExactlyTheLine) {
    // A horizontal line is not narrower than 0, so the offsets decide: 0·h - 0 and 0/0.
    EXPECT_TRUE(MakeLine(0.0, 0.0, 10.0, 0.0).HitTest(DPoint(5.0, 0.0), 0.0));
    EXPECT_FALSE(MakeLine(0.0, 0.0, 10.0, 0.0).HitTest(DPoint(5.0, 1e-300), 0.0));
    EXPECT_TRUE(MakeLine(0.0, 0.0, 0.0, 10.0).HitTest(DPoint(0.0, 5.0), 0.0));
    EXPECT_FALSE(MakeLine(1.0, 1.0, 1.0, 1.0).HitTest(DPoint(1.0, 1.0), 0.0)); // NaN slope
}

TEST(TLineHitTest, NeverHitsWithANegativeToleranceOrNaN) {
    Line const line = MakeLine(0.0, 0.0, 10.0, 10.0);
    EXPECT_FALSE(line.HitTest(DPoint(5.0, 5.0), -1.0));
    EXPECT_FALSE(line.HitTest(DPoint(5.0, 5.0), -100.0));
    EXPECT_FALSE(line.HitTest(DPoint(5.0, 5.0), kNaN));
    EXPECT_FALSE(line.HitTest(DPoint(kNaN, 5.0), 1.0));
    EXPECT_FALSE(line.HitTest(DPoint(5.0, kNaN), 1.0));
    EXPECT_FALSE(MakeLine(kNaN, 0.0, 10.0, 10.0).HitTest(DPoint(5.0, 5.0), 1.0));
    EXPECT_FALSE(MakeLine(0.0, 0.0, 10.0, kNaN).HitTest(DPoint(5.0, 5.0), 1.0));
    EXPECT_TRUE(line.HitTest(DPoint(1e308, -1e308), kInf));
}

TEST(TLineHitTest, FollowsItsStepsOnRandomInput) {
    int hits = 0;
    Random random(810);
    for (int i = 0; i < 5000; ++i) {
        Line const line = RandomLine(random, 10.0);
        DPoint const p = random.Point(10.0);
        double const tolerance = random.Uniform(0.0, 4.0);
        DPoint const d = line.mEnd - line.mStart;
        DPoint const q = p - line.mStart;
        bool want = p.h >= std::min(line.mStart.h, line.mEnd.h) - tolerance &&
                    p.h <= std::max(line.mStart.h, line.mEnd.h) + tolerance &&
                    p.v >= std::min(line.mStart.v, line.mEnd.v) - tolerance &&
                    p.v <= std::max(line.mStart.v, line.mEnd.v) + tolerance;
        double const m = d.v / d.h;
        want =
            want && (tolerance > std::abs(d.h) || tolerance > std::abs(d.v) ||
                     tolerance >= std::abs(q.h * m - q.v) || tolerance >= std::abs(q.v / m - q.h));
        ASSERT_EQ(line.HitTest(p, tolerance), want);
        hits += want;
    }
    EXPECT_GT(hits, 500);
    EXPECT_LT(hits, 4500);
}

TEST(TLineIntersects, CrossesInfiniteLines) {
    DPoint where;
    EXPECT_TRUE(MakeLine(0.0, 0.0, 1.0, 1.0).Intersects(MakeLine(5.0, 4.0, 4.0, 5.0), where));
    EXPECT_EQ(where, DPoint(4.5, 4.5));
    EXPECT_TRUE(MakeLine(0.0, 1.0, 1.0, 3.0).Intersects(MakeLine(0.0, 0.0, 4.0, 4.0), where));
    EXPECT_EQ(where, DPoint(-1.0, -1.0));
}

TEST(TLineIntersects, HandlesVerticalLinesOnEitherSide) {
    DPoint where;
    Line const vertical = MakeLine(2.0, 7.0, 2.0, 9.0);
    Line const slanted = MakeLine(0.0, 0.0, 4.0, 4.0);
    EXPECT_TRUE(vertical.Intersects(slanted, where));
    EXPECT_EQ(where, DPoint(2.0, 2.0));
    where.SetNull();
    EXPECT_TRUE(slanted.Intersects(vertical, where));
    EXPECT_EQ(where, DPoint(2.0, 2.0));
    EXPECT_TRUE(vertical.Intersects(MakeLine(-5.0, 3.0, 9.0, 3.0), where));
    EXPECT_EQ(where, DPoint(2.0, 3.0));
}

TEST(TLineIntersects, RefusesParallelAndCoincidentLinesAndLeavesWhereAlone) {
    DPoint where(77.0, 88.0);
    Line const axis = MakeLine(0.0, 0.0, 1.0, 0.0);
    EXPECT_FALSE(axis.Intersects(MakeLine(0.0, 5.0, 3.0, 5.0), where));
    EXPECT_FALSE(axis.Intersects(MakeLine(3.0, 5.0, 0.0, 5.0), where));
    EXPECT_FALSE(axis.Intersects(axis, where));
    EXPECT_FALSE(axis.Intersects(MakeLine(0.0, 0.0, 1.0, 1e-16), where));
    EXPECT_FALSE(axis.Intersects(MakeLine(0.0, 5.0, 1.0, 5.0 + 4e-8), where));
    EXPECT_FALSE(MakeLine(2.0, 0.0, 2.0, 1.0).Intersects(MakeLine(3.0, 5.0, 3.0, 4.0), where));
    EXPECT_EQ(where, DPoint(77.0, 88.0));
}

TEST(TLineIntersects, RefusesLinesWithoutDirection) {
    DPoint where(77.0, 88.0);
    Line const axis = MakeLine(0.0, 0.0, 1.0, 0.0);
    Line const point = MakeLine(3.0, 0.0, 3.0, 0.0);
    EXPECT_FALSE(axis.Intersects(point, where));
    EXPECT_FALSE(point.Intersects(axis, where));
    EXPECT_FALSE(point.Intersects(point, where));
    EXPECT_EQ(where, DPoint(77.0, 88.0));
}

TEST(TLineIntersects, TakesANaNCosineForNotParallel) {
    DPoint where;
    // The products overflow to inf - inf, yet the lines are ordinary.
    EXPECT_TRUE(
        MakeLine(0.0, 0.0, 1e200, 1e200).Intersects(MakeLine(0.0, 1.0, 1e200, -1e200), where));
    EXPECT_EQ(where, DPoint(0.5, 0.5));
    EXPECT_TRUE(MakeLine(0.0, 0.0, 1.0, kNaN).Intersects(MakeLine(0.0, 1.0, 1.0, 0.0), where));
    EXPECT_TRUE(std::isnan(where.h) && std::isnan(where.v));
}

TEST(TLineIntersects, IsThePlainFormula) {
    Random random(811);
    for (int i = 0; i < 1000; ++i) {
        Line const a = RandomLine(random, 100.0);
        Line const b = RandomLine(random, 100.0);
        double const m1 = (a.mEnd.v - a.mStart.v) / (a.mEnd.h - a.mStart.h);
        double const b1 = a.mStart.v - m1 * a.mStart.h;
        double const m2 = (b.mEnd.v - b.mStart.v) / (b.mEnd.h - b.mStart.h);
        double const b2 = b.mStart.v - m2 * b.mStart.h;
        DPoint where;
        ASSERT_TRUE(a.Intersects(b, where));
        ASSERT_TRUE(
            SameBits(where, DPoint((b2 - b1) / (m1 - m2), (b2 * m1 - b1 * m2) / (m1 - m2))));
    }
}

TEST(TLine, YIntersectIsThePointAtAHorizontalCoordinate) {
    DPoint where;
    MakeLine(0.0, 1.0, 2.0, 5.0).YIntersect(-3.0, where);
    EXPECT_EQ(where, DPoint(-3.0, -5.0));
    MakeLine(2.0, 0.0, 2.0, 5.0).YIntersect(3.0, where); // infinity less infinity
    EXPECT_EQ(where.h, 3.0);
    EXPECT_TRUE(std::isnan(where.v));
    Random random(812);
    for (int i = 0; i < 300; ++i) {
        Line const l = RandomLine(random, 100.0);
        double const x = random.Uniform(-200.0, 200.0);
        double const m = (l.mEnd.v - l.mStart.v) / (l.mEnd.h - l.mStart.h);
        l.YIntersect(x, where);
        ASSERT_TRUE(SameBits(where, DPoint(x, m * x + (l.mStart.v - m * l.mStart.h))));
    }
}

TEST(TLineSegmentsIntersect, MeetOnlyWithinBothSegments) {
    DPoint where;
    Line const diagonal = MakeLine(0.0, 0.0, 1.0, 1.0);
    EXPECT_TRUE(diagonal.SegmentsIntersect(MakeLine(0.0, 1.0, 1.0, 0.0), where));
    EXPECT_EQ(where, DPoint(0.5, 0.5));
    // The lines cross at (1, 1), an end of the first but beyond the second. The point is stored
    // although the segments do not meet.
    where.Set(77.0, 88.0);
    EXPECT_FALSE(diagonal.SegmentsIntersect(MakeLine(2.0, 0.0, 3.0, -1.0), where));
    EXPECT_EQ(where, DPoint(1.0, 1.0));
    where.Set(77.0, 88.0);
    EXPECT_FALSE(MakeLine(2.0, 0.0, 3.0, -1.0).SegmentsIntersect(diagonal, where));
    EXPECT_EQ(where, DPoint(1.0, 1.0));
    where.Set(77.0, 88.0);
    EXPECT_FALSE(diagonal.SegmentsIntersect(MakeLine(5.0, 5.0, 6.0, 6.0), where)); // parallel
    EXPECT_FALSE(diagonal.SegmentsIntersect(MakeLine(0.5, 0.5, 0.5, 0.5), where));
    EXPECT_EQ(where, DPoint(77.0, 88.0));
}

TEST(TLineSegmentsIntersect, IncludesEndPointsWithinTheSlack) {
    DPoint where;
    Line const floor = MakeLine(0.0, 0.0, 10.0, 0.0);
    EXPECT_TRUE(floor.SegmentsIntersect(MakeLine(10.0, 0.0, 10.0, 5.0), where));
    EXPECT_EQ(where, DPoint(10.0, 0.0));
    double const slack = 0x1p-23;
    EXPECT_TRUE(floor.SegmentsIntersect(MakeLine(5.0, slack, 5.0, 5.0), where));
    EXPECT_TRUE(floor.SegmentsIntersect(MakeLine(5.0, 5.0, 5.0, slack), where));
    EXPECT_FALSE(floor.SegmentsIntersect(MakeLine(5.0, slack * 1.01, 5.0, 5.0), where));
    EXPECT_TRUE(
        MakeLine(0.0, 0.0, 5.0, 0.0)
            .SegmentsIntersect(MakeLine(5.0 + slack / 2.0, -1.0, 5.0 + slack / 2.0, 1.0), where));
    EXPECT_FALSE(
        MakeLine(0.0, 0.0, 5.0, 0.0)
            .SegmentsIntersect(MakeLine(5.0 + slack * 1.01, -1.0, 5.0 + slack * 1.01, 1.0), where));
}

TEST(TLineSegmentsIntersect, AgreesWithTheSidesOfTheEndPoints) {
    int crossings = 0;
    Random random(813);
    for (int i = 0; i < 2000; ++i) {
        Line const a = RandomLine(random, 10.0);
        Line const b = RandomLine(random, 10.0);
        auto const side = [](Line const& line, DPoint const& p) {
            DPoint const d = line.Delta();
            DPoint const q = p - line.mStart;
            return d.h * q.v - d.v * q.h;
        };
        double const s1 = side(a, b.mStart) * side(a, b.mEnd);
        double const s2 = side(b, a.mStart) * side(b, a.mEnd);
        if (std::abs(s1) < 1e-3 || std::abs(s2) < 1e-3) {
            continue; // an end too near the other line
        }
        DPoint where;
        bool const cross = a.SegmentsIntersect(b, where);
        ASSERT_EQ(cross, s1 < 0.0 && s2 < 0.0);
        DPoint other;
        ASSERT_EQ(b.SegmentsIntersect(a, other), cross);
        crossings += cross;
    }
    EXPECT_GT(crossings, 200);
}

TEST(TLineCalcPtFromEnd, MeasuresFromEitherEnd) {
    Line const line = MakeLine(0.0, 0.0, 4.0, 0.0);
    EXPECT_EQ(line.CalcPtFromEnd(1.0, true), DPoint(1.0, 0.0));
    EXPECT_EQ(line.CalcPtFromEnd(1.0, false), DPoint(3.0, 0.0));
    EXPECT_EQ(line.CalcPtFromEnd(8.0, true), DPoint(8.0, 0.0)); // no clamping
    EXPECT_EQ(line.CalcPtFromEnd(8.0, false), DPoint(-4.0, 0.0));
    EXPECT_EQ(line.CalcPtFromEnd(-2.0, true), DPoint(-2.0, 0.0));
    EXPECT_EQ(MakeLine(1.0, 1.0, 7.0, 9.0).CalcPtFromEnd(5.0, true), DPoint(4.0, 5.0));
}

TEST(TLineCalcPtFromEnd, OfAPointIsThatPoint) {
    Line const point = MakeLine(3.0, 4.0, 3.0, 4.0);
    EXPECT_EQ(point.CalcPtFromEnd(10.0, true), DPoint(3.0, 4.0));
    EXPECT_EQ(point.CalcPtFromEnd(10.0, false), DPoint(3.0, 4.0));
}

TEST(TLineCalcPtFromEnd, PassesNaNOn) {
    Line const line = MakeLine(0.0, 0.0, 4.0, 0.0);
    EXPECT_TRUE(std::isnan(line.CalcPtFromEnd(kNaN, true).h));
    EXPECT_TRUE(std::isnan(MakeLine(0.0, 0.0, kNaN, 0.0).CalcPtFromEnd(1.0, false).v));
}

TEST(TLine, TrimEndMovesOneEnd) {
    Line line = MakeLine(0.0, 0.0, 4.0, 0.0);
    line.TrimEnd(1.0, true);
    EXPECT_TRUE(line == MakeLine(1.0, 0.0, 4.0, 0.0));
    line.TrimEnd(1.5, false);
    EXPECT_TRUE(line == MakeLine(1.0, 0.0, 2.5, 0.0));
    line.TrimEnd(-1.5, false); // lengthens
    EXPECT_TRUE(line == MakeLine(1.0, 0.0, 4.0, 0.0));
    EXPECT_TRUE((std::is_void_v<decltype(line.TrimEnd(1.0, true))>));
    Random random(814);
    for (int i = 0; i < 300; ++i) {
        Line const old = RandomLine(random, 100.0);
        double const distance = random.Uniform(-50.0, 50.0);
        double const f = distance / old.Length();
        Line start = old;
        start.TrimEnd(distance, true);
        ASSERT_TRUE(SameLine(start, Line(old.TPt(f), old.mEnd)));
        Line end = old;
        end.TrimEnd(distance, false);
        ASSERT_TRUE(SameLine(end, Line(old.mStart, old.TPt(1.0 - f))));
    }
}

TEST(TLineFindTValue, IsTheParameterOfTheNearestPoint) {
    Line line = MakeLine(0.0, 0.0, 10.0, 0.0);
    EXPECT_EQ(line.FindTValue(DPoint(2.5, 7.0)), 0.25);
    EXPECT_EQ(line.FindTValue(DPoint(50.0, 7.0)), 1.0);
    EXPECT_EQ(line.FindTValue(DPoint(-50.0, 7.0)), 0.0);
    Line slanted = MakeLine(0.0, 0.0, 4.0, 4.0);
    EXPECT_EQ(slanted.FindTValue(DPoint(0.0, 4.0)), 0.5);
    EXPECT_EQ(slanted.FindTValue(DPoint(9.0, 9.0)), 1.0);
    EXPECT_EQ(slanted.FindTValue(DPoint(-9.0, -9.0)), 0.0);
    Line vertical = MakeLine(1.0, 10.0, 1.0, 0.0);
    EXPECT_EQ(vertical.FindTValue(DPoint(5.0, 7.5)), 0.25);
    Line point = MakeLine(1.0, 1.0, 1.0, 1.0);
    EXPECT_TRUE(std::isnan(point.FindTValue(DPoint(5.0, 5.0))));
    Random random(815);
    for (int i = 0; i < 500; ++i) {
        Line l = RandomLine(random, 100.0);
        if (l.Length() < 1.0 || std::abs(l.Slope()) > 50.0 || std::abs(l.Slope()) < 0.02) {
            continue;
        }
        DPoint const p = random.Point(200.0);
        DPoint const d = l.Delta();
        DPoint const q = p - l.mStart;
        double const t = (q.h * d.h + q.v * d.v) / (d.h * d.h + d.v * d.v);
        ASSERT_NEAR(l.FindTValue(p), std::min(1.0, std::max(0.0, t)), 1e-9);
        ASSERT_GE(l.FindTValue(p), 0.0);
    }
}

TEST(TLinePinPtToLineSeg, ClampsIntoTheBox) {
    Line line = MakeLine(0.0, 0.0, 2.0, 1.0);
    EXPECT_EQ(line.PinPtToLineSeg(DPoint(5.0, 5.0)), DPoint(2.0, 1.0));
    EXPECT_EQ(line.PinPtToLineSeg(DPoint(-5.0, 0.5)), DPoint(0.0, 0.5));
    EXPECT_EQ(line.PinPtToLineSeg(DPoint(1.5, -3.0)), DPoint(1.5, 0.0));
    EXPECT_EQ(line.PinPtToLineSeg(DPoint(0.25, 0.75)), DPoint(0.25, 0.75)); // off the segment
    Line reversed = MakeLine(2.0, 1.0, 0.0, 0.0);
    EXPECT_EQ(reversed.PinPtToLineSeg(DPoint(5.0, -5.0)), DPoint(2.0, 0.0));
    DPoint const nan = line.PinPtToLineSeg(DPoint(kNaN, 5.0));
    EXPECT_TRUE(std::isnan(nan.h));
    EXPECT_EQ(nan.v, 1.0);
    EXPECT_EQ(line.PinPtToLineSeg(DPoint(kInf, -kInf)), DPoint(2.0, 0.0));
}

} // namespace
