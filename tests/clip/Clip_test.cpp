// SPDX-License-Identifier: MIT
#include "gpc.h"

#include "plain/ClipCorpus.h"
#include "plain/PlainClip.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define TRAMMEL_CLIP_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TRAMMEL_CLIP_SANITIZED 1
#endif
#endif

namespace {

using plain::Box;
using plain::Clip;
using plain::Combine;
using plain::Contour;
using plain::Dice;
using plain::kOperationNames;
using plain::kOperations;
using plain::Normalised;
using plain::Polygon;
using plain::Region;
using plain::Vertex;

double const kPi = 3.14159265358979323846;

/// What the areas may be off, relative to the area of the union.
double const kAreaTolerance = 1e-9;

/// What the plain even-odd area is off in coordinates from 0 to 1.
double const kStripTolerance = 1e-13;

Contour Rectangle(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

Contour Star(std::size_t vertices, double x, double y, double size, double noise, Dice& dice) {
    Contour contour;
    for (std::size_t i = 0; i < vertices; ++i) {
        double const t = 2 * kPi * static_cast<double>(i) / static_cast<double>(vertices);
        double const r = size * (1 + noise * (dice.Unit() - 0.5));
        contour.push_back({x + r * std::cos(t), y + r * std::sin(t)});
    }
    return contour;
}

Contour RandomDoubles(Dice& dice, int vertices) {
    Contour contour;
    for (int i = 0; i < vertices; ++i) {
        double const x = dice.Unit();
        contour.push_back({x, dice.Unit()});
    }
    return contour;
}

Polygon Mapped(Polygon polygon, double scaleX, double scaleY, double moveX, double moveY) {
    for (Contour& contour : polygon) {
        for (Vertex& v : contour) {
            v = {v.x * scaleX + moveX, v.y * scaleY + moveY};
        }
    }
    return polygon;
}

/// The area of a result, by its flags.
double Area(Region const& region) { return plain::AreaByFlags(region); }

/// All contours with their least vertex first, in the order of those vertices.
std::vector<Contour> Unordered(Region const& region) {
    std::vector<Contour> contours;
    for (Contour const& contour : region.contours) {
        contours.push_back(plain::Rotated(contour));
    }
    std::sort(contours.begin(), contours.end(), [](Contour const& a, Contour const& b) {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
    });
    return contours;
}

std::size_t VertexCount(Region const& region) {
    std::size_t count = 0;
    for (Contour const& contour : region.contours) {
        count += contour.size();
    }
    return count;
}

/// Whether two results are equal, to the last bit and in the same order.
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

/// What the header promises of each contour by itself.
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

/// Holes run counterclockwise and the others clockwise, in coordinates that need no care.
void ExpectDirections(Region const& region) {
    for (std::size_t i = 0; i < region.contours.size(); ++i) {
        double const area = plain::SignedArea(region.contours[i]);
        EXPECT_TRUE(region.holes[i] != 0 ? area > 0 : area < 0) << i << ": " << area;
    }
}

// ------------------------------------------------------------------------------------------------
// Exact tests on coordinates from 1024 to 2048, which are integers in units of 2^-42.

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
    plain::Int128 const cross = static_cast<plain::Int128>(b.x - a.x) * (c.y - a.y) -
                                static_cast<plain::Int128>(b.y - a.y) * (c.x - a.x);
    return (cross > 0) - (cross < 0);
}

/// Whether p lies on the segment from a to b, but not at its ends.
bool Within(IntegerPoint a, IntegerPoint b, IntegerPoint p) {
    if (Side(a, b, p) != 0 || p == a || p == b) {
        return false;
    }
    return std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= p.y &&
           p.y <= std::max(a.y, b.y);
}

/// Whether the direction from v to p comes before that from v to q, turning left from v to `from`.
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

/// Edges neither cross nor overlap, an edge passes through a vertex only where it is horizontal
/// (the vertex was left out), and contours that share a vertex do not cross there.
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

// ------------------------------------------------------------------------------------------------
// The examples that everyone knows.

TEST(Clipper, HasThePublishedCodesAndRecords) {
    EXPECT_EQ(GPC_DIFF, 0U);
    EXPECT_EQ(GPC_INT, 1U);
    EXPECT_EQ(GPC_XOR, 2U);
    EXPECT_EQ(GPC_UNION, 3U);
    EXPECT_EQ(sizeof(gpc_op), sizeof(int));
    EXPECT_EQ(sizeof(gpc_vertex), 16U);
    EXPECT_EQ(sizeof(gpc_vertex_list), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(gpc_polygon), 3 * sizeof(void*));
}

TEST(Clipper, TwoOverlappingSquares) {
    Polygon const a{Rectangle(0, 0, 10, 10)};
    Polygon const b{Rectangle(5, 5, 15, 15)};
    Region const difference = Clip(GPC_DIFF, a, b);
    ASSERT_EQ(difference.contours.size(), 1U);
    EXPECT_EQ(difference.contours[0],
              (Contour{{5, 5}, {10, 5}, {10, 0}, {0, 0}, {0, 10}, {5, 10}}));
    Region const intersection = Clip(GPC_INT, a, b);
    ASSERT_EQ(intersection.contours.size(), 1U);
    EXPECT_EQ(intersection.contours[0], (Contour{{10, 5}, {5, 5}, {5, 10}, {10, 10}}));
    Region const both = Clip(GPC_UNION, a, b);
    ASSERT_EQ(both.contours.size(), 1U);
    EXPECT_EQ(both.contours[0],
              (Contour{{15, 5}, {10, 5}, {10, 0}, {0, 0}, {0, 10}, {5, 10}, {5, 15}, {15, 15}}));
    Region const either = Clip(GPC_XOR, a, b);
    EXPECT_EQ(either.contours.size(), 2U);
    EXPECT_EQ(either.holes, (std::vector<int>{0, 0}));
    EXPECT_DOUBLE_EQ(Area(either), 150);
}

TEST(Clipper, ASquareWithASquareTakenOutHasAHole) {
    Region const region = Clip(GPC_DIFF, {Rectangle(0, 0, 10, 10)}, {Rectangle(4, 4, 6, 6)});
    ASSERT_EQ(region.contours.size(), 2U);
    EXPECT_EQ(region.holes, (std::vector<int>{1, 0}));
    EXPECT_EQ(region.contours[0], (Contour{{6, 6}, {4, 6}, {4, 4}, {6, 4}}));
    EXPECT_EQ(region.contours[1], (Contour{{10, 0}, {0, 0}, {0, 10}, {10, 10}}));
}

TEST(Clipper, DisjointSquares) {
    Polygon const a{Rectangle(0, 0, 1, 1)};
    Polygon const b{Rectangle(2, 0, 3, 1)};
    EXPECT_TRUE(Clip(GPC_INT, a, b).contours.empty());
    Region const both = Clip(GPC_UNION, a, b);
    EXPECT_EQ(both.contours.size(), 2U);
    EXPECT_EQ(both.holes, (std::vector<int>{0, 0}));
    EXPECT_DOUBLE_EQ(Area(Clip(GPC_DIFF, a, b)), 1);
}

TEST(Clipper, ABowTieIsTwoTriangles) {
    Contour const bowTie{{0, 0}, {10, 10}, {10, 0}, {0, 10}};
    Region const region = Clip(GPC_UNION, {bowTie}, {});
    ASSERT_EQ(region.contours.size(), 2U);
    EXPECT_EQ(region.holes, (std::vector<int>{0, 0}));
    EXPECT_EQ(Unordered(region),
              (std::vector<Contour>{{{0, 0}, {0, 10}, {5, 5}}, {{10, 0}, {5, 5}, {10, 10}}}));
}

TEST(Clipper, NestedContoursAlternate) {
    Polygon rings;
    for (int i = 0; i < 9; ++i) {
        rings.push_back(Rectangle(i, i, 30 - i, 30 - i));
        if (i % 3 == 1) {
            std::reverse(rings.back().begin(), rings.back().end());
        }
    }
    Region const region = Clip(GPC_UNION, rings, {});
    ASSERT_EQ(region.contours.size(), 9U);
    for (std::size_t i = 0; i < 9; ++i) {
        double const depth = region.contours[i][0].x;
        int const ring = static_cast<int>(std::min(depth, 30 - depth));
        EXPECT_EQ(region.holes[i], ring % 2);
    }
    ExpectWellFormed(region);
    ExpectDirections(region);
}

TEST(Clipper, ManyNestedContoursAlternate) {
    // Nothing ties one contour to the next, so each asks anew what it lies in; and their edges'
    // boxes meet all over.
    for (int const sides : {3, 4, 62}) {
        for (std::size_t const count : {8U, 9U, 12U, 16U, 33U, 60U}) {
            Polygon rings;
            for (std::size_t i = 0; i < count; ++i) {
                double const radius = static_cast<double>(i + 1);
                Contour ring;
                for (int k = 0; k < sides; ++k) {
                    double const angle = 6.283185307179586 * k / sides + 0.01;
                    ring.push_back({radius * std::cos(angle), radius * std::sin(angle)});
                }
                rings.push_back(ring);
            }
            Region const region = Clip(GPC_UNION, rings, {});
            ASSERT_EQ(region.contours.size(), count);
            for (std::size_t i = 0; i < count; ++i) {
                Vertex const v = region.contours[i][0];
                auto const ring = static_cast<std::size_t>(std::lround(std::hypot(v.x, v.y)));
                EXPECT_EQ(region.holes[i], (count - ring) % 2 == 0 ? 0 : 1);
            }
            ExpectDirections(region);
        }
    }
}

TEST(Clipper, ContoursThatTouchInACornerStaySeparate) {
    // A hole that touches the outline in one point, and squares that meet in their corners.
    Contour const diamond{{0, 5}, {5, 2}, {8, 5}, {5, 8}};
    Region const hole = Clip(GPC_DIFF, {Rectangle(0, 0, 10, 10)}, {diamond});
    ASSERT_EQ(hole.contours.size(), 2U);
    EXPECT_EQ(hole.holes[0] + hole.holes[1], 1);
    ExpectDirections(hole);

    Region const squares = Clip(GPC_UNION, {Rectangle(0, 0, 1, 1)}, {Rectangle(1, 1, 2, 2)});
    ASSERT_EQ(squares.contours.size(), 2U);
    EXPECT_EQ(squares.holes, (std::vector<int>{0, 0}));
}

// ------------------------------------------------------------------------------------------------
// Cases with known areas.

/// The areas by flags and by the even-odd rule against the exact one. They may be off by
/// kAreaTolerance of the union, and by what rounding to doubles does: all edges of a result are
/// parts of the operands' edges, with ends that are the nearest doubles, so that the area changes
/// by no more than if all vertices of the operands were moved by a unit in the last place. At 1e11
/// that is the greater part for figures of size 100, elsewhere nothing to speak of.
void ExpectArea(Region const& region, double exact, double unionArea, Polygon const& a,
                Polygon const& b) {
    Box box;
    box.Include(a);
    box.Include(b);
    if (!box.HasArea()) {
        EXPECT_TRUE(region.contours.empty());
        return;
    }
    Normalised const normalised(box);
    Region const scaled{normalised(region.contours), region.holes};
    double const tolerance = kAreaTolerance * normalised.Area(unionArea) +
                             normalised.Area(plain::RoundingOfArea(a) + plain::RoundingOfArea(b));
    double const evenOdd = plain::EvenOddArea(scaled.contours);
    EXPECT_NEAR(evenOdd, normalised.Area(exact), tolerance + kStripTolerance);
    EXPECT_NEAR(Area(scaled), evenOdd,
                kAreaTolerance * normalised.Area(unionArea) + kStripTolerance);
}

/// Whether two results list the same contours with the same flags: each starting anywhere, in any
/// order, coordinates to within a tolerance.
bool SameContours(Region const& ours, Region const& theirs, double toleranceX, double toleranceY) {
    if (ours.contours.size() != theirs.contours.size()) {
        return false;
    }
    std::vector<char> used(theirs.contours.size(), 0);
    for (std::size_t i = 0; i < ours.contours.size(); ++i) {
        bool found = false;
        for (std::size_t j = 0; j < theirs.contours.size() && !found; ++j) {
            Contour contour = theirs.contours[j];
            if (used[j] != 0 || ours.holes[i] != theirs.holes[j] ||
                contour.size() != ours.contours[i].size()) {
                continue;
            }
            for (std::size_t k = 0; k < contour.size() && !found; ++k) {
                found = plain::Same(ours.contours[i], contour, toleranceX, toleranceY);
                std::rotate(contour.begin(), contour.begin() + 1, contour.end());
            }
            used[j] = found;
        }
        if (!found) {
            return false;
        }
    }
    return true;
}

/// Whether no vertex occurs twice: nothing touches, so that there is one way to list the contours.
bool IsSimple(Region const& region, double toleranceX, double toleranceY) {
    std::vector<Vertex> vertices;
    for (Contour const& contour : region.contours) {
        vertices.insert(vertices.end(), contour.begin(), contour.end());
    }
    std::sort(vertices.begin(), vertices.end());
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        for (std::size_t j = i + 1;
             j < vertices.size() && vertices[j].y - vertices[i].y <= toleranceY; ++j) {
            if (std::fabs(vertices[j].x - vertices[i].x) <= toleranceX) {
                return false;
            }
        }
    }
    return true;
}

