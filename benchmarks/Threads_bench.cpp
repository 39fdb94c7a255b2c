// SPDX-License-Identifier: MIT

// How much more work do two threads do than one? Each thread goes through all inputs, and
// `items_per_second` counts those of all threads. Two threads on two cores that do nothing else do
// twice the work where nothing is shared. How far the machine lets them, ThreadsArithmetic tells:
// its threads share nothing, and neither allocate nor read memory.
//
// Run by hand: trammel_bench --benchmark_filter=Threads --benchmark_enable_random_interleaving
// --benchmark_repetitions=9

#include "Inputs.h"

#include <trammel/CPath.h>
#include <trammel/PathMeasure.h>
#include <trammel/TPoly.h>
#include <trammel/Tgcp.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

typedef TPoint<double> Pt;
typedef TPolygon<double> Polygon;

/// A star of `count` vertices about (h, 50).
Polygon Star(int count, double h) {
    Polygon star;
    for (int i = 0; i < count; ++i) {
        double const angle = 6.283185307179586 * i / count;
        double const radius = i % 2 == 0 ? 27.0 : 45.0;
        star.Append(Pt(h + radius * std::cos(angle), 50 + radius * std::sin(angle)), true);
    }
    return star.Close();
}

/// Calls ask(item) for all items in turn, again and again. `items` may be empty, see MeasureEach.
template <class Items, class Ask>
void AskAll(benchmark::State& state, Items const& items, Ask const& ask) {
    if (items.empty()) {
        state.SkipWithError("no such font here, or built without FreeType");
        return;
    }
    for (auto _ : state) {
        for (auto const& item : items) {
            benchmark::DoNotOptimize(ask(item));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items.size()));
}

void ThreadsArithmetic(benchmark::State& state) {
    std::array<double, 64> const items{};
    AskAll(state, items, [](double item) {
        for (int i = 0; i < 16; ++i) {
            item = std::sqrt(item * item + 2.0);
        }
        return item;
    });
}
BENCHMARK(ThreadsArithmetic)->ThreadRange(1, 2)->UseRealTime();

void ThreadsLength(benchmark::State& state, inputs::Set set) {
    AskAll(state, inputs::Curves(set), [](CBezier const& curve) { return curve.Length(); });
}
BENCHMARK_CAPTURE(ThreadsLength, random, inputs::Set::kRandom)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK_CAPTURE(ThreadsLength, truetype, inputs::Set::kTrueType)
    ->ThreadRange(1, 2)
    ->UseRealTime();

void ThreadsFlatten(benchmark::State& state, inputs::Set set) {
    AskAll(state, inputs::Curves(set), [](CBezier const& curve) {
        Polygon polygon;
        curve.Flatten(polygon, 0.1);
        return polygon.LastIndex();
    });
}
BENCHMARK_CAPTURE(ThreadsFlatten, random, inputs::Set::kRandom)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK_CAPTURE(ThreadsFlatten, truetype, inputs::Set::kTrueType)
    ->ThreadRange(1, 2)
    ->UseRealTime();

/// Curves of few points, each of which asks whose turn it is to count.
void ThreadsHitTest(benchmark::State& state) {
    AskAll(state, inputs::Curves(inputs::Set::kTrueType),
           [](CBezier const& curve) { return curve.HitTest(curve.P3, 1.0); });
}
BENCHMARK(ThreadsHitTest)->ThreadRange(1, 2)->UseRealTime();

void ThreadsPathLength(benchmark::State& state) {
    AskAll(state, inputs::Outlines(inputs::Set::kTrueType),
           [](CPath const& path) { return path.Length(); });
}
BENCHMARK(ThreadsPathLength)->ThreadRange(1, 2)->UseRealTime();

void ThreadsPathTPt(benchmark::State& state) {
    AskAll(state, inputs::Outlines(inputs::Set::kTrueType),
           [](CPath const& path) { return path.TPt(0.3); });
}
BENCHMARK(ThreadsPathTPt)->ThreadRange(1, 2)->UseRealTime();

/// All threads ask one polygon.
void ThreadsContains(benchmark::State& state) {
    static Polygon const star = Star(10, 50);
    AskAll(state, inputs::Curves(inputs::Set::kRandom),
           [](CBezier const& curve) { return star.Contains(curve.P0); });
}
BENCHMARK(ThreadsContains)->ThreadRange(1, 2)->UseRealTime();

void ThreadsBoolean(benchmark::State& state) {
    static Tgpc_polygon const a{CFPolygonRef(Star(40, 50))};
    static Tgpc_polygon const b{CFPolygonRef(Star(40, 70))};
    std::vector<TPolyOp> const ops = {kPolyDifference, kPolyIntersection, kPolyXor, kPolyUnion};
    AskAll(state, ops, [](TPolyOp op) {
        Tgpc_polygon result;
        Tgpc_polygon_clip(op, a, b, result);
        return result.NumContours();
    });
}
BENCHMARK(ThreadsBoolean)->ThreadRange(1, 2)->UseRealTime();

} // namespace
