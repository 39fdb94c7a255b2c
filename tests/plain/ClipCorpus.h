// SPDX-License-Identifier: MIT

// The clipper's own reference cases: figures on integer grids from a generator with a fixed seed,
// and the areas of the four operations on them by exact arithmetic.
#ifndef TRAMMEL_CLIPCORPUS_H
#define TRAMMEL_CLIPCORPUS_H

#include "PlainClip.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace plain {

__extension__ typedef __int128 Int128;

/// Random numbers that are the same with every standard library.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : mEngine(seed) {}

    /// An integer in low <= n <= high.
    int Int(int low, int high) {
        auto const count = static_cast<std::uint64_t>(high - low) + 1;
        return low + static_cast<int>(mEngine() % count);
    }
    /// A double in 0 <= v < 1.
    double Unit() { return static_cast<double>(mEngine() >> 11) * 0x1p-53; }

private:
    std::mt19937_64 mEngine;
};

struct GridCase {
    std::string name;
    Polygon a;
    Polygon b;
};

/// Added to all coordinates of the figures. The doubles between 1024 and 2048 have one spacing,
/// 2^-42, so the results' coordinates are integers of that unit and tests on them can be exact.
inline int const kGridOffset = 1024;
inline int const kGridLargest = 1000;

inline Vertex GridVertex(int x, int y) {
    return {static_cast<double>(x + kGridOffset), static_cast<double>(y + kGridOffset)};
}

inline Contour GridRectangle(int x0, int y0, int x1, int y1) {
    return {GridVertex(x0, y0), GridVertex(x1, y0), GridVertex(x1, y1), GridVertex(x0, y1)};
}

inline Contour RandomContour(Dice& dice, int vertices, int size) {
    Contour contour;
    for (int i = 0; i < vertices; ++i) {
        contour.push_back(GridVertex(dice.Int(0, size), dice.Int(0, size)));
    }
    return contour;
}

/// The figures: random polygons from dense grids (much coincides) to sparse ones (little does),
/// with several contours, repeated vertices and spikes; rectangles in every relative position;
/// nested rings; chessboards; combs; triangulated squares that share all their edges.
inline std::vector<GridCase> MakeGridCases() {
    Dice dice(20240607);
    std::vector<GridCase> cases;
    for (int const size : {4, 10, 100, kGridLargest}) {
        for (int const vertices : {3, 4, 5, 6, 8, 10, 15, 25}) {
            for (int i = 0; i < 6; ++i) {
                cases.push_back({"random " + std::to_string(size) + " " + std::to_string(vertices) +
                                     " " + std::to_string(i),
                                 {RandomContour(dice, vertices, size)},
                                 {RandomContour(dice, vertices, size)}});
            }
        }
        for (int i = 0; i < 12; ++i) {
            GridCase c{"contours " + std::to_string(size) + " " + std::to_string(i), {}, {}};
            for (Polygon* const operand : {&c.a, &c.b}) {
                for (int k = dice.Int(1, 4); k > 0; --k) {
                    operand->push_back(RandomContour(dice, dice.Int(3, 6), size));
                }
            }
            cases.push_back(c);
        }
        for (int i = 0; i < 12; ++i) {
            // Repeated vertices, vertices in the middle of edges, and edges that run back.
            GridCase c{"spikes " + std::to_string(size) + " " + std::to_string(i), {}, {}};
            for (Polygon* const operand : {&c.a, &c.b}) {
                Contour const contour = RandomContour(dice, 6, size / 2);
                Contour spiky;
                for (Vertex const& v : contour) {
                    spiky.push_back(v);
                    switch (dice.Int(0, 3)) {
                    case 0:
                        spiky.push_back(v);
                        break;
                    case 1:
                        spiky.push_back(GridVertex(dice.Int(0, size), dice.Int(0, size)));
                        spiky.push_back(v);
                        break;
                    default:
                        break;
                    }
                }
                operand->push_back(spiky);
            }
            cases.push_back(c);
        }
    }
    // One rectangle against all that begin and end before, at, within and behind its sides.
    int const at[] = {0, 10, 13, 17, 20, 24};
    for (std::size_t left = 0; left < 6; ++left) {
        for (std::size_t right = left + 1; right < 6; ++right) {
            for (std::size_t low = 0; low < 6; ++low) {
                for (std::size_t high = low + 1; high < 6; ++high) {
                    cases.push_back({"rectangles " + std::to_string(left) + std::to_string(right) +
                                         std::to_string(low) + std::to_string(high),
                                     {GridRectangle(10, 10, 20, 20)},
                                     {GridRectangle(at[left], at[low], at[right], at[high])}});
                }
            }
        }
    }
    for (int i = 0; i < 6; ++i) {
        GridCase c{"rings " + std::to_string(i), {}, {}};
        for (int k = 0; k < 8; ++k) {
            c.a.push_back(GridRectangle(k * 5, k * 5, 100 - k * 5, 100 - k * 5));
            int const d = dice.Int(0, 3);
            c.b.push_back(GridRectangle(k * 5 + d, k * 6, 103 - k * 5, 100 - k * 4));
        }
        cases.push_back(c);
    }
    {
        GridCase chess{"chessboard", {}, {GridRectangle(3, 3, 57, 57)}};
        GridCase triangles{"triangulated square", {}, {}};
        GridCase comb{"combs", {{GridVertex(0, 0)}}, {}};
        for (int i = 0; i < 6; ++i) {
            for (int k = 0; k < 6; ++k) {
                int const x = i * 10;
                int const y = k * 10;
                if ((i + k) % 2 == 0) {
                    chess.a.push_back(GridRectangle(x, y, x + 10, y + 10));
                }
                triangles.a.push_back(
                    {GridVertex(x, y), GridVertex(x + 10, y), GridVertex(x, y + 10)});
                triangles.b.push_back(
                    {GridVertex(x + 10, y + 10), GridVertex(x + 10, y), GridVertex(x, y + 10)});
            }
            comb.a[0].push_back(GridVertex(i * 10 + 3, 61));
            comb.a[0].push_back(GridVertex(i * 10 + 9, 2));
            comb.b.push_back(GridRectangle(0, i * 10 + 4, 60, i * 10 + 8));
        }
        cases.push_back(chess);
        cases.push_back(triangles);
        cases.push_back(comb);
    }
    return cases;
}

