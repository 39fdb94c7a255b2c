// SPDX-License-Identifier: MIT

// Pieces in place of stretches of a map or a drawing, and the rounds that divide those which meet
// others. Not installed.

#ifndef TRAMMEL_PIECEMARKS_P_H
#define TRAMMEL_PIECEMARKS_P_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace trammel_detail {

/// A piece by the number of its chain (an arc, a run) and its own.
struct PiecePlace {
    std::size_t chain;
    std::size_t piece;
};

/// Which pieces of some chains are to be divided.
class PieceMarks {
public:
    void Clear() {
        mMarks.clear();
        mAny = false;
    }
    /// Adds a chain of so many pieces, none of them marked.
    void AddChain(std::size_t pieces) { mMarks.emplace_back(pieces, char{0}); }
    void Mark(PiecePlace const& place) {
        mMarks[place.chain][place.piece] = 1;
        mAny = true;
    }
    void MarkAll() {
        for (std::vector<char>& marks : mMarks) {
            std::fill(marks.begin(), marks.end(), char{1});
        }
    }
    bool Any() const { return mAny; }
    /// Returns 1 for each marked piece of a chain, and 0 for the others.
    std::vector<char> const& Of(std::size_t chain) const { return mMarks[chain]; }
    std::size_t Chains() const { return mMarks.size(); }

private:
    std::vector<std::vector<char>> mMarks;
    bool mAny = false;
};

/// Rounds in which marked pieces are divided, before they are replaced by all that they stand for.
inline constexpr int kDividingRounds = 12;
/// The last round marks all pieces.
inline constexpr int kMostMarkingRounds = 24;

/// Divides pieces until none is marked. find(marks) adds the chains and marks pieces of them;
/// divide(chain, marks of its pieces, whole) changes one chain.
template <class Find, class Divide> void DivideWhileMarked(Find&& find, Divide&& divide) {
    PieceMarks marks;
    for (int round = 1; round <= kMostMarkingRounds; ++round) {
        marks.Clear();
        find(marks);
        if (!marks.Any()) {
            return;
        }
        if (round == kMostMarkingRounds) {
            marks.MarkAll();
        }
        for (std::size_t i = 0; i < marks.Chains(); ++i) {
            divide(i, marks.Of(i), round > kDividingRounds);
        }
    }
}

} // namespace trammel_detail

#endif
