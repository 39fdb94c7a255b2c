// SPDX-License-Identifier: MIT

// Other libraries at the works that are compared (../Compare.h). Each library has its own source
// file, which is compiled apart if the library is found, and which registers the works that the
// library can do. Trammel's queries are measured in the same way (../Queries_bench.cpp).

#ifndef TRAMMEL_WORKS_H
#define TRAMMEL_WORKS_H

#include "../Compare.h"
#include "../Inputs.h"
#include "../OutlineInputs.h"
#include "../Truth.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace peers {

void RegisterAggWorks();
void RegisterBoostWorks();
void RegisterCairoWorks();
void RegisterCgalWorks();
void RegisterGeosUnions();
void RegisterGeosWorks();
void RegisterKurboWorks();
void RegisterLib2geomWorks();
void RegisterPolyclippingUnions();
void RegisterQtWorks();

/// The works of a library on a curve in its own form. A work without a function is not measured.
template <class Native> struct CurveWorks {
    std::function<Native(CBezier const&)> convert;
    /// The number of points at that tolerance.
    std::function<double(Native const&, double)> flatten;
    /// The same points in our form, for their accuracy.
    std::function<truth::Chain(Native const&, double)> points;
    std::function<double(Native const&)> length;
    /// The parameter nearest to a point.
    std::function<double(Native const&, TPoint<double> const&)> nearest;
    /// The parameter at a fraction of the length.
    std::function<double(Native const&, double)> parameter;
    /// True when a point is within the tolerance.
    std::function<bool(Native const&, TPoint<double> const&, double)> hit;
    /// The number of places where two curves meet.
    std::function<double(Native const&, Native const&)> intersect;
    /// The number of places where a line and a curve meet.
    std::function<double(TLine<double> const&, Native const&)> intersectLine;
};

/// The sets of curves by the names that they have in the table.
inline std::vector<std::pair<std::string, inputs::Set>> CurveSets() {
    return {{"drawing", inputs::Set::kDrawing},
            {"glyphs_truetype", inputs::Set::kTrueType},
            {"glyphs_cff", inputs::Set::kCff},
            {"icons", inputs::Set::kIcons},
            {"large", inputs::Set::kRandom}};
}

/// The sets of paths by the names that they have in the table.
inline std::vector<std::pair<std::string, inputs::Set>> PathSets() {
    return {{"drawing", inputs::Set::kDrawing},   {"glyphs_truetype", inputs::Set::kTrueType},
            {"glyphs_cff", inputs::Set::kCff},    {"icons", inputs::Set::kIcons},
            {"poster_cff", inputs::Set::kPoster}, {"outline_1000", inputs::Set::kLong}};
}

/// Polygons by the names that they have in the table; without map data, the countries are empty.
inline std::vector<std::pair<std::string, std::function<truth::Chain()>>> Rings() {
    return {{"10", [] { return inputs::Star(10); }},
            {"1000", [] { return inputs::Star(1000); }},
            {"100000", [] { return inputs::Star(100000); }},
            {"country_1000", [] { return inputs::Country(1000); }},
            {"country_10000", [] { return inputs::Country(10000); }}};
}

/// The natives of all items of a list.
template <class Native, class Item>
std::shared_ptr<std::vector<Native>> ConvertAll(std::vector<Item> const& items,
                                                std::function<Native(Item const&)> const& convert) {
    auto const natives = std::make_shared<std::vector<Native>>();
    natives->reserve(items.size());
    for (Item const& item : items) {
        natives->push_back(convert(item));
    }
    return natives;
}

/// A job that calls call(i) for i from 0 to count - 1.
template <class Call> compare::Job JobOf(std::size_t count, Call call) {
    compare::Job job;
    job.items = count;
    job.trammel = [count, call] {
        double sum = 0.0;
        for (std::size_t i = 0; i < count; ++i) {
            sum += call(i);
        }
        return sum;
    };
    return job;
}

