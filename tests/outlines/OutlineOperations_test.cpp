// SPDX-License-Identifier: MIT

#include "OutlineOperations.h"

#include "AnyPath.h"
#include "CMatrix3x3.h"
#include "Finite.h"
#include "Intersections.h"
#include "Moments.h"
#include "OutlineCases.h"
#include "OutlineJudge.h"
#include "OutlineLaws.h"
#include "PathStructure.h"
#include "PathText.h"
#include "SourceJudge.h"
#include "SvgPath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using trammel::Boolean;
using trammel::ElementSource;
using trammel::FillRule;
using trammel::RemoveOverlap;
using trammel_test::IsFinite;
using trammel_test::OutlineJudge;
using trammel_test::Path;
using trammel_test::PointAt;
using trammel_test::SizeOf;
using trammel_test::Wants;

typedef TPoint<double> Pt;
typedef trammel_test::OutlineCase Case;

FillRule const kNonZero = FillRule::kNonZero;
FillRule const kEvenOdd = FillRule::kEvenOdd;

std::string Text(CPath const& path) { return trammel::WriteSvgPath(path); }

/// Expects that the region of a case is right at points farther than 1e-6 of the size, and than the
/// distance kept, from the operands.
void ExpectRight(Case const& c, double tolerance = 0.0) {
    CPath out;
    double const size = SizeOf(c.a, c.b);
    double const kept = Boolean(c.op, c.a, c.ruleA, c.b, c.ruleB, tolerance, out);
    EXPECT_LE(kept, std::max(tolerance, 1e-6 * size)) << c.name;
    std::vector<OutlineJudge> const operands = {OutlineJudge(c.a), OutlineJudge(c.b)};
    int const wrong = trammel_test::WrongPoints(
        operands, OutlineJudge(out), std::max(kept, 1e-6 * size), size, [&](Pt const& p) {
            return Wants(c.op, operands[0].Holds(p, c.ruleA), operands[1].Holds(p, c.ruleB));
        });
    EXPECT_EQ(0, wrong) << c.name;
}

TEST(OutlineOperations, KeepThePointsThatWindingNumbersRulesAndOperationTell) {
    std::vector<Case> const cases = trammel_test::ReadOutlineCases();
    ASSERT_EQ(230u, cases.size());
    for (Case const& c : cases) {
        ExpectRight(c);
    }
}

/// Every so many cases are taken where each costs more.
std::size_t const kStep = 6;

TEST(OutlineOperations, KeepThePointsOfTurnedAndMovedOutlines) {
    std::vector<Case> cases = trammel_test::ReadOutlineCases();
    for (std::size_t i = 0; i < cases.size(); i += kStep) {
        Case c = cases[i];
        double const angle = 0.3 + static_cast<double>(i);
        double const move = i % 4 == 0 ? 1e7 : 0.0;
        double const scale = i % 4 == 2 ? 1e-280 : i % 4 == 3 ? 1e280 : 1.0;
        for (CPath* const path : {&c.a, &c.b}) {
            for (Pt& p : path->mPts) {
                p *= scale;
            }
            trammel_test::TurnAndMove(*path, angle, Pt(move, -move));
        }
        ExpectRight(c);
        std::swap(c.a, c.b);
        std::swap(c.ruleA, c.ruleB);
        ExpectRight(c);
    }
}

/// Expects that the elements of a result are their sources, or parts of them whose ends are moved
/// by no more than `kept`, or lines.
void ExpectSources(CPath const& out, std::vector<ElementSource> const& sources,
                   std::vector<CPath> const& operands, double kept, std::string const& name) {
    EXPECT_EQ("", trammel_test::SourceJudge(operands).Wrong(out, sources, kept)) << name;
}

