// SPDX-License-Identifier: MIT

#include "Reading.h"

#include "CBSpline.h"
#include "FontReader.h"
#include "Moments.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace fuzz {

namespace {

/// Numbers as fonts store them, the greatest byte first.
class Bytes {
public:
    Bytes& U8(unsigned n) {
        mBytes += static_cast<char>(n & 0xFFU);
        return *this;
    }
    Bytes& U16(unsigned n) { return U8(n >> 8U).U8(n); }
    Bytes& I16(int n) { return U16(static_cast<unsigned>(n)); }
    Bytes& U32(std::size_t n) {
        return U16(static_cast<unsigned>(n >> 16U)).U16(static_cast<unsigned>(n & 0xFFFFU));
    }
    Bytes& Text(std::string const& text) {
        mBytes += text;
        return *this;
    }
    Bytes& Zeros(std::size_t count) {
        mBytes.append(count, '\0');
        return *this;
    }
    std::string const& All() const { return mBytes; }

private:
    std::string mBytes;
};

/// A table of a font, under its tag of four letters.
typedef std::pair<std::string, std::string> Table;

std::string FontOf(std::string const& version, std::vector<Table> const& tables) {
    Bytes font;
    font.Text(version).U16(static_cast<unsigned>(tables.size())).Zeros(6);
    std::size_t offset = 12 + 16 * tables.size();
    for (Table const& table : tables) {
        font.Text(table.first).U32(0).U32(offset).U32(table.second.size());
        offset += (table.second.size() + 3) / 4 * 4;
    }
    for (Table const& table : tables) {
        font.Text(table.second).Zeros((4 - table.second.size() % 4) % 4);
    }
    return font.All();
}

/// The tables that every font has.
std::vector<Table> CommonTables(Input& in, std::vector<int> const& advances) {
    auto const count = static_cast<unsigned>(advances.size());
    Bytes head;
    head.U32(0x10000).U32(0x10000).U32(0).U32(0x5F0F3CF5).U16(0).U16(1024).Zeros(16);
    head.I16(-100).I16(-100).I16(1000).I16(1000).U16(0).U16(8).U16(2).U16(1).U16(0);
    Bytes hhea;
    hhea.U32(0x10000).I16(800).I16(-200).I16(0).U16(1000).Zeros(22).U16(count);
    Bytes hmtx;
    for (int const advance : advances) {
        hmtx.I16(advance).I16(0);
    }
    // The characters from A on show the glyphs in order.
    Bytes cmap;
    cmap.U16(0).U16(1).U16(3).U16(1).U32(12);
    cmap.U16(6).U16(10 + 2 * count).U16(0).U16('A').U16(count);
    for (unsigned i = 0; i < count; ++i) {
        cmap.U16(i);
    }
    std::vector<Table> tables{
        {"head", head.All()}, {"hhea", hhea.All()}, {"hmtx", hmtx.All()}, {"cmap", cmap.All()}};
    if (in.Flag()) { // one pair of the kerning table
        Bytes kern;
        kern.U16(0).U16(1).U16(0).U16(20).U16(1).U16(1).Zeros(6).U16(0).U16(1);
        tables.emplace_back("kern", kern.I16(in.Int(-100, 100)).All());
    }
    return tables;
}

/// A glyph as its font's data and, where it is simple, as points.
struct PlainGlyph {
    struct Point {
        int h;
        int v;
        bool on; ///< the outline runs through it; otherwise it is a control point
    };
    std::string data;
    std::vector<std::vector<Point>> contours;
    bool simple = true;

