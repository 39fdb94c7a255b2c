// SPDX-License-Identifier: MIT

#include "CurveMeets_p.h"

#include "LineMeets_p.h"
#include "OutlineMeets_p.h"
#include "PointMath_p.h"
#include "TPoint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <tuple>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// Two places of a curve belong together where the curve between them is no longer than this many
/// times the accuracy.
constexpr double kTogether = 2.0;

/// Curves coincide along a stretch where they are nearer than kNearPart of the accuracy along
/// kCoincidentPart of it. Curves that touch with order k are so near in the k-th root of the first
/// part. That is less than the second part for orders up to 9, the highest that two cubics can
/// have.
constexpr double kNearPart = 1.0 / 16.0;
constexpr double kCoincidentPart = 0.75;
/// The number of steps in which a stretch is sampled.
constexpr int kSamples = 16;

/// The sides of two curves near a stretch, at parameters of A.
class Gap {
public:
    Gap(Cubic const& a, Cubic const& b, CurveMeetGroup const& g)
        : mA(a), mB(b), mMeet(g.meet), mLow(g.lowT), mHigh(g.highT) {}

    /// Returns the parameter of B beside `s`.
    double Beside(double s) const {
        double const length = mMeet.s1 - mMeet.s0;
        double const part = length > 0.0 ? (s - mMeet.s0) / length : 0.5;
        return FootOn(mB, PlaceAt(mA, s).point, mMeet.t0 + (mMeet.t1 - mMeet.t0) * part, mLow,
                      mHigh);
    }
    /// Returns the same without a guess, where Beside has found a place that is farther than
    /// `limit`.
    double NearestBeside(double s, double limit) const {
        double const t = Beside(s);
        if (Distance(s, t) <= limit) {
            return t;
        }
        Pt const p = PointOfA(s);
        double guess = t;
        double least = std::numeric_limits<double>::infinity();
        for (int i = 0; i <= kSamples; ++i) {
            double const at = mLow + (mHigh - mLow) * (static_cast<double>(i) / kSamples);
            double const distance = Square(PlaceAt(mB, at).point - p);
            if (distance < least) {
                least = distance;
                guess = at;
            }
        }
        double const other = FootOn(mB, p, guess, mLow, mHigh);
        return Distance(s, other) < Distance(s, t) ? other : t;
    }
    /// Returns the parameter of B beside `s` that is the next one to `t`.
    double BesideFrom(double s, double t) const { return FootOn(mB, PointOfA(s), t, mLow, mHigh); }
    /// Returns the parameter of B between two others that is beside `s`.
    double BesideBetween(double s, double t0, double t1) const {
        return FootOn(mB, PointOfA(s), 0.5 * (t0 + t1), std::min(t0, t1), std::max(t0, t1));
    }
    Pt PointOfA(double s) const { return PlaceAt(mA, s).point; }
    double Distance(double s, double t) const {
        return std::sqrt(Square(PlaceAt(mA, s).point - PlaceAt(mB, t).point));
    }
    /// Returns a number with the sign of the side of B on which A lies.
    double Side(double s, double t) const {
        CubicPlace const at = PlaceAt(mB, t);
        return Cross(at.first, PlaceAt(mA, s).point - at.point);
    }

private:
    Cubic const& mA;
    Cubic const& mB;
    CurveMeet mMeet;
    double mLow;
    double mHigh;
};

/// A place of both curves.
struct Pair {
    double s;
    double t;
};