/// Returns a drawing of overlapping outlines, some of which have loops, and copies of them. Those
/// with loops have points that the two rules tell apart. The last but one stands alone.
std::vector<CPath> ManyOutlines(std::mt19937& random, int count) {
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::vector<CPath> outlines;
    for (int i = 0; i < count; ++i) {
        if (i % 5 == 4) { // a copy, as it is or moved by less than counts
            outlines.push_back(outlines[static_cast<std::size_t>(unit(random) * i)]);
            for (Pt& p : outlines.back().mPts) {
                p += i % 2 == 0 ? Pt() : Pt(1e-13, -1e-13);
            }
            outlines.back().InvalBounds();
            continue;
        }
        Pt const centre(unit(random), unit(random));
        double const turn = unit(random);
        int const step = i % 2 + 1; // every second corner of five makes a star
        std::vector<Pt> corners;
        for (int k = 0; k < 5; ++k) {
            double const angle = 1.2566370614359172 * k * step + turn;
            corners.push_back(centre + Pt(std::cos(angle), std::sin(angle)) * 0.1);
        }
        CPath path;
        path.MoveTo(corners[0]);
        for (std::size_t k = 1; k < 6; ++k) {
            Pt const a = corners[k - 1];
            Pt const b = corners[k % 5];
            if (i % 3 == 0 && k % 2 == 0) {
                path.LineTo(b);
            } else {
                Pt const out(0.3 * (b.v - a.v), 0.3 * (a.h - b.h));
                path.CurveTo(a + out, b + out, b);
            }
        }
        path.ClosePath();
        outlines.push_back(path);
    }
    outlines.insert(outlines.end() - 1, Path("M2 2C3 2 3 3 2 3C1 3 1.5 2.5 2 2Z"));
    return outlines;
}

TEST(OutlineOperations, UniteManyOverlappingOutlinesByEitherRule) {
    constexpr int kCount = 130;
    std::mt19937 random(31);
    for (FillRule const rule : {kNonZero, kEvenOdd}) {
        double const tolerance = rule == kNonZero ? 0.0 : 1e-5;
        std::vector<CPath> const outlines = ManyOutlines(random, kCount);
        CPath out;
        std::vector<ElementSource> sources;
        double const kept = trammel::Union(outlines, rule, tolerance, out, &sources);
        EXPECT_LE(kept, std::max(tolerance, 1e-8));
        ExpectSources(out, sources, outlines, kept, "many");
        std::vector<OutlineJudge> operands;
        for (CPath const& outline : outlines) {
            operands.emplace_back(outline);
        }
        auto const holds = [&](Pt const& p) {
            return std::any_of(operands.begin(), operands.end(),
                               [&](OutlineJudge const& o) { return o.Holds(p, rule); });
        };
        EXPECT_EQ(0, trammel_test::WrongPoints(operands, OutlineJudge(out), std::max(kept, 1e-7),
                                               3.0, holds));
        for (trammel::Intersection const& x : trammel::SelfIntersections(out, 1e-11)) {
            EXPECT_FALSE(x.kind == trammel::IntersectionKind::kCrossing && x.crosses);
        }
        std::vector<Pt> const& alone = outlines[kCount - 1].mPts;
        EXPECT_NE(out.mPts.end(),
                  std::search(out.mPts.begin(), out.mPts.end(), alone.begin(), alone.end()));
    }
}

TEST(OutlineOperations, ObeyTheLawsOfSetsWithinTheSumOfTheDistances) {
    std::vector<Case> const cases = trammel_test::ReadOutlineCases();
    for (std::size_t i = 3; i < cases.size(); i += 4 * kStep) {
        Case const& c = cases[i];
        double const size = SizeOf(c.a, c.b);
        trammel_test::OutlineLaws laws(c.a, c.ruleA, c.b, c.ruleB, size, 1e-6 * size);
        EXPECT_EQ(0, laws.WrongOfParts()) << c.name;
        EXPECT_EQ(0, laws.WrongByDeMorgan()) << c.name;
        EXPECT_EQ(0, laws.WrongOfChain()) << c.name;
        EXPECT_EQ(0, laws.WrongOfRepeating()) << c.name;
        EXPECT_LT(laws.Worst(), 1e-5 * size) << c.name;
    }
}

