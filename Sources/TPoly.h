// SPDX-License-Identifier: MIT

// TPolygon: the point-list polygon, and the record CPolygon in which it keeps its state.
//
// A polygon is an ordered list of vertices with a closed flag and a cached bounding rectangle.
// Curves flatten into it. It lies in one relocatable block that the object owns: copying clones the
// block, moving takes it, destruction frees it. Edge i joins vertex i to vertex i + 1; the edge at
// the last index joins the last vertex back to vertex 0.
//
// No storage: a polygon whose block could not be made (short memory) behaves as empty and as
// closed. Changes to it do nothing. Appending when memory is short changes nothing.
//
// Indexes: reading a vertex that does not exist is a mistake of the caller. It stops the process
// with an assertion, in every build type.
//
// Positions along a polygon come in two forms that differ on purpose. TPt(t) walks the edges, the
// closing edge of a closed polygon included. TPt(t, table) and CalcPtFromEnd walk the open chain of
// vertices.
//
// Threads: const members of one polygon, and all members of different polygons, may run at the same
// time.

#ifndef TRAMMEL_TPOLY_H
#define TRAMMEL_TPOLY_H

#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"
#include "UHandle.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <type_traits>
#include <vector>

class CFPolygonRef;
class CMatrix3x3;

/// The record in a point-list polygon's block: a header, then as many vertices as the block has
/// room for. n vertices take 40 + 16·n bytes; n is never stored. T is double.
template <class T> struct CPolygon {
    static_assert(std::is_same_v<T, double>, "CPolygon exists for double only");

    std::int32_t mReserved;    ///< 0, never read
    std::int16_t mClosed;      ///< nonzero: closed
    std::int16_t mBoundsValid; ///< nonzero: mBounds holds the bounds of the vertices
    TRect<T> mBounds;          ///< cached bounds
    TPoint<T> mPoints[1];      ///< the vertices

    /// Sets bounds and point to null, and leaves the other three fields for the creator to set.
    CPolygon() {} // NOLINT(modernize-use-equals-default): value-initialising must not zero them
};

