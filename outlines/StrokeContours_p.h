// SPDX-License-Identifier: MIT

// The contours of a stroke before overlapping parts are united. Not installed.

#ifndef TRAMMEL_STROKECONTOURS_P_H
#define TRAMMEL_STROKECONTOURS_P_H

#include "CPath.h"
#include "Cubic_p.h"
#include "CurveStretches_p.h"
#include "OffsetCurve_p.h"
#include "StrokeStyle.h"
#include "TPoint.h"

#include <array>
#include <cstddef>
#include <vector>

namespace trammel_detail {

/// What a stroke is drawn with.
struct StrokePen {
    double radius = 0.5;
    trammel::StrokeJoin join = trammel::StrokeJoin::kMiter;
    double miterLimit = 4.0;
    trammel::StrokeCap startCap = trammel::StrokeCap::kButt;
    trammel::StrokeCap endCap = trammel::StrokeCap::kButt;
    double tolerance = 0.0; ///< above 0

    /// True where all that is within the radius of the line belongs to the stroke.
    bool IsRound() const {
        return join == trammel::StrokeJoin::kRound && startCap == trammel::StrokeCap::kRound &&
               endCap == trammel::StrokeCap::kRound;
    }
};

/// The order of points by h, then v.
inline bool IsBefore(TPoint<double> const& a, TPoint<double> const& b) {
    return a.h < b.h || (a.h == b.h && a.v < b.v);
}

/// Collects closed contours and appends them to a path.
class ContourList {
public:
    explicit ContourList(CPath& path, double scale) : mPath(&path), mScale(scale) {}
    /// Sets the path to which the next contours go.
    void SetPath(CPath& path) { mPath = &path; }

    TPoint<double> const& Current() const { return mCurrent; }
    /// Goes to a point: with a line, or with a move at the beginning of a contour. A line without
    /// length is left out.
    void LineTo(TPoint<double> const& p);
    /// Adds a curve; one that stays in its start is left out.
    void CurveTo(std::array<TPoint<double>, 3> const& points);
    /// Ends the contour with a close. A contour without area is dropped where that is plain.
    void Close();

private:
    CPath* mPath;
    double mScale;
    bool mIsBegun = false;
    TPoint<double> mStart;
    TPoint<double> mCurrent;
    std::size_t mFirstCode = 0;
    std::size_t mFirstPoint = 0;
};

/// Makes contours whose winding number around a point is the number of times that the pen covers
/// it: above 0 in the stroke, and 0 outside.
///
/// The pen sweeps the points P(t) + s N(t) with s from -r to r. The contours run along both ends of
/// the sweep. Where the pen turns faster than it goes forward, its inner end runs backward. The
/// contour then follows the curve's centres of curvature, and the part of the sweep beyond them is
/// a contour of its own, run the other way.
class StrokeContours {
public:
    StrokeContours(StrokePen const& pen, ContourList& out) : mPen(pen), mOut(out) {}

    /// Takes the points at which the pen comes by more than once, in the order of IsBefore(). They
    /// have to outlive this.
    void SetSharedPoints(std::vector<TPoint<double>> const& points) { mShared = &points; }

    /// Adds a line to the subpath. A line without length is left out.
    void AddLine(TPoint<double> const& from, TPoint<double> const& to);
    /// Adds a cubic curve to the subpath. One that stays in its start is left out.
    void AddCurve(Cubic const& curve);
    /// Adds a point in which the pen has a direction. It is for subpaths without length.
    void AddPoint(TPoint<double> const& p, TPoint<double> const& direction);
    bool IsEmpty() const { return mPieces.empty(); }
    /// Makes room for a subpath of so many segments.
    void Reserve(std::size_t segments) { mPieces.reserve(segments); }

    /// Ends the subpath with caps at both ends.
    void EndOpen() { EndPart(true, true); }
    /// Ends a part of a subpath, with caps or straight across.
    void EndPart(bool hasStartCap, bool hasEndCap);
    /// Ends the subpath, whose end is its start, with a join there.
    void EndClosed();
    /// Ends the closed subpath, and keeps only the contour on the side against its normals.
    /// \param blur how far the subpath may cross itself. Where it runs back along itself as near as
    ///             that, the pen turns round.
    void EndSide(double blur);
    /// Ends a part of a closed subpath, and keeps only the contour between that side and the line.
    /// \param line the segments that were added, in order. The contour returns along them, so that
    ///             they have to be the very ones.
    void EndSidePart(double blur, std::vector<Cubic> const& line);

