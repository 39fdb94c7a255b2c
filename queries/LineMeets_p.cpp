// SPDX-License-Identifier: MIT

#include "LineMeets_p.h"

#include "PointMath_p.h"
#include "TPoint.h"

#include <algorithm>
#include <cmath>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

} // namespace

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
