// SPDX-License-Identifier: MIT

#include "CurveCells_p.h"

#include "PointMath_p.h"
#include "TPoint.h"
#include "Vector_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;
/// The differences of a cubic's control points that follow each other.
typedef std::array<Pt, 3> Arms;

/// A side that is certain.
constexpr double kCertain = std::numeric_limits<double>::max();
/// Cells of one pair of curves. Random curves need about ten, and curves that nearly coincide some
/// hundreds.
constexpr int kMostCells = 20000;
/// A step of Newton's method below this leaves an error about as small as rounding.
constexpr double kLastStep = 0x1p-24;
constexpr int kMostSteps = 12;

/// A part of a curve, and its parameters on the whole curve.
struct Piece {
    Cubic c;
    double t0;
    double t1;

    double At(double t) const { return t0 + (t1 - t0) * t; }
    Piece Part(double from, double to) const { return {PartOf(c, from, to), At(from), At(to)}; }
};

struct Cell {
    Piece a;
    Piece b;
};

/// The least and greatest coordinates of a piece.
struct Extent {
    Double2 low;
    Double2 high;

    explicit Extent(Cubic const& c) {
        Double2 const p0 = Double2::Load(&c[0]);
        Double2 const p1 = Double2::Load(&c[1]);
        Double2 const p2 = Double2::Load(&c[2]);
        Double2 const p3 = Double2::Load(&c[3]);
        low = Min(Min(p0, p1), Min(p2, p3));
        high = Max(Max(p0, p1), Max(p2, p3));
    }
    double Size() const {
        Double2 const size = high - low;
        return Lane<0>(size) + Lane<1>(size);
    }
};

Arms ArmsOf(Cubic const& c) { return {c[1] - c[0], c[2] - c[1], c[3] - c[2]}; }

/// Directions of the arms: arms no longer than `noise` get a neighbour's.
Arms DirectionsOf(Arms arms, double noise) {
    auto const counts = [noise](Pt const& arm) { return Taxicab(arm) > noise; };
    if (!counts(arms[1])) {
        arms[1] = counts(arms[0]) ? arms[0] : arms[2];
    }
    if (!counts(arms[0])) {
        arms[0] = arms[1];
    }
    if (!counts(arms[2])) {
        arms[2] = arms[1];
    }
    return arms;
}

double LongestOf(Arms const& arms) {
    return std::max(std::max(Taxicab(arms[0]), Taxicab(arms[1])), Taxicab(arms[2]));
}

/// The parameter at which a coordinate that does not decrease reaches `x`, which lies between its
/// first and its last value.
double SolveRising(std::array<double, 4> const& c, double x) {
    double low = 0.0;
    double high = 1.0;
    double const span = c[3] - c[0];
    double t = span > 0.0 ? (x - c[0]) / span : 0.5;
    constexpr int kMostBisections = 64;
    for (int i = 0; i < kMostBisections; ++i) {
        double const a = c[0] + (c[1] - c[0]) * t;
        double const b = c[1] + (c[2] - c[1]) * t;
        double const e = c[2] + (c[3] - c[2]) * t;
        double const p = a + (b - a) * t;
        double const q = b + (e - b) * t;
        double const off = p + (q - p) * t - x;
        if (off == 0.0) {
            return t;
        }
        (off < 0.0 ? low : high) = t;
        double const step = off / (3.0 * (q - p));
        double next = t - step;
        bool const inside = next > low && next < high; // false for a NaN
        if (!inside) {
            next = 0.5 * (low + high);
        }
        if (next == t || (inside && std::abs(step) < 0x1p-27 && i > 0)) {
            return next;
        }
        t = next;
    }
    return t;
}

class Finder {
public:
    Finder(double accuracy, CurveEvents& events)
        : mAccuracy(accuracy), mMargin(0.5 * accuracy), mNoise(0x1p-6 * accuracy), mEvents(events) {
    }

    bool Run(Cubic const& a, Cubic const& b) {
        Push({a, 0.0, 1.0}, {b, 0.0, 1.0});
        for (int count = 0; mSize > 0; ++count) {
            if (count == kMostCells) {
                return false;
            }
            if (!Examine(Pop())) {
                return false;
            }
        }
        return true;
    }

private:
    /// The halvings of a pair number less than 110, see docs/intersections.md.
    static constexpr std::size_t kMostOpen = 120;