TEST(Clipper, ReferenceCases) {
#ifndef TRAMMEL_CLIP_CORPUS
    GTEST_SKIP() << "TRAMMEL_CLIP_CORPUS was not set when this test was compiled";
#else
    std::string const path = TRAMMEL_CLIP_CORPUS;
    if (!std::ifstream(path)) {
        GTEST_SKIP() << "no file of reference cases at '" << path << "'";
    }
    std::string message;
    std::vector<plain::ReferenceCase> const cases = plain::ReadReferenceCases(path, message);
    ASSERT_EQ(message, "");
    ASSERT_GT(cases.size(), 0U);
    int compared = 0;
    int equal = 0;
    int listedAlike = 0;
    for (plain::ReferenceCase const& c : cases) {
        Box box;
        box.Include(c.a);
        box.Include(c.b);
        for (std::size_t k = 0; k < 4; ++k) {
            SCOPED_TRACE(c.group + " " + c.name + ": " + kOperationNames[k]);
            plain::ReferenceResult const& reference = c.results[k];
            Region const region = Clip(kOperations[k], c.a, c.b);
            ExpectArea(region, reference.exactArea, c.results[3].exactArea, c.a, c.b);
            ExpectWellFormed(region);

            // How a result is listed is comparable where there is one way to do it and the
            // reference is right.
            if (!reference.listed || kOperations[k] == GPC_XOR || !box.HasArea() ||
                !(reference.regionError <= kAreaTolerance)) {
                continue;
            }
            double const toleranceX = kAreaTolerance * (box.highX - box.lowX);
            double const toleranceY = kAreaTolerance * (box.highY - box.lowY);
            if (!IsSimple(reference.region, toleranceX, toleranceY)) {
                continue;
            }
            ++compared;
            if (SameContours(region, reference.region, toleranceX, toleranceY)) {
                ++equal;
                bool alike = true;
                for (std::size_t i = 0; i < region.contours.size(); ++i) {
                    alike = alike && plain::Same(region.contours[i], reference.region.contours[i],
                                                 toleranceX, toleranceY);
                }
                listedAlike += alike ? 1 : 0;
            }
        }
    }
    std::printf("%zu cases; of %d simple results %d have the reference's contours, %d of them in "
                "its order\n",
                cases.size(), compared, equal, listedAlike);
    EXPECT_GE(equal, compared * 95 / 100);
    // First vertices and the order of the contours follow its conventions without exception.
    EXPECT_EQ(listedAlike, equal);
#endif
}

