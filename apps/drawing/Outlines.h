// SPDX-License-Identifier: MIT

// Outlines as the commands need them: joined, taken apart into subpaths, and flattened. All figures
// come from the library; what is done here is to visit a path's elements and hand them over.

#ifndef TRAMMEL_APP_OUTLINES_H
#define TRAMMEL_APP_OUTLINES_H

#include <trammel/CPath.h>
#include <trammel/TPoint.h>
#include <trammel/TPoly.h>
#include <trammel/TRect.h>

#include <vector>

namespace tool {

/// Adds a curve from the path's current point. One that ends where it starts, which a path does not
/// record, is added as its two halves.
void AddCurve(CPath& path, TPoint<double> const& c1, TPoint<double> const& c2,
              TPoint<double> const& e);

/// Appends the elements of `more` as they are: unlike CPath::Append, subpaths stay apart and
/// closed.
void AppendElements(CPath& path, CPath const& more);

/// The subpaths, each as a path of its own that begins with its move.
std::vector<CPath> Subpaths(CPath const& path);

/// The path without the subpaths that have no length; what remains can be measured by fractions.
CPath WithoutDots(CPath const& path);

/// The bounds of the outline as drawn, to within a millionth of its size. Null for an empty path.
TRect<double> DrawnBounds(CPath const& path);

/// The bounds of all points, control points included, the origin not being left out as in
/// CPath::Bounds. Null for an empty path.
TRect<double> ControlBounds(CPath const& path);

/// The smallest rectangle around both, where a null rectangle stands for nothing.
TRect<double> Around(TRect<double> const& a, TRect<double> const& b);

/// A flattening error that is too fine to be seen in a figure of this size.
double FineError(TRect<double> const& bounds);

/// One polygon for each subpath, curves flattened to `error`; closed where the subpath is.
std::vector<TPolygon<double>> Flatten(CPath const& path, double error);

/// The polygons as a path again.
CPath PathOf(std::vector<TPolygon<double>> const& polygons);

/// The area that an outline encloses by the even-odd rule, every subpath taken as closed.
class Area {
public:
    /// Flattens the outline to `error`.
    Area(CPath const& path, double error);
    /// True when `p` lies inside an odd number of subpaths.
    bool Contains(TPoint<double> const& p) const;
    /// The pieces of the segment that lie inside, in order from its start.
    std::vector<TLine<double>> Clip(TLine<double> const& line) const;
    /// The area moved by a matrix.
    Area& Transform(CMatrix3x3 const& m);
    /// The bounds; null for an area without vertices.
    TRect<double> Bounds() const;

private:
    std::vector<TPolygon<double>> mPolygons;
};

/// True when `p` is within `tolerance` of the drawn outline: the library's hit tests of its lines
/// and curves.
bool HitsOutline(CPath const& path, TPoint<double> const& p, double tolerance);

} // namespace tool

#endif
