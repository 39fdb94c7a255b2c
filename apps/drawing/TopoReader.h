// SPDX-License-Identifier: MIT

// TopoReader: the outlines of a map in TopoJSON.
//
// One outline for each feature of the object "countries" or, where there is none, of the first
// object; a feature is a Polygon or MultiPolygon, each ring a closed subpath, or a LineString or
// MultiLineString, whose lines are open. Points, features without a geometry and empty ones are
// passed over. An outline is named by the feature's property "name", else by its id.
//
// Coordinates are degrees as they stand, an equirectangular projection: h is the longitude, v the
// negative latitude, so that north is up. Arcs are shared, so neighbours have the same vertices
// along a common border.

#ifndef TRAMMEL_APP_TOPOREADER_H
#define TRAMMEL_APP_TOPOREADER_H

#include "Drawing.h"

#include <string>

namespace tool {

/// True when the content begins like a JSON object.
bool LooksLikeJson(std::string const& content);

/// Reads the map `text`; `file` is for messages. Throws Error, with the place, for what is no JSON
/// or no TopoJSON, and for arcs that do not exist or are no lists of numbers.
Drawing ReadTopoJson(std::string const& file, std::string const& text);

} // namespace tool

#endif
