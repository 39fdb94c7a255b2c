// SPDX-License-Identifier: MIT

// What do the queries to a stated accuracy cost, and how accurate are they? One iteration is one
// call on the next curve or outline. Two deviations from the truth stand beside the time, in units
// of the accuracy asked for: the `worst`, and `p95`, which 95 of 100 results do not exceed. Lengths
// and nearest points are asked for within 0.001; coarse is 0.1, fine 1e-6, finest 1e-10. Names with
// Plain measure the curve's own function for the purpose, which promises no accuracy.
//
// The truth comes from long doubles: quadrature of tight pieces gives lengths, and refined samples
// give nearest points and flattenings.
//
// Run by hand: trammel_bench --benchmark_filter=Accurate

#include "Measure.h"

#include <trammel/AccurateCurve.h>
#include <trammel/TPoly.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace {

typedef long double Wide;
typedef TPoint<double> Pt;

struct WidePt {
    Wide h;
    Wide v;
};

Wide Widened(double x) { return static_cast<Wide>(x); }

/// The point of a curve relative to `origin`.
WidePt At(CBezier const& c, Wide t, Pt const& origin) {
    Wide const s = 1 - t;
    Wide const w[] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
    Pt const* const p[] = {&c.P0, &c.P1, &c.P2, &c.P3};
    WidePt sum = {0, 0};
    for (int i = 0; i < 4; ++i) {
        sum.h += (Widened(p[i]->h) - Widened(origin.h)) * w[i];
        sum.v += (Widened(p[i]->v) - Widened(origin.v)) * w[i];
    }
    return sum;
}

Wide Speed(CBezier const& c, Wide t) {
    Wide const s = 1 - t;
    auto const coordinate = [&](double p0, double p1, double p2, double p3) {
        return 3 * ((Widened(p1) - Widened(p0)) * s * s + (Widened(p2) - Widened(p1)) * 2 * s * t +
                    (Widened(p3) - Widened(p2)) * t * t);
    };
    return std::hypot(coordinate(c.P0.h, c.P1.h, c.P2.h, c.P3.h),
                      coordinate(c.P0.v, c.P1.v, c.P2.v, c.P3.v));
}

/// By 5 nodes on pieces that are halved until nothing changes.
Wide TrueLength(CBezier const& c, Wide a, Wide b, int depth) {
    auto const gauss = [&c](Wide from, Wide to) {
        constexpr Wide kNodes[] = {0.53846931010568309104L, 0.90617984593866399280L};
        constexpr Wide kWeights[] = {0.56888888888888888889L, 0.47862867049936646804L,
                                     0.23692688505618908751L};
        Wide const middle = (from + to) / 2;
        Wide const half = (to - from) / 2;
        Wide sum = kWeights[0] * Speed(c, middle);
        for (int i = 0; i < 2; ++i) {
            sum += kWeights[i + 1] *
                   (Speed(c, middle - half * kNodes[i]) + Speed(c, middle + half * kNodes[i]));
        }
        return sum * half;
    };
    Wide const middle = (a + b) / 2;
    Wide const halves = gauss(a, middle) + gauss(middle, b);
    if (depth >= 40 || (depth >= 5 && std::abs(gauss(a, b) - halves) <= 1e-16L * halves)) {
        return halves;
    }
    return TrueLength(c, a, middle, depth + 1) + TrueLength(c, middle, b, depth + 1);
}

/// Puts the deviations, in units of `accuracy`, among the counters.
void Report(benchmark::State& state, std::vector<Wide> off, double accuracy) {
    if (off.empty()) {
        return;
    }
    std::sort(off.begin(), off.end());
    state.counters["worst"] = static_cast<double>(off.back()) / accuracy;
    state.counters["p95"] = static_cast<double>(off[off.size() * 95 / 100]) / accuracy;
}

/// The first curves of a set: as many as the search for the truth has time for.
std::vector<CBezier> SomeCurves(inputs::Set set, std::size_t count) {
    std::vector<CBezier> curves = inputs::Curves(set);
    curves.resize(std::min(curves.size(), count));
    return curves;
}

// ------------------------------------------------------------------------------------------------
// Length and parameter

