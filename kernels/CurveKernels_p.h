// SPDX-License-Identifier: MIT

// The innermost work on curves: a whole block of a cubic's subdivision at once, and the lengths of
// many edges at once. Not installed.
//
// Both exist in a form for every processor and in one for AVX2. The first call finds out which one
// runs (Dispatch_p.h). Both give the bits of the work done curve by curve and edge by edge.

#ifndef TRAMMEL_CURVEKERNELS_P_H
#define TRAMMEL_CURVEKERNELS_P_H

#include "Dispatch_p.h"

namespace trammel_detail {

/// The levels of subdivision that a block has room for. They make at most 2^6 - 1 points.
inline constexpr int kBlockLevels = 6;
inline constexpr int kBlockPoints = (1 << kBlockLevels) - 1;

/// The numbers by which most pieces of a curve are quickly found to be flat or not. FlatnessFilter
/// (Sources/Flatness_p.h) makes them, and its comment shows that the decision is right.
struct FlatnessBand {
    double largestInverseSlope =
        -1.0; ///< |h/v|: no decided chord is nearer to horizontal; -1: decide nothing
    double surelyFlat = 0.0; ///< the squared tolerance less the band, times (8/3)²
    double surelyNot = 0.0;  ///< the squared tolerance plus the band, times (8/3)²
    double tolerance = 0.0;

    static constexpr double kLargestSlope = 0x1p40; ///< |v/h|: no decided chord is steeper
    static constexpr double kShortest = 0x1p-200;   ///< no decided chord is shorter in v
};

struct BlockCurve {
    double coordinates[8]; ///< v and h of the four control points in turn
};

/// Computes the deviation itself. True when the curve is flat by `tolerance`.
typedef bool (*ExactFlatness)(BlockCurve const& curve, double tolerance);

/// A block of a subdivision to be made. The curve's own level is 0.
struct BlockJob {
    BlockCurve curve;    ///< is divided, flat or not
    FlatnessBand band;   ///< decides about most of its pieces
    ExactFlatness exact; ///< decides about the others
    int levels;          ///< the number of levels that may divide: 1 to kBlockLevels
    int flatLevel;       ///< from this level on, every piece that the band may judge is flat
    bool limited;        ///< true: pieces below the last level are not divided, flat or not
};

int DivideBlockPortable(BlockJob const& job, double* out);
int DivideBlockAvx2(BlockJob const& job, double* out);

/// Divides the job's curve and every piece that is not flat, down to the job's last level. Stores
/// the split points at `out` in order of increasing parameter, v and h in turn; there is room for
/// kBlockPoints. Returns their number, or -1 when a piece below the last level is not flat and the
/// job is not limited.
[[gnu::always_inline]] inline int DivideBlock(BlockJob const& job, double* out) {
    return Dispatch<DivideBlockPortable, DivideBlockAvx2>(job, out);
}

void EdgeLengthsPortable(double const* points, long edges, double* lengths);
void EdgeLengthsAvx2(double const* points, long edges, double* lengths);

/// Stores at `lengths` the distance from each point to the next, with the bits of hypot. `points`
/// holds v and h of `edges` + 1 points in turn.
[[gnu::always_inline]] inline void EdgeLengths(double const* points, long edges, double* lengths) {
    Dispatch<EdgeLengthsPortable, EdgeLengthsAvx2>(points, edges, lengths);
}

} // namespace trammel_detail

#endif
