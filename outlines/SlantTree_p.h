// SPDX-License-Identifier: MIT

// Boxes that lie aslant, for the nodes of a tree of boxes. Not installed.
//
// Long lines beside each other have boxes that all meet, unless they are level or upright. Boxes
// along the lines are apart.

#ifndef TRAMMEL_SLANTTREE_P_H
#define TRAMMEL_SLANTTREE_P_H

#include "BoxTree_p.h"
#include "Box_p.h"
#include "TPoint.h"

#include <array>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace trammel_detail {

/// A rectangle in any direction that holds some points.
struct SlantBox {
    std::array<TPoint<double>, 4> corners; ///< in order around
    TPoint<double> axis;                   ///< the direction of its long sides, or (0, 0)
    double low = 0.0;                      ///< bounds of Cross(axis, point), with room for rounding
    double high = 0.0;
    bool isThin = true; ///< whether it is much longer than wide

    /// The box of a line.
    static SlantBox Of(TPoint<double> const& a, TPoint<double> const& b) {
        return {{a, b, b, a}, b - a};
    }
};

/// Returns the smaller one of two rectangles around points: one lies along `axis`, the other one
/// along the way from the first point to the farthest.
SlantBox SlantBoxOf(TPoint<double> const* points, std::size_t count, TPoint<double> const& axis);

/// Slanted boxes for the nodes of a tree.
class SlantLevels {
public:
    /// Item i of the tree lies within slants[i]. No coordinate is greater than `extent`, which
    /// squares to a number. O(n log n).
    SlantLevels(BoxTree const& tree, std::vector<SlantBox> const& slants, double extent);

    /// True unless all of one node's slanted box lies on one side of that of another tree's node.
    /// One of the two is thin, or else their boxes tell as much.
    bool MayMeet(std::size_t level, std::size_t node, SlantLevels const& other,
                 std::size_t levelOfOther, std::size_t nodeOfOther) const;

private:
    std::vector<std::vector<SlantBox>> mLevels; // as those of the tree
};

/// So many pairs for each item are not many.
inline constexpr std::size_t kFewPairs = 8;

/// Calls visit(i, j) for each item i of a tree and j of another one whose boxes meet. Where these
/// are many, it leaves out items whose slanted boxes are apart: those of long lines beside each
/// other are, whatever their direction is. slantsOf() and slantsOfOther() return a slanted box for
/// each item.
template <class Slants, class SlantsOfOther, class Visit>
void ForMeetingSlants(BoxTree const& tree, Slants&& slantsOf, BoxTree const& other,
                      SlantsOfOther&& slantsOfOther, double extent, Visit&& visit) {
    if (tree.Levels() == 0 || other.Levels() == 0) {
        return;
    }
    bool const isSame = &tree == &other;
    auto const walk = [&](auto&& mayMeet, auto&& take) {
        if (isSame) {
            tree.ForMeetingPairs(mayMeet, take);
        } else {
            tree.ForMeeting(other, mayMeet, take);
        }
    };
    typedef std::size_t Count;
    Count const few = kFewPairs * (tree.Nodes(0) + other.Nodes(0));
    std::vector<std::pair<Count, Count>> pairs;
    walk([&](Count, Count, Count, Count) { return pairs.size() <= few; },
         [&](Count i, Count j) { pairs.emplace_back(i, j); });
    if (pairs.size() <= few) {
        for (auto const& [i, j] : pairs) {
            visit(i, j);
        }
        return;
    }
    SlantLevels const levels(tree, slantsOf(), extent);
    std::optional<SlantLevels> ofOther;
    if (!isSame) {
        ofOther.emplace(other, slantsOfOther(), extent);
    }
    SlantLevels const& others = isSame ? levels : *ofOther;
    walk([&](Count levelI, Count i, Count levelJ,
             Count j) { return levels.MayMeet(levelI, i, others, levelJ, j); },
         visit);
}

} // namespace trammel_detail

#endif
