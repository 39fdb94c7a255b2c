// SPDX-License-Identifier: MIT

#include "EdgeTree_p.h"

#include "MortonOrder_p.h"
#include "Predicates_p.h"
#include "SampleDraws_p.h"

#include <cmath>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace trammel_detail {

/// The cells of a coarse grid that active edges come near.
class EdgeTree::ActiveCells {
public:
    void Mark(GridBox const& box) {
        for (int row = CellOf(box.lowY); row <= CellOf(box.highY); ++row) {
            mRows[static_cast<std::size_t>(row)] |= ColumnsOf(box);
        }
    }
    /// True when a marked cell and the box have a point in common.
    bool Meets(GridBox const& box) const {
        std::uint64_t met = 0;
        for (int row = CellOf(box.lowY); row <= CellOf(box.highY); ++row) {
            met |= mRows[static_cast<std::size_t>(row)] & ColumnsOf(box);
        }
        return met != 0;
    }

private:
    static int CellOf(std::int64_t v) {
        std::int64_t const most = (std::int64_t{1} << 60) - 1;
        return static_cast<int>((std::clamp(v, -most - 1, most) >> 55) + 32);
    }
    static std::uint64_t ColumnsOf(GridBox const& box) {
        std::uint64_t const all = ~std::uint64_t{0};
        return (all << CellOf(box.lowX)) & (all >> (63 - CellOf(box.highX)));
    }

    std::array<std::uint64_t, 64> mRows{}; // a bit a cell
};

EdgeTree::EdgeTree(GridLines const& lines, ScratchVector<char> active)
    : mLines(lines), mActiveEdges(std::move(active)), mMargin{0, 0}, mNearTest({0, 0}),
      mOrder(Order::kLines), mEdges(lines.points.get_allocator()),
      mFirst(lines.points.get_allocator()), mChains(lines.points.get_allocator()),
      mNodes(lines.points.get_allocator()), mSpans(lines.points.get_allocator()),
      mPairs(lines.points.get_allocator()), mChainOf(lines.points.get_allocator()) {
    if (Count() > kMostEdges) {
        throw std::length_error("EdgeTree");
    }
    mIsSparse = true;
    mFirst.assign(Count(), 0);
    for (std::size_t line = 0; line < mLines.Count(); ++line) {
        mFirst[mLines.Begin(line)] = 1;
    }
}

EdgeTree::EdgeTree(GridLines const& lines, ScratchVector<char> active, GridPoint margin,
                   Order order)
    : EdgeTree(lines, std::move(active)) {
    mMargin = margin;
    mNearTest = NearTest(margin);
    mOrder = order;
    mIsSparse = false;
    bool const allActive = mActiveEdges.empty();
    bool const few = Count() <= kFewEdges;
    std::size_t countActive = Count();
    if (!allActive) {
        countActive =
            static_cast<std::size_t>(std::count(mActiveEdges.begin(), mActiveEdges.end(), 1));
        mIsSparse = countActive <= Count() / 8;
        if (few || countActive <= kFewActive) {
            return;
        }
    }
    if (Count() == 0) {
        return;
    }
    if (mIsSparse) {
        AddSparseChains();
    } else {
        FillEdges();
        AddChains(order, !few);
    }
    if (few) {
        return;
    }
    Slant slant;
    Sample const sample = mNodes.size() > kFewEdges ? ChooseSlant(slant) : Sample();
    if (allActive && Count() <= kMostEntangled &&
        (mNodes.size() > kFewEdges ? AreEntangled(sample) : AreFewEntangled())) {
        mNodes.clear();
        return;
    }
    SplitWhereWorthwhile(sample, countActive);
    if (order == Order::kMorton) {
        SortChains();
    }
    if (slant.reach != 0) {
        mSpans.reserve(mNodes.size() + mNodes.size() / 2);
        for (std::size_t chain = 0; chain < mChains.size(); ++chain) {
            mSpans.push_back(SpanOf(chain, slant));
        }
    }
    AddLevels();
}

void EdgeTree::FillEdges() {
    mEdges.resize(Count());
    for (std::size_t line = 0; line < mLines.Count(); ++line) {
        std::size_t const begin = mLines.Begin(line);
        std::size_t const end = mLines.End(line);
        for (std::size_t i = begin; i + 1 < end; ++i) {
            mEdges[i] = {mLines.points[i], mLines.points[i + 1]};
        }
        mEdges[end - 1] = {mLines.points[end - 1], mLines.points[begin]};
    }
}

