// SPDX-License-Identifier: MIT

// Judges what the library and others made of outlines. run.py beside this file calls it.
//
//   trammel_outline_judge --cases KIND    prints cases, a line each: strokes, pen, glyphs, rings,
//                                         grown, shrunk, handwriting, joints
//   trammel_outline_judge                 reads cases with results, and prints a verdict for each
//
// A line has "case" and "result" as run.py describes them. A verdict has "right", whether the
// result is right at two distances, and "elements", of which it consists. A conic counts as one.
//
// A region is right when each point of a sample is inside exactly as the winding numbers of the
// operands, their rules and the operation say. Points nearer to the operands' outlines than 1e-3 or
// 1e-6 of the size do not count. A stroke with round joins and caps is right when each point of a
// sample is inside exactly when it is within half the width of the path. Points nearer to that
// distance than 1e-2 or 1e-3 of the width do not count. The same goes for a region that is grown or
// shrunk by half the width.
//
// A fit or a simplified outline is right when its Hausdorff distance from what it replaces is at
// most the tolerance, or twice that. The judge halves pieces until each one is near one chord, so
// it overlooks nothing. A simplified map is right when it keeps the tolerance; the second verdict
// says that it also has no more crossings of lines than before.

#include "../OutlineInputs.h"
#include "outlines/HardPaths.h"
#include "outlines/HausdorffJudge.h"
#include "outlines/OutlineJudge.h"

#include <trammel/AccurateCurve.h>
#include <trammel/CPath.h>
#include <trammel/CPathActions.h>
#include <trammel/Moments.h>
#include <trammel/OutlineMeasure.h>
#include <trammel/PathBuilding.h>
#include <trammel/PathSegments.h>
#include <trammel/PathStructure.h>
#include <trammel/SvgPath.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

