// SPDX-License-Identifier: MIT

#include "SvgEdit.h"

#include "Ascii.h"
#include "CssTokens.h"
#include "Markup.h"
#include "Numbers.h"
#include "PaintServer.h"
#include "SvgAttributes.h"
#include "Warning.h"

#include <trammel/PathStructure.h>
#include <trammel/SvgPath.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace tool {

namespace {

/// One attribute of a tag, by offsets in the text.
struct AttributeSpan {
    std::string_view name;
    std::size_t begin; ///< of the name
    std::size_t value; ///< behind the opening quote
    std::size_t end;   ///< of the closing quote
};

/// A start tag.
struct TagSpan {
    std::size_t nameEnd = 0;
    std::vector<AttributeSpan> attributes;
    std::size_t end = 0; ///< behind the '>'
    bool empty = false;  ///< ends in "/>"

    /// Returns the offset behind the last attribute, or behind the name.
    std::size_t Behind() const { return attributes.empty() ? nameEnd : attributes.back().end + 1; }
};

/// Returns the start tag at an offset. The document is well-formed, so its parts are there.
TagSpan TagAt(std::string_view text, std::size_t at) {
    TagSpan tag;
    tag.nameEnd = text.find_first_of(" \t\r\n/>", at + 1);
    std::size_t i = tag.nameEnd;
    while ((i = text.find_first_not_of(kXmlSpaces, i)) < text.size() && text[i] != '>' &&
           text[i] != '/') {
        AttributeSpan attribute;
        attribute.begin = i;
        i = text.find_first_of("= \t\r\n", i);
        attribute.name = text.substr(attribute.begin, i - attribute.begin);
        i = text.find_first_of("\"'", i);
        if (i == std::string_view::npos) {
            break;
        }
        attribute.value = i + 1;
        attribute.end = text.find(text[i], attribute.value);
        if (attribute.end == std::string_view::npos) {
            break;
        }
        i = attribute.end + 1;
        tag.attributes.push_back(attribute);
    }
    tag.empty = i < text.size() && text[i] == '/';
    tag.end = std::min(text.find('>', i), text.size() - 1) + 1;
    return tag;
}

/// Returns a share of a box, a number or a percentage.
double ShareOf(std::string const& text, double otherwise) {
    try {
        Length const share = ParseLength(text);
        return share.unit == "%" ? share.number / 100.0 : share.number;
    } catch (TextError const&) {
        return otherwise;
    }
}

/// Returns the coordinates of a gradient in shares of its box, as attributes.
std::string SharesOf(PaintServer const& gradient) {
    std::string const kind = gradient.Kind();
    std::string text;
    auto const add = [&](char const* name, double otherwise) {
        text += std::string(" ") + name + "=\"" +
                Exact(ShareOf(gradient.Value(name, kind), otherwise)) + "\"";
    };
    if (kind == "linearGradient") {
        add("x1", 0.0);
        add("y1", 0.0);
        add("x2", 1.0);
        add("y2", 0.0);
        return text;
    }
    for (char const* name : {"cx", "cy", "r"}) {
        add(name, 0.5);
    }
    for (char const* name : {"fx", "fy", "fr"}) {
        if (!gradient.Value(name, kind).empty()) {
            add(name, 0.5);
        }
    }
    return text;
}

/// Returns a length in user units. Throws TextError for one that depends on a size or a font.
double FixedUnits(Length const& length, bool /*vertical*/) {
    return UserUnits(length, std::nullopt);
}

/// True for the elements that show markers.
bool ShowsMarkers(std::string_view type) {
    return type == "path" || type == "line" || type == "polyline" || type == "polygon";
}

/// Returns the offset of the element's end tag; for an empty element, the offset behind it.
std::size_t EndTagOf(std::string_view text, std::size_t element) {
    TagSpan const tag = TagAt(text, element);
    if (tag.empty) {
        return tag.end;
    }
    std::size_t level = 1;
    std::size_t i = tag.end;
    while ((i = text.find('<', i)) != std::string_view::npos) {
        std::string_view const rest = text.substr(i);
        auto const skip = [&](std::string_view end) {
            std::size_t const found = text.find(end, i);
            i = found == std::string_view::npos ? text.size() : found + end.size();
        };
        if (rest.substr(0, 4) == "<!--") {
            skip("-->");
        } else if (rest.substr(0, 9) == "<![CDATA[") {
            skip("]]>");
        } else if (rest.substr(0, 2) == "<?") {
            skip("?>");
        } else if (rest.substr(0, 2) == "</") {
            if (--level == 0) {
                return i;
            }
            ++i;
        } else {
            TagSpan const inner = TagAt(text, i);
            level += inner.empty ? 0 : 1;
            i = inner.end;
        }
    }
    return text.size();
}

/// Returns the offset behind the element.
std::size_t EndOf(std::string_view text, std::size_t element) {
    std::size_t const end = EndTagOf(text, element);
    // Behind an empty element there may stand the end tag of the element around it.
    return TagAt(text, element).empty ? end : text.find('>', end) + 1;
}

/// The attributes that describe the form of a basic shape, besides its transform.
std::vector<std::string> FormOf(std::string_view type) {
    if (type == "rect") {
        return {"x", "y", "width", "height", "rx", "ry"};
    }
    if (type == "circle") {
        return {"cx", "cy", "r"};
    }
    if (type == "ellipse") {
        return {"cx", "cy", "rx", "ry"};
    }
    if (type == "line") {
        return {"x1", "y1", "x2", "y2"};
    }
    return {"points"};
}

/// Returns the value between quotes of one kind.
std::string Quoted(std::string const& value, char quote) {
    std::string out;
    for (char const c : Escaped(value)) {
        out += c == '\'' && quote == '\'' ? "&apos;" : std::string(1, c);
    }
    return out;
}

/// Returns the declarations with an end to what they leave open: a string, an address, a comment or
/// brackets. Another declaration behind them is one of its own then.
std::string Ended(std::string text) {
    std::size_t const last = text.find_last_not_of('\\');
    if ((text.size() - (last == std::string::npos ? 0 : last + 1)) % 2 == 1) {
        text.pop_back();
    }
    // Behind the right sign, a semicolon is a token.
    for (std::string const sign : {"", "\"", "'", ")", "*/"}) {
        std::vector<CssToken> const tokens = CssTokens(text + sign + ";");
        std::size_t const behind = text.size() + sign.size();
        if (tokens.size() > 1 && tokens[tokens.size() - 2].Is(';') &&
            tokens[tokens.size() - 2].begin == behind) {
            text += sign;
            break;
        }
    }
    std::string open;
    for (CssToken const& token : CssTokens(text)) {
        if (token.kind == CssToken::Kind::kFunction || token.Is('(')) {
            open += ')';
        } else if (token.Is('[') || token.Is('{')) {
            open += token.Is('[') ? ']' : '}';
        } else if (!open.empty() && token.Is(open.back())) {
            open.pop_back();
        }
    }
    return text.append(open.rbegin(), open.rend());
}

} // namespace