template <class Native>
void RegisterCurves(std::string const& who, CurveWorks<Native> const& works) {
    for (auto const& [input, which] : CurveSets()) {
        inputs::Set const set = which;
        if (works.flatten) {
            for (double const tolerance : {0.001, 0.1}) {
                std::string const work = tolerance == 0.1 ? "flatten_0.1" : "flatten_0.001";
                compare::RegisterAlone(work, input, who, [=] {
                    auto const& curves = inputs::Curves(set);
                    auto const natives = ConvertAll<Native>(curves, works.convert);
                    auto job = JobOf(natives->size(), [=](std::size_t i) {
                        return works.flatten((*natives)[i], tolerance);
                    });
                    job.counters["points"] =
                        job.trammel() / static_cast<double>(std::max<std::size_t>(1, job.items));
                    job.Add(truth::OfFlattening(curves, [&](std::size_t i) {
                        return works.points((*natives)[i], tolerance);
                    }));
                    return job;
                });
            }
        }
        if (works.length) {
            compare::RegisterAlone("curve_length", input, who, [=] {
                auto const& curves = inputs::Curves(set);
                auto const natives = ConvertAll<Native>(curves, works.convert);
                auto const call = [=](std::size_t i) { return works.length((*natives)[i]); };
                auto job = JobOf(natives->size(), call);
                job.Add(truth::OfLength(curves, call));
                return job;
            });
        }
        if (works.nearest) {
            compare::RegisterAlone("curve_nearest", input, who, [=] {
                auto const& curves = inputs::Curves(set);
                auto const natives = ConvertAll<Native>(curves, works.convert);
                auto const points = inputs::PointsInBoxes(curves);
                auto const call = [=](std::size_t i) {
                    return works.nearest((*natives)[i], points[i]);
                };
                auto job = JobOf(natives->size(), call);
                job.Add(truth::OfNearest(curves, points, call));
                return job;
            });
        }
        if (works.parameter) {
            compare::RegisterAlone("curve_fraction_to_parameter", input, who, [=] {
                auto const& curves = inputs::Curves(set);
                auto const natives = ConvertAll<Native>(curves, works.convert);
                auto const call = [=](std::size_t i) {
                    return works.parameter((*natives)[i], 0.3);
                };
                auto job = JobOf(natives->size(), call);
                job.Add(truth::OfFraction(curves, 0.3, call));
                return job;
            });
        }
        if (works.hit) {
            compare::RegisterAlone("curve_hit", input, who, [=] {
                auto const& curves = inputs::Curves(set);
                auto const natives = ConvertAll<Native>(curves, works.convert);
                auto const points = inputs::PointsInBoxes(curves);
                auto const call = [=](std::size_t i) {
                    return works.hit((*natives)[i], points[i], 0.5);
                };
                auto job =
                    JobOf(natives->size(), [=](std::size_t i) { return call(i) ? 1.0 : 0.0; });
                job.Add(truth::OfHit(curves, points, 0.5, call));
                return job;
            });
        }
        if (works.intersectLine && (input == "drawing" || input == "glyphs_cff")) {
            compare::RegisterAlone("line_intersections", input, who, [=] {
                auto const& curves = inputs::Curves(set);
                auto const natives = ConvertAll<Native>(curves, works.convert);
                auto const starts = inputs::PointsInBoxes(curves);
                auto const call = [=, &curves](std::size_t i) {
                    // Through the middle of the chord.
                    TPoint<double> const end = curves[i].P0 + curves[i].P3 - starts[i];
                    return works.intersectLine(TLine<double>(starts[i], end), (*natives)[i]);
                };
                auto job = JobOf(natives->size(), call);
                job.counters["places"] = job.trammel();
                return job;
            });
        }
        if (works.intersect && (input == "drawing" || input == "glyphs_cff")) {
            compare::RegisterAlone("curve_intersections", input, who, [=] {
                auto const natives = ConvertAll<Native>(inputs::Curves(set), works.convert);
                return JobOf(natives->empty() ? 0 : natives->size() - 1, [=](std::size_t i) {
                    return works.intersect((*natives)[i], (*natives)[i + 1]);
                });
            });
        }
    }
}

/// The works of a library on a path in its own form.
template <class Native> struct PathWorks {
    std::function<Native(CPath const&)> convert;
    std::function<double(Native const&)> length;
    /// The point at a fraction of the length.
    std::function<TPoint<double>(Native const&, double)> point;
    /// What tells the place nearest to a point, in the library's own form.
    std::function<double(Native const&, TPoint<double> const&)> nearest;
    /// True when a point is inside by the even-odd rule.
    std::function<bool(Native const&, TPoint<double> const&)> contains;
    /// The signed area, positive or negative.
    std::function<double(Native const&)> area;
    /// The sum of left, top, right and bottom of the curves themselves.
    std::function<double(Native const&)> bounds;
    /// The number of places where two paths meet.
    std::function<double(Native const&, Native const&)> intersect;
};

