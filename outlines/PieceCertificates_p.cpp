// SPDX-License-Identifier: MIT

#include "PieceCertificates_p.h"

#include "PointMath_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;
typedef std::array<Pt, 3> Vectors;

/// Rounding moves what the tests compare by less, in work units, unless doubles are too coarse.
double const kLeastMargin = 0x1p-47;
/// Parts nearer to their chords than this part of the reach are not cut again. It is small beside
/// the reach, so that curves which are not one are told apart.
double const kFinest = 0x1p-12;
/// Vectors up to this length have no direction that counts.
double const kNoVector = 0x1p-44;
/// Parameters beyond the ends of a stretch by less than this belong to it.
double const kBeyondEnds = 0x1p-30;
/// So often parts are tested again that came to have both ends in common.
int const kMostRounds = 4;
/// Of parts with both ends in common, each is tested with so many others.
std::size_t const kPartsCompared = 8;
/// So many tests are made for each pair of arcs, and some for all.
std::size_t const kTestsForPair = 64;
std::size_t const kTestsForAll = std::size_t{1} << 17U;

/// The height of a node before it is asked for.
double const kNoHeight = -1.0;

/// A part of an arc between two parameters.
struct Node {
    Cubic c;
    Box<double> box;
    double from;
    double to;
    double height; ///< how far the curve may be from its chord, or kNoHeight
    Index arc;
    Index start; ///< the vertices at its ends, kNoIndex where it was halved
    Index end;
    Index half; ///< the first of its halves, kNoIndex before it is halved
};

void Measure(Node& node, double margin) {
    node.box = BoxOf(node.c).Widened(margin, margin);
    node.height = kNoHeight;
}

double HeightOf(Cubic const& c) {
    Pt const chord = c[3] - c[0];
    double const length = std::sqrt(Square(chord));
    double const beside =
        std::max(std::abs(Cross(chord, c[1] - c[0])), std::abs(Cross(chord, c[2] - c[0])));
    return length > kNoVector ? beside / length
                              : std::max(Taxicab(c[1] - c[0]), Taxicab(c[2] - c[0]));
}

/// Returns 1 when the turns from all vectors of `a` to all of `b` are positive by more than
/// rounding, -1 when they are negative, and else 0. Vectors without length do not count.
int TurnOf(Vectors const& a, Vectors const& b, double least) {
    int sign = 0;
    for (Pt const& p : a) {
        double const length = Taxicab(p);
        if (length <= kNoVector) {
            continue;
        }
        for (Pt const& q : b) {
            if (Taxicab(q) <= kNoVector) {
                continue;
            }
            double const turn = Cross(p, q);
            double const margin = least * (length + Taxicab(q));
            int const here = turn > margin ? 1 : turn < -margin ? -1 : 0;
            if (here == 0 || here == -sign) {
                return 0;
            }
            sign = here;
        }
    }
    return sign;
}

/// True when a line through the origin has the vectors of `a` on one side, and those of `b` on the
/// other.
bool ConesApart(Vectors const& a, Vectors const& b, double margin) {
    if (TurnOf(a, b, margin) != 0) {
        return true;
    }
    // Curves that touch there, and lie on different sides of their tangent. Rounding may put
    // control points on the tangent to the wrong side, but not the far ends.
    for (Vectors const* const cone : {&a, &b}) {
        Pt const tangent = Taxicab((*cone)[0]) > kNoVector ? (*cone)[0] : (*cone)[1];
        double const far[2] = {Cross(tangent, a[2]), Cross(tangent, b[2])};
        double const least = 16.0 * margin * Taxicab(tangent);
        if (std::abs(far[0]) <= least || std::abs(far[1]) <= least || far[0] * far[1] > 0.0) {
            continue;
        }
        double const sign = far[0] > 0.0 ? 1.0 : -1.0;
        if (std::min(sign * Cross(tangent, a[0]), sign * Cross(tangent, a[1])) >= -least / 16.0 &&
            std::max(sign * Cross(tangent, b[0]), sign * Cross(tangent, b[1])) <= least / 16.0) {
            return true;
        }
    }
    // The ends' directions tell a line that may do.
    Pt const normal = a[2] * (1.0 / Taxicab(a[2])) - b[2] * (1.0 / Taxicab(b[2]));
    for (std::size_t i = 0; i < 3; ++i) {
        double const ofA = Dot(normal, a[i]);
        double const ofB = Dot(normal, b[i]);
        if ((Taxicab(a[i]) > kNoVector && !(ofA > margin)) ||
            (Taxicab(b[i]) > kNoVector && !(ofB < -margin))) {
            return false;
        }
    }
    return true;
}

