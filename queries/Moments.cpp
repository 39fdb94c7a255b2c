// SPDX-License-Identifier: MIT

#include "Moments.h"

#include "ContourWalk_p.h"
#include "PointMath_p.h"
#include "TwoSum_p.h"

#include <array>
#include <cstddef>
#include <utility>

namespace trammel {

// Each segment p(t) of a contour spans a fan from a common reference point. Let f be a homogeneous
// polynomial of degree k, with coordinates counted from there. By Green's theorem its integral over
// the fan is the integral of f(p) (p x p') over t, divided by k + 2. The fan of a line is a
// triangle. The reference is the first point drawn, so no coordinate exceeds the outline's extent.

namespace {

using trammel_detail::CompensatedSum;
using trammel_detail::Cross;
using trammel_detail::PointAt;

typedef TPoint<double> Pt;

/// Twice the area of the fan of a line. The difference keeps the rounding in proportion to the
/// line's length, so that many short lines far from the reference do not add up to more.
double CrossOfFan(Pt const& a, Pt const& b) { return Cross(a, b - a); }

/// Gathers the integral of the density, the area.
class AreaSum {
public:
    void AddTriangle(Pt const& a, Pt const& b) { mArea.Add(CrossOfFan(a, b) * 0.5); }
    /// Adds the fan of a cubic: its chord's triangle, and what lies between, from differences to
    /// the start. The latter's weights are the integrals of products of Bernstein polynomials.
    void AddCurve(Pt const& p0, Pt const& p1, Pt const& p2, Pt const& p3) {
        AddTriangle(p0, p3);
        Pt const a = p1 - p0;
        Pt const b = p2 - p0;
        Pt const c = p3 - p0;
        mArea.Add((Cross(a, b) * 3.0 + Cross(a, c) * 3.0 + Cross(b, c) * 6.0) / 20.0);
    }
    double Value() const { return mArea.Value(); }

private:
    CompensatedSum mArea;
};

/// Gathers the integrals of 1, h, v, h², h v and v² over the fans.
class MomentSums {
public:
    void AddTriangle(Pt const& a, Pt const& b) {
        double const cross = CrossOfFan(a, b);
        Add({cross / 2.0, cross * (a.h + b.h) / 6.0, cross * (a.v + b.v) / 6.0,
             cross * (a.h * a.h + a.h * b.h + b.h * b.h) / 12.0,
             cross * (a.h * (a.v + a.v + b.v) + b.h * (a.v + b.v + b.v)) / 24.0,
             cross * (a.v * a.v + a.v * b.v + b.v * b.v) / 12.0});
    }
    /// Adds the fan of a cubic. The integrands are of degree 11 at most, which Gauss' formula of
    /// six nodes integrates exactly.
    void AddCurve(Pt const& p0, Pt const& p1, Pt const& p2, Pt const& p3) {
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
    double operator[](std::size_t i) const { return mSums[i].Value(); }

private:
    void Add(std::array<double, 6> const& fan) {
        for (std::size_t i = 0; i < fan.size(); ++i) {
            mSums[i].Add(fan[i]);
        }
    }

    std::array<CompensatedSum, 6> mSums;
};

/// Adds the fans of an outline's segments to `Sums`, and calls closed() after each contour.
template <class Sums, class Closed> class FanWalk {
public:
    FanWalk(Sums& sums, Closed const& closed) : mSums(sums), mClosed(closed) {}

    void Begin(void const* p) {
        if (mDrawn) {
            Close();
        } else if (mFirst) {
            mReference = PointAt(p);
        }
        mStart = mCurrent = Relative(p);
        Draw();
    }
    void LineTo(void const* p) {
        Pt const to = Relative(p);
        mSums.AddTriangle(mCurrent, to);
        mCurrent = to;
        Draw();
    }
    void CurveTo(void const* c1, void const* c2, void const* e) {
        Pt const to = Relative(e);
        mSums.AddCurve(mCurrent, Relative(c1), Relative(c2), to);
        mCurrent = to;
        Draw();
    }
    void Close() {
        if (mDrawn) {
            mSums.AddTriangle(mCurrent, mStart);
            mStart = mCurrent;
            mDrawn = false;
            mClosed();
        }
    }
    Pt Reference() const { return mReference; }

private:
    Pt Relative(void const* p) const { return PointAt(p) - mReference; }
    void Draw() { mFirst = false, mDrawn = true; }

    Sums& mSums;
    Closed const& mClosed;
    Pt mReference; ///< the first move, or (0, 0) where drawing begins without one
    Pt mStart;
    Pt mCurrent;
    bool mFirst = true;  ///< nothing has been drawn
    bool mDrawn = false; ///< the contour has points
};

template <class Outline> double AreaOf(Outline const& outline) {
    AreaSum area;
    auto const closed = [] {};
    FanWalk walk(area, closed);
    trammel_detail::WalkContours(outline, walk);
    return area.Value();
}

template <class Outline> AreaMoments AllMoments(Outline const& outline) {
    MomentSums sums;
    auto const closed = [] {};
    FanWalk walk(sums, closed);
    trammel_detail::WalkContours(outline, walk);
    // About the reference first, then about the centroid.
    double const area = sums[0];
    Pt const centroid(sums[1] / area, sums[2] / area);
    return AreaMoments{area, centroid + walk.Reference(), sums[3] - area * centroid.h * centroid.h,
                       sums[4] - area * centroid.h * centroid.v,
                       sums[5] - area * centroid.v * centroid.v};
}

} // namespace

double SignedArea(CPath const& path) noexcept { return AreaOf(path); }
double SignedArea(TPolygon<double> const& polygon) noexcept { return AreaOf(polygon); }
double SignedArea(CFPolygonRef const& polygon) noexcept { return AreaOf(polygon); }

std::vector<double> ContourAreas(CPath const& path) {
    std::vector<double> areas;
    AreaSum area;
    auto const closed = [&] { areas.push_back(std::exchange(area, AreaSum()).Value()); };
    FanWalk walk(area, closed);
    trammel_detail::WalkContours(path, walk);
    return areas;
}

AreaMoments MomentsOf(CPath const& path) noexcept { return AllMoments(path); }
AreaMoments MomentsOf(TPolygon<double> const& polygon) noexcept { return AllMoments(polygon); }
AreaMoments MomentsOf(CFPolygonRef const& polygon) noexcept { return AllMoments(polygon); }

} // namespace trammel
