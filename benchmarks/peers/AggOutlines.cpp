// SPDX-License-Identifier: MIT

// AGG's strokes are polygons. They overlap themselves, and curves are flattened before.

#include "AggPath.h"
#include "OutlineWorks.h"

#include <agg_conv_curve.h>
#include <agg_conv_dash.h>
#include <agg_conv_stroke.h>

#include <memory>

namespace peers {
namespace {

template <class Source> double Count(Source& source) {
    double count = 0.0;
    double x = 0.0;
    double y = 0.0;
    source.rewind(0);
    while (!agg::is_stop(source.vertex(&x, &y))) {
        count += 1.0;
    }
    return count;
}

template <class Source>
double Stroked(Source& source, trammel::StrokeStyle const& style, double scale) {
    agg::conv_stroke<Source> stroke(source);
    stroke.width(style.width);
    stroke.line_join(style.join == trammel::StrokeJoin::kRound ? agg::round_join
                                                               : agg::miter_join_revert);
    stroke.miter_limit(style.miterLimit);
    stroke.approximation_scale(scale);
    return Count(stroke);
}

} // namespace

void RegisterAggOutlines() {
    OutlineWorks<std::shared_ptr<agg::path_storage>> works;
    works.convert = ToAgg;
    works.stroke = [](std::shared_ptr<agg::path_storage> const& path,
                      trammel::StrokeStyle const& style, double tolerance) {
        // An eighth of a pixel is the tolerance of its arcs.
        double const scale = 0.125 / tolerance;
        agg::conv_curve<agg::path_storage> curve(*path);
        curve.approximation_scale(scale);
        if (style.dashes.empty()) {
            return Stroked(curve, style, scale);
        }
        agg::conv_dash<agg::conv_curve<agg::path_storage>> dash(curve);
        dash.add_dash(style.dashes[0], style.dashes[1]);
        return Stroked(dash, style, scale);
    };
    RegisterOutlines("agg", works);
}

} // namespace peers
