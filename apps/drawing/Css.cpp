// SPDX-License-Identifier: MIT

#include "Css.h"

#include "Ascii.h"
#include "CssTokens.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace tool {

namespace {

typedef CssToken::Kind Kind;

/// The greatest depth of @media in @media, and of :not in :not.
constexpr int kMostNesting = 16;

/// The mistake in a selector.
struct SelectorError {
    std::size_t offset;
    std::string message;
};

/// Tokens from `begin` up to `end`, and a place among them.
class Tokens {
public:
    Tokens(std::vector<CssToken> const& all, std::size_t begin, std::size_t end)
        : mAll(all), mAt(begin), mEnd(end) {}

    bool AtEnd() const { return mAt >= mEnd; }
    /// Returns the next token. Behind the last one it is the token after the range, which exists.
    CssToken const& Peek(std::size_t ahead = 0) const { return mAll[std::min(mAt + ahead, mEnd)]; }
    bool Sees(char c) const { return !AtEnd() && Peek().Is(c); }
    bool Sees(Kind kind) const { return !AtEnd() && Peek().kind == kind; }
    CssToken const& Take() { return mAll[mAt++]; }
    void SkipSpace() {
        while (Sees(Kind::kSpace)) {
            ++mAt;
        }
    }
    std::size_t At() const { return mAt; }
    Tokens Range(std::size_t begin, std::size_t end) const { return Tokens(mAll, begin, end); }

    /// Passes a token; of a bracket or a function all up to its end. Returns the index of the
    /// closing bracket, or the end when the bracket stays open.
    std::size_t TakeComponent() {
        std::string open;
        do {
            CssToken const& token = Take();
            if (token.kind == Kind::kFunction || token.Is('(')) {
                open += ')';
            } else if (token.Is('[')) {
                open += ']';
            } else if (token.Is('{')) {
                open += '}';
            } else if (!open.empty() && token.Is(open.back())) {
                open.pop_back();
            }
            if (open.empty()) {
                return mAt - 1;
            }
        } while (!AtEnd());
        return mEnd;
    }

    /// Passes everything up to one of these characters outside of brackets.
    void SkipTo(std::string_view characters) {
        while (!AtEnd()) {
            if (Peek().kind == Kind::kDelim &&
                characters.find(Peek().text[0]) != std::string_view::npos) {
                return;
            }
            TakeComponent();
        }
    }

private:
    std::vector<CssToken> const& mAll;
    std::size_t mAt;
    std::size_t mEnd;
};

std::vector<CssSelector> ParseSelectors(Tokens tokens, int level);

unsigned Sum(unsigned a, unsigned b) {
    unsigned sum = 0;
    for (unsigned shift = 0; shift <= 20; shift += 10) {
        unsigned const part = ((a >> shift) & 1023U) + ((b >> shift) & 1023U);
        sum |= std::min(part, 1023U) << shift;
    }
    return sum;
}

constexpr unsigned kIdWeight = 1U << 20;
constexpr unsigned kClassWeight = 1U << 10;
constexpr unsigned kTypeWeight = 1U;

/// Reads the rest of an attribute test, behind its '['.
CssAttributeTest ParseAttribute(Tokens& tokens) {
    CssAttributeTest test;
    std::size_t const begin = tokens.Peek().begin;
    tokens.SkipSpace();
    if (tokens.Sees('*') && tokens.Peek(1).Is('|')) {
        tokens.Take();
    }
    if (tokens.Sees('|')) {
        tokens.Take();
    }
    if (!tokens.Sees(Kind::kIdent)) {
        throw SelectorError{begin, "an attribute's name is missing"};
    }
    test.name = tokens.Take().text;
    if (tokens.Sees('|') && tokens.Peek(1).kind == Kind::kIdent) {
        tokens.Take();
        test.name += ":" + tokens.Take().text;
    }
    tokens.SkipSpace();
    if (tokens.Sees(']')) {
        tokens.Take();
        return test;
    }
    test.match = tokens.AtEnd() ? '\0' : tokens.Take().text[0];
    bool good = std::string_view("=~|^$*").find(test.match) != std::string_view::npos;
    if (good && test.match != '=') {
        good = tokens.Sees('=');
        if (good) {
            tokens.Take();
        }
    }
    tokens.SkipSpace();
    if (!good || !(tokens.Sees(Kind::kIdent) || tokens.Sees(Kind::kString))) {
        throw SelectorError{begin, "the test of an attribute has a mistake"};
    }
    test.value = tokens.Take().text;
    tokens.SkipSpace();
    if (tokens.Sees(Kind::kIdent)) {
        test.ignoreCase = AsciiLower(tokens.Take().text) == "i";
        tokens.SkipSpace();
    }
    if (!tokens.Sees(']')) {
        throw SelectorError{begin, "the test of an attribute has no end"};
    }
    tokens.Take();
    return test;
}

/// Reads a whole number that fills the text; an explicit + is allowed. No drawing has as many
/// elements as nine digits tell.
std::optional<int> WholeNumber(std::string_view text) {
    bool const negative = !text.empty() && text[0] == '-';
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        text.remove_prefix(1);
    }
    if (text.empty() || text.size() > 9 ||
        text.find_first_not_of("0123456789") != std::string_view::npos) {
        return std::nullopt;
    }
    int number = 0;
    for (char const c : text) {
        number = number * 10 + (c - '0');
    }
    return negative ? -number : number;
}