Vectors Steps(Cubic const& c) { return {c[1] - c[0], c[2] - c[1], c[3] - c[2]}; }
/// Returns the control points as seen from an end.
Vectors From(Cubic const& c, bool start) {
    return start ? Vectors{c[1] - c[0], c[2] - c[0], c[3] - c[0]}
                 : Vectors{c[2] - c[3], c[1] - c[3], c[0] - c[3]};
}

/// Finds where two curves cross whose tangents are never parallel. False where they do not, or
/// where it is not clear yet.
bool FindCrossing(Cubic const& a, Cubic const& b, double& s, double& t) {
    s = t = 0.5;
    for (int i = 0; i < 12; ++i) {
        CubicPlace const p = PlaceAt(a, s);
        CubicPlace const q = PlaceAt(b, t);
        Pt const between = q.point - p.point;
        Pt const da = p.first * 3.0;
        Pt const db = q.first * 3.0;
        double const turn = Cross(da, db);
        if (!(std::abs(turn) > std::numeric_limits<double>::min())) {
            return false;
        }
        double const stepS = Cross(between, db) / turn;
        double const stepT = Cross(between, da) / turn;
        s += stepS;
        t += stepT;
        if (!(s > -0.5 && s < 1.5 && t > -0.5 && t < 1.5)) {
            return false;
        }
        if (std::abs(stepS) <= 0x1p-40 && std::abs(stepT) <= 0x1p-40) {
            return s >= -kBeyondEnds && s <= 1.0 + kBeyondEnds && t >= -kBeyondEnds &&
                   t <= 1.0 + kBeyondEnds;
        }
    }
    return false;
}

/// Finds the same for two curves that are nearly straight, where Newton's method fails because one
/// of them stands still at an end.
bool FindSlowCrossing(Cubic const& a, Cubic const& b, double& s, double& t) {
    Pt const chord = b[3] - b[0];
    // The place of b beside a(s), by how far along its chord both are. Beyond its ends b goes on
    // along its chord.
    auto const besideAt = [&](double place) {
        Pt const p = PlaceAt(a, place).point;
        if (Dot(p - b[0], chord) <= 0.0 || Dot(p - b[3], chord) >= 0.0) {
            t = Dot(p - b[0], chord) <= 0.0 ? -1.0 : 2.0;
            return Cross(chord, p - b[0]);
        }
        double low = 0.0;
        double high = 1.0;
        for (int i = 0; i < 54; ++i) {
            t = 0.5 * (low + high);
            (Dot(PlaceAt(b, t).point - p, chord) < 0.0 ? low : high) = t;
        }
        return Cross(chord, p - PlaceAt(b, t).point);
    };
    bool const positive = besideAt(0.0) > 0.0;
    if (positive == (besideAt(1.0) > 0.0)) {
        return false;
    }
    double low = 0.0;
    double high = 1.0;
    for (int i = 0; i < 54; ++i) {
        s = 0.5 * (low + high);
        ((besideAt(s) > 0.0) == positive ? low : high) = s;
    }
    return t >= 0.0 && t <= 1.0;
}

} // namespace

/// The tests of pairs.
class CertifiedParts::Work {
public:
    Work(OutlineArcs& arcs, CertifiedParts& parts)
        : mArcs(arcs), mParts(parts), mMargin(std::max(kLeastMargin, 2.0 * arcs.Frame().Spacing())),
          mFinest(std::max(kFinest * arcs.Reach(), 2.0 * mMargin)) {}

    /// Tests all pairs of arcs whose boxes meet.
    void Run();
    /// Tests the parts that have both ends in common. False where there are none, or where all are
    /// as near to their chords as contacts.
    bool RunAgain();
    std::vector<ArcCut> cuts;

private:
    struct Pair {
        Index a;
        Index b;
    };

    void Test(Pair pair);
    /// True when a level or upright line through the one end that two arcs have in common has them
    /// on its two sides. Most arcs that follow each other are so, as they are monotone.
    bool PartAtJoint(Node const& a, Node const& b) const;
    void Halve(Index node);
    double Height(Index node) {
        Node& n = mNodes[node];
        n.height = n.height == kNoHeight ? HeightOf(n.c) : n.height;
        return n.height;
    }
    /// Replaces the pair by those with the halves of a node.
    void HalveFirst(Pair pair);
    /// True when two parts have both ends in common.
    bool AnyWithSameEnds() const;
    void AddContact(Pair pair);
    void AddCrossing(Node const& a, Node const& b, double s, double t);
    void AddNode(Cubic const& c, double from, double to, Index arc, Index start, Index end);
    void WorkOff();

