// SPDX-License-Identifier: MIT

// TopoReader: the outlines of a map in TopoJSON.
//
// Each feature of the object "countries" becomes one outline. If the map has no such object, its
// first object takes the place. The outline's name is the feature's property "name", or else its
// id.
//
//     Polygon, MultiPolygon          each ring becomes a closed subpath
//     LineString, MultiLineString    each line becomes an open subpath
//     points, empty features         are passed over, and so are features without a geometry
//
// Coordinates are degrees without a projection: h is the longitude and v the negative latitude, so
// that north is up. Neighbours share arcs, so they have the same vertices along a common border.

#ifndef TRAMMEL_APP_TOPOREADER_H
#define TRAMMEL_APP_TOPOREADER_H

#include "Drawing.h"

#include <string>

namespace tool {

/// True when the content begins like a JSON object.
bool LooksLikeJson(std::string const& content);

/// Reads the map `text`; `file` is for messages. Throws Error with the place of the mistake:
///
///   - the text is no JSON or no TopoJSON
///   - an arc does not exist, or it is no list of numbers
Drawing ReadTopoJson(std::string const& file, std::string const& text);

} // namespace tool

#endif
