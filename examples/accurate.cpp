// SPDX-License-Identifier: MIT

#include <trammel/AccurateCurve.h>
#include <trammel/TPoly.h>

#include <cstdio>

int main() {
    CBezier const curve({0, 0}, {0, 100}, {100, 100}, {100, 0}); // 200 long
    for (double const accuracy : {1.0, 1e-3, 1e-6}) {
        TPolygon<double> polygon;
        trammel::FlattenWithin(curve, accuracy, polygon);
        std::printf("within %5g: length %.9f, %4ld points\n", accuracy,
                    trammel::ArcLength(curve, accuracy), polygon.LastIndex() + 1);
    }

    double const t = trammel::ParameterAtLength(curve, 50, 1e-9);
    std::printf("50 along: (%.6f, %.6f)\n", curve.TPt(t).h, curve.TPt(t).v);

    trammel::CurvePoint const found = trammel::NearestPoint(curve, {60, 60}, 1e-9);
    std::printf("nearest to (60, 60): (%.6f, %.6f), %.6f away\n", found.point.h, found.point.v,
                found.distance);

    TRect<double> const bounds = trammel::TightBounds(curve);
    std::printf("bounds down to %.1f, control points to %.1f\n", bounds.bottom,
                curve.Extents().bottom);
}
