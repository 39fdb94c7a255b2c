// SPDX-License-Identifier: MIT

// Where paths meet each other and themselves: pairs of elements by a tree of boxes, their meets
// joined at vertices, and the sides on which the outlines pass.

#include "BoxTree_p.h"
#include "Box_p.h"
#include "CurveMeets_p.h"
#include "Intersections.h"
#include "LineMeets_p.h"
#include "OutlineMeets_p.h"
#include "PathCursor.h"
#include "PlaceStretches_p.h"
#include "PointMath_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

namespace trammel {

namespace {

using trammel_detail::Box;
using trammel_detail::BoxTree;
using trammel_detail::CommonRun;
using trammel_detail::CrossingsOfRuns;
using trammel_detail::Cubic;
using trammel_detail::CubicOf;
using trammel_detail::CurveMeet;
using trammel_detail::CurveMeetFinder;
using trammel_detail::HowTheyPass;
using trammel_detail::HowTheyPassAlong;
using trammel_detail::IsFinite;
using trammel_detail::IsShort;
using trammel_detail::kFinestCells;
using trammel_detail::LinesMeet;
using trammel_detail::MeetOfLines;
using trammel_detail::MeetOfLinesAtEnds;
using trammel_detail::OutlineRun;
using trammel_detail::OutlineSegment;
using trammel_detail::PartOf;
using trammel_detail::Passing;
using trammel_detail::PathCursor;
using trammel_detail::PlaceStretches;
using trammel_detail::PolygonLength;
using trammel_detail::RunCrossings;
using trammel_detail::RunsBackAlongItself;
using trammel_detail::SegmentStretch;
using trammel_detail::TurnsOf;
using trammel_detail::TurnsOfCubic;

typedef TPoint<double> Pt;
/// The segments of an outline that have finite coordinates. Those without extent are left out,
/// unless a subpath has no others.
typedef std::vector<OutlineSegment> Outline;

constexpr std::size_t kNone = OutlineSegment::kNone;

bool HasExtent(Cubic const& c) { return c[0] != c[1] || c[0] != c[2] || c[0] != c[3]; }

bool AllFinite(Cubic const& c) {
    return std::all_of(c.begin(), c.end(), [](Pt const& p) { return IsFinite(p); });
}

/// Joins segments of one outline in the order in which they are added.
class OutlineBuilder {
public:
    /// Goes on with another subpath.
    void Begin() {
        FinishSubpath();
        mBegun = mOutline.size();
    }
    void Add(OutlineSegment const& segment) {
        if (!AllFinite(segment.c)) {
            mJoin = false;
            mWhole = false;
            return;
        }
        if (!HasExtent(segment.c)) {
            if (!mHasPoint) {
                mPoint = segment;
                mHasPoint = true;
            }
            return;
        }
        std::size_t const index = mOutline.size();
        mOutline.push_back(segment);
        if (mJoin && index > mBegun) {
            mOutline[index].before = index - 1;
            mOutline[index - 1].after = index;
        }
        mJoin = true;
    }
    /// Joins the subpath's end to its beginning.
    void Close() {
        if (mWhole && mOutline.size() > mBegun) {
            mOutline[mBegun].before = mOutline.size() - 1;
            mOutline.back().after = mBegun;
        }
    }
    Outline Finish() {
        FinishSubpath();
        return std::move(mOutline);
    }

private:
    void FinishSubpath() {
        if (mOutline.size() == mBegun && mHasPoint) {
            mOutline.push_back(mPoint);
        }
        mHasPoint = false;
        mJoin = true;
        mWhole = true;
    }

