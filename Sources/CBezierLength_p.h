// SPDX-License-Identifier: MIT

// The edges of a cubic's flattening with their lengths, for everything that measures curves. Not
// installed.

#ifndef TRAMMEL_CBEZIERLENGTH_P_H
#define TRAMMEL_CBEZIERLENGTH_P_H

#include "CurveKernels_p.h"
#include "PointBuffer_p.h"
#include "PointMath_p.h"
#include "TPoint.h"

#include <algorithm>

namespace trammel_detail {

/// The tolerance at which a cubic's length is measured, in coordinate units. It is fixed, so that a
/// length does not depend on how finely an application happens to draw.
inline constexpr double kLengthError = 0.001;

/// The step of the parameter to which a fraction of a cubic's length is resolved.
inline constexpr double kPercentTolerance = 0.001;

/// The number of points that are measured at a time. They are few, so that they stay in the cache.
inline constexpr int kLengthRun = 256;

/// Stores the lengths of the `count` - 1 edges between `count` neighbouring points, 1 or more.
inline void LengthsBetween(TPoint<double> const* points, int count, double* lengths) {
    EdgeLengths(Coordinates(points), count - 1, lengths);
}

/// Calls use(some, n, lengths) for the points, at most kLengthRun at a time. `lengths` holds the
/// n - 1 edges between these n points. The edge from one call's last point to the next call's first
/// is not among them: `use` measures it. Not inlined, as the lengths would enlarge the stack frames
/// of deep calls.
template <class Use>
[[gnu::noinline]] void WithLengths(TPoint<double> const* points, int count, Use const& use) {
    double lengths[kLengthRun];
    for (int from = 0; from < count; from += kLengthRun) {
        int const some = std::min(count - from, kLengthRun);
        LengthsBetween(points + from, some, lengths);
        use(points + from, some, lengths);
    }
}

/// Makes edges of the points of a flattening. A PointBuffer hands the points over, some at a time.
///
/// Calls visitor.Start(point) for the first point and visitor.Edge(point, length) for each further
/// one, with the length of the edge that leads to it. A point equal to the one before belongs to no
/// edge and is left out. After Edge() has returned false, the visitor hears of no more edges.
template <class Visitor> class FlattenedEdges {
public:
    explicit FlattenedEdges(Visitor& visitor) : mVisitor(visitor) {}

    /// Takes the next `count` points, 1 or more, with the lengths of the `count` - 1 edges between
    /// them. The edge from the points taken before is measured here.
    void Take(TPoint<double> const* points, int count, double const* lengths) {
        if (mStarted) {
            TakePoint(points[0], Distance(mLast, points[0]));
        } else {
            mStarted = true;
            mLast = points[0];
            mVisitor.Start(mLast);
        }
        for (int i = 1; i < count && !mEnded; ++i) {
            TakePoint(points[i], lengths[i - 1]);
        }
    }
    void operator()(TPoint<double> const* points, int count) {
        WithLengths(points, count,
                    [this](TPoint<double> const* some, int n, double const* between) {
                        Take(some, n, between);
                    });
    }

private:
    void TakePoint(TPoint<double> const& pt, double length) {
        if (!mEnded && pt != mLast) {
            mLast = pt;
            mEnded = !mVisitor.Edge(pt, length);
        }
    }

    Visitor& mVisitor;
    bool mStarted = false;
    bool mEnded = false;
    TPoint<double> mLast;
};

} // namespace trammel_detail

#endif
