// SPDX-License-Identifier: MIT

#include "TextEncoding.h"

#include "Ascii.h"
#include "Error.h"
#include "Utf8.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace tool {

namespace {

/// How a wide encoding stores its units, one or two for each character.
struct Units {
    char const* name;
    std::size_t size; ///< in bytes
    Encoding encoding;
    bool big; ///< whether the most significant byte comes first
};

/// In the order in which they are looked for: the marks of UTF-16 begin those of UTF-32.
constexpr Units kUnits[] = {{"UTF-32", 4, Encoding::kUtf32Big, true},
                            {"UTF-32", 4, Encoding::kUtf32Little, false},
                            {"UTF-16", 2, Encoding::kUtf16Big, true},
                            {"UTF-16", 2, Encoding::kUtf16Little, false}};

constexpr char32_t kByteOrderMark = 0xFEFF;
constexpr char32_t kMostCharacter = 0x10FFFF;
constexpr char32_t kFirstHigh = 0xD800; ///< the first half of a character beyond 16 bits
constexpr char32_t kFirstLow = 0xDC00;  ///< the other half
constexpr char32_t kBehindLow = 0xE000;
constexpr char32_t kFirstBeyond = 0x10000;

Units const* UnitsOf(Encoding encoding) {
    auto const* const found =
        std::find_if(std::begin(kUnits), std::end(kUnits),
                     [encoding](Units const& units) { return units.encoding == encoding; });
    return found != std::end(kUnits) ? found : nullptr;
}

/// Returns the unit whose first byte is at `i`. The text has all of it.
char32_t UnitAt(std::string_view content, std::size_t i, Units const& units) {
    char32_t value = 0;
    for (std::size_t k = 0; k < units.size; ++k) {
        std::size_t const byte = units.big ? k : units.size - 1 - k;
        value = value << 8 | static_cast<unsigned char>(content[i + byte]);
    }
    return value;
}

void AppendUnit(std::string& out, char32_t value, Units const& units) {
    for (std::size_t k = 0; k < units.size; ++k) {
        std::size_t const byte = units.big ? units.size - 1 - k : k;
        out += static_cast<char>(value >> 8 * byte & 0xFF);
    }
}

bool IsXmlSpace(char32_t c) {
    return c < 0x80 && kXmlSpaces.find(static_cast<char>(c)) != std::string_view::npos;
}

/// True for a text that begins with a byte order mark, or as markup or a map does.
bool Suits(std::string_view content, Units const& units) {
    std::size_t i = 0;
    while (i + units.size <= content.size() && IsXmlSpace(UnitAt(content, i, units))) {
        i += units.size;
    }
    if (i + units.size > content.size()) {
        return false;
    }
    char32_t const first = UnitAt(content, i, units);
    return (first == kByteOrderMark && i == 0) || first == '<' || first == '{';
}

/// Returns the character of a text in UTF-8 at `i`, and moves `i` behind it. A byte out of place
/// counts as a character of its own.
char32_t TakeUtf8(std::string_view text, std::size_t& i) {
    auto const lead = static_cast<unsigned char>(text[i++]);
    std::size_t const more = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    char32_t c = more == 0 ? lead : lead & (0x3FU >> more);
    for (std::size_t k = 0; k < more && i < text.size(); ++k) {
        c = c << 6 | (static_cast<unsigned char>(text[i++]) & 0x3FU);
    }
    return c;
}

std::string DecodedUnits(std::string const& file, std::string_view content, Units const& units) {
    auto const fail = [&](std::size_t byte) {
        throw Error(file, "byte " + std::to_string(byte),
                    std::string("is not valid ") + units.name);
    };
    std::string text;
    std::size_t i = 0;
    for (; i + units.size <= content.size(); i += units.size) {
        std::size_t const begin = i;
        char32_t c = UnitAt(content, i, units);
        if (units.size == 2 && c >= kFirstHigh && c < kFirstLow &&
            i + 2 * units.size <= content.size()) {
            char32_t const low = UnitAt(content, i + units.size, units);
            if (low >= kFirstLow && low < kBehindLow) {
                i += units.size;
                c = kFirstBeyond + ((c - kFirstHigh) << 10) + (low - kFirstLow);
            }
        }
        if (c > kMostCharacter || (c >= kFirstHigh && c < kBehindLow)) {
            fail(begin);
        }
        AppendUtf8(text, c);
    }
    if (i < content.size()) {
        fail(i);
    }
    return text;
}

} // namespace

Encoding EncodingOf(std::string_view content) {
    for (Units const& units : kUnits) {
        if (Suits(content, units)) {
            return units.encoding;
        }
    }
    if (content.substr(0, 5) == "<?xml") {
        std::string const declaration = AsciiLower(content.substr(0, content.find("?>")));
        for (std::string_view const name : {"iso-8859-1", "latin1"}) {
            std::size_t const at = declaration.find(name);
            if (at != std::string::npos && at > 0 &&
                std::string_view("\"'").find(declaration[at - 1]) != std::string_view::npos) {
                return Encoding::kLatin1;
            }
        }
    }
    return Encoding::kUtf8;
}

std::string Decoded(std::string const& file, std::string content, Encoding encoding) {
    if (encoding == Encoding::kUtf8) {
        return content;
    }
    if (Units const* const units = UnitsOf(encoding)) {
        return DecodedUnits(file, content, *units);
    }
    std::string text;
    for (char const c : content) {
        AppendUtf8(text, static_cast<unsigned char>(c));
    }
    return text;
}

std::string Encoded(std::string const& text, Encoding encoding) {
    if (encoding == Encoding::kUtf8) {
        return text;
    }
    Units const* const units = UnitsOf(encoding);
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        char32_t const c = TakeUtf8(text, i);
        if (units == nullptr) {
            out += c < 0x100 ? std::string(1, static_cast<char>(c))
                             : "&#" + std::to_string(static_cast<unsigned long>(c)) + ";";
        } else if (units->size > 2 || c < kFirstBeyond) {
            AppendUnit(out, c, *units);
        } else {
            AppendUnit(out, kFirstHigh + ((c - kFirstBeyond) >> 10), *units);
            AppendUnit(out, kFirstLow + ((c - kFirstBeyond) & 0x3FF), *units);
        }
    }
    return out;
}

} // namespace tool
