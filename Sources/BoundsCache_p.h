// SPDX-License-Identifier: MIT

// Cached bounds that const members store, for any number of threads at once. Not installed.
//
// The fields are those of public records, which have no room for a lock. Threads that store the
// bounds of one object at the same time store the same ones, as they found the same points.

#ifndef TRAMMEL_BOUNDSCACHE_P_H
#define TRAMMEL_BOUNDSCACHE_P_H

#include "SingleThreaded_p.h"
#include "TRect.h"

#include <atomic>
#include <cstdint>
#include <mutex>

namespace trammel_detail {

/// Guards the cached bounds of some objects. There is a table of guards for all of the library.
struct alignas(128) BoundsGuard {
    std::mutex mutex;                 ///< held by the thread that stores
    std::atomic<unsigned> changes{0}; ///< odd while a KeptBounds is being stored

    /// Returns the guard of the bounds at this address.
    static BoundsGuard& Of(void const* bounds);
};

/// Bounds that are stored once, and then stay until a member that is not const drops them, or
/// TPolygon::CalcBounds finds other ones. A flag tells whether they are there.
///
/// Reading is as fast as without threads: the flag is set last, and the bounds are not written
/// while it is set and threads share the object.
class OnceBounds {
public:
    OnceBounds(TRect<double>& bounds, std::int16_t& valid) : mBounds(bounds), mValid(valid) {}

    /// True when the bounds are there. They may then be read.
    bool Valid() const { return __atomic_load_n(&mValid, __ATOMIC_ACQUIRE) != 0; }
    /// Stores the bounds and sets the flag.
    void Store(TRect<double> const& bounds) const {
        if (SingleThreaded()) {
            Set(bounds);
        } else {
            StoreLocked(mBounds, mValid, bounds);
        }
    }
    /// Copies bounds and flag as they are.
    void CopyTo(TRect<double>& bounds, std::int16_t& valid) const;

private:
    void Set(TRect<double> const& bounds) const {
        mBounds = bounds;
        __atomic_store_n(&mValid, std::int16_t{1}, __ATOMIC_RELEASE);
    }
    static void StoreLocked(TRect<double>& kept, std::int16_t& valid, TRect<double> const& bounds);

    TRect<double>& mBounds;
    std::int16_t& mValid;
};

/// Bounds that const members also drop or replace, with a flag or without. They are read and stored
/// all together.
///
/// Reading takes no lock unless a thread stores at the same time. A count of the changes tells
/// that. Source: Boehm, "Can seqlocks get along with programming language memory models?" (2012).
class KeptBounds {
public:
    struct State {
        TRect<double> bounds;
        std::int16_t valid = 0; ///< the flag; 0 where there is none
    };

    /// \param valid null for bounds without a flag
    KeptBounds(TRect<double>& bounds, std::int16_t* valid) : mBounds(bounds), mValid(valid) {}

    State Load() const {
        std::atomic<unsigned> const& changes = BoundsGuard::Of(&mBounds).changes;
        unsigned const before = changes.load(std::memory_order_acquire);
        State const state = LoadParts(mBounds, mValid);
        bool const whole = before % 2 == 0 && changes.load(std::memory_order_relaxed) == before;
        return whole ? state : LoadLocked(mBounds, mValid);
    }
    /// Stores the state, unless it is there already. Of the bounds, the right side comes last.
    void Store(State const& state) const;

private:
    static State LoadParts(TRect<double> const& bounds, std::int16_t const* valid) {
        State state;
        if (valid != nullptr) {
            state.valid = __atomic_load_n(valid, __ATOMIC_ACQUIRE);
        }
        __atomic_load(&bounds.top, &state.bounds.top, __ATOMIC_ACQUIRE);
        __atomic_load(&bounds.left, &state.bounds.left, __ATOMIC_ACQUIRE);
        __atomic_load(&bounds.bottom, &state.bounds.bottom, __ATOMIC_ACQUIRE);
        __atomic_load(&bounds.right, &state.bounds.right, __ATOMIC_ACQUIRE);
        return state;
    }
    static State LoadLocked(TRect<double> const& bounds, std::int16_t const* valid);

    TRect<double>& mBounds;
    std::int16_t* mValid;
};

} // namespace trammel_detail

#endif
