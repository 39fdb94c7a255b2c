// SPDX-License-Identifier: MIT

// The words in which an error shows a piece of SVG path text. Not installed.

#ifndef TRAMMEL_SVGPATHERROR_P_H
#define TRAMMEL_SVGPATHERROR_P_H

#include <string>
#include <string_view>

namespace trammel_detail {

/// Returns a piece of text in single quotation marks. Of more than 32 bytes it shows the first 32
/// and "...". White space becomes a blank, and every other byte outside of printable ASCII a '?'.
std::string Quoted(std::string_view text);

/// Returns a readable form of the start of `text`:
///
///     "end of text"     when there is nothing
///     'word'            letters, or else one printable character of ASCII, as Quoted() shows them
///     U+00E9            another character in UTF-8
///     byte 0xE9         a byte that begins no such character
std::string Described(std::string_view text);

} // namespace trammel_detail

#endif
