// SPDX-License-Identifier: MIT

#include "PolygonWithHoles.h"

#include "Winding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace {

using trammel::AreaMoments;
using trammel::Contains;
using trammel::FillRule;
using trammel::PolygonWithHoles;
using trammel::Ring;

typedef TPoint<double> Pt;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr FillRule kRules[] = {FillRule::kNonZero, FillRule::kEvenOdd};

Ring Rectangle(double left, double top, double right, double bottom) {
    return {Pt(left, top), Pt(right, top), Pt(right, bottom), Pt(left, bottom)};
}

Ring Reversed(Ring ring) {
    std::reverse(ring.begin(), ring.end());
    return ring;
}

/// A square of 10 with two square holes of 2 and 3.
PolygonWithHoles Sieve() {
    return {Rectangle(0, 0, 10, 10), {Rectangle(1, 1, 3, 3), Rectangle(5, 5, 8, 8)}};
}

/// The same with every combination of directions.
std::vector<PolygonWithHoles> SievesOfAllDirections() {
    std::vector<PolygonWithHoles> sieves;
    for (unsigned turned = 0; turned < 8; ++turned) {
        PolygonWithHoles sieve = Sieve();
        sieve.outer = (turned & 1U) != 0 ? Reversed(sieve.outer) : sieve.outer;
        sieve.holes[0] = (turned & 2U) != 0 ? Reversed(sieve.holes[0]) : sieve.holes[0];
        sieve.holes[1] = (turned & 4U) != 0 ? Reversed(sieve.holes[1]) : sieve.holes[1];
        sieves.push_back(sieve);
    }
    return sieves;
}

TEST(PolygonWithHoles, HasTheAreaOfItsOuterRingLessItsHoles) {
    for (PolygonWithHoles const& sieve : SievesOfAllDirections()) {
        EXPECT_EQ(Area(sieve), 87);
        EXPECT_EQ(MomentsOf(sieve).area, 87);
    }
}

TEST(PolygonWithHoles, HasTheCentroidAndTheMomentsOfWhatIsLeft) {
    for (PolygonWithHoles const& sieve : SievesOfAllDirections()) {
        AreaMoments const moments = MomentsOf(sieve);
        double const h = (100 * 5.0 - 4 * 2.0 - 9 * 6.5) / 87;
        EXPECT_NEAR(moments.centroid.h, h, 1e-14);
        EXPECT_NEAR(moments.centroid.v, h, 1e-14);
        // The integrals of h² about the origin: (b³ - a³) / 3 times the height.
        double const second = 1000 / 3.0 * 10 - 26 / 3.0 * 2 - (512 - 125) / 3.0 * 3;
        EXPECT_NEAR(moments.hh, second - 87 * h * h, 1e-10);
        EXPECT_NEAR(moments.vv, second - 87 * h * h, 1e-10);
        double const mixed = 50.0 * 50.0 - 4.0 * 4.0 - 19.5 * 19.5;
        EXPECT_NEAR(moments.hv, mixed - 87 * h * h, 1e-10);
    }
}

TEST(PolygonWithHoles, ContainsWhatIsInTheOuterRingAndInNoHoleWhicheverWayTheRingsRun) {
    for (PolygonWithHoles const& sieve : SievesOfAllDirections()) {
        for (FillRule const rule : kRules) {
            EXPECT_TRUE(Contains(sieve, Pt(0.5, 0.5), rule));
            EXPECT_TRUE(Contains(sieve, Pt(4, 4), rule));
            EXPECT_FALSE(Contains(sieve, Pt(2, 2), rule));
            EXPECT_FALSE(Contains(sieve, Pt(6, 7), rule));
            EXPECT_FALSE(Contains(sieve, Pt(11, 4), rule));
            EXPECT_FALSE(Contains(sieve, Pt(kNaN, 4), rule));
            EXPECT_FALSE(Contains(sieve, Pt(4, kInfinity), rule));
        }
    }
}

TEST(PolygonWithHoles, AppliesTheRuleToEachRing) {
    Ring const pentagram = {Pt(0, -10), Pt(5.878, 8.090), Pt(-9.511, -3.090), Pt(9.511, -3.090),
                            Pt(-5.878, 8.090)};
    PolygonWithHoles const star = {pentagram, {}};
    EXPECT_TRUE(Contains(star, Pt(0, 0), FillRule::kNonZero));
    EXPECT_FALSE(Contains(star, Pt(0, 0), FillRule::kEvenOdd));
    PolygonWithHoles const cut = {Rectangle(-20, -20, 20, 20), {pentagram}};
    EXPECT_FALSE(Contains(cut, Pt(0, 0), FillRule::kNonZero));
    EXPECT_TRUE(Contains(cut, Pt(0, 0), FillRule::kEvenOdd));
}

