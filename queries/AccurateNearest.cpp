// SPDX-License-Identifier: MIT

// The search for the nearest point divides the curve by the squared distance from the point asked
// about.
//
// Let q be the four control vectors of a piece of the curve, seen from that point. The squared
// distance D(x) = |q(x)|² is a polynomial of degree 6 in the piece's parameter x. Its Bernstein
// coefficients are sums of products of the control vectors. They decide about the piece:
//
// - D is nowhere below its least coefficient. A piece is dropped when this coefficient is not below
//   the squared distance that would still be worthwhile, see mWorthwhile.
// - The coefficients of D' are, up to a factor, the differences of neighbouring coefficients of D.
//   Their signs, from the start to the end of the piece, tell which extrema it has inside:
//
//       no change                  no extremum       the piece is dropped
//       one, from plus to minus    one maximum       the piece is dropped, its ends are known
//       one, from minus to plus    one minimum       Newton's method finds it
//       more changes               perhaps several   the piece is halved
//
// A difference within the rounding of its terms counts as either sign.
//
// The control vectors of a piece come from halving, not from the coefficients of the whole curve.
// So near the point asked about, all errors are relative to the small piece there. A cusp or an end
// at that very point is therefore found as sharply as any other place.

#include "AccurateCurve.h"
#include "AccurateCurve_p.h"
#include "CubicHalves_p.h"
#include "NearestPoint_p.h"
#include "PointMath_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>

namespace trammel {

namespace {

using trammel_detail::Dot;
using trammel_detail::Pt;
using trammel_detail::ScaledPoints;
using trammel_detail::Square;
using trammel_detail::Taxicab;

/// The finest accuracy, as a part of the sum of the control vectors' magnitudes.
constexpr double kRounding = 0x1p-47;
/// Differences of coefficients below this part of the greatest squared control vector may have
/// either sign: some ten roundings of 2^-53.
constexpr double kUnclear = 0x1p-49;
/// The most pieces that wait for their turn. A piece is a point after as many halvings.
constexpr std::size_t kMostPending = 60;
/// The most steps of Newton's method and bisections: as many as halve the bracket to nothing.
constexpr int kMostSteps = 64;

/// A piece of the curve: control vectors, and the parameters of its ends.
struct Piece {
    std::array<Pt, 4> q;
    double from;
    double to;
};

/// The search for one point.
class Search {
public:
    /// Searches for points nearer than `limit`.
    Search(ScaledPoints<5> const& p, double accuracy, double limit)
        : mWorthwhile(limit * limit), mLimit(mWorthwhile) {
        mFirst.q = {p[0] - p[4], p[1] - p[4], p[2] - p[4], p[3] - p[4]};
        mFirst.from = 0.0;
        mFirst.to = 1.0;
        double sum = 0.0;
        for (Pt const& q : mFirst.q) {
            sum += Taxicab(q);
        }
        double const least = kRounding * sum;
        mAccuracy = accuracy > least ? accuracy : least;
        Take(0.0, Square(mFirst.q[0]));
        Take(1.0, Square(mFirst.q[3]));
        Run();
    }
    double BestParameter() const { return mBest; }
    double BestDistance() const { return mDistance; }

private:
    void Take(double t, double square) {
        if (square < mSquare) {
            mBest = t;
            mSquare = square;
            mDistance = std::sqrt(square);
            double const better = std::max(mDistance - mAccuracy, 0.0);
            mWorthwhile = std::min(better * better, mLimit);
        }
    }
    void Run();
    void TakeMinimum(Piece const& piece, std::array<double, 7> const& d);

