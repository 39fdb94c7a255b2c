// SPDX-License-Identifier: MIT

#include "PolygonOperations.h"

#include "CMatrix3x3.h"
#include "Moments.h"
#include "SmallRings.h"
#include "StripArea.h"
#include "Winding.h"

#ifdef TRAMMEL_TEST_MAPS
#include "CountryOutlines.h"
#endif

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

using trammel::Boolean;
using trammel::FillRule;
using trammel::IsInside;
using trammel::PolygonWithHoles;
using trammel::RemoveOverlap;
using trammel::SignedArea;
using trammel::ToPolygons;
using trammel::Union;
using trammel::WindingNumber;
using trammel_test::Rings;
using trammel_test::Square;
using trammel_test::StripArea;

typedef TPoint<double> Pt;
typedef TPolygon<double> Ring;
typedef std::vector<PolygonWithHoles> Polygons;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr FillRule kRules[] = {FillRule::kNonZero, FillRule::kEvenOdd};
constexpr TPolyOp kOperations[] = {kPolyDifference, kPolyIntersection, kPolyXor, kPolyUnion};

TPolygon<double> Reversed(TPolygon<double> const& ring) {
    TPolygon<double> reversed;
    for (long i = ring.LastIndex(); i >= 0; --i) {
        reversed.Append(ring.GetPt(i), true);
    }
    return reversed;
}

std::string Text(Rings const& rings) {
    std::string text;
    char number[64];
    for (TPolygon<double> const& ring : rings) {
        text += ring.Closed() ? "[" : "(";
        for (long i = 0; i <= ring.LastIndex(); ++i) {
            std::snprintf(number, sizeof number, " %.17g,%.17g", ring.GetPt(i).h, ring.GetPt(i).v);
            text += number;
        }
        text += ring.Closed() ? " ]" : " )";
    }
    return text;
}

double Area(Rings const& rings) {
    double area = 0;
    for (TPolygon<double> const& ring : rings) {
        area += SignedArea(ring);
    }
    return area;
}

int WindingOf(Rings const& rings, Pt const& p) {
    int winding = 0;
    for (TPolygon<double> const& ring : rings) {
        winding += WindingNumber(ring, p);
    }
    return winding;
}

bool Holds(TPolyOp op, bool a, bool b) {
    switch (op) {
    case kPolyDifference:
        return a && !b;
    case kPolyIntersection:
        return a && b;
    case kPolyXor:
        return a != b;
    case kPolyUnion:
        break;
    }
    return a || b;
}

/// Random numbers with a seed that a failure shows.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : mEngine(seed) {}
    double Unit() { return static_cast<double>(mEngine() >> 11) * 0x1p-53; }
    int Below(int n) { return static_cast<int>(mEngine() % static_cast<std::uint64_t>(n)); }

private:
    std::mt19937_64 mEngine;
};

/// A ring of random vertices, on a grid of few points if `coarse`.
TPolygon<double> RandomRing(Dice& dice, int vertices, bool coarse) {
    TPolygon<double> ring;
    for (int i = 0; i < vertices; ++i) {
        double const h = coarse ? dice.Below(8) / 8.0 : dice.Unit();
        double const v = coarse ? dice.Below(8) / 8.0 : dice.Unit();
        ring.Append(Pt(h, v), true);
    }
    return ring;
}

Rings RandomRings(Dice& dice, int count, bool coarse) {
    Rings rings;
    for (int i = 0; i < count; ++i) {
        rings.push_back(RandomRing(dice, 3 + dice.Below(7), coarse));
        if (dice.Below(4) == 0) {
            rings.push_back(dice.Below(2) == 0 ? rings.back() : Reversed(rings.back()));
        }
    }
    return rings;
}

/// A pentagram, around whose middle it winds twice.
TPolygon<double> Pentagram() {
    return Ring({Pt(0, -10), Pt(6, 8), Pt(-10, -3), Pt(10, -3), Pt(-6, 8)});
}

// Literal results.

