// SPDX-License-Identifier: MIT

#include "SvgReader.h"

#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "SvgAttributes.h"
#include "SvgDocument.h"
#include "SvgShapes.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/SvgPath.h>

#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace tool {

namespace {

typedef TPoint<double> Pt;

/// The greatest depth of nested elements, `use` included. Drawings stay below 50.
constexpr int kMostLevels = 500;

// The limits of what all `use` elements draw together: elements, and bytes of them. A few hundred
// bytes of nested uses could otherwise multiply without end.
constexpr std::size_t kMostUsedElements = 250000;
constexpr std::size_t kMostUsedBytes = std::size_t{64} << 20;

/// The mistake in an attribute's value.
struct AttributeError {
    std::string attribute;
    std::size_t position;
    std::string message;
};

std::string_view Trimmed(std::string_view text) {
    std::size_t const first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

/// Returns the value of a property in a style attribute; empty when it is not set.
std::string_view StyleValue(std::string_view style, std::string_view property) {
    std::string_view value;
    while (!style.empty()) {
        std::size_t const end = std::min(style.find(';'), style.size());
        std::string_view const declaration = style.substr(0, end);
        style.remove_prefix(std::min(end + 1, style.size()));
        std::size_t const colon = declaration.find(':');
        if (colon != std::string_view::npos && Trimmed(declaration.substr(0, colon)) == property) {
            value = declaration.substr(colon + 1);
            value = Trimmed(value.substr(0, value.find('!'))); // "!important"
        }
    }
    return value;
}

bool Hidden(pugi::xml_node element) {
    std::string_view const value = StyleValue(element.attribute("style").value(), "display");
    return value.empty() ? Trimmed(element.attribute("display").value()) == "none"
                         : value == "none";
}

/// Returns the element's fill rule; `inherited` unless the element states one.
trammel::FillRule RuleOf(pugi::xml_node element, trammel::FillRule inherited) {
    std::string_view value = StyleValue(element.attribute("style").value(), "fill-rule");
    if (value.empty()) {
        value = Trimmed(element.attribute("fill-rule").value());
    }
    return value == "evenodd"   ? trammel::FillRule::kEvenOdd
           : value == "nonzero" ? trammel::FillRule::kNonZero
                                : inherited;
}

class Reader {
public:
    explicit Reader(std::shared_ptr<SvgDocument const> document) : mDocument(std::move(document)) {
        mDrawing.file = mDocument->File();
        mDrawing.kind = "svg";
        mDrawing.document = mDocument;
    }

    Drawing Read();

private:
    /// The state that an element inherits from the elements around it.
    struct Context {
        CMatrix3x3 transform;    ///< from the element's coordinates to the drawing's
        std::optional<Pt> whole; ///< what 100% stands for in each direction
        trammel::FillRule rule = trammel::FillRule::kNonZero;
        std::size_t placed = kNoElement; ///< the outermost `use` around, as an offset in the text
        std::string prefix;              ///< of ids: the ids of the `use` elements around
        int level = 0;                   ///< of nesting
    };

    void Element(pugi::xml_node element, Context const& context);
    void Draw(pugi::xml_node element, std::string_view name, Context const& context);
    void Children(pugi::xml_node element, Context const& context);
    void Switch(pugi::xml_node element, Context const& context);
    void Use(pugi::xml_node element, Context const& context);
    void Viewport(pugi::xml_node element, Context const& context, std::optional<Pt> const& size);
    void Add(pugi::xml_node element, CPath path, Context const& context);
    void ReadPage(pugi::xml_node root);

    CPath PathElement(pugi::xml_node element) const;
    CPath Rectangle(pugi::xml_node element, Context const& context) const;
    CPath Ellipse(pugi::xml_node element, Context const& context, char const* hName,
                  char const* vName) const;
    CPath Line(pugi::xml_node element, Context const& context) const;
    CPath Polyline(pugi::xml_node element, bool closed) const;

    enum class Axis { kHorizontal, kVertical, kOther };
    /// Returns a length attribute in user units; empty when it is missing or "auto".
    std::optional<double> LengthOf(pugi::xml_node element, char const* attribute,
                                   Context const& context, Axis axis) const;
    double LengthOr0(pugi::xml_node element, char const* attribute, Context const& context,
                     Axis axis) const {
        return LengthOf(element, attribute, context, axis).value_or(0.0);
    }
    /// Does the same for a size, which must not be negative.
    std::optional<double> SizeOf(pugi::xml_node element, char const* attribute,
                                 Context const& context, Axis axis) const;

    /// Runs a parser on an attribute's value, and adds the attribute's name to its complaint.
    template <class Parse>
    auto Parsed(pugi::xml_node element, char const* attribute, Parse parse) const {
        try {
            return parse(std::string_view(element.attribute(attribute).value()));
        } catch (TextError const& e) {
            throw AttributeError{attribute, e.Position(), e.what()};
        }
    }

    std::string_view LocalName(pugi::xml_node element) const {
        return mDocument->LocalName(element);
    }
    [[noreturn]] void Fail(pugi::xml_node element, std::string const& message) const {
        throw Error(mDocument->File(), mDocument->Place(element), message);
    }

    std::shared_ptr<SvgDocument const> mDocument;
    std::vector<pugi::xml_node> mUsed; ///< the elements that the `use` elements around refer to
    std::size_t mUsedElements = 0;
    std::size_t mUsedBytes = 0;
    Drawing mDrawing;
};

std::optional<double> Reader::LengthOf(pugi::xml_node element, char const* attribute,
                                       Context const& context, Axis axis) const {
    std::string_view const value = Trimmed(element.attribute(attribute).value());
    if (value.empty() || value == "auto") {
        return std::nullopt;
    }
    std::optional<double> whole;
    if (context.whole) {
        Pt const size = *context.whole;
        whole = axis == Axis::kHorizontal ? size.h
                : axis == Axis::kVertical ? size.v
                                          : size.Length() / std::sqrt(2.0);
    }
    return Parsed(element, attribute, [&](std::string_view text) {
        double const length = UserUnits(ParseLength(text), whole);
        if (!std::isfinite(length)) {
            throw TextError(0, "the length is too large");
        }
        return length;
    });
}

std::optional<double> Reader::SizeOf(pugi::xml_node element, char const* attribute,
                                     Context const& context, Axis axis) const {
    std::optional<double> const size = LengthOf(element, attribute, context, axis);
    if (size && *size < 0.0) {
        throw AttributeError{attribute, 0, "is negative"};
    }
    return size;
}

CPath Reader::PathElement(pugi::xml_node element) const {
    std::string_view const data = element.attribute("d").value();
    if (Trimmed(data) == "none") {
        return CPath();
    }
    trammel::SvgPathResult result = trammel::ReadSvgPath(data);
    if (result.error) {
        throw AttributeError{"d", result.error->position,
                             "found " + result.error->found + ", expected " +
                                 result.error->expected};
    }
    return std::move(result.path);
}

CPath Reader::Rectangle(pugi::xml_node element, Context const& context) const {
    double const left = LengthOr0(element, "x", context, Axis::kHorizontal);
    double const top = LengthOr0(element, "y", context, Axis::kVertical);
    double const width = SizeOf(element, "width", context, Axis::kHorizontal).value_or(0.0);
    double const height = SizeOf(element, "height", context, Axis::kVertical).value_or(0.0);
    if (width == 0.0 || height == 0.0) {
        return CPath();
    }
    std::optional<double> const rx = SizeOf(element, "rx", context, Axis::kHorizontal);
    std::optional<double> const ry = SizeOf(element, "ry", context, Axis::kVertical);
    double const hRadius = std::min(rx.value_or(ry.value_or(0.0)), width / 2.0);
    double const vRadius = std::min(ry.value_or(rx.value_or(0.0)), height / 2.0);
    return RectanglePath(TRect<double>(left, top, left + width, top + height), hRadius, vRadius);
}

CPath Reader::Ellipse(pugi::xml_node element, Context const& context, char const* hName,
                      char const* vName) const {
    Pt const centre(LengthOr0(element, "cx", context, Axis::kHorizontal),
                    LengthOr0(element, "cy", context, Axis::kVertical));
    bool const circle = std::string_view(hName) == vName;
    std::optional<double> const rx =
        SizeOf(element, hName, context, circle ? Axis::kOther : Axis::kHorizontal);
    std::optional<double> const ry =
        SizeOf(element, vName, context, circle ? Axis::kOther : Axis::kVertical);
    double const hRadius = rx.value_or(ry.value_or(0.0));
    double const vRadius = ry.value_or(hRadius);
    if (hRadius == 0.0 || vRadius == 0.0) {
        return CPath();
    }
    return EllipsePath(centre, hRadius, vRadius);
}

CPath Reader::Line(pugi::xml_node element, Context const& context) const {
    return PolylinePath({Pt(LengthOr0(element, "x1", context, Axis::kHorizontal),
                            LengthOr0(element, "y1", context, Axis::kVertical)),
                         Pt(LengthOr0(element, "x2", context, Axis::kHorizontal),
                            LengthOr0(element, "y2", context, Axis::kVertical))},
                        false);
}

CPath Reader::Polyline(pugi::xml_node element, bool closed) const {
    return PolylinePath(Parsed(element, "points", ParsePoints), closed);
}

void Reader::Add(pugi::xml_node element, CPath path, Context const& context) {
    if (path.mCtls.empty()) {
        return;
    }
    Outline outline;
    outline.rule = context.rule;
    outline.source.element = mDocument->Offset(element);
    outline.source.placed = context.placed == kNoElement ? outline.source.element : context.placed;
    outline.source.toDrawing = context.transform;
    path.Transform(context.transform);
    bool const finite = std::all_of(path.mPts.begin(), path.mPts.end(), [](Pt const& p) {
        return std::isfinite(p.h) && std::isfinite(p.v);
    });
    if (!finite) {
        Fail(element, "has coordinates that are too large");
    }
    std::string id = element.attribute("id").value();
    if (id.empty()) {
        id = std::string(LocalName(element)) + "#" + std::to_string(mDrawing.outlines.size() + 1);
    }
    outline.id = context.prefix + id;
    outline.path = std::move(path);
    mDrawing.outlines.push_back(std::move(outline));
}

void Reader::Children(pugi::xml_node element, Context const& context) {
    for (pugi::xml_node const child : element.children()) {
        Element(child, context);
    }
}

/// Draws the first child without conditions or for the English language. There is no user to ask.
void Reader::Switch(pugi::xml_node element, Context const& context) {
    for (pugi::xml_node const child : element.children()) {
        if (child.type() != pugi::node_element || LocalName(child).empty()) {
            continue;
        }
        bool const extensions = !Trimmed(child.attribute("requiredExtensions").value()).empty();
        pugi::xml_attribute const language = child.attribute("systemLanguage");
        if (!extensions && (!language || std::string_view(language.value()).find("en") !=
                                             std::string_view::npos)) {
            Element(child, context);
            return;
        }
    }
}

/// Draws the children of an inner svg or a symbol, fitted to its size.
void Reader::Viewport(pugi::xml_node element, Context const& context,
                      std::optional<Pt> const& size) {
    Context inner = context;
    inner.whole = size;
    if (!Trimmed(element.attribute("viewBox").value()).empty()) {
        TRect<double> const box = Parsed(element, "viewBox", ParseViewBox);
        if (box.Empty()) {
            return;
        }
        if (size) {
            CMatrix3x3 const fit =
                FitViewBox(box, *size, element.attribute("preserveAspectRatio").value());
            inner.transform = Concat(fit, context.transform);
        }
        inner.whole = box.GetSize();
    }
    Children(element, inner);
}

void Reader::Use(pugi::xml_node element, Context const& context) {
    pugi::xml_attribute reference = element.attribute("href");
    if (!reference) {
        reference = element.attribute("xlink:href");
    }
    std::string_view const target = Trimmed(reference.value());
    if (target.empty()) {
        return;
    }
    if (target[0] != '#') {
        Fail(element, "refers to '" + std::string(target) +
                          "'; only elements of the same file (#id)"
                          " are read");
    }
    pugi::xml_node const used = mDocument->Find(target.substr(1));
    if (!used) {
        return; // SVG says that it draws nothing; real icon themes contain such leftovers
    }
    bool cyclic = std::find(mUsed.begin(), mUsed.end(), used) != mUsed.end();
    for (pugi::xml_node around = element; around; around = around.parent()) {
        cyclic = cyclic || around == used;
    }
    if (cyclic) {
        Fail(element, "refers to '" + std::string(target) + "', of which it is a part");
    }

    Context inner = context;
    CMatrix3x3 const shift =
        CMatrix3x3().Translate(LengthOr0(element, "x", context, Axis::kHorizontal),
                               LengthOr0(element, "y", context, Axis::kVertical));
    inner.transform = Concat(shift, context.transform);
    if (pugi::xml_attribute const id = element.attribute("id")) {
        inner.prefix += std::string(id.value()) + "/";
    }
    if (inner.placed == kNoElement) {
        inner.placed = mDocument->Offset(element);
    }
    std::string_view const name = LocalName(used);
    mUsed.push_back(used);
    if ((name == "symbol" || name == "svg") && !Hidden(used)) {
        auto const sizeOf = [&](char const* attribute, Axis axis) {
            std::optional<double> const own = SizeOf(element, attribute, context, axis);
            return own ? own : SizeOf(used, attribute, context, axis);
        };
        std::optional<double> width = sizeOf("width", Axis::kHorizontal);
        std::optional<double> height = sizeOf("height", Axis::kVertical);
        std::optional<Pt> size = context.whole;
        if (width && height) {
            size = Pt(*width, *height);
        } else if (size) {
            size = Pt(width.value_or(size->h), height.value_or(size->v));
        }
        if (++inner.level > kMostLevels) {
            Fail(element, "is nested more than " + std::to_string(kMostLevels) + " levels deep");
        }
        CMatrix3x3 const own = Parsed(used, "transform", ParseTransform);
        inner.transform = Concat(own, inner.transform);
        Viewport(used, inner, size);
    } else {
        Element(used, inner);
    }
    mUsed.pop_back();
}

void Reader::Draw(pugi::xml_node element, std::string_view name, Context const& context) {
    if (name == "g" || name == "a") {
        Children(element, context);
    } else if (name == "path") {
        Add(element, PathElement(element), context);
    } else if (name == "rect") {
        Add(element, Rectangle(element, context), context);
    } else if (name == "circle") {
        Add(element, Ellipse(element, context, "r", "r"), context);
    } else if (name == "ellipse") {
        Add(element, Ellipse(element, context, "rx", "ry"), context);
    } else if (name == "line") {
        Add(element, Line(element, context), context);
    } else if (name == "polyline" || name == "polygon") {
        Add(element, Polyline(element, name == "polygon"), context);
    } else if (name == "use") {
        Use(element, context);
    } else if (name == "switch") {
        Switch(element, context);
    } else if (name == "svg") {
        double const left = LengthOr0(element, "x", context, Axis::kHorizontal);
        double const top = LengthOr0(element, "y", context, Axis::kVertical);
        std::optional<double> const width = SizeOf(element, "width", context, Axis::kHorizontal);
        std::optional<double> const height = SizeOf(element, "height", context, Axis::kVertical);
        std::optional<Pt> size = context.whole;
        if (width && height) {
            size = Pt(*width, *height);
        } else if (size) {
            size = Pt(width.value_or(size->h), height.value_or(size->v));
        }
        Context inner = context;
        inner.transform = Concat(CMatrix3x3().Translate(left, top), context.transform);
        Viewport(element, inner, size);
    }
}

void Reader::Element(pugi::xml_node element, Context const& context) {
    std::string_view const name = LocalName(element);
    if (element.type() != pugi::node_element || name.empty() || Hidden(element)) {
        return;
    }
    if (context.level >= kMostLevels) {
        Fail(element, "is nested more than " + std::to_string(kMostLevels) + " levels deep");
    }
    if (!mUsed.empty()) {
        ++mUsedElements;
        for (char const* attribute : {"d", "points", "transform"}) {
            mUsedBytes += std::string_view(element.attribute(attribute).value()).size();
        }
        if (mUsedElements > kMostUsedElements || mUsedBytes > kMostUsedBytes) {
            Fail(element, "the use elements of this drawing multiply to more than 250000 elements"
                          " or 64 MiB of coordinates");
        }
    }
    try {
        Context inner = context;
        ++inner.level;
        inner.transform = Concat(Parsed(element, "transform", ParseTransform), context.transform);
        inner.rule = RuleOf(element, context.rule);
        Draw(element, name, inner);
    } catch (AttributeError const& e) {
        Fail(element, "attribute " + e.attribute + ", position " + std::to_string(e.position) +
                          ": " + e.message);
    }
}

void Reader::ReadPage(pugi::xml_node root) {
    Page& page = mDrawing.page;
    if (!Trimmed(root.attribute("viewBox").value()).empty()) {
        page.frame = Parsed(root, "viewBox", ParseViewBox);
    }
    std::optional<Length> sizes[2];
    char const* const names[2] = {"width", "height"};
    for (int i = 0; i < 2; ++i) {
        std::string_view const value = Trimmed(root.attribute(names[i]).value());
        if (!value.empty() && value != "auto") {
            sizes[i] = Parsed(root, names[i], ParseLength);
        }
    }
    if (!sizes[0] || !sizes[1]) {
        return;
    }
    // A size in per cent or ems depends on the window that shows the drawing, so it does not help.
    std::string_view const relative[] = {"%", "em", "ex", "rem", "ch", "vw", "vh", "vmin", "vmax"};
    for (std::string_view const unit : relative) {
        if (sizes[0]->unit == unit || sizes[1]->unit == unit) {
            return;
        }
    }
    Pt const size(Parsed(root, "width", [&](auto) { return UserUnits(*sizes[0], std::nullopt); }),
                  Parsed(root, "height", [&](auto) { return UserUnits(*sizes[1], std::nullopt); }));
    if (!(size.h > 0.0 && size.v > 0.0 && std::isfinite(size.h) && std::isfinite(size.v))) {
        return;
    }
    if (page.frame.Null()) {
        page.frame = TRect<double>(0.0, 0.0, size.h, size.v);
    }
    bool const sameUnit = sizes[0]->unit == sizes[1]->unit;
    page.width = sameUnit ? sizes[0]->number : size.h;
    page.height = sameUnit ? sizes[1]->number : size.v;
    page.unit = sameUnit ? sizes[0]->unit : "px";
}

Drawing Reader::Read() {
    pugi::xml_node const root = mDocument->Root();
    Context context;
    try {
        ReadPage(root);
        if (!mDrawing.page.frame.Null()) {
            context.whole = mDrawing.page.frame.GetSize();
        }
        context.transform = Parsed(root, "transform", ParseTransform);
        context.rule = RuleOf(root, context.rule);
    } catch (AttributeError const& e) {
        Fail(root, "attribute " + e.attribute + ", position " + std::to_string(e.position) + ": " +
                       e.message);
    }
    if (!Hidden(root)) {
        Children(root, context);
    }
    return std::move(mDrawing);
}

} // namespace

Drawing ReadSvg(std::string const& file, std::string content) {
    return Reader(std::make_shared<SvgDocument const>(file, std::move(content))).Read();
}

} // namespace tool
