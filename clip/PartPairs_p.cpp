// SPDX-License-Identifier: MIT

#include "PartPairs_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace trammel_detail {

namespace {

/// The work of FindPartPairs().
class PartPairs {
public:
    PartPairs(SortedCuts const& sorted, PartsOfEdges const& parts, EdgeTree const& tree,
              GridLines const& lines, ScratchVector<EdgePair>& pairs)
        : mSorted(sorted), mParts(parts), mTree(tree), mLines(lines), mPairs(pairs),
          mActive(pairs.get_allocator()) {}

    bool Find() {
        for (std::size_t i = mTree.NextActive(0); i < mTree.Count();) {
            std::size_t const edge = mParts.EdgeOf(i);
            mActive.clear();
            for (; i < mParts.End(edge); i = mTree.NextActive(i + 1)) {
                mActive.push_back({i, 0, 0});
            }
            mSteps += mActive.size() * (mSorted.End(edge) - mSorted.Begin(edge) + 8);
            // A tree takes some hundred instructions for each edge and some thousand for each
            // active one, and a step here takes about ten.
            if (mSteps + mPairs.size() > 32 * mTree.Count()) {
                return false;
            }
            PairPartsOf(edge);
        }
        return true;
    }

private:
    void PairPartsOf(std::size_t edge);
    void PairWithPartsOf(std::size_t edge, std::size_t part);
    void AddPair(std::size_t i, std::size_t j) {
        mPairs.push_back({static_cast<std::uint32_t>(std::min(i, j)),
                          static_cast<std::uint32_t>(std::max(i, j))});
    }

    SortedCuts const& mSorted;
    PartsOfEdges const& mParts;
    EdgeTree const& mTree;
    GridLines const& mLines;
    ScratchVector<EdgePair>& mPairs;
    /// A part, and where it is along its edge.
    struct ActivePart {
        std::size_t part;
        std::int64_t begin;
        std::int64_t end;
    };
    ScratchVector<ActivePart> mActive; // parts of one edge
    std::size_t mSteps = 0;
};

void PartPairs::PairPartsOf(std::size_t edge) {
    std::size_t const first = mParts.Begin(edge);
    std::size_t const last = mParts.End(edge) - 1;
    std::size_t const before = mParts.EdgeOf(mTree.BeforeOf(first));
    std::size_t const after = mParts.EdgeOf(mTree.SecondOf(last));
    GridPoint const end = mTree.At(last).b;
    MajorAxis const axis({mLines.points[first], end});
    for (ActivePart& part : mActive) {
        part.begin = axis.Along(mLines.points[part.part]);
        part.end = axis.Along(part.part < last ? mLines.points[part.part + 1] : end);
        PairWithPartsOf(before, part.part);
        PairWithPartsOf(after, part.part);
    }
    for (std::size_t k = mSorted.Begin(edge); k < mSorted.End(edge); ++k) {
        Cut const& cut = mSorted.At(k);
        if (cut.edge == SortedCuts::kNoOther) {
            continue;
        }
        // Neither sum nor difference overflows: no clearance is beyond 2^62.
        std::int64_t const low = cut.along - cut.clearance;
        std::int64_t const high = cut.along + cut.clearance;
        for (ActivePart const& part : mActive) {
            if (part.end >= low && part.begin <= high) {
                PairWithPartsOf(cut.edge, part.part);
            }
        }
    }
}

/// Adds the pairs of a part and those of an edge whose boxes meet its own.
void PartPairs::PairWithPartsOf(std::size_t edge, std::size_t part) {
    std::size_t const begin = mParts.Begin(edge);
    std::size_t const end = mParts.End(edge);
    GridPoint const last = mTree.At(end - 1).b;
    GridEdge const e = mTree.At(part);
    GridBox const box = BoxOf(e);
    // Cuts lie in the box of their edge.
    if (!box.Meets(BoxOf(mLines.points[begin], last))) {
        return;
    }
    if (begin + 1 == end) {
        ++mSteps;
        if (begin != part) {
            AddPair(part, begin);
        }
        return;
    }
    MajorAxis const axis({mLines.points[begin], last});
    std::int64_t const low = std::min(axis.Along(e.a), axis.Along(e.b));
    std::int64_t const high = std::max(axis.Along(e.a), axis.Along(e.b));
    // The parts follow each other along the edge. The first one that can meet ends at `low` or
    // beyond.
    auto const points = mLines.points.begin();
    auto const after = std::lower_bound(
        points + static_cast<std::ptrdiff_t>(begin) + 1, points + static_cast<std::ptrdiff_t>(end),
        low, [&](GridPoint p, std::int64_t at) { return axis.Along(p) < at; });
    for (auto j = static_cast<std::size_t>(after - points) - 1;
         j < end && axis.Along(mLines.points[j]) <= high; ++j) {
        ++mSteps;
        GridPoint const next = j + 1 < end ? mLines.points[j + 1] : last;
        if (j != part && BoxOf(mLines.points[j], next).Meets(box)) {
            AddPair(part, j);
        }
    }
}

} // namespace

bool FindPartPairs(SortedCuts const& sorted, PartsOfEdges const& parts, EdgeTree const& tree,
                   GridLines const& lines, ScratchVector<EdgePair>& pairs) {
    if (PartPairs(sorted, parts, tree, lines, pairs).Find()) {
        return true;
    }
    pairs.clear();
    return false;
}

} // namespace trammel_detail
