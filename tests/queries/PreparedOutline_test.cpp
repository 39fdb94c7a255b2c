// SPDX-License-Identifier: MIT

#include "PreparedOutline.h"

#include "CBezier.h"
#include "CairoGlyphs.h"
#include "PathText.h"
#include "ShortMemory.h"
#include "TestSupport.h"
#include "Winding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using trammel::FillRule;
using trammel::PreparedOutline;
using trammel::WindingNumber;
using trammel_test::Path;

typedef TPoint<double> Pt;
typedef std::vector<Pt> Points;

constexpr double kPi = 3.14159265358979323846;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The closed path of lines through these points, or of curves that are smooth there.
CPath Outline(Points const& points, bool curves) {
    CPath path;
    std::size_t const count = points.size();
    path.MoveTo(points[0]);
    for (std::size_t i = 0; i < count; ++i) {
        Pt const a = points[i];
        Pt const b = points[(i + 1) % count];
        if (curves) {
            path.CurveTo(a + (b - points[(i + count - 1) % count]) * (1.0 / 6),
                         b - (points[(i + 2) % count] - a) * (1.0 / 6), b);
        } else {
            path.LineTo(b);
        }
    }
    return path.ClosePath();
}

/// Random numbers, the same with each run.
class Random {
public:
    explicit Random(std::uint64_t seed) : mBits(seed) {}
    std::uint64_t Below(std::uint64_t n) { return mBits() % n; }
    double Between(double low, double high) {
        return low + (high - low) * static_cast<double>(mBits() >> 11) * 0x1p-53;
    }

private:
    std::mt19937_64 mBits;
};

/// A point of the path, one at the height of another, one beside a point, one on a segment, or any.
Pt NastyPoint(Random& random, CPath const& path, std::function<double()> const& number) {
    Points const& points = path.mPts;
    if (points.empty()) {
        return Pt(number(), number());
    }
    Pt const a = points[random.Below(points.size())];
    Pt const b = points[random.Below(points.size())];
    double const toward = random.Below(2) == 0 ? kInfinity : -kInfinity;
    switch (random.Below(6)) {
    case 0:
        return a;
    case 1:
        return Pt(number(), a.v);
    case 2:
        return Pt(std::nextafter(b.h, toward), std::nextafter(a.v, -toward));
    case 3:
        return a * 0.5 + b * 0.5;
    case 4: {
        std::size_t const i = random.Below(points.size());
        if (i + 3 < points.size()) {
            CBezier const c(points[i], points[i + 1], points[i + 2], points[i + 3]);
            return c.TPt(static_cast<double>(random.Below(65)) / 64);
        }
        return b;
    }
    default:
        return Pt(number(), number());
    }
}

TEST(PreparedOutline, CountsLikeWindingNumber) {
    PreparedOutline const twice(Path("M0 0 H9 V9 H0 Z M2 2 H7 V7 H2 Z"));
    EXPECT_EQ(twice.WindingNumber(Pt(4, 4)), 2);
    EXPECT_EQ(twice.WindingNumber(Pt(1, 1)), 1);
    EXPECT_EQ(twice.WindingNumber(Pt(10, 1)), 0);
    EXPECT_FALSE(twice.Contains(Pt(4, 4), FillRule::kEvenOdd));
    EXPECT_TRUE(twice.Contains(Pt(4, 4), FillRule::kNonZero));
    PreparedOutline const hole(Path("M0 0 H9 V9 H0 Z M2 2 V7 H7 V2 Z"));
    EXPECT_EQ(hole.WindingNumber(Pt(4, 4)), 0);
}

TEST(PreparedOutline, WindsAroundNothingWithoutSegments) {
    for (PreparedOutline const& outline :
         {PreparedOutline(), PreparedOutline(CPath()), PreparedOutline(Path("M1 1")),
          PreparedOutline(Path("M1 1 M2 2")), PreparedOutline(TPolygon<double>()),
          PreparedOutline(CFPolygonRef()), PreparedOutline(Points())}) {
        EXPECT_EQ(outline.WindingNumber(Pt(1, 1)), 0);
        EXPECT_FALSE(outline.Contains(Pt(1, 1), FillRule::kNonZero));
        EXPECT_EQ(outline.MemorySize(), 0U);
    }
}

