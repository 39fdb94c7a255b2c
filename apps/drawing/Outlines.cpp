// SPDX-License-Identifier: MIT

#include "Outlines.h"

#include <trammel/CBezier.h>
#include <trammel/CMatrix3x3.h>
#include <trammel/CPathActions.h>
#include <trammel/TLine.h>
#include <trammel/UScalar.h>

#include <algorithm>
#include <utility>

namespace tool {

namespace {

typedef TPoint<double> Pt;

/// The deviation of a fine flattening, as a share of the figure's size.
constexpr double kFineShare = 1e-6;

/// Two crossings of a clipped line are the same within this share of its length. Subpaths that meet
/// give the same crossing with different rounding.
constexpr double kSameShare = 1e-12;

/// Repeats the elements that it visits on another path.
class Repeater : public CPathActions {
public:
    explicit Repeater(CPath& path) : mPath(path) {}
    void MoveTo(Pt const& p) override { mPath.MoveTo(p); }
    void LineTo(Pt const& p) override { mPath.LineTo(p); }
    void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override { mPath.CurveTo(c1, c2, e); }
    void ClosePath() override { mPath.ClosePath(); }

private:
    CPath& mPath;
};

/// Begins a new path at each move.
class Splitter : public CPathActions {
public:
    std::vector<CPath> paths;

    void MoveTo(Pt const& p) override {
        paths.emplace_back();
        paths.back().MoveTo(p);
    }
    void LineTo(Pt const& p) override { Current().LineTo(p); }
    void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override { Current().CurveTo(c1, c2, e); }
    void ClosePath() override { Current().ClosePath(); }

private:
    CPath& Current() {
        if (paths.empty()) {
            paths.emplace_back();
            paths.back().MoveTo(GetCurrentPt());
        }
        return paths.back();
    }
};

/// Grows bounds by the points that lie on the outline, and collects the curves that reach beyond.
class EndPointBounds : public CPathActions {
public:
    std::vector<Pt> points;
    std::vector<CBezier> curves;

    void MoveTo(Pt const& p) override { points.push_back(p); }
    void LineTo(Pt const& p) override { points.push_back(p); }
    void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override {
        points.push_back(e);
        curves.emplace_back(GetCurrentPt(), c1, c2, e);
    }
};

/// The bounds of points, the origin included. A rectangle cannot hold the origin alone: it is null
/// then, and a null rectangle takes the next point for its first.
TRect<double> BoundsOf(std::vector<Pt> const& points) {
    if (points.empty()) {
        return TRect<double>();
    }
    TRect<double> bounds;
    for (Pt const& p : points) {
        bounds |= p;
    }
    return bounds |= points.front();
}

class Flattener : public CPathActions {
public:
    explicit Flattener(double error) : mError(error) {}
    std::vector<TPolygon<double>> polygons;

    void MoveTo(Pt const& p) override { polygons.emplace_back().Append(p, true); }
    void LineTo(Pt const& p) override { Current().AppendUnique(p); }
    void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override {
        CBezier(GetCurrentPt(), c1, c2, e).Flatten(Current(), mError);
    }
    void ClosePath() override { Current().Close(); }

private:
    TPolygon<double>& Current() {
        if (polygons.empty()) {
            MoveTo(GetCurrentPt());
        }
        return polygons.back();
    }
    double mError;
};

class HitTester : public CPathActions {
public:
    HitTester(Pt const& p, double tolerance) : mPoint(p), mTolerance(tolerance) {}
    bool hit = false;