TEST(Clipper, GridCases) {
    std::vector<plain::GridCase> const cases = plain::MakeGridCases();
    ASSERT_GT(cases.size(), 400U);
    for (plain::GridCase const& c : cases) {
        std::array<double, 4> const exact = plain::ExactAreas(c.a, c.b);
        // The exact areas themselves: what is in a but not b, in both, and in b but not a.
        double const onlyA = exact[0];
        double const both = exact[1];
        EXPECT_NEAR(exact[3] - exact[2], both, 1e-9 * exact[3]);
        EXPECT_GE(exact[2] - onlyA, -1e-9);
        for (std::size_t k = 0; k < 4; ++k) {
            SCOPED_TRACE(c.name + ": " + kOperationNames[k]);
            Region const region = Clip(kOperations[k], c.a, c.b);
            ExpectArea(region, exact[k], exact[3], c.a, c.b);
            ExpectWellFormed(region);
            ExpectDirections(region);
            ExpectNoCrossings(region);
        }
    }
}

/// The exact areas are themselves tested on figures whose areas are known.
TEST(Clipper, ExactAreasOfKnownFigures) {
    auto const at = [](std::initializer_list<std::pair<int, int>> points) {
        Contour contour;
        for (auto const& [x, y] : points) {
            contour.push_back(plain::GridVertex(x, y));
        }
        return contour;
    };
    std::array<double, 4> const squares = plain::ExactAreas({plain::GridRectangle(0, 0, 10, 10)},
                                                            {plain::GridRectangle(5, 5, 15, 15)});
    EXPECT_EQ(squares, (std::array<double, 4>{75, 25, 150, 175}));
    // A bow tie, and twice the same contour, which is nothing.
    std::array<double, 4> const bowTie =
        plain::ExactAreas({at({{0, 0}, {10, 10}, {10, 0}, {0, 10}})}, {});
    EXPECT_EQ(bowTie, (std::array<double, 4>{50, 0, 50, 50}));
    Contour const triangle = at({{0, 0}, {7, 3}, {2, 9}});
    EXPECT_EQ(plain::ExactAreas({triangle, triangle}, {}), (std::array<double, 4>{0, 0, 0, 0}));
    EXPECT_EQ(plain::ExactAreas({triangle}, {triangle}), (std::array<double, 4>{0, 28.5, 0, 28.5}));
    // Two triangles that cross in (10/3, 10/3): twice the common area is 100 / 3.
    std::array<double, 4> const crossing =
        plain::ExactAreas({at({{0, 0}, {10, 0}, {0, 5}})}, {at({{0, 0}, {5, 0}, {0, 10}})});
    EXPECT_DOUBLE_EQ(crossing[1], 50.0 / 3);
}