TEST(PreparedOutline, TakesBothKindsOfPolygonsAndRings) {
    Points const points = {Pt(0, 0), Pt(8, 0), Pt(0, 8)};
    TPolygon<double> const list(points);
    CFPolygonRef handle;
    handle.CFPolygonCreate(points);
    for (PreparedOutline const& outline :
         {PreparedOutline(list), PreparedOutline(handle), PreparedOutline(points)}) {
        EXPECT_EQ(outline.WindingNumber(Pt(1, 1)), 1);
        EXPECT_EQ(outline.WindingNumber(Pt(7, 7)), 0);
    }
    handle.Dispose();
}

TEST(PreparedOutline, IsIndependentOfThePathAndOfItsCopies) {
    CPath path = Path("M0 0 H4 V4 H0 Z");
    PreparedOutline const first(path);
    PreparedOutline copy = first;
    path.clear();
    EXPECT_EQ(first.WindingNumber(Pt(1, 2)), 1);
    copy = PreparedOutline(path);
    EXPECT_EQ(copy.WindingNumber(Pt(1, 2)), 0);
    PreparedOutline moved(first);
    PreparedOutline const taken = std::move(moved);
    EXPECT_EQ(taken.WindingNumber(Pt(1, 2)), 1);
    EXPECT_EQ(first.WindingNumber(Pt(1, 2)), 1);
}

TEST(PreparedOutline, IsZeroAroundPointsThatAreNotFinite) {
    PreparedOutline const outline(Path("M0 0 H4 V4 H0 Z"));
    for (double const bad : {kNaN, kInfinity, -kInfinity}) {
        EXPECT_EQ(outline.WindingNumber(Pt(bad, 2)), 0);
        EXPECT_EQ(outline.WindingNumber(Pt(2, bad)), 0);
    }
}

TEST(PreparedOutline, LeavesOutContoursThatAreNotFinite) {
    for (double const bad : {kNaN, kInfinity, -kInfinity}) {
        CPath path = Path("M0 0 H4 V4 H0 Z M1 1 H3 V3 H1 Z M1 1 C2 -9 9 9 1 3 Z");
        std::size_t const curve = path.mPts.size() - 3;
        EXPECT_EQ(PreparedOutline(path).WindingNumber(Pt(2, 2)), 3);
        path.mPts[curve].v = bad;
        EXPECT_EQ(PreparedOutline(path).WindingNumber(Pt(2, 2)), 2);
        path.mPts[4].h = bad;
        EXPECT_EQ(PreparedOutline(path).WindingNumber(Pt(2, 2)), 1);
        path.mPts[0].h = bad;
        EXPECT_EQ(PreparedOutline(path).MemorySize(), 0U);
    }
}

TEST(PreparedOutline, BeginsContoursAsWindingNumberDoes) {
    CPath path;
    path.AddCtl(kPathLine).AddPt(Pt(4, 0));
    path.AddCtl(kPathLine).AddPt(Pt(4, 4));
    path.AddCtl(kPathClose);
    path.AddCtl(kPathClose);
    path.AddCtl(kPathLine).AddPt(Pt(9, 4));
    path.AddCtl(kPathLine).AddPt(Pt(9, 9));
    path.AddCtl(kPathCurve).AddPt(Pt(9, 9)); // its points do not suffice
    PreparedOutline const outline(path);
    for (double h = -0.5; h < 11; h += 0.5) {
        for (double v = -0.5; v < 11; v += 0.5) {
            EXPECT_EQ(outline.WindingNumber(Pt(h, v)), WindingNumber(path, Pt(h, v)));
        }
    }
    EXPECT_EQ(outline.WindingNumber(Pt(8, 5)), 1);
}

