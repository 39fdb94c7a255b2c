// SPDX-License-Identifier: MIT

#include "Simplify.h"

#include "ApartPieces_p.h"
#include "BoxTree_p.h"
#include "CurveRun_p.h"
#include "ElementAppender_p.h"
#include "OutlineNodes_p.h"
#include "PathSegments.h"
#include "PieceMarks_p.h"
#include "PointMath_p.h"
#include "RangeScale_p.h"
#include "StrokeMatch_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace trammel {

namespace {

using trammel_detail::Cubic;
using trammel_detail::CurveRun;
using trammel_detail::MatchRun;
using trammel_detail::PieceMarks;
using trammel_detail::PiecePlace;
using trammel_detail::RunMatch;
using trammel_detail::StartDirection;
using trammel_detail::StrokePoints;

typedef trammel_detail::Box<double> Box;
typedef TPoint<double> Pt;

/// Curves meet smoothly where the tangent of the angle is at most that. Outlines on the grid of a
/// font have smooth joints that are off by a few hundredths.
constexpr double kSmooth = 0x1p-4;
/// Lines continue each other where it is at most that.
constexpr double kStraight = 0x1p-10;

/// Hulls that are nearer to each other, in shares of the coordinates, count as meeting.
constexpr double kMargin = 0x1p-44;

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

/// What stands in place of some elements of a run: one of them, or a line or curve for all.
struct Piece {
    std::size_t from; ///< of the run's elements
    std::size_t to;   ///< behind the last one
    Cubic c;
    double distance;
    bool isNew; ///< has not been compared with others

    bool IsElement() const { return to - from == 1; }
};

/// Elements of one kind that continue each other, scaled.
struct Run {
    std::vector<Cubic> curves;
    bool isLine;
    bool isFinite;
    std::vector<Piece> pieces;

    Pt const& Start() const { return curves.front()[0]; }
    Pt const& End() const { return curves.back()[3]; }
    double Distance() const {
        double distance = 0.0;
        for (Piece const& piece : pieces) {
            distance = std::max(distance, piece.distance);
        }
        return distance;
    }
};

/// The order of runs by their elements.
struct RunOrder {
    std::vector<Run> const* runs;

    bool operator()(std::size_t i, std::size_t j) const {
        Run const& a = (*runs)[i];
        Run const& b = (*runs)[j];
        if (a.isLine != b.isLine || a.curves.size() != b.curves.size()) {
            return a.isLine != b.isLine ? a.isLine : a.curves.size() < b.curves.size();
        }
        for (std::size_t k = 0; k < a.curves.size(); ++k) {
            int const order = trammel_detail::CompareCurves(a.curves[k], b.curves[k]);
            if (order != 0) {
                return order < 0;
            }
        }
        return false;
    }
};

bool IsFiniteCurve(Cubic const& c) {
    return std::all_of(c.begin(), c.end(), [](Pt const& p) { return trammel_detail::IsFinite(p); });
}

/// Simplifies outlines, each for itself or all together. Together they have nodes, and the runs
/// between nodes are simplified once for all outlines that have them, in either direction.
class OutlineSimplifier {
public:
    OutlineSimplifier(std::vector<CPath const*> const& outlines, double tolerance, bool together)
        : mTogether(together) {
        std::vector<Pt> greatest; // of each outline
        for (CPath const* const outline : outlines) {
            mOutlines.emplace_back();
            for (Subpath const& subpath : Subpaths(*outline)) {
                mOutlines.back().push_back(mSubpaths.size());
                mSubpaths.push_back({subpath.Start(), subpath.BeginsWithMove(), {}, {}});
                mSubpaths.back().segments.assign(subpath.begin(), subpath.end());
            }
            Pt most;
            for (Pt const& p : outline->mPts) {
                if (trammel_detail::IsFinite(p)) {
                    most = Pt(std::max(most.h, std::abs(p.h)), std::max(most.v, std::abs(p.v)));
                }
            }
            greatest.push_back(most);
        }
        mScale = trammel_detail::RangeScale(greatest);
        mTolerance = tolerance * mScale;
        for (Pt const& p : greatest) {
            mMargin = std::max(mMargin, std::max(p.h, p.v) * mScale * kMargin);
        }
        FindRuns();
        for (Run& run : mRuns) {
            AddPieces(run, 0, run.curves.size(), run.pieces);
        }
    }

