// SPDX-License-Identifier: MIT

#include "HandleFit_p.h"

#include <cmath>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// Handles of a third of the chord belong to a straight line at an even pace.
constexpr double kEven = 1.0 / 3.0;
/// Longer handles belong to loops, into which no stroke is fitted.
constexpr double kLongest = 4.0;
constexpr int kMostSteps = 8;
/// Newton's method has arrived: the lengths are right beyond what a fit can tell.
constexpr double kArrived = 1e-7;
/// A step is at most so long, so that a first step from far off does not leave the range.
constexpr double kLongestStep = 0.5;

bool IsUsable(double length) { return length > 0.0 && length <= kLongest; }

/// Both directions in the frame in which the chord leads from (0, 0) to (1, 0).
struct Frame {
    double ux;
    double uy;
    double wx;
    double wy;
    double cross;
};

/// The equal lengths that have the area; a third of the chord where there are none.
double EqualLengths(Frame const& f, double area) {
    double const a = 0.15 * f.cross;
    double const b = -0.3 * (f.uy + f.wy);
    double const root = std::sqrt(b * b + 4.0 * a * area); // NaN without solution
    // a x² + b x - area = 0, in the form that cancels nothing
    double const q = -0.5 * (b + std::copysign(root, b));
    double const first = -area / q;
    double const second = q / a;
    double const low = IsUsable(first) ? first : kLongest * 2.0;
    double const high = IsUsable(second) ? second : kLongest * 2.0;
    double const length = low < high ? low : high;
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

std::array<HandleLengths, 2> FitHandles(Pt const& chord, Pt const& u, Pt const& w,
                                        FanMoments const& wanted) {
    double const length = std::sqrt(Square(chord));
    Pt const e = chord / length;
    Frame const f = {Dot(u, e), Cross(e, u), Dot(w, e), Cross(e, w), Cross(u, w)};
    double const area = wanted.area / (length * length);
    double const moment = Dot(wanted.moment, e) / length / (length * length);

    double const equal = EqualLengths(f, area);
    HandleLengths const even = {equal, equal};
    double x = equal;
    double y = equal;
    for (int i = 0; i < kMostSteps; ++i) {
        // The integrals of the cubic, as polynomials of both lengths, and their derivatives
        double const k = 9.0 / 280.0 * f.cross;
        double const xx = k * y * f.ux - 3.0 / 56.0 * f.ux * f.uy;
        double const mixed = 9.0 / 280.0 * f.ux * f.wy - 33.0 / 280.0 * f.uy * f.wx;
        double const x1 = (k * f.wx * y + mixed) * y - 17.0 / 140.0 * f.uy;
        double const y1 = 3.0 / 56.0 * f.wx * f.wy * y + 5.0 / 28.0 * f.wy;
        double const da = 0.15 * x * y * f.cross - 0.3 * (x * f.uy + y * f.wy) - area;
        double const dm = (xx * x + x1) * x - y1 * y - moment;
        double const ax = 0.15 * y * f.cross - 0.3 * f.uy;
        double const ay = 0.15 * x * f.cross - 0.3 * f.wy;
        double const mx = 2.0 * xx * x + x1;
        double const my = k * f.ux * x * x + (2.0 * k * f.wx * y + mixed) * x -
                          3.0 / 28.0 * f.wx * f.wy * y - 5.0 / 28.0 * f.wy;
        double const determinant = ax * my - ay * mx;
        double stepX = (da * my - dm * ay) / determinant;
        double stepY = (dm * ax - da * mx) / determinant;
        double const longest = std::max(std::abs(stepX), std::abs(stepY));
        if (!std::isfinite(longest)) {
            return {even, even};
        }
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
    if (IsUsable(x) && IsUsable(y)) {
        return {HandleLengths{x, y}, even};
    }
    return {even, even};
}

} // namespace trammel_detail
