// SPDX-License-Identifier: MIT

#include "OutlineArcs_p.h"

#include "BoxTree_p.h"
#include "PathCursor.h"
#include "PointMath_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// Points and curves within this part of the drawing's size become one. Nearly coincident curves
/// farther apart than this are still cut into few enough parts.
double const kLeastReach = 0x1p-32;
/// However large the tolerance is, details larger than this part of the size stay.
double const kMostReach = 0x1p-10;
/// Rounding moves points by less, in work units.
double const kRounding = 0x1p-46;
/// The factor by which the reach grows where there is too much work.
double const kCoarser = 4.0;
/// Branches of a vertex are compared where the sine of the angle between them is less.
double const kTogether = 0x1p-8;
/// So many branches of a vertex are compared with each one.
std::size_t const kBranchesCompared = 8;
/// Curves are halved so often to tell whether they coincide.
int const kCoincidenceDepth = 6;
/// Up to so many boxes are compared by a sweep.
std::size_t const kFewBoxes = 256;
/// More are so, too, where a sweep looks at no more others for each of them.
std::size_t const kMostBeside = 48;

/// Returns the offset that makes coordinates from `low` to `high` small without rounding: by
/// Sterbenz' lemma none is needed elsewhere.
double OffsetFor(double low, double high) {
    if (low > 0.0) {
        return high / 2.0 <= low ? low : 0.0;
    }
    if (high < 0.0) {
        return low / 2.0 >= high ? high : 0.0;
    }
    return 0.0;
}

/// Adds the places in (0, 1) where one coordinate of a curve turns back, in their order. `d` has
/// the differences of the control points in this coordinate.
void AddTurns(double d0, double d1, double d2, std::array<double, 4>& turns, std::size_t& count) {
    if ((d0 >= 0.0 && d1 >= 0.0 && d2 >= 0.0) || (d0 <= 0.0 && d1 <= 0.0 && d2 <= 0.0)) {
        return;
    }
    double const a = d0 - 2.0 * d1 + d2;
    double const b = d1 - d0;
    double const discriminant = b * b - a * d0;
    if (!(discriminant > 0.0)) {
        return;
    }
    double const q = -(b + std::copysign(std::sqrt(discriminant), b));
    for (double const t : {q / a, d0 / q}) {
        if (t > 0.0 && t < 1.0) {
            std::size_t at = count++;
            for (; at > 0 && turns[at - 1] > t; --at) {
                turns[at] = turns[at - 1];
            }
            turns[at] = t;
        }
    }
}

void Straighten(Cubic& c) {
    Pt const third = (c[3] - c[0]) * (1.0 / 3.0);
    c[1] = c[0] + third;
    c[2] = c[3] - third;
}

} // namespace

WorkFrame::WorkFrame(Box<double> const& bounds)
    : mOffset(OffsetFor(bounds.lowX, bounds.highX), OffsetFor(bounds.lowY, bounds.highY)) {
    // Halves, as the differences may overflow.
    double const half =
        std::max(bounds.highX / 2.0 - bounds.lowX / 2.0, bounds.highY / 2.0 - bounds.lowY / 2.0);
    double const farthest = std::max(std::max(std::abs(bounds.lowX), std::abs(bounds.highX)),
                                     std::max(std::abs(bounds.lowY), std::abs(bounds.highY)));
    // An extent that is smaller than the rounding of a coordinate counts as that rounding.
    double const least = std::max(half, farthest * 0x1p-53);
    int exponent = 0;
    std::frexp(least, &exponent); // least < 2^exponent
    if (least == 0.0) {
        exponent = -1074; // half of the smallest number is rounded to 0
    }
    // The extent becomes 1 to 2. Subnormal numbers keep what they have.
    int const up = -exponent;
    int const first = up / 2;
    mUp = std::ldexp(1.0, first);
    mUpAgain = std::ldexp(1.0, up - first);
    mDown = std::ldexp(1.0, -first);
    mDownAgain = std::ldexp(1.0, first - up);
    mSpacing = std::max(LengthToWork(farthest * 0x1p-52), LengthToWork(0x1p-1074));
}