TEST(PolygonOperations, JoinsTwoSquares) {
    Rings const a = {Square(0, 0, 2)};
    Rings const b = {Square(1, 1, 2)};
    FillRule const rule = FillRule::kNonZero;
    EXPECT_EQ(Text(Boolean(kPolyUnion, a, rule, b, rule)), "[ 0,0 2,0 2,1 3,1 3,3 1,3 1,2 0,2 ]");
    EXPECT_EQ(Text(Boolean(kPolyIntersection, a, rule, b, rule)), "[ 1,1 2,1 2,2 1,2 ]");
    EXPECT_EQ(Text(Boolean(kPolyDifference, a, rule, b, rule)), "[ 0,0 2,0 2,1 1,1 1,2 0,2 ]");
    EXPECT_EQ(Text(Boolean(kPolyXor, a, rule, b, rule)),
              "[ 0,0 2,0 2,1 1,1 1,2 0,2 ][ 2,1 3,1 3,3 1,3 1,2 2,2 ]");
}

TEST(PolygonOperations, FillTheMiddleOfAPentagramByTheNonzeroRuleOnly) {
    Rings const star = {Pentagram()};
    EXPECT_EQ(RemoveOverlap(star, FillRule::kNonZero).size(), 1U);
    EXPECT_EQ(RemoveOverlap(star, FillRule::kEvenOdd).size(), 5U);
    Rings const twice = {Square(0, 0, 4), Square(1, 1, 2)};
    EXPECT_EQ(Text(RemoveOverlap(twice, FillRule::kNonZero)), "[ 0,0 4,0 4,4 0,4 ]");
    EXPECT_EQ(Text(RemoveOverlap(twice, FillRule::kEvenOdd)),
              "[ 0,0 4,0 4,4 0,4 ][ 1,1 1,3 3,3 3,1 ]");
}

TEST(PolygonOperations, LeaveAHoleOfARingThatRunsTheOtherWay) {
    Rings const rings = {Square(0, 0, 4), Reversed(Square(1, 1, 2))};
    for (FillRule const rule : kRules) {
        EXPECT_EQ(Text(RemoveOverlap(rings, rule)), "[ 0,0 4,0 4,4 0,4 ][ 1,1 1,3 3,3 3,1 ]");
    }
}

TEST(PolygonOperations, GiveOuterRingsPositiveAreasAndHolesNegativeOnes) {
    for (bool const reversed : {false, true}) {
        Rings const a = {reversed ? Reversed(Square(0, 0, 9)) : Square(0, 0, 9)};
        Rings const result =
            Boolean(kPolyDifference, a, FillRule::kNonZero, {Square(2, 3, 4)}, FillRule::kEvenOdd);
        ASSERT_EQ(result.size(), 2U);
        EXPECT_EQ(SignedArea(result[0]), 81.0);
        EXPECT_EQ(SignedArea(result[1]), -16.0);
    }
}

TEST(PolygonOperations, UniteEachPolygonByItself) {
    // As one operand the two squares cancel where they overlap.
    Rings const rings = {Square(0, 0, 2), Reversed(Square(1, 0, 2))};
    for (FillRule const rule : kRules) {
        EXPECT_EQ(Text(Union(rings, rule)), "[ 0,0 1,0 2,0 3,0 3,2 2,2 1,2 0,2 ]");
    }
    EXPECT_EQ(Area(RemoveOverlap(rings, FillRule::kNonZero)), 4.0);
}

TEST(PolygonOperations, UnitePolygonsOfSeveralRings) {
    // The second polygon covers half of the first one's hole.
    std::vector<Rings> const polygons = {{Square(0, 0, 6), Square(2, 2, 2)}, {Square(3, 2, 1)}};
    EXPECT_EQ(Area(Union(polygons, FillRule::kEvenOdd)), 33.0);
    EXPECT_EQ(Area(Union(polygons, FillRule::kNonZero)), 36.0);
}

TEST(PolygonOperations, KeepTheBitsOfVerticesThatSurvive) {
    double const h = 0.1;
    double const v = 1.0 / 3.0;
    Rings const result =
        Union({Ring({Pt(h, v), Pt(7.7, v), Pt(5.1, 9.3)}), Square(4, 2, 1)}, FillRule::kNonZero);
    ASSERT_EQ(result.size(), 1U);
    EXPECT_EQ(result[0].GetPt(0).h, h);
    EXPECT_EQ(result[0].GetPt(0).v, v);
}

