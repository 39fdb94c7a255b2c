// SPDX-License-Identifier: MIT

// The library in four threads. Each thread makes all calls of CallsOf...(): questions about objects
// that the threads share, and changes of objects of their own. What each call gives is compared
// with what it gives alone. Under ThreadSanitizer the program also ends where two threads use the
// same memory without order. script/check-threads builds it so, and finds the functions of the
// library that the program does not call.
//
//     trammel_threads [ROUNDS]

#include "Objects.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace threads {

namespace {

constexpr std::size_t kThreads = 4;

CPath Shape(Pt const& start) {
    CPath path;
    path.MoveTo(start);
    path.CurveTo(start + Pt(30, -20), start + Pt(60, 40), start + Pt(80, 5));
    path.LineTo(start + Pt(70, 60));
    path.CurveTo(start + Pt(50, 90), start + Pt(10, 30), start + Pt(-10, 50));
    path.ClosePath();
    return path;
}

CGPath* BuildDrawing(CFPolygonRef polygon) {
    CGMutablePathRef const path = CGPathCreateMutable();
    for (Pt const& p : polygon) {
        CGPathMoveToPoint(path, nullptr, static_cast<float>(p.h), static_cast<float>(p.v));
    }
    return path;
}

/// Waits until all threads are here, so that they begin together.
void Meet(std::atomic<std::size_t>& arrived, std::size_t all) {
    ++arrived;
    while (arrived < all) {
        std::this_thread::yield();
    }
}

int Run(int rounds) {
    CFPolygonRef::SetBuilPathProc(BuildDrawing);
    SetNSLogSink([](std::string const&) {});
    SetRotate(0.5);
    SetUnRotate(-0.5);
    std::vector<Calls> calls = CallsOfCurves();
    for (std::vector<Calls> const& some : {CallsOfPolygons(), CallsOfOutlines()}) {
        calls.insert(calls.end(), some.begin(), some.end());
    }
    std::vector<std::uint64_t> alone;
    for (Calls const& call : calls) {
        Objects const own;
        Digest digest;
        call.run(own, digest);
        alone.push_back(digest.Value());
    }
    std::atomic<long> wrong{0};
    for (int round = 0; round < rounds; ++round) {
        Objects const shared;
        std::atomic<std::size_t> arrived{0};
        std::vector<std::thread> workers;
        for (std::size_t k = 0; k < kThreads; ++k) {
            workers.emplace_back([&, k] {
                std::size_t const count = calls.size();
                for (std::size_t i = 0; i < count; ++i) {
                    // All at the same call in even rounds, and each at another one in odd rounds.
                    std::size_t const what =
                        (round % 2 == 0 ? i : i + k * count / kThreads) % count;
                    Meet(arrived, (i + 1) * kThreads);
                    Digest digest;
                    calls[what].run(shared, digest);
                    if (digest.Value() != alone[what]) {
                        std::fprintf(stderr, "%s: another result\n", calls[what].name);
                        ++wrong;
                    }
                }
            });
        }
        for (std::thread& worker : workers) {
            worker.join();
        }
    }
    std::printf("%zu groups of calls in %zu threads, %d rounds: %ld wrong\n", calls.size(),
                kThreads, rounds, wrong.load());
    return wrong == 0 && trammel_detail::LiveHandleCount() == 0 ? 0 : 1;
}

} // namespace

Objects::Objects()
    : path(Shape(Pt(5, 20))), other(Shape(Pt(30, 40))), area(Box(10, 10, 60, 80)), measure(path),
      exactMeasure(path), prepared(polygon), preparedOutline(path), outlines({path, other}, 0.01),
      polygons({{polygon}, {Polygon(Box(20, 20, 60, 70))}}) {
    handle.CFPolygonCreate({Pt(3, 4), Pt(80, 9), Pt(60, 70), Pt(10, 50), Pt(3, 4)});
    path.InvalBounds();
    other.InvalBounds();
    polygon.InvalBounds();
    holed.outer = {Pt(0, 0), Pt(50, 0), Pt(50, 50), Pt(0, 50)};
    holed.holes = {{Pt(10, 10), Pt(10, 20), Pt(20, 20)}};
    CGPathMoveToPoint(drawing, nullptr, 1, 2);
    CGPathAddLineToPoint(drawing, nullptr, 3, 5);
}

Objects::~Objects() {
    CFPolygonRef(handle).Dispose();
    CGPathRelease(drawing);
}

} // namespace threads

int main(int count, char** arguments) {
    return threads::Run(count > 1 ? std::atoi(arguments[1]) : 10);
}
