// SPDX-License-Identifier: MIT
#include "ClipperLinker_p.h"

#include "ClipperPlaces_p.h"
#include "ClipperPredicates_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace trammel_detail {

namespace {

/// The number of a line, an edge, an arc or a wheel. EdgeTree takes no more edges than fit.
typedef std::uint32_t Number;

Number const kNone = std::numeric_limits<Number>::max();

/// Edges of a line that follow each other, from one shared vertex to the next; or a whole line
/// without any.
struct Arc {
    Number line;
    Number first; // its first edge
    Number count; // of edges
    Number next;  // the arc that begins where this one ends
    bool closed;
    Operands operands;     // that it separates its two sides in: 0 once it has cancelled
    Operands left = 0;     // that the points to its left lie in
    bool labelled = false; // whether that is known
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
    // Into buckets by their place, a wheel or two in each if they are spread evenly; then each
    // bucket is sorted.
    int bits = 0;
    while (spokes.size() >> bits > 4 && bits < kPlaceBits) {
        ++bits;
    }
    auto const bucketOf = [bits](Spoke const& s) {
        return bits == 0 ? 0 : static_cast<std::size_t>(PlaceOf(s.hub) >> (kPlaceBits - bits));
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
        std::sort(begin, end, [](Spoke const& s, Spoke const& t) {
            return s.hub != t.hub ? s.hub < t.hub : TurnsFirst(s, t);
        });
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
          mScratch(meetings.get_allocator().GetScratch()), mArcs(mScratch), mCrossings(mScratch),
          mWheelOf(mScratch), mNext(mScratch) {
        MakeArcs(meetings);
        mWheelOf.resize(2 * mArcs.size());
        mNext.resize(2 * mArcs.size());
        MakePlainWheels(meetings);
        MakeWheels(meetings);
    }

    /// Finds the arcs on the boundary.
    void FindBoundary();

    ResolvedContours Contours();

private:
    void MakeArcs(ScratchVector<Meeting> const& meetings);
    /// The wheels of crossings of two edges.
    void MakePlainWheels(ScratchVector<Meeting> const& meetings);
    /// The others; arcs that are equal are made one.
    void MakeWheels(ScratchVector<Meeting> const& meetings);
    /// Makes spokes, counterclockwise, a wheel.
    void AddWheel(ArcEnd const* begin, ArcEnd const* end);
    bool IsPlain(Meeting meeting) const;
    void MergeEqualArcs(ScratchVector<Spoke> const& spokes);
    Operands InsideWestOf(Number edge);
    /// Labels what hangs together with an arc that is labelled. `done` has an element for each
    /// wheel.
    void LabelFrom(ArcEnd first, ScratchVector<char>& done);
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
    void AppendBackwards(ArcEnd entry, ScratchVector<GridPoint>& points) const;

    std::optional<EdgeTree> const& mTree;
    std::optional<EdgeTree> mOwnTree;
    int mRays = 0; // asked of no tree
    GridLines const& mLines;
    RegionOf const& mRegion;
    Scratch* mScratch;
    ScratchVector<Arc> mArcs;
    ScratchVector<std::pair<Number, Number>> mCrossings; // arcs that begin at a crossing
    Number mWheels = 0;
    ScratchVector<Number> mWheelOf; // by end
    ScratchVector<ArcEnd> mNext;    // by end: the next spoke of the wheel, clockwise
};

void Linker::MakeArcs(ScratchVector<Meeting> const& meetings) {
    std::size_t count = mLines.Count();
    for (Meeting const meeting : meetings) {
        count += meeting != kAlone ? 1 : 0;
    }
    mArcs.reserve(count);
    for (std::size_t line = 0; line < mLines.Count(); ++line) {
        auto const begin = static_cast<Number>(mLines.Begin(line));
        auto const end = static_cast<Number>(mLines.End(line));
        auto const firstArc = static_cast<Number>(mArcs.size());
        Arc arc{static_cast<Number>(line), begin, end - begin, firstArc, true,
                mLines.operands[line]};
        auto const next = [&](Number i) {
            while (i < end && meetings[i] == kAlone) {
                ++i;
            }
            return i;
        };
        Number const first = next(begin);
        if (first < end) {
            arc.closed = false;
            for (Number i = first; i < end;) {
                Number const j = next(i + 1);
                arc.first = i;
                arc.count = j - i + (j == end ? first - begin : 0);
                arc.next = j == end ? firstArc : static_cast<Number>(mArcs.size()) + 1;
                mArcs.push_back(arc);
                i = j;
            }
        } else {
            mArcs.push_back(arc);
        }
    }
}

bool Linker::IsPlain(Meeting meeting) const {
    return meeting >= kFirstCrossing && mCrossings[meeting - kFirstCrossing].second != kNone;
}

void Linker::MakePlainWheels(ScratchVector<Meeting> const& meetings) {
    Meeting const last =
        meetings.empty() ? kAlone : *std::max_element(meetings.begin(), meetings.end());
    if (last < kFirstCrossing) {
        return;
    }
    // The arcs that begin there, then those that end there.
    mCrossings.assign(last - kFirstCrossing + 1, {kNone, kNone});
    ScratchVector<Number> endingAt(mArcs.size(), kNone, mScratch); // by the arc that begins there
    for (Number i = 0; i < mArcs.size(); ++i) {
        if (mArcs[i].closed) {
            continue;
        }
        Meeting const meeting = meetings[mArcs[i].first];
        if (meeting >= kFirstCrossing) {
            auto& [first, second] = mCrossings[meeting - kFirstCrossing];
            (first == kNone ? first : second) = i;
        }
        endingAt[mArcs[i].next] = i;
    }
    for (auto const& [first, second] : mCrossings) {
        if (second == kNone) {
            continue;
        }
        ArcEnd const out[2] = {2 * first, 2 * second};
        ArcEnd const in[2] = {2 * endingAt[first] + 1, 2 * endingAt[second] + 1};
        bool const left = SideOf(PointOf(mArcs[first], 0), PointOf(mArcs[first], 1),
                                 PointOf(mArcs[second], 1)) > 0;
        ArcEnd const wheel[4] = {out[0], left ? out[1] : in[1], in[0], left ? in[1] : out[1]};
        AddWheel(wheel, wheel + 4);
    }
}

void Linker::MakeWheels(ScratchVector<Meeting> const& meetings) {
    ScratchVector<Spoke> spokes(mScratch);
    for (Number i = 0; i < mArcs.size(); ++i) {
        Arc const& arc = mArcs[i];
        if (arc.closed) {
            continue;
        }
        if (!IsPlain(meetings[arc.first])) {
            spokes.push_back({PointOf(arc, 0), PointOf(arc, 1), 2 * i});
        }
        if (!IsPlain(meetings[mArcs[arc.next].first])) {
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
    if (!mTree && !mOwnTree) {
        if (++mRays <= kFewRays) {
            return trammel_detail::InsideWestOf(mLines, edge);
        }
        mOwnTree.emplace(mLines, ScratchVector<char>(mScratch), GridPoint{0, 0},
                         EdgeTree::Order::kLines);
    }
    return (mTree ? mTree : mOwnTree)->InsideWestOf(edge);
}

void Linker::LabelFrom(ArcEnd first, ScratchVector<char>& done) {
    // From wheel to wheel: what the points beside one spoke lie in tells it for all spokes, and so
    // for the other ends of their arcs.
    ScratchVector<ArcEnd> open({first, OtherEnd(first)}, mScratch);
    while (!open.empty()) {
        ArcEnd const from = open.back();
        open.pop_back();
        if (std::exchange(done[mWheelOf[from]], 1) != 0) {
            continue;
        }
        // What points counterclockwise of the spoke lie in.
        Operands here = mArcs[from / 2].left ^ (from % 2 == 0 ? 0 : mArcs[from / 2].operands);
        Operands last = mArcs[from / 2].operands;
        for (ArcEnd at = mNext[from]; at != from; at = mNext[at]) {
            Arc& arc = mArcs[at / 2];
            here ^= last;
            last = arc.operands;
            if (!arc.labelled && arc.operands != 0) {
                arc.labelled = true;
                arc.left = here ^ (at % 2 == 0 ? 0 : arc.operands);
                if (done[mWheelOf[OtherEnd(at)]] == 0) {
                    open.push_back(OtherEnd(at));
                }
            }
        }
    }
}

void Linker::FindBoundary() {
    ScratchVector<char> done(mWheels, 0, mScratch);
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
            LabelFrom(2 * i, done);
        }
    }
    for (Arc& arc : mArcs) {
        arc.bounds = arc.labelled && mRegion[arc.left] != mRegion[arc.left ^ arc.operands];
    }
}

void Linker::AppendBackwards(ArcEnd entry, ScratchVector<GridPoint>& points) const {
    Arc const& arc = mArcs[entry / 2];
    auto const at = [this](std::size_t i) {
        return mLines.points.begin() + static_cast<std::ptrdiff_t>(i);
    };
    std::size_t const begin = mLines.Begin(arc.line);
    std::size_t const end = mLines.End(arc.line);
    // The part up to the line's end, and what goes on at its beginning.
    std::size_t const first = arc.first + (entry % 2 == 0 ? 0U : 1U);
    std::size_t const last = first + arc.count;
    std::size_t const over = last > end ? last - end : 0;
    if (entry % 2 == 0) {
        std::reverse_copy(at(begin), at(begin + over), std::back_inserter(points));
        std::reverse_copy(at(first), at(last - over), std::back_inserter(points));
    } else {
        points.insert(points.end(), at(first), at(last - over));
        points.insert(points.end(), at(begin), at(begin + over));
    }
}

ResolvedContours Linker::Contours() {
    ResolvedContours result(mScratch);
    GridLines& contours = result.contours;
    contours.points.reserve(mLines.points.size());
    ScratchVector<char> done(mArcs.size(), 0, mScratch);
    std::size_t const kNowhere = std::numeric_limits<std::size_t>::max();
    ScratchVector<std::size_t> place(mWheels, kNowhere, mScratch); // on the way
    ScratchVector<ArcEnd> way(mScratch); // the arcs, by where they are entered
    // Makes the last part of the way, which has come back to where it began, a contour. It has no
    // vertex twice. The way has the region to the left, contours have it to the right.
    auto const finish = [&](std::size_t begin) {
        for (std::size_t i = way.size(); i-- > begin;) {
            AppendBackwards(way[i], contours.points);
            if (!mArcs[way[i] / 2].closed) {
                place[mWheelOf[way[i]]] = kNowhere;
            }
        }
        way.resize(begin);
        contours.ends.push_back(contours.points.size());
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
