// SPDX-License-Identifier: MIT
//
// What has the work on speed brought? The same questions as in Curve_bench.cpp, Path_bench.cpp and
// Flatten_bench.cpp, put to the algorithms in their plain form (tests/plain), which the tests hold
// the library to, bit for bit. Divide the times by those of the benchmarks of the same name.
//
// Run by hand: trammel_bench --benchmark_filter='(Plain)?(Flatten|CurveLength|CurveNearest|Path)'

#include "Measure.h"

#include <trammel/CPathActions.h>

#include "plain/PlainBezier.h"
#include "plain/PlainPath.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

std::vector<plain::Bezier> PlainCurves(inputs::Set set) {
    std::vector<plain::Bezier> curves;
    for (CBezier const& c : inputs::Curves(set)) {
        curves.push_back(plain::Bezier{c.P0, c.P1, c.P2, c.P3});
    }
    return curves;
}

/// Builds a plain path of what it visits.
class PlainBuilder : public CPathActions {
public:
    plain::Path mPath;

    void MoveTo(TPoint<double> const& p) override { mPath.MoveTo(p); }
    void LineTo(TPoint<double> const& p) override { mPath.LineTo(p); }
    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        mPath.CurveTo(c1, c2, e);
    }
    void ClosePath() override { mPath.ClosePath(); }
};

std::vector<plain::Path> PlainOutlines(inputs::Set set) {
    std::vector<plain::Path> outlines;
    for (CPath const& outline : inputs::Outlines(set)) {
        PlainBuilder builder;
        outline.ForAll(builder);
        outlines.push_back(builder.mPath);
    }
    return outlines;
}

void PlainFlatten(benchmark::State& state, inputs::Set set, double error) {
    std::int64_t points = 0;
    MeasureEach(state, PlainCurves(set), [&](plain::Bezier const& curve) {
        plain::Points chain;
        curve.Flatten(chain, error);
        points += static_cast<std::int64_t>(chain.size());
    });
    state.counters["points"] =
        benchmark::Counter(static_cast<double>(points), benchmark::Counter::kIsRate);
}
BENCHMARK_CAPTURE(PlainFlatten, random_fine, inputs::Set::kRandom, 0.001);
BENCHMARK_CAPTURE(PlainFlatten, random_coarse, inputs::Set::kRandom, 0.1);
BENCHMARK_CAPTURE(PlainFlatten, truetype_fine, inputs::Set::kTrueType, 0.001);
BENCHMARK_CAPTURE(PlainFlatten, truetype_coarse, inputs::Set::kTrueType, 0.1);
BENCHMARK_CAPTURE(PlainFlatten, cff_fine, inputs::Set::kCff, 0.001);
BENCHMARK_CAPTURE(PlainFlatten, cff_coarse, inputs::Set::kCff, 0.1);

void PlainCurveLength(benchmark::State& state, inputs::Set set) {
    MeasureEach(state, PlainCurves(set),
                [](plain::Bezier const& curve) { benchmark::DoNotOptimize(curve.Length()); });
}
TRAMMEL_BENCHMARK_SETS(PlainCurveLength);

void PlainCurveNearest(benchmark::State& state, inputs::Set set) {
    auto const points = inputs::Points(997, inputs::Side(set));
    std::size_t next = 0;
    MeasureEach(state, PlainCurves(set), [&](plain::Bezier const& curve) {
        benchmark::DoNotOptimize(curve.FindTValue(points[next], 0.001, 0.0, 1.0));
        next = (next + 1) % points.size();
    });
}
TRAMMEL_BENCHMARK_SETS(PlainCurveNearest);

void PlainPathLength(benchmark::State& state, inputs::Set set) {
    MeasureEach(state, PlainOutlines(set),
                [](plain::Path const& path) { benchmark::DoNotOptimize(path.Length()); });
}
TRAMMEL_BENCHMARK_SETS(PlainPathLength);

void PlainPathPointAtFraction(benchmark::State& state, inputs::Set set) {
    MeasureEach(state, PlainOutlines(set),
                [](plain::Path const& path) { benchmark::DoNotOptimize(path.TPt(0.3)); });
}
TRAMMEL_BENCHMARK_SETS(PlainPathPointAtFraction);

void PlainPathNearest(benchmark::State& state, inputs::Set set) {
    auto const points = inputs::Points(997, inputs::Side(set));
    std::size_t next = 0;
    MeasureEach(state, PlainOutlines(set), [&](plain::Path const& path) {
        benchmark::DoNotOptimize(path.FindTValue(points[next]));
        next = (next + 1) % points.size();
    });
}
TRAMMEL_BENCHMARK_SETS(PlainPathNearest);

void PlainPathCut(benchmark::State& state, inputs::Set set) {
    MeasureEach(state, PlainOutlines(set), [&](plain::Path const& path) {
        plain::Path piece;
        path.GetTRange(0.25, 0.75, piece);
        benchmark::DoNotOptimize(piece.pts.data());
    });
}
TRAMMEL_BENCHMARK_SETS(PlainPathCut);

} // namespace
