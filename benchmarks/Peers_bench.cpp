// SPDX-License-Identifier: MIT

// The works of Compare_bench.cpp in other libraries, as far as they are found when this is
// configured. Each starts from its own form of the input; the way there is not measured.
//
// Run by hand: trammel_bench
// --benchmark_filter='^compare/.*/(2geom|agg|boost|cairo|cgal|geos|kurbo|qt)'

#include "peers/OutlineWorks.h"
#include "peers/Works.h"

namespace {

bool RegisterAll() {
#ifdef TRAMMEL_BENCH_LIB2GEOM
    peers::RegisterLib2geomOutlines();
    peers::RegisterLib2geomWorks();
#endif
#ifdef TRAMMEL_BENCH_AGG
    peers::RegisterAggOutlines();
    peers::RegisterAggWorks();
#endif
#ifdef TRAMMEL_BENCH_BOOST
    peers::RegisterBoostWorks();
#endif
#ifdef TRAMMEL_BENCH_CAIRO
    peers::RegisterCairoWorks();
#endif
#ifdef TRAMMEL_BENCH_CGAL
    peers::RegisterCgalWorks();
#endif
#ifdef TRAMMEL_BENCH_GEOS
    peers::RegisterGeosUnions();
    peers::RegisterGeosWorks();
#endif
#ifdef TRAMMEL_BENCH_KURBO
    peers::RegisterKurboWorks();
#endif
#ifdef TRAMMEL_BENCH_POLYCLIPPING
    peers::RegisterPolyclippingUnions();
#endif
#ifdef TRAMMEL_BENCH_QT
    peers::RegisterQtOutlines();
    peers::RegisterQtWorks();
#endif
    return true;
}

[[maybe_unused]] bool const kRegistered = RegisterAll();

} // namespace
