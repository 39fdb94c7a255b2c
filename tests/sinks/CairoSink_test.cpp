// SPDX-License-Identifier: MIT

#include "CairoSink.h"

#include "CGPathBuilder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace {

typedef TPoint<double> Pt;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// An image of coverages, 0 to 255, without antialiasing unless asked for.
class Canvas {
public:
    explicit Canvas(int size, cairo_antialias_t antialias = CAIRO_ANTIALIAS_NONE)
        : mSurface(cairo_image_surface_create(CAIRO_FORMAT_A8, size, size)),
          mCairo(cairo_create(mSurface)) {
        cairo_set_antialias(mCairo, antialias);
    }
    ~Canvas() {
        cairo_destroy(mCairo);
        cairo_surface_destroy(mSurface);
    }
    Canvas(Canvas const&) = delete;
    Canvas& operator=(Canvas const&) = delete;

    cairo_t* Cairo() { return mCairo; }

    /// Returns the pixel whose left upper corner is (h, v).
    int At(int h, int v) {
        cairo_surface_flush(mSurface);
        unsigned char const* const data = cairo_image_surface_get_data(mSurface);
        return data[v * cairo_image_surface_get_stride(mSurface) + h];
    }

    /// Returns the rows of the image, '#' for a covered pixel.
    std::vector<std::string> Rows() {
        int const size = cairo_image_surface_get_width(mSurface);
        std::vector<std::string> rows;
        for (int v = 0; v < size; ++v) {
            rows.emplace_back();
            for (int h = 0; h < size; ++h) {
                rows.back() += At(h, v) != 0 ? '#' : '.';
            }
        }
        return rows;
    }

    double Coverage() {
        int const size = cairo_image_surface_get_width(mSurface);
        double sum = 0.0;
        for (int v = 0; v < size; ++v) {
            for (int h = 0; h < size; ++h) {
                sum += At(h, v) / 255.0;
            }
        }
        return sum;
    }

    /// Returns the elements of the context's current path: "M 1,2 L 3,4 Z M 1,2".
    std::string Elements() {
        std::string text;
        cairo_path_t* const path = cairo_copy_path(mCairo);
        for (int i = 0; i < path->num_data; i += path->data[i].header.length) {
            cairo_path_data_t const* const data = &path->data[i];
            text += text.empty() ? "" : " ";
            text += "MLCZ"[data->header.type];
            for (int k = 1; k < data->header.length; ++k) {
                char point[64];
                std::snprintf(point, sizeof point, " %g,%g", data[k].point.x, data[k].point.y);
                text += point;
            }
        }
        cairo_path_destroy(path);
        return text;
    }

private:
    cairo_surface_t* mSurface;
    cairo_t* mCairo;
};

TEST(CairoSink, FillsAKnownShape) {
    CPath path;
    path.MoveTo(Pt(1, 1));
    path.LineTo(Pt(7, 1));
    path.LineTo(Pt(7, 5));
    path.LineTo(Pt(1, 5));
    path.ClosePath();
    path.MoveTo(Pt(3, 2)); // a hole: the other way round
    path.LineTo(Pt(3, 4));
    path.LineTo(Pt(5, 4));
    path.LineTo(Pt(5, 2));
    path.ClosePath();
    Canvas canvas(8);
    trammel::DrawPath(canvas.Cairo(), path);
    cairo_fill(canvas.Cairo());
    EXPECT_EQ(canvas.Rows(), (std::vector<std::string>{
                                 "........",
                                 ".######.",
                                 ".##..##.",
                                 ".##..##.",
                                 ".######.",
                                 "........",
                                 "........",
                                 "........",
                             }));
}

TEST(CairoSink, StrokesALineAndAClosingSegment) {
    CPath open;
    open.MoveTo(Pt(2, 2));
    open.LineTo(Pt(6, 2));
    open.LineTo(Pt(6, 6));
    for (bool const closed : {false, true}) {
        CPath path = open;
        if (closed) {
            path.ClosePath();
        }
        Canvas canvas(8);
        trammel::DrawPath(canvas.Cairo(), path);
        cairo_set_line_width(canvas.Cairo(), 1.0);
        cairo_stroke(canvas.Cairo());
        EXPECT_NE(canvas.At(4, 1) + canvas.At(4, 2), 0);
        EXPECT_NE(canvas.At(5, 4) + canvas.At(6, 4), 0);
        EXPECT_EQ(canvas.At(4, 4) != 0, closed) << "the diagonal";
        EXPECT_EQ(canvas.At(2, 6), 0);
    }
}

