// SPDX-License-Identifier: MIT

// The pieces of a curve and the place at a length on one, written for either vector of four doubles
// (Vector_p.h). Each of two files compiles it for one vector. Not installed.
//
// A piece has a formula that is right within p^(3/2) of the accuracy, p being the piece's part of
// the parameters (queries/AccurateLength.cpp). The bound there has the factor S of the whole curve.
// With the Bezier coefficients d0, d1 and d2 of a third of the derivative, A = (d0 + 2·d1 + d2)/4,
// B = (d2 - d0)/2 and C = (d0 - 2·d1 + d2)/4. So both |A| + |B| + |C| and |B| + 2|C| are at most
// |d0| + |d1| + |d2|, the size, and so is S. For an accuracy that is a part of the size, the
// ellipses that must be free of zeros are therefore the same for all curves.
//
// The formula suffices for every stretch of the piece, too. Let w and w' be the distances of a
// place from the stretch's ends. The distances from the piece's ends are then together at most w +
// w' plus what the piece is longer than the stretch. Let k be the half-axis of the piece's ellipse.
// By the same inequality, a stretch of the part x of the piece has an ellipse of the half-axis 1 +
// (k - 1)/x free of zeros. So 4 or 8 nodes suffice for short stretches.
//
// The parameter at a length is found by a method of fourth order in a bracket. It takes the
// integral up to a first guess, and from there on integrals over the short stretches between the
// guesses. The last step is one of Newton's method. It is off by half the square of the step times
// the greatest second derivative. It ends the search where that is little enough.

#ifndef TRAMMEL_PLACEKERNELFORMS_P_H
#define TRAMMEL_PLACEKERNELFORMS_P_H

#include "LengthKernelForms_p.h"
#include "PlaceKernels_p.h"

namespace trammel_detail {

/// The ellipses for pieces: the bound is 3/2 of the size.
constexpr double SquareForPart(double part) { return part * part / 2.25; }
inline constexpr LeastEllipses::Row kPieceRow =
    LeastEllipses::RowFor(SquareForPart(kPieceLengthPart));

/// The accuracy of an integral over a short stretch, as a part of the size.
inline constexpr double kStretchPart = 0x1p-50;

/// How long a stretch may be for a formula of few nodes, as a part of its piece.
struct StretchParts {
    double four[kChoices] = {};
    double eight[kChoices] = {};

