// SPDX-License-Identifier: MIT

#include "Simplify.h"

#include "HausdorffJudge.h"
#include "PathBuilding.h"
#include "PathStructure.h"
#include "PathText.h"
#include "Shapes.h"
#include "ShortMemory.h"
#include "SvgPath.h"
#include "Winding.h"
#ifdef TRAMMEL_TEST_MAPS
#include "CountryOutlines.h"
#endif

#include <ft2build.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <limits>
#include <new>
#include <random>
#include <string>
#include <vector>

#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace {

using hausdorff::ElementsOf;
using hausdorff::Keeps;
using trammel::NewCrossings;
using trammel::Simplify;
using trammel::SimplifyOutlines;
using trammel_test::Path;

typedef TPoint<double> Pt;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

CPath Simplified(CPath const& path, double tolerance) {
    CPath out;
    Simplify(path, tolerance, out);
    return out;
}

/// The path with each curve cut into `parts` of unequal length.
CPath CutIntoParts(CPath const& path, int parts) {
    CPath out;
    std::size_t next = 0;
    Pt current;
    for (char const code : path.mCtls) {
        out.AddCtl(code);
        if (code != kPathCurve) {
            if (code != kPathClose) {
                out.AddPt(current = path.mPts[next++]);
            }
            continue;
        }
        CBezier rest(current, path.mPts[next], path.mPts[next + 1], path.mPts[next + 2]);
        for (int i = parts; i > 1; --i) {
            // the first of i parts of the rest
            double const t = (i % 2 == 0 ? 0.8 : 1.2) / i;
            Pt const a = rest.P0 + (rest.P1 - rest.P0) * t;
            Pt const m = rest.P1 + (rest.P2 - rest.P1) * t;
            Pt const c = rest.P2 + (rest.P3 - rest.P2) * t;
            Pt const ab = a + (m - a) * t;
            Pt const bc = m + (c - m) * t;
            Pt const end = ab + (bc - ab) * t;
            out.AddPt(a).AddPt(ab).AddPt(end).AddCtl(kPathCurve);
            rest = CBezier(end, bc, c, rest.P3);
        }
        current = path.mPts[next + 2];
        out.AddPt(rest.P1).AddPt(rest.P2).AddPt(current);
        next += 3;
    }
    return out;
}

long Count(CPath const& path, CPathCode code) {
    return std::count(path.mCtls.begin(), path.mCtls.end(), static_cast<char>(code));
}

TEST(Simplify, PutsACurveThatWasCutTogetherAgain) {
    CPath const curve = Path("M0 0 C30 -50 90 -20 100 40");
    for (int parts : {2, 3, 10, 100}) {
        CPath const cut = CutIntoParts(curve, parts);
        ASSERT_EQ(Count(cut, kPathCurve), parts);
        CPath const simple = Simplified(cut, 1e-7);
        ASSERT_EQ(simple.mCtls, curve.mCtls) << parts;
        EXPECT_EQ(simple.mPts[0], curve.mPts[0]);
        EXPECT_EQ(simple.mPts[3], curve.mPts[3]);
        for (std::size_t i : {1U, 2U}) {
            EXPECT_NEAR(simple.mPts[i].h, curve.mPts[i].h, 1e-6);
            EXPECT_NEAR(simple.mPts[i].v, curve.mPts[i].v, 1e-6);
        }
    }
}

TEST(Simplify, KeepsTheDistanceThatItReturnsAndItIsWithinTheTolerance) {
    std::mt19937_64 random(20240612);
    std::uniform_real_distribution<double> unit(-1, 1);
    long fewer = 0;
    for (int i = 0; i < 100; ++i) {
        double const size = std::ldexp(1.0, static_cast<int>(random() % 40) - 20);
        CPath path;
        Pt at(unit(random), unit(random));
        Pt handle(unit(random), unit(random));
        path.MoveTo(at * size);
        for (int k = 0; k < 30; ++k) {
            Pt const next = at + handle + Pt(unit(random), unit(random)) * 0.3;
            Pt const turned = handle + Pt(unit(random), unit(random)) * 0.5;
            path.CurveTo((at + handle * 0.33) * size, (next - turned * 0.33) * size, next * size);
            at = next;
            handle = turned;
            if (k % 7 == 6) { // a corner, and a line
                handle = Pt(unit(random), unit(random));
                path.LineTo((at += handle) * size);
            }
        }
        if (i % 2 == 0) {
            path.ClosePath();
        }
        double const tolerance = size * std::pow(10.0, -0.5 - 0.03 * i);
        CPath simple;
        double const kept = Simplify(path, tolerance, simple);
        EXPECT_LE(kept, tolerance);
        EXPECT_TRUE(Keeps(ElementsOf(path), ElementsOf(simple), kept)) << i;
        fewer += simple.mCtls.size() < path.mCtls.size() ? 1 : 0;
    }
    EXPECT_GT(fewer, 30);
}

