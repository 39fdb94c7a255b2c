// SPDX-License-Identifier: MIT

// The tests of polygons share these views of both kinds: as a list of points, and as bytes.

#ifndef TRAMMEL_POLYGONSUPPORT_H
#define TRAMMEL_POLYGONSUPPORT_H

#include "CFPolygonRef.h"
#include "Handles.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TestSupport.h"

#include <cstddef>
#include <string>
#include <vector>

namespace trammel_test {

/// The vertices in order.
inline std::vector<TPoint<double>> PointsOf(TPolygon<double> const& polygon) {
    std::vector<TPoint<double>> points;
    for (long i = 0; i <= polygon.LastIndex(); ++i) {
        points.push_back(polygon.GetPt(i));
    }
    return points;
}
inline std::vector<TPoint<double>> PointsOf(CFPolygonRef const& polygon) {
    std::vector<TPoint<double>> points;
    for (long i = 0; i <= polygon.LastIndex(); ++i) {
        points.push_back(polygon.PolyPoints(i));
    }
    return points;
}

/// The bytes of its block.
inline std::string Contents(TPolygon<double> const& polygon) {
    return Contents(reinterpret_cast<Handle>(polygon.mHandle));
}
inline std::string Contents(CFPolygonRef const& polygon) {
    return Contents(reinterpret_cast<Handle>(polygon.mRef));
}

} // namespace trammel_test

#endif
