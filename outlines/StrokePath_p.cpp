// SPDX-License-Identifier: MIT

#include "StrokePath_p.h"

#include "Box_p.h"
#include "Cubic_p.h"
#include "Dashes_p.h"
#include "OutlineMeasure.h"
#include "PathSegments.h"
#include "PathStructure.h"
#include "PointAlgebra.h"
#include "PointMath_p.h"
#include "PreparedOutline.h"
#include "StrokeContours_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;
using trammel::FillRule;
using trammel::OutlineMeasure;
using trammel::PathOf;
using trammel::PathSegment;
using trammel::PreparedOutline;
using trammel::Segments;
using trammel::StrokeCap;
using trammel::StrokeJoin;
using trammel::Subpath;
using trammel::Subpaths;

/// No distance is kept that is less than this share of the coordinates or the width.
constexpr double kFinest = 0x1p-36;
/// To see on which side of an outline its region lies, points so far beside it are tried: powers of
/// two of the size.
constexpr int kFarthestStep = -20;
constexpr int kNearestStep = -44;
constexpr int kNextStep = 6;
/// About so many segments of a contour tell on which side the region lies.
constexpr std::size_t kVotes = 64;
/// Drawings of a size beyond this power of two, or below its inverse, are scaled.
constexpr int kPlainExponent = 200;
/// So many segments that follow each other tell whether the pen paints the same places often.
constexpr std::size_t kBlock = 64;
/// It does where it covers each place of the block's bounds so often on average.
constexpr double kOften = 12.0;
/// A stroke that paints places often is made in parts of so many segments or dashes.
constexpr std::size_t kPartSegments = 4;
/// A part begins with so much of the part before, in distances that are kept. So its first end lies
/// inside of that part, where no rounding shows. It has no more than kBlock segments of it.
constexpr double kOverlap = 64.0;
/// Lengths along a line are off by less than these shares of the coordinates and of its length.
constexpr double kBlurOfSize = 0x1p-40;
constexpr double kBlurOfLength = 0x1p-50;

bool HasFinitePoints(PathSegment const& s) {
    return IsFinite(s.start) && IsFinite(s.control1) && IsFinite(s.control2) && IsFinite(s.end);
}

bool IsDrawn(Subpath const& subpath) {
    return std::all_of(subpath.begin(), subpath.end(),
                       [](PathSegment const& s) { return HasFinitePoints(s); });
}

/// Returns the greatest magnitude of a coordinate of the subpaths that are drawn.
double SizeOf(CPath const& path) {
    double size = 0.0;
    for (Subpath const& subpath : Subpaths(path)) {
        double here = 0.0;
        bool drawn = true;
        for (PathSegment const& s : subpath) {
            drawn = drawn && HasFinitePoints(s);
            for (Pt const& p : {s.start, s.control1, s.control2, s.end}) {
                here = std::max({here, std::abs(p.h), std::abs(p.v)});
            }
        }
        size = drawn ? std::max(size, here) : size;
    }
    return size;
}

/// Returns a power of two by which drawings of extreme size are multiplied.
double ScaleFor(double size) {
    int const exponent = std::ilogb(size);
    return std::abs(exponent) <= kPlainExponent ? 1.0 : std::scalbn(1.0, -exponent);
}

Cubic CubicOf(PathSegment const& s) { return {{s.start, s.control1, s.control2, s.end}}; }

Cubic Scaled(PathSegment const& s, double scale) {
    return {{s.start * scale, s.control1 * scale, s.control2 * scale, s.end * scale}};
}

void AddSegment(PathSegment const& s, double scale, StrokeContours& contours) {
    if (s.IsCurve()) {
        contours.AddCurve(Scaled(s, scale));
    } else {
        contours.AddLine(s.start * scale, s.end * scale);
    }
}

template <class Segments>
void AddSegments(Segments const& segments, double scale, StrokeContours& contours) {
    for (PathSegment const& s : segments) {
        AddSegment(s, scale, contours);
    }
}

/// Returns the points at which several segments that do not follow each other begin or end, in
/// order.
std::vector<Pt> SharedPoints(CPath const& path, double scale) {
    std::vector<Pt> joints;
    for (Subpath const& subpath : Subpaths(path)) {
        if (subpath.Empty() || !IsDrawn(subpath)) {
            continue;
        }
        joints.push_back(subpath.Start() * scale);
        for (PathSegment const& s : subpath) {
            if (s.IsCurve() || s.start != s.end) {
                joints.push_back(s.end * scale);
            }
        }
        if (subpath.Closed() && joints.back() == subpath.Start() * scale) {
            joints.pop_back();
        }
    }
    std::sort(joints.begin(), joints.end(), IsBefore);
    std::vector<Pt> shared;
    for (std::size_t i = 1; i < joints.size(); ++i) {
        if (joints[i] == joints[i - 1] && (shared.empty() || shared.back() != joints[i])) {
            shared.push_back(joints[i]);
        }
    }
    return shared;
}