    Piece mFirst;
    double mAccuracy;
    double mBest = 0.0;
    double mSquare = std::numeric_limits<double>::infinity();
    double mDistance = std::numeric_limits<double>::infinity();
    /// The squared distance at which a point is better than the best one by the accuracy. Only
    /// pieces that may come below it are searched. Never more than mLimit.
    double mWorthwhile;
    double mLimit; ///< the square of the limit asked for
};

/// Returns the Bernstein coefficients of the squared distance.
std::array<double, 7> SquaredDistance(std::array<Pt, 4> const& q) {
    double const d11 = Square(q[1]);
    double const d12 = Dot(q[1], q[2]);
    double const d22 = Square(q[2]);
    return {Square(q[0]),
            Dot(q[0], q[1]),
            0.4 * Dot(q[0], q[2]) + 0.6 * d11,
            0.1 * Dot(q[0], q[3]) + 0.9 * d12,
            0.4 * Dot(q[1], q[3]) + 0.6 * d22,
            Dot(q[2], q[3]),
            Square(q[3])};
}

enum class Extrema { kNone, kMinimum, kSeveral };

/// Tells which minima a piece may have inside, by Descartes' rule of signs.
Extrema Classify(std::array<double, 7> const& d, double unclear) {
    unsigned falls = 0; // bit i: the i-th difference is negative, or may be
    unsigned rises = 0;
    for (unsigned i = 0; i < 6; ++i) {
        double const difference = d[i + 1] - d[i];
        falls |= static_cast<unsigned>(difference < unclear) << i;
        rises |= static_cast<unsigned>(difference > -unclear) << i;
    }
    unsigned const firstFall = falls & (0U - falls);
    unsigned const firstRise = rises & (0U - rises);
    if (falls == 0 || rises < 2 * firstFall) {
        return Extrema::kNone; // no rise follows a fall, so there is no minimum inside
    }
    // There is one minimum when no fall follows a rise.
    return falls < 2 * firstRise ? Extrema::kMinimum : Extrema::kSeveral;
}

/// Takes the piece's only minimum.
void Search::TakeMinimum(Piece const& piece, std::array<double, 7> const& d) {
    auto const& q = piece.q;
    Pt const c1 = (q[1] - q[0]) * 3.0;
    Pt const c2 = ((q[0] - q[1]) + (q[2] - q[1])) * 3.0;
    Pt const c3 = (q[3] - q[0]) - (q[2] - q[1]) * 3.0;

    // The first guess is where the control polygon of D' crosses zero.
    double x = 0.5;
    for (std::size_t i = 0; i < 5; ++i) {
        double const g0 = d[i + 1] - d[i];
        double const g1 = d[i + 2] - d[i + 1];
        if (g0 < 0.0 && g1 >= 0.0) {
            x = 0.2 * (static_cast<double>(i) + g0 / (g0 - g1));
            break;
        }
    }
    double const enough = 0.125 * mAccuracy;
    double lo = 0.0;
    double hi = 1.0;
    bool jumped = false; // the step before led nearly to an end of the bracket
    for (int step = 0; step < kMostSteps; ++step) {
        Pt const at = q[0] + (c1 + (c2 + c3 * x) * x) * x;
        Pt const v = c1 + (c2 * 2.0 + c3 * (3.0 * x)) * x;
        Pt const w = (c2 + c3 * (3.0 * x)) * 2.0;
        double const g = Dot(at, v);
        double const slope = Square(v) + Dot(at, w);
        (g < 0.0 ? lo : hi) = x;
        double next = x - g / slope;
        double squaredSpeed = Square(v);
        bool const newton = slope > 0.0 && step % 8 != 7;
        if (newton && next > lo && next < hi) {
            jumped = false;
        } else {
            // Where Newton's step leads out of the bracket, the zero is probably near that end. So
            // the first time x moves by nine tenths of the way to it. When this happens again in
            // the next step, the bracket is halved. It is also halved in every eighth step, and
            // where the slope is not above 0. The zero is then at most twice as far from x as the
            // step leads. The greatest speed on the piece bounds how far that is on the curve.
            jumped = newton && !jumped;
            double const part = jumped ? 0.9 : 0.5;
            next = g < 0.0 ? x + part * (hi - x) : x - part * (x - lo);
            squaredSpeed = 36.0 * std::max(Square(q[1] - q[0]),
                                           std::max(Square(q[2] - q[1]), Square(q[3] - q[2])));
        }
        double const moved = (next - x) * (next - x) * squaredSpeed;
        if (g == 0.0 || next == x || moved <= enough * enough) {
            Take(piece.from + (piece.to - piece.from) * x, Square(at));
            x = g == 0.0 ? x : next;
            break;
        }
        x = next;
    }
    // The distance is good enough already. The step that ended the loop makes the parameter
    // sharper.
    Pt const last = q[0] + (c1 + (c2 + c3 * x) * x) * x;
    Take(piece.from + (piece.to - piece.from) * x, Square(last));
}

void Search::Run() {
    union Slot {
        Piece piece;
        // Stays unset: setting all of them would take longer than most searches.
        Slot() {} // NOLINT(modernize-use-equals-default)
    };
    std::array<Slot, kMostPending> pending;
    std::size_t count = 0;
    Piece piece = mFirst;
    for (;;) {
        std::array<double, 7> const d = SquaredDistance(piece.q);
        double const least = std::min(std::min(std::min(d[0], d[1]), std::min(d[2], d[3])),
                                      std::min(std::min(d[4], d[5]), d[6]));
        bool divide = false;
        if (least < mWorthwhile) {
            double const greatest =
                std::max(std::max(d[0], Square(piece.q[1])), std::max(Square(piece.q[2]), d[6]));
            switch (Classify(d, kUnclear * greatest)) {
            case Extrema::kNone:
                break;
            case Extrema::kMinimum:
                TakeMinimum(piece, d);
                break;
            case Extrema::kSeveral:
                divide = count < kMostPending;
                break;
            }
        }
        if (divide) {
            auto const& q = piece.q;
            trammel_detail::CubicHalves<double> const h(q[0].h, q[1].h, q[2].h, q[3].h);
            trammel_detail::CubicHalves<double> const v(q[0].v, q[1].v, q[2].v, q[3].v);
            Pt const middle(h.middle, v.middle);
            double const t = piece.from + 0.5 * (piece.to - piece.from);
            Take(t, Square(middle));
            Piece const left = {
                {q[0], Pt(h.left1, v.left1), Pt(h.left2, v.left2), middle}, piece.from, t};
            Piece const right = {
                {middle, Pt(h.right1, v.right1), Pt(h.right2, v.right2), q[3]}, t, piece.to};
            // The half that ends nearer to the point comes first. The other one may then be
            // dropped.
            bool const leftFirst = d[0] <= d[6];
            new (&pending[count++].piece) Piece(leftFirst ? right : left);
            piece = leftFirst ? left : right;
        } else if (count > 0) {
            piece = pending[--count].piece;
        } else {
            return;
        }
    }
}

CurvePoint NearestWithin(CBezier const& curve, Pt const& pt, double accuracy, double limit) {
    std::array<Pt, 5> points = {curve.P0, curve.P1, curve.P2, curve.P3, pt};
    trammel_detail::DropCommon(points);
    ScaledPoints<5> const p(points);
    if (!p.Finite()) {
        double const nan = std::numeric_limits<double>::quiet_NaN();
        return {nan, Pt(nan, nan), nan};
    }
    Search const search(p, p.Down(accuracy), p.Down(limit));
    double const t = search.BestParameter();
    return {t, curve.TPt(t), p.Up(search.BestDistance())};
}

} // namespace

CurvePoint NearestPoint(CBezier const& curve, TPoint<double> const& pt, double accuracy) {
    return NearestWithin(curve, pt, accuracy, std::numeric_limits<double>::infinity());
}

CurvePoint NearestPoint(CBSpline const& curve, TPoint<double> const& pt, double accuracy) {
    return NearestPoint(trammel_detail::Raised(curve), pt, accuracy);
}

} // namespace trammel

namespace trammel_detail {

trammel::CurvePoint NearestPointWithin(CBezier const& curve, TPoint<double> const& pt,
                                       double accuracy, double limit) {
    return trammel::NearestWithin(curve, pt, accuracy, limit);
}

} // namespace trammel_detail