std::string MatrixText(CMatrix3x3 const& m) {
    return "matrix(" + Exact(m.a) + "," + Exact(m.b) + "," + Exact(m.c) + "," + Exact(m.d) + "," +
           Exact(m.tx) + "," + Exact(m.ty) + ")";
}

CPath Rounded(CPath path, std::optional<int> digits) {
    if (!digits) {
        return path;
    }
    double const unit = std::pow(10.0, *digits);
    auto const rounded = [unit](double x) {
        double const r = std::round(x * unit) / unit;
        return std::isfinite(r) ? r + 0.0 : x;
    };
    for (TPoint<double>& p : path.mPts) {
        p = TPoint<double>(rounded(p.h), rounded(p.v));
    }
    return path;
}

SvgEdit::SvgEdit(std::shared_ptr<SvgDocument const> document, std::optional<int> digits)
    : mDocument(std::move(document)), mDigits(digits),
      mCascade(*mDocument, [](std::string const&, std::string const&) {}),
      mHasMarkers(mDocument->Text().find("marker") != std::string::npos) {}

std::string SvgEdit::PathText(CPath const& path) const {
    return trammel::WriteSvgPath(Rounded(path, mDigits));
}

void SvgEdit::AddStyle(std::size_t element, std::string const& property, std::string const& value) {
    std::optional<std::string>& style = mTags[element].attributes["style"];
    std::string text = Ended(style ? *style : NodeAt(element).attribute("style").value());
    std::size_t const last = text.find_last_not_of(kXmlSpaces);
    text.resize(last == std::string::npos ? 0 : last + 1);
    if (!text.empty() && text.back() != ';') {
        text += ';';
    }
    style = text + property + ":" + value;
}

