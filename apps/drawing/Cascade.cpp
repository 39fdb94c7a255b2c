// SPDX-License-Identifier: MIT

#include "Cascade.h"

#include "Ascii.h"
#include "CssMath.h"
#include "CssTokens.h"
#include "Numbers.h"
#include "PenNames.h"
#include "SvgAttributes.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tool {

namespace {

/// The kinds of values that are told apart.
enum class Syntax {
    kDisplay,
    kVisibility,
    kRule,
    kClipPath,
    kLength,
    kPath,
    kWidth,
    kJoin,
    kCap,
    kNumber,
    kDashes,
    kOffset,
    kOrigin,
    kTransform,
    kBox,
    kAny
};

struct Entry {
    char const* name;
    Syntax syntax;
};

/// In the order of the enumeration.
constexpr std::array<Entry, kProperties> kTable{{{"display", Syntax::kDisplay},
                                                 {"visibility", Syntax::kVisibility},
                                                 {"fill", Syntax::kAny},
                                                 {"stroke", Syntax::kAny},
                                                 {"stroke-width", Syntax::kWidth},
                                                 {"stroke-linejoin", Syntax::kJoin},
                                                 {"stroke-linecap", Syntax::kCap},
                                                 {"stroke-miterlimit", Syntax::kNumber},
                                                 {"stroke-dasharray", Syntax::kDashes},
                                                 {"stroke-dashoffset", Syntax::kOffset},
                                                 {"stroke-opacity", Syntax::kAny},
                                                 {"fill-opacity", Syntax::kAny},
                                                 {"opacity", Syntax::kAny},
                                                 {"paint-order", Syntax::kAny},
                                                 {"vector-effect", Syntax::kAny},
                                                 {"color", Syntax::kAny},
                                                 {"fill-rule", Syntax::kRule},
                                                 {"clip-rule", Syntax::kRule},
                                                 {"clip-path", Syntax::kClipPath},
                                                 {"transform", Syntax::kTransform},
                                                 {"translate", Syntax::kTransform},
                                                 {"rotate", Syntax::kTransform},
                                                 {"scale", Syntax::kTransform},
                                                 {"transform-origin", Syntax::kOrigin},
                                                 {"transform-box", Syntax::kBox},
                                                 {"font-size", Syntax::kAny},
                                                 {"overflow", Syntax::kAny},
                                                 {"mask", Syntax::kAny},
                                                 {"filter", Syntax::kAny},
                                                 {"marker-start", Syntax::kAny},
                                                 {"marker-mid", Syntax::kAny},
                                                 {"marker-end", Syntax::kAny},
                                                 {"x", Syntax::kLength},
                                                 {"y", Syntax::kLength},
                                                 {"width", Syntax::kLength},
                                                 {"height", Syntax::kLength},
                                                 {"rx", Syntax::kLength},
                                                 {"ry", Syntax::kLength},
                                                 {"cx", Syntax::kLength},
                                                 {"cy", Syntax::kLength},
                                                 {"r", Syntax::kLength},
                                                 {"d", Syntax::kPath}}};

/// What turns, scales and moves, from that which applies to a point first.
constexpr Property kTransforms[] = {Property::kTransform, Property::kScale, Property::kRotate,
                                    Property::kTranslate};

/// Returns the index of a property; kProperties for an unknown one.
std::size_t IndexOf(std::string_view name) {
    static std::unordered_map<std::string_view, std::size_t> const indices = [] {
        std::unordered_map<std::string_view, std::size_t> map;
        for (std::size_t i = 0; i < kTable.size(); ++i) {
            map.emplace(kTable[i].name, i);
        }
        return map;
    }();
    auto const found = indices.find(name);
    return found == indices.end() ? kProperties : found->second;
}

/// The limits of var() in custom properties: their nesting, and the length of a value.
constexpr int kMostVarLevels = 16;
constexpr std::size_t kMostVarBytes = std::size_t{1} << 16;

bool IsOneOf(std::string_view value, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), value) != words.end();
}

