// SPDX-License-Identifier: MIT

#include "Finite.h"
#include "SvgPath.h"

#include "../platform/LocaleForTests.h"
#include "PathText.h"
#include "ShortMemory.h"
#include "SvgTexts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace {

using trammel::ReadSvgPath;
using trammel::SvgPathResult;
using trammel::WriteSvgPath;
using trammel_test::AllocatedBytes;
using trammel_test::Elements;
using trammel_test::IsFinite;
using trammel_test::Path;
using trammel_test::Same;

typedef TPoint<double> Pt;

constexpr double kPi = 3.14159265358979323846;

/// Checks that the result is in order, whatever the text.
void CheckAnyText(std::string_view text) {
    SvgPathResult const result = ReadSvgPath(text);
    std::size_t points = 0;
    bool open = false;
    for (char const code : result.path.mCtls) {
        ASSERT_TRUE(open || code == kPathMove);
        open = code != kPathClose;
        points += code == kPathCurve ? 3 : code == kPathClose ? 0 : 1;
    }
    ASSERT_EQ(points, result.path.mPts.size());
    for (Pt const& p : result.path.mPts) {
        ASSERT_TRUE(IsFinite(p));
    }
    if (result.error) {
        ASSERT_LE(result.error->position, text.size());
        ASSERT_FALSE(result.error->found.empty());
        // The text before the error alone gives the same segments.
        ASSERT_TRUE(Same(ReadSvgPath(text.substr(0, result.error->position)).path, result.path));
    }
    std::string const written = WriteSvgPath(result.path);
    SvgPathResult const back = ReadSvgPath(written);
    ASSERT_FALSE(back.error);
    ASSERT_TRUE(Same(back.path, result.path)) << text << "\n" << written;
    if (!result.error && result.path.mCtls.size() > 1 &&
        text.find_first_of("AaQqTt") == text.npos && text.find_first_of("CcSs") == text.npos) {
        ASSERT_LE(written.size(), text.size()) << text << "\n" << written;
    }
}

