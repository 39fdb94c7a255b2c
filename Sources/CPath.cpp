// SPDX-License-Identifier: MIT

#include "CPath.h"

#include "CBezier.h"
#include "CMatrix3x3.h"
#include "Integers.h"
#include "TLine.h"
#include "UTrigonometry.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

/// The step of the parameter to which the nearest point on a curve is searched.
constexpr double kNearestTolerance = 0.001;

/// The number of points that an element takes; 0 for a close and for unknown codes.
std::size_t PointCount(char code) {
    switch (code) {
    case kPathMove:
    case kPathLine:
        return 1;
    case kPathCurve:
        return 3;
    default:
        return 0;
    }
}

/// Goes through a path's elements by index, so that a path whose codes ask for more points than it
/// has, or that a visitor changes on the way, is never read beyond its end.
class ElementCursor {
public:
    explicit ElementCursor(CPath const& path) : mPath(path) {}

    /// Steps to the next element; false at the end, or where the points do not suffice.
    bool Next() {
        mPoint += mTaken;
        if (mElement >= mPath.mCtls.size()) {
            return false;
        }
        mCode = mPath.mCtls[mElement++];
        mTaken = PointCount(mCode);
        return mPoint <= mPath.mPts.size() && mTaken <= mPath.mPts.size() - mPoint;
    }
    char Code() const { return mCode; }
    /// Point `i` of the element, by value: it outlives a change of the path.
    TPoint<double> Pt(std::size_t i) const { return mPath.mPts[mPoint + i]; }

private:
    CPath const& mPath;
    std::size_t mElement = 0;
    std::size_t mPoint = 0;
    std::size_t mTaken = 0;
    char mCode = kPathClose;
};

/// Goes through a path's segments: lines, closing lines and curves, with the moves between them.
class SegmentCursor {
public:
    explicit SegmentCursor(CPath const& path) : mElements(path) {}

    /// Steps to the next segment; false at the end. Moves are passed, and Start() tells of them.
    bool Next() {
        while (mElements.Next()) {
            TPoint<double> const from = mCurrent;
            switch (mElements.Code()) {
            case kPathMove:
                mStart = mCurrent = mElements.Pt(0);
                break;
            case kPathLine:
                mCurrent = mElements.Pt(0);
                mIsCurve = false;
                mLine.Set(from, mCurrent);
                return true;
            case kPathCurve:
                mCurrent = mElements.Pt(2);
                mIsCurve = true;
                mCurve.Set(from, mElements.Pt(0), mElements.Pt(1), mCurrent);
                return true;
            case kPathClose:
                mIsCurve = false;
                mLine.Set(from, mStart); // the current point stays where it was
                return true;
            default:
                break;
            }
        }
        return false;
    }
    bool IsCurve() const { return mIsCurve; }
    TLine<double> const& Line() const { return mLine; }
    CBezier const& Curve() const { return mCurve; }
    double Length() const { return mIsCurve ? mCurve.Length() : mLine.Length(); }
    /// The point of the last move passed, (0, 0) before the first.
    TPoint<double> Start() const { return mStart; }

private:
    ElementCursor mElements;
    TPoint<double> mStart;
    TPoint<double> mCurrent;
    bool mIsCurve = false;
    TLine<double> mLine;
    CBezier mCurve;
};

/// A path with the lengths of its segments, so that one query measures each segment once.
class MeasuredPath {
public:
    explicit MeasuredPath(CPath const& path) : mPath(path) {
        for (SegmentCursor segment(path); segment.Next();) {
            mLengths.push_back(segment.Length());
            mTotal += mLengths.back();
        }
    }
    double Total() const { return mTotal; }
    double SegmentLength(std::size_t i) const { return mLengths[i]; }