/// A polygon that owns its list of vertices. T is double.
template <class T> class TRAMMEL_API TPolygon {
    static_assert(std::is_same_v<T, double>, "TPolygon exists for double only");

public:
    CPolygon<T>** mHandle; ///< the owned block, null for no storage

    // Create

    /// Makes an empty, open polygon.
    TPolygon();
    /// Copies a handle polygon's points and bounds. The copy is open, and its bounds are not
    /// current: they are computed when asked for.
    TPolygon(CFPolygonRef src);
    /// Makes the closed polygon top-left, top-right, bottom-right, bottom-left of `r`.
    TPolygon(TRect<T> const& r);
    /// Makes the open polygon of the given vertices, equal neighbours included. It has no storage
    /// when memory is short. O(n).
    TPolygon(std::initializer_list<TPoint<T>> vertices);
    /// Does the same as the constructor above.
    explicit TPolygon(std::vector<TPoint<T>> const& vertices);
    /// Makes a copy with a block of its own. It has no storage when `other` has none, or when
    /// memory is short.
    TPolygon(TPolygon const& other);
    /// Takes the block of `other` and leaves it without storage.
    TPolygon(TPolygon&& other) noexcept;
    ~TPolygon();
    /// Replaces the block by a copy of the other's.
    TPolygon& operator=(TPolygon const& other);
    /// Replaces the block by the other's, which is left without storage.
    TPolygon& operator=(TPolygon&& other) noexcept;

    // Vertices

    /// Returns the index of the last vertex; -1 for an empty polygon and without storage.
    long LastIndex() const;
    /// True when there is no vertex.
    bool Empty() const { return LastIndex() < 0; }
    /// Returns vertex `index`; asserts "index >= 0" and "index <= LastIndex()".
    TPoint<T> GetPt(long index) const;
    /// Replaces vertex `index` and drops the bounds; asserts "index >= 0". Beyond the last index
    /// nothing changes.
    TPolygon& SetPt(long index, TPoint<T> const& p);
    /// Adds a vertex at the end, in O(1) amortised. With `allowDuplicate` false a vertex equal to
    /// the last one is not added. Current bounds stay as they are: call InvalBounds after appending
    /// to a polygon whose bounds were asked for.
    TPolygon& Append(TPoint<T> p, bool allowDuplicate);
    /// Does the same as Append(p, false).
    TPolygon& AppendUnique(TPoint<T> const& p);
    /// Closes the polygon; there is no way to reopen it.
    TPolygon& Close();
    /// True when the polygon is closed, and without storage.
    bool Closed() const;
    /// Maps every vertex through the matrix and drops the bounds.
    TPolygon& Transform(CMatrix3x3 const& m);
    /// Returns where the vertices begin in the block, for loops over them and for algorithms. It is
    /// equal to end() for an empty polygon and without storage. Like the address of a vector's
    /// item, it is good until a vertex is added or the polygon is assigned to or destroyed.
    TPoint<T> const* begin() const { return mHandle != nullptr ? (*mHandle)->mPoints : nullptr; }
    /// Returns where they end.
    TPoint<T> const* end() const { return begin() + (Empty() ? 0 : LastIndex() + 1); }

    // Edges

    /// Returns the index of the last edge that counts for length: LastIndex() when closed, or else
    /// one less.
    long LastEdge() const { return Closed() ? LastIndex() : LastIndex() - 1; }
    /// Returns LastIndex(): containment and clipping always take the closing edge.
    long LastGeometryEdge() const { return LastIndex(); }
    /// Stores the ends of edge `index`; asserts "index >= 0" and, through GetPt, that its vertices
    /// exist.
    void GetEdge(long index, TPoint<T>& a, TPoint<T>& b) const;
    /// Stores the edge in a line.
    void GetEdge(long index, TLine<T>& line) const;
    /// Returns edge `index` as a line.
    TLine<T> GetEdge(long index) const;
    /// Returns the sum of the lengths of edges 0 to LastEdge(): the closing edge counts when
    /// closed. 0 without vertices. O(n).
    double Length() const;

    // Bounds

    /// Returns the bounds of the vertices, computed when not cached (O(n)); the null rectangle for
    /// an empty polygon and without storage.
    TRect<T> Bounds() const {
        if (!BoundsValid()) {
            CalcBounds();
        }
        return mHandle != nullptr ? (*mHandle)->mBounds : TRect<T>();
    }
    /// True when the bounds cache is current.
    bool BoundsValid() const {
        // Another thread that computes the bounds sets the flag behind them.
        return mHandle != nullptr &&
               __atomic_load_n(&(*mHandle)->mBoundsValid, __ATOMIC_ACQUIRE) != 0;
    }
    /// Computes the bounds into the cache. A leading vertex at the origin is forgotten, because the
    /// bounds are then still null. O(n).
    ///
    /// Where points were appended behind bounds that were asked for, this changes the bounds. Then
    /// no other thread may use the polygon at the same time.
    void CalcBounds() const;
    /// Marks the bounds cache as not current.
    TPolygon& InvalBounds() {
        if (mHandle != nullptr) {
            (*mHandle)->mBoundsValid = 0;
        }
        return *this;
    }

    // Geometry

    /// True when `p` is inside by the even-odd rule, the closing edge always taken.
    ///
    /// A point outside Bounds() is outside. Otherwise the test counts the edges that the horizontal
    /// line through `p` crosses at smaller h. Each edge is half-open in v; a crossing exactly at
    /// `p` does not count. Points on the edges themselves tend to be
    /// - outside on edges of smaller h, inside on edges of larger h,
    /// - inside on horizontal edges of smaller v, outside on horizontal edges of larger v.
    ///
    /// NaN gives false. O(n). Source: the definition of the crossing number.
    bool Contains(TPoint<T> p) const;
    /// Returns the point at fraction `t` of Length() along the edges. Asserts a vertex. O(n).
    /// - t = 0 gives the first vertex and t = 1 the last vertex, both exactly. This holds for a
    ///   closed polygon as well, although its path ends at the first vertex.
    /// - t > 1 and NaN give the last vertex; t < 0 gives a point on the first edge, extended
    ///   backward.
    /// - A `t` that falls on an edge of length 0 gives NaN.
    TPoint<T> TPt(double t) const;
    /// Returns the point at fraction `t`, limited to [0, 1], of the open chain's length.
    ///
    /// `table` is the table that BuildLTable made of the current vertices: the call then costs
    /// O(log n). With null the call builds the table itself, in O(n). Fractions below 0.0001 in
    /// magnitude give vertex 0, NaN gives NaN. A table shorter than the vertices is searched as far
    /// as it reaches; with fewer than two entries the answer is vertex 0. Asserts a vertex. Throws
    /// std::bad_alloc when memory is short and `table` null.
    TPoint<T> TPt(double t, std::vector<double>* table) const;
    /// Returns the point at `distance` along the open chain from its start or, with `fromStart`
    /// false, from its end. The distance is divided by Length(), closing edge included, and the
    /// fraction is taken of the open chain. Asserts a vertex. Throws std::bad_alloc when memory is
    /// short. O(n).
    TPoint<T> CalcPtFromEnd(double distance, bool fromStart) const;
    /// Returns the pieces of the segment `line` that lie inside the polygon. They are sorted by h
    /// where the line is nearer to horizontal, or else by v.
    ///
    /// The segment's ends and its crossings with the edges, the closing edge included, are sorted.
    /// The piece between two neighbours is kept when its middle is inside. A crossing at a vertex
    /// comes twice, and the piece of length 0 between is kept when the vertex counts as inside. A
    /// NaN coordinate in `line` gives no pieces. Throws std::bad_alloc when memory is short. O(n +
    /// k·n) for k crossings.
    std::vector<TLine<T>> Clip(TLine<T> line) const;

    // Convert

    /// Converts to a new handle polygon of the vertices, which the caller disposes. It is closed
    /// when this polygon is, and then repeats the first vertex at the end. A polygon without
    /// storage gives a null reference.
    operator CFPolygonRef() const;
};

