// SPDX-License-Identifier: MIT

#include "PolygonOperations.h"

#include "Boolean_p.h"
#include "Handles.h"
#include "Scratch_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace trammel {

namespace {

using trammel_detail::BooleanOperand;
using trammel_detail::GridPoint;
using trammel_detail::RegionOf;
using trammel_detail::Scratch;
using trammel_detail::WindingRegion;
using trammel_detail::WindingResult;

typedef std::vector<TPolygon<double>> Rings;

// The engine reads points as they lie in a ring's block: its x is our v, and its y is our h.
static_assert(sizeof(TPoint<double>) == 2 * sizeof(double) && offsetof(TPoint<double>, v) == 0);

void Add(TPolygon<double> const& ring, std::uint32_t owner, BooleanOperand& operand) {
    long const last = ring.LastIndex();
    if (last >= 0) {
        operand.Add(&(*ring.mHandle)->mPoints[0].v, static_cast<std::size_t>(last) + 1, owner);
    }
}

void Add(Rings const& rings, std::uint32_t owner, BooleanOperand& operand) {
    for (TPolygon<double> const& ring : rings) {
        Add(ring, owner, operand);
    }
}

bool SetRegion(TPolyOp op, RegionOf& region) {
    switch (op) {
    case kPolyDifference:
        region = {{false, true, false, false}};
        return true;
    case kPolyIntersection:
        region = {{false, false, false, true}};
        return true;
    case kPolyXor:
        region = {{false, true, true, false}};
        return true;
    case kPolyUnion:
        region = {{false, true, true, true}};
        return true;
    }
    return false;
}

/// True when ring a's first vertex comes before ring b's.
bool Precedes(GridPoint a, GridPoint b) { return a.x != b.x ? a.x < b.x : a.y < b.y; }

TPolygon<double> ToRing(WindingResult const& result, std::size_t contour, std::size_t first) {
    std::size_t const begin = result.resolved.contours.Begin(contour);
    std::size_t const end = result.resolved.contours.End(contour);
    TPolygon<double> ring;
    auto const size = static_cast<Size>(offsetof(CPolygon<double>, mPoints) +
                                        (end - begin) * sizeof(TPoint<double>));
    if (SetHandleSize(reinterpret_cast<Handle>(ring.mHandle), size) != noErr) {
        throw std::bad_alloc();
    }
    TPoint<double>* out = (*ring.mHandle)->mPoints;
    // Outer contours of the engine run from +y toward +x, which is from +h toward +v.
    for (std::size_t i = begin; i < end; ++i, ++out) {
        std::size_t const at = i + (first - begin);
        result.grid.ToDoubles(result.resolved.contours.points[at < end ? at : at - (end - begin)],
                              out->v, out->h);
    }
    ring.Close();
    return ring;
}

Rings ToRings(WindingResult const& result) {
    struct Place {
        GridPoint at;
        std::size_t contour;
        std::size_t first;
    };
    trammel_detail::GridLines const& contours = result.resolved.contours;
    std::vector<Place> order;
    order.reserve(contours.Count());
    for (std::size_t i = 0; i < contours.Count(); ++i) {
        GridPoint const* const first = contours.points.data() + contours.Begin(i);
        GridPoint const* const end = contours.points.data() + contours.End(i);
        GridPoint const* const least = std::min_element(first, end, Precedes);
        order.push_back({*least, i, static_cast<std::size_t>(least - contours.points.data())});
    }
    std::sort(order.begin(), order.end(), [](Place const& a, Place const& b) {
        return a.at != b.at ? Precedes(a.at, b.at) : a.contour < b.contour;
    });
    Rings rings;
    rings.reserve(order.size());
    for (Place const& place : order) {
        rings.push_back(ToRing(result, place.contour, place.first));
    }
    return rings;
}

/// Calls `combine` for a result, and returns its rings.
template <class Combine> Rings RingsOf(Combine&& combine) {
    try {
        return ToRings(combine());
    } catch (std::length_error const&) {
        throw std::bad_alloc(); // more edges than 32 bits count
    }
}

/// Returns the union of polygons, each of which is a ring or several.
template <class Polygon> Rings UnionOf(std::vector<Polygon> const& polygons, FillRule rule) {
    if (polygons.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::bad_alloc();
    }
    auto const count = static_cast<std::uint32_t>(polygons.size());
    Scratch scratch;
    BooleanOperand all(&scratch);
    for (std::uint32_t i = 0; i < count; ++i) {
        Add(polygons[i], i, all);
    }
    return RingsOf([&] {
        return trammel_detail::UniteByWinding(all, count, rule == FillRule::kEvenOdd, &scratch);
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
    return RingsOf(
        [&] { return trammel_detail::CombineByWinding(first, second, region, &scratch); });
}

Rings Union(Rings const& polygons, FillRule rule) { return UnionOf(polygons, rule); }

Rings Union(std::vector<Rings> const& polygons, FillRule rule) { return UnionOf(polygons, rule); }

Rings RemoveOverlap(Rings const& rings, FillRule rule) {
    Scratch scratch;
    BooleanOperand all(&scratch);
    Add(rings, 0, all);
    return RingsOf([&] {
        return trammel_detail::UniteByWinding(all, 1, rule == FillRule::kEvenOdd, &scratch);
    });
}

} // namespace trammel
