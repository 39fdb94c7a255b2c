// SPDX-License-Identifier: MIT

// Judges operations on outlines that people drew: glyphs of fonts, icons, and the countries of a
// map. Nothing of these is in the repository.
//
//   trammel_real_outlines [--glyphs COUNT] [--fonts FILE...] [--icons FOLDER...] [--maps FILE...]
//
// - Fonts: each glyph united, cut and subtracted with the next one, which lies half over it, and
//   with itself embolded by Offset().
// - Icons: the paths of each icon without overlaps, and all of them united.
// - Maps: all countries united, and those of each continent. A word in the letters of the first
//   font is cut out of every eighth ring, or else a letter of curves.
//
// A region is right when the points of a sample are inside exactly as winding numbers tell
// (OutlineJudge.h). Areas by Green's theorem have to obey |A or B| + |A and B| = |A| + |B| within
// the length of the outlines times the distance that is kept.
//
// Prints a row for each kind as soon as it is judged. The status is 1 if something is wrong.

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
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <pugixml.hpp>

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
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file() || entry.is_symlink() || entry.path().extension() != ".svg") {
            continue;
        }
        pugi::xml_document document;
        if (!document.load_file(entry.path().c_str())) {
            std::printf("%s: left out, as it cannot be read\n", entry.path().c_str());
            continue;
        }
        std::vector<CPath> paths;
        std::vector<OutlineJudge> judges;
        CPath together;
        for (pugi::xpath_node const& data : document.select_nodes("//@d")) {
            trammel::SvgPathResult const result = trammel::ReadSvgPath(data.attribute().value());
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

/// A word as the contours of its letters, from 0 on, or an O where there is no font.
CPath Word(FT_Face face, std::string const& text) {
    CPath word;
    double along = 0.0;
    for (char const letter : face != nullptr ? text : std::string()) {
        FT_UInt const index = FT_Get_Char_Index(face, static_cast<FT_ULong>(letter));
        trammel::AppendSubpaths(word, Glyph(face, index, along).path);
        along += static_cast<double>(face->glyph->metrics.horiAdvance);
    }
    for (double const r : {face == nullptr ? 5.0 : 0.0, 3.0}) {
        double const k = 0.55 * r;
        if (face == nullptr) {
            word.MoveTo(Pt(r, 0)).CurveTo(Pt(r, k), Pt(k, r), Pt(0, r));
            word.CurveTo(Pt(-k, r), Pt(-r, k), Pt(-r, 0))
                .CurveTo(Pt(-r, -k), Pt(-k, -r), Pt(0, -r));
            word.CurveTo(Pt(k, -r), Pt(r, -k), Pt(r, 0)).ClosePath();
        }
    }
    return word;
}

/// Moves and scales a path to the middle of another one, half as wide.
CPath Fitted(CPath path, CPath const& into) {
    auto const middle = [](CPath const& of) {
        return Pt(of.Bounds().left + of.Bounds().right, of.Bounds().top + of.Bounds().bottom) * 0.5;
    };
    double const scale = 0.5 * SizeOf(into, CPath()) / SizeOf(path, CPath());
    Pt const from = middle(path);
    Pt const to = middle(into);
    for (Pt& p : path.mPts) {
        p = to + (p - from) * scale;
    }
    path.InvalBounds();
    return path;
}

/// Returns the continent of a country by its number, as the United Nations divide them. The last
/// continent takes all other countries.
std::size_t ContinentOf(std::string const& id) {
    static char const* const kContinents[] = {
        // Africa
        "012 024 072 108 120 132 140 148 174 178 180 204 226 231 232 262 266 270 288 324 384 404 "
        "426 430 434 450 454 466 478 480 504 508 516 562 566 624 646 654 678 686 690 694 706 710 "
        "716 728 729 732 748 768 788 800 818 834 854 894",
        // the Americas
        "028 032 044 052 060 068 076 084 092 124 136 152 170 188 192 212 214 218 222 238 304 308 "
        "320 328 332 340 388 484 500 531 533 534 558 591 600 604 630 652 659 660 662 663 666 670 "
        "740 780 796 840 850 858 862",
        // Asia
        "004 031 048 050 051 064 096 104 116 144 156 158 196 268 275 344 356 360 364 368 376 392 "
        "398 400 408 410 414 417 418 422 446 458 462 496 512 524 586 608 626 634 682 702 704 760 "
        "762 764 784 792 795 860 887",
        // Europe
        "008 020 040 056 070 100 112 191 203 208 233 234 246 248 250 276 300 336 348 352 372 380 "
        "428 438 440 442 470 492 498 499 528 578 616 620 642 643 674 688 703 705 724 752 756 804 "
        "807 826 831 832 833"};
    std::size_t i = 0;
    while (i < std::size(kContinents) &&
           (id.empty() || std::string(kContinents[i]).find(id) == std::string::npos)) {
        ++i;
    }
    return i;
}

/// Unites outlines, and judges the points beside some of them. The area must be that of all, less
/// what they have in common. Returns the number of contours.
std::size_t JudgeUnion(std::vector<CPath> const& outlines, Tally& tally) {
    std::vector<OutlineJudge> judges;
    CPath together;
    double sum = 0.0;
    for (CPath const& outline : outlines) {
        judges.emplace_back(outline);
        sum += AreaOf(outline);
        trammel::AppendSubpaths(together, outline);
    }
    CPath out;
    double kept = 0.0;
    {
        Clock const clock(tally);
        kept = trammel::Union(outlines, FillRule::kEvenOdd, 0.0, out);
    }
    double const size = SizeOf(together, CPath());
    OutlineJudge const all(together);
    OutlineJudge const result(out);
    ++tally.asked;
    tally.worst = std::max(tally.worst, kept / size);
    std::mt19937 random(1);
    int wrong = 0;
    for (std::size_t i = 0; i < judges.size(); i += judges.size() / 100 + 1) {
        int number = 0;
        judges[i].ForBeside(random, 1, 1e-5 * size, [&](Pt const& p) {
            if (++number % 8 != 0 || all.IsNear(p, std::max(kept, kDelta * size))) {
                return;
            }
            bool const in = std::any_of(judges.begin(), judges.end(), [&](OutlineJudge const& j) {
                return j.Holds(p, FillRule::kEvenOdd);
            });
            wrong += in != result.Holds(p, kNonZero) || in != result.Holds(p, FillRule::kEvenOdd);
        });
    }
    if (wrong != 0) {
        ++tally.wrong;
        std::printf("wrong: %s at %d points\n", tally.name.c_str(), wrong);
    }
    // Countries of a map overlap by slivers, and where they lie across the date line.
    double common = 0.0;
    for (std::size_t i = 0; i < outlines.size(); ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            auto const a = outlines[i].Bounds();
            auto const b = outlines[k].Bounds();
            if (a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom) {
                CPath in;
                trammel::Boolean(kPolyIntersection, outlines[i], FillRule::kEvenOdd, outlines[k],
                                 FillRule::kEvenOdd, 0.0, in);
                common += AreaOf(in);
            }
        }
    }
    double const area = AreaOf(out);
    double const slack = (4.0 * kept + 1e-9 * size) * trammel::ArcLength(together, size);
    if (!(area <= sum + slack) || !(area >= sum - common - slack)) {
        ++tally.wrongAreas;
        std::printf("areas: %s %.9f, not from %.9f to %.9f\n", tally.name.c_str(), area,
                    sum - common, sum);
    }
    return trammel::SplitSubpaths(out).size();
}

