// SPDX-License-Identifier: MIT

// Stroke: the outline of a line drawn with a pen, and a region grown or shrunk.
//
// Both give curves: lines of the outline stay lines, curves become cubic curves at a constant
// distance, and round joins and caps are arcs of the pen's circle.
//
// A stroke is the union of the pen's sweep along each segment, of joins and of caps. The sweep is
// all points on the normals of the segment within half the width.
//
// - Joins fill the outer side of each corner between two segments, also that between the end and
//   the start of a closed subpath. At a cusp inside a curve, and where one doubles back, the join
//   is round, because the pen turns there.
// - Caps are at both ends of each open subpath and of each dash. A subpath that returns to its
//   start without a close is open.
// - A subpath without length paints its two caps, one to +h and one to -h, be it closed or not. So
//   it is a disc with round caps, a square with square caps, and nothing with butt caps. A move
//   that no segment follows paints nothing.
// - Subpaths are those of PathSegments.h. One with a NaN or infinite coordinate is absent. A close
//   that leads elsewhere than to the start of its subpath ends an open one.
//
// Nothing throws but std::bad_alloc. Every call ends. Nothing is shared: all are safe from any
// thread. The bits are the same on every machine.

#ifndef TRAMMEL_STROKE_H
#define TRAMMEL_STROKE_H

#include "CPath.h"
#include "FillRule.h"
#include "StrokeStyle.h"
#include "TrammelExport.h"

namespace trammel {

/// Makes the outline of the stroke, and returns the distance d that is kept.
///
/// The line is the path, or its dashes. With round joins and caps, a point is inside exactly when
/// it is within half the width of the line, save within d of that distance. With other joins and
/// caps it is inside exactly when the sweep, the joins or the caps cover it, save within d of their
/// border.
///
/// The distance d is the tolerance, or the least that rounding allows if that is more: some 2^-29
/// of the drawing's size. It is more where outlines run beside each other closer than the work of
/// RemoveOverlap() allows. A stroke that is united in stages takes as much at each of log2(m)
/// stages.
///
/// The result replaces `out`. Its contours close bit for bit. They cross neither themselves nor
/// each other, and have winding numbers of 1 inside and 0 outside. A width that is 0, negative, NaN
/// or infinite gives no contours.
///
/// Cost: O(m log m + k) for m elements before overlaps are united and k crossings. Where the pen
/// paints places often, the stroke is united from parts, so that few crossings are inside of it: in
/// practice O(m log m) for results of few elements. A hundred curves take some tenths of a second
/// with pens up to a thousand times as wide as the drawing, and several seconds beyond.
/// \param tolerance in coordinate units. 0, less, and NaN ask for the least distance. The work is
///     done to an eighth of the width, if that is less, so that no line folds over. Where the pen
///     paints places often, it is done to a thousandth of their extent.
TRAMMEL_API double Stroke(CPath const& path, StrokeStyle const& style, double tolerance,
                          CPath& out);

/// Makes the outline of a region grown by a distance, or shrunk by a negative one, and returns the
/// distance d that is kept.
///
/// With round joins a point is in the grown region exactly when its distance from the region is at
/// most `distance`, save within d of that. It is in the shrunk one exactly when its distance from
/// the points outside the region is at least that much. Other joins shape the corners that would
/// be round.
///
/// The result replaces `out`, and is as that of Stroke(). A NaN or infinite distance gives no
/// contours. 0 gives the region itself as RemoveOverlap() does, whose contours run as their sources
/// do.
/// Cost: as that of Stroke() for the border of the region, after RemoveOverlap().
/// \param rule tells what points the outline contains. \param miterLimit as in StrokeStyle.
/// \param distance, tolerance in coordinate units; the tolerance is as that of Stroke(), with twice
///     the distance for the width.
TRAMMEL_API double Offset(CPath const& region, FillRule rule, double distance, StrokeJoin join,
                          double miterLimit, double tolerance, CPath& out);

} // namespace trammel

#endif
