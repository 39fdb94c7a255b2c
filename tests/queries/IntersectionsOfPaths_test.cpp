// SPDX-License-Identifier: MIT

#include "Intersections.h"

#include "CMatrix3x3.h"
#include "Finite.h"
#include "PathText.h"
#include "TestSupport.h"
#include "Winding.h"

#include <ft2build.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace {

using trammel::AppendIntersections;
using trammel::Intersection;
using trammel::IntersectionKind;
using trammel::Intersections;
using trammel::SelfIntersections;
using trammel_test::IsFinite;
using trammel_test::Path;

typedef TPoint<double> Pt;
typedef TLine<double> Line;
typedef std::vector<Intersection> Places;

constexpr double kFine = 1e-9;

/// A parameter with up to four digits.
std::string Short(double t) {
    std::string text = std::to_string(std::round(t * 1e4) / 1e4);
    text.erase(text.find_last_not_of('0') + 1);
    return text.back() == '.' ? text.substr(0, text.size() - 1) : text;
}

/// Each place as its kind, the element and parameters on the first outline, and those on the second
/// one. X is a crossing, C a contact, E an end, O an overlap. A + tells that the outlines cross.
std::string Text(Places const& places) {
    std::string text;
    for (Intersection const& p : places) {
        text += text.empty() ? "" : "; ";
        text += "XCEO"[static_cast<int>(p.kind)];
        text += p.crosses ? "+" : "";
        for (trammel::IntersectionPlace const& on : {p.a, p.b}) {
            text += " " + std::to_string(on.element) + ":" + Short(on.t);
            text += p.kind == IntersectionKind::kOverlap ? "-" + Short(on.endT) : "";
        }
    }
    return text;
}

int Crossings(Places const& places) {
    return static_cast<int>(
        std::count_if(places.begin(), places.end(), [](auto const& p) { return p.crosses; }));
}

std::string Text(std::string const& a, std::string const& b) {
    return Text(Intersections(Path(a), Path(b), kFine));
}
std::string CoarseText(std::string const& a, std::string const& b, double accuracy) {
    return Text(Intersections(Path(a), Path(b), accuracy));
}
std::string OwnText(std::string const& path) { return Text(SelfIntersections(Path(path), kFine)); }

std::string const kSquare = "M0 0 H4 V4 H0 Z";

TEST(IntersectionsOfPaths, TellElementsAndParameters) {
    EXPECT_EQ(Text(kSquare, "M2 2 H6 V6 H2 Z"), "X+ 2:0.5 1:0.5; X+ 3:0.5 4:0.5");
    EXPECT_EQ(Text(kSquare, "M6 6 H8 V8 H6 Z"), "");
    Places const places = Intersections(Path(kSquare), Path("M2 -1 V1"), kFine);
    ASSERT_EQ(Text(places), "X+ 1:0.5 1:0.5");
    EXPECT_EQ(places[0].point, Pt(2, 0));
    EXPECT_EQ(places[0].endPoint, Pt(2, 0));
}

TEST(IntersectionsOfPaths, WithLinesAndCurvesHaveElementZeroForThese) {
    CPath const square = Path(kSquare);
    Line const line(Pt(-1, 1), Pt(7, 3));
    EXPECT_EQ(Text(Intersections(square, line, kFine)), "X+ 2:0.5625 0:0.625; X+ 4:0.6875 0:0.125");
    EXPECT_EQ(Text(Intersections(line, square, kFine)), "X+ 0:0.125 4:0.6875; X+ 0:0.625 2:0.5625");
    CBezier const arch(Pt(1, 2), Pt(1, -2), Pt(3, -2), Pt(3, 2));
    EXPECT_EQ(Text(Intersections(square, arch, kFine)),
              "X+ 1:0.3075 0:0.2113; X+ 1:0.6925 0:0.7887");
    EXPECT_EQ(Text(Intersections(arch, square, kFine)),
              "X+ 0:0.2113 1:0.3075; X+ 0:0.7887 1:0.6925");
}

TEST(IntersectionsOfPaths, TellAVertexOnAnEdgeOnce) {
    EXPECT_EQ(Text(kSquare, "M2 0 L3 -2 H1 Z"), "C 1:0.5 1:0");
    EXPECT_EQ(Text(kSquare, "M2 -1 V0 V1 H9 V-1 Z"), "X+ 1:0.5 1:1; X+ 2:0.25 3:0.2857");
    // The same with the vertex in curves.
    EXPECT_EQ(Text("M0 0 H4", "M2 -1 C2 -0.5 2 -0.5 2 0 C2 0.5 2 0.5 2 1"), "X+ 1:0.5 1:1");
}

