// SPDX-License-Identifier: MIT

// MapReader: maps in JSON. The type of the outermost object decides between TopoJSON (TopoReader.h)
// and GeoJSON (GeoReader.h).

#ifndef TRAMMEL_APP_MAPREADER_H
#define TRAMMEL_APP_MAPREADER_H

#include "Drawing.h"

#include <string>

namespace tool {

/// True when the content begins like a JSON object.
bool LooksLikeJson(std::string const& content);

/// Reads the map `text`; `file` is for messages. Throws Error with the place of the mistake, also
/// for a text that is no JSON or no map.
Drawing ReadMap(std::string const& file, std::string const& text);

} // namespace tool

#endif
