// SPDX-License-Identifier: MIT

#include "OutlineInputs.h"

#include <cmath>
#include <cstdint>
#include <random>

namespace inputs {
namespace {

typedef TPoint<double> Pt;

constexpr double kTurn = 6.283185307179586;

/// The next of the random numbers from 0 to 1.
double Unit(std::mt19937_64& engine) { return static_cast<double>(engine() >> 11) * 0x1p-53; }

/// A ring of `count` curves, whose radius varies by `swing` along `waves` waves.
CPath Wave(std::size_t count, double swing, double waves) {
    auto const on = [&](double angle) {
        double const radius = 400.0 + swing * std::sin(waves * angle);
        return Pt(radius * std::cos(angle), radius * std::sin(angle));
    };
    auto const slope = [&](double angle) {
        double const radius = 400.0 + swing * std::sin(waves * angle);
        double const change = swing * waves * std::cos(waves * angle);
        return Pt(change * std::cos(angle) - radius * std::sin(angle),
                  change * std::sin(angle) + radius * std::cos(angle));
    };
    double const step = kTurn / static_cast<double>(count);
    CPath path;
    path.MoveTo(on(0.01));
    for (std::size_t i = 0; i < count; ++i) {
        double const from = 0.01 + step * static_cast<double>(i);
        double const to = i + 1 == count ? 0.01 : from + step;
        path.CurveTo(on(from) + slope(from) * (step / 3.0), on(to) - slope(to) * (step / 3.0),
                     on(to));
    }
    path.ClosePath();
    return path;
}

} // namespace

std::vector<OutlinePair> GlyphPairs(Set set) {
    std::vector<CPath> const& glyphs = Outlines(set);
    std::vector<OutlinePair> pairs;
    for (std::size_t i = 1; i < glyphs.size(); ++i) {
        CPath moved = glyphs[i];
        for (Pt& p : moved.mPts) {
            p += Pt(7.0, 11.0);
        }
        moved.InvalBounds();
        pairs.emplace_back(glyphs[i - 1], moved);
    }
    return pairs;
}

OutlinePair CrossingRings(std::size_t count) {
    double const waves = static_cast<double>(count) / 20.0;
    double const step = kTurn * 400.0 / static_cast<double>(count);
    return {Wave(count, 0.0, 0.0), Wave(count, 3.0 * step, waves)};
}

std::vector<CPath> Discs(std::size_t count) {
    std::mt19937_64 engine(17);
    double const side = 10.0 * std::sqrt(static_cast<double>(count));
    double const radius = 10.0 / std::sqrt(0.5 * kTurn);
    std::vector<CPath> discs;
    for (std::size_t i = 0; i < count; ++i) {
        double const h = side * Unit(engine);
        Pt const center(h, side * Unit(engine));
        double const arm = 0.5522847498 * radius;
        Pt const axes[] = {Pt(1, 0), Pt(0, 1), Pt(-1, 0), Pt(0, -1), Pt(1, 0)};
        CPath disc;
        disc.MoveTo(center + axes[0] * radius);
        for (int k = 0; k < 4; ++k) {
            Pt const from = center + axes[k] * radius;
            Pt const to = center + axes[k + 1] * radius;
            disc.CurveTo(from + axes[k + 1] * arm, to + axes[k] * arm, to);
        }
        disc.ClosePath();
        discs.push_back(disc);
    }
    return discs;
}

CPath WindingLine(std::size_t count) {
    std::mt19937_64 engine(18);
    CPath path;
    Pt at(0.0, 0.0);
    path.MoveTo(at);
    for (std::size_t i = 0; i < count; ++i) {
        double const along = static_cast<double>(i);
        double const angle = 1.2 * std::sin(along / 23.0) + 0.6 * (Unit(engine) - 0.5);
        at += Pt(std::cos(angle), std::sin(angle)) * (1.0 + 0.8 * Unit(engine));
        path.LineTo(at);
    }
    return path;
}

std::vector<TPoint<double>> Handwriting(std::size_t count) {
    std::vector<Pt> points;
    for (std::size_t i = 0; i < count; ++i) {
        double const along = static_cast<double>(i);
        double const angle = along / 16.0;
        double const loop = 15.0 + 6.0 * std::sin(along / 140.0);
        Pt const p(0.3 * along + loop * std::cos(angle), 2.0 * loop * std::sin(angle));
        points.emplace_back(std::nearbyint(p.h * 64.0) / 64.0, std::nearbyint(p.v * 64.0) / 64.0);
    }
    return points;
}

std::vector<TPoint<double>> Ripples(std::size_t count, double fine) {
    std::vector<Pt> vertices;
    for (std::size_t i = 0; i < count; ++i) {
        double const turn = kTurn * static_cast<double>(i) / static_cast<double>(count);
        double const ripples = static_cast<double>(count) / 50.0;
        double const radius = 300.0 + 60.0 * std::sin(5.0 * turn) + 20.0 * std::sin(37.0 * turn) +
                              fine * std::sin(ripples * turn);
        vertices.emplace_back(500.0 + radius * std::cos(turn), 500.0 + radius * std::sin(turn));
    }
    return vertices;
}

std::vector<TPoint<double>> Comb(std::size_t count, double lean, bool isRagged) {
    std::vector<Pt> const random = Points(count, 400.0);
    std::vector<Pt> vertices;
    for (std::size_t i = 0; i < count; ++i) {
        double const foot = (1000.0 - lean) * static_cast<double>(i) / static_cast<double>(count);
        double const v = isRagged ? random[i].v : 0.0;
        vertices.emplace_back(i % 2 != 0 ? foot + lean : foot, i % 2 != 0 ? 1000.0 - v : v);
    }
    return vertices;
}

std::vector<TPoint<double>> Spiral(std::size_t count) {
    std::vector<Pt> vertices;
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t const step = i < count / 2 ? i : count - 1 - i;
        double const part = 2.0 * static_cast<double>(step) / static_cast<double>(count);
        double const radius = 10.0 + 450.0 * part + (i < count / 2 ? 0.0 : 10.0);
        double const turn = 20.0 * kTurn * part;
        vertices.emplace_back(500.0 + radius * std::cos(turn), 500.0 + radius * std::sin(turn));
    }
    return vertices;
}

std::vector<Shape> Shapes() {
    return {{"ripples", [](std::size_t count) { return Ripples(count, 0.0); }},
            {"star", Star},
            {"comb", [](std::size_t count) { return Comb(count, 0.0, false); }},
            {"leaning_comb", [](std::size_t count) { return Comb(count, 500.0, false); }},
            {"spiral", Spiral},
            {"tangle", [](std::size_t count) { return Points(count, 1000.0); }}};
}

CPath CurvesThrough(std::vector<Pt> const& vertices) {
    // Each curve leaves and arrives in the direction from the vertex before to the one behind.
    std::size_t const count = vertices.size();
    CPath path;
    path.MoveTo(vertices[0]);
    for (std::size_t i = 0; i < count; ++i) {
        Pt const a = vertices[i];
        Pt const b = vertices[(i + 1) % count];
        path.CurveTo(a + (b - vertices[(i + count - 1) % count]) / 6.0,
                     b - (vertices[(i + 2) % count] - a) / 6.0, b);
    }
    return path.ClosePath();
}

} // namespace inputs
