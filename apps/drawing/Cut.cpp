// SPDX-License-Identifier: MIT

#include "Cut.h"

#include "Outlines.h"

#include <algorithm>
#include <vector>

namespace tool {

namespace {

/// Appends a piece unless it is nothing but a move.
void AddPiece(CPath& path, CPath const& piece) {
    if (piece.Length() != 0.0) {
        AppendElements(path, piece);
    }
}

} // namespace

Pieces CutPath(CPath const& path, double from, double to) {
    Pieces pieces;
    double const total = path.Length();
    if (!(total > 0.0)) {
        pieces.rest = path;
        return pieces;
    }
    double const begin = from * total;
    double const end = to * total;
    double before = 0.0;
    for (CPath const& subpath : Subpaths(path)) {
        double const length = subpath.Length();
        double const after = before + length;
        if (begin <= before && (after <= end || to >= 1.0)) {
            AppendElements(pieces.cut, subpath);
        } else if (after <= begin || end <= before || length == 0.0) {
            AppendElements(pieces.rest, subpath);
        } else {
            double const t0 = std::max((begin - before) / length, 0.0);
            double const t1 = to >= 1.0 ? 1.0 : std::min((end - before) / length, 1.0);
            CPath middle;
            subpath.GetTRange(t0, t1, middle);
            AddPiece(pieces.cut, middle);
            CPath first;
            CPath second;
            subpath.RemoveTRange(t0, t1, first, second);
            AddPiece(pieces.rest, first);
            AddPiece(pieces.rest, second);
        }
        before = after;
    }
    return pieces;
}

} // namespace tool
