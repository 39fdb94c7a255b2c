// SPDX-License-Identifier: MIT

// FontReader: glyph outlines as paths, in font units with v downward and the baseline at v = 0.
// TrueType's quadratic curves are raised to cubics, or on demand flattened as the quadratics that
// they are; cubics are taken as they are.

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
};

/// An open font file. Every operation throws Error.
class Font {
public:
    /// Reads the file; of a collection the first font.
    explicit Font(std::string const& file);
    /// Takes the file's content instead of reading it.
    Font(std::string const& file, std::string content);
    ~Font();
    Font(Font const&) = delete;
    Font& operator=(Font const&) = delete;

    /// From now on ReadGlyph flattens quadratic curves by themselves instead of raising them to
    /// cubics; the paths then have lines in their places. No effect on a font of cubic curves.
    /// \param error  flatness tolerance in font units; above 0
    void FlattenQuadratics(double error);

    /// Font units in the size of the type.
    double UnitsPerEm() const;
    /// The number of glyphs.
    unsigned GlyphCount() const;
    /// The glyph that shows a Unicode character; an error when the font has none.
    unsigned IndexOf(char32_t character) const;
    /// Glyph `index`.
    Glyph ReadGlyph(unsigned index) const;
    /// What the font's kerning table adds to the distance of two glyphs, in font units.
    double Kerning(unsigned left, unsigned right) const;

private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

/// True when the content begins like a font file's.
bool LooksLikeFont(std::string const& content);

/// Every glyph of the font that has an outline, named by the font's glyph names.
Drawing ReadFontDrawing(std::string const& file, std::string content);

} // namespace tool

#endif
