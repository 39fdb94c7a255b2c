// SPDX-License-Identifier: MIT

// The tests of several sources share these texts, blocks, comparisons and random numbers.
#ifndef TRAMMEL_TESTSUPPORT_H
#define TRAMMEL_TESTSUPPORT_H

#include "Handles.h"
#include "PathObject.h"
#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace trammel_test {

inline constexpr double kInf = std::numeric_limits<double>::infinity();
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kHuge = 1e308;

/// The number of random rounds that a test makes of `count`: all, or a fifth under the sanitizers,
/// where each takes some ten times as long.
constexpr int Rounds(int count) {
#if defined(__SANITIZE_ADDRESS__)
    return (count + 4) / 5;
#else
    return count;
#endif
}

// Texts with 17 digits: equal texts mean equal bits (any NaN is "nan"; 0 and -0 differ), and a
// failed comparison can be read.

inline std::string Text(double x) {
    if (std::isnan(x)) {
        return "nan";
    }
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", x);
    return text;
}

/// "(h, v)".
inline std::string Text(TPoint<double> const& p) {
    return "(" + Text(p.h) + ", " + Text(p.v) + ")";
}

/// "[left, top, right, bottom]".
inline std::string Text(TRect<double> const& r) {
    return "[" + Text(r.left) + ", " + Text(r.top) + ", " + Text(r.right) + ", " + Text(r.bottom) +
           "]";
}

/// "(h, v)-(h, v)".
inline std::string Text(TLine<double> const& line) {
    return Text(line.mStart) + "-" + Text(line.mEnd);
}

/// The items' texts with blanks between.
template <class Item> std::string Text(std::vector<Item> const& items) {
    std::string text;
    for (Item const& item : items) {
        text += (text.empty() ? "" : " ") + Text(item);
    }
    return text;
}

/// A new block of these bytes.
inline Handle HandleWith(std::string const& bytes) {
    Handle h = nullptr;
    EXPECT_EQ(PtrToHand(bytes.data(), &h, static_cast<Size>(bytes.size())), noErr);
    return h;
}
/// The bytes of a block.
inline std::string Contents(Handle h) {
    return std::string(*h, static_cast<std::size_t>(GetHandleSize(h)));
}

/// Every test ends without injected failures and with as many handles, paths and path tokens as it
/// began with.
class WithoutLeaks : public ::testing::Test {
protected:
    void SetUp() override {
        mHandles = trammel_detail::LiveHandleCount();
        mPaths = trammel_detail::LivePathCount();
        mTokens = trammel_detail::LivePathTokenCount();
    }
    void TearDown() override {
        trammel_detail::FailNextAllocations(0);
        EXPECT_EQ(trammel_detail::LiveHandleCount(), mHandles);
        EXPECT_EQ(trammel_detail::LivePathCount(), mPaths);
        EXPECT_EQ(trammel_detail::LivePathTokenCount(), mTokens);
    }

private:
    long mHandles = 0;
    long mPaths = 0;
    long mTokens = 0;
};

/// Equal to the last bit, the sign of zero included; every NaN is the same.
inline bool SameBits(double a, double b) {
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}
inline bool SameBits(TPoint<double> const& a, TPoint<double> const& b) {
    return SameBits(a.h, b.h) && SameBits(a.v, b.v);
}

/// Random input that is the same in every run and on every machine: the standard distributions are
/// not.
class Random {
public:
    explicit Random(std::uint64_t seed) : mEngine(seed) {}

    /// In [lo, hi).
    double Uniform(double lo, double hi) {
        return lo + (hi - lo) * static_cast<double>(mEngine() >> 11) * 0x1p-53;
    }
    TPoint<double> Point(double reach) {
        double const h = Uniform(-reach, reach);
        return {h, Uniform(-reach, reach)};
    }
    /// Any short.
    short Short() { return static_cast<short>(static_cast<std::int32_t>(mEngine() >> 48) - 32768); }
    /// In [lo, hi].
    int Integer(int lo, int hi) {
        std::uint64_t const count =
            static_cast<std::uint64_t>(std::int64_t{hi} - std::int64_t{lo} + 1);
        return static_cast<int>(lo + static_cast<std::int64_t>(mEngine() % count));
    }

private:
    std::mt19937_64 mEngine;
};

} // namespace trammel_test

// How a failed comparison shows points and rectangles.
template <class T> void PrintTo(TPoint<T> const& p, std::ostream* out) { *out << p.NSString(); }
template <class T> void PrintTo(TRect<T> const& r, std::ostream* out) { *out << r.NSString(); }

#endif