void SvgEdit::SetProperty(std::size_t element, Property property, std::string const& value) {
    Declared const declared = mCascade.Of(NodeAt(element))[property];
    if (declared.css) {
        AddStyle(element, NameOf(property), value + (declared.important ? " !important" : ""));
    } else {
        mTags[element].attributes[NameOf(property)] = value;
    }
}

CMatrix3x3 SvgEdit::OwnTransform(std::size_t element) {
    ElementStyle const style = mCascade.Of(NodeAt(element));
    if (!style[Property::kTransformBox].value.empty() && HasTransform(style)) {
        throw TextError(0, "lengths refer to a box");
    }
    return TransformOf(style, TPoint<double>(), FixedUnits);
}

void SvgEdit::SetTransform(std::size_t element, CMatrix3x3 const& m) {
    ElementStyle const style = mCascade.Of(NodeAt(element));
    bool const hasBox = !style[Property::kTransformBox].value.empty();
    CMatrix3x3 own = m;
    try {
        TPoint<double> const centre =
            hasBox ? TPoint<double>() : TransformCentre(style, TPoint<double>(), FixedUnits);
        if (!centre.Null()) {
            own = CMatrix3x3().Translate(centre) * m * CMatrix3x3().Translate(-centre);
        }
    } catch (TextError const&) { // it depends on a size or a font
        SetProperty(element, Property::kTransformOrigin, "0 0");
    }
    if (hasBox) {
        SetProperty(element, Property::kTransformBox, "view-box");
        SetProperty(element, Property::kTransformOrigin, "0 0");
    }
    for (Property const property : {Property::kTranslate, Property::kRotate, Property::kScale}) {
        if (style[property].css) {
            SetProperty(element, property, "none");
        }
    }
    SetProperty(element, Property::kTransform, MatrixText(own));
}

std::string SvgEdit::DeclaredValue(std::size_t element, Property property) {
    return std::string(mCascade.Of(NodeAt(element))[property].value);
}

void SvgEdit::SetAttribute(std::size_t element, std::string const& name, std::string const& value) {
    mTags[element].attributes[name] = value;
}

void SvgEdit::RemoveAttribute(std::size_t element, std::string const& name) {
    mTags[element].attributes[name] = std::nullopt;
}

