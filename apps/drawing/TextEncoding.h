// SPDX-License-Identifier: MIT

// How the characters of a file are stored. The readers see UTF-8, and a document is written in the
// encoding that it had.

#ifndef TRAMMEL_APP_TEXTENCODING_H
#define TRAMMEL_APP_TEXTENCODING_H

#include <string>
#include <string_view>

namespace tool {

/// How the characters of a file are stored.
enum class Encoding { kUtf8, kUtf16Little, kUtf16Big, kUtf32Little, kUtf32Big, kLatin1 };

/// Returns the encoding of a text by its first bytes: a byte order mark, the first character or
/// XML's declaration. UTF-8 if these do not tell another one.
Encoding EncodingOf(std::string_view content);

/// Returns the text in UTF-8, byte order mark included. Throws an Error that names the file for
/// UTF-16 and UTF-32 that are not valid. Other encodings have no invalid text here.
std::string Decoded(std::string const& file, std::string content, Encoding encoding);

/// Returns a text in UTF-8 in another encoding: Decoded gives the same text again.
std::string Encoded(std::string const& text, Encoding encoding);

} // namespace tool

#endif
