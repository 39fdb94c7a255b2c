// SPDX-License-Identifier: MIT

// A user's program with an installed library. It calls inline and compiled operations, derives from
// an exported class, catches an exception that crosses the library's border, and changes the
// class-wide settings. The numbers printed are exact, so that expected.txt holds the whole text.

#include <trammel/trammel.h>

#include <cstdio>
#include <cstring>

namespace {

/// Counts the elements that a path delivers.
class Counter : public CPathActions {
public:
    void MoveTo(TPoint<double> const&) override { ++moves; }
    void LineTo(TPoint<double> const&) override { ++lines; }
    void CurveTo(TPoint<double> const&, TPoint<double> const&, TPoint<double> const&) override {
        ++curves;
    }
    void ClosePath() override { ++closes; }

    int moves = 0;
    int lines = 0;
    int curves = 0;
    int closes = 0;
};

void PrintPoint(char const* what, TPoint<double> const& p) {
    std::printf("%s: h %g, v %g\n", what, p.h, p.v);
}

} // namespace

int main() {
    TPoint<double> const p(3.0, 4.0);
    std::printf("distance from the origin: %g\n", p.Length());

    CMatrix3x3 m;
    m.Rotate(pi / 2.0).Translate(10.0, 20.0);
    TPoint<double> turned = p;
    PrintPoint("turned by a quarter, then moved", turned.Transform(m));

    CMatrix3x3 flat;
    flat.Scale(0.0, 1.0);
    char const* refusal = "nothing thrown";
    try {
        flat.Invert();
    } catch (char const* text) {
        refusal = text;
    }
    std::printf("inverting a singular matrix: %s\n", refusal);

    CBezier const curve(TPoint<double>(0.0, 0.0), TPoint<double>(0.0, 100.0),
                        TPoint<double>(100.0, 100.0), TPoint<double>(100.0, 0.0));
    TPolygon<double> polygon;
    curve.Flatten(polygon, 0.01);
    PrintPoint("the flattened curve begins at", polygon.GetPt(0));
    PrintPoint("and ends at", polygon.GetPt(polygon.LastIndex()));
    // The curve is 200 long to the last digit: its speed is a polynomial, 300 (1 - 2 t + 2 t^2).
    double const missing = 200.0 - polygon.Length();
    std::printf("its length is right to a hundredth: %s\n",
                missing >= 0.0 && missing < 0.01 ? "yes" : "no");
    std::printf("the curve error is still %g\n", CBezier::CurveError());

    CPath path;
    path.MoveTo(TPoint<double>(0.0, 0.0));
    path.LineTo(TPoint<double>(30.0, 0.0));
    path.LineTo(TPoint<double>(30.0, 40.0));
    path.ClosePath();
    std::printf("length of the outline: %g\n", path.Length());
    PrintPoint("a quarter of the way along it", path.TPt(0.25));

    Counter counter;
    path.ForAll(counter);
    std::printf("elements: %d move, %d lines, %d curves, %d close\n", counter.moves, counter.lines,
                counter.curves, counter.closes);
    return std::strcmp(refusal, "nothing thrown") == 0 ? 1 : 0;
}
