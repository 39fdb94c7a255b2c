// SPDX-License-Identifier: MIT

// The plates about quadratic curves, cached drawing paths and rotated rectangles.

#include "Combine.h"
#include "Error.h"
#include "Gallery.h"
#include "GalleryCanvas.h"
#include "Numbers.h"
#include "Outlines.h"
#include "OwnedPolygon.h"
#include "SvgShapes.h"

#include <trammel/AccurateCurve.h>
#include <trammel/CBSpline.h>
#include <trammel/CBezier.h>
#include <trammel/CGPathBuilder.h>
#include <trammel/CPathActions.h>
#include <trammel/CairoSink.h>
#include <trammel/UFPoly.h>
#include <trammel/UTrigonometry.h>

#include <cairo.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace tool {
namespace {

/// Collects the curves of an outline.
class CurveCollector : public CPathActions {
public:
    std::vector<CBezier> curves;

    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        curves.emplace_back(GetCurrentPt(), c1, c2, e);
    }
};

/// Draws both ends of the curves, and their control points with the lines that lead to them.
void DrawControls(Canvas& canvas, std::vector<std::vector<TPoint<double>>> const& arms,
                  std::vector<TPoint<double>> const& ends,
                  std::vector<TPoint<double>> const& controls) {
    for (std::vector<TPoint<double>> const& arm : arms) {
        canvas.Stroke(PolylinePath(arm, false), palette::grey, 1.4);
    }
    for (TPoint<double> const& p : controls) {
        canvas.Ring(p, 4.0, palette::vermilion, 2.0);
    }
    for (TPoint<double> const& p : ends) {
        canvas.Dot(p, 4.5, palette::blue);
    }
}

struct SurfaceCloser {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextCloser {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};

/// Returns the area of a drawing path as Cairo fills it: the sum of the covered parts of all
/// pixels.
double FilledArea(CGPathRef path) {
    constexpr int kWidth = static_cast<int>(Canvas::kWidth);
    constexpr int kHeight = static_cast<int>(Canvas::kHeight);
    std::unique_ptr<cairo_surface_t, SurfaceCloser> const surface(
        cairo_image_surface_create(CAIRO_FORMAT_A8, kWidth, kHeight));
    {
        std::unique_ptr<cairo_t, ContextCloser> const context(cairo_create(surface.get()));
        cairo_set_antialias(context.get(), CAIRO_ANTIALIAS_BEST);
        trammel::DrawPath(context.get(), path);
        cairo_fill(context.get());
        if (cairo_status(context.get()) != CAIRO_STATUS_SUCCESS) {
            throw Error("", "", cairo_status_to_string(cairo_status(context.get())));
        }
    }
    cairo_surface_flush(surface.get());
    unsigned char const* const data = cairo_image_surface_get_data(surface.get());
    int const stride = cairo_image_surface_get_stride(surface.get());
    double sum = 0.0;
    for (int v = 0; v < kHeight; ++v) {
        for (int h = 0; h < kWidth; ++h) {
            sum += data[v * stride + h] / 255.0;
        }
    }
    return sum;
}

/// Makes an outline of a drawing path: the function and the data for CGPathApply.
class PathCopy {
public:
    static CPath Of(CGPathRef path) {
        PathCopy copy;
        CGPathApply(path, &copy, Apply);
        return copy.mPath;
    }

private:
    static void Apply(void* copy, CGPathElement const* element) {
        CPath& path = static_cast<PathCopy*>(copy)->mPath;
        CGPoint const* const p = element->points;
        switch (element->type) {
        case kCGPathElementMoveToPoint:
            path.MoveTo(p[0]);
            break;
        case kCGPathElementAddLineToPoint:
            path.LineTo(p[0]);
            break;
        case kCGPathElementAddQuadCurveToPoint:
        case kCGPathElementAddCurveToPoint:
            break; // a polygon's path has only lines
        case kCGPathElementCloseSubpath:
            path.ClosePath();
            break;
        }
    }

    CPath mPath;
};

/// The number of times that a path was built.
int builds = 0;

CGPath* BuildAndCount(CFPolygonRef polygon) {
    ++builds;
    return trammel::BuildClosedPath(polygon);
}

} // namespace

