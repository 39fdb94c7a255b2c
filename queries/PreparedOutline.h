// SPDX-License-Identifier: MIT

// PreparedOutline: winding numbers and containment for many points and one outline, curves as they
// are.
//
// WindingNumber looks at every segment for every point. This class arranges the segments once. Of
// most outlines it makes a tree of boxes, and a query looks at the boxes around the point. Of
// crowded ones it makes a grid of cells, and a query looks at the segments in the point's cell. An
// outline is crowded where many boxes of segments overlap, as in spirals, combs and scribbles.
//
// The answer is that of WindingNumber for the same outline, the same integer for every point. See
// Winding.h for the contours of an outline, for the sign, and for points near the outline: there
// the nearest side is told, and it is the same side. The same code decides every segment that could
// count either way.
//
// Choose this where an outline of more than some ten segments is asked often. Preparing costs as
// much as some ten calls of WindingNumber, and of a crowded outline as much as 100 to 400.
//
// A prepared outline keeps the segments as they were. Later changes of the outline, and its end, do
// not reach it. Only assignment changes it. Copies share the segments and cost O(1).
//
// Threads: const members of one object, and of copies of it, are safe from any number of threads at
// once. Assigning to an object while another thread uses the same object is not.
//
// Memory: 48 bytes for each curve, 16 for each line, and 18 for each of both for the way to them.
// A contour takes some 300 bytes more at most. While it is built it takes up to 150 bytes more for
// each segment. In crowded outlines the way to a segment takes 60 to 190 bytes, O(n) in any case,
// and building takes up to 700.
//
// Source: arc tree (Günther, Efficient structures for geometric data management, 1988; Ballard,
// Strip trees, 1981). A chain of segments in a box that a point is not in crosses the point's ray
// as its ends do. So a node answers for all of its segments unless its box surrounds the point. A
// cell of the grid has the number that is left of all segments that cross it. Each of these lies in
// a strip, whose side tells the rest.

#ifndef TRAMMEL_PREPAREDOUTLINE_H
#define TRAMMEL_PREPAREDOUTLINE_H

#include "CFPolygonRef.h"
#include "CPath.h"
#include "FillRule.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TrammelExport.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace trammel {

/// An outline's segments, arranged for questions about points.
class TRAMMEL_API PreparedOutline {
public:
    // Create

    /// Of an empty outline: it winds around nothing.
    PreparedOutline() = default;
    /// Takes the contours of `path`. O(n), and O(c log c) for c contours. Throws std::bad_alloc,
    /// also for 2^31 points or more.
    explicit PreparedOutline(CPath const& path);
    /// Takes the closed polygon, whether it is marked as closed or not. Cost and exceptions as
    /// above.
    explicit PreparedOutline(TPolygon<double> const& polygon);
    /// Takes the closed handle polygon; a null reference is an empty outline. Cost and exceptions
    /// as above.
    explicit PreparedOutline(CFPolygonRef const& polygon);
    /// Takes the closed ring of these vertices. Cost and exceptions as above.
    explicit PreparedOutline(std::vector<TPoint<double>> const& ring);

    // Query

    /// Returns what trammel::WindingNumber returns for the outline, for every `p`: 0 when a
    /// coordinate of `p` is NaN or infinite.
    ///
    /// O(log n + k), where k counts the boxes that hold `p`: of single segments, of eight segments
    /// in a row, of 64 and so on. It is small where an outline does not run to and fro past itself.
    /// Where it is more than six on average over the outline's box, a grid takes the tree's place,
    /// and k counts the segments in the point's cell. There are at most two cells for each segment,
    /// and the cells hold each segment about twelve times. So k stays small for spirals, stars and
    /// upright combs. Where most segments are as large as the outline it is a tenth of n or so, and
    /// a query compares eight of them at once.
    ///
    /// A crowd that is small beside the outline's box has no grid. There a query takes up to about
    /// twice as long as WindingNumber. So it does in a box that is a thousand times as long as
    /// wide, or far smaller than its distance from the origin.
    int WindingNumber(TPoint<double> const& p) const noexcept;
    /// Stores WindingNumber(points[i]) in windings[i], for each i below `count`. The arrays must
    /// not overlap; with a `count` of 0 they may be null.
    void WindingNumbers(TPoint<double> const* points, std::size_t count,
                        int* windings) const noexcept;

    /// True when `p` lies in the region that the outline bounds by `rule`. A point on the outline
    /// is on either side. Cost as for WindingNumber.
    bool Contains(TPoint<double> const& p, FillRule rule) const noexcept;
    /// Stores Contains(points[i], rule) in inside[i], for each i below `count`. The arrays must not
    /// overlap; with a `count` of 0 they may be null.
    void Contains(TPoint<double> const* points, std::size_t count, FillRule rule,
                  bool* inside) const noexcept;

    /// Returns the bytes that the outline's segments take. Each copy counts the bytes that it
    /// shares. 0 for an outline without segments, and for an object that was moved from.
    std::size_t MemorySize() const noexcept;

private:
    struct Index;

    std::shared_ptr<Index const> mIndex; // null: no segments
};

static_assert(sizeof(PreparedOutline) == sizeof(std::shared_ptr<void>));

} // namespace trammel

#endif
