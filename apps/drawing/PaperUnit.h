// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_APP_PAPERUNIT_H
#define TRAMMEL_APP_PAPERUNIT_H

#include "Drawing.h"

#include <trammel/CMatrix3x3.h>

#include <string>
#include <string_view>

namespace tool {

/// True for mm, cm, in, pt, pc, Q, px and no unit at all.
bool IsPaperUnit(std::string_view unit);

/// Returns the transform that does what ToPaperUnit does. Throws Error as it does.
CMatrix3x3 PaperFit(Drawing const& drawing, std::string const& unit);

/// Moves the drawing's outlines to coordinates in a unit of length on paper, counted from the
/// page's top left corner. The page has this frame, and stays as large as it is. Throws Error
/// unless the unit is mm, cm, in, pt, pc, Q or px, and when the drawing does not tell its size.
void ToPaperUnit(Drawing& drawing, std::string const& unit);

} // namespace tool

#endif
