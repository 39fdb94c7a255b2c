// SPDX-License-Identifier: MIT

// Measured outlines of real fonts and icons, judged by quadrature in long double and by the search
// in every single segment.
#include "OutlineMeasure.h"

#include "AccurateCurve.h"
#include "OutlineTruth.h"
#include "SvgPath.h"

#include <ft2build.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace {

using namespace trammel_test;
using trammel::OutlineMeasure;

typedef TPoint<double> Pt;

/// Turns a glyph into a path.
struct GlyphPath {
    CPath path;

    static Pt At(FT_Vector const* p) {
        return Pt(static_cast<double>(p->x) / 16, static_cast<double>(p->y) / -16);
    }
    static CPath& PathOf(void* user) { return static_cast<GlyphPath*>(user)->path; }
    static int MoveTo(FT_Vector const* to, void* user) {
        PathOf(user).ClosePath().MoveTo(At(to));
        return 0;
    }
    static int LineTo(FT_Vector const* to, void* user) {
        PathOf(user).LineTo(At(to));
        return 0;
    }
    static int ConicTo(FT_Vector const* control, FT_Vector const* to, void* user) {
        Pt const c = At(control) * 2.0;
        PathOf(user).CurveTo((PathOf(user).CurrentPoint() + c) / 3.0, (At(to) + c) / 3.0, At(to));
        return 0;
    }
    static int CubicTo(FT_Vector const* c1, FT_Vector const* c2, FT_Vector const* to, void* user) {
        PathOf(user).CurveTo(At(c1), At(c2), At(to));
        return 0;
    }
};

std::vector<CPath> GlyphsOf(char const* font, FT_UInt count) {
    std::vector<CPath> paths;
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    EXPECT_EQ(FT_Init_FreeType(&library), 0);
    EXPECT_EQ(FT_New_Face(library, font, 0, &face), 0);
    FT_Outline_Funcs const functions = {
        &GlyphPath::MoveTo, &GlyphPath::LineTo, &GlyphPath::ConicTo, &GlyphPath::CubicTo, 0, 0};
    for (FT_UInt i = 0; i < count; ++i) {
        GlyphPath glyph;
        EXPECT_EQ(FT_Load_Glyph(face, i * 7, FT_LOAD_NO_SCALE), 0);
        EXPECT_EQ(FT_Outline_Decompose(&face->glyph->outline, &functions, &glyph), 0);
        glyph.path.ClosePath();
        if (!glyph.path.mPts.empty()) {
            paths.push_back(glyph.path);
        }
    }
    FT_Done_Face(face);
    FT_Done_FreeType(library);
    return paths;
}

/// The path texts of a folder's drawings.
std::vector<CPath> IconsOf(char const* folder, std::size_t most) {
    std::vector<std::filesystem::path> files;
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    std::vector<CPath> paths;
    for (auto const& file : files) {
        std::ifstream stream(file);
        std::string const text{std::istreambuf_iterator<char>(stream),
                               std::istreambuf_iterator<char>()};
        for (std::size_t at = text.find(" d=\""); at != std::string::npos && paths.size() < most;
             at = text.find(" d=\"", at + 1)) {
            std::size_t const begin = at + 4;
            auto const result =
                trammel::ReadSvgPath(text.substr(begin, text.find('"', begin) - begin));
            if (!result.error && !result.path.mPts.empty()) {
                paths.push_back(result.path);
            }
        }
    }
    return paths;
}

void ExpectRight(std::vector<CPath> const& paths, double extent) {
    Random random(21);
    EXPECT_GT(paths.size(), 50U);
    for (CPath const& path : paths) {
        OutlineMeasure const measure(path);
        Truth const truth(path);
        Wide bound = std::ldexp(truth.total, -52);
        for (Truth::Segment const& s : truth.segments) {
            bound += std::ldexp(s.polygon, -46);
        }
        ASSERT_LE(Off(measure.Length(), truth.total), bound) << trammel::WriteSvgPath(path);
        for (int k = 0; k <= 10; ++k) {
            ExpectAtLength(truth, measure.At(k / 10.0), k / 10.0 * measure.Length());
        }
        for (int k = 0; k < 5; ++k) {
            Pt const p = random.Point(extent);
            double least = kInf;
            for (Truth::Segment const& s : truth.segments) {
                least = std::min(least, trammel::NearestPoint(s.curve, p, 0).distance);
            }
            OutlineMeasure::Nearest const nearest = measure.FindNearest(p);
            EXPECT_NEAR(nearest.distance, least, 8 * extent * 0x1p-44);
            if (nearest.parameter == 0.0) {
                continue; // perhaps behind a gap, before which AtLength() finds the end
            }
            EXPECT_LE(Length(Widened(measure.PtAtLength(nearest.length)) - Widened(nearest.point)),
                      std::ldexp(truth.total, -41) + Widened(8 * extent * 0x1p-50));
        }
        CPath piece;
        measure.GetTRange(0, 1, piece);
        EXPECT_NEAR(OutlineMeasure(piece).Length(), measure.Length(), 1e-12 * measure.Length());
    }
}

TEST(OutlineMeasure, IsRightOnTheGlyphsOfFonts) {
    for (char const* const font :
         {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",                  // fonts-dejavu-core
          "/usr/share/fonts/opentype/ebgaramond/EBGaramond12-Regular.otf"}) { // fonts-ebgaramond
        if (!std::ifstream(font)) {
            GTEST_SKIP() << "there is no " << font << "; script/setup demo installs it";
        }
        ExpectRight(GlyphsOf(font, 150), 130);
    }
}

TEST(OutlineMeasure, IsRightOnIcons) {
    char const* const folder = "/usr/share/icons/breeze/apps/48"; // breeze-icon-theme
    if (!std::filesystem::is_directory(folder)) {
        GTEST_SKIP() << "there is no " << folder << "; script/setup demo installs it";
    }
    ExpectRight(IconsOf(folder, 400), 50);
}

} // namespace
