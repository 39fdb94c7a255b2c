// SPDX-License-Identifier: MIT

// Characters and texts in ASCII, as CSS, SVG and XML read them.

#ifndef TRAMMEL_APP_ASCII_H
#define TRAMMEL_APP_ASCII_H

#include <cstddef>
#include <string>
#include <string_view>

namespace tool {

/// What CSS takes for white space. XML knows the same but the form feed, which no document of it
/// has.
inline constexpr std::string_view kSpaces = " \t\r\n\f";

/// What XML takes for white space, and JSON, too.
inline constexpr std::string_view kXmlSpaces = " \t\r\n";

inline bool IsSpace(char c) { return kSpaces.find(c) != std::string_view::npos; }

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Returns the text without white space around it.
inline std::string_view Trimmed(std::string_view text) {
    std::size_t const first = text.find_first_not_of(kSpaces);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kSpaces) - first + 1);
}

/// Returns the text in lower case, as far as it is ASCII.
inline std::string AsciiLower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return lower;
}

} // namespace tool

#endif