    /// Reads the contours as the format tells: between two control points in a row the outline runs
    /// through their middle. Appends lines and quadratics, a line as one with its middle.
    std::vector<CBSpline> Splines() const {
        std::vector<CBSpline> splines;
        for (std::vector<Point> points : contours) {
            // Begins at a point of the outline: the first, the last, or the middle between.
            if (!points.front().on) {
                if (points.back().on) {
                    points.insert(points.begin(), points.back());
                    points.pop_back();
                } else {
                    points.insert(points.begin(), Middle(points.front(), points.back()));
                }
            }
            points.push_back(points.front());
            Point from = points.front();
            for (std::size_t i = 1; i < points.size(); ++i) {
                if (points[i].on) {
                    from = points[i];
                    continue;
                }
                Point const to =
                    points[i + 1].on ? points[i + 1] : Middle(points[i], points[i + 1]);
                splines.emplace_back(Drawn(from), Drawn(points[i]), Drawn(to));
                from = to;
            }
        }
        return splines;
    }
    /// The area in the drawing's coordinates.
    double Area() const {
        double area = 0.0;
        for (CBSpline const& s : Splines()) { // between curve and chord: two thirds of the triangle
            Pt const chord = s.P2 - s.P0;
            Pt const arm = s.P1 - s.P0;
            area += (arm.h * chord.v - arm.v * chord.h) / 3.0;
        }
        for (std::vector<Pt> const& ring : Rings()) {
            for (std::size_t i = 0; i < ring.size(); ++i) {
                Pt const& p = ring[i];
                Pt const& q = ring[(i + 1) % ring.size()];
                area += (p.h * q.v - p.v * q.h) / 2.0;
            }
        }
        return area;
    }

private:
    static Point Middle(Point const& a, Point const& b) {
        return {(a.h + b.h) / 2, (a.v + b.v) / 2, true};
    }
    static Pt Drawn(Point const& p) { return Pt(p.h, 0 - p.v); }
    /// The points of the outline, and the middles that it runs through.
    std::vector<std::vector<Pt>> Rings() const {
        std::vector<std::vector<Pt>> rings;
        for (std::vector<Point> const& points : contours) {
            rings.emplace_back();
            for (std::size_t i = 0; i < points.size(); ++i) {
                Point const& next = points[(i + 1) % points.size()];
                if (points[i].on) {
                    rings.back().push_back(Drawn(points[i]));
                } else if (!next.on) {
                    rings.back().push_back(Drawn(Middle(points[i], next)));
                }
            }
        }
        return rings;
    }
};

PlainGlyph AnyGlyph(Input& in) {
    PlainGlyph glyph;
    int const kind = in.Int(0, 15);
    if (kind == 0) {
        return glyph; // a blank
    }
    Bytes data;
    if (kind == 1) { // parts of glyphs, of this one as well
        glyph.simple = false;
        data.I16(-1).Zeros(8);
        for (int i = in.Int(0, 3); i >= 0; --i) {
            unsigned const more = i > 0 ? 0x20U : 0U;
            data.U16(0x2U | more | (in.Flag() ? 0x8U : 0U)).U16(in.Byte() % 5U);
            data.U8(in.Byte()).U8(in.Byte());
            if ((static_cast<unsigned char>(data.All()[data.All().size() - 5]) & 0x8U) != 0) {
                data.I16(in.Byte() * 128);
            }
        }
        glyph.data = data.All();
        return glyph;
    }
    if (kind == 2) { // any bytes
        glyph.simple = false;
        for (int i = in.Int(0, 60); i > 0; --i) {
            data.U8(in.Byte());
        }
        glyph.data = data.All();
        return glyph;
    }
    std::size_t const count = static_cast<std::size_t>(in.Int(1, 3));
    data.U16(static_cast<unsigned>(count)).Zeros(8);
    unsigned last = 0;
    for (std::size_t k = 0; k < count; ++k) {
        glyph.contours.emplace_back(static_cast<std::size_t>(in.Int(1, 9)));
        last += static_cast<unsigned>(glyph.contours.back().size());
        data.U16(last - 1);
    }
    data.U16(0); // no instructions
    Bytes h;
    Bytes v;
    int lastH = 0;
    int lastV = 0;
    for (std::vector<PlainGlyph::Point>& contour : glyph.contours) {
        for (PlainGlyph::Point& p : contour) {
            p.on = in.Flag();
            p.h = in.Int(-100, 100) * 10;
            p.v = in.Int(-100, 100) * 10 + in.Int(0, 9);
            data.U8(p.on ? 1 : 0);
            h.I16(p.h - lastH);
            v.I16(p.v - lastV);
            lastH = p.h;
            lastV = p.v;
        }
    }
    glyph.data = data.Text(h.All()).Text(v.All()).All();
    return glyph;
}

std::string TrueType(Input& in, std::vector<PlainGlyph> const& glyphs,
                     std::vector<int> const& advances) {
    Bytes glyf;
    Bytes loca;
    for (PlainGlyph const& glyph : glyphs) {
        loca.U32(glyf.All().size());
        glyf.Text(glyph.data).Zeros((4 - glyph.data.size() % 4) % 4);
    }
    loca.U32(glyf.All().size());
    Bytes maxp;
    maxp.U32(0x10000).U16(static_cast<unsigned>(glyphs.size())).U16(64).U16(8).U16(64).U16(8);
    maxp.U16(1).Zeros(12).U16(8).U16(4);
    std::vector<Table> tables = CommonTables(in, advances);
    tables.emplace_back("maxp", maxp.All());
    tables.emplace_back("loca", loca.All());
    tables.emplace_back("glyf", glyf.All());
    return FontOf(std::string("\0\1\0\0", 4), tables);
}

/// A list of CFF.
std::string Index(std::vector<std::string> const& items) {
    Bytes index;
    index.U16(static_cast<unsigned>(items.size()));
    if (items.empty()) {
        return index.All();
    }
    index.U8(2);
    unsigned offset = 1;
    index.U16(offset);
    for (std::string const& item : items) {
        index.U16(offset += static_cast<unsigned>(item.size()));
    }
    for (std::string const& item : items) {
        index.Text(item);
    }
    return index.All();
}

/// Commands for lines, curves, hints and subroutines, and their numbers.
std::string CharString(Input& in) {
    static constexpr std::uint8_t kCommands[] = {21, 22, 4,  5,  6,  7,  8,  24, 25, 26, 27, 30, 31,
                                                 1,  3,  18, 19, 10, 29, 11, 14, 20, 21, 21, 5,  8};
    Bytes code;
    code.U8(139).U8(139).U8(21);
    for (int i = in.Int(0, 12); i > 0; --i) {
        for (int k = in.Int(0, 9); k > 0; --k) {
            code.U8(static_cast<unsigned>(in.Int(32, 246)));
        }
        code.U8(in.Int(0, 15) == 0 ? in.Byte() : kCommands[in.Byte() % sizeof kCommands]);
    }
    return code.U8(14).All();
}

std::string Cff(Input& in, std::vector<int> const& advances) {
    std::vector<std::string> codes;
    for (std::size_t i = 0; i < advances.size(); ++i) {
        codes.push_back(CharString(in));
    }
    std::vector<std::string> const subroutines{CharString(in), CharString(in)};
    // The place of the glyphs: an offset of five bytes, so that its value does not move it.
    std::string const before = Bytes().U8(1).U8(0).U8(4).U8(2).All() + Index({"Font"});
    std::string const after = Index({}) + Index(subroutines);
    std::size_t const top = Index({std::string(6, '\0')}).size();
    Bytes dict;
    dict.U8(29).U32(before.size() + top + after.size()).U8(17);
    std::vector<Table> tables = CommonTables(in, advances);
    tables.emplace_back("maxp",
                        Bytes().U32(0x5000).U16(static_cast<unsigned>(advances.size())).All());
    tables.emplace_back("CFF ", before + Index({dict.All()}) + after + Index(codes));
    return FontOf("OTTO", tables);
}

/// Reads glyphs one by one. Each either has an outline or is an error that names the file.
template <class Check> void ReadGlyphs(std::string const& content, Check const& check) {
    try {
        tool::Font const font(kFile, content);
        for (unsigned i = 0; i < font.GlyphCount() && i < 16; ++i) {
            try {
                check(font, i, font.ReadGlyph(i));
            } catch (tool::Error const& e) {
                RequireMessage(e.what());
            }
            font.Kerning(0, i);
        }
    } catch (tool::Error const& e) {
        RequireMessage(e.what());
    }
}

void CheckGlyph(tool::Glyph const& glyph) {
    Require(!glyph.name.empty(), "a glyph has a name");
    for (trammel::Subpath const& subpath : trammel::Subpaths(glyph.path)) {
        Require(subpath.BeginsWithMove() && subpath.Closed(), "a contour is closed");
    }
    for (Pt const& p : glyph.path.mPts) {
        Require(std::isfinite(p.h) && std::isfinite(p.v), "coordinates are finite");
    }
}

void CheckSplines(tool::Glyph const& glyph, PlainGlyph const& plain) {
    std::vector<CBSpline> const splines = plain.Splines();
    Require(glyph.quadratics.size() == splines.size(), "a glyph has its quadratics");
    for (std::size_t k = 0; k < splines.size(); ++k) {
        CBSpline const& a = glyph.quadratics[k];
        CBSpline const& b = splines[k];
        Require(a.P0 == b.P0 && a.P1 == b.P1 && a.P2 == b.P2, "a quadratic is the font's");
    }
    Require(std::abs(trammel::SignedArea(glyph.path) - plain.Area()) <= 1e-6,
            "a glyph's area is that of its points");
}

} // namespace