TEST(Simplify, FindsAnExcursionBetweenTheEndsOfARun) {
    // A bump of 0.15 on one of 8 parts of an arc, too flat for corners at its ends
    CPath cut = CutIntoParts(Path("M0 0 C0 50 50 100 100 100"), 8);
    for (std::size_t k = 3 * 3 + 1; k < 3 * 3 + 3; ++k) {
        cut.mPts[k] += Pt(-0.14, 0.14);
    }
    CPath simple;
    double const kept = Simplify(cut, 0.1, simple);
    EXPECT_LE(kept, 0.1);
    EXPECT_TRUE(Keeps(ElementsOf(cut), ElementsOf(simple), kept));
    EXPECT_GT(Count(simple, kPathCurve), 1);
    EXPECT_EQ(Count(Simplified(cut, 0.4), kPathCurve), 1);
}

TEST(Simplify, KeepsElementsThatNeedNoChangeBitForBit) {
    CPath const path = Path("M0.1 0.2 L10 0.3 C12 5 20 5 21.3 9 L3 30 C1 2 3 4 5.5 6.6 Z M7 8 "
                            "C8 9 10 11 7 8 L3 3");
    CPath simple;
    EXPECT_EQ(Simplify(path, 0.01, simple), 0.0);
    EXPECT_EQ(simple.mCtls, path.mCtls);
    EXPECT_EQ(simple.mPts, path.mPts);
}

TEST(Simplify, KeepsCornersAndLines) {
    CPath const rounded = trammel::RoundedRectPath(TRect<double>(0, 0, 100, 60), 10, 10, 1e-3);
    CPath const cut = CutIntoParts(rounded, 8);
    CPath const simple = Simplified(cut, 0.01);
    EXPECT_EQ(Count(simple, kPathCurve), 4);
    EXPECT_EQ(Count(simple, kPathLine), Count(cut, kPathLine));
    // A corner of 0.1 radians between two curves stays; one of 0.05 does not.
    for (double const angle : {0.1, 0.05}) {
        CPath path;
        Pt const turned(std::cos(angle), std::sin(angle));
        path.MoveTo(Pt(0, 0)).CurveTo(Pt(1, 0), Pt(2, 0), Pt(3, 0));
        path.CurveTo(Pt(3, 0) + turned, Pt(3, 0) + turned * 2, Pt(3, 0) + turned * 3);
        EXPECT_EQ(Count(Simplified(path, 1.0), kPathCurve), angle > 0.0625 ? 2 : 1);
    }
}

TEST(Simplify, KeepsJointsSmooth) {
    CPath const circle = trammel::CirclePath(Pt(10, 20), 100, 1e-9);
    CPath const simple = Simplified(circle, 0.1);
    EXPECT_LT(Count(simple, kPathCurve), Count(circle, kPathCurve));
    hausdorff::Elements const elements = ElementsOf(simple);
    for (std::size_t i = 1; i < elements.size(); ++i) {
        if (elements[i].isLine) {
            continue; // the close
        }
        Pt const in = elements[i - 1].p[3] - elements[i - 1].p[2];
        Pt const out = elements[i].p[1] - elements[i].p[0];
        EXPECT_NEAR((in.h * out.v - in.v * out.h) / std::hypot(in.h, in.v) /
                        std::hypot(out.h, out.v),
                    0.0, 1e-10);
    }
}

