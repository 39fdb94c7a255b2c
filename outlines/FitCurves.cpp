// SPDX-License-Identifier: MIT

#include "FitCurves.h"

#include "ElementAppender_p.h"
#include "PointMath_p.h"
#include "RangeScale_p.h"
#include "StrokeFit_p.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace trammel {

namespace {

using trammel_detail::FitLimits;
using trammel_detail::FittedPiece;
using trammel_detail::StrokePoints;
using trammel_detail::StrokeStart;

typedef TPoint<double> Pt;

/// A fitter looks for finished pieces when so many points wait, and again at so many times as many.
constexpr std::size_t kFirstLook = 256;
constexpr double kGreatest = std::numeric_limits<double>::max();
/// The pieces at the end of a stroke that more points may change.
constexpr std::size_t kOpenPieces = 2;

double UsableTolerance(double tolerance) { return tolerance > 0.0 ? tolerance : 0.0; }

/// The cosine at and below which a turn is a corner.
double CosineOfCorner(double angle) {
    constexpr double kPi = 3.14159265358979323846;
    if (angle <= 0.0) {
        return 1.0;
    }
    return angle <= kPi ? std::cos(angle) : -2.0;
}

/// Returns the points that are finite and differ from the one before: all of them, or a copy.
std::vector<Pt> const& Distinct(std::vector<Pt> const& points, std::vector<Pt>& copy) {
    std::size_t first = 0; // that is left out
    while (first < points.size() && trammel_detail::IsFinite(points[first]) &&
           (first == 0 || points[first] != points[first - 1])) {
        ++first;
    }
    if (first == points.size()) {
        return points;
    }
    copy.reserve(points.size());
    copy.assign(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(first));
    for (std::size_t i = first + 1; i < points.size(); ++i) {
        if (trammel_detail::IsFinite(points[i]) && (copy.empty() || points[i] != copy.back())) {
            copy.push_back(points[i]);
        }
    }
    return copy;
}

/// The pieces for a list of points that are finite and distinct from their predecessors.
class Fit {
public:
    Fit(std::vector<Pt> const& points, FitLimits const& limits, bool closed,
        StrokeStart const& start)
        : mScale(trammel_detail::RangeScale(points)) {
        StrokePoints stroke;
        stroke.at = points;
        if (mScale != 1.0) {
            for (Pt& p : stroke.at) {
                p *= mScale;
            }
        }
        stroke.Measure();
        StrokeStart const scaled = {start.goesOn, start.point * mScale, start.direction};
        FitStroke(
            stroke,
            {limits.tolerance * mScale, limits.cosine, limits.greatest * std::min(mScale, 1.0)},
            closed, scaled, mPieces);
        double const back = 1.0 / mScale;
        for (FittedPiece& piece : mPieces) {
            bool const isExact = piece.points[3] == stroke.at[piece.to];
            for (Pt& p : piece.points) {
                p *= back;
            }
            if (isExact) { // tiny coordinates may have lost bits
                piece.points[3] = points[piece.to];
            }
            piece.distance = std::min(piece.distance * back, limits.tolerance);
        }
    }

    std::vector<FittedPiece> const& Pieces() const { return mPieces; }
    /// Appends the first pieces to a path and returns the distance that they keep.
    double AppendTo(CPath& out, bool moves, Pt const& start, std::size_t count, bool closes) const {
        trammel_detail::ElementAppender to(out, count + 2, 3 * count + 1);
        double distance = 0.0;
        if (moves) {
            to.Move(start);
        }
        for (std::size_t i = 0; i < count; ++i) {
            FittedPiece const& piece = mPieces[i];
            bool const isClose = closes && i + 1 == count;
            if (piece.isLine && isClose) {
                // the close draws it
            } else if (piece.isLine) {
                to.Line(piece.points[3]);
            } else {
                to.Curve(piece.points[1], piece.points[2], piece.points[3]);
            }
            distance = std::max(distance, piece.distance);
        }
        if (closes) {
            to.Close();
        }
        return distance;
    }

private:
    double mScale;
    std::vector<FittedPiece> mPieces;
};

} // namespace

double FitCurves(std::vector<Pt> const& points, double tolerance, double cornerAngle, CPath& out) {
    std::vector<Pt> copy;
    std::vector<Pt> const& kept = Distinct(points, copy);
    if (kept.empty()) {
        return 0.0;
    }
    if (kept.size() == 1) {
        trammel_detail::ElementAppender(out, 1, 1).Move(kept[0]);
        return 0.0;
    }
    bool const closed = kept.size() > 3 && kept.front() == kept.back();
    Fit const fit(kept, {UsableTolerance(tolerance), CosineOfCorner(cornerAngle), kGreatest},
                  closed, {});
    return fit.AppendTo(out, true, kept[0], fit.Pieces().size(), closed);
}

CurveFitter::CurveFitter(double tolerance, double cornerAngle)
    : mTolerance(UsableTolerance(tolerance)), mCosine(CosineOfCorner(cornerAngle)),
      mNext(kFirstLook) {}

void CurveFitter::Add(Pt const& point) {
    if (!trammel_detail::IsFinite(point) || (!mWaiting.empty() && mWaiting.back() == point)) {
        return;
    }
    mWaiting.push_back(point);
    if (mWaiting.size() >= mNext) {
        Advance(false);
    }
}

void CurveFitter::Finish() {
    if (mWaiting.size() > 1) {
        Advance(true);
    } else if (mWaiting.size() == 1 && !mGoesOn) {
        trammel_detail::ElementAppender(mFinished, 1, 1).Move(mWaiting[0]);
    }
    mWaiting.clear();
    mGoesOn = false;
    mDirection = Pt();
    mNext = kFirstLook;
}

CPath CurveFitter::Tail() const {
    CPath tail;
    if (mWaiting.size() > 1) {
        StrokeStart const start = {mGoesOn, mFinished.mCurrentPt, mDirection};
        Fit const fit(mWaiting, {mTolerance, mCosine, kGreatest}, false, start);
        fit.AppendTo(tail, true, mGoesOn ? start.point : mWaiting[0], fit.Pieces().size(), false);
    }
    return tail;
}

void CurveFitter::Advance(bool finish) {
    StrokeStart const start = {mGoesOn, mFinished.mCurrentPt, mDirection};
    Fit const fit(mWaiting, {mTolerance, mCosine, kGreatest}, false, start);
    std::vector<FittedPiece> const& pieces = fit.Pieces();
    std::size_t count = pieces.size();
    if (!finish) {
        bool const isFull = mWaiting.size() >= kMostWaiting;
        std::size_t const open = isFull ? 1 : kOpenPieces;
        std::size_t const closed = count > open ? count - open : 0;
        std::size_t const left =
            closed > 0 ? mWaiting.size() - pieces[closed - 1].to : mWaiting.size();
        // A run that goes on and on is cut.
        count = isFull && left > kMostWaiting / 2 ? count : closed;
    }
    if (count > 0) {
        mDistance =
            std::max(mDistance, fit.AppendTo(mFinished, !mGoesOn, mWaiting[0], count, false));
        FittedPiece const& last = pieces[count - 1];
        mGoesOn = true;
        mDirection = last.direction;
        mWaiting.erase(mWaiting.begin(), mWaiting.begin() + static_cast<std::ptrdiff_t>(last.to));
    }
    mNext = std::min(std::max(kFirstLook, 2 * mWaiting.size()), kMostWaiting);
}

} // namespace trammel
