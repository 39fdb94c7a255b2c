// SPDX-License-Identifier: MIT

// How fast is point-in-polygon, for both polygon kinds, at 4, 10, 1,000 and 100,000 vertices? The
// long edges of a star cross every height many times, and most heights cross a smooth outline
// twice. One iteration is one point. `edges` counts edges per second, so that a cost that grows
// faster than the polygon would show.
//
// Run by hand: trammel_bench --benchmark_filter=Contains

#include "Inputs.h"

#include <trammel/CFPolygonRef.h>
#include <trammel/TPoly.h>
#include <trammel/UTrigonometry.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <vector>

namespace {

/// The vertices of a smooth outline around the middle of the square from 0 to 1000.
std::vector<TPoint<double>> Flower(std::size_t count) {
    std::vector<TPoint<double>> vertices(count);
    for (std::size_t i = 0; i < count; ++i) {
        double const angle = 2.0 * pi * static_cast<double>(i) / static_cast<double>(count);
        double const radius = 400.0 + 10.0 * std::sin(5.0 * angle);
        vertices[i].Set(500.0 + radius * std::cos(angle), 500.0 + radius * std::sin(angle));
    }
    return vertices;
}

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

void ContainsPointListPolygon(benchmark::State& state,
                              std::vector<TPoint<double>> (*outline)(std::size_t)) {
    TPolygon<double> polygon;
    for (TPoint<double> const& p : outline(static_cast<std::size_t>(state.range(0)))) {
        polygon.Append(p, true);
    }
    MeasureContains(state, polygon);
}

void ContainsHandlePolygon(benchmark::State& state,
                           std::vector<TPoint<double>> (*outline)(std::size_t)) {
    CFPolygonRef polygon;
    polygon.CFPolygonCreate(outline(static_cast<std::size_t>(state.range(0))));
    MeasureContains(state, polygon);
    polygon.Dispose();
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(4)->Arg(10)->Arg(1000)->Arg(100000);
}
BENCHMARK_CAPTURE(ContainsPointListPolygon, star, inputs::Star)->Apply(Sizes);
BENCHMARK_CAPTURE(ContainsPointListPolygon, smooth, Flower)->Apply(Sizes);
BENCHMARK_CAPTURE(ContainsHandlePolygon, star, inputs::Star)->Apply(Sizes);
BENCHMARK_CAPTURE(ContainsHandlePolygon, smooth, Flower)->Apply(Sizes);

} // namespace
