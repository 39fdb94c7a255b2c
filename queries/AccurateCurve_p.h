// SPDX-License-Identifier: MIT

// Control points brought to an ordinary magnitude, for the accurate queries on curves. Not
// installed.

#ifndef TRAMMEL_ACCURATECURVE_P_H
#define TRAMMEL_ACCURATECURVE_P_H

#include "CBSpline.h"
#include "CBezier.h"
#include "LengthKernels_p.h"
#include "PointMath_p.h"
#include "TPoint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace trammel_detail {

typedef TPoint<double> Pt;

/// Sets a coordinate to 0 in all points where all have the same finite value in it. Returns 1 in
/// each coordinate that was dropped like this, and 0 in the others.
///
/// That changes no difference of points. A large common coordinate could make ScaledPoints choose a
/// scale at which the other coordinates are too small.
template <std::size_t N> Pt DropCommon(std::array<Pt, N>& points) {
    Pt dropped;
    for (double Pt::*const coordinate : {&Pt::h, &Pt::v}) {
        double const common = points[0].*coordinate;
        // The first comparison suffices for nearly all input.
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

/// Points whose coordinates are multiplied by a power of two, if need be. Then no product of four
/// of them overflows, or underflows in a way that matters.
///
/// A query computes with these points and converts its result back by Up(). So the results scale
/// with the input exactly: a curve 2^k times as large has a result 2^k times as large, bit by bit.
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
    /// True when the coordinates differ from the input's.
    bool Scaled() const { return mExponent != 0; }
    /// Converts a length from the input's unit to the points' unit. The result is infinite where it
    /// overflows.
    double Down(double x) const { return Scaled() ? std::scalbn(x, -mExponent) : x; }
    /// Converts a length or a coordinate back, in the same way.
    double Up(double x) const { return Scaled() ? std::scalbn(x, mExponent) : x; }
    Pt Up(Pt const& p) const { return Pt(Up(p.h), Up(p.v)); }

private:
    /// True when points with this sum of all coordinates' magnitudes stay as they are. Nearly all
    /// do. False for a NaN.
    static bool Ordinary(double sum) { return sum >= kLeastMeasured && sum <= kGreatestMeasured; }
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

/// Returns the cubic through the same points as a quadratic. Its ends are the quadratic's. Its
/// control points are off by rounding: at most 3·2^-53 of the greatest coordinate, and underflow.
inline CBezier Raised(CBSpline const& c) {
    // The terms are thirds, as the sum of three coordinates might overflow.
    return CBezier(c.P0, c.P0 / 3.0 + c.P1 * (2.0 / 3.0), c.P2 / 3.0 + c.P1 * (2.0 / 3.0), c.P2);
}

} // namespace trammel_detail

#endif
