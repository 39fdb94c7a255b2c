// SPDX-License-Identifier: MIT

#include "StrokeContours_p.h"

#include "ArcCurves_p.h"
#include "PointMath_p.h"
#include "UTrigonometry.h"
#include "UnitCircle_p.h"

#include <algorithm>
#include <cmath>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;
using trammel::StrokeCap;
using trammel::StrokeJoin;

/// Parameters of arcs are found to so many binary digits.
constexpr int kParameterBits = 52;
/// A part of a curve that is halved so often and still turns has a cusp.
constexpr int kDeepestTurn = 60;
/// At two inflections and a cusp it is halved so often.
constexpr int kMostTurnParts = 8 * kDeepestTurn;
/// A turn differs from half a turn by a sine of so much at most where rounding tells which way.
constexpr double kRunsBack = 0x1p-10;

// Shares of the tolerance.

/// Parts of curves that are no longer are drawn as lines.
constexpr double kTinyShare = 0.125;
/// Corners that cut off no more from the stroke are no corners.
constexpr double kCornerShare = 0.25;
/// The square of the greatest turn at a corner that counts as none, in radians.
constexpr double kSmoothestTurn = 0.5;
/// Curves and arcs beside the line.
constexpr double kFitShare = 0.5;
/// Arcs around a point that has several. It is less than what RemoveOverlap() unites as one point.
constexpr double kSharedShare = 0.0625;

/// Returns the parameter at which a curve around the origin, of a quarter turn at most, has a
/// direction from there.
double ParameterAt(Cubic const& unit, Pt const& direction) {
    double low = 0.0;
    double high = 1.0;
    for (int i = 0; i < kParameterBits; ++i) {
        double const t = 0.5 * (low + high);
        (Cross(PlaceAt(unit, t).point, direction) > 0.0 ? low : high) = t;
    }
    return 0.5 * (low + high);
}

/// Returns the product of two vectors as complex numbers.
Pt Turned(Pt const& a, Pt const& b) { return Pt(a.h * b.h - a.v * b.v, a.h * b.v + a.v * b.h); }

} // namespace

void ContourList::LineTo(Pt const& p) {
    if (!mIsBegun) {
        mIsBegun = true;
        mFirstCode = mPath->mCtls.size();
        mFirstPoint = mPath->mPts.size();
        mStart = p;
        mPath->AddCtl(kPathMove).AddPt(p * mScale);
    } else if (p != mCurrent) {
        mPath->AddCtl(kPathLine).AddPt(p * mScale);
    }
    mCurrent = p;
}

void ContourList::CurveTo(std::array<Pt, 3> const& points) {
    if (points[2] == mCurrent && points[1] == mCurrent && points[0] == mCurrent) {
        return;
    }
    mPath->AddCtl(kPathCurve);
    for (Pt const& p : points) {
        mPath->AddPt(p * mScale);
    }
    mCurrent = points[2];
}

void ContourList::Close() {
    if (!mIsBegun) {
        return;
    }
    mIsBegun = false;
    if (mPath->mCtls.back() == kPathLine && mCurrent == mStart) {
        mPath->mCtls.pop_back();
        mPath->mPts.pop_back();
    }
    std::size_t const elements = mPath->mCtls.size() - mFirstCode;
    if (elements <= 2 && mPath->mCtls.back() != kPathCurve) {
        mPath->mCtls.resize(mFirstCode);
        mPath->mPts.resize(mFirstPoint);
        return;
    }
    mPath->AddCtl(kPathClose);
}

// ---- the line

void StrokeContours::AppendLine(Pt const& from, Pt const& to, Pt const& direction,
                                bool turnsAfter) {
    Piece piece;
    piece.start = from;
    piece.end = to;
    piece.from = piece.to = direction;
    piece.turnsAfter = turnsAfter;
    mPieces.push_back(piece);
}

void StrokeContours::AddLine(Pt const& from, Pt const& to) {
    if (from != to) {
        AppendLine(from, to, trammel::Normalize(to - from), false);
    }
}

void StrokeContours::AddPoint(Pt const& p, Pt const& direction) {
    AppendLine(p, p, direction, false);
}

