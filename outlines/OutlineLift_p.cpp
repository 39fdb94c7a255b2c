// SPDX-License-Identifier: MIT

#include "OutlineLift_p.h"

#include "Nesting_p.h"
#include "PointMath_p.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;
using trammel::ElementSource;

/// Rounding moves points of a result by less, in work units.
double const kRoundings = 0x1p-40;
/// Points become one, curves become one, and ends move with them: each by some reach.
double const kReaches = 4.0;
/// Lines in a contact are that near to the curve that replaces them, beside the reach.
double const kMended = 0x1p-8;

/// Returns which share of a line leads to a point, from its start. A line that is so small beside
/// the drawing that squares underflow has a share along its longer side.
double ShareOf(Pt const& way, Pt const& line) {
    double const square = Square(line);
    if (square >= std::numeric_limits<double>::min()) {
        return Dot(way, line) / square;
    }
    bool const level = std::abs(line.h) >= std::abs(line.v);
    double const whole = level ? line.h : line.v;
    return whole != 0.0 ? (level ? way.h : way.v) / whole : 0.0;
}

/// Returns the share of a use's parameters at a point of its arc, which the use may run through at
/// another pace.
double PaceAt(OutlineArcs const& arcs, ArcUse const& use, Pt const& p, double otherwise) {
    OutlineElement const& element = arcs.elements[use.element];
    WorkFrame const& frame = arcs.Frame();
    Cubic const c = {frame.ToWork(element.c[0]), frame.ToWork(element.c[1]),
                     frame.ToWork(element.c[2]), frame.ToWork(element.c[3])};
    double t = otherwise;
    if (element.curve) {
        FindOnMonotone(PartOf(c, use.from, use.to), false, p, kReaches * arcs.Reach(), t);
    } else {
        t = (ShareOf(p - c[0], c[3] - c[0]) - use.from) / (use.to - use.from);
    }
    return std::min(std::max(t, 0.0), 1.0);
}

} // namespace

double WorkDistanceOfLines(WorkFrame const& frame) { return kRoundings + 4.0 * frame.Spacing(); }

