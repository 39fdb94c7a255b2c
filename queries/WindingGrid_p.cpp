// SPDX-License-Identifier: MIT

#include "WindingGrid_p.h"

#include "ContourWalk_p.h"
#include "RayCrossings_p.h"

#include <algorithm>
#include <cmath>

namespace trammel_detail {
namespace {

typedef TPoint<double> Pt;

/// The lists have about so many segments for each segment of the outline, or fewer.
constexpr double kEntries = 12.0;
/// There are at most so many cells for each segment.
constexpr double kCells = 2.0;
constexpr double kMostSide = 4096.0;
/// How far a segment may be from where its points say that it is, in cells. RayCrossings_p.h moves
/// it by 2^-47 of the longer side of the box. That is 2^-25 cells at most with kNarrowest and
/// kMostSide. The rest is for the rounding here.
constexpr double kMargin = 0x1p-16;
constexpr double kNarrowest = 0x1p-10;
/// The least size of the box beside the coordinates.
constexpr double kSmallest = 0x1p-20;

/// The steps of a cell. Places of points reach from -kSteps / 2 to kSteps / 2.
constexpr double kSteps = 0x1p15;
/// The steps of strips to a cell: what remains of a product of two steps is half of its bits.
constexpr double kStripSteps = 0x1p14;
/// What rounding takes from the distance to a strip: 1 of each product, 1 of the point's steps, 0.8
/// of the direction's, 0.5 of the place's, together less than 5.
constexpr double kStripRounding = 5.0;
/// Half of a strip's width in cells, up to which it is worth its place.
constexpr double kMostWidth = 0.25;
/// The summands that NameOf can tell.
constexpr int kLeastSummand = -4;
constexpr int kMostSummand = 3;

Pt ToPt(Double2 const& p) { return Pt(Lane<1>(p), Lane<0>(p)); }

/// The corner of a cell, in cells.
Double2 CornerAt(std::uint32_t row, std::uint32_t column) {
    return Double2::Of(static_cast<double>(row), static_cast<double>(column));
}

/// Returns the row or the column of a coordinate of at least 0; the last one behind the box.
std::uint32_t LineOf(double place, std::uint32_t lines) {
    return std::min(static_cast<std::uint32_t>(place), lines - 1);
}

std::int16_t StepOf(double place) {
    double const step = (place - 0.5) * kSteps;
    return static_cast<std::int16_t>(Min(Max(step, -kSteps / 2), kSteps / 2));
}

} // namespace

inline int WindingGrid::Summand(Id name, Pt const* points, Pt const& p, double wall) {
    Pt const* const a = points + (name >> 4U);
    bool const isCurve = (name & 1U) != 0;
    Pt const& end = a[isCurve ? 3 : 1];
    auto const term = [&](Pt const& v) {
        return static_cast<int>(static_cast<unsigned>(v.h > wall) &
                                static_cast<unsigned>(v.v > p.v));
    };
    return CrossingsOfSegment(a, isCurve, p) - term(end) + term(*a);
}

inline int WindingGrid::Ask(Id cell, Double2 const& place, double wall, Pt const* points,
                            Pt const& p) const {
    constexpr unsigned kAll = (1U << kPack) - 1;
    Short8 const h(StepOf(Lane<1>(place)));
    Short8 const v(StepOf(Lane<0>(place)));
    Short8 const zero(std::int16_t{0});
    int winding = mCells[cell].base;
    Id const first = mCells[cell].firstStrip;
    Id const last = mCells[cell + 1].firstStrip;
    // The first pack and the last pack hold strips of other cells, too.
    unsigned mask = kAll << first % kPack & kAll;
    for (Id pack = first / kPack; pack * kPack < last; ++pack) {
        if (last - pack * kPack < kPack) {
            mask &= kAll >> (kPack - last % kPack);
        }
        Strips const& strips = mStrips[pack];
        Short8 const distance = MultiplyHigh(h, Short8::Load(strips.h)) +
                                MultiplyHigh(v, Short8::Load(strips.v)) + Short8::Load(strips.at);
        Short8 const width = Short8::Load(strips.width);
        Short8 const left = distance > width;
        Short8 const right = zero > distance + width;
        unsigned const told = BitsOfTwo(left, left | right);
        winding += CountOfBits(told & mask);
        for (unsigned inner = ~(told >> kPack) & mask; inner != 0; inner &= inner - 1) {
            Id const name = strips.segment[__builtin_ctz(inner)];
            winding += Summand(name, points, p, wall) - SummandOf(name);
        }
        mask = kAll;
    }
    for (Id i = mCells[cell].firstAsked; i < mCells[cell + 1].firstAsked; ++i) {
        winding += Summand(mAsked[i], points, p, wall);
    }
    return winding;
}

int WindingGrid::WindingNumber(Pt const* points, Pt const& p) const {
    Double2 const place = (CoordinatesAt(&p) - mLow) * mScale;
    Id const row = LineOf(Lane<0>(place), mRows);
    Id const column = LineOf(Lane<1>(place), mColumns);
    return Ask(CellAt(row, column), place - CornerAt(row, column), WallOf(column + 1), points, p);
}

std::size_t WindingGrid::Bytes() const {
    return mCells.capacity() * sizeof(Cell) + mStrips.capacity() * sizeof(Strips) +
           mAsked.capacity() * sizeof(Id);
}

/// Makes the lists. All places are in cells.
class WindingGrid::Builder {
public:
    Builder(WindingGrid& grid, std::vector<Pt> const& points,
            std::vector<GridSegment> const& segments)
        : mGrid(grid), mPoints(points), mSegments(segments), mTouches(grid.CellAt(grid.mRows, 0)) {}