    /// Notes a cell to be examined. Returns false where there is no room.
    bool Push(Piece const& a, Piece const& b) {
        if (mSize == kMostOpen) {
            return false;
        }
        Cell const cell{a, b};
        std::memcpy(mStack + sizeof(Cell) * mSize++, &cell, sizeof cell);
        return true;
    }
    Cell Pop() {
        Cell cell;
        std::memcpy(&cell, mStack + sizeof(Cell) * --mSize, sizeof cell);
        return cell;
    }

    /// Decides about a cell, or divides it. Returns false where there is no room.
    bool Examine(Cell const& cell) {
        Piece const& a = cell.a;
        Piece const& b = cell.b;
        Extent const extentA(a.c);
        Extent const extentB(b.c);
        Double2 const margin = mMargin;
        if (((extentA.low - extentB.high > margin) | (extentB.low - extentA.high > margin))
                    .Bits() != 0 ||
            ChordSeparates(a.c, b.c, mMargin) || ChordSeparates(b.c, a.c, mMargin)) {
            return true;
        }
        double const sizeA = extentA.Size();
        double const sizeB = extentB.Size();
        if (std::max(sizeA, sizeB) <= 0.25 * mMargin) {
            double const s = a.At(0.5);
            double const t = b.At(0.5);
            mEvents.push_back({a.t0, a.t1, b.t0, b.t1, s, t, 0.0, 0.0, false, false});
            return true;
        }
        Arms const armsA = ArmsOf(a.c);
        Arms const armsB = ArmsOf(b.c);
        Arms const alongA = DirectionsOf(armsA, mNoise);
        Arms const alongB = DirectionsOf(armsB, mNoise);
        double const leastSine = LeastSine(alongA, alongB);
        if (leastSine > 0.0) {
            if (FindCrossing(a, b, alongA, alongB, leastSine)) {
                return true;
            }
        } else {
            switch (ExamineAsGraphs(a, b, alongA, alongB)) {
            case Outcome::kDone:
                return true;
            case Outcome::kNoRoom:
                return false;
            case Outcome::kDivide:
                break;
            }
        }
        if (sizeA >= sizeB) {
            return Push({HeadOf(a.c, 0.5), a.t0, a.At(0.5)}, b) &&
                   Push({TailOf(a.c, 0.5), a.At(0.5), a.t1}, b);
        }
        return Push(a, {HeadOf(b.c, 0.5), b.t0, b.At(0.5)}) &&
               Push(a, {TailOf(b.c, 0.5), b.At(0.5), b.t1});
    }

    /// A number that no sine of an angle between a tangent of A and one of B is below; 0 where they
    /// may be parallel.
    double LeastSine(Arms const& alongA, Arms const& alongB) const {
        double low = std::numeric_limits<double>::infinity();
        double high = -low;
        for (Pt const& a : alongA) {
            for (Pt const& b : alongB) {
                double const cross = Cross(a, b);
                low = Min(low, cross);
                high = Max(high, cross);
            }
        }
        double const longA = LongestOf(alongA);
        double const longB = LongestOf(alongB);
        double const least = Max(low, -high);
        return least > mNoise * (longA + longB) ? least / (longA * longB) : 0.0;
    }

    /// True when no two directions differ by a right angle or more.
    static bool IsNarrow(Arms const& along) {
        return Dot(along[0], along[1]) > 0.0 && Dot(along[1], along[2]) > 0.0 &&
               Dot(along[0], along[2]) > 0.0;
    }
    /// A curve that goes on straight beyond its ends, at a parameter.
    static CubicPlace Extended(Cubic const& c, Arms const& along, double t) {
        if (t < 0.0) {
            return {c[0] + along[0] * (3.0 * t), along[0], Pt()};
        }
        if (t > 1.0) {
            return {c[3] + along[2] * (3.0 * (t - 1.0)), along[2], Pt()};
        }
        return PlaceAt(c, t);
    }

    /// Finds the only crossing of two curves that go on straight beyond their ends, by Newton's
    /// method from (s, t). Returns false where this does not succeed.
    static bool Solve(Cubic const& a, Cubic const& b, Arms const& alongA, Arms const& alongB,
                      double& s, double& t) {
        for (int i = 0; i < kMostSteps; ++i) {
            CubicPlace const p = Extended(a, alongA, s);
            CubicPlace const q = Extended(b, alongB, t);
            Pt const off = q.point - p.point;
            double const scale = 1.0 / (3.0 * Cross(p.first, q.first));
            double const ds = Cross(off, q.first) * scale;
            double const dt = Cross(off, p.first) * scale;
            s += ds;
            t += dt;
            if (std::abs(ds) + std::abs(dt) < kLastStep) {
                return true;
            }
        }
        return false;
    }

