// SPDX-License-Identifier: MIT

#include "SimplifyRings.h"

#include "HausdorffJudge.h"
#ifdef TRAMMEL_TEST_MAPS
#include "CountryOutlines.h"
#endif

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace {

using trammel::NewCrossings;
using trammel::PolygonWithHoles;
using trammel::Ring;
using trammel::SimplifyMap;
using trammel::SimplifyRings;

typedef TPoint<double> Pt;
typedef std::vector<Ring> Rings;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

hausdorff::Elements ElementsOf(Ring const& ring) {
    Ring closed = ring;
    closed.push_back(ring.front());
    return hausdorff::ElementsOf(closed);
}

/// A ring around (0, 0) with a ragged coast on a grid of whole numbers.
Ring Coast(std::mt19937_64& random, int n, double radius, Pt const& center) {
    std::uniform_real_distribution<double> unit(0.7, 1.0);
    Ring ring;
    for (int i = 0; i < n; ++i) {
        double const a = 2 * 3.14159265358979323846 * i / n;
        double const r = radius * unit(random);
        ring.push_back(center + Pt(std::round(r * std::cos(a)), std::round(r * std::sin(a))));
    }
    return ring;
}

struct Edge {
    Pt a;
    Pt b;
};

/// All edges. An edge that several rings share is there once.
std::vector<Edge> EdgesOf(Rings const& rings) {
    std::set<std::pair<std::pair<double, double>, std::pair<double, double>>> edges;
    for (Ring const& ring : rings) {
        for (std::size_t i = 0; i < ring.size(); ++i) {
            Pt a = ring[i];
            Pt b = ring[(i + 1) % ring.size()];
            if (a == b) {
                continue;
            }
            if (std::make_pair(b.h, b.v) < std::make_pair(a.h, a.v)) {
                std::swap(a, b);
            }
            edges.insert({{a.h, a.v}, {b.h, b.v}});
        }
    }
    std::vector<Edge> list;
    for (auto const& [a, b] : edges) {
        list.push_back({Pt(a.first, a.second), Pt(b.first, b.second)});
    }
    return list;
}

/// How many pairs of edges meet, other than in a common end; for coordinates that are multiples of
/// 2^-20 below 2^10. Exact, as the products of whole numbers below have 62 bits.
long MeetingsOf(std::vector<Edge> const& edges) {
    struct Whole {
        std::int64_t h;
        std::int64_t v;
        bool operator==(Whole const& o) const { return h == o.h && v == o.v; }
    };
    auto const whole = [](Pt const& p) {
        return Whole{static_cast<std::int64_t>(p.h * 0x1p20),
                     static_cast<std::int64_t>(p.v * 0x1p20)};
    };
    auto const side = [](Whole const& a, Whole const& b, Whole const& c) {
        std::int64_t const cross = (b.h - a.h) * (c.v - a.v) - (b.v - a.v) * (c.h - a.h);
        return (cross > 0) - (cross < 0);
    };
    auto const within = [](Whole const& a, Whole const& b, Whole const& p) {
        return std::min(a.h, b.h) <= p.h && p.h <= std::max(a.h, b.h) &&
               std::min(a.v, b.v) <= p.v && p.v <= std::max(a.v, b.v);
    };
    auto const isOn = [&](Whole const& a, Whole const& b, Whole const& p) {
        return !(p == a) && !(p == b) && side(a, b, p) == 0 && within(a, b, p);
    };
    std::vector<std::array<Whole, 2>> lines;
    for (Edge const& e : edges) {
        lines.push_back({whole(e.a), whole(e.b)});
        if (lines.back()[1].h < lines.back()[0].h) {
            std::swap(lines.back()[0], lines.back()[1]);
        }
    }
    std::sort(lines.begin(), lines.end(),
              [](auto const& x, auto const& y) { return x[0].h < y[0].h; });
    long count = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        auto const& [a, b] = lines[i];
        for (std::size_t j = i + 1; j < lines.size() && lines[j][0].h <= b.h; ++j) {
            auto const& [c, d] = lines[j];
            if (std::max(a.v, b.v) < std::min(c.v, d.v) ||
                std::max(c.v, d.v) < std::min(a.v, b.v)) {
                continue;
            }
            bool const crosses =
                side(a, b, c) * side(a, b, d) < 0 && side(c, d, a) * side(c, d, b) < 0;
            count +=
                crosses || isOn(a, b, c) || isOn(a, b, d) || isOn(c, d, a) || isOn(c, d, b) ? 1 : 0;
        }
    }
    return count;
}

