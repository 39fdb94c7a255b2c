// SPDX-License-Identifier: MIT

#include "OutlineOperations.h"

#include "OutlineJudge.h"
#include "SvgPath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using trammel::Boolean;
using trammel::ElementSource;
using trammel::FillRule;
using trammel::RemoveOverlap;
using trammel_test::OutlineJudge;

typedef TPoint<double> Pt;

FillRule const kNonZero = FillRule::kNonZero;
FillRule const kEvenOdd = FillRule::kEvenOdd;

CPath Path(std::string const& text) {
    trammel::SvgPathResult const result = trammel::ReadSvgPath(text);
    EXPECT_FALSE(result.error) << text;
    return result.path;
}

std::string Text(CPath const& path) { return trammel::WriteSvgPath(path); }

/// A case of the file: two operands and an operation.
struct Case {
    std::string name;
    TPolyOp op = kPolyUnion;
    CPath a;
    CPath b;
    FillRule ruleA = kNonZero;
    FillRule ruleB = kNonZero;
};

std::vector<Case> ReadCases() {
    std::ifstream file(TRAMMEL_TEST_DATA_DIR "/outline_cases.txt");
    std::vector<Case> cases;
    std::string line;
    std::getline(file, line); // the comment
    while (std::getline(file, line)) {
        Case c;
        std::istringstream head(line);
        std::string op;
        head >> c.name >> op;
        c.op = op == "union"          ? kPolyUnion
               : op == "intersection" ? kPolyIntersection
               : op == "xor"          ? kPolyXor
                                      : kPolyDifference;
        std::getline(file, line);
        c.ruleA = line.substr(0, line.find(' ')) == "evenodd" ? kEvenOdd : kNonZero;
        c.ruleB = line.substr(line.find(' ') + 1) == "evenodd" ? kEvenOdd : kNonZero;
        std::getline(file, line);
        c.a = Path(line);
        std::getline(file, line);
        c.b = Path(line);
        cases.push_back(c);
    }
    return cases;
}

bool Wants(TPolyOp op, bool a, bool b) {
    switch (op) {
    case kPolyDifference:
        return a && !b;
    case kPolyIntersection:
        return a && b;
    case kPolyXor:
        return a != b;
    default:
        return a || b;
    }
}

double SizeOf(CPath const& a, CPath const& b) {
    CPath both = a;
    for (Pt const& p : b.mPts) {
        both.AddPt(p);
    }
    double low[2] = {both.mPts[0].h, both.mPts[0].v};
    double high[2] = {low[0], low[1]};
    for (Pt const& p : both.mPts) {
        low[0] = std::min(low[0], p.h);
        high[0] = std::max(high[0], p.h);
        low[1] = std::min(low[1], p.v);
        high[1] = std::max(high[1], p.v);
    }
    return std::max(high[0] - low[0], high[1] - low[1]);
}

/// Expects that the region of a case is right at points farther than 1e-6 of the size, and than the
/// distance kept, from the operands.
void ExpectRight(Case const& c) {
    CPath out;
    double const size = SizeOf(c.a, c.b);
    double const kept = Boolean(c.op, c.a, c.ruleA, c.b, c.ruleB, 0.0, out);
    EXPECT_LE(kept, 1e-6 * size) << c.name;
    std::vector<OutlineJudge> const operands = {OutlineJudge(c.a), OutlineJudge(c.b)};
    int const wrong = trammel_test::WrongPoints(
        operands, OutlineJudge(out), std::max(kept, 1e-6 * size), size, [&](Pt const& p) {
            return Wants(c.op, operands[0].Holds(p, c.ruleA), operands[1].Holds(p, c.ruleB));
        });
    EXPECT_EQ(0, wrong) << c.name;
}

TEST(OutlineOperations, KeepThePointsThatWindingNumbersRulesAndOperationTell) {
    std::vector<Case> const cases = ReadCases();
    ASSERT_EQ(230u, cases.size());
    for (Case const& c : cases) {
        ExpectRight(c);
    }
}

