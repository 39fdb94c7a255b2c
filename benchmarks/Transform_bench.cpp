// SPDX-License-Identifier: MIT

// How fast do coordinates go through a matrix: as an array of points, as a polygon of either kind,
// as a path? Items are points, of 10, 1,000 and 100,000 in turn.
//
// Run by hand: trammel_bench --benchmark_filter='Transform|Offset'

#include "Inputs.h"

#include <trammel/CFPolygonRef.h>
#include <trammel/CMatrix3x3.h>
#include <trammel/TPoly.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

namespace {

/// A turn about the middle: the coordinates stay where they are in size, however often it is done.
CMatrix3x3 Turn() { return CMatrix3x3().Rotate(1.0, TPoint<double>(500.0, 500.0)); }

std::size_t Count(benchmark::State const& state) {
    return static_cast<std::size_t>(state.range(0));
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10)->Arg(1000)->Arg(100000);
}

void SetPoints(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void TransformPoints(benchmark::State& state) {
    CMatrix3x3 const m = Turn();
    auto points = inputs::Points(Count(state), 1000.0);
    for (auto _ : state) {
        for (TPoint<double>& p : points) {
            p.Transform(m);
        }
        benchmark::DoNotOptimize(points.data());
        benchmark::ClobberMemory();
    }
    SetPoints(state);
}
BENCHMARK(TransformPoints)->Apply(Sizes);

void TransformPointListPolygon(benchmark::State& state) {
    CMatrix3x3 const m = Turn();
    TPolygon<double> polygon;
    for (TPoint<double> const& p : inputs::Points(Count(state), 1000.0)) {
        polygon.Append(p, true);
    }
    for (auto _ : state) {
        polygon.Transform(m);
        benchmark::ClobberMemory();
    }
    SetPoints(state);
}
BENCHMARK(TransformPointListPolygon)->Apply(Sizes);

void TransformHandlePolygon(benchmark::State& state) {
    CFPolygonRef polygon;
    polygon.CFPolygonCreate(inputs::Points(Count(state), 1000.0));
    for (auto _ : state) {
        polygon.Rotate(1.0, TPoint<double>(500.0, 500.0));
        benchmark::ClobberMemory();
    }
    polygon.Dispose();
    SetPoints(state);
}
BENCHMARK(TransformHandlePolygon)->Apply(Sizes);

void OffsetHandlePolygon(benchmark::State& state) {
    CFPolygonRef polygon;
    polygon.CFPolygonCreate(inputs::Points(Count(state), 1000.0));
    for (auto _ : state) {
        polygon.Offset(TPoint<double>(1.0, -1.0));
        benchmark::ClobberMemory();
    }
    polygon.Dispose();
    SetPoints(state);
}
BENCHMARK(OffsetHandlePolygon)->Apply(Sizes);

void TransformPath(benchmark::State& state) {
    CMatrix3x3 const m = Turn();
    CPath path;
    for (TPoint<double> const& p : inputs::Points(Count(state), 1000.0)) {
        path.LineTo(p);
    }
    for (auto _ : state) {
        path.Transform(m);
        benchmark::ClobberMemory();
    }
    SetPoints(state);
}
BENCHMARK(TransformPath)->Apply(Sizes);

} // namespace