TEST(PreparedOutline, GivesTheWindingNumberOfEveryPointOfRandomPaths) {
    Random random(20261122);
    long inside = 0;
    for (int i = 0; i < 6000; ++i) {
        int const kind = i % 8;
        int const exponent = static_cast<int>(random.Below(2000)) - 1050;
        std::function<double()> const number = [&]() -> double {
            static constexpr double kSpecial[] = {
                0.0,     -0.0,   1, -1,   1e308, -1.7e308, 1.7e308, 5e-324,
                -5e-324, 1e-310, 3, 1e16, 1e300, -1e-300,  kNaN,    kInfinity};
            auto const some = [&](std::uint64_t n) { return static_cast<double>(random.Below(n)); };
            switch (kind) {
            case 0:
                return some(9);
            case 1:
                return some(100) / 7 - 5;
            case 2: // all sizes, one for each path
                return std::scalbn(some(1000) - 500, exponent);
            case 3: // all sizes in one path
                return std::scalbn(random.Between(-1, 1),
                                   static_cast<int>(random.Below(2040)) - 1020);
            case 4: // a point far away
                return random.Below(40) == 0 ? 1e9 : some(50);
            case 5:
                return kSpecial[random.Below(14)];
            case 6:
                return random.Below(60) == 0 ? kSpecial[14 + random.Below(2)] : some(20);
            default: // little more than the last bits differ
                return 1e6 + some(64) * 0x1p-33;
            }
        };
        CPath path;
        for (std::uint64_t n = random.Below(i % 20 == 0 ? 400 : 30); n > 0; --n) {
            switch (random.Below(i % 2 == 0 ? 8 : 40)) {
            case 0:
                path.AddCtl(kPathMove).AddPt(Pt(number(), number()));
                break;
            case 1:
                path.AddCtl(kPathClose);
                break;
            case 2:
            case 3:
            case 4:
                path.AddCtl(kPathLine).AddPt(Pt(number(), number()));
                break;
            default:
                path.AddCtl(kPathCurve);
                for (int k = 0; k < 3; ++k) {
                    path.AddPt(Pt(number(), number()));
                }
            }
        }
        PreparedOutline const outline(path);
        for (int k = 0; k < 20; ++k) {
            Pt const p = NastyPoint(random, path, number);
            int const winding = WindingNumber(path, p);
            ASSERT_EQ(outline.WindingNumber(p), winding)
                << "path " << i << ", kind " << kind << " around " << p.h << ", " << p.v;
            inside += winding != 0 ? 1 : 0;
        }
    }
    EXPECT_GT(inside, 20000);
}

struct Shape {
    char const* name;
    std::function<Pt(std::size_t i, std::size_t count)> vertex;
};

std::vector<Shape> WorstShapes() {
    auto const turned = [](double turn, double radius) {
        return Pt(500 + radius * std::cos(turn), 500 + radius * std::sin(turn));
    };
    auto const part = [](std::size_t i, std::size_t count) {
        return static_cast<double>(i) / static_cast<double>(count);
    };
    return {
        {"circle", [=](std::size_t i, std::size_t n) { return turned(2 * kPi * part(i, n), 400); }},
        {"comb", [=](std::size_t i,
                     std::size_t n) { return Pt(1000 * part(i, n), i % 2 == 0 ? 0.0 : 1000.0); }},
        {"leaning comb",
         [=](std::size_t i, std::size_t n) {
             return Pt(500 * part(i, n) + (i % 2 == 0 ? 0 : 500), i % 2 == 0 ? 0.0 : 1000.0);
         }},
        {"lying comb",
         [=](std::size_t i, std::size_t n) {
             return Pt(i % 2 == 0 ? 0.0 : 1000.0, 1000 * part(i, n));
         }},
        {"star",
         [=](std::size_t i, std::size_t n) {
             return turned(2 * kPi * part(i, n), i % 2 == 0 ? 10 : 500);
         }},
        {"polygram",
         [=](std::size_t i, std::size_t n) {
             return turned(2 * kPi * part(i, n) * static_cast<double>(n / 2 - 1), 500);
         }},
        {"spiral", [=](std::size_t i,
                       std::size_t n) { return turned(100 * kPi * part(i, n), 500 * part(i, n)); }},
        {"same circle often",
         [=](std::size_t i, std::size_t n) {
             return turned(2 * kPi * static_cast<double>(i % 10) / 10, 400 + 0 * part(i, n));
         }},
        {"point", [=](std::size_t, std::size_t) { return Pt(7, 7); }},
        {"line", [=](std::size_t i, std::size_t) { return Pt(i % 2 == 0 ? 0 : 9, 7); }},
    };
}