TEST(CairoSink, DrawsCurves) {
    CPath path;
    path.MoveTo(Pt(90, 50));
    path.Arc(Pt(50, 50), 40, 0.0, 2.0 * 3.141592653589793);
    path.ClosePath();
    Canvas canvas(100, CAIRO_ANTIALIAS_BEST);
    trammel::DrawPath(canvas.Cairo(), path);
    cairo_fill(canvas.Cairo());
    EXPECT_NEAR(canvas.Coverage(), 3.141592653589793 * 40 * 40, 10.0);
    EXPECT_EQ(canvas.At(50, 50), 255);
    EXPECT_EQ(canvas.At(12, 12), 0);
    EXPECT_EQ(canvas.At(50, 11), 255);
    EXPECT_EQ(canvas.At(50, 8), 0);
}

TEST(CairoSink, HandsOverElementByElement) {
    CPath path;
    path.MoveTo(Pt(1, 2));
    path.LineTo(Pt(3, 4));
    path.CurveTo(Pt(5, 6), Pt(7, 8), Pt(9, 10));
    path.ClosePath();
    path.MoveTo(Pt(11, 12));
    path.LineTo(Pt(13, 14));
    Canvas canvas(8);
    trammel::DrawPath(canvas.Cairo(), path);
    // Cairo itself begins a subpath after a close; the move replaces it.
    EXPECT_EQ(canvas.Elements(), "M 1,2 L 3,4 C 5,6 7,8 9,10 Z M 11,12 L 13,14");
}

TEST(CairoSink, EmptyPathAddsNothing) {
    Canvas canvas(8);
    trammel::DrawPath(canvas.Cairo(), CPath());
    EXPECT_EQ(canvas.Elements(), "");
    EXPECT_FALSE(cairo_has_current_point(canvas.Cairo()));
}

TEST(CairoSink, CurveWithoutMoveStartsWhereItIsMeasuredFrom) {
    {
        CPath path;
        path.CurveTo(Pt(1, 0), Pt(2, 0), Pt(3, 3));
        path.CurveTo(Pt(4, 4), Pt(5, 5), Pt(6, 6));
        Canvas canvas(8);
        cairo_move_to(canvas.Cairo(), 100, 100); // the caller's current point plays no part
        cairo_line_to(canvas.Cairo(), 101, 101);
        trammel::DrawPath(canvas.Cairo(), path);
        EXPECT_EQ(canvas.Elements(), "M 100,100 L 101,101 M 0,0 C 1,0 2,0 3,3 C 4,4 5,5 6,6");
    }
    {
        CPath path;
        path.MoveTo(Pt(1, 1));
        path.LineTo(Pt(5, 1));
        path.ClosePath();
        path.CurveTo(Pt(5, 2), Pt(5, 3), Pt(5, 4));
        Canvas canvas(8);
        trammel::DrawPath(canvas.Cairo(), path);
        EXPECT_EQ(canvas.Elements(), "M 1,1 L 5,1 Z M 5,1 C 5,2 5,3 5,4");
    }
}

TEST(CairoSink, LeavesOutWhatIsNotFiniteAndNothingElse) {
    struct Row {
        char const* name;
        std::string codes; // M L C Z
        std::vector<Pt> points;
        char const* elements;
    };
    // Of moves in a row Cairo keeps the last.
    Pt const bad(kNaN, 1);
    Pt const far(1, -kInfinity);
    for (Row const& row : {
             Row{"a move", "MLL", {bad, Pt(1, 1), Pt(2, 2)}, "M 1,1 L 2,2"},
             Row{"a line", "MLLL", {Pt(0, 0), far, Pt(2, 2), Pt(3, 3)}, "M 2,2 L 3,3"},
             Row{"a control point",
                 "MLCL",
                 {Pt(0, 0), Pt(1, 1), far, Pt(2, 2), Pt(3, 3), Pt(4, 4)},
                 "M 0,0 L 1,1 M 3,3 L 4,4"},
             Row{"a gap before the close",
                 "MLLLLZ",
                 {Pt(0, 0), Pt(1, 0), bad, Pt(2, 2), Pt(3, 3)},
                 "M 0,0 L 1,0 M 2,2 L 3,3 L 0,0"},
             Row{"the start", "MLLZ", {bad, Pt(1, 1), Pt(2, 2)}, "M 1,1 L 2,2"},
             Row{"another subpath before it",
                 "MLMLL",
                 {Pt(0, 0), Pt(1, 1), bad, Pt(5, 5), Pt(6, 6)},
                 "M 0,0 L 1,1 M 5,5 L 6,6"},
             Row{"everything", "MLCZ", {bad, bad, bad, bad, bad}, ""},
         }) {
        CPath path;
        for (char const c : row.codes) {
            path.AddCtl(static_cast<char>(std::strchr("MLCZ", c) - "MLCZ"));
        }
        for (Pt const& p : row.points) {
            path.AddPt(p);
        }
        Canvas canvas(8);
        trammel::DrawPath(canvas.Cairo(), path);
        EXPECT_EQ(canvas.Elements(), row.elements) << row.name;
        EXPECT_EQ(cairo_status(canvas.Cairo()), CAIRO_STATUS_SUCCESS) << row.name;
    }
}

