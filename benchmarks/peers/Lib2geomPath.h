// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_LIB2GEOMPATH_H
#define TRAMMEL_LIB2GEOMPATH_H

#include <trammel/CPathActions.h>

#include <2geom/bezier-curve.h>
#include <2geom/path.h>

#include <memory>
#include <vector>

namespace peers {

inline Geom::Point To2geom(TPoint<double> const& p) { return {p.h, p.v}; }

/// Makes 2geom's paths of ours.
class Lib2geomPathBuilder : public CPathActions {
public:
    std::shared_ptr<std::vector<Geom::Path>> mPaths = std::make_shared<std::vector<Geom::Path>>();
    void MoveTo(TPoint<double> const& p) override { mPaths->emplace_back(To2geom(p)); }
    void LineTo(TPoint<double> const& p) override {
        mPaths->back().appendNew<Geom::LineSegment>(To2geom(p));
    }
    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        mPaths->back().appendNew<Geom::CubicBezier>(To2geom(c1), To2geom(c2), To2geom(e));
    }
    void ClosePath() override { mPaths->back().close(); }
};

} // namespace peers

#endif
