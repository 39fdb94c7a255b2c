// SPDX-License-Identifier: MIT
#include "ClipperLines_p.h"

#include "ClipperPlaces_p.h"
#include "ClipperPredicates_p.h"

#include <utility>

namespace trammel_detail {

void GridLines::Close(Operands operand) {
    std::size_t begin = ends.empty() ? 0 : ends.back();
    // Whether b can go between a and c: it repeats one of them, or the line turns back there.
    auto const encloses = [](GridPoint a, GridPoint b, GridPoint c) {
        return a != b && b != c && (Cross(b, a, c) != 0 || !SameDirection(b, a, c));
    };
    std::size_t size = begin;
    for (std::size_t i = begin; i < points.size(); ++i) {
        GridPoint const p = points[i];
        while (size >= begin + 2 && !encloses(points[size - 2], points[size - 1], p)) {
            --size;
        }
        if (size == begin || points[size - 1] != p) {
            points[size++] = p;
        }
    }
    // The same across the seam.
    for (bool again = true; again && size - begin >= 3;) {
        again = false;
        if (!encloses(points[size - 2], points[size - 1], points[begin])) {
            --size;
            again = true;
        } else if (!encloses(points[size - 1], points[begin], points[begin + 1])) {
            ++begin;
            again = true;
        }
    }
    std::size_t const start = ends.empty() ? 0 : ends.back();
    if (size - begin < 3) {
        points.resize(start);
        return;
    }
    if (begin != start) {
        std::move(points.begin() + static_cast<std::ptrdiff_t>(begin),
                  points.begin() + static_cast<std::ptrdiff_t>(size),
                  points.begin() + static_cast<std::ptrdiff_t>(start));
        size -= begin - start;
    }
    points.resize(size);
    ends.push_back(size);
    operands.push_back(operand);
}

EdgeTree::EdgeTree(GridLines const& lines, std::vector<char> fresh, GridPoint margin, Order order)
    : mLines(lines), mFreshEdges(std::move(fresh)), mMargin(margin), mOrder(order) {
    mEdges.reserve(lines.points.size());
    mFirst.assign(lines.points.size(), 0);
    std::size_t const longest = order == Order::kLines ? kLongestChain : kLongestSortedChain;
    mChains.reserve(lines.points.size() / 2);
    Level level;
    level.reserve(lines.points.size() / 2);
    // Ends the chain from edge `chain` to before edge `end`, whose last vertex is `last`.
    auto const endChain = [&](std::size_t chain, std::size_t end, GridPoint last) {
        bool isFresh = false;
        for (std::size_t i = chain; i < end && !isFresh; ++i) {
            isFresh = IsFresh(i);
        }
        mChains.push_back({chain, end});
        level.push_back({Widened(BoxOf(lines.points[chain], last)), isFresh});
    };
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        std::size_t const begin = lines.Begin(line);
        std::size_t const end = lines.End(line);
        mFirst[begin] = 1;
        std::size_t chain = begin;
        int directionX = 0;
        int directionY = 0;
        for (std::size_t i = begin; i < end; ++i) {
            GridPoint const a = lines.points[i];
            GridPoint const b = lines.points[i + 1 == end ? begin : i + 1];
            int const x = (b.x > a.x) - (b.x < a.x);
            int const y = (b.y > a.y) - (b.y < a.y);
            if (x * directionX < 0 || y * directionY < 0 || i - chain == longest) {
                endChain(chain, i, a);
                chain = i;
                directionX = 0;
                directionY = 0;
            }
            directionX = x != 0 ? x : directionX;
            directionY = y != 0 ? y : directionY;
            mEdges.push_back({a, b});
        }
        endChain(chain, end, lines.points[begin]);
    }
    if (order == Order::kPlaces) {
        SortChains(level);
    }
    while (level.size() > 1) {
        Level above((level.size() + kFan - 1) / kFan);
        for (std::size_t i = 0; i < level.size(); ++i) {
            above[i / kFan].Include(level[i]);
        }
        mLevels.push_back(std::move(level));
        level = std::move(above);
    }
    mLevels.push_back(std::move(level));
}

