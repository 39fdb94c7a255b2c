// SPDX-License-Identifier: MIT

#include "Intersections.h"

#include "AccurateCurve.h"
#include "CMatrix3x3.h"
#include "Finite.h"
#include "IntersectionsJudge.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using trammel::AppendIntersections;
using trammel::Intersection;
using trammel::IntersectionKind;
using trammel::Intersections;
using trammel_test::IsFinite;

typedef TPoint<double> Pt;
typedef TLine<double> Line;
typedef std::vector<Intersection> Places;

constexpr double kFine = 1e-9;
/// Lengths, or parameters, that count as equal where rounding decides.
constexpr double kClose = 1e-12;

double Distance(Pt const& a, Pt const& b) { return std::hypot(a.h - b.h, a.v - b.v); }

/// One letter for each place: X a crossing, C a contact, E an end, O an overlap.
std::string Kinds(Places const& places) {
    std::string kinds;
    for (Intersection const& p : places) {
        kinds += "XCEO"[static_cast<int>(p.kind)];
    }
    return kinds;
}

CBezier Reversed(CBezier const& c) { return CBezier(c.P3, c.P2, c.P1, c.P0); }

CBezier Part(CBezier const& c, double from, double to) {
    CBezier part;
    c.GetTRange(from, to, part);
    return part;
}

class Random {
public:
    explicit Random(unsigned seed) : mGenerator(seed) {}
    double Between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(mGenerator);
    }
    Pt Point() { return Pt(Between(0, 100), Between(0, 100)); }
    CBezier Curve() { return CBezier(Point(), Point(), Point(), Point()); }
    /// A point whose coordinates have few digits.
    Pt Short(double least, double steps) {
        return Pt(std::floor(Between(0, steps)) * least, std::floor(Between(0, steps)) * least);
    }
    CBezier ShortCurve(double least, double steps) {
        return CBezier(Short(least, steps), Short(least, steps), Short(least, steps),
                       Short(least, steps));
    }

private:
    std::mt19937_64 mGenerator;
};

TEST(Intersections, OfTwoLinesIsTheirCrossing) {
    Places const places = Intersections(Line(Pt(0, 0), Pt(4, 4)), Line(Pt(0, 4), Pt(8, -4)), kFine);
    ASSERT_EQ(Kinds(places), "X");
    EXPECT_TRUE(places[0].crosses);
    EXPECT_NEAR(places[0].a.t, 0.5, kClose);
    EXPECT_NEAR(places[0].b.t, 0.25, kClose);
    EXPECT_EQ(places[0].a.endT, places[0].a.t);
    EXPECT_EQ(places[0].b.endT, places[0].b.t);
    EXPECT_EQ(places[0].a.element, 0U);
    EXPECT_NEAR(places[0].point.h, 2.0, kClose);
    EXPECT_NEAR(places[0].point.v, 2.0, kClose);
    EXPECT_EQ(places[0].endPoint, places[0].point);
}

TEST(Intersections, OfLinesThatMissEachOtherAreNone) {
    Line const line(Pt(0, 0), Pt(4, 4));
    EXPECT_EQ(Kinds(Intersections(line, Line(Pt(0, 4), Pt(1, 3)), kFine)), "");
    EXPECT_EQ(Kinds(Intersections(line, Line(Pt(1, 0), Pt(5, 4)), kFine)), "");
    EXPECT_EQ(Kinds(Intersections(line, Line(Pt(5, 5), Pt(9, 9)), kFine)), "");
}

TEST(Intersections, AtAnEndAreOfItsKind) {
    Line const line(Pt(0, 0), Pt(4, 0));
    Places const corner = Intersections(line, Line(Pt(4, 0), Pt(4, 3)), kFine);
    ASSERT_EQ(Kinds(corner), "E");
    EXPECT_FALSE(corner[0].crosses);
    EXPECT_NEAR(corner[0].a.t, 1.0, kClose);
    EXPECT_NEAR(corner[0].b.t, 0.0, kClose);
    Places const tee = Intersections(line, Line(Pt(2, 0), Pt(2, 3)), kFine);
    ASSERT_EQ(Kinds(tee), "E");
    EXPECT_NEAR(tee[0].a.t, 0.5, kClose);
    EXPECT_EQ(Kinds(Intersections(Line(Pt(2, 0), Pt(2, 3)), line, kFine)), "E");
    // In line, end to end.
    EXPECT_EQ(Kinds(Intersections(line, Line(Pt(4, 0), Pt(9, 0)), kFine)), "E");
}