TEST(PreparedOutline, GivesTheWindingNumberOfTheWorstShapes) {
    Random random(5);
    for (Shape const& shape : WorstShapes()) {
        auto const most = static_cast<std::size_t>(trammel_test::Rounds(100000));
        for (std::size_t const count :
             {std::size_t{3}, std::size_t{8}, std::size_t{9}, std::size_t{64}, std::size_t{65},
              std::size_t{1000}, most}) {
            Points points;
            for (std::size_t i = 0; i < count; ++i) {
                points.push_back(shape.vertex(i, count));
            }
            for (bool const curves : {false, true}) {
                CPath const path = Outline(points, curves);
                PreparedOutline const outline(path);
                for (int k = 0; k < (count > 1000 ? 4 : 50); ++k) {
                    Pt const p = NastyPoint(random, path, [&] { return random.Between(0, 1000); });
                    ASSERT_EQ(outline.WindingNumber(p), WindingNumber(path, p))
                        << shape.name << " of " << count << " around " << p.h << ", " << p.v;
                }
            }
        }
    }
}

/// Outlines whose segments run to and fro past each other.
std::vector<Shape> CrowdedShapes() {
    std::vector<Shape> shapes = WorstShapes();
    shapes.erase(shapes.begin(), shapes.begin() + 1); // the circle
    auto const random = std::make_shared<Random>(8);
    auto const any = [=] { return random->Between(0, 1000); };
    shapes.push_back({"tangle", [=](std::size_t, std::size_t) { return Pt(any(), any()); }});
    shapes.push_back({"tangle of few heights", [=](std::size_t, std::size_t) {
                          return Pt(any(), 125.0 * static_cast<double>(random->Below(9)));
                      }});
    shapes.push_back({"tangle of few points", [=](std::size_t, std::size_t) {
                          return Pt(125.0 * static_cast<double>(random->Below(9)),
                                    static_cast<double>(random->Below(9)));
                      }});
    shapes.push_back({"tangle in a corner", [=](std::size_t i, std::size_t) {
                          return i % 50 == 0 ? Pt(any(), any()) : Pt(any() / 9, any() / 9);
                      }});
    shapes.push_back({"flat tangle", [=](std::size_t, std::size_t) {
                          return Pt(any() * 0x1p-9, any() * 0x1p40);
                      }});
    return shapes;
}

TEST(PreparedOutline, GivesTheWindingNumberOfCrowdedOutlines) {
    Random random(9);
    long inside = 0;
    for (Shape const& shape : CrowdedShapes()) {
        for (std::size_t const count : {40U, 500U}) {
            Points points;
            for (std::size_t i = 0; i < count; ++i) {
                points.push_back(shape.vertex(i, count));
            }
            for (bool const curves : {false, true}) {
                CPath const path = Outline(points, curves);
                PreparedOutline const outline(path);
                TRect<double> const box = path.Bounds();
                // Any points, and points on the lines of many grids.
                auto const between = [&](double low, double high) {
                    double const part = random.Between(0, 1);
                    auto const lines = static_cast<double>(1 + random.Below(40));
                    return low +
                           (high - low) *
                               (random.Below(2) == 0 ? part : std::round(part * lines) / lines);
                };
                for (int k = 0; k < trammel_test::Rounds(3000); ++k) {
                    Pt const p =
                        k % 3 == 0
                            ? NastyPoint(random, path, [&] { return between(box.top, box.bottom); })
                            : Pt(between(box.left, box.right), between(box.top, box.bottom));
                    int const winding = WindingNumber(path, p);
                    ASSERT_EQ(outline.WindingNumber(p), winding)
                        << shape.name << " of " << count << " around " << p.h << ", " << p.v;
                    inside += winding != 0 ? 1 : 0;
                }
            }
        }
    }
    EXPECT_GT(inside, trammel_test::Rounds(40000));
}

