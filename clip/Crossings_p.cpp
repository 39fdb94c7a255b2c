// SPDX-License-Identifier: MIT

#include "Crossings_p.h"

#include "Clearances_p.h"
#include "Cuts_p.h"
#include "EdgeCopies_p.h"
#include "PartPairs_p.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace trammel_detail {

void CutAtCrossings(GridLines& lines, ClipGrid const& grid, Recheck recheck,
                    ScratchVector<Incidence>& incidences, std::optional<EdgeTree>& tree) {
    // A cut moves an edge by the rounding of the new vertex, and the moved edge can meet others
    // anew. Therefore every round looks again at the parts of edges that may do so, until it finds
    // nothing to cut.
    //
    // The first two rounds cut edges where they have a point in common. Two edges that run nearly
    // side by side could go on crossing, each time one double further along. Therefore later rounds
    // also bend edges at vertices that they pass closely. This is iterated snap rounding:
    // D. Halperin, E. Packer, Iterated Snap Rounding, Computational Geometry 23(2), 2002. A drawing
    // takes one or two rounds as a rule, and some 20 where all details are a few doubles large.
    //
    // An edge can pass two vertices closely that are opposite corners of its box. It is cut at
    // both, and a part leads from one of the corners to the other. That part can pass the first
    // edge's ends closely, and so its parts contain the first edge again. In boxes one double wide
    // this goes on for ever where the doubles below a power of two count as far apart as those
    // above it, see GridAxis::Spacing(). Therefore rounds from kMonotoneFrom on leave out cuts at
    // which an edge would turn back in x or in y.
    //
    // Those rounds end, for these reasons:
    //
    // 1. A cut lies in its edge's box. A touching point and a vertex of an edge that overlaps do by
    // choice. Crossing() returns a point of both edges' boxes. Snapping keeps it there, because it
    // is monotone and leaves the boxes' corners in place. No edge passes closely a vertex outside
    // of its box: half of the vertex' Spacing() is at most the distance to the next double.
    //
    // 2. A cut is not at an end of its edge. At least one cut of each edge is kept.
    //
    // 3. Hence an edge's parts run in the same quadrant as the edge. The sum of |dx| + |dy| over
    // all edges stays the same, and each edge has at least 1 of it. Every round but the last makes
    // at least one edge more. So there are at most as many rounds as that sum has steps.
    //
    // 4. No crossing is left then. Each pair of edges is looked at once the later of them is made.
    // Two edges that cross have no end in common, so the point is no end of one of them, and that
    // one is cut.
    std::size_t const kExactRounds = 2;
    std::size_t const kMonotoneFrom = 24;
    Clearances const clearances(grid);
    incidences.assign(lines.points.size(), kSingle);
    ScratchVector<char> active(incidences.get_allocator());
    // Where there are thousands of copies of an edge, one is cut for all. The pairs of the copies
    // would be as many as the square of their number.
    std::optional<EdgeCopies> copies;
    if (!lines.owners.empty() && HasManyCopies(lines)) {
        copies.emplace(lines);
        copies->MarkIn(active);
    }
    tree.emplace(lines, std::move(active), GridPoint{clearances.Reach(), clearances.Reach()},
                 EdgeTree::Order::kLines);
    // The pairs of parts for the second round, where these are found without a tree.
    ScratchVector<EdgePair> pairs(incidences.get_allocator());
    bool hasPairs = false;
    for (std::size_t round = 0;; ++round) {
        bool const known = round == 0 && clearances.Usable() && recheck == Recheck::kWhereNeeded;
        FoundCuts found =
            hasPairs ? FindCuts(*tree, pairs, grid, incidences)
                     : FindCuts(*tree, grid, round < kExactRounds ? Test::kExact : Test::kHotPixels,
                                known ? &clearances : nullptr, incidences);
        if (copies) {
            copies->CutCopies(found.cuts);
            copies->ShareEnds(incidences);
        }
        bool const any = std::any_of(found.cuts.begin(), found.cuts.end(),
                                     [](Cut const& cut) { return cut.incidence != kSingle; });
        if (!any) {
            if (!tree->IsInOrderOfLines() || !tree->HasBoxes() || !tree->IsWhole() || copies) {
                tree.reset();
            }
            return;
        }
        active = ScratchVector<char>(incidences.get_allocator());
        std::size_t const count = tree->Count();
        std::size_t unsettledCount = 0;
        hasPairs = false;
        if (known) {
            SortedCuts sorted(found, *tree);
            found.cuts = ScratchVector<Cut>(incidences.get_allocator());
            PartsOfEdges parts(incidences.get_allocator().GetScratch());
            unsettledCount = ApplyCuts(sorted, *tree, clearances, lines, incidences, active, parts);
            if (unsettledCount != 0 && !copies) {
                tree.emplace(lines, std::move(active));
                hasPairs = FindPartPairs(sorted, parts, *tree, lines, pairs);
                active =
                    hasPairs ? ScratchVector<char>(incidences.get_allocator()) : tree->TakeActive();
            }
        } else {
            unsettledCount = InsertCuts(std::move(found.cuts),
                                        round < kMonotoneFrom ? Keep::kAll : Keep::kMonotone, *tree,
                                        lines, incidences, active);
        }
        if (unsettledCount == 0) {
            tree.reset();
            return;
        }
        if (hasPairs) {
            continue;
        }
        bool const pixels = round + 1 >= kExactRounds;
        if (copies) {
            copies.emplace(lines);
            copies->MarkIn(active);
        }
        bool const many = active.size() > 2 * count && unsettledCount > active.size() / 4;
        tree.emplace(lines, std::move(active), pixels ? grid.LargestSpacing() : GridPoint{0, 0},
                     many ? EdgeTree::Order::kMorton : EdgeTree::Order::kLines);
    }
}

} // namespace trammel_detail