TEST(SimplifyRings, KeepsTheDistanceThatItReturnsAndItIsWithinTheTolerance) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 60; ++i) {
        Rings const rings = {Coast(random, 3 + i * 10, 300, Pt(0, 0))};
        double const tolerance = std::pow(10.0, 2 - 0.05 * i);
        for (NewCrossings const crossings : {NewCrossings::kAllow, NewCrossings::kAvoid}) {
            Rings simple;
            double const kept = SimplifyRings(rings, tolerance, crossings, simple);
            EXPECT_LE(kept, tolerance);
            ASSERT_EQ(simple.size(), 1U);
            EXPECT_TRUE(hausdorff::Keeps(ElementsOf(rings[0]), ElementsOf(simple[0]), kept)) << i;
        }
    }
}

TEST(SimplifyRings, KeepsASubsetOfTheVerticesInOrder) {
    std::mt19937_64 random(2);
    Ring ring = Coast(random, 500, 300, Pt(0, 0));
    Rings simple;
    SimplifyRings({ring}, 10, NewCrossings::kAllow, simple);
    EXPECT_LT(simple[0].size(), 400U);
    EXPECT_GT(simple[0].size(), 10U);
    auto const begin = std::find(ring.begin(), ring.end(), simple[0][0]);
    ASSERT_NE(begin, ring.end());
    std::rotate(ring.begin(), begin, ring.end());
    auto at = ring.begin();
    for (Pt const& p : simple[0]) {
        at = std::find(at, ring.end(), p);
        ASSERT_NE(at, ring.end());
    }
}

TEST(SimplifyRings, KeepsTheCommonBorderOfNeighbours) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> unit(-1, 1);
    Ring left = {Pt(0, 0)};
    Ring right = {Pt(100, 100), Pt(100, 0)};
    std::vector<Pt> border;
    for (int i = 0; i <= 400; ++i) {
        border.push_back(Pt(50 + unit(random), i * 0.25));
    }
    left.insert(left.end(), border.begin(), border.end());
    left.push_back(Pt(0, 100));
    right.insert(right.end(), border.begin(), border.end());
    Rings simple;
    SimplifyRings({left, right}, 1.0, NewCrossings::kAllow, simple);
    auto const shared = [&](Ring const& ring) {
        std::set<std::pair<double, double>> points;
        for (Pt const& p : ring) {
            if (p.h > 1 && p.h < 99) {
                points.insert({p.h, p.v});
            }
        }
        return points;
    };
    EXPECT_EQ(shared(simple[0]), shared(simple[1]));
    EXPECT_LT(simple[0].size(), 300U);
    // The ends of the border are nodes, which stay.
    EXPECT_EQ(shared(simple[0]).count({border.front().h, border.front().v}), 1U);
    EXPECT_EQ(shared(simple[0]).count({border.back().h, border.back().v}), 1U);
}

TEST(SimplifyRings, SimplifiesEqualRingsAlikeWhereverTheyBeginAndWhicheverWayTheyRun) {
    std::mt19937_64 random(4);
    Ring const ring = Coast(random, 300, 300, Pt(0, 0));
    Ring turned = ring;
    std::rotate(turned.begin(), turned.begin() + 77, turned.end());
    Ring reversed(turned.rbegin(), turned.rend());
    Rings simple;
    SimplifyRings({ring, turned, reversed}, 5, NewCrossings::kAvoid, simple);
    EXPECT_EQ(simple[0], simple[1]);
    std::reverse(simple[2].begin(), simple[2].end());
    std::rotate(simple[2].begin(), std::find(simple[2].begin(), simple[2].end(), simple[0][0]),
                simple[2].end());
    EXPECT_EQ(simple[0], simple[2]);
}