TEST(OutlineOperations, CutCirclesWhereTheyCross) {
    CPath const a = Path("M2 0C2 1.1 1.1 2 0 2C-1.1 2 -2 1.1 -2 0C-2 -1.1 -1.1 -2 0 -2C1.1 -2 2 "
                         "-1.1 2 0Z");
    CPath const b = Path("M4 0C4 1.1 3.1 2 2 2C0.9 2 0 1.1 0 0C0 -1.1 0.9 -2 2 -2C3.1 -2 4 -1.1 4 "
                         "0Z");
    CPath out;
    std::vector<ElementSource> sources;
    double const kept = Boolean(kPolyUnion, a, kNonZero, b, kNonZero, 0.0, out, &sources);
    EXPECT_GT(kept, 0.0);
    EXPECT_LT(kept, 1e-8);
    // Four of the eight quarters stay whole, and the others end where the circles cross.
    EXPECT_EQ(10u, out.mCtls.size());
    EXPECT_EQ(8, std::count(out.mCtls.begin(), out.mCtls.end(), kPathCurve));
    ASSERT_EQ(out.mCtls.size(), sources.size());
    EXPECT_EQ(ElementSource::kNoSource, sources.front().operand);
    EXPECT_EQ(4, std::count_if(sources.begin(), sources.end(), [](ElementSource const& s) {
                  return s.from == 0.0 && s.to == 1.0;
              }));
}

TEST(OutlineOperations, LeaveAnOutlineWithoutOverlapAsItIs) {
    std::string const text = "M10 0L20 0C20 5 25 10 30 10L30 30C10 30 0 20 0 10C0 5 5 0 10 0ZM12 "
                             "10C12 12 14 14 16 14C18 14 20 12 20 10Z";
    CPath out;
    RemoveOverlap(Path(text), kEvenOdd, 0.0, out);
    EXPECT_EQ(Text(Path(text)), Text(out));
}

TEST(OutlineOperations, CancelAnOutlineWithItselfReversed) {
    CPath const a = Path("M10 0L20 0C20 5 25 10 30 10L30 30C10 30 0 20 0 10C0 5 5 0 10 0Z");
    CPath const b = Path("M10 0C5 0 0 5 0 10C0 20 10 30 30 30L30 10C25 10 20 5 20 0Z");
    CPath out;
    Boolean(kPolyXor, a, kNonZero, b, kNonZero, 0.0, out);
    EXPECT_EQ("", Text(out));
    Boolean(kPolyUnion, a, kNonZero, b, kNonZero, 0.0, out);
    EXPECT_EQ(Text(a), Text(out));
}

TEST(OutlineOperations, GiveNothingForNothingAndForCoordinatesThatAreNotFinite) {
    double const bad[] = {std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity()};
    CPath out = Path("M0 0L1 0L0 1Z");
    EXPECT_EQ(0.0, Boolean(kPolyUnion, CPath(), kNonZero, CPath(), kNonZero, 0.0, out));
    EXPECT_TRUE(out.mCtls.empty());
    CPath const good = Path("M0 0C5 0 5 5 0 5Z");
    for (double const x : bad) {
        CPath absent = Path("M1 1L9 1L9 9Z");
        absent.mPts[1].h = x;
        Boolean(kPolyUnion, good, kNonZero, absent, kNonZero, 0.0, out);
        EXPECT_EQ(Text(good), Text(out));
    }
    Boolean(static_cast<TPolyOp>(77), good, kNonZero, good, kNonZero, 0.0, out);
    EXPECT_TRUE(out.mCtls.empty());
}

TEST(OutlineOperations, TakeThePathOfAnOperandForTheResult) {
    CPath a = Path("M0 0C5 0 5 5 0 5Z");
    CPath const b = Path("M0 0L2 0L2 9L0 9Z");
    CPath out;
    Boolean(kPolyDifference, a, kNonZero, b, kNonZero, 0.0, out);
    Boolean(kPolyDifference, a, kNonZero, b, kNonZero, 0.0, a);
    EXPECT_EQ(Text(out), Text(a));
}

} // namespace
