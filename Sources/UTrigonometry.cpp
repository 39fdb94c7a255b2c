// SPDX-License-Identifier: MIT

#include "UTrigonometry.h"

namespace {

// The library also exports the header's inline functions, for callers that find them by name.
[[gnu::used]] double (*const kInLibrary[])(double) = {DegToRad, RadToDeg};

} // namespace

void SinCos(double angle, double& sinOut, double& cosOut) {
    if (angle == 0.0) {
        sinOut = 0.0;
        cosOut = 1.0;
    } else if (angle == pi) {
        sinOut = 0.0;
        cosOut = -1.0;
    } else if (std::abs(angle) == pi / 2.0) {
        cosOut = 0.0;
        sinOut = angle < 0.0 ? -1.0 : 1.0;
    } else {
        sinOut = std::sin(angle);
        cosOut = std::cos(angle);
    }
}
