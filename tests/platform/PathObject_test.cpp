// SPDX-License-Identifier: MIT

#include "PathObject.h"

#include "Handles.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using trammel_detail::LivePathCount;
using trammel_detail::LivePathTokenCount;
using trammel_detail::PathForToken;
using trammel_detail::ReleasePathToken;
using trammel_detail::StorePath;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// Every test ends without injected failures and with as many paths and tokens as it began with.
class Path : public ::testing::Test {
protected:
    void SetUp() override {
        mPaths = LivePathCount();
        mTokens = LivePathTokenCount();
    }
    void TearDown() override {
        trammel_detail::FailNextAllocations(0);
        EXPECT_EQ(LivePathCount(), mPaths);
        EXPECT_EQ(LivePathTokenCount(), mTokens);
    }

private:
    long mPaths = 0;
    long mTokens = 0;
};

using PathToken = Path;

std::string Number(float value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    return text;
}

/// Returns the path's elements as text: "M 1,2 L 3,4 C ... Z".
std::string Text(CGPathRef path) {
    std::string text;
    CGPathApply(path, &text, [](void* info, CGPathElement const* element) {
        std::string& out = *static_cast<std::string*>(info);
        static char const letters[] = "MLQCZ";
        static int const counts[] = {1, 1, 2, 3, 0};
        out += out.empty() ? "" : " ";
        out += letters[element->type];
        for (int i = 0; i < counts[element->type]; ++i) {
            out += " " + Number(element->points[i].x) + "," + Number(element->points[i].y);
        }
    });
    return text;
}

void ExpectBox(CGPathRef path, CGRect const& expected) {
    CGRect const box = CGPathGetBoundingBox(path);
    EXPECT_EQ(box.origin.x, expected.origin.x);
    EXPECT_EQ(box.origin.y, expected.origin.y);
    EXPECT_EQ(box.size.width, expected.size.width);
    EXPECT_EQ(box.size.height, expected.size.height);
}

CGRect const kNullRect = CGRectMake(kInfinity, kInfinity, 0, 0);

TEST_F(Path, ElementTypesHaveTheCustomaryValues) {
    EXPECT_EQ(kCGPathElementMoveToPoint, 0);
    EXPECT_EQ(kCGPathElementAddLineToPoint, 1);
    EXPECT_EQ(kCGPathElementAddQuadCurveToPoint, 2);
    EXPECT_EQ(kCGPathElementAddCurveToPoint, 3);
    EXPECT_EQ(kCGPathElementCloseSubpath, 4);
    static_assert(std::is_same_v<CGMutablePathRef, CGPath*>);
    static_assert(std::is_same_v<CGPathRef, CGPath const*>);
}

TEST_F(Path, IsWalkedInOrder) {
    CGMutablePathRef const path = CGPathCreateMutable();
    EXPECT_TRUE(CGPathIsEmpty(path));
    EXPECT_EQ(Text(path), "");
    CGPathMoveToPoint(path, nullptr, 1, 2);
    EXPECT_FALSE(CGPathIsEmpty(path));
    CGPathAddLineToPoint(path, nullptr, 3, 4);
    CGPathAddCurveToPoint(path, nullptr, 5, 6, 7, 8, 9, 10);
    CGPathCloseSubpath(path);
    CGPathMoveToPoint(path, nullptr, -1, -2);
    CGPathAddLineToPoint(path, nullptr, 0.5F, 0);
    EXPECT_EQ(Text(path), "M 1,2 L 3,4 C 5,6 7,8 9,10 Z M -1,-2 L 0.5,0");
    CGPathRelease(path);
}

TEST_F(Path, PointsAreMapped) {
    CGMutablePathRef const path = CGPathCreateMutable();
    CGAffineTransform const m{2, 3, 5, 7, 11, 13};
    CGPathMoveToPoint(path, &m, 1, 0);
    CGPathAddLineToPoint(path, &m, 0, 1);
    CGPathAddCurveToPoint(path, &m, 0, 0, 1, 1, 2, 2);
    EXPECT_EQ(Text(path), "M 13,16 L 16,20 C 11,13 18,23 25,33");
    CGPathRelease(path);
}

TEST_F(Path, AnEmptyPathHasNoPlaceToDrawFrom) {
    CGMutablePathRef const path = CGPathCreateMutable();
    CGPathAddLineToPoint(path, nullptr, 1, 1);
    CGPathAddCurveToPoint(path, nullptr, 1, 1, 2, 2, 3, 3);
    CGPathCloseSubpath(path);
    EXPECT_TRUE(CGPathIsEmpty(path));
    CGPathRelease(path);
}