    /// Returns how far contours may be off where the pen's tolerance takes too much work, or 0. The
    /// stroke keeps that distance beside the tolerance.
    double Excess() const { return mExcess; }

private:
    struct Piece {
        TPoint<double> start;
        TPoint<double> end;
        TPoint<double> from; ///< the direction at the start
        TPoint<double> to;   ///< the direction at the end
        Cubic curve;         ///< less the origin
        TPoint<double> origin;
        std::size_t firstStretch = 0;
        std::size_t stretches = 0; ///< 0 for a line
        /// The pen turns round to the next piece, whatever the join is: at a cusp of a curve.
        bool turnsAfter = false;
    };

    /// A turn of the whole pen by half a turn at most, while it hardly goes forward.
    struct Turn {
        TPoint<double> center;
        TPoint<double> from; ///< the direction before
        TPoint<double> to;   ///< the direction behind
    };

    /// A curve that was given, and the same one with its start as origin.
    struct LocalCurve;

    void AppendLine(TPoint<double> const& from, TPoint<double> const& to,
                    TPoint<double> const& direction, bool turnsAfter);
    /// Adds lines in place of a tiny stretch. At their ends the pen turns round.
    void AddTinyStretch(LocalCurve const& curve, CurveStretch const& stretch);
    /// Adds a piece for the part of a curve that the `count` stretches from `first` on make up.
    void AddStretches(LocalCurve const& curve, std::size_t first, std::size_t count,
                      bool turnsAfter);
    void SmoothCorners(bool closed);
    void Reverse();
    void Side(bool closed);
    /// Goes along the centres of curvature of a part that folds.
    /// \param withFirst, withLast whether those of its ends are among them.
    void AddCentresOf(DirectedCubic const& part, TPoint<double> const& origin, bool withFirst,
                      bool withLast);
    void AddSideOf(Piece const& piece);
    void AddCorner(Piece const& before, Piece const& behind);
    void AddJoin(TPoint<double> const& p, TPoint<double> const& before,
                 TPoint<double> const& behind, bool round);
    void AddArc(TPoint<double> const& center, TPoint<double> const& from, TPoint<double> const& to);
    void AddSharedArc(TPoint<double> const& center, TPoint<double> const& from,
                      TPoint<double> const& to);
    void AddCap(TPoint<double> const& p, TPoint<double> const& direction, trammel::StrokeCap cap);
    void NoteTurns(DirectedCubic const& part, TPoint<double> const& origin);
    void AddTurns();
    void AddDisc(TPoint<double> const& center);
    /// Adds what half of the pen paints in a turn: 1 for the half along the normals, -1 for the
    /// other one.
    void AddHalfTurn(Turn const& turn, double half);
    /// Forgets what was added to the subpath.
    void Clear() {
        mPieces.clear();
        mStretches.clear();
        mTurns.clear();
    }
    void AddPatches();
    /// Ends a contour of which one side only is kept.
    void CloseSide();
    /// Returns the fold of the first stretch and of the last one; 0 for a line.
    int FoldAtStart(Piece const& piece) const;
    int FoldAtEnd(Piece const& piece) const;
    bool RunsBack(Piece const& before, Piece const& behind) const;
    DirectedCubic PartOfPiece(Piece const& piece, double from, double to) const;
    TPoint<double> Beside(TPoint<double> const& p, TPoint<double> const& direction) const {
        return p - NormalOf(direction) * mPen.radius;
    }

    StrokePen mPen;
    ContourList& mOut;
    std::vector<Piece> mPieces;
    std::vector<CurveStretch> mStretches;
    std::vector<Turn> mTurns; ///< the halves of the pen paint while it turns
    bool mIsReversed = false;
    double mExcess = 0.0;
    double mBlur = 0.0; ///< above 0 where one side only is kept
    std::vector<TPoint<double>> const* mShared = nullptr;
    std::vector<std::array<TPoint<double>, 3>> mCurves; ///< room for one side of a piece
    std::vector<TPoint<double>> mCentres;
};

} // namespace trammel_detail

#endif
