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

/// Returns the width of the words (UTF-8) at a size in coordinate units, kerning included.
double TextWidth(Font const& font, std::string const& words, double size);

/// Returns the words from `origin` (start of the baseline) to the right, as one outline for each
/// visible glyph.
std::vector<Outline> TextLine(Font const& font, std::string const& words, double size,
                              TPoint<double> const& origin);

/// Returns the words along an outline. The middle of each glyph's advance stands on it, by arc
/// length, and the glyph turns to the outline's direction there.
/// \param size   of the type, in coordinate units; above 0
/// \param start  the beginning of the words, as a distance along the outline
/// Throws Error when the words do not fit on the outline, or it has no length.
std::vector<Outline> TextAlong(Font const& font, std::string const& words, double size,
                               CPath const& along, double start);

} // namespace tool

#endif
