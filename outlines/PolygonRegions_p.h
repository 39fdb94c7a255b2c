// SPDX-License-Identifier: MIT

// The regions of the four operations. Not installed.

#ifndef TRAMMEL_POLYGONREGIONS_P_H
#define TRAMMEL_POLYGONREGIONS_P_H

#include "Tgcp.h"
#include "WindingLabels_p.h"

namespace trammel_detail {

/// Sets the region of an operation on two operands. False for an operation outside of the four.
inline bool SetRegion(TPolyOp op, RegionOf& region) {
    switch (op) {
    case kPolyDifference:
        region = {{false, true, false, false}};
        return true;
    case kPolyIntersection:
        region = {{false, false, false, true}};
        return true;
    case kPolyXor:
        region = {{false, true, true, false}};
        return true;
    case kPolyUnion:
        region = {{false, true, true, true}};
        return true;
    }
    return false;
}

} // namespace trammel_detail

#endif
