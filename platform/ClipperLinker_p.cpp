// SPDX-License-Identifier: MIT
#include "ClipperLinker_p.h"

#include "ClipperPredicates_p.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace trammel_detail {

namespace {

std::size_t const kNone = std::numeric_limits<std::size_t>::max();

/// The end at which an edge that is entered at one end is left.
EdgeEnd OtherEnd(EdgeEnd end) { return end ^ 1; }

std::size_t EdgeOf(EdgeEnd end) { return end / 2; }

/// A spoke of the wheel around a shared vertex: an edge's end, and the edge's other vertex.
struct Spoke {
    GridPoint hub;
    GridPoint tip;
    EdgeEnd end;
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

/// The work of LinkContours().
class Linker {
public:
    Linker(EdgeTree const& tree, std::vector<char> const& shared);

    /// Decides for every edge which of its sides is inside.
    void FindInside();

    ResolvedContours Contours();

private:
    GridPoint VertexAt(EdgeEnd end) const {
        GridEdge const& e = mTree.At(EdgeOf(end));
        return end % 2 == 0 ? e.a : e.b;
    }
    void CancelEqualEdges();
    /// The edge's end at which it is entered by someone who has the inside to the left.
    EdgeEnd Entry(std::size_t edge) const { return 2 * edge + (mBackwards[edge] != 0 ? 1 : 0); }
    /// Calls visit(begin, end) for the spokes of each wheel.
    template <class Visit> void ForWheels(Visit&& visit) const;

    EdgeTree const& mTree;
    std::vector<EdgeEnd> mMate;   // by end: the one at the same vertex where a walk goes on
    std::vector<Spoke> mSpokes;   // wheel after wheel, in each counterclockwise
    std::vector<char> mGone;      // by edge: has cancelled
    std::vector<char> mBackwards; // by edge: has the inside to the left from its second vertex
};

template <class Visit> void Linker::ForWheels(Visit&& visit) const {
    for (std::size_t begin = 0; begin < mSpokes.size();) {
        std::size_t end = begin + 1;
        while (end < mSpokes.size() && mSpokes[end].hub == mSpokes[begin].hub) {
            ++end;
        }
        visit(begin, end);
        begin = end;
    }
}

Linker::Linker(EdgeTree const& tree, std::vector<char> const& shared)
    : mTree(tree), mGone(tree.Count(), 0), mBackwards(tree.Count(), 0) {
    // At vertices that occur once walks go on as the lines do.
    GridLines const& lines = tree.Lines();
    mMate.reserve(2 * tree.Count());
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        std::size_t const begin = lines.Begin(line);
        std::size_t const end = lines.End(line);
        for (std::size_t i = begin; i < end; ++i) {
            mMate.push_back(2 * (i == begin ? end - 1 : i - 1) + 1);
            mMate.push_back(2 * (i + 1 == end ? begin : i + 1));
        }
    }

    for (EdgeEnd end = 0; end < shared.size(); ++end) {
        if (shared[end] != 0 || shared[mMate[end]] != 0) {
            mSpokes.push_back({VertexAt(end), VertexAt(OtherEnd(end)), end});
        }
    }
    std::sort(mSpokes.begin(), mSpokes.end(), [](Spoke const& s, Spoke const& t) {
        return s.hub != t.hub ? s.hub < t.hub : TurnsFirst(s, t);
    });
    CancelEqualEdges();

    // Spokes that are neighbours are joined: walks that go on so do not cross.
    ForWheels([this](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i + 1 < end; i += 2) {
            mMate[mSpokes[i].end] = mSpokes[i + 1].end;
            mMate[mSpokes[i + 1].end] = mSpokes[i].end;
        }
    });
}

void Linker::CancelEqualEdges() {
    // Of equal edges one is left if their number is odd, none otherwise.
    ForWheels([this](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i + 1 < end;) {
            if (mSpokes[i].tip == mSpokes[i + 1].tip) {
                mGone[EdgeOf(mSpokes[i].end)] = 1;
                mGone[EdgeOf(mSpokes[i + 1].end)] = 1;
                i += 2;
            } else {
                ++i;
            }
        }
    });
    mSpokes.erase(std::remove_if(mSpokes.begin(), mSpokes.end(),
                                 [this](Spoke const& s) { return mGone[EdgeOf(s.end)] != 0; }),
                  mSpokes.end());
}

