// SPDX-License-Identifier: MIT

// The library's queries at the works that are compared (Compare.h):
//
//     trammel-accurate   AccurateCurve.h, to an accuracy of 0.001 units where no other is named
//     trammel-into       the same flattening into the caller's memory
//     trammel-measured   an outline measured beforehand (PathMeasure.h)
//     trammel-outline    the same, right to rounding (OutlineMeasure.h)
//     trammel-prepared   a polygon prepared beforehand (PreparedPolygon.h)
//
// The first has errors of its own, which the tables show. An OutlineMeasure has none but rounding,
// and so differs from the path's own results. The others give the results of the path
// and of the polygon. The program checks that, item by item and to the last bit, before it
// measures. Making them is a work of its own: path_measure and contains_build. contains_some is
// both, for a few dozen points.
//
// Run by hand: trammel_bench --benchmark_filter='^compare/.*/trammel-'

#include "Compare.h"
#include "Inputs.h"
#include "peers/Locator.h"
#include "peers/Works.h"

#include <trammel/AccurateCurve.h>
#include <trammel/Moments.h>
#include <trammel/OutlineMeasure.h>
#include <trammel/PathMeasure.h>
#include <trammel/PathStructure.h>
#include <trammel/PreparedOutline.h>
#include <trammel/PreparedPolygon.h>
#include <trammel/SvgPath.h>
#include <trammel/Winding.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using compare::Job;

typedef TPoint<double> Pt;
typedef std::vector<CPath> Paths;
typedef std::vector<Pt> Points;

/// Registers a work on each set of paths: make(paths, points) is its job, with a point for each
/// path. The paths stay.
template <class Make> void OnPathSets(std::string const& work, std::string const& who, Make make) {
    for (auto const& [input, which] : peers::PathSets()) {
        inputs::Set const set = which;
        compare::RegisterAlone(work, input, who, [=] {
            Paths const& paths = inputs::Outlines(set);
            return make(paths, inputs::Points(paths.size(), inputs::Side(set)));
        });
    }
}

// ------------------------------------------------------------------------------------------------
// Accurate

constexpr double kAccuracy = 0.001;

TPolygon<double> Flattened(CBezier const& curve, double tolerance) {
    TPolygon<double> polygon;
    trammel::FlattenWithin(curve, tolerance, polygon);
    return polygon;
}

void RegisterAccurate() {
    peers::CurveWorks<CBezier> curves;
    curves.convert = [](CBezier const& curve) { return curve; };
    curves.flatten = [](CBezier const& curve, double tolerance) {
        return static_cast<double>(Flattened(curve, tolerance).LastIndex() + 1);
    };
    curves.points = [](CBezier const& curve, double tolerance) {
        return compare::Vertices(Flattened(curve, tolerance));
    };
    curves.length = [](CBezier const& curve) { return trammel::ArcLength(curve, kAccuracy); };
    curves.nearest = [](CBezier const& curve, Pt const& p) {
        return trammel::NearestPoint(curve, p, kAccuracy).t;
    };
    curves.parameter = [](CBezier const& curve, double fraction) {
        return trammel::ParameterAtFraction(curve, fraction, kAccuracy);
    };
    curves.hit = [](CBezier const& curve, Pt const& p, double tolerance) {
        return trammel::NearestPoint(curve, p, kAccuracy).distance <= tolerance;
    };
    peers::RegisterCurves("trammel-accurate", curves);

    peers::PathWorks<CPath> paths;
    paths.convert = [](CPath const& path) { return path; };
    paths.length = [](CPath const& path) { return trammel::ArcLength(path, kAccuracy); };
    peers::RegisterPaths("trammel-accurate", paths);
}

// ------------------------------------------------------------------------------------------------
// Into the caller's memory, and text

constexpr std::size_t kRoom = 4096;

void RegisterInto() {
    auto const room = std::make_shared<std::vector<Pt>>(kRoom);
    peers::CurveWorks<CBezier> curves;
    curves.convert = [](CBezier const& curve) { return curve; };
    curves.flatten = [room](CBezier const& curve, double tolerance) {
        return static_cast<double>(
            trammel::FlattenInto(curve, tolerance, room->data(), kRoom).count);
    };
    curves.points = [room](CBezier const& curve, double tolerance) {
        auto const count = trammel::FlattenInto(curve, tolerance, room->data(), kRoom).count;
        return std::vector<Pt>(room->begin(), room->begin() + static_cast<std::ptrdiff_t>(count));
    };
    peers::RegisterCurves("trammel-into", curves);

    OnPathSets("path_flatten", "trammel-into", [](Paths const& paths, Points const&) {
        auto const flat = std::make_shared<trammel::FlatContours>();
        return peers::JobOf(paths.size(), [=, &paths](std::size_t i) {
            trammel::FlattenInto(paths[i], 0.1, *flat);
            return static_cast<double>(flat->points.size());
        });
    });
    OnPathSets("path_flatten", "trammel-accurate", [](Paths const& paths, Points const&) {
        return peers::JobOf(paths.size(), [&paths](std::size_t i) {
            CPath lines;
            trammel::FlattenWithin(paths[i], 0.1, lines);
            return static_cast<double>(lines.mPts.size());
        });
    });
    OnPathSets("path_text", "trammel", [](Paths const& paths, Points const&) {
        return peers::JobOf(paths.size(), [&paths](std::size_t i) {
            return static_cast<double>(trammel::WriteSvgPath(paths[i]).size());
        });
    });
}

