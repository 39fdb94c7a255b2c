// SPDX-License-Identifier: MIT

// Loops over many points. Not installed.
//
// A point is two doubles, v and then h. Points lie one after the other, and begin at any address.
// Results have the bits of plain loops over the points.

#ifndef TRAMMEL_POINTKERNELS_P_H
#define TRAMMEL_POINTKERNELS_P_H

#include "Dispatch_p.h"
#include "Vector_p.h"

#include <cstdint>

namespace trammel_detail {

/// The bytes of a point.
inline constexpr long kPointBytes = 16;
/// For fewer points a call of a kernel costs more than it saves. Images are stored, and wide ones
/// lie across the borders of cache lines more often.
inline constexpr long kManyPoints = 8;
inline constexpr long kManyImages = 16;

// ------------------------------------------------------------------------------------------------
// Which points are not below a height (v grows downward)

/// Returns a mask that tells of points 0 and 1 whether their v is at most `v`. A NaN is not.
[[gnu::always_inline]] inline Mask2 TwoNotBelow(char const* points, double v) {
    return Firsts(Double2::Load(points), Double2::Load(points + kPointBytes)) <= Double2(v);
}

/// Returns a number whose bit i tells whether point i of `count` has a v of at most `v`. There are
/// at most 64 points; the bits beyond are 0.
[[gnu::always_inline]] inline std::uint64_t NotBelow(char const* points, long count, double v) {
    std::uint64_t bits = 0;
    long i = 0;
    for (; i + 16 <= count; i += 16) {
        char const* const from = points + kPointBytes * i;
        Mask2 const masks[8] = {TwoNotBelow(from, v),
                                TwoNotBelow(from + 2 * kPointBytes, v),
                                TwoNotBelow(from + 4 * kPointBytes, v),
                                TwoNotBelow(from + 6 * kPointBytes, v),
                                TwoNotBelow(from + 8 * kPointBytes, v),
                                TwoNotBelow(from + 10 * kPointBytes, v),
                                TwoNotBelow(from + 12 * kPointBytes, v),
                                TwoNotBelow(from + 14 * kPointBytes, v)};
        bits |= std::uint64_t{BitsOfEight(masks)} << static_cast<unsigned>(i);
    }
    for (; i + 2 <= count; i += 2) {
        bits |= std::uint64_t{TwoNotBelow(points + kPointBytes * i, v).Bits()}
                << static_cast<unsigned>(i);
    }
    if (i < count) {
        bits |= std::uint64_t{Lane<0>(Double2::Load(points + kPointBytes * i)) <= v}
                << static_cast<unsigned>(i);
    }
    return bits;
}

// ------------------------------------------------------------------------------------------------
// The extent of points

/// The least and the greatest coordinates, v in lane 0 and h in lane 1.
struct PointExtent {
    Double2 low, high;

    /// A NaN in `p` changes nothing. Of two equal zeros, the one that was there stays.
    [[gnu::always_inline]] inline void Include(Double2 const& p) {
        low = Min(p, low);
        high = Max(p, high);
    }
    [[gnu::always_inline]] inline void Store(double* out) const {
        low.Store(out);
        high.Store(out + 2);
    }
};

void ExtentOfManyPortable(char const* first, char const* points, long count, double* out);
void ExtentOfManyAvx2(char const* first, char const* points, long count, double* out);

/// Stores at `out` the extent of the point at `first` and of the `count` points at `points`: the
/// least v and h, and the greatest. A NaN in the first point stays; others change nothing. Of
/// several equal zeros, any may be kept.
[[gnu::always_inline]] inline void ExtentOfPoints(char const* first, char const* points, long count,
                                                  double* out) {
    if (count >= kManyPoints) {
        Dispatch<ExtentOfManyPortable, ExtentOfManyAvx2>(first, points, count, out);
        return;
    }
    Double2 const p = Double2::Load(first);
    PointExtent extent = {p, p};
    for (long i = 0; i < count; ++i) {
        extent.Include(Double2::Load(points + kPointBytes * i));
    }
    extent.Store(out);
}

// ------------------------------------------------------------------------------------------------
// Affine maps

/// Takes a point p to d.h·(a, b) + d.v·(c, d) + (tx, ty), where d = p - from.
struct AffineMap {
    double const* matrix; ///< a, b, c, d, tx and ty
    double const* from;   ///< v and h of a point; null for the origin, which is not subtracted
};

/// The numbers of a map, v in lane 0 and h in lane 1.
struct AffineImages {
    Double2 from;
    Double2 byH; ///< the image of a unit of h
    Double2 byV; ///< the image of a unit of v
    Double2 to;

    [[gnu::always_inline]] inline explicit AffineImages(AffineMap map)
        : from(map.from != nullptr ? Double2::Load(map.from) : Double2(0.0)),
          byH(Double2::Of(map.matrix[1], map.matrix[0])),
          byV(Double2::Of(map.matrix[3], map.matrix[2])),
          to(Double2::Of(map.matrix[5], map.matrix[4])) {}
};

/// Replaces points `i` to `count` - 1 by their images, one by one.
template <bool kAboutOrigin>
[[gnu::always_inline]] inline void TransformOneByOne(char* points, long i, long count,
                                                     AffineImages const& images) {
    AffineImages const own = images; // else the points might overwrite these
    for (; i < count; ++i) {
        char* const at = points + kPointBytes * i;
        Double2 const loaded = Double2::Load(at);
        Double2 const p = kAboutOrigin ? loaded : loaded - own.from;
        (OddTwice(p) * own.byH + EvenTwice(p) * own.byV + own.to).Store(at);
    }
}

void TransformManyPortable(char* points, long count, AffineMap map);
void TransformManyAvx2(char* points, long count, AffineMap map);

/// Replaces each of `count` points by its image. The map's numbers are none of theirs.
[[gnu::always_inline]] inline void TransformPoints(char* points, long count, AffineMap map) {
    if (count >= kManyImages) {
        Dispatch<TransformManyPortable, TransformManyAvx2>(points, count, map);
    } else if (map.from == nullptr) {
        TransformOneByOne<true>(points, 0, count, AffineImages(map));
    } else {
        TransformOneByOne<false>(points, 0, count, AffineImages(map));
    }
}

} // namespace trammel_detail

#endif
