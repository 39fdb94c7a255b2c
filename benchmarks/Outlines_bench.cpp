// SPDX-License-Identifier: MIT

// What do operations on outlines cost: union, removal of overlaps, strokes, offsets, fits, simpler
// outlines and rings, and the arrangement of polygons? Other libraries are in peers/.
//
// Run by hand: trammel_bench
// --benchmark_filter='compare/(.*_union|remove_overlap|stroke_.*|offset|fit_.*|simplify_.*|arrangement)/'

#include "Crowds.h"
#include "peers/OutlineWorks.h"

#include <trammel/FitCurves.h>
#include <trammel/OutlineOperations.h>
#include <trammel/PolygonArrangement.h>
#include <trammel/Simplify.h>
#include <trammel/SimplifyRings.h>
#include <trammel/Stroke.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using trammel::FillRule;

double Count(CPath const& path) { return static_cast<double>(path.mCtls.size()); }

peers::OutlineWorks<CPath> Works() {
    peers::OutlineWorks<CPath> works;
    works.convert = [](CPath const& path) { return path; };
    works.unite = [](CPath const& a, CPath const& b) {
        CPath out;
        trammel::Boolean(kPolyUnion, a, FillRule::kNonZero, b, FillRule::kNonZero, 0.0, out);
        return Count(out);
    };
    works.uniteAll = [](std::vector<CPath> const& outlines) {
        CPath out;
        trammel::Union(outlines, FillRule::kNonZero, 0.0, out);
        return Count(out);
    };
    works.removeOverlap = [](CPath const& path) {
        CPath out;
        trammel::RemoveOverlap(path, FillRule::kNonZero, 0.0, out);
        return Count(out);
    };
    works.stroke = [](CPath const& path, trammel::StrokeStyle const& style, double tolerance) {
        CPath out;
        trammel::Stroke(path, style, tolerance, out);
        return Count(out);
    };
    works.offset = [](CPath const& path, double distance, double tolerance) {
        CPath out;
        trammel::Offset(path, FillRule::kNonZero, distance, trammel::StrokeJoin::kRound, 4.0,
                        tolerance, out);
        return Count(out);
    };
    return works;
}

/// Registers a work of the library alone, whose items are the `count` parts of one input.
template <class Input, class Call>
void RegisterOfSize(char const* work, std::string const& kind, std::size_t count,
                    Input (*make)(std::size_t), Call call) {
    compare::RegisterAlone(work, kind + std::to_string(count), "trammel", [=] {
        auto const input = std::make_shared<Input>(make(count));
        auto job = peers::JobOf(1, [=](std::size_t) { return call(*input); });
        job.items = count;
        return job;
    });
}

typedef std::vector<std::vector<TPolygon<double>>> Operands;

/// As many overlapping buildings of the crowd as asked for, each an operand.
Operands Buildings(std::size_t count) {
    Operands operands;
    for (operands::Ring const& ring : crowds::Get("buildings").rings) {
        if (operands.size() < count) {
            operands.push_back({compare::Polygon(ring)});
        }
    }
    return operands;
}

typedef std::vector<TPoint<double>> Points;

Points Coast(std::size_t count) { return inputs::Ripples(count, 5.0); }

double Simplified(Points const& ring) {
    std::vector<trammel::Ring> out;
    trammel::SimplifyRings({ring}, 1.0, trammel::NewCrossings::kAvoid, out);
    return static_cast<double>(out[0].size());
}

bool RegisterAll() {
    peers::RegisterOutlines("trammel", Works());
    for (std::size_t const count : {100U, 1000U, 10000U, 100000U, 1000000U}) {
        RegisterOfSize("fit_curves", "", count, inputs::Handwriting, [](Points const& points) {
            CPath out;
            trammel::FitCurves(points, 0.5, 0.6, out);
            return Count(out);
        });
        RegisterOfSize("simplify_rings", "ripples_", count, Coast, Simplified);
        if (count <= 10000) {
            RegisterOfSize("simplify_rings", "star_", count, inputs::Star, Simplified);
            RegisterOfSize("arrangement", "", count, Buildings, [](Operands const& operands) {
                return static_cast<double>(trammel::PolygonArrangement(operands).Faces().size());
            });
        }
    }
    for (auto const& [input, which] : peers::PathSets()) {
        inputs::Set const set = which;
        compare::RegisterAlone("simplify_outline", input, "trammel", [=] {
            std::vector<CPath> const& paths = inputs::Outlines(set);
            return peers::JobOf(paths.size(), [&paths](std::size_t i) {
                CPath out;
                trammel::Simplify(paths[i], 0.25, out);
                return Count(out);
            });
        });
    }
    return true;
}

[[maybe_unused]] bool const kRegistered = RegisterAll();

} // namespace