void VertexTable::Reset(WorkFrame const& frame, double reach, std::size_t expected) {
    mFrame = frame;
    mReach = reach;
    mPerCell = 1.0 / (8.0 * reach);
    mPlaces.clear();
    mWork.clear();
    mNext.clear();
    mPlaces.reserve(expected);
    mWork.reserve(expected);
    mNext.reserve(expected);
    std::size_t size = 64;
    while (size < 2 * expected) {
        size *= 2;
    }
    mSlots.assign(size, {0, 0, kNoIndex});
    mUsed = 0;
}

std::size_t VertexTable::SlotOf(std::int64_t x, std::int64_t y) const {
    std::uint64_t const mixed = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15U +
                                static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4FU;
    std::size_t const mask = mSlots.size() - 1;
    std::size_t slot =
        static_cast<std::size_t>((mixed ^ (mixed >> 29U)) * 0xBF58476D1CE4E5B9U >> 20U) & mask;
    while (mSlots[slot].first != kNoIndex && (mSlots[slot].x != x || mSlots[slot].y != y)) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

Index VertexTable::FindInSlot(std::size_t slot, Pt const& work) const {
    Index vertex = mSlots[slot].first;
    while (vertex != kNoIndex && (std::abs(mWork[vertex].h - work.h) > mReach ||
                                  std::abs(mWork[vertex].v - work.v) > mReach)) {
        vertex = mNext[vertex];
    }
    return vertex;
}

void VertexTable::Grow() {
    std::vector<Entry> old(mSlots.size() * 2, {0, 0, kNoIndex});
    old.swap(mSlots);
    for (Entry const& entry : old) {
        if (entry.first != kNoIndex) {
            mSlots[SlotOf(entry.x, entry.y)] = entry;
        }
    }
}

Index VertexTable::At(Pt const& p) {
    Pt const work = mFrame.ToWork(p);
    // Truncation is faster than std::floor().
    auto const cell = [&](double w) {
        double const x = w * mPerCell;
        auto const whole = static_cast<std::int64_t>(x);
        return x < static_cast<double>(whole) ? whole - 1 : whole;
    };
    std::int64_t const x0 = cell(work.h - mReach);
    std::int64_t const x1 = cell(work.h + mReach);
    std::int64_t const y0 = cell(work.v - mReach);
    std::int64_t const y1 = cell(work.v + mReach);
    std::size_t slot = 0;
    for (std::int64_t x = x0; x <= x1; ++x) {
        for (std::int64_t y = y0; y <= y1; ++y) {
            slot = SlotOf(x, y);
            Index const found = FindInSlot(slot, work);
            if (found != kNoIndex) {
                return found;
            }
        }
    }
    std::int64_t const x = cell(work.h);
    std::int64_t const y = cell(work.v);
    if (x0 != x1 || y0 != y1) {
        slot = SlotOf(x, y);
    }
    Index const vertex = AddApart(work);
    mPlaces[vertex] = p;
    if (mSlots[slot].first == kNoIndex) {
        if (2 * ++mUsed > mSlots.size()) {
            Grow();
            slot = SlotOf(x, y);
        }
        mSlots[slot] = {x, y, kNoIndex};
    }
    mNext[vertex] = mSlots[slot].first;
    mSlots[slot].first = vertex;
    return vertex;
}

Index VertexTable::AddApart(Pt const& work) {
    if (mWork.size() >= kNoIndex) {
        throw std::bad_alloc();
    }
    mPlaces.push_back(mFrame.FromWork(work));
    mWork.push_back(mFrame.ToWork(mPlaces.back()));
    mNext.push_back(kNoIndex);
    return static_cast<Index>(mWork.size() - 1);
}

double HeightBesideChord(Cubic const& c) {
    Pt const chord = c[3] - c[0];
    double const length = std::sqrt(Square(chord));
    if (!(length > 0.0)) {
        return std::sqrt(std::max(Square(c[1] - c[0]), Square(c[2] - c[0])));
    }
    return std::max(std::abs(Cross(chord, c[1] - c[0])), std::abs(Cross(chord, c[2] - c[0]))) /
           length;
}

/// Gives a line its control points, by which its speed is even.
void MoveEnds(Cubic& c, Pt const& start, Pt const& end) {
    c[1] += start - c[0];
    c[2] += end - c[3];
    c[0] = start;
    c[3] = end;
}

bool FindOnMonotone(Cubic const& c, bool straight, Pt const& p, double reach, double& t) {
    Pt const chord = c[3] - c[0];
    double const square = Square(chord);
    double const room = reach * Taxicab(chord);
    double const along = Dot(p - c[0], chord);
    if (!(along >= -room && along <= square + room)) {
        return false;
    }
    double const beside = Cross(chord, p - c[0]);
    if (straight) {
        t = std::min(std::max(along / square, 0.0), 1.0);
        return std::abs(beside) <= reach * std::sqrt(square);
    }
    double const beside1 = Cross(chord, c[1] - c[0]);
    double const beside2 = Cross(chord, c[2] - c[0]);
    if (beside < std::min(std::min(beside1, beside2), 0.0) - room ||
        beside > std::max(std::max(beside1, beside2), 0.0) + room) {
        return false;
    }
    // The place grows along the chord, so one parameter has the place of p. Bisection keeps it
    // between two others, Newton's steps come near it.
    double low = 0.0;
    double high = 1.0;
    t = std::min(std::max(along / square, 0.0), 1.0);
    for (int i = 0; i < 60; ++i) {
        CubicPlace const place = PlaceAt(c, t);
        double const off = Dot(place.point - p, chord);
        (off < 0.0 ? low : high) = t;
        double const next = t - off / (3.0 * Dot(place.first, chord));
        double const last = t;
        t = next > low && next < high ? next : 0.5 * (low + high);
        if (std::abs(t - last) <= 0x1p-52) {
            break;
        }
    }
    // From there to the nearest place.
    double best = Square(PlaceAt(c, t).point - p);
    for (int i = 0; i < 4; ++i) {
        CubicPlace const place = PlaceAt(c, t);
        Pt const first = place.first * 3.0;
        double const slope = Square(first) + 6.0 * Dot(place.point - p, place.second);
        double const next = std::min(std::max(t - Dot(place.point - p, first) / slope, 0.0), 1.0);
        double const distance = Square(PlaceAt(c, next).point - p);
        if (!(distance < best)) {
            break;
        }
        best = distance;
        t = next;
    }
    return best <= reach * reach;
}

// Elements

void OutlineArcs::Add(CPath const& path, std::uint32_t operand, bool closed) {
    std::size_t first = elements.size();
    if (first == 0) {
        elements.reserve(path.mCtls.size() + 1);
    }
    std::size_t segment = 0;
    Pt current;
    Pt start;
    auto const append = [&](Pt const& c1, Pt const& c2, Pt const& e, std::size_t number,
                            bool curve) {
        elements.push_back({{current, c1, c2, e}, operand, number, curve});
        current = e;
    };
    auto const finish = [&](std::size_t number) {
        Pt const last = current;
        if (current != start && (closed || number != kNoSegment)) {
            append(current, start, start, number, false);
        }
        TakeContour(first, {0, operand, !closed, number != kNoSegment});
        first = elements.size();
        start = current = last; // drawing goes on there
    };
    for (ElementCursor element(path); element.Next();) {
        Pt const* const p = element.Points();
        switch (element.Code()) {
        case kPathMove:
            finish(kNoSegment);
            start = current = p[0];
            break;
        case kPathLine:
            append(current, p[0], p[0], segment++, false);
            break;
        case kPathCurve:
            append(p[0], p[1], p[2], segment++, true);
            break;
        case kPathClose:
            finish(segment++);
            break;
        default:
            break;
        }
    }
    finish(kNoSegment);
}

/// Keeps the elements from `first` on as a contour, or drops them.
void OutlineArcs::TakeContour(std::size_t first, UseContour const& contour) {
    Box<double> bounds;
    bool finite = true;
    for (std::size_t i = first; i < elements.size(); ++i) {
        for (Pt const& p : elements[i].c) {
            finite = finite && IsFinite(p);
            bounds.Include(p.h, p.v);
        }
    }
    if (!finite || elements.size() == first) {
        elements.resize(first);
        return;
    }
    mBounds.Include(bounds);
    mContourEnds.push_back(elements.size());
    mContours.push_back(contour);
}

void OutlineArcs::Add(StretchContours const& from, std::size_t begin, std::size_t end,
                      std::uint32_t operand) {
    for (std::size_t contour = begin; contour < end; ++contour) {
        for (std::size_t i = from.Begin(contour); i < from.ends[contour]; ++i) {
            elements.push_back(from.elements[i]);
            mStretches.push_back(from.stretches[i]);
        }
        mContourEnds.push_back(elements.size());
        mContours.push_back({0, operand, false, true});
    }
}

StretchContours OutlineArcs::AsStretches() const {
    StretchContours all;
    all.elements = elements;
    all.ends = mContourEnds;
    all.stretches.reserve(elements.size());
    for (std::size_t i = 0; i < elements.size(); ++i) {
        all.stretches.push_back({static_cast<Index>(i), 0.0, 1.0});
    }
    return all;
}

ElementStretch OutlineArcs::OnWhole(ElementStretch const& stretch) const {
    if (mWhole == nullptr || stretch.element == kNoIndex) {
        return stretch;
    }
    ElementStretch const& whole = mStretches[stretch.element];
    auto const at = [&](double t) {
        return t == 1.0 ? whole.to : whole.from + (whole.to - whole.from) * t;
    };
    return {whole.element, at(stretch.from), at(stretch.to)};
}

// Pieces

/// A monotone part of an element.
struct OutlineArcs::Piece {
    Cubic c;
    Index v0;
    Index v1;
    Index element;
    double from;
    double to;
    bool straight;
};

void OutlineArcs::CutElement(Index element, std::vector<Piece>& pieces) {
    OutlineElement const& e = elements[element];
    Cubic c = {mFrame.ToWork(e.c[0]), mFrame.ToWork(e.c[1]), mFrame.ToWork(e.c[2]),
               mFrame.ToWork(e.c[3])};
    Index const last = vertices.At(e.c[3]);
    Index v0 = pieces.empty() || e.c[0] != elements[element - 1].c[3] ? vertices.At(e.c[0])
                                                                      : pieces.back().v1;
    auto const add = [&](Cubic part, Index v1, double from, double to) {
        Pt const& start = vertices.WorkPlace(v0);
        Pt const& end = vertices.WorkPlace(v1);
        MoveEnds(part, start, end);
        if (!e.curve) {
            Straighten(part);
        }
        pieces.push_back({part, v0, v1, element, from, to, !e.curve});
        v0 = v1;
    };
    if (!e.curve) {
        add(c, last, 0.0, 1.0);
        return;
    }
    std::array<double, 4> turns; // not initialised
    std::size_t count = 0;
    AddTurns(c[1].h - c[0].h, c[2].h - c[1].h, c[3].h - c[2].h, turns, count);
    AddTurns(c[1].v - c[0].v, c[2].v - c[1].v, c[3].v - c[2].v, turns, count);
    double from = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        double const to = turns[i];
        if (to > from) {
            Index const vertex = vertices.AtWork(PlaceAt(c, to).point);
            if (vertex != v0) {
                add(PartOf(c, from, to), vertex, from, to);
                from = to;
            }
        }
    }
    add(from > 0.0 ? TailOf(c, from) : c, last, from, 1.0);
}

