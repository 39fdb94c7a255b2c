// SPDX-License-Identifier: MIT

#include "CssTokens.h"

#include "Ascii.h"
#include "Utf8.h"

namespace tool {

namespace {

typedef CssToken::Kind Kind;

bool IsLineEnd(char c) { return c == '\n' || c == '\r' || c == '\f'; }
bool IsNameStart(char c) {
    auto const byte = static_cast<unsigned char>(c);
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || byte >= 0x80;
}
bool IsName(char c) { return IsNameStart(c) || IsDigit(c) || c == '-'; }

/// Returns the value of a hexadecimal digit; -1 for another character.
int HexDigit(char c) {
    return IsDigit(c)             ? c - '0'
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                  : -1;
}

void AppendCharacter(std::string& out, unsigned long c) {
    if (c == 0 || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) {
        c = 0xFFFD;
    }
    AppendUtf8(out, static_cast<char32_t>(c));
}

class Tokenizer {
public:
    explicit Tokenizer(std::string_view text) : mText(text) {}

    std::vector<CssToken> All() {
        std::vector<CssToken> tokens;
        while (true) {
            SkipComments();
            CssToken token;
            token.begin = mAt;
            if (mAt < mText.size()) {
                Next(token);
            }
            token.end = mAt;
            tokens.push_back(std::move(token));
            if (tokens.back().kind == Kind::kEnd) {
                return tokens;
            }
        }
    }

private:
    /// Returns the character `ahead` places on; NUL behind the end.
    char Peek(std::size_t ahead = 0) const {
        return mAt + ahead < mText.size() ? mText[mAt + ahead] : '\0';
    }
    bool Starts(std::string_view with) const { return mText.substr(mAt, with.size()) == with; }

    void SkipComments() {
        while (Starts("/*")) {
            std::size_t const end = mText.find("*/", mAt + 2);
            mAt = end == std::string_view::npos ? mText.size() : end + 2;
        }
    }

    bool EscapeAt(std::size_t ahead) const {
        return Peek(ahead) == '\\' && mAt + ahead + 1 < mText.size() && !IsLineEnd(Peek(ahead + 1));
    }
    bool IdentAt(std::size_t ahead) const {
        if (Peek(ahead) == '-') {
            return IsNameStart(Peek(ahead + 1)) || Peek(ahead + 1) == '-' || EscapeAt(ahead + 1);
        }
        return IsNameStart(Peek(ahead)) || EscapeAt(ahead);
    }
    bool NumberAt() const {
        std::size_t const sign = Peek() == '+' || Peek() == '-' ? 1 : 0;
        return IsDigit(Peek(sign)) || (Peek(sign) == '.' && IsDigit(Peek(sign + 1)));
    }

    /// Passes an escape, whose backslash is next.
    void TakeEscape(std::string& out) {
        ++mAt;
        if (HexDigit(Peek()) < 0) {
            out += mText[mAt++];
            return;
        }
        unsigned long value = 0;
        for (int i = 0; i < 6 && HexDigit(Peek()) >= 0; ++i) {
            value = value * 16 + static_cast<unsigned long>(HexDigit(mText[mAt++]));
        }
        if (mAt < mText.size() && IsSpace(Peek())) {
            mAt += Starts("\r\n") ? 2 : 1;
        }
        AppendCharacter(out, value);
    }

    std::string TakeName() {
        std::string name;
        while (mAt < mText.size()) {
            if (IsName(Peek())) {
                name += mText[mAt++];
            } else if (EscapeAt(0)) {
                TakeEscape(name);
            } else {
                break;
            }
        }
        return name;
    }

