// SPDX-License-Identifier: MIT

// The fuzz targets. Each reads an input as calls of one family, makes them, and ends the program
// when an answer is not the one that it has to be. README.md says how they are run.

#ifndef TRAMMEL_FUZZ_TARGETS_H
#define TRAMMEL_FUZZ_TARGETS_H

#include "Input.h"

#include <array>
#include <string_view>

namespace fuzz {

/// Matrices, lines, vectors and rectangles against their plain forms, and circles through points.
void Points(Input& in);
/// Cubics and quadratics against their plain forms, and the accurate queries.
void Curves(Input& in);
/// Paths against their plain form, PathMeasure against the path, and the functions that read and
/// make paths.
void Paths(Input& in);
/// Paths put together and taken apart: building, shapes, arcs, and the structure of subpaths.
void Building(Input& in);
/// PreparedOutline against WindingNumber, places of OutlineMeasure, areas and moments.
void Outlines(Input& in);
/// Where lines, curves and paths meet: what holds for all places, and finer searches against
/// coarser ones.
void Intersections(Input& in);
/// Fitted strokes, simplified outlines and rings: the tolerance, and every point near the result.
void Fits(Input& in);
/// Boolean operations on outlines, and overlaps removed: the points that winding numbers tell, and
/// the source of each element.
void Booleans(Input& in);
/// The same of unions of outlines, of clipped open lines, and of faces that an arrangement merges.
void Unions(Input& in);
/// Boolean operations on rings and on polygons with holes, and the faces of an arrangement of them.
void Rings(Input& in);
/// Strokes: what sweep, joins and caps cover.
void Strokes(Input& in);
/// Offset regions: the distance from the region.
void Offsets(Input& in);
/// Both polygons against their plain forms, PreparedPolygon against the polygon.
void Polygons(Input& in);
/// Handle polygons of foreign bytes. The target changes them at random, and makes paths and
/// outlines of them.
void Handles(Input& in);
/// Boolean operations.
void Clip(Input& in);
/// SVG path text.
void Text(Input& in);
/// The command-line tool's reader of SVG drawings: what it reads can be written, edited and read
/// again.
void Svg(Input& in);
/// Its reader of fonts against plain glyphs.
void Fonts(Input& in);
/// Its readers of maps against the outlines that the maps were made from.
void Maps(Input& in);

struct Target {
    char const* name;
    void (*run)(Input& in);
};

inline constexpr std::array<Target, 19> kTargets = {{{"points", Points},
                                                     {"curves", Curves},
                                                     {"paths", Paths},
                                                     {"building", Building},
                                                     {"outlines", Outlines},
                                                     {"intersections", Intersections},
                                                     {"fits", Fits},
                                                     {"booleans", Booleans},
                                                     {"unions", Unions},
                                                     {"rings", Rings},
                                                     {"strokes", Strokes},
                                                     {"offsets", Offsets},
                                                     {"polygons", Polygons},
                                                     {"handles", Handles},
                                                     {"clip", Clip},
                                                     {"text", Text},
                                                     {"svg", Svg},
                                                     {"fonts", Fonts},
                                                     {"maps", Maps}}};

/// The target of that name, null for none.
Target const* FindTarget(std::string_view name);

/// Ends the program with a message that names `what`, unless `holds`.
void Require(bool holds, char const* what);

} // namespace fuzz

#endif
