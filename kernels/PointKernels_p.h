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
};

/// Returns the extent of `count` points, at least one. The first lies at `first`, and each other
/// one `step` bytes behind the one before. A NaN in the first point stays; later ones change
/// nothing. Of several equal zeros, any may be kept.
[[gnu::always_inline]] inline PointExtent ExtentOfPoints(char const* first, long step, long count) {
    auto const point = [=](long i) __attribute__((always_inline)) {
        return Double2::Load(first + step * i);
    };
    // Each extent waits for its last result. So four of them go side by side.
    Double2 const p = point(0);
    PointExtent e0 = {p, p};
    PointExtent e1 = {p, p};
    PointExtent e2 = {p, p};
    PointExtent e3 = {p, p};
    long i = 1;
    for (; i + 4 <= count; i += 4) {
        e0.Include(point(i));
        e1.Include(point(i + 1));
        e2.Include(point(i + 2));
        e3.Include(point(i + 3));
    }
    for (; i < count; ++i) {
        e0.Include(point(i));
    }
    return {Min(Min(e3.low, e2.low), Min(e1.low, e0.low)),
            Max(Max(e3.high, e2.high), Max(e1.high, e0.high))};
}

// ------------------------------------------------------------------------------------------------
// Affine maps

/// Takes a point p to d.h·byH + d.v·byV + to, where d = p - from. Lane 0 is for v, lane 1 for h.
struct AffineMap {
    Double2 from;
    Double2 byV; ///< the image of a unit of v
    Double2 byH; ///< the image of a unit of h
    Double2 to;
    bool aboutOrigin; ///< true: `from` is the origin, and is not subtracted
};

/// Replaces points `i` to `count` - 1 by their images, one by one.
template <bool kAboutOrigin>
[[gnu::always_inline]] inline void TransformOneByOne(char* points, long i, long count,
                                                     AffineMap const& map) {
    AffineMap const own = map; // else the compiler would expect the points to overwrite the map
    for (; i < count; ++i) {
        char* const at = points + kPointBytes * i;
        Double2 const loaded = Double2::Load(at);
        Double2 const p = kAboutOrigin ? loaded : loaded - own.from;
        (OddTwice(p) * own.byH + EvenTwice(p) * own.byV + own.to).Store(at);
    }
}

void TransformPointsPortable(char* points, long count, AffineMap const& map);
void TransformPointsAvx2(char* points, long count, AffineMap const& map);

/// Replaces each of `count` points by its image.
[[gnu::always_inline]] inline void TransformPoints(char* points, long count, AffineMap const& map) {
    constexpr long kFew = 8; // calling a kernel for fewer points costs more than it saves
    if (count >= kFew) {
        Dispatch<TransformPointsPortable, TransformPointsAvx2>(points, count, map);
    } else if (map.aboutOrigin) {
        TransformOneByOne<true>(points, 0, count, map);
    } else {
        TransformOneByOne<false>(points, 0, count, map);
    }
}

} // namespace trammel_detail

#endif