/// A point in the middle part of the bounds of each path.
inline std::vector<TPoint<double>> PointsWithin(std::vector<CPath> const& paths) {
    auto points = inputs::Points(paths.size(), 1.0);
    for (std::size_t i = 0; i < paths.size(); ++i) {
        TRect<double> const box = paths[i].Bounds();
        points[i].Set(box.left + points[i].h * (box.right - box.left),
                      box.top + points[i].v * (box.bottom - box.top));
    }
    return points;
}

/// The paths with every subpath closed, as some libraries ask for.
std::vector<CPath> Closed(std::vector<CPath> const& paths);
/// Which of the points, one for each path, the library finds inside by the even-odd rule.
std::vector<bool> WhichWithin(std::vector<CPath> const& paths,
                              std::vector<TPoint<double>> const& points);
/// The sum of what PathWorks::area and bounds are to return.
double SumOfAreas(std::vector<CPath> const& paths);
double SumOfBounds(std::vector<CPath> const& paths);

/// A job of containment, whose counter `wrong` tells the share of answers that the library does not
/// give.
template <class Contains>
compare::Job ContainmentJob(std::vector<CPath> const& paths,
                            std::vector<TPoint<double>> const& points, Contains contains) {
    auto job = JobOf(points.size(), [=](std::size_t i) { return contains(i) ? 1.0 : 0.0; });
    std::vector<bool> const right = WhichWithin(paths, points);
    double wrong = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        wrong += contains(i) != right[i] ? 1.0 : 0.0;
    }
    job.counters["wrong"] = wrong / static_cast<double>(std::max<std::size_t>(points.size(), 1));
    return job;
}

/// The questions about the region of an outline.
template <class Native>
void RegisterRegions(std::string const& who, PathWorks<Native> const& works) {
    for (auto const& [input, which] : PathSets()) {
        inputs::Set const set = which;
        // A job of `call` for each path, whose sum is to be what `sum` tells.
        auto const add = [&, input = input](std::string const& work, double slack, auto call,
                                            auto sum) {
            compare::RegisterAlone(work, input, who, [=] {
                auto const paths = Closed(inputs::Outlines(set));
                auto const natives = ConvertAll<Native>(paths, works.convert);
                auto job =
                    JobOf(natives->size(), [=](std::size_t i) { return call((*natives)[i]); });
                job.slack = slack;
                job.expected = sum(paths);
                return job;
            });
        };
        if (works.contains) {
            compare::RegisterAlone("path_contains", input, who, [=] {
                auto const paths = Closed(inputs::Outlines(set));
                auto const natives = ConvertAll<Native>(paths, works.convert);
                auto const points = PointsWithin(paths);
                return ContainmentJob(paths, points, [=](std::size_t i) {
                    return works.contains((*natives)[i], points[i]);
                });
            });
        }
        if (works.area) {
            add("path_area", 1e-6, works.area, SumOfAreas);
        }
        if (works.bounds) {
            add("path_bounds", 0.01, works.bounds, SumOfBounds);
        }
    }
}

/// Containment in the outlines of inputs::Shapes(), by a library that prepares nothing.
template <class Native>
void RegisterShapes(std::string const& who, PathWorks<Native> const& works) {
    for (inputs::Shape const& shape : inputs::Shapes()) {
        for (std::size_t const count : {10U, 1000U}) {
            std::string const input = std::string(shape.name) + "_" + std::to_string(count);
            compare::RegisterAlone("outline_contains", input, who, [=] {
                CPath const path = inputs::CurvesThrough(shape.vertices(count));
                auto const native = works.convert(path);
                auto const points = inputs::Points(99, 1000.0);
                return ContainmentJob(
                    std::vector<CPath>(points.size(), path), points,
                    [=](std::size_t i) { return works.contains(native, points[i]); });
            });
        }
    }
}

