// SPDX-License-Identifier: MIT

// Text inside of markup: the pictures' SVG and the gallery's page.

#ifndef TRAMMEL_APP_MARKUP_H
#define TRAMMEL_APP_MARKUP_H

#include <string>
#include <string_view>

namespace tool {

/// Returns the text with its `&`, `<`, `>` and `"` spelled out, for elements and quoted attributes.
inline std::string Escaped(std::string_view text) {
    std::string out;
    for (char const c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

} // namespace tool

#endif
