// SPDX-License-Identifier: MIT

// The inputs of operations on outlines: pairs of glyphs, rings of curves that cross, discs, pen
// strokes, and shapes to ask for points. They are the same in every run.

#ifndef TRAMMEL_OUTLINEINPUTS_H
#define TRAMMEL_OUTLINEINPUTS_H

#include "Inputs.h"

#include <trammel/CPath.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace inputs {

typedef std::pair<CPath, CPath> OutlinePair;

/// Returns the outlines of a set's glyphs that follow each other, the second moved by 7 and 11
/// units so that they overlap; none when the font cannot be read.
std::vector<OutlinePair> GlyphPairs(Set set);

/// Returns two smooth rings of `count` curves each, a circle and a wave around it. They cross once
/// for every ten curves of one of them.
OutlinePair CrossingRings(std::size_t count);

/// Returns `count` discs of four curves at random places of a square. Their areas make as much as
/// the square.
std::vector<CPath> Discs(std::size_t count);

/// Returns an open line of `count` lines, such as a contour line of a map: about 1.4 units long
/// each, with slow turns and small ones.
CPath WindingLine(std::size_t count);

/// Returns the points of a pen that writes loops. They are about a unit apart, and rounded to a
/// 64th.
std::vector<TPoint<double>> Handwriting(std::size_t count);

/// A kind of closed outline that is hard to ask whether it contains a point.
struct Shape {
    char const* name;
    std::vector<TPoint<double>> (*vertices)(std::size_t count);
};

/// Returns the vertices of a smooth outline. `fine` is the height of ripples of 50 vertices.
std::vector<TPoint<double>> Ripples(std::size_t count, double fine);

/// Returns the vertices of teeth from v = 0 to 1000. Ragged ones end 400 units before at most. Each
/// tip is off its foot by `lean`.
std::vector<TPoint<double>> Comb(std::size_t count, double lean, bool isRagged);

/// Returns the vertices of twenty turns out, and back along them.
std::vector<TPoint<double>> Spiral(std::size_t count);

/// Returns an outline with ripples, a ragged star, combs upright and leaning, a spiral, and a
/// tangle of segments as large as the outline. Each is within 0 and 1000.
std::vector<Shape> Shapes();

/// Returns the closed outline of curves through these vertices, smooth at each.
CPath CurvesThrough(std::vector<TPoint<double>> const& vertices);

} // namespace inputs

#endif
