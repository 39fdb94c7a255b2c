// SPDX-License-Identifier: MIT

#include "PaintServer.h"

#include "Ascii.h"
#include "Css.h"
#include "PenNames.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace tool {

namespace {

/// True for a colour that is not opaque. What no colour is counts as opaque.
bool IsTranslucentColour(std::string const& text) {
    std::string const colour = AsciiLower(Trimmed(text));
    if (colour == "transparent") {
        return true;
    }
    if (colour.substr(0, 1) == "#") { // the last of four digits, or the last two of eight
        return (colour.size() == 5 && colour[4] != 'f') ||
               (colour.size() == 9 && colour.compare(7, 2, "ff") != 0);
    }
    std::size_t const end = colour.find(')');
    std::size_t const slash = colour.find('/');
    std::size_t const last = slash != std::string::npos ? slash : colour.rfind(',');
    bool const four =
        slash != std::string::npos || std::count(colour.begin(), colour.end(), ',') == 3;
    return end != std::string::npos && four && last < end &&
           OpacityOf(Trimmed(std::string_view(colour).substr(last + 1, end - last - 1))) < 1.0;
}

bool IsTranslucentStop(pugi::xml_node stop) {
    std::string opacity = stop.attribute("stop-opacity").value();
    std::string colour = stop.attribute("stop-color").value();
    for (CssDeclaration const& declaration : ParseDeclarations(
             stop.attribute("style").value(), [](std::size_t, std::string const&) {})) {
        if (declaration.property == "stop-opacity") {
            opacity = declaration.value;
        } else if (declaration.property == "stop-color") {
            colour = declaration.value;
        }
    }
    return OpacityOf(opacity) < 1.0 || IsTranslucentColour(colour);
}

} // namespace

PaintServer::PaintServer(SvgDocument const& document, std::string const& id) {
    constexpr std::size_t kMostLinks = 16;
    pugi::xml_node node = id.empty() ? pugi::xml_node() : document.Find(id);
    for (; node && mChain.size() < kMostLinks; node = document.Linked(node)) {
        mChain.push_back(node);
        mKinds.emplace_back(document.LocalName(node));
    }
}

std::string PaintServer::Value(char const* name, std::string const& kind) const {
    for (std::size_t i = 0; i < mChain.size(); ++i) {
        if (mChain[i].attribute(name) && (kind.empty() || kind == mKinds[i])) {
            return mChain[i].attribute(name).value();
        }
    }
    return "";
}

bool PaintServer::IsTranslucent() const {
    if (Kind() == "pattern") {
        return true;
    }
    for (pugi::xml_node const node : mChain) {
        auto const children = node.children();
        if (std::any_of(children.begin(), children.end(), [](pugi::xml_node child) {
                return child.type() == pugi::node_element;
            })) { // the stops of the first that has some
            return std::any_of(children.begin(), children.end(), IsTranslucentStop);
        }
    }
    return false;
}

bool IsTranslucent(SvgDocument const& document, std::string const& paint) {
    std::string const id = UrlFragment(paint);
    return id.empty() ? IsTranslucentColour(paint) : PaintServer(document, id).IsTranslucent();
}

} // namespace tool
