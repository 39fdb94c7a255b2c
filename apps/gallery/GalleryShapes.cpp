// SPDX-License-Identifier: MIT

// The plates about transforms, circles and rectangles.

#include "Gallery.h"
#include "GalleryCanvas.h"
#include "Numbers.h"
#include "Outlines.h"
#include "OwnedPolygon.h"
#include "SvgShapes.h"

#include <trammel/CFPolygonRef.h>
#include <trammel/CMatrix3x3.h>
#include <trammel/UGeometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace tool {
namespace {

CPath BoxPath(TRect<double> const& r) {
    return PolylinePath({r.TopLeft(), r.TopRight(), r.BottomRight(), r.BottomLeft()}, true);
}

/// Returns the circle with the given bounding square.
CPath CirclePath(TRect<double> const& square) {
    return EllipsePath(square.MidPt(), 0.5 * square.Width(), 0.5 * square.Height());
}

/// Returns the distance of a point from the circle with the given bounding square.
double OffCircle(TRect<double> const& square, TPoint<double> const& p) {
    return std::abs(LineLength(square.MidPt(), p) - 0.5 * square.Width());
}

/// Returns a new handle polygon: the rectangle turned about its middle.
CFPolygonRef TurnedRectangle(TRect<double> const& r, double angle) {
    CFPolygonRef polygon;
    polygon.CFPolygonCreate(r, angle);
    return polygon;
}

} // namespace

