// SPDX-License-Identifier: MIT

#include "CBSpline.h"

#include "CurveCounters_p.h"
#include "Subdivision_p.h"
#include "TPoly.h"
#include "UScalar.h"

#include <cmath>
#include <cstdint>

double CBSpline::mMaxError = 2.0;
std::int16_t CBSpline::mRecursionLimit = 15;
alignas(trammel_detail::kCounterLine) std::int32_t CBSpline::mCount = 0;

namespace {

/// The quadratic's rules for WalkSubdivision.
struct SplineRules {
    void Enter() const {}
    void Divide(CBSpline const& c, CBSpline& left, CBSpline& right) const { c.Divide(left, right); }
};

/// The rules where an application's function gets the points. It may change the tolerance, and look
/// at the counter.
struct WatchedSplineRules : SplineRules {
    bool counts = trammel_detail::TakesTurnToCount();

    bool Flat(CBSpline const& c) const { return c.Flat(CBSpline::mMaxError); }
    void Delivered() const {
        if (counts) {
            trammel_detail::SharedCounter(CBSpline::mCount).Add(1);
        }
    }
};

/// The rules where nobody looks on.
struct UnwatchedSplineRules : SplineRules {
    double error;
    std::int64_t points = 0;

    explicit UnwatchedSplineRules(double tolerance) : error(tolerance) {}
    bool Flat(CBSpline const& c) const { return c.Flat(error); }
    void Delivered() { ++points; }
};

} // namespace

TPoint<double> CBSpline::Divide(CBSpline& left, CBSpline& right) const {
    TPoint<double> const a = MidPt(P0, P1);
    TPoint<double> const b = MidPt(P1, P2);
    TPoint<double> const split = MidPt(a, b);
    CBSpline const rightHalf(split, b, P2);
    left.ISet(P0, a, split);
    right = rightHalf;
    return split;
}

bool CBSpline::Flat(double tolerance) const {
    if (P2 == P0) {
        return true;
    }
    TPoint<double> const d = P1 - P0;
    double const m = (P2 - P0).Slope();
    return tolerance >= std::abs(d.h * m - d.v) || tolerance >= std::abs(d.v / m - d.h);
}

void CBSpline::GenerateSegment(PointDataProc proc, void* data, short depth) const {
    WatchedSplineRules rules;
    auto deliver = [proc, data](TPoint<double> const& pt) { proc(pt, data); };
    trammel_detail::WalkSubdivision(*this, rules, deliver, false, depth);
}

void CBSpline::AddSegmentToPoly(TPolygon<double>& poly, double error) const {
    AddPtToPoly(P0, poly);
    if (P0 != P1 || P1 != P2) {
        UnwatchedSplineRules rules(error);
        auto deliver = [&poly](TPoint<double> const& pt) { AddPtToPoly(pt, poly); };
        trammel_detail::WalkSubdivision(*this, rules, deliver, false, mRecursionLimit);
        if (trammel_detail::TakesTurnToCount()) {
            trammel_detail::SharedCounter(mCount).Add(rules.points);
        }
    }
    AddPtToPoly(P2, poly);
}

void CBSpline::AddPtToPoly(TPoint<double> const& pt, TPolygon<double>& poly) {
    poly.AppendUnique(pt);
}
