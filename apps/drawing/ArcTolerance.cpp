// SPDX-License-Identifier: MIT

#include "ArcTolerance.h"

#include "Outlines.h"

#include <trammel/PathSegments.h>
#include <trammel/UTrigonometry.h>

#include <algorithm>

namespace tool {

namespace {

/// How far the curves of pictures may be from a circle, as a share of its radius. A full turn has 8
/// curves.
constexpr double kPictureShare = 4.3e-6;

/// The same as a share of a path's greater extent. A radius can be greater than that, but then the
/// path has only a small part of the turn.
constexpr double kPictureShareOfSize = 9e-6;

/// How much longer the curves of an outline may be, as a share of its length, for eight right
/// digits.
constexpr double kDigitsShare = 4e-9;

/// The part of an accuracy that arcs may take. Figures are rounded to twice their error, and all
/// other errors need a place, too.
constexpr double kArcPart = 0.25;

} // namespace

// Curves run along the outside of an arc. Those within a distance d of it turn by no more than a
// full turn, so they are longer by at most 2 pi d.
double ArcTolerance(ArcAccuracy const& accuracy, RoundParts const& parts, double stretch) {
    double const turns = 2.0 * pi * static_cast<double>(parts.arcs);
    switch (accuracy.by) {
    case ArcAccuracy::By::kPicture:
        break;
    case ArcAccuracy::By::kDigits:
        return kDigitsShare * parts.length / turns;
    case ArcAccuracy::By::kFigures:
        return kArcPart * accuracy.most / (turns * stretch);
    case ArcAccuracy::By::kArea:
        return kArcPart * accuracy.most / (parts.length * stretch) / stretch;
    case ArcAccuracy::By::kDistance:
        return accuracy.most / stretch;
    }
    return kPictureShare * parts.radius;
}

double PictureTolerance(CPath const& path) {
    TRect<double> const bounds = ControlBounds(path);
    return kPictureShareOfSize * std::max(bounds.Width(), bounds.Height());
}

double ChordLength(CPath const& path) {
    double length = 0.0;
    for (trammel::PathSegment const& segment : trammel::Segments(path)) {
        length += (segment.end - segment.start).Hypotenuse();
    }
    return length;
}

} // namespace tool