// ------------------------------------------------------------------------------------------------
// Laws, on random polygons.

TEST(Clipper, Laws) {
    Dice dice(77);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Polygon a;
        Polygon b;
        for (Polygon* const operand : {&a, &b}) {
            for (int i = dice.Int(1, 3); i > 0; --i) {
                operand->push_back(RandomDoubles(dice, dice.Int(3, 14)));
            }
        }
        Region const results[4] = {Clip(GPC_DIFF, a, b), Clip(GPC_INT, a, b), Clip(GPC_XOR, a, b),
                                   Clip(GPC_UNION, a, b)};
        double const difference = Area(results[0]);
        double const intersection = Area(results[1]);
        double const either = Area(results[2]);
        double const both = Area(results[3]);
        Region const regionA = Clip(GPC_UNION, a, {});
        Region const regionB = Clip(GPC_UNION, {}, b);
        double const areaA = Area(regionA);
        double const areaB = Area(regionB);
        double const tolerance = kAreaTolerance * both;
        EXPECT_NEAR(areaA, plain::EvenOddArea(a), tolerance);
        EXPECT_NEAR(areaB, plain::EvenOddArea(b), tolerance);

        // 1. Inclusion and exclusion.
        EXPECT_NEAR(areaA + areaB, both + intersection, tolerance);
        EXPECT_NEAR(areaA, difference + intersection, tolerance);
        EXPECT_NEAR(both, areaB + difference, tolerance);
        // 2. The union contains each operand: nothing of it is left outside.
        EXPECT_LE(Area(Clip(GPC_DIFF, a, results[3].contours)), tolerance);
        EXPECT_LE(Area(Clip(GPC_DIFF, b, results[3].contours)), tolerance);
        // 3. Exclusive-or is union minus intersection.
        Region const twoSteps = Clip(GPC_DIFF, results[3].contours, results[1].contours);
        EXPECT_NEAR(either, Area(twoSteps), tolerance);
        EXPECT_LE(Area(Clip(GPC_XOR, results[2].contours, twoSteps.contours)), tolerance);
        // 4. Operands may change places, save in a difference.
        for (gpc_op const operation : {GPC_INT, GPC_XOR, GPC_UNION}) {
            EXPECT_NEAR(Area(results[operation]), Area(Clip(operation, b, a)), tolerance);
        }
        // 5. With itself.
        EXPECT_TRUE(Clip(GPC_DIFF, a, a).contours.empty());
        EXPECT_TRUE(Clip(GPC_XOR, a, a).contours.empty());
        ExpectIdentical(Clip(GPC_INT, a, a), regionA);
        ExpectIdentical(Clip(GPC_UNION, a, a), regionA);
        // 6. Direction and first vertex of the operands do not matter.
        Polygon turned = a;
        for (Contour& contour : turned) {
            std::reverse(contour.begin(), contour.end());
            std::rotate(contour.begin(), contour.begin() + 1, contour.end());
        }
        EXPECT_NEAR(Area(Clip(GPC_INT, turned, b)), intersection, tolerance);

        // 7. Points are in the result exactly where the operands' membership says so.
        for (int i = 0; i < 60; ++i) {
            Vertex const p{dice.Unit(), dice.Unit()};
            bool nearEdge = false;
            for (Polygon const* const operand : {&a, &b}) {
                for (Contour const& contour : *operand) {
                    for (std::size_t k = 0; k < contour.size(); ++k) {
                        Vertex const u = contour[k];
                        Vertex const v = contour[(k + 1) % contour.size()];
                        double const side = (v.x - u.x) * (p.y - u.y) - (v.y - u.y) * (p.x - u.x);
                        nearEdge |= std::fabs(side) < 1e-9 * std::hypot(v.x - u.x, v.y - u.y);
                    }
                }
            }
            if (nearEdge) {
                continue;
            }
            for (std::size_t k = 0; k < 4; ++k) {
                EXPECT_EQ(plain::Inside(results[k].contours, p),
                          Combine(kOperations[k], plain::Inside(a, p), plain::Inside(b, p)))
                    << kOperationNames[k] << " at " << p.x << " " << p.y;
            }
        }
        for (Region const& region : results) {
            ExpectWellFormed(region);
            ExpectDirections(region);
        }
    }
}

