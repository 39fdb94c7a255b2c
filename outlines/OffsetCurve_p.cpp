// SPDX-License-Identifier: MIT

#include "OffsetCurve_p.h"

#include "Bernstein_p.h"
#include "PointMath_p.h"
#include "TwoSum_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// Control points nearer to an end than this share of the coordinates lie on it.
constexpr double kOnEnd = 0x1p-48;
/// A piece is divided so often at most to follow its offset.
constexpr int kDeepestFit = 32;
/// A curve is followed by so many curves at most.
constexpr std::size_t kMostFits = 4096;
/// The steps toward the right distance at the places.
constexpr int kMostRounds = 6;
/// Further steps are taken while the error shrinks at least to this part.
constexpr double kEnoughGain = 0.5;
/// With a greater error at the places, in tolerances, the curve is not worth a proof.
constexpr double kMostOff = 0.5;
/// With so small an error at the places, in tolerances, more steps gain nothing.
constexpr double kEnoughOff = 1.0 / 16.0;
/// The squared sine of an angle between directions that differ by rounding.
constexpr double kSameDirection = 0x1p-80;
/// How far rounding may be off in sums of products of coordinates, as a share of these.
constexpr double kTurnRounding = 0x1p-48;
/// A speed below this share of the greatest one is computed without loss.
constexpr double kLossless = 0x1p-16;
/// A speed below this share of the greatest one may be rounding.
constexpr double kStandsStill = 0x1p-44;
/// Changes of the arms that have less effect than this share, squared, of others are not made.
constexpr double kDamping = 1e-7;
/// A piece is not cut at an inflection that is nearer to its ends.
constexpr double kInflectionMargin = 0.05;
/// Centres of curvature that are nearer to the curve, in radii, are those of a cusp.
constexpr double kAtCusp = 0x1p-20;
/// The pen's centres of curvature are divided so often at most.
constexpr int kDeepestCentre = 12;
/// Where their chords are farther off than the tolerance then, they are divided on,
constexpr int kDeepestFarCentre = 40;
/// while there are fewer chords.
constexpr std::size_t kMostCentres = 16384;

/// The parameters at which a fitted curve has the right distance, besides its ends. The error
/// u²(1 - u)²(u - a)(u - b) then has extremes of equal size.
constexpr double kInner = 0.3372;
constexpr std::array<double, 2> kPlaces = {{kInner, 1.0 - kInner}};

double MostOf(Cubic const& c) {
    double most = 0.0;
    for (Pt const& p : c) {
        most = std::max({most, std::abs(p.h), std::abs(p.v)});
    }
    return most;
}

Pt UnitOf(Pt const& p) { return trammel::Normalize(p); }

/// Adds a product without loss, unless it leaves the range of normal doubles.
void AddProduct(CompensatedSum<double>& sum, double a, double b) {
    double const product = a * b;
    sum.Add(product);
    sum.Add(std::fma(a, b, -product));
}

/// Returns s0 + (a + b)(s1 - s0) + a b (s0 - 2 s1 + s2), rounded about once.
double LosslessPolar(double s0, double s1, double s2, double a, double b) {
    TwoSumResult const change = TwoSum(s1, -s0);
    TwoSumResult const next = TwoSum(s2, -s1);
    TwoSumResult const bend = TwoSum(next.value, -change.value);
    double const bendError = bend.error + (next.error - change.error);
    TwoSumResult const both = TwoSum(a, b);
    double const square = a * b;
    double const squareError = std::fma(a, b, -square);
    CompensatedSum<double> sum;
    sum.Add(s0);
    AddProduct(sum, both.value, change.value);
    AddProduct(sum, square, bend.value);
    sum.Add(both.error * change.value + both.value * change.error);
    sum.Add(squareError * bend.value + square * bendError);
    return sum.Value();
}

/// Returns the polar form of a derivative with control points `s`. Where a and b are equal, that is
/// the derivative itself. Its terms cancel near a cusp. Their small sum has to tell the direction.
Pt PolarOf(std::array<Pt, 3> const& s, double a, double b) {
    Pt const d0 = s[0] + (s[1] - s[0]) * a;
    Pt const d1 = s[1] + (s[2] - s[1]) * a;
    Pt const polar = d0 + (d1 - d0) * b;
    double const greatest = std::max({Taxicab(s[0]), Taxicab(s[1]), Taxicab(s[2])});
    if (Taxicab(polar) >= kLossless * greatest) {
        return polar;
    }
    return Pt(LosslessPolar(s[0].h, s[1].h, s[2].h, a, b),
              LosslessPolar(s[0].v, s[1].v, s[2].v, a, b));
}

} // namespace

