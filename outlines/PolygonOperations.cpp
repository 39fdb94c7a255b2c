// SPDX-License-Identifier: MIT

#include "PolygonOperations.h"

#include "Boolean_p.h"
#include "Handles.h"
#include "Nesting_p.h"
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
typedef std::vector<PolygonWithHoles> Polygons;

// The engine reads points as they lie in a ring's block: its x is our v, and its y is our h.
static_assert(sizeof(TPoint<double>) == 2 * sizeof(double) && offsetof(TPoint<double>, v) == 0);

void Add(TPolygon<double> const& ring, std::uint32_t owner, BooleanOperand& operand) {
    long const last = ring.LastIndex();
    if (last >= 0) {
        operand.Add(&(*ring.mHandle)->mPoints[0].v, static_cast<std::size_t>(last) + 1, owner);
    }
}

void Add(Ring const& ring, std::uint32_t owner, BooleanOperand& operand) {
    if (!ring.empty()) {
        operand.Add(&ring[0].v, ring.size(), owner);
    }
}

void Add(PolygonWithHoles const& polygon, std::uint32_t owner, BooleanOperand& operand) {
    Add(polygon.outer, owner, operand);
    for (Ring const& hole : polygon.holes) {
        Add(hole, owner, operand);
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

/// A contour of a result, and the vertex at which its ring begins.
struct Place {
    GridPoint at;
    std::size_t contour;
    std::size_t first; ///< among the points of all contours
};

/// Returns the contours in the order of the rings.
std::vector<Place> PlacesOf(WindingResult const& result) {
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
    return order;
}

std::size_t VertexCount(WindingResult const& result, Place const& place) {
    trammel_detail::GridLines const& contours = result.resolved.contours;
    return contours.End(place.contour) - contours.Begin(place.contour);
}

/// Writes the vertices of a ring. Outer contours of the engine run from +y toward +x, which is from
/// +h toward +v.
void WriteVertices(WindingResult const& result, Place const& place, TPoint<double>* out) {
    trammel_detail::GridLines const& contours = result.resolved.contours;
    std::size_t const end = contours.End(place.contour);
    std::size_t at = place.first;
    for (std::size_t count = VertexCount(result, place); count > 0; --count, ++out) {
        result.grid.ToDoubles(contours.points[at], out->v, out->h);
        at = at + 1 < end ? at + 1 : contours.Begin(place.contour);
    }
}

Rings ToRings(WindingResult const& result) {
    std::vector<Place> const places = PlacesOf(result);
    Rings rings;
    rings.reserve(places.size());
    for (Place const& place : places) {
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

Polygons ToPolygons(WindingResult const& result) {
    std::vector<Place> const places = PlacesOf(result);
    std::vector<std::size_t> const outers = trammel_detail::OutersOf(result.resolved);
    std::vector<std::size_t> polygonOf(places.size()); // by contour
    Polygons polygons;
    for (bool const holes : {false, true}) {
        for (Place const& place : places) {
            if ((result.resolved.holes[place.contour] != 0) != holes) {
                continue;
            }
            Ring ring(VertexCount(result, place));
            WriteVertices(result, place, ring.data());
            if (holes) {
                polygons[polygonOf[outers[place.contour]]].holes.push_back(std::move(ring));
            } else {
                polygonOf[place.contour] = polygons.size();
                polygons.push_back({std::move(ring), {}});
            }
        }
    }
    return polygons;
}

/// Returns combine()'s result. Throws std::bad_alloc.
template <class Combine> WindingResult Try(Combine&& combine) {
    try {
        return combine();
    } catch (std::length_error const&) {
        throw std::bad_alloc(); // more edges than 32 bits count
    }
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
    return ToPolygons(Resolved(rings, rule, &scratch));
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
    return ToPolygons(
        Try([&] { return trammel_detail::CombineByWinding(first, second, region, &scratch); }));
}

Polygons Union(Polygons const& polygons) {
    Scratch scratch;
    return ToPolygons(UnionOf(polygons, FillRule::kEvenOdd, &scratch));
}

} // namespace trammel
