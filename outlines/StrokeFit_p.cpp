// SPDX-License-Identifier: MIT

#include "StrokeFit_p.h"

#include "HandleFit_p.h"
#include "StrokeShape_p.h"

#include <algorithm>
#include <cmath>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// The first guess of a run's length in points.
constexpr std::size_t kFirstGuess = 64;
/// The second guess differs from the first one by one part of so many.
constexpr std::size_t kFirstStep = 4;
/// A run may grow by so much on the word of a few points.
constexpr std::size_t kUnproven = 4;
/// Runs are as long as they can be within a part of so many.
constexpr std::size_t kFineness = 8;
/// A run of so many points is a long one.
constexpr std::size_t kLong = 1024;
/// A joint is smoothed over that part of the run before it, to both sides.
constexpr std::size_t kSmoothing = 4;
/// After so many failing proofs the place of the failure tells how much shorter a run has to be.
constexpr int kMostNearFailures = 3;
/// A piece is made again so many times where the next one finds no curve.
constexpr int kMostRetries = 4;
/// A joint may be so many tolerances away from its point.
constexpr double kMostShift = 0.5;

/// Fits the points between two places where the stroke may turn or goes on in a given direction.
class SectionFit {
public:
    SectionFit(StrokePoints const& stroke, FitLimits const& limits, std::vector<FittedPiece>& out)
        : mStroke(stroke), mTolerance(limits.tolerance), mGreatest(limits.greatest), mOut(out) {}

    /// How a section begins and ends. Directions of (0, 0) are free.
    struct Ends {
        std::size_t from;
        std::size_t to;
        Pt start;
        Pt startDirection;
        Pt endDirection;
    };

    void Fit(Ends const& ends) {
        mFrom = ends.from;
        mTo = ends.to;
        mEndDirection = ends.endDirection;
        Joint joint = {ends.from, ends.start, ends.startDirection};
        Joint before = joint;
        int retries = 0;
        std::size_t most = mTo;
        while (joint.at < mTo) {
            FittedPiece piece = NextPiece(joint, most);
            bool const failed = piece.isLine && before.at < joint.at && !mOut.back().isLine;
            if (failed && retries < kMostRetries && joint.at - before.at > kFineness) {
                // No curve can begin here. Perhaps one can a little earlier.
                ++retries;
                most = joint.at - (joint.at - before.at) / kFineness - 1;
                joint = before;
                mOut.pop_back();
                continue;
            }
            bool const again = most < mTo;
            most = mTo;
            retries = again ? retries : 0;
            mGuess = std::max<std::size_t>({piece.to - joint.at, mGuess / 2, 4});
            before = joint;
            joint = {piece.to, piece.points[3], piece.direction};
            mOut.push_back(piece);
        }
    }
    /// Makes a line in place of the run, from `start`. Returns false where it does not fit.
    bool FitLine(std::size_t from, std::size_t to, Pt const& start, FittedPiece& piece) const {
        Pt const& end = mStroke.at[to];
        Pt const third = (end - start) * (1.0 / 3.0);
        piece = {{start, start + third, end - third, end}, true, to, 0.0, DirectionOf(end - start)};
        if (to == from + 1 && start == mStroke.at[from]) {
            return true;
        }
        RunMatch const match = MatchRun(mStroke, from, to, piece.points, mTolerance);
        piece.distance = match.distance;
        return match.fits;
    }
    static Pt DirectionOf(Pt const& p) {
        double const length = std::sqrt(Square(p));
        return length > 0.0 ? p / length : Pt();
    }

private:
    /// Where a piece ends and the next one begins.
    struct Joint {
        std::size_t at;
        Pt point;
        Pt direction;
    };

    static bool IsFree(Pt const& direction) { return direction.Null(); }

    bool IsInRange(Cubic const& c) const {
        return std::all_of(c.begin(), c.end(), [this](Pt const& p) {
            return std::abs(p.h) <= mGreatest && std::abs(p.v) <= mGreatest;
        });
    }

    std::ptrdiff_t Signed(std::size_t i) const { return static_cast<std::ptrdiff_t>(i); }

    /// The fan from the piece's start over the points behind it, up to `i`.
    FanMoments const& FanUpTo(std::size_t i) {
        while (mFans.size() <= i - mAt) {
            std::size_t const next = mAt + mFans.size();
            FanMoments fan = mFans.back();
            Pt const before = next == mAt + 1 ? Pt() : mStroke.at[next - 1] - mPoint;
            fan.AddLine(before, mStroke.at[next] - mPoint);
            mFans.push_back(fan);
        }
        return mFans[i - mAt];
    }