void OutlineArcs::Build(double tolerance) {
    if (!HasExtent()) {
        return;
    }
    if (elements.size() >= kNoIndex / 8) {
        throw std::bad_alloc();
    }
    mFrame = WorkFrame(mBounds);
    mReach = std::max(kLeastReach, 16.0 * mFrame.Spacing());
    if (tolerance > 0.0) {
        mReach = std::max(mReach, std::min(mFrame.LengthToWork(tolerance) / 8.0, kMostReach));
    }
    if (!AnyCurve()) {
        for (std::size_t i = 0; i < mContourEnds.size(); ++i) {
            contours.push_back(mContours[i]);
            contours.back().end = mContourEnds[i];
        }
        return;
    }
    mHasCurves = true;
    TakeApart();
}

bool OutlineArcs::Coarsen() {
    if (mReach >= kMostReach) {
        return false;
    }
    mReach = std::min(mReach * kCoarser, kMostReach);
    arcs.clear();
    uses.clear();
    contours.clear();
    pairs.clear();
    TakeApart();
    return true;
}

void OutlineArcs::TakeApart() {
    vertices.Reset(mFrame, mReach, 3 * elements.size());
    std::vector<Piece> pieces;
    std::vector<std::size_t> contourEnds; // of pieces
    pieces.reserve(3 * elements.size());
    contourEnds.reserve(mContourEnds.size());
    std::size_t first = 0;
    for (std::size_t const end : mContourEnds) {
        for (; first < end; ++first) {
            CutElement(static_cast<Index>(first), pieces);
        }
        contourEnds.push_back(pieces.size());
    }
    CutAtVertices(pieces, contourEnds);
    TakePieces(pieces, contourEnds);
}