    TPoint<double> TPt(double t) const {
        double const target = t * mTotal;
        double running = 0.0;
        SegmentCursor segment(mPath);
        for (std::size_t i = 0; segment.Next(); ++i) {
            double const before = running;
            running += mLengths[i];
            if (target <= running) {
                double const fraction = (target - before) / mLengths[i];
                return segment.IsCurve() ? segment.Curve().TPt(segment.Curve().PercentT(fraction))
                                         : segment.Line().TPt(fraction);
            }
        }
        return segment.Start();
    }

private:
    CPath const& mPath;
    std::vector<double> mLengths;
    double mTotal = 0.0;
};

TPoint<double> UnitPoint(double angle) {
    TPoint<double> p;
    SinCos(angle, p.v, p.h);
    return p;
}

/// Makes room for `more` items without giving up geometric growth.
template <class Item> void Reserve(std::vector<Item>& items, std::size_t more) {
    std::size_t const needed = items.size() + more;
    if (needed > items.capacity()) {
        items.reserve(std::max(needed, 2 * items.capacity()));
    }
}

} // namespace

CPath::CPath() { clear(); }

CPath& CPath::clear() {
    mCtls.clear();
    mPts.clear();
    mOpen = false;
    mCurrentPt.SetNull();
    mBounds.SetNull();
    return *this;
}

// Called before an operation writes anything: what follows cannot run out of memory half-way.
void CPath::MakeRoom(std::size_t codes, std::size_t points) {
    Reserve(mCtls, codes);
    Reserve(mPts, points);
}

CPath& CPath::AddCtl(char code) {
    mCtls.push_back(code);
    return *this;
}

CPath& CPath::AddPt(TPoint<double> const& p) {
    TPoint<double> const point = p;
    mPts.push_back(point);
    mCurrentPt = point;
    mBounds |= point;
    return *this;
}

CPath& CPath::MoveTo(TPoint<double> const& p) {
    TPoint<double> const to = p;
    MakeRoom(1, 1);
    if (!mCtls.empty() && mCtls.back() == kPathMove && !mPts.empty()) {
        mCtls.pop_back();
        mPts.pop_back();
    }
    AddCtl(kPathMove);
    AddPt(to);
    mOpen = true;
    return *this;
}

CPath& CPath::LineTo(TPoint<double> const& p) {
    TPoint<double> const to = p;
    if (!mOpen) {
        MoveTo(to);
    } else if (to != mCurrentPt) {
        MakeRoom(1, 1);
        AddCtl(kPathLine);
        AddPt(to);
    }
    return *this;
}

CPath& CPath::CurveTo(TPoint<double> const& c1, TPoint<double> const& c2, TPoint<double> const& e) {
    TPoint<double> const points[] = {c1, c2, e};
    if (mOpen && points[2] == mCurrentPt) {
        return *this;
    }
    MakeRoom(1, 3);
    AddCtl(kPathCurve);
    for (TPoint<double> const& p : points) {
        AddPt(p);
    }
    return *this;
}

CPath& CPath::ClosePath() {
    if (mOpen) {
        AddCtl(kPathClose);
    }
    mOpen = false;
    return *this;
}

template <class Scale>
void CPath::AddArc(TPoint<double> center, double startAngle, double sweep, Scale scale) {
    TPoint<double> s = UnitPoint(startAngle);
    TPoint<double> start = s;
    scale(start);
    start += center;

    double const quarters = std::trunc(sweep / DegToRad(90.0));
    if (!(std::abs(quarters) <= -static_cast<double>(std::numeric_limits<std::int32_t>::min()) &&
          quarters <= std::numeric_limits<std::int32_t>::max())) {
        LineTo(start);
        return;
    }
    std::int64_t const n = std::abs(static_cast<std::int64_t>(quarters)) + 1;
    MakeRoom(static_cast<std::size_t>(n) + 1, 3 * static_cast<std::size_t>(n) + 1);
    LineTo(start);

    double const step = sweep / static_cast<double>(n);
    double const half = step / 2.0;
    double const k = 1.0 / std::cos(half);
    double fraction = 0.0;
    double angle = startAngle;
    for (std::int64_t i = 0; i < n; ++i) {
        TPoint<double> e = UnitPoint(angle + step);
        TPoint<double> const tangents = UnitPoint(angle + half) * k;
        if (fraction == 0.0) {
            fraction = GetFraction(s, tangents);
        }
        TPoint<double> c1 = s + (tangents - s) * fraction;
        TPoint<double> c2 = e + (tangents - e) * fraction;
        s = e;
        for (TPoint<double>* p : {&c1, &c2, &e}) {
            scale(*p);
            *p += center;
        }
        CurveTo(c1, c2, e);
        angle = angle + step;
    }
}