template <class Length>
void MeasureLength(benchmark::State& state, inputs::Set set, double accuracy, Length length) {
    MeasureEach(state, inputs::Curves(set),
                [&](CBezier const& curve) { benchmark::DoNotOptimize(length(curve)); });
    std::vector<Wide> off;
    for (CBezier const& curve : SomeCurves(set, 500)) {
        off.push_back(std::abs(Widened(length(curve)) - TrueLength(curve, 0, 1, 0)));
    }
    Report(state, off, accuracy);
}

void AccurateLength(benchmark::State& state, inputs::Set set, double accuracy) {
    MeasureLength(state, set, accuracy,
                  [=](CBezier const& c) { return trammel::ArcLength(c, accuracy); });
}
BENCHMARK_CAPTURE(AccurateLength, random_coarse, inputs::Set::kRandom, 1e-1);
BENCHMARK_CAPTURE(AccurateLength, random, inputs::Set::kRandom, 1e-3);
BENCHMARK_CAPTURE(AccurateLength, random_fine, inputs::Set::kRandom, 1e-6);
BENCHMARK_CAPTURE(AccurateLength, random_finest, inputs::Set::kRandom, 1e-10);
BENCHMARK_CAPTURE(AccurateLength, truetype, inputs::Set::kTrueType, 1e-3);
BENCHMARK_CAPTURE(AccurateLength, cff, inputs::Set::kCff, 1e-3);
BENCHMARK_CAPTURE(AccurateLength, cff_finest, inputs::Set::kCff, 1e-10);

void AccurateLengthPlain(benchmark::State& state, inputs::Set set) {
    MeasureLength(state, set, 1e-3, [](CBezier const& c) { return c.Length(); });
}
TRAMMEL_BENCHMARK_SETS(AccurateLengthPlain);

template <class Parameter>
void MeasureParameter(benchmark::State& state, inputs::Set set, double accuracy,
                      Parameter parameter) {
    double fraction = 0.0;
    auto const next = [&fraction] { return fraction = std::fmod(fraction + 0.137, 1.0); };
    MeasureEach(state, inputs::Curves(set),
                [&](CBezier const& curve) { benchmark::DoNotOptimize(parameter(curve, next())); });
    std::vector<Wide> off;
    for (CBezier const& curve : SomeCurves(set, 500)) {
        double const t = parameter(curve, next());
        off.push_back(std::abs(TrueLength(curve, 0, Widened(t), 0) -
                               Widened(fraction) * TrueLength(curve, 0, 1, 0)));
    }
    Report(state, off, accuracy);
}

void AccurateFraction(benchmark::State& state, inputs::Set set, double accuracy) {
    MeasureParameter(state, set, accuracy, [=](CBezier const& c, double fraction) {
        return trammel::ParameterAtFraction(c, fraction, accuracy);
    });
}
BENCHMARK_CAPTURE(AccurateFraction, random, inputs::Set::kRandom, 1e-3);
BENCHMARK_CAPTURE(AccurateFraction, random_finest, inputs::Set::kRandom, 1e-10);
BENCHMARK_CAPTURE(AccurateFraction, truetype, inputs::Set::kTrueType, 1e-3);
BENCHMARK_CAPTURE(AccurateFraction, cff, inputs::Set::kCff, 1e-3);

void AccurateFractionPlain(benchmark::State& state, inputs::Set set) {
    MeasureParameter(state, set, 1e-3,
                     [](CBezier const& c, double fraction) { return c.PercentT(fraction); });
}
TRAMMEL_BENCHMARK_SETS(AccurateFractionPlain);

void AccuratePathLength(benchmark::State& state, inputs::Set set, double accuracy) {
    MeasureEach(state, inputs::Outlines(set), [=](CPath const& path) {
        benchmark::DoNotOptimize(trammel::ArcLength(path, accuracy));
    });
}
BENCHMARK_CAPTURE(AccuratePathLength, random, inputs::Set::kRandom, 1e-3);
BENCHMARK_CAPTURE(AccuratePathLength, truetype, inputs::Set::kTrueType, 1e-3);
BENCHMARK_CAPTURE(AccuratePathLength, cff, inputs::Set::kCff, 1e-3);

// ------------------------------------------------------------------------------------------------
// Nearest point

