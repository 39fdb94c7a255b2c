// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "Tgcp.h"
#include "identity/Identity.h"

#include <cmath>
#include <cstdint>

namespace fuzz {

namespace {

Tgpc_polygon Operand(Input& in) {
    Tgpc_polygon polygon;
    for (int i = in.Int(0, 4); i > 0; --i) {
        Tgcp_contour contour;
        contour.mVertices = in.Points(24);
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

} // namespace

void Clip(Input& in) {
    int const code = in.Int(-1, 4);
    auto const op = static_cast<TPolyOp>(code);
    Tgpc_polygon const a = Operand(in);
    Tgpc_polygon const b = Operand(in);
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
    // A region minus itself is nothing.
    Tgpc_polygon rest;
    Tgpc_polygon_clip(kPolyDifference, result, result, rest);
    Require(rest.mContours.empty(), "a polygon without itself is empty");
}

} // namespace fuzz