    /// Handles pieces whose tangents are never parallel: they have at most one crossing. Returns
    /// false where it is not found.
    bool FindCrossing(Piece const& a, Piece const& b, Arms const& alongA, Arms const& alongB,
                      double leastSine) {
        Pt const chordA = a.c[3] - a.c[0];
        Pt const chordB = b.c[3] - b.c[0];
        Pt const off = b.c[0] - a.c[0];
        double const scale = 1.0 / Cross(chordA, chordB);
        double s = Cross(off, chordB) * scale;
        double t = Cross(off, chordA) * scale;
        if (!Solve(a.c, b.c, alongA, alongB, s, t)) {
            return false;
        }
        double const sOn = std::min(std::max(s, 0.0), 1.0);
        double const tOn = std::min(std::max(t, 0.0), 1.0);
        if (sOn == s && tOn == t) {
            return AddEvent(a, b, alongA, alongB, s, t, s, t);
        }
        // Pieces that bend by less than a right angle lead away from the crossing of their
        // extensions. So they are as far from each other as the sine times the way to it. As no
        // tangents are parallel, the nearest places include the end on that way.
        if (!IsNarrow(alongA) || !IsNarrow(alongB)) {
            return false;
        }
        double const wayA = std::abs(s - sOn) * Taxicab(s < sOn ? alongA[0] : alongA[2]);
        double const wayB = std::abs(t - tOn) * Taxicab(t < tOn ? alongB[0] : alongB[2]);
        if (std::max(wayA, wayB) * leastSine <= mMargin) {
            AddNearEnd(a, b, alongA, alongB, s, t);
        }
        return true;
    }

    /// Adds an event where the pieces' extensions cross at (s, t), if the pieces are near each
    /// other at their ends.
    void AddNearEnd(Piece const& a, Piece const& b, Arms const& alongA, Arms const& alongB,
                    double s, double t) {
        double const sOn = std::min(std::max(s, 0.0), 1.0);
        double const tOn = std::min(std::max(t, 0.0), 1.0);
        // The nearest places are an end of one piece and its foot on the other one.
        double const footOnB = FootOn(b.c, PlaceAt(a.c, sOn).point, tOn, 0.0, 1.0);
        double const footOnA = FootOn(a.c, PlaceAt(b.c, tOn).point, sOn, 0.0, 1.0);
        double const gapA = Square(PlaceAt(a.c, sOn).point - PlaceAt(b.c, footOnB).point);
        double const gapB = Square(PlaceAt(a.c, footOnA).point - PlaceAt(b.c, tOn).point);
        if (std::min(gapA, gapB) <= mMargin * mMargin) {
            bool const ofA = gapA <= gapB;
            AddEvent(a, b, alongA, alongB, ofA ? sOn : footOnA, ofA ? footOnB : tOn, s, t);
        }
    }
    /// Adds an event at (sOn, tOn) of pieces whose extensions cross at (s, t). Returns false where
    /// that is no crossing, as the points are apart: Newton's method also stops where one of the
    /// derivatives vanishes.
    bool AddEvent(Piece const& a, Piece const& b, Arms const& alongA, Arms const& alongB,
                  double sOn, double tOn, double s, double t) {
        bool const inside = sOn == s && tOn == t;
        CubicPlace const p = PlaceAt(a.c, sOn);
        CubicPlace const q = PlaceAt(b.c, tOn);
        if (inside && !(Square(p.point - q.point) <= mMargin * mMargin)) {
            return false;
        }
        Pt const first = p.first.Null() ? (sOn < 0.5 ? alongA[0] : alongA[2]) : p.first;
        Pt const second = q.first.Null() ? (tOn < 0.5 ? alongB[0] : alongB[2]) : q.first;
        double const cross = Cross(second, first);
        // A piece of B that runs against B has decreasing parameters.
        double const side = (cross > 0.0) == (b.t0 <= b.t1) ? kCertain : -kCertain;
        // The curves stay within the accuracy for about this far, on either side.
        double const lengthA = std::sqrt(Square(first));
        double const lengthB = std::sqrt(Square(second));
        double const reach = 2.0 * mAccuracy * lengthA * lengthB / std::abs(cross);
        Stretch const onA = Around(a.c, sOn, lengthA, reach);
        Stretch const onB = Around(b.c, tOn, lengthB, reach);
        bool const against = Dot(first, second) < 0.0;
        // Beyond an end of either piece another one goes on, so sides are not known here.
        bool const lacksBefore = IsAtEnd(a.c, 0, s, p.point) || (against ? t > 1.0 : t < 0.0);
        bool const lacksAfter = IsAtEnd(a.c, 3, 1.0 - s, p.point) || (against ? t < 0.0 : t > 1.0);
        double const from = lacksBefore ? sOn : onA.low;
        double const to = lacksAfter ? sOn : onA.high;
        mEvents.push_back({a.At(from), a.At(to), b.At(against ? onB.high : onB.low),
                           b.At(against ? onB.low : onB.high), a.At(sOn), b.At(tOn),
                           lacksBefore ? 0.0 : -side, lacksAfter ? 0.0 : side, inside, true});
        return true;
    }