void EdgeTree::AddChains(Order order, bool withBoxes) {
    std::size_t const longest = order == Order::kLines ? kLongestChain : kLongestSortedChain;
    mChains.reserve(Count() / 2);
    mNodes.reserve(withBoxes ? Count() : 0);
    for (std::size_t line = 0; line < mLines.Count(); ++line) {
        std::size_t const end = mLines.End(line);
        for (std::size_t i = mLines.Begin(line); i < end;) {
            if (IsCopy(i)) {
                ++i;
                continue;
            }
            std::size_t const chain = i;
            // Where the chain has gone so far, as bits: 1 east, 2 west, 4 up, 8 down.
            unsigned directions = 0;
            bool isActive = false;
            for (; i < end && i - chain < longest; ++i) {
                auto const [a, b] = mEdges[i];
                unsigned const all = directions | (b.x > a.x ? 1U : 0U) | (b.x < a.x ? 2U : 0U) |
                                     (b.y > a.y ? 4U : 0U) | (b.y < a.y ? 8U : 0U);
                if ((all & (all >> 1) & 5U) != 0 || (i > chain && IsCopy(i))) {
                    break;
                }
                directions = all;
                isActive = isActive || IsActive(i);
            }
            mChains.emplace_back(static_cast<std::uint32_t>(chain), static_cast<std::uint32_t>(i));
            if (withBoxes) {
                mNodes.emplace_back(Widened(BoxOf(mEdges[chain].a, mEdges[i - 1].b)), isActive);
            }
        }
    }
}

/// Adds a chain for each run of edges that active ones may come near.
void EdgeTree::AddSparseChains() {
    ActiveCells cells;
    for (std::size_t i = NextActive(0); i < Count(); i = NextActive(i + 1)) {
        cells.Mark(Widened(Widened(BoxOf(At(i)))));
    }
    ForRuns([&](std::size_t begin, std::size_t end, GridPoint, GridBox const& box) {
        if (cells.Meets(box)) {
            mChains.emplace_back(static_cast<std::uint32_t>(begin),
                                 static_cast<std::uint32_t>(end));
            bool const isActive =
                std::memchr(mActiveEdges.data() + begin, 1, end - begin) != nullptr;
            mNodes.emplace_back(Widened(box), isActive);
        }
    });
}

EdgeTree::Slant EdgeTree::SlantAcross(GridEdge const& e) const {
    double const h = static_cast<double>(e.b.x - e.a.x);
    double const v = static_cast<double>(e.b.y - e.a.y);
    double const scale = kSlantUnits / std::max(std::abs(h), std::abs(v));
    Slant slant;
    slant.h = static_cast<std::int64_t>(-v * scale);
    slant.v = static_cast<std::int64_t>(h * scale);
    // Of() rounds coordinates down, and the boxes are wider than the edges by the margin.
    slant.reach = std::abs(slant.h) * ((mMargin.x >> kUnitBits) + 2) +
                  std::abs(slant.v) * ((mMargin.y >> kUnitBits) + 2);
    return slant;
}

EdgeTree::Span EdgeTree::SpanOf(std::size_t chain, Slant const& slant) const {
    std::int64_t const first = slant.Of(At(mChains[chain].begin).a);
    Span span = {first, first};
    for (std::size_t i = mChains[chain].begin; i < mChains[chain].end; ++i) {
        std::int64_t const at = slant.Of(At(i).b);
        span.Include({at, at});
    }
    return {span.low - slant.reach, span.high + slant.reach};
}

/// True when edges of two chains may come near each other.
bool EdgeTree::AreNear(std::size_t k, std::size_t l) const {
    for (std::size_t i = mChains[k].begin; i < mChains[k].end; ++i) {
        GridEdge const e = At(i);
        GridBox const box = Widened(Widened(BoxOf(e)));
        for (std::size_t j = mChains[l].begin; j < mChains[l].end; ++j) {
            GridEdge const f = At(j);
            if (box.Meets(BoxOf(f)) && mNearTest.MayBeNear(e, f)) {
                return true;
            }
        }
    }
    return false;
}

