// SPDX-License-Identifier: MIT

// Polygon boolean operations: union, intersection, difference and exclusive-or of polygons of any
// number of contours, holes included.
//
// The work is done by the polygon clipper behind gpc.h; these classes hold contours as values and
// convert them to and from its records, rectangles and handle polygons. Inputs are read by the
// even-odd rule, so contours may cross themselves and each other and run in either direction; the
// hole flags of inputs do not matter. Contours with NaN or infinite coordinates are left out by the
// bundled clipper, and the rest is clipped.
//
// Values without shared state: different objects may be used from different threads.

#ifndef TRAMMEL_TGCP_H
#define TRAMMEL_TGCP_H

#include "CFPolygonRef.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"
#include "gpc.h"

#include <cstdint>
#include <vector>

/// The boolean operations; the values are those of gpc_op.
enum TPolyOp : std::int32_t {
    kPolyDifference = 0,   ///< the first polygon minus the second
    kPolyIntersection = 1, ///< the area common to both
    kPolyXor = 2,          ///< the area in exactly one of them
    kPolyUnion = 3,        ///< the area in either
};

/// One closed contour: vertices in order, the closing edge implied.
class TRAMMEL_API Tgcp_contour {
public:
    bool mReserved;                        ///< false, never read
    bool mHole;                            ///< the contour is a hole
    std::vector<TPoint<double>> mVertices; ///< the vertices, the first not repeated

    /// No vertices, no hole.
    Tgcp_contour();
    /// The four corners top-left, top-right, bottom-right, bottom-left.
    Tgcp_contour(TRect<double> const& r);
    /// The points of a handle polygon in reverse order; none for a null reference. Converted back
    /// the contour keeps the reversed direction.
    Tgcp_contour(CFPolygonRef poly);

    /// A new handle polygon (the caller's to dispose) of the vertices with the first repeated at
    /// the end; empty for a contour without vertices.
    CFPolygonRef ConvertToFPoly() const;
    /// The bounds of the vertices; null without vertices. A leading vertex at the origin is
    /// forgotten (see TRect's union).
    TRect<double> Bounds() const;
    /// The number of vertices.
    unsigned long size() const { return mVertices.size(); }
    /// The vertices, for direct modification.
    std::vector<TPoint<double>>& Vertices() { return mVertices; }
    /// The vertices.
    std::vector<TPoint<double>> const& Vertices() const { return mVertices; }
};

/// A polygon of any number of contours.
class TRAMMEL_API Tgpc_polygon {
public:
    std::vector<Tgcp_contour> mContours; ///< the contours in order

    /// No contours.
    Tgpc_polygon();
    /// One contour, the rectangle's.
    Tgpc_polygon(TRect<double> const& r);
    /// One contour, the handle polygon's.
    Tgpc_polygon(CFPolygonRef poly);

    /// Appends a copy of `c`.
    void AddContour(Tgcp_contour const& c);
    /// The number of contours.
    long NumContours() const { return static_cast<long>(mContours.size()); }
    /// Contour `i` as a new handle polygon; an empty one when there is no such contour.
    CFPolygonRef ConvertToFPoly(long i) const;
    /// The union of the contours' bounds; null without vertices.
    TRect<double> Bounds() const;
};

/// A clipper record of `p`, its arrays allocated with malloc; free it with gpc_free_polygon. Throws
/// std::bad_alloc when memory is short or a count does not fit an int, leaving nothing allocated.
TRAMMEL_API gpc_polygon Create_gpc(Tgpc_polygon const& p);
/// The contours of a clipper record, which is not freed. Null pointers and negative counts stand
/// for nothing: no contours, a contour without vertices, no holes. Throws std::bad_alloc.
TRAMMEL_API Tgpc_polygon Create_Tgpc(gpc_polygon* g);
/// Makes `result` the polygon `a` `op` `b`; `result` may be `a` or `b`. An operation outside the
/// four gives no contours. Time and memory are the clipper's, near linear for ordinary outlines.
/// When memory is short inside the clipper, it says so on standard error and ends the process.
TRAMMEL_API void Tgpc_polygon_clip(TPolyOp op, Tgpc_polygon const& a, Tgpc_polygon const& b,
                                   Tgpc_polygon& result);

#endif
