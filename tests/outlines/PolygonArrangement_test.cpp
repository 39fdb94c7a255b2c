// SPDX-License-Identifier: MIT

#include "PolygonArrangement.h"

#include "PolygonOperations.h"
#include "SmallRings.h"
#include "StripArea.h"
#include "Winding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using trammel::ArrangementFace;
using trammel::FillRule;
using trammel::IsInside;
using trammel::PolygonArrangement;
using trammel::PolygonWithHoles;
using trammel::WindingNumber;
using trammel::WindingNumberOf;
using trammel_test::Rings;
using trammel_test::Square;
using trammel_test::StripArea;

typedef TPoint<double> Pt;
typedef TPolygon<double> Ring;

/// Returns each face as its vertices and its winding numbers.
std::vector<std::string> Text(PolygonArrangement const& arrangement) {
    std::vector<std::string> text;
    char number[64];
    for (ArrangementFace const& face : arrangement.Faces()) {
        std::string line;
        std::vector<trammel::Ring> rings = face.polygon.holes;
        rings.insert(rings.begin(), face.polygon.outer);
        for (trammel::Ring const& ring : rings) {
            line += "(";
            for (Pt const& p : ring) {
                std::snprintf(number, sizeof number, " %g,%g", p.h, p.v);
                line += number;
            }
            line += " )";
        }
        for (trammel::OperandWinding const& winding : face.windings) {
            line += " " + std::to_string(winding.operand) + ":" + std::to_string(winding.winding);
        }
        text.push_back(line);
    }
    return text;
}

typedef std::vector<std::string> Lines;

TEST(PolygonArrangement, DividesOverlappingSquares) {
    EXPECT_EQ(Text(PolygonArrangement({{Square(0, 0, 2)}, {Square(1, 1, 2)}})),
              (Lines{"( 0,0 2,0 2,1 1,1 1,2 0,2 ) 0:1", "( 1,1 2,1 2,2 1,2 ) 0:1 1:1",
                     "( 2,1 3,1 3,3 1,3 1,2 2,2 ) 1:1"}));
}

TEST(PolygonArrangement, GivesAHoleToTheFaceAroundIt) {
    EXPECT_EQ(Text(PolygonArrangement({{Square(0, 0, 9)}, {Square(1, 1, 2), Square(3, 3, 1)}})),
              (Lines{"( 0,0 9,0 9,9 0,9 )( 1,1 1,3 3,3 3,1 )( 3,3 3,4 4,4 4,3 ) 0:1",
                     "( 1,1 3,1 3,3 1,3 ) 0:1 1:1", "( 3,3 4,3 4,4 3,4 ) 0:1 1:1"}));
}

TEST(PolygonArrangement, HasFacesThatNoOperandWindsAround) {
    TPolygon<double> const bar = Ring({Pt(0, 0), Pt(4, 0), Pt(4, 1), Pt(0, 1)});
    TPolygon<double> const above = Ring({Pt(0, 3), Pt(4, 3), Pt(4, 4), Pt(0, 4)});
    TPolygon<double> const left = Ring({Pt(0, 1), Pt(1, 1), Pt(1, 3), Pt(0, 3)});
    TPolygon<double> const right = Ring({Pt(3, 1), Pt(3, 3), Pt(4, 3), Pt(4, 1)});
    EXPECT_EQ(
        Text(PolygonArrangement({{bar}, {above}, {left}, {right}})),
        (Lines{"( 0,0 4,0 4,1 3,1 1,1 0,1 ) 0:1", "( 0,1 1,1 1,3 0,3 ) 2:1", "( 1,1 3,1 3,3 1,3 )",
               "( 3,1 4,1 4,3 3,3 ) 3:-1", "( 0,3 1,3 3,3 4,3 4,4 0,4 ) 1:1"}));
}

TEST(PolygonArrangement, IsNotDividedByEdgesThatRunBothWays) {
    // A cut leads to the hole and back.
    TPolygon<double> const keyhole = Ring({Pt(0, 0), Pt(4, 0), Pt(4, 4), Pt(0, 4), Pt(0, 0),
                                           Pt(1, 1), Pt(1, 2), Pt(2, 2), Pt(2, 1), Pt(1, 1)});
    EXPECT_EQ(Text(PolygonArrangement({{keyhole}})),
              (Lines{"( 0,0 4,0 4,4 0,4 )( 1,1 1,2 2,2 2,1 ) 0:1", "( 1,1 2,1 2,2 1,2 )"}));
}

TEST(PolygonArrangement, TellsTwoOperandsApartOnEitherSideOfAnEdge) {
    EXPECT_EQ(Text(PolygonArrangement({{Square(0, 0, 1)}, {Square(1, 0, 1)}})),
              (Lines{"( 0,0 1,0 1,1 0,1 ) 0:1", "( 1,0 2,0 2,1 1,1 ) 1:1"}));
}