/// True when the pen can turn round at a point.
bool MayHaveArcs(CPath const& path, StrokePen const& pen) {
    return pen.join == StrokeJoin::kRound || pen.startCap == StrokeCap::kRound ||
           pen.endCap == StrokeCap::kRound || path.TestContents(CPath::kContainsCurves);
}

bool EndsAtStart(Subpath const& subpath) {
    Pt end = subpath.Start();
    for (PathSegment const& s : subpath) {
        end = s.end;
    }
    return end == subpath.Start();
}

/// Returns the segments of a dash, less those at its ends that together are no longer than the
/// blur. Where a dash begins at a corner, rounding leaves a part of the segment before, whose
/// direction is rounding, too.
std::vector<PathSegment> DashSegments(CPath const& dash, double blur) {
    std::vector<PathSegment> segments;
    for (PathSegment const& s : Segments(dash)) {
        segments.push_back(s);
    }
    auto const isWithin = [](PathSegment const& s, double& rest) {
        rest -= PolygonLength(CubicOf(s));
        return rest >= 0.0;
    };
    auto begin = segments.begin();
    for (double rest = blur; begin != segments.end() && isWithin(*begin, rest);) {
        ++begin;
    }
    segments.erase(segments.begin(), begin);
    for (double rest = blur; !segments.empty() && isWithin(segments.back(), rest);) {
        segments.pop_back();
    }
    return segments;
}

/// Makes the contours of a stroke, in parts where the pen paints the same places often.
class StrokeMaker {
public:
    /// \param size of the coordinates
    /// \param scale by which they are multiplied; the pen is scaled already
    StrokeMaker(StrokePen const& pen, trammel::StrokeStyle const& style, double size, double scale,
                std::vector<Pt> const& shared, bool inParts, std::vector<CPath>& parts)
        : mPattern(style.dashes, style.dashOffset), mIsDashed(!style.dashes.empty()),
          mJoinsAtStart(style.joinsDashesAtStart), mOverlap(kOverlap * pen.tolerance), mSize(size),
          mScale(scale), mParts(parts), mList(parts.back(), 1.0 / scale), mContours(pen, mList),
          mIsSplit(inParts) {
        mContours.SetSharedPoints(shared);
    }
    void Add(Subpath const& subpath);
    /// Adds the side of a closed subpath against its normals, in parts.
    /// \param blur as that of StrokeContours::EndSide(), scaled
    void AddSideInParts(Subpath const& subpath, double blur) {
        mIsOneSided = true;
        mBlur = blur;
        AddInParts(subpath, true);
        mIsOneSided = false;
    }
    double Excess() const { return mContours.Excess() / mScale; }

private:
    void EndWhole(bool closed) {
        mIsOneSided ? mContours.EndSide(mBlur)
        : closed    ? mContours.EndClosed()
                    : mContours.EndOpen();
    }
    void AddToPart(PathSegment const& s) {
        AddSegment(s, mScale, mContours);
        if (mIsOneSided) {
            mLine.push_back(Scaled(s, mScale));
        }
    }
    void AddDot(Pt const& p);
    void AddSolid(Subpath const& subpath, bool closed);
    /// Both return false where the subpath has no length.
    bool AddWhole(Subpath const& subpath, bool closed);
    bool AddInParts(Subpath const& subpath, bool closed);
    void AddDashes(Subpath const& subpath, bool closed);
    /// Begins another part if this one is full. Returns how much room there is.
    std::size_t RoomInPart();
    /// Counts a dash or a point.
    void CountInPart() {
        if (mIsSplit) {
            RoomInPart();
            ++mInPart;
        }
    }

    DashPattern const mPattern;
    bool mIsDashed;
    bool mJoinsAtStart;
    double mOverlap; ///< scaled
    double mSize;
    double mScale;
    std::vector<CPath>& mParts;
    ContourList mList;
    StrokeContours mContours;
    bool mIsSplit;
    bool mIsOneSided = false;
    double mBlur = 0.0;       ///< scaled, of one side
    std::vector<Cubic> mLine; ///< the segments of a part of one side, scaled
    std::size_t mInPart = 0;  ///< segments, dashes or points
};