    struct Stretch {
        double low;
        double high;
    };
    /// The parameters of a piece around `t` up to a distance of about `reach`. `length` is that of
    /// a third of the derivative there.
    static Stretch Around(Cubic const& c, double t, double length, double reach) {
        double const by = reach / (3.0 * length);
        Stretch stretch{std::max(0.0, t - by), std::min(1.0, t + by)}; // the whole piece for a NaN
        constexpr double kSlow = 0.125;
        if (length < kSlow * LongestOf(ArmsOf(c))) {
            // The derivative is much greater nearby, as beside a cusp.
            Pt const p = PlaceAt(c, t).point;
            for (double Stretch::*const end : {&Stretch::low, &Stretch::high}) {
                constexpr int kMostHalvings = 60;
                for (int i = 0;
                     i < kMostHalvings && Taxicab(PlaceAt(c, stretch.*end).point - p) > 2.0 * reach;
                     ++i) {
                    stretch.*end = 0.5 * (stretch.*end + t);
                }
            }
        }
        return stretch;
    }

    /// True where `way` is the way from an end of a piece to a place on it, and is none beside
    /// rounding. A cusp may be there.
    bool IsAtEnd(Cubic const& c, std::size_t end, double way, Pt const& place) const {
        return way <= 0.0 || (way < kLastStep && Taxicab(place - c[end]) <= mNoise);
    }

    enum class Outcome { kDone, kDivide, kNoRoom };

    /// Handles pieces that run along each other, as graphs of functions over a common direction:
    /// each is y over x. It is the difference of the two functions that matters.
    Outcome ExamineAsGraphs(Piece const& a, Piece const& b, Arms const& alongA,
                            Arms const& alongB) {
        Pt const chordA = a.c[3] - a.c[0];
        Pt const chordB = b.c[3] - b.c[0];
        bool const reversed = Dot(chordA, chordB) < 0.0;
        Pt direction = chordA + (reversed ? -chordB : chordB);
        double const length = std::sqrt(Square(direction));
        if (!(length > mMargin)) {
            return Outcome::kDivide;
        }
        direction = direction / length;
        double const sign = reversed ? -1.0 : 1.0;
        double slope = 0.0; // the greatest of B
        for (std::size_t i = 0; i < 3; ++i) {
            double const xA = Dot(direction, alongA[i]);
            double const xB = Dot(direction, alongB[i]) * sign;
            double const yA = std::abs(Cross(direction, alongA[i]));
            double const yB = std::abs(Cross(direction, alongB[i]));
            if (!(yA <= xA && yB <= xB && xA > 0.0 && xB > 0.0)) {
                return Outcome::kDivide;
            }
            slope = std::max(slope, yB / xB);
        }
        Cubic const along = reversed ? Reversed(b.c) : b.c;
        std::array<double, 4> xA;
        std::array<double, 4> xB;
        for (std::size_t i = 0; i < 4; ++i) {
            xA[i] = Dot(direction, a.c[i] - a.c[0]);
            xB[i] = Dot(direction, along[i] - a.c[0]);
        }
        double const begin = std::max(xA[0], xB[0]);
        double const end = std::min(xA[3], xB[3]);
        if (!(begin < end)) {
            bool const beforeA = xA[0] >= xB[3];
            if (!beforeA && !(xB[0] >= xA[3])) {
                return Outcome::kDivide; // one is a point for rounding, within the other's stretch
            }
            AddEnds(a, b, reversed, beforeA);
            return Outcome::kDone;
        }
        double const sBegin = xA[0] < begin ? SolveRising(xA, begin) : 0.0;
        double const sEnd = xA[3] > end ? SolveRising(xA, end) : 1.0;
        double const tBegin = xB[0] < begin ? SolveRising(xB, begin) : 0.0;
        double const tEnd = xB[3] > end ? SolveRising(xB, end) : 1.0;
        // Piece B runs the way of A from here on; its parameters on the whole curve may decrease.
        Piece const partA = a.Part(sBegin, sEnd);
        Piece const wayB = reversed ? Piece{along, b.t1, b.t0} : b;
        Piece const partB = wayB.Part(tBegin, tEnd);
        return CompareGraphs(partA, partB, direction, slope);
    }

