// SPDX-License-Identifier: MIT

#include "Winding.h"

#include "AccurateCurve.h"
#include "CBezier.h"
#include "CMatrix3x3.h"
#include "CairoGlyphs.h"
#include "PathText.h"
#include "SvgPath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <fstream>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using trammel::Contains;
using trammel::FillRule;
using trammel::WindingNumber;
using trammel_test::Path;

typedef TPoint<double> Pt;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The winding number by its definition: the angle through which the direction from `p` to the path
/// turns, in whole turns. Right for points farther from the path than its curves are from chains of
/// 512 chords.
int TurnsAround(CPath const& path, Pt const& p) {
    long double angle = 0;
    Pt start;
    Pt current;
    auto const turn = [&](long double h0, long double v0, long double h1, long double v1) {
        angle += std::atan2(h0 * v1 - v0 * h1, h0 * h1 + v0 * v1);
    };
    auto const line = [&](Pt const& a, Pt const& b) {
        turn(a.h - p.h, a.v - p.v, b.h - p.h, b.v - p.v);
    };
    std::size_t next = 0;
    for (char const code : path.mCtls) {
        switch (code) {
        case kPathMove:
            line(current, start);
            start = current = path.mPts[next++];
            break;
        case kPathLine:
            line(current, path.mPts[next]);
            current = path.mPts[next++];
            break;
        case kPathCurve: {
            CBezier const c(current, path.mPts[next], path.mPts[next + 1], path.mPts[next + 2]);
            constexpr int kChords = 512;
            Pt last = c.P0;
            for (int i = 1; i <= kChords; ++i) {
                Pt const at = i < kChords ? c.TPt(static_cast<double>(i) / kChords) : c.P3;
                line(last, at);
                last = at;
            }
            current = c.P3;
            next += 3;
            break;
        }
        default:
            line(current, start);
            start = current;
            break;
        }
    }
    line(current, start);
    return static_cast<int>(std::lround(angle / (2 * 3.14159265358979323846L)));
}

/// The distance from the path, its contours closed.
double DistanceFrom(CPath const& path, Pt const& p) {
    double nearest = kInfinity;
    Pt start;
    Pt current;
    auto const take = [&](CBezier const& c) {
        nearest = std::min(nearest, trammel::NearestPoint(c, p, 1e-9).distance);
    };
    auto const line = [&](Pt const& a, Pt const& b) { take(CBezier(a, a, b, b)); };
    std::size_t next = 0;
    for (char const code : path.mCtls) {
        if (code == kPathCurve) {
            take(CBezier(current, path.mPts[next], path.mPts[next + 1], path.mPts[next + 2]));
            current = path.mPts[next + 2];
            next += 3;
        } else if (code == kPathLine) {
            line(current, path.mPts[next]);
            current = path.mPts[next++];
        } else {
            line(current, start);
            start = current = code == kPathMove ? path.mPts[next++] : current;
        }
    }
    line(current, start);
    return nearest;
}

TEST(WindingNumber, IsPositiveFromPlusHTowardPlusV) {
    EXPECT_EQ(WindingNumber(Path("M0 0 H4 V4 H0 Z"), Pt(1, 2)), 1);
    EXPECT_EQ(WindingNumber(Path("M0 0 V4 H4 V0 Z"), Pt(1, 2)), -1);
    EXPECT_EQ(WindingNumber(Path("M0 0 H4 V4 H0 Z"), Pt(5, 2)), 0);
}

TEST(WindingNumber, AddsUpNestedContours) {
    CPath const twice = Path("M0 0 H9 V9 H0 Z M2 2 H7 V7 H2 Z");
    EXPECT_EQ(WindingNumber(twice, Pt(4, 4)), 2);
    EXPECT_EQ(WindingNumber(twice, Pt(1, 1)), 1);
    CPath const hole = Path("M0 0 H9 V9 H0 Z M2 2 V7 H7 V2 Z");
    EXPECT_EQ(WindingNumber(hole, Pt(4, 4)), 0);
}

TEST(WindingNumber, OfAPentagramIsTwoInTheMiddle) {
    CPath const star = Path("M0 -10 L5.878 8.090 L-9.511 -3.090 L9.511 -3.090 L-5.878 8.090 Z");
    EXPECT_EQ(WindingNumber(star, Pt(0, 0)), 2);
    EXPECT_TRUE(Contains(star, Pt(0, 0), FillRule::kNonZero));
    EXPECT_FALSE(Contains(star, Pt(0, 0), FillRule::kEvenOdd));
    EXPECT_EQ(WindingNumber(star, Pt(0, -8)), 1);
    EXPECT_TRUE(Contains(star, Pt(0, -8), FillRule::kEvenOdd));
}