    Outline mOutline;
    OutlineSegment mPoint; ///< the subpath's first segment without extent
    bool mHasPoint = false;
    std::size_t mBegun = 0; ///< the subpath's first segment
    bool mJoin = true;      ///< whether the next segment follows the last one
    bool mWhole = true;     ///< whether no segment of the subpath is absent
};

OutlineSegment SegmentOf(TLine<double> const& line, std::size_t element) {
    OutlineSegment segment{CubicOf(line), element};
    segment.straight = true;
    return segment;
}

Outline OutlineOf(CBezier const& curve) {
    OutlineBuilder builder;
    builder.Add({CubicOf(curve), 0});
    return builder.Finish();
}

Outline OutlineOf(TLine<double> const& line) {
    OutlineBuilder builder;
    builder.Add(SegmentOf(line, 0));
    return builder.Finish();
}

Outline OutlineOf(CPath const& path) {
    OutlineBuilder builder;
    for (PathCursor cursor(path); cursor.NextOrMove();) {
        std::size_t const element = cursor.Element();
        if (cursor.Code() == kPathMove) {
            builder.Begin();
        } else if (cursor.IsCurve()) {
            builder.Add({CubicOf(cursor.Curve()), element});
        } else {
            builder.Add(SegmentOf(cursor.Line(), element));
            if (cursor.Code() == kPathClose) {
                builder.Close();
                builder.Begin();
            }
        }
    }
    return builder.Finish();
}

/// Which curves of an outline are divided where they turn back.
enum class Divided { kAll, kStraight };

/// Returns the outline with curves divided into parts that do not cross themselves or run back:
/// all of them, or the curves that are straight within `accuracy`.
Outline WithSimpleParts(Outline const& outline, Divided divided, double accuracy) {
    Outline parts;
    parts.reserve(outline.size());
    std::vector<std::size_t> firsts(outline.size());
    std::vector<std::size_t> lasts(outline.size());
    for (std::size_t i = 0; i < outline.size(); ++i) {
        firsts[i] = parts.size();
        OutlineSegment const& whole = outline[i];
        bool const simple = whole.straight || (divided == Divided::kStraight &&
                                               !RunsBackAlongItself(whole.c, accuracy));
        TurnsOfCubic const cuts = simple ? TurnsOfCubic{{}, 0} : TurnsOf(whole.c);
        for (std::size_t k = 0; k <= cuts.count; ++k) {
            OutlineSegment part = whole;
            if (cuts.count > 0) {
                part.from = k > 0 ? cuts.t[k - 1] : 0.0;
                part.to = k < cuts.count ? cuts.t[k] : 1.0;
                part.c = PartOf(whole.c, part.from, part.to);
                if (k > 0) {
                    part.c[0] = parts.back().c[3];
                }
            }
            part.before = k > 0 ? parts.size() - 1 : kNone;
            part.after = k < cuts.count ? parts.size() + 1 : kNone;
            parts.push_back(part);
        }
        lasts[i] = parts.size() - 1;
    }
    for (std::size_t i = 0; i < outline.size(); ++i) {
        if (outline[i].before != kNone) {
            parts[firsts[i]].before = lasts[outline[i].before];
        }
        if (outline[i].after != kNone) {
            parts[lasts[i]].after = firsts[outline[i].after];
        }
    }
    return parts;
}

/// A meet of two segments.
struct PairMeet {
    std::size_t a; ///< the segments
    std::size_t b;
    CurveMeet meet;
    bool startA = false; ///< whether the stretch reaches the beginning of segment a
    bool endA = false;
    bool startB = false;
    bool endB = false;
    std::size_t group = 0;

    double LowT() const { return std::min(meet.t0, meet.t1); }
    double HighT() const { return std::max(meet.t0, meet.t1); }
};

class PairFinder {
public:
    /// `own` tells that both outlines are the same one.
    PairFinder(Outline const& a, Outline const& b, double accuracy, bool own)
        : mA(a), mB(b), mOwn(own), mAccuracy(accuracy), mKept(accuracy) {
        for (Outline const* outline : {&a, &b}) {
            for (OutlineSegment const& s : *outline) {
                for (Pt const& p : s.c) {
                    mSize = std::max(mSize, std::max(std::abs(p.h), std::abs(p.v)));
                }
            }
        }
    }

    double Run(std::vector<Intersection>& out, int exponent) {
        FindMeets();
        Touch();
        JoinMeets();
        Describe(out, exponent);
        return mKept;
    }

private:
    /// The distance within which points of segments count as one where segments are joined. It
    /// leaves room for the rounding of coordinates, which a pair of segments need not.
    double JoinAccuracy() const { return std::max(mKept, 0x1p-46 * mSize); }

    static std::vector<Box<double>> BoxesOf(Outline const& outline, double margin) {
        std::vector<Box<double>> boxes;
        boxes.reserve(outline.size());
        for (OutlineSegment const& s : outline) {
            Box<double> box;
            for (Pt const& p : s.c) {
                box.Include(p.h, p.v);
            }
            boxes.push_back(box.Widened(margin, margin));
        }
        return boxes;
    }