FlatOutlines::FlatOutlines(OutlineArcs& from) : arcs(from) {
    // Edges and points go by the same numbers, so an open line has another edge at its end.
    auto const finish = [&](UseContour const& contour, Pt const& end) {
        if (contour.open && !edges.empty()) {
            points.push_back(end);
            edges.push_back(edges.back());
        }
        std::size_t const begin = ends.empty() ? 0 : ends.back();
        if (edges.size() > begin) {
            edges.back().next = static_cast<Index>(begin);
        }
        ends.push_back(edges.size());
    };
    if (!from.HasCurves()) {
        std::size_t i = 0;
        for (UseContour const& contour : from.contours) {
            for (; i < contour.end; ++i) {
                points.push_back(from.elements[i].c[0]);
                edges.push_back(
                    {static_cast<Index>(i), kNoIndex, 0, static_cast<Index>(i + 1), 0.0, 1.0});
            }
            finish(contour, from.elements[i - 1].c[3]);
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
        std::size_t const first = edges.size();
        for (; i < contour.end; ++i) {
            ArcUse const& use = from.uses[i];
            std::size_t const begin = parts->Begin(use.arc);
            std::size_t const end = parts->End(use.arc);
            double last = 0.0;
            auto const parameter = [&](std::size_t k) {
                double const t = parts->ParameterAt(use.arc, k);
                double along = use.reversed ? 1.0 - t : t;
                if (!use.paced && k != begin && k != end) {
                    Pt const& place = from.vertices.WorkPlace(parts->VertexAt(use.arc, k));
                    along = PaceAt(from, use, place, along);
                    // Parameters do not decrease, even if a search ends beside another place.
                    along = along > last && along < 1.0 ? along : 0.5 * (last + 1.0);
                }
                last = along;
                return along == 1.0 ? use.to : use.from + (use.to - use.from) * along;
            };
            double start = parameter(use.reversed ? end : begin);
            for (std::size_t n = 0; n < end - begin; ++n) {
                std::size_t const part = use.reversed ? end - 1 - n : begin + n;
                std::size_t const before = use.reversed ? part + 1 : part;
                points.push_back(from.vertices.Place(parts->VertexAt(use.arc, before)));
                double const stop = parameter(use.reversed ? part : part + 1);
                edges.push_back({use.element, use.arc, static_cast<Index>(part),
                                 static_cast<Index>(points.size()), start, stop});
                start = stop;
            }
        }
        if (edges.size() == first) {
            ends.push_back(first);
            continue;
        }
        ArcUse const& use = from.uses[i - 1];
        OutlineArc const& last = from.arcs[use.arc];
        finish(contour, from.vertices.Place(use.reversed ? last.v0 : last.v1));
    }
    if (edges.size() >= kNoIndex / 4) {
        throw std::bad_alloc();
    }
}

double FlatOutlines::DistanceKept() const {
    double kept = WorkDistanceOfLines(arcs.Frame());
    if (parts) {
        kept += kReaches * arcs.Reach() + parts->GreatestHeight();
    }
    return arcs.Frame().LengthFromWork(kept);
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

void FlatOutlines::AddOpenTo(BooleanOperand& operand) const {
    for (std::size_t i = 0; i < ends.size(); ++i) {
        std::size_t const begin = i == 0 ? 0 : ends[i - 1];
        if (arcs.contours[i].open && ends[i] > begin) {
            operand.AddOpen(&points[begin].v, ends[i] - begin);
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
    ElementStretch chordOf = {kNoIndex, 0.0, 0.0}; ///< what a line in a contact stands for
};

/// The work of lifting lines of the polygon engine.
class Lift {
public:
    Lift(GridLines const& lines, ClipGrid const& grid, FlatOutlines const& flat)
        : mLines(lines), mGrid(grid), mFlat(flat) {}

    /// Appends to another path and other sources, which may be null, from here on.
    void SetTarget(CPath& path, std::vector<ElementSource>* sources) {
        mPath = &path;
        mSources = sources;
    }
    /// Writes contours to others instead.
    void SetTarget(StretchContours& contours) { mContours = &contours; }
    void LiftRegion(RegionContours const& region);
    void LiftStretches(OpenPieces const& pieces, bool inside);
    std::vector<LiftedFace> LiftRings(Faces const& faces);

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
        mGrid.ToDoubles(mLines.points[i], p.v, p.h);
        return p;
    }
    void FindWhole();
    void FindShared(std::size_t contours);
    Contour ContourAt(std::size_t contour) const;
    void MarkContacts();
    void MarkPresent(ArcStretch const& stretch, bool& any, bool mark);
    double ParameterOnLine(FlatEdge const& edge, Pt const& p) const;
    Run RunAt(std::size_t i, std::size_t contour, bool backwards) const;
    bool Continues(Run const& run, Run const& next) const;
    bool IsSliver(std::size_t contour) const;
    /// Returns the element of an operand that an edge is a part of.
    ElementStretch WholeOf(std::size_t edge) const {
        FlatEdge const& e = mFlat.edges[edge];
        return mFlat.arcs.OnWhole({e.element, e.from, e.to});
    }
    /// True when an edge of the result runs against the operand.
    bool IsAgainst(Origin origin) const {
        if (mFlat.arcs.IsWhole()) {
            return IsReversed(origin);
        }
        ElementStretch const whole = WholeOf(EdgeOf(origin));
        return IsReversed(origin) != (whole.from > whole.to);
    }
    bool ComesBefore(std::size_t edge, std::size_t other) const;
    bool ComesFirst(Contour const& a, Contour const& b) const {
        return a.first != b.first ? ComesBefore(a.first, b.first) : a.index < b.index;
    }
    void SortByOperands(std::vector<Contour>& contours) const {
        std::sort(contours.begin(), contours.end(),
                  [this](Contour const& a, Contour const& b) { return ComesFirst(a, b); });
    }
    void Take(Run const& run);
    void RestoreChords();
    void MendContacts();
    bool Mend(Run& before, Run const* lines, Run const* end, Run const& after) const;
    bool IsBeside(ElementStretch const& stretch, Pt const& start, Run const* lines,
                  Run const* end) const;
    void Write(Contour const& contour, bool backwards);
    void WriteClosed();
    void WriteOpen(Pt const& start);
    void WriteRun(Run const& run, Pt const& start);
    Cubic CurveOf(Run const& run, Pt const& start) const;
    void WriteStretches();
    /// Appends a code and the last of its points.
    void AddElement(char code, Pt const& end) {
        mPath->mCtls.push_back(code);
        mPath->mPts.push_back(end);
    }
    void AddSource(ElementSource const& source) {
        if (mSources != nullptr) {
            mSources->push_back(source);
        }
    }

    GridLines const& mLines;
    ClipGrid const& mGrid;
    FlatOutlines const& mFlat;
    CPath* mPath = nullptr;
    std::vector<ElementSource>* mSources = nullptr;
    StretchContours* mContours = nullptr; // takes contours instead of the path
    std::vector<Pt> mPlaces;              // by point of the result
    std::vector<char> mWhole;             // by edge: whether it is a whole edge of the operands
    std::vector<char> mShared;            // by point: whether another contour has it
    std::vector<char> mPresent;           // by part: 1 if it is in the result, 2 if it stays a line
    Pt mStretchStart;
    std::vector<Run> mRuns; // of one contour
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
        Pt const& a = mFlat.points[edge];
        Pt const& b = mFlat.points[mFlat.edges[edge].next];
        Pt const& start = mPlaces[i];
        Pt const& end = mPlaces[NextOf(i, contour)];
        mWhole[i] = (IsReversed(origin) ? start == b && end == a : start == a && end == b) ? 1 : 0;
    }
}

/// Notes the points that so many contours have. They stay vertices, so that contours do not cross
/// there.
void Lift::FindShared(std::size_t contours) {
    std::size_t const count = mLines.points.size();
    mShared.assign(count, 0);
    if (mLines.Count() < contours) {
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
    std::size_t first = 0; // of equal points
    for (std::size_t i = 0; i < count; ++i) {
        first = less(order[first], order[i]) ? i : first;
        if (i + 1 - first >= contours) {
            mShared[order[i]] = 1;
            mShared[order[first]] = 1;
        }
    }
    // The points between belong to the same place.
    for (std::size_t i = count; i-- > 1;) {
        if (mShared[order[i]] != 0 && !less(order[i - 1], order[i])) {
            mShared[order[i - 1]] = 1;
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
    double const t = ShareOf(frame.ToWork(p) - start, frame.ToWork(c[3]) - start);
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
            if (mWhole[i] != 0 && !mFlat.parts->IsIncomplete()) {
                run.chordOf = mFlat.arcs.OnWhole({run.element, run.from, run.to});
            }
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
    ElementStretch const whole = mFlat.arcs.OnWhole({run.element, run.from, run.to});
    run.element = whole.element;
    run.from = whole.from;
    run.to = whole.to;
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
    if (high - low > mFlat.arcs.Reach() * std::sqrt(Square(farthest))) {
        return false;
    }
    // A curve between two lines may bulge farther than its chord tells.
    for (std::size_t i = begin; i < end; ++i) {
        FlatEdge const& edge = EdgeAt(i);
        CertifiedParts const& parts = *mFlat.parts;
        OutlineArc const& arc = mFlat.arcs.arcs[edge.arc];
        if (!arc.straight && HeightBesideChord(PartOf(arc.c, parts.ParameterAt(edge.arc, edge.part),
                                                      parts.ParameterAt(edge.arc, edge.part + 1))) >
                                 mFlat.arcs.Reach()) {
            return false;
        }
    }
    return true;
}

/// Returns the curve of a run: its element, or a part of it.
Cubic Lift::CurveOf(Run const& run, Pt const& start) const {
    bool const reversed = run.from > run.to;
    Cubic const& whole = mFlat.arcs.Wholes()[run.element].c;
    if (run.from + run.to == 1.0 && std::abs(run.from - run.to) == 1.0 &&
        start == whole[reversed ? 3 : 0] && run.end == whole[reversed ? 0 : 3]) {
        return reversed ? Reversed(whole) : whole;
    }
    WorkFrame const& frame = mFlat.arcs.Frame();
    Cubic part = PartOf({frame.ToWork(whole[0]), frame.ToWork(whole[1]), frame.ToWork(whole[2]),
                         frame.ToWork(whole[3])},
                        std::min(run.from, run.to), std::max(run.from, run.to));
    if (reversed) {
        part = Reversed(part);
    }
    MoveEnds(part, frame.ToWork(start), frame.ToWork(run.end));
    return {start, frame.FromWork(part[1]), frame.FromWork(part[2]), run.end};
}

void Lift::WriteRun(Run const& run, Pt const& start) {
    if (run.element == kNoIndex) {
        AddElement(kPathLine, run.end);
        AddSource({});
        return;
    }
    OutlineElement const& element = mFlat.arcs.Wholes()[run.element];
    AddSource({element.operand, element.segment, run.from, run.to});
    if (!run.curve) {
        AddElement(kPathLine, run.end);
        return;
    }
    Cubic const curve = CurveOf(run, start);
    mPath->mPts.push_back(curve[1]);
    mPath->mPts.push_back(curve[2]);
    AddElement(kPathCurve, run.end);
}

/// Writes the runs as a contour of stretches.
void Lift::WriteStretches() {
    Pt start = mRuns.back().end;
    for (Run const& run : mRuns) {
        Cubic const c = run.curve ? CurveOf(run, start) : Cubic{start, run.end, run.end, run.end};
        mContours->elements.push_back({c, 0, 0, run.curve});
        bool const putIn = run.element == kNoIndex;
        mContours->stretches.push_back({run.element, putIn ? 0.0 : run.from, putIn ? 1.0 : run.to});
        start = run.end;
    }
    mContours->ends.push_back(mContours->elements.size());
}

/// Appends a run to those of the contour or stretch.
void Lift::Take(Run const& run) {
    if (!mRuns.empty() && Continues(mRuns.back(), run)) {
        mRuns.back().to = run.to;
        mRuns.back().end = run.end;
    } else {
        mRuns.push_back(run);
    }
}

/// Writes the runs as a contour that is closed.
void Lift::WriteClosed() {
    if (mRuns.size() > 1 && Continues(mRuns.back(), mRuns.front())) {
        // The contour begins within an element that goes on at its end.
        Run& first = mRuns.front();
        first.from = mRuns.back().from;
        first.firm = mRuns.back().firm;
        mRuns.pop_back();
    }
    if (mContours != nullptr) {
        WriteStretches();
        return;
    }
    bool const closesWithLine = !mRuns.back().curve && mRuns.size() > 1;
    Run const closing = mRuns.back();
    if (closesWithLine) {
        mRuns.pop_back();
    }
    WriteOpen(closing.end);
    mPath->mCtls.push_back(kPathClose);
    mPath->mOpen = false;
    if (closesWithLine && closing.element != kNoIndex) {
        OutlineElement const& element = mFlat.arcs.Wholes()[closing.element];
        AddSource({element.operand, element.segment, closing.from, closing.to});
    } else {
        AddSource({});
    }
}

/// Writes the runs as they follow each other from `start` on.
void Lift::WriteOpen(Pt const& start) {
    AddElement(kPathMove, start);
    mPath->mOpen = true;
    AddSource({});
    Pt last = start;
    for (Run const& run : mRuns) {
        WriteRun(run, last);
        last = run.end;
    }
    mPath->mCurrentPt = last;
}

/// True when lines from a point on, and a stretch of an element, run beside each other within a
/// small part of the reach.
bool Lift::IsBeside(ElementStretch const& stretch, Pt const& start, Run const* lines,
                    Run const* end) const {
    WorkFrame const& frame = mFlat.arcs.Frame();
    double const near = kMended * mFlat.arcs.Reach();
    Cubic const& whole = mFlat.arcs.Wholes()[stretch.element].c;
    Cubic part = PartOf({frame.ToWork(whole[0]), frame.ToWork(whole[1]), frame.ToWork(whole[2]),
                         frame.ToWork(whole[3])},
                        std::min(stretch.from, stretch.to), std::max(stretch.from, stretch.to));
    if (stretch.from > stretch.to) {
        part = Reversed(part);
    }
    MoveEnds(part, frame.ToWork(start), frame.ToWork(end[-1].end));
    double last = 0.0;
    for (; lines != end; ++lines) {
        double t = 1.0;
        bool const isLast = lines + 1 == end;
        if (!isLast && !FindOnMonotone(part, false, frame.ToWork(lines->end), near, t)) {
            return false;
        }
        if (t < last || HeightBesideChord(PartOf(part, last, t)) > near) {
            return false;
        }
        last = t;
    }
    return true;
}

/// Puts a stretch of an element in place of lines between two runs, if one run goes on as the
/// other. `before` becomes the run of all of them.
bool Lift::Mend(Run& before, Run const* lines, Run const* end, Run const& after) const {
    bool const isForward = before.from < before.to;
    if (!before.curve || before.element != after.element || after.firm ||
        isForward != (after.from < after.to) ||
        (isForward ? before.to > after.from : before.to < after.from) ||
        std::any_of(lines, end, [](Run const& line) { return line.firm; }) ||
        !IsBeside({before.element, before.to, after.from}, before.end, lines, end)) {
        return false;
    }
    before.to = after.to;
    before.end = after.end;
    return true;
}

/// Makes curves of a row of chords again if the polygon engine has cut none of them.
void Lift::RestoreChords() {
    auto const isPutIn = [](Run const& run) { return run.element == kNoIndex; };
    auto const isCut = [&](Run const& run) {
        return isPutIn(run) && run.chordOf.element == kNoIndex;
    };
    auto const first = std::find_if_not(mRuns.begin(), mRuns.end(), isPutIn);
    auto const turn = first - mRuns.begin();
    if (first == mRuns.end() || std::none_of(mRuns.begin(), mRuns.end(), isPutIn)) {
        return;
    }
    std::rotate(mRuns.begin(), first, mRuns.end());
    for (auto line = mRuns.begin(); line != mRuns.end();) {
        line = std::find_if(line, mRuns.end(), isPutIn);
        auto const end = std::find_if_not(line, mRuns.end(), isPutIn);
        bool const isWhole = std::none_of(line, end, isCut);
        for (; line != end; ++line) {
            if (isWhole) {
                line->element = line->chordOf.element;
                line->from = line->chordOf.from;
                line->to = line->chordOf.to;
                line->curve = true;
            }
        }
    }
    std::rotate(mRuns.begin(), mRuns.end() - turn, mRuns.end());
    std::vector<Run> runs;
    runs.swap(mRuns);
    for (Run const& run : runs) {
        Take(run);
    }
}

/// Takes lines that were put in out of a closed contour where it goes on as it came.
void Lift::MendContacts() {
    auto const isPutIn = [](Run const& run) { return run.element == kNoIndex; };
    auto const first = std::find_if_not(mRuns.begin(), mRuns.end(), isPutIn);
    if (first == mRuns.end() || std::none_of(mRuns.begin(), mRuns.end(), isPutIn)) {
        return;
    }
    auto const turn = first - mRuns.begin();
    std::rotate(mRuns.begin(), first, mRuns.end());
    std::size_t count = 1;  // of runs that are kept; lines after the last element among them
    std::size_t before = 0; // the last element
    for (std::size_t i = 1; i < mRuns.size(); ++i) {
        Run const run = mRuns[i];
        if (!isPutIn(run) && count > before + 1 &&
            Mend(mRuns[before], &mRuns[before + 1], mRuns.data() + count, run)) {
            count = before + 1;
            continue;
        }
        before = isPutIn(run) ? before : count;
        mRuns[count++] = run;
    }
    mRuns.resize(count);
    std::size_t const lines = count - 1 - before; // at the end
    Run last = mRuns[before];
    if (before > 0 && lines > 0 &&
        Mend(last, &mRuns[before + 1], mRuns.data() + count, mRuns.front())) {
        mRuns.resize(before);
        mRuns.front() = last;
    } else {
        auto const back = std::min(static_cast<std::ptrdiff_t>(lines), turn);
        std::rotate(mRuns.begin(), mRuns.end() - back, mRuns.end());
    }
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
        Take(RunAt(at, contour.index, backwards));
        if (!backwards) {
            at = at + 1 < begin + count ? at + 1 : begin;
        }
    }
    RestoreChords();
    MendContacts();
    WriteClosed();
}

/// True when the operands have an edge before another one.
bool Lift::ComesBefore(std::size_t edge, std::size_t other) const {
    if (mFlat.arcs.IsWhole()) {
        return edge < other;
    }
    ElementStretch const a = WholeOf(edge);
    ElementStretch const b = WholeOf(other);
    double const lowA = std::min(a.from, a.to);
    double const lowB = std::min(b.from, b.to);
    return a.element != b.element ? a.element < b.element
           : lowA != lowB         ? lowA < lowB
                                  : edge < other;
}

/// Returns a contour as it is to be written. It begins where its first edge does, as that runs in
/// its operand.
Lift::Contour Lift::ContourAt(std::size_t contour) const {
    std::size_t first = mLines.Begin(contour);
    for (std::size_t k = first; k < mLines.End(contour); ++k) {
        if (ComesBefore(EdgeOf(mLines.origins[k]), EdgeOf(mLines.origins[first]))) {
            first = k;
        }
    }
    return {contour, EdgeOf(mLines.origins[first]),
            IsAgainst(mLines.origins[first]) ? NextOf(first, contour) : first};
}

void Lift::LiftRegion(RegionContours const& region) {
    if (mLines.Count() == 0) {
        return;
    }
    FindWhole();
    FindShared(2);
    MarkContacts();
    if (mPath != nullptr) {
        mPath->mCtls.reserve(mLines.points.size() + 2 * mLines.Count());
        mPath->mPts.reserve(2 * mLines.points.size());
    }
    mRuns.reserve(mLines.points.size());
    // Contours are in the order of their first edges. Those with the greater part of their edges
    // against their sources' direction ask to be turned; holes go with the contour around them.
    std::vector<Contour> contours;
    contours.reserve(mLines.Count());
    std::vector<std::ptrdiff_t> against(mLines.Count(), 0);
    std::vector<std::size_t> const outers = OutersOf(region);
    for (std::size_t i = 0; i < mLines.Count(); ++i) {
        for (std::size_t k = mLines.Begin(i); k < mLines.End(i); ++k) {
            against[outers[i]] += IsAgainst(mLines.origins[k]) ? 1 : -1;
        }
        contours.push_back(ContourAt(i));
    }
    SortByOperands(contours);
    for (Contour const& contour : contours) {
        if (!IsSliver(contour.index)) {
            Write(contour, against[outers[contour.index]] > 0);
        }
    }
}

void Lift::LiftStretches(OpenPieces const& pieces, bool inside) {
    FindWhole();
    mShared.assign(mLines.points.size(), 0);
    mPresent.assign(mFlat.parts ? mFlat.parts->Count() : 0, 0);
    std::vector<std::pair<Index, std::size_t>> order; // by the lines' first edges
    for (std::size_t i = 0; i < mLines.Count(); ++i) {
        order.emplace_back(EdgeOf(mLines.origins[mLines.Begin(i)]), i);
    }
    std::sort(order.begin(), order.end());
    for (auto const& [edge, line] : order) {
        std::size_t const begin = mLines.Begin(line);
        std::size_t const end = mLines.End(line) - 1; // of edges
        auto const kept = [&](std::size_t i) { return (pieces.sides[i] != 0) == inside; };
        auto const place = std::upper_bound(mFlat.ends.begin(), mFlat.ends.end(), edge);
        bool const ring =
            mFlat.arcs.contours[static_cast<std::size_t>(place - mFlat.ends.begin())].ring &&
            mPlaces[begin] == mPlaces[end];
        // A ring begins behind a stretch that is left out, if there is one.
        std::size_t start = begin;
        while (ring && start < end && kept(start)) {
            ++start;
        }
        bool const whole = ring && start == end;
        start = start == end ? begin : start;
        mRuns.clear();
        for (std::size_t k = 0; k < end - begin; ++k) {
            std::size_t const at = start + k < end ? start + k : start + k - (end - begin);
            if (kept(at)) {
                if (mRuns.empty()) {
                    mStretchStart = mPlaces[at];
                }
                Take(RunAt(at, line, false));
            }
            if (!mRuns.empty() && !whole && (!kept(at) || k + 1 == end - begin)) {
                WriteOpen(mStretchStart);
                mRuns.clear();
            }
        }
        if (whole && !mRuns.empty()) {
            WriteClosed();
        }
    }
}

std::vector<LiftedFace> Lift::LiftRings(Faces const& faces) {
    std::vector<LiftedFace> lifted;
    if (mLines.Count() == 0) {
        return lifted;
    }
    FindWhole();
    FindShared(3); // each edge has a ring on either side
    MarkContacts();
    std::vector<std::size_t> const outers = OutersOf(faces.rings.resolved);
    std::vector<Contour> contours;
    std::vector<std::size_t> faceOf(mLines.Count(), mLines.Count()); // by outer ring
    for (std::size_t i = 0; i < mLines.Count(); ++i) {
        contours.push_back(ContourAt(i));
    }
    SortByOperands(contours);
    for (bool const holes : {false, true}) {
        for (Contour const& contour : contours) {
            std::size_t const ring = contour.index;
            if ((faces.rings.resolved.holes[ring] != 0) != holes || IsSliver(ring)) {
                continue;
            }
            if (!holes) {
                faceOf[ring] = lifted.size();
                lifted.push_back({CPath(), {}, ring});
            }
            std::size_t const face = faceOf[outers[ring]];
            if (face < lifted.size()) {
                SetTarget(lifted[face].outline, &lifted[face].sources);
                Write(contour, false);
            }
        }
    }
    return lifted;
}

} // namespace

void LiftResult(WindingResult const& result, FlatOutlines const& flat, CPath& path,
                std::vector<ElementSource>* sources) {
    Lift lift(result.resolved.contours, result.grid, flat);
    lift.SetTarget(path, sources);
    lift.LiftRegion(result.resolved);
}

void LiftResult(WindingResult const& result, FlatOutlines const& flat, StretchContours& contours) {
    Lift lift(result.resolved.contours, result.grid, flat);
    lift.SetTarget(contours);
    lift.LiftRegion(result.resolved);
}

void LiftOpen(OpenPieces const& pieces, bool inside, FlatOutlines const& flat, CPath& path,
              std::vector<ElementSource>* sources) {
    Lift lift(pieces.lines, pieces.grid, flat);
    lift.SetTarget(path, sources);
    lift.LiftStretches(pieces, inside);
}

std::vector<LiftedFace> LiftFaces(Faces const& faces, FlatOutlines const& flat) {
    return Lift(faces.rings.resolved.contours, faces.rings.grid, flat).LiftRings(faces);
}

} // namespace trammel_detail
