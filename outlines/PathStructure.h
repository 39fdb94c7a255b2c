// SPDX-License-Identifier: MIT

// PathStructure: paths taken apart, put together, turned round and compared.
//
// The functions keep every drawn element as it is: lines without length and curves that end where
// they start, too. Choose AppendSubpaths over CPath::Append, which joins the subpaths and drops
// closes, and Transformed over CPath::Transform, which leaves the current point behind.
//
// Subpaths are those of PathSegments.h. In a result each of them begins with a move. A subpath
// without one gets it, and a close that such a subpath draws to an older move becomes a line.
// Unknown codes, and elements whose points do not suffice, are left out.
//
// The bounds of a result are known, and its current point is the last point drawn: building can go
// on. Coordinates are taken over as they are, NaN and infinities too.
//
// Each call costs O(n) unless stated. Without memory it throws std::bad_alloc, and a path that it
// was to change is as before. Different threads may read one path at the same time.

#ifndef TRAMMEL_PATHSTRUCTURE_H
#define TRAMMEL_PATHSTRUCTURE_H

#include "CFPolygonRef.h"
#include "CMatrix3x3.h"
#include "CPath.h"
#include "PathSegments.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TrammelExport.h"

#include <cstddef>
#include <vector>

namespace trammel {

/// Returns the subpath as a path of its own.
TRAMMEL_API CPath PathOf(Subpath const& subpath);
/// Returns the polygon as a path of lines, which is closed if the polygon is. A vertex that equals
/// the one before adds nothing. An empty polygon gives an empty path.
TRAMMEL_API CPath PathOf(TPolygon<double> const& polygon);
/// Returns the handle polygon as a path of lines, in the same way. Where a closed polygon repeats
/// its first vertex at the end, the close stands for it. A null reference gives an empty path.
TRAMMEL_API CPath PathOf(CFPolygonRef const& polygon);
/// Returns the polygons as the subpaths of one path, leaving out empty ones.
TRAMMEL_API CPath PathOf(std::vector<TPolygon<double>> const& polygons);

/// Returns the subpaths in order, each as a path of its own.
TRAMMEL_API std::vector<CPath> SplitSubpaths(CPath const& path);

/// Appends the subpaths of `more`. They stay apart, and closed ones stay closed. `more` may be
/// `path` itself. Returns `path`. O(n) in `more`, amortised.
TRAMMEL_API CPath& AppendSubpaths(CPath& path, CPath const& more);

/// Returns the path with each subpath drawn the other way. The subpaths stay in order. Each begins
/// at the last point drawn, and a closed one stays closed.
///
/// Every segment keeps its points, so that reversing twice gives back each subpath that begins with
/// a move.
TRAMMEL_API CPath Reversed(CPath const& path);

/// Returns the path with every subpath closed. Moves that nothing follows stay as they are.
TRAMMEL_API CPath WithSubpathsClosed(CPath const& path);

/// Tells what opening a subpath does to the line that its close draws.
enum class ClosingLine {
    kKeep, ///< it becomes an ordinary line, unless it has no length: the drawing stays the same
    kDrop, ///< it is left out
};

/// Returns the path with every subpath open.
TRAMMEL_API CPath WithSubpathsOpened(CPath const& path, ClosingLine closing);

/// Returns the path with every point mapped by `m`, the current point included. The codes stay as
/// they are, unknown ones too.
TRAMMEL_API CPath Transformed(CPath const& path, CMatrix3x3 const& m);

/// Returns the index in CPath::mPts of the first point of an element; for an element without points
/// that is where they would be. `element` counts in CPath::mCtls. Throws std::out_of_range where
/// there is no such element. O(n).
TRAMMEL_API std::size_t FirstPointOf(CPath const& path, std::size_t element);

/// Replaces point `index` of CPath::mPts, and brings the cached bounds (see CPath::Bounds) and the
/// current point up to date. Returns `path`. Throws std::out_of_range, and changes nothing, where
/// there is no such point. O(1) for a point inside the bounds, O(n) for one on their edge.
TRAMMEL_API CPath& SetPoint(CPath& path, std::size_t index, TPoint<double> const& p);

/// True when both paths have the same elements with equal points. -0 equals 0, and NaN equals
/// nothing. Neither the cached bounds nor the current point count.
TRAMMEL_API bool Equal(CPath const& a, CPath const& b) noexcept;
/// True when both polygons have equal vertices in the same order, and both are closed or both open.
TRAMMEL_API bool Equal(TPolygon<double> const& a, TPolygon<double> const& b) noexcept;

} // namespace trammel

#endif