/// Reads "odd", "even", "5" or "2n+1" into a pseudo-class. False for another text.
bool ParseNth(std::string const& text, CssPseudo& pseudo) {
    if (text == "odd" || text == "even") {
        pseudo.step = 2;
        pseudo.offset = text == "odd" ? 1 : 0;
        return true;
    }
    if (text.empty()) {
        return false;
    }
    std::size_t const n = text.find('n');
    std::string const times = n == std::string::npos ? "0" : text.substr(0, n);
    std::string const plus = n == std::string::npos ? text : text.substr(n + 1);
    std::optional<int> const step = times.empty() || times == "+" ? 1
                                    : times == "-"                ? -1
                                                                  : WholeNumber(times);
    bool const signedPlus =
        n == std::string::npos || plus.empty() || plus[0] == '+' || plus[0] == '-';
    std::optional<int> const offset = plus.empty() ? 0 : WholeNumber(plus);
    if (!step || !offset || !signedPlus) {
        return false;
    }
    pseudo.step = *step;
    pseudo.offset = *offset;
    return true;
}

/// Returns the kind of a pseudo-class that counts, such as "nth-child"; empty for another name.
std::optional<CssPseudo::Kind> CountingKind(std::string_view name) {
    struct Known {
        char const* name;
        CssPseudo::Kind kind;
    };
    static Known const known[] = {{"nth-child", CssPseudo::Kind::kNthChild},
                                  {"nth-last-child", CssPseudo::Kind::kNthLastChild},
                                  {"nth-of-type", CssPseudo::Kind::kNthOfType},
                                  {"nth-last-of-type", CssPseudo::Kind::kNthLastOfType}};
    for (Known const& entry : known) {
        if (name == entry.name) {
            return entry.kind;
        }
    }
    return std::nullopt;
}

