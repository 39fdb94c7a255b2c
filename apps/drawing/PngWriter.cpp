// SPDX-License-Identifier: MIT

#include "Error.h"
#include "Picture.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/CairoSink.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <type_traits>

namespace tool {

namespace {

constexpr double kMostPixels = 1e8;

struct SurfaceCloser {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextCloser {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};

cairo_status_t AppendBytes(void* closure, unsigned char const* data, unsigned length) {
    try {
        static_cast<std::string*>(closure)->append(reinterpret_cast<char const*>(data), length);
        return CAIRO_STATUS_SUCCESS;
    } catch (...) {
        return CAIRO_STATUS_NO_MEMORY;
    }
}

void SetColour(cairo_t* context, Colour const& colour, double opacity) {
    cairo_set_source_rgba(context, colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0,
                          opacity);
}

/// Paints one shape. The library maps the path to pixels before Cairo sees it. Cairo's own
/// coordinates are fixed-point numbers, in which small units would lose their fraction.
void Paint(cairo_t* context, Shape const& shape, CMatrix3x3 const& toPixels, double scale) {
    CPath path = shape.path;
    path.Transform(toPixels);
    cairo_new_path(context);
    trammel::DrawPath(context, path);
    if (shape.style.fill) {
        SetColour(context, *shape.style.fill, shape.style.opacity);
        cairo_fill_preserve(context);
    }
    if (shape.style.stroke) {
        SetColour(context, *shape.style.stroke, shape.style.opacity);
        cairo_set_line_width(context, shape.style.strokeWidth * scale);
        cairo_stroke_preserve(context);
    }
    cairo_new_path(context);
}

void Check(cairo_status_t status) {
    if (status != CAIRO_STATUS_SUCCESS) {
        throw Error("", "", std::string("cannot be drawn: ") + cairo_status_to_string(status));
    }
}

} // namespace

std::string PngBytes(Picture const& picture, int pixels) {
    TRect<double> const& frame = picture.page.frame;
    return PngBytesAt(picture, pixels / std::max(frame.Width(), frame.Height()));
}

std::string PngBytesAt(Picture const& picture, double scale) {
    TRect<double> const& frame = picture.page.frame;
    if (!std::isfinite(scale) || !(scale > 0.0)) {
        throw Error("", "", "cannot be drawn: the drawing is too large or has no size");
    }
    if (!(frame.Width() * scale * (frame.Height() * scale) <= kMostPixels)) {
        throw Error("", "", "cannot be drawn: it would have more than 100 million pixels");
    }
    auto const count = [scale](double size) {
        return std::max(1, static_cast<int>(std::ceil(size * scale - 1e-9)));
    };
    std::unique_ptr<cairo_surface_t, SurfaceCloser> const surface(cairo_image_surface_create(
        CAIRO_FORMAT_ARGB32, count(frame.Width()), count(frame.Height())));
    Check(cairo_surface_status(surface.get()));
    std::unique_ptr<cairo_t, ContextCloser> const context(cairo_create(surface.get()));
    cairo_set_fill_rule(context.get(), CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_line_cap(context.get(), CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(context.get(), CAIRO_LINE_JOIN_ROUND);
    if (picture.background) {
        SetColour(context.get(), *picture.background, 1.0);
        cairo_paint(context.get());
    }
    CMatrix3x3 const toPixels = CMatrix3x3().Translate(-frame.left, -frame.top).Scale(scale);
    for (Shape const& shape : picture.shapes) {
        Paint(context.get(), shape, toPixels, scale);
    }
    Check(cairo_status(context.get()));
    std::string bytes;
    Check(cairo_surface_write_to_png_stream(surface.get(), AppendBytes, &bytes));
    return bytes;
}

} // namespace tool
