// SPDX-License-Identifier: MIT

#include "Winding.h"

#include "ContourWalk_p.h"
#include "PointMath_p.h"
#include "Vector_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace trammel {

// Crossings of a contour with the ray from a point, its origin, toward +h are counted: +1 where the
// contour crosses toward +v, -1 where it crosses toward -v.
//
// A point is beyond the ray's line when its v is greater than the origin's, and ahead when its h
// is. A segment that ends beyond the line and does not start there crosses the line once, plus
// pairs of crossings that cancel. Segments that follow each other share an end to the last bit, and
// so do the halves of a curve. So rounding never counts a crossing twice or leaves one out: the
// count is exact for a contour of slightly moved control points.
//
// How slightly, with u = 2^-53 and D the greatest coordinate of a segment's control points as seen
// from the origin: the differences are off by uD. Each halving adds 3u of the size of the piece
// that it halves. Only pieces whose control points surround the origin are halved. After n halvings
// they are no larger than D, nor than 6D · 2^-n, so that all halvings together add less than 15uD.
// The last piece and its chord lie within 8uD of the origin, so they are at most 16uD apart. A
// line's product is off by 3u of its factors, which moves it by 6uD at most. That makes no more
// than 32uD in each coordinate, which is 2^-48 D.

namespace {

using trammel_detail::CoordinatesAt;
using trammel_detail::Double2;
using trammel_detail::Mask2;
using trammel_detail::PointAt;

typedef TPoint<double> Pt;
typedef std::array<Pt, 4> Cubic;

/// Where a point lies as seen from the origin: kBeyond where its v is greater, and kAhead where its
/// h is. Of a NaN neither is set.
typedef unsigned Side;
constexpr Side kBeyond = 1;
constexpr Side kAhead = 2;

Side SideOf(Double2 const& p, Double2 const& origin) { return (p > origin).Bits(); }

/// True when the points of a segment lie on both sides of the origin in both coordinates. `all` has
/// what the sides of its points have in common, `any` what one of them has.
bool Surrounds(Side all, Side any) { return (all ^ any) == (kBeyond | kAhead); }

/// The crossings of a segment whose points do not surround the origin, by the sides of its ends: a
/// segment stays in the hull of its points.
int PlainCrossings(Side all, Side start, Side end) {
    int const beyond = static_cast<int>(end & kBeyond) - static_cast<int>(start & kBeyond);
    return (all & kAhead) != 0 ? beyond : 0;
}

/// The greatest magnitude of a coordinate; infinite when one is and none is NaN.
double SizeOf(Cubic const& c) {
    double size = 0.0;
    for (Pt const& p : c) {
        size = std::max(std::max(std::abs(p.h), std::abs(p.v)), size);
    }
    return size;
}

/// The points as seen from `origin`. A coordinate is halved where a difference overflows. It is
/// magnified where it is so small that halvings of the curve would lose bits. Each coordinate is
/// scaled by itself, which moves no point across an axis.
Cubic Relative(Cubic const& c, Pt const& origin) {
    constexpr double kLeast = 0x1p-900;
    constexpr double kMagnifier = 0x1p100;
    Cubic relative;
    std::transform(c.begin(), c.end(), relative.begin(), [&](Pt const& p) { return p - origin; });
    for (double Pt::*const coordinate : {&Pt::h, &Pt::v}) {
        double size = 0.0;
        for (Pt const& p : relative) {
            size = std::max(std::abs(p.*coordinate), size);
        }
        if (size == std::numeric_limits<double>::infinity()) {
            for (std::size_t i = 0; i < c.size(); ++i) {
                relative[i].*coordinate = c[i].*coordinate * 0.5 - origin.*coordinate * 0.5;
            }
        } else if (size < kLeast) {
            for (Pt& p : relative) {
                p.*coordinate *= kMagnifier;
            }
        }
    }
    return relative;
}

/// The crossings of the line from the first to the second of these points, which surround (0, 0).
int CrossingsOfDiagonal(Cubic ends) {
    // Products of ordinary numbers neither overflow nor lose what counts. Other numbers are scaled,
    // each coordinate by itself, which moves no point across an axis.
    constexpr double kLeast = 0x1p-480;
    constexpr double kGreatest = 0x1p500;
    for (double Pt::*const coordinate : {&Pt::h, &Pt::v}) {
        double const size = std::max(std::abs(ends[0].*coordinate), std::abs(ends[1].*coordinate));
        if (!std::isfinite(size)) {
            return 0; // of a contour that does not count
        }
        if (size < kLeast || size > kGreatest) {
            int const exponent = std::ilogb(size);
            ends[0].*coordinate = std::scalbn(ends[0].*coordinate, -exponent);
            ends[1].*coordinate = std::scalbn(ends[1].*coordinate, -exponent);
        }
    }
    double const product = trammel_detail::Cross(ends[0], ends[1]);
    if (ends[1].v > ends[0].v) {
        return product > 0.0 ? 1 : 0;
    }
    return product < 0.0 ? -1 : 0;
}

/// A piece no larger than this part of the curve as seen from the origin is not halved: its chord
/// stands for it.
constexpr double kSmallestPart = 0x1p-50;
/// Halvings after which every piece is as small: its points are 6 · 2^-60 of that size apart.
constexpr int kMostHalvings = 60;

Pt Middle(Pt const& a, Pt const& b) { return a * 0.5 + b * 0.5; } // never overflows

/// The crossings of the halves of a cubic with the ray from (0, 0).
int CrossingsOfHalves(Cubic const& c, double smallest, int halvings) {
    Pt const m01 = Middle(c[0], c[1]);
    Pt const m12 = Middle(c[1], c[2]);
    Pt const m23 = Middle(c[2], c[3]);
    Pt const m012 = Middle(m01, m12);
    Pt const m123 = Middle(m12, m23);
    Pt const split = Middle(m012, m123);
    int crossings = 0;
    for (Cubic const& half : {Cubic{c[0], m01, m012, split}, Cubic{split, m123, m23, c[3]}}) {
        Side const start = SideOf(CoordinatesAt(&half[0]), 0.0);
        Side const first = SideOf(CoordinatesAt(&half[1]), 0.0);
        Side const second = SideOf(CoordinatesAt(&half[2]), 0.0);
        Side const end = SideOf(CoordinatesAt(&half[3]), 0.0);
        Side const all = start & first & second & end;
        if (!Surrounds(all, start | first | second | end)) {
            crossings += PlainCrossings(all, start, end);
        } else if (halvings < kMostHalvings && SizeOf(half) > smallest) {
            crossings += CrossingsOfHalves(half, smallest, halvings + 1);
        } else if (Surrounds(start & end, start | end)) {
            crossings += CrossingsOfDiagonal({half[0], half[3], half[0], half[3]});
        } else {
            crossings += PlainCrossings(start & end, start, end);
        }
    }
    return crossings;
}

/// The crossings of a cubic whose control points surround (0, 0).
int CrossingsAround(Cubic const& c) {
    double const size = SizeOf(c);
    // A contour with a coordinate that is not finite does not count.
    return std::isfinite(size) ? CrossingsOfHalves(c, size * kSmallestPart, 1) : 0;
}

/// Counts the crossings of contours, segment by segment. Points are given by their addresses, which
/// need not be aligned, and must stay while the counter is used.
class CrossingCounter {
public:
    /// Begins a contour at `start`.
    CrossingCounter(Pt const& origin, void const* start)
        : mOrigin(CoordinatesAt(&origin)), mStart(start), mStartSide(Take(start)), mCurrent(mStart),
          mSide(mStartSide) {}