std::string SvgEdit::KeptPaint(std::size_t element, std::string const& paint,
                               TRect<double> const& bounds, CMatrix3x3 const& toNew) {
    std::string const id = UrlFragment(paint);
    PaintServer const server(*mDocument, id);
    std::string const kind = server.Kind();
    bool const stays = MatrixText(toNew) == MatrixText(CMatrix3x3());
    if (kind == "pattern") {
        bool const byBounds = server.Value("patternUnits") != "userSpaceOnUse" ||
                              server.Value("patternContentUnits") == "objectBoundingBox";
        if (byBounds || !stays) {
            Warn(mDocument->File(), mDocument->Place(NodeAt(element)),
                 "its pattern '#" + id + "' is placed anew by its new outline");
        }
        return paint;
    }
    bool const byBounds = server.Value("gradientUnits") != "userSpaceOnUse";
    if ((kind != "linearGradient" && kind != "radialGradient") || (!byBounds && stays)) {
        return paint;
    }
    std::size_t const bracket = std::min(paint.find(')'), paint.size() - 1);
    std::string const behind = paint.substr(bracket + 1);
    if (byBounds && (bounds.Width() == 0.0 || bounds.Height() == 0.0)) {
        return behind.find_first_not_of(kXmlSpaces) == std::string::npos
                   ? "none" // it paints nothing
                   : behind.substr(behind.find_first_not_of(kXmlSpaces));
    }
    CMatrix3x3 m;
    try {
        m = ParseTransform(server.Value("gradientTransform"));
    } catch (TextError const&) { // as if it were not there
    }
    if (byBounds) {
        m = m * CMatrix3x3().Scale(bounds.Width(), bounds.Height()).Translate(bounds.TopLeft());
    }
    std::string const place = MatrixText(m * toNew);
    std::string& copy = mGradients[id + " " + place];
    if (copy.empty()) {
        copy = FreeId(id + "-kept");
        bool const old = mDocument->Root().attribute("xmlns:xlink");
        std::string const text = std::string("<") + server.Node().name() + " id=\"" +
                                 Escaped(copy) + "\" " + (old ? "xlink:" : "") + "href=\"#" +
                                 Escaped(id) +
                                 "\" gradientUnits=\"userSpaceOnUse\" gradientTransform=\"" +
                                 place + "\"" + (byBounds ? SharesOf(server) : "") + "/>";
        std::size_t const gradient = mDocument->Offset(server.Node());
        std::size_t const end = EndOf(mDocument->Text(), gradient);
        mReplacements.push_back({end, end, SpaceBefore(gradient) + text});
    }
    return "url(#" + copy + ")" + behind;
}

/// Style sheets may have rules for the old type, or for paths. The style attribute keeps the
/// declarations that the element had.
void SvgEdit::KeepStyleOfType(std::size_t element, std::string const& type) {
    pugi::xml_node const node = NodeAt(element);
    std::map<std::string, std::string> const before = mCascade.SheetsAs(node, type);
    std::map<std::string, std::string> const after = mCascade.SheetsAs(node, "path");
    std::map<std::string, std::string> own;
    for (CssDeclaration const& declaration :
         ParseDeclarations(node.attribute("style").value(), [](std::size_t, auto const&) {})) {
        own[declaration.property] = declaration.value;
    }
    std::vector<std::string> const form = FormOf(type);
    for (auto const& [property, value] : before) {
        auto const found = after.find(property);
        bool const same = found != after.end() && found->second == value;
        bool const important = value.find("!important") != std::string::npos;
        if (!same && (important || own.count(property) == 0) &&
            std::find(form.begin(), form.end(), property) == form.end()) {
            AddStyle(element, property, value);
        }
    }
    for (auto const& [property, value] : after) {
        if (before.count(property) != 0 || property == "d") {
            continue;
        }
        bool const important = value.find("!important") != std::string::npos;
        if (own.count(property) != 0 && !important) {
            continue;
        }
        pugi::xml_attribute const attribute = node.attribute(property.c_str());
        std::string const kept = own.count(property) != 0 ? own[property]
                                 : attribute              ? attribute.value()
                                                          : "unset";
        AddStyle(element, property, kept + (important ? " !important" : ""));
    }
    if (after.count("d") != 0 || own.count("d") != 0) {
        AddStyle(element, "d", "path(\"" + *mTags[element].attributes["d"] + "\") !important");
    }
    if (!ShowsMarkers(type) && mHasMarkers) {
        AddStyle(element, "marker", "none");
    }
}

