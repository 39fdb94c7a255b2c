// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_QTPATH_H
#define TRAMMEL_QTPATH_H

#include <trammel/CPathActions.h>

#include <QPainterPath>

namespace peers {

inline QPointF ToQt(TPoint<double> const& p) { return {p.h, p.v}; }

/// Makes Qt's path of ours.
class QtPathBuilder : public CPathActions {
public:
    QPainterPath mPath;
    void MoveTo(TPoint<double> const& p) override { mPath.moveTo(ToQt(p)); }
    void LineTo(TPoint<double> const& p) override { mPath.lineTo(ToQt(p)); }
    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        mPath.cubicTo(ToQt(c1), ToQt(c2), ToQt(e));
    }
    void ClosePath() override { mPath.closeSubpath(); }
};

} // namespace peers

#endif
