// SPDX-License-Identifier: MIT

#include "Linker_p.h"

#include "MortonOrder_p.h"
#include "Predicates_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace trammel_detail {

namespace {

/// The number of a line, an edge, an arc or a wheel, of each of which there are no more than
/// EdgeTree::kMostEdges.
typedef std::uint32_t Number;

Number const kNone = std::numeric_limits<Number>::max();

/// Edges of a line that follow each other, from one shared vertex to the next; or a whole line
/// without any.
struct Arc {
    Number line;
    Number first;    // its first edge
    Number count;    // of edges
    Number next;     // the arc that begins where this one ends
    Number previous; // the arc that ends where this one begins
    Number other; // the arc of the other edge, if two edges cross where this one begins; or kNone
    bool closed;
    Operands operands;     // that it separates its two sides in: 0 once it has cancelled
    Operands left = 0;     // that the points to its left lie in
    bool labelled = false; // whether that is known
    bool followed = false; // whether it was followed both ways to label what goes on from it
    bool bounds = false;   // whether it is on the boundary of the region
};

/// The end of an arc: 2 * the arc's number, + 1 at its last vertex.
typedef Number ArcEnd;

/// The end at which an arc that is entered at one end is left.
ArcEnd OtherEnd(ArcEnd end) { return end ^ 1; }

/// A spoke of the wheel around a shared vertex: an arc's end, and the next vertex on the arc.
struct Spoke {
    GridPoint hub;
    GridPoint tip;
    ArcEnd end;
};

/// Whether spoke s comes before t, turning counterclockwise from east around their common hub.
bool TurnsFirst(Spoke const& s, Spoke const& t) {
    auto const lower = [](Spoke const& u) {
        return u.tip.y < u.hub.y || (u.tip.y == u.hub.y && u.tip.x < u.hub.x);
    };
    if (lower(s) != lower(t)) {
        return lower(t);
    }
    Int128 const cross = Cross(s.hub, s.tip, t.tip);
    if (cross != 0) {
        return cross > 0;
    }
    // Equal edges.
    return s.tip != t.tip ? s.tip < t.tip : s.end < t.end;
}

/// Brings the spokes of each wheel together, in each counterclockwise.
void SortByHub(ScratchVector<Spoke>& spokes) {
    auto const before = [](Spoke const& s, Spoke const& t) {
        return s.hub != t.hub ? s.hub < t.hub : TurnsFirst(s, t);
    };
    std::size_t const kFew = 64;
    if (spokes.size() <= kFew) {
        std::sort(spokes.begin(), spokes.end(), before);
        return;
    }
    // Into buckets by their place, a wheel or two in each if they are spread evenly; then each
    // bucket is sorted.
    int bits = 1;
    while (spokes.size() >> bits > 4 && bits < kPlaceBits) {
        ++bits;
    }
    auto const bucketOf = [bits](Spoke const& s) {
        return static_cast<std::size_t>(PlaceOf(s.hub) >> (kPlaceBits - bits));
    };
    ScratchVector<std::size_t> ends(std::size_t{1} << bits, 0, spokes.get_allocator());
    for (Spoke const& s : spokes) {
        ++ends[bucketOf(s)];
    }
    std::size_t sum = 0;
    for (std::size_t& end : ends) {
        sum += std::exchange(end, sum);
    }
    ScratchVector<Spoke> sorted(spokes.size(), spokes.get_allocator());
    for (Spoke const& s : spokes) {
        sorted[ends[bucketOf(s)]++] = s;
    }
    auto begin = sorted.begin();
    for (std::size_t const size : ends) {
        auto const end = sorted.begin() + static_cast<std::ptrdiff_t>(size);
        std::sort(begin, end, before);
        begin = end;
    }
    spokes = std::move(sorted);
}

/// The direction of a line that does not cross itself, by the turn at its lowest vertex.
bool IsCounterclockwise(GridLines const& lines, std::size_t line) {
    std::size_t const begin = lines.Begin(line);
    std::size_t const end = lines.End(line);
    std::size_t i = begin;
    for (std::size_t k = begin + 1; k < end; ++k) {
        i = lines.points[k] < lines.points[i] ? k : i;
    }
    std::size_t const before = i == begin ? end - 1 : i - 1;
    std::size_t const after = i + 1 == end ? begin : i + 1;
    return SideOf(lines.points[before], lines.points[i], lines.points[after]) > 0;
}

/// The work of LinkContours().
class Linker {
public:
    Linker(GridLines const& lines, std::optional<EdgeTree> const& tree,
           ScratchVector<Meeting> const& meetings, RegionOf const& region)
        : mTree(tree), mLines(lines), mRegion(region),
          mScratch(meetings.get_allocator().GetScratch()), mArcs(mScratch), mWheelOf(mScratch),
          mNext(mScratch), mDone(mScratch), mOpen(mScratch) {
        MakeArcs(meetings);
        mWheelOf.resize(2 * mArcs.size());
        mNext.resize(2 * mArcs.size());
        MakePlainWheels(meetings);
        MakeWheels();
    }

