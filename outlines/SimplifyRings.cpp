// SPDX-License-Identifier: MIT

#include "SimplifyRings.h"

#include "ArcBoxes_p.h"
#include "ArcChain_p.h"
#include "BoxTree_p.h"
#include "ExactSide_p.h"
#include "PieceMarks_p.h"
#include "PointMath_p.h"
#include "RangeScale_p.h"
#include "RingArcs_p.h"
#include "SlantTree_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace trammel {

namespace {

using trammel_detail::ArcChain;
using trammel_detail::ArcChord;
using trammel_detail::BoxTree;
using trammel_detail::ExactSide;
using trammel_detail::PieceMarks;
using trammel_detail::PiecePlace;
using trammel_detail::RingArcs;
using trammel_detail::SlantBox;

typedef TPoint<double> Pt;
typedef trammel_detail::Box<double> Box;

/// Of larger pieces, so many pairs of boxes are compared. Where these are not enough, the pieces
/// count as apart, and get more vertices.
constexpr std::size_t kMostBoxPairs = 16384;
/// Pieces of so many pairs of edges are compared edge by edge.
constexpr std::size_t kMostEdgePairs = 4096;
/// The test of what a chord has passed looks at kMostSideEdges edges at most, and at each edge of
/// its piece kMostSideLooks times more. A chord that would take more gets more vertices.
constexpr std::size_t kMostSideEdges = 65536;
constexpr std::size_t kMostSideLooks = 4;

/// A straight line between two vertices, by number.
struct Line {
    std::size_t a;
    std::size_t b;
};

/// Decides whether lines between vertices meet.
class Meetings {
public:
    explicit Meetings(std::vector<Pt> const& vertices) : mVertices(vertices) {}

    /// True when the lines have a point in common beside an end that is the same vertex.
    bool Meet(Line const& p, Line const& q) const {
        bool const aa = p.a == q.a;
        bool const ab = p.a == q.b;
        bool const ba = p.b == q.a;
        bool const bb = p.b == q.b;
        if ((aa && bb) || (ab && ba)) {
            return true;
        }
        if (aa || ab) {
            return RunAlong(p.a, p.b, aa ? q.b : q.a);
        }
        if (ba || bb) {
            return RunAlong(p.b, p.a, ba ? q.b : q.a);
        }
        if (!BoxOf(p).Meets(BoxOf(q))) {
            return false;
        }
        int const s1 = Side(p.a, p.b, q.a);
        int const s2 = Side(p.a, p.b, q.b);
        int const s3 = Side(q.a, q.b, p.a);
        int const s4 = Side(q.a, q.b, p.b);
        // Lines on one line meet, as their boxes do.
        return s1 * s2 <= 0 && s3 * s4 <= 0;
    }
    /// How often vertices, and the line from the last one back to the first, wind around another.
    int WindingAround(std::size_t center, std::size_t const* first, std::size_t const* last) const {
        int winding = Step(center, *last, *first);
        for (; first != last; ++first) {
            winding += Step(center, first[0], first[1]);
        }
        return winding;
    }
    Box BoxOf(Line const& line) const {
        Pt const& a = mVertices[line.a];
        Pt const& b = mVertices[line.b];
        return Box::Of(a.h, a.v, b.h, b.v);
    }

private:
    /// What an edge adds to the winding number: it counts where it passes to the right of the
    /// center.
    int Step(std::size_t center, std::size_t a, std::size_t b) const {
        bool const isBelow = mVertices[a].v <= mVertices[center].v;
        if (isBelow == (mVertices[b].v <= mVertices[center].v)) {
            return 0;
        }
        int const side = Side(a, b, center);
        return isBelow ? (side > 0 ? 1 : 0) : (side < 0 ? -1 : 0);
    }
    int Side(std::size_t a, std::size_t b, std::size_t c) const {
        return ExactSide(mVertices[a], mVertices[b], mVertices[c]);
    }
    /// True when the lines from `at` to `b` and to `c` run along each other.
    bool RunAlong(std::size_t at, std::size_t b, std::size_t c) const {
        Pt const& o = mVertices[at];
        Pt const& p = mVertices[b];
        Pt const& q = mVertices[c];
        auto const agree = [](double x, double y, double z) { return (y > x) == (z > x); };
        return Side(at, b, c) == 0 && (p.h != o.h ? agree(o.h, p.h, q.h) : agree(o.v, p.v, q.v));
    }

