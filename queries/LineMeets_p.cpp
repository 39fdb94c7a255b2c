// SPDX-License-Identifier: MIT

#include "LineMeets_p.h"

#include "PointMath_p.h"
#include "TPoint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// The coefficients of a cubic polynomial in Bernstein's form.
typedef std::array<double, 4> Heights;

double HeightAt(Heights const& y, double t) {
    double const a = y[0] + (y[1] - y[0]) * t;
    double const b = y[1] + (y[2] - y[1]) * t;
    double const e = y[2] + (y[3] - y[2]) * t;
    double const p = a + (b - a) * t;
    double const q = b + (e - b) * t;
    return p + (q - p) * t;
}

/// Returns the zero of a polynomial between two parameters where it has different signs, and
/// between which it rises or falls steadily.
double ZeroBetween(Heights const& y, double low, double high, bool rises) {
    double t = 0.5 * (low + high);
    constexpr int kMostSteps = 64;
    for (int i = 0; i < kMostSteps; ++i) {
        double const a = y[0] + (y[1] - y[0]) * t;
        double const b = y[1] + (y[2] - y[1]) * t;
        double const e = y[2] + (y[3] - y[2]) * t;
        double const p = a + (b - a) * t;
        double const q = b + (e - b) * t;
        double const height = p + (q - p) * t;
        ((height < 0.0) == rises ? low : high) = t;
        double const step = height / (3.0 * (q - p));
        double const next = t - step;
        bool const inside = next > low && next < high; // false for a NaN
        // Newton's method doubles the digits, so the next step would be rounding.
        if (inside && std::abs(step) < 0x1p-27) {
            return next;
        }
        if (!inside && !(high - low > 0x1p-50)) {
            return t;
        }
        t = inside ? next : 0.5 * (low + high);
    }
    return t;
}

/// The parameters between which a polynomial rises or falls steadily: 0, its extremes and 1.
struct SteadyParts {
    std::array<double, 4> ends;
    std::size_t count; ///< of the parts
};

SteadyParts SteadyPartsOf(Heights const& y) {
    SteadyParts parts{{0.0, 1.0, 1.0, 1.0}, 1};
    double const d0 = y[1] - y[0];
    double const d1 = y[2] - y[1];
    double const d2 = y[3] - y[2];
    if ((d0 >= 0.0 && d1 >= 0.0 && d2 >= 0.0) || (d0 <= 0.0 && d1 <= 0.0 && d2 <= 0.0)) {
        return parts;
    }
    // The zeros of d0 (1-t)² + 2 d1 t (1-t) + d2 t².
    double const a = d0 - 2.0 * d1 + d2;
    double const b = d1 - d0;
    double const root = b * b - a * d0;
    if (!(root > 0.0)) {
        return parts;
    }
    double const q = -b - (b < 0.0 ? -std::sqrt(root) : std::sqrt(root));
    double const zeros[] = {q / a, d0 / q};
    for (double const t : {std::min(zeros[0], zeros[1]), std::max(zeros[0], zeros[1])}) {
        if (t > 0.0 && t < 1.0) {
            parts.ends[parts.count++] = t;
            parts.ends[parts.count] = 1.0;
        }
    }
    return parts;
}

} // namespace

bool MeetsOfLineAndCurve(Cubic const& line, Cubic const& curve, double accuracy, bool lineFirst,
                         CurveMeets& meets) {
    Pt const way = line[3] - line[0];
    // Heights above the line, times its length.
    Heights y;
    for (std::size_t i = 0; i < 4; ++i) {
        y[i] = Cross(way, curve[i] - line[0]);
    }
    double const unit = accuracy * Taxicab(way); // not less than the accuracy's height
    double const far = 4.0 * unit;
    if ((y[0] > far && y[1] > far && y[2] > far && y[3] > far) ||
        (y[0] < -far && y[1] < -far && y[2] < -far && y[3] < -far)) {
        return true;
    }
    SteadyParts const parts = SteadyPartsOf(y);
    std::array<double, 4> heights;
    for (std::size_t i = 0; i <= parts.count; ++i) {
        heights[i] = HeightAt(y, parts.ends[i]);
        if (!(std::abs(heights[i]) > far)) { // also for a NaN
            return false;
        }
    }
    double const length = std::sqrt(Square(way));
    double const most =
        std::max(std::max(Taxicab(curve[1] - curve[0]), Taxicab(curve[2] - curve[1])),
                 Taxicab(curve[3] - curve[2]));
    for (std::size_t i = 0; i < parts.count; ++i) {
        bool const rises = heights[i] < 0.0;
        if (rises == (heights[i + 1] < 0.0)) {
            continue;
        }
        double const t = ZeroBetween(y, parts.ends[i], parts.ends[i + 1], rises);
        CubicPlace const place = PlaceAt(curve, t);
        double const cross = Cross(way, place.first);
        double const speed = std::sqrt(Square(place.first));
        constexpr double kLeastSine = 0x1p-6;
        if (!(std::abs(cross) >= kLeastSine * length * speed)) { // also for a NaN
            return false;
        }
        // At these parameters the curve is farther from the line than the accuracy. From there to
        // the ends of the part it goes away from the line.
        double const by = far / (3.0 * std::abs(cross));
        double const low = t - by;
        double const high = t + by;
        if (!(low > parts.ends[i] && high < parts.ends[i + 1] &&
              std::min(std::abs(HeightAt(y, low)), std::abs(HeightAt(y, high))) > 2.0 * unit)) {
            return false;
        }
        // Within them it is no farther from the crossing than this.
        double const reach = 3.0 * by * most + 2.0 * accuracy;
        double const s = Dot(place.point - line[0], way) / Square(way);
        if (std::max(-s, s - 1.0) * length > reach) {
            continue;
        }
        if (!(std::min(s, 1.0 - s) * length > reach)) {
            return false;
        }
        bool const against = Dot(way, place.first) < 0.0;
        double const onLine = 2.0 * accuracy * speed / std::abs(cross);
        double const onCurve = 0.5 * by;
        int const side = (cross < 0.0) == lineFirst ? 1 : -1;
        if (lineFirst) {
            meets.push_back({s - onLine, s + onLine, against ? t + onCurve : t - onCurve,
                             against ? t - onCurve : t + onCurve, s, t, -side, side, false});
        } else {
            meets.push_back({t - onCurve, t + onCurve, against ? s + onLine : s - onLine,
                             against ? s - onLine : s + onLine, t, s, -side, side, false});
        }
    }
    std::sort(meets.begin(), meets.end(),
              [](CurveMeet const& m, CurveMeet const& n) { return m.s0 < n.s0; });
    return true;
}

