// SPDX-License-Identifier: MIT

// Declarations promise something before anything is computed: the types that members return, const,
// and constructors that do not convert.

#include "CBSpline.h"
#include "CBezier.h"
#include "CFPolygonRef.h"
#include "CMatrix3x3.h"
#include "CPath.h"
#include "FPolygon.h"
#include "TLine.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TRect.h"
#include "Tgcp.h"

#include <gtest/gtest.h>

#include <istream>
#include <sstream>
#include <type_traits>
#include <utility>

namespace {

typedef TPoint<double> Pt;
typedef TRect<double> Box;
typedef TLine<double> Line;

TEST(Signatures, MembersThatChangeAPointReturnIt) {
    Pt p(1, 2);
    EXPECT_EQ(&(p += p), &p);
    EXPECT_EQ(&(p -= p), &p);
    EXPECT_EQ(&(p *= p), &p);
    EXPECT_EQ(&(p /= p), &p);
    EXPECT_EQ(&(p *= 2.0), &p);
    EXPECT_EQ(&(p /= 2.0), &p);
    EXPECT_EQ(&p.Offset(1, 2), &p);
    EXPECT_EQ(&p.Offset(p), &p);
    EXPECT_EQ(&p.Scale(2.0), &p);
    EXPECT_EQ(&p.Scale(2.0, 3.0), &p);
    EXPECT_EQ(&p.Rotate(1.0), &p);
    EXPECT_EQ(&p.Rotate(1.0, p), &p);
    EXPECT_EQ(&p.Transform(CMatrix3x3()), &p);
    EXPECT_EQ(&p.Map(Box(0, 0, 1, 1), Box(0, 0, 2, 2)), &p);
}

TEST(Signatures, MembersThatChangeARectangleReturnIt) {
    Box r(1, 2, 3, 4);
    EXPECT_EQ(&r.Rectify(), &r);
    EXPECT_EQ(&r.Scale(2.0), &r);
    EXPECT_EQ(&r.Scale(2.0, 3.0), &r);
    EXPECT_EQ(&r.Inset(1, 1), &r);
    EXPECT_EQ(&r.Inset(1), &r);
    EXPECT_EQ(&r.Inset(Pt(1, 1)), &r);
    EXPECT_EQ(&r.Outset(1, 1), &r);
    EXPECT_EQ(&r.Outset(1), &r);
    EXPECT_EQ(&r.Offset(1, 1), &r);
    EXPECT_EQ(&r.Offset(Pt(1, 1)), &r);
    EXPECT_EQ(&(r |= r), &r);
    EXPECT_EQ(&(r |= Pt(1, 1)), &r);
    EXPECT_EQ(&(r &= r), &r);
    EXPECT_EQ(&r.FloorCeil(), &r);
    EXPECT_EQ(&r.Map(r, r), &r);
    EXPECT_EQ(&r.Transform(CMatrix3x3()), &r);
}

TEST(Signatures, MembersThatChangeALineACurveAPolygonOrAPathReturnIt) {
    Line line(Pt(0, 0), Pt(1, 1));
    EXPECT_EQ(&line.Set(Pt(0, 0), Pt(2, 1)), &line);
    EXPECT_EQ(&line.Rotate(1.0), &line);
    EXPECT_EQ(&line.Rotate(1.0, Pt(1, 1)), &line);
    CBezier curve;
    EXPECT_EQ(&curve.Scale(2.0), &curve);
    EXPECT_EQ(&curve.Scale(2.0, 3.0), &curve);
    EXPECT_EQ(&curve.Scale(Pt(2, 3)), &curve);
    EXPECT_EQ(&curve.Rotate(1.0), &curve);
    EXPECT_EQ(&curve.Rotate(1.0, Pt(1, 1)), &curve);
    EXPECT_EQ(&curve.Transform(CMatrix3x3()), &curve);
    TPolygon<double> polygon;
    EXPECT_EQ(&polygon.Append(Pt(1, 1), true), &polygon);
    EXPECT_EQ(&polygon.AppendUnique(Pt(2, 1)), &polygon);
    EXPECT_EQ(&polygon.SetPt(0, Pt(1, 2)), &polygon);
    EXPECT_EQ(&polygon.Transform(CMatrix3x3()), &polygon);
    EXPECT_EQ(&polygon.InvalBounds(), &polygon);
    EXPECT_EQ(&polygon.Close(), &polygon);
    CPath path;
    EXPECT_EQ(&path.MoveTo(Pt(0, 0)), &path);
    EXPECT_EQ(&path.LineTo(Pt(1, 0)), &path);
    EXPECT_EQ(&path.CurveTo(Pt(1, 1), Pt(2, 2), Pt(3, 0)), &path);
    EXPECT_EQ(&path.ClosePath(), &path);
    EXPECT_EQ(&path.Arc(Pt(0, 0), 1.0, 0.0, 1.0), &path);
    EXPECT_EQ(&path.RRect(Box(0, 0, 9, 9), 1.0), &path);
    EXPECT_EQ(&path.Append(path), &path);
    EXPECT_EQ(&path.AddCtl(1), &path);
    EXPECT_EQ(&path.AddPt(Pt(1, 1)), &path);
    EXPECT_EQ(&path.clear(), &path);
}

TEST(Signatures, PlainSettersReturnNothing) {
    EXPECT_TRUE(std::is_void_v<decltype(std::declval<Pt&>().Set(1, 2))>);
    EXPECT_TRUE(std::is_void_v<decltype(std::declval<Pt&>().SetNull())>);
    EXPECT_TRUE(std::is_void_v<decltype(std::declval<Box&>().Set(1, 2, 3, 4))>);
    EXPECT_TRUE(std::is_void_v<decltype(std::declval<Box&>().SetNull())>);
    Pt const p;
    EXPECT_TRUE(std::is_void_v<decltype(std::declval<CBezier&>().Set(p, p, p, p))>);
    EXPECT_TRUE(std::is_void_v<decltype(std::declval<CBezier&>().ISet(p, p, p, p))>);
    EXPECT_TRUE(std::is_void_v<decltype(std::declval<CBSpline&>().Set(p, p, p))>);
    EXPECT_TRUE(std::is_void_v<decltype(std::declval<CBSpline&>().ISet(p, p, p))>);
    EXPECT_TRUE(std::is_void_v<decltype(std::declval<Tgpc_polygon&>().AddContour(Tgcp_contour()))>);
}

TEST(Signatures, MembersThatOnlyAnswerTakeConstantObjects) {
    CMatrix3x3 const m;
    EXPECT_EQ(m.GetDTransform().Determinant(), 1.0);

    Line const line(Pt(0, 0), Pt(4, 0));
    EXPECT_EQ(line.HalfSpace(Pt(2, 0)), 1);
    EXPECT_EQ(line.FindTValue(Pt(1, 3)), 0.25);
    EXPECT_EQ(line.PinPtToLineSeg(Pt(9, 0)), Pt(4, 0));

    CFPolygonRef const polygon(true);
    FPolygon const& record = **static_cast<FPolygon**>(polygon);
    EXPECT_TRUE((std::is_same_v<decltype(record.PolyPoints(0)), Pt>));
    EXPECT_FALSE(polygon.Contains(Pt(1, 1)));
    CFPolygonRef(polygon).Dispose();

    CBezier const curve(Pt(0, 0), Pt(1, 0), Pt(2, 0), Pt(3, 0));
    Pt p0;
    Pt p1;
    Pt p2;
    Pt p3;
    curve.Get(p0, p1, p2, p3);
    EXPECT_EQ(p3, Pt(3, 0));
    EXPECT_TRUE(curve.Intersects(Box(-1, -1, 1, 1)));
    EXPECT_EQ(curve.PercentT(1.0), 1.0);
    EXPECT_EQ(curve.TPercent(1.0), 1.0);

    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(4, 0));
    CPath const& constant = path;
    EXPECT_EQ(constant.GetFraction(Pt(1, 1), Pt(1, 1)), 2.0 / 3.0); // 4/3 over 1 + 1
}

TEST(Signatures, ConstructorsThatWouldConvertBySurpriseAreExplicit) {
    EXPECT_TRUE((std::is_constructible_v<CFPolygonRef, bool>));
    EXPECT_FALSE((std::is_convertible_v<bool, CFPolygonRef>));
    EXPECT_TRUE((std::is_constructible_v<CMatrix3x3, std::istream&>));
    EXPECT_FALSE((std::is_convertible_v<std::istream&, CMatrix3x3>));
    EXPECT_TRUE((std::is_constructible_v<PointSort, bool>));
    EXPECT_FALSE((std::is_convertible_v<bool, PointSort>));
}

TEST(Signatures, AReferenceMadeFromNothingIsNullAndPointersSayWhetherToCopy) {
    EXPECT_EQ(CFPolygonRef().mRef, nullptr);
    EXPECT_TRUE((std::is_constructible_v<CFPolygonRef, FPolygon**, bool>));
    EXPECT_FALSE((std::is_convertible_v<FPolygon**, CFPolygonRef>));
    EXPECT_TRUE((std::is_constructible_v<CFPolygonRef, CFPolygonRef const&, bool>));
}

} // namespace
