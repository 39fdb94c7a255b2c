// SPDX-License-Identifier: MIT

#include "CurveStretches_p.h"

#include "Bernstein_p.h"
#include "PointMath_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// A curve is halved so often at most where its curvature comes close to the pen's.
constexpr int kDeepestBend = 40;
/// A curve is cut into so many parts at most to see how it bends.
constexpr std::size_t kMostLeaves = 1000;
/// The curvature may exceed the pen's by so much at most, and count as less.
constexpr double kMostSlack = 1e-3;
/// How far rounding may be off in the square of a curve's speed, as a share of the greatest one.
constexpr double kSquareRounding = 0x1p-48;
/// A tiny stretch takes in so much of the parameters on either side, as a share of its own.
constexpr double kBesideTurn = 0.25;
/// The fold of a part where that could not be decided.
constexpr int kUnseenFold = 2;

/// How fast a part of a curve goes and how it bends, as polynomials in Bernstein form. They are
/// those of the whole curve, cut. So near a cusp they keep the digits that control points lose.
struct BendOfPart {
    std::array<Pt, 3> speed;      ///< a third of the derivative
    std::array<double, 5> square; ///< of that
    std::array<double, 3> bend;   ///< the third power of the speed times the curvature
    double rounding = 0.0;        ///< how far `square` may be off, at any cut
    double from = 0.0;
    double to = 1.0;
    int depth = 0;

    BendOfPart() = default;
    explicit BendOfPart(Cubic const& c) {
        speed = {{c[1] - c[0], c[2] - c[1], c[3] - c[2]}};
        square = SpeedSquare(speed);
        bend = SpeedBend(speed);
        rounding = kSquareRounding * *std::max_element(square.begin(), square.end());
    }
    void Cut(BendOfPart& left, BendOfPart& right) const {
        CutAtMiddle(speed, left.speed, right.speed);
        CutAtMiddle(square, left.square, right.square);
        CutAtMiddle(bend, left.bend, right.bend);
        left.rounding = right.rounding = rounding;
        left.from = from;
        right.to = to;
        left.to = right.from = 0.5 * (from + to);
        left.depth = right.depth = depth + 1;
    }
    /// A bound on the length.
    double Length() const {
        return 3.0 * (to - from) *
               std::sqrt(std::max(*std::max_element(square.begin(), square.end()), 0.0));
    }
    /// True where the derivative stays within some 40 degrees.
    bool TurnsLittle() const {
        double const ab = Dot(speed[0], speed[1]);
        double const ad = Dot(speed[0], speed[2]);
        double const bd = Dot(speed[1], speed[2]);
        double const a = Square(speed[0]);
        double const b = Square(speed[1]);
        double const d = Square(speed[2]);
        return ab >= 0.0 && ad >= 0.0 && bd >= 0.0 && ab * ab >= 0.6 * a * b &&
               ad * ad >= 0.6 * a * d && bd * bd >= 0.6 * b * d;
    }
    /// True where the normals of the part turn a point at `radius` by no more than a length.
    bool SweepsLittle(double radius, double length) const {
        double const share = length / radius;
        auto const isNarrow = [share](Pt const& a, Pt const& b) {
            double const turn = Cross(a, b);
            return turn * turn <= share * share * Square(a) * Square(b);
        };
        return isNarrow(speed[0], speed[1]) && isNarrow(speed[1], speed[2]) &&
               isNarrow(speed[0], speed[2]);
    }
    /// Returns the fold of the part, see CurveStretch, or kUnseenFold where that is not plain. What
    /// folds by less than `slack`, a part of the radius, does not fold.
    int FoldBeside(double radius, double slack) const {
        // Where a straight curve turns back, the bend is 0, and rounding must not be the speed.
        double const low =
            std::max(*std::min_element(square.begin(), square.end()) - rounding, 0.0);
        double const high = *std::max_element(square.begin(), square.end());
        double const least = low * std::sqrt(low);
        double const most = high * std::sqrt(high);
        double const leastBend = radius * *std::min_element(bend.begin(), bend.end());
        double const mostBend = radius * *std::max_element(bend.begin(), bend.end());
        if (std::max(mostBend, -leastBend) <= least * (1.0 + slack) && least > 0.0) {
            return 0;
        }
        return leastBend > most ? 1 : mostBend < -most ? -1 : kUnseenFold;
    }
    /// Returns the same by a test that takes longer, and needs fewer parts where the curvature
    /// comes close to the pen's.
    int FoldBySquares(double radius, double slack) const {
        constexpr std::array<double, 5> kSquareScale = Binomials<5>();
        constexpr std::array<double, 3> kBendScale = Binomials<3>();
        constexpr std::array<double, 13> kScale = Binomials<13>();
        std::array<double, 5> s;
        std::array<double, 3> b;
        double high = 0.0;
        double highBend = 0.0;
        for (std::size_t k = 0; k < s.size(); ++k) {
            s[k] = square[k] * kSquareScale[k];
            high = std::max(high, std::abs(square[k]));
        }
        for (std::size_t k = 0; k < b.size(); ++k) {
            b[k] = radius * bend[k] * kBendScale[k];
            highBend = std::max(highBend, radius * std::abs(bend[k]));
        }
        std::array<double, 13> const cube = Product(Product(s, s), s);
        std::array<double, 13> const turn = Product(Product(b, b), Binomials<9>());
        double const allowed = (1.0 + slack) * (1.0 + slack);
        double least = std::numeric_limits<double>::infinity();
        double most = -least;
        for (std::size_t k = 0; k < kScale.size(); ++k) {
            least = std::min(least, (turn[k] - cube[k]) / kScale[k]);
            most = std::max(most, (turn[k] - allowed * cube[k]) / kScale[k]);
        }
        // The bend is off by no more than the square is, as both are products of the speeds.
        double const off = 4.0 * (rounding * (high * high + radius * highBend) +
                                  kSquareRounding * (high * high * high + highBend * highBend));
        if (most < -off) {
            return 0;
        }
        return least > off ? (bend[0] + 2.0 * bend[1] + bend[2] > 0.0 ? 1 : -1) : kUnseenFold;
    }
    /// Returns the fold of the part's middle, which is that of most of a short part.
    int FoldInMiddle(double radius) const {
        double const middle =
            (square[0] + 4.0 * (square[1] + square[3]) + 6.0 * square[2] + square[4]) / 16.0;
        double const cube = std::max(middle, 0.0) * std::sqrt(std::max(middle, 0.0));
        double const turn = 0.25 * radius * (bend[0] + 2.0 * bend[1] + bend[2]);
        return turn > cube ? 1 : turn < -cube ? -1 : 0;
    }
    /// A vector in the direction of the middle.
    Pt Along() const { return speed[0] + speed[1] * 2.0 + speed[2]; }
};

