// SPDX-License-Identifier: MIT

#include "OutlineMeets_p.h"

#include "AccurateCurve.h"
#include "ContourWalk_p.h"
#include "PointMath_p.h"
#include "RayCrossings_p.h"
#include "TPoint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// The products of a curve's arms with a direction in which it is long.
std::array<double, 3> AlongCourse(Cubic const& c) {
    double const enough = 0.25 * PolygonLength(c);
    Pt direction = c[3] - c[0];
    if (Taxicab(direction) <= enough) {
        direction = c[2] - c[1];
    }
    if (Taxicab(direction) <= enough) {
        direction = c[1] - c[0];
    }
    return {Dot(direction, c[1] - c[0]), Dot(direction, c[2] - c[1]), Dot(direction, c[3] - c[2])};
}

bool HaveBothSigns(std::array<double, 3> const& d) {
    return std::min(std::min(d[0], d[1]), d[2]) < 0.0 && std::max(std::max(d[0], d[1]), d[2]) > 0.0;
}

/// A branch of an outline that leaves a place: a walk along its segments.
class Branch {
public:
    Branch(OutlineSegment const* segments, std::size_t segment, double t, bool forward)
        : mSegments(segments), mSegment(segment), mT(t), mForward(forward) {}

    enum class Reached { kCircle, kEnd };

    /// Follows the branch until it leaves the circle of a radius around a centre. Where its
    /// segments are too many, it stops at the last one's end.
    Reached Follow(Pt const& centre, double radius) {
        constexpr int kMostSegments = 16;
        for (int i = 0; i < kMostSegments; ++i) {
            OutlineSegment const& segment = mSegments[mSegment];
            if (segment.straight ? FollowLine(segment.c, centre, radius)
                                 : FollowSegment(segment.c, centre, radius)) {
                return Reached::kCircle;
            }
            std::size_t const next = mForward ? segment.after : segment.before;
            if (next == OutlineSegment::kNone) {
                return Reached::kEnd;
            }
            mSegment = next;
            mT = mForward ? 0.0 : 1.0;
        }
        return Reached::kCircle;
    }
    /// Returns the place that it has reached.
    Pt const& Point() const { return mPoint; }
    /// Returns the point where it stands before it is followed.
    Pt Start() const { return PlaceAt(mSegments[mSegment].c, mT).point; }

private:
    bool FollowLine(Cubic const& c, Pt const& centre, double radius) {
        // Where |off + way u| is the radius.
        Pt const way = mForward ? c[3] - c[0] : c[0] - c[3];
        Pt const off = c[0] + (c[3] - c[0]) * mT - centre;
        double const along = Dot(off, way);
        double const beyond = Square(off) - radius * radius;
        double const length = Square(way);
        double const root = std::sqrt(std::max(along * along - length * beyond, 0.0));
        double const u = beyond > 0.0 ? 0.0 : (root - along) / length;
        double const left = mForward ? 1.0 - mT : mT;
        if (!(u <= left)) { // also for a NaN
            mT = mForward ? 1.0 : 0.0;
            mPoint = mForward ? c[3] : c[0];
            return false;
        }
        mT = mForward ? mT + u : mT - u;
        mPoint = centre + off + way * u;
        return true;
    }
    bool FollowSegment(Cubic const& c, Pt const& centre, double radius) {
        double const end = mForward ? 1.0 : 0.0;
        double const limit = radius * radius;
        double near = mT;
        double step = (mForward ? 0.25 : -0.25) * radius / PolygonLength(c);
        double far;
        while (true) {
            // A NaN goes to the end as well.
            far = std::abs(end - near) > std::abs(step) && step != 0.0 ? near + step : end;
            mPoint = PlaceAt(c, far).point;
            if (Square(mPoint - centre) > limit) {
                break;
            }
            if (far == end) {
                mT = end;
                return false;
            }
            step *= far == near ? 2.0 : 1.5;
            near = far;
        }
        constexpr int kBisections = 20;
        for (int i = 0; i < kBisections; ++i) {
            double const middle = 0.5 * (near + far);
            Pt const p = PlaceAt(c, middle).point;
            if (Square(p - centre) > limit) {
                far = middle;
                mPoint = p;
            } else {
                near = middle;
            }
        }
        // What remains is nearly straight: a line through it is as sharp as rounding lets it be.
        // Branches beside each other need that, as each is cut by the circle at another angle.
        double const inside = limit - Square(PlaceAt(c, near).point - centre);
        double const outside = Square(mPoint - centre) - limit;
        double const part = inside / (inside + outside);
        if (part >= 0.0 && part <= 1.0) { // no NaN
            mPoint = PlaceAt(c, near + (far - near) * part).point;
        }
        mT = near;
        return true;
    }

