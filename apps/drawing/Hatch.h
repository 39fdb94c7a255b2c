// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_APP_HATCH_H
#define TRAMMEL_APP_HATCH_H

#include <trammel/CPath.h>

namespace tool {

/// Returns parallel lines clipped to the inside of an outline, by the even-odd rule. Every subpath
/// counts as closed.
///
/// The lines lie at half, three halves, five halves... of `spacing` from the origin, whatever the
/// outline is. The hatchings of neighbouring outlines therefore fit together.
/// \param angle    direction of the lines in radians, from +h toward +v
/// \param spacing  distance between lines in coordinate units; above 0
/// Throws Error when there would be more than 100,000 lines.
CPath Hatch(CPath const& path, double angle, double spacing);

} // namespace tool

#endif
