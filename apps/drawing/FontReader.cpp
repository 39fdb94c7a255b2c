// SPDX-License-Identifier: MIT

#include "FontReader.h"

#include "Error.h"
#include "Input.h"
#include "Outlines.h"
#include "Progress.h"

#include <trammel/AccurateCurve.h>
#include <trammel/TPoint.h>
#include <trammel/TPoly.h>
#include <trammel/UScalar.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace tool {

namespace {

typedef TPoint<double> Pt;

struct LibraryCloser {
    void operator()(FT_Library library) const { FT_Done_FreeType(library); }
};
struct FaceCloser {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};

std::string FreeTypeMessage(FT_Error code) {
    char const* const text = FT_Error_String(code);
    return text != nullptr ? text : "FreeType error " + std::to_string(code);
}

/// Receives a glyph's contours. ClosePath makes a contour's closing line.
class GlyphBuilder {
public:
    CPath path;
    std::vector<CBSpline> quadratics;
    double flatness = 0.0; ///< above 0: flatten quadratics
    double distance = 0.0; ///< how far these lines may be from the curves

    void Move(Pt const& p) {
        Close();
        path.MoveTo(p);
        mStart = p;
        mOpen = true;
    }
    void Line(Pt const& p) {
        Flush();
        mPendingLine = p;
    }
    void Curve(Pt const& c1, Pt const& c2, Pt const& e) {
        Flush();
        AddCurve(path, c1, c2, e);
    }
    /// Adds the lines of the curve's flattening, or the cubic through the same points. Each control
    /// point of the cubic is two thirds of the way to the given one.
    void Quadratic(Pt const& c, Pt const& e) {
        Flush();
        Pt const from = path.CurrentPoint();
        quadratics.emplace_back(from, c, e);
        if (flatness > 0.0) {
            TPolygon<double> polygon;
            distance =
                std::max(distance, trammel::FlattenWithin(quadratics.back(), flatness, polygon));
            for (long i = 1; i <= polygon.LastIndex(); ++i) {
                Line(polygon.GetPt(i));
            }
            return;
        }
        AddCurve(path, TPt(from, c, 2.0 / 3.0), TPt(e, c, 2.0 / 3.0), e);
    }
    void Close() {
        if (mPendingLine && *mPendingLine == mStart) {
            mPendingLine.reset();
        }
        Flush();
        if (mOpen) {
            path.ClosePath();
            mOpen = false;
        }
    }

private:
    void Flush() {
        if (mPendingLine) {
            path.LineTo(*mPendingLine);
            mPendingLine.reset();
        }
    }
    Pt mStart;
    bool mOpen = false;
    std::optional<Pt> mPendingLine;
};

Pt Downward(FT_Vector const* p) {
    return Pt(static_cast<double>(p->x), 0.0 - static_cast<double>(p->y));
}

GlyphBuilder& Builder(void* user) { return *static_cast<GlyphBuilder*>(user); }

// No exception may cross FreeType's C code, so each callback turns one into an error code.
template <class Step> int Guarded(Step step) {
    try {
        step();
        return 0;
    } catch (...) {
        return FT_Err_Out_Of_Memory;
    }
}

int OnMove(FT_Vector const* to, void* user) {
    return Guarded([=] { Builder(user).Move(Downward(to)); });
}

int OnLine(FT_Vector const* to, void* user) {
    return Guarded([=] { Builder(user).Line(Downward(to)); });
}

int OnConic(FT_Vector const* control, FT_Vector const* to, void* user) {
    return Guarded([=] { Builder(user).Quadratic(Downward(control), Downward(to)); });
}

int OnCubic(FT_Vector const* c1, FT_Vector const* c2, FT_Vector const* to, void* user) {
    return Guarded([=] { Builder(user).Curve(Downward(c1), Downward(c2), Downward(to)); });
}

std::string CodePoint(char32_t character) {
    static char const digits[] = "0123456789ABCDEF";
    std::string text;
    for (int shift = character > 0xFFFF ? 20 : 12; shift >= 0; shift -= 4) {
        text += digits[(character >> shift) & 15];
    }
    return "U+" + text;
}

} // namespace

struct Font::Impl {
    std::string file;
    std::string content; ///< the face reads from here as long as it lives
    std::unique_ptr<std::remove_pointer_t<FT_Library>, LibraryCloser> library;
    std::unique_ptr<std::remove_pointer_t<FT_Face>, FaceCloser> face;
    double flatness = 0.0; ///< above 0: quadratic curves are flattened
};

Font::Font(std::string const& file) : Font(file, ReadFile(file)) {}