TEST(SimplifyRings, LetsNothingCrossOrTouchAnew) {
    std::mt19937_64 random(5);
    long mended = 0;
    for (int i = 0; i < 40; ++i) {
        // A coast, and islands close to it
        Rings rings = {Coast(random, 200, 300, Pt(0, 0))};
        for (int k = 0; k < 30; ++k) {
            double const a = static_cast<double>(random() % 1000);
            rings.push_back(Coast(
                random, 12, 12, Pt(std::round(290 * std::cos(a)), std::round(290 * std::sin(a)))));
        }
        long const before = MeetingsOf(EdgesOf(rings));
        Rings loose;
        Rings tight;
        double const tolerance = 2.0 + i;
        SimplifyRings(rings, tolerance, NewCrossings::kAllow, loose);
        double const kept = SimplifyRings(rings, tolerance, NewCrossings::kAvoid, tight);
        EXPECT_LE(kept, tolerance);
        EXPECT_LE(MeetingsOf(EdgesOf(tight)), before) << i;
        mended += MeetingsOf(EdgesOf(loose)) > MeetingsOf(EdgesOf(tight)) ? 1 : 0;
    }
    EXPECT_GT(mended, 5);
    // A spiral whose turns are closer than the tolerance
    Ring spiral;
    for (int i = 0; i < 400; ++i) {
        spiral.push_back(Pt(i * std::cos(i * 0.1), i * std::sin(i * 0.1)) * 0.5);
    }
    for (int i = 399; i >= 0; --i) {
        spiral.push_back(Pt((i + 20) * std::cos(i * 0.1), (i + 20) * std::sin(i * 0.1)) * 0.5);
    }
    for (Pt& p : spiral) {
        p = Pt(std::round(p.h * 1024) / 1024, std::round(p.v * 1024) / 1024);
    }
    ASSERT_EQ(MeetingsOf(EdgesOf({spiral})), 0);
    for (double const tolerance : {0.1, 1.0, 10.0, 100.0, 1e9}) {
        Rings simple;
        SimplifyRings({spiral}, tolerance, NewCrossings::kAvoid, simple);
        EXPECT_EQ(MeetingsOf(EdgesOf(simple)), 0) << tolerance;
    }
}

TEST(SimplifyRings, LetsNothingCrossAmongLongSlantingNeedlesBesideEachOther) {
    std::mt19937_64 random(8);
    auto const below = [&](std::uint64_t n) { return static_cast<double>(random() % n); };
    long mended = 0;
    for (int i = 0; i < 12; ++i) {
        // Bent needles beside each other, with islands in the bends. All boxes meet.
        Pt const along(0.25 * (3 + i), 0.25 * (14 - i));
        Pt const across(0.0625 * (i - 14), 0.0625 * (3 + i));
        Rings rings;
        for (int k = 0; k < 60; ++k) {
            Pt const base = across * (8 * k);
            double const half = 20 + below(3);
            Pt const middle = base + along * half;
            rings.push_back(
                {base, middle + across * 6, base + along * (2 * half), middle + across * 4.5});
            rings.push_back(
                {middle - across, middle + across * (2 + below(2)), middle + along - across});
        }
        EXPECT_EQ(0, MeetingsOf(EdgesOf(rings))) << i;
        Rings loose;
        Rings tight;
        SimplifyRings(rings, 6.0, NewCrossings::kAllow, loose);
        SimplifyRings(rings, 6.0, NewCrossings::kAvoid, tight);
        EXPECT_EQ(0, MeetingsOf(EdgesOf(tight))) << i;
        mended += MeetingsOf(EdgesOf(loose)) > 0 ? 1 : 0;
    }
    EXPECT_GT(mended, 5);
}

