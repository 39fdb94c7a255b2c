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
          mActive(pairs.get_allocator()) {
        std::size_t const kUsual = 64;
        mPairs.reserve(std::min(kUsual, 2 * mLines.points.size()));
    }

    bool Find() {
        std::size_t edge = 0;
        for (std::size_t i = mTree.NextActive(0); i < mTree.Count();) {
            while (mParts.End(edge) <= i) {
                ++edge;
            }
            mActive.clear();
            for (; i < mParts.End(edge); i = mTree.NextActive(i + 1)) {
                GridEdge const e = mTree.At(i);
                mActive.emplace_back(i, e, BoxOf(e));
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
    /// A part of an edge.
    struct ActivePart {
        std::size_t part;
        GridEdge at;
        GridBox box;
    };

    void PairPartsOf(std::size_t edge);
    void PairWithPartsOf(std::size_t edge, ActivePart const& part);
    void AddPair(std::size_t i, std::size_t j) {
        // Made in place: to copy what was just written in two pieces takes long.
        mPairs.emplace_back(static_cast<std::uint32_t>(std::min(i, j)),
                            static_cast<std::uint32_t>(std::max(i, j)));
    }
    /// Returns the edge of a part that follows those of `edge` on its line or comes before them.
    std::size_t EdgeOfNext(std::size_t part, std::size_t edge) const {
        return part == mParts.End(edge)         ? edge + 1
               : part + 1 == mParts.Begin(edge) ? edge - 1
                                                : mParts.EdgeOf(part);
    }

    SortedCuts const& mSorted;
    PartsOfEdges const& mParts;
    EdgeTree const& mTree;
    GridLines const& mLines;
    ScratchVector<EdgePair>& mPairs;
    ScratchVector<ActivePart> mActive; // parts of one edge
    std::size_t mSteps = 0;
};

void PartPairs::PairPartsOf(std::size_t edge) {
    std::size_t const first = mParts.Begin(edge);
    std::size_t const last = mParts.End(edge) - 1;
    std::size_t const before = EdgeOfNext(mTree.BeforeOf(first), edge);
    std::size_t const after = EdgeOfNext(mTree.SecondOf(last), edge);
    MajorAxis const axis({mLines.points[first], mTree.At(last).b});
    Cut const* const firstCut = &mSorted.At(0) + mSorted.Begin(edge);
    Cut const* const endCut = &mSorted.At(0) + mSorted.End(edge);
    for (ActivePart const& part : mActive) {
        std::int64_t const begin = axis.Along(part.at.a);
        std::int64_t const end = axis.Along(part.at.b);
        PairWithPartsOf(before, part);
        PairWithPartsOf(after, part);
        for (Cut const* cut = firstCut; cut < endCut; ++cut) {
            // Neither sum nor difference overflows: no clearance is beyond 2^62.
            if (cut->along + cut->clearance >= begin && cut->along - cut->clearance <= end &&
                cut->edge != SortedCuts::kNoOther) {
                PairWithPartsOf(cut->edge, part);
            }
        }
    }
}

/// Adds the pairs of a part and those of an edge whose boxes meet its own.
void PartPairs::PairWithPartsOf(std::size_t edge, ActivePart const& part) {
    std::size_t const begin = mParts.Begin(edge);
    std::size_t const end = mParts.End(edge);
    GridEdge const& e = part.at;
    GridBox const& box = part.box;
    GridPoint const first = mLines.points[begin];
    GridPoint const last = mLines.points[mTree.SecondOf(end - 1)];
    // Cuts lie in the box of their edge.
    if (!box.Meets(BoxOf(first, last))) {
        return;
    }
    if (begin + 1 == end) {
        ++mSteps;
        if (begin != part.part) {
            AddPair(part.part, begin);
        }
        return;
    }
    MajorAxis const axis({first, last});
    std::int64_t const low = std::min(axis.Along(e.a), axis.Along(e.b));
    std::int64_t const high = std::max(axis.Along(e.a), axis.Along(e.b));
    // The parts follow each other along the edge. The first one that can meet ends at `low` or
    // beyond.
    GridPoint const* const points = mLines.points.data();
    std::size_t j = begin;
    for (std::size_t rest = end - begin; rest > 1;) {
        std::size_t const half = rest / 2;
        j += axis.Along(points[j + half]) < low ? half : 0;
        rest -= half;
    }
    for (; j < end && axis.Along(points[j]) <= high; ++j) {
        ++mSteps;
        GridPoint const next = j + 1 < end ? points[j + 1] : last;
        if (j != part.part && BoxOf(points[j], next).Meets(box)) {
            AddPair(part.part, j);
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
