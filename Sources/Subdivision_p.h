// SPDX-License-Identifier: MIT

// The walk of a curve's subdivision tree, shared by the cubic and the quadratic. Not installed.

#ifndef TRAMMEL_SUBDIVISION_P_H
#define TRAMMEL_SUBDIVISION_P_H

#include "TPoint.h"

#include <array>
#include <cstddef>
#include <new>

namespace trammel_detail {

/// Walks the subdivision tree of `curve` in order, calling deliver(split point) for each division.
///
/// Of a Rules object it asks, for each curve that it comes to, first Enter() and then, unless the
/// division is forced or the depth used up, Flat(curve); Divide(curve, left, right), where `left`
/// may be `curve`; and Delivered() after each delivery. `force` divides the first curve in any
/// case; `depth` counts down by one for each level, the first included.
///
/// The right halves that still have to be walked wait on a small stack. A walk that goes deeper
/// than that continues in a nested call, so that even the largest depth neither allocates nor
/// exhausts the thread's stack.
template <class Curve, class Rules, class Deliver>
void WalkSubdivision(Curve const& curve, Rules& rules, Deliver& deliver, bool force, int depth) {
    struct Pending {
        Curve right;
        int depth;
    };
    union Slot {
        Pending pending;
        // Stays unset: setting all of them would take longer than a small curve.
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

/// The tolerance at which a cubic's length is measured, in coordinate units: fixed, so that a
/// length does not depend on how finely an application happens to draw.
inline constexpr double kLengthError = 0.001;

/// The step of the parameter to which a fraction of a cubic's length is resolved.
inline constexpr double kPercentTolerance = 0.001;

/// Installs a curve class's flatness tolerance for as long as it lives.
template <class Curve> class CurveErrorScope {
public:
    explicit CurveErrorScope(double error) : mOld(Curve::CurveError()) {
        Curve::SetCurveError(error);
    }
    ~CurveErrorScope() { Curve::SetCurveError(mOld); }
    CurveErrorScope(CurveErrorScope const&) = delete;
    CurveErrorScope& operator=(CurveErrorScope const&) = delete;

private:
    double mOld;
};

} // namespace trammel_detail

#endif
