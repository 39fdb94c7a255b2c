// SPDX-License-Identifier: MIT

#include "Error.h"

#include <system_error>

namespace tool {

std::string OneLine(std::string const& text) {
    static char const digits[] = "0123456789abcdef";
    std::string line;
    for (char const c : text) {
        auto const byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f) {
            line += "\\x";
            line += digits[byte >> 4];
            line += digits[byte & 15];
        } else {
            line += c;
        }
    }
    return line;
}

std::string SystemMessage(int errorNumber) { return std::generic_category().message(errorNumber); }

Error::Error(std::string const& file, std::string const& place, std::string const& message) {
    for (std::string const* part : {&file, &place}) {
        if (!part->empty()) {
            mLine += OneLine(*part) + ": ";
        }
    }
    mLine += OneLine(message);
}

} // namespace tool
