// SPDX-License-Identifier: MIT

#include "CBezier.h"

#include "CBezierFlatten_p.h"
#include "PointBuffer_p.h"
#include "UGeometry.h"

#include <cstdint>

namespace {

/// Points that are tested at a time.
constexpr int kTestRun = 64;

/// Calls kTest(point, rec) for the split points of `curve`, in order, until `rec` knows of a hit;
/// all are made and counted.
template <auto kTest, class Rec> void TestSplitPoints(CBezier const& curve, Rec& rec) {
    if (trammel_detail::IsStraight(curve)) {
        return;
    }
    auto test = [&rec](TPoint<double> const* points, int count) {
        for (int i = 0; i < count && !rec.hit; ++i) {
            kTest(points[i], rec);
        }
    };
    trammel_detail::PointBuffer<kTestRun, decltype(test)> run(test);
    std::int64_t const points = trammel_detail::StoreSplitPoints(curve, CBezier::mMaxError, run);
    run.Pass();
    if (trammel_detail::TakesTurnToCount()) {
        trammel_detail::CountGenerated(trammel_detail::SharedCounter(gCount).Value(), points);
    }
}

} // namespace

void CBezier::HitTestPt(TPoint<double> const& pt, HitInfoRec& rec) {
    if (!rec.hit) {
        rec.hit = ::HitTest(rec.lastPt, pt, rec.testPt, rec.tolerance);
        rec.lastPt = pt;
    }
}

void CBezier::ContainsPt(TPoint<double> const& pt, IntersectInfoRec& rec) {
    if (!rec.hit) {
        rec.hit = rec.rect.Contains(pt);
    }
}

bool CBezier::HitTest(TPoint<double> const& pt, double tolerance) const {
    TRect<double> reach = Extents();
    reach.Inset(-tolerance, -tolerance);
    if (!reach.Contains(pt)) {
        return false;
    }
    HitInfoRec rec;
    rec.tolerance = tolerance;
    rec.testPt = pt;
    rec.hit = false;
    rec.lastPt = P0;
    TestSplitPoints<HitTestPt>(*this, rec);
    HitTestPt(P3, rec);
    return rec.hit;
}

bool CBezier::Intersects(TRect<double> r) const {
    if (!NaiveSectTRect(Extents(), r)) {
        return false;
    }
    IntersectInfoRec rec;
    rec.hit = false;
    rec.rect = r;
    ContainsPt(P0, rec);
    TestSplitPoints<ContainsPt>(*this, rec);
    ContainsPt(P3, rec);
    return rec.hit;
}