    OutlineSegment const* mSegments;
    std::size_t mSegment;
    double mT;
    bool mForward;
    Pt mPoint;
};

constexpr int kMostRadii = 10;

/// Returns a number from 0 to 4 that rises with the direction of a vector, from +h toward +v. Equal
/// vectors have equal numbers, so that any three directions have an order.
double Turn(Pt const& p) {
    double const part = p.h / Taxicab(p);
    return p.v >= 0.0 ? 1.0 - part : 3.0 + part;
}

/// True when the turn from `a` to `b` in the positive sense comes before that from `a` to `c`.
bool IsBetween(Pt const& a, Pt const& b, Pt const& c) {
    double const from = Turn(a);
    auto const after = [from](double turn) { return turn < from ? turn + 4.0 : turn; };
    return after(Turn(b)) < after(Turn(c));
}

} // namespace

TurnsOfCubic TurnsOf(Cubic const& c) {
    TurnsOfCubic turns{{}, 0};
    std::array<double, 3> const d = AlongCourse(c);
    if (!HaveBothSigns(d)) {
        return turns;
    }
    // The zeros of d0 (1-t)² + 2 d1 t (1-t) + d2 t².
    double const a = d[0] - 2.0 * d[1] + d[2];
    double const b = d[1] - d[0];
    double const root = b * b - a * d[0];
    if (!(root > 0.0)) {
        return turns;
    }
    double const q = -b - (b < 0.0 ? -std::sqrt(root) : std::sqrt(root));
    double const zeros[] = {q / a, d[0] / q};
    for (double const t : {std::min(zeros[0], zeros[1]), std::max(zeros[0], zeros[1])}) {
        if (t > 0.0 && t < 1.0) {
            turns.t[turns.count++] = t;
        }
    }
    return turns;
}

bool RunsBackAlongItself(Cubic const& c, double accuracy) {
    double const size = PolygonLength(c);
    if (!(size >= 0x1p-100 && size <= 0x1p100)) {
        // Products would overflow or underflow.
        double most = 0.0;
        for (Pt const& p : c) {
            most = std::max(most, std::max(std::abs(p.h), std::abs(p.v)));
        }
        // The sense of the comparisons refuses a NaN.
        if (!(size > 0.0) || !(most <= std::numeric_limits<double>::max())) {
            return false;
        }
        int const shift = -std::ilogb(most);
        Cubic scaled;
        for (std::size_t i = 0; i < 4; ++i) {
            scaled[i] = Pt(std::scalbn(c[i].h, shift), std::scalbn(c[i].v, shift));
        }
        return PolygonLength(scaled) >= 0x1p-100 &&
               RunsBackAlongItself(scaled, std::scalbn(accuracy, shift));
    }
    if (!HaveBothSigns(AlongCourse(c))) {
        return false;
    }
    // The longest way between two control points.
    Pt way;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = i + 1; k < 4; ++k) {
            if (Square(c[k] - c[i]) > Square(way)) {
                way = c[k] - c[i];
            }
        }
    }
    double width = 0.0;
    for (std::size_t i = 1; i < 4; ++i) {
        width = std::max(width, std::abs(Cross(way, c[i] - c[0])));
    }
    double const length = std::sqrt(Square(way));
    constexpr double kRounding = 0x1p-39;
    // The sense of the comparison refuses a NaN.
    return width <= length * std::max(kRounding * length, accuracy >= 0.0 ? 2.0 * accuracy : 0.0);
}

