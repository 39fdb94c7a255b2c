// SPDX-License-Identifier: MIT

#include "Grid_p.h"

#include <algorithm>
#include <cmath>

namespace trammel_detail {

namespace {

int const kGridBits = 61;

/// True when two doubles are the same to the last bit, signs of zeros included.
bool SameBits(double a, double b) { return a == b && std::signbit(a) == std::signbit(b); }

} // namespace

GridAxis::GridAxis(double low, double high) {
    double const largest = std::max(std::fabs(low), std::fabs(high));
    int const shift = -std::ilogb(largest);
    mUp1 = std::ldexp(1.0, shift / 2);
    mUp2 = std::ldexp(1.0, shift - shift / 2);
    mDown1 = std::ldexp(1.0, -(shift / 2));
    mDown2 = std::ldexp(1.0, -(shift - shift / 2));
    double const first = low * mUp1 * mUp2;
    double const range = high * mUp1 * mUp2 - first;
    int exponent = 0;
    std::frexp(range, &exponent);
    // range <= 2^exponent. The doubles end at 2^-1074, so a finer step would have points between
    // them.
    int const step = std::max(exponent - kGridBits, -1074 + shift);
    mStep = std::ldexp(1.0, step);
    mStepsPerUnit = std::ldexp(1.0, -step);
    // From 2^52 steps on, every double is a multiple of the step.
    double const steps = first * mStepsPerUnit;
    mOrigin = std::fabs(steps) < 0x1p52 ? std::nearbyint(steps) * mStep : first;
    mHalf = static_cast<std::int64_t>(range / 2 * mStepsPerUnit);
    mIsNearZero = std::fabs(mOrigin * mStepsPerUnit) <= 0x1p61;
    mFromZero =
        mIsNearZero ? mHalf + static_cast<std::int64_t>(mOrigin * mStepsPerUnit) : mFromZero;
    mExactFrom = 0x1p53 * mStep * mDown1 * mDown2;
}

void ClipGrid::AddInexact(GridPoint p, double x, double y) {
    GridPoint q = p;
    if (!SameBits(mX.FromGrid(q.x), x) || !SameBits(mY.FromGrid(q.y), y)) {
        mInexact.push_back({p, x, y});
    }
}

void ClipGrid::FinishAdding() {
    std::stable_sort(mInexact.begin(), mInexact.end(),
                     [](Vertex const& a, Vertex const& b) { return a.at < b.at; });
    auto const end = std::unique(mInexact.begin(), mInexact.end(),
                                 [](Vertex const& a, Vertex const& b) { return a.at == b.at; });
    mInexact.erase(end, mInexact.end());
}

void ClipGrid::ToDoubles(GridPoint p, double& x, double& y) const {
    x = mX.OfDouble(p.x);
    y = mY.OfDouble(p.y);
    if (!mInexact.empty() && (std::fabs(x) <= mX.ExactFrom() || std::fabs(y) <= mY.ExactFrom())) {
        auto const found =
            std::lower_bound(mInexact.begin(), mInexact.end(), p,
                             [](Vertex const& v, GridPoint at) { return v.at < at; });
        if (found != mInexact.end() && found->at == p) {
            x = found->x;
            y = found->y;
        }
    }
}

} // namespace trammel_detail
