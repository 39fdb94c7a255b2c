// SPDX-License-Identifier: MIT

// The stretch of an outline that one place covers, from the meets of its segments. Not installed.

#ifndef TRAMMEL_PLACESTRETCHES_P_H
#define TRAMMEL_PLACESTRETCHES_P_H

#include "OutlineMeets_p.h"
#include "ShortList_p.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// The stretch of one segment that a meet covers.
struct SegmentStretch {
    std::size_t segment;
    double low; ///< the parameters of its ends
    double high;
    bool start;             ///< whether it reaches the segment's start
    bool end;               ///< and the segment's end
    double lowCommon = 2.0; ///< where the outlines coincide; by default nowhere
    double highCommon = -1.0;
    bool againstAtLow = false; ///< whether they run against each other at these ends
    bool againstAtHigh = false;
};

/// The stretches of an outline's segments that make up one place.
class PlaceStretches {
public:
    /// Refers to the outline.
    explicit PlaceStretches(std::vector<OutlineSegment> const& outline) : mOutline(outline) {}

    void Add(SegmentStretch const& stretch) { mStretches.push_back(stretch); }
    /// Returns the run that the stretches make along the outline. There is one at least. Gaps count
    /// as part of the place where they are as short as `gap`.
    CommonRun Run(double gap);

private:
    void Join(double gap);
    SegmentStretch const& First() const;
    CommonRun RunFrom(SegmentStretch const& first) const;
    /// Returns the stretch of a segment that reaches its start, or its end. Null for none.
    SegmentStretch const* Find(std::size_t segment, bool SegmentStretch::*reaches) const;

    std::vector<OutlineSegment> const& mOutline;
    ShortList<SegmentStretch, 8> mStretches; // few meets are one place
};

} // namespace trammel_detail

#endif
