// SPDX-License-Identifier: MIT

// Strokes beside the judge of strokes.

#ifndef TRAMMEL_STROKECHECKS_H
#define TRAMMEL_STROKECHECKS_H

#include "CBezier.h"
#include "FillRule.h"
#include "HardPaths.h"
#include "OutlineJudge.h"
#include "OutlineMeasure.h"
#include "OutlineOperations.h"
#include "PathSegments.h"
#include "PathStructure.h"
#include "Stroke.h"
#include "StrokeJudge.h"
#include "SvgPath.h"
#include "TPoint.h"
#include "UTrigonometry.h"
#include "Winding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace trammel_test {

inline trammel::StrokeStyle Style(double width, trammel::StrokeJoin join, trammel::StrokeCap cap) {
    trammel::StrokeStyle style;
    style.width = width;
    style.join = join;
    style.startCap = style.endCap = cap;
    return style;
}
inline trammel::StrokeStyle Round(double width) {
    return Style(width, trammel::StrokeJoin::kRound, trammel::StrokeCap::kRound);
}
inline trammel::StrokeStyle Plain(double width) {
    return Style(width, trammel::StrokeJoin::kMiter, trammel::StrokeCap::kButt);
}

/// Returns a point near the path, most often close to the border of its stroke.
inline TPoint<double> NearBorder(trammel::OutlineMeasure const& measure, double radius,
                                 Dice& dice) {
    double const angle = dice.Between(0.0, 2.0 * pi);
    TPoint<double> const direction(std::cos(angle), std::sin(angle));
    TPoint<double> const p =
        measure.TPt(dice.Unit()) + direction * (radius * dice.Between(0.0, 2.0));
    trammel::OutlineMeasure::Nearest const nearest = measure.FindNearest(p);
    if (dice.Below(3) == 0 || nearest.distance == 0.0) {
        return p;
    }
    double const off = dice.Decade(-6.0, -1.0);
    return nearest.point + (p - nearest.point) *
                               (radius / nearest.distance * (dice.Coin() ? 1.0 + off : 1.0 - off));
}

/// Returns points within `reach` of a path's control points, and twice as many near the line.
inline std::vector<TPoint<double>> PointsToJudge(CPath const& path, double reach,
                                                 trammel::OutlineMeasure const& line, double radius,
                                                 int count, Dice& dice) {
    std::vector<TPoint<double>> points;
    points.reserve(static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k) {
        points.push_back(k % 3 == 0 ? path.mPts[static_cast<std::size_t>(
                                          dice.Below(static_cast<int>(path.mPts.size())))] +
                                          dice.Point() * reach
                                    : NearBorder(line, radius, dice));
    }
    return points;
}

/// Returns the dashes of a path, by lengths along each subpath. `from` is where the first one
/// begins, 0 or less.
inline CPath DashesOf(CPath const& path, double dash, double step, double from) {
    CPath dashes;
    for (CPath const& subpath : trammel::SplitSubpaths(path)) {
        trammel::OutlineMeasure const measure(subpath);
        for (double at = from; at < measure.Length(); at += step) {
            measure.GetLengthRange(std::max(at, 0.0), at + dash, dashes);
        }
    }
    return dashes;
}

/// Fails where a round stroke does not hold the points within the radius of the line, or holds
/// others. Points near its border are tried. `slack` is how far off they may be.
inline void ExpectWithinRadius(CPath const& stroke, trammel::OutlineMeasure const& line,
                               double radius, double slack, int points, int number, Dice& dice) {
    for (int k = 0; k < points; ++k) {
        TPoint<double> const p = NearBorder(line, radius, dice);
        double const distance = line.Distance(p);
        if (std::abs(distance - radius) > slack) {
            ASSERT_EQ(trammel::WindingNumber(stroke, p), distance < radius ? 1 : 0)
                << "path " << number << ", off by " << (distance - radius) / radius;
        }
    }
}

/// Does the same for a region that was grown or shrunk with round joins, and the distance that was
/// kept. Adds to `held` how many points were farther off.
inline void ExpectOffset(CPath const& region, trammel::FillRule rule, double distance,
                         CPath const& out, double kept, int points, int number, Dice& dice,
                         int& held) {
    CPath plain; // the border of the region
    double const slack = kept + trammel::RemoveOverlap(region, rule, 0.0, plain);
    trammel::OutlineMeasure const border(plain);
    for (int k = 0; k < points; ++k) {
        TPoint<double> const p = NearBorder(border, std::abs(distance), dice);
        double const away = border.Distance(p);
        double const height =
            trammel::Contains(plain, p, trammel::FillRule::kNonZero) ? -away : away;
        if (std::abs(height - distance) > slack && std::isfinite(away)) {
            ++held;
            ASSERT_EQ(trammel::WindingNumber(out, p), height < distance ? 1 : 0)
                << "region " << number << ", distance " << distance << ", off by "
                << (height - distance) / distance;
        }
    }
}

