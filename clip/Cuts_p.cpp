// SPDX-License-Identifier: MIT

#include "Cuts_p.h"

#include "SortFew_p.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

namespace trammel_detail {

namespace {

/// Puts the cuts of one edge into their order along it.
void SortAlong(Cut* begin, Cut* end) {
    auto const before = [](Cut const& c, Cut const& d) {
        return c.along != d.along ? c.along < d.along : c.across < d.across;
    };
    // Edges that lie side by side are found in their order along an edge that crosses them, or in
    // the opposite order. Cuts at the same point may come in any order: none of them has its
    // clearance, so all become shared.
    constexpr std::ptrdiff_t kFew = 32;
    if (end - begin > kFew) {
        std::ptrdiff_t descents = 0;
        for (Cut const* i = begin + 1; i < end; ++i) {
            descents += before(*i, i[-1]) ? 1 : 0;
        }
        std::ptrdiff_t const steps = end - begin - 1;
        if (descents > steps / 2) {
            std::reverse(begin, end);
            descents = steps - descents;
        }
        if (descents > 2) {
            std::sort(begin, end, before);
            return;
        }
        // Two or three runs that are in order are merged. The cuts without a partner come after all
        // others, so they are a run of their own.
        for (Cut* i = begin; i < end;) {
            i = std::is_sorted_until(i, end, before);
            std::inplace_merge(begin, i, std::is_sorted_until(i, end, before), before);
        }
        return;
    }
    // Mostly few are out of place, so each is inserted where it belongs.
    if (before(end[-1], *begin)) {
        std::reverse(begin, end);
    }
    SortByInsertion(begin, end, before);
}

/// Finds the parts of cut edges that may meet others, see Clearances.
class UnsettledParts {
public:
    UnsettledParts(EdgeTree const& tree, SortedCuts& sorted, Clearances const& clearances,
                   Scratch* scratch)
        : mTree(tree), mSorted(sorted), mClearances(clearances), mParts(scratch) {}

    /// Chooses a cut edge for the calls below. `before` and `after` are the edges that it follows
    /// and that follow it.
    void Choose(std::size_t edge, std::size_t before, std::size_t after) {
        GridEdge const e = mTree.At(edge);
        mAxis = MajorAxis(e);
        mBegin = mAxis.Along(e.a);
        mEnd = mAxis.Along(e.b);
        // The last edge has mostly told what its end needs.
        mClearance = before == mEdge ? mEndClearance : mClearances.ForCorner(mTree.At(before), e);
        mEndClearance = mClearances.ForCorner(e, mTree.At(after));
        mLacks = IsShort(before, mClearance);
        mEndLacks = IsShort(after, mEndClearance);
        mEdge = edge;
    }
    /// Returns the axis of the edge.
    MajorAxis const& Axis() const { return mAxis; }

    /// True when no part of the edge may meet others.
    bool IsClear() const {
        if (mLacks || mEndLacks || mSorted.HasNearMiss(mEdge)) {
            return false;
        }
        bool clear = true;
        std::int64_t clearance = mClearance;
        std::int64_t at = mBegin;
        for (std::size_t i = mSorted.Begin(mEdge); i < mSorted.End(mEdge); ++i) {
            Cut const& cut = mSorted.At(i);
            clear &= cut.along - at >= std::max(clearance, cut.clearance);
            at = cut.along;
            clearance = cut.clearance;
        }
        return clear && mEnd - at >= std::max(clearance, mEndClearance);
    }

