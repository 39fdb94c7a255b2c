// SPDX-License-Identifier: MIT

// The tree serves where few boxes hold a point. Where segments run to and fro past each other many
// do, and a grid takes its place (WindingGrid_p.h).
//
// A node of the tree has up to eight children, which are segments or nodes. The children of most
// nodes are a chain: each begins where the one before ends. A chain has a box, and a height where
// it begins and one where it ends. A contour is a closed chain, and its tree has one root. The
// roots of all contours are children again, in nodes that hold whole contours.
//
// A chain whose box does not surround a point crosses the point's ray as its ends do
// (PlainCrossings), and a closed one as often in each direction. That is the very sum over its
// segments, in integers. So the answer does not depend on how the tree was made.
//
// Coordinates of boxes and ends are kept in few bits. A monotone mapping takes all coordinates to a
// lattice, and each node maps the lattice to steps of its own. So the step of a point tells where
// it lies unless it equals the step of what it is compared with. Then the child is looked into, as
// if its box surrounded the point. The coordinates themselves decide in the end.

#include "PreparedOutline.h"

#include "ContourWalk_p.h"
#include "PointMath_p.h"
#include "RayCrossings_p.h"
#include "Vector_p.h"
#include "WindingGrid_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <new>

namespace trammel {
namespace {

using trammel_detail::BitsOfTwo;
using trammel_detail::CoordinatesAt;
using trammel_detail::CountOfBits;
using trammel_detail::Double2;
using trammel_detail::GridSegment;
using trammel_detail::Lane;
using trammel_detail::PointAt;
using trammel_detail::Short8;
using trammel_detail::WindingGrid;

typedef TPoint<double> Pt;
typedef std::uint32_t Id; ///< of a node, a point or a segment
typedef std::int16_t Step;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The greatest step of a child. Steps of points reach from -1 to 1 more than that.
constexpr Step kMostStep = std::numeric_limits<Step>::max() - 1;
/// A step below those of all points.
constexpr Step kNoStep = -2;
/// The children of a node.
constexpr std::size_t kFanOut = 8;
/// Where more boxes than these hold a point on average, a grid answers faster than the tree. Each
/// takes some 10 ns to look into. A query of the grid takes some 30 ns.
constexpr double kMostBoxes = 6.0;

/// A point of the lattice.
struct Place {
    std::int64_t v;
    std::int64_t h;
};

/// A monotone mapping of each coordinate to the lattice.
struct Lattice {
    static constexpr double kPlaces = 0x1p50; ///< in each direction

    Double2 half = 1.0; ///< 1/2 where the extent overflows, else 1
    Double2 origin = 0.0;
    Double2 scale = 0.0;

    Lattice() = default;
    /// Of the points between two corners, which are finite.
    Lattice(Double2 const& lo, Double2 const& hi) {
        Double2 const extent = hi - lo;
        half = Select(extent < kInfinity, Double2(1.0), Double2(0.5));
        origin = lo * half;
        // A tiny extent has fewer places, and one below 2^-1023 has a single one.
        scale = Min(Double2(kPlaces) / (hi * half - origin), std::numeric_limits<double>::max());
    }
    /// Maps a point between the corners: v in lane 0 and h in lane 1.
    Place operator()(Double2 const& p) const {
        Double2 const place = (p * half - origin) * scale;
        return {static_cast<std::int64_t>(Lane<0>(place)),
                static_cast<std::int64_t>(Lane<1>(place))};
    }
};

/// A chain while the tree is built.
struct Chain {
    static constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
    static constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

    Place low = {kMost, kMost};
    Place high = {kLeast, kLeast};
    std::int64_t start = kLeast; ///< the v where it begins; kLeast for closed chains
    std::int64_t end = kLeast;