void Linker::FindInside() {
    // A walk that does not cross anything has the same to its left all along.
    std::vector<char> done(mGone);
    std::vector<std::size_t> walk;
    for (std::size_t first = 0; first < done.size(); ++first) {
        if (done[first] != 0) {
            continue;
        }
        walk.clear();
        EdgeEnd lowest = 2 * first;
        EdgeEnd end = lowest;
        do {
            done[EdgeOf(end)] = 1;
            mBackwards[EdgeOf(end)] = end % 2 != 0;
            walk.push_back(EdgeOf(end));
            if (VertexAt(end) < VertexAt(lowest)) {
                lowest = end;
            }
            end = mMate[OtherEnd(end)];
        } while (done[EdgeOf(end)] == 0);

        // One of the two edges at the lowest vertex goes up: the one that leaves, or else the one
        // that arrives, which the walk goes down.
        bool const leaves = VertexAt(OtherEnd(lowest)).y > VertexAt(lowest).y;
        std::size_t const up = EdgeOf(leaves ? lowest : mMate[lowest]);
        if (mTree.InsideWestOf(up) != leaves) {
            for (std::size_t const edge : walk) {
                mBackwards[edge] ^= 1;
            }
        }
    }
}

ResolvedContours Linker::Contours() {
    // Around a vertex edges that come in and go out alternate. Who comes in goes on along the next
    // edge clockwise: what lies between is inside.
    std::vector<std::size_t> wheel(mMate.size(), kNone); // by end
    std::size_t wheels = 0;
    ForWheels([&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            EdgeEnd const name = mSpokes[i].end;
            wheel[name] = wheels;
            if (Entry(EdgeOf(name)) != name) {
                mMate[name] = mSpokes[i > begin ? i - 1 : end - 1].end;
            }
        }
        ++wheels;
    });

    ResolvedContours result;
    GridLines& contours = result.contours;
    contours.points.reserve(mGone.size());
    std::vector<char> done(mGone);
    std::vector<std::size_t> place(wheels, kNone); // on the way, of vertices that are shared
    std::vector<EdgeEnd> way;
    // Makes the last part of the way, which has come back to where it began, a contour. It has no
    // vertex twice. The way has the inside to the left, contours have it to the right.
    auto const finish = [&](std::size_t begin) {
        for (std::size_t i = way.size(); i-- > begin;) {
            contours.points.push_back(VertexAt(way[i]));
            if (wheel[way[i]] != kNone) {
                place[wheel[way[i]]] = kNone;
            }
        }
        way.resize(begin);
        contours.Close();
    };
    for (std::size_t edge = 0; edge < done.size(); ++edge) {
        if (done[edge] != 0) {
            continue;
        }
        EdgeEnd end = Entry(edge);
        do {
            if (wheel[end] != kNone) {
                std::size_t const before = place[wheel[end]];
                if (before != kNone) {
                    finish(before);
                }
                place[wheel[end]] = way.size();
            }
            way.push_back(end);
            done[EdgeOf(end)] = 1;
            end = mMate[OtherEnd(end)];
        } while (done[EdgeOf(end)] == 0);
        finish(0);
    }
    result.holes.reserve(contours.Count());
    for (std::size_t i = 0; i < contours.Count(); ++i) {
        result.holes.push_back(FootOf(contours, i).counterclockwise ? 1 : 0);
    }
    return result;
}

} // namespace

Foot FootOf(GridLines const& lines, std::size_t line) {
    std::size_t const begin = lines.Begin(line);
    std::size_t const end = lines.End(line);
    std::size_t i = begin;
    for (std::size_t k = begin + 1; k < end; ++k) {
        i = lines.points[k] < lines.points[i] ? k : i;
    }
    std::size_t const before = i == begin ? end - 1 : i - 1;
    std::size_t const after = i + 1 == end ? begin : i + 1;
    GridPoint const p = lines.points[i];
    bool const left = SideOf(lines.points[before], p, lines.points[after]) > 0;
    if (lines.points[after].y > p.y) {
        return {i, true, left};
    }
    return {before, false, left};
}

ResolvedContours LinkContours(EdgeTree const& tree, std::vector<char> const& shared) {
    Linker linker(tree, shared);
    linker.FindInside();
    return linker.Contours();
}

} // namespace trammel_detail