Pt DirectionOf(Cubic const& c, double t) {
    double const onEnd = kOnEnd * MostOf(c);
    if (t <= 0.0) {
        for (std::size_t i = 1; i < 4; ++i) {
            if (Taxicab(c[i] - c[0]) > onEnd) {
                return UnitOf(c[i] - c[0]);
            }
        }
        return UnitOf(c[3] - c[0]);
    }
    if (t >= 1.0) {
        for (std::size_t i = 3; i-- > 0;) {
            if (Taxicab(c[3] - c[i]) > onEnd) {
                return UnitOf(c[3] - c[i]);
            }
        }
        return UnitOf(c[3] - c[0]);
    }
    return DirectedCubic(c, Pt(), Pt()).DirectionAt(t);
}

CubicPlace DirectedCubic::PlaceAt(double t) const {
    CubicPlace place = trammel_detail::PlaceAt(curve, t);
    Pt const d0 = speed[0] + (speed[1] - speed[0]) * t;
    Pt const d1 = speed[1] + (speed[2] - speed[1]) * t;
    place.first = PolarOf(speed, t, t);
    place.second = d1 - d0;
    return place;
}

Pt DirectedCubic::DirectionAt(double t) const {
    CubicPlace const place = PlaceAt(t);
    double const least =
        kStandsStill * std::max({Taxicab(speed[0]), Taxicab(speed[1]), Taxicab(speed[2])});
    if (Taxicab(place.first) > least) {
        return UnitOf(place.first);
    }
    // Where the curve stands still, the change of its speed tells how it goes on.
    Pt const later = speed[0] - speed[1] * 2.0 + speed[2];
    Pt const direction = UnitOf(Taxicab(place.second) > least ? place.second : later);
    return direction.Null() ? UnitOf(place.first) : direction;
}

DirectedCubic DirectedCubic::Part(double t0, double t1, Pt const& fromDirection,
                                  Pt const& toDirection) const {
    DirectedCubic part(PartOf(curve, t0, t1), fromDirection, toDirection);
    double const width = t1 - t0;
    part.speed = {{PolarOf(speed, t0, t0) * width, PolarOf(speed, t0, t1) * width,
                   PolarOf(speed, t1, t1) * width}};
    return part;
}

DirectedCubic DirectedCubic::Reversed() const {
    DirectedCubic reversed(trammel_detail::Reversed(curve), -to, -from);
    reversed.speed = {{-speed[2], -speed[1], -speed[0]}};
    return reversed;
}

namespace {

constexpr std::size_t kSquareTerms = 19;
constexpr std::size_t kAlongTerms = 16;
constexpr std::size_t kRoomTerms = 13;
/// Errors along a curve are held against the room for them in this many halvings.
constexpr int kRoomDepth = 4;
/// What counts as far below the room, as a share of its square.
constexpr double kFarBelow = 1.0 / 16.0;
/// With less room than this share of the square of the speed, rounding may tell what there is.
constexpr double kLeastRoom = 1.0 / 16.0;

/// Returns a bound on the magnitude of a polynomial in Bernstein form, found by halving it up to
/// `depth` times. It ends early where the bound is no more than `enough`, or a value is more.
template <std::size_t N>
double MagnitudeOf(std::array<double, N> const& coefficients, double enough, int depth) {
    double bound = 0.0;
    for (double const c : coefficients) {
        bound = std::max(bound, std::abs(c));
    }
    if (!(bound > enough) || depth == 0 || std::abs(coefficients[0]) > enough ||
        std::abs(coefficients[N - 1]) > enough) {
        return bound;
    }
    std::array<double, N> left;
    std::array<double, N> right;
    CutAtMiddle(coefficients, left, right);
    if (std::abs(left[N - 1]) > enough) {
        return bound;
    }
    double const first = MagnitudeOf(left, enough, depth - 1);
    return first > enough ? first : std::max(first, MagnitudeOf(right, enough, depth - 1));
}

/// True when the square of `along` is nowhere above `room` times `share`. In parts where that is
/// not plain after halvings, it has to be far below the greatest `room`, or below `least` at all.
template <std::size_t N, std::size_t M>
bool HasRoom(std::array<double, N> const& along, std::array<double, M> const& room, double share,
             double least, int depth) {
    double const most = MagnitudeOf(along, 0.0, 0);
    if (most * most <= share * *std::min_element(room.begin(), room.end())) {
        return true;
    }
    if (depth == 0) {
        double const greatest = *std::max_element(room.begin(), room.end());
        return most * most <= kFarBelow * share * std::max(greatest, least);
    }
    std::array<double, N> left;
    std::array<double, N> right;
    std::array<double, M> leftRoom;
    std::array<double, M> rightRoom;
    CutAtMiddle(along, left, right);
    CutAtMiddle(room, leftRoom, rightRoom);
    return HasRoom(left, leftRoom, share, least, depth - 1) &&
           HasRoom(right, rightRoom, share, least, depth - 1);
}

/// Fits one curve beside a piece.
class OffsetFit {
public:
    OffsetFit(DirectedCubic const& piece, double distance)
        : mPiece(piece), mDistance(distance),
          mStart(piece.curve[0] + NormalOf(piece.from) * distance),
          mEnd(piece.curve[3] + NormalOf(piece.to) * distance) {}

