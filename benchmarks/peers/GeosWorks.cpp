// SPDX-License-Identifier: MIT

#include "Works.h"

#include <geos_c.h>

#include <memory>

namespace peers {
namespace {

/// A polygon and GEOS's objects to ask it. The first question prepares it.
class Polygon {
public:
    Polygon(truth::Chain const& ring, bool prepare) : mContext(GEOS_init_r()) {
        auto const count = static_cast<unsigned>(ring.size());
        GEOSCoordSequence* const points = GEOSCoordSeq_create_r(mContext, count + 1, 2);
        for (unsigned i = 0; i <= count && count != 0; ++i) {
            TPoint<double> const& p = ring[i % count];
            GEOSCoordSeq_setXY_r(mContext, points, i, p.h, p.v);
        }
        mPolygon = GEOSGeom_createPolygon_r(mContext, GEOSGeom_createLinearRing_r(mContext, points),
                                            nullptr, 0);
        mPrepared = prepare ? GEOSPrepare_r(mContext, mPolygon) : nullptr;
    }
    Polygon(Polygon const&) = delete;
    Polygon& operator=(Polygon const&) = delete;
    ~Polygon() {
        if (mPrepared != nullptr) {
            GEOSPreparedGeom_destroy_r(mContext, mPrepared);
        }
        GEOSGeom_destroy_r(mContext, mPolygon);
        GEOS_finish_r(mContext);
    }

    bool Contains(TPoint<double> const& p) const {
        GEOSGeometry* const point = GEOSGeom_createPointFromXY_r(mContext, p.h, p.v);
        bool const inside =
            (mPrepared != nullptr ? GEOSPreparedContains_r(mContext, mPrepared, point)
                                  : GEOSContains_r(mContext, mPolygon, point)) == 1;
        GEOSGeom_destroy_r(mContext, point);
        return inside;
    }

    double Clip(TLine<double> const& line) const {
        GEOSCoordSequence* const points = GEOSCoordSeq_create_r(mContext, 2, 2);
        GEOSCoordSeq_setXY_r(mContext, points, 0, line.mStart.h, line.mStart.v);
        GEOSCoordSeq_setXY_r(mContext, points, 1, line.mEnd.h, line.mEnd.v);
        GEOSGeometry* const segment = GEOSGeom_createLineString_r(mContext, points);
        GEOSGeometry* const pieces = GEOSIntersection_r(mContext, segment, mPolygon);
        double length = 0.0;
        if (pieces != nullptr) {
            GEOSLength_r(mContext, pieces, &length);
            GEOSGeom_destroy_r(mContext, pieces);
        }
        GEOSGeom_destroy_r(mContext, segment);
        return length;
    }

private:
    GEOSContextHandle_t mContext;
    GEOSGeometry* mPolygon;
    GEOSPreparedGeometry const* mPrepared;
};

bool Contains(Polygon const& polygon, TPoint<double> const& p) { return polygon.Contains(p); }

} // namespace

void RegisterGeosWorks() {
    PolygonWorks<Polygon> polygons;
    polygons.convert = [](truth::Chain const& ring) {
        return std::make_shared<Polygon>(ring, false);
    };
    polygons.contains = Contains;
    polygons.most = 20000;
    polygons.clip = [](Polygon const& polygon, TLine<double> const& line) {
        return polygon.Clip(line);
    };
    RegisterPolygons("geos", polygons);

    PolygonWorks<Polygon> prepared;
    prepared.convert = [](truth::Chain const& ring) {
        return std::make_shared<Polygon>(ring, true);
    };
    prepared.contains = Contains;
    RegisterPolygons("geos-prepared", prepared);
}

} // namespace peers