TEST(WindingNumber, TreatsAVertexAtTheOriginLikeAnyOther) {
    CPath const triangle = Path("M0 0 L8 0 L0 8 Z");
    TPolygon<double> polygon = {Pt(0, 0), Pt(8, 0), Pt(0, 8)};
    CFPolygonRef handle = polygon;
    for (Pt const& p : {Pt(1, 1), Pt(0.5, 7), Pt(6, 1)}) {
        EXPECT_EQ(WindingNumber(triangle, p), 1);
        EXPECT_EQ(WindingNumber(polygon, p), 1);
        EXPECT_EQ(WindingNumber(handle, p), 1);
    }
    handle.Dispose();
}

TEST(WindingNumber, ClosesOpenContours) {
    EXPECT_EQ(WindingNumber(Path("M0 0 H4 V4 H0"), Pt(1, 2)), 1);
    EXPECT_EQ(WindingNumber(Path("M0 0 H4 V4 H0 M10 10 H14 V14 H10"), Pt(1, 2)), 1);
    EXPECT_EQ(WindingNumber(Path("M0 0 H4 V4 H0 M10 10 H14 V14 H10"), Pt(11, 12)), 1);
    EXPECT_EQ(WindingNumber(Path("M0 0 C0 4 4 4 4 0"), Pt(2, 1)), -1);
}

TEST(WindingNumber, BeginsAContourWhereDrawingGoesOnAfterAClose) {
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(4, 0)).LineTo(Pt(4, 4)).ClosePath();
    path.AddCtl(kPathLine).AddPt(Pt(9, 4));
    path.AddCtl(kPathLine).AddPt(Pt(9, 9));
    EXPECT_EQ(WindingNumber(path, Pt(3, 1)), 1);
    EXPECT_EQ(WindingNumber(path, Pt(8, 5)), 1);
    EXPECT_EQ(WindingNumber(path, Pt(2, 3)), 0);
}

TEST(WindingNumber, BeginsAtTheOriginWithoutAMove) {
    CPath path;
    path.AddCtl(kPathLine).AddPt(Pt(4, 0));
    path.AddCtl(kPathLine).AddPt(Pt(4, 4));
    EXPECT_EQ(WindingNumber(path, Pt(3, 1)), 1);
}

TEST(WindingNumber, IsZeroForNothingAndForWhatHasNoArea) {
    EXPECT_EQ(WindingNumber(CPath(), Pt(0, 0)), 0);
    EXPECT_EQ(WindingNumber(Path("M1 1"), Pt(1, 1)), 0);
    EXPECT_EQ(WindingNumber(Path("M0 0 L4 4"), Pt(2, 2)), 0);
    EXPECT_EQ(WindingNumber(TPolygon<double>(), Pt(0, 0)), 0);
    EXPECT_EQ(WindingNumber(CFPolygonRef(), Pt(0, 0)), 0);
}

TEST(WindingNumber, LeavesOutContoursThatAreNotFinite) {
    for (double const bad : {kNaN, kInfinity, -kInfinity}) {
        CPath path = Path("M0 0 H4 V4 H0 Z M1 1 H3 V3 H1 Z M1 1 C2 -9 9 9 1 3 Z");
        std::size_t const curve = path.mPts.size() - 3;
        EXPECT_EQ(WindingNumber(path, Pt(2, 2)), 3);
        path.mPts[curve].v = bad;
        EXPECT_EQ(WindingNumber(path, Pt(2, 2)), 2);
        path.mPts[4].h = bad;
        EXPECT_EQ(WindingNumber(path, Pt(2, 2)), 1);
        EXPECT_EQ(WindingNumber(path, Pt(bad, 2)), 0);
        EXPECT_EQ(WindingNumber(path, Pt(2, bad)), 0);
    }
}

TEST(WindingNumber, CountsTheContourAfterOneWhoseLastPointIsNotFinite) {
    for (double const bad : {kNaN, kInfinity, -kInfinity}) {
        for (char const* const text :
             {"M0 0 H4 V4 M1 1 H3 V3 H1 Z", "M0 0 H4 V4 Z M1 1 H3 V3 H1 Z"}) {
            CPath path = Path(text);
            EXPECT_EQ(WindingNumber(path, Pt(2.5, 2)), 2);
            path.mPts[2].v = bad;
            EXPECT_EQ(WindingNumber(path, Pt(2.5, 2)), 1);
        }
    }
}

