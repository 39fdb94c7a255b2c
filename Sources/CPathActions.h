// SPDX-License-Identifier: MIT

// CPathActions: the visitor of a path.
//
// Derive from it, override the element operations that matter, and hand the object to
// CPath::ForAll. The base keeps the start of the current subpath and the current point. The virtual
// operation runs before they move on, so inside an override GetCurrentPt() is where the element
// begins. In ClosePath the closing segment runs from GetCurrentPt() to GetStartPt(). In MoveTo,
// GetStartPt() is still the previous subpath's start.
//
// Both points begin at (0, 0) and carry over from one traversal to the next. An exception thrown by
// an override ends the traversal and leaves them as they were. Threads may visit one path at the
// same time, each with a visitor of its own.

#ifndef TRAMMEL_CPATHACTIONS_H
#define TRAMMEL_CPATHACTIONS_H

#include "TPoint.h"
#include "TrammelExport.h"

/// Base of the classes that receive the elements of a path.
class TRAMMEL_API CPathActions {
public:
    TPoint<double> mStartPt;   ///< start of the current subpath: the point of the last move
    TPoint<double> mCurrentPt; ///< end of the last element delivered

    virtual ~CPathActions();

    /// A subpath starts at `p`. Does nothing unless overridden, like the other three.
    virtual void MoveTo(TPoint<double> const& p);
    /// A straight segment leads to `p`.
    virtual void LineTo(TPoint<double> const& p);
    /// A cubic Bezier with control points `c1` and `c2` leads to `e`.
    virtual void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                         TPoint<double> const& e);
    /// The subpath closes with a straight segment to its start.
    virtual void ClosePath();

    /// Delivers a move: calls MoveTo, then both tracked points become `p`.
    void Move(TPoint<double> const& p);
    /// Delivers a line: calls LineTo, then the current point becomes `p`.
    void Line(TPoint<double> const& p);
    /// Delivers a curve: calls CurveTo, then the current point becomes `e`.
    void Curve(TPoint<double> const& c1, TPoint<double> const& c2, TPoint<double> const& e);
    /// Delivers a close: calls ClosePath, then the current point becomes the start point.
    void Close();

    /// The end of the last element delivered.
    TPoint<double> GetCurrentPt() const { return mCurrentPt; }
    /// The start of the current subpath.
    TPoint<double> GetStartPt() const { return mStartPt; }
};

#endif
