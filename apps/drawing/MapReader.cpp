// SPDX-License-Identifier: MIT

#include "MapReader.h"

#include "Ascii.h"
#include "Error.h"
#include "GeoReader.h"
#include "MapJson.h"
#include "TopoReader.h"

#include <nlohmann/json.hpp>

namespace tool {

namespace {

typedef nlohmann::ordered_json Json;

/// Returns the line and column of a byte.
std::string LineAndColumn(std::string const& text, std::size_t position) {
    std::size_t line = 1;
    std::size_t column = 1;
    for (std::size_t i = 0; i < position && i < text.size(); ++i) {
        ++column;
        if (text[i] == '\n') {
            ++line;
            column = 1;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

Json Parsed(std::string const& file, std::string const& text) {
    try {
        return Json::parse(text);
    } catch (Json::parse_error const& e) {
        throw Error(file, LineAndColumn(text, e.byte > 0 ? e.byte - 1 : 0), "is not valid JSON");
    } catch (Json::out_of_range const&) {
        throw Error(file, "", "has a number that is too large");
    }
}

} // namespace

bool LooksLikeJson(std::string const& content) {
    std::size_t const mark = content.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    std::size_t const first = content.find_first_not_of(kXmlSpaces, mark);
    return first != std::string::npos && content[first] == '{';
}

Drawing ReadMap(std::string const& file, std::string const& text) {
    Json const map = Parsed(file, text);
    std::string const type = TextOf(map, "type");
    if (type == "Topology") {
        return ReadTopoJson(file, map);
    }
    if (IsGeoJsonType(type)) {
        return ReadGeoJson(file, map);
    }
    throw Error(file, "",
                "is JSON, but no map: its type is neither \"Topology\" (TopoJSON) nor one of "
                "GeoJSON's");
}

} // namespace tool
