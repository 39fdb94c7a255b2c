// SPDX-License-Identifier: MIT

// Outlines as the commands need them: joined, taken apart into subpaths, flattened and searched.
// All figures come from the library's accurate queries. The functions here visit a path's elements
// and hand them over.

#ifndef TRAMMEL_APP_OUTLINES_H
#define TRAMMEL_APP_OUTLINES_H

#include "Drawing.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/CPath.h>
#include <trammel/PathBuilding.h>
#include <trammel/PathStructure.h>
#include <trammel/TPoint.h>
#include <trammel/TPoly.h>
#include <trammel/TRect.h>

#include <optional>
#include <vector>

namespace tool {

using trammel::AddCurve;
using trammel::AppendSubpaths;
using trammel::PathOf;
using trammel::SplitSubpaths;

/// Returns the path without the subpaths that have no length. The rest can be measured by
/// fractions.
CPath WithoutDots(CPath const& path);

/// Returns the bounds of the outline as drawn, right to rounding. They are null for an empty path.
TRect<double> DrawnBounds(CPath const& path);

/// Returns the bounds of all points, control points included. The origin counts like any other
/// point, unlike in CPath::Bounds. The bounds are null for an empty path.
TRect<double> ControlBounds(CPath const& path);

/// Returns the smallest rectangle around both. A null rectangle stands for nothing.
TRect<double> Around(TRect<double> const& a, TRect<double> const& b);

/// Returns the accuracy of the accurate figures of the outline, in coordinate units. Its length,
/// its bounds and places on it are off by no more, all by rounding.
double FigureAccuracy(CPath const& path);
/// Does the same for an outline, whose curves may stand for circles and arcs.
double FigureAccuracy(Outline const& outline);
/// Returns the accuracy of the figures of the outline and a point.
double FigureAccuracy(Outline const& outline, TPoint<double> const& p);

/// Returns the power of two of the greatest coordinate where figures of the path may leave the
/// range of double, which cubes of coordinates do; 0 for other paths.
int ExtremePower(CPath const& path);
/// Does the same for the entries of a matrix that turn and scale.
int ExtremePower(CMatrix3x3 const& m);
/// Returns the path with all coordinates times a power of two, which is exact.
CPath TimesPowerOfTwo(CPath path, int power);

/// True for the matrix that moves nothing.
bool IsIdentity(CMatrix3x3 const& m);
/// Returns the matrix that undoes `m`; nothing where `m` presses everything into a line.
std::optional<CMatrix3x3> InverseOf(CMatrix3x3 const& m);
/// Returns a path in other coordinates.
CPath Moved(CPath path, CMatrix3x3 const& m);

/// Returns the factor by which a transform lengthens what it lengthens most.
double Stretch(CMatrix3x3 const& m);
/// Returns the factor by which it lengthens in the mean: the root of that of areas.
double MeanStretch(CMatrix3x3 const& m);

/// Returns a flattening error that is too fine to be seen in a figure of this size.
double FineError(TRect<double> const& bounds);

/// Returns one polygon for each subpath, whose lines are within `error` of the curves. It is closed
/// if the subpath is.
std::vector<TPolygon<double>> Flatten(CPath const& path, double error);

/// The area that an outline encloses by the even-odd rule. Every subpath counts as closed.
class Area {
public:
    /// Flattens the outline to `error`.
    Area(CPath const& path, double error);
    /// True when `p` lies inside an odd number of subpaths.
    bool Contains(TPoint<double> const& p) const;
    /// Returns the pieces of the segment that lie inside, in order from its start.
    std::vector<TLine<double>> Clip(TLine<double> const& line) const;
    /// Moves the area by a matrix.
    Area& Transform(CMatrix3x3 const& m);
    /// Returns the bounds, which are null for an area without vertices.
    TRect<double> Bounds() const;

private:
    std::vector<TPolygon<double>> mPolygons;
};

} // namespace tool

#endif
