// SPDX-License-Identifier: MIT

#include "PathSegments.h"

#include "AnyPath.h"
#include "CBezier.h"
#include "CPath.h"
#include "Moments.h"
#include "ShortMemory.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using trammel::PathSegment;
using trammel::PathSegmentIterator;
using trammel::Segments;
using trammel::Subpath;
using trammel::SubpathIterator;
using trammel::Subpaths;
using trammel_test::AnyPath;
using trammel_test::kNaN;
using trammel_test::Text;

typedef TPoint<double> Pt;

/// "L3 (0, 0)-(1, 0)": kind, element, and the points; an implied line has a "+" before it.
std::string Described(PathSegment const& s) {
    std::string text = s.implied ? "+" : "";
    text += s.kind == kPathCurve ? "C" : s.kind == kPathClose ? "Z" : "L";
    text += std::to_string(s.element) + " " + Text(s.start) + "-";
    if (s.IsCurve()) {
        text += Text(s.control1) + "-" + Text(s.control2) + "-";
    }
    return text + Text(s.end);
}

template <class Range> std::vector<std::string> All(Range const& range) {
    std::vector<std::string> out;
    for (PathSegment const& segment : range) {
        out.push_back(Described(segment));
    }
    return out;
}

typedef std::vector<std::string> Strings;

CPath TwoSubpaths() {
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(4, 0)).LineTo(Pt(4, 3)).ClosePath();
    path.MoveTo(Pt(9, 9)).CurveTo(Pt(9, 8), Pt(8, 7), Pt(7, 7));
    return path;
}

TEST(PathSegments, SubpathsHoldTheSegmentsBetweenMoves) {
    CPath const path = TwoSubpaths();
    std::vector<Strings> found;
    for (Subpath const& subpath : Subpaths(path)) {
        found.push_back(All(subpath));
    }
    EXPECT_EQ(found,
              (std::vector<Strings>{{"L1 (0, 0)-(4, 0)", "L2 (4, 0)-(4, 3)", "Z3 (4, 3)-(0, 0)"},
                                    {"C5 (9, 9)-(9, 8)-(8, 7)-(7, 7)"}}));
}

TEST(PathSegments, SubpathsTellWhereTheyAre) {
    CPath const path = TwoSubpaths();
    std::vector<Subpath> const found(Subpaths(path).begin(), Subpaths(path).end());
    ASSERT_EQ(found.size(), 2U);
    EXPECT_TRUE(found[0].Closed());
    EXPECT_EQ(found[0].Start(), Pt(0, 0));
    EXPECT_EQ(found[0].End(), Pt(4, 3));
    EXPECT_EQ(found[0].FirstElement(), 0U);
    EXPECT_EQ(found[0].EndElement(), 4U);
    EXPECT_FALSE(found[1].Closed());
    EXPECT_EQ(found[1].Start(), Pt(9, 9));
    EXPECT_EQ(found[1].End(), Pt(7, 7));
    EXPECT_EQ(found[1].FirstElement(), 4U);
    EXPECT_EQ(found[1].EndElement(), 6U);
}

TEST(PathSegments, SegmentsRunOverAllSubpaths) {
    CPath const path = TwoSubpaths();
    EXPECT_EQ(All(Segments(path)), (Strings{"L1 (0, 0)-(4, 0)", "L2 (4, 0)-(4, 3)",
                                            "Z3 (4, 3)-(0, 0)", "C5 (9, 9)-(9, 8)-(8, 7)-(7, 7)"}));
}

TEST(PathSegments, ClosedSegmentsEndWithTheLineThatCloses) {
    CPath const path = TwoSubpaths();
    SubpathIterator subpath = Subpaths(path).begin();
    EXPECT_EQ(All(subpath->ClosedSegments()), All(*subpath)) << "closed already";
    ++subpath;
    EXPECT_EQ(All(subpath->ClosedSegments()),
              (Strings{"C5 (9, 9)-(9, 8)-(8, 7)-(7, 7)", "+Z6 (7, 7)-(9, 9)"}));
    CPath back;
    back.MoveTo(Pt(1, 1)).LineTo(Pt(2, 1)).LineTo(Pt(1, 1));
    EXPECT_EQ(All(Subpaths(back).begin()->ClosedSegments()),
              (Strings{"L1 (1, 1)-(2, 1)", "L2 (2, 1)-(1, 1)"}))
        << "ends where it starts";
}

TEST(PathSegments, MoveAloneIsASubpathWithoutSegments) {
    CPath path;
    path.MoveTo(Pt(3, 4));
    std::vector<Subpath> const found(Subpaths(path).begin(), Subpaths(path).end());
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(found[0].Empty());
    EXPECT_FALSE(found[0].Closed());
    EXPECT_EQ(found[0].Start(), Pt(3, 4));
    EXPECT_EQ(found[0].End(), Pt(3, 4));
    EXPECT_EQ(All(found[0].ClosedSegments()), Strings());
    EXPECT_EQ(All(Segments(path)), Strings());
}

