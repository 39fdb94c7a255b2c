// SPDX-License-Identifier: MIT

// SvgReader: the outlines of an SVG document.
//
// Read are path, rect, circle, ellipse, line, polyline and polygon, in svg, g, a and switch, with
// their transforms, and `use` of ids in the same document. Not drawn: what display="none"
// (attribute or style) hides, and what stands in defs, symbol, clipPath, mask, marker or pattern,
// unless a `use` draws it. Text, images and style sheets are passed over.
//
// Coordinates are those of the outermost element's viewBox. Lengths may carry px, pt, pc, mm, cm,
// in, Q and, where the drawing states its size, %; other units (em, ex, vw...) are errors, as they
// depend on fonts and windows that do not exist here.
//
// Anything that is wrong is an error with line and column, also a `use` that refers to another file
// or to itself, and one that makes the drawing grow beyond bounds. A `use` of an id that does not
// exist draws nothing.

#ifndef TRAMMEL_APP_SVGREADER_H
#define TRAMMEL_APP_SVGREADER_H

#include "Drawing.h"

#include <string>

namespace tool {

/// Reads the document `text`; `file` is for messages. Throws Error.
Drawing ReadSvg(std::string const& file, std::string const& text);

} // namespace tool

#endif