    /// Handles two graphs over the same stretch of x, which run the same way. `slope` is the
    /// greatest of B.
    Outcome CompareGraphs(Piece const& a, Piece const& b, Pt const& direction, double slope) {
        double greatestX = 0.0;
        double low = std::numeric_limits<double>::infinity();
        double high = -low;
        std::array<double, 4> y;
        for (std::size_t i = 0; i < 4; ++i) {
            Pt const off = a.c[i] - b.c[i];
            greatestX = std::max(greatestX, std::abs(Dot(direction, off)));
            y[i] = Cross(direction, off);
            low = std::min(low, y[i]);
            high = std::max(high, y[i]);
        }
        // Points of equal parameter differ in x, which makes them differ in y along B's slope.
        low -= slope * greatestX;
        high += slope * greatestX;
        // Along y the graphs are farther apart than the shortest way, by the slope.
        double const margin = mMargin * (1.0 + 0.5 * slope * slope);
        if (low > margin || high < -margin) {
            return Outcome::kDone;
        }
        bool const reversed = b.t1 < b.t0;
        double const before = reversed ? -y[0] : y[0];
        double const after = reversed ? -y[3] : y[3];
        if (std::max(high, -low) <= mAccuracy) {
            mEvents.push_back(
                {a.t0, a.t1, b.t0, b.t1, a.At(0.5), b.At(0.5), before, after, false, false});
            return Outcome::kDone;
        }
        Arms const armsA = ArmsOf(a.c);
        Arms const armsB = ArmsOf(b.c);
        if (DivergeSteadily(armsA, armsB, direction, greatestX)) {
            if (y[0] * y[3] < 0.0) {
                Arms const alongA = DirectionsOf(armsA, mNoise);
                Arms const alongB = DirectionsOf(armsB, mNoise);
                double s = y[0] / (y[0] - y[3]);
                double t = s;
                if (Solve(a.c, b.c, alongA, alongB, s, t) && s >= 0.0 && s <= 1.0 && t >= 0.0 &&
                    t <= 1.0 && AddEvent(a, b, alongA, alongB, s, t, s, t)) {
                    return Outcome::kDone;
                }
            } else {
                AddNearPart(a, b, y, margin, before, after);
                return Outcome::kDone;
            }
        }
        return DivideGraphs(a, b, direction);
    }

    /// Adds the part in which two graphs that diverge are within the accuracy, if they come within
    /// `margin`. `y` has the differences of their control points, and is of one sign at both ends.
    void AddNearPart(Piece const& a, Piece const& b, std::array<double, 4> const& y, double margin,
                     double before, double after) {
        bool const rises = std::abs(y[0]) <= std::abs(y[3]);
        if (std::min(std::abs(y[0]), std::abs(y[3])) > margin) {
            return;
        }
        double part = 1.0;
        if (std::max(std::abs(y[0]), std::abs(y[3])) > mAccuracy) {
            double const sign = (rises ? y[3] : y[0]) < 0.0 ? -1.0 : 1.0;
            std::array<double, 4> rising;
            for (std::size_t i = 0; i < 4; ++i) {
                rising[i] = sign * (rises ? y[i] : y[3 - i]);
            }
            part = SolveRising(rising, mAccuracy);
        }
        double const from = rises ? 0.0 : 1.0 - part;
        double const to = rises ? part : 1.0;
        double const s = rises ? a.t0 : a.t1;
        double const t = rises ? b.t0 : b.t1;
        mEvents.push_back(
            {a.At(from), a.At(to), b.At(from), b.At(to), s, t, before, after, false, false});
    }