/// The least distance, by samples and by halving around each local minimum.
Wide TrueDistance(CBezier const& c, Pt const& p) {
    constexpr int kSamples = 400;
    auto const distance = [&](Wide t) {
        WidePt const q = At(c, t, p);
        return std::hypot(q.h, q.v);
    };
    std::vector<Wide> samples;
    for (int i = 0; i <= kSamples; ++i) {
        samples.push_back(distance(static_cast<Wide>(i) / kSamples));
    }
    Wide least = *std::min_element(samples.begin(), samples.end());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (samples[i] > 1.05L * least + 1e-3L || (i > 0 && samples[i - 1] < samples[i]) ||
            (i + 1 < samples.size() && samples[i + 1] < samples[i])) {
            continue;
        }
        Wide lo = std::max(static_cast<Wide>(i) - 1, Wide{0}) / kSamples;
        Wide hi = std::min(static_cast<Wide>(i) + 1, Wide{kSamples}) / kSamples;
        for (int step = 0; step < 80; ++step) {
            Wide const a = lo + (hi - lo) * 0.382L;
            Wide const b = lo + (hi - lo) * 0.618L;
            if (distance(a) < distance(b)) {
                hi = b;
            } else {
                lo = a;
            }
        }
        least = std::min(least, distance((lo + hi) / 2));
    }
    return least;
}

template <class Nearest>
void MeasureNearest(benchmark::State& state, inputs::Set set, double accuracy, Nearest nearest) {
    auto const points = inputs::Points(997, inputs::Side(set));
    std::size_t next = 0;
    auto const point = [&]() -> Pt const& { return points[next++ % points.size()]; };
    MeasureEach(state, inputs::Curves(set),
                [&](CBezier const& curve) { benchmark::DoNotOptimize(nearest(curve, point())); });
    std::vector<Wide> off;
    for (CBezier const& curve : SomeCurves(set, 500)) {
        Pt const& p = point();
        WidePt const found = At(curve, Widened(nearest(curve, p)), p);
        off.push_back(std::max(std::hypot(found.h, found.v) - TrueDistance(curve, p), Wide{0}));
    }
    Report(state, off, accuracy);
}

void AccurateNearest(benchmark::State& state, inputs::Set set, double accuracy) {
    MeasureNearest(state, set, accuracy, [=](CBezier const& c, Pt const& p) {
        return trammel::NearestPoint(c, p, accuracy).t;
    });
}
BENCHMARK_CAPTURE(AccurateNearest, random, inputs::Set::kRandom, 1e-3);
BENCHMARK_CAPTURE(AccurateNearest, random_finest, inputs::Set::kRandom, 1e-10);
BENCHMARK_CAPTURE(AccurateNearest, truetype, inputs::Set::kTrueType, 1e-3);
BENCHMARK_CAPTURE(AccurateNearest, cff, inputs::Set::kCff, 1e-3);

void AccurateNearestPlain(benchmark::State& state, inputs::Set set) {
    MeasureNearest(state, set, 1e-3,
                   [](CBezier const& c, Pt const& p) { return c.FindTValue(p, 0.001, 0.0, 1.0); });
}
TRAMMEL_BENCHMARK_SETS(AccurateNearestPlain);

// ------------------------------------------------------------------------------------------------
// Flatten, bounds

Wide SegmentDistance(WidePt const& p, Pt const& a, Pt const& b) {
    Wide const dh = Widened(b.h) - Widened(a.h);
    Wide const dv = Widened(b.v) - Widened(a.v);
    Wide const ph = p.h - Widened(a.h);
    Wide const pv = p.v - Widened(a.v);
    Wide const square = dh * dh + dv * dv;
    Wide const t = square > 0 ? (ph * dh + pv * dv) / square : Wide{0};
    Wide const s = std::min(std::max(t, Wide{0}), Wide{1});
    return std::hypot(ph - dh * s, pv - dv * s);
}