Font::Font(std::string const& file, std::string content) : mImpl(std::make_unique<Impl>()) {
    mImpl->file = file;
    mImpl->content = std::move(content);
    if (!LooksLikeFont(mImpl->content)) {
        throw Error(file, "", "is not a font");
    }
    FT_Library library = nullptr;
    if (FT_Error const code = FT_Init_FreeType(&library); code != 0) {
        throw Error(file, "", FreeTypeMessage(code));
    }
    mImpl->library.reset(library);
    FT_Face face = nullptr;
    if (FT_Error const code =
            FT_New_Memory_Face(library, reinterpret_cast<FT_Byte const*>(mImpl->content.data()),
                               static_cast<FT_Long>(mImpl->content.size()), 0, &face);
        code != 0) {
        throw Error(file, "", "is not a font that can be read: " + FreeTypeMessage(code));
    }
    mImpl->face.reset(face);
    if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0) {
        throw Error(file, "", "has bitmaps only, no outlines");
    }
}

Font::~Font() = default;

void Font::FlattenQuadratics(double error) { mImpl->flatness = error; }

double Font::UnitsPerEm() const { return mImpl->face->units_per_EM; }

unsigned Font::GlyphCount() const { return static_cast<unsigned>(mImpl->face->num_glyphs); }

unsigned Font::IndexOf(char32_t character) const {
    unsigned const index = FT_Get_Char_Index(mImpl->face.get(), character);
    if (index == 0) {
        throw Error(mImpl->file, "", "has no glyph for " + CodePoint(character));
    }
    return index;
}

Glyph Font::ReadGlyph(unsigned index) const {
    FT_Face const face = mImpl->face.get();
    Glyph glyph;
    glyph.name = "glyph" + std::to_string(index);
    if (FT_HAS_GLYPH_NAMES(face)) {
        std::array<char, 128> name{};
        if (FT_Get_Glyph_Name(face, index, name.data(), name.size()) == 0 && name[0] != '\0') {
            glyph.name = name.data();
        }
    }
    std::string const place = "glyph " + std::to_string(index) + " (" + glyph.name + ")";
    if (FT_Error const code = FT_Load_Glyph(face, index, FT_LOAD_NO_SCALE); code != 0) {
        throw Error(mImpl->file, place, FreeTypeMessage(code));
    }
    glyph.advance = static_cast<double>(face->glyph->metrics.horiAdvance);
    if (face->glyph->format == FT_GLYPH_FORMAT_OUTLINE) {
        FT_Outline_Funcs actions{};
        actions.move_to = OnMove;
        actions.line_to = OnLine;
        actions.conic_to = OnConic;
        actions.cubic_to = OnCubic;
        GlyphBuilder builder;
        builder.flatness = mImpl->flatness;
        if (FT_Error const code = FT_Outline_Decompose(&face->glyph->outline, &actions, &builder);
            code != 0) {
            throw Error(mImpl->file, place, FreeTypeMessage(code));
        }
        builder.Close();
        glyph.path = std::move(builder.path);
        glyph.quadratics = std::move(builder.quadratics);
        glyph.distance = builder.distance;
    }
    return glyph;
}

double Font::Kerning(unsigned left, unsigned right) const {
    FT_Vector kerning{};
    if (FT_Get_Kerning(mImpl->face.get(), left, right, FT_KERNING_UNSCALED, &kerning) != 0) {
        return 0.0;
    }
    return static_cast<double>(kerning.x);
}

bool LooksLikeFont(std::string const& content) {
    using namespace std::string_view_literals;
    for (std::string_view const magic :
         {"\0\1\0\0"sv, "OTTO"sv, "true"sv, "ttcf"sv, "wOFF"sv, "wOF2"sv, "typ1"sv, "\x80\1"sv,
          "%!PS-AdobeFont"sv, "%!FontType1"sv}) {
        if (std::string_view(content).substr(0, magic.size()) == magic) {
            return true;
        }
    }
    return false;
}

Drawing ReadFontDrawing(std::string const& file, std::string content) {
    Font const font(file, std::move(content));
    Drawing drawing;
    drawing.file = file;
    drawing.kind = "font";
    Progress progress("reading " + file, font.GlyphCount());
    for (unsigned i = 0; i < font.GlyphCount(); ++i) {
        Glyph glyph = font.ReadGlyph(i);
        if (!glyph.path.mCtls.empty()) {
            drawing.outlines.push_back({std::move(glyph.name), std::move(glyph.path)});
        }
        progress.Update(i + 1);
    }
    return drawing;
}

} // namespace tool
