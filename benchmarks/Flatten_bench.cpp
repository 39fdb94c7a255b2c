// SPDX-License-Identifier: MIT

// How fast does a curve become points? Fine: at 0.001, the tolerance of lengths; coarse: at 0.1,
// that of a drawing. Into a new polygon and into a callback that does nothing. `points` counts the
// points of the flattened curves per second.
//
// Run by hand: trammel_bench --benchmark_filter=Flatten

#include "Measure.h"

#include <trammel/TPoly.h>

#include <benchmark/benchmark.h>

#include <cstdint>

namespace {

void FlattenToPolygon(benchmark::State& state, inputs::Set set, double error) {
    std::int64_t points = 0;
    TPolygon<double> polygon;
    MeasureEach(state, inputs::Curves(set), [&](CBezier const& curve) {
        polygon = TPolygon<double>();
        curve.Flatten(polygon, error);
        points += polygon.LastIndex() + 1;
    });
    state.counters["points"] =
        benchmark::Counter(static_cast<double>(points), benchmark::Counter::kIsRate);
}
BENCHMARK_CAPTURE(FlattenToPolygon, random_fine, inputs::Set::kRandom, 0.001);
BENCHMARK_CAPTURE(FlattenToPolygon, random_coarse, inputs::Set::kRandom, 0.1);
BENCHMARK_CAPTURE(FlattenToPolygon, truetype_fine, inputs::Set::kTrueType, 0.001);
BENCHMARK_CAPTURE(FlattenToPolygon, truetype_coarse, inputs::Set::kTrueType, 0.1);
BENCHMARK_CAPTURE(FlattenToPolygon, cff_fine, inputs::Set::kCff, 0.001);
BENCHMARK_CAPTURE(FlattenToPolygon, cff_coarse, inputs::Set::kCff, 0.1);

void FlattenToCallback(benchmark::State& state, inputs::Set set, double error) {
    std::int64_t points = 0;
    double const old = CBezier::SetCurveError(error);
    MeasureEach(state, inputs::Curves(set), [&](CBezier const& curve) {
        curve.GenerateSegment(
            [](TPoint<double> const& p, void* count) {
                benchmark::DoNotOptimize(p);
                ++*static_cast<std::int64_t*>(count);
            },
            &points, true, CBezier::mRecursionLimit);
    });
    CBezier::SetCurveError(old);
    state.counters["points"] =
        benchmark::Counter(static_cast<double>(points), benchmark::Counter::kIsRate);
}
BENCHMARK_CAPTURE(FlattenToCallback, random_fine, inputs::Set::kRandom, 0.001);
BENCHMARK_CAPTURE(FlattenToCallback, random_coarse, inputs::Set::kRandom, 0.1);
BENCHMARK_CAPTURE(FlattenToCallback, truetype_fine, inputs::Set::kTrueType, 0.001);
BENCHMARK_CAPTURE(FlattenToCallback, truetype_coarse, inputs::Set::kTrueType, 0.1);
BENCHMARK_CAPTURE(FlattenToCallback, cff_fine, inputs::Set::kCff, 0.001);
BENCHMARK_CAPTURE(FlattenToCallback, cff_coarse, inputs::Set::kCff, 0.1);

} // namespace
