// SPDX-License-Identifier: MIT

#include "Nesting_p.h"

#include "Predicates_p.h"
#include "WestRays_p.h"
#include "WestSweep_p.h"

#include <numeric>
#include <optional>
#include <utility>

namespace trammel_detail {

namespace {

/// How far a contour reaches.
struct Reach {
    GridBox box;
    Int128 twiceArea = 0;

    Reach(GridLines const& contours, std::size_t contour) {
        std::size_t const begin = contours.Begin(contour);
        std::size_t const end = contours.End(contour);
        GridPoint const first = contours.points[begin];
        // Unsigned, as sums of some triangles may be too large. The sum of all is not.
        UInt128 sum = 0;
        for (std::size_t i = begin; i < end; ++i) {
            GridPoint const p = contours.points[i];
            box.Include(p.x, p.y);
            sum = sum + static_cast<UInt128>(
                            Cross(first, p, contours.points[i + 1 == end ? begin : i + 1]));
        }
        auto const area = static_cast<Int128>(sum);
        twiceArea = area < 0 ? -area : area;
    }
    /// True when the contour lies in another one, of which it is known that one of the two lies in
    /// the other.
    bool IsWithin(Reach const& other) const {
        GridBox const& b = other.box;
        bool const same = box.lowX == b.lowX && box.lowY == b.lowY && box.highX == b.highX &&
                          box.highY == b.highY;
        return same ? twiceArea < other.twiceArea
                    : box.lowX >= b.lowX && box.lowY >= b.lowY && box.highX <= b.highX &&
                          box.highY <= b.highY;
    }
};

/// Returns what OutersOf() does, by a sweep over all edges.
std::vector<std::size_t> OutersBySweep(RegionContours const& region) {
    GridLines const& contours = region.contours;
    // A face or the region lies to the right of an edge. Of equal edges the one that runs downwards
    // comes first, because its face lies west.
    Number const kUpward = Number{1} << 31;
    ScratchVector<SweptEdge> edges(contours.points.get_allocator());
    ScratchVector<Number> contourOf(contours.points.size(), 0, contours.points.get_allocator());
    for (std::size_t i = 0; i < contours.Count(); ++i) {
        for (std::size_t k = contours.Begin(i); k < contours.End(i); ++k) {
            contourOf[k] = static_cast<Number>(i);
            GridPoint const a = contours.points[k];
            GridPoint const b =
                contours.points[k + 1 == contours.End(i) ? contours.Begin(i) : k + 1];
            if (a.y < b.y) {
                edges.emplace_back(a, b, static_cast<Number>(k) | kUpward);
            } else if (b.y < a.y) {
                edges.emplace_back(b, a, static_cast<Number>(k));
            }
        }
    }
    std::vector<std::size_t> outers(contours.Count());
    std::iota(outers.begin(), outers.end(), std::size_t{0});
    std::vector<char> met(contours.Count(), 0);
    SweepWest(std::move(edges), [&](SweptEdge const& edge, SweptEdge const* west) {
        std::size_t const contour = contourOf[edge.number & ~kUpward];
        // The sweep meets a hole at the edge that comes down to its lowest vertex. The contour west
        // of it was met before, and bounds the same face.
        bool const first = std::exchange(met[contour], 1) == 0;
        if (!first || region.holes[contour] == 0 || west == nullptr ||
            (west->number & kUpward) == 0) {
            return;
        }
        std::size_t const beside = contourOf[west->number & ~kUpward];
        if (region.holes[beside] == 0 || outers[beside] != beside) {
            outers[contour] = outers[beside];
        }
    });
    return outers;
}

} // namespace

std::vector<std::size_t> OutersOf(RegionContours const& region) {
    GridLines const& contours = region.contours;
    std::optional<EdgeTree> const none;
    WestRays rays(contours, none);
    std::vector<std::size_t> outers(contours.Count());
    std::vector<int> steps(contours.Count(), 0);
    ScratchVector<RayCrossing> crossings;
    std::vector<Reach> reaches;
    reaches.reserve(contours.Count());
    for (std::size_t i = 0; i < contours.Count(); ++i) {
        reaches.emplace_back(contours, i);
    }
    for (std::size_t i = 0; i < contours.Count(); ++i) {
        outers[i] = i;
        if (region.holes[i] == 0) {
            continue;
        }
        // The region lies to the right, so west of an edge that runs downwards.
        std::size_t edge = contours.Begin(i);
        while (edge + 1 < contours.End(i) &&
               contours.points[edge].y <= contours.points[edge + 1].y) {
            ++edge;
        }
        if (rays.AreSlow()) {
            return OutersBySweep(region);
        }
        crossings.clear();
        rays.CrossingsWestOf(edge, crossings);
        for (RayCrossing const& crossing : crossings) {
            steps[crossing.line] += crossing.step;
        }
        // Contours do not cross, so all that lie around the hole lie in each other.
        for (RayCrossing const& crossing : crossings) {
            std::size_t const around = crossing.line;
            if (steps[around] != 0 && region.holes[around] == 0 &&
                (outers[i] == i || reaches[around].IsWithin(reaches[outers[i]]))) {
                outers[i] = around;
            }
        }
        for (RayCrossing const& crossing : crossings) {
            steps[crossing.line] = 0;
        }
    }
    return outers;
}

} // namespace trammel_detail