/// True when style sheets may write a length in this way: with a unit, unless it is 0.
bool IsCssLength(std::string_view value) {
    if (value == "auto" || IsCssMath(value)) {
        return true; // read with the element
    }
    Scanner scanner(value);
    if (!scanner.NumberFollows()) {
        return false;
    }
    try {
        double const number = scanner.Number();
        std::string_view const unit = scanner.Word();
        return scanner.AtEnd() && (number == 0.0 || !unit.empty());
    } catch (TextError const&) {
        return false;
    }
}

/// True for a length of a line's style, which may do without a unit, or for a sum.
bool IsPenLength(std::string_view value, bool maybeNegative) {
    if (IsCssMath(value)) {
        return true; // read with the element
    }
    try {
        double const number = ParseLength(value).number;
        return maybeNegative || number >= 0.0;
    } catch (TextError const&) {
        return false;
    }
}

bool IsDashes(std::string_view value) {
    std::vector<Length> const lengths = ParseLengths(value);
    return value == "none" ||
           (!lengths.empty() && std::all_of(lengths.begin(), lengths.end(),
                                            [](Length const& dash) { return dash.number >= 0.0; }));
}

/// True for a number that is not negative and has no unit.
bool IsNumber(std::string_view value) {
    try {
        Length const number = ParseLength(value);
        return number.number >= 0.0 && number.unit.empty();
    } catch (TextError const&) {
        return false;
    }
}

/// True for the centre of a transform. Style sheets take no number without a unit but 0.
bool IsOrigin(std::string_view value, bool css) {
    try {
        ParseTransformOrigin(value, [css](Length const& length, bool) {
            if (css && length.unit.empty() && length.number != 0.0) {
                throw TextError(0, "has no unit");
            }
            return length.number;
        });
        return true;
    } catch (TextError const&) {
        return false;
    }
}

/// Returns what one of the properties for transforms says in a style sheet.
CMatrix3x3 CssTransformOf(Property property, std::string_view value, LengthUnits const& units) {
    switch (property) {
    case Property::kTranslate:
        return ParseCssTranslate(value, units);
    case Property::kRotate:
        return ParseCssRotate(value);
    case Property::kScale:
        return ParseCssScale(value);
    default:
        return ParseCssTransform(value, units);
    }
}

bool IsCssTransform(Property property, std::string_view value) {
    try {
        CssTransformOf(property, value, [](Length const& length, bool) { return length.number; });
        return true;
    } catch (TextError const&) {
        return false;
    }
}

bool HasVar(std::string_view value) { return value.find("var(") != std::string_view::npos; }

/// True when the property has this value. Lengths of attributes are read elsewhere.
bool IsValid(Property property, std::string const& value, bool css) {
    std::string const word = AsciiLower(value);
    if (IsWide(word)) {
        return true;
    }
    if (HasVar(word)) {
        return true; // as long as nothing takes its place
    }
    Syntax const syntax = kTable[static_cast<std::size_t>(property)].syntax;
    bool const math = syntax == Syntax::kLength || syntax == Syntax::kWidth ||
                      syntax == Syntax::kOffset || syntax == Syntax::kOrigin ||
                      syntax == Syntax::kTransform || property == Property::kFontSize;
    if (!math && word.find("calc(") != std::string::npos) {
        return false;
    }
    switch (syntax) {
    case Syntax::kDisplay: {
        std::vector<CssToken> const tokens = CssTokens(value);
        return std::all_of(tokens.begin(), tokens.end(), [](CssToken const& token) {
            return token.kind == CssToken::Kind::kIdent || token.kind == CssToken::Kind::kSpace ||
                   token.kind == CssToken::Kind::kEnd;
        });
    }
    case Syntax::kVisibility:
        return IsOneOf(word, {"visible", "hidden", "collapse"});
    case Syntax::kRule:
        return IsOneOf(word, {"nonzero", "evenodd"});
    case Syntax::kClipPath:
        return word == "none" || !UrlFragment(value).empty();
    case Syntax::kLength:
        return !css || IsCssLength(word);
    case Syntax::kPath: {
        bool found = false;
        PathFunction(value, found);
        return !css || found || word == "none";
    }
    case Syntax::kWidth:
    case Syntax::kOffset:
        return IsPenLength(word, syntax == Syntax::kOffset);
    case Syntax::kJoin:
        return JoinNamed(word).has_value();
    case Syntax::kCap:
        return CapNamed(word).has_value();
    case Syntax::kNumber:
        return IsNumber(word);
    case Syntax::kDashes:
        return IsDashes(word);
    case Syntax::kOrigin:
        return IsOrigin(word, css);
    case Syntax::kTransform:
        return !css || IsCssTransform(property, value);
    case Syntax::kBox:
        return IsOneOf(word, {"view-box", "fill-box", "stroke-box", "content-box", "border-box"});
    case Syntax::kAny:
        break;
    }
    return true;
}

