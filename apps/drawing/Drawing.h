// SPDX-License-Identifier: MIT

// The outlines of one file, which the commands work on. Coordinates are the file's own, with v
// downward.

#ifndef TRAMMEL_APP_DRAWING_H
#define TRAMMEL_APP_DRAWING_H

#include "SvgAttributes.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/CPath.h>
#include <trammel/FillRule.h>
#include <trammel/StrokeStyle.h>
#include <trammel/TRect.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace tool {

class SvgDocument;

/// The place of an outline that no document has.
inline constexpr std::size_t kNoElement = static_cast<std::size_t>(-1);

/// The element of a document that an outline was read from. Elements are offsets of their '<' in
/// the document's text.
struct OutlineSource {
    std::size_t element = kNoElement;
    std::size_t placed = kNoElement; ///< the outermost `use` that draws the element, or itself
    CMatrix3x3 toDrawing;            ///< from the element's own coordinates to the drawing's
    CMatrix3x3 around;               ///< the same without the element's own transform
    CMatrix3x3 beside;               ///< from the coordinates around `placed` to the drawing's
    std::size_t copies = 0;          ///< how often the drawing shows the element
    std::size_t siblings = 0;        ///< the number of outlines that `placed` draws
};

struct Clip;

/// How the drawing's style draws a line. Lengths are in the coordinates of the line's element.
struct Pen {
    trammel::StrokeStyle style;
    /// For a line that keeps its width whatever its transforms, the size of a pixel in the
    /// drawing's coordinates; 0 for other lines.
    double pixel = 0.0;
    bool paintsFirst = false;      ///< whether the line lies below the fill
    std::string opacity = "1";     ///< of the line, as the drawing says
    std::string fillOpacity = "1"; ///< of the fill
};

/// One outline and its name.
struct Outline {
    std::string id; ///< the element's id or the glyph's name; otherwise made up, like "path#3"
    CPath path;     ///< every subpath begins with a move
    trammel::FillRule rule = trammel::FillRule::kNonZero; ///< the rule that fills it
    OutlineSource source = {};
    std::string fill = "black";          ///< the paint of its area, as the drawing says; or "none"
    std::string stroke = "none";         ///< the paint of its line
    std::shared_ptr<Pen const> pen = {}; ///< empty for fonts and maps
    /// The opacity of the element, multiplied by those around it up to `source.placed`.
    double opacity = 1.0;
    /// The length that dashes take the whole line to have; 0: that which it has.
    double pathLength = 0.0;
    /// How far it may be from the circles, arcs and curves that its curves and lines stand for.
    double arcDistance = 0.0;
    /// By how much the curves may be longer than all of these arcs together.
    double arcLength = 0.0;
    /// The regions outside of which the drawing does not show it. ApplyClips cuts them off.
    std::vector<std::shared_ptr<Clip const>> clips = {};
};

/// The part of the plane that a drawing shows, and the size that it has on paper.
struct Page {
    TRect<double> frame; ///< in the drawing's coordinates; null when the file does not tell
    double width = 0.0;  ///< size on paper in `unit`; 0 when the file does not tell
    double height = 0.0;
    std::string unit;  ///< "mm", "px" and so on; may be empty
    AspectRatio ratio; ///< how the frame fits into that size
};

/// The outlines of one file.
struct Drawing {
    std::string file;
    std::string kind; ///< "svg", "font" or "map"
    Page page;
    std::vector<Outline> outlines;
    std::shared_ptr<SvgDocument const> document; ///< empty for fonts and maps
    CMatrix3x3 rootTransform;                    ///< of the document's outermost element
};

/// How near curves are to the circles and elliptical arcs that they stand for. They are as few as
/// this allows.
struct ArcAccuracy {
    enum class By {
        kPicture,  ///< as pictures need it: within 4.3e-6 of each arc's greater radius
        kDigits,   ///< eight digits of an outline's length and places are right
        kFigures,  ///< an outline's length and places are off by at most `most`
        kArea,     ///< an outline's area is off by at most `most`
        kDistance, ///< each curve is within `most` of its arc
    };
    By by = By::kPicture;
    double most = 0.0;
    std::string unit; ///< that `most` has, as for --unit; empty: the drawing's own
};

/// Reads an SVG drawing, every glyph of a font (in font units) or every feature of a map (TopoJSON
/// or GeoJSON, in degrees). The content decides which of them the file is, not its name. The file
/// may be packed by gzip, and "-" stands for standard input. Throws Error.
Drawing ReadDrawing(std::string const& file, ArcAccuracy const& arcs = {});

} // namespace tool

#endif
