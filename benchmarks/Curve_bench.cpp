// SPDX-License-Identifier: MIT

// What do the measurements on one curve cost? Its length, the parameter nearest to a point, a hit
// test of a point at a drawing's tolerance. One iteration is one call on the next curve.
//
// Run by hand: trammel_bench --benchmark_filter=Curve

#include "Measure.h"

#include <benchmark/benchmark.h>

#include <cstddef>

namespace {

void CurveLength(benchmark::State& state, inputs::Set set) {
    MeasureEach(state, inputs::Curves(set),
                [](CBezier const& curve) { benchmark::DoNotOptimize(curve.Length()); });
}
TRAMMEL_BENCHMARK_SETS(CurveLength);

void CurveNearest(benchmark::State& state, inputs::Set set) {
    auto const points = inputs::Points(997, inputs::Side(set));
    std::size_t next = 0;
    MeasureEach(state, inputs::Curves(set), [&](CBezier const& curve) {
        benchmark::DoNotOptimize(curve.FindTValue(points[next], 0.001, 0.0, 1.0));
        next = (next + 1) % points.size();
    });
}
TRAMMEL_BENCHMARK_SETS(CurveNearest);

/// The points lie all over the drawing, so most are rejected by the curve's box, as most clicks
/// are.
void CurveHitAnywhere(benchmark::State& state, inputs::Set set) {
    auto const points = inputs::Points(997, inputs::Side(set));
    std::size_t next = 0;
    MeasureEach(state, inputs::Curves(set), [&](CBezier const& curve) {
        benchmark::DoNotOptimize(curve.HitTest(points[next], 2.0));
        next = (next + 1) % points.size();
    });
}
TRAMMEL_BENCHMARK_SETS(CurveHitAnywhere);

/// The middle of the control points: in the box, and mostly no hit, so the whole curve is walked.
void CurveHitInBox(benchmark::State& state, inputs::Set set) {
    MeasureEach(state, inputs::Curves(set), [](CBezier const& curve) {
        benchmark::DoNotOptimize(curve.HitTest((curve.P1 + curve.P2) / 2.0, 0.5));
    });
}
TRAMMEL_BENCHMARK_SETS(CurveHitInBox);

} // namespace
