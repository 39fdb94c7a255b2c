// SPDX-License-Identifier: MIT

#include "OutlineLift_p.h"

#include "Nesting_p.h"
#include "PointMath_p.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;
using trammel::ElementSource;

} // namespace

FlatOutlines::FlatOutlines(OutlineArcs& from) : arcs(from) {
    if (!from.HasCurves()) {
        std::size_t contour = 0;
        for (std::size_t i = 0; i < from.elements.size(); ++i) {
            points.push_back(from.elements[i].c[0]);
            edges.push_back({static_cast<Index>(i), kNoIndex, 0, 0.0, 1.0});
            if (i + 1 == from.contours[contour].end) {
                ends.push_back(i + 1);
                ++contour;
            }
        }
        return;
    }
    parts.emplace(from);
    while (parts->IsIncomplete() && from.Coarsen()) {
        parts.emplace(from);
    }
    edges.reserve(2 * from.uses.size());
    points.reserve(2 * from.uses.size());
    ends.reserve(from.contours.size());
    std::size_t i = 0;
    for (UseContour const& contour : from.contours) {
        for (; i < contour.end; ++i) {
            ArcUse const& use = from.uses[i];
            std::size_t const begin = parts->Begin(use.arc);
            std::size_t const end = parts->End(use.arc);
            auto const parameter = [&](std::size_t k) {
                double const t = parts->ParameterAt(use.arc, k);
                double const along = use.reversed ? 1.0 - t : t;
                return along == 1.0 ? use.to : use.from + (use.to - use.from) * along;
            };
            for (std::size_t n = 0; n < end - begin; ++n) {
                std::size_t const part = use.reversed ? end - 1 - n : begin + n;
                std::size_t const first = use.reversed ? part + 1 : part;
                points.push_back(from.vertices.Place(parts->VertexAt(use.arc, first)));
                edges.push_back({use.element, use.arc, static_cast<Index>(part), parameter(first),
                                 parameter(use.reversed ? part : part + 1)});
            }
        }
        ends.push_back(edges.size());
    }
    if (edges.size() >= kNoIndex / 4) {
        throw std::bad_alloc();
    }
}

void FlatOutlines::AddTo(BooleanOperand& operand, std::uint32_t number, std::uint32_t owner) const {
    for (std::size_t i = 0; i < ends.size(); ++i) {
        std::size_t const begin = i == 0 ? 0 : ends[i - 1];
        if (arcs.contours[i].operand == number && ends[i] > begin) {
            operand.Add(&points[begin].v, ends[i] - begin, owner);
        }
    }
}

void FlatOutlines::AddAll(BooleanOperand& operand) const {
    for (std::size_t i = 0; i < ends.size(); ++i) {
        std::size_t const begin = i == 0 ? 0 : ends[i - 1];
        if (ends[i] > begin) {
            operand.Add(&points[begin].v, ends[i] - begin, arcs.contours[i].operand);
        }
    }
}

namespace {

/// A run of edges of a result that come from one element in one direction.
struct Run {
    Index element; ///< kNoIndex for a line that was put in
    bool curve;    ///< whether it is a part of a curve, else a line
    bool firm;     ///< whether the vertex before it stays whatever comes
    double from;
    double to;
    Pt end;
};

/// The work of LiftResult().
class Lift {
public:
    Lift(WindingResult const& result, FlatOutlines const& flat, CPath& path,
         std::vector<ElementSource>* sources)
        : mResult(result), mLines(result.resolved.contours), mFlat(flat), mPath(path),
          mSources(sources) {}

    void Do();

private:
    /// A contour that is ready to be written.
    struct Contour {
        std::size_t index;
        Index first;       ///< the edge of the operands that decides about its place
        std::size_t start; ///< the point where it begins
    };