/// Reads a pseudo-class or pseudo-element behind its ':', and adds to the specificity.
CssPseudo ParsePseudo(Tokens& tokens, unsigned& specificity, int level) {
    CssPseudo pseudo;
    std::size_t const begin = tokens.Peek().begin;
    if (tokens.Sees(':')) {
        tokens.Take();
        if (!tokens.Sees(Kind::kIdent)) {
            throw SelectorError{begin, "a pseudo-element's name is missing"};
        }
        tokens.Take();
        specificity = Sum(specificity, kTypeWeight);
        return pseudo;
    }
    if (tokens.Sees(Kind::kFunction)) {
        std::string const name = AsciiLower(tokens.Peek().text);
        std::size_t const first = tokens.At() + 1;
        std::size_t const last = tokens.TakeComponent();
        if (std::optional<CssPseudo::Kind> const counting = CountingKind(name)) {
            std::string text;
            for (Tokens inside = tokens.Range(first, last); !inside.AtEnd();) {
                CssToken const& token = inside.Take();
                text += token.kind == Kind::kSpace ? "" : AsciiLower(token.text);
            }
            if (!ParseNth(text, pseudo)) {
                throw SelectorError{begin, "'" + text + "' in :" + name + "() is not supported"};
            }
            pseudo.kind = *counting;
            specificity = Sum(specificity, kClassWeight);
            return pseudo;
        }
        if (level >= kMostNesting || (name != "not" && name != "is" && name != "where")) {
            throw SelectorError{begin, "':" + name + "()' is not supported"};
        }
        pseudo.kind = name == "not" ? CssPseudo::Kind::kNot : CssPseudo::Kind::kIs;
        pseudo.arguments = ParseSelectors(tokens.Range(first, last), level + 1);
        unsigned most = 0;
        for (CssSelector const& argument : pseudo.arguments) {
            most = std::max(most, argument.specificity);
        }
        specificity = Sum(specificity, name == "where" ? 0U : most);
        return pseudo;
    }
    if (!tokens.Sees(Kind::kIdent)) {
        throw SelectorError{begin, "a pseudo-class's name is missing"};
    }
    struct Known {
        char const* name;
        CssPseudo::Kind kind;
    };
    static Known const known[] = {{"root", CssPseudo::Kind::kRoot},
                                  {"empty", CssPseudo::Kind::kEmpty},
                                  {"first-child", CssPseudo::Kind::kNthChild},
                                  {"last-child", CssPseudo::Kind::kNthLastChild},
                                  {"first-of-type", CssPseudo::Kind::kNthOfType},
                                  {"last-of-type", CssPseudo::Kind::kNthLastOfType},
                                  {"hover", CssPseudo::Kind::kNever},
                                  {"active", CssPseudo::Kind::kNever},
                                  {"focus", CssPseudo::Kind::kNever},
                                  {"focus-within", CssPseudo::Kind::kNever},
                                  {"focus-visible", CssPseudo::Kind::kNever},
                                  {"target", CssPseudo::Kind::kNever},
                                  {"visited", CssPseudo::Kind::kNever},
                                  {"before", CssPseudo::Kind::kNever},
                                  {"after", CssPseudo::Kind::kNever}};
    std::string const name = AsciiLower(tokens.Take().text);
    for (Known const& entry : known) {
        if (name == entry.name) {
            pseudo.kind = entry.kind;
            specificity = Sum(specificity, kClassWeight);
            return pseudo;
        }
    }
    throw SelectorError{begin, "':" + name + "' is not supported"};
}

/// Reads the type of a compound, with or without a namespace. True when there was one.
bool ParseType(Tokens& tokens, CssCompound& compound) {
    auto const named = [&tokens](std::size_t ahead) {
        return tokens.Peek(ahead).kind == Kind::kIdent || tokens.Peek(ahead).Is('*');
    };
    if (tokens.AtEnd()) {
        return false;
    }
    if (named(0) && tokens.Peek(1).Is('|') && named(2)) {
        tokens.Take();
        tokens.Take();
    } else if (tokens.Sees('|') && named(1)) {
        tokens.Take();
    } else if (!named(0)) {
        return false;
    }
    CssToken const& token = tokens.Take();
    compound.type = token.kind == Kind::kIdent ? token.text : "";
    return true;
}

CssCompound ParseCompound(Tokens& tokens, unsigned& specificity, int level) {
    CssCompound compound;
    std::size_t const begin = tokens.Peek().begin;
    bool any = ParseType(tokens, compound);
    if (!compound.type.empty()) {
        specificity = Sum(specificity, kTypeWeight);
    }
    while (!tokens.AtEnd()) {
        if (tokens.Sees(Kind::kHash) && tokens.Peek().identifier) {
            compound.ids.push_back(tokens.Take().text);
            specificity = Sum(specificity, kIdWeight);
        } else if (tokens.Sees('.') && tokens.Peek(1).kind == Kind::kIdent) {
            tokens.Take();
            compound.classes.push_back(tokens.Take().text);
            specificity = Sum(specificity, kClassWeight);
        } else if (tokens.Sees('[')) {
            tokens.Take();
            compound.attributes.push_back(ParseAttribute(tokens));
            specificity = Sum(specificity, kClassWeight);
        } else if (tokens.Sees(':')) {
            tokens.Take();
            bool const child =
                tokens.Sees(Kind::kIdent) && AsciiLower(tokens.Peek().text) == "only-child";
            bool const ofType =
                tokens.Sees(Kind::kIdent) && AsciiLower(tokens.Peek().text) == "only-of-type";
            if (child || ofType) { // the first and the last
                tokens.Take();
                CssPseudo pseudo;
                pseudo.kind = child ? CssPseudo::Kind::kNthChild : CssPseudo::Kind::kNthOfType;
                compound.pseudos.push_back(pseudo);
                pseudo.kind =
                    child ? CssPseudo::Kind::kNthLastChild : CssPseudo::Kind::kNthLastOfType;
                compound.pseudos.push_back(std::move(pseudo));
                specificity = Sum(specificity, kClassWeight);
            } else {
                compound.pseudos.push_back(ParsePseudo(tokens, specificity, level));
            }
        } else {
            break;
        }
        any = true;
    }
    if (!any) {
        throw SelectorError{begin, "a selector is missing or has a mistake"};
    }
    return compound;
}

