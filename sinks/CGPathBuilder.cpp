// SPDX-License-Identifier: MIT

#include "CGPathBuilder.h"

#include <cmath>
#include <limits>
#include <memory>
#include <new>

namespace trammel {

namespace {

struct ReleasePath {
    void operator()(CGPath* path) const { CGPathRelease(path); }
};

/// Draws an outline into a path, point by point, and leaves gaps around points that it cannot hold.
class Pen {
public:
    explicit Pen(CGPath* path) : mPath(path) {}

    void To(TPoint<double> const& p) {
        bool const drawable = InRange(p.h) && InRange(p.v);
        if (drawable && mDown) {
            CGPathAddLineToPoint(mPath, nullptr, static_cast<CGFloat>(p.h),
                                 static_cast<CGFloat>(p.v));
        } else if (drawable) {
            CGPathMoveToPoint(mPath, nullptr, static_cast<CGFloat>(p.h), static_cast<CGFloat>(p.v));
        }
        mDown = drawable;
        mWhole = mWhole && drawable;
    }
    void Close(TPoint<double> const& start) {
        if (mWhole) {
            CGPathCloseSubpath(mPath);
        } else if (mDown) {
            To(start);
        }
    }

private:
    /// True when single precision holds `x`; false for NaN.
    static bool InRange(double x) {
        return std::abs(x) <= static_cast<double>(std::numeric_limits<CGFloat>::max());
    }

    CGPath* mPath;
    bool mDown = false; ///< the path ends at the point that came last
    bool mWhole = true; ///< no gap so far
};

CGPath* Build(CFPolygonRef const& polygon, bool closed) noexcept {
    if (!polygon) {
        return nullptr;
    }
    std::unique_ptr<CGPath, ReleasePath> path(CGPathCreateMutable());
    if (path == nullptr) {
        return nullptr;
    }
    long last = polygon.LastIndex();
    if (closed && last > 0) {
        last = polygon.GeometryEdgeCount();
    }
    try {
        Pen pen(path.get());
        for (long i = 0; i <= last; ++i) {
            pen.To(polygon.PolyPoints(i));
        }
        if (closed) {
            pen.Close(polygon.PolyPoints(0));
        }
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
    return path.release();
}

} // namespace

CGPath* BuildOpenPath(CFPolygonRef polygon) noexcept { return Build(polygon, false); }

CGPath* BuildClosedPath(CFPolygonRef polygon) noexcept { return Build(polygon, true); }

CGPath* BuildPath(CFPolygonRef polygon) noexcept { return Build(polygon, polygon.Closed()); }

} // namespace trammel