template <class Items> void OutlineArcs::FindPairs(Items const& items) {
    pairs.clear();
    pairs.reserve(3 * items.size());
    mBoxes.clear();
    mBoxes.reserve(items.size());
    for (auto const& item : items) {
        mBoxes.push_back(BoxOf(item.c).Widened(mReach, mReach));
    }
    // A sweep along h is faster where few boxes lie beside each other.
    std::vector<std::pair<double, Index>> order;
    order.reserve(mBoxes.size());
    for (Box<double> const& box : mBoxes) {
        order.emplace_back(box.lowX, static_cast<Index>(order.size()));
    }
    std::sort(order.begin(), order.end());
    if (mBoxes.size() > kFewBoxes) {
        std::size_t const step = mBoxes.size() / kFewBoxes + 1;
        std::size_t beside = 0;
        std::size_t sampled = 0;
        for (std::size_t k = 0; k < order.size(); k += step) {
            std::pair<double, Index> const last(mBoxes[order[k].second].highX, kNoIndex);
            auto const first = order.begin() + static_cast<std::ptrdiff_t>(k);
            beside += static_cast<std::size_t>(std::upper_bound(first, order.end(), last) - first);
            ++sampled;
        }
        if (beside > kMostBeside * sampled) {
            BoxTree(mBoxes).ForMeetingPairs([&](std::size_t i, std::size_t j) {
                pairs.emplace_back(static_cast<Index>(i), static_cast<Index>(j));
            });
            return;
        }
    }
    for (std::size_t k = 0; k < order.size(); ++k) {
        Index const i = order[k].second;
        Box<double> const box = mBoxes[i];
        for (std::size_t l = k + 1; l < order.size() && order[l].first <= box.highX; ++l) {
            Index const j = order[l].second;
            if (box.lowY <= mBoxes[j].highY && mBoxes[j].lowY <= box.highY) {
                pairs.emplace_back(std::min(i, j), std::max(i, j));
            }
        }
    }
}