TEST(PathSegments, EmptyPathHasNeitherSubpathsNorSegments) {
    CPath const path;
    EXPECT_EQ(Subpaths(path).begin(), Subpaths(path).end());
    EXPECT_EQ(Segments(path).begin(), Segments(path).end());
    EXPECT_TRUE(Subpath().Empty());
}

TEST(PathSegments, DrawingAfterACloseBeginsASubpathAtTheLastPointDrawn) {
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(4, 0)).LineTo(Pt(4, 3)).ClosePath();
    path.CurveTo(Pt(5, 5), Pt(6, 5), Pt(7, 5)); // no move comes before a curve
    std::vector<Subpath> const found(Subpaths(path).begin(), Subpaths(path).end());
    ASSERT_EQ(found.size(), 2U);
    EXPECT_TRUE(found[0].BeginsWithMove());
    EXPECT_FALSE(found[1].BeginsWithMove());
    EXPECT_EQ(found[1].Start(), Pt(4, 3));
    EXPECT_EQ(found[1].FirstElement(), 4U);
    EXPECT_EQ(All(found[1].ClosedSegments()),
              (Strings{"C4 (4, 3)-(5, 5)-(6, 5)-(7, 5)", "+Z5 (7, 5)-(4, 3)"}));
}

TEST(PathSegments, DrawingBeforeAnyMoveBeginsAtTheOrigin) {
    CPath path;
    path.CurveTo(Pt(1, 0), Pt(2, 1), Pt(2, 2));
    EXPECT_EQ(All(Segments(path)), (Strings{"C0 (0, 0)-(1, 0)-(2, 1)-(2, 2)"}));
    EXPECT_EQ(Subpaths(path).begin()->Start(), Pt(0, 0));
}

TEST(PathSegments, UnknownCodesArePassedOver) {
    CPath path;
    path.AddCtl(77).MoveTo(Pt(1, 1)).AddCtl(77).LineTo(Pt(2, 2)).AddCtl(77);
    path.MoveTo(Pt(5, 5)).LineTo(Pt(6, 5));
    std::vector<Subpath> const found(Subpaths(path).begin(), Subpaths(path).end());
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(All(found[0].ClosedSegments()), (Strings{"L3 (1, 1)-(2, 2)", "+Z4 (2, 2)-(1, 1)"}));
    EXPECT_EQ(found[0].FirstElement(), 1U);
    EXPECT_EQ(found[0].EndElement(), 4U);
    EXPECT_EQ(All(found[1]), (Strings{"L6 (5, 5)-(6, 5)"}));
}

TEST(PathSegments, WalkEndsWhereThePointsDoNotSuffice) {
    CPath path;
    path.MoveTo(Pt(1, 1)).LineTo(Pt(2, 2));
    path.AddCtl(kPathCurve).AddPt(Pt(3, 3)).AddCtl(kPathClose);
    EXPECT_EQ(All(Segments(path)), (Strings{"L1 (1, 1)-(2, 2)"}));
    std::vector<Subpath> const found(Subpaths(path).begin(), Subpaths(path).end());
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(All(found[0]), (Strings{"L1 (1, 1)-(2, 2)"}));
    CPath none;
    none.AddCtl(kPathLine);
    EXPECT_EQ(Subpaths(none).begin(), Subpaths(none).end());
}

TEST(PathSegments, CoordinatesThatAreNotFiniteAreHandedOver) {
    CPath path;
    path.MoveTo(Pt(kNaN, 0)).LineTo(Pt(1, kNaN));
    EXPECT_EQ(All(Subpaths(path).begin()->ClosedSegments()),
              (Strings{"L1 (nan, 0)-(1, nan)", "+Z2 (1, nan)-(nan, 0)"}));
    CPath closing;
    closing.MoveTo(Pt(kNaN, 0));
    EXPECT_EQ(All(Subpaths(closing).begin()->ClosedSegments()).size(), 1U)
        << "NaN differs from itself, and one line is all the same the most";
}

TEST(PathSegments, SegmentGivesItsLineAndItsCurve) {
    CPath const path = TwoSubpaths();
    PathSegmentIterator segment = Segments(path).begin();
    EXPECT_EQ(segment->Line(), TLine<double>(Pt(0, 0), Pt(4, 0)));
    EXPECT_EQ(segment->Curve(), CBezier(Pt(0, 0), Pt(0, 0), Pt(4, 0), Pt(4, 0)));
    std::advance(segment, 3);
    EXPECT_EQ(segment->Line(), TLine<double>(Pt(9, 9), Pt(7, 7)));
    EXPECT_EQ(segment->Curve(), CBezier(Pt(9, 9), Pt(9, 8), Pt(8, 7), Pt(7, 7)));
}

