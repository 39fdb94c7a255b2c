// SPDX-License-Identifier: MIT

#include "Ascii.h"
#include "Drawing.h"
#include "Error.h"
#include "FontReader.h"
#include "Input.h"
#include "MapReader.h"
#include "SvgReader.h"
#include "TextEncoding.h"

#include <string_view>
#include <utility>

namespace tool {

namespace {

/// True when a text in UTF-8 begins like XML: with '<', or with a byte order mark.
bool LooksLikeXml(std::string_view content) {
    std::string_view const mark = "\xEF\xBB\xBF";
    if (content.substr(0, mark.size()) == mark) {
        return true;
    }
    std::size_t const first = content.find_first_not_of(kXmlSpaces);
    return first != std::string_view::npos && content[first] == '<';
}

} // namespace

Drawing ReadDrawing(std::string const& file, ArcAccuracy const& arcs) {
    std::string content = ReadFile(file);
    if (LooksLikeFont(content)) {
        return ReadFontDrawing(file, std::move(content));
    }
    Encoding const encoding = EncodingOf(content);
    std::string text = Decoded(file, std::move(content), encoding);
    if (LooksLikeJson(text)) {
        return ReadMap(file, text);
    }
    if (LooksLikeXml(text)) {
        return ReadSvg(file, std::move(text), encoding, arcs);
    }
    throw Error(file, "", "is neither an SVG drawing nor a font nor a map (TopoJSON, GeoJSON)");
}

} // namespace tool
