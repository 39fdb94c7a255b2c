// SPDX-License-Identifier: MIT

#include "ClipChecks.h"

#include "Int128_p.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace clip_test {

Contour Star(std::size_t vertices, double x, double y, double size, double noise, Dice& dice) {
    Contour contour;
    for (std::size_t i = 0; i < vertices; ++i) {
        double const t = 2 * kPi * static_cast<double>(i) / static_cast<double>(vertices);
        double const r = size * (1 + noise * (dice.Unit() - 0.5));
        contour.push_back({x + r * std::cos(t), y + r * std::sin(t)});
    }
    return contour;
}

void ExpectIdentical(Region const& a, Region const& b) {
    ASSERT_EQ(a.contours.size(), b.contours.size());
    EXPECT_EQ(a.holes, b.holes);
    for (std::size_t i = 0; i < a.contours.size(); ++i) {
        ASSERT_EQ(a.contours[i].size(), b.contours[i].size());
        EXPECT_EQ(std::memcmp(a.contours[i].data(), b.contours[i].data(),
                              a.contours[i].size() * sizeof(Vertex)),
                  0);
    }
}

void ExpectWellFormed(Region const& region) {
    for (std::size_t i = 0; i < region.contours.size(); ++i) {
        Contour const& contour = region.contours[i];
        ASSERT_GE(contour.size(), 3U);
        std::set<std::pair<double, double>> distinct;
        for (std::size_t k = 0; k < contour.size(); ++k) {
            Vertex const before = contour[(k + contour.size() - 1) % contour.size()];
            Vertex const after = contour[(k + 1) % contour.size()];
            EXPECT_FALSE(before.y == contour[k].y && after.y == contour[k].y);
            distinct.insert({contour[k].x, contour[k].y});
        }
        EXPECT_EQ(distinct.size(), contour.size()) << "a vertex twice";
        EXPECT_TRUE(region.holes[i] == 0 || region.holes[i] == 1);
        auto const highest = std::max_element(contour.begin(), contour.end());
        EXPECT_EQ(highest - contour.begin(),
                  region.holes[i] != 0 ? 0 : static_cast<std::ptrdiff_t>(contour.size()) - 1);
    }
}

void ExpectDirections(Region const& region) {
    for (std::size_t i = 0; i < region.contours.size(); ++i) {
        double const area = plain::SignedArea(region.contours[i]);
        EXPECT_TRUE(region.holes[i] != 0 ? area > 0 : area < 0) << i << ": " << area;
    }
}

namespace {

using trammel_detail::Int128;

/// A vertex in units of 2^-42, in which crossings can be tested exactly.
struct IntegerPoint {
    std::int64_t x;
    std::int64_t y;
    bool operator==(IntegerPoint const& p) const { return x == p.x && y == p.y; }
    bool operator<(IntegerPoint const& p) const { return y != p.y ? y < p.y : x < p.x; }
};

IntegerPoint ToInteger(Vertex v) {
    IntegerPoint const p{static_cast<std::int64_t>(std::ldexp(v.x, 42)),
                         static_cast<std::int64_t>(std::ldexp(v.y, 42))};
    EXPECT_EQ(std::ldexp(static_cast<double>(p.x), -42), v.x);
    EXPECT_EQ(std::ldexp(static_cast<double>(p.y), -42), v.y);
    return p;
}

int Side(IntegerPoint a, IntegerPoint b, IntegerPoint c) {
    Int128 const cross =
        static_cast<Int128>(b.x - a.x) * (c.y - a.y) - static_cast<Int128>(b.y - a.y) * (c.x - a.x);
    return (cross > 0) - (cross < 0);
}

/// True when p lies on the segment from a to b and at neither end.
bool Within(IntegerPoint a, IntegerPoint b, IntegerPoint p) {
    if (Side(a, b, p) != 0 || p == a || p == b) {
        return false;
    }
    return std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= p.y &&
           p.y <= std::max(a.y, b.y);
}

/// True when p comes before q in a turn to the left around v that begins at `from`.
bool TurnsFirst(IntegerPoint v, IntegerPoint from, IntegerPoint p, IntegerPoint q) {
    auto const half = [&](IntegerPoint r) {
        int const side = Side(v, from, r);
        return side != 0 ? side < 0 : Within(r, from, v);
    };
    if (half(p) != half(q)) {
        return half(q);
    }
    return Side(v, p, q) > 0;
}

} // namespace

void ExpectNoCrossings(Region const& region) {
    struct Edge {
        IntegerPoint a;
        IntegerPoint b;
    };
    struct Corner {
        IntegerPoint before;
        IntegerPoint after;
    };
    std::vector<Edge> edges;
    std::map<IntegerPoint, std::vector<Corner>> corners;
    for (Contour const& contour : region.contours) {
        std::vector<IntegerPoint> points;
        for (Vertex const& v : contour) {
            points.push_back(ToInteger(v));
        }
        for (std::size_t i = 0; i < points.size(); ++i) {
            IntegerPoint const after = points[(i + 1) % points.size()];
            edges.push_back({points[i], after});
            corners[points[i]].push_back({points[(i + points.size() - 1) % points.size()], after});
        }
    }
    for (std::size_t i = 0; i < edges.size(); ++i) {
        for (std::size_t j = i + 1; j < edges.size(); ++j) {
            Edge const& e = edges[i];
            Edge const& f = edges[j];
            EXPECT_FALSE(Side(e.a, e.b, f.a) * Side(e.a, e.b, f.b) < 0 &&
                         Side(f.a, f.b, e.a) * Side(f.a, f.b, e.b) < 0)
                << "edges cross";
            bool const parallel = Side(e.a, e.b, f.a) == 0 && Side(e.a, e.b, f.b) == 0;
            bool const touchE = Within(e.a, e.b, f.a) || Within(e.a, e.b, f.b);
            bool const touchF = Within(f.a, f.b, e.a) || Within(f.a, f.b, e.b);
            bool const equal = (e.a == f.a && e.b == f.b) || (e.a == f.b && e.b == f.a);
            EXPECT_FALSE(equal || (parallel && (touchE || touchF))) << "edges overlap";
            EXPECT_TRUE(!touchE || e.a.y == e.b.y) << "an edge passes through a vertex";
            EXPECT_TRUE(!touchF || f.a.y == f.b.y) << "an edge passes through a vertex";
        }
    }
    for (auto const& [v, list] : corners) {
        for (std::size_t i = 0; i < list.size(); ++i) {
            for (std::size_t j = i + 1; j < list.size(); ++j) {
                IntegerPoint const from = list[i].before;
                bool const before = TurnsFirst(v, from, list[j].before, list[i].after);
                bool const after = TurnsFirst(v, from, list[j].after, list[i].after);
                EXPECT_EQ(before, after) << "contours cross at a vertex";
            }
        }
    }
}

} // namespace clip_test
