// SPDX-License-Identifier: MIT

// The quadratic's algorithms step by step, written to be read: recursion where the definition
// recurses, a list of points where it flattens. Tests compare the library with them bit for bit.
//
// Of the library, nothing but the point and rectangle records with their operators is used here.

#ifndef TRAMMEL_PLAINSPLINE_H
#define TRAMMEL_PLAINSPLINE_H

#include "TPoint.h"
#include "TRect.h"

#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace plain {

/// The settings and the counter that the library keeps for the whole process.
struct SplineState {
    double maxError = 2.0;
    std::int16_t recursionLimit = 15;
    std::int32_t mCount = 0;
};

inline SplineState splineState; // NOLINT: the process-wide state is what is modelled

struct Spline {
    typedef TPoint<double> Pt;
    typedef std::vector<Pt> Points;

    Pt p0;
    Pt p1;
    Pt p2;

    static Pt Middle(Pt const& a, Pt const& b) {
        return Pt(a.h + (b.h - a.h) * 0.5, a.v + (b.v - a.v) * 0.5);
    }

    Pt Divide(Spline& left, Spline& right) const {
        Pt const a = Middle(p0, p1);
        Pt const b = Middle(p1, p2);
        Pt const s = Middle(a, b);
        left = Spline{p0, a, s};
        right = Spline{s, b, p2};
        return s;
    }

    bool Flat(double tolerance) const {
        if (p2.h == p0.h && p2.v == p0.v) {
            return true;
        }
        double const dh = p1.h - p0.h;
        double const dv = p1.v - p0.v;
        double const m = (p2.v - p0.v) / (p2.h - p0.h);
        double const e1 = std::fabs(dh * m - dv);
        if (tolerance >= e1) {
            return true;
        }
        double const e2 = std::fabs(dv / m - dh);
        return tolerance >= e2;
    }

    void GenerateSegment(std::function<void(Pt const&)> const& proc, int depth) const {
        depth -= 1;
        if (depth <= 0) {
            return;
        }
        if (Flat(splineState.maxError)) {
            return;
        }
        Spline left;
        Spline right;
        Pt const s = Divide(left, right);
        left.GenerateSegment(proc, depth);
        proc(s);
        splineState.mCount += 1;
        right.GenerateSegment(proc, depth);
    }

    static void AddPt(Points& chain, Pt const& p) {
        if (chain.empty() || !(chain.back().h == p.h && chain.back().v == p.v)) {
            chain.push_back(p);
        }
    }

    void AddSegment(Points& chain, double error) const {
        double const old = splineState.maxError;
        splineState.maxError = error;
        AddPt(chain, p0);
        if (p0 != p1 || p1 != p2) {
            GenerateSegment([&chain](Pt const& p) { AddPt(chain, p); }, splineState.recursionLimit);
        }
        AddPt(chain, p2);
        splineState.maxError = old;
    }
};

} // namespace plain

#endif
