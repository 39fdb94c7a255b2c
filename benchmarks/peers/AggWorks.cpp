// SPDX-License-Identifier: MIT

#include "AggPath.h"
#include "Works.h"

#include <agg_bounding_rect.h>
#include <agg_conv_curve.h>
#include <agg_curves.h>
#include <agg_path_length.h>
#include <agg_trans_affine.h>

#include <memory>

namespace peers {
namespace {

/// The curve, subdivided to the tolerance, which is half a pixel of its scale.
agg::curve4_div Subdivided(CBezier const& c, double tolerance) {
    agg::curve4_div curve;
    curve.approximation_scale(0.5 / tolerance);
    curve.init(c.P0.h, c.P0.v, c.P1.h, c.P1.v, c.P2.h, c.P2.v, c.P3.h, c.P3.v);
    return curve;
}

} // namespace

void RegisterAggWorks() {
    CurveWorks<CBezier> curves;
    curves.convert = [](CBezier const& c) { return c; };
    curves.flatten = [](CBezier const& c, double tolerance) {
        agg::curve4_div curve = Subdivided(c, tolerance);
        double count = 0.0;
        double x = 0.0;
        double y = 0.0;
        while (!agg::is_stop(curve.vertex(&x, &y))) {
            count += 1.0;
        }
        return count;
    };
    curves.points = [](CBezier const& c, double tolerance) {
        agg::curve4_div curve = Subdivided(c, tolerance);
        truth::Chain chain;
        double x = 0.0;
        double y = 0.0;
        while (!agg::is_stop(curve.vertex(&x, &y))) {
            chain.emplace_back(x, y);
        }
        return chain;
    };
    curves.length = [](CBezier const& c) {
        agg::curve4_div curve = Subdivided(c, 0.001);
        return agg::path_length(curve);
    };
    RegisterCurves("agg", curves);

    typedef std::shared_ptr<agg::path_storage> Storage;
    PathWorks<Storage> paths;
    paths.convert = ToAgg;
    paths.length = [](Storage const& storage) {
        agg::conv_curve<agg::path_storage, agg::curve3_div, agg::curve4_div> flat(*storage);
        flat.approximation_scale(500.0);
        return agg::path_length(flat);
    };
    RegisterPaths("agg", paths);

    PolygonWorks<agg::path_storage> polygons;
    polygons.convert = [](truth::Chain const& ring) {
        auto storage = std::make_shared<agg::path_storage>();
        for (std::size_t i = 0; i < ring.size(); ++i) {
            if (i == 0) {
                storage->move_to(ring[i].h, ring[i].v);
            } else {
                storage->line_to(ring[i].h, ring[i].v);
            }
        }
        return storage;
    };
    polygons.bounds = [](agg::path_storage& ring) {
        double left = 0.0;
        double top = 0.0;
        double right = 0.0;
        double bottom = 0.0;
        agg::bounding_rect_single(ring, 0, &left, &top, &right, &bottom);
        return left + top + right + bottom;
    };
    polygons.transform = [](agg::path_storage& ring) {
        agg::trans_affine turn = agg::trans_affine_translation(-500.0, -500.0);
        turn *= agg::trans_affine_rotation(1.0);
        turn *= agg::trans_affine_translation(500.0, 500.0);
        ring.transform_all_paths(turn);
    };
    RegisterPolygons("agg", polygons);
}

} // namespace peers