/// A part of a curve, and how it bends beside the pen.
struct BendLeaf {
    double from;
    double to;
    int fold;     ///< as in CurveStretch, of the middle where it could not be decided
    bool isSeen;  ///< false where the fold could not be decided
    bool turns;   ///< short, but the pen's ends go farther than that, to and fro perhaps
    bool isShort; ///< not much longer than the tiny ones
    Pt along;     ///< the derivative in the middle, times a positive number
};

/// Divides a curve into parts whose fold is known, and tiny ones. `bySquares` takes the test that
/// needs fewer parts. There are kMostLeaves of these, and few more, at most.
std::vector<BendLeaf> LeavesOf(BendOfPart const& whole, double radius, double tiny, double slack,
                               bool bySquares) {
    std::vector<BendLeaf> leaves;
    std::vector<BendOfPart> open = {whole};
    while (!open.empty()) {
        BendOfPart const part = open.back();
        open.pop_back();
        int const quick = part.FoldBeside(radius, slack);
        int const fold =
            quick == kUnseenFold && bySquares ? part.FoldBySquares(radius, slack) : quick;
        bool const isLong = part.Length() > tiny;
        bool const isShort = part.Length() <= 4.0 * tiny;
        bool const turnsLittle = part.TurnsLittle();
        // With a wrong fold, an end of the pen would be off by its way along the whole part.
        bool const isTiny = !isLong && turnsLittle && part.SweepsLittle(radius, tiny);
        bool const isLast = part.depth == kDeepestBend || leaves.size() >= kMostLeaves;
        if (fold == 0 || (fold != kUnseenFold && turnsLittle)) {
            leaves.push_back({part.from, part.to, fold, true, false, isShort, part.Along()});
        } else if (isTiny || (!isLong && !turnsLittle) || isLast) {
            leaves.push_back({part.from, part.to, part.FoldInMiddle(radius), false,
                              !isLong && !isTiny, isShort, part.Along()});
        } else {
            BendOfPart left;
            BendOfPart right;
            part.Cut(left, right);
            open.push_back(right);
            open.push_back(left);
        }
    }
    return leaves;
}