/// A place at which a piece is to be cut.
struct OutlineArcs::Cut {
    Index piece;
    double t;
    Index vertex;
};

/// Returns cuts of pieces at vertices that lie on them. So curves that coincide along a stretch get
/// pieces with the same ends there.
std::vector<OutlineArcs::Cut> OutlineArcs::CutsAtVertices(std::vector<Piece> const& pieces) const {
    std::vector<Cut> cuts;
    auto const test = [&](Index vertex, Index piece) {
        Piece const& p = pieces[piece];
        Pt const& place = vertices.WorkPlace(vertex);
        double t = 0.0;
        if (vertex != p.v0 && vertex != p.v1 && p.v0 != p.v1 &&
            mBoxes[piece].Contains(place.h, place.v) &&
            FindOnMonotone(p.c, p.straight, place, mReach, t)) {
            cuts.push_back({piece, t, vertex});
        }
    };
    // The last vertex of a piece is the first of the next one, whose box meets the same others.
    auto const testEnds = [&](Index of, Index piece) {
        test(pieces[of].v0, piece);
        if (of + 1 == pieces.size() || pieces[of + 1].v0 != pieces[of].v1) {
            test(pieces[of].v1, piece);
        }
    };
    for (auto const& [i, j] : pairs) {
        testEnds(i, j);
        testEnds(j, i);
    }
    return cuts;
}

