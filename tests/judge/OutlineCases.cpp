// SPDX-License-Identifier: MIT

// Judges operations on outlines by cases in files. Each case is also tried with swapped operands,
// turned, scaled and moved far away, and overlaps are removed from its result again.
//
//   trammel_outline_cases FILE...
//
// A file has a case on each line, as JSON: "name", "op" (union, intersection, difference, xor, or
// reverse for b without a), and the operands "a" and "b", each with "f" (nonzero, evenodd) and "d"
// (segments M L Q C Z). Without "b" overlaps are removed. Cases with inverse rules ("inv..."),
// conics (K) or other operations are left out.
//
// A result is right when each point of a sample is inside exactly as winding numbers, rules and
// operation say. Points nearer to the operands' outlines than 1e-6 of the size do not count.
// The laws of OutlineLaws.h are tried on each two operands, with chains of 12 operations.
// OutlineJudge.h finds winding numbers by solving, and knows nothing of the library. Each element
// of a result must be a part of its source (SourceJudge.h), and contours must not cross by the
// distance that is kept (CrossingJudge.h).
//
// Prints a line for each wrong result and a table. The status is 1 if there is a wrong result.

#include "CPath.h"
#include "OutlineOperations.h"
#include "outlines/CrossingJudge.h"
#include "outlines/OutlineJudge.h"
#include "outlines/OutlineLaws.h"
#include "outlines/SourceJudge.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using trammel::Boolean;
using trammel::FillRule;
using trammel::RemoveOverlap;
using trammel_test::OutlineJudge;
using trammel_test::Wants;

typedef TPoint<double> Pt;
typedef nlohmann::json Json;

constexpr double kDelta = 1e-6; // of the size

struct Operand {
    CPath path;
    FillRule rule = FillRule::kNonZero;
};

struct Case {
    std::string name;
    TPolyOp op = kPolyUnion;
    bool removesOverlap = false;
    Operand a;
    Operand b;
};

/// How the cases of one kind went.
struct Tally {
    int cases = 0;
    int wrong = 0;
    int coarse = 0;     ///< kept a distance above 1e-6 of the size
    double worst = 0.0; ///< the greatest distance kept, of the size
    std::size_t elements = 0;
    std::vector<double> microseconds;
};

/// Reads the segments of a path. Returns false where one of them is of another kind.
bool Read(Json const& operand, Operand& out) {
    std::string const rule = operand.at("f");
    if (rule != "nonzero" && rule != "evenodd") {
        return false;
    }
    out.rule = rule == "evenodd" ? FillRule::kEvenOdd : FillRule::kNonZero;
    Pt at(0, 0);
    Pt start(0, 0);
    bool begun = false;
    for (Json const& segment : operand.at("d")) {
        std::string const kind = segment.at(0);
        auto const point = [&](std::size_t i) {
            return Pt(segment.at(2 * i + 1).get<double>(), segment.at(2 * i + 2).get<double>());
        };
        if (kind == "Z") {
            if (begun) {
                out.path.ClosePath();
            }
            at = start;
            begun = false;
            continue;
        }
        if (kind == "M") {
            at = start = point(0);
            out.path.MoveTo(at);
            begun = true;
            continue;
        }
        if (!begun) { // the next subpath begins where the last one was closed
            out.path.MoveTo(at);
            begun = true;
        }
        Pt const from = at;
        if (kind == "L") {
            at = point(0);
            out.path.LineTo(at);
        } else if (kind == "Q") {
            Pt const c = point(0);
            at = point(1);
            out.path.CurveTo(from + (c - from) * (2.0 / 3.0), at + (c - at) * (2.0 / 3.0), at);
        } else if (kind == "C") {
            at = point(2);
            out.path.CurveTo(point(0), point(1), at);
        } else {
            return false;
        }
    }
    return true;
}

