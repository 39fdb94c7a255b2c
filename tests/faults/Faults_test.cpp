// SPDX-License-Identifier: MIT

#include "Faults.h"
#include "PathObject.h"
#include "ShortMemory.h"

#include <gtest/gtest.h>

#include <pthread.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <map>
#include <new>
#include <sstream>

using namespace trammel_test;

namespace {

/// Keeps log lines about bad coordinates to itself.
class Faults : public testing::Test {
protected:
    void SetUp() override {
        mSink = SetNSLogSink([](std::string const&) {});
    }
    void TearDown() override { SetNSLogSink(mSink); }

private:
    NSLogSink mSink = nullptr;
};

/// The name of the function that a demangled symbol means, without blanks; empty for a variable.
std::string NameOf(std::string symbol) {
    if (symbol.compare(0, 4, "gpc_") == 0) {
        return symbol; // a C function
    }
    if (symbol.find(")::") != std::string::npos) {
        return ""; // a variable in a function
    }
    std::size_t const tag = symbol.find("[abi:cxx11]");
    if (tag != std::string::npos) {
        symbol.erase(tag, 11);
    }
    auto const follows = [&](std::size_t i, std::string const& word) {
        return i >= word.size() && symbol.compare(i - word.size(), word.size(), word) == 0;
    };
    int depth = 0;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < symbol.size(); ++i) {
        char const c = symbol[i];
        bool const inOperator =
            follows(i, "operator") || follows(i, "operator<") || follows(i, "operator>");
        if (c == '(' && depth == 0) {
            std::string name = symbol.substr(begin, i - begin);
            name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
            return name;
        }
        if (!inOperator && (c == '<' || c == '>')) {
            depth += c == '<' ? 1 : -1;
        } else if (!inOperator && c == ' ' && depth == 0) {
            begin = i + 1; // behind the return type of a template
        }
    }
    return "";
}

// Functions that need no row, because nothing of an application calls them while it computes.
char const* const kApart[] = {
    "trammel_detail::BlockReallocationCount", // counters and switches for tests
    "trammel_detail::FailNextAllocations",    "trammel_detail::LiveHandleCount",
    "trammel_detail::LivePathCount",          "trammel_detail::LivePathTokenCount",
    "trammel_detail::SetNextPathToken",       "trammel_detail::TakeInjectedFailure",
    "trammel_detail::UsePortableForms",
    "trammel_detail::trammel_assert_rtn", // ends the process
};

TEST_F(Faults, TableHasEveryFunction) {
    std::map<std::string, int> rows;
    for (char const* const name : kApart) {
        ++rows[name];
    }
    for (Call const& call : Calls()) {
        std::istringstream names(call.names);
        for (std::string name; names >> name;) {
            std::size_t const sign = name.rfind('=');
            bool const counted = sign != std::string::npos && sign + 1 < name.size();
            rows[counted ? name.substr(0, sign) : name] +=
                counted ? std::stoi(name.substr(sign + 1)) : 1;
        }
    }
    std::map<std::string, int> symbols;
    std::ifstream file(TRAMMEL_TEST_DATA_DIR "/symbols.txt");
    ASSERT_TRUE(file.is_open());
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        std::string name = NameOf(line);
        std::size_t const last = name.rfind("::");
        if (last != std::string::npos && rows.count(name.substr(0, last + 2)) != 0) {
            name.erase(last + 2); // a class of values has one row
        }
        if (!name.empty()) {
            ++symbols[name];
        }
    }
    for (auto const& [name, count] : symbols) {
        EXPECT_EQ(rows[name], count)
            << "calls in the table, and symbols in the library, of " << name;
    }
    for (auto const& [name, count] : rows) {
        EXPECT_EQ(symbols[name], count)
            << "symbols in the library, and calls in the table, of " << name;
    }
}

struct Live {
    long blocks = LiveBlockCount();
    long handles = trammel_detail::LiveHandleCount();
    long paths = trammel_detail::LivePathCount();
    long tokens = trammel_detail::LivePathTokenCount();
    bool operator==(Live const& other) const {
        return blocks == other.blocks && handles == other.handles && paths == other.paths &&
               tokens == other.tokens;
    }
};

struct Outcome {
    bool refused = false; ///< a request was
    bool threw = false;
    std::uint64_t before = 0;
    std::uint64_t state = 0;
    std::uint64_t result = 0;
    long leaked = 0; ///< blocks
    bool clean = false;
};

/// Runs a call while some requests are refused.
Outcome RunsShort(Call const& call, ArgumentKind kind, long granted, long failures) {
    Outcome outcome;
    Live const live;
    {
        Arguments arguments(kind);
        outcome.before = arguments.State();
        try {
            if (ShortMalloc::Works()) {
                ShortMalloc const shortage(granted, failures);
                call.run(arguments);
            } else {
                ShortMemory const shortage(granted);
                call.run(arguments);
            }
        } catch (std::bad_alloc const&) {
            outcome.threw = true;
        }
        outcome.refused = ShortMalloc::Works() ? ShortMalloc::Refused() : ShortMemory::Left() < 0;
        outcome.state = arguments.State();
        outcome.result = arguments.returned.Value();
    }
    outcome.leaked = LiveBlockCount() - live.blocks;
    outcome.clean = Live() == live;
    return outcome;
}