struct OutlineArcs::Branch {
    /// \param number that of an end: 2 * a piece's number, and + 1 for its last end
    Branch(std::vector<Piece> const& pieces, Index number)
        : piece(number / 2), end(number % 2 != 0) {
        Cubic const& c = pieces[piece].c;
        direction = end ? c[2] - c[3] : c[1] - c[0];
        for (std::size_t k = 2; k < 4 && Taxicab(direction) <= kRounding; ++k) {
            direction = end ? c[3 - k] - c[3] : c[k] - c[0];
        }
    }
    static void SortAround(std::vector<Branch>& branches) {
        for (Branch& branch : branches) {
            double const along = branch.direction.h / Taxicab(branch.direction);
            branch.angle = branch.direction.v < 0.0 ? along - 1.0 : 1.0 - along;
        }
        std::sort(branches.begin(), branches.end(), [](Branch const& a, Branch const& b) {
            return a.angle != b.angle ? a.angle < b.angle : a.piece < b.piece;
        });
    }

    Index piece;
    bool end; ///< whether the piece ends at the vertex
    Pt direction;
    double angle = 0.0; ///< grows with the angle, from -2 to 2; only where it is needed
};

/// Adds cuts of both pieces where two branches of one vertex part, if they run together before.
void OutlineArcs::AddCutsWherePart(Branch const& first, Branch const& second,
                                   std::vector<Piece> const& pieces, std::vector<Cut>& cuts) {
    Piece const& a = pieces[first.piece];
    Piece const& b = pieces[second.piece];
    if (first.piece == second.piece || (a.straight && b.straight) ||
        Dot(first.direction, second.direction) <= 0.0 ||
        std::abs(Cross(first.direction, second.direction)) >
            kTogether * Dot(first.direction, second.direction)) {
        return;
    }
    double t = 0.0;
    auto const onB = [&](double s) {
        return FindOnMonotone(b.c, b.straight, PlaceAt(a.c, first.end ? 1.0 - s : s).point,
                              0.5 * mReach, t);
    };
    // Both may come together again at the end, which is a vertex then.
    double together = 0.0;
    double apart = 1.0;
    for (double const s : {0.5, 0.25, 0.75}) {
        if (!onB(apart)) {
            break;
        }
        apart = s;
    }
    if (onB(apart)) {
        return;
    }
    for (int i = 0; i < 40; ++i) {
        double const middle = 0.5 * (together + apart);
        (onB(middle) ? together : apart) = middle;
    }
    if (together > 0.0 && onB(together)) {
        double const s = first.end ? 1.0 - together : together;
        Index const vertex = vertices.AtWork(PlaceAt(a.c, s).point);
        if (vertex != (first.end ? a.v1 : a.v0)) {
            cuts.push_back({first.piece, s, vertex});
            cuts.push_back({second.piece, t, vertex});
        }
    }
}

