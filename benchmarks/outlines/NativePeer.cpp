// SPDX-License-Identifier: MIT

// Operations on outlines by the library and by other native ones. run.py starts this and describes
// the lines that it reads and writes.
//
//   trammel_outline_peer trammel | trammel-fine | qt | 2geom | geos | polyclipping

#include <trammel/AccurateCurve.h>
#include <trammel/CPath.h>
#include <trammel/CPathActions.h>
#include <trammel/FitCurves.h>
#include <trammel/OutlineOperations.h>
#include <trammel/Simplify.h>
#include <trammel/SimplifyRings.h>
#include <trammel/Stroke.h>
#include <trammel/SvgPath.h>

#include <nlohmann/json.hpp>

#ifdef TRAMMEL_BENCH_QT
#include <QPainterPath>
#include <QPainterPathStroker>
#endif
#ifdef TRAMMEL_BENCH_LIB2GEOM
#include <2geom/bezier-utils.h>
#include <2geom/intersection-graph.h>
#include <2geom/pathvector.h>
#include <2geom/svg-path-parser.h>
#endif
#ifdef TRAMMEL_BENCH_GEOS
#include <geos_c.h>
#endif
#ifdef TRAMMEL_BENCH_POLYCLIPPING
#include <polyclipping/clipper.hpp>
#endif

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <exception>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

typedef nlohmann::json Json;
typedef TPoint<double> Pt;

/// The least processor time of up to five runs, in microseconds.
double Timed(std::function<void()> const& work) {
    double best = 1e300;
    double all = 0.0;
    for (int i = 0; i < 5 && all < 200000.0; ++i) {
        std::clock_t const begin = std::clock();
        work();
        double const us = static_cast<double>(std::clock() - begin) * 1e6 / CLOCKS_PER_SEC;
        best = std::min(best, us);
        all += us;
    }
    return best;
}

CPath Read(Json const& operand) {
    return trammel::ReadSvgPath(operand.at("d").get<std::string>()).path;
}

/// Writes segments as the lists of the reply.
class Writer : public CPathActions {
public:
    Json d = Json::array();
    void MoveTo(Pt const& p) override { d.push_back({"M", p.h, p.v}); }
    void LineTo(Pt const& p) override { d.push_back({"L", p.h, p.v}); }
    void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override {
        d.push_back({"C", c1.h, c1.v, c2.h, c2.v, e.h, e.v});
    }
    void ClosePath() override { d.push_back(Json::array({"Z"})); }
};

/// The rings of a path of lines, or of curves as lines within a tolerance.
std::vector<std::vector<Pt>> RingsOf(Json const& operand, double tolerance) {
    std::vector<std::vector<Pt>> rings;
    struct Collector : CPathActions {
        std::vector<std::vector<Pt>>& rings;
        double tolerance;
        Collector(std::vector<std::vector<Pt>>& all, double within)
            : rings(all), tolerance(within) {}
        void MoveTo(Pt const& p) override { rings.push_back({p}); }
        void LineTo(Pt const& p) override { rings.back().push_back(p); }
        void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override {
            TPolygon<double> chain;
            trammel::FlattenWithin(CBezier(GetCurrentPt(), c1, c2, e), tolerance, chain);
            for (long i = 1; i <= chain.LastIndex(); ++i) {
                rings.back().push_back(chain.GetPt(i));
            }
        }
        void ClosePath() override {}
    } collector(rings, tolerance);
    Read(operand).ForAll(collector);
    return rings;
}

void AppendRing(Json& d, std::vector<Pt> const& ring) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
        d.push_back({i == 0 ? "M" : "L", ring[i].h, ring[i].v});
    }
    d.push_back(Json::array({"Z"}));
}

Json SimplifiedMap(Json const& c, double tolerance) {
    std::vector<trammel::Ring> const rings = RingsOf(c.at("a"), 0.0);
    std::vector<trammel::Ring> out;
    double const us = Timed(
        [&] { trammel::SimplifyRings(rings, tolerance, trammel::NewCrossings::kAvoid, out); });
    Json d = Json::array();
    for (trammel::Ring const& ring : out) {
        AppendRing(d, ring);
    }
    return {{"us", us}, {"f", "nonzero"}, {"d", d}};
}