bool SvgEdit::TurnMarkers(std::size_t element, CPath const& path) {
    pugi::xml_node const node = NodeAt(element);
    if (!mHasMarkers || !ShowsMarkers(mDocument->LocalName(node))) {
        return true;
    }
    std::string const start = InheritedValue(node, Property::kMarkerStart);
    std::string const mid = InheritedValue(node, Property::kMarkerMid);
    std::string const end = InheritedValue(node, Property::kMarkerEnd);
    std::string const startOrient = MarkerOrient(start);
    std::string const midOrient = MarkerOrient(mid);
    std::string const endOrient = MarkerOrient(end);
    if (startOrient.empty() && midOrient.empty() && endOrient.empty()) {
        return true;
    }
    bool const follow =
        startOrient == "auto" || endOrient == "auto" || midOrient.compare(0, 4, "auto") == 0;
    if (!follow && start == mid && mid == end && startOrient != "auto-start-reverse") {
        return true; // all vertices look alike
    }
    // Other paths begin and end at other vertices than before.
    bool const simple = trammel::SplitSubpaths(path).size() == 1 && !path.Closed();
    // A marker follows the path at a start or an end alike, and "auto-start-reverse" looks against
    // it at the start. The path now runs the other way, so that the latter looks as before.
    if (!simple || follow) {
        return false;
    }
    if (start != end) {
        SetProperty(element, Property::kMarkerStart, endOrient.empty() ? "none" : end);
        SetProperty(element, Property::kMarkerEnd, startOrient.empty() ? "none" : start);
    }
    return true;
}

std::string SvgEdit::InheritedValue(pugi::xml_node node, Property property) {
    for (; node; node = node.parent()) {
        std::string_view const value = mCascade.Of(node)[property].value;
        if (!value.empty() && value != "inherit" && value != "unset") {
            return IsWide(value) ? "" : std::string(value);
        }
    }
    return "";
}

std::string SvgEdit::MarkerOrient(std::string const& value) const {
    pugi::xml_node const marker = mDocument->Find(UrlFragment(value));
    if (!marker || mDocument->LocalName(marker) != "marker") {
        return "";
    }
    std::string const orient(Trimmed(marker.attribute("orient").value()));
    return orient.empty() ? "0" : orient;
}

void SvgEdit::SetPath(std::size_t element, CPath const& path) {
    pugi::xml_node const node = NodeAt(element);
    std::string const type(mDocument->LocalName(node));
    std::string const data = PathText(path);
    Declared const declared = mCascade.Of(node)[Property::kD];
    if (type == "path" && declared.css) {
        SetProperty(element, Property::kD, "path(\"" + data + "\")");
        return;
    }
    Tag& tag = mTags[element];
    tag.attributes["d"] = data;
    if (type != "path") {
        std::string const name = node.name();
        tag.name = name.substr(0, name.size() - type.size()) + "path";
        for (std::string const& attribute : FormOf(type)) {
            tag.attributes[attribute] = std::nullopt;
        }
        KeepStyleOfType(element, type);
    }
}