/// Reads a list of selectors that fills the range.
std::vector<CssSelector> ParseSelectors(Tokens tokens, int level) {
    std::vector<CssSelector> selectors;
    while (true) {
        CssSelector selector;
        char combinator = '\0';
        while (true) {
            tokens.SkipSpace();
            selector.compounds.push_back(ParseCompound(tokens, selector.specificity, level));
            selector.compounds.back().combinator = combinator;
            combinator = tokens.Sees(Kind::kSpace) ? ' ' : '\0';
            tokens.SkipSpace();
            if (tokens.Sees('>') || tokens.Sees('+') || tokens.Sees('~')) {
                combinator = tokens.Take().text[0];
            }
            if (tokens.AtEnd() || tokens.Sees(',')) {
                break;
            }
            if (combinator == '\0') {
                throw SelectorError{tokens.Peek().begin, "a selector has a mistake"};
            }
        }
        if (combinator != '\0' && combinator != ' ') {
            throw SelectorError{tokens.Peek().begin, "a selector ends in a combinator"};
        }
        selectors.push_back(std::move(selector));
        if (tokens.AtEnd()) {
            return selectors;
        }
        tokens.Take(); // the comma
    }
}

class Parser {
public:
    Parser(std::string_view text, CssComplaint const& complain)
        : mText(text), mComplain(complain), mTokens(CssTokens(text)) {}

    std::vector<CssRule> Rules() {
        Rules(Whole(), 0);
        return std::move(mRules);
    }
    std::vector<CssDeclaration> Declarations() { return Declarations(Whole()); }

private:
    Tokens Whole() const { return Tokens(mTokens, 0, mTokens.size() - 1); }
    void Rules(Tokens tokens, int level);
    void AtRule(Tokens& tokens, int level);
    std::vector<CssDeclaration> Declarations(Tokens tokens) const;
    std::optional<CssDeclaration> Declaration(Tokens& tokens) const;

    /// Returns the text of the tokens from `begin` up to `end`, with single blanks for space and no
    /// space at its ends.
    std::string TextOf(std::size_t begin, std::size_t end) const {
        std::string text;
        for (std::size_t i = begin; i < end; ++i) {
            CssToken const& token = mTokens[i];
            text += token.kind == Kind::kSpace ? std::string_view(" ")
                                               : mText.substr(token.begin, token.end - token.begin);
        }
        std::size_t const first = std::min(text.find_first_not_of(' '), text.size());
        return text.substr(first, text.find_last_not_of(' ') + 1 - first);
    }

    std::string_view mText;
    CssComplaint const& mComplain;
    std::vector<CssToken> mTokens;
    std::vector<CssRule> mRules;
};

void Parser::Rules(Tokens tokens, int level) {
    while (!tokens.AtEnd()) {
        if (tokens.Sees(Kind::kSpace) || tokens.Sees(Kind::kCdMark)) {
            tokens.Take();
            continue;
        }
        if (tokens.Sees(Kind::kAtKeyword)) {
            AtRule(tokens, level);
            continue;
        }
        std::size_t const begin = tokens.At();
        std::size_t const offset = tokens.Peek().begin;
        tokens.SkipTo("{");
        if (tokens.AtEnd()) {
            mComplain(offset, "a rule without declarations is left out");
            return;
        }
        std::size_t const open = tokens.At();
        std::size_t const close = tokens.TakeComponent();
        try {
            CssRule rule;
            rule.selectors = ParseSelectors(tokens.Range(begin, open), 0);
            rule.declarations = Declarations(tokens.Range(open + 1, close));
            mRules.push_back(std::move(rule));
        } catch (SelectorError const& e) {
            mComplain(e.offset, "the rule '" + TextOf(begin, open) + "' is left out: " + e.message);
        }
    }
}

void Parser::AtRule(Tokens& tokens, int level) {
    CssToken const& keyword = tokens.Take();
    std::string const name = AsciiLower(keyword.text);
    std::size_t const begin = tokens.At();
    tokens.SkipTo(";{");
    std::size_t const open = tokens.At();
    std::size_t const close = tokens.AtEnd() ? open : tokens.TakeComponent();
    if (name == "media" && level < kMostNesting) {
        bool known = true;
        std::string const media = TextOf(begin, open);
        if (MediaApply(media, known)) {
            Rules(tokens.Range(std::min(open + 1, close), close), level + 1);
        } else if (!known) {
            mComplain(keyword.begin, "the rules for @media " + media + " are left out");
        }
    } else if (name != "charset" && name != "namespace" && name != "font-face") {
        mComplain(keyword.begin, "@" + name + " is left out");
    }
}

