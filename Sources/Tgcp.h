// SPDX-License-Identifier: MIT

// Polygon boolean operations: union, intersection, difference and exclusive-or of polygons of any
// number of contours, holes included.
//
// The polygon clipper behind gpc.h does the work. These classes hold contours as values and convert
// them to and from its records, rectangles and handle polygons. Inputs are read by the even-odd
// rule, so contours may cross themselves and each other and run in either direction. The hole flags
// of inputs do not matter. The bundled clipper leaves out contours with NaN or infinite
// coordinates, and clips the rest.
//
// These are values without shared state. Const members of one object, and all members of different
// objects, may run at the same time. Members that copy or grow contours throw std::bad_alloc when
// memory is short.

#ifndef TRAMMEL_TGCP_H
#define TRAMMEL_TGCP_H

#include "CFPolygonRef.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"
#include "gpc.h"

#include <cstdint>
#include <vector>

/// The boolean operations. Their values are gpc_op's.
enum TPolyOp : std::int32_t {
    kPolyDifference = 0,   ///< the first polygon minus the second
    kPolyIntersection = 1, ///< the area common to both
    kPolyXor = 2,          ///< the area in exactly one of them
    kPolyUnion = 3,        ///< the area in either
};

/// One closed contour: vertices in order, with the closing edge implied.
class TRAMMEL_API Tgcp_contour {
public:
    bool mReserved;                        ///< false, never read
    bool mHole;                            ///< the contour is a hole
    std::vector<TPoint<double>> mVertices; ///< the vertices, the first not repeated

    /// Makes a contour without vertices, which is no hole.
    Tgcp_contour();
    /// Makes a contour of the four corners top-left, top-right, bottom-right, bottom-left.
    Tgcp_contour(TRect<double> const& r);
    /// Makes a contour of the points of a handle polygon, in reverse order; of none for a null
    /// reference. Converting back keeps the reversed direction.
    Tgcp_contour(CFPolygonRef poly);

    /// Returns a new handle polygon of the vertices with the first repeated at the end, which the
    /// caller disposes. A contour without vertices gives an empty polygon.
    CFPolygonRef ConvertToFPoly() const;
    /// Returns the bounds of the vertices; null without vertices. A leading vertex at the origin is
    /// forgotten (see TRect's union).
    TRect<double> Bounds() const;
    /// Returns the number of vertices.
    unsigned long size() const { return mVertices.size(); }
    /// Returns the vertices, for direct modification.
    std::vector<TPoint<double>>& Vertices() { return mVertices; }
    /// Returns the vertices.
    std::vector<TPoint<double>> const& Vertices() const { return mVertices; }
};

/// A polygon of any number of contours.
class TRAMMEL_API Tgpc_polygon {
public:
    std::vector<Tgcp_contour> mContours; ///< the contours in order

    /// Makes a polygon without contours.
    Tgpc_polygon();
    /// Makes a polygon of one contour, the rectangle's.
    Tgpc_polygon(TRect<double> const& r);
    /// Makes a polygon of one contour, the handle polygon's.
    Tgpc_polygon(CFPolygonRef poly);

    /// Appends a copy of `c`.
    void AddContour(Tgcp_contour const& c);
    /// Returns the number of contours.
    long NumContours() const { return static_cast<long>(mContours.size()); }
    /// Returns contour `i` as a new handle polygon; an empty one when there is no such contour.
    CFPolygonRef ConvertToFPoly(long i) const;
    /// Returns the union of the contours' bounds; null without vertices.
    TRect<double> Bounds() const;
};

/// Returns a clipper record of `p`. Its arrays come from malloc; free it with gpc_free_polygon.
/// Throws std::bad_alloc when memory is short or a count does not fit an int, and leaves nothing
/// allocated then.
TRAMMEL_API gpc_polygon Create_gpc(Tgpc_polygon const& p);
/// Returns the contours of a clipper record, which is not freed. Null pointers and negative counts
/// stand for nothing: no contours, a contour without vertices, no holes. Throws std::bad_alloc when
/// memory is short.
TRAMMEL_API Tgpc_polygon Create_Tgpc(gpc_polygon* g);
/// Makes `result` the polygon `a` `op` `b`; `result` may be `a` or `b`. An operation outside the
/// four gives no contours. Time and memory are the clipper's, near linear for ordinary outlines.
///
/// Throws std::bad_alloc when memory is short here. When it is short inside the clipper, the
/// clipper says so on standard error and ends the process.
TRAMMEL_API void Tgpc_polygon_clip(TPolyOp op, Tgpc_polygon const& a, Tgpc_polygon const& b,
                                   Tgpc_polygon& result);

#endif
