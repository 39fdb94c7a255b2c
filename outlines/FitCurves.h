// SPDX-License-Identifier: MIT

// FitCurves: few lines and cubic curves in place of many points, within a distance that is proven.
//
// The points are those of a pen, a mouse, or a scanned outline. They make a polyline, the stroke.
// The result is one subpath of lines and curves, here called the fit:
//
// - Within a distance d of the stroke: every point of the stroke is within d of the fit, and every
//   point of the fit within d of the stroke (the Hausdorff distance). Even two pens that draw the
//   two from end to end can stay within d of each other (the Fréchet distance). Each element is
//   proven by itself with bounds on its second derivative; nothing is sampled. d is at most the
//   tolerance, whatever the points are, and the functions return it.
// - It begins at the first point and ends at the last one, bit for bit. If both are equal, the
//   subpath is closed, and a line at its end is the one that the close draws.
// - Corners stay: the fit passes through them bit for bit. A corner is a point where the stroke
//   turns by the corner angle or more, between the directions to the points before and behind it
//   that are six tolerances away. Of corners closer together than that, the sharpest one counts. Of
//   the points within half a tolerance of a corner, it is the outermost one.
// - Straight runs are lines: first, whatever lies between two corners and fits a line. Second, runs
//   between curves that are longer than 16 tolerances, keep within a quarter of the tolerance,
//   and are four times as long as their neighbours of that straightness.
// - Elsewhere there are curves, each as long as the fit finds to be possible. Curves and lines
//   between two corners meet smoothly: both have the same direction at their joint, to rounding. A
//   joint may be up to half a tolerance away from its point. Where no curve fits from a joint on, a
//   line stands, and the fit may turn at its ends.
//
// A tolerance of 0 or less and a NaN count as 0: then only points that equal their predecessor are
// left out. Points with a NaN or infinite coordinate are absent. No points make no subpath, and one
// point, or equal ones, a move alone. Coordinates may have any magnitude. A stroke scaled by a
// power of two, with its tolerance, has the same fit scaled, as long as no number leaves the range
// of normal doubles.
//
// Cost: O(n), about 0.1 µs a point for handwriting. Memory: some 70 bytes a point, and the fit.
// Without memory the functions throw std::bad_alloc. They share no state: all are safe from any
// thread, each on its own objects.
//
// Source: curves with the area and moment of the points [R. Levien, Fitting cubic Bézier curves,
// 2021]; docs/outlines.md describes the method and the proof.

#ifndef TRAMMEL_FITCURVES_H
#define TRAMMEL_FITCURVES_H

#include "CPath.h"
#include "TPoint.h"
#include "TrammelExport.h"

#include <cstddef>
#include <vector>

namespace trammel {

/// Appends the fit of the points to `out` as one subpath, and returns the distance that is kept: 0
/// where every line of the stroke stays.
///
/// Without memory `out` is as before.
/// \param tolerance in coordinate units, inclusive.
/// \param cornerAngle in radians; pi makes corners only of exact reversals, and 0 or less of every
///     point that stands apart from others. With more than pi and a NaN there are no corners. Its
///     cosine comes from the C library.
TRAMMEL_API double FitCurves(std::vector<TPoint<double>> const& points, double tolerance,
                             double cornerAngle, CPath& out);

/// Fits a stroke while the pen is still drawing it.
///
/// Points are added one by one. The finished part does not change any more; the tail is what the
/// rest of the stroke looks like by now. Each part keeps to the tolerance like FitCurves. The
/// elements are not always those of FitCurves, which sees the whole stroke at once. A stroke whose
/// last point equals its first one stays open.
class TRAMMEL_API CurveFitter {
public:
    /// So many points at most wait to be finished.
    static constexpr std::size_t kMostWaiting = 8192;

    /// Begins a stroke; for the numbers see FitCurves.
    CurveFitter(double tolerance, double cornerAngle);

    /// Adds a point. Amortised O(1); single calls take up to O(kMostWaiting). Without memory it
    /// throws std::bad_alloc; the stroke is then as before, or has the point and nothing more
    /// finished.
    void Add(TPoint<double> const& point);
    /// Ends the stroke: all of it is finished. The next point begins another stroke in the same
    /// path. Without memory it throws std::bad_alloc, and the stroke is as before.
    void Finish();

    /// Returns the finished elements as an open path from the first point on. Later calls of Add
    /// and Finish append to it.
    CPath const& Finished() const { return mFinished; }
    /// Returns the rest as one open subpath from where the finished part ends, as long as there are
    /// points behind it. O(n) in the waiting points. Throws std::bad_alloc.
    CPath Tail() const;
    /// Returns the greatest distance that the finished part keeps: 0 where all its lines stay.
    double Distance() const { return mDistance; }

private:
    void Advance(bool finish);

    double mTolerance;
    double mCosine;
    double mDistance = 0.0;
    CPath mFinished;
    std::vector<TPoint<double>> mWaiting; ///< the first one belongs to the end of what is finished
    std::size_t mNext;                    ///< when so many wait, some of them may be finished
    bool mGoesOn = false;
    TPoint<double> mDirection; ///< in which the finished part ends; (0, 0) where it may turn
};

} // namespace trammel

#endif
