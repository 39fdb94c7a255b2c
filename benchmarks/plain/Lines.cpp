// SPDX-License-Identifier: MIT

#include "plain/PlainRecords.h"

#include <algorithm>
#include <cmath>

namespace plain {
namespace {

constexpr double kEpsilon = 0x1p-23;

void PinValueToRange(double lo, double hi, double& value) {
    if (lo > value) {
        value = lo;
    } else if (value > hi) {
        value = hi;
    }
}

} // namespace

Line::Line() = default;
Line::Line(Pt const& a, Pt const& b) : mStart(a), mEnd(b) {}

Pt Line::Delta() const { return mEnd - mStart; }
double Line::Length() const { return Delta().Hypotenuse(); }
double Line::Slope() const { return Delta().Slope(); }
Pt Line::TPt(double t) const { return mStart + Delta() * t; }
Pt Line::MidPt() const { return TPt(0.5); }

Line& Line::Rotate(double angle, Pt const& centre) {
    Pt const c = centre;
    mStart.Rotate(angle, c);
    mEnd.Rotate(angle, c);
    return *this;
}

Line Line::Perpendicular(Pt const& centre) const { return Line(*this).Rotate(pi / 2.0, centre); }

double Line::Dot(Line const& other) const {
    Pt const d = Delta();
    Pt const e = other.Delta();
    return d.h * e.h + d.v * e.v;
}

double Line::CosTheta(Line const& other) const {
    Pt const d = Delta();
    Pt const e = other.Delta();
    double const c =
        (d.h * e.h + d.v * e.v) / std::sqrt((d.h * d.h + d.v * d.v) * (e.h * e.h + e.v * e.v));
    if (1e-15 >= std::abs(c - 1.0)) {
        return 1.0;
    }
    if (1e-15 >= std::abs(1.0 + c)) {
        return -1.0;
    }
    return c;
}

int Line::HalfSpace(Pt const& p) const {
    Line const turned = Perpendicular(mStart);
    return turned.Dot(Line(mStart, p)) > 0.0 ? 1 : -1;
}

Pt Line::PerpendicularPt(Pt const& p) const {
    Pt const d = Delta();
    if (d.h == 0.0) {
        return Pt(mStart.h, p.v);
    }
    if (d.v == 0.0) {
        return Pt(p.h, mStart.v);
    }
    double const m = d.Slope();
    double const n = -1.0 / m;
    double const x = (n * p.h - m * mStart.h - p.v + mStart.v) / (n - m);
    double const y = n * x - n * p.h + p.v;
    return Pt(x, y);
}

Pt Line::PinPtToLineSeg(Pt const& p) const {
    Pt result = p;
    PinValueToRange(std::min(mStart.h, mEnd.h), std::max(mStart.h, mEnd.h), result.h);
    PinValueToRange(std::min(mStart.v, mEnd.v), std::max(mStart.v, mEnd.v), result.v);
    return result;
}

double Line::Distance(Pt const& p) const { return Line(p, PerpendicularPt(p)).Length(); }

double Line::FindTValue(Pt const& p) const {
    Pt const pinned = PinPtToLineSeg(PerpendicularPt(p));
    return Line(mStart, pinned).Length() / Length();
}

bool Line::HitTest(Pt const& p, double tolerance) const {
    Rect reach(mStart, mEnd);
    reach.Outset(tolerance, tolerance);
    if (!reach.Contains(p)) {
        return false;
    }
    Pt const d = Delta();
    if (tolerance > std::abs(d.h)) {
        return true;
    }
    if (tolerance > std::abs(d.v)) {
        return true;
    }
    double const m = d.Slope();
    Pt const q = p - mStart;
    if (tolerance >= std::abs(q.h * m - q.v)) {
        return true;
    }
    return tolerance >= std::abs(q.v / m - q.h);
}

void Line::YIntersect(double x, Pt& where) const {
    double const m = Slope();
    where = Pt(x, m * x + (mStart.v - m * mStart.h));
}

bool Line::Intersects(Line const& other, Pt& where) const {
    if (mStart == mEnd || other.mStart == other.mEnd) {
        return false;
    }
    if (std::abs(CosTheta(other)) == 1.0) {
        return false;
    }
    if (Delta().h == 0.0) {
        other.YIntersect(mEnd.h, where);
        return true;
    }
    if (other.Delta().h == 0.0) {
        YIntersect(other.mEnd.h, where);
        return true;
    }
    double const m1 = Slope();
    double const b1 = mStart.v - m1 * mStart.h;
    double const m2 = other.Slope();
    double const b2 = other.mStart.v - m2 * other.mStart.h;
    where = Pt((b2 - b1) / (m1 - m2), (b2 * m1 - b1 * m2) / (m1 - m2));
    return true;
}

bool Line::SegmentsIntersect(Line const& other, Pt& where) const {
    if (!Intersects(other, where)) {
        return false;
    }
    Rect r1(mStart, mEnd);
    r1.Outset(kEpsilon, kEpsilon);
    Rect r2(other.mStart, other.mEnd);
    r2.Outset(kEpsilon, kEpsilon);
    return r1.Contains(where) && r2.Contains(where);
}

} // namespace plain