TEST(CairoSink, ContextStillDrawsAfterNonFiniteAndHugePoints) {
    Canvas canvas(8);
    for (double const x : {kNaN, kInfinity, -kInfinity, 1e308, -1e308, 5e-324}) {
        CPath path;
        path.MoveTo(Pt(x, 1));
        path.LineTo(Pt(1, x));
        path.CurveTo(Pt(x, x), Pt(1, x), Pt(2, x));
        path.ClosePath();
        trammel::DrawPath(canvas.Cairo(), path);
        cairo_new_path(canvas.Cairo());
        EXPECT_EQ(cairo_status(canvas.Cairo()), CAIRO_STATUS_SUCCESS) << x;
    }
    CPath square;
    square.MoveTo(Pt(2, 2));
    square.LineTo(Pt(4, 2));
    square.LineTo(Pt(4, 4));
    square.LineTo(Pt(2, 4));
    square.ClosePath();
    trammel::DrawPath(canvas.Cairo(), square);
    cairo_fill(canvas.Cairo());
    EXPECT_EQ(canvas.Coverage(), 4.0);
}

TEST(CairoSink, SinkGoesOnFromPathToPath) {
    CPath first;
    first.MoveTo(Pt(1, 1));
    first.LineTo(Pt(2, 2));
    CPath second;
    second.CurveTo(Pt(3, 3), Pt(4, 4), Pt(5, 5));
    Canvas canvas(8);
    trammel::CairoSink sink(canvas.Cairo());
    first.ForAll(sink);
    second.ForAll(sink);
    EXPECT_EQ(canvas.Elements(), "M 1,1 L 2,2 C 3,3 4,4 5,5");
    cairo_new_path(canvas.Cairo());
    second.ForAll(sink);
    EXPECT_EQ(canvas.Elements(), "M 5,5 C 3,3 4,4 5,5");
}

// The drawing layer's path

/// A path that this object releases at its end.
class LayerPath {
public:
    LayerPath() : mPath(CGPathCreateMutable()) {}
    ~LayerPath() { CGPathRelease(mPath); }
    LayerPath(LayerPath const&) = delete;
    LayerPath& operator=(LayerPath const&) = delete;

    LayerPath& M(float x, float y) {
        CGPathMoveToPoint(mPath, nullptr, x, y);
        return *this;
    }
    LayerPath& L(float x, float y) {
        CGPathAddLineToPoint(mPath, nullptr, x, y);
        return *this;
    }
    LayerPath& C(float x1, float y1, float x2, float y2, float x, float y) {
        CGPathAddCurveToPoint(mPath, nullptr, x1, y1, x2, y2, x, y);
        return *this;
    }
    LayerPath& Z() {
        CGPathCloseSubpath(mPath);
        return *this;
    }
    CGPathRef Get() const { return mPath; }

    std::string Drawn() const {
        Canvas canvas(8);
        trammel::DrawPath(canvas.Cairo(), mPath);
        EXPECT_EQ(cairo_status(canvas.Cairo()), CAIRO_STATUS_SUCCESS);
        return canvas.Elements();
    }

private:
    CGPath* mPath;
};

TEST(CairoSinkOfLayerPaths, HandsOverElementByElement) {
    EXPECT_EQ(LayerPath().M(1, 2).L(3, 4).C(5, 6, 7, 8, 9, 10).Z().M(11, 12).L(13, 14).Drawn(),
              "M 1,2 L 3,4 C 5,6 7,8 9,10 Z M 11,12 L 13,14");
    EXPECT_EQ(LayerPath().M(1, 2).Drawn(), "M 1,2");
}