/// Lets the n-th allocation of a call fail, for each n; with a `part`, for ever fewer of them.
void TryEachFailure(Call const& call, ArgumentKind kind, long part) {
    constexpr long kAll = std::numeric_limits<long>::max();
    RunsShort(call, kind, kAll, 1); // makes what the process keeps
    Outcome const whole = RunsShort(call, kind, kAll, 1);
    for (long const failures : {1L, kAll}) {
        if (failures == 1 && !ShortMalloc::Works()) {
            continue; // a single failure is beyond operator new's switch
        }
        Outcome one;
        one.refused = true;
        long refusals = 0;
        for (long granted = 0; one.refused; granted += part > 0 ? 1 + granted / part : 1) {
            ASSERT_LT(granted, 10000000) << call.names;
            one = RunsShort(call, kind, granted, failures);
            refusals += one.refused ? 1 : 0;
            SCOPED_TRACE(testing::Message() << call.names << ", allocation " << granted);
            EXPECT_TRUE(one.clean) << "leaks " << one.leaked << " blocks";
            if (one.threw) {
                EXPECT_NE(call.whenShort, WhenShort::kUnchanged);
                EXPECT_TRUE(one.state == one.before || call.whenShort == WhenShort::kThrowsPart);
            } else if (call.whenShort == WhenShort::kThrows ||
                       call.whenShort == WhenShort::kThrowsPart || !one.refused) {
                EXPECT_EQ(one.state, whole.state);
                EXPECT_EQ(one.result, whole.result);
            } else if (call.whenShort == WhenShort::kUnchanged) {
                EXPECT_TRUE(one.state == one.before || one.state == whole.state);
            }
        }
        if (kind == ArgumentKind::kSmall &&
            (call.whenShort == WhenShort::kThrows || call.whenShort == WhenShort::kThrowsPart)) {
            EXPECT_GT(refusals, 0) << call.names << " needs no memory";
        }
    }
}

TEST_F(Faults, NothingLeaksAndNothingIsHalfChangedWhenAnyAllocationFails) {
    for (Call const& call : Calls()) {
        if (call.whenShort != WhenShort::kEndsProcess) {
            TryEachFailure(call, ArgumentKind::kSmall, 0);
        }
    }
}

TEST_F(Faults, ManyPointsLeakNothingWhenAnyAllocationFails) {
    for (Call const& call : Calls()) {
        if (call.whenShort != WhenShort::kEndsProcess) {
            TryEachFailure(call, ArgumentKind::kMany, ShortMalloc::Works() ? 2 : 1);
        }
    }
}

/// What `act` throws and leaves while operator new fails from its n-th request on.
template <class Act> bool ThrowsAt(long granted, Act&& act) {
    ShortMemory const shortage(granted);
    try {
        act();
    } catch (std::bad_alloc const&) {
        return true;
    }
    return false;
}

TEST_F(Faults, CuttingAPathGivesItsOutputsBackWhenTheSecondPieceHasNoMemory) {
    CPath path;
    path.MoveTo({0, 0});
    for (int i = 1; i < 100; ++i) {
        path.LineTo(TPoint<double>(i, i % 2));
    }
    int throws = 0;
    for (long granted = 0; granted < 40; ++granted) {
        CPath before;
        CPath behind;
        before.MoveTo({5, 5}); // a move at the end gives way to the piece's own
        if (ThrowsAt(granted, [&] { path.RemoveTRange(0.4, 0.6, before, behind); })) {
            ++throws;
            EXPECT_EQ(before.mCtls, std::vector<char>{kPathMove});
            EXPECT_EQ(before.mPts, std::vector<TPoint<double>>{TPoint<double>(5, 5)});
            EXPECT_EQ(before.CurrentPoint(), TPoint<double>(5, 5));
            EXPECT_TRUE(behind.mCtls.empty());
        }
    }
    EXPECT_GT(throws, 5);
}

TEST_F(Faults, AreaOfARegionIsNoSmallerWhenMemoryIsShort) {
    CPath path;
    path.MoveTo({0, 0}).LineTo({9, 0}).LineTo({9, 9}).ClosePath();
    for (long granted = 0; granted < 100; ++granted) {
        double area = 40.5;
        if (ShortMalloc::Works()) {
            ShortMalloc const shortage(granted, 1);
            try {
                area = trammel::RegionArea(path, trammel::FillRule::kNonZero, 0).area;
            } catch (std::bad_alloc const&) {
                continue;
            }
        }
        EXPECT_EQ(area, 40.5) << granted;
    }
}

TEST_F(Faults, DescriptionOfAPolygonIsWholeOrNoneWhenMemoryIsShort) {
    CFPolygonRef polygon = FRectToFPoly(TRect<double>(1, 2, 3, 4));
    std::string const whole = PolyDescription(polygon);
    int throws = 0;
    for (long granted = 0; granted < 10; ++granted) {
        std::string text;
        bool const threw = ThrowsAt(granted, [&] { text = PolyDescription(polygon); });
        throws += threw ? 1 : 0;
        EXPECT_EQ(text, threw ? "" : whole) << granted;
    }
    EXPECT_GT(throws, 0);
    KillFPoly(polygon);
}

