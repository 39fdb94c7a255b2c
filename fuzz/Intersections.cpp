// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "CBezier.h"
#include "CPath.h"
#include "Intersections.h"
#include "PathSegments.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>
#include <vector>

namespace fuzz {

namespace {

using trammel::Intersection;
using trammel::IntersectionKind;
using trammel::IntersectionPlace;

/// The places of two outlines, and the distance that was kept.
struct Found {
    std::vector<Intersection> places;
    double kept;
};

template <class OutlineA, class OutlineB>
Found Find(OutlineA const& a, OutlineB const& b, double accuracy) {
    Found found;
    found.kept = trammel::AppendIntersections(a, b, accuracy, found.places);
    return found;
}

/// The greatest magnitude of a coordinate; infinite where not all are finite or differences of them
/// might overflow.
double SizeOf(std::vector<Pt> const& points) {
    double size = 0.0;
    for (Pt const& p : points) {
        for (double const x : {p.h, p.v}) {
            size = std::abs(x) < 1e300 ? std::max(size, std::abs(x)) : HUGE_VAL;
        }
    }
    return size;
}

CBezier Reversed(CBezier const& c) { return CBezier(c.P3, c.P2, c.P1, c.P0); }

/// The curves of an outline, by their elements.
class Elements {
public:
    explicit Elements(CBezier const& curve) : mCurves{curve} {}
    explicit Elements(TLine<double> const& line) {
        Pt const third = (line.mEnd - line.mStart) / 3.0;
        mCurves = {CBezier(line.mStart, line.mStart + third, line.mEnd - third, line.mEnd)};
    }
    explicit Elements(CPath const& path) : mCurves(path.mCtls.size()) {
        for (trammel::PathSegment const& s : trammel::Segments(path)) {
            Pt const third = (s.end - s.start) / 3.0;
            mCurves[s.element] = s.IsCurve()
                                     ? CBezier(s.start, s.control1, s.control2, s.end)
                                     : CBezier(s.start, s.start + third, s.end - third, s.end);
        }
    }
    bool Has(std::size_t element) const { return element < mCurves.size(); }
    Pt At(std::size_t element, double t) const { return mCurves[element].TPt(t); }

private:
    std::vector<CBezier> mCurves;
};

void CheckPlace(IntersectionPlace const& place, Elements const& curves) {
    Require(curves.Has(place.element), "a place is on an element");
    for (double const t : {place.t, place.endT}) {
        Require(t >= 0.0 && t <= 1.0, "a place's parameter is from 0 to 1");
    }
}

/// Requires what the header tells about all places. The size is the greatest coordinate of both
/// outlines.
void Check(Found const& found, double accuracy, Elements const& a, Elements const& b, double size) {
    Require(!(accuracy >= 0.0) || found.kept >= accuracy, "the distance kept is no less");
    Intersection const* last = nullptr;
    for (Intersection const& p : found.places) {
        CheckPlace(p.a, a);
        CheckPlace(p.b, b);
        Require(p.a.t <= p.a.endT, "a stretch follows the first outline");
        bool const stretch = p.kind == IntersectionKind::kOverlap;
        Require(stretch || (p.a.t == p.a.endT && p.b.t == p.b.endT), "a point has no length");
        Require(stretch || p.crosses == (p.kind == IntersectionKind::kCrossing),
                "crossings cross, and others do not");
        Require(last == nullptr ||
                    std::tie(last->a.element, last->a.t) <= std::tie(p.a.element, p.a.t),
                "places are in order");
        last = &p;
        if (size < 1e300) {
            // The last term: points of a curve are rounded, to a subnormal number as well.
            double const limit = found.kept * (1.0 + 1e-6) + size * 0x1p-44 + 0x1p-1070;
            for (bool const end : {false, true}) {
                Pt const onA = a.At(p.a.element, end ? p.a.endT : p.a.t);
                Pt const onB = b.At(p.b.element, end ? p.b.endT : p.b.t);
                Require(std::hypot(onA.h - onB.h, onA.v - onB.v) <= limit,
                        "both points of a place are as near as told");
                Pt const& told = end ? p.endPoint : p.point;
                Require(std::hypot(onA.h - told.h, onA.v - told.v) <= limit,
                        "the point of a place is that of the first outline");
            }
        }
    }
}

/// Requires that outlines meet somewhere if a finer search has found that they do. They come within
/// a quarter of the accuracy then, so there is a place in whichever order the outlines are given.
void CheckFinding(Found const& coarse, Found const& fine) {
    Require(!coarse.places.empty() || fine.places.empty() || !(fine.kept <= 0.25 * coarse.kept),
            "what a finer search finds is there");
}

CPath PathOf(Input& in) {
    CPath path;
    for (int i = in.Int(0, 9); i > 0; --i) {
        switch (in.Int(0, 7)) {
        case 0:
            path.MoveTo(in.Point());
            break;
        case 1:
            path.ClosePath();
            break;
        case 2: {
            Pt const c1 = in.Point();
            Pt const c2 = in.Point();
            path.CurveTo(c1, c2, in.Point());
            break;
        }
        default:
            path.LineTo(in.Point());
        }
    }
    return path;
}

} // namespace

void Intersections(Input& in) {
    std::vector<Pt> points;
    for (int i = 0; i < 8; ++i) {
        points.push_back(in.Point());
    }
    CBezier const a(points[0], points[1], points[2], points[3]);
    CBezier const b(points[4], points[5], points[6], points[7]);
    double const size = SizeOf(points);
    double const accuracy = in.Number();
    Found const found = Find(a, b, accuracy);
    Found const swapped = Find(b, a, accuracy);
    Check(found, accuracy, Elements(a), Elements(b), size);
    Check(swapped, accuracy, Elements(b), Elements(a), size);
    Found const fine = Find(Reversed(a), b, accuracy / 16.0);
    CheckFinding(found, fine);
    CheckFinding(swapped, fine);

    CPath const path = PathOf(in);
    CPath const other = PathOf(in);
    double const pathSize = std::max(SizeOf(path.mPts), SizeOf(other.mPts));
    Found const ofPaths = Find(path, other, accuracy);
    Check(ofPaths, accuracy, Elements(path), Elements(other), pathSize);
    CheckFinding(ofPaths, Find(other, path, accuracy / 16.0));
    Found own;
    own.kept = trammel::AppendSelfIntersections(path, accuracy, own.places);
    Check(own, accuracy, Elements(path), Elements(path), pathSize);
    for (Intersection const& p : own.places) {
        Require(p.a.element <= p.b.element, "the first part of an outline comes first");
    }

    // Outlines of all kinds with each other.
    TLine<double> const line(points[0], points[7]);
    TLine<double> const otherLine(points[4], points[3]);
    double const greatest = std::max(size, pathSize);
    auto const check = [&](auto const& one, auto const& another) {
        Check(Find(one, another, accuracy), accuracy, Elements(one), Elements(another), greatest);
    };
    check(line, otherLine);
    check(line, b);
    check(a, otherLine);
    check(path, line);
    check(otherLine, path);
    check(path, a);
    check(b, other);
    Found ofCurve;
    ofCurve.kept = trammel::AppendSelfIntersections(a, accuracy, ofCurve.places);
    Check(ofCurve, accuracy, Elements(a), Elements(a), size);
}

} // namespace fuzz