TEST(SimplifyRings, LetsLinesCrossWhosePiecesOfManyEdgesDo) {
    // Two bars with serrated sides, one across the other
    Rings rings(2);
    for (int i = -100; i <= 100; ++i) {
        rings[0].push_back(Pt(i, i % 2 == 0 ? -5 : -4));
        rings[1].push_back(Pt(i % 2 == 0 ? 5 : 4, i + 0.5));
    }
    for (int i = 100; i >= -100; --i) {
        rings[0].push_back(Pt(i, i % 2 == 0 ? 5 : 4));
        rings[1].push_back(Pt(i % 2 == 0 ? -5 : -4, i + 0.5));
    }
    SimplifyRings(rings, 2.0, NewCrossings::kAvoid, rings);
    EXPECT_EQ((Rings{{Pt(-100, -5), Pt(100, -5), Pt(100, 5), Pt(-100, 5)},
                     {Pt(-5, -99.5), Pt(5, -99.5), Pt(5, 100.5), Pt(-5, 100.5)}}),
              rings);
}

/// How often a ring of whole coordinates winds around a point that is not on it.
int WindingOf(Ring const& ring, Pt const& p) {
    int winding = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        Pt const a = ring[i] - p;
        Pt const b = ring[(i + 1) % ring.size()] - p;
        double const cross = a.h * b.v - a.v * b.h; // exact
        winding += a.v <= 0 && b.v > 0 && cross > 0 ? 1 : 0;
        winding -= a.v > 0 && b.v <= 0 && cross < 0 ? 1 : 0;
    }
    return winding;
}

/// Twice the signed area of a ring.
[[maybe_unused]] double AreaOf(Ring const& ring) {
    double area = 0.0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        Pt const a = ring[i] - ring[0];
        Pt const b = ring[(i + 1) % ring.size()] - ring[0];
        area += a.h * b.v - a.v * b.h;
    }
    return area;
}

TEST(SimplifyRings, LetsNoRingComeToTheOtherSide) {
    std::mt19937_64 random(12);
    std::uniform_real_distribution<double> unit(0, 1);
    int moved = 0;
    int apart = 0;
    for (int i = 0; i < 40; ++i) {
        Ring const coast = Coast(random, 300, 3000, Pt(0, 0));
        Rings rings = {coast};
        for (int k = 0; k < 40; ++k) {
            double const a = 6.283 * unit(random);
            double const r = 2000 + 1100 * unit(random);
            Ring const island =
                Coast(random, 5, 6, Pt(std::round(r * std::cos(a)), std::round(r * std::sin(a))));
            if (MeetingsOf(EdgesOf({coast, island})) == 0) {
                rings.push_back(island);
            }
        }
        // The same coast once more with another border to share, so that it is no longer one arc
        rings.push_back({coast[10], coast[11], coast[12], coast[13], Pt(5000, 5000)});
        double const tolerance = 20.0 * (i + 1);
        Rings loose;
        Rings tight;
        SimplifyRings(rings, tolerance, NewCrossings::kAllow, loose);
        SimplifyRings(rings, tolerance, NewCrossings::kAvoid, tight);
        for (std::size_t k = 1; k + 1 < rings.size(); ++k) {
            int const before = WindingOf(coast, rings[k][0]);
            for (Pt const& p : tight[k]) {
                EXPECT_EQ(WindingOf(tight[0], p), before) << i << ", " << k;
            }
            moved += WindingOf(loose[0], loose[k][0]) != before ? 1 : 0;
            ++apart;
        }
    }
    EXPECT_GT(moved, 100);
    EXPECT_GT(apart, 1000);
    // A cape that turns back around a bay with an island, all of it within the tolerance
    Ring const cape = {Pt(0, 0),   Pt(100, 0),  Pt(100, -40), Pt(46, -40), Pt(46, -4),
                       Pt(50, -4), Pt(50, -36), Pt(90, -36),  Pt(90, -80), Pt(0, -80)};
    Ring const island = {Pt(47, -6), Pt(49, -6), Pt(48, -8)};
    Rings simple;
    SimplifyRings({cape, island}, 50, NewCrossings::kAvoid, simple);
    EXPECT_EQ(WindingOf(simple[0], Pt(47, -6)), WindingOf(cape, Pt(47, -6)));
}

