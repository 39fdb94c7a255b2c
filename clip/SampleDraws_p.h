// SPDX-License-Identifier: MIT

// Numbers for samples of edges. Not installed.

#ifndef TRAMMEL_SAMPLEDRAWS_P_H
#define TRAMMEL_SAMPLEDRAWS_P_H

#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// Draws numbers by a linear congruential generator. All draws from a new one are the same each
/// time, so that an operation takes the same steps again.
class SampleDraws {
public:
    /// Returns a number below `count`, which is at most 2^32.
    std::size_t Below(std::size_t count) {
        mState = mState * 1664525U + 1013904223U;
        return static_cast<std::size_t>(std::uint64_t{mState} * count >> 32);
    }

private:
    std::uint32_t mState = 1;
};

} // namespace trammel_detail

#endif
