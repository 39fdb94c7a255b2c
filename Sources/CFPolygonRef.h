// SPDX-License-Identifier: MIT
//
// CFPolygonRef: a reference to a handle polygon.
//
// A handle polygon keeps its whole state (closed flag, bounds cache, cached drawing path, points;
// see FPolygon.h) in one relocatable block, which the application may store and exchange as it
// stands. This class refers to such a block and does NOT own it: copies share it, there is no
// destructor, and only Dispose frees it. Use a disposed block through no other copy.
//
// Null: a reference without block (a new one, or where memory was short) absorbs every operation
// and gives 0, false, -1, the null rectangle or (0, 0). Copying a null reference gives a null
// reference. A block from elsewhere that is shorter than the header of 44 bytes has no points,
// flags or caches either; but it has a size, can be copied, resized, appended to and disposed.
//
// Indexes run from 0 to LastIndex(). Outside of it, reading gives (0, 0) and storing does nothing;
// Insert and Delete say what they do there.
// Short memory leaves the polygon as it was. Members that change it return the reference, so that
// they can be chained.
//
// Caches: the bounds are computed when asked for and kept until the points change; the drawing path
// is released when the points change. One thread at a time for one block.

#ifndef TRAMMEL_CFPOLYGONREF_H
#define TRAMMEL_CFPOLYGONREF_H

#include "FPolygon.h"
#include "PathObject.h"
#include "Records.h"
#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <type_traits>
#include <vector>

/// What a handle polygon's handle points at; see FPolygon for the layout.
struct OpaqueCFPolygon;

/// A shared, non-owning reference to a handle polygon.
class TRAMMEL_API CFPolygonRef {
public:
    OpaqueCFPolygon** mRef; ///< the handle, null for none

    // Create

    /// A null reference.
    CFPolygonRef() : mRef(nullptr) {}
    /// An empty polygon when `create` is true, else a null reference.
    explicit CFPolygonRef(bool create);
    /// Refers to the block behind `h` or, with `copy`, to a copy of it.
    CFPolygonRef(FPolygon** h, bool copy);
    /// Shares the block of `other` or, with `copy`, refers to a copy of it.
    CFPolygonRef(CFPolygonRef const& other, bool copy);
    CFPolygonRef(CFPolygonRef const&) = default;
    /// Shares the block of `other`; the block referred to so far is not freed.
    CFPolygonRef& operator=(CFPolygonRef const&) = default;

    // The creating members below refer to a new block and leave the old one alone, as it may be
    // shared: dispose it first where it is not.

    /// Creates `n` points at (0, 0), open, bounds not computed. A negative or enormous `n` and
    /// short memory give a null reference.
    CFPolygonRef& CFPolygonCreate(long n);
    /// Creates a copy of the polygon of `src`; the drawing path is not copied.
    CFPolygonRef& CFPolygonCreate(CFPolygonRef const& src);
    /// Creates an open polygon of the given points.
    CFPolygonRef& CFPolygonCreate(std::vector<TPoint<double>> const& pts);
    /// Creates the five points top-left, top-right, bottom-right, bottom-left, top-left of `r`,
    /// turned by `angle` radians about the rectangle's centre unless it is 0. The closed flag stays
    /// off. A NaN angle gives NaN points.
    CFPolygonRef& CFPolygonCreate(TRect<double> const& r, double angle);

    /// Releases the cached path, frees the block and makes this reference null.
    CFPolygonRef& Dispose();

    // Query

    /// True when there is a block.
    operator bool() const { return mRef != nullptr; }
    /// The handle, typed as the record it points at.
    operator FPolygon**() const { return reinterpret_cast<FPolygon**>(mRef); }

    /// The block's size in bytes, 44 + 16 for each point; 0 without block.
    long DataSize() const;
    /// The index of the last point; -1 for an empty polygon and without block. From its size, so
    /// that it is 0, too, for a block from elsewhere of 45 to 59 bytes, which holds less than a
    /// point: that is read as (0, 0), and not written.
    long LastIndex() const {
        return mRef != nullptr ? (DataSize() - 60) / trammel_detail::kFPolygonPointSize : -1;
    }
    /// Point `i`; (0, 0) outside 0..LastIndex().
    TPoint<double> PolyPoints(long i) const;
    /// True when the closed flag is set.
    bool Closed() const;
    /// True when the bounds cache is current.
    bool BoundsValid() const;
    /// The bounds of the points, computed when not cached (O(n)); the null rectangle for an empty
    /// polygon. A point at the origin counts only while others are already in (see TRect's union).
    TRect<double> Bounds() const;
    /// LastIndex() - 1: the index of the last edge between consecutive points. The next index gives
    /// the closing edge. -2 for an empty polygon and without block.
    long EdgeCount() const { return LastIndex() - 1; }
    /// The edge from point `i` to point i + 1, or to point 0 for i > EdgeCount().
    TLine<double> GetEdge(long i) const;
    /// The highest edge index that Contains visits: LastIndex(), or one less when the first point
    /// is repeated at the end, so that the closing edge is not counted twice.
    long GeometryEdgeCount() const;
    /// True when `p` is inside by the even-odd rule, the polygon taken as closed whatever its flag.
    ///
    /// Counts the edges on the side of smaller h at the height of `p`, each edge half-open in v,
    /// and a point on a slanted or vertical edge not by that edge: of an axis-aligned square the
    /// upper edge and the edge of larger h are inside, the other two outside. NaN: false. O(n). By
    /// definition (crossing number).
    bool Contains(TPoint<double> const& p) const;

