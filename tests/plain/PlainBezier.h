// SPDX-License-Identifier: MIT

// The cubic's algorithms step by step, written to be read: recursion where the definition recurses,
// a list of points where it flattens, every formula spelled out. Tests compare the library with
// them bit for bit: nothing that it does for the sake of speed may change a result.
//
// Of the library, nothing but the point and rectangle records with their operators is used here
// (PlainRecords.h).

#ifndef TRAMMEL_PLAINBEZIER_H
#define TRAMMEL_PLAINBEZIER_H

#include "plain/PlainLine.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>

namespace plain {

// ---------------------------------------------------------------------------------------------
// Cubics

/// The settings and counters that the library keeps for the whole process.
struct State {
    double maxError = 1.0;
    std::int16_t recursionLimit = 15;
    std::int32_t mCount = 0;
    std::int32_t gCount = 0;
    std::int32_t maxCount = 0;
};

inline State state; // NOLINT: the process-wide state is what is modelled

struct Bezier {
    Pt p0;
    Pt p1;
    Pt p2;
    Pt p3;

    Pt TPt(double t) const {
        if (t == 0.0) {
            return p0;
        }
        if (t == 1.0) {
            return p3;
        }
        Pt const a = LinePt(p0, p1, t);
        Pt const b = LinePt(p1, p2, t);
        Pt const c = LinePt(p2, p3, t);
        Pt const d = LinePt(a, b, t);
        Pt const e = LinePt(b, c, t);
        return LinePt(d, e, t);
    }

    Pt Divide(Bezier& left, Bezier& right) const {
        Pt const m01 = (p0 + p1) / 2.0;
        Pt const m12 = (p1 + p2) / 2.0;
        Pt const m23 = (p2 + p3) / 2.0;
        Pt const m012 = (m01 + m12) / 2.0;
        Pt const m123 = (m12 + m23) / 2.0;
        Pt const s = (m012 + m123) / 2.0;
        left = Bezier{p0, m01, m012, s};
        right = Bezier{s, m123, m23, p3};
        return s;
    }

    Pt Divide(Bezier& left, Bezier& right, double t) const {
        Pt const a = LinePt(p0, p1, t);
        Pt const b = LinePt(p1, p2, t);
        Pt const c = LinePt(p2, p3, t);
        Pt const d = LinePt(a, b, t);
        Pt const e = LinePt(b, c, t);
        Pt const s = LinePt(d, e, t);
        left = Bezier{p0, a, d, s};
        right = Bezier{s, e, c, p3};
        return s;
    }

    Pt Divide(Bezier& left, Bezier& right, Pt const& pt) const {
        return Divide(left, right, FindTValue(pt, 0.0, 0.0, 1.0));
    }

    Rect Extents() const {
        Rect r(p0, p3);
        r |= p1;
        r |= p2;
        return r;
    }

    double Deviation() const {
        Pt const chord = p3 - p0;
        Pt const m = (p1 + p2) / 2.0;
        if (std::isnan(chord.v / chord.h)) {
            double const dh = m.h - p0.h;
            double const dv = m.v - p0.v;
            return std::sqrt(dh * dh + dv * dv);
        }
        return DistanceToLine(p0, p3, TPt(0.5));
    }

    bool Flat(double tolerance) const { return tolerance >= Deviation(); }

    void GenerateSegment(std::function<void(Pt const&)> const& proc, bool force, int depth) const {
        state.gCount += 1;
        state.maxCount = std::max(state.maxCount, state.gCount);
        depth -= 1;
        if (!force) {
            if (depth <= 0) {
                return;
            }
            if (Flat(state.maxError)) {
                return;
            }
        }
        Bezier left;
        Bezier right;
        Pt const s = Divide(left, right);
        left.GenerateSegment(proc, false, depth);
        proc(s);
        state.mCount += 1;
        right.GenerateSegment(proc, false, depth);
    }

    bool Bent() const { return p0 != p1 || p2 != p3; }

    void Flatten(Points& chain, double error) const {
        state.gCount = 0;
        double const old = state.maxError;
        state.maxError = error;
        AppendUnique(chain, p0);
        if (Bent()) {
            GenerateSegment([&](Pt const& p) { AppendUnique(chain, p); }, true,
                            state.recursionLimit);
        }
        AppendUnique(chain, p3);
        state.maxError = old;
    }