struct StrokeContours::LocalCurve {
    explicit LocalCurve(Cubic const& curve) : given(curve) {
        for (std::size_t i = 0; i < 4; ++i) {
            local[i] = curve[i] - curve[0];
        }
        from = DirectionOf(local, 0.0);
        to = DirectionOf(local, 1.0);
    }
    /// Returns the point at a parameter. At the ends it has no rounding.
    Pt PointAt(double t) const {
        return t <= 0.0 ? given[0] : t >= 1.0 ? given[3] : given[0] + PlaceAt(local, t).point;
    }

    Cubic given;
    Cubic local;
    Pt from; ///< the direction at the start
    Pt to;   ///< the direction at the end
};

void StrokeContours::AddTinyStretch(LocalCurve const& curve, CurveStretch const& stretch) {
    bool const isFirst = stretch.from <= 0.0;
    bool const isLast = stretch.to >= 1.0;
    DirectedCubic const whole(curve.local, curve.from, curve.to);
    NoteTurns(whole.Part(stretch.from, stretch.to,
                         isFirst ? curve.from : whole.DirectionAt(stretch.from),
                         isLast ? curve.to : whole.DirectionAt(stretch.to)),
              curve.given[0]);
    Pt const a = curve.PointAt(stretch.from);
    Pt const b = curve.PointAt(stretch.to);
    if (isFirst) {
        AppendLine(a, a, curve.from, true);
    }
    if (a != b) {
        AppendLine(a, b, trammel::Normalize(b - a), true);
    }
    if (isLast) {
        AppendLine(b, b, curve.to, false);
    }
}

void StrokeContours::AddStretches(LocalCurve const& curve, std::size_t first, std::size_t count,
                                  bool turnsAfter) {
    double const start = mStretches[first].from;
    double const end = mStretches[first + count - 1].to;
    Piece piece;
    piece.start = curve.PointAt(start);
    piece.end = curve.PointAt(end);
    piece.from = DirectionOf(curve.local, start);
    piece.to = DirectionOf(curve.local, end);
    piece.curve = curve.local;
    piece.origin = curve.given[0];
    piece.firstStretch = first;
    piece.stretches = count;
    piece.turnsAfter = turnsAfter;
    mPieces.push_back(piece);
}

void StrokeContours::AddCurve(Cubic const& given) {
    LocalCurve const curve(given);
    if (curve.from.Null() || curve.to.Null()) {
        if (PolygonLength(curve.local) != 0.0) {
            AddLine(given[0], given[3]);
        }
        return;
    }
    double const tiny = kTinyShare * mPen.tolerance;
    std::size_t const before = mStretches.size();
    if (PolygonLength(curve.local) <= tiny) {
        mStretches.push_back({0.0, 1.0, 0, true});
    } else {
        SplitAtCurvature(curve.local, mPen.radius, tiny, mPen.IsRound(), mStretches);
    }
    // Tiny stretches become lines and are dropped. Those between them make up one piece each.
    std::size_t const end = mStretches.size();
    std::size_t kept = before;
    for (std::size_t i = before; i < end;) {
        if (mStretches[i].tiny) {
            AddTinyStretch(curve, mStretches[i]);
            ++i;
            continue;
        }
        std::size_t const first = kept;
        while (i < end && !mStretches[i].tiny) {
            mStretches[kept++] = mStretches[i++];
        }
        AddStretches(curve, first, kept - first, i < end);
    }
    mStretches.resize(kept);
}

void StrokeContours::SmoothCorners(bool closed) {
    // Without a corner, the side leads from the middle of one turn to the middle of the next. It
    // comes nearer to the line than the radius by the radius times an eighth of the turn's square.
    double const most = 8.0 * kCornerShare * mPen.tolerance / mPen.radius;
    auto const length = [](Piece const& piece) {
        return piece.stretches > 0 ? PolygonLength(piece.curve) : Distance(piece.start, piece.end);
    };
    for (std::size_t i = 0; i < mPieces.size(); ++i) {
        if (i + 1 == mPieces.size() && !closed) {
            break;
        }
        Piece& before = mPieces[i];
        Piece& behind = mPieces[i + 1 < mPieces.size() ? i + 1 : 0];
        double const square = Square(before.to - behind.from);
        if (!(square > 0.0 && square <= most && square <= kSmoothestTurn)) {
            continue;
        }
        // A fold leaves the corner with the curve's own direction.
        if (FoldAtEnd(before) != 0 || FoldAtStart(behind) != 0) {
            continue;
        }
        // On the inner side both pieces go back by half of that. They have to cover it.
        double const off = std::sqrt(square) * mPen.radius;
        if (off <= length(before) && off <= length(behind)) {
            before.to = behind.from = trammel::Normalize(before.to + behind.from);
        }
    }
}