TEST(OutlineOperations, GiveBackTheElementsThatNothingCrossesFromParts) {
    std::string const whole = "M20 0C28 1 29 7 23 9C18 8 19 3 20 0Z";
    CPath const a = Path("M0 0C8 1 9 7 3 9C-2 8 -1 3 0 0Z" + whole);
    CPath const b = Path("M5 2C11 3 11 9 6 10C1 9 2 4 5 2Z");
    CPath in;
    CPath out;
    CPath both;
    Boolean(kPolyIntersection, a, kNonZero, b, kNonZero, 0.0, in);
    Boolean(kPolyDifference, a, kNonZero, b, kNonZero, 0.0, out);
    Boolean(kPolyUnion, in, kNonZero, out, kNonZero, 0.0, both);
    std::vector<CPath> const contours = trammel::SplitSubpaths(both);
    EXPECT_EQ(2U, contours.size());
    EXPECT_EQ(1, std::count_if(contours.begin(), contours.end(), [&](CPath const& contour) {
                  return Text(contour) == Text(Path(whole));
              }));
    EXPECT_NEAR(trammel::SignedArea(a), trammel::SignedArea(both), 1e-7);
}

TEST(OutlineOperations, GiveTheSameContoursWhereverTheDrawingLies) {
    CPath const a = Path("M0 0C8 1 9 7 3 9C-2 8 -1 3 0 0Z");
    CPath const b = Path("M5 2C11 3 11 9 6 10C1 9 2 4 5 2Z");
    CPath here;
    Boolean(kPolyXor, a, kNonZero, b, kNonZero, 0.0, here);
    for (double const move : {1024.0, -1048576.0}) {
        CPath movedA = a;
        CPath movedB = b;
        CMatrix3x3 m;
        m.Translate(move, 2.0 * move);
        movedA.Transform(m);
        movedB.Transform(m);
        CPath there;
        Boolean(kPolyXor, movedA, kNonZero, movedB, kNonZero, 0.0, there);
        ASSERT_EQ(here.mCtls, there.mCtls);
        for (std::size_t i = 0; i < here.mPts.size(); ++i) {
            Pt const off = there.mPts[i] - here.mPts[i] - Pt(move, 2.0 * move);
            EXPECT_LE(off.Length(), 1e-15 * std::abs(move) + 1e-14);
        }
    }
}

TEST(OutlineOperations, KeepMoreThanTheToleranceAtMostWhereOutlinesNearlyCoincide) {
    CPath const a = Path("M0 0C8 1 9 7 3 9C-2 8 -1 3 0 0Z");
    CPath const b = Path("M50 2C11 3 11 9 6 10C1 9 2 4 5 2Z");
    CPath out;
    EXPECT_EQ(0.25, Boolean(kPolyUnion, a, kNonZero, b, kNonZero, 0.25, out));
    EXPECT_EQ(Boolean(kPolyUnion, a, kNonZero, b, kNonZero, 0.0, out),
              Boolean(kPolyUnion, a, kNonZero, b, kNonZero, -1.0, out));
}

TEST(OutlineOperations, SurviveAnyPathAndKeepItsRegion) {
    std::mt19937 random(271828);
    for (int i = 0; i < 1500; ++i) {
        CPath a = trammel_test::AnyPath(random);
        CPath b = trammel_test::AnyPath(random);
        double const scale[] = {1.0, 1e300, 1e-300, 1e-320, 3e307};
        for (CPath* const path : {&a, &b}) {
            for (Pt& p : path->mPts) {
                p *= scale[i % 5];
            }
            path->InvalBounds();
        }
        CPath out;
        std::vector<ElementSource> sources;
        Boolean(static_cast<TPolyOp>(i % 4), a, kEvenOdd, b, kNonZero, 0.0, out, &sources);
        EXPECT_EQ(out.mCtls.size(), sources.size());
        for (Pt const& p : out.mPts) {
            EXPECT_TRUE(IsFinite(p)) << i;
        }
    }
}