    void Build() {
        for (std::size_t i = 0; i < mSegments.size(); ++i) {
            Walk(static_cast<Id>(i));
            for (Id const cell : mTouched) {
                Add(static_cast<Id>(i), cell);
            }
        }
        Arrange();
        ComputeBases();
    }

private:
    /// The part of a segment that a cell may hold, in pieces of the segment.
    struct Touch {
        Id segment = ~Id{0};
        Id first = 0;
        Id last = 0;
        bool isOneStretch = true;
    };
    struct Entry {
        Id cell;
        Id name;
        bool isStrip;
        Step h;
        Step v;
        Step at;
        Step width;
    };
    enum class Relation { kApart, kCrosses, kOther };

    Pt PlaceOf(Pt const& p) const { return ToPt((CoordinatesAt(&p) - mGrid.mLow) * mGrid.mScale); }

    /// Cuts a segment in pieces of up to half a cell, and notes the cells that they may meet.
    void Walk(Id segment) {
        GridSegment const& s = mSegments[segment];
        Pt const p0 = PlaceOf(mPoints[s.point]);
        Pt const p3 = PlaceOf(mPoints[s.point + (s.isCurve ? 3 : 1)]);
        Pt const p1 = s.isCurve ? PlaceOf(mPoints[s.point + 1]) : p0 + (p3 - p0) / 3.0;
        Pt const p2 = s.isCurve ? PlaceOf(mPoints[s.point + 2]) : p3 + (p0 - p3) / 3.0;
        Pt const d01 = p1 - p0;
        Pt const d12 = p2 - p1;
        Pt const d23 = p3 - p2;
        double const length = std::abs(d01.h) + std::abs(d12.h) + std::abs(d23.h) +
                              std::abs(d01.v) + std::abs(d12.v) + std::abs(d23.v);
        Id const count = static_cast<Id>(length * 2.0) + 2;
        // A piece is within an eighth of its second derivative from its chord.
        Pt const b0 = d12 - d01;
        Pt const b1 = d23 - d12;
        double const sag = s.isCurve ? 0.75 / (static_cast<double>(count) * count) : 0.0;
        mSag = Pt(std::max(std::abs(b0.h), std::abs(b1.h)) * sag + kMargin,
                  std::max(std::abs(b0.v), std::abs(b1.v)) * sag + kMargin);
        mPlaces.clear();
        for (Id i = 0; i <= count; ++i) {
            double const t = static_cast<double>(i) / count;
            Pt const m01 = p0 + d01 * t;
            Pt const m12 = p1 + d12 * t;
            Pt const m23 = p2 + d23 * t;
            Pt const m012 = m01 + (m12 - m01) * t;
            Pt const m123 = m12 + (m23 - m12) * t;
            mPlaces.push_back(m012 + (m123 - m012) * t);
        }
        mTouched.clear();
        for (Id piece = 0; piece + 1 < mPlaces.size(); ++piece) {
            Pt const& a = mPlaces[piece];
            Pt const& b = mPlaces[piece + 1];
            Id const top = LineOf(Max(Min(a.v, b.v) - mSag.v, 0.0), mGrid.mRows);
            Id const bottom = LineOf(Max(Max(a.v, b.v) + mSag.v, 0.0), mGrid.mRows);
            Id const left = LineOf(Max(Min(a.h, b.h) - mSag.h, 0.0), mGrid.mColumns);
            Id const right = LineOf(Max(Max(a.h, b.h) + mSag.h, 0.0), mGrid.mColumns);
            for (Id row = top; row <= bottom; ++row) {
                for (Id column = left; column <= right; ++column) {
                    TouchCell(segment, mGrid.CellAt(row, column), piece);
                }
            }
        }
    }

