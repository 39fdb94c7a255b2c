// SPDX-License-Identifier: MIT

// The properties of style sheets that turn, scale and move: transform, its relatives translate,
// rotate and scale, and transform-origin. Each function throws TextError with the place of a
// mistake, also for what leaves the plane.

#ifndef TRAMMEL_APP_CSSTRANSFORM_H
#define TRAMMEL_APP_CSSTRANSFORM_H

#include "SvgAttributes.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/TPoint.h>

#include <functional>
#include <string_view>

namespace tool {

/// Returns a length in user units. Shares of the whole differ between the directions.
typedef std::function<double(Length const& length, bool vertical)> LengthUnits;

/// Returns the transform of the property `transform`. It differs from the attribute by units, by
/// functions for one direction and by those for space, which are read where they stay in the plane.
CMatrix3x3 ParseCssTransform(std::string_view text, LengthUnits const& units);

/// Returns the transform of the properties `translate`, `rotate` and `scale`.
CMatrix3x3 ParseCssTranslate(std::string_view text, LengthUnits const& units);
CMatrix3x3 ParseCssRotate(std::string_view text);
CMatrix3x3 ParseCssScale(std::string_view text);

/// Returns the point of the property transform-origin: lengths, shares and words. A distance toward
/// the eye is passed over.
/// \param units  also receives numbers without a unit
TPoint<double> ParseTransformOrigin(std::string_view text, LengthUnits const& units);

} // namespace tool

#endif
