// SPDX-License-Identifier: MIT

// The lengths, lines and forms of single elements.

#include "Ascii.h"
#include "CssMath.h"
#include "Numbers.h"
#include "Outlines.h"
#include "PaperUnit.h"
#include "PenNames.h"
#include "SvgElements.h"
#include "SvgShapes.h"

#include <trammel/Shapes.h>
#include <trammel/SvgPath.h>
#include <trammel/UTrigonometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tool {

namespace {

typedef TPoint<double> Pt;

/// Returns the value of an inherited property of an element.
std::string_view Inherited(Declared const& declared, std::string_view around,
                           std::string_view initial) {
    if (declared.value == "initial") {
        return initial;
    }
    return declared.value.empty() || IsWide(declared.value) ? around : declared.value;
}

} // namespace

std::string_view SvgElements::Specified(pugi::xml_node element, char const* attribute,
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
double SvgElements::UnitsOf(Length const& length, char const* attribute, Context const& context,
                            Axis axis) const {
    std::optional<double> whole;
    if (context.whole) {
        Pt const size = *context.whole;
        whole = axis == Axis::kHorizontal ? size.h
                : axis == Axis::kVertical ? size.v
                                          : size.Hypotenuse() / std::sqrt(2.0);
    }
    UnitSizes const sizes = SizesFor(context);
    try {
        return UserUnits(length, whole, &sizes);
    } catch (TextError const& e) {
        throw AttributeError{attribute, 0, e.what()};
    }
}

/// Does the same for a text, which may be a sum. Throws TextError for a mistake in it.
double SvgElements::UnitsOf(std::string_view value, char const* attribute, Context const& context,
                            Axis axis) const {
    auto const inUnits = [&](Length const& length) {
        return UnitsOf(length, attribute, context, axis);
    };
    double const units = ParseCssLength(value, inUnits);
    if (!std::isfinite(units)) {
        throw TextError(0, "the length is too large");
    }
    return units;
}

std::optional<double> SvgElements::LengthOf(pugi::xml_node element, char const* attribute,
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

std::optional<double> SvgElements::SizeOf(pugi::xml_node element, char const* attribute,
                                          Context const& context, Axis axis) {
    std::optional<double> const size = LengthOf(element, attribute, context, axis);
    if (size && *size < 0.0) {
        Skip(element, attribute, 0, "is negative");
        return std::nullopt;
    }
    return size;
}

/// \param context  around the element
CMatrix3x3 SvgElements::TransformOf(pugi::xml_node element, ElementStyle const& style,
                                    Context const& context) {
    if (!HasTransform(style)) {
        return CMatrix3x3();
    }
    TRect<double> box; // what lengths in the transform refer to
    if (context.whole) {
        box = TRect<double>(Pt(), *context.whole);
    }
    bool known = context.whole.has_value();
    std::string const name = AsciiLower(style[Property::kTransformBox].value);
    if (!name.empty() && name != "view-box" && !IsWide(name)) {
        bool const lines = name == "stroke-box" || name == "border-box";
        std::optional<TRect<double>> const own =
            BoxOf(element, style, context, lines ? Box::kStroke : Box::kFill);
        if (!own) {
            Skip(element,
                 "transform-box: '" + name + "' is not read here; the transform is left out");
            return CMatrix3x3();
        }
        box = *own;
        known = true;
    }
    auto const units = [&](Length const& length, bool vertical) {
        Context inner = context;
        InheritFontSize(style, inner);
        UnitSizes const sizes = SizesFor(inner);
        std::optional<double> whole;
        if (known) {
            whole = vertical ? box.Height() : box.Width();
        }
        return UserUnits(length, whole, &sizes);
    };
    try {
        return tool::TransformOf(style, box.TopLeft(), units);
    } catch (TextError const& e) {
        Skip(element, "transform", e.Position(), e.what());
        return CMatrix3x3();
    }
}

AspectRatio SvgElements::AspectRatioOf(pugi::xml_node element) {
    char const* const name = "preserveAspectRatio";
    try {
        return ParseAspectRatio(element.attribute(name).value());
    } catch (TextError const& e) {
        Skip(element, name, e.Position(), e.what());
        return AspectRatio();
    }
}

std::optional<TRect<double>> SvgElements::ViewBoxOf(pugi::xml_node element) {
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
void SvgElements::Inherit(pugi::xml_node element, ElementStyle const& style, Context& context) {
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
    InheritFontSize(style, context);
    InheritPen(element, style, context);
}

/// Takes over the size by which lengths in em are measured. No outline depends on the font.
void SvgElements::InheritFontSize(ElementStyle const& style, Context& context) const {
    // The sizes that browsers give to these words, in pixels.
    static std::map<std::string_view, double> const words = {
        {"xx-small", 9.0}, {"x-small", 10.0},  {"small", 13.0},
        {"medium", 16.0},  {"initial", 16.0},  {"large", 18.0},
        {"x-large", 24.0}, {"xx-large", 32.0}, {"xxx-large", 48.0}};
    constexpr double kStep = 1.2; // of "larger" and "smaller"
    std::string const size = AsciiLower(style[Property::kFontSize].value);
    auto const word = words.find(size);
    if (word != words.end()) {
        context.fontSize = word->second;
    } else if (size == "larger" || size == "smaller") {
        context.fontSize *= size == "larger" ? kStep : 1.0 / kStep;
    } else if (!size.empty() && !IsWide(size)) {
        try {
            UnitSizes const sizes = SizesFor(context);
            double const units = ParseCssLength(size, [&](Length const& length) {
                return UserUnits(length, context.fontSize, &sizes);
            });
            context.fontSize = units >= 0.0 ? units : context.fontSize;
        } catch (TextError const&) { // as if it were not there
        }
    }
}

/// Takes over how lines are drawn.
void SvgElements::InheritPen(pugi::xml_node element, ElementStyle const& style, Context& context) {
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
                pen.style.join = JoinNamed(value).value_or(none.style.join);
                break;
            case Property::kStrokeLinecap:
                pen.style.startCap = CapNamed(value).value_or(none.style.startCap);
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
double SvgElements::PixelSize() const {
    try {
        return 1.0 / Stretch(PaperFit(mDrawing, "px"));
    } catch (Error const&) {
        return 1.0;
    }
}

std::optional<SvgElements::Form> SvgElements::FormOf(pugi::xml_node element, std::string_view name,
                                                     Context const& context) {
    if (name == "path") {
        return PathElement(element, context);
    }
    if (name == "rect") {
        return Rectangle(element, context);
    }
    if (name == "circle") {
        return Ellipse(element, context, "r", "r");
    }
    if (name == "ellipse") {
        return Ellipse(element, context, "rx", "ry");
    }
    if (name == "line") {
        return Line(element, context);
    }
    if (name == "polyline" || name == "polygon") {
        return Polyline(element, name == "polygon");
    }
    return std::nullopt;
}

SvgElements::Form SvgElements::PathElement(pugi::xml_node element, Context const& context) {
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

SvgElements::Form SvgElements::Rectangle(pugi::xml_node element, Context const& context) {
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

SvgElements::Form SvgElements::Ellipse(pugi::xml_node element, Context const& context,
                                       char const* hName, char const* vName) {
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

SvgElements::Form SvgElements::Line(pugi::xml_node element, Context const& context) {
    Form form;
    form.path = DrawnLines({Pt(LengthOr0(element, "x1", context, Axis::kHorizontal),
                               LengthOr0(element, "y1", context, Axis::kVertical)),
                            Pt(LengthOr0(element, "x2", context, Axis::kHorizontal),
                               LengthOr0(element, "y2", context, Axis::kVertical))});
    return form;
}

SvgElements::Form SvgElements::Polyline(pugi::xml_node element, bool closed) {
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

} // namespace tool
