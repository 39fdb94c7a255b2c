// SPDX-License-Identifier: MIT

#include <trammel/PathSegments.h>

#include <cstdio>

int main() {
    CPath path;
    path.MoveTo({0, 0}).LineTo({40, 0}).LineTo({40, 30}).ClosePath();
    path.MoveTo({60, 0}).CurveTo({80, 0}, {80, 30}, {60, 30});

    for (trammel::Subpath const& subpath : trammel::Subpaths(path)) {
        std::printf("%s subpath from (%g, %g)\n", subpath.Closed() ? "closed" : "open",
                    subpath.Start().h, subpath.Start().v);
        for (trammel::PathSegment const& segment : subpath) {
            std::printf("  element %zu, a %s to (%g, %g)\n", segment.element,
                        segment.IsCurve() ? "curve" : "line", segment.end.h, segment.end.v);
        }
    }
}