TEST(IntersectionsOfPaths, TellAVertexOnAVertexOnce) {
    EXPECT_EQ(Text(kSquare, "M4 4 H6 V6 H4 Z"), "C 2:1 1:0");
    EXPECT_EQ(Text(kSquare, "M3 3 L4 4 L5 3 V9 Z"), "X+ 2:1 1:1; X+ 3:0.1667 4:0.8333");
    EXPECT_EQ(Text("M0 0 L2 2 L4 0", "M0 4 L2 2 L4 4"), "C 1:1 1:1");
    EXPECT_EQ(Text("M0 0 L2 2 L4 4", "M0 4 L2 2 L4 0"), "X+ 1:1 1:1");
    // Where the closing line ends, as well.
    EXPECT_EQ(Text(kSquare, "M-1 1 L0 0 L1 -1 V1 Z"),
              "C 1:0 1:1; X+ 1:0.25 3:0.5; X+ 4:0.75 4:0.5");
}

TEST(IntersectionsOfPaths, TellWhetherCornersWithCommonTangentsCross) {
    // At (0, 0), two sides of each have the same tangents, and they part as the third power of the
    // distance. A is the lower one along the first tangent, and the inner one along the second.
    CPath const a = Path("M0 0C0 1 0 0 1 0Z");
    CPath const b = Path("M0 0C1 0 0 0 1 1L0 1C0 1 0 1 0 0Z");
    for (double const accuracy : {1e-3, 1e-6, 1e-9, 1e-10, 1e-11, 3e-12}) {
        std::vector<Intersection> const places = Intersections(a, b, accuracy);
        ASSERT_EQ(places.size(), 2u) << accuracy;
        EXPECT_EQ(places[0].kind, IntersectionKind::kCrossing) << accuracy;
        EXPECT_EQ(places[1].kind, IntersectionKind::kCrossing) << accuracy;
    }
}

TEST(IntersectionsOfPaths, ThroughTwoCornersAreTwo) {
    EXPECT_EQ(Text(Intersections(Path(kSquare), Line(Pt(-1, -1), Pt(5, 5)), kFine)),
              "X+ 1:0 0:0.1667; X+ 2:1 0:0.8333");
    EXPECT_EQ(Text(Intersections(Path(kSquare), Line(Pt(-1, 1), Pt(1, -1)), kFine)), "C 1:0 0:0.5");
}

TEST(IntersectionsOfPaths, AtOpenEndsAreEnds) {
    EXPECT_EQ(Text("M0 0 H4", "M2 0 V3"), "E 1:0.5 1:0");
    EXPECT_EQ(Text("M0 0 H4", "M4 0 V3"), "E 1:1 1:0");
    EXPECT_EQ(Text("M0 0 H4 V4", "M4 0 V-3"), "E 1:1 1:0");
    EXPECT_EQ(Text("M0 0 H4", "M1 0 H3"), "O 1:0.25-0.75 1:0-1");
}

TEST(IntersectionsOfPaths, AlongEachOtherAreOverlapsForEachPairOfElements) {
    EXPECT_EQ(Text(kSquare, kSquare), "O 1:0-1 1:0-1; O 2:0-1 2:0-1; O 3:0-1 3:0-1; O 4:0-1 4:0-1");
    EXPECT_EQ(Text(kSquare, "M4 0 H8 V4 H4 Z"), "O 2:0-1 4:1-0");
    EXPECT_EQ(Text(kSquare, "M4 1 H8 V3 H4 Z"), "O 2:0.25-0.75 4:1-0");
    EXPECT_EQ(Text("M0 0 H1 H2 H3 V3", "M0 0 H3 V3"),
              "O 1:0-1 1:0-0.3333; O 2:0-1 1:0.3333-0.6667; O 3:0-1 1:0.6667-1; O 4:0-1 2:0-1");
}

TEST(IntersectionsOfPaths, TellAtTheFirstOfSomeOverlapsWhetherTheOutlinesCross) {
    // In from above, along the edge, and out below; and out above.
    EXPECT_EQ(Text(kSquare, "M1 -1 V0 H3 V1 H5 V-1 Z"), "O+ 1:0.25-0.75 2:0-1; X+ 2:0.25 4:0.5");
    EXPECT_EQ(Text(kSquare, "M1 -1 V0 H3 V-1 Z"), "O 1:0.25-0.75 2:0-1");
    // Around a corner.
    EXPECT_EQ(Text("M1 -2 V-1 H2 V0 H5", "M0 -1 H1 H2 V0 V3"), "O 2:0-1 2:0-1; O 3:0-1 3:0-1");
    EXPECT_EQ(Text("M1 -2 V-1 H2 V0 V3", "M0 -1 H1 H2 V0 H5"), "O+ 2:0-1 2:0-1; O 3:0-1 3:0-1");
    // Against each other.
    EXPECT_EQ(Text("M1 -2 V-1 H2 V3", "M2 4 V-1 H1 H0"), "O 2:0-1 2:1-0; O 3:0-1 1:1-0.2");
}

