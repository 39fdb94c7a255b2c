// SPDX-License-Identifier: MIT

// What holds for regions whatever they are: several operations, one after another, must give what
// winding numbers of the first operands tell. The distances that are kept add up.

#ifndef TRAMMEL_OUTLINELAWS_H
#define TRAMMEL_OUTLINELAWS_H

#include "OutlineOperations.h"
#include "outlines/OutlineJudge.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace trammel_test {

/// Two regions, and the laws for them.
class OutlineLaws {
public:
    typedef TPoint<double> Pt;
    typedef trammel::FillRule FillRule;

    /// \param size the greater side of the bounds of both. \param finest points nearer to an
    ///     outline than this do not count, be it kept or not.
    OutlineLaws(CPath const& a, FillRule ruleA, CPath const& b, FillRule ruleB, double size,
                double finest)
        : mA(a), mB(b), mRuleA(ruleA), mRuleB(ruleB), mSize(size), mFinest(finest) {}

    /// The parts of A in B and outside of B are A together. Returns the number of wrong points.
    int WrongOfParts() {
        CPath in;
        CPath out;
        CPath both;
        double kept = Do(kPolyIntersection, mA, mRuleA, mB, mRuleB, in);
        kept += Do(kPolyDifference, mA, mRuleA, mB, mRuleB, out);
        kept += Do(kPolyUnion, in, kNonZero, out, kNonZero, both);
        return WrongUnlessA(mB, both, kept);
    }
    /// A point in neither A nor B is outside of A and outside of B.
    int WrongByDeMorgan() {
        Pt low = mA.mPts.empty() ? Pt(0, 0) : mA.mPts[0];
        Pt high = low;
        for (CPath const* const path : {&mA, &mB}) {
            for (Pt const& p : path->mPts) {
                low = Pt(std::min(low.h, p.h), std::min(low.v, p.v));
                high = Pt(std::max(high.h, p.h), std::max(high.v, p.v));
            }
        }
        low -= Pt(mSize, mSize) * 0.25;
        high += Pt(mSize, mSize) * 0.25;
        CPath frame;
        frame.MoveTo(low).LineTo(Pt(high.h, low.v)).LineTo(high).LineTo(Pt(low.h, high.v));
        frame.ClosePath();
        CPath notA;
        CPath notB;
        CPath neither;
        double kept = Do(kPolyDifference, frame, kNonZero, mA, mRuleA, notA);
        kept += Do(kPolyDifference, frame, kNonZero, mB, mRuleB, notB);
        kept += Do(kPolyIntersection, notA, kNonZero, notB, kNonZero, neither);
        std::vector<OutlineJudge> const operands = {OutlineJudge(mA), OutlineJudge(mB),
                                                    OutlineJudge(frame)};
        return Count(operands, neither, kept, [&](Pt const& p) {
            return operands[2].Holds(p, kNonZero) && !operands[0].Holds(p, mRuleA) &&
                   !operands[1].Holds(p, mRuleB);
        });
    }
    /// Twelve operations in turn, each with B moved a little farther.
    int WrongOfChain() {
        constexpr TPolyOp kOps[] = {kPolyUnion,        kPolyDifference, kPolyXor,
                                    kPolyIntersection, kPolyXor,        kPolyUnion};
        std::vector<OutlineJudge> operands = {OutlineJudge(mA)};
        CPath result = mA;
        FillRule rule = mRuleA;
        double kept = 0.0;
        for (int i = 0; i < 12; ++i) {
            CPath moved = mB;
            for (Pt& p : moved.mPts) {
                p += Pt(0.013 * i, 0.007 * i) * mSize;
            }
            moved.InvalBounds();
            operands.emplace_back(moved);
            CPath next;
            kept += Do(kOps[i % 6], result, rule, moved, mRuleB, next);
            result = next;
            rule = kNonZero;
        }
        return Count(operands, result, kept, [&](Pt const& p) {
            bool in = operands[0].Holds(p, mRuleA);
            for (int i = 0; i < 12; ++i) {
                in = Wants(kOps[i % 6], in,
                           operands[static_cast<std::size_t>(i) + 1].Holds(p, mRuleB));
            }
            return in;
        });
    }
    /// Without overlaps, contours keep their region when overlaps are removed once more.
    int WrongOfRepeating() {
        CPath once;
        CPath twice;
        double kept = trammel::RemoveOverlap(mA, mRuleA, 0.0, once);
        kept += trammel::RemoveOverlap(once, kNonZero, 0.0, twice);
        mWorst = std::max(mWorst, kept);
        return WrongUnlessA(mA, twice, kept);
    }
    /// Returns the greatest sum of distances.
    double Worst() const { return mWorst; }

private:
    static constexpr FillRule kNonZero = FillRule::kNonZero;

    double Do(TPolyOp op, CPath const& a, FillRule ruleA, CPath const& b, FillRule ruleB,
              CPath& out) {
        return trammel::Boolean(op, a, ruleA, b, ruleB, 0.0, out);
    }
    int Count(std::vector<OutlineJudge> const& operands, CPath const& result, double kept,
              std::function<bool(Pt const&)> const& wanted) {
        mWorst = std::max(mWorst, kept);
        return WrongPoints(operands, OutlineJudge(result), std::max(kept, mFinest), mSize, wanted);
    }
    /// Counts the wrong points of a result that must have the region A.
    int WrongUnlessA(CPath const& other, CPath const& result, double kept) {
        std::vector<OutlineJudge> const operands = {OutlineJudge(mA), OutlineJudge(other)};
        return Count(operands, result, kept,
                     [&](Pt const& p) { return operands[0].Holds(p, mRuleA); });
    }

    CPath mA;
    CPath mB;
    FillRule mRuleA;
    FillRule mRuleB;
    double mSize;
    double mFinest;
    double mWorst = 0.0;
};

} // namespace trammel_test

#endif
