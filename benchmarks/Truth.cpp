// SPDX-License-Identifier: MIT

#include "Truth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace truth {
namespace {

/// The curve's speed at parameter t.
double Speed(CBezier const& c, double t) {
    TPoint<double> const d = (c.P1 - c.P0) * ((1.0 - t) * (1.0 - t)) +
                             (c.P2 - c.P1) * (2.0 * t * (1.0 - t)) + (c.P3 - c.P2) * (t * t);
    return 3.0 * d.Hypotenuse();
}

/// Returns the length by 5-point Gauss-Legendre quadrature. Halving goes on until both halves
/// together agree with the whole. It converges slowly near cusps, and ends there at pieces that do
/// not matter.
double Quadrature(CBezier const& c, double t0, double t1, int depth) {
    auto const gauss = [&](double a, double b) {
        std::array<double, 3> const nodes = {0.0, 0.5384693101056831, 0.9061798459386640};
        std::array<double, 3> const weights = {0.5688888888888889, 0.4786286704993665,
                                               0.2369268850561891};
        double const middle = (a + b) / 2.0;
        double const half = (b - a) / 2.0;
        double sum = weights[0] * Speed(c, middle);
        for (std::size_t i = 1; i < 3; ++i) {
            sum += weights[i] *
                   (Speed(c, middle - half * nodes[i]) + Speed(c, middle + half * nodes[i]));
        }
        return sum * half;
    };
    double const middle = (t0 + t1) / 2.0;
    double const whole = gauss(t0, t1);
    double const halves = gauss(t0, middle) + gauss(middle, t1);
    if (depth == 0 || std::abs(whole - halves) <= 1e-12 * halves) {
        return halves;
    }
    return Quadrature(c, t0, middle, depth - 1) + Quadrature(c, middle, t1, depth - 1);
}

/// errors[k] = of(i) for at most `most` of the curves, spread evenly.
template <class Of> Errors Collect(std::size_t count, std::size_t most, Of of) {
    std::vector<double> errors;
    std::size_t const step = std::max<std::size_t>(1, count / most);
    for (std::size_t i = 0; i < count; i += step) {
        errors.push_back(of(i));
    }
    return Summary(std::move(errors));
}

} // namespace

double Length(CBezier const& curve, double t0, double t1) { return Quadrature(curve, t0, t1, 40); }

double Distance(TPoint<double> const& p, TPoint<double> const& a, TPoint<double> const& b) {
    TPoint<double> const d = b - a;
    double const square = d.h * d.h + d.v * d.v;
    TPoint<double> const q = p - a;
    double const t = square > 0.0 ? (q.h * d.h + q.v * d.v) / square : 0.0;
    return (a + d * std::min(std::max(t, 0.0), 1.0) - p).Length();
}

double Distance(CBezier const& curve, TPoint<double> const& p) {
    constexpr int kSteps = 200;
    auto const at = [&](double t) { return (curve.TPt(t) - p).Length(); };
    std::array<double, kSteps + 1> samples{};
    for (int i = 0; i <= kSteps; ++i) {
        samples[static_cast<std::size_t>(i)] = at(static_cast<double>(i) / kSteps);
    }
    double best = std::min(samples.front(), samples.back());
    for (int i = 0; i <= kSteps; ++i) {
        auto const k = static_cast<std::size_t>(i);
        if ((i > 0 && samples[k] > samples[k - 1]) || (i < kSteps && samples[k] > samples[k + 1])) {
            continue;
        }
        double lo = std::max(0.0, (i - 1.0) / kSteps);
        double hi = std::min(1.0, (i + 1.0) / kSteps);
        for (int round = 0; round < 60; ++round) {
            double const a = lo + (hi - lo) / 3.0;
            double const b = hi - (hi - lo) / 3.0;
            if (at(a) < at(b)) {
                hi = b;
            } else {
                lo = a;
            }
        }
        best = std::min({best, samples[k], at(lo)});
    }
    return best;
}

double Deviation(CBezier const& curve, Chain const& chain) {
    double worst = 0.0;
    for (int i = 0; i <= 1000; ++i) {
        TPoint<double> const p = curve.TPt(i / 1000.0);
        double nearest = std::numeric_limits<double>::infinity();
        for (std::size_t edge = 0; edge + 1 < chain.size(); ++edge) {
            nearest = std::min(nearest, Distance(p, chain[edge], chain[edge + 1]));
        }
        worst = std::max(worst, nearest);
    }
    return worst;
}

Errors Summary(std::vector<double> errors) {
    if (errors.empty()) {
        return {};
    }
    std::sort(errors.begin(), errors.end());
    return {errors.back(), errors[(errors.size() - 1) * 95 / 100]};
}

Errors OfFlattening(std::vector<CBezier> const& curves,
                    std::function<Chain(std::size_t)> const& answer) {
    return Collect(curves.size(), 200,
                   [&](std::size_t i) { return Deviation(curves[i], answer(i)); });
}

Errors OfLength(std::vector<CBezier> const& curves,
                std::function<double(std::size_t)> const& answer) {
    return Collect(curves.size(), 1000, [&](std::size_t i) {
        double const length = Length(curves[i], 0.0, 1.0);
        return std::abs(answer(i) - length) / length;
    });
}

Errors OfNearest(std::vector<CBezier> const& curves, Chain const& points,
                 std::function<double(std::size_t)> const& answer) {
    return Collect(curves.size(), 2000, [&](std::size_t i) {
        double const found = (curves[i].TPt(answer(i)) - points[i]).Length();
        return std::max(0.0, found - Distance(curves[i], points[i]));
    });
}

Errors OfFraction(std::vector<CBezier> const& curves, double fraction,
                  std::function<double(std::size_t)> const& answer) {
    return Collect(curves.size(), 1000, [&](std::size_t i) {
        double const part = Length(curves[i], 0.0, answer(i));
        return std::abs(part / Length(curves[i], 0.0, 1.0) - fraction);
    });
}

Errors OfHit(std::vector<CBezier> const& curves, Chain const& points, double tolerance,
             std::function<bool(std::size_t)> const& answer) {
    return Collect(curves.size(), 10000, [&](std::size_t i) {
        double const distance = Distance(curves[i], points[i]);
        bool const near = distance <= tolerance;
        return answer(i) == near ? 0.0 : std::abs(distance - tolerance);
    });
}

} // namespace truth
