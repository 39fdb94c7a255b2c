// SPDX-License-Identifier: MIT

// Judges what the library and others made of outlines. run.py beside this file calls it.
//
//   trammel_outline_judge --cases strokes|pen|glyphs|rings    prints such cases, a line each
//   trammel_outline_judge                                     reads cases with results, and prints
//   a verdict for each
//
// A line has "case" and "result" as run.py describes them. A verdict has "right", whether the
// result is right at two distances, and "elements", of which it consists. A conic counts as one.
//
// A region is right when each point of a sample is inside exactly as the winding numbers of the
// operands, their rules and the operation say. Points nearer to the operands' outlines than 1e-3 or
// 1e-6 of the size do not count. A stroke with round joins and caps is right when each point of a
// sample is inside exactly when it is within half the width of the path. Points nearer to that
// distance than 1e-2 or 1e-3 of the width do not count.

#include "../OutlineInputs.h"
#include "outlines/HardPaths.h"
#include "outlines/OutlineJudge.h"

#include <trammel/CPath.h>
#include <trammel/CPathActions.h>
#include <trammel/OutlineMeasure.h>
#include <trammel/PathBuilding.h>
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

bool IsStrokeRight(Json const& c, CPath const& result, FillRule rule, double delta) {
    CPath const path = PathOf(c.at("a").at("d"));
    double const width = c.at("width");
    trammel::OutlineMeasure const measure(path);
    OutlineJudge const judge(result);
    Dice dice(20261122);
    std::vector<Pt> points;
    for (int i = 0; i < 200; ++i) {
        double const angle = dice.Between(0.0, 6.283185307179586);
        Pt const away = Pt(std::cos(angle), std::sin(angle)) * (0.5 * width);
        Pt const p = measure.TPt(dice.Unit()) + away * dice.Between(0.0, 1.5);
        points.push_back(p);
        trammel::OutlineMeasure::Nearest const nearest = measure.FindNearest(p);
        if (nearest.distance > 0.0) {
            double const off = dice.Coin() ? 1.0 + 3.0 * delta : 1.0 - 3.0 * delta;
            points.push_back(nearest.point +
                             (p - nearest.point) * (0.5 * width / nearest.distance * off));
        }
    }
    return std::all_of(points.begin(), points.end(), [&](Pt const& p) {
        double const off = measure.Distance(p) - 0.5 * width;
        return std::abs(off) <= delta * width || judge.Holds(p, rule) == (off < 0.0);
    });
}

Json Judge(Json const& line) {
    Json const& c = line.at("case");
    Json const& answer = line.at("result");
    if (!answer.contains("d")) {
        return {{"right", {false, false}}, {"elements", 0}};
    }
    Result const result = Read(answer.at("d"));
    bool const isStroke = c.at("op") == "stroke";
    Json verdict = {{"elements", result.elements}, {"right", Json::array()}};
    for (double const delta : {isStroke ? 1e-2 : 1e-3, isStroke ? 1e-3 : 1e-6}) {
        verdict["right"].push_back(
            (isStroke ? IsStrokeRight : IsRegionRight)(c, result.path, RuleOf(answer), delta));
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
        }
        return 0;
    }
    std::string line;
    while (std::getline(std::cin, line)) {
        std::cout << Judge(Json::parse(line)).dump() << std::endl;
    }
    return 0;
}