TEST(OutlineOperations, UniteHundredsOfCirclesThroughOnePoint) {
    std::vector<CPath> circles;
    CPath const circle = Path("M1 0C1 0.5523 0.5523 1 0 1C-0.5523 1 -1 0.5523 -1 0C-1 -0.5523 "
                              "-0.5523 -1 0 -1C0.5523 -1 1 -0.5523 1 0Z");
    constexpr int kCount = 200;
    for (int i = 0; i < kCount; ++i) {
        CPath turned = circle;
        double const angle = 6.283185307179586 * i / kCount;
        CMatrix3x3 m;
        m.Translate(std::cos(angle), std::sin(angle));
        turned.Transform(m);
        circles.push_back(turned);
    }
    CPath out;
    std::vector<ElementSource> sources;
    double const kept = trammel::Union(circles, kNonZero, 0.0, out, &sources);
    EXPECT_LT(kept, 1e-3);
    OutlineJudge const judge(out);
    for (double const radius : {0.01, 0.5, 1.5, 1.99, 2.01, 3.0}) {
        EXPECT_EQ(radius < 2.0, judge.Holds(Pt(radius * 0.6, radius * 0.8), kNonZero)) << radius;
    }
}

TEST(OutlineOperations, ClipLinesToTheStretchesInsideOrOutside) {
    CPath const region = Path("M0 0C8 1 9 7 3 9C-2 8 -1 3 0 0Z");
    CPath const lines = Path("M-5 4C0 9 6 -2 12 6L3 4M2 3C3 3 4 4 3 5C2 5 1 4 2 3ZM20 0L30 0");
    OutlineJudge const judge(region);
    for (bool const inside : {true, false}) {
        CPath out;
        std::vector<ElementSource> sources;
        double const kept = trammel::ClipOpen(lines, region, kNonZero, inside, 0.0, out, &sources);
        EXPECT_LT(kept, 1e-7);
        ASSERT_EQ(out.mCtls.size(), sources.size());
        // Each point of a segment is in one stretch exactly when it is on the right side.
        std::size_t number = 0;
        for (trammel::PathSegment const& s : trammel::Segments(lines)) {
            for (int i = 0; i < 200 && s.start != s.end; ++i) {
                double const t = (i + 0.5) / 200;
                if (judge.IsNear(PointAt(s, t), 1e-3)) {
                    continue;
                }
                int const holders = static_cast<int>(
                    std::count_if(sources.begin(), sources.end(), [&](ElementSource const& e) {
                        return e.operand == 0 && e.element == number && e.from <= t && t <= e.to;
                    }));
                EXPECT_EQ(judge.Holds(PointAt(s, t), kNonZero) == inside ? 1 : 0, holders)
                    << number << ' ' << t;
            }
            ++number;
        }
    }
    CPath out;
    trammel::ClipOpen(lines, region, kNonZero, true, 0.0, out);
    // The ring stays closed, and the far line is gone.
    EXPECT_NE(std::string::npos, Text(out).find("M2 3C3 3 4 4 3 5 2 5 1 4 2 3Z")) << Text(out);
    trammel::ClipOpen(lines, CPath(), kNonZero, false, 0.0, out);
    EXPECT_EQ(Text(lines), Text(out));
    trammel::ClipOpen(lines, CPath(), kNonZero, true, 0.0, out);
    EXPECT_EQ("", Text(out));
}