TEST(PathSegments, IteratorsServeTheStandardAlgorithms) {
    CPath const path = TwoSubpaths();
    auto const segments = Segments(path);
    EXPECT_EQ(std::distance(segments.begin(), segments.end()), 4);
    auto const curve = std::find_if(segments.begin(), segments.end(),
                                    [](PathSegment const& s) { return s.IsCurve(); });
    ASSERT_NE(curve, segments.end());
    EXPECT_EQ(curve->element, 5U);
    PathSegmentIterator i = segments.begin();
    PathSegmentIterator const first = i++;
    EXPECT_EQ(first->element, 1U);
    EXPECT_EQ(i->element, 2U);
    EXPECT_NE(i, first);
    EXPECT_EQ(first, segments.begin());
    SubpathIterator subpath = Subpaths(path).begin();
    EXPECT_EQ((subpath++)->FirstElement(), 0U);
    EXPECT_EQ(subpath->FirstElement(), 4U);
    EXPECT_EQ(std::next(subpath), Subpaths(path).end());
}

TEST(PathSegments, GoingThroughAPathAllocatesNothing) {
    CPath const path = TwoSubpaths();
    std::size_t const before = trammel_test::AllocationCount();
    std::size_t count = 0;
    for (Subpath const& subpath : Subpaths(path)) {
        for (PathSegment const& segment : subpath.ClosedSegments()) {
            count += segment.IsCurve() ? 10 : 1;
        }
    }
    std::size_t const after = trammel_test::AllocationCount();
    EXPECT_EQ(after, before);
    EXPECT_EQ(count, 14U);
}

template <class Path, class = void> struct TakesSubpathsOf : std::false_type {};
template <class Path>
struct TakesSubpathsOf<Path, std::void_t<decltype(Subpaths(std::declval<Path>()))>>
    : std::true_type {};

TEST(PathSegments, TemporaryPathIsRefused) {
    EXPECT_TRUE(TakesSubpathsOf<CPath&>::value);
    EXPECT_TRUE(TakesSubpathsOf<CPath const&>::value);
    EXPECT_FALSE(TakesSubpathsOf<CPath>::value);
    EXPECT_FALSE(TakesSubpathsOf<CPath const>::value);
}

TEST(PathSegments, SegmentsAreThoseThatThePathMeasures) {
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        CPath const path = AnyPath(random);
        double length = 0.0;
        double bySubpath = 0.0;
        for (PathSegment const& segment : Segments(path)) {
            length += segment.IsCurve() ? segment.Curve().Length() : segment.Line().Length();
        }
        for (Subpath const& subpath : Subpaths(path)) {
            for (PathSegment const& s : subpath) {
                bySubpath += s.IsCurve() ? s.Curve().Length() : s.Line().Length();
            }
        }
        EXPECT_EQ(length, path.Length());
        EXPECT_EQ(bySubpath, path.Length());
    }
}

TEST(PathSegments, SubpathsAreTheContoursThatBoundRegions) {
    std::mt19937 random(8);
    for (int i = 0; i < 3000; ++i) {
        CPath path = AnyPath(random);
        std::vector<double> const areas = trammel::ContourAreas(path);
        std::vector<double> found;
        std::size_t end = 0;
        for (Subpath const& subpath : Subpaths(path)) {
            EXPECT_GE(subpath.FirstElement(), end);
            end = subpath.EndElement();
            double area = 0.0;
            bool const headless = !subpath.BeginsWithMove();
            for (PathSegment const& s : subpath.ClosedSegments()) {
                // A close without a move of its own is measured to an older move.
                TLine<double> const line(s.start, headless && s.kind == kPathClose ? subpath.Start()
                                                                                   : s.end);
                CBezier const c = s.IsCurve()
                                      ? s.Curve()
                                      : CBezier(line.mStart, line.mStart, line.mEnd, line.mEnd);
                auto const cross = [](Pt const& a, Pt const& b) { return a.h * b.v - a.v * b.h; };
                area += (6 * cross(c.P0, c.P1) + 3 * cross(c.P0, c.P2) + cross(c.P0, c.P3) +
                         3 * cross(c.P1, c.P2) + 3 * cross(c.P1, c.P3) + 6 * cross(c.P2, c.P3)) /
                        20;
            }
            // A close with nothing to close is measured, and bounds nothing.
            if (path.mCtls[subpath.FirstElement()] != kPathClose) {
                found.push_back(area);
            }
        }
        ASSERT_EQ(found.size(), areas.size());
        for (std::size_t k = 0; k < found.size(); ++k) {
            EXPECT_NEAR(found[k], areas[k], 1e-12);
        }
    }
}

} // namespace
