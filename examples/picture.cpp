// SPDX-License-Identifier: MIT

// Prints the picture at the head of README.md, docs/images/picture.svg: the outline of the first
// example with its middle half, its tenths, and the nearest points to some others.
#include <trammel/SvgPath.h>
#include <trammel/trammel.h>

#include <cmath>
#include <cstdio>
#include <string>

namespace {

/// The path with coordinates rounded to hundredths, as text.
std::string Text(CPath path) {
    for (TPoint<double>& p : path.mPts) {
        p.Set(std::round(p.h * 100) / 100, std::round(p.v * 100) / 100);
    }
    return trammel::WriteSvgPath(path);
}

void Draw(CPath const& path, char const* colour, double width) {
    std::printf("<path d=\"%s\" fill=\"none\" stroke=\"%s\" stroke-width=\"%g\"/>\n",
                Text(path).c_str(), colour, width);
}

void Dot(TPoint<double> const& p, char const* colour, double radius) {
    std::printf("<circle cx=\"%.2f\" cy=\"%.2f\" r=\"%g\" fill=\"%s\"/>\n", p.h, p.v, radius,
                colour);
}

void Label(TPoint<double> const& p, char const* colour, char const* text) {
    std::printf("<text x=\"%.2f\" y=\"%.2f\" fill=\"%s\">%s</text>\n", p.h, p.v, colour, text);
}

} // namespace

int main() {
    CPath path;
    path.MoveTo({10, 70});
    path.LineTo({60, 70});
    path.CurveTo({90, 70}, {80, 10}, {120, 10});
    path.Arc({120, 40}, 30, -pi / 2, pi);

    std::printf("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 170 84\" width=\"680\" "
                "height=\"336\" font-family=\"sans-serif\" font-size=\"4.2\">\n");
    std::printf("<rect width=\"170\" height=\"84\" fill=\"#fff\"/>\n");

    CPath piece;
    path.GetTRange(0.25, 0.75, piece);
    Draw(piece, "#fbd08a", 5);
    Draw(path, "#1f4e79", 1);

    // A mark across the outline at each tenth of its length.
    for (int i = 0; i <= 10; ++i) {
        double const t = i / 10.0;
        TPoint<double> const here = path.TPt(t);
        TPoint<double> const along = path.TPt(t + 0.005) - path.TPt(t - 0.005);
        TPoint<double> const across =
            i == 10 ? TPoint<double>(0, 2.2) // there is nothing behind the end
                    : TPoint<double>(-along.v, along.h) * (2.2 / along.Length());
        CPath mark;
        mark.MoveTo(here - across);
        mark.LineTo(here + across);
        Draw(mark, "#1f4e79", 0.5);
    }
    TPoint<double> const third = path.TPt(0.3);
    Dot(third, "#1f4e79", 1.5);
    Label(third + TPoint<double>(-25, 3), "#1f4e79", "TPt(0.3)");

    for (TPoint<double> const& from :
         {TPoint<double>(100, 50), TPoint<double>(38, 50), TPoint<double>(66, 22),
          TPoint<double>(128, 44), TPoint<double>(158, 74)}) {
        TPoint<double> const to = path.TPt(path.FindTValue(from));
        CPath way;
        way.MoveTo(from);
        way.LineTo(to);
        Draw(way, "#c0392b", 0.5);
        Dot(from, "#c0392b", 1);
        Dot(to, "#c0392b", 0.7);
    }
    Label({101, 53}, "#c0392b", "FindTValue");
    Label({97, 28}, "#a86f10", "GetTRange(0.25, 0.75)");
    std::printf("</svg>\n");
}
