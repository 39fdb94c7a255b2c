// SPDX-License-Identifier: MIT
#include "ClipperLinker_p.h"

#include "ClipperPlaces_p.h"
#include "ClipperPredicates_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace trammel_detail {

namespace {

std::size_t const kNone = std::numeric_limits<std::size_t>::max();

/// Edges of a line that follow each other, from one shared vertex to the next; or a whole line
/// without any.
struct Arc {
    std::size_t line;
    std::size_t first; // its first edge
    std::size_t count; // of edges
    std::size_t next;  // the arc that begins where this one ends
    bool closed;
    Operands operands;     // that it separates its two sides in: 0 once it has cancelled
    Operands left = 0;     // that the points to its left lie in
    bool labelled = false; // whether that is known
    bool bounds = false;   // whether it is on the boundary of the region
};

/// The end of an arc: 2 * the arc's number, + 1 at its last vertex.
typedef std::size_t ArcEnd;

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
void SortByHub(std::vector<Spoke>& spokes) {
    // Into buckets by their place, a wheel or two in each if they are spread evenly; then each
    // bucket is sorted.
    int bits = 0;
    while (spokes.size() >> bits > 4 && bits < kPlaceBits) {
        ++bits;
    }
    auto const bucketOf = [bits](Spoke const& s) {
        return bits == 0 ? 0 : static_cast<std::size_t>(PlaceOf(s.hub) >> (kPlaceBits - bits));
    };
    std::vector<std::size_t> ends(std::size_t{1} << bits, 0);
    for (Spoke const& s : spokes) {
        ++ends[bucketOf(s)];
    }
    std::size_t sum = 0;
    for (std::size_t& end : ends) {
        sum += std::exchange(end, sum);
    }
    std::vector<Spoke> sorted(spokes.size());
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
    Linker(EdgeTree const& tree, std::vector<Meeting> const& meetings, RegionOf const& region)
        : mTree(tree), mLines(tree.Lines()), mRegion(region) {
        MakeArcs(meetings);
        mWheelOf.resize(2 * mArcs.size());
        mSpokeOf.resize(2 * mArcs.size());
        MakePlainWheels(meetings);
        MakeWheels(meetings);
        mWheels.push_back(mEnds.size());
    }

    /// Finds the arcs on the boundary.
    void FindBoundary();

    ResolvedContours Contours();

private:
    void MakeArcs(std::vector<Meeting> const& meetings);
    /// The wheels of crossings of two edges.
    void MakePlainWheels(std::vector<Meeting> const& meetings);
    /// The others; arcs that are equal are made one.
    void MakeWheels(std::vector<Meeting> const& meetings);
    void AppendWheel(ArcEnd const* begin, ArcEnd const* end);
    bool IsPlain(Meeting meeting) const;
    void DropWhatDoesNotBound();
    void MergeEqualArcs(std::vector<Spoke> const& spokes);
    /// Labels what hangs together with an arc that is labelled. `done` has an element for each
    /// wheel.
    void LabelFrom(ArcEnd first, std::vector<char>& done);
    /// The number of an arc's vertex number k.
    std::size_t VertexOf(Arc const& arc, std::size_t k) const {
        std::size_t const i = arc.first + k;
        std::size_t const end = mLines.End(arc.line);
        return i < end ? i : i - end + mLines.Begin(arc.line);
    }
    GridPoint PointOf(Arc const& arc, std::size_t k) const {
        return mLines.points[VertexOf(arc, k)];
    }
    /// The arc's end at which it is entered by someone who has the region to the left.
    ArcEnd Entry(std::size_t arc) const { return 2 * arc + (mRegion[mArcs[arc].left] ? 0 : 1); }
    /// The next spoke of the wheel, clockwise.
    ArcEnd Next(ArcEnd end) const {
        std::size_t const wheel = mWheelOf[end];
        std::size_t const i = mSpokeOf[end];
        return mEnds[(i > mWheels[wheel] ? i : mWheels[wheel + 1]) - 1];
    }
    /// Appends the vertices that someone meets who walks along an arc, save the one at which it is
    /// entered.
    void AppendBackwards(ArcEnd entry, std::vector<GridPoint>& points) const;

    EdgeTree const& mTree;
    GridLines const& mLines;
    RegionOf const& mRegion;
    std::vector<Arc> mArcs;
    std::vector<std::pair<std::size_t, std::size_t>> mCrossings; // arcs that begin at a crossing
    std::vector<ArcEnd> mEnds;         // the spokes, wheel after wheel, in each counterclockwise
    std::vector<std::size_t> mWheels;  // in mEnds: where each begins, and where the last one ends
    std::vector<std::size_t> mWheelOf; // by end
    std::vector<std::size_t> mSpokeOf; // by end: in mEnds
};

void Linker::MakeArcs(std::vector<Meeting> const& meetings) {
    for (std::size_t line = 0; line < mLines.Count(); ++line) {
        std::size_t const begin = mLines.Begin(line);
        std::size_t const end = mLines.End(line);
        Arc arc{line, begin, end - begin, mArcs.size(), true, mLines.operands[line]};
        auto const next = [&](std::size_t i) {
            while (i < end && meetings[i] == kAlone) {
                ++i;
            }
            return i;
        };
        std::size_t const first = next(begin);
        if (first < end) {
            std::size_t const firstArc = mArcs.size();
            arc.closed = false;
            for (std::size_t i = first; i < end;) {
                std::size_t const j = next(i + 1);
                arc.first = i;
                arc.count = j - i + (j == end ? first - begin : 0);
                arc.next = j == end ? firstArc : mArcs.size() + 1;
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

void Linker::MakePlainWheels(std::vector<Meeting> const& meetings) {
    Meeting const last =
        meetings.empty() ? kAlone : *std::max_element(meetings.begin(), meetings.end());
    if (last < kFirstCrossing) {
        return;
    }
    // The arcs that begin there, then those that end there.
    mCrossings.assign(last - kFirstCrossing + 1, {kNone, kNone});
    for (std::size_t i = 0; i < mArcs.size(); ++i) {
        Meeting const meeting = mArcs[i].closed ? kAlone : meetings[mArcs[i].first];
        if (meeting >= kFirstCrossing) {
            auto& [first, second] = mCrossings[meeting - kFirstCrossing];
            (first == kNone ? first : second) = i;
        }
    }
    std::vector<std::size_t> endingAt(mArcs.size(), kNone); // by the arc that begins there
    for (std::size_t i = 0; i < mArcs.size(); ++i) {
        if (!mArcs[i].closed) {
            endingAt[mArcs[i].next] = i;
        }
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
        AppendWheel(wheel, wheel + 4);
    }
}

void Linker::MakeWheels(std::vector<Meeting> const& meetings) {
    std::vector<Spoke> spokes;
    for (std::size_t i = 0; i < mArcs.size(); ++i) {
        Arc const& arc = mArcs[i];
        if (arc.closed) {
            continue;
        }
        if (!IsPlain(meetings[arc.first])) {
            spokes.push_back({PointOf(arc, 0), PointOf(arc, 1), 2 * i});
        }
        if (!IsPlain(meetings[VertexOf(arc, arc.count)])) {
            spokes.push_back({PointOf(arc, arc.count), PointOf(arc, arc.count - 1), 2 * i + 1});
        }
    }
    SortByHub(spokes);
    MergeEqualArcs(spokes);
    std::vector<ArcEnd> wheel;
    for (std::size_t i = 0; i < spokes.size(); ++i) {
        if (mArcs[spokes[i].end / 2].operands != 0) {
            wheel.push_back(spokes[i].end);
        }
        if (i + 1 == spokes.size() || spokes[i + 1].hub != spokes[i].hub) {
            AppendWheel(wheel.data(), wheel.data() + wheel.size());
            wheel.clear();
        }
    }
}

void Linker::AppendWheel(ArcEnd const* begin, ArcEnd const* end) {
    for (ArcEnd const* i = begin; i < end; ++i) {
        mWheelOf[*i] = mWheels.size();
        mSpokeOf[*i] = mEnds.size();
        mEnds.push_back(*i);
    }
    if (begin < end) {
        mWheels.push_back(mEnds.size() - static_cast<std::size_t>(end - begin));
    }
}

void Linker::DropWhatDoesNotBound() {
    std::size_t wheels = 0;
    std::size_t ends = 0;
    for (std::size_t wheel = 0; wheel + 1 < mWheels.size(); ++wheel) {
        std::size_t const begin = ends;
        for (std::size_t i = mWheels[wheel]; i < mWheels[wheel + 1]; ++i) {
            ArcEnd const end = mEnds[i];
            if (mArcs[end / 2].bounds) {
                mWheelOf[end] = wheels;
                mSpokeOf[end] = ends;
                mEnds[ends++] = end;
            }
        }
        if (begin < ends) {
            // Not beyond the wheel that has been read last.
            mWheels[wheels++] = begin;
        }
    }
    mWheels.resize(wheels + 1);
    mWheels[wheels] = ends;
    mEnds.resize(ends);
}

void Linker::MergeEqualArcs(std::vector<Spoke> const& spokes) {
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

void Linker::LabelFrom(ArcEnd first, std::vector<char>& done) {
    // From wheel to wheel: what the points beside one spoke lie in tells it for all spokes, and so
    // for the other ends of their arcs.
    std::vector<ArcEnd> open{first, OtherEnd(first)};
    while (!open.empty()) {
        ArcEnd const from = open.back();
        open.pop_back();
        if (std::exchange(done[mWheelOf[from]], 1) != 0) {
            continue;
        }
        // What points counterclockwise of the spoke lie in.
        Operands here = mArcs[from / 2].left ^ (from % 2 == 0 ? 0 : mArcs[from / 2].operands);
        ArcEnd last = from;
        for (ArcEnd at = Next(from); at != from; at = Next(at)) {
            here ^= mArcs[last / 2].operands;
            last = at;
            Arc& arc = mArcs[at / 2];
            if (!arc.labelled && arc.operands != 0) {
                arc.labelled = true;
                arc.left = here ^ (at % 2 == 0 ? 0 : arc.operands);
                open.push_back(OtherEnd(at));
            }
        }
    }
}

void Linker::FindBoundary() {
    std::vector<char> done(mWheels.size(), 0);
    for (std::size_t i = 0; i < mArcs.size(); ++i) {
        Arc& arc = mArcs[i];
        if (arc.labelled || arc.operands == 0) {
            continue;
        }
        // One edge that is not horizontal tells it for all that hangs together; there is one, as
        // lines are closed.
        std::size_t k = 0;
        while (k < arc.count && PointOf(arc, k).y == PointOf(arc, k + 1).y) {
            ++k;
        }
        if (k == arc.count) {
            continue;
        }
        std::size_t const edge = VertexOf(arc, k);
        bool const up = mTree.At(edge).a.y < mTree.At(edge).b.y;
        arc.left = mTree.InsideWestOf(edge) ^ (up ? 0 : arc.operands);
        arc.labelled = true;
        if (!arc.closed) {
            LabelFrom(2 * i, done);
        }
    }
    for (Arc& arc : mArcs) {
        arc.bounds = arc.labelled && mRegion[arc.left] != mRegion[arc.left ^ arc.operands];
    }
    DropWhatDoesNotBound();
}

void Linker::AppendBackwards(ArcEnd entry, std::vector<GridPoint>& points) const {
    Arc const& arc = mArcs[entry / 2];
    if (entry % 2 == 0) {
        for (std::size_t k = arc.count; k-- > 0;) {
            points.push_back(PointOf(arc, k));
        }
    } else {
        for (std::size_t k = 1; k <= arc.count; ++k) {
            points.push_back(PointOf(arc, k));
        }
    }
}

ResolvedContours Linker::Contours() {
    ResolvedContours result;
    GridLines& contours = result.contours;
    contours.points.reserve(mLines.points.size());
    std::vector<char> done(mArcs.size(), 0);
    std::vector<std::size_t> place(mWheels.size(), kNone); // on the way
    std::vector<ArcEnd> way;                               // the arcs, by where they are entered
    // Makes the last part of the way, which has come back to where it began, a contour. It has no
    // vertex twice. The way has the region to the left, contours have it to the right.
    auto const finish = [&](std::size_t begin) {
        for (std::size_t i = way.size(); i-- > begin;) {
            AppendBackwards(way[i], contours.points);
            if (!mArcs[way[i] / 2].closed) {
                place[mWheelOf[way[i]]] = kNone;
            }
        }
        way.resize(begin);
        contours.ends.push_back(contours.points.size());
        contours.operands.push_back(0);
    };
    for (std::size_t i = 0; i < mArcs.size(); ++i) {
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
            std::size_t const wheel = mWheelOf[end];
            if (place[wheel] != kNone) {
                finish(place[wheel]);
            }
            place[wheel] = way.size();
            way.push_back(end);
            done[end / 2] = 1;
            end = Next(OtherEnd(end));
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

ResolvedContours LinkContours(EdgeTree const& tree, std::vector<Meeting> const& meetings,
                              RegionOf const& region) {
    Linker linker(tree, meetings, region);
    linker.FindBoundary();
    return linker.Contours();
}

} // namespace trammel_detail
