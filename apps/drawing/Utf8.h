// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_APP_UTF8_H
#define TRAMMEL_APP_UTF8_H

#include <string>

namespace tool {

/// Appends a character in UTF-8. `c` is at most 0x10FFFF.
inline void AppendUtf8(std::string& out, char32_t c) {
    auto const byte = [&out](char32_t value) { out += static_cast<char>(value); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | c >> 6);
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        byte(0xE0 | c >> 12);
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    } else {
        byte(0xF0 | c >> 18);
        byte(0x80 | (c >> 12 & 0x3F));
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    }
}

} // namespace tool

#endif
