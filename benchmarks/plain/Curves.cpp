// SPDX-License-Identifier: MIT

#include "Plain.h"

#include "plain/PlainPath.h"

#include <vector>

namespace plain {

struct CurveList::Body {
    std::vector<Bezier> curves;
};

CurveList::CurveList() : mBody(std::make_unique<Body>()) {}
CurveList::~CurveList() = default;
void CurveList::Add(Pt const& p0, Pt const& p1, Pt const& p2, Pt const& p3) {
    mBody->curves.push_back(Bezier{p0, p1, p2, p3});
}
std::size_t CurveList::size() const { return mBody->curves.size(); }
Bezier const& CurveList::operator[](std::size_t index) const { return mBody->curves[index]; }

struct PathList::Body {
    std::vector<Path> paths;
};

PathList::PathList() : mBody(std::make_unique<Body>()) {}
PathList::~PathList() = default;
void PathList::Begin() { mBody->paths.emplace_back(); }
void PathList::MoveTo(Pt const& p) { mBody->paths.back().MoveTo(p); }
void PathList::LineTo(Pt const& p) { mBody->paths.back().LineTo(p); }
void PathList::CurveTo(Pt const& c1, Pt const& c2, Pt const& e) {
    mBody->paths.back().CurveTo(c1, c2, e);
}
void PathList::ClosePath() { mBody->paths.back().ClosePath(); }
std::size_t PathList::size() const { return mBody->paths.size(); }
Path const& PathList::operator[](std::size_t index) const { return mBody->paths[index]; }

void Flatten(Bezier const& curve, Polygon& polygon, double error) { curve.Flatten(polygon, error); }
double Length(Bezier const& curve) { return curve.Length(); }
double PercentT(Bezier const& curve, double fraction) { return curve.PercentT(fraction); }
double TPercent(Bezier const& curve, double t) { return curve.TPercent(t); }
double FindTValue(Bezier const& curve, Pt const& pt, double tolerance, double t0, double t1) {
    return curve.FindTValue(pt, tolerance, t0, t1);
}
bool HitTest(Bezier const& curve, Pt const& pt, double tolerance) {
    return curve.HitTest(pt, tolerance);
}
bool Intersects(Bezier const& curve, Rect const& r) { return curve.Intersects(r); }

double Length(Path const& path) { return path.Length(); }
Pt TPt(Path const& path, double t) { return path.TPt(t); }
double FindTValue(Path const& path, Pt const& p) { return path.FindTValue(p); }

std::size_t PointCount(Path const& path) { return path.pts.size(); }

double CutSum(Path const& path, double t0, double t1) {
    Path piece;
    path.GetTRange(t0, t1, piece);
    double sum = 0.0;
    for (Pt const& p : piece.pts) {
        sum += p.h + p.v;
    }
    return sum;
}

} // namespace plain