    void FindMeets() {
        // Boxes as far apart as this have nothing in common for the finder, whose accuracy may be
        // the finest that rounding allows.
        double const margin = std::max(mAccuracy >= 0.0 ? mAccuracy : 0.0, 0x1p-39 * mSize);
        BoxTree const treeA(BoxesOf(mA, margin));
        auto const visit = [&](std::size_t i, std::size_t j) { Examine(i, j); };
        if (mOwn) {
            treeA.ForMeetingPairs(visit);
        } else {
            treeA.ForMeeting(BoxTree(BoxesOf(mB, margin)), visit);
        }
    }
    void Examine(std::size_t i, std::size_t j) {
        OutlineSegment const& a = mA[i];
        OutlineSegment const& b = mB[j];
        if (a.straight && b.straight) {
            double extent = 0.0;
            for (Pt const& p : {a.c[3], b.c[0], b.c[3]}) {
                Pt const off = p - a.c[0];
                extent = std::max(extent, std::max(std::abs(off.h), std::abs(off.v)));
            }
            double const asked = mAccuracy >= 0.0 ? mAccuracy : 0.0;
            CurveMeet meet;
            LinesMeet found =
                MeetOfLines(a.c, b.c, std::max(asked, 4.0 * kFinestCells * extent), meet);
            if (found == LinesMeet::kUnclear) {
                double const kept = std::max(asked, kFinestCells * extent);
                found = MeetOfLinesAtEnds(a.c, b.c, kept, meet);
                if (found == LinesMeet::kMeet) {
                    mKept = mKept >= kept ? mKept : kept;
                }
            }
            if (found != LinesMeet::kUnclear) {
                if (found == LinesMeet::kMeet) {
                    mMeets.push_back({i, j, meet});
                }
                return;
            }
        }
        double const kept = mFinder.Find(a.c, b.c, mAccuracy, a.straight, b.straight);
        if (mFinder.Meets().empty()) {
            return;
        }
        // A NaN is less than nothing that is kept.
        mKept = mKept >= kept ? mKept : kept;
        for (CurveMeet const& m : mFinder.Meets()) {
            mMeets.push_back({i, j, m});
        }
    }

    /// Finds out which ends of segments the meets reach, and drops meets that are only the joint
    /// of two segments of one outline.
    void Touch() {
        if (!(mKept >= 0.0)) {
            mKept = 0.0;
        }
        double const near = JoinAccuracy();
        for (PairMeet& m : mMeets) {
            Cubic const& a = mA[m.a].c;
            Cubic const& b = mB[m.b].c;
            m.startA = IsShort(a, 0.0, m.meet.s0, near);
            m.endA = IsShort(a, m.meet.s1, 1.0, near);
            m.startB = IsShort(b, 0.0, m.LowT(), near);
            m.endB = IsShort(b, m.HighT(), 1.0, near);
        }
        if (mOwn) {
            mMeets.erase(
                std::remove_if(mMeets.begin(), mMeets.end(),
                               [&](PairMeet const& m) { return !m.meet.overlap && IsJoint(m); }),
                mMeets.end());
        }
        std::sort(mMeets.begin(), mMeets.end(), [](PairMeet const& m, PairMeet const& n) {
            return std::tie(m.a, m.meet.s0, m.b, m.meet.t0) <
                   std::tie(n.a, n.meet.s0, n.b, n.meet.t0);
        });
    }

    /// True when a meet of an outline with itself is a place where it merely goes on: the way
    /// between the two parameters is no longer than twice the accuracy.
    bool IsJoint(PairMeet const& m) const {
        return (m.endA && m.startB && IsNext(m.a, m.b)) || (m.endB && m.startA && IsNext(m.b, m.a));
    }
    /// True when segment j follows segment i, or comes after some short ones that do.
    bool IsNext(std::size_t i, std::size_t j) const {
        double left = 2.0 * JoinAccuracy();
        constexpr int kMostSteps = 16;
        for (int step = 0; step < kMostSteps; ++step) {
            i = mA[i].after;
            if (i == j) {
                return true;
            }
            if (i == kNone) {
                return false;
            }
            left -= PolygonLength(mA[i].c);
            if (!(left >= 0.0)) {
                return false;
            }
        }
        return false;
    }

