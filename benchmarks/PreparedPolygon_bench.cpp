// SPDX-License-Identifier: MIT

// When does preparing a polygon for containment pay, and how does it compare with another library's
// prepared polygon? Names are Prepared/SHAPE/VERTICES/WHAT/WHO:
//   ask        one point, all prepared                 one iteration is one point
//   build      preparing, and the first point          one iteration is one polygon
//   some       preparing, and 36 points                one iteration is all of that
// The polygon's own Contains (`polygon`) prepares nothing. `bytes` is the memory per vertex.
//
// Shapes: a smooth outline with ripples, a ragged star, combs upright, leaning and with teeth of
// random lengths, a spiral. For the leaning comb no interval of h tells teeth apart.
//
// Run by hand: trammel_bench --benchmark_filter=Prepared/

#include "Compare.h"
#include "OutlineInputs.h"
#include "peers/Locator.h"

#include <trammel/PreparedPolygon.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

typedef std::vector<TPoint<double>> Points;

constexpr std::size_t kSome = 36;

Points Smooth(std::size_t count) { return inputs::Ripples(count, 5.0); }
Points UprightComb(std::size_t count) { return inputs::Comb(count, 0.0, false); }
Points LeaningComb(std::size_t count) { return inputs::Comb(count, 500.0, false); }
Points RaggedComb(std::size_t count) { return inputs::Comb(count, 0.0, true); }

constexpr inputs::Shape kShapes[] = {
    {"smooth", Smooth},          {"star", inputs::Star},
    {"comb", UprightComb},       {"leaning_comb", LeaningComb},
    {"ragged_comb", RaggedComb}, {"spiral", inputs::Spiral},
};

/// A polygon and points to ask for, in our own form.
struct Question {
    Points vertices;
    TPolygon<double> polygon;
    Points points = inputs::Points(997, 1000.0);

    Question(inputs::Shape const& shape, std::size_t count)
        : vertices(shape.vertices(count)), polygon(compare::Polygon(vertices)) {
        polygon.CalcBounds();
        points[0].Set(500.0, 500.0); // GEOS builds its index for a point within the bounds only
    }
};

/// Calls contains(i) for a point at each iteration.
template <class Contains> void AskOneByOne(benchmark::State& state, Contains contains) {
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(contains(next));
        next = next == 996 ? 0 : next + 1;
    }
}

void AskPolygon(benchmark::State& state, inputs::Shape const& shape, std::size_t count) {
    Question const question(shape, count);
    AskOneByOne(state,
                [&](std::size_t i) { return question.polygon.Contains(question.points[i]); });
}

void AskTrammel(benchmark::State& state, inputs::Shape const& shape, std::size_t count) {
    Question const question(shape, count);
    trammel::PreparedPolygon const prepared(question.polygon);
    AskOneByOne(state, [&](std::size_t i) { return prepared.Contains(question.points[i]); });
    state.counters["bytes"] =
        static_cast<double>(prepared.MemorySize()) / static_cast<double>(count);
}

void BuildTrammel(benchmark::State& state, inputs::Shape const& shape, std::size_t count,
                  std::size_t asked) {
    Question const question(shape, count);
    for (auto _ : state) {
        trammel::PreparedPolygon const prepared(question.polygon);
        for (std::size_t i = 0; i < asked; ++i) {
            benchmark::DoNotOptimize(prepared.Contains(question.points[i]));
        }
    }
}

void SomePolygon(benchmark::State& state, inputs::Shape const& shape, std::size_t count) {
    Question const question(shape, count);
    for (auto _ : state) {
        for (std::size_t i = 0; i < kSome; ++i) {
            benchmark::DoNotOptimize(question.polygon.Contains(question.points[i]));
        }
    }
}

#ifdef TRAMMEL_BENCH_GEOS

void AskGeos(benchmark::State& state, inputs::Shape const& shape, std::size_t count) {
    Question const question(shape, count);
    std::unique_ptr<peers::Locator> const geos =
        peers::GeosLocator(question.vertices, question.points);
    geos->Prepare();
    geos->Contains(0);
    AskOneByOne(state, [&](std::size_t i) { return geos->Contains(i); });
}

void BuildGeos(benchmark::State& state, inputs::Shape const& shape, std::size_t count,
               std::size_t asked) {
    Question const question(shape, count);
    std::unique_ptr<peers::Locator> const geos =
        peers::GeosLocator(question.vertices, question.points);
    for (auto _ : state) {
        geos->Prepare();
        for (std::size_t i = 0; i < asked; ++i) {
            benchmark::DoNotOptimize(geos->Contains(i));
        }
    }
}

#endif

bool Register() {
    for (inputs::Shape const& shape : kShapes) {
        for (std::size_t const count : {10U, 1000U, 100000U}) {
            std::string const name =
                std::string("Prepared/") + shape.name + "/" + std::to_string(count);
            auto const add = [&](char const* what, auto function, auto... more) {
                benchmark::RegisterBenchmark((name + what).c_str(), function, shape, count,
                                             more...);
            };
            add("/ask/polygon", AskPolygon);
            add("/ask/trammel", AskTrammel);
            add("/build/trammel", BuildTrammel, std::size_t{1});
            add("/some/polygon", SomePolygon);
            add("/some/trammel", BuildTrammel, kSome);
#ifdef TRAMMEL_BENCH_GEOS
            add("/ask/geos", AskGeos);
            add("/build/geos", BuildGeos, std::size_t{1});
            add("/some/geos", BuildGeos, kSome);
#endif
        }
    }
    return true;
}

[[maybe_unused]] bool const kRegistered = Register();

} // namespace