CPath& CPath::Arc(TPoint<double> const& center, double hRadius, double vRadius, double startAngle,
                  double sweep) {
    AddArc(center, startAngle, sweep, [=](TPoint<double>& p) { p.Scale(hRadius, vRadius); });
    return *this;
}

CPath& CPath::Arc(TPoint<double> const& center, double radius, double startAngle, double sweep) {
    AddArc(center, startAngle, sweep, [=](TPoint<double>& p) { p.Scale(radius); });
    return *this;
}

CPath& CPath::RRect(TRect<double> r, double corner) {
    typedef TPoint<double> Pt;
    double const rad = std::min(std::min(r.Width() / 2.0, r.Height() / 2.0), corner / 2.0);
    MakeRoom(10, 17);
    MoveTo(Pt(r.left + rad, r.top));
    LineTo(Pt(r.right - rad, r.top));
    CurveTo(Pt(r.right - rad, r.top), Pt(r.right, r.top), Pt(r.right, r.top + rad));
    LineTo(Pt(r.right, r.bottom - rad));
    CurveTo(Pt(r.right, r.bottom - rad), Pt(r.right, r.bottom), Pt(r.right - rad, r.bottom));
    LineTo(Pt(r.left + rad, r.bottom));
    CurveTo(Pt(r.left + rad, r.bottom), Pt(r.left, r.bottom), Pt(r.left, r.bottom - rad));
    LineTo(Pt(r.left, r.top + rad));
    CurveTo(Pt(r.left, r.top + rad), Pt(r.left, r.top), Pt(r.left + rad, r.top));
    ClosePath();
    return *this;
}

CPath& CPath::Append(CPath const& other) {
    if (&other == this) {
        CPath const copy(other);
        Append(copy);
        return *this;
    }
    MakeRoom(other.mCtls.size(), other.mPts.size());
    mCtls.erase(std::remove(mCtls.begin(), mCtls.end(), kPathClose), mCtls.end());
    for (ElementCursor element(other); element.Next();) {
        switch (element.Code()) {
        case kPathMove:
        case kPathLine:
            LineTo(element.Pt(0));
            break;
        case kPathCurve:
            CurveTo(element.Pt(0), element.Pt(1), element.Pt(2));
            break;
        default:
            break;
        }
    }
    return *this;
}

unsigned long CPath::size() const { return mCtls.size() + mPts.size() * sizeof(TPoint<double>); }

double CPath::GetFraction(TPoint<double> a, TPoint<double> b) const {
    double const length = (b - a).Length();
    return 1.3333333333333333 / (std::sqrt(length * length + 1.0) + 1.0);
}

TRect<double> CPath::Bounds() const {
    if (mBounds.Null()) {
        for (TPoint<double> const& p : mPts) {
            mBounds |= p;
        }
    }
    return mBounds;
}

bool CPath::TestContents(ContentAttributes attribute) const {
    auto const has = [this](char code) {
        return std::find(mCtls.begin(), mCtls.end(), code) != mCtls.end();
    };
    switch (attribute) {
    case kContainsClose:
        return has(kPathClose);
    case kContainsLines:
        return has(kPathLine);
    case kContainsCurves:
        return has(kPathCurve);
    }
    return false;
}

void CPath::ForAll(CPathActions& actions) const {
    for (ElementCursor element(*this); element.Next();) {
        switch (element.Code()) {
        case kPathMove:
            actions.Move(element.Pt(0));
            break;
        case kPathLine:
            actions.Line(element.Pt(0));
            break;
        case kPathCurve:
            actions.Curve(element.Pt(0), element.Pt(1), element.Pt(2));
            break;
        case kPathClose:
            actions.Close();
            break;
        default:
            break;
        }
    }
}

