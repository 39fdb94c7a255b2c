// SPDX-License-Identifier: MIT

#include "Crowds.h"

#include "Inputs.h"

#include <trammel/Moments.h>
#include <trammel/PolygonOperations.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <random>

namespace crowds {

namespace {

constexpr int kCount = 10000;
constexpr double kTurn = 6.283185307179586;

class Random {
public:
    double Unit() { return static_cast<double>(mEngine() >> 11) * 0x1p-53; }

private:
    std::mt19937_64 mEngine{2024};
};

/// Places a figure: turned by `angle`, and moved to (h, v).
operands::Ring Placed(operands::Ring ring, double angle, double h, double v) {
    double const cosine = std::cos(angle);
    double const sine = std::sin(angle);
    for (TPoint<double>& p : ring) {
        p = TPoint<double>(h + p.h * cosine - p.v * sine, v + p.h * sine + p.v * cosine);
    }
    return ring;
}

operands::Ring Square(double size) { return {{0.0, 0.0}, {size, 0.0}, {size, size}, {0.0, size}}; }

operands::Ring Circle(double size) {
    operands::Ring ring;
    for (int i = 0; i < 64; ++i) {
        double const angle = kTurn * i / 64;
        double const radius = size * 0.5642; // as large as the square
        ring.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    return ring;
}

/// An L of two wings.
operands::Ring Building(double size, double depth) {
    double const wing = size * 0.45;
    return {{0.0, 0.0}, {size, 0.0}, {size, wing}, {wing, wing}, {wing, depth}, {0.0, depth}};
}

/// A figure of a size, turned by a part of a turn.
typedef operands::Ring (*Figure)(double size, double turn);

operands::Ring TurnedBuilding(double size, double turn) {
    return Placed(Building(size, size * (0.6 + 0.8 * turn)), kTurn * turn * 17.0, 0.0, 0.0);
}

struct Kind {
    char const* name;
    double cover;
    Figure figure;
};

Figure const kSquare = [](double size, double) { return Square(size); };
Figure const kTurned = [](double size, double turn) {
    return Placed(Square(size), kTurn * turn, 0.0, 0.0);
};
Figure const kCircle = [](double size, double) { return Circle(size); };
/// One of a few dozen countries, of some 10 to 100 vertices, as large as the square.
Figure const kCountry = [](double size, double turn) {
    operands::Ring ring = inputs::Country(10 + static_cast<std::size_t>(90.0 * turn * turn));
    double const area = trammel::SignedArea(ring);
    if (area < 0.0) {
        std::reverse(ring.begin(), ring.end());
    }
    TPoint<double> const middle = ring.empty() ? TPoint<double>() : ring.front();
    for (TPoint<double>& p : ring) {
        p = (p - middle) * (size / std::sqrt(std::abs(area)));
    }
    return Placed(ring, kTurn * turn * 17.0, 0.0, 0.0);
};

Kind const kKinds[] = {
    {"squares", 1.0, kSquare},          {"dense_squares", 4.0, kSquare},
    {"turned", 1.0, kTurned},           {"dense_turned", 4.0, kTurned},
    {"buildings", 1.0, TurnedBuilding}, {"dense_buildings", 4.0, TurnedBuilding},
    {"circles", 1.0, kCircle},          {"countries", 1.0, kCountry},
};

Crowd Make(double cover, Figure figure) {
    Random random;
    Crowd crowd;
    std::vector<TPolygon<double>> polygons;
    for (int i = 0; i < kCount; ++i) {
        double const size = std::sqrt(cover / kCount) * (0.5 + random.Unit());
        double const h = random.Unit();
        double const v = random.Unit();
        operands::Ring const ring = Placed(figure(size, random.Unit()), 0.0, h, v);
        if (ring.empty()) {
            return Crowd();
        }
        crowd.rings.push_back(ring);
        TPolygon<double> polygon;
        for (TPoint<double> const& p : crowd.rings.back()) {
            polygon.Append(p, true);
        }
        polygons.push_back(polygon);
    }
    for (TPolygon<double> const& ring : trammel::Union(polygons, trammel::FillRule::kNonZero)) {
        crowd.area += trammel::SignedArea(ring);
    }
    return crowd;
}

} // namespace

std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (Kind const& kind : kKinds) {
        names.emplace_back(kind.name);
    }
    return names;
}

Crowd const& Get(std::string const& name) {
    static std::map<std::string, Crowd> known;
    for (Kind const& kind : kKinds) {
        if (name == kind.name && known.count(name) == 0) {
            known[name] = Make(kind.cover, kind.figure);
        }
    }
    return known[name];
}

} // namespace crowds
