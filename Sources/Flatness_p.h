// SPDX-License-Identifier: MIT

// Is a piece of a cubic flat? This header has the literal answer, a filter that gives it faster,
// and a walk over a curve's pieces that asks the filter for many pieces at once. Not installed.

#ifndef TRAMMEL_FLATNESS_P_H
#define TRAMMEL_FLATNESS_P_H

#include "CurveKernels_p.h"
#include "TLine.h"
#include "TPoint.h"
#include "UScalar.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace trammel_detail {

/// Returns the distance by which a cubic's Flat judges.
///
/// It is the distance of the cubic's middle from the line through its ends. Where the chord has no
/// slope, it is the distance of the start from the middle of the control points.
template <class Curve> double Deviation(Curve const& c) {
    TPoint<double> const chord = c.P3 - c.P0;
    if (std::isnan(chord.Slope())) {
        return LineLength(c.P0, (c.P1 + c.P2) / 2.0);
    }
    return TLine<double>(c.P0, c.P3).Distance(c.MidPt());
}

/// Decides `tolerance >= Deviation(c)` for the pieces of one curve, from a cheap estimate wherever
/// that leaves no doubt.
///
/// In exact arithmetic the middle of a cubic is (P0 + 3 P1 + 3 P2 + P3)/8, so its distance from the
/// chord is D = 3/8 |d x w| / |d| with d = P3 - P0 and w = P1 + P2 - P0 - P3. The estimate compares
/// squares, which needs neither division nor root. It may decide where it cannot disagree with the
/// deviation as Flat computes it. That is outside a band around the tolerance, wider than the
/// rounding of both.
///
/// By the standard model of rounding (Higham, "Accuracy and Stability of Numerical Algorithms",
/// section 2.2), let u = 2^-53, S a bound on all coordinates' magnitudes, m = d.v/d.h and n = -1/m.
/// Terms of order u² are covered by the slack at the end.
///
///   estimate   each component of w is off by at most 8uS, d by u relative, the products by u each:
///              |d x w| is off by at most 34uS|d|, the estimate of D by at most 13uS.
///   deviation  MidPt is off by at most 6uS in each component, hence 8.5uS; m by 3u relative, which
///              turns the line about P0 by at most 1.5u and moves it by at most 4.3uS at MidPt. The
///              numerator of the foot's x is off by at most uS(4|n| + 4|m| + 3); divided by
///              |n - m| = |n| + |m| >= 2 that is 5.5uS, and 2u|x| <= 8uS come with the division:
///              14uS. The foot's y inherits |n| 14uS and adds uS(5|n| + 9). The final difference
///              and hypot add 4uD <= 16uS. Together at most uS(52 + 19|n|).
///
/// So the two are apart by at most 80uS(1 + |n|). Where S(1 + |n|) <= 2^34 tolerance this is less
/// than 2^-12 of the tolerance, which is the band (1.6 times what is needed). The deviation itself
/// decides in these cases:
///
///   - the condition does not hold, or the estimate lies inside the band;
///   - the chord is horizontal, vertical or so short that products could underflow;
///   - coordinates or the tolerance are so large that products could overflow, or not finite.
class FlatnessFilter {
public:
    /// Serves a curve whose coordinates' magnitudes sum up to `size`, and all pieces that halving
    /// makes of it. No midpoint exceeds the larger of its two points, so one bound serves them all.
    FlatnessFilter(double size, double tolerance) {
        mBand.tolerance = tolerance;
        // A NaN leaves the filter off: no slope passes then.
        if (size <= kLargest && tolerance > 0.0 && tolerance <= kLargest) {
            mBand.largestInverseSlope = tolerance * 0x1p34 / size - 1.0;
            double const nearlyAll = tolerance * (1.0 - 0x1p-9) * (4.0 / 3.0);
            mInverseAllowedSquare = 1.0 / (nearlyAll * nearlyAll);
            double const surelyFlat = tolerance * (1.0 - kBand) * (8.0 / 3.0);
            double const surelyNot = tolerance * (1.0 + kBand) * (8.0 / 3.0);
            mBand.surelyFlat = surelyFlat * surelyFlat;
            mBand.surelyNot = surelyNot * surelyNot;
        }
    }

    /// Returns the bound on the coordinates that the constructor takes.
    template <class Curve> static double SizeOf(Curve const& c) {
        return std::abs(c.P0.h) + std::abs(c.P0.v) + std::abs(c.P1.h) + std::abs(c.P1.v) +
               std::abs(c.P2.h) + std::abs(c.P2.v) + std::abs(c.P3.h) + std::abs(c.P3.v);
    }

    double Tolerance() const { return mBand.tolerance; }
    FlatnessBand const& Band() const { return mBand; }

    /// True when the filter judges at least some pieces.
    bool Judges() const { return mBand.largestInverseSlope >= 0.0; }

    template <class Curve> bool Flat(Curve const& c) const {
        double const dh = c.P3.h - c.P0.h;
        double const dv = c.P3.v - c.P0.v;
        double const lengthH = std::abs(dh);
        double const lengthV = std::abs(dv);
        if (lengthH <= mBand.largestInverseSlope * lengthV &&
            lengthV <= FlatnessBand::kLargestSlope * lengthH &&
            FlatnessBand::kShortest <= lengthV) {
            double const wh = (c.P1.h + c.P2.h) - (c.P0.h + c.P3.h);
            double const wv = (c.P1.v + c.P2.v) - (c.P0.v + c.P3.v);
            double const cross = dh * wv - dv * wh;
            double const crossSquared = cross * cross;
            double const chordSquared = dh * dh + dv * dv;
            if (crossSquared <= mBand.surelyFlat * chordSquared) {
                return true;
            }
            if (mBand.surelyNot * chordSquared <= crossSquared) {
                return false;
            }
        }
        return mBand.tolerance >= Deviation(c);
    }

