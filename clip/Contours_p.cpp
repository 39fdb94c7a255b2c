// SPDX-License-Identifier: MIT

#include "Contours_p.h"

#include "MortonOrder_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace trammel_detail {

namespace {

/// Returns the lines in the order of their first vertices along Morton's curve, in which neighbours
/// are near each other.
GridLines SortedAlongMortonCurve(GridLines const& lines) {
    ScratchVector<std::pair<std::uint64_t, std::size_t>> order(lines.points.get_allocator());
    order.reserve(lines.Count());
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        order.emplace_back(MortonCode(lines.points[lines.Begin(line)]), line);
    }
    std::sort(order.begin(), order.end());
    GridLines sorted(lines.points.get_allocator().GetScratch());
    sorted.points.reserve(lines.points.size());
    sorted.ends.reserve(lines.Count());
    sorted.operands.reserve(lines.Count());
    sorted.owners.reserve(lines.owners.size());
    sorted.origins.reserve(lines.origins.size());
    for (auto const& [place, line] : order) {
        sorted.AppendPoints(lines, line);
        sorted.operands.push_back(lines.operands[line]);
        if (!lines.owners.empty()) {
            sorted.owners.push_back(lines.owners[line]);
        }
    }
    return sorted;
}

} // namespace

CutLines::CutLines(GridLines uncut, ClipGrid const& grid, Recheck recheck)
    : lines(uncut.Count() > 2 ? SortedAlongMortonCurve(uncut) : std::move(uncut)),
      incidences(lines.points.get_allocator()) {
    CutAtCrossings(lines, grid, recheck, incidences, tree);
}

RegionContours ContoursOf(GridLines lines, RegionOf const& region, ClipGrid const& grid,
                          Recheck recheck) {
    CutLines const cut(std::move(lines), grid, recheck);
    return LinkContours(cut.lines, cut.tree, cut.incidences, region);
}

RegionContours ContoursOf(GridLines lines, WindingRegion const& region, ClipGrid const& grid,
                          CutTally* tally) {
    CutLines const cut(std::move(lines), grid, Recheck::kWhereNeeded);
    if (tally != nullptr) {
        tally->vertices += cut.lines.points.size();
        tally->meet = tally->meet || std::any_of(cut.incidences.begin(), cut.incidences.end(),
                                                 [](Incidence i) { return i != kSingle; });
    }
    return LinkContours(cut.lines, cut.tree, cut.incidences, region);
}

} // namespace trammel_detail
