// SPDX-License-Identifier: MIT

// Points become geometries beforehand, so that only the query is measured: that favours GEOS, as a
// caller with coordinates would have to make them.

#include "Locator.h"

#include <geos_c.h>

namespace peers {
namespace {

class Geos : public Locator {
public:
    Geos(std::vector<TPoint<double>> const& vertices, std::vector<TPoint<double>> const& points)
        : mContext(GEOS_init_r()) {
        auto const count = static_cast<unsigned>(vertices.size());
        GEOSCoordSequence* const ring = GEOSCoordSeq_create_r(mContext, count + 1, 2);
        for (unsigned i = 0; i <= count; ++i) {
            TPoint<double> const& p = vertices[i % count];
            GEOSCoordSeq_setXY_r(mContext, ring, i, p.h, p.v);
        }
        mPolygon = GEOSGeom_createPolygon_r(mContext, GEOSGeom_createLinearRing_r(mContext, ring),
                                            nullptr, 0);
        mPoints.reserve(points.size());
        for (TPoint<double> const& p : points) {
            mPoints.push_back(GEOSGeom_createPointFromXY_r(mContext, p.h, p.v));
        }
    }
    ~Geos() override {
        Drop();
        for (GEOSGeometry* const point : mPoints) {
            GEOSGeom_destroy_r(mContext, point);
        }
        GEOSGeom_destroy_r(mContext, mPolygon);
        GEOS_finish_r(mContext);
    }
    Geos(Geos const&) = delete;
    Geos& operator=(Geos const&) = delete;

    void Prepare() override {
        Drop();
        mPrepared = GEOSPrepare_r(mContext, mPolygon);
    }
    bool Contains(std::size_t i) override {
        return GEOSPreparedContains_r(mContext, mPrepared, mPoints[i]) == 1;
    }

private:
    void Drop() {
        if (mPrepared != nullptr) {
            GEOSPreparedGeom_destroy_r(mContext, mPrepared);
            mPrepared = nullptr;
        }
    }

    GEOSContextHandle_t mContext;
    GEOSGeometry* mPolygon;
    std::vector<GEOSGeometry*> mPoints;
    GEOSPreparedGeometry const* mPrepared = nullptr;
};

} // namespace

std::unique_ptr<Locator> GeosLocator(std::vector<TPoint<double>> const& vertices,
                                     std::vector<TPoint<double>> const& points) {
    return std::make_unique<Geos>(vertices, points);
}

} // namespace peers
