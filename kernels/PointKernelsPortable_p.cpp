// SPDX-License-Identifier: MIT

// The loops over points for every processor.

#include "PointKernels_p.h"

namespace trammel_detail {

void ExtentOfManyPortable(char const* first, char const* points, long count, double* out) {
    auto const point = [=](long i) { return Double2::Load(points + kPointBytes * i); };
    // Each extent waits for its last result. So four of them go side by side.
    Double2 const p = Double2::Load(first);
    PointExtent e0 = {p, p};
    PointExtent e1 = {p, p};
    PointExtent e2 = {p, p};
    PointExtent e3 = {p, p};
    long i = 0;
    for (; i + 4 <= count; i += 4) {
        e0.Include(point(i));
        e1.Include(point(i + 1));
        e2.Include(point(i + 2));
        e3.Include(point(i + 3));
    }
    for (; i < count; ++i) {
        e0.Include(point(i));
    }
    PointExtent const extent = {Min(Min(e3.low, e2.low), Min(e1.low, e0.low)),
                                Max(Max(e3.high, e2.high), Max(e1.high, e0.high))};
    extent.Store(out);
}

void TransformManyPortable(char* points, long count, AffineMap map) {
    if (map.from == nullptr) {
        TransformOneByOne<true>(points, 0, count, AffineImages(map));
    } else {
        TransformOneByOne<false>(points, 0, count, AffineImages(map));
    }
}

} // namespace trammel_detail
