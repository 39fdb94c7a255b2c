// SPDX-License-Identifier: MIT

#include <trammel/trammel.h>

#include <cstdio>

int main() {
    CPath path;
    path.MoveTo({10, 70}).LineTo({60, 70}).CurveTo({90, 70}, {80, 10}, {120, 10});
    path.Arc({120, 40}, 30, -pi / 2, pi); // clockwise to the eye: from the top to the bottom

    TPoint<double> const p = path.TPt(0.3), click(100, 50);
    double const t = path.FindTValue(click);
    double const distance = (path.TPt(t) - click).Length();
    CPath piece;
    path.GetTRange(0.25, 0.75, piece);

    std::printf("length %.2f, at 30 %% of it (%.2f, %.2f)\n", path.Length(), p.h, p.v);
    std::printf("nearest to the click at %.1f %%, %.2f away: %s\n", 100 * t, distance,
                distance <= 10 ? "a hit" : "no hit");
    std::printf("the middle half is %.2f long\n", piece.Length());
}
