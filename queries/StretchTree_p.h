// SPDX-License-Identifier: MIT

// The tree of boxes around stretches of an outline, for the search of the nearest place. Not
// installed.

#ifndef TRAMMEL_STRETCHTREE_P_H
#define TRAMMEL_STRETCHTREE_P_H

#include "CBezier.h"
#include "PointMath_p.h"
#include "TPoint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace trammel_detail {

/// A box around a stretch of an outline, turned so that one side is parallel to the chord.
///
/// The stretches of an outline are mildly bent, so such a box fits them far better than an upright
/// one. Each of its sides touches the stretch, or nearly so. Therefore the number of boxes that are
/// about as near as the nearest place hardly grows with the outline, even if it is ragged.
///
/// Bounds are safe, not tight to the last bits. With u = 2^-53, all rounding errors here are some
/// ten u times the magnitudes of coordinates. The points that a search computes leave the hull of
/// a segment's points by no more than 33u of these (see ReachOf). The slack for both is kSlack.
///
/// Where squares could overflow, the box is the whole plane. Where a chord is so short that its
/// direction could be wrong, the box is upright.
class TurnedBox {
public:
    static constexpr double kSlack = 0x1p-44;
    static constexpr double kLargest = 0x1p500;
    static constexpr double kShortest = 0x1p-400;

    /// Makes a box with nothing in it. One side will be parallel to `direction`.
    TurnedBox(TPoint<double> const& origin, TPoint<double> const& direction) : mOrigin(origin) {
        double const length = std::sqrt(Square(direction));
        if (length >= kShortest && length <= kLargest) {
            mAlong = direction / length;
        }
    }

    void Include(TPoint<double> const& p) {
        TPoint<double> const e = p - mOrigin;
        double const x = Dot(mAlong, e);
        double const y = Cross(mAlong, e);
        mLowX = std::min(mLowX, x);
        mHighX = std::max(mHighX, x);
        mLowY = std::min(mLowY, y);
        mHighY = std::max(mHighY, y);
    }
    /// Calls use(p) for each corner.
    template <class Use> void ForCorners(Use const& use) const {
        TPoint<double> const across(-mAlong.v, mAlong.h);
        for (double const x : {mLowX, mHighX}) {
            for (double const y : {mLowY, mHighY}) {
                use(mOrigin + mAlong * x + across * y);
            }
        }
    }
    /// Grows by the slack for coordinates of a magnitude. The box is then complete.
    void Finish(double size) {
        double const slack = kSlack * size;
        mLowX -= slack;
        mLowY -= slack;
        mHighX += slack;
        mHighY += slack;
        if (!(size <= kLargest)) { // also for a NaN
            mOrigin.SetNull();
            mLowX = mLowY = -std::numeric_limits<double>::infinity();
            mHighX = mHighY = std::numeric_limits<double>::infinity();
        }
    }
    /// Returns the box around a curve. The distance of a curve from a straight line through
    /// farthest of its ends is at most 3/4 of the farthest control point's, as the control points'
    /// weights add up to 3t(1 - t) <= 3/4.
    static TurnedBox Around(CBezier const& c) {
        TurnedBox ends(c.P0, c.P3 - c.P0);
        ends.Include(c.P0);
        ends.Include(c.P3);
        TurnedBox box = ends;
        box.Include(c.P1);
        box.Include(c.P2);
        box.mLowX = 0.25 * ends.mLowX + 0.75 * box.mLowX;
        box.mLowY = 0.25 * ends.mLowY + 0.75 * box.mLowY;
        box.mHighX = 0.25 * ends.mHighX + 0.75 * box.mHighX;
        box.mHighY = 0.25 * ends.mHighY + 0.75 * box.mHighY;
        return box;
    }

    /// How far a point is.
    struct Distance {
        double square; ///< of the distance from the box
        double order;  ///< of the distance from the middle line of the box: a guess at the stretch
    };
    Distance From(TPoint<double> const& p) const {
        TPoint<double> const e = p - mOrigin;
        double const x = Dot(mAlong, e);
        double const y = Cross(mAlong, e);
        double const dx = std::max(std::max(mLowX - x, x - mHighX), 0.0);
        double const dy = std::max(std::max(mLowY - y, y - mHighY), 0.0);
        double const middle = y - 0.5 * (mLowY + mHighY);
        return {dx * dx + dy * dy, dx * dx + middle * middle};
    }

private:
    TPoint<double> mOrigin;
    TPoint<double> mAlong = TPoint<double>(1.0, 0.0); ///< of length 1
    double mLowX = std::numeric_limits<double>::infinity();
    double mHighX = -std::numeric_limits<double>::infinity();
    double mLowY = std::numeric_limits<double>::infinity();
    double mHighY = -std::numeric_limits<double>::infinity();
};

/// The spread of points about one of them.
class Spread {
public:
    explicit Spread(TPoint<double> const& origin) : mOrigin(origin) {}

    void Include(TPoint<double> const& p) {
        TPoint<double> const e = p - mOrigin;
        mSum += e;
        mHH += e.h * e.h;
        mHV += e.h * e.v;
        mVV += e.v * e.v;
        mCount += 1.0;
    }
    /// Returns a vector in the direction in which the points are spread most: the eigenvector of
    /// the greater eigenvalue of their covariance.
    TPoint<double> Direction() const {
        double const difference = (mHH - mVV) * mCount - (mSum.h - mSum.v) * (mSum.h + mSum.v);
        double const both = 2.0 * (mHV * mCount - mSum.h * mSum.v);
        double const root = std::sqrt(difference * difference + both * both);
        return difference >= 0.0 ? TPoint<double>(root + difference, both)
                                 : TPoint<double>(both, root - difference);
    }

private:
    TPoint<double> mOrigin;
    TPoint<double> mSum;
    double mHH = 0.0;
    double mHV = 0.0;
    double mVV = 0.0;
    double mCount = 0.0;
};

