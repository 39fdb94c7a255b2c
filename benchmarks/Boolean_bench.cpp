// SPDX-License-Identifier: MIT

// What do union, intersection, difference and exclusive-or of polygons cost, and what do they cost
// in other libraries? One iteration is one operation on a pair of polygons; names are
// Boolean/KIND/VERTICES/OPERATION/LIBRARY. Each library starts from operands in its own form and
// ends with a result in its own form. A label marks results whose area differs from Trammel's.
// docs/benchmarks.md quotes the times.
//
// Run by hand: trammel_bench --benchmark_filter=Boolean

#include "Operands.h"
#include "peers/Peer.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace {

using operands::Kind;

Tgpc_polygon Polygon(operands::Operand const& operand) {
    Tgpc_polygon polygon;
    for (operands::Ring const& ring : operand.rings) {
        polygon.mContours.emplace_back();
        polygon.mContours.back().mVertices = ring;
    }
    return polygon;
}

double Area(Tgpc_polygon const& polygon) {
    double area = 0.0;
    for (Tgcp_contour const& contour : polygon.mContours) {
        operands::Ring const& ring = contour.mVertices;
        double twice = 0.0;
        for (std::size_t i = 0; i < ring.size(); ++i) {
            TPoint<double> const a = ring[i] - ring[0];
            TPoint<double> const b = ring[(i + 1) % ring.size()] - ring[0];
            twice += a.h * b.v - a.v * b.h;
        }
        area += contour.mHole ? -std::abs(twice / 2.0) : std::abs(twice / 2.0);
    }
    return area;
}

class TrammelJob : public peers::Job {
public:
    explicit TrammelJob(operands::Pair const& pair)
        : mFirst(Polygon(pair.first)), mSecond(Polygon(pair.second)) {}
    void Run(TPolyOp op) override { Tgpc_polygon_clip(op, mFirst, mSecond, mResult); }
    double Area() const override { return ::Area(mResult); }

private:
    Tgpc_polygon mFirst;
    Tgpc_polygon mSecond;
    Tgpc_polygon mResult;
};

peers::Peer Trammel() {
    return {"trammel", true, true, false,
            [](operands::Pair const& pair) -> std::unique_ptr<peers::Job> {
                return std::make_unique<TrammelJob>(pair);
            }};
}

using Question = std::tuple<Kind, std::size_t, TPolyOp>;

/// The area of the result, by Trammel.
double& TrammelArea(Question const& question) {
    static std::map<Question, double> known;
    auto found = known.find(question);
    if (found == known.end()) {
        auto const [kind, size, op] = question;
        TrammelJob job(operands::Get(kind, size));
        job.Run(op);
        found = known.emplace(question, job.Area()).first;
    }
    return found->second;
}

/// The time that a library took for one operation of a kind at the last size measured, in seconds.
/// Sizes rise, so the next size takes some ten to a hundred times as long.
double& LastTime(peers::Peer const& peer, Kind kind, TPolyOp op) {
    static std::map<std::tuple<std::string, Kind, TPolyOp>, double> times;
    return times[std::make_tuple(std::string(peer.name), kind, op)];
}

double const kPatience = 0.2;

void Boolean(benchmark::State& state, Kind kind, std::size_t size, TPolyOp op,
             peers::Peer const& peer) {
    operands::Pair const& pair = operands::Get(kind, size);
    if (!pair.whyMissing.empty()) {
        state.SkipWithError(pair.whyMissing.c_str());
        return;
    }
    if (pair.crossing && !peer.takesCrossing) {
        state.SkipWithError("asks for valid polygons, and has nothing that makes them so");
        return;
    }
    bool const isDeep = (kind == Kind::kCombs && size > 300) || (kind == Kind::kGrid && size > 200);
    if (peer.recursesByFaces && isDeep) {
        state.SkipWithError("recurses too deep for the stack");
        return;
    }
    double& lastTime = LastTime(peer, kind, op);
    if (lastTime > kPatience && !peer.isPatient) {
        state.SkipWithError("took too long at the size before");
        return;
    }
    try {
        std::unique_ptr<peers::Job> const job = peer.prepare(pair);
        auto const begin = std::chrono::steady_clock::now();
        for (auto _ : state) {
            job->Run(op);
            benchmark::ClobberMemory();
        }
        std::chrono::duration<double> const time = std::chrono::steady_clock::now() - begin;
        lastTime = time.count() / static_cast<double>(state.iterations());
        double const off = job->Area() / TrammelArea(Question(kind, size, op)) - 1.0;
        if (!(std::abs(off) <= 1e-6)) {
            char label[64];
            std::snprintf(label, sizeof label, "area differs by %.1e of it", off);
            state.SetLabel(label);
        }
    } catch (std::exception const& error) {
        state.SkipWithError(error.what());
    }
    state.counters["vertices"] = static_cast<double>(pair.first.Size() + pair.second.Size());
}

struct Group {
    char const* name;
    Kind kind;
    std::vector<std::size_t> sizes; ///< vertices of each operand, about
};

/// Registers all of them; the value is only there so that this happens before main().
bool Register() {
    std::vector<peers::Peer> all = {Trammel()};
#ifdef TRAMMEL_BENCH_POLYCLIPPING
    all.push_back(peers::Polyclipping());
#endif
#ifdef TRAMMEL_BENCH_GEOS
    all.push_back(peers::Geos());
#endif
#ifdef TRAMMEL_BENCH_BOOST
    all.push_back(peers::BoostGeometry());
#endif
#ifdef TRAMMEL_BENCH_CGAL
    all.push_back(peers::Cgal());
#endif
    // Random vertices, combs, grids and stars have crossings by the square, so there are no large
    // ones.
    Group const groups[] = {
        {"glyphs", Kind::kGlyphs, {10, 100, 1000, 10000, 100000}},
        {"map", Kind::kMap, {10, 100, 1000, 10000, 100000}},
        {"walk", Kind::kWalk, {10, 100, 1000, 10000, 100000}},
        {"random", Kind::kRandom, {10, 100, 300}},
        {"combs", Kind::kCombs, {10, 100, 300, 1000}},
        {"saws", Kind::kSaws, {10, 100, 1000, 10000}},
        {"hatch", Kind::kHatch, {100, 1000, 3000}},
        {"grid", Kind::kGrid, {40, 200, 400}},
        {"star", Kind::kStar, {101, 401}},
        {"strips", Kind::kStrips, {400, 4000}},
        {"nested", Kind::kNested, {400, 4000}},
    };
    struct Operation {
        char const* name;
        TPolyOp op;
    };
    Operation const operations[] = {{"union", kPolyUnion},
                                    {"intersection", kPolyIntersection},
                                    {"difference", kPolyDifference},
                                    {"xor", kPolyXor}};
    for (Group const& group : groups) {
        for (std::size_t const size : group.sizes) {
            for (Operation const& operation : operations) {
                for (peers::Peer const& peer : all) {
                    std::string const name = std::string("Boolean/") + group.name + "/" +
                                             std::to_string(size) + "/" + operation.name + "/" +
                                             peer.name;
                    benchmark::RegisterBenchmark(name.c_str(), [kind = group.kind, size,
                                                                op = operation.op,
                                                                peer](benchmark::State& state) {
                        Boolean(state, kind, size, op, peer);
                    })->Unit(benchmark::kMicrosecond);
                }
            }
        }
    }
    return true;
}

[[maybe_unused]] bool const registered = Register();

} // namespace
