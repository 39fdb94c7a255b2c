// SPDX-License-Identifier: MIT

#include "CBezier.h"

#include "CBezierFlatten_p.h"
#include "CurveKernels_p.h"
#include "PointBuffer_p.h"
#include "PointMath_p.h"
#include "TLine.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

using trammel_detail::Distance;
using trammel_detail::FlattenTo;
using trammel_detail::kLengthError;
using trammel_detail::PointBuffer;

/// Points of a flattening that are kept at a time: 16 KB of stack, where a thread may have no more
/// than 64 in all.
constexpr int kFlattenRun = 1024;
/// Points of a flattening that are measured at a time; few, so that they stay in the cache.
constexpr int kLengthRun = 256;

/// The lengths of the edges from each point to the next, for `count` points.
void LengthsBetween(TPoint<double> const* points, int count, double* lengths) {
    trammel_detail::EdgeLengths(trammel_detail::Coordinates(points), count - 1, lengths);
}

/// Calls use(points, count, lengths) for the points, some at a time, with the lengths of the edges
/// between them. Not inlined, as the lengths would enlarge the frames of deep calls.
template <class Use>
[[gnu::noinline]] void WithLengths(TPoint<double> const* points, int count, Use const& use) {
    double lengths[kLengthRun];
    for (int from = 0; from < count; from += kLengthRun) {
        int const some = std::min(count - from, kLengthRun);
        LengthsBetween(points + from, some, lengths);
        use(points + from, some, lengths);
    }
}

/// The sum of the lengths of a flattening's edges, as its points come.
class LengthOfRun {
public:
    double Total() const { return mTotal; }

    /// Adds `count` points, with the lengths of the edges between them.
    void Add(TPoint<double> const* points, int count, double const* lengths) {
        // A point equal to the one before is none of the flattened curve's: its edge of length 0
        // leaves the sum as it is, so that it need not be looked for, but where both are infinite.
        double sum = mTotal;
        if (mStarted) {
            sum += Distance(mLast, points[0]);
        }
        for (int i = 0; i < count - 1; ++i) {
            sum += lengths[i];
        }
        if (std::isnan(sum)) {
            TPoint<double> last = mStarted ? mLast : points[0];
            for (int i = 0; i < count; ++i) {
                if (points[i] != last) {
                    mTotal += Distance(last, points[i]);
                    last = points[i];
                }
            }
        } else {
            mTotal = sum;
        }
        mLast = points[count - 1];
        mStarted = true;
    }
    void operator()(TPoint<double> const* points, int count) {
        WithLengths(points, count,
                    [this](TPoint<double> const* some, int n, double const* between) {
                        Add(some, n, between);
                    });
    }

private:
    double mTotal = 0.0;
    bool mStarted = false;
    TPoint<double> mLast;
};

/// Finds the point at a distance along a flattening, as its points and edges come.
class PointAtDistance {
public:
    explicit PointAtDistance(double target) : mTarget(target) {}

    /// The point reached, or the last one where the distance lies beyond it or is NaN.
    TPoint<double> Pt() const { return mFound ? mPt : mLast; }

    /// Takes `count` points, with the lengths of the edges between them.
    void Take(TPoint<double> const* points, int count, double const* lengths) {
        if (!mStarted) {
            mStarted = true;
            mLast = points[0];
        } else {
            TakeEdge(points[0], Distance(mLast, points[0]));
        }
        for (int i = 0; i < count - 1 && !mFound; ++i) {
            TakeEdge(points[i + 1], lengths[i]);
        }
    }
    void operator()(TPoint<double> const* points, int count) {
        WithLengths(points, count,
                    [this](TPoint<double> const* some, int n, double const* between) {
                        Take(some, n, between);
                    });
    }

private:
    // A point equal to the one before is none of the flattened curve's.
    void TakeEdge(TPoint<double> const& pt, double length) {
        if (mFound || !(pt != mLast)) {
            return;
        }
        double const before = mSum;
        mSum += length;
        if (mSum >= mTarget) {
            mFound = true;
            mPt = TLine<double>(mLast, pt).TPt((mTarget - before) / length);
        } else {
            mLast = pt;
        }
    }

    double mTarget;
    double mSum = 0.0;
    bool mStarted = false;
    bool mFound = false;
    TPoint<double> mLast;
    TPoint<double> mPt;
};

/// Finds the point at `fraction` of the length of the curve's flattening, P0 and P3 for 0 and 1, if
/// the points can all be kept; if not, finds the length at which it is. Returns whether it has the
/// point. Not inlined, nor is its counterpart: their buffers never share the stack.
[[gnu::noinline]] bool FindFlattenedPt(CBezier const& curve, double fraction, TPoint<double>& pt,
                                       double& target) {
    LengthOfRun length;
    bool allAtOnce = true;
    auto measure = [&](TPoint<double> const* points, int count) {
        allAtOnce = false;
        length(points, count);
    };
    PointBuffer<kFlattenRun, decltype(measure)> run(measure);
    FlattenTo(curve, kLengthError, run);
    if (fraction == 0.0) {
        pt = curve.P0;
        return true;
    }
    if (fraction == 1.0) {
        pt = curve.P3;
        return true;
    }
    if (allAtOnce) {
        double lengths[kFlattenRun];
        LengthsBetween(run.Points(), run.Count(), lengths);
        length.Add(run.Points(), run.Count(), lengths);
        PointAtDistance find(fraction * length.Total());
        find.Take(run.Points(), run.Count(), lengths);
        pt = find.Pt();
        return true;
    }
    run.Pass();
    target = fraction * length.Total();
    return false;
}

/// The point at the length `target` of the curve's flattening, which is not counted again.
[[gnu::noinline]] TPoint<double> FlattenedPtAt(CBezier const& curve, double target) {
    PointAtDistance find(target);
    PointBuffer<kLengthRun, PointAtDistance> run(find);
    std::int32_t const counters[] = {CBezier::mCount, gCount, maxCount};
    FlattenTo(curve, kLengthError, run);
    run.Pass();
    CBezier::mCount = counters[0];
    gCount = counters[1];
    maxCount = counters[2];
    return find.Pt();
}

/// The point at `fraction` of the length of the curve's flattening: P0 and P3 for 0 and 1.
TPoint<double> FlattenedPt(CBezier const& curve, double fraction) {
    TPoint<double> pt;
    double target = 0.0;
    return FindFlattenedPt(curve, fraction, pt, target) ? pt : FlattenedPtAt(curve, target);
}

} // namespace

double CBezier::Length() const {
    LengthOfRun length;
    PointBuffer<kLengthRun, LengthOfRun> run(length);
    FlattenTo(*this, kLengthError, run);
    run.Pass();
    return length.Total();
}

double CBezier::PercentT(double fraction) const {
    return FindTValue(FlattenedPt(*this, fraction), trammel_detail::kPercentTolerance, 0.0, 1.0);
}

double CBezier::TPercent(double t) const {
    CBezier left;
    CBezier right;
    Divide(left, right, t);
    double const part = left.Length();
    return part / Length();
}
