// SPDX-License-Identifier: MIT

// Judges operations on outlines that people drew: glyphs of fonts, icons, and the countries of a
// map. Nothing of these is in the repository.
//
//   trammel_real_outlines [--glyphs COUNT] [--fonts FILE...] [--icons FOLDER...] [--maps FILE...]
//
// - Fonts: each glyph united, cut and subtracted with the next one, which lies half over it, and
//   with itself embolded by Offset().
// - Icons: the paths of each icon without overlaps, and all of them united.
// - Maps: all countries united, and a letter of curves cut out of each.
//
// A region is right when the points of a sample are inside exactly as winding numbers tell
// (OutlineJudge.h). Areas by Green's theorem have to obey |A or B| + |A and B| = |A| + |B| within
// the length of the outlines times the distance that is kept.
//
// Prints a row for each kind. The status is 1 if something is wrong.

#include "AccurateCurve.h"
#include "CPath.h"
#include "CountryOutlines.h"
#include "OutlineOperations.h"
#include "PathStructure.h"
#include "RegionArea.h"
#include "Stroke.h"
#include "SvgPath.h"
#include "outlines/OutlineJudge.h"

#include <ft2build.h>

#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

namespace {

using trammel::FillRule;
using trammel_test::OutlineJudge;

typedef TPoint<double> Pt;

constexpr FillRule kNonZero = FillRule::kNonZero;
constexpr double kDelta = 1e-6; // of the size

/// A glyph in font units.
class Glyph {
public:
    CPath path;

    Glyph(FT_Face face, FT_UInt index, double move) : mMove(move) {
        FT_Outline_Funcs const functions = {&MoveTo, &LineTo, &ConicTo, &CubicTo, 0, 0};
        if (FT_Load_Glyph(face, index, FT_LOAD_NO_SCALE) == 0 &&
            face->glyph->format == FT_GLYPH_FORMAT_OUTLINE) {
            FT_Outline_Decompose(&face->glyph->outline, &functions, this);
            path.ClosePath();
        }
    }

private:
    Pt At(FT_Vector const* p) const {
        return Pt(static_cast<double>(p->x) + mMove, -static_cast<double>(p->y));
    }
    static Glyph& Of(void* user) { return *static_cast<Glyph*>(user); }
    static int MoveTo(FT_Vector const* to, void* user) {
        Of(user).path.ClosePath().MoveTo(Of(user).At(to));
        return 0;
    }
    static int LineTo(FT_Vector const* to, void* user) {
        Of(user).path.LineTo(Of(user).At(to));
        return 0;
    }
    static int ConicTo(FT_Vector const* control, FT_Vector const* to, void* user) {
        Pt const start = Of(user).path.CurrentPoint();
        Pt const c = Of(user).At(control);
        Pt const e = Of(user).At(to);
        Of(user).path.CurveTo(start + (c - start) * (2.0 / 3.0), e + (c - e) * (2.0 / 3.0), e);
        return 0;
    }
    static int CubicTo(FT_Vector const* c1, FT_Vector const* c2, FT_Vector const* to, void* user) {
        Of(user).path.CurveTo(Of(user).At(c1), Of(user).At(c2), Of(user).At(to));
        return 0;
    }

    double mMove;
};

double SizeOf(CPath const& a, CPath const& b) {
    Pt low = a.mPts.empty() ? Pt(0, 0) : a.mPts[0];
    Pt high = low;
    for (CPath const* const path : {&a, &b}) {
        for (Pt const& p : path->mPts) {
            low = Pt(std::min(low.h, p.h), std::min(low.v, p.v));
            high = Pt(std::max(high.h, p.h), std::max(high.v, p.v));
        }
    }
    return std::max(high.h - low.h, high.v - low.v);
}

/// The area of a result, whose contours run either way.
double AreaOf(CPath const& region) {
    return trammel::RegionArea(region, FillRule::kEvenOdd, 0.0).area;
}

struct Tally {
    std::string name;
    int asked = 0;
    int wrong = 0;
    int wrongAreas = 0;
    double worst = 0.0; ///< the greatest distance kept, of the size
    double seconds = 0.0;

