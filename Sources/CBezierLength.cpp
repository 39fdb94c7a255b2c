// SPDX-License-Identifier: MIT

#include "CBezier.h"

#include "CBezierFlatten_p.h"
#include "CBezierLength_p.h"
#include "PointBuffer_p.h"
#include "PointMath_p.h"
#include "TLine.h"

#include <cmath>

namespace {

using trammel_detail::Distance;
using trammel_detail::FlattenedEdges;
using trammel_detail::FlattenTo;
using trammel_detail::kFlattenRun;
using trammel_detail::kLengthError;
using trammel_detail::kLengthRun;
using trammel_detail::PointBuffer;

/// Sums up the lengths of a flattening's edges. A PointBuffer hands its points over.
class LengthOfRun {
public:
    double Total() const { return mTotal; }

    /// Takes the next `count` points, 1 or more, with the lengths of the `count` - 1 edges between
    /// them. The edge from the points taken before is measured here.
    void Take(TPoint<double> const* points, int count, double const* lengths) {
        // A point equal to the one before belongs to no edge. Its length of 0 leaves the sum as it
        // is, so that such points need no search. Only for infinite points this length is NaN.
        double sum = mTotal;
        if (mStarted) {
            sum += Distance(mLast, points[0]);
        }
        for (int i = 0; i < count - 1; ++i) {
            sum += lengths[i];
        }
        mTotal = std::isnan(sum) ? TotalOfEdges(points, count, lengths) : sum;
        mLast = points[count - 1];
        mStarted = true;
    }
    void operator()(TPoint<double> const* points, int count) {
        trammel_detail::WithLengths(points, count,
                                    [this](TPoint<double> const* some, int n,
                                           double const* between) { Take(some, n, between); });
    }

private:
    /// The new total, points equal to the one before left out.
    double TotalOfEdges(TPoint<double> const* points, int count, double const* lengths) const {
        double sum = mTotal;
        if (mStarted && points[0] != mLast) {
            sum += Distance(mLast, points[0]);
        }
        for (int i = 1; i < count; ++i) {
            if (points[i] != points[i - 1]) {
                sum += lengths[i - 1];
            }
        }
        return sum;
    }

    double mTotal = 0.0;
    bool mStarted = false;
    TPoint<double> mLast;
};

/// Finds the point at a distance along a flattening. FlattenedEdges hands its edges over.
class PointAtDistance {
public:
    explicit PointAtDistance(double target) : mTarget(target) {}

    /// The point reached; the last point where the distance lies beyond it or is NaN.
    TPoint<double> Pt() const { return mPt; }

    void Start(TPoint<double> const& pt) { mPt = pt; }
    bool Edge(TPoint<double> const& pt, double length) {
        double const before = mSum;
        mSum += length;
        bool const found = mSum >= mTarget;
        mPt = found ? TLine<double>(mPt, pt).TPt((mTarget - before) / length) : pt;
        return !found;
    }

private:
    double mTarget;
    double mSum = 0.0;
    TPoint<double> mPt;
};

/// Finds the point at `fraction` of the length of the curve's flattening; P0 and P3 for 0 and 1.
/// Returns true and sets `pt` if the buffer holds all points of the flattening. Otherwise sets
/// `target` to the length at which the point is. Neither this function nor its counterpart is
/// inlined, so that their buffers are never on the stack together.
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
        trammel_detail::LengthsBetween(run.Points(), run.Count(), lengths);
        length.Take(run.Points(), run.Count(), lengths);
        PointAtDistance find(fraction * length.Total());
        FlattenedEdges<PointAtDistance>(find).Take(run.Points(), run.Count(), lengths);
        pt = find.Pt();
        return true;
    }
    run.Pass();
    target = fraction * length.Total();
    return false;
}

/// Returns the point at the length `target` of the curve's flattening. It counts nothing, as
/// FindFlattenedPt has counted this flattening.
[[gnu::noinline]] TPoint<double> FlattenedPtAt(CBezier const& curve, double target) {
    PointAtDistance find(target);
    FlattenedEdges<PointAtDistance> edges(find);
    PointBuffer<kLengthRun, FlattenedEdges<PointAtDistance>> run(edges);
    trammel_detail::StoreFlattening(curve, kLengthError, run);
    run.Pass();
    return find.Pt();
}

/// Returns the point at `fraction` of the length of the curve's flattening; P0 and P3 for 0 and 1.
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
