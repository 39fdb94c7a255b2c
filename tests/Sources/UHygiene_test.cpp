// SPDX-License-Identifier: MIT

#include "UHygiene.h"

#include "Log.h"
#include "ShortMemory.h"
#include "TRect.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

using trammel_test::kInf;
using trammel_test::kNaN;

namespace {

constexpr float kFloatNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kFloatInf = std::numeric_limits<float>::infinity();
constexpr double kLimit = 113596369920.0;
constexpr float kFloatLimit = 113596366848.0F;

std::vector<std::string> gLines;

void Collect(std::string const& line) { gLines.push_back(line); }

// No answer depends on how much has been zeroed before, so these tests run in any order.

class UHygiene : public ::testing::Test {
protected:
    void SetUp() override {
        gLines.clear();
        SetNSLogSink(Collect);
    }
    void TearDown() override { SetNSLogSink(nullptr); }
};

template <class T> bool FoundByZeroIfNaNOrInf(T value, T& after) {
    after = value;
    return ZeroIfNaNOrInf(after);
}

TEST_F(UHygiene, ZeroIfNaNOrInfZeroesExactlyThose) {
    for (double const bad : {kNaN, -kNaN, kInf, -kInf}) {
        double x = 7.0;
        EXPECT_TRUE(FoundByZeroIfNaNOrInf(bad, x)) << bad;
        EXPECT_TRUE(trammel_test::SameBits(x, 0.0)) << bad;
    }
    for (float const bad : {kFloatNaN, -kFloatNaN, kFloatInf, -kFloatInf}) {
        float x = 7.0F;
        EXPECT_TRUE(FoundByZeroIfNaNOrInf(bad, x)) << bad;
        EXPECT_EQ(x, 0.0F) << bad;
        EXPECT_FALSE(std::signbit(x)) << bad;
    }
    gLines.clear();
    double const largest = std::numeric_limits<double>::max();
    for (double const good : {0.0, -0.0, 1.5, -largest, largest, 5e-324, 2e11}) {
        double x = 7.0;
        EXPECT_FALSE(FoundByZeroIfNaNOrInf(good, x)) << good;
        EXPECT_TRUE(trammel_test::SameBits(x, good)) << good;
    }
    for (float const good : {0.0F, 1.5F, -std::numeric_limits<float>::max(), 2e11F}) {
        float x = 7.0F;
        EXPECT_FALSE(FoundByZeroIfNaNOrInf(good, x)) << good;
        EXPECT_EQ(x, good) << good;
    }
    EXPECT_TRUE(gLines.empty());
}

TEST_F(UHygiene, TheRangeLimitsAreTheStatedBits) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &kLimit, sizeof bits);
    EXPECT_EQ(bits, 0x423A72DF0C000000U);
    std::uint32_t floatBits = 0;
    std::memcpy(&floatBits, &kFloatLimit, sizeof floatBits);
    EXPECT_EQ(floatBits, 0x51D396F8U);
    EXPECT_EQ(static_cast<float>(kLimit), kFloatLimit);
}

TEST_F(UHygiene, ZeroIfOutOfRangeZeroesBeyondTheLimitAndReturnsFalse) {
    for (double const good :
         {kLimit, -kLimit, std::nextafter(kLimit, 0.0), 0.0, -0.0, -1.0, 113596366848.0}) {
        double x = good;
        EXPECT_FALSE(ZeroIfOutOfRange(x)) << good;
        EXPECT_TRUE(trammel_test::SameBits(x, good)) << good;
    }
    for (float const good : {kFloatLimit, -kFloatLimit, 0.0F, -1.0F}) {
        float x = good;
        EXPECT_FALSE(ZeroIfOutOfRange(x)) << good;
        EXPECT_EQ(x, good) << good;
    }
    EXPECT_TRUE(gLines.empty());
    for (double const bad : {std::nextafter(kLimit, kInf), std::nextafter(-kLimit, -kInf), -1e12,
                             1e308, kInf, -kInf}) {
        double x = bad;
        EXPECT_FALSE(ZeroIfOutOfRange(x)) << bad;
        EXPECT_TRUE(trammel_test::SameBits(x, 0.0)) << bad;
    }
    for (float const bad : {std::nextafterf(kFloatLimit, kFloatInf),
                            std::nextafterf(-kFloatLimit, -kFloatInf), 2e11F, -kFloatInf}) {
        float x = bad;
        EXPECT_FALSE(ZeroIfOutOfRange(x)) << bad;
        EXPECT_EQ(x, 0.0F) << bad;
    }
}

