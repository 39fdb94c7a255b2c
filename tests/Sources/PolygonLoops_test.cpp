// SPDX-License-Identifier: MIT

// Both kinds of polygons, made from lists of points and gone through by loops.

#include "CFPolygonRef.h"
#include "Handles.h"
#include "TPoly.h"
#include "TRect.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <vector>

namespace {

typedef TPoint<double> Pt;
typedef std::vector<Pt> Points;

template <class Polygon> Points LoopOver(Polygon const& polygon) {
    Points points;
    for (Pt const& p : polygon) {
        points.push_back(p);
    }
    return points;
}

TEST(PolygonLoops, APointListPolygonIsMadeFromAListInBraces) {
    TPolygon<double> const polygon{Pt(1, 2), Pt(1, 2), Pt(5, 6)};
    EXPECT_EQ(polygon.LastIndex(), 2);
    EXPECT_EQ(polygon.GetPt(0), Pt(1, 2));
    EXPECT_EQ(polygon.GetPt(2), Pt(5, 6));
    EXPECT_FALSE(polygon.Closed());
    EXPECT_FALSE(polygon.BoundsValid());
    EXPECT_EQ(polygon.Bounds(), TRect<double>(1, 2, 5, 6));
}

TEST(PolygonLoops, APointListPolygonIsMadeFromAVector) {
    Points points;
    TPolygon<double> appended;
    for (int i = 0; i < 1000; ++i) {
        points.emplace_back(i, -i);
        appended.Append(Pt(i, -i), true);
    }
    TPolygon<double> polygon(points);
    EXPECT_EQ(polygon.LastIndex(), 999);
    EXPECT_EQ(LoopOver(polygon), points);
    EXPECT_EQ(polygon.Length(), appended.Length());
    polygon.Append(Pt(7, 7), true);
    EXPECT_EQ(polygon.GetPt(1000), Pt(7, 7));
}

TEST(PolygonLoops, AListWithoutPointsMakesAnEmptyPolygon) {
    TPolygon<double> polygon{Points()};
    EXPECT_EQ(polygon.LastIndex(), -1);
    EXPECT_FALSE(polygon.Closed());
    polygon.Append(Pt(3, 4), true);
    EXPECT_EQ(LoopOver(polygon), Points{Pt(3, 4)});
}

TEST(PolygonLoops, BracesStillCopyAPolygonAndTakeARectangle) {
    TRect<double> const r(1, 2, 3, 4);
    TPolygon<double> const ofRect{r};
    EXPECT_TRUE(ofRect.Closed());
    EXPECT_EQ(LoopOver(ofRect), (Points{Pt(1, 2), Pt(3, 2), Pt(3, 4), Pt(1, 4)}));
    TPolygon<double> const copy{ofRect};
    EXPECT_TRUE(copy.Closed());
    EXPECT_EQ(LoopOver(copy), LoopOver(ofRect));
    TPolygon<double> const empty{};
    EXPECT_TRUE(empty.Empty());
}

TEST(PolygonLoops, APolygonMadeInShortMemoryHasNoStorage) {
    trammel_detail::FailNextAllocations(1);
    TPolygon<double> const polygon{Pt(1, 2), Pt(3, 4)};
    trammel_detail::FailNextAllocations(0);
    EXPECT_EQ(polygon.mHandle, nullptr);
    EXPECT_EQ(polygon.begin(), polygon.end());
}

TEST(PolygonLoops, AlgorithmsTakeAPointListPolygon) {
    TPolygon<double> const polygon{Pt(1, 9), Pt(2, 4), Pt(3, 7)};
    EXPECT_EQ(std::distance(polygon.begin(), polygon.end()), 3);
    auto const lowest = std::min_element(polygon.begin(), polygon.end(),
                                         [](Pt const& a, Pt const& b) { return a.v < b.v; });
    EXPECT_EQ(*lowest, Pt(2, 4));
    EXPECT_EQ(Points(polygon.begin(), polygon.end()), LoopOver(polygon));
}

TEST(PolygonLoops, AHandlePolygonIsMadeFromAListInBraces) {
    CFPolygonRef polygon;
    polygon.CFPolygonCreate({Pt(1, 2), Pt(3, 4), Pt(5, 6)});
    EXPECT_EQ(LoopOver(polygon), (Points{Pt(1, 2), Pt(3, 4), Pt(5, 6)}));
    EXPECT_FALSE(polygon.Closed());
    polygon.Dispose();
}

TEST(PolygonLoops, OverAHandlePolygonGiveWhatPolyPointsGives) {
    CFPolygonRef polygon;
    for (long const n : {0L, 1L, 2L, 63L}) {
        polygon.CFPolygonCreate(n);
        for (long i = 0; i < n; ++i) {
            polygon.SetPolyPoints(i, Pt(static_cast<double>(i), 0.5));
        }
        Points byIndex;
        for (long i = 0; i <= polygon.LastIndex(); ++i) {
            byIndex.push_back(polygon.PolyPoints(i));
        }
        EXPECT_EQ(LoopOver(polygon), byIndex);
        EXPECT_EQ(Points(polygon.begin(), polygon.end()), byIndex);
        polygon.Dispose();
    }
    EXPECT_TRUE(LoopOver(CFPolygonRef()).empty());
}

TEST(PolygonLoops, EndOnBlocksOfEverySizeThatHoldNoWholePoint) {
    for (long size = 0; size < 61; ++size) {
        Handle const block = NewHandle(size);
        CFPolygonRef const polygon(reinterpret_cast<FPolygon**>(block), false);
        long const count = std::max(polygon.LastIndex() + 1, 0L);
        EXPECT_EQ(std::distance(polygon.begin(), polygon.end()), count) << size;
        EXPECT_EQ(LoopOver(polygon), Points(static_cast<std::size_t>(count))) << size;
        DisposeHandle(block);
    }
}

TEST(PolygonLoops, OverAHandlePolygonSurviveItsGrowthAndItsShrinking) {
    CFPolygonRef polygon;
    polygon.CFPolygonCreate({Pt(1, 2), Pt(3, 4)});
    Points seen;
    for (Pt const& p : polygon) {
        seen.push_back(p);
        for (int i = 0; i < 1000; ++i) {
            polygon.Append(p);
        }
    }
    EXPECT_EQ(seen, (Points{Pt(1, 2), Pt(3, 4)}));
    seen.clear();
    for (Pt const& p : polygon) {
        seen.push_back(p);
        polygon.SetSize(1);
    }
    EXPECT_EQ(seen.size(), 2002U);
    EXPECT_EQ(seen.back(), Pt(0, 0));
    polygon.Dispose();
}

TEST(PolygonLoops, PlacesInAHandlePolygonAreIterators) {
    typedef std::iterator_traits<CFPolygonRef::Iterator> Traits;
    static_assert(std::is_same_v<Traits::value_type, Pt>);
    static_assert(std::is_base_of_v<std::input_iterator_tag, Traits::iterator_category>);
    static_assert(std::is_trivially_copyable_v<CFPolygonRef::Iterator>);
    CFPolygonRef polygon;
    polygon.CFPolygonCreate({Pt(1, 2), Pt(3, 4)});
    CFPolygonRef::Iterator i = polygon.begin();
    EXPECT_EQ(*i++, Pt(1, 2));
    EXPECT_EQ(*i, Pt(3, 4));
    EXPECT_TRUE(++i == polygon.end());
    EXPECT_TRUE(i != polygon.begin());
    polygon.Dispose();
}

} // namespace
