// SPDX-License-Identifier: MIT

// Boxes of the stretches of an arc, and the edges of two stretches that may meet. Not installed.

#ifndef TRAMMEL_ARCBOXES_P_H
#define TRAMMEL_ARCBOXES_P_H

#include "BoxTree_p.h"
#include "Box_p.h"
#include "TPoint.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace trammel_detail {

/// The edges of an arc in order, and boxes of 8, 64 and more edges that follow each other.
class ArcBoxes {
public:
    /// `ids` are the numbers of vertices. O(n).
    ArcBoxes(std::vector<TPoint<double>> const& vertices, std::vector<std::size_t> const& ids) {
        mLevels.emplace_back();
        for (std::size_t i = 0; i + 1 < ids.size(); ++i) {
            TPoint<double> const& a = vertices[ids[i]];
            TPoint<double> const& b = vertices[ids[i + 1]];
            mLevels[0].push_back(Box<double>::Of(a.h, a.v, b.h, b.v));
        }
        AddLevelsAbove(mLevels, kFan);
    }

    /// Edges from `from` on and before `to`.
    struct Stretch {
        std::size_t from;
        std::size_t to;
    };
    /// Returns whether meet(edge, edge of the other) is true for any two edges of two stretches
    /// whose boxes meet. False where `most` pairs of boxes do not suffice to find them.
    template <class Meet>
    bool AnyMeets(Stretch const& stretch, ArcBoxes const& other, Stretch const& stretchOfOther,
                  std::size_t most, Meet&& meet) const {
        std::vector<Pair> open = {{mLevels.size() - 1, 0, other.mLevels.size() - 1, 0}};
        for (; !open.empty() && most > 0; --most) {
            Pair const p = open.back();
            open.pop_back();
            if (!Overlaps(p.levelI, p.i, stretch) || !Overlaps(p.levelJ, p.j, stretchOfOther) ||
                !mLevels[p.levelI][p.i].Meets(other.mLevels[p.levelJ][p.j])) {
                continue;
            }
            if (p.levelI == 0 && p.levelJ == 0) {
                if (meet(p.i, p.j)) {
                    return true;
                }
            } else if (p.levelI >= p.levelJ) {
                std::size_t const end = std::min(p.i * kFan + kFan, mLevels[p.levelI - 1].size());
                for (std::size_t k = p.i * kFan; k < end; ++k) {
                    open.push_back({p.levelI - 1, k, p.levelJ, p.j});
                }
            } else {
                std::size_t const end =
                    std::min(p.j * kFan + kFan, other.mLevels[p.levelJ - 1].size());
                for (std::size_t k = p.j * kFan; k < end; ++k) {
                    open.push_back({p.levelI, p.i, p.levelJ - 1, k});
                }
            }
        }
        return false;
    }

private:
    static constexpr std::size_t kFan = 8;
    static constexpr std::size_t kFanBits = 3;

    /// A node of this tree and a node of another one.
    struct Pair {
        std::size_t levelI;
        std::size_t i;
        std::size_t levelJ;
        std::size_t j;
    };

    /// True when a node has edges of the stretch.
    static bool Overlaps(std::size_t level, std::size_t node, Stretch const& stretch) {
        return node << kFanBits * level < stretch.to &&
               (node + 1) << kFanBits * level > stretch.from;
    }

    std::vector<std::vector<Box<double>>> mLevels; // level 0 has the edges, the last one node
};

} // namespace trammel_detail

#endif