void CPath::Transform(CMatrix3x3 const& m) {
    for (TPoint<double>& p : mPts) {
        p.Transform(m);
    }
    mBounds.SetNull();
}

double CPath::Length() const {
    double length = 0.0;
    for (SegmentCursor segment(*this); segment.Next();) {
        length += segment.Length();
    }
    return length;
}

TPoint<double> CPath::TPt(double t) const { return MeasuredPath(*this).TPt(t); }

double CPath::FindTValue(TPoint<double> const& p) const {
    TPoint<double> const pt = p;
    MeasuredPath const measured(*this);
    double best = std::numeric_limits<double>::max();
    double result = 0.0;
    double running = 0.0;
    SegmentCursor segment(*this);
    for (std::size_t i = 0; segment.Next(); ++i) {
        if (segment.IsCurve()) {
            CBezier const& curve = segment.Curve();
            double const t = curve.FindTValue(pt, kNearestTolerance, 0.0, 1.0);
            double const distance = TLine<double>(pt, curve.TPt(t)).Length();
            // Not strict, unlike for lines: on a tie a later curve wins, a later line does not.
            if (distance <= best) {
                best = distance;
                CBezier left;
                CBezier right;
                curve.Divide(left, right, t);
                result = (running + left.Length()) / measured.Total();
            }
        } else {
            TLine<double> const& line = segment.Line();
            TPoint<double> const nearest = line.TPt(line.FindTValue(pt));
            double const distance = TLine<double>(pt, nearest).Length();
            if (distance < best) {
                best = distance;
                result =
                    (running + TLine<double>(line.mStart, nearest).Length()) / measured.Total();
            }
        }
        running += measured.SegmentLength(i);
    }
    return result;
}

void CPath::GetTRange(double t0, double t1, CPath& out) const {
    if (&out == this) {
        CPath const source(*this);
        source.GetTRange(t0, t1, out);
        return;
    }
    MeasuredPath const measured(*this);
    double const startLength = t0 * measured.Total();
    double const endLength = t1 * measured.Total();
    double running = 0.0;
    bool done = false;
    out.MoveTo(measured.TPt(t0));
    SegmentCursor segment(*this);
    for (std::size_t i = 0; !done && segment.Next(); ++i) {
        double const before = running;
        running += measured.SegmentLength(i);
        if (!(startLength < running)) {
            continue;
        }
        if (!segment.IsCurve()) {
            done = endLength <= running;
            out.LineTo(done ? measured.TPt(t1) : segment.Line().mEnd);
        } else if (endLength < before) {
            done = true;
        } else {
            // A curve that holds the range's end does not end the walk: a following line adds
            // itself up to t1, where it has length; a following curve stops.
            CBezier const& curve = segment.Curve();
            double const length = measured.SegmentLength(i);
            double const u0 =
                before < startLength ? curve.PercentT((startLength - before) / length) : 0.0;
            double const u1 =
                endLength < running ? curve.PercentT((endLength - before) / length) : 1.0;
            CBezier piece;
            curve.GetTRange(u0, u1, piece);
            out.CurveTo(piece.P1, piece.P2, piece.P3);
        }
    }
}

void CPath::RemoveTRange(double t0, double t1, CPath& outA, CPath& outB) const {
    if (&outA == this || &outB == this) {
        CPath const source(*this);
        source.RemoveTRange(t0, t1, outA, outB);
        return;
    }
    if (t1 < t0) {
        GetTRange(t1, t0, outA);
    } else if (Closed()) {
        GetTRange(0.0, t0, outB);
        GetTRange(t1, 1.0, outA);
        outA.Append(outB);
        outB.clear();
    } else {
        GetTRange(0.0, t0, outA);
        GetTRange(t1, 1.0, outB);
    }
}