    void Print() const {
        std::printf("%-36s %6d of %6d right, areas wrong %d, worst distance %.1e, %.1f s\n",
                    name.c_str(), asked - wrong, asked, wrongAreas, worst, seconds);
    }
};

class Clock {
public:
    explicit Clock(Tally& tally) : mTally(tally), mBegin(std::chrono::steady_clock::now()) {}
    Clock(Clock const&) = delete;
    Clock& operator=(Clock const&) = delete;
    ~Clock() {
        mTally.seconds +=
            std::chrono::duration<double>(std::chrono::steady_clock::now() - mBegin).count();
    }

private:
    Tally& mTally;
    std::chrono::steady_clock::time_point mBegin;
};

template <class Wanted>
void Judge(std::vector<OutlineJudge> const& operands, CPath const& out, double kept, double size,
           std::string const& what, Tally& tally, Wanted const& wanted) {
    ++tally.asked;
    tally.worst = std::max(tally.worst, kept / size);
    if (trammel_test::WrongPoints(operands, OutlineJudge(out), std::max(kept, kDelta * size), size,
                                  wanted) != 0) {
        ++tally.wrong;
        std::printf("wrong: %s %s\n", tally.name.c_str(), what.c_str());
    }
}

/// All four operations on two outlines, and the law of their areas.
void Combine(CPath const& a, CPath const& b, std::string const& what, Tally& tally) {
    double const size = SizeOf(a, b);
    if (!(size > 0.0)) {
        return;
    }
    std::vector<OutlineJudge> const operands = {OutlineJudge(a), OutlineJudge(b)};
    double areas[4] = {};
    double sum = 0.0;
    for (TPolyOp const op : {kPolyUnion, kPolyIntersection, kPolyDifference, kPolyXor}) {
        CPath out;
        double kept = 0.0;
        {
            Clock const clock(tally);
            kept = trammel::Boolean(op, a, kNonZero, b, kNonZero, 0.0, out);
        }
        sum += kept;
        areas[op == kPolyUnion          ? 0
              : op == kPolyIntersection ? 1
              : op == kPolyDifference   ? 2
                                        : 3] = AreaOf(out);
        Judge(operands, out, kept, size, what, tally, [&](Pt const& p) {
            return trammel_test::Wants(op, operands[0].Holds(p, kNonZero),
                                       operands[1].Holds(p, kNonZero));
        });
    }
    CPath plainA;
    CPath plainB;
    sum += trammel::RemoveOverlap(a, kNonZero, 0.0, plainA);
    sum += trammel::RemoveOverlap(b, kNonZero, 0.0, plainB);
    double const slack =
        (4.0 * sum + 1e-9 * size) * (trammel::ArcLength(a, size) + trammel::ArcLength(b, size));
    if (!(std::abs(areas[0] + areas[1] - AreaOf(plainA) - AreaOf(plainB)) <= slack) ||
        !(std::abs(areas[0] - areas[1] - areas[3]) <= slack) ||
        !(std::abs(areas[1] + areas[2] - AreaOf(plainA)) <= slack)) {
        ++tally.wrongAreas;
        std::printf("areas: %s %s\n", tally.name.c_str(), what.c_str());
    }
}

void JudgeFont(FT_Library library, std::string const& file, int most, std::vector<Tally>& tallies) {
    FT_Face face = nullptr;
    if (FT_New_Face(library, file.c_str(), 0, &face) != 0) {
        std::printf("%s: cannot be opened\n", file.c_str());
        return;
    }
    std::string const name = std::filesystem::path(file).stem().string();
    Tally neighbours{name + ", neighbours"};
    Tally bold{name + ", embolded"};
    double const half = face->units_per_EM / 4.0;
    for (FT_UInt i = 0; i < static_cast<FT_UInt>(std::min<FT_Long>(face->num_glyphs, most)); ++i) {
        CPath const a = Glyph(face, i, 0.0).path;
        CPath const b = Glyph(face, i + 1, half).path;
        std::string const what = "glyph " + std::to_string(i);
        Combine(a, b, what, neighbours);
        CPath grown;
        trammel::Offset(a, kNonZero, half / 32.0, trammel::StrokeJoin::kMiter, 4.0, half * 1e-5,
                        grown);
        Combine(a, grown, what, bold);
    }
    FT_Done_Face(face);
    tallies.push_back(neighbours);
    tallies.push_back(bold);
}

void JudgeIcons(std::string const& folder, std::vector<Tally>& tallies) {
    Tally one{"icons, without overlaps"};
    Tally all{"icons, united"};
    std::regex const data("\\sd=\"([^\"]*)\"");
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file() || entry.is_symlink() || entry.path().extension() != ".svg") {
            continue;
        }
        std::ifstream file(entry.path());
        std::string const text((std::istreambuf_iterator<char>(file)), {});
        std::vector<CPath> paths;
        std::vector<OutlineJudge> judges;
        CPath together;
        for (std::sregex_iterator i(text.begin(), text.end(), data); i != std::sregex_iterator();
             ++i) {
            trammel::SvgPathResult const result = trammel::ReadSvgPath((*i)[1].str());
            double const size = SizeOf(result.path, CPath());
            if (result.error || !(size > 0.0) || result.path.mCtls.size() > 1000) {
                continue;
            }
            paths.push_back(result.path);
            judges.emplace_back(result.path);
            trammel::AppendSubpaths(together, result.path);
            CPath out;
            double kept = 0.0;
            {
                Clock const clock(one);
                kept = trammel::RemoveOverlap(result.path, kNonZero, 0.0, out);
            }
            Judge({judges.back()}, out, kept, size, entry.path().string(), one,
                  [&](Pt const& p) { return judges.back().Holds(p, kNonZero); });
        }
        double const size = SizeOf(together, CPath());
        if (paths.size() < 2 || paths.size() > 30 || !(size > 0.0)) {
            continue;
        }
        CPath out;
        double kept = 0.0;
        {
            Clock const clock(all);
            kept = trammel::Union(paths, kNonZero, 0.0, out);
        }
        Judge(judges, out, kept, size, entry.path().string(), all, [&](Pt const& p) {
            return std::any_of(judges.begin(), judges.end(),
                               [&](OutlineJudge const& j) { return j.Holds(p, kNonZero); });
        });
    }
    tallies.push_back(one);
    tallies.push_back(all);
}

