// SPDX-License-Identifier: MIT

// A tree of boxes, and the pairs of boxes that meet. Not installed.

#ifndef TRAMMEL_BOXTREE_P_H
#define TRAMMEL_BOXTREE_P_H

#include "Box_p.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace trammel_detail {

/// Appends levels of boxes, each around `fan` boxes of the level below, up to one that has one box.
/// There is a level with boxes already. O(n).
void AddLevelsAbove(std::vector<std::vector<Box<double>>>& levels, std::size_t fan);

/// A tree over boxes, which are ordered along Morton's curve and then put together by fours. Boxes
/// are finite. O(n log n) to build; a walk costs O(n + k) for boxes of about one size that are
/// spread out, where k pairs meet.
class BoxTree {
public:
    explicit BoxTree(std::vector<Box<double>> const& boxes);

    /// Calls visit(i, j) for each box i of this tree and j of the other one that meet.
    template <class Visit> void ForMeeting(BoxTree const& other, Visit&& visit) const {
        ForMeeting(other, AllMay(), visit);
    }
    /// Leaves out those below two nodes for which mayMeet(level, node, level of the other, node of
    /// the other) is false. Nodes are asked only if their boxes meet.
    template <class Filter, class Visit>
    void ForMeeting(BoxTree const& other, Filter&& mayMeet, Visit&& visit) const {
        if (!mOrder.empty() && !other.mOrder.empty()) {
            Walk(other, Pair{mLevels.size() - 1, 0, other.mLevels.size() - 1, 0}, mayMeet, visit);
        }
    }
    /// Calls visit(i, j) with i < j for each two boxes of this tree that meet.
    template <class Visit> void ForMeetingPairs(Visit&& visit) const {
        ForMeetingPairs(AllMay(), visit);
    }
    /// Leaves out those below two nodes for which mayMeet is false, as above.
    template <class Filter, class Visit>
    void ForMeetingPairs(Filter&& mayMeet, Visit&& visit) const {
        auto const inOrder = [&](std::size_t i, std::size_t j) {
            visit(std::min(i, j), std::max(i, j));
        };
        // Each node's children among themselves. Pairs of distinct nodes are walked as those of two
        // trees, and each comes up once, below the node that has both.
        for (std::size_t level = 1; level < mLevels.size(); ++level) {
            for (std::size_t node = 0; node < mLevels[level].size(); ++node) {
                std::size_t const end = EndOf(level, node);
                for (std::size_t k = node * kFan; k < end; ++k) {
                    for (std::size_t l = k + 1; l < end; ++l) {
                        Walk(*this, Pair{level - 1, k, level - 1, l}, mayMeet, inOrder);
                    }
                }
            }
        }
    }

    static constexpr std::size_t kFan = 4; ///< children of a node

    /// The nodes lie on levels. Level 0 has the boxes, the last level has one node.
    std::size_t Levels() const { return mLevels.size(); }
    std::size_t Nodes(std::size_t level) const { return mLevels[level].size(); }
    /// Returns the number of the box of a node on level 0.
    std::size_t NumberOf(std::size_t node) const { return mOrder[node]; }
    /// Returns the end of the children of a node, the first of which is kFan * node.
    std::size_t EndOf(std::size_t level, std::size_t node) const {
        return std::min(node * kFan + kFan, mLevels[level - 1].size());
    }

private:
    /// A filter that lets all nodes pass.
    struct AllMay {
        bool operator()(std::size_t, std::size_t, std::size_t, std::size_t) const { return true; }
    };

    /// A node of one tree and a node of another one.
    struct Pair {
        std::size_t levelI;
        std::size_t i;
        std::size_t levelJ;
        std::size_t j;
    };
    /// Each step goes down one level in one tree and leaves three siblings behind. A tree of 2^64
    /// boxes has 33 levels.
    static constexpr std::size_t kMostOpen = std::size_t{2} * 33 * kFan;

    template <class Filter, class Visit>
    void Walk(BoxTree const& other, Pair const& root, Filter&& mayMeet, Visit&& visit) const {
        std::array<Pair, kMostOpen> open; // not initialised
        std::size_t count = 0;
        open[count++] = root;
        while (count > 0) {
            Pair const p = open[--count];
            if (!mLevels[p.levelI][p.i].Meets(other.mLevels[p.levelJ][p.j]) ||
                !mayMeet(p.levelI, p.i, p.levelJ, p.j)) {
                continue;
            }
            if (p.levelI == 0 && p.levelJ == 0) {
                visit(mOrder[p.i], other.mOrder[p.j]);
            } else if (p.levelI >= p.levelJ) {
                for (std::size_t k = p.i * kFan; k < EndOf(p.levelI, p.i); ++k) {
                    open[count++] = {p.levelI - 1, k, p.levelJ, p.j};
                }
            } else {
                for (std::size_t k = p.j * kFan; k < other.EndOf(p.levelJ, p.j); ++k) {
                    open[count++] = {p.levelI, p.i, p.levelJ - 1, k};
                }
            }
        }
    }

    std::vector<std::size_t> mOrder;               ///< the numbers of the boxes on level 0
    std::vector<std::vector<Box<double>>> mLevels; ///< level 0 has the boxes, the last one node
};

} // namespace trammel_detail

#endif
