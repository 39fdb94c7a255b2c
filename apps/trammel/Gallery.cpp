// SPDX-License-Identifier: MIT

#include "Gallery.h"

#include <vector>

namespace tool {

std::vector<PlateMaker> const& GalleryPlates() {
    static std::vector<PlateMaker> const plates{
        DrawMarks,    DrawTextAlong,  DrawCut,     DrawNearest,  DrawFlattening, DrawHitMap,
        DrawHatching, DrawTransforms, DrawCircles, DrawPolygons, DrawRounding,
    };
    return plates;
}

} // namespace tool
