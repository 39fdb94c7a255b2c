// SPDX-License-Identifier: MIT

// What does measuring an outline once bring? A PathMeasure answers the questions of Path_bench.cpp
// (Measure...), an OutlineMeasure answers them to rounding (Outline...), and so does the path
// itself for comparison (Path...). Outlines have 10 to 100,000 segments: lines, curves, or lines
// and curves in turn. One iteration is one question. MeasureMake and OutlineMake measure the
// making. The searches in spikes have rings of up to a million lines whose vertices lie at random
// distances from the centre.
//
// Run by hand: trammel_bench
// --benchmark_filter='(Measure|Outline|Path).*/(lines|curves|mixed|spikes)'

#include "Inputs.h"

#include <trammel/OutlineMeasure.h>
#include <trammel/PathMeasure.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using trammel::OutlineMeasure;
using trammel::PathMeasure;

typedef TPoint<double> Pt;

typedef inputs::Segments Kind;

/// Made once for all benchmarks of the same outline.
struct Subject {
    Subject(Kind kind, std::size_t count)
        : path(inputs::Ragged(kind, count, 7)), measure(path), outline(path) {}

    CPath path;
    PathMeasure measure;
    OutlineMeasure outline;
};

Subject const& SubjectOf(Kind kind, std::int64_t count) {
    static std::map<std::pair<Kind, std::int64_t>, Subject> subjects;
    auto const key = std::make_pair(kind, count);
    auto found = subjects.find(key);
    if (found == subjects.end()) {
        found = subjects.try_emplace(key, kind, static_cast<std::size_t>(count)).first;
    }
    return found->second;
}

/// 997 fractions spread evenly, out of order.
std::vector<double> Fractions() {
    std::vector<double> fractions;
    for (int i = 0; i < 997; ++i) {
        fractions.push_back(std::fmod(i * 0.6180339887498949, 1.0));
    }
    return fractions;
}

template <class Items, class Work>
void AskEach(benchmark::State& state, Items const& items, Work work) {
    std::size_t next = 0;
    for (auto _ : state) {
        work(items[next]);
        next = next + 1 < items.size() ? next + 1 : 0;
    }
    state.SetItemsProcessed(state.iterations());
}

void MeasureMake(benchmark::State& state, Kind kind) {
    CPath const& path = SubjectOf(kind, state.range(0)).path;
    for (auto _ : state) {
        PathMeasure const measure(path);
        benchmark::DoNotOptimize(measure.Length());
    }
}

void MeasurePoint(benchmark::State& state, Kind kind) {
    PathMeasure const& measure = SubjectOf(kind, state.range(0)).measure;
    AskEach(state, Fractions(), [&](double t) { benchmark::DoNotOptimize(measure.TPt(t)); });
}

void PathPoint(benchmark::State& state, Kind kind) {
    CPath const& path = SubjectOf(kind, state.range(0)).path;
    AskEach(state, Fractions(), [&](double t) { benchmark::DoNotOptimize(path.TPt(t)); });
}

void MeasurePlace(benchmark::State& state, Kind kind) {
    PathMeasure const& measure = SubjectOf(kind, state.range(0)).measure;
    AskEach(state, Fractions(), [&](double t) { benchmark::DoNotOptimize(measure.At(t)); });
}

/// One iteration is one of 997 points found in one call, in order.
void MeasurePointsInOrder(benchmark::State& state, Kind kind) {
    PathMeasure const& measure = SubjectOf(kind, state.range(0)).measure;
    std::vector<double> fractions = Fractions();
    std::sort(fractions.begin(), fractions.end());
    std::vector<Pt> points(fractions.size());
    while (state.KeepRunningBatch(static_cast<std::int64_t>(points.size()))) {
        measure.TPts(fractions.data(), fractions.size(), points.data());
        benchmark::DoNotOptimize(points.data());
    }
    state.SetItemsProcessed(state.iterations());
}

void MeasureNearest(benchmark::State& state, Kind kind) {
    PathMeasure const& measure = SubjectOf(kind, state.range(0)).measure;
    AskEach(state, inputs::Points(997, 1000.0),
            [&](Pt const& p) { benchmark::DoNotOptimize(measure.FindTValue(p)); });
}

void PathNearestOf(benchmark::State& state, Kind kind) {
    CPath const& path = SubjectOf(kind, state.range(0)).path;
    AskEach(state, inputs::Points(997, 1000.0),
            [&](Pt const& p) { benchmark::DoNotOptimize(path.FindTValue(p)); });
}

void MeasureDistance(benchmark::State& state, Kind kind) {
    PathMeasure const& measure = SubjectOf(kind, state.range(0)).measure;
    AskEach(state, inputs::Points(997, 1000.0),
            [&](Pt const& p) { benchmark::DoNotOptimize(measure.Distance(p)); });
}

/// A hundredth of the outline.
void MeasureCut(benchmark::State& state, Kind kind) {
    PathMeasure const& measure = SubjectOf(kind, state.range(0)).measure;
    CPath piece;
    AskEach(state, Fractions(), [&](double t) {
        piece.clear();
        measure.GetTRange(0.99 * t, 0.99 * t + 0.01, piece);
        benchmark::DoNotOptimize(piece.mPts.data());
    });
}