TEST_F(Faults, ProcessEndsWithStatusOneWhenTheClipperHasNoMemory) {
    if (!ShortMalloc::Works()) {
        GTEST_SKIP() << "malloc cannot be made to fail here";
    }
    for (Call const& call : Calls()) {
        if (call.whenShort != WhenShort::kEndsProcess) {
            continue;
        }
        bool done = false;
        for (long granted = 0; !done; ++granted) {
            ASSERT_LT(granted, 1000);
            pid_t const child = fork();
            if (child == 0) {
                close(2); // the line on standard error has a test of its own
                Arguments arguments(ArgumentKind::kSmall);
                ShortMalloc const shortage(granted);
                try {
                    call.run(arguments);
                } catch (std::bad_alloc const&) {
                    _exit(1);
                }
                _exit(0);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            ASSERT_TRUE(WIFEXITED(status));
            done = WEXITSTATUS(status) == 0;
            EXPECT_TRUE(done || WEXITSTATUS(status) == 1);
        }
    }
}

#if defined(__OPTIMIZE__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

/// How many bytes of its stack a thread takes for `run`.
std::size_t StackOf(void (*run)(Arguments&), Arguments& arguments) {
    constexpr std::size_t kSize = std::size_t{512} << 10U;
    constexpr unsigned char kPaint = 0xA5;
    void* const memory =
        mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        ADD_FAILURE() << "no memory for a stack";
        return 0;
    }
    std::memset(memory, kPaint, kSize);
    pthread_attr_t attributes;
    EXPECT_EQ(pthread_attr_init(&attributes), 0);
    EXPECT_EQ(pthread_attr_setstack(&attributes, memory, kSize), 0);
    struct Work {
        void (*run)(Arguments&);
        Arguments& arguments;
    } work{run, arguments};
    auto const start = [](void* data) -> void* {
        Work& w = *static_cast<Work*>(data);
        w.run(w.arguments);
        return nullptr;
    };
    pthread_t thread;
    EXPECT_EQ(pthread_create(&thread, &attributes, start, &work), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_EQ(pthread_attr_destroy(&attributes), 0);
    auto const* const bytes = static_cast<unsigned char const*>(memory);
    std::size_t const untouched = static_cast<std::size_t>(
        std::find_if(bytes, bytes + kSize, [](unsigned char b) { return b != kPaint; }) - bytes);
    EXPECT_EQ(munmap(memory, kSize), 0);
    return kSize - untouched;
}

TEST_F(Faults, EveryFunctionFitsIntoAStackOf64KB) {
    Arguments small(ArgumentKind::kSmall);
    std::size_t const thread =
        StackOf([](Arguments&) {}, small); // what the thread takes for itself
    for (Call const& call : Calls()) {
        for (ArgumentKind const kind : kArgumentKinds) {
            Arguments first(kind);
            call.run(first); // also finds the library's functions, which takes stack
            Arguments second(kind);
            std::size_t const stack = StackOf(call.run, second) - thread;
            EXPECT_LE(stack, std::size_t{64} << 10U)
                << call.names << ", arguments of kind " << static_cast<int>(kind);
            EXPECT_EQ(second.State(), first.State()) << call.names;
            EXPECT_EQ(second.returned.Value(), first.returned.Value()) << call.names;
            if (std::getenv("TRAMMEL_SHOW_STACK") != nullptr) {
                std::printf("%zu %d %.60s\n", stack, static_cast<int>(kind), call.names);
            }
        }
    }
}

TEST_F(Faults, WalkToTheGreatestDepthFitsIntoAStackOf64KB) {
    // Never flat up to the first point, which is 32,766 levels down, and flat from there on.
    auto const walk = [](Arguments& a) {
        auto const count = [](TPoint<double> const&, void* data) {
            ++*static_cast<int*>(data);
            CBezier::mMaxError = 1e300;
            CBSpline::mMaxError = 1e300;
        };
        int points = 0;
        CBezier::mMaxError = -1.0;
        a.curve.GenerateSegment(count, &points, false, 32767);
        int ofSpline = 0;
        CBSpline::mMaxError = -1.0;
        CBSpline(a.curve.P0, a.curve.P1, a.curve.P3).GenerateSegment(count, &ofSpline, 32767);
        EXPECT_EQ(32766, points);
        EXPECT_EQ(1081, ofSpline); // deeper halves are points, which are flat
        a.Returned(points, ofSpline);
    };
    double const before = CBezier::mMaxError;
    double const beforeOfSpline = CBSpline::mMaxError;
    Arguments first(ArgumentKind::kSmall);
    walk(first);
    Arguments second(ArgumentKind::kSmall);
    EXPECT_LE(StackOf(walk, second), std::size_t{64} << 10U);
    EXPECT_EQ(second.returned.Value(), first.returned.Value());
    CBezier::mMaxError = before;
    CBSpline::mMaxError = beforeOfSpline;
}

#endif

} // namespace
