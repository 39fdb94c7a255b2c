// SPDX-License-Identifier: MIT

// The inputs of the boolean operations: pairs of polygons of a kind and about a size, the same in
// every run.

#ifndef TRAMMEL_OPERANDS_H
#define TRAMMEL_OPERANDS_H

#include <trammel/TPoint.h>

#include <cstddef>
#include <string>
#include <vector>

namespace operands {

/// A closed contour, the first vertex not repeated.
using Ring = std::vector<TPoint<double>>;

/// An area with holes. Its holes cross neither each other nor the outer contour.
struct Area {
    Ring outer;
    std::vector<Ring> holes;
};

/// One operand, as contours read by the even-odd rule, and as areas for libraries that need them.
struct Operand {
    std::vector<Ring> rings;
    std::vector<Area> areas; ///< the areas of the contours; empty if these cross themselves

    /// The number of vertices in all contours.
    std::size_t Size() const;
};

struct Pair {
    Operand first;
    Operand second;
    bool crossing = false;  ///< the contours cross themselves, so that there are no areas
    std::string whyMissing; ///< not empty: there is no such pair here, for this reason
};

enum class Kind {
    kGlyphs, ///< two pages of DejaVu Sans, flattened, one moved against the other
    kMap,    ///< a country, or all land, and the same moved by a hundredth of its extent
    kWalk,   ///< closed random walks, which cross themselves some three times at each vertex
    kRandom, ///< polygons of random vertices: the crossings grow with the square of their number
    kCombs,  ///< two simple combs at right angles: a quarter of the square of their vertices
    kSaws,   ///< two simple saws with long teeth side by side: few crossings, but wide sweep lines
    kHatch,  ///< slanted bars side by side across a page of glyphs: their boxes all meet
    kGrid,   ///< slanted bars across slanted bars: the crossings grow with the square
    kStar,   ///< one ring whose edges all cross each other, and a triangle beside it
    kStrips, ///< slanted bars side by side, and a small square: their boxes all meet
    kNested, ///< turned squares that lie in each other, and a square across the innermost
};

/// The pair of a kind whose operands have about `size` vertices each. Made at the first call.
Pair const& Get(Kind kind, std::size_t size);

} // namespace operands

#endif