/// Returns cuts of pieces that leave a vertex together, where they part. Up to there they are one.
std::vector<OutlineArcs::Cut> OutlineArcs::CutsWherePiecesPart(std::vector<Piece> const& pieces) {
    // The ends of pieces, by the numbers that Branch takes, in a list for each vertex.
    std::vector<Index> firsts(vertices.Count(), kNoIndex);
    std::vector<Index> next(2 * pieces.size());
    for (std::size_t i = pieces.size(); i-- > 0;) {
        for (bool const end : {true, false}) {
            Index& first = firsts[end ? pieces[i].v1 : pieces[i].v0];
            auto const number = static_cast<Index>(2 * i + (end ? 1 : 0));
            next[number] = first;
            first = number;
        }
    }
    std::vector<Cut> cuts;
    std::vector<Branch> branches;
    for (Index const first : firsts) {
        branches.clear();
        if (first == kNoIndex || next[first] == kNoIndex) {
            continue;
        }
        if (Index const second = next[first]; next[second] == kNoIndex) {
            // As at nearly all vertices.
            AddCutsWherePart(Branch(pieces, first), Branch(pieces, second), pieces, cuts);
            continue;
        }
        for (Index number = first; number != kNoIndex; number = next[number]) {
            branches.emplace_back(pieces, number);
        }
        if (branches.size() > 2) {
            Branch::SortAround(branches);
        }
        for (std::size_t i = 0; i < branches.size(); ++i) {
            std::size_t const end = std::min(i + 1 + kBranchesCompared, branches.size());
            for (std::size_t j = i + 1; j < end; ++j) {
                AddCutsWherePart(branches[i], branches[j], pieces, cuts);
            }
        }
    }
    return cuts;
}

/// Cuts pieces. The contours of pieces end before `ends`.
void OutlineArcs::Apply(std::vector<Cut>& cuts, std::vector<Piece>& pieces,
                        std::vector<std::size_t>& ends) const {
    std::sort(cuts.begin(), cuts.end(), [](Cut const& a, Cut const& b) {
        return a.piece != b.piece ? a.piece < b.piece
               : a.t != b.t       ? a.t < b.t
                                  : a.vertex < b.vertex;
    });
    std::vector<Piece> parts;
    parts.reserve(pieces.size() + cuts.size());
    std::size_t next = 0;
    std::size_t contour = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        Piece const& whole = pieces[i];
        Piece part = whole;
        double from = 0.0; // on the piece
        auto const add = [&](Index v1, double to) {
            part.v1 = v1;
            part.to = to == 1.0 ? whole.to : whole.from + (whole.to - whole.from) * to;
            part.c = PartOf(whole.c, from, to);
            MoveEnds(part.c, vertices.WorkPlace(part.v0), vertices.WorkPlace(v1));
            if (part.straight) {
                Straighten(part.c);
            }
            parts.push_back(part);
            part.v0 = v1;
            part.from = part.to;
            from = to;
        };
        for (; next < cuts.size() && cuts[next].piece == i; ++next) {
            if (cuts[next].vertex != part.v0 && cuts[next].t > from && cuts[next].t < 1.0) {
                add(cuts[next].vertex, cuts[next].t);
            }
        }
        if (from > 0.0) {
            add(whole.v1, 1.0);
        } else {
            parts.push_back(whole);
        }
        for (; contour < ends.size() && ends[contour] == i + 1; ++contour) {
            ends[contour] = parts.size();
        }
    }
    pieces.swap(parts);
}

void OutlineArcs::CutAtVertices(std::vector<Piece>& pieces, std::vector<std::size_t>& ends) {
    FindPairs(pieces);
    std::vector<Cut> cuts = CutsAtVertices(pieces);
    bool changed = !cuts.empty();
    if (changed) {
        Apply(cuts, pieces, ends);
    }
    cuts = CutsWherePiecesPart(pieces);
    if (!cuts.empty()) {
        changed = true;
        Apply(cuts, pieces, ends);
        FindPairs(pieces);
        cuts = CutsAtVertices(pieces); // of pieces that leave together with these
        Apply(cuts, pieces, ends);
    }
    if (changed) {
        pairs.clear();
    }
}