/// Sets an end of an overlap and the parameter beside it, so that both points are within the
/// accuracy of each other. `near` is a place of the overlap that is so near to the other curve.
void SettleEnd(Gap const& gap, Pair const& near, double accuracy, double& s, double& t) {
    // At an end of B the parameter is exact. That of another branch of B is of no use.
    double const middle = 0.5 * (s + near.s);
    if (gap.Distance(s, t) <= accuracy &&
        gap.Distance(middle, gap.BesideBetween(middle, t, near.t)) <= accuracy) {
        return;
    }
    t = gap.BesideFrom(s, near.t);
    constexpr int kBisections = 40;
    for (int i = 0; i < kBisections && !(gap.Distance(s, t) <= accuracy); ++i) {
        // The last step takes the place that is known to be near.
        bool const last = i + 1 == kBisections;
        s = last ? near.s : 0.5 * (s + near.s);
        t = last ? near.t : gap.BesideFrom(s, near.t);
    }
}

/// True when the curves coincide along the stretch. Its ends are then as near to each other as the
/// accuracy.
bool Coincide(Gap const& gap, CurveMeet& m, double accuracy) {
    // Lengths decide, not parameters, as these crowd at a control point on an end.
    double near = 0.0;
    double all = 0.0;
    Pair first{2.0, 0.0};
    Pair last{-1.0, 0.0};
    Pt from = gap.PointOfA(m.s0);
    for (int i = 0; i < kSamples; ++i) {
        double const step = (m.s1 - m.s0) / kSamples;
        double const s = m.s0 + step * (i + 0.5);
        double const t = gap.NearestBeside(s, kNearPart * accuracy);
        Pt const to = gap.PointOfA(m.s0 + step * (i + 1));
        double const length = Taxicab(to - from);
        from = to;
        all += length;
        if (gap.Distance(s, t) <= kNearPart * accuracy) {
            near += length;
            first = first.s <= s ? first : Pair{s, t};
            last = {s, t};
        }
    }
    if (!(near >= kCoincidentPart * all) || first.s > last.s) {
        return false;
    }
    SettleEnd(gap, first, accuracy, m.s0, m.t0);
    SettleEnd(gap, last, accuracy, m.s1, m.t1);
    return true;
}

/// Sets the place of a stretch to where the curves are nearest to each other.
void FindNearest(Cubic const& a, Cubic const& b, Gap const& gap, CurveMeet& m) {
    double least = gap.Distance(m.s, m.t);
    for (int i = 0; i <= kSamples; ++i) {
        double const s = m.s0 + (m.s1 - m.s0) * (static_cast<double>(i) / kSamples);
        double const t = gap.Beside(s);
        double const distance = gap.Distance(s, t);
        if (distance < least) {
            least = distance;
            m.s = s;
            m.t = t;
        }
    }
    // The tangents are parallel there, and the difference is across them.
    double const lowT = std::min(m.t0, m.t1);
    double const highT = std::max(m.t0, m.t1);
    double s = m.s;
    double t = m.t;
    constexpr int kMostSteps = 8;
    for (int i = 0; i < kMostSteps; ++i) {
        CubicPlace const p = PlaceAt(a, s);
        CubicPlace const q = PlaceAt(b, t);
        Pt const off = p.point - q.point;
        Pt const d = p.first * 3.0;
        Pt const e = q.first * 3.0;
        Pt const dd = p.second * 6.0;
        Pt const ee = q.second * 6.0;
        double const across = Cross(d, e);
        double const along = Dot(off, d);
        // The derivatives of both by s and by t.
        double const acrossS = Cross(dd, e);
        double const acrossT = Cross(d, ee);
        double const alongS = Square(d) + Dot(off, dd);
        double const alongT = -Dot(e, d);
        double const scale = 1.0 / (acrossS * alongT - acrossT * alongS);
        double const ds = (across * alongT - acrossT * along) * scale;
        double const dt = (acrossS * along - across * alongS) * scale;
        s -= ds;
        t -= dt;
        if (!(s >= m.s0 && s <= m.s1 && t >= lowT && t <= highT)) { // also for a NaN
            return;
        }
    }
    double extent = 0.0;
    for (Cubic const* const c : {&a, &b}) {
        for (Pt const& p : *c) {
            extent = std::max(extent, std::max(std::abs(p.h), std::abs(p.v)));
        }
    }
    if (gap.Distance(s, t) <= least * 1.0625 + 0x1p-46 * extent) {
        m.s = s;
        m.t = t;
    }
}

