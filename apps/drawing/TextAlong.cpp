// SPDX-License-Identifier: MIT

#include "TextAlong.h"

#include "Error.h"
#include "Numbers.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/OutlineMeasure.h>

#include <map>

namespace tool {

namespace {

/// One glyph of a line of text, `start` font units from the line's beginning.
struct Placed {
    Glyph const* glyph;
    double start;
};

/// A line of text in font units.
struct Line {
    std::map<unsigned, Glyph> glyphs; ///< every glyph of the line, once
    std::vector<Placed> placed;
    double width = 0.0;
};

/// Returns the character of a UTF-8 text at `i`, and moves `i` behind it. Throws Error if there is
/// no valid character.
char32_t NextCharacter(std::string const& text, std::size_t& i) {
    std::size_t const begin = i;
    auto const lead = static_cast<unsigned char>(text[i++]);
    std::size_t const more = lead < 0x80   ? 0
                             : lead < 0xC2 ? 4
                             : lead < 0xE0 ? 1
                             : lead < 0xF0 ? 2
                             : lead < 0xF5 ? 3
                                           : 4;
    char32_t character = more == 0 ? lead : lead & (0x3FU >> more);
    bool good = more < 4;
    for (std::size_t k = 0; good && k < more; ++k) {
        unsigned const next = i < text.size() ? static_cast<unsigned char>(text[i++]) : 0U;
        good = (next & 0xC0U) == 0x80U;
        character = (character << 6) | (next & 0x3FU);
    }
    good = good && character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF) &&
           (more < 2 || character >= (more == 2 ? 0x800U : 0x10000U));
    if (!good) {
        throw Error("words", "byte " + std::to_string(begin), "is not valid UTF-8");
    }
    return character;
}

Line LayOut(Font const& font, std::string const& words) {
    Line line;
    unsigned previous = 0;
    for (std::size_t i = 0; i < words.size();) {
        unsigned const index = font.IndexOf(NextCharacter(words, i));
        auto found = line.glyphs.find(index);
        if (found == line.glyphs.end()) {
            found = line.glyphs.emplace(index, font.ReadGlyph(index)).first;
        }
        if (previous != 0) {
            line.width += font.Kerning(previous, index);
        }
        line.placed.push_back({&found->second, line.width});
        line.width += found->second.advance;
        previous = index;
    }
    return line;
}

/// Adds the glyph's outline, moved by `m` and named by its place in the words.
/// \param scale  by how much `m` makes lengths longer
void AddGlyph(std::vector<Outline>& outlines, Placed const& placed, std::size_t number,
              double scale, CMatrix3x3 const& m) {
    if (placed.glyph->path.mCtls.empty()) {
        return;
    }
    Outline outline{std::to_string(number) + "-" + placed.glyph->name, placed.glyph->path};
    outline.path.Transform(m);
    outline.arcDistance = placed.glyph->distance * scale;
    outlines.push_back(std::move(outline));
}

} // namespace

double TextWidth(Font const& font, std::string const& words, double size) {
    return LayOut(font, words).width * (size / font.UnitsPerEm());
}

std::vector<Outline> TextLine(Font const& font, std::string const& words, double size,
                              TPoint<double> const& origin) {
    Line const line = LayOut(font, words);
    double const scale = size / font.UnitsPerEm();
    std::vector<Outline> outlines;
    std::size_t number = 0;
    for (Placed const& placed : line.placed) {
        AddGlyph(outlines, placed, ++number, scale,
                 CMatrix3x3().Translate(placed.start, 0.0).Scale(scale).Translate(origin));
    }
    return outlines;
}

std::vector<Outline> TextAlong(Font const& font, std::string const& words, double size,
                               CPath const& along, double start) {
    Line const line = LayOut(font, words);
    double const scale = size / font.UnitsPerEm();
    trammel::OutlineMeasure const measure(along);
    if (!(measure.Length() > 0.0)) {
        throw Error("", "", "the outline has no length");
    }
    double const end = start + line.width * scale;
    if (!(end <= measure.Length())) {
        throw Error("", "",
                    "the words end at " + Figure(end) + ", the outline at " +
                        Figure(measure.Length()));
    }
    std::vector<Outline> outlines;
    std::size_t number = 0;
    for (Placed const& placed : line.placed) {
        double const half = placed.glyph->advance / 2.0;
        trammel::OutlineMeasure::Place const place =
            measure.AtLength(start + (placed.start + half) * scale);
        AddGlyph(outlines, placed, ++number, scale,
                 CMatrix3x3()
                     .Translate(-half, 0.0)
                     .Scale(scale)
                     .Rotate(place.tangent.Angle())
                     .Translate(place.point));
    }
    return outlines;
}

} // namespace tool
