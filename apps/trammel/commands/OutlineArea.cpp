// SPDX-License-Identifier: MIT

#include "OutlineArea.h"

#include "Outlines.h"

#include <trammel/AccurateCurve.h>
#include <trammel/RegionArea.h>

#include <algorithm>

namespace tool {

double ArcAreaError(Outline const& outline) {
    return outline.arcDistance == 0.0
               ? 0.0
               : outline.arcDistance * trammel::ArcLength(outline.path, outline.arcDistance);
}

OutlineArea AreaOf(Outline const& outline, FigureOptions const& options) {
    trammel::AreaWithin const region =
        trammel::RegionArea(outline.path, outline.rule, options.Accuracy());
    TRect<double> const bounds = ControlBounds(outline.path);
    double const extent = std::max(bounds.Width(), bounds.Height());
    double const rounding = FigureAccuracy(outline.path) * extent;
    return {region.area, std::max(region.error, rounding) + ArcAreaError(outline)};
}

} // namespace tool
