// SPDX-License-Identifier: MIT

#include <trammel/CBezier.h>
#include <trammel/TPoly.h>

#include <cstdio>

int main() {
    CBezier const curve({0, 0}, {0, 100}, {100, 100}, {100, 0}); // 200 long
    for (double const error : {10.0, 1.0, 0.1, 0.001}) {
        TPolygon<double> polygon;
        curve.Flatten(polygon, error);
        std::printf("error %5g: %3ld points, length %.4f\n", error, polygon.LastIndex() + 1,
                    polygon.Length());
    }
}
