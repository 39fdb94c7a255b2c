// SPDX-License-Identifier: MIT

// The outlines of one file, which the commands work on. Coordinates are the file's own, with v
// downward.

#ifndef TRAMMEL_APP_DRAWING_H
#define TRAMMEL_APP_DRAWING_H

#include <trammel/CPath.h>
#include <trammel/TRect.h>

#include <string>
#include <vector>

namespace tool {

/// One outline and its name.
struct Outline {
    std::string id; ///< the element's id or the glyph's name; otherwise made up, like "path#3"
    CPath path;     ///< every subpath begins with a move
};

/// The part of the plane that a drawing shows, and the size that it has on paper.
struct Page {
    TRect<double> frame; ///< in the drawing's coordinates; null when the file does not tell
    double width = 0.0;  ///< size on paper in `unit`; 0 when the file does not tell
    double height = 0.0;
    std::string unit; ///< "mm", "px" and so on; may be empty
};

/// The outlines of one file.
struct Drawing {
    std::string file;
    std::string kind; ///< "svg", "font" or "map"
    Page page;
    std::vector<Outline> outlines;
};

/// Reads an SVG drawing, every glyph of a font (in font units) or every country of a TopoJSON map
/// (in degrees). The content decides which of them the file is, not its name. Throws Error.
Drawing ReadDrawing(std::string const& file);

} // namespace tool

#endif