/// Returns a style with what takes back the declarations of style sheets that reach a new path in
/// the place of an element, and the markers that it would inherit.
std::string SvgEdit::ShieldedStyle(pugi::xml_node beside, std::string style,
                                   std::string const& data) const {
    static constexpr std::pair<char const*, char const*> kInitial[] = {
        {"clip-path", "none"},     {"display", "inline"},    {"fill-opacity", "1"},
        {"fill-rule", "nonzero"},  {"filter", "none"},       {"mask", "none"},
        {"opacity", "1"},          {"marker", "none"},       {"marker-start", "none"},
        {"marker-mid", "none"},    {"marker-end", "none"},   {"paint-order", "normal"},
        {"rotate", "none"},        {"scale", "none"},        {"stroke-dasharray", "none"},
        {"stroke-opacity", "1"},   {"transform", "none"},    {"translate", "none"},
        {"vector-effect", "none"}, {"visibility", "visible"}};
    std::map<std::string, std::string> const sheets = mCascade.SheetsAs(beside, "path");
    style = ";" + style;
    for (auto const& [name, value] : kInitial) {
        std::string const begin = std::string(";") + name + ":";
        bool const reaches =
            sheets.count(name) != 0 || (mHasMarkers && std::string_view(name) == "marker");
        if (reaches && style.find(begin) == std::string::npos) {
            style += begin + value;
        }
    }
    if (sheets.count("d") != 0) {
        style += ";d:path(\"" + data + "\")";
    }
    std::string const important = "!important";
    for (auto const& [name, value] : sheets) {
        std::size_t const at = style.find(";" + name + ":");
        if (at != std::string::npos && value.size() >= important.size() &&
            value.compare(value.size() - important.size(), important.size(), important) == 0) {
            style.insert(std::min(style.find(';', at + 1), style.size()), important);
        }
    }
    return style.substr(1);
}

/// Returns the text of a new path, whose name has the prefix of the element beside.
std::string SvgEdit::PathElement(pugi::xml_node beside, NewPath const& look, CPath const& path) {
    std::string const name = beside.name();
    std::size_t const colon = name.find(':');
    std::string const prefix = colon == std::string::npos ? "" : name.substr(0, colon + 1);
    std::string const data = PathText(path);
    std::string text = "<" + prefix + "path id=\"" + Escaped(FreeId(look.id)) + "\"";
    if (!look.className.empty()) {
        text += " class=\"" + Escaped(look.className) + "\"";
    }
    return text + " style=\"" + Escaped(ShieldedStyle(beside, look.style, data)) + "\" d=\"" +
           data + "\"/>";
}

void SvgEdit::AppendPath(NewPath const& look, CPath const& path) {
    std::string const& text = mDocument->Text();
    pugi::xml_node const root = mDocument->Root();
    std::size_t const begin = mDocument->Offset(root);
    pugi::xml_node last = root.last_child();
    while (last && mDocument->LocalName(last).empty()) {
        last = last.previous_sibling();
    }
    std::string const element = PathElement(last ? last : root, look, path) + "\n";
    TagSpan const tag = TagAt(text, begin);
    if (tag.empty) { // it gets a content and an end tag
        mReplacements.push_back(
            {tag.end - 2, tag.end, ">\n" + element + "</" + std::string(root.name()) + ">"});
        return;
    }
    std::size_t const end = EndTagOf(text, begin);
    mReplacements.push_back({end, end, element});
}

void SvgEdit::InsertPath(std::size_t element, NewPath const& look, CPath const& path) {
    std::size_t const end = EndOf(mDocument->Text(), element);
    mReplacements.push_back(
        {end, end, SpaceBefore(element) + PathElement(NodeAt(element), look, path)});
}

/// Returns the end of line and the indentation before an element that begins a line.
std::string SvgEdit::SpaceBefore(std::size_t element) const {
    std::string const& text = mDocument->Text();
    std::size_t line = text.rfind('\n', element);
    line -= line != std::string::npos && line > 0 && text[line - 1] == '\r' ? 1 : 0;
    std::string const space = line == std::string::npos ? "" : text.substr(line, element - line);
    return space.find_first_not_of(kXmlSpaces) == std::string::npos ? space : "";
}

/// Rules of style sheets may name the element's id, which a copy does not have. The copy's style
/// attribute gets what the sheets say.
void SvgEdit::KeepStyleOfId(std::size_t element) {
    pugi::xml_node const node = NodeAt(element);
    std::string const id = node.attribute("id").value();
    if (mDocument->Text().find("#" + id) == std::string::npos) {
        return;
    }
    Tag const& tag = mTags[element];
    auto const written = tag.attributes.find("style");
    bool const has = written != tag.attributes.end() && written->second;
    std::string const style = has ? *written->second : node.attribute("style").value();
    std::set<std::string> own;
    for (CssDeclaration const& declaration :
         ParseDeclarations(style, [](std::size_t, auto const&) {})) {
        own.insert(declaration.property);
    }
    std::string const type = tag.name.empty() ? std::string(mDocument->LocalName(node)) : "path";
    for (auto const& [property, value] : mCascade.SheetsAs(node, type)) {
        if (own.count(property) == 0 && property != "d") {
            AddStyle(element, property, value);
        }
    }
}