TEST_F(UHygiene, ZeroIfOutOfRangeLeavesANaNAlone) {
    double x = kNaN;
    EXPECT_FALSE(ZeroIfOutOfRange(x));
    EXPECT_TRUE(std::isnan(x));
    float y = kFloatNaN;
    EXPECT_FALSE(ZeroIfOutOfRange(y));
    EXPECT_TRUE(std::isnan(y));
    EXPECT_TRUE(gLines.empty());
}

TEST_F(UHygiene, ValidateFloatReportsOnlyNaNAndInfinityButZeroesAll) {
    struct {
        double value;
        bool reported;
        double after;
    } const cases[] = {
        {1.5, false, 1.5},    {kLimit, false, kLimit}, {-0.0, false, -0.0}, {2e11, false, 0.0},
        {-1e308, false, 0.0}, {kNaN, true, 0.0},       {kInf, true, 0.0},   {-kInf, true, 0.0},
    };
    for (auto const& c : cases) {
        double x = c.value;
        EXPECT_EQ(ValidateFloat(x), c.reported) << c.value;
        EXPECT_TRUE(trammel_test::SameBits(x, c.after)) << c.value;
        float y = static_cast<float>(c.value);
        bool const widens = std::abs(c.value) > 3e38 || std::isnan(c.value);
        EXPECT_EQ(ValidateFloat(y), c.reported || widens) << c.value;
        EXPECT_EQ(y, c.after == kLimit ? kFloatLimit : static_cast<float>(c.after)) << c.value;
    }
}

TEST_F(UHygiene, ValidatePointStopsAtABadHorizontalCoordinate) {
    TPoint<double> p(kNaN, kInf);
    EXPECT_TRUE(ValidatePoint(p));
    EXPECT_EQ(p.h, 0.0);
    EXPECT_EQ(p.v, kInf);
    p.Set(-kInf, 2e11);
    EXPECT_TRUE(ValidatePoint(p));
    EXPECT_EQ(p, TPoint<double>(0.0, 2e11));
}

TEST_F(UHygiene, ValidatePointGoesOnAfterAnOutOfRangeHorizontalCoordinate) {
    TPoint<double> p(2e11, kNaN);
    EXPECT_TRUE(ValidatePoint(p));
    EXPECT_EQ(p, TPoint<double>(0.0, 0.0));
    p.Set(2e11, -2e11);
    EXPECT_FALSE(ValidatePoint(p));
    EXPECT_EQ(p, TPoint<double>(0.0, 0.0));
    p.Set(3.0, -kInf);
    EXPECT_TRUE(ValidatePoint(p));
    EXPECT_EQ(p, TPoint<double>(3.0, 0.0));
    p.Set(-3.0, 4.0);
    EXPECT_FALSE(ValidatePoint(p));
    EXPECT_EQ(p, TPoint<double>(-3.0, 4.0));
}

TEST_F(UHygiene, FallsSilentAfterAHundredAndOneEventsButKeepsZeroing) {
    for (int i = 0; i < 101; ++i) {
        double x = kNaN;
        ZeroIfNaNOrInf(x);
        x = kInf;
        ZeroIfNaNOrInf(x);
        x = 1e300;
        ZeroIfOutOfRange(x);
    }
    gLines.clear();
    double x = kNaN;
    EXPECT_TRUE(ZeroIfNaNOrInf(x));
    EXPECT_EQ(x, 0.0);
    x = -kInf;
    EXPECT_TRUE(ZeroIfNaNOrInf(x));
    EXPECT_EQ(x, 0.0);
    x = -1e300;
    EXPECT_FALSE(ZeroIfOutOfRange(x));
    EXPECT_EQ(x, 0.0);
    EXPECT_TRUE(gLines.empty());
}

