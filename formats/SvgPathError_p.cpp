// SPDX-License-Identifier: MIT

#include "SvgPathError_p.h"

#include "SvgPathGrammar_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace trammel_detail {

namespace {

/// The longest piece of the text that an error shows, in bytes.
constexpr std::size_t kLongestFound = 32;

/// Returns the code point of the UTF-8 sequence at the start of `text`, which is not empty; -1 when
/// there is none.
long CodePoint(std::string_view text) {
    unsigned char const lead = static_cast<unsigned char>(text[0]);
    std::size_t const length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 1;
    if (length == 1 || lead > 0xF4 || text.size() < length) {
        return -1;
    }
    long code = lead & (0xFF >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        unsigned char const c = static_cast<unsigned char>(text[i]);
        if ((c & 0xC0) != 0x80) {
            return -1;
        }
        code = code << 6 | (c & 0x3F);
    }
    long const lowest = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
    bool const surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < lowest || code > 0x10FFFF || surrogate ? -1 : code;
}

} // namespace

std::string Quoted(std::string_view text) {
    std::string shown(text.substr(0, kLongestFound));
    for (char& c : shown) {
        if (c < ' ' || c > '~') {
            c = IsSpace(c) ? ' ' : '?';
        }
    }
    return "'" + shown + (text.size() > kLongestFound ? "...'" : "'");
}

std::string Described(std::string_view text) {
    if (text.empty()) {
        return "end of text";
    }
    std::size_t length = 0;
    while (length < text.size() && length <= kLongestFound && IsLetter(text[length])) {
        ++length;
    }
    if (length > 0 || (text[0] >= ' ' && text[0] <= '~')) {
        return Quoted(text.substr(0, std::max<std::size_t>(length, 1)));
    }
    char shown[24];
    long const code = CodePoint(text);
    if (code >= 0) {
        std::snprintf(shown, sizeof shown, "U+%04lX", static_cast<unsigned long>(code));
    } else {
        std::snprintf(shown, sizeof shown, "byte 0x%02X", static_cast<unsigned char>(text[0]));
    }
    return shown;
}

} // namespace trammel_detail