// ------------------------------------------------------------------------------------------------
// Regions of paths

void RegisterRegions() {
    peers::PathWorks<CPath> paths;
    paths.convert = [](CPath const& path) { return path; };
    paths.contains = [](CPath const& path, Pt const& p) {
        return trammel::Contains(path, p, trammel::FillRule::kEvenOdd);
    };
    paths.area = [](CPath const& path) { return trammel::SignedArea(path); };
    paths.bounds = [](CPath const& path) {
        TRect<double> const box = trammel::TightBounds(path);
        return box.left + box.top + box.right + box.bottom;
    };
    peers::RegisterRegions("trammel", paths);

    peers::PathWorks<trammel::PreparedOutline> prepared;
    prepared.convert = [](CPath const& path) { return trammel::PreparedOutline(path); };
    prepared.contains = [](trammel::PreparedOutline const& outline, Pt const& p) {
        return outline.Contains(p, trammel::FillRule::kEvenOdd);
    };
    peers::RegisterRegions("trammel-prepared", prepared);

    OnPathSets("path_moments", "trammel", [](Paths const& list, Points const&) {
        return peers::JobOf(list.size(), [&list](std::size_t i) {
            trammel::AreaMoments const moments = trammel::MomentsOf(list[i]);
            return moments.area == 0.0 ? 0.0 : moments.hh + moments.vv;
        });
    });
}

// ------------------------------------------------------------------------------------------------
// Measured, prepared

std::uint64_t Bits(double x) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &x, sizeof(bits));
    return bits;
}

/// A job that calls call(i) for i from 0 to count - 1, and agrees if each returns what own(i) does.
template <class Call, class Own> Job JobBeside(std::size_t count, Call call, Own own) {
    Job job = peers::JobOf(count, call);
    for (std::size_t i = 0; i < count; ++i) {
        job.agrees = job.agrees && Bits(call(i)) == Bits(own(i));
    }
    return job;
}

/// Asks an outline's kind for lengths, points and pieces: on(work, ask) registers ask(outline,
/// point).
template <class On> void AskAlike(On on) {
    on("path_length", [](auto const& outline, Pt const&) { return outline.Length(); });
    on("path_point", [](auto const& outline, Pt const&) {
        Pt const p = outline.TPt(0.3);
        return p.h + p.v;
    });
    on("path_cut", [](auto const& outline, Pt const&) {
        CPath piece;
        outline.GetTRange(0.25, 0.75, piece);
        double sum = 0.0;
        for (Pt const& p : piece.mPts) {
            sum += p.h + p.v;
        }
        return sum;
    });
}

/// Each question goes to a path and to its PathMeasure.
void RegisterMeasured() {
    auto const on = [](std::string const& work, auto ask) {
        OnPathSets(work, "trammel-measured", [=](Paths const& paths, Points const& points) {
            std::vector<trammel::PathMeasure> const measures(paths.begin(), paths.end());
            return JobBeside(
                paths.size(), [=](std::size_t i) { return ask(measures[i], points[i]); },
                [&](std::size_t i) { return ask(paths[i], points[i]); });
        });
    };
    AskAlike(on);
    on("path_nearest", [](auto const& outline, Pt const& p) { return outline.FindTValue(p); });
    OnPathSets("path_measure", "trammel-measured", [](Paths const& paths, Points const&) {
        return JobBeside(
            paths.size(),
            [&paths](std::size_t i) { return trammel::PathMeasure(paths[i]).Length(); },
            [&paths](std::size_t i) { return paths[i].Length(); });
    });
}

/// Each question goes to OutlineMeasures made beforehand.
void RegisterOutlines() {
    auto const on = [](std::string const& work, auto ask) {
        OnPathSets(work, "trammel-outline", [=](Paths const& paths, Points const& points) {
            std::vector<trammel::OutlineMeasure> const measures(paths.begin(), paths.end());
            return peers::JobOf(paths.size(),
                                [=](std::size_t i) { return ask(measures[i], points[i]); });
        });
    };
    AskAlike(on);
    on("path_nearest", [](trammel::OutlineMeasure const& outline, Pt const& p) {
        return outline.FindNearest(p, kAccuracy).t;
    });
    OnPathSets("path_measure", "trammel-outline", [](Paths const& paths, Points const&) {
        return peers::JobOf(paths.size(), [&paths](std::size_t i) {
            return trammel::OutlineMeasure(paths[i]).Length();
        });
    });
}

/// With so many points a polygon is asked for, it has to pay to prepare it.
constexpr std::size_t kSome = 36;