/// The tree over the segments of an outline. Each node has the box around the nodes below it.
class StretchTree {
public:
    /// Builds the tree for `count` segments. curve(i) returns segment i; a line has its ends in P0
    /// and P3, and again in P1 and P2.
    template <class CurveOf> void Build(std::size_t count, CurveOf const& curve) {
        std::size_t boxes = count;
        for (std::size_t level = count; level > 1; boxes += level) {
            level = (level + kChildren - 1) / kChildren;
        }
        mBoxes.reserve(boxes);
        std::vector<double> sizes; // of coordinates, for each box
        sizes.reserve(boxes);
        for (std::size_t i = 0; i < count; ++i) {
            CBezier const c = curve(i);
            TurnedBox box = TurnedBox::Around(c);
            double const size = Taxicab(c.P0) + Taxicab(c.P1) + Taxicab(c.P2) + Taxicab(c.P3);
            box.Finish(size);
            mBoxes.push_back(box);
            sizes.push_back(size);
        }
        mLevels[0].count = count;
        std::size_t each = 1; // the number of segments below a node
        while (mLevels[mTop].count > 1) {
            Level const below = mLevels[mTop];
            Level& level = mLevels[++mTop];
            level.first = mBoxes.size();
            level.count = (below.count + kChildren - 1) / kChildren;
            each *= kChildren;
            for (std::size_t i = 0; i < level.count; ++i) {
                double size = 0.0;
                for (std::size_t k = i * kChildren; k < std::min((i + 1) * kChildren, below.count);
                     ++k) {
                    double const other = sizes[below.first + k];
                    size = other <= size ? size : other; // a NaN stays
                }
                TPoint<double> const origin = curve(i * each).P0;
                Spread spread(origin);
                ForPoints(i, curve, [&](TPoint<double> const& p) { spread.Include(p); });
                TurnedBox box(origin, spread.Direction());
                ForPoints(i, curve, [&](TPoint<double> const& p) { box.Include(p); });
                box.Finish(size);
                mBoxes.push_back(box);
                sizes.push_back(size);
            }
        }
    }

    /// Calls consider(i) for each segment that may be as near to `p` as `limit`, near ones mostly
    /// first. `limit` leaves room for rounding, and consider() may make it smaller.
    template <class Consider>
    void Search(TPoint<double> const& p, double const& limit, Consider const& consider) const {
        struct Node {
            TurnedBox::Distance distance;
            std::size_t level;
            std::size_t index;
        };
        if (mBoxes.empty()) {
            return;
        }
        std::array<Node, kMostLevels*(kChildren - 1) + 1> pending;
        std::size_t count = 0;
        pending[count++] = Node{{0.0, 0.0}, mTop, 0};
        while (count > 0) {
            Node const node = pending[--count];
            if (node.distance.square > limit * limit) {
                continue;
            }
            if (node.level == 0) {
                consider(node.index);
                continue;
            }
            Level const& below = mLevels[node.level - 1];
            std::size_t const end = std::min((node.index + 1) * kChildren, below.count);
            std::size_t const firstPending = count;
            for (std::size_t i = node.index * kChildren; i < end; ++i) {
                TurnedBox::Distance const distance = mBoxes[below.first + i].From(p);
                if (distance.square > limit * limit) {
                    continue;
                }
                // The box with the nearest middle line goes on top and is taken first.
                std::size_t at = count++;
                for (; at > firstPending && pending[at - 1].distance.order < distance.order; --at) {
                    pending[at] = pending[at - 1];
                }
                pending[at] = Node{distance, node.level - 1, i};
            }
        }
    }

private:
    /// Calls use(p) for points whose hull contains what is below node `i` of the top level: control
    /// points, or corners of boxes far below, which lie close to the stretch.
    template <class CurveOf, class Use>
    void ForPoints(std::size_t i, CurveOf const& curve, Use const& use) const {
        std::size_t const down = std::min<std::size_t>(mTop, 2);
        Level const& parts = mLevels[mTop - down];
        std::size_t const each = down == 2 ? kChildren * kChildren : kChildren;
        for (std::size_t k = i * each; k < std::min((i + 1) * each, parts.count); ++k) {
            if (mTop > 2) {
                mBoxes[parts.first + k].ForCorners(use);
            } else {
                CBezier const c = curve(k);
                for (TPoint<double> const& p : {c.P0, c.P1, c.P2, c.P3}) {
                    use(p);
                }
            }
        }
    }

    /// The number of children of a node.
    static constexpr std::size_t kChildren = 4;
    /// The most levels that a tree can have. Each level has a quarter of the nodes of the one
    /// below.
    static constexpr std::size_t kMostLevels = 33;

    struct Level {
        std::size_t first = 0; ///< the index of its first box
        std::size_t count = 0; ///< the number of its boxes
    };

    std::vector<TurnedBox> mBoxes;
    std::array<Level, kMostLevels> mLevels; ///< from the segments' own boxes to the single one
    std::size_t mTop = 0;                   ///< the level of the single box
};

} // namespace trammel_detail

#endif
