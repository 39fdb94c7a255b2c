// SPDX-License-Identifier: MIT

// The pieces of a curve and places on them, for every processor.

#include "PlaceKernelForms_p.h"

namespace trammel_detail {

int CurvePiecesPortable(double const* points, LengthPiece (&pieces)[kMostPieces],
                        double const (&table)[kGaussEntries]) {
    return CurvePiecesForm<Double4>(points, pieces, table);
}

double PieceParameterPortable(double const* points, LengthPiece const& piece, double length,
                              double const (&table)[kGaussEntries]) {
    return PieceParameterForm<Double4>(points, piece, length, table);
}

} // namespace trammel_detail
