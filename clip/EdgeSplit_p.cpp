// SPDX-License-Identifier: MIT

#include "EdgeSplit_p.h"

#include "SampleDraws_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace trammel_detail {

namespace {

/// A direction in which positions are measured: h x + v y.
struct Direction {
    double h = 0;
    double v = 0;
    double reach = 0; ///< how far spans reach beyond their edges: the margin and the rounding

    double Of(GridPoint p) const {
        return h * static_cast<double>(p.x) + v * static_cast<double>(p.y);
    }
};

/// The positions that an edge covers.
struct Span {
    double low;
    double high;

    Span(GridEdge const& e, Direction const& direction) {
        double const a = direction.Of(e.a);
        double const b = direction.Of(e.b);
        low = std::min(a, b) - direction.reach;
        high = std::max(a, b) + direction.reach;
    }
};

/// The work of FindNearPairs().
class Splitter {
public:
    Splitter(ScratchVector<GridEdge> const& edges, ScratchVector<char> const& active,
             GridPoint margin, std::size_t budget, ScratchVector<EdgePair>& pairs)
        : mEdges(edges), mActive(active), mMargin(margin), mBudget(budget), mPairs(pairs),
          mItems(edges.get_allocator()), mParts(edges.get_allocator()),
          mLow(edges.get_allocator()) {
        for (std::size_t i = 0; i < edges.size(); ++i) {
            if (active.empty() || active[i] != kCopy) {
                mItems.push_back(static_cast<std::uint32_t>(i));
            }
        }
    }

    bool Find() {
        // The last part has the items from its beginning on. So it is taken first.
        mParts.push_back(0);
        while (!mParts.empty()) {
            std::size_t const begin = mParts.back();
            mParts.pop_back();
            std::size_t const size = mItems.size() - begin;
            Direction direction;
            double at = 0;
            if (!HasActive(begin)) {
                mItems.resize(begin);
            } else if (FindSplit(begin, direction, at)) {
                if (!Spend(size + kSamples)) {
                    return false;
                }
                Split(begin, direction, at);
            } else if (Spend(size * size / 2 + 1) && mPairs.size() / kMostPairs <= mEdges.size()) {
                PairAll(begin);
                mItems.resize(begin);
            } else {
                return false;
            }
        }
        auto const key = [](EdgePair p) {
            return static_cast<std::uint64_t>(p.first) << 32 | p.second;
        };
        std::sort(mPairs.begin(), mPairs.end(),
                  [&](EdgePair p, EdgePair q) { return key(p) < key(q); });
        mPairs.erase(std::unique(mPairs.begin(), mPairs.end(),
                                 [&](EdgePair p, EdgePair q) { return key(p) == key(q); }),
                     mPairs.end());
        return true;
    }

private:
    static constexpr std::size_t kFew = 12;       // so few edges are not worth a split
    static constexpr std::size_t kSamples = 16;   // edges that are drawn for a choice
    static constexpr std::size_t kDirections = 6; // that are tried: the axes, across four edges
    static constexpr std::size_t kMostPairs = 64; // an edge, so that the memory stays O(n)
    // A first sample may leave so much of itself on one side of its line, another one only so much.
    static constexpr std::size_t kMostAtFirst = kSamples * 7 / 8;
    static constexpr std::size_t kMostLater = kSamples * 5 / 8;
    // The rounding of a position. It is below 2^-50 of the sum of the coordinates' magnitudes.
    static constexpr double kRounding = 0x1p13;

    bool IsActive(std::uint32_t edge) const { return mActive.empty() || mActive[edge] == 1; }
    bool HasActive(std::size_t begin) const {
        return std::any_of(mItems.begin() + static_cast<std::ptrdiff_t>(begin), mItems.end(),
                           [&](std::uint32_t edge) { return IsActive(edge); });
    }
    bool Spend(std::size_t steps) {
        bool const enough = steps <= mBudget;
        mBudget -= enough ? steps : 0;
        return enough;
    }
    Direction Across(GridEdge const& e) const {
        return Along(-static_cast<double>(e.b.y - e.a.y), static_cast<double>(e.b.x - e.a.x));
    }
    Direction Along(double h, double v) const {
        double const scale = 1 / std::max(std::abs(h), std::abs(v));
        Direction direction;
        direction.h = h * scale;
        direction.v = v * scale;
        direction.reach = std::abs(direction.h) * static_cast<double>(mMargin.x) +
                          std::abs(direction.v) * static_cast<double>(mMargin.y) + kRounding;
        return direction;
    }
    /// Looks for a line that leaves few edges on both sides. False if there seems to be none.
    bool FindSplit(std::size_t begin, Direction& best, double& at) {
        std::size_t const size = mItems.size() - begin;
        if (size > kFew && ChooseSplit(begin, kMostAtFirst, best, at)) {
            return true;
        }
        // A sample can miss a good line. To hold the edges against each other costs the square of
        // their number, so the more edges there are, the more samples are worth it.
        for (std::size_t rest = size / 64; rest > kFew; rest /= 4) {
            if (ChooseSplit(begin, kMostLater, best, at)) {
                return true;
            }
        }
        return false;
    }
    /// Chooses the best line for one sample of the edges. False if it leaves more than `most` of
    /// the sample on one side.
    bool ChooseSplit(std::size_t begin, std::size_t most, Direction& best, double& at);
    /// Replaces the last items by those of two parts.
    void Split(std::size_t begin, Direction const& direction, double at);
    void PairAll(std::size_t begin);

