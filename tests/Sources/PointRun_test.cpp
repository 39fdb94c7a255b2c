// SPDX-License-Identifier: MIT

// The loops over points, through both polygon kinds: the library agrees with the plain forms to the
// last bit, on random polygons and on ones made to be difficult.

#include "CFPolygonRef.h"
#include "CMatrix3x3.h"
#include "PolygonSupport.h"
#include "ShortMemory.h"
#include "TLine.h"
#include "TPoly.h"
#include "TestSupport.h"
#include "UFPoly.h"
#include "plain/Comparing.h"
#include "plain/PlainPolygon.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <new>
#include <string>
#include <vector>

namespace {

using plain::Random;
using plain::SameBits;
using plain::StepUlps;
using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::PointsOf;
using trammel_test::Text;

using Points = std::vector<TPoint<double>>;

constexpr double kDenormal = 5e-324;
constexpr double kSlack = 0x1p-23;

constexpr double kSpecials[] = {kNaN,       kInf,  -kInf,  0.0,    -0.0,  kDenormal,
                                -kDenormal, kHuge, -kHuge, 1e-300, 1e300, -1e300};

double Special(Random& random) {
    return kSpecials[random.Int(0, static_cast<int>(std::size(kSpecials)) - 1)];
}

/// How a polygon's coordinates are made.
enum Making : int {
    kGrid,     ///< small whole numbers: equal heights, repeated points, edges along the axes
    kPlain,    ///< drawing-sized
    kDecades,  ///< magnitudes from 1e-300 to 1e300
    kDiagonal, ///< on one line
    kWave,     ///< smooth: edges that are crossed lie far apart
    kSpecial,  ///< drawing-sized, with NaN, infinities, denormals and zeros among them
    kMakings
};

double Coordinate(Random& random, Making making) {
    double const sign = random.OneIn(2) ? 1.0 : -1.0;
    switch (making) {
    case kGrid:
        return sign * random.Int(0, 3);
    case kDecades:
        return sign * random.Decade(-300.0, 300.0);
    case kSpecial:
        return random.OneIn(5) ? Special(random) : random.Uniform(-500.0, 500.0);
    default:
        return random.Uniform(-500.0, 500.0);
    }
}

Points MakePoints(Random& random, Making making, int count) {
    Points points;
    for (int i = 0; i < count; ++i) {
        TPoint<double> p;
        double const t = static_cast<double>(i) / count;
        if (making == kDiagonal) {
            p.h = Coordinate(random, kPlain);
            p.v = p.h * 0.5;
        } else if (making == kWave) {
            double const reach = 300.0 + 100.0 * std::sin(30.0 * t);
            p.Set(reach * std::cos(6.28 * t), reach * std::sin(6.28 * t));
        } else {
            p.h = Coordinate(random, making);
            p.v = Coordinate(random, making);
        }
        points.push_back(!points.empty() && random.OneIn(12) ? points.back() : p);
    }
    if (count > 1 && random.OneIn(3)) {
        points.back() = points.front();
    }
    return points;
}

/// Mostly small numbers, and numbers around the ones where a loop changes its way.
int MakeCount(Random& random) {
    constexpr int kBorders[] = {64, 65, 128, 192, 1023, 1024, 2046, 2047};
    if (random.OneIn(60)) {
        return kBorders[random.Int(0, static_cast<int>(std::size(kBorders)) - 1)] +
               random.Int(-2, 2);
    }
    return random.Int(0, 40);
}

TPolygon<double> MakePointList(Points const& points, bool closed) {
    TPolygon<double> polygon;
    for (TPoint<double> const& p : points) {
        polygon.Append(p, true);
    }
    return closed ? polygon.Close() : polygon;
}

CFPolygonRef MakeHandle(Points const& points) {
    CFPolygonRef polygon;
    polygon.CFPolygonCreate(points);
    return polygon;
}

template <class Item> bool SameLists(std::vector<Item> const& a, std::vector<Item> const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](Item const& x, Item const& y) { return SameBits(x, y); });
}

