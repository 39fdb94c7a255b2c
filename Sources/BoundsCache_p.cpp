// SPDX-License-Identifier: MIT

#include "BoundsCache_p.h"

#include "SingleThreaded_p.h"

#include <cstring>

namespace trammel_detail {

namespace {

BoundsGuard gGuards[64];

/// Takes the lock of a guard, where there are threads.
std::unique_lock<std::mutex> Lock(BoundsGuard& guard) {
    return SingleThreaded() ? std::unique_lock<std::mutex>()
                            : std::unique_lock<std::mutex>(guard.mutex);
}

/// True when all bits are the same. Comparing the fields would not tell 0 from -0.
bool Same(TRect<double> const& a, TRect<double> const& b) {
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): see above
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

BoundsGuard& BoundsGuard::Of(void const* bounds) {
    auto const address = reinterpret_cast<std::uintptr_t>(bounds);
    return gGuards[(address >> 5U ^ address >> 11U) % 64];
}

void OnceBounds::StoreLocked(TRect<double>& kept, std::int16_t& valid,
                             TRect<double> const& bounds) {
    std::lock_guard<std::mutex> const lock(BoundsGuard::Of(&kept).mutex);
    OnceBounds const once(kept, valid);
    if (!once.Valid() || !Same(kept, bounds)) {
        once.Set(bounds);
    }
}

void OnceBounds::CopyTo(TRect<double>& bounds, std::int16_t& valid) const {
    std::unique_lock<std::mutex> const lock =
        Valid() ? std::unique_lock<std::mutex>() : Lock(BoundsGuard::Of(&mBounds));
    valid = __atomic_load_n(&mValid, __ATOMIC_ACQUIRE);
    bounds = mBounds;
}

KeptBounds::State KeptBounds::LoadLocked(TRect<double> const& bounds, std::int16_t const* valid) {
    std::lock_guard<std::mutex> const lock(BoundsGuard::Of(&bounds).mutex);
    return LoadParts(bounds, valid);
}

void KeptBounds::Store(State const& state) const {
    BoundsGuard& guard = BoundsGuard::Of(&mBounds);
    std::unique_lock<std::mutex> const lock = Lock(guard);
    State const before = LoadParts(mBounds, mValid);
    if (before.valid == state.valid && Same(before.bounds, state.bounds)) {
        return;
    }
    unsigned const changes = guard.changes.load(std::memory_order_relaxed);
    guard.changes.store(changes + 1, std::memory_order_relaxed);
    TRect<double> bounds = state.bounds;
    __atomic_store(&mBounds.top, &bounds.top, __ATOMIC_RELEASE);
    __atomic_store(&mBounds.left, &bounds.left, __ATOMIC_RELEASE);
    __atomic_store(&mBounds.bottom, &bounds.bottom, __ATOMIC_RELEASE);
    __atomic_store(&mBounds.right, &bounds.right, __ATOMIC_RELEASE);
    if (mValid != nullptr) {
        __atomic_store_n(mValid, state.valid, __ATOMIC_RELEASE);
    }
    guard.changes.store(changes + 2, std::memory_order_release);
}

} // namespace trammel_detail