namespace {

using trammel::FillRule;
using trammel_test::Dice;
using trammel_test::OutlineJudge;

typedef nlohmann::json Json;
typedef TPoint<double> Pt;

FillRule RuleOf(Json const& operand) {
    return operand.value("f", "") == "evenodd" ? FillRule::kEvenOdd : FillRule::kNonZero;
}

CPath PathOf(std::string const& text) { return trammel::ReadSvgPath(text, 1e-9).path; }

/// Appends a conic as curves, whose error is about 1e-9 of its size for half a circle.
void AppendConic(CPath& path, Pt const& p0, Pt const& p1, Pt const& p2, double weight) {
    auto const at = [&](double t) {
        double const a = (1.0 - t) * (1.0 - t);
        double const b = 2.0 * t * (1.0 - t) * weight;
        double const c = t * t;
        return (p0 * a + p1 * b + p2 * c) * (1.0 / (a + b + c));
    };
    auto const slope = [&](double t) {
        double const d = (1.0 - t) * (1.0 - t) + 2.0 * t * (1.0 - t) * weight + t * t;
        double const dd = 2.0 * (weight - 1.0) * (1.0 - 2.0 * t);
        Pt const n =
            p0 * (-2.0 * (1.0 - t)) + p1 * (2.0 * weight * (1.0 - 2.0 * t)) + p2 * (2.0 * t);
        return (n - at(t) * dd) * (1.0 / d);
    };
    constexpr int kPieces = 16;
    for (int i = 0; i < kPieces; ++i) {
        double const t = static_cast<double>(i) / kPieces;
        double const u = static_cast<double>(i + 1) / kPieces;
        double const third = (u - t) / 3.0;
        Pt const end = i + 1 == kPieces ? p2 : at(u);
        trammel::AddCurve(path, at(t) + slope(t) * third, end - slope(u) * third, end);
    }
}

/// A result's path, and the number of its elements.
struct Result {
    CPath path;
    std::size_t elements = 0;
};

Result Read(Json const& d) {
    Result result;
    if (d.is_string()) {
        result.path = PathOf(d);
        result.elements = result.path.mCtls.size();
        return result;
    }
    Pt at(0, 0);
    Pt start(0, 0);
    for (Json const& segment : d) {
        std::string const kind = segment.at(0);
        auto const point = [&](std::size_t i) {
            return Pt(segment.at(2 * i + 1).get<double>(), segment.at(2 * i + 2).get<double>());
        };
        ++result.elements;
        if (kind == "Z") {
            result.path.ClosePath();
            at = start;
        } else if (kind == "M") {
            at = start = point(0);
            result.path.MoveTo(at);
        } else if (kind == "L") {
            at = point(0);
            result.path.LineTo(at);
        } else if (kind == "C") {
            at = point(2);
            trammel::AddCurve(result.path, point(0), point(1), at);
        } else {
            Pt const from = at;
            Pt const c = point(0);
            at = point(1);
            if (kind == "K") {
                AppendConic(result.path, from, c, at, segment.at(5));
            } else {
                trammel::QuadTo(result.path, c, at);
            }
        }
    }
    return result;
}

bool Wants(std::string const& op, bool a, bool b) {
    return op == "difference"     ? a && !b
           : op == "intersection" ? a && b
           : op == "xor"          ? a != b
                                  : a || b;
}

bool IsRegionRight(Json const& c, CPath const& result, FillRule rule, double delta) {
    bool const hasSecond = !c.at("b").is_null();
    std::vector<CPath> paths = {PathOf(c.at("a").at("d"))};
    if (hasSecond) {
        paths.push_back(PathOf(c.at("b").at("d")));
    }
    double low[2] = {1e308, 1e308};
    double high[2] = {-1e308, -1e308};
    std::vector<OutlineJudge> operands;
    for (CPath const& path : paths) {
        operands.emplace_back(path);
        for (Pt const& p : path.mPts) {
            low[0] = std::min(low[0], p.h);
            low[1] = std::min(low[1], p.v);
            high[0] = std::max(high[0], p.h);
            high[1] = std::max(high[1], p.v);
        }
    }
    double const size = std::max({high[0] - low[0], high[1] - low[1], 1e-300});
    OutlineJudge const judge(result);
    std::string const op = c.at("op");
    FillRule const first = RuleOf(c.at("a"));
    FillRule const second = hasSecond ? RuleOf(c.at("b")) : first;
    for (Pt const& p : trammel_test::SamplePoints(operands, judge, delta * size, size)) {
        bool const inA = operands[0].Holds(p, first);
        bool const want = hasSecond ? Wants(op, inA, operands[1].Holds(p, second)) : inA;
        if (want != judge.Holds(p, rule) &&
            std::none_of(operands.begin(), operands.end(),
                         [&](OutlineJudge const& o) { return o.IsNear(p, delta * size); })) {
            return false;
        }
    }
    return true;
}

/// The distance from the path at which the result's border lies.
double ReachOf(Json const& c) {
    return c.at("op") == "stroke" ? 0.5 * c.at("width").get<double>()
                                  : std::abs(c.at("distance").get<double>());
}

/// Judges a stroke, and a region that is grown or shrunk.
bool IsReachRight(Json const& c, CPath const& result, FillRule rule, double delta) {
    CPath const path = PathOf(c.at("a").at("d"));
    double const reach = ReachOf(c);
    bool const isStroke = c.at("op") == "stroke";
    bool const grows = isStroke || c.at("distance").get<double>() > 0.0;
    trammel::OutlineMeasure const measure(path);
    OutlineJudge const judge(result);
    OutlineJudge const region(path);
    auto const inside = [&](Pt const& p) {
        return !isStroke && region.Holds(p, RuleOf(c.at("a")));
    };
    Dice dice(20261122);
    std::vector<Pt> points;
    for (int i = 0; i < 200; ++i) {
        double const angle = dice.Between(0.0, 6.283185307179586);
        Pt const away = Pt(std::cos(angle), std::sin(angle)) * reach;
        Pt const p = measure.TPt(dice.Unit()) + away * dice.Between(0.0, 1.5);
        points.push_back(p);
        trammel::OutlineMeasure::Nearest const nearest = measure.FindNearest(p);
        if (nearest.distance > 0.0) {
            double const off = dice.Coin() ? 1.0 + 3.0 * delta : 1.0 - 3.0 * delta;
            points.push_back(nearest.point +
                             (p - nearest.point) * (reach / nearest.distance * off));
        }
    }
    return std::all_of(points.begin(), points.end(), [&](Pt const& p) {
        double const off = measure.Distance(p) - reach;
        bool const want = grows ? off < 0.0 || inside(p) : off > 0.0 && inside(p);
        return std::abs(off) <= delta * 2.0 * reach || judge.Holds(p, rule) == want;
    });
}

bool KeepsDistance(Json const& c, CPath const& result, double share) {
    return hausdorff::Keeps(hausdorff::ElementsOf(PathOf(c.at("a").at("d"))),
                            hausdorff::ElementsOf(result), c.at("tolerance").get<double>() * share);
}

/// The number of pairs of lines that cross inside both.
std::size_t CrossingLines(CPath const& path) {
    std::vector<hausdorff::Chord> lines;
    for (hausdorff::Element const& e : hausdorff::ElementsOf(path)) {
        lines.push_back({e.p[0], e.p[3]});
    }
    auto const left = [](hausdorff::Chord const& c) { return std::min(c.a.h, c.b.h); };
    std::sort(lines.begin(), lines.end(),
              [&](auto const& a, auto const& b) { return left(a) < left(b); });
    auto const side = [](hausdorff::Chord const& c, Pt const& p) {
        // Products of floats' differences are exact enough in long double for a map in degrees.
        long double const x = static_cast<long double>(c.b.h) - c.a.h;
        long double const y = static_cast<long double>(c.b.v) - c.a.v;
        long double const d = x * (static_cast<long double>(p.v) - c.a.v) -
                              y * (static_cast<long double>(p.h) - c.a.h);
        return d > 1e-15L ? 1 : d < -1e-15L ? -1 : 0;
    };
    std::size_t count = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        double const right = std::max(lines[i].a.h, lines[i].b.h);
        for (std::size_t k = i + 1; k < lines.size() && left(lines[k]) < right; ++k) {
            bool const crosses = side(lines[i], lines[k].a) * side(lines[i], lines[k].b) < 0 &&
                                 side(lines[k], lines[i].a) * side(lines[k], lines[i].b) < 0;
            count += crosses ? 1 : 0;
        }
    }
    return count;
}