    void Include(Place const& p) {
        low = {std::min(low.v, p.v), std::min(low.h, p.h)};
        high = {std::max(high.v, p.v), std::max(high.h, p.h)};
    }
    bool IsClosed() const { return start == kLeast; }
};

/// Returns the chain of several chains in a row, or of several closed ones.
Chain Joined(Chain const* chains, std::size_t count) {
    Chain joined;
    for (std::size_t i = 0; i < count; ++i) {
        joined.Include(chains[i].low);
        joined.Include(chains[i].high);
    }
    joined.start = chains[0].start;
    joined.end = chains[count - 1].end;
    return joined;
}

/// What comparing a point with a node's children tells.
struct Answer {
    int crossings;  ///< of all children that need not be looked into
    unsigned inner; ///< bit i is set when child i has to be looked into
};

struct Node {
    Step top[kFanOut];
    Step bottom[kFanOut];
    Step left[kFanOut];
    Step right[kFanOut];
    Step start[kFanOut]; ///< the v where a chain begins, kNoStep for a closed one
    Step end[kFanOut];
    Place origin;        ///< of the steps
    Id first;            ///< the first child: a node, or where the first segment begins
    std::uint8_t shiftV; ///< a step is 2^shift places
    std::uint8_t shiftH;
    std::uint8_t isLeaf; ///< 1: the children are segments
    std::uint8_t curves; ///< bit i is set when segment i is a curve

    /// Makes a node of 1 to 8 chains.
    Node(Chain const* chains, std::size_t count, Id firstChild, bool leaf, unsigned curveBits)
        : first(firstChild), isLeaf(leaf ? 1 : 0), curves(static_cast<std::uint8_t>(curveBits)) {
        Chain const all = Joined(chains, count);
        origin = all.low;
        shiftV = ShiftFor(all.high.v - all.low.v);
        shiftH = ShiftFor(all.high.h - all.low.h);
        for (std::size_t i = 0; i < kFanOut; ++i) {
            bool const isChild = i < count;
            Chain const& chain = chains[isChild ? i : 0];
            bool const isOpen = isChild && !chain.IsClosed();
            top[i] = isChild ? ChildStep(chain.low.v - origin.v, shiftV) : kMostStep;
            bottom[i] = isChild ? ChildStep(chain.high.v - origin.v, shiftV) : kNoStep;
            left[i] = isChild ? ChildStep(chain.low.h - origin.h, shiftH) : kNoStep;
            right[i] = isChild ? ChildStep(chain.high.h - origin.h, shiftH) : kNoStep;
            start[i] = isOpen ? ChildStep(chain.start - origin.v, shiftV) : kNoStep;
            end[i] = isOpen ? ChildStep(chain.end - origin.v, shiftV) : kNoStep;
        }
    }

    Answer Ask(Place const& p) const {
        Short8 const v(PointStep(p.v - origin.v, shiftV));
        Short8 const h(PointStep(p.h - origin.h, shiftH));
        Short8 const tops = Short8::Load(top);
        Short8 const bottoms = Short8::Load(bottom);
        Short8 const starts = Short8::Load(start);
        Short8 const ends = Short8::Load(end);
        Short8 const startsBeyond = starts > v;
        Short8 const endsBeyond = ends > v;
        Short8 const ahead =
            (Short8::Load(left) > h) & (startsBeyond | (v > starts)) & (endsBeyond | (v > ends));
        Short8 const plain = ahead | (tops > v) | (v > bottoms) | (h > Short8::Load(right));
        unsigned const crossed = BitsOfTwo(ahead & endsBeyond, ahead & startsBeyond);
        return {CountOfBits(crossed & 0xFFU) - CountOfBits(crossed >> kFanOut),
                ~BitsOfTwo(plain, plain) & 0xFFU};
    }

    /// Returns the sum of the areas of the children's boxes, in places of the lattice.
    double AreaOfChildren() const {
        double area = 0.0;
        for (std::size_t i = 0; i < kFanOut; ++i) {
            area += static_cast<double>((bottom[i] - top[i]) * (right[i] - left[i]));
        }
        return std::ldexp(area, shiftV + shiftH);
    }

private:
    static std::uint8_t ShiftFor(std::int64_t extent) {
        std::uint8_t shift = 0;
        while (extent >> shift > kMostStep) {
            ++shift;
        }
        return shift;
    }
    static Step ChildStep(std::int64_t places, unsigned shift) {
        return static_cast<Step>(places >> shift);
    }
    static Step PointStep(std::int64_t places, unsigned shift) {
        // Shifting rounds down negative numbers, too.
        std::int64_t const step = places >> shift;
        return static_cast<Step>(
            std::min(std::max(step, std::int64_t{-1}), std::int64_t{kMostStep} + 1));
    }
};

/// A contour while the tree is built.
struct Contour {
    Id point;    ///< its first point
    Id segment;  ///< its first segment
    Id segments; ///< how many it has, 1 or more
    Chain box;
    std::uint64_t key; ///< MortonKey
};

/// Gathers the contours that count: those with segments, and without a coordinate that is not
/// finite. A visitor of WalkContours.
class ContourCollector {
public:
    std::vector<Pt> points; ///< of each contour: where it begins, then the points of its segments
    std::vector<bool> isCurve;
    std::vector<Contour> contours;
    Double2 lo = kInfinity;
    Double2 hi = -kInfinity;