TEST(SimplifyRings, KeepsThreeVerticesOfEachRingAndItsRepeatedFirstOne) {
    std::mt19937_64 random(6);
    Ring ring = Coast(random, 50, 10, Pt(0, 0));
    Ring closed = ring;
    closed.push_back(ring.front());
    for (NewCrossings const crossings : {NewCrossings::kAllow, NewCrossings::kAvoid}) {
        Rings simple;
        SimplifyRings({ring, closed, {Pt(100, 1), Pt(102, 3)}}, kInfinity, crossings, simple);
        EXPECT_EQ(simple[0].size(), 3U);
        EXPECT_EQ(simple[1].size(), 4U);
        EXPECT_EQ(simple[1].front(), simple[1].back());
        EXPECT_EQ(simple[2].size(), 2U);
    }
    // Two rings with one border and little else
    Ring const half = {Pt(0, 0), Pt(1, 0.1), Pt(2, 0)};
    Ring const other = {Pt(0, 0), Pt(1, -0.1), Pt(2, 0)};
    Rings simple;
    SimplifyRings({half, other}, 10, NewCrossings::kAllow, simple);
    EXPECT_EQ(simple[0].size(), 3U);
    EXPECT_EQ(simple[1].size(), 3U);
}

TEST(SimplifyRings, KeepsEveryVertexAtToleranceZeroAndLeavesOutThoseThatAreNotFinite) {
    Ring const ring = {Pt(0, 0), Pt(1, 0), Pt(2, 0), Pt(2, 2)};
    for (double const tolerance : {0.0, -1.0, kNaN}) {
        Rings simple;
        EXPECT_EQ(SimplifyRings({ring}, tolerance, NewCrossings::kAvoid, simple), 0.0);
        EXPECT_EQ(simple[0], ring);
    }
    Rings rings = {{},
                   {Pt(kNaN, 1), Pt(kInfinity, 2), Pt(kInfinity, 2)},
                   {Pt(3, 3), Pt(3, 3)},
                   {Pt(0, 0), Pt(kNaN, 0), Pt(1, 0), Pt(1, 0), Pt(kInfinity, 3), Pt(2, 5)}};
    SimplifyRings(rings, 0.5, NewCrossings::kAvoid, rings);
    EXPECT_TRUE(rings[0].empty());
    EXPECT_TRUE(rings[1].empty());
    EXPECT_EQ(rings[2], (Ring{Pt(3, 3), Pt(3, 3)}));
    EXPECT_EQ(rings[3], (Ring{Pt(0, 0), Pt(1, 0), Pt(2, 5)}));
}

TEST(SimplifyRings, TakesCoordinatesOfAnyMagnitude) {
    std::mt19937_64 random(7);
    Ring const ring = Coast(random, 300, 300, Pt(0, 0));
    Rings simple;
    double const kept = SimplifyRings({ring}, 5, NewCrossings::kAvoid, simple);
    for (int const exponent : {-1000, -500, 100, 500, 1000}) {
        double const scale = std::ldexp(1.0, exponent);
        Rings scaled = {ring};
        for (Pt& p : scaled[0]) {
            p *= scale;
        }
        EXPECT_EQ(SimplifyRings(scaled, 5 * scale, NewCrossings::kAvoid, scaled), kept * scale);
        ASSERT_EQ(scaled[0].size(), simple[0].size()) << exponent;
        for (std::size_t i = 0; i < simple[0].size(); ++i) {
            EXPECT_EQ(scaled[0][i], simple[0][i] * scale);
        }
    }
    Rings wild = {{Pt(1e308, -1e308), Pt(5e-324, 1), Pt(-1e308, 3), Pt(0, 1e308), Pt(1e-300, 2)}};
    for (double const tolerance : {1.0, 1e300, 1e308}) {
        Rings out;
        EXPECT_LE(SimplifyRings(wild, tolerance, NewCrossings::kAvoid, out), tolerance);
        EXPECT_GE(out[0].size(), 3U);
    }
}