    void TouchCell(Id segment, Id cell, Id piece) {
        Touch& touch = mTouches[cell];
        if (touch.segment != segment) {
            touch = {segment, piece, piece, true};
            mTouched.push_back(cell);
        }
        touch.isOneStretch = touch.isOneStretch && piece <= touch.last + 1;
        touch.last = piece;
    }

    /// Adds a segment that the last Walk was for to a cell's list, unless it does not meet it.
    void Add(Id segment, Id cell) {
        Touch const& touch = mTouches[cell];
        Entry entry = {};
        entry.cell = cell;
        Relation relation = Relation::kOther;
        if (touch.isOneStretch) {
            relation = Fit(touch.first, touch.last + 1, entry);
            if (relation == Relation::kOther) {
                // Its ends may lie too near to the cell to tell that it crosses it.
                relation =
                    Fit(touch.first - (touch.first > 0 ? 1 : 0),
                        std::min(touch.last + 2, static_cast<Id>(mPlaces.size() - 1)), entry);
            }
        }
        if (relation == Relation::kApart) {
            return;
        }
        entry.isStrip = relation == Relation::kCrosses && TellSummand(mSegments[segment], entry);
        if (!entry.isStrip) {
            entry.name = NameOf(mSegments[segment], 0);
        }
        mEntries.push_back(entry);
    }