TEST(Simplify, JoinsLinesThatContinueEachOtherAndKeepsHorizontalAndVerticalOnes) {
    EXPECT_EQ(trammel::WriteSvgPath(Simplified(Path("M0 0 L1 0 L5 0 L9 0 L9 4 L9 9 L0 9 Z"), 0.1)),
              trammel::WriteSvgPath(Path("M0 0 L9 0 L9 9 L0 9 Z")));
    // The close takes the line before it in.
    EXPECT_EQ(trammel::WriteSvgPath(Simplified(Path("M0 0 L9 0 L6 6 L2 2 Z"), 0.1)),
              trammel::WriteSvgPath(Path("M0 0 L9 0 L6 6 Z")));
    // A horizontal line does not become a slanted one.
    CPath const slightly = Path("M0 0 L1000 0 L2000 0.5 L3000 1");
    EXPECT_EQ(Count(Simplified(slightly, 1.0), kPathLine), 2);
    CPath const slanted = Path("M0 0 L1000 0.1 L2000 0.5 L3000 1");
    EXPECT_EQ(Count(Simplified(slanted, 1.0), kPathLine), 1);
    EXPECT_EQ(Count(Simplified(slanted, 0.01), kPathLine), 3);
    // Nor do lines that double back
    EXPECT_EQ(Count(Simplified(Path("M0 0 H10 H5 H20"), 0.1), kPathLine), 3);
}

TEST(Simplify, KeepsSubpathsInOrderOpenOrClosedWithTheirStarts) {
    CPath const cut = CutIntoParts(Path("M0 0 C5 0 10 5 10 10 Z M50 50 C55 50 60 55 60 60 "
                                        "M9 9 L8 8 Z M3 3 C30 3 60 5 90 90"),
                                   5);
    CPath const simple = Simplified(cut, 0.01);
    EXPECT_EQ(simple.mCtls,
              (std::vector<char>{kPathMove, kPathCurve, kPathClose, kPathMove, kPathCurve,
                                 kPathMove, kPathLine, kPathClose, kPathMove, kPathCurve}));
    EXPECT_EQ(simple.mPts[0], Pt(0, 0));
    EXPECT_EQ(simple.mPts[4], Pt(50, 50));
    EXPECT_EQ(simple.mCurrentPt, simple.mPts.back());
}

TEST(Simplify, ChangesNothingAtToleranceZeroAndKeepsElementsThatAreNotFinite) {
    CPath const cut = CutIntoParts(Path("M0 0 C5 0 10 5 10 10 L20 10 L30 10 Z"), 4);
    for (double const tolerance : {0.0, -1.0, kNaN}) {
        CPath simple;
        EXPECT_EQ(Simplify(cut, tolerance, simple), 0.0);
        EXPECT_EQ(simple.mPts, cut.mPts);
        EXPECT_EQ(simple.mCtls, cut.mCtls);
    }
    CPath wild = cut;
    wild.mPts[4] = Pt(kInfinity, 3);
    wild.mPts[6] = Pt(3, kNaN);
    CPath simple;
    EXPECT_LE(Simplify(wild, 1e-3, simple), 1e-3);
    EXPECT_EQ(simple.mCtls.size() + 1, wild.mCtls.size()); // both lines are one
    EXPECT_EQ(simple.mPts[4], wild.mPts[4]);
    EXPECT_TRUE(std::isnan(simple.mPts[6].v));
    simple.clear();
    EXPECT_EQ(Simplify(CPath(), 1.0, simple), 0.0);
    EXPECT_TRUE(simple.mCtls.empty());
}

TEST(Simplify, TakesCoordinatesOfAnyMagnitudeAndItsOwnInput) {
    CPath const cut = CutIntoParts(Path("M0 0 C30 -50 90 -20 100 40 C105 70 50 90 20 80"), 6);
    CPath const simple = Simplified(cut, 0.5);
    for (int const exponent : {-1000, -600, -200, 40, 200, 600, 1000}) {
        CPath scaled = cut;
        for (Pt& p : scaled.mPts) {
            p *= std::ldexp(1.0, exponent);
        }
        double const kept = Simplify(scaled, std::ldexp(0.5, exponent), scaled);
        EXPECT_LE(kept, std::ldexp(0.5, exponent));
        ASSERT_EQ(scaled.mCtls, simple.mCtls) << exponent;
        for (std::size_t i = 0; i < simple.mPts.size(); ++i) {
            EXPECT_EQ(scaled.mPts[i], simple.mPts[i] * std::ldexp(1.0, exponent)) << exponent;
        }
    }
}