TEST(OutlineOperations, NameTheParametersOfLinesRunThroughAtAnyPace) {
    // The curve along the axis lies on the line, and is nearly three times as fast at its middle.
    CPath const uneven = Path("M0 0C1 0 1 0 10 0L10 5L0 5Z");
    CPath const even = Path("M-2 0L12 0L12 3L5 3L5 -3L-2 -3Z");
    for (TPolyOp const op : {kPolyUnion, kPolyIntersection, kPolyDifference, kPolyXor}) {
        for (bool const swapped : {false, true}) {
            CPath const& a = swapped ? even : uneven;
            CPath const& b = swapped ? uneven : even;
            CPath out;
            std::vector<ElementSource> sources;
            double const kept = Boolean(op, a, kNonZero, b, kNonZero, 0.0, out, &sources);
            ExpectSources(out, sources, {a, b}, kept, Text(out));
            for (std::size_t i = 0; i < sources.size(); ++i) {
                EXPECT_EQ(out.mCtls[i] == kPathMove, sources[i].operand == ElementSource::kNoSource)
                    << Text(out) << ' ' << i;
            }
        }
    }
    // This one runs back along itself.
    CPath const back = Path("M0 0C0 0 -85 0 0 0");
    CPath const region = Path("M-9 -1L5 -1L5 1L-9 1Z");
    CPath out;
    std::vector<ElementSource> sources;
    double const kept = trammel::ClipOpen(back, region, kNonZero, true, 0.0, out, &sources);
    ExpectSources(out, sources, {back}, kept, Text(out));
    EXPECT_EQ(2, std::count(out.mCtls.begin(), out.mCtls.end(), kPathCurve));
}

TEST(OutlineOperations, MakeFewElementsOfCurvesWithBothEndsInCommonThatAreTangentThere) {
    CPath const a = Path("M0 0C0 0.552 0.448 1 1 1L1 0Z");
    CPath const b = Path("M0 0C0 0.55201 0.448 1 1 1L1 0Z");
    for (TPolyOp const op : {kPolyUnion, kPolyIntersection, kPolyDifference, kPolyXor}) {
        CPath out;
        std::vector<ElementSource> sources;
        double const kept = Boolean(op, b, kNonZero, a, kNonZero, 0.0, out, &sources);
        ExpectSources(out, sources, {b, a}, kept, Text(out));
        // The thin lens between them begins where they part.
        EXPECT_LE(out.mCtls.size(), 8U) << Text(out);
        ExpectRight({"lens", op, b, a, kNonZero, kNonZero});
    }
}

TEST(OutlineOperations, NameTheParametersOfLinesWhoseSquaresUnderflow) {
    CPath const outline = Path("M0 0L0 1.766927415561677e-284 1.766927415561677e-284 "
                               "1.766927415561677e-284 0.00390625 0");
    CPath out;
    std::vector<ElementSource> sources;
    double const kept = RemoveOverlap(outline, kEvenOdd, 3.9e-5, out, &sources);
    EXPECT_GE(kept, 3.9e-5);
    ASSERT_EQ(out.mCtls.size(), sources.size());
    for (ElementSource const& source : sources) {
        EXPECT_TRUE(source.from >= 0.0 && source.from <= 1.0) << source.from;
        EXPECT_TRUE(source.to >= 0.0 && source.to <= 1.0) << source.to;
    }
}

TEST(OutlineOperations, FindWhereACurveIsCrossedBesideAnEndAtWhichItStandsStill) {
    CPath const lines = Path("M-15 -5C-5 -5 12 1 6 15C20 -7 19 -17 20 -12C-20 -20 -20 -20 -20 -20");
    for (double const tolerance : {0.4, 0.01, 1e-6, 0.0}) {
        CPath out;
        trammel::ClipOpen(lines, CPath(), kNonZero, false, tolerance, out);
        EXPECT_EQ(Text(lines), Text(out)) << tolerance;
    }
}

