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

/// The number of a line, an edge, an chain or a node, of each of which there are no more than
/// EdgeTree::kMostEdges.
typedef std::uint32_t Number;

Number const kNone = std::numeric_limits<Number>::max();

/// Edges of a line that follow each other, from one shared vertex to the next; or a whole line
/// without any.
struct Chain {
    Number line;
    Number first;    // its first edge
    Number count;    // of edges
    Number next;     // the chain that begins where this one ends
    Number previous; // the chain that ends where this one begins
    Number other; // the chain of the other edge, if two edges cross where this one begins; or kNone
    bool closed;
    Operands operands;     // that it separates its two sides in: 0 once it has cancelled
    Operands left = 0;     // that the points to its left lie in
    bool labelled = false; // whether that is known
    bool followed = false; // whether it was followed both ways to label what goes on from it
    bool bounds = false;   // whether it is on the boundary of the region
};

/// The end of an chain: 2 * the chain's number, + 1 at its last vertex.
typedef Number HalfEdge;

/// The end at which an chain that is entered at one end is left.
HalfEdge Twin(HalfEdge end) { return end ^ 1; }

/// A edge of the node around a shared vertex: an chain's end, and the next vertex on the chain.
struct DirectedEdge {
    GridPoint origin;
    GridPoint target;
    HalfEdge end;
};

/// Whether edge s comes before t, turning counterclockwise from east around their common origin.
bool TurnsFirst(DirectedEdge const& s, DirectedEdge const& t) {
    auto const lower = [](DirectedEdge const& u) {
        return u.target.y < u.origin.y || (u.target.y == u.origin.y && u.target.x < u.origin.x);
    };
    if (lower(s) != lower(t)) {
        return lower(t);
    }
    Int128 const cross = Cross(s.origin, s.target, t.target);
    if (cross != 0) {
        return cross > 0;
    }
    // Equal edges.
    return s.target != t.target ? s.target < t.target : s.end < t.end;
}

/// Brings the edges of each node together, in each counterclockwise.
void SortByOrigin(ScratchVector<DirectedEdge>& edges) {
    auto const before = [](DirectedEdge const& s, DirectedEdge const& t) {
        return s.origin != t.origin ? s.origin < t.origin : TurnsFirst(s, t);
    };
    std::size_t const kFew = 64;
    if (edges.size() <= kFew) {
        std::sort(edges.begin(), edges.end(), before);
        return;
    }
    // Into buckets by their place, a node or two in each if they are spread evenly; then each
    // bucket is sorted.
    int bits = 1;
    while (edges.size() >> bits > 4 && bits < kMortonBits) {
        ++bits;
    }
    auto const bucketOf = [bits](DirectedEdge const& s) {
        return static_cast<std::size_t>(MortonCode(s.origin) >> (kMortonBits - bits));
    };
    ScratchVector<std::size_t> ends(std::size_t{1} << bits, 0, edges.get_allocator());
    for (DirectedEdge const& s : edges) {
        ++ends[bucketOf(s)];
    }
    std::size_t sum = 0;
    for (std::size_t& end : ends) {
        sum += std::exchange(end, sum);
    }
    ScratchVector<DirectedEdge> sorted(edges.size(), edges.get_allocator());
    for (DirectedEdge const& s : edges) {
        sorted[ends[bucketOf(s)]++] = s;
    }
    auto begin = sorted.begin();
    for (std::size_t const size : ends) {
        auto const end = sorted.begin() + static_cast<std::ptrdiff_t>(size);
        std::sort(begin, end, before);
        begin = end;
    }
    edges = std::move(sorted);
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
           ScratchVector<Incidence> const& incidences, RegionOf const& region)
        : mTree(tree), mLines(lines), mRegion(region),
          mScratch(incidences.get_allocator().GetScratch()), mChains(mScratch), mNodeOf(mScratch),
          mNext(mScratch), mDone(mScratch), mOpen(mScratch) {
        MakeChains(incidences);
        mNodeOf.resize(2 * mChains.size());
        mNext.resize(2 * mChains.size());
        MakeCrossingNodes(incidences);
        MakeSharedNodes();
    }

    /// Finds the chains on the boundary.
    void FindBoundary();

    RegionContours Contours();

