// SPDX-License-Identifier: MIT

//
// Both polygon kinds' algorithms step by step, written to be read: a list of points, walked edge by
// edge. Tests compare the library with them bit for bit.
//
// Of the library, nothing but the point, rectangle, line and matrix records is used here.

#ifndef TRAMMEL_PLAINPOLYGON_H
#define TRAMMEL_PLAINPOLYGON_H

#include "CMatrix3x3.h"
#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "plain/PlainLine.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace plain {

/// True when the first `edges` edges of the closed polygon cross the horizontal through `p` an odd
/// number of times at a smaller h.
inline bool OddCrossings(std::vector<TPoint<double>> const& points, std::size_t edges,
                         TPoint<double> const& p) {
    int count = 0;
    for (std::size_t i = 0; i < edges; ++i) {
        double const av = points[i].v;
        double const ah = points[i].h;
        double const bv = points[(i + 1) % points.size()].v;
        double const bh = points[(i + 1) % points.size()].h;
        double const lowV = bv < av ? bv : av;
        double const highV = av < bv ? bv : av;
        if (!(lowV <= p.v) || !(p.v < highV)) {
            continue;
        }
        if (p.h < (bh < ah ? bh : ah)) {
            continue;
        }
        if (p.h > (ah < bh ? bh : ah)) {
            ++count;
            continue;
        }
        double const slope = (ah - bh) / (av - bv);
        double const crossing = ah - (av - p.v) * slope;
        if (p.h > crossing) {
            ++count;
        }
    }
    return count % 2 == 1;
}

// Segments

inline double CosTheta(TLine<double> const& one, TLine<double> const& other) {
    double const dh = one.mEnd.h - one.mStart.h;
    double const dv = one.mEnd.v - one.mStart.v;
    double const eh = other.mEnd.h - other.mStart.h;
    double const ev = other.mEnd.v - other.mStart.v;
    double const c = (dh * eh + dv * ev) / std::sqrt((dh * dh + dv * dv) * (eh * eh + ev * ev));
    if (1e-15 >= std::fabs(c - 1.0)) {
        return 1.0;
    }
    if (1e-15 >= std::fabs(1.0 + c)) {
        return -1.0;
    }
    return c;
}

inline double Slope(TLine<double> const& line) {
    return (line.mEnd.v - line.mStart.v) / (line.mEnd.h - line.mStart.h);
}

inline TPoint<double> PointAtH(TLine<double> const& line, double h) {
    double const m = Slope(line);
    return TPoint<double>(h, m * h + (line.mStart.v - m * line.mStart.h));
}

inline bool LinesIntersect(TLine<double> const& one, TLine<double> const& other,
                           TPoint<double>& where) {
    if (one.mStart == one.mEnd || other.mStart == other.mEnd) {
        return false;
    }
    if (std::fabs(CosTheta(one, other)) == 1.0) {
        return false;
    }
    if (one.mEnd.h - one.mStart.h == 0.0) {
        where = PointAtH(other, one.mEnd.h);
        return true;
    }
    if (other.mEnd.h - other.mStart.h == 0.0) {
        where = PointAtH(one, other.mEnd.h);
        return true;
    }
    double const m1 = Slope(one);
    double const b1 = one.mStart.v - m1 * one.mStart.h;
    double const m2 = Slope(other);
    double const b2 = other.mStart.v - m2 * other.mStart.h;
    where.Set((b2 - b1) / (m1 - m2), (b2 * m1 - b1 * m2) / (m1 - m2));
    return true;
}

/// True when `p` lies in the box of the segment, grown by 2^-23.
inline bool InGrownBox(TLine<double> const& line, TPoint<double> const& p) {
    double left = line.mStart.h;
    double top = line.mStart.v;
    double right = line.mEnd.h;
    double bottom = line.mEnd.v;
    if (top > bottom) {
        std::swap(top, bottom);
    }
    if (right < left) {
        std::swap(left, right);
    }
    double const slack = 0x1p-23;
    return top - slack <= p.v && p.v <= bottom + slack && left - slack <= p.h &&
           p.h <= right + slack;
}

inline bool SegmentsIntersect(TLine<double> const& one, TLine<double> const& other,
                              TPoint<double>& where) {
    return LinesIntersect(one, other, where) && InGrownBox(one, where) && InGrownBox(other, where);
}

// Points

inline TPoint<double> Transformed(TPoint<double> const& p, CMatrix3x3 const& m) {
    return TPoint<double>(p.h * m.a + p.v * m.c + m.tx, p.h * m.b + p.v * m.d + m.ty);
}

inline TPoint<double> Rotated(TPoint<double> const& p, double angle, TPoint<double> const& centre) {
    double const h = p.h - centre.h;
    double const v = p.v - centre.v;
    double const s = std::sin(angle);
    double const c = std::cos(angle);
    return TPoint<double>(h * c - v * s + centre.h, h * s + v * c + centre.v);
}

inline TPoint<double> PointBetween(TPoint<double> const& a, TPoint<double> const& b, double t) {
    return TPoint<double>(a.h + (b.h - a.h) * t, a.v + (b.v - a.v) * t);
}

/// The order in which pieces of a segment are sorted.
inline bool Before(bool byH, TPoint<double> const& a, TPoint<double> const& b) {
    if (byH && a.h != b.h) {
        return a.h < b.h;
    }
    if (a.v != b.v) {
        return a.v < b.v;
    }
    return a.h < b.h;
}

// Polygons

