// SPDX-License-Identifier: MIT

// PathMeasure: an outline measured once, for many questions about it.
//
// CPath keeps no lengths: each of its measuring calls measures every curve again. A PathMeasure is
// made from a path once and is independent of it from then on. It gives the path's answers to the
// last bit, in a time that hardly depends on the outline's size.
//
// Choose it when the same outline is asked more than once or twice: for text or marks along it, for
// an animation, or to follow the mouse. Choose CPath's own calls for a single question, and while
// the outline changes.
//
// Lengths are in coordinate units, fractions t of the length go from 0 to 1 (see CPath). A
// PathMeasure answers the same questions by length instead of fraction, too. It also tells the
// direction and the element at a place, the distance alone, and many places in one call.
//
// Memory: about 200 bytes for each segment and 24 bytes for each point of a curve's flattening at
// 0.001. A curve of a font at 100 units to the em has some ten points, a curve 1000 units across
// some hundreds. The points of a curve that has more than 1024 are not kept, so a question that
// ends on it costs its flattening. Copies share the memory and cost nothing; the last copy frees
// it.
//
// The answers agree as long as the depth of subdivision (CBezier::mRecursionLimit) is the one that
// was set when the PathMeasure was made.
//
// Threads may ask one PathMeasure, and copies of it, at the same time. Memory exhaustion is
// std::bad_alloc.

#ifndef TRAMMEL_PATHMEASURE_H
#define TRAMMEL_PATHMEASURE_H

#include "CPath.h"
#include "TPoint.h"
#include "TrammelExport.h"

#include <cstddef>
#include <limits>
#include <memory>

namespace trammel_detail {
class MeasuredOutline;
}

namespace trammel {

/// The lengths of an outline and what answers questions by them.
class TRAMMEL_API PathMeasure {
public:
    /// The element of a place that lies on none.
    static constexpr std::size_t kNoElement = static_cast<std::size_t>(-1);

    /// A place on the outline.
    struct Place {
        TPoint<double> point; ///< as TPt gives it
        /// The direction in which the outline runs there, of length 1.
        ///
        /// - At a corner it is the direction of the segment that ends there.
        /// - At a cusp inside a curve the curve goes on in this direction.
        /// - Where a control point lies on its end, the curve leaves or arrives in this direction.
        /// - It is (0, 0) on a segment that is a mere point and where there is no element.
        /// - It is NaN where coordinates are NaN, infinite or so large that differences overflow.
        TPoint<double> direction;
        /// The index in CPath::mCtls of the line, curve or close on which the place lies, or
        /// kNoElement where TPt gives the start of the last subpath.
        std::size_t element = kNoElement;
        /// The parameter on that element: of TLine::TPt, or of CBezier::TPt.
        double parameter = 0.0;
    };

    /// The place nearest to a point.
    struct Nearest {
        double t = 0.0;      ///< the fraction of the length, as FindTValue gives it
        double length = 0.0; ///< the length from the start to there
        /// From the point to the place; infinite where there is none.
        double distance = std::numeric_limits<double>::infinity();
        TPoint<double> point;             ///< the place; (0, 0) where there is none
        std::size_t element = kNoElement; ///< as in Place; kNoElement where there is none
        double parameter = 0.0;           ///< as in Place
    };

    // Create

    /// Measures `path`. O(n) and the flattening of every curve; the time of about two of the path's
    /// own measuring calls.
    explicit PathMeasure(CPath const& path);
    // No move: what is left behind would be no outline.
    PathMeasure(PathMeasure const&) = default;
    PathMeasure& operator=(PathMeasure const&) = default;
    ~PathMeasure() = default;

    // Measure. Each place costs O(log n), where n is the number of segments, and one
    // CBezier::FindTValue on a curve.

    /// The total length: CPath::Length. O(1).
    double Length() const;

    /// The point at fraction `t` of the length: CPath::TPt, also for t outside of [0, 1], NaN and
    /// outlines without length.
    TPoint<double> TPt(double t) const;
    /// The point at `length` from the start. TPt(t) is PtAtLength(t * Length()): a length of 0 or
    /// less is found on the first segment (extended backward), one above the total, and NaN, gives
    /// the start of the last subpath.
    TPoint<double> PtAtLength(double length) const;

    /// The place at fraction `t` of the length, its point being TPt(t).
    Place At(double t) const;
    /// The place at `length` from the start, its point being PtAtLength(length).
    Place AtLength(double length) const;

    /// Stores the points at `count` fractions; out[i] is TPt(t[i]).
    ///
    /// The fractions may come in any order. While they do not decrease, the whole outline is not
    /// searched for each: all together cost O(n + count) at most. Each decrease costs O(log n)
    /// more.
    void TPts(double const* t, std::size_t count, TPoint<double>* out) const;
    /// The same for lengths from the start; out[i] is PtAtLength(lengths[i]).
    void PtsAtLengths(double const* lengths, std::size_t count, TPoint<double>* out) const;
    /// The same for places at fractions; out[i] is At(t[i]).
    void Places(double const* t, std::size_t count, Place* out) const;
    /// The same for places at lengths; out[i] is AtLength(lengths[i]).
    void PlacesAtLengths(double const* lengths, std::size_t count, Place* out) const;

    // Search. A tree has turned boxes around stretches of the outline (Gottschalk, Lin and Manocha,
    // "OBBTree"). The search opens the nearest ones first (branch and bound; Roussopoulos, Kelley
    // and Vincent, "Nearest neighbor queries"). It costs O(log n) as long as few segments are about
    // as near as the nearest one, and O(n) for the middle of a circle.

    /// The fraction of the length at which the outline is nearest to `p`: CPath::FindTValue, ties
    /// included. It is 0 without segments and for a NaN or infinite p. Where the nearest segment is
    /// a curve, the part up to the place is flattened to measure it.
    double FindTValue(TPoint<double> const& p) const;
    /// The place to which FindTValue belongs.
    Nearest FindNearest(TPoint<double> const& p) const;
    /// The distance of that place from `p`, without the cost of its fraction; infinite without
    /// segments and for a NaN or infinite p.
    double Distance(TPoint<double> const& p) const;

    // Cut

    /// Appends the piece from `t0` to `t1` to `out`: CPath::GetTRange. O(log n) and the piece.
    void GetTRange(double t0, double t1, CPath& out) const;
    /// The same for lengths from the start: GetTRange(t0, t1, out) is GetLengthRange(t0 * Length(),
    /// t1 * Length(), out).
    void GetLengthRange(double length0, double length1, CPath& out) const;

private:
    std::shared_ptr<trammel_detail::MeasuredOutline const> mOutline;
};

} // namespace trammel

#endif