TEST(OutlineArrangement, DividesThePlaneIntoFacesWithWindingNumbers) {
    std::vector<CPath> const operands = {Path("M0 0C8 1 9 7 3 9C-2 8 -1 3 0 0Z"),
                                         Path("M5 2C11 3 11 9 6 10C1 9 2 4 5 2Z"),
                                         Path("M1 1L8 1L8 8L1 8ZM3 3L5 3L5 5L3 5Z")};
    trammel::OutlineArrangement const arrangement(operands, 0.0);
    EXPECT_LT(arrangement.Distance(), 1e-7);
    std::vector<OutlineJudge> judges;
    for (trammel::OutlineFace const& face : arrangement.Faces()) {
        EXPECT_EQ(face.outline.mCtls.size(), face.sources.size());
        judges.emplace_back(face.outline);
    }
    std::vector<OutlineJudge> const outlines(operands.begin(), operands.end());
    std::mt19937 random(5);
    std::uniform_real_distribution<double> anywhere(-3.0, 12.0);
    std::vector<std::size_t> inBoth; // faces in the first two operands
    for (int i = 0; i < 2000; ++i) {
        Pt const p(anywhere(random), anywhere(random));
        std::vector<int> windings;
        for (OutlineJudge const& outline : outlines) {
            windings.push_back(outline.Winding(p));
        }
        int holders = 0;
        for (std::size_t k = 0; k < judges.size(); ++k) {
            if (judges[k].Holds(p, kNonZero)) {
                ++holders;
                std::vector<int> told(3, 0);
                for (trammel::OperandWinding const& w : arrangement.Faces()[k].windings) {
                    told[w.operand] = w.winding;
                }
                EXPECT_EQ(windings, told);
                if (windings[0] != 0 && windings[1] != 0) {
                    inBoth.push_back(k);
                }
            }
        }
        bool const wound = windings != std::vector<int>(3, 0);
        EXPECT_TRUE(wound ? holders == 1 : holders <= 1);
    }
    CPath merged;
    CPath both;
    inBoth.push_back(12345);
    arrangement.Merge(inBoth, merged);
    Boolean(kPolyIntersection, operands[0], kNonZero, operands[1], kNonZero, 0.0, both);
    OutlineJudge const first(merged);
    OutlineJudge const second(both);
    for (int i = 0; i < 500; ++i) {
        Pt const p(anywhere(random), anywhere(random));
        EXPECT_EQ(second.Holds(p, kNonZero), first.Holds(p, kNonZero));
    }
    EXPECT_TRUE(trammel::OutlineArrangement({}, 0.0).Faces().empty());
}

TEST(OutlineOperations, CutCirclesWhereTheyCross) {
    CPath const a = Path("M2 0C2 1.1 1.1 2 0 2C-1.1 2 -2 1.1 -2 0C-2 -1.1 -1.1 -2 0 -2C1.1 -2 2 "
                         "-1.1 2 0Z");
    CPath const b = Path("M4 0C4 1.1 3.1 2 2 2C0.9 2 0 1.1 0 0C0 -1.1 0.9 -2 2 -2C3.1 -2 4 -1.1 4 "
                         "0Z");
    CPath out;
    std::vector<ElementSource> sources;
    double const kept = Boolean(kPolyUnion, a, kNonZero, b, kNonZero, 0.0, out, &sources);
    EXPECT_GT(kept, 0.0);
    EXPECT_LT(kept, 1e-8);
    // Four of the eight quarters stay whole, and the others end where the circles cross.
    EXPECT_EQ(10u, out.mCtls.size());
    EXPECT_EQ(8, std::count(out.mCtls.begin(), out.mCtls.end(), kPathCurve));
    ASSERT_EQ(out.mCtls.size(), sources.size());
    EXPECT_EQ(ElementSource::kNoSource, sources.front().operand);
    EXPECT_EQ(4, std::count_if(sources.begin(), sources.end(), [](ElementSource const& s) {
                  return s.from == 0.0 && s.to == 1.0;
              }));
}

