// SPDX-License-Identifier: MIT

#include "PolygonWithHoles.h"

#include "Box_p.h"
#include "MomentSums_p.h"
#include "PointMath_p.h"
#include "PolygonPoints_p.h"
#include "Winding.h"

#include <algorithm>
#include <limits>

namespace trammel {
namespace {

/// The rings as contours that run as OrientRings turns them.
struct OrientedRings {
    PolygonWithHoles const& polygon;
};

template <class Visitor> void WalkBackward(Ring const& ring, Visitor& visitor) {
    if (!ring.empty()) {
        visitor.Begin(&ring.front());
        for (std::size_t i = ring.size() - 1; i > 0; --i) {
            visitor.LineTo(&ring[i]);
        }
    }
    visitor.Close();
}

template <class Visitor> void WalkContours(OrientedRings const& rings, Visitor& visitor) {
    auto const walk = [&visitor](Ring const& ring, bool backward) {
        if (backward) {
            WalkBackward(ring, visitor);
        } else {
            trammel_detail::WalkContours(ring, visitor);
        }
    };
    walk(rings.polygon.outer, SignedArea(rings.polygon.outer) < 0.0);
    for (Ring const& hole : rings.polygon.holes) {
        walk(hole, SignedArea(hole) > 0.0);
    }
}

} // namespace

double Area(PolygonWithHoles const& polygon) noexcept {
    return trammel_detail::AreaOf(OrientedRings{polygon});
}

AreaMoments MomentsOf(PolygonWithHoles const& polygon) noexcept {
    return trammel_detail::AllMomentsOf<AreaMoments>(OrientedRings{polygon});
}

TRect<double> Bounds(PolygonWithHoles const& polygon) noexcept {
    if (polygon.outer.empty()) {
        return TRect<double>();
    }
    trammel_detail::Box<double> box;
    for (TPoint<double> const& p : polygon.outer) {
        if (!trammel_detail::IsFinite(p)) {
            double const nan = std::numeric_limits<double>::quiet_NaN();
            return TRect<double>(nan, nan, nan, nan);
        }
        box.Include(p.h, p.v);
    }
    return TRect<double>(box.lowX, box.lowY, box.highX, box.highY);
}

bool Contains(PolygonWithHoles const& polygon, TPoint<double> const& p, FillRule rule) noexcept {
    auto const isIn = [&](Ring const& ring) { return IsInside(WindingNumber(ring, p), rule); };
    return isIn(polygon.outer) && std::none_of(polygon.holes.begin(), polygon.holes.end(), isIn);
}

void OrientRings(PolygonWithHoles& polygon) noexcept {
    auto const reverse = [](Ring& ring) { std::reverse(ring.begin() + 1, ring.end()); };
    if (SignedArea(polygon.outer) < 0.0) {
        reverse(polygon.outer);
    }
    for (Ring& hole : polygon.holes) {
        if (SignedArea(hole) > 0.0) {
            reverse(hole);
        }
    }
}

CPath PathOf(PolygonWithHoles const& polygon) {
    CPath path;
    auto const add = [&path](Ring const& ring) {
        if (ring.empty()) {
            return;
        }
        path.MoveTo(ring.front());
        for (TPoint<double> const& p : ring) {
            path.LineTo(p);
        }
        path.ClosePath();
    };
    add(polygon.outer);
    for (Ring const& hole : polygon.holes) {
        add(hole);
    }
    return path;
}

} // namespace trammel
