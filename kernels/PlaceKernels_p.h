// SPDX-License-Identifier: MIT

// The pieces of a curve by which its length is found as sharply as doubles allow, and the parameter
// at a length on a piece. In a form for every processor and in one for AVX2, of the same bits.
// PlaceKernelForms_p.h tells the method. Not installed.

#ifndef TRAMMEL_PLACEKERNELS_P_H
#define TRAMMEL_PLACEKERNELS_P_H

#include "Dispatch_p.h"
#include "LengthKernels_p.h"

namespace trammel_detail {

/// A piece of a curve with its length.
struct LengthPiece {
    double from;
    double to;
    double length;
    int formula; ///< which formula gives the length; negative where none does
};

/// The most pieces of a curve.
inline constexpr int kMostPieces = 32;

// All lengths here are right within these parts of the curve's size.

/// The length of a curve, which is the sum of its pieces' lengths.
inline constexpr double kPieceLengthPart = 0x1p-47;
/// The length up to a place found on a piece.
inline constexpr double kPlacePart = 0x1p-45;
/// The length of a quantum, rounded down to a power of two. A place on a piece is found for a
/// length that is a multiple of the quantum.
///
/// The quantum q is more than 2^-43 of the size. The length up to the place found is off by less
/// than 2^-45 of the size, so by less than q/4. For two lengths that are rounded to different
/// multiples, the true lengths up to the places then differ by more than q/2. They come in order,
/// so the parameters do. For two lengths that are rounded to the same multiple, the parameters are
/// equal.
inline constexpr double kQuantum = 0x1p-42;

/// Rounds a length to a multiple of the quantum of a curve of the size. The length is at most the
/// size.
[[gnu::always_inline]] inline double Quantized(double length, double size) {
    unsigned long long bits = 0;
    static_assert(sizeof bits == sizeof size);
    __builtin_memcpy(&bits, &size, sizeof bits);
    bits &= 0x7ff0000000000000U;
    double power = 0.0; // of two, at most the size
    __builtin_memcpy(&power, &bits, sizeof bits);
    // The sum is between 2^52 and 2^53 quanta, where doubles are whole quanta apart.
    double const round = power * (1.5 * 0x1p52 * kQuantum);
    return (length + round) - round;
}

/// How the points of a curve came about.
enum class Scale {
    kAny,    ///< they are of any magnitude
    kScaled, ///< they were brought to an ordinary magnitude (ScaledPoints)
};
/// True when a curve of the size can be measured. The size of a curve with scaled points is less
/// than kLeastMeasured where the points lie close together, but no less than 2^-156.
[[gnu::always_inline]] inline bool IsMeasurable(double size, Scale scale) {
    return scale == Scale::kScaled ? size > 0.0
                                   : size >= kLeastMeasured && size <= kGreatestMeasured;
}

int CurvePiecesPortable(double const* points, Scale scale, LengthPiece (&pieces)[kMostPieces],
                        double const (&table)[kGaussEntries]);
int CurvePiecesAvx2(double const* points, Scale scale, LengthPiece (&pieces)[kMostPieces],
                    double const (&table)[kGaussEntries]);

/// Stores the pieces of a cubic in order and returns their number, 1 or more. Returns 0 when the
/// curve is not measurable. `points` holds the coordinates v and h of its four control points in
/// turn.
[[gnu::always_inline]] inline int CurvePieces(double const* points, Scale scale,
                                              LengthPiece (&pieces)[kMostPieces],
                                              double const (&table)[kGaussEntries]) {
    return Dispatch<CurvePiecesPortable, CurvePiecesAvx2>(points, scale, pieces, table);
}

double PieceParameterPortable(double const* points, Scale scale, LengthPiece const& piece,
                              double length, double const (&table)[kGaussEntries]);
double PieceParameterAvx2(double const* points, Scale scale, LengthPiece const& piece,
                          double length, double const (&table)[kGaussEntries]);

/// Returns the parameter at which a length on a piece is reached, counted from the piece's start.
/// The piece has a formula, and `length` is from 0 to the piece's length, give or take rounding.
/// Returns NaN when the curve is not measurable.
[[gnu::always_inline]] inline double PieceParameter(double const* points, Scale scale,
                                                    LengthPiece const& piece, double length,
                                                    double const (&table)[kGaussEntries]) {
    return Dispatch<PieceParameterPortable, PieceParameterAvx2>(points, scale, piece, length,
                                                                table);
}

} // namespace trammel_detail

#endif
