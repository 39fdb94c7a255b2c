// SPDX-License-Identifier: MIT

// The places of dashes along a line. Not installed.

#ifndef TRAMMEL_DASHES_P_H
#define TRAMMEL_DASHES_P_H

#include <vector>

namespace trammel_detail {

/// A range of lengths along a line.
struct DashRange {
    double from;
    double to;
};

/// The lengths of dashes and gaps in turn.
class DashPattern {
public:
    /// Takes lengths and an offset as StrokeStyle has them.
    DashPattern(std::vector<double> const& lengths, double offset);

    /// Returns the dashes of a line in order. They begin before its end, or at 0 if it has no
    /// length. False where the line is solid.
    ///
    /// Rounding may be off by `blur`. A dash that begins or ends no farther than that from an end
    /// of the line does so there.
    bool Find(double length, double blur, std::vector<DashRange>& out) const;

private:
    std::vector<double> mEdges; ///< of dashes in the period: the start and the end of each
    double mPeriod = 0.0;       ///< 0 for a solid line
    double mOffset = 0.0;       ///< from 0 to the period
};

} // namespace trammel_detail

#endif
