// SPDX-License-Identifier: MIT

// The loops over points for every processor.

#include "PointKernels_p.h"

namespace trammel_detail {

void TransformPointsPortable(char* points, long count, AffineMap const& map) {
    if (map.aboutOrigin) {
        TransformOneByOne<true>(points, 0, count, map);
    } else {
        TransformOneByOne<false>(points, 0, count, map);
    }
}

} // namespace trammel_detail
