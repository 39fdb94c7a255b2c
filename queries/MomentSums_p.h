// SPDX-License-Identifier: MIT

// The integrals over the region that an outline bounds. Not installed.

#ifndef TRAMMEL_MOMENTSUMS_P_H
#define TRAMMEL_MOMENTSUMS_P_H

#include "ContourWalk_p.h"
#include "PointMath_p.h"
#include "TPoint.h"
#include "TwoSum_p.h"
#include "Vector_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace trammel_detail {

// Each segment p(t) of a contour spans a fan from a common reference point. Let f be a homogeneous
// polynomial of degree k, with coordinates counted from there. By Green's theorem its integral over
// the fan is the integral of f(p) (p x p') over t, divided by k + 2. The fan of a line is a
// triangle. The reference is the first point drawn, so no coordinate exceeds the outline's extent.

/// Twice the area of the fan of a line. The difference keeps the rounding in proportion to the
/// line's length, so that many short lines far from the reference do not add up to more.
inline double CrossOfFan(TPoint<double> const& a, TPoint<double> const& b) {
    return Cross(a, b - a);
}

/// Gathers the integral of the density, the area.
///
/// Each lane of the sum has one product of the cross products. The sum keeps what rounding takes
/// from it, so the lanes are subtracted at the end without a loss.
class AreaSum {
public:
    void AddTriangle(Double2 const& a, Double2 const& b) {
        mArea.Add(CrossLanes(a, b - a) * Double2(0.5));
    }
    /// Adds the fan of a cubic: its chord's triangle, and what lies between, from differences to
    /// the start. The latter's weights are the integrals of products of Bernstein polynomials: for
    /// differences a, b and c they are 3/20 for a x b and for a x c, and 6/20 for b x c.
    void AddCurve(Double2 const& p0, Double2 const& p1, Double2 const& p2, Double2 const& p3) {
        Double2 const a = p1 - p0;
        Double2 const b = p2 - p0;
        Double2 const c = p3 - p0;
        Double2 const between = CrossLanes(a, b + c) + CrossLanes(b, c + c);
        mArea.Add(CrossLanes(p0, c) * Double2(0.5) + between * Double2(0.15));
    }
    void EndContour() {}
    double Value() const {
        Double2 const sum = mArea.Sum();
        Double2 const lost = mArea.Errors();
        return (Lane<1>(sum) - Lane<0>(sum)) + (Lane<1>(lost) - Lane<0>(lost));
    }

private:
    /// Returns the two products of a x b, where v is in lane 0: the cross product is lane 1 less
    /// lane 0.
    static Double2 CrossLanes(Double2 const& a, Double2 const& b) { return a * Swapped(b); }

    CompensatedSum<Double2> mArea;
};

/// Gathers the integrals of 1, h, v, h², h v and v² over the fans.
class MomentSums {
public:
    typedef TPoint<double> Pt;