void StrokeContours::Reverse() {
    bool const last = mPieces.back().turnsAfter;
    std::reverse(mPieces.begin(), mPieces.end());
    for (std::size_t i = 0; i < mPieces.size(); ++i) {
        Piece& piece = mPieces[i];
        std::swap(piece.start, piece.end);
        Pt const from = piece.from;
        piece.from = -piece.to;
        piece.to = -from;
        piece.turnsAfter = i + 1 < mPieces.size() ? mPieces[i + 1].turnsAfter : last;
        if (piece.stretches > 0) {
            piece.curve = Reversed(piece.curve);
            auto const begin = mStretches.begin() + static_cast<std::ptrdiff_t>(piece.firstStretch);
            auto const end = begin + static_cast<std::ptrdiff_t>(piece.stretches);
            std::reverse(begin, end);
            for (auto s = begin; s != end; ++s) {
                *s = {1.0 - s->to, 1.0 - s->from, -s->fold, false};
            }
        }
    }
    mIsReversed = !mIsReversed;
}

// ---- the contours

void StrokeContours::EndPart(bool hasStartCap, bool hasEndCap) {
    if (mPieces.empty()) {
        return;
    }
    SmoothCorners(false);
    for (StrokeCap const cap : {hasEndCap ? mPen.endCap : StrokeCap::kButt,
                                hasStartCap ? mPen.startCap : StrokeCap::kButt}) {
        mOut.LineTo(Beside(mPieces.front().start, mPieces.front().from));
        Side(false);
        mOut.LineTo(Beside(mPieces.back().end, mPieces.back().to));
        AddCap(mPieces.back().end, mPieces.back().to, cap);
        Reverse();
    }
    mOut.Close();
    AddTurns();
    AddPatches();
}

void StrokeContours::EndClosed() {
    if (mPieces.empty()) {
        return;
    }
    SmoothCorners(true);
    Side(true);
    mOut.Close();
    Reverse();
    Side(true);
    mOut.Close();
    Reverse();
    AddTurns();
    AddPatches();
}

void StrokeContours::EndSide(double blur) {
    if (mPieces.empty()) {
        return;
    }
    SmoothCorners(true);
    mBlur = blur;
    Side(true);
    CloseSide();
}

void StrokeContours::EndSidePart(double blur, std::vector<Cubic> const& line) {
    if (mPieces.empty()) {
        return;
    }
    SmoothCorners(false);
    mBlur = blur;
    mOut.LineTo(Beside(mPieces.front().start, mPieces.front().from));
    Side(false);
    mOut.LineTo(Beside(mPieces.back().end, mPieces.back().to));
    for (auto s = line.rbegin(); s != line.rend(); ++s) {
        Cubic const& c = *s;
        mOut.LineTo(c[3]);
        if (c[1] == c[0] && c[2] == c[3]) {
            mOut.LineTo(c[0]);
        } else {
            mOut.CurveTo({{c[2], c[1], c[0]}});
        }
    }
    CloseSide();
}

void StrokeContours::CloseSide() {
    mBlur = 0.0;
    mOut.Close();
    if (mPen.join == StrokeJoin::kRound) {
        // All within the radius may be painted.
        for (Piece const& piece : mPieces) {
            if (piece.turnsAfter) {
                AddDisc(piece.end);
            }
        }
    } else {
        for (Turn const& turn : mTurns) {
            // At a cusp, rounding tells which way the pen turns, and on one side alone it matters.
            Dot(turn.from, turn.to) < 0.0 ? AddDisc(turn.center) : AddHalfTurn(turn, -1.0);
        }
    }
    mIsReversed = true; // so that patches on the other side are left out
    AddPatches();
}

