// SPDX-License-Identifier: MIT

// The pieces of a curve and places on them, for processors with AVX2. Vector_p.h tells what such a
// file may not contain.

#include "PlaceKernelForms_p.h"

namespace trammel_detail {

int CurvePiecesAvx2(double const* points, Scale scale, LengthPiece (&pieces)[kMostPieces],
                    double const (&table)[kGaussEntries]) {
    return CurvePiecesForm<WideDouble4>(points, scale, pieces, table);
}

double PieceParameterAvx2(double const* points, Scale scale, LengthPiece const& piece,
                          double length, double const (&table)[kGaussEntries]) {
    return PieceParameterForm<WideDouble4>(points, scale, piece, length, table);
}

} // namespace trammel_detail
