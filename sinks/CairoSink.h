// SPDX-License-Identifier: MIT

// CairoSink: draws paths, and the drawing layer's paths, with Cairo.
//
// This header is complete in itself, and no other header of the library includes it. Its user needs
// Cairo's headers and links with Cairo (pkg-config cairo); the library itself does not.
//
//     trammel::DrawPath(cr, path);
//     cairo_fill(cr);
//
// The functions only add to the context's current path. Colours, line width, fill rule, transform
// and the drawing itself stay with the caller. One thread at a time may use a context.

#ifndef TRAMMEL_CAIROSINK_H
#define TRAMMEL_CAIROSINK_H

#include "CPath.h"
#include "CPathActions.h"
#include "PathObject.h"

#include <cairo.h>

#include <cmath>

namespace trammel {

/// The visitor that hands a path's elements to a Cairo context: `path.ForAll(sink)`.
///
/// The sink draws the segments that CPath measures. A curve or line with no move before it starts
/// at the last point drawn, or at (0, 0) when there is none. The context's own current point plays
/// no part.
///
/// A segment with a NaN or infinite coordinate, in its start or another point, is left out and
/// leaves a gap. Cairo never sees such a number, and the segments around the gap are drawn as they
/// are. A subpath with a gap is closed by a line. Finite points are passed on whatever their size.
/// Cairo itself holds device coordinates as fixed-point numbers, which end at about ±8 million.
///
/// After an error the context ignores all further calls, as it does with Cairo's own;
/// cairo_status() tells.
class CairoSink : public CPathActions {
public:
    /// Makes a sink that draws into `cairo`. The sink takes no reference: the context must outlive
    /// the sink's use.
    explicit CairoSink(cairo_t* cairo) : mCairo(cairo) {}

    void MoveTo(TPoint<double> const& p) override {
        mFrom = p;
        mJoined = IsFinite(p);
        mWhole = mJoined;
        if (mJoined) {
            cairo_move_to(mCairo, p.h, p.v);
        }
    }
    void LineTo(TPoint<double> const& p) override {
        if (Begin(IsFinite(p))) {
            cairo_line_to(mCairo, p.h, p.v);
        }
        mFrom = p;
    }
    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        if (Begin(IsFinite(c1) && IsFinite(c2) && IsFinite(e))) {
            cairo_curve_to(mCairo, c1.h, c1.v, c2.h, c2.v, e.h, e.v);
        }
        mFrom = e;
    }
    void ClosePath() override {
        TPoint<double> const start = GetStartPt();
        if (mJoined && mWhole) {
            cairo_close_path(mCairo);
        } else if (Begin(IsFinite(start))) {
            cairo_line_to(mCairo, start.h, start.v);
        }
        mJoined = false; // the next segment is measured from mFrom, the last point drawn
    }

private:
    static bool IsFinite(TPoint<double> const& p) {
        return std::isfinite(p.h) && std::isfinite(p.v);
    }

    /// Moves Cairo to the start of a segment; false when the segment cannot be drawn.
    bool Begin(bool drawable) {
        if (!drawable || !IsFinite(mFrom)) {
            mJoined = false;
            return false;
        }
        if (!mJoined || cairo_has_current_point(mCairo) == 0) {
            cairo_move_to(mCairo, mFrom.h, mFrom.v);
            mJoined = true;
            mWhole = mFrom == GetStartPt();
        }
        return true;
    }

    cairo_t* mCairo;
    TPoint<double> mFrom; ///< the point that the next segment is measured from
    bool mJoined = false; ///< Cairo's current point is mFrom
    bool mWhole = false;  ///< Cairo's subpath starts where ours does
};

/// Adds `path` to the current path of `cairo`, as CairoSink says. Cost: O(n).
inline void DrawPath(cairo_t* cairo, CPath const& path) {
    CairoSink sink(cairo);
    path.ForAll(sink);
}

} // namespace trammel

namespace trammel_detail {

/// Hands the elements of a drawing layer's path to a CairoSink. It holds the function and the data
/// for CGPathApply.
class CairoFeed {
public:
    explicit CairoFeed(cairo_t* cairo) : mSink(cairo) {}

    static void Apply(void* feed, CGPathElement const* element) {
        static_cast<CairoFeed*>(feed)->Add(*element);
    }

private:
    void Add(CGPathElement const& element) {
        CGPoint const* const p = element.points;
        if (mClosed && element.type != kCGPathElementMoveToPoint) {
            mSink.Move(mSink.GetStartPt()); // after a close such a path goes on from there
        }
        mClosed = false;
        switch (element.type) {
        case kCGPathElementMoveToPoint:
            mSink.Move(p[0]);
            break;
        case kCGPathElementAddLineToPoint:
            mSink.Line(p[0]);
            break;
        case kCGPathElementAddQuadCurveToPoint: {
            TPoint<double> const control = p[0];
            TPoint<double> const from = mSink.GetCurrentPt();
            TPoint<double> const end = p[1];
            mSink.Curve((from + control * 2.0) / 3.0, (end + control * 2.0) / 3.0, end);
            break;
        }
        case kCGPathElementAddCurveToPoint:
            mSink.Curve(p[0], p[1], p[2]);
            break;
        case kCGPathElementCloseSubpath:
            mSink.Close();
            mClosed = true;
            break;
        }
    }

    trammel::CairoSink mSink;
    bool mClosed = false; ///< the last element was a close
};

} // namespace trammel_detail

namespace trammel {

/// Adds a drawing layer's path to the current path of `cairo`. A segment after a close starts at
/// the start of the closed subpath. NaN and infinities leave gaps as CairoSink says. Does nothing
/// for a null or empty path. Cost: O(n).
inline void DrawPath(cairo_t* cairo, CGPathRef path) {
    trammel_detail::CairoFeed feed(cairo);
    CGPathApply(path, &feed, trammel_detail::CairoFeed::Apply);
}

} // namespace trammel

#endif