    OutlineArcs& mArcs;
    CertifiedParts& mParts;
    double mMargin;
    double mFinest; ///< height
    std::vector<Node> mNodes;
    std::vector<Pair> mQueue; // in the order in which it is worked off
    std::size_t mNext = 0;    // in the queue
    std::size_t mMostTests = 0;
};

void CertifiedParts::Work::Halve(Index index) {
    if (mNodes[index].half != kNoIndex) {
        return;
    }
    Node const node = mNodes[index];
    double const middle = 0.5 * (node.from + node.to);
    Node first = node;
    Node second = node;
    first.c = HeadOf(node.c, 0.5);
    second.c = TailOf(node.c, 0.5);
    first.to = second.from = middle;
    first.end = second.start = kNoIndex;
    Measure(first, mMargin);
    Measure(second, mMargin);
    mNodes[index].half = static_cast<Index>(mNodes.size());
    mNodes.push_back(first);
    mNodes.push_back(second);
    cuts.push_back({node.arc, middle, kNoIndex, true});
}

void CertifiedParts::Work::HalveFirst(Pair pair) {
    Halve(pair.a);
    Index const half = mNodes[pair.a].half;
    mQueue.push_back({half, pair.b});
    mQueue.push_back({half + 1, pair.b});
}

void CertifiedParts::Work::AddContact(Pair pair) {
    Node const& a = mNodes[pair.a];
    Node const& b = mNodes[pair.b];
    mParts.mContacts.push_back({{a.arc, a.from, a.to}, {b.arc, b.from, b.to}});
    mParts.mGreatestHeight =
        std::max(mParts.mGreatestHeight, std::max(Height(pair.a), Height(pair.b)));
}

void CertifiedParts::Work::AddCrossing(Node const& a, Node const& b, double s, double t) {
    auto const onArc = [](Node const& node, double at) {
        return std::min(std::max(node.from + (node.to - node.from) * at, 0.0), 1.0);
    };
    // A level or upright line keeps its place.
    Pt place = PlaceAt(a.c, s).point;
    for (Index const arc : {a.arc, b.arc}) {
        OutlineArc const& line = mArcs.arcs[arc];
        if (line.straight) {
            place.h = line.c[0].h == line.c[3].h ? line.c[0].h : place.h;
            place.v = line.c[0].v == line.c[3].v ? line.c[0].v : place.v;
        }
    }
    Index const vertex = mArcs.vertices.AtWork(place);
    cuts.push_back({a.arc, onArc(a, s), vertex, false});
    cuts.push_back({b.arc, onArc(b, t), vertex, false});
}

bool CertifiedParts::Work::PartAtJoint(Node const& a, Node const& b) const {
    bool const startShared = a.start == b.start || a.start == b.end;
    if (startShared == (a.end == b.start || a.end == b.end)) {
        return false;
    }
    Pt const joint = startShared ? a.c[0] : a.c[3];
    Pt const farA = startShared ? a.c[3] : a.c[0];
    Pt const farB = (startShared ? a.start : a.end) == b.start ? b.c[3] : b.c[0];
    // The boxes are wider by the margin, and rounding may move control points by as much. The far
    // ends are farther away. So the line has no other point of both arcs, nor of their chords.
    double const over = 2.0 * mMargin;
    double const least = 16.0 * mMargin;
    auto const parts = [&](double at, double lowA, double highB, double endA, double endB) {
        return lowA >= at - over && highB <= at + over && endA > at + least && endB < at - least;
    };
    return parts(joint.h, a.box.lowX, b.box.highX, farA.h, farB.h) ||
           parts(joint.h, b.box.lowX, a.box.highX, farB.h, farA.h) ||
           parts(joint.v, a.box.lowY, b.box.highY, farA.v, farB.v) ||
           parts(joint.v, b.box.lowY, a.box.highY, farB.v, farA.v);
}