TEST(PreparedOutline, GivesTheWindingNumberOfCrowdsNearTheirCurves) {
    Random random(10);
    for (Shape const& shape : CrowdedShapes()) {
        Points points;
        for (std::size_t i = 0; i < 200; ++i) {
            points.push_back(shape.vertex(i, 200));
        }
        CPath const path = Outline(points, true);
        std::size_t const curves = (path.mPts.size() - 1) / 3; // none leads to where it begins
        PreparedOutline const outline(path);
        TRect<double> const box = path.Bounds();
        for (int k = 0; curves > 0 && k < trammel_test::Rounds(2000); ++k) {
            std::size_t const i = 3 * random.Below(curves);
            CBezier const c(path.mPts[i], path.mPts[i + 1], path.mPts[i + 2], path.mPts[i + 3]);
            // From the curve itself to a part of the outline.
            double const part = std::scalbn(1.0, -static_cast<int>(random.Below(60)));
            Pt const p = c.TPt(random.Between(0, 1)) +
                         Pt((box.right - box.left) * random.Between(-part, part),
                            (box.bottom - box.top) * random.Between(-part, part));
            ASSERT_EQ(outline.WindingNumber(p), WindingNumber(path, p))
                << shape.name << " around " << p.h << ", " << p.v;
        }
    }
}

TEST(PreparedOutline, GivesTheWindingNumberOfManyContoursInAnyOrder) {
    Random random(6);
    CPath path;
    for (int i = 0; i < 3000; ++i) {
        Pt const at(random.Between(0, 1000), random.Between(0, 1000));
        double const size = i == 0 ? 2000 : random.Between(0.1, 30);
        path.MoveTo(at).LineTo(at + Pt(size, 0)).CurveTo(at + Pt(size, size), at + Pt(0, size), at);
        path.ClosePath();
    }
    PreparedOutline const outline(path);
    for (int k = 0; k < 300; ++k) {
        Pt const p = NastyPoint(random, path, [&] { return random.Between(0, 1000); });
        ASSERT_EQ(outline.WindingNumber(p), WindingNumber(path, p)) << p.h << ", " << p.v;
    }
}

TEST(PreparedOutline, AnswersForManyPointsAsForEach) {
    Random random(7);
    PreparedOutline const outline(Path("M0 0 C90 10 -40 50 60 80 S10 90 0 0 Z M20 20 H40 V40 Z"));
    Points points;
    for (int i = 0; i < 500; ++i) {
        points.emplace_back(random.Between(-10, 100), random.Between(-10, 100));
    }
    points[7].h = kNaN;
    std::vector<int> windings(points.size(), 99);
    outline.WindingNumbers(points.data(), points.size(), windings.data());
    bool inside[500];
    for (FillRule const rule : {FillRule::kNonZero, FillRule::kEvenOdd}) {
        outline.Contains(points.data(), points.size(), rule, inside);
        for (std::size_t i = 0; i < points.size(); ++i) {
            EXPECT_EQ(windings[i], outline.WindingNumber(points[i]));
            EXPECT_EQ(inside[i], outline.Contains(points[i], rule));
        }
    }
    outline.WindingNumbers(nullptr, 0, nullptr);
    outline.Contains(nullptr, 0, FillRule::kNonZero, nullptr);
    EXPECT_GT(std::count_if(windings.begin(), windings.end(), [](int w) { return w != 0; }), 50);
}

