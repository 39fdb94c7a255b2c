// SPDX-License-Identifier: MIT

// The plates about curves and their areas: flattened, hit, hatched, rounded.

#include "Gallery.h"
#include "GalleryCanvas.h"
#include "Hatch.h"
#include "Numbers.h"
#include "Outlines.h"
#include "SvgShapes.h"

#include <trammel/AccurateCurve.h>
#include <trammel/CBezier.h>
#include <trammel/CFPolygonRef.h>
#include <trammel/FillRule.h>
#include <trammel/Handles.h>
#include <trammel/OutlineMeasure.h>
#include <trammel/TPoly.h>
#include <trammel/Winding.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace tool {
namespace {

/// Returns the greatest distance of a curve, sampled, from the edges of its flattening.
double Deviation(CBezier const& curve, TPolygon<double> const& polygon) {
    constexpr int kSamples = 2000;
    double deviation = 0.0;
    for (int i = 0; i <= kSamples; ++i) {
        TPoint<double> const p = curve.TPt(static_cast<double>(i) / kSamples);
        double distance = std::numeric_limits<double>::infinity();
        for (long edge = 0; edge <= polygon.LastEdge(); ++edge) {
            TLine<double> const line = polygon.GetEdge(edge);
            // The edge's nearest point is the foot on the line, pinned into the edge's box.
            TPoint<double> const nearest = line.PinPtToLineSeg(line.PerpendicularPt(p));
            distance = std::min(distance, LineLength(p, nearest));
        }
        deviation = std::max(deviation, distance);
    }
    return deviation;
}

CPath CurvePath(CBezier const& curve) {
    CPath path;
    path.MoveTo(curve.P0);
    AddCurve(path, curve.P1, curve.P2, curve.P3);
    return path;
}

void AddBox(CPath& path, TRect<double> const& r) {
    AppendSubpaths(
        path, PolylinePath({r.TopLeft(), r.TopRight(), r.BottomRight(), r.BottomLeft()}, true));
}

/// A polygon on the integer grid and the number of its points.
struct GridPolygon {
    std::vector<TPoint<double>> points;
    double farthest = 0.0; ///< the greatest distance that a point moved
    int bytes = 0;
};

/// Rounds a polygon to the integer grid by way of the platform's own polygon record.
GridPolygon RoundToGrid(TPolygon<double> const& polygon) {
    GridPolygon grid;
    CFPolygonRef exact = polygon;
    MacPolygon** const rounded = exact.CreateQDPoly();
    if (rounded != nullptr) {
        grid.bytes = (*rounded)->polySize;
        for (long i = 0; i <= exact.LastIndex(); ++i) {
            grid.points.emplace_back((*rounded)->polyPoints[i]);
            grid.farthest =
                std::max(grid.farthest, LineLength(exact.PolyPoints(i), grid.points.back()));
        }
        DisposeHandle(reinterpret_cast<Handle>(rounded));
    }
    exact.Dispose();
    return grid;
}

} // namespace