TEST(IntersectionsOfPaths, WithThemselvesAreNotTheirJoints) {
    EXPECT_EQ(OwnText(kSquare), "");
    EXPECT_EQ(OwnText("M0 0 C0 4 4 4 4 0 S8 -4 8 0 L4 0.5"), "");
    EXPECT_EQ(OwnText("M0 0 A1 1 0 1 1 2 0 A1 1 0 1 1 0 0 Z"), "");
    EXPECT_EQ(OwnText("M0 0 L4 0 L0 0.0001 Z"), ""); // a sharp spike
    // A smooth closed path with an element that is shorter than the accuracy.
    EXPECT_EQ(OwnText("M0 0 H4 h1e-10 V4 Z"), "");
}

TEST(IntersectionsOfPaths, WithThemselvesTellTheEarlierElementFirst) {
    EXPECT_EQ(OwnText("M0 0 L4 4 L4 0 L0 4 Z"), "X+ 1:0.5 3:0.5");
    EXPECT_EQ(OwnText("M0 0 L2 2 L4 4 L4 0 L2 2 L0 4 Z"), "X+ 1:1 4:1");
    EXPECT_EQ(OwnText("M0 0 L2 2 L4 0 L4 4 L2 2 L0 4 Z"), "C 1:1 5:0");
    EXPECT_EQ(OwnText("M0 0 H4 V4 H0 Z M2 2 H6 V6 H2 Z"), "X+ 2:0.5 6:0.5; X+ 3:0.5 9:0.5");
    EXPECT_EQ(OwnText("M0 -10 L5.878 8.090 L-9.511 -3.090 L9.511 -3.090 L-5.878 8.090 Z"),
              "X+ 1:0.382 3:0.618; X+ 1:0.618 4:0.382; X+ 2:0.382 4:0.618; X+ 2:0.618 5:0.382; "
              "X+ 3:0.382 5:0.618");
    // An open path that ends on its own way.
    EXPECT_EQ(OwnText("M0 0 H4 V2 H2 V0"), "E 1:0.5 4:1");
}

TEST(IntersectionsOfPaths, WithThemselvesTellWaysBackAsOverlaps) {
    EXPECT_EQ(OwnText("M0 0 H4 H2 V3 Z"), "O 1:0.5-1 2:1-0");
    EXPECT_EQ(OwnText("M0 0 H4 V4 H0 Z H4 V4 H0 Z"),
              "O 1:0-1 6:0-1; O 2:0-1 7:0-1; O 3:0-1 8:0-1; O 4:0-1 9:0-1");
}

TEST(IntersectionsOfPaths, OfALoopAreItsKnot) {
    // The knot of x = t(1-t)(..) by the formula for s + t and st of the two parameters.
    std::mt19937_64 generator(8);
    std::uniform_real_distribution<double> uniform(0, 100);
    int knots = 0;
    for (int i = 0; i < 2000; ++i) {
        auto const point = [&] { return Pt(uniform(generator), uniform(generator)); };
        CBezier const c(point(), point(), point(), point());
        Pt const p1 = (c.P1 - c.P0) * 3.0;
        Pt const p2 = (c.P2 - c.P1 * 2.0 + c.P0) * 3.0;
        Pt const p3 = c.P3 - c.P2 * 3.0 + c.P1 * 3.0 - c.P0;
        auto const cross = [](Pt const& a, Pt const& b) { return a.h * b.v - a.v * b.h; };
        // p3 (s² + st + t²) + p2 (s + t) + p1 = 0
        double const sum = -cross(p3, p1) / cross(p3, p2);
        double const squares = -cross(p2, p1) / cross(p2, p3);
        double const product = sum * sum - squares;
        double const difference = sum * sum - 4 * product;
        double const root = std::sqrt(difference);
        double const s = (sum - root) / 2;
        double const t = (sum + root) / 2;
        Places const places = SelfIntersections(c, kFine);
        if (difference > 1e-9 && s > 1e-6 && t < 1 - 1e-6) {
            ASSERT_EQ(places.size(), 1U) << i;
            EXPECT_EQ(places[0].kind, IntersectionKind::kCrossing);
            EXPECT_NEAR(places[0].a.t, s, 1e-9);
            EXPECT_NEAR(places[0].b.t, t, 1e-9);
            ++knots;
        } else if (!(difference > -1e-9) || s < -1e-6 || t > 1 + 1e-6) {
            EXPECT_EQ(places.size(), 0U) << i;
        }
    }
    EXPECT_GT(knots, 50);
}

