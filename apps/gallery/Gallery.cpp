// SPDX-License-Identifier: MIT

#include "Gallery.h"

#include <vector>

namespace tool {

std::vector<PlateMaker> GalleryPlates(bool withMap) {
    std::vector<PlateMaker> plates{
        DrawMarks,        DrawTextAlong,        DrawCut,         DrawNearest,    DrawFlattening,
        DrawHitMap,       DrawHatching,         DrawTransforms,  DrawCircles,    DrawPolygons,
        DrawRounding,     DrawQuadratics,       DrawCornerTest,  DrawCachedPath, DrawWelded,
        DrawHardBooleans, DrawMoreHardBooleans, DrawHardStrokes,
    };
    if (withMap) {
        plates.insert(plates.end(), {DrawFourOperations, DrawWordCut, DrawJoined});
    }
    return plates;
}

} // namespace tool
