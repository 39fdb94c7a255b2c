// SPDX-License-Identifier: MIT

// How near the curves of an outline must come to the circles and arcs that they stand for.

#ifndef TRAMMEL_APP_ARCTOLERANCE_H
#define TRAMMEL_APP_ARCTOLERANCE_H

#include "Drawing.h"

#include <cstddef>

namespace tool {

/// The round parts of one outline, in its own coordinates.
struct RoundParts {
    double length = 0.0;  ///< of the whole outline, or a little less
    std::size_t arcs = 0; ///< the number of ellipses and arcs
    double radius = 0.0;  ///< the greater radius; paths have none
};

/// Returns how far curves may be from their arcs, in the outline's own coordinates.
/// \param stretch  how much longer a length is in the unit of the accuracy, at most
double ArcTolerance(ArcAccuracy const& accuracy, RoundParts const& parts, double stretch);

/// Returns how far the curves of a path may be from its arcs if it was read for pictures.
double PictureTolerance(CPath const& path);

/// Returns the sum of the distances between the ends of segments, which no length is below.
double ChordLength(CPath const& path);

} // namespace tool

#endif
