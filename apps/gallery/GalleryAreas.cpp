// SPDX-License-Identifier: MIT

// The plates about boolean operations: letters welded, countries joined, cut into and combined.

#include "Combine.h"
#include "Error.h"
#include "Gallery.h"
#include "GalleryCanvas.h"
#include "Outlines.h"
#include "SvgShapes.h"
#include "TextAlong.h"

#include <trammel/AccurateCurve.h>
#include <trammel/UTrigonometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace tool {
namespace {

/// The deviation of flattened curves in the pictures: a fortieth of a pixel of the PNG.
constexpr double kError = 0.0125;

Tgpc_polygon AreaOf(CPath const& path) {
    Tgpc_polygon polygon;
    AddContours(polygon, path, kError);
    return polygon;
}

std::string Contours(AreaFigures const& figures) {
    return std::to_string(figures.contours) +
           (figures.contours == 1 ? " contour, " : " contours, ") + std::to_string(figures.holes) +
           (figures.holes == 1 ? " of them a hole" : " of them holes");
}

/// Returns "area, contours, holes" of a clip's result.
std::string Summary(AreaFigures const& figures) {
    return "area " + Rounded(figures.area, 3) + "; " + Contours(figures);
}

CPath const& CountryPath(GalleryInput const& input, std::string const& name) {
    for (Outline const& outline : input.map->outlines) {
        if (outline.id == name) {
            return outline.path;
        }
    }
    throw Error(input.map->file, "", "has no country '" + name + "'");
}

/// Returns the subpath with the greatest bounds, and all subpaths within these bounds. This is a
/// country without its islands far off, but with its holes and lakes.
CPath Mainland(CPath const& country) {
    TRect<double> largest;
    std::vector<CPath> const parts = SplitSubpaths(country);
    for (CPath const& part : parts) {
        TRect<double> const box = ControlBounds(part);
        if (box.Width() * box.Height() > largest.Width() * largest.Height()) {
            largest = box;
        }
    }
    CPath mainland;
    for (CPath const& part : parts) {
        if (largest.Contains(ControlBounds(part))) {
            AppendSubpaths(mainland, part);
        }
    }
    return mainland;
}

/// Returns the transform that makes degrees of longitude as narrow as in the middle of these
/// bounds.
CMatrix3x3 Narrowed(TRect<double> const& degrees) {
    return CMatrix3x3().Scale(std::cos(DegToRad(degrees.MidPt().v)), 1.0);
}

/// Returns the transform that brings an outline in degrees into a rectangle of the picture.
CMatrix3x3 MapFitting(TRect<double> const& degrees, CPath const& outline, TRect<double> const& to) {
    CMatrix3x3 const narrowed = Narrowed(degrees);
    return Concat(narrowed, Fitting(DrawnBounds(Transformed(outline, narrowed)), to));
}

} // namespace