void JudgeMap(std::string const& name, std::vector<Tally>& tallies) {
    Tally united{name + ", all countries"};
    Tally cut{name + ", a letter cut out"};
    std::vector<CPath> countries;
    std::vector<OutlineJudge> judges;
    CPath together;
    double sum = 0.0;
    for (std::vector<Pt> const& ring : trammel_test::CountriesOf(name)) {
        CPath country;
        for (Pt const& p : ring) {
            country.mPts.empty() ? country.MoveTo(p) : country.LineTo(p);
        }
        country.ClosePath();
        countries.push_back(country);
        judges.emplace_back(country);
        sum += AreaOf(country);
        trammel::AppendSubpaths(together, country);
        // An O over the middle of each, half as wide.
        double const r = 0.25 * SizeOf(country, CPath());
        Pt const c = Pt(country.Bounds().left + country.Bounds().right,
                        country.Bounds().top + country.Bounds().bottom) *
                     0.5;
        CPath letter;
        for (double const s : {r, 0.6 * r}) {
            double const k = 0.55 * s;
            letter.MoveTo(c + Pt(s, 0)).CurveTo(c + Pt(s, k), c + Pt(k, s), c + Pt(0, s));
            letter.CurveTo(c + Pt(-k, s), c + Pt(-s, k), c + Pt(-s, 0));
            letter.CurveTo(c + Pt(-s, -k), c + Pt(-k, -s), c + Pt(0, -s));
            letter.CurveTo(c + Pt(k, -s), c + Pt(s, -k), c + Pt(s, 0)).ClosePath();
        }
        Combine(country, letter, "ring " + std::to_string(countries.size()), cut);
    }
    if (countries.empty()) {
        std::printf("%s: left out, as it is missing\n", name.c_str());
        return;
    }
    CPath out;
    double kept = 0.0;
    {
        Clock const clock(united);
        kept = trammel::Union(countries, kNonZero, 0.0, out);
    }
    double const size = SizeOf(together, CPath());
    Judge({OutlineJudge(together)}, out, kept, size, "", united, [&](Pt const& p) {
        return std::any_of(judges.begin(), judges.end(),
                           [&](OutlineJudge const& j) { return j.Holds(p, kNonZero); });
    });
    std::printf("%s: %zu rings with an area of %.6f in all become %zu contours with %.6f\n",
                name.c_str(), countries.size(), sum, trammel::SplitSubpaths(out).size(),
                AreaOf(out));
    tallies.push_back(united);
    tallies.push_back(cut);
}

} // namespace

int main(int argc, char** argv) {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        return 2;
    }
    std::vector<Tally> tallies;
    std::string kind;
    int glyphs = 1 << 20; // of each font
    for (int i = 1; i < argc; ++i) {
        std::string const argument = argv[i];
        if (argument.compare(0, 2, "--") == 0) {
            kind = argument;
        } else if (kind == "--fonts") {
            JudgeFont(library, argument, glyphs, tallies);
        } else if (kind == "--glyphs") {
            glyphs = std::max(std::atoi(argv[i]), 1);
        } else if (kind == "--icons") {
            JudgeIcons(argument, tallies);
        } else if (kind == "--maps") {
            JudgeMap(argument, tallies);
        } else {
            std::fprintf(stderr, "%s: of what kind?\n", argv[i]);
            return 2;
        }
    }
    FT_Done_FreeType(library);
    int wrong = 0;
    for (Tally const& tally : tallies) {
        tally.Print();
        wrong += tally.wrong + tally.wrongAreas;
    }
    return wrong == 0 ? 0 : 1;
}
