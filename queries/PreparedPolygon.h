// SPDX-License-Identifier: MIT

// PreparedPolygon: point-in-polygon for many points and one polygon.
//
// The polygons' own Contains looks at every edge for every point. This class looks at the edges
// once and files them by height. A query then finds the edges at the point's height and touches
// hardly any others.
//
// The answer is the polygon's own, to the last bit and for every point. The polygon's formula
// decides every edge that could count. Comparisons settle only edges on which the formula has no
// choice.
//
// Choose this where a polygon of more than a hundred vertices is asked often. Preparing costs as
// much as some 50 to 100 calls of the polygon's own Contains. After that, a call costs a small part
// of the polygon's own.
//
// Two kinds of polygons are only copied, and each query looks at every edge:
//   - polygons of up to 64 vertices
//   - polygons with a coordinate that is NaN, infinite or beyond 2^1000
//
// A prepared polygon keeps the edges as they were. Later changes of the polygon, and its end, do
// not reach it. Only assignment changes it. Copies share the edges and cost O(1).
//
// Threads: const members of one object, and of copies of it, are safe from any number of threads at
// once. Assigning to an object while another thread uses the same object is not.
//
// Memory: 16 bytes for each vertex, 12 for each piece of an edge, of which there are one or two,
// and up to 8 a vertex for the way to them. That makes 30 to 40 bytes a vertex for most polygons
// and 48 at most, and some 600 for each polygon. While it is built it takes up to 40 bytes more for
// each vertex.
//
// Source: segment tree over the heights (Bentley, Solutions to Klee's rectangle problems, 1977; de
// Berg et al., Computational Geometry, 10.3). In that tree an edge stands at every node that it
// covers. Here it stands at one or two nodes, of each of which it takes up more than half. That
// makes the tree's size linear, and the time to build it. In return a query looks at some edges
// that end before the point's height.

#ifndef TRAMMEL_PREPAREDPOLYGON_H
#define TRAMMEL_PREPAREDPOLYGON_H

#include "CFPolygonRef.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TrammelExport.h"

#include <cstddef>
#include <memory>

namespace trammel {

/// A polygon's edges, arranged for containment tests.
class TRAMMEL_API PreparedPolygon {
public:
    // Create

    /// Of an empty polygon: contains nothing.
    PreparedPolygon() = default;
    /// Takes the edges of `polygon`. Computes its bounds if they are not cached, as its own
    /// Contains does. Bounds that were cached and have become wrong since (see TPolygon::Append)
    /// count here as they count there. Throws std::bad_alloc, also for 2^31 - 1 vertices or more.
    /// O(n) where the heights are spread over their range, O(n log n) at most.
    explicit PreparedPolygon(TPolygon<double> const& polygon);
    /// Takes the edges of `polygon`; a null reference is an empty polygon. Throws std::bad_alloc,
    /// also for 2^31 - 1 vertices or more. O(n) and O(n log n) as above.
    explicit PreparedPolygon(CFPolygonRef const& polygon);

    // Query

    /// Returns exactly what the polygon's own Contains returns for `p`, for every `p` and every
    /// polygon. The two kinds of polygons differ where their docstrings say. NaN gives false.
    ///
    /// O(log n + k) for k edges near the height of `p`: an edge is no farther off than it is high
    /// itself. Distances count in slabs here, which are ranges of heights with at most 32 vertices
    /// inside. An edge whose box does not hold `p` takes a fraction of a nanosecond. O(n) for the
    /// polygons that are only copied. Allocates nothing.
    bool Contains(TPoint<double> const& p) const noexcept;
    /// Stores Contains(points[i]) in inside[i], for each i below `count`. The arrays must not
    /// overlap; with a `count` of 0 they may be null. Allocates nothing.
    void Contains(TPoint<double> const* points, std::size_t count, bool* inside) const noexcept;

    /// Returns the bytes that the polygon's edges take. Each copy counts the bytes that it shares.
    /// 0 after default construction, and for an object that was moved from, which contains nothing.
    std::size_t MemorySize() const noexcept;

private:
    struct Index;

    std::shared_ptr<Index const> mIndex; // null: no vertices
};

static_assert(sizeof(PreparedPolygon) == sizeof(std::shared_ptr<void>));

} // namespace trammel

#endif
