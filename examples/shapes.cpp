// SPDX-License-Identifier: MIT

#include <trammel/PathBuilding.h>
#include <trammel/PathStructure.h>
#include <trammel/Shapes.h>
#include <trammel/SvgPath.h>

#include <cstdio>

int main() {
    CPath ring = trammel::CirclePath({0, 0}, 50, 0.01);
    trammel::AppendSubpaths(ring, trammel::Reversed(trammel::CirclePath({0, 0}, 40, 0.01)));
    std::printf("a ring of two circles: %zu elements\n", ring.mCtls.size());

    for (double const tolerance : {0.1, 1e-3, 1e-6}) {
        CPath const circle = trammel::CirclePath({0, 0}, 50, tolerance);
        std::printf("a circle within %g: %zu curves\n", tolerance, circle.mCtls.size() - 2);
    }

    CPath path;
    path.MoveTo({0, 0});
    trammel::QuadTo(path, {3, 6}, {6, 0});
    trammel::SmoothQuadTo(path, {12, 0});
    trammel::LineBy(path, {0, 4});
    std::printf("%s\n", trammel::WriteSvgPath(path).c_str());

    CPath const card = trammel::RoundedRectPath(TRect<double>(0, 0, 80, 50), 10, 10, 0.01);
    std::printf("%s\n", trammel::WriteSvgPath(trammel::StarPath({0, 0}, 4, 1, 2, 0)).c_str());
    std::printf("a card %g wide begins at (%g, %g)\n", card.Bounds().Width(), card.mPts[0].h,
                card.mPts[0].v);
}