Json ByTrammel(Json const& c, double finer) {
    using trammel::FillRule;
    auto const rule = [](Json const& operand) {
        return operand.at("f") == "evenodd" ? FillRule::kEvenOdd : FillRule::kNonZero;
    };
    std::string const op = c.at("op");
    CPath const a = Read(c.at("a"));
    CPath out;
    double us = 0.0;
    if (op == "stroke") {
        trammel::StrokeStyle style;
        style.width = c.at("width");
        std::string const join = c.at("join");
        std::string const cap = c.at("cap");
        style.join = join == "round"   ? trammel::StrokeJoin::kRound
                     : join == "bevel" ? trammel::StrokeJoin::kBevel
                                       : trammel::StrokeJoin::kMiter;
        style.startCap = style.endCap = cap == "round"    ? trammel::StrokeCap::kRound
                                        : cap == "square" ? trammel::StrokeCap::kSquare
                                                          : trammel::StrokeCap::kButt;
        double const tolerance = c.at("tolerance").get<double>() * finer;
        us = Timed([&] { trammel::Stroke(a, style, tolerance, out); });
    } else if (op == "map") {
        return SimplifiedMap(c, c.at("tolerance").get<double>() * finer);
    } else if (op == "offset") {
        double const tolerance = c.at("tolerance").get<double>() * finer;
        us = Timed([&] {
            trammel::Offset(a, rule(c.at("a")), c.at("distance"), trammel::StrokeJoin::kRound, 4.0,
                            tolerance, out);
        });
    } else if (op == "fit") {
        us = Timed([&] {
            out = CPath();
            trammel::FitCurves(a.mPts, c.at("tolerance").get<double>() * finer, 0.6, out);
        });
    } else if (op == "simplify") {
        us = Timed([&] { trammel::Simplify(a, c.at("tolerance").get<double>() * finer, out); });
    } else if (c.at("b").is_null()) {
        us = Timed([&] { trammel::RemoveOverlap(a, rule(c.at("a")), 0.0, out); });
    } else {
        CPath const b = Read(c.at("b"));
        TPolyOp const which = op == "union"          ? kPolyUnion
                              : op == "intersection" ? kPolyIntersection
                              : op == "xor"          ? kPolyXor
                                                     : kPolyDifference;
        us = Timed(
            [&] { trammel::Boolean(which, a, rule(c.at("a")), b, rule(c.at("b")), 0.0, out); });
    }
    Writer writer;
    out.ForAll(writer);
    return {{"us", us}, {"f", "nonzero"}, {"d", writer.d}};
}

#ifdef TRAMMEL_BENCH_QT
QPainterPath ToQt(Json const& operand) {
    struct Builder : CPathActions {
        QPainterPath path;
        void MoveTo(Pt const& p) override { path.moveTo(p.h, p.v); }
        void LineTo(Pt const& p) override { path.lineTo(p.h, p.v); }
        void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override {
            path.cubicTo(c1.h, c1.v, c2.h, c2.v, e.h, e.v);
        }
        void ClosePath() override { path.closeSubpath(); }
    } builder;
    Read(operand).ForAll(builder);
    builder.path.setFillRule(operand.value("f", "") == "evenodd" ? Qt::OddEvenFill
                                                                 : Qt::WindingFill);
    return builder.path;
}

