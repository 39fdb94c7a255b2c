// SPDX-License-Identifier: MIT

#include "Sweep_p.h"

#include <polyclipping/clipper.hpp>

#include <cstddef>
#include <utility>

namespace trammel_detail {

namespace {

ClipperLib::ClipType ClipTypeOf(RegionOf const& region) {
    if (region[2]) {
        return region[3] ? ClipperLib::ctUnion : ClipperLib::ctXor;
    }
    return region[3] ? ClipperLib::ctIntersection : ClipperLib::ctDifference;
}

/// The lines of one operand; x and y exchanged if asked for.
ClipperLib::Paths PathsOf(GridLines const& lines, Operands operand, bool transposed) {
    ClipperLib::Paths paths;
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        if (lines.operands[line] != operand) {
            continue;
        }
        paths.emplace_back();
        for (std::size_t i = lines.Begin(line); i < lines.End(line); ++i) {
            GridPoint const p = lines.points[i];
            paths.back().emplace_back(transposed ? p.y : p.x, transposed ? p.x : p.y);
        }
    }
    return paths;
}

bool Sweep(RegionOf const& region, GridLines const& lines, bool transposed,
           ClipperLib::Paths& result) {
    ClipperLib::Clipper clipper(ClipperLib::ioPreserveCollinear);
    bool any = clipper.AddPaths(PathsOf(lines, 1, transposed), ClipperLib::ptSubject, true);
    any |= clipper.AddPaths(PathsOf(lines, 2, transposed), ClipperLib::ptClip, true);
    // If nothing encloses anything, a sweep over nothing would count as failed.
    return !any || clipper.Execute(ClipTypeOf(region), result, ClipperLib::pftEvenOdd);
}

} // namespace

bool SweepBoundary(RegionOf const& region, ClipGrid const& grid, GridLines& lines) {
    // Rounding can leave crossings on one line in an order that the sweep does not take. The other
    // direction meets them on different lines.
    for (bool const transposed : {false, true}) {
        ClipperLib::Paths paths;
        if (!Sweep(region, lines, transposed, paths)) {
            continue;
        }
        lines = GridLines();
        for (ClipperLib::Path const& path : paths) {
            for (ClipperLib::IntPoint const& p : path) {
                GridPoint const q = transposed ? GridPoint{p.Y, p.X} : GridPoint{p.X, p.Y};
                lines.points.push_back(grid.Snapped(q));
            }
            lines.Close(1);
        }
        return true;
    }
    return false;
}

} // namespace trammel_detail