TEST(IntersectionsOfPaths, OfAStraightCurveThatRunsBackAreOverlaps) {
    CBezier const back(Pt(0, 0), Pt(9, 9), Pt(-6, -6), Pt(3, 3)); // turns at 1/4 and 3/4
    Places const places = SelfIntersections(back, kFine);
    ASSERT_EQ(places.size(), 3U);
    for (Intersection const& p : places) {
        EXPECT_EQ(p.kind, IntersectionKind::kOverlap);
        EXPECT_FALSE(p.crosses);
        EXPECT_LT(p.a.t, p.a.endT);
    }
    // Neither its ends nor its inner control points show a direction.
    CBezier const thereAndBack(Pt(0, 0), Pt(1, 1), Pt(1, 1), Pt(0, 0));
    EXPECT_EQ(Text(SelfIntersections(thereAndBack, kFine)), "O 0:0-0.5 0:1-0.5");
    CBezier const cusp(Pt(0, 0), Pt(4, 4), Pt(0, 4), Pt(4, 0));
    EXPECT_EQ(SelfIntersections(cusp, kFine).size(), 0U);
    CBezier const closed(Pt(0, 0), Pt(9, 0), Pt(0, 9), Pt(0, 0));
    EXPECT_EQ(Text(SelfIntersections(closed, kFine)), "E 0:0 0:1");
}

TEST(IntersectionsOfPaths, LeaveOutWhatIsNotFinite) {
    CPath const square = Path(kSquare);
    for (double const bad : {trammel_test::kNaN, trammel_test::kInf, -trammel_test::kInf}) {
        CPath spoilt = Path("M2 -1 V1 M3 -1 C3 0 3 0 3 1");
        spoilt.mPts[3].v = bad; // a control point
        EXPECT_EQ(Text(Intersections(spoilt, square, kFine)), "X+ 1:0.5 1:0.5");
        EXPECT_EQ(Text(Intersections(square, spoilt, kFine)), "X+ 1:0.5 1:0.5");
        EXPECT_EQ(Text(SelfIntersections(spoilt, kFine)), "");
        EXPECT_EQ(Text(Intersections(square, Line(Pt(2, -1), Pt(2, bad)), kFine)), "");
    }
}

TEST(IntersectionsOfPaths, OfNothingAndOfPointsEnd) {
    CPath const square = Path(kSquare);
    EXPECT_EQ(Text(Intersections(CPath(), square, kFine)), "");
    EXPECT_EQ(Text(Intersections(square, CPath(), kFine)), "");
    EXPECT_EQ(Text(SelfIntersections(CPath(), kFine)), "");
    EXPECT_EQ(Text(Intersections(square, Path("M2 0"), kFine)), "");
    CPath dot;
    dot.AddCtl(kPathMove).AddPt(Pt(2, 0)).AddCtl(kPathLine).AddPt(Pt(2, 0));
    EXPECT_EQ(Text(Intersections(square, dot, kFine)), "E 1:0.5 1:0.5");
    // Codes that ask for more points than there are.
    CPath torn = Path("M2 -1 V1");
    torn.AddCtl(kPathCurve);
    EXPECT_EQ(Text(Intersections(square, torn, kFine)), "X+ 1:0.5 1:0.5");
    // Without a move, and after a close.
    CPath loose;
    loose.AddCtl(kPathLine).AddPt(Pt(2, -1)).AddCtl(kPathLine).AddPt(Pt(2, 1));
    EXPECT_EQ(Text(Intersections(loose, Line(Pt(1, 0), Pt(3, 0)), kFine)), "X+ 1:0.5 0:0.5");
}

TEST(IntersectionsOfPaths, OfAnySizeAndPlaceAreAlike) {
    CPath const a = Path("M0 0 C9 0 9 9 0 9 C2 6 2 3 0 0 Z");
    CPath const b = Path("M-1 1 L8 2 C3 4 3 5 8 7 L1 12 Z");
    std::string const text = Text(Intersections(a, b, kFine));
    EXPECT_EQ(std::count(text.begin(), text.end(), 'X'), 6);
    for (int const exponent : {-1050, -700, -200, 200, 700, 1015}) {
        CMatrix3x3 matrix;
        matrix.Scale(std::scalbn(1.0, exponent), std::scalbn(1.0, exponent));
        CPath scaledA = a;
        CPath scaledB = b;
        for (CPath* path : {&scaledA, &scaledB}) {
            for (Pt& p : path->mPts) {
                p = Pt(std::scalbn(p.h, exponent), std::scalbn(p.v, exponent));
            }
        }
        EXPECT_EQ(Text(Intersections(scaledA, scaledB, std::scalbn(kFine, exponent))), text)
            << exponent;
    }
}

