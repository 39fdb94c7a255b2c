// SPDX-License-Identifier: MIT

// Loops over the points of both polygon kinds, as they lie in their blocks. Not installed.
//
// A run begins at any address: a handle polygon's points are misaligned for doubles. Results have
// the bits of the plain loops over the points, whatever the points are. Only the order of work
// differs. Only Heights allocates.

#ifndef TRAMMEL_POINTRUN_P_H
#define TRAMMEL_POINTRUN_P_H

#include "CMatrix3x3.h"
#include "PointKernels_p.h"
#include "TPoint.h"
#include "TRect.h"

#include <cstring>
#include <vector>

namespace trammel_detail {

static_assert(sizeof(TPoint<double>) == kPointBytes);

/// `count` points that begin at `bytes`. Valid until their block is resized.
struct PointRun {
    char const* bytes;
    long count; ///< 0 or less: none

    /// Returns the v of point `i`, which must exist.
    double V(long i) const { return Coordinate(kPointBytes * i); }
    /// Returns the h of point `i`, which must exist.
    double H(long i) const { return Coordinate(kPointBytes * i + kPointBytes / 2); }
    /// Returns point `i`, which must exist.
    TPoint<double> operator[](long i) const { return TPoint<double>(H(i), V(i)); }

private:
    double Coordinate(long offset) const {
        double value;
        std::memcpy(&value, bytes + offset, sizeof value);
        return value;
    }
};

/// True when an odd number of the run's edges are crossed before the point (h, v) (CrossesBefore).
/// The edge from the last point to the first counts as well. The point comes as two numbers: as a
/// point it would be written to memory by halves, and reading the whole would wait for that.
bool OddCrossings(PointRun points, double h, double v);

/// A run prepared for many questions by the least and greatest v of each group of its edges. It
/// answers until the run's block is resized or written to. Making it throws std::bad_alloc when
/// memory is short.
class Heights {
public:
    explicit Heights(PointRun points);
    /// Returns what OddCrossings returns for the run.
    bool OddCrossings(double h, double v) const;

private:
    /// The number of edges in a group. One word of bits could hold twice as many, but fewer edges
    /// have a smaller range.
    static constexpr long kGroup = 32;
    struct Range {
        double low;
        double high;
    };
    PointRun mPoints;
    std::vector<Range> mRanges;
};

/// Returns whether both lanes of a point are 0.
[[gnu::always_inline]] inline bool IsOrigin(Double2 const& point) {
    constexpr unsigned kBoth = 3; // the bits of a mask that is set in both lanes
    return (point == 0.0).Bits() == kBoth;
}

/// Returns point `i` of a run, counted from its end where it goes backward.
template <bool kForward> char const* PlaceIn(PointRun points, long i) {
    return points.bytes + kPointBytes * (kForward ? i : points.count - 1 - i);
}

/// Returns how many points at the origin come before all others, but not the last point.
///
/// A null rectangle takes over the next point. So points at the origin are forgotten until another
/// point comes; if none comes, the last one stays, with the signs of its zeros. The first other
/// point is in the rectangle for good, as one of its fields is not 0.
template <bool kForward> long Forgotten(PointRun points);

/// Gives zeros among the bounds the sign that they have in the union of one point after the other.
///
/// The extent takes the points in another order. That shows only where equal values differ, which
/// zeros do. In order, the first zero is kept: it replaced the number before, and no later zero
/// replaces it.
template <bool kForward> void PutFirstZeros(PointRun points, TRect<double>& bounds);

/// Returns the union of the null rectangle with each point in turn, from the first to the last or
/// from the last to the first. What few runs need is not inlined.
template <bool kForward> [[gnu::always_inline]] inline TRect<double> Union(PointRun points) {
    TRect<double> bounds;
    if (points.count <= 0) {
        return bounds;
    }
    bool const origin = IsOrigin(Double2::Load(PlaceIn<kForward>(points, 0)));
    long const start = origin ? Forgotten<kForward>(points) : 0;
    // A NaN in the first point stays, as no number replaces it. Later ones replace nothing.
    char const* const first = PlaceIn<kForward>(points, start);
    ExtentOfPoints(first, kForward ? first : points.bytes, points.count - start, &bounds.top);
    Double2 const low = Double2::Load(&bounds.mCorners[0]);
    Double2 const high = Double2::Load(&bounds.mCorners[1]);
    if (((low == 0.0).Bits() | (high == 0.0).Bits()) != 0) {
        PutFirstZeros<kForward>(points, bounds);
    }
    return bounds;
}

/// Replaces each of `count` points by what CMatrix3x3::Transform makes of it.
void TransformRun(char* bytes, long count, CMatrix3x3 const& m);
/// Replaces each of `count` points by what TPoint::Rotate(angle, centre) makes of it.
void RotateRun(char* bytes, long count, double angle, TPoint<double> const& centre);
/// Adds `d` to each of `count` points.
void OffsetRun(char* bytes, long count, TPoint<double> const& d);
/// Multiplies h by `sh` and v by `sv` in each of `count` points.
void ScaleRun(char* bytes, long count, double sh, double sv);

} // namespace trammel_detail

#endif