    /// Gives elements back to pieces until none is left that may meet another one.
    void AvoidCrossings() {
        trammel_detail::DivideWhileMarked([this](PieceMarks& marks) { Mark(marks); },
                                          [this](std::size_t r, std::vector<char> const& marks,
                                                 bool wholly) { Refine(mRuns[r], marks, wholly); });
    }

    /// The greatest distance of all runs.
    double Distance() const {
        double distance = 0.0;
        for (Run const& run : mRuns) {
            distance = std::max(distance, run.Distance());
        }
        return distance / mScale;
    }
    /// Returns the outline with the pieces for its runs.
    CPath Result(std::size_t outline) const {
        CPath path;
        std::size_t elements = 0;
        for (std::size_t const s : mOutlines[outline]) {
            elements += mSubpaths[s].segments.size() + 2;
        }
        trammel_detail::ElementAppender out(path, elements, 3 * elements);
        for (std::size_t const s : mOutlines[outline]) {
            AddSubpath(mSubpaths[s], out);
        }
        return path;
    }

private:
    /// A run in a subpath.
    struct Use {
        std::size_t run;
        std::size_t first; ///< segment
        bool isReversed;
    };
    struct Part {
        Pt start;
        bool closes; ///< its close leads to its start
        std::vector<PathSegment> segments;
        std::vector<Use> uses;
    };

    void FindRuns() {
        std::vector<std::vector<Cubic>> curves(mSubpaths.size());
        for (std::size_t s = 0; s < mSubpaths.size(); ++s) {
            curves[s].reserve(mSubpaths[s].segments.size());
            for (PathSegment const& p : mSubpaths[s].segments) {
                curves[s].push_back(
                    {p.start * mScale, p.control1 * mScale, p.control2 * mScale, p.end * mScale});
            }
        }
        std::vector<std::vector<char>> const nodes =
            mTogether ? trammel_detail::FindNodes(curves) : std::vector<std::vector<char>>();
        std::map<std::size_t, std::size_t, RunOrder> known(RunOrder{&mRuns});
        for (std::size_t s = 0; s < mSubpaths.size(); ++s) {
            std::vector<PathSegment> const& segments = mSubpaths[s].segments;
            for (std::size_t i = 0; i < segments.size();) {
                std::size_t end = EndOfRun(segments, curves[s], i);
                for (std::size_t k = i + 1; mTogether && k < end; ++k) {
                    end = nodes[s][k] != 0 ? k : end;
                }
                auto const from = curves[s].begin() + static_cast<std::ptrdiff_t>(i);
                auto const to = curves[s].begin() + static_cast<std::ptrdiff_t>(end);
                Run run = {{from, to}, !segments[i].IsCurve(), IsFiniteCurve(*from), {}};
                bool const turns = mTogether && run.isFinite && Turn(run);
                std::size_t number = mRuns.size();
                mRuns.push_back(std::move(run));
                if (mTogether && mRuns.back().isFinite) {
                    auto const found = known.insert({number, number});
                    if (!found.second) {
                        mRuns.pop_back();
                        number = found.first->second;
                    }
                }
                mSubpaths[s].uses.push_back({number, i, turns});
                i = end;
            }
        }
    }
    /// The end of the elements that continue element `i`, one after the other.
    static std::size_t EndOfRun(std::vector<PathSegment> const& segments,
                                std::vector<Cubic> const& curves, std::size_t i) {
        std::size_t end = i + 1;
        if (!IsFiniteCurve(curves[i])) {
            return end;
        }
        bool const isCurve = segments[i].IsCurve();
        double const most = isCurve ? kSmooth : kStraight;
        while (end < segments.size() && segments[end].IsCurve() == isCurve &&
               IsFiniteCurve(curves[end]) && segments[end].start == segments[end - 1].end &&
               Continues(-StartDirection(trammel_detail::Reversed(curves[end - 1])),
                         StartDirection(curves[end]), most)) {
            ++end;
        }
        return end;
    }
    /// Turns a run round if it is the lesser one then. Returns true if so.
    static bool Turn(Run& run) {
        std::vector<Cubic> turned;
        turned.reserve(run.curves.size());
        for (std::size_t k = run.curves.size(); k-- > 0;) {
            turned.push_back(trammel_detail::Reversed(run.curves[k]));
        }
        for (std::size_t k = 0; k < turned.size(); ++k) {
            int const order = trammel_detail::CompareCurves(turned[k], run.curves[k]);
            if (order != 0) {
                if (order < 0) {
                    run.curves = std::move(turned);
                }
                return order < 0;
            }
        }
        return false;
    }