Passing HowTheyPass(OutlineRun const& a, OutlineRun const& b, double accuracy) {
    Pt const a0 = PlaceAt(a.segments[a.first].c, a.firstT).point;
    Pt const a1 = PlaceAt(a.segments[a.last].c, a.lastT).point;
    Pt const b0 = PlaceAt(b.segments[b.first].c, b.firstT).point;
    Pt const b1 = PlaceAt(b.segments[b.last].c, b.lastT).point;
    Pt const centre = a0 * 0.5 + a1 * 0.5;
    double const size = std::sqrt(std::max(std::max(Square(a0 - centre), Square(a1 - centre)),
                                           std::max(Square(b0 - centre), Square(b1 - centre))));
    std::array<Branch, 4> branches{
        Branch(a.segments, a.first, a.firstT, false), Branch(a.segments, a.last, a.lastT, true),
        Branch(b.segments, b.first, b.firstT, false), Branch(b.segments, b.last, b.lastT, true)};
    double radius = 1.25 * size + 4.0 * accuracy;
    for (int i = 0; i < kMostRadii; ++i) {
        for (Branch& branch : branches) {
            if (branch.Follow(centre, radius) == Branch::Reached::kEnd) {
                if (i == 0) {
                    return Passing::kEnd;
                }
            }
        }
        double least = std::numeric_limits<double>::infinity();
        for (std::size_t k = 0; k < 2; ++k) {
            for (std::size_t l = 2; l < 4; ++l) {
                least = std::min(least, Square(branches[k].Point() - branches[l].Point()));
            }
        }
        if (least > accuracy * accuracy) {
            Pt const toA0 = branches[0].Point() - centre;
            Pt const toA1 = branches[1].Point() - centre;
            Pt const toB0 = branches[2].Point() - centre;
            Pt const toB1 = branches[3].Point() - centre;
            return IsBetween(toA0, toB0, toA1) != IsBetween(toA0, toB1, toA1) ? Passing::kCross
                                                                              : Passing::kTouch;
        }
        radius *= 2.0;
    }
    return Passing::kTouch; // they run together for long
}

namespace {

/// The side on which a branch of B leaves A, or kUnknown where they do not part.
enum class BranchSide { kLeft, kRight, kUnknown, kEnd };

/// Tells on which side of A a branch of B lies. A comes along `in`, and goes on along `on`, which
/// begins at `centre`.
BranchSide SideOfBranch(Pt const& centre, Branch in, Branch on, Branch b, double accuracy) {
    double const size =
        std::sqrt(std::max(Square(in.Start() - centre), Square(b.Start() - centre)));
    double radius = 1.25 * size + 4.0 * accuracy;
    for (int i = 0; i < kMostRadii; ++i) {
        bool const ends = in.Follow(centre, radius) == Branch::Reached::kEnd ||
                          b.Follow(centre, radius) == Branch::Reached::kEnd;
        on.Follow(centre, radius);
        if (ends && i == 0) {
            return BranchSide::kEnd;
        }
        Pt const toIn = in.Point() - centre;
        Pt const toOn = on.Point() - centre;
        Pt const toB = b.Point() - centre;
        double const least =
            std::min(std::min(Square(toIn - toB), Square(toOn - toB)), Square(toIn - toOn));
        if (least > accuracy * accuracy) {
            return IsBetween(toOn, toB, toIn) ? BranchSide::kLeft : BranchSide::kRight;
        }
        radius *= 2.0;
    }
    return BranchSide::kUnknown;
}

} // namespace