bool IsElement(pugi::xml_node node) { return node.type() == pugi::node_element; }

/// True when a position is step * n + offset for an n from 0 on.
bool IsNth(int position, CssPseudo const& pseudo) {
    int const rest = position - pseudo.offset;
    return pseudo.step == 0 ? rest == 0 : rest % pseudo.step == 0 && rest / pseudo.step >= 0;
}

bool IsEmpty(pugi::xml_node element) {
    for (pugi::xml_node const child : element.children()) {
        if (child.type() == pugi::node_element || child.type() == pugi::node_pcdata ||
            child.type() == pugi::node_cdata) {
            return false;
        }
    }
    return true;
}

pugi::xml_node PreviousElement(pugi::xml_node node) {
    do {
        node = node.previous_sibling();
    } while (node && !IsElement(node));
    return node;
}

/// True when `list`, words with space between them, has the word.
bool HasWord(std::string_view list, std::string_view word) {
    for (std::size_t at = list.find(word); at != std::string_view::npos && !word.empty();
         at = list.find(word, at + 1)) {
        auto const space = [list](std::size_t i) { return i >= list.size() || IsSpace(list[i]); };
        if ((at == 0 || space(at - 1)) && space(at + word.size())) {
            return true;
        }
    }
    return false;
}

bool Matches(CssAttributeTest const& test, pugi::xml_node element) {
    pugi::xml_attribute const attribute = element.attribute(test.name.c_str());
    if (!attribute || test.match == '\0') {
        return static_cast<bool>(attribute);
    }
    std::string value = attribute.value();
    std::string wanted = test.value;
    if (test.ignoreCase) {
        value = AsciiLower(value);
        wanted = AsciiLower(wanted);
    }
    std::size_t const size = wanted.size();
    switch (test.match) {
    case '=':
        return value == wanted;
    case '~':
        return HasWord(value, wanted);
    case '|':
        return value == wanted || value.compare(0, size + 1, wanted + "-") == 0;
    case '^':
        return size > 0 && value.compare(0, size, wanted) == 0;
    case '$':
        return size > 0 && value.size() >= size &&
               value.compare(value.size() - size, size, wanted) == 0;
    default: // '*'
        return size > 0 && value.find(wanted) != std::string::npos;
    }
}

} // namespace

char const* NameOf(Property property) { return kTable[static_cast<std::size_t>(property)].name; }

bool HasTransform(ElementStyle const& style) {
    return std::any_of(std::begin(kTransforms), std::end(kTransforms), [&style](Property property) {
        Declared const& declared = style[property];
        return (declared.css || property == Property::kTransform) && !declared.value.empty() &&
               declared.value != "none" && !IsWide(declared.value);
    });
}

TPoint<double> TransformCentre(ElementStyle const& style, TPoint<double> const& corner,
                               LengthUnits const& units) {
    std::string_view const text = style[Property::kTransformOrigin].value;
    if (text.empty() || IsWide(text)) {
        return corner;
    }
    return corner + ParseTransformOrigin(text, units);
}

