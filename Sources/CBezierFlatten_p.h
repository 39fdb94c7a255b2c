// SPDX-License-Identifier: MIT

// The points of a cubic's flattening, for everything that asks for them. Not installed.

#ifndef TRAMMEL_CBEZIERFLATTEN_P_H
#define TRAMMEL_CBEZIERFLATTEN_P_H

#include "CBezier.h"
#include "CurveErrorScope_p.h"
#include "Flatness_p.h"
#include "Halve_p.h"
#include "Integers.h"
#include "Subdivision_p.h"
#include "TPoint.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace trammel_detail {

/// The number of points for a PointBuffer that shall hold most flattenings at once. It takes 16 KB
/// of stack, where a thread may have no more than 64 KB in all.
inline constexpr int kFlattenRun = 1024;

/// The cubic's rules for WalkSubdivision. gCount counts the curves that the walk comes to, maxCount
/// keeps the greatest value of gCount, and CBezier::mCount counts the points that are delivered.
class BezierRules {
public:
    explicit BezierRules(CBezier const& whole)
        : mSize(FlatnessFilter::SizeOf(whole)), mFilter(mSize, CBezier::mMaxError) {}

    void Enter() const {
        gCount = WrappingAdd(gCount, 1);
        maxCount = std::max(maxCount, gCount);
    }
    bool Flat(CBezier const& c) {
        // The tolerance is read each time, as the callback may change it. The callback may change
        // the caller's curve as well: `mSize` is all that is needed of it.
        if (mFilter.Tolerance() != CBezier::mMaxError) {
            mFilter = FlatnessFilter(mSize, CBezier::mMaxError);
        }
        return mFilter.Flat(c);
    }
    void Divide(CBezier const& c, CBezier& left, CBezier& right) const { Halve(c, left, right); }
    void Delivered() const { CBezier::mCount = WrappingAdd(CBezier::mCount, 1); }

private:
    double mSize;
    FlatnessFilter mFilter;
};

/// Calls deliver(point) for the split points of `curve`. The points, `force` and `depth` are as for
/// CBezier::GenerateSegment; the tolerance is CBezier::mMaxError.
template <class Deliver>
void Generate(CBezier const& curve, Deliver& deliver, bool force, int depth) {
    BezierRules rules(curve);
    WalkSubdivision(curve, rules, deliver, force, depth);
}

/// True when each control point coincides with its end, so that the curve is a straight segment.
inline bool IsStraight(CBezier const& c) { return !(c.P0 != c.P1 || c.P2 != c.P3); }

/// Adds what a walk that delivers `points` points adds to the counters. Besides the points, these
/// are the curves that it comes to: the whole one, and two for each division.
inline void CountGenerated(std::int32_t points) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    std::int32_t const invocations = 1 + 2 * points;
    maxCount = gCount > kMost - invocations ? kMost : std::max(maxCount, gCount + invocations);
    gCount = WrappingAdd(gCount, invocations);
    CBezier::mCount = WrappingAdd(CBezier::mCount, points);
}

/// Stores the split points of `curve` in `run` (a PointBuffer), in order of increasing parameter.
///
/// Points and counters come out as from GenerateSegment with `force` and the depth
/// CBezier::mRecursionLimit. The user of the buffer must not change this depth, the tolerance
/// CBezier::mMaxError or the counters on the way.
template <class Run> void GenerateForced(CBezier const& curve, Run& run) {
    double const tolerance = CBezier::mMaxError;
    int const levels = std::max(CBezier::mRecursionLimit - 1, 1);
    if (levels <= kMostBlockLevels) {
        FlatnessFilter const filter(FlatnessFilter::SizeOf(curve), tolerance);
        if (filter.Judges()) {
            CountGenerated(DivideInBlocks(curve, filter, levels, run));
            return;
        }
    }
    auto deliver = [&run](TPoint<double> const& pt) { run.Add(pt); };
    Generate(curve, deliver, true, CBezier::mRecursionLimit);
}

/// Stores the points of the flattened curve in `run` (a PointBuffer): both ends and, unless the
/// curve is straight, the split points between them. A point that repeats the one before it stays.
///
/// `error` is the flatness tolerance in coordinate units. gCount begins at 0. Afterwards points may
/// still wait in the buffer, and the caller reads them or calls run.Pass().
template <class Run> void FlattenTo(CBezier const& curve, double error, Run& run) {
    gCount = 0;
    CurveErrorScope<CBezier> const scope(error);
    run.Add(curve.P0);
    if (!IsStraight(curve)) {
        GenerateForced(curve, run);
    }
    run.Add(curve.P3);
}

} // namespace trammel_detail

#endif
