// SPDX-License-Identifier: MIT

// libpolyclipping's union of many, on a grid of 2^40 steps.

#include "../Crowds.h"
#include "Works.h"

#include <polyclipping/clipper.hpp>

#include <cmath>
#include <memory>

namespace peers {

void RegisterPolyclippingUnions() {
    for (std::string const& name : crowds::Names()) {
        if (name == "circles" || name == "countries") {
            continue; // takes several seconds a pass
        }
        compare::RegisterAlone("union", name, "polyclipping", [name] {
            crowds::Crowd const& crowd = crowds::Get(name);
            double const steps = 0x1p40;
            auto const paths = std::make_shared<ClipperLib::Paths>();
            for (operands::Ring const& ring : crowd.rings) {
                paths->emplace_back();
                for (TPoint<double> const& p : ring) {
                    paths->back().emplace_back(
                        static_cast<ClipperLib::cInt>(std::nearbyint(p.h * steps)),
                        static_cast<ClipperLib::cInt>(std::nearbyint(p.v * steps)));
                }
            }
            compare::Job job;
            job.items = crowd.rings.size();
            job.trammel = [paths, steps] {
                ClipperLib::Clipper clipper;
                clipper.AddPaths(*paths, ClipperLib::ptSubject, true);
                ClipperLib::Paths united;
                clipper.Execute(ClipperLib::ctUnion, united, ClipperLib::pftNonZero,
                                ClipperLib::pftNonZero);
                double area = 0.0;
                for (ClipperLib::Path const& path : united) {
                    area += ClipperLib::Area(path);
                }
                return area / steps / steps;
            };
            job.expected = crowd.area;
            job.slack = 1e-9;
            return job;
        });
    }
}

} // namespace peers