    FlatEdge const& EdgeAt(std::size_t i) const { return mFlat.edges[EdgeOf(mLines.origins[i])]; }
    std::size_t NextOf(std::size_t i, std::size_t contour) const {
        return i + 1 < mLines.End(contour) ? i + 1 : mLines.Begin(contour);
    }
    Pt PlaceOf(std::size_t i) const {
        Pt p;
        mResult.grid.ToDoubles(mLines.points[i], p.v, p.h);
        return p;
    }
    void FindWhole();
    void FindShared();
    void MarkContacts();
    void MarkPresent(ArcStretch const& stretch, bool& any, bool mark);
    double ParameterOnLine(FlatEdge const& edge, Pt const& p) const;
    Run RunAt(std::size_t i, std::size_t contour, bool backwards) const;
    bool Continues(Run const& run, Run const& next) const;
    bool IsSliver(std::size_t contour) const;
    void Write(Contour const& contour, bool backwards);
    void WriteRun(Run const& run, Pt const& start);
    void AddSource(ElementSource const& source) {
        if (mSources != nullptr) {
            mSources->push_back(source);
        }
    }

    WindingResult const& mResult;
    GridLines const& mLines;
    FlatOutlines const& mFlat;
    CPath& mPath;
    std::vector<ElementSource>* mSources;
    std::vector<Pt> mPlaces;    // by point of the result
    std::vector<char> mWhole;   // by edge: whether it is a whole edge of the operands
    std::vector<char> mShared;  // by point: whether another contour has it
    std::vector<char> mPresent; // by part: 1 if it is in the result, 2 if it stays a line
    std::vector<Run> mRuns;     // of one contour
};

/// Notes which edges of the result are edges of the operands from end to end.
void Lift::FindWhole() {
    std::size_t const count = mLines.points.size();
    mPlaces.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        mPlaces.push_back(PlaceOf(i));
    }
    mWhole.resize(count);
    std::size_t contour = 0;
    for (std::size_t i = 0; i < count; ++i) {
        while (i >= mLines.End(contour)) {
            ++contour;
        }
        Origin const origin = mLines.origins[i];
        std::size_t const edge = EdgeOf(origin);
        auto const place = std::upper_bound(mFlat.ends.begin(), mFlat.ends.end(), edge);
        std::size_t const begin = place == mFlat.ends.begin() ? 0 : *(place - 1);
        Pt const& a = mFlat.points[edge];
        Pt const& b = mFlat.points[edge + 1 < *place ? edge + 1 : begin];
        Pt const& start = mPlaces[i];
        Pt const& end = mPlaces[NextOf(i, contour)];
        mWhole[i] = (IsReversed(origin) ? start == b && end == a : start == a && end == b) ? 1 : 0;
    }
}

/// Notes the points that several contours have. They stay vertices, so that contours do not cross
/// there.
void Lift::FindShared() {
    std::size_t const count = mLines.points.size();
    mShared.assign(count, 0);
    if (mLines.Count() < 2) {
        return;
    }
    std::vector<std::size_t> order(count);
    for (std::size_t i = 0; i < count; ++i) {
        order[i] = i;
    }
    auto const less = [&](std::size_t i, std::size_t j) {
        GridPoint const a = mLines.points[i];
        GridPoint const b = mLines.points[j];
        return a.x != b.x ? a.x < b.x : a.y < b.y;
    };
    std::sort(order.begin(), order.end(), less);
    for (std::size_t i = 1; i < count; ++i) {
        if (!less(order[i - 1], order[i])) {
            mShared[order[i - 1]] = mShared[order[i]] = 1;
        }
    }
}