    void Begin(void const* p) {
        Close();
        mCurrent = PointAt(p);
    }
    void LineTo(void const* p) { Add(false, {PointAt(p)}); }
    void CurveTo(void const* c1, void const* c2, void const* e) {
        Add(true, {PointAt(c1), PointAt(c2), PointAt(e)});
    }
    void Close() {
        Pt const last = mCurrent;
        if (mIsOpen) {
            if (mCurrent != points[mFirstPoint]) {
                Add(false, {points[mFirstPoint]});
            }
            Keep();
            mIsOpen = false;
        }
        mCurrent = last;
    }

private:
    void Add(bool curve, std::initializer_list<Pt> some) {
        if (!mIsOpen) {
            mIsOpen = true;
            mFirstPoint = points.size();
            mFirstSegment = isCurve.size();
            points.push_back(mCurrent);
        }
        if (points.size() > kMostPoints) {
            throw std::bad_alloc();
        }
        points.insert(points.end(), some);
        isCurve.push_back(curve);
        mCurrent = points.back();
    }
    /// Keeps the contour that ends here if it counts.
    void Keep() {
        Double2 low = kInfinity;
        Double2 high = -kInfinity;
        bool finite = true;
        for (std::size_t i = mFirstPoint; i < points.size(); ++i) {
            finite = finite && trammel_detail::IsFinite(points[i]);
            low = Min(CoordinatesAt(&points[i]), low);
            high = Max(CoordinatesAt(&points[i]), high);
        }
        if (!finite) {
            points.resize(mFirstPoint);
            isCurve.resize(mFirstSegment);
            return;
        }
        lo = Min(low, lo);
        hi = Max(high, hi);
        Contour contour = {};
        contour.point = static_cast<Id>(mFirstPoint);
        contour.segment = static_cast<Id>(mFirstSegment);
        contour.segments = static_cast<Id>(isCurve.size() - mFirstSegment);
        contours.push_back(contour);
    }

    static constexpr std::size_t kMostPoints = (std::size_t{1} << 31U) - 4;

    Pt mCurrent;
    bool mIsOpen = false; ///< the contour has segments
    std::size_t mFirstPoint = 0;
    std::size_t mFirstSegment = 0;
};

/// Returns the bits of `x`, up to 31 of them, with a zero between each two.
std::uint64_t Spread(std::uint64_t x) {
    x = (x | x << 16U) & 0x0000FFFF0000FFFFU;
    x = (x | x << 8U) & 0x00FF00FF00FF00FFU;
    x = (x | x << 4U) & 0x0F0F0F0F0F0F0F0FU;
    x = (x | x << 2U) & 0x3333333333333333U;
    return (x | x << 1U) & 0x5555555555555555U;
}

/// Returns the key of a box's middle along Morton's curve, on which near keys are near points.
std::uint64_t MortonKey(Chain const& box) {
    constexpr unsigned kShift = 20; // from 51 bits, and 1 more for the sum, to 31
    auto const v = static_cast<std::uint64_t>((box.low.v + box.high.v) / 2) >> kShift;
    auto const h = static_cast<std::uint64_t>((box.low.h + box.high.h) / 2) >> kShift;
    return Spread(v) << 1U | Spread(h);
}

} // namespace

struct PreparedOutline::Index {
    double mTop;
    double mBottom;
    double mLeft;
    double mRight;
    Lattice mLattice;
    Id mRoot = 0;
    std::vector<Pt> mPoints;
    std::vector<Node> mNodes;
    WindingGrid mGrid; // empty unless the boxes are crowded

    /// Returns the index of an outline; null without segments.
    template <class Outline> static std::shared_ptr<Index const> Of(Outline const& outline) {
        ContourCollector collector;
        trammel_detail::WalkContours(outline, collector);
        return collector.contours.empty() ? nullptr : std::make_shared<Index const>(collector);
    }