    std::size_t Root(std::size_t i) {
        while (mMeets[i].group != i) {
            mMeets[i].group = mMeets[mMeets[i].group].group;
            i = mMeets[i].group;
        }
        return i;
    }
    void Unite(std::size_t i, std::size_t j) {
        std::size_t const low = std::min(Root(i), Root(j));
        std::size_t const high = std::max(Root(i), Root(j));
        mMeets[high].group = low;
    }

    /// Puts meets together that go on beyond the ends of segments.
    void JoinMeets() {
        for (std::size_t i = 0; i < mMeets.size(); ++i) {
            mMeets[i].group = i;
        }
        JoinAcross(true);
        JoinAcross(false);
    }
    /// A meet that reaches a joint of one outline, to be held against others that do.
    struct AtJoint {
        std::size_t joint;   ///< the segment after the joint
        std::size_t segment; ///< of the other outline
        std::size_t meet;

        bool operator<(AtJoint const& j) const {
            return std::tie(joint, segment, meet) < std::tie(j.joint, j.segment, j.meet);
        }
    };
    /// Joins meets at the joints of A, or of B.
    void JoinAcross(bool ofA) {
        Outline const& outline = ofA ? mA : mB;
        Outline const& other = ofA ? mB : mA;
        std::vector<AtJoint> at;
        for (std::size_t i = 0; i < mMeets.size(); ++i) {
            PairMeet const& m = mMeets[i];
            std::size_t const segment = ofA ? m.a : m.b;
            std::size_t const across = ofA ? m.b : m.a;
            if ((ofA ? m.startA : m.startB) && outline[segment].before != kNone) {
                at.push_back({segment, across, i});
            }
            if ((ofA ? m.endA : m.endB) && outline[segment].after != kNone) {
                at.push_back({outline[segment].after, across, i});
            }
        }
        std::sort(at.begin(), at.end());
        for (std::size_t k = 0; k < at.size(); ++k) {
            PairMeet const& m = mMeets[at[k].meet];
            // Others on the same segment of the other outline; the list has them next to each
            // other.
            for (std::size_t l = k + 1;
                 l < at.size() && at[l].joint == at[k].joint && at[l].segment == at[k].segment;
                 ++l) {
                if (LieTogether(m, mMeets[at[l].meet], !ofA)) {
                    Unite(at[k].meet, at[l].meet);
                }
            }
            // Others on the segment after it, where both reach the joint between.
            std::size_t const next = other[at[k].segment].after;
            if (!(ofA ? m.endB : m.endA) || next == kNone) {
                continue;
            }
            for (auto l = std::lower_bound(at.begin(), at.end(), AtJoint{at[k].joint, next, 0});
                 l != at.end() && l->joint == at[k].joint && l->segment == next; ++l) {
                if (ofA ? mMeets[l->meet].startB : mMeets[l->meet].startA) {
                    Unite(at[k].meet, l->meet);
                }
            }
        }
    }
    /// True when the stretches of two meets lie together on one segment of A, or of B.
    bool LieTogether(PairMeet const& m, PairMeet const& n, bool onA) const {
        double const limit = 2.0 * JoinAccuracy();
        Cubic const& c = onA ? mA[m.a].c : mB[m.b].c;
        double const lowM = onA ? m.meet.s0 : m.LowT();
        double const highM = onA ? m.meet.s1 : m.HighT();
        double const lowN = onA ? n.meet.s0 : n.LowT();
        double const highN = onA ? n.meet.s1 : n.HighT();
        return IsShort(c, highM, lowN, limit) && IsShort(c, highN, lowM, limit);
    }

    /// Meets that are one place, by their numbers.
    struct Group {
        std::size_t const* first;
        std::size_t const* end;
        Passing passing = Passing::kTouch;
    };

    /// Appends the places of each group.
    void Describe(std::vector<Intersection>& out, int exponent) {
        std::vector<std::size_t> order(mMeets.size());
        for (std::size_t i = 0; i < mMeets.size(); ++i) {
            order[i] = i;
            mMeets[i].group = Root(i);
        }
        // The first meet of each group is its number, so groups come in the order of their places.
        std::sort(order.begin(), order.end(), [&](std::size_t i, std::size_t j) {
            return std::tie(mMeets[i].group, i) < std::tie(mMeets[j].group, j);
        });
        std::vector<Group> groups;
        for (std::size_t first = 0; first < order.size();) {
            std::size_t end = first + 1;
            while (end < order.size() && mMeets[order[end]].group == mMeets[order[first]].group) {
                ++end;
            }
            groups.push_back({order.data() + first, order.data() + end});
            first = end;
        }
        TellPassings(groups);
        std::size_t const begun = out.size();
        for (Group const& group : groups) {
            AppendGroup(group, out, exponent);
        }
        std::sort(out.begin() + static_cast<std::ptrdiff_t>(begun), out.end(),
                  [](Intersection const& p, Intersection const& q) {
                      return std::tie(p.a.element, p.a.t, p.b.element, p.b.t) <
                             std::tie(q.a.element, q.a.t, q.b.element, q.b.t);
                  });
    }

