// SPDX-License-Identifier: MIT

// What the tests of SVG path text share: paths as texts that can be compared.

#ifndef TRAMMEL_SVGTEXTS_H
#define TRAMMEL_SVGTEXTS_H

#include "SvgPath.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace trammel_test {

/// Returns a path as "M 1,2 L 3,4 Z", every number in full.
inline std::string Elements(CPath const& path) {
    std::string text;
    std::size_t point = 0;
    for (char const code : path.mCtls) {
        text += text.empty() ? "" : " ";
        text += "MLCZ"[static_cast<int>(code)];
        for (int n = code == kPathCurve ? 3 : code == kPathClose ? 0 : 1; n > 0; --n) {
            char numbers[80];
            std::snprintf(numbers, sizeof numbers, " %.17g,%.17g", path.mPts.at(point).h,
                          path.mPts.at(point).v);
            text += numbers;
            ++point;
        }
    }
    EXPECT_EQ(point, path.mPts.size());
    return text;
}

/// True when both paths have the same elements and, bit by bit, the same points.
inline bool Same(CPath const& a, CPath const& b) {
    return a.mCtls == b.mCtls && a.mPts.size() == b.mPts.size() &&
           (a.mPts.empty() ||
            std::memcmp(a.mPts.data(), b.mPts.data(), a.mPts.size() * sizeof(TPoint<double>)) == 0);
}

/// Returns a path of any codes, also such as the building operations do not make: `?` is a code
/// that means nothing.
inline CPath Raw(std::string const& codes, std::vector<TPoint<double>> const& points) {
    CPath path;
    for (char const c : codes) {
        char const* const known = std::strchr("MLCZ", c);
        path.AddCtl(static_cast<char>(known != nullptr ? known - "MLCZ" : 9));
    }
    for (TPoint<double> const& p : points) {
        path.AddPt(p);
    }
    return path;
}

/// Returns the point at `t` of the cubic with the control points `p[0]` to `p[3]`.
inline TPoint<double> CurvePoint(TPoint<double> const* p, double t) {
    double const u = 1.0 - t;
    return p[0] * (u * u * u) + p[1] * (3 * u * u * t) + p[2] * (3 * u * t * t) +
           p[3] * (t * t * t);
}

} // namespace trammel_test

#endif
