// SPDX-License-Identifier: MIT

// GeoReader: the outlines of a map in GeoJSON.
//
// Each feature becomes one outline, and so does each geometry outside of a feature. The outline's
// name is the feature's property "name", or else its id.
//
//     Polygon, MultiPolygon          each ring becomes a closed subpath
//     LineString, MultiLineString    each line becomes an open subpath
//     GeometryCollection             within a feature all lines and rings are one outline
//     points, empty features         are passed over, and so are features without a geometry
//
// Coordinates are as in TopoReader.h: h is the longitude and v the negative latitude.

#ifndef TRAMMEL_APP_GEOREADER_H
#define TRAMMEL_APP_GEOREADER_H

#include "Drawing.h"

#include <nlohmann/json.hpp>

#include <string>

namespace tool {

/// True for a type that an object of GeoJSON may have.
bool IsGeoJsonType(std::string const& type);

/// Reads the map; `file` is for messages. Throws Error with the place of a mistake: a
/// missing member, one of another type, or a coordinate that is too large.
Drawing ReadGeoJson(std::string const& file, nlohmann::ordered_json const& map);

} // namespace tool

#endif