Json Judge(Json const& line) {
    Json const& c = line.at("case");
    Json const& answer = line.at("result");
    if (!answer.contains("d")) {
        return {{"right", {false, false}}, {"elements", 0}};
    }
    Result const result = Read(answer.at("d"));
    std::string const op = c.at("op");
    Json verdict = {{"elements", result.elements}, {"right", Json::array()}};
    Json& right = verdict["right"];
    if (op == "fit" || op == "simplify") {
        right.push_back(KeepsDistance(c, result.path, 1.0));
        right.push_back(KeepsDistance(c, result.path, 2.0));
    } else if (op == "map") {
        bool const keeps = KeepsDistance(c, result.path, 1.0);
        right.push_back(keeps);
        right.push_back(keeps &&
                        CrossingLines(result.path) <= CrossingLines(PathOf(c.at("a").at("d"))));
    } else {
        bool const hasReach = op == "stroke" || op == "offset";
        for (double const delta : {hasReach ? 1e-2 : 1e-3, hasReach ? 1e-3 : 1e-6}) {
            right.push_back(
                (hasReach ? IsReachRight : IsRegionRight)(c, result.path, RuleOf(answer), delta));
        }
    }
    return verdict;
}

/// Prints a case of a stroke with round joins and caps and a tolerance of 1e-3 of the width.
void PrintStroke(CPath const& path, double width, std::size_t index) {
    Json const c = {{"name", "stroke" + std::to_string(index)},
                    {"op", "stroke"},
                    {"a", {{"d", trammel::WriteSvgPath(path)}}},
                    {"b", nullptr},
                    {"width", width},
                    {"tolerance", 1e-3 * width},
                    {"join", "round"},
                    {"cap", "round"}};
    std::cout << c.dump() << '\n';
}

void PrintHardStrokes() {
    Dice dice(7);
    for (std::size_t i = 0; i < 300; ++i) {
        int const kind = static_cast<int>(i) % trammel_test::kHardKinds;
        trammel_test::HardPath hard(kind, dice, false);
        for (Pt& p : hard.path.mPts) {
            p *= 100.0;
        }
        hard.path.InvalBounds();
        PrintStroke(hard.path, 100.0 * hard.width, i);
    }
}

void PrintGlyphStrokes() {
    std::vector<CPath> const& glyphs = inputs::Outlines(inputs::Set::kCff);
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        PrintStroke(glyphs[i], 2.0, i);
    }
}

void PrintUnions(std::vector<inputs::OutlinePair> const& pairs) {
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        auto const operand = [](CPath const& path) {
            return Json{{"f", "nonzero"}, {"d", trammel::WriteSvgPath(path)}};
        };
        Json const c = {{"name", "pair" + std::to_string(i)},
                        {"op", "union"},
                        {"a", operand(pairs[i].first)},
                        {"b", operand(pairs[i].second)}};
        std::cout << c.dump() << '\n';
    }
}