/// A point that asks something difficult of the polygon: level with a vertex, above one, on an
/// edge or beside it, or anything.
TPoint<double> Query(Random& random, Points const& points, Making making) {
    TPoint<double> p(Coordinate(random, making), Coordinate(random, making));
    if (points.empty()) {
        return p;
    }
    auto const any = [&] {
        return points[static_cast<std::size_t>(random.Int(0, static_cast<int>(points.size()) - 1))];
    };
    switch (random.Int(0, 7)) {
    case 0:
        p.v = any().v;
        break;
    case 1:
        p.h = any().h;
        break;
    case 2:
        p = any();
        break;
    case 3:
        p.Set(any().h, any().v);
        break;
    case 4: {
        std::size_t const i =
            static_cast<std::size_t>(random.Int(0, static_cast<int>(points.size()) - 1));
        TPoint<double> const a = points[i];
        TPoint<double> const b = points[(i + 1) % points.size()];
        p = plain::PointBetween(a, b, random.Unit());
        p.h = StepUlps(p.h, random.Int(-2, 2));
        break;
    }
    case 5:
        (random.OneIn(2) ? p.h : p.v) = Special(random);
        break;
    default:
        break;
    }
    return p;
}

class PointRuns : public trammel_test::WithoutLeaks {};

TEST_F(PointRuns, ContainmentAgreesWithThePlainForm) {
    Random random(101);
    long inside = 0;
    for (int round = 0; round < 4200; ++round) {
        Making const making = static_cast<Making>(round % kMakings);
        Points const points = MakePoints(random, making, MakeCount(random));
        TPolygon<double> const list = MakePointList(points, random.OneIn(2));
        CFPolygonRef handle = MakeHandle(points);
        plain::PointList const plainList = {points, false};
        plain::HandlePoints const plainHandle = {points};
        for (int k = 0; k < 25; ++k) {
            TPoint<double> const p = Query(random, points, making);
            bool const expected = plainHandle.Contains(p);
            ASSERT_EQ(handle.Contains(p), expected) << Text(p) << " in " << Text(points);
            ASSERT_EQ(list.Contains(p), plainList.Contains(p)) << Text(p) << " in " << Text(points);
            inside += expected ? 1 : 0;
        }
        handle.Dispose();
    }
    EXPECT_GT(inside, 10000); // the questions are ones that can be answered either way
}

TEST_F(PointRuns, ContainmentAgreesForEachNumberOfPoints) {
    Random random(102);
    for (int count = 0; count <= 200; ++count) {
        Points points = MakePoints(random, kPlain, count);
        CFPolygonRef handle = MakeHandle(points);
        for (int k = 0; k < 40; ++k) {
            TPoint<double> const p = random.Pt(-500.0, 500.0);
            ASSERT_EQ(handle.Contains(p), plain::HandlePoints{points}.Contains(p)) << count;
        }
        handle.Dispose();
    }
}

/// Each edge's place in a word of bits and in a batch, with a NaN in the neighbourhood or not.
TEST_F(PointRuns, EveryEdgeOfALargePolygonIsCounted) {
    constexpr std::size_t kCount = 2100;
    Points points(kCount, TPoint<double>(10.0, -1.0));
    CFPolygonRef handle = MakeHandle(points);
    TPoint<double> const p(20.0, 0.0);
    for (std::size_t i = 0; i < kCount; ++i) {
        // One vertex beyond the height of p makes two crossings; with a NaN beside it, one.
        long const at = static_cast<long>(i);
        long const next = static_cast<long>((i + 1) % kCount);
        handle.SetPolyPoints(at, TPoint<double>(10.0, 1.0));
        ASSERT_FALSE(handle.Contains(p)) << i;
        handle.SetPolyPoints(next, TPoint<double>(10.0, kNaN));
        ASSERT_TRUE(handle.Contains(p)) << i;
        handle.SetPolyPoints(at, TPoint<double>(10.0, -1.0));
        ASSERT_FALSE(handle.Contains(p)) << i;
        handle.SetPolyPoints(next, TPoint<double>(30.0, 1.0));
        // Both edges at the vertex are crossed at h = 20, which is not before p.
        ASSERT_FALSE(handle.Contains(p)) << i;
        handle.SetPolyPoints(next, TPoint<double>(10.0, -1.0));
    }
    handle.Dispose();
}

