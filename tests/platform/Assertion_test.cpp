// SPDX-License-Identifier: MIT

#include "Assertion_p.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

TEST(AssertionDeathTest, PrintsOneLineAndAborts) {
    EXPECT_EXIT(
        trammel_detail::trammel_assert_rtn("GetPt", "Sources/TPoly.cpp", 123, "index >= 0"),
        ::testing::KilledBySignal(SIGABRT),
        "^Assertion failed: \\(index >= 0\\), function GetPt, file Sources/TPoly\\.cpp, line "
        "123\\.\n$");
}

TEST(AssertionDeathTest, ToleratesNullTextsAndKeepsPercentSigns) {
    EXPECT_EXIT(trammel_detail::trammel_assert_rtn(nullptr, nullptr, -1, "a %s b"),
                ::testing::KilledBySignal(SIGABRT),
                "^Assertion failed: \\(a %s b\\), function , file , line -1\\.\n$");
}

} // namespace