    /// Finds the curve; returns false where it is farther than the tolerance.
    bool Try(double tolerance) {
        Pt const chord = mEnd - mStart;
        double const length = std::sqrt(Square(chord));
        SetArms(length);
        if (IsFlat(length, tolerance)) {
            return true;
        }
        // The arms with the least error are taken: the steps need not converge where the curve is
        // nearly straight.
        double best = std::numeric_limits<double>::infinity();
        double arm0 = mArm0;
        double arm1 = mArm1;
        std::array<double, 2> foot = mFoot;
        for (int round = 0; round < kMostRounds; ++round) {
            std::array<double, 2> const arms = {{mArm0, mArm1}};
            double const off = Improve();
            if (!(off < kEnoughGain * best)) {
                break;
            }
            best = off;
            arm0 = arms[0];
            arm1 = arms[1];
            foot = mFoot;
            if (best <= kEnoughOff * tolerance) {
                break;
            }
        }
        mArm0 = arm0;
        mArm1 = arm1;
        mFoot = foot;
        return best <= kMostOff * tolerance && Verify(tolerance);
    }
    std::array<Pt, 3> Points() const {
        return {{mStart + mPiece.from * mArm0, mEnd - mPiece.to * mArm1, mEnd}};
    }
    /// The line instead of the curve.
    std::array<Pt, 3> Straight() const {
        Pt const third = (mEnd - mStart) / 3.0;
        return {{mStart + third, mEnd - third, mEnd}};
    }

private:
    /// The arms of the curve with the offset's derivatives at its ends.
    void SetArms(double length) {
        Pt const a = mPiece.speed[0];
        Pt const b = mPiece.speed[1];
        Pt const d = mPiece.speed[2];
        auto const arm = [&](Pt const& first, double bend) {
            double const square = Square(first);
            double const value =
                std::sqrt(square) - mDistance * (square > 0.0 ? bend / square : 0.0);
            return std::abs(value) <= length ? value : length / 3.0;
        };
        mArm0 = arm(a, Cross(a, b) / 1.5);
        mArm1 = arm(d, Cross(b, d) / 1.5);
        // The offset goes one way. An arm that went the other way would make a spike at a cusp,
        // thinner than the tolerance but much longer.
        double const most = 2.0 * length;
        mMostArm = mArm0 + mArm1 >= 0.0 ? most : 0.0;
        mLeastArm = mArm0 + mArm1 <= 0.0 ? -most : 0.0;
        mArm0 = std::clamp(mArm0, mLeastArm, mMostArm);
        mArm1 = std::clamp(mArm1, mLeastArm, mMostArm);
    }
    /// True where the curve and what it follows both lie in a triangle so flat that they are no
    /// farther apart than the tolerance. Both are convex, and have the same ends and directions,
    /// unless corners were smoothed.
    bool IsFlat(double length, double tolerance) {
        Pt const a = mPiece.speed[0];
        Pt const b = mPiece.speed[1];
        Pt const d = mPiece.speed[2];
        double const ab = Cross(a, b);
        double const bd = Cross(b, d);
        double const ad = Cross(a, d);
        bool const isConvex =
            (ab >= 0.0 && bd >= 0.0 && ad >= 0.0) || (ab <= 0.0 && bd <= 0.0 && ad <= 0.0);
        double const along = Dot(mPiece.from, mPiece.to);
        double const turn = Cross(mPiece.from, mPiece.to);
        double const own = Dot(a, d);
        if (!isConvex || !(along > 0.5) || !(own > 0.0) || !(Dot(a, b) >= 0.0) ||
            !(Dot(b, d) >= 0.0)) {
            return false;
        }
        // Where the ends have other directions than the piece, there are two triangles.
        double const height = length * std::abs(turn) / (2.0 * (1.0 + along));
        double const ownHeight = length * std::abs(ad) / (4.0 * own);
        auto const isOwn = [](Pt const& direction, Pt const& speed) {
            double const off = Cross(direction, speed);
            return off * off <= kSameDirection * Square(speed);
        };
        double const both = isOwn(mPiece.from, a) && isOwn(mPiece.to, d)
                                ? std::max(height, ownHeight)
                                : height + ownHeight;
        Pt const chord = mEnd - mStart;
        // Where both ends' directions are on one side of the chord, the curve bends to and fro.
        double const first = Cross(mPiece.from, chord);
        double const last = Cross(chord, mPiece.to);
        double const swing = first * last < 0.0 ? std::max(std::abs(first), std::abs(last)) : 0.0;
        if (!(both + swing <= tolerance)) {
            return false;
        }
        if (!(Dot(chord, mPiece.from) > 0.0) || mArm0 < 0.0 || mArm1 < 0.0) {
            return false;
        }
        mArm0 = std::min(mArm0, length * 0.5);
        mArm1 = std::min(mArm1, length * 0.5);
        return true;
    }
    /// Returns how far the distance is off at two places, and takes a step of Newton's method
    /// toward the right one there. NaN where that fails.
    double Improve() {
        constexpr double kFailed = std::numeric_limits<double>::quiet_NaN();
        std::array<double, 2> off = {};
        std::array<double, 2> by0 = {};
        std::array<double, 2> by1 = {};
        Pt const c1 = mStart + mPiece.from * mArm0;
        Pt const c2 = mEnd - mPiece.to * mArm1;
        for (std::size_t i = 0; i < 2; ++i) {
            double const u = kPlaces[i];
            double const w = 1.0 - u;
            double const one = 3.0 * u * w * w;
            double const two = 3.0 * u * u * w;
            Pt const q = mStart * (w * w * w) + c1 * one + c2 * two + mEnd * (u * u * u);
            CubicPlace place = mPiece.PlaceAt(mFoot[i]);
            for (int step = 0; step < 2; ++step) {
                Pt const away = q - place.point;
                double const slope = 3.0 * Square(place.first) - 6.0 * Dot(away, place.second);
                double const next = mFoot[i] + Dot(away, place.first) / slope;
                if (!(next > 0.0 && next < 1.0)) {
                    return kFailed;
                }
                mFoot[i] = next;
                place = mPiece.PlaceAt(next);
            }
            Pt const normal = NormalOf(place.first / std::sqrt(Square(place.first)));
            off[i] = Dot(q - place.point, normal) - mDistance;
            by0[i] = one * Dot(mPiece.from, normal);
            by1[i] = -two * Dot(mPiece.to, normal);
        }
        // The least step that does it, as far as the arms have an effect [Levenberg].
        double const sum = by0[0] * off[0] + by0[1] * off[1];
        double const sum1 = by1[0] * off[0] + by1[1] * off[1];
        double const both = by0[0] * by1[0] + by0[1] * by1[1];
        double square0 = by0[0] * by0[0] + by0[1] * by0[1];
        double square1 = by1[0] * by1[0] + by1[1] * by1[1];
        double const damping = kDamping * (square0 + square1);
        square0 += damping;
        square1 += damping;
        double const determinant = square0 * square1 - both * both;
        if (determinant > 0.0) {
            mArm0 = std::clamp(mArm0 - (sum * square1 - sum1 * both) / determinant, mLeastArm,
                               mMostArm);
            mArm1 = std::clamp(mArm1 - (sum1 * square0 - sum * both) / determinant, mLeastArm,
                               mMostArm);
        }
        return std::max(std::abs(off[0]), std::abs(off[1]));
    }
    /// A parameter u of the curve belongs to the parameter f(u) of the piece. All polynomials are
    /// in scaled Bernstein form.
    struct Match {
        std::array<double, 4> f;
        std::array<double, 4> g;      ///< 1 - f
        std::array<double, 10> awayH; ///< the way from the piece to the curve
        std::array<double, 10> awayV;
        std::array<double, 7> speedH; ///< a third of the piece's derivative
        std::array<double, 7> speedV;
    };
    /// Returns false where a parameter would be outside.
    bool FindMatch(Match& match) const;
    bool KeepsDistance(Match const& match, double tolerance) const;
    /// True where the piece, which goes so fast at most, bends away from the offset, or less than
    /// half as much as the pen.
    bool BendsLittle(double speed) const;
    /// Returns half of how the square of the distance bends along the piece, as a ninth. Near the
    /// centres of curvature it is small, and an error along the piece means that others of its
    /// places are nearer.
    std::array<double, kRoomTerms> RoomAlong(Match const& match) const;
    bool Verify(double tolerance) const;