    /// Tells of all groups how the outlines pass each other there.
    void TellPassings(std::vector<Group>& groups) const {
        std::vector<Group*> woven;
        for (Group& g : groups) {
            g.passing = PassingOf(g);
            if (!mOwn && g.passing != Passing::kEnd && !IsClear(g)) {
                woven.push_back(&g);
            }
        }
        // The outlines may run to and fro in a place, or around its corners through others. Places
        // that lie between the ends are counted along. So the small groups come first.
        std::stable_sort(woven.begin(), woven.end(), [](Group const* g, Group const* h) {
            return g->end - g->first < h->end - h->first;
        });
        for (Group* const g : woven) {
            RunCrossings found;
            if (CrossingsOfRuns(RunOfA(*g), RunOfB(*g), JoinAccuracy(), found)) {
                g->passing = found.passing;
                if (found.passing != Passing::kEnd && CrossOddly(groups, *g, found)) {
                    g->passing =
                        found.passing == Passing::kCross ? Passing::kTouch : Passing::kCross;
                }
            }
        }
    }
    /// A segment's part that lies in a run.
    struct RunPart {
        std::size_t segment;
        double low;
        double high;
    };
    static std::vector<RunPart> PartsOf(OutlineRun const& run) {
        std::vector<RunPart> parts;
        std::size_t i = run.first;
        double low = run.firstT;
        while (true) {
            bool const last = i == run.last && low <= run.lastT;
            parts.push_back({i, low, last ? run.lastT : 1.0});
            i = run.segments[i].after;
            low = 0.0;
            if (last || i == kNone) {
                break;
            }
        }
        std::sort(parts.begin(), parts.end(), [](RunPart const& p, RunPart const& q) {
            return std::tie(p.segment, p.low) < std::tie(q.segment, q.low);
        });
        return parts;
    }
    /// True when the outlines cross in an odd number of groups within two runs, `apart` left out.
    bool CrossOddly(std::vector<Group> const& groups, Group const& apart,
                    RunCrossings const& runs) const {
        std::vector<RunPart> const partsB = PartsOf(runs.b);
        auto const isInB = [&](std::size_t segment, double t) {
            auto part = std::lower_bound(
                partsB.begin(), partsB.end(), segment,
                [](RunPart const& p, std::size_t value) { return p.segment < value; });
            for (; part != partsB.end() && part->segment == segment; ++part) {
                if (t >= part->low && t <= part->high) {
                    return true;
                }
            }
            return false;
        };
        bool odd = false;
        for (RunPart const& part : PartsOf(runs.a)) {
            auto m = std::lower_bound(
                mMeets.begin(), mMeets.end(), part.segment,
                [](PairMeet const& meet, std::size_t value) { return meet.a < value; });
            for (; m != mMeets.end() && m->a == part.segment; ++m) {
                // The first meet of a group stands for it.
                if (m->group == static_cast<std::size_t>(m - mMeets.begin()) &&
                    m->group != *apart.first && m->meet.s >= part.low && m->meet.s <= part.high &&
                    isInB(m->b, m->meet.t)) {
                    auto const group = std::lower_bound(
                        groups.begin(), groups.end(), m->group,
                        [](Group const& g, std::size_t value) { return *g.first < value; });
                    odd = odd != (group->passing == Passing::kCross);
                }
            }
        }
        return odd;
    }
    /// True for a single meet that tells sides and reaches no joint.
    bool IsClear(Group const& g) const {
        PairMeet const& m = mMeets[*g.first];
        return g.end - g.first == 1 && !m.startA && !m.endA && !m.startB && !m.endB &&
               m.meet.before != 0 && m.meet.after != 0;
    }
    Passing PassingOf(Group const& g) const {
        PairMeet const& m = mMeets[*g.first];
        if (IsClear(g)) {
            return m.meet.before != m.meet.after ? Passing::kCross : Passing::kTouch;
        }
        if (mOwn &&
            std::any_of(g.first, g.end, [&](std::size_t i) { return IsJoint(mMeets[i]); })) {
            return Passing::kTouch;
        }
        CommonRun const a = RunOfA(g);
        CommonRun const b = RunOfB(g);
        return FirstOverlap(g) != g.end ? HowTheyPassAlong(a, b, JoinAccuracy())
                                        : HowTheyPass(a.all, b.all, JoinAccuracy());
    }
    std::size_t const* FirstOverlap(Group const& g) const {
        return std::find_if(g.first, g.end, [&](std::size_t i) { return mMeets[i].meet.overlap; });
    }