TEST(OutlineOperations, KeepElementsBitForBitWhereOutlinesTouchAtATangency) {
    CPath const round = Path("M2 0C2 1.1 1.1 2 0 2C-1.1 2 -2 1.1 -2 0C-2 -1.1 -1.1 -2 0 -2C1.1 -2 "
                             "2 -1.1 2 0Z");
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> share(0.02, 0.98);
    for (int i = 0; i < 100; ++i) {
        CPath a = round;
        trammel_test::TurnAndMove(a, 0.06 * i, Pt());
        double const u = share(random);
        trammel::PathSegment const curve = *trammel::Segments(a).begin();
        Pt const place = PointAt(curve, u);
        Pt const first = PointAt(curve, u + 1e-3) - PointAt(curve, u - 1e-3);
        Pt const second = PointAt(curve, u + 2e-3) - PointAt(curve, u - 2e-3);
        Pt const along = first * 8.0 - second; // of a cubic curve that is the tangent
        Pt const tangent = along * (1.0 / along.Length());
        CPath outer = a; // on the other side of the tangent
        CPath inner = a;
        double const size = i % 2 == 0 ? 1.0 : share(random);
        for (std::size_t k = 0; k < a.mPts.size(); ++k) {
            Pt const way = a.mPts[k] - place;
            double const beyond = way.h * tangent.h + way.v * tangent.v;
            outer.mPts[k] = place + (tangent * (2.0 * beyond) - way) * size;
            inner.mPts[k] = place + way * (0.9 * size);
        }
        std::vector<Pt> both = a.mPts;
        both.insert(both.end(), outer.mPts.begin(), outer.mPts.end());
        CPath out;
        Boolean(kPolyUnion, a, kNonZero, outer, kNonZero, 0.0, out);
        EXPECT_EQ(both, out.mPts) << i;
        Boolean(kPolyXor, a, kNonZero, outer, kNonZero, 0.0, out);
        EXPECT_EQ(both, out.mPts) << i;
        Boolean(kPolyDifference, a, kNonZero, outer, kNonZero, 0.0, out);
        EXPECT_EQ(a.mPts, out.mPts) << i;
        Boolean(kPolyUnion, a, kNonZero, inner, kNonZero, 0.0, out);
        EXPECT_EQ(a.mPts, out.mPts) << i;
        Boolean(kPolyIntersection, a, kNonZero, inner, kNonZero, 0.0, out);
        EXPECT_EQ(inner.mPts, out.mPts) << i;
    }
}

TEST(OutlineOperations, LeaveAnOutlineWithoutOverlapAsItIs) {
    std::string const text = "M10 0L20 0C20 5 25 10 30 10L30 30C10 30 0 20 0 10C0 5 5 0 10 0ZM12 "
                             "10C12 12 14 14 16 14C18 14 20 12 20 10Z";
    CPath out;
    RemoveOverlap(Path(text), kEvenOdd, 0.0, out);
    EXPECT_EQ(Text(Path(text)), Text(out));
}

TEST(OutlineOperations, CancelAnOutlineWithItselfReversed) {
    CPath const a = Path("M10 0L20 0C20 5 25 10 30 10L30 30C10 30 0 20 0 10C0 5 5 0 10 0Z");
    CPath const b = Path("M10 0C5 0 0 5 0 10C0 20 10 30 30 30L30 10C25 10 20 5 20 0Z");
    CPath out;
    Boolean(kPolyXor, a, kNonZero, b, kNonZero, 0.0, out);
    EXPECT_EQ("", Text(out));
    Boolean(kPolyUnion, a, kNonZero, b, kNonZero, 0.0, out);
    EXPECT_EQ(Text(a), Text(out));
}

TEST(OutlineOperations, GiveNothingForNothingAndForCoordinatesThatAreNotFinite) {
    double const bad[] = {std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity()};
    CPath out = Path("M0 0L1 0L0 1Z");
    EXPECT_EQ(0.0, Boolean(kPolyUnion, CPath(), kNonZero, CPath(), kNonZero, 0.0, out));
    EXPECT_TRUE(out.mCtls.empty());
    CPath const good = Path("M0 0C5 0 5 5 0 5Z");
    for (double const x : bad) {
        CPath absent = Path("M1 1L9 1L9 9Z");
        absent.mPts[1].h = x;
        Boolean(kPolyUnion, good, kNonZero, absent, kNonZero, 0.0, out);
        EXPECT_EQ(Text(good), Text(out));
    }
    Boolean(static_cast<TPolyOp>(77), good, kNonZero, good, kNonZero, 0.0, out);
    EXPECT_TRUE(out.mCtls.empty());
}

