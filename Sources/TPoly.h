// SPDX-License-Identifier: MIT

// TPolygon: the point-list polygon, and the record CPolygon in which it keeps its state.
//
// An ordered list of vertices with a closed flag and a cached bounding rectangle, in one
// relocatable block that the object owns: copying clones the block, moving takes it, destruction
// frees it. Curves flatten into it. Edge i joins vertex i to vertex i + 1; the edge at the last
// index joins the last vertex back to vertex 0.
//
// No storage: a polygon whose block could not be made (short memory) behaves as empty and as
// closed, and absorbs every change. Appending when memory is short changes nothing.
//
// Indexes: reading a vertex that does not exist stops the process with an assertion, in every build
// type, as it is a mistake of the caller.
//
// Length comes in two forms that differ on purpose: TPt(t) walks the edges, the closing edge of a
// closed polygon included; TPt(t, table) and CalcPtFromEnd walk the open chain of vertices.
//
// One thread at a time for one polygon (the bounds cache is written by const members).

#ifndef TRAMMEL_TPOLY_H
#define TRAMMEL_TPOLY_H

#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"
#include "UHandle.h"

#include <cstddef>
#include <cstdint>
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

    /// Null bounds and point; the other three fields are left for the creator to set.
    CPolygon() {} // NOLINT(modernize-use-equals-default): value-initialising must not zero them
};

