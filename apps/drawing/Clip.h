// SPDX-License-Identifier: MIT

// Clips: the regions outside of which an outline does not show.

#ifndef TRAMMEL_APP_CLIP_H
#define TRAMMEL_APP_CLIP_H

#include "Drawing.h"

#include <vector>

namespace tool {

/// A region in the drawing's coordinates.
struct Clip {
    CPath path;
    trammel::FillRule rule = trammel::FillRule::kNonZero;
    double distance = 0.0;  ///< how far its outline may be from the true one
    double arcLength = 0.0; ///< by how much its outline may be longer
};

/// Returns the region that these outlines cover together, each within its own clips.
Clip UnionOf(std::vector<Outline> const& outlines);

/// Cuts off what the clips of the drawing's outlines hide. An outline with a fill becomes the
/// outline of the region that shows, curves as they are. An outline without a fill becomes the
/// pieces of its line that show. An outline that is hidden altogether goes.
void ApplyClips(Drawing& drawing);

} // namespace tool

#endif