    /// Of at least one contour.
    explicit Index(ContourCollector& collector)
        : mTop(Lane<0>(collector.lo)), mBottom(Lane<0>(collector.hi)), mLeft(Lane<1>(collector.lo)),
          mRight(Lane<1>(collector.hi)), mLattice(collector.lo, collector.hi),
          mPoints(collector.points.begin(), collector.points.end()) {
        std::vector<Contour>& contours = collector.contours;
        for (Contour& contour : contours) {
            Id const end = &contour != &contours.back() ? (&contour + 1)->point
                                                        : static_cast<Id>(mPoints.size());
            for (Id i = contour.point; i < end; ++i) {
                contour.box.Include(mLattice(CoordinatesAt(&mPoints[i])));
            }
            contour.key = MortonKey(contour.box);
        }
        std::sort(contours.begin(), contours.end(),
                  [](Contour const& a, Contour const& b) { return a.key < b.key; });

        // The roots of the contours come first, so that they are children in a row.
        std::size_t nodes = contours.size();
        for (Contour const& contour : contours) {
            nodes += NodesAbove(contour.segments) - 1;
        }
        nodes += contours.size() > 1 ? NodesAbove(contours.size()) : 0;
        mNodes.reserve(nodes);
        Node const none(&contours[0].box, 1, 0, false, 0);
        mNodes.resize(contours.size(), none);
        std::vector<Chain> chains;
        for (std::size_t i = 0; i < contours.size(); ++i) {
            Id first = PlaceSegments(contours[i], collector.isCurve, static_cast<Id>(i), chains);
            while (chains.size() > 1) {
                first = PlaceNodes(chains, first, static_cast<Id>(i));
            }
        }
        chains.clear();
        for (Contour const& contour : contours) {
            chains.push_back(contour.box);
        }
        for (Id first = 0; chains.size() > 1;) {
            mRoot = first = PlaceNodes(chains, first, kNowhere);
        }
        if (BoxesAroundPoint() > kMostBoxes) {
            mGrid = WindingGrid(mPoints, SegmentsOf(contours, collector.isCurve), collector.lo,
                                collector.hi);
            if (!mGrid.IsEmpty()) {
                mNodes = {};
            }
        }
    }

    std::size_t Size() const {
        return sizeof(*this) + mPoints.capacity() * sizeof(Pt) + mNodes.capacity() * sizeof(Node) +
               mGrid.Bytes();
    }

    int WindingNumber(Pt const& p) const {
        // Outside of the bounds every contour crosses as often in each direction.
        if (!(p.v >= mTop && p.v < mBottom && p.h >= mLeft && p.h < mRight)) {
            return 0;
        }
        if (!mGrid.IsEmpty()) {
            return mGrid.WindingNumber(mPoints.data(), p);
        }
        Place const place = mLattice(CoordinatesAt(&p));
        // Each node that is taken from the stack puts up to eight on it, all of the level below.
        std::array<Id, kMostLevels*(kFanOut - 1) + 1> stack;
        std::size_t waiting = 0;
        stack[waiting++] = mRoot;
        int crossings = 0;
        while (waiting > 0) {
            Node const& node = mNodes[stack[--waiting]];
            Answer const answer = node.Ask(place);
            crossings += answer.crossings;
            for (unsigned inner = answer.inner; inner != 0; inner &= inner - 1) {
                auto const child = static_cast<Id>(__builtin_ctz(inner));
                if (node.isLeaf == 0) {
                    stack[waiting++] = node.first + child;
                } else {
                    crossings += SegmentCrossings(node, child, p);
                }
            }
        }
        return crossings;
    }

private:
    /// Returns how many boxes of the tree hold a point on average over the outline's box.
    double BoxesAroundPoint() const {
        double area = 0.0;
        for (Node const& node : mNodes) {
            area += node.AreaOfChildren();
        }
        return area / (Lattice::kPlaces * Lattice::kPlaces);
    }

    static std::vector<GridSegment> SegmentsOf(std::vector<Contour> const& contours,
                                               std::vector<bool> const& isCurve) {
        std::vector<GridSegment> segments;
        for (Contour const& contour : contours) {
            Id point = contour.point;
            for (Id i = 0; i < contour.segments; ++i) {
                bool const curve = isCurve[contour.segment + i];
                segments.push_back({point, curve});
                point += curve ? 3 : 1;
            }
        }
        return segments;
    }

    static constexpr Id kNowhere = std::numeric_limits<Id>::max();
    /// Levels of a tree over 2^31 segments, and as many over as many contours.
    static constexpr std::size_t kMostLevels = 22;