Json ByQt(Json const& c) {
    std::string const op = c.at("op");
    QPainterPath const a = ToQt(c.at("a"));
    QPainterPath out;
    double us = 0.0;
    if (op == "stroke") {
        std::string const join = c.at("join");
        std::string const cap = c.at("cap");
        QPainterPathStroker stroker;
        stroker.setWidth(c.at("width"));
        stroker.setMiterLimit(2.0); // from the centre
        stroker.setJoinStyle(join == "round"   ? Qt::RoundJoin
                             : join == "bevel" ? Qt::BevelJoin
                                               : Qt::SvgMiterJoin);
        stroker.setCapStyle(cap == "round"    ? Qt::RoundCap
                            : cap == "square" ? Qt::SquareCap
                                              : Qt::FlatCap);
        stroker.setCurveThreshold(c.at("tolerance"));
        us = Timed([&] { out = stroker.createStroke(a); });
    } else if (op == "offset") {
        double const distance = c.at("distance");
        QPainterPathStroker stroker;
        stroker.setWidth(2.0 * std::abs(distance));
        stroker.setJoinStyle(Qt::RoundJoin);
        stroker.setCurveThreshold(c.at("tolerance"));
        us = Timed([&] {
            QPainterPath const border = stroker.createStroke(a);
            out = distance > 0.0 ? a.united(border) : a.subtracted(border);
        });
    } else if (op == "fit" || op == "simplify" || op == "map") {
        return {{"skip", "has no such operation"}};
    } else if (c.at("b").is_null()) {
        us = Timed([&] { out = a.simplified(); });
    } else {
        QPainterPath const b = ToQt(c.at("b"));
        us = Timed([&] {
            out = op == "union"          ? a.united(b)
                  : op == "intersection" ? a.intersected(b)
                  : op == "difference"   ? a.subtracted(b)
                                         : a.united(b).subtracted(a.intersected(b));
        });
    }
    Json d = Json::array();
    for (int i = 0; i < out.elementCount(); ++i) {
        QPainterPath::Element const e = out.elementAt(i);
        if (e.isCurveTo()) {
            QPointF const c2 = out.elementAt(i + 1);
            QPointF const end = out.elementAt(i + 2);
            d.push_back({"C", e.x, e.y, c2.x(), c2.y(), end.x(), end.y()});
            i += 2;
        } else {
            if (e.isMoveTo() && i > 0) {
                d.push_back(Json::array({"Z"}));
            }
            d.push_back({e.isMoveTo() ? "M" : "L", e.x, e.y});
        }
    }
    if (!d.empty()) {
        d.push_back(Json::array({"Z"}));
    }
    bool const evenOdd = out.fillRule() == Qt::OddEvenFill;
    return {{"us", us}, {"f", evenOdd ? "evenodd" : "nonzero"}, {"d", d}};
}
#endif

#ifdef TRAMMEL_BENCH_LIB2GEOM
Json FitBy2geom(Json const& c) {
    std::vector<Geom::Point> points;
    for (Pt const& p : Read(c.at("a")).mPts) {
        points.emplace_back(p.h, p.v);
    }
    double const tolerance = c.at("tolerance");
    std::vector<Geom::Point> curves(4 * points.size());
    int count = 0;
    double const us = Timed([&] {
        count =
            Geom::bezier_fit_cubic_r(curves.data(), points.data(), static_cast<int>(points.size()),
                                     tolerance * tolerance, static_cast<unsigned>(points.size()));
    });
    if (count < 1) {
        throw std::runtime_error("no fit");
    }
    Json d = {{"M", curves[0].x(), curves[0].y()}};
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        Geom::Point const* const p = &curves[4 * i];
        d.push_back({"C", p[1].x(), p[1].y(), p[2].x(), p[2].y(), p[3].x(), p[3].y()});
    }
    return {{"us", us}, {"f", "nonzero"}, {"d", d}};
}

Json By2geom(Json const& c) {
    std::string const op = c.at("op");
    if (op == "fit") {
        return FitBy2geom(c);
    }
    if (op == "stroke" || op == "offset" || op == "simplify" || op == "map" ||
        c.at("b").is_null()) {
        return {{"skip", "has no such operation"}};
    }
    auto const read = [](Json const& operand) {
        Geom::PathVector paths = Geom::parse_svg_path(operand.at("d").get<std::string>().c_str());
        for (Geom::Path& path : paths) {
            path.close();
        }
        return paths;
    };
    Geom::PathVector const a = read(c.at("a"));
    Geom::PathVector const b = read(c.at("b"));
    Geom::PathVector out;
    double const us = Timed([&] {
        Geom::PathIntersectionGraph graph(a, b);
        if (!graph.valid()) {
            throw std::runtime_error("no valid graph");
        }
        out = op == "union"          ? graph.getUnion()
              : op == "intersection" ? graph.getIntersection()
              : op == "difference"   ? graph.getAminusB()
                                     : graph.getXOR();
    });
    Json d = Json::array();
    for (Geom::Path const& path : out) {
        d.push_back({"M", path.initialPoint().x(), path.initialPoint().y()});
        for (Geom::Curve const& curve : path) {
            auto const* const bezier = dynamic_cast<Geom::BezierCurve const*>(&curve);
            if (bezier == nullptr || bezier->order() > 3) {
                throw std::runtime_error("a curve of another kind");
            }
            Json segment = {bezier->order() == 1 ? "L" : bezier->order() == 2 ? "Q" : "C"};
            for (unsigned i = 1; i <= bezier->order(); ++i) {
                segment.push_back((*bezier)[i].x());
                segment.push_back((*bezier)[i].y());
            }
            d.push_back(segment);
        }
        d.push_back(Json::array({"Z"}));
    }
    return {{"us", us}, {"f", "evenodd"}, {"d", d}};
}
#endif

