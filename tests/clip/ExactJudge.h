// SPDX-License-Identifier: MIT

// The truth about the clipper's cases, from the exact arrangements of CGAL. Compiled apart, as
// CGAL's headers take long to read and want compiler options of their own.
#ifndef TRAMMEL_EXACTJUDGE_H
#define TRAMMEL_EXACTJUDGE_H

#include "plain/ClipCorpus.h"
#include "plain/PlainClip.h"

#include <array>

namespace clip_test {

/// Returns the figures of a case.
///
/// Everything is decided and computed exactly, up to the areas' rounding to the nearest double.
/// Contours are counted as the clipper lists them. A walk follows the boundary with the inside on
/// its left. Where several parts of the boundary meet, the walk keeps within the inside. A closed
/// walk that comes to a vertex twice is divided there.
plain::CaseFigures FiguresOf(plain::ClipCase const& c);

/// Returns for each operation the area that lies in the true result or in `regions`, but not in
/// both, in scaled coordinates.
std::array<double, 4> RegionErrors(plain::ClipCase const& c,
                                   std::array<plain::Region, 4> const& regions);

} // namespace clip_test

#endif
