// SPDX-License-Identifier: MIT

// A test for each sentence that OutlineOperations.h promises of every result. docs/outlines.md has
// the table of sentences and tests.

#include "CrossingJudge.h"
#include "Intersections.h"
#include "OutlineCases.h"
#include "OutlineJudge.h"
#include "OutlineOperations.h"
#include "PathStructure.h"
#include "SourceJudge.h"
#include "SvgPath.h"

#ifdef TRAMMEL_TEST_CGAL
#include "clip/ExactJudge.h"
#endif

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using trammel::Boolean;
using trammel::ElementSource;
using trammel::FillRule;
using trammel_test::OutlineCase;
using trammel_test::OutlineJudge;
using trammel_test::Wants;

typedef TPoint<double> Pt;
typedef std::vector<ElementSource> Sources;

FillRule const kNonZero = FillRule::kNonZero;
FillRule const kEvenOdd = FillRule::kEvenOdd;

/// A case, what it gave, and how far from the operands it may be wrong.
struct Result {
    OutlineCase c;
    double size;
    double tolerance;
    CPath out;
    Sources sources;
    double kept;
};

/// Returns what every so many cases give, from the first one that is asked for on. Some are turned,
/// and each is asked with another tolerance.
std::vector<Result> Results(std::size_t first, std::size_t step) {
    constexpr double kTolerances[] = {0.0, 1e-8, 0.0, 1e-5, 0.0, 1e-3, 1e-2};
    std::vector<Result> results;
    std::vector<OutlineCase> const cases = trammel_test::ReadOutlineCases();
    EXPECT_EQ(230U, cases.size());
    for (std::size_t i = first; i < cases.size(); i += step) {
        Result r{cases[i], 0.0, 0.0, {}, {}, 0.0};
        if (i % 3 == 2) {
            trammel_test::TurnAndMove(r.c.a, static_cast<double>(i), Pt());
            trammel_test::TurnAndMove(r.c.b, static_cast<double>(i), Pt());
        }
        r.size = trammel_test::SizeOf(r.c.a, r.c.b);
        r.tolerance = kTolerances[i / step % 7] * r.size;
        r.kept =
            Boolean(r.c.op, r.c.a, r.c.ruleA, r.c.b, r.c.ruleB, r.tolerance, r.out, &r.sources);
        results.push_back(r);
    }
    return results;
}

TEST(OutlineGuarantee, ReturnsTheToleranceOrMore) {
    for (Result const& r : Results(0, 3)) {
        EXPECT_GE(r.kept, r.tolerance) << r.c.name;
        EXPECT_LE(r.kept, std::max(r.tolerance, 1e-7 * r.size)) << r.c.name;
        CPath out;
        for (double const none : {-1.0, std::numeric_limits<double>::quiet_NaN()}) {
            if (r.tolerance == 0.0) {
                EXPECT_EQ(r.kept, Boolean(r.c.op, r.c.a, r.c.ruleA, r.c.b, r.c.ruleB, none, out));
                EXPECT_EQ(r.out.mPts, out.mPts) << r.c.name;
            }
        }
    }
}

TEST(OutlineGuarantee, HoldsEachPointFartherThanTheDistanceExactlyIfWantedByEitherRule) {
    for (Result const& r : Results(1, 4)) {
        std::vector<OutlineJudge> const operands = {OutlineJudge(r.c.a), OutlineJudge(r.c.b)};
        auto const wanted = [&](Pt const& p) {
            return Wants(r.c.op, operands[0].Holds(p, r.c.ruleA), operands[1].Holds(p, r.c.ruleB));
        };
        EXPECT_EQ(0,
                  trammel_test::WrongPoints(operands, OutlineJudge(r.out), r.kept, r.size, wanted))
            << r.c.name << " at " << r.tolerance;
    }
}

TEST(OutlineGuarantee, ClosesContoursBitForBit) {
    for (Result const& r : Results(0, 2)) {
        for (trammel::Subpath const& subpath : trammel::Subpaths(r.out)) {
            EXPECT_TRUE(subpath.BeginsWithMove() && subpath.Closed()) << r.c.name;
            Pt last = subpath.Start();
            for (trammel::PathSegment const& s : subpath) {
                EXPECT_TRUE(s.start == last) << r.c.name;
                last = s.end;
            }
            EXPECT_TRUE(last == subpath.Start()) << r.c.name;
        }
    }
}

TEST(OutlineGuarantee, LetsNoContoursCrossByTheDistanceOrMore) {
    for (Result const& r : Results(0, 1)) {
        for (double const accuracy : {1e-11, 1e-13}) {
            trammel_test::Crossings const found =
                trammel_test::CrossingsOf(r.out, accuracy * r.size, r.kept);
            EXPECT_EQ(0, found.deep) << r.c.name;
            // Only near contacts are there such crossings at all.
            trammel_test::SourceJudge const judge({r.c.a, r.c.b});
            for (Pt const& p : found.places) {
                EXPECT_TRUE(judge.IsInContact(p, r.kept)) << r.c.name;
            }
        }
    }
}

