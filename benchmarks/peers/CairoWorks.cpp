// SPDX-License-Identifier: MIT

#include "Works.h"

#include <trammel/CPathActions.h>

#include <cairo.h>

#include <cmath>
#include <memory>
#include <vector>

namespace peers {
namespace {

/// A drawing context on a surface of one pixel.
class Context {
public:
    Context() {
        cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
        mContext = cairo_create(surface);
        cairo_surface_destroy(surface);
    }
    Context(Context const&) = delete;
    Context& operator=(Context const&) = delete;
    ~Context() { cairo_destroy(mContext); }

    cairo_t* Get() const { return mContext; }
    cairo_t* With(CBezier const& c) const {
        cairo_new_path(mContext);
        cairo_move_to(mContext, c.P0.h, c.P0.v);
        cairo_curve_to(mContext, c.P1.h, c.P1.v, c.P2.h, c.P2.v, c.P3.h, c.P3.v);
        return mContext;
    }

private:
    cairo_t* mContext;
};

/// Makes cairo's path of ours.
class PathBuilder : public CPathActions {
public:
    explicit PathBuilder(cairo_t* context) : mContext(context) {}
    void MoveTo(TPoint<double> const& p) override { cairo_move_to(mContext, p.h, p.v); }
    void LineTo(TPoint<double> const& p) override { cairo_line_to(mContext, p.h, p.v); }
    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        cairo_curve_to(mContext, c1.h, c1.v, c2.h, c2.v, e.h, e.v);
    }
    void ClosePath() override { cairo_close_path(mContext); }

private:
    cairo_t* mContext;
};

/// Calls what(x, y) for the points of the flattened curve.
template <class What>
void ForFlattened(Context const& context, CBezier const& curve, double tolerance, What what) {
    cairo_t* const cairo = context.With(curve);
    cairo_set_tolerance(cairo, tolerance);
    cairo_path_t* const path = cairo_copy_path_flat(cairo);
    for (int i = 0; i < path->num_data; i += path->data[i].header.length) {
        if (path->data[i].header.length == 2) {
            what(path->data[i + 1].point.x, path->data[i + 1].point.y);
        }
    }
    cairo_path_destroy(path);
}

} // namespace

void RegisterCairoWorks() {
    auto const context = std::make_shared<Context>();
    CurveWorks<CBezier> curves;
    curves.convert = [](CBezier const& c) { return c; };
    curves.flatten = [=](CBezier const& curve, double tolerance) {
        double count = 0.0;
        ForFlattened(*context, curve, tolerance, [&](double, double) { count += 1.0; });
        return count;
    };
    curves.points = [=](CBezier const& curve, double tolerance) {
        truth::Chain chain;
        ForFlattened(*context, curve, tolerance,
                     [&](double x, double y) { chain.emplace_back(x, y); });
        return chain;
    };
    curves.hit = [=](CBezier const& curve, TPoint<double> const& p, double tolerance) {
        cairo_t* const cairo = context->With(curve);
        cairo_set_tolerance(cairo, 0.1);
        cairo_set_line_width(cairo, 2.0 * tolerance);
        cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
        cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
        return cairo_in_stroke(cairo, p.h, p.v) != 0;
    };
    RegisterCurves("cairo", curves);

    // Each path stays in a context of its own.
    typedef std::shared_ptr<Context> Path;
    PathWorks<Path> paths;
    paths.convert = [](CPath const& path) {
        auto made = std::make_shared<Context>();
        PathBuilder builder(made->Get());
        path.ForAll(builder);
        cairo_set_fill_rule(made->Get(), CAIRO_FILL_RULE_EVEN_ODD);
        return made;
    };
    paths.contains = [](Path const& path, TPoint<double> const& p) {
        return cairo_in_fill(path->Get(), p.h, p.v) != 0;
    };
    RegisterRegions("cairo", paths);
    RegisterShapes("cairo", paths);

    PolygonWorks<truth::Chain> polygons;
    polygons.convert = [](truth::Chain const& ring) {
        return std::make_shared<truth::Chain>(ring);
    };
    cairo_matrix_t turn;
    cairo_matrix_init_translate(&turn, 500.0, 500.0);
    cairo_matrix_rotate(&turn, 1.0);
    cairo_matrix_translate(&turn, -500.0, -500.0);
    polygons.transform = [turn](truth::Chain& ring) {
        for (TPoint<double>& p : ring) {
            cairo_matrix_transform_point(&turn, &p.h, &p.v);
        }
    };
    RegisterPolygons("cairo", polygons);
}

} // namespace peers