TEST_F(Path, ClosesASubpathOnce) {
    CGMutablePathRef const path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, 1, 1);
    CGPathCloseSubpath(path);
    CGPathCloseSubpath(path);
    CGPathAddLineToPoint(path, nullptr, 2, 2);
    CGPathCloseSubpath(path);
    EXPECT_EQ(Text(path), "M 1,1 Z L 2,2 Z");
    CGPathRelease(path);
}

TEST_F(Path, NullIsTolerated) {
    EXPECT_EQ(CGPathRetain(nullptr), nullptr);
    CGPathRelease(nullptr);
    EXPECT_EQ(CGPathGetRetainCount(nullptr), 0);
    CGPathMoveToPoint(nullptr, nullptr, 1, 2);
    CGPathAddLineToPoint(nullptr, nullptr, 1, 2);
    CGPathAddCurveToPoint(nullptr, nullptr, 1, 2, 3, 4, 5, 6);
    CGPathCloseSubpath(nullptr);
    EXPECT_TRUE(CGPathIsEmpty(nullptr));
    ExpectBox(nullptr, kNullRect);
    EXPECT_EQ(Text(nullptr), "");
    CGMutablePathRef const path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, 1, 2);
    CGPathApply(path, nullptr, nullptr);
    CGPathRelease(path);
}

TEST_F(Path, ReferencesAreCounted) {
    long const before = LivePathCount();
    CGMutablePathRef const path = CGPathCreateMutable();
    EXPECT_EQ(CGPathGetRetainCount(path), 1);
    EXPECT_EQ(CGPathRetain(path), path);
    EXPECT_EQ(CGPathGetRetainCount(path), 2);
    EXPECT_EQ(LivePathCount(), before + 1);
    CGPathRelease(path);
    EXPECT_EQ(CGPathGetRetainCount(path), 1);
    EXPECT_EQ(LivePathCount(), before + 1);
    CGPathRelease(path);
    EXPECT_EQ(LivePathCount(), before);
}

TEST_F(Path, ReferencesMayBeCountedInSeveralThreads) {
    CGMutablePathRef const path = CGPathCreateMutable();
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([path] {
            for (int i = 0; i < 10000; ++i) {
                CGPathRelease(CGPathRetain(path));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(CGPathGetRetainCount(path), 1);
    CGPathRelease(path);
}

TEST_F(Path, CreationFailsWhenMemoryIsShort) {
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(CGPathCreateMutable(), nullptr);
}

TEST_F(Path, TheFunctionCannotChangeThePathThroughTheElement) {
    CGMutablePathRef const path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, 1, 2);
    CGPathApply(path, nullptr,
                [](void*, CGPathElement const* element) { element->points[0].x = 99; });
    EXPECT_EQ(Text(path), "M 1,2");
    CGPathRelease(path);
}

TEST_F(Path, TheFunctionMayAddReleaseAndThrow) {
    CGMutablePathRef path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, 1, 2);
    CGPathAddLineToPoint(path, nullptr, 3, 4);
    CGPathApply(path, path, [](void* info, CGPathElement const* element) {
        for (int i = 0; i < 50; ++i) {
            CGPathAddLineToPoint(static_cast<CGPath*>(info), nullptr, element->points->x, 0);
        }
    });
    EXPECT_EQ(Text(path).substr(0, 17), "M 1,2 L 3,4 L 1,0");
    std::string const whole = Text(path);
    EXPECT_EQ(std::count(whole.begin(), whole.end(), 'L'), 101);
    EXPECT_THROW(CGPathApply(path, nullptr,
                             [](void*, CGPathElement const*) { throw std::runtime_error("stop"); }),
                 std::runtime_error);
    EXPECT_EQ(CGPathGetRetainCount(path), 1);
    // The last reference is given back in the middle: the rest is nevertheless shown.
    struct Info {
        CGPath* path;
        int calls;
    } info{path, 0};
    CGPathApply(path, &info, [](void* data, CGPathElement const*) {
        Info& each = *static_cast<Info*>(data);
        if (each.calls++ == 0) {
            CGPathRelease(each.path);
        }
    });
    EXPECT_EQ(info.calls, 102);
}

TEST_F(Path, TheBoundingBoxHoldsAllPoints) {
    CGMutablePathRef const path = CGPathCreateMutable();
    ExpectBox(path, kNullRect);
    CGPathMoveToPoint(path, nullptr, 1, 2);
    ExpectBox(path, CGRectMake(1, 2, 0, 0));
    CGPathAddLineToPoint(path, nullptr, 4, -3);
    ExpectBox(path, CGRectMake(1, -3, 3, 5));
    CGPathAddCurveToPoint(path, nullptr, -10, 0, 0, 20, 2, 2); // control points count, too
    ExpectBox(path, CGRectMake(-10, -3, 14, 23));
    CGPathCloseSubpath(path); // has no point: (0, 0) must not come in
    CGPathMoveToPoint(path, nullptr, 50, 0);
    ExpectBox(path, CGRectMake(-10, -3, 60, 23));
    CGPathRelease(path);
}

TEST_F(Path, ACloseAddsNoPointToTheBoundingBox) {
    CGMutablePathRef const path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, 10, 10);
    CGPathAddLineToPoint(path, nullptr, 20, 20);
    CGPathCloseSubpath(path);
    ExpectBox(path, CGRectMake(10, 10, 10, 10));
    CGPathRelease(path);
}