    DirectedCubic const& mPiece;
    double mDistance;
    Pt mStart;
    Pt mEnd;
    double mArm0 = 0.0; ///< from the start to the first control point
    double mArm1 = 0.0; ///< from the second control point to the end
    double mLeastArm = 0.0;
    double mMostArm = 0.0;
    std::array<double, 2> mFoot =
        kPlaces; ///< the piece's parameters that are nearest to the places
};

bool OffsetFit::FindMatch(Match& match) const {
    // The cubic function f with these values at the two places, 0 at 0 and 1 at 1.
    double const u = kInner;
    double const w = 1.0 - u;
    double const one = 3.0 * u * w * w;
    double const two = 3.0 * u * u * w;
    double const rest0 = mFoot[0] - u * u * u;
    double const rest1 = mFoot[1] - w * w * w;
    double const f1 = (rest0 * one - rest1 * two) / (one * one - two * two);
    double const f2 = (rest1 * one - rest0 * two) / (one * one - two * two);
    if (!(f1 >= 0.0 && f1 <= 1.0 && f2 >= 0.0 && f2 <= 1.0)) {
        return false;
    }
    match.f = {{0.0, 3.0 * f1, 3.0 * f2, 1.0}};
    match.g = {{1.0, 3.0 * (1.0 - f1), 3.0 * (1.0 - f2), 0.0}};
    auto const ff = Product(match.f, match.f);
    auto const fg = Product(match.f, match.g);
    auto const gg = Product(match.g, match.g);
    auto const fff = Product(ff, match.f);
    auto const ffg = Product(ff, match.g);
    auto const fgg = Product(fg, match.g);

    Cubic const& c = mPiece.curve;
    Pt const origin = c[0];
    Pt const c1 = c[1] - origin;
    Pt const c2 = c[2] - origin;
    Pt const c3 = c[3] - origin;
    Pt const q0 = mStart - origin;
    Pt const q1 = q0 + mPiece.from * mArm0;
    Pt const q3 = mEnd - origin;
    Pt const q2 = q3 - mPiece.to * mArm1;

    constexpr std::array<double, 7> kRaise = Binomials<7>();
    auto const away = [&](double p1, double p2, double p3, std::array<double, 4> const& q) {
        std::array<double, 10> result = Product(q, kRaise);
        for (std::size_t k = 0; k < result.size(); ++k) {
            result[k] -= 3.0 * (p1 * fgg[k] + p2 * ffg[k]) + p3 * fff[k];
        }
        return result;
    };
    match.awayH = away(c1.h, c2.h, c3.h, {{q0.h, 3.0 * q1.h, 3.0 * q2.h, q3.h}});
    match.awayV = away(c1.v, c2.v, c3.v, {{q0.v, 3.0 * q1.v, 3.0 * q2.v, q3.v}});

    auto const& [d0, d1, d2] = mPiece.speed;
    for (std::size_t k = 0; k < 7; ++k) {
        match.speedH[k] = d0.h * gg[k] + 2.0 * d1.h * fg[k] + d2.h * ff[k];
        match.speedV[k] = d0.v * gg[k] + 2.0 * d1.v * fg[k] + d2.v * ff[k];
    }
    return true;
}

bool OffsetFit::KeepsDistance(Match const& match, double tolerance) const {
    constexpr std::array<double, kSquareTerms> kSquareScale = Binomials<kSquareTerms>();
    double const distance = std::abs(mDistance);
    std::array<double, kSquareTerms> square = Product(match.awayH, match.awayH);
    std::array<double, kSquareTerms> const squareV = Product(match.awayV, match.awayV);
    for (std::size_t k = 0; k < kSquareTerms; ++k) {
        square[k] = (square[k] + squareV[k]) / kSquareScale[k] - distance * distance;
    }
    double const enough = tolerance * (2.0 * distance - tolerance);
    return !(tolerance < distance && MagnitudeOf(square, enough, 3) > enough);
}

bool OffsetFit::BendsLittle(double speed) const {
    double const distance = std::abs(mDistance);
    std::array<double, 3> const bends = SpeedBend(mPiece.speed);
    std::array<double, 5> const squares = SpeedSquare(mPiece.speed);
    double const bend =
        std::max({mDistance * bends[0], mDistance * bends[1], mDistance * bends[2]});
    double const slowest = std::max(*std::min_element(squares.begin(), squares.end()), 0.0);
    return bend <= distance * kTurnRounding * speed * speed ||
           2.0 * bend <= slowest * std::sqrt(slowest);
}

std::array<double, kRoomTerms> OffsetFit::RoomAlong(Match const& match) const {
    auto const& [d0, d1, d2] = mPiece.speed;
    std::array<double, 4> bendH = {};
    std::array<double, 4> bendV = {};
    for (std::size_t k = 0; k < 4; ++k) {
        bendH[k] = (d1.h - d0.h) * match.g[k] + (d2.h - d1.h) * match.f[k];
        bendV[k] = (d1.v - d0.v) * match.g[k] + (d2.v - d1.v) * match.f[k];
    }
    constexpr std::array<double, kRoomTerms> kRoomScale = Binomials<kRoomTerms>();
    std::array<double, kRoomTerms> room = Product(match.speedH, match.speedH);
    std::array<double, kRoomTerms> const aheadV = Product(match.speedV, match.speedV);
    std::array<double, kRoomTerms> const asideH = Product(match.awayH, bendH);
    std::array<double, kRoomTerms> const asideV = Product(match.awayV, bendV);
    for (std::size_t k = 0; k < kRoomTerms; ++k) {
        room[k] = (room[k] + aheadV[k] - (asideH[k] + asideV[k]) * (2.0 / 3.0)) / kRoomScale[k];
    }
    return room;
}

bool OffsetFit::Verify(double tolerance) const {
    Match match;
    if (!FindMatch(match) || !KeepsDistance(match, tolerance)) {
        return false;
    }
    // An error along the curve counts by its square only.
    double const distance = std::abs(mDistance);
    constexpr std::array<double, kAlongTerms> kAlongScale = Binomials<kAlongTerms>();
    std::array<double, kAlongTerms> along = Product(match.awayH, match.speedH);
    std::array<double, kAlongTerms> const more = Product(match.awayV, match.speedV);
    for (std::size_t k = 0; k < kAlongTerms; ++k) {
        along[k] = (along[k] + more[k]) / kAlongScale[k];
    }
    double const speed = std::sqrt(
        std::max({Square(mPiece.speed[0]), Square(mPiece.speed[1]), Square(mPiece.speed[2])}));
    double const shift = std::sqrt(tolerance * std::max(distance, tolerance)) * speed;
    if (MagnitudeOf(along, shift, 2) > shift) {
        return false;
    }
    return BendsLittle(speed) ||
           HasRoom(along, RoomAlong(match), tolerance * std::max(distance, tolerance),
                   kLeastRoom * speed * speed, kRoomDepth);
}

/// Returns a parameter that halves the curve at the distance, by its chords.
double MiddleOf(DirectedCubic const& piece, double distance) {
    Pt const start = piece.curve[0] + NormalOf(piece.from) * distance;
    Pt const end = piece.curve[3] + NormalOf(piece.to) * distance;
    double low = 0.0;
    double high = 1.0;
    double t = 0.5;
    for (int i = 0; i < 30; ++i) {
        CubicPlace const place = piece.PlaceAt(t);
        Pt const at = place.point + NormalOf(UnitOf(place.first)) * distance;
        double const before = std::sqrt(Square(at - start));
        double const behind = std::sqrt(Square(end - at));
        if (std::abs(before - behind) <= 0.05 * (before + behind)) {
            break;
        }
        (before < behind ? low : high) = t;
        t = 0.5 * (low + high);
    }
    return t;
}

/// Returns a parameter well inside at which the curve has an inflection, or 0. The arms of a curve
/// that bends both ways do not determine it well.
double InflectionOf(DirectedCubic const& piece) {
    double const start = Cross(piece.speed[0], piece.speed[1]);
    double const middle = 0.5 * Cross(piece.speed[0], piece.speed[2]);
    double const end = Cross(piece.speed[1], piece.speed[2]);
    double const a = start;
    double const b = 2.0 * (middle - start);
    double const d = start - 2.0 * middle + end;
    double const root = std::sqrt(std::max(b * b - 4.0 * a * d, 0.0));
    double const q = -0.5 * (b + (b < 0.0 ? -root : root));
    for (double const t : {a / q, q / d}) {
        if (t > kInflectionMargin && t < 1.0 - kInflectionMargin) {
            return t;
        }
    }
    return 0.0;
}

/// True where a piece and its offset are no longer than a length.
bool IsShort(DirectedCubic const& piece, double distance, double length) {
    double const own = PolygonLength(piece.curve);
    if (own > length) {
        return false;
    }
    // All directions are between those of the derivative's control points.
    std::array<Pt, 5> const directions = {{piece.from, UnitOf(piece.speed[0]),
                                           UnitOf(piece.speed[1]), UnitOf(piece.speed[2]),
                                           piece.to}};
    double turn = 0.0;
    for (Pt const& a : directions) {
        for (Pt const& b : directions) {
            if (!a.Null() && !b.Null()) {
                turn = std::max(turn, Taxicab(a - b));
            }
        }
    }
    return !(turn > 1.0) && !(own + std::abs(distance) * turn > length);
}

/// True where the radius of curvature only grows along a piece, or only shrinks. The coefficients
/// of its derivative's numerator have one sign then, in Bernstein form of degree 6.
bool TurnsEvenly(DirectedCubic const& piece) {
    Pt const& a = piece.speed[0];
    Pt const& b = piece.speed[1];
    Pt const& c = piece.speed[2];
    Pt const bend = a - b * 2.0 + c;
    std::array<double, 3> const h = {{a.h, 2.0 * b.h, c.h}};
    std::array<double, 3> const v = {{a.v, 2.0 * b.v, c.v}};
    std::array<double, 2> const byH = {{b.h - a.h, c.h - b.h}};
    std::array<double, 2> const byV = {{b.v - a.v, c.v - b.v}};
    std::array<double, 3> const turn = {{Cross(a, bend), 2.0 * Cross(b, bend), Cross(c, bend)}};
    std::array<double, 5> square = Product(h, h);
    std::array<double, 5> const squareV = Product(v, v);
    std::array<double, 4> cross = Product(h, byV);
    std::array<double, 4> const crossV = Product(v, byH);
    std::array<double, 4> dot = Product(h, byH);
    std::array<double, 4> const dotV = Product(v, byV);
    for (std::size_t i = 0; i < 5; ++i) {
        square[i] += squareV[i];
    }
    for (std::size_t i = 0; i < 4; ++i) {
        cross[i] -= crossV[i];
        dot[i] += dotV[i];
    }
    std::array<double, 7> const grown = Product(turn, square);
    std::array<double, 7> const slowed = Product(cross, dot);
    double least = 0.0;
    double most = 0.0;
    double rounding = 0.0;
    for (std::size_t i = 0; i < 7; ++i) {
        double const value = grown[i] - 6.0 * slowed[i];
        least = std::min(least, value);
        most = std::max(most, value);
        rounding = std::max(rounding, std::abs(grown[i]) + std::abs(6.0 * slowed[i]));
    }
    rounding *= kTurnRounding;
    return least >= -rounding || most <= rounding;
}

} // namespace

