// SPDX-License-Identifier: MIT

// How far are the results from the truth? Not times but errors, in the counters; docs/numerics.md
// quotes them. Lengths are compared with Gauss-Legendre quadrature of the speed, flattenings and
// nearest points with the curve itself, sampled densely.
//
// Run by hand: trammel_bench --benchmark_filter=Accuracy

#include "Measure.h"
#include "Truth.h"

#include <trammel/TPoly.h>
#include <trammel/UTrigonometry.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace {

/// The largest and the mean of some errors.
struct Errors {
    double worst = 0.0;
    double sum = 0.0;
    double count = 0.0;

    void Add(double error) {
        worst = std::max(worst, error);
        sum += error;
        count += 1.0;
    }
    double Mean() const { return sum / count; }
};

template <class Items> bool Skipped(benchmark::State& state, Items const& items) {
    if (items.empty()) {
        state.SkipWithError("no such font here, or built without FreeType");
    }
    return items.empty();
}

/// Relative error of CBezier::Length.
void AccuracyLength(benchmark::State& state, inputs::Set set) {
    auto const& curves = inputs::Curves(set);
    if (Skipped(state, curves)) {
        return;
    }
    Errors relative;
    for (auto _ : state) {
        for (CBezier const& curve : curves) {
            double const truth = truth::Length(curve, 0.0, 1.0);
            relative.Add(std::abs(curve.Length() - truth) / truth);
        }
    }
    state.counters["worst"] = relative.worst;
    state.counters["mean"] = relative.Mean();
}
BENCHMARK_CAPTURE(AccuracyLength, random, inputs::Set::kRandom)->Iterations(1);
BENCHMARK_CAPTURE(AccuracyLength, truetype, inputs::Set::kTrueType)->Iterations(1);
BENCHMARK_CAPTURE(AccuracyLength, cff, inputs::Set::kCff)->Iterations(1);

/// Measures how far curves are from their flattenings, in units of the tolerance. `worst` is the
/// greatest distance of a point of a curve, `beyond` the share of curves that exceed 1 somewhere.
void AccuracyFlatten(benchmark::State& state, inputs::Set set, double error) {
    auto const& curves = inputs::Curves(set);
    if (Skipped(state, curves)) {
        return;
    }
    Errors ratio;
    double beyond = 0.0;
    for (auto _ : state) {
        for (CBezier const& curve : curves) {
            TPolygon<double> polygon;
            curve.Flatten(polygon, error);
            double worst = 0.0;
            for (int i = 0; i <= 2000; ++i) {
                TPoint<double> const p = curve.TPt(i / 2000.0);
                double nearest = std::numeric_limits<double>::infinity();
                for (long edge = 0; edge < polygon.LastIndex(); ++edge) {
                    nearest = std::min(
                        nearest, truth::Distance(p, polygon.GetPt(edge), polygon.GetPt(edge + 1)));
                }
                worst = std::max(worst, nearest);
            }
            ratio.Add(worst / error);
            beyond += worst > error ? 1.0 : 0.0;
        }
    }
    state.counters["worst"] = ratio.worst;
    state.counters["mean"] = ratio.Mean();
    state.counters["beyond"] = beyond / ratio.count;
}
BENCHMARK_CAPTURE(AccuracyFlatten, random_coarse, inputs::Set::kRandom, 0.1)->Iterations(1);
BENCHMARK_CAPTURE(AccuracyFlatten, truetype_coarse, inputs::Set::kTrueType, 0.1)->Iterations(1);
BENCHMARK_CAPTURE(AccuracyFlatten, cff_coarse, inputs::Set::kCff, 0.1)->Iterations(1);

/// How much farther than the nearest point is the point that FindTValue finds, relative to the
/// curve's extent? `wrong` is the share of searches that are off by more than a hundredth of the
/// extent.
void AccuracyNearest(benchmark::State& state, inputs::Set set) {
    auto const& curves = inputs::Curves(set);
    if (Skipped(state, curves)) {
        return;
    }
    auto const points = inputs::Points(997, inputs::Side(set));
    std::size_t next = 0;
    Errors excess;
    double wrong = 0.0;
    for (auto _ : state) {
        for (CBezier const& curve : curves) {
            TRect<double> const box = curve.Extents();
            double const extent = std::max(box.Width(), box.Height());
            for (int i = 0; i < 10; ++i) {
                // Points of the drawing, brought into the curve's surroundings.
                TPoint<double> const p =
                    box.MidPt() +
                    (points[next] / inputs::Side(set) - TPoint<double>(0.5, 0.5)) * (2.0 * extent);
                next = (next + 1) % points.size();
                double nearest = std::numeric_limits<double>::infinity();
                for (int step = 0; step <= 1000; ++step) {
                    nearest = std::min(nearest, (curve.TPt(step / 1000.0) - p).Length());
                }
                double const found = (curve.TPt(curve.FindTValue(p, 0.001, 0.0, 1.0)) - p).Length();
                double const off = std::max(0.0, found - nearest) / extent;
                excess.Add(off);
                wrong += off > 0.01 ? 1.0 : 0.0;
            }
        }
    }
    state.counters["worst"] = excess.worst;
    state.counters["mean"] = excess.Mean();
    state.counters["wrong"] = wrong / excess.count;
}
BENCHMARK_CAPTURE(AccuracyNearest, random, inputs::Set::kRandom)->Iterations(1);
BENCHMARK_CAPTURE(AccuracyNearest, truetype, inputs::Set::kTrueType)->Iterations(1);
BENCHMARK_CAPTURE(AccuracyNearest, cff, inputs::Set::kCff)->Iterations(1);

/// How far do arcs of a unit circle leave it? The sweep is in degrees.
void AccuracyArc(benchmark::State& state) {
    CPath path;
    path.Arc(TPoint<double>(0.0, 0.0), 1.0, 0.0, DegToRad(static_cast<double>(state.range(0))));
    double worst = 0.0;
    for (auto _ : state) {
        for (std::size_t i = 1; i + 2 < path.mPts.size(); i += 3) {
            CBezier const curve(path.mPts[i - 1], path.mPts[i], path.mPts[i + 1], path.mPts[i + 2]);
            for (int step = 0; step <= 1000; ++step) {
                worst = std::max(worst, std::abs(curve.TPt(step / 1000.0).Length() - 1.0));
            }
        }
    }
    state.counters["curves"] = static_cast<double>(path.mPts.size() / 3);
    state.counters["worst"] = worst;
}
BENCHMARK(AccuracyArc)->Arg(89)->Arg(90)->Arg(359)->Arg(360)->Iterations(1);

} // namespace