void StrokeContours::Side(bool closed) {
    if (closed) {
        AddCorner(mPieces.back(), mPieces.front());
    }
    for (std::size_t i = 0; i < mPieces.size(); ++i) {
        if (i > 0) {
            AddCorner(mPieces[i - 1], mPieces[i]);
        }
        AddSideOf(mPieces[i]);
    }
}

DirectedCubic StrokeContours::PartOfPiece(Piece const& piece, double from, double to) const {
    CurveStretch const& first = mStretches[piece.firstStretch];
    CurveStretch const& last = mStretches[piece.firstStretch + piece.stretches - 1];
    DirectedCubic const whole(piece.curve, piece.from, piece.to);
    return whole.Part(from, to, from <= first.from ? piece.from : whole.DirectionAt(from),
                      to >= last.to ? piece.to : whole.DirectionAt(to));
}

int StrokeContours::FoldAtStart(Piece const& piece) const {
    return piece.stretches > 0 ? mStretches[piece.firstStretch].fold : 0;
}

int StrokeContours::FoldAtEnd(Piece const& piece) const {
    return piece.stretches > 0 ? mStretches[piece.firstStretch + piece.stretches - 1].fold : 0;
}

void StrokeContours::AddCentresOf(DirectedCubic const& part, Pt const& origin, bool withFirst,
                                  bool withLast) {
    mCentres.clear();
    double const off =
        AppendCentres(part, mPen.radius, kFitShare * mPen.tolerance, !mPen.IsRound(), mCentres);
    mExcess = std::max(mExcess, off);
    if (withFirst) {
        mOut.LineTo(origin + CentreOf(part, 0.0, part.from, mPen.radius));
    }
    for (Pt const& p : mCentres) {
        mOut.LineTo(origin + p);
    }
    if (withLast) {
        mOut.LineTo(origin + CentreOf(part, 1.0, part.to, mPen.radius));
    }
}

// The contour stands at the piece's side where it starts, or anywhere if that folds.
void StrokeContours::AddSideOf(Piece const& piece) {
    double const tolerance = kFitShare * mPen.tolerance;
    std::size_t const end = piece.firstStretch + piece.stretches;
    for (std::size_t i = piece.firstStretch; i < end;) {
        bool const folds = mStretches[i].fold < 0;
        std::size_t k = i;
        while (k < end && (mStretches[k].fold < 0) == folds) {
            ++k;
        }
        DirectedCubic const part = PartOfPiece(piece, mStretches[i].from, mStretches[k - 1].to);
        if (folds) {
            AddCentresOf(part, piece.origin, i == piece.firstStretch, k == end);
        } else {
            mOut.LineTo(i == piece.firstStretch ? Beside(piece.start, piece.from)
                                                : piece.origin + Beside(part.curve[0], part.from));
            mCurves.clear();
            AppendOffset(part, -mPen.radius, tolerance, mCurves);
            for (std::size_t c = 0; c < mCurves.size(); ++c) {
                std::array<Pt, 3> points = mCurves[c];
                for (Pt& p : points) {
                    p += piece.origin;
                }
                if (c + 1 == mCurves.size() && k == end) {
                    points[2] = Beside(piece.end, piece.to);
                }
                mOut.CurveTo(points);
            }
        }
        i = k;
    }
}

void StrokeContours::AddPatches() {
    if (mPen.IsRound()) {
        Clear();
        return;
    }
    bool const oneSide = mIsReversed;
    mIsReversed = false;
    for (int side = 0; side < (oneSide ? 1 : 2); ++side) {
        for (Piece const& piece : mPieces) {
            for (std::size_t i = 0; i < piece.stretches; ++i) {
                CurveStretch const& stretch = mStretches[piece.firstStretch + i];
                if (stretch.fold >= 0) {
                    continue;
                }
                double const tolerance = kFitShare * mPen.tolerance;
                DirectedCubic const part = PartOfPiece(piece, stretch.from, stretch.to);
                mCurves.clear();
                AppendOffset(part.Reversed(), mPen.radius, tolerance, mCurves);
                Pt const start = Beside(part.curve[0], part.from);
                mOut.LineTo(piece.origin + start);
                AddCentresOf(part, piece.origin, i == 0, i + 1 == piece.stretches);
                mOut.LineTo(piece.origin + Beside(part.curve[3], part.to));
                for (std::array<Pt, 3> points : mCurves) {
                    for (Pt& p : points) {
                        p += piece.origin;
                    }
                    mOut.CurveTo(points);
                }
                mOut.Close();
            }
        }
        Reverse();
    }
    mIsReversed = false;
    Clear();
}