Plate DrawQuadratics(GalleryInput const& input) {
    constexpr double kError = 0.2;
    Plate plate{"quadratics",
                "Quadratics beside cubics",
                "The same letter of two fonts: curves with one control point each, and curves "
                "with two. Dots are ends, rings control points.",
                {},
                {}};

    Canvas canvas(input.labels);
    constexpr char kLetter = 'S';
    Glyph const left = input.labels.ReadGlyph(input.labels.IndexOf(kLetter));
    CMatrix3x3 const leftFit =
        Fitting(DrawnBounds(left.path), TRect<double>(50.0, 45.0, 360.0, 490.0));
    CPath const leftPath = Transformed(left.path, leftFit);
    CPath const rightPath = LetterIn(input, kLetter, TRect<double>(440.0, 45.0, 750.0, 490.0));

    std::vector<std::vector<TPoint<double>>> arms;
    std::vector<TPoint<double>> ends;
    std::vector<TPoint<double>> controls;
    std::size_t rawPoints = 0;
    std::size_t raisedPoints = 0;
    double rawLength = 0.0;
    double raisedLength = 0.0;
    for (CBSpline const& inFont : left.quadratics) {
        CBSpline curve(inFont);
        for (TPoint<double>* p : {&curve.P0, &curve.P1, &curve.P2}) {
            p->Transform(leftFit);
        }
        arms.push_back({curve.P0, curve.P1, curve.P2});
        ends.push_back(curve.P0);
        ends.push_back(curve.P2);
        controls.push_back(curve.P1);

        CBezier const raised(curve.P0, TPt(curve.P0, curve.P1, 2.0 / 3.0),
                             TPt(curve.P2, curve.P1, 2.0 / 3.0), curve.P2);
        TPolygon<double> rawPolygon;
        trammel::FlattenWithin(curve, kError, rawPolygon);
        TPolygon<double> raisedPolygon;
        trammel::FlattenWithin(raised, kError, raisedPolygon);
        rawPoints += static_cast<std::size_t>(rawPolygon.LastIndex());
        raisedPoints += static_cast<std::size_t>(raisedPolygon.LastIndex());
        rawLength += rawPolygon.Length();
        raisedLength += trammel::ArcLength(raised, 0.0);
    }
    canvas.Fill(leftPath, palette::sky, 0.2);
    canvas.Stroke(leftPath, palette::blue, 2.5);
    DrawControls(canvas, arms, ends, controls);

    CurveCollector cubics;
    rightPath.ForAll(cubics);
    arms.clear();
    ends.clear();
    controls.clear();
    std::size_t cubicPoints = 0;
    for (CBezier const& curve : cubics.curves) {
        arms.push_back({curve.P0, curve.P1});
        arms.push_back({curve.P2, curve.P3});
        ends.push_back(curve.P0);
        ends.push_back(curve.P3);
        controls.push_back(curve.P1);
        controls.push_back(curve.P2);
        TPolygon<double> polygon;
        trammel::FlattenWithin(curve, kError, polygon);
        cubicPoints += static_cast<std::size_t>(polygon.LastIndex());
    }
    canvas.Fill(rightPath, palette::sky, 0.2);
    canvas.Stroke(rightPath, palette::blue, 2.5);
    DrawControls(canvas, arms, ends, controls);
    canvas.Label(std::to_string(left.quadratics.size()) + " quadratics",
                 TPoint<double>(205.0, 525.0));
    canvas.Label(std::to_string(cubics.curves.size()) + " cubics", TPoint<double>(595.0, 525.0));

    std::string const tolerance = " at tolerance " + Figure(kError);
    plate.figures = {
        {"Quadratics, flattened as they are" + tolerance, std::to_string(rawPoints) + " lines"},
        {"The same raised to cubics" + tolerance, std::to_string(raisedPoints) + " lines"},
        {"Length of the first, and of the raised curves themselves",
         Rounded(rawLength, 3) + " and " + Rounded(raisedLength, 3)},
        {"Cubics of the other font" + tolerance, std::to_string(cubicPoints) + " lines"},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawCachedPath(GalleryInput const& input) {
    constexpr int kTimes = 12;
    Plate plate{"cached-path",
                "A polygon that keeps its drawing path",
                "A polygon is drawn from the path that it keeps: built when first asked for, "
                "and built anew only after the polygon has been changed.",
                {},
                {}};

    CPath const letter = LetterIn(input, 'C', TRect<double>(-145.0, -172.0, 145.0, 172.0));
    std::vector<TPolygon<double>> const polygons = Flatten(letter, 1.0);
    auto const longest =
        std::max_element(polygons.begin(), polygons.end(), [](auto const& a, auto const& b) {
            return a.LastIndex() < b.LastIndex();
        });
    OwnedPolygon const owned(*longest);
    CFPolygonRef polygon = owned.Ref();

    Canvas canvas(input.labels);
    int const buildsBefore = builds;
    CFPolygonRef::SetBuilPathProc(BuildAndCount);
    OffsetFPoly(polygon, TPoint<double>(205.0, 250.0));
    CGPathRef path = nullptr;
    for (int i = 0; i < kTimes; ++i) {
        path = polygon.GetPath();
    }
    int const buildsFirst = builds - buildsBefore;
    double const filledFirst = path != nullptr ? FilledArea(path) : 0.0;
    double const areaFirst = EnclosedArea(PointsOf(polygon));
    CPath const first = PathCopy::Of(path);

    RotateFPoly(polygon, DegToRad(-35.0), polygon.Bounds().MidPt());
    OffsetFPoly(polygon, TPoint<double>(370.0, 0.0));
    for (int i = 0; i < kTimes; ++i) {
        path = polygon.GetPath();
    }
    int const buildsSecond = builds - buildsBefore - buildsFirst;
    double const filledSecond = path != nullptr ? FilledArea(path) : 0.0;
    double const areaSecond = EnclosedArea(PointsOf(polygon));
    CPath const second = PathCopy::Of(path);
    CFPolygonRef::SetBuilPathProc(nullptr);

    for (CPath const* shape : {&first, &second}) {
        bool const changed = shape == &second;
        canvas.Fill(*shape, changed ? palette::amber : palette::sky, 0.3);
        canvas.Stroke(*shape, changed ? palette::vermilion : palette::blue, 2.5);
        std::vector<TPoint<double>> points;
        for (TPoint<double> const& p : shape->mPts) {
            points.push_back(p);
        }
        canvas.Dots(points, 4.0, changed ? palette::vermilion : palette::blue);
    }
    canvas.Label("asked for " + std::to_string(kTimes) + " times, built " +
                     std::to_string(buildsFirst) + (buildsFirst == 1 ? " time" : " times"),
                 TPoint<double>(205.0, 500.0));
    canvas.Label("changed, and built again " + std::to_string(buildsSecond) +
                     (buildsSecond == 1 ? " time" : " times"),
                 TPoint<double>(590.0, 500.0));
    plate.figures = {
        {"Points of the polygon", std::to_string(polygon.LastIndex() + 1)},
        {"Asked for and built", std::to_string(2 * kTimes) + " and " +
                                    std::to_string(buildsFirst + buildsSecond) + " times"},
        {"Area of the polygon, and of the path as Cairo fills it",
         Rounded(areaFirst, 2) + " and " + Rounded(filledFirst, 2)},
        {"The same after the change", Rounded(areaSecond, 2) + " and " + Rounded(filledSecond, 2)},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

Plate DrawCornerTest(GalleryInput const& input) {
    constexpr double kDegrees = 27.0;
    constexpr double kHalfWidth = 21.0;
    constexpr double kHalfHeight = 13.0;
    Plate plate{"corner-test",
                "Boxes tested against a turned rectangle",
                "A box counts as inside when all its corners are, and as touched when one of "
                "them is; its edges are not looked at.",
                {},
                {}};

    TRect<double> const rectangle(TPoint<double>(400.0, 255.0), 265.0, 130.0);
    OwnedPolygon const turned(RotRectToPoly(rectangle, DegToRad(kDegrees)));
    Canvas canvas(input.labels);
    std::array<std::size_t, 3> counts{}; // of places with none, some and all corners inside
    std::array<Colour, 3> const colours{palette::ghost, palette::amber, palette::green};
    for (int row = 0; row < 12; ++row) {
        for (int column = 0; column < 14; ++column) {
            TPoint<double> const centre(49.0 + 54.0 * column, 38.0 + 39.5 * row);
            TRect<double> const box(centre, kHalfWidth, kHalfHeight);
            std::size_t const kind = FRectInFPoly(turned.Ref(), box, true)    ? 2
                                     : FRectInFPoly(turned.Ref(), box, false) ? 1
                                                                              : 0;
            ++counts[kind];
            CPath const path = PolylinePath(
                {box.TopLeft(), box.TopRight(), box.BottomRight(), box.BottomLeft()}, true);
            canvas.Fill(path, colours[kind], kind == 0 ? 0.2 : 0.4);
            canvas.Stroke(path, colours[kind], 1.8);
        }
    }
    std::vector<TPoint<double>> corners;
    for (long i = 0; i < LastFPolyIndex(turned.Ref()); ++i) {
        corners.push_back(turned.Ref().PolyPoints(i));
    }
    CPath const outline = PolylinePath(corners, true);
    canvas.Stroke(outline, palette::blue, 3.0);
    std::array<std::string, 3> const names{"no corner inside", "some corners inside",
                                           "all corners inside"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        double const h = 80.0 + 240.0 * static_cast<double>(i);
        TRect<double> const box(TPoint<double>(h, 528.0), 14.0, 9.0);
        CPath const path = PolylinePath(
            {box.TopLeft(), box.TopRight(), box.BottomRight(), box.BottomLeft()}, true);
        canvas.Fill(path, colours[i], i == 0 ? 0.2 : 0.4);
        canvas.Stroke(path, colours[i], 1.8);
        canvas.Label(names[i], TPoint<double>(h + 26.0, 528.0), Align::left, palette::ink, 18.0);
    }
    TRect<double> const bounds = turned.Ref().Bounds();
    plate.figures = {
        {"Boxes with no, some and all corners inside", std::to_string(counts[0]) + ", " +
                                                           std::to_string(counts[1]) + " and " +
                                                           std::to_string(counts[2])},
        {"The rectangle, turned by " + Figure(kDegrees) + "°",
         Rounded(rectangle.Width(), 1) + " × " + Rounded(rectangle.Height(), 1)},
        {"Its bounds when turned",
         Rounded(bounds.Width(), 3) + " × " + Rounded(bounds.Height(), 3)},
    };
    plate.picture = canvas.TakePicture();
    return plate;
}

} // namespace tool
