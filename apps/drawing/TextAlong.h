// SPDX-License-Identifier: MIT

// Words as outlines: in a straight line, or along another outline.

#ifndef TRAMMEL_APP_TEXTALONG_H
#define TRAMMEL_APP_TEXTALONG_H

#include "Drawing.h"
#include "FontReader.h"

#include <trammel/CPath.h>
#include <trammel/TPoint.h>

#include <string>
#include <vector>

namespace tool {

/// The width of the words (UTF-8) at a size in coordinate units, kerning included.
double TextWidth(Font const& font, std::string const& words, double size);

/// The words from `origin` (start of the baseline) to the right, one outline for each visible
/// glyph.
std::vector<Outline> TextLine(Font const& font, std::string const& words, double size,
                              TPoint<double> const& origin);

/// The words along an outline: the middle of each glyph's advance stands on it, by arc length, and
/// the glyph is turned to the outline's direction there.
/// \param size   of the type, in coordinate units; above 0
/// \param start  where the words begin, as a distance along the outline
/// Throws Error when the words do not fit on the outline, or it has no length.
std::vector<Outline> TextAlong(Font const& font, std::string const& words, double size,
                               CPath const& along, double start);

} // namespace tool

#endif