    constexpr StretchParts() {
        constexpr double kGreatestRadius = 256.0;
        double const square = SquareForPart(kStretchPart);
        for (int i = 0; i < kChoices; ++i) {
            double const beyond =
                LeastEllipses::HalfAxis(kChoiceSteps[i], SquareForPart(kPieceLengthPart)) - 1.0;
            // A little is taken off for the rounding of widths.
            four[i] = 0.999 * beyond / (LeastEllipses::HalfAxis(1, square, kGreatestRadius) - 1.0);
            eight[i] = 0.999 * beyond / (LeastEllipses::HalfAxis(2, square, kGreatestRadius) - 1.0);
        }
    }
};
inline constexpr StretchParts kStretchParts;

template <class Vector>
[[gnu::always_inline]] inline double PieceIntegral(SpeedCurve const& curve, double from, double to,
                                                   int formula,
                                                   double const (&table)[kGaussEntries]) {
    return PieceSpeed<Vector>(curve, from, to)
        .Integral(table + kChoiceStarts[formula], kChoiceSteps[formula]);
}

/// See CurvePieces.
template <class Vector>
[[gnu::always_inline]] inline int CurvePiecesForm(double const* p, Scale scale,
                                                  LengthPiece (&pieces)[kMostPieces],
                                                  double const (&table)[kGaussEntries]) {
    SpeedCurve curve =
        SpeedCurveOf(p[3] - p[1], p[2] - p[0], p[5] - p[3], p[4] - p[2], p[7] - p[5], p[6] - p[4]);
    if (!IsMeasurable(curve.size, scale)) {
        return 0;
    }
    ZeroPlaces const zeros(curve);
    Choice<Vector> const choice(kPieceRow, zeros);
    unsigned const whole = choice.Of(0.0, 1.0);
    if (whole != 0) {
        int const i = __builtin_ctz(whole);
        pieces[0] = {0.0, 1.0, PieceIntegral<Vector>(curve, 0.0, 1.0, i, table), i};
        return 1;
    }
    int count = 0;
    ForPieces<Vector>(
        choice, zeros, 0.0, 1.0, [&](double from, double to, int i) __attribute__((always_inline)) {
            if (count < kMostPieces) {
                pieces[count++] = {from, to, 0.0, i};
            } else {
                pieces[kMostPieces - 1].to = to;
                pieces[kMostPieces - 1].formula = -1;
            }
        });
    for (int k = 0; k < count; ++k) {
        LengthPiece& piece = pieces[k];
        piece.length =
            piece.formula >= 0
                ? PieceIntegral<Vector>(curve, piece.from, piece.to, piece.formula, table)
                : LengthByZeros<Vector>(curve, piece.from, piece.to,
                                        (piece.to - piece.from) * kPieceLengthPart * curve.size,
                                        table);
    }
    return count;
}

/// Only so many integrals of a search may be over short stretches, which add to the ones before.
/// Those after them begin at the piece's start again, so that errors do not add up.
inline constexpr int kMostStretches = 4;
/// The search ends where the length is right within this part of the size, besides the errors of
/// the integrals.
inline constexpr double kEnoughPart = 0.375 * kPlacePart;
static_assert(kEnoughPart + kPieceLengthPart + (kMostStretches - 1) * kStretchPart +
                  kMostStretches * kLengthRounding <
              kPlacePart);

/// See PieceParameter.
template <class Vector>
[[gnu::always_inline]] inline double PieceParameterForm(double const* p, Scale scale,
                                                        LengthPiece const& piece, double length,
                                                        double const (&table)[kGaussEntries]) {
    SpeedCurve const curve =
        SpeedCurveOf(p[3] - p[1], p[2] - p[0], p[5] - p[3], p[4] - p[2], p[7] - p[5], p[6] - p[4]);
    if (!IsMeasurable(curve.size, scale)) {
        return __builtin_nan("");
    }
    double const target = Quantized(length, curve.size);
    if (!(target > 0.0)) {
        return piece.from;
    }
    if (!(target < piece.length)) {
        return piece.to;
    }
    double const enough = kEnoughPart * curve.size;
    double const width = piece.to - piece.from;
    double const four = kStretchParts.four[piece.formula] * width;
    double const eight = kStretchParts.eight[piece.formula] * width;
    // A bound on a sixth of the second derivative.
    double const bend0 = __builtin_fabs(curve.bH) + __builtin_fabs(curve.bV);
    double const bend1 = __builtin_fabs(curve.bH + curve.cH) + __builtin_fabs(curve.bV + curve.cV);
    double const bend = bend0 > bend1 ? bend0 : bend1;

    double lo = piece.from;
    double hi = piece.to;
    // The first guess is a cubic function of the length that has the right values and slopes at the
    // ends. The slopes are limited, so that it is monotone [Fritsch and Carlson].
    double const u = target / piece.length;
    auto const slope = [&](double t) __attribute__((always_inline)) {
        double const h = curve.aH + (2.0 * curve.bH + curve.cH * t) * t;
        double const v = curve.aV + (2.0 * curve.bV + curve.cV * t) * t;
        double const speed = 3.0 * width * __builtin_sqrt(h * h + v * v);
        return 3.0 * speed > piece.length ? piece.length / speed : 3.0;
    };
    double const slope0 = slope(piece.from);
    double const slope1 = slope(piece.to);
    double t =
        piece.from +
        width * (u * (slope0 + u * (3.0 - 2.0 * slope0 - slope1 + u * (slope0 + slope1 - 2.0))));
    double at = piece.from;
    double lengthAt = 0.0;
    double widthBefore = 2.0;
    for (int i = 1;; ++i) {
        // The bracket's middle replaces a guess outside of it. It also does so where three guesses
        // did not halve the bracket.
        if (!(t > lo && t < hi) || (i % 3 == 0 && hi - lo > 0.5 * widthBefore)) {
            t = lo + 0.5 * (hi - lo);
            if (!(t > lo && t < hi)) {
                return hi; // the length is reached between two doubles
            }
        }
        if (i % 3 == 0) {
            widthBefore = hi - lo;
        }
        double const gap = __builtin_fabs(t - at);
        if (gap <= four && i <= kMostStretches) {
            lengthAt += PieceSpeed<Vector>(curve, at, t).Integral(table + GaussStart(1), 1);
        } else if (gap <= eight && i <= kMostStretches) {
            lengthAt += PieceSpeed<Vector>(curve, at, t).Integral(table + GaussStart(2), 2);
        } else {
            lengthAt = PieceIntegral<Vector>(curve, piece.from, t, piece.formula, table);
        }
        at = t;
        double const off = lengthAt - target;
        if (__builtin_fabs(off) <= enough) {
            return t;
        }
        (off < 0.0 ? lo : hi) = t;
        double const riseH = curve.bH + curve.cH * t;
        double const riseV = curve.bV + curve.cV * t;
        double const h = curve.aH + (curve.bH + riseH) * t;
        double const v = curve.aV + (curve.bV + riseV) * t;
        double const square = h * h + v * v;
        double const step = off / (3.0 * __builtin_sqrt(square));
        if (3.0 * (bend * (step * step)) <= enough && t - step > lo && t - step < hi) {
            return t - step;
        }
        // The inverse function's series: with the speed s and the step d it begins with
        // d + d²·s'/(2s) + d³·(2·(s'/(2s))² - s''/(6s)).
        double const inverse = 1.0 / square;
        double const turn = (h * riseH + v * riseV) * inverse;
        double const more = step * turn;
        double const bends = 2.0 * (riseH * riseH + riseV * riseV) + (h * curve.cH + v * curve.cV);
        double const third = (8.0 * (turn * turn) - bends * inverse) * (1.0 / 3.0);
        t -= __builtin_fabs(more) <= 0.25 ? step + step * (more + (step * step) * third) : step;
    }
}

} // namespace trammel_detail

#endif