LinesMeet MeetOfLines(Cubic const& a, Cubic const& b, double accuracy, CurveMeet& meet) {
    Pt const d = a[3] - a[0];
    Pt const e = b[3] - b[0];
    double const farA = 4.0 * accuracy * Taxicab(d);
    double const farB = 4.0 * accuracy * Taxicab(e);
    double const b0 = Cross(d, b[0] - a[0]);
    double const b1 = Cross(d, b[3] - a[0]);
    if ((b0 > farA && b1 > farA) || (b0 < -farA && b1 < -farA)) {
        return LinesMeet::kNever;
    }
    double const a0 = Cross(e, a[0] - b[0]);
    double const a1 = Cross(e, a[3] - b[0]);
    if ((a0 > farB && a1 > farB) || (a0 < -farB && a1 < -farB)) {
        return LinesMeet::kNever;
    }
    if (!(std::min(std::abs(b0), std::abs(b1)) > farA &&
          std::min(std::abs(a0), std::abs(a1)) > farB)) {
        return LinesMeet::kUnclear;
    }
    // At a small angle, rounding moves a parameter by much. The foot on B is near the place on A.
    double const s = a0 / (a0 - a1);
    double const t = Dot(d * s - (b[0] - a[0]), e) / Square(e);
    int const side = a1 > 0.0 ? 1 : -1;
    meet = {s, s, t, t, s, t, -side, side, false};
    return LinesMeet::kMeet;
}

LinesMeet MeetOfLinesAtEnds(Cubic const& a, Cubic const& b, double accuracy, CurveMeet& meet) {
    Pt const d = a[3] - a[0];
    Pt const e = b[3] - b[0];
    double const cross = Cross(e, d);
    double const lengthA = std::sqrt(Square(d));
    double const lengthB = std::sqrt(Square(e));
    constexpr double kLeastSine = 0x1p-6;
    double const sine = std::abs(cross) / (lengthA * lengthB);
    constexpr double kShort = 8.0; // times the accuracy
    if (!(sine >= kLeastSine && std::min(lengthA, lengthB) > kShort * accuracy)) { // also for a NaN
        return LinesMeet::kUnclear;
    }
    Pt const off = b[0] - a[0];
    double const s = Cross(e, off) / cross;
    double const t = Cross(d, off) / cross;
    auto const onLine = [](double x) { return std::min(std::max(x, 0.0), 1.0); };
    double sOn = onLine(s);
    double tOn = onLine(t);
    if (sOn != s || tOn != t) {
        double const foot = onLine(Dot(d * sOn - off, e) / Square(e)); // of an end of A
        double const footOnA = onLine(Dot(off + e * tOn, d) / Square(d));
        double const gap = Square(d * sOn - off - e * foot);
        double const gapOnA = Square(off + e * tOn - d * footOnA);
        if (!(std::min(gap, gapOnA) <= 0.25 * accuracy * accuracy)) {
            return LinesMeet::kNever;
        }
        (gap <= gapOnA ? tOn : sOn) = gap <= gapOnA ? foot : footOnA;
    }
    bool const against = Dot(d, e) < 0.0;
    bool const lacksBefore = s <= 0.0 || (against ? t > 1.0 : t < 0.0);
    bool const lacksAfter = s >= 1.0 || (against ? t < 0.0 : t > 1.0);
    // The lines stay within the accuracy for no longer than this.
    double const reach = 2.0 * accuracy / sine;
    double const lowT = onLine(tOn - reach / lengthB);
    double const highT = onLine(tOn + reach / lengthB);
    int const side = cross > 0.0 ? 1 : -1;
    meet = {lacksBefore ? sOn : onLine(sOn - reach / lengthA),
            lacksAfter ? sOn : onLine(sOn + reach / lengthA),
            against ? highT : lowT,
            against ? lowT : highT,
            sOn,
            tOn,
            lacksBefore ? 0 : -side,
            lacksAfter ? 0 : side,
            false};
    return LinesMeet::kMeet;
}

} // namespace trammel_detail