/// Orders points by h and then v, or by v and then h; both ascending. It is a strict weak ordering
/// unless a coordinate is NaN.
struct TRAMMEL_API PointSort {
    bool mByH; ///< true: h first

    explicit PointSort(bool byH) : mByH(byH) {}

    /// True when `a` comes strictly before `b`.
    bool operator()(TPoint<double> const& a, TPoint<double> const& b) const {
        if (mByH && a.h != b.h) {
            return a.h < b.h;
        }
        if (a.v != b.v) {
            return a.v < b.v;
        }
        return a.h < b.h;
    }
};

/// Appends the length table of the polygon's open chain to `table`, which has to be empty. Entry 0
/// is 0, and entry i is the distance along the chain from vertex 0 to vertex i. An empty polygon
/// adds nothing. Throws std::bad_alloc when memory is short. O(n). T is double.
template <class T> void BuildLTable(TPolygon<T> const& poly, std::vector<double>& table);

extern template class TPolygon<double>;
extern template TRAMMEL_API void BuildLTable<double>(TPolygon<double> const&, std::vector<double>&);
extern template TRAMMEL_API CPolygon<double>** Clone<CPolygon<double>>(CPolygon<double>**);
extern template TRAMMEL_API void AppendHandle<CPolygon<double>, TPoint<double>>(CPolygon<double>**,
                                                                                TPoint<double>);

static_assert(offsetof(CPolygon<double>, mClosed) == 4 &&
              offsetof(CPolygon<double>, mBoundsValid) == 6 &&
              offsetof(CPolygon<double>, mBounds) == 8 &&
              offsetof(CPolygon<double>, mPoints) == 40);
static_assert(sizeof(CPolygon<double>) == 56);
static_assert(std::is_trivially_copyable_v<CPolygon<double>>);
static_assert(sizeof(TPolygon<double>) == sizeof(void*));

#endif
