// SPDX-License-Identifier: MIT

#include "Inputs.h"

#include "Operands.h"

#include <trammel/CPathActions.h>
#include <trammel/SvgPath.h>
#include <trammel/UTrigonometry.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <system_error>

#ifdef TRAMMEL_BENCH_FREETYPE
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#endif
#ifdef TRAMMEL_BENCH_PUGIXML
#include <pugixml.hpp>
#endif

namespace inputs {
namespace {

/// Numbers evenly spread over an interval. They come from the generator's bits directly, because
/// the standard library's distribution may differ from one library to the next.
class Random {
public:
    explicit Random(unsigned seed) : mEngine(seed) {}
    double operator()(double lo, double hi) {
        return lo + (hi - lo) * (static_cast<double>(mEngine() >> 11) * 0x1p-53);
    }
    TPoint<double> Pt(double lo, double hi) {
        double const h = (*this)(lo, hi);
        return TPoint<double>(h, (*this)(lo, hi));
    }

private:
    std::mt19937_64 mEngine;
};

std::vector<CPath> RandomOutlines() {
    Random random(1);
    std::vector<CPath> outlines(200);
    for (CPath& outline : outlines) {
        outline.MoveTo(random.Pt(0.0, 1000.0));
        for (int i = 0; i < 9; ++i) {
            outline.LineTo(random.Pt(0.0, 1000.0));
            TPoint<double> const c1 = random.Pt(0.0, 1000.0);
            TPoint<double> const c2 = random.Pt(0.0, 1000.0);
            outline.CurveTo(c1, c2, random.Pt(0.0, 1000.0));
        }
        outline.ClosePath();
    }
    return outlines;
}

std::vector<CPath> DrawingOutlines() {
    Random random(5);
    double const side = Side(Set::kDrawing);
    std::vector<CPath> outlines(200);
    for (CPath& outline : outlines) {
        outline.MoveTo(random.Pt(0.0, side));
        for (int i = 0; i < 10; ++i) {
            TPoint<double> const c1 = random.Pt(0.0, side);
            TPoint<double> const c2 = random.Pt(0.0, side);
            outline.CurveTo(c1, c2, random.Pt(0.0, side));
        }
        outline.ClosePath();
    }
    return outlines;
}

std::vector<CPath> LongOutlines() {
    std::vector<CPath> outlines;
    for (unsigned seed = 8; seed < 28; ++seed) {
        outlines.push_back(Ragged(Segments::kMixed, 1000, seed));
    }
    return outlines;
}

#ifdef TRAMMEL_BENCH_FREETYPE

/// A glyph's outline on its way into a path.
struct Sink {
    CPath path;
    double em;
    double scale;
    TPoint<double> current;

    TPoint<double> Pt(FT_Vector const* p) const {
        return TPoint<double>(static_cast<double>(p->x) * scale,
                              em - static_cast<double>(p->y) * scale);
    }
};

int Move(FT_Vector const* to, void* user) {
    Sink& sink = *static_cast<Sink*>(user);
    sink.path.ClosePath();
    sink.path.MoveTo(sink.current = sink.Pt(to));
    return 0;
}

int Line(FT_Vector const* to, void* user) {
    Sink& sink = *static_cast<Sink*>(user);
    sink.path.LineTo(sink.current = sink.Pt(to));
    return 0;
}

int Quadratic(FT_Vector const* control, FT_Vector const* to, void* user) {
    Sink& sink = *static_cast<Sink*>(user);
    TPoint<double> const c = sink.Pt(control);
    TPoint<double> const e = sink.Pt(to);
    sink.path.CurveTo((sink.current + c * 2.0) / 3.0, (e + c * 2.0) / 3.0, e);
    sink.current = e;
    return 0;
}

int Cubic(FT_Vector const* c1, FT_Vector const* c2, FT_Vector const* to, void* user) {
    Sink& sink = *static_cast<Sink*>(user);
    sink.path.CurveTo(sink.Pt(c1), sink.Pt(c2), sink.current = sink.Pt(to));
    return 0;
}

std::vector<CPath> GlyphOutlines(char const* font, double em) {
    std::vector<CPath> outlines;
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        return outlines;
    }
    if (FT_New_Face(library, font, 0, &face) == 0) {
        FT_Outline_Funcs const functions = {Move, Line, Quadratic, Cubic, 0, 0};
        for (FT_ULong code = 0x21; code <= 0x17F; ++code) {
            FT_UInt const glyph = FT_Get_Char_Index(face, code);
            if (glyph == 0 || FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE) != 0 ||
                face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) {
                continue;
            }
            Sink sink;
            sink.em = em;
            sink.scale = em / face->units_per_EM;
            if (FT_Outline_Decompose(&face->glyph->outline, &functions, &sink) == 0 &&
                !sink.path.mCtls.empty()) {
                sink.path.ClosePath();
                outlines.push_back(sink.path);
            }
        }
        FT_Done_Face(face);
    }
    FT_Done_FreeType(library);
    return outlines;
}