TEST(Simplify, LeavesTheResultAsBeforeWithoutMemory) {
    CPath const cut = CutIntoParts(Path("M0 0 C30 -50 90 -20 100 40 L3 3 L2 2 Z"), 6);
    CPath const before = Path("M1 1 L2 3");
    bool failed = true;
    for (long allocations = 0; failed; ++allocations) {
        CPath out = before;
        failed = false;
        try {
            trammel_test::ShortMemory const memory(allocations);
            Simplify(cut, 0.5, out);
        } catch (std::bad_alloc const&) {
            failed = true;
        }
        EXPECT_EQ(out.mCtls.size() == 2, failed);
        if (failed) {
            EXPECT_EQ(out.mPts, before.mPts);
        }
    }
}

/// The glyphs of a font, in its units.
std::vector<CPath> Glyphs(char const* font, FT_ULong from, FT_ULong to) {
    std::vector<CPath> glyphs;
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    EXPECT_EQ(FT_Init_FreeType(&library), 0);
    EXPECT_EQ(FT_New_Face(library, font, 0, &face), 0);
    auto const at = [](FT_Vector const* p) {
        return Pt(static_cast<double>(p->x), static_cast<double>(p->y));
    };
    static auto const point = at;
    FT_Outline_Funcs functions = {};
    functions.move_to = [](FT_Vector const* e, void* path) {
        static_cast<CPath*>(path)->ClosePath().MoveTo(point(e));
        return 0;
    };
    functions.line_to = [](FT_Vector const* e, void* path) {
        static_cast<CPath*>(path)->LineTo(point(e));
        return 0;
    };
    functions.conic_to = [](FT_Vector const* control, FT_Vector const* e, void* path) {
        trammel::QuadTo(*static_cast<CPath*>(path), point(control), point(e));
        return 0;
    };
    functions.cubic_to = [](FT_Vector const* a, FT_Vector const* b, FT_Vector const* e,
                            void* path) {
        static_cast<CPath*>(path)->CurveTo(point(a), point(b), point(e));
        return 0;
    };
    for (FT_ULong c = from; c < to; ++c) {
        if (FT_Load_Char(face, c, FT_LOAD_NO_SCALE) == 0) {
            CPath glyph;
            EXPECT_EQ(FT_Outline_Decompose(&face->glyph->outline, &functions, &glyph), 0);
            glyphs.push_back(glyph.ClosePath());
        }
    }
    FT_Done_Face(face);
    FT_Done_FreeType(library);
    return glyphs;
}

TEST(Simplify, MakesTheQuadraticCurvesOfAFontFewerCubics) {
    constexpr char const* kFont =
        "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"; // fonts-dejavu-core
    if (!std::ifstream(kFont)) {
        GTEST_SKIP() << "there is no " << kFont << "; script/setup demo installs it";
    }
    std::size_t before = 0;
    std::size_t after = 0;
    for (CPath const& glyph : Glyphs(kFont, 33, 127)) {
        CPath simple;
        double const kept = Simplify(glyph, 1.0, simple); // of 2,048 units an em
        EXPECT_LE(kept, 1.0);
        EXPECT_TRUE(Keeps(ElementsOf(glyph), ElementsOf(simple), kept));
        EXPECT_EQ(Count(simple, kPathClose), Count(glyph, kPathClose));
        EXPECT_LE(Count(simple, kPathLine), Count(glyph, kPathLine));
        before += static_cast<std::size_t>(Count(glyph, kPathCurve));
        after += static_cast<std::size_t>(Count(simple, kPathCurve));
    }
    EXPECT_GT(before, 700U);
    EXPECT_LT(after, before * 3 / 4);
}

