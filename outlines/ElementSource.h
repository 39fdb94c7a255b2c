// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_ELEMENTSOURCE_H
#define TRAMMEL_ELEMENTSOURCE_H

#include <cstddef>
#include <limits>

namespace trammel {

/// Where an element of a result comes from.
struct ElementSource {
    /// Stands for no operand or no segment.
    static constexpr std::size_t kNoSource = std::numeric_limits<std::size_t>::max();

    /// The number of the operand: 0 for the first one, 1 for the second one. It is kNoSource for a
    /// move, for a close that draws nothing, and for a line put in at a contact.
    std::size_t operand = kNoSource;
    /// The number of the segment in the operand, in the order of PathSegments.h. It is kNoSource
    /// for the line that closes an open subpath. A close in a subpath without a move stands for the
    /// line back to where the subpath begins.
    std::size_t element = kNoSource;
    double from = 0.0; ///< the parameters on that segment, from 0 to 1
    double to = 0.0;   ///< less than `from` where the element runs the other way
};

} // namespace trammel

#endif
