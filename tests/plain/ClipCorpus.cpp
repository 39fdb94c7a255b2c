// SPDX-License-Identifier: MIT

#include "ClipCorpus.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <sstream>
#include <utility>

namespace plain {

namespace {

typedef std::vector<ClipCase> Cases;

std::string Text(int n) { return std::to_string(n); }

// ------------------------------------------------------------------------------------------------
// Grid cases.

Vertex GridVertex(int x, int y) {
    return {static_cast<double>(x + kGridOffset), static_cast<double>(y + kGridOffset)};
}

Contour GridRectangle(int x0, int y0, int x1, int y1) {
    return {GridVertex(x0, y0), GridVertex(x1, y0), GridVertex(x1, y1), GridVertex(x0, y1)};
}

/// The dice are thrown in statements of their own, because the order in which arguments are
/// evaluated differs from compiler to compiler.
Vertex RandomVertex(Dice& dice, int size) {
    int const x = dice.Int(0, size);
    int const y = dice.Int(0, size);
    return GridVertex(x, y);
}

/// Repeats vertices, and adds edges that run back.
Contour WithSpikes(Contour const& contour, Dice& dice, int size) {
    Contour spiky;
    for (Vertex const& v : contour) {
        spiky.push_back(v);
        int const kind = dice.Int(0, 3);
        if (kind == 0) {
            spiky.push_back(v);
        } else if (kind == 1) {
            spiky.push_back(RandomVertex(dice, size));
            spiky.push_back(v);
        }
    }
    return spiky;
}

void AddRandomGridCases(int size, Dice& dice, Cases& cases) {
    for (int const vertices : {3, 4, 5, 6, 8, 10, 15, 25}) {
        for (int i = 0; i < 6; ++i) {
            Contour const a = RandomContour(dice, vertices, size);
            Contour const b = RandomContour(dice, vertices, size);
            cases.push_back(
                {"grid-random-" + Text(size) + "-" + Text(vertices) + "-" + Text(i), {a}, {b}});
        }
    }
    for (int i = 0; i < 12; ++i) {
        ClipCase c{"grid-contours-" + Text(size) + "-" + Text(i), {}, {}};
        for (Polygon* const operand : {&c.a, &c.b}) {
            for (int k = dice.Int(1, 4); k > 0; --k) {
                int const vertices = dice.Int(3, 6);
                operand->push_back(RandomContour(dice, vertices, size));
            }
        }
        cases.push_back(c);
    }
    for (int i = 0; i < 12; ++i) {
        ClipCase c{"grid-spikes-" + Text(size) + "-" + Text(i), {}, {}};
        for (Polygon* const operand : {&c.a, &c.b}) {
            Contour const contour = RandomContour(dice, 6, size / 2);
            operand->push_back(WithSpikes(contour, dice, size));
        }
        cases.push_back(c);
    }
}

/// One rectangle against all that begin and end before, at, within and behind its sides.
void AddRectangles(Cases& cases) {
    std::array<int, 6> const at = {0, 10, 13, 17, 20, 24};
    for (std::size_t left = 0; left < 6; ++left) {
        for (std::size_t right = left + 1; right < 6; ++right) {
            for (std::size_t low = 0; low < 6; ++low) {
                for (std::size_t high = low + 1; high < 6; ++high) {
                    cases.push_back({"grid-rectangles-" + std::to_string(left) +
                                         std::to_string(right) + std::to_string(low) +
                                         std::to_string(high),
                                     {GridRectangle(10, 10, 20, 20)},
                                     {GridRectangle(at[left], at[low], at[right], at[high])}});
                }
            }
        }
    }
}

void AddGridPatterns(Dice& dice, Cases& cases) {
    for (int i = 0; i < 6; ++i) {
        ClipCase rings{"grid-rings-" + Text(i), {}, {}};
        for (int k = 0; k < 8; ++k) {
            rings.a.push_back(GridRectangle(k * 5, k * 5, 100 - k * 5, 100 - k * 5));
            int const d = dice.Int(0, 3);
            rings.b.push_back(GridRectangle(k * 5 + d, k * 6, 103 - k * 5, 100 - k * 4));
        }
        cases.push_back(rings);
    }
    ClipCase chess{"grid-chessboard", {}, {GridRectangle(3, 3, 57, 57)}};
    ClipCase triangles{"grid-triangulated-square", {}, {}};
    ClipCase comb{"grid-combs", {{GridVertex(0, 0)}}, {}};
    for (int i = 0; i < 6; ++i) {
        for (int k = 0; k < 6; ++k) {
            int const x = i * 10;
            int const y = k * 10;
            if ((i + k) % 2 == 0) {
                chess.a.push_back(GridRectangle(x, y, x + 10, y + 10));
            }
            triangles.a.push_back({GridVertex(x, y), GridVertex(x + 10, y), GridVertex(x, y + 10)});
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

// ------------------------------------------------------------------------------------------------
// Other cases.

/// A point on the unit circle, a share 0 <= t < 1 of the way around a square. Only the square root
/// is taken, which is rounded correctly everywhere.
Vertex OnCircle(double t) {
    double const side = 4 * t;
    Vertex v{};
    if (side < 1) {
        v = {1, 2 * side - 1};
    } else if (side < 2) {
        v = {3 - 2 * side, 1};
    } else if (side < 3) {
        v = {-1, 5 - 2 * side};
    } else {
        v = {2 * side - 7, -1};
    }
    double const length = std::sqrt(v.x * v.x + v.y * v.y);
    return {v.x / length, v.y / length};
}

/// A star around (x, y): `step` vertices are passed from one to the next, so that a step above 1
/// makes edges cross. The distances from the middle lie between `least` and 1.
Contour Star(Dice& dice, int vertices, int step, double least, double x, double y) {
    Contour corners;
    for (int i = 0; i < vertices; ++i) {
        double const r = least + (1 - least) * dice.Unit();
        Vertex const v = OnCircle(static_cast<double>(i) / vertices);
        corners.push_back({x + r * v.x, y + r * v.y});
    }
    Contour star;
    for (int i = 0, k = 0; i < vertices; ++i, k = (k + step) % vertices) {
        star.push_back(corners[static_cast<std::size_t>(k)]);
    }
    return star;
}

void AddSquares(Cases& cases) {
    for (int const count : {2, 5, 9, 16}) {
        ClipCase nested{"nested-squares-" + Text(count), {}, {}};
        ClipCase touching{"squares-in-a-row-" + Text(count), {}, {}};
        ClipCase corners{"squares-at-corners-" + Text(count), {}, {}};
        ClipCase diamonds{"diamonds-in-squares-" + Text(count), {}, {}};
        ClipCase frame{"frame-with-holes-" + Text(count), {}, {}};
        frame.a.push_back(Rectangle(-0.5, -0.5, 3.0 * count, 3.0 * count));
        for (int i = 0; i < count; ++i) {
            double const d = i;
            double const size = 40 - d;
            nested.a.push_back(Rectangle(d, d, size, size));
            nested.b.push_back(Rectangle(d + 0.3, d + 0.6, size - 0.1, size));
            touching.a.push_back(Rectangle(d, 0, d + 1, 1));
            touching.b.push_back(Rectangle(d + 0.5, 0, d + 1.5, 2));
            corners.a.push_back(Rectangle(d, d, d + 1, d + 1));
            corners.b.push_back(Rectangle(d + 1, d, d + 2, d + 1));
            // Each touches the one around it in four points.
            double const r = std::ldexp(1.0, -i);
            diamonds.a.push_back(i % 2 == 0
                                     ? Rectangle(-r, -r, r, r)
                                     : Contour{{2 * r, 0}, {0, 2 * r}, {-2 * r, 0}, {0, -2 * r}});
            for (int k = 0; k < count; ++k) {
                double const e = k;
                frame.a.push_back(Rectangle(3 * d, 3 * e, 3 * d + 1.5, 3 * e + 1.25));
                frame.b.push_back(
                    {{3 * d + 0.75, 3 * e - 0.25}, {3 * d + 1.75, 3 * e + 1}, {3 * d, 3 * e + 2}});
            }
        }
        diamonds.b.push_back(Rectangle(-0.3, -0.7, 0.9, 0.4));
        cases.insert(cases.end(), {nested, touching, corners, diamonds, frame});
    }
}

void AddStars(Dice& dice, Cases& cases) {
    for (int const vertices : {5, 9, 17, 40}) {
        for (int const step : {1, 2, 4}) {
            for (double const least : {0.999, 0.5, 0.05}) {
                if (vertices == 40 && step > 1) {
                    continue;
                }
                Contour const a = Star(dice, vertices, step, least, 0.5, 0.25);
                Contour const b = Star(dice, vertices + 1, 1, least, 0.75, 0.375);
                cases.push_back({"stars-" + Text(vertices) + "-" + Text(step) + "-" +
                                     Text(static_cast<int>(1000 * least)),
                                 {a},
                                 {b}});
            }
        }
    }
    // Circles of nearly the same size around one point: edges cross at small angles.
    for (int const sides : {8, 30, 100}) {
        Contour a;
        Contour b;
        for (int i = 0; i < sides; ++i) {
            a.push_back(OnCircle(static_cast<double>(i) / sides));
            b.push_back(OnCircle((i + 0.5) / sides));
        }
        cases.push_back({"wheels-" + Text(sides), {a}, {b}});
    }
}

void AddCombsAndSaws(Dice& dice, Cases& cases) {
    for (int const teeth : {2, 7, 20}) {
        ClipCase straight{"combs-" + Text(teeth), {{}}, {{}}};
        ClipCase slanted{"slanted-combs-" + Text(teeth), {{}}, {{}}};
        ClipCase saws{"saws-" + Text(teeth), {{}}, {{}}};
        for (int i = 0; i < teeth; ++i) {
            double const at = 0.1 * i;
            for (Vertex const v : {Vertex{0, at}, {2, at}, {2, at + 0.05}, {0, at + 0.05}}) {
                straight.a[0].push_back(v);
                straight.b[0].push_back({v.y, v.x - 0.5});
                slanted.a[0].push_back({v.x + 0.3 * v.y, v.y - 0.2 * v.x});
                slanted.b[0].push_back({v.y - 0.7 * v.x + 1.3, v.x + 0.1 * v.y - 0.3});
            }
            // Tips of the first saw lie on the edge that the second begins with, and beyond it.
            saws.a[0].push_back({static_cast<double>(i), 0});
            saws.a[0].push_back({i + 0.5, i % 3 == 0 ? 1.0 : 1 + dice.Unit()});
            saws.b[0].push_back({i + 0.25, 1});
            saws.b[0].push_back({i + 0.75, -dice.Unit()});
        }
        straight.a[0].push_back({-1, 0.1 * teeth});
        straight.a[0].push_back({-1, 0});
        straight.b[0].push_back({0.1 * teeth, -1});
        straight.b[0].push_back({0, -1});
        slanted.a[0].push_back({-1, 0.05 * teeth});
        slanted.b[0].push_back({0.04 * teeth, -1});
        saws.a[0].push_back({static_cast<double>(teeth), 0});
        saws.a[0].push_back({static_cast<double>(teeth), -1});
        saws.a[0].push_back({0, -1});
        saws.b[0].push_back({teeth + 1.0, 1});
        saws.b[0].push_back({teeth + 1.0, 2});
        saws.b[0].push_back({0.25, 2});
        cases.insert(cases.end(), {straight, slanted, saws});
    }
}

/// A band that winds inwards around the origin with square corners, there and back.
Contour Spiral(int turns, double width) {
    Contour out;
    Contour back;
    for (int i = 0; i < 4 * turns; ++i) {
        double const r = 4.0 * turns - i;
        double const inner = r - width;
        double const x = i % 4 == 0 || i % 4 == 3 ? 1 : -1;
        double const y = i % 4 < 2 ? 1 : -1;
        out.push_back({x * r, y * r});
        back.push_back({x * inner, y * inner});
    }
    out.insert(out.end(), back.rbegin(), back.rend());
    return out;
}

void AddSpirals(Cases& cases) {
    for (int const turns : {1, 3, 8}) {
        for (double const width : {0.5, 0.75, 1.0}) {
            Polygon const spiral{Spiral(turns, width)};
            std::string const name = Text(turns) + "-" + Text(static_cast<int>(100 * width));
            cases.push_back({"spirals-" + name, spiral, Mapped(spiral, -1, 1, 0.125, 0.0625)});
            cases.push_back(
                {"spirals-side-by-side-" + name, spiral, Mapped(spiral, 1, 1, 0.5, 0.3)});
        }
    }
}

/// Steps to neighbours on a grid of unit squares and their diagonals; much of it is passed twice.
Contour Walk(Dice& dice, int steps, int longest) {
    Contour walk;
    Vertex v{0, 0};
    for (int i = 0; i < steps; ++i) {
        walk.push_back(v);
        v.x += dice.Int(-longest, longest);
        v.y += dice.Int(-longest, longest);
    }
    return walk;
}

void AddWalks(Dice& dice, Cases& cases) {
    for (int const steps : {20, 60, 100}) {
        for (int const longest : {1, 3, 50}) {
            Contour const a = Walk(dice, steps, longest);
            Contour const b = Walk(dice, steps, longest);
            cases.push_back({"walks-" + Text(steps) + "-" + Text(longest), {a}, {b}});
            // The same in thirds, which no double holds.
            cases.push_back({"walks-in-thirds-" + Text(steps) + "-" + Text(longest),
                             Mapped({a}, 1.0 / 3, 1.0 / 3, 0, 0),
                             Mapped({b}, 1.0 / 3, 1.0 / 3, 0, 0)});
        }
    }
}

void AddBoards(Cases& cases) {
    for (int const size : {3, 6, 9}) {
        Polygon board;
        for (int i = 0; i < size; ++i) {
            for (int k = 0; k < size; ++k) {
                if ((i + k) % 2 == 0) {
                    board.push_back(Rectangle(i, k, i + 1.0, k + 1.0));
                }
            }
        }
        std::string const name = "boards-" + Text(size) + "-";
        cases.push_back({name + "same", board, board});
        cases.push_back({name + "next", board, Mapped(board, 1, 1, 1, 0)});
        cases.push_back({name + "between", board, Mapped(board, 1, 1, 0.3, 0.45)});
        cases.push_back({name + "larger", board, Mapped(board, 1.5, 1.25, 0, 0)});
    }
}

void AddCopies(Dice& dice, Cases& cases) {
    for (int const vertices : {4, 9, 16}) {
        for (int const units : {0, 1, 3, 1000}) {
            Contour contour;
            Contour moved;
            for (int i = 0; i < vertices; ++i) {
                double const x = dice.Unit();
                double const y = dice.Unit();
                contour.push_back({x, y});
                int const right = dice.Int(-units, units);
                int const up = dice.Int(-units, units);
                moved.push_back({x + 0x1p-53 * right, y + 0x1p-53 * up});
            }
            cases.push_back({"copies-" + Text(vertices) + "-" + Text(units), {contour}, {moved}});
        }
    }
}

/// Thin triangles whose middle lines meet in one point, which for odd `place` is no double.
void AddNeedles(Cases& cases) {
    for (int const count : {4, 12, 30}) {
        for (int const place : {0, 1}) {
            ClipCase c{"needles-" + Text(count) + "-" + Text(place), {}, {}};
            ClipCase fan{"fans-" + Text(count) + "-" + Text(place), {}, {}};
            double const middle = place == 0 ? 0.5 : 1.0 / 3;
            for (int i = 0; i < count; ++i) {
                Vertex const v = OnCircle(static_cast<double>(i) / count);
                Vertex const w = OnCircle((i + 0.4) / count);
                Contour const needle{{middle + v.x, middle + v.y},
                                     {middle + w.x, middle + w.y},
                                     {middle - (v.x + w.x), middle - (v.y + w.y)}};
                Contour const blade{{middle, middle}, needle[0], needle[1]};
                (i % 2 == 0 ? c.a : c.b).push_back(needle);
                (i % 3 == 0 ? fan.b : fan.a).push_back(blade);
            }
            cases.insert(cases.end(), {c, fan});
        }
    }
}

/// The same figures far from the origin, where there are few doubles, and at other scales.
void AddPlacesAndScales(Dice& dice, Cases& cases) {
    Polygon const a{Star(dice, 17, 1, 0.3, 0.5, 0.5), Rectangle(0.4, 0.4, 0.6, 0.6)};
    Polygon const b{Star(dice, 11, 3, 0.5, 0.75, 0.6)};
    for (int const power : {10, 20, 30, 40}) {
        double const far = std::ldexp(1.0, power);
        cases.push_back(
            {"far-2^" + Text(power), Mapped(a, 1, 1, far, -far), Mapped(b, 1, 1, far, -far)});
    }
    for (int const power : {-400, -60, 60, 400}) {
        double const scale = std::ldexp(0.7, power);
        cases.push_back({"scale-2^" + Text(power), Mapped(a, scale, scale, 0, 0),
                         Mapped(b, scale, scale, 0, 0)});
        cases.push_back(
            {"thin-2^" + Text(power), Mapped(a, scale, 1, 0, 0), Mapped(b, scale, 1, 0, 0)});
    }
    for (int i = 0; i < 4; ++i) {
        // Integers where the doubles are one apart: crossings move by as much as the details.
        double const edge = 0x1p52;
        Contour const first = Walk(dice, 12, 20);
        Contour const second = Walk(dice, 12, 20);
        cases.push_back({"coarse-" + Text(i), Mapped({first}, 1, 1, edge + 1000, edge + 1000),
                         Mapped({second}, 1, 1, edge + 1000, edge + 1000)});
    }
    // Details of 2^-20 and 2^-40 of the drawing.
    for (int const power : {-20, -40}) {
        double const detail = std::ldexp(1.0, power);
        Polygon large{Rectangle(0, 0, 1, 1)};
        for (Contour const& contour : Mapped(a, detail, detail, 0.5, 0.25)) {
            large.push_back(contour);
        }
        cases.push_back({"details-2^" + Text(power), large, Mapped(b, detail, detail, 0.5, 0.25)});
    }
}

void AddDegenerate(Cases& cases) {
    Contour const square = Rectangle(1, 1, 5, 5);
    Contour const spike{{0, 0}, {3, 3}, {6, 6}, {3, 3}};
    Contour const point{{3, 3}, {3, 3}, {3, 3}};
    Contour const line{{0, 2}, {4, 2}, {2, 2}, {7, 2}};
    Contour const there{{0, 0}, {1, 2}, {3, 3}, {4, 1}, {3, 3}, {1, 2}};
    Contour const bowTie{{0, 0}, {6, 6}, {6, 0}, {0, 6}};
    Contour const twice{{1, 1}, {5, 1}, {5, 5}, {1, 5}, {1, 1}, {5, 1}, {5, 5}, {1, 5}};
    Contour const tail{{1, 1}, {5, 1}, {5, 5}, {8, 8}, {5, 5}, {1, 5}};
    std::vector<std::pair<std::string, Contour>> const odd = {
        {"spike", spike},    {"point", point}, {"line", line}, {"there-and-back", there},
        {"bow-tie", bowTie}, {"twice", twice}, {"tail", tail}, {"square", square}};
    for (auto const& [name, contour] : odd) {
        cases.push_back({"degenerate-" + name, {square}, {contour}});
        cases.push_back({"degenerate-" + name + "-alone", {contour}, {}});
        cases.push_back(
            {"degenerate-" + name + "-three-times", {contour, contour, contour}, {bowTie}});
    }
}

void AddRandomDoubles(Dice& dice, Cases& cases) {
    for (int i = 0; i < 24; ++i) {
        ClipCase c{"random-doubles-" + Text(i), {}, {}};
        c.a = RandomPolygon(dice, 16);
        c.b = RandomPolygon(dice, 16);
        cases.push_back(c);
    }
}

} // namespace

Contour Rectangle(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

Polygon Mapped(Polygon polygon, double scaleX, double scaleY, double moveX, double moveY) {
    for (Contour& contour : polygon) {
        for (Vertex& v : contour) {
            v = {v.x * scaleX + moveX, v.y * scaleY + moveY};
        }
    }
    return polygon;
}

Contour RandomDoubles(Dice& dice, int vertices) {
    Contour contour;
    for (int i = 0; i < vertices; ++i) {
        double const x = dice.Unit();
        contour.push_back({x, dice.Unit()});
    }
    return contour;
}

Polygon RandomPolygon(Dice& dice, int mostVertices) {
    Polygon polygon;
    for (int contours = dice.Int(1, 3); contours > 0; --contours) {
        polygon.push_back(RandomDoubles(dice, dice.Int(3, mostVertices)));
    }
    return polygon;
}

Contour RandomContour(Dice& dice, int vertices, int size) {
    Contour contour;
    for (int i = 0; i < vertices; ++i) {
        contour.push_back(RandomVertex(dice, size));
    }
    return contour;
}

std::vector<ClipCase> MakeGridCases() {
    Dice dice(20240607);
    Cases cases;
    for (int const size : {4, 10, 100, 1000}) {
        AddRandomGridCases(size, dice, cases);
    }
    AddRectangles(cases);
    AddGridPatterns(dice, cases);
    return cases;
}

std::vector<ClipCase> MakeCorpus() {
    Cases cases = MakeGridCases();
    Dice dice(20261122);
    AddSquares(cases);
    AddStars(dice, cases);
    AddCombsAndSaws(dice, cases);
    AddSpirals(cases);
    AddWalks(dice, cases);
    AddBoards(cases);
    AddCopies(dice, cases);
    AddNeedles(cases);
    AddPlacesAndScales(dice, cases);
    AddDegenerate(cases);
    AddRandomDoubles(dice, cases);
    return cases;
}

// ------------------------------------------------------------------------------------------------
// Figures.

std::uint64_t Fingerprint(ClipCase const& c) {
    // The hash of Fowler, Noll and Vo (FNV-1a), 64 bits, eight bytes at a time.
    std::uint64_t hash = 0xCBF29CE484222325;
    auto const mix = [&](std::uint64_t bits) {
        hash = (hash ^ bits) * 0x100000001B3;
        hash ^= hash >> 29;
    };
    auto const mixDouble = [&](double v) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &v, sizeof bits);
        mix(bits);
    };
    for (Polygon const* const operand : {&c.a, &c.b}) {
        mix(operand->size());
        for (Contour const& contour : *operand) {
            mix(contour.size());
            for (Vertex const& v : contour) {
                mixDouble(v.x);
                mixDouble(v.y);
            }
        }
    }
    return hash;
}

Measure::Measure(ClipCase const& c) {
    Box box;
    box.Include(c.a);
    box.Include(c.b);
    auto const measure = [](double low, double high, int& exponent, double& unit) {
        exponent = std::ilogb(high - low) + 1;
        double const largest = std::max(std::fabs(low), std::fabs(high));
        double const next = std::nextafter(largest, std::numeric_limits<double>::infinity());
        // The clipper's step is at most 2^-60 of the side.
        unit = std::max(std::ldexp(next - largest, -exponent), 0x1p-60);
    };
    if (box.HasArea()) {
        measure(box.lowX, box.highX, exponentX, unitX);
        measure(box.lowY, box.highY, exponentY, unitY);
    }
}

Polygon Measure::Scaled(Polygon polygon) const {
    for (Contour& contour : polygon) {
        for (Vertex& v : contour) {
            v = {std::ldexp(v.x, -exponentX), std::ldexp(v.y, -exponentY)};
        }
    }
    return polygon;
}

std::vector<Vertex> SamplePoints(ClipCase const& c) {
    Box box;
    box.Include(c.a);
    box.Include(c.b);
    std::vector<Vertex> points;
    if (box.HasArea()) {
        Dice dice(1);
        for (int i = 0; i < 24; ++i) {
            double const x = box.lowX + (box.highX - box.lowX) * dice.Unit();
            points.push_back({x, box.lowY + (box.highY - box.lowY) * dice.Unit()});
        }
    }
    return points;
}

bool IsNearALine(ClipCase const& c, Measure const& measure, Vertex p) {
    Vertex const point = measure.Scaled({{p}})[0][0];
    for (Polygon const* const operand : {&c.a, &c.b}) {
        for (Contour const& contour : measure.Scaled(*operand)) {
            for (std::size_t i = 0; i < contour.size(); ++i) {
                Vertex const a = contour[i];
                Vertex const b = contour[i + 1 == contour.size() ? 0 : i + 1];
                double const dx = b.x - a.x;
                double const dy = b.y - a.y;
                double const side = dx * (point.y - a.y) - dy * (point.x - a.x);
                // Sixteen units of the grid, and the error of `side` itself in a box of side 1.
                double const margin =
                    16 * (std::fabs(dx) * measure.unitY + std::fabs(dy) * measure.unitX) + 0x1p-48;
                if (std::fabs(side) <= margin) {
                    return true;
                }
            }
        }
    }
    return false;
}

double RegionTolerance(ClipCase const& c, Measure const& measure) {
    double sum = 0;
    for (Polygon const* const operand : {&c.a, &c.b}) {
        for (Contour const& contour : measure.Scaled(*operand)) {
            for (std::size_t i = 0; i < contour.size(); ++i) {
                Vertex const a = contour[i];
                Vertex const b = contour[i + 1 == contour.size() ? 0 : i + 1];
                sum += std::fabs(b.x - a.x) * measure.unitY + std::fabs(b.y - a.y) * measure.unitX;
            }
        }
    }
    return 2 * sum;
}

std::vector<CaseFigures> ReadFigures(std::string const& path, std::string& message) {
    std::vector<CaseFigures> all;
    std::ifstream file(path);
    message = file ? "" : path + ": cannot be read";
    std::string line;
    for (int number = 1; message.empty() && std::getline(file, line); ++number) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        CaseFigures figures;
        std::istringstream in(line);
        std::string settled;
        in >> figures.name >> std::hex >> figures.fingerprint >> std::dec >> settled >>
            figures.samples;
        for (ResultFigures& result : figures.results) {
            in >> result.contours >> result.holes >> result.area;
        }
        if (!in || (settled != "settled" && settled != "open")) {
            message = path + ":" + std::to_string(number) + ": malformed";
        }
        figures.settled = settled == "settled";
        all.push_back(figures);
    }
    return all;
}

std::string ToLine(CaseFigures const& figures) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), " %016llx",
                  static_cast<unsigned long long>(figures.fingerprint));
    std::string line = figures.name + text.data() + (figures.settled ? " settled " : " open ") +
                       (figures.samples.empty() ? "none" : figures.samples);
    for (ResultFigures const& result : figures.results) {
        std::snprintf(text.data(), text.size(), "  %d %d %.17g", result.contours, result.holes,
                      result.area);
        line += text.data();
    }
    return line;
}

} // namespace plain