void Fonts(Input& in) {
    int const kind = in.Int(0, 7);
    if (kind == 0) {
        std::string const content(in.Rest());
        if (tool::LooksLikeFont(content)) {
            DrawingOf([&] { return tool::ReadFontDrawing(kFile, content); });
        }
        return;
    }
    std::vector<int> advances(static_cast<std::size_t>(in.Int(1, 5)));
    std::vector<PlainGlyph> glyphs;
    for (int& advance : advances) {
        advance = in.Int(0, 250) * 100;
        glyphs.push_back(AnyGlyph(in));
    }
    bool const quadratic = kind > 2;
    std::string font = quadratic ? TrueType(in, glyphs, advances) : Cff(in, advances);
    bool const spoilt = kind > 6;
    for (int i = spoilt ? in.Int(1, 8) : 0; i > 0; --i) {
        font[(in.Byte() * 256U + in.Byte()) % font.size()] = static_cast<char>(in.Byte());
    }
    std::size_t read = 0;
    ReadGlyphs(font, [&](tool::Font const& f, unsigned index, tool::Glyph const& glyph) {
        ++read;
        CheckGlyph(glyph);
        if (spoilt) {
            return;
        }
        if (quadratic && glyphs[index].simple) {
            Require(f.IndexOf('A' + index) == index || index == 0, "a character shows its glyph");
            Require(glyph.advance == advances[index], "a glyph's advance is the font's");
            CheckSplines(glyph, glyphs[index]);
        }
    });
    bool const allSimple = std::all_of(glyphs.begin(), glyphs.end(),
                                       [](PlainGlyph const& glyph) { return glyph.simple; });
    Require(spoilt || !quadratic || !allSimple || read == glyphs.size(), "a glyph can be read");
    DrawingOf([&] { return tool::ReadFontDrawing(kFile, font); });
}

} // namespace fuzz
