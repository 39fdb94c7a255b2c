// SPDX-License-Identifier: MIT

// CFPolygonRef: a reference to a handle polygon.
//
// A handle polygon keeps its whole state in one relocatable block: closed flag, bounds cache,
// cached drawing path and points (FPolygon.h). The application may store and exchange the block
// byte by byte. This class refers to such a block and does NOT own it: copies share it, there is no
// destructor, and only Dispose frees it. After that no other copy may be used.
//
// Null: a new reference has no block, nor has one for which memory was short. It absorbs every
// operation and gives 0, false, -1, the null rectangle or (0, 0). Copying a null reference gives a
// null reference.
//
// Short blocks: a block from elsewhere can be shorter than the header of 44 bytes. It has no
// points, flags or caches either. But it has a size, and can be copied, resized, appended to and
// disposed.
//
// Indexes run from 0 to LastIndex(). Outside of it, reading gives (0, 0) and storing does nothing;
// Insert and Delete say what they do there. Short memory leaves the polygon as it was. Members that
// change it return the reference, so that they can be chained.
//
// Caches: the bounds are computed when asked for and kept until the points change. The drawing path
// is released when the points change.
//
// Threads: const members on one block, and all members on different blocks, may run at the same
// time. A const member that drops or computes the bounds does so at once for all threads. A block
// that other threads ask for bounds is copied by CFPolygonCreate, not byte by byte.

#ifndef TRAMMEL_CFPOLYGONREF_H
#define TRAMMEL_CFPOLYGONREF_H

#include "FPolygon.h"
#include "PathObject.h"
#include "Records.h"
#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <cstddef>
#include <iterator>
#include <type_traits>
#include <vector>

/// The record behind a handle polygon's handle; see FPolygon for the layout.
struct OpaqueCFPolygon;

/// A shared, non-owning reference to a handle polygon.
class TRAMMEL_API CFPolygonRef {
public:
    OpaqueCFPolygon** mRef; ///< the handle, null for none

    // Create

    /// Makes a null reference.
    CFPolygonRef() : mRef(nullptr) {}
    /// Makes an empty polygon when `create` is true, or else a null reference.
    explicit CFPolygonRef(bool create);
    /// Refers to the block behind `h` or, with `copy`, to a copy of it.
    CFPolygonRef(FPolygon** h, bool copy);
    /// Shares the block of `other` or, with `copy`, refers to a copy of it.
    CFPolygonRef(CFPolygonRef const& other, bool copy);
    CFPolygonRef(CFPolygonRef const&) = default;
    /// Shares the block of `other`; the block referred to so far is not freed.
    CFPolygonRef& operator=(CFPolygonRef const&) = default;

    // The creating members below refer to a new block and leave the old one alone, because it may
    // be shared. Dispose it first where it is not.

    /// Creates `n` points at (0, 0). The polygon is open, and its bounds are not computed. A
    /// negative or enormous `n` and short memory give a null reference.
    CFPolygonRef& CFPolygonCreate(long n);
    /// Creates a copy of the polygon of `src`; the drawing path is not copied.
    CFPolygonRef& CFPolygonCreate(CFPolygonRef const& src);
    /// Creates an open polygon of the given points, which may be a list in braces.
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
    /// Converts to the handle, typed as the record behind it.
    operator FPolygon**() const { return reinterpret_cast<FPolygon**>(mRef); }

    /// Returns the block's size in bytes, 44 + 16 for each point; 0 without block.
    long DataSize() const;
    /// Returns the index of the last point; -1 for an empty polygon and without block.
    ///
    /// It follows from the block's size, so blocks from elsewhere can give other values. A block of
    /// 45 to 59 bytes holds less than a point, and gives 0: that point is read as (0, 0), and not
    /// written. A block of 28 bytes or less gives less than -1.
    long LastIndex() const {
        return mRef != nullptr ? (DataSize() - 60) / trammel_detail::kFPolygonPointSize : -1;
    }
    /// Returns point `i`; (0, 0) outside 0..LastIndex().
    TPoint<double> PolyPoints(long i) const;
    /// Goes through the points for begin() and end(). It refers to the block as a reference does:
    /// it keeps no address of a point, and reads each by value (PolyPoints). So the polygon may
    /// change during a loop, which ends where it would have ended. After Dispose it must not be
    /// used.
    class Iterator;
    /// Returns the place of point 0, for loops; equal to end() for an empty polygon and without
    /// block.
    Iterator begin() const;
    /// Returns the place behind the point LastIndex().
    Iterator end() const;
    /// True when the closed flag is set.
    bool Closed() const;
    /// True when the bounds cache is current.
    bool BoundsValid() const;
    /// Returns the bounds of the points, computed when not cached (O(n)); the null rectangle for an
    /// empty polygon. A point at the origin counts only when the union already holds other points
    /// (see TRect's union and CalcBounds).
    TRect<double> Bounds() const;
    /// Returns LastIndex() - 1, the index of the last edge between consecutive points; -2 for an
    /// empty polygon and without block. The next index gives the closing edge.
    long EdgeCount() const { return LastIndex() - 1; }
    /// Returns the edge from point `i` to point i + 1, or to point 0 for i > EdgeCount().
    TLine<double> GetEdge(long i) const;
    /// Returns the highest edge index that containment takes: LastIndex(), or one less when the
    /// first point is repeated at the end. So the closing edge is not counted twice.
    long GeometryEdgeCount() const;
    /// True when `p` is inside by the even-odd rule. The polygon counts as closed, whatever its
    /// flag.
    ///
    /// The test counts the edges that the horizontal line through `p` crosses at smaller h. Each
    /// edge is half-open in v, and an edge does not count for a point on it. So the upper edge of
    /// an axis-aligned square and its edge of larger h are inside, the other two outside. NaN gives
    /// false. O(n). Source: the definition of the crossing number.
    bool Contains(TPoint<double> const& p) const;

