// SPDX-License-Identifier: MIT

#include "Works.h"

#include <trammel/CPathActions.h>

#include <array>
#include <cmath>
#include <memory>

typedef std::array<double, 8> KurboCurve;

// kurbo.rs says what these are.
extern "C" {
struct KurboPath;
double kurbo_flatten(KurboCurve const& curve, double tolerance);
void kurbo_points(KurboCurve const& curve, double tolerance,
                  void (*sink)(double x, double y, void* data), void* data);
double kurbo_length(KurboCurve const& curve, double accuracy);
double kurbo_nearest(KurboCurve const& curve, double x, double y, double accuracy, double& square);
double kurbo_parameter(KurboCurve const& curve, double fraction, double accuracy);
KurboPath* kurbo_path_new();
void kurbo_path_free(KurboPath* path);
void kurbo_path_move(KurboPath& path, double x, double y);
void kurbo_path_line(KurboPath& path, double x, double y);
void kurbo_path_curve(KurboPath& path, KurboCurve const& curve);
void kurbo_path_close(KurboPath& path);
double kurbo_path_length(KurboPath const& path, double accuracy);
double kurbo_path_nearest(KurboPath const& path, double x, double y, double accuracy);
int kurbo_path_winding(KurboPath const& path, double x, double y);
double kurbo_path_area(KurboPath const& path);
double kurbo_path_bounds(KurboPath const& path);
double kurbo_line_meets(std::array<double, 4> const& line, KurboCurve const& curve);
void kurbo_path_point(KurboPath const& path, double fraction, double accuracy, double& x,
                      double& y);
}

namespace peers {
namespace {

/// The accuracy where the work names no other tolerance, in units.
constexpr double kAccuracy = 0.001;

class Builder : public CPathActions {
public:
    std::shared_ptr<KurboPath> mPath{kurbo_path_new(), kurbo_path_free};
    void MoveTo(TPoint<double> const& p) override { kurbo_path_move(*mPath, p.h, p.v); }
    void LineTo(TPoint<double> const& p) override { kurbo_path_line(*mPath, p.h, p.v); }
    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        kurbo_path_curve(*mPath, {0.0, 0.0, c1.h, c1.v, c2.h, c2.v, e.h, e.v});
    }
    void ClosePath() override { kurbo_path_close(*mPath); }
};

} // namespace

void RegisterKurboWorks() {
    CurveWorks<KurboCurve> curves;
    curves.convert = [](CBezier const& c) {
        return KurboCurve{c.P0.h, c.P0.v, c.P1.h, c.P1.v, c.P2.h, c.P2.v, c.P3.h, c.P3.v};
    };
    curves.flatten = kurbo_flatten;
    curves.points = [](KurboCurve const& curve, double tolerance) {
        truth::Chain chain;
        kurbo_points(
            curve, tolerance,
            [](double x, double y, void* data) {
                static_cast<truth::Chain*>(data)->emplace_back(x, y);
            },
            &chain);
        return chain;
    };
    curves.length = [](KurboCurve const& curve) { return kurbo_length(curve, kAccuracy); };
    curves.nearest = [](KurboCurve const& curve, TPoint<double> const& p) {
        double square = 0.0;
        return kurbo_nearest(curve, p.h, p.v, kAccuracy, square);
    };
    curves.parameter = [](KurboCurve const& curve, double fraction) {
        return kurbo_parameter(curve, fraction, kAccuracy);
    };
    curves.hit = [](KurboCurve const& curve, TPoint<double> const& p, double tolerance) {
        double square = 0.0;
        kurbo_nearest(curve, p.h, p.v, kAccuracy, square);
        return std::sqrt(square) <= tolerance;
    };
    curves.intersectLine = [](TLine<double> const& line, KurboCurve const& curve) {
        return kurbo_line_meets({line.mStart.h, line.mStart.v, line.mEnd.h, line.mEnd.v}, curve);
    };
    RegisterCurves("kurbo", curves);

    typedef std::shared_ptr<KurboPath> Path;
    PathWorks<Path> paths;
    paths.convert = [](CPath const& path) {
        Builder builder;
        path.ForAll(builder);
        return builder.mPath;
    };
    paths.length = [](Path const& path) { return kurbo_path_length(*path, kAccuracy); };
    paths.point = [](Path const& path, double fraction) {
        TPoint<double> p;
        kurbo_path_point(*path, fraction, kAccuracy, p.h, p.v);
        return p;
    };
    paths.nearest = [](Path const& path, TPoint<double> const& p) {
        return kurbo_path_nearest(*path, p.h, p.v, kAccuracy);
    };
    paths.contains = [](Path const& path, TPoint<double> const& p) {
        return kurbo_path_winding(*path, p.h, p.v) % 2 != 0;
    };
    paths.area = [](Path const& path) { return kurbo_path_area(*path); };
    paths.bounds = [](Path const& path) { return kurbo_path_bounds(*path); };
    RegisterPaths("kurbo", paths);
    RegisterRegions("kurbo", paths);
    RegisterShapes("kurbo", paths);
}

} // namespace peers
