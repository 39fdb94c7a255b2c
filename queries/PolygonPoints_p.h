// SPDX-License-Identifier: MIT

// The points of both polygon kinds and of rings as a run, for queries. Not installed.

#ifndef TRAMMEL_POLYGONPOINTS_P_H
#define TRAMMEL_POLYGONPOINTS_P_H

#include "CFPolygonRef.h"
#include "FPolygon.h"
#include "PointRun_p.h"
#include "TPoint.h"
#include "TPoly.h"

#include <vector>

namespace trammel_detail {

/// Returns the points as they lie in the polygon's block. They are good until the block is resized.
inline PointRun PointsOf(TPolygon<double> const& polygon) {
    long const count = polygon.LastIndex() + 1;
    if (count <= 0) {
        return {nullptr, 0};
    }
    return {reinterpret_cast<char const*>((*polygon.mHandle)->mPoints), count};
}
inline PointRun PointsOf(CFPolygonRef const& polygon) {
    long const count = FPolygonPointCount(polygon.DataSize());
    if (count <= 0) {
        return {nullptr, 0};
    }
    return {FPolygonPointAt(reinterpret_cast<char const*>(*polygon.mRef), 0), count};
}
inline PointRun PointsOf(std::vector<TPoint<double>> const& ring) {
    return {reinterpret_cast<char const*>(ring.data()), static_cast<long>(ring.size())};
}

} // namespace trammel_detail

#endif