// ---- corners and ends

// Both halves of the pen paint while it turns. The sides have what the outer one paints between the
// directions before and behind, which is not all where the part turns to and fro.
void StrokeContours::NoteTurns(DirectedCubic const& part, Pt const& origin) {
    struct Speeds {
        std::array<Pt, 3> at; // control points of the derivative
        int depth;
        bool isLast;
    };
    Turn turn = {origin + part.curve[0], part.from, part.from};
    // The tiniest numbers have no products.
    double greatest = 0.0;
    for (Pt const& p : part.speed) {
        greatest = std::max({greatest, std::abs(p.h), std::abs(p.v)});
    }
    if (!(greatest > 0.0)) {
        mTurns.push_back({turn.center, part.from, part.to});
        return;
    }
    int const exponent = -std::ilogb(greatest);
    Speeds whole = {part.speed, 0, true};
    for (Pt& p : whole.at) {
        p = Pt(std::scalbn(p.h, exponent), std::scalbn(p.v, exponent));
    }
    std::vector<Speeds> open = {whole};
    for (int parts = 0; !open.empty(); ++parts) {
        Speeds const s = open.back();
        open.pop_back();
        bool const turnsLittle =
            std::min({Dot(s.at[0], s.at[1]), Dot(s.at[1], s.at[2]), Dot(s.at[0], s.at[2])}) > 0.0;
        // Before an inflection the pen turns farther than to the direction behind.
        bool const turnsOneWay = Cross(s.at[0], s.at[1]) * Cross(s.at[1], s.at[2]) >= 0.0;
        if (!(turnsLittle && turnsOneWay) && s.depth < kDeepestTurn && parts < kMostTurnParts) {
            Pt const a = (s.at[0] + s.at[1]) * 0.5;
            Pt const b = (s.at[1] + s.at[2]) * 0.5;
            Pt const middle = (a + b) * 0.5;
            open.push_back({{{middle, b, s.at[2]}}, s.depth + 1, s.isLast});
            open.push_back({{{s.at[0], a, middle}}, s.depth + 1, false});
            continue;
        }
        Pt const next = s.isLast ? part.to : trammel::Normalize(s.at[2]);
        if (next.Null()) {
            continue;
        }
        bool const goesOn =
            Dot(turn.from, next) > 0.0 && Cross(turn.from, turn.to) * Cross(turn.to, next) >= 0.0;
        if (!goesOn) {
            mTurns.push_back(turn);
            turn.from = turn.to;
        }
        turn.to = next;
    }
    mTurns.push_back(turn);
}

void StrokeContours::AddTurns() {
    for (Turn const& turn : mTurns) {
        AddHalfTurn(turn, 1.0);
        AddHalfTurn(turn, -1.0);
    }
}

void StrokeContours::AddDisc(Pt const& center) {
    Pt const ahead(1.0, 0.0);
    mOut.LineTo(center + ahead * mPen.radius);
    AddArc(center, ahead, -ahead);
    AddArc(center, -ahead, ahead);
    mOut.Close();
}

void StrokeContours::AddHalfTurn(Turn const& turn, double half) {
    if (turn.from == turn.to) {
        return;
    }
    bool const isPositive = Cross(turn.from, turn.to) >= 0.0;
    Pt const from = NormalOf(isPositive ? turn.from : turn.to);
    Pt const to = NormalOf(isPositive ? turn.to : turn.from);
    mOut.LineTo(turn.center);
    mOut.LineTo(turn.center + from * (half * mPen.radius));
    AddArc(turn.center, from * half, to * half);
    mOut.Close();
}