/// Estimates how many steps for each chain a walk takes on the levels above the chains. The unit is
/// the step that holds two chains against each other. In spirals and nested squares these levels
/// cost much, as the boxes of a few chains all meet.
double EdgeTree::OthersAbove() const {
    constexpr std::size_t kSamples = 64;
    constexpr std::size_t kMostSamples = 2048;
    constexpr std::size_t kWorthwhile = 4;
    // A look at one child costs so much less.
    constexpr double kLook = 0.1;
    double others = 0;
    SampleDraws draws;
    for (std::size_t const size : {kFan, kFan * kFan}) {
        std::size_t const groups = mNodes.size() / size;
        if (groups < 2 * kFewEdges) {
            break;
        }
        auto const boxOf = [&](std::size_t group) {
            GridBox box;
            for (std::size_t i = 0; i < size; ++i) {
                box.Include(mNodes[group * size + i].box);
            }
            return box;
        };
        std::size_t const samples = std::clamp(groups / 16, kSamples, kMostSamples);
        std::size_t meeting = 0;
        for (std::size_t i = 0; i < samples; ++i) {
            std::size_t const k = draws.Below(groups);
            std::size_t const l = draws.Below(groups);
            meeting += (k + 1 < l || l + 1 < k) && boxOf(k).Meets(boxOf(l)) ? 1 : 0;
        }
        if (meeting < kWorthwhile) {
            break;
        }
        // Each of these pairs leads to looks at the pairs of their children.
        double const pairs = static_cast<double>(groups) / 2 * static_cast<double>(meeting) /
                             static_cast<double>(samples);
        others += kLook * kFan * kFan * pairs / static_cast<double>(size);
    }
    return others;
}

/// Lists the near pairs if most pairs of chains that the tree cannot tell apart are not near.
void EdgeTree::SplitWhereWorthwhile(Sample const& sample, std::size_t activeCount) {
    // Where each chain is held in vain against more than this many, that costs more than the
    // splits.
    double const kMany = 48;
    if (sample.apart * 4 < sample.meeting * 3 || sample.apart == 0 || Count() < kFewToSplit) {
        return; // where many pairs are near indeed, it is they that cost most
    }
    double const others = static_cast<double>(mNodes.size()) * static_cast<double>(sample.apart) /
                              static_cast<double>(sample.drawn) +
                          OthersAbove();
    if (others < kMany) {
        return;
    }
    double const pairs = others * static_cast<double>(activeCount) / 2;
    if (mEdges.empty()) {
        FillEdges();
    }
    if (FindNearPairs(mEdges, mActiveEdges, mMargin, static_cast<std::size_t>(pairs), mPairs)) {
        mChainOf.resize(Count());
        for (std::size_t chain = 0; chain < mChains.size(); ++chain) {
            for (std::size_t i = mChains[chain].begin; i < mChains[chain].end; ++i) {
                mChainOf[i] = static_cast<std::uint32_t>(chain);
            }
        }
    } else {
        mPairs.clear();
    }
}

/// True when a sample tells that it takes longer to walk through the tree than to hold all pairs of
/// boxes against each other. The walk takes as long as some such pairs for each edge, and for each
/// pair that meets.
bool EdgeTree::AreEntangled(Sample const& sample) const {
    std::size_t const pairs = Count() * Count() / 2;
    std::size_t const perEdge = 16;
    std::size_t const perMeeting = 16;
    return sample.drawn * pairs <
           sample.drawn * perEdge * Count() + perMeeting * sample.meeting * pairs;
}

/// True when more than a quarter of a sample of pairs of chains meet.
bool EdgeTree::AreFewEntangled() const {
    std::size_t const count = mNodes.size();
    std::size_t drawn = 0;
    std::size_t meeting = 0;
    for (std::size_t const step : {std::size_t{2}, std::size_t{5}, std::size_t{11}}) {
        for (std::size_t i = 0; i + step < count; i += 3) {
            ++drawn;
            meeting += mNodes[i].box.Meets(mNodes[i + step].box) ? 1 : 0;
        }
    }
    return meeting > drawn / 4;
}