    /// Finds the arcs on the boundary.
    void FindBoundary();

    ResolvedContours Contours();

private:
    void MakeArcs(ScratchVector<Meeting> const& meetings);
    /// The wheels of crossings of two edges.
    void MakePlainWheels(ScratchVector<Meeting> const& meetings);
    /// The others; arcs that are equal are made one.
    void MakeWheels();
    /// Makes spokes, counterclockwise, a wheel.
    void AddWheel(ArcEnd const* begin, ArcEnd const* end);
    void MergeEqualArcs(ScratchVector<Spoke> const& spokes);
    Operands InsideWestOf(Number edge);
    /// Labels what hangs together with an arc that is labelled.
    void LabelFrom(Number first);
    void LabelAlong(Number arc);
    void LabelAround(ArcEnd from);
    /// The number of an arc's vertex number k.
    Number VertexOf(Arc const& arc, Number k) const {
        Number const i = arc.first + k;
        auto const end = static_cast<Number>(mLines.End(arc.line));
        return i < end ? i : i - end + static_cast<Number>(mLines.Begin(arc.line));
    }
    GridPoint PointOf(Arc const& arc, Number k) const { return mLines.points[VertexOf(arc, k)]; }
    /// The arc's end at which it is entered by someone who has the region to the left.
    ArcEnd Entry(Number arc) const { return 2 * arc + (mRegion[mArcs[arc].left] ? 0 : 1); }
    /// The next spoke of the wheel, clockwise, that is on the boundary.
    ArcEnd NextOnBoundary(ArcEnd end) const {
        do {
            end = mNext[end];
        } while (!mArcs[end / 2].bounds);
        return end;
    }
    /// Appends the vertices that someone meets who walks back along an arc, save the one at which
    /// it is entered.
    GridPoint* AppendBackwards(ArcEnd entry, GridPoint* out) const;

