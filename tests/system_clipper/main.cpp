// SPDX-License-Identifier: MIT

// A user's program of a library that was built with TRAMMEL_GPC=SYSTEM. It prints the results of
// the four operations, each by way of the C interface and by way of the classes.
#include <trammel/Tgcp.h>
#include <trammel/gpc.h>

#include <cstdio>

namespace {

void Print(char const* name, Tgpc_polygon const& polygon) {
    std::printf("%s: %ld contours\n", name, polygon.NumContours());
    for (Tgcp_contour const& contour : polygon.mContours) {
        std::printf(contour.mHole ? "  hole" : "  contour");
        for (TPoint<double> const& p : contour.mVertices) {
            std::printf(" (%.17g, %.17g)", p.h, p.v);
        }
        std::printf("\n");
    }
}

} // namespace

int main() {
    Tgpc_polygon const frame = [] {
        Tgpc_polygon polygon(TRect<double>(0, 0, 9, 9));
        polygon.AddContour(Tgcp_contour(TRect<double>(3, 3, 6, 6)));
        return polygon;
    }();
    Tgpc_polygon triangle;
    triangle.mContours.resize(1);
    triangle.mContours[0].mVertices = {TPoint<double>(1, 1), TPoint<double>(14, 4),
                                       TPoint<double>(2, 8)};

    char const* const names[] = {"difference", "intersection", "exclusive-or", "union"};
    for (TPolyOp const operation : {kPolyDifference, kPolyIntersection, kPolyXor, kPolyUnion}) {
        Tgpc_polygon result;
        Tgpc_polygon_clip(operation, frame, triangle, result);
        Print(names[operation], result);

        gpc_polygon a = Create_gpc(frame);
        gpc_polygon b = Create_gpc(triangle);
        gpc_polygon record = {0, nullptr, nullptr};
        gpc_polygon_clip(static_cast<gpc_op>(operation), &a, &b, &record);
        Print("  the same in C", Create_Tgpc(&record));
        gpc_free_polygon(&a);
        gpc_free_polygon(&b);
        gpc_free_polygon(&record);
    }
}