bool Read(Json const& json, Case& out) {
    static std::map<std::string, TPolyOp> const kOps = {{"union", kPolyUnion},
                                                        {"intersection", kPolyIntersection},
                                                        {"xor", kPolyXor},
                                                        {"difference", kPolyDifference},
                                                        {"reverse", kPolyDifference}};
    auto const op = kOps.find(json.at("op"));
    if (op == kOps.end()) {
        return false;
    }
    out.name = json.at("name");
    out.op = op->second;
    out.removesOverlap = !json.contains("b") || json.at("b").is_null();
    if (!Read(json.at("a"), out.a) || (!out.removesOverlap && !Read(json.at("b"), out.b))) {
        return false;
    }
    if (op->first == "reverse") {
        std::swap(out.a, out.b);
    }
    return true;
}

double SizeOf(Case const& c) {
    double low[2] = {1e308, 1e308};
    double high[2] = {-1e308, -1e308};
    for (CPath const* const path : {&c.a.path, &c.b.path}) {
        for (Pt const& p : path->mPts) {
            low[0] = std::min(low[0], p.h);
            high[0] = std::max(high[0], p.h);
            low[1] = std::min(low[1], p.v);
            high[1] = std::max(high[1], p.v);
        }
    }
    return std::max({high[0] - low[0], high[1] - low[1], 1e-300});
}

double Run(Case const& c, CPath& out, std::vector<trammel::ElementSource>* sources) {
    return c.removesOverlap
               ? RemoveOverlap(c.a.path, c.a.rule, 0.0, out, sources)
               : Boolean(c.op, c.a.path, c.a.rule, c.b.path, c.b.rule, 0.0, out, sources);
}

/// Does the work of a case, and adds what came of it to the tally.
void Judge(Case const& c, std::string const& kind, Tally& tally) {
    CPath out;
    double const size = SizeOf(c);
    auto const begin = std::chrono::steady_clock::now();
    double const kept = Run(c, out, nullptr);
    auto const end = std::chrono::steady_clock::now();
    tally.microseconds.push_back(std::chrono::duration<double, std::micro>(end - begin).count());
    ++tally.cases;
    tally.elements += out.mCtls.size();
    tally.worst = std::max(tally.worst, kept / size);
    tally.coarse += kept > kDelta * size ? 1 : 0;
    std::vector<OutlineJudge> operands = {OutlineJudge(c.a.path)};
    if (!c.removesOverlap) {
        operands.emplace_back(c.b.path);
    }
    double const distance = std::max(kept, kDelta * size);
    int wrong =
        trammel_test::WrongPoints(operands, OutlineJudge(out), distance, size, [&](Pt const& p) {
            bool const inA = operands[0].Holds(p, c.a.rule);
            return c.removesOverlap ? inA : Wants(c.op, inA, operands[1].Holds(p, c.b.rule));
        });
    // Done twice, the region stays. Its points are told apart beside the first result's outline.
    CPath again;
    double const keptAgain = RemoveOverlap(out, FillRule::kNonZero, 0.0, again);
    OutlineJudge const once(out);
    if (!once.segments.empty()) {
        wrong += trammel_test::WrongPoints(
            {once}, OutlineJudge(again), std::max(keptAgain, kDelta * size), size,
            [&](Pt const& p) { return once.Holds(p, FillRule::kNonZero); });
    } else if (!again.mCtls.empty()) {
        ++wrong;
    }
    std::vector<trammel::ElementSource> sources;
    Run(c, out, &sources);
    std::string const source =
        trammel_test::SourceJudge({c.a.path, c.b.path}).Wrong(out, sources, kept);
    int const deep = trammel_test::CrossingsOf(out, 1e-12 * size, kept).deep;
    if (wrong != 0 || deep != 0 || !source.empty()) {
        ++tally.wrong;
        std::printf("%s: %s: wrong at %d points, %d crossings; %s\n", c.name.c_str(), kind.c_str(),
                    wrong, deep, source.c_str());
    }
}

/// How the laws of sets held.
struct LawTally {
    int asked = 0;
    int wrong = 0;
    double worst = 0.0; ///< the greatest sum of distances, of the size
};