TEST(Intersections, OfLinesAlongEachOtherAreTheCommonStretch) {
    Line const line(Pt(0, 0), Pt(4, 2));
    Places const places = Intersections(line, Line(Pt(2, 1), Pt(8, 4)), kFine);
    ASSERT_EQ(Kinds(places), "O");
    EXPECT_NEAR(places[0].a.t, 0.5, kClose);
    EXPECT_NEAR(places[0].a.endT, 1.0, kClose);
    EXPECT_NEAR(places[0].b.t, 0.0, kClose);
    EXPECT_NEAR(places[0].b.endT, 1.0 / 3, kClose);
    EXPECT_NEAR(Distance(places[0].point, Pt(2, 1)), 0.0, kClose);
    EXPECT_NEAR(Distance(places[0].endPoint, Pt(4, 2)), 0.0, kClose);
    Places const against = Intersections(line, Line(Pt(8, 4), Pt(2, 1)), kFine);
    ASSERT_EQ(Kinds(against), "O");
    EXPECT_NEAR(against[0].b.t, 1.0, kClose);
    EXPECT_NEAR(against[0].b.endT, 2.0 / 3, kClose);
}

TEST(Intersections, OfALineAndACurveAreAllThree) {
    // v = x³ - x over x from -2 to 2, and the line v = x/4.
    CBezier const curve(Pt(-2, -6), Pt(-2.0 / 3, 8 + 2.0 / 3), Pt(2.0 / 3, -8 - 2.0 / 3), Pt(2, 6));
    Line const line(Pt(-2, -0.5), Pt(2, 0.5));
    for (Places const& places :
         {Intersections(curve, line, kFine), Intersections(line, curve, kFine)}) {
        ASSERT_EQ(Kinds(places), "XXX");
        double const x = std::sqrt(1.25);
        EXPECT_NEAR(Distance(places[0].point, Pt(-x, -x / 4)), 0.0, kClose);
        EXPECT_NEAR(Distance(places[1].point, Pt(0, 0)), 0.0, kClose);
        EXPECT_NEAR(Distance(places[2].point, Pt(x, x / 4)), 0.0, kClose);
        EXPECT_NEAR(places[2].a.t, 0.5 + x / 4, kClose);
        EXPECT_NEAR(places[2].b.t, 0.5 + x / 4, kClose);
    }
}

TEST(Intersections, OfTwoCurvesCanBeNine) {
    // Chebyshev's polynomial of degree 3, a little higher, and its mirror image in the diagonal.
    CBezier const s(Pt(0, -0.05), Pt(1.0 / 3, 3.25), Pt(2.0 / 3, -2.25), Pt(1, 1.05));
    CBezier const mirrored(Pt(-0.05, 0), Pt(3.25, 1.0 / 3), Pt(-2.25, 2.0 / 3), Pt(1.05, 1));
    EXPECT_EQ(Kinds(Intersections(s, mirrored, kFine)), "XXXXXXXXX");
}

TEST(Intersections, TellTangentsAsContacts) {
    // v = x² and v = 0 touch at 0. v = x³ and v = 0 cross there.
    CBezier const square(Pt(-1, 1), Pt(-1.0 / 3, -1.0 / 3), Pt(1.0 / 3, -1.0 / 3), Pt(1, 1));
    CBezier const cube(Pt(-1, -1), Pt(-1.0 / 3, 1), Pt(1.0 / 3, -1), Pt(1, 1));
    Line const line(Pt(-2, 0), Pt(2, 0));
    for (double const accuracy : {1e-3, 1e-6, 1e-9, 0.0}) {
        Places const contact = Intersections(square, line, accuracy);
        ASSERT_EQ(Kinds(contact), "C") << accuracy;
        EXPECT_FALSE(contact[0].crosses);
        EXPECT_NEAR(contact[0].a.t, 0.5, 1e-7);
        EXPECT_NEAR(contact[0].b.t, 0.5, 1e-7);
        Places const crossing = Intersections(cube, line, accuracy);
        ASSERT_EQ(Kinds(crossing), "X") << accuracy;
        EXPECT_NEAR(crossing[0].a.t, 0.5, 1e-3);
        EXPECT_EQ(Kinds(Intersections(line, square, accuracy)), "C");
        EXPECT_EQ(Kinds(Intersections(line, cube, accuracy)), "X");
    }
}

/// The graph of k0 + k1 x + k2 x² + k3 x³ for x between two numbers.
CBezier Graph(double const* k, double low, double high) {
    auto const value = [k](double x) { return k[0] + x * (k[1] + x * (k[2] + x * k[3])); };
    auto const slope = [k](double x) { return k[1] + x * (2 * k[2] + x * 3 * k[3]); };
    double const step = (high - low) / 3;
    return CBezier(Pt(low, value(low)), Pt(low + step, value(low) + step * slope(low)),
                   Pt(high - step, value(high) - step * slope(high)), Pt(high, value(high)));
}

