// SPDX-License-Identifier: MIT

#include "Cut.h"

#include "Outlines.h"

#include <trammel/OutlineMeasure.h>
#include <trammel/PathSegments.h>

#include <limits>

namespace tool {

namespace {

/// Goes on with the segments of a piece that begins at the path's last point.
void Continue(CPath& path, CPath const& piece) {
    for (trammel::PathSegment const& segment : trammel::Segments(piece)) {
        if (segment.IsCurve()) {
            AddCurve(path, segment.control1, segment.control2, segment.end);
        } else {
            path.LineTo(segment.end);
        }
    }
}

} // namespace

Pieces CutPath(CPath const& path, double from, double to) {
    Pieces pieces;
    double const total = trammel::OutlineMeasure(path).Length();
    if (!(total > 0.0)) {
        pieces.rest = path;
        return pieces;
    }
    double const begin = from * total;
    double const end = to >= 1.0 ? std::numeric_limits<double>::infinity() : to * total;
    double before = 0.0;
    for (CPath const& subpath : SplitSubpaths(path)) {
        trammel::OutlineMeasure const measure(subpath);
        double const length = measure.Length();
        double const start = begin - before;
        double const stop = end - before;
        before += length;
        if (start <= 0.0 && stop >= length) {
            AppendSubpaths(pieces.cut, subpath);
        } else if (length <= start || stop <= 0.0 || length == 0.0) {
            AppendSubpaths(pieces.rest, subpath);
        } else {
            measure.GetLengthRange(start, stop, pieces.cut);
            CPath first;
            CPath last;
            measure.GetLengthRange(0.0, start, first);
            measure.GetLengthRange(stop, length, last);
            if (subpath.Closed() && !first.mCtls.empty() && !last.mCtls.empty()) {
                Continue(last, first);
                first = CPath();
            }
            AppendSubpaths(pieces.rest, first);
            AppendSubpaths(pieces.rest, last);
        }
    }
    return pieces;
}

} // namespace tool
