// SPDX-License-Identifier: MIT

#include "Stroke.h"

#include "OutlineOperations.h"
#include "PathSegments.h"
#include "PathStructure.h"
#include "PlainContours_p.h"
#include "Shapes.h"
#include "StrokePath_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace trammel {

namespace {

typedef TPoint<double> Pt;

/// Raw contours and the union of their overlaps may each take a part of the tolerance.
constexpr double kContourShare = 0.5;
/// Tolerances above this share of the pen's radius count as that. Both sides of a thin line would
/// become one otherwise, and lie the wrong way round.
constexpr double kCoarsest = 0.25;

/// Where the pen paints places often, tolerances above this share of the extent count as that. Else
/// nearly all borders would run beside each other nearer than the tolerance, and take long to
/// unite.
constexpr double kCoarsestInCrowd = 0x1p-10;

/// Returns the tolerance to work with, for one that is 0 or more. `crowd` is the result of
/// CrowdedExtent().
double UsableTolerance(double asked, double radius, double crowd) {
    double const most = kCoarsest * radius;
    double const used = most > 0.0 ? std::min(asked, most) : asked;
    return crowd > 0.0 ? std::min(used, kCoarsestInCrowd * crowd) : used;
}

/// Returns a rectangle around a path, and around another one, with room between.
CPath FrameAround(CPath const& a, CPath const& b) {
    TRect<double> bounds = a.Bounds();
    TRect<double> const more = b.Bounds();
    double const left = std::min(bounds.left, more.left);
    double const top = std::min(bounds.top, more.top);
    double const right = std::max(bounds.right, more.right);
    double const bottom = std::max(bounds.bottom, more.bottom);
    double const room = std::max(right - left, bottom - top);
    return PolygonPath({Pt(left - room, top - room), Pt(right + room, top - room),
                        Pt(right + room, bottom + room), Pt(left - room, bottom + room)});
}

/// Returns a path without its subpath that begins at `start`, and with all others reversed.
CPath ReversedWithout(CPath const& path, Pt const& start) {
    CPath others;
    bool isFound = false;
    for (Subpath const& subpath : Subpaths(path)) {
        if (!isFound && subpath.Start() == start) {
            isFound = true;
            continue;
        }
        AppendSubpaths(others, Reversed(PathOf(subpath)));
    }
    return others;
}

/// Unites contours whose winding numbers are above 0 in a region, and 0 elsewhere.
double Unite(CPath& contours, double tolerance, CPath& out) {
    // Outlines of lines alone go to the polygon engine, which is as fast as the test.
    if (contours.TestContents(CPath::kContainsCurves) &&
        trammel_detail::AreContoursPlain(contours)) {
        out = std::move(contours);
        return 0.0;
    }
    return RemoveOverlap(contours, FillRule::kNonZero, tolerance, out);
}

/// Unites the parts of a stroke, in stages of two by two. Parts that follow each other are near, so
/// most of their crossings lie inside of others, and the next stage has fewer.
double UniteParts(std::vector<CPath>& parts, double tolerance, CPath& out) {
    if (parts.empty()) {
        out.clear();
        return 0.0;
    }
    if (parts.size() == 1) {
        return Unite(parts.front(), tolerance, out);
    }
    int stages = 0;
    for (std::size_t count = parts.size(); count > 1; count = (count + 1) / 2) {
        ++stages;
    }
    double const share = tolerance / stages;
    double kept = 0.0;
    for (; stages > 0; --stages) {
        double keptInStage = 0.0;
        std::size_t const pairs = parts.size() / 2;
        for (std::size_t i = 0; i < pairs; ++i) {
            CPath united;
            keptInStage =
                std::max(keptInStage, Boolean(kPolyUnion, parts[2 * i], FillRule::kNonZero,
                                              parts[2 * i + 1], FillRule::kNonZero, share, united));
            parts[i] = std::move(united);
        }
        if (parts.size() % 2 == 1) {
            parts[pairs] = std::move(parts.back());
        }
        parts.resize((parts.size() + 1) / 2);
        kept += keptInStage;
    }
    out = std::move(parts.front());
    return kept;
}

/// Grows or shrinks a region by its border's stroke, which is made in parts. `blur` is how far the
/// region's contours may cross each other.
double OffsetInParts(CPath const& region, double blur, double distance, StrokeStyle const& border,
                     double tolerance, CPath& out) {
    double const share = kContourShare * tolerance;
    std::vector<CPath> parts;
    // With round joins, both sides of the border are within the distance. The stroke of both has
    // no border along the region's.
    double kept = border.join == StrokeJoin::kRound
                      ? trammel_detail::StrokeParts(region, border, share, true, parts)
                      : trammel_detail::BorderParts(region, blur, distance, border, share, parts);
    CPath painted;
    kept += UniteParts(parts, 0.5 * (tolerance - share), painted);
    CPath result;
    kept += Boolean(distance > 0.0 ? kPolyUnion : kPolyDifference, region, FillRule::kNonZero,
                    painted, FillRule::kNonZero, 0.5 * (tolerance - share), result);
    // The contours of the difference run as the stroke that is taken away.
    out = distance > 0.0 ? std::move(result) : Reversed(result);
    return kept;
}

/// True when no point of a region is as far as `distance` from those outside.
bool IsThinner(CPath const& region, double distance) {
    TRect<double> const box = region.Bounds();
    double const h = 0.5 * box.right - 0.5 * box.left;
    double const v = 0.5 * box.bottom - 0.5 * box.top;
    return std::min(h, v) < distance;
}

} // namespace