private:
    void MakeChains(ScratchVector<Incidence> const& incidences);
    /// The nodes of crossings of two edges.
    void MakeCrossingNodes(ScratchVector<Incidence> const& incidences);
    /// The others; chains that are equal are made one.
    void MakeSharedNodes();
    /// Makes edges, counterclockwise, a node.
    void AddNode(HalfEdge const* begin, HalfEdge const* end);
    void MergeEqualChains(ScratchVector<DirectedEdge> const& edges);
    Operands InsideWestOf(Number edge);
    /// Labels what hangs together with an chain that is labelled.
    void LabelFrom(Number first);
    void LabelAlong(Number chain);
    void LabelAround(HalfEdge from);
    /// The number of an chain's vertex number k.
    Number VertexOf(Chain const& chain, Number k) const {
        Number const i = chain.first + k;
        auto const end = static_cast<Number>(mLines.End(chain.line));
        return i < end ? i : i - end + static_cast<Number>(mLines.Begin(chain.line));
    }
    GridPoint PointOf(Chain const& chain, Number k) const {
        return mLines.points[VertexOf(chain, k)];
    }
    /// The chain's end at which it is entered by someone who has the region to the left.
    HalfEdge Entry(Number chain) const {
        return 2 * chain + (mRegion[mChains[chain].left] ? 0 : 1);
    }
    /// The next edge of the node, clockwise, that is on the boundary.
    HalfEdge NextOnBoundary(HalfEdge end) const {
        do {
            end = mNext[end];
        } while (!mChains[end / 2].bounds);
        return end;
    }
    /// Appends the vertices that someone meets who walks back along an chain, save the one at which
    /// it is entered.
    GridPoint* AppendBackwards(HalfEdge entry, GridPoint* out) const;

    std::optional<EdgeTree> const& mTree;
    std::optional<EdgeTree> mOwnTree;
    int mRays = 0; // asked of no tree
    GridLines const& mLines;
    RegionOf const& mRegion;
    Scratch* mScratch;
    ScratchVector<Chain> mChains;
    Number mNodeCount = 0;
    ScratchVector<Number> mNodeOf; // by end
    ScratchVector<HalfEdge> mNext; // by end: the next edge of the node, clockwise
    // While chains are labelled:
    ScratchVector<char> mDone;   // by node: 1 once its chains are
    ScratchVector<Number> mOpen; // chains that are, and are to be followed
};

void Linker::MakeChains(ScratchVector<Incidence> const& incidences) {
    // Cutting lines may have given them more edges than a tree takes.
    if (mLines.points.size() > EdgeTree::kMostEdges) {
        throw std::length_error("Linker");
    }
    std::size_t most = mLines.Count();
    for (Incidence const incidence : incidences) {
        most += incidence != kSingle ? 1 : 0;
    }
    mChains.resize(most);
    Number count = 0;
    for (std::size_t line = 0; line < mLines.Count(); ++line) {
        auto const begin = static_cast<Number>(mLines.Begin(line));
        auto const end = static_cast<Number>(mLines.End(line));
        Number const firstChain = count;
        for (Number i = begin; i < end; ++i) {
            if (incidences[i] != kSingle) {
                Chain& chain = mChains[count];
                chain.line = static_cast<Number>(line);
                chain.first = i;
                chain.previous = count - 1;
                chain.other = kNone;
                chain.closed = false;
                chain.operands = mLines.operands[line];
                ++count;
                chain.next = count;
            }
        }
        if (firstChain == count) {
            mChains[count] = {
                static_cast<Number>(line), begin, end - begin, count, count, kNone, true,
                mLines.operands[line]};
            ++count;
            continue;
        }
        mChains[firstChain].previous = count - 1;
        mChains[count - 1].next = firstChain;
        for (Number i = firstChain; i + 1 < count; ++i) {
            mChains[i].count = mChains[i + 1].first - mChains[i].first;
        }
        mChains[count - 1].count =
            end - mChains[count - 1].first + mChains[firstChain].first - begin;
    }
    mChains.resize(count);
}

void Linker::MakeCrossingNodes(ScratchVector<Incidence> const& incidences) {
    Incidence const last =
        incidences.empty() ? kSingle : *std::max_element(incidences.begin(), incidences.end());
    if (last < kFirstCrossing) {
        return;
    }
    // By crossing: the first chain that begins there. If there is no second, its end of the other
    // edge has come to be one where anything may come together.
    ScratchVector<Number> firstAt((last - kFirstCrossing) / 2 + 1, kNone, mScratch);
    for (Number i = 0; i < mChains.size(); ++i) {
        if (mChains[i].closed || incidences[mChains[i].first] < kFirstCrossing) {
            continue;
        }
        Incidence const incidence = incidences[mChains[i].first] - kFirstCrossing;
        Number const first = firstAt[incidence / 2];
        if (first == kNone) {
            firstAt[incidence / 2] = i;
            continue;
        }
        mChains[i].other = first;
        mChains[first].other = i;
        bool const left = incidence % 2 != 0;
        HalfEdge const out[2] = {2 * first, 2 * i};
        HalfEdge const in[2] = {2 * mChains[first].previous + 1, 2 * mChains[i].previous + 1};
        HalfEdge const node[4] = {out[0], left ? out[1] : in[1], in[0], left ? in[1] : out[1]};
        AddNode(node, node + 4);
    }
}

