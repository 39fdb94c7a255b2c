// SPDX-License-Identifier: MIT

// Operations on outlines by the library and by other native ones. run.py starts this and describes
// the lines that it reads and writes.
//
//   trammel_outline_peer trammel | trammel-fine | qt | 2geom

#include <trammel/CPath.h>
#include <trammel/CPathActions.h>
#include <trammel/OutlineOperations.h>
#include <trammel/Stroke.h>
#include <trammel/SvgPath.h>

#include <nlohmann/json.hpp>

#ifdef TRAMMEL_BENCH_QT
#include <QPainterPath>
#include <QPainterPathStroker>
#endif
#ifdef TRAMMEL_BENCH_LIB2GEOM
#include <2geom/intersection-graph.h>
#include <2geom/pathvector.h>
#include <2geom/svg-path-parser.h>
#endif

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <exception>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>

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
Json By2geom(Json const& c) {
    std::string const op = c.at("op");
    if (op == "stroke" || c.at("b").is_null()) {
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