    void AddTriangle(Double2 const& from, Double2 const& to) {
        Pt const a = PointOf(from);
        Pt const b = PointOf(to);
        double const cross = CrossOfFan(a, b);
        Add({cross / 2.0, cross * (a.h + b.h) / 6.0, cross * (a.v + b.v) / 6.0,
             cross * (a.h * a.h + a.h * b.h + b.h * b.h) / 12.0,
             cross * (a.h * (a.v + a.v + b.v) + b.h * (a.v + b.v + b.v)) / 24.0,
             cross * (a.v * a.v + a.v * b.v + b.v * b.v) / 12.0});
    }
    /// Adds the fan of a cubic. The integrands are of degree 11 at most, which Gauss' formula of
    /// six nodes integrates exactly.
    void AddCurve(Double2 const& start, Double2 const& control1, Double2 const& control2,
                  Double2 const& end) {
        Pt const p0 = PointOf(start);
        Pt const p1 = PointOf(control1);
        Pt const p2 = PointOf(control2);
        Pt const p3 = PointOf(end);
        struct Node {
            double t;
            double weight;
        };
        static constexpr Node kNodes[] = {
            {0.5 - 0.5 * 0.93246951420315202781, 0.5 * 0.17132449237917034504},
            {0.5 - 0.5 * 0.66120938646626451366, 0.5 * 0.36076157304813860757},
            {0.5 - 0.5 * 0.23861918608319690863, 0.5 * 0.46791393457269104739},
            {0.5 + 0.5 * 0.23861918608319690863, 0.5 * 0.46791393457269104739},
            {0.5 + 0.5 * 0.66120938646626451366, 0.5 * 0.36076157304813860757},
            {0.5 + 0.5 * 0.93246951420315202781, 0.5 * 0.17132449237917034504},
        };
        Pt const d0 = p1 - p0;
        Pt const d1 = p2 - p1;
        Pt const d2 = p3 - p2;
        std::array<double, 6> fan = {};
        for (Node const& node : kNodes) {
            double const t = node.t;
            double const s = 1.0 - t;
            Pt const p = p0 * (s * s * s) + p1 * (3.0 * s * s * t) + p2 * (3.0 * s * t * t) +
                         p3 * (t * t * t);
            Pt const derivative = d0 * (3.0 * s * s) + d1 * (6.0 * s * t) + d2 * (3.0 * t * t);
            double const area = node.weight * Cross(p, derivative);
            fan[0] += area / 2.0;
            fan[1] += area * p.h / 3.0;
            fan[2] += area * p.v / 3.0;
            fan[3] += area * p.h * p.h / 4.0;
            fan[4] += area * p.h * p.v / 4.0;
            fan[5] += area * p.v * p.v / 4.0;
        }
        Add(fan);
    }
    void EndContour() {}
    double operator[](std::size_t i) const { return mSums[i].Value(); }

private:
    void Add(std::array<double, 6> const& fan) {
        for (std::size_t i = 0; i < fan.size(); ++i) {
            mSums[i].Add(fan[i]);
        }
    }

    std::array<CompensatedSum<double>, 6> mSums;
};

/// Powers of two by which coordinates are multiplied, before and after they are counted from the
/// reference. Neither product rounds, or else the loss is below the least normal double.
struct FanScale {
    TPoint<double> before = TPoint<double>(1.0, 1.0); ///< at most 1
    TPoint<double> after = TPoint<double>(1.0, 1.0);  ///< at least 1

    /// Returns the scale for outlines whose coordinates, as seen from the reference, are as large
    /// as `extent`. With it no product overflows, and none underflows that counts. Ordinary
    /// outlines keep 1.
    static FanScale For(TPoint<double> const& extent) {
        FanScale scale;
        for (double TPoint<double>::*const coordinate : {&TPoint<double>::h, &TPoint<double>::v}) {
            constexpr double kLeast = 0x1p-100;
            constexpr double kGreatest = 0x1p100;
            constexpr int kMostExponent = 1000; // the power and its inverse are normal numbers
            double const size = extent.*coordinate;
            if (size > kGreatest) {
                int const exponent = std::isinf(size) ? kMostExponent : std::ilogb(size);
                scale.before.*coordinate = std::scalbn(1.0, -std::min(exponent, kMostExponent));
            } else if (size > 0.0 && size < kLeast) {
                int const exponent = std::ilogb(size);
                scale.after.*coordinate = std::scalbn(1.0, std::min(-exponent, kMostExponent));
            }
        }
        return scale;
    }
    bool IsOne() const {
        return before.h == 1.0 && before.v == 1.0 && after.h == 1.0 && after.v == 1.0;
    }
    /// Returns the reference's part of Relative().
    Double2 Reference(Double2 const& p) const { return p * Double2::Of(before.v, before.h); }
    /// Returns `p` as seen from a reference.
    Double2 Relative(Double2 const& p, Double2 const& reference) const {
        return (Reference(p) - reference) * Double2::Of(after.v, after.h);
    }
    /// Undoes Relative().
    TPoint<double> Absolute(TPoint<double> const& p, TPoint<double> const& reference) const {
        return TPoint<double>((p.h / after.h + reference.h) / before.h,
                              (p.v / after.v + reference.v) / before.v);
    }
    /// Returns an integral of h to the power of `h` and v to the power of `v` in the input's units.
    double Unscaled(double integral, int h, int v) const {
        if (IsOne()) {
            return integral;
        }
        int const exponentH = std::ilogb(before.h) + std::ilogb(after.h);
        int const exponentV = std::ilogb(before.v) + std::ilogb(after.v);
        return std::scalbn(integral, -(exponentH * h + exponentV * v));
    }
};