TEST_F(PointRuns, ContainmentAllocatesNothing) {
    Random random(103);
    for (int const count : {0, 1, 5, 40, 64, 65, 1000, 5000}) {
        Points const points = MakePoints(random, kPlain, count);
        TPolygon<double> const list = MakePointList(points, true);
        CFPolygonRef handle = MakeHandle(points);
        long const handles = trammel_detail::LiveHandleCount();
        long const reallocations = trammel_detail::BlockReallocationCount();
        constexpr long kAllowed = 1000;
        {
            trammel_test::ShortMemory const memory(kAllowed);
            for (int k = 0; k < 20; ++k) {
                TPoint<double> const p = random.Pt(-500.0, 500.0);
                static_cast<void>(list.Contains(p));
                static_cast<void>(handle.Contains(p));
                static_cast<void>(FPtInFPoly(handle, p));
            }
            EXPECT_EQ(trammel_test::ShortMemory::Left(), kAllowed) << count;
        }
        EXPECT_EQ(trammel_detail::LiveHandleCount(), handles);
        EXPECT_EQ(trammel_detail::BlockReallocationCount(), reallocations);
        handle.Dispose();
    }
}

TEST_F(PointRuns, BoundsAgreeWithThePlainForm) {
    Random random(104);
    for (int round = 0; round < 30000; ++round) {
        Making const making = static_cast<Making>(round % kMakings);
        Points points = MakePoints(random, making, MakeCount(random));
        // Zeros of either sign, above all at the ends, where they decide when the union begins.
        int const zeros = random.Int(0, 6);
        for (int k = 0; k < zeros && !points.empty(); ++k) {
            int const last = static_cast<int>(points.size()) - 1;
            int const at = random.OneIn(2) ? std::min(k, last) : std::max(last - k, 0);
            TPoint<double>& p = points[static_cast<std::size_t>(at)];
            double const zero = random.OneIn(2) ? 0.0 : -0.0;
            (random.OneIn(3) ? p.h : p.v) = zero;
            if (random.OneIn(2)) {
                p.Set(zero, random.OneIn(2) ? 0.0 : -0.0);
            }
        }
        TPolygon<double> const list = MakePointList(points, random.OneIn(2));
        CFPolygonRef handle = MakeHandle(points);
        plain::PointList const plainList = {points, false};
        plain::HandlePoints const plainHandle = {points};
        ASSERT_SAME(list.Bounds(), plainList.Bounds()) << Text(points);
        ASSERT_SAME(handle.Bounds(), plainHandle.Bounds()) << Text(points);
        handle.Dispose();
    }
}

TEST_F(PointRuns, BoundsKeepTheFirstOfSeveralZerosInTheOrderOfTheUnion) {
    // v runs over 1, -0, 0, 0, -0, 5 and so on: the least is a zero, the first one met.
    for (std::size_t count = 3; count <= 40; ++count) {
        Points points(count, TPoint<double>(7.0, 5.0));
        points[1].v = -0.0;
        points[count - 1].v = 0.0;
        EXPECT_TRUE(std::signbit(MakePointList(points, false).Bounds().top)) << count;
        CFPolygonRef handle = MakeHandle(points);
        EXPECT_FALSE(std::signbit(handle.Bounds().top)) << count;
        handle.Dispose();
    }
}