    std::vector<Pt> const& mVertices;
};

/// Simplifies the rings of a map together.
class MapSimplifier {
public:
    MapSimplifier(std::vector<Ring> const& rings, double tolerance, NewCrossings crossings)
        : mMap(rings), mScale(trammel_detail::RangeScale(mMap.vertices)), mVertices(mMap.vertices),
          mMeetings(mVertices) {
        for (Pt& p : mVertices) {
            p *= mScale;
            mExtent = std::max({mExtent, std::abs(p.h), std::abs(p.v)});
        }
        mChains.reserve(mMap.arcs.size());
        for (std::vector<std::size_t> const& arc : mMap.arcs) {
            mChains.emplace_back(mMap.vertices, arc, tolerance);
        }
        for (std::vector<RingArcs::Use> const& ring : mMap.rings) {
            KeepThreeVertices(ring);
        }
        if (crossings == NewCrossings::kAvoid) {
            mBoxes.reserve(mMap.arcs.size());
            for (std::vector<std::size_t> const& arc : mMap.arcs) {
                mBoxes.emplace_back(mVertices, arc);
            }
            trammel_detail::DivideWhileMarked(
                [this](PieceMarks& marks) { Mark(marks); },
                [this](std::size_t i, std::vector<char> const& marks, bool whole) {
                    mChains[i].Refine(marks, whole);
                });
        }
    }

    double Distance() const {
        double distance = 0.0;
        for (ArcChain const& chain : mChains) {
            for (ArcChord const& chord : chain.Chords()) {
                distance = std::max(distance, chord.distance);
            }
        }
        return distance;
    }
    /// Appends the vertices that ring `r` keeps, in order.
    void AppendTo(Ring& out, std::size_t r) const {
        for (RingArcs::Use const& use : mMap.rings[r]) {
            std::vector<std::size_t> const& ids = mMap.arcs[use.arc];
            std::vector<ArcChord> const& chords = mChains[use.arc].Chords();
            for (std::size_t k = 0; k < chords.size(); ++k) {
                std::size_t const id =
                    use.isReversed ? ids[chords[chords.size() - 1 - k].to] : ids[chords[k].from];
                out.push_back(mMap.vertices[id]);
            }
        }
    }

private:
    Line LineOf(std::size_t arc, ArcChord const& chord) const {
        return {mMap.arcs[arc][chord.from], mMap.arcs[arc][chord.to]};
    }

    /// Gives vertices to a ring until it has three, or all of its own.
    void KeepThreeVertices(std::vector<RingArcs::Use> const& ring) {
        for (;;) {
            std::size_t count = 0;
            std::size_t widestArc = 0;
            std::size_t widest = 0;
            double greatest = -1.0;
            for (RingArcs::Use const& use : ring) {
                std::vector<ArcChord> const& chords = mChains[use.arc].Chords();
                count += chords.size();
                for (std::size_t k = 0; k < chords.size() && count < 3; ++k) {
                    if (!chords[k].IsEdge() && chords[k].distance > greatest) {
                        greatest = chords[k].distance;
                        widestArc = use.arc;
                        widest = k;
                    }
                }
            }
            if (count >= 3 || greatest < 0.0) {
                return;
            }
            std::vector<char> marks(mChains[widestArc].Chords().size(), 0);
            marks[widest] = 1;
            mChains[widestArc].Refine(marks, false);
        }
    }

    ArcChord const& ChordAt(PiecePlace const& place) const {
        return mChains[place.chain].Chords()[place.piece];
    }