TEST(IntersectionsOfPaths, FarFromTheOriginFindLinesOnStraightCurves) {
    // The coordinates are whole, and thirds of them are off by far more than the accuracy.
    for (double const far : {0.0, 1e4, 1e8, 1e12}) {
        Pt const p(far + 1, 2 - far);
        Pt const q(far + 2, -far);
        CPath curve;
        curve.MoveTo(q).CurveTo(p, p, p);
        for (double const accuracy : {1e-6, 1e-9, 2e-11}) {
            EXPECT_EQ(Text(Intersections(Line(p, q), curve, accuracy)), "O 0:0-1 1:1-0")
                << far << ", " << accuracy;
            EXPECT_EQ(Text(Intersections(Line(p, q), CBezier(q, p, p, p), accuracy)),
                      "O 0:0-1 0:1-0")
                << far << ", " << accuracy;
        }
    }
}

TEST(IntersectionsOfPaths, KeepAnAccuracyThatIsTooSmallBesideTheirSize) {
    // Scaled along with the coordinates it is 0.
    CPath const great = Path("M0 0 L1e300 1e300");
    Places places;
    EXPECT_EQ(AppendIntersections(great, Line(Pt(5e300, 0), Pt(5e300, 1e300)), 1e-160, places),
              1e-160);
    EXPECT_TRUE(places.empty());
}

// Found by the fuzz target intersections.
TEST(IntersectionsOfPaths, LieOnBothLinesOfASmallAngle) {
    CPath const lines = Path("M0 1e11L1e11 16M16 1e11L1e11 0");
    Places places;
    EXPECT_EQ(trammel::AppendSelfIntersections(lines, 0.0, places), 0.0);
    EXPECT_EQ(Text(places), "X+ 1:0.5 3:0.5");
    ASSERT_EQ(places.size(), 1U);
    // Rounding moves the place along the lines, but not off them.
    double const s = places[0].a.t;
    double const t = places[0].b.t;
    EXPECT_NEAR(1e11 * s, 16.0 + (1e11 - 16.0) * t, 1e-4);
    EXPECT_NEAR(1e11 - (1e11 - 16.0) * s, 1e11 - 1e11 * t, 1e-4);
}

TEST(IntersectionsOfPaths, EndForValuesFromTheEdgesOfWhatDoublesHold) {
    // Elements of 1e-300 beside such of 1e300 once kept the walk along a branch from ending.
    double const values[] = {0,       1,        -1,     1e-300,
                             -1e-300, 1e300,    -1e300, 5e-324,
                             2,       1e-16,    1e16,   trammel_test::kNaN,
                             1.7e308, -1.7e308, 3,      trammel_test::kInf};
    std::mt19937_64 generator(13);
    auto const below = [&](std::size_t n) { return static_cast<std::size_t>(generator() % n); };
    for (int i = 0; i < 1500; ++i) {
        std::size_t const kinds = i % 2 == 0 ? 11 : 16;
        CPath paths[2];
        for (CPath& path : paths) {
            for (std::size_t k = below(12); k > 0; --k) {
                char const code = static_cast<char>(below(5));
                path.AddCtl(code);
                int const points = code < kPathCurve ? 1 : code == kPathCurve ? 3 : 0;
                for (int n = 0; n < points; ++n) {
                    double const h = values[below(kinds)];
                    path.AddPt(Pt(h, values[below(kinds)]));
                }
            }
        }
        double const accuracy =
            std::pow(10.0, -static_cast<double>(below(12))) * (i % 3 == 0 ? 1e300 : 1.0);
        Places places = Intersections(paths[0], paths[1], accuracy);
        trammel::AppendSelfIntersections(paths[0], accuracy, places);
        for (Intersection const& p : places) {
            for (double const t : {p.a.t, p.a.endT, p.b.t, p.b.endT}) {
                EXPECT_TRUE(t >= 0 && t <= 1) << i;
            }
            EXPECT_TRUE(IsFinite(p.point)) << i;
            EXPECT_TRUE(IsFinite(p.endPoint)) << i;
        }
    }
}

