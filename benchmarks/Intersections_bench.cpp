// SPDX-License-Identifier: MIT

// What do intersections cost? An item is a pair of curves, or an element of a pair of outlines.
//
//     line_intersections      a line through the middle of each curve's chord, and the curve
//     curve_intersections     curves that follow each other in the set, and copies moved by 2e-5
//     outline_intersections   two ragged rings of as many elements, which cross often
//
// Run by hand: trammel_bench --benchmark_filter='^compare/.*_intersections/'

#include "Compare.h"
#include "Inputs.h"
#include "peers/Works.h"

#include <trammel/Intersections.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr double kAccuracy = 1e-6;

void RegisterPairs(std::string const& input, std::vector<CBezier> const& (*curves)(),
                   TPoint<double> const& by) {
    compare::RegisterAlone("curve_intersections", input, "trammel", [=] {
        compare::Job job;
        std::vector<CBezier> const& all = curves();
        std::size_t const next = by.Null() ? 1 : 0;
        job.items = all.empty() ? 0 : all.size() - next;
        job.trammel = [&all, by, next] {
            std::vector<trammel::Intersection> places;
            for (std::size_t i = 0; i + next < all.size(); ++i) {
                trammel::AppendIntersections(all[i], all[i + next] + by, kAccuracy, places);
            }
            return static_cast<double>(places.size());
        };
        return job;
    });
}

bool RegisterAll() {
    auto const drawing = []() -> std::vector<CBezier> const& {
        return inputs::Curves(inputs::Set::kDrawing);
    };
    auto const glyphs = []() -> std::vector<CBezier> const& {
        return inputs::Curves(inputs::Set::kCff);
    };
    RegisterPairs("drawing", drawing, TPoint<double>());
    RegisterPairs("glyphs_cff", glyphs, TPoint<double>());
    RegisterPairs("moved", drawing, TPoint<double>(1e-5, 2e-5));
    peers::CurveWorks<CBezier> lines;
    lines.convert = [](CBezier const& curve) { return curve; };
    lines.intersectLine = [places = std::vector<trammel::Intersection>()](
                              TLine<double> const& line, CBezier const& curve) mutable {
        places.clear();
        trammel::AppendIntersections(line, curve, kAccuracy, places);
        return static_cast<double>(places.size());
    };
    peers::RegisterCurves("trammel", lines);
    for (std::size_t const count : {100U, 1000U, 10000U, 100000U}) {
        compare::RegisterAlone("outline_intersections", std::to_string(count), "trammel", [count] {
            auto const a = inputs::Ragged(inputs::Segments::kMixed, count, 1);
            auto const b = inputs::Ragged(inputs::Segments::kMixed, count, 2);
            compare::Job job;
            job.items = count;
            job.trammel = [a, b] {
                return static_cast<double>(trammel::Intersections(a, b, kAccuracy).size());
            };
            job.counters["places"] = job.trammel();
            return job;
        });
    }
    return true;
}

[[maybe_unused]] bool const kRegistered = RegisterAll();

} // namespace
