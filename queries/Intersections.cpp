// SPDX-License-Identifier: MIT

#include "Intersections.h"

#include "CurveMeets_p.h"
#include "OutlineMeets_p.h"
#include "PointMath_p.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <vector>

namespace trammel {

namespace {

using trammel_detail::Cubic;
using trammel_detail::CubicOf;
using trammel_detail::CurveMeet;
using trammel_detail::CurveMeetFinder;
using trammel_detail::HowTheyPass;
using trammel_detail::IsShort;
using trammel_detail::OutlineSegment;
using trammel_detail::Passing;
using trammel_detail::RunsBackAlongItself;

TPoint<double> PointAt(Cubic const& c, double t) {
    TPoint<double> const p = CBezier(c[0], c[1], c[2], c[3]).TPt(t);
    // Differences of great numbers may overflow, those of their halves do not.
    return trammel_detail::IsFinite(p)
               ? p
               : CBezier(c[0] * 0.5, c[1] * 0.5, c[2] * 0.5, c[3] * 0.5).TPt(t) * 2.0;
}

/// True when an end of the curve lies in the stretch or within `accuracy` of it.
bool HoldsEnd(Cubic const& c, double from, double to, double accuracy) {
    return IsShort(c, 0.0, std::min(from, to), accuracy) ||
           IsShort(c, std::max(from, to), 1.0, accuracy);
}

/// Tells how the curves of a finder pass each other at a place.
Passing HowTheyPassAt(CurveMeet const& m, CurveMeetFinder const& finder) {
    Cubic const& a = finder.ScaledA();
    Cubic const& b = finder.ScaledB();
    double const accuracy = finder.ScaledAccuracy();
    if (HoldsEnd(a, m.s0, m.s1, accuracy) || HoldsEnd(b, m.t0, m.t1, accuracy)) {
        return Passing::kEnd;
    }
    if (m.before != 0 && m.after != 0) {
        return m.before != m.after ? Passing::kCross : Passing::kTouch;
    }
    OutlineSegment const segmentA{a, 0};
    OutlineSegment const segmentB{b, 0};
    return HowTheyPass({&segmentA, 0, m.s0, 0, m.s1},
                       {&segmentB, 0, std::min(m.t0, m.t1), 0, std::max(m.t0, m.t1)}, accuracy);
}

IntersectionKind KindOf(Passing passing) {
    switch (passing) {
    case Passing::kCross:
        return IntersectionKind::kCrossing;
    case Passing::kTouch:
        return IntersectionKind::kContact;
    case Passing::kEnd:
        break;
    }
    return IntersectionKind::kEnd;
}

bool IsLine(CBezier const&) { return false; }
bool IsLine(TLine<double> const&) { return true; }

template <class OutlineA, class OutlineB>
double AppendOfCubics(OutlineA const& outlineA, OutlineB const& outlineB, double accuracy,
                      std::vector<Intersection>& out) {
    Cubic const a = CubicOf(outlineA);
    Cubic const b = CubicOf(outlineB);
    if (RunsBackAlongItself(a, accuracy) || RunsBackAlongItself(b, accuracy)) {
        return AppendIntersectionsAsOutlines(CBezier(a[0], a[1], a[2], a[3]),
                                             CBezier(b[0], b[1], b[2], b[3]), accuracy, out);
    }
    CurveMeetFinder finder;
    double const kept = finder.Find(a, b, accuracy, IsLine(outlineA), IsLine(outlineB));
    auto const begun = static_cast<std::ptrdiff_t>(out.size());
    for (CurveMeet const& m : finder.Meets()) {
        Passing const passing = HowTheyPassAt(m, finder);
        Intersection place{KindOf(passing), passing == Passing::kCross,
                           {0, m.s, m.s},   {0, m.t, m.t},
                           PointAt(a, m.s), PointAt(a, m.s)};
        if (m.overlap) {
            place.kind = IntersectionKind::kOverlap;
            place.a = {0, m.s0, m.s1};
            place.b = {0, m.t0, m.t1};
            place.point = PointAt(a, m.s0);
            place.endPoint = PointAt(a, m.s1);
        }
        out.push_back(place);
    }
    // The finder's order is that of stretches, and places may lie anywhere in these.
    std::sort(out.begin() + begun, out.end(), [](Intersection const& p, Intersection const& q) {
        return std::tie(p.a.t, p.b.t) < std::tie(q.a.t, q.b.t);
    });
    return kept;
}

} // namespace

double AppendIntersections(CBezier const& a, CBezier const& b, double accuracy,
                           std::vector<Intersection>& out) {
    return AppendOfCubics(a, b, accuracy, out);
}

double AppendIntersections(CBezier const& a, TLine<double> const& b, double accuracy,
                           std::vector<Intersection>& out) {
    return AppendOfCubics(a, b, accuracy, out);
}

double AppendIntersections(TLine<double> const& a, CBezier const& b, double accuracy,
                           std::vector<Intersection>& out) {
    return AppendOfCubics(a, b, accuracy, out);
}

double AppendIntersections(TLine<double> const& a, TLine<double> const& b, double accuracy,
                           std::vector<Intersection>& out) {
    return AppendOfCubics(a, b, accuracy, out);
}

} // namespace trammel
