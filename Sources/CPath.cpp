// SPDX-License-Identifier: MIT

#include "CPath.h"

#include "CBezier.h"
#include "CMatrix3x3.h"
#include "Integers.h"
#include "PathWalk_p.h"
#include "Reach_p.h"
#include "TLine.h"
#include "UTrigonometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

namespace {

using trammel_detail::ElementCursor;
using trammel_detail::SegmentCursor;

/// Lengths in order. The first ones take no heap block: most outlines have no more segments. When
/// memory is short it keeps only the lengths before that point, and never throws.
class Lengths {
public:
    void Append(double length) noexcept {
        if (mCount < mFirst.size()) {
            mFirst[mCount++] = length;
        } else if (!mFull) {
            try {
                mRest.push_back(length);
                ++mCount;
            } catch (std::bad_alloc const&) {
                mFull = true;
            }
        }
    }
    /// True when length `i` is kept.
    bool Has(std::size_t i) const { return i < mCount; }
    double operator[](std::size_t i) const {
        return i < mFirst.size() ? mFirst[i] : mRest[i - mFirst.size()];
    }

private:
    std::size_t mCount = 0;
    bool mFull = false;
    std::array<double, 128> mFirst; // the first mCount are set
    std::vector<double> mRest;
};

/// A path with the lengths of its segments, so that one query measures each segment once, and with
/// the last places that it found on curves: cutting asks for the same ones again.
class MeasuredPath {
public:
    explicit MeasuredPath(CPath const& path) : mPath(path) {
        for (SegmentCursor segment(path); segment.Next();) {
            double const length = segment.Length();
            mLengths.Append(length);
            mTotal += length;
        }
    }
    double Total() const { return mTotal; }

    /// A walk over all segments.
    class Walk {
    public:
        explicit Walk(MeasuredPath const& measured)
            : mMeasured(measured), mSegment(measured.mPath) {}

        bool Next() {
            if (!mSegment.Next()) {
                return false;
            }
            mBefore = mBehind;
            Lengths const& lengths = mMeasured.mLengths;
            mLength = lengths.Has(mIndex) ? lengths[mIndex] : mSegment.Length();
            ++mIndex;
            mBehind += mLength;
            return true;
        }
        bool IsCurve() const { return mSegment.IsCurve(); }
        TLine<double> const& Line() const { return mSegment.Line(); }
        CBezier const& Curve() const { return mSegment.Curve(); }
        double Before() const { return mBefore; }
        double Behind() const { return mBehind; }
        double Length() const { return mLength; }
        double PercentT(double fraction) const {
            return mMeasured.PercentT(mIndex, mSegment.Curve(), fraction);
        }
        TPoint<double> Start() const { return mSegment.Start(); }

    private:
        MeasuredPath const& mMeasured;
        SegmentCursor mSegment;
        std::size_t mIndex = 0;
        double mBefore = 0.0;
        double mBehind = 0.0;
        double mLength = 0.0;
    };

    Walk WalkFrom(double /*length*/) const { return Walk(*this); }

    TPoint<double> PtAtLength(double target) const {
        Walk segment(*this);
        while (segment.Next()) {
            if (target <= segment.Behind()) {
                double const fraction = (target - segment.Before()) / segment.Length();
                return segment.IsCurve() ? segment.Curve().TPt(segment.PercentT(fraction))
                                         : segment.Line().TPt(fraction);
            }
        }
        return segment.Start();
    }

private:
    struct Place {
        std::size_t segment = 0; ///< counted from 1; 0: none yet
        double fraction = 0.0;
        double parameter = 0.0;
    };

    double PercentT(std::size_t segment, CBezier const& curve, double fraction) const {
        for (Place const& place : mPlaces) {
            if (place.segment == segment && place.fraction == fraction) {
                return place.parameter;
            }
        }
        Place& place = mPlaces[mNextPlace];
        mNextPlace = (mNextPlace + 1) % mPlaces.size();
        place.segment = segment;
        place.fraction = fraction;
        place.parameter = curve.PercentT(fraction);
        return place.parameter;
    }