    /// Returns an element for each part of the edge until the next call: 1 if it may meet others.
    /// Cuts that lack their clearance get kShared.
    char const* Marks() {
        Cut* const firstCut = &mSorted.At(0) + mSorted.Begin(mEdge);
        Cut* const endCut = &mSorted.At(0) + mSorted.End(mEdge);
        mParts.resize(std::max(mParts.size(), mSorted.End(mEdge) - mSorted.Begin(mEdge) + 1));
        char* part = mParts.data();
        // A point that lacks its clearance affects the parts within that distance, forwards and
        // then backwards. The clearance at a corner holds for the neighbour, too. A neighbour that
        // is cut checks it in its turn.
        std::int64_t reach = std::numeric_limits<std::int64_t>::min();
        Vertex last = {mBegin, mClearance, mLacks};
        Cut* lastCut = nullptr;
        auto const finishPart = [&](std::int64_t along, std::int64_t clearance) {
            std::int64_t const gap = along - last.along;
            if (last.lacks || gap < last.clearance) {
                reach = std::max(reach, last.along + last.clearance);
                if (lastCut != nullptr) {
                    lastCut->incidence = kShared;
                }
            }
            *part++ = reach > last.along ? 1 : 0;
            last = {along, clearance, gap < clearance};
        };
        for (Cut* cut = firstCut; cut < endCut; ++cut) {
            if (cut->incidence == kSingle) {
                reach = std::max(reach, cut->along + cut->clearance);
            } else {
                finishPart(cut->along, cut->clearance);
                lastCut = cut;
            }
        }
        finishPart(mEnd, mEndClearance);
        last.lacks |= mEndLacks;
        reach = last.lacks ? last.along - mEndClearance : std::numeric_limits<std::int64_t>::max();
        for (Cut const* cut = endCut; cut-- > firstCut;) {
            if (cut->incidence != kSingle) {
                *--part |= reach < last.along ? 1 : 0;
                last.along = cut->along;
            }
            // Other shared cuts need no clearance.
            if (cut->incidence <= kShared) {
                reach = std::min(reach, cut->along - cut->clearance);
            }
        }
        *--part |= reach < last.along ? 1 : 0;
        return part;
    }

private:
    /// The vertex at which a part begins.
    struct Vertex {
        std::int64_t along;
        std::int64_t clearance;
        bool lacks;
    };

    /// True for a neighbour that is not cut, so that nothing else checks it, and is too short.
    bool IsShort(std::size_t edge, std::int64_t clearance) const {
        if (mSorted.Has(edge)) {
            return false;
        }
        GridEdge const e = mTree.At(edge);
        MajorAxis const axis(e);
        return axis.Along(e.b) - axis.Along(e.a) < clearance;
    }

