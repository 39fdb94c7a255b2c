// SPDX-License-Identifier: MIT

// OutlineMeasure: an outline measured once, right to rounding, for many questions about it.
//
// It answers by length, or by fraction of the length, what PathMeasure answers: which place is
// there, and which place is nearest to a point. PathMeasure gives CPath's results to the last bit,
// which are right to some thousandths. An OutlineMeasure is right to the last digits. Choose it
// wherever places follow each other closely, and wherever lengths are to be right.
//
// Lengths are in coordinate units, fractions of the length go from 0 to 1. A segment's length is
// off by at most 2^-46 of its control polygon's length. The sums add no more than the rounding of
// their result, however many segments there are.
//
// The length up to the place at `length` is `length`, off by at most 2^-42 of the control polygon
// of the segment there, and by 2^-51 of the total length. To its point comes the rounding of
// coordinates, 2^-50 of the greatest one.
//
// Places are continuous and monotone: a greater length never has an earlier place. Lengths on one
// curve that are at least 2^-41 of its control polygon apart, and 2^-51 of the total, have
// different parameters, in order.
//
// Lengths of 0 and less are the start, those of the total and more are the end. The start of a
// segment that follows another one without a gap is the end of that one; see Place.
//
// Subpaths are kept apart: a move adds no length. A close is a line to the subpath's start. A
// segment that follows a close begins a subpath at the last point drawn, as CPath measures it. A
// subpath with a NaN or infinite coordinate is absent.
//
// Memory: 200 to 320 bytes for a curve, and 180 for a line. Copies share it and cost nothing; the
// last copy frees it. Everything is safe from any thread. Only construction and cutting
// allocate, and memory exhaustion is std::bad_alloc.

#ifndef TRAMMEL_OUTLINEMEASURE_H
#define TRAMMEL_OUTLINEMEASURE_H

#include "CPath.h"
#include "TPoint.h"
#include "TrammelExport.h"

#include <cstddef>
#include <limits>
#include <memory>

namespace trammel_detail {
class OutlineLengths;
}

namespace trammel {

/// The lengths of an outline, right to rounding, and what answers questions by them.
class TRAMMEL_API OutlineMeasure {
public:
    /// The element and the subpath of a place that lies on none.
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    /// A place on the outline.
    ///
    /// A place at which one segment ends and another begins belongs to the one that ends. The start
    /// belongs to the first segment that has a length.
    struct Place {
        TPoint<double> point;
        /// The direction in which the outline runs there, of length 1.
        ///
        /// - At a corner it is the direction of the segment that ends there.
        /// - At a cusp inside a curve the curve goes on in this direction.
        /// - Where a control point lies on its end, the curve leaves or arrives in this direction.
        /// - It is (0, 0) where the outline has no length.
        TPoint<double> tangent;
        /// The inverse of the radius of the bend there, in 1/units. Positive where the outline
        /// turns from +h toward +v.
        ///
        /// 0 on lines. Infinite at a cusp, and where a control point lies on its end, unless the
        /// curve runs straight there.
        double curvature = 0.0;
        double length = 0.0; ///< from the start to there
        /// The index in CPath::mCtls of the line, curve or close on which the place lies.
        std::size_t element = kNone;
        double parameter = 0.0; ///< on that element, from 0 to 1: of TLine::TPt or CBezier::TPt
        /// The number of subpaths before the one on which the place lies. Moves, and elements after
        /// a close, begin subpaths; those without segments count as well.
        std::size_t subpath = kNone;
    };

    /// The place nearest to a point.
    struct Nearest {
        /// From the point to the place; infinite where there is none.
        double distance = std::numeric_limits<double>::infinity();
        TPoint<double> point; ///< the place; (0, 0) where there is none
        /// From the start to there. Where a subpath begins behind a gap, AtLength() finds the end
        /// of the subpath before it.
        double length = 0.0;
        double t = 0.0;              ///< the fraction of the length
        std::size_t element = kNone; ///< as in Place
        double parameter = 0.0;      ///< as in Place
        std::size_t subpath = kNone; ///< as in Place
    };

    // Create

