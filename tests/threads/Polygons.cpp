// SPDX-License-Identifier: MIT

// Calls of both kinds of polygons, of blocks, drawing paths and the clipper.

#include "Objects.h"

#include <initializer_list>
#include <utility>

namespace threads {

namespace {

void Polygons(Objects const& shared, Digest& digest) {
    Polygon const& polygon = shared.polygon;
    digest.Add(polygon.Contains(Pt(50, 50)));
    digest.Add(polygon.Bounds());
    digest.Add(polygon.BoundsValid());
    polygon.CalcBounds();
    digest.Add(Polygon(polygon).Bounds());
    Polygon assigned;
    assigned = polygon;
    digest.Add(assigned.Bounds());
    digest.Add(polygon.LastIndex());
    digest.Add(polygon.LastEdge());
    digest.Add(polygon.LastGeometryEdge());
    digest.Add(polygon.Empty());
    digest.Add(polygon.Closed());
    digest.Add(polygon.GetPt(1));
    Pt a;
    Pt b;
    polygon.GetEdge(1, a, b);
    TLine<double> edge;
    polygon.GetEdge(1, edge);
    digest.Add(polygon.GetEdge(2).mStart);
    digest.Add(polygon.Length());
    digest.Add(polygon.TPt(0.3));
    digest.Add(polygon.TPt(0.3, nullptr));
    digest.Add(polygon.CalcPtFromEnd(10, false));
    std::vector<double> table;
    BuildLTable(polygon, table);
    digest.Add(table);
    digest.Add(static_cast<long>(polygon.Clip(shared.line).size()));
    digest.Add(polygon);
    digest.Take(polygon);
}

void ChangingPolygons(Objects const& shared, Digest& digest) {
    Polygon polygon(Box(0, 0, 10, 20));
    polygon.SetPt(1, Pt(2, 3)).Append(Pt(4, 4), true).AppendUnique(Pt(4, 4));
    polygon.Transform(CMatrix3x3().Scale(2)).InvalBounds().Close();
    digest.Add(polygon.Bounds());
    Polygon moved(std::move(polygon));
    Polygon target(std::vector<Pt>{Pt(1, 1), Pt(2, 2)});
    target = std::move(moved);
    digest.Add(target);
    digest.Add(Polygon(shared.handle));
    CPolygon<double>** const block = Clone(target.mHandle);
    AppendHandle(block, Pt(1, 2));
    DisposeHandle(reinterpret_cast<Handle>(block));
}

void HandlePolygons(Objects const& shared, Digest& digest) {
    CFPolygonRef const polygon = shared.handle;
    digest.Add(polygon.Bounds());
    polygon.InvalBounds(); // another thread reads all of the bounds or none
    digest.Add(polygon.Bounds());
    polygon.CalcBounds();
    static_cast<void>(polygon.BoundsValid()); // as the others have left it
    digest.Add(polygon.DataSize());
    digest.Add(polygon.LastIndex());
    digest.Add(polygon.PolyPoints(2));
    digest.Add(polygon.Closed());
    digest.Add(polygon.EdgeCount());
    digest.Add(polygon.GetEdge(1).mEnd);
    digest.Add(polygon.GeometryEdgeCount());
    digest.Add(polygon.Contains(Pt(30, 30)));
    digest.Take(CFPolygonCreateCopy(polygon));
    digest.Take(CFPolygonRef(polygon, true));
    digest.Take(CFPolygonRef(static_cast<FPolygon**>(polygon), true));
    MacPolygon** const quickDraw = polygon.CreateQDPoly();
    digest.Add(long{(*quickDraw)->polyBBox.right});
    digest.Add(LastPolyIndex(quickDraw));
    digest.Take(Poly2FPoly(quickDraw));
    DisposeHandle(reinterpret_cast<Handle>(quickDraw));
    DisposeHandle(reinterpret_cast<Handle>(FPoly2Poly(polygon)));
    digest.Add(FPolyClosed(polygon));
    digest.Add(LastFPolyIndex(polygon));
    digest.Add(PolyDescription(polygon));
    digest.Add(FPtInFPoly(polygon, Pt(30, 30)));
    digest.Add(FRectInFPoly(polygon, Box(20, 20, 30, 30), true));
    digest.Add(FPolyInFPoly(polygon, polygon, false));
    digest.Take(CloneFPoly(polygon));
    FindFPolyBBox(polygon);
}

CGPath* DrawingOf(CFPolygonRef polygon) { return polygon.GetPath(); }

void ChangingHandlePolygons(Objects const& shared, Digest& digest) {
    CFPolygonRef polygon(true);
    polygon.Append(Pt(1, 1)).Append(Pt(9, 2)).Insert(1, Pt(5, 5)).Append(Pt(3, 8));
    digest.Add(polygon.Bounds());
    polygon.SetSize(6).SetPolyPoints(5, Pt(2, 2)).Delete(1, 1).SetClosed(true);
    digest.Add(CGPathGetBoundingBox(DrawingOf(polygon)).size.width > 0);
    polygon.Offset(Pt(1, 1)).Scale(2).Scale(2, 3).Rotate(0.3, Pt(1, 1));
    polygon.Map(Box(0, 0, 10, 10), Box(5, 5, 20, 30));
    digest.Add(DrawingOf(polygon) != nullptr);
    ScaleFPoly(polygon, 2);
    RotateFPoly(polygon, 0.2, Pt(3, 3));
    MapFPoly(polygon, Box(0, 0, 10, 10), Box(5, 5, 20, 30));
    OffsetFPoly(polygon, Pt(1, 2));
    AppendPolyPt(Pt(7, 7), polygon);
    InsertPolyPt(0, Pt(8, 8), polygon);
    InsertPolyPts(polygon, shared.handle, 2, 1);
    DeletePolyPt(polygon);
    digest.Add(polygon.Bounds());
    digest.Add(polygon);
    KillFPoly(polygon);
    digest.Take(CFPolygonRef().CFPolygonCreate(3L));
    digest.Take(CFPolygonRef().CFPolygonCreate(std::vector<Pt>{Pt(1, 1)}));
    digest.Take(CFPolygonRef().CFPolygonCreate(Box(0, 0, 5, 5), 0.3));
    digest.Take(CFPolygonRef().CFPolygonCreate(shared.handle));
    digest.Take(CreatePoly(2));
    digest.Take(FRectToFPoly(Box(0, 0, 5, 5)));
    digest.Take(RotRectToPoly(Box(0, 0, 5, 5), 0.2));
    digest.Take(OpenFPoly());
    CloseFPoly();
}

void Boxes(Objects const&, Digest& digest) {
    Pt center;
    double hRadius = 0;
    double vRadius = 0;
    FRectCenter(Box(1, 2, 8, 5), center, hRadius, vRadius);
    digest.Add(center);
    digest.Add(IsTrueCircle(Box(0, 0, 5, 5)));
    digest.Add(InFptBounds(Pt(0, 0), Pt(5, 5), Pt(3, 3)));
    digest.Add(EqualPtTol(Pt(0, 0), Pt(1, 0), 2));
    TRect<short> common;
    digest.Add(SectTRect(TRect<short>(0, 0, 5, 5), TRect<short>(2, 2, 9, 9), common));
    digest.Add(long{FixDiv(65536, 3)});
    digest.Add(long{X2Fix(1.25)});
}

void Areas(Objects const& shared, Digest& digest) {
    Tgpc_polygon const& area = shared.area;
    digest.Add(area.Bounds());
    digest.Take(area.ConvertToFPoly(0));
    digest.Add(area.mContours[0].Bounds());
    digest.Take(area.mContours[0].ConvertToFPoly());
    Tgpc_polygon other(shared.handle);
    other.AddContour(Tgcp_contour(Box(70, 70, 75, 90)));
    other.AddContour(Tgcp_contour(shared.handle));
    Tgpc_polygon result;
    for (TPolyOp const op : {kPolyDifference, kPolyIntersection, kPolyXor, kPolyUnion}) {
        Tgpc_polygon_clip(op, area, other, result);
        for (Tgcp_contour const& contour : result.mContours) {
            digest.Add(contour.mVertices);
        }
    }
    gpc_polygon a = Create_gpc(area);
    gpc_polygon b = Create_gpc(other);
    gpc_polygon c;
    gpc_polygon_clip(GPC_UNION, &a, &b, &c);
    digest.Add(Create_Tgpc(&c).NumContours());
    gpc_free_polygon(&a);
    gpc_free_polygon(&b);
    gpc_free_polygon(&c);
    digest.Add(Tgcp_contour().size() == 0);
}

void Drawings(Objects const& shared, Digest& digest) {
    CGPathRef const drawing = CGPathRetain(shared.drawing);
    digest.Add(CGPathIsEmpty(drawing));
    digest.Add(double{CGPathGetBoundingBox(drawing).size.width});
    CGPathApply(drawing, &digest, [](void* info, CGPathElement const* element) {
        static_cast<Digest*>(info)->Add(long{element->type});
    });
    digest.Add(CGPathGetRetainCount(drawing) > 0);
    CGPathRelease(drawing);
    CGMutablePathRef const own = CGPathCreateMutable();
    CGPathMoveToPoint(own, nullptr, 1, 1);
    CGPathAddLineToPoint(own, nullptr, 2, 2);
    CGPathAddCurveToPoint(own, nullptr, 1, 2, 3, 4, 5, 6);
    CGPathCloseSubpath(own);
    CGPathRelease(own);
    for (auto* const build :
         {trammel::BuildPath, trammel::BuildOpenPath, trammel::BuildClosedPath}) {
        CGPath* const built = build(shared.handle);
        digest.Add(double{CGPathGetBoundingBox(built).size.height});
        CGPathRelease(built);
    }
}

void Blocks(Objects const&, Digest& digest) {
    Handle block = NewHandle(10);
    Handle const first = block;
    digest.Add(long{SetHandleSize(block, 400)});
    GrowHandle(block, -20);
    digest.Add(long{PtrAndHand("abc", block, 3)});
    digest.Add(long{HandToHand(&block)});
    digest.Add(GetHandleSize(block));
    DisposeHandle(block);
    DisposeHandle(first);
    digest.Add(long{PtrToHand("abc", &block, 3)});
    BlockMove("xyz", *block, 2);
    digest.Add(std::string(*block, 3));
    DisposeHandle(block);
    DisposeHandle(NewHandleClear(7));
}

void Text(Objects const& shared, Digest& digest) {
    std::string const svg = trammel::WriteSvgPath(shared.path);
    digest.Add(svg);
    digest.Add(trammel::ReadSvgPath(svg).path);
    digest.Add(trammel::ReadSvgPath("M1 1 A 5 4 0 1 1 9 9", 0.01).path);
    digest.Add(trammel::ReadSvgPath("M1 1h0", trammel::SvgPathOptions()).path);
    digest.Add(trammel::ReadSvgPath("M1 x").error->Message());
    digest.Add(trammel::ToString(shared.curve) + trammel::ToString(shared.spline));
    digest.Add(trammel::ToString(shared.line) + trammel::ToString(shared.path));
    digest.Add(trammel::ToString(Pt(1, 2)) + trammel::ToString(TPoint<short>(1, 2)));
    digest.Add(trammel::ToString(Box(1, 2, 3, 4)) + trammel::ToString(TRect<short>(1, 2, 3, 4)));
    digest.Add(trammel::ToString(CMatrix3x3()));
}

} // namespace

std::vector<Calls> CallsOfPolygons() {
    return {
        {"polygons", Polygons},
        {"changing polygons", ChangingPolygons},
        {"handle polygons", HandlePolygons},
        {"changing handle polygons", ChangingHandlePolygons},
        {"boxes", Boxes},
        {"areas", Areas},
        {"drawings", Drawings},
        {"blocks", Blocks},
        {"text", Text},
    };
}

} // namespace threads