void Lift::MarkPresent(ArcStretch const& stretch, bool& any, bool mark) {
    CertifiedParts const& parts = *mFlat.parts;
    std::size_t low = parts.Begin(stretch.arc);
    std::size_t high = parts.End(stretch.arc);
    std::size_t const end = high;
    while (low < high) {
        std::size_t const middle = (low + high) / 2;
        if (parts.ParameterAt(stretch.arc, middle + 1) <= stretch.from) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    for (; low < end && parts.ParameterAt(stretch.arc, low) < stretch.to; ++low) {
        any = any || mPresent[low] != 0;
        if (mark && mPresent[low] != 0) {
            mPresent[low] = 2;
        }
    }
}

/// Finds the parts that stay lines: those in a contact with others that the result has, too.
void Lift::MarkContacts() {
    if (!mFlat.parts) {
        return;
    }
    mPresent.assign(mFlat.parts->Count(), 0);
    for (std::size_t i = 0; i < mLines.points.size(); ++i) {
        mPresent[EdgeAt(i).part] = 1;
    }
    for (ArcContact const& contact : mFlat.parts->Contacts()) {
        bool a = false;
        bool b = false;
        MarkPresent(contact.a, a, false);
        MarkPresent(contact.b, b, false);
        if (a && b) {
            MarkPresent(contact.a, a, true);
            MarkPresent(contact.b, b, true);
        }
    }
}

/// Returns the parameter of a line's point.
double Lift::ParameterOnLine(FlatEdge const& edge, Pt const& p) const {
    Cubic const& c = mFlat.arcs.elements[edge.element].c;
    WorkFrame const& frame = mFlat.arcs.Frame();
    Pt const start = frame.ToWork(c[0]);
    Pt const chord = frame.ToWork(c[3]) - start;
    double const t = Dot(frame.ToWork(p) - start, chord) / Square(chord);
    return std::min(std::max(t, 0.0), 1.0);
}

/// Returns the run of the edge from point `i` on, or of the edge before it the other way.
Run Lift::RunAt(std::size_t i, std::size_t contour, bool backwards) const {
    std::size_t const next = NextOf(i, contour);
    std::size_t const first = backwards ? next : i;
    std::size_t const last = backwards ? i : next;
    FlatEdge const& edge = EdgeAt(i);
    OutlineElement const& element = mFlat.arcs.elements[edge.element];
    bool const reversed = IsReversed(mLines.origins[i]) != backwards;
    Run run{edge.element, element.curve, mShared[first] != 0, edge.from, edge.to, mPlaces[last]};
    if (reversed) {
        std::swap(run.from, run.to);
    }
    if (element.curve) {
        if (mWhole[i] == 0 || mPresent[edge.part] == 2) {
            run.element = kNoIndex;
            run.curve = false;
        }
    } else if (mWhole[i] == 0) {
        Cubic const& c = element.c;
        auto const at = [&](Pt const& p) {
            return p == c[0] ? 0.0 : p == c[3] ? 1.0 : ParameterOnLine(edge, p);
        };
        run.from = at(mPlaces[first]);
        run.to = at(mPlaces[last]);
    }
    return run;
}

/// True when the next run goes on where this one ends.
bool Lift::Continues(Run const& run, Run const& next) const {
    return !next.firm && run.element != kNoIndex && run.element == next.element &&
           (run.from < run.to) == (next.from < next.to) &&
           (run.to == next.from || (!run.curve && std::abs(run.to - next.from) <= 0x1p-40));
}

/// True when a contour lies between two lines no farther apart than the reach. So do the contours
/// within it. Each of its points is that near to an outline, and may be on either side.
bool Lift::IsSliver(std::size_t contour) const {
    if (!mFlat.parts) {
        return false; // the polygon engine is exact
    }
    std::size_t const begin = mLines.Begin(contour);
    std::size_t const end = mLines.End(contour);
    WorkFrame const& frame = mFlat.arcs.Frame();
    Pt const start = frame.ToWork(mPlaces[begin]);
    Pt farthest;
    for (std::size_t i = begin + 1; i < end; ++i) {
        Pt const way = frame.ToWork(mPlaces[i]) - start;
        farthest = Square(way) > Square(farthest) ? way : farthest;
    }
    double low = 0.0;
    double high = 0.0;
    for (std::size_t i = begin + 1; i < end; ++i) {
        double const beside = Cross(farthest, frame.ToWork(mPlaces[i]) - start);
        low = std::min(low, beside);
        high = std::max(high, beside);
    }
    return high - low <= mFlat.arcs.Reach() * std::sqrt(Square(farthest));
}

void Lift::WriteRun(Run const& run, Pt const& start) {
    if (run.element == kNoIndex) {
        mPath.AddCtl(kPathLine).AddPt(run.end);
        AddSource({});
        return;
    }
    OutlineElement const& element = mFlat.arcs.elements[run.element];
    AddSource({element.operand, element.segment, run.from, run.to});
    if (!run.curve) {
        mPath.AddCtl(kPathLine).AddPt(run.end);
        return;
    }
    bool const reversed = run.from > run.to;
    Cubic const& whole = element.c;
    if (run.from + run.to == 1.0 && std::abs(run.from - run.to) == 1.0 &&
        start == whole[reversed ? 3 : 0] && run.end == whole[reversed ? 0 : 3]) {
        mPath.AddCtl(kPathCurve).AddPt(whole[reversed ? 2 : 1]).AddPt(whole[reversed ? 1 : 2]);
        mPath.AddPt(run.end);
        return;
    }
    WorkFrame const& frame = mFlat.arcs.Frame();
    Cubic part = PartOf({frame.ToWork(whole[0]), frame.ToWork(whole[1]), frame.ToWork(whole[2]),
                         frame.ToWork(whole[3])},
                        std::min(run.from, run.to), std::max(run.from, run.to));
    if (reversed) {
        part = Reversed(part);
    }
    MoveEnds(part, frame.ToWork(start), frame.ToWork(run.end));
    mPath.AddCtl(kPathCurve).AddPt(frame.FromWork(part[1])).AddPt(frame.FromWork(part[2]));
    mPath.AddPt(run.end);
}

void Lift::Write(Contour const& contour, bool backwards) {
    std::size_t const begin = mLines.Begin(contour.index);
    std::size_t const count = mLines.End(contour.index) - begin;
    mRuns.clear();
    std::size_t at = contour.start;
    for (std::size_t k = 0; k < count; ++k) {
        if (backwards) {
            at = at > begin ? at - 1 : begin + count - 1;
        }
        Run const run = RunAt(at, contour.index, backwards);
        if (!backwards) {
            at = at + 1 < begin + count ? at + 1 : begin;
        }
        if (!mRuns.empty() && Continues(mRuns.back(), run)) {
            mRuns.back().to = run.to;
            mRuns.back().end = run.end;
        } else {
            mRuns.push_back(run);
        }
    }
    if (mRuns.size() > 1 && Continues(mRuns.back(), mRuns.front())) {
        // The contour begins within an element that goes on at its end.
        Run& first = mRuns.front();
        first.from = mRuns.back().from;
        first.firm = mRuns.back().firm;
        mRuns.pop_back();
    }
    Pt const start = mRuns.back().end;
    mPath.AddCtl(kPathMove).AddPt(start);
    AddSource({});
    Pt last = start;
    bool const closesWithLine = !mRuns.back().curve && mRuns.size() > 1;
    for (std::size_t k = 0; k + (closesWithLine ? 1 : 0) < mRuns.size(); ++k) {
        WriteRun(mRuns[k], last);
        last = mRuns[k].end;
    }
    mPath.AddCtl(kPathClose);
    Run const& closing = mRuns.back();
    if (closesWithLine && closing.element != kNoIndex) {
        OutlineElement const& element = mFlat.arcs.elements[closing.element];
        AddSource({element.operand, element.segment, closing.from, closing.to});
    } else {
        AddSource({});
    }
}

void Lift::Do() {
    if (mLines.Count() == 0) {
        return;
    }
    FindWhole();
    FindShared();
    MarkContacts();
    // Contours are in the order of their first edges. Those with the greater part of their edges
    // against their sources' direction ask to be turned; holes go with the contour around them.
    std::vector<Contour> contours;
    std::vector<std::ptrdiff_t> against(mLines.Count(), 0);
    std::vector<std::size_t> const outers = OutersOf(mResult.resolved);
    for (std::size_t i = 0; i < mLines.Count(); ++i) {
        std::size_t first = mLines.Begin(i);
        for (std::size_t k = first; k < mLines.End(i); ++k) {
            against[outers[i]] += IsReversed(mLines.origins[k]) ? 1 : -1;
            if (EdgeOf(mLines.origins[k]) < EdgeOf(mLines.origins[first])) {
                first = k;
            }
        }
        contours.push_back({i, EdgeOf(mLines.origins[first]), first});
    }
    std::sort(contours.begin(), contours.end(), [](Contour const& a, Contour const& b) {
        return a.first != b.first ? a.first < b.first : a.index < b.index;
    });
    for (Contour& contour : contours) {
        if (IsSliver(contour.index)) {
            continue;
        }
        // It begins where its first edge does, as that runs in its operand.
        if (IsReversed(mLines.origins[contour.start])) {
            contour.start = NextOf(contour.start, contour.index);
        }
        Write(contour, against[outers[contour.index]] > 0);
    }
    mPath.mOpen = false;
}

} // namespace

void LiftResult(WindingResult const& result, FlatOutlines const& flat, CPath& path,
                std::vector<ElementSource>* sources) {
    Lift(result, flat, path, sources).Do();
}

} // namespace trammel_detail