    /// Measures `path`. O(n).
    explicit OutlineMeasure(CPath const& path);
    // No move: what is left behind would be no outline.
    OutlineMeasure(OutlineMeasure const&) = default;
    OutlineMeasure& operator=(OutlineMeasure const&) = default;
    ~OutlineMeasure() = default;

    // Measure. Each place costs O(log n) and, on a curve, a few quadratures. NaN instead of a
    // length or fraction gives a point of NaN on no element. Without segments every place is the
    // first move's point, or (0, 0), on no element.

    /// The total length. O(1).
    ///
    /// Infinite where it exceeds the range of double. Of the segment with which the sum does so,
    /// and of all after it, only the first one's start and the outline's end are then found.
    double Length() const noexcept;

    /// The place at fraction `t` of the length: AtLength(t * Length()).
    Place At(double t) const noexcept;
    /// The place at `length` from the start.
    Place AtLength(double length) const noexcept;
    /// The point of that place: At(t).point, without the cost of the rest.
    TPoint<double> TPt(double t) const noexcept;
    /// The same for a length: AtLength(length).point.
    TPoint<double> PtAtLength(double length) const noexcept;

    /// Stores the points at `count` fractions; out[i] is TPt(t[i]).
    ///
    /// The fractions may come in any order. While they do not decrease, the whole outline is not
    /// searched for each: all together cost O(n + count) at most. Each decrease costs O(log n)
    /// more.
    void TPts(double const* t, std::size_t count, TPoint<double>* out) const noexcept;
    /// The same for lengths from the start; out[i] is PtAtLength(lengths[i]).
    void PtsAtLengths(double const* lengths, std::size_t count, TPoint<double>* out) const noexcept;
    /// The same for places at fractions; out[i] is At(t[i]).
    void Places(double const* t, std::size_t count, Place* out) const noexcept;
    /// The same for places at lengths; out[i] is AtLength(lengths[i]).
    void PlacesAtLengths(double const* lengths, std::size_t count, Place* out) const noexcept;

    // Search

    /// The place nearest to `p`. There is none for a NaN or infinite point, and without segments.
    ///
    /// `distance` exceeds the least distance by at most `accuracy` (coordinate units) plus 2^-44 of
    /// the greatest distance of a control point from `p`. An accuracy of 0 or less, and NaN, give
    /// the finest that there is. Of several places as near it is one of them. `length` has
    /// the error that the length of a place has.
    ///
    /// O(log n), also for ragged outlines, as long as few segments are about as near as the nearest
    /// one; O(n) for the middle of a circle. A coarser accuracy takes less time there.
    /// Source: branch and bound in a tree of turned boxes [Gottschalk, Lin and Manocha, OBBTree;
    /// Roussopoulos, Kelley and Vincent, Nearest neighbor queries], and NearestPoint.
    Nearest FindNearest(TPoint<double> const& p, double accuracy = 0.0) const noexcept;
    /// The distance of that place from `p`, without the cost of its length; infinite where there is
    /// none.
    double Distance(TPoint<double> const& p, double accuracy = 0.0) const noexcept;
    /// Stores the places nearest to `count` points; out[i] is FindNearest(points[i], accuracy).
    void FindNearest(TPoint<double> const* points, std::size_t count, Nearest* out,
                     double accuracy = 0.0) const noexcept;

    // Cut

    /// Appends the piece from fraction `t0` to `t1` of the length to `out`: GetLengthRange of
    /// t0 * Length() and t1 * Length().
    void GetTRange(double t0, double t1, CPath& out) const;
    /// Appends the piece between two lengths from the start to `out`.
    ///
    /// It begins with a move, and with another one for each further subpath on which it lies. Its
    /// ends are the points of these lengths, to the last bit; at a gap it begins behind the gap.
    /// Segments between its ends are as they are. A whole subpath that is closed stays closed. Of a
    /// closed subpath that is not whole the closing segment is a line. A subpath without length is
    /// left out.
    ///
    /// Lengths beyond the ends are those of the ends. An empty range, one whose end is before its
    /// start, and NaN append nothing. Memory exhaustion is std::bad_alloc, and `out` is then as it
    /// was. O(log n) and the piece.
    void GetLengthRange(double length0, double length1, CPath& out) const;

private:
    std::shared_ptr<trammel_detail::OutlineLengths const> mOutline;
};

} // namespace trammel

#endif
