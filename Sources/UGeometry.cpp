// SPDX-License-Identifier: MIT

#include "UGeometry.h"

namespace {

// The library also exports the header's inline function, for callers that find it by name.
[[gnu::used]] bool (*const kInLibrary)(TPoint<double>, TPoint<double>, TPoint<double>,
                                       double) = HitTest;

void SetCircle(TRect<double>& out, TPoint<double> centre, double radius) {
    out.Set(centre, centre);
    out.Outset(radius, radius);
}

} // namespace

void RadiusCircle(TPoint<double> const& centre, TPoint<double> const& onCircle,
                  TRect<double>& out) {
    SetCircle(out, centre, TLine<double>(centre, onCircle).Length());
}

void DiameterCircle(TPoint<double> const& a, TPoint<double> const& b, TRect<double>& out) {
    TLine<double> const diameter(a, b);
    SetCircle(out, diameter.TPt(0.5), diameter.Length() / 2.0);
}

void Pt3Circle(TPoint<double> const& a, TPoint<double> const& b, TPoint<double> const& c,
               TRect<double>& out) {
    if (a == b || b == c) {
        DiameterCircle(a, c, out);
        return;
    }
    TLine<double> const bisector1 = TLine<double>(a, b).PerpendicularBisector();
    TLine<double> const bisector2 = TLine<double>(b, c).PerpendicularBisector();
    TPoint<double> centre;
    if (bisector1.Intersects(bisector2, centre)) {
        double const radius = (centre - c).Length();
        out.Set(centre, radius, radius);
    } else {
        DiameterCircle(a, c, out);
    }
}
