// SPDX-License-Identifier: MIT

#include "CPathActions.h"

CPathActions::~CPathActions() = default;

void CPathActions::MoveTo(TPoint<double> const& /*p*/) {}

void CPathActions::LineTo(TPoint<double> const& /*p*/) {}

void CPathActions::CurveTo(TPoint<double> const& /*c1*/, TPoint<double> const& /*c2*/,
                           TPoint<double> const& /*e*/) {}

void CPathActions::ClosePath() {}

void CPathActions::Move(TPoint<double> const& p) {
    TPoint<double> const to = p;
    MoveTo(to);
    mStartPt = to;
    mCurrentPt = to;
}

void CPathActions::Line(TPoint<double> const& p) {
    TPoint<double> const to = p;
    LineTo(to);
    mCurrentPt = to;
}

void CPathActions::Curve(TPoint<double> const& c1, TPoint<double> const& c2,
                         TPoint<double> const& e) {
    TPoint<double> const to = e;
    CurveTo(c1, c2, to);
    mCurrentPt = to;
}

void CPathActions::Close() {
    ClosePath();
    mCurrentPt = mStartPt;
}
