// SPDX-License-Identifier: MIT

// StrokeStyle: how a pen draws a line. Stroke.h makes the outline of what it draws.

#ifndef TRAMMEL_STROKESTYLE_H
#define TRAMMEL_STROKESTYLE_H

#include <vector>

namespace trammel {

/// The shape on the outer side of a corner.
enum class StrokeJoin {
    kMiter,     ///< both edges go on until they meet; a bevel where that is beyond the miter limit
    kMiterClip, ///< the same, but cut off where a miter of the limit's length ends
    kRound,     ///< a part of a disc around the corner
    kBevel,     ///< a triangle
};

/// The shape at an end of an open subpath, or of a dash.
enum class StrokeCap {
    kButt,   ///< none
    kSquare, ///< half of a square
    kRound,  ///< half of a disc
};

/// How an outline is drawn with a pen. The defaults are SVG's.
struct StrokeStyle {
    double width = 1.0; ///< of the pen, in coordinate units
    StrokeJoin join = StrokeJoin::kMiter;
    /// The greatest ratio of a miter's length to the width, the length measured from the inner to
    /// the outer corner. Less than 1, and NaN, count as 1.
    double miterLimit = 4.0;
    StrokeCap startCap = StrokeCap::kButt; ///< where a subpath or a dash begins
    StrokeCap endCap = StrokeCap::kButt;   ///< where it ends
    /// Lengths along each subpath in coordinate units: of a dash, a gap, a dash and so on. The list
    /// is repeated; in one of odd length, dashes and gaps then change places.
    ///
    /// The line is solid without any, with one that is negative, NaN or infinite, with a sum of 0,
    /// and where a subpath would get more than 65,536 dashes. A dash of length 0 paints its
    /// caps along the line, at a corner along the segment behind it.
    ///
    /// A dash begins before the end of its subpath. Lengths that differ by rounding alone, within
    /// 2^-40 of the coordinates, count as the same: at both ends and at corners.
    std::vector<double> dashes;
    /// The length into the list at which each subpath begins. NaN and infinity count as 0.
    double dashOffset = 0.0;
    /// True joins the dash at the end of a closed subpath with the dash at its start, if both are
    /// there. False gives them caps, as SVG does.
    bool joinsDashesAtStart = false;
};

} // namespace trammel

#endif
