// SPDX-License-Identifier: MIT

#include "PolygonRings_p.h"

#include "Nesting_p.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace trammel_detail {

using trammel::PolygonWithHoles;
using trammel::Ring;

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

void Add(std::vector<TPolygon<double>> const& rings, std::uint32_t owner, BooleanOperand& operand) {
    for (TPolygon<double> const& ring : rings) {
        Add(ring, owner, operand);
    }
}

namespace {

/// True when vertex a comes before vertex b in the order of the rings.
bool Precedes(GridPoint a, GridPoint b) { return a.x != b.x ? a.x < b.x : a.y < b.y; }

} // namespace

std::vector<RingPlace> PlacesOf(WindingResult const& result) {
    GridLines const& contours = result.resolved.contours;
    std::vector<RingPlace> order;
    order.reserve(contours.Count());
    for (std::size_t i = 0; i < contours.Count(); ++i) {
        GridPoint const* const first = contours.points.data() + contours.Begin(i);
        GridPoint const* const end = contours.points.data() + contours.End(i);
        GridPoint const* const least = std::min_element(first, end, Precedes);
        order.push_back({*least, i, static_cast<std::size_t>(least - contours.points.data())});
    }
    auto const second = [&contours](RingPlace const& place) {
        std::size_t const next = place.first + 1;
        return contours
            .points[next < contours.End(place.contour) ? next : contours.Begin(place.contour)];
    };
    // Rings that meet in their first vertex go different ways from there.
    std::sort(order.begin(), order.end(), [&](RingPlace const& a, RingPlace const& b) {
        return a.at != b.at ? Precedes(a.at, b.at) : Precedes(second(a), second(b));
    });
    return order;
}

std::size_t VertexCount(WindingResult const& result, RingPlace const& place) {
    GridLines const& contours = result.resolved.contours;
    return contours.End(place.contour) - contours.Begin(place.contour);
}

void WriteVertices(WindingResult const& result, RingPlace const& place, TPoint<double>* out) {
    GridLines const& contours = result.resolved.contours;
    std::size_t const end = contours.End(place.contour);
    std::size_t at = place.first;
    for (std::size_t count = VertexCount(result, place); count > 0; --count, ++out) {
        result.grid.ToDoubles(contours.points[at], out->v, out->h);
        at = at + 1 < end ? at + 1 : contours.Begin(place.contour);
    }
}

std::vector<PolygonWithHoles> ToPolygons(WindingResult const& result,
                                         std::vector<std::size_t>* contours) {
    std::vector<RingPlace> const places = PlacesOf(result);
    std::vector<std::size_t> const outers = OutersOf(result.resolved);
    std::vector<std::size_t> polygonOf(places.size()); // by contour
    std::vector<PolygonWithHoles> polygons;
    for (bool const holes : {false, true}) {
        for (RingPlace const& place : places) {
            if ((result.resolved.holes[place.contour] != 0) != holes) {
                continue;
            }
            std::size_t const outer = outers[place.contour];
            if (holes && result.resolved.holes[outer] != 0) {
                continue;
            }
            Ring ring(VertexCount(result, place));
            WriteVertices(result, place, ring.data());
            if (holes) {
                polygons[polygonOf[outer]].holes.push_back(std::move(ring));
            } else {
                polygonOf[place.contour] = polygons.size();
                polygons.push_back({std::move(ring), {}});
                if (contours != nullptr) {
                    contours->push_back(place.contour);
                }
            }
        }
    }
    return polygons;
}

} // namespace trammel_detail