TEST_F(Path, TheBoundingBoxPassesOverNaN) {
    CGMutablePathRef path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, kNaN, kNaN);
    ExpectBox(path, kNullRect);
    CGPathAddLineToPoint(path, nullptr, 1, kNaN);
    ExpectBox(path, kNullRect);
    CGPathAddLineToPoint(path, nullptr, 3, 5);
    CGPathAddLineToPoint(path, nullptr, kNaN, 7);
    ExpectBox(path, CGRectMake(1, 5, 2, 2));
    CGPathRelease(path);
}

TEST_F(Path, TheBoundingBoxReachesToInfinity) {
    CGMutablePathRef path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, kInfinity, -kInfinity);
    ExpectBox(path, CGRectMake(kInfinity, -kInfinity, 0, 0)); // not NaN
    CGPathAddLineToPoint(path, nullptr, 0, 1);
    ExpectBox(path, CGRectMake(0, -kInfinity, kInfinity, kInfinity));
    CGPathRelease(path);
    path = CGPathCreateMutable();
    CGPathMoveToPoint(path, nullptr, -3e38F, 0);
    CGPathAddLineToPoint(path, nullptr, 3e38F, 1);
    ExpectBox(path, CGRectMake(-3e38F, 0, kInfinity, 1));
    CGPathRelease(path);
}

TEST_F(PathToken, StandsForThePathOfItsOwner) {
    int owner = 0;
    CGPath* const path = CGPathCreateMutable();
    std::int32_t const token = StorePath(path, &owner);
    EXPECT_NE(token, 0);
    EXPECT_EQ(CGPathGetRetainCount(path), 1); // the reference moved, none was added
    EXPECT_EQ(PathForToken(token, &owner), path);
    EXPECT_EQ(PathForToken(token, &owner), path);
    EXPECT_EQ(CGPathGetRetainCount(path), 1);
    CGPathRetain(path);
    ReleasePathToken(token, &owner);
    EXPECT_EQ(CGPathGetRetainCount(path), 1);
    EXPECT_EQ(PathForToken(token, &owner), nullptr);
    ReleasePathToken(token, &owner); // freed already: nothing
    EXPECT_EQ(CGPathGetRetainCount(path), 1);
    CGPathRelease(path);
}

TEST_F(PathToken, OfNothingIsZero) {
    int owner = 0;
    EXPECT_EQ(StorePath(nullptr, &owner), 0);
    EXPECT_EQ(PathForToken(0, &owner), nullptr);
    EXPECT_EQ(PathForToken(0, nullptr), nullptr);
    ReleasePathToken(0, &owner);
    EXPECT_EQ(PathForToken(123456789, &owner), nullptr);
    ReleasePathToken(123456789, &owner);
    EXPECT_EQ(PathForToken(-1, &owner), nullptr);
    ReleasePathToken(-1, &owner);
}

TEST_F(PathToken, IsZeroAndThePathReleasedOnFailure) {
    int owner = 0;
    long const before = LivePathCount();
    EXPECT_EQ(StorePath(CGPathCreateMutable(), nullptr), 0);
    EXPECT_EQ(LivePathCount(), before);
    CGPath* const path = CGPathCreateMutable();
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(StorePath(path, &owner), 0);
    EXPECT_EQ(LivePathCount(), before);
}

TEST_F(PathToken, MeansNothingForAnotherOwner) {
    int owner = 0;
    int other = 0;
    CGPath* const path = CGPathCreateMutable();
    std::int32_t const token = StorePath(path, &owner);
    EXPECT_EQ(PathForToken(token, &other), nullptr);
    EXPECT_EQ(PathForToken(token, nullptr), nullptr);
    ReleasePathToken(token, &other);
    ReleasePathToken(token, nullptr);
    EXPECT_EQ(PathForToken(token, &owner), path);
    ReleasePathToken(token, &owner);
}