    std::optional<EdgeTree> const& mTree;
    std::optional<EdgeTree> mOwnTree;
    int mRays = 0; // asked of no tree
    GridLines const& mLines;
    RegionOf const& mRegion;
    Scratch* mScratch;
    ScratchVector<Arc> mArcs;
    Number mWheels = 0;
    ScratchVector<Number> mWheelOf; // by end
    ScratchVector<ArcEnd> mNext;    // by end: the next spoke of the wheel, clockwise
    // While arcs are labelled:
    ScratchVector<char> mDone;   // by wheel: 1 once its arcs are
    ScratchVector<Number> mOpen; // arcs that are, and are to be followed
};

void Linker::MakeArcs(ScratchVector<Meeting> const& meetings) {
    // Cutting lines may have given them more edges than a tree takes.
    if (mLines.points.size() > EdgeTree::kMostEdges) {
        throw std::length_error("Linker");
    }
    std::size_t most = mLines.Count();
    for (Meeting const meeting : meetings) {
        most += meeting != kAlone ? 1 : 0;
    }
    mArcs.resize(most);
    Number count = 0;
    for (std::size_t line = 0; line < mLines.Count(); ++line) {
        auto const begin = static_cast<Number>(mLines.Begin(line));
        auto const end = static_cast<Number>(mLines.End(line));
        Number const firstArc = count;
        for (Number i = begin; i < end; ++i) {
            if (meetings[i] != kAlone) {
                Arc& arc = mArcs[count];
                arc.line = static_cast<Number>(line);
                arc.first = i;
                arc.previous = count - 1;
                arc.other = kNone;
                arc.closed = false;
                arc.operands = mLines.operands[line];
                ++count;
                arc.next = count;
            }
        }
        if (firstArc == count) {
            mArcs[count] = {
                static_cast<Number>(line), begin, end - begin, count, count, kNone, true,
                mLines.operands[line]};
            ++count;
            continue;
        }
        mArcs[firstArc].previous = count - 1;
        mArcs[count - 1].next = firstArc;
        for (Number i = firstArc; i + 1 < count; ++i) {
            mArcs[i].count = mArcs[i + 1].first - mArcs[i].first;
        }
        mArcs[count - 1].count = end - mArcs[count - 1].first + mArcs[firstArc].first - begin;
    }
    mArcs.resize(count);
}

void Linker::MakePlainWheels(ScratchVector<Meeting> const& meetings) {
    Meeting const last =
        meetings.empty() ? kAlone : *std::max_element(meetings.begin(), meetings.end());
    if (last < kFirstCrossing) {
        return;
    }
    // By crossing: the first arc that begins there. If there is no second, its end of the other
    // edge has come to be one where anything may come together.
    ScratchVector<Number> firstAt((last - kFirstCrossing) / 2 + 1, kNone, mScratch);
    for (Number i = 0; i < mArcs.size(); ++i) {
        if (mArcs[i].closed || meetings[mArcs[i].first] < kFirstCrossing) {
            continue;
        }
        Meeting const meeting = meetings[mArcs[i].first] - kFirstCrossing;
        Number const first = firstAt[meeting / 2];
        if (first == kNone) {
            firstAt[meeting / 2] = i;
            continue;
        }
        mArcs[i].other = first;
        mArcs[first].other = i;
        bool const left = meeting % 2 != 0;
        ArcEnd const out[2] = {2 * first, 2 * i};
        ArcEnd const in[2] = {2 * mArcs[first].previous + 1, 2 * mArcs[i].previous + 1};
        ArcEnd const wheel[4] = {out[0], left ? out[1] : in[1], in[0], left ? in[1] : out[1]};
        AddWheel(wheel, wheel + 4);
    }
}

void Linker::MakeWheels() {
    ScratchVector<Spoke> spokes(mScratch);
    for (Number i = 0; i < mArcs.size(); ++i) {
        Arc const& arc = mArcs[i];
        if (arc.closed) {
            continue;
        }
        if (arc.other == kNone) {
            spokes.push_back({PointOf(arc, 0), PointOf(arc, 1), 2 * i});
        }
        if (mArcs[arc.next].other == kNone) {
            spokes.push_back({PointOf(arc, arc.count), PointOf(arc, arc.count - 1), 2 * i + 1});
        }
    }
    if (spokes.empty()) {
        return;
    }
    SortByHub(spokes);
    MergeEqualArcs(spokes);
    ScratchVector<ArcEnd> wheel(mScratch);
    for (std::size_t i = 0; i < spokes.size(); ++i) {
        if (mArcs[spokes[i].end / 2].operands != 0) {
            wheel.push_back(spokes[i].end);
        }
        if (i + 1 == spokes.size() || spokes[i + 1].hub != spokes[i].hub) {
            AddWheel(wheel.data(), wheel.data() + wheel.size());
            wheel.clear();
        }
    }
}

void Linker::AddWheel(ArcEnd const* begin, ArcEnd const* end) {
    if (begin == end) {
        return;
    }
    ArcEnd last = end[-1];
    for (ArcEnd const* i = begin; i < end; ++i) {
        mWheelOf[*i] = mWheels;
        mNext[*i] = last;
        last = *i;
    }
    ++mWheels;
}

void Linker::MergeEqualArcs(ScratchVector<Spoke> const& spokes) {
    // Equal arcs have one edge each. The one with the smallest number stands for all, once.
    for (std::size_t i = 0; i + 1 < spokes.size();) {
        std::size_t j = i + 1;
        while (j < spokes.size() && spokes[j].hub == spokes[i].hub &&
               spokes[j].tip == spokes[i].tip) {
            ++j;
        }
        if (j > i + 1 && spokes[i].hub < spokes[i].tip) {
            Arc& first = mArcs[spokes[i].end / 2];
            for (std::size_t k = i + 1; k < j; ++k) {
                first.operands ^= std::exchange(mArcs[spokes[k].end / 2].operands, Operands{0});
            }
        }
        i = j;
    }
}

Operands Linker::InsideWestOf(Number edge) {
    // A tree is worth while for many.
    int const kFewRays = 8;
    if (!mTree && !mOwnTree && ++mRays > kFewRays) {
        mOwnTree.emplace(mLines, ScratchVector<char>(mScratch), GridPoint{0, 0},
                         EdgeTree::Order::kLines);
    }
    std::optional<EdgeTree> const& tree = mTree ? mTree : mOwnTree;
    // One without boxes has so few edges that a look at all of them for each ray takes no longer
    // than holding them against each other.
    return tree && tree->HasBoxes() ? tree->InsideWestOf(edge)
                                    : trammel_detail::InsideWestOf(mLines, edge);
}

void Linker::LabelFrom(Number first) {
    mOpen.push_back(first);
    while (!mOpen.empty()) {
        Number const arc = mOpen.back();
        mOpen.pop_back();
        if (!mArcs[arc].followed) {
            LabelAlong(arc);
        }
    }
}

/// Labels the arcs that go on from a labelled one in both directions, as long as just two edges
/// cross where they do, and what they meet.
void Linker::LabelAlong(Number arc) {
    // To pass a crossing is to come to the other side of the other edge.
    mArcs[arc].followed = true;
    Number last = arc;
    for (Number i = mArcs[arc].next; i != arc && mArcs[i].other != kNone; i = mArcs[i].next) {
        mArcs[i].left = mArcs[last].left ^ mArcs[mArcs[i].other].operands;
        mArcs[i].labelled = true;
        mArcs[i].followed = true;
        last = i;
    }
    Number first = arc;
    while (mArcs[first].other != kNone && !mArcs[mArcs[first].previous].followed) {
        Number const i = mArcs[first].previous;
        mArcs[i].left = mArcs[first].left ^ mArcs[mArcs[first].other].operands;
        mArcs[i].labelled = true;
        mArcs[i].followed = true;
        first = i;
    }
    for (Number i = first;; i = mArcs[i].next) {
        ArcEnd const begin = 2 * i;
        if (mArcs[i].other != kNone ? !mArcs[mArcs[i].other].labelled
                                    : mDone[mWheelOf[begin]] == 0) {
            LabelAround(begin);
        }
        if (i == last) {
            break;
        }
    }
    ArcEnd const end = 2 * last + 1;
    if (mArcs[mArcs[last].next].other == kNone && mDone[mWheelOf[end]] == 0) {
        LabelAround(end);
    }
}

/// Labels the arcs that begin or end where one does that is labelled: what the points beside one
/// spoke lie in tells it for all spokes of the wheel.
void Linker::LabelAround(ArcEnd from) {
    mDone[mWheelOf[from]] = 1;
    // What points counterclockwise of the spoke lie in.
    Operands here = mArcs[from / 2].left ^ (from % 2 == 0 ? 0 : mArcs[from / 2].operands);
    Operands last = mArcs[from / 2].operands;
    for (ArcEnd at = mNext[from]; at != from; at = mNext[at]) {
        Arc& arc = mArcs[at / 2];
        here ^= last;
        last = arc.operands;
        if (!arc.labelled) {
            arc.labelled = true;
            arc.left = here ^ (at % 2 == 0 ? 0 : arc.operands);
            mOpen.push_back(at / 2);
        }
    }
}

void Linker::FindBoundary() {
    mDone.assign(mWheels, 0);
    for (Number i = 0; i < mArcs.size(); ++i) {
        Arc& arc = mArcs[i];
        if (arc.labelled || arc.operands == 0) {
            continue;
        }
        // One edge that is not horizontal tells it for all that hangs together; there is one, as
        // lines are closed.
        Number k = 0;
        while (k < arc.count && PointOf(arc, k).y == PointOf(arc, k + 1).y) {
            ++k;
        }
        if (k == arc.count) {
            continue;
        }
        bool const up = PointOf(arc, k).y < PointOf(arc, k + 1).y;
        arc.left = InsideWestOf(VertexOf(arc, k)) ^ (up ? 0 : arc.operands);
        arc.labelled = true;
        if (!arc.closed) {
            LabelFrom(i);
        }
    }
    for (Arc& arc : mArcs) {
        arc.bounds = arc.labelled && mRegion[arc.left] != mRegion[arc.left ^ arc.operands];
    }
}

GridPoint* Linker::AppendBackwards(ArcEnd entry, GridPoint* out) const {
    Arc const& arc = mArcs[entry / 2];
    std::size_t const begin = mLines.Begin(arc.line);
    std::size_t const end = mLines.End(arc.line);
    if (entry % 2 == 0) {
        std::size_t i = VertexOf(arc, arc.count);
        for (Number k = 0; k < arc.count; ++k) {
            i = (i == begin ? end : i) - 1;
            *out++ = mLines.points[i];
        }
    } else {
        std::size_t i = arc.first;
        for (Number k = 0; k < arc.count; ++k) {
            i = i + 1 == end ? begin : i + 1;
            *out++ = mLines.points[i];
        }
    }
    return out;
}

ResolvedContours Linker::Contours() {
    ResolvedContours result(mScratch);
    GridLines& contours = result.contours;
    // Each edge is part of one contour at most.
    contours.points.resize(mLines.points.size());
    GridPoint* out = contours.points.data();
    ScratchVector<char> done(mArcs.size(), 0, mScratch);
    std::size_t const kNowhere = std::numeric_limits<std::size_t>::max();
    ScratchVector<std::size_t> place(mWheels, kNowhere, mScratch); // on the way
    ScratchVector<ArcEnd> way(mScratch); // the arcs, by where they are entered
    // Makes the last part of the way, which has come back to where it began, a contour. It has no
    // vertex twice. The way has the region to the left, contours have it to the right.
    auto const finish = [&](std::size_t begin) {
        for (std::size_t i = way.size(); i-- > begin;) {
            out = AppendBackwards(way[i], out);
            if (!mArcs[way[i] / 2].closed) {
                place[mWheelOf[way[i]]] = kNowhere;
            }
        }
        way.resize(begin);
        contours.ends.push_back(static_cast<std::size_t>(out - contours.points.data()));
        contours.operands.push_back(0);
    };
    for (Number i = 0; i < mArcs.size(); ++i) {
        if (!mArcs[i].bounds || done[i] != 0) {
            continue;
        }
        ArcEnd end = Entry(i);
        if (mArcs[i].closed) {
            way.push_back(end);
            finish(0);
            continue;
        }
        // Who comes in at a wheel goes on along the next arc clockwise: what lies between is
        // inside. Arcs that come in and go out alternate.
        do {
            Number const wheel = mWheelOf[end];
            if (place[wheel] != kNowhere) {
                finish(place[wheel]);
            }
            place[wheel] = way.size();
            way.push_back(end);
            done[end / 2] = 1;
            end = NextOnBoundary(OtherEnd(end));
        } while (done[end / 2] == 0);
        finish(0);
    }
    contours.points.resize(static_cast<std::size_t>(out - contours.points.data()));
    result.holes.reserve(contours.Count());
    for (std::size_t i = 0; i < contours.Count(); ++i) {
        result.holes.push_back(IsCounterclockwise(contours, i) ? 1 : 0);
    }
    return result;
}

} // namespace

ResolvedContours LinkContours(GridLines const& lines, std::optional<EdgeTree> const& tree,
                              ScratchVector<Meeting> const& meetings, RegionOf const& region) {
    Linker linker(lines, tree, meetings, region);
    linker.FindBoundary();
    return linker.Contours();
}

} // namespace trammel_detail
