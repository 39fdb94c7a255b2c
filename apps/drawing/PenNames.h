// SPDX-License-Identifier: MIT

// The words of SVG for joins and caps, and its numbers for opacity: in drawings and in options.

#ifndef TRAMMEL_APP_PENNAMES_H
#define TRAMMEL_APP_PENNAMES_H

#include "Numbers.h"
#include "SvgAttributes.h"

#include <trammel/StrokeStyle.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tool {

/// In the order of the enumerations.
inline constexpr std::array<char const*, 4> kJoinNames = {"miter", "miter-clip", "round", "bevel"};
inline constexpr std::array<char const*, 3> kCapNames = {"butt", "square", "round"};
static_assert(static_cast<int>(trammel::StrokeJoin::kMiter) == 0 &&
              static_cast<int>(trammel::StrokeJoin::kMiterClip) == 1 &&
              static_cast<int>(trammel::StrokeJoin::kRound) == 2 &&
              static_cast<int>(trammel::StrokeJoin::kBevel) == 3);
static_assert(static_cast<int>(trammel::StrokeCap::kButt) == 0 &&
              static_cast<int>(trammel::StrokeCap::kSquare) == 1 &&
              static_cast<int>(trammel::StrokeCap::kRound) == 2);

inline char const* NameOf(trammel::StrokeJoin join) {
    return kJoinNames[static_cast<std::size_t>(join)];
}
inline char const* NameOf(trammel::StrokeCap cap) {
    return kCapNames[static_cast<std::size_t>(cap)];
}

/// Returns the join of this name in small letters; none for another word.
inline std::optional<trammel::StrokeJoin> JoinNamed(std::string_view name) {
    auto const found = std::find(kJoinNames.begin(), kJoinNames.end(), name);
    return found == kJoinNames.end()
               ? std::nullopt
               : std::optional(static_cast<trammel::StrokeJoin>(found - kJoinNames.begin()));
}
/// Returns the cap of this name in small letters; none for another word.
inline std::optional<trammel::StrokeCap> CapNamed(std::string_view name) {
    auto const found = std::find(kCapNames.begin(), kCapNames.end(), name);
    return found == kCapNames.end()
               ? std::nullopt
               : std::optional(static_cast<trammel::StrokeCap>(found - kCapNames.begin()));
}

/// Returns an opacity, a number or a percentage, as a number from 0 to 1; 1 for anything else.
inline double OpacityOf(std::string_view text) {
    if (text.empty()) { // as of most elements, and an exception would take longer than all the rest
        return 1.0;
    }
    try {
        Length const opacity = ParseLength(text);
        if (opacity.unit.empty() || opacity.unit == "%") {
            double const whole = opacity.unit.empty() ? 1.0 : 100.0;
            return std::min(std::max(opacity.number / whole, 0.0), 1.0);
        }
    } catch (TextError const&) { // as if it were not there
    }
    return 1.0;
}

} // namespace tool

#endif
