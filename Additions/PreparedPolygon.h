// SPDX-License-Identifier: MIT
//
// PreparedPolygon: point-in-polygon for many points and one polygon.
//
// The polygons' own Contains looks at every edge for every point. This class looks once, sorts the
// edges by height, and then finds those at a point's height without touching the others. Its answer
// is that of the polygon, to the last bit and for every point: each edge that could decide is asked
// by the same formula, and the sorting settles only what the formula cannot answer otherwise.
//
// Choose this where a polygon of more than a few dozen vertices is asked often: preparing costs as
// much as some 30 to 800 calls of the polygon's own Contains, most for large ragged outlines,
// after which one costs next to nothing.
//
// A prepared polygon is a picture of the polygon as it was: what happens to the polygon later, its
// end included, does not reach it. Nothing changes it but assignment. Copies share the sorted edges
// and cost O(1).
//
// Threads: const members of one object, and of copies of it, are safe from any number of threads at
// once. Assigning to an object while another thread uses the same object is not.
//
// Memory: 16 bytes for each vertex, 4 for each edge's end within a slab (a range of heights with at
// most 16 vertices inside), and 13 for each span, a part of an edge that crosses slabs as a whole.
// Drawn outlines have one or two spans an edge, which makes about 50 bytes a vertex in all. There
// are never more than 2 log2(n / 4) spans an edge; polygons come near to a third of that whose
// edges run through most heights and all end at different ones. While it is built it takes up to 32
// bytes more for each vertex and 16 for each span.
//
// Source: segment tree over the heights (Bentley, Solutions to Klee's rectangle problems, 1977; de
// Berg et al., Computational Geometry, 10.3), with each node's edges sorted by the interval of h
// that they take up within the node's heights.

#ifndef TRAMMEL_PREPAREDPOLYGON_H
#define TRAMMEL_PREPAREDPOLYGON_H

#include "CFPolygonRef.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TrammelExport.h"

#include <cstddef>
#include <memory>

namespace trammel {

/// A polygon's vertices, sorted for containment tests.
class TRAMMEL_API PreparedPolygon {
public:
    // Create

    /// Of an empty polygon: contains nothing.
    PreparedPolygon() = default;
    /// Sorts the edges of `polygon`, whose bounds are computed if they are not cached, as its own
    /// Contains would. Bounds that were cached and have become wrong since (see TPolygon::Append)
    /// count here as they count there. Throws std::bad_alloc, also when the parts of edges are 2^32
    /// or more. O(n log n).
    explicit PreparedPolygon(TPolygon<double> const& polygon);
    /// Sorts the edges of `polygon`; a null reference is an empty polygon. Throws std::bad_alloc,
    /// also when the parts of edges are 2^32 or more. O(n log n).
    explicit PreparedPolygon(CFPolygonRef const& polygon);

    // Query

    /// Exactly what the polygon's own Contains gives for `p`, for every `p` and every polygon: the
    /// two families differ where their docstrings say. NaN: false.
    ///
    /// O(log n + k) for k edges at the height of `p`; where those lie apart, or `p` lies apart from
    /// them, O(log n) to O(log(n)^2) however many they are. Allocates nothing.
    bool Contains(TPoint<double> const& p) const noexcept;
    /// Stores Contains(points[i]) in inside[i], for each i below `count`. The arrays must not
    /// overlap; with a `count` of 0 they may be null. Allocates nothing.
    void Contains(TPoint<double> const* points, std::size_t count, bool* inside) const noexcept;

    /// The bytes that the sorted edges take; those that copies share are counted in each. 0 after
    /// default construction and for an object that was moved from (which contains nothing).
    std::size_t MemorySize() const noexcept;

private:
    struct Index;

    std::shared_ptr<Index const> mIndex; // null: no vertices
};

static_assert(sizeof(PreparedPolygon) == sizeof(std::shared_ptr<void>));

} // namespace trammel

#endif
