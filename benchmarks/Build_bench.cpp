// SPDX-License-Identifier: MIT

// What does it cost to build a path? Outlines rebuilt element by element (one iteration is one
// outline), circles of four arcs and rounded rectangles (one iteration is one shape in a new path).
//
// Run by hand: trammel_bench --benchmark_filter=Build

#include "Measure.h"

#include <trammel/CPathActions.h>
#include <trammel/UTrigonometry.h>

#include <benchmark/benchmark.h>

namespace {

/// Builds a copy of the path that it visits.
class Builder : public CPathActions {
public:
    CPath mPath;

    void MoveTo(TPoint<double> const& p) override { mPath.MoveTo(p); }
    void LineTo(TPoint<double> const& p) override { mPath.LineTo(p); }
    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        mPath.CurveTo(c1, c2, e);
    }
    void ClosePath() override { mPath.ClosePath(); }
};

void BuildOutline(benchmark::State& state, inputs::Set set) {
    MeasureEach(state, inputs::Outlines(set), [](CPath const& outline) {
        Builder builder;
        outline.ForAll(builder);
        benchmark::DoNotOptimize(builder.mPath.mPts.data());
    });
}
TRAMMEL_BENCHMARK_SETS(BuildOutline);

void BuildCircle(benchmark::State& state) {
    for (auto _ : state) {
        CPath path;
        path.Arc(TPoint<double>(50.0, 50.0), 40.0, 0.3, 2.0 * pi);
        benchmark::DoNotOptimize(path.mPts.data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BuildCircle);

void BuildRoundedRectangle(benchmark::State& state) {
    for (auto _ : state) {
        CPath path;
        path.RRect(TRect<double>(10.0, 10.0, 200.0, 100.0), 24.0);
        benchmark::DoNotOptimize(path.mPts.data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BuildRoundedRectangle);

} // namespace