/// The rectangle that grows by a point; from null it becomes the point's.
inline void Join(TRect<double>& r, TPoint<double> const& p) {
    if (r.top == 0 && r.left == 0 && r.bottom == 0 && r.right == 0) {
        r.Set(p.h, p.v, p.h, p.v);
        return;
    }
    r.top = p.v < r.top ? p.v : r.top;
    r.left = p.h < r.left ? p.h : r.left;
    r.bottom = r.bottom < p.v ? p.v : r.bottom;
    r.right = r.right < p.h ? p.h : r.right;
}

/// The polygon that owns its points.
struct PointList {
    std::vector<TPoint<double>> points;
    bool closed = false;

    TLine<double> Edge(std::size_t i) const {
        return TLine<double>(points[i], points[i + 1 == points.size() ? 0 : i + 1]);
    }
    /// How many edges count for length.
    std::size_t LengthEdges() const {
        return closed || points.empty() ? points.size() : points.size() - 1;
    }
    static double EdgeLength(TLine<double> const& edge) {
        return Hypot(edge.mEnd.h - edge.mStart.h, edge.mEnd.v - edge.mStart.v);
    }
    double Length() const {
        double sum = 0;
        for (std::size_t i = 0; i < LengthEdges(); ++i) {
            sum += EdgeLength(Edge(i));
        }
        return sum;
    }
    TRect<double> Bounds() const {
        TRect<double> r;
        for (TPoint<double> const& p : points) {
            Join(r, p);
        }
        return r;
    }
    bool Contains(TPoint<double> const& p) const {
        TRect<double> const r = Bounds();
        if (!(r.top <= p.v && p.v <= r.bottom && r.left <= p.h && p.h <= r.right)) {
            return false;
        }
        return OddCrossings(points, points.size(), p);
    }
    void Transform(CMatrix3x3 const& m) {
        for (TPoint<double>& p : points) {
            p = Transformed(p, m);
        }
    }
    /// For polygons of at least one point.
    TPoint<double> TPt(double t) const {
        if (t == 0.0) {
            return points.front();
        }
        if (t == 1.0) {
            return points.back();
        }
        double const target = t * Length();
        double sum = 0;
        for (std::size_t i = 0; i < LengthEdges(); ++i) {
            TLine<double> const e = Edge(i);
            double const before = sum;
            sum += EdgeLength(e);
            if (sum >= target) {
                return PointBetween(e.mStart, e.mEnd, (target - before) / EdgeLength(e));
            }
        }
        return points.back();
    }
    /// The open chain's length up to each point.
    std::vector<double> Table() const {
        std::vector<double> table;
        double sum = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (i > 0) {
                double const dh = points[i].h - points[i - 1].h;
                double const dv = points[i].v - points[i - 1].v;
                sum += std::sqrt(dh * dh + dv * dv);
            }
            table.push_back(sum);
        }
        return table;
    }
    /// For polygons of at least two points, with their table.
    TPoint<double> TPt(double t, std::vector<double> const& table) const {
        t = std::max(std::min(t, 1.0), 0.0);
        if (0.0001 > std::fabs(t)) {
            return points[0];
        }
        double const target = table[points.size() - 1] * t;
        std::size_t lo = 0;
        std::size_t hi = table.size() - 1;
        std::size_t mid = 0;
        do {
            mid = (lo + hi) / 2;
            if (target > table[mid]) {
                lo = mid;
            } else {
                hi = mid;
            }
        } while (hi - lo > 1);
        std::size_t const k = table[mid] > target ? mid - 1 : mid;
        if (table[k + 1] - table[k] != 0.0) {
            return PointBetween(points[k], points[k + 1],
                                (target - table[k]) / (table[k + 1] - table[k]));
        }
        return points[k];
    }
    /// For lines without NaN.
    std::vector<TLine<double>> Clip(TLine<double> const& line) const {
        bool const byH = 1.0 > std::fabs(Slope(line));
        auto const before = [byH](TPoint<double> const& a, TPoint<double> const& b) {
            return Before(byH, a, b);
        };
        std::vector<TPoint<double>> cuts = {line.mStart, line.mEnd};
        for (std::size_t i = 0; i < points.size(); ++i) {
            TPoint<double> where;
            if (SegmentsIntersect(line, Edge(i), where)) {
                cuts.push_back(where);
            }
        }
        std::sort(cuts.begin(), cuts.end(), before);
        std::vector<TLine<double>> pieces;
        for (std::size_t k = 1; k < cuts.size(); ++k) {
            if (Contains(PointBetween(cuts[k - 1], cuts[k], 0.5))) {
                pieces.emplace_back(cuts[k - 1], cuts[k]);
            }
        }
        return pieces;
    }
};

/// The polygon behind a handle.
struct HandlePoints {
    std::vector<TPoint<double>> points;

    TRect<double> Bounds() const {
        TRect<double> r;
        for (std::size_t i = points.size(); i-- > 0;) {
            Join(r, points[i]);
        }
        return r;
    }
    /// The closing edge is left out where the first point is repeated at the end.
    bool Contains(TPoint<double> const& p) const {
        bool const repeated = !points.empty() && points.front() == points.back();
        return OddCrossings(points, repeated ? points.size() - 1 : points.size(), p);
    }
    void Offset(TPoint<double> const& d) {
        for (TPoint<double>& p : points) {
            p.Set(p.h + d.h, p.v + d.v);
        }
    }
    void Scale(double sh, double sv) {
        for (TPoint<double>& p : points) {
            p.Set(p.h * sh, p.v * sv);
        }
    }
    void Rotate(double angle, TPoint<double> const& centre) {
        for (TPoint<double>& p : points) {
            p = Rotated(p, angle, centre);
        }
    }
    void Map(TRect<double> const& from, TRect<double> const& to) {
        CMatrix3x3 const m = CMatrix3x3().Map(from, to);
        for (TPoint<double>& p : points) {
            p = Transformed(p, m);
        }
    }
};

} // namespace plain

#endif
