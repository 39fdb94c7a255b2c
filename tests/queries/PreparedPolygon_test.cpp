// SPDX-License-Identifier: MIT

#include "PreparedPolygon.h"

#include "ShortMemory.h"
#include "TestSupport.h"
#include "plain/PlainPolygon.h"

#ifdef TRAMMEL_TEST_MAPS
#include "CountryOutlines.h"
#endif

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using trammel::PreparedPolygon;
using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Random;
using trammel_test::Rounds;
using trammel_test::Text;

typedef TPoint<double> Pt;
typedef std::vector<Pt> Points;

constexpr double kPi = 3.14159265358979323846;
constexpr double kTiny = std::numeric_limits<double>::denorm_min();

TPolygon<double> PointList(Points const& vertices) {
    TPolygon<double> polygon;
    for (Pt const& p : vertices) {
        polygon.Append(p, true);
    }
    return polygon;
}

/// A handle polygon that is disposed.
class HandlePolygon {
public:
    CFPolygonRef ref;

    explicit HandlePolygon(Points const& vertices) { ref.CFPolygonCreate(vertices); }
    ~HandlePolygon() { ref.Dispose(); }
    HandlePolygon(HandlePolygon const&) = delete;
    HandlePolygon& operator=(HandlePolygon const&) = delete;
};

/// Compares answers and tells the first few that differ.
class Comparison {
public:
    Comparison(std::string name, Points const& vertices)
        : mName(std::move(name)), mPointList(PointList(vertices)), mHandle(vertices),
          mPreparedPointList(mPointList), mPreparedHandle(mHandle.ref) {}
    ~Comparison() { EXPECT_EQ(mDifferent, 0) << mName << ", " << mCount << " points"; }
    Comparison(Comparison const&) = delete;
    Comparison& operator=(Comparison const&) = delete;

    void operator()(Pt const& p) {
        ++mCount;
        bool const list = mPointList.Contains(p);
        bool const handle = mHandle.ref.Contains(p);
        mInside += list ? 1 : 0;
        if (mPreparedPointList.Contains(p) != list || mPreparedHandle.Contains(p) != handle) {
            if (++mDifferent <= 3) {
                ADD_FAILURE() << mName << ": " << Text(p) << ", point list "
                              << (list ? "inside" : "outside") << ", handle polygon "
                              << (handle ? "inside" : "outside");
            }
        }
    }
    long Count() const { return mCount; }
    long Inside() const { return mInside; }

private:
    std::string mName;
    TPolygon<double> mPointList;
    HandlePolygon mHandle;
    PreparedPolygon mPreparedPointList;
    PreparedPolygon mPreparedHandle;
    long mCount = 0;
    long mInside = 0;
    long mDifferent = 0;
};

/// `x` and its neighbours.
std::array<double, 3> Around(double x) {
    return {x, std::nextafter(x, -kInf), std::nextafter(x, kInf)};
}

/// A coordinate with which something may go wrong.
double Special(Random& random) {
    double const values[] = {kNaN,  kInf,           -kInf,    0.0,        -0.0,    kTiny,    -kTiny,
                             kHuge, -kHuge,         0x1p1000, 1e-300,     1.0,     -1.0,     3.0,
                             -3.0,  0x1p1000 * 1.5, 1e16,     1e16 + 2.0, 1.7e308, -1.7e308, 2.0};
    return values[random.Integer(0, static_cast<int>(std::size(values)) - 1)];
}

/// The same, of those up to 2^1000 that are numbers.
double SpecialWithinLimits(Random& random) {
    double const values[] = {0.0,  -0.0, kTiny, -kTiny,     1e-300,   -1e-310,   1.0,     -1.0,
                             1e16, 3.0,  -3.0,  1e16 + 2.0, 0x1p1000, -0x1p1000, 0x1p999, 2.0};
    return values[random.Integer(0, static_cast<int>(std::size(values)) - 1)];
}