#ifdef TRAMMEL_BENCH_GEOS
typedef GEOSContextHandle_t Geos;

GEOSGeometry* RingTo(Geos geos, std::vector<Pt> const& ring) {
    auto const size = static_cast<unsigned>(ring.size());
    GEOSCoordSequence* const points = GEOSCoordSeq_create_r(geos, size + 1, 2);
    for (unsigned i = 0; i <= size; ++i) {
        Pt const& p = ring[i % size];
        GEOSCoordSeq_setXY_r(geos, points, i, p.h, p.v);
    }
    return GEOSGeom_createLinearRing_r(geos, points);
}

/// Appends the rings of a geometry and of its parts.
void AppendTo(Json& d, Geos geos, GEOSGeometry const* shape) {
    auto const append = [&](GEOSGeometry const* ring) {
        GEOSCoordSequence const* const points = GEOSGeom_getCoordSeq_r(geos, ring);
        unsigned size = 0;
        GEOSCoordSeq_getSize_r(geos, points, &size);
        std::vector<Pt> vertices;
        for (unsigned i = 0; i + 1 < size; ++i) {
            Pt p;
            GEOSCoordSeq_getXY_r(geos, points, i, &p.h, &p.v);
            vertices.push_back(p);
        }
        AppendRing(d, vertices);
    };
    for (int i = 0; i < GEOSGetNumGeometries_r(geos, shape); ++i) {
        GEOSGeometry const* const part = GEOSGetGeometryN_r(geos, shape, i);
        if (GEOSisEmpty_r(geos, part) != 0) {
            continue;
        }
        append(GEOSGetExteriorRing_r(geos, part));
        for (int k = 0; k < GEOSGetNumInteriorRings_r(geos, part); ++k) {
            append(GEOSGetInteriorRingN_r(geos, part, k));
        }
    }
}

/// Grows regions as polygons of lines, and simplifies the rings of a map one by one.
Json ByGeos(Json const& c) {
    std::string const op = c.at("op");
    if (op != "offset" && op != "map") {
        return {{"skip", "has no curves"}};
    }
    static Geos const geos = GEOS_init_r();
    double const tolerance = c.at("tolerance");
    std::vector<GEOSGeometry*> made;
    for (std::vector<Pt> const& ring : RingsOf(c.at("a"), tolerance / 4.0)) {
        made.push_back(RingTo(geos, ring));
    }
    std::vector<GEOSGeometry*> out;
    double us = 0.0;
    if (op == "map") {
        for (GEOSGeometry*& ring : made) {
            ring = GEOSGeom_createPolygon_r(geos, ring, nullptr, 0);
        }
        us = Timed([&] {
            for (GEOSGeometry* const shape : out) {
                GEOSGeom_destroy_r(geos, shape);
            }
            out.clear();
            for (GEOSGeometry* const polygon : made) {
                out.push_back(GEOSTopologyPreserveSimplify_r(geos, polygon, tolerance));
            }
        });
    } else {
        double const distance = c.at("distance");
        GEOSGeometry* const lines = GEOSGeom_createCollection_r(
            geos, GEOS_MULTILINESTRING, made.data(), static_cast<unsigned>(made.size()));
        made = {GEOSBuildArea_r(geos, lines)};
        GEOSGeom_destroy_r(geos, lines);
        // A chord of a circle of radius r is off by r (1 - cos(a / 2)) for the angle a.
        double const angle = 2.0 * std::acos(1.0 - tolerance / 2.0 / std::abs(distance));
        int const perQuarter = static_cast<int>(std::ceil(1.5707963267948966 / angle));
        us = Timed([&] {
            for (GEOSGeometry* const shape : out) {
                GEOSGeom_destroy_r(geos, shape);
            }
            out = {GEOSBuffer_r(geos, made[0], distance, perQuarter)};
        });
    }
    Json d = Json::array();
    for (std::vector<GEOSGeometry*> const* const list : {&made, &out}) {
        for (GEOSGeometry* const shape : *list) {
            if (shape == nullptr) {
                throw std::runtime_error("no result");
            }
            if (list == &out) {
                AppendTo(d, geos, shape);
            }
            GEOSGeom_destroy_r(geos, shape);
        }
    }
    return {{"us", us}, {"f", "evenodd"}, {"d", d}};
}
#endif

