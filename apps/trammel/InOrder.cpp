// SPDX-License-Identifier: MIT

#include "InOrder.h"

#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace tool {

namespace {

/// So many pieces for each thread wait for their turns, or are in work.
constexpr std::size_t kAhead = 4;

/// What the threads share.
class Queue {
public:
    Queue(std::function<Work()> const& next, std::size_t most) : mNext(next), mMost(most) {}

    /// Does pieces of work until there are no more.
    void Serve() {
        for (;;) {
            Work work;
            std::size_t place = 0;
            if (!Begin(work, place)) {
                return;
            }
            Turn turn;
            try {
                turn = work();
            } catch (...) {
                turn = [error = std::current_exception()] { std::rethrow_exception(error); };
            }
            std::lock_guard<std::mutex> const lock(mMutex);
            mTurns.emplace(place, std::move(turn));
            mReady.notify_one();
        }
    }

    /// Returns the next turn when it has come; an empty one at the end.
    Turn Take() {
        std::unique_lock<std::mutex> lock(mMutex);
        mReady.wait(lock,
                    [this] { return mTurns.count(mTaken) != 0 || (mEnded && mTaken == mBegun); });
        auto const found = mTurns.find(mTaken);
        if (found == mTurns.end()) {
            return {};
        }
        Turn turn = std::move(found->second);
        mTurns.erase(found);
        ++mTaken;
        mRoom.notify_one();
        return turn;
    }

    void Stop() {
        std::lock_guard<std::mutex> const lock(mMutex);
        mEnded = true;
        mRoom.notify_all();
    }

private:
    /// Gets the next piece of work and its place in the order. False at the end.
    bool Begin(Work& work, std::size_t& place) {
        std::lock_guard<std::mutex> const alone(mNextMutex);
        {
            std::unique_lock<std::mutex> lock(mMutex);
            mRoom.wait(lock, [this] { return mEnded || mBegun - mTaken < mMost; });
            if (mEnded) {
                return false;
            }
        }
        bool last = false;
        try {
            work = mNext(); // may wait for input
            last = !work;
        } catch (...) {
            work = [error = std::current_exception()]() -> Turn { std::rethrow_exception(error); };
            last = true;
        }
        std::lock_guard<std::mutex> const lock(mMutex);
        mEnded = mEnded || last;
        if (!work) {
            mReady.notify_one();
            return false;
        }
        place = mBegun++;
        return true;
    }

    std::function<Work()> const& mNext;
    std::size_t mMost;
    std::mutex mNextMutex; ///< held while `mNext` runs
    std::mutex mMutex;     ///< held for all below
    std::condition_variable mRoom;
    std::condition_variable mReady;
    std::map<std::size_t, Turn> mTurns; ///< turns that wait, by place
    std::size_t mBegun = 0;
    std::size_t mTaken = 0;
    bool mEnded = false;
};

/// Threads that serve a queue. The destructor waits for them.
class Servants {
public:
    Servants(Queue& queue, std::size_t count) : mQueue(queue) {
        try {
            for (std::size_t i = 0; i < count; ++i) {
                mThreads.emplace_back([&queue] { queue.Serve(); });
            }
        } catch (std::system_error const&) { // as many as there are
        }
    }
    ~Servants() {
        mQueue.Stop();
        for (std::thread& thread : mThreads) {
            thread.join();
        }
    }
    Servants(Servants const&) = delete;
    Servants& operator=(Servants const&) = delete;

    bool None() const { return mThreads.empty(); }

private:
    Queue& mQueue;
    std::vector<std::thread> mThreads;
};

} // namespace

void RunInOrder(std::size_t threads, std::function<Work()> const& next) {
    if (threads > 1) {
        Queue queue(next, kAhead * threads);
        Servants const servants(queue, threads);
        if (!servants.None()) {
            while (Turn const turn = queue.Take()) {
                turn();
            }
            return;
        }
    }
    while (Work const work = next()) {
        work()();
    }
}

} // namespace tool
