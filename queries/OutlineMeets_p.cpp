// SPDX-License-Identifier: MIT

#include "OutlineMeets_p.h"

#include "PointMath_p.h"
#include "TPoint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

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
            if (FollowSegment(segment.c, centre, radius)) {
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
        if (size == 0.0 || !(most <= std::numeric_limits<double>::max())) {
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
enum class Side { kLeft, kRight, kUnknown, kEnd };

/// Tells on which side of A a branch of B lies. A comes along `in`, and goes on along `on`, which
/// begins at `centre`.
Side SideOfBranch(Pt const& centre, Branch in, Branch on, Branch b, double accuracy) {
    double const size =
        std::sqrt(std::max(Square(in.Start() - centre), Square(b.Start() - centre)));
    double radius = 1.25 * size + 4.0 * accuracy;
    for (int i = 0; i < kMostRadii; ++i) {
        bool const ends = in.Follow(centre, radius) == Branch::Reached::kEnd ||
                          b.Follow(centre, radius) == Branch::Reached::kEnd;
        on.Follow(centre, radius);
        if (ends && i == 0) {
            return Side::kEnd;
        }
        Pt const toIn = in.Point() - centre;
        Pt const toOn = on.Point() - centre;
        Pt const toB = b.Point() - centre;
        double const least =
            std::min(std::min(Square(toIn - toB), Square(toOn - toB)), Square(toIn - toOn));
        if (least > accuracy * accuracy) {
            return IsBetween(toOn, toB, toIn) ? Side::kLeft : Side::kRight;
        }
        radius *= 2.0;
    }
    return Side::kUnknown;
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
    Side const start =
        SideOfBranch(aOn.Start(), aIn, aOn, a.firstAgainst ? bAfter : bBefore, accuracy);
    Side const end =
        SideOfBranch(aBack.Start(), aOut, aBack, a.lastAgainst ? bBefore : bAfter, accuracy);
    if (start == Side::kEnd || end == Side::kEnd) {
        return Passing::kEnd;
    }
    if (start == Side::kUnknown || end == Side::kUnknown) {
        return Passing::kTouch;
    }
    // At the far end A comes from the common part, which turns the sides around; where A turns back
    // the far end is the near one.
    return (start == end) != a.TurnsBack() ? Passing::kCross : Passing::kTouch;
}

} // namespace trammel_detail