/// How many of kSome points are inside, from point `first` on and round.
template <class Contains>
double CountSome(std::size_t first, std::size_t count, Contains contains) {
    double inside = 0.0;
    for (std::size_t i = 0; i < kSome; ++i) {
        inside += contains((first + i) % count) ? 1.0 : 0.0;
    }
    return inside;
}

void RegisterPrepared() {
    typedef std::shared_ptr<TPolygon<double> const> Polygon;
    for (auto const& [input, makeRing] : peers::Rings()) {
        auto const make = makeRing;
        auto const job = [=](auto prepare, std::size_t most) {
            auto const ring = make();
            Polygon const polygon = std::make_shared<TPolygon<double>>(compare::Polygon(ring));
            auto const points = inputs::PointsOver(ring, compare::Calls(ring.size(), most));
            return JobBeside(points.size(), prepare(polygon, points), [&](std::size_t i) {
                return polygon->Contains(points[i]) ? 1.0 : 0.0;
            });
        };
        compare::RegisterAlone("contains", input, "trammel-prepared", [=] {
            return job(
                [](Polygon const& polygon, truth::Chain const& points) {
                    trammel::PreparedPolygon const prepared(*polygon);
                    return [=](std::size_t i) { return prepared.Contains(points[i]) ? 1.0 : 0.0; };
                },
                1000);
        });
        compare::RegisterAlone("contains_build", input, "trammel-prepared", [=] {
            return job(
                [](Polygon const& polygon, truth::Chain const& points) {
                    return [=](std::size_t i) {
                        trammel::PreparedPolygon const prepared(*polygon);
                        return prepared.Contains(points[i]) ? 1.0 : 0.0;
                    };
                },
                100);
        });
        auto const registerSome = [=](std::string const& who, auto prepare) {
            compare::RegisterAlone("contains_some", input, who, [=] {
                auto const ring = make();
                Polygon const polygon = std::make_shared<TPolygon<double>>(compare::Polygon(ring));
                auto const points = inputs::PointsOver(ring, compare::Calls(ring.size(), 100));
                auto const ask = [=](std::size_t first, auto const& asked) {
                    return CountSome(first, points.size(),
                                     [&](std::size_t i) { return asked.Contains(points[i]); });
                };
                return JobBeside(
                    points.size(), [=](std::size_t i) { return ask(i, prepare(*polygon)); },
                    [=](std::size_t i) { return ask(i, *polygon); });
            });
        };
        typedef TPolygon<double> const& Asked; // by reference: a copy is no preparation
        registerSome("trammel", [](Asked polygon) -> Asked { return polygon; });
        registerSome("trammel-prepared",
                     [](Asked polygon) { return trammel::PreparedPolygon(polygon); });
#ifdef TRAMMEL_BENCH_GEOS
        // GEOS builds its index for the first point within the bounds, as all of these are.
        auto const registerGeos = [=](std::string const& work, std::size_t asked) {
            compare::RegisterAlone(work, input, "geos-prepared", [=] {
                auto const ring = make();
                if (ring.empty()) {
                    return Job();
                }
                auto const points = inputs::PointsOver(ring, compare::Calls(ring.size(), 100));
                std::shared_ptr<peers::Locator> const locator = peers::GeosLocator(ring, points);
                Job made = peers::JobOf(points.size(), [=](std::size_t first) {
                    locator->Prepare();
                    double inside = 0.0;
                    for (std::size_t i = 0; i < asked; ++i) {
                        inside += locator->Contains((first + i) % points.size()) ? 1.0 : 0.0;
                    }
                    return inside;
                });
                made.expected = compare::ContainedIn(ring, points) * static_cast<double>(asked);
                return made;
            });
        };
        registerGeos("contains_build", 1);
        registerGeos("contains_some", kSome);
#endif
    }
}

bool RegisterAll() {
    RegisterAccurate();
    RegisterInto();
    RegisterRegions();
    RegisterMeasured();
    RegisterOutlines();
    RegisterPrepared();
    return true;
}

[[maybe_unused]] bool const kRegistered = RegisterAll();

} // namespace

namespace peers {

std::vector<CPath> Closed(std::vector<CPath> const& paths) {
    std::vector<CPath> closed;
    closed.reserve(paths.size());
    for (CPath const& path : paths) {
        closed.push_back(trammel::WithSubpathsClosed(path));
    }
    return closed;
}

std::vector<bool> WhichWithin(std::vector<CPath> const& paths,
                              std::vector<TPoint<double>> const& points) {
    std::vector<bool> within;
    within.reserve(paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
        within.push_back(trammel::Contains(paths[i], points[i], trammel::FillRule::kEvenOdd));
    }
    return within;
}

double SumOfAreas(std::vector<CPath> const& paths) {
    double sum = 0.0;
    for (CPath const& path : paths) {
        sum += trammel::SignedArea(path);
    }
    return sum;
}

double SumOfBounds(std::vector<CPath> const& paths) {
    double sum = 0.0;
    for (CPath const& path : paths) {
        TRect<double> const box = trammel::TightBounds(path);
        sum += box.left + box.top + box.right + box.bottom;
    }
    return sum;
}

} // namespace peers
