// SPDX-License-Identifier: MIT

#include "Boolean_p.h"

#include "ContourOrder_p.h"
#include "Contours_p.h"
#include "Stages_p.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace trammel_detail {

namespace {

Operands const kFirst = 1;
Operands const kSecond = 2;

/// The sides of a box, as a set of bits.
enum Side : unsigned { kLeft = 1, kRight = 2, kBelow = 4, kAbove = 8 };

/// Returns the sides beyond which a point lies.
unsigned Beyond(Box<double> const& where, double x, double y) {
    return (x < where.lowX ? unsigned{kLeft} : 0U) | (x > where.highX ? unsigned{kRight} : 0U) |
           (y < where.lowY ? unsigned{kBelow} : 0U) | (y > where.highY ? unsigned{kAbove} : 0U);
}

} // namespace

void BooleanOperand::Add(double const* coordinates, std::size_t count, std::uint32_t owner) {
    auto const firstEdge = static_cast<std::uint32_t>(mGiven);
    mGiven += count;
    if (count < 3) {
        return;
    }
    Box<double> bounds;
    for (std::size_t i = 0; i < 2 * count; i += 2) {
        double const x = coordinates[i];
        double const y = coordinates[i + 1];
        if (!std::isfinite(x) || !std::isfinite(y)) {
            return;
        }
        bounds.Include(x, y);
    }
    if (bounds.HasArea()) {
        mContours.push_back({coordinates, count, bounds, owner, firstEdge});
        mBounds.Include(bounds);
    }
}

std::size_t BooleanOperand::VertexCount() const {
    std::size_t count = 0;
    for (Contour const& contour : mContours) {
        count += contour.count;
    }
    return count;
}

void BooleanOperand::Keep(Box<double> const& where) {
    mContours.erase(std::remove_if(mContours.begin(), mContours.end(),
                                   [&](Contour const& c) { return !c.bounds.Meets(where); }),
                    mContours.end());
    mBounds = Box<double>();
    for (Contour const& contour : mContours) {
        mBounds.Include(contour.bounds);
    }
}

/// Calls note(contour, i) after each point, where i is the vertex' number in its contour.
template <class Note, class Close>
void BooleanOperand::AppendPoints(Box<double> const& where, ClipGrid& grid, GridLines& lines,
                                  Note&& note, Close&& close) const {
    for (Contour const& contour : mContours) {
        double const* const v = contour.coordinates;
        std::size_t const end = 2 * contour.count;
        unsigned last = 0;
        unsigned next = Beyond(where, v[0], v[1]);
        for (std::size_t i = 0; i < end; i += 2) {
            unsigned const here = next;
            next = i + 2 < end ? Beyond(where, v[i + 2], v[i + 3]) : 0;
            if ((last & here & next) == 0) {
                lines.points.push_back(grid.Add(v[i], v[i + 1]));
                note(contour, i / 2);
                last = here;
            }
        }
        close(contour);
    }
}

void BooleanOperand::AppendLines(Operands bit, Box<double> const& where, ClipGrid& grid,
                                 GridLines& lines) const {
    AppendPoints(
        where, grid, lines, [](Contour const&, std::size_t) {},
        [&](Contour const&) { lines.Close(bit); });
}

void BooleanOperand::AppendOwnedLines(Box<double> const& where, ClipGrid& grid,
                                      GridLines& lines) const {
    AppendPoints(
        where, grid, lines, [](Contour const&, std::size_t) {},
        [&](Contour const& contour) { lines.CloseOwned(contour.owner); });
}

void BooleanOperand::AppendLinesWithOrigins(Box<double> const& where, std::size_t firstEdge,
                                            ClipGrid& grid, GridLines& lines) const {
    if (firstEdge + mGiven > EdgeTree::kMostEdges) {
        throw std::length_error("BooleanOperand");
    }
    AppendPoints(
        where, grid, lines,
        [&](Contour const& contour, std::size_t i) {
            lines.origins.push_back(static_cast<Origin>(2 * (firstEdge + contour.firstEdge + i)));
        },
        [&](Contour const& contour) { lines.CloseOwned(contour.owner); });
}

