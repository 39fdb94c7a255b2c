// SPDX-License-Identifier: MIT

#include "HandleFit_p.h"

#include <algorithm>
#include <cmath>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// Handles of a third of the chord belong to a straight line at an even pace.
constexpr double kEven = 1.0 / 3.0;
/// Longer handles belong to loops, into which no stroke is fitted.
constexpr double kLongest = 4.0;
/// Flat arcs with handles of a third are double roots, to which each step goes half of the way.
constexpr int kMostSteps = 24;
/// After these, two steps shorten a step to its half, or there is no solution near by.
constexpr int kFreeSteps = 6;
/// Newton's method has arrived: the lengths are right beyond what a fit can tell.
constexpr double kArrived = 1e-5;
/// A step is at most so long, so that a first step from far off does not leave the range.
constexpr double kLongestStep = 0.5;

bool IsUsable(double length) { return length > 0.0 && length <= kLongest; }

/// Newton's method starts from equal lengths, one of them multiplied by it and the other divided.
constexpr double kUneven = 1.25;
/// Solutions nearer to each other are one.
constexpr double kSame = 1e-4;

/// The equal lengths that have the area, where u and w have the cross product, and both
/// v-coordinates the sum; a third of the chord where there are none.
double EqualLengths(double cross, double sum, double area) {
    double const a = 0.15 * cross;
    double const b = -0.3 * sum;
    double const root = std::sqrt(b * b + 4.0 * a * area); // NaN without solution
    // a x² + b x - area = 0, in the form that cancels nothing
    double const q = -0.5 * (b + std::copysign(root, b));
    double const first = -area / q;
    double const second = q / a;
    double const low = IsUsable(first) ? first : kLongest * 2.0;
    double const high = IsUsable(second) ? second : kLongest * 2.0;
    double const length = std::min(low, high);
    return length <= kLongest ? length : kEven;
}

} // namespace

void FanMoments::AddCurve(Cubic const& c) {
    // The integrands are of degree 7 at most, which Gauss' formula of four nodes integrates
    // exactly.
    struct Node {
        double t;
        double weight;
    };
    static constexpr Node kNodes[] = {
        {0.5 - 0.5 * 0.86113631159405257522, 0.5 * 0.34785484513745385737},
        {0.5 - 0.5 * 0.33998104358485626480, 0.5 * 0.65214515486254614263},
        {0.5 + 0.5 * 0.33998104358485626480, 0.5 * 0.65214515486254614263},
        {0.5 + 0.5 * 0.86113631159405257522, 0.5 * 0.34785484513745385737},
    };
    for (Node const& node : kNodes) {
        CubicPlace const place = PlaceAt(c, node.t);
        double const fan = Cross(place.point, place.first) * (3.0 * node.weight);
        area += fan * 0.5;
        moment += place.point * (fan / 3.0);
    }
}

HandleFit::HandleFit(Pt const& chord, Pt const& u, Pt const& w, FanMoments const& wanted)
    : mCross(Cross(u, w)) {
    double const length = std::sqrt(Square(chord));
    Pt const e = chord / length;
    mUx = Dot(u, e);
    mUy = Cross(e, u);
    mWx = Dot(w, e);
    mWy = Cross(e, w);
    mArea = wanted.area / (length * length);
    mMoment = Dot(wanted.moment, e) / length / (length * length);
    mEqual = EqualLengths(mCross, mUy + mWy, mArea);
}

bool HandleFit::Next(HandleLengths& lengths) {
    switch (mAttempt++) {
    case 0:
        if (Solve({mEqual * kUneven, mEqual / kUneven}, mFirst)) {
            lengths = mFirst;
            return true;
        }
        mAttempt = 2;
        [[fallthrough]];
    case 1:
        if (Solve({mEqual / kUneven, mEqual * kUneven}, lengths) &&
            std::abs(lengths.start - mFirst.start) > kSame) {
            mAttempt = 2;
            return true;
        }
        mAttempt = 3;
        [[fallthrough]];
    case 2:
        mAttempt = 3;
        lengths = {mEqual, mEqual};
        return true;
    default:
        return false;
    }
}

bool HandleFit::Solve(HandleLengths start, HandleLengths& lengths) const {
    double x = start.start;
    double y = start.end;
    double earlier = HUGE_VAL; // the steps before
    double before = HUGE_VAL;
    for (int i = 0; i < kMostSteps; ++i) {
        // The integrals of the cubic, as polynomials of both lengths, and their derivatives
        double const k = 9.0 / 280.0 * mCross;
        double const xx = k * y * mUx - 3.0 / 56.0 * mUx * mUy;
        double const mixed = 9.0 / 280.0 * mUx * mWy - 33.0 / 280.0 * mUy * mWx;
        double const x1 = (k * mWx * y + mixed) * y - 17.0 / 140.0 * mUy;
        double const y1 = 3.0 / 56.0 * mWx * mWy * y + 5.0 / 28.0 * mWy;
        double const da = 0.15 * x * y * mCross - 0.3 * (x * mUy + y * mWy) - mArea;
        double const dm = (xx * x + x1) * x - y1 * y - mMoment;
        double const ax = 0.15 * y * mCross - 0.3 * mUy;
        double const ay = 0.15 * x * mCross - 0.3 * mWy;
        double const mx = 2.0 * xx * x + x1;
        double const my = k * mUx * x * x + (2.0 * k * mWx * y + mixed) * x -
                          3.0 / 28.0 * mWx * mWy * y - 5.0 / 28.0 * mWy;
        double const determinant = ax * my - ay * mx;
        double stepX = (da * my - dm * ay) / determinant;
        double stepY = (dm * ax - da * mx) / determinant;
        double const longest = std::max(std::abs(stepX), std::abs(stepY));
        if (!std::isfinite(longest)) {
            return false;
        }
        if (i >= kFreeSteps && longest > 0.5 * earlier) {
            return false;
        }
        earlier = before;
        before = longest;
        if (longest > kLongestStep) {
            stepX *= kLongestStep / longest;
            stepY *= kLongestStep / longest;
        }
        x -= stepX;
        y -= stepY;
        if (longest < kArrived) {
            break;
        }
    }
    lengths = {x, y};
    return IsUsable(x) && IsUsable(y);
}

} // namespace trammel_detail
