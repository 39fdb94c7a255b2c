// SPDX-License-Identifier: MIT

#include "CBezier.h"

#include "CMatrix3x3.h"
#include "CurveCounters_p.h"
#include "Flatness_p.h"
#include "Halve_p.h"

#include <algorithm>

alignas(trammel_detail::kCounterLine) std::int32_t gCount = 0;
alignas(trammel_detail::kCounterLine) std::int32_t maxCount = 0;

double CBezier::mMaxError = 1.0;
std::int16_t CBezier::mRecursionLimit = 15;
alignas(trammel_detail::kCounterLine) std::int32_t CBezier::mCount = 0;

namespace {

/// Changes each of the four points by change(point).
template <class Do> CBezier& Change(CBezier& curve, Do const& change) {
    change(curve.P0);
    change(curve.P1);
    change(curve.P2);
    change(curve.P3);
    return curve;
}

} // namespace

double CBezier::SetCurveError(double e) {
    double const old = mMaxError;
    mMaxError = e;
    return old;
}

bool CBezier::Flat(double tolerance) const { return tolerance >= trammel_detail::Deviation(*this); }

TPoint<double> CBezier::Divide(CBezier& left, CBezier& right) const {
    return trammel_detail::Halve(*this, left, right);
}

TPoint<double> CBezier::Divide(CBezier& left, CBezier& right, double t) const {
    TPoint<double> const a = P0 + (P1 - P0) * t;
    TPoint<double> const b = P1 + (P2 - P1) * t;
    TPoint<double> const c = P2 + (P3 - P2) * t;
    TPoint<double> const d = a + (b - a) * t;
    TPoint<double> const e = b + (c - b) * t;
    TPoint<double> const split = d + (e - d) * t;
    CBezier const rightHalf(split, e, c, P3);
    left.Set(P0, a, d, split);
    right = rightHalf;
    return split;
}

TPoint<double> CBezier::Divide(CBezier& left, CBezier& right, TPoint<double> const& pt) const {
    return Divide(left, right, FindTValue(pt, 0.0, 0.0, 1.0));
}

void CBezier::GetTRange(double t0, double t1, CBezier& out) const {
    CBezier scrap;
    CBezier rest(*this);
    if (t0 > 0.0) {
        Divide(scrap, rest, std::min(1.0, t0));
    }
    if (1.0 > t1) {
        rest.Divide(out, scrap, std::max(0.0, (t1 - t0) / (1.0 - t0)));
    } else {
        out = rest;
    }
}

CBezier& CBezier::operator+=(TPoint<double> const& p) {
    return Change(*this, [by = p](TPoint<double>& point) { point += by; });
}

CBezier& CBezier::operator-=(TPoint<double> const& p) {
    return Change(*this, [by = p](TPoint<double>& point) { point -= by; });
}

CBezier& CBezier::operator*=(TPoint<double> const& p) {
    return Change(*this, [by = p](TPoint<double>& point) { point *= by; });
}

CBezier& CBezier::operator/=(TPoint<double> const& p) {
    return Change(*this, [by = p](TPoint<double>& point) { point /= by; });
}

CBezier& CBezier::operator*=(double s) {
    return Change(*this, [s](TPoint<double>& point) { point *= s; });
}

CBezier& CBezier::operator/=(double s) {
    return Change(*this, [s](TPoint<double>& point) { point /= s; });
}

CBezier& CBezier::Rotate(double angle) {
    return Change(*this, [angle](TPoint<double>& point) { point.Rotate(angle); });
}

CBezier& CBezier::Rotate(double angle, TPoint<double> const& center) {
    return Change(*this, [angle, about = center](TPoint<double>& p) { p.Rotate(angle, about); });
}

CBezier& CBezier::Transform(CMatrix3x3 const& m) {
    return Change(*this, [&m](TPoint<double>& point) { point.Transform(m); });
}