// ------------------------------------------------------------------------------------------------
// Exact areas.

/// A point with rational coordinates, in lowest terms: x = px / d, y = py / d, d > 0.
struct RationalPoint {
    std::int64_t px;
    std::int64_t py;
    std::int64_t d;

    bool operator==(RationalPoint const& p) const { return px == p.px && py == p.py && d == p.d; }
    /// By y, then by x.
    bool operator<(RationalPoint const& p) const {
        Int128 const y = static_cast<Int128>(py) * p.d - static_cast<Int128>(p.py) * d;
        if (y != 0) {
            return y < 0;
        }
        return static_cast<Int128>(px) * p.d < static_cast<Int128>(p.px) * d;
    }
};

struct IntegerEdge {
    std::int64_t ax, ay, bx, by;
    int operand;
};

/// The areas of the four operations, by exact arithmetic: the edges are cut at every point that
/// they share with others, and every piece is part of the result's boundary if exactly one of its
/// sides is in the result, which the even-odd rule decides. All decisions are exact. So is the sum,
/// but for the pieces' cross products, which are cut off after 60 binary places.
///
/// The coordinates are integers and below 4096 once kGridOffset is taken off.
inline std::array<double, 4> ExactAreas(Polygon const& a, Polygon const& b) {
    std::vector<IntegerEdge> edges;
    auto const integer = [](double v) { return static_cast<std::int64_t>(v) - kGridOffset; };
    for (int operand = 0; operand < 2; ++operand) {
        for (Contour const& contour : operand == 0 ? a : b) {
            for (std::size_t i = 0; i < contour.size(); ++i) {
                Vertex const p = contour[i];
                Vertex const q = contour[i + 1 == contour.size() ? 0 : i + 1];
                if (p != q) {
                    edges.push_back(
                        {integer(p.x), integer(p.y), integer(q.x), integer(q.y), operand});
                }
            }
        }
    }
    auto const point = [](std::int64_t px, std::int64_t py, std::int64_t d) {
        if (d < 0) {
            px = -px;
            py = -py;
            d = -d;
        }
        std::int64_t const g = std::gcd(std::gcd(px, py), d);
        return RationalPoint{px / g, py / g, d / g};
    };

    // The pieces, lower end first, with the parity of their number for each operand.
    std::map<std::pair<RationalPoint, RationalPoint>, std::array<bool, 2>> pieces;
    for (IntegerEdge const& e : edges) {
        std::int64_t const dx = e.bx - e.ax;
        std::int64_t const dy = e.by - e.ay;
        std::vector<RationalPoint> points{point(e.ax, e.ay, 1), point(e.bx, e.by, 1)};
        for (IntegerEdge const& f : edges) {
            std::int64_t const fx = f.bx - f.ax;
            std::int64_t const fy = f.by - f.ay;
            std::int64_t const d = dx * fy - dy * fx;
            if (d == 0) {
                // Parallel: the ends of f that lie on e.
                std::int64_t const ends[][2] = {{f.ax, f.ay}, {f.bx, f.by}};
                for (auto const& [x, y] : ends) {
                    bool const onLine = dx * (y - e.ay) == dy * (x - e.ax);
                    std::int64_t const along = dx * (x - e.ax) + dy * (y - e.ay);
                    if (onLine && along > 0 && along < dx * dx + dy * dy) {
                        points.push_back(point(x, y, 1));
                    }
                }
                continue;
            }
            // e.a + t * (e.b - e.a), f.a + u * (f.b - f.a), both over d.
            std::int64_t t = (f.ax - e.ax) * fy - (f.ay - e.ay) * fx;
            std::int64_t u = (f.ax - e.ax) * dy - (f.ay - e.ay) * dx;
            std::int64_t const positive = d < 0 ? -d : d;
            t = d < 0 ? -t : t;
            u = d < 0 ? -u : u;
            if (t >= 0 && t <= positive && u >= 0 && u <= positive) {
                points.push_back(
                    point(e.ax * positive + dx * t, e.ay * positive + dy * t, positive));
            }
        }
        std::sort(points.begin(), points.end());
        points.erase(std::unique(points.begin(), points.end()), points.end());
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            bool& parity = pieces[{points[i], points[i + 1]}][static_cast<std::size_t>(e.operand)];
            parity = !parity;
        }
    }

    Int128 const kOne = static_cast<Int128>(1) << 60;
    std::array<Int128, 4> twice{};
    for (auto const& [ends, parity] : pieces) {
        RationalPoint const& p = ends.first;
        RationalPoint const& q = ends.second;
        // The middle: (mx, my) / m. Whether the piece's left side is inside: the edges that a ray
        // to the west crosses, those that pass through the middle itself not counted.
        Int128 const mx = static_cast<Int128>(p.px) * q.d + static_cast<Int128>(q.px) * p.d;
        Int128 const my = static_cast<Int128>(p.py) * q.d + static_cast<Int128>(q.py) * p.d;
        Int128 const m = static_cast<Int128>(p.d) * q.d * 2;
        std::array<bool, 2> left{};
        for (IntegerEdge const& e : edges) {
            bool const aboveA = e.ay * m > my;
            bool const aboveB = e.by * m > my;
            if (aboveA == aboveB) {
                continue;
            }
            Int128 const side = (e.bx - e.ax) * (my - e.ay * m) - (e.by - e.ay) * (mx - e.ax * m);
            if (side != 0 && (side < 0) == aboveB) {
                bool& inside = left[static_cast<std::size_t>(e.operand)];
                inside = !inside;
            }
        }
        Int128 const cross = static_cast<Int128>(p.px) * q.py - static_cast<Int128>(p.py) * q.px;
        Int128 const over = static_cast<Int128>(p.d) * q.d;
        Int128 const whole = cross / over;
        Int128 const value = whole * kOne + (cross - whole * over) * kOne / over;
        for (std::size_t k = 0; k < 4; ++k) {
            bool const inLeft = Combine(kOperations[k], left[0], left[1]);
            bool const inRight =
                Combine(kOperations[k], left[0] != parity[0], left[1] != parity[1]);
            if (inLeft != inRight) {
                twice[k] += inLeft ? value : -value;
            }
        }
    }
    std::array<double, 4> areas{};
    for (std::size_t k = 0; k < 4; ++k) {
        areas[k] = static_cast<double>(twice[k]) * 0x1p-61;
    }
    return areas;
}

} // namespace plain

#endif
