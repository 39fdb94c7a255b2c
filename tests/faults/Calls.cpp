// SPDX-License-Identifier: MIT

#include "Dispatch_p.h"
#include "Faults.h"
#include "SvgNumeral_p.h"
#include "Text_p.h"

#include <sstream>
#include <utility>

namespace trammel_test {

namespace {

using namespace trammel;

typedef TPoint<double> Pt;
typedef Arguments A;

constexpr WhenShort kThrows = WhenShort::kThrows;
constexpr WhenShort kUnchanged = WhenShort::kUnchanged;
constexpr WhenShort kThrowsPart = WhenShort::kThrowsPart;
constexpr WhenShort kPartial = WhenShort::kPartial;
constexpr WhenShort kEndsProcess = WhenShort::kEndsProcess;

void Ignore(Pt const& p, void* data) { static_cast<Arguments*>(data)->Returned(p); }
void IgnorePoint(Pt const& p) { static_cast<void>(p); }
void IgnoreElement(void* data, CGPathElement const* element) {
    static_cast<Arguments*>(data)->Returned(element->type);
}

struct Sink {
    Arguments& a;
    void Begin(Pt const& p) { a.Returned(p); }
    void Point(Pt const& p) { a.Returned(p); }
    void End(bool closed) { a.Returned(closed); }
};

/// All members of a point, a rectangle and the functions of both.
template <class T> void UsePoints(A& a) {
    TPoint<T> p(3, 4);
    TPoint<T> const q(a.p);
    TRect<T> r(1, 2, 3, 4);
    TRect<T> const s(q, 3, 4);
    p = TPoint<T>(FPoint{1, 2});
    p = TPoint<T>(Point(p));
    p = TPoint<T>(CGPoint(p));
    p = TPoint<T>(_NSPoint(p));
    p.SetNull();
    p.Set(7, 9);
    a.Returned(p.Null(), p == q, p != q, p <= q, p.Slope(), p.Angle(), p.Length(), p.Hypotenuse());
    p += q;
    p -= -q;
    p *= q;
    p /= q;
    p *= 2.0;
    p /= 2.0;
    a.Returned((p + q - q) * q / TPoint<T>(1, 2) * 2.0 / 3.0);
    p.Offset(1, 2).Offset(q).Scale(2).Scale(1, 2).Rotate(1).Rotate(1, q).Transform(a.matrix).Map(r,
                                                                                                 s);
    r = TRect<T>(FRect{1, 2, 3, 4});
    r = TRect<T>(CGRect(r));
    r = TRect<T>(_NSRect(r));
    r = TRect<T>(PMRect{1, 2, 3, 4});
    r = TRect<T>(Rect(r));
    r.Set(p, q);
    r.Set(p, q, p);
    r.Set(q, 1, 2);
    a.Returned(r.Null(), r.Valid(), r.Empty(), r.Width(), r.Height(), r.GetSize(), r.MidPt(),
               r.TopLeft(), r.TopRight(), r.BottomLeft(), r.BottomRight(), r[kTopLeft],
               r.Contains(q), r.Contains(s), r == s, r != s, r & s, r | s, r | q,
               (r + q - q) * 2.0 / 2.0);
    r += q;
    r -= q;
    r *= q;
    r *= 2.0;
    r /= 2.0;
    r.Scale(1).Scale(1, 2).Inset(1, 2).Inset(1).Inset(q).Outset(1, 2).Outset(2).Offset(1, 2).Offset(
        q);
    r |= s;
    r |= q;
    r &= s;
    r.Rectify().FloorCeil().Map(s, r).Transform(a.matrix);
    a.Returned(NaiveSectTRect(r, s), r, p);
}

void UseLine(A& a) {
    TLine<double> line(a.line.mStart, a.line.mEnd);
    TLine<double> const other(a.p, a.line.mEnd);
    Pt q;
    a.Returned(line.Angle(), line.Bounds(), line.CalcPtFromEnd(1, true), line.CosTheta(other),
               line.Delta(), line.DeltaAngle(other), line.Distance(a.p), line.Dot(other),
               line.FindTValue(a.p), line.HalfSpace(a.p), line.HitTest(a.p, 1),
               line.Intersects(other, q), line.Length(), line.MidPt(), line.Perpendicular(),
               line.Perpendicular(a.p), line.PerpendicularBisector(), line.PerpendicularPt(a.p),
               line.PinPtToLineSeg(a.p), line.SegmentsIntersect(other, q), line.Slope(),
               line.TPt(0.5), line + a.p, line == other);
    line.YIntersect(1, q);
    line.Rotate(1);
    line.Rotate(1, a.p);
    line.TrimEnd(1, true);
    line += a.p;
    line.Set(a.p, q);
    a.Returned(line, HitTest(a.p, q, a.p, 1));
}

void UseMatrix(A& a) {
    CMatrix3x3 m;
    Pt const q(1, 2);
    m.Map(a.rect, TRect<double>(0, 0, 1, 1)).Reflect(a.p, q).Reflect(a.p, q, Pt(3, 1));
    m.Rotate(a.p, q, Pt(3, 1)).Rotate(1).Rotate(1, q).Scale(2).Scale(q).Scale(1, 2).Scale(1, 2, q);
    m.Scale(a.p, q, Pt(3, 1))
        .Shear(q)
        .Shear(1, 2)
        .Shear(a.p, q, Pt(3, 1))
        .Translate(q)
        .Translate(1, 2);
    CMatrix3x3 inverse;
    a.Returned(m, Concat(m, a.matrix), a.matrix.Inverse(), a.matrix.Inverse(inverse),
               inverse.Invert());
}

void UseScalars(A& a) {
    double s = 0;
    double c = 0;
    SinCos(1, s, c);
    double x = 1e300;
    float f = 1;
    short lo = 0;
    short hi = 0;
    minmax<short>(lo, hi, 3, 1);
    minmax<double>(s, c, s, c);
    PinValueToRange<double>(0.0, 1.0, x);
    TRect<double> circle;
    Pt const q(1, 2);
    RadiusCircle(a.p, q, circle);
    DiameterCircle(a.p, q, circle);
    Pt3Circle(a.p, q, Pt(5, 1), circle);
    TPoint<short> const small(1, 2);
    TRect<short> sect;
    a.Returned(SectTRect<short>(TRect<short>(0, 0, 3, 3), TRect<short>(1, 1, 5, 5), sect), sect);
    Pt turned(1, 2);
    SetRotate(1);
    SetUnRotate(1);
    Transform(turned);
    UnTransform(turned);
    double h = 0;
    double v = 0;
    Pt center;
    FRectCenter(a.rect, center, h, v);
    a.Returned(
        s, c, x, f, lo, hi, circle, DegToRad(1), RadToDeg(1), TPt<double>(a.p, q, 0.5),
        MidPt<double>(a.p, q), Hypotenuse<double>(a.p, q), trammel_detail::LengthOf(3.0, 4.0),
        LineLength<double>(a.p, q), LineLength<short>(small, small), LineMagnitude<double>(a.p, q),
        EqualTPt<double>(a.p, q, 1), EqualTPt<short>(small, small, 1), EqualPtTol(a.p, q, 1),
        InFptBounds(a.p, q, q), IsTrueCircle(a.rect), X2Fix(1), FixDiv(1, 3), turned, center, h, v);
    gen_crc_table();
    CRCInit const again;
    static_cast<void>(again);
}

void UseHygiene(A& a) {
    double x = 1e300;
    double y = std::nan("");
    float f = 1e30F;
    float g = std::nanf("");
    Pt p(y, x);
    TRect<double> r(y, x, 1, 2);
    a.Returned(ZeroIfNaNOrInf(y), ZeroIfNaNOrInf(g), ZeroIfOutOfRange(x), ZeroIfOutOfRange(f),
               ValidateFloat(x), ValidateFloat(f), ValidatePoint(p), ValidateRect(r), p, r);
}

void UsePathObject(A& a) {
    CGMutablePathRef const path = CGPathCreateMutable();
    struct Owner {
        CGPathRef path;
        ~Owner() { CGPathRelease(path); }
    } const owner{path};
    CGPathMoveToPoint(path, nullptr, 1, 2);
    CGPathAddLineToPoint(path, nullptr, 3, 2);
    CGPathAddCurveToPoint(path, nullptr, 1, 2, 3, 4, 5, 6);
    CGPathCloseSubpath(path);
    CGPathApply(path, &a, IgnoreElement);
    CGPathRelease(CGPathRetain(path));
    a.Returned(CGPathGetRetainCount(path), CGPathIsEmpty(path),
               CGPathGetBoundingBox(path).size.width);
    std::int32_t const token = trammel_detail::StorePath(CGPathCreateMutable(), &a);
    a.Returned(trammel_detail::PathForToken(token, &a) != nullptr);
    trammel_detail::ReleasePathToken(token, &a);
}

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

void UseBuilder(A& a, CGPath* (*build)(CFPolygonRef)) {
    CFPolygonRef::SetBuilPathProc(build);
    CGPath* const path = a.ref.GetPath();
    CFPolygonRef::SetBuilPathProc(nullptr);
    a.Returned(path != nullptr, CGPathIsEmpty(path));
}

void UseHandles(A& a) {
    Handle block = NewHandleClear(100);
    Handle copy = block;
    a.Returned(HandToHand(&copy), SetHandleSize(block, 5000), PtrAndHand("abc", block, 3));
    a.Returned(trammel_detail::AppendToBlock("abc", block, 3),
               trammel_detail::TakeBytes(block, 3) != nullptr);
    GrowHandle(block, 70000);
    Handle third = nullptr;
    a.Returned(PtrToHand("abc", &third, 3), SetHandleSize(block, 3));
    char bytes[3] = {};
    BlockMove("abc", bytes, 3);
    a.Returned(std::string_view(bytes, 3) == "abc");
    a.Disposed(third);
    a.Disposed(copy);
    a.Disposed(block);
    a.Disposed(NewHandle(-1));
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

void Disposed(A& a, MacPolygon** polygon) { a.Disposed(reinterpret_cast<Handle>(polygon)); }

std::vector<Call> PlaneCalls() {
    return {
        {"TPoint<double>::=41 TRect<double>::=65 NaiveSectTRect<double>", kUnchanged,
         UsePoints<double>},
        {"TPoint<short>::=41 TRect<short>::=65 NaiveSectTRect<short>", kUnchanged,
         UsePoints<short>},
        {"TPoint<double>::", kThrows, [](A& a) { a.Returned(Pt(1e300, 2).NSString()); }},
        {"TPoint<short>::", kThrows,
         [](A& a) { a.Returned(TPoint<short>(-30000, -20000).NSString()); }},
        {"TRect<double>::", kThrows,
         [](A& a) { a.Returned(TRect<double>(1, 2, 1e300, 4).NSString()); }},
        {"TRect<short>::", kThrows,
         [](A& a) { a.Returned(TRect<short>(1, 2, 30000, 30001).NSString()); }},
        {"TLine<double>::=31 HitTest", kUnchanged, UseLine},
        {"CMatrix3x3::=19 Concat", kUnchanged, UseMatrix},
        {"CMatrix3x3::=3 operator<< operator>>", kPartial,
         [](A& a) {
             std::stringstream stream;
             stream << a.matrix;
             CMatrix3x3 m(stream);
             stream.seekg(0);
             stream >> m;
             m >> stream;
             a.Returned((m << stream).good());
         }},
        {"SinCos minmax<short> minmax<double> PinValueToRange<double> RadiusCircle DiameterCircle "
         "Pt3Circle "
         "SectTRect<short> SetRotate SetUnRotate Transform UnTransform FRectCenter DegToRad "
         "RadToDeg TPt<double> "
         "MidPt<double> Hypotenuse<double> LineLength<double> LineLength<short> "
         "trammel_detail::LengthOf "
         "LineMagnitude<double> "
         "EqualTPt<double> EqualTPt<short> EqualPtTol InFptBounds IsTrueCircle X2Fix FixDiv "
         "gen_crc_table "
         "CRCInit::CRCInit",
         kUnchanged, UseScalars},
        {"ZeroIfNaNOrInf<double> ZeroIfNaNOrInf<float> ZeroIfOutOfRange<double> "
         "ZeroIfOutOfRange<float> "
         "ValidateFloat<double> ValidateFloat<float> ValidatePoint ValidateRect",
         kUnchanged, UseHygiene},
        {"NSLog SetNSLogSink", kUnchanged,
         [](A& a) {
             NSLogSink const before = SetNSLogSink([](std::string const&) {});
             NSLog("%s", a.text.c_str());
             SetNSLogSink(before);
         }},
        {"CGPathAddCurveToPoint CGPathAddLineToPoint CGPathApply CGPathCloseSubpath "
         "CGPathCreateMutable "
         "CGPathGetBoundingBox CGPathGetRetainCount CGPathIsEmpty CGPathMoveToPoint CGPathRelease "
         "CGPathRetain "
         "trammel_detail::StorePath trammel_detail::PathForToken trammel_detail::ReleasePathToken",
         kPartial, UsePathObject},
        {"NewHandle NewHandleClear SetHandleSize DisposeHandle HandToHand PtrToHand GrowHandle "
         "BlockMove "
         "trammel_detail::AppendToBlock trammel_detail::TakeBytes",
         kUnchanged, UseHandles},
        {"trammel_detail::FormatFixed6 trammel_detail::FormatFixed6List "
         "trammel_detail::FormatIntegerList",
         kThrows,
         [](A& a) {
             a.Returned(trammel_detail::FormatFixed6(1e300),
                        trammel_detail::FormatFixed6List({1e300, 2}),
                        trammel_detail::FormatIntegerList({100000000, 200000000, 300000000}));
         }},
        {"trammel_detail::AbsoluteNumeral trammel_detail::FindRelativeNumeral", kUnchanged,
         [](A& a) {
             int guess = 0;
             trammel_detail::SvgNumeral numeral = trammel_detail::AbsoluteNumeral(0.1, guess);
             a.Returned(trammel_detail::FindRelativeNumeral(1, 1.1, guess, numeral),
                        numeral.length);
         }},
    };
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

std::vector<Call> PolygonCalls() {
    return {
        {"TPolygon<double>::Append", kUnchanged, [](A& a) { a.polygon.Append(a.p, true); }},
        {"TPolygon<double>::AppendUnique", kUnchanged, [](A& a) { a.polygon.AppendUnique(a.p); }},
        {"TPolygon<double>::TPolygon=3 TPolygon<double>::~TPolygon TPolygon<double>::operator=",
         kPartial,
         [](A& a) {
             TPolygon<double> made(a.rect);
             TPolygon<double> moved(std::move(made));
             made = std::move(moved);
             a.Returned(made, TPolygon<double>());
         }},
        {"TPolygon<double>::TPolygon", kPartial, [](A& a) { a.Returned(TPolygon<double>(a.ref)); }},
        {"TPolygon<double>::TPolygon", kPartial,
         [](A& a) { a.Returned(TPolygon<double>(a.points)); }},
        {"TPolygon<double>::TPolygon", kPartial,
         [](A& a) {
             a.Returned(TPolygon<double>{a.p, a.p});
         }},
        {"TPolygon<double>::TPolygon Clone<CPolygon<double>>", kPartial,
         [](A& a) { a.Returned(TPolygon<double>(a.polygon)); }},
        {"TPolygon<double>::operator=", kPartial, [](A& a) { a.flat = a.polygon; }},
        {"AppendHandle<CPolygon<double>,TPoint<double>>", kUnchanged,
         [](A& a) { AppendHandle(a.polygon.mHandle, a.p); }},
        {"TPolygon<double>::operatorCFPolygonRef", kPartial,
         [](A& a) { a.Disposed(static_cast<CFPolygonRef>(a.polygon)); }},
        {"TPolygon<double>::Clip", kThrows, [](A& a) { a.Returned(a.polygon.Clip(a.line)); }},
        {"BuildLTable<double>", kThrows, [](A& a) { BuildLTable(a.polygon, a.table); }},
        {"TPolygon<double>::TPt=2 TPolygon<double>::CalcPtFromEnd", kThrows,
         [](A& a) {
             std::vector<double> table;
             a.Returned(a.polygon.TPt(0.3), a.polygon.TPt(0.3, &table),
                        a.polygon.CalcPtFromEnd(1, true));
         }},
        {"TPolygon<double>::Bounds TPolygon<double>::BoundsValid TPolygon<double>::CalcBounds "
         "TPolygon<double>::Close TPolygon<double>::Closed "
         "TPolygon<double>::Contains TPolygon<double>::Empty TPolygon<double>::GetEdge=3 "
         "TPolygon<double>::GetPt "
         "TPolygon<double>::InvalBounds TPolygon<double>::LastEdge "
         "TPolygon<double>::LastGeometryEdge "
         "TPolygon<double>::LastIndex TPolygon<double>::Length TPolygon<double>::SetPt "
         "TPolygon<double>::Transform "
         "TPolygon<double>::begin TPolygon<double>::end",
         kUnchanged,
         [](A& a) {
             Pt start;
             Pt end;
             TLine<double> edge;
             a.polygon.GetEdge(0, start, end);
             a.polygon.GetEdge(1, edge);
             a.Returned(a.polygon.Bounds(), a.polygon.BoundsValid(), a.polygon.Contains(a.p),
                        a.polygon.Empty(), a.polygon.GetEdge(0), start, end, edge,
                        a.polygon.LastEdge(), a.polygon.LastGeometryEdge(), a.polygon.Length());
             a.polygon.CalcBounds();
             a.polygon.SetPt(0, a.p).Transform(a.matrix).InvalBounds().Close();
         }},
        {"CFPolygonRef::Append AppendPolyPt=0", kUnchanged, [](A& a) { a.ref.Append(a.p); }},
        {"AppendPolyPt", kUnchanged, [](A& a) { AppendPolyPt(a.p, a.ref); }},
        {"CFPolygonRef::Insert", kUnchanged, [](A& a) { a.ref.Insert(1, a.p); }},
        {"InsertPolyPt", kUnchanged, [](A& a) { InsertPolyPt(1, a.p, a.ref); }},
        {"InsertPolyPts", kPartial, [](A& a) { InsertPolyPts(a.empty, a.ref, 1000, 0); }},
        {"CFPolygonRef::SetSize", kUnchanged, [](A& a) { a.ref.SetSize(100000); }},
        {"CFPolygonRef::CFPolygonCreate CFPolygonRef::Dispose", kPartial,
         [](A& a) {
             CFPolygonRef made;
             a.Disposed(made.CFPolygonCreate(5));
             a.Returned(CFPolygonRef().Dispose());
         }},
        {"CFPolygonRef::CFPolygonCreate", kPartial,
         [](A& a) { a.Disposed(CFPolygonRef().CFPolygonCreate(a.ref)); }},
        {"CFPolygonRef::CFPolygonCreate", kPartial,
         [](A& a) { a.Disposed(CFPolygonRef().CFPolygonCreate(a.points)); }},
        {"CFPolygonRef::CFPolygonCreate", kPartial,
         [](A& a) { a.Disposed(CFPolygonRef().CFPolygonCreate(a.rect, 1)); }},
        {"CFPolygonRef::CFPolygonRef", kPartial,
         [](A& a) { a.Disposed(CFPolygonRef(a.ref, true)); }},
        {"CFPolygonRef::CFPolygonRef", kPartial,
         [](A& a) { a.Disposed(CFPolygonRef(static_cast<FPolygon**>(a.ref), true)); }},
        {"CFPolygonRef::CFPolygonRef", kPartial, [](A& a) { a.Disposed(CFPolygonRef(a.p.h > 0)); }},
        {"CFPolygonCreateCopy", kPartial, [](A& a) { a.Disposed(CFPolygonCreateCopy(a.ref)); }},
        {"CFPolygonRef::CreateQDPoly", kPartial, [](A& a) { Disposed(a, a.ref.CreateQDPoly()); }},
        {"CloneFPoly KillFPoly", kPartial,
         [](A& a) {
             CFPolygonRef const made = CloneFPoly(a.ref);
             a.Returned(made);
             KillFPoly(made);
         }},
        {"OpenFPoly CloseFPoly", kPartial,
         [](A& a) {
             a.Disposed(OpenFPoly());
             CloseFPoly();
         }},
        {"CreatePoly", kPartial, [](A& a) { a.Disposed(CreatePoly(7)); }},
        {"FRectToFPoly", kPartial, [](A& a) { a.Disposed(FRectToFPoly(a.rect)); }},
        {"RotRectToPoly", kPartial, [](A& a) { a.Disposed(RotRectToPoly(a.rect, 1)); }},
        {"FPoly2Poly Poly2FPoly LastPolyIndex", kPartial,
         [](A& a) {
             MacPolygon** const classic = FPoly2Poly(a.ref);
             a.Returned(LastPolyIndex(classic));
             a.Disposed(Poly2FPoly(classic));
             Disposed(a, classic);
         }},
        {"PolyDescription", kThrows, [](A& a) { a.Returned(PolyDescription(a.ref)); }},
        {"CFPolygonRef::GetPath CFPolygonRef::SetBuilPathProc trammel::BuildPath", kPartial,
         [](A& a) { UseBuilder(a, BuildPath); }},
        {"trammel::BuildOpenPath", kPartial, [](A& a) { UseBuilder(a, BuildOpenPath); }},
        {"trammel::BuildClosedPath", kPartial, [](A& a) { UseBuilder(a, BuildClosedPath); }},
        {"CFPolygonRef::Bounds CFPolygonRef::BoundsValid CFPolygonRef::CalcBounds "
         "CFPolygonRef::Closed "
         "CFPolygonRef::Contains CFPolygonRef::DataSize CFPolygonRef::Delete "
         "CFPolygonRef::GeometryEdgeCount "
         "CFPolygonRef::GetEdge CFPolygonRef::InvalBounds CFPolygonRef::Map CFPolygonRef::Offset "
         "CFPolygonRef::PolyPoints CFPolygonRef::Rotate CFPolygonRef::Scale=2 "
         "CFPolygonRef::SetClosed "
         "CFPolygonRef::SetPolyPoints",
         kUnchanged,
         [](A& a) {
             a.Returned(a.ref.Bounds(), a.ref.BoundsValid(), a.ref.Closed(), a.ref.Contains(a.p),
                        a.ref.DataSize(), a.ref.GeometryEdgeCount(), a.ref.GetEdge(0),
                        a.ref.PolyPoints(1));
             a.ref.CalcBounds();
             a.ref.InvalBounds();
             a.ref.Delete(1, 2).Map(a.rect, a.rect).Offset(a.p).Rotate(1, a.p).Scale(2).Scale(1, 2);
             a.ref.SetClosed(true).SetPolyPoints(0, a.p);
         }},
        {"DeletePolyPt FPolyClosed FPolyInFPoly FPtInFPoly FRectInFPoly FindFPolyBBox "
         "LastFPolyIndex MapFPoly "
         "OffsetFPoly RotateFPoly ScaleFPoly",
         kUnchanged,
         [](A& a) {
             a.Returned(FPolyClosed(a.ref), FPolyInFPoly(a.ref, a.ref, true),
                        FPtInFPoly(a.ref, a.p), FRectInFPoly(a.ref, a.rect, true),
                        LastFPolyIndex(a.ref));
             FindFPolyBBox(a.ref);
             DeletePolyPt(a.ref);
             MapFPoly(a.ref, a.rect, a.rect);
             OffsetFPoly(a.ref, a.p);
             RotateFPoly(a.ref, 1, a.p);
             ScaleFPoly(a.ref, 2);
         }},
        {"Tgcp_contour::Tgcp_contour=2 Tgcp_contour::Bounds", kThrows,
         [](A& a) {
             a.Returned(Tgcp_contour(a.ref), Tgcp_contour(), a.clipA.mContours[0].Bounds());
         }},
        {"Tgcp_contour::Tgcp_contour", kThrows, [](A& a) { a.Returned(Tgcp_contour(a.rect)); }},
        {"Tgcp_contour::ConvertToFPoly", kPartial,
         [](A& a) { a.Disposed(a.clipA.mContours[0].ConvertToFPoly()); }},
        {"Tgpc_polygon::Tgpc_polygon=2 Tgpc_polygon::Bounds", kThrows,
         [](A& a) { a.Returned(Tgpc_polygon(a.ref), Tgpc_polygon(), a.clipA.Bounds()); }},
        {"Tgpc_polygon::Tgpc_polygon", kThrows, [](A& a) { a.Returned(Tgpc_polygon(a.rect)); }},
        {"Tgpc_polygon::AddContour", kThrows,
         [](A& a) { a.clipB.AddContour(a.clipA.mContours[0]); }},
        {"Tgpc_polygon::ConvertToFPoly", kPartial,
         [](A& a) { a.Disposed(a.clipA.ConvertToFPoly(0)); }},
        {"Create_gpc Create_Tgpc gpc_free_polygon", kThrows,
         [](A& a) {
             gpc_polygon record = Create_gpc(a.clipA);
             struct Owner {
                 gpc_polygon& record;
                 ~Owner() { gpc_free_polygon(&record); }
             } const owner{record};
             a.Returned(Create_Tgpc(&record));
         }},
        {"Tgpc_polygon_clip", kEndsProcess,
         [](A& a) { Tgpc_polygon_clip(kPolyXor, a.clipA, a.clipB, a.clipped); }},
        {"gpc_polygon_clip", kEndsProcess,
         [](A& a) {
             gpc_polygon first = Create_gpc(a.clipA);
             gpc_polygon second = Create_gpc(a.clipB);
             gpc_polygon result{0, nullptr, nullptr};
             gpc_polygon_clip(GPC_UNION, &first, &second, &result);
             a.Returned(result.num_contours);
             gpc_free_polygon(&first);
             gpc_free_polygon(&second);
             gpc_free_polygon(&result);
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
         [](A& a) { a.Returned(Stroke(a.path, a.style, a.tolerance, a.out)); }},
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