    /// Ends the contour and begins one at `p`.
    void Begin(void const* p) {
        Close();
        mFinite = AllFinite(); // the last contour's end is no point of this one
        mStart = mCurrent = p;
        mStartSide = mSide = Take(p);
    }
    void LineTo(void const* p) { LineTo(p, Take(p)); }
    void CurveTo(void const* c1, void const* c2, void const* e) {
        Side const first = Take(c1);
        Side const second = Take(c2);
        Side const end = Take(e);
        Side const all = mSide & first & second & end;
        mCrossings +=
            Surrounds(all, mSide | first | second | end)
                ? CrossingsAround(
                      Relative({PointAt(mCurrent), PointAt(c1), PointAt(c2), PointAt(e)}, Origin()))
                : PlainCrossings(all, mSide, end);
        mCurrent = e;
        mSide = end;
    }
    /// Closes the contour. Without Begin() the next one begins where the last segment ended.
    void Close() {
        void const* const last = mCurrent;
        Side const side = mSide;
        LineTo(mStart, mStartSide);
        mWinding += mFinite.Bits() == AllFinite().Bits() ? mCrossings : 0;
        mCrossings = 0;
        mFinite = AllFinite();
        Take(last);
        mStart = mCurrent = last;
        mStartSide = mSide = side;
    }
    /// The winding number; to be asked for after Close().
    int Winding() const { return IsFinite(mOrigin).Bits() == AllFinite().Bits() ? mWinding : 0; }

private:
    static Mask2 IsFinite(Double2 const& coordinates) {
        return Abs(coordinates) <= std::numeric_limits<double>::max();
    }
    static Mask2 AllFinite() { return Double2(0.0) <= 0.0; }
    Pt Origin() const { return Pt(mOrigin[1], mOrigin[0]); }

    /// Returns the side of a point of the contour, and notes whether the point is finite.
    Side Take(void const* p) {
        Double2 const coordinates = CoordinatesAt(p);
        mFinite = mFinite & IsFinite(coordinates);
        return SideOf(coordinates, mOrigin);
    }
    void LineTo(void const* p, Side end) {
        Side const all = mSide & end;
        mCrossings +=
            Surrounds(all, mSide | end)
                ? CrossingsOfDiagonal(Relative(
                      {PointAt(mCurrent), PointAt(p), PointAt(mCurrent), PointAt(p)}, Origin()))
                : PlainCrossings(all, mSide, end);
        mCurrent = p;
        mSide = end;
    }

    Double2 mOrigin;
    Mask2 mFinite = AllFinite(); ///< for v and for h, of the contour's points so far
    void const* mStart;
    Side mStartSide;
    void const* mCurrent;
    Side mSide;
    int mCrossings = 0; ///< of the contour
    int mWinding = 0;   ///< of the contours before
};

template <class Outline> int WindingOf(Outline const& outline, Pt const& p) {
    Pt const start;
    CrossingCounter counter(p, &start);
    trammel_detail::WalkContours(outline, counter);
    return counter.Winding();
}

} // namespace

int WindingNumber(CPath const& path, TPoint<double> const& p) noexcept {
    return WindingOf(path, p);
}

int WindingNumber(TPolygon<double> const& polygon, TPoint<double> const& p) noexcept {
    return WindingOf(polygon, p);
}

int WindingNumber(CFPolygonRef const& polygon, TPoint<double> const& p) noexcept {
    return WindingOf(polygon, p);
}

} // namespace trammel