    // Change

    /// Makes the polygon `n` points long; new points are (0, 0). A negative or enormous `n` changes
    /// nothing.
    CFPolygonRef& SetSize(long n);
    /// Stores point `i`; nothing outside 0..LastIndex().
    CFPolygonRef& SetPolyPoints(long i, TPoint<double> const& p);
    /// Adds a point at the end, in O(1) amortised. A current bounds cache grows with it; the cached
    /// path is released.
    CFPolygonRef& Append(TPoint<double> const& p);
    /// Inserts a point before point `i` (i = number of points appends; other indexes outside are
    /// taken to the nearer end). A current bounds cache grows with it. Unlike after Append, a
    /// cached path stays as it was.
    CFPolygonRef& Insert(long i, TPoint<double> const& p);
    /// Removes `count` points from point `i` on and drops the caches.
    ///
    /// Works in two steps: it moves the points behind `i` + `count` down to `i`, if there are any,
    /// then takes `count` points off the end. So a range that reaches beyond the end still removes
    /// `count` points (at most all), the last ones: Delete(2, 2) of three points leaves the first,
    /// Delete(3, 1) the first two. A negative index or count removes nothing; the caches go even
    /// then.
    CFPolygonRef& Delete(long i, long count);
    /// Sets the closed flag. When it changes, bounds and path are dropped.
    CFPolygonRef& SetClosed(bool c);
    /// Drops the cached bounds (which become null) and the cached path. Const, as the caches live
    /// in the block.
    void InvalBounds() const;
    /// Computes the bounds into the cache, from the last point to the first.
    void CalcBounds() const;

    // Geometry: each works on every point and drops the caches; O(n)

    /// Moves by `d`.
    CFPolygonRef& Offset(TPoint<double> const& d);
    /// Scales about the origin; nothing (caches included) for s = 1.
    CFPolygonRef& Scale(double s);
    /// Scales about the origin with one factor for each direction; nothing when both are 1.
    CFPolygonRef& Scale(double sx, double sy);
    /// Rotates by `angle` radians about `center`, as TPoint::Rotate does.
    CFPolygonRef& Rotate(double angle, TPoint<double> const& center);
    /// Moves as the transform that carries rectangle `from` onto `to` does (CMatrix3x3::Map).
    CFPolygonRef& Map(TRect<double> const& from, TRect<double> const& to);

    // Drawing path

    /// Registers the function that builds the drawing layer's path of a polygon, for the whole
    /// process; null for none. Paths cached already are kept.
    ///
    /// The function gets a reference to the polygon (not a copy), which it may read and must not
    /// change, and returns a path whose one reference passes to the polygon, or null.
    static void SetBuilPathProc(CGPath* (*proc)(CFPolygonRef));
    /// The polygon's drawing path, built when there is none cached; null without block, without
    /// registered function and where that returned null (it is then asked again the next time).
    ///
    /// The path is borrowed: do not release it, and use it only until the polygon is next changed
    /// or disposed. Of a block that was copied byte by byte the copy builds a path of its own.
    CGPath* GetPath();

    // Convert

    /// A new QuickDraw polygon with the points rounded to integers (halves away from zero), its box
    /// the rounded Bounds(), its size the low 16 bits of the block's. Free it with DisposeHandle. A
    /// null reference gives the 10-byte header alone; null when memory is short.
    MacPolygon** CreateQDPoly() const;
};

/// The function that builds drawing paths, null until SetBuilPathProc is called. Process-wide and
/// not synchronised.
extern TRAMMEL_API CGPath* (*mBuildProc)(CFPolygonRef);

/// A reference to a copy of the polygon of `src`; null for a null reference.
TRAMMEL_API CFPolygonRef CFPolygonCreateCopy(CFPolygonRef const& src);

static_assert(sizeof(CFPolygonRef) == sizeof(void*));
static_assert(std::is_trivially_copyable_v<CFPolygonRef>);

#endif