Plate DrawFlattening(GalleryInput const& input) {
    Plate plate;
    plate.name = "flattening";
    plate.title = "One curve flattened at four tolerances";
    plate.sentence =
        "The same cubic curve becomes a polygon of more and more points, whose lines are never "
        "farther from the curve than was asked for.";

    Canvas canvas(input.labels);
    CBezier const model(TPoint<double>(0.0, 170.0), TPoint<double>(90.0, -150.0),
                        TPoint<double>(150.0, 400.0), TPoint<double>(310.0, 20.0));
    plate.figures.push_back({"Length of the curve", Rounded(trammel::ArcLength(model, 0.0), 3)});
    std::array<double, 4> const tolerances{40.0, 5.0, 0.5, 0.05};
    for (std::size_t i = 0; i < tolerances.size(); ++i) {
        TPoint<double> const corner(i % 2 == 0 ? 45.0 : 445.0, i < 2 ? 40.0 : 310.0);
        CBezier const curve = model + corner;
        TPolygon<double> polygon;
        trammel::FlattenWithin(curve, tolerances[i], polygon);

        canvas.Stroke(CurvePath(curve), palette::amber, 9.0, 0.45);
        canvas.Stroke(PathOf({polygon}), palette::blue, 2.5);
        long const count = polygon.LastIndex() + 1;
        // Points that lie close are small discs without a rim.
        bool const dense = count > 60;
        std::vector<TPoint<double>> points;
        for (long k = 0; k < count; ++k) {
            points.push_back(polygon.GetPt(k));
        }
        if (!dense) {
            canvas.Dots(points, 5.5, palette::paper);
        }
        canvas.Dots(points, dense ? 2.2 : 4.0, palette::vermilion);
        std::string const tolerance = Figure(tolerances[i]);
        canvas.Label("tolerance " + tolerance + ": " + std::to_string(count) + " points",
                     corner + TPoint<double>(155.0, 222.0));
        plate.figures.push_back({"Tolerance " + tolerance,
                                 std::to_string(count) + " points, length " +
                                     Rounded(polygon.Length(), 3) + ", farthest from the curve " +
                                     Small(Deviation(curve, polygon))});
    }
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawHitMap(GalleryInput const& input) {
    constexpr double kCell = 5.0;
    constexpr int kColumns = 115;
    constexpr int kRows = 102;
    constexpr double kTolerance = 5.0;
    constexpr double kBand = 10.0;
    Plate plate{"hit-test",
                "A map of hits",
                "The middle of every cell asks three things: whether it hits the outline "
                "within a tolerance, whether it is inside, and how far the nearest point of "
                "the outline is.",
                {},
                {}};

    // Cells have these classes: the hits, bands of the inside, bands of the outside.
    std::array<Colour, 9> const colours{{palette::vermilion,
                                         {80, 165, 220},
                                         {140, 200, 235},
                                         {196, 227, 246},
                                         {246, 203, 110},
                                         {249, 216, 142},
                                         {251, 228, 174},
                                         {253, 239, 205},
                                         {254, 248, 233}}};
    constexpr std::size_t kFirstInside = 1;
    constexpr std::size_t kFirstOutside = 4;
    std::array<CPath, colours.size()> cells;

    Canvas canvas(input.labels);
    TRect<double> const map(25.0, 25.0, 25.0 + kCell * kColumns, 25.0 + kCell * kRows);
    TRect<double> room = map;
    CPath const path = LetterIn(input, 'Q', room.Inset(44.0, 52.0));
    trammel::OutlineMeasure const measure(path);
    std::size_t tested = 0;
    std::size_t hits = 0;
    std::size_t inside = 0;
    double deepest = 0.0;
    double farthest = 0.0;
    auto const classOf = [&](TPoint<double> const& p) {
        bool const in = trammel::Contains(path, p, trammel::FillRule::kNonZero);
        double const distance = measure.Distance(p);
        bool const hit = distance <= kTolerance;
        ++tested;
        hits += hit ? 1 : 0;
        inside += in ? 1 : 0;
        if (hit) {
            return std::size_t{0};
        }
        (in ? deepest : farthest) = std::max(in ? deepest : farthest, distance);
        std::size_t const first = in ? kFirstInside : kFirstOutside;
        std::size_t const end = in ? kFirstOutside : colours.size();
        return std::min(first + static_cast<std::size_t>(distance / kBand), end - 1);
    };
    for (int row = 0; row < kRows; ++row) {
        double const top = map.top + kCell * row;
        // Cells of one class side by side make one box.
        std::size_t current = colours.size();
        double start = map.left;
        for (int column = 0; column < kColumns; ++column) {
            double const left = map.left + kCell * column;
            std::size_t const found =
                classOf(TPoint<double>(left + 0.5 * kCell, top + 0.5 * kCell));
            if (found != current && current < colours.size()) {
                AddBox(cells[current], TRect<double>(start, top, left, top + kCell));
                start = left;
            }
            current = found;
        }
        AddBox(cells[current], TRect<double>(start, top, map.right, top + kCell));
    }

    for (std::size_t i = 0; i < colours.size(); ++i) {
        canvas.Fill(cells[i], colours[i]);
    }
    canvas.Stroke(path, palette::paper, 1.2);

    struct Row {
        std::string words;
        std::size_t first;
        std::size_t end;
        double v;
    };
    std::array<Row, 3> const rows{{{"hit within " + Figure(kTolerance), 0, kFirstInside, 150.0},
                                   {"inside", kFirstInside, kFirstOutside, 250.0},
                                   {"outside", kFirstOutside, colours.size(), 350.0}}};
    constexpr double kSwatch = 30.0;
    for (Row const& row : rows) {
        double left = 632.0;
        for (std::size_t i = row.first; i < row.end; ++i) {
            CPath swatch;
            AddBox(swatch, TRect<double>(left, row.v, left + kSwatch, row.v + kSwatch));
            canvas.Fill(swatch, colours[i]);
            left += kSwatch;
        }
        canvas.Label(row.words, TPoint<double>(632.0, row.v + 47.0), Align::left);
    }
    canvas.Label("a shade: " + Figure(kBand), TPoint<double>(632.0, 444.0), Align::left,
                 palette::grey, 18.0);

    plate.figures = {
        {"Points tested", std::to_string(tested)},
        {"Hits within " + Figure(kTolerance), std::to_string(hits)},
        {"Inside the letter", std::to_string(inside)},
        {"Deepest point inside: distance from the outline", Rounded(deepest, 2)},
        {"Farthest point outside: distance from the outline", Rounded(farthest, 2)},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawHatching(GalleryInput const& input) {
    Plate plate{"hatching",
                "Letters hatched by clipping",
                "Parallel lines are clipped by the outlines; the holes of the letters stay "
                "free.",
                {},
                {}};

    struct Letter {
        char character;
        double degrees;
        double spacing;
        Colour colour;
    };
    std::array<Letter, 3> const letters{{{'B', 45.0, 9.0, palette::blue},
                                         {'e', -30.0, 6.0, palette::vermilion},
                                         {'8', 90.0, 5.0, palette::green}}};
    Canvas canvas(input.labels);
    for (std::size_t i = 0; i < letters.size(); ++i) {
        Letter const& letter = letters[i];
        double const left = 40.0 + 250.0 * static_cast<double>(i);
        CPath const path =
            LetterIn(input, letter.character, TRect<double>(left, 60.0, left + 220.0, 450.0));
        CPath const lines = Hatch(path, DegToRad(letter.degrees), letter.spacing);
        canvas.Stroke(lines, letter.colour, 2.2);
        canvas.Stroke(path, palette::ink, 3.0);
        std::size_t const count = SplitSubpaths(lines).size();
        std::string const name = (letter.degrees < 0.0 ? "−" : "") +
                                 Figure(std::abs(letter.degrees)) + "°, every " +
                                 Figure(letter.spacing);
        canvas.Label(name, TPoint<double>(left + 110.0, 505.0));
        plate.figures.push_back({name, std::to_string(count) + " lines, together " +
                                           Rounded(lines.Length(), 2) + " long"});
    }
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawRounding(GalleryInput const& input) {
    constexpr double kCell = 17.0;
    constexpr int kRows = 26;
    constexpr int kColumns = 21;
    Plate plate{"rounding",
                "On the integer grid",
                "A letter some twenty units high, exact and as the integer polygon that early "
                "screens drew: every point moves to the nearest crossing of the grid.",
                {},
                {}};

    Canvas canvas(input.labels);
    CPath const small = LetterIn(input, 'g', TRect<double>(1.2, 1.2, kColumns - 1.2, kRows - 1.2));
    std::vector<TPolygon<double>> const polygons = Flatten(small, 0.02);
    CPath rounded;
    double farthest = 0.0;
    std::size_t points = 0;
    int bytes = 0;
    TRect<double> box;
    for (TPolygon<double> const& polygon : polygons) {
        GridPolygon const grid = RoundToGrid(polygon);
        for (TPoint<double> const& p : grid.points) {
            box |= p;
        }
        farthest = std::max(farthest, grid.farthest);
        points += grid.points.size();
        bytes += grid.bytes;
        AppendSubpaths(rounded, PolylinePath(grid.points, true));
    }

    std::array<TPoint<double>, 2> const corners{TPoint<double>(28.0, 36.0),
                                                TPoint<double>(415.0, 36.0)};
    for (TPoint<double> const& corner : corners) {
        CPath lines;
        for (int i = 0; i <= kColumns; ++i) {
            double const h = corner.h + kCell * i;
            lines.MoveTo(TPoint<double>(h, corner.v));
            lines.LineTo(TPoint<double>(h, corner.v + kCell * kRows));
        }
        for (int i = 0; i <= kRows; ++i) {
            double const v = corner.v + kCell * i;
            lines.MoveTo(TPoint<double>(corner.h, v));
            lines.LineTo(TPoint<double>(corner.h + kCell * kColumns, v));
        }
        canvas.Stroke(lines, palette::mist, 1.2);
    }
    CMatrix3x3 const left = CMatrix3x3().Scale(kCell).Translate(corners[0]);
    CMatrix3x3 const right = CMatrix3x3().Scale(kCell).Translate(corners[1]);
    canvas.Fill(Transformed(small, left), palette::sky, 0.25);
    canvas.Stroke(Transformed(small, left), palette::blue, 3.0);
    canvas.Fill(Transformed(rounded, right), palette::amber, 0.25);
    canvas.Stroke(Transformed(small, right), palette::blue, 2.0, 0.6);
    canvas.Stroke(Transformed(rounded, right), palette::vermilion, 3.0);
    canvas.Label("exact", TPoint<double>(corners[0].h + 0.5 * kCell * kColumns, 518.0),
                 Align::centre, palette::blue);
    canvas.Label("rounded", TPoint<double>(corners[1].h + 0.5 * kCell * kColumns, 518.0),
                 Align::centre, palette::vermilion);

    TRect<double> const exactBox = DrawnBounds(small);
    plate.figures = {
        {"Polygons and points", std::to_string(polygons.size()) + " and " + std::to_string(points)},
        {"Size of their records", std::to_string(bytes) + " bytes"},
        {"Width × height, exact",
         Rounded(exactBox.Width(), 3) + " × " + Rounded(exactBox.Height(), 3)},
        {"Width × height, rounded", Rounded(box.Width(), 0) + " × " + Rounded(box.Height(), 0)},
        {"Farthest that a point moved", Rounded(farthest, 3)},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

} // namespace tool