void Linker::MakeSharedNodes() {
    ScratchVector<DirectedEdge> edges(mScratch);
    for (Number i = 0; i < mChains.size(); ++i) {
        Chain const& chain = mChains[i];
        if (chain.closed) {
            continue;
        }
        if (chain.other == kNone) {
            edges.push_back({PointOf(chain, 0), PointOf(chain, 1), 2 * i});
        }
        if (mChains[chain.next].other == kNone) {
            edges.push_back(
                {PointOf(chain, chain.count), PointOf(chain, chain.count - 1), 2 * i + 1});
        }
    }
    if (edges.empty()) {
        return;
    }
    SortByOrigin(edges);
    MergeEqualChains(edges);
    ScratchVector<HalfEdge> node(mScratch);
    for (std::size_t i = 0; i < edges.size(); ++i) {
        if (mChains[edges[i].end / 2].operands != 0) {
            node.push_back(edges[i].end);
        }
        if (i + 1 == edges.size() || edges[i + 1].origin != edges[i].origin) {
            AddNode(node.data(), node.data() + node.size());
            node.clear();
        }
    }
}

void Linker::AddNode(HalfEdge const* begin, HalfEdge const* end) {
    if (begin == end) {
        return;
    }
    HalfEdge last = end[-1];
    for (HalfEdge const* i = begin; i < end; ++i) {
        mNodeOf[*i] = mNodeCount;
        mNext[*i] = last;
        last = *i;
    }
    ++mNodeCount;
}

