// SPDX-License-Identifier: MIT

// FontReader: glyph outlines as paths, in font units with v downward and the baseline at v = 0.
// TrueType's quadratic curves are raised to cubics, or flattened as quadratics on demand. Cubics
// stay as they are.

#ifndef TRAMMEL_APP_FONTREADER_H
#define TRAMMEL_APP_FONTREADER_H

#include "Drawing.h"

#include <trammel/CBSpline.h>
#include <trammel/CPath.h>

#include <memory>
#include <string>
#include <vector>

namespace tool {

/// One glyph.
struct Glyph {
    std::string name;                 ///< the font's name for it; "glyph17" where it has none
    CPath path;                       ///< empty for a blank
    double advance;                   ///< to the next glyph's origin, in font units
    std::vector<CBSpline> quadratics; ///< the quadratic curves as they are in the font, in order
    double distance = 0.0; ///< how far lines in place of curves may be from them, in font units
};

/// An open font file. Every operation may throw Error.
class Font {
public:
    /// Reads the file. Takes the first font of a collection.
    explicit Font(std::string const& file);
    /// Takes the file's content instead of reading it.
    Font(std::string const& file, std::string content);
    ~Font();
    Font(Font const&) = delete;
    Font& operator=(Font const&) = delete;

    /// Makes ReadGlyph flatten quadratic curves from now on, instead of raising them to cubics. The
    /// paths then have lines in their places. A font of cubic curves is not affected.
    /// \param error  how far lines may be from a curve, in font units; above 0
    void FlattenQuadratics(double error);

    /// Returns the number of font units in the size of the type.
    double UnitsPerEm() const;
    /// Returns the number of glyphs.
    unsigned GlyphCount() const;
    /// Returns the index of the glyph that shows a Unicode character. It is an error if the font
    /// has none.
    unsigned IndexOf(char32_t character) const;
    /// Returns glyph `index`.
    Glyph ReadGlyph(unsigned index) const;
    /// Returns the distance that the font's kerning table adds between two glyphs, in font units.
    double Kerning(unsigned left, unsigned right) const;

private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

/// True when the content begins like a font file's.
bool LooksLikeFont(std::string const& content);

/// Returns every glyph of the font that has an outline, under the font's name for it.
Drawing ReadFontDrawing(std::string const& file, std::string content);

} // namespace tool

#endif