void CertifiedParts::Work::Test(Pair pair) {
    Node const& a = mNodes[pair.a];
    Node const& b = mNodes[pair.b];
    if (!a.box.Meets(b.box)) {
        return;
    }
    bool const startShared = a.start != kNoIndex && (a.start == b.start || a.start == b.end);
    bool const endShared = a.end != kNoIndex && (a.end == b.start || a.end == b.end);
    if (startShared != endShared) {
        bool const startOfB = (startShared ? a.start : a.end) == b.start;
        if (ConesApart(From(a.c, startShared), From(b.c, startOfB), mMargin)) {
            return;
        }
    } else if (!startShared) {
        if (ChordSeparates(a.c, b.c, mMargin) || ChordSeparates(b.c, a.c, mMargin)) {
            return;
        }
        double s = 0.0;
        double t = 0.0;
        if (TurnOf(Steps(a.c), Steps(b.c), mMargin) != 0 && FindCrossing(a.c, b.c, s, t)) {
            AddCrossing(a, b, s, t);
            return;
        }
    }
    double const heightA = Height(pair.a);
    double const heightB = Height(pair.b);
    if (heightA <= mFinest && heightB <= mFinest) {
        double s = 0.0;
        double t = 0.0;
        if (!startShared && !endShared && TurnOf(Steps(a.c), Steps(b.c), mMargin) != 0 &&
            FindSlowCrossing(a.c, b.c, s, t)) {
            AddCrossing(a, b, s, t);
        } else {
            AddContact(pair);
        }
    } else if (heightA >= heightB) {
        HalveFirst(pair);
    } else {
        HalveFirst({pair.b, pair.a});
    }
}

void CertifiedParts::Work::AddNode(Cubic const& c, double from, double to, Index arc, Index start,
                                   Index end) {
    Node node{c, {}, from, to, 0.0, arc, start, end, kNoIndex};
    Measure(node, mMargin);
    if (mArcs.arcs[arc].straight) {
        node.height = 0.0;
    }
    mNodes.push_back(node);
}

void CertifiedParts::Work::Run() {
    mNodes.reserve(2 * mArcs.arcs.size());
    for (std::size_t i = 0; i < mArcs.arcs.size(); ++i) {
        OutlineArc const& arc = mArcs.arcs[i];
        AddNode(arc.c, 0.0, 1.0, static_cast<Index>(i), arc.v0, arc.v1);
    }
    mQueue.reserve(2 * mArcs.pairs.size());
    cuts.reserve(64);
    for (auto const& [i, j] : mArcs.pairs) {
        if ((!mArcs.arcs[i].straight || !mArcs.arcs[j].straight) &&
            !PartAtJoint(mNodes[i], mNodes[j])) {
            mQueue.push_back({i, j});
        }
    }
    mMostTests = kTestsForAll + kTestsForPair * mQueue.size();
    WorkOff();
}

void CertifiedParts::Work::WorkOff() {
    // Pairs are tested in the order in which they came. So where there is too much work, the pairs
    // that are left are as fine as possible.
    for (; mNext < mQueue.size(); ++mNext) {
        if (mNext < mMostTests) {
            Test(mQueue[mNext]);
        } else {
            mParts.mIncomplete = true;
            AddContact(mQueue[mNext]);
        }
    }
}

bool CertifiedParts::Work::AnyWithSameEnds() const {
    std::uint64_t const none = std::numeric_limits<std::uint64_t>::max();
    std::size_t size = 64;
    while (size < 2 * mParts.Count()) {
        size *= 2;
    }
    std::vector<std::uint64_t> slots(size, none); // the ends of parts
    for (Index i = 0; i < mArcs.arcs.size(); ++i) {
        for (std::size_t k = mParts.Begin(i); k < mParts.End(i); ++k) {
            Index const start = mParts.VertexAt(i, k);
            Index const end = mParts.VertexAt(i, k + 1);
            std::uint64_t const ends =
                std::uint64_t{std::min(start, end)} << 32U | std::max(start, end);
            auto slot = static_cast<std::size_t>(ends * 0x9E3779B97F4A7C15U >> 24U) & (size - 1);
            for (; slots[slot] != none; slot = (slot + 1) & (size - 1)) {
                if (slots[slot] == ends) {
                    return true;
                }
            }
            slots[slot] = ends;
        }
    }
    return false;
}

