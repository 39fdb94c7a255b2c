// SPDX-License-Identifier: MIT

// GEOS through its C interface. Operands that cross themselves go through GEOSMakeValid first, as
// its documentation asks, and the time is counted: it is part of what such a caller waits for.

#include "Peer.h"

#include <geos_c.h>

#include <memory>
#include <stdexcept>
#include <vector>

namespace peers {
namespace {

class Geometry {
public:
    Geometry(GEOSContextHandle_t context, GEOSGeometry* geometry)
        : mContext(context), mGeometry(geometry) {
        if (geometry == nullptr) {
            throw std::runtime_error("GEOS gives no geometry");
        }
    }
    ~Geometry() { GEOSGeom_destroy_r(mContext, mGeometry); }
    Geometry(Geometry const&) = delete;
    Geometry& operator=(Geometry const&) = delete;

    GEOSGeometry const* Get() const { return mGeometry; }

private:
    GEOSContextHandle_t mContext;
    GEOSGeometry* mGeometry;
};

class GeosJob : public Job {
public:
    explicit GeosJob(operands::Pair const& pair)
        : mContext(GEOS_init_r()), mCrossing(pair.crossing),
          mFirst(std::make_unique<Geometry>(mContext, Convert(pair.first))),
          mSecond(std::make_unique<Geometry>(mContext, Convert(pair.second))) {}
    ~GeosJob() override {
        mResult.reset();
        mSecond.reset();
        mFirst.reset();
        GEOS_finish_r(mContext);
    }
    GeosJob(GeosJob const&) = delete;
    GeosJob& operator=(GeosJob const&) = delete;

    void Run(TPolyOp op) override {
        if (mCrossing) {
            Geometry const first(mContext, GEOSMakeValid_r(mContext, mFirst->Get()));
            Geometry const second(mContext, GEOSMakeValid_r(mContext, mSecond->Get()));
            Combine(op, first, second);
        } else {
            Combine(op, *mFirst, *mSecond);
        }
    }

    double Area() const override {
        double area = 0.0;
        GEOSArea_r(mContext, mResult->Get(), &area);
        return area;
    }

private:
    void Combine(TPolyOp op, Geometry const& a, Geometry const& b) {
        auto* const function = op == kPolyDifference     ? &GEOSDifference_r
                               : op == kPolyIntersection ? &GEOSIntersection_r
                               : op == kPolyXor          ? &GEOSSymDifference_r
                                                         : &GEOSUnion_r;
        mResult = std::make_unique<Geometry>(mContext, function(mContext, a.Get(), b.Get()));
    }

    GEOSGeometry* LinearRing(operands::Ring const& ring) const {
        auto const count = static_cast<unsigned>(ring.size());
        GEOSCoordSequence* const points = GEOSCoordSeq_create_r(mContext, count + 1, 2);
        for (unsigned i = 0; i <= count; ++i) {
            TPoint<double> const& p = ring[i % count];
            GEOSCoordSeq_setXY_r(mContext, points, i, p.h, p.v);
        }
        return GEOSGeom_createLinearRing_r(mContext, points);
    }

    GEOSGeometry* PolygonOf(operands::Ring const& outer,
                            std::vector<operands::Ring> const& inner) const {
        std::vector<GEOSGeometry*> holes;
        holes.reserve(inner.size());
        for (operands::Ring const& ring : inner) {
            holes.push_back(LinearRing(ring));
        }
        return GEOSGeom_createPolygon_r(mContext, LinearRing(outer), holes.data(),
                                        static_cast<unsigned>(holes.size()));
    }

    GEOSGeometry* Convert(operands::Operand const& operand) const {
        if (mCrossing) {
            return PolygonOf(operand.rings.front(), {});
        }
        std::vector<GEOSGeometry*> polygons;
        polygons.reserve(operand.areas.size());
        for (operands::Area const& area : operand.areas) {
            polygons.push_back(PolygonOf(area.outer, area.holes));
        }
        return GEOSGeom_createCollection_r(mContext, GEOS_MULTIPOLYGON, polygons.data(),
                                           static_cast<unsigned>(polygons.size()));
    }

    GEOSContextHandle_t mContext;
    bool mCrossing;
    std::unique_ptr<Geometry> mFirst;
    std::unique_ptr<Geometry> mSecond;
    std::unique_ptr<Geometry> mResult;
};

} // namespace

Peer Geos() {
    return {"geos", true, false, false, [](operands::Pair const& pair) -> std::unique_ptr<Job> {
                return std::make_unique<GeosJob>(pair);
            }};
}

} // namespace peers