TEST_F(PointRuns, ChangesAgreeWithThePlainForm) {
    Random random(105);
    for (int round = 0; round < 12000; ++round) {
        Making const making = static_cast<Making>(round % kMakings);
        Points const points = MakePoints(random, making, MakeCount(random));
        Making const numbers = random.OneIn(3) ? making : kPlain;
        auto const number = [&] { return Coordinate(random, numbers); };

        TPolygon<double> list = MakePointList(points, random.OneIn(2));
        plain::PointList plainList = {points, false};
        CMatrix3x3 m;
        m.a = number();
        m.b = number();
        m.c = number();
        m.d = number();
        m.tx = number();
        m.ty = number();
        list.Transform(m);
        plainList.Transform(m);
        ASSERT_TRUE(SameLists(PointsOf(list), plainList.points)) << Text(points);
        ASSERT_SAME(list.Bounds(), plainList.Bounds());

        CFPolygonRef handle = MakeHandle(points);
        plain::HandlePoints plainHandle = {points};
        auto const agree = [&] { return SameLists(PointsOf(handle), plainHandle.points); };
        TPoint<double> const d(number(), number());
        double const angle = random.Uniform(-7.0, 7.0);
        switch (random.Int(0, 3)) {
        case 0:
            handle.Offset(d);
            plainHandle.Offset(d);
            ASSERT_TRUE(agree()) << "Offset " << Text(d) << " of " << Text(points);
            break;
        case 1:
            handle.Scale(d.h, d.v);
            plainHandle.Scale(d.h, d.v);
            ASSERT_TRUE(agree()) << "Scale " << Text(d) << " of " << Text(points);
            break;
        case 2:
            handle.Rotate(angle, d);
            plainHandle.Rotate(angle, d);
            ASSERT_TRUE(agree()) << "Rotate " << angle << " of " << Text(points);
            break;
        default: {
            TRect<double> const from(TPoint<double>(number(), number()), d);
            TRect<double> const to(TPoint<double>(number(), number()), d);
            handle.Map(from, to);
            plainHandle.Map(from, to);
            ASSERT_TRUE(agree()) << "Map of " << Text(points);
        }
        }
        ASSERT_SAME(handle.Bounds(), plainHandle.Bounds());
        handle.Dispose();
    }
}

TEST_F(PointRuns, LengthAndPointsAtFractionsAgreeWithThePlainForm) {
    Random random(106);
    for (int round = 0; round < 6000; ++round) {
        Making const making = static_cast<Making>(round % kMakings);
        Points const points = MakePoints(random, making, MakeCount(random));
        bool const closed = random.OneIn(2);
        TPolygon<double> const list = MakePointList(points, closed);
        plain::PointList const plainList = {points, closed};
        ASSERT_SAME(list.Length(), plainList.Length()) << Text(points);
        std::vector<double> table;
        BuildLTable(list, table);
        ASSERT_TRUE(SameLists(table, plainList.Table())) << Text(points);
        if (points.size() < 2) {
            continue;
        }
        for (int k = 0; k < 6; ++k) {
            double const t = random.OneIn(8) ? Special(random) : random.Uniform(-0.1, 1.1);
            ASSERT_SAME(list.TPt(t), plainList.TPt(t)) << t << " of " << Text(points);
            if (std::isnan(table.back()) || std::isnan(t)) {
                continue; // the table's steps as they stand read beyond its end
            }
            ASSERT_SAME(list.TPt(t, &table), plainList.TPt(t, table)) << t << " " << Text(points);
            ASSERT_SAME(list.TPt(t, nullptr), plainList.TPt(t, table)) << t << " " << Text(points);
        }
    }
}

/// A segment that asks something difficult: through vertices, along edges, or with ends so far from
/// a vertex that the slack decides.
TLine<double> Cut(Random& random, Points const& points, Making making) {
    auto const end = [&] {
        TPoint<double> p = Query(random, points, making);
        if (random.OneIn(3)) {
            p.h = StepUlps(p.h + (random.OneIn(2) ? kSlack : -kSlack), random.Int(-2, 2));
        }
        if (random.OneIn(3)) {
            p.v = StepUlps(p.v + (random.OneIn(2) ? kSlack : -kSlack), random.Int(-2, 2));
        }
        return p;
    };
    TPoint<double> const start = end();
    TPoint<double> other = end();
    if (random.OneIn(5)) {
        other.h = start.h;
    } else if (random.OneIn(5)) {
        other.v = start.v;
    }
    return TLine<double>(start, other);
}

