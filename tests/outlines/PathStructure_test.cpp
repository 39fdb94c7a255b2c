// SPDX-License-Identifier: MIT

#include "PathStructure.h"

#include "AnyPath.h"
#include "CMatrix3x3.h"
#include "CPath.h"
#include "Moments.h"
#include "PathSegments.h"
#include "TestSupport.h"
#include "Winding.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using trammel::AppendSubpaths;
using trammel::ClosingLine;
using trammel::Equal;
using trammel::FirstPointOf;
using trammel::PathOf;
using trammel::Reversed;
using trammel::SetPoint;
using trammel::SplitSubpaths;
using trammel::Transformed;
using trammel::WithSubpathsClosed;
using trammel::WithSubpathsOpened;
using trammel_test::AnyPath;
using trammel_test::kNaN;
using trammel_test::Text;

typedef TPoint<double> Pt;

/// "M(0, 0) L(1, 0) Z": the elements with their points.
std::string Elements(CPath const& path) {
    std::string text;
    std::size_t at = 0;
    for (char const code : path.mCtls) {
        text += text.empty() ? "" : " ";
        text += code == kPathMove    ? "M"
                : code == kPathLine  ? "L"
                : code == kPathCurve ? "C"
                : code == kPathClose ? "Z"
                                     : "?";
        int const count = code == kPathCurve ? 3 : code == kPathMove || code == kPathLine ? 1 : 0;
        for (int i = 0; i < count; ++i) {
            text += Text(path.mPts.at(at++));
        }
    }
    EXPECT_EQ(at, path.mPts.size());
    return text;
}

CPath Mixed() {
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(4, 0)).CurveTo(Pt(5, 1), Pt(5, 2), Pt(4, 3)).ClosePath();
    path.MoveTo(Pt(9, 9)).LineTo(Pt(8, 7));
    return path;
}

/// The path with each subpath begun by a move, as all results are.
CPath Complete(CPath const& path) {
    CPath out;
    return AppendSubpaths(out, path);
}

TEST(PathStructure, ReversedRunsEachSubpathBackwardFromItsEnd) {
    EXPECT_EQ(Elements(Reversed(Mixed())), "M(4, 3) C(5, 2)(5, 1)(4, 0) L(0, 0) Z M(8, 7) L(9, 9)");
    EXPECT_EQ(Elements(Reversed(CPath())), "");
    CPath dot;
    dot.MoveTo(Pt(2, 2));
    EXPECT_EQ(Elements(Reversed(dot)), "M(2, 2)");
}

TEST(PathStructure, ReversedTwiceIsThePathItself) {
    std::mt19937 random(11);
    for (int i = 0; i < 2000; ++i) {
        CPath const path = Complete(AnyPath(random));
        EXPECT_TRUE(Equal(Reversed(Reversed(path)), path)) << Elements(path);
    }
}

TEST(PathStructure, ReversalTurnsAreasAndWindingNumbersOver) {
    std::mt19937 random(12);
    for (int i = 0; i < 2000; ++i) {
        CPath const path = AnyPath(random);
        CPath const reversed = Reversed(path);
        EXPECT_EQ(reversed.mBounds, CPath(reversed).InvalBounds().Bounds());
        Pt const p(3.25, 2.125);
        bool ordinary = true;
        for (trammel::Subpath const& subpath : trammel::Subpaths(path)) {
            ordinary = ordinary && (subpath.BeginsWithMove() || !subpath.Closed());
        }
        if (ordinary) {
            EXPECT_NEAR(trammel::SignedArea(reversed), -trammel::SignedArea(path), 1e-12);
            EXPECT_EQ(trammel::WindingNumber(reversed, p), -trammel::WindingNumber(path, p));
        }
    }
}

TEST(PathStructure, AppendedSubpathsStayApartAndClosed) {
    CPath path;
    path.MoveTo(Pt(1, 1)).LineTo(Pt(2, 1)).ClosePath();
    EXPECT_EQ(&AppendSubpaths(path, Mixed()), &path);
    EXPECT_EQ(Elements(path), "M(1, 1) L(2, 1) Z M(0, 0) L(4, 0) C(5, 1)(5, 2)(4, 3) Z M(9, 9) "
                              "L(8, 7)");
    EXPECT_EQ(path.CurrentPoint(), Pt(8, 7));
    path.LineTo(Pt(8, 6));
    EXPECT_EQ(path.mCtls.size(), 10U);
    EXPECT_EQ(path.Bounds(), TRect<double>(0, 0, 9, 9));
}

TEST(PathStructure, PathMayBeAppendedToItself) {
    CPath path = Mixed();
    AppendSubpaths(path, path);
    EXPECT_EQ(path.mCtls.size(), 12U);
    EXPECT_TRUE(Equal(SplitSubpaths(path).at(3), SplitSubpaths(path).at(1)));
}

