// SPDX-License-Identifier: MIT

#include "PolygonOperations.h"

#include "Boolean_p.h"
#include "Handles.h"
#include "PolygonRegions_p.h"
#include "PolygonRings_p.h"
#include "Scratch_p.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <utility>

namespace trammel {

namespace {

using trammel_detail::Add;
using trammel_detail::BooleanOperand;
using trammel_detail::RegionOf;
using trammel_detail::RingPlace;
using trammel_detail::Scratch;
using trammel_detail::SetRegion;
using trammel_detail::Try;
using trammel_detail::WindingRegion;
using trammel_detail::WindingResult;

typedef std::vector<TPolygon<double>> Rings;
typedef std::vector<PolygonWithHoles> Polygons;

void Add(PolygonWithHoles const& polygon, std::uint32_t owner, BooleanOperand& operand) {
    Add(polygon.outer, owner, operand);
    for (Ring const& hole : polygon.holes) {
        Add(hole, owner, operand);
    }
}

Rings ToRings(WindingResult const& result) {
    std::vector<RingPlace> const places = PlacesOf(result);
    Rings rings;
    rings.reserve(places.size());
    for (RingPlace const& place : places) {
        TPolygon<double> ring;
        auto const size = static_cast<Size>(offsetof(CPolygon<double>, mPoints) +
                                            VertexCount(result, place) * sizeof(TPoint<double>));
        if (SetHandleSize(reinterpret_cast<Handle>(ring.mHandle), size) != noErr) {
            throw std::bad_alloc();
        }
        WriteVertices(result, place, (*ring.mHandle)->mPoints);
        ring.Close();
        rings.push_back(std::move(ring));
    }
    return rings;
}

/// Returns the union of polygons, which Add() takes.
template <class Polygon>
WindingResult UnionOf(std::vector<Polygon> const& polygons, FillRule rule, Scratch* scratch) {
    if (polygons.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::bad_alloc();
    }
    auto const count = static_cast<std::uint32_t>(polygons.size());
    BooleanOperand all(scratch);
    for (std::uint32_t i = 0; i < count; ++i) {
        Add(polygons[i], i, all);
    }
    return Try([&] {
        return trammel_detail::UniteByWinding(all, count, rule == FillRule::kEvenOdd, scratch);
    });
}

/// Returns the region of rings as one operand.
WindingResult Resolved(Rings const& rings, FillRule rule, Scratch* scratch) {
    BooleanOperand all(scratch);
    Add(rings, 0, all);
    return Try([&] {
        return trammel_detail::UniteByWinding(all, 1, rule == FillRule::kEvenOdd, scratch);
    });
}

} // namespace

Rings Boolean(TPolyOp op, Rings const& a, FillRule ruleA, Rings const& b, FillRule ruleB) {
    Scratch scratch;
    WindingRegion region({}, &scratch);
    if (!SetRegion(op, region.region)) {
        return {};
    }
    region.rules = {{ruleA == FillRule::kEvenOdd, 0}, {ruleB == FillRule::kEvenOdd, 1}};
    BooleanOperand first(&scratch);
    BooleanOperand second(&scratch);
    Add(a, 0, first);
    Add(b, 1, second);
    return ToRings(
        Try([&] { return trammel_detail::CombineByWinding(first, second, region, &scratch); }));
}

Rings Union(Rings const& polygons, FillRule rule) {
    Scratch scratch;
    return ToRings(UnionOf(polygons, rule, &scratch));
}

Rings Union(std::vector<Rings> const& polygons, FillRule rule) {
    Scratch scratch;
    return ToRings(UnionOf(polygons, rule, &scratch));
}

Rings RemoveOverlap(Rings const& rings, FillRule rule) {
    Scratch scratch;
    return ToRings(Resolved(rings, rule, &scratch));
}

Polygons ToPolygons(Rings const& rings, FillRule rule) {
    Scratch scratch;
    return trammel_detail::ToPolygons(Resolved(rings, rule, &scratch));
}

Polygons Boolean(TPolyOp op, Polygons const& a, Polygons const& b) {
    std::size_t const count = a.size() + b.size();
    if (count > std::numeric_limits<std::uint32_t>::max()) {
        throw std::bad_alloc();
    }
    Scratch scratch;
    WindingRegion region({}, &scratch);
    if (!SetRegion(op, region.region)) {
        return {};
    }
    region.rules.reserve(count);
    region.rules.assign(a.size(), {true, 0});
    region.rules.resize(count, {true, 1});
    BooleanOperand first(&scratch);
    BooleanOperand second(&scratch);
    for (std::size_t i = 0; i < count; ++i) {
        bool const isFirst = i < a.size();
        Add(isFirst ? a[i] : b[i - a.size()], static_cast<std::uint32_t>(i),
            isFirst ? first : second);
    }
    return trammel_detail::ToPolygons(
        Try([&] { return trammel_detail::CombineByWinding(first, second, region, &scratch); }));
}

Polygons Union(Polygons const& polygons) {
    Scratch scratch;
    return trammel_detail::ToPolygons(UnionOf(polygons, FillRule::kEvenOdd, &scratch));
}

} // namespace trammel
