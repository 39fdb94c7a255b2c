// SPDX-License-Identifier: MIT

// The values of SVG attributes: transforms, lengths, lists of points, view boxes. Each function
// reads the whole value and throws TextError where it is wrong.

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

/// The transform list, its last entry applied to a point first; an empty one is the identity.
CMatrix3x3 ParseTransform(std::string_view text);

/// A length and its unit, as written.
struct Length {
    double number;
    std::string unit;
};

/// A number with an optional unit.
Length ParseLength(std::string_view text);

/// The length in user units; `whole` is what 100% stands for, empty when that is unknown.
double UserUnits(Length const& length, std::optional<double> whole);

/// Pairs of coordinates.
std::vector<TPoint<double>> ParsePoints(std::string_view text);

/// "left top width height"; a negative size is an error.
TRect<double> ParseViewBox(std::string_view text);

/// The transform that fits `box` into the size (from the origin) as preserveAspectRatio says: empty
/// means xMidYMid meet. Precondition: the box has an area.
CMatrix3x3 FitViewBox(TRect<double> const& box, TPoint<double> const& size,
                      std::string_view preserveAspectRatio);

} // namespace tool

#endif