std::string SvgEdit::FreeId(std::string const& id) {
    auto const take = [this](std::string const& name) {
        return !mDocument->Find(name) && mIds.insert(name).second;
    };
    std::string name = id;
    for (std::size_t i = 2; !take(name); ++i) {
        name = id + "-" + std::to_string(i);
    }
    return name;
}

void SvgEdit::DropMarkers(std::size_t element) {
    ElementStyle const style = mCascade.Of(NodeAt(element));
    bool important = false;
    for (Property const property :
         {Property::kMarkerStart, Property::kMarkerMid, Property::kMarkerEnd}) {
        important = important || style[property].important;
    }
    AddStyle(element, "marker", important ? "none !important" : "none");
}

void SvgEdit::InsertCopy(std::size_t element, Side side, std::string const& id,
                         std::optional<CPath> const& path, std::vector<Setting> const& settings) {
    Tag const kept = mTags[element];
    if (path) {
        SetPath(element, *path);
        if (mHasMarkers) {
            DropMarkers(element);
        }
    }
    for (Setting const& setting : settings) {
        SetProperty(element, setting.property, setting.value);
    }
    if (NodeAt(element).attribute("id")) {
        mTags[element].attributes["id"] = FreeId(id);
        KeepStyleOfId(element);
    }
    std::string const copy = TagText(element, mTags[element]);
    mTags[element] = kept;
    std::string const space = SpaceBefore(element);
    if (side == Side::kBefore) {
        mReplacements.push_back({element, element, copy + space});
    } else {
        std::size_t const end = EndOf(mDocument->Text(), element);
        mReplacements.push_back({end, end, space + copy});
    }
}

void SvgEdit::TransformAll(CMatrix3x3 const& m, CMatrix3x3 const& rootTransform) {
    CMatrix3x3 const moved = rootTransform * m * rootTransform.Inverse();
    for (pugi::xml_node const child : mDocument->Root().children()) {
        std::string_view const type = mDocument->LocalName(child);
        std::size_t const offset = mDocument->Offset(child);
        auto const wrap = [&] {
            std::size_t const end = EndOf(mDocument->Text(), offset);
            std::string const name = child.name();
            std::string const g = name.substr(0, name.size() - type.size()) + "g";
            mReplacements.push_back(
                {offset, offset, "<" + g + " transform=\"" + MatrixText(moved) + "\">"});
            mReplacements.push_back({end, end, "</" + g + ">"});
        };
        if (type == "svg") { // not all browsers know the attribute there
            wrap();
            continue;
        }
        for (std::string_view const shown :
             {"g", "a", "switch", "use", "path", "rect", "circle", "ellipse", "line", "polyline",
              "polygon", "text", "image", "foreignObject"}) {
            if (type == shown) {
                try {
                    SetTransform(offset, OwnTransform(offset) * moved);
                } catch (TextError const&) {
                    wrap();
                }
            }
        }
    }
}

void SvgEdit::Remove(std::size_t element) {
    std::string const& text = mDocument->Text();
    std::size_t begin = element;
    std::size_t const end = EndOf(text, element);
    std::size_t const line = text.find_last_not_of(" \t", element - 1);
    if (line != std::string::npos && text[line] == '\n' && end < text.size() &&
        (text[end] == '\n' || text[end] == '\r')) {
        begin = line; // the element has lines of its own
        begin -= begin > 0 && text[begin - 1] == '\r' ? 1 : 0;
    }
    mTags.erase(element);
    mReplacements.push_back({begin, end, ""});
}

