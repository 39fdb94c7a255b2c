// SPDX-License-Identifier: MIT

// Picture: shapes on a page, to be written as SVG or PNG.

#ifndef TRAMMEL_APP_PICTURE_H
#define TRAMMEL_APP_PICTURE_H

#include "Drawing.h"

#include <trammel/CPath.h>
#include <trammel/TRect.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tool {

/// A colour, each part from 0 to 255.
struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

/// How a shape is painted: filled first (even-odd), then stroked, with round joins and caps.
struct Style {
    std::optional<Colour> fill;
    std::optional<Colour> stroke;
    double strokeWidth = 1.0; ///< in the picture's coordinates
    double opacity = 1.0;     ///< of fill and stroke, 0 to 1
};

/// One painted outline.
struct Shape {
    CPath path;
    Style style;
    std::string id; ///< written to SVG; may be empty
};

/// Shapes, painted in order.
struct Picture {
    Page page; ///< its frame must have an area
    std::optional<Colour> background;
    std::vector<Shape> shapes;
};

/// Adds the outlines as shapes, all in one style.
void AddOutlines(Picture& picture, std::vector<Outline> const& outlines, Style const& style);

/// Returns a page that shows all of `bounds`: the given page, enlarged as far as necessary with its
/// size on paper in proportion. If the given page has no frame, the bounds get a margin.
Page PageFor(Page const& page, TRect<double> const& bounds);

/// Returns the line width that suits a picture of this page: a 250th of its longer side.
double HairWidth(Page const& page);

/// Returns the picture as an SVG document. Its coordinates read back to the same numbers.
std::string SvgText(Picture const& picture);

/// The size of a PNG file. A part that is 0 is not asked for; of width and height together the one
/// counts that makes the picture smaller.
struct PngSize {
    double width = 0.0;       ///< in pixels
    double height = 0.0;      ///< in pixels
    double scale = 0.0;       ///< pixels for each unit of the picture
    bool transparent = false; ///< whether a picture without a background stays so
};

/// Returns the picture as a PNG file whose longer side has `pixels` pixels. Throws Error.
std::string PngBytes(Picture const& picture, int pixels);
/// Returns the picture as a PNG file with so many pixels for each unit. Throws Error.
std::string PngBytesAt(Picture const& picture, double scale);

/// True for a file's name that ends in .svg or .svgz, and for "-", which is standard output.
bool IsSvgName(std::string const& file);
/// True for a file's name that ends in .png.
bool IsPngName(std::string const& file);

/// Returns an SVG document as the file's name asks for it: packed by gzip for .svgz.
std::string SvgBytes(std::string const& text, std::string const& file);

/// Returns the picture in the format that the file's name asks for: .svg, .svgz (packed by gzip) or
/// .png (1200 pixels, unless the size says otherwise). "-", which stands for standard output, gets
/// SVG. Throws Error for other names.
std::string PictureBytes(Picture const& picture, std::string const& file, PngSize const& size = {});

} // namespace tool

#endif
