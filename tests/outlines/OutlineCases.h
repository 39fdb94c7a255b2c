// SPDX-License-Identifier: MIT

// The cases of tests/data/outline_cases.txt: two operands and an operation each. Needs the macro
// TRAMMEL_TEST_DATA_DIR.

#ifndef TRAMMEL_OUTLINECASES_H
#define TRAMMEL_OUTLINECASES_H

#include "CPath.h"
#include "FillRule.h"
#include "SvgPath.h"
#include "TPoint.h"
#include "Tgcp.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace trammel_test {

struct OutlineCase {
    std::string name;
    TPolyOp op = kPolyUnion;
    CPath a;
    CPath b;
    trammel::FillRule ruleA = trammel::FillRule::kNonZero;
    trammel::FillRule ruleB = trammel::FillRule::kNonZero;
};

inline std::vector<OutlineCase> ReadOutlineCases() {
    std::ifstream file(TRAMMEL_TEST_DATA_DIR "/outline_cases.txt");
    std::vector<OutlineCase> cases;
    std::string line;
    std::getline(file, line); // the comment
    while (std::getline(file, line)) {
        OutlineCase c;
        std::istringstream head(line);
        std::string op;
        head >> c.name >> op;
        c.op = op == "union"          ? kPolyUnion
               : op == "intersection" ? kPolyIntersection
               : op == "xor"          ? kPolyXor
                                      : kPolyDifference;
        auto const rule = [](std::string const& name) {
            return name == "evenodd" ? trammel::FillRule::kEvenOdd : trammel::FillRule::kNonZero;
        };
        std::getline(file, line);
        c.ruleA = rule(line.substr(0, line.find(' ')));
        c.ruleB = rule(line.substr(line.find(' ') + 1));
        std::getline(file, line);
        c.a = trammel::ReadSvgPath(line).path;
        std::getline(file, line);
        c.b = trammel::ReadSvgPath(line).path;
        cases.push_back(c);
    }
    return cases;
}

/// Returns the greater side of the bounds of both, which have points.
inline double SizeOf(CPath const& a, CPath const& b) {
    TPoint<double> low = a.mPts.empty() ? b.mPts[0] : a.mPts[0];
    TPoint<double> high = low;
    for (CPath const* const path : {&a, &b}) {
        for (TPoint<double> const& p : path->mPts) {
            low = TPoint<double>(std::min(low.h, p.h), std::min(low.v, p.v));
            high = TPoint<double>(std::max(high.h, p.h), std::max(high.v, p.v));
        }
    }
    return std::max(high.h - low.h, high.v - low.v);
}

/// Turns a path around the origin, and then moves it.
inline void TurnAndMove(CPath& path, double angle, TPoint<double> const& by) {
    double const cosine = std::cos(angle);
    double const sine = std::sin(angle);
    for (TPoint<double>& p : path.mPts) {
        p = TPoint<double>(p.h * cosine - p.v * sine + by.h, p.h * sine + p.v * cosine + by.v);
    }
    path.InvalBounds();
}

} // namespace trammel_test

#endif
