// SPDX-License-Identifier: MIT

// Elliptical arcs as cubic curves. Not installed.

#ifndef TRAMMEL_SVGARC_P_H
#define TRAMMEL_SVGARC_P_H

#include "TPoint.h"

#include <array>
#include <cstddef>

namespace trammel_detail {

/// An elliptical arc as cubic curves of equal sweep, at most an eighth turn each.
///
/// The curves run along the outside of the ellipse and leave it by at most 4.3e-6 of the greater
/// radius, rounding aside. The last one ends in the given point exactly.
class SvgArc {
public:
    /// The curves needed for a full turn in eighths.
    static constexpr std::size_t kMaxCurves = 8;

    /// Makes the curves of the arc from `from` to `to`, which differ.
    ///
    /// \param rx, ry the radii, above 0; they grow in proportion where they are too small for the
    ///     ends.
    /// \param degrees the turn of the ellipse's axes, from h towards v.
    /// \param large true for the arc of more than half a turn.
    /// \param sweep true for the arc that turns from h towards v.
    SvgArc(TPoint<double> const& from, TPoint<double> const& to, double rx, double ry,
           double degrees, bool large, bool sweep);

    std::size_t Count() const { return mCount; }

    /// Returns the address of three points: the control points of curve `i` and its end. It begins
    /// where the curve before ends, the first one at `from`.
    TPoint<double> const* Curve(std::size_t i) const { return &mPoints[3 * i]; }

    /// True when no point is NaN or infinite.
    bool IsFinite() const;

private:
    std::size_t mCount;
    std::array<TPoint<double>, 3 * kMaxCurves> mPoints;
};

} // namespace trammel_detail

#endif