void AppendOffset(DirectedCubic const& whole, double distance, double tolerance,
                  std::vector<std::array<Pt, 3>>& out) {
    struct Part {
        DirectedCubic piece;
        int depth;
    };
    std::size_t const before = out.size();
    std::vector<Part> open = {{whole, 0}};
    while (!open.empty()) {
        Part const part = open.back();
        open.pop_back();
        OffsetFit fit(part.piece, distance);
        bool const isShort = IsShort(part.piece, distance, tolerance);
        if (isShort || part.depth == kDeepestFit || out.size() - before >= kMostFits) {
            out.push_back(fit.Straight());
            continue;
        }
        // More than a right angle is never fitted well.
        if (Dot(part.piece.to, part.piece.from) > -0.2 && fit.Try(tolerance)) {
            out.push_back(fit.Points());
            continue;
        }
        double const inflection = InflectionOf(part.piece);
        double const t = inflection > 0.0 ? inflection : MiddleOf(part.piece, distance);
        Pt const direction = part.piece.DirectionAt(t);
        open.push_back({part.piece.Part(t, 1.0, direction, part.piece.to), part.depth + 1});
        open.push_back({part.piece.Part(0.0, t, part.piece.from, direction), part.depth + 1});
    }
}

Pt CentreOf(DirectedCubic const& piece, double t, Pt const& direction, double radius) {
    CubicPlace const place = piece.PlaceAt(t);
    double const square = Square(place.first);
    double const bend = Cross(place.first, place.second) / 1.5;
    double const signedRadius = bend != 0.0 ? square * std::sqrt(square) / bend : 0.0;
    // The stretch may end a little behind an inflection, where the pen folds on the other side. At
    // a cusp rounding tells the side.
    bool const foldsThere = signedRadius > kAtCusp * radius;
    return place.point -
           NormalOf(direction) * (foldsThere ? radius : std::clamp(-signedRadius, 0.0, radius));
}

