// SPDX-License-Identifier: MIT

#include "OutlineWorks.h"
#include "QtPath.h"

#include <QPainterPathStroker>

namespace peers {

void RegisterQtOutlines() {
    OutlineWorks<QPainterPath> works;
    works.most = 1000;
    works.convert = [](CPath const& path) {
        QtPathBuilder builder;
        path.ForAll(builder);
        builder.mPath.setFillRule(Qt::WindingFill);
        return builder.mPath;
    };
    works.unite = [](QPainterPath const& a, QPainterPath const& b) {
        return static_cast<double>(a.united(b).elementCount());
    };
    works.uniteAll = [](std::vector<QPainterPath> const& paths) {
        QPainterPath all;
        all.setFillRule(Qt::WindingFill);
        for (QPainterPath const& path : paths) {
            all.addPath(path);
        }
        return static_cast<double>(all.simplified().elementCount());
    };
    works.removeOverlap = [](QPainterPath const& path) {
        return static_cast<double>(path.simplified().elementCount());
    };
    works.stroke = [](QPainterPath const& path, trammel::StrokeStyle const& style,
                      double tolerance) {
        QPainterPathStroker stroker;
        stroker.setWidth(style.width);
        stroker.setJoinStyle(style.join == trammel::StrokeJoin::kRound ? Qt::RoundJoin
                                                                       : Qt::SvgMiterJoin);
        stroker.setMiterLimit(0.5 * style.miterLimit); // measured from the centre
        stroker.setCapStyle(Qt::FlatCap);
        stroker.setCurveThreshold(tolerance);
        QVector<qreal> dashes;
        for (double const dash : style.dashes) {
            dashes.append(dash / style.width);
        }
        if (!dashes.isEmpty()) {
            stroker.setDashPattern(dashes);
        }
        return static_cast<double>(stroker.createStroke(path).elementCount());
    };
    RegisterOutlines("qt", works);
}

} // namespace peers
