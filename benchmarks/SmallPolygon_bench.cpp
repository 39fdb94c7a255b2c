// SPDX-License-Identifier: MIT

// What does a polygon of a few vertices cost, from making it to releasing it? An item is a polygon.
// Beside it stand two allocations and their release, for a handle and a block of the same size.
//
// Run by hand: trammel_bench --benchmark_filter=compare/small_polygon

#include "Compare.h"
#include "Plain.h"

#include <trammel/TPoly.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

constexpr std::size_t kPolygons = 1000;
constexpr std::size_t kHandleBytes = 24;
constexpr std::size_t kHeaderBytes = 40;

/// Returns the sum over as many polygons, which hinders the compiler from leaving them out.
template <class Make> double SumOver(Make const& make) {
    double sum = 0.0;
    for (std::size_t i = 0; i < kPolygons; ++i) {
        sum += make();
    }
    return sum;
}

double MakePolygon(long vertices) {
    TPolygon<double> polygon;
    for (long i = 0; i < vertices; ++i) {
        polygon.Append(TPoint<double>(static_cast<double>(i), 1.0), true);
    }
    benchmark::DoNotOptimize(polygon.mHandle);
    return static_cast<double>(polygon.LastIndex());
}

double MakePlainPolygon(long vertices) {
    plain::Polygon polygon;
    for (long i = 0; i < vertices; ++i) {
        polygon.Append(plain::Pt(static_cast<double>(i), 1.0), true);
    }
    benchmark::DoNotOptimize(&polygon);
    return static_cast<double>(polygon.LastIndex());
}

double Allocate(long vertices) {
    void* handle = std::malloc(kHandleBytes);
    benchmark::DoNotOptimize(handle);
    void* block =
        std::malloc(kHeaderBytes + static_cast<std::size_t>(vertices) * sizeof(TPoint<double>));
    benchmark::DoNotOptimize(block);
    std::free(block);
    std::free(handle);
    return static_cast<double>(vertices - 1);
}

bool RegisterAll() {
    for (long const vertices : {1L, 3L, 10L}) {
        std::string const input = std::to_string(vertices);
        compare::Register("small_polygon", input, [vertices] {
            auto const job = std::make_shared<compare::Job>();
            job->items = kPolygons;
            job->plain = [=] { return SumOver([=] { return MakePlainPolygon(vertices); }); };
            job->trammel = [=] { return SumOver([=] { return MakePolygon(vertices); }); };
            return job;
        });
        compare::RegisterAlone("small_polygon", input, "allocations", [vertices] {
            compare::Job job;
            job.items = kPolygons;
            job.trammel = [=] { return SumOver([=] { return Allocate(vertices); }); };
            return job;
        });
    }
    return true;
}

[[maybe_unused]] bool const kRegistered = RegisterAll();

} // namespace
