// SPDX-License-Identifier: MIT

#include "Stages_p.h"

#include "Contours_p.h"
#include "MortonOrder_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace trammel_detail {

namespace {

/// So many parts are united at a time.
std::size_t const kFan = 8;
/// Up to so many parts are united at once.
std::size_t const kFewParts = 32;
/// One group of so many tells whether a stage pays.
std::size_t const kSampled = 16;
/// A stage pays where so many vertices vanish in it for each one that comes in. Measured: below
/// this the stages take longer than they save, be the operands squares or rings of 64 vertices.
double const kWorthwhile = 0.5;

/// The points in operands of the first group.
RegionOf const kFirstGroup = {{false, true, false, true}};

/// Lines in parts, each of which bounds one operand.
struct Parts {
    GridLines lines;
    std::vector<std::size_t> ends; ///< by part: where its lines end

    std::size_t Count() const { return ends.size(); }
    std::size_t Begin(std::size_t part) const { return part == 0 ? 0 : ends[part - 1]; }
};

void AppendLine(GridLines const& from, std::size_t line, std::uint32_t owner, GridLines& to) {
    to.AppendPoints(from, line);
    to.operands.push_back(1);
    to.owners.push_back(owner);
}

/// Returns the operands as parts, in the order of their first vertices along Morton's curve.
Parts PartsOf(GridLines const& lines) {
    std::vector<std::pair<std::uint64_t, std::size_t>> order; // with each owner's first line
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        if (line == 0 || lines.owners[line] != lines.owners[line - 1]) {
            order.emplace_back(MortonCode(lines.points[lines.Begin(line)]), line);
        }
    }
    std::sort(order.begin(), order.end());
    Parts parts;
    parts.lines.points.reserve(lines.points.size());
    parts.ends.reserve(order.size());
    for (auto const& [place, first] : order) {
        for (std::size_t line = first;
             line < lines.Count() && lines.owners[line] == lines.owners[first]; ++line) {
            AppendLine(lines, line, 0, parts.lines);
        }
        parts.ends.push_back(parts.lines.Count());
    }
    return parts;
}

/// Returns the contours of the union of the parts from `begin` to `end`. Adds to `cut`.
RegionContours UnionOf(Parts const& parts, std::size_t begin, std::size_t end, WindingRule rule,
                       ClipGrid const& grid, Scratch* scratch, CutTally& cut) {
    WindingRegion region(kFirstGroup, scratch);
    region.rules.assign(end - begin, rule);
    GridLines lines(scratch);
    for (std::size_t part = begin; part < end; ++part) {
        for (std::size_t line = parts.Begin(part); line < parts.ends[part]; ++line) {
            AppendLine(parts.lines, line, static_cast<std::uint32_t>(part - begin), lines);
        }
    }
    return ContoursOf(std::move(lines), region, grid, &cut);
}

/// One stage: parts that follow each other are united in groups.
class Stage {
public:
    Stage(Parts const& parts, WindingRule rule, ClipGrid const& grid)
        : mParts(parts), mRule(rule), mGrid(grid), mGroups((parts.Count() + kFan - 1) / kFan) {}

    /// Unites some of the groups. True when the stage pays: when the vertices that the cutting
    /// gives and the union does not keep are many beside the vertices that come in.
    bool TrySome() {
        std::size_t before = 0;
        CutTally cut;
        std::size_t after = 0;
        for (std::size_t i = 0; i < mGroups.size(); i += kSampled) {
            Unite(i, cut);
            after += mGroups[i].points.size();
            std::size_t const last = mParts.ends[End(i) - 1] - 1;
            before += mParts.lines.End(last) - mParts.lines.Begin(mParts.Begin(i * kFan));
        }
        return static_cast<double>(cut.vertices - after) >
               kWorthwhile * static_cast<double>(before);
    }
    /// Unites the other groups, and returns one part for each.
    Parts Finish() {
        Parts united;
        for (std::size_t i = 0; i < mGroups.size(); ++i) {
            CutTally cut;
            if (i % kSampled != 0) {
                Unite(i, cut);
            }
            for (std::size_t line = 0; line < mGroups[i].Count(); ++line) {
                AppendLine(mGroups[i], line, 0, united.lines);
            }
            if (mGroups[i].Count() != 0) {
                united.ends.push_back(united.lines.Count());
            }
            mGroups[i] = GridLines();
        }
        return united;
    }

private:
    std::size_t End(std::size_t group) const {
        return std::min(group * kFan + kFan, mParts.Count());
    }
    /// Adds what there is after the cutting to `cut`.
    void Unite(std::size_t group, CutTally& cut);

    Parts const& mParts;
    WindingRule mRule;
    ClipGrid const& mGrid;
    std::vector<GridLines> mGroups; // the contours of each group's union
};

void Stage::Unite(std::size_t group, CutTally& cut) {
    // The caller has such a block on the stack. Two would take most of what a function may take.
    auto const scratch = std::make_unique<Scratch>();
    RegionContours const united =
        UnionOf(mParts, group * kFan, End(group), mRule, mGrid, scratch.get(), cut);
    GridLines const& contours = united.contours;
    mGroups[group].points.assign(contours.points.begin(), contours.points.end());
    mGroups[group].ends.assign(contours.ends.begin(), contours.ends.end());
    mGroups[group].origins.assign(contours.origins.begin(), contours.origins.end());
}

} // namespace

RegionContours UniteInStages(GridLines lines, std::uint32_t owners, bool evenOdd,
                             ClipGrid const& grid, CutTally& cut) {
    WindingRule rule{evenOdd, 0};
    Scratch* const scratch = lines.points.get_allocator().GetScratch();
    if (owners <= kFewParts) {
        WindingRegion region(kFirstGroup, scratch);
        region.rules.assign(owners, rule);
        return ContoursOf(std::move(lines), region, grid, &cut);
    }
    Parts parts = PartsOf(lines);
    lines = GridLines();
    while (parts.Count() > kFewParts) {
        Stage stage(parts, rule, grid);
        if (!stage.TrySome()) {
            break;
        }
        parts = stage.Finish();
        rule.evenOdd = false;
    }
    return UnionOf(parts, 0, parts.Count(), rule, grid, scratch, cut);
}

} // namespace trammel_detail