/// `count` points at places where the answer is most easily wrong: at, on and right beside vertices
/// and edges, at vertices' heights; and anywhere.
void Ask(Comparison& compare, Points const& vertices, int count, Random& random) {
    TRect<double> box;
    for (Pt const& p : vertices) {
        box |= p;
    }
    auto const any = [&random](double lo, double hi) {
        double const margin = (hi - lo) * 0.1;
        return random.Uniform(lo - margin, hi + margin);
    };
    int const last = static_cast<int>(vertices.size()) - 1;
    for (int i = 0; i < count; ++i) {
        Pt p(any(box.left, box.right), any(box.top, box.bottom));
        if (last >= 0 && i % 4 != 0) {
            int const edge = random.Integer(0, last);
            Pt const a = vertices[static_cast<std::size_t>(edge)];
            Pt const b = vertices[static_cast<std::size_t>(edge < last ? edge + 1 : 0)];
            switch (i % 8) {
            case 1: // a vertex, or right beside it
                p.Set(Around(a.h)[static_cast<std::size_t>(random.Integer(0, 2))],
                      Around(a.v)[static_cast<std::size_t>(random.Integer(0, 2))]);
                break;
            case 2:
            case 3: // at a vertex's height
                p.v = a.v;
                break;
            case 5: // below or above a vertex
                p.h = a.h;
                break;
            default: { // where the formula puts the edge, or right beside that
                double const v = i % 8 == 6
                                     ? vertices[static_cast<std::size_t>(random.Integer(0, last))].v
                                     : a.v + (b.v - a.v) * random.Uniform(0.0, 1.0);
                double const h = a.h - (a.v - v) * ((a.h - b.h) / (a.v - b.v));
                p.Set(Around(h)[static_cast<std::size_t>(random.Integer(0, 2))], v);
                break;
            }
            }
        }
        compare(p);
    }
}

void AskSpecial(Comparison& compare, int count, Random& random) {
    for (int i = 0; i < count; ++i) {
        double const h = Special(random);
        compare(Pt(h, Special(random)));
    }
}

// --------------------------------------------------------------------------------------------------
// Shapes. Heights are v, which the index is sorted by.

