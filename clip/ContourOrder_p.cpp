// SPDX-License-Identifier: MIT

#include "ContourOrder_p.h"

#include "Predicates_p.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace trammel_detail {

namespace {

/// True when p comes later than q in a sweep upwards that goes from left to right at each height.
bool Higher(GridPoint p, GridPoint q) { return q < p; }

/// A local maximum of a contour. Two chains of edges end there, which have the numbers of the local
/// minima where they begin.
struct Maximum {
    GridPoint at;
    std::size_t left;
    std::size_t right;
};

/// The low point by which a contour is listed.
class ListingPoint {
public:
    explicit ListingPoint(Scratch* scratch)
        : mMinima(scratch), mMaxima(scratch), mParent(scratch) {}

    /// Returns the point for the contour of `count` vertices from `v`, which starts or ends at its
    /// highest vertex.
    GridPoint Of(GridPoint const* v, std::size_t count);

private:
    std::size_t Root(std::size_t i) {
        while (mParent[i] != i) {
            mParent[i] = mParent[mParent[i]];
            i = mParent[i];
        }
        return i;
    }

    ScratchVector<GridPoint> mMinima;
    ScratchVector<Maximum> mMaxima;
    ScratchVector<std::size_t> mParent;
};

GridPoint ListingPoint::Of(GridPoint const* v, std::size_t count) {
    mMinima.clear();
    mMaxima.clear();
    auto const next = [count](std::size_t i) { return i + 1 == count ? 0 : i + 1; };
    // The walk starts at a highest vertex, so that it meets every minimum before the maximum that
    // follows it.
    std::size_t const start = Higher(v[0], v[count - 1]) ? 0 : count - 1;
    bool rising = false;
    std::size_t i = start;
    do {
        std::size_t const j = next(i);
        bool const up = v[j].y > v[i].y;
        bool const down = v[j].y < v[i].y;
        if (up && !rising) {
            // A horizontal edge at the bottom counts with its left end.
            std::size_t const before = i == 0 ? count - 1 : i - 1;
            bool const flat = v[before].y == v[i].y;
            mMinima.push_back(flat && v[before].x < v[i].x ? v[before] : v[i]);
            rising = true;
        } else if (down && rising) {
            std::size_t const before = i == 0 ? count - 1 : i - 1;
            bool const flat = v[before].y == v[i].y;
            // The chain that arrives ends to the left if the turn at the top is to the right.
            bool const leftArrives =
                flat ? v[before].x < v[i].x : SideOf(v[before], v[i], v[j]) < 0;
            std::size_t const arriving = mMinima.size() - 1;
            std::size_t const leaving = mMinima.size();
            mMaxima.push_back(
                {v[i], leftArrives ? arriving : leaving, leftArrives ? leaving : arriving});
            rising = false;
        }
        i = j;
    } while (i != start);
    if (mMinima.size() < 2) {
        return mMinima.empty() ? v[0] : mMinima[0];
    }
    // The maximum at the start only closes the contour.
    std::sort(mMaxima.begin(), mMaxima.end(),
              [](Maximum const& m, Maximum const& n) { return m.at < n.at; });
    mParent.resize(mMinima.size());
    std::iota(mParent.begin(), mParent.end(), std::size_t{0});
    for (Maximum const& m : mMaxima) {
        mParent[Root(m.left)] = Root(m.right);
    }
    return mMinima[Root(0)];
}

} // namespace

ScratchVector<std::size_t> OrderContours(RegionContours& resolved) {
    GridLines& contours = resolved.contours;
    ScratchVector<GridPoint>& points = contours.points;
    ScratchVector<GridPoint> keys(points.get_allocator());
    keys.reserve(contours.Count());
    ListingPoint listingPoint(points.get_allocator().GetScratch());
    std::size_t begin = 0;
    std::size_t size = 0;
    for (std::size_t c = 0; c < contours.Count(); ++c) {
        std::size_t const end = contours.ends[c];
        std::size_t const start = size;
        // The neighbours before anything is moved: vertices in front may be overwritten.
        GridPoint const first = points[begin];
        GridPoint before = points[end - 1];
        for (std::size_t i = begin; i < end; ++i) {
            GridPoint const p = points[i];
            GridPoint const after = i + 1 == end ? first : points[i + 1];
            if (before.y != p.y || p.y != after.y) {
                points[size++] = p;
            }
            before = p;
        }
        auto const from = points.begin() + static_cast<std::ptrdiff_t>(start);
        auto const to = points.begin() + static_cast<std::ptrdiff_t>(size);
        auto highest = std::max_element(from, to);
        if (resolved.holes[c] == 0 && highest != to) {
            ++highest;
        }
        std::rotate(from, highest, to);
        contours.ends[c] = size;
        keys.push_back(size > start ? listingPoint.Of(points.data() + start, size - start) : first);
        begin = end;
    }
    points.resize(size);

    // A contour on one horizontal line encloses nothing and has no vertices left.
    ScratchVector<std::pair<GridPoint, std::size_t>> sorted(points.get_allocator());
    sorted.reserve(contours.Count());
    for (std::size_t c = 0; c < contours.Count(); ++c) {
        if (contours.Begin(c) < contours.End(c)) {
            sorted.emplace_back(keys[c], c);
        }
    }
    std::sort(sorted.begin(), sorted.end(), [](auto const& a, auto const& b) {
        return a.first != b.first ? Higher(a.first, b.first) : a.second < b.second;
    });
    ScratchVector<std::size_t> order(points.get_allocator());
    order.reserve(sorted.size());
    for (auto const& [key, c] : sorted) {
        order.push_back(c);
    }
    return order;
}

} // namespace trammel_detail