    /// Adds pieces for the elements from `first` to `end`, each as long as possible.
    void AddPieces(Run const& run, std::size_t first, std::size_t end,
                   std::vector<Piece>& pieces) const {
        while (first < end) {
            Piece piece = {first, first + 1, run.curves[first], 0.0, true};
            if (run.isFinite && end - first > 1) {
                run.isLine ? FindLine(run, end, piece) : FindCurve(run, end, piece);
            }
            pieces.push_back(piece);
            first = piece.to;
        }
    }
    /// Looks for the longest run from the piece's start on that becomes one curve.
    void FindCurve(Run const& run, std::size_t end, Piece& piece) const {
        std::size_t const first = piece.from;
        CurveRun fits(run.curves, first, mTolerance);
        LongestRun(end - first, [&](std::size_t n) {
            Cubic fit;
            double distance = 0.0;
            bool const isFit = fits.FitUpTo(first + n - 1, fit, distance) &&
                               trammel_detail::IsFinite(fit[1] * (1.0 / mScale)) &&
                               trammel_detail::IsFinite(fit[2] * (1.0 / mScale));
            if (isFit) {
                piece.to = first + n;
                piece.c = fit;
                piece.distance = distance;
            }
            return isFit;
        });
    }
    /// Looks for the longest run from the piece's start on that becomes one line.
    void FindLine(Run const& run, std::size_t end, Piece& piece) const {
        std::size_t const first = piece.from;
        StrokePoints stroke;
        stroke.Add(run.curves[first][0]);
        std::size_t horizontal = end; // the first one that is
        std::size_t vertical = end;
        LongestRun(end - first, [&](std::size_t n) {
            while (stroke.at.size() <= n) {
                std::size_t const i = first + stroke.at.size() - 1;
                Cubic const& c = run.curves[i];
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
            if (match.fits) {
                piece.to = first + n;
                piece.c = {a, a, b, b};
                piece.distance = match.distance;
            }
            return match.fits;
        });
    }

    /// Halves the marked pieces of a run, or gives their elements back.
    void Refine(Run& run, std::vector<char> const& marks, bool wholly) const {
        if (std::find(marks.begin(), marks.end(), char{1}) == marks.end()) {
            return;
        }
        std::vector<Piece> const old = std::move(run.pieces);
        run.pieces.clear();
        for (std::size_t k = 0; k < old.size(); ++k) {
            Piece const& piece = old[k];
            if (marks[k] == 0) {
                run.pieces.push_back(piece);
            } else if (wholly) {
                for (std::size_t i = piece.from; i < piece.to; ++i) {
                    run.pieces.push_back({i, i + 1, run.curves[i], 0.0, true});
                }
            } else {
                std::size_t const middle = piece.from + (piece.to - piece.from) / 2;
                AddPieces(run, piece.from, middle, run.pieces);
                AddPieces(run, middle, piece.to, run.pieces);
            }
        }
    }

    /// Marks the pieces for several elements that may meet others or themselves, or may have
    /// passed another run.
    void Mark(PieceMarks& marks) {
        for (Run const& run : mRuns) {
            marks.AddChain(run.pieces.size());
        }
        std::vector<HulledPiece> const pieces = FinitePieces();
        MarkLoops(pieces, marks);
        MarkMeeting(pieces, marks);
        MarkPassed(pieces, marks);
        for (Run& run : mRuns) {
            for (Piece& piece : run.pieces) {
                piece.isNew = false;
            }
        }
    }
    Piece const& PieceAt(PiecePlace const& place) const {
        return mRuns[place.chain].pieces[place.piece];
    }
    /// Where a piece is, and the hull of its control points.
    struct HulledPiece {
        PiecePlace place;
        Box hull;
    };
    /// Returns all pieces of finite runs.
    std::vector<HulledPiece> FinitePieces() const {
        std::vector<HulledPiece> pieces;
        for (std::size_t r = 0; r < mRuns.size(); ++r) {
            for (std::size_t k = 0; mRuns[r].isFinite && k < mRuns[r].pieces.size(); ++k) {
                pieces.push_back({{r, k}, trammel_detail::HullBox(mRuns[r].pieces[k].c)});
            }
        }
        return pieces;
    }
    /// Marks the new pieces that may meet themselves.
    void MarkLoops(std::vector<HulledPiece> const& pieces, PieceMarks& marks) const {
        for (HulledPiece const& at : pieces) {
            Piece const& piece = PieceAt(at.place);
            if (!piece.IsElement() && piece.isNew &&
                !trammel_detail::IsFreeOfLoops(piece.c, mMargin)) {
                marks.Mark(at.place);
            }
        }
    }
    /// Marks the pieces that may meet others, one of the two being new.
    void MarkMeeting(std::vector<HulledPiece> const& pieces, PieceMarks& marks) const {
        std::vector<Box> boxes;
        boxes.reserve(pieces.size());
        for (HulledPiece const& at : pieces) {
            boxes.push_back(at.hull.Widened(mMargin, mMargin));
        }
        trammel_detail::BoxTree(boxes).ForMeetingPairs([&](std::size_t i, std::size_t j) {
            Piece const& a = PieceAt(pieces[i].place);
            Piece const& b = PieceAt(pieces[j].place);
            if ((a.IsElement() && b.IsElement()) || (!a.isNew && !b.isNew) ||
                trammel_detail::AreApart(a.c, b.c, mMargin)) {
                return;
            }
            if (!a.IsElement()) {
                marks.Mark(pieces[i].place);
            }
            if (!b.IsElement()) {
                marks.Mark(pieces[j].place);
            }
        });
    }
    /// Marks the pieces that may have passed another run: that run's middle may lie on either side.
    void MarkPassed(std::vector<HulledPiece> const& pieces, PieceMarks& marks) {
        std::vector<Box> wide; // of what may have passed the piece, or the piece
        for (HulledPiece const& at : pieces) {
            Piece const& piece = PieceAt(at.place);
            double const reach = piece.IsElement() ? 0.0 : 2.0 * mTolerance + mMargin;
            wide.push_back(at.hull.Widened(reach, reach));
        }
        std::vector<Pt> middles;
        std::vector<Box> middleBoxes;
        std::vector<double> distances;
        for (Run const& run : mRuns) {
            Pt const p = trammel_detail::PlaceAt(run.curves[run.curves.size() / 2], 0.5).point;
            middles.push_back(p);
            middleBoxes.push_back(run.isFinite ? Box::Of(p.h, p.v, p.h, p.v) : Box::Of(0, 0, 0, 0));
            distances.push_back(run.Distance());
        }
        mTested.resize(mRuns.size(), 0.0);
        trammel_detail::BoxTree const tree(wide);
        tree.ForMeeting(trammel_detail::BoxTree(middleBoxes), [&](std::size_t i, std::size_t r) {
            PiecePlace const& p = pieces[i].place;
            Run const& run = mRuns[p.chain];
            Run const& other = mRuns[r];
            Piece const& piece = PieceAt(p);
            bool const isTested = !piece.isNew && distances[r] <= mTested[r];
            if (piece.IsElement() || isTested || r == p.chain || !other.isFinite ||
                other.Start() == run.Start() || other.Start() == run.End() ||
                other.End() == run.Start() || other.End() == run.End()) {
                return;
            }
            double const reach = piece.distance + distances[r] + mMargin;
            if (!trammel_detail::KeepsAway(piece.c, middles[r], reach)) {
                marks.Mark(p);
            }
        });
        mTested = std::move(distances);
    }

    void AddSubpath(Part const& part, trammel_detail::ElementAppender& out) const {
        out.Move(part.start);
        for (Use const& use : part.uses) {
            Run const& run = mRuns[use.run];
            std::size_t const count = run.curves.size();
            for (std::size_t i = 0; i < run.pieces.size(); ++i) {
                Piece const& piece = run.pieces[use.isReversed ? run.pieces.size() - 1 - i : i];
                std::size_t const end = use.isReversed ? count - piece.from : piece.to;
                PathSegment const& last = part.segments[use.first + end - 1];
                if (last.kind == kPathClose && part.closes) {
                    out.Close();
                } else if (run.isLine) {
                    out.Line(last.end);
                } else if (piece.IsElement()) {
                    out.Curve(last.control1, last.control2, last.end);
                } else {
                    Pt const one = piece.c[use.isReversed ? 2 : 1] * (1.0 / mScale);
                    Pt const two = piece.c[use.isReversed ? 1 : 2] * (1.0 / mScale);
                    out.Curve(one, two, last.end);
                }
            }
        }
    }

    bool mTogether;
    double mScale = 1.0;
    double mTolerance = 0.0;
    double mMargin = 0.0;
    std::vector<std::vector<std::size_t>> mOutlines; ///< their subpaths
    std::vector<Part> mSubpaths;
    std::vector<Run> mRuns;
    /// The runs' distances when MarkPassed() tested the pieces. A run that is halved may have a
    /// greater one, and then all pieces are tested against it again.
    std::vector<double> mTested;
};

double Usable(double tolerance) { return tolerance > 0.0 ? tolerance : 0.0; }

} // namespace

double Simplify(CPath const& outline, double tolerance, CPath& out) {
    OutlineSimplifier const simplifier({&outline}, Usable(tolerance), false);
    out = simplifier.Result(0);
    return std::min(simplifier.Distance(), Usable(tolerance));
}

double Simplify(CPath const& outline, double tolerance, NewCrossings crossings, CPath& out) {
    OutlineSimplifier simplifier({&outline}, Usable(tolerance), true);
    if (crossings == NewCrossings::kAvoid) {
        simplifier.AvoidCrossings();
    }
    out = simplifier.Result(0);
    return std::min(simplifier.Distance(), Usable(tolerance));
}

double SimplifyOutlines(std::vector<CPath> const& outlines, double tolerance,
                        NewCrossings crossings, std::vector<CPath>& out) {
    std::vector<CPath const*> each;
    each.reserve(outlines.size());
    for (CPath const& outline : outlines) {
        each.push_back(&outline);
    }
    OutlineSimplifier simplifier(each, Usable(tolerance), true);
    if (crossings == NewCrossings::kAvoid) {
        simplifier.AvoidCrossings();
    }
    std::vector<CPath> result;
    result.reserve(outlines.size());
    for (std::size_t i = 0; i < outlines.size(); ++i) {
        result.push_back(simplifier.Result(i));
    }
    out = std::move(result);
    return std::min(simplifier.Distance(), Usable(tolerance));
}

} // namespace trammel
