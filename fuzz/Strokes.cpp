// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "AnyOutline.h"
#include "OutlineMeasure.h"
#include "OutlineOperations.h"
#include "Stroke.h"
#include "outlines/OutlineJudge.h"
#include "outlines/StrokeJudge.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace fuzz {

namespace {

using trammel::FillRule;
using trammel::OutlineMeasure;
using trammel::StrokeCap;
using trammel::StrokeJoin;
using trammel::StrokeStyle;
using trammel_test::OutlineJudge;

/// Contours with more elements take too long to judge at many points.
constexpr std::size_t kMostJudged = 2000;

void CheckContours(CPath const& out) {
    for (trammel::Subpath const& subpath : trammel::Subpaths(out)) {
        Require(subpath.BeginsWithMove() && subpath.Closed(), "a contour is closed");
    }
    Require(std::all_of(out.mPts.begin(), out.mPts.end(),
                        [](Pt const& p) { return std::isfinite(p.h) && std::isfinite(p.v); }),
            "contours are finite");
}

StrokeStyle AnyStyle(Input& in) {
    StrokeStyle style;
    style.join = static_cast<StrokeJoin>(in.Int(0, 3));
    style.startCap = static_cast<StrokeCap>(in.Int(0, 2));
    style.endCap = static_cast<StrokeCap>(in.Int(0, 2));
    style.miterLimit = in.Int(0, 80) / 8.0;
    style.width = in.Int(0, 7) == 7 ? in.Number() : in.Int(1, 64) / 4.0;
    return style;
}

/// Points around the line, and beside the border of its stroke.
std::vector<Pt> PointsOf(Input& in, CPath const& line, OutlineJudge const& border, double radius,
                         double kept) {
    std::vector<Pt> points;
    for (int i = 0; i < 16 && !line.mPts.empty(); ++i) {
        double const h = in.Int(-128, 127) / 60.0;
        double const v = in.Int(-128, 127) / 60.0;
        points.push_back(line.mPts[in.Byte() % line.mPts.size()] + Pt(h, v) * radius);
    }
    std::mt19937 random(20261122);
    border.ForBeside(random, 1, 1.5 * kept, [&](Pt const& p) { points.push_back(p); });
    return points;
}

/// The distance from the line of the farthest corner of a join or cap, in radii. A clipped miter
/// has two, beside the point of the limit's length.
double FarthestCorner(double miterLimit) { return std::hypot(std::max(miterLimit, 1.0), 1.0); }

/// A size with whose squares and inverses one can calculate.
bool CanBeJudged(double size) { return size > 1e-250 && size < 1e250; }

} // namespace

void Strokes(Input& in) {
    StrokeStyle style = AnyStyle(in);
    CPath const path = DrawnOutline(in, 6);
    CPath const line = FinitePart(path);
    bool const isDashed = in.Int(0, 7) == 0;
    for (int i = isDashed ? in.Int(1, 4) : 0; i > 0; --i) {
        style.dashes.push_back(in.Int(0, 31) == 31 ? in.Number() : in.Int(0, 40) / 4.0);
        style.dashOffset = in.Number();
    }
    double const share = std::pow(10.0, -in.Int(1, 6));
    CPath out;
    double const kept = trammel::Stroke(path, style, share * style.width, out);
    Require(kept >= 0.0 || std::isnan(style.width), "the distance is not negative");
    CheckContours(out);
    double const size = ExtentOf(line.mPts) + style.width;
    // Far from the origin, or beside great outlines, the distance reaches across the pen.
    if (!CanBeJudged(size) || !(kept < 0.05 * style.width) || out.mCtls.size() > kMostJudged) {
        return;
    }
    OutlineJudge const border(out);
    trammel_test::StrokeJudge const ideal(path, style);
    OutlineMeasure const measure(path);
    double const farthest = 0.5 * style.width * FarthestCorner(style.miterLimit);
    for (Pt const& p : PointsOf(in, line, border, 0.5 * style.width, kept)) {
        int const winding = border.Winding(p);
        if (isDashed) {
            Require(winding == 0 || measure.Distance(p) <= farthest + 1.01 * kept,
                    "no dash reaches farther than its miters and caps");
            continue;
        }
        Require(winding == (ideal.Covers(p) ? 1 : 0) || ideal.IsAtBorder(p, kept),
                "a stroke has what sweep, joins and caps cover");
    }
}

void Offsets(Input& in) {
    CPath const region = DrawnOutline(in, 8);
    CPath const finite = FinitePart(region);
    FillRule const rule = in.Flag() ? FillRule::kEvenOdd : FillRule::kNonZero;
    double const distance = in.Int(0, 7) == 7 ? in.Number() : in.Int(-40, 80) / 8.0;
    auto const join = in.Flag() ? StrokeJoin::kRound : static_cast<StrokeJoin>(in.Int(0, 3));
    double const limit = in.Int(8, 64) / 8.0;
    double const tolerance = std::abs(distance) * std::pow(10.0, -in.Int(1, 6));
    CPath out;
    double const kept = trammel::Offset(region, rule, distance, join, limit, tolerance, out);
    CheckContours(out);
    double const size = ExtentOf(finite.mPts) + std::abs(distance);
    if (!CanBeJudged(size) || !(kept < 0.05 * std::abs(distance)) ||
        out.mCtls.size() > kMostJudged) {
        return;
    }
    CPath plain;
    double const slack = 1.01 * (kept + trammel::RemoveOverlap(region, rule, 0.0, plain));
    OutlineJudge const border(out);
    OutlineMeasure const measure(plain);
    OutlineJudge const inside(finite);
    // Only corners reach farther than the distance, or less far.
    double const reach = join == StrokeJoin::kRound ? 1.0 : FarthestCorner(limit);
    double const least = std::min(distance, 0.0) * reach;
    double const most = std::max(distance, 0.0) * reach;
    for (Pt const& p : PointsOf(in, finite, border, std::abs(distance), kept)) {
        double const away = measure.Distance(p);
        // A contour without area is in no plain outline, but the rounding of windings is beside it.
        if (std::isfinite(away) && away > slack && !inside.IsNear(p, slack)) {
            double const height = inside.Holds(p, rule) ? -away : away;
            int const winding = border.Winding(p);
            Require(winding == 0 || winding == 1, "an offset region winds once");
            Require(height >= least - slack || winding == 1, "what is near is in the region");
            Require(height <= most + slack || winding == 0, "what is far is outside");
        }
    }
}

} // namespace fuzz
