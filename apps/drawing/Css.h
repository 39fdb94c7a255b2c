// SPDX-License-Identifier: MIT

// Style sheets and style attributes as data: rules, selectors and declarations.
//
// The reader follows the CSS Syntax Module, Level 3, and its recovery from errors. A declaration
// with a mistake is dropped, and so is a rule of which one selector has a mistake; the rest stays.
// It knows these selectors, with the combinators of descendant, child and siblings:
//
//     type, *, .class, #id, [attribute] in all its forms, :root, :empty, :first-child,
//     :last-child, :only-child, :nth-child(...), :nth-last-child(...), the same five for -of-type,
//     :not(...), :is(...), :where(...)
//
// :hover and other states of a window, and pseudo-elements, match nothing. Of the rules that begin
// with @ it reads @media with the types `screen` and `all`.

#ifndef TRAMMEL_APP_CSS_H
#define TRAMMEL_APP_CSS_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// One `property: value`.
struct CssDeclaration {
    std::string property;   ///< in lower case, unless it is a custom property ("--name")
    std::string value;      ///< without comments, and without space at its ends
    bool important = false; ///< was followed by "!important"
    std::size_t offset = 0; ///< of its first character in the text
};

/// The test of one attribute.
struct CssAttributeTest {
    std::string name;
    char match = '\0'; ///< NUL: the attribute exists; otherwise '=' or the sign before it
    std::string value;
    bool ignoreCase = false;
};

struct CssSelector;

/// A pseudo-class.
struct CssPseudo {
    enum class Kind {
        kRoot,
        kEmpty,
        kNthChild,      ///< of all children, from the first
        kNthLastChild,  ///< from the last
        kNthOfType,     ///< of the children with the element's name
        kNthLastOfType, ///< likewise, from the last
        kNot,
        kIs,
        kNever,
    };
    Kind kind = Kind::kNever;
    // The positions that match, from 1: step * n + offset for an n from 0 on.
    int step = 0;
    int offset = 1;
    std::vector<CssSelector> arguments; ///< of :not, :is and :where
};

/// Tests of one element, all of which must hold.
struct CssCompound {
    std::string type; ///< empty: any
    std::vector<std::string> ids;
    std::vector<std::string> classes;
    std::vector<CssAttributeTest> attributes;
    std::vector<CssPseudo> pseudos;
    char combinator = '\0'; ///< ' ', '>', '+' or '~' to the compound before; NUL for the first
};

/// Compounds from left to right, and the selector's weight.
struct CssSelector {
    std::vector<CssCompound> compounds;
    unsigned specificity = 0; ///< ids, classes and types, 10 bits each
};

/// Selectors and their declarations.
struct CssRule {
    std::vector<CssSelector> selectors;
    std::vector<CssDeclaration> declarations;
};

/// Takes note of something that the reader leaves out, with its offset in the text.
typedef std::function<void(std::size_t offset, std::string const& message)> CssComplaint;

/// Returns the rules of a style sheet in order.
std::vector<CssRule> ParseStyleSheet(std::string_view text, CssComplaint const& complain);

/// Returns the declarations of a style attribute in order.
std::vector<CssDeclaration> ParseDeclarations(std::string_view text, CssComplaint const& complain);

/// True when a screen is among these media (a `media` attribute or the condition of @media).
/// `known` becomes false for conditions beyond a list of types.
bool MediaApply(std::string_view media, bool& known);

/// Returns the fragment of a value "url(#fragment)", in any of its spellings. It is empty for
/// another value.
std::string UrlFragment(std::string_view value);

/// Returns the text of a value 'path("text")'. `found` becomes false for another value.
std::string PathFunction(std::string_view value, bool& found);

} // namespace tool

#endif