/// A closed path of random elements, on a grid of whole numbers or off it.
CPath RandomPath(std::mt19937_64& generator, bool whole) {
    std::uniform_real_distribution<double> uniform(0, 6);
    auto const point = [&] {
        Pt const p(uniform(generator), uniform(generator));
        return whole ? Pt(std::floor(p.h), std::floor(p.v)) : p;
    };
    CPath path;
    path.MoveTo(point());
    for (int i = 0; i < 6; ++i) {
        if (uniform(generator) < 3) {
            path.LineTo(point());
        } else {
            Pt const c1 = point();
            Pt const c2 = point();
            path.CurveTo(c1, c2, point());
        }
    }
    return path.ClosePath();
}

TEST(IntersectionsOfPaths, OfClosedOnesCrossAnEvenNumberOfTimes) {
    std::mt19937_64 generator(9);
    for (int i = 0; i < 1500; ++i) {
        CPath const a = RandomPath(generator, false);
        CPath const b = RandomPath(generator, false);
        EXPECT_EQ(Crossings(Intersections(a, b, kFine)) % 2, 0) << i;
    }
    // On a grid vertices lie on edges and vertices, and edges on each other.
    int wrong = 0;
    int places = 0;
    for (int i = 0; i < 1500; ++i) {
        CPath const a = RandomPath(generator, true);
        CPath const b = RandomPath(generator, true);
        Places const found = Intersections(a, b, kFine);
        places += static_cast<int>(found.size());
        wrong += Crossings(found) % 2;
        wrong += Crossings(Intersections(a, b, 2e-3)) % 2;
    }
    EXPECT_GT(places, 10000);
    EXPECT_EQ(wrong, 0);
}

TEST(IntersectionsOfPaths, BesideOtherPlacesTellWhetherTheOutlinesCross) {
    // Once the circle on which branches were compared held other places: the corner at (1, 1), and
    // the near place at (6.85, 3.80), were told as crossings. Fine accuracies find no such thing.
    EXPECT_EQ(CoarseText("M7 0 Q1 6 1 1 C1 2 5 6 8 0 Z", "M7 0 Q1 7 2 8 L1 1 C1 8 7 1 5 0 Z", 8e-4),
              "X+ 1:0 1:0; X+ 1:0.1675 3:0.7333; X+ 1:0.8113 2:0.7864; C 1:1 3:0; "
              "X+ 2:0.0405 2:0.9807; X+ 2:0.5794 3:0.5416; X+ 2:0.6132 1:0.2593");
    EXPECT_EQ(
        CoarseText("M7 4 Q4 0 8 3 Q6 3 4 4 Z", "M4 0 L1 2 L0 8 C1 2 7 0 8 7 C5 0 2 1 8 3 Z", 8e-4),
        "C 1:0.025 3:0.7967; X+ 1:0.3205 4:0.8422; X+ 1:1 5:0; X+ 2:0.4309 3:0.7281; "
        "X+ 2:0.5069 4:0.2389; X+ 3:0.8198 4:0.1767; X+ 3:0.9967 3:0.8144");
}

TEST(IntersectionsOfPaths, ThroughTheTipOfACuspTellSides) {
    // Once two crossings beside the tip were told as one: the side before both and between them.
    EXPECT_EQ(CoarseText("M1 4 C6 5 7 2 0 7", "M5 4 C5 6 6 2 2 4", 8e-8),
              "E 1:0.5 1:0; C 1:0.5 1:0.5");
}

TEST(IntersectionsOfPaths, ThatRunToAndFroAlongEachOtherCrossAnEvenNumberOfTimes) {
    // Once the ends of the first overlaps decided, wherever the outlines had been between.
    std::mt19937_64 generator(14);
    auto const below = [&](unsigned n) { return static_cast<double>(generator() % n); };
    auto const point = [&] {
        double const h = below(3);
        return Pt(h, below(3));
    };
    int overlaps = 0;
    int crossings = 0;
    for (int i = 0; i < 2000; ++i) {
        CPath paths[2];
        for (CPath& path : paths) {
            path.MoveTo(point());
            for (int k = 0; k < 4; ++k) {
                path.LineTo(point());
            }
            path.ClosePath();
        }
        Places const places = Intersections(paths[0], paths[1], kFine);
        int const count = Crossings(places);
        EXPECT_EQ(count % 2, 0) << i;
        EXPECT_EQ(Crossings(Intersections(paths[1], paths[0], kFine)), count) << i;
        for (Intersection const& p : places) {
            overlaps += p.kind == IntersectionKind::kOverlap ? 1 : 0;
            crossings += p.kind == IntersectionKind::kOverlap && p.crosses ? 1 : 0;
        }
    }
    EXPECT_GT(overlaps, 1500);
    EXPECT_GT(crossings, 400);
}

