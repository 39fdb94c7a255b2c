// SPDX-License-Identifier: MIT

// The clipper's C interface: its records, their memory, and shortage of memory.
#include "ClipChecks.h"

#include "ShortMemory.h"
#include "gpc.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace clip_test {
namespace {

using plain::Clip;
using plain::kOperations;

long PeakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(ClipRecords, TakesNullPointersAndNegativeCountsForNothing) {
    gpc_polygon square = plain::ToRecord({Rectangle(0, 0, 1, 1)});
    gpc_vertex_list lists[] = {{-5, nullptr}, {3, nullptr}, {0, nullptr}};
    for (gpc_polygon odd : {gpc_polygon{0, nullptr, nullptr}, gpc_polygon{-3, nullptr, nullptr},
                            gpc_polygon{2, nullptr, nullptr}, gpc_polygon{3, nullptr, lists}}) {
        for (gpc_op const operation : kOperations) {
            gpc_polygon result{-1, nullptr, nullptr};
            gpc_polygon_clip(operation, &square, &odd, &result);
            EXPECT_EQ(result.num_contours, operation == GPC_INT ? 0 : 1);
            EXPECT_EQ(result.hole == nullptr, result.num_contours == 0);
            EXPECT_EQ(result.contour == nullptr, result.num_contours == 0);
            gpc_free_polygon(&result);
        }
    }
    gpc_free_polygon(&square);
}

TEST(ClipRecords, IgnoresTheHoleFlagsOfOperands) {
    Polygon const rings{Rectangle(0, 0, 10, 10), Rectangle(2, 2, 8, 8)};
    for (int flags = 0; flags < 4; ++flags) {
        gpc_polygon subject = plain::ToRecord(rings);
        subject.hole[0] = flags & 1;
        subject.hole[1] = (flags & 2) * 1000;
        gpc_polygon clip{0, nullptr, nullptr};
        gpc_polygon result{0, nullptr, nullptr};
        gpc_polygon_clip(GPC_UNION, &subject, &clip, &result);
        EXPECT_EQ(Area(plain::FromRecord(result)), 64);
        gpc_free_polygon(&subject);
        gpc_free_polygon(&result);
    }
}

TEST(ClipRecords, GivesNoContoursForOtherOperationCodes) {
    gpc_polygon subject = plain::ToRecord({Rectangle(0, 0, 2, 2)});
    gpc_polygon clip = plain::ToRecord({Rectangle(1, 1, 3, 3)});
    for (unsigned const code : {4U, 5U, 100U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        gpc_polygon result{-1, nullptr, nullptr};
        gpc_polygon_clip(static_cast<gpc_op>(code), &subject, &clip, &result);
        EXPECT_EQ(result.num_contours, 0);
        EXPECT_EQ(result.hole, nullptr);
        EXPECT_EQ(result.contour, nullptr);
    }
    gpc_free_polygon(&subject);
    gpc_free_polygon(&clip);
}

TEST(ClipRecords, MayWriteTheResultOverAnOperand) {
    Polygon const a{Rectangle(0, 0, 10, 10)};
    Polygon const b{Rectangle(5, 5, 15, 15)};
    for (gpc_op const operation : kOperations) {
        Region const fresh = Clip(operation, a, b);
        for (int which = 0; which < 3; ++which) {
            gpc_polygon first = plain::ToRecord(a);
            gpc_polygon second = plain::ToRecord(b);
            gpc_polygon const oldFirst = first;
            gpc_polygon const oldSecond = second;
            gpc_polygon* const operand = which == 2 ? &first : &second;
            gpc_polygon* const result = which == 1 ? &second : &first;
            gpc_polygon_clip(operation, &first, operand, result);
            if (which < 2) {
                ExpectIdentical(plain::FromRecord(*result), fresh);
            } else {
                ExpectIdentical(plain::FromRecord(*result), Clip(operation, a, a));
            }
            gpc_polygon old = result == &first ? oldFirst : oldSecond;
            gpc_free_polygon(&old);
            gpc_free_polygon(&first);
            gpc_free_polygon(&second);
        }
    }
}

TEST(ClipRecords, LeavesAnEmptyRecordAfterReleasing) {
    gpc_polygon subject = plain::ToRecord({Rectangle(0, 0, 2, 2), {}, Rectangle(3, 0, 4, 4)});
    gpc_free_polygon(&subject);
    EXPECT_EQ(subject.num_contours, 0);
    EXPECT_EQ(subject.hole, nullptr);
    EXPECT_EQ(subject.contour, nullptr);
    gpc_free_polygon(&subject);
    EXPECT_EQ(subject.num_contours, 0);
}

TEST(ClipRecords, ClipsAMillionVerticesInMemoryThatGrowsWithThem) {
    Dice dice(1);
    [[maybe_unused]] long growth[2] = {0, 0};
    std::size_t const sizes[2] = {125000, 500000};
    for (int i = 0; i < 2; ++i) {
        std::size_t const n = sizes[i];
        double const noise = 1.0 / static_cast<double>(n);
        Polygon const a{Star(n, 0, 0, 1, noise, dice)};
        Polygon const b{Star(n, 0.5, 0.3, 1, noise, dice)};
        gpc_polygon subject = plain::ToRecord(a);
        gpc_polygon clip = plain::ToRecord(b);
        long const before = PeakKilobytes();
        gpc_polygon result{0, nullptr, nullptr};
        gpc_polygon_clip(GPC_UNION, &subject, &clip, &result);
        growth[i] = PeakKilobytes() - before;
        Region const region = plain::FromRecord(result);
        ASSERT_EQ(region.contours.size(), 1U);
        EXPECT_GT(region.contours[0].size(), n);
        // Two discs whose centres are d apart.
        double const d = std::hypot(0.5, 0.3);
        double const lens = 2 * std::acos(d / 2) - d / 2 * std::sqrt(4 - d * d);
        EXPECT_NEAR(Area(region), 2 * kPi - lens, 1e-5);
        gpc_free_polygon(&subject);
        gpc_free_polygon(&clip);
        gpc_free_polygon(&result);
    }
#ifndef TRAMMEL_CLIP_SANITIZED
    // Four times the vertices take about four times the memory, or twice that where a block has
    // just doubled.
    EXPECT_LT(growth[1], 8 * std::max(growth[0], 1000L));
    // That is less than a kilobyte for each vertex of the operands.
    EXPECT_LT(growth[1], 1000 * 1000);
#endif
}

#ifndef TRAMMEL_CLIP_SANITIZED
/// Clips with the memory that the process has and at most `megabytes` more, and ends the process.
[[noreturn]] void ClipWithin(rlim_t megabytes, gpc_polygon subject, gpc_polygon clip) {
    long pages = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr || std::fscanf(file, "%ld", &pages) != 1) {
        std::exit(3);
    }
    std::fclose(file);
    rlim_t const bytes = static_cast<rlim_t>(pages) * 4096 + megabytes * 1024 * 1024;
    rlimit const limit{bytes, bytes};
    setrlimit(RLIMIT_AS, &limit);
    gpc_polygon result{0, nullptr, nullptr};
    gpc_polygon_clip(GPC_UNION, &subject, &clip, &result);
    std::exit(4);
}
#endif

TEST(ClipRecordsDeathTest, EndsTheProcessWhenMemoryRunsOut) {
#ifdef TRAMMEL_CLIP_SANITIZED
    GTEST_SKIP() << "the address sanitizer needs the memory that this test takes away";
#else
    Dice dice(2);
    gpc_polygon subject = plain::ToRecord({Star(200000, 0, 0, 1, 0, dice)});
    gpc_polygon clip = plain::ToRecord({Star(200000, 1, 0, 1, 0, dice)});
    for (rlim_t const megabytes : {0, 4, 8, 16, 32}) {
        EXPECT_EXIT(ClipWithin(megabytes, subject, clip), ::testing::ExitedWithCode(1),
                    "^gpc malloc failure: [a-z ]+\n$")
            << megabytes;
    }
    gpc_free_polygon(&subject);
    gpc_free_polygon(&clip);
#endif
}

/// Clips while malloc grants so many requests, then ends the process with status 0.
[[noreturn]] void ClipWithRequests(long requests, gpc_polygon subject, gpc_polygon clip) {
    gpc_polygon result{0, nullptr, nullptr};
    {
        trammel_test::ShortMalloc const shortage(requests);
        gpc_polygon_clip(GPC_XOR, &subject, &clip, &result);
    }
    std::_Exit(0);
}

TEST(ClipRecordsDeathTest, TellsWhatTheMemoryWasFor) {
    if (!trammel_test::ShortMalloc::Works()) {
        GTEST_SKIP() << "malloc is not ours to deny";
    }
    // The work on small operands needs no memory. The result has two contours.
    gpc_polygon subject = plain::ToRecord({Rectangle(0, 0, 10, 10)});
    gpc_polygon clip = plain::ToRecord({Rectangle(5, 5, 15, 15)});
    char const* const messages[] = {
        "^gpc malloc failure: hole flags\n$", "^gpc malloc failure: contours\n$",
        "^gpc malloc failure: vertices\n$", "^gpc malloc failure: vertices\n$"};
    for (long requests = 0; requests < 4; ++requests) {
        EXPECT_EXIT(ClipWithRequests(requests, subject, clip), ::testing::ExitedWithCode(1),
                    messages[requests]);
    }
    EXPECT_EXIT(ClipWithRequests(4, subject, clip), ::testing::ExitedWithCode(0), "^$");
    gpc_free_polygon(&subject);
    gpc_free_polygon(&clip);

    // The work on large operands needs memory, too.
    Dice dice(2);
    gpc_polygon large = plain::ToRecord({Star(5000, 0, 0, 1, 0, dice)});
    EXPECT_EXIT(ClipWithRequests(0, large, large), ::testing::ExitedWithCode(1),
                "^gpc malloc failure: sweep\n$");
    gpc_free_polygon(&large);
}

} // namespace
} // namespace clip_test