TEST(Intersections, OfGraphsAreAsManyAsTheirDifferenceHasZeros) {
    // Once stretches ended early where graphs begin to diverge: one in three contacts of the third
    // order was told as an overlap. And ends of pieces told sides of curves that went on.
    Random random(10);
    for (int i = 0; i < 4000; ++i) {
        double const k[] = {random.Between(-1, 1), random.Between(-1, 1), random.Between(-1, 1),
                            random.Between(-1, 1)};
        double const accuracy = std::pow(10, random.Between(-9, -3));
        double const factor =
            std::pow(10, random.Between(-1.5, 1.5)) * (random.Between(-1, 1) < 0 ? -1 : 1);
        // The greatest difference between two zeros.
        double const apart = random.Between(1.25, 4) * accuracy;
        double difference[4] = {0, 0, 0, 0};
        std::string kinds;
        switch (i % 4) {
        case 0:
            difference[2] = factor;
            kinds = "C";
            break;
        case 1:
            difference[3] = factor;
            kinds = "X";
            break;
        case 2:
            difference[0] = factor > 0 ? -apart : apart;
            difference[2] = factor;
            kinds = "XX";
            break;
        default:
            // x (x² - h²) has the extreme 2 h³ / √27.
            difference[1] =
                -factor * std::pow(std::cbrt(apart / std::abs(factor) * std::sqrt(27) / 2), 2);
            difference[3] = factor;
            kinds = "XXX";
        }
        double const other[] = {k[0] + difference[0], k[1] + difference[1], k[2] + difference[2],
                                k[3] + difference[3]};
        CBezier a = Graph(k, random.Between(-2, -1), random.Between(1, 2));
        CBezier b = Graph(other, random.Between(-2, -1), random.Between(1, 2));
        double const angle = random.Between(0, 7);
        a.Rotate(angle);
        b.Rotate(angle);
        // The graphs' distance is less than that along the ordinate.
        EXPECT_EQ(Kinds(Intersections(a, i % 8 < 4 ? b : Reversed(b),
                                      accuracy / std::sqrt(1 + k[1] * k[1]))),
                  kinds)
            << i;
    }
}

TEST(Intersections, TellATangentThatMissesByLessThanAQuarterOfTheAccuracy) {
    CBezier const square(Pt(-1, 1), Pt(-1.0 / 3, -1.0 / 3), Pt(1.0 / 3, -1.0 / 3), Pt(1, 1));
    for (double const off : {0.2e-6, -0.2e-6}) {
        EXPECT_EQ(Kinds(Intersections(square, Line(Pt(-2, off), Pt(2, off)), 1e-6)), "C");
    }
    EXPECT_EQ(Kinds(Intersections(square, Line(Pt(-2, -2e-6), Pt(2, -2e-6)), 1e-6)), "");
    // Two crossings that the curves do not connect within the accuracy.
    EXPECT_EQ(Kinds(Intersections(square, Line(Pt(-2, 1e-5), Pt(2, 1e-5)), 1e-6)), "XX");
}

TEST(Intersections, OfALineAreThoseOfACurveAlongIt) {
    // The short way for lines and the cells of curves are held against each other.
    Random random(21);
    int places = 0;
    for (int i = 0; i < 4000; ++i) {
        CBezier const curve = random.Curve();
        double const accuracy = std::pow(10, random.Between(-9, -3));
        CBezier const along = random.Curve();
        Pt const third = (along.P3 - along.P0) / 3.0;
        CBezier const straight(along.P0, along.P0 + third, along.P3 - third, along.P3);
        Line const line(along.P0, along.P3);
        auto const ofLine = Intersections(line, curve, accuracy);
        auto const ofCurve = Intersections(straight, curve, accuracy);
        auto const swapped = Intersections(curve, line, accuracy);
        ASSERT_EQ(Kinds(ofLine), Kinds(ofCurve)) << i;
        ASSERT_EQ(ofLine.size(), swapped.size()) << i;
        for (std::size_t k = 0; k < ofLine.size(); ++k) {
            if (ofLine[k].kind == IntersectionKind::kCrossing) {
                EXPECT_NEAR(ofLine[k].a.t, ofCurve[k].a.t, 1e-8) << i;
                EXPECT_NEAR(ofLine[k].b.t, ofCurve[k].b.t, 1e-8) << i;
                ++places;
            }
        }
    }
    EXPECT_GT(places, 1000);
}

