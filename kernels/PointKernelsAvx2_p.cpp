// SPDX-License-Identifier: MIT

// The loops over points for processors with AVX2. Vector_p.h tells what such a file may not
// contain.

#include "PointKernels_p.h"

namespace trammel_detail {

namespace {

/// The extents of the points with even numbers and of those with odd ones.
struct PairExtent {
    WideDouble4 low, high;

    [[gnu::always_inline]] inline void Include(WideDouble4 const& pair) {
        low = Min(pair, low);
        high = Max(pair, high);
    }
};

/// Takes four points at a time.
template <bool kAboutOrigin>
[[gnu::always_inline]] inline void TransformPairs(char* points, long count, AffineMap map) {
    AffineImages const images(map);
    WideDouble4 const byH = Repeat(images.byH);
    WideDouble4 const byV = Repeat(images.byV);
    WideDouble4 const to = Repeat(images.to);
    WideDouble4 const from = kAboutOrigin ? WideDouble4(0.0) : Repeat(images.from);
    auto const transform = [=](char* at) __attribute__((always_inline)) {
        WideDouble4 const loaded = WideDouble4::Load(at);
        WideDouble4 const p = kAboutOrigin ? loaded : loaded - from;
        (OddTwice(p) * byH + EvenTwice(p) * byV + to).Store(at);
    };
    char* const end = points + kPointBytes * count;
    for (; end - points >= 4 * kPointBytes; points += 4 * kPointBytes) {
        transform(points);
        transform(points + 2 * kPointBytes);
    }
    if (end - points >= 2 * kPointBytes) {
        transform(points);
        points += 2 * kPointBytes;
    }
    if (points != end) {
        Double2 const loaded = Double2::Load(points);
        Double2 const p = kAboutOrigin ? loaded : loaded - LowHalf(from);
        (OddTwice(p) * LowHalf(byH) + EvenTwice(p) * LowHalf(byV) + LowHalf(to)).Store(points);
    }
}

} // namespace

void ExtentOfManyAvx2(char const* first, char const* points, long count, double* out) {
    auto const pair = [=](long i) __attribute__((always_inline)) {
        return WideDouble4::Load(points + kPointBytes * i);
    };
    WideDouble4 const p = Repeat(Double2::Load(first));
    PairExtent e0 = {Min(pair(0), p), Max(pair(0), p)};
    PairExtent e1 = {Min(pair(2), p), Max(pair(2), p)};
    for (long i = 4; i < count - 4; i += 4) {
        e0.Include(pair(i));
        e1.Include(pair(i + 2));
    }
    // The last four, of which some come again. That changes nothing.
    e0.Include(pair(count - 4));
    e1.Include(pair(count - 2));
    WideDouble4 const low = Min(e1.low, e0.low);
    WideDouble4 const high = Max(e1.high, e0.high);
    PointExtent const extent = {Min(HighHalf(low), LowHalf(low)),
                                Max(HighHalf(high), LowHalf(high))};
    extent.Store(out);
}

void TransformManyAvx2(char* points, long count, AffineMap map) {
    if (map.from == nullptr) {
        TransformPairs<true>(points, count, map);
    } else {
        TransformPairs<false>(points, count, map);
    }
}

} // namespace trammel_detail