std::vector<CssDeclaration> Parser::Declarations(Tokens tokens) const {
    std::vector<CssDeclaration> declarations;
    while (!tokens.AtEnd()) {
        if (tokens.Sees(Kind::kSpace) || tokens.Sees(';')) {
            tokens.Take();
            continue;
        }
        if (std::optional<CssDeclaration> declaration = Declaration(tokens)) {
            declarations.push_back(*std::move(declaration));
        }
    }
    return declarations;
}

/// Reads up to the next semicolon. Returns nothing, after a complaint, when there is a mistake.
std::optional<CssDeclaration> Parser::Declaration(Tokens& tokens) const {
    CssDeclaration declaration;
    std::size_t const first = tokens.At();
    declaration.offset = tokens.Peek().begin;
    bool good = tokens.Sees(Kind::kIdent);
    if (good) {
        std::string const& name = tokens.Take().text;
        declaration.property = name.compare(0, 2, "--") == 0 ? name : AsciiLower(name);
        tokens.SkipSpace();
        good = tokens.Sees(':');
    }
    if (good) {
        tokens.Take();
    }
    std::size_t const begin = tokens.At();
    tokens.SkipTo(";");
    std::size_t end = tokens.At();
    for (std::size_t i = begin; i < end; ++i) {
        good = good && mTokens[i].kind != Kind::kBadString && mTokens[i].kind != Kind::kBadUrl;
    }
    // "!important" may have space around its parts.
    auto const trim = [&] {
        while (end > begin && mTokens[end - 1].kind == Kind::kSpace) {
            --end;
        }
    };
    std::size_t const whole = end;
    trim();
    if (end > begin && mTokens[end - 1].kind == Kind::kIdent &&
        AsciiLower(mTokens[end - 1].text) == "important") {
        --end;
        trim();
        declaration.important = end > begin && mTokens[end - 1].Is('!');
        end = declaration.important ? end - 1 : whole;
    }
    declaration.value = TextOf(begin, end);
    if (!good || declaration.value.empty()) {
        mComplain(declaration.offset,
                  "'" + TextOf(first, whole) + "' is no declaration, and is left out");
        return std::nullopt;
    }
    return declaration;
}

} // namespace

std::vector<CssRule> ParseStyleSheet(std::string_view text, CssComplaint const& complain) {
    return Parser(text, complain).Rules();
}

std::vector<CssDeclaration> ParseDeclarations(std::string_view text, CssComplaint const& complain) {
    return Parser(text, complain).Declarations();
}

bool MediaApply(std::string_view media, bool& known) {
    bool apply = false;
    bool any = false;
    std::vector<CssToken> const tokens = CssTokens(media);
    for (CssToken const& token : tokens) {
        if (token.kind == Kind::kIdent) {
            any = true;
            std::string const type = AsciiLower(token.text);
            apply = apply || type == "all" || type == "screen";
            known = known && type != "not" && type != "and";
        } else if (token.kind != Kind::kSpace && token.kind != Kind::kEnd && !token.Is(',')) {
            known = false;
        }
    }
    return known && (apply || !any);
}

std::string UrlFragment(std::string_view value) {
    std::vector<CssToken> const tokens = CssTokens(value);
    std::string address;
    if (tokens[0].kind == Kind::kUrl) {
        address = tokens[0].text;
    } else if (tokens[0].kind == Kind::kFunction && AsciiLower(tokens[0].text) == "url") {
        std::size_t const i = tokens[1].kind == Kind::kSpace ? 2 : 1;
        address = tokens[i].kind == Kind::kString ? tokens[i].text : "";
    }
    return !address.empty() && address[0] == '#' ? address.substr(1) : "";
}

std::string PathFunction(std::string_view value, bool& found) {
    std::vector<CssToken> const tokens = CssTokens(value);
    found = false;
    if (tokens[0].kind != Kind::kFunction || AsciiLower(tokens[0].text) != "path") {
        return "";
    }
    for (CssToken const& token : tokens) {
        if (token.kind == Kind::kString) {
            found = true;
            return token.text;
        }
    }
    return "";
}

} // namespace tool
