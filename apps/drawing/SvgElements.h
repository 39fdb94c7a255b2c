// SPDX-License-Identifier: MIT

// SvgElements: the walk over the elements of an SVG document that ReadSvg makes. SvgReader.h says
// what it reads. SvgReader.cpp walks over the structure and makes the clips. SvgForms.cpp reads
// the lengths, lines and forms of single elements.

#ifndef TRAMMEL_APP_SVGELEMENTS_H
#define TRAMMEL_APP_SVGELEMENTS_H

#include "ArcTolerance.h"
#include "Cascade.h"
#include "Clip.h"
#include "Drawing.h"
#include "Error.h"
#include "Outlines.h"
#include "SvgAttributes.h"
#include "SvgComplaints.h"
#include "SvgDocument.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/CPath.h>
#include <trammel/TPoint.h>
#include <trammel/TRect.h>

#include <pugixml.hpp>

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tool {

/// The mistake in an attribute's value.
struct AttributeError {
    std::string attribute;
    std::size_t position;
    std::string message;
};

/// Reads the elements of one document.
class SvgElements {
public:
    SvgElements(std::shared_ptr<SvgDocument const> document, ArcAccuracy arcs)
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
        CMatrix3x3 transform;                ///< from the element's coordinates to the drawing's
        CMatrix3x3 around;                   ///< the same without the element's own transform
        CMatrix3x3 beside;                   ///< the same for the outermost `use` around
        std::optional<TPoint<double>> whole; ///< what 100% stands for in each direction
        bool visible = true;
        trammel::FillRule rule = trammel::FillRule::kNonZero;
        trammel::FillRule clipRule = trammel::FillRule::kNonZero;
        std::string_view fill = "black";
        std::string_view stroke = "none";
        std::string_view color = "black";
        double fontSize = 16.0;
        std::shared_ptr<Pen const> pen = std::make_shared<Pen const>();
        std::size_t placed = kNoElement; ///< the outermost `use` around, as an offset in the text
        double opacity = 1.0;            ///< multiplied, from the outermost `use` around on
        std::string prefix;              ///< of ids: the ids of the `use` elements around
        int level = 0;                   ///< of nesting
        ElementStyle const* style = nullptr; ///< of the element itself
    };

    void Element(pugi::xml_node element, Context const& context);
    void Draw(pugi::xml_node element, std::string_view name, Context const& context);
    void Children(pugi::xml_node element, Context const& context);
    void Switch(pugi::xml_node element, Context const& context);
    void Use(pugi::xml_node element, Context const& context);
    struct Size {
        std::optional<double> width;
        std::optional<double> height;
    };
    Size SizeOf(pugi::xml_node element, Context const& context) {
        return {SizeOf(element, "width", context, Axis::kHorizontal),
                SizeOf(element, "height", context, Axis::kVertical)};
    }
    TPoint<double> PlaceOf(pugi::xml_node element, Context const& context) {
        return TPoint<double>(LengthOr0(element, "x", context, Axis::kHorizontal),
                              LengthOr0(element, "y", context, Axis::kVertical));
    }
    AspectRatio AspectRatioOf(pugi::xml_node element);
    void Viewport(pugi::xml_node element, Context const& context, Size const& own);
    /// The form of an element.
    struct Form {
        CPath path;
        std::size_t arcs = 0;   ///< the ellipses and arcs in it
        double tolerance = 0.0; ///< how far its curves may be from these
    };
    typedef std::vector<std::shared_ptr<Clip const>> Clips;
    void ClipFrom(std::size_t first, pugi::xml_node element, std::string const& id,
                  Context const& context);
    void ClipToViewport(std::size_t first, pugi::xml_node element, TPoint<double> const& size,
                        Context const& context);
    void AppendClips(pugi::xml_node element, std::string const& id, CMatrix3x3 const& toDrawing,
                     std::optional<TRect<double>> const& bounds, Clips& clips);
    /// What a box of an element encloses.
    enum class Box { kFill, kStroke };
    TRect<double> BoundsFrom(std::size_t first, CMatrix3x3 const& toDrawing, Box kind) const;
    std::optional<TRect<double>> BoxOf(pugi::xml_node element, ElementStyle const& style,
                                       Context const& context, Box kind);
    void Add(pugi::xml_node element, Form form, Context const& context);
    /// Returns how far curves may be from their arcs, in the element's own coordinates.
    double ToleranceOf(double length, std::size_t arcs, double radius,
                       Context const& context) const {
        return ArcTolerance(mArcs, {length, arcs, radius},
                            Stretch(context.transform) * mUnitStretch);
    }
    void ReadPage(pugi::xml_node root, Context const& context);

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
    CMatrix3x3 TransformOf(pugi::xml_node element, ElementStyle const& style,
                           Context const& context);
    /// Returns the form of a basic shape or a path; nothing for another element.
    std::optional<Form> FormOf(pugi::xml_node element, std::string_view name,
                               Context const& context);
    std::optional<TRect<double>> ViewBoxOf(pugi::xml_node element);
    void Inherit(pugi::xml_node element, ElementStyle const& style, Context& context);
    void InheritFontSize(ElementStyle const& style, Context& context) const;
    void InheritPen(pugi::xml_node element, ElementStyle const& style, Context& context);
    double PixelSize() const;
    UnitSizes SizesFor(Context const& context) const {
        return {context.fontSize, mRootFontSize, mWindow};
    }
    double UnitsOf(Length const& length, char const* attribute, Context const& context,
                   Axis axis) const;
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
    int mBoxLevels = 0;                ///< the elements whose boxes are found, in each other
    std::map<std::pair<std::size_t, Box>, TRect<double>> mBoxes; ///< those found before
    double mRootFontSize = 16.0;
    std::optional<TPoint<double>> mWindow; ///< the size of the page in pixels
    std::size_t mUsedElements = 0;
    std::size_t mUsedBytes = 0;
    Drawing mDrawing;
};

} // namespace tool

#endif
