// SPDX-License-Identifier: MIT

// The plain forms of curves and paths stand on these: lines given by their two points, and open
// chains of points, each step written out.

#ifndef TRAMMEL_PLAINLINE_H
#define TRAMMEL_PLAINLINE_H

#include "plain/PlainRecords.h"

#include "UTrigonometry.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace plain {

// ---------------------------------------------------------------------------------------------
// Lines, given by their two points

/// The root of h² + v². glibc's function for x86-64 has the bits that the library gives everywhere.
/// Other C libraries and processors have other last bits.
inline double Hypot(double h, double v) {
#if defined(__x86_64__) && defined(__GLIBC__)
    return std::hypot(h, v);
#else
    return Pt(h, v).Hypotenuse();
#endif
}

inline double LineLength(Pt const& a, Pt const& b) {
    Pt const d = b - a;
    return Hypot(d.h, d.v);
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
    Rect reach(a, b);
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

} // namespace plain

#endif