    void AppendGroup(Group const& g, std::vector<Intersection>& out, int exponent) const {
        std::size_t const* const overlap = FirstOverlap(g);
        bool crosses = g.passing == Passing::kCross;
        if (overlap == g.end) {
            // A crossing that a cell has found is the best place.
            std::size_t const* const best = std::find_if(g.first, g.end, [&](std::size_t i) {
                return mMeets[i].meet.before * mMeets[i].meet.after < 0;
            });
            PairMeet const& place = mMeets[best != g.end ? *best : *g.first];
            IntersectionKind const kind = crosses ? IntersectionKind::kCrossing
                                          : g.passing == Passing::kTouch
                                              ? IntersectionKind::kContact
                                              : IntersectionKind::kEnd;
            Append(place, kind, crosses, exponent, out);
            return;
        }
        for (std::size_t const* i = overlap; i != g.end; ++i) {
            if (mMeets[*i].meet.overlap) {
                Append(mMeets[*i], IntersectionKind::kOverlap, crosses, exponent, out);
                crosses = false;
            }
        }
    }
    void Append(PairMeet const& place, IntersectionKind kind, bool crosses, int exponent,
                std::vector<Intersection>& out) const {
        OutlineSegment const& a = mA[place.a];
        OutlineSegment const& b = mB[place.b];
        CurveMeet const& m = place.meet;
        bool const stretch = kind == IntersectionKind::kOverlap;
        double const s0 = stretch ? m.s0 : m.s;
        double const s1 = stretch ? m.s1 : m.s;
        double const t0 = stretch ? m.t0 : m.t;
        double const t1 = stretch ? m.t1 : m.t;
        auto const pointAt = [&](double s) {
            Pt const p = CBezier(a.c[0], a.c[1], a.c[2], a.c[3]).TPt(s);
            return exponent == 0 ? p : Pt(std::scalbn(p.h, exponent), std::scalbn(p.v, exponent));
        };
        out.push_back({kind,
                       crosses,
                       {a.element, a.ParameterAt(s0), a.ParameterAt(s1)},
                       {b.element, b.ParameterAt(t0), b.ParameterAt(t1)},
                       pointAt(s0),
                       pointAt(s1)});
    }

    /// The stretch of A that a group of meets covers.
    CommonRun RunOfA(Group const& g) const {
        return RunOf(g, mA, [](PairMeet const& m) {
            return SegmentStretch{m.a, m.meet.s0, m.meet.s1, m.startA, m.endA};
        });
    }
    /// The stretch of B.
    CommonRun RunOfB(Group const& g) const {
        return RunOf(g, mB, [](PairMeet const& m) {
            return SegmentStretch{m.b, m.LowT(), m.HighT(), m.startB, m.endB};
        });
    }
    /// The stretch of an outline, where stretchOf(meet) is that of one meet.
    template <class StretchOf>
    CommonRun RunOf(Group const& g, Outline const& outline, StretchOf const& stretchOf) const {
        PlaceStretches stretches(outline);
        for (std::size_t const* i = g.first; i != g.end; ++i) {
            PairMeet const& m = mMeets[*i];
            SegmentStretch next = stretchOf(m);
            if (m.meet.overlap) {
                next.lowCommon = next.low;
                next.highCommon = next.high;
                next.againstAtLow = next.againstAtHigh = m.meet.t1 < m.meet.t0;
            }
            stretches.Add(next);
        }
        return stretches.Run(2.0 * JoinAccuracy());
    }

