// SPDX-License-Identifier: MIT
//
// The cubic's algorithms step by step, written to be read: recursion where the definition recurses,
// a list of points where it flattens, every formula spelled out. The library is compared with them
// bit for bit, so that whatever it does for the sake of speed changes no result.
//
// Nothing here uses the library but the point and the rectangle records with their operators.

#ifndef TRAMMEL_PLAINBEZIER_H
#define TRAMMEL_PLAINBEZIER_H

#include "TPoint.h"
#include "TRect.h"
#include "UTrigonometry.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

namespace plain {

typedef TPoint<double> Pt;
typedef std::vector<Pt> Points;

// ---------------------------------------------------------------------------------------------
// Lines, given by their two points

inline double LineLength(Pt const& a, Pt const& b) {
    Pt const d = b - a;
    return std::hypot(d.h, d.v);
}

inline Pt LinePt(Pt const& a, Pt const& b, double t) { return a + (b - a) * t; }

inline Pt Foot(Pt const& a, Pt const& b, Pt const& p) {
    Pt const d = b - a;
    if (d.h == 0.0) {
        return Pt(a.h, p.v);
    }
    if (d.v == 0.0) {
        return Pt(p.h, a.v);
    }
    double const m = d.v / d.h;
    double const n = -1.0 / m;
    double const x = (n * p.h - m * a.h - p.v + a.v) / (n - m);
    double const y = n * x - n * p.h + p.v;
    return Pt(x, y);
}

inline double DistanceToLine(Pt const& a, Pt const& b, Pt const& p) {
    return LineLength(p, Foot(a, b, p));
}

inline Pt QuarterTurn(Pt const& p, Pt const& centre) {
    double const s = std::sin(pi / 2.0);
    double const c = std::cos(pi / 2.0);
    Pt const d = p - centre;
    return Pt(d.h * c - d.v * s, d.h * s + d.v * c) + centre;
}

inline int HalfSpace(Pt const& a, Pt const& b, Pt const& p) {
    Pt const turned = QuarterTurn(b, a) - QuarterTurn(a, a);
    Pt const q = p - a;
    return turned.h * q.h + turned.v * q.v > 0.0 ? 1 : -1;
}

inline double Pin(double lo, double hi, double value) {
    if (lo > value) {
        return lo;
    }
    return value > hi ? hi : value;
}

/// The parameter of the segment's point nearest `p`.
inline double LineTValue(Pt const& a, Pt const& b, Pt const& p) {
    Pt const foot = Foot(a, b, p);
    Pt const pinned(Pin(std::min(a.h, b.h), std::max(a.h, b.h), foot.h),
                    Pin(std::min(a.v, b.v), std::max(a.v, b.v), foot.v));
    return LineLength(a, pinned) / LineLength(a, b);
}

inline bool LineHit(Pt const& a, Pt const& b, Pt const& p, double tolerance) {
    TRect<double> reach(a, b);
    reach.Outset(tolerance, tolerance);
    if (!reach.Contains(p)) {
        return false;
    }
    Pt const d = b - a;
    if (tolerance > std::abs(d.h)) {
        return true;
    }
    if (tolerance > std::abs(d.v)) {
        return true;
    }
    double const m = d.v / d.h;
    Pt const q = p - a;
    if (tolerance >= std::abs(q.h * m - q.v)) {
        return true;
    }
    return tolerance >= std::abs(q.v / m - q.h);
}

// ---------------------------------------------------------------------------------------------
// Open chains of points

inline void AppendUnique(Points& chain, Pt const& p) {
    if (chain.empty() || p != chain.back()) {
        chain.push_back(p);
    }
}

inline double ChainLength(Points const& chain) {
    double length = 0.0;
    for (std::size_t i = 1; i < chain.size(); ++i) {
        length += LineLength(chain[i - 1], chain[i]);
    }
    return length;
}

inline Pt ChainPt(Points const& chain, double t) {
    if (t == 0.0) {
        return chain.front();
    }
    if (t == 1.0) {
        return chain.back();
    }
    double const target = t * ChainLength(chain);
    double sum = 0.0;
    for (std::size_t i = 1; i < chain.size(); ++i) {
        double const before = sum;
        sum += LineLength(chain[i - 1], chain[i]);
        if (sum >= target) {
            return LinePt(chain[i - 1], chain[i],
                          (target - before) / LineLength(chain[i - 1], chain[i]));
        }
    }
    return chain.back();
}

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

    TRect<double> Extents() const {
        TRect<double> r(p0, p3);
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
        TRect<double> r = Extents();
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

    bool Intersects(TRect<double> const& r) const {
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
