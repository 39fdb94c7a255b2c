// SPDX-License-Identifier: MIT

#include "Tracer.h"

#include <trammel/CPathActions.h>
#include <trammel/TLine.h>

#include <algorithm>

namespace tool {

namespace {

typedef TPoint<double> Pt;

class SegmentCollector : public CPathActions {
public:
    std::vector<CBezier> segments;
    std::vector<bool> isCurve;

    void LineTo(Pt const& p) override { Add(CBezier(GetCurrentPt(), GetCurrentPt(), p, p), false); }
    void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override {
        Add(CBezier(GetCurrentPt(), c1, c2, e), true);
    }
    void ClosePath() override {
        Add(CBezier(GetCurrentPt(), GetCurrentPt(), GetStartPt(), GetStartPt()), false);
    }

private:
    void Add(CBezier const& segment, bool curve) {
        segments.push_back(segment);
        isCurve.push_back(curve);
    }
};

Pt Unit(Pt const& vector) { return vector / vector.Hypotenuse(); }

} // namespace

Tracer::Tracer(CPath const& path) {
    SegmentCollector all;
    path.ForAll(all);
    double running = 0.0;
    for (std::size_t i = 0; i < all.segments.size(); ++i) {
        CBezier const& segment = all.segments[i];
        double const length =
            all.isCurve[i] ? segment.Length() : TLine<double>(segment.P0, segment.P3).Length();
        running += length;
        if (length > 0.0) {
            mSegments.push_back(segment);
            mIsCurve.push_back(all.isCurve[i]);
            mEnds.push_back(running);
        }
    }
}

Station Tracer::At(double distance) const {
    double const target = std::min(std::max(distance, 0.0), Length());
    auto const end = std::lower_bound(mEnds.begin(), mEnds.end(), target);
    auto const i = std::min(static_cast<std::size_t>(end - mEnds.begin()), mEnds.size() - 1);
    double const before = i > 0 ? mEnds[i - 1] : 0.0;
    double const fraction = (target - before) / (mEnds[i] - before);
    CBezier const& segment = mSegments[i];
    if (!mIsCurve[i]) {
        TLine<double> const line(segment.P0, segment.P3);
        return Station{line.TPt(fraction), Unit(line.Delta())};
    }
    CBezier left;
    CBezier right;
    double const t = segment.PercentT(fraction);
    segment.Divide(left, right, t);
    // The control points next to the division give the tangent. They fail at an end that coincides
    // with its control point; the next points give it there.
    Pt direction = right.P1 - left.P2;
    if (direction.Null()) {
        direction = right.P2 - left.P1;
    }
    if (direction.Null()) {
        direction = segment.P3 - segment.P0;
    }
    return Station{segment.TPt(t), Unit(direction)};
}

} // namespace tool