/// Prints a case of another work on one outline, with its numbers.
void PrintWork(std::string const& name, char const* op, CPath const& path, Json numbers) {
    numbers.update({{"name", name},
                    {"op", op},
                    {"a", {{"f", "nonzero"}, {"d", trammel::WriteSvgPath(path)}}},
                    {"b", nullptr}});
    std::cout << numbers.dump() << '\n';
}

/// Prints glyphs to grow or to shrink. Their outer contours run counter-clockwise on the screen, as
/// Inkscape needs it.
void PrintOffsets(double distance) {
    std::vector<CPath> const& glyphs = inputs::Outlines(inputs::Set::kCff);
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        CPath const turned =
            trammel::SignedArea(glyphs[i]) > 0.0 ? trammel::Reversed(glyphs[i]) : glyphs[i];
        PrintWork("glyph" + std::to_string(i), "offset", turned,
                  {{"distance", distance}, {"tolerance", 2e-3 * std::abs(distance)}});
    }
}

/// Prints strokes of a pen, 250 points each.
void PrintHandwriting() {
    constexpr std::size_t kStrokes = 40;
    constexpr std::size_t kPoints = 250;
    std::vector<Pt> const all = inputs::Handwriting(kStrokes * kPoints);
    for (std::size_t i = 0; i < kStrokes; ++i) {
        CPath path;
        for (std::size_t k = i * kPoints; k < (i + 1) * kPoints; ++k) {
            path.LineTo(all[k]);
        }
        PrintWork("stroke" + std::to_string(i), "fit", path, {{"tolerance", 0.5}});
    }
}

/// Adds a curve as 2^`rounds` parts of equal parameters.
void AddParts(CPath& path, Pt const& a, Pt const& b, Pt const& c, Pt const& d, int rounds) {
    if (rounds == 0) {
        trammel::AddCurve(path, b, c, d);
        return;
    }
    Pt const ab = (a + b) * 0.5;
    Pt const bc = (b + c) * 0.5;
    Pt const cd = (c + d) * 0.5;
    Pt const abc = (ab + bc) * 0.5;
    Pt const bcd = (bc + cd) * 0.5;
    Pt const middle = (abc + bcd) * 0.5;
    AddParts(path, a, ab, abc, middle, rounds - 1);
    AddParts(path, middle, bcd, cd, d, rounds - 1);
}

/// Prints glyphs whose curves are all cut into four, with the tolerance that Inkscape takes: 0.002
/// of the diagonal of the bounds.
void PrintJoints() {
    std::vector<CPath> const& glyphs = inputs::Outlines(inputs::Set::kCff);
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        CPath cut;
        for (trammel::Subpath const& subpath : trammel::Subpaths(glyphs[i])) {
            cut.MoveTo(subpath.Start());
            for (trammel::PathSegment const& s : subpath) {
                if (s.IsCurve()) {
                    AddParts(cut, s.start, s.control1, s.control2, s.end, 2);
                } else {
                    cut.LineTo(s.end);
                }
            }
            cut.ClosePath();
        }
        TRect<double> const box = trammel::TightBounds(glyphs[i]);
        PrintWork("glyph" + std::to_string(i), "simplify", cut,
                  {{"tolerance", 0.002 * std::hypot(box.Width(), box.Height())}});
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--cases") {
        std::string const kind = argv[2];
        if (kind == "strokes") {
            PrintHardStrokes();
        } else if (kind == "pen") {
            PrintGlyphStrokes();
        } else if (kind == "glyphs") {
            PrintUnions(inputs::GlyphPairs(inputs::Set::kCff));
        } else if (kind == "rings") {
            PrintUnions({inputs::CrossingRings(1000)});
        } else if (kind == "grown" || kind == "shrunk") {
            PrintOffsets(kind == "grown" ? 2.0 : -2.0);
        } else if (kind == "handwriting") {
            PrintHandwriting();
        } else if (kind == "joints") {
            PrintJoints();
        }
        return 0;
    }
    std::string line;
    while (std::getline(std::cin, line)) {
        std::cout << Judge(Json::parse(line)).dump() << std::endl;
    }
    return 0;
}
