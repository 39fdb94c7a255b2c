// SPDX-License-Identifier: MIT

// Points on their way from where they are made to where they are used, many at a time. Not
// installed.

#ifndef TRAMMEL_POINTBUFFER_P_H
#define TRAMMEL_POINTBUFFER_P_H

#include "CurveKernels_p.h"
#include "TPoint.h"

#include <cstddef>
#include <new>

namespace trammel_detail {

static_assert(sizeof(TPoint<double>) == 2 * sizeof(double) && offsetof(TPoint<double>, v) == 0 &&
                  offsetof(TPoint<double>, h) == sizeof(double),
              "the kernels store v and h in turn");

/// Collects points in a buffer of its own and passes them on, in order, whenever it is full. It
/// calls use(points, count) with one point or more. At the end the owner calls Pass() for the
/// points that are left, or reads them; the destructor drops them.
template <int kRoom, class Use> class PointBuffer {
    static_assert(kRoom > kBlockPoints, "a block has to fit");

public:
    explicit PointBuffer(Use& use) : mUse(use) {}
    PointBuffer(PointBuffer const&) = delete;
    PointBuffer& operator=(PointBuffer const&) = delete;

    void Add(TPoint<double> const& p) {
        if (mCount == kRoom) {
            Pass();
        }
        mCoordinates[2 * mCount] = p.v;
        mCoordinates[2 * mCount + 1] = p.h;
        ++mCount;
    }
    /// Returns room for kBlockPoints points, v and h in turn, and passes points on where it lacks.
    /// The caller stores points there and tells their number by AddStored().
    double* RoomForBlock() {
        if (mCount > kRoom - kBlockPoints) {
            Pass();
        }
        return mCoordinates + 2 * mCount;
    }
    void AddStored(int count) { mCount += count; }

    /// Passes on the points that wait, if there are any.
    void Pass() {
        if (mCount > 0) {
            int const count = mCount;
            mCount = 0;
            mUse(Points(), count);
        }
    }

    /// Returns the points that wait; Count() is their number.
    TPoint<double> const* Points() const {
        return std::launder(reinterpret_cast<TPoint<double> const*>(mCoordinates));
    }
    int Count() const { return mCount; }

private:
    Use& mUse;
    int mCount = 0;
    // Not TPoints, which would all be set to the origin first.
    alignas(16) double mCoordinates[2 * static_cast<std::size_t>(kRoom)];
};

/// Returns the coordinates of points that lie one after the other, v and h in turn.
inline double const* Coordinates(TPoint<double> const* points) { return &points->v; }

} // namespace trammel_detail

#endif
