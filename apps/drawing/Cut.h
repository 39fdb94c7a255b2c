// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_APP_CUT_H
#define TRAMMEL_APP_CUT_H

#include <trammel/CPath.h>

namespace tool {

/// An outline cut in two.
struct Pieces {
    CPath cut;  ///< the part between the two fractions
    CPath rest; ///< the remainder; of a closed subpath one piece through its start
};

/// Cuts between two fractions (0 <= from < to <= 1) of the total length. Each subpath is cut by
/// itself, so that no line joins the pieces of different subpaths. A subpath that lies wholly in
/// the range stays as it is. A path without length is all rest.
Pieces CutPath(CPath const& path, double from, double to);

} // namespace tool

#endif
