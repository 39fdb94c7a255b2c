// SPDX-License-Identifier: MIT

#include "Compare.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <utility>

namespace compare {
namespace {

/// A job that is made once, and whether its two participants agree.
struct Shared {
    Maker make;
    std::shared_ptr<Job> job;
    bool agree = false;

    Job& Get() {
        if (job == nullptr) {
            job = make();
            if (job->items != 0) {
                double const a = job->plain();
                double const b = job->trammel();
                agree = a == b && std::signbit(a) == std::signbit(b);
            }
        }
        return *job;
    }
};

void Measure(benchmark::State& state, Job const& job, Pass const& pass) {
    if (job.items == 0) {
        state.SkipWithError("no such input here");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(pass());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(job.items));
}

std::string Name(std::string const& work, std::string const& input, std::string const& who) {
    return "compare/" + work + "/" + input + "/" + who;
}

} // namespace

TPolygon<double> Polygon(truth::Chain const& ring) {
    TPolygon<double> polygon;
    for (TPoint<double> const& p : ring) {
        polygon.Append(p, true);
    }
    polygon.Close();
    return polygon;
}

truth::Chain Vertices(TPolygon<double> const& polygon) {
    truth::Chain chain;
    for (long i = 0; i <= polygon.LastIndex(); ++i) {
        chain.push_back(polygon.GetPt(i));
    }
    return chain;
}

double ContainedIn(truth::Chain const& ring, truth::Chain const& points) {
    TPolygon<double> const polygon = Polygon(ring);
    double count = 0.0;
    for (TPoint<double> const& p : points) {
        count += polygon.Contains(p) ? 1.0 : 0.0;
    }
    return count;
}

double ClippedBy(truth::Chain const& ring, std::vector<TLine<double>> const& lines) {
    TPolygon<double> const polygon = Polygon(ring);
    double length = 0.0;
    for (TLine<double> const& line : lines) {
        for (TLine<double> const& piece : polygon.Clip(line)) {
            length += piece.Length();
        }
    }
    return length;
}

void Register(std::string const& work, std::string const& input, Maker make) {
    auto const shared = std::make_shared<Shared>();
    shared->make = std::move(make);
    benchmark::RegisterBenchmark(Name(work, input, "plain").c_str(),
                                 [shared](benchmark::State& state) {
                                     Job const& job = shared->Get();
                                     if (job.items != 0 && !shared->agree) {
                                         state.SkipWithError("the library's results differ");
                                         return;
                                     }
                                     Measure(state, job, job.plain);
                                 });
    benchmark::RegisterBenchmark(Name(work, input, "trammel").c_str(),
                                 [shared](benchmark::State& state) {
                                     Job const& job = shared->Get();
                                     if (job.items != 0 && !shared->agree) {
                                         state.SkipWithError("the plain form's results differ");
                                         return;
                                     }
                                     Measure(state, job, job.trammel);
                                     for (auto const& [name, value] : job.counters) {
                                         state.counters[name] = value;
                                     }
                                 });
}

void RegisterAlone(std::string const& work, std::string const& input, std::string const& who,
                   std::function<Job()> make) {
    auto const shared = std::make_shared<std::shared_ptr<Job>>();
    benchmark::RegisterBenchmark(
        Name(work, input, who).c_str(), [shared, make = std::move(make)](benchmark::State& state) {
            if (*shared == nullptr) {
                *shared = std::make_shared<Job>(make());
            }
            Job const& job = **shared;
            bool const isExpected =
                job.items == 0 || std::isnan(job.expected) ||
                std::abs(job.trammel() - job.expected) <= job.slack * std::abs(job.expected);
            if (!job.agrees || !isExpected) {
                state.SkipWithError("its results differ");
                return;
            }
            Measure(state, job, job.trammel);
            for (auto const& [name, value] : job.counters) {
                state.counters[name] = value;
            }
        });
}

} // namespace compare