TEST(SvgPathFuzz, RandomTexts) {
    std::mt19937 random(99);
    std::string_view const alphabet = "MmLlHhVvCcSsQqTtAaZz0123456789.-+eE, \n0011";
    for (int i = 0; i < 30000; ++i) {
        std::string text = "M";
        std::size_t const length = random() % 60;
        while (text.size() < length) {
            text += alphabet[random() % alphabet.size()];
        }
        SCOPED_TRACE(text);
        CheckAnyText(text);
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

TEST(SvgPathFuzz, MutatedTexts) {
    std::string const seeds[] = {
        "M10 10C20 20 40 20 50 10S70-10 90 10Q110 30 130 10T170 10A25 50-30 01 50-25l1e2.5Z",
        "m1.5.5-3e2 1h3v4H5V6l7 8L9 1c1 2 3 4 5 6z m1 1a1 1 0 00.5.5a3 4 5 1 1-6-7z",
        "M0 0C8 0 0 8 0 0S1 1 2 2ZC1 2 3 4 0 0Zl5 5ZZm1-1 1-1",
    };
    std::mt19937 random(123);
    for (int i = 0; i < 30000; ++i) {
        std::string text = seeds[random() % std::size(seeds)];
        for (std::uint32_t n = 1 + random() % 4; n > 0; --n) {
            std::size_t const at = random() % text.size();
            switch (random() % 4) {
            case 0:
                text.erase(at, 1 + random() % 3);
                break;
            case 1:
                text[at] = static_cast<char>(random() % 256);
                break;
            case 2:
                text.insert(at, 1, "MmLlHhVvCcSsQqTtAaZz0123456789.-+eE, "[random() % 37]);
                break;
            default:
                text.insert(at, text.substr(random() % text.size(), random() % 12));
                break;
            }
            if (text.empty()) {
                text = "M";
            }
        }
        SCOPED_TRACE(text);
        CheckAnyText(text);
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

TEST(SvgPathFuzz, ReadsNothingBeyondTheEnd) {
    // Each prefix lies in a block of its own, for the address sanitizer.
    std::string const text = "M1.5e3-2E-1a1 1 0 01.5.5\xE2\x88\x92+.5Z";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        std::vector<char> const block(text.begin(),
                                      text.begin() + static_cast<std::ptrdiff_t>(length));
        CheckAnyText(std::string_view(block.data(), block.size()));
    }
    EXPECT_TRUE(ReadSvgPath(std::string_view()).path.mCtls.empty());
}

// ------------------------------------------------------------------------------------------------
// The surroundings

TEST(SvgPath, KnowsNoLocale) {
    CommaLocale const locale;
    if (!locale.Available()) {
        GTEST_SKIP() << "no locale with a decimal comma here";
    }
    CPath const path = Path("M1.5.25l1e-3,2.5");
    EXPECT_EQ(path.mPts[0], Pt(1.5, 0.25));
    EXPECT_EQ(path.mPts[1], Pt(1.501, 2.75));
    EXPECT_EQ(WriteSvgPath(Path("M1.5.25V2.75")), "M1.5.25v2.5");
    EXPECT_TRUE(ReadSvgPath("M1,5").error == std::nullopt);
}

/// Returns the text of `count` segments of all kinds.
std::string LongText(std::size_t count) {
    std::mt19937 random(1);
    std::string text = "M0 0";
    char segment[120];
    auto const number = [&] { return static_cast<double>(random() % 100000) / 997.0; };
    for (std::size_t i = 0; i < count; ++i) {
        switch (i % 5) {
        case 0:
            std::snprintf(segment, sizeof segment, "l%.3f-%.3f", number(), number());
            break;
        case 1:
            std::snprintf(segment, sizeof segment, "C%.2f,%.2f,%.2f,%.2f,%.2f,%.2f", number(),
                          number(), number(), number(), number(), number());
            break;
        case 2:
            std::snprintf(segment, sizeof segment, "q%.4f %.4f 1 2", number(), number());
            break;
        case 3:
            std::snprintf(segment, sizeof segment, "a5 7 30 01%.3f 1", number());
            break;
        default:
            std::snprintf(segment, sizeof segment, "zm%.1f 3", number());
            break;
        }
        text += segment;
    }
    return text;
}

TEST(SvgPath, MemoryIsLinear) {
    for (std::size_t const count : {1000U, 10000U, 100000U}) {
        std::string const text = LongText(count);
        std::size_t before = AllocatedBytes();
        CPath const path = Path(text);
        std::size_t const read = AllocatedBytes() - before;
        // A vector that grows by halves or doubles takes, in all its blocks together, a few times
        // the last one. Quadratic growth would be thousands of times.
        EXPECT_LT(read, 6 * path.size() + 4096) << count;
        before = AllocatedBytes();
        std::string const written = WriteSvgPath(path);
        EXPECT_LT(AllocatedBytes() - before, 8 * written.size() + 65536) << count;
    }
}

// With millions of bytes in one token, one error or one gap, anything quadratic would not come to
// an end within this program's time.
TEST(SvgPath, LongRunsOfOneThing) {
    std::size_t const count = 1000000;
    EXPECT_EQ(Elements(Path("M1" + std::string(count, ' ') + "2")), "M 1,2");
    EXPECT_EQ(Elements(Path("M0." + std::string(count, '0') + "1 2")), "M 0,2");
    EXPECT_EQ(Elements(Path("M" + std::string(count, '0') + "1 1e-" + std::string(count, '9'))),
              "M 1,0");
    EXPECT_EQ(Elements(Path("M1" + std::string(count, '0') + "e-" + std::to_string(count) + " 2")),
              "M 1,2");
    EXPECT_EQ(Elements(Path("M1 1" + std::string(count, 'Z'))), "M 1,1 Z");
    EXPECT_EQ(ReadSvgPath("M" + std::string(count, '7') + " 1").error->position, 1U);
    EXPECT_EQ(ReadSvgPath("M1 1" + std::string(count, ',')).error->position, 5U);
    EXPECT_EQ(ReadSvgPath("M1 1" + std::string(count, 'x')).error->position, 4U);
    std::string moves;
    std::string lines = "M0 0";
    for (std::size_t i = 0; i < count / 8; ++i) {
        moves += "M1 2m3 4";
        lines += "h1v1h-1v-1Z";
    }
    EXPECT_EQ(Elements(Path(moves)), "M 4,6");
    CPath const path = Path(lines);
    EXPECT_EQ(path.mCtls.size(), count / 8 * 6);
    EXPECT_TRUE(Same(Path(WriteSvgPath(path)), path));
}

// ------------------------------------------------------------------------------------------------
// Real drawings

TEST(SvgPath, RealOutlines) {
    // A letter with a counter in quadratic curves, as font tools write them, and an icon in arcs.
    CPath const letter =
        Path("M702 563Q479 563 393.0 512.0Q307 461 307 338Q307 240 371.5 182.5Q436 125 547 125"
             "Q700 125 792.5 233.5Q885 342 885 522V563ZM1069 639V0H885V170Q822 68 728.0 19.5"
             "Q634 -29 498 -29Q326 -29 224.5 67.5Q123 164 123 326Q123 515 249.5 611.0"
             "Q376 707 627 707H885V725Q885 852 801.5 921.5Q718 991 567 991Q471 991 380.0 968.0"
             "Q289 945 205 899V1069Q306 1108 401.0 1127.0Q496 1146 586 1146Q829 1146 949.0 1020.0"
             "Q1069 894 1069 639Z");
    EXPECT_EQ(std::count(letter.mCtls.begin(), letter.mCtls.end(), kPathClose), 2);
    EXPECT_EQ(std::count(letter.mCtls.begin(), letter.mCtls.end(), kPathCurve), 6 + 14);
    EXPECT_EQ(letter.Bounds().left, 123.0);
    EXPECT_EQ(letter.Bounds().right, 1069.0);
    CPath const icon =
        Path("M12 2a10 10 0 1 0 0 20 10 10 0 1 0 0-20zm0 18a8 8 0 1 1 0-16 8 8 0 1 1 0 "
             "16zm.5-13H11v6l5.25 3.15.75-1.23-4.5-2.67z");
    EXPECT_EQ(std::count(icon.mCtls.begin(), icon.mCtls.end(), kPathClose), 3);
    EXPECT_NEAR(icon.Length(), 2 * kPi * 18 + 25.5456, 0.01);
    for (CPath const& path : {letter, icon}) {
        EXPECT_TRUE(Same(Path(WriteSvgPath(path)), path));
    }
}

/// Returns the values of all attributes named d in a file.
std::vector<std::string> PathTexts(std::filesystem::path const& file) {
    std::ifstream in(file, std::ios::binary);
    std::string const text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<std::string> found;
    for (std::size_t at = text.find("d=\""); at != text.npos; at = text.find("d=\"", at)) {
        std::size_t const begin = at + 3;
        std::size_t const end = text.find('"', begin);
        if (end == text.npos) {
            break;
        }
        if (at > 0 && std::strchr(" \t\r\n", text[at - 1]) != nullptr &&
            text.find('&', begin) > end) {
            found.push_back(text.substr(begin, end - begin));
        }
        at = end;
    }
    return found;
}

TEST(SvgPath, InstalledIcons) {
    std::size_t files = 0;
    std::size_t paths = 0;
    std::size_t bytes = 0;
    std::size_t written = 0;
    for (char const* const folder :
         {"/usr/share/icons/Adwaita", "/usr/share/icons/breeze", "/usr/share/icons/Papirus",
          "/usr/share/icons/oxygen", "/usr/share/icons/hicolor"}) {
        std::error_code error;
        std::filesystem::recursive_directory_iterator const end;
        for (std::filesystem::recursive_directory_iterator i(folder, error);
             i != end && files < 1000; i.increment(error)) {
            if (error || i->path().extension() != ".svg" || i->is_symlink()) {
                continue;
            }
            ++files;
            for (std::string const& text : PathTexts(i->path())) {
                SvgPathResult const result = ReadSvgPath(text);
                EXPECT_FALSE(result.error)
                    << i->path() << ": " << text.substr(0, 100) << ": " << result.error->Message();
                std::string const shorter = WriteSvgPath(result.path);
                EXPECT_TRUE(Same(Path(shorter), result.path)) << i->path() << ": " << text;
                ++paths;
                bytes += text.size();
                written += shorter.size();
            }
        }
    }
    if (paths == 0) {
        GTEST_SKIP()
            << "no icons in /usr/share/icons (packages adwaita-icon-theme, breeze-icon-theme)";
    }
    std::printf("%zu icons, %zu paths: %zu bytes, written again in %zu\n", files, paths, bytes,
                written);
}

} // namespace