TEST(PathStructure, AppendingToAPathOfUnknownBoundsKeepsThemRight) {
    CPath path;
    path.MoveTo(Pt(-5, -5)).LineTo(Pt(2, 1));
    path.InvalBounds();
    AppendSubpaths(path, Mixed());
    EXPECT_EQ(path.Bounds(), TRect<double>(-5, -5, 9, 9));
}

TEST(PathStructure, ElementsWithoutExtentAreKept) {
    CPath path;
    path.MoveTo(Pt(1, 1)).AddCtl(kPathLine).AddPt(Pt(1, 1));
    path.AddCtl(kPathCurve).AddPt(Pt(2, 1)).AddPt(Pt(1, 2)).AddPt(Pt(1, 1));
    std::string const elements = "M(1, 1) L(1, 1) C(2, 1)(1, 2)(1, 1)";
    EXPECT_EQ(Elements(Complete(path)), elements);
    EXPECT_EQ(Elements(SplitSubpaths(path).at(0)), elements);
    EXPECT_EQ(Elements(Reversed(path)), "M(1, 1) C(1, 2)(2, 1)(1, 1) L(1, 1)");
}

TEST(PathStructure, SubpathWithoutAMoveGetsOne) {
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(4, 0)).LineTo(Pt(4, 3)).ClosePath();
    path.CurveTo(Pt(5, 5), Pt(6, 5), Pt(7, 5));
    EXPECT_EQ(Elements(SplitSubpaths(path).at(1)), "M(4, 3) C(5, 5)(6, 5)(7, 5)");
    path.AddCtl(kPathClose); // it is drawn to (0, 0), the point of the last move
    EXPECT_EQ(Elements(SplitSubpaths(path).at(1)), "M(4, 3) C(5, 5)(6, 5)(7, 5) L(0, 0)");
    CPath first;
    first.CurveTo(Pt(5, 5), Pt(6, 5), Pt(7, 5));
    EXPECT_EQ(Elements(Complete(first)), "M(0, 0) C(5, 5)(6, 5)(7, 5)");
}

TEST(PathStructure, CompletedPathMeasuresAndFillsAsBefore) {
    std::mt19937 random(13);
    for (int i = 0; i < 2000; ++i) {
        CPath const path = AnyPath(random);
        CPath const complete = Complete(path);
        EXPECT_EQ(complete.Length(), path.Length());
        for (trammel::Subpath const& subpath : trammel::Subpaths(complete)) {
            EXPECT_TRUE(subpath.BeginsWithMove());
        }
        CPath joined;
        for (CPath const& part : SplitSubpaths(path)) {
            AppendSubpaths(joined, part);
        }
        EXPECT_TRUE(Equal(joined, complete));
        EXPECT_EQ(complete.mOpen, !complete.mCtls.empty() && complete.mCtls.back() != kPathClose);
    }
}

TEST(PathStructure, ClosingLeavesNoSubpathOpen) {
    EXPECT_EQ(Elements(WithSubpathsClosed(Mixed())),
              "M(0, 0) L(4, 0) C(5, 1)(5, 2)(4, 3) Z M(9, 9) L(8, 7) Z");
    CPath dot;
    dot.MoveTo(Pt(1, 1));
    EXPECT_EQ(Elements(WithSubpathsClosed(dot)), "M(1, 1)");
    EXPECT_EQ(Elements(WithSubpathsClosed(CPath())), "");
}

TEST(PathStructure, OpeningKeepsOrDropsTheClosingLine) {
    EXPECT_EQ(Elements(WithSubpathsOpened(Mixed(), ClosingLine::kKeep)),
              "M(0, 0) L(4, 0) C(5, 1)(5, 2)(4, 3) L(0, 0) M(9, 9) L(8, 7)");
    EXPECT_EQ(Elements(WithSubpathsOpened(Mixed(), ClosingLine::kDrop)),
              "M(0, 0) L(4, 0) C(5, 1)(5, 2)(4, 3) M(9, 9) L(8, 7)");
    CPath back;
    back.MoveTo(Pt(0, 0)).LineTo(Pt(1, 0)).LineTo(Pt(0, 0)).ClosePath();
    EXPECT_EQ(Elements(WithSubpathsOpened(back, ClosingLine::kKeep)), "M(0, 0) L(1, 0) L(0, 0)")
        << "the closing line has no length";
}

TEST(PathStructure, TransformedMapsTheCurrentPointAndTheBoundsToo) {
    CMatrix3x3 const m = CMatrix3x3().Scale(2, 3).Translate(1, 0);
    CPath const path = Mixed();
    CPath moved = Transformed(path, m);
    EXPECT_EQ(Elements(path), Elements(Mixed()));
    EXPECT_EQ(Elements(moved), "M(1, 0) L(9, 0) C(11, 3)(11, 6)(9, 9) Z M(19, 27) L(17, 21)");
    EXPECT_EQ(moved.CurrentPoint(), Pt(17, 21));
    moved.LineTo(Pt(30, 30));
    EXPECT_EQ(moved.Bounds(), TRect<double>(1, 0, 30, 30));
}

