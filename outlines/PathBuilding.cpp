// SPDX-License-Identifier: MIT

#include "PathBuilding.h"

#include "ArcCurves_p.h"
#include "CurveForms_p.h"
#include "ElementAppender_p.h"
#include "PointMath_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace trammel {

namespace {

using trammel_detail::ArcCurveCount;
using trammel_detail::ArcCurves;
using trammel_detail::IsFinite;
using trammel_detail::PrepareToAppend;
using trammel_detail::RecordedCurves;
using trammel_detail::Reflected;
using trammel_detail::TwoThirds;

typedef TPoint<double> Pt;
typedef std::vector<std::array<Pt, 3>> Curves;

/// Makes room and brings the current point up to date, and returns that point.
Pt Prepare(CPath& path, std::size_t codes, std::size_t points) {
    PrepareToAppend(path, codes + 1, points + 1); // with a move
    return path.mCurrentPt;
}

void Open(CPath& path) {
    if (!path.mOpen) {
        path.MoveTo(path.mCurrentPt);
    }
}

/// Adds a curve to a path with room for two.
void Record(CPath& path, Pt const& c1, Pt const& c2, Pt const& e) {
    RecordedCurves const curves(path.mCurrentPt, c1, c2, e);
    for (std::size_t i = 0; i < curves.count; ++i) {
        Open(path);
        path.CurveTo(curves.points[i][0], curves.points[i][1], curves.points[i][2]);
    }
}

/// Adds a line to a path with room for it.
void RecordLine(CPath& path, Pt const& e) {
    if (e != path.mCurrentPt) {
        Open(path);
        path.LineTo(e);
    }
}

/// Returns the control point before the current point, mirrored in it. After anything but a curve
/// it is the current point.
Pt SmoothControl(CPath const& path) {
    bool const curve = path.mOpen && !path.mCtls.empty() && path.mCtls.back() == kPathCurve &&
                       path.mPts.size() >= 3;
    return curve ? Reflected(path.mPts[path.mPts.size() - 2], path.mPts.back()) : path.mCurrentPt;
}

/// Returns the curves of the arc, or none where a coordinate is not finite.
Curves CurvesOf(ArcCurves arc, double tolerance) {
    Curves curves(ArcCurveCount(arc.Sweep(), arc.GreaterRadius(), tolerance));
    arc.Cut(curves.size());
    for (std::array<Pt, 3>& curve : curves) {
        arc.Next(curve);
        if (!std::all_of(curve.begin(), curve.end(), IsFinite)) {
            return Curves();
        }
    }
    return curves;
}

} // namespace

CPath& AddCurve(CPath& path, Pt const& c1, Pt const& c2, Pt const& e) {
    std::array<Pt, 3> const points{c1, c2, e};
    Prepare(path, 2, 6);
    Record(path, points[0], points[1], points[2]);
    return path;
}

CPath& QuadTo(CPath& path, Pt const& q, Pt const& e) {
    std::array<Pt, 2> const points{q, e};
    Pt const from = Prepare(path, 2, 6);
    Record(path, TwoThirds(from, points[0]), TwoThirds(points[1], points[0]), points[1]);
    return path;
}

CPath& SmoothCurveTo(CPath& path, Pt const& c2, Pt const& e) {
    std::array<Pt, 2> const points{c2, e};
    Prepare(path, 2, 6);
    Record(path, SmoothControl(path), points[0], points[1]);
    return path;
}

CPath& SmoothQuadTo(CPath& path, Pt const& e) {
    Pt const end = e;
    Pt const from = Prepare(path, 2, 6);
    // The first control point of the cubic form is known: it is a third of the way back from the
    // quadratic curve's own.
    Pt const c1 = SmoothControl(path);
    Pt const q = from + (c1 - from) * 1.5;
    Record(path, c1, TwoThirds(end, q), end);
    return path;
}

CPath& ArcTo(CPath& path, double hRadius, double vRadius, double rotation, bool large,
             bool positive, Pt const& e, double tolerance) {
    Pt const end = e;
    Pt const from = Prepare(path, 1, 1);
    double const rh = std::abs(hRadius);
    double const rv = std::abs(vRadius);
    if (rh == 0.0 || rv == 0.0 || end == from) {
        RecordLine(path, end);
        return path;
    }
    Curves const curves =
        CurvesOf(ArcCurves::BetweenPoints(from, end, rh, rv, rotation, large, positive), tolerance);
    if (curves.empty()) {
        RecordLine(path, end);
        return path;
    }
    Prepare(path, 2 * curves.size(), 6 * curves.size());
    for (std::array<Pt, 3> const& curve : curves) {
        Record(path, curve[0], curve[1], curve[2]);
    }
    return path;
}

CPath& AddArc(CPath& path, EllipticalArc const& arc, double tolerance) {
    ArcCurves const ellipse = ArcCurves::AroundCenter(arc.center, arc.hRadius, arc.vRadius,
                                                      arc.rotation, arc.startAngle, arc.sweep);
    Curves curves = CurvesOf(ellipse, tolerance);
    if (curves.empty()) {
        return path;
    }
    if (arc.sweep == 0.0) {
        curves.clear();
    }
    Prepare(path, 1 + 2 * curves.size(), 1 + 6 * curves.size());
    path.LineTo(ellipse.Start());
    for (std::array<Pt, 3> const& curve : curves) {
        Record(path, curve[0], curve[1], curve[2]);
    }
    return path;
}

CPath& MoveBy(CPath& path, Pt const& d) {
    Pt const to = d;
    return path.MoveTo(Prepare(path, 1, 1) + to);
}

CPath& LineBy(CPath& path, Pt const& d) {
    Pt const to = d;
    RecordLine(path, Prepare(path, 1, 1) + to);
    return path;
}

CPath& CurveBy(CPath& path, Pt const& c1, Pt const& c2, Pt const& e) {
    std::array<Pt, 3> const points{c1, c2, e};
    Pt const from = Prepare(path, 2, 6);
    return AddCurve(path, from + points[0], from + points[1], from + points[2]);
}

CPath& QuadBy(CPath& path, Pt const& q, Pt const& e) {
    std::array<Pt, 2> const points{q, e};
    Pt const from = Prepare(path, 2, 6);
    return QuadTo(path, from + points[0], from + points[1]);
}

CPath& SmoothCurveBy(CPath& path, Pt const& c2, Pt const& e) {
    std::array<Pt, 2> const points{c2, e};
    Pt const from = Prepare(path, 2, 6);
    return SmoothCurveTo(path, from + points[0], from + points[1]);
}

CPath& SmoothQuadBy(CPath& path, Pt const& e) {
    Pt const end = e;
    return SmoothQuadTo(path, Prepare(path, 2, 6) + end);
}

CPath& ArcBy(CPath& path, double hRadius, double vRadius, double rotation, bool large,
             bool positive, Pt const& e, double tolerance) {
    Pt const end = e;
    return ArcTo(path, hRadius, vRadius, rotation, large, positive, Prepare(path, 1, 1) + end,
                 tolerance);
}

} // namespace trammel
