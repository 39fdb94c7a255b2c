// SPDX-License-Identifier: MIT

// The loop that the benchmarks on curves and outlines share.

#ifndef TRAMMEL_MEASURE_H
#define TRAMMEL_MEASURE_H

#include "Inputs.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>

/// Measures work(item) over all items in turn; one iteration is one call. `items` may be empty, for
/// example if a font is not installed. The benchmark is then reported as skipped.
template <class Items, class Work>
void MeasureEach(benchmark::State& state, Items const& items, Work work) {
    if (items.empty()) {
        state.SkipWithError("no such font here, or built without FreeType");
        return;
    }
    std::size_t next = 0;
    for (auto _ : state) {
        work(items[next]);
        if (++next == items.size()) {
            next = 0;
        }
    }
    state.SetItemsProcessed(state.iterations());
}

/// Registers a benchmark function of (state, inputs::Set) once for each set of outlines.
#define TRAMMEL_BENCHMARK_SETS(function)                                                           \
    BENCHMARK_CAPTURE(function, random, inputs::Set::kRandom);                                     \
    BENCHMARK_CAPTURE(function, truetype, inputs::Set::kTrueType);                                 \
    BENCHMARK_CAPTURE(function, cff, inputs::Set::kCff)

#endif
