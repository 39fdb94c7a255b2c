// SPDX-License-Identifier: MIT

// What does it cost to grow a polygon or a path point by point, from nothing to 10, to 1,000
// and to 1,000,000 points? Items are points: only the caches may let the figure fall as the number
// of points grows.
//
// Run by hand: trammel_bench --benchmark_filter=Append

#include "Inputs.h"

#include <trammel/CFPolygonRef.h>
#include <trammel/TPoly.h>

#include <benchmark/benchmark.h>

#include <cstddef>

namespace {

void AppendPointListPolygon(benchmark::State& state) {
    auto const points = inputs::Points(static_cast<std::size_t>(state.range(0)), 1000.0);
    for (auto _ : state) {
        TPolygon<double> polygon;
        for (TPoint<double> const& p : points) {
            polygon.Append(p, true);
        }
        benchmark::DoNotOptimize(polygon.mHandle);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(AppendPointListPolygon)->Arg(10)->Arg(1000)->Arg(1000000);

void AppendUniquePointListPolygon(benchmark::State& state) {
    auto const points = inputs::Points(static_cast<std::size_t>(state.range(0)), 1000.0);
    for (auto _ : state) {
        TPolygon<double> polygon;
        for (TPoint<double> const& p : points) {
            polygon.AppendUnique(p);
        }
        benchmark::DoNotOptimize(polygon.mHandle);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(AppendUniquePointListPolygon)->Arg(10)->Arg(1000)->Arg(1000000);

void AppendHandlePolygon(benchmark::State& state) {
    auto const points = inputs::Points(static_cast<std::size_t>(state.range(0)), 1000.0);
    for (auto _ : state) {
        CFPolygonRef polygon(true);
        for (TPoint<double> const& p : points) {
            polygon.Append(p);
        }
        benchmark::DoNotOptimize(polygon.mRef);
        polygon.Dispose();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(AppendHandlePolygon)->Arg(10)->Arg(1000)->Arg(1000000);

void AppendLinesToPath(benchmark::State& state) {
    auto const points = inputs::Points(static_cast<std::size_t>(state.range(0)), 1000.0);
    for (auto _ : state) {
        CPath path;
        for (TPoint<double> const& p : points) {
            path.LineTo(p);
        }
        benchmark::DoNotOptimize(path.mPts.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(AppendLinesToPath)->Arg(10)->Arg(1000)->Arg(1000000);

} // namespace
