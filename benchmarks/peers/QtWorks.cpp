// SPDX-License-Identifier: MIT

#include "QtPath.h"
#include "Works.h"

#include <QPainterPathStroker>
#include <QPolygonF>
#include <QTransform>

#include <memory>

namespace peers {
namespace {

QPainterPath CurveOf(CBezier const& c) {
    QPainterPath path(ToQt(c.P0));
    path.cubicTo(ToQt(c.P1), ToQt(c.P2), ToQt(c.P3));
    return path;
}

/// Qt flattens to half a unit; for another tolerance the path is scaled.
QPolygonF Flattened(QPainterPath const& path, double tolerance) {
    double const scale = 0.5 / tolerance;
    return path.toSubpathPolygons(QTransform::fromScale(scale, scale)).constFirst();
}

} // namespace

void RegisterQtWorks() {
    CurveWorks<QPainterPath> curves;
    curves.convert = [](CBezier const& c) { return CurveOf(c); };
    curves.flatten = [](QPainterPath const& path, double tolerance) {
        return static_cast<double>(Flattened(path, tolerance).size());
    };
    curves.points = [](QPainterPath const& path, double tolerance) {
        truth::Chain chain;
        for (QPointF const& p : Flattened(path, tolerance)) {
            chain.emplace_back(p.x() * tolerance / 0.5, p.y() * tolerance / 0.5);
        }
        return chain;
    };
    curves.length = [](QPainterPath const& path) { return path.length(); };
    curves.parameter = [](QPainterPath const& path, double fraction) {
        return path.percentAtLength(fraction * path.length());
    };
    curves.hit = [](QPainterPath const& path, TPoint<double> const& p, double tolerance) {
        QPainterPathStroker stroker;
        stroker.setWidth(2.0 * tolerance);
        stroker.setCapStyle(Qt::RoundCap);
        stroker.setJoinStyle(Qt::RoundJoin);
        return stroker.createStroke(path).contains(ToQt(p));
    };
    RegisterCurves("qt", curves);

    PathWorks<QPainterPath> paths;
    paths.convert = [](CPath const& path) {
        QtPathBuilder builder;
        path.ForAll(builder);
        return builder.mPath;
    };
    paths.length = [](QPainterPath const& path) { return path.length(); };
    paths.point = [](QPainterPath const& path, double fraction) {
        QPointF const p = path.pointAtPercent(path.percentAtLength(fraction * path.length()));
        return TPoint<double>(p.x(), p.y());
    };
    paths.contains = [](QPainterPath const& path, TPoint<double> const& p) {
        return path.contains(ToQt(p));
    };
    RegisterPaths("qt", paths);
    RegisterRegions("qt", paths);
    RegisterShapes("qt", paths);

    typedef std::shared_ptr<QPainterPath> Changing;
    PathWorks<Changing> bounds;
    bounds.convert = [paths](CPath const& path) {
        return std::make_shared<QPainterPath>(paths.convert(path));
    };
    bounds.bounds = [](Changing const& path) {
        QPointF const first = path->elementAt(0);
        path->setElementPositionAt(0, first.x(), first.y()); // forgets the bounds that it keeps
        QRectF const r = path->boundingRect();
        return r.left() + r.top() + r.right() + r.bottom();
    };
    RegisterRegions("qt", bounds);

    PolygonWorks<QPolygonF> polygons;
    polygons.convert = [](truth::Chain const& ring) {
        auto polygon = std::make_shared<QPolygonF>();
        for (TPoint<double> const& p : ring) {
            polygon->append(ToQt(p));
        }
        return polygon;
    };
    polygons.contains = [](QPolygonF const& polygon, TPoint<double> const& p) {
        return polygon.containsPoint(ToQt(p), Qt::OddEvenFill);
    };
    polygons.bounds = [](QPolygonF const& polygon) {
        QRectF const r = polygon.boundingRect();
        return r.left() + r.top() + r.right() + r.bottom();
    };
    QTransform turn;
    turn.translate(500.0, 500.0);
    turn.rotateRadians(1.0);
    turn.translate(-500.0, -500.0);
    polygons.transform = [turn](QPolygonF& polygon) { polygon = turn.map(polygon); };
    RegisterPolygons("qt", polygons);
}

} // namespace peers
