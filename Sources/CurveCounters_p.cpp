// SPDX-License-Identifier: MIT

#include "CurveCounters_p.h"

#include <algorithm>
#include <atomic>

namespace trammel_detail {

namespace {

/// What taking the turn costs. A thread earns 1 with each call. The lines of the turn and of the
/// counters then move to another processor's cache, which takes the time of some 20 short calls.
constexpr int kPrice = 512;
constexpr int kMostSavings = 16 * kPrice;

/// The thread whose turn it is, by the address of its savings. It is alone in its cache line, as
/// all threads read it with each call.
struct alignas(128) Turn {
    std::atomic<int const*> thread{nullptr};
};

Turn gTurn;

thread_local int tSavings = kMostSavings;

} // namespace

bool TakesTurnToCount() noexcept {
    int& savings = tSavings;
    savings = std::min(savings + 1, kMostSavings);
    if (gTurn.thread.load(std::memory_order_relaxed) == &savings) {
        return true;
    }
    if (savings < kPrice) {
        return false;
    }
    savings -= kPrice;
    gTurn.thread.store(&savings, std::memory_order_relaxed);
    return true;
}

} // namespace trammel_detail