TEST(PolygonArrangement, CountsHowOftenOperandsWind) {
    TPolygon<double> const twice =
        Ring({Pt(0, 0), Pt(0, 1), Pt(1, 1), Pt(1, 0), Pt(0, 0), Pt(0, 1), Pt(1, 1), Pt(1, 0)});
    PolygonArrangement const arrangement({{}, {twice}, {Square(0, 0, 1), Square(0, 0, 1)}});
    EXPECT_EQ(Text(arrangement), (Lines{"( 0,0 1,0 1,1 0,1 ) 1:-2 2:2"}));
    ArrangementFace const& face = arrangement.Faces()[0];
    EXPECT_EQ(WindingNumberOf(face, 0), 0);
    EXPECT_EQ(WindingNumberOf(face, 1), -2);
    EXPECT_EQ(WindingNumberOf(face, 2), 2);
    EXPECT_EQ(WindingNumberOf(face, 3), 0);
}

TEST(PolygonArrangement, HasNoFacesWithoutOperandsThatEncloseSomething) {
    double const kNaN = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(PolygonArrangement({}).Faces().empty());
    PolygonArrangement const none({{},
                                   {Ring({})},
                                   {Ring({Pt(0, 0), Pt(1, 1)})},
                                   {Ring({Pt(0, 0), Pt(1, kNaN), Pt(1, 1)})},
                                   {Ring({Pt(0, 0), Pt(1, 1), Pt(2, 2)})}});
    EXPECT_TRUE(none.Faces().empty());
    EXPECT_TRUE(none.Merged({0, 1, 2}).empty());
}

TEST(PolygonArrangement, GivesItsFacesToALoopThatOutlivesIt) {
    std::size_t windings = 0;
    for (ArrangementFace const& face :
         PolygonArrangement({{Square(0, 0, 2)}, {Square(1, 1, 2)}}).Faces()) {
        windings += face.windings.size();
    }
    EXPECT_EQ(windings, 4U); // one, both, the other
}

TEST(PolygonArrangement, MergesFacesOnceAndNoneBeyondTheLast) {
    PolygonArrangement const arrangement({{Square(0, 0, 2)}, {Square(1, 1, 2)}});
    std::vector<PolygonWithHoles> const merged = arrangement.Merged({2, 1, 1, 7});
    ASSERT_EQ(merged.size(), 1U);
    EXPECT_TRUE(merged[0].holes.empty());
    std::vector<Pt> const expected = {Pt(1, 1), Pt(2, 1), Pt(3, 1), Pt(3, 3), Pt(1, 3), Pt(1, 2)};
    ASSERT_EQ(merged[0].outer.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(merged[0].outer[i].h, expected[i].h);
        EXPECT_EQ(merged[0].outer[i].v, expected[i].v);
    }
}

// Properties of random operands.

class Dice {
public:
    explicit Dice(std::uint64_t seed) : mEngine(seed) {}
    double Unit() { return static_cast<double>(mEngine() >> 11) * 0x1p-53; }
    int Below(int n) { return static_cast<int>(mEngine() % static_cast<std::uint64_t>(n)); }

private:
    std::mt19937_64 mEngine;
};

std::vector<Rings> RandomOperands(Dice& dice, int count, bool coarse) {
    std::vector<Rings> operands(static_cast<std::size_t>(count));
    for (Rings& rings : operands) {
        for (int i = dice.Below(3); i >= 0; --i) {
            TPolygon<double> ring;
            for (int k = 3 + dice.Below(6); k > 0; --k) {
                double const h = coarse ? dice.Below(8) / 8.0 : dice.Unit();
                double const v = coarse ? dice.Below(8) / 8.0 : dice.Unit();
                ring.Append(Pt(h, v), true);
            }
            rings.push_back(ring);
        }
    }
    return operands;
}

Rings RingsOf(std::vector<PolygonWithHoles> const& polygons) {
    Rings rings;
    for (PolygonWithHoles const& polygon : polygons) {
        rings.push_back(Ring(polygon.outer));
        for (trammel::Ring const& hole : polygon.holes) {
            rings.push_back(Ring(hole));
        }
    }
    return rings;
}

int WindingOf(Rings const& rings, Pt const& p) {
    int winding = 0;
    for (TPolygon<double> const& ring : rings) {
        winding += WindingNumber(ring, p);
    }
    return winding;
}