/// True when two elements have a common point that is no common end. Decided by boxes of halves
/// down to 1e-9 of the size, with nothing from the library.
bool MeetBesideEnds(hausdorff::Element const& a, hausdorff::Element const& b, double size) {
    typedef std::array<Pt, 4> Points;
    auto const halves = [](Points const& p) {
        Pt const m = (p[1] + p[2]) * 0.5;
        Pt const ab = (p[0] + p[1]) * 0.5;
        Pt const cd = (p[2] + p[3]) * 0.5;
        Pt const middle = ((ab + m) * 0.5 + (m + cd) * 0.5) * 0.5;
        return std::array<Points, 2>{
            {{p[0], ab, (ab + m) * 0.5, middle}, {middle, (m + cd) * 0.5, cd, p[3]}}};
    };
    auto const box = [](Points const& p) {
        return std::array<double, 4>{
            std::min({p[0].h, p[1].h, p[2].h, p[3].h}), std::max({p[0].h, p[1].h, p[2].h, p[3].h}),
            std::min({p[0].v, p[1].v, p[2].v, p[3].v}), std::max({p[0].v, p[1].v, p[2].v, p[3].v})};
    };
    std::vector<std::array<Points, 2>> open = {{a.p, b.p}};
    while (!open.empty()) {
        auto const [p, q] = open.back();
        open.pop_back();
        auto const x = box(p);
        auto const y = box(q);
        if (x[0] > y[1] || y[0] > x[1] || x[2] > y[3] || y[2] > x[3]) {
            continue;
        }
        double const extentOfP = std::max(x[1] - x[0], x[3] - x[2]);
        double const extentOfQ = std::max(y[1] - y[0], y[3] - y[2]);
        if (std::max(extentOfP, extentOfQ) < 1e-9 * size) {
            bool atEnd = false;
            for (Pt const& end : {a.p[0], a.p[3]}) {
                bool const isCommon = end == b.p[0] || end == b.p[3];
                atEnd = atEnd || (isCommon && hausdorff::Apart(end, p[0]) < 1e-5 * size);
            }
            if (!atEnd) {
                return true;
            }
            continue;
        }
        for (Points const& half : halves(extentOfP > extentOfQ ? p : q)) {
            open.push_back(extentOfP > extentOfQ ? std::array<Points, 2>{{half, q}}
                                                 : std::array<Points, 2>{{p, half}});
        }
    }
    return false;
}

/// How many pairs of elements meet of which at least one is new.
long NewMeetings(std::vector<CPath> const& before, std::vector<CPath> const& after) {
    std::vector<std::array<Pt, 4>> old;
    auto const less = [](std::array<Pt, 4> const& a, std::array<Pt, 4> const& b) {
        return std::lexicographical_compare(
            a.begin(), a.end(), b.begin(), b.end(),
            [](Pt const& p, Pt const& q) { return p.h != q.h ? p.h < q.h : p.v < q.v; });
    };
    double size = 0.0;
    for (CPath const& path : before) {
        for (hausdorff::Element const& e : ElementsOf(path)) {
            old.push_back(e.p);
        }
    }
    std::sort(old.begin(), old.end(), less);
    struct Known {
        hausdorff::Element element;
        bool isNew;
    };
    std::vector<Known> all;
    for (CPath const& path : after) {
        for (hausdorff::Element const& e : ElementsOf(path)) {
            if (e.isLine && e.p[0] == e.p[3]) {
                continue; // a close that has nothing to draw
            }
            bool const isKnown = std::any_of(all.begin(), all.end(), [&](Known const& k) {
                std::array<Pt, 4> const& p = k.element.p;
                return p == e.p || p == std::array<Pt, 4>{e.p[3], e.p[2], e.p[1], e.p[0]};
            });
            if (!isKnown) { // a common border counts once
                size = std::max({size, std::abs(e.p[0].h), std::abs(e.p[0].v)});
                all.push_back({e, !std::binary_search(old.begin(), old.end(), e.p, less)});
            }
        }
    }
    long meetings = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            if (all[i].isNew || all[k].isNew) {
                meetings += MeetBesideEnds(all[i].element, all[k].element, size) ? 1 : 0;
            }
        }
    }
    return meetings;
}

/// A closed curve through points, smooth at each of them.
CPath Smooth(std::vector<Pt> const& ring) {
    CPath path;
    std::size_t const n = ring.size();
    path.MoveTo(ring[0]);
    for (std::size_t i = 0; i < n; ++i) {
        Pt const a = ring[i];
        Pt const b = ring[(i + 1) % n];
        path.CurveTo(a + (b - ring[(i + n - 1) % n]) * (1.0 / 6.0),
                     b - (ring[(i + 2) % n] - a) * (1.0 / 6.0), b);
    }
    return path.ClosePath();
}
/// A wavy ring about a centre.
CPath WavyRing(Pt const& centre, double radius, double wave, int waves, double phase) {
    std::vector<Pt> ring;
    for (int i = 0; i < 96; ++i) {
        double const a = 6.283185307179586 * i / 96;
        double const r = radius + wave * std::sin(waves * a + phase);
        ring.push_back(centre + Pt(r * std::cos(a), r * std::sin(a)));
    }
    return Smooth(ring);
}