TEST(PathStructure, FirstPointOfTellsWhereAnElementsPointsBegin) {
    CPath const path = Mixed();
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < path.mCtls.size(); ++i) {
        found.push_back(FirstPointOf(path, i));
    }
    EXPECT_EQ(found, (std::vector<std::size_t>{0, 1, 2, 5, 5, 6}));
    EXPECT_THROW(FirstPointOf(path, 6), std::out_of_range);
}

TEST(PathStructure, SetPointKeepsBoundsAndCurrentPointRight) {
    CPath path = Transformed(Mixed(), CMatrix3x3().Translate(1, 0));
    EXPECT_EQ(&SetPoint(path, 1, Pt(4, 1)), &path);
    EXPECT_EQ(Elements(path), "M(1, 0) L(4, 1) C(6, 1)(6, 2)(5, 3) Z M(10, 9) L(9, 7)");
    EXPECT_EQ(path.CurrentPoint(), Pt(9, 7));
    SetPoint(path, 6, Pt(21, 7));
    EXPECT_EQ(path.CurrentPoint(), Pt(21, 7));
    EXPECT_EQ(path.mBounds, TRect<double>(1, 0, 21, 9));
    SetPoint(path, 6, Pt(9, 7));
    EXPECT_EQ(path.mBounds, TRect<double>(1, 0, 10, 9)) << "bounds shrink as well";
    EXPECT_THROW(SetPoint(path, 7, Pt(1, 1)), std::out_of_range);
    SetPoint(path, 1, path.mPts[5]);
    EXPECT_EQ(path.mPts[1], Pt(10, 9)) << "a point of the path may be the argument";
}

TEST(PathStructure, SetPointAgreesWithBoundsComputedAnew) {
    std::mt19937 random(14);
    for (int i = 0; i < 2000; ++i) {
        CPath path = Transformed(AnyPath(random), CMatrix3x3().Translate(1, 1));
        if (path.mPts.empty()) {
            continue;
        }
        for (int k = 0; k < 8; ++k) {
            SetPoint(path, random() % path.mPts.size(),
                     Pt(static_cast<double>(random() % 9) + 1, static_cast<double>(random() % 9)));
            CPath fresh = path;
            EXPECT_EQ(path.mBounds, fresh.InvalBounds().Bounds());
        }
    }
}

TEST(PathStructure, PathsAreEqualByElementsAndPoints) {
    CPath a = Mixed();
    CPath b = Mixed();
    EXPECT_TRUE(Equal(a, b));
    b.InvalBounds();
    EXPECT_TRUE(Equal(a, b)) << "caches do not count";
    b.mPts[2].h += 1e-9;
    EXPECT_FALSE(Equal(a, b));
    b = a;
    b.ClosePath();
    EXPECT_FALSE(Equal(a, b));
    b = a;
    b.mPts[0].h = -0.0;
    EXPECT_TRUE(Equal(a, b));
    b.mPts[0].h = kNaN;
    EXPECT_FALSE(Equal(b, b));
    EXPECT_TRUE(Equal(CPath(), CPath()));
}

TEST(PathStructure, PolygonsAreEqualByVerticesAndClosing) {
    TPolygon<double> a;
    a.Append(Pt(0, 0), true).Append(Pt(1, 0), true).Append(Pt(1, 1), true);
    TPolygon<double> b(a);
    EXPECT_TRUE(Equal(a, b));
    b.Close();
    EXPECT_FALSE(Equal(a, b));
    TPolygon<double> c(a);
    c.SetPt(2, Pt(1, 2));
    EXPECT_FALSE(Equal(a, c));
    c.SetPt(2, Pt(1, 1)).Append(Pt(0, 1), true);
    EXPECT_FALSE(Equal(a, c));
    EXPECT_TRUE(Equal(TPolygon<double>(), TPolygon<double>()));
}

TEST(PathStructure, PathOfPolygonsHasASubpathForEach) {
    TPolygon<double> a;
    a.Append(Pt(0, 0), true).Append(Pt(1, 0), true).Append(Pt(1, 0), true).Append(Pt(1, 1), true);
    EXPECT_EQ(Elements(PathOf(a)), "M(0, 0) L(1, 0) L(1, 1)");
    TPolygon<double> b(a);
    b.Close();
    EXPECT_EQ(Elements(PathOf(b)), "M(0, 0) L(1, 0) L(1, 1) Z");
    EXPECT_EQ(Elements(PathOf(std::vector<TPolygon<double>>{b, TPolygon<double>(), a})),
              "M(0, 0) L(1, 0) L(1, 1) Z M(0, 0) L(1, 0) L(1, 1)");
    EXPECT_EQ(Elements(PathOf(TPolygon<double>())), "");
    CFPolygonRef ref = b;
    EXPECT_EQ(Elements(PathOf(ref)), "M(0, 0) L(1, 0) L(1, 1) Z");
    ref.Dispose();
    EXPECT_EQ(Elements(PathOf(CFPolygonRef())), "");
}

} // namespace
