// SPDX-License-Identifier: MIT

// The values of SVG attributes: transforms, lengths, lists of points, view boxes. Each function
// reads the whole value, and throws TextError with the place of a mistake.

#ifndef TRAMMEL_APP_SVGATTRIBUTES_H
#define TRAMMEL_APP_SVGATTRIBUTES_H

#include <trammel/CMatrix3x3.h>
#include <trammel/TPoint.h>
#include <trammel/TRect.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

class Scanner;

/// Returns the transform of a list, whose last entry applies to a point first. An empty list is the
/// identity.
CMatrix3x3 ParseTransform(std::string_view text);

/// A length and its unit: as written, but in small letters except for "Q".
struct Length {
    double number;
    std::string unit;
};

/// What the units stand for that depend on a font or on the window.
struct UnitSizes {
    double fontSize = 16.0;
    double rootFontSize = 16.0; ///< of the outermost element
    /// The size of the window in pixels; empty when it is unknown.
    std::optional<TPoint<double>> window = {};
};

/// Reads a number with an optional unit from the middle of a text.
Length ReadLength(Scanner& scanner);

/// Reads a number with an optional unit.
Length ParseLength(std::string_view text);

/// Reads lengths with commas or space between them; none for a mistake.
std::vector<Length> ParseLengths(std::string_view text);

/// Returns the length in user units. `whole` is the length of 100%, and empty when it is unknown.
/// Units of fonts and of the window need `sizes`. The tool looks at no font. So an ex and a ch are
/// half of the font's size, as browsers have them for a font without metrics.
double UserUnits(Length const& length, std::optional<double> whole,
                 UnitSizes const* sizes = nullptr);

/// Appends pairs of coordinates to `points`, up to a mistake.
void ParsePoints(std::string_view text, std::vector<TPoint<double>>& points);

/// Reads "left top width height". A negative size is an error.
TRect<double> ParseViewBox(std::string_view text);

/// What preserveAspectRatio says.
struct AspectRatio {
    bool stretch = false;              ///< fill the size, whatever its ratio is
    bool slice = false;                ///< fill it and let parts reach beyond
    TPoint<double> share = {0.5, 0.5}; ///< of the room that is left, before the box
};

/// Reads preserveAspectRatio. An empty value means xMidYMid meet.
AspectRatio ParseAspectRatio(std::string_view text);

/// Returns the transform that fits `box` into the size (from the origin). Precondition: the box has
/// an area.
CMatrix3x3 FitViewBox(TRect<double> const& box, TPoint<double> const& size,
                      AspectRatio const& ratio);

} // namespace tool

#endif
