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

namespace {

/// The work of CutAtCrossings().
///
/// A cut moves an edge by the rounding of the new vertex, and the moved edge can meet others anew.
/// Therefore every round looks again at the parts of edges that may do so, until it finds nothing
/// to cut.
///
/// The first two rounds cut edges where they have a point in common. Two edges that run nearly side
/// by side could go on crossing, each time one double further along. Therefore later rounds also
/// bend edges at vertices that they pass closely. This is iterated snap rounding: D. Halperin, E.
/// Packer, Iterated Snap Rounding, Computational Geometry 23(2), 2002. A drawing takes one or two
/// rounds as a rule, and some 20 where all details are a few doubles large.
///
/// An edge can pass two vertices closely that are opposite corners of its box. It is cut at both,
/// and a part leads from one of the corners to the other. That part can pass the first edge's ends
/// closely, and so its parts contain the first edge again. In boxes one double wide this goes on
/// for ever where the doubles below a power of two count as far apart as those above it, see
/// GridAxis::Spacing(). Therefore rounds from kMonotoneFrom on leave out cuts at which an edge
/// would turn back in x or in y.
///
/// Those rounds end, for these reasons:
///
/// 1. A cut lies in its edge's box. A touching point and a vertex of an edge that overlaps do by
/// choice. Crossing() returns a point of both edges' boxes. Snapping keeps it there, because it is
/// monotone and leaves the boxes' corners in place. No edge passes closely a vertex outside of its
/// box: half of the vertex' Spacing() is at most the distance to the next double.
///
/// 2. A cut is not at an end of its edge. At least one cut of each edge is kept.
///
/// 3. Hence an edge's parts run in the same quadrant as the edge. The sum of |dx| + |dy| over all
/// edges stays the same, and each edge has at least 1 of it. Every round but the last makes at
/// least one edge more. So there are at most as many rounds as that sum has steps.
///
/// 4. No crossing is left then. Each pair of edges is looked at in the round after the later edge
/// is made. Two edges that cross have no end in common. So one of them does not end in the
/// crossing, and it is cut there.
class CuttingRounds {
public:
    CuttingRounds(GridLines& lines, ClipGrid const& grid, Recheck recheck,
                  ScratchVector<Incidence>& incidences, std::optional<EdgeTree>& tree)
        : mLines(lines), mGrid(grid), mIncidences(incidences), mTree(tree), mClearances(grid),
          mHasClearances(mClearances.Usable() && recheck == Recheck::kWhereNeeded),
          mActive(incidences.get_allocator()), mPairs(incidences.get_allocator()) {}

    void Run() {
        Prepare();
        for (;; ++mRound) {
            FoundCuts found = Find();
            if (std::all_of(found.cuts.begin(), found.cuts.end(),
                            [](Cut const& cut) { return cut.incidence == kSingle; })) {
                KeepTreeForRays();
                return;
            }
            std::size_t const edges = mTree->Count();
            std::size_t const unsettled = Apply(found);
            if (unsettled == 0) {
                mTree.reset();
                return;
            }
            if (!mHasPairs) {
                MakeTree(edges, unsettled);
            }
        }
    }

private:
    static constexpr std::size_t kExactRounds = 2;
    static constexpr std::size_t kMonotoneFrom = 24;

    bool KeepsClearances() const { return mRound == 0 && mHasClearances; }
    /// Makes the tree of the first round.
    void Prepare();
    FoundCuts Find();
    /// Makes the cuts new vertices. Returns how many parts of edges may meet others anew, which
    /// mActive or mTree tells then.
    std::size_t Apply(FoundCuts& found);
    std::size_t ApplyWithClearances(FoundCuts& found);
    /// Makes the tree of the next round. Tells how many edges there were in this one.
    void MakeTree(std::size_t edges, std::size_t unsettled);
    /// Drops a tree that casts no rays.
    void KeepTreeForRays();