TEST(IntersectionsOfPaths, ThatRunToAndFroCrossWhereTheyWouldAfterASmallMove) {
    // To and fro on one line, which has no inside.
    EXPECT_EQ(Text("M0 0 L2 2 L2 1 Z", "M1 1 L0 0 L1 1 L2 2 Z"),
              "O 1:0-0.5 1:1-0; O 1:0-0.5 2:0-1; O 1:0.5-1 3:0-1; O 1:0.5-1 4:1-0");
    // From below, three times along a line, and out above; and out below.
    EXPECT_EQ(Text("M0 0 H9", "M2 3 V0 H6 H3 H7 V-3"),
              "O+ 1:0.2222-0.6667 2:0-1; O 1:0.3333-0.6667 3:1-0; O 1:0.3333-0.7778 4:0-1");
    EXPECT_EQ(Text("M0 0 H9", "M2 3 V0 H6 H3 H7 V3"),
              "O 1:0.2222-0.6667 2:0-1; O 1:0.3333-0.6667 3:1-0; O 1:0.3333-0.7778 4:0-1");
}

TEST(IntersectionsOfPaths, AreTheSameForSwappedAndDividedPaths) {
    std::mt19937_64 generator(10);
    for (int i = 0; i < 300; ++i) {
        CPath const a = RandomPath(generator, false);
        CPath const b = RandomPath(generator, false);
        Places const places = Intersections(a, b, kFine);
        Places swapped = Intersections(b, a, kFine);
        ASSERT_EQ(swapped.size(), places.size()) << i;
        std::sort(swapped.begin(), swapped.end(), [](auto const& p, auto const& q) {
            return std::make_pair(p.b.element, p.b.t) < std::make_pair(q.b.element, q.b.t);
        });
        for (std::size_t k = 0; k < places.size(); ++k) {
            EXPECT_EQ(swapped[k].b.element, places[k].a.element);
            EXPECT_NEAR(swapped[k].b.t, places[k].a.t, kFine);
            EXPECT_EQ(swapped[k].kind, places[k].kind);
        }
        // Each curve in two, and each line in two.
        CPath halves;
        std::size_t next = 1;
        halves.MoveTo(a.mPts[0]);
        Pt current = a.mPts[0];
        for (std::size_t e = 1; e < a.mCtls.size(); ++e) {
            if (a.mCtls[e] == kPathLine) {
                halves.LineTo(Line(current, a.mPts[next]).TPt(0.375));
                current = a.mPts[next++];
                halves.LineTo(current);
            } else if (a.mCtls[e] == kPathCurve) {
                CBezier const c(current, a.mPts[next], a.mPts[next + 1], a.mPts[next + 2]);
                CBezier head;
                CBezier tail;
                c.Divide(head, tail, 0.375);
                halves.CurveTo(head.P1, head.P2, head.P3).CurveTo(tail.P1, tail.P2, tail.P3);
                current = c.P3;
                next += 3;
            } else {
                halves.ClosePath();
            }
        }
        Places const divided = Intersections(halves, b, kFine);
        ASSERT_EQ(divided.size(), places.size()) << i;
        for (std::size_t k = 0; k < places.size(); ++k) {
            EXPECT_NEAR(divided[k].point.h, places[k].point.h, 1e-8);
            EXPECT_NEAR(divided[k].point.v, places[k].point.v, 1e-8);
        }
    }
}

/// A glyph of a font, 2048 units to the em, as a path.
class Glyph {
public:
    Glyph(FT_Face face, char32_t code) {
        FT_Outline_Funcs const functions = {
            &Glyph::MoveTo, &Glyph::LineTo, &Glyph::ConicTo, &Glyph::CubicTo, 0, 0};
        EXPECT_EQ(FT_Load_Char(face, static_cast<FT_ULong>(code), FT_LOAD_NO_SCALE), 0);
        EXPECT_EQ(FT_Outline_Decompose(&face->glyph->outline, &functions, this), 0);
        mPath.ClosePath();
    }
    CPath const& Outline() const { return mPath; }

private:
    static Pt At(FT_Vector const* p) {
        return Pt(static_cast<double>(p->x), static_cast<double>(p->y));
    }
    static CPath& PathOf(void* user) { return static_cast<Glyph*>(user)->mPath; }
    static int MoveTo(FT_Vector const* to, void* user) {
        PathOf(user).ClosePath().MoveTo(At(to));
        return 0;
    }
    static int LineTo(FT_Vector const* to, void* user) {
        PathOf(user).LineTo(At(to));
        return 0;
    }
    static int ConicTo(FT_Vector const* control, FT_Vector const* to, void* user) {
        Pt const c = At(control) * (2.0 / 3.0);
        Pt const start = PathOf(user).CurrentPoint() / 3.0;
        PathOf(user).CurveTo(start + c, At(to) / 3.0 + c, At(to));
        return 0;
    }
    static int CubicTo(FT_Vector const* c1, FT_Vector const* c2, FT_Vector const* to, void* user) {
        PathOf(user).CurveTo(At(c1), At(c2), At(to));
        return 0;
    }

