// SPDX-License-Identifier: MIT

// PreparedPolygon: point-in-polygon for many points and one polygon.
//
// The polygons' own Contains looks at every edge for every point. This class looks once, puts the
// edges where a point's height leads to, and then finds those at that height without touching most
// others. Its answer is that of the polygon, to the last bit and for every point: each edge that
// could decide is asked by the same formula, and comparisons settle only what the formula cannot
// answer otherwise.
//
// Choose this where a polygon of more than a hundred vertices is asked often: preparing costs as
// much as some 50 to 100 calls of the polygon's own Contains, after which one costs a small part of
// that. Polygons of up to 64 vertices are only copied, and asked as they would be themselves; so
// are those with a coordinate that is NaN, infinite or beyond 2^1000.
//
// A prepared polygon is a picture of the polygon as it was: what happens to the polygon later, its
// end included, does not reach it. Nothing changes it but assignment. Copies share the edges and
// cost O(1).
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
// Berg et al., Computational Geometry, 10.3). An edge stands at the nodes, one or two, that it
// takes up more than half of, and not at all those that it covers as a whole. That makes the tree
// linear in size and the time to build it, for looking at edges that end before the point's height.

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
    /// Takes the edges of `polygon`, whose bounds are computed if they are not cached, as its own
    /// Contains would. Bounds that were cached and have become wrong since (see TPolygon::Append)
    /// count here as they count there. Throws std::bad_alloc, also for 2^31 - 1 vertices or more.
    /// O(n) where the heights are spread over their range, O(n log n) at most.
    explicit PreparedPolygon(TPolygon<double> const& polygon);
    /// Takes the edges of `polygon`; a null reference is an empty polygon. Throws std::bad_alloc,
    /// also for 2^31 - 1 vertices or more. O(n) and O(n log n) as above.
    explicit PreparedPolygon(CFPolygonRef const& polygon);

    // Query

    /// Exactly what the polygon's own Contains gives for `p`, for every `p` and every polygon: the
    /// two families differ where their docstrings say. NaN: false.
    ///
    /// O(log n + k) for k edges at the height of `p` or near it: not farther off than an edge is
    /// high itself, counted in slabs, which are ranges of heights with at most 32 vertices inside.
    /// Edges whose boxes `p` is outside of take a fraction of a nanosecond each. Allocates nothing.
    /// O(n) for polygons with a coordinate that is not finite or beyond 2^1000.
    bool Contains(TPoint<double> const& p) const noexcept;
    /// Stores Contains(points[i]) in inside[i], for each i below `count`. The arrays must not
    /// overlap; with a `count` of 0 they may be null. Allocates nothing.
    void Contains(TPoint<double> const* points, std::size_t count, bool* inside) const noexcept;

    /// The bytes that the polygon's edges take; those that copies share are counted in each. 0
    /// after default construction and for an object that was moved from (which contains nothing).
    std::size_t MemorySize() const noexcept;

private:
    struct Index;

    std::shared_ptr<Index const> mIndex; // null: no vertices
};

static_assert(sizeof(PreparedPolygon) == sizeof(std::shared_ptr<void>));

} // namespace trammel

#endif
