// SPDX-License-Identifier: MIT

#include "Calls.h"

#include <utility>

namespace trammel_test {

namespace {

using namespace trammel;

void Ignore(Pt const& p, void* data) { static_cast<Arguments*>(data)->Returned(p); }
void IgnorePoint(Pt const& p) { static_cast<void>(p); }

struct Sink {
    Arguments& a;
    void Begin(Pt const& p) { a.Returned(p); }
    void Point(Pt const& p) { a.Returned(p); }
    void End(bool closed) { a.Returned(closed); }
};

void UseActions(A& a) {
    CPathActions actions;
    actions.Move(a.p);
    actions.Line(a.p);
    actions.Curve(a.p, a.p, a.p);
    actions.Close();
    actions.CPathActions::MoveTo(a.p);
    actions.CPathActions::LineTo(a.p);
    actions.CPathActions::CurveTo(a.p, a.p, a.p);
    actions.CPathActions::ClosePath();
    a.path.ForAll(actions);
    a.Returned(actions.mCurrentPt);
}

void UseFitter(A& a) {
    CurveFitter fitter(a.tolerance, 0.5);
    for (Pt const& p : a.points) {
        fitter.Add(p);
    }
    a.Returned(fitter.Tail());
    fitter.Finish();
    a.Returned(fitter.Finished(), fitter.Distance());
}

/// A line that meets the curve.
TLine<double> Chord(A const& a) { return {a.curve.P0, a.curve.P3}; }

template <class Measure> void UsePlaces(A& a, Measure const& measure) {
    double const t[] = {0, 0.3, 1};
    typename Measure::Place places[3];
    Pt points[3];
    measure.TPts(t, 3, points);
    a.Returned(points[1]);
    measure.PtsAtLengths(t, 3, points);
    measure.Places(t, 3, places);
    a.Returned(points[1], places[1].point);
    measure.PlacesAtLengths(t, 3, places);
    a.Returned(measure.Length(), measure.TPt(0.3), measure.PtAtLength(1), measure.At(0.3).point,
               measure.AtLength(1).point, measure.Distance(a.p), places[1].point);
}

std::vector<Call> CurveCalls() {
    return {
        {"CBezier::Divide=3 CBezier::Flat CBezier::GetTRange CBezier::FindTValue "
         "CBezier::FindDividedTValue "
         "CBezier::SetCurveError CBezier::Rotate=2 CBezier::Transform CBezier::operator*==2 "
         "CBezier::operator+= "
         "CBezier::operator-= CBezier::operator/==2 CBezier::AddPtToBoundsRect CBezier::HitTestPt "
         "CBezier::ContainsPt",
         kUnchanged,
         [](A& a) {
             CBezier left;
             CBezier right;
             a.Returned(a.curve.Divide(left, right), a.curve.Divide(left, right, 0.3),
                        a.curve.Divide(left, right, a.p), a.curve.Flat(1), left, right);
             a.curve.GetTRange(0.2, 0.7, left);
             a.Returned(a.curve.FindTValue(a.p, 0.001, 0, 1),
                        left.FindDividedTValue(a.p, 0.001, 0, 1));
             CBezier::SetCurveError(CBezier::SetCurveError(1));
             right.Rotate(1).Rotate(1, a.p).Transform(a.matrix);
             right *= a.p;
             right *= 2;
             right += a.p;
             right -= a.p;
             right /= a.p;
             right /= 2;
             TRect<double> bounds;
             CBezier::AddPtToBoundsRect(a.p, bounds);
             CBezier::HitInfoRec hit;
             hit.hit = false;
             hit.testPt = hit.lastPt = a.p;
             hit.tolerance = 1;
             CBezier::HitTestPt(a.p, hit);
             CBezier::IntersectInfoRec meet;
             meet.hit = false;
             meet.rect = a.rect;
             CBezier::ContainsPt(a.p, meet);
             a.Returned(right, bounds, hit.hit, meet.hit);
         }},
        {"CBezier::GenerateSegment=2", kUnchanged,
         [](A& a) {
             a.curve.GenerateSegment(Ignore, &a, false, 15);
             a.curve.GenerateSegment(IgnorePoint, false, 15);
         }},
        {"CBezier::HitTest CBezier::Intersects CBezier::Length CBezier::PercentT CBezier::TPercent",
         kUnchanged,
         [](A& a) {
             a.Returned(a.curve.HitTest(a.p, 1), a.curve.Intersects(a.rect), a.curve.Length(),
                        a.curve.PercentT(0.3), a.curve.TPercent(0.3));
         }},
        {"CBezier::Flatten", kPartial, [](A& a) { a.curve.Flatten(a.flat, a.tolerance); }},
        {"CBezier::AddSegmentToPoly", kPartial,
         [](A& a) { a.curve.AddSegmentToPoly(a.flat, a.tolerance); }},
        {"CBezier::AddPtToPoly", kUnchanged, [](A& a) { CBezier::AddPtToPoly(a.p, a.flat); }},
        {"CBSpline::Divide CBSpline::Flat CBSpline::GenerateSegment", kUnchanged,
         [](A& a) {
             CBSpline left;
             CBSpline right;
             a.Returned(a.spline.Divide(left, right), left, right, a.spline.Flat(1));
             a.spline.GenerateSegment(Ignore, &a, 15);
         }},
        {"CBSpline::AddSegmentToPoly", kPartial,
         [](A& a) { a.spline.AddSegmentToPoly(a.flat, a.tolerance); }},
        {"CBSpline::AddPtToPoly", kUnchanged, [](A& a) { CBSpline::AddPtToPoly(a.p, a.flat); }},
        {"trammel::ArcLength=4 trammel::ParameterAtLength trammel::ParameterAtFraction", kUnchanged,
         [](A& a) {
             a.Returned(ArcLength(a.curve, 0), ArcLength(a.curve, 0.1, 0.7, a.tolerance),
                        ArcLength(a.spline, 0), ArcLength(a.path, a.tolerance),
                        ParameterAtLength(a.curve, 1, 0), ParameterAtFraction(a.curve, 0.3, 0));
         }},
        {"trammel::NearestPoint=2 trammel::TightBounds=3", kUnchanged,
         [](A& a) {
             a.Returned(NearestPoint(a.curve, a.p, 0), NearestPoint(a.spline, a.p, 0),
                        TightBounds(a.curve), TightBounds(a.spline), TightBounds(a.path));
         }},
        {"trammel::FlattenWithin", kPartial,
         [](A& a) { a.Returned(FlattenWithin(a.curve, a.tolerance, a.flat)); }},
        {"trammel::FlattenWithin", kPartial,
         [](A& a) { a.Returned(FlattenWithin(a.spline, a.tolerance, a.flat)); }},
        {"trammel::FlattenWithin", kUnchanged,
         [](A& a) { a.Returned(FlattenWithin(a.curve, a.tolerance, Ignore, &a)); }},
        {"trammel::FlattenWithin", kThrows,
         [](A& a) { a.Returned(FlattenWithin(a.path, a.tolerance, a.out)); }},
        {"trammel::FlattenInto", kUnchanged,
         [](A& a) {
             Pt points[100];
             a.Returned(FlattenInto(a.curve, a.tolerance, points, 100).count);
         }},
        {"trammel::FlattenInto", kThrowsPart,
         [](A& a) { a.Returned(FlattenInto(a.path, a.tolerance, a.contours)); }},
        {"trammel_detail::FlattenByRuns=2", kUnchanged,
         [](A& a) {
             a.Returned(FlattenTo(a.curve, a.tolerance, [&](Pt const& p) { a.Returned(p); }));
             Sink sink{a};
             a.Returned(FlattenTo(a.path, a.tolerance, sink));
         }},
    };
}

std::vector<Call> PathCalls() {
    return {
        {"CPath::AddCtl", kThrows, [](A& a) { a.path.AddCtl(kPathClose); }},
        {"CPath::AddPt", kThrows, [](A& a) { a.path.AddPt(a.p); }},
        {"CPath::Append", kThrows, [](A& a) { a.path.Append(a.other); }},
        {"CPath::Arc", kThrows, [](A& a) { a.path.Arc(a.p, 1, 2, 0, 5); }},
        {"CPath::Arc", kThrows, [](A& a) { a.path.Arc(a.p, 1, 0, 5); }},
        {"CPath::MoveTo CPath::MakeRoom", kThrows, [](A& a) { a.path.MoveTo(a.p); }},
        {"CPath::LineTo", kThrows, [](A& a) { a.path.LineTo(a.p); }},
        {"CPath::CurveTo", kThrows, [](A& a) { a.path.CurveTo(a.p, a.p, Pt(1, 7)); }},
        {"CPath::ClosePath", kThrows, [](A& a) { a.path.ClosePath(); }},
        {"CPath::RRect", kThrows, [](A& a) { a.path.RRect(a.rect, 3); }},
        {"CPath::GetTRange", kThrows, [](A& a) { a.path.GetTRange(0.2, 0.7, a.out); }},
        {"CPath::RemoveTRange", kThrows,
         [](A& a) { a.path.RemoveTRange(0.2, 0.7, a.out, a.second); }},
        {"CPath::CPath CPath::Bounds CPath::CachedBounds CPath::FindTValue CPath::GetFraction "
         "CPath::Length CPath::TPt "
         "CPath::TestContents CPath::Transform CPath::clear CPath::size",
         kUnchanged,
         [](A& a) {
             a.Returned(CPath(), a.path.Bounds(), a.path.FindTValue(a.p),
                        a.path.GetFraction(a.p, Pt(1, 1)), a.path.Length(), a.path.TPt(0.6),
                        a.path.TestContents(CPath::kContainsCurves), a.path.size());
             a.other.Transform(a.matrix);
             a.out.clear();
         }},
        {"CPath::ForAll CPathActions::Close CPathActions::ClosePath CPathActions::Curve "
         "CPathActions::CurveTo "
         "CPathActions::Line CPathActions::LineTo CPathActions::Move CPathActions::MoveTo "
         "CPathActions::~CPathActions",
         kUnchanged, UseActions},
        {"CPath::CPath=0", kThrows, [](A& a) { a.Returned(CPath(a.path)); }},
        {"CPath::operator==0", kThrows, [](A& a) { a.out = a.path; }},
        {"trammel::AddArc", kThrows,
         [](A& a) {
             AddArc(a.path, {a.p, 5, 6, 1, 1, 5}, 1e-9);
         }},
        {"trammel::AddCurve", kThrows, [](A& a) { AddCurve(a.path, a.p, a.p, Pt(1, 7)); }},
        {"trammel::ArcTo", kThrows, [](A& a) { ArcTo(a.path, 5, 6, 1, true, true, a.p, 1e-9); }},
        {"trammel::ArcBy", kThrows, [](A& a) { ArcBy(a.path, 5, 6, 1, true, true, a.p, 1e-9); }},
        {"trammel::MoveBy", kThrows, [](A& a) { MoveBy(a.path, a.p); }},
        {"trammel::LineBy", kThrows, [](A& a) { LineBy(a.path, a.p); }},
        {"trammel::CurveBy", kThrows, [](A& a) { CurveBy(a.path, a.p, a.p, Pt(1, 7)); }},
        {"trammel::QuadTo", kThrows, [](A& a) { QuadTo(a.path, a.p, Pt(1, 7)); }},
        {"trammel::QuadBy", kThrows, [](A& a) { QuadBy(a.path, a.p, Pt(1, 7)); }},
        {"trammel::SmoothCurveTo", kThrows, [](A& a) { SmoothCurveTo(a.path, a.p, Pt(1, 7)); }},
        {"trammel::SmoothCurveBy", kThrows, [](A& a) { SmoothCurveBy(a.path, a.p, Pt(1, 7)); }},
        {"trammel::SmoothQuadTo", kThrows, [](A& a) { SmoothQuadTo(a.path, a.p); }},
        {"trammel::SmoothQuadBy", kThrows, [](A& a) { SmoothQuadBy(a.path, a.p); }},
        {"trammel::AppendSubpaths", kThrows, [](A& a) { AppendSubpaths(a.path, a.other); }},
        {"trammel::PathOf", kThrows, [](A& a) { a.Returned(PathOf(a.polygon)); }},
        {"trammel::PathOf", kThrows, [](A& a) { a.Returned(PathOf(a.ref)); }},
        {"trammel::PathOf", kThrows, [](A& a) { a.Returned(PathOf(a.polygons)); }},
        {"trammel::PathOf", kThrows, [](A& a) { a.Returned(PathOf(a.map[0])); }},
        {"trammel::PathOf", kThrows, [](A& a) { a.Returned(PathOf(*Subpaths(a.path).begin())); }},
        {"trammel::SplitSubpaths", kThrows, [](A& a) { a.Returned(SplitSubpaths(a.path)); }},
        {"trammel::Reversed", kThrows, [](A& a) { a.Returned(Reversed(a.path)); }},
        {"trammel::WithSubpathsClosed", kThrows,
         [](A& a) { a.Returned(WithSubpathsClosed(a.path)); }},
        {"trammel::WithSubpathsOpened", kThrows,
         [](A& a) { a.Returned(WithSubpathsOpened(a.path, ClosingLine::kKeep)); }},
        {"trammel::Transformed", kThrows, [](A& a) { a.Returned(Transformed(a.path, a.matrix)); }},
        {"trammel::Equal=2 trammel::FirstPointOf trammel::SetPoint", kUnchanged,
         [](A& a) {
             a.Returned(Equal(a.path, a.other), Equal(a.polygon, a.flat), FirstPointOf(a.path, 0));
             SetPoint(a.path, 0, a.p);
         }},
        {"trammel::CirclePath", kThrows, [](A& a) { a.Returned(CirclePath(a.p, 5, 1e-6)); }},
        {"trammel::EllipsePath", kThrows,
         [](A& a) { a.Returned(EllipsePath(a.p, 5, 6, 1, 1e-6)); }},
        {"trammel::RoundedRectPath", kThrows,
         [](A& a) { a.Returned(RoundedRectPath(a.rect, 3, 4, 1e-6)); }},
        {"trammel::RoundedRectPath", kThrows,
         [](A& a) {
             a.Returned(RoundedRectPath(a.rect, CornerRadii{a.p, a.p, a.p, a.p}, 1e-6));
         }},
        {"trammel::PolygonPath", kThrows, [](A& a) { a.Returned(PolygonPath(a.points)); }},
        {"trammel::RegularPolygonPath", kThrows,
         [](A& a) { a.Returned(RegularPolygonPath(a.p, 5, 7, 0)); }},
        {"trammel::StarPath", kThrows, [](A& a) { a.Returned(StarPath(a.p, 5, 3, 7, 0)); }},
    };
}

std::vector<Call> QueryCalls() {
    return {
        {"trammel::WindingNumber=4 trammel::Contains", kUnchanged,
         [](A& a) {
             a.Returned(WindingNumber(a.path, a.p), WindingNumber(a.polygon, a.p),
                        WindingNumber(a.ref, a.p), WindingNumber(a.points, a.p),
                        Contains(a.map[0], a.p, FillRule::kNonZero));
         }},
        {"trammel::SignedArea=4 trammel::MomentsOf=5 trammel::Area trammel::Bounds "
         "trammel::OrientRings",
         kUnchanged,
         [](A& a) {
             a.Returned(SignedArea(a.path), SignedArea(a.polygon), SignedArea(a.ref),
                        SignedArea(a.points), MomentsOf(a.path), MomentsOf(a.polygon),
                        MomentsOf(a.ref), MomentsOf(a.points), MomentsOf(a.map[0]), Area(a.map[0]),
                        Bounds(a.map[0]));
             OrientRings(a.map[0]);
         }},
        {"trammel::ContourAreas", kThrows, [](A& a) { a.Returned(ContourAreas(a.path)); }},
        {"trammel::PreparedPolygon::PreparedPolygon trammel::PreparedPolygon::Contains=2 "
         "trammel::PreparedPolygon::MemorySize",
         kThrows,
         [](A& a) {
             PreparedPolygon const prepared(a.polygon);
             bool inside[2];
             Pt const two[] = {a.p, Pt(0, 0)};
             prepared.Contains(two, 2, inside);
             a.Returned(prepared.Contains(a.p), prepared.MemorySize(), inside[0], inside[1]);
         }},
        {"trammel::PreparedPolygon::PreparedPolygon", kThrows,
         [](A& a) { a.Returned(PreparedPolygon(a.ref).Contains(a.p)); }},
        {"trammel::PreparedOutline::PreparedOutline trammel::PreparedOutline::Contains=2 "
         "trammel::PreparedOutline::MemorySize trammel::PreparedOutline::WindingNumber "
         "trammel::PreparedOutline::WindingNumbers",
         kThrows,
         [](A& a) {
             PreparedOutline const prepared(a.path);
             bool inside[2];
             int windings[2];
             Pt const two[] = {a.p, Pt(0, 0)};
             prepared.Contains(two, 2, FillRule::kEvenOdd, inside);
             prepared.WindingNumbers(two, 2, windings);
             a.Returned(prepared.Contains(a.p, FillRule::kNonZero), prepared.MemorySize(),
                        inside[0], windings[1], prepared.WindingNumber(a.p));
         }},
        {"trammel::PreparedOutline::PreparedOutline", kThrows,
         [](A& a) { a.Returned(PreparedOutline(a.ref).WindingNumber(a.p)); }},
        {"trammel::PreparedOutline::PreparedOutline", kThrows,
         [](A& a) { a.Returned(PreparedOutline(a.polygon).WindingNumber(a.p)); }},
        {"trammel::PreparedOutline::PreparedOutline", kThrows,
         [](A& a) { a.Returned(PreparedOutline(a.points).WindingNumber(a.p)); }},
        {"trammel::PathMeasure::PathMeasure trammel::PathMeasure::At "
         "trammel::PathMeasure::AtLength "
         "trammel::PathMeasure::Distance trammel::PathMeasure::FindNearest "
         "trammel::PathMeasure::FindTValue "
         "trammel::PathMeasure::Length trammel::PathMeasure::Places "
         "trammel::PathMeasure::PlacesAtLengths "
         "trammel::PathMeasure::PtAtLength trammel::PathMeasure::PtsAtLengths "
         "trammel::PathMeasure::TPt "
         "trammel::PathMeasure::TPts",
         kThrows,
         [](A& a) {
             PathMeasure const measure(a.path);
             UsePlaces(a, measure);
             a.Returned(measure.FindTValue(a.p), measure.FindNearest(a.p).point);
         }},
        {"trammel::PathMeasure::GetTRange", kThrows,
         [](A& a) { PathMeasure(a.path).GetTRange(0.2, 0.7, a.out); }},
        {"trammel::PathMeasure::GetLengthRange", kThrows,
         [](A& a) { PathMeasure(a.path).GetLengthRange(2, 7, a.out); }},
        {"trammel::OutlineMeasure::OutlineMeasure trammel::OutlineMeasure::At "
         "trammel::OutlineMeasure::AtLength "
         "trammel::OutlineMeasure::Distance trammel::OutlineMeasure::FindNearest=2 "
         "trammel::OutlineMeasure::Length trammel::OutlineMeasure::Places "
         "trammel::OutlineMeasure::PlacesAtLengths trammel::OutlineMeasure::PtAtLength "
         "trammel::OutlineMeasure::PtsAtLengths trammel::OutlineMeasure::TPt "
         "trammel::OutlineMeasure::TPts",
         kThrows,
         [](A& a) {
             OutlineMeasure const measure(a.path);
             UsePlaces(a, measure);
             OutlineMeasure::Nearest nearest[2];
             Pt const two[] = {a.p, Pt(0, 0)};
             measure.FindNearest(two, 2, nearest);
             a.Returned(nearest[1].point, measure.FindNearest(a.p).point);
         }},
        {"trammel::OutlineMeasure::GetTRange", kThrows,
         [](A& a) { OutlineMeasure(a.path).GetTRange(0.2, 0.7, a.out); }},
        {"trammel::OutlineMeasure::GetLengthRange", kThrows,
         [](A& a) { OutlineMeasure(a.path).GetLengthRange(2, 7, a.out); }},
        {"trammel::AppendIntersections", kThrowsPart,
         [](A& a) { a.Returned(AppendIntersections(a.curve, a.other, a.tolerance, a.places)); }},
        {"trammel::AppendIntersections", kThrowsPart,
         [](A& a) { a.Returned(AppendIntersections(a.other, a.curve, a.tolerance, a.places)); }},
        {"trammel::AppendIntersections", kThrowsPart,
         [](A& a) { a.Returned(AppendIntersections(a.path, a.other, a.tolerance, a.places)); }},
        {"trammel::AppendIntersections", kThrowsPart,
         [](A& a) { a.Returned(AppendIntersections(a.path, a.line, a.tolerance, a.places)); }},
        {"trammel::AppendIntersections", kThrowsPart,
         [](A& a) { a.Returned(AppendIntersections(a.line, a.path, a.tolerance, a.places)); }},
        {"trammel::AppendIntersections", kThrowsPart,
         [](A& a) { a.Returned(AppendIntersections(a.curve, Chord(a), a.tolerance, a.places)); }},
        {"trammel::AppendIntersections", kThrowsPart,
         [](A& a) { a.Returned(AppendIntersections(Chord(a), a.curve, a.tolerance, a.places)); }},
        {"trammel::AppendIntersections", kThrowsPart,
         [](A& a) { a.Returned(AppendIntersections(a.line, a.line, a.tolerance, a.places)); }},
        {"trammel::AppendIntersections", kThrowsPart,
         [](A& a) {
             CBezier const turned(a.curve.P3, a.curve.P1, a.curve.P2, a.curve.P0);
             a.Returned(AppendIntersections(a.curve, turned, a.tolerance, a.places));
         }},
        {"trammel::AppendSelfIntersections", kThrowsPart,
         [](A& a) { a.Returned(AppendSelfIntersections(a.path, a.tolerance, a.places)); }},
        {"trammel::AppendSelfIntersections", kThrowsPart,
         [](A& a) {
             a.Returned(AppendSelfIntersections(
                 CBezier(a.curve.P0, a.curve.P2, a.curve.P1, a.curve.P3), a.tolerance, a.places));
         }},
    };
}

std::vector<Call> OutlineCalls() {
    return {
        {"trammel::Boolean", kThrows,
         [](A& a) {
             a.Returned(Boolean(kPolyXor, a.path, FillRule::kNonZero, a.other, FillRule::kEvenOdd,
                                a.tolerance, a.out, &a.sources));
         }},
        {"trammel::Boolean", kThrows,
         [](A& a) {
             a.Returned(Boolean(kPolyUnion, a.polygons, FillRule::kNonZero, a.polygons,
                                FillRule::kEvenOdd));
         }},
        {"trammel::Boolean", kThrows,
         [](A& a) { a.Returned(Boolean(kPolyXor, a.map, {a.map[1]})); }},
        {"trammel::Union", kThrows,
         [](A& a) {
             a.Returned(Union(a.paths, FillRule::kNonZero, a.tolerance, a.out, &a.sources));
         }},
        {"trammel::Union", kThrows,
         [](A& a) { a.Returned(Union(a.polygons, FillRule::kNonZero)); }},
        {"trammel::Union", kThrows,
         [](A& a) { a.Returned(Union(a.operands, FillRule::kNonZero)); }},
        {"trammel::Union", kThrows, [](A& a) { a.Returned(Union(a.map)); }},
        {"trammel::RemoveOverlap", kThrows,
         [](A& a) {
             a.Returned(RemoveOverlap(a.path, FillRule::kNonZero, a.tolerance, a.out, &a.sources));
         }},
        {"trammel::RemoveOverlap", kThrows,
         [](A& a) { a.Returned(RemoveOverlap(a.polygons, FillRule::kNonZero)); }},
        {"trammel::ToPolygons", kThrows,
         [](A& a) { a.Returned(ToPolygons(a.polygons, FillRule::kEvenOdd)); }},
        {"trammel::ClipOpen", kThrows,
         [](A& a) {
             a.Returned(ClipOpen(a.path, a.other, FillRule::kNonZero, true, a.tolerance, a.out,
                                 &a.sources));
         }},
        {"trammel::OutlineArrangement::OutlineArrangement trammel::OutlineArrangement::Merge",
         kThrows,
         [](A& a) {
             OutlineArrangement const arrangement(a.paths, a.tolerance);
             std::vector<std::size_t> every(arrangement.Faces().size());
             for (std::size_t i = 0; i < every.size(); ++i) {
                 every[i] = i;
                 a.Returned(arrangement.Faces()[i].outline);
             }
             a.Returned(arrangement.Merge(every, a.out));
         }},
        {"trammel::PolygonArrangement::PolygonArrangement trammel::PolygonArrangement::Merged "
         "trammel::WindingNumberOf",
         kThrows,
         [](A& a) {
             PolygonArrangement const arrangement(a.operands);
             std::vector<std::size_t> every(arrangement.Faces().size());
             for (std::size_t i = 0; i < every.size(); ++i) {
                 every[i] = i;
                 a.Returned(arrangement.Faces()[i].polygon,
                            WindingNumberOf(arrangement.Faces()[i], 0));
             }
             a.Returned(arrangement.Merged(every));
         }},
        {"trammel::RegionArea", kThrows,
         [](A& a) { a.Returned(RegionArea(a.path, FillRule::kNonZero, a.tolerance).area); }},
        {"trammel::Stroke", kThrows,
         [](A& a) {
             CPath crowd; // the pen paints its places often
             crowd.MoveTo({0, 0});
             for (int i = 1; i < 65; ++i) {
                 crowd.LineTo({i % 3 * 1.0, i % 2 * 1.0});
             }
             CPath united;
             a.Returned(Stroke(crowd, a.style, a.tolerance, united));
             a.Returned(Stroke(a.path, a.style, a.tolerance, a.out));
         }},
        {"trammel::Offset", kThrows,
         [](A& a) {
             a.Returned(Offset(a.path, FillRule::kNonZero, 2, StrokeJoin::kMiterClip, 4,
                               a.tolerance, a.out));
         }},
        {"trammel::Simplify", kThrows,
         [](A& a) { a.Returned(Simplify(a.path, a.tolerance, a.out)); }},
        {"trammel::Simplify", kThrows,
         [](A& a) { a.Returned(Simplify(a.path, a.tolerance, NewCrossings::kAvoid, a.out)); }},
        {"trammel::SimplifyOutlines", kThrows,
         [](A& a) {
             std::vector<CPath> simple;
             a.Returned(
                 SimplifyOutlines({a.path, a.path}, a.tolerance, NewCrossings::kAvoid, simple));
             a.out = std::move(simple[0]);
         }},
        {"trammel::SimplifyRings", kThrows,
         [](A& a) {
             a.Returned(SimplifyRings(a.rings, a.tolerance, NewCrossings::kAvoid, a.ringsOut));
         }},
        {"trammel::SimplifyMap", kThrows,
         [](A& a) { a.Returned(SimplifyMap(a.map, a.tolerance, NewCrossings::kAvoid, a.mapOut)); }},
        {"trammel::FitCurves", kThrows,
         [](A& a) { a.Returned(FitCurves(a.points, a.tolerance, 0.5, a.out)); }},
        {"trammel::CurveFitter::CurveFitter trammel::CurveFitter::Add "
         "trammel::CurveFitter::Advance "
         "trammel::CurveFitter::Finish trammel::CurveFitter::Tail",
         kThrows, UseFitter},
        {"trammel::ReadSvgPath", kThrows,
         [](A& a) {
             SvgPathResult const read = ReadSvgPath(a.text);
             a.Returned(read.path, read.error.has_value(), read.arcs);
         }},
        {"trammel::ReadSvgPath trammel::SvgPathError::Message", kThrows,
         [](A& a) {
             SvgPathResult const read = ReadSvgPath(a.text + " oh", 0.01);
             a.Returned(read.path, read.error.has_value() ? read.error->Message() : std::string());
         }},
        {"trammel::ReadSvgPath", kThrows,
         [](A& a) {
             SvgPathOptions options;
             options.keepDots = true;
             SvgPathResult const read = ReadSvgPath(a.text + "M1 2h0", options);
             a.Returned(read.path, read.error.has_value(), read.arcs);
         }},
        {"trammel::WriteSvgPath", kThrows,
         [](A& a) {
             try {
                 a.Returned(WriteSvgPath(a.path));
             } catch (std::invalid_argument const&) {
                 a.Returned(1);
             }
         }},
        {"trammel::ToString=9", kThrows,
         [](A& a) {
             TPoint<short> const p(-30000, -20000);
             a.Returned(ToString(a.spline), ToString(a.curve), ToString(a.matrix), ToString(a.path),
                        ToString(a.line), ToString(a.p), ToString(p), ToString(a.rect),
                        ToString(TRect<short>(1, 2, 30000, 30001)));
         }},
    };
}

} // namespace

std::vector<Call> const& Calls() {
    static std::vector<Call> const calls = [] {
        std::vector<Call> all;
        for (auto const& part : {PlaneCalls(), CurveCalls(), PolygonCalls(), PathCalls(),
                                 QueryCalls(), OutlineCalls()}) {
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    }();
    return calls;
}

} // namespace trammel_test