void SvgEdit::WriteTag(std::size_t element, Tag const& tag, std::vector<Replacement>& out) const {
    std::string const& text = mDocument->Text();
    TagSpan const span = TagAt(text, element);
    if (!tag.name.empty()) {
        out.push_back({element + 1, span.nameEnd, tag.name});
        if (!span.empty) {
            std::size_t const end = EndTagOf(text, element) + 2;
            out.push_back({end, end + span.nameEnd - element - 1, tag.name});
        }
    }
    // A new `d` stands where the first attribute of the old form stood, unless there is one that
    // had no meaning for that form.
    auto const formBegins = [&tag](AttributeSpan const& attribute) {
        auto const found = tag.attributes.find(std::string(attribute.name));
        return found != tag.attributes.end() && !found->second;
    };
    bool dWritten = std::any_of(span.attributes.begin(), span.attributes.end(),
                                [](AttributeSpan const& a) { return a.name == "d"; });
    for (AttributeSpan const& attribute : span.attributes) {
        auto const found = tag.attributes.find(std::string(attribute.name));
        if (found == tag.attributes.end()) {
            continue;
        }
        if (found->second) {
            out.push_back(
                {attribute.value, attribute.end, Quoted(*found->second, text[attribute.end])});
        } else if (!dWritten && formBegins(attribute) && tag.attributes.count("d") != 0) {
            dWritten = true;
            out.push_back({attribute.begin, attribute.end + 1,
                           "d=\"" + Quoted(*tag.attributes.at("d"), '"') + "\""});
        } else {
            std::size_t const before = text.find_last_not_of(kXmlSpaces, attribute.begin - 1) + 1;
            out.push_back({before, attribute.end + 1, ""});
        }
    }
    for (auto const& [name, value] : tag.attributes) {
        bool const exists =
            std::any_of(span.attributes.begin(), span.attributes.end(),
                        [&name = name](AttributeSpan const& a) { return a.name == name; });
        if (value && !exists && !(name == "d" && dWritten)) {
            out.push_back(
                {span.Behind(), span.Behind(), " " + name + "=\"" + Quoted(*value, '"') + "\""});
        }
    }
}

/// Returns the changed start tag as an element without content.
std::string SvgEdit::TagText(std::size_t element, Tag const& tag) const {
    std::string const& text = mDocument->Text();
    TagSpan const span = TagAt(text, element);
    std::vector<Replacement> changes;
    WriteTag(element, tag, changes);
    Sort(changes);
    std::string out;
    std::size_t done = element;
    for (Replacement const& change : changes) {
        if (change.end <= span.end) { // others are in the end tag
            out.append(text, done, change.begin - done);
            out += change.text;
            done = change.end;
        }
    }
    out.append(text, done, span.end - done);
    if (!span.empty) {
        out.insert(out.size() - 1, "/");
    }
    return out;
}

/// Puts changes into the order of the text. Those at one place stay in their order.
void SvgEdit::Sort(std::vector<Replacement>& changes) {
    std::stable_sort(changes.begin(), changes.end(),
                     [](Replacement const& a, Replacement const& b) {
                         return std::make_pair(a.begin, a.end) < std::make_pair(b.begin, b.end);
                     });
}

std::string SvgEdit::Text() const {
    std::vector<Replacement> all = mReplacements;
    for (auto const& [element, tag] : mTags) {
        WriteTag(element, tag, all);
    }
    Sort(all);
    std::string const& text = mDocument->Text();
    std::string out;
    std::size_t done = 0;
    for (Replacement const& replacement : all) {
        if (replacement.begin < done) {
            continue; // lies in an element that is removed
        }
        out.append(text, done, replacement.begin - done);
        out += replacement.text;
        done = replacement.end;
    }
    out.append(text, done, std::string::npos);
    return mDocument->Encoded(out);
}

} // namespace tool