    /// Returns the number of nodes in a tree with so many children at the bottom.
    static std::size_t NodesAbove(std::size_t children) {
        std::size_t nodes = 0;
        do {
            children = (children + kFanOut - 1) / kFanOut;
            nodes += children;
        } while (children > 1);
        return nodes;
    }

    /// Stores a node, at `root` if it is the only one of its level and the root has a place.
    void Put(Node const& node, bool isOnly, Id root) {
        if (isOnly && root != kNowhere) {
            mNodes[root] = node;
        } else {
            mNodes.push_back(node);
        }
    }

    /// Makes the leaves of a contour. Returns the first one, and their chains in `chains`.
    Id PlaceSegments(Contour const& contour, std::vector<bool> const& isCurve, Id root,
                     std::vector<Chain>& chains) {
        bool const isOnly = contour.segments <= kFanOut;
        auto const firstLeaf = static_cast<Id>(mNodes.size());
        chains.clear();
        Id point = contour.point;
        for (Id segment = 0; segment < contour.segments; segment += kFanOut) {
            std::array<Chain, kFanOut> some;
            std::size_t const count = std::min<std::size_t>(contour.segments - segment, kFanOut);
            Id const first = point;
            unsigned curves = 0;
            Place at = mLattice(CoordinatesAt(&mPoints[point]));
            for (std::size_t i = 0; i < count; ++i) {
                bool const curve = isCurve[contour.segment + segment + i];
                curves |= (curve ? 1U : 0U) << i;
                some[i].start = at.v;
                some[i].Include(at);
                for (int k = curve ? 3 : 1; k > 0; --k) {
                    at = mLattice(CoordinatesAt(&mPoints[++point]));
                    some[i].Include(at);
                }
                some[i].end = at.v;
            }
            Put(Node(some.data(), count, first, true, curves), isOnly, root);
            chains.push_back(Joined(some.data(), count));
        }
        return firstLeaf;
    }

    /// Makes the level above the nodes of `chains`, which begin at `first`. Returns the level's
    /// first node, and its chains in `chains`.
    Id PlaceNodes(std::vector<Chain>& chains, Id first, Id root) {
        bool const isOnly = chains.size() <= kFanOut;
        auto const firstNode = static_cast<Id>(mNodes.size());
        std::size_t nodes = 0;
        for (std::size_t i = 0; i < chains.size(); i += kFanOut) {
            std::size_t const count = std::min(chains.size() - i, kFanOut);
            Put(Node(&chains[i], count, first + static_cast<Id>(i), false, 0), isOnly, root);
            chains[nodes++] = Joined(&chains[i], count);
        }
        chains.resize(nodes);
        return firstNode;
    }

    int SegmentCrossings(Node const& leaf, Id segment, Pt const& p) const {
        unsigned const before = leaf.curves & ((1U << segment) - 1);
        return trammel_detail::CrossingsOfSegment(
            &mPoints[leaf.first + segment + 2 * static_cast<unsigned>(CountOfBits(before))],
            (leaf.curves >> segment & 1U) != 0, p);
    }
};

PreparedOutline::PreparedOutline(CPath const& path) : mIndex(Index::Of(path)) {}
PreparedOutline::PreparedOutline(TPolygon<double> const& polygon) : mIndex(Index::Of(polygon)) {}
PreparedOutline::PreparedOutline(CFPolygonRef const& polygon) : mIndex(Index::Of(polygon)) {}
PreparedOutline::PreparedOutline(std::vector<TPoint<double>> const& ring)
    : mIndex(Index::Of(ring)) {}

int PreparedOutline::WindingNumber(TPoint<double> const& p) const noexcept {
    return mIndex != nullptr ? mIndex->WindingNumber(p) : 0;
}

void PreparedOutline::WindingNumbers(TPoint<double> const* points, std::size_t count,
                                     int* windings) const noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        windings[i] = WindingNumber(points[i]);
    }
}

bool PreparedOutline::Contains(TPoint<double> const& p, FillRule rule) const noexcept {
    return IsInside(WindingNumber(p), rule);
}

void PreparedOutline::Contains(TPoint<double> const* points, std::size_t count, FillRule rule,
                               bool* inside) const noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        inside[i] = Contains(points[i], rule);
    }
}

std::size_t PreparedOutline::MemorySize() const noexcept {
    return mIndex != nullptr ? mIndex->Size() : 0;
}

} // namespace trammel