    /// The course at the end of a run.
    Course EndOf(std::size_t to, std::size_t length) const {
        std::size_t const reach = std::max<std::size_t>(length / kSmoothing, 3);
        if (to == mTo) {
            if (!IsFree(mEndDirection)) {
                return {mStroke.at[to], mEndDirection};
            }
            std::size_t const low = to - mFrom > 2 * reach ? to - 2 * reach : mFrom;
            return CourseAt(mStroke, to, Signed(low), Signed(to), true);
        }
        std::size_t const low = to - mFrom > reach ? to - reach : mFrom;
        std::size_t const high = mTo - to > reach ? to + reach : mTo;
        Course course = CourseAt(mStroke, to, Signed(low), Signed(high), false);
        Pt const shift = course.point - mStroke.at[to];
        double const most = mTolerance * kMostShift;
        if (!(Square(shift) <= most * most)) {
            course.point = mStroke.at[to];
        }
        return course;
    }

    /// Looks for a cubic over the next `length` points, and tries it on some of them.
    bool Seek(std::size_t length, FittedPiece& piece) {
        std::size_t const to = mAt + length;
        Course const end = EndOf(to, length);
        Pt start = mDirection;
        if (IsFree(start)) {
            std::size_t const reach = std::max<std::size_t>(length / kSmoothing, 3) * 2;
            std::size_t const high = std::min(mAt + reach, mTo);
            if (high != mFreeUpTo) {
                mFreeUpTo = high;
                mFree = CourseAt(mStroke, mAt, Signed(mAt), Signed(high), true).direction;
            }
            start = mFree;
        }
        Pt const chord = end.point - mPoint;
        if (IsFree(start) || IsFree(end.direction) || chord.Null()) {
            return false;
        }
        FanMoments fan = FanUpTo(to - 1);
        fan.AddLine(to == mAt + 1 ? Pt() : mStroke.at[to - 1] - mPoint, chord);
        double const size = std::sqrt(Square(chord));
        Pt const back = -end.direction;
        HandleFit candidates(chord, start, back, fan);
        for (HandleLengths handles; candidates.Next(handles);) {
            Cubic const cubic = {mPoint, mPoint + start * (handles.start * size),
                                 end.point + back * (handles.end * size), end.point};
            if (IsInRange(cubic) && SeemsToMatch(mStroke, mAt, to, cubic, mTolerance)) {
                piece = {cubic, false, to, 0.0, end.direction};
                return true;
            }
        }
        return false;
    }
    /// True when the piece is proven.
    bool Prove(FittedPiece& piece, std::size_t& reached) const {
        RunMatch const match = MatchRun(mStroke, mAt, piece.to, piece.points, mTolerance);
        piece.distance = match.distance;
        reached = match.last - mAt;
        return match.fits;
    }

    /// By so much the longest run may be longer than the one found. Another attempt costs less than
    /// the points of a long run.
    static std::size_t Uncertain(std::size_t length) {
        std::size_t const part = length < kLong ? kFineness : kFineness * kFineness;
        return std::max<std::size_t>(length / part, 1);
    }
    static std::size_t Shorter(std::size_t length) {
        return length - std::min(std::max<std::size_t>(length / kFineness, 1), length);
    }

    /// The piece that begins at the joint and ends at `last` at the latest.
    FittedPiece NextPiece(Joint const& joint, std::size_t last) {
        mAt = joint.at;
        mPoint = joint.point;
        mDirection = joint.direction;
        mFreeUpTo = 0;
        mFans.assign(1, FanMoments());
        std::size_t const most = last - mAt;
        FittedPiece piece;
        std::size_t reached = 0;
        std::size_t const matching = LongestMatch(most, piece);
        if (matching > 0 && Prove(piece, reached)) {
            return piece;
        }
        // A point between those tried is too far away.
        return FindProven(matching, reached, piece) ? piece : LongestLine(most);
    }

    /// Looks for the longest run of at most `most` lines that seems to match a cubic. Returns the
    /// number of its lines, 0 for none, and sets its piece.
    std::size_t LongestMatch(std::size_t most, FittedPiece& found) {
        std::size_t length = std::min(mGuess, most);
        std::size_t proven = length;
        std::size_t below = 0; // the longest run that seems to match
        std::size_t above = most + 1;
        FittedPiece piece;
        // Runs are about as long as the one before, so the first steps are small. This tries longer
        // runs as long as they match, up to a few times the proven length. Then it tries shorter
        // ones.
        std::size_t step = std::max<std::size_t>(length / kFirstStep, 1);
        while (length > 1 && below + Uncertain(below) < above) {
            if (Seek(length, piece)) {
                if (length > kUnproven * proven) {
                    std::size_t reached = 0;
                    if (!Prove(piece, reached)) {
                        break;
                    }
                    proven = length;
                }
                below = length;
                found = piece;
            } else {
                above = length;
            }
            if (above > most) {
                if (length == most) {
                    break;
                }
                length = std::min(length + step, most);
            } else if (below == 0) {
                length = length > step ? length - step : length / 2;
            } else {
                length = (below + above) / 2;
            }
            step = std::min(2 * step, length);
        }
        return below;
    }

