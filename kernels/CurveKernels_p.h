// SPDX-License-Identifier: MIT
//
// The innermost work on curves: a whole block of a cubic's subdivision at once, and the lengths of
// many edges at once. Not installed.
//
// Both exist for every processor and for those with AVX2; which one this processor takes is found
// out when the library is loaded. Results are the same to the last bit, and the same as those of
// the work done curve by curve and edge by edge.

#ifndef TRAMMEL_CURVEKERNELS_P_H
#define TRAMMEL_CURVEKERNELS_P_H

namespace trammel_detail {

/// The levels of subdivision that a block has room for, which make at most 2^6 - 1 points.
inline constexpr int kBlockLevels = 6;
inline constexpr int kBlockPoints = (1 << kBlockLevels) - 1;

/// What decides quickly whether a piece of a curve is flat. See FlatnessFilter, which makes it and
/// says why it is right.
struct FlatnessBand {
    double largestInverseSlope = -1.0; ///< no chord is nearer to horizontal; -1: decide nothing
    double surelyFlat = 0.0;           ///< the squared tolerance less the band, times (8/3)²
    double surelyNot = 0.0;            ///< the squared tolerance plus the band, times (8/3)²
    double tolerance = 0.0;

    /// Chords steeper than this, or shorter in v than that, are not decided.
    static constexpr double kLargestSlope = 0x1p40;
    static constexpr double kShortest = 0x1p-200;
};

/// A cubic: the coordinates v and h of its four points in turn.
struct BlockCurve {
    double coordinates[8];
};

/// Decides by the deviation itself: true when the curve is flat by `tolerance`.
typedef bool (*ExactFlatness)(BlockCurve const& curve, double tolerance);

/// A block of a subdivision to be made.
struct BlockJob {
    BlockCurve curve;    ///< is divided in any case
    FlatnessBand band;   ///< what is flat
    ExactFlatness exact; ///< where the band does not decide
    int levels;          ///< levels that may divide, the curve's own included: 1 to kBlockLevels
    int flatLevel;       ///< from this level on (the curve's own is 0), all that the band may judge
                         ///< is flat
    bool limited;        ///< true: what is below `levels` is not divided, flat or not
};

/// Divides the job's curve and every piece that is not flat, down to the job's levels, and stores
/// the split points at `out` (v and h in turn, room for kBlockPoints), in order of increasing
/// parameter. Returns their number; -1 when a piece below the last level would have to be divided.
int DivideBlock(BlockJob const& job, double* out);

/// Stores the distance from each point to the next, for `edges` edges, at `lengths`: the bits of
/// hypot. `points` holds their coordinates, two a point, `edges` + 1 points.
void EdgeLengths(double const* points, long edges, double* lengths);

// The forms that the two above choose from.
int DivideBlockPortable(BlockJob const& job, double* out);
void EdgeLengthsPortable(double const* points, long edges, double* lengths);
int DivideBlockAvx2(BlockJob const& job, double* out);
void EdgeLengthsAvx2(double const* points, long edges, double* lengths);

} // namespace trammel_detail

#endif