TEST(CairoSinkOfLayerPaths, WhatFollowsACloseStartsWhereTheSubpathDid) {
    EXPECT_EQ(LayerPath().M(1, 1).L(5, 1).L(5, 5).Z().L(2, 7).Drawn(),
              "M 1,1 L 5,1 L 5,5 Z M 1,1 L 2,7");
    EXPECT_EQ(LayerPath().M(1, 1).L(5, 1).Z().C(2, 2, 3, 3, 4, 4).Z().L(9, 9).Drawn(),
              "M 1,1 L 5,1 Z M 1,1 C 2,2 3,3 4,4 Z M 1,1 L 9,9");
}

TEST(CairoSinkOfLayerPaths, NullAndEmptyPathsAddNothing) {
    Canvas canvas(8);
    trammel::DrawPath(canvas.Cairo(), CGPathRef{nullptr});
    trammel::DrawPath(canvas.Cairo(), LayerPath().Get());
    EXPECT_EQ(canvas.Elements(), "");
    EXPECT_FALSE(cairo_has_current_point(canvas.Cairo()));
}

TEST(CairoSinkOfLayerPaths, NonFinitePointsLeaveGaps) {
    for (double const x : {kNaN, kInfinity, -kInfinity}) {
        float const bad = static_cast<float>(x);
        EXPECT_EQ(LayerPath().M(1, 1).L(2, 2).L(bad, 3).L(4, 4).L(5, 5).Z().Drawn(),
                  "M 1,1 L 2,2 M 4,4 L 5,5 L 1,1");
        EXPECT_EQ(LayerPath().M(bad, 1).L(2, 2).L(3, 3).Z().Drawn(), "M 2,2 L 3,3");
        EXPECT_EQ(LayerPath().M(1, 1).C(2, bad, 3, 3, 4, 4).L(5, 5).Drawn(), "M 4,4 L 5,5");
        EXPECT_EQ(LayerPath().M(bad, bad).Drawn(), "");
        EXPECT_EQ(LayerPath().M(1, 1).L(bad, 1).Z().L(6, 6).Drawn(), "M 1,1 L 6,6");
    }
}

TEST(CairoSinkOfLayerPaths, QuadraticsAreRaisedToCubics) {
    // No function adds this element, but a path of another make may show one.
    Canvas canvas(8);
    trammel_detail::CairoFeed feed(canvas.Cairo());
    CGPoint start = CGPointMake(3, 0);
    CGPoint curve[2] = {CGPointMake(6, 12), CGPointMake(9, 0)};
    CGPathElement const move = {kCGPathElementMoveToPoint, &start};
    CGPathElement const quadratic = {kCGPathElementAddQuadCurveToPoint, curve};
    trammel_detail::CairoFeed::Apply(&feed, &move);
    trammel_detail::CairoFeed::Apply(&feed, &quadratic);
    EXPECT_EQ(canvas.Elements(), "M 3,0 C 5,8 7,8 9,0");
}

TEST(CairoSinkOfLayerPaths, FillsThePathThatAPolygonCaches) {
    CFPolygonRef polygon;
    polygon.CFPolygonCreate(
        std::vector<Pt>{Pt(1, 1), Pt(6, 1), Pt(6, 5), Pt(4, 5), Pt(4, 3), Pt(1, 3)});
    polygon.SetClosed(true);
    CFPolygonRef::SetBuilPathProc(trammel::BuildPath);
    Canvas canvas(7);
    trammel::DrawPath(canvas.Cairo(), polygon.GetPath());
    cairo_fill(canvas.Cairo());
    CFPolygonRef::SetBuilPathProc(nullptr);
    polygon.Dispose();
    EXPECT_EQ(canvas.Rows(), (std::vector<std::string>{
                                 ".......",
                                 ".#####.",
                                 ".#####.",
                                 "....##.",
                                 "....##.",
                                 ".......",
                                 ".......",
                             }));
}

TEST(CairoSinkOfLayerPaths, StrokesTheClosingEdgeOfAClosedPolygonOnly) {
    for (bool const closed : {false, true}) {
        CFPolygonRef polygon(true);
        polygon.Append(Pt(2, 2)).Append(Pt(6, 2)).Append(Pt(6, 6)).SetClosed(closed);
        CGPath* const path = trammel::BuildPath(polygon);
        polygon.Dispose();
        Canvas canvas(8);
        trammel::DrawPath(canvas.Cairo(), path);
        CGPathRelease(path);
        cairo_set_line_width(canvas.Cairo(), 1.0);
        cairo_stroke(canvas.Cairo());
        EXPECT_NE(canvas.At(4, 1) + canvas.At(4, 2), 0);
        EXPECT_EQ(canvas.At(4, 4) != 0, closed) << "the diagonal";
    }
}

} // namespace