TEST(Clipper, ResultsMoveWithTheOperands) {
    // By what leaves every coordinate exact: a power of two as factor, and a distance that is a
    // multiple of the coordinates' last place and keeps them in their binade.
    Dice dice(5);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Polygon a;
        Polygon b;
        for (Polygon* const operand : {&a, &b}) {
            Contour contour;
            for (int i = dice.Int(3, 12); i > 0; --i) {
                double const x = 4 + std::ldexp(dice.Int(0, 1 << 20), -20);
                contour.push_back({x, 4 + std::ldexp(dice.Int(0, 1 << 20), -20)});
            }
            operand->push_back(contour);
        }
        for (std::size_t k = 0; k < 4; ++k) {
            Region const region = Clip(kOperations[k], a, b);
            for (int const power : {-900, -30, 1, 52, 900}) {
                double const scale = std::ldexp(1.0, power);
                Region scaled = region;
                scaled.contours = Mapped(scaled.contours, scale, scale, 0, 0);
                ExpectIdentical(scaled, Clip(kOperations[k], Mapped(a, scale, scale, 0, 0),
                                             Mapped(b, scale, scale, 0, 0)));
            }
            Region wide = region;
            wide.contours = Mapped(wide.contours, 0x1p40, 0x1p-40, 0, 0);
            ExpectIdentical(wide, Clip(kOperations[k], Mapped(a, 0x1p40, 0x1p-40, 0, 0),
                                       Mapped(b, 0x1p40, 0x1p-40, 0, 0)));
            for (double const distance : {1.0, 2.5, 0.0009765625}) {
                Region moved = region;
                moved.contours = Mapped(moved.contours, 1, 1, distance, distance);
                ExpectIdentical(moved, Clip(kOperations[k], Mapped(a, 1, 1, distance, distance),
                                            Mapped(b, 1, 1, distance, distance)));
            }
        }
    }
}

// ------------------------------------------------------------------------------------------------
// Sizes and places.

TEST(Clipper, TheSameAtAnyScaleFromAnywhere) {
    Dice dice(11);
    Polygon const a{Star(40, 0.5, 0.5, 0.5, 0.4, dice), Rectangle(0.4, 0.4, 0.6, 0.6)};
    Polygon const b{Star(30, 0.8, 0.6, 0.4, 0.6, dice)};
    struct Place {
        double scaleX, scaleY, moveX, moveY;
    };
    Place const places[] = {{1e-300, 1e-300, 0, 0},    {1e-300, 1, 0, 0},
                            {3e-17, 7e-17, 0, 0},      {1, 1, 0, 0},
                            {1e6, 1e-9, 0, 0},         {1e-6, 1e9, 0, 0},
                            {1.1e11, 1.1e11, 0, 0},    {-1.1e11, 1.1e11, 0, 0},
                            {1e300, 1e300, 0, 0},      {100, 100, 1e11, -1e11},
                            {1, 1000, 1.1e11, 1.1e11}, {1e-3, 1e-3, 1e6, -3},
                            {8e307, 8e307, -9e307, 0}, {DBL_MAX, DBL_MAX, -DBL_MAX / 2, 0},
                            {1e-300, 1e300, 0, -1e300}};
    for (Place const& place : places) {
        SCOPED_TRACE(std::to_string(place.scaleX) + " " + std::to_string(place.scaleY) + " " +
                     std::to_string(place.moveX));
        // Into 0.1 to 0.9, so that the largest place does not overflow.
        auto const put = [&](Polygon const& p) {
            return Mapped(Mapped(p, 0.5, 0.5, 0.1, 0.1), place.scaleX, place.scaleY, place.moveX,
                          place.moveY);
        };
        Polygon const placedA = put(a);
        Polygon const placedB = put(b);
        // The truth for the coordinates as they are after rounding: their own even-odd areas.
        Box box;
        box.Include(placedA);
        box.Include(placedB);
        ASSERT_TRUE(std::isfinite(box.highX) && std::isfinite(box.highX - box.lowX));
        Normalised const normalised(box);
        double const areaA = plain::EvenOddArea(normalised(placedA));
        double const areaB = plain::EvenOddArea(normalised(placedB));
        double const rounding = std::max(
            plain::RoundingOfArea(normalised(placedA)),
            normalised.Area(plain::RoundingOfArea(placedA) + plain::RoundingOfArea(placedB)));
        double const tolerance = kAreaTolerance + (std::isfinite(rounding) ? rounding : 0);
        Region regions[4];
        for (std::size_t k = 0; k < 4; ++k) {
            regions[k] = Clip(kOperations[k], placedA, placedB);
            ExpectWellFormed(regions[k]);
            regions[k].contours = normalised(regions[k].contours);
            EXPECT_NEAR(Area(regions[k]), plain::EvenOddArea(regions[k].contours), 1e-12);
        }
        EXPECT_NEAR(Area(regions[0]) + Area(regions[1]), areaA, tolerance);
        EXPECT_NEAR(Area(regions[3]) + Area(regions[1]), areaA + areaB, tolerance);
        EXPECT_NEAR(Area(regions[3]) - Area(regions[1]), Area(regions[2]), tolerance);
        EXPECT_GT(Area(regions[1]), 0.01);
    }
}