void JudgeLaws(Case const& c, LawTally& tally) {
    double const size = SizeOf(c);
    trammel_test::OutlineLaws laws(c.a.path, c.a.rule, c.b.path, c.b.rule, size, kDelta * size);
    int const wrong[] = {laws.WrongOfParts(), laws.WrongByDeMorgan(), laws.WrongOfChain(),
                         laws.WrongOfRepeating()};
    constexpr char const* kNames[] = {"parts", "De Morgan", "chain", "repeating"};
    for (std::size_t i = 0; i < 4; ++i) {
        ++tally.asked;
        if (wrong[i] != 0) {
            ++tally.wrong;
            std::printf("%s: %s: wrong at %d points\n", c.name.c_str(), kNames[i], wrong[i]);
        }
    }
    tally.worst = std::max(tally.worst, laws.Worst() / size);
}

Case Moved(Case const& c, double angle, double scale, Pt const& by) {
    Case moved = c;
    double const cosine = std::cos(angle) * scale;
    double const sine = std::sin(angle) * scale;
    for (CPath* const path : {&moved.a.path, &moved.b.path}) {
        for (std::size_t i = 0; i < path->mPts.size(); ++i) {
            Pt const p = path->mPts[i];
            path->mPts[i] = Pt(p.h * cosine - p.v * sine + by.h, p.h * sine + p.v * cosine + by.v);
        }
    }
    return moved;
}

void Print(std::string const& kind, Tally& tally) {
    std::sort(tally.microseconds.begin(), tally.microseconds.end());
    std::printf("  %-22s %5d of %5d right, %3d above 1e-6 (worst %.1e), %7zu elements, "
                "median %.0f us, most %.0f us\n",
                kind.c_str(), tally.cases - tally.wrong, tally.cases, tally.coarse, tally.worst,
                tally.elements, tally.microseconds[tally.microseconds.size() / 2],
                tally.microseconds.back());
}

} // namespace

int main(int argc, char** argv) {
    int wrong = 0;
    for (int i = 1; i < argc; ++i) {
        std::ifstream file(argv[i]);
        if (!file) {
            std::fprintf(stderr, "%s: cannot be opened\n", argv[i]);
            return 2;
        }
        struct Kind {
            char const* name;
            double angle;
            double scale;
            double away; // in sizes
        };
        constexpr Kind kKinds[] = {
            {"as they are", 0, 1, 0},           {"turned by 0.3", 0.3, 1, 0},
            {"turned by 1.1", 1.1, 1, 0},       {"turned by 2.5", 2.5, 1, 0},
            {"scaled by 1e-150", 0, 1e-150, 0}, {"scaled by 1e120", 0, 1e120, 0},
            {"1000 sizes away", 0.3, 1, 1000}};
        std::vector<Tally> tallies(std::size(kKinds) + 1);
        LawTally laws;
        int left = 0;
        std::string line;
        while (std::getline(file, line)) {
            Case c;
            if (!Read(Json::parse(line), c)) {
                ++left;
                continue;
            }
            for (std::size_t k = 0; k < std::size(kKinds); ++k) {
                Kind const& kind = kKinds[k];
                double const away = kind.away * SizeOf(c);
                Judge(Moved(c, kind.angle, kind.scale, Pt(away, -away)), kind.name, tallies[k]);
            }
            if (!c.removesOverlap) {
                Case swapped = c;
                std::swap(swapped.a, swapped.b);
                Judge(swapped, "swapped", tallies.back());
                JudgeLaws(c, laws);
            }
        }
        std::printf("%s (%d left out)\n", argv[i], left);
        for (std::size_t k = 0; k < std::size(kKinds); ++k) {
            Print(kKinds[k].name, tallies[k]);
        }
        if (tallies.back().cases != 0) {
            Print("swapped", tallies.back());
        }
        for (Tally const& tally : tallies) {
            wrong += tally.wrong;
        }
        std::printf("  %-22s %5d of %5d right (worst %.1e)\n", "laws of sets",
                    laws.asked - laws.wrong, laws.asked, laws.worst);
        wrong += laws.wrong;
    }
    return wrong == 0 ? 0 : 1;
}