Passing HowTheyPassAlong(CommonRun const& a, CommonRun const& b, double accuracy) {
    if (b.TurnsBack() && !a.TurnsBack()) {
        return HowTheyPassAlong(b, a, accuracy);
    }
    Branch const aIn(a.all.segments, a.all.first, a.all.firstT, false);
    Branch const aOn(a.all.segments, a.common.first, a.common.firstT, true);
    Branch const aOut(a.all.segments, a.all.last, a.all.lastT, true);
    Branch const aBack(a.all.segments, a.common.last, a.common.lastT, false);
    Branch const bBefore(b.all.segments, b.all.first, b.all.firstT, false);
    Branch const bAfter(b.all.segments, b.all.last, b.all.lastT, true);
    BranchSide const start =
        SideOfBranch(aOn.Start(), aIn, aOn, a.firstAgainst ? bAfter : bBefore, accuracy);
    BranchSide const end =
        SideOfBranch(aBack.Start(), aOut, aBack, a.lastAgainst ? bBefore : bAfter, accuracy);
    if (start == BranchSide::kEnd || end == BranchSide::kEnd) {
        return Passing::kEnd;
    }
    if (start == BranchSide::kUnknown || end == BranchSide::kUnknown) {
        return Passing::kTouch;
    }
    // At the far end A comes from the common part, which turns the sides around; where A turns back
    // the far end is the near one.
    return (start == end) != a.TurnsBack() ? Passing::kCross : Passing::kTouch;
}

namespace {

/// A part of an outline, as curves that follow each other and share their ends to the last bit.
typedef std::vector<Cubic> Chain;

/// Returns the outline between two places of it.
Chain ChainOf(OutlineRun const& run) {
    Chain chain;
    std::size_t i = run.first;
    double from = run.firstT;
    while (true) {
        // The last segment is the first one as well where the run goes around.
        bool const last = i == run.last && from <= run.lastT;
        chain.push_back(PartOf(run.segments[i].c, from, last ? run.lastT : 1.0));
        if (chain.size() > 1) {
            chain.back()[0] = chain[chain.size() - 2][3];
        }
        i = run.segments[i].after;
        from = 0.0;
        if (last || i == OutlineSegment::kNone) {
            return chain;
        }
    }
}

/// True when an odd number of a chain's curves cross the ray from a point toward +h.
bool CrossesRayOddly(Chain const& chain, Pt const& origin) {
    int crossings = 0;
    for (Cubic const& c : chain) {
        std::array<Side, 4> sides;
        for (std::size_t i = 0; i < 4; ++i) {
            sides[i] = SideOf(CoordinatesAt(&c[i]), CoordinatesAt(&origin));
        }
        Side const all = sides[0] & sides[1] & sides[2] & sides[3];
        crossings += Surrounds(all, sides[0] | sides[1] | sides[2] | sides[3])
                         ? CrossingsOfCurveAround(c[0], c[1], c[2], c[3], origin)
                         : PlainCrossings(all, sides[0], sides[3]);
    }
    return crossings % 2 != 0;
}
bool CrossesRayBackOddly(Chain chain, Pt const& origin) {
    for (Cubic& c : chain) {
        for (Pt& p : c) {
            p = -p;
        }
    }
    return CrossesRayOddly(chain, -origin);
}

bool IsClear(Chain const& chain, Pt const& p, double accuracy) {
    return std::all_of(chain.begin(), chain.end(), [&](Cubic const& c) {
        CBezier const curve(c[0], c[1], c[2], c[3]);
        return trammel::NearestPoint(curve, p, 0.25 * accuracy).distance > 1.5 * accuracy;
    });
}

/// Moves a place along an outline by about a length. Returns false where the outline ends before.
bool Move(OutlineSegment const* segments, std::size_t& segment, double& t, bool forward,
          double length) {
    constexpr int kMostSegments = 64;
    for (int i = 0; i < kMostSegments; ++i) {
        Cubic const& c = segments[segment].c;
        double const left = PolygonLength(forward ? PartOf(c, t, 1.0) : PartOf(c, 0.0, t));
        if (length < left) {
            double const part = length / left;
            t = forward ? t + (1.0 - t) * part : t - t * part;
            return true;
        }
        length -= left;
        std::size_t const next = forward ? segments[segment].after : segments[segment].before;
        t = forward ? 1.0 : 0.0;
        if (next == OutlineSegment::kNone) {
            return false;
        }
        segment = next;
        t = forward ? 0.0 : 1.0;
    }
    return true;
}

/// A run whose ends are moved out, each by a length of its own.
class LongerRun {
public:
    LongerRun(CommonRun const& common, double length)
        : mOriginal(common.all), mWhole(common.whole), mBefore(length), mAfter(length) {
        Lengthen();
    }