TEST(Simplify, LetsNothingCrossOrTouchAnew) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> unit(0, 1);
    long allowed = 0;
    std::size_t before = 0;
    std::size_t after = 0;
    for (int i = 0; i < 12; ++i) {
        // Wavy rings one in the other, so near that they touch when they are simplified freely
        std::vector<CPath> rings;
        for (int k = 0; k < 5; ++k) {
            rings.push_back(WavyRing(Pt(3, 4), 50 + 0.3 * k, 0.5, 5 + i, 0.2 * unit(random)));
            before += rings.back().mCtls.size();
        }
        std::vector<CPath> simple;
        SimplifyOutlines(rings, 0.8, NewCrossings::kAllow, simple);
        allowed += NewMeetings(rings, simple);
        double const kept = SimplifyOutlines(rings, 0.8, NewCrossings::kAvoid, simple);
        EXPECT_LE(kept, 0.8);
        EXPECT_EQ(NewMeetings(rings, simple), 0) << i;
        for (std::size_t k = 0; k < rings.size(); ++k) {
            EXPECT_TRUE(Keeps(ElementsOf(rings[k]), ElementsOf(simple[k]), kept));
            after += simple[k].mCtls.size();
        }
    }
    EXPECT_GT(allowed, 0);
    EXPECT_LT(after, before * 2 / 3);
}

TEST(Simplify, LetsNoIslandComeToTheOtherSide) {
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> unit(-1, 1);
    int moved = 0;
    for (int i = 0; i < 60; ++i) {
        CPath const ring = WavyRing(Pt(), 50, 0.4, 12, 0);
        double const a = 3.2 * unit(random);
        double const r = 50 + 0.8 * unit(random);
        Pt const centre(r * std::cos(a), r * std::sin(a));
        CPath const island = WavyRing(centre, 0.05, 0, 1, 0);
        bool const crosses = NewMeetings({}, {ring, island}) != 0;
        std::vector<CPath> simple;
        SimplifyOutlines({ring, island}, 1.0, NewCrossings::kAllow, simple);
        int const inside = trammel::WindingNumber(ring, centre);
        moved += trammel::WindingNumber(simple[0], centre) != inside ? 1 : 0;
        SimplifyOutlines({ring, island}, 1.0, NewCrossings::kAvoid, simple);
        if (!crosses) {
            EXPECT_EQ(trammel::WindingNumber(simple[0], centre), inside) << i;
        }
        EXPECT_EQ(NewMeetings({ring, island}, simple), 0) << i;
    }
    EXPECT_GT(moved, 0);
}

TEST(Simplify, KeepsTheCommonBorderOfOutlinesBitForBit) {
    // Two halves of a disc with a wavy border, which they run through in opposite directions
    std::vector<Pt> border;
    for (int i = 0; i <= 60; ++i) {
        border.push_back(Pt(i, 2 * std::sin(0.21 * i)));
    }
    CPath lower;
    CPath upper;
    lower.MoveTo(border[0]);
    upper.MoveTo(border.back());
    auto const curve = [&](std::size_t i, std::size_t k) { // from point i to its neighbour k
        std::size_t const before = std::min<std::size_t>(2 * i - k, 60);
        std::size_t const behind = std::min<std::size_t>(2 * k - i, 60);
        (k > i ? lower : upper)
            .CurveTo(border[i] + (border[k] - border[before]) * (1.0 / 6.0),
                     border[k] - (border[behind] - border[i]) * (1.0 / 6.0), border[k]);
    };
    for (std::size_t i = 1; i < 59; ++i) {
        if (i == 1) {
            lower.LineTo(border[1]);
            upper.LineTo(border[59]);
        }
        curve(i, i + 1);
        curve(60 - i, 59 - i);
    }
    lower.CurveTo(Pt(60, -40), Pt(0, -40), border[1]).ClosePath();
    upper.CurveTo(Pt(0, 40), Pt(60, 40), border[59]).ClosePath();
    for (NewCrossings const crossings : {NewCrossings::kAllow, NewCrossings::kAvoid}) {
        std::vector<CPath> simple;
        double const kept = SimplifyOutlines({lower, upper}, 0.2, crossings, simple);
        EXPECT_TRUE(Keeps(ElementsOf(lower), ElementsOf(simple[0]), kept));
        hausdorff::Elements const one = ElementsOf(simple[0]);
        long common = 0;
        for (hausdorff::Element const& e : ElementsOf(simple[1])) {
            common += std::any_of(one.begin(), one.end(), [&](hausdorff::Element const& o) {
                return o.p == std::array<Pt, 4>{e.p[3], e.p[2], e.p[1], e.p[0]};
            });
        }
        EXPECT_GT(common, 2);
        EXPECT_EQ(NewMeetings({lower, upper}, simple), 0);
        EXPECT_LT(simple[0].mCtls.size(), 30U);
    }
}