TEST(Intersections, OfALineThroughACuspTellSides) {
    CBezier const cusp(Pt(0, 0), Pt(4, 4), Pt(0, 4), Pt(4, 0)); // its tip is (2, 3)
    EXPECT_EQ(Kinds(Intersections(cusp, Line(Pt(0, 2), Pt(4, 4)), kFine)), "C");
    EXPECT_EQ(Kinds(Intersections(Line(Pt(0, 2), Pt(4, 4)), cusp, kFine)), "C");
    EXPECT_EQ(Kinds(Intersections(Line(Pt(2, 1), Pt(2, 5)), cusp, kFine)), "X");
}

TEST(Intersections, OfACurveAndItsPartsAreOneStretch) {
    Random random(1);
    for (int i = 0; i < 300; ++i) {
        CBezier const c = random.Curve();
        double const low = random.Between(0, 0.6);
        double const high = random.Between(low + 0.1, 1);
        CBezier const part = Part(c, low, high);
        for (bool const against : {false, true}) {
            CBezier const piece = against ? Reversed(part) : part;
            Places places = Intersections(c, piece, kFine);
            // What remains are crossings of curves with loops.
            places.erase(std::remove_if(places.begin(), places.end(),
                                        [](Intersection const& p) {
                                            return p.kind == IntersectionKind::kCrossing;
                                        }),
                         places.end());
            ASSERT_EQ(Kinds(places), "O") << i;
            // The stretch goes on beyond the ends as far as it stays within the accuracy.
            EXPECT_LE(Distance(c.TPt(places[0].a.t), c.TPt(low)), 1e-8);
            EXPECT_LE(Distance(c.TPt(places[0].a.endT), c.TPt(high)), 1e-8);
            EXPECT_NEAR(places[0].b.t, against ? 1.0 : 0.0, 1e-8);
            EXPECT_NEAR(places[0].b.endT, against ? 0.0 : 1.0, 1e-8);
        }
    }
}

TEST(Intersections, OfARaisedParabolaAndItsPartAreOneStretch) {
    CBezier const raised(Pt(0, 0), Pt(4, 8), Pt(8, 8), Pt(12, 0)); // a quadratic curve
    Places const places = Intersections(raised, Part(raised, 0.25, 0.75), kFine);
    ASSERT_EQ(Kinds(places), "O");
    EXPECT_NEAR(places[0].a.t, 0.25, 1e-9);
    EXPECT_NEAR(places[0].a.endT, 0.75, 1e-9);
}

TEST(Intersections, OfALineAndAStraightCurveOfUnevenSpeedAreOneStretch) {
    CBezier const straight(Pt(0, 0), Pt(0, 0), Pt(1, 2), Pt(4, 8));
    Places const places = Intersections(straight, Line(Pt(2, 4), Pt(1, 2)), kFine);
    ASSERT_EQ(Kinds(places), "O");
    EXPECT_NEAR(Distance(places[0].point, Pt(1, 2)), 0.0, kClose);
    EXPECT_NEAR(Distance(places[0].endPoint, Pt(2, 4)), 0.0, kClose);
    EXPECT_NEAR(places[0].b.t, 1.0, kClose);
    EXPECT_NEAR(places[0].b.endT, 0.0, kClose);
}

TEST(Intersections, WithAStraightCurveThatRunsBackAreOneStretchForEachOfItsWays) {
    // Once the three ways were one stretch, and the far part of the line a single place.
    CBezier const back(Pt(0, 0), Pt(4, 4), Pt(-1, -1), Pt(3, 3)); // turns at 1/3 and 2/3
    Line const line(Pt(-1, -1), Pt(4, 4));
    for (double const scale : {1.0, 0x1p-900, 0x1p900}) {
        Line const scaled(line.mStart * scale, line.mEnd * scale);
        Places const places = Intersections(back * scale, scaled, kFine * scale);
        ASSERT_EQ(Kinds(places), "OOO");
        double const turns[] = {0, 1.0 / 3, 2.0 / 3, 1};
        double const beside[] = {0.2, 8.0 / 15, 7.0 / 15, 0.8};
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_NEAR(places[k].a.t, turns[k], 1e-5);
            EXPECT_NEAR(places[k].a.endT, turns[k + 1], 1e-5);
            EXPECT_NEAR(places[k].b.t, beside[k], 1e-9);
            EXPECT_NEAR(places[k].b.endT, beside[k + 1], 1e-9);
        }
        EXPECT_EQ(Kinds(Intersections(scaled, back * scale, kFine * scale)), "OOO");
    }
    EXPECT_EQ(Kinds(Intersections(back, Line(Pt(0, 3), Pt(3, 0)), kFine)), "XXX");
    CBezier const thereAndBack(Pt(0, 0), Pt(1, 1), Pt(1, 1), Pt(0, 0));
    EXPECT_EQ(Kinds(Intersections(thereAndBack, line, kFine)), "OO");
    EXPECT_EQ(Kinds(Intersections(thereAndBack, Line(Pt(0, 1), Pt(1, 0)), kFine)), "XX");
    EXPECT_EQ(Kinds(Intersections(thereAndBack, Line(Pt(0, 1.5), Pt(1.5, 0)), kFine)), "C");
}

