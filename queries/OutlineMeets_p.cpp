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
    Pt const& Point() const { return mPoint; }

private:
    bool FollowSegment(Cubic const& c, Pt const& centre, double radius) {
        double const end = mForward ? 1.0 : 0.0;
        double const limit = radius * radius;
        double near = mT;
        double step = (mForward ? 0.25 : -0.25) * radius / PolygonLength(c);
        double far = near;
        while (true) {
            far = std::abs(end - near) <= std::abs(step) || !(step == step) ? end : near + step;
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

/// True when the turn from `a` to `b` in the positive sense comes before that from `a` to `c`.
bool IsBetween(Pt const& a, Pt const& b, Pt const& c) {
    bool const bLeft = Cross(a, b) > 0.0;
    bool const cLeft = Cross(a, c) > 0.0;
    if (bLeft != cLeft) {
        return bLeft;
    }
    return Cross(b, c) > 0.0;
}

} // namespace

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
    constexpr int kMostRadii = 10;
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

} // namespace trammel_detail