TEST_F(PathToken, OfABlockCopiedByteByByteNeverReleasesTwice) {
    // A block with the token at offset 40, as an application may copy it.
    Handle const first = NewHandle(44);
    CGPath* const path = CGPathCreateMutable();
    std::int32_t const token = StorePath(path, first);
    std::memcpy(*first + 40, &token, sizeof token);
    Handle second = first;
    ASSERT_EQ(HandToHand(&second), noErr);
    std::int32_t copied = 0;
    std::memcpy(&copied, *second + 40, sizeof copied);
    ASSERT_EQ(copied, token);

    ReleasePathToken(copied, second); // the copy goes first
    EXPECT_EQ(PathForToken(token, first), path);
    EXPECT_EQ(CGPathGetRetainCount(path), 1);
    DisposeHandle(second);
    ReleasePathToken(token, first);
    DisposeHandle(first);
}

TEST_F(PathToken, AnOldCopyDoesNotMeetALaterPath) {
    int owner = 0;
    int other = 0;
    std::int32_t const old = StorePath(CGPathCreateMutable(), &owner);
    ReleasePathToken(old, &owner);
    // Later paths belong to the same and to another owner. The old token comes back from a saved
    // copy.
    std::vector<std::int32_t> later;
    for (int i = 0; i < 5000; ++i) {
        std::int32_t const token = StorePath(CGPathCreateMutable(), i % 2 == 0 ? &owner : &other);
        ASSERT_NE(token, old);
        later.push_back(token);
    }
    ReleasePathToken(old, &owner);
    ReleasePathToken(old, &other);
    EXPECT_EQ(PathForToken(old, &owner), nullptr);
    EXPECT_EQ(LivePathTokenCount(), 5000);
    for (std::size_t i = 0; i < later.size(); ++i) {
        ASSERT_NE(PathForToken(later[i], i % 2 == 0 ? &owner : &other), nullptr);
        ReleasePathToken(later[i], i % 2 == 0 ? &owner : &other);
    }
}

TEST_F(PathToken, ComesBackAfterReleaseOnceTheRangeIsThrough) {
    int owner = 0;
    trammel_detail::SetNextPathToken(1);
    std::int32_t const first = StorePath(CGPathCreateMutable(), &owner);
    std::int32_t const second = StorePath(CGPathCreateMutable(), &owner);
    std::int32_t const third = StorePath(CGPathCreateMutable(), &owner);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);
    EXPECT_EQ(third, 3);
    ReleasePathToken(second, &owner);
    trammel_detail::SetNextPathToken(-1); // the last number of the range
    std::int32_t const last = StorePath(CGPathCreateMutable(), &owner);
    EXPECT_EQ(last, -1);
    // 0 is left out, 1 and 3 are in use, 2 is free again.
    std::int32_t const again = StorePath(CGPathCreateMutable(), &owner);
    std::int32_t const next = StorePath(CGPathCreateMutable(), &owner);
    EXPECT_EQ(again, 2);
    EXPECT_EQ(next, 4);
    for (std::int32_t const token : {first, third, last, again, next}) {
        ASSERT_NE(PathForToken(token, &owner), nullptr);
        ReleasePathToken(token, &owner);
    }
}

TEST_F(PathToken, PathsMayReleaseInAnyOrder) {
    std::mt19937 random(8);
    struct Stored {
        std::int32_t token;
        CGPath* path;
        int owner;
    };
    int owners[3] = {};
    std::vector<Stored> stored;
    for (int step = 0; step < 20000; ++step) {
        if (stored.empty() || (random() % 2 == 0 && stored.size() < 300)) {
            CGPath* const path = CGPathCreateMutable();
            int const owner = static_cast<int>(random() % 3);
            std::int32_t const token = StorePath(path, &owners[owner]);
            ASSERT_NE(token, 0);
            stored.push_back({token, path, owner});
        } else {
            std::size_t const which = random() % stored.size();
            Stored const entry = stored[which];
            ASSERT_EQ(PathForToken(entry.token, &owners[entry.owner]), entry.path);
            ReleasePathToken(entry.token, &owners[entry.owner]);
            stored[which] = stored.back();
            stored.pop_back();
        }
        ASSERT_EQ(LivePathTokenCount(), static_cast<long>(stored.size()));
        ASSERT_EQ(LivePathCount(), static_cast<long>(stored.size()));
    }
    for (Stored const& entry : stored) {
        ReleasePathToken(entry.token, &owners[entry.owner]);
    }
}

TEST_F(PathToken, TheTableMayBeUsedInSeveralThreads) {
    std::vector<std::thread> threads;
    threads.reserve(4);
    std::atomic<int> good{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&good] {
            int owner = 0;
            for (int i = 0; i < 2000; ++i) {
                CGPath* const path = CGPathCreateMutable();
                std::int32_t const token = StorePath(path, &owner);
                good += PathForToken(token, &owner) == path ? 1 : 0;
                ReleasePathToken(token, &owner);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, 8000);
}

} // namespace