TEST(WindingNumber, HoldsAtTheEndsOfTheRangeOfDouble) {
    double const large = std::numeric_limits<double>::max();
    double const small = std::numeric_limits<double>::denorm_min();
    for (double const s : {large, small * 8, 1e300, 1e-300}) {
        CPath path;
        path.MoveTo(Pt(-s, -s)).LineTo(Pt(s, -s)).LineTo(Pt(s, s)).LineTo(Pt(-s, s)).ClosePath();
        EXPECT_EQ(WindingNumber(path, Pt(s / 2, -s / 4)), 1) << s;
        CPath curve;
        curve.MoveTo(Pt(-s, 0)).CurveTo(Pt(-s, -s), Pt(s, -s), Pt(s, 0));
        EXPECT_EQ(WindingNumber(curve, Pt(s / 8, -s / 4)), 1) << s;
        EXPECT_EQ(WindingNumber(curve, Pt(s / 8, -s)), 0) << s;
        CPath triangle;
        triangle.MoveTo(Pt(-s, -s)).LineTo(Pt(s, -s)).LineTo(Pt(-s, s));
        EXPECT_EQ(WindingNumber(triangle, Pt(-s / 2, -s / 2)), 1) << s;
        EXPECT_EQ(WindingNumber(triangle, Pt(s / 2, s / 2)), 0) << s;
    }
}

TEST(WindingNumber, KeepsTheSideOfATinyCoordinateWhereAnotherOverflows) {
    double const small = std::numeric_limits<double>::denorm_min();
    CPath path;
    path.MoveTo(Pt(1.7e308, small))
        .CurveTo(Pt(1e308, -1e307), Pt(-1.79e308, 1e308), Pt(-1.79e308, 1.1e308))
        .ClosePath();
    EXPECT_EQ(WindingNumber(path, Pt(-1.7e308, 0)), 0);
    EXPECT_EQ(WindingNumber(path, Pt(-1.17e308, 8.5e307)), -1);
}

TEST(WindingNumber, OfCurvesAmongTheSmallestDoublesIsThatOfLargerOnes) {
    std::mt19937_64 random(3);
    auto const number = [&] { return static_cast<double>(random() % 65) - 32; };
    for (int i = 0; i < 20000; ++i) {
        Pt const points[] = {Pt(number(), number()), Pt(number(), number()), Pt(number(), number()),
                             Pt(number(), number()), Pt(number(), number())};
        int windings[2];
        for (int small = 0; small < 2; ++small) {
            double const scale = small != 0 ? std::numeric_limits<double>::denorm_min() : 1;
            CPath path;
            path.MoveTo(points[0] * scale)
                .CurveTo(points[1] * scale, points[2] * scale, points[3] * scale);
            windings[small] = WindingNumber(path, points[4] * scale);
        }
        ASSERT_EQ(windings[1], windings[0]) << i;
    }
}

TEST(WindingNumber, EndsOnACurveThatPassesThroughThePoint) {
    // A cusp, a loop and a straight line, all with the point on them.
    EXPECT_LE(std::abs(WindingNumber(Path("M0 0 C8 8 0 8 8 0"), Pt(4, 6))), 1);
    EXPECT_LE(std::abs(WindingNumber(Path("M0 0 C9 9 -5 9 4 0"), Pt(0, 0))), 1);
    EXPECT_EQ(WindingNumber(Path("M0 0 C1 1 2 2 3 3"), Pt(1.5, 1.5)), 0);
    EXPECT_EQ(WindingNumber(Path("M5 5 C5 5 5 5 5 5"), Pt(5, 5)), 0);
}

TEST(WindingNumber, IsThatOfTheAngleOnRandomPaths) {
    std::mt19937_64 random(20261122);
    auto const number = [&] { return static_cast<double>(random() % 2001) / 10.0 - 100.0; };
    int compared = 0;
    for (int i = 0; i < 300; ++i) {
        CPath path;
        for (std::uint64_t contours = random() % 3; contours < 3; ++contours) {
            path.MoveTo(Pt(number(), number()));
            for (std::uint64_t n = random() % 4; n < 5; ++n) {
                if (random() % 2 == 0) {
                    path.LineTo(Pt(number(), number()));
                } else {
                    path.CurveTo(Pt(number(), number()), Pt(number(), number()),
                                 Pt(number(), number()));
                }
            }
            if (random() % 2 == 0) {
                path.ClosePath();
            }
        }
        for (int k = 0; k < 10; ++k) {
            Pt const p(number(), number());
            if (DistanceFrom(path, p) > 0.01) {
                ++compared;
                ASSERT_EQ(WindingNumber(path, p), TurnsAround(path, p))
                    << trammel::WriteSvgPath(path) << " around " << p.h << ", " << p.v;
            }
        }
    }
    EXPECT_GT(compared, 2900);
}