TEST(Intersections, OfCurvesNearEachOtherAreNeverManyPlaces) {
    Random random(2);
    for (int i = 0; i < 200; ++i) {
        CBezier const c = random.Curve();
        for (double const off : {1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5}) {
            double const angle = random.Between(0, 7);
            CBezier const moved = c + Pt(off * std::cos(angle), off * std::sin(angle));
            CBezier const bent(c.P0, c.P1 + Pt(0, off), c.P2 + Pt(off, 0), c.P3);
            for (CBezier const& other : {moved, bent}) {
                for (double const accuracy : {0.0, 1e-9, 1e-6}) {
                    EXPECT_LE(Intersections(c, other, accuracy).size(), 11U) << i << " " << off;
                }
            }
        }
    }
}

TEST(Intersections, OfRandomCurvesAreThoseOfExactAlgebra) {
    Random random(3);
    int crossings = 0;
    for (int i = 0; i < 200; ++i) {
        CBezier const a = random.ShortCurve(1.0 / 16, 1600);
        CBezier const b = random.ShortCurve(1.0 / 16, 1600);
        auto const truth = trammel_test::ExactMeetings(a, b);
        Places const places = Intersections(a, b, kFine);
        ASSERT_EQ(places.size(), truth.All().size()) << i;
        for (std::size_t k = 0; k < places.size(); ++k) {
            EXPECT_EQ(places[k].kind, IntersectionKind::kCrossing) << i;
            EXPECT_NEAR(places[k].a.t, truth.All()[k].s, kFine) << i;
            EXPECT_NEAR(places[k].b.t, truth.All()[k].t, kFine) << i;
            ++crossings;
        }
    }
    EXPECT_GT(crossings, 100);
}

TEST(Intersections, CrossWhereExactAlgebraHasAnOddOrder) {
    // Curves through one point, with the same tangent there or by chance another one.
    Random random(4);
    int contacts = 0;
    int crossings = 0;
    for (int i = 0; i < 300; ++i) {
        CBezier const a = random.ShortCurve(8, 8);
        CBezier b = random.ShortCurve(8, 8);
        b += a.MidPt() - b.MidPt();
        auto const truth = trammel_test::ExactMeetings(a, b);
        auto const swapped = trammel_test::ExactMeetings(b, a);
        Places const places = Intersections(a, b, kFine);
        // The judge is blind where its second curve has a cusp, a loop's knot or a straight course.
        if (!truth.Finite() || !swapped.Finite() || truth.All().size() != swapped.All().size()) {
            continue;
        }
        ASSERT_EQ(places.size(), truth.All().size()) << i;
        for (std::size_t k = 0; k < places.size(); ++k) {
            auto const& place = places[k];
            EXPECT_NEAR(place.a.t, truth.All()[k].s, 1e-4) << i;
            if (place.kind != IntersectionKind::kEnd) {
                bool const odd = truth.All()[k].order % 2 == 1;
                EXPECT_EQ(place.kind,
                          odd ? IntersectionKind::kCrossing : IntersectionKind::kContact)
                    << i;
                ++(odd ? crossings : contacts);
            }
        }
    }
    EXPECT_GT(contacts, 3);
    EXPECT_GT(crossings, 150);
}

TEST(Intersections, LieWithinTheAccuracyOfBoth) {
    Random random(5);
    for (int i = 0; i < 1000; ++i) {
        CBezier const a = random.Curve();
        CBezier const b = i % 2 == 0 ? random.Curve() : a + Pt(random.Between(0, 1e-4), 0);
        double const accuracy = std::pow(10.0, random.Between(-12, 1));
        Places places;
        double const kept = AppendIntersections(a, b, accuracy, places);
        EXPECT_GE(kept, accuracy);
        EXPECT_LE(kept, std::max(accuracy, 200 * 0x1p-40));
        for (Intersection const& p : places) {
            EXPECT_LE(Distance(a.TPt(p.a.t), b.TPt(p.b.t)), kept * (1 + 1e-6) + 1e-13);
            EXPECT_LE(Distance(a.TPt(p.a.endT), b.TPt(p.b.endT)), kept * (1 + 1e-6) + 1e-13);
            EXPECT_EQ(p.point, a.TPt(p.a.t));
            EXPECT_EQ(p.endPoint, a.TPt(p.a.endT));
        }
    }
}

