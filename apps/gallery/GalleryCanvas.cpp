// SPDX-License-Identifier: MIT

#include "GalleryCanvas.h"

#include "Error.h"
#include "Outlines.h"
#include "SvgShapes.h"
#include "TextAlong.h"

#include <trammel/OutlineMeasure.h>
#include <trammel/Shapes.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace tool {
namespace {

/// The height of capitals as a part of the type's size, for centring labels.
constexpr double kCapitals = 0.73;

double DistanceToBox(TRect<double> const& box, TPoint<double> const& p) {
    TPoint<double> nearest(p);
    PinValueToRange(box.left, box.right, nearest.h);
    PinValueToRange(box.top, box.bottom, nearest.v);
    return LineLength(p, nearest);
}

double DistanceOfBoxes(TRect<double> const& a, TRect<double> const& b) {
    double const dh = std::max({0.0, a.left - b.right, b.left - a.right});
    double const dv = std::max({0.0, a.top - b.bottom, b.top - a.bottom});
    return std::hypot(dh, dv);
}

} // namespace

Canvas::Canvas(Font const& labels) : mLabels(labels) {
    mPicture.page.frame = TRect<double>(0.0, 0.0, kWidth, kHeight);
    mPicture.page.width = kWidth;
    mPicture.page.height = kHeight;
    mPicture.page.unit = "px";
    mPicture.background = palette::paper;
}

void Canvas::Fill(CPath const& path, Colour colour, double opacity) {
    Style style;
    style.fill = colour;
    style.opacity = opacity;
    mPicture.shapes.push_back(Shape{path, style, ""});
}

void Canvas::Stroke(CPath const& path, Colour colour, double width, double opacity) {
    Style style;
    style.stroke = colour;
    style.strokeWidth = width;
    style.opacity = opacity;
    mPicture.shapes.push_back(Shape{path, style, ""});
}

void Canvas::Segment(TPoint<double> const& a, TPoint<double> const& b, Colour colour,
                     double width) {
    Stroke(PolylinePath({a, b}, false), colour, width);
}

void Canvas::Dashes(CPath const& path, Colour colour, double width, double dash) {
    trammel::OutlineMeasure const measure(path);
    double const length = measure.Length();
    double const count = std::max(1.0, std::floor((length / dash + 1.0) / 2.0));
    double const step = 1.0 / (2.0 * count - 1.0);
    CPath dashes;
    for (int i = 0; i < count; ++i) {
        double const start = 2.0 * i * step;
        CPath piece;
        measure.GetTRange(start, std::min(1.0, start + step), piece);
        AppendSubpaths(dashes, piece);
    }
    Stroke(dashes, colour, width);
}

void Canvas::Dots(std::vector<TPoint<double>> const& points, double radius, Colour colour) {
    // A line too short to see becomes a disc by its round caps, and takes little room in a file.
    constexpr double kSpeck = 0.01;
    CPath specks;
    for (TPoint<double> const& p : points) {
        specks.MoveTo(p);
        specks.LineTo(p + TPoint<double>(kSpeck, 0.0));
    }
    Stroke(specks, colour, 2.0 * radius);
}

void Canvas::Dot(TPoint<double> const& p, double radius, Colour colour) {
    Dots({p}, radius + 1.5, palette::paper);
    Dots({p}, radius, colour);
}

CPath EllipsePath(TPoint<double> const& centre, double hRadius, double vRadius) {
    return trammel::EllipsePath(centre, hRadius, vRadius, 0.0, 2e-9 * std::max(hRadius, vRadius));
}

void Canvas::Ring(TPoint<double> const& p, double radius, Colour colour, double width) {
    CPath const circle = EllipsePath(p, radius, radius);
    Fill(circle, palette::paper);
    Stroke(circle, colour, width);
}

void Canvas::Arrow(TPoint<double> const& a, TPoint<double> const& b, Colour colour, double width) {
    double const head = 4.5 * width;
    TLine<double> shaft(a, b);
    shaft.TrimEnd(head, false);
    Segment(a, shaft.mEnd, colour, width);
    TLine<double> base(shaft.mEnd, b);
    TPoint<double> const left = base.Perpendicular(shaft.mEnd).CalcPtFromEnd(0.45 * head, true);
    TPoint<double> const right = base.Perpendicular(shaft.mEnd).CalcPtFromEnd(-0.45 * head, true);
    Fill(PolylinePath({b, left, right}, true), colour);
}