/// The scale 1, without its products.
struct NoFanScale {
    Double2 Reference(Double2 const& p) const { return p; }
    Double2 Relative(Double2 const& p, Double2 const& reference) const { return p - reference; }
};

/// Adds the fans of an outline's segments to `Sums`, which has the members of AreaSum.
template <class Sums, class Scale> class FanWalk {
public:
    explicit FanWalk(Scale const& scale) : mScale(scale) {}

    void Begin(void const* p) {
        if (mDrawn) {
            Close();
        } else if (mFirst) {
            mReference = mScale.Reference(CoordinatesAt(p));
        }
        mStart = mCurrent = Relative(p);
        Draw();
    }
    void LineTo(void const* p) {
        Double2 const to = Relative(p);
        mSums.AddTriangle(mCurrent, to);
        mCurrent = to;
        Draw();
    }
    void CurveTo(void const* c1, void const* c2, void const* e) {
        Double2 const to = Relative(e);
        mSums.AddCurve(mCurrent, Relative(c1), Relative(c2), to);
        mCurrent = to;
        Draw();
    }
    void Close() {
        if (mDrawn) {
            mSums.AddTriangle(mCurrent, mStart);
            mStart = mCurrent;
            mDrawn = false;
            mSums.EndContour();
        }
    }

    Sums const& Result() const { return mSums; }
    /// Returns the greatest coordinates as seen from the reference. NaN does not count.
    TPoint<double> Extent() const { return PointOf(mExtent); }
    TPoint<double> Reference() const { return PointOf(mReference); }

private:
    Double2 Relative(void const* p) {
        Double2 const relative = mScale.Relative(CoordinatesAt(p), mReference);
        mExtent = Max(Abs(relative), mExtent);
        return relative;
    }
    void Draw() { mFirst = false, mDrawn = true; }

    Sums mSums;
    Scale mScale;
    Double2 mExtent = 0.0;
    Double2 mReference = 0.0; ///< the first move, or (0, 0) where drawing begins without one
    Double2 mStart = 0.0;
    Double2 mCurrent = 0.0;
    bool mFirst = true;  ///< nothing has been drawn
    bool mDrawn = false; ///< the contour has points
};

/// What the fans of an outline add up to.
template <class Sums> struct FanSums {
    Sums sums;
    FanScale scale;
    TPoint<double> reference;
};

/// Adds the fans of an outline. It walks a second time where the first walk shows that the
/// coordinates have to be scaled. WalkContours takes the outline.
template <class Sums, class Outline> FanSums<Sums> SumFans(Outline const& outline) {
    FanWalk<Sums, NoFanScale> walk{NoFanScale()};
    WalkContours(outline, walk);
    FanScale const scale = FanScale::For(walk.Extent());
    if (scale.IsOne()) {
        return {walk.Result(), scale, walk.Reference()};
    }
    FanWalk<Sums, FanScale> scaled(scale);
    WalkContours(outline, scaled);
    return {scaled.Result(), scale, scaled.Reference()};
}

template <class Outline> double AreaOf(Outline const& outline) {
    FanSums<AreaSum> const fans = SumFans<AreaSum>(outline);
    return fans.scale.Unscaled(fans.sums.Value(), 1, 1);
}

/// Returns area, centroid and second moments in the fields of an AreaMoments.
template <class AreaMoments, class Outline> AreaMoments AllMomentsOf(Outline const& outline) {
    FanSums<MomentSums> const fans = SumFans<MomentSums>(outline);
    MomentSums const& sums = fans.sums;
    FanScale const& scale = fans.scale;
    // About the reference first, then about the centroid.
    double const area = sums[0];
    TPoint<double> const centroid(sums[1] / area, sums[2] / area);
    AreaMoments moments;
    moments.area = scale.Unscaled(area, 1, 1);
    moments.centroid = scale.Absolute(centroid, fans.reference);
    moments.hh = scale.Unscaled(sums[3] - area * centroid.h * centroid.h, 3, 1);
    moments.hv = scale.Unscaled(sums[4] - area * centroid.h * centroid.v, 2, 2);
    moments.vv = scale.Unscaled(sums[5] - area * centroid.v * centroid.v, 1, 3);
    return moments;
}

} // namespace trammel_detail

#endif
