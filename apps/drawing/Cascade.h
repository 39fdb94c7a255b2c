// SPDX-License-Identifier: MIT

// Cascade: what style sheets, style attributes and presentation attributes say about an element.
//
// Of several declarations of one property the important ones win, then the style attribute's, then
// the ones of the selector with the greatest weight, then the last ones. Presentation attributes
// are the weakest. A value that the property does not have counts as not written.

#ifndef TRAMMEL_APP_CASCADE_H
#define TRAMMEL_APP_CASCADE_H

#include "Css.h"
#include "CssTransform.h"
#include "SvgDocument.h"

#include <trammel/CMatrix3x3.h>

#include <array>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tool {

/// The properties that decide about outlines.
enum class Property {
    kDisplay,
    kVisibility,
    kFill,
    kStroke,
    kStrokeWidth,
    kStrokeLinejoin,
    kStrokeLinecap,
    kStrokeMiterlimit,
    kStrokeDasharray,
    kStrokeDashoffset,
    kStrokeOpacity,
    kFillOpacity,
    kOpacity,
    kPaintOrder,
    kVectorEffect,
    kColor,
    kFillRule,
    kClipRule,
    kClipPath,
    kTransform,
    kTranslate,
    kRotate,
    kScale,
    kTransformOrigin,
    kTransformBox,
    kFontSize,
    kOverflow,
    kMask,
    kFilter,
    kMarkerStart,
    kMarkerMid,
    kMarkerEnd,
    kX,
    kY,
    kWidth,
    kHeight,
    kRx,
    kRy,
    kCx,
    kCy,
    kR,
    kD,
};
inline constexpr std::size_t kProperties = static_cast<std::size_t>(Property::kD) + 1;

/// Returns the property's name.
char const* NameOf(Property property);

/// True for the keywords that every property has, such as "inherit".
bool IsWide(std::string_view value);

/// The winning declaration of a property; the value is empty when there is none.
struct Declared {
    std::string_view value;
    bool css = false;       ///< comes from a style sheet or a style attribute
    bool important = false; ///< was written with !important
};

/// The winning declarations of one element.
class ElementStyle {
public:
    Declared const& operator[](Property property) const {
        return mDeclared[static_cast<std::size_t>(property)];
    }
    Declared& operator[](Property property) {
        return mDeclared[static_cast<std::size_t>(property)];
    }

private:
    std::array<Declared, kProperties> mDeclared;
};

/// True for an element that has a transform by itself, even if that does nothing.
bool HasTransform(ElementStyle const& style);

/// Returns the point about which the transform of an element goes. Throws TextError for a mistake.
/// \param corner  the top left corner of the box that lengths refer to
TPoint<double> TransformCentre(ElementStyle const& style, TPoint<double> const& corner,
                               LengthUnits const& units);

/// Returns the transform that an element has by itself: by `transform`, `scale`, `rotate`,
/// `translate` and `transform-origin`. It throws TextError for a mistake in one of them.
/// \param corner  the top left corner of the box that lengths refer to
CMatrix3x3 TransformOf(ElementStyle const& style, TPoint<double> const& corner,
                       LengthUnits const& units);

/// The style sheets of a document.
class Cascade {
public:
    /// Receives a message about a part that is left out, and its place in the file.
    typedef std::function<void(std::string const& place, std::string const& message)> Complaint;

    /// Reads the document's style elements. The document must live as long as this.
    Cascade(SvgDocument const& document, Complaint complain);
    Cascade(Cascade const&) = delete;
    Cascade& operator=(Cascade const&) = delete;

    /// Returns the declarations that hold for an element. The values live as long as this object.
    ElementStyle Of(pugi::xml_node element);

    /// Returns all declarations of style sheets for the element, by property, as if it had another
    /// type. The value ends in "!important" where it was written.
    std::map<std::string, std::string> SheetsAs(pugi::xml_node element,
                                                std::string_view type) const;

private:
    struct Value {
        Property property;
        std::string value;
        bool important;
    };
    struct Rule {
        CssSelector selector;
        std::size_t block; ///< of declarations
        std::size_t order;
    };
    struct Block {
        std::vector<Value> values;       ///< of the properties above
        std::vector<CssDeclaration> all; ///< every declaration as it was written
    };

    void ReadSheet(pugi::xml_node style);
    std::vector<Value> ValuesOf(std::vector<CssDeclaration> const& declarations,
                                CssComplaint const& complain) const;
    std::vector<Value> const& StyleAttribute(pugi::xml_node element);
    void CollectMatches(pugi::xml_node element, std::string_view type,
                        std::vector<Rule const*>& matches) const;
    bool Matches(CssSelector const& selector, pugi::xml_node element, std::string_view type) const;
    /// The positions of an element among its siblings, from 1: of all, and of those with its name.
    struct Positions {
        int child = 0;
        int lastChild = 0;
        int ofType = 0;
        int lastOfType = 0;
    };
    Positions const& PositionsOf(pugi::xml_node element) const;
    std::string CustomProperty(pugi::xml_node element, std::string const& name, bool& found);
    std::string WithoutVars(pugi::xml_node element, std::string const& value, int level,
                            bool& good);
    bool MatchesOne(CssCompound const& compound, pugi::xml_node element,
                    std::string_view type) const;

    SvgDocument const& mDocument;
    Complaint mComplain;
    std::vector<Rule> mRules;
    std::vector<Block> mBlocks;
    // The rules by the strongest test of their last compound.
    std::unordered_map<std::string_view, std::vector<std::size_t>> mById;
    std::unordered_map<std::string_view, std::vector<std::size_t>> mByClass;
    std::unordered_map<std::string_view, std::vector<std::size_t>> mByType;
    std::vector<std::size_t> mOthers;
    std::unordered_map<std::string_view, std::vector<Value>> mStyleAttributes; ///< by their text
    std::unordered_set<std::string> mSubstituted; ///< values without var(), which styles refer to
    mutable std::unordered_map<std::size_t, Positions> mPositions; ///< by the element's offset
};

} // namespace tool

#endif
