// SPDX-License-Identifier: MIT

#include "Calls.h"
#include "Dispatch_p.h"
#include "SvgNumeral_p.h"
#include "Text_p.h"

#include <sstream>
#include <utility>

namespace trammel_test {

namespace {

using namespace trammel;

void IgnoreElement(void* data, CGPathElement const* element) {
    static_cast<Arguments*>(data)->Returned(element->type);
}

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

void Disposed(A& a, MacPolygon** polygon) { a.Disposed(reinterpret_cast<Handle>(polygon)); }

} // namespace

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

} // namespace trammel_test
