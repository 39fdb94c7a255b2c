// SPDX-License-Identifier: MIT

// The tests of the handle polygon share this fixture and these helpers.

#ifndef TRAMMEL_HANDLEPOLYGONSUPPORT_H
#define TRAMMEL_HANDLEPOLYGONSUPPORT_H

#include "CFPolygonRef.h"
#include "FPolygon.h"
#include "PathObject.h"
#include "TPoint.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace trammel_test {

/// The record at the head of the block.
inline FPolygon* Record(CFPolygonRef const& ref) { return *static_cast<FPolygon**>(ref); }

/// A new open polygon of these points.
inline CFPolygonRef Polygon(std::vector<TPoint<double>> const& points) {
    CFPolygonRef ref;
    ref.CFPolygonCreate(points);
    return ref;
}

/// Gives the polygon a cached path, which the caller shares, as the application's builder would.
inline CGPath* CachePath(CFPolygonRef const& ref) {
    CGPath* const path = CGPathCreateMutable();
    CGPathRetain(path);
    Record(ref)->polyPath = trammel_detail::StorePath(path, ref.mRef);
    EXPECT_NE(Record(ref)->polyPath, 0);
    return path;
}

/// The path that the polygon keeps; null for none.
inline CGPath* CachedPath(CFPolygonRef const& ref) {
    return trammel_detail::PathForToken(Record(ref)->polyPath, ref.mRef);
}

/// Tests that leave no block and no path behind.
class HandlePolygon : public WithoutLeaks {
protected:
    /// A reference that is disposed after the test.
    CFPolygonRef& Keep(CFPolygonRef ref) {
        mKept.push_back(std::make_unique<CFPolygonRef>(ref));
        return *mKept.back();
    }
    void TearDown() override {
        for (auto const& ref : mKept) {
            ref->Dispose();
        }
        WithoutLeaks::TearDown();
    }

private:
    std::vector<std::unique_ptr<CFPolygonRef>> mKept;
};

} // namespace trammel_test

#endif