    /// Lays a strip around a stretch of the segment. The stretch has all that the cell holds of it.
    Relation Fit(Id first, Id last, Entry& entry) {
        Id const row = entry.cell / mGrid.mColumns;
        Pt const middle(entry.cell % mGrid.mColumns + 0.5, row + 0.5);
        Pt const a = mPlaces[first] - middle;
        Pt const along = mPlaces[last] - mPlaces[first];
        double const length = std::sqrt(along.h * along.h + along.v * along.v);
        if (!(length > kMargin)) {
            return Relation::kOther;
        }
        Pt const u = along / length;
        Pt const n(-u.v, u.h); // to the left
        double low = 0.0;
        double high = 0.0;
        for (Id i = first + 1; i < last; ++i) {
            Pt const d = mPlaces[i] - mPlaces[first];
            double const distance = d.h * n.h + d.v * n.v;
            low = std::min(low, distance);
            high = std::max(high, distance);
        }
        double const width =
            (high - low) * 0.5 + std::abs(n.h) * mSag.h + std::abs(n.v) * mSag.v + kMargin;
        double const at = -(a.h * n.h + a.v * n.v) - (high + low) * 0.5;
        double const reach = 0.5 * (std::abs(n.h) + std::abs(n.v)) + kMargin;
        if (std::abs(at) > reach + width) {
            return Relation::kApart;
        }
        // Where along the line the strip may be in the cell. The ends have to lie outside of it.
        double enter = 0.0;
        double leave = length;
        Clip(a.h + n.h * (high + low) * 0.5, u.h, width * std::abs(n.h), enter, leave);
        Clip(a.v + n.v * (high + low) * 0.5, u.v, width * std::abs(n.v), enter, leave);
        if (!(enter > 0.0) || !(leave < length) || !(width <= kMostWidth)) {
            return Relation::kOther;
        }
        entry.h = static_cast<Step>(std::lround(n.h * (kSteps - 1)));
        entry.v = static_cast<Step>(std::lround(n.v * (kSteps - 1)));
        entry.at = static_cast<Step>(std::lround(at * kStripSteps));
        entry.width = static_cast<Step>(std::ceil(width * kStripSteps + kStripRounding));
        return Relation::kCrosses;
    }

    /// Cuts the interval to where `start` + s * `slope` is in the cell or nearer than `width`.
    static void Clip(double start, double slope, double width, double& enter, double& leave) {
        double const reach = 0.5 + kMargin + width;
        if (std::abs(slope) < kMargin) {
            return; // nearly along the walls: the other coordinate has to tell
        }
        double const s0 = (-reach - start) / slope;
        double const s1 = (reach - start) / slope;
        enter = std::max(enter, std::min(s0, s1));
        leave = std::min(leave, std::max(s0, s1));
    }

    /// Finds the summand right of the strip. False if no corner is certainly outside of the strip.
    bool TellSummand(GridSegment const& segment, Entry& entry) {
        Id const row = entry.cell / mGrid.mColumns;
        Id const column = entry.cell % mGrid.mColumns;
        Id const name = NameOf(segment, 0);
        // The corners that are farthest from the line on either side.
        for (int const side : {-1, 1}) {
            Id const h = entry.h * side > 0 ? 1 : 0;
            Id const v = entry.v * side > 0 ? 1 : 0;
            int const distance = side * (std::abs(entry.h) + std::abs(entry.v)) / 4 + entry.at;
            if (distance * side <= entry.width + 2 * kStripRounding) {
                continue;
            }
            Pt const p = ToPt(mGrid.mLow + CornerAt(row + v, column + h) * mGrid.mSize);
            int const summand =
                Summand(name, mPoints.data(), p, mGrid.WallOf(column + 1)) - (side > 0 ? 1 : 0);
            if (summand >= kLeastSummand && summand <= kMostSummand) {
                entry.name = NameOf(segment, summand);
                return true;
            }
        }
        return false;
    }

    /// Moves the entries to the lists of their cells.
    void Arrange() {
        std::size_t const cells = mTouches.size();
        mGrid.mCells.resize(cells + 1);
        Id strips = 0;
        Id asked = 0;
        for (Entry const& entry : mEntries) {
            (entry.isStrip ? mGrid.mCells[entry.cell].firstStrip
                           : mGrid.mCells[entry.cell].firstAsked) += 1;
        }
        // Filled from their ends: until then the firsts are where the lists end.
        for (Cell& cell : mGrid.mCells) {
            cell.firstStrip = strips += cell.firstStrip;
            cell.firstAsked = asked += cell.firstAsked;
        }
        mGrid.mStrips.resize((strips + kPack - 1) / kPack);
        mGrid.mAsked.resize(asked);
        for (Entry const& entry : mEntries) {
            Cell& cell = mGrid.mCells[entry.cell];
            if (!entry.isStrip) {
                mGrid.mAsked[--cell.firstAsked] = entry.name;
                continue;
            }
            Id const place = --cell.firstStrip;
            Strips& pack = mGrid.mStrips[place / kPack];
            pack.h[place % kPack] = entry.h;
            pack.v[place % kPack] = entry.v;
            pack.at[place % kPack] = entry.at;
            pack.width[place % kPack] = entry.width;
            pack.segment[place % kPack] = entry.name;
        }
    }

