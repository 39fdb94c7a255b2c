// SPDX-License-Identifier: MIT

#include "Log.h"

#include "LocaleForTests.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

std::vector<std::string> gLines;

void Collect(std::string const& line) { gLines.push_back(line); }

/// Collects the log's lines.
class Log : public ::testing::Test {
protected:
    void SetUp() override {
        gLines.clear();
        ASSERT_EQ(SetNSLogSink(Collect), nullptr);
    }
    void TearDown() override { SetNSLogSink(nullptr); }
};

/// Standard error replaced by a socket that keeps each write apart.
class StandardErrorWrites {
public:
    StandardErrorWrites() {
        int ends[2] = {-1, -1};
        mGood = socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) == 0;
        mReadEnd = ends[0];
        mFormer = dup(STDERR_FILENO);
        mGood = mGood && dup2(ends[1], STDERR_FILENO) >= 0;
        close(ends[1]);
    }
    ~StandardErrorWrites() {
        dup2(mFormer, STDERR_FILENO);
        close(mFormer);
        close(mReadEnd);
    }
    StandardErrorWrites(StandardErrorWrites const&) = delete;
    StandardErrorWrites& operator=(StandardErrorWrites const&) = delete;

    bool Good() const { return mGood; }

    /// Returns the text written so far, one string for each write.
    std::vector<std::string> Take() const {
        std::vector<std::string> writes;
        std::string packet(100000, '\0');
        for (;;) {
            ssize_t const got = recv(mReadEnd, packet.data(), packet.size(), MSG_DONTWAIT);
            if (got <= 0) {
                return writes;
            }
            writes.push_back(packet.substr(0, static_cast<std::size_t>(got)));
        }
    }

private:
    bool mGood = false;
    int mReadEnd = -1;
    int mFormer = -1;
};

TEST_F(Log, GivesTheSinkTheLineWithoutPrefixAndEnd) {
    NSLog("%s has %d points, %f long", "outline", 12, 2.5);
    NSLog("100%%");
    NSLog("%s", "%d is no format here");
    ASSERT_EQ(gLines.size(), 3U);
    EXPECT_EQ(gLines[0], "outline has 12 points, 2.500000 long");
    EXPECT_EQ(gLines[1], "100%");
    EXPECT_EQ(gLines[2], "%d is no format here");
}

TEST_F(Log, WritesOneLineACall) {
    NSLog("ends with a break\n");
    NSLog("two\nparts\r\n\n");
    NSLog("%s", "");
    NSLog("\n");
    ASSERT_EQ(gLines.size(), 4U);
    EXPECT_EQ(gLines[0], "ends with a break");
    EXPECT_EQ(gLines[1], "two parts");
    EXPECT_EQ(gLines[2], "");
    EXPECT_EQ(gLines[3], "");
}

TEST_F(Log, DoesNotCutLongLines) {
    for (std::size_t const length : {254U, 255U, 256U, 257U, 1023U, 1024U, 1025U, 300000U}) {
        std::string const text(length, 'x');
        gLines.clear();
        NSLog("%s|%d", text.c_str(), 7);
        ASSERT_EQ(gLines.size(), 1U);
        EXPECT_EQ(gLines[0], text + "|7") << length;
    }
    gLines.clear();
    NSLog("%f", 1e308);
    ASSERT_EQ(gLines.size(), 1U);
    EXPECT_EQ(gLines[0].size(), 309U + 7U);
}

TEST_F(Log, ReturnsTheSinkBefore) {
    NSLogSink const other = [](std::string const&) {};
    EXPECT_EQ(SetNSLogSink(other), &Collect);
    NSLog("unseen");
    EXPECT_TRUE(gLines.empty());
    EXPECT_EQ(SetNSLogSink(nullptr), other);
    EXPECT_EQ(SetNSLogSink(Collect), nullptr);
    NSLog("seen");
    EXPECT_EQ(gLines.size(), 1U);
}

TEST_F(Log, DoesNotDependOnTheLocaleAndLeavesItAsItWas) {
    CommaLocale const locale;
    if (!locale.Available()) {
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    }
    NSLog("%f %g", 1.5, -0.25);
    ASSERT_EQ(gLines.size(), 1U);
    EXPECT_EQ(gLines[0], "1.500000 -0.25");
    char text[8];
    std::snprintf(text, sizeof text, "%.1f", 1.5);
    EXPECT_STREQ(text, "1,5");
}

TEST_F(Log, LeavesTheThreadsLocaleAsItWas) {
    CommaLocale const locale;
    if (!locale.Available()) {
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    }
    locale_t const own = duplocale(uselocale(locale_t{}));
    ASSERT_NE(own, locale_t{});
    locale_t const former = uselocale(own);
    NSLog("%f", 1.5);
    EXPECT_EQ(uselocale(locale_t{}), own);
    uselocale(former);
    freelocale(own);
    ASSERT_EQ(gLines.size(), 1U);
    EXPECT_EQ(gLines[0], "1.500000");
}

