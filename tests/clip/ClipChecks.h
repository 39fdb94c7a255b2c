// SPDX-License-Identifier: MIT

// Figures for several of the clipper's tests, and expectations of every result.
#ifndef TRAMMEL_CLIPCHECKS_H
#define TRAMMEL_CLIPCHECKS_H

#include "plain/ClipCorpus.h"
#include "plain/PlainClip.h"

#include <gtest/gtest.h>

#include <cstddef>

// The address sanitizer keeps memory back, so that tests cannot measure or limit it.
#if defined(__SANITIZE_ADDRESS__)
#define TRAMMEL_CLIP_SANITIZED 1
#endif

namespace clip_test {

using plain::Contour;
using plain::Dice;
using plain::Mapped;
using plain::Polygon;
using plain::RandomDoubles;
using plain::Rectangle;
using plain::Region;
using plain::Vertex;

inline constexpr double kPi = 3.14159265358979323846;

/// How far an area may be off, relative to the area of the union.
inline constexpr double kAreaTolerance = 1e-9;

/// How far plain::EvenOddArea() is off in coordinates from 0 to 1.
inline constexpr double kStripTolerance = 1e-13;

// Figures.

/// A polygon around (x, y), its vertices at equal angles and at distances that differ by `noise`.
Contour Star(std::size_t vertices, double x, double y, double size, double noise, Dice& dice);

/// The area that a result's hole flags tell.
inline double Area(Region const& region) { return plain::AreaByFlags(region); }

// Expectations.

/// Expects two results that are equal to the last bit and list the contours in the same order.
void ExpectIdentical(Region const& a, Region const& b);

/// Expects the properties that the header promises of each contour by itself:
/// - at least three vertices, none twice,
/// - no vertex within a horizontal run,
/// - a hole starts at its highest vertex, another contour ends there.
void ExpectWellFormed(Region const& region);

/// Expects that holes run counterclockwise and other contours clockwise. The areas are computed
/// in doubles, so that the contours must not be thin.
void ExpectDirections(Region const& region);

/// Expects of a result that
/// - edges neither cross nor overlap,
/// - an edge passes through a vertex only where the edge is horizontal, as vertices within
///   horizontal runs are left out,
/// - contours that share a vertex do not cross there.
/// The test is exact. It needs coordinates of magnitudes below 2^19 that are multiples of 2^-42.
void ExpectNoCrossings(Region const& region);

} // namespace clip_test

#endif