double Stroke(CPath const& path, StrokeStyle const& style, double tolerance, CPath& out) {
    double const asked = tolerance > 0.0 ? tolerance : 0.0;
    double const crowd = trammel_detail::CrowdedExtent(path, style);
    double const used = UsableTolerance(asked, 0.5 * style.width, crowd);
    double const share = kContourShare * used;
    std::vector<CPath> parts;
    double const kept = trammel_detail::StrokeParts(path, style, share, crowd > 0.0, parts);
    double const keptInUnion = UniteParts(parts, used - share, out);
    return std::max(asked, kept + keptInUnion);
}

double Offset(CPath const& region, FillRule rule, double distance, StrokeJoin join,
              double miterLimit, double tolerance, CPath& out) {
    double const asked = tolerance > 0.0 ? tolerance : 0.0;
    if (!std::isfinite(distance)) {
        out.clear();
        return asked;
    }
    // A detail that is lost here would be missing with all that is near it: none is lost that can
    // be kept.
    CPath plain;
    double kept = RemoveOverlap(region, rule, distance == 0.0 ? asked : 0.0, plain);
    if (distance == 0.0 || plain.mCtls.empty()) {
        out = std::move(plain);
        return std::max(asked, kept);
    }
    if (join == StrokeJoin::kRound && IsThinner(plain, -distance - kept)) {
        out.clear();
        return std::max(asked, kept);
    }
    double const used = UsableTolerance(asked, std::abs(distance), 0.0);
    double const share = used - kContourShare * used;
    StrokeStyle border;
    border.width = 2.0 * std::abs(distance);
    border.join = join;
    border.miterLimit = miterLimit;
    border.startCap = border.endCap = StrokeCap::kRound; // a round pen leaves out what folds
    CPath grown;
    double const off =
        trammel_detail::AppendGrown(plain, kept, distance, border, kContourShare * used, grown);
    double const crowd = trammel_detail::CrowdedExtent(plain, border);
    if (crowd > 0.0 && !trammel_detail::AreContoursPlain(grown)) {
        kept += OffsetInParts(plain, kept, distance, border,
                              UsableTolerance(asked, std::abs(distance), crowd), out);
        return std::max(asked, kept);
    }
    kept += off;
    if (distance > 0.0) {
        kept += Unite(grown, share, out);
        return std::max(asked, kept);
    }
    // The outside has grown. A frame makes a region of it.
    CPath contours = FrameAround(plain, grown);
    Pt const corner = contours.mPts.front();
    AppendSubpaths(contours, grown);
    CPath framed;
    kept += Unite(contours, share, framed);
    out = ReversedWithout(framed, corner);
    return std::max(asked, kept);
}

} // namespace trammel