    CPath mPath;
};

/// The crossings of two paths, by chains of chords held against each other.
std::vector<Pt> CrossingsOfChords(CPath const& a, CPath const& b) {
    auto const chords = [](CPath const& path) {
        std::vector<Line> lines;
        Pt start;
        Pt current;
        std::size_t next = 0;
        for (char const code : path.mCtls) {
            if (code == kPathMove) {
                start = current = path.mPts[next++];
            } else if (code == kPathLine) {
                lines.emplace_back(current, path.mPts[next]);
                current = path.mPts[next++];
            } else if (code == kPathClose) {
                lines.emplace_back(current, start);
                current = start;
            } else {
                CBezier const c(current, path.mPts[next], path.mPts[next + 1], path.mPts[next + 2]);
                constexpr int kChords = 64;
                for (int i = 1; i <= kChords; ++i) {
                    Pt const p = c.TPt(static_cast<double>(i) / kChords);
                    lines.emplace_back(current, p);
                    current = p;
                }
                next += 3;
            }
        }
        return lines;
    };
    std::vector<Pt> crossings;
    std::vector<Line> const others = chords(b);
    for (Line const& l : chords(a)) {
        for (Line const& m : others) {
            auto const cross = [](Pt const& p, Pt const& q) { return p.h * q.v - p.v * q.h; };
            double const across = cross(l.Delta(), m.Delta());
            double const s = cross(m.mStart - l.mStart, m.Delta()) / across;
            double const t = cross(m.mStart - l.mStart, l.Delta()) / across;
            if (s >= 0 && s < 1 && t >= 0 && t < 1) {
                crossings.push_back(l.TPt(s));
            }
        }
    }
    return crossings;
}

TEST(IntersectionsOfPaths, OfGlyphsAreThoseOfTheirChords) {
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    ASSERT_EQ(FT_Init_FreeType(&library), 0);
    ASSERT_EQ(FT_New_Face(library, "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", 0, &face), 0);
    std::mt19937_64 generator(11);
    std::uniform_real_distribution<double> uniform(-400, 400);
    std::u32string const text = U"Sphinx of black quartz, judge my vow 0123456789 &@%";
    int compared = 0;
    int different = 0;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        CPath const a = Glyph(face, text[i]).Outline();
        CPath b = Glyph(face, text[i + 1]).Outline();
        CMatrix3x3 matrix;
        matrix.Translate(Pt(uniform(generator), uniform(generator)));
        b.Transform(matrix);
        Places const places = Intersections(a, b, 1e-6);
        EXPECT_EQ(Crossings(places) % 2, 0);
        std::vector<Pt> const chords = CrossingsOfChords(a, b);
        // Chords miss the curves by up to a tenth of a unit, so near contacts may differ.
        different += chords.size() != places.size() ? 1 : 0;
        for (Intersection const& p : places) {
            ++compared;
            double nearest = trammel_test::kInf;
            for (Pt const& q : chords) {
                nearest = std::min(nearest, std::hypot(p.point.h - q.h, p.point.v - q.v));
            }
            EXPECT_LT(nearest, 30.0);
        }
        EXPECT_EQ(Text(SelfIntersections(a, 1e-6)), "");
    }
    EXPECT_GT(compared, 150);
    EXPECT_LE(different, 1);
    FT_Done_Face(face);
    FT_Done_FreeType(library);
}

TEST(IntersectionsOfPaths, OfACopyOfItselfAreOverlapsAllAround) {
    std::mt19937_64 generator(12);
    for (int i = 0; i < 200; ++i) {
        CPath const path = RandomPath(generator, false);
        Places const own = Intersections(path, path, kFine);
        std::size_t overlaps = 0;
        for (Intersection const& p : own) {
            overlaps += p.kind == IntersectionKind::kOverlap ? 1 : 0;
        }
        EXPECT_EQ(overlaps, 7U) << i;
        // What remains are the path's own crossings, each seen from both sides.
        EXPECT_EQ(own.size() - overlaps, 2 * SelfIntersections(path, kFine).size()) << i;
    }
}

} // namespace