TEST(Simplify, TakesElementsBackThatCrossOthers) {
    // A loop that crosses itself keeps the elements at the crossing, and the others become fewer.
    CPath const loop = CutIntoParts(Path("M0 0 C150 100 -50 100 100 0"), 40);
    CPath simple;
    EXPECT_LE(Simplify(loop, 0.5, NewCrossings::kAvoid, simple), 0.5);
    EXPECT_EQ(NewMeetings({loop}, {simple}), 0);
    EXPECT_LT(simple.mCtls.size(), 20U);
    CPath rest;
    Simplify(loop, 0.5, NewCrossings::kAllow, rest);
    EXPECT_EQ(Count(rest, kPathCurve), 1);
    EXPECT_EQ(Simplify(loop, kNaN, NewCrossings::kAvoid, rest), 0.0);
    EXPECT_EQ(rest.mPts, loop.mPts);
}

TEST(Simplify, LetsNothingCrossAnewInAFont) {
    constexpr char const* kFont = "/usr/share/fonts/opentype/ebgaramond/EBGaramond12-Regular.otf";
    if (!std::ifstream(kFont)) {
        GTEST_SKIP() << "there is no " << kFont << "; script/setup demo installs it";
    }
    std::size_t before = 0;
    std::size_t after = 0;
    for (CPath const& glyph : Glyphs(kFont, 33, 127)) {
        for (double const tolerance : {2.0, 20.0}) { // of 1,000 units an em
            std::vector<CPath> simple;
            double const kept = SimplifyOutlines({glyph}, tolerance, NewCrossings::kAvoid, simple);
            EXPECT_TRUE(Keeps(ElementsOf(glyph), ElementsOf(simple[0]), kept));
            EXPECT_EQ(NewMeetings({glyph}, simple), 0);
            before += glyph.mCtls.size();
            after += simple[0].mCtls.size();
        }
    }
    EXPECT_LT(after, before);
}

#ifdef TRAMMEL_TEST_MAPS

TEST(Simplify, LetsNothingCrossAnewInAMapOfCurves) {
    std::vector<CPath> map;
    for (auto const& contour : trammel_test::CountriesOf("countries-110m.json")) {
        std::vector<Pt> ring;
        for (Pt const& p : contour) { // neighbours have the same vertices
            Pt const vertex(std::round(p.h * 0x1p20) / 0x1p20, std::round(p.v * 0x1p20) / 0x1p20);
            if (ring.empty() || (vertex != ring.back() && vertex != ring.front())) {
                ring.push_back(vertex);
            }
        }
        map.push_back(Smooth(ring));
    }
    if (map.empty()) {
        GTEST_SKIP() << "no countries-110m.json (script/setup maps fetches it)";
    }
    std::vector<CPath> simple;
    double const kept = SimplifyOutlines(map, 0.3, NewCrossings::kAvoid, simple);
    EXPECT_LE(kept, 0.3);
    EXPECT_EQ(NewMeetings(map, simple), 0);
    std::size_t before = 0;
    std::size_t after = 0;
    for (std::size_t i = 0; i < map.size(); ++i) {
        before += map[i].mCtls.size();
        after += simple[i].mCtls.size();
    }
    EXPECT_LT(after, before);
}

#endif

} // namespace
