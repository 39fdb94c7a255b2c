// SPDX-License-Identifier: MIT

// What does the union of 10,000 polygons cost, in one call? An item is a polygon. Other libraries
// are in peers/.
//
// Run by hand: trammel_bench --benchmark_filter=compare/union

#include "Compare.h"
#include "Crowds.h"

#include <trammel/Moments.h>
#include <trammel/PolygonOperations.h>

#include <memory>
#include <string>
#include <vector>

namespace {

bool RegisterAll() {
    for (std::string const& name : crowds::Names()) {
        compare::RegisterAlone("union", name, "trammel", [name] {
            crowds::Crowd const& crowd = crowds::Get(name);
            auto const polygons = std::make_shared<std::vector<TPolygon<double>>>();
            for (operands::Ring const& ring : crowd.rings) {
                polygons->push_back(compare::Polygon(ring));
            }
            compare::Job job;
            job.items = crowd.rings.size();
            job.trammel = [polygons] {
                double area = 0.0;
                for (TPolygon<double> const& ring :
                     trammel::Union(*polygons, trammel::FillRule::kNonZero)) {
                    area += trammel::SignedArea(ring);
                }
                return area;
            };
            job.expected = crowd.area;
            return job;
        });
    }
    return true;
}

[[maybe_unused]] bool const kRegistered = RegisterAll();

} // namespace