    ScratchVector<GridEdge> const& mEdges;
    ScratchVector<char> const& mActive;
    GridPoint mMargin;
    std::size_t mBudget;
    ScratchVector<EdgePair>& mPairs;
    ScratchVector<std::uint32_t> mItems;
    ScratchVector<std::size_t> mParts; // where each begins among the items
    ScratchVector<std::uint32_t> mLow; // the items of the part below
    SampleDraws mDraws;
};

bool Splitter::ChooseSplit(std::size_t begin, std::size_t most, Direction& best, double& at) {
    std::array<GridEdge, kSamples> sample;
    std::size_t const size = mItems.size() - begin;
    for (GridEdge& e : sample) {
        e = mEdges[mItems[begin + mDraws.Below(size)]];
    }
    std::size_t least = kSamples * kSamples * 2;
    std::size_t greater = kSamples;
    for (std::size_t k = 0; k < kDirections; ++k) {
        Direction direction;
        if (k < 2) {
            direction = Along(k == 0 ? 1 : 0, k == 0 ? 0 : 1);
        } else {
            GridEdge const& e = sample[k];
            if (e.a.x == e.b.x || e.a.y == e.b.y) {
                continue;
            }
            direction = Across(e);
        }
        std::array<double, kSamples> lows;
        std::array<double, kSamples> highs;
        for (std::size_t i = 0; i < kSamples; ++i) {
            Span const span(sample[i], direction);
            lows[i] = span.low;
            highs[i] = span.high;
        }
        std::sort(lows.begin(), lows.end());
        std::sort(highs.begin(), highs.end());
        // The lines to choose from lie just above the edges' upper ends. `above` counts the edges
        // that lie wholly above such a line.
        std::size_t above = kSamples;
        for (std::size_t i = 0; i < kSamples; ++i) {
            while (above > 0 && lows[kSamples - above] <= highs[i]) {
                --above;
            }
            std::size_t const low = kSamples - above;
            std::size_t const high = kSamples - 1 - i;
            std::size_t const cost = low * low + high * high;
            if (cost < least) {
                least = cost;
                greater = std::max(low, high);
                best = direction;
                at = highs[i];
            }
        }
    }
    return greater <= most;
}

void Splitter::Split(std::size_t begin, Direction const& direction, double at) {
    mLow.clear();
    std::size_t high = begin;
    for (std::size_t i = begin; i < mItems.size(); ++i) {
        std::uint32_t const item = mItems[i];
        Span const span(mEdges[item], direction);
        if (span.low <= at) {
            mLow.push_back(item);
        }
        mItems[high] = item;
        high += span.high > at ? 1 : 0;
    }
    mItems.resize(high);
    mParts.push_back(begin);
    mParts.push_back(high);
    mItems.insert(mItems.end(), mLow.begin(), mLow.end());
}

void Splitter::PairAll(std::size_t begin) {
    NearTest const nearTest(mMargin);
    for (std::size_t i = begin; i < mItems.size(); ++i) {
        GridEdge const& e = mEdges[mItems[i]];
        bool const active = IsActive(mItems[i]);
        GridBox const box = BoxOf(e).Widened(2 * mMargin.x, 2 * mMargin.y);
        for (std::size_t j = i + 1; j < mItems.size(); ++j) {
            GridEdge const& f = mEdges[mItems[j]];
            if (!active && !IsActive(mItems[j])) {
                continue;
            }
            if (box.Meets(BoxOf(f)) && nearTest.MayBeNear(e, f)) {
                mPairs.emplace_back(std::min(mItems[i], mItems[j]), std::max(mItems[i], mItems[j]));
            }
        }
    }
}

} // namespace

bool FindNearPairs(ScratchVector<GridEdge> const& edges, ScratchVector<char> const& active,
                   GridPoint margin, std::size_t budget, ScratchVector<EdgePair>& pairs) {
    return Splitter(edges, active, margin, budget, pairs).Find();
}

} // namespace trammel_detail
