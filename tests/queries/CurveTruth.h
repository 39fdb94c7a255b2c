// SPDX-License-Identifier: MIT

// Curves of all kinds, and the truth about them: an independent view of a curve in long double, by
// brute force.

#ifndef TRAMMEL_CURVETRUTH_H
#define TRAMMEL_CURVETRUTH_H

#include "CBezier.h"
#include "Dispatch_p.h"
#include "TPoint.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace trammel_test {

typedef long double Wide;

/// A point or vector.
struct WidePt {
    Wide h;
    Wide v;
};
inline WidePt operator+(WidePt a, WidePt b) { return {a.h + b.h, a.v + b.v}; }
inline WidePt operator-(WidePt a, WidePt b) { return {a.h - b.h, a.v - b.v}; }
inline WidePt operator*(WidePt a, Wide s) { return {a.h * s, a.v * s}; }
inline Wide Dot(WidePt a, WidePt b) { return a.h * b.h + a.v * b.v; }
inline Wide Length(WidePt a) { return std::hypot(a.h, a.v); }
inline Wide Widened(double x) { return static_cast<Wide>(x); }
inline WidePt Widened(TPoint<double> const& p) { return {Widened(p.h), Widened(p.v)}; }
/// How far a result is from the truth.
inline Wide Off(double result, Wide truth) { return std::abs(Widened(result) - truth); }

/// The point and the derivative at a parameter.
inline WidePt At(CBezier const& c, Wide t) {
    Wide const s = 1 - t;
    return Widened(c.P0) * (s * s * s) + Widened(c.P1) * (3 * s * s * t) +
           Widened(c.P2) * (3 * s * t * t) + Widened(c.P3) * (t * t * t);
}
inline WidePt Derivative(CBezier const& c, Wide t) {
    Wide const s = 1 - t;
    WidePt const d0 = Widened(c.P1) - Widened(c.P0);
    WidePt const d1 = Widened(c.P2) - Widened(c.P1);
    WidePt const d2 = Widened(c.P3) - Widened(c.P2);
    return (d0 * (s * s) + d1 * (2 * s * t) + d2 * (t * t)) * 3;
}

/// Nodes and weights of the Gauss-Legendre formula, by Newton's method on the polynomial.
class Gauss {
public:
    static constexpr int kCount = 20;
    Gauss() {
        for (int i = 0; i < kCount; ++i) {
            Wide x = std::cos(acosl(-1.0L) * (i + 0.75L) / (kCount + 0.5L));
            Wide slope = 0;
            for (int step = 0; step < 30; ++step) {
                Wide p0 = 1;
                Wide p1 = x;
                for (int k = 2; k <= kCount; ++k) {
                    Wide const p2 = ((2 * k - 1) * x * p1 - (k - 1) * p0) / k;
                    p0 = p1;
                    p1 = p2;
                }
                slope = kCount * (x * p1 - p0) / (x * x - 1);
                x -= p1 / slope;
            }
            mNodes[static_cast<std::size_t>(i)] = x;
            mWeights[static_cast<std::size_t>(i)] = 2 / ((1 - x * x) * slope * slope);
        }
    }
    Wide Speed(CBezier const& c, Wide a, Wide b) const {
        Wide sum = 0;
        for (std::size_t i = 0; i < kCount; ++i) {
            sum += mWeights[i] *
                   trammel_test::Length(Derivative(c, (a + b) / 2 + (b - a) / 2 * mNodes[i]));
        }
        return sum * (b - a) / 2;
    }

private:
    std::array<Wide, kCount> mNodes;
    std::array<Wide, kCount> mWeights;
};

/// The arc length by brute force: it halves the curve until the halves agree with the whole. A
/// piece on which the derivative turns by 60 degrees or more may hide a cusp between the nodes.
/// Such a piece is halved in any case, until it is too short to matter.
inline Wide TrueLength(CBezier const& c, Wide a, Wide b, Wide size, int depth = 0) {
    static Gauss const gauss;
    Wide const middle = (a + b) / 2;
    WidePt const d0 = Derivative(c, a);
    WidePt const d2 = Derivative(c, b);
    WidePt const d1 = Derivative(c, middle) * 2 - (d0 + d2) * 0.5L; // the middle coefficient
    auto const near = [](WidePt p, WidePt q) {
        return Dot(p, q) > 0 && 4 * Dot(p, q) * Dot(p, q) > Dot(p, p) * Dot(q, q);
    };
    Wide const longest = (b - a) * (Length(d0) + Length(d1) + Length(d2));
    Wide const whole = gauss.Speed(c, a, b);
    Wide const halves = gauss.Speed(c, a, middle) + gauss.Speed(c, middle, b);
    if (depth == 60 || longest < 1e-20L * size ||
        (near(d0, d1) && near(d1, d2) && near(d0, d2) &&
         std::abs(whole - halves) <= 1e-18L * size)) {
        return halves;
    }
    return TrueLength(c, a, middle, size, depth + 1) + TrueLength(c, middle, b, size, depth + 1);
}

/// The control polygon's length.
inline Wide PolygonLength(CBezier const& c) {
    return Length(Widened(c.P1) - Widened(c.P0)) + Length(Widened(c.P2) - Widened(c.P1)) +
           Length(Widened(c.P3) - Widened(c.P2));
}
inline Wide TrueLength(CBezier const& c, Wide a = 0, Wide b = 1) {
    Wide const size = PolygonLength(c);
    return size == 0 ? 0 : TrueLength(c, a, b, size);
}

/// The distance of the curve from `p` at a parameter, seen from `p`.
inline Wide DistanceAt(CBezier const& c, Wide t, TPoint<double> const& p) {
    Wide const s = 1 - t;
    WidePt const q = Widened(p);
    return Length((Widened(c.P0) - q) * (s * s * s) + (Widened(c.P1) - q) * (3 * s * s * t) +
                  (Widened(c.P2) - q) * (3 * s * t * t) + (Widened(c.P3) - q) * (t * t * t));
}