/// Looks for a slant that tells chains apart although their boxes meet, and sets it if there is
/// one. Returns a sample of the pairs that this slant leaves.
EdgeTree::Sample EdgeTree::ChooseSlant(Slant& best) const {
    // Of the pairs drawn, those of chains that follow each other always meet and do not count.
    constexpr std::size_t kSamples = 64;
    constexpr std::size_t kMostSamples = 2048;
    constexpr std::size_t kWorthwhile = 4;
    SampleDraws draws;
    std::array<std::pair<std::size_t, std::size_t>, kSamples> meeting;
    std::size_t count = 0;
    std::size_t const samples = std::clamp(mNodes.size() / 16, kSamples, kMostSamples);
    std::size_t drawn = 0;
    for (; drawn < samples && count < meeting.size(); ++drawn) {
        std::size_t const i = draws.Below(mNodes.size());
        std::size_t const j = draws.Below(mNodes.size());
        if ((i + 1 < j || j + 1 < i) && mNodes[i].box.Meets(mNodes[j].box)) {
            meeting[count++] = {i, j};
        }
    }
    Sample sample;
    sample.drawn = drawn;
    if (count < kWorthwhile) {
        return sample;
    }
    // Of the directions across some of the edges, the one that tells most pairs apart is best.
    std::size_t least = count;
    for (std::size_t k = 0; k < count; k += (count + 7) / 8) {
        GridEdge const e = At(mChains[meeting[k].first].begin);
        if (e.a.x == e.b.x || e.a.y == e.b.y) {
            continue; // the boxes are as good across these
        }
        Slant const slant = SlantAcross(e);
        std::size_t const still = static_cast<std::size_t>(
            std::count_if(meeting.begin(), meeting.begin() + static_cast<std::ptrdiff_t>(count),
                          [&](std::pair<std::size_t, std::size_t> const& pair) {
                              return SpanOf(pair.first, slant).Meets(SpanOf(pair.second, slant));
                          }));
        if (still <= count / 2 && still < least) {
            least = still;
            best = slant;
        }
    }
    sample.meeting = least;
    for (std::size_t k = 0; k < count; ++k) {
        auto const [i, j] = meeting[k];
        bool const meets = best.reach == 0 || SpanOf(i, best).Meets(SpanOf(j, best));
        sample.apart += meets && !AreNear(i, j) ? 1 : 0;
    }
    return sample;
}

void EdgeTree::AddLevels() {
    mLevels[1] = mNodes.size();
    while (SizeOf(mTop) > kMostAtTop) {
        std::size_t const begin = mLevels[mTop];
        std::size_t const end = mLevels[mTop + 1];
        for (std::size_t i = begin; i < end; i += kFan) {
            std::size_t const last = std::min(i + kFan, end);
            Node above = mNodes[i];
            for (std::size_t k = i + 1; k < last; ++k) {
                above.Include(mNodes[k]);
            }
            mNodes.push_back(above);
            if (!mSpans.empty()) {
                Span across = mSpans[i];
                for (std::size_t k = i + 1; k < last; ++k) {
                    across.Include(mSpans[k]);
                }
                mSpans.push_back(across);
            }
        }
        ++mTop;
        mLevels[mTop + 1] = mNodes.size();
    }
}

void EdgeTree::SortChains() {
    ScratchVector<std::pair<std::uint64_t, std::size_t>> order(mNodes.get_allocator());
    order.reserve(mNodes.size());
    for (std::size_t i = 0; i < mNodes.size(); ++i) {
        GridBox const& box = mNodes[i].box;
        order.emplace_back(MortonCode({box.lowX + (box.highX - box.lowX) / 2,
                                       box.lowY + (box.highY - box.lowY) / 2}),
                           i);
    }
    std::sort(order.begin(), order.end());
    ScratchVector<Chain> chains(mNodes.get_allocator());
    ScratchVector<Node> nodes(mNodes.get_allocator());
    chains.reserve(order.size());
    nodes.reserve(order.size() + order.size() / 2);
    for (auto const& [place, i] : order) {
        chains.push_back(mChains[i]);
        nodes.push_back(mNodes[i]);
    }
    mChains = std::move(chains);
    mNodes = std::move(nodes);
}

namespace {

/// A ray to the west from the lower end p of an edge, moved up along the edge by an infinitely
/// small amount. So edges that end at p.y are below the ray, and edges that begin there reach it.
class Ray {
public:
    explicit Ray(GridEdge const& e)
        : mP(e.a.y < e.b.y ? e.a : e.b), mQ(e.a.y < e.b.y ? e.b : e.a) {}

    GridPoint Start() const { return mP; }
    bool IsBelow(GridPoint r) const { return r.y > mP.y; }
    /// True when the ray crosses another edge, one end of which is below it and one is not.
    bool Crosses(GridEdge const& e) const {
        GridPoint const low = IsBelow(e.a) ? e.b : e.a;
        GridPoint const high = IsBelow(e.a) ? e.a : e.b;
        if (low.x < mP.x && high.x < mP.x) {
            return true;
        }
        if (low.x > mP.x && high.x > mP.x) {
            return false;
        }
        int side = SideOf(low, high, mP);
        if (side == 0) {
            // The edge goes through p, so the slopes decide.
            side = Sign(static_cast<Int128>(high.x - low.x) * (mQ.y - mP.y) -
                        static_cast<Int128>(high.y - low.y) * (mQ.x - mP.x));
        }
        return side < 0;
    }

private:
    GridPoint mP;
    GridPoint mQ;
};

} // namespace