TEST(SimplifyRings, KeepsTheDistanceOfSmallRingsBesideHugeOnes) {
    Ring const small = {Pt(0, 0), Pt(10, 3), Pt(20, 0), Pt(20, 20), Pt(0, 20)};
    Ring const huge = {Pt(-1e300, -1e300), Pt(1e300, -1e300), Pt(0, 1e300)};
    Rings simple;
    EXPECT_EQ(SimplifyRings({small, huge}, 0.5, NewCrossings::kAvoid, simple), 0.0);
    EXPECT_EQ(simple[0].size(), 5U);
    double const kept = SimplifyRings({small, huge}, 4.0, NewCrossings::kAvoid, simple);
    EXPECT_EQ(simple[0].size(), 4U);
    EXPECT_NEAR(kept, 3.0, 1e-12);
}

TEST(SimplifyMap, SimplifiesOuterRingsAndHolesTogether) {
    std::mt19937_64 random(8);
    Ring const lake = Coast(random, 300, 50, Pt(0, 0));
    std::vector<PolygonWithHoles> map = {{Coast(random, 300, 300, Pt(0, 0)), {lake}}, {lake, {}}};
    double const kept = SimplifyMap(map, 3, NewCrossings::kAvoid, map);
    EXPECT_LE(kept, 3.0);
    ASSERT_EQ(map.size(), 2U);
    ASSERT_EQ(map[0].holes.size(), 1U);
    EXPECT_EQ(map[0].holes[0], map[1].outer);
    EXPECT_TRUE(map[1].holes.empty());
    EXPECT_LT(map[1].outer.size(), 250U);
    EXPECT_TRUE(hausdorff::Keeps(ElementsOf(lake), ElementsOf(map[1].outer), kept));
}

#ifdef TRAMMEL_TEST_MAPS

TEST(SimplifyMap, KeepsTheBordersOfAllCountriesAndLetsNothingCrossAnew) {
    for (char const* name : {"countries-110m.json", "countries-50m.json"}) {
        std::vector<PolygonWithHoles> map;
        Rings before;
        for (Ring const& contour : trammel_test::CountriesOf(name)) {
            Ring ring;
            for (Pt const& p : contour) {
                ring.push_back(
                    Pt(std::round(p.h * 0x1p20) / 0x1p20, std::round(p.v * 0x1p20) / 0x1p20));
            }
            map.push_back({ring, {}});
            before.push_back(ring);
        }
        if (map.empty()) {
            GTEST_SKIP() << "no " << name << " (script/setup maps fetches it)";
        }
        std::vector<Edge> const edgesBefore = EdgesOf(before);
        long const meetingsBefore = MeetingsOf(edgesBefore);
        for (double const tolerance : {0.05, 0.5, 3.0}) {
            std::vector<PolygonWithHoles> simple;
            double const kept = SimplifyMap(map, tolerance, NewCrossings::kAvoid, simple);
            EXPECT_LE(kept, tolerance);
            Rings after;
            std::size_t count = 0;
            for (std::size_t i = 0; i < map.size(); ++i) {
                after.push_back(simple[i].outer);
                count += simple[i].outer.size();
                if (i % 20 == 0) {
                    EXPECT_TRUE(hausdorff::Keeps(ElementsOf(before[i]), ElementsOf(after[i]), kept))
                        << i;
                }
            }
            // No country is turned over or becomes flat, however thin it is.
            auto const sign = [](double area) { return (area > 0.0) - (area < 0.0); };
            for (std::size_t i = 0; i < map.size(); ++i) {
                EXPECT_EQ(sign(AreaOf(before[i])), sign(AreaOf(after[i]))) << name << " " << i;
            }
            std::vector<Edge> const edges = EdgesOf(after);
            EXPECT_LE(MeetingsOf(edges), meetingsBefore) << tolerance;
            EXPECT_LT(edges.size(), edgesBefore.size());
            // Common borders are still common.
            EXPECT_LT(edges.size(), count);
        }
    }
}

#endif

} // namespace
