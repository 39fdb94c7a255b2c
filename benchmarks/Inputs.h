// SPDX-License-Identifier: MIT

// The inputs of the benchmarks: random curves and outlines of the size of a drawing, the same in
// every run, and the outlines of real fonts and icons.
//
// Real outlines differ from random ones: their curves are short and mildly bent, so that a call
// spends more of its time on set-up than in subdivision. Both are measured.

#ifndef TRAMMEL_INPUTS_H
#define TRAMMEL_INPUTS_H

#include <trammel/CBezier.h>
#include <trammel/CPath.h>
#include <trammel/TLine.h>

#include <cstddef>
#include <vector>

namespace inputs {

/// Which outlines a benchmark works on.
enum class Set {
    kRandom,   ///< seeded random numbers, coordinates from 0 to 1000
    kTrueType, ///< DejaVu Sans, whose quadratic curves are raised to cubic ones
    kCff,      ///< EB Garamond, cubic curves
    kDrawing,  ///< as kRandom, coordinates from 0 to 110: the size of a drawing's curves
    kPoster,   ///< the glyphs of kCff ten times as large
    kLong,     ///< ragged rings of 1,000 lines and curves in turn, coordinates from 0 to 1000
    kIcons,    ///< the application icons of the Breeze theme, 48 units wide
};

/// The parts of a ring.
enum class Segments { kLines, kCurves, kMixed };

/// Returns a ragged ring of `count` segments in the square from 0 to 1000. The segments grow
/// shorter as they become more, down to about a hundredth of a unit. Their curves are mildly bent.
CPath Ragged(Segments segments, std::size_t count, unsigned seed);

/// Returns the outlines of a set; none when the font or the theme cannot be read.
/// - kRandom has 200 outlines of 20 elements, kDrawing 200 of 10 curves, kLong 20.
/// - kTrueType, kCff and kPoster have the glyphs of U+0021 to U+017F, v downward, at 100 units to
///   the em; kPoster at 1000.
/// - kIcons has the paths of the theme's drawings where the paths' text puts them; elements may
///   move them elsewhere.
std::vector<CPath> const& Outlines(Set set);

/// Returns 1000 random curves, or all curves of the set's outlines. For kDrawing it returns 10,000
/// random curves. They flatten to 201 points each at a tolerance of 0.001 and to 22 at 0.1, on
/// average.
std::vector<CBezier> const& Curves(Set set);

/// Returns `count` points spread evenly over the square from (0, 0) to (side, side).
std::vector<TPoint<double>> Points(std::size_t count, double side);

/// Returns the vertices of a simple polygon in the square from 0 to 1000. They turn around the
/// middle, at distances that vary between 200 and 450.
std::vector<TPoint<double>> Star(std::size_t count);

/// Returns a point in the box of each curve's control points, one for each.
std::vector<TPoint<double>> PointsInBoxes(std::vector<CBezier> const& curves);

/// The longest outline among the country outlines of about `count` vertices; empty without map
/// data.
std::vector<TPoint<double>> Country(std::size_t count);

/// `count` points spread evenly over the bounds of a ring.
std::vector<TPoint<double>> PointsOver(std::vector<TPoint<double>> const& ring, std::size_t count);

/// `count` segments between points spread evenly over the bounds of a ring.
std::vector<TLine<double>> LinesOver(std::vector<TPoint<double>> const& ring, std::size_t count);

/// Returns the side of the square around the set's outlines, for Points.
double Side(Set set);

} // namespace inputs

#endif