/// The least distance from `p`, by dense samples refined around every local minimum.
inline Wide TrueDistance(CBezier const& c, TPoint<double> const& p) {
    constexpr int kSamples = 1000;
    auto const distance = [&](Wide t) { return DistanceAt(c, t, p); };
    std::vector<Wide> samples;
    for (int i = 0; i <= kSamples; ++i) {
        samples.push_back(distance(static_cast<Wide>(i) / kSamples));
    }
    Wide least = std::min(samples.front(), samples.back());
    for (int i = 0; i <= kSamples; ++i) {
        auto const at = [&](int k) {
            return samples[static_cast<std::size_t>(std::min(std::max(k, 0), kSamples))];
        };
        if (at(i) > at(i - 1) || at(i) > at(i + 1) || at(i) > least * 1.1L + 1e-3L * at(i)) {
            continue;
        }
        Wide lo = static_cast<Wide>(std::max(i - 1, 0)) / kSamples;
        Wide hi = static_cast<Wide>(std::min(i + 1, kSamples)) / kSamples;
        for (int step = 0; step < 120; ++step) {
            Wide const a = lo + (hi - lo) * 0.382L;
            Wide const b = lo + (hi - lo) * 0.618L;
            (distance(a) < distance(b) ? hi : lo) = distance(a) < distance(b) ? b : a;
        }
        least = std::min(least, distance((lo + hi) / 2));
    }
    return least;
}

/// The distance of `p` from the segment between `a` and `b`.
inline Wide SegmentDistance(WidePt p, WidePt a, WidePt b) {
    WidePt const d = b - a;
    Wide const square = Dot(d, d);
    Wide const t = square > 0 ? Dot(p - a, d) / square : 0;
    return Length(a + d * std::min(std::max(t, Wide{0}), Wide{1}) - p);
}

/// (w·t, w·t²)
inline CBezier Parabola(double width) {
    return CBezier({0, 0}, {width / 3, 0}, {2 * width / 3, width / 3}, {width, width});
}
/// (3s², 3s³), s from -1 to 1: a cusp in the middle.
inline CBezier Cusp() { return CBezier({3, -3}, {-1, 3}, {-1, -3}, {3, 3}); }
inline double CuspLength() { return 2.0 * (13.0 * std::sqrt(13.0) - 8.0) / 9.0; }

/// Curves of all kinds: any four points, near a cusp, near a line, with loops, with points that
/// coincide, of very unequal parts.
inline CBezier AnyCurve(Random& random) {
    auto const tiny = [&] { return std::ldexp(random.Uniform(-1, 1), -random.Integer(5, 60)); };
    CBezier c(random.Point(100), random.Point(100), random.Point(100), random.Point(100));
    switch (random.Integer(0, 7)) {
    case 0: // a cusp, slightly disturbed, the middle anywhere
        c = Cusp() * random.Uniform(1, 30);
        c.P1 += TPoint<double>(tiny(), tiny());
        c.P2 += TPoint<double>(tiny(), tiny());
        c.GetTRange(random.Uniform(0, 0.45), random.Uniform(0.55, 1), c);
        break;
    case 1: { // along a line, disturbed, mostly doubling back
        TPoint<double> const direction = random.Point(1);
        for (TPoint<double>* p : {&c.P0, &c.P1, &c.P2, &c.P3}) {
            *p = direction * random.Uniform(-100, 100) + TPoint<double>(tiny(), tiny());
        }
        break;
    }
    case 2:
        c.P1 = c.P0;
        break;
    case 3:
        c.P2 = c.P3;
        c.P1 = random.Integer(0, 1) == 0 ? c.P0 : c.P1;
        break;
    case 4: // closed
        c.P3 = c.P0;
        break;
    case 5: // a quarter turn
        c = CBezier({0, 100}, {55.228474983079, 100}, {100, 55.228474983079}, {100, 0});
        break;
    default:
        break;
    }
    return c;
}

inline std::string Text(CBezier const& c) {
    return Text(c.P0) + " " + Text(c.P1) + " " + Text(c.P2) + " " + Text(c.P3);
}

/// Curves with coordinates that are no numbers, or at the limits of the range.
inline std::vector<CBezier> SpecialCurves() {
    std::vector<double> const values = {0.0,    -0.0,   1.0,   kNaN,    kInf,   -kInf,
                                        1e300,  -1e300, kHuge, -kHuge,  5e-324, -5e-324,
                                        1e-310, 1e-160, 1e160, 1.7e308, 1e16};
    Random random(77);
    auto const any = [&] {
        return values[static_cast<std::size_t>(
            random.Integer(0, static_cast<int>(values.size()) - 1))];
    };
    std::vector<CBezier> curves;
    for (int i = 0; i < 4000; ++i) {
        CBezier c;
        for (TPoint<double>* p : {&c.P0, &c.P1, &c.P2, &c.P3}) {
            p->h = any();
            p->v = any();
        }
        curves.push_back(c);
    }
    return curves;
}

/// Calls `compute` with vectors of four doubles, if the processor has them, and without.
template <class Compute> void ExpectTheSameInBothForms(Compute const& compute) {
    auto const wide = compute();
    trammel_detail::UsePortableForms(true);
    auto const portable = compute();
    trammel_detail::UsePortableForms(false);
    ASSERT_EQ(wide.size(), portable.size());
    for (std::size_t i = 0; i < wide.size(); ++i) {
        ASSERT_TRUE(SameBits(wide[i], portable[i])) << i;
    }
}

} // namespace trammel_test

#endif
