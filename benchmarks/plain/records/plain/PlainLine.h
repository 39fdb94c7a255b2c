// SPDX-License-Identifier: MIT

// The functions that the plain forms of curves and paths stand on, by the plain library's own lines
// and polygons.

#ifndef TRAMMEL_BENCH_PLAINLINE_H
#define TRAMMEL_BENCH_PLAINLINE_H

#include "plain/PlainRecords.h"

namespace plain {

inline double LineLength(Pt const& a, Pt const& b) { return Line(a, b).Length(); }
inline Pt LinePt(Pt const& a, Pt const& b, double t) { return a + (b - a) * t; }
inline double DistanceToLine(Pt const& a, Pt const& b, Pt const& p) {
    return Line(a, b).Distance(p);
}
inline Pt QuarterTurn(Pt const& p, Pt const& centre) { return Pt(p).Rotate(pi / 2.0, centre); }
inline int HalfSpace(Pt const& a, Pt const& b, Pt const& p) { return Line(a, b).HalfSpace(p); }
inline double LineTValue(Pt const& a, Pt const& b, Pt const& p) { return Line(a, b).FindTValue(p); }
inline bool LineHit(Pt const& a, Pt const& b, Pt const& p, double tolerance) {
    return Line(a, b).HitTest(p, tolerance);
}

inline void AppendUnique(Points& chain, Pt const& p) { chain.AppendUnique(p); }
inline double ChainLength(Points const& chain) { return chain.Length(); }
inline Pt ChainPt(Points const& chain, double t) { return chain.TPt(t); }

} // namespace plain

#endif
