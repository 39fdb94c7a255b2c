// SPDX-License-Identifier: MIT

#include "Picture.h"

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

bool EndsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
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

std::string PictureBytes(Picture const& picture, std::string const& file) {
    if (EndsWith(file, ".svg") || file == kStandardStream) {
        return SvgText(picture);
    }
    if (EndsWith(file, ".svgz")) {
        return Zipped(SvgText(picture));
    }
    if (EndsWith(file, ".png")) {
        Picture onPaper = picture;
        onPaper.background = picture.background.value_or(Colour{255, 255, 255});
        return PngBytes(onPaper, kPngPixels);
    }
    throw Error(file, "", "must end in .svg, .svgz or .png");
}

} // namespace tool
