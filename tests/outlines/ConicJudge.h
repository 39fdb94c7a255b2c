// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_CONICJUDGE_H
#define TRAMMEL_CONICJUDGE_H

#include "CPath.h"
#include "PathSegments.h"
#include "TPoint.h"

#include <algorithm>
#include <cmath>

namespace trammel_test {

typedef long double Wide;

/// An ellipse in long double, to judge curves by.
struct ConicJudge {
    ConicJudge(Wide h, Wide v, Wide hRadius, Wide vRadius, Wide rotation)
        : centerH(h), centerV(v), radiusH(hRadius), radiusV(vRadius), cosine(std::cos(rotation)),
          sine(std::sin(rotation)) {}

    Wide centerH;
    Wide centerV;
    Wide radiusH;
    Wide radiusV;
    Wide cosine; ///< of the turn of the axes
    Wide sine;

    /// Stores the point in the coordinates in which the ellipse is the unit circle.
    void ToCircle(Wide h, Wide v, Wide& x, Wide& y) const {
        Wide const dh = h - centerH;
        Wide const dv = v - centerV;
        x = (cosine * dh + sine * dv) / radiusH;
        y = (cosine * dv - sine * dh) / radiusV;
    }

    struct Deviation {
        Wide outside = 0;    ///< greatest distance from the ellipse outside it, or a little more
        Wide inside = 0;     ///< the same inside it
        Wide turned = 0;     ///< the angle run through on the circle, radians
        bool forward = true; ///< no step ran back
    };

    /// Samples the curves of the path.
    Deviation Of(CPath const& path, bool positive = true) const {
        Deviation out;
        Wide const greater = std::max(std::abs(radiusH), std::abs(radiusV));
        constexpr int kSteps = 48;
        for (trammel::PathSegment const& s : trammel::Segments(path)) {
            if (!s.IsCurve()) {
                continue;
            }
            Wide lastX = 0;
            Wide lastY = 0;
            for (int k = 0; k <= kSteps; ++k) {
                Wide const t = static_cast<Wide>(k) / kSteps;
                Wide const u = 1 - t;
                auto const at = [&](Wide a, Wide b, Wide c, Wide d) {
                    return u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d;
                };
                Wide x = 0;
                Wide y = 0;
                ToCircle(at(s.start.h, s.control1.h, s.control2.h, s.end.h),
                         at(s.start.v, s.control1.v, s.control2.v, s.end.v), x, y);
                Wide const radius = std::sqrt(x * x + y * y);
                out.outside = std::max(out.outside, (radius - 1) * greater);
                out.inside = std::max(out.inside, (1 - radius) * greater);
                if (k > 0) {
                    Wide const step = std::atan2(lastX * y - lastY * x, lastX * x + lastY * y);
                    out.turned += step;
                    out.forward = out.forward && (positive ? step : -step) > -1e-9L;
                }
                lastX = x;
                lastY = y;
            }
        }
        return out;
    }
};

} // namespace trammel_test

#endif
