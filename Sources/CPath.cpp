// SPDX-License-Identifier: MIT

#include "CPath.h"

#include "BoundsCache_p.h"
#include "CMatrix3x3.h"
#include "PathWalk_p.h"
#include "UTrigonometry.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

namespace {

using trammel_detail::ElementCursor;

TPoint<double> UnitPoint(double angle) {
    TPoint<double> p;
    SinCos(angle, p.v, p.h);
    return p;
}

/// The least number of items that room is made for. So small outlines take one block instead of
/// five.
constexpr std::size_t kLeastRoom = 16;

/// Makes room for `more` items without giving up geometric growth. Throws std::bad_alloc, also for
/// more items than a vector takes.
template <class Item> void Reserve(std::vector<Item>& items, std::size_t more) {
    std::size_t const needed = items.size() + more;
    if (needed > items.max_size()) {
        throw std::bad_alloc();
    }
    if (needed > items.capacity()) {
        std::size_t const grown = std::min(2 * items.capacity(), items.max_size());
        items.reserve(std::max({needed, kLeastRoom, grown}));
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

// Operations call this before they write anything, so that memory cannot run out half-way.
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
    TRect<double> bounds = CachedBounds();
    if (bounds.Null() && !mPts.empty()) {
        for (TPoint<double> const& p : mPts) {
            bounds |= p;
        }
        trammel_detail::KeptBounds(mBounds, nullptr).Store({bounds, 0});
    }
    return bounds;
}

TRect<double> CPath::CachedBounds() const {
    // Const members only store bounds that were null, and the right side last. Where that side is
    // not 0, the bounds are whole, and no thread writes them any more.
    double right;
    __atomic_load(&mBounds.right, &right, __ATOMIC_ACQUIRE);
    return right != 0.0 ? mBounds : trammel_detail::KeptBounds(mBounds, nullptr).Load().bounds;
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
    InvalBounds();
}
