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

/// Counts the edges of a contour, and sets the bounds of its vertices. Returns false if one is not
/// finite.
bool BooleanOperand::Measure(double const* coordinates, std::size_t count, Box<double>& bounds) {
    mGiven += count;
    for (std::size_t i = 0; i < 2 * count; i += 2) {
        double const x = coordinates[i];
        double const y = coordinates[i + 1];
        if (!std::isfinite(x) || !std::isfinite(y)) {
            return false;
        }
        bounds.Include(x, y);
    }
    return true;
}

void BooleanOperand::Add(double const* coordinates, std::size_t count, std::uint32_t owner) {
    auto const firstEdge = static_cast<std::uint32_t>(mGiven);
    Box<double> bounds;
    if (Measure(coordinates, count, bounds) && count >= 3 && bounds.HasArea()) {
        mContours.push_back({coordinates, count, bounds, owner, firstEdge});
        mBounds.Include(bounds);
    }
}

void BooleanOperand::AddOpen(double const* coordinates, std::size_t count) {
    auto const firstEdge = static_cast<std::uint32_t>(mGiven);
    Box<double> bounds;
    if (Measure(coordinates, count, bounds) && count >= 2) {
        mContours.push_back({coordinates, count, bounds, 0, firstEdge});
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

/// Appends the vertices that AppendLines() keeps. Calls note(contour, i) after each, where i is its
/// number in the contour, and close(contour) after the last one of a contour.
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
    CheckNumbers(firstEdge);
    AppendPoints(
        where, grid, lines,
        [&](Contour const& contour, std::size_t i) {
            lines.origins.push_back(static_cast<Origin>(2 * (firstEdge + contour.firstEdge + i)));
        },
        [&](Contour const& contour) { lines.CloseOwned(contour.owner); });
}

void BooleanOperand::AppendOpenLines(std::uint32_t owner, std::size_t firstEdge, ClipGrid& grid,
                                     GridLines& lines) const {
    CheckNumbers(firstEdge);
    for (Contour const& contour : mContours) {
        std::size_t const begin = lines.points.size();
        for (std::size_t i = 0; i < contour.count; ++i) {
            GridPoint const p =
                grid.Add(contour.coordinates[2 * i], contour.coordinates[2 * i + 1]);
            if (lines.points.size() > begin && lines.points.back() == p) {
                lines.points.pop_back();
                lines.origins.pop_back();
            }
            lines.points.push_back(p);
            lines.origins.push_back(static_cast<Origin>(2 * (firstEdge + contour.firstEdge + i)));
        }
        std::size_t const last = lines.points.size() - 1;
        if (last == begin) {
            lines.points.resize(begin);
            lines.origins.resize(begin);
            continue;
        }
        lines.origins[last] = Reversed(lines.origins[last - 1]);
        // The engine takes the edges of a line for consecutive ones, not for equal ones. It would
        // not see that the only two edges of a line are equal, so these come twice.
        if (last == begin + 1) {
            lines.points.insert(lines.points.end(), {lines.points[begin], lines.points[last]});
            lines.origins.insert(lines.origins.end(), {lines.origins[begin], lines.origins[last]});
        }
        for (std::size_t i = last; --i > begin;) {
            lines.points.push_back(lines.points[i]);
            lines.origins.push_back(Reversed(lines.origins[i - 1]));
        }
        lines.ends.push_back(lines.points.size());
        lines.operands.push_back(1);
        lines.owners.push_back(owner);
    }
}

void BooleanOperand::CheckNumbers(std::size_t firstEdge) const {
    if (firstEdge + mGiven > EdgeTree::kMostEdges) {
        throw std::length_error("BooleanOperand");
    }
}

Box<double> Wider(Box<double> const& where, Box<double> const& all) {
    auto const margin = [](double low, double high) {
        return 0x1p-40 * (high - low) + 0x1p-46 * std::max(std::fabs(low), std::fabs(high));
    };
    return where.Widened(margin(all.lowX, all.highX), margin(all.lowY, all.highY));
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
    std::size_t const given = operands.GivenCount();
    bool const complete = lines.points.size() == given;
    CutTally cut;
    RegionContours resolved = UniteInStages(std::move(lines), owners, evenOdd, grid, cut);
    bool const unchanged = complete && owners == 1 && !cut.meet && cut.vertices == given &&
                           resolved.contours.points.size() == given;
    return {std::move(resolved), std::move(grid), unchanged};
}

} // namespace trammel_detail
