// SPDX-License-Identifier: MIT

// Special values in both kinds of polygons and in the operations that combine them.

#include "Finite.h"
#include "SpecialValues.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

using trammel_test::IsFinite;
using trammel_test::special::Box;
using trammel_test::special::Case;
using trammel_test::special::Draw;
using trammel_test::special::IsNaN;
using trammel_test::special::Pt;
using trammel_test::special::Segment;
using trammel_test::special::Use;

namespace {

void TryTPolygon(Draw& d) {
    TPolygon<double> polygon = d.Polygon(5);
    Pt const p = d.Point();
    double const t = d.Value();
    EXPECT_EQ(polygon.LastIndex(), 4);
    EXPECT_FALSE(polygon.Contains(Pt(std::nan(""), 0.0)));
    Use(polygon.Length());
    Use(polygon.Bounds().TopLeft());
    Use(polygon.Contains(p) ? 1.0 : 0.0);
    Use(polygon.TPt(t));
    Use(polygon.TPt(t, nullptr));
    Use(polygon.CalcPtFromEnd(t, d.Flag()));
    Segment const line = d.Line();
    std::vector<Segment> const pieces = polygon.Clip(line);
    EXPECT_LE(pieces.size(), 6u);
    if (IsNaN(line.mStart) || IsNaN(line.mEnd)) {
        EXPECT_TRUE(pieces.empty());
    }
    polygon.SetPt(2, p).Close().Transform(d.Matrix());
    EXPECT_TRUE(polygon.Closed());
    polygon.AppendUnique(p);
    CFPolygonRef handle = polygon;
    EXPECT_EQ(handle.LastIndex(), polygon.LastIndex() + 1);
    EXPECT_EQ(TPolygon<double>(handle).LastIndex(), handle.LastIndex());
    handle.Dispose();
    EXPECT_EQ(TPolygon<double>(d.Rect()).LastIndex(), 3);
}

void TryTPolygonEmpty(Draw& d) {
    TPolygon<double> polygon;
    EXPECT_EQ(polygon.Length(), 0.0);
    EXPECT_FALSE(polygon.Contains(d.Point()));
    EXPECT_TRUE(polygon.Bounds().Null());
    EXPECT_TRUE(polygon.Clip(d.Line()).size() <= 1);
    polygon.Transform(d.Matrix());
    EXPECT_TRUE(polygon.Empty());
}

void TryCFPolygonRef(Draw& d) {
    CFPolygonRef polygon(true);
    for (int i = 0; i < 4; ++i) {
        polygon.Append(d.Point());
    }
    Pt const p = d.Point();
    EXPECT_FALSE(polygon.Contains(Pt(std::nan(""), 0.0)));
    Use(polygon.Contains(p) ? 1.0 : 0.0);
    Use(polygon.Bounds().TopLeft());
    polygon.Insert(d.Index(), p);
    EXPECT_EQ(polygon.LastIndex(), 4);
    polygon.SetPolyPoints(d.Index(), p);
    Use(polygon.PolyPoints(d.Index()));
    Use(polygon.GetEdge(d.Index()).mStart);
    polygon.Offset(p);
    polygon.Scale(d.Value());
    polygon.Scale(d.Value(), p.h);
    polygon.Rotate(d.Value(), p);
    Box const from = d.Rect();
    polygon.Map(from, d.Rect());
    polygon.Delete(d.Index(), d.Index());
    MacPolygon** const qd = polygon.CreateQDPoly();
    ASSERT_NE(qd, nullptr);
    EXPECT_EQ(GetHandleSize(reinterpret_cast<Handle>(qd)), 10 + 4 * (polygon.LastIndex() + 1));
    DisposeHandle(reinterpret_cast<Handle>(qd));
    polygon.Dispose();
    polygon.CFPolygonCreate(d.Rect(), d.Value());
    EXPECT_EQ(polygon.LastIndex(), 4);
    polygon.Dispose();
}

void TryCFPolygonRefNull(Draw& d) {
    CFPolygonRef polygon;
    polygon.Append(d.Point());
    polygon.Insert(0, d.Point());
    polygon.SetPolyPoints(0, d.Point());
    polygon.Delete(0, 1);
    polygon.SetSize(3);
    polygon.SetClosed(true);
    polygon.Offset(d.Point());
    polygon.Scale(d.Value());
    polygon.Rotate(d.Value(), d.Point());
    polygon.Map(d.Rect(), d.Rect());
    EXPECT_FALSE(polygon.Contains(d.Point()));
    EXPECT_EQ(polygon.LastIndex(), -1);
    EXPECT_EQ(polygon.DataSize(), 0);
    EXPECT_EQ(polygon.PolyPoints(0), Pt());
    EXPECT_TRUE(polygon.Bounds().Null());
    EXPECT_FALSE(CFPolygonCreateCopy(polygon));
}

void TryCFPolygonRefPath(Draw& d) {
    CFPolygonRef polygon = d.HandlePolygon(4);
    polygon.SetClosed(d.Flag());
    CFPolygonRef::SetBuilPathProc(trammel::BuildPath);
    CGPath* const path = polygon.GetPath();
    EXPECT_NE(path, nullptr);
    EXPECT_EQ(polygon.GetPath(), path);
    // The path leaves out points that are no numbers of single precision.
    CGPathApply(path, nullptr, [](void*, CGPathElement const* element) {
        if (element->type != kCGPathElementCloseSubpath) {
            EXPECT_TRUE(std::isfinite(element->points[0].x));
            EXPECT_TRUE(std::isfinite(element->points[0].y));
        }
    });
    CFPolygonRef::SetBuilPathProc(nullptr);
    polygon.Dispose();
}

void TryUFPoly(Draw& d) {
    CFPolygonRef const polygon = d.HandlePolygon(4);
    Pt const p = d.Point();
    Box const r = d.Rect();
    EXPECT_EQ(FPolyClosed(polygon), polygon.PolyPoints(0) == polygon.PolyPoints(3));
    EXPECT_FALSE(FPtInFPoly(polygon, Pt(std::nan(""), 0.0)));
    EXPECT_FALSE(FRectInFPoly(polygon, r, true) && !FRectInFPoly(polygon, r, false));
    EXPECT_FALSE(FPolyInFPoly(polygon, polygon, true) && !FPolyInFPoly(polygon, polygon, false));
    std::string const text = PolyDescription(polygon);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4);
    ScaleFPoly(polygon, d.Value());
    RotateFPoly(polygon, d.Value(), p);
    MapFPoly(polygon, r, d.Rect());
    OffsetFPoly(polygon, p);
    EXPECT_TRUE(polygon.BoundsValid());
    InsertPolyPt(d.Index(), p, polygon);
    AppendPolyPt(p, polygon);
    EXPECT_EQ(LastFPolyIndex(polygon), 5);
    CFPolygonRef const copy = CloneFPoly(polygon);
    InsertPolyPts(polygon, copy, d.Index(), static_cast<short>(d.Index()));
    DeletePolyPt(polygon);
    FindFPolyBBox(polygon);
    EXPECT_TRUE(polygon.BoundsValid());
    KillFPoly(copy);
    MacPolygon** const qd = FPoly2Poly(polygon);
    EXPECT_EQ(LastPolyIndex(qd), LastFPolyIndex(polygon));
    CFPolygonRef const back = Poly2FPoly(qd);
    EXPECT_EQ(LastFPolyIndex(back), LastFPolyIndex(polygon));
    KillFPoly(back);
    DisposeHandle(reinterpret_cast<Handle>(qd));
    KillFPoly(polygon);
    KillFPoly(FRectToFPoly(r));
    KillFPoly(RotRectToPoly(r, d.Value()));
}