TEST(PolygonWithHoles, HasNothingWithoutVertices) {
    PolygonWithHoles none;
    EXPECT_EQ(Area(none), 0);
    EXPECT_TRUE(std::isnan(MomentsOf(none).centroid.h));
    EXPECT_EQ(Bounds(none), TRect<double>());
    EXPECT_FALSE(Contains(none, Pt(0, 0), FillRule::kNonZero));
    EXPECT_TRUE(PathOf(none).mCtls.empty());
    OrientRings(none);
    EXPECT_TRUE(none.outer.empty());
    none.holes.resize(2);
    none.holes[0] = {Pt(1, 1)};
    OrientRings(none);
    EXPECT_EQ(Area(none), 0);
}

TEST(PolygonWithHoles, BoundsAreThoseOfTheOuterRingWithAVertexAtTheOrigin) {
    EXPECT_EQ(
        Bounds(PolygonWithHoles{{Pt(0, 0), Pt(4, -3), Pt(9, 2)}, {Rectangle(-5, -5, 50, 50)}}),
        TRect<double>(0, -3, 9, 2));
    EXPECT_EQ(Bounds(PolygonWithHoles{{Pt(0, 0), Pt(4, 1), Pt(9, 2)}, {}}),
              TRect<double>(0, 0, 9, 2));
    TRect<double> const bad = Bounds(PolygonWithHoles{{Pt(0, 0), Pt(4, kNaN), Pt(9, 2)}, {}});
    EXPECT_TRUE(std::isnan(bad.left) && std::isnan(bad.right));
    EXPECT_TRUE(std::isnan(Bounds(PolygonWithHoles{{Pt(0, -kInfinity)}, {}}).top));
}

TEST(PolygonWithHoles, ARingThatIsNotFiniteBoundsNothing) {
    for (double const bad : {kNaN, kInfinity, -kInfinity}) {
        PolygonWithHoles sieve = Sieve();
        sieve.holes[0][1].v = bad;
        EXPECT_TRUE(Contains(sieve, Pt(2, 2), FillRule::kNonZero));
        EXPECT_FALSE(Contains(sieve, Pt(6, 7), FillRule::kNonZero));
        EXPECT_FALSE(std::isfinite(Area(sieve)));
        sieve.outer[0].h = bad;
        EXPECT_FALSE(Contains(sieve, Pt(4, 4), FillRule::kNonZero));
        OrientRings(sieve);
        EXPECT_EQ(sieve.outer.size(), 4U);
    }
}

TEST(PolygonWithHoles, OrientRingsTurnsTheOuterRingOneWayAndTheHolesTheOther) {
    for (PolygonWithHoles sieve : SievesOfAllDirections()) {
        Pt const first = sieve.outer[0];
        OrientRings(sieve);
        EXPECT_EQ(trammel::SignedArea(sieve.outer), 100);
        EXPECT_EQ(trammel::SignedArea(sieve.holes[0]), -4);
        EXPECT_EQ(trammel::SignedArea(sieve.holes[1]), -9);
        EXPECT_EQ(sieve.outer[0], first);
        // So the rings are one outline, which both rules fill alike.
        CPath const path = PathOf(sieve);
        EXPECT_EQ(trammel::SignedArea(path), 87);
        for (double h = -0.5; h < 11; h += 1) {
            for (double v = -0.5; v < 11; v += 1) {
                for (FillRule const rule : kRules) {
                    EXPECT_EQ(trammel::Contains(path, Pt(h, v), rule),
                              Contains(sieve, Pt(h, v), rule));
                }
            }
        }
    }
}

TEST(PolygonWithHoles, PathOfHasAClosedSubpathForEachRing) {
    PolygonWithHoles sieve = Sieve();
    sieve.outer.push_back(sieve.outer.front()); // a repeated vertex
    sieve.holes.insert(sieve.holes.begin(), Ring());
    CPath const path = PathOf(sieve);
    EXPECT_EQ(std::count(path.mCtls.begin(), path.mCtls.end(), char{kPathMove}), 3);
    EXPECT_EQ(std::count(path.mCtls.begin(), path.mCtls.end(), char{kPathClose}), 3);
    EXPECT_EQ(trammel::ContourAreas(path), (std::vector<double>{100, 4, 9}));
}