/// `points` is the mean number of points of a curve.
template <class Flatten>
void MeasureFlatten(benchmark::State& state, inputs::Set set, double tolerance, Flatten flatten) {
    TPolygon<double> polygon;
    MeasureEach(state, inputs::Curves(set), [&](CBezier const& curve) {
        polygon = TPolygon<double>();
        flatten(curve, polygon);
    });
    double points = 0.0;
    std::vector<Wide> off;
    auto const curves = SomeCurves(set, 100);
    for (CBezier const& curve : inputs::Curves(set)) {
        polygon = TPolygon<double>();
        flatten(curve, polygon);
        points += static_cast<double>(polygon.LastIndex() + 1);
    }
    for (CBezier const& curve : curves) {
        polygon = TPolygon<double>();
        flatten(curve, polygon);
        // Curve and chain run alike, so the near chord is not far from the last near one.
        Wide worst = 0;
        long near = 0;
        long const last = polygon.LastIndex();
        for (long i = 0; i <= 6 * last; ++i) {
            WidePt const p = At(curve, static_cast<Wide>(i) / static_cast<Wide>(6 * last), Pt());
            Wide least = SegmentDistance(p, curve.P0, curve.P0);
            long const begin = std::max(near - 30, 0L);
            for (long edge = begin; edge < std::min(begin + 60, last); ++edge) {
                Wide const distance =
                    SegmentDistance(p, polygon.GetPt(edge), polygon.GetPt(edge + 1));
                near = distance < least ? edge : near;
                least = std::min(least, distance);
            }
            worst = std::max(worst, least);
        }
        off.push_back(worst);
    }
    Report(state, off, tolerance);
    state.counters["points"] = points / static_cast<double>(inputs::Curves(set).size());
}

void AccurateFlatten(benchmark::State& state, inputs::Set set, double tolerance) {
    MeasureFlatten(state, set, tolerance, [=](CBezier const& c, TPolygon<double>& polygon) {
        benchmark::DoNotOptimize(trammel::FlattenWithin(c, tolerance, polygon));
    });
}
void AccurateFlattenPlain(benchmark::State& state, inputs::Set set, double tolerance) {
    MeasureFlatten(state, set, tolerance, [=](CBezier const& c, TPolygon<double>& polygon) {
        c.Flatten(polygon, tolerance);
    });
}
BENCHMARK_CAPTURE(AccurateFlatten, random_fine, inputs::Set::kRandom, 0.001);
BENCHMARK_CAPTURE(AccurateFlattenPlain, random_fine, inputs::Set::kRandom, 0.001);
BENCHMARK_CAPTURE(AccurateFlatten, random_coarse, inputs::Set::kRandom, 0.1);
BENCHMARK_CAPTURE(AccurateFlattenPlain, random_coarse, inputs::Set::kRandom, 0.1);
BENCHMARK_CAPTURE(AccurateFlatten, truetype_coarse, inputs::Set::kTrueType, 0.1);
BENCHMARK_CAPTURE(AccurateFlattenPlain, truetype_coarse, inputs::Set::kTrueType, 0.1);
BENCHMARK_CAPTURE(AccurateFlatten, cff_fine, inputs::Set::kCff, 0.001);
BENCHMARK_CAPTURE(AccurateFlattenPlain, cff_fine, inputs::Set::kCff, 0.001);
BENCHMARK_CAPTURE(AccurateFlatten, cff_coarse, inputs::Set::kCff, 0.1);
BENCHMARK_CAPTURE(AccurateFlattenPlain, cff_coarse, inputs::Set::kCff, 0.1);

/// Into a callback that does nothing.
void AccurateFlattenCallback(benchmark::State& state, inputs::Set set, double tolerance) {
    MeasureEach(state, inputs::Curves(set), [=](CBezier const& curve) {
        auto const nothing = [](Pt const& p, void*) { benchmark::DoNotOptimize(p); };
        benchmark::DoNotOptimize(trammel::FlattenWithin(curve, tolerance, nothing, nullptr));
    });
}
BENCHMARK_CAPTURE(AccurateFlattenCallback, random_fine, inputs::Set::kRandom, 0.001);
BENCHMARK_CAPTURE(AccurateFlattenCallback, random_coarse, inputs::Set::kRandom, 0.1);
BENCHMARK_CAPTURE(AccurateFlattenCallback, cff_coarse, inputs::Set::kCff, 0.1);

void AccurateBounds(benchmark::State& state, inputs::Set set) {
    MeasureEach(state, inputs::Curves(set), [](CBezier const& curve) {
        benchmark::DoNotOptimize(trammel::TightBounds(curve));
    });
}
TRAMMEL_BENCHMARK_SETS(AccurateBounds);

} // namespace