CMatrix3x3 TransformOf(ElementStyle const& style, TPoint<double> const& corner,
                       LengthUnits const& units) {
    CMatrix3x3 m;
    if (!HasTransform(style)) {
        return m;
    }
    for (Property const property : kTransforms) {
        Declared const& declared = style[property];
        if (declared.css && !IsWide(declared.value)) {
            m = m * CssTransformOf(property, declared.value, units);
        } else if (property == Property::kTransform && !IsWide(declared.value)) {
            m = ParseTransform(declared.value);
        }
    }
    TPoint<double> const centre = TransformCentre(style, corner, units);
    if (centre.Null()) {
        return m;
    }
    return CMatrix3x3().Translate(-centre) * m * CMatrix3x3().Translate(centre);
}

bool IsWide(std::string_view value) {
    return IsOneOf(value, {"inherit", "initial", "unset", "revert", "revert-layer"});
}

Cascade::Cascade(SvgDocument const& document, Complaint complain)
    : mDocument(document), mComplain(std::move(complain)) {
    for (pugi::xml_node const element : document.Elements()) {
        if (document.LocalName(element) == "style") {
            ReadSheet(element);
        }
    }
    for (std::size_t i = 0; i < mRules.size(); ++i) {
        CssCompound const& last = mRules[i].selector.compounds.back();
        if (!last.ids.empty()) {
            mById[last.ids.front()].push_back(i);
        } else if (!last.classes.empty()) {
            mByClass[last.classes.front()].push_back(i);
        } else if (!last.type.empty()) {
            mByType[last.type].push_back(i);
        } else {
            mOthers.push_back(i);
        }
    }
}

void Cascade::ReadSheet(pugi::xml_node style) {
    std::string const type = AsciiLower(Trimmed(style.attribute("type").value()));
    if (!type.empty() && type != "text/css") {
        mComplain(mDocument.Place(style), "a style sheet of the type '" + type + "' is left out");
        return;
    }
    std::string const media = style.attribute("media").value();
    bool known = true;
    if (!MediaApply(media, known)) {
        if (!known) {
            mComplain(mDocument.Place(style), "the style sheet for '" + media + "' is left out");
        }
        return;
    }
    std::string text;
    std::size_t begin = mDocument.Offset(style);
    for (pugi::xml_node const child : style.children()) {
        if (text.empty()) {
            begin = static_cast<std::size_t>(std::max<std::ptrdiff_t>(child.offset_debug(), 0));
        }
        text += child.value();
    }
    std::size_t const first = mDocument.LineOf(begin);
    auto const complain = [&](std::size_t offset, std::string const& message) {
        auto const end = text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, text.size()));
        auto const line = first + static_cast<std::size_t>(std::count(text.begin(), end, '\n'));
        mComplain("line " + std::to_string(line) + ", <style>", message);
    };
    for (CssRule& rule : ParseStyleSheet(text, complain)) {
        Block block;
        block.values = ValuesOf(rule.declarations, complain);
        block.all = std::move(rule.declarations);
        for (CssSelector& selector : rule.selectors) {
            mRules.push_back({std::move(selector), mBlocks.size(), mRules.size()});
        }
        mBlocks.push_back(std::move(block));
    }
}

std::vector<Cascade::Value> Cascade::ValuesOf(std::vector<CssDeclaration> const& declarations,
                                              CssComplaint const& complain) const {
    std::vector<Value> values;
    for (CssDeclaration const& declaration : declarations) {
        if (declaration.property == "marker") { // stands for these three
            for (Property const property :
                 {Property::kMarkerStart, Property::kMarkerMid, Property::kMarkerEnd}) {
                values.push_back({property, declaration.value, declaration.important});
            }
            continue;
        }
        std::size_t const index = IndexOf(declaration.property);
        if (index == kProperties) {
            continue;
        }
        auto const property = static_cast<Property>(index);
        if (!IsValid(property, declaration.value, true)) {
            complain(declaration.offset,
                     "'" + declaration.property + ": " + declaration.value + "' is left out");
            continue;
        }
        values.push_back({property, declaration.value, declaration.important});
    }
    return values;
}

