// SPDX-License-Identifier: MIT

// The walk of a curve's subdivision tree, shared by the cubic and the quadratic. Not installed.

#ifndef TRAMMEL_SUBDIVISION_P_H
#define TRAMMEL_SUBDIVISION_P_H

#include "TPoint.h"

#include <array>
#include <cstddef>
#include <new>

namespace trammel_detail {

/// Walks the subdivision tree of `curve` in order and calls deliver(split point) for each division.
///
/// `force` divides the first curve in any case. `depth` counts down by one for each level, the
/// first included. The walk calls these members of the rules:
///
///     Enter()                     for each curve that it comes to
///     Flat(curve)                 next, unless the division is forced or the depth is used up
///     Divide(curve, left, right)  for a curve that is not flat; `left` may be `curve`
///     Delivered()                 after each delivery
///
/// The right halves that still have to be walked wait on a small stack. A walk that goes deeper
/// than that continues in a nested call, one for each 33 levels. Nothing is allocated. A call for
/// cubics keeps 2.3 KB of waiting halves, so a walk to the largest depth, 32,767, takes some 3 MB
/// of the thread's stack.
template <class Curve, class Rules, class Deliver>
void WalkSubdivision(Curve const& curve, Rules& rules, Deliver& deliver, bool force, int depth) {
    struct Pending {
        Curve right;
        int depth;
    };
    union Slot {
        Pending pending;
        // Stays unset: setting all slots would take longer than a small curve.
        Slot() {} // NOLINT(modernize-use-equals-default)
    };
    constexpr std::size_t kRoom = 32;
    std::array<Slot, kRoom> slots;
    std::size_t count = 0;
    Curve current = curve;
    for (;;) {
        rules.Enter();
        --depth;
        if (force || (depth > 0 && !rules.Flat(current))) {
            force = false;
            if (count == kRoom) {
                Curve left;
                Curve right;
                rules.Divide(current, left, right);
                WalkSubdivision(left, rules, deliver, false, depth);
                deliver(right.P0);
                rules.Delivered();
                current = right;
            } else {
                Pending& next = *new (&slots[count++].pending) Pending;
                rules.Divide(current, current, next.right);
                next.depth = depth;
            }
        } else if (count > 0) {
            Pending const& next = slots[--count].pending;
            current = next.right;
            depth = next.depth;
            deliver(current.P0);
            rules.Delivered();
        } else {
            return;
        }
    }
}

} // namespace trammel_detail

#endif
