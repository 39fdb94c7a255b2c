// SPDX-License-Identifier: MIT

// Pairs of near edges where boxes cannot tell edges apart.
#include "EdgeSplit_p.h"

#include "plain/ClipCorpus.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using plain::Dice;
using trammel_detail::EdgePair;
using trammel_detail::GridEdge;
using trammel_detail::GridPoint;
using trammel_detail::kCopy;
using trammel_detail::ScratchVector;

typedef ScratchVector<GridEdge> Edges;

double const kTurn = 6.283185307179586;

GridPoint At(double x, double y) {
    return {static_cast<std::int64_t>(x * 0x1p58), static_cast<std::int64_t>(y * 0x1p58)};
}

GridPoint Polar(double radius, double angle) {
    return At(radius * std::cos(angle), radius * std::sin(angle));
}

void AddRing(std::vector<GridPoint> const& ring, Edges& edges) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
        edges.push_back({ring[i], ring[i + 1 < ring.size() ? i + 1 : 0]});
    }
}

/// About `count` edges of a kind of drawing in which the boxes of very many edges meet, but few
/// edges do.
Edges DrawingOf(std::string const& kind, int count) {
    Edges edges;
    Dice dice(3);
    std::vector<GridPoint> ring;
    if (kind == "strips") {
        for (int i = 0; i < count / 4; ++i) {
            double const at = 4.0 * i / count - 0.5;
            double const side = 2.0 / count;
            AddRing({At(-0.7 - at, -0.7 + at), At(0.7 - at, 0.7 + at),
                     At(0.7 - at - side, 0.7 + at + side), At(-0.7 - at - side, -0.7 + at + side)},
                    edges);
        }
    } else if (kind == "turned squares") {
        for (int i = 0; i < count / 4; ++i) {
            double const radius = 1 - 4.0 * i / count;
            AddRing({Polar(radius, 0.5), Polar(radius, 0.5 + kTurn / 4),
                     Polar(radius, 0.5 + kTurn / 2), Polar(radius, 0.5 + kTurn * 3 / 4)},
                    edges);
        }
    } else if (kind == "star twice") {
        for (int i = 0; i < count / 2; ++i) {
            ring.push_back(Polar(0.3 + 0.7 * dice.Unit(), kTurn * i / (count / 2)));
        }
        AddRing(ring, edges);
        AddRing(ring, edges);
    } else if (kind == "spiral") {
        for (int i = 0; i < count; ++i) {
            ring.push_back(Polar(0.1 + 0.9 * i / count, kTurn * i / 64));
        }
        AddRing(ring, edges);
    } else if (kind == "square spiral") {
        for (int i = 0; i < count; ++i) {
            ring.push_back(Polar(0.1 + 0.9 * i / count, 0.3 + kTurn * i / 4));
        }
        AddRing(ring, edges);
    } else {
        for (int i = 0; i < count; ++i) {
            double const y = dice.Unit() * 2 - 1;
            double const x = dice.Unit() * 2 - 1;
            ring.push_back(At(x, y));
        }
        AddRing(ring, edges);
    }
    return edges;
}

char const* const kKinds[] = {"strips", "turned squares", "star twice", "spiral", "square spiral"};

/// True when two edges come as near as a margin in both coordinates. Not exact beyond 1e-6 of it.
bool AreNear(GridEdge const& e, GridEdge const& f, GridPoint margin) {
    // One of the normals of the edges and of the box that the margin makes tells them apart if they
    // are apart.
    auto const apart = [&](long double h, long double v) {
        auto const of = [&](GridPoint p) { return h * p.x + v * p.y; };
        long double const reach = std::fabs(h) * margin.x + std::fabs(v) * margin.y;
        return std::max(of(e.a), of(e.b)) + reach < std::min(of(f.a), of(f.b)) ||
               std::max(of(f.a), of(f.b)) + reach < std::min(of(e.a), of(e.b));
    };
    return !apart(1, 0) && !apart(0, 1) && !apart(e.a.y - e.b.y, e.b.x - e.a.x) &&
           !apart(f.a.y - f.b.y, f.b.x - f.a.x);
}

TEST(EdgeSplit, FindsAllPairsThatAreNearOnceAndInOrder) {
    for (std::string const kind :
         {"strips", "turned squares", "star twice", "spiral", "square spiral", "random"}) {
        Edges const edges = DrawingOf(kind, 400);
        for (std::int64_t const margin :
             {std::int64_t{0}, std::int64_t{1} << 12, std::int64_t{1} << 50}) {
            for (std::size_t const step : {0U, 5U, 50U}) {
                SCOPED_TRACE(kind + ", margin " + std::to_string(margin) + ", active " +
                             std::to_string(step));
                ScratchVector<char> active;
                for (std::size_t i = 0; i < edges.size() && step != 0; ++i) {
                    active.push_back(i % step == 0 ? 1 : i % 7 == 0 ? kCopy : 0);
                }
                ScratchVector<EdgePair> found;
                ASSERT_TRUE(trammel_detail::FindNearPairs(edges, active, {margin, 2 * margin},
                                                          1000000, found));
                std::size_t at = 0;
                std::size_t near = 0;
                for (std::uint32_t i = 0; i < edges.size(); ++i) {
                    for (std::uint32_t j = i + 1; j < edges.size(); ++j) {
                        bool const isFound =
                            at < found.size() && found[at].first == i && found[at].second == j;
                        at += isFound ? 1 : 0;
                        bool const matters =
                            active.empty() || (active[i] != kCopy && active[j] != kCopy &&
                                               (active[i] == 1 || active[j] == 1));
                        bool const isNear =
                            matters && AreNear(edges[i], edges[j], {2 * margin, 4 * margin});
                        near += isNear ? 1 : 0;
                        EXPECT_TRUE(isFound || !isNear) << i << " " << j;
                        EXPECT_TRUE(matters || !isFound);
                    }
                }
                EXPECT_EQ(at, found.size());
                // The rounding adds pairs only where nothing else is nearer than the margin.
                EXPECT_LE(found.size(), near + near / 4 + 8);
            }
        }
    }
}

TEST(EdgeSplit, TakesStepsAsTheNumberOfEdgesTimesItsLogarithm) {
    for (std::string const kind : kKinds) {
        for (int const count : {1000, 10000, 100000}) {
            Edges const edges = DrawingOf(kind, count);
            ScratchVector<EdgePair> found;
            // They take 2 to 10 times this. The pairs whose boxes meet are some hundredths of the
            // square of `count` in each kind.
            double const unit = count * std::log2(count);
            EXPECT_TRUE(trammel_detail::FindNearPairs(edges, {}, {1, 1},
                                                      static_cast<std::size_t>(14 * unit), found))
                << kind << " " << count;
            EXPECT_LE(found.size(), 3 * edges.size());
        }
    }
}

TEST(EdgeSplit, GivesUpWhereManyEdgesCross) {
    Edges const edges = DrawingOf("random", 2000);
    ScratchVector<EdgePair> found;
    EXPECT_FALSE(trammel_detail::FindNearPairs(edges, {}, {1, 1}, 200000, found));
}

} // namespace
