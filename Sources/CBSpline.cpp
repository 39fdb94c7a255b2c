// SPDX-License-Identifier: MIT

#include "CBSpline.h"

#include "CurveErrorScope_p.h"
#include "Integers.h"
#include "Subdivision_p.h"
#include "TPoly.h"
#include "UScalar.h"

#include <cmath>

double CBSpline::mMaxError = 2.0;
std::int16_t CBSpline::mRecursionLimit = 15;
std::int32_t CBSpline::mCount = 0;

namespace {

/// The quadratic's rules for the walk of its subdivision tree.
struct SplineRules {
    void Enter() const {}
    bool Flat(CBSpline const& c) const { return c.Flat(CBSpline::mMaxError); }
    void Divide(CBSpline const& c, CBSpline& left, CBSpline& right) const { c.Divide(left, right); }
    void Delivered() const { CBSpline::mCount = trammel_detail::WrappingAdd(CBSpline::mCount, 1); }
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
    SplineRules rules;
    auto deliver = [proc, data](TPoint<double> const& pt) { proc(pt, data); };
    trammel_detail::WalkSubdivision(*this, rules, deliver, false, depth);
}

void CBSpline::AddSegmentToPoly(TPolygon<double>& poly, double error) const {
    trammel_detail::CurveErrorScope<CBSpline> const scope(error);
    AddPtToPoly(P0, poly);
    if (P0 != P1 || P1 != P2) {
        SplineRules rules;
        auto deliver = [&poly](TPoint<double> const& pt) { AddPtToPoly(pt, poly); };
        trammel_detail::WalkSubdivision(*this, rules, deliver, false, mRecursionLimit);
    }
    AddPtToPoly(P2, poly);
}

void CBSpline::AddPtToPoly(TPoint<double> const& pt, TPolygon<double>& poly) {
    poly.AppendUnique(pt);
}