/// True when two curves with the same ends are within some reaches of each other. All of their
/// parts are, then, or both are straight as far as the reach tells.
bool OutlineArcs::Coincide(Cubic const& a, Cubic const& b, int depth) const {
    if (Near(a[1], b[1]) && Near(a[2], b[2])) {
        return true;
    }
    if (HeightBesideChord(a) <= mReach && HeightBesideChord(b) <= mReach) {
        return true;
    }
    double t = 0.0;
    Pt const middle = PlaceAt(a, 0.5).point;
    if (depth == 0 || !FindOnMonotone(b, false, middle, mReach, t)) {
        return false;
    }
    Cubic first = HeadOf(b, t);
    Cubic second = TailOf(b, t);
    MoveEnds(first, a[0], middle);
    MoveEnds(second, middle, a[3]);
    return Coincide(HeadOf(a, 0.5), first, depth - 1) &&
           Coincide(TailOf(a, 0.5), second, depth - 1);
}

/// Makes arcs of pieces: pieces that coincide are one arc.
void OutlineArcs::TakePieces(std::vector<Piece> const& pieces,
                             std::vector<std::size_t> const& ends) {
    std::size_t size = 64;
    while (size < 2 * pieces.size()) {
        size *= 2;
    }
    std::vector<Index> slots(size, kNoIndex); // the first arc of each
    std::vector<Index> next;                  // by arc
    next.reserve(pieces.size());
    arcs.reserve(pieces.size());
    uses.reserve(pieces.size());
    contours.reserve(ends.size());
    bool same = true; // whether arcs and pieces have the same numbers
    std::size_t i = 0;
    for (std::size_t contour = 0; contour < ends.size(); ++contour) {
        for (; i < ends[contour]; ++i) {
            Piece const& piece = pieces[i];
            if (piece.v0 == piece.v1) {
                same = false;
                continue;
            }
            bool const swapped = piece.v1 < piece.v0;
            std::uint64_t const key = (std::uint64_t{swapped ? piece.v1 : piece.v0} << 32U) |
                                      (swapped ? piece.v0 : piece.v1);
            Index& slot =
                slots[static_cast<std::size_t>(key * 0x9E3779B97F4A7C15U >> 24U) & (size - 1)];
            Index arc = slot;
            bool reversed = false;
            for (; arc != kNoIndex; arc = next[arc]) {
                OutlineArc const& a = arcs[arc];
                reversed = a.v0 == piece.v1;
                if (reversed ? a.v1 != piece.v0 : a.v0 != piece.v0 || a.v1 != piece.v1) {
                    continue;
                }
                if ((a.straight && piece.straight) ||
                    Coincide(a.c, reversed ? Reversed(piece.c) : piece.c, kCoincidenceDepth)) {
                    break;
                }
            }
            bool paced = true;
            if (arc == kNoIndex) {
                arc = static_cast<Index>(arcs.size());
                reversed = false;
                arcs.push_back({piece.c, piece.v0, piece.v1, piece.straight});
                next.push_back(slot);
                slot = arc;
            } else {
                // A line may be run through at any pace.
                OutlineArc& a = arcs[arc];
                a.straight = a.straight && piece.straight;
                paced = Near(a.c[1], piece.c[reversed ? 2 : 1]) &&
                        Near(a.c[2], piece.c[reversed ? 1 : 2]);
            }
            same = same && arc == i;
            uses.push_back({arc, piece.element, piece.from, piece.to, reversed, paced});
        }
        contours.push_back(mContours[contour]);
        contours.back().end = uses.size();
    }
    if (!same || pairs.empty()) {
        FindPairs(arcs);
    }
}

} // namespace trammel_detail
