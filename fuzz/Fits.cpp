// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "AccurateCurve.h"
#include "CPath.h"
#include "FitCurves.h"
#include "PathSegments.h"
#include "Simplify.h"
#include "SimplifyRings.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

namespace fuzz {

namespace {

typedef std::vector<Pt> Pts;

bool IsFinite(Pt const& p) { return std::isfinite(p.h) && std::isfinite(p.v); }

/// The greatest coordinate.
double SizeOf(Pts const& points) {
    double size = 0.0;
    for (Pt const& p : points) {
        size = std::max({size, std::abs(p.h), std::abs(p.v)});
    }
    return size;
}
/// The distances of such points are numbers, and so are their squares.
bool CanBeJudged(double size) { return size > 1e-100 && size < 1e100; }

/// Each of the points is within the distance of the path.
bool IsNear(Pts const& points, CPath const& path, double distance) {
    // Points of the path are rounded as its own coordinates are, which may be greater.
    double const slack = std::max(SizeOf(points), SizeOf(path.mPts)) * 0x1p-40;
    return std::all_of(points.begin(), points.end(), [&](Pt const& p) {
        double nearest = HUGE_VAL;
        for (trammel::PathSegment const& s : trammel::Segments(path)) {
            double const here = trammel::NearestPoint(s.Curve(), p, slack).distance;
            nearest = std::min(nearest, here);
        }
        // The last term: the points are rounded, to subnormal numbers as well.
        return nearest <= distance * (1.0 + 1e-9) + 4.0 * slack + 0x1p-1070;
    });
}

Pts FiniteOf(Pts const& points) {
    Pts finite;
    std::copy_if(points.begin(), points.end(), std::back_inserter(finite), IsFinite);
    return finite;
}

void Fit(Pts const& points, double tolerance, double angle) {
    Pts const finite = FiniteOf(points);
    CPath fit;
    double const kept = trammel::FitCurves(points, tolerance, angle, fit);
    Require(kept >= 0.0 && (kept <= tolerance || kept == 0.0), "a fit keeps the tolerance");
    Require(fit.mPts.empty() == finite.empty(), "points make a fit");
    trammel::CurveFitter fitter(tolerance, angle);
    for (Pt const& p : points) {
        fitter.Add(p);
    }
    CPath const tail = fitter.Tail();
    fitter.Finish();
    CPath const& drawn = fitter.Finished();
    Require(drawn.mPts.empty() == finite.empty(), "points make a stroke");
    if (finite.empty()) {
        return;
    }
    for (CPath const* path : {static_cast<CPath const*>(&fit), &drawn}) {
        Require(path->mPts.front() == finite.front(), "it begins at the first point");
        // The line that closes a stroke has no point of its own.
        bool const closes = path->mCtls.back() == kPathClose;
        Require(path->mPts.back() == finite.back() ||
                    (closes && path->mPts.front() == finite.back()),
                "it ends at the last point");
        Require(std::all_of(path->mPts.begin(), path->mPts.end(), IsFinite), "it is finite");
    }
    if (CanBeJudged(SizeOf(finite)) && fit.mCtls.size() > 1) {
        Require(IsNear(finite, fit, kept), "every point is near the fit");
        Require(IsNear(finite, drawn, fitter.Distance()), "every point is near the stroke");
    }
}

void SimplifyOutline(Input& in, double tolerance) {
    CPath path;
    Pts ends;
    for (int i = in.Int(0, 20); i > 0; --i) {
        Pt const p = in.Point();
        switch (in.Int(0, 5)) {
        case 0:
            path.MoveTo(p);
            break;
        case 1:
            path.LineTo(p);
            break;
        case 2:
            path.ClosePath();
            break;
        default: { // mostly in the direction of the curve before
            std::size_t const n = path.mPts.size();
            bool const isSmooth = n > 1 && in.Flag();
            Pt const last = path.mCurrentPt;
            Pt const c = isSmooth ? last + (last - path.mPts[n - 2]) : in.Point();
            path.CurveTo(c, in.Point(), p);
            break;
        }
        }
    }
    CPath simple;
    double const kept = trammel::Simplify(path, tolerance, simple);
    Require(kept >= 0.0 && (kept <= tolerance || kept == 0.0), "a result keeps the tolerance");
    bool finite = CanBeJudged(SizeOf(path.mPts));
    for (trammel::PathSegment const& s : trammel::Segments(path)) {
        finite = finite && IsFinite(s.start) && IsFinite(s.control1) && IsFinite(s.control2) &&
                 IsFinite(s.end);
        ends.push_back(s.start);
        ends.push_back(s.IsCurve() ? s.Curve().TPt(0.5) : s.end);
    }
    if (finite) {
        Require(IsNear(ends, simple, kept), "every joint and middle is near the result");
    }
    for (auto const crossings : {trammel::NewCrossings::kAllow, trammel::NewCrossings::kAvoid}) {
        double const own = trammel::Simplify(path, tolerance, crossings, simple);
        Require(own >= 0.0 && (own <= tolerance || own == 0.0), "nodes keep the tolerance");
        if (finite) {
            Require(IsNear(ends, simple, own), "every joint is near the result with nodes");
        }
        std::vector<CPath> several;
        trammel::SimplifyOutlines({path, path}, tolerance, crossings, several);
        Require(several.size() == 2 && several[0].mCtls == several[1].mCtls,
                "equal outlines stay equal");
    }
}

void SimplifyPolygons(Input& in, double tolerance) {
    std::vector<trammel::Ring> rings;
    for (int i = in.Int(0, 4); i > 0; --i) {
        rings.push_back(in.Points(24));
        if (!rings.back().empty() && i > 1 && in.Flag()) { // a common border
            rings.push_back(rings.back());
            rings.back().push_back(in.Point());
        }
    }
    auto const crossings =
        in.Flag() ? trammel::NewCrossings::kAvoid : trammel::NewCrossings::kAllow;
    std::vector<trammel::Ring> simple;
    double const kept = trammel::SimplifyRings(rings, tolerance, crossings, simple);
    Require(kept >= 0.0 && (kept <= tolerance || kept == 0.0), "rings keep the tolerance");
    Require(simple.size() == rings.size(), "there are as many rings");
    for (std::size_t i = 0; i < rings.size(); ++i) {
        for (Pt const& p : simple[i]) {
            Require(std::find(rings[i].begin(), rings[i].end(), p) != rings[i].end(),
                    "vertices are the ring's own");
        }
        Pts const finite = FiniteOf(rings[i]);
        if (CanBeJudged(SizeOf(finite)) && simple[i].size() > 1) {
            CPath path;
            path.MoveTo(simple[i].front());
            for (Pt const& p : simple[i]) {
                path.LineTo(p);
            }
            Require(IsNear(finite, path.ClosePath(), kept), "every vertex is near the ring");
        }
    }
}

} // namespace

void Fits(Input& in) {
    Pts const points = in.Points(60);
    Fit(points, in.Tolerance(SizeOf(FiniteOf(points))), std::abs(in.Number()));
    double const tolerance = in.Flag() ? std::abs(in.Number()) : in.Int(0, 100) * 0.5;
    SimplifyOutline(in, tolerance);
    SimplifyPolygons(in, tolerance);
}

} // namespace fuzz