void TryUFPolyNull(Draw& d) {
    CFPolygonRef const null;
    EXPECT_TRUE(FPolyClosed(null));
    EXPECT_EQ(LastFPolyIndex(null), -1);
    EXPECT_FALSE(FPtInFPoly(null, d.Point()));
    EXPECT_FALSE(FRectInFPoly(null, d.Rect(), d.Flag()));
    EXPECT_EQ(FPolyInFPoly(null, null, d.Flag()), d.Flag());
    EXPECT_EQ(PolyDescription(null), "");
    ScaleFPoly(null, d.Value());
    RotateFPoly(null, d.Value(), d.Point());
    MapFPoly(null, d.Rect(), d.Rect());
    OffsetFPoly(null, d.Point());
    AppendPolyPt(d.Point(), null);
    InsertPolyPt(d.Index(), d.Point(), null);
    InsertPolyPts(null, null, d.Index(), 1);
    DeletePolyPt(null);
    FindFPolyBBox(null);
    KillFPoly(null);
    EXPECT_FALSE(CloneFPoly(null));
    EXPECT_EQ(CFPolygonRef(null).GetPath(), nullptr);
}

void TryUFPolyPoints(Draw& d) {
    Pt const a = d.Point();
    Pt const b = d.Point();
    double const x = d.Value();
    EXPECT_FALSE(EqualPtTol(a, b, std::nan("")));
    EXPECT_FALSE(EqualPtTol(a, a, 0.0));
    EXPECT_EQ(EqualPtTol(a, b, x), EqualPtTol(b, a, x));
    EXPECT_FALSE(InFptBounds(a, b, Pt(std::nan(""), x)));
    Use(InFptBounds(a, b, d.Point()) ? 1.0 : 0.0);
    Pt centre;
    double hRadius = 0.0;
    double vRadius = 0.0;
    Box const r = d.Rect();
    FRectCenter(r, centre, hRadius, vRadius);
    Use(centre);
    Use(hRadius + vRadius);
    EXPECT_FALSE(IsTrueCircle(r) && std::isnan(r.Width() - r.Height()));
}

void TryTgpcPolygonClip(Draw& d) {
    auto const contour = [&d](int vertices) {
        Tgcp_contour made;
        for (int i = 0; i < vertices; ++i) {
            made.Vertices().push_back(d.Point());
        }
        return made;
    };
    Tgpc_polygon a;
    a.AddContour(contour(4));
    a.AddContour(contour(3));
    Tgpc_polygon b;
    b.AddContour(contour(5));
    Use(a.Bounds().TopLeft());
    for (int op = -1; op <= 4; ++op) {
        Tgpc_polygon result;
        Tgpc_polygon_clip(static_cast<TPolyOp>(op), a, b, result);
        for (Tgcp_contour const& made : result.mContours) {
            EXPECT_GE(made.size(), 3u);
            for (Pt const& p : made.mVertices) {
                EXPECT_TRUE(IsFinite(p));
            }
        }
        EXPECT_TRUE((op >= 0 && op <= 3) || result.NumContours() == 0);
    }
}

} // namespace

std::vector<Case> trammel_test::special::PolygonCases() {
    return {
        {"TPolygon", TryTPolygon},
        {"TPolygon_empty", TryTPolygonEmpty},
        {"CFPolygonRef", TryCFPolygonRef},
        {"CFPolygonRef_null", TryCFPolygonRefNull},
        {"CFPolygonRef_path", TryCFPolygonRefPath},
        {"UFPoly", TryUFPoly},
        {"UFPoly_null", TryUFPolyNull},
        {"UFPoly_points", TryUFPolyPoints},
        {"Tgpc_polygon_clip", TryTgpcPolygonClip},
    };
}