/// Sets the place of a stretch to where A changes sides, by bisection. Returns false where that is
/// no place, as at a cusp.
bool FindChange(Gap const& gap, CurveMeet& m, double accuracy) {
    double low = m.s0;
    double high = m.s1;
    constexpr int kBisections = 52;
    for (int i = 0; i < kBisections; ++i) {
        double const s = 0.5 * (low + high);
        double const side = gap.Side(s, gap.Beside(s));
        ((side > 0.0) == (m.before > 0) ? low : high) = s;
    }
    double const s = 0.5 * (low + high);
    double const t = gap.Beside(s);
    if (!(gap.Distance(s, t) <= accuracy)) {
        return false;
    }
    m.s = s;
    m.t = t;
    return true;
}

/// True when the tangents at two parameters differ by less than 60 degrees. Sides of a curve that
/// turns back between them, as at a cusp, mean nothing.
bool RunsSmoothly(Cubic const& c, double from, double to) {
    Pt const d = PlaceAt(c, from).first;
    Pt const e = PlaceAt(c, to).first;
    double const dot = Dot(d, e);
    return dot > 0.0 && 4.0 * dot * dot > Square(d) * Square(e);
}

int SignOf(double x) { return static_cast<int>(x > 0.0) - static_cast<int>(x < 0.0); }

/// Two curves near the origin, at a magnitude at which no product of four coordinates overflows or
/// underflows.
struct LocalPair {
    /// The exponent of curves with a coordinate that is not finite.
    static constexpr int kNotFinite = std::numeric_limits<int>::max();

    LocalPair(Cubic const& a, Cubic const& b) {
        // Differences from one point of the pair keep all bits that matter, wherever the drawing
        // lies.
        std::copy(a.begin(), a.end(), points.begin());
        std::copy(b.begin(), b.end(), points.begin() + 4);
        Pt const origin = a[0];
        for (Pt& p : points) {
            p = p - origin;
            Include(p);
        }
        // The sum is NaN where the maximum may hide one.
        double const sum = Taxicab(points[1]) + Taxicab(points[2]) + Taxicab(points[3]) +
                           Taxicab(points[4]) + Taxicab(points[5]) + Taxicab(points[6]) +
                           Taxicab(points[7]);
        if (sum >= 0x1p-100 && sum <= 0x1p100) {
            return;
        }
        if (!std::isfinite(sum)) {
            Halve(a, b);
        }
        if (extent > 0.0 && exponent != kNotFinite) {
            Scale();
        }
    }

    std::array<Pt, 8> points; ///< of both
    double extent = 0.0;      ///< the greatest magnitude of a coordinate
    int exponent = 0;         ///< of the power of two by which the coordinates were divided

private:
    void Include(Pt const& p) { extent = std::max(extent, std::max(std::abs(p.h), std::abs(p.v))); }
    /// Takes half of each difference. A difference of great numbers may overflow, that of their
    /// halves does not.
    void Halve(Cubic const& a, Cubic const& b) {
        extent = 0.0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            Pt const& p = i < 4 ? a[i] : b[i - 4];
            if (!IsFinite(p)) {
                exponent = kNotFinite;
                return;
            }
            points[i] = p * 0.5 - a[0] * 0.5;
            Include(points[i]);
        }
        exponent = 1;
    }
    /// Brings the extent to between 1 and 2.
    void Scale() {
        int const shift = std::ilogb(extent);
        exponent += shift;
        for (Pt& p : points) {
            p = Pt(std::scalbn(p.h, -shift), std::scalbn(p.v, -shift));
        }
        extent = std::scalbn(extent, -shift);
    }
};

} // namespace

