// SPDX-License-Identifier: MIT

// The walk of a curve's subdivision tree, shared by the cubic and the quadratic. Not installed.

#ifndef TRAMMEL_SUBDIVISION_P_H
#define TRAMMEL_SUBDIVISION_P_H

#include "TPoint.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>
#include <new>

namespace trammel_detail {

/// The right halves that still have to be walked, the deepest last.
///
/// It holds few of them. Where more are waiting, only their levels are kept for the others. They
/// are found again when their turn comes, by the same divisions from the whole curve on. Where some
/// 33 are waiting for long, a curve costs up to 1 / 17 of its level in further divisions.
template <class Curve> class PendingHalves {
public:
    /// The first level has the depth `depth` - 1.
    PendingHalves(Curve const& whole, int depth) : mDepth(depth) {
        if (depth > kRoom) {
            new (&mDropped.some)
                Dropped{whole, {}}; // what is delivered may change the caller's curve
        }
    }

    /// Returns where to put the right half of a curve of that depth.
    Curve& Push(int depth) {
        if (mCount == kRoom) {
            DropHalf();
        }
        Item& next = *new (&mItems[static_cast<std::size_t>(mCount++)].item) Item;
        next.depth = depth;
        return next.right;
    }
    /// Takes the last one. Returns false where there is none.
    template <class Rules> bool Pop(Curve& right, int& depth, Rules const& rules) {
        if (mCount == 0) {
            if (mDroppedCount == 0) {
                return false;
            }
            FindDropped(rules);
        }
        Item const& last = mItems[static_cast<std::size_t>(--mCount)].item;
        right = last.right;
        depth = last.depth;
        return true;
    }

private:
    static constexpr int kRoom = 32;
    static constexpr int kMostLevels = 1 << 15;

    struct Item {
        Curve right;
        int depth;
    };
    union Slot {
        Item item;
        // Stays unset: setting all slots would take longer than a small curve.
        Slot() {} // NOLINT(modernize-use-equals-default)
    };
    struct Dropped {
        Curve whole;
        std::bitset<kMostLevels> levels; ///< those whose right half is dropped
    };
    union DroppedSlot {
        Dropped some;    ///< set for walks that may become deep
        DroppedSlot() {} // NOLINT(modernize-use-equals-default)
    };

    std::size_t LevelOf(int depth) const { return static_cast<std::size_t>(mDepth - 1 - depth); }

    void DropHalf() {
        for (int i = 0; i < kRoom / 2; ++i) {
            auto const at = static_cast<std::size_t>(i);
            mDropped.some.levels.set(LevelOf(mItems[at].item.depth));
            mItems[at].item = mItems[at + kRoom / 2].item;
        }
        mDroppedCount += kRoom / 2;
        mCount -= kRoom / 2;
    }
    template <class Rules> void FindDropped(Rules const& rules) {
        Curve current = mDropped.some.whole;
        int left = mDroppedCount;
        mDroppedCount = std::max(left - kRoom, 0);
        for (int depth = mDepth - 1; left > 0; --depth) {
            Curve right;
            rules.Divide(current, current, right);
            std::size_t const level = LevelOf(depth);
            if (!mDropped.some.levels.test(level)) {
                current = right; // its left half is walked already
                continue;
            }
            if (left-- <= kRoom) {
                mDropped.some.levels.reset(level);
                Push(depth) = right;
            }
        }
    }

    int mDepth;
    int mCount = 0;
    int mDroppedCount = 0;
    std::array<Slot, kRoom> mItems;
    DroppedSlot mDropped;
};

/// Walks the subdivision tree of `curve` in order and calls deliver(split point) for each division.
///
/// `force` divides the first curve in any case. `depth` counts down by one for each level, the
/// first included, and is at most 32,767. The walk calls these members of the rules:
///
///     Enter()                     for each curve that it comes to
///     Flat(curve)                 next, unless the division is forced or the depth is used up
///     Divide(curve, left, right)  for a curve that is not flat; `left` may be `curve`
///     Delivered()                 after each delivery
///
/// Nothing is allocated, and no call is nested. The walk takes 7 KB of the thread's stack.
template <class Curve, class Rules, class Deliver>
void WalkSubdivision(Curve const& curve, Rules& rules, Deliver& deliver, bool force, int depth) {
    PendingHalves<Curve> pending(curve, depth);
    Curve current = curve;
    for (;;) {
        rules.Enter();
        --depth;
        if (force || (depth > 0 && !rules.Flat(current))) {
            force = false;
            rules.Divide(current, current, pending.Push(depth));
        } else if (pending.Pop(current, depth, rules)) {
            deliver(current.P0);
            rules.Delivered();
        } else {
            return;
        }
    }
}

} // namespace trammel_detail

#endif
