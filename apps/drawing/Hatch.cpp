// SPDX-License-Identifier: MIT

#include "Hatch.h"

#include "Error.h"
#include "Outlines.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/TLine.h>

#include <cmath>

namespace tool {

namespace {

/// Nobody can see or cut more lines than this. Each costs a walk around the outline.
constexpr double kMostLines = 100000.0;

/// The distance outside of the outline at which lines begin, as a share of the outline's size.
constexpr double kMargin = 0.01;

} // namespace

CPath Hatch(CPath const& path, double angle, double spacing) {
    if (int const power = ExtremePower(path); power != 0) {
        return TimesPowerOfTwo(
            Hatch(TimesPowerOfTwo(path, -power), angle, std::ldexp(spacing, -power)), power);
    }
    // The area turns so that the lines are horizontal.
    CMatrix3x3 const toPlane = CMatrix3x3().Rotate(angle);
    Area area(path, FineError(DrawnBounds(path)));
    area.Transform(CMatrix3x3().Rotate(-angle));
    TRect<double> const bounds = area.Bounds();
    double const first = std::floor(bounds.top / spacing);
    double const last = std::ceil(bounds.bottom / spacing);
    if (!(last - first <= kMostLines)) {
        throw Error("", "", "the spacing asks for more than 100000 lines in one outline");
    }
    double const margin = (bounds.Width() + bounds.Height()) * kMargin;
    CPath lines;
    auto const count = static_cast<long>(last - first);
    for (long i = 0; i < count; ++i) {
        double const v = (first + static_cast<double>(i) + 0.5) * spacing;
        TLine<double> const line(TPoint<double>(bounds.left - margin, v),
                                 TPoint<double>(bounds.right + margin, v));
        for (TLine<double> piece : area.Clip(line)) {
            lines.MoveTo(piece.mStart.Transform(toPlane));
            lines.LineTo(piece.mEnd.Transform(toPlane));
        }
    }
    return lines;
}

} // namespace tool