std::vector<Cascade::Value> const& Cascade::StyleAttribute(pugi::xml_node element) {
    std::string_view const text = element.attribute("style").value();
    auto const found = mStyleAttributes.find(text);
    if (found != mStyleAttributes.end()) {
        return found->second;
    }
    auto const complain = [&](std::size_t, std::string const& message) {
        mComplain(mDocument.Place(element), "in the style attribute, " + message);
    };
    return mStyleAttributes.emplace(text, ValuesOf(ParseDeclarations(text, complain), complain))
        .first->second;
}

bool Cascade::MatchesOne(CssCompound const& compound, pugi::xml_node element,
                         std::string_view type) const {
    if (!compound.type.empty() && compound.type != type) {
        return false;
    }
    for (std::string const& id : compound.ids) {
        if (element.attribute("id").value() != id) {
            return false;
        }
    }
    std::string_view const classes = element.attribute("class").value();
    for (std::string const& name : compound.classes) {
        if (!HasWord(classes, name)) {
            return false;
        }
    }
    for (CssAttributeTest const& test : compound.attributes) {
        if (!tool::Matches(test, element)) {
            return false;
        }
    }
    for (CssPseudo const& pseudo : compound.pseudos) {
        auto const any = [&] {
            return std::any_of(
                pseudo.arguments.begin(), pseudo.arguments.end(),
                [&](CssSelector const& argument) { return Matches(argument, element, type); });
        };
        bool holds = false;
        switch (pseudo.kind) {
        case CssPseudo::Kind::kRoot:
            holds = element == mDocument.Root();
            break;
        case CssPseudo::Kind::kEmpty:
            holds = IsEmpty(element);
            break;
        case CssPseudo::Kind::kNthChild:
            holds = IsNth(PositionsOf(element).child, pseudo);
            break;
        case CssPseudo::Kind::kNthLastChild:
            holds = IsNth(PositionsOf(element).lastChild, pseudo);
            break;
        case CssPseudo::Kind::kNthOfType:
            holds = IsNth(PositionsOf(element).ofType, pseudo);
            break;
        case CssPseudo::Kind::kNthLastOfType:
            holds = IsNth(PositionsOf(element).lastOfType, pseudo);
            break;
        case CssPseudo::Kind::kNot:
            holds = !any();
            break;
        case CssPseudo::Kind::kIs:
            holds = any();
            break;
        case CssPseudo::Kind::kNever:
            break;
        }
        if (!holds) {
            return false;
        }
    }
    return true;
}

bool Cascade::Matches(CssSelector const& selector, pugi::xml_node element,
                      std::string_view type) const {
    std::vector<CssCompound> const& compounds = selector.compounds;
    std::size_t i = compounds.size() - 1;
    if (!MatchesOne(compounds[i], element, type)) {
        return false;
    }
    // All elements at which the compounds on the right can begin, the deepest first. The parents of
    // all of them lie on one line of ancestors, so the work stays in proportion to its length.
    std::vector<pugi::xml_node> found = {element};
    for (; i > 0 && !found.empty(); --i) {
        std::vector<pugi::xml_node> next;
        auto const take = [&](pugi::xml_node node) {
            if (IsElement(node) && (next.empty() || next.back() != node) &&
                MatchesOne(compounds[i - 1], node, mDocument.LocalName(node))) {
                next.push_back(node);
            }
        };
        char const combinator = compounds[i].combinator;
        if (combinator == ' ') {
            for (pugi::xml_node node = found.front().parent(); node; node = node.parent()) {
                take(node);
            }
        } else if (combinator == '>') {
            for (pugi::xml_node const node : found) {
                take(node.parent());
            }
        } else if (combinator == '+') {
            for (pugi::xml_node const node : found) {
                take(PreviousElement(node));
            }
        } else {
            pugi::xml_node parent;
            for (pugi::xml_node const node : found) {
                // Of the elements with one parent the first in the list stands furthest back.
                if (node.parent() != parent) {
                    parent = node.parent();
                    for (pugi::xml_node before = PreviousElement(node); before;
                         before = PreviousElement(before)) {
                        take(before);
                    }
                }
            }
        }
        found = std::move(next);
    }
    return !found.empty();
}