bool CertifiedParts::Work::RunAgain() {
    if (!AnyWithSameEnds()) {
        return false;
    }
    struct Part {
        Index low; // of the vertices at its ends
        Index high;
        Index arc;
        std::size_t number;
    };
    std::vector<Part> parts;
    parts.reserve(mParts.Count());
    for (Index i = 0; i < mArcs.arcs.size(); ++i) {
        for (std::size_t k = mParts.Begin(i); k < mParts.End(i); ++k) {
            Index const start = mParts.VertexAt(i, k);
            Index const end = mParts.VertexAt(i, k + 1);
            parts.push_back({std::min(start, end), std::max(start, end), i, k});
        }
    }
    std::sort(parts.begin(), parts.end(), [](Part const& a, Part const& b) {
        return std::tie(a.low, a.high, a.arc, a.number) < std::tie(b.low, b.high, b.arc, b.number);
    });
    auto const add = [&](Part const& part) {
        double const from = mParts.ParameterAt(part.arc, part.number);
        double const to = mParts.ParameterAt(part.arc, part.number + 1);
        Index const start = mParts.VertexAt(part.arc, part.number);
        Index const end = mParts.VertexAt(part.arc, part.number + 1);
        Cubic c = PartOf(mArcs.arcs[part.arc].c, from, to);
        MoveEnds(c, mArcs.vertices.WorkPlace(start), mArcs.vertices.WorkPlace(end));
        AddNode(c, from, to, part.arc, start, end);
        return static_cast<Index>(mNodes.size() - 1);
    };
    for (std::size_t i = 0; i < parts.size(); ++i) {
        Index first = kNoIndex;
        std::size_t const last = std::min(parts.size(), i + 1 + kPartsCompared);
        for (std::size_t k = i + 1;
             k < last && parts[k].low == parts[i].low && parts[k].high == parts[i].high; ++k) {
            if (mArcs.arcs[parts[i].arc].straight && mArcs.arcs[parts[k].arc].straight) {
                continue;
            }
            first = first == kNoIndex ? add(parts[i]) : first;
            Index const second = add(parts[k]);
            // Chords of contacts may be the same.
            if (std::max(Height(first), Height(second)) > mArcs.Reach()) {
                mQueue.push_back({first, second});
            }
        }
    }
    bool const any = mNext < mQueue.size();
    WorkOff();
    return any;
}

CertifiedParts::CertifiedParts(OutlineArcs& arcs) {
    Work work(arcs, *this);
    work.Run();
    TakeCuts(arcs, work.cuts);
    // A crossing can lie so near to a place of halving that both become one vertex. Then two parts
    // may have both ends in common, and the same chord, though they are far apart between.
    for (int round = 0; round < kMostRounds && work.RunAgain(); ++round) {
        TakeCuts(arcs, work.cuts);
    }
}

void CertifiedParts::TakeCuts(OutlineArcs& arcs, std::vector<ArcCut>& cuts) {
    std::sort(cuts.begin(), cuts.end(), [](ArcCut const& a, ArcCut const& b) {
        return a.arc != b.arc ? a.arc < b.arc : a.t != b.t ? a.t < b.t : a.vertex < b.vertex;
    });
    double const reach = arcs.Reach();
    auto const near = [&](Index vertex, Pt const& p) {
        Pt const& v = arcs.vertices.WorkPlace(vertex);
        return std::abs(v.h - p.h) <= reach && std::abs(v.v - p.v) <= reach;
    };
    mBegins.clear();
    mPlaces.clear();
    mBegins.reserve(arcs.arcs.size() + 1);
    mPlaces.reserve(cuts.size() + 2 * arcs.arcs.size());
    std::size_t next = 0;
    for (std::size_t i = 0; i < arcs.arcs.size(); ++i) {
        OutlineArc const& arc = arcs.arcs[i];
        std::size_t const begin = mPlaces.size();
        mBegins.push_back(begin);
        mPlaces.push_back({0.0, arc.v0});
        // A vertex that is come back to ends what lies between, which is no larger than the reach.
        auto const add = [&](double t, Index vertex) {
            for (std::size_t k = mPlaces.size(); k-- > begin;) {
                if (mPlaces[k].vertex == vertex) {
                    mPlaces.resize(k + 1);
                    return;
                }
                if (near(mPlaces[k].vertex, arcs.vertices.WorkPlace(vertex)) && k > begin) {
                    continue;
                }
                break;
            }
            mPlaces.push_back({t, vertex});
        };
        for (; next < cuts.size() && cuts[next].arc == i; ++next) {
            ArcCut const& cut = cuts[next];
            if (!cut.halving) {
                if (cut.vertex != arc.v1) {
                    add(cut.t, cut.vertex);
                }
                continue;
            }
            Pt const place = PlaceAt(arc.c, cut.t).point;
            bool const needless = near(mPlaces.back().vertex, place) || near(arc.v1, place) ||
                                  (next + 1 < cuts.size() && cuts[next + 1].arc == i &&
                                   !cuts[next + 1].halving && near(cuts[next + 1].vertex, place));
            if (!needless) {
                mPlaces.push_back({cut.t, arcs.vertices.AddApart(place)});
            }
        }
        mPlaces.push_back({1.0, arc.v1});
    }
    mBegins.push_back(mPlaces.size());
}

} // namespace trammel_detail