void PathCutOf(benchmark::State& state, Kind kind) {
    CPath const& path = SubjectOf(kind, state.range(0)).path;
    CPath piece;
    AskEach(state, Fractions(), [&](double t) {
        piece.clear();
        path.GetTRange(0.99 * t, 0.99 * t + 0.01, piece);
        benchmark::DoNotOptimize(piece.mPts.data());
    });
}

void OutlineMake(benchmark::State& state, Kind kind) {
    CPath const& path = SubjectOf(kind, state.range(0)).path;
    for (auto _ : state) {
        OutlineMeasure const outline(path);
        benchmark::DoNotOptimize(outline.Length());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void OutlinePoint(benchmark::State& state, Kind kind) {
    OutlineMeasure const& outline = SubjectOf(kind, state.range(0)).outline;
    AskEach(state, Fractions(), [&](double t) { benchmark::DoNotOptimize(outline.TPt(t)); });
}

void OutlinePlace(benchmark::State& state, Kind kind) {
    OutlineMeasure const& outline = SubjectOf(kind, state.range(0)).outline;
    AskEach(state, Fractions(), [&](double t) { benchmark::DoNotOptimize(outline.At(t)); });
}

void OutlineNearest(benchmark::State& state, Kind kind) {
    OutlineMeasure const& outline = SubjectOf(kind, state.range(0)).outline;
    AskEach(state, inputs::Points(997, 1000.0),
            [&](Pt const& p) { benchmark::DoNotOptimize(outline.FindNearest(p, 0.001)); });
}

void OutlineDistance(benchmark::State& state, Kind kind) {
    OutlineMeasure const& outline = SubjectOf(kind, state.range(0)).outline;
    AskEach(state, inputs::Points(997, 1000.0),
            [&](Pt const& p) { benchmark::DoNotOptimize(outline.Distance(p, 0.001)); });
}

void OutlineCut(benchmark::State& state, Kind kind) {
    OutlineMeasure const& outline = SubjectOf(kind, state.range(0)).outline;
    CPath piece;
    AskEach(state, Fractions(), [&](double t) {
        piece.clear();
        outline.GetTRange(0.99 * t, 0.99 * t + 0.01, piece);
        benchmark::DoNotOptimize(piece.mPts.data());
    });
}

/// The search in a ring of spikes by either kind of measure.
template <class Measured> void SpikesDistance(benchmark::State& state) {
    CPath path;
    for (Pt const& p : inputs::Star(static_cast<std::size_t>(state.range(0)))) {
        path.LineTo(p); // the first one is a move
    }
    Measured const measured(path.ClosePath());
    AskEach(state, inputs::Points(997, 1000.0),
            [&](Pt const& p) { benchmark::DoNotOptimize(measured.Distance(p)); });
}

BENCHMARK_TEMPLATE(SpikesDistance, PathMeasure)
    ->Name("MeasureDistance/spikes")
    ->RangeMultiplier(100)
    ->Range(100, 1000000);
BENCHMARK_TEMPLATE(SpikesDistance, OutlineMeasure)
    ->Name("OutlineDistance/spikes")
    ->RangeMultiplier(100)
    ->Range(100, 1000000);

#define TRAMMEL_BENCHMARK_KINDS(function, most)                                                    \
    BENCHMARK_CAPTURE(function, lines, Kind::kLines)->RangeMultiplier(10)->Range(10, most);        \
    BENCHMARK_CAPTURE(function, curves, Kind::kCurves)->RangeMultiplier(10)->Range(10, most);      \
    BENCHMARK_CAPTURE(function, mixed, Kind::kMixed)->RangeMultiplier(10)->Range(10, most)

TRAMMEL_BENCHMARK_KINDS(MeasureMake, 1000);
TRAMMEL_BENCHMARK_KINDS(MeasurePoint, 100000);
TRAMMEL_BENCHMARK_KINDS(PathPoint, 1000);
TRAMMEL_BENCHMARK_KINDS(MeasurePlace, 1000);
TRAMMEL_BENCHMARK_KINDS(MeasurePointsInOrder, 100000);
TRAMMEL_BENCHMARK_KINDS(MeasureNearest, 100000);
TRAMMEL_BENCHMARK_KINDS(PathNearestOf, 1000);
TRAMMEL_BENCHMARK_KINDS(MeasureDistance, 1000);
TRAMMEL_BENCHMARK_KINDS(MeasureCut, 1000);
TRAMMEL_BENCHMARK_KINDS(PathCutOf, 1000);
TRAMMEL_BENCHMARK_KINDS(OutlineMake, 100000);
TRAMMEL_BENCHMARK_KINDS(OutlinePoint, 100000);
TRAMMEL_BENCHMARK_KINDS(OutlinePlace, 1000);
TRAMMEL_BENCHMARK_KINDS(OutlineNearest, 100000);
TRAMMEL_BENCHMARK_KINDS(OutlineDistance, 1000);
TRAMMEL_BENCHMARK_KINDS(OutlineCut, 1000);

} // namespace