#else

std::vector<CPath> GlyphOutlines(char const*, double) { return {}; }

#endif

/// The paths of all drawings in a folder, by the drawings' names; links are left out, as they are
/// drawings of another name.
std::vector<CPath> IconOutlines(std::string const& folder) {
    std::vector<CPath> outlines;
#ifdef TRAMMEL_BENCH_PUGIXML
    std::vector<std::string> names;
    std::error_code error;
    for (auto const& entry : std::filesystem::directory_iterator(folder, error)) {
        if (!entry.is_symlink() && entry.path().extension() == ".svg") {
            names.push_back(entry.path().string());
        }
    }
    std::sort(names.begin(), names.end());
    for (std::string const& name : names) {
        pugi::xml_document document;
        if (!document.load_file(name.c_str())) {
            continue;
        }
        for (pugi::xpath_node const& node : document.select_nodes("//path")) {
            auto const read = trammel::ReadSvgPath(node.node().attribute("d").value());
            if (!read.error && !read.path.mCtls.empty()) {
                outlines.push_back(read.path);
            }
        }
    }
#else
    static_cast<void>(folder);
#endif
    return outlines;
}

std::vector<CBezier> RandomCurves(unsigned seed, std::size_t count, double side) {
    Random random(seed);
    std::vector<CBezier> curves(count);
    for (CBezier& curve : curves) {
        for (TPoint<double>* p : {&curve.P0, &curve.P1, &curve.P2, &curve.P3}) {
            *p = random.Pt(0.0, side);
        }
    }
    return curves;
}

/// Collects the curves of the outlines that it visits.
class CurveCollector : public CPathActions {
public:
    std::vector<CBezier> mCurves;
    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        mCurves.emplace_back(GetCurrentPt(), c1, c2, e);
    }
};

std::vector<CBezier> CurvesOf(std::vector<CPath> const& outlines) {
    CurveCollector collector;
    for (CPath const& outline : outlines) {
        outline.ForAll(collector);
    }
    return collector.mCurves;
}

constexpr char kDejaVu[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr char kGaramond[] = "/usr/share/fonts/opentype/ebgaramond/EBGaramond12-Regular.otf";
constexpr char kBreeze[] = "/usr/share/icons/breeze/apps/48";

std::vector<CPath> MakeOutlines(Set set) {
    switch (set) {
    case Set::kRandom:
        return RandomOutlines();
    case Set::kTrueType:
        return GlyphOutlines(kDejaVu, 100.0);
    case Set::kCff:
        return GlyphOutlines(kGaramond, 100.0);
    case Set::kDrawing:
        return DrawingOutlines();
    case Set::kPoster:
        return GlyphOutlines(kGaramond, 1000.0);
    case Set::kLong:
        return LongOutlines();
    case Set::kIcons:
        break;
    }
    return IconOutlines(kBreeze);
}

std::vector<CBezier> MakeCurves(Set set) {
    switch (set) {
    case Set::kRandom:
        return RandomCurves(2, 1000, Side(set));
    case Set::kDrawing:
        return RandomCurves(6, 10000, Side(set));
    default:
        return CurvesOf(Outlines(set));
    }
}

/// Returns the result of `make` for a set. The first call makes it.
template <class Item> std::vector<Item> const& Kept(Set set, std::vector<Item> (*make)(Set)) {
    static std::map<Set, std::vector<Item>> kept;
    auto found = kept.find(set);
    if (found == kept.end()) {
        found = kept.emplace(set, make(set)).first;
    }
    return found->second;
}

} // namespace