// At the end of a spike that is thinner than the blur, rounding tells the turn. With one side alone
// nobody else would paint around that end.
bool StrokeContours::RunsBack(Piece const& before, Piece const& behind) const {
    double const least =
        std::min(Distance(before.start, before.end), Distance(behind.start, behind.end));
    double const turn = std::abs(Cross(before.to, behind.from));
    return turn <= kRunsBack && turn * least <= mBlur && Dot(before.to, behind.from) < 0.0;
}

void StrokeContours::AddCorner(Piece const& before, Piece const& behind) {
    Pt const p = behind.start;
    Pt const from = Beside(before.end, before.to);
    Pt const to = Beside(p, behind.from);
    double const turn = Cross(before.to, behind.from);
    double const along = Dot(before.to, behind.from);
    if (before.to == behind.from) {
        mOut.LineTo(to);
        return;
    }
    if (turn > 0.0 || (turn == 0.0 && along < 0.0 && !mIsReversed) ||
        (mBlur > 0.0 && RunsBack(before, behind))) {
        mOut.LineTo(from);
        AddJoin(p, before.to, behind.from, before.turnsAfter);
        mOut.LineTo(to);
        return;
    }
    if (before.stretches == 0 && behind.stretches == 0 && along > -0.99) {
        double const ahead = mPen.radius * std::abs(turn) / (1.0 + along);
        if (ahead <= 0.5 * Distance(before.start, before.end) &&
            ahead <= 0.5 * Distance(behind.start, behind.end)) {
            // Both pieces cover the corner's inner side up to where their sides meet. It counts
            // once less then, which no other corner of a piece does at the same point.
            mOut.LineTo(p - NormalOf(before.to + behind.from) * (mPen.radius / (1.0 + along)));
            return;
        }
    }
    if (before.stretches == 0) {
        mOut.LineTo(from);
    }
    mOut.LineTo(p);
    if (FoldAtStart(behind) >= 0) {
        mOut.LineTo(to);
    }
}

void StrokeContours::AddJoin(Pt const& p, Pt const& before, Pt const& behind, bool round) {
    if (round || mPen.join == StrokeJoin::kRound) {
        AddArc(p, -NormalOf(before), -NormalOf(behind));
        return;
    }
    if (mPen.join == StrokeJoin::kBevel) {
        return;
    }
    double const along = Dot(before, behind);
    // Half of the turn between the directions, which have the length 1.
    double const cosine = 0.5 * std::sqrt(Square(before + behind));
    double const sine = 0.5 * std::sqrt(Square(before - behind));
    double const radius = mPen.radius;
    Pt const from = Beside(p, before);
    Pt const to = Beside(p, behind);
    if (mPen.miterLimit * cosine >= 1.0) {
        double const ahead = radius * sine / cosine;
        mOut.LineTo(along > 0.0 ? p - NormalOf(before + behind) * (radius / (1.0 + along))
                                : from + before * ahead);
    } else if (mPen.join == StrokeJoin::kMiterClip) {
        double const ahead = radius * (mPen.miterLimit - cosine) / sine;
        mOut.LineTo(from + before * ahead);
        mOut.LineTo(to - behind * ahead);
    }
}