// Polygons with holes.

TEST(PolygonOperations, GiveEachHoleToTheOuterRingAroundIt) {
    // Three frames in each other, and a square with two holes beside them.
    Rings rings;
    for (int i = 0; i < 6; ++i) {
        rings.push_back(Square(i, i, 20 - 2 * i));
    }
    rings.push_back(Square(30, 0, 10));
    rings.push_back(Square(31, 1, 2));
    rings.push_back(Square(35, 5, 3));
    Polygons const polygons = ToPolygons(rings, FillRule::kEvenOdd);
    ASSERT_EQ(polygons.size(), 4U);
    std::vector<std::string> texts;
    for (PolygonWithHoles const& polygon : polygons) {
        std::string text = std::to_string(SignedArea(polygon.outer));
        for (trammel::Ring const& hole : polygon.holes) {
            text += " " + std::to_string(SignedArea(hole));
        }
        texts.push_back(text);
    }
    EXPECT_EQ(texts[0], "400.000000 -324.000000");
    EXPECT_EQ(texts[1], "100.000000 -4.000000 -9.000000");
    EXPECT_EQ(texts[2], "256.000000 -196.000000");
    EXPECT_EQ(texts[3], "144.000000 -100.000000");
}

TEST(PolygonOperations, GiveHolesThatTouchTheirOuterRingToIt) {
    // Diamonds with common corners left and right: their bounds are the same in h.
    auto const diamond = [](double height) {
        return Ring({Pt(-8, 0), Pt(0, -height), Pt(8, 0), Pt(0, height)});
    };
    Polygons const polygons =
        ToPolygons({diamond(4), diamond(3), diamond(2), diamond(1)}, FillRule::kEvenOdd);
    // The rings meet at the corners, where the walk along the boundary divides them.
    double area = 0;
    for (PolygonWithHoles const& polygon : polygons) {
        EXPECT_GT(Area(polygon), 0.0);
        area += Area(polygon);
    }
    EXPECT_EQ(area, 32.0);
}

TEST(PolygonOperations, CombineListsOfPolygonsWithHoles) {
    auto const ring = [](double h, double v, double size) {
        return trammel::Ring{Pt(h, v), Pt(h + size, v), Pt(h + size, v + size), Pt(h, v + size)};
    };
    Polygons const a = {{ring(0, 0, 6), {ring(2, 2, 2)}}, {ring(4, 0, 6), {}}};
    Polygons const b = {{ring(3, 2, 1), {}}, {ring(1, 1, 1), {}}};
    auto const areaOf = [&](TPolyOp op) {
        double area = 0;
        for (PolygonWithHoles const& polygon : Boolean(op, a, b)) {
            area += Area(polygon);
        }
        return area;
    };
    EXPECT_EQ(areaOf(kPolyUnion), 57.0);
    EXPECT_EQ(areaOf(kPolyIntersection), 1.0);
    EXPECT_EQ(areaOf(kPolyDifference), 55.0);
    EXPECT_EQ(areaOf(kPolyXor), 56.0);
    EXPECT_TRUE(Boolean(static_cast<TPolyOp>(-1), a, b).empty());
    EXPECT_TRUE(Boolean(kPolyUnion, Polygons(), Polygons()).empty());
    EXPECT_TRUE(Union(Polygons{{trammel::Ring(), {ring(kNaN, 0, 1)}}}).empty());
    Polygons const united = Union(a);
    ASSERT_EQ(united.size(), 1U);
    ASSERT_EQ(united[0].holes.size(), 1U);
    EXPECT_EQ(Area(united[0]), 56.0);
}

TEST(PolygonOperations, NestRingsAsPointsSay) {
    Dice dice(20250109);
    for (int round = 0; round < 150; ++round) {
        Rings const rings = RandomRings(dice, 2 + dice.Below(12), round % 2 != 0);
        for (FillRule const rule : kRules) {
            Polygons const polygons = ToPolygons(rings, rule);
            for (int i = 0; i < 30; ++i) {
                Pt const p(dice.Unit(), dice.Unit());
                int count = 0;
                for (PolygonWithHoles const& polygon : polygons) {
                    count += Contains(polygon, p, FillRule::kNonZero) ? 1 : 0;
                }
                ASSERT_EQ(count, IsInside(WindingOf(rings, p), rule) ? 1 : 0) << "round " << round;
            }
        }
    }
}