    /// True when the difference of two graphs in y strictly rises or falls with x. `greatestX` is
    /// the greatest difference in x of points with equal parameters.
    bool DivergeSteadily(Arms const& a, Arms const& b, Pt const& direction,
                         double greatestX) const {
        // The slopes at one x are compared by the tangents at one parameter; B's tangent changes
        // between the two.
        double const least =
            std::min(std::min(Dot(direction, b[0]), Dot(direction, b[1])), Dot(direction, b[2]));
        double const bend = std::max(Taxicab(b[1] - b[0]), Taxicab(b[2] - b[1]));
        double const shift = 2.0 * bend * greatestX / (3.0 * least);
        double const slack = LongestOf(a) * (least > 0.0 ? shift : (bend > 0.0 ? kCertain : 0.0)) +
                             mNoise * 0x1p-4 * (LongestOf(a) + LongestOf(b));
        double const c0 = Cross(a[0], b[0]);
        double const c1 = 0.5 * (Cross(a[0], b[1]) + Cross(a[1], b[0]));
        double const c2 = (Cross(a[0], b[2]) + 4.0 * Cross(a[1], b[1]) + Cross(a[2], b[0])) / 6.0;
        double const c3 = 0.5 * (Cross(a[1], b[2]) + Cross(a[2], b[1]));
        double const c4 = Cross(a[2], b[2]);
        double const low = std::min(std::min(std::min(c0, c1), std::min(c2, c3)), c4);
        double const high = std::max(std::max(std::max(c0, c1), std::max(c2, c3)), c4);
        return low > slack || high < -slack;
    }

    /// Divides two graphs over the same x in the middle of A.
    Outcome DivideGraphs(Piece const& a, Piece const& b, Pt const& direction) {
        Cubic const headA = HeadOf(a.c, 0.5);
        std::array<double, 4> xB;
        for (std::size_t i = 0; i < 4; ++i) {
            xB[i] = Dot(direction, b.c[i] - headA[3]);
        }
        double const t = xB[0] < 0.0 && xB[3] > 0.0 ? SolveRising(xB, 0.0) : 0.5;
        double const s = a.At(0.5);
        double const tAt = b.At(t);
        bool const pushed = Push({headA, a.t0, s}, {HeadOf(b.c, t), b.t0, tAt}) &&
                            Push({TailOf(a.c, 0.5), s, a.t1}, {TailOf(b.c, t), tAt, b.t1});
        return pushed ? Outcome::kDone : Outcome::kNoRoom;
    }

    /// Handles graphs over stretches of x that do not overlap: their ends may be near each other.
    void AddEnds(Piece const& a, Piece const& b, bool reversed, bool beforeA) {
        double const s = beforeA ? 0.0 : 1.0;
        double const t = beforeA != reversed ? 1.0 : 0.0;
        Pt const gap = (beforeA ? a.c[0] : a.c[3]) - (t == 0.0 ? b.c[0] : b.c[3]);
        if (Square(gap) <= mMargin * mMargin) {
            double const sAt = a.At(s);
            double const tAt = b.At(t);
            mEvents.push_back({sAt, sAt, tAt, tAt, sAt, tAt, 0.0, 0.0, false, false});
        }
    }

    double mAccuracy;
    double mMargin; ///< curves farther apart than this may count as apart
    double mNoise;  ///< more than rounding can move a point
    CurveEvents& mEvents;
    std::size_t mSize = 0;
    unsigned char mStack[kMostOpen * sizeof(Cell)]; // bytes, as points would be set to 0 first
};

} // namespace

double FootOn(Cubic const& c, Pt const& p, double t, double low, double high) {
    CubicPlace place = PlaceAt(c, t);
    double least = Square(place.point - p);
    for (int i = 0; i < kMostSteps; ++i) {
        Pt const off = place.point - p;
        double const flat = 3.0 * Square(place.first);
        double const bend = flat + 2.0 * Dot(off, place.second);
        double const step = Dot(off, place.first) / (bend > 0.5 * flat ? bend : flat);
        double next = std::min(std::max(t - step, low), high);
        // The way is right and may be too long, above all beside a cusp.
        CubicPlace there = PlaceAt(c, next);
        double distance = Square(there.point - p);
        constexpr int kMostHalvings = 16;
        for (int k = 0; k < kMostHalvings && distance > least; ++k) {
            next = 0.5 * (next + t);
            there = PlaceAt(c, next);
            distance = Square(there.point - p);
        }
        if (!(distance < least)) { // also for a NaN
            break;
        }
        bool const last = std::abs(next - t) < 0x1p-50;
        t = next;
        place = there;
        least = distance;
        if (last) {
            break;
        }
    }
    return t;
}

bool FindCurveEvents(Cubic const& a, Cubic const& b, double accuracy, CurveEvents& events) {
    return Finder(accuracy, events).Run(a, b);
}

} // namespace trammel_detail
