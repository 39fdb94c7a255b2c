// SPDX-License-Identifier: MIT

// What the accurate queries on curves share: control points brought to an ordinary magnitude, and
// the walk over a path's segments. Not installed.

#ifndef TRAMMEL_ACCURATECURVE_P_H
#define TRAMMEL_ACCURATECURVE_P_H

#include "CBSpline.h"
#include "CBezier.h"
#include "CPath.h"
#include "PathWalk_p.h"
#include "TPoint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace trammel_detail {

typedef TPoint<double> Pt;

inline double Dot(Pt const& a, Pt const& b) { return a.h * b.h + a.v * b.v; }
inline double Cross(Pt const& a, Pt const& b) { return a.h * b.v - a.v * b.h; }
inline double Square(Pt const& a) { return a.h * a.h + a.v * a.v; }
/// |h| + |v|: between the length of the vector and sqrt(2) times it.
inline double Taxicab(Pt const& a) { return std::abs(a.h) + std::abs(a.v); }

/// Makes each coordinate 0 that is the same in all points. That changes no difference, and keeps
/// such a coordinate from having a say in the scale, which the others could be too small for.
/// Returns 1 in the coordinates that were dropped, else 0.
template <std::size_t N> Pt DropCommon(std::array<Pt, N>& points) {
    Pt dropped;
    for (double Pt::*const coordinate : {&Pt::h, &Pt::v}) {
        double const common = points[0].*coordinate;
        // The first comparison tells for nearly all input.
        if (points[N - 1].*coordinate == common && std::isfinite(common) &&
            std::all_of(points.begin(), points.end(),
                        [&](Pt const& p) { return p.*coordinate == common; })) {
            for (Pt& p : points) {
                p.*coordinate = 0.0;
            }
            dropped.*coordinate = 1.0;
        }
    }
    return dropped;
}

/// Points whose coordinates were multiplied by a power of two, if need be, so that products of four
/// of them neither overflow nor underflow in a way that matters. The results then scale with the
/// input exactly: a curve 2^k times as large has a result 2^k times as large, bit by bit.
template <std::size_t N> class ScaledPoints {
public:
    explicit ScaledPoints(std::array<Pt, N> const& points) : mPts(points) {
        double sum = 0.0;
        for (Pt const& p : points) {
            sum += Taxicab(p);
        }
        if (!Ordinary(sum)) {
            Scale();
        }
    }
    Pt const& operator[](std::size_t i) const { return mPts[i]; }
    /// False when a coordinate is NaN or infinite.
    bool Finite() const { return mFinite; }
    bool Scaled() const { return mExponent != 0; }
    /// From the input's unit to the one of the points, and back; infinite where it overflows.
    double Down(double x) const { return Scaled() ? std::scalbn(x, -mExponent) : x; }
    double Up(double x) const { return Scaled() ? std::scalbn(x, mExponent) : x; }
    Pt Up(Pt const& p) const { return Pt(Up(p.h), Up(p.v)); }

private:
    static constexpr double kLeast = 0x1p-100;
    static constexpr double kGreatest = 0x1p100;

    /// True when points with this sum of all coordinates' magnitudes stay as they are, as nearly
    /// all do. False for a NaN.
    static bool Ordinary(double sum) { return sum >= kLeast && sum <= kGreatest; }
    void Scale() {
        double greatest = 0.0;
        for (Pt const& p : mPts) {
            for (double const x : {p.h, p.v}) {
                mFinite = mFinite && std::isfinite(x);
                greatest = std::fmax(greatest, std::abs(x));
            }
        }
        if (!mFinite || greatest == 0.0) {
            return;
        }
        mExponent = std::ilogb(greatest);
        for (Pt& p : mPts) {
            p = Pt(std::scalbn(p.h, -mExponent), std::scalbn(p.v, -mExponent));
        }
    }

    std::array<Pt, N> mPts;
    int mExponent = 0;
    bool mFinite = true;
};

/// The cubic through the same points as a quadratic: each control point rounded once or twice.
inline CBezier Raised(CBSpline const& c) {
    // In thirds, as the sum of three coordinates might overflow.
    return CBezier(c.P0, c.P0 / 3.0 + c.P1 * (2.0 / 3.0), c.P2 / 3.0 + c.P1 * (2.0 / 3.0), c.P2);
}

/// Goes through the segments of a path as its own measuring does: an element before any move begins
/// at (0, 0), one after a close at the last point drawn. Calls visitor.Move(point),
/// Line(from, to), Curve(CBezier), Close(from, start). Ends early where the points do not suffice.
template <class Visitor> void ForEachSegment(CPath const& path, Visitor& visitor) {
    Pt start;
    Pt current;
    for (ElementCursor element(path); element.Next();) {
        Pt const from = current;
        switch (element.Code()) {
        case kPathMove:
            start = current = element.Pt(0);
            visitor.Move(current);
            break;
        case kPathLine:
            current = element.Pt(0);
            visitor.Line(from, current);
            break;
        case kPathCurve:
            current = element.Pt(2);
            visitor.Curve(CBezier(from, element.Pt(0), element.Pt(1), current));
            break;
        case kPathClose:
            visitor.Close(from, start);
            break;
        default:
            break;
        }
    }
}

} // namespace trammel_detail

#endif
