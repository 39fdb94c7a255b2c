// SPDX-License-Identifier: MIT

// The loops over points for processors with AVX2. Vector_p.h tells what such a file may not
// contain.

#include "PointKernels_p.h"

namespace trammel_detail {

namespace {

/// Takes two points at a time.
template <bool kAboutOrigin>
[[gnu::always_inline]] inline void TransformPairs(char* points, long count, AffineMap const& map) {
    WideDouble4 const from = Repeat(map.from);
    WideDouble4 const byV = Repeat(map.byV);
    WideDouble4 const byH = Repeat(map.byH);
    WideDouble4 const to = Repeat(map.to);
    long i = 0;
#pragma GCC unroll 4
    for (; i + 2 <= count; i += 2) {
        char* const at = points + kPointBytes * i;
        WideDouble4 const loaded = WideDouble4::Load(at);
        WideDouble4 const p = kAboutOrigin ? loaded : loaded - from;
        (OddTwice(p) * byH + EvenTwice(p) * byV + to).Store(at);
    }
    TransformOneByOne<kAboutOrigin>(points, i, count, map);
}

} // namespace

void TransformPointsAvx2(char* points, long count, AffineMap const& map) {
    if (map.aboutOrigin) {
        TransformPairs<true>(points, count, map);
    } else {
        TransformPairs<false>(points, count, map);
    }
}

} // namespace trammel_detail
