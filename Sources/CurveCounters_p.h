// SPDX-License-Identifier: MIT

// The counters of curves, for all threads. Not installed.
//
// With one thread, the counters stand after each call as the class headers say. With several, only
// one thread writes them at a time, and what the others do stays uncounted. So they need not wait
// for each other's caches, which would take longer than flattening a short curve. All reads and
// writes are atomic, as the turn may change while the former thread still writes.

#ifndef TRAMMEL_CURVECOUNTERS_P_H
#define TRAMMEL_CURVECOUNTERS_P_H

#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// Each counter begins a line of the processors' caches, so no two of them are in one line.
inline constexpr std::size_t kCounterLine = 64;

/// True when it is this thread's turn to count. To be asked once for each call of the library that
/// generates points.
///
/// A thread keeps its turn until another one takes it. Taking it costs what 512 calls
/// earn, and a thread begins with what 16 turns cost. So threads that work one after the other
/// count every call as long as they change turns seldom.
bool TakesTurnToCount() noexcept;

/// The counter, read and written as one piece. A plain variable in the public header, it cannot be
/// of the standard library's atomic type.
class SharedCounter {
public:
    explicit SharedCounter(std::int32_t& counter) : mCounter(counter) {}

    std::int32_t Value() const { return __atomic_load_n(&mCounter, __ATOMIC_RELAXED); }
    void Set(std::int32_t value) const { __atomic_store_n(&mCounter, value, __ATOMIC_RELAXED); }
    /// Adds, and wraps.
    void Add(std::int64_t count) const {
        Set(static_cast<std::int32_t>(static_cast<std::uint32_t>(Value() + count)));
    }

private:
    std::int32_t& mCounter;
};

} // namespace trammel_detail

#endif