/// The contours of a border, each run through so that the region is on its left. Empty where it
/// is not plain on which side the region is, as beside slivers.
inline CPath WithRegionOnLeft(CPath const& border) {
    CPath out;
    double const off = 1e-7 * (border.Bounds().Width() + border.Bounds().Height());
    for (CPath const& contour : trammel::SplitSubpaths(border)) {
        int left = 0;
        int right = 0;
        for (trammel::PathSegment const& s : trammel::Segments(contour)) {
            CBezier const curve = s.Curve();
            TPoint<double> const middle =
                (curve.P0 + curve.P3 + (curve.P1 + curve.P2) * 3.0) * 0.125;
            TPoint<double> const along = curve.P3 + curve.P2 - curve.P1 - curve.P0;
            double const length = std::hypot(along.h, along.v);
            if (length == 0.0) {
                continue; // a close that has nothing to draw
            }
            TPoint<double> const side = TPoint<double>(-along.v, along.h) * (off / length);
            bool const isLeft = trammel::WindingNumber(border, middle + side) != 0;
            bool const isRight = trammel::WindingNumber(border, middle - side) != 0;
            left += isLeft && !isRight ? 1 : 0;
            right += isRight && !isLeft ? 1 : 0;
            if (isLeft == isRight || length < 1e-3 * off * 1e7) {
                return CPath();
            }
        }
        if (left > 0 && right > 0) {
            return CPath();
        }
        trammel::AppendSubpaths(out, left > 0 ? contour : trammel::Reversed(contour));
    }
    return out;
}

/// Fails where a region that was grown or shrunk with any join is not the region with, or without,
/// what one side of its border's stroke covers. Nothing is judged where the sides are not plain.
/// Adds to `judged` how many points were.
inline void ExpectSideOfBorder(CPath const& region, trammel::FillRule rule, double distance,
                               trammel::StrokeStyle const& border, double tolerance, int number,
                               Dice& dice, int& judged) {
    bool const grows = distance > 0.0;
    CPath out;
    double const kept =
        trammel::Offset(region, rule, distance, border.join, border.miterLimit, tolerance, out);
    CPath plain;
    double const slack = 1.01 * (kept + trammel::RemoveOverlap(region, rule, 0.0, plain));
    CPath const turned = WithRegionOnLeft(plain);
    if (turned.mCtls.empty()) {
        return;
    }
    StrokeJudge const ideal(turned, border, grows ? PenSides::kRight : PenSides::kLeft);
    OutlineJudge const judge(out);
    OutlineJudge const before(plain);
    trammel::OutlineMeasure const line(plain);
    std::vector<TPoint<double>> points =
        PointsToJudge(region, 2.0 * std::abs(distance), line, std::abs(distance), 15, dice);
    std::mt19937 random(static_cast<unsigned>(number));
    judge.ForBeside(random, 1, 1.5 * kept, [&](TPoint<double> const& p) { points.push_back(p); });
    for (TPoint<double> const& p : points) {
        if (!(line.Distance(p) > slack)) {
            continue;
        }
        bool const inside = before.Winding(p) != 0;
        bool const isIn = grows ? inside || ideal.Covers(p) : inside && !ideal.Covers(p);
        int const winding = judge.Winding(p);
        ++judged;
        ASSERT_TRUE(winding == (isIn ? 1 : 0) || ideal.IsAtBorder(p, slack))
            << "region " << number << ": " << trammel::WriteSvgPath(region) << " at " << p.h << ' '
            << p.v << ", winding number " << winding << ", distance " << distance << ", join "
            << static_cast<int>(border.join) << ", limit " << border.miterLimit << ", tolerance "
            << tolerance;
    }
}

/// Fails where a stroke is not what sweep, joins and caps cover, save within the distance.
inline void ExpectSweep(CPath const& path, trammel::StrokeStyle const& style, double tolerance,
                        int number, Dice& dice) {
    CPath out;
    double const kept = trammel::Stroke(path, style, tolerance, out);
    StrokeJudge const ideal(path, style);
    OutlineJudge const judge(out);
    trammel::OutlineMeasure const line(path);
    std::vector<TPoint<double>> points =
        PointsToJudge(path, 2.0 * style.width, line, 0.5 * style.width, 30, dice);
    std::mt19937 random(static_cast<unsigned>(number));
    judge.ForBeside(random, 1, 1.5 * kept, [&](TPoint<double> const& p) { points.push_back(p); });
    for (TPoint<double> const& p : points) {
        int const winding = judge.Winding(p);
        ASSERT_TRUE(winding == (ideal.Covers(p) ? 1 : 0) || ideal.IsAtBorder(p, kept))
            << "path " << number << ": " << trammel::WriteSvgPath(path) << " at " << p.h << ' '
            << p.v << ", winding number " << winding << ", width " << style.width << ", join "
            << static_cast<int>(style.join) << ", limit " << style.miterLimit << ", tolerance "
            << tolerance;
    }
}

inline trammel::StrokeStyle AnyStyle(double width, Dice& dice) {
    trammel::StrokeStyle style;
    style.width = width;
    style.join = static_cast<trammel::StrokeJoin>(dice.Below(4));
    style.endCap = static_cast<trammel::StrokeCap>(dice.Below(3));
    style.startCap = static_cast<trammel::StrokeCap>(dice.Below(3));
    style.miterLimit = dice.Between(0.5, 6.0);
    return style;
}

} // namespace trammel_test

#endif