void Linker::MergeEqualChains(ScratchVector<DirectedEdge> const& edges) {
    // Equal chains have one edge each. The one with the smallest number stands for all, once.
    for (std::size_t i = 0; i + 1 < edges.size();) {
        std::size_t j = i + 1;
        while (j < edges.size() && edges[j].origin == edges[i].origin &&
               edges[j].target == edges[i].target) {
            ++j;
        }
        if (j > i + 1 && edges[i].origin < edges[i].target) {
            Chain& first = mChains[edges[i].end / 2];
            for (std::size_t k = i + 1; k < j; ++k) {
                first.operands ^= std::exchange(mChains[edges[k].end / 2].operands, Operands{0});
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
        Number const chain = mOpen.back();
        mOpen.pop_back();
        if (!mChains[chain].followed) {
            LabelAlong(chain);
        }
    }
}

/// Labels the chains that go on from a labelled one in both directions, as long as just two edges
/// cross where they do, and what they meet.
void Linker::LabelAlong(Number chain) {
    // To pass a crossing is to come to the other side of the other edge.
    mChains[chain].followed = true;
    Number last = chain;
    for (Number i = mChains[chain].next; i != chain && mChains[i].other != kNone;
         i = mChains[i].next) {
        mChains[i].left = mChains[last].left ^ mChains[mChains[i].other].operands;
        mChains[i].labelled = true;
        mChains[i].followed = true;
        last = i;
    }
    Number first = chain;
    while (mChains[first].other != kNone && !mChains[mChains[first].previous].followed) {
        Number const i = mChains[first].previous;
        mChains[i].left = mChains[first].left ^ mChains[mChains[first].other].operands;
        mChains[i].labelled = true;
        mChains[i].followed = true;
        first = i;
    }
    for (Number i = first;; i = mChains[i].next) {
        HalfEdge const begin = 2 * i;
        if (mChains[i].other != kNone ? !mChains[mChains[i].other].labelled
                                      : mDone[mNodeOf[begin]] == 0) {
            LabelAround(begin);
        }
        if (i == last) {
            break;
        }
    }
    HalfEdge const end = 2 * last + 1;
    if (mChains[mChains[last].next].other == kNone && mDone[mNodeOf[end]] == 0) {
        LabelAround(end);
    }
}

/// Labels the chains that begin or end where one does that is labelled: what the points beside one
/// edge lie in tells it for all edges of the node.
void Linker::LabelAround(HalfEdge from) {
    mDone[mNodeOf[from]] = 1;
    // What points counterclockwise of the edge lie in.
    Operands here = mChains[from / 2].left ^ (from % 2 == 0 ? 0 : mChains[from / 2].operands);
    Operands last = mChains[from / 2].operands;
    for (HalfEdge at = mNext[from]; at != from; at = mNext[at]) {
        Chain& chain = mChains[at / 2];
        here ^= last;
        last = chain.operands;
        if (!chain.labelled) {
            chain.labelled = true;
            chain.left = here ^ (at % 2 == 0 ? 0 : chain.operands);
            mOpen.push_back(at / 2);
        }
    }
}

void Linker::FindBoundary() {
    mDone.assign(mNodeCount, 0);
    for (Number i = 0; i < mChains.size(); ++i) {
        Chain& chain = mChains[i];
        if (chain.labelled || chain.operands == 0) {
            continue;
        }
        // One edge that is not horizontal tells it for all that hangs together; there is one, as
        // lines are closed.
        Number k = 0;
        while (k < chain.count && PointOf(chain, k).y == PointOf(chain, k + 1).y) {
            ++k;
        }
        if (k == chain.count) {
            continue;
        }
        bool const up = PointOf(chain, k).y < PointOf(chain, k + 1).y;
        chain.left = InsideWestOf(VertexOf(chain, k)) ^ (up ? 0 : chain.operands);
        chain.labelled = true;
        if (!chain.closed) {
            LabelFrom(i);
        }
    }
    for (Chain& chain : mChains) {
        chain.bounds =
            chain.labelled && mRegion[chain.left] != mRegion[chain.left ^ chain.operands];
    }
}

GridPoint* Linker::AppendBackwards(HalfEdge entry, GridPoint* out) const {
    Chain const& chain = mChains[entry / 2];
    std::size_t const begin = mLines.Begin(chain.line);
    std::size_t const end = mLines.End(chain.line);
    if (entry % 2 == 0) {
        std::size_t i = VertexOf(chain, chain.count);
        for (Number k = 0; k < chain.count; ++k) {
            i = (i == begin ? end : i) - 1;
            *out++ = mLines.points[i];
        }
    } else {
        std::size_t i = chain.first;
        for (Number k = 0; k < chain.count; ++k) {
            i = i + 1 == end ? begin : i + 1;
            *out++ = mLines.points[i];
        }
    }
    return out;
}

RegionContours Linker::Contours() {
    RegionContours result(mScratch);
    GridLines& contours = result.contours;
    // Each edge is part of one contour at most.
    contours.points.resize(mLines.points.size());
    GridPoint* out = contours.points.data();
    ScratchVector<char> done(mChains.size(), 0, mScratch);
    std::size_t const kNowhere = std::numeric_limits<std::size_t>::max();
    ScratchVector<std::size_t> place(mNodeCount, kNowhere, mScratch); // on the way
    ScratchVector<HalfEdge> way(mScratch); // the chains, by where they are entered
    // Makes the last part of the way, which has come back to where it began, a contour. It has no
    // vertex twice. The way has the region to the left, contours have it to the right.
    auto const finish = [&](std::size_t begin) {
        for (std::size_t i = way.size(); i-- > begin;) {
            out = AppendBackwards(way[i], out);
            if (!mChains[way[i] / 2].closed) {
                place[mNodeOf[way[i]]] = kNowhere;
            }
        }
        way.resize(begin);
        contours.ends.push_back(static_cast<std::size_t>(out - contours.points.data()));
        contours.operands.push_back(0);
    };
    for (Number i = 0; i < mChains.size(); ++i) {
        if (!mChains[i].bounds || done[i] != 0) {
            continue;
        }
        HalfEdge end = Entry(i);
        if (mChains[i].closed) {
            way.push_back(end);
            finish(0);
            continue;
        }
        // Who comes in at a node goes on along the next chain clockwise: what lies between is
        // inside. Arcs that come in and go out alternate.
        do {
            Number const node = mNodeOf[end];
            if (place[node] != kNowhere) {
                finish(place[node]);
            }
            place[node] = way.size();
            way.push_back(end);
            done[end / 2] = 1;
            end = NextOnBoundary(Twin(end));
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

RegionContours LinkContours(GridLines const& lines, std::optional<EdgeTree> const& tree,
                            ScratchVector<Incidence> const& incidences, RegionOf const& region) {
    Linker linker(lines, tree, incidences, region);
    linker.FindBoundary();
    return linker.Contours();
}

} // namespace trammel_detail
