// SPDX-License-Identifier: MIT

// Draws glyphs of a font into a path of Cairo's and one of the library's. Cairo then judges which
// points are inside.
#ifndef TRAMMEL_CAIROGLYPHS_H
#define TRAMMEL_CAIROGLYPHS_H

#include "CPath.h"
#include "FillRule.h"
#include "TPoint.h"

#include <cairo.h>
#include <ft2build.h>
#include <gtest/gtest.h>

#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace trammel_test {

inline constexpr char const* kFont =
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"; // fonts-dejavu-core

/// The face of kFont, which has to be there.
class FontFace {
public:
    FontFace() {
        EXPECT_EQ(FT_Init_FreeType(&mLibrary), 0);
        EXPECT_EQ(FT_New_Face(mLibrary, kFont, 0, &mFace), 0);
    }
    FontFace(FontFace const&) = delete;
    FontFace& operator=(FontFace const&) = delete;
    ~FontFace() {
        FT_Done_Face(mFace);
        FT_Done_FreeType(mLibrary);
    }
    operator FT_Face() const { return mFace; } // NOLINT: it stands for the face

private:
    FT_Library mLibrary = nullptr;
    FT_Face mFace = nullptr;
};

/// Glyphs one after the other, from 2,048 units an em to 128.
class CairoGlyphs {
public:
    CairoGlyphs()
        : mSurface(cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1)),
          mCairo(cairo_create(mSurface)) {
        cairo_set_tolerance(mCairo, 0.001);
    }
    CairoGlyphs(FT_Face face, char32_t c) : CairoGlyphs() { Add(face, c); }
    CairoGlyphs(CairoGlyphs const&) = delete;
    CairoGlyphs& operator=(CairoGlyphs const&) = delete;
    ~CairoGlyphs() {
        cairo_destroy(mCairo);
        cairo_surface_destroy(mSurface);
    }

    void Add(FT_Face face, char32_t c) {
        FT_Outline_Funcs const functions = {&MoveTo, &LineTo, &ConicTo, &CubicTo, 0, 0};
        EXPECT_EQ(FT_Load_Char(face, c, FT_LOAD_NO_SCALE), 0);
        EXPECT_EQ(FT_Outline_Decompose(&face->glyph->outline, &functions, this), 0);
        mPath.ClosePath();
        cairo_close_path(mCairo);
        mOrigin += static_cast<double>(face->glyph->advance.x) * kScale;
    }
    CPath const& Outline() const { return mPath; }
    bool CairoContains(TPoint<double> const& p, trammel::FillRule rule) const {
        cairo_set_fill_rule(mCairo, rule == trammel::FillRule::kEvenOdd ? CAIRO_FILL_RULE_EVEN_ODD
                                                                        : CAIRO_FILL_RULE_WINDING);
        return cairo_in_fill(mCairo, p.h, p.v) != 0;
    }

private:
    typedef TPoint<double> Pt;

    static constexpr double kScale = 1.0 / 16;

    static CairoGlyphs& Of(void* user) { return *static_cast<CairoGlyphs*>(user); }
    Pt At(FT_Vector const* p) const {
        return Pt(mOrigin + static_cast<double>(p->x) * kScale,
                  -static_cast<double>(p->y) * kScale);
    }
    static int MoveTo(FT_Vector const* to, void* user) {
        CairoGlyphs& glyphs = Of(user);
        Pt const p = glyphs.At(to);
        glyphs.mPath.ClosePath().MoveTo(p);
        cairo_close_path(glyphs.mCairo);
        cairo_move_to(glyphs.mCairo, p.h, p.v);
        return 0;
    }
    static int LineTo(FT_Vector const* to, void* user) {
        CairoGlyphs& glyphs = Of(user);
        Pt const p = glyphs.At(to);
        glyphs.mPath.LineTo(p);
        cairo_line_to(glyphs.mCairo, p.h, p.v);
        return 0;
    }
    static int ConicTo(FT_Vector const* control, FT_Vector const* to, void* user) {
        CairoGlyphs& glyphs = Of(user);
        Pt const start = glyphs.mPath.CurrentPoint();
        Pt const c = glyphs.At(control);
        Pt const e = glyphs.At(to);
        glyphs.Curve(start + (c - start) * (2.0 / 3.0), e + (c - e) * (2.0 / 3.0), e);
        return 0;
    }
    static int CubicTo(FT_Vector const* c1, FT_Vector const* c2, FT_Vector const* to, void* user) {
        CairoGlyphs& glyphs = Of(user);
        glyphs.Curve(glyphs.At(c1), glyphs.At(c2), glyphs.At(to));
        return 0;
    }
    void Curve(Pt const& c1, Pt const& c2, Pt const& e) {
        mPath.CurveTo(c1, c2, e);
        cairo_curve_to(mCairo, c1.h, c1.v, c2.h, c2.v, e.h, e.v);
    }

    cairo_surface_t* mSurface;
    cairo_t* mCairo;
    CPath mPath;
    double mOrigin = 0.0; ///< of the next glyph
};

} // namespace trammel_test

#endif
