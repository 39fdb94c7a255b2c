// SPDX-License-Identifier: MIT

#include "TLine.h"

template <class T> double TLine<T>::CosTheta(TLine const& other) const {
    TPoint<T> const d = Delta();
    TPoint<T> const e = other.Delta();
    double const c =
        (d.h * e.h + d.v * e.v) / std::sqrt((d.h * d.h + d.v * d.v) * (e.h * e.h + e.v * e.v));
    if (trammel_detail::kParallelCosine >= std::abs(c - 1.0)) {
        return 1.0;
    }
    if (trammel_detail::kParallelCosine >= std::abs(1.0 + c)) {
        return -1.0;
    }
    return c;
}

template <class T> bool TLine<T>::HitTest(TPoint<T> const& p, double tolerance) const {
    TRect<T> reach(mStart, mEnd);
    reach.Outset(tolerance, tolerance);
    if (!reach.Contains(p)) {
        return false;
    }
    TPoint<T> const d = Delta();
    if (tolerance > std::abs(d.h) || tolerance > std::abs(d.v)) {
        return true; // nearly vertical or horizontal: the box is test enough
    }
    double const m = d.Slope();
    TPoint<T> const q = p - mStart;
    return tolerance >= std::abs(q.h * m - q.v) || tolerance >= std::abs(q.v / m - q.h);
}

template <class T> bool TLine<T>::Intersects(TLine const& other, TPoint<T>& where) const {
    if (mStart == mEnd || other.mStart == other.mEnd) {
        return false;
    }
    if (std::abs(CosTheta(other)) == 1.0) {
        return false;
    }
    if (Delta().h == 0.0) {
        other.YIntersect(mEnd.h, where);
    } else if (other.Delta().h == 0.0) {
        YIntersect(other.mEnd.h, where);
    } else {
        double const m1 = Slope();
        double const b1 = mStart.v - m1 * mStart.h;
        double const m2 = other.Slope();
        double const b2 = other.mStart.v - m2 * other.mStart.h;
        where.Set((b2 - b1) / (m1 - m2), (b2 * m1 - b1 * m2) / (m1 - m2));
    }
    return true;
}

template <class T> bool TLine<T>::SegmentsIntersect(TLine const& other, TPoint<T>& where) const {
    // The boxes come first: `where` may be a point of either segment.
    TRect<T> box = Bounds();
    TRect<T> otherBox = other.Bounds();
    TPoint<T> crossing;
    if (!Intersects(other, crossing)) {
        return false;
    }
    where = crossing;
    box.Outset(trammel_detail::kSegmentSlack);
    otherBox.Outset(trammel_detail::kSegmentSlack);
    return box.Contains(crossing) && otherBox.Contains(crossing);
}

template struct TLine<double>;