TEST(Clipper, SurvivingVerticesAreTheSameBits) {
    Dice dice(3);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        // Around the origin, where coordinates are finer than any grid over the whole; with values
        // from 1e-20 to 1 and both zeros. The far square lies off and is not cut.
        Contour star;
        for (int i = 0; i < 24; ++i) {
            double const t = 2 * kPi * i / 24;
            double const r = 0.5 + 0.4 * dice.Unit();
            star.push_back({r * std::cos(t), r * std::sin(t)});
        }
        star[0].y = 1e-20 * dice.Unit();
        star[6].x = -1e-19 * dice.Unit();
        star[12].y = -0.0;
        star[18].x = 5e-324;
        Polygon const a{star};
        Polygon const b{Rectangle(10, 10, 11 + dice.Unit(), 12)};
        Region const region = Clip(GPC_UNION, a, b);
        ASSERT_EQ(region.contours.size(), 2U);
        std::size_t same = 0;
        for (Contour const& contour : region.contours) {
            for (Vertex const& v : contour) {
                for (Polygon const* const operand : {&a, &b}) {
                    for (Vertex const& w : (*operand)[0]) {
                        same += std::memcmp(&v, &w, sizeof v) == 0;
                    }
                }
            }
        }
        EXPECT_EQ(same, 28U);
    }
}

TEST(Clipper, TinyDetailsInLargeDrawings) {
    // A square of 1e-6 beside one of 1e5, and one inside of it as a hole.
    Polygon const a{Rectangle(0, 0, 1e5, 1e5), Rectangle(5e4, 5e4, 5e4 + 1e-6, 5e4 + 1e-6)};
    Polygon const b{Rectangle(-1, -1, -1 + 1e-6, -1 + 1e-6)};
    Region const region = Clip(GPC_UNION, a, b);
    ASSERT_EQ(region.contours.size(), 3U);
    EXPECT_EQ(region.holes[0] + region.holes[1] + region.holes[2], 1);
    ExpectDirections(region);
}

// ------------------------------------------------------------------------------------------------
// Operands that are not what one expects.

TEST(Clipper, EmptyOperands) {
    Polygon const square{Rectangle(0, 0, 1, 1)};
    for (Polygon const& empty :
         {Polygon{}, Polygon{{}}, Polygon{{{0, 0}, {1, 1}}}, Polygon{{{0, 0}, {1, 0}, {2, 0}}}}) {
        EXPECT_EQ(Area(Clip(GPC_DIFF, square, empty)), 1);
        EXPECT_TRUE(Clip(GPC_INT, square, empty).contours.empty());
        EXPECT_EQ(Area(Clip(GPC_XOR, square, empty)), 1);
        EXPECT_EQ(Area(Clip(GPC_UNION, square, empty)), 1);
        EXPECT_TRUE(Clip(GPC_DIFF, empty, square).contours.empty());
        EXPECT_TRUE(Clip(GPC_INT, empty, square).contours.empty());
        EXPECT_EQ(Area(Clip(GPC_XOR, empty, square)), 1);
        EXPECT_EQ(Area(Clip(GPC_UNION, empty, square)), 1);
        for (gpc_op const operation : kOperations) {
            EXPECT_TRUE(Clip(operation, empty, empty).contours.empty());
        }
    }
}

TEST(Clipper, RecordsWithNullPointersAndNegativeCounts) {
    gpc_polygon square = plain::ToRecord({Rectangle(0, 0, 1, 1)});
    gpc_vertex_list lists[] = {{-5, nullptr}, {3, nullptr}, {0, nullptr}};
    for (gpc_polygon odd : {gpc_polygon{0, nullptr, nullptr}, gpc_polygon{-3, nullptr, nullptr},
                            gpc_polygon{2, nullptr, nullptr}, gpc_polygon{3, nullptr, lists}}) {
        for (gpc_op const operation : kOperations) {
            gpc_polygon result{-1, nullptr, nullptr};
            gpc_polygon_clip(operation, &square, &odd, &result);
            EXPECT_EQ(result.num_contours, operation == GPC_INT ? 0 : 1);
            EXPECT_EQ(result.hole == nullptr, result.num_contours == 0);
            EXPECT_EQ(result.contour == nullptr, result.num_contours == 0);
            gpc_free_polygon(&result);
        }
    }
    gpc_free_polygon(&square);
}

TEST(Clipper, HoleFlagsOfOperandsDoNotMatter) {
    Polygon const rings{Rectangle(0, 0, 10, 10), Rectangle(2, 2, 8, 8)};
    for (int flags = 0; flags < 4; ++flags) {
        gpc_polygon subject = plain::ToRecord(rings);
        subject.hole[0] = flags & 1;
        subject.hole[1] = (flags & 2) * 1000;
        gpc_polygon clip{0, nullptr, nullptr};
        gpc_polygon result{0, nullptr, nullptr};
        gpc_polygon_clip(GPC_UNION, &subject, &clip, &result);
        EXPECT_EQ(Area(plain::FromRecord(result)), 64);
        gpc_free_polygon(&subject);
        gpc_free_polygon(&result);
    }
}

TEST(Clipper, ContoursWithNaNOrInfinityAreLeftOut) {
    double const bad[] = {std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity()};
    for (double const value : bad) {
        for (int place = 0; place < 8; ++place) {
            Contour contour = Rectangle(1, 1, 5, 5);
            Vertex& v = contour[static_cast<std::size_t>(place / 2)];
            (place % 2 == 0 ? v.x : v.y) = value;
            Polygon const a{Rectangle(0, 0, 2, 2), contour};
            EXPECT_EQ(Area(Clip(GPC_UNION, a, {Rectangle(4, 4, 5, 5)})), 5);
            EXPECT_EQ(Area(Clip(GPC_UNION, {Rectangle(4, 4, 5, 5)}, a)), 5);
            EXPECT_TRUE(Clip(GPC_XOR, {contour}, {contour}).contours.empty());
        }
    }
}

