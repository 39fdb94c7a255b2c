// SPDX-License-Identifier: MIT

// What does it cost to clip a line by a polygon, as hatching does? The polygons are a star of 10 to
// 10,000 vertices, which a line crosses more often the more it has, and the flattened outlines of a
// font. One iteration is one line across the next outline.
//
// Run by hand: trammel_bench --benchmark_filter=Clip

#include "Measure.h"

#include <trammel/CPathActions.h>
#include <trammel/TLine.h>
#include <trammel/TPoly.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

namespace {

void ClipByStar(benchmark::State& state) {
    TPolygon<double> polygon;
    for (TPoint<double> const& p : inputs::Star(static_cast<std::size_t>(state.range(0)))) {
        polygon.Append(p, true);
    }
    auto const points = inputs::Points(997, 1000.0);
    std::size_t next = 0;
    for (auto _ : state) {
        double const v = points[next].v;
        TLine<double> const line(TPoint<double>(0.0, v), TPoint<double>(1000.0, v + 100.0));
        benchmark::DoNotOptimize(polygon.Clip(line));
        next = (next + 1) % points.size();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(ClipByStar)->Arg(10)->Arg(100)->Arg(1000)->Arg(10000);

/// Flattens the path that it visits into one polygon for each subpath.
class Flattener : public CPathActions {
public:
    std::vector<TPolygon<double>> mPolygons;

    void MoveTo(TPoint<double> const& p) override {
        mPolygons.emplace_back();
        mPolygons.back().Append(p, true);
    }
    void LineTo(TPoint<double> const& p) override { mPolygons.back().AppendUnique(p); }
    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        CBezier(GetCurrentPt(), c1, c2, e).Flatten(mPolygons.back(), 0.05);
    }
};

void ClipByOutline(benchmark::State& state, inputs::Set set) {
    Flattener flattener;
    for (CPath const& outline : inputs::Outlines(set)) {
        outline.ForAll(flattener);
    }
    double const side = inputs::Side(set);
    auto const points = inputs::Points(997, side);
    std::size_t next = 0;
    MeasureEach(state, flattener.mPolygons, [&](TPolygon<double> const& polygon) {
        double const v = points[next].v;
        TLine<double> const line(TPoint<double>(0.0, v), TPoint<double>(side, v + side / 10.0));
        benchmark::DoNotOptimize(polygon.Clip(line));
        next = (next + 1) % points.size();
    });
}
TRAMMEL_BENCHMARK_SETS(ClipByOutline);

} // namespace