    /// Marks the chords that meet others where their pieces do not, and chords that have passed a
    /// vertex.
    void Mark(PieceMarks& marks) const {
        std::vector<PiecePlace> places;
        std::vector<Box> boxes;
        for (std::size_t i = 0; i < mChains.size(); ++i) {
            std::vector<ArcChord> const& chords = mChains[i].Chords();
            marks.AddChain(chords.size());
            for (std::size_t k = 0; k < chords.size(); ++k) {
                places.push_back({i, k});
                boxes.push_back(mMeetings.BoxOf(LineOf(i, chords[k])));
            }
        }
        BoxTree const tree(boxes);
        auto const slantsOf = [&] {
            std::vector<SlantBox> slants;
            slants.reserve(places.size());
            for (PiecePlace const& place : places) {
                Line const line = LineOf(place.chain, ChordAt(place));
                slants.push_back(SlantBox::Of(mVertices[line.a], mVertices[line.b]));
            }
            return slants;
        };
        auto const compare = [&](std::size_t i, std::size_t j) {
            PiecePlace const& p = places[i];
            PiecePlace const& q = places[j];
            ArcChord const& a = ChordAt(p);
            ArcChord const& b = ChordAt(q);
            bool const isOwn = a.IsEdge() && b.IsEdge();
            if (!isOwn && mMeetings.Meet(LineOf(p.chain, a), LineOf(q.chain, b)) &&
                !PiecesMeet(p.chain, a, q.chain, b)) {
                marks.Mark(p);
                marks.Mark(q);
            }
        };
        trammel_detail::ForMeetingSlants(tree, slantsOf, tree, slantsOf, mExtent, compare);
        MarkPassing(places, marks);
    }
    /// Marks the chords that lie on another side of a vertex than their pieces. Nothing crosses
    /// where the rounds end, so one vertex tells where all lines lie that are joined to it. The
    /// ends of each arc are tested, and one vertex between that it keeps.
    void MarkPassing(std::vector<PiecePlace> const& places, PieceMarks& marks) const {
        std::vector<std::size_t> tested;
        for (std::size_t i = 0; i < mChains.size(); ++i) {
            std::vector<std::size_t> const& ids = mMap.arcs[i];
            std::vector<ArcChord> const& chords = mChains[i].Chords();
            tested.insert(tested.end(),
                          {ids.front(), ids.back(), ids[chords[chords.size() / 2].from]});
        }
        std::sort(tested.begin(), tested.end());
        tested.erase(std::unique(tested.begin(), tested.end()), tested.end());
        std::vector<Box> points;
        points.reserve(tested.size());
        for (std::size_t const id : tested) {
            points.push_back(mMeetings.BoxOf({id, id}));
        }
        // A chord and its piece enclose nothing outside of the box of their vertices.
        std::vector<PiecePlace> passing;
        std::vector<Box> pieces;
        for (PiecePlace const& place : places) {
            ArcChord const& chord = ChordAt(place);
            if (!chord.IsEdge()) {
                passing.push_back(place);
                pieces.push_back(PieceBox(place.chain, chord));
            }
        }
        auto const slantsOfPieces = [&] {
            std::vector<SlantBox> slants;
            slants.reserve(passing.size());
            for (PiecePlace const& place : passing) {
                slants.push_back(PieceSlant(place.chain, ChordAt(place)));
            }
            return slants;
        };
        auto const slantsOfPoints = [&] {
            std::vector<SlantBox> slants;
            slants.reserve(tested.size());
            for (std::size_t const id : tested) {
                slants.push_back(SlantBox::Of(mVertices[id], mVertices[id]));
            }
            return slants;
        };
        std::vector<std::size_t> edges(passing.size(), 0); // looked at
        auto const test = [&](std::size_t i, std::size_t k) {
            std::vector<std::size_t> const& ids = mMap.arcs[passing[i].chain];
            ArcChord const& chord = ChordAt(passing[i]);
            std::size_t const id = tested[k];
            bool const isEnd = id == ids[chord.from] || id == ids[chord.to];
            if (isEnd || marks.Of(passing[i].chain)[passing[i].piece] != 0) {
                return;
            }
            std::size_t const count = chord.to - chord.from;
            if (edges[i] + count > kMostSideEdges + kMostSideLooks * count ||
                mMeetings.WindingAround(id, &ids[chord.from], &ids[chord.to]) != 0) {
                marks.Mark(passing[i]);
            }
            edges[i] += count;
        };
        trammel_detail::ForMeetingSlants(BoxTree(pieces), slantsOfPieces, BoxTree(points),
                                         slantsOfPoints, mExtent, test);
    }
    /// The box of all vertices that a chord replaces, and of its ends. O(edges of the piece).
    Box PieceBox(std::size_t arc, ArcChord const& chord) const {
        std::vector<std::size_t> const& ids = mMap.arcs[arc];
        Box box;
        for (std::size_t i = chord.from; i <= chord.to; ++i) {
            box.Include(mVertices[ids[i]].h, mVertices[ids[i]].v);
        }
        return box;
    }
    /// The slanted box of the same vertices.
    SlantBox PieceSlant(std::size_t arc, ArcChord const& chord) const {
        std::vector<std::size_t> const& ids = mMap.arcs[arc];
        std::vector<Pt> vertices;
        for (std::size_t i = chord.from; i <= chord.to; ++i) {
            vertices.push_back(mVertices[ids[i]]);
        }
        return trammel_detail::SlantBoxOf(vertices.data(), vertices.size(),
                                          vertices.back() - vertices.front());
    }
    /// True when the pieces that two chords replace meet.
    bool PiecesMeet(std::size_t arcA, ArcChord const& a, std::size_t arcB,
                    ArcChord const& b) const {
        std::size_t const countA = a.to - a.from;
        std::size_t const countB = b.to - b.from;
        std::vector<std::size_t> const& idsA = mMap.arcs[arcA];
        std::vector<std::size_t> const& idsB = mMap.arcs[arcB];
        if (countA > kMostEdgePairs || countB > kMostEdgePairs / countA) {
            return mBoxes[arcA].AnyMeets(
                {a.from, a.to}, mBoxes[arcB], {b.from, b.to}, kMostBoxPairs,
                [&](std::size_t i, std::size_t j) {
                    return mMeetings.Meet({idsA[i], idsA[i + 1]}, {idsB[j], idsB[j + 1]});
                });
        }
        for (std::size_t i = a.from; i < a.to; ++i) {
            for (std::size_t j = b.from; j < b.to; ++j) {
                if (mMeetings.Meet({idsA[i], idsA[i + 1]}, {idsB[j], idsB[j + 1]})) {
                    return true;
                }
            }
        }
        return false;
    }