bool HasNaN(TLine<double> const& line) {
    return std::isnan(line.mStart.h) || std::isnan(line.mStart.v) || std::isnan(line.mEnd.h) ||
           std::isnan(line.mEnd.v);
}

TEST_F(PointRuns, ClippingAgreesWithThePlainForm) {
    Random random(107);
    long pieces = 0;
    for (int round = 0; round < 12000; ++round) {
        Making const making = static_cast<Making>(round % kMakings);
        int const count = random.OneIn(100) ? random.Int(120, 300) : MakeCount(random);
        Points const points = MakePoints(random, making, std::min(count, 300));
        TPolygon<double> const list = MakePointList(points, random.OneIn(2));
        plain::PointList const plainList = {points, false};
        for (int k = 0; k < 3; ++k) {
            TLine<double> const line = Cut(random, points, making);
            std::vector<TLine<double>> const found = list.Clip(line);
            if (HasNaN(line)) {
                ASSERT_TRUE(found.empty());
                continue;
            }
            std::vector<TLine<double>> const expected = plainList.Clip(line);
            ASSERT_EQ(Text(found), Text(expected)) << Text(line) << " by " << Text(points);
            pieces += static_cast<long>(found.size());
        }
    }
    EXPECT_GT(pieces, 10000);
}

/// The vertices' distance from the segment's box is the slack, and an ulp or two more or less.
TEST_F(PointRuns, ClippingAgreesWhereTheSlackDecides) {
    Random random(108);
    for (int round = 0; round < 30000; ++round) {
        double const size = random.OneIn(2) ? 1.0 : random.Decade(-9.0, 9.0);
        TLine<double> const line(random.Pt(-size, size), random.Pt(-size, size));
        TRect<double> const box = line.Bounds();
        auto const near = [&](double edge) {
            double const slack = random.OneIn(2) ? kSlack : -kSlack;
            return StepUlps(edge + slack, random.Int(-3, 3));
        };
        Points points;
        int const count = random.Int(2, 12);
        for (int i = 0; i < count; ++i) {
            TPoint<double> p = random.Pt(-2.0 * size, 2.0 * size);
            if (random.OneIn(2)) {
                p.h = near(random.OneIn(2) ? box.left : box.right);
            }
            if (random.OneIn(2)) {
                p.v = near(random.OneIn(2) ? box.top : box.bottom);
            }
            points.push_back(p);
        }
        ASSERT_EQ(Text(MakePointList(points, true).Clip(line)),
                  Text(plain::PointList{points, true}.Clip(line)))
            << Text(line) << " by " << Text(points);
    }
}

TEST_F(PointRuns, ClippingAgreesWithManyCrossings) {
    Random random(109);
    for (int round = 0; round < 60; ++round) {
        Making const making = round % 2 == 0 ? kPlain : kGrid;
        Points const points = MakePoints(random, making, random.Int(100, 600));
        TLine<double> const line = Cut(random, points, making);
        if (HasNaN(line)) {
            continue;
        }
        ASSERT_EQ(Text(MakePointList(points, true).Clip(line)),
                  Text(plain::PointList{points, true}.Clip(line)))
            << Text(line);
    }
}

TEST_F(PointRuns, ShortMemoryWhileClippingIsTheStandardException) {
    Random random(110);
    TPolygon<double> const list = MakePointList(MakePoints(random, kPlain, 500), true);
    TLine<double> const line(TPoint<double>(-600.0, -20.0), TPoint<double>(600.0, 20.0));
    std::string const expected = Text(list.Clip(line));
    long needed = 0;
    for (bool enough = false; !enough; ++needed) {
        ASSERT_LT(needed, 1000);
        bool thrown = false;
        std::vector<TLine<double>> found;
        {
            trammel_test::ShortMemory const memory(needed);
            try {
                found = list.Clip(line);
            } catch (std::bad_alloc const&) {
                thrown = true;
            }
        }
        enough = !thrown;
        if (enough) {
            EXPECT_EQ(Text(found), expected);
        }
    }
    EXPECT_GT(needed, 3);
}

} // namespace