    EdgeTree const& mTree;
    SortedCuts& mSorted;
    Clearances const& mClearances;
    ScratchVector<char> mParts;
    // The edge that is chosen, what its two ends need, and whether its neighbours are too short.
    std::size_t mEdge = std::numeric_limits<std::size_t>::max();
    MajorAxis mAxis{GridEdge{}};
    std::int64_t mBegin = 0; // along the axis
    std::int64_t mEnd = 0;
    std::int64_t mClearance = 0;
    std::int64_t mEndClearance = 0;
    bool mLacks = false;
    bool mEndLacks = false;
};

} // namespace

SortedCuts::SortedCuts(FoundCuts const& found, EdgeTree const& tree)
    : mCuts(found.cuts.size(), found.cuts.get_allocator()),
      mEnds(tree.Count(), 0, found.cuts.get_allocator()),
      mHas(tree.Count(), 0, found.cuts.get_allocator()) {
    ScratchVector<Cut> const& unsorted = found.cuts;
    // The caller treats this like a lack of memory.
    if (unsorted.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("SortedCuts");
    }
    for (Cut const& cut : unsorted) {
        ++mEnds[cut.edge];
        mHas[cut.edge] =
            static_cast<char>(mHas[cut.edge] | (cut.incidence == kSingle ? kNearMiss : kCut));
    }
    std::uint32_t sum = 0;
    for (std::uint32_t& end : mEnds) {
        sum += std::exchange(end, sum);
    }
    for (std::size_t i = 0; i < unsorted.size(); ++i) {
        Cut& cut = mCuts[mEnds[unsorted[i].edge]++];
        cut = unsorted[i];
        cut.edge = i < found.paired ? unsorted[i ^ 1].edge : kNoOther;
    }
    for (std::size_t edge = 0; edge < mEnds.size(); ++edge) {
        if (mEnds[edge] - Begin(edge) > 1) {
            SortAlong(mCuts.data() + Begin(edge), mCuts.data() + mEnds[edge]);
        }
    }
}

namespace {

/// Forgets what crossing a vertex is. Its number tells the edges' directions there, and a cut can
/// change the directions at its edge's ends.
void Forget(ScratchVector<Incidence>& incidences, std::size_t vertex) {
    incidences[vertex] = std::min(incidences[vertex], kShared);
}

void ForgetEndsOfCutEdges(SortedCuts const& sorted, EdgeTree const& tree,
                          ScratchVector<Incidence>& incidences) {
    for (std::size_t i = 0; i < tree.Count(); ++i) {
        if (sorted.Has(i)) {
            Forget(incidences, i);
            Forget(incidences, tree.SecondOf(i));
        }
    }
}

/// Where the vertices of new lines go. Pointers, because the marks are of type char. A store of
/// that type may change any object, so the compiler would read vectors' own pointers again after
/// each.
struct Destination {
    GridPoint* points;
    Incidence* incidences;
    char* active;
};

/// The cuts of an edge, in their order along its axis.
struct CutsOfEdge {
    Cut const* begin;
    Cut const* end;
    MajorAxis axis;
};

/// Writes the cuts of an edge no part of which may meet others from vertex `size` on. Returns the
/// end of these vertices.
std::size_t WriteClear(CutsOfEdge const& cuts, Destination out, std::size_t size) {
    for (Cut const* cut = cuts.begin; cut < cuts.end; ++cut) {
        out.points[size] = cuts.axis.Point(cut->along, cut->across);
        out.incidences[size] = cut->incidence;
        ++size;
    }
    return size;
}

/// Does the same for other edges, without near misses. Sets the marks of the edge's parts, of which
/// the first one begins before `size`, to the ones from `part` on.
std::size_t WriteMarked(CutsOfEdge const& cuts, char const* part, Destination out,
                        std::size_t size) {
    out.active[size - 1] = *part++;
    for (Cut const* cut = cuts.begin; cut < cuts.end; ++cut) {
        if (cut->incidence == kSingle) {
            continue;
        }
        GridPoint const p = cuts.axis.Point(cut->along, cut->across);
        if (p != out.points[size - 1]) {
            out.points[size] = p;
            out.incidences[size] = cut->incidence;
            ++size;
        }
        out.active[size - 1] |= *part++;
    }
    return size;
}

} // namespace

std::size_t ApplyCuts(SortedCuts& sorted, EdgeTree const& tree, Clearances const& clearances,
                      GridLines& lines, ScratchVector<Incidence>& incidences,
                      ScratchVector<char>& active, PartsOfEdges& parts) {
    ForgetEndsOfCutEdges(sorted, tree, incidences);
    std::size_t const most = lines.points.size() + sorted.Count();
    ScratchVector<GridPoint> allPoints(most, incidences.get_allocator());
    ScratchVector<Incidence> allIncidences(most, incidences.get_allocator());
    ScratchVector<Origin> allOrigins(incidences.get_allocator());
    bool const hasOrigins = !lines.origins.empty();
    allOrigins.resize(hasOrigins ? most : 0);
    auto const originate = [&](std::size_t begin, std::size_t end, std::size_t edge) {
        if (hasOrigins) {
            std::fill(allOrigins.begin() + static_cast<std::ptrdiff_t>(begin),
                      allOrigins.begin() + static_cast<std::ptrdiff_t>(end), lines.origins[edge]);
        }
    };
    active.assign(most, 0);
    UnsettledParts unsettled(tree, sorted, clearances, incidences.get_allocator().GetScratch());
    Destination const out = {allPoints.data(), allIncidences.data(), active.data()};
    std::size_t size = 0;
    std::size_t unsettledCount = 0;
    std::size_t begin = 0;
    parts.Reserve(tree.Count());
    // The lines stay as they are until the end, because the tree may read them.
    ScratchVector<std::size_t> allEnds(incidences.get_allocator());
    allEnds.reserve(lines.ends.size());
    for (std::size_t const end : lines.ends) {
        for (std::size_t i = begin; i < end; ++i) {
            out.points[size] = lines.points[i];
            out.incidences[size] = incidences[i];
            std::size_t const first = size++;
            parts.Push(first);
            if (!sorted.Has(i)) {
                originate(first, size, i);
                continue;
            }
            unsettled.Choose(i, i == begin ? end - 1 : i - 1, i + 1 == end ? begin : i + 1);
            CutsOfEdge const cuts = {&sorted.At(0) + sorted.Begin(i), &sorted.At(0) + sorted.End(i),
                                     unsettled.Axis()};
            if (unsettled.IsClear()) {
                size = WriteClear(cuts, out, size);
            } else {
                size = WriteMarked(cuts, unsettled.Marks(), out, size);
                unsettledCount +=
                    static_cast<std::size_t>(std::count(out.active + first, out.active + size, 1));
            }
            originate(first, size, i);
        }
        allEnds.push_back(size);
        begin = end;
    }
    parts.Push(size);
    allPoints.resize(size);
    allIncidences.resize(size);
    active.resize(size);
    lines.points = std::move(allPoints);
    lines.ends = std::move(allEnds);
    if (hasOrigins) {
        allOrigins.resize(size);
        lines.origins = std::move(allOrigins);
    }
    incidences = std::move(allIncidences);
    return unsettledCount;
}

namespace {

/// Puts cuts into the order of their edges, and those of each edge into their order along it.
void SortByEdge(ScratchVector<Cut>& cuts) {
    std::sort(cuts.begin(), cuts.end(), [](Cut const& c, Cut const& d) {
        return c.edge != d.edge     ? c.edge < d.edge
               : c.along != d.along ? c.along < d.along
                                    : c.across < d.across;
    });
}

/// A vertex that comes after another one.
struct NewVertex {
    std::size_t after;
    GridPoint at;
};

/// Moves the last values up and puts a value after each place of a new vertex, in place.
template <class Values, class Value>
void Spread(Values& values, ScratchVector<NewVertex> const& vertices, Value&& value) {
    std::size_t from = values.size();
    std::size_t to = from + vertices.size();
    if (to > values.capacity()) {
        values.reserve(to + to / 16);
    }
    values.resize(to);
    for (std::size_t i = vertices.size(); i-- > 0;) {
        std::size_t const next = vertices[i].after + 1;
        auto const at = [&](std::size_t k) {
            return values.begin() + static_cast<std::ptrdiff_t>(k);
        };
        std::move_backward(at(next), at(from), at(to));
        to -= from - next + 1;
        from = next;
        values[to] = value(vertices[i]);
    }
}

} // namespace

std::size_t InsertCuts(ScratchVector<Cut> cuts, Keep keep, EdgeTree const& tree, GridLines& lines,
                       ScratchVector<Incidence>& incidences, ScratchVector<char>& active) {
    SortByEdge(cuts);
    ScratchVector<NewVertex> vertices(cuts.get_allocator());
    vertices.reserve(cuts.size());
    active.assign(tree.Count() + cuts.size(), 0);
    std::size_t count = 0;
    for (std::size_t i = 0; i < cuts.size();) {
        std::size_t const edge = cuts[i].edge;
        MajorAxis const axis(tree.At(edge));
        Forget(incidences, edge);
        Forget(incidences, tree.SecondOf(edge));
        std::size_t const first = vertices.size();
        std::int64_t across = cuts[i].across;
        for (; i < cuts.size() && cuts[i].edge == edge; ++i) {
            if (keep == Keep::kMonotone && cuts[i].across < across) {
                continue;
            }
            across = cuts[i].across;
            GridPoint const p = axis.Point(cuts[i].along, across);
            if (vertices.size() == first || p != vertices.back().at) {
                vertices.emplace_back(edge, p);
            }
        }
        std::size_t const parts = vertices.size() - first + 1;
        std::fill_n(active.begin() + static_cast<std::ptrdiff_t>(edge + first), parts, 1);
        count += parts;
    }
    // The lines change from here on, and the tree may read them.
    std::size_t before = 0;
    for (std::size_t& end : lines.ends) {
        while (before < vertices.size() && vertices[before].after < end) {
            ++before;
        }
        end += before;
    }
    Spread(lines.points, vertices, [](NewVertex const& v) { return v.at; });
    Spread(incidences, vertices, [](NewVertex const&) { return kShared; });
    if (!lines.origins.empty()) {
        Spread(lines.origins, vertices, [&](NewVertex const& v) { return lines.origins[v.after]; });
    }
    active.resize(lines.points.size());
    return count;
}

} // namespace trammel_detail
