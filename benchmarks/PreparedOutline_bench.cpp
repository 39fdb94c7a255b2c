// SPDX-License-Identifier: MIT

// What does containment in an outline of curves cost, prepared and not, and beside a prepared
// polygon of the same vertices? Names are compare/WORK/SHAPE_CURVES/WHO:
//
//     outline_contains   one point
//     outline_prepare    preparing, and a first point
//
//     trammel                    Contains with a FillRule, which prepares nothing (Winding.h)
//     trammel-prepared           PreparedOutline
//     trammel-prepared polygon   PreparedPolygon of the vertices alone
//
// The curves are smooth at the vertices. Shapes: an outline with ripples, a ragged star, combs
// upright and leaning, a spiral, a tangle of curves as large as the outline. The program checks
// first that the prepared outline counts as many points inside as the unprepared one.
//
// Run by hand: trammel_bench --benchmark_filter=compare/outline_

#include "Compare.h"
#include "OutlineInputs.h"
#include "peers/Works.h"

#include <trammel/PreparedOutline.h>
#include <trammel/PreparedPolygon.h>
#include <trammel/Winding.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

using trammel::FillRule;

typedef TPoint<double> Pt;
typedef std::vector<Pt> Points;

/// A job of asking for points, with the number of those inside that WindingNumber counts.
template <class Ask>
compare::Job AskingJob(CPath const& path, Points const& points, bool isOutline, Ask const& ask) {
    compare::Job job =
        peers::JobOf(points.size(), [=](std::size_t i) { return ask(points[i]) ? 1.0 : 0.0; });
    if (isOutline) {
        job.expected = 0.0;
        for (Pt const& p : points) {
            job.expected += trammel::Contains(path, p, FillRule::kEvenOdd) ? 1.0 : 0.0;
        }
    }
    return job;
}

void RegisterShape(inputs::Shape const& shape, std::size_t count) {
    std::string const input = std::string(shape.name) + "_" + std::to_string(count);
    auto const add = [&](std::string const& work, std::string const& who, std::size_t asked,
                         auto prepare) {
        compare::RegisterAlone(work, input, who, [=] {
            Points const vertices = shape.vertices(count);
            auto const path = std::make_shared<CPath const>(inputs::CurvesThrough(vertices));
            return AskingJob(*path, inputs::Points(asked, 1000.0),
                             who != "trammel-prepared polygon", prepare(path, vertices));
        });
    };
    typedef std::shared_ptr<CPath const> Path;
    add("outline_contains", "trammel", 99, [](Path const& path, Points const&) {
        return [=](Pt const& p) { return trammel::Contains(*path, p, FillRule::kEvenOdd); };
    });
    add("outline_contains", "trammel-prepared", 997, [](Path const& path, Points const&) {
        trammel::PreparedOutline const prepared(*path);
        return [=](Pt const& p) { return prepared.Contains(p, FillRule::kEvenOdd); };
    });
    add("outline_contains", "trammel-prepared polygon", 997,
        [](Path const&, Points const& vertices) {
            trammel::PreparedPolygon const prepared{TPolygon<double>(vertices)};
            return [=](Pt const& p) { return prepared.Contains(p); };
        });
    add("outline_prepare", "trammel-prepared", 9, [](Path const& path, Points const&) {
        return [=](Pt const& p) {
            return trammel::PreparedOutline(*path).Contains(p, FillRule::kEvenOdd);
        };
    });
    add("outline_prepare", "trammel-prepared polygon", 9, [](Path const&, Points const& vertices) {
        auto const polygon = std::make_shared<TPolygon<double> const>(vertices);
        return [=](Pt const& p) { return trammel::PreparedPolygon(*polygon).Contains(p); };
    });
}

bool RegisterAll() {
    for (inputs::Shape const& shape : inputs::Shapes()) {
        for (std::size_t const count : {10U, 1000U, 100000U}) {
            RegisterShape(shape, count);
        }
    }
    return true;
}

[[maybe_unused]] bool const kRegistered = RegisterAll();

} // namespace
