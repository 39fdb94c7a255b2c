// SPDX-License-Identifier: MIT

#include "Picture.h"

#include "Ascii.h"
#include "Error.h"
#include "Gzip.h"
#include "Input.h"
#include "Outlines.h"

#include <algorithm>
#include <string_view>

namespace tool {

namespace {

constexpr double kMarginShare = 0.05;
constexpr double kHairShare = 1.0 / 250.0;
constexpr int kPngPixels = 1200;

double LongerSide(TRect<double> const& r) { return std::max(r.Width(), r.Height()); }

/// True for a name that ends so, in small letters or in capitals.
bool EndsWith(std::string_view name, std::string_view end) {
    return name.size() >= end.size() && AsciiLower(name.substr(name.size() - end.size())) == end;
}

} // namespace

void AddOutlines(Picture& picture, std::vector<Outline> const& outlines, Style const& style) {
    for (Outline const& outline : outlines) {
        picture.shapes.push_back({outline.path, style, outline.id});
    }
}

Page PageFor(Page const& page, TRect<double> const& bounds) {
    Page out = page;
    if (page.frame.Empty()) {
        double margin = LongerSide(bounds) * kMarginShare;
        out.frame = bounds;
        out.frame.Outset(margin > 0.0 ? margin : 1.0);
        out.width = out.frame.Width();
        out.height = out.frame.Height();
        out.unit = "";
        return out;
    }
    out.frame = Around(page.frame, bounds);
    if (!(page.width > 0.0 && page.height > 0.0)) {
        out.width = page.frame.Width();
        out.height = page.frame.Height();
        out.unit = "";
    }
    TPoint<double> const growth = out.frame.GetSize() / page.frame.GetSize();
    out.width *= growth.h;
    out.height *= growth.v;
    return out;
}

double HairWidth(Page const& page) { return LongerSide(page.frame) * kHairShare; }

bool IsSvgName(std::string const& file) {
    return EndsWith(file, ".svg") || EndsWith(file, ".svgz") || file == kStandardStream;
}

std::string SvgBytes(std::string const& text, std::string const& file) {
    return EndsWith(file, ".svgz") ? Zipped(text) : text;
}

bool IsPngName(std::string const& file) { return EndsWith(file, ".png"); }

std::string PictureBytes(Picture const& picture, std::string const& file, PngSize const& size) {
    if (IsSvgName(file)) {
        return SvgBytes(SvgText(picture), file);
    }
    if (!IsPngName(file)) {
        throw Error(file, "", "must end in .svg, .svgz or .png");
    }
    Picture onPaper = picture;
    if (!picture.background && !size.transparent) {
        onPaper.background = Colour{255, 255, 255};
    }
    TRect<double> const& frame = picture.page.frame;
    double scale = size.scale;
    if (size.width > 0.0) {
        scale = size.width / frame.Width();
    }
    if (size.height > 0.0) {
        double const byHeight = size.height / frame.Height();
        scale = size.width > 0.0 ? std::min(scale, byHeight) : byHeight;
    }
    return scale > 0.0 ? PngBytesAt(onPaper, scale) : PngBytes(onPaper, kPngPixels);
}

} // namespace tool