Plate DrawTransforms(GalleryInput const& input) {
    constexpr double kPanelWidth = 250.0;
    constexpr double kPanelHeight = 265.0;
    Plate plate{"transforms",
                "One letter under six transforms",
                "Grey is the letter as it was; blue is the letter transformed, every point by "
                "one matrix.",
                {},
                {}};

    Canvas canvas(input.labels);
    CPath const letter = LetterIn(input, 'R', TRect<double>(-52.0, -52.0, 52.0, 52.0));
    TRect<double> const box = DrawnBounds(letter);
    TPoint<double> const corner = box.BottomLeft();
    TPoint<double> const axisTop(box.right + 6.0, box.top - 18.0);
    TPoint<double> const axisBottom(box.right - 6.0, box.bottom + 18.0);
    TRect<double> const target(box.left - 52.0, box.top + 30.0, box.right + 58.0, box.bottom + 8.0);

    struct Panel {
        std::string name;
        CMatrix3x3 matrix;
        TPoint<double> shift; ///< centres what is shown
    };
    TPoint<double> const none;
    std::array<Panel, 6> const panels{{
        {"moved", CMatrix3x3().Translate(58.0, -34.0), TPoint<double>(-29.0, 17.0)},
        {"turned by 40°", CMatrix3x3().Rotate(DegToRad(40.0), corner),
         TPoint<double>(-32.0, -34.0)},
        {"scaled 1.6 × 0.7", CMatrix3x3().Scale(1.6, 0.7, corner), TPoint<double>(-30.0, 0.0)},
        {"sheared by 30°",
         CMatrix3x3().Translate(-corner).Shear(DegToRad(-30.0), 0.0).Translate(corner),
         TPoint<double>(-28.0, 0.0)},
        {"mirrored", CMatrix3x3().Reflect(axisTop, axisBottom), TPoint<double>(-54.0, 0.0)},
        {"mapped, box to box", CMatrix3x3().Map(box, target), none},
    }};
    for (std::size_t i = 0; i < panels.size(); ++i) {
        Panel const& panel = panels[i];
        std::size_t const column = i % 3;
        std::size_t const row = i / 3;
        TPoint<double> const centre(25.0 + kPanelWidth * (static_cast<double>(column) + 0.5),
                                    10.0 + kPanelHeight * (static_cast<double>(row) + 0.46));
        CMatrix3x3 const place = CMatrix3x3().Translate(centre + panel.shift);
        CPath const before = Transformed(letter, place);
        CPath const after = Transformed(letter, Concat(panel.matrix, place));
        canvas.Fill(before, palette::ghost);
        canvas.Fill(after, palette::sky, 0.35);
        canvas.Stroke(after, palette::blue, 2.5);
        if (i == 0) {
            TPoint<double> from = corner;
            TPoint<double> to = corner;
            from.Transform(place);
            to.Transform(Concat(panel.matrix, place));
            canvas.Arrow(from, to, palette::vermilion, 2.5);
        } else if (i < 4) {
            TPoint<double> pivot = corner;
            canvas.Dot(pivot.Transform(place), 5.0, palette::vermilion);
        } else if (i == 4) {
            canvas.Dashes(Transformed(PolylinePath({axisTop, axisBottom}, false), place),
                          palette::vermilion, 2.5);
        } else {
            canvas.Dashes(Transformed(BoxPath(box), place), palette::grey, 2.0);
            canvas.Dashes(Transformed(BoxPath(target), place), palette::vermilion, 2.5);
        }
        canvas.Label(panel.name, TPoint<double>(centre.h, centre.v + 0.43 * kPanelHeight));
        plate.figures.push_back(
            {panel.name, "areas times " + Rounded(panel.matrix.Determinant(), 4)});
    }
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawCircles(GalleryInput const& input) {
    Plate plate{"circles",
                "Circles through three points",
                "One circle through a triangle's corners, another through the middles of its "
                "sides; the second also meets the feet of the heights and the middles of "
                "their upper parts. Three points in line give the circle on the outer two.",
                {},
                {}};

    Canvas canvas(input.labels);
    std::array<TPoint<double>, 3> const corners{
        TPoint<double>(165.0, 75.0), TPoint<double>(72.0, 400.0), TPoint<double>(490.0, 372.0)};
    TRect<double> outer;
    Pt3Circle(corners[0], corners[1], corners[2], outer);

    std::array<TPoint<double>, 3> middles;
    std::array<TPoint<double>, 3> feet;
    std::array<TPoint<double>, 3> upper;
    std::array<TLine<double>, 3> heights;
    for (std::size_t i = 0; i < 3; ++i) {
        TLine<double> const side(corners[(i + 1) % 3], corners[(i + 2) % 3]);
        middles[i] = side.MidPt();
        feet[i] = side.PerpendicularPt(corners[i]);
        heights[i] = TLine<double>(corners[i], feet[i]);
    }
    TPoint<double> crossing;
    heights[0].Intersects(heights[1], crossing);
    for (std::size_t i = 0; i < 3; ++i) {
        upper[i] = MidPt(corners[i], crossing);
    }
    TRect<double> inner;
    Pt3Circle(middles[0], middles[1], middles[2], inner);
    double worst = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        worst = std::max({worst, OffCircle(inner, feet[i]), OffCircle(inner, upper[i])});
    }

    canvas.Stroke(CirclePath(outer), palette::blue, 3.0);
    CPath const triangle = PolylinePath({corners.begin(), corners.end()}, true);
    canvas.Fill(triangle, palette::mist, 0.6);
    for (TLine<double> const& height : heights) {
        canvas.Dashes(PolylinePath({height.mStart, height.mEnd}, false), palette::grey, 1.8);
    }
    canvas.Stroke(triangle, palette::ink, 2.5);
    canvas.Stroke(CirclePath(inner), palette::vermilion, 3.0);
    for (std::size_t i = 0; i < 3; ++i) {
        canvas.Dot(corners[i], 7.0, palette::blue);
        canvas.Dot(middles[i], 6.0, palette::vermilion);
        canvas.Ring(feet[i], 5.0, palette::vermilion, 2.5);
        canvas.Ring(upper[i], 5.0, palette::vermilion, 2.5);
    }
    canvas.Dot(crossing, 4.0, palette::grey);

    std::array<TPoint<double>, 3> const inLine{
        TPoint<double>(585.0, 442.0), TPoint<double>(645.0, 402.0), TPoint<double>(735.0, 342.0)};
    TRect<double> onDiameter;
    Pt3Circle(inLine[0], inLine[1], inLine[2], onDiameter);
    canvas.Segment(inLine[0], inLine[2], palette::grey, 1.8);
    canvas.Stroke(CirclePath(onDiameter), palette::green, 3.0);

    std::array<TPoint<double>, 3> const arc{
        TPoint<double>(588.0, 190.0), TPoint<double>(612.0, 92.0), TPoint<double>(735.0, 110.0)};
    TRect<double> picked;
    Pt3Circle(arc[0], arc[1], arc[2], picked);
    canvas.Stroke(CirclePath(picked), palette::amber, 3.0);
    for (std::size_t i = 0; i < 3; ++i) {
        canvas.Dot(inLine[i], 6.0, palette::green);
        canvas.Dot(arc[i], 6.0, palette::ink);
    }
    canvas.Label("three points", TPoint<double>(picked.MidPt().h, 264.0));
    canvas.Label("three in line", TPoint<double>(onDiameter.MidPt().h, 508.0));

    plate.figures = {
        {"Radius of the circle through the corners", Rounded(0.5 * outer.Width(), 3)},
        {"Radius of the circle through the middles", Rounded(0.5 * inner.Width(), 3)},
        {"The first radius divided by the second", Rounded(outer.Width() / inner.Width(), 9)},
        {"Feet and middles of the heights, off the second circle by at most", Small(worst)},
        {"Three in line: diameter, and distance of the outer two",
         Rounded(onDiameter.Width(), 3) + " and " + Rounded(LineLength(inLine[0], inLine[2]), 3)},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawPolygons(GalleryInput const& input) {
    constexpr double kStep = 17.0;
    Plate plate{"polygons",
                "A rectangle turned, then mapped",
                "A polygon is built from a rectangle, built again with an angle, and mapped "
                "from its bounds onto another box; dots and corners tell what it contains.",
                {},
                {}};

    struct Panel {
        std::string name;
        double degrees;
        bool mapped;
        double centre;
    };
    std::array<Panel, 3> const panels{{{"as built", 0.0, false, 140.0},
                                       {"turned by 30°", 30.0, false, 400.0},
                                       {"turned and mapped", 30.0, true, 660.0}}};
    Canvas canvas(input.labels);
    for (Panel const& panel : panels) {
        TPoint<double> const centre(panel.centre, 245.0);
        TRect<double> const box(centre, 85.0, 60.0);
        OwnedPolygon const owned(TurnedRectangle(box, DegToRad(panel.degrees)));
        CFPolygonRef polygon = owned.Ref();
        TRect<double> const from = polygon.Bounds();
        TRect<double> const to(centre, 62.0, 185.0);
        if (panel.mapped) {
            canvas.Dashes(BoxPath(from), palette::ghost, 2.0);
            polygon.Map(from, to);
            canvas.Dashes(BoxPath(to), palette::green, 2.5);
        }
        CPath const outline = PolylinePath(PointsOf(polygon), true);
        canvas.Fill(outline, palette::sky, 0.18);

        std::vector<TPoint<double>> insideDots;
        std::vector<TPoint<double>> outsideDots;
        for (int h = -6; h <= 6; ++h) {
            for (int v = -12; v <= 12; ++v) {
                TPoint<double> const p = centre + TPoint<double>(kStep * h, kStep * v);
                (polygon.Contains(p) ? insideDots : outsideDots).push_back(p);
            }
        }
        canvas.Dots(outsideDots, 1.8, palette::ghost);
        canvas.Dots(insideDots, 3.2, palette::blue);
        canvas.Stroke(outline, palette::blue, 2.5);

        std::size_t cornersInside = 0;
        for (long i = 0; i < 4; ++i) {
            TPoint<double> const corner = polygon.PolyPoints(i);
            bool const in = polygon.Contains(corner);
            cornersInside += in ? 1 : 0;
            if (in) {
                canvas.Dot(corner, 7.0, palette::vermilion);
            } else {
                canvas.Ring(corner, 6.0, palette::vermilion, 2.5);
            }
        }
        canvas.Label(panel.name, TPoint<double>(centre.h, 495.0));
        plate.figures.push_back(
            {panel.name, std::to_string(insideDots.size()) + " of " +
                             std::to_string(insideDots.size() + outsideDots.size()) + " dots and " +
                             std::to_string(cornersInside) + " of 4 corners inside; bounds " +
                             Rounded(polygon.Bounds().Width(), 2) + " × " +
                             Rounded(polygon.Bounds().Height(), 2)});
    }
    canvas.Dot(TPoint<double>(255.0, 532.0), 7.0, palette::vermilion);
    canvas.Label("corner inside", TPoint<double>(270.0, 532.0), Align::left, palette::ink, 17.0);
    canvas.Ring(TPoint<double>(415.0, 532.0), 6.0, palette::vermilion, 2.5);
    canvas.Label("corner outside", TPoint<double>(430.0, 532.0), Align::left, palette::ink, 17.0);
    plate.picture = canvas.TakePicture();
    return plate;
}

} // namespace tool