void JudgeMap(std::string const& name, FT_Face face, std::vector<Tally>& tallies) {
    Tally continents{name + ", continents"};
    Tally united{name + ", all countries"};
    Tally cut{name + ", a word cut out"};
    CPath const word = Word(face, "Trammel");
    std::vector<CPath> all;
    std::vector<std::vector<CPath>> byContinent(5);
    std::size_t rings = 0;
    for (trammel_test::Country const& country : trammel_test::EachCountryOf(name)) {
        CPath outline;
        for (std::vector<Pt> const& contour : country.contours) {
            CPath ring;
            for (Pt const& p : contour) {
                ring.mPts.empty() ? ring.MoveTo(p) : ring.LineTo(p);
            }
            ring.ClosePath();
            trammel::AppendSubpaths(outline, ring);
            if (++rings % 8 == 1) { // the judge takes long
                Combine(ring, Fitted(word, ring), "ring " + std::to_string(rings), cut);
            }
        }
        all.push_back(outline);
        byContinent[ContinentOf(country.id)].push_back(outline);
    }
    if (all.empty()) {
        std::printf("%s: left out, as it is missing\n", name.c_str());
        return;
    }
    std::size_t contours = 0;
    for (std::vector<CPath> const& countries : byContinent) {
        contours += JudgeUnion(countries, continents);
    }
    std::printf("%s: %zu rings become continents with %zu contours, and %zu when all are united\n",
                name.c_str(), rings, contours, JudgeUnion(all, united));
    tallies.push_back(continents);
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
    FT_Face face = nullptr; // for letters on maps
    std::string kind;
    int glyphs = 1 << 20; // of each font
    int wrong = 0;
    std::size_t printed = 0;
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); // a file, too, shows how far the run is
    for (int i = 1; i < argc; ++i) {
        std::string const argument = argv[i];
        if (argument.compare(0, 2, "--") == 0) {
            kind = argument;
        } else if (kind == "--fonts") {
            JudgeFont(library, argument, glyphs, tallies);
            if (face == nullptr) {
                FT_New_Face(library, argument.c_str(), 0, &face);
            }
        } else if (kind == "--glyphs") {
            glyphs = std::max(std::atoi(argv[i]), 1);
        } else if (kind == "--icons") {
            JudgeIcons(argument, tallies);
        } else if (kind == "--maps") {
            JudgeMap(argument, face, tallies);
        } else {
            std::fprintf(stderr, "%s: of what kind?\n", argv[i]);
            return 2;
        }
        for (; printed < tallies.size(); ++printed) {
            tallies[printed].Print();
            wrong += tallies[printed].wrong + tallies[printed].wrongAreas;
        }
    }
    FT_Done_FreeType(library);
    return wrong == 0 ? 0 : 1;
}
