// SPDX-License-Identifier: MIT

// The pieces of a curve and places on them, for every processor.

#include "PlaceKernelForms_p.h"

namespace trammel_detail {

int CurvePiecesPortable(double const* points, Scale scale, LengthPiece (&pieces)[kMostPieces],
                        double const (&table)[kGaussEntries]) {
    return CurvePiecesForm<Double4>(points, scale, pieces, table);
}

double PieceParameterPortable(double const* points, Scale scale, LengthPiece const& piece,
                              double length, double const (&table)[kGaussEntries]) {
    return PieceParameterForm<Double4>(points, scale, piece, length, table);
}

} // namespace trammel_detail