    // Change

    /// Makes the polygon `n` points long; new points are (0, 0). A negative or enormous `n` changes
    /// nothing.
    CFPolygonRef& SetSize(long n);
    /// Stores point `i`; does nothing outside 0..LastIndex().
    CFPolygonRef& SetPolyPoints(long i, TPoint<double> const& p);
    /// Adds a point at the end, in O(1) amortised. A current bounds cache grows with it; the cached
    /// path is released.
    CFPolygonRef& Append(TPoint<double> const& p);
    /// Inserts a point before point `i`. The number of points as `i` appends; other indexes outside
    /// are taken to the nearer end. A current bounds cache grows with it. Unlike Append, it leaves
    /// a cached path as it was. O(n).
    CFPolygonRef& Insert(long i, TPoint<double> const& p);
    /// Removes `count` points from point `i` on and drops the caches. O(n).
    ///
    /// It works in two steps: it moves the points behind `i` + `count` down to `i`, if there are
    /// any, then takes `count` points off the end. So a range that reaches beyond the end still
    /// removes `count` points (at most all), namely the last ones. Of three points, Delete(2, 2)
    /// leaves the first, and Delete(3, 1) the first two. A negative index or count removes nothing;
    /// the caches go even then.
    CFPolygonRef& Delete(long i, long count);
    /// Sets the closed flag. When it changes, bounds and path are dropped.
    CFPolygonRef& SetClosed(bool c);
    /// Drops the cached bounds, which become null, and the cached path. The member is const because
    /// the caches live in the block. No thread may use the path any more.
    void InvalBounds() const;
    /// Computes the bounds into the cache, from the last point to the first. O(n).
    void CalcBounds() const;

    // Geometry: each works on every point and drops the caches; O(n)

    /// Moves the polygon by `d`.
    CFPolygonRef& Offset(TPoint<double> const& d);
    /// Scales about the origin. For s = 1 it does nothing, and keeps the caches.
    CFPolygonRef& Scale(double s);
    /// Scales about the origin with one factor for each direction. When both are 1 it does nothing.
    CFPolygonRef& Scale(double sx, double sy);
    /// Rotates by `angle` radians about `center`, as TPoint::Rotate does.
    CFPolygonRef& Rotate(double angle, TPoint<double> const& center);
    /// Maps the points by the transform that carries rectangle `from` onto `to` (CMatrix3x3::Map).
    CFPolygonRef& Map(TRect<double> const& from, TRect<double> const& to);

    // Drawing path

    /// Registers the function that builds the drawing layer's path of a polygon, for the whole
    /// process; null for none. Paths cached already are kept. For one thread, while no other asks
    /// for a path.
    ///
    /// The function gets a reference to the polygon itself, not to a copy. It may read the polygon
    /// and must not change it. It returns a path, whose one reference passes to the polygon, or
    /// null.
    static void SetBuilPathProc(CGPath* (*proc)(CFPolygonRef));
    /// Returns the polygon's drawing path, and builds it when there is none cached. Returns null
    /// without block, without registered function, and where the function returned null. In the
    /// last case it is asked again the next time.
    ///
    /// The path is borrowed: do not release it, and use it only until the polygon is next changed
    /// or disposed. A block that was copied byte by byte builds a path of its own.
    CGPath* GetPath();

    // Convert

    /// Returns a new QuickDraw polygon with the points rounded to integers, halves away from zero.
    /// Its box is the rounded Bounds(), its size the low 16 bits of the block's. Free it with
    /// DisposeHandle. A null reference gives the 10-byte header alone; short memory gives null.
    MacPolygon** CreateQDPoly() const;
};

class CFPolygonRef::Iterator {
public:
    typedef std::input_iterator_tag iterator_category; // it gives values, not references
    typedef TPoint<double> value_type;
    typedef std::ptrdiff_t difference_type;
    typedef TPoint<double> const* pointer;
    typedef TPoint<double> reference;

    /// Returns the point; (0, 0) outside of the polygon.
    TPoint<double> operator*() const { return mPolygon.PolyPoints(mIndex); }
    Iterator& operator++() {
        ++mIndex;
        return *this;
    }
    Iterator operator++(int) {
        Iterator const before = *this;
        ++mIndex;
        return before;
    }
    friend bool operator==(Iterator const& a, Iterator const& b) { return a.mIndex == b.mIndex; }
    friend bool operator!=(Iterator const& a, Iterator const& b) { return a.mIndex != b.mIndex; }

private:
    friend CFPolygonRef;
    Iterator(CFPolygonRef const& polygon, long index) : mPolygon(polygon), mIndex(index) {}

    CFPolygonRef mPolygon;
    long mIndex;
};

inline CFPolygonRef::Iterator CFPolygonRef::begin() const { return Iterator(*this, 0); }
inline CFPolygonRef::Iterator CFPolygonRef::end() const {
    long const last = LastIndex();
    return Iterator(*this, last >= 0 ? last + 1 : 0);
}

/// The function that builds drawing paths, null until SetBuilPathProc is called. Process-wide:
/// change it while no other thread asks for a path.
extern TRAMMEL_API CGPath* (*mBuildProc)(CFPolygonRef);

/// Returns a reference to a copy of the polygon of `src`; null for a null reference.
TRAMMEL_API CFPolygonRef CFPolygonCreateCopy(CFPolygonRef const& src);

static_assert(sizeof(CFPolygonRef) == sizeof(void*));
static_assert(std::is_trivially_copyable_v<CFPolygonRef>);

#endif