void Canvas::Label(std::string const& words, TPoint<double> const& p, Align align, Colour colour,
                   double size) {
    double const width = LabelWidth(words, size);
    double const part = align == Align::left ? 0.0 : align == Align::centre ? 0.5 : 1.0;
    TPoint<double> const origin(p.h - part * width, p.v + 0.5 * kCapitals * size);
    CPath all;
    for (Outline const& glyph : TextLine(mLabels, words, size, origin)) {
        AppendSubpaths(all, glyph.path);
    }
    Stroke(all, palette::paper, 0.3 * size, 0.85);
    Fill(all, colour);
}

double Canvas::LabelWidth(std::string const& words, double size) const {
    return TextWidth(mLabels, words, size);
}

CMatrix3x3 Fitting(TRect<double> const& from, TRect<double> const& to) {
    double const scale = std::min(to.Width() / from.Width(), to.Height() / from.Height());
    return CMatrix3x3().Translate(-from.MidPt()).Scale(scale).Translate(to.MidPt());
}

CPath Transformed(CPath path, CMatrix3x3 const& m) {
    path.Transform(m);
    return path;
}

CPath LetterPath(GalleryInput const& input, char character) {
    unsigned const index = input.type.IndexOf(static_cast<char32_t>(character));
    CPath path = WithoutDots(input.type.ReadGlyph(index).path);
    if (path.mCtls.empty()) {
        throw Error(input.typeFile, std::string("letter '") + character + "'", "has no outline");
    }
    return path;
}

CPath LetterIn(GalleryInput const& input, char character, TRect<double> const& to) {
    CPath const path = LetterPath(input, character);
    return Transformed(path, Fitting(DrawnBounds(path), to));
}

LabelPlacer::LabelPlacer(CPath const& outline, TRect<double> const& frame) : mFrame(frame) {
    constexpr double kStep = 2.0;
    trammel::OutlineMeasure const measure(outline);
    auto const count = static_cast<std::size_t>(measure.Length() / kStep);
    for (std::size_t i = 0; i <= count; ++i) {
        mOutline.push_back(measure.PtAtLength(static_cast<double>(i) * kStep));
    }
}

void LabelPlacer::Avoid(TLine<double> const& line) {
    constexpr int kSteps = 8;
    for (int i = 0; i <= kSteps; ++i) {
        mOutline.push_back(line.TPt(static_cast<double>(i) / kSteps));
    }
}

double LabelPlacer::Clearance(TRect<double> const& box) const {
    double clearance = std::numeric_limits<double>::infinity();
    for (TPoint<double> const& p : mOutline) {
        clearance = std::min(clearance, DistanceToBox(box, p));
    }
    for (TRect<double> const& taken : mTaken) {
        clearance = std::min(clearance, DistanceOfBoxes(box, taken));
    }
    return clearance;
}

TPoint<double> LabelPlacer::Place(TPoint<double> const& mark, double width, double height) {
    constexpr int kDirections = 24;
    // More clearance than this does not make a label easier to read.
    constexpr double kEnough = 9.0;
    TRect<double> best;
    double bestScore = -std::numeric_limits<double>::infinity();
    for (double const gap : {12.0, 16.0, 21.0, 27.0, 34.0}) {
        for (int i = 0; i < kDirections; ++i) {
            TPoint<double> const direction =
                TPoint<double>(1.0, 0.0).Rotate(2.0 * pi * i / kDirections);
            TPoint<double> const reach(gap + 0.5 * width, gap + 0.5 * height);
            TRect<double> const box(mark + direction * reach, 0.5 * width, 0.5 * height);
            if (!mFrame.Contains(box)) {
                continue;
            }
            double const score = std::min(Clearance(box), kEnough) - 0.4 * gap;
            if (score > bestScore) {
                bestScore = score;
                best = box;
            }
        }
    }
    if (best.Null()) {
        best = TRect<double>(mark, 0.5 * width, 0.5 * height);
    }
    mTaken.push_back(best);
    return best.MidPt();
}

std::string Rounded(double number, int decimals) {
    std::array<char, 400> text; // NOLINT(*-member-init): the conversion writes it
    auto const end = std::to_chars(text.data(), text.data() + text.size(), number,
                                   std::chars_format::fixed, decimals);
    std::string rounded(text.data(), end.ptr);
    if (rounded.front() == '-' && rounded.find_first_not_of("-0.") == std::string::npos) {
        rounded.erase(0, 1);
    }
    return rounded;
}

std::string Small(double number) {
    std::array<char, 40> text; // NOLINT(*-member-init): the conversion writes it
    auto const end = std::to_chars(text.data(), text.data() + text.size(), number,
                                   std::chars_format::general, 2);
    return std::string(text.data(), end.ptr);
}

} // namespace tool