TEST(WindingNumber, ChangesByOneAcrossACurveWithinTheStatedBound) {
    std::mt19937_64 random(7);
    // Multiples of 2^-20 near the curve, so that points are the same to 2^-52 of the curve's size
    // after rounding.
    auto const number = [&] {
        return (static_cast<double>(random() % 2097152) - 1048576.0) * 0x1p-20;
    };
    int compared = 0;
    for (int i = 0; i < 20000; ++i) {
        CBezier const c(Pt(number(), number()), Pt(number(), number()), Pt(number(), number()),
                        Pt(number(), number()));
        double const t = static_cast<double>(random() % 1000 + 1) / 1002.0;
        Pt const d = (c.P1 - c.P0) * ((1 - t) * (1 - t)) + (c.P2 - c.P1) * (2 * t * (1 - t)) +
                     (c.P3 - c.P2) * (t * t);
        double const length = d.Hypotenuse();
        if (length < 0.1) {
            continue;
        }
        // Twice the bound in the direction across, and the rounding of the point itself.
        Pt const across = Pt(-d.v, d.h) / length * (2 * 2.0 * 0x1p-47);
        Pt const at = c.TPt(t);
        Pt const sides[] = {at + across, at - across};
        CPath path;
        path.MoveTo(c.P0).CurveTo(c.P1, c.P2, c.P3);
        if (TLine<double>(c.P0, c.P3).Distance(at) < 1e-6) {
            continue; // the closing line is as near
        }
        // Only this place of the curve is so near: no other one between the two sides.
        bool simple = true;
        for (int k = 0; k <= 64 && simple; ++k) {
            double const other = k / 64.0;
            simple = std::abs(other - t) < 0.2 || (c.TPt(other) - at).Hypotenuse() > 0.02;
        }
        if (simple) {
            ++compared;
            ASSERT_EQ(WindingNumber(path, sides[0]) - WindingNumber(path, sides[1]), 1)
                << trammel::WriteSvgPath(path) << " at " << t;
        }
    }
    EXPECT_GT(compared, 10000);
}

TEST(WindingNumber, OfReversedAndMirroredPathsIsTheNegative) {
    CPath const path = Path("M10 20 C90 -40 60 80 30 60 S-20 10 10 20 Z");
    CPath reversed;
    reversed.MoveTo(Pt(10, 20));
    std::vector<Pt> const& p = path.mPts;
    for (std::size_t i = p.size() - 1; i >= 3; i -= 3) {
        reversed.CurveTo(p[i - 1], p[i - 2], p[i - 3]);
    }
    for (double h = -20; h < 90; h += 3.5) {
        for (double v = -20; v < 80; v += 3.5) {
            EXPECT_EQ(WindingNumber(reversed, Pt(h, v)), -WindingNumber(path, Pt(h, v)));
        }
    }
}

TEST(ContainsByRule, AgreesWithCairoOnTheGlyphsOfAFont) {
    if (!std::ifstream(trammel_test::kFont)) {
        GTEST_SKIP() << "there is no " << trammel_test::kFont << "; script/setup demo installs it";
    }
    trammel_test::FontFace const face;
    trammel_test::CairoGlyphs text;
    for (char32_t const c : std::u32string(U"Rg&8@QS%")) {
        text.Add(face, c);
    }
    ASSERT_GT(text.Outline().mCtls.size(), 150u);
    TRect<double> const box = text.Outline().Bounds();
    std::mt19937_64 random(3);
    auto const between = [&](double low, double high) {
        return low + (high - low) * static_cast<double>(random() >> 11) * 0x1p-53;
    };
    int inside = 0;
    for (int i = 0; i < 2000; ++i) {
        Pt const p(between(box.left, box.right), between(box.top, box.bottom));
        if (DistanceFrom(text.Outline(), p) < 0.02) {
            continue; // Cairo counts in steps of 1/256
        }
        for (FillRule const rule : {FillRule::kNonZero, FillRule::kEvenOdd}) {
            ASSERT_EQ(Contains(text.Outline(), p, rule), text.CairoContains(p, rule))
                << p.h << ", " << p.v;
        }
        inside += Contains(text.Outline(), p, FillRule::kNonZero) ? 1 : 0;
    }
    EXPECT_GT(inside, 400);
}

} // namespace