// The counters live as long as the process, and other tests move them. So the tests that depend on
// their values run in processes of their own: the death test starts the program anew and runs
// nothing but the scenario.

class UHygieneDeathTest : public ::testing::Test {
protected:
    void SetUp() override { ::testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

[[noreturn]] void RunAndExit(void (*scenario)()) {
    gLines.clear();
    SetNSLogSink(Collect);
    scenario();
    ::testing::TestResult const& result =
        *::testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result.total_part_count(); ++i) {
        std::fprintf(stderr, "%s\n", result.GetTestPartResult(i).summary());
    }
    std::exit(result.Failed() ? 1 : 0);
}

#define EXPECT_SUCCESS_IN_A_FRESH_PROCESS(scenario)                                                \
    EXPECT_EXIT(RunAndExit(scenario), ::testing::ExitedWithCode(0), "")

/// The line of an event before the last that is logged.
std::string Line(int number, char const* signature, char const* body) {
    std::string line = "(";
    line += std::to_string(number);
    line += ") '";
    line += signature;
    line += "' ";
    line += body;
    return line;
}

/// The lines of 105 events of one kind.
std::vector<std::string> ExpectedLines(char const* signature, char const* body) {
    std::vector<std::string> lines;
    lines.reserve(101);
    for (int i = 0; i < 100; ++i) {
        lines.push_back(Line(i, signature, body));
    }
    std::string last = "(100) '";
    last += signature;
    last += "'  Last emmision...";
    last += body;
    lines.push_back(last);
    return lines;
}

template <class T> void ZeroManyTimes(bool (*zero)(T&), T value, bool returns) {
    for (int i = 0; i < 105; ++i) {
        T x = value;
        EXPECT_EQ(zero(x), returns) << i;
        EXPECT_EQ(x, T(0)) << i;
    }
}

TEST_F(UHygieneDeathTest, LogsAHundredNaNsOfFloatsAndAnnouncesTheLast) {
    EXPECT_SUCCESS_IN_A_FRESH_PROCESS([] {
        ZeroManyTimes<float>(ZeroIfNaNOrInf<float>, kFloatNaN, true);
        EXPECT_EQ(gLines, ExpectedLines("bool ZeroIfNaNOrInf(T &) [T = float]",
                                        "NaN encountered - zeroing.  value: nan"));
        ASSERT_EQ(gLines.size(), 101U);
        EXPECT_EQ(gLines[0], "(0) 'bool ZeroIfNaNOrInf(T &) [T = float]' "
                             "NaN encountered - zeroing.  value: nan");
        EXPECT_EQ(gLines[99], "(99) 'bool ZeroIfNaNOrInf(T &) [T = float]' "
                              "NaN encountered - zeroing.  value: nan");
        EXPECT_EQ(gLines[100], "(100) 'bool ZeroIfNaNOrInf(T &) [T = float]'  "
                               "Last emmision...NaN encountered - zeroing.  value: nan");
    });
}

TEST_F(UHygieneDeathTest, LogsAHundredNaNsOfDoublesAndAnnouncesTheLast) {
    EXPECT_SUCCESS_IN_A_FRESH_PROCESS([] {
        ZeroManyTimes<double>(ZeroIfNaNOrInf<double>, -kNaN, true);
        EXPECT_EQ(gLines, ExpectedLines("bool ZeroIfNaNOrInf(T &) [T = double]",
                                        "NaN encountered - zeroing.  value: nan"));
    });
}

TEST_F(UHygieneDeathTest, LogsAHundredInfinitiesOfFloatsAndAnnouncesTheLast) {
    EXPECT_SUCCESS_IN_A_FRESH_PROCESS([] {
        ZeroManyTimes<float>(ZeroIfNaNOrInf<float>, -kFloatInf, true);
        EXPECT_EQ(gLines, ExpectedLines("bool ZeroIfNaNOrInf(T &) [T = float]",
                                        "Inf encountered - zeroing.  value: -inf"));
    });
}

TEST_F(UHygieneDeathTest, LogsAHundredInfinitiesOfDoublesAndAnnouncesTheLast) {
    EXPECT_SUCCESS_IN_A_FRESH_PROCESS([] {
        ZeroManyTimes<double>(ZeroIfNaNOrInf<double>, kInf, true);
        EXPECT_EQ(gLines, ExpectedLines("bool ZeroIfNaNOrInf(T &) [T = double]",
                                        "Inf encountered - zeroing.  value: inf"));
    });
}

TEST_F(UHygieneDeathTest, LogsAHundredFloatsOutOfRangeAndAnnouncesTheLast) {
    EXPECT_SUCCESS_IN_A_FRESH_PROCESS([] {
        ZeroManyTimes<float>(ZeroIfOutOfRange<float>, 2e11F, false);
        EXPECT_EQ(gLines,
                  ExpectedLines("bool ZeroIfOutOfRange(T &) [T = float]",
                                "RangeErr encountered - zeroing.  value: 199999995904.000000"));
    });
}

TEST_F(UHygieneDeathTest, LogsAHundredDoublesOutOfRangeAndAnnouncesTheLast) {
    EXPECT_SUCCESS_IN_A_FRESH_PROCESS([] {
        ZeroManyTimes<double>(ZeroIfOutOfRange<double>, -1e12, false);
        EXPECT_EQ(gLines,
                  ExpectedLines("bool ZeroIfOutOfRange(T &) [T = double]",
                                "RangeErr encountered - zeroing.  value: -1000000000000.000000"));
    });
}

TEST_F(UHygieneDeathTest, KeepsTheSixCountsApart) {
    EXPECT_SUCCESS_IN_A_FRESH_PROCESS([] {
        for (int i = 0; i < 150; ++i) {
            double x = kNaN;
            EXPECT_TRUE(ZeroIfNaNOrInf(x));
        }
        EXPECT_EQ(gLines.size(), 101U);
        gLines.clear();
        double x = kInf;
        EXPECT_TRUE(ZeroIfNaNOrInf(x));
        float y = kFloatNaN;
        EXPECT_TRUE(ZeroIfNaNOrInf(y));
        y = kFloatInf;
        EXPECT_TRUE(ZeroIfNaNOrInf(y));
        x = 113596369936.0;
        EXPECT_FALSE(ZeroIfOutOfRange(x));
        y = -1e12F;
        EXPECT_FALSE(ZeroIfOutOfRange(y));
        x = kNaN; // silent, and no other kind's count moves
        EXPECT_TRUE(ZeroIfNaNOrInf(x));
        x = -kInf;
        EXPECT_TRUE(ZeroIfNaNOrInf(x));
        EXPECT_EQ(gLines, (std::vector<std::string>{
                              Line(0, "bool ZeroIfNaNOrInf(T &) [T = double]",
                                   "Inf encountered - zeroing.  value: inf"),
                              Line(0, "bool ZeroIfNaNOrInf(T &) [T = float]",
                                   "NaN encountered - zeroing.  value: nan"),
                              Line(0, "bool ZeroIfNaNOrInf(T &) [T = float]",
                                   "Inf encountered - zeroing.  value: inf"),
                              Line(0, "bool ZeroIfOutOfRange(T &) [T = double]",
                                   "RangeErr encountered - zeroing.  value: 113596369936.000000"),
                              Line(0, "bool ZeroIfOutOfRange(T &) [T = float]",
                                   "RangeErr encountered - zeroing.  value: -999999995904.000000"),
                              Line(1, "bool ZeroIfNaNOrInf(T &) [T = double]",
                                   "Inf encountered - zeroing.  value: -inf"),
                          }));
    });
}

TEST_F(UHygieneDeathTest, CountsNothingThatIsNotZeroed) {
    EXPECT_SUCCESS_IN_A_FRESH_PROCESS([] {
        for (int i = 0; i < 300; ++i) {
            double x = i;
            EXPECT_FALSE(ValidateFloat(x));
            x = kNaN;
            EXPECT_FALSE(ZeroIfOutOfRange(x));
        }
        EXPECT_TRUE(gLines.empty());
        double x = 1e200;
        EXPECT_FALSE(ValidateFloat(x));
        ASSERT_EQ(gLines.size(), 1U);
        EXPECT_EQ(gLines[0].substr(0, 4), "(0) ");
    });
}

TEST_F(UHygieneDeathTest, ZeroesAndCountsWhereMemoryIsTooShortForTheLine) {
    EXPECT_SUCCESS_IN_A_FRESH_PROCESS([] {
        int const events = 12; // more than there are allocations in a line
        for (int allocations = 0; allocations < events; ++allocations) {
            double x = kNaN;
            double y = 1e300; // a number that takes an allocation of its own
            double z = -kInf;
            TRect<double> r(1e300, 2, 3, kNaN);
            bool found[4] = {};
            {
                trammel_test::ShortMemory const memory(allocations);
                found[0] = ZeroIfNaNOrInf(x);
                found[1] = ZeroIfOutOfRange(y);
                found[2] = ValidateFloat(z);
                found[3] = ValidateRect(r);
            }
            EXPECT_TRUE(found[0]) << allocations;
            EXPECT_FALSE(found[1]) << allocations;
            EXPECT_TRUE(found[2]) << allocations;
            EXPECT_TRUE(found[3]) << allocations;
            EXPECT_TRUE(trammel_test::SameBits(x, 0.0)) << allocations;
            EXPECT_TRUE(trammel_test::SameBits(y, 0.0)) << allocations;
            EXPECT_TRUE(trammel_test::SameBits(z, 0.0)) << allocations;
            EXPECT_EQ(r, TRect<double>(0, 2, 3, 0)) << allocations;
        }
        gLines.clear();
        double x = kNaN;
        ZeroIfNaNOrInf(x);
        x = kInf;
        ZeroIfNaNOrInf(x);
        x = 2e11;
        ZeroIfOutOfRange(x);
        EXPECT_EQ(gLines, (std::vector<std::string>{
                              Line(2 * events, "bool ZeroIfNaNOrInf(T &) [T = double]",
                                   "NaN encountered - zeroing.  value: nan"),
                              Line(events, "bool ZeroIfNaNOrInf(T &) [T = double]",
                                   "Inf encountered - zeroing.  value: inf"),
                              Line(2 * events, "bool ZeroIfOutOfRange(T &) [T = double]",
                                   "RangeErr encountered - zeroing.  value: 200000000000.000000"),
                          }));
    });
}

TEST_F(UHygieneDeathTest, ValidateFloatDoesNotTryTheRangeAfterAnInfinity) {
    EXPECT_SUCCESS_IN_A_FRESH_PROCESS([] {
        double x = kInf;
        EXPECT_TRUE(ValidateFloat(x));
        EXPECT_EQ(gLines,
                  (std::vector<std::string>{Line(0, "bool ZeroIfNaNOrInf(T &) [T = double]",
                                                 "Inf encountered - zeroing.  value: inf")}));
    });
}

TEST_F(UHygieneDeathTest, ValidatePointLogsWhatItZeroesInOrder) {
    EXPECT_SUCCESS_IN_A_FRESH_PROCESS([] {
        TPoint<double> p(2e11, kNaN);
        EXPECT_TRUE(ValidatePoint(p));
        p.Set(kNaN, kInf);
        EXPECT_TRUE(ValidatePoint(p));
        EXPECT_EQ(gLines, (std::vector<std::string>{
                              Line(0, "bool ZeroIfOutOfRange(T &) [T = double]",
                                   "RangeErr encountered - zeroing.  value: 200000000000.000000"),
                              Line(0, "bool ZeroIfNaNOrInf(T &) [T = double]",
                                   "NaN encountered - zeroing.  value: nan"),
                              Line(1, "bool ZeroIfNaNOrInf(T &) [T = double]",
                                   "NaN encountered - zeroing.  value: nan"),
                          }));
    });
}

} // namespace
