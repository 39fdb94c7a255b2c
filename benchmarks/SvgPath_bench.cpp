// SPDX-License-Identifier: MIT

// How fast is SVG path text read and written? Bytes are those of the text; one iteration is the
// text of the next outline.
//
// Run by hand: trammel_bench --benchmark_filter=Svg

#include "Measure.h"

#include <trammel/SvgPath.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

void SvgRead(benchmark::State& state, inputs::Set set) {
    std::vector<std::string> texts;
    for (CPath const& outline : inputs::Outlines(set)) {
        texts.push_back(trammel::WriteSvgPath(outline));
    }
    std::int64_t bytes = 0;
    MeasureEach(state, texts, [&](std::string const& text) {
        trammel::SvgPathResult const result = trammel::ReadSvgPath(text);
        benchmark::DoNotOptimize(result.path.mPts.data());
        bytes += static_cast<std::int64_t>(text.size());
    });
    state.SetBytesProcessed(bytes);
}
TRAMMEL_BENCHMARK_SETS(SvgRead);

void SvgWrite(benchmark::State& state, inputs::Set set) {
    std::int64_t bytes = 0;
    MeasureEach(state, inputs::Outlines(set), [&](CPath const& outline) {
        std::string const text = trammel::WriteSvgPath(outline);
        benchmark::DoNotOptimize(text.data());
        bytes += static_cast<std::int64_t>(text.size());
    });
    state.SetBytesProcessed(bytes);
}
TRAMMEL_BENCHMARK_SETS(SvgWrite);

} // namespace