    RingArcs mMap;
    double mScale;
    std::vector<Pt> mVertices; ///< multiplied by it, for the meetings
    double mExtent = 0.0;      ///< their greatest coordinate
    Meetings mMeetings;
    std::vector<ArcChain> mChains;
    std::vector<trammel_detail::ArcBoxes> mBoxes; ///< of the arcs
};

/// The vertices of a ring that are finite and differ from the one before, and the last one from the
/// first.
Ring Cleaned(Ring const& ring) {
    Ring kept;
    kept.reserve(ring.size());
    for (Pt const& p : ring) {
        if (trammel_detail::IsFinite(p) && (kept.empty() || p != kept.back())) {
            kept.push_back(p);
        }
    }
    while (kept.size() > 1 && kept.back() == kept.front()) {
        kept.pop_back();
    }
    return kept;
}

} // namespace

double SimplifyRings(std::vector<Ring> const& rings, double tolerance, NewCrossings crossings,
                     std::vector<Ring>& out) {
    double const usable = tolerance > 0.0 ? tolerance : 0.0;
    std::vector<Ring> cleaned;
    cleaned.reserve(rings.size());
    for (Ring const& ring : rings) {
        cleaned.push_back(Cleaned(ring));
    }
    MapSimplifier const simplifier(cleaned, usable, crossings);
    std::vector<Ring> result(rings.size());
    for (std::size_t r = 0; r < rings.size(); ++r) {
        simplifier.AppendTo(result[r], r);
        if (result[r].empty()) {
            result[r] = cleaned[r]; // one vertex or none
        }
        if (rings[r].size() > 1 && rings[r].front() == rings[r].back() && !result[r].empty()) {
            result[r].push_back(result[r].front());
        }
    }
    out = std::move(result);
    return std::min(simplifier.Distance(), usable);
}

double SimplifyMap(std::vector<PolygonWithHoles> const& map, double tolerance,
                   NewCrossings crossings, std::vector<PolygonWithHoles>& out) {
    std::vector<Ring> rings;
    for (PolygonWithHoles const& polygon : map) {
        rings.push_back(polygon.outer);
        rings.insert(rings.end(), polygon.holes.begin(), polygon.holes.end());
    }
    double const distance = SimplifyRings(rings, tolerance, crossings, rings);
    std::vector<PolygonWithHoles> result(map.size());
    auto next = rings.begin();
    for (std::size_t i = 0; i < map.size(); ++i) {
        result[i].outer = std::move(*next++);
        for (std::size_t k = 0; k < map[i].holes.size(); ++k) {
            result[i].holes.push_back(std::move(*next++));
        }
    }
    out = std::move(result);
    return distance;
}

} // namespace trammel