/// Widens the tiny stretches from number `begin` on. A cusp may lie at the end of one, and an
/// inflection directly beside it, where the pen changes the side on which it folds.
void WidenTurns(std::vector<CurveStretch>& stretches, std::size_t begin) {
    for (std::size_t i = begin; i < stretches.size(); ++i) {
        CurveStretch& turn = stretches[i];
        if (!turn.tiny) {
            continue;
        }
        double const beside = kBesideTurn * (turn.to - turn.from);
        if (i > begin) {
            CurveStretch& before = stretches[i - 1];
            turn.from = std::max(turn.from - beside, 0.5 * (before.from + before.to));
            before.to = turn.from;
        }
        if (i + 1 < stretches.size()) {
            CurveStretch& behind = stretches[i + 1];
            turn.to = std::min(turn.to + beside, 0.5 * (behind.from + behind.to));
            behind.from = turn.to;
        }
    }
}

} // namespace

void SplitAtCurvature(Cubic const& curve, double radius, double tiny, bool isRound,
                      std::vector<CurveStretch>& out) {
    BendOfPart const whole(curve);
    double const slack = std::min(tiny / radius, kMostSlack);
    if (whole.FoldBeside(radius, slack) == 0) {
        out.push_back({});
        return;
    }
    std::vector<BendLeaf> leaves = LeavesOf(whole, radius, tiny, slack, false);
    if (leaves.size() > kMostLeaves) {
        leaves = LeavesOf(whole, radius, tiny, slack, true);
    }
    for (std::size_t i = 1; i < leaves.size(); ++i) {
        if (leaves[i - 1].isShort && leaves[i].isShort &&
            Dot(leaves[i - 1].along, leaves[i].along) < 0.0) { // a cusp where both meet
            for (BendLeaf* leaf : {&leaves[i - 1], &leaves[i]}) {
                leaf->isSeen = false;
                leaf->turns = true;
            }
        }
    }
    std::size_t const begin = out.size();
    auto const append = [&](CurveStretch const& next) {
        if (out.size() > begin && out.back().fold == next.fold && out.back().tiny == next.tiny) {
            out.back().to = next.to;
        } else {
            out.push_back(next);
        }
    };
    double from = 0.0; // where the next stretch begins
    for (std::size_t i = 0; i < leaves.size();) {
        if (leaves[i].isSeen) {
            append({from, leaves[i].to, leaves[i].fold, false});
            from = leaves[i].to;
            ++i;
            continue;
        }
        // A part of unknown kind on which the pen hardly moves belongs to a neighbour. Many may be
        // long together, so each is what its middle is then, if the pen is round. Where the pen
        // turns, it does so on a line.
        std::size_t const first = i;
        while (i < leaves.size() && !leaves[i].isSeen) {
            ++i;
        }
        for (std::size_t k = first; k < i; ++k) {
            BendLeaf const& leaf = leaves[k];
            if (leaf.turns) {
                if (from < leaf.from) {
                    append({from, leaf.from, 0, false});
                }
                append({leaf.from, leaf.to, 0, true});
            } else if (isRound && i - first > 1) {
                append({from, leaf.to, leaf.fold, false});
            } else if (out.size() > begin && !out.back().tiny) {
                out.back().to = leaf.to;
            } else {
                continue; // to the next one
            }
            from = leaf.to;
        }
    }
    if (from < 1.0) {
        append({from, 1.0, 0, false});
    }
    WidenTurns(out, begin);
}

} // namespace trammel_detail