CurveMeetGroup::CurveMeetGroup(CurveEvent const& e)
    : meet{e.s0, e.s1, e.t0, e.t1, e.s, e.t, 0, 0, false}, before(e.before), after(e.after),
      beforeAt(e.s), afterAt(e.s), lowT(std::min(e.t0, e.t1)), highT(std::max(e.t0, e.t1)),
      crossings(e.crossing ? 1 : 0), nearest(e.nearest ? 1 : 0), events(1) {}

void CurveMeetGroup::Include(CurveMeetGroup const& g, Cubic const& a, double accuracy) {
    // The sides count where the group begins and where it ends.
    double const limit = kTogether * accuracy;
    // Of two certain ones the outer one counts: a crossing on either side of a cusp's tip.
    double const moreBefore = std::abs(g.before) - std::abs(before);
    if ((moreBefore > 0.0 || (moreBefore == 0.0 && g.beforeAt < beforeAt)) &&
        IsShort(a, meet.s0, g.meet.s0, limit)) {
        before = g.before;
        beforeAt = g.beforeAt;
    }
    bool const later = g.meet.s1 > meet.s1;
    bool const atEnd =
        IsShort(a, std::min(meet.s1, g.meet.s1), std::max(meet.s1, g.meet.s1), limit);
    double const moreAfter = std::abs(g.after) - std::abs(after);
    if (atEnd ? moreAfter > 0.0 || (moreAfter == 0.0 && g.afterAt > afterAt) : later) {
        after = g.after;
        afterAt = g.afterAt;
    }
    if (later) {
        meet.s1 = g.meet.s1;
        meet.t1 = g.meet.t1;
    }
    if (g.crossings > crossings) {
        meet.s = g.meet.s;
        meet.t = g.meet.t;
    }
    crossings += g.crossings;
    nearest += g.nearest;
    events += g.events;
    lowT = std::min(lowT, g.lowT);
    highT = std::max(highT, g.highT);
}

double CurveMeetFinder::Find(Cubic const& a, Cubic const& b, double accuracy, bool straightA,
                             bool straightB) {
    mMeets.clear();
    mEvents.clear();
    accuracy = accuracy >= 0.0 ? accuracy : 0.0; // also for a NaN
    LocalPair const pair(a, b);
    if (pair.exponent == LocalPair::kNotFinite) {
        return accuracy > 0.0 ? accuracy : 0.0;
    }
    if (pair.extent == 0.0) {
        mA.fill(Pt());
        mB.fill(Pt());
        mAccuracy = 1.0;
        mMeets.push_back({0.0, 1.0, 0.0, 1.0, 0.0, 0.0, 0, 0, false});
        return accuracy > 0.0 ? accuracy : 0.0;
    }
    double const extent = pair.extent;
    int const exponent = pair.exponent;
    double const finest = kFinestCells * extent;
    double const asked = exponent == 0 ? accuracy : std::scalbn(accuracy, -exponent);
    // At the coarsest accuracy all points are near each other.
    constexpr double kCoarsest = 16.0;
    double kept = asked >= finest ? std::min(asked, kCoarsest * extent) : finest;
    std::copy(pair.points.begin(), pair.points.begin() + 4, mA.begin());
    std::copy(pair.points.begin() + 4, pair.points.end(), mB.begin());
    // Far from the origin, control points that are off by rounding may be off the line by more than
    // the accuracy.
    if (straightA) {
        mA = CubicOf(TLine<double>(mA[0], mA[3]));
    }
    if (straightB) {
        mB = CubicOf(TLine<double>(mB[0], mB[3]));
    }
    if (straightA != straightB) {
        mAccuracy = kept;
        if (MeetsOfLineAndCurve(straightA ? mA : mB, straightA ? mB : mA, kept, straightA,
                                mMeets)) {
            return kept > asked ? std::scalbn(kept, exponent) : accuracy;
        }
        mMeets.clear();
    }
    while (!FindCurveEvents(mA, mB, kept, mEvents)) {
        constexpr double kCoarser = 16.0;
        kept *= kCoarser;
        mEvents.clear();
    }
    mAccuracy = kept;
    if (!mEvents.empty()) {
        Join();
    }
    return kept > asked ? std::scalbn(kept, exponent) : accuracy;
}