/// A polygon that owns its list of vertices. T is double.
template <class T> class TRAMMEL_API TPolygon {
    static_assert(std::is_same_v<T, double>, "TPolygon exists for double only");

public:
    CPolygon<T>** mHandle; ///< the owned block, null for no storage

    // Create

    /// An empty, open polygon.
    TPolygon();
    /// A copy of a handle polygon's points and bounds; open, its bounds to be computed when asked
    /// for.
    TPolygon(CFPolygonRef src);
    /// The closed polygon top-left, top-right, bottom-right, bottom-left of `r`.
    TPolygon(TRect<T> const& r);
    /// A copy with a block of its own; without storage when `other` is or memory is short.
    TPolygon(TPolygon const& other);
    /// Takes the block of `other` and leaves it without storage.
    TPolygon(TPolygon&& other) noexcept;
    ~TPolygon();
    /// Replaces the block by a copy of the other's.
    TPolygon& operator=(TPolygon const& other);
    /// Replaces the block by the other's, which is left without storage.
    TPolygon& operator=(TPolygon&& other) noexcept;

    // Vertices

    /// The index of the last vertex; -1 for an empty polygon and without storage.
    long LastIndex() const;
    /// True when there is no vertex.
    bool Empty() const { return LastIndex() < 0; }
    /// Vertex `index`; asserts "index >= 0" and "index <= LastIndex()".
    TPoint<T> GetPt(long index) const;
    /// Replaces vertex `index` and drops the bounds; asserts "index >= 0". Beyond the last index
    /// nothing changes.
    TPolygon& SetPt(long index, TPoint<T> const& p);
    /// Adds a vertex at the end, in O(1) amortised. With `allowDuplicate` false a vertex equal to
    /// the last one is not added. A bounds cache that is current stays as it is: call InvalBounds
    /// after appending to a polygon whose bounds were asked for.
    TPolygon& Append(TPoint<T> p, bool allowDuplicate);
    /// Append(p, false).
    TPolygon& AppendUnique(TPoint<T> const& p);
    /// Closes the polygon; there is no way to reopen it.
    TPolygon& Close();
    /// True when the polygon is closed, and without storage.
    bool Closed() const;
    /// Maps every vertex through the matrix and drops the bounds.
    TPolygon& Transform(CMatrix3x3 const& m);

    // Edges

    /// The index of the last edge that counts for length: LastIndex() when closed, else one less.
    long LastEdge() const { return Closed() ? LastIndex() : LastIndex() - 1; }
    /// LastIndex(): containment and clipping always take the closing edge.
    long LastGeometryEdge() const { return LastIndex(); }
    /// Stores the ends of edge `index`; asserts "index >= 0" and, through GetPt, that its vertices
    /// exist.
    void GetEdge(long index, TPoint<T>& a, TPoint<T>& b) const;
    /// Stores the edge in a line.
    void GetEdge(long index, TLine<T>& line) const;
    /// Edge `index` as a line.
    TLine<T> GetEdge(long index) const;
    /// The sum of the lengths of edges 0 to LastEdge(): the closing edge counts when closed. 0
    /// without vertices. O(n).
    double Length() const;

    // Bounds

    /// The bounds of the vertices, computed when not cached (O(n)); the null rectangle for an empty
    /// polygon and without storage.
    TRect<T> Bounds() const;
    /// True when the bounds cache is current.
    bool BoundsValid() const;
    /// Computes the bounds into the cache. A leading vertex at the origin is forgotten, as the
    /// bounds are then still null.
    void CalcBounds() const;
    /// Marks the bounds cache as not current.
    TPolygon& InvalBounds();

    // Geometry

    /// True when `p` is inside by the even-odd rule, the closing edge always taken.
    ///
    /// A point outside Bounds() is outside; otherwise the edges on the side of smaller h at the
    /// height of `p` are counted, each edge half-open in v, a crossing exactly at `p` not. Points
    /// on edges of smaller h tend to be outside, on edges of larger h inside, of horizontal edges
    /// on those of smaller v inside. NaN: false. O(n). By definition (crossing number).
    bool Contains(TPoint<T> p) const;
    /// The point at fraction `t` of Length() along the edges. 0 gives the first and 1 the last
    /// vertex exactly (also of a closed polygon, whose path ends at the first), t > 1 the last
    /// vertex, t < 0 a point on the first edge extended backward; NaN gives the last vertex, and a
    /// `t` that falls on an edge of length 0 NaN. Asserts a vertex. O(n).
    TPoint<T> TPt(double t) const;
    /// The point at fraction `t`, limited to [0, 1], of the open chain's length.
    ///
    /// `table` is what BuildLTable made of the current vertices; null has it built for this call
    /// (O(n)), otherwise the call costs O(log n). Fractions below 0.0001 in magnitude give vertex
    /// 0, NaN gives NaN. A table shorter than the vertices is searched as far as it reaches; with
    /// fewer than two entries the answer is vertex 0. A polygon without vertices asserts.
    TPoint<T> TPt(double t, std::vector<double>* table) const;
    /// The point at `distance` along the open chain from its start or, with `fromStart` false, from
    /// its end: the distance is divided by Length(), closing edge included, and the fraction is
    /// taken of the open chain. Asserts a vertex.
    TPoint<T> CalcPtFromEnd(double distance, bool fromStart) const;
    /// The pieces of the segment `line` that lie inside the polygon, sorted by h where the line is
    /// nearer to horizontal, else by v.
    ///
    /// The segment's ends and its crossings with the edges, the closing edge included, are sorted,
    /// and of each two neighbours the piece between is kept when its middle is inside. A crossing
    /// at a vertex comes twice, and the piece of length 0 between is kept when the vertex counts as
    /// inside. A NaN coordinate in `line` gives no pieces. O(n + k·n) for k crossings.
    std::vector<TLine<T>> Clip(TLine<T> line) const;

    // Convert

    /// A new handle polygon (the caller's to dispose) of the vertices, closed when this is, and
    /// then with the first vertex repeated at the end. A null reference without storage.
    operator CFPolygonRef() const;
};

/// Orders points by h and then v, or by v and then h; both ascending. A strict weak ordering unless
/// a coordinate is NaN.
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

/// Appends the length table of the polygon's open chain to `table`, which has to be empty: entry 0
/// is 0, entry i the distance along the chain from vertex 0 to vertex i. An empty polygon adds
/// nothing. Throws std::bad_alloc. O(n). T is double.
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