CPath Ragged(Segments segments, std::size_t count, unsigned seed) {
    Random random(seed);
    auto const on = [](double turn) {
        double const angle = 2.0 * pi * turn;
        double const radius = 350.0 + 100.0 * std::sin(7.0 * angle);
        return TPoint<double>(500.0 + radius * std::cos(angle), 500.0 + radius * std::sin(angle));
    };
    double const step = 1.0 / static_cast<double>(count);
    double const stray = 400.0 * step;
    CPath path;
    path.MoveTo(on(0.0));
    for (std::size_t i = 1; i <= count; ++i) {
        double const turn = static_cast<double>(i) * step;
        TPoint<double> const jitter = random.Pt(0.0, stray);
        if (segments == Segments::kLines || (segments == Segments::kMixed && i % 2 == 0)) {
            path.LineTo(on(turn) + jitter);
        } else {
            path.CurveTo(on(turn - 0.7 * step) + jitter, on(turn - 0.3 * step) - jitter,
                         on(turn) + jitter);
        }
    }
    return path;
}

std::vector<CPath> const& Outlines(Set set) { return Kept(set, MakeOutlines); }

std::vector<CBezier> const& Curves(Set set) { return Kept(set, MakeCurves); }

std::vector<TPoint<double>> Points(std::size_t count, double side) {
    Random random(3);
    std::vector<TPoint<double>> points(count);
    for (TPoint<double>& p : points) {
        p = random.Pt(0.0, side);
    }
    return points;
}

std::vector<TPoint<double>> Star(std::size_t count) {
    Random random(4);
    std::vector<TPoint<double>> vertices(count);
    for (std::size_t i = 0; i < count; ++i) {
        double const angle = 2.0 * pi * static_cast<double>(i) / static_cast<double>(count);
        double const radius = random(200.0, 450.0);
        vertices[i].Set(500.0 + radius * std::cos(angle), 500.0 + radius * std::sin(angle));
    }
    return vertices;
}

std::vector<TPoint<double>> PointsInBoxes(std::vector<CBezier> const& curves) {
    Random random(7);
    std::vector<TPoint<double>> points;
    points.reserve(curves.size());
    for (CBezier const& curve : curves) {
        TRect<double> const box = curve.Extents();
        double const h = random(box.left, box.right);
        points.emplace_back(h, random(box.top, box.bottom));
    }
    return points;
}

std::vector<TPoint<double>> Country(std::size_t count) {
    operands::Pair const& pair = operands::Get(operands::Kind::kMap, count);
    std::vector<TPoint<double>> longest;
    for (operands::Ring const& ring : pair.first.rings) {
        if (ring.size() > longest.size()) {
            longest = ring;
        }
    }
    return longest;
}

std::vector<TPoint<double>> PointsOver(std::vector<TPoint<double>> const& ring, std::size_t count) {
    if (ring.empty()) {
        return {};
    }
    TRect<double> box(ring.front(), ring.front());
    for (TPoint<double> const& p : ring) {
        box |= p;
    }
    auto points = Points(count, 1.0);
    for (TPoint<double>& p : points) {
        p.Set(box.left + box.Width() * p.h, box.top + box.Height() * p.v);
    }
    return points;
}

std::vector<TLine<double>> LinesOver(std::vector<TPoint<double>> const& ring, std::size_t count) {
    auto const points = PointsOver(ring, 2 * count);
    std::vector<TLine<double>> lines;
    for (std::size_t i = 0; 2 * i + 1 < points.size(); ++i) {
        lines.emplace_back(points[2 * i], points[2 * i + 1]);
    }
    return lines;
}

double Side(Set set) {
    switch (set) {
    case Set::kRandom:
    case Set::kPoster:
    case Set::kLong:
        return 1000.0;
    case Set::kDrawing:
        return 110.0;
    case Set::kIcons:
        return 48.0;
    case Set::kTrueType:
    case Set::kCff:
        break;
    }
    return 100.0;
}

} // namespace inputs