// Found by the fuzz target booleans.
TEST(OutlineOperations, KeepASmallDistanceBesideTheSmallestNumber) {
    double const least = std::numeric_limits<double>::denorm_min();
    for (double const low : {0.0, -least}) {
        CPath line;
        line.MoveTo(Pt(low, low)).LineTo(Pt(low + least, low + least)).ClosePath();
        CPath out;
        EXPECT_EQ(4 * least, RemoveOverlap(line, kNonZero, 0.0, out)) << low;
        EXPECT_EQ(4 * least, Boolean(kPolyUnion, line, kNonZero, line, kNonZero, 0.0, out)) << low;
    }
}

TEST(OutlineOperations, KeepASmallDistanceWhereAnExtentIsBelowTheRoundingOfCoordinates) {
    for (double const extent : {std::numeric_limits<double>::denorm_min(), 1e-320, 1e-300, 1e-16}) {
        CPath line;
        line.MoveTo(Pt(100, 0)).LineTo(Pt(100, extent)).ClosePath();
        CPath curve;
        curve.MoveTo(Pt(100, 0)).CurveTo(Pt(100, 0), Pt(100, 0), Pt(100, extent)).ClosePath();
        for (CPath const& path : {line, curve}) {
            CPath out;
            EXPECT_LE(RemoveOverlap(path, kNonZero, 0.0, out), 1e-11) << extent;
            EXPECT_LE(Boolean(kPolyUnion, path, kNonZero, path, kNonZero, 0.0, out), 1e-11);
        }
    }
}

TEST(OutlineOperations, KeepWhatLiesBetweenACurveAndALineThatCrossesItNearAHalving) {
    // The line ends in the curve's end and crosses it beside a parameter of n/8. There the curve
    // is cut in halves, so both may become one vertex. The lens between them has no chord then.
    std::mt19937_64 random(5);
    auto const from = [&](double low, double high) {
        return low + (high - low) * static_cast<double>(random() >> 11U) * 0x1p-53;
    };
    for (double const tolerance : {0.0, 1e-9, 1e-6, 1e-4, 1e-3}) {
        for (int i = 0; i < 100; ++i) {
            Pt const p[4] = {
                {0, 0}, {from(0, 1), from(-1, 1)}, {from(0, 1), from(-1, 1)}, {1, from(-0.2, 0.2)}};
            double const off = from(-2, 2) * std::max(tolerance / 4, 2.4e-10);
            double const t = static_cast<double>(1 + i % 7) / 8 + (i % 2 == 0 ? off : 0);
            double const u = 1 - t;
            Pt const crossing = p[0] * (u * u * u) + p[1] * (3 * u * u * t) +
                                p[2] * (3 * u * t * t) + p[3] * (t * t * t);
            Case c;
            c.name = "round " + std::to_string(i) + " at " + std::to_string(tolerance);
            c.a.MoveTo(p[0]).CurveTo(p[1], p[2], p[3]);
            c.a.LineTo(crossing + (crossing - p[3]) * from(0.2, 2));
            c.a.LineTo(Pt(from(-1, 2), from(-1, 2))).ClosePath();
            ExpectRight(c, tolerance);
        }
    }
}

TEST(OutlineOperations, TakeThePathOfAnOperandForTheResult) {
    CPath a = Path("M0 0C5 0 5 5 0 5Z");
    CPath const b = Path("M0 0L2 0L2 9L0 9Z");
    CPath out;
    Boolean(kPolyDifference, a, kNonZero, b, kNonZero, 0.0, out);
    Boolean(kPolyDifference, a, kNonZero, b, kNonZero, 0.0, a);
    EXPECT_EQ(Text(out), Text(a));
}

} // namespace
