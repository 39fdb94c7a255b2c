// SPDX-License-Identifier: MIT

// The plates about whole outlines: measured, written along, cut, searched.

#include "Cut.h"
#include "Error.h"
#include "Gallery.h"
#include "GalleryCanvas.h"
#include "Outlines.h"
#include "SvgShapes.h"
#include "TextAlong.h"

#include <trammel/AccurateCurve.h>
#include <trammel/OutlineMeasure.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace tool {
namespace {

std::size_t CountElements(CPath const& path, CPathCode code) {
    return static_cast<std::size_t>(std::count(path.mCtls.begin(), path.mCtls.end(), code));
}

std::string Extent(TRect<double> const& r, int decimals) {
    return Rounded(r.Width(), decimals) + " × " + Rounded(r.Height(), decimals);
}

/// Returns a curve that winds inward in half turns. It begins at the left end of the widest half
/// turn and goes over the top.
CPath Spiral(TPoint<double> centre, TPoint<double> radii, TPoint<double> shrink, int halfTurns) {
    CPath path;
    double angle = pi;
    for (int i = 0; i < halfTurns; ++i) {
        path.Arc(centre, radii.h, radii.v, angle, 0.5 * pi);
        path.Arc(centre, radii.h, radii.v, angle + 0.5 * pi, 0.5 * pi);
        // The next half turn begins at the end of this one: at the right, then at the left.
        TPoint<double> const end = path.CurrentPoint();
        radii -= shrink;
        angle += pi;
        centre.h = end.h - radii.h * std::cos(angle);
    }
    return path;
}

/// Returns the place of all outlines that is nearest to a point.
trammel::OutlineMeasure::Nearest NearestOf(std::vector<trammel::OutlineMeasure> const& outlines,
                                           TPoint<double> const& p) {
    trammel::OutlineMeasure::Nearest best;
    for (trammel::OutlineMeasure const& outline : outlines) {
        trammel::OutlineMeasure::Nearest const found = outline.FindNearest(p);
        if (found.distance < best.distance) {
            best = found;
        }
    }
    return best;
}

/// Returns the outline's length, right to rounding.
double LengthOf(CPath const& path) { return trammel::ArcLength(path, 0.0); }

} // namespace

