// SPDX-License-Identifier: MIT

#include "Simplify.h"

#include "CurveRun_p.h"
#include "ElementAppender_p.h"
#include "PathSegments.h"
#include "PointMath_p.h"
#include "RangeScale_p.h"
#include "StrokeMatch_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace trammel {

namespace {

using trammel_detail::Cubic;
using trammel_detail::CurveRun;
using trammel_detail::MatchRun;
using trammel_detail::RunMatch;
using trammel_detail::StartDirection;
using trammel_detail::StrokePoints;

typedef TPoint<double> Pt;

/// Curves meet smoothly where the tangent of the angle is at most that. Outlines on the grid of a
/// font have smooth joints that are off by a few hundredths.
constexpr double kSmooth = 0x1p-4;
/// Lines continue each other where it is at most that.
constexpr double kStraight = 0x1p-10;

bool Continues(Pt const& in, Pt const& out, double most) {
    double const dot = Dot(in, out);
    return dot > 0.0 && std::abs(Cross(in, out)) <= most * dot;
}

/// Returns the greatest number up to `most` found for which fits(number) holds; 1 where it never
/// does. Numbers are doubled and then halved. The last call that held was for the number returned.
template <class Fits> std::size_t LongestRun(std::size_t most, Fits&& fits) {
    std::size_t below = 1;
    std::size_t above = most + 1;
    for (std::size_t count = 2; below < count && count < above;) {
        (fits(count) ? below : above) = count;
        count = above > most ? std::min(2 * below, most) : (below + above) / 2;
    }
    return below;
}

class OutlineSimplifier {
public:
    OutlineSimplifier(CPath const& outline, double tolerance)
        : mScale(trammel_detail::RangeScale(outline.mPts)), mTolerance(tolerance * mScale),
          mOut(mResult, outline.mCtls.size() + 2, outline.mPts.size() + 2) {}

    void Add(Subpath const& subpath) {
        mSegments.assign(subpath.begin(), subpath.end());
        mCurves.clear();
        for (PathSegment const& s : mSegments) {
            mCurves.push_back(
                {s.start * mScale, s.control1 * mScale, s.control2 * mScale, s.end * mScale});
        }
        mOut.Move(subpath.Start());
        mCloses = subpath.BeginsWithMove();
        for (std::size_t i = 0; i < mSegments.size();) {
            for (std::size_t const end = EndOfRun(i); i < end;) {
                i = IsLine(i) ? AddLines(i, end) : AddCurves(i, end);
            }
        }
    }
    /// The greatest distance of all runs.
    double Distance() const { return mDistance / mScale; }
    CPath& Result() { return mResult; }

private:
    bool IsLine(std::size_t i) const { return !mSegments[i].IsCurve(); }
    bool IsFinite(std::size_t i) const {
        return std::all_of(mCurves[i].begin(), mCurves[i].end(),
                           [](Pt const& p) { return trammel_detail::IsFinite(p); });
    }
    /// The end of the elements that continue element `i`, one after the other.
    std::size_t EndOfRun(std::size_t i) const {
        std::size_t end = i + 1;
        if (!IsFinite(i)) {
            return end;
        }
        double const most = IsLine(i) ? kStraight : kSmooth;
        while (end < mSegments.size() && IsLine(end) == IsLine(i) && IsFinite(end) &&
               mSegments[end].start == mSegments[end - 1].end &&
               Continues(-StartDirection(trammel_detail::Reversed(mCurves[end - 1])),
                         StartDirection(mCurves[end]), most)) {
            ++end;
        }
        return end;
    }

    /// Adds the longest run from `first` on that becomes one curve, and returns where it ends.
    std::size_t AddCurves(std::size_t first, std::size_t end) {
        CurveRun run(mCurves, first, mTolerance);
        Cubic best;
        double kept = 0.0;
        std::size_t const count = LongestRun(end - first, [&](std::size_t n) {
            Cubic fit;
            double distance = 0.0;
            bool const fits = run.FitUpTo(first + n - 1, fit, distance) &&
                              trammel_detail::IsFinite(fit[1] * (1.0 / mScale)) &&
                              trammel_detail::IsFinite(fit[2] * (1.0 / mScale));
            if (fits) {
                best = fit;
                kept = distance;
            }
            return fits;
        });
        PathSegment const& last = mSegments[first + count - 1];
        if (count == 1) {
            mOut.Curve(last.control1, last.control2, last.end);
        } else {
            mOut.Curve(best[1] * (1.0 / mScale), best[2] * (1.0 / mScale), last.end);
            mDistance = std::max(mDistance, kept);
        }
        return first + count;
    }

    /// Adds the longest run of lines from `first` on that becomes one line, and returns where it
    /// ends.
    std::size_t AddLines(std::size_t first, std::size_t end) {
        StrokePoints stroke;
        stroke.Add(mCurves[first][0]);
        std::size_t horizontal = end; // the first one that is
        std::size_t vertical = end;
        double kept = 0.0;
        std::size_t const count = LongestRun(end - first, [&](std::size_t n) {
            while (stroke.at.size() <= n) {
                std::size_t const i = first + stroke.at.size() - 1;
                Cubic const& c = mCurves[i];
                stroke.Add(c[3]);
                horizontal = horizontal == end && c[0].v == c[3].v ? i : horizontal;
                vertical = vertical == end && c[0].h == c[3].h ? i : vertical;
            }
            Pt const a = stroke.at[0];
            Pt const b = stroke.at[n];
            if ((horizontal < first + n && a.v != b.v) || (vertical < first + n && a.h != b.h)) {
                return false;
            }
            Pt const third = (b - a) * (1.0 / 3.0);
            RunMatch const match = MatchRun(stroke, 0, n, {a, a + third, b - third, b}, mTolerance);
            kept = match.fits ? match.distance : kept;
            return match.fits;
        });
        mDistance = std::max(mDistance, kept);
        PathSegment const& last = mSegments[first + count - 1];
        if (last.kind == kPathClose && mCloses) {
            mOut.Close();
        } else {
            mOut.Line(last.end);
        }
        return first + count;
    }

    double mScale;
    double mTolerance;
    double mDistance = 0.0;
    bool mCloses = false; ///< the subpath's close leads to its start
    CPath mResult;
    trammel_detail::ElementAppender mOut;
    std::vector<PathSegment> mSegments; ///< of a subpath
    std::vector<Cubic> mCurves;         ///< the same, scaled
};

} // namespace

double Simplify(CPath const& outline, double tolerance, CPath& out) {
    double const usable = tolerance > 0.0 ? tolerance : 0.0;
    OutlineSimplifier simplifier(outline, usable);
    for (Subpath const& subpath : Subpaths(outline)) {
        simplifier.Add(subpath);
    }
    out = std::move(simplifier.Result());
    return std::min(simplifier.Distance(), usable);
}

} // namespace trammel