    void LineTo(Pt const& p) override { Segment(p); }
    void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override {
        hit = hit || CBezier(GetCurrentPt(), c1, c2, e).HitTest(mPoint, mTolerance);
    }
    void ClosePath() override { Segment(GetStartPt()); }

private:
    void Segment(Pt const& end) {
        hit = hit || TLine<double>(GetCurrentPt(), end).HitTest(mPoint, mTolerance);
    }
    Pt mPoint;
    double mTolerance;
};

/// Sets the flattening error of the curves' hit test for its own lifetime.
class CurveErrorScope {
public:
    explicit CurveErrorScope(double error) : mOld(CBezier::SetCurveError(error)) {}
    ~CurveErrorScope() { CBezier::SetCurveError(mOld); }
    CurveErrorScope(CurveErrorScope const&) = delete;
    CurveErrorScope& operator=(CurveErrorScope const&) = delete;

private:
    double mOld;
};

/// Returns the polygon, beginning with another vertex than the origin if it has one. Containment
/// depends on bounds, and these forget a leading vertex at the origin.
TPolygon<double> NotFromOrigin(TPolygon<double> const& polygon) {
    long const last = polygon.LastIndex();
    long first = 0;
    while (first < last && polygon.GetPt(first).Null()) {
        ++first;
    }
    if (first == 0) {
        return polygon;
    }
    TPolygon<double> turned;
    for (long i = 0; i <= last; ++i) {
        turned.Append(polygon.GetPt((first + i) % (last + 1)), true);
    }
    return turned;
}

} // namespace

void AddCurve(CPath& path, Pt const& c1, Pt const& c2, Pt const& e) {
    Pt const from = path.CurrentPoint();
    if (e != from || (c1 == from && c2 == from)) {
        path.CurveTo(c1, c2, e);
        return;
    }
    CBezier left;
    CBezier right;
    CBezier(from, c1, c2, e).Divide(left, right);
    path.CurveTo(left.P1, left.P2, left.P3);
    path.CurveTo(right.P1, right.P2, right.P3);
}

void AppendElements(CPath& path, CPath const& more) {
    Repeater repeater(path);
    more.ForAll(repeater);
}

std::vector<CPath> Subpaths(CPath const& path) {
    Splitter splitter;
    path.ForAll(splitter);
    return std::move(splitter.paths);
}

CPath WithoutDots(CPath const& path) {
    CPath out;
    for (CPath const& subpath : Subpaths(path)) {
        if (subpath.Length() != 0.0) {
            AppendElements(out, subpath);
        }
    }
    return out;
}

TRect<double> Around(TRect<double> const& a, TRect<double> const& b) { return a | b; }

double FineError(TRect<double> const& bounds) {
    return std::max(bounds.Width(), bounds.Height()) * kFineShare;
}

TRect<double> ControlBounds(CPath const& path) { return BoundsOf(path.mPts); }

TRect<double> DrawnBounds(CPath const& path) {
    EndPointBounds ends;
    path.ForAll(ends);
    if (ends.points.empty()) {
        return TRect<double>();
    }
    TRect<double> bounds = BoundsOf(ends.points);
    double const error = FineError(ControlBounds(path));
    for (CBezier const& curve : ends.curves) {
        // A curve lies within its control points, so most curves need no flattening.
        if (!bounds.Contains(curve.Extents())) {
            TPolygon<double> polygon;
            curve.Flatten(polygon, error);
            bounds |= polygon.Bounds();
        }
    }
    return bounds;
}

std::vector<TPolygon<double>> Flatten(CPath const& path, double error) {
    Flattener flattener(error);
    path.ForAll(flattener);
    return std::move(flattener.polygons);
}

CPath PathOf(std::vector<TPolygon<double>> const& polygons) {
    CPath path;
    for (TPolygon<double> const& polygon : polygons) {
        if (polygon.Empty()) {
            continue;
        }
        path.MoveTo(polygon.GetPt(0));
        for (long i = 1; i <= polygon.LastIndex(); ++i) {
            path.LineTo(polygon.GetPt(i));
        }
        if (polygon.Closed()) {
            path.ClosePath();
        }
    }
    return path;
}

Area::Area(CPath const& path, double error) {
    for (TPolygon<double> const& polygon : Flatten(path, error)) {
        mPolygons.push_back(NotFromOrigin(polygon));
    }
}

bool Area::Contains(Pt const& p) const {
    bool odd = false;
    for (TPolygon<double> const& polygon : mPolygons) {
        odd ^= polygon.Contains(p);
    }
    return odd;
}

std::vector<TLine<double>> Area::Clip(TLine<double> const& line) const {
    // The parity changes at the beginning and the end of each subpath's pieces.
    struct Change {
        double distance;
        Pt point;
    };
    std::vector<Change> changes;
    for (TPolygon<double> const& polygon : mPolygons) {
        for (TLine<double> const& piece : polygon.Clip(line)) {
            for (Pt const& p : {piece.mStart, piece.mEnd}) {
                changes.push_back({TLine<double>(line.mStart, p).Length(), p});
            }
        }
    }
    std::sort(changes.begin(), changes.end(),
              [](Change const& a, Change const& b) { return a.distance < b.distance; });
    double const same = line.Length() * kSameShare;
    std::vector<TLine<double>> pieces;
    for (std::size_t i = 0; i + 1 < changes.size(); i += 2) {
        if (EqualTPt(changes[i].point, changes[i + 1].point, same)) {
            continue;
        }
        if (!pieces.empty() && EqualTPt(pieces.back().mEnd, changes[i].point, same)) {
            pieces.back().mEnd = changes[i + 1].point;
        } else {
            pieces.emplace_back(changes[i].point, changes[i + 1].point);
        }
    }
    return pieces;
}

Area& Area::Transform(CMatrix3x3 const& m) {
    for (TPolygon<double>& polygon : mPolygons) {
        polygon.Transform(m);
        polygon = NotFromOrigin(polygon);
    }
    return *this;
}

TRect<double> Area::Bounds() const {
    TRect<double> bounds;
    for (TPolygon<double> const& polygon : mPolygons) {
        bounds |= polygon.Bounds();
    }
    return bounds;
}

bool HitsOutline(CPath const& path, Pt const& p, double tolerance) {
    double const fine = FineError(ControlBounds(path));
    CurveErrorScope const scope(std::max(fine, tolerance / 16.0));
    HitTester tester(p, tolerance);
    path.ForAll(tester);
    return tester.hit;
}

} // namespace tool
