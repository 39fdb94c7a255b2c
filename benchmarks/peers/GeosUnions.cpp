// SPDX-License-Identifier: MIT

// GEOS's unary union. Its result is converted to nothing else, and its area is asked for.

#include "../Crowds.h"
#include "Works.h"

#include <geos_c.h>

#include <memory>
#include <vector>

namespace peers {
namespace {

/// A multipolygon of GEOS's.
class Collection {
public:
    explicit Collection(std::vector<operands::Ring> const& rings) : mContext(GEOS_init_r()) {
        std::vector<GEOSGeometry*> polygons;
        for (operands::Ring const& ring : rings) {
            auto const count = static_cast<unsigned>(ring.size());
            GEOSCoordSequence* const points = GEOSCoordSeq_create_r(mContext, count + 1, 2);
            for (unsigned i = 0; i <= count; ++i) {
                GEOSCoordSeq_setXY_r(mContext, points, i, ring[i % count].h, ring[i % count].v);
            }
            polygons.push_back(GEOSGeom_createPolygon_r(
                mContext, GEOSGeom_createLinearRing_r(mContext, points), nullptr, 0));
        }
        mAll = GEOSGeom_createCollection_r(mContext, GEOS_MULTIPOLYGON, polygons.data(),
                                           static_cast<unsigned>(polygons.size()));
    }
    Collection(Collection const&) = delete;
    Collection& operator=(Collection const&) = delete;
    ~Collection() {
        GEOSGeom_destroy_r(mContext, mAll);
        GEOS_finish_r(mContext);
    }

    double UnionArea() const {
        double area = 0.0;
        GEOSGeometry* const united = GEOSUnaryUnion_r(mContext, mAll);
        if (united != nullptr) {
            GEOSArea_r(mContext, united, &area);
            GEOSGeom_destroy_r(mContext, united);
        }
        return area;
    }

private:
    GEOSContextHandle_t mContext;
    GEOSGeometry* mAll;
};

} // namespace

void RegisterGeosUnions() {
    for (std::string const& name : crowds::Names()) {
        compare::RegisterAlone("union", name, "geos", [name] {
            crowds::Crowd const& crowd = crowds::Get(name);
            auto const collection = std::make_shared<Collection>(crowd.rings);
            compare::Job job;
            job.items = crowd.rings.size();
            job.trammel = [collection] { return collection->UnionArea(); };
            job.expected = crowd.area;
            job.slack = 1e-9;
            return job;
        });
    }
}

} // namespace peers