Plate DrawWelded(GalleryInput const& input) {
    Plate plate{"welded",
                "Letters welded into one outline",
                "Letters set so tightly that they overlap are united one after another; what "
                "remains is one outline, with the counters of the letters for holes.",
                {},
                {}};

    constexpr double kOverlap = 0.07; // of the letters' boxes, as a part of the type's size
    std::string const word = "amble";
    std::vector<CPath> letters;
    CPath all;
    double pen = 0.0;
    for (char const character : word) {
        CPath const letter = LetterPath(input, character);
        TRect<double> const box = DrawnBounds(letter);
        letters.push_back(Transformed(letter, CMatrix3x3().Translate(pen - box.left, 0.0)));
        AppendSubpaths(all, letters.back());
        pen += box.Width() - kOverlap * input.type.UnitsPerEm();
    }
    TRect<double> const room(50.0, 24.0, 750.0, 226.0);
    CMatrix3x3 const fit = Fitting(DrawnBounds(all), room);
    CMatrix3x3 const below = CMatrix3x3().Translate(0.0, 266.0);

    Canvas canvas(input.labels);
    Tgpc_polygon welded;
    double sum = 0.0;
    std::size_t before = 0;
    for (CPath const& letter : letters) {
        CPath const placed = Transformed(letter, fit);
        Tgpc_polygon const area = AreaOf(placed);
        AreaFigures const figures = FiguresOf(Untangled(area));
        sum += figures.area;
        before += figures.contours;
        welded = Combined(kPolyUnion, welded, area);
        canvas.Fill(placed, palette::sky, 0.25);
        canvas.Stroke(placed, palette::blue, 2.0);
    }
    CPath const outline = Transformed(PathOf(welded), below);
    canvas.Fill(outline, palette::amber, 0.35);
    canvas.Stroke(outline, palette::vermilion, 2.5);
    canvas.Label("five outlines that overlap", TPoint<double>(400.0, 256.0));
    canvas.Label("their union", TPoint<double>(400.0, 522.0));

    AreaFigures const figures = FiguresOf(welded);
    plate.figures = {
        {"Before", std::to_string(before) + " contours; areas together " + Rounded(sum, 3)},
        {"Union", Summary(figures)},
        {"Covered more than once", Rounded(sum - figures.area, 3)},
        {"Vertices of the union", std::to_string(figures.vertices)},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawFourOperations(GalleryInput const& input) {
    Plate plate{"four-operations",
                "Four operations on two outlines with holes",
                "South Africa, around Lesotho, and an ampersand, around its counters: what "
                "is in either, in both, in the first alone, and in exactly one of them.",
                {},
                {}};

    CPath const country = Mainland(CountryPath(input, "South Africa"));
    TRect<double> const room(-150.0, -112.0, 150.0, 112.0);
    CPath const first = Transformed(country, MapFitting(DrawnBounds(country), country, room));
    CPath const second = LetterIn(input, '&', TRect<double>(-60.0, -108.0, 190.0, 92.0));
    Tgpc_polygon const a = AreaOf(first);
    Tgpc_polygon const b = AreaOf(second);

    struct Panel {
        std::string name;
        TPolyOp operation;
    };
    std::array<Panel, 4> const panels{{{"union", kPolyUnion},
                                       {"intersection", kPolyIntersection},
                                       {"difference", kPolyDifference},
                                       {"exclusive-or", kPolyXor}}};
    Canvas canvas(input.labels);
    AreaFigures const figuresA = FiguresOf(Untangled(a));
    AreaFigures const figuresB = FiguresOf(Untangled(b));
    plate.figures.push_back({"South Africa", Summary(figuresA)});
    plate.figures.push_back({"Ampersand", Summary(figuresB)});
    std::array<double, 4> areas{};
    for (std::size_t i = 0; i < panels.size(); ++i) {
        TPoint<double> const centre(i % 2 == 0 ? 200.0 : 595.0, i < 2 ? 130.0 : 402.0);
        CMatrix3x3 const place = CMatrix3x3().Translate(centre);
        Tgpc_polygon const result = Combined(panels[i].operation, a, b);
        canvas.Fill(Transformed(PathOf(result), place), palette::sky, 0.55);
        canvas.Stroke(Transformed(first, place), palette::ghost, 1.4);
        canvas.Stroke(Transformed(second, place), palette::ghost, 1.4);
        canvas.Stroke(Transformed(PathOf(result), place), palette::blue, 2.2);
        canvas.Label(panels[i].name, centre + TPoint<double>(0.0, 133.0));
        AreaFigures const figures = FiguresOf(result);
        areas[i] = figures.area;
        plate.figures.push_back({panels[i].name, Summary(figures)});
    }
    double const sum = figuresA.area + figuresB.area;
    plate.figures.push_back({"Union and intersection together, less both outlines",
                             Small(std::abs(areas[0] + areas[1] - sum))});
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawWordCut(GalleryInput const& input) {
    Plate plate{"word-cut",
                "A word cut out of a country",
                "Australia less the letters of its name; the land inside a letter's "
                "counter stays, as a contour of its own.",
                {},
                {}};

    CPath const country = Mainland(CountryPath(input, "Australia"));
    CPath const outline = Transformed(country, MapFitting(DrawnBounds(country), country,
                                                          TRect<double>(70.0, 30.0, 730.0, 530.0)));
    constexpr double kType = 100.0;
    std::string const word = "Australia";
    CPath letters;
    for (Outline const& glyph : TextLine(input.type, word, kType, TPoint<double>(0.0, 0.0))) {
        AppendSubpaths(letters, glyph.path);
    }
    TRect<double> const box = DrawnBounds(outline);
    TRect<double> const room(TPoint<double>(box.MidPt().h - 12.0, box.MidPt().v - 8.0), 262.0,
                             110.0);
    letters = Transformed(letters, Fitting(DrawnBounds(letters), room));

    Canvas canvas(input.labels);
    Tgpc_polygon const land = AreaOf(outline);
    Tgpc_polygon const cutter = AreaOf(letters);
    Tgpc_polygon const left = Combined(kPolyDifference, land, cutter);
    Tgpc_polygon const taken = Combined(kPolyIntersection, land, cutter);
    CPath const leftPath = PathOf(left);
    canvas.Fill(leftPath, palette::green, 0.45);
    canvas.Stroke(leftPath, palette::green, 1.8);

    AreaFigures const landFigures = FiguresOf(Untangled(land));
    AreaFigures const leftFigures = FiguresOf(left);
    AreaFigures const takenFigures = FiguresOf(taken);
    plate.figures = {
        {"The country", Summary(landFigures)},
        {"The letters inside it", Summary(takenFigures)},
        {"What is left", Summary(leftFigures)},
        {"What is left and the letters together, less the country",
         Small(std::abs(leftFigures.area + takenFigures.area - landFigures.area))},
        {"Vertices of what is left", std::to_string(leftFigures.vertices)},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawJoined(GalleryInput const& input) {
    Plate plate{"joined",
                "Neighbouring countries joined",
                "The countries of South America are united one after another: the borders "
                "between them vanish, the coasts stay.",
                {},
                {}};

    // No two neighbours have the same colour.
    struct Country {
        std::string name;
        Colour colour;
    };
    std::vector<Country> const list{
        {"Argentina", palette::blue}, {"Bolivia", palette::vermilion}, {"Brazil", palette::green},
        {"Chile", palette::amber},    {"Colombia", palette::blue},     {"Ecuador", palette::amber},
        {"Guyana", palette::amber},   {"Paraguay", palette::sky},      {"Peru", palette::sky},
        {"Suriname", palette::blue},  {"Uruguay", palette::amber},     {"Venezuela", palette::sky}};
    CPath all;
    std::vector<CPath> countries;
    for (Country const& country : list) {
        countries.push_back(Mainland(CountryPath(input, country.name)));
        AppendSubpaths(all, countries.back());
    }
    CMatrix3x3 const fit =
        MapFitting(DrawnBounds(all), all, TRect<double>(30.0, 20.0, 390.0, 505.0));
    CMatrix3x3 const aside = CMatrix3x3().Translate(380.0, 0.0);

    Canvas canvas(input.labels);
    Tgpc_polygon joined;
    double sum = 0.0;
    double lengths = 0.0;
    std::size_t vertices = 0;
    for (std::size_t i = 0; i < countries.size(); ++i) {
        CPath const path = Transformed(countries[i], fit);
        Tgpc_polygon const area = AreaOf(path);
        AreaFigures const figures = FiguresOf(Untangled(area));
        sum += figures.area;
        vertices += figures.vertices;
        lengths += trammel::ArcLength(path, 0.0);
        joined = Combined(kPolyUnion, joined, area);
        canvas.Fill(path, list[i].colour, 0.4);
        canvas.Stroke(path, palette::ink, 1.4);
    }
    CPath const outline = PathOf(joined);
    canvas.Fill(Transformed(outline, aside), palette::sky, 0.4);
    canvas.Stroke(Transformed(outline, aside), palette::blue, 2.0);
    canvas.Label(std::to_string(list.size()) + " countries", TPoint<double>(210.0, 530.0));
    canvas.Label("their union", TPoint<double>(590.0, 530.0));

    AreaFigures const figures = FiguresOf(joined);
    plate.figures = {
        {"Countries",
         "areas together " + Rounded(sum, 3) + "; " + std::to_string(vertices) + " vertices"},
        {"Union", Summary(figures) + "; " + std::to_string(figures.vertices) + " vertices"},
        {"The areas together, less the union's", Small(std::abs(sum - figures.area))},
        {"Common borders, half of the length that is gone",
         Rounded(0.5 * (lengths - trammel::ArcLength(outline, 0.0)), 3)},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

} // namespace tool
