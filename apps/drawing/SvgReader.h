// SPDX-License-Identifier: MIT

// SvgReader: the outlines of an SVG document.
//
// The reader knows path, rect, circle, ellipse, line, polyline and polygon, in svg, g, a and
// switch, with their transforms, and `use` of ids in the same document. It passes over
//
//     elements that display="none" hides (attribute or style)
//     elements in defs, symbol, clipPath, mask, marker or pattern, unless a `use` draws them
//     text, images and style sheets
//
// The viewBox of the outermost element gives the coordinates. Lengths may carry px, pt, pc, mm, cm,
// in, Q, and also % if the drawing states its size. Other units (em, ex, vw...) are errors, because
// they depend on fonts and windows that do not exist here.
//
// Every mistake is an error with line and column. So is a `use` that refers to another file or to
// itself, and one that makes the drawing grow beyond bounds. A `use` of an id that does not exist
// draws nothing.

#ifndef TRAMMEL_APP_SVGREADER_H
#define TRAMMEL_APP_SVGREADER_H

#include "Drawing.h"

#include <string>

namespace tool {

/// Reads the content of `file`. Throws Error.
Drawing ReadSvg(std::string const& file, std::string content);

} // namespace tool

#endif