void Cascade::CollectMatches(pugi::xml_node element, std::string_view type,
                             std::vector<Rule const*>& matches) const {
    auto const test = [&](std::vector<std::size_t> const& rules) {
        for (std::size_t const i : rules) {
            if (Matches(mRules[i].selector, element, type)) {
                matches.push_back(&mRules[i]);
            }
        }
    };
    auto const testKey = [&](auto const& map, std::string_view key) {
        auto const found = map.find(key);
        if (found != map.end()) {
            test(found->second);
        }
    };
    testKey(mById, element.attribute("id").value());
    testKey(mByType, type);
    std::string_view classes = element.attribute("class").value();
    std::vector<std::string_view> names;
    while (!(classes = Trimmed(classes)).empty()) {
        std::size_t const end = std::min(classes.find_first_of(kSpaces), classes.size());
        std::string_view const name = classes.substr(0, end);
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(name);
            testKey(mByClass, name);
        }
        classes.remove_prefix(end);
    }
    test(mOthers);
    std::sort(matches.begin(), matches.end(), [](Rule const* a, Rule const* b) {
        return std::make_pair(a->selector.specificity, a->order) <
               std::make_pair(b->selector.specificity, b->order);
    });
}

Cascade::Positions const& Cascade::PositionsOf(pugi::xml_node element) const {
    auto const known = mPositions.find(mDocument.Offset(element));
    if (known != mPositions.end()) {
        return known->second;
    }
    // All children of one parent at once, so that many children cost no more each.
    std::vector<pugi::xml_node> children;
    std::unordered_map<std::string_view, int> counts;
    for (pugi::xml_node const child : element.parent().children()) {
        if (IsElement(child)) {
            children.push_back(child);
            Positions& positions = mPositions[mDocument.Offset(child)];
            positions.child = static_cast<int>(children.size());
            positions.ofType = ++counts[child.name()];
        }
    }
    for (pugi::xml_node const child : children) {
        Positions& positions = mPositions[mDocument.Offset(child)];
        positions.lastChild = static_cast<int>(children.size()) + 1 - positions.child;
        positions.lastOfType = counts[child.name()] + 1 - positions.ofType;
    }
    return mPositions[mDocument.Offset(element)];
}

/// Returns the value of a custom property, which elements inherit.
std::string Cascade::CustomProperty(pugi::xml_node element, std::string const& name, bool& found) {
    for (; IsElement(element); element = element.parent()) {
        std::map<std::string, std::string> values = SheetsAs(element, mDocument.LocalName(element));
        for (CssDeclaration const& declaration : ParseDeclarations(
                 element.attribute("style").value(), [](std::size_t, auto const&) {})) {
            std::string& value = values[declaration.property];
            if (declaration.important || value.find("!important") == std::string::npos) {
                value = declaration.value;
            }
        }
        auto const value = values.find(name);
        if (value != values.end()) {
            found = true;
            return value->second.substr(0, value->second.find("!important"));
        }
    }
    found = false;
    return "";
}