#ifdef __SIZEOF_INT128__ // compilers for 32-bit x86 have none
__extension__ typedef __int128 Int128;

/// Twice the area of a ring whose coordinates are integers, exactly.
Int128 TwiceTheArea(Ring const& ring) {
    Int128 sum = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        Pt const& a = ring[i];
        Pt const& b = ring[i + 1 < ring.size() ? i + 1 : 0];
        sum += static_cast<Int128>(a.h) * static_cast<Int128>(b.v) -
               static_cast<Int128>(a.v) * static_cast<Int128>(b.h);
    }
    return sum < 0 ? -sum : sum;
}

/// The winding number of a ring around a point on no edge, all integers, exactly.
int ExactWinding(Ring const& ring, Pt const& p, bool& onEdge) {
    int winding = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        Pt const a = ring[i] - p;
        Pt const b = ring[i + 1 < ring.size() ? i + 1 : 0] - p;
        Int128 const cross = static_cast<Int128>(a.h) * static_cast<Int128>(b.v) -
                             static_cast<Int128>(a.v) * static_cast<Int128>(b.h);
        bool const between = std::min(a.h, b.h) <= 0 && std::max(a.h, b.h) >= 0 &&
                             std::min(a.v, b.v) <= 0 && std::max(a.v, b.v) >= 0;
        onEdge = onEdge || (cross == 0 && between);
        if (a.v <= 0 && b.v > 0 && cross > 0) {
            ++winding;
        } else if (a.v > 0 && b.v <= 0 && cross < 0) {
            --winding;
        }
    }
    return winding;
}

TEST(PolygonWithHoles, AgreesWithExactArithmeticOnRandomRings) {
    std::mt19937_64 random(20261122);
    int asked = 0;
    int inside = 0;
    for (int i = 0; i < 400; ++i) {
        std::uint64_t const extent = std::uint64_t{1} << (4 + random() % 40);
        double const far = static_cast<double>(random() % 3) * 0x1p45;
        auto const number = [&] { return far + static_cast<double>(random() % extent); };
        auto const ring = [&] {
            Ring r;
            for (std::uint64_t n = 0; n < 3 + random() % 9; ++n) {
                r.emplace_back(number(), number());
            }
            return r;
        };
        PolygonWithHoles polygon = {ring(), {}};
        Int128 twice = TwiceTheArea(polygon.outer);
        double length = 0;
        auto const measure = [&](Ring const& r) {
            for (std::size_t k = 0; k < r.size(); ++k) {
                length += (r[k] - r[k + 1 < r.size() ? k + 1 : 0]).Hypotenuse();
            }
        };
        measure(polygon.outer);
        for (std::uint64_t holes = random() % 3; holes > 0; --holes) {
            polygon.holes.push_back(ring());
            twice -= TwiceTheArea(polygon.holes.back());
            measure(polygon.holes.back());
        }
        auto const exact = static_cast<long double>(twice) / 2;
        double const bound = 0x1p-46 * length * static_cast<double>(extent);
        for (double const area : {Area(polygon), MomentsOf(polygon).area}) {
            auto const off = std::abs(static_cast<long double>(area) - exact);
            ASSERT_LE(static_cast<double>(off), bound) << i;
        }
        for (int k = 0; k < 20; ++k) {
            Pt const p(number(), number());
            bool onEdge = false;
            int const outer = ExactWinding(polygon.outer, p, onEdge);
            std::vector<int> holes;
            for (Ring const& hole : polygon.holes) {
                holes.push_back(ExactWinding(hole, p, onEdge));
            }
            if (onEdge) {
                continue;
            }
            for (FillRule const rule : kRules) {
                bool const expected = trammel::IsInside(outer, rule) &&
                                      std::none_of(holes.begin(), holes.end(), [&](int w) {
                                          return trammel::IsInside(w, rule);
                                      });
                ASSERT_EQ(Contains(polygon, p, rule), expected) << i << " " << k;
                ++asked;
                inside += expected ? 1 : 0;
            }
        }
    }
    EXPECT_GT(asked, 10000);
    EXPECT_GT(inside, 1500);
}
#endif

} // namespace