TEST(OutlineGuarantee, HasNoStretchTwice) {
    for (Result const& r : Results(0, 1)) {
        typedef std::array<double, 8> Points;
        std::set<Points> seen;
        for (trammel::PathSegment const& s : trammel::Segments(r.out)) {
            if (s.start == s.end && !s.IsCurve()) {
                continue; // a close that draws nothing
            }
            Points const ahead = {s.start.h,    s.start.v,    s.control1.h, s.control1.v,
                                  s.control2.h, s.control2.v, s.end.h,      s.end.v};
            Points const back = {s.end.h,      s.end.v,      s.control2.h, s.control2.v,
                                 s.control1.h, s.control1.v, s.start.h,    s.start.v};
            EXPECT_TRUE(
                seen.insert(
                        s.IsCurve()
                            ? std::min(ahead, back)
                            : std::min(Points{ahead[0], ahead[1], ahead[6], ahead[7], 0, 0, 0, 1},
                                       Points{back[0], back[1], back[6], back[7], 0, 0, 0, 1}))
                    .second)
                << r.c.name;
        }
        // Elsewhere contours only touch, except where the operands run that near to each other.
        for (trammel::Intersection const& x : trammel::SelfIntersections(r.out, 1e-11 * r.size)) {
            if (x.kind == trammel::IntersectionKind::kOverlap &&
                (x.endPoint - x.point).Length() > 2.0 * r.kept) {
                trammel_test::SourceJudge const judge({r.c.a, r.c.b});
                EXPECT_TRUE(judge.IsInContact((x.point + x.endPoint) * 0.5, r.kept)) << r.c.name;
            }
        }
    }
}

TEST(OutlineGuarantee, TakesElementsBitForBitOrWithEndsMovedByTheDistanceAtMost) {
    for (Result const& r : Results(0, 1)) {
        trammel_test::SourceJudge const judge({r.c.a, r.c.b});
        EXPECT_EQ("", judge.Wrong(r.out, r.sources, r.kept)) << r.c.name;
    }
}

TEST(OutlineGuarantee, PutsLinesInContactsOnly) {
    int lines = 0;
    for (Result const& r : Results(0, 1)) {
        trammel_test::SourceJudge const judge({r.c.a, r.c.b});
        for (trammel::PathSegment const& s : trammel::Segments(r.out)) {
            if (r.sources[s.element].operand == ElementSource::kNoSource && s.start != s.end) {
                ++lines;
                for (double const t : {0.0, 0.5, 1.0}) {
                    EXPECT_TRUE(judge.IsInContact(trammel_test::PointAt(s, t), r.kept))
                        << r.c.name << ' ' << s.element;
                }
            }
        }
    }
    EXPECT_GT(lines, 50);
}

/// A closed smooth contour around a point, of curves that bulge by chance.
CPath Blob(std::mt19937_64& random, Pt const& centre, double radius, int count, bool reversed) {
    auto const from = [&](double low, double high) {
        return low + (high - low) * static_cast<double>(random() >> 11U) * 0x1p-53;
    };
    std::vector<Pt> corners;
    for (int k = 0; k < count; ++k) {
        double const angle = 6.283185307179586 * (k + from(-0.3, 0.3)) / count;
        corners.push_back(centre + Pt(std::cos(angle), std::sin(angle)) * (radius * from(0.6, 1)));
    }
    auto const n = corners.size();
    CPath path;
    path.MoveTo(corners[0]);
    for (std::size_t k = 0; k < n; ++k) {
        Pt const before = corners[(k + n - 1) % n];
        Pt const a = corners[k];
        Pt const b = corners[(k + 1) % n];
        Pt const after = corners[(k + 2) % n];
        path.CurveTo(a + (b - before) * 0.25, b + (a - after) * 0.25, b);
    }
    path.ClosePath();
    return reversed ? trammel::Reversed(path) : path;
}

/// Twice the area within a contour by Green's theorem, positive if it runs from h toward v.
long double TwiceArea(trammel::Subpath const& contour) {
    long double sum = 0.0L;
    for (trammel::PathSegment const& s : contour.ClosedSegments()) {
        long double const h[4] = {s.start.h, s.control1.h, s.control2.h, s.end.h};
        long double const v[4] = {s.start.v, s.control1.v, s.control2.v, s.end.v};
        auto const cross = [&](int i, int k) { return h[i] * v[k] - h[k] * v[i]; };
        sum += s.IsCurve() ? (6 * cross(0, 1) + 3 * cross(0, 2) + cross(0, 3) + 3 * cross(1, 2) +
                              3 * cross(1, 3) + 6 * cross(2, 3)) /
                                 10
                           : cross(0, 3);
    }
    return sum;
}

