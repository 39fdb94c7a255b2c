// SPDX-License-Identifier: MIT

// A judge of contours that must not cross, neither themselves nor each other.

#ifndef TRAMMEL_CROSSINGJUDGE_H
#define TRAMMEL_CROSSINGJUDGE_H

#include "CPath.h"
#include "Intersections.h"
#include "PathSegments.h"
#include "TPoint.h"
#include "outlines/OutlineJudge.h"

#include <cstddef>
#include <map>
#include <vector>

namespace trammel_test {

/// The places where contours cross.
struct Crossings {
    std::vector<TPoint<double>> places;
    int deep = 0; ///< how many of them lead to points that are farther from the other element
};

/// Finds the places where the contours of a result cross, to within `accuracy`. From each one, one
/// way should lead beside the other element, no farther from it than `distance`, until they meet
/// again.
inline Crossings CrossingsOf(CPath const& out, double accuracy, double distance) {
    std::map<std::size_t, trammel::PathSegment> segments;
    for (trammel::PathSegment const& s : trammel::Segments(out)) {
        segments.emplace(s.element, s);
    }
    Crossings found;
    for (trammel::Intersection const& x : trammel::SelfIntersections(out, accuracy)) {
        if (x.kind != trammel::IntersectionKind::kCrossing || !x.crosses) {
            continue;
        }
        trammel::PathSegment const& a = segments.at(x.a.element);
        trammel::PathSegment const& b = segments.at(x.b.element);
        CPath other;
        other.AddCtl(kPathMove).AddPt(b.start);
        if (b.IsCurve()) {
            other.AddCtl(kPathCurve).AddPt(b.control1).AddPt(b.control2).AddPt(b.end);
        } else {
            other.AddCtl(kPathLine).AddPt(b.end);
        }
        OutlineJudge const judge(other);
        auto const staysNear = [&](double end) {
            for (int i = 1; i <= 16; ++i) {
                double const t = x.a.t + (end - x.a.t) * i / 16;
                if (!judge.IsNear(PointAt(a, t), distance)) {
                    return false;
                }
            }
            return true;
        };
        found.places.push_back(x.point);
        found.deep += staysNear(0.0) || staysNear(1.0) ? 0 : 1;
    }
    return found;
}

} // namespace trammel_test

#endif