namespace {

/// A stretch of a curve that folds, the chord of its centres of curvature, and its middle.
struct CentrePart {
    DirectedCubic piece;
    Pt from;
    Pt to;
    int depth;
    double t;
    Pt direction;
    Pt centre;
    std::size_t next = 0; ///< the number of the part behind this one, 0 for none

    CentrePart(DirectedCubic const& stretch, Pt const& start, Pt const& end, int halvings,
               double radius)
        : piece(stretch), from(start), to(end), depth(halvings), t(MiddleOf(piece, 0.5 * radius)),
          direction(piece.DirectionAt(t)), centre(CentreOf(piece, t, direction, radius)) {}
    /// Returns how far the centres may be from the chord.
    double Off() const {
        return (Taxicab(centre - from) + Taxicab(to - centre)) *
               (Taxicab(direction - piece.from) + Taxicab(piece.to - direction));
    }
    CentrePart First(double radius) const {
        return {piece.Part(0.0, t, piece.from, direction), from, centre, depth + 1, radius};
    }
    CentrePart Second(double radius) const {
        return {piece.Part(t, 1.0, direction, piece.to), centre, to, depth + 1, radius};
    }
};

/// Links parts that follow each other. Then divides the one that may be farthest off, until none is
/// by more than the tolerance, or there are too many. Returns how far the farthest may be off then,
/// or 0.
double DivideFarthest(std::vector<CentrePart>& parts, double radius, double tolerance) {
    struct FarPart {
        double off;
        std::size_t number;
        bool operator<(FarPart const& o) const { return off < o.off; }
    };
    std::vector<FarPart> far; // a heap
    auto const add = [&](std::size_t number) {
        double const off = parts[number].Off();
        if (off > tolerance) {
            far.push_back({off, number});
            std::push_heap(far.begin(), far.end());
        }
    };
    for (std::size_t i = 0; i < parts.size(); ++i) {
        parts[i].next = i + 1 < parts.size() ? i + 1 : 0;
        add(i);
    }
    while (!far.empty()) {
        auto const [off, i] = far.front();
        if (parts.size() >= kMostCentres || parts[i].depth >= kDeepestFarCentre) {
            return off;
        }
        std::pop_heap(far.begin(), far.end());
        far.pop_back();
        CentrePart first = parts[i].First(radius);
        CentrePart second = parts[i].Second(radius);
        second.next = parts[i].next;
        first.next = parts.size();
        parts[i] = first;
        parts.push_back(second);
        add(i);
        add(first.next);
    }
    return 0.0;
}

} // namespace

