// SPDX-License-Identifier: MIT

#include "Moments.h"

#include "MomentSums_p.h"

#include <vector>

namespace trammel {

namespace {

using trammel_detail::AllMomentsOf;
using trammel_detail::AreaOf;
using trammel_detail::AreaSum;
using trammel_detail::FanSums;

/// Gathers the areas of the contours, one by one.
class ContourAreaSums : public AreaSum {
public:
    void EndContour() {
        mAreas.push_back(Value());
        static_cast<AreaSum&>(*this) = AreaSum();
    }
    std::vector<double> const& Areas() const { return mAreas; }

private:
    std::vector<double> mAreas;
};

} // namespace

double SignedArea(CPath const& path) noexcept { return AreaOf(path); }
double SignedArea(TPolygon<double> const& polygon) noexcept { return AreaOf(polygon); }
double SignedArea(CFPolygonRef const& polygon) noexcept { return AreaOf(polygon); }
double SignedArea(std::vector<TPoint<double>> const& ring) noexcept { return AreaOf(ring); }

std::vector<double> ContourAreas(CPath const& path) {
    FanSums<ContourAreaSums> const fans = trammel_detail::SumFans<ContourAreaSums>(path);
    std::vector<double> areas = fans.sums.Areas();
    for (double& area : areas) {
        area = fans.scale.Unscaled(area, 1, 1);
    }
    return areas;
}

AreaMoments MomentsOf(CPath const& path) noexcept { return AllMomentsOf<AreaMoments>(path); }
AreaMoments MomentsOf(TPolygon<double> const& polygon) noexcept {
    return AllMomentsOf<AreaMoments>(polygon);
}
AreaMoments MomentsOf(CFPolygonRef const& polygon) noexcept {
    return AllMomentsOf<AreaMoments>(polygon);
}
AreaMoments MomentsOf(std::vector<TPoint<double>> const& ring) noexcept {
    return AllMomentsOf<AreaMoments>(ring);
}

} // namespace trammel