/// A smooth outline around (0, 0).
Points Smooth(int count) {
    Points vertices;
    for (int i = 0; i < count; ++i) {
        double const angle = 2.0 * kPi * i / count;
        double const radius = 300.0 + 60.0 * std::sin(5.0 * angle) + 20.0 * std::sin(37.0 * angle);
        vertices.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    return vertices;
}

/// A ragged outline around (0, 0): many edges at each height.
Points Star(int count, Random& random) {
    Points vertices;
    for (int i = 0; i < count; ++i) {
        double const angle = 2.0 * kPi * i / count;
        double const radius = random.Uniform(200.0, 450.0);
        vertices.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    return vertices;
}

/// Teeth along h; `lean` moves the tips sideways, `ragged` makes them differ in height.
Points Comb(int count, double lean, double ragged, Random& random) {
    Points vertices;
    for (int i = 0; i < count; ++i) {
        bool const tip = i % 2 != 0;
        vertices.emplace_back(1000.0 * i / count + (tip ? lean : 0.0),
                              (tip ? 1000.0 : 0.0) + random.Uniform(-ragged, ragged));
    }
    return vertices;
}

/// Teeth along v, the heights of which are all different.
Points Rack(int count) {
    Points vertices;
    for (int i = 0; i < count; ++i) {
        vertices.emplace_back(i % 2 != 0 ? 1000.0 : 0.0, 1000.0 * i / count);
    }
    return vertices;
}

/// Vertical and horizontal edges by turns: stairs there, one line back.
Points Saw(int count) {
    Points vertices;
    for (int i = 0; i < count; ++i) {
        int const step = (i + 1) / 2;
        int const level = i / 2 % 10;
        vertices.emplace_back(3.0 * step, 7.0 * level);
    }
    return vertices;
}

Points Spiral(int count, double turns) {
    Points vertices;
    int const half = count / 2;
    for (int i = 0; i < count; ++i) {
        double const part = static_cast<double>(i < half ? i : count - 1 - i) / half;
        double const radius = 10.0 + 400.0 * part + (i < half ? 0.0 : 150.0 / turns);
        double const angle = 2.0 * kPi * turns * part;
        vertices.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    return vertices;
}

/// Long edges all over the place that cross each other.
Points Tangle(int count, Random& random) {
    Points vertices;
    for (int i = 0; i < count; ++i) {
        vertices.push_back(random.Point(100.0));
    }
    return vertices;
}

/// Vertices on a coarse grid: many at one place, many edges over each other and without height.
Points Lattice(int count, int size, Random& random) {
    Points vertices;
    for (int i = 0; i < count; ++i) {
        double const h = random.Integer(0, size);
        vertices.emplace_back(h, random.Integer(0, size));
    }
    return vertices;
}

Points Moved(Points vertices, double h, double v, double scale) {
    for (Pt& p : vertices) {
        p.Set(p.h * scale + h, p.v * scale + v);
    }
    return vertices;
}

// --------------------------------------------------------------------------------------------------

TEST(PreparedPolygon, KnowsInsideFromOutside) {
    Points const vertices = {{40, 0}, {40, 40}, {20, 10}, {0, 0}};
    PreparedPolygon const prepared(PointList(vertices));
    EXPECT_TRUE(prepared.Contains({30, 15}));
    EXPECT_TRUE(prepared.Contains({10, 1}));
    EXPECT_FALSE(prepared.Contains({10, 20}));
    EXPECT_FALSE(prepared.Contains({41, 10}));
    EXPECT_FALSE(prepared.Contains({kNaN, 15}));
    EXPECT_FALSE(prepared.Contains({30, kNaN}));
}

TEST(PreparedPolygon, OfNothingContainsNothing) {
    PreparedPolygon const none;
    EXPECT_FALSE(none.Contains({0, 0}));
    EXPECT_EQ(none.MemorySize(), 0U);
    EXPECT_FALSE(PreparedPolygon(TPolygon<double>()).Contains({0, 0}));
    EXPECT_FALSE(PreparedPolygon(CFPolygonRef()).Contains({0, 0}));
    TPolygon<double> taken;
    TPolygon<double> const other(std::move(taken));
    EXPECT_FALSE(PreparedPolygon(taken).Contains({0, 0})); // NOLINT: without storage now
}

TEST(PreparedPolygon, AnswersLikeThePolygonsOfEverySmallSize) {
    Random random(1);
    long inside = 0;
    for (int size = 0; size <= 140; ++size) {
        for (int round = 0; round < 8; ++round) {
            Points const vertices =
                round % 2 == 0 ? Tangle(size, random) : Lattice(size, 1 + round * 2, random);
            Comparison compare("small " + Text(vertices), vertices);
            Ask(compare, vertices, 300, random);
            AskSpecial(compare, 50, random);
            inside += compare.Inside();
        }
    }
    EXPECT_GT(inside, 50000);
}

TEST(PreparedPolygon, AnswersLikeThePolygonsWhateverTheVertices) {
    Random random(2);
    for (int round = 0; round < 3000; ++round) {
        int const size = round % 2 == 0 ? random.Integer(65, 200) : random.Integer(1, 80);
        Points vertices = round % 3 == 0 ? Lattice(size, 4, random) : Tangle(size, random);
        // From a single strange number to nothing but.
        int const strange = random.Integer(1, 1 + size * (round % 4));
        for (int i = 0; i < strange; ++i) {
            Pt& p = vertices[static_cast<std::size_t>(random.Integer(0, size - 1))];
            double const special = round % 4 < 2 ? Special(random) : SpecialWithinLimits(random);
            (random.Integer(0, 1) != 0 ? p.h : p.v) = special;
        }
        Comparison compare("strange " + Text(vertices), vertices);
        Ask(compare, vertices, 80, random);
        AskSpecial(compare, 80, random);
    }
}

TEST(PreparedPolygon, AnswersLikeThePolygonsForShapesOfManyKinds) {
    Random random(3);
    std::vector<std::pair<std::string, Points>> shapes;
    for (int const size : {100, 1000, 5000}) {
        std::string const text = " of " + std::to_string(size);
        shapes.emplace_back("smooth" + text, Smooth(size));
        shapes.emplace_back("star" + text, Star(size, random));
        shapes.emplace_back("comb" + text, Comb(size, 0.0, 0.0, random));
        shapes.emplace_back("ragged comb" + text, Comb(size, 0.0, 400.0, random));
        shapes.emplace_back("leaning comb" + text, Comb(size, 300.0, 0.0, random));
        shapes.emplace_back("leaning, ragged comb" + text, Comb(size, 300.0, 50.0, random));
        shapes.emplace_back("rack" + text, Rack(size));
        shapes.emplace_back("saw" + text, Saw(size));
        shapes.emplace_back("spiral" + text, Spiral(size, 20.0));
        shapes.emplace_back("tangle" + text, Tangle(size, random));
        shapes.emplace_back("lattice" + text, Lattice(size, 50, random));
        shapes.emplace_back("far off" + text, Moved(Star(size, random), 1e9, -1e12, 1e-3));
        shapes.emplace_back("tiny" + text, Moved(Star(size, random), 0.0, 0.0, 1e-310));
        shapes.emplace_back("huge" + text, Moved(Star(size, random), 0.0, 0.0, 1e305));
        shapes.emplace_back("flat" + text, Moved(Star(size, random), 0.0, 1e18, 1.0));
        Points outlier = Star(size, random); // leaves all others in one bucket
        outlier[7].Set(1e15, -1e15);
        shapes.emplace_back("outlier" + text, outlier);
        Points roofed = Comb(size, 0.0, 5.0, random); // one edge over all the teeth
        roofed.emplace_back(0.0, 999.0);
        roofed.emplace_back(1000.0, 1.0);
        shapes.emplace_back("roofed comb" + text, roofed);
    }
    long count = 0;
    for (auto const& [name, vertices] : shapes) {
        Comparison compare(name, vertices);
        Ask(compare, vertices, Rounds(6000), random);
        AskSpecial(compare, 100, random);
        count += compare.Count();
    }
    EXPECT_GT(count, Rounds(300000));
}

// Extents that no scale can be computed for, edges whose slope is infinite or nothing, and all
// heights but some in one place.
TEST(PreparedPolygon, AnswersLikeThePolygonsOfNoExtent) {
    Random random(15);
    auto const vertices = [&random](int size, double h, double v) {
        Points points = Lattice(size, 7, random);
        for (Pt& p : points) {
            p.Set((p.h - 3.5) * h, (p.v - 3.5) * v);
        }
        return points;
    };
    for (int const size : {65, 66, 100, 1000}) {
        for (double const h : {0.0, kTiny, 1e-300, 1.0, 1e15, 0x1p990, 0x1p1022}) {
            for (double const v : {0.0, kTiny, 1e-300, 1.0, 1e15, 0x1p990, 0x1p1022}) {
                Points points = vertices(size, h, v);
                Comparison compare("no extent", points);
                Ask(compare, points, 300, random);
                AskSpecial(compare, 100, random);
                points[3] = Pt(h * 1e9, v * -1e9);
                points[60].v = points[3].v;
                Comparison compareFar("far off", points);
                Ask(compareFar, points, 300, random);
                AskSpecial(compareFar, 100, random);
            }
        }
    }
}

// Heights whose differences overflow, and of which most lie beside each other: edges are cut where
// the formula makes a NaN.
TEST(PreparedPolygon, AnswersLikeThePolygonsWhereDifferencesOverflow) {
    Random random(17);
    double const levels[] = {-3.9, -3.8, -3.7, -3.6, 1.0, 2.0, 3.0, 3.5};
    for (double const scale : {1.0, 0x1p999, 0x1p1022}) {
        for (int round = 0; round < 20; ++round) {
            Points points = Lattice(1000, 7, random);
            for (Pt& p : points) {
                p.v = levels[static_cast<std::size_t>(p.v)] * scale;
            }
            Comparison compare("overflow", points);
            for (int i = 0; i < 400; ++i) {
                double const h = random.Uniform(-0.5, 7.5);
                compare(Pt(h, levels[random.Integer(0, 7)] * scale));
                compare(Pt(h, random.Uniform(-3.9, 3.5) * scale));
            }
            EXPECT_GT(compare.Inside(), 100);
        }
    }
}

// A point's coordinates are compared in few bits first: here many are equal in these.
TEST(PreparedPolygon, AnswersLikeThePolygonsWithinTheBandOfRounding) {
    Random random(16);
    for (int const size : {70, 300, 3000}) {
        for (double const scale : {1e-6, 1e-4, 1.0}) {
            Points points = Moved(Star(size, random), 0.5, 0.25, scale);
            points[1] = Pt(-1.0, -1.0); // makes the rest small beside the whole
            points[2] = Pt(1.0, 1.0);
            Comparison compare("band", points);
            Ask(compare, points, 4000, random);
            for (int i = 0; i < 4000; ++i) {
                Pt const p = random.Point(450.0 * scale);
                compare(Pt(p.h + 0.5, p.v + 0.25));
            }
            EXPECT_GT(compare.Inside(), 500);
        }
    }
}

TEST(PreparedPolygon, AnswersLikeThePolygonsOfAHundredThousandVertices) {
    Random random(4);
    constexpr int kSize = 100000;
    for (Points const& vertices :
         {Smooth(kSize), Star(kSize, random), Comb(kSize, 0.0, 0.0, random),
          Comb(kSize, 300.0, 20.0, random), Comb(kSize, 0.0, 450.0, random), Rack(kSize),
          Saw(kSize), Spiral(kSize, 50.0), Lattice(kSize, 300, random)}) {
        Comparison compare("large", vertices);
        Ask(compare, vertices, Rounds(400), random);
    }
}

// An edge is settled without its formula outside an interval. The interval ends at the formula's
// own value where the edge is cut, at a vertex's height. These points lie within a few steps of it.
TEST(PreparedPolygon, AnswersLikeThePolygonsWithinStepsOfAnEdge) {
    Random random(5);
    for (int round = 0; round < Rounds(60); ++round) {
        Points const vertices = round % 2 == 0
                                    ? Comb(100, random.Uniform(-900.0, 900.0), 30.0, random)
                                    : Tangle(100, random);
        Comparison compare("steps", vertices);
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            Pt const a = vertices[i];
            Pt const b = vertices[(i + 1) % vertices.size()];
            for (std::size_t j = 0; j < vertices.size(); j += 4) {
                for (double const v : Around(vertices[j].v)) {
                    double h = a.h - (a.v - v) * ((a.h - b.h) / (a.v - b.v));
                    for (int k = 0; k < 3; ++k) {
                        h = std::nextafter(h, -kInf);
                    }
                    for (int k = 0; k < 6; ++k) {
                        compare(Pt(h, v));
                        h = std::nextafter(h, kInf);
                    }
                }
            }
        }
    }
}

TEST(PreparedPolygon, AnswersLikeThePlainRule) {
    Random random(6);
    for (int const size : {3, 30, 300}) {
        Points const vertices = Star(size, random);
        PreparedPolygon const prepared(HandlePolygon(vertices).ref);
        for (int i = 0; i < 5000; ++i) {
            Pt const p = random.Point(450.0);
            ASSERT_EQ(prepared.Contains(p), plain::OddCrossings(vertices, vertices.size(), p))
                << size << " vertices, " << Text(p);
        }
    }
}

TEST(PreparedPolygon, TakesAClosingPointForWhatThePolygonsTakeItFor) {
    Random random(7);
    for (int const size : {4, 40, 400}) {
        Points vertices = Star(size, random);
        vertices.push_back(vertices.front());
        Comparison compare("closing point", vertices);
        Ask(compare, vertices, 2000, random);
    }
    TPolygon<double> closed = PointList(Star(50, random));
    closed.Close();
    PreparedPolygon const prepared(closed);
    CFPolygonRef handle = closed;
    PreparedPolygon const preparedHandle(handle);
    for (int i = 0; i < 2000; ++i) {
        Pt const p = random.Point(450.0);
        ASSERT_EQ(prepared.Contains(p), closed.Contains(p)) << Text(p);
        ASSERT_EQ(preparedHandle.Contains(p), handle.Contains(p)) << Text(p);
    }
    handle.Dispose();
}

// Where the two families differ: a point-list polygon looks at its bounds first, and these can be
// too small for its vertices.
TEST(PreparedPolygon, KeepsToThePointListPolygonsBoundsEvenWhereTheyAreWrong) {
    TPolygon<double> polygon = PointList({{10, 0}, {10, 10}, {0, 0}});
    EXPECT_EQ(Text(polygon.Bounds()), "[0, 0, 10, 10]");
    polygon.Append({-50, 100}, true);
    EXPECT_FALSE(polygon.Contains({-22, 50}));
    PreparedPolygon const stale(polygon);
    EXPECT_FALSE(stale.Contains({-22, 50}));
    CFPolygonRef handle = polygon;
    EXPECT_TRUE(PreparedPolygon(handle).Contains({-22, 50}));
    handle.Dispose();
    polygon.InvalBounds();
    EXPECT_TRUE(PreparedPolygon(polygon).Contains({-22, 50}));
    EXPECT_FALSE(stale.Contains({-22, 50}));

    // A first vertex at the origin is forgotten by the bounds.
    Points const forgotten = {{0, 0}, {100, 10}, {100, 20}};
    HandlePolygon const whole(forgotten);
    EXPECT_TRUE(whole.ref.Contains({50, 7}));
    EXPECT_TRUE(PreparedPolygon(whole.ref).Contains({50, 7}));
    EXPECT_FALSE(PointList(forgotten).Contains({50, 7}));
    EXPECT_FALSE(PreparedPolygon(PointList(forgotten)).Contains({50, 7}));
}

TEST(PreparedPolygon, ComputesTheBoundsOfItsSourceAsContainsDoes) {
    TPolygon<double> const polygon = PointList({{1, 2}, {3, 4}, {5, 0}});
    EXPECT_FALSE(polygon.BoundsValid());
    PreparedPolygon const prepared(polygon);
    EXPECT_TRUE(polygon.BoundsValid());
    HandlePolygon const handle({{1, 2}, {3, 4}, {5, 0}});
    PreparedPolygon const preparedHandle(handle.ref);
    EXPECT_FALSE(handle.ref.BoundsValid());
}

TEST(PreparedPolygon, StaysAsThePolygonWas) {
    TPolygon<double> polygon = PointList({{0, 0}, {10, 0}, {10, 10}, {0, 10}});
    HandlePolygon handle({{0, 0}, {10, 0}, {10, 10}, {0, 10}});
    PreparedPolygon const ofList(polygon);
    PreparedPolygon const ofHandle(handle.ref);
    polygon.SetPt(2, {0, 0});
    handle.ref.Offset({100, 100});
    EXPECT_TRUE(ofList.Contains({9, 9}));
    EXPECT_TRUE(ofHandle.Contains({9, 9}));
    polygon = TPolygon<double>();
    handle.ref.Dispose();
    EXPECT_TRUE(ofList.Contains({9, 9}));
    EXPECT_TRUE(ofHandle.Contains({9, 9}));
}

TEST(PreparedPolygon, IsCopiedMovedAndAssigned) {
    PreparedPolygon const square(PointList({{0, 0}, {10, 0}, {10, 10}, {0, 10}}));
    PreparedPolygon copy(square);
    EXPECT_TRUE(copy.Contains({5, 5}));
    EXPECT_EQ(copy.MemorySize(), square.MemorySize());
    PreparedPolygon const moved(std::move(copy));
    EXPECT_TRUE(moved.Contains({5, 5}));
    EXPECT_FALSE(copy.Contains({5, 5})); // NOLINT: as documented
    EXPECT_EQ(copy.MemorySize(), 0U);
    copy = PreparedPolygon(PointList({{100, 0}, {110, 0}, {110, 10}, {100, 10}}));
    EXPECT_TRUE(copy.Contains({105, 5}));
    copy = square;
    EXPECT_FALSE(copy.Contains({105, 5}));
    EXPECT_TRUE(copy.Contains({5, 5}));
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<PreparedPolygon>);
    EXPECT_TRUE(std::is_nothrow_move_assignable_v<PreparedPolygon>);
}

TEST(PreparedPolygon, AnswersManyPointsLikeOneByOne) {
    Random random(8);
    PreparedPolygon const none;
    for (int const size : {4, 100, 3000}) {
        Points const vertices =
            size == 4 ? Points({{0, 0}, {kNaN, 1}, {9, 9}, {0, 9}}) : Star(size, random);
        PreparedPolygon const prepared(PointList(vertices));
        for (int const count : {0, 1, 2, 15, 16, 17, 31, 33, 1000}) {
            Points points;
            for (int i = 0; i < count; ++i) {
                points.push_back(i % 7 == 3 ? Pt(Special(random), Special(random))
                                            : random.Point(450.0));
            }
            auto const room = static_cast<std::size_t>(count);
            std::unique_ptr<bool[]> const inside(new bool[room + 1]); // NOLINT: plain flags
            inside[room] = true;                                      // not to be touched
            prepared.Contains(points.data(), room, inside.get());
            for (std::size_t i = 0; i < room; ++i) {
                ASSERT_EQ(inside[i], prepared.Contains(points[i])) << Text(points[i]);
            }
            EXPECT_TRUE(inside[room]);
            none.Contains(points.data(), room, inside.get());
            EXPECT_EQ(std::count(inside.get(), inside.get() + room, true), 0);
        }
        prepared.Contains(nullptr, 0, nullptr);
    }
}

// What the header states, for outlines and for edges all over the place.
TEST(PreparedPolygon, TakesBoundedMemory) {
    Random random(9);
    for (int const size : {65, 1000, 100000}) {
        auto const perVertex = [size](Points const& vertices) {
            std::size_t const bytes = PreparedPolygon(PointList(vertices)).MemorySize();
            return (static_cast<double>(bytes) - 600.0) / static_cast<double>(size);
        };
        EXPECT_LT(perVertex(Smooth(size)), 40.0);
        EXPECT_LT(perVertex(Comb(size, 0.0, 0.0, random)), 40.0);
        Points outlier = Star(size, random);
        outlier[7].Set(1e15, -1e15);
        for (Points const& vertices :
             {Comb(size, 0.0, 500.0, random), Comb(size, 300.0, 400.0, random), Star(size, random),
              Tangle(size, random), Rack(size), Lattice(size, 40, random), outlier}) {
            EXPECT_LT(perVertex(vertices), 48.0);
        }
    }
    for (Points const& vertices : {Smooth(64), Moved(Smooth(1000), 0.0, 0.0, kHuge)}) {
        EXPECT_LT(static_cast<double>(PreparedPolygon(PointList(vertices)).MemorySize()),
                  600.0 + 16.0 * static_cast<double>(vertices.size()));
    }
}

TEST(PreparedPolygon, AllocatesNothingToAnswer) {
    Random random(10);
    Points const vertices = Comb(5000, 100.0, 300.0, random);
    PreparedPolygon const prepared(PointList(vertices));
    Points const points = Tangle(1000, random);
    std::array<bool, 1000> inside{};
    std::size_t const before = trammel_test::AllocationCount();
    long count = 0;
    for (Pt const& p : points) {
        count += prepared.Contains(p) ? 1 : 0;
    }
    prepared.Contains(points.data(), points.size(), inside.data());
    PreparedPolygon const copy(prepared);
    std::size_t const after = trammel_test::AllocationCount();
    EXPECT_EQ(after - before, 0U);
    EXPECT_EQ(std::count(inside.begin(), inside.end(), true), count);
    EXPECT_TRUE(copy.MemorySize() == prepared.MemorySize());
}

TEST(PreparedPolygon, IsAsItWasWhenMemoryRunsOut) {
    Random random(11);
    TPolygon<double> const polygon = PointList(Comb(3000, 100.0, 300.0, random));
    HandlePolygon const handle(Comb(3000, 100.0, 300.0, random));
    PreparedPolygon prepared(PointList({{0, 0}, {10, 0}, {10, 10}, {0, 10}}));
    int failures = 0;
    for (long allocations = 0;; ++allocations) {
        bool done = false;
        try {
            trammel_test::ShortMemory const memory(allocations);
            prepared =
                allocations % 2 == 0 ? PreparedPolygon(polygon) : PreparedPolygon(handle.ref);
            done = true;
        } catch (std::bad_alloc const&) {
            ++failures;
        }
        if (done) {
            break;
        }
        ASSERT_TRUE(prepared.Contains({5, 5}));
        ASSERT_FALSE(prepared.Contains({500, 500}));
    }
    EXPECT_GT(failures, 5);
    EXPECT_LT(failures, 100);
    EXPECT_FALSE(prepared.Contains({-5, 5}));
    EXPECT_GT(prepared.MemorySize(), 48000U);
}

// The time to build is proportional to the bytes allocated: about twice for twice the vertices.
TEST(PreparedPolygon, IsBuiltWithinAFewTimesItsSize) {
    Random random(12);
    for (int const size : {1000, 10000, 100000}) {
        TPolygon<double> const polygon = PointList(Comb(size, 0.0, 450.0, random));
        std::size_t const before = trammel_test::AllocatedBytes();
        PreparedPolygon const prepared(polygon);
        EXPECT_LT(trammel_test::AllocatedBytes() - before, 3 * prepared.MemorySize()) << size;
    }
}

TEST(PreparedPolygon, AnswersSeveralThreadsAtOnce) {
    Random random(13);
    Points const vertices = Star(2000, random);
    Points const points = Moved(Tangle(4000, random), 0.0, 0.0, 4.5);
    PreparedPolygon const prepared(PointList(vertices));
    std::vector<bool> expected;
    for (Pt const& p : points) {
        expected.push_back(prepared.Contains(p));
    }
    std::atomic<int> different{0};
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round) {
                PreparedPolygon const copy(prepared);
                for (std::size_t i = 0; i < points.size(); ++i) {
                    bool const inside = (i % 2 == 0 ? copy : prepared).Contains(points[i]);
                    different += inside != expected[i] ? 1 : 0;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(different, 0);
}

#ifdef TRAMMEL_TEST_MAPS

TEST(PreparedPolygon, AnswersLikeThePolygonsOfCountries) {
    for (char const* name : {"countries-110m.json", "countries-50m.json"}) {
        std::vector<Points> const contours = trammel_test::CountriesOf(name);
        if (contours.empty()) {
            GTEST_SKIP() << "no " << name << " (script/setup maps fetches it)";
        }
        EXPECT_GT(contours.size(), 200U);
        Random random(14);
        long inside = 0;
        for (Points const& contour : contours) {
            Comparison compare(name, contour);
            Ask(compare, contour, 400, random);
            inside += compare.Inside();
        }
        EXPECT_GT(inside, 10000);
    }
}

#endif

} // namespace