double AppendCentres(DirectedCubic const& whole, double radius, double tolerance, bool exact,
                     std::vector<Pt>& out) {
    std::vector<CentrePart> open = {CentrePart(whole, CentreOf(whole, 0.0, whole.from, radius),
                                               CentreOf(whole, 1.0, whole.to, radius), 0, radius)};
    std::vector<CentrePart> chords;
    double const reach = radius + tolerance;
    while (!open.empty()) {
        CentrePart const part = open.back();
        open.pop_back();
        Pt const middle = (part.from + part.to) * 0.5;
        bool const isEven = Dot(part.piece.from, part.direction) > 0.7 &&
                            Dot(part.direction, part.piece.to) > 0.7 && TurnsEvenly(part.piece) &&
                            Square(middle - part.piece.curve[0]) <= reach * reach &&
                            Square(middle - part.piece.curve[3]) <= reach * reach;
        if (part.depth == kDeepestCentre || (isEven && (!exact || part.Off() <= tolerance))) {
            chords.push_back(part);
            continue;
        }
        open.push_back(part.Second(radius));
        open.push_back(part.First(radius));
    }
    if (!exact) {
        for (std::size_t k = 1; k < chords.size(); ++k) {
            out.push_back(chords[k].from);
        }
        return 0.0;
    }
    double const off = DivideFarthest(chords, radius, tolerance);
    for (std::size_t k = chords[0].next; k != 0; k = chords[k].next) {
        out.push_back(chords[k].from);
    }
    return off;
}

} // namespace trammel_detail