TEST_F(Log, KeepsErrnoAndReadsItForPercentM) {
    std::string const format = "%m %d"; // no literal: ISO C++ does not know %m
    errno = ENOENT;
    NSLog(format.c_str(), 1);
    EXPECT_EQ(errno, ENOENT);
    ASSERT_EQ(gLines.size(), 1U);
    EXPECT_EQ(gLines[0], "No such file or directory 1");
    SetNSLogSink([](std::string const&) { errno = EBADF; });
    NSLog("x");
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(Log, DropsWhatCannotBeFormatted) {
    NSLog(nullptr); // NOLINT(clang-analyzer-core.NonNullParamChecker)
    EXPECT_TRUE(gLines.empty());
    // No multibyte text in the classic locale has this wide character.
    NSLog("%ls", L"\x20AC");
    EXPECT_TRUE(gLines.empty());
    NSLog("next");
    EXPECT_EQ(gLines.size(), 1U);
}

TEST_F(Log, SwallowsTheSinksExceptions) {
    SetNSLogSink([](std::string const&) { throw std::runtime_error("sink"); });
    EXPECT_NO_THROW(NSLog("x"));
    SetNSLogSink(Collect);
    NSLog("y");
    EXPECT_EQ(gLines.size(), 1U); // the failed call left nothing behind that would bypass the sink
}

/// The pattern of a time stamp.
std::string WithDigitsAs9(std::string text) {
    for (char& c : text) {
        c = c >= '0' && c <= '9' ? '9' : c;
    }
    return text;
}

TEST(StandardErrorLog, GetsOneWriteWithTimeStampAndLineEnd) {
    StandardErrorWrites const standardError;
    ASSERT_TRUE(standardError.Good());
    ASSERT_EQ(SetNSLogSink(nullptr), nullptr);
    std::string const text(20000, 'x');
    NSLog("first %d", 1);
    NSLog("%s\n", text.c_str());
    std::vector<std::string> const writes = standardError.Take();
    ASSERT_EQ(writes.size(), 2U);
    EXPECT_EQ(WithDigitsAs9(writes[0].substr(0, 24)), "9999-99-99 99:99:99.999 ") << writes[0];
    EXPECT_EQ(writes[0].substr(24), "first 1\n");
    EXPECT_EQ(writes[1].substr(24), text + "\n");
}

TEST(StandardErrorLog, ReadsTheCallersErrnoForPercentM) {
    StandardErrorWrites const standardError;
    ASSERT_TRUE(standardError.Good());
    std::string const format = "%m %d"; // no literal: ISO C++ does not know %m
    errno = ENOENT;
    NSLog(format.c_str(), 1);
    EXPECT_EQ(errno, ENOENT);
    std::vector<std::string> const writes = standardError.Take();
    ASSERT_EQ(writes.size(), 1U);
    EXPECT_EQ(writes[0].substr(24), "No such file or directory 1\n");
}

TEST(StandardErrorLog, GetsWhatTheSinkItselfLogs) {
    StandardErrorWrites const standardError;
    ASSERT_TRUE(standardError.Good());
    SetNSLogSink([](std::string const& line) { NSLog("from the sink: %s", line.c_str()); });
    NSLog("a");
    NSLog("b");
    SetNSLogSink(nullptr);
    std::vector<std::string> const writes = standardError.Take();
    ASSERT_EQ(writes.size(), 2U);
    EXPECT_EQ(writes[0].substr(24), "from the sink: a\n");
    EXPECT_EQ(writes[1].substr(24), "from the sink: b\n");
}

TEST(StandardErrorLog, KeepsLinesOfThreadsApart) {
    StandardErrorWrites const standardError;
    ASSERT_TRUE(standardError.Good());
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 20; ++i) {
                NSLog("%s", std::string(300, static_cast<char>('a' + t)).c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::vector<std::string> const writes = standardError.Take();
    ASSERT_EQ(writes.size(), 80U);
    for (std::string const& write : writes) {
        ASSERT_EQ(write.size(), 24U + 300U + 1U);
        EXPECT_EQ(write.substr(24), std::string(300, write[24]) + "\n");
    }
}

TEST(StandardErrorLog, SurvivesAClosedStandardError) {
    int const former = dup(STDERR_FILENO);
    close(STDERR_FILENO);
    errno = 0;
    NSLog("nobody reads this");
    EXPECT_EQ(errno, 0);
    dup2(former, STDERR_FILENO);
    close(former);
}

} // namespace
