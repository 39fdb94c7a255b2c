// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "CFPolygonRef.h"
#include "CGPathBuilder.h"
#include "Moments.h"
#include "PathStructure.h"
#include "PreparedOutline.h"
#include "PreparedPolygon.h"
#include "UFPoly.h"
#include "Winding.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

namespace fuzz {

namespace {

/// A block as another program may have left it: with any bytes in the header, or without a header.
CFPolygonRef Foreign(Input& in) {
    std::string bytes(in.Int(0, 7) == 0 ? static_cast<std::size_t>(in.Int(0, 60)) : 44, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(in.Byte());
    }
    for (Pt const& p : in.Points(40)) {
        char coordinates[sizeof p];
        std::memcpy(coordinates, &p, sizeof p);
        bytes.append(coordinates, sizeof p);
    }
    bytes.append(static_cast<std::size_t>(in.Int(0, 15)), 'x'); // less than a point
    Handle block = nullptr;
    PtrToHand(bytes.data(), &block, static_cast<Size>(bytes.size()));
    return CFPolygonRef(reinterpret_cast<FPolygon**>(block), false);
}

void Change(CFPolygonRef& polygon, Input& in) {
    long const at = in.Int(-3, 60);
    Pt const p = in.Point();
    switch (in.Int(0, 15)) {
    case 0:
        polygon.Append(p);
        break;
    case 1:
        polygon.Insert(at, p);
        break;
    case 2:
        polygon.Delete(at, in.Int(-3, 60));
        break;
    case 3:
        polygon.SetPolyPoints(at, p);
        break;
    case 4:
        polygon.Offset(p);
        break;
    case 5:
        polygon.Scale(in.Number());
        break;
    case 6:
        polygon.Scale(p.h, p.v);
        break;
    case 7:
        polygon.Map(in.Rect(), in.Rect());
        break;
    case 8:
        polygon.SetClosed(in.Flag());
        break;
    case 9:
        polygon.Rotate(in.Number(), p);
        break;
    case 10:
        polygon.SetSize(at);
        break;
    case 11:
        DeletePolyPt(polygon);
        break;
    case 12:
        InsertPolyPt(at, p, polygon);
        break;
    case 13: {
        CFPolygonRef other = Foreign(in);
        InsertPolyPts(polygon, other, in.Int(-2, 60), static_cast<short>(in.Int(-1, 4)));
        FPolyInFPoly(polygon, other, in.Flag());
        other.Dispose();
        break;
    }
    case 14: {
        MacPolygon** const quickDraw = FPoly2Poly(polygon);
        CFPolygonRef back = Poly2FPoly(quickDraw);
        back.Dispose();
        DisposeHandle(reinterpret_cast<Handle>(quickDraw));
        break;
    }
    default:
        polygon.InvalBounds();
    }
}

void Ask(CFPolygonRef const& polygon, Input& in) {
    Pt const p = in.Point();
    bool const inside = polygon.Contains(p);
    Require(inside == trammel::PreparedPolygon(polygon).Contains(p),
            "a prepared handle answers as the handle");
    polygon.Bounds();
    polygon.GetEdge(in.Int(-3, 60));
    polygon.GeometryEdgeCount();
    polygon.PolyPoints(in.Int(-3, 60));
    PolyDescription(polygon);
    FRectInFPoly(polygon, in.Rect(), in.Flag());
    TPolygon<double> const list(polygon);
    Require(list.LastIndex() == std::max(polygon.LastIndex(), -1L),
            "a list has as many points as its handle");
}

void CountElement(void* count, CGPathElement const*) { ++*static_cast<long*>(count); }

/// Copies a polygon, makes other objects of its handle, and asks about its outline.
void Copy(CFPolygonRef& polygon, Input& in) {
    Pt const p = in.Point();
    Box const from = in.Rect();
    Box const to = in.Rect();
    CFPolygonRef clone = CloneFPoly(polygon);
    Require(clone.LastIndex() == polygon.LastIndex(), "a clone has as many points");
    MapFPoly(clone, from, to);
    OffsetFPoly(clone, p);
    ScaleFPoly(clone, p.h);
    RotateFPoly(clone, p.v, p);
    clone.Dispose();
    for (CFPolygonRef shape : {FRectToFPoly(from), RotRectToPoly(to, p.h)}) {
        Require(shape.LastIndex() >= 3, "a rectangle has four points");
        shape.Dispose();
    }
    TPolygon<double> const list(polygon);
    Require(trammel::PreparedOutline(polygon).WindingNumber(p) ==
                trammel::WindingNumber(polygon, p),
            "a prepared outline winds as the handle");
    trammel::SignedArea(polygon);
    trammel::MomentsOf(polygon);
    CPath const path = trammel::PathOf(polygon);
    Require(path.mCtls.size() <= static_cast<std::size_t>(list.LastIndex() + 2),
            "a path has an element for each point, and a close");
    // The drawing path is built once, and again where points have changed.
    CFPolygonRef::SetBuilPathProc(trammel::BuildPath);
    CGPath* const drawn = polygon.GetPath();
    Require(drawn == polygon.GetPath(), "a drawing path is kept");
    long elements = 0;
    CGPathApply(drawn, &elements, CountElement);
    Require(elements <= 2 * (list.LastIndex() + 2), "a drawing path has few elements");
    polygon.Offset(p);
    polygon.GetPath();
    CFPolygonRef::SetBuilPathProc(nullptr);
}

} // namespace

void Handles(Input& in) {
    CFPolygonRef polygon = Foreign(in);
    for (int i = in.Int(0, 12); i > 0; --i) {
        Change(polygon, in);
        if (in.Flag()) {
            Ask(polygon, in);
        }
    }
    Ask(polygon, in);
    Copy(polygon, in);
    polygon.Dispose();
}

} // namespace fuzz
