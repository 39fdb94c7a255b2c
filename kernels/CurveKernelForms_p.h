// SPDX-License-Identifier: MIT

// The curve kernels, written for either vector of four doubles (Vector_p.h). Each of two files
// compiles them for one, and no other file includes this header. Not installed.

#ifndef TRAMMEL_CURVEKERNELFORMS_P_H
#define TRAMMEL_CURVEKERNELFORMS_P_H

#include "CubicHalves_p.h"
#include "CurveKernels_p.h"
#include "Hypot_p.h"
#include "Vector_p.h"

#include <cstdint>

namespace trammel_detail {

/// Four cubics, one in each lane.
template <class Vector> struct FourCurves { Vector h0, v0, h1, v1, h2, v2, h3, v3; };

template <class Vector>
[[gnu::always_inline]] inline void HalveFour(FourCurves<Vector> const& c, FourCurves<Vector>& left,
                                             FourCurves<Vector>& right) {
    CubicHalves<Vector> const h(c.h0, c.h1, c.h2, c.h3);
    CubicHalves<Vector> const v(c.v0, c.v1, c.v2, c.v3);
    left = FourCurves<Vector>{c.h0, c.v0, h.left1, v.left1, h.left2, v.left2, h.middle, v.middle};
    right =
        FourCurves<Vector>{h.middle, v.middle, h.right1, v.right1, h.right2, v.right2, c.h3, c.v3};
}

/// Returns the lanes among `asked` whose curves are not flat, each decided as FlatnessFilter::Flat
/// does. With `flatIfJudged`, the caller knows that a curve is flat wherever the band may judge it.
template <class Vector>
[[gnu::always_inline]] inline unsigned NotFlat(FourCurves<Vector> const& c, BlockJob const& job,
                                               bool flatIfJudged, unsigned asked) {
    Vector const dh = c.h3 - c.h0;
    Vector const dv = c.v3 - c.v0;
    Vector const lengthH = Abs(dh);
    Vector const lengthV = Abs(dv);
    auto judged = (lengthH <= Vector(job.band.largestInverseSlope) * lengthV) &
                  (lengthV <= Vector(FlatnessBand::kLargestSlope) * lengthH) &
                  (Vector(FlatnessBand::kShortest) <= lengthV);
    unsigned notFlat = 0;
    unsigned decided;
    if (flatIfJudged) {
        decided = judged.Bits();
    } else {
        Vector const wh = (c.h1 + c.h2) - (c.h0 + c.h3);
        Vector const wv = (c.v1 + c.v2) - (c.v0 + c.v3);
        Vector const cross = dh * wv - dv * wh;
        Vector const crossSquared = cross * cross;
        Vector const chordSquared = dh * dh + dv * dv;
        auto const surelyFlat = crossSquared <= Vector(job.band.surelyFlat) * chordSquared;
        auto const surelyNot = Vector(job.band.surelyNot) * chordSquared <= crossSquared;
        decided = (judged & (surelyFlat | surelyNot)).Bits();
        notFlat = surelyNot.Bits() & decided & asked;
    }
    unsigned undecided = asked & ~decided;
    if (__builtin_expect(undecided != 0, 0)) {
        double lanes[8][4];
        c.v0.Store(lanes[0]);
        c.h0.Store(lanes[1]);
        c.v1.Store(lanes[2]);
        c.h1.Store(lanes[3]);
        c.v2.Store(lanes[4]);
        c.h2.Store(lanes[5]);
        c.v3.Store(lanes[6]);
        c.h3.Store(lanes[7]);
        do {
            int const lane = __builtin_ctz(undecided);
            BlockCurve one;
            for (int k = 0; k < 8; ++k) {
                one.coordinates[k] = lanes[k][lane];
            }
            if (!job.exact(one, job.band.tolerance)) {
                notFlat |= 1u << lane;
            }
            undecided &= undecided - 1;
        } while (undecided != 0);
    }
    return notFlat;
}

/// Makes one block, see DivideBlock.
///
/// The block's 63 places are the nodes of a complete tree of six levels, in order. The first two
/// levels divide the curve into four quarters, one in each lane:
///
///   lane     0      1      2       3
///   quarter  first  third  second  fourth
///
/// Dividing the halves in lanes 0 and 1 gives this order, so no lane has to move. From then on all
/// quarters go down level by level together. Node i of a level with n nodes is the same node of all
/// four quarters. Its children are nodes i and i + n of the next level. A node that no lane divides
/// is skipped.
template <class Vector> class BlockForm {
public:
    [[gnu::always_inline]] explicit BlockForm(BlockJob const& job) : mJob(job) {}

    [[gnu::always_inline]] inline int Divide(double* out) {
        double const* const p = mJob.curve.coordinates;
        FourCurves<Vector> curves{Vector(p[1]), Vector(p[0]), Vector(p[3]), Vector(p[2]),
                                  Vector(p[5]), Vector(p[4]), Vector(p[7]), Vector(p[6])};
        FourCurves<Vector> left;
        FourCurves<Vector> right;
        HalveFour(curves, left, right);
        PutOne(kMiddle, Lane<0>(left.h3), Lane<0>(left.v3));
        curves = Join<Firsts>(left, right);
        unsigned lanes = Ask(curves, 1, 0x3);
        if (lanes == 0) {
            return Gather(out);
        }
        HalveFour(curves, left, right);
        if ((lanes & 1) != 0) {
            PutOne(kMiddle / 2, Lane<0>(left.h3), Lane<0>(left.v3));
        }
        if ((lanes & 2) != 0) {
            PutOne(kMiddle + kMiddle / 2, Lane<1>(left.h3), Lane<1>(left.v3));
        }
        mFrom[0] = Join<FirstTwos>(left, right);
        mFromLanes[0] = static_cast<unsigned char>(Ask(mFrom[0], 2, lanes | lanes << 2));
        if (mFromLanes[0] != 0) {
            DivideQuarters();
        }
        return Gather(out);
    }

private:
    static constexpr int kMiddle = 32;
    static constexpr int kQuarter = 16;
    static constexpr int kNodes = kQuarter / 2; ///< of a quarter's last level

    struct Firsts {
        [[gnu::always_inline]] static Vector Of(Vector const& a, Vector const& b) {
            return FirstsTwice(a, b);
        }
    };
    struct FirstTwos {
        [[gnu::always_inline]] static Vector Of(Vector const& a, Vector const& b) {
            return LowHalves(a, b);
        }
    };
    template <class How>
    [[gnu::always_inline]] static FourCurves<Vector> Join(FourCurves<Vector> const& a,
                                                          FourCurves<Vector> const& b) {
        return FourCurves<Vector>{How::Of(a.h0, b.h0), How::Of(a.v0, b.v0), How::Of(a.h1, b.h1),
                                  How::Of(a.v1, b.v1), How::Of(a.h2, b.h2), How::Of(a.v2, b.v2),
                                  How::Of(a.h3, b.h3), How::Of(a.v3, b.v3)};
    }

    /// Returns the lanes among `asked` that are to be divided on `level`. Notes the lanes
    /// that would have to be divided but lie too deep.
    [[gnu::always_inline]] inline unsigned Ask(FourCurves<Vector> const& curves, int level,
                                               unsigned asked) {
        if (level >= mJob.levels && mJob.limited) {
            return 0;
        }
        unsigned const lanes = NotFlat(curves, mJob, level >= mJob.flatLevel, asked);
        if (level >= mJob.levels) {
            mOverflow |= lanes;
            return 0;
        }
        return lanes;
    }

    [[gnu::always_inline]] inline void PutOne(int place, double h, double v) {
        mPoints[place][0] = v;
        mPoints[place][1] = h;
        mTaken |= std::uint64_t{1} << place;
    }

    [[gnu::always_inline]] inline void DivideQuarters() {
        FourCurves<Vector>* from = mFrom;
        FourCurves<Vector>* to = mTo;
        unsigned char* fromLanes = mFromLanes;
        unsigned char* toLanes = mToLanes;
        unsigned char places[2 * kNodes];
        places[0] = kQuarter / 2;
        int step = kQuarter / 4;
        int level = 2;
        for (int nodes = 1;; nodes *= 2) {
            ++level;
            unsigned any = 0;
            for (int i = 0; i < nodes; ++i) {
                unsigned const lanes = fromLanes[i];
                int const place = places[i];
                if (step > 0) {
                    places[i] = static_cast<unsigned char>(place - step);
                    places[i + nodes] = static_cast<unsigned char>(place + step);
                    toLanes[i] = toLanes[i + nodes] = 0;
                }
                if (lanes == 0) {
                    continue;
                }
                FourCurves<Vector> left;
                FourCurves<Vector> right;
                HalveFour(from[i], left, right);
                StorePairs(left.v3, left.h3,
                           {mPoints[place], mPoints[place + 2 * kQuarter],
                            mPoints[place + kQuarter], mPoints[place + 3 * kQuarter]});
                mTaken |= Spread(lanes) << place;
                unsigned const leftLanes = Ask(left, level, lanes);
                unsigned const rightLanes = Ask(right, level, lanes);
                if (leftLanes != 0) {
                    to[i] = left;
                    toLanes[i] = static_cast<unsigned char>(leftLanes);
                }
                if (rightLanes != 0) {
                    to[i + nodes] = right;
                    toLanes[i + nodes] = static_cast<unsigned char>(rightLanes);
                }
                any |= leftLanes | rightLanes;
            }
            if (any == 0) {
                return;
            }
            step /= 2;
            FourCurves<Vector>* const curves = from;
            from = to;
            to = curves;
            unsigned char* const lanes = fromLanes;
            fromLanes = toLanes;
            toLanes = lanes;
        }
    }

    /// Returns a word with the bit of the first place of each lane's quarter.
    [[gnu::always_inline]] static std::uint64_t Spread(unsigned lanes) {
        std::uint64_t const wide = lanes;
        return (wide & 1) | (wide & 2) << (2 * kQuarter - 1) | (wide & 4) << (kQuarter - 2) |
               (wide & 8) << (3 * kQuarter - 3);
    }

    /// Moves the points to `out`, in order. Returns their number, or -1 after an overflow.
    [[gnu::always_inline]] inline int Gather(double* out) {
        if (mOverflow != 0) {
            return -1;
        }
        double* to = out;
        for (std::uint64_t taken = mTaken; taken != 0; taken &= taken - 1) {
            double const* const from = mPoints[__builtin_ctzll(taken)];
            to[0] = from[0];
            to[1] = from[1];
            to += 2;
        }
        return static_cast<int>((to - out) / 2);
    }

    BlockJob const& mJob;
    std::uint64_t mTaken = 0;
    unsigned mOverflow = 0;
    unsigned char mFromLanes[2 * kNodes];
    unsigned char mToLanes[2 * kNodes];
    FourCurves<Vector> mFrom[kNodes];
    FourCurves<Vector> mTo[kNodes];
    alignas(16) double mPoints[4 * kQuarter][2];
};

/// Stores the lengths of edges, see EdgeLengths.
template <class Vector>
[[gnu::always_inline]] inline void EdgeLengthsForm(double const* points, long edges,
                                                   double* lengths) {
    long i = 0;
    for (; i + 4 <= edges; i += 4) {
        Vector h0;
        Vector v0;
        Vector h1;
        Vector v1;
        LoadPairs(points + 2 * i, v0, h0);
        LoadPairs(points + 2 * i + 2, v1, h1);
        Vector const absH = Abs(h1 - h0);
        Vector const absV = Abs(v1 - v0);
        auto const swapped = absH < absV;
        Vector const longer = Select(swapped, absV, absH);
        Vector const shorter = Select(swapped, absH, absV);
        // A NaN is not common, as in Hypot.
        Vector const zero = Vector(0.0);
        auto const none = shorter <= zero;
        auto const common =
            (longer <= Vector(kHypotLargest)) & ((Vector(kHypotSmallest) <= shorter) | none);
        // Both branches of CorrectedHypot.
        Vector const two = Vector(2.0);
        Vector const root = Sqrt(longer * longer + shorter * shorter);
        Vector const nearDelta = root - shorter;
        Vector const nearResidual = longer * (two * nearDelta - longer) +
                                    (nearDelta - two * (longer - shorter)) * nearDelta;
        Vector const farDelta = root - longer;
        Vector const farResidual =
            two * farDelta * (longer - two * shorter) +
            ((Vector(4.0) * farDelta - shorter) * shorter + farDelta * farDelta);
        Vector const residual = Select(root <= two * shorter, nearResidual, farResidual);
        Vector const corrected = root - residual / (two * root);
        Vector const negligible = longer + shorter;
        Vector const length =
            Select((shorter <= longer * Vector(kHypotNegligible)) | none, negligible, corrected);
        length.Store(lengths + i);
        unsigned rare = ~common.Bits() & 0xF;
        while (__builtin_expect(rare != 0, 0)) {
            long const edge = i + __builtin_ctz(rare);
            double const* const p = points + 2 * edge;
            lengths[edge] = RareHypot(p[3] - p[1], p[2] - p[0]);
            rare &= rare - 1;
        }
    }
    for (; i < edges; ++i) {
        double const* const p = points + 2 * i;
        lengths[i] = Hypot(p[3] - p[1], p[2] - p[0]);
    }
}

} // namespace trammel_detail

#endif
