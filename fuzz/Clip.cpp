// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "Tgcp.h"
#include "identity/Identity.h"
#include "plain/PlainClip.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace fuzz {

namespace {

/// Where `tame`, all vertices lie in one box of moderate size, so that areas can be judged.
Tgpc_polygon Operand(Input& in, bool tame) {
    Tgpc_polygon polygon;
    for (int i = in.Int(0, 4); i > 0; --i) {
        Tgcp_contour contour;
        contour.mVertices = in.Points(24);
        for (Pt& p : contour.mVertices) {
            double const h = std::fmod(p.h, 64.0);
            double const v = std::fmod(p.v, 64.0);
            p = tame && std::isfinite(h) && std::isfinite(v) ? Pt(h, v) : p;
        }
        contour.mHole = in.Flag();
        polygon.AddContour(contour);
    }
    return polygon;
}

identity::Digest DigestOf(Tgpc_polygon const& polygon) {
    identity::Digest digest;
    for (Tgcp_contour const& contour : polygon.mContours) {
        digest.Add(contour.mHole);
        digest.Add(contour.mVertices);
    }
    return digest;
}

plain::Polygon PlainOf(Tgpc_polygon const& polygon) {
    plain::Polygon same;
    for (Tgcp_contour const& contour : polygon.mContours) {
        same.emplace_back();
        for (Pt const& p : contour.mVertices) {
            same.back().push_back({p.h, p.v});
        }
    }
    return same;
}

void CheckRecords(plain::Region const& records, Tgpc_polygon const& result) {
    plain::Polygon const ours = PlainOf(result);
    Require(records.contours == ours, "records hold the same result");
    for (std::size_t i = 0; i < ours.size(); ++i) {
        Require((records.holes[i] != 0) == result.mContours[i].mHole,
                "records have the same holes");
    }
}

/// What both regions cover together and what they share have the areas of both. Operands are
/// polygons whose contours with coordinates that are no numbers count as absent.
void CheckAreas(plain::Polygon a, plain::Polygon b) {
    plain::Box box;
    for (plain::Polygon* const polygon : {&a, &b}) {
        polygon->erase(std::remove_if(polygon->begin(), polygon->end(),
                                      [](plain::Contour const& contour) {
                                          return !std::all_of(
                                              contour.begin(), contour.end(), [](plain::Vertex v) {
                                                  return std::isfinite(v.x) && std::isfinite(v.y);
                                              });
                                      }),
                       polygon->end());
        box.Include(*polygon);
    }
    auto const judged = [](double low, double high) {
        double const size = std::max(std::abs(low), std::abs(high));
        return high - low > 1e-4 * size && high - low > 1e-250 && size < 1e250;
    };
    if (!box.HasArea() || !judged(box.lowX, box.highX) || !judged(box.lowY, box.highY)) {
        return;
    }
    plain::Normalised const scaled(box);
    auto const area = [&](gpc_op operation) {
        plain::Region region = plain::Clip(operation, a, b);
        region.contours = scaled(region.contours);
        double const byFlags = plain::AreaByFlags(region);
        Require(std::abs(byFlags - plain::EvenOddArea(region.contours)) <= 1e-7,
                "the holes of a result are holes");
        return byFlags;
    };
    double const ofA = plain::EvenOddArea(scaled(a));
    double const ofB = plain::EvenOddArea(scaled(b));
    double const ofUnion = area(GPC_UNION);
    double const shared = area(GPC_INT);
    constexpr double kClose = 1e-7; // far above rounding, and far below a wrong region
    Require(std::abs(ofUnion + shared - ofA - ofB) <= kClose, "areas add up");
    Require(std::abs(area(GPC_DIFF) - (ofA - shared)) <= kClose, "a difference has the rest");
    Require(std::abs(area(GPC_XOR) - (ofUnion - shared)) <= kClose, "areas are exclusive");
}

} // namespace

void Clip(Input& in) {
    int const code = in.Int(-1, 4);
    auto const op = static_cast<TPolyOp>(code);
    bool const tame = in.Flag();
    Tgpc_polygon const a = Operand(in, tame);
    Tgpc_polygon const b = Operand(in, tame);
    Tgpc_polygon result;
    Tgpc_polygon_clip(op, a, b, result);
    for (Tgcp_contour const& contour : result.mContours) {
        Require(contour.size() >= 3, "a contour has three vertices");
        for (Pt const& p : contour.mVertices) {
            Require(std::isfinite(p.h) && std::isfinite(p.v), "a vertex is finite");
        }
    }
    if (code < 0 || code > 3) {
        Require(result.mContours.empty(), "no such operation, no contours");
    }
    Tgpc_polygon again;
    Tgpc_polygon_clip(op, a, b, again);
    Require(DigestOf(again) == DigestOf(result), "the same operands give the same result");
    plain::Polygon const plainA = PlainOf(a);
    plain::Polygon const plainB = PlainOf(b);
    CheckRecords(plain::Clip(static_cast<gpc_op>(code), plainA, plainB), result);
    CheckAreas(plainA, plainB);
    // A region minus itself is nothing.
    Tgpc_polygon rest;
    Tgpc_polygon_clip(kPolyDifference, result, result, rest);
    Require(rest.mContours.empty(), "a polygon without itself is empty");
}

} // namespace fuzz