std::size_t StrokeMaker::RoomInPart() {
    if (mInPart >= kPartSegments) {
        mInPart = 0;
        mParts.emplace_back();
        mList.SetPath(mParts.back());
    }
    return kPartSegments - mInPart;
}

void StrokeMaker::Add(Subpath const& subpath) {
    bool const closed = subpath.Closed() && EndsAtStart(subpath);
    mIsDashed ? AddDashes(subpath, closed) : AddSolid(subpath, closed);
}

void StrokeMaker::AddSolid(Subpath const& subpath, bool closed) {
    if (!(mIsSplit ? AddInParts(subpath, closed) : AddWhole(subpath, closed))) {
        AddDot(subpath.Start());
    }
}

bool StrokeMaker::AddWhole(Subpath const& subpath, bool closed) {
    mContours.Reserve(subpath.EndElement() - subpath.FirstElement());
    AddSegments(subpath, mScale, mContours);
    if (mContours.IsEmpty()) {
        return false;
    }
    EndWhole(closed);
    return true;
}

void StrokeMaker::AddDot(Pt const& p) {
    CountInPart();
    mContours.AddPoint(p * mScale, Pt(1.0, 0.0));
    mContours.EndOpen();
}

bool StrokeMaker::AddInParts(Subpath const& subpath, bool closed) {
    std::vector<PathSegment> segments;
    for (PathSegment const& s : subpath) {
        Cubic const c = Scaled(s, mScale);
        if (c[1] != c[0] || c[2] != c[0] || c[3] != c[0]) {
            segments.push_back(s);
        }
    }
    auto const lengthOf = [&](std::size_t i) { return PolygonLength(Scaled(segments[i], mScale)); };
    std::size_t const count = segments.size();
    bool isPainted = false;
    for (std::size_t i = 0; i < count;) {
        std::size_t const end = std::min(i + RoomInPart(), count);
        mInPart += end - i;
        bool const isFirst = i == 0;
        bool const isLast = end == count;
        // A part begins with the end of the part before. The last one of a closed subpath also has
        // the beginning of the first one.
        std::size_t first = i;
        std::size_t const least = i - std::min(i, kBlock);
        for (double length = 0.0; first > least && !(length >= mOverlap);) {
            length += lengthOf(--first);
        }
        std::size_t behind = 0;
        std::size_t const most = isLast && closed && !isFirst ? std::min(count, kBlock) : 0;
        for (double length = 0.0; behind < most && !(length >= mOverlap);) {
            length += lengthOf(behind++);
        }
        mLine.clear();
        for (std::size_t k = first; k < end; ++k) {
            AddToPart(segments[k]);
        }
        for (std::size_t k = 0; k < behind; ++k) {
            AddToPart(segments[k]);
        }
        isPainted = isPainted || !mContours.IsEmpty();
        if (isFirst && isLast) {
            EndWhole(closed);
        } else if (mIsOneSided) {
            mContours.EndSidePart(mBlur, mLine);
        } else {
            mContours.EndPart(isFirst && !closed, isLast && !closed);
        }
        i = end;
    }
    return isPainted;
}

void StrokeMaker::AddDashes(Subpath const& subpath, bool closed) {
    OutlineMeasure const measure(PathOf(subpath));
    double const length = measure.Length();
    double const blur = kBlurOfSize * mSize + kBlurOfLength * length;
    std::vector<DashRange> dashes;
    if (!(length > 0.0) || !mPattern.Find(length, blur, dashes)) {
        AddSolid(subpath, closed);
        return;
    }
    auto const add = [&](DashRange const& dash) {
        CountInPart();
        if (dash.from < dash.to) {
            CPath piece;
            measure.GetLengthRange(dash.from, dash.to, piece);
            AddSegments(DashSegments(piece, blur), mScale, mContours);
        }
        if (mContours.IsEmpty()) {
            // At a corner, rounding must not tell the direction: it is the one behind.
            mContours.AddPoint(measure.PtAtLength(dash.from) * mScale,
                               measure.AtLength(dash.from + blur).tangent);
        }
    };
    bool const joins = closed && mJoinsAtStart && !dashes.empty() && dashes.front().from == 0.0 &&
                       dashes.back().to == length;
    if (joins && dashes.size() == 1) {
        AddSegments(subpath, mScale, mContours);
        mContours.EndClosed();
        return;
    }
    if (joins) {
        add(dashes.back());
        add(dashes.front());
        mContours.EndOpen();
    }
    for (std::size_t i = joins ? 1 : 0; i + (joins ? 1 : 0) < dashes.size(); ++i) {
        add(dashes[i]);
        mContours.EndOpen();
    }
}

/// The side of a contour on which the region lies.
enum class RegionSide { kUnknown, kAtNormal, kAgainstNormal };

