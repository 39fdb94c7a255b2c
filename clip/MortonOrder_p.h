// SPDX-License-Identifier: MIT

// Morton codes: one number for a point of the grid. Points with near codes are mostly near each
// other. Not installed.
#ifndef TRAMMEL_MORTONORDER_P_H
#define TRAMMEL_MORTONORDER_P_H

#include "Grid_p.h"

#include <cstdint>

namespace trammel_detail {

/// The number of bits of MortonCode().
inline constexpr int kMortonBits = 64;

/// Returns the position of the point along Morton's curve, also called Z-order: the bits of the
/// upper halves of x and y in turns.
inline std::uint64_t MortonCode(GridPoint p) {
    // Puts a zero before each bit of the upper half of a coordinate.
    auto const spread = [](std::int64_t v) {
        std::int64_t const limit = std::int64_t{1} << 60;
        std::uint64_t bits =
            static_cast<std::uint64_t>(v < limit ? v + limit : 2 * limit - 1) >> 29;
        bits = (bits | bits << 16) & 0x0000FFFF0000FFFF;
        bits = (bits | bits << 8) & 0x00FF00FF00FF00FF;
        bits = (bits | bits << 4) & 0x0F0F0F0F0F0F0F0F;
        bits = (bits | bits << 2) & 0x3333333333333333;
        return (bits | bits << 1) & 0x5555555555555555;
    };
    return spread(p.x) << 1 | spread(p.y);
}

} // namespace trammel_detail

#endif
