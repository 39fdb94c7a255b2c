// SPDX-License-Identifier: MIT

#include "StrokeMatch_p.h"

#include <array>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// The bound on rounding in sums of a few distances.
constexpr double kUp = 1.0 + 0x1p-48;

double Length(Pt const& p) { return std::sqrt(Square(p)); }

/// The bound for the line from `p` to `q` and the stretch from `t0` to `t1`, by the parts along the
/// line and across it. As long as the stretch advances along the line, places of equal advance
/// belong together, and only the bend across the line counts. Infinite where it does not advance.
double FineBound(PowerCubic const& c, Pt const& p, Pt const& q, double t0, double t1) {
    double const length = Length(q - p);
    double const d = t1 - t0;
    Pt const along = (q - p) / length;
    Pt const first = c.First(t0);
    bool const advances = Dot(first, along) >= 0.0 &&
                          Dot(first + c.Second(t0) * (0.5 * d), along) >= 0.0 &&
                          Dot(c.First(t1), along) >= 0.0;
    if (!advances) { // nor where the line has no length
        return HUGE_VAL;
    }
    Pt const start = c.Point(t0) - p;
    Pt const end = c.Point(t1) - q;
    double const ahead = std::max(std::abs(Dot(start, along)), std::abs(Dot(end, along)));
    double const aside = std::max(std::abs(Cross(along, start)), std::abs(Cross(along, end)));
    double const bend =
        std::max(std::abs(Cross(along, c.Second(t0))), std::abs(Cross(along, c.Second(t1))));
    return std::sqrt(ahead * ahead + aside * aside) + bend * d * d * 0.125;
}

} // namespace

RunMatch MatchRun(StrokePoints const& stroke, std::size_t from, std::size_t to, Cubic const& cubic,
                  double tolerance) {
    Pt const anchor = stroke.at[from];
    PowerCubic const c(cubic, anchor);
    double const limit = tolerance * (1.0 - 0x1p-48) - c.rounding;
    double worst = 0.0;
    double t = 0.0;
    Pt p;
    double apart = Length(c.a0);
    double speed = Length(c.a1);
    for (std::size_t i = from + 1; i <= to; ++i) {
        Pt const q = stroke.at[i] - anchor;
        double next = 1.0;
        double nextApart = 0.0;
        if (i == to) {
            nextApart = Length(q - c.Point(1.0));
        } else {
            double const step = stroke.length[i] - stroke.length[i - 1];
            double guess = step < (1.0 - t) * speed ? t + step / speed : 1.0;
            for (int round = 0;; ++round) {
                Pt const first = c.First(guess);
                Pt const off = q - c.Point(guess);
                double const square = Square(first);
                double const wanted = square > 0.0 ? guess + Dot(off, first) / square : guess;
                next = std::min(std::max(wanted, t), 1.0);
                double const moved = next - guess;
                double const curved = c.bend * moved * moved * 0.5;
                speed = std::sqrt(square);
                nextApart = Length(off - first * moved) + curved;
                if (round == 3 || !(curved > 0.0625 * limit)) {
                    break;
                }
                guess = next;
            }
        }
        double const d = next - t;
        double bound = std::max(apart, nextApart) + c.bend * d * d * 0.125;
        if (!(bound <= limit)) {
            bound = FineBound(c, p, q, t, next);
            if (!(bound <= limit)) {
                return {0.0, i, false};
            }
        }
        worst = std::max(worst, bound);
        apart = nextApart;
        t = next;
        p = q;
    }
    return {std::min(worst * kUp + c.rounding, tolerance), to, true};
}

bool SeemsToMatch(StrokePoints const& stroke, std::size_t from, std::size_t to, Cubic const& cubic,
                  double tolerance) {
    // The distance is greatest near the ends, or between them and the middle.
    constexpr std::size_t kSamples = 16;
    constexpr std::array<unsigned char, 8> kOrder = {15, 1, 5, 11, 8, 3, 13, 7};
    Pt const anchor = stroke.at[from];
    PowerCubic const c(cubic, anchor);
    double const begin = stroke.length[from];
    double const scale = 1.0 / (stroke.length[to] - begin);
    double const limit = tolerance * tolerance;
    double const enough = tolerance * 0.25;
    for (std::size_t const k : kOrder) {
        std::size_t const i = from + (to - from) * k / kSamples;
        Pt const q = stroke.at[i] - anchor;
        double t = (stroke.length[i] - begin) * scale;
        double square = 0.0;
        for (int round = 0; round < 3; ++round) {
            Pt const off = q - c.Point(t);
            Pt const first = c.First(t);
            double const moved = Dot(off, first) / Square(first);
            t = std::min(std::max(t + moved, 0.0), 1.0);
            square = Square(off - first * moved);
            if (c.bend * moved * moved < enough) {
                break;
            }
        }
        if (!(square <= limit)) {
            return false;
        }
    }
    return true;
}

} // namespace trammel_detail
