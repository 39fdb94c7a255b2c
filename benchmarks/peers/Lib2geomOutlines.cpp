// SPDX-License-Identifier: MIT

#include "Lib2geomPath.h"
#include "OutlineWorks.h"

#include <2geom/intersection-graph.h>
#include <2geom/pathvector.h>

namespace peers {

void RegisterLib2geomOutlines() {
    OutlineWorks<Geom::PathVector> works;
    works.most = 1000;
    works.convert = [](CPath const& path) {
        Lib2geomPathBuilder builder;
        path.ForAll(builder);
        return Geom::PathVector(builder.mPaths->begin(), builder.mPaths->end());
    };
    works.unite = [](Geom::PathVector const& a, Geom::PathVector const& b) {
        try {
            return static_cast<double>(Geom::PathIntersectionGraph(a, b).getUnion().curveCount());
        } catch (...) { // some throw an enumerator, others an exception
            return 0.0;
        }
    };
    RegisterOutlines("2geom", works);
}

} // namespace peers
