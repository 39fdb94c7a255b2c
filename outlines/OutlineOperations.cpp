// SPDX-License-Identifier: MIT

#include "OutlineOperations.h"

#include "OutlineArcs_p.h"
#include "OutlineLift_p.h"
#include "PolygonRegions_p.h"
#include "Scratch_p.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace trammel {

namespace {

using trammel_detail::BooleanOperand;
using trammel_detail::FlatOutlines;
using trammel_detail::OutlineArcs;
using trammel_detail::RegionOf;
using trammel_detail::Scratch;
using trammel_detail::WindingRegion;
using trammel_detail::WindingResult;

/// Rounding moves points of a result by less, in work units.
double const kRoundings = 0x1p-40;

/// Returns the distance that was kept.
double DistanceKept(FlatOutlines const& flat, double tolerance) {
    OutlineArcs const& arcs = flat.arcs;
    double kept = kRoundings + 4.0 * arcs.Frame().Spacing();
    if (flat.parts) {
        kept += 2.0 * arcs.Reach() + flat.parts->GreatestHeight();
    }
    return std::max(tolerance > 0.0 ? tolerance : 0.0, arcs.Frame().LengthFromWork(kept));
}

/// Sets `out` to the region of outlines, which combine() gives from their polygons.
template <class Combine>
double Operate(OutlineArcs& arcs, double tolerance, CPath& out, std::vector<ElementSource>* sources,
               Combine&& combine) {
    arcs.Build(tolerance);
    CPath path;
    std::vector<ElementSource> found;
    double kept = tolerance > 0.0 ? tolerance : 0.0;
    if (arcs.HasExtent()) {
        FlatOutlines const flat(arcs);
        Scratch scratch;
        try {
            trammel_detail::LiftResult(combine(flat, &scratch), flat, path,
                                       sources != nullptr ? &found : nullptr);
        } catch (std::length_error const&) {
            throw std::bad_alloc(); // more edges than 32 bits count
        }
        kept = DistanceKept(flat, tolerance);
    }
    out = std::move(path);
    if (sources != nullptr) {
        sources->swap(found);
    }
    return kept;
}

} // namespace

double Boolean(TPolyOp op, CPath const& a, FillRule ruleA, CPath const& b, FillRule ruleB,
               double tolerance, CPath& out, std::vector<ElementSource>* sources) {
    RegionOf of{};
    OutlineArcs arcs;
    if (trammel_detail::SetRegion(op, of)) {
        arcs.Add(a, 0);
        arcs.Add(b, 1);
    }
    return Operate(arcs, tolerance, out, sources, [&](FlatOutlines const& flat, Scratch* scratch) {
        WindingRegion region(of, scratch);
        region.rules = {{ruleA == FillRule::kEvenOdd, 0}, {ruleB == FillRule::kEvenOdd, 1}};
        BooleanOperand first(scratch);
        BooleanOperand second(scratch);
        flat.AddTo(first, 0, 0);
        flat.AddTo(second, 1, 1);
        return trammel_detail::CombineByWinding(first, second, region, scratch,
                                                trammel_detail::Origins::kKept);
    });
}

double Union(std::vector<CPath> const& outlines, FillRule rule, double tolerance, CPath& out,
             std::vector<ElementSource>* sources) {
    if (outlines.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::bad_alloc();
    }
    auto const count = static_cast<std::uint32_t>(outlines.size());
    OutlineArcs arcs;
    for (std::uint32_t i = 0; i < count; ++i) {
        arcs.Add(outlines[i], i);
    }
    return Operate(arcs, tolerance, out, sources, [&](FlatOutlines const& flat, Scratch* scratch) {
        BooleanOperand all(scratch);
        flat.AddAll(all);
        return trammel_detail::UniteByWinding(all, count, rule == FillRule::kEvenOdd, scratch,
                                              trammel_detail::Origins::kKept);
    });
}

double RemoveOverlap(CPath const& outline, FillRule rule, double tolerance, CPath& out,
                     std::vector<ElementSource>* sources) {
    OutlineArcs arcs;
    arcs.Add(outline, 0);
    return Operate(arcs, tolerance, out, sources, [&](FlatOutlines const& flat, Scratch* scratch) {
        BooleanOperand all(scratch);
        flat.AddAll(all);
        return trammel_detail::UniteByWinding(all, 1, rule == FillRule::kEvenOdd, scratch,
                                              trammel_detail::Origins::kKept);
    });
}

} // namespace trammel