TEST(Clipper, OtherOperationCodesGiveNoContours) {
    gpc_polygon subject = plain::ToRecord({Rectangle(0, 0, 2, 2)});
    gpc_polygon clip = plain::ToRecord({Rectangle(1, 1, 3, 3)});
    for (unsigned const code : {4U, 5U, 100U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        gpc_polygon result{-1, nullptr, nullptr};
        gpc_polygon_clip(static_cast<gpc_op>(code), &subject, &clip, &result);
        EXPECT_EQ(result.num_contours, 0);
        EXPECT_EQ(result.hole, nullptr);
        EXPECT_EQ(result.contour, nullptr);
    }
    gpc_free_polygon(&subject);
    gpc_free_polygon(&clip);
}

TEST(Clipper, TheResultMayBeAnOperand) {
    Polygon const a{Rectangle(0, 0, 10, 10)};
    Polygon const b{Rectangle(5, 5, 15, 15)};
    for (gpc_op const operation : kOperations) {
        Region const fresh = Clip(operation, a, b);
        for (int which = 0; which < 3; ++which) {
            gpc_polygon first = plain::ToRecord(a);
            gpc_polygon second = plain::ToRecord(b);
            gpc_polygon const oldFirst = first;
            gpc_polygon const oldSecond = second;
            gpc_polygon* const operand = which == 2 ? &first : &second;
            gpc_polygon* const result = which == 1 ? &second : &first;
            gpc_polygon_clip(operation, &first, operand, result);
            if (which < 2) {
                ExpectIdentical(plain::FromRecord(*result), fresh);
            } else {
                ExpectIdentical(plain::FromRecord(*result), Clip(operation, a, a));
            }
            gpc_polygon old = result == &first ? oldFirst : oldSecond;
            gpc_free_polygon(&old);
            gpc_free_polygon(&first);
            gpc_free_polygon(&second);
        }
    }
}

TEST(Clipper, FreeingLeavesAnEmptyRecord) {
    gpc_polygon subject = plain::ToRecord({Rectangle(0, 0, 2, 2), {}, Rectangle(3, 0, 4, 4)});
    gpc_free_polygon(&subject);
    EXPECT_EQ(subject.num_contours, 0);
    EXPECT_EQ(subject.hole, nullptr);
    EXPECT_EQ(subject.contour, nullptr);
    gpc_free_polygon(&subject);
    EXPECT_EQ(subject.num_contours, 0);
}

TEST(Clipper, WhatEnclosesNothingVanishes) {
    Contour const spike{{0, 0}, {5, 5}, {9, 9}, {5, 5}};
    Contour const point{{3, 3}, {3, 3}, {3, 3}, {3, 3}};
    Contour const line{{0, 0}, {4, 0}, {2, 0}, {7, 0}};
    Contour const thereAndBack{{0, 0}, {1, 2}, {3, 3}, {4, 1}, {3, 3}, {1, 2}};
    for (Contour const& nothing : {spike, point, line, thereAndBack}) {
        for (gpc_op const operation : kOperations) {
            EXPECT_TRUE(Clip(operation, {nothing}, {}).contours.empty());
            EXPECT_TRUE(Clip(operation, {nothing}, {nothing}).contours.empty());
            EXPECT_TRUE(Clip(operation, {nothing, nothing}, {spike}).contours.empty());
        }
        EXPECT_EQ(Area(Clip(GPC_XOR, {Rectangle(1, 1, 9, 9)}, {nothing})), 64);
    }
    // The same contour twice cancels; three times is the contour.
    Contour const square = Rectangle(0, 0, 1, 1);
    EXPECT_TRUE(Clip(GPC_UNION, {square, square}, {}).contours.empty());
    EXPECT_EQ(Clip(GPC_UNION, {square, square, square}, {}).contours.size(), 1U);
    // A contour run through twice is inside nowhere.
    Contour twice = square;
    twice.insert(twice.end(), square.begin(), square.end());
    EXPECT_TRUE(Clip(GPC_UNION, {twice}, {}).contours.empty());
}

TEST(Clipper, RepeatedAndCollinearVertices) {
    Contour const square{{0, 0},   {0, 0},  {5, 0},  {10, 0}, {10, 0}, {10, 3}, {10, 7},
                         {10, 10}, {6, 10}, {6, 10}, {2, 10}, {0, 10}, {0, 5},  {0, 5}};
    Region const region = Clip(GPC_UNION, {square}, {});
    ASSERT_EQ(region.contours.size(), 1U);
    // Horizontal runs lose their inner vertices, the others keep theirs.
    EXPECT_EQ(region.contours[0],
              (Contour{{10, 7}, {10, 3}, {10, 0}, {0, 0}, {0, 5}, {0, 10}, {10, 10}}));
}

TEST(Clipper, OperandsThatAreAUnitInTheLastPlaceApart) {
    Dice dice(21);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Contour const contour = RandomDoubles(dice, 12);
        Contour moved = contour;
        for (Vertex& v : moved) {
            for (int i = dice.Int(0, 3); i > 0; --i) {
                v.x = std::nextafter(v.x, dice.Int(0, 1));
                v.y = std::nextafter(v.y, dice.Int(0, 1));
            }
        }
        double const area = plain::EvenOddArea({contour});
        for (std::size_t k = 0; k < 4; ++k) {
            Region const region = Clip(kOperations[k], {contour}, {moved});
            ExpectWellFormed(region);
            double const expected =
                kOperations[k] == GPC_INT || kOperations[k] == GPC_UNION ? area : 0;
            EXPECT_NEAR(Area(region), expected, 1e-13);
            EXPECT_NEAR(plain::EvenOddArea(region.contours), expected, 1e-13);
        }
    }
}

