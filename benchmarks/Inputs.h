// SPDX-License-Identifier: MIT
//
// What the benchmarks work on: random curves and outlines of the size of a drawing, the same in
// every run, and the outlines of real fonts.
//
// Real outlines differ from random ones: their curves are short and mildly bent, so that a call
// spends more of its time on set-up than in subdivision. Both are measured.

#ifndef TRAMMEL_INPUTS_H
#define TRAMMEL_INPUTS_H

#include <trammel/CBezier.h>
#include <trammel/CPath.h>

#include <cstddef>
#include <vector>

namespace inputs {

/// Which outlines a benchmark works on.
enum class Set {
    kRandom,   ///< seeded random numbers, coordinates from 0 to 1000
    kTrueType, ///< DejaVu Sans, whose quadratic curves are raised to cubic ones
    kCff,      ///< EB Garamond, cubic curves
};

/// The outlines of a set: 200 random ones of 20 elements, or the glyphs of U+0021 to U+017F at 100
/// units to the em, v downward. Empty when the font cannot be read.
std::vector<CPath> const& Outlines(Set set);

/// 1000 random curves, or all curves of the set's outlines.
std::vector<CBezier> const& Curves(Set set);

/// `count` points spread evenly over the square from (0, 0) to (side, side).
std::vector<TPoint<double>> Points(std::size_t count, double side);

/// The vertices of a simple polygon in the square from 0 to 1000: turning around the middle, at
/// distances that vary between 200 and 450.
std::vector<TPoint<double>> Star(std::size_t count);

/// The square in which the set's outlines lie, for Points.
inline double Side(Set set) { return set == Set::kRandom ? 1000.0 : 100.0; }

} // namespace inputs

#endif