TEST(OutlineGuarantee, KeepsStartsOrderAndDirections) {
    std::mt19937_64 random(7);
    for (int round = 0; round < 40; ++round) {
        CPath operands[2];
        std::size_t counts[2] = {0, 0}; // of blobs
        std::vector<CPath> alone;
        std::map<std::pair<std::size_t, std::size_t>, bool> runsForward; // by operand and element
        for (int cell = 0; cell < 12; ++cell) {
            std::uint64_t const bits = random() >> 32U;
            CPath blobs[2];
            for (std::size_t i = 0; i < 2; ++i) {
                if ((bits >> i & 1U) != 0) {
                    Pt const centre(10.0 * (cell % 4) + 2.0 * static_cast<double>(i),
                                    10.0 * cell / 4);
                    bool const forward = (bits >> (2 + i) & 1U) == 0;
                    blobs[i] = Blob(random, centre, 3.0, 6, !forward);
                    for (std::size_t k = 0; k < 7; ++k) { // with the close
                        runsForward[{i, 7 * counts[i] + k}] = forward;
                    }
                    ++counts[i];
                    trammel::AppendSubpaths(operands[i], blobs[i]);
                }
            }
            if (blobs[0].mPts.empty() != blobs[1].mPts.empty()) {
                alone.push_back(blobs[0].mPts.empty() ? blobs[1] : blobs[0]);
            }
        }
        CPath out;
        Sources sources;
        Boolean(kPolyUnion, operands[0], kNonZero, operands[1], kNonZero, 0.0, out, &sources);
        for (CPath const& contour : alone) {
            EXPECT_NE(out.mPts.end(), std::search(out.mPts.begin(), out.mPts.end(),
                                                  contour.mPts.begin(), contour.mPts.end()));
        }
        std::pair<std::size_t, std::size_t> last(0, 0);
        for (trammel::Subpath const& contour : trammel::Subpaths(out)) {
            std::vector<std::pair<std::size_t, std::size_t>> from;
            std::set<bool> directions;
            for (trammel::PathSegment const& s : contour) {
                ElementSource const& source = sources[s.element];
                if (source.operand != ElementSource::kNoSource) {
                    from.emplace_back(source.operand, source.element);
                    directions.insert(runsForward.at(from.back()));
                }
            }
            ASSERT_FALSE(from.empty());
            // The contour begins where its first element does, and may run against that.
            auto const first = *std::min_element(from.begin(), from.end());
            EXPECT_TRUE(first == from.front() || (directions.size() == 2 && first == from.back()));
            EXPECT_LE(last, first);
            last = first;
            if (directions.size() == 1) {
                EXPECT_EQ(*directions.begin(), TwiceArea(contour) > 0.0L);
            }
        }
    }
}

TEST(OutlineGuarantee, IsTheSameWhereverTheDrawingLiesAndHoweverItIsTurned) {
    std::mt19937_64 random(11);
    for (int round = 0; round < 60; ++round) {
        CPath const a = Blob(random, Pt(0, 0), 3.0, 4 + round % 7, false);
        CPath const b = Blob(random, Pt(1, 0.5), 3.0, 5, round % 2 == 0);
        auto const op = static_cast<TPolyOp>(round % 4);
        CPath here;
        Sources from;
        Boolean(op, a, kEvenOdd, b, kNonZero, 0.0, here, &from);
        for (double const angle : {0.0, 0.4, 1.5707963267948966, 3.0}) {
            double const away = round % 3 == 0 ? 0.0 : round % 3 == 1 ? 1e4 : -3e6;
            CPath turned[3] = {a, b, here};
            for (CPath& path : turned) {
                trammel_test::TurnAndMove(path, angle, Pt(away, 0.7 * away));
            }
            CPath there;
            Sources sources;
            Boolean(op, turned[0], kEvenOdd, turned[1], kNonZero, 0.0, there, &sources);
            ASSERT_EQ(here.mCtls, there.mCtls) << round << ' ' << angle;
            for (std::size_t i = 0; i < sources.size(); ++i) {
                EXPECT_EQ(from[i].operand, sources[i].operand);
                EXPECT_EQ(from[i].element, sources[i].element);
            }
            for (std::size_t i = 0; i < here.mPts.size(); ++i) {
                Pt const off = turned[2].mPts[i] - there.mPts[i];
                EXPECT_LE(off.Length(), 1e-13 + 1e-14 * std::abs(away)) << round << ' ' << angle;
            }
        }
    }
}

