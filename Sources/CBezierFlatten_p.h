// SPDX-License-Identifier: MIT

// The points of a cubic's flattening, for everything that asks for them. Not installed.

#ifndef TRAMMEL_CBEZIERFLATTEN_P_H
#define TRAMMEL_CBEZIERFLATTEN_P_H

#include "CBezier.h"
#include "CurveCounters_p.h"
#include "Flatness_p.h"
#include "Halve_p.h"
#include "Subdivision_p.h"
#include "TPoint.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>

namespace trammel_detail {

/// The number of points for a PointBuffer that shall hold most flattenings at once. It takes 16 KB
/// of stack, where a thread may have no more than 64 KB in all.
inline constexpr int kFlattenRun = 1024;

/// Counts curves that the cubic's generator has come to, from the value `before` of gCount on.
/// maxCount keeps the greatest value that gCount has on the way.
inline void CountCurves(std::int32_t before, std::int64_t curves) {
    typedef std::numeric_limits<std::int32_t> Limits;
    // From the greatest value, the next one is the least.
    std::int64_t const from = before == Limits::max() ? std::int64_t{Limits::min()} - 1 : before;
    auto const greatest =
        static_cast<std::int32_t>(std::min(from + curves, std::int64_t{Limits::max()}));
    SharedCounter const most(maxCount);
    most.Set(std::max(most.Value(), greatest));
    SharedCounter const count(gCount);
    count.Set(before);
    count.Add(curves);
}

/// The cubic's rules for WalkSubdivision where an application's function gets the points.
///
/// The function may look at the settings and counters, and change them. So each curve and each
/// point is counted at once. gCount counts the curves that the walk comes to, and maxCount keeps
/// its greatest value. CBezier::mCount counts the points that are delivered.
class WatchedRules {
public:
    explicit WatchedRules(CBezier const& whole)
        : mSize(FlatnessFilter::SizeOf(whole)), mFilter(mSize, CBezier::mMaxError),
          mCounts(TakesTurnToCount()) {}

    void Enter() const {
        if (mCounts) {
            CountCurves(SharedCounter(gCount).Value(), 1);
        }
    }
    bool Flat(CBezier const& c) {
        // The tolerance is read each time, as the function may change it. It may change the
        // caller's curve as well: `mSize` is all that is needed of it.
        if (mFilter.Tolerance() != CBezier::mMaxError) {
            mFilter = FlatnessFilter(mSize, CBezier::mMaxError);
        }
        return mFilter.Flat(c);
    }
    void Divide(CBezier const& c, CBezier& left, CBezier& right) const { Halve(c, left, right); }
    void Delivered() const {
        if (mCounts) {
            SharedCounter(CBezier::mCount).Add(1);
        }
    }

private:
    double mSize;
    FlatnessFilter mFilter;
    bool mCounts;
};

/// The same rules where nobody looks on. The tolerance is fixed, and the points are counted here.
class UnwatchedRules {
public:
    explicit UnwatchedRules(FlatnessFilter const& filter) : mFilter(filter) {}

    void Enter() const {}
    bool Flat(CBezier const& c) const { return mFilter.Flat(c); }
    void Divide(CBezier const& c, CBezier& left, CBezier& right) const { Halve(c, left, right); }
    void Delivered() { ++mPoints; }

    std::int64_t Points() const { return mPoints; }

private:
    FlatnessFilter mFilter;
    std::int64_t mPoints = 0;
};

/// True when each control point coincides with its end, so that the curve is a straight segment.
inline bool IsStraight(CBezier const& c) { return !(c.P0 != c.P1 || c.P2 != c.P3); }

/// Stores the split points of `curve` in `run` (a PointBuffer), in order of increasing parameter,
/// and returns their number. It counts nothing.
///
/// `error` is the flatness tolerance in coordinate units. The points come out as from
/// GenerateSegment with `force` and the depth CBezier::mRecursionLimit.
template <class Run> std::int64_t StoreSplitPoints(CBezier const& curve, double error, Run& run) {
    int const levels = std::max(CBezier::mRecursionLimit - 1, 1);
    FlatnessFilter const filter(FlatnessFilter::SizeOf(curve), error);
    if (levels <= kMostBlockLevels && filter.Judges()) {
        return DivideInBlocks(curve, filter, levels, run);
    }
    auto deliver = [&run](TPoint<double> const& pt) { run.Add(pt); };
    UnwatchedRules rules(filter);
    WalkSubdivision(curve, rules, deliver, true, CBezier::mRecursionLimit);
    return rules.Points();
}

/// Counts what GenerateSegment counts when it delivers `points` points, from the value `before` of
/// gCount on. Besides the points, these are the curves that it comes to: the whole one, and two for
/// each division.
inline void CountGenerated(std::int32_t before, std::int64_t points) {
    CountCurves(before, 1 + 2 * points);
    SharedCounter(CBezier::mCount).Add(points);
}

/// Stores the points of the flattened curve in `run` (a PointBuffer): both ends and, unless the
/// curve is straight, the split points between them. A point that repeats the one before it stays.
/// It counts nothing. Returns the number of split points, or nothing for a straight curve.
///
/// `error` is the flatness tolerance in coordinate units. Afterwards points may still wait in the
/// buffer, and the caller reads them or calls run.Pass().
template <class Run>
std::optional<std::int64_t> StoreFlattening(CBezier const& curve, double error, Run& run) {
    std::optional<std::int64_t> points;
    run.Add(curve.P0);
    if (!IsStraight(curve)) {
        points = StoreSplitPoints(curve, error, run);
    }
    run.Add(curve.P3);
    return points;
}

/// Does the same as StoreFlattening, and counts. gCount begins at 0.
template <class Run> void FlattenTo(CBezier const& curve, double error, Run& run) {
    std::optional<std::int64_t> const points = StoreFlattening(curve, error, run);
    if (!TakesTurnToCount()) {
        return;
    }
    if (points) {
        CountGenerated(0, *points);
    } else {
        SharedCounter(gCount).Set(0);
    }
}

} // namespace trammel_detail

#endif