#ifdef TRAMMEL_BENCH_POLYCLIPPING
/// Grows regions as polygons of lines whose coordinates are whole multiples of 2^-20.
Json ByPolyclipping(Json const& c) {
    if (c.at("op") != "offset") {
        return {{"skip", "has no curves"}};
    }
    constexpr double kUnits = 1048576.0;
    double const tolerance = c.at("tolerance");
    ClipperLib::Paths rings;
    for (std::vector<Pt> const& ring : RingsOf(c.at("a"), tolerance / 4.0)) {
        rings.emplace_back();
        for (Pt const& p : ring) {
            rings.back().emplace_back(std::llround(p.h * kUnits), std::llround(p.v * kUnits));
        }
    }
    ClipperLib::Paths out;
    double const us = Timed([&] {
        ClipperLib::Paths clean;
        ClipperLib::SimplifyPolygons(rings, clean, ClipperLib::pftNonZero);
        ClipperLib::ClipperOffset offset(2.0, tolerance / 2.0 * kUnits);
        offset.AddPaths(clean, ClipperLib::jtRound, ClipperLib::etClosedPolygon);
        offset.Execute(out, c.at("distance").get<double>() * kUnits);
    });
    Json d = Json::array();
    for (ClipperLib::Path const& ring : out) {
        std::vector<Pt> vertices;
        for (ClipperLib::IntPoint const& p : ring) {
            vertices.emplace_back(static_cast<double>(p.X) / kUnits,
                                  static_cast<double>(p.Y) / kUnits);
        }
        AppendRing(d, vertices);
    }
    return {{"us", us}, {"f", "nonzero"}, {"d", d}};
}
#endif

} // namespace

int main(int argc, char** argv) {
    std::string const who = argc > 1 ? argv[1] : "";
    std::function<Json(Json const&)> answer;
    if (who == "trammel" || who == "trammel-fine") {
        double const finer = who == "trammel" ? 1.0 : 1e-3;
        answer = [finer](Json const& c) { return ByTrammel(c, finer); };
    }
#ifdef TRAMMEL_BENCH_QT
    if (who == "qt") {
        answer = ByQt;
    }
#endif
#ifdef TRAMMEL_BENCH_LIB2GEOM
    if (who == "2geom") {
        answer = By2geom;
    }
#endif
#ifdef TRAMMEL_BENCH_GEOS
    if (who == "geos") {
        answer = ByGeos;
    }
#endif
#ifdef TRAMMEL_BENCH_POLYCLIPPING
    if (who == "polyclipping") {
        answer = ByPolyclipping;
    }
#endif
    if (!answer) {
        std::fprintf(stderr, "%s: not in this build\n", who.c_str());
        return 2;
    }
    std::string line;
    while (std::getline(std::cin, line)) {
        Json reply;
        try {
            reply = answer(Json::parse(line));
        } catch (std::exception const& error) {
            reply = {{"error", error.what()}};
        } catch (...) { // 2geom throws enumerators
            reply = {{"error", "unknown"}};
        }
        std::cout << reply.dump() << std::endl;
    }
    return 0;
}