TEST(PolygonOperations, GiveEachOfManyNestedRingsTheHoleWithinIt) {
    // Square k has the area 20 k^2. Rays would meet all squares around each, so sweeps do the work.
    int const count = 1500;
    for (FillRule const rule : kRules) {
        Rings rings;
        for (int k = 1; k <= count; ++k) {
            double const h = 3.0 * k;
            double const v = 1.0 * k;
            TPolygon<double> const square = Ring({Pt(h, v), Pt(-v, h), Pt(-h, -v), Pt(v, -h)});
            rings.push_back(k % 2 == 0 ? square : Reversed(square));
        }
        Polygons const polygons = ToPolygons(rings, rule);
        ASSERT_EQ(polygons.size(), count / 2U);
        for (PolygonWithHoles const& polygon : polygons) {
            ASSERT_EQ(polygon.holes.size(), 1U);
            double const k = std::hypot(polygon.outer[0].h, polygon.outer[0].v) / std::sqrt(10.0);
            EXPECT_EQ(Area(polygon), 20.0 * (2.0 * std::round(k) - 1.0));
        }
    }
}

// Degenerate input.

TEST(PolygonOperations, TakeRingsThatCannotEncloseAnythingAsAbsent) {
    Rings const nothing = {TPolygon<double>(),
                           Ring({Pt(0, 0)}),
                           Ring({Pt(0, 0), Pt(1, 1)}),
                           Ring({Pt(0, 0), Pt(1, 0), Pt(2, 0)}),
                           Ring({Pt(0, 0), Pt(kNaN, 1), Pt(1, 0)}),
                           Ring({Pt(0, 0), Pt(kInfinity, 1), Pt(1, 0)}),
                           Ring({Pt(3, 3), Pt(3, 3), Pt(3, 3), Pt(3, 3)})};
    for (FillRule const rule : kRules) {
        EXPECT_EQ(Text(Union(nothing, rule)), "");
        EXPECT_EQ(Text(RemoveOverlap(nothing, rule)), "");
        Rings some = nothing;
        some.push_back(Square(1, 1, 1));
        EXPECT_EQ(Text(Union(some, rule)), "[ 1,1 2,1 2,2 1,2 ]");
        for (TPolyOp const op : kOperations) {
            EXPECT_EQ(Text(Boolean(op, nothing, rule, nothing, rule)), "");
            EXPECT_EQ(Text(Boolean(op, some, rule, nothing, rule)),
                      op == kPolyIntersection ? "" : "[ 1,1 2,1 2,2 1,2 ]");
        }
    }
    EXPECT_EQ(Text(Union(Rings(), FillRule::kNonZero)), "");
    EXPECT_EQ(Text(Union(std::vector<Rings>(), FillRule::kNonZero)), "");
}

TEST(PolygonOperations, GiveNothingForAnOperationThatIsNoneOfTheFour) {
    Rings const a = {Square(0, 0, 1)};
    EXPECT_EQ(Text(Boolean(static_cast<TPolyOp>(4), a, FillRule::kNonZero, a, FillRule::kNonZero)),
              "");
}

TEST(PolygonOperations, CloseRingsThatAreNotMarkedAsClosed) {
    TPolygon<double> closed = Square(0, 0, 1);
    closed.Close();
    EXPECT_EQ(Text(Union({closed}, FillRule::kNonZero)),
              Text(Union({Square(0, 0, 1)}, FillRule::kNonZero)));
}

// Laws.