/// Returns the side on which the region lies beside the middle of a segment.
RegionSide RegionBeside(PathSegment const& s, PreparedOutline const& region, double step) {
    Cubic const c = CubicOf(s);
    Pt const direction = s.IsCurve() ? DirectionOf(c, 0.5) : trammel::Normalize(s.end - s.start);
    Pt const middle = s.IsCurve() ? PlaceAt(c, 0.5).point : (s.start + s.end) * 0.5;
    Pt const aside = NormalOf(direction) * step;
    bool const at = region.Contains(middle + aside, FillRule::kEvenOdd);
    bool const against = region.Contains(middle - aside, FillRule::kEvenOdd);
    return at == against ? RegionSide::kUnknown
           : at          ? RegionSide::kAtNormal
                         : RegionSide::kAgainstNormal;
}

/// Returns half of how far the points of a segment are from its start, in one coordinate and as a
/// share of `size`. Halves do not overflow.
double ReachOf(PathSegment const& s, double size) {
    double reach = 0.0;
    for (Pt const& p : {s.control1, s.control2, s.end}) {
        reach = std::max(
            {reach, std::abs(0.5 * p.h - 0.5 * s.start.h), std::abs(0.5 * p.v - 0.5 * s.start.v)});
    }
    return reach / size;
}

/// Returns how much of a contour's length has the region beside it at a distance of `step`. It is
/// 1 where all has it at the normal, and -1 where all has it on the other side. About kVotes
/// segments tell it, and long ones weigh more.
double BalanceBeside(Subpath const& contour, PreparedOutline const& region, double size,
                     double step) {
    std::size_t const count = contour.EndElement() - contour.FirstElement();
    double weight = 0.0;
    double balance = 0.0;
    std::size_t number = 0;
    for (PathSegment const& s : contour) {
        if (number++ % (count / kVotes + 1) != 0) {
            continue;
        }
        RegionSide const side = RegionBeside(s, region, step);
        double const reach = ReachOf(s, size);
        weight += reach;
        balance += side == RegionSide::kAtNormal        ? reach
                   : side == RegionSide::kAgainstNormal ? -reach
                                                        : 0.0;
    }
    return weight > 0.0 ? balance / weight : 0.0;
}

/// Returns the side of a contour on which the region lies that all contours bound.
/// \param blur  how far the contours may cross each other
RegionSide RegionBeside(Subpath const& contour, PreparedOutline const& region, double size,
                        double blur) {
    // Where contours run beside each other, points nearer than the blur may be on the wrong side,
    // and farther ones may be beyond the other contour. So most of the length decides. Contours
    // that are thinner need nearer points.
    double clearest = 0.0;
    for (double const factor : {1.0, 0x1p2, 0x1p6, 0x1p-3, 0x1p-6, 0x1p-9, 0x1p-12}) {
        double const balance = BalanceBeside(contour, region, size, factor * blur);
        clearest = std::abs(balance) > std::abs(clearest) ? balance : clearest;
        if (std::abs(clearest) > 0.5) {
            break;
        }
    }
    if (clearest != 0.0) {
        return clearest > 0.0 ? RegionSide::kAtNormal : RegionSide::kAgainstNormal;
    }
    // The least step first: a greater one may reach another contour.
    for (int exponent = kNearestStep; exponent <= kFarthestStep; exponent += kNextStep) {
        double const step = std::scalbn(size, exponent);
        for (PathSegment const& s : contour) {
            RegionSide const side = RegionBeside(s, region, step);
            if (side != RegionSide::kUnknown) {
                return side;
            }
        }
    }
    return RegionSide::kUnknown;
}

/// The sizes with which the contours of a path are made.
struct Measures {
    Measures(CPath const& path, double penRadius, double tolerance)
        : pathSize(SizeOf(path)), radius(penRadius), scale(ScaleFor(std::max(pathSize, radius))),
          kept(std::max(kFinest * std::max(pathSize, radius), tolerance > 0.0 ? tolerance : 0.0)) {}

    double pathSize; ///< of the coordinates
    double radius;   ///< of the pen
    double scale;    ///< by which all is multiplied
    double kept;     ///< the distance that is kept, not scaled
};

StrokePen PenOf(trammel::StrokeStyle const& style, Measures const& measures) {
    StrokePen pen;
    pen.radius = measures.radius * measures.scale;
    pen.join = style.join;
    pen.miterLimit = style.miterLimit >= 1.0 ? style.miterLimit : 1.0;
    pen.startCap = style.startCap;
    pen.endCap = style.endCap;
    pen.tolerance = measures.kept * measures.scale;
    return pen;
}

