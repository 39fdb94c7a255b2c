// SPDX-License-Identifier: MIT

// SvgReader: the outlines of an SVG document.
//
// The reader knows path, rect, circle, ellipse, line, polyline and polygon, in svg, g, a and
// switch, with their transforms, and `use` of ids in the same document. Style decides as in a
// browser: style sheets, style attributes and presentation attributes (Cascade.h). It passes over
//
//     elements that display or visibility hides, or whose conditions do not hold
//     elements in defs, symbol, clipPath, mask, marker or pattern, unless a `use` draws them
//     text, images and foreign objects, with one warning for each kind
//
// A clip-path, and the viewport of an inner svg or a symbol, become clips of the outlines (Clip.h).
// Masks and markers are left out, with one warning for each kind.
//
// The viewBox of the outermost element gives the coordinates. Lengths may carry px, pt, pc, mm, cm,
// in, Q, em, rem, and also % if the drawing states its size. Other units (ex, vw...) depend on
// fonts and windows that do not exist here.
//
// A mistake costs what it would cost in a browser, and a warning with line and column: the rest of
// a path, an attribute, a declaration, or the element. So does a `use` that refers to another file
// or to itself. A `use` of an id that does not exist draws nothing. These are errors: text that is
// no XML, deep nesting, and `use` elements that make the drawing grow beyond bounds.

#ifndef TRAMMEL_APP_SVGREADER_H
#define TRAMMEL_APP_SVGREADER_H

#include "Drawing.h"
#include "TextEncoding.h"

#include <string>

namespace tool {

/// Reads the text of `file`, which is in UTF-8 here. Throws Error.
/// \param encoding  of the file
Drawing ReadSvg(std::string const& file, std::string text, Encoding encoding,
                ArcAccuracy const& arcs);

} // namespace tool

#endif
