// SPDX-License-Identifier: MIT

// Calls of curves, paths and what measures them.

#include "Objects.h"

#include <array>
#include <cmath>
#include <limits>

namespace threads {

namespace {

void AddPoint(Pt const& p, void* digest) { static_cast<Digest*>(digest)->Add(p); }

thread_local Digest* tDigest = nullptr; // the callback without data knows no other place

void Flattening(Objects const& shared, Digest& digest) {
    Polygon polygon;
    shared.curve.Flatten(polygon, 0.01);
    shared.curve.AddSegmentToPoly(polygon, 0.5);
    shared.spline.AddSegmentToPoly(polygon, 0.1);
    // Only the literal steps judge this one.
    CBezier(Pt(0, 0), Pt(1, 1), Pt(2, 2), Pt(NAN, 0)).Flatten(polygon, 0.1);
    CBezier::AddPtToPoly(Pt(1, 1), polygon);
    CBSpline::AddPtToPoly(Pt(2, 2), polygon);
    Box box;
    CBezier::AddPtToBoundsRect(Pt(2, 3), box);
    digest.Add(box);
    digest.Add(polygon.LastIndex());
    digest.Add(polygon.Length());
    shared.curve.GenerateSegment(AddPoint, &digest, true, 12);
    tDigest = &digest;
    shared.curve.GenerateSegment([](Pt const& p) { tDigest->Add(p); }, false, 12);
    shared.spline.GenerateSegment(AddPoint, &digest, 12);
}

void Testing(Objects const& shared, Digest& digest) {
    for (int i = 0; i < 20; ++i) {
        digest.Add(shared.curve.HitTest(Pt(5.0 * i, 20), 3));
        digest.Add(shared.curve.Intersects(Box(10, 4.0 * i, 20, 4.0 * i + 5)));
    }
    CBezier::HitInfoRec hit;
    hit.hit = false;
    hit.tolerance = 2;
    CBezier::HitTestPt(Pt(1, 1), hit);
    CBezier::IntersectInfoRec inside;
    inside.hit = false;
    CBezier::ContainsPt(Pt(0, 0), inside);
    digest.Add(hit.hit);
    digest.Add(inside.hit);
    digest.Add(shared.curve.Flat(1));
    digest.Add(shared.spline.Flat(1));
}

void Measuring(Objects const& shared, Digest& digest) {
    CBezier const& curve = shared.curve;
    digest.Add(curve.Length());
    digest.Add(curve.PercentT(0.3));
    digest.Add(curve.TPercent(0.3));
    digest.Add((curve * 100.0).PercentT(0.7)); // more points than are kept
    digest.Add(curve.FindTValue(Pt(50, 50), 0.001, 0, 1));
    CBezier copy = curve;
    digest.Add(copy.FindDividedTValue(Pt(50, 50), 0.001, 0, 1));
    CBezier left;
    CBezier right;
    digest.Add(curve.Divide(left, right));
    digest.Add(curve.Divide(left, right, 0.3));
    digest.Add(curve.Divide(left, right, Pt(50, 50)));
    curve.GetTRange(0.2, 0.6, left);
    digest.Add(left);
    CBSpline a;
    CBSpline b;
    digest.Add(shared.spline.Divide(a, b));
}

void ChangingCurves(Objects const& shared, Digest& digest) {
    CBezier curve = shared.curve;
    curve += Pt(1, 2);
    curve -= Pt(2, 1);
    curve *= Pt(3, 2);
    curve /= Pt(2, 3);
    curve *= 1.5;
    curve /= 1.25;
    curve.Rotate(0.3);
    curve.Rotate(0.2, Pt(4, 4));
    curve.Transform(CMatrix3x3().Scale(2));
    digest.Add(curve);
    Pt p(3, 4);
    Transform(p);
    UnTransform(p);
    digest.Add(p);
    double sine = 0;
    double cosine = 0;
    SinCos(0.7, sine, cosine);
    digest.Add(sine + cosine + DegToRad(10) + RadToDeg(1));
    digest.Add(crc32_crc_table[7]);
    gen_crc_table();
    CRCInit const again;
    static_cast<void>(again);
}

void Circles(Objects const& shared, Digest& digest) {
    Box box;
    RadiusCircle(Pt(1, 2), Pt(5, 5), box);
    digest.Add(box);
    DiameterCircle(Pt(1, 2), Pt(5, 5), box);
    digest.Add(box);
    Pt3Circle(Pt(1, 2), Pt(5, 5), Pt(7, 1), box);
    digest.Add(box);
    digest.Add(HitTest(shared.line.mStart, shared.line.mEnd, Pt(4, 4), 10));
}

void Paths(Objects const& shared, Digest& digest) {
    CPath const& path = shared.path;
    digest.Add(path.Bounds());
    CPath const copy(path);
    digest.Add(copy.Bounds());
    CPath assigned;
    assigned = path;
    digest.Add(assigned.Bounds());
    digest.Add(path.Length());
    digest.Add(path.TPt(0.4));
    digest.Add(path.FindTValue(Pt(30, 30)));
    digest.Add(path.TestContents(CPath::kContainsCurves));
    digest.Add(path.GetFraction(Pt(1, 0), Pt(1, 1)));
    digest.Add(static_cast<long>(path.size()));
    CPath a;
    CPath b;
    path.GetTRange(0.1, 0.7, a);
    path.RemoveTRange(0.2, 0.4, a, b);
    digest.Add(a);
    digest.Add(b);
    struct Collector : CPathActions {
        Digest* digest;
        void LineTo(Pt const& p) override { digest->Add(p); }
    } collector;
    collector.digest = &digest;
    path.ForAll(collector);
}

void ChangingPaths(Objects const& shared, Digest& digest) {
    CPath path;
    path.MoveTo(Pt(1, 1)).LineTo(Pt(9, 2)).CurveTo(Pt(12, 3), Pt(14, 9), Pt(8, 8)).ClosePath();
    path.Arc(Pt(5, 5), 3, 0, 2).Arc(Pt(5, 5), 3, 2, 0, 7).RRect(Box(0, 0, 10, 20), 4);
    path.Append(shared.path);
    path.AddPt(Pt(3, 3)).AddCtl(kPathLine);
    path.Transform(CMatrix3x3().Scale(2));
    digest.Add(path.Bounds());
    digest.Add(path);
    path.clear();
    trammel::AddCurve(path, Pt(1, 1), Pt(2, 5), Pt(4, 4));
    trammel::QuadTo(path, Pt(5, 6), Pt(7, 7));
    trammel::SmoothCurveTo(path, Pt(8, 8), Pt(9, 5));
    trammel::SmoothQuadTo(path, Pt(12, 5));
    trammel::ArcTo(path, 5, 4, 0.2, false, true, Pt(15, 15), 0.01);
    trammel::ArcBy(path, 5, 4, 0.2, true, true, Pt(3, 3), 0.01);
    trammel::EllipticalArc arc;
    arc.hRadius = arc.vRadius = 4;
    arc.sweep = 3;
    trammel::AddArc(path, arc, 0.01);
    trammel::MoveBy(path, Pt(1, 1));
    trammel::LineBy(path, Pt(3, 1));
    trammel::CurveBy(path, Pt(1, 1), Pt(2, 3), Pt(4, 4));
    trammel::QuadBy(path, Pt(1, 1), Pt(3, 2));
    trammel::SmoothCurveBy(path, Pt(1, 1), Pt(2, 1));
    trammel::SmoothQuadBy(path, Pt(1, 4));
    trammel::AppendSubpaths(path, shared.path);
    trammel::SetPoint(path, 2, Pt(6, 6));
    digest.Add(path);
}

/// Asks either measure all its questions.
template <class Measure> void AskMeasure(Measure const& measure, Digest& digest) {
    std::array<double, 3> const where = {0.1, 0.5, 0.9};
    std::array<Pt, 3> points;
    std::array<typename Measure::Place, 3> places;
    digest.Add(measure.Length());
    digest.Add(measure.TPt(0.3));
    digest.Add(measure.PtAtLength(33));
    digest.Add(measure.At(0.3).point);
    digest.Add(measure.AtLength(33).point);
    measure.TPts(where.data(), where.size(), points.data());
    digest.Add(points[2]);
    measure.PtsAtLengths(where.data(), where.size(), points.data());
    digest.Add(points[2]);
    measure.Places(where.data(), where.size(), places.data());
    digest.Add(places[2].point);
    measure.PlacesAtLengths(where.data(), where.size(), places.data());
    digest.Add(places[2].point);
    CPath piece;
    measure.GetTRange(0.2, 0.4, piece);
    measure.GetLengthRange(20, 40, piece);
    digest.Add(piece);
}

void PathMeasures(Objects const& shared, Digest& digest) {
    AskMeasure(shared.measure, digest);
    digest.Add(shared.measure.FindTValue(Pt(30, 30)));
    digest.Add(shared.measure.FindNearest(Pt(30, 30)).point);
    digest.Add(shared.measure.Distance(Pt(30, 30)));
    digest.Add(trammel::PathMeasure(shared.path).Length());
}

void OutlineMeasures(Objects const& shared, Digest& digest) {
    trammel::OutlineMeasure const& measure = shared.exactMeasure;
    AskMeasure(measure, digest);
    std::array<Pt, 2> const points = {Pt(3, 3), Pt(60, 60)};
    std::array<trammel::OutlineMeasure::Nearest, 2> nearest;
    measure.FindNearest(points.data(), points.size(), nearest.data());
    digest.Add(nearest[1].point);
    digest.Add(measure.FindNearest(Pt(30, 30)).point);
    digest.Add(measure.Distance(Pt(30, 30)));
    digest.Add(trammel::OutlineMeasure(shared.path).Length());
}

void Accurate(Objects const& shared, Digest& digest) {
    CBezier const& curve = shared.curve;
    digest.Add(trammel::ArcLength(curve, 1e-9));
    digest.Add(trammel::ArcLength(curve, 0.1, 0.4, 1e-9));
    digest.Add(trammel::ArcLength(shared.spline, 1e-9));
    digest.Add(trammel::ArcLength(shared.path, 1e-9));
    digest.Add(trammel::ParameterAtLength(curve, 30, 1e-9));
    digest.Add(trammel::ParameterAtFraction(curve, 0.3, 1e-9));
    digest.Add(trammel::NearestPoint(curve, Pt(40, 40), 1e-9).point);
    digest.Add(trammel::NearestPoint(shared.spline, Pt(40, 40), 1e-9).point);
    digest.Add(trammel::TightBounds(curve));
    digest.Add(trammel::TightBounds(shared.spline));
    digest.Add(trammel::TightBounds(shared.path));
    Polygon polygon;
    digest.Add(trammel::FlattenWithin(curve, 0.01, polygon));
    digest.Add(trammel::FlattenWithin(shared.spline, 0.01, polygon));
    digest.Add(trammel::FlattenWithin(curve, 0.01, AddPoint, &digest));
    CPath flat;
    digest.Add(trammel::FlattenWithin(shared.path, 0.01, flat));
    digest.Add(flat);
    std::array<Pt, 100> points;
    digest.Add(trammel::FlattenInto(curve, 0.01, points.data(), points.size()).distance);
    trammel::FlatContours contours;
    digest.Add(trammel::FlattenInto(shared.path, 0.01, contours));
    digest.Add(contours.points);
    digest.Add(trammel::FlattenTo(curve, 0.01, [&](Pt const& p) { digest.Add(p); }));
    struct Sink {
        Digest& digest;
        void Begin(Pt const& p) { digest.Add(p); }
        void Point(Pt const& p) { digest.Add(p); }
        void End(bool closed) { digest.Add(closed); }
    } sink{digest};
    digest.Add(trammel::FlattenTo(shared.path, 0.01, sink));
}

void Logging(Objects const&, Digest& digest) {
    double x = std::numeric_limits<double>::infinity();
    digest.Add(ZeroIfNaNOrInf(x));
    x = 1e300;
    digest.Add(ZeroIfOutOfRange(x));
    x = NAN;
    digest.Add(ValidateFloat(x));
    float y = NAN;
    digest.Add(ZeroIfNaNOrInf(y));
    y = 1e30F;
    digest.Add(ZeroIfOutOfRange(y));
    digest.Add(ValidateFloat(y));
    Pt p(NAN, 1e300);
    digest.Add(ValidatePoint(p));
    Box box(NAN, 1, 2, 1e300);
    ValidateRect(box);
    NSLog("%d", 1);
}

} // namespace

std::vector<Calls> CallsOfCurves() {
    return {
        {"flattening", Flattening},
        {"testing curves", Testing},
        {"measuring curves", Measuring},
        {"changing curves", ChangingCurves},
        {"circles", Circles},
        {"paths", Paths},
        {"changing paths", ChangingPaths},
        {"path measures", PathMeasures},
        {"outline measures", OutlineMeasures},
        {"accurate curves", Accurate},
        {"logging", Logging},
    };
}

} // namespace threads