/// Calls `add` with each contour of a region, so directed that the side against its normals is
/// outside of the region, or inside with `inward`. The second argument is false for a contour of
/// which nothing is known: it encloses nothing that could be seen.
template <class Add>
void ForGrownSides(CPath const& region, double blur, bool inward, Measures const& measures,
                   Add const& add) {
    double const size = std::max(measures.pathSize, measures.radius);
    PreparedOutline const prepared(region);
    for (Subpath const& contour : Subpaths(region)) {
        RegionSide const side = RegionBeside(contour, prepared, size, blur);
        CPath const one = PathOf(contour);
        bool const isTurned = (side == RegionSide::kAgainstNormal) != inward;
        add(isTurned ? trammel::Reversed(one) : one, side != RegionSide::kUnknown);
    }
}

} // namespace

double CrowdedExtent(CPath const& path, trammel::StrokeStyle const& style) {
    double const radius = 0.5 * style.width;
    double const period = std::accumulate(style.dashes.begin(), style.dashes.end(), 0.0);
    double extent = 0.0;
    double painted = 0.0; // in squares of the radius
    Box<double> box;
    std::size_t inBlock = 0;
    for (PathSegment const& s : Segments(path)) {
        if (!HasFinitePoints(s)) {
            continue;
        }
        Cubic const c = CubicOf(s);
        double const length = PolygonLength(c);
        double const ends = period > 0.0 ? 1.0 + length / period : 1.0;
        painted += 2.0 * (length / radius + 2.0 * ends);
        box.Include(BoxOf(c));
        if (++inBlock == kBlock) {
            double const width = box.highX - box.lowX;
            double const height = box.highY - box.lowY;
            if (painted > kOften * (width / radius + 2.0) * (height / radius + 2.0)) {
                extent = std::max({extent, width, height});
            }
            inBlock = 0;
            painted = 0.0;
            box = Box<double>();
        }
    }
    return extent;
}

double StrokeParts(CPath const& path, trammel::StrokeStyle const& style, double tolerance,
                   bool inParts, std::vector<CPath>& parts) {
    double const radius = 0.5 * style.width;
    if (!(radius > 0.0) || !std::isfinite(radius)) {
        return tolerance > 0.0 ? tolerance : 0.0;
    }
    Measures const measures(path, radius, tolerance);
    StrokePen const pen = PenOf(style, measures);
    std::vector<Pt> const shared =
        MayHaveArcs(path, pen) ? SharedPoints(path, measures.scale) : std::vector<Pt>();

    parts.emplace_back();
    StrokeMaker maker(pen, style, measures.pathSize, measures.scale, shared, inParts, parts);
    if (!inParts) {
        // Each segment has two sides, unless corners or dashes take more.
        parts.back().mCtls.reserve(2 * path.mCtls.size());
        parts.back().mPts.reserve(2 * path.mPts.size());
    }
    for (Subpath const& subpath : Subpaths(path)) {
        if (!subpath.Empty() && IsDrawn(subpath)) {
            maker.Add(subpath);
        }
    }
    return measures.kept + maker.Excess();
}

double AppendGrown(CPath const& region, double blur, double distance,
                   trammel::StrokeStyle const& border, double tolerance, CPath& out) {
    Measures const measures(region, std::abs(distance), tolerance);
    ContourList list(out, 1.0 / measures.scale);
    StrokeContours sides(PenOf(border, measures), list);
    ForGrownSides(region, blur, distance < 0.0, measures, [&](CPath const& one, bool isKnown) {
        AddSegments(Segments(one), measures.scale, sides);
        isKnown ? sides.EndSide(blur * measures.scale) : sides.EndClosed();
    });
    return measures.kept + sides.Excess() / measures.scale;
}

double BorderParts(CPath const& region, double blur, double distance,
                   trammel::StrokeStyle const& border, double tolerance,
                   std::vector<CPath>& parts) {
    Measures const measures(region, std::abs(distance), tolerance);
    StrokePen const pen = PenOf(border, measures);
    std::vector<Pt> const shared = SharedPoints(region, measures.scale);
    parts.emplace_back();
    StrokeMaker maker(pen, border, measures.pathSize, measures.scale, shared, true, parts);
    ForGrownSides(region, blur, distance < 0.0, measures, [&](CPath const& one, bool isKnown) {
        for (Subpath const& contour : Subpaths(one)) {
            isKnown ? maker.AddSideInParts(contour, blur * measures.scale) : maker.Add(contour);
        }
    });
    return measures.kept + maker.Excess();
}

} // namespace trammel_detail
