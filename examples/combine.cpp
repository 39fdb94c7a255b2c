// SPDX-License-Identifier: MIT

#include <trammel/Tgcp.h>

#include <cstdio>

int main() {
    // A ring: two contours, read by the even-odd rule.
    Tgpc_polygon ring(TRect<double>(0, 0, 100, 100));
    ring.AddContour(TRect<double>(30, 30, 70, 70));
    Tgpc_polygon const bar(TRect<double>(-10, 40, 110, 60));

    Tgpc_polygon result;
    Tgpc_polygon_clip(kPolyUnion, ring, bar, result);
    std::printf("union: %ld contours\n", result.NumContours());
    for (Tgcp_contour const& contour : result.mContours) {
        std::printf("  %s of %lu vertices\n", contour.mHole ? "hole" : "outline", contour.size());
    }
    Tgpc_polygon_clip(kPolyDifference, ring, bar, result);
    TRect<double> const bounds = result.Bounds();
    std::printf("difference: %ld contours, %g to %g across\n", result.NumContours(), bounds.left,
                bounds.right);
}