void EdgeTree::SortChains(Level& level) {
    std::vector<std::pair<std::uint64_t, std::size_t>> order;
    order.reserve(level.size());
    for (std::size_t i = 0; i < level.size(); ++i) {
        GridBox const& box = level[i].box;
        order.emplace_back(
            PlaceOf({box.x0 + (box.x1 - box.x0) / 2, box.y0 + (box.y1 - box.y0) / 2}), i);
    }
    std::sort(order.begin(), order.end());
    std::vector<Chain> chains;
    Level nodes;
    chains.reserve(level.size());
    nodes.reserve(level.size());
    for (auto const& [place, i] : order) {
        chains.push_back(mChains[i]);
        nodes.push_back(level[i]);
    }
    mChains = std::move(chains);
    level = std::move(nodes);
}

bool EdgeTree::Follow(std::size_t i, std::size_t j) const {
    if (j == i + 1) {
        return mFirst[j] == 0;
    }
    // The last edge of a line and its first.
    return mFirst[i] != 0 && (j + 1 == mEdges.size() || mFirst[j + 1] != 0) &&
           mLines.End(LineOf(i)) == j + 1;
}

Operands EdgeTree::InsideWestOf(std::size_t edge) const {
    // Counts the edges that a ray to the west crosses. It starts at p, moved up along the edge by
    // an infinitely small amount: edges that end at p.y are below it, those that begin there reach
    // it.
    bool const up = mEdges[edge].a.y < mEdges[edge].b.y;
    GridPoint const p = up ? mEdges[edge].a : mEdges[edge].b;
    GridPoint const q = up ? mEdges[edge].b : mEdges[edge].a;
    auto const above = [p](GridPoint r) { return r.y > p.y; };
    Operands inside = 0;
    std::vector<std::pair<std::size_t, std::size_t>> open{{mLevels.size() - 1, 0}};
    while (!open.empty()) {
        auto const [level, node] = open.back();
        open.pop_back();
        GridBox const& box = mLevels[level][node].box;
        if (p.y < box.y0 || p.y >= box.y1 || p.x < box.x0) {
            continue;
        }
        if (box.x1 < p.x) {
            // All west of p. Whole lines are crossed an even number of times, so the beginning of
            // the first line's part and the end of the last one's tell the parity.
            std::size_t first = node;
            std::size_t last = node + 1;
            for (std::size_t i = 0; i < level; ++i) {
                first *= kFan;
                last *= kFan;
            }
            first = mChains[first].begin;
            last = mChains[std::min(last, mChains.size()) - 1].end - 1;
            for (auto const& [end, at] :
                 {std::pair(first, mEdges[first].a), std::pair(last, mEdges[last].b)}) {
                std::size_t const line = LineOf(end);
                if (above(at) != above(mLines.points[mLines.Begin(line)])) {
                    inside ^= mLines.operands[line];
                }
            }
            continue;
        }
        if (level > 0) {
            for (std::size_t i = FirstOf(level, node); i < EndOf(level, node); ++i) {
                open.emplace_back(level - 1, i);
            }
            continue;
        }
        for (std::size_t i = FirstOf(0, node); i < EndOf(0, node); ++i) {
            GridEdge const& e = mEdges[i];
            if (i == edge || above(e.a) == above(e.b)) {
                continue;
            }
            GridPoint const low = above(e.a) ? e.b : e.a;
            GridPoint const high = above(e.a) ? e.a : e.b;
            int side = SideOf(low, high, p);
            if (side == 0) {
                // Through p: the slopes decide.
                side = Sign(static_cast<Int128>(high.x - low.x) * (q.y - p.y) -
                            static_cast<Int128>(high.y - low.y) * (q.x - p.x));
            }
            if (side < 0) {
                inside ^= mLines.operands[LineOf(i)];
            }
        }
    }
    return inside;
}

} // namespace trammel_detail
