// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_APP_OWNEDPOLYGON_H
#define TRAMMEL_APP_OWNEDPOLYGON_H

#include <trammel/CFPolygonRef.h>
#include <trammel/TPoint.h>
#include <trammel/TPoly.h>

#include <vector>

namespace tool {

/// A handle polygon that frees its block.
class OwnedPolygon {
public:
    /// Takes the block over.
    explicit OwnedPolygon(CFPolygonRef polygon) : mPolygon(polygon) {}
    /// Copies the points and the closed flag.
    explicit OwnedPolygon(TPolygon<double> const& points) : mPolygon(points) {}
    ~OwnedPolygon() { mPolygon.Dispose(); }
    OwnedPolygon(OwnedPolygon const&) = delete;
    OwnedPolygon& operator=(OwnedPolygon const&) = delete;

    /// Refers to the block, for as long as this object lives.
    CFPolygonRef Ref() const { return mPolygon; }

private:
    CFPolygonRef mPolygon;
};

/// Returns the points of a handle polygon.
inline std::vector<TPoint<double>> PointsOf(CFPolygonRef const& polygon) {
    std::vector<TPoint<double>> points;
    for (long i = 0; i <= polygon.LastIndex(); ++i) {
        points.push_back(polygon.PolyPoints(i));
    }
    return points;
}

} // namespace tool

#endif