TEST(PolygonOperations, HoldThePointsThatWindingNumbersAndRulesSay) {
    Dice dice(20250101);
    for (int round = 0; round < 250; ++round) {
        bool const coarse = round % 2 != 0;
        Rings const a = RandomRings(dice, 1 + dice.Below(4), coarse);
        Rings const b = RandomRings(dice, 1 + dice.Below(4), coarse);
        for (FillRule const ruleA : kRules) {
            FillRule const ruleB = kRules[dice.Below(2)];
            for (TPolyOp const op : kOperations) {
                Rings const result = Boolean(op, a, ruleA, b, ruleB);
                for (int i = 0; i < 25; ++i) {
                    // No point of the coarse rings' edges has such coordinates.
                    Pt const p(dice.Unit(), dice.Unit());
                    bool const inside = Holds(op, IsInside(WindingOf(a, p), ruleA),
                                              IsInside(WindingOf(b, p), ruleB));
                    ASSERT_EQ(WindingOf(result, p), inside ? 1 : 0)
                        << "round " << round << " operation " << op << " at " << p.h << " " << p.v;
                }
            }
        }
    }
}

TEST(PolygonOperations, UniteAnyNumberOfPolygonsByTheirOwnWindingNumbers) {
    Dice dice(20250102);
    for (int round = 0; round < 80; ++round) {
        Rings const rings = RandomRings(dice, 1 + dice.Below(40), round % 2 != 0);
        for (FillRule const rule : kRules) {
            Rings const result = Union(rings, rule);
            for (int i = 0; i < 50; ++i) {
                Pt const p(dice.Unit(), dice.Unit());
                bool inside = false;
                for (TPolygon<double> const& ring : rings) {
                    inside = inside || Contains(ring, p, rule);
                }
                ASSERT_EQ(WindingOf(result, p), inside ? 1 : 0) << "round " << round;
            }
        }
    }
}

/// Polygons of `vertices` vertices at random places of a field. Their areas make `cover` times it.
Rings RandomFigures(Dice& dice, int count, int vertices, double cover) {
    Rings figures;
    for (int i = 0; i < count; ++i) {
        double const h = dice.Unit();
        double const v = dice.Unit();
        double const radius = std::sqrt(cover / count) * (0.3 + 0.6 * dice.Unit());
        double const turn = dice.Unit();
        TPolygon<double> figure;
        for (int k = 0; k < vertices; ++k) {
            double const angle = 6.283185307179586 * (turn + static_cast<double>(k) / vertices);
            figure.Append(Pt(h + radius * std::cos(angle), v + radius * std::sin(angle)), true);
        }
        figures.push_back(dice.Below(2) == 0 ? figure : Reversed(figure));
    }
    return figures;
}

// From sparse figures, which are cut at once, to dense ones, which take several stages.
TEST(PolygonOperations, UniteManyInStagesOrAtOnce) {
    Dice dice(20250106);
    for (double const cover : {0.1, 1.0, 5.0, 40.0}) {
        for (int const vertices : {3, 4, 24}) {
            Rings const figures = RandomFigures(dice, 600, vertices, cover);
            Rings const result = Union(figures, FillRule::kNonZero);
            for (int i = 0; i < 400; ++i) {
                Pt const p(1.2 * dice.Unit() - 0.1, 1.2 * dice.Unit() - 0.1);
                bool inside = false;
                for (TPolygon<double> const& figure : figures) {
                    inside = inside || Contains(figure, p, FillRule::kNonZero);
                }
                ASSERT_EQ(WindingOf(result, p), inside ? 1 : 0) << cover << " " << vertices;
            }
            EXPECT_EQ(Text(RemoveOverlap(result, FillRule::kEvenOdd)), Text(result));
        }
    }
}

TEST(PolygonOperations, UniteManyPolygonsWithHoles) {
    // Frames, each within the last one's hole, and all of them again.
    std::vector<Rings> frames;
    for (int copy = 0; copy < 2; ++copy) {
        for (int i = 0; i < 100; ++i) {
            frames.push_back(
                {Square(2 * i, 2 * i, 800 - 4 * i), Square(2 * i + 1, 2 * i + 1, 800 - 4 * i - 2)});
        }
    }
    Rings const result = Union(frames, FillRule::kEvenOdd);
    EXPECT_EQ(result.size(), 200U);
    double area = 0;
    for (int i = 0; i < 100; ++i) {
        area += std::pow(800 - 4 * i, 2) - std::pow(800 - 4 * i - 2, 2);
    }
    EXPECT_EQ(Area(result), area);
}