    /// Looks for a proven piece of a run that is shorter than one of `length` lines. That one has
    /// failed the proof, which got as far as `reached`. True when there is one.
    bool FindProven(std::size_t length, std::size_t reached, FittedPiece& piece) {
        length = Shorter(length);
        for (int failures = 1; length > 1; length = Shorter(length)) {
            if (!Seek(length, piece)) {
                continue;
            }
            if (Prove(piece, reached)) {
                return true;
            }
            if (++failures > kMostNearFailures) {
                length = std::min(length, 2 * reached);
            }
        }
        return false;
    }

    /// Returns a line over a run as long as doubling its length finds, of `most` lines at most. The
    /// shortest is a line of the stroke itself, which always fits.
    FittedPiece LongestLine(std::size_t most) const {
        bool const isMoved = mPoint != mStroke.at[mAt];
        double const away = std::sqrt(Square(mPoint - mStroke.at[mAt])) * (1.0 + 0x1p-48);
        double const shift = isMoved ? away + kUnderflow : 0.0;
        Pt const& end = mStroke.at[mAt + 1];
        FittedPiece piece = {{mPoint, mPoint, end, end}, true, mAt + 1, shift, Pt()};
        FittedPiece line;
        for (std::size_t length = 2; length <= most && FitLine(mAt, mAt + length, mPoint, line);
             length *= 2) {
            piece = line;
            piece.direction = Pt();
        }
        return piece;
    }

    StrokePoints const& mStroke;
    double mTolerance;
    double mGreatest;
    std::vector<FittedPiece>& mOut;
    std::vector<FanMoments> mFans;
    std::size_t mGuess = kFirstGuess;
    std::size_t mFrom = 0; ///< the section
    std::size_t mTo = 0;
    Pt mEndDirection;
    std::size_t mAt = 0; ///< the joint where the piece begins
    Pt mPoint;
    Pt mDirection;
    std::size_t mFreeUpTo = 0; ///< the points up to this one gave...
    Pt mFree;                  ///< ... the direction at the joint, where it is free
};

} // namespace

void FitStroke(StrokePoints const& stroke, FitLimits const& limits, bool closed,
               StrokeStart const& start, std::vector<FittedPiece>& out) {
    std::size_t const last = stroke.at.size() - 1;
    bool turns = false;
    std::vector<std::size_t> corners =
        FindCorners(stroke, limits.tolerance, limits.cosine, closed, turns);
    corners.push_back(last);

    // A closed stroke without a corner at its start is smooth there.
    Pt seam;
    if (closed && !turns && last >= 8) {
        auto const reach = static_cast<std::ptrdiff_t>(std::min(kFirstGuess, last / 2));
        seam = CourseAt(stroke, 0, -reach, reach, true).direction;
    }
    SectionFit fit(stroke, limits, out);
    std::vector<StraightRun> straight;
    std::size_t from = 0;
    Pt point = start.goesOn ? start.point : stroke.at[0];
    Pt direction = start.goesOn ? start.direction : seam;
    for (std::size_t const to : corners) {
        Pt const endDirection = to == last ? seam : Pt();
        bool const isFree = direction.Null() && endDirection.Null();
        FittedPiece line;
        if (isFree && fit.FitLine(from, to, point, line)) {
            out.push_back(line);
        } else {
            straight.clear();
            FindStraightRuns(stroke, from, to, limits.tolerance, straight);
            std::size_t at = from;
            for (StraightRun const& run : straight) {
                // A line at an end of the section has to agree with what goes on there.
                bool const isFirst = run.from == at;
                bool const agrees = (!isFirst || (direction.Null() && point == stroke.at[at])) &&
                                    (run.to != to || endDirection.Null());
                if (!agrees || !fit.FitLine(run.from, run.to, stroke.at[run.from], line)) {
                    continue;
                }
                if (!isFirst) {
                    fit.Fit({at, run.from, point, direction, line.direction});
                }
                out.push_back(line);
                at = run.to;
                point = stroke.at[at];
                direction = line.direction;
            }
            if (at < to) {
                fit.Fit({at, to, point, direction, endDirection});
            }
        }
        if (to != last) {
            out.back().direction = Pt();
        }
        from = to;
        point = stroke.at[to];
        direction = Pt();
    }
}

} // namespace trammel_detail