    void TakeNumber(CssToken& token) {
        token.kind = Kind::kNumber;
        ++mAt; // a sign, a digit or the point
        while (IsDigit(Peek())) {
            ++mAt;
        }
        if (mText[token.begin] != '.' && Peek() == '.' && IsDigit(Peek(1))) {
            ++mAt;
            while (IsDigit(Peek())) {
                ++mAt;
            }
        }
        std::size_t const sign = Peek(1) == '+' || Peek(1) == '-' ? 2 : 1;
        if ((Peek() == 'e' || Peek() == 'E') && IsDigit(Peek(sign))) {
            mAt += sign;
            while (IsDigit(Peek())) {
                ++mAt;
            }
        }
        token.text = std::string(mText.substr(token.begin, mAt - token.begin));
        if (Peek() == '%') {
            token.text += mText[mAt++];
        } else if (IdentAt(0)) {
            token.text += TakeName();
        }
    }

    void TakeString(CssToken& token) {
        char const quote = mText[mAt++];
        token.kind = Kind::kString;
        while (mAt < mText.size()) {
            char const c = Peek();
            if (c == quote) {
                ++mAt;
                return;
            }
            if (IsLineEnd(c)) {
                token.kind = Kind::kBadString;
                return;
            }
            if (c != '\\') {
                token.text += mText[mAt++];
            } else if (EscapeAt(0)) {
                TakeEscape(token.text);
            } else { // a backslash and a line end, or the end of the text
                mAt += Peek(1) == '\r' && Peek(2) == '\n' ? 3 : mAt + 1 < mText.size() ? 2 : 1;
            }
        }
    }

    /// Passes the content of an unquoted url, behind its parenthesis.
    void TakeUrl(CssToken& token) {
        token.kind = Kind::kUrl;
        token.text.clear();
        while (IsSpace(Peek())) {
            ++mAt;
        }
        while (mAt < mText.size()) {
            char const c = Peek();
            if (c == ')') {
                ++mAt;
                return;
            }
            if (IsSpace(c)) {
                ++mAt;
                if (!IsSpace(Peek()) && Peek() != ')' && mAt < mText.size()) {
                    token.kind = Kind::kBadUrl;
                }
            } else if (c == '"' || c == '\'' || c == '(' || (c == '\\' && !EscapeAt(0))) {
                token.kind = Kind::kBadUrl;
                ++mAt;
            } else if (c == '\\') {
                TakeEscape(token.text);
            } else {
                token.text += mText[mAt++];
            }
        }
    }

    void TakeIdentLike(CssToken& token) {
        token.text = TakeName();
        token.kind = Kind::kIdent;
        if (Peek() != '(') {
            return;
        }
        ++mAt;
        token.kind = Kind::kFunction;
        bool const url = token.text.size() == 3 && (token.text[0] | 0x20) == 'u' &&
                         (token.text[1] | 0x20) == 'r' && (token.text[2] | 0x20) == 'l';
        if (url) {
            std::size_t ahead = 0;
            while (IsSpace(Peek(ahead))) {
                ++ahead;
            }
            if (Peek(ahead) != '"' && Peek(ahead) != '\'') {
                TakeUrl(token);
            }
        }
    }

    void Next(CssToken& token) {
        char const c = Peek();
        if (IsSpace(c)) {
            token.kind = Kind::kSpace;
            token.text = " ";
            while (IsSpace(Peek())) {
                ++mAt;
            }
        } else if (c == '"' || c == '\'') {
            TakeString(token);
        } else if (c == '#' && (IsName(Peek(1)) || EscapeAt(1))) {
            token.kind = Kind::kHash;
            token.identifier = IdentAt(1);
            ++mAt;
            token.text = TakeName();
        } else if (NumberAt()) {
            TakeNumber(token);
        } else if (Starts("<!--") || Starts("-->")) {
            token.kind = Kind::kCdMark;
            mAt += c == '<' ? 4 : 3;
        } else if (c == '@' && IdentAt(1)) {
            token.kind = Kind::kAtKeyword;
            ++mAt;
            token.text = TakeName();
        } else if (IdentAt(0)) {
            TakeIdentLike(token);
        } else {
            token.kind = Kind::kDelim;
            token.text = std::string(1, c);
            ++mAt;
        }
    }

    std::string_view mText;
    std::size_t mAt = 0;
};

} // namespace

std::vector<CssToken> CssTokens(std::string_view text) { return Tokenizer(text).All(); }

} // namespace tool
