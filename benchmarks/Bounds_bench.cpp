// SPDX-License-Identifier: MIT
//
// How fast are bounds computed when nothing is cached? Items are points.
//
// Run by hand: trammel_bench --benchmark_filter=Bounds

#include "Inputs.h"

#include <trammel/CFPolygonRef.h>
#include <trammel/TPoly.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>

namespace {

constexpr std::size_t kCount = 1000;

void SetPoints(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCount));
}

void BoundsPointListPolygon(benchmark::State& state) {
    TPolygon<double> polygon;
    for (TPoint<double> const& p : inputs::Points(kCount, 1000.0)) {
        polygon.Append(p, true);
    }
    for (auto _ : state) {
        polygon.InvalBounds();
        benchmark::DoNotOptimize(polygon.Bounds());
    }
    SetPoints(state);
}
BENCHMARK(BoundsPointListPolygon);

void BoundsHandlePolygon(benchmark::State& state) {
    CFPolygonRef polygon;
    polygon.CFPolygonCreate(inputs::Points(kCount, 1000.0));
    for (auto _ : state) {
        polygon.InvalBounds();
        benchmark::DoNotOptimize(polygon.Bounds());
    }
    polygon.Dispose();
    SetPoints(state);
}
BENCHMARK(BoundsHandlePolygon);

void BoundsPath(benchmark::State& state) {
    CPath path;
    for (TPoint<double> const& p : inputs::Points(kCount, 1000.0)) {
        path.LineTo(p);
    }
    for (auto _ : state) {
        path.mBounds.SetNull();
        benchmark::DoNotOptimize(path.Bounds());
    }
    SetPoints(state);
}
BENCHMARK(BoundsPath);

} // namespace
