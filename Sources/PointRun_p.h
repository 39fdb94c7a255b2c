// SPDX-License-Identifier: MIT

// Loops over the points of both polygon kinds, as they lie in their blocks. Not installed.
//
// A run begins at any address: a handle polygon's points are misaligned for doubles. Results are
// those of the plain loops over the points, bit for bit and whatever the points are; only the order
// of work differs. None of this allocates.

#ifndef TRAMMEL_POINTRUN_P_H
#define TRAMMEL_POINTRUN_P_H

#include "CMatrix3x3.h"
#include "TPoint.h"
#include "TRect.h"

#include <cstring>
#include <vector>

namespace trammel_detail {

/// The bytes of a point: v, then h.
inline constexpr long kPointBytes = 16;
static_assert(sizeof(TPoint<double>) == kPointBytes);

/// `count` points that begin at `bytes`; good until their block is resized.
struct PointRun {
    char const* bytes;
    long count; ///< 0 or less: none

    /// The v of point `i`, which must be there.
    double V(long i) const { return Coordinate(kPointBytes * i); }
    /// The h of point `i`, which must be there.
    double H(long i) const { return Coordinate(kPointBytes * i + kPointBytes / 2); }
    /// Point `i`, which must be there.
    TPoint<double> operator[](long i) const { return TPoint<double>(H(i), V(i)); }

private:
    double Coordinate(long offset) const {
        double value;
        std::memcpy(&value, bytes + offset, sizeof value);
        return value;
    }
};

/// Whether an odd number of the run's edges, the one from the last point to the first included, are
/// crossed before the point (h, v) (CrossesBefore). Numbers, as a point that arrives in registers
/// would be written to memory by halves, and the read of the whole would have to wait for that.
bool OddCrossings(PointRun points, double h, double v);

/// The range of v of each few edges of a run, for many questions to one run. Good until the block
/// that the run lies in is resized or written to. Throws std::bad_alloc.
class Heights {
public:
    explicit Heights(PointRun points);
    /// The same as OddCrossings of the run.
    bool OddCrossings(double h, double v) const;

private:
    /// Edges for one range: as many as one word of bits can tell of, halved, as fewer edges have a
    /// smaller range.
    static constexpr long kGroup = 32;
    struct Range {
        double low;
        double high;
    };
    PointRun mPoints;
    std::vector<Range> mRanges;
};

/// The union of the null rectangle with each point in turn, from the first to the last.
TRect<double> UnionForward(PointRun points);
/// The union of the null rectangle with each point in turn, from the last to the first.
TRect<double> UnionBackward(PointRun points);

/// What CMatrix3x3::Transform makes of each of `count` points.
void TransformRun(char* bytes, long count, CMatrix3x3 const& m);
/// What TPoint::Rotate(angle, centre) makes of each of `count` points.
void RotateRun(char* bytes, long count, double angle, TPoint<double> const& centre);
/// Adds `d` to each of `count` points.
void OffsetRun(char* bytes, long count, TPoint<double> const& d);
/// Multiplies h by `sh` and v by `sv` in each of `count` points.
void ScaleRun(char* bytes, long count, double sh, double sv);

} // namespace trammel_detail

#endif
