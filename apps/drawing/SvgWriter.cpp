// SPDX-License-Identifier: MIT

#include "Markup.h"
#include "Numbers.h"
#include "Picture.h"

#include <trammel/SvgPath.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace tool {

namespace {

std::string Hex(Colour const& colour) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "#%02x%02x%02x", colour.red, colour.green, colour.blue);
    return text.data();
}

/// Returns the text as an attribute's value, without the control characters that XML cannot hold.
std::string AttributeValue(std::string text) {
    text.erase(std::remove_if(text.begin(), text.end(),
                              [](char c) { return static_cast<unsigned char>(c) < 0x20; }),
               text.end());
    return Escaped(text);
}

std::string Attributes(Style const& style) {
    std::string out = " fill=\"" + (style.fill ? Hex(*style.fill) : "none") + "\"";
    if (style.fill) {
        out += " fill-rule=\"evenodd\"";
    }
    if (style.stroke) {
        out += " stroke=\"" + Hex(*style.stroke) + "\" stroke-width=\"" + Exact(style.strokeWidth) +
               "\" stroke-linecap=\"round\" stroke-linejoin=\"round\"";
    }
    if (style.opacity < 1.0) {
        std::string const opacity = Exact(style.opacity);
        out += " fill-opacity=\"" + opacity + "\" stroke-opacity=\"" + opacity + "\"";
    }
    return out;
}

} // namespace

std::string SvgText(Picture const& picture) {
    Page const& page = picture.page;
    TRect<double> const& frame = page.frame;
    std::string const box = Exact(frame.left) + " " + Exact(frame.top) + " " +
                            Exact(frame.Width()) + " " + Exact(frame.Height());
    std::string out = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"" + box + "\"";
    if (page.width > 0.0 && page.height > 0.0) {
        out += " width=\"" + Exact(page.width) + page.unit + "\" height=\"" + Exact(page.height) +
               page.unit + "\"";
    }
    out += ">\n";
    if (picture.background) {
        out += "<rect x=\"" + Exact(frame.left) + "\" y=\"" + Exact(frame.top) + "\" width=\"" +
               Exact(frame.Width()) + "\" height=\"" + Exact(frame.Height()) + "\" fill=\"" +
               Hex(*picture.background) + "\"/>\n";
    }
    for (Shape const& shape : picture.shapes) {
        out += "<path";
        if (!shape.id.empty()) {
            out += " id=\"" + AttributeValue(shape.id) + "\"";
        }
        out += Attributes(shape.style) + " d=\"" + trammel::WriteSvgPath(shape.path) + "\"/>\n";
    }
    out += "</svg>\n";
    return out;
}

} // namespace tool
