// SPDX-License-Identifier: MIT

#include <trammel/CairoSink.h>
#include <trammel/UTrigonometry.h>

#include <cstdio>

int main() {
    CPath ring; // two circles, the inner one a hole
    for (double const radius : {40.0, 25.0}) {
        ring.MoveTo({50 + radius, 50});
        ring.Arc({50, 50}, radius, 0, 2 * pi);
        ring.ClosePath();
    }

    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 100, 100);
    cairo_t* cairo = cairo_create(surface);
    trammel::DrawPath(cairo, ring);
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_EVEN_ODD);
    for (double const h : {5.0, 20.0, 50.0}) {
        std::printf("(%g, 50) is %s\n", h, cairo_in_fill(cairo, h, 50) ? "ink" : "paper");
    }
    cairo_set_source_rgb(cairo, 0.12, 0.31, 0.47);
    cairo_fill(cairo);
    cairo_status_t const status = cairo_surface_write_to_png(surface, "ring.png");
    std::printf("ring.png: %s\n", cairo_status_to_string(status));
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
}