    double FindTValue(Pt const& pt, double tolerance, double t0, double t1) const {
        double bestT = 0.5;
        double bestDist = std::numeric_limits<double>::max();
        double const d0 = LineLength(TPt(t0), pt);
        double const d1 = LineLength(TPt(t1), pt);
        Bezier left;
        Bezier right;
        Divide(left, right);
        if (0.5 > t0) {
            double const tL =
                left.FindDividedTValue(pt, tolerance, 2.0 * t0, std::min(1.0, 2.0 * t1));
            bestT = tL / 2.0;
            bestDist = LineLength(TPt(bestT), pt);
        }
        if (t1 > 0.5) {
            double const tR = right.FindDividedTValue(pt, tolerance, std::max(0.0, 2.0 * t0 - 1.0),
                                                      2.0 * t1 - 1.0);
            double const dR = LineLength(right.TPt(tR), pt);
            if (bestDist > dR) {
                bestDist = dR;
                bestT = tR / 2.0 + 0.5;
            }
        }
        if (bestDist >= d0) {
            return t0;
        }
        if (bestDist >= d1) {
            return t1;
        }
        return bestT;
    }

    /// One step of the bisection: halves `cur` and [lo, hi] and returns the middle parameter.
    static double Bisect(Bezier& cur, Pt const& pt, double tolerance, double& lo, double& hi) {
        Bezier left;
        Bezier right;
        cur.Divide(left, right);
        Pt const a = cur.TPt(0.5 - tolerance);
        Pt const b = cur.TPt(0.5 + tolerance);
        Pt const middle = LinePt(a, b, 0.5);
        double const tm = (lo + hi) / 2.0;
        if (HalfSpace(QuarterTurn(a, middle), QuarterTurn(b, middle), pt) == 1) {
            cur = left;
            hi = tm;
        } else {
            cur = right;
            lo = tm;
        }
        return tm;
    }

    double FindDividedTValue(Pt const& pt, double tolerance, double lo, double hi) const {
        Bezier cur = *this;
        for (;;) {
            double const oldLo = lo;
            double const oldHi = hi;
            double const tm = Bisect(cur, pt, tolerance, lo, hi);
            if (!(hi - lo > tolerance) || tm == oldLo || tm == oldHi) {
                return tm;
            }
        }
    }

    /// The bisection without the end for settled bounds, at most `steps` of it; `ended` tells
    /// whether it came to its own end.
    double FindDividedTValueUnsettled(Pt const& pt, double tolerance, double lo, double hi,
                                      int steps, bool& ended) const {
        Bezier cur = *this;
        double tm = 0.0;
        ended = false;
        for (int i = 0; i < steps && !ended; ++i) {
            tm = Bisect(cur, pt, tolerance, lo, hi);
            ended = !(hi - lo > tolerance);
        }
        return tm;
    }

    bool HitTest(Pt const& pt, double tolerance) const {
        Rect r = Extents();
        r.Inset(-tolerance, -tolerance);
        if (!r.Contains(pt)) {
            return false;
        }
        bool hit = false;
        Pt last = p0;
        auto const test = [&](Pt const& p) {
            if (!hit) {
                hit = LineHit(last, p, pt, tolerance);
                last = p;
            }
        };
        if (Bent()) {
            GenerateSegment(test, true, state.recursionLimit);
        }
        test(p3);
        return hit;
    }

    bool Intersects(Rect const& r) const {
        if (!NaiveSectTRect(Extents(), r)) {
            return false;
        }
        bool hit = false;
        auto const test = [&](Pt const& p) {
            if (!hit) {
                hit = r.Contains(p);
            }
        };
        test(p0);
        if (Bent()) {
            GenerateSegment(test, true, state.recursionLimit);
        }
        test(p3);
        return hit;
    }

    double Length() const {
        Points chain;
        Flatten(chain, 0.001);
        return ChainLength(chain);
    }

    double PercentT(double fraction) const {
        Points chain;
        Flatten(chain, 0.001);
        return FindTValue(ChainPt(chain, fraction), 0.001, 0.0, 1.0);
    }

    double TPercent(double t) const {
        Bezier left;
        Bezier right;
        Divide(left, right, t);
        double const part = left.Length();
        double const whole = Length();
        return part / whole;
    }

    Bezier GetTRange(double t0, double t1) const {
        Bezier scrap;
        Bezier out;
        Bezier rest = *this;
        if (t0 > 0.0) {
            Divide(scrap, rest, std::min(1.0, t0));
        }
        if (1.0 > t1) {
            double const u = std::max(0.0, (t1 - t0) / (1.0 - t0));
            rest.Divide(out, scrap, u);
            return out;
        }
        return rest;
    }
};

} // namespace plain

#endif
