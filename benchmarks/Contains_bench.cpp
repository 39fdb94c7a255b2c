// SPDX-License-Identifier: MIT
//
// How fast is point-in-polygon, for both polygon kinds, at 10, 1,000 and 100,000 vertices? One
// iteration is one point; `edges` counts edges per second, so that a cost that grows faster than
// the polygon would show.
//
// Run by hand: trammel_bench --benchmark_filter=Contains

#include "Inputs.h"

#include <trammel/CFPolygonRef.h>
#include <trammel/TPoly.h>

#include <benchmark/benchmark.h>

#include <cstddef>

namespace {

template <class Polygon> void MeasureContains(benchmark::State& state, Polygon const& polygon) {
    auto const points = inputs::Points(997, 1000.0);
    benchmark::DoNotOptimize(polygon.Bounds()); // cached from here on
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(polygon.Contains(points[next]));
        next = (next + 1) % points.size();
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["edges"] = benchmark::Counter(static_cast<double>(state.range(0)),
                                                 benchmark::Counter::kIsIterationInvariantRate);
}

void ContainsPointListPolygon(benchmark::State& state) {
    TPolygon<double> polygon;
    for (TPoint<double> const& p : inputs::Star(static_cast<std::size_t>(state.range(0)))) {
        polygon.Append(p, true);
    }
    MeasureContains(state, polygon);
}
BENCHMARK(ContainsPointListPolygon)->Arg(10)->Arg(1000)->Arg(100000);

void ContainsHandlePolygon(benchmark::State& state) {
    CFPolygonRef polygon;
    polygon.CFPolygonCreate(inputs::Star(static_cast<std::size_t>(state.range(0))));
    MeasureContains(state, polygon);
    polygon.Dispose();
}
BENCHMARK(ContainsHandlePolygon)->Arg(10)->Arg(1000)->Arg(100000);

} // namespace
