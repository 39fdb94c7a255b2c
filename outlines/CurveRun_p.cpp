// SPDX-License-Identifier: MIT

#include "CurveRun_p.h"

#include "StrokeMatch_p.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// A curve is halved so many times for a proof. Each time takes off three quarters of what the
/// paces of two curves differ by.
constexpr int kMostHalvings = 7;
/// The bound on rounding in sums of a few distances
constexpr double kUp = 1.0 + 0x1p-48;

double Length(Pt const& p) { return std::sqrt(Square(p)); }

Cubic Moved(Cubic const& c, Pt const& anchor) {
    return {c[0] - anchor, c[1] - anchor, c[2] - anchor, c[3] - anchor};
}

/// The greatest distance of two curves at equal parameters: the control points of the difference
/// bound it.
double Difference(Cubic const& a, Cubic const& b) {
    double square = 0.0;
    for (std::size_t i = 0; i < 4; ++i) {
        square = std::max(square, Square(a[i] - b[i]));
    }
    return std::sqrt(square);
}

/// The part between two parameters.
Cubic PartOf(PowerCubic const& c, double t0, double t1) {
    Pt const start = c.Point(t0);
    Pt const end = c.Point(t1);
    double const third = (t1 - t0) / 3.0;
    return {start, start + c.First(t0) * third, end - c.First(t1) * third, end};
}

/// A parameter from `low` to 1 whose point is near `p`, by Newton's method from `guess`.
double ParameterNear(PowerCubic const& c, Pt const& p, double low, double guess) {
    double t = guess;
    for (int i = 0; i < 4; ++i) {
        Pt const first = c.First(t);
        double const square = Square(first);
        double const step = square > 0.0 ? Dot(p - c.Point(t), first) / square : 0.0;
        t = std::min(std::max(t + step, low), 1.0);
    }
    return t;
}

} // namespace

Pt StartDirection(Cubic const& c) {
    for (std::size_t i = 1; i < 4; ++i) {
        Pt const d = c[i] - c[0];
        double const length = Length(d);
        if (length > 0.0) {
            return d / length;
        }
    }
    return Pt();
}

CurveRun::CurveRun(std::vector<Cubic> const& curves, std::size_t first, double tolerance)
    : mCurves(curves), mFirst(first), mTolerance(tolerance), mAnchor(curves[first][0]) {}

bool CurveRun::FitUpTo(std::size_t last, Cubic& fit, double& distance) {
    while (mSums.size() <= last - mFirst) {
        std::size_t const i = mFirst + mSums.size();
        Sums sums = {FanMoments(), 1.0, 1.0};
        if (!mSums.empty()) {
            // The derivative of one cubic is the same on both sides of a joint.
            sums = mSums.back();
            sums.step *= Length(mCurves[i][1] - mCurves[i][0]) /
                         Length(mCurves[i - 1][3] - mCurves[i - 1][2]);
            sums.steps += sums.step;
        }
        sums.fan.AddCurve(Moved(mCurves[i], mAnchor));
        mSums.push_back(sums);
    }
    Sums const& sums = mSums[last - mFirst];
    Cubic const& firstCurve = mCurves[mFirst];
    Cubic const& lastCurve = mCurves[last];
    Pt const end = lastCurve[3];
    Pt const chord = end - mAnchor;
    if (chord.Null()) {
        return false; // a path has no curve that ends where it begins
    }
    // Parts of one cubic have its handles, shortened in the proportion of the parameters.
    fit = {mAnchor, mAnchor + (firstCurve[1] - mAnchor) * sums.steps,
           end + (lastCurve[2] - end) * (sums.steps / sums.step), end};
    if (Match(last, fit, distance)) {
        return true;
    }
    double const size = Length(chord);
    Pt const start = StartDirection(firstCurve);
    Pt const back = StartDirection(Reversed(lastCurve));
    if (!(size > 0.0) || start.Null() || back.Null()) {
        return false;
    }
    HandleFit candidates(chord, start, back, sums.fan);
    for (HandleLengths handles; candidates.Next(handles);) {
        fit = {mAnchor, mAnchor + start * (handles.start * size), end + back * (handles.end * size),
               end};
        if (Match(last, fit, distance)) {
            return true;
        }
    }
    return false;
}

bool CurveRun::Match(std::size_t last, Cubic const& fit, double& distance) const {
    struct Part {
        Cubic points;
        int halvings;
    };
    PowerCubic const c(fit, mAnchor);
    double worst = 0.0;
    double greatestRounding = 0.0;
    double t = 0.0;
    std::array<Part, kMostHalvings + 1> open;
    for (std::size_t i = mFirst; i <= last; ++i) {
        Cubic const curve = Moved(mCurves[i], mAnchor);
        double const extent = Taxicab(curve[0]) + PolygonLength(curve);
        double const rounding = c.rounding + extent * 0x1p-48;
        double const limit = mTolerance * (1.0 - 0x1p-48) - rounding;
        greatestRounding = std::max(greatestRounding, rounding);
        std::size_t count = 0;
        open[count++] = {curve, 0};
        while (count > 0) {
            Part const part = open[--count];
            Pt const end = part.points[3];
            bool const isEnd = i == last && count == 0;
            double const speed = Length(c.First(t));
            double const length = Length(end - part.points[0]);
            double const guess = length < (1.0 - t) * speed ? t + length / speed : 1.0;
            double const next = isEnd ? 1.0 : ParameterNear(c, end, t, guess);
            if (!(Length(c.Point(next) - end) <= limit)) {
                return false;
            }
            double const bound = Difference(PartOf(c, t, next), part.points);
            if (bound <= limit) {
                worst = std::max(worst, bound);
                t = next;
            } else if (part.halvings < kMostHalvings) {
                open[count++] = {TailOf(part.points, 0.5), part.halvings + 1};
                open[count++] = {HeadOf(part.points, 0.5), part.halvings + 1};
            } else {
                return false;
            }
        }
    }
    distance = std::min(worst * kUp + greatestRounding, mTolerance);
    return true;
}

} // namespace trammel_detail