TEST(PolygonOperations, HaveTheAreasThatStripsHave) {
    Dice dice(20250103);
    for (int round = 0; round < 60; ++round) {
        Rings const a = RandomRings(dice, 1 + dice.Below(3), round % 2 != 0);
        Rings const b = RandomRings(dice, 1 + dice.Below(3), round % 2 != 0);
        for (FillRule const ruleA : kRules) {
            for (FillRule const ruleB : kRules) {
                for (TPolyOp const op : kOperations) {
                    Rings const result = Boolean(op, a, ruleA, b, ruleB);
                    double const wrong =
                        StripArea({a, b, result}, [&](std::vector<int> const& windings) {
                            bool const inside = Holds(op, IsInside(windings[0], ruleA),
                                                      IsInside(windings[1], ruleB));
                            return windings[2] != (inside ? 1 : 0);
                        });
                    ASSERT_LE(wrong, 1e-11) << "round " << round << " operation " << op;
                }
            }
        }
    }
}

TEST(PolygonOperations, ObeyInclusionAndExclusion) {
    Dice dice(20250104);
    for (int round = 0; round < 100; ++round) {
        double const size = std::ldexp(1.0, dice.Below(900) - 450);
        CMatrix3x3 map;
        map.Scale(Pt(size, size));
        Rings a = RandomRings(dice, 3, false);
        Rings b = RandomRings(dice, 3, false);
        for (Rings* const rings : {&a, &b}) {
            for (TPolygon<double>& ring : *rings) {
                ring.Transform(map);
            }
        }
        for (FillRule const rule : kRules) {
            double const unit = size * size;
            auto const areaOf = [&](TPolyOp op) { return Area(Boolean(op, a, rule, b, rule)); };
            double const areaA = Area(RemoveOverlap(a, rule));
            double const areaB = Area(RemoveOverlap(b, rule));
            double const both = areaOf(kPolyIntersection);
            EXPECT_NEAR(areaOf(kPolyUnion) / unit, (areaA + areaB - both) / unit, 1e-13);
            EXPECT_NEAR(areaOf(kPolyDifference) / unit, (areaA - both) / unit, 1e-13);
            EXPECT_NEAR(areaOf(kPolyXor) / unit, (areaA + areaB - 2 * both) / unit, 1e-13);
        }
    }
}

TEST(PolygonOperations, ListRingsThatBeginAtOneVertexByTheirSecondVertices) {
    // Two triangles that meet at (0, 0), in any order and from any vertex.
    std::vector<Pt> right = {Pt(0, 0), Pt(3, 1), Pt(1, 1)};
    std::vector<Pt> left = {Pt(0, 0), Pt(-1, 1), Pt(-3, 1)};
    std::string const both = "[ 0,0 -1,1 -3,1 ][ 0,0 3,1 1,1 ]";
    for (int turn = 0; turn < 3; ++turn) {
        std::rotate(right.begin(), right.begin() + 1, right.end());
        std::rotate(left.begin(), left.begin() + 1, left.end());
        for (FillRule const rule : kRules) {
            EXPECT_EQ(Text(RemoveOverlap({Ring(right), Ring(left)}, rule)), both);
            EXPECT_EQ(Text(RemoveOverlap({Ring(left), Ring(right)}, rule)), both);
        }
    }
}

TEST(PolygonOperations, RemoveOverlapsOnce) {
    Dice dice(20250105);
    for (int round = 0; round < 100; ++round) {
        Rings const once =
            RemoveOverlap(RandomRings(dice, 5, round % 2 != 0), kRules[dice.Below(2)]);
        for (FillRule const rule : kRules) {
            EXPECT_EQ(Text(RemoveOverlap(once, rule)), Text(once)) << "round " << round;
        }
    }
}

// Hard input.

TEST(PolygonOperations, UniteAThousandPolygonsThroughOnePoint) {
    Rings wedges;
    for (int i = 0; i < 1000; ++i) {
        double const angle = 0.006 * i;
        wedges.push_back(Ring({Pt(1, 2), Pt(1 + std::cos(angle), 2 + std::sin(angle)),
                               Pt(1 + std::cos(angle + 0.001), 2 + std::sin(angle + 0.001))}));
    }
    Rings const result = Union(wedges, FillRule::kNonZero);
    EXPECT_EQ(result.size(), wedges.size());
    EXPECT_NEAR(Area(result), 1000 * 0.5 * std::sin(0.001), 1e-11);
}