    /// Computes the bases, from left to right in each row. Two cells tell the same of a point on
    /// the wall between them, and nothing winds around a point left of the box.
    void ComputeBases() {
        for (Id row = 0; row < mGrid.mRows; ++row) {
            int winding = 0;
            for (Id column = 0; column <= mGrid.mColumns; ++column) {
                // The first wall is moved outward a little.
                double const h = column == 0 ? -kMargin / 2 : static_cast<double>(column);
                Pt const p = ToPt(mGrid.mLow + Double2::Of(row + 0.5, h) * mGrid.mSize);
                auto const ask = [&](Id c) {
                    return mGrid.Ask(mGrid.CellAt(row, c), Double2::Of(0.5, h - c),
                                     mGrid.WallOf(c + 1), mPoints.data(), p);
                };
                winding = column > 0 ? ask(column - 1) : 0;
                if (column < mGrid.mColumns) {
                    mGrid.mCells[mGrid.CellAt(row, column)].base = winding - ask(column);
                }
            }
        }
    }

    WindingGrid& mGrid;
    std::vector<Pt> const& mPoints;
    std::vector<GridSegment> const& mSegments;
    std::vector<Touch> mTouches; ///< of each cell
    std::vector<Entry> mEntries;
    // Of the segment at hand:
    std::vector<Pt> mPlaces; ///< where its pieces begin and end
    Pt mSag;                 ///< how far they are from their chords at most
    std::vector<Id> mTouched;
};

WindingGrid::WindingGrid(std::vector<Pt> const& points, std::vector<GridSegment> const& segments,
                         Double2 const& low, Double2 const& high)
    : mLow(low) {
    Double2 const size = high - low;
    double const least = Min(Lane<0>(size), Lane<1>(size));
    double const most = Max(Lane<0>(size), Lane<1>(size));
    Double2 const magnitudes = Max(Abs(low), Abs(high));
    double const magnitude = Max(Lane<0>(magnitudes), Lane<1>(magnitudes));
    if (!(least >= most * kNarrowest && least >= magnitude * kSmallest && least > 0x1p-900 &&
          magnitude < 0x1p900) ||
        points.size() >= std::size_t{1} << 28U) {
        return;
    }
    // A segment meets one cell, and one more for each line between cells that it crosses.
    Double2 length = 0.0;
    for (GridSegment const& s : segments) {
        for (std::size_t i = s.point; i < s.point + (s.isCurve ? 3U : 1U); ++i) {
            length = length + Abs(CoordinatesAt(&points[i + 1]) - CoordinatesAt(&points[i])) / size;
        }
    }
    auto const count = static_cast<double>(segments.size());
    Double2 const lines = Double2((kEntries - 1.0) / 2.0 * count) / length;
    double const few = Min(Min(Lane<0>(lines), Lane<1>(lines)), std::sqrt(kCells * count));
    Double2 const sides = Min(Min(lines, kCells * count / few), kMostSide);
    mRows = static_cast<Id>(Lane<0>(sides));
    mColumns = static_cast<Id>(Lane<1>(sides));
    if (mRows == 0 || mColumns == 0) {
        return;
    }
    Double2 const counts = CornerAt(mRows, mColumns);
    mSize = size / counts;
    mScale = counts / size;
    Builder(*this, points, segments).Build();
}

} // namespace trammel_detail