    /// Returns a number of halvings after which every piece of `c` that the filter may judge is
    /// flat.
    ///
    /// Halving divides the second differences D1 = P0 - 2 P1 + P2 and D2 = P1 - 2 P2 + P3 by 4 or
    /// averages them first. So after k levels none is longer than 4^-k times the longer of the two.
    /// As w = -(D1 + D2), a piece's middle is at most 3/8 |w| <= 3/4 · 4^-k max|D| from its chord.
    ///
    /// Let u = 2^-53 and S the bound on the coordinates. The computed differences of `c` are off by
    /// 4uS. Each level adds at most 12uS to the pieces' differences, of which later levels leave a
    /// quarter: 16uS. Together that is 3/4 · 20uS = 15uS. Where the filter judges, uS is at most
    /// 2^-19 of the tolerance. So a bound of (1 - 2^-9) of the tolerance on the exact distance
    /// keeps the computed distance within (1 - 2^-12), where Flat's answer is true.
    template <class Curve> int LevelsToFlat(Curve const& c) const {
        double const first =
            Squared((c.P0.h - c.P1.h) + (c.P2.h - c.P1.h), (c.P0.v - c.P1.v) + (c.P2.v - c.P1.v));
        double const second =
            Squared((c.P1.h - c.P2.h) + (c.P3.h - c.P2.h), (c.P1.v - c.P2.v) + (c.P3.v - c.P2.v));
        double const ratio = std::max(first, second) * mInverseAllowedSquare;
        if (ratio <= 1.0) {
            return 0;
        }
        // The power 16^k has to reach the ratio, which is less than 2^(exponent + 1).
        std::uint64_t bits;
        std::memcpy(&bits, &ratio, sizeof bits);
        return (static_cast<int>(bits >> 52) - 1023) / 4 + 1;
    }

private:
    static double Squared(double h, double v) { return h * h + v * v; }

    static constexpr double kBand = 0x1p-12;
    static constexpr double kLargest = 0x1p200;

    FlatnessBand mBand;
    double mInverseAllowedSquare = 0.0;
};

template <class Curve> BlockCurve ToBlock(Curve const& c) {
    return BlockCurve{{c.P0.v, c.P0.h, c.P1.v, c.P1.h, c.P2.v, c.P2.h, c.P3.v, c.P3.h}};
}

template <class Curve> Curve FromBlock(BlockCurve const& block) {
    double const* const p = block.coordinates;
    typedef TPoint<double> Pt;
    return Curve(Pt(p[1], p[0]), Pt(p[3], p[2]), Pt(p[5], p[4]), Pt(p[7], p[6]));
}

/// The literal answer for a block's piece.
template <class Curve> bool ExactlyFlat(BlockCurve const& piece, double tolerance) {
    return tolerance >= Deviation(FromBlock<Curve>(piece));
}

/// The levels that DivideInBlocks can go down: as many as leave the counts of points (2^levels - 1)
/// and of pieces (one more than twice as many) within an int.
inline constexpr int kMostBlockLevels = 30;

/// Stores the split points of a cubic's subdivision in `run` (a PointBuffer), in order, and returns
/// their number. They are the points that WalkSubdivision delivers with the rules of this filter,
/// but a block of levels is divided at once (DivideBlock). The filter has to judge (Judges()).
///
/// \param curve is divided in any case.
/// \param levels the number of levels that may divide, the curve's own included: 1 to
///     kMostBlockLevels.
///
/// The upper levels of a tall tree are walked one by one, down to pieces that become flat within a
/// block's levels. Pieces that the filter may not judge can need more levels than a block has. Then
/// the block is thrown away, and its curve is halved instead. The right halves that still have to
/// be walked take one place for each level.
template <class Curve, class Run>
int DivideInBlocks(Curve const& curve, FlatnessFilter const& filter, int levels, Run& run) {
    struct Waiting {
        BlockCurve right; // not a Curve, whose points would all be set to the origin first
        int levels;
    };
    Waiting waiting[kMostBlockLevels];
    int count = 0;
    int points = 0;
    Curve current = curve;
    bool divide = true; // the current piece is not flat, or is divided whatever it is
    for (;;) {
        bool done = !divide;
        if (divide) {
            int const toFlat = filter.LevelsToFlat(current);
            if (toFlat >= 2 && (toFlat <= kBlockLevels || levels <= kBlockLevels)) {
                BlockJob job;
                job.curve = ToBlock(current);
                job.band = filter.Band();
                job.exact = ExactlyFlat<Curve>;
                job.levels = std::min(levels, kBlockLevels);
                job.flatLevel = toFlat;
                job.limited = levels <= kBlockLevels;
                int const made = DivideBlock(job, run.RoomForBlock());
                if (made >= 0) {
                    run.AddStored(made);
                    points += made;
                    done = true;
                }
            }
        }
        if (!done) {
            Curve right;
            current.Divide(current, right);
            --levels;
            waiting[count].right = ToBlock(right);
            waiting[count].levels = levels;
            ++count;
            divide = levels > 0 && !filter.Flat(current);
        } else if (count > 0) {
            --count;
            current = FromBlock<Curve>(waiting[count].right);
            levels = waiting[count].levels;
            run.Add(current.P0);
            ++points;
            divide = levels > 0 && !filter.Flat(current);
        } else {
            return points;
        }
    }
}

} // namespace trammel_detail

#endif
