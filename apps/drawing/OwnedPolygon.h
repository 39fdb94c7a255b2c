// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_APP_OWNEDPOLYGON_H
#define TRAMMEL_APP_OWNEDPOLYGON_H

#include <trammel/CFPolygonRef.h>
#include <trammel/TPoly.h>

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

} // namespace tool

#endif
