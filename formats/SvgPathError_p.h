// SPDX-License-Identifier: MIT

// The words in which an error shows a piece of SVG path text. Not installed.

#ifndef TRAMMEL_SVGPATHERROR_P_H
#define TRAMMEL_SVGPATHERROR_P_H

#include <string>
#include <string_view>

namespace trammel_detail {

/// Returns a piece of text in quotation marks. It is shortened, and '?' stands for characters that
/// cannot be printed.
std::string Quoted(std::string_view text);

/// Returns a readable form of the start of `text`: a whole word in quotation marks, or else one
/// character.
std::string Described(std::string_view text);

} // namespace trammel_detail

#endif
