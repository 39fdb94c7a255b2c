// SPDX-License-Identifier: MIT

// Handle polygon procedures: the procedural interface over CFPolygonRef, in the style of the
// platform's classic polygon calls. They create, clone, kill, convert and edit polygons, and test
// whether points, rectangles and polygons lie inside.
//
// All take CFPolygonRef by value, which copies the reference and shares the block. The caller owns
// each new polygon and frees it with KillFPoly. Null references, indexes outside and short memory
// are absorbed as CFPolygonRef says. Procedures that only ask may run on one block at the same
// time, and all may on different blocks.

#ifndef TRAMMEL_UFPOLY_H
#define TRAMMEL_UFPOLY_H

#include "CFPolygonRef.h"
#include "Records.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <string>

// Create and convert

/// Returns a new empty polygon.
TRAMMEL_API CFPolygonRef OpenFPoly();
/// Does nothing: callers may bracket construction with an open and a close call.
TRAMMEL_API void CloseFPoly();
/// Returns a new polygon of `n` points at (0, 0); a null reference for a negative or enormous `n`.
TRAMMEL_API CFPolygonRef CreatePoly(long n);
/// Returns a copy of the polygon; null for a null reference.
TRAMMEL_API CFPolygonRef CloneFPoly(CFPolygonRef p);
/// Frees the polygon. `p` is a copy, so the caller's own reference still holds the freed handle
/// afterwards: clear it, and do not use it.
TRAMMEL_API void KillFPoly(CFPolygonRef p);
/// Returns a new polygon of the points of a QuickDraw polygon, not closed, with its bounds
/// computed. The header's size and box are not read. A null or short handle gives an empty polygon.
TRAMMEL_API CFPolygonRef Poly2FPoly(MacPolygon** qd);
/// Returns CreateQDPoly of `p`: a new QuickDraw polygon, to be freed with DisposeHandle.
TRAMMEL_API MacPolygon** FPoly2Poly(CFPolygonRef p);
/// Returns a new polygon of the five points top-left, top-right, bottom-right, bottom-left,
/// top-left. It is not closed, and its bounds are computed.
TRAMMEL_API CFPolygonRef FRectToFPoly(TRect<double> const& r);
/// Returns the polygon of FRectToFPoly turned by `angle` radians about the rectangle's centre, its
/// bounds computed. An angle of 0 is applied like any other, so points can change by rounding.
/// CFPolygonRef::CFPolygonCreate is different there.
TRAMMEL_API CFPolygonRef RotRectToPoly(TRect<double> r, double angle);

// Query

/// True when the first point equals the last one: closed by its points, whatever the closed flag
/// says. True for an empty polygon and a null reference.
TRAMMEL_API bool FPolyClosed(CFPolygonRef p);
/// Returns LastIndex of `p`.
TRAMMEL_API long LastFPolyIndex(CFPolygonRef p);
/// Returns the index of the last point of a QuickDraw polygon, by the size of its block. It is -1
/// for the bare header, and below -1 for a null handle.
TRAMMEL_API long LastPolyIndex(MacPolygon** qd);
/// Drops the caches of `p`, the drawing path too, and computes the bounds anew.
TRAMMEL_API void FindFPolyBBox(CFPolygonRef p);
/// Returns the points as text, one line "h, v" for each with six significant digits, the same in
/// every locale; empty without points. Throws std::bad_alloc when memory is short.
TRAMMEL_API std::string PolyDescription(CFPolygonRef p);

// Change

/// Scales about the origin.
TRAMMEL_API void ScaleFPoly(CFPolygonRef p, double s);
/// Rotates by `angle` radians about `center`.
TRAMMEL_API void RotateFPoly(CFPolygonRef p, double angle, TPoint<double> const& center);
/// Maps the points by the transform that carries `from` onto `to`.
TRAMMEL_API void MapFPoly(CFPolygonRef p, TRect<double> const& from, TRect<double> const& to);
/// Moves the polygon by `d` and computes the bounds.
TRAMMEL_API void OffsetFPoly(CFPolygonRef p, TPoint<double> d);
/// Adds a point at the end.
TRAMMEL_API void AppendPolyPt(TPoint<double> pt, CFPolygonRef p);
/// Inserts a point before point `i`.
TRAMMEL_API void InsertPolyPt(long i, TPoint<double> pt, CFPolygonRef p);
/// Appends a run of `src`'s points to `dst` and computes the bounds of `dst`. With `count` the last
/// index of `src`, the run leaves out the end that `dst` already holds.
///
/// Points that `src` does not have come as (0, 0). The run ends where memory does. A run of 2^36
/// points or more, which no polygon can hold, is not begun.
/// \param mode 1 appends points 1 to `count`, 2 appends points count - 1 down to 0, any other none.
TRAMMEL_API void InsertPolyPts(CFPolygonRef dst, CFPolygonRef src, long count, short mode);
/// Removes the last point, drops the cached path and computes the bounds; an empty polygon stays
/// empty.
TRAMMEL_API void DeletePolyPt(CFPolygonRef p);

// Containment

/// True when `pt` is inside by the even-odd rule: CFPolygonRef::Contains.
TRAMMEL_API bool FPtInFPoly(CFPolygonRef p, TPoint<double> const& pt);
/// True when all corners of `r` (or, with `all` false, any corner) are inside `p`. Only the corners
/// are tested. So a rectangle around the whole polygon is outside. A rectangle is inside even where
/// a concave polygon cuts into it between its corners.
TRAMMEL_API bool FRectInFPoly(CFPolygonRef p, TRect<double> const& r, bool all);
/// True when all points of `inner` (or, with `all` false, any point) are inside `outer`. For an
/// empty `inner` the result is `all`. Only points are tested, not edges. O(n·m).
TRAMMEL_API bool FPolyInFPoly(CFPolygonRef outer, CFPolygonRef inner, bool all);
/// True when `pt` lies in the box spanned by `a` and `b` grown by 1 on every side, edges inclusive.
TRAMMEL_API bool InFptBounds(TPoint<double> a, TPoint<double> b, TPoint<double> pt);

// Points and rectangles

/// True when both coordinate differences are below `tol` in magnitude (exclusive); false with NaN.
TRAMMEL_API bool EqualPtTol(TPoint<double> const& a, TPoint<double> const& b, double tol);
/// Stores the centre and half the width and height of `r`.
TRAMMEL_API void FRectCenter(TRect<double> r, TPoint<double>& center, double& hRadius,
                             double& vRadius);
/// True when width and height differ by less than 4000/65536, about 0.061 (exclusive): the
/// rectangle bounds a circle rather than an ellipse. False with NaN.
TRAMMEL_API bool IsTrueCircle(TRect<double> r);

#endif
