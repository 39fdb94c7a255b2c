// SPDX-License-Identifier: MIT

#include "SvgReader.h"

#include "ArcTolerance.h"
#include "Cascade.h"
#include "Clip.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "PaperUnit.h"
#include "SvgAttributes.h"
#include "SvgComplaints.h"
#include "SvgDocument.h"
#include "SvgShapes.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/Shapes.h>
#include <trammel/SvgPath.h>
#include <trammel/UTrigonometry.h>

#include <pugixml.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
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

/// The limits of clips: their nesting, and the elements in all of them together.
constexpr std::size_t kMostClipLevels = 16;
constexpr std::size_t kMostClipElements = 20000;

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

/// Returns the value of an inherited property of an element.
std::string_view Inherited(Declared const& declared, std::string_view around,
                           std::string_view initial) {
    if (declared.value == "initial") {
        return initial;
    }
    return declared.value.empty() || IsWide(declared.value) ? around : declared.value;
}

bool Hidden(ElementStyle const& style) {
    return AsciiLower(style[Property::kDisplay].value) == "none";
}

/// True for a user who reads English, and a reader without extensions. There is nobody to ask.
bool ConditionsHold(pugi::xml_node element) {
    if (!Trimmed(element.attribute("requiredExtensions").value()).empty()) {
        return false;
    }
    pugi::xml_attribute const languages = element.attribute("systemLanguage");
    if (!languages) {
        return true;
    }
    std::string_view rest = languages.value();
    while (!rest.empty()) {
        std::size_t const end = std::min(rest.find(','), rest.size());
        std::string const language = AsciiLower(Trimmed(rest.substr(0, end)));
        if (language == "en" || language.compare(0, 3, "en-") == 0) {
            return true;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}

class Reader {
public:
    Reader(std::shared_ptr<SvgDocument const> document, ArcAccuracy arcs)
        : mDocument(std::move(document)), mArcs(std::move(arcs)), mComplaints(mDocument->File()),
          mCascade(*mDocument, [this](std::string const& place, std::string const& message) {
              Skip(place, message);
          }) {
        mDrawing.file = mDocument->File();
        mDrawing.kind = "svg";
        mDrawing.document = mDocument;
    }

    Drawing Read();

private:
    /// The state that an element inherits from the elements around it.
    struct Context {
        CMatrix3x3 transform;    ///< from the element's coordinates to the drawing's
        CMatrix3x3 around;       ///< the same without the element's own transform
        CMatrix3x3 beside;       ///< the same for the outermost `use` around
        std::optional<Pt> whole; ///< what 100% stands for in each direction
        bool visible = true;
        trammel::FillRule rule = trammel::FillRule::kNonZero;
        trammel::FillRule clipRule = trammel::FillRule::kNonZero;
        std::string_view fill = "black";
        std::string_view stroke = "none";
        std::string_view color = "black";
        double fontSize = 16.0;
        std::shared_ptr<Pen const> pen = std::make_shared<Pen const>();
        std::size_t placed = kNoElement; ///< the outermost `use` around, as an offset in the text
        std::string prefix;              ///< of ids: the ids of the `use` elements around
        int level = 0;                   ///< of nesting
        ElementStyle const* style = nullptr; ///< of the element itself
    };

    void Element(pugi::xml_node element, Context const& context);
    void Draw(pugi::xml_node element, std::string_view name, Context const& context);
    void Children(pugi::xml_node element, Context const& context);
    void Switch(pugi::xml_node element, Context const& context);
    void Use(pugi::xml_node element, Context const& context);
    void Viewport(pugi::xml_node element, Context const& context, std::optional<Pt> const& size);
    /// The form of an element.
    struct Form {
        CPath path;
        std::size_t arcs = 0;   ///< the ellipses and arcs in it
        double tolerance = 0.0; ///< how far its curves may be from these
    };
    typedef std::vector<std::shared_ptr<Clip const>> Clips;
    void ClipFrom(std::size_t first, pugi::xml_node element, std::string const& id,
                  Context const& context);
    void ClipToViewport(std::size_t first, pugi::xml_node element, Pt const& size,
                        Context const& context);
    void AppendClips(pugi::xml_node element, std::string const& id, CMatrix3x3 const& toDrawing,
                     std::optional<TRect<double>> const& bounds, Clips& clips);
    TRect<double> BoundsFrom(std::size_t first, CMatrix3x3 const& toDrawing) const;
    void Add(pugi::xml_node element, Form form, Context const& context);
    /// Returns how far curves may be from their arcs, in the element's own coordinates.
    double ToleranceOf(double length, std::size_t arcs, double radius,
                       Context const& context) const {
        return ArcTolerance(mArcs, {length, arcs, radius},
                            Stretch(context.transform) * mUnitStretch);
    }
    void ReadPage(pugi::xml_node root);

    Form PathElement(pugi::xml_node element, Context const& context);
    Form Rectangle(pugi::xml_node element, Context const& context);
    Form Ellipse(pugi::xml_node element, Context const& context, char const* hName,
                 char const* vName);
    Form Line(pugi::xml_node element, Context const& context);
    Form Polyline(pugi::xml_node element, bool closed);

    enum class Axis { kHorizontal, kVertical, kOther };
    /// Returns the value of an attribute, or of the property that stands for it.
    std::string_view Specified(pugi::xml_node element, char const* attribute,
                               Context const& context) const;
    /// Returns a length in user units; empty when it is missing, "auto" or not a length.
    std::optional<double> LengthOf(pugi::xml_node element, char const* attribute,
                                   Context const& context, Axis axis);
    double LengthOr0(pugi::xml_node element, char const* attribute, Context const& context,
                     Axis axis) {
        return LengthOf(element, attribute, context, axis).value_or(0.0);
    }
    /// Does the same for a size, which must not be negative.
    std::optional<double> SizeOf(pugi::xml_node element, char const* attribute,
                                 Context const& context, Axis axis);
    CMatrix3x3 TransformOf(pugi::xml_node element, ElementStyle const& style);
    std::optional<TRect<double>> ViewBoxOf(pugi::xml_node element);
    void Inherit(pugi::xml_node element, ElementStyle const& style, Context& context);
    void InheritPen(pugi::xml_node element, ElementStyle const& style, Context& context);
    double PixelSize() const;
    double UnitsOf(Length length, char const* attribute, Context const& context, Axis axis) const;
    double UnitsOf(std::string_view value, char const* attribute, Context const& context,
                   Axis axis) const;

    std::string_view LocalName(pugi::xml_node element) const {
        return mDocument->LocalName(element);
    }
    [[noreturn]] void Fail(pugi::xml_node element, std::string const& message) const {
        throw Error(mDocument->File(), mDocument->Place(element), message);
    }

    /// Warns of something that is left out, once for each place.
    void Skip(std::string const& place, std::string const& message) {
        mComplaints.Add(place, message);
    }
    void Skip(pugi::xml_node element, std::string const& message) {
        Skip(mDocument->Place(element), message);
    }
    void Skip(pugi::xml_node element, std::string const& attribute, std::size_t position,
              std::string const& message) {
        Skip(element,
             "attribute " + attribute + ", position " + std::to_string(position) + ": " + message);
    }

    std::shared_ptr<SvgDocument const> mDocument;
    ArcAccuracy mArcs;
    double mUnitStretch = 1.0; ///< from the drawing's coordinates to the unit of the accuracy
    Complaints mComplaints;
    Cascade mCascade;
    std::vector<pugi::xml_node> mClipping; ///< the clipPath elements that are read
    std::size_t mClipElements = 0;
    std::map<std::pair<std::size_t, std::array<double, 6>>, Clips> mClips; ///< those read before
    std::vector<pugi::xml_node> mUsed; ///< the elements that the `use` elements around refer to
    double mRootFontSize = 16.0;
    std::size_t mUsedElements = 0;
    std::size_t mUsedBytes = 0;
    Drawing mDrawing;
};

std::string_view Reader::Specified(pugi::xml_node element, char const* attribute,
                                   Context const& context) const {
    static std::map<std::string_view, Property> const properties = {
        {"x", Property::kX},           {"y", Property::kY},   {"width", Property::kWidth},
        {"height", Property::kHeight}, {"rx", Property::kRx}, {"ry", Property::kRy},
        {"cx", Property::kCx},         {"cy", Property::kCy}, {"r", Property::kR}};
    auto const property = properties.find(attribute);
    if (property == properties.end()) {
        return Trimmed(element.attribute(attribute).value());
    }
    std::string_view const value = (*context.style)[property->second].value;
    return IsWide(value) ? std::string_view() : value;
}

/// Returns a length in user units. Throws AttributeError for one that is not known here.
double Reader::UnitsOf(Length length, char const* attribute, Context const& context,
                       Axis axis) const {
    if (length.unit == "em" || length.unit == "rem") {
        length.number *= length.unit == "em" ? context.fontSize : mRootFontSize;
        length.unit.clear();
    }
    std::optional<double> whole;
    if (context.whole) {
        Pt const size = *context.whole;
        whole = axis == Axis::kHorizontal ? size.h
                : axis == Axis::kVertical ? size.v
                                          : size.Length() / std::sqrt(2.0);
    }
    try {
        return UserUnits(length, whole);
    } catch (TextError const& e) {
        throw AttributeError{attribute, 0, e.what()};
    }
}

/// Does the same for a text, which may be a sum. Throws TextError for a mistake in it.
double Reader::UnitsOf(std::string_view value, char const* attribute, Context const& context,
                       Axis axis) const {
    auto const inUnits = [&](Length const& length) {
        return UnitsOf(length, attribute, context, axis);
    };
    bool const sum = AsciiLower(value.substr(0, 5)) == "calc(";
    double const units = sum ? ParseCalc(value, inUnits) : inUnits(ParseLength(value));
    if (!std::isfinite(units)) {
        throw TextError(0, "the length is too large");
    }
    return units;
}

std::optional<double> Reader::LengthOf(pugi::xml_node element, char const* attribute,
                                       Context const& context, Axis axis) {
    std::string_view const value = Specified(element, attribute, context);
    if (value.empty() || value == "auto") {
        return std::nullopt;
    }
    try {
        return UnitsOf(value, attribute, context, axis);
    } catch (TextError const& e) {
        Skip(element, attribute, e.Position(), e.what());
        return std::nullopt;
    }
}

std::optional<double> Reader::SizeOf(pugi::xml_node element, char const* attribute,
                                     Context const& context, Axis axis) {
    std::optional<double> const size = LengthOf(element, attribute, context, axis);
    if (size && *size < 0.0) {
        Skip(element, attribute, 0, "is negative");
        return std::nullopt;
    }
    return size;
}

CMatrix3x3 Reader::TransformOf(pugi::xml_node element, ElementStyle const& style) {
    try {
        return tool::TransformOf(style);
    } catch (TextError const& e) {
        Skip(element, "transform", e.Position(), e.what());
        return CMatrix3x3();
    }
}

std::optional<TRect<double>> Reader::ViewBoxOf(pugi::xml_node element) {
    std::string_view const value = element.attribute("viewBox").value();
    if (Trimmed(value).empty()) {
        return std::nullopt;
    }
    try {
        return ParseViewBox(value);
    } catch (TextError const& e) {
        Skip(element, "viewBox", e.Position(), e.what());
        return std::nullopt;
    }
}

/// Takes over the properties that the elements inside inherit.
void Reader::Inherit(pugi::xml_node element, ElementStyle const& style, Context& context) {
    auto const ruled = [&style](Property property, trammel::FillRule around) {
        std::string const value = AsciiLower(style[property].value);
        return value == "evenodd"                         ? trammel::FillRule::kEvenOdd
               : value == "nonzero" || value == "initial" ? trammel::FillRule::kNonZero
                                                          : around;
    };
    context.rule = ruled(Property::kFillRule, context.rule);
    context.clipRule = ruled(Property::kClipRule, context.clipRule);
    std::string const visibility = AsciiLower(style[Property::kVisibility].value);
    if (!visibility.empty() && (!IsWide(visibility) || visibility == "initial")) {
        context.visible = visibility == "visible" || visibility == "initial";
    }
    std::string_view const color = Inherited(style[Property::kColor], context.color, "black");
    context.color = AsciiLower(color) == "currentcolor" ? context.color : color;
    auto const paint = [&](Property property, std::string_view around, char const* initial) {
        std::string_view const value = Inherited(style[property], around, initial);
        return AsciiLower(value) == "currentcolor" ? context.color : value;
    };
    context.fill = paint(Property::kFill, context.fill, "black");
    context.stroke = paint(Property::kStroke, context.stroke, "none");
    std::string_view const size = style[Property::kFontSize].value;
    if (!size.empty() && !IsWide(size)) {
        // Words such as "small" depend on the window, and no outline depends on them.
        try {
            Length length = ParseLength(size);
            double const unit = length.unit == "rem" ? mRootFontSize : context.fontSize;
            context.fontSize = length.unit == "em" || length.unit == "rem"
                                   ? length.number * unit
                                   : UserUnits(length, context.fontSize);
        } catch (TextError const&) {
        }
    }
    InheritPen(element, style, context);
}

/// Takes over how lines are drawn.
void Reader::InheritPen(pugi::xml_node element, ElementStyle const& style, Context& context) {
    static constexpr std::array<Property, 10> properties = {
        Property::kStrokeWidth,      Property::kStrokeLinejoin,  Property::kStrokeLinecap,
        Property::kStrokeMiterlimit, Property::kStrokeDasharray, Property::kStrokeDashoffset,
        Property::kStrokeOpacity,    Property::kFillOpacity,     Property::kPaintOrder,
        Property::kVectorEffect};
    bool const declared =
        std::any_of(properties.begin(), properties.end(),
                    [&style](Property property) { return !style[property].value.empty(); });
    if (!declared && context.pen->pixel == 0.0) {
        return;
    }
    Pen const none;
    Pen pen = *context.pen;
    pen.pixel = 0.0; // the only one of them that is not inherited
    for (Property const property : properties) {
        std::string value = AsciiLower(style[property].value);
        bool const initial = value == "initial";
        if (value.empty() || (IsWide(value) && !initial)) {
            continue;
        }
        try {
            auto const units = [&](std::string_view text) {
                return UnitsOf(text, NameOf(property), context, Axis::kOther);
            };
            switch (property) {
            case Property::kStrokeWidth:
                pen.style.width = initial ? none.style.width : std::max(units(value), 0.0);
                break;
            case Property::kStrokeLinejoin:
                pen.style.join = value == "round"        ? trammel::StrokeJoin::kRound
                                 : value == "bevel"      ? trammel::StrokeJoin::kBevel
                                 : value == "miter-clip" ? trammel::StrokeJoin::kMiterClip
                                                         : trammel::StrokeJoin::kMiter;
                break;
            case Property::kStrokeLinecap:
                pen.style.startCap = value == "round"    ? trammel::StrokeCap::kRound
                                     : value == "square" ? trammel::StrokeCap::kSquare
                                                         : trammel::StrokeCap::kButt;
                pen.style.endCap = pen.style.startCap;
                break;
            case Property::kStrokeMiterlimit:
                pen.style.miterLimit = initial ? none.style.miterLimit : units(value);
                break;
            case Property::kStrokeDasharray: {
                std::vector<double> dashes;
                for (Length const& dash : ParseLengths(value)) { // none for a word
                    dashes.push_back(UnitsOf(dash, NameOf(property), context, Axis::kOther));
                }
                pen.style.dashes = std::move(dashes);
                break;
            }
            case Property::kStrokeDashoffset:
                pen.style.dashOffset = initial ? 0.0 : units(value);
                break;
            case Property::kStrokeOpacity:
                pen.opacity = initial ? none.opacity : value;
                break;
            case Property::kFillOpacity:
                pen.fillOpacity = initial ? none.fillOpacity : value;
                break;
            case Property::kPaintOrder: {
                std::size_t const fill = value.find("fill");
                std::size_t const stroke = value.find("stroke");
                pen.paintsFirst = stroke < fill;
                break;
            }
            default:
                pen.pixel = value == "non-scaling-stroke" ? PixelSize() : 0.0;
                break;
            }
        } catch (TextError const& e) {
            Skip(element, NameOf(property), e.Position(), e.what());
        } catch (AttributeError const& e) {
            Skip(element, e.attribute, e.position, e.message);
        }
    }
    context.pen = std::make_shared<Pen const>(std::move(pen));
}

/// Returns the size of a pixel in the drawing's coordinates; 1 if the drawing does not tell.
double Reader::PixelSize() const {
    try {
        return 1.0 / Stretch(PaperFit(mDrawing, "px"));
    } catch (Error const&) {
        return 1.0;
    }
}

Reader::Form Reader::PathElement(pugi::xml_node element, Context const& context) {
    Declared const& declared = (*context.style)[Property::kD];
    std::string data(declared.value);
    if (data == "none" || IsWide(data)) {
        return {};
    }
    if (declared.css) {
        bool found = false;
        data = PathFunction(declared.value, found);
    } else {
        data = element.attribute("d").value();
    }
    trammel::SvgPathOptions options;
    options.keepDots = true; // strokes paint them
    trammel::SvgPathResult result = trammel::ReadSvgPath(data, options);
    if (result.error) {
        Skip(element, "d", result.error->position,
             "found " + result.error->found + ", expected " + result.error->expected);
    }
    Form form; // what stands before a mistake is drawn
    form.arcs = result.arcs;
    if (result.arcs > 0 && mArcs.by == ArcAccuracy::By::kPicture) {
        form.tolerance = PictureTolerance(result.path);
    } else if (result.arcs > 0) {
        form.tolerance = ToleranceOf(ChordLength(result.path), result.arcs, 0.0, context);
        options.arcTolerance = form.tolerance;
        result = trammel::ReadSvgPath(data, options);
    }
    form.path = std::move(result.path);
    return form;
}

Reader::Form Reader::Rectangle(pugi::xml_node element, Context const& context) {
    double const left = LengthOr0(element, "x", context, Axis::kHorizontal);
    double const top = LengthOr0(element, "y", context, Axis::kVertical);
    double const width = SizeOf(element, "width", context, Axis::kHorizontal).value_or(0.0);
    double const height = SizeOf(element, "height", context, Axis::kVertical).value_or(0.0);
    if (width == 0.0 || height == 0.0) {
        return {};
    }
    std::optional<double> const rx = SizeOf(element, "rx", context, Axis::kHorizontal);
    std::optional<double> const ry = SizeOf(element, "ry", context, Axis::kVertical);
    double const hRadius = std::min(rx.value_or(ry.value_or(0.0)), width / 2.0);
    double const vRadius = std::min(ry.value_or(rx.value_or(0.0)), height / 2.0);
    // A rectangle is as round as can be if it is an ellipse.
    Form form;
    form.arcs = hRadius == 0.0 || vRadius == 0.0 ? 0 : 1;
    form.tolerance =
        ToleranceOf((width + height) * pi / 2.0, 1, std::max(hRadius, vRadius), context);
    form.path = RectanglePath(TRect<double>(left, top, left + width, top + height), hRadius,
                              vRadius, form.tolerance);
    return form;
}

Reader::Form Reader::Ellipse(pugi::xml_node element, Context const& context, char const* hName,
                             char const* vName) {
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
        return {};
    }
    Form form;
    form.arcs = 1;
    form.tolerance = ToleranceOf((hRadius + vRadius) * pi, 1, std::max(hRadius, vRadius), context);
    form.path = trammel::EllipsePath(centre, hRadius, vRadius, 0.0, form.tolerance);
    return form;
}

Reader::Form Reader::Line(pugi::xml_node element, Context const& context) {
    Form form;
    form.path = DrawnLines({Pt(LengthOr0(element, "x1", context, Axis::kHorizontal),
                               LengthOr0(element, "y1", context, Axis::kVertical)),
                            Pt(LengthOr0(element, "x2", context, Axis::kHorizontal),
                               LengthOr0(element, "y2", context, Axis::kVertical))});
    return form;
}

Reader::Form Reader::Polyline(pugi::xml_node element, bool closed) {
    std::vector<Pt> points;
    try {
        ParsePoints(element.attribute("points").value(), points);
    } catch (TextError const& e) {
        Skip(element, "points", e.Position(), e.what()); // the points before a mistake are drawn
    }
    Form form;
    form.path = closed ? PolylinePath(points, true) : DrawnLines(points);
    return form;
}

void Reader::Add(pugi::xml_node element, Form form, Context const& context) {
    CPath& path = form.path;
    if (path.mCtls.empty() || !context.visible) {
        return;
    }
    Outline outline;
    outline.fill = context.fill;
    outline.stroke = context.stroke;
    outline.pen = context.pen;
    try {
        std::string_view const length = Trimmed(element.attribute("pathLength").value());
        outline.pathLength = length.empty() ? 0.0 : std::max(ParseLength(length).number, 0.0);
    } catch (TextError const&) { // as if it were not there
    }
    outline.rule = mClipping.empty() ? context.rule : context.clipRule;
    outline.source.element = mDocument->Offset(element);
    bool const used = context.placed != kNoElement;
    outline.source.placed = used ? context.placed : outline.source.element;
    outline.source.toDrawing = context.transform;
    outline.source.around = context.around;
    outline.source.beside = used ? context.beside : context.around;
    path.Transform(context.transform);
    if (form.arcs > 0) {
        outline.arcDistance = form.tolerance * Stretch(context.transform);
        outline.arcLength = 2.0 * pi * static_cast<double>(form.arcs) * outline.arcDistance;
    }
    bool const finite = std::all_of(path.mPts.begin(), path.mPts.end(), [](Pt const& p) {
        return std::isfinite(p.h) && std::isfinite(p.v);
    });
    if (!finite) {
        Skip(element, "has coordinates that are too large");
        return;
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

/// Draws the first child whose conditions hold.
void Reader::Switch(pugi::xml_node element, Context const& context) {
    for (pugi::xml_node const child : element.children()) {
        if (child.type() == pugi::node_element && !LocalName(child).empty() &&
            ConditionsHold(child)) {
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
    if (std::optional<TRect<double>> const box = ViewBoxOf(element)) {
        if (box->Empty()) {
            return;
        }
        if (size) {
            CMatrix3x3 const fit =
                FitViewBox(*box, *size, element.attribute("preserveAspectRatio").value());
            inner.transform = Concat(fit, context.transform);
        }
        inner.whole = box->GetSize();
    }
    std::size_t const first = mDrawing.outlines.size();
    Children(element, inner);
    std::string_view const overflow = (*context.style)[Property::kOverflow].value;
    if (size && overflow != "visible" && overflow != "auto") {
        ClipToViewport(first, element, *size, context);
    }
}

/// Returns the bounds of the outlines from the index `first` on, in the coordinates that a
/// transform takes to the drawing's. They are null without outlines.
TRect<double> Reader::BoundsFrom(std::size_t first, CMatrix3x3 const& toDrawing) const {
    TRect<double> bounds;
    CMatrix3x3 inverse;
    if (toDrawing.IsSingular() || !toDrawing.Inverse(inverse)) {
        return bounds;
    }
    for (std::size_t i = first; i < mDrawing.outlines.size(); ++i) {
        CPath path = mDrawing.outlines[i].path;
        path.Transform(inverse);
        bounds = Around(bounds, DrawnBounds(path));
    }
    return bounds;
}

/// Clips the outlines from the index `first` on to the viewport of their element.
void Reader::ClipToViewport(std::size_t first, pugi::xml_node element, Pt const& size,
                            Context const& context) {
    TRect<double> const bounds = BoundsFrom(first, context.transform);
    TRect<double> const frame(0.0, 0.0, size.h, size.v);
    bool const inside = bounds.left >= frame.left && bounds.top >= frame.top &&
                        bounds.right <= frame.right && bounds.bottom <= frame.bottom;
    if (first == mDrawing.outlines.size() || inside) {
        return;
    }
    if (context.transform.IsSingular()) {
        Skip(element, "its transform presses it into a line");
        return;
    }
    auto clip = std::make_shared<Clip>();
    clip->path = RectanglePath(frame, 0.0, 0.0, 0.0);
    clip->path.Transform(context.transform);
    for (std::size_t i = first; i < mDrawing.outlines.size(); ++i) {
        mDrawing.outlines[i].clips.push_back(clip);
    }
}

/// Clips the outlines from the index `first` on, which an element drew, by the clipPath `id`.
void Reader::ClipFrom(std::size_t first, pugi::xml_node element, std::string const& id,
                      Context const& context) {
    if (first == mDrawing.outlines.size()) {
        return;
    }
    Clips clips;
    std::optional<TRect<double>> bounds;
    pugi::xml_node const node = mDocument->Find(id);
    bool const byBounds =
        std::string_view(node.attribute("clipPathUnits").value()) == "objectBoundingBox";
    if (byBounds) {
        bounds = BoundsFrom(first, context.transform);
    }
    AppendClips(element, id, context.transform, bounds, clips);
    for (std::size_t i = first; i < mDrawing.outlines.size(); ++i) {
        Clips& all = mDrawing.outlines[i].clips;
        all.insert(all.end(), clips.begin(), clips.end());
    }
}

/// Appends the clip of a clipPath element, and the element's own clips.
/// \param toDrawing  from the coordinates of the element that refers to it
/// \param bounds  of that element, for a clipPath in their units
void Reader::AppendClips(pugi::xml_node element, std::string const& id, CMatrix3x3 const& toDrawing,
                         std::optional<TRect<double>> const& bounds, Clips& clips) {
    pugi::xml_node const node = mDocument->Find(id);
    if (!node || LocalName(node) != "clipPath") {
        Skip(element, "its clip-path refers to '#" + id + "', which is no clipPath");
        return;
    }
    if (std::find(mClipping.begin(), mClipping.end(), node) != mClipping.end() ||
        mClipping.size() >= kMostClipLevels) {
        Skip(node, "refers to itself, or is nested too deeply; the clip is left out");
        return;
    }
    std::array<double, 6> const key{toDrawing.a, toDrawing.b,  toDrawing.c,
                                    toDrawing.d, toDrawing.tx, toDrawing.ty};
    auto const place = std::make_pair(mDocument->Offset(node), key);
    auto const known = bounds ? mClips.end() : mClips.find(place);
    if (known != mClips.end()) {
        clips.insert(clips.end(), known->second.begin(), known->second.end());
        return;
    }
    if (mClipElements > kMostClipElements) {
        Skip(element, "its clip-path is left out: there are too many elements in clips");
        return;
    }
    ElementStyle const style = mCascade.Of(node);
    Context context;
    context.style = &style;
    context.level = static_cast<int>(kMostClipLevels);
    context.transform = Concat(TransformOf(node, style), toDrawing);
    if (!mDrawing.page.frame.Null()) {
        context.whole = mDrawing.page.frame.GetSize();
    }
    if (std::string_view(node.attribute("clipPathUnits").value()) == "objectBoundingBox") {
        TRect<double> const box = bounds.value_or(TRect<double>());
        CMatrix3x3 const units =
            CMatrix3x3().Scale(box.Width(), box.Height()).Translate(box.TopLeft());
        context.transform = Concat(TransformOf(node, style), Concat(units, toDrawing));
        context.whole = Pt(1.0, 1.0);
    }
    Inherit(node, style, context);
    // The clip's outlines are read as those of a drawing of their own.
    std::vector<Outline> outside = std::move(mDrawing.outlines);
    mDrawing.outlines.clear();
    mClipping.push_back(node);
    for (pugi::xml_node const child : node.children()) {
        std::string_view const name = LocalName(child);
        if (child.type() == pugi::node_element && name != "g" && name != "svg" && !name.empty()) {
            Element(child, context);
        }
    }
    Clips own;
    if (context.transform.IsSingular()) {
        own.push_back(std::make_shared<Clip>()); // nothing shows
    } else {
        own.push_back(std::make_shared<Clip>(UnionOf(mDrawing.outlines)));
    }
    mClipElements += mDrawing.outlines.size() + 1;
    mDrawing.outlines = std::move(outside);
    std::string const around = UrlFragment(style[Property::kClipPath].value);
    if (!around.empty()) {
        AppendClips(node, around, toDrawing, bounds, own);
    }
    mClipping.pop_back();
    clips.insert(clips.end(), own.begin(), own.end());
    if (!bounds) {
        mClips.emplace(place, std::move(own));
    }
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
        Skip(element, "refers to '" + std::string(target) +
                          "'; only elements of the same file (#id)"
                          " are read");
        return;
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
        Skip(element, "refers to '" + std::string(target) + "', of which it is a part");
        return;
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
        inner.beside = context.around;
    }
    std::string_view const name = LocalName(used);
    mUsed.push_back(used);
    if (name == "symbol" || name == "svg") {
        ElementStyle const style = mCascade.Of(used);
        inner.style = &style;
        if (Hidden(style)) {
            mUsed.pop_back();
            return;
        }
        Inherit(used, style, inner);
        auto const sizeOf = [&](char const* attribute, Axis axis) {
            std::optional<double> const own = SizeOf(element, attribute, context, axis);
            return own ? own : SizeOf(used, attribute, inner, axis);
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
        inner.transform = Concat(TransformOf(used, style), inner.transform);
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
        Add(element, PathElement(element, context), context);
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
    } else if (name == "text" || name == "image" || name == "foreignObject") {
        mComplaints.CountOther(name, mDocument->Place(element));
    }
}

void Reader::Element(pugi::xml_node element, Context const& context) {
    std::string_view const name = LocalName(element);
    if (element.type() != pugi::node_element || name.empty() || !ConditionsHold(element)) {
        return;
    }
    ElementStyle const style = mCascade.Of(element);
    if (Hidden(style)) {
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
        inner.style = &style;
        inner.around = context.transform;
        inner.transform = Concat(TransformOf(element, style), context.transform);
        Inherit(element, style, inner);
        std::size_t const first = mDrawing.outlines.size();
        Draw(element, name, inner);
        std::string const clip = UrlFragment(style[Property::kClipPath].value);
        if (!clip.empty()) {
            ClipFrom(first, element, clip, inner);
        }
        Property const unread[] = {Property::kMask, Property::kMarker, Property::kMarkerStart,
                                   Property::kMarkerMid, Property::kMarkerEnd};
        for (Property const property : unread) {
            std::string_view const value = style[property].value;
            if (mDrawing.outlines.size() > first && !UrlFragment(value).empty()) {
                mComplaints.CountUnread(property == Property::kMask ? "a mask" : "markers",
                                        mDocument->Place(element));
            }
        }
    } catch (AttributeError const& e) {
        Skip(element, e.attribute, e.position, e.message + "; the element is left out");
    }
}

void Reader::ReadPage(pugi::xml_node root) {
    Page& page = mDrawing.page;
    page.frame = ViewBoxOf(root).value_or(TRect<double>());
    std::optional<Length> sizes[2];
    char const* const names[2] = {"width", "height"};
    for (int i = 0; i < 2; ++i) {
        std::string_view const value = Trimmed(root.attribute(names[i]).value());
        if (value.empty() || value == "auto") {
            continue;
        }
        try {
            sizes[i] = ParseLength(value);
        } catch (TextError const& e) {
            Skip(root, names[i], e.Position(), e.what());
        }
    }
    if (!sizes[0] || !sizes[1]) {
        return;
    }
    // A size in per cent or ems depends on the window that shows the drawing, so it does not help.
    Pt size;
    try {
        size = Pt(UserUnits(*sizes[0], std::nullopt), UserUnits(*sizes[1], std::nullopt));
    } catch (TextError const&) {
        return;
    }
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
    ReadPage(root);
    if (!mArcs.unit.empty()) {
        mUnitStretch = Stretch(PaperFit(mDrawing, mArcs.unit));
    }
    ElementStyle const style = mCascade.Of(root);
    Context context;
    context.style = &style;
    if (!mDrawing.page.frame.Null()) {
        context.whole = mDrawing.page.frame.GetSize();
    }
    context.transform = TransformOf(root, style);
    Inherit(root, style, context);
    mRootFontSize = context.fontSize;
    if (!Hidden(style)) {
        Children(root, context);
    }
    mComplaints.Tell();
    std::unordered_map<std::size_t, std::size_t> copies;
    std::unordered_map<std::size_t, std::size_t> siblings;
    for (Outline const& outline : mDrawing.outlines) {
        ++copies[outline.source.element];
        ++siblings[outline.source.placed];
    }
    for (Outline& outline : mDrawing.outlines) {
        outline.source.copies = copies[outline.source.element];
        outline.source.siblings = siblings[outline.source.placed];
    }
    mDrawing.rootTransform = context.transform;
    return std::move(mDrawing);
}

} // namespace

Drawing ReadSvg(std::string const& file, std::string content, ArcAccuracy const& arcs) {
    return Reader(std::make_shared<SvgDocument const>(file, std::move(content)), arcs).Read();
}

} // namespace tool
