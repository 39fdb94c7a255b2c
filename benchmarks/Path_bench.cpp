// SPDX-License-Identifier: MIT

// What do the measurements on a whole outline cost? Its length, the point at a fraction of it, the
// fraction nearest to a point, a piece cut out. One iteration is one call on the next outline.
//
// Run by hand: trammel_bench --benchmark_filter=Path

#include "Measure.h"

#include <benchmark/benchmark.h>

#include <cstddef>

namespace {

void PathLength(benchmark::State& state, inputs::Set set) {
    MeasureEach(state, inputs::Outlines(set),
                [](CPath const& path) { benchmark::DoNotOptimize(path.Length()); });
}
TRAMMEL_BENCHMARK_SETS(PathLength);

void PathPointAtFraction(benchmark::State& state, inputs::Set set) {
    MeasureEach(state, inputs::Outlines(set),
                [](CPath const& path) { benchmark::DoNotOptimize(path.TPt(0.3)); });
}
TRAMMEL_BENCHMARK_SETS(PathPointAtFraction);

void PathNearest(benchmark::State& state, inputs::Set set) {
    auto const points = inputs::Points(997, inputs::Side(set));
    std::size_t next = 0;
    MeasureEach(state, inputs::Outlines(set), [&](CPath const& path) {
        benchmark::DoNotOptimize(path.FindTValue(points[next]));
        next = (next + 1) % points.size();
    });
}
TRAMMEL_BENCHMARK_SETS(PathNearest);

void PathCut(benchmark::State& state, inputs::Set set) {
    CPath piece;
    MeasureEach(state, inputs::Outlines(set), [&](CPath const& path) {
        piece.clear();
        path.GetTRange(0.25, 0.75, piece);
        benchmark::DoNotOptimize(piece.mPts.data());
    });
}
TRAMMEL_BENCHMARK_SETS(PathCut);

} // namespace