// The curve and the straight one that backs up by a rounding stand still at their common end, in
// one direction. Newton's method stops there with points that are far apart.
TEST(Intersections, LieWithinTheAccuracyWhereBothCurvesStandStill) {
    double const k = 1461.7099199295053;
    CBezier const straight(Pt(-k, -k - 0x1p-42), Pt(-k - 0x1p-41, -k - 3 * 0x1p-42), Pt(0, 0),
                           Pt(0, 0));
    CBezier const curve(Pt(0, -12), Pt(-12, 19), Pt(-k + 0x1p-40, -k + 3 * 0x1p-42),
                        Pt(-k + 0x1p-41, -k + 0x1p-42));
    Places places;
    double const kept = AppendIntersections(straight, curve, 0.0, places);
    EXPECT_EQ(Kinds(places), "EX");
    for (Intersection const& p : places) {
        EXPECT_LE(Distance(straight.TPt(p.a.t), curve.TPt(p.b.t)), kept);
    }
}

// Rounding is as small as the drawing.
TEST(Intersections, OfASmallDrawingLieWithinTheAccuracyOfBoth) {
    double const k = 0x1p-35;
    CBezier const halting(Pt(0, 0), Pt(k, k), Pt(k, k), Pt(k, k));
    CBezier const bent(Pt(k, k), Pt(k * 0x1p-16, k * 0x1p-16), Pt(k * 0x1p-16, 0), Pt(0, 0));
    Places places;
    double const kept = AppendIntersections(halting, bent, 0.0, places);
    ASSERT_FALSE(places.empty());
    for (Intersection const& p : places) {
        EXPECT_LE(Distance(halting.TPt(p.a.t), bent.TPt(p.b.t)), kept);
    }
}

TEST(Intersections, TellWhereCurvesComeWithinAQuarterOfTheAccuracy) {
    Random random(8);
    for (int i = 0; i < 6000; ++i) {
        CBezier const a = random.Curve();
        CBezier b = random.Curve();
        double const accuracy = std::pow(10.0, random.Between(-10, -1));
        // A parameter of either curve, now and then an end.
        double const s = i % 3 == 0 ? i % 2 : random.Between(0, 1);
        double const t = i % 5 == 0 ? i % 2 : random.Between(0, 1);
        if (i % 2 == 1) { // with nearly the same tangent there
            auto const angle = [](CBezier const& c, double at) {
                return (c.TPt(at + 1e-6) - c.TPt(at - 1e-6)).Angle();
            };
            b.Rotate(angle(a, s) - angle(b, t) + std::pow(10.0, random.Between(-9, 0)));
        }
        double const turn = random.Between(0, 7);
        Pt const gap = Pt(std::cos(turn), std::sin(turn)) * (accuracy * random.Between(0, 0.249));
        b += a.TPt(s) - b.TPt(t) + gap;
        Pt const there = a.TPt(s);
        bool told = false;
        for (Intersection const& p : Intersections(a, b, accuracy)) {
            // The curves stay within the accuracy all the way from the place that is told.
            bool connected =
                Distance(p.point, there) < 5 * accuracy || (p.a.t <= s && s <= p.a.endT);
            if (!connected) {
                connected = true;
                for (int k = 0; k <= 50 && connected; ++k) {
                    Pt const between = a.TPt(s + (p.a.t - s) * k / 50);
                    connected = trammel::NearestPoint(b, between, accuracy / 1000).distance <=
                                1.01 * accuracy;
                }
            }
            told = told || connected;
        }
        EXPECT_TRUE(told) << i;
    }
}

TEST(Intersections, TellEndsThatAreNearWhereAHandleIsShort) {
    // The foot of one end on the other curve was once missed, where the curve hardly moves.
    CBezier const a(
        Pt(2.995870561182489, 8.6055569353222179), Pt(2.9958705664223801, 8.6055569177866094),
        Pt(2.9958705674262851, 8.6055569239391208), Pt(8.1866660166496583, 9.3311712209382645));
    CBezier const b(
        Pt(2.9958705598030111, 8.6055569342925491), Pt(2.9958705611825547, 8.6055569353223866),
        Pt(8.8463431400802541, 7.1702260886053963), Pt(2.9973689593383193, 8.6053280233840059));
    EXPECT_EQ(Kinds(Intersections(a, b, 2.2748635188730333e-08)), "E");
    EXPECT_EQ(Kinds(Intersections(b, a, 2.2748635188730333e-08)), "E");
}