/// Joins events to groups, and makes each group a meet.
void CurveMeetFinder::Join() {
    std::sort(mEvents.begin(), mEvents.end(), [](CurveEvent const& e, CurveEvent const& f) {
        return std::tie(e.s0, e.t0, e.s1, e.t1) < std::tie(f.s0, f.t0, f.s1, f.t1);
    });
    // Each event points to an earlier one of its group, the first one to itself.
    mFirsts.clear();
    mOpen.clear();
    auto const firstOf = [this](std::size_t i) {
        while (mFirsts[i] != i) {
            i = mFirsts[i] = mFirsts[mFirsts[i]];
        }
        return i;
    };
    double const limit = kTogether * mAccuracy;
    for (std::size_t i = 0; i < mEvents.size(); ++i) {
        CurveEvent const& e = mEvents[i];
        mFirsts.push_back(i);
        // Events that end before this one begins are no neighbours of later ones either.
        mOpen.Cut(std::remove_if(mOpen.begin(), mOpen.end(), [&](std::size_t k) {
            return !IsShort(mA, mEvents[k].s1, e.s0, limit);
        }));
        for (std::size_t const k : mOpen) {
            CurveEvent const& f = mEvents[k];
            if (IsShort(mB, std::max(f.t0, f.t1), std::min(e.t0, e.t1), limit) &&
                IsShort(mB, std::max(e.t0, e.t1), std::min(f.t0, f.t1), limit)) {
                std::size_t const first = firstOf(i);
                std::size_t const other = firstOf(k);
                mFirsts[std::max(first, other)] = std::min(first, other);
            }
        }
        mOpen.push_back(i);
    }
    mGroups.clear();
    mOpen.clear();
    for (std::size_t i = 0; i < mEvents.size(); ++i) {
        std::size_t const first = firstOf(i);
        mOpen.push_back(mGroups.size()); // the number of the group that begins here
        if (first == i) {
            mGroups.push_back(CurveMeetGroup(mEvents[i]));
        } else {
            mGroups[mOpen[first]].Include(CurveMeetGroup(mEvents[i]), mA, mAccuracy);
        }
    }
    for (CurveMeetGroup const& g : mGroups) {
        Describe(g);
    }
}

void CurveMeetFinder::Describe(CurveMeetGroup const& group) {
    CurveMeet m = group.meet;
    bool const certain = group.crossings == 1 && group.events == 1;
    if (certain || RunsSmoothly(mB, group.lowT, group.highT)) {
        m.before = SignOf(group.before);
        m.after = SignOf(group.after);
    }
    bool const isShort =
        certain || !(m.s0 < m.s1) || IsShort(mA, m.s0, m.s1, kTogether * mAccuracy);
    // A single event has its place already, where it is no part of a long stretch.
    bool const settled = isShort && (certain || (group.nearest == 1 && group.events == 1));
    if (!settled && m.s0 < m.s1) {
        Gap const gap(mA, mB, group);
        if (!isShort) {
            m.overlap = Coincide(gap, m, mAccuracy);
        }
        bool const crossing = m.before * m.after < 0;
        if (!m.overlap && !(crossing && group.crossings > 0)) {
            if (!crossing || !FindChange(gap, m, mAccuracy)) {
                FindNearest(mA, mB, gap, m);
            }
        }
    }
    if (!m.overlap) {
        // Events of curves at right angles may differ in the sense of B.
        bool const against = m.t1 < m.t0;
        m.t0 = against ? group.highT : group.lowT;
        m.t1 = against ? group.lowT : group.highT;
    }
    mMeets.push_back(m);
}

} // namespace trammel_detail
