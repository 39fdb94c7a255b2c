// SPDX-License-Identifier: MIT

// The tests of paths share this fixture and these helpers.

#ifndef TRAMMEL_PATHSUPPORT_H
#define TRAMMEL_PATHSUPPORT_H

#include "CBezier.h"
#include "CPath.h"
#include "TPoint.h"
#include "TestSupport.h"
#include "plain/PlainPath.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace trammel_test {

// The codes of a path's elements.
inline constexpr char kM = 0;
inline constexpr char kL = 1;
inline constexpr char kC = 2;
inline constexpr char kZ = 3;

/// The path as text: codes with their points, the current point, whether open, the cached bounds.
inline std::string Text(CPath const& path) {
    std::string text;
    std::size_t at = 0;
    for (char const code : path.mCtls) {
        std::size_t const count = code == kM || code == kL ? 1 : code == kC ? 3 : 0;
        text += code == kM   ? "M"
                : code == kL ? "L"
                : code == kC ? "C"
                : code == kZ ? "Z"
                             : "<" + std::to_string(code) + ">";
        for (std::size_t i = 0; i < count && at < path.mPts.size(); ++i) {
            text += Text(path.mPts[at++]);
        }
        text += " ";
    }
    for (; at < path.mPts.size(); ++at) {
        text += "+" + Text(path.mPts[at]) + " ";
    }
    return text;
}

/// The text with everything else that a path stores.
inline std::string State(CPath const& path) {
    return Text(path) + "at " + Text(path.mCurrentPt) + (path.mOpen ? " open " : " not open ") +
           Text(path.mBounds);
}

/// The same path of the other form.
inline CPath LibraryPath(plain::Path const& path) {
    CPath out;
    out.mCtls = path.codes;
    out.mPts = path.pts;
    out.mCurrentPt = path.current;
    out.mOpen = path.open;
    out.mBounds = path.bounds;
    return out;
}

inline plain::Path PlainPath(CPath const& path) {
    plain::Path out;
    out.codes = path.mCtls;
    out.pts = path.mPts;
    out.current = path.mCurrentPt;
    out.open = path.mOpen;
    out.bounds = path.mBounds;
    return out;
}

inline std::string State(plain::Path const& path) { return State(LibraryPath(path)); }

/// Restores the curves' settings, which the plain forms model with their own.
class Path : public ::testing::Test {
protected:
    void SetUp() override {
        plain::state = plain::State();
        plain::state.recursionLimit = CBezier::mRecursionLimit;
        mLimit = CBezier::mRecursionLimit;
        mMaxError = CBezier::mMaxError;
    }
    void TearDown() override {
        EXPECT_EQ(CBezier::mMaxError, mMaxError); // measuring puts the tolerance back
        CBezier::mRecursionLimit = mLimit;
        plain::state = plain::State();
    }

private:
    std::int16_t mLimit = 0;
    double mMaxError = 0.0;
};

/// (0, 0), (10, 0), (10, 10), (0, 10), closed: 40 long.
inline CPath Square() {
    CPath path;
    path.MoveTo(TPoint<double>(0, 0));
    path.LineTo(TPoint<double>(10, 0));
    path.LineTo(TPoint<double>(10, 10));
    path.LineTo(TPoint<double>(0, 10));
    path.ClosePath();
    return path;
}

} // namespace trammel_test

#endif
