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

#include <nlohmann/json.hpp>

#include <string>

namespace tool {

/// Reads the map, an object of type "Topology"; `file` is for messages. Throws Error with the place
/// of a mistake: a missing member, one of another type, or an arc that does not exist.
Drawing ReadTopoJson(std::string const& file, nlohmann::ordered_json const& map);

} // namespace tool

#endif