/// Calls cross(line, step) for crossings of a ray, see RayCrossing. Returns the number of boxes
/// that it looks at.
template <class Cross> std::size_t EdgeTree::CastWest(std::size_t edge, Cross&& cross) const {
    Ray const ray(mEdges[edge]);
    GridPoint const p = ray.Start();
    Stack open;
    std::size_t steps = 0;
    auto const walk = [&] {
        while (!open.Empty()) {
            auto const [level, node, unused] = open.Pop();
            static_cast<void>(unused);
            GridBox const& box = NodesOf(level)[node].box;
            ++steps;
            if (p.y < box.lowY || p.y >= box.highY || p.x < box.lowX) {
                continue;
            }
            if (box.highX < p.x) {
                // The whole node is west of p. The crossings of whole lines cancel. Therefore it
                // matters where the node's first line is entered and its last line is left.
                std::size_t first = node;
                std::size_t last = node + 1;
                for (std::size_t i = 0; i < level; ++i) {
                    first *= kFan;
                    last *= kFan;
                }
                first = mChains[first].begin;
                last = mChains[std::min(last, mChains.size()) - 1].end - 1;
                for (auto const& [end, at, sign] : {std::tuple(first, mEdges[first].a, 1),
                                                    std::tuple(last, mEdges[last].b, -1)}) {
                    std::size_t const line = LineOf(end);
                    bool const below = ray.IsBelow(at);
                    if (below != ray.IsBelow(mLines.points[mLines.Begin(line)])) {
                        cross(line, below ? sign : -sign);
                    }
                }
                continue;
            }
            if (level > 0) {
                for (std::size_t i = FirstOf(level, node); i < EndOf(level, node); ++i) {
                    open.Push(level - 1, i, 0);
                }
                continue;
            }
            for (std::size_t i = FirstOf(0, node); i < EndOf(0, node); ++i) {
                GridEdge const& e = mEdges[i];
                bool const below = ray.IsBelow(e.a);
                if (i != edge && below != ray.IsBelow(e.b) && ray.Crosses(e)) {
                    cross(LineOf(i), below ? 1 : -1);
                }
            }
        }
    };
    for (std::size_t i = 0; i < SizeOf(mTop); ++i) {
        open.Push(mTop, i, 0);
        walk();
    }
    return steps;
}

Operands EdgeTree::InsideWestOf(std::size_t edge, std::size_t& steps) const {
    Operands inside = 0;
    steps += CastWest(edge, [&](std::size_t line, int) { inside ^= mLines.operands[line]; });
    return inside;
}

std::size_t EdgeTree::CrossingsWestOf(std::size_t edge,
                                      ScratchVector<RayCrossing>& crossings) const {
    return CastWest(edge, [&](std::size_t line, int step) { crossings.push_back({line, step}); });
}

namespace {

/// Calls cross(line, step) for crossings of a ray by a pass over all edges, see RayCrossing.
template <class Cross> void CastWest(GridLines const& lines, std::size_t edge, Cross&& cross) {
    auto const found = std::upper_bound(lines.ends.begin(), lines.ends.end(), edge);
    std::size_t const first = found == lines.ends.begin() ? 0 : found[-1];
    Ray const ray({lines.points[edge], lines.points[edge + 1 == *found ? first : edge + 1]});
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        std::size_t const end = lines.End(line);
        // The edge to each vertex.
        std::size_t i = end - 1;
        bool below = ray.IsBelow(lines.points[i]);
        for (std::size_t next = lines.Begin(line); next < end; ++next) {
            bool const nextBelow = ray.IsBelow(lines.points[next]);
            if (nextBelow != below && i != edge &&
                ray.Crosses({lines.points[i], lines.points[next]})) {
                cross(line, below ? 1 : -1);
            }
            below = nextBelow;
            i = next;
        }
    }
}

} // namespace

Operands InsideWestOf(GridLines const& lines, std::size_t edge) {
    Operands inside = 0;
    CastWest(lines, edge, [&](std::size_t line, int) { inside ^= lines.operands[line]; });
    return inside;
}

void CrossingsWestOf(GridLines const& lines, std::size_t edge,
                     ScratchVector<RayCrossing>& crossings) {
    CastWest(lines, edge, [&](std::size_t line, int step) { crossings.push_back({line, step}); });
}

} // namespace trammel_detail