/// Returns a value with the custom properties in place of var(). `good` becomes false where one of
/// them does not exist and has no fallback, and for values without end.
std::string Cascade::WithoutVars(pugi::xml_node element, std::string const& value, int level,
                                 bool& good) {
    std::string out;
    std::size_t at = 0;
    for (std::size_t var = value.find("var("); var != std::string::npos && good;
         var = value.find("var(", at)) {
        out += value.substr(at, var - at);
        std::size_t end = var + 4;
        std::size_t comma = std::string::npos;
        for (int depth = 1; end < value.size(); ++end) {
            depth += value[end] == '(' ? 1 : value[end] == ')' ? -1 : 0;
            if (depth == 0) {
                break;
            }
            if (value[end] == ',' && depth == 1 && comma == std::string::npos) {
                comma = end;
            }
        }
        std::size_t const nameEnd = std::min(comma, end);
        std::string const name(Trimmed(std::string_view(value).substr(var + 4, nameEnd - var - 4)));
        std::string part = CustomProperty(element, name, good);
        if (!good && comma != std::string::npos) {
            good = true;
            part = value.substr(comma + 1, end - comma - 1);
        }
        if (HasVar(part)) {
            good = good && level < kMostVarLevels;
            part = good ? WithoutVars(element, part, level + 1, good) : "";
        }
        out += part;
        good = good && out.size() <= kMostVarBytes;
        at = std::min(end + 1, value.size());
    }
    return out + value.substr(at);
}

ElementStyle Cascade::Of(pugi::xml_node element) {
    ElementStyle style;
    bool hasStyle = false;
    for (pugi::xml_attribute const attribute : element.attributes()) {
        hasStyle = hasStyle || std::string_view(attribute.name()) == "style";
        std::size_t const index = IndexOf(attribute.name());
        if (index == kProperties) {
            continue;
        }
        auto const property = static_cast<Property>(index);
        std::string_view const value = Trimmed(attribute.value());
        if (kTable[index].syntax != Syntax::kLength && kTable[index].syntax != Syntax::kPath &&
            kTable[index].syntax != Syntax::kAny && !IsValid(property, std::string(value), false)) {
            mComplain(mDocument.Place(element), "attribute " + std::string(attribute.name()) +
                                                    ": '" + std::string(value) + "' is left out");
            continue;
        }
        style[property] = {value, false, false};
    }
    auto const apply = [&style](std::vector<Value> const& values, bool important) {
        for (Value const& value : values) {
            if (value.important == important) {
                style[value.property] = {value.value, true, important};
            }
        }
    };
    std::vector<Rule const*> matches;
    if (!mRules.empty()) {
        CollectMatches(element, mDocument.LocalName(element), matches);
    }
    std::vector<Value> const* const own = hasStyle ? &StyleAttribute(element) : nullptr;
    for (bool const important : {false, true}) {
        for (Rule const* rule : matches) {
            apply(mBlocks[rule->block].values, important);
        }
        if (own != nullptr) {
            apply(*own, important);
        }
    }
    for (std::size_t i = 0; i < kProperties; ++i) {
        auto const property = static_cast<Property>(i);
        Declared& declared = style[property];
        if (!HasVar(declared.value)) {
            continue;
        }
        bool good = true;
        std::string const value = WithoutVars(element, std::string(declared.value), 0, good);
        std::string const trimmed(Trimmed(value));
        if (good && IsValid(property, trimmed, declared.css)) {
            declared.value = *mSubstituted.insert(trimmed).first;
        } else {
            mComplain(mDocument.Place(element), std::string(tool::NameOf(property)) + ": '" +
                                                    std::string(declared.value) + "' has no value");
            declared = Declared(); // as if nothing was declared
        }
    }
    return style;
}

std::map<std::string, std::string> Cascade::SheetsAs(pugi::xml_node element,
                                                     std::string_view type) const {
    std::map<std::string, std::string> values;
    std::vector<Rule const*> matches;
    CollectMatches(element, type, matches);
    for (bool const important : {false, true}) {
        for (Rule const* rule : matches) {
            for (CssDeclaration const& declaration : mBlocks[rule->block].all) {
                if (declaration.important == important) {
                    values[declaration.property] =
                        declaration.value + (important ? " !important" : "");
                }
            }
        }
    }
    return values;
}

} // namespace tool
