// SPDX-License-Identifier: MIT

#include "EdgeCopies_p.h"

#include <algorithm>
#include <array>
#include <utility>

namespace trammel_detail {

namespace {

/// Calls visit(i, second) for each edge, where `second` is the number of its second vertex.
template <class Visit> void ForEachEdge(GridLines const& lines, Visit&& visit) {
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        std::size_t const begin = lines.Begin(line);
        std::size_t const end = lines.End(line);
        for (std::size_t i = begin; i < end; ++i) {
            visit(i, i + 1 < end ? i + 1 : begin);
        }
    }
}

/// Returns a number that is the same for equal edges in either direction.
std::uint64_t HashOf(GridPoint a, GridPoint b) {
    auto const mix = [](GridPoint p) {
        return (static_cast<std::uint64_t>(p.x) * 0x9E3779B97F4A7C15 +
                static_cast<std::uint64_t>(p.y)) *
               0xC2B2AE3D27D4EB4F;
    };
    return (mix(a) ^ mix(b)) * 0x9E3779B97F4A7C15;
}

} // namespace

bool HasManyCopies(GridLines const& lines) {
    // Below this, the pairs of all edges cost less than other things do.
    std::size_t const kFewEdges = 512;
    std::size_t const kMany = 16;
    std::size_t const count = lines.points.size();
    if (count < kFewEdges) {
        return false;
    }
    // By the upper bits of the hash: whether an edge of the sample has them, and how many edges do.
    int const kBits = 12;
    std::array<std::uint32_t, std::size_t{1} << kBits> found{};
    auto const place = [&](std::size_t i, std::size_t second) {
        return static_cast<std::size_t>(HashOf(lines.points[i], lines.points[second]) >>
                                        (64 - kBits));
    };
    std::size_t const step = count / 256;
    ForEachEdge(lines, [&](std::size_t i, std::size_t second) {
        if (i % step == 0) {
            found[place(i, second)] = 1;
        }
    });
    ForEachEdge(lines, [&](std::size_t i, std::size_t second) {
        std::uint32_t& number = found[place(i, second)];
        number += number != 0 ? 1 : 0;
    });
    // Edges that are all different fall evenly.
    std::size_t const even = count >> kBits;
    return std::any_of(found.begin(), found.end(),
                       [&](std::uint32_t number) { return number > 4 * even + kMany; });
}

EdgeCopies::EdgeCopies(GridLines const& lines)
    : mCount(lines.points.size()), mEdges(lines.points.get_allocator()),
      mClasses(lines.points.get_allocator()) {
    mEdges.reserve(mCount);
    ForEachEdge(lines, [&](std::size_t i, std::size_t second) {
        GridPoint const a = lines.points[i];
        GridPoint const b = lines.points[second];
        bool const turned = b < a;
        mEdges.push_back({turned ? b : a, turned ? a : b, static_cast<std::uint32_t>(i),
                          static_cast<std::uint32_t>(second), turned});
    });
    std::sort(mEdges.begin(), mEdges.end(), [](Edge const& e, Edge const& f) {
        return e.low != f.low     ? e.low < f.low
               : e.high != f.high ? e.high < f.high
                                  : e.number < f.number;
    });
    for (std::size_t i = 0; i < mEdges.size();) {
        std::size_t j = i + 1;
        while (j < mEdges.size() && mEdges[j].low == mEdges[i].low &&
               mEdges[j].high == mEdges[i].high) {
            ++j;
        }
        if (j > i + 1) {
            mClasses.push_back({i, j});
        }
        i = j;
    }
}

void EdgeCopies::MarkIn(ScratchVector<char>& active) const {
    if (active.empty()) {
        active.assign(mCount, 1);
    }
    for (Class const& equal : mClasses) {
        char& first = active[mEdges[equal.begin].number];
        for (std::size_t i = equal.begin + 1; i < equal.end; ++i) {
            char& copy = active[mEdges[i].number];
            first = static_cast<char>(first | copy);
            copy = kCopy;
        }
    }
}

void EdgeCopies::ShareEnds(ScratchVector<Incidence>& incidences) const {
    for (Class const& equal : mClasses) {
        for (std::size_t i = equal.begin; i < equal.end; ++i) {
            incidences[mEdges[i].number] = kShared;
            incidences[mEdges[i].second] = kShared;
        }
    }
}

void EdgeCopies::CutCopies(ScratchVector<Cut>& cuts) const {
    // By edge: the number of the class in which it is the first, plus 1; or 0 for none.
    ScratchVector<std::uint32_t> classOf(mCount, 0, cuts.get_allocator());
    for (std::size_t i = 0; i < mClasses.size(); ++i) {
        classOf[mEdges[mClasses[i].begin].number] = static_cast<std::uint32_t>(i + 1);
    }
    std::size_t const count = cuts.size();
    for (std::size_t k = 0; k < count; ++k) {
        if (classOf[cuts[k].edge] == 0) {
            continue;
        }
        cuts[k].incidence = std::min(cuts[k].incidence, kShared);
        Class const equal = mClasses[classOf[cuts[k].edge] - 1];
        Edge const& first = mEdges[equal.begin];
        GridPoint const p = MajorAxis(first.Directed()).Point(cuts[k].along, cuts[k].across);
        MajorAxis const turnedAxis({first.Directed().b, first.Directed().a});
        for (std::size_t i = equal.begin + 1; i < equal.end; ++i) {
            Cut copy = cuts[k];
            copy.edge = mEdges[i].number;
            if (mEdges[i].turned != first.turned) {
                copy.along = turnedAxis.Along(p);
                copy.across = turnedAxis.Across(p);
            }
            cuts.push_back(copy);
        }
    }
}

} // namespace trammel_detail
