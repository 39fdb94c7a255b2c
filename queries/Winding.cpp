// SPDX-License-Identifier: MIT

#include "Winding.h"

#include "ContourWalk_p.h"
#include "RayCrossings_p.h"
#include "Vector_p.h"

#include <limits>

namespace trammel {
namespace {

using trammel_detail::CoordinatesAt;
using trammel_detail::CrossingsOfCurveAround;
using trammel_detail::CrossingsOfLineAround;
using trammel_detail::Double2;
using trammel_detail::Mask2;
using trammel_detail::PlainCrossings;
using trammel_detail::PointAt;
using trammel_detail::Side;
using trammel_detail::SideOf;
using trammel_detail::Surrounds;

typedef TPoint<double> Pt;

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
        mCrossings += Surrounds(all, mSide | first | second | end)
                          ? CrossingsOfCurveAround(PointAt(mCurrent), PointAt(c1), PointAt(c2),
                                                   PointAt(e), Origin())
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
        mCrossings += Surrounds(all, mSide | end)
                          ? CrossingsOfLineAround(PointAt(mCurrent), PointAt(p), Origin())
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

int WindingNumber(std::vector<TPoint<double>> const& ring, TPoint<double> const& p) noexcept {
    return WindingOf(ring, p);
}

} // namespace trammel
