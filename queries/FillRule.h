// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_FILLRULE_H
#define TRAMMEL_FILLRULE_H

namespace trammel {

/// Tells which points an outline contains, from its winding number around them.
enum class FillRule {
    kNonZero, ///< those with a winding number other than 0: SVG's and PDF's default
    kEvenOdd, ///< those with an odd winding number
};

/// True when points with this winding number are inside by `rule`.
constexpr bool IsInside(int winding, FillRule rule) {
    return rule == FillRule::kNonZero ? winding != 0 : winding % 2 != 0;
}

} // namespace trammel

#endif