    Outline const& mA;
    Outline const& mB;
    bool mOwn;
    double mAccuracy;
    double mKept;
    double mSize = 0.0; ///< the greatest magnitude of a coordinate
    CurveMeetFinder mFinder;
    std::vector<PairMeet> mMeets;
};

/// Multiplies all coordinates by a power of two, if products of four could overflow or underflow.
/// Returns the exponent of what they were divided by.
int Scale(Outline& a, Outline& b) {
    double size = 0.0;
    for (Outline const* outline : {&a, &b}) {
        for (OutlineSegment const& s : *outline) {
            for (Pt const& p : s.c) {
                size = std::max(size, std::max(std::abs(p.h), std::abs(p.v)));
            }
        }
    }
    if (size == 0.0 || (size >= 0x1p-100 && size <= 0x1p100)) {
        return 0;
    }
    int const exponent = std::ilogb(size);
    for (Outline* outline : {&a, &b}) {
        for (OutlineSegment& s : *outline) {
            for (Pt& p : s.c) {
                p = Pt(std::scalbn(p.h, -exponent), std::scalbn(p.v, -exponent));
            }
        }
    }
    return exponent;
}

/// Returns the distance that is kept: `accuracy` to the last bit, if it is what was asked for.
double Unscaled(double kept, double asked, int exponent, double accuracy) {
    return kept > asked || !(asked == asked) ? std::scalbn(kept, exponent)
                                             : std::max(accuracy, 0.0);
}

/// Appends the places where two outlines meet.
double AppendPlaces(Outline a, Outline b, double accuracy, std::vector<Intersection>& out) {
    int const exponent = Scale(a, b);
    double const scaled = std::scalbn(accuracy, -exponent);
    // An overlap runs one way on either outline.
    for (Outline* const outline : {&a, &b}) {
        if (std::any_of(outline->begin(), outline->end(), [&](OutlineSegment const& s) {
                return !s.straight && RunsBackAlongItself(s.c, scaled);
            })) {
            *outline = WithSimpleParts(*outline, Divided::kStraight, scaled);
        }
    }
    double const kept = PairFinder(a, b, scaled, false).Run(out, exponent);
    return Unscaled(kept, scaled, exponent, accuracy);
}

/// Appends the places where an outline meets itself.
double AppendOwnPlaces(Outline outline, double accuracy, std::vector<Intersection>& out) {
    Outline none;
    int const exponent = Scale(outline, none);
    double const scaled = std::scalbn(accuracy, -exponent);
    Outline const parts = WithSimpleParts(outline, Divided::kAll, scaled);
    double const kept = PairFinder(parts, parts, scaled, true).Run(out, exponent);
    return Unscaled(kept, scaled, exponent, accuracy);
}

} // namespace

double AppendIntersectionsAsOutlines(CBezier const& a, CBezier const& b, double accuracy,
                                     std::vector<Intersection>& out) {
    return AppendPlaces(OutlineOf(a), OutlineOf(b), accuracy, out);
}

double AppendIntersections(CPath const& a, CPath const& b, double accuracy,
                           std::vector<Intersection>& out) {
    return AppendPlaces(OutlineOf(a), OutlineOf(b), accuracy, out);
}

double AppendIntersections(CPath const& a, CBezier const& b, double accuracy,
                           std::vector<Intersection>& out) {
    return AppendPlaces(OutlineOf(a), OutlineOf(b), accuracy, out);
}

double AppendIntersections(CBezier const& a, CPath const& b, double accuracy,
                           std::vector<Intersection>& out) {
    return AppendPlaces(OutlineOf(a), OutlineOf(b), accuracy, out);
}

double AppendIntersections(CPath const& a, TLine<double> const& b, double accuracy,
                           std::vector<Intersection>& out) {
    return AppendPlaces(OutlineOf(a), OutlineOf(b), accuracy, out);
}

double AppendIntersections(TLine<double> const& a, CPath const& b, double accuracy,
                           std::vector<Intersection>& out) {
    return AppendPlaces(OutlineOf(a), OutlineOf(b), accuracy, out);
}

double AppendSelfIntersections(CPath const& path, double accuracy, std::vector<Intersection>& out) {
    return AppendOwnPlaces(OutlineOf(path), accuracy, out);
}

double AppendSelfIntersections(CBezier const& curve, double accuracy,
                               std::vector<Intersection>& out) {
    return AppendOwnPlaces(OutlineOf(curve), accuracy, out);
}

} // namespace trammel
