// SPDX-License-Identifier: MIT

// Numbers, lengths and angles of style sheets, also as calc(), min(), max() and clamp(). Each
// function throws TextError with the place of a mistake.

#ifndef TRAMMEL_APP_CSSMATH_H
#define TRAMMEL_APP_CSSMATH_H

#include "Numbers.h"
#include "SvgAttributes.h"

#include <functional>
#include <string_view>

namespace tool {

/// What a value measures.
enum class CssKind { kNumber, kLength, kAngle };

/// A number, a length in user units or an angle in radians.
struct CssValue {
    double number = 0.0;
    CssKind kind = CssKind::kNumber;
};

/// Returns a length, or a share of one, in user units.
typedef std::function<double(Length const& length)> CssUnits;

/// Reads a number with an optional unit, or a function of such.
CssValue ReadCssValue(Scanner& scanner, CssUnits const& units);

/// True for a text that begins with one of these functions.
bool IsCssMath(std::string_view text);

/// Returns the length that the whole text states, in user units. A number is handed to `units`,
/// too.
double ParseCssLength(std::string_view text, CssUnits const& units);

} // namespace tool

#endif