TEST(PreparedOutline, AnswersInSeveralThreads) {
    Points points;
    for (int i = 0; i < 2000; ++i) {
        points.emplace_back(400 * std::cos(i * kPi / 1000), 400 * std::sin(i * kPi / 1000));
    }
    PreparedOutline const outline(Outline(points, true));
    std::vector<long> inside(4);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < inside.size(); ++t) {
        threads.emplace_back([&, t] {
            PreparedOutline const copy = outline;
            for (int h = -500; h < 500; h += 5) {
                for (int v = -500; v < 500; v += 5) {
                    inside[t] += copy.Contains(Pt(h, v), FillRule::kNonZero) ? 1 : 0;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(inside, std::vector<long>(4, inside[0]));
    EXPECT_NEAR(static_cast<double>(inside[0]), kPi * 80 * 80, 50);
}

TEST(PreparedOutline, TakesTheStatedMemory) {
    Points points;
    for (int i = 0; i < 5000; ++i) {
        points.emplace_back(400 * std::cos(i * kPi / 2500), 400 * std::sin(i * kPi / 2500));
    }
    EXPECT_LE(PreparedOutline(Outline(points, true)).MemorySize(), 5000U * 66);
    EXPECT_LE(PreparedOutline(Outline(points, false)).MemorySize(), 5000U * 34);
    CPath contours;
    for (int i = 0; i < 1000; ++i) {
        contours.MoveTo(Pt(i, 0)).LineTo(Pt(i, 1)).LineTo(Pt(i + 1, 1)).ClosePath();
    }
    EXPECT_LE(PreparedOutline(contours).MemorySize(), 1000U * (3 * 34 + 170));
    for (Shape const& shape : CrowdedShapes()) {
        Points vertices;
        for (std::size_t i = 0; i < 2000; ++i) {
            vertices.push_back(shape.vertex(i, 2000));
        }
        EXPECT_LE(PreparedOutline(Outline(vertices, true)).MemorySize(), 2000U * (48 + 190))
            << shape.name;
        EXPECT_LE(PreparedOutline(Outline(vertices, false)).MemorySize(), 2000U * (16 + 190))
            << shape.name;
    }
}

TEST(PreparedOutline, ThrowsBadAllocWhenMemoryIsShort) {
    Points comb;
    for (int i = 0; i < 60; ++i) {
        comb.emplace_back(i + i % 2 * 60, i % 2 * 90);
    }
    for (CPath const& path :
         {Path("M0 0 C90 10 -40 50 60 80 S10 90 0 0 Z M20 20 H40 V40 Z"), Outline(comb, true)}) {
        for (long allocations = 0;; ++allocations) {
            trammel_test::ShortMemory const memory(allocations);
            try {
                PreparedOutline const outline(path);
                EXPECT_EQ(outline.WindingNumber(Pt(39, 21)), WindingNumber(path, Pt(39, 21)));
                EXPECT_GT(allocations, 3);
                break;
            } catch (std::bad_alloc const&) {
                ASSERT_LT(allocations, 100);
            }
        }
    }
}

TEST(PreparedOutline, AsksWithoutAllocating) {
    PreparedOutline const outline(Path("M0 0 C90 10 -40 50 60 80 S10 90 0 0 Z"));
    std::size_t const before = trammel_test::AllocationCount();
    int sum = 0;
    for (int i = 0; i < 1000; ++i) {
        sum += outline.WindingNumber(Pt(i % 50, i % 70));
    }
    EXPECT_EQ(trammel_test::AllocationCount(), before);
    EXPECT_NE(sum, 0);
}

TEST(PreparedOutline, ContainsWhatCairoFillsOfTheGlyphsOfAFont) {
    if (!std::ifstream(trammel_test::kFont)) {
        GTEST_SKIP() << "there is no " << trammel_test::kFont << "; script/setup demo installs it";
    }
    trammel_test::FontFace const face;
    Random random(3);
    int inside = 0;
    int asked = 0;
    int different = 0;
    for (char32_t c = U'!'; c < U'\u0250'; ++c) {
        trammel_test::CairoGlyphs const glyph(face, c);
        PreparedOutline const outline(glyph.Outline());
        TRect<double> const box = glyph.Outline().Bounds();
        for (int i = 0; i < 20; ++i) {
            Pt const p(random.Between(box.left, box.right), random.Between(box.top, box.bottom));
            for (FillRule const rule : {FillRule::kNonZero, FillRule::kEvenOdd}) {
                bool const contains = outline.Contains(p, rule);
                // Cairo counts in steps of 1/256, so it may err beside the outline.
                bool near = false;
                for (Pt const& d : {Pt(0.02, 0), Pt(-0.02, 0), Pt(0, 0.02), Pt(0, -0.02)}) {
                    near = near || outline.Contains(p + d, rule) != contains;
                }
                if (!near) {
                    ++asked;
                    inside += contains ? 1 : 0;
                    different += glyph.CairoContains(p, rule) != contains ? 1 : 0;
                }
            }
        }
    }
    EXPECT_EQ(different, 0);
    EXPECT_GT(asked, 20000);
    EXPECT_GT(inside, 5000);
}

} // namespace
