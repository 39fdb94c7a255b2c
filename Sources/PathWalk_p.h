// SPDX-License-Identifier: MIT

// The walks along a path's elements and segments, with the measuring of a segment. Not installed.

#ifndef TRAMMEL_PATHWALK_P_H
#define TRAMMEL_PATHWALK_P_H

#include "PathCursor.h"
#include "PointMath_p.h"
#include "TLine.h"

namespace trammel_detail {

/// Goes through a path's segments and measures them.
class SegmentCursor : public PathCursor {
public:
    using PathCursor::PathCursor;

    /// Returns the length that the path's own measuring gives the segment.
    double Length() const {
        if (IsCurve()) {
            return Curve().Length();
        }
        TLine<double> const line = Line();
        return Distance(line.mStart, line.mEnd);
    }
};

} // namespace trammel_detail

#endif
