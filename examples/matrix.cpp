// SPDX-License-Identifier: MIT

#include <trammel/CMatrix3x3.h>
#include <trammel/UTrigonometry.h>

#include <cstdio>

int main() {
    // In the order of the calls: double in size, then a quarter turn about (100, 0), then move.
    CMatrix3x3 m;
    m.Scale(2).Rotate(pi / 2, {100, 0}).Translate(5, 0);

    TPoint<double> p(60, 10);
    m.Transform(p);
    std::printf("(60, 10) goes to (%g, %g)\n", p.h, p.v);
    m.Inverse().Transform(p);
    std::printf("and back to (%g, %g)\n", p.h, p.v);

    TRect<double> const drawing(0, 0, 200, 100); // left, top, right, bottom
    TRect<double> const page(10, 10, 60, 35);
    TPoint<double> middle = drawing.MidPt();
    CMatrix3x3().Map(drawing, page).Transform(middle);
    std::printf("the middle of the drawing is at (%g, %g) on the page\n", middle.h, middle.v);

    try {
        CMatrix3x3().Scale(0, 1).Invert();
    } catch (char const* what) {
        std::printf("no inverse: %s\n", what);
    }
}
