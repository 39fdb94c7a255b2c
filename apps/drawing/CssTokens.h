// SPDX-License-Identifier: MIT

// The tokens of CSS Syntax Module, Level 3.

#ifndef TRAMMEL_APP_CSSTOKENS_H
#define TRAMMEL_APP_CSSTOKENS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// One token of a text.
struct CssToken {
    enum class Kind {
        kIdent,
        kFunction,  ///< the name and the parenthesis after it
        kAtKeyword, ///< the name after '@'
        kHash,      ///< the name after '#'
        kString,
        kBadString, ///< a line end inside
        kUrl,       ///< the address of an unquoted url(...)
        kBadUrl,
        kNumber, ///< with unit or percent sign, if there is one
        kSpace,
        kCdMark, ///< "<!--" or "-->"
        kDelim,  ///< any other character, brackets included
        kEnd,
    };
    Kind kind = Kind::kEnd;
    std::string text;       ///< name, content or character, without escapes
    std::size_t begin = 0;  ///< offset of its first character
    std::size_t end = 0;    ///< offset behind its last character
    bool identifier = true; ///< of a hash: its name could be an identifier

    /// True for this one character.
    bool Is(char c) const { return kind == Kind::kDelim && text[0] == c; }
};

/// Returns the tokens of a text, without comments, and one of kind kEnd after them.
std::vector<CssToken> CssTokens(std::string_view text);

} // namespace tool

#endif