    GridLines& mLines;
    ClipGrid const& mGrid;
    ScratchVector<Incidence>& mIncidences;
    std::optional<EdgeTree>& mTree;
    Clearances const mClearances;
    bool const mHasClearances;
    ScratchVector<char> mActive;
    // Where there are thousands of copies of an edge, one is cut for all. The pairs of the copies
    // would be as many as the square of their number.
    std::optional<EdgeCopies> mCopies;
    // The pairs of parts for the second round, where these are found without a tree.
    ScratchVector<EdgePair> mPairs;
    bool mHasPairs = false;
    std::size_t mRound = 0;
};

void CuttingRounds::Prepare() {
    mIncidences.assign(mLines.points.size(), kSingle);
    if (!mLines.owners.empty() && HasManyCopies(mLines)) {
        mCopies.emplace(mLines);
        mCopies->MarkIn(mActive);
    }
    mTree.emplace(mLines, std::move(mActive), GridPoint{mClearances.Reach(), mClearances.Reach()},
                  EdgeTree::Order::kLines);
}

FoundCuts CuttingRounds::Find() {
    FoundCuts found =
        mHasPairs ? FindCuts(*mTree, mPairs, mGrid, mIncidences)
                  : FindCuts(*mTree, mGrid, mRound < kExactRounds ? Test::kExact : Test::kHotPixels,
                             KeepsClearances() ? &mClearances : nullptr, mIncidences);
    if (mCopies) {
        mCopies->CutCopies(found.cuts);
        mCopies->ShareEnds(mIncidences);
    }
    return found;
}

std::size_t CuttingRounds::Apply(FoundCuts& found) {
    mActive = ScratchVector<char>(mIncidences.get_allocator());
    mHasPairs = false;
    return KeepsClearances() ? ApplyWithClearances(found)
                             : InsertCuts(std::move(found.cuts),
                                          mRound < kMonotoneFrom ? Keep::kAll : Keep::kMonotone,
                                          *mTree, mLines, mIncidences, mActive);
}

std::size_t CuttingRounds::ApplyWithClearances(FoundCuts& found) {
    SortedCuts sorted(found, *mTree);
    found.cuts = ScratchVector<Cut>(mIncidences.get_allocator());
    PartsOfEdges parts(mIncidences.get_allocator().GetScratch());
    std::size_t const unsettled =
        ApplyCuts(sorted, *mTree, mClearances, mLines, mIncidences, mActive, parts);
    if (unsettled != 0 && !mCopies) {
        mTree.emplace(mLines, std::move(mActive));
        mHasPairs = FindPartPairs(sorted, parts, *mTree, mLines, mPairs);
        mActive =
            mHasPairs ? ScratchVector<char>(mIncidences.get_allocator()) : mTree->TakeActive();
    }
    return unsettled;
}

void CuttingRounds::MakeTree(std::size_t edges, std::size_t unsettled) {
    bool const pixels = mRound + 1 >= kExactRounds;
    if (mCopies) {
        mCopies.emplace(mLines);
        mCopies->MarkIn(mActive);
    }
    bool const many = mActive.size() > 2 * edges && unsettled > mActive.size() / 4;
    mTree.emplace(mLines, std::move(mActive), pixels ? mGrid.LargestSpacing() : GridPoint{0, 0},
                  many ? EdgeTree::Order::kMorton : EdgeTree::Order::kLines);
}

void CuttingRounds::KeepTreeForRays() {
    if (!mTree->IsInOrderOfLines() || !mTree->HasBoxes() || !mTree->IsWhole() || mCopies) {
        mTree.reset();
    }
}

} // namespace

void CutAtCrossings(GridLines& lines, ClipGrid const& grid, Recheck recheck,
                    ScratchVector<Incidence>& incidences, std::optional<EdgeTree>& tree) {
    CuttingRounds(lines, grid, recheck, incidences, tree).Run();
}

} // namespace trammel_detail