TEST(OutlineGuarantee, GivesTheSameBitsOnEveryMachine) {
    CPath const a = trammel::ReadSvgPath("M0 0C8 1 9 7 3 9C-2 8 -1 3 0 0Z").path;
    CPath const b = trammel::ReadSvgPath("M5 2C11 3 11 9 6 10C1 9 2 4 5 2Z").path;
    CPath out;
    Boolean(kPolyIntersection, a, kNonZero, b, kNonZero, 0.0, out);
    std::vector<Pt> const points = {{5.3874649713539924, 2.0731887539876097},
                                    {7.846210269566396, 4.2116736923570048},
                                    {7.2198772829698186, 7.3365278524221127},
                                    {3.5084660115642561, 8.8144852279284027},
                                    {1.54442646556805, 6.922277754052705},
                                    {2.6679296794537009, 3.5547135470308659},
                                    {5, 2},
                                    {5.1320579884923099, 2.0220096647487185},
                                    {5.2612094249305139, 2.046441456209191},
                                    {5.3874649713539924, 2.0731887539876097}};
    EXPECT_EQ(points, out.mPts);
}

#ifdef TRAMMEL_TEST_CGAL

/// The area of a region by Green's theorem. A contour is a hole where the region is outside of it.
long double AreaOf(CPath const& region) {
    OutlineJudge const judge(region);
    long double area = 0.0L;
    for (trammel::Subpath const& contour : trammel::Subpaths(region)) {
        long double const twice = TwiceArea(contour);
        trammel::PathSegment const s = *contour.begin();
        Pt const p = trammel_test::PointAt(s, 0.5);
        Pt const way = trammel_test::PointAt(s, 0.501) - p;
        Pt const left = p + Pt(-way.v, way.h) * (1e-6 / way.Length());
        bool const isHole = judge.Holds(left, kNonZero) != (twice > 0.0L);
        area += (isHole ? -0.5L : 0.5L) * std::abs(twice);
    }
    return area;
}

/// Returns chords of an outline, and adds the area between them and their curves to `between`.
plain::Polygon Chords(CPath const& path, int count, long double& between) {
    plain::Polygon polygon;
    for (trammel::Subpath const& contour : trammel::Subpaths(path)) {
        polygon.emplace_back();
        for (trammel::PathSegment const& s : contour.ClosedSegments()) {
            int const chords = s.IsCurve() ? count : 1;
            for (int i = 0; i < chords; ++i) {
                Pt const p = trammel_test::PointAt(s, static_cast<double>(i) / chords);
                polygon.back().push_back({p.h, p.v});
            }
            // A chord and its curve are no farther apart than an eighth of the second derivative.
            if (s.IsCurve()) {
                Pt const first = s.start - s.control1 * 2.0 + s.control2;
                Pt const second = s.control1 - s.control2 * 2.0 + s.end;
                long double const bent = 6.0L * std::max(first.Length(), second.Length());
                long double const length = (s.control1 - s.start).Length() +
                                           (s.control2 - s.control1).Length() +
                                           (s.end - s.control2).Length();
                between += bent / (8.0L * count * count) * length;
            }
        }
    }
    return polygon;
}

TEST(OutlineGuarantee, HasTheContoursAndAreasOfTheTrueResultWhereOutlinesCrossAtAnAngle) {
    TPolyOp const kOps[] = {kPolyDifference, kPolyIntersection, kPolyXor, kPolyUnion};
    std::mt19937_64 random(13);
    for (int round = 0; round < 8; ++round) {
        CPath const a = Blob(random, Pt(0, 0), 3.0, 5 + round, false);
        CPath const b = Blob(random, Pt(1, 0.5), 3.0, 9, true);
        plain::ClipCase c;
        long double between = 0.0L;
        c.a = Chords(a, 32, between);
        c.b = Chords(b, 32, between);
        plain::CaseFigures const truth = clip_test::FiguresOf(c);
        plain::Measure const measure(c);
        long double const unit = std::ldexp(1.0L, measure.exponentX + measure.exponentY);
        std::array<plain::Region, 4> regions;
        long double betweenAll = between;
        for (std::size_t i = 0; i < 4; ++i) {
            CPath out;
            Boolean(kOps[i], a, kEvenOdd, b, kEvenOdd, 0.0, out);
            EXPECT_EQ(truth.results[i].contours, trammel::SplitSubpaths(out).size());
            EXPECT_LE(std::abs(truth.results[i].area * unit - AreaOf(out)), between) << round;
            regions[i].contours = Chords(out, 32, betweenAll);
        }
        for (double const error : clip_test::RegionErrors(c, regions)) {
            EXPECT_LE(error * unit, betweenAll) << round;
        }
        EXPECT_LT(betweenAll, 0.1);
    }
}

#endif

} // namespace