TEST(Intersections, OfTheSamePointsInAnotherOrderEndWithinTheAccuracy) {
    // The curves share ends and handles, which are off by up to 1.
    Random random(9);
    for (int i = 0; i < 1000; ++i) {
        Pt const points[] = {random.Point(), random.Point(), random.Point()};
        auto const pick = [&] {
            double const off = std::pow(10.0, random.Between(-16, 0));
            return points[static_cast<std::size_t>(random.Between(0, 3))] +
                   Pt(random.Between(-off, off), random.Between(-off, off));
        };
        CBezier const a(pick(), pick(), pick(), pick());
        CBezier const b(pick(), pick(), pick(), pick());
        double const accuracy = std::pow(10.0, random.Between(-12, 1));
        Places places;
        double const kept = AppendIntersections(a, b, accuracy, places);
        EXPECT_GE(kept, accuracy);
        EXPECT_LE(places.size(), 9U);
        // Places are in order, not the stretches in which they lie.
        EXPECT_TRUE(std::is_sorted(places.begin(), places.end(),
                                   [](auto const& p, auto const& q) { return p.a.t < q.a.t; }));
        for (Intersection const& p : places) {
            EXPECT_LE(Distance(a.TPt(p.a.t), b.TPt(p.b.t)), kept * (1 + 1e-6) + 1e-13);
            EXPECT_LE(Distance(a.TPt(p.a.endT), b.TPt(p.b.endT)), kept * (1 + 1e-6) + 1e-13);
        }
    }
}

TEST(Intersections, AreTheSameForSwappedReversedMovedAndDividedCurves) {
    Random random(6);
    CMatrix3x3 matrix;
    matrix.Rotate(0.7).Scale(3.0, -0.5).Translate(Pt(1000, -77));
    for (int i = 0; i < 1000; ++i) {
        CBezier const a = random.Curve();
        CBezier const b = random.Curve();
        Places const places = Intersections(a, b, kFine);
        Places swapped = Intersections(b, a, kFine);
        Places const reversed = Intersections(Reversed(a), b, kFine);
        Places const mapped =
            Intersections(CBezier(a).Transform(matrix), CBezier(b).Transform(matrix), kFine);
        ASSERT_EQ(swapped.size(), places.size()) << i;
        ASSERT_EQ(reversed.size(), places.size()) << i;
        ASSERT_EQ(mapped.size(), places.size()) << i;
        std::sort(swapped.begin(), swapped.end(),
                  [](Intersection const& p, Intersection const& q) { return p.b.t < q.b.t; });
        for (std::size_t k = 0; k < places.size(); ++k) {
            EXPECT_EQ(swapped[k].kind, places[k].kind);
            EXPECT_NEAR(swapped[k].b.t, places[k].a.t, kFine);
            EXPECT_NEAR(reversed[places.size() - 1 - k].a.t, 1 - places[k].a.t, kFine);
            EXPECT_NEAR(mapped[k].a.t, places[k].a.t, kFine);
        }
        double const cut = random.Between(0, 1);
        CBezier head;
        CBezier tail;
        a.Divide(head, tail, cut);
        EXPECT_EQ(Intersections(head, b, kFine).size() + Intersections(tail, b, kFine).size(),
                  places.size())
            << i;
    }
}

TEST(Intersections, OfCurvesOfAnySizeAreAlike) {
    Random random(7);
    for (int i = 0; i < 200; ++i) {
        CBezier const a = random.Curve();
        CBezier const b = random.Curve();
        Places const places = Intersections(a, b, kFine);
        for (int const exponent : {-1060, -900, -200, 200, 900, 1016}) {
            double const scale = std::scalbn(1.0, exponent);
            Places const scaled = Intersections(a * scale, b * scale, kFine * scale);
            ASSERT_EQ(Kinds(scaled), Kinds(places)) << i << " " << exponent;
            // The smallest numbers have few digits.
            double const slack = exponent < -1000 ? 1e-3 : kFine;
            for (std::size_t k = 0; k < places.size(); ++k) {
                EXPECT_NEAR(scaled[k].a.t, places[k].a.t, slack);
                EXPECT_TRUE(std::isfinite(scaled[k].point.h));
            }
        }
        // Differences of these overflow.
        CBezier const greatA = a * 0x1p1018 - Pt(0x1.9p1023, 0x1.9p1023);
        CBezier const greatB = b * 0x1p1018 - Pt(0x1.9p1023, 0x1.9p1023);
        for (Intersection const& p : Intersections(greatA, greatB, 0x1p980)) {
            EXPECT_TRUE(IsFinite(p.point));
        }
    }
}

TEST(Intersections, OfADrawingFarFromTheOriginAreAsSharp) {
    CBezier const a(Pt(0, 0), Pt(1, 3), Pt(2, 3), Pt(3, 0));
    Line const line(Pt(0, 1), Pt(3, 2));
    Places const near = Intersections(a, line, 0.0);
    Pt const far(0x1p40, -0x1p40);
    Places places;
    EXPECT_LT(AppendIntersections(a + far, line + far, 0.0, places), 1e-11);
    ASSERT_EQ(places.size(), near.size());
    ASSERT_EQ(places.size(), 2U);
    EXPECT_NEAR(places[0].a.t, near[0].a.t, 1e-3); // the line's inner points are rounded
}