TEST(Clipper, GridsAsCoarseAsTheDoubles) {
    // Far from the origin there are few doubles: every crossing is rounded by as much as the
    // figures' own details, so that new crossings come up.
    Dice dice(8);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Polygon a{plain::RandomContour(dice, 15, 30)};
        Polygon b{plain::RandomContour(dice, 15, 30)};
        a = Mapped(a, 1, 1, 0x1p52, -0x1p52 - 2 * plain::kGridOffset);
        b = Mapped(b, 1, 1, 0x1p52, -0x1p52 - 2 * plain::kGridOffset);
        for (gpc_op const operation : kOperations) {
            Region const region = Clip(operation, a, b);
            ExpectWellFormed(region);
            Region near = region;
            near.contours = Mapped(region.contours, 1, 1, -0x1p52, 0x1p52 + 2 * plain::kGridOffset);
            ExpectDirections(near);
            // All coordinates are small integers now, at which the test on crossings is exact.
            ExpectNoCrossings(near);
            Box box;
            box.Include(near.contours);
            if (box.HasArea()) {
                EXPECT_NEAR(Area(near), plain::EvenOddArea(near.contours), 1e-9);
            }
        }
    }
}

// ------------------------------------------------------------------------------------------------
// Large input, and memory.

long PeakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(Clipper, AMillionVerticesInMemoryThatGrowsWithThem) {
    Dice dice(1);
    [[maybe_unused]] long growth[2] = {0, 0};
    std::size_t const sizes[2] = {125000, 500000};
    for (int i = 0; i < 2; ++i) {
        std::size_t const n = sizes[i];
        double const noise = 1.0 / static_cast<double>(n);
        Polygon const a{Star(n, 0, 0, 1, noise, dice)};
        Polygon const b{Star(n, 0.5, 0.3, 1, noise, dice)};
        gpc_polygon subject = plain::ToRecord(a);
        gpc_polygon clip = plain::ToRecord(b);
        long const before = PeakKilobytes();
        gpc_polygon result{0, nullptr, nullptr};
        gpc_polygon_clip(GPC_UNION, &subject, &clip, &result);
        growth[i] = PeakKilobytes() - before;
        Region const region = plain::FromRecord(result);
        EXPECT_EQ(region.contours.size(), 1U);
        EXPECT_GT(VertexCount(region), n);
        // Two discs whose centres are d apart.
        double const d = std::hypot(0.5, 0.3);
        double const lens = 2 * std::acos(d / 2) - d / 2 * std::sqrt(4 - d * d);
        EXPECT_NEAR(Area(region), 2 * kPi - lens, 1e-5);
        gpc_free_polygon(&subject);
        gpc_free_polygon(&clip);
        gpc_free_polygon(&result);
    }
#ifndef TRAMMEL_CLIP_SANITIZED
    // Four times the vertices, and some more than four times the memory for blocks that double.
    EXPECT_LT(growth[1], 8 * std::max(growth[0], 1000L));
    // Less than a kilobyte a vertex of the operands.
    EXPECT_LT(growth[1], 1000 * 1000);
#endif
}

TEST(Clipper, ManySmallContours) {
    // 40,000 squares in a frame: the holes are found in time that does not grow with the square of
    // their number.
    Polygon a{Rectangle(-1, -1, 400, 400)};
    for (int i = 0; i < 200; ++i) {
        for (int k = 0; k < 200; ++k) {
            a.push_back(Rectangle(2 * i, 2 * k, 2 * i + 1, 2 * k + 1));
        }
    }
    Region const region = Clip(GPC_UNION, a, {});
    ASSERT_EQ(region.contours.size(), 40001U);
    EXPECT_EQ(std::count(region.holes.begin(), region.holes.end(), 1), 40000);
    EXPECT_EQ(Area(region), 401.0 * 401 - 40000);
}

#ifndef TRAMMEL_CLIP_SANITIZED
/// Clips with no more memory than the process has and so much more, then ends the process.
[[noreturn]] void ClipWithin(rlim_t megabytes, gpc_polygon subject, gpc_polygon clip) {
    long pages = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr || std::fscanf(file, "%ld", &pages) != 1) {
        std::exit(3);
    }
    std::fclose(file);
    rlim_t const bytes = static_cast<rlim_t>(pages) * 4096 + megabytes * 1024 * 1024;
    rlimit const limit{bytes, bytes};
    setrlimit(RLIMIT_AS, &limit);
    gpc_polygon result{0, nullptr, nullptr};
    gpc_polygon_clip(GPC_UNION, &subject, &clip, &result);
    std::exit(4);
}
#endif

TEST(ClipperDeathTest, OutOfMemoryEndsTheProcess) {
#ifdef TRAMMEL_CLIP_SANITIZED
    GTEST_SKIP() << "the address sanitizer needs the memory that this test takes away";
#else
    Dice dice(2);
    gpc_polygon subject = plain::ToRecord({Star(200000, 0, 0, 1, 0, dice)});
    gpc_polygon clip = plain::ToRecord({Star(200000, 1, 0, 1, 0, dice)});
    for (rlim_t const megabytes : {0, 4, 8, 16, 32}) {
        EXPECT_EXIT(ClipWithin(megabytes, subject, clip), ::testing::ExitedWithCode(1),
                    "^gpc malloc failure: [a-z ]+\n$")
            << megabytes;
    }
    gpc_free_polygon(&subject);
    gpc_free_polygon(&clip);
#endif
}

} // namespace