TEST(PolygonOperations, UniteHundredsOfCoincidentAndReversedCopies) {
    Rings copies;
    for (int i = 0; i < 200; ++i) {
        copies.push_back(i % 3 == 0 ? Reversed(Pentagram()) : Pentagram());
    }
    EXPECT_EQ(Text(Union(copies, FillRule::kNonZero)),
              Text(RemoveOverlap({Pentagram()}, FillRule::kNonZero)));
    EXPECT_EQ(Text(Union(copies, FillRule::kEvenOdd)),
              Text(RemoveOverlap({Pentagram()}, FillRule::kEvenOdd)));
    // Twice as many run one way as the other, so that they do not cancel.
    EXPECT_EQ(Text(RemoveOverlap(copies, FillRule::kNonZero)),
              Text(RemoveOverlap({Pentagram()}, FillRule::kNonZero)));
}

TEST(PolygonOperations, CutTheLastEdgesOfCopiesToo) {
    // The last edges of both squares cross others, and cuts change how many edges a square has.
    Rings squares;
    for (int i = 0; i < 400; ++i) {
        squares.push_back(Square(0, 0, 2));
    }
    for (int i = 0; i < 400; ++i) {
        squares.push_back(Square(-1, -1, 2));
    }
    Rings const two = {Square(0, 0, 2), Square(-1, -1, 2)};
    EXPECT_EQ(Text(RemoveOverlap(two, FillRule::kNonZero)),
              Text(RemoveOverlap(squares, FillRule::kNonZero)));
    EXPECT_EQ("", Text(RemoveOverlap(squares, FillRule::kEvenOdd)));
}

TEST(PolygonOperations, TakeTimeInProportionToTheNumberOfCopies) {
    // With the square of it, this test would take a quarter of an hour.
    Rings copies;
    for (int i = 0; i < 4000; ++i) {
        copies.push_back(i % 3 == 0 ? Reversed(Pentagram()) : Pentagram());
    }
    Rings const last = {Pentagram()};
    for (FillRule const rule : kRules) {
        EXPECT_EQ(Text(Union(copies, rule)), Text(RemoveOverlap(last, rule)));
    }
    EXPECT_EQ(Text(RemoveOverlap(copies, FillRule::kNonZero)),
              Text(RemoveOverlap(last, FillRule::kNonZero)));
    EXPECT_EQ(Text(RemoveOverlap(copies, FillRule::kEvenOdd)), "");
    copies.push_back(Pentagram());
    EXPECT_EQ(Text(RemoveOverlap(copies, FillRule::kEvenOdd)),
              Text(RemoveOverlap(last, FillRule::kEvenOdd)));
}

TEST(PolygonOperations, HoldThePointsThatWindingNumbersSayAmongManyCopies) {
    Dice dice(2024);
    for (int round = 0; round < 12; ++round) {
        SCOPED_TRACE(round);
        // Half of the rings have edges along the axes, and copies run in both directions.
        Rings const kinds = RandomRings(dice, 4, round % 2 != 0);
        Rings rings;
        for (int i = 0; i < 200; ++i) {
            TPolygon<double> const& ring = kinds[static_cast<std::size_t>(dice.Below(4))];
            rings.push_back(dice.Below(2) == 0 ? ring : Reversed(ring));
        }
        for (FillRule const rule : kRules) {
            Rings const result = RemoveOverlap(rings, rule);
            for (int k = 0; k < 200; ++k) {
                Pt const p(dice.Unit(), dice.Unit());
                EXPECT_EQ(WindingOf(result, p), IsInside(WindingOf(rings, p), rule) ? 1 : 0);
            }
        }
    }
}

