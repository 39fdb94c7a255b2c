// SPDX-License-Identifier: MIT

// Outlines out of the fuzzer's bytes.

#ifndef TRAMMEL_FUZZ_ANYOUTLINE_H
#define TRAMMEL_FUZZ_ANYOUTLINE_H

#include "CPath.h"
#include "Input.h"
#include "PathSegments.h"
#include "PathStructure.h"

#include <algorithm>
#include <cmath>

namespace fuzz {

/// Up to `most` elements of any kind. Many of them lie over each other, as their numbers repeat.
template <class NextPoint> CPath AnyOutline(Input& in, int most, NextPoint const& point) {
    CPath path;
    for (int i = in.Int(0, most); i > 0; --i) {
        switch (in.Int(0, 15)) {
        case 0:
            path.AddCtl(kPathMove).AddPt(point());
            break;
        case 1:
            path.AddCtl(kPathClose);
            break;
        case 2:
        case 3:
        case 4:
        case 5:
            path.AddCtl(kPathLine).AddPt(point());
            break;
        default:
            path.AddCtl(kPathCurve).AddPt(point()).AddPt(point()).AddPt(point());
        }
    }
    return path;
}

/// The same with points of any numbers.
inline CPath AnyOutline(Input& in, int most) {
    return AnyOutline(in, most, [&] { return in.Point(); });
}

/// The same, but most often with points as a drawing on a coarse grid has them. Some are a little
/// beside it.
inline CPath DrawnOutline(Input& in, int most) {
    if (in.Int(0, 7) == 7) {
        return AnyOutline(in, most);
    }
    auto const number = [&] {
        int const whole = in.Int(-20, 20);
        constexpr double kOff[] = {0x1p-50, 0x1p-40, -0x1p-34, 0x1p-30, -0x1p-20, 0.1};
        std::size_t const off = in.Byte();
        return whole + (off < 6 ? kOff[off] : 0.0);
    };
    return AnyOutline(in, most, [&] {
        double const h = number();
        return Pt(h, number());
    });
}

/// The contours without NaN and infinite coordinates. Each begins with a move, and a close leads
/// back there.
inline CPath FinitePart(CPath const& path) {
    CPath finite;
    for (trammel::Subpath const& subpath : trammel::Subpaths(path)) {
        CPath contour;
        contour.AddCtl(kPathMove).AddPt(subpath.Start());
        for (trammel::PathSegment const& s : subpath) {
            if (s.IsCurve()) {
                contour.AddCtl(kPathCurve).AddPt(s.control1).AddPt(s.control2).AddPt(s.end);
            } else if (s.kind == kPathLine) {
                contour.AddCtl(kPathLine).AddPt(s.end);
            }
        }
        if (subpath.Closed()) {
            contour.AddCtl(kPathClose);
        }
        if (std::all_of(contour.mPts.begin(), contour.mPts.end(),
                        [](Pt const& p) { return std::isfinite(p.h) && std::isfinite(p.v); })) {
            trammel::AppendSubpaths(finite, contour);
        }
    }
    return finite;
}

/// The greatest extent of points in h or v.
inline double ExtentOf(std::vector<Pt> const& points) {
    double low[2] = {HUGE_VAL, HUGE_VAL};
    double high[2] = {-HUGE_VAL, -HUGE_VAL};
    for (Pt const& p : points) {
        low[0] = std::min(low[0], p.h);
        high[0] = std::max(high[0], p.h);
        low[1] = std::min(low[1], p.v);
        high[1] = std::max(high[1], p.v);
    }
    return points.empty() ? 0.0 : std::max(high[0] - low[0], high[1] - low[1]);
}

} // namespace fuzz

#endif