/// Finds a point in a face, near the middle of an edge and far from all others. False for slivers.
bool FindPoint(ArrangementFace const& face, Pt& found) {
    trammel::Ring const& ring = face.polygon.outer;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        Pt const a = ring[i];
        Pt const b = ring[i + 1 < ring.size() ? i + 1 : 0];
        // The face lies from the edge's direction toward +v.
        double const length = std::hypot(b.h - a.h, b.v - a.v);
        if (length < 1e-5) {
            continue;
        }
        double const aside = 1e-8 / length;
        found = Pt((a.h + b.h) / 2 - (b.v - a.v) * aside, (a.v + b.v) / 2 + (b.h - a.h) * aside);
        if (trammel::Contains(face.polygon, found, FillRule::kNonZero)) {
            return true;
        }
    }
    return false;
}

TEST(PolygonArrangement, HasTheWindingNumbersOfPointsInItsFaces) {
    Dice dice(31);
    int found = 0;
    for (int round = 0; round < 120; ++round) {
        SCOPED_TRACE(round);
        std::vector<Rings> const operands = RandomOperands(dice, 1 + dice.Below(6), round % 2 != 0);
        PolygonArrangement const arrangement(operands);
        for (ArrangementFace const& face : arrangement.Faces()) {
            Pt point;
            if (FindPoint(face, point)) {
                ++found;
                for (std::size_t i = 0; i < operands.size(); ++i) {
                    EXPECT_EQ(WindingNumberOf(face, i), WindingOf(operands[i], point));
                }
            }
        }
    }
    EXPECT_GT(found, 10000);
}

TEST(PolygonArrangement, HasFacesWhoseAreasSumUp) {
    Dice dice(32);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        std::vector<Rings> const operands = RandomOperands(dice, 1 + dice.Below(4), round % 2 != 0);
        PolygonArrangement const arrangement(operands);
        for (std::size_t i = 0; i < operands.size(); ++i) {
            for (FillRule const rule : {FillRule::kNonZero, FillRule::kEvenOdd}) {
                double sum = 0;
                for (ArrangementFace const& face : arrangement.Faces()) {
                    if (IsInside(WindingNumberOf(face, i), rule)) {
                        sum += Area(face.polygon);
                    }
                }
                EXPECT_NEAR(sum,
                            StripArea({operands[i]},
                                      [&](std::vector<int> const& windings) {
                                          return IsInside(windings[0], rule);
                                      }),
                            1e-11);
            }
        }
    }
}

TEST(PolygonArrangement, GivesBooleansByMergingFaces) {
    Dice dice(33);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        std::vector<Rings> const operands = RandomOperands(dice, 2, round % 2 != 0);
        FillRule const rule = round % 4 < 2 ? FillRule::kNonZero : FillRule::kEvenOdd;
        PolygonArrangement const arrangement(operands);
        for (TPolyOp const op : {kPolyDifference, kPolyIntersection, kPolyXor, kPolyUnion}) {
            auto const holds = [&](bool a, bool b) {
                return op == kPolyDifference     ? a && !b
                       : op == kPolyIntersection ? a && b
                       : op == kPolyXor          ? a != b
                                                 : a || b;
            };
            std::vector<std::size_t> chosen;
            for (std::size_t i = 0; i < arrangement.Faces().size(); ++i) {
                ArrangementFace const& face = arrangement.Faces()[i];
                if (holds(IsInside(WindingNumberOf(face, 0), rule),
                          IsInside(WindingNumberOf(face, 1), rule))) {
                    chosen.push_back(i);
                }
            }
            Rings const merged = RingsOf(arrangement.Merged(chosen));
            Rings const expected = trammel::Boolean(op, operands[0], rule, operands[1], rule);
            EXPECT_EQ(merged.size(), expected.size());
            EXPECT_LT(StripArea({merged, expected},
                                [](std::vector<int> const& windings) {
                                    return windings[0] != windings[1];
                                }),
                      1e-12);
        }
    }
}

TEST(PolygonArrangement, GivesTheNearestOuterRingItsHolesAmongManyFaces) {
    // Each square lies in the one before, and each face but the last has one hole.
    std::vector<Rings> operands;
    for (int i = 0; i < 200; ++i) {
        operands.push_back({Square(i, i, 400 - 2 * i)});
    }
    PolygonArrangement const arrangement(operands);
    ASSERT_EQ(arrangement.Faces().size(), 200U);
    for (std::size_t i = 0; i < 200; ++i) {
        ArrangementFace const& face = arrangement.Faces()[i];
        EXPECT_EQ(face.windings.size(), i + 1);
        ASSERT_EQ(face.polygon.holes.size(), i < 199 ? 1U : 0U);
        if (i < 199) {
            EXPECT_EQ(face.polygon.holes[0][0].h, static_cast<double>(i + 1));
        }
    }
}

} // namespace
