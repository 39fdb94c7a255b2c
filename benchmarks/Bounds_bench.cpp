// SPDX-License-Identifier: MIT

// How fast are bounds computed when nothing is cached? Items are points, of 10, 1,000
// and 100,000 in turn.
//
// Run by hand: trammel_bench --benchmark_filter=Bounds

#include "Inputs.h"

#include <trammel/CFPolygonRef.h>
#include <trammel/TPoly.h>

#include <benchmark/benchmark.h>

#include <cstddef>

namespace {

std::size_t Count(benchmark::State const& state) {
    return static_cast<std::size_t>(state.range(0));
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10)->Arg(1000)->Arg(100000);
}

void SetPoints(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BoundsPointListPolygon(benchmark::State& state) {
    TPolygon<double> polygon;
    for (TPoint<double> const& p : inputs::Points(Count(state), 1000.0)) {
        polygon.Append(p, true);
    }
    for (auto _ : state) {
        polygon.InvalBounds();
        benchmark::DoNotOptimize(polygon.Bounds());
    }
    SetPoints(state);
}
BENCHMARK(BoundsPointListPolygon)->Apply(Sizes);

void BoundsHandlePolygon(benchmark::State& state) {
    CFPolygonRef polygon;
    polygon.CFPolygonCreate(inputs::Points(Count(state), 1000.0));
    for (auto _ : state) {
        polygon.InvalBounds();
        benchmark::DoNotOptimize(polygon.Bounds());
    }
    polygon.Dispose();
    SetPoints(state);
}
BENCHMARK(BoundsHandlePolygon)->Apply(Sizes);

void BoundsPath(benchmark::State& state) {
    CPath path;
    for (TPoint<double> const& p : inputs::Points(Count(state), 1000.0)) {
        path.LineTo(p);
    }
    for (auto _ : state) {
        path.mBounds.SetNull();
        benchmark::DoNotOptimize(path.Bounds());
    }
    SetPoints(state);
}
BENCHMARK(BoundsPath)->Apply(Sizes);

} // namespace
