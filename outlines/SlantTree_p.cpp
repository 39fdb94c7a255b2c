// SPDX-License-Identifier: MIT

#include "SlantTree_p.h"

#include "PointMath_p.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// Corners and products are rounded by less, beside the greatest coordinate.
constexpr double kSlantRounding = 0x1p-40;
/// A box is thin if its width is no more than that part of its length.
constexpr double kThin = 0.25;
/// Products below that have lost digits.
constexpr double kLeastProduct = 0x1p-960;

/// Returns a rectangle around points along `axis`; `area` gets its area. Along h and v if the axis
/// is too short.
SlantBox BoxAlong(Pt const* points, std::size_t count, Pt axis, double& area) {
    double square = Square(axis);
    if (!(square > kLeastProduct)) {
        axis = Pt(1.0, 0.0);
        square = 1.0;
    }
    Box<double> box; // in the directions of the axis and across
    for (std::size_t i = 0; i < count; ++i) {
        Pt const way = points[i] - points[0];
        box.Include(Dot(axis, way) / square, Cross(axis, way) / square);
    }
    Pt const across = Pt(-axis.v, axis.h);
    auto const at = [&](double x, double y) { return points[0] + axis * x + across * y; };
    double const x = box.highX - box.lowX;
    double const y = box.highY - box.lowY;
    bool const isLong = x >= y;
    area = x * y * square;
    return {{at(box.lowX, box.lowY), at(box.highX, box.lowY), at(box.highX, box.highY),
             at(box.lowX, box.highY)},
            isLong ? axis * x : across * y,
            0.0,
            0.0,
            std::min(x, y) <= kThin * std::max(x, y)};
}

/// Sets the bounds across the axis.
void Measure(SlantBox& box, double extent) {
    double const room = kSlantRounding * Taxicab(box.axis) * extent;
    if (!(room > kLeastProduct)) {
        box.axis = Pt();
        box.low = box.high = 0.0;
        return;
    }
    box.low = std::numeric_limits<double>::infinity();
    box.high = -box.low;
    for (Pt const& p : box.corners) {
        double const across = Cross(box.axis, p);
        box.low = std::min(box.low, across - room);
        box.high = std::max(box.high, across + room);
    }
}

/// True when all corners of a box lie on one side of another one.
bool IsBeside(SlantBox const& a, SlantBox const& b) {
    double const across = Cross(a.axis, b.corners[0]);
    if (across >= a.low && across <= a.high) {
        return false;
    }
    bool const isBelow = across < a.low;
    return std::all_of(b.corners.begin() + 1, b.corners.end(), [&](Pt const& p) {
        return isBelow ? Cross(a.axis, p) < a.low : Cross(a.axis, p) > a.high;
    });
}

} // namespace

SlantBox SlantBoxOf(Pt const* points, std::size_t count, Pt const& axis) {
    Pt farthest;
    for (std::size_t i = 1; i < count; ++i) {
        Pt const way = points[i] - points[0];
        farthest = Taxicab(way) > Taxicab(farthest) ? way : farthest;
    }
    double area = 0.0;
    double other = 0.0;
    SlantBox const along = BoxAlong(points, count, axis, area);
    SlantBox const across = BoxAlong(points, count, farthest, other);
    return other < area ? across : along;
}

SlantLevels::SlantLevels(BoxTree const& tree, std::vector<SlantBox> const& slants, double extent) {
    for (std::size_t level = 0; level < tree.Levels(); ++level) {
        std::vector<SlantBox> nodes;
        nodes.reserve(tree.Nodes(level));
        for (std::size_t i = 0; i < tree.Nodes(level); ++i) {
            if (level == 0) {
                nodes.push_back(slants[tree.NumberOf(i)]);
            } else {
                std::vector<SlantBox> const& below = mLevels.back();
                std::array<Pt, BoxTree::kFan * 4> corners;
                std::size_t count = 0;
                Pt longest;
                for (std::size_t k = i * BoxTree::kFan; k < tree.EndOf(level, i); ++k) {
                    Pt const& axis = below[k].axis;
                    longest = Taxicab(axis) > Taxicab(longest) ? axis : longest;
                    std::copy(below[k].corners.begin(), below[k].corners.end(), &corners[count]);
                    count += 4;
                }
                nodes.push_back(SlantBoxOf(corners.data(), count, longest));
            }
            Measure(nodes.back(), extent);
        }
        mLevels.push_back(std::move(nodes));
    }
}

bool SlantLevels::MayMeet(std::size_t level, std::size_t node, SlantLevels const& other,
                          std::size_t levelOfOther, std::size_t nodeOfOther) const {
    SlantBox const& a = mLevels[level][node];
    SlantBox const& b = other.mLevels[levelOfOther][nodeOfOther];
    return !(a.isThin && IsBeside(a, b)) && !(b.isThin && IsBeside(b, a));
}

} // namespace trammel_detail