// The turn is from h toward v and at most half of a full one.
void StrokeContours::AddArc(Pt const& center, Pt const& from, Pt const& to) {
    if (mShared != nullptr &&
        std::binary_search(mShared->begin(), mShared->end(), center, IsBefore)) {
        AddSharedArc(center, from, to);
        return;
    }
    double const sine = 0.5 * std::sqrt(Square(to - from));
    double const cosine = 0.5 * std::sqrt(Square(to + from));
    double const quarter = sine / (1.0 + cosine); // the tangent of a quarter of the turn
    double t = quarter / (1.0 + std::sqrt(1.0 + quarter * quarter));
    t = t / (1.0 + std::sqrt(1.0 + t * t));
    double series = 0.0;
    for (int k = 21; k > 0; k -= 2) {
        series = 1.0 / k - t * t * series;
    }
    double const angle = 16.0 * t * series;
    double const radius = mPen.radius;
    std::size_t const count =
        std::max<std::size_t>(ArcCurveCount(angle, radius, kFitShare * mPen.tolerance), 1);

    // One step is the root of the whole turn, as complex numbers. Newton's method finds it.
    Pt const whole(Dot(from, to), Cross(from, to));
    Pt step = whole;
    if (count > 1) {
        double const a = angle / static_cast<double>(count);
        double const square = a * a;
        step = trammel::Normalize(Pt(1.0 - square * (0.5 - square / 24.0),
                                     a * (1.0 - square * (1.0 - square / 20.0) / 6.0)));
        for (int round = 0; round < 4; ++round) {
            Pt power(1.0, 0.0);
            for (std::size_t i = 0; i < count; ++i) {
                power = Turned(power, step);
            }
            // Both have the length 1, so what remains is a small turn.
            Pt const rest = Turned(whole, Pt(power.h, -power.v));
            double const off = rest.v / static_cast<double>(count);
            step = trammel::Normalize(step + NormalOf(step) * off);
        }
    }
    double const half = step.v / (1.0 + step.h);
    double const arm = 4.0 / 3.0 * radius * half / (1.0 + std::sqrt(1.0 + half * half));
    Pt radial = from;
    for (std::size_t i = 0; i < count; ++i) {
        Pt const next = i + 1 < count ? Turned(radial, step) : to;
        mOut.CurveTo({{center + radial * radius + NormalOf(radial) * arm,
                       center + next * radius - NormalOf(next) * arm, center + next * radius}});
        radial = next;
    }
}

// All arcs around the point are parts of the same curves. So where they run along each other, they
// coincide, which arcs that were cut at other places would not do.
void StrokeContours::AddSharedArc(Pt const& center, Pt const& from, Pt const& to) {
    double const radius = mPen.radius;
    std::size_t const perQuarter = ArcCurveCount(pi / 2.0, radius, kSharedShare * mPen.tolerance);
    std::size_t const count = std::max<std::size_t>(4 * perQuarter, 4);
    // The first curve that ends behind `from`.
    std::size_t k = 0;
    while (k < count && !(Cross(UnitPoint(k, count), from) >= 0.0 &&
                          Cross(from, UnitPoint(k + 1, count)) > 0.0)) {
        ++k;
    }
    for (std::size_t i = 0; i <= count / 2 + 1; ++i, ++k) {
        Pt const first = UnitPoint(k % count, count);
        Pt const last = UnitPoint((k + 1) % count, count);
        // A third of the way along its tangents, times 4 tan(a/4).
        double const half = Cross(first, last) / (1.0 + Dot(first, last));
        double const arm = 4.0 / 3.0 * half / (1.0 + std::sqrt(1.0 + half * half));
        Cubic const unit = {
            {first, first + NormalOf(first) * arm, last - NormalOf(last) * arm, last}};
        bool const isLast =
            Cross(first, to) > 0.0 && Cross(to, last) >= 0.0 && (i > 0 || Cross(from, to) > 0.0);
        double const t0 = i == 0 ? ParameterAt(unit, from) : 0.0;
        double const t1 = isLast ? ParameterAt(unit, to) : 1.0;
        if (t0 < t1) {
            Cubic const part = PartOf(unit, t0, t1);
            mOut.LineTo(center + part[0] * radius);
            mOut.CurveTo({{center + part[1] * radius, center + part[2] * radius,
                           center + part[3] * radius}});
        }
        if (isLast) {
            break;
        }
    }
    mOut.LineTo(center + to * radius);
}

void StrokeContours::AddCap(Pt const& p, Pt const& direction, StrokeCap cap) {
    Pt const side = NormalOf(direction) * mPen.radius;
    Pt const ahead = direction * mPen.radius;
    if (cap == StrokeCap::kRound) {
        AddArc(p, -NormalOf(direction), NormalOf(direction));
    } else if (cap == StrokeCap::kSquare) {
        mOut.LineTo(p - side + ahead);
        mOut.LineTo(p + side + ahead);
    }
    mOut.LineTo(p + side);
}

} // namespace trammel_detail