TEST(Intersections, OfPointsAreEnds) {
    CBezier const curve(Pt(0, 0), Pt(1, 3), Pt(2, 3), Pt(3, 0));
    Pt const on = curve.TPt(0.375);
    CBezier const point(on, on, on, on);
    Places const places = Intersections(curve, point, kFine);
    ASSERT_EQ(Kinds(places), "E");
    EXPECT_NEAR(places[0].a.t, 0.375, 1e-8);
    EXPECT_EQ(Kinds(Intersections(point, curve, kFine)), "E");
    EXPECT_EQ(Kinds(Intersections(point, point, kFine)), "E");
    EXPECT_EQ(Kinds(Intersections(point, point + Pt(1, 0), kFine)), "");
    EXPECT_EQ(Kinds(Intersections(CBezier(), CBezier(), kFine)), "E");
    Places none;
    for (double const accuracy : {-1.0, trammel_test::kNaN}) {
        EXPECT_EQ(AppendIntersections(CBezier(), CBezier(), accuracy, none), 0.0);
    }
}

TEST(Intersections, OfCurvesThatAreNotFiniteAreNone) {
    CBezier const curve(Pt(0, 0), Pt(1, 3), Pt(2, 3), Pt(3, 0));
    for (double const bad : {trammel_test::kNaN, trammel_test::kInf, -trammel_test::kInf}) {
        for (Pt CBezier::*const point : {&CBezier::P0, &CBezier::P1, &CBezier::P2, &CBezier::P3}) {
            for (double Pt::*const coordinate : {&Pt::h, &Pt::v}) {
                CBezier spoilt = curve;
                spoilt.*point.*coordinate = bad;
                EXPECT_TRUE(Intersections(curve, spoilt, kFine).empty());
                EXPECT_TRUE(Intersections(spoilt, curve, kFine).empty());
                EXPECT_TRUE(Intersections(spoilt, spoilt, kFine).empty());
            }
        }
    }
}

TEST(Intersections, ToAnAccuracyThatRoundingForbidsHaveTheFinest) {
    CBezier const a(Pt(0, 0), Pt(1, 3), Pt(2, 3), Pt(3, 0));
    CBezier const b(Pt(0, 1), Pt(1, 1), Pt(2, 1), Pt(3, 1));
    for (double const accuracy : {0.0, -1.0, trammel_test::kNaN, 1e-300}) {
        Places places;
        double const kept = AppendIntersections(a, b, accuracy, places);
        EXPECT_EQ(Kinds(places), "XX");
        EXPECT_EQ(kept, 3 * 0x1p-40);
    }
    Places places;
    EXPECT_EQ(AppendIntersections(a, b, trammel_test::kInf, places), trammel_test::kInf);
    EXPECT_EQ(places.size(), 1U);
    // Everything is within a quarter of this. Once it was taken for the distance of the farthest.
    for (double const accuracy : {60.0, 1e9, 1.7e308}) {
        EXPECT_EQ(Kinds(Intersections(a, b + Pt(9, 0), accuracy)), "E");
        EXPECT_EQ(
            Kinds(Intersections(Line(Pt(0, 0), Pt(1, 0)), Line(Pt(9, 0), Pt(9, 1)), accuracy)),
            "E");
    }
}

TEST(Intersections, OfACurveAndAMuchLargerOneAreTold) {
    // Beside the larger curve, the smaller one is a point that rounding cannot tell from its chord.
    CBezier const small(Pt(0, 30), Pt(6, 480), Pt(0x1p113, -106), Pt(0, 14));
    CBezier const great(Pt(0x1p900, 111), Pt(111, 1e11), Pt(1e11, 6), Pt(-78, -39));
    EXPECT_EQ(Kinds(Intersections(small, great, 0x1p890)), "E");
    EXPECT_EQ(Kinds(Intersections(great, small, 0x1p890)), "E");
    EXPECT_EQ(Kinds(Intersections(Reversed(small), great, 0x1p890)), "E");
}

TEST(Intersections, AreAppended) {
    Places places;
    AppendIntersections(Line(Pt(0, 0), Pt(4, 4)), Line(Pt(0, 4), Pt(4, 0)), kFine, places);
    AppendIntersections(Line(Pt(0, 0), Pt(4, 4)), Line(Pt(0, 2), Pt(2, 0)), kFine, places);
    ASSERT_EQ(places.size(), 2U);
    EXPECT_NEAR(places[0].a.t, 0.5, kClose);
    EXPECT_NEAR(places[1].a.t, 0.25, kClose);
}

} // namespace
