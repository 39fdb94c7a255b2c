// SPDX-License-Identifier: MIT

#include "UFPoly.h"

#include "FixedPoint.h"
#include "Handles.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <locale>
#include <sstream>

namespace {

/// The 16.16 value below which width and height of a circle's rectangle may differ.
constexpr Fixed kCircleTolerance = 4000;

constexpr long kQDHeaderSize = 10;
constexpr long kQDPointSize = 4;

/// A run of so many points or more is not begun: no block can hold them.
constexpr long kTooManyPoints = 1L << (sizeof(long) == 8 ? 36 : 26);

/// The distance beyond the box that InFptBounds reaches, in coordinate units.
constexpr double kBoundsReach = 1.0;

} // namespace

CFPolygonRef OpenFPoly() { return CFPolygonRef(true); }

void CloseFPoly() {}

CFPolygonRef CreatePoly(long n) {
    CFPolygonRef p(false);
    p.CFPolygonCreate(n);
    return p;
}

CFPolygonRef CloneFPoly(CFPolygonRef p) { return CFPolygonRef(p, true); }

void KillFPoly(CFPolygonRef p) { p.Dispose(); }

CFPolygonRef Poly2FPoly(MacPolygon** qd) {
    // This counts whole points. LastPolyIndex rounds toward zero, and would take a header with a
    // piece of a point for one point.
    long const size = GetHandleSize(reinterpret_cast<Handle>(qd));
    long const count = std::max((size - kQDHeaderSize) / kQDPointSize, 0L);
    CFPolygonRef p = CreatePoly(count);
    if (p) {
        for (long i = 0; i < count; ++i) {
            Point point;
            std::memcpy(&point, *reinterpret_cast<Handle>(qd) + kQDHeaderSize + kQDPointSize * i,
                        sizeof point);
            p.SetPolyPoints(i, point);
        }
    }
    p.Bounds();
    return p;
}

MacPolygon** FPoly2Poly(CFPolygonRef p) { return p.CreateQDPoly(); }

CFPolygonRef FRectToFPoly(TRect<double> const& r) {
    TRect<double> const rect = r;
    CFPolygonRef p = CreatePoly(5);
    p.SetPolyPoints(0, rect[kTopLeft]);
    p.SetPolyPoints(1, rect.TopRight());
    p.SetPolyPoints(2, rect[kBottomRight]);
    p.SetPolyPoints(3, rect.BottomLeft());
    p.SetPolyPoints(4, rect[kTopLeft]);
    p.Bounds();
    return p;
}

CFPolygonRef RotRectToPoly(TRect<double> r, double angle) {
    CFPolygonRef p = FRectToFPoly(r);
    p.Rotate(angle, r.MidPt());
    p.Bounds();
    return p;
}

bool FPolyClosed(CFPolygonRef p) { return p.PolyPoints(0) == p.PolyPoints(p.LastIndex()); }

long LastFPolyIndex(CFPolygonRef p) { return p.LastIndex(); }

long LastPolyIndex(MacPolygon** qd) {
    return (GetHandleSize(reinterpret_cast<Handle>(qd)) - (kQDHeaderSize + kQDPointSize)) /
           kQDPointSize;
}

void FindFPolyBBox(CFPolygonRef p) {
    p.InvalBounds();
    p.Bounds();
}

std::string PolyDescription(CFPolygonRef p) {
    std::stringstream text;
    text.imbue(std::locale::classic());
    text.exceptions(std::ios::badbit); // without it a stream swallows std::bad_alloc
    for (long i = 0; i <= p.LastIndex(); ++i) {
        TPoint<double> const pt = p.PolyPoints(i);
        text << pt.h << ", " << pt.v << '\n';
    }
    return text.str();
}

void ScaleFPoly(CFPolygonRef p, double s) { p.Scale(s); }

void RotateFPoly(CFPolygonRef p, double angle, TPoint<double> const& center) {
    p.Rotate(angle, center);
}

void MapFPoly(CFPolygonRef p, TRect<double> const& from, TRect<double> const& to) {
    p.Map(from, to);
}

void OffsetFPoly(CFPolygonRef p, TPoint<double> d) {
    p.Offset(d);
    p.Bounds();
}

void AppendPolyPt(TPoint<double> pt, CFPolygonRef p) { p.Append(pt); }

void InsertPolyPt(long i, TPoint<double> pt, CFPolygonRef p) { p.Insert(i, pt); }

void InsertPolyPts(CFPolygonRef dst, CFPolygonRef src, long count, short mode) {
    // An append that fails will fail again; without this end, an absurd count would spin.
    auto const append = [&dst](TPoint<double> const& pt) {
        long const before = dst.LastIndex();
        dst.Append(pt);
        return dst.LastIndex() > before;
    };
    // Where both are one polygon, points that arrive during the run do not count as the source's.
    auto const point = [&src, last = src.LastIndex()](long i) {
        return i <= last ? src.PolyPoints(i) : TPoint<double>();
    };
    if (count <= 0 || count >= kTooManyPoints) {
        mode = 0;
    }
    if (mode == 1) {
        for (long i = 1; i <= count && append(point(i)); ++i) {
        }
    } else if (mode == 2) {
        for (long i = count - 1; i >= 0 && append(point(i)); --i) {
        }
    }
    dst.Bounds();
}

void DeletePolyPt(CFPolygonRef p) {
    p.Delete(p.LastIndex(), 1);
    p.Bounds();
}

bool FPtInFPoly(CFPolygonRef p, TPoint<double> const& pt) { return p.Contains(pt); }

bool FRectInFPoly(CFPolygonRef p, TRect<double> const& r, bool all) {
    TPoint<double> const corners[] = {r.TopLeft(), r.TopRight(), r.BottomRight(), r.BottomLeft()};
    auto const inside = [p](TPoint<double> const& corner) { return FPtInFPoly(p, corner); };
    return all ? std::all_of(std::begin(corners), std::end(corners), inside)
               : std::any_of(std::begin(corners), std::end(corners), inside);
}

bool FPolyInFPoly(CFPolygonRef outer, CFPolygonRef inner, bool all) {
    long const last = LastFPolyIndex(inner);
    for (long i = 0; i <= last; ++i) {
        if (FPtInFPoly(outer, inner.PolyPoints(i)) != all) {
            return !all;
        }
    }
    return all;
}

bool InFptBounds(TPoint<double> a, TPoint<double> b, TPoint<double> pt) {
    return TRect<double>(a, b).Inset(-kBoundsReach, -kBoundsReach).Contains(pt);
}

bool EqualPtTol(TPoint<double> const& a, TPoint<double> const& b, double tol) {
    return std::abs(a.h - b.h) < tol && std::abs(a.v - b.v) < tol;
}

void FRectCenter(TRect<double> r, TPoint<double>& center, double& hRadius, double& vRadius) {
    center = r.MidPt();
    hRadius = r.Width() / 2.0;
    vRadius = r.Height() / 2.0;
}

bool IsTrueCircle(TRect<double> r) {
    return std::abs(r.Width() - r.Height()) < Fix2X(kCircleTolerance);
}
