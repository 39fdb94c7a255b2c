// SPDX-License-Identifier: MIT
//
// The curve kernels, written for any kind of pack (Pack_p.h). Included by the files that compile
// them for one kind each, and by nothing else. Not installed.

#ifndef TRAMMEL_CURVEKERNELFORMS_P_H
#define TRAMMEL_CURVEKERNELFORMS_P_H

#include "CurveKernels_p.h"
#include "Hypot_p.h"
#include "Pack_p.h"

#include <cstdint>

namespace trammel_detail {

/// Four cubics, one a lane.
template <class Pack> struct PackedCurves { Pack h0, v0, h1, v1, h2, v2, h3, v3; };

/// One coordinate of four cubics, halved: what comes between the first point, the middle and the
/// last one. Midpoints are (a + b)/2; the half is exact, as a division by 2 is.
template <class Pack> struct PackedHalves {
    Pack left1, left2, middle, right1, right2;

    [[gnu::always_inline]] PackedHalves(Pack const& p0, Pack const& p1, Pack const& p2,
                                        Pack const& p3) {
        Pack const half = Pack::All(0.5);
        Pack const between = (p1 + p2) * half;
        left1 = (p0 + p1) * half;
        right2 = (p2 + p3) * half;
        left2 = (left1 + between) * half;
        right1 = (between + right2) * half;
        middle = (left2 + right1) * half;
    }
};

template <class Pack>
[[gnu::always_inline]] inline void
HalvePacked(PackedCurves<Pack> const& c, PackedCurves<Pack>& left, PackedCurves<Pack>& right) {
    PackedHalves<Pack> const h(c.h0, c.h1, c.h2, c.h3);
    PackedHalves<Pack> const v(c.v0, c.v1, c.v2, c.v3);
    left = PackedCurves<Pack>{c.h0, c.v0, h.left1, v.left1, h.left2, v.left2, h.middle, v.middle};
    right =
        PackedCurves<Pack>{h.middle, v.middle, h.right1, v.right1, h.right2, v.right2, c.h3, c.v3};
}

/// The lanes among `asked` whose curves are not flat, each decided as FlatnessFilter::Flat does.
/// With `flatIfJudged` it is known that they are flat wherever the band may judge.
template <class Pack>
[[gnu::always_inline]] inline unsigned NotFlat(PackedCurves<Pack> const& c, BlockJob const& job,
                                               bool flatIfJudged, unsigned asked) {
    Pack const dh = c.h3 - c.h0;
    Pack const dv = c.v3 - c.v0;
    Pack const lengthH = Pack::Abs(dh);
    Pack const lengthV = Pack::Abs(dv);
    auto judged = (lengthH <= Pack::All(job.band.largestInverseSlope) * lengthV) &
                  (lengthV <= Pack::All(FlatnessBand::kLargestSlope) * lengthH) &
                  (Pack::All(FlatnessBand::kShortest) <= lengthV);
    unsigned notFlat = 0;
    unsigned decided;
    if (flatIfJudged) {
        decided = judged.Bits();
    } else {
        Pack const wh = (c.h1 + c.h2) - (c.h0 + c.h3);
        Pack const wv = (c.v1 + c.v2) - (c.v0 + c.v3);
        Pack const cross = dh * wv - dv * wh;
        Pack const crossSquared = cross * cross;
        Pack const chordSquared = dh * dh + dv * dv;
        auto const surelyFlat = crossSquared <= Pack::All(job.band.surelyFlat) * chordSquared;
        auto const surelyNot = Pack::All(job.band.surelyNot) * chordSquared <= crossSquared;
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
/// The block's 63 places are those of a complete tree of six levels, in order. After two levels
/// there are four quarters, one a lane: lane 0 holds the first quarter, lane 1 the third, lane 2
/// the second, lane 3 the fourth, which is what dividing the two halves in lanes 0 and 1 gives
/// without moving any lane. From there on the quarters go level by level in step: node `i` of a
/// level lies in the same place of all four, its children in places i and i + n of the next. Places
/// that no lane divides are passed.
template <class Pack> class BlockForm {
public:
    [[gnu::always_inline]] explicit BlockForm(BlockJob const& job) : mJob(job) {}

    [[gnu::always_inline]] inline int Divide(double* out) {
        double const* const p = mJob.curve.coordinates;
        PackedCurves<Pack> curves{Pack::All(p[1]), Pack::All(p[0]), Pack::All(p[3]),
                                  Pack::All(p[2]), Pack::All(p[5]), Pack::All(p[4]),
                                  Pack::All(p[7]), Pack::All(p[6])};
        PackedCurves<Pack> left;
        PackedCurves<Pack> right;
        HalvePacked(curves, left, right);
        PutOne(kMiddle, left.h3.First(), left.v3.First());
        curves = Join<Firsts>(left, right);
        unsigned lanes = Ask(curves, 1, 0x3);
        if (lanes == 0) {
            return Gather(out);
        }
        HalvePacked(curves, left, right);
        if ((lanes & 1) != 0) {
            PutOne(kMiddle / 2, left.h3.First(), left.v3.First());
        }
        if ((lanes & 2) != 0) {
            PutOne(kMiddle + kMiddle / 2, left.h3.Second(), left.v3.Second());
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
    static constexpr int kNodes = kQuarter / 2; // of a quarter's last level

    struct Firsts {
        [[gnu::always_inline]] static Pack Of(Pack const& a, Pack const& b) {
            return Pack::Firsts(a, b);
        }
    };
    struct FirstTwos {
        [[gnu::always_inline]] static Pack Of(Pack const& a, Pack const& b) {
            return Pack::FirstTwos(a, b);
        }
    };
    template <class How>
    [[gnu::always_inline]] static PackedCurves<Pack> Join(PackedCurves<Pack> const& a,
                                                          PackedCurves<Pack> const& b) {
        return PackedCurves<Pack>{How::Of(a.h0, b.h0), How::Of(a.v0, b.v0), How::Of(a.h1, b.h1),
                                  How::Of(a.v1, b.v1), How::Of(a.h2, b.h2), How::Of(a.v2, b.v2),
                                  How::Of(a.h3, b.h3), How::Of(a.v3, b.v3)};
    }

    /// The lanes among `asked` to be divided on `level`; what may not be divided is noted.
    [[gnu::always_inline]] inline unsigned Ask(PackedCurves<Pack> const& curves, int level,
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
        PackedCurves<Pack>* from = mFrom;
        PackedCurves<Pack>* to = mTo;
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
                PackedCurves<Pack> left;
                PackedCurves<Pack> right;
                HalvePacked(from[i], left, right);
                Pack::StorePairs(left.v3, left.h3,
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
            PackedCurves<Pack>* const curves = from;
            from = to;
            to = curves;
            unsigned char* const lanes = fromLanes;
            fromLanes = toLanes;
            toLanes = lanes;
        }
    }

    /// For lanes 0 to 3 the first place of their quarters.
    [[gnu::always_inline]] static std::uint64_t Spread(unsigned lanes) {
        std::uint64_t const wide = lanes;
        return (wide & 1) | (wide & 2) << (2 * kQuarter - 1) | (wide & 4) << (kQuarter - 2) |
               (wide & 8) << (3 * kQuarter - 3);
    }

    /// Moves the points that were made to `out`, in order.
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
    PackedCurves<Pack> mFrom[kNodes];
    PackedCurves<Pack> mTo[kNodes];
    alignas(16) double mPoints[4 * kQuarter][2];
};

/// The lengths of `edges` edges, see EdgeLengths.
template <class Pack>
[[gnu::always_inline]] inline void EdgeLengthsForm(double const* points, long edges,
                                                   double* lengths) {
    long i = 0;
    if constexpr (kInlineHypot) {
        for (; i + 4 <= edges; i += 4) {
            Pack h0;
            Pack v0;
            Pack h1;
            Pack v1;
            Pack::LoadPairs(points + 2 * i, v0, h0);
            Pack::LoadPairs(points + 2 * i + 2, v1, h1);
            Pack const absH = Pack::Abs(h1 - h0);
            Pack const absV = Pack::Abs(v1 - v0);
            auto const swapped = absH < absV;
            Pack const longer = Pack::Choose(swapped, absV, absH);
            Pack const shorter = Pack::Choose(swapped, absH, absV);
            // As in Hypot: NaN is not common.
            Pack const zero = Pack::All(0.0);
            auto const none = shorter <= zero;
            auto const common = (longer <= Pack::All(kHypotLargest)) &
                                ((Pack::All(kHypotSmallest) <= shorter) | none);
            // CorrectedHypot, both of its branches.
            Pack const two = Pack::All(2.0);
            Pack const root = Pack::Sqrt(longer * longer + shorter * shorter);
            Pack const nearDelta = root - shorter;
            Pack const nearResidual = longer * (two * nearDelta - longer) +
                                      (nearDelta - two * (longer - shorter)) * nearDelta;
            Pack const farDelta = root - longer;
            Pack const farResidual =
                two * farDelta * (longer - two * shorter) +
                ((Pack::All(4.0) * farDelta - shorter) * shorter + farDelta * farDelta);
            Pack const residual = Pack::Choose(root <= two * shorter, nearResidual, farResidual);
            Pack const corrected = root - residual / (two * root);
            Pack const negligible = longer + shorter;
            Pack const length = Pack::Choose(
                (shorter <= longer * Pack::All(kHypotNegligible)) | none, negligible, corrected);
            length.Store(lengths + i);
            unsigned rare = ~common.Bits() & 0xF;
            while (__builtin_expect(rare != 0, 0)) {
                long const edge = i + __builtin_ctz(rare);
                double const* const p = points + 2 * edge;
                lengths[edge] = std::hypot(p[3] - p[1], p[2] - p[0]);
                rare &= rare - 1;
            }
        }
    }
    for (; i < edges; ++i) {
        double const* const p = points + 2 * i;
        lengths[i] = Hypot(p[3] - p[1], p[2] - p[0]);
    }
}

} // namespace trammel_detail

#endif