    bool IsWhole() const { return mWhole; }
    /// True when the outline ends on the way.
    bool Ends() const { return mEnds; }
    OutlineRun const& Run() const { return mRun; }
    Chain const& Curves() const { return mChain; }
    Pt const& Start() const { return mChain.front()[0]; }
    Pt const& End() const { return mChain.back()[3]; }
    /// Moves the ends farther that are not clear of another chain. Returns false where both are.
    bool MoveEnds(Chain const& other, double accuracy) {
        bool const startClear = mWhole || IsClear(other, Start(), accuracy);
        bool const endClear = mWhole || IsClear(other, End(), accuracy);
        mBefore *= startClear ? 1.0 : 2.0;
        mAfter *= endClear ? 1.0 : 2.0;
        return !startClear || !endClear;
    }
    void Lengthen() {
        mRun = mOriginal;
        if (!mWhole) {
            bool const begun = Move(mRun.segments, mRun.first, mRun.firstT, false, mBefore);
            bool const goesOn = Move(mRun.segments, mRun.last, mRun.lastT, true, mAfter);
            mEnds = !begun || !goesOn;
        }
        mChain = ChainOf(mRun);
    }

private:
    OutlineRun mOriginal;
    bool mWhole;
    double mBefore;
    double mAfter;
    OutlineRun mRun;
    bool mEnds = false;
    Chain mChain;
};

} // namespace

bool CrossingsOfRuns(CommonRun const& a, CommonRun const& b, double accuracy, RunCrossings& found) {
    found = {Passing::kTouch, a.all, b.all};
    if (a.whole && b.whole) {
        return true;
    }
    // Another place may go on across an end, which is then moved beyond it.
    constexpr int kMostTries = 64;
    LongerRun longA(a, 4.0 * accuracy);
    LongerRun longB(b, 4.0 * accuracy);
    for (int i = 0; i < kMostTries; ++i) {
        if (longA.Ends() || longB.Ends()) {
            found.passing = Passing::kEnd;
            return i == 0;
        }
        bool const movedA = longA.MoveEnds(longB.Curves(), accuracy);
        bool const movedB = longB.MoveEnds(longA.Curves(), accuracy);
        if (movedA || movedB) {
            longA.Lengthen();
            longB.Lengthen();
            continue;
        }
        // The difference A(s) - B(t), along the border of all pairs of parameters, goes around 0 as
        // often as the outlines cross, each crossing with its sign. It does so an odd number of
        // times if it crosses the ray from 0 toward -h an odd number of times.
        bool odd = false;
        if (!longA.IsWhole()) {
            odd = CrossesRayOddly(longB.Curves(), longA.Start()) !=
                  CrossesRayOddly(longB.Curves(), longA.End());
        }
        if (!longB.IsWhole()) {
            odd = odd != (CrossesRayBackOddly(longA.Curves(), longB.Start()) !=
                          CrossesRayBackOddly(longA.Curves(), longB.End()));
        }
        found = {odd ? Passing::kCross : Passing::kTouch, longA.Run(), longB.Run()};
        return true;
    }
    return false;
}

} // namespace trammel_detail