TEST(PolygonOperations, KeepTheRegionOfNudgedCopies) {
    Dice dice(20250107);
    for (double const nudge : {1e-16, 1e-15, 1e-13, 1e-10, 1e-7, 1e-5}) {
        for (int round = 0; round < 20; ++round) {
            Rings rings = {RandomRing(dice, 12, false)};
            for (int copy = 0; copy < 3; ++copy) {
                TPolygon<double> nudged;
                for (long i = 0; i <= rings[0].LastIndex(); ++i) {
                    Pt const p = rings[0].GetPt(i);
                    nudged.Append(
                        Pt(p.h + nudge * (dice.Unit() - 0.5), p.v + nudge * (dice.Unit() - 0.5)),
                        true);
                }
                rings.push_back(nudged);
            }
            for (FillRule const rule : kRules) {
                double const wrong =
                    StripArea({{rings[0]}, {rings[1]}, {rings[2]}, {rings[3]}, Union(rings, rule)},
                              [&](std::vector<int> const& windings) {
                                  bool inside = false;
                                  for (std::size_t i = 0; i < 4; ++i) {
                                      inside = inside || IsInside(windings[i], rule);
                                  }
                                  return windings[4] != (inside ? 1 : 0);
                              });
                ASSERT_LE(wrong, 1e-11) << nudge << " round " << round;
            }
        }
    }
}

TEST(PolygonOperations, GiveTheSameRegionWhereverTheOperandsLie) {
    Dice dice(20250108);
    for (int round = 0; round < 40; ++round) {
        Rings const a = RandomRings(dice, 3, false);
        Rings const b = RandomRings(dice, 3, false);
        CMatrix3x3 map;
        double const size = std::ldexp(1.0, dice.Below(80) - 40);
        map.Scale(Pt(size, size));
        map.Rotate(6.28 * dice.Unit());
        map.Translate(Pt(size * 1e3 * dice.Unit(), -size * 1e3 * dice.Unit()));
        Rings mappedA = a;
        Rings mappedB = b;
        for (Rings* const rings : {&mappedA, &mappedB}) {
            for (TPolygon<double>& ring : *rings) {
                ring.Transform(map);
            }
        }
        for (TPolyOp const op : kOperations) {
            for (FillRule const rule : kRules) {
                EXPECT_NEAR(Area(Boolean(op, a, rule, b, rule)),
                            Area(Boolean(op, mappedA, rule, mappedB, rule)) / (size * size), 1e-9)
                    << "round " << round << " operation " << op;
            }
        }
    }
}

#ifdef TRAMMEL_TEST_MAPS

TEST(PolygonOperations, UniteTheCountriesOfAMap) {
    for (char const* name : {"countries-110m.json", "countries-50m.json"}) {
        Rings countries;
        for (std::vector<Pt> const& contour : trammel_test::CountriesOf(name)) {
            countries.push_back(Ring(contour));
        }
        if (countries.empty()) {
            GTEST_SKIP() << "no " << name << " (script/setup maps fetches it)";
        }
        Rings const land = Union(countries, FillRule::kNonZero);
        // Common borders vanish, and so do the holes that other countries fill.
        EXPECT_LT(land.size(), countries.size());
        EXPECT_GT(Area(land), 1e4);
        Dice dice(20250110);
        int inLand = 0;
        for (int i = 0; i < 700; ++i) {
            Pt const p(360 * dice.Unit() - 180, 170 * dice.Unit() - 85);
            bool inside = false;
            for (TPolygon<double> const& country : countries) {
                inside = inside || Contains(country, p, FillRule::kNonZero);
            }
            ASSERT_EQ(WindingOf(land, p), inside ? 1 : 0) << p.h << " " << p.v;
            inLand += inside ? 1 : 0;
        }
        EXPECT_GT(inLand, 130);
        // The land without itself moved a little, and what both have in common, are the land.
        Rings moved = land;
        for (TPolygon<double>& ring : moved) {
            ring.Transform(CMatrix3x3().Translate(0.37, -0.21));
        }
        FillRule const rule = FillRule::kNonZero;
        EXPECT_NEAR(Area(Boolean(kPolyDifference, land, rule, moved, rule)) +
                        Area(Boolean(kPolyIntersection, land, rule, moved, rule)),
                    Area(land), 1e-8);
    }
}

#endif

} // namespace