namespace {

/// Where the lines of each of two operands have to enclose the right points.
struct Places {
    Box<double> first;
    Box<double> second;
};

/// Removes contours that do not matter for the region, and returns where the others do.
Places KeepWhatMatters(BooleanOperand& first, BooleanOperand& second, RegionOf const& region) {
    // Without points that lie in one operand only, nothing of the region lies outside of the other.
    bool const withinSecond = !region[kFirst];
    bool const withinFirst = !region[kSecond];
    if (withinSecond) {
        first.Keep(second.Bounds());
    }
    if (withinFirst) {
        second.Keep(first.Bounds());
    }
    return {withinSecond ? second.Bounds() : first.Bounds(),
            withinFirst ? first.Bounds() : second.Bounds()};
}

/// Returns a box that is wider by more than edges move. An edge that stands for several lies beyond
/// it, and so on the boundary of no result.
Box<double> Wider(Box<double> const& where, Box<double> const& all) {
    auto const margin = [](double low, double high) {
        return 0x1p-40 * (high - low) + 0x1p-46 * std::max(std::fabs(low), std::fabs(high));
    };
    return where.Widened(margin(all.lowX, all.highX), margin(all.lowY, all.highY));
}

/// Returns no lines, with room for those of two operands.
GridLines RoomForLines(BooleanOperand const& first, BooleanOperand const& second,
                       Scratch* scratch) {
    GridLines lines(scratch);
    lines.points.reserve(first.VertexCount() + second.VertexCount());
    lines.ends.reserve(first.Count() + second.Count());
    lines.operands.reserve(lines.ends.capacity());
    return lines;
}

} // namespace

BooleanResult Combine(BooleanOperand& first, BooleanOperand& second, RegionOf const& region,
                      Scratch* scratch) {
    Places const places = KeepWhatMatters(first, second, region);
    Box<double> all = first.Bounds();
    all.Include(second.Bounds());
    if (!all.HasArea()) {
        return {RegionContours(scratch), ScratchVector<std::size_t>(scratch), ClipGrid(0, 0, 1, 1)};
    }
    ClipGrid grid(all.lowX, all.lowY, all.highX, all.highY);
    GridLines lines = RoomForLines(first, second, scratch);
    first.AppendLines(kFirst, places.first, grid, lines);
    second.AppendLines(kSecond, places.second, grid, lines);
    grid.FinishAdding();
    RegionContours resolved = ContoursOf(std::move(lines), region, grid);
    ScratchVector<std::size_t> order = OrderContours(resolved);
    return {std::move(resolved), std::move(order), std::move(grid)};
}

WindingResult CombineByWinding(BooleanOperand& first, BooleanOperand& second,
                               WindingRegion const& region, Scratch* scratch, Origins origins) {
    Places const places = KeepWhatMatters(first, second, region.region);
    Box<double> all = first.Bounds();
    all.Include(second.Bounds());
    if (!all.HasArea()) {
        return {RegionContours(scratch), ClipGrid(0, 0, 1, 1)};
    }
    ClipGrid grid(all.lowX, all.lowY, all.highX, all.highY);
    GridLines lines = RoomForLines(first, second, scratch);
    lines.owners.reserve(lines.ends.capacity());
    if (origins == Origins::kKept) {
        first.AppendLinesWithOrigins(Wider(places.first, all), 0, grid, lines);
        second.AppendLinesWithOrigins(Wider(places.second, all), first.GivenCount(), grid, lines);
    } else {
        first.AppendOwnedLines(places.first, grid, lines);
        second.AppendOwnedLines(places.second, grid, lines);
    }
    grid.FinishAdding();
    return {ContoursOf(std::move(lines), region, grid), std::move(grid)};
}

WindingResult UniteByWinding(BooleanOperand const& operands, std::uint32_t owners, bool evenOdd,
                             Scratch* scratch, Origins origins) {
    Box<double> const all = operands.Bounds();
    if (!all.HasArea()) {
        return {RegionContours(scratch), ClipGrid(0, 0, 1, 1)};
    }
    ClipGrid grid(all.lowX, all.lowY, all.highX, all.highY);
    GridLines lines = RoomForLines(operands, BooleanOperand(scratch), scratch);
    lines.owners.reserve(lines.ends.capacity());
    if (origins == Origins::kKept) {
        operands.AppendLinesWithOrigins(all, 0, grid, lines);
    } else {
        operands.AppendOwnedLines(all, grid, lines);
    }
    grid.FinishAdding();
    return {UniteInStages(std::move(lines), owners, evenOdd, grid), std::move(grid)};
}

} // namespace trammel_detail