template <class Native> void RegisterPaths(std::string const& who, PathWorks<Native> const& works) {
    for (std::size_t const count : {100U, 1000U}) {
        if (works.intersect) {
            compare::RegisterAlone("outline_intersections", std::to_string(count), who, [=] {
                auto const a = works.convert(inputs::Ragged(inputs::Segments::kMixed, count, 1));
                auto const b = works.convert(inputs::Ragged(inputs::Segments::kMixed, count, 2));
                auto job = JobOf(1, [=](std::size_t) { return works.intersect(a, b); });
                job.items = count;
                job.counters["places"] = job.trammel();
                return job;
            });
        }
    }
    for (auto const& [input, which] : PathSets()) {
        inputs::Set const set = which;
        if (works.length) {
            compare::RegisterAlone("path_length", input, who, [=] {
                auto const& paths = inputs::Outlines(set);
                auto const natives = ConvertAll<Native>(paths, works.convert);
                auto job = JobOf(natives->size(),
                                 [=](std::size_t i) { return works.length((*natives)[i]); });
                job.slack = 0.01;
                job.expected = 0.0;
                for (CPath const& path : paths) {
                    job.expected += path.Length();
                }
                return job;
            });
        }
        if (works.nearest) {
            compare::RegisterAlone("path_nearest", input, who, [=] {
                auto const& paths = inputs::Outlines(set);
                auto const natives = ConvertAll<Native>(paths, works.convert);
                auto const points = inputs::Points(paths.size(), inputs::Side(set));
                return JobOf(natives->size(), [=](std::size_t i) {
                    return works.nearest((*natives)[i], points[i]);
                });
            });
        }
        if (works.point) {
            compare::RegisterAlone("path_point", input, who, [=] {
                auto const& paths = inputs::Outlines(set);
                auto const natives = ConvertAll<Native>(paths, works.convert);
                auto job = JobOf(natives->size(), [=](std::size_t i) {
                    TPoint<double> const p = works.point((*natives)[i], 0.3);
                    return p.h + p.v;
                });
                job.slack = 0.01;
                job.expected = 0.0;
                for (CPath const& path : paths) {
                    TPoint<double> const p = path.TPt(0.3);
                    job.expected += p.h + p.v;
                }
                return job;
            });
        }
    }
}

/// The works of a library on a polygon in its own form. The polygon is shared: the first call may
/// prepare it, and it may be transformed.
template <class Native> struct PolygonWorks {
    std::function<std::shared_ptr<Native>(truth::Chain const&)> convert;
    std::function<bool(Native const&, TPoint<double> const&)> contains;
    /// The sum of left, top, right and bottom.
    std::function<double(Native&)> bounds;
    /// Turns the polygon by one radian about (500, 500).
    std::function<void(Native&)> transform;
    /// The length of a segment's parts inside of the polygon.
    std::function<double(Native const&, TLine<double> const&)> clip;
    /// The greatest number of vertices that the library is asked about. It would take seconds a
    /// point for more.
    std::size_t most = std::numeric_limits<std::size_t>::max();
};

template <class Native>
void RegisterPolygons(std::string const& who, PolygonWorks<Native> const& works) {
    for (auto const& [name, makeRing] : Rings()) {
        std::string const input = name;
        auto const make = makeRing;
        if (works.contains) {
            compare::RegisterAlone("contains", input, who, [=] {
                auto const ring = make();
                if (ring.size() > works.most) {
                    return compare::Job();
                }
                auto const native = works.convert(ring);
                auto const points = inputs::PointsOver(ring, compare::Calls(ring.size(), 1000));
                auto job = JobOf(points.size(), [=](std::size_t i) {
                    return works.contains(*native, points[i]) ? 1.0 : 0.0;
                });
                job.expected = compare::ContainedIn(ring, points);
                return job;
            });
        }
        bool const isStar = input.find('_') == std::string::npos;
        if (works.bounds && isStar) {
            compare::RegisterAlone("bounds", input, who, [=] {
                auto const ring = make();
                auto const native = works.convert(ring);
                auto job = JobOf(compare::Calls(ring.size(), 1000),
                                 [=](std::size_t) { return works.bounds(*native); });
                job.items *= ring.size();
                return job;
            });
        }
        if (works.transform && isStar) {
            compare::RegisterAlone("transform", input, who, [=] {
                auto const ring = make();
                auto const native = works.convert(ring);
                auto job = JobOf(compare::Calls(ring.size(), 1000), [=](std::size_t) {
                    works.transform(*native);
                    return 0.0;
                });
                job.items *= ring.size();
                return job;
            });
        }
        if (works.clip && input != "100000") {
            compare::RegisterAlone("clip_segment", input, who, [=] {
                auto const ring = make();
                auto const native = works.convert(ring);
                auto lines = inputs::LinesOver(ring, 1000);
                lines.resize(std::min(lines.size(), compare::Calls(ring.size(), 100)));
                auto job = JobOf(lines.size(),
                                 [=](std::size_t i) { return works.clip(*native, lines[i]); });
                job.expected = compare::ClippedBy(ring, lines);
                job.slack = 1e-6;
                return job;
            });
        }
    }
}

} // namespace peers

#endif