Plate DrawMarks(GalleryInput const& input) {
    Plate plate{"marks",
                "Marks at every tenth of the way",
                "The outline of a letter is walked by arc length, across lines, curves and "
                "inner contours alike; each mark stands at right angles to the direction that "
                "the outline has there.",
                {},
                {}};

    CPath const letter = LetterPath(input, '&');
    Canvas canvas(input.labels);
    TRect<double> const room(70.0, 45.0, 730.0, 515.0);
    CMatrix3x3 const fit = Fitting(DrawnBounds(letter), room);
    CPath const path = Transformed(letter, fit);
    canvas.Fill(path, palette::sky, 0.16);
    canvas.Stroke(path, palette::blue, 3.0);

    trammel::OutlineMeasure const measure(path);
    LabelPlacer placer(path, TRect<double>(8.0, 8.0, Canvas::kWidth - 8.0, Canvas::kHeight - 8.0));
    double worst = 0.0;
    std::vector<TPoint<double>> marks;
    for (int i = 0; i < 10; ++i) {
        double const t = i / 10.0;
        trammel::OutlineMeasure::Place const place = measure.At(t);
        TPoint<double> const p = place.point;
        TPoint<double> const across = TPoint<double>(place.tangent).Rotate(0.5 * pi);
        TLine<double> const tick(p - across * 13.0, p + across * 13.0);
        canvas.Segment(tick.mStart, tick.mEnd, palette::vermilion, 4.0);
        placer.Avoid(tick);
        marks.push_back(p);
        worst = std::max(worst, LineLength(measure.FindNearest(p).point, p));
    }
    for (int i = 0; i < 10; ++i) {
        std::string const words = Rounded(i / 10.0, 1);
        TPoint<double> const& p = marks[static_cast<std::size_t>(i)];
        canvas.Dot(p, 5.0, palette::vermilion);
        canvas.Label(words, placer.Place(p, canvas.LabelWidth(words), 16.0));
    }

    double const length = LengthOf(letter);
    plate.figures = {
        {"Length of the outline", Rounded(length, 1) + " font units"},
        {"From mark to mark", Rounded(length / 10.0, 2) + " font units"},
        {"Width × height", Extent(DrawnBounds(letter), 1) + " font units"},
        {"Contours, lines, curves", std::to_string(SplitSubpaths(letter).size()) + ", " +
                                        std::to_string(CountElements(letter, kPathLine)) + ", " +
                                        std::to_string(CountElements(letter, kPathCurve))},
        {"A mark found again as the nearest place: off by at most", Small(worst)},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawTextAlong(GalleryInput const& input) {
    Plate plate{"text-along-path",
                "Text along a path",
                "Each letter stands on the curve at its own distance from the start and is "
                "turned to the curve's direction at that place.",
                {},
                {}};

    std::string const words =
        "A path knows its own length, and so each letter of this line finds the place on the curve "
        "where it has to stand, and turns the way that the curve is going there, to the very end.";
    CPath const spiral = Spiral(TPoint<double>(400.0, 296.0), TPoint<double>(334.0, 216.0),
                                TPoint<double>(39.0, 33.0), 6);
    double const length = LengthOf(spiral);
    double const width = TextWidth(input.type, words, 100.0);
    if (!(width > 0.0)) {
        throw Error(input.typeFile, "", "has no letters of any width");
    }
    double const size = 100.0 * (length - 20.0) / width;

    Canvas canvas(input.labels);
    canvas.Stroke(spiral, palette::amber, 2.0);
    std::vector<Outline> const letters = TextAlong(input.type, words, size, spiral, 10.0);
    for (Outline const& letter : letters) {
        canvas.Fill(letter.path, palette::ink);
    }
    canvas.Dot(spiral.mPts.front(), 5.0, palette::vermilion);
    canvas.Dot(spiral.mPts.back(), 5.0, palette::vermilion);

    plate.figures = {
        {"Length of the curve", Rounded(length, 2)},
        {"Width of the words, set straight", Rounded(TextWidth(input.type, words, size), 2)},
        {"Size of the type", Rounded(size, 2)},
        {"Letters placed", std::to_string(letters.size())},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawCut(GalleryInput const& input) {
    constexpr double kFrom = 0.12;
    constexpr double kTo = 0.42;
    Plate plate{"cut",
                "A piece cut out, and what remains",
                "A closed outline is cut at two fractions of its length; the remainder is one "
                "open piece that runs through the outline's start.",
                {},
                {}};

    Canvas canvas(input.labels);
    CPath const whole = LetterIn(input, 'S', TRect<double>(75.0, 36.0, 345.0, 436.0));
    Pieces const pieces = CutPath(whole, kFrom, kTo);

    canvas.Fill(whole, palette::mist);
    canvas.Stroke(whole, palette::grey, 2.5);
    LabelPlacer placer(whole, TRect<double>(8.0, 8.0, 400.0, 480.0));
    trammel::OutlineMeasure const measure(whole);
    for (double const t : {kFrom, kTo}) {
        TPoint<double> const p = measure.TPt(t);
        std::string const words = Rounded(t, 2);
        canvas.Ring(p, 6.0, palette::ink, 3.0);
        canvas.Label(words, placer.Place(p, canvas.LabelWidth(words), 16.0));
    }
    TPoint<double> const start = measure.TPt(0.0);
    canvas.Dot(start, 6.0, palette::green);
    canvas.Label("start", placer.Place(start, canvas.LabelWidth("start"), 16.0), Align::centre,
                 palette::green);

    CMatrix3x3 const aside = CMatrix3x3().Translate(340.0, 0.0);
    CPath const rest = Transformed(pieces.rest, aside);
    CPath const cut = Transformed(pieces.cut, aside);
    CPath const moved = Transformed(cut, CMatrix3x3().Translate(44.0, 34.0));
    canvas.Dashes(cut, palette::ghost, 2.0);
    canvas.Stroke(rest, palette::blue, 4.0);
    canvas.Stroke(moved, palette::vermilion, 4.0);
    for (CPath const* piece : {&rest, &moved}) {
        Colour const colour = piece == &rest ? palette::blue : palette::vermilion;
        canvas.Ring(piece->mPts.front(), 5.0, colour, 3.0);
        canvas.Ring(piece->mPts.back(), 5.0, colour, 3.0);
    }
    canvas.Label("the outline", TPoint<double>(210.0, 520.0));
    canvas.Label("the remainder", TPoint<double>(500.0, 520.0), Align::centre, palette::blue);
    canvas.Label("the piece", TPoint<double>(680.0, 520.0), Align::centre, palette::vermilion);

    double const length = LengthOf(whole);
    double const cutLength = LengthOf(pieces.cut);
    double const restLength = LengthOf(pieces.rest);
    plate.figures = {
        {"Length of the outline", Rounded(length, 3)},
        {"Length of the piece, from " + Rounded(kFrom, 2) + " to " + Rounded(kTo, 2),
         Rounded(cutLength, 3)},
        {"Length of the remainder", Rounded(restLength, 3)},
        {"The piece's part of the whole", Rounded(cutLength / length, 5)},
        {"Piece and remainder together, less the whole", Small(cutLength + restLength - length)},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawNearest(GalleryInput const& input) {
    constexpr int kPoints = 48;
    Plate plate{"nearest",
                "A drawing measured, and its nearest points",
                "From each point of a ring a line leads to the nearest point of all the "
                "drawing's outlines.",
                {},
                {}};

    CPath all;
    for (Outline const& outline : input.drawing.outlines) {
        AppendSubpaths(all, outline.path);
    }
    Canvas canvas(input.labels);
    CMatrix3x3 const fit = Fitting(DrawnBounds(all), TRect<double>(235.0, 135.0, 565.0, 425.0));
    std::vector<CPath> outlines;
    std::vector<trammel::OutlineMeasure> measures;
    double length = 0.0;
    for (Outline const& outline : input.drawing.outlines) {
        CPath const path = WithoutDots(outline.path);
        length += LengthOf(path);
        if (path.mCtls.empty()) {
            continue;
        }
        outlines.push_back(Transformed(path, fit));
        measures.emplace_back(outlines.back());
        canvas.Fill(outlines.back(), palette::sky, 0.2);
    }
    for (CPath const& outline : outlines) {
        canvas.Stroke(outline, palette::blue, 2.5);
    }

    TPoint<double> const centre(0.5 * Canvas::kWidth, 0.5 * Canvas::kHeight);
    CPath const ring = EllipsePath(centre, 340.0, 250.0);
    canvas.Stroke(ring, palette::mist, 2.0);
    trammel::OutlineMeasure const ringMeasure(ring);
    double least = std::numeric_limits<double>::infinity();
    double most = 0.0;
    std::vector<TLine<double>> lines;
    for (int i = 0; i < kPoints; ++i) {
        TPoint<double> const p = ringMeasure.TPt(static_cast<double>(i) / kPoints);
        trammel::OutlineMeasure::Nearest const nearest = NearestOf(measures, p);
        least = std::min(least, nearest.distance);
        most = std::max(most, nearest.distance);
        lines.emplace_back(p, nearest.point);
        canvas.Segment(p, nearest.point, palette::amber, 1.8);
    }
    for (TLine<double> const& line : lines) {
        canvas.Dot(line.mStart, 3.5, palette::grey);
        canvas.Dot(line.mEnd, 4.5, palette::vermilion);
    }

    // The size of one unit of the drawing in the picture.
    double const scale = fit.a;
    plate.figures = {
        {"Drawing", input.drawing.file},
        {"Outlines with a length", std::to_string(outlines.size())},
        {"Their length together", Rounded(length, 3)},
        {"Width × height", Extent(DrawnBounds(all), 3)},
        {"Shortest and longest of the " + std::to_string(kPoints) + " lines",
         Rounded(least / scale, 3) + " and " + Rounded(most / scale, 3)},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

} // namespace tool