    CPath const& mPath;
    Lengths mLengths;
    double mTotal = 0.0;
    mutable std::array<Place, 2> mPlaces; // a piece has two ends
    mutable std::size_t mNextPlace = 0;
};

/// RemoveTRange, when neither output is the path that was measured.
void Remove(MeasuredPath const& measured, double t0, double t1, bool closed, CPath& outA,
            CPath& outB) {
    auto const cut = [&measured](double from, double to, CPath& out) {
        trammel_detail::CutRange(measured, from * measured.Total(), to * measured.Total(), out);
    };
    if (t1 < t0) {
        cut(t1, t0, outA);
    } else if (closed) {
        cut(0.0, t0, outB);
        cut(t1, 1.0, outA);
        outA.Append(outB);
        outB.clear();
    } else {
        cut(0.0, t0, outA);
        cut(t1, 1.0, outB);
    }
}

TPoint<double> UnitPoint(double angle) {
    TPoint<double> p;
    SinCos(angle, p.v, p.h);
    return p;
}

/// The least number of items that room is made for: small outlines take one block, not five.
constexpr std::size_t kLeastRoom = 16;

/// Makes room for `more` items without giving up geometric growth.
template <class Item> void Reserve(std::vector<Item>& items, std::size_t more) {
    std::size_t const needed = items.size() + more;
    if (needed > items.capacity()) {
        items.reserve(std::max(needed, std::max(kLeastRoom, 2 * items.capacity())));
    }
}

/// True when an element with its points can be appended without allocating.
bool HasRoom(CPath const& path, std::size_t points) {
    return path.mCtls.size() < path.mCtls.capacity() &&
           points <= path.mPts.capacity() - path.mPts.size();
}

/// Appends an element for which there is room.
template <std::size_t N>
inline void AppendElement(CPath& path, char code, TPoint<double> const (&points)[N]) {
    TRect<double> bounds = path.mBounds;
    path.mCtls.push_back(code);
    for (TPoint<double> const& p : points) {
        path.mPts.push_back(p);
        bounds |= p;
    }
    path.mCurrentPt = points[N - 1];
    path.mBounds = bounds;
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
    TPoint<double> const points[] = {p};
    if (!HasRoom(*this, 1)) {
        MakeRoom(1, 1);
    }
    if (!mCtls.empty() && mCtls.back() == kPathMove && !mPts.empty()) {
        mCtls.pop_back();
        mPts.pop_back();
    }
    AppendElement(*this, kPathMove, points);
    mOpen = true;
    return *this;
}

CPath& CPath::LineTo(TPoint<double> const& p) {
    TPoint<double> const points[] = {p};
    if (!mOpen) {
        return MoveTo(points[0]);
    }
    if (points[0] != mCurrentPt) {
        if (!HasRoom(*this, 1)) {
            MakeRoom(1, 1);
        }
        AppendElement(*this, kPathLine, points);
    }
    return *this;
}

CPath& CPath::CurveTo(TPoint<double> const& c1, TPoint<double> const& c2, TPoint<double> const& e) {
    TPoint<double> const points[] = {c1, c2, e};
    if (mOpen && points[2] == mCurrentPt) {
        return *this;
    }
    if (!HasRoom(*this, 3)) {
        MakeRoom(1, 3);
    }
    AppendElement(*this, kPathCurve, points);
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

TPoint<double> CPath::TPt(double t) const {
    MeasuredPath const measured(*this);
    return measured.PtAtLength(t * measured.Total());
}

double CPath::FindTValue(TPoint<double> const& p) const {
    TPoint<double> const pt = p;
    double best = std::numeric_limits<double>::max();
    double limit = trammel_detail::NearestLimit(best);
    double running = 0.0;
    // The nearest segment so far: only the last one's part is measured.
    bool found = false;
    bool isCurve = false;
    double before = 0.0;
    double parameter = 0.0;
    CBezier curve;
    TLine<double> part;
    for (SegmentCursor segment(*this); segment.Next();) {
        double const start = running;
        running += segment.Length();
        if (segment.IsCurve()) {
            CBezier const& c = segment.Curve();
            TPoint<double> const points[] = {c.P0, c.P1, c.P2, c.P3};
            if (trammel_detail::Reach(points, 4).SquaredDistance(pt) > limit) {
                continue;
            }
            double const t = c.FindTValue(pt, trammel_detail::kNearestTolerance, 0.0, 1.0);
            double const distance = TLine<double>(pt, c.TPt(t)).Length();
            // Not strict, unlike for lines: on a tie a later curve wins, a later line does not.
            if (!(distance <= best)) {
                continue;
            }
            best = distance;
            curve = c;
            parameter = t;
        } else {
            TLine<double> const& line = segment.Line();
            TPoint<double> const points[] = {line.mStart, line.mEnd};
            if (trammel_detail::Reach(points, 2).SquaredDistance(pt) > limit) {
                continue;
            }
            TPoint<double> const nearest = line.TPt(line.FindTValue(pt));
            double const distance = TLine<double>(pt, nearest).Length();
            if (!(distance < best)) {
                continue;
            }
            best = distance;
            part.Set(line.mStart, nearest);
        }
        limit = trammel_detail::NearestLimit(best);
        found = true;
        isCurve = segment.IsCurve();
        before = start;
    }
    if (!found) {
        return 0.0;
    }
    if (isCurve) {
        CBezier left;
        CBezier right;
        curve.Divide(left, right, parameter);
        return (before + left.Length()) / running;
    }
    return (before + part.Length()) / running;
}

void CPath::GetTRange(double t0, double t1, CPath& out) const {
    if (&out == this) {
        CPath const source(*this);
        source.GetTRange(t0, t1, out);
        return;
    }
    MeasuredPath const measured(*this);
    trammel_detail::CutRange(measured, t0 * measured.Total(), t1 * measured.Total(), out);
}

void CPath::RemoveTRange(double t0, double t1, CPath& outA, CPath& outB) const {
    if (&outA == this || &outB == this) {
        CPath const source(*this);
        Remove(MeasuredPath(source), t0, t1, source.Closed(), outA, outB);
    } else {
        Remove(MeasuredPath(*this), t0, t1, Closed(), outA, outB);
    }
}
