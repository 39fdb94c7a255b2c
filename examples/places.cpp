// SPDX-License-Identifier: MIT

#include <trammel/OutlineMeasure.h>

#include <cstdio>

int main() {
    CPath track;
    track.MoveTo({0, 0}).LineTo({100, 0}).CurveTo({140, 0}, {140, 60}, {100, 60}).ClosePath();
    track.MoveTo({200, 0}).LineTo({200, 50}); // behind a gap, which has no length
    trammel::OutlineMeasure const measure(track);

    for (double const length : {100.0, 130.0, 290.0, 1e9}) {
        trammel::OutlineMeasure::Place const place = measure.AtLength(length);
        std::printf("%.2f: element %zu at (%.2f, %.2f), bend %.4f\n", place.length, place.element,
                    place.point.h, place.point.v, place.curvature);
    }

    CPath piece; // two subpaths, as the range spans the gap
    measure.GetLengthRange(290, 330, piece);
    std::printf("%zu elements, %.2f long\n", piece.mCtls.size(),
                trammel::OutlineMeasure(piece).Length());
}
