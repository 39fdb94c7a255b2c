// SPDX-License-Identifier: MIT

#include "Blocks.h"

#include "plain/PlainRecords.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace plain {
namespace {

constexpr long kPointSize = sizeof(Pt);
constexpr long kHeader = 40; // of the point-list polygon

/// The even-odd rule over the edges 0 to `last`.
template <class P> bool OddCrossings(P const& polygon, long last, Pt const& p) {
    int count = 0;
    for (long i = 0; i <= last; ++i) {
        Line const edge = polygon.GetEdge(i);
        Pt const& a = edge.mStart;
        Pt const& b = edge.mEnd;
        if (!(std::min(a.v, b.v) <= p.v && p.v < std::max(a.v, b.v))) {
            continue;
        }
        if (p.h < std::min(a.h, b.h)) {
            continue;
        }
        if (p.h > std::max(a.h, b.h)) {
            ++count;
            continue;
        }
        double const slope = (a.h - b.h) / (a.v - b.v);
        double const crossing = a.h - (a.v - p.v) * slope;
        if (p.h > crossing) {
            ++count;
        }
    }
    return count % 2 == 1;
}

/// Stops the process, as the assertion of every build type does.
[[noreturn]] void Fail() { std::abort(); }

} // namespace

// ------------------------------------------------------------------------------------------------
// The point-list polygon

struct Polygon::Record {
    std::int32_t reserved;
    std::int16_t closed;
    std::int16_t boundsValid;
    Rect bounds;
    Pt points[1];

    static Record* Of(char** handle) { return reinterpret_cast<Record*>(*handle); }
};

Polygon::Polygon() : mHandle(NewHandle(kHeader)) {}
Polygon::~Polygon() { DisposeHandle(mHandle); }

long Polygon::LastIndex() const {
    if (mHandle == nullptr) {
        return -1;
    }
    return (GetHandleSize(mHandle) - kHeader - kPointSize) / kPointSize;
}

bool Polygon::Empty() const { return LastIndex() < 0; }

Pt Polygon::GetPt(long index) const {
    if (!(index >= 0)) {
        Fail();
    }
    if (!(index <= LastIndex())) {
        Fail();
    }
    return Record::Of(mHandle)->points[index];
}

Polygon& Polygon::SetPt(long index, Pt const& p) {
    if (!(index >= 0)) {
        Fail();
    }
    if (index <= LastIndex()) {
        Record::Of(mHandle)->points[index] = p;
        InvalBounds();
    }
    return *this;
}

Polygon& Polygon::Append(Pt p, bool allowDuplicate) {
    if (!allowDuplicate && !Empty() && !(p != GetPt(LastIndex()))) {
        return *this;
    }
    PtrAndHand(&p, mHandle, kPointSize);
    return *this;
}

Polygon& Polygon::AppendUnique(Pt const& p) { return Append(p, false); }

Polygon& Polygon::Close() {
    if (mHandle != nullptr) {
        Record::Of(mHandle)->closed = 1;
    }
    return *this;
}

bool Polygon::Closed() const { return mHandle == nullptr || Record::Of(mHandle)->closed != 0; }

Polygon& Polygon::Transform(Matrix const& m) {
    for (long i = 0; i <= LastIndex(); ++i) {
        Pt p = GetPt(i);
        p.Transform(m);
        SetPt(i, p);
    }
    return *this;
}

long Polygon::LastEdge() const { return Closed() ? LastIndex() : LastIndex() - 1; }
long Polygon::LastGeometryEdge() const { return LastIndex(); }

void Polygon::GetEdge(long index, Pt& a, Pt& b) const {
    if (!(index >= 0)) {
        Fail();
    }
    a = GetPt(index);
    b = index == LastIndex() ? GetPt(0) : GetPt(index + 1);
}

void Polygon::GetEdge(long index, Line& line) const { GetEdge(index, line.mStart, line.mEnd); }

Line Polygon::GetEdge(long index) const {
    Line line;
    GetEdge(index, line);
    return line;
}

double Polygon::Length() const {
    double length = 0.0;
    for (long i = 0; i <= LastEdge(); ++i) {
        length += GetEdge(i).Length();
    }
    return length;
}

Rect Polygon::Bounds() const {
    if (mHandle == nullptr) {
        return Rect();
    }
    if (!BoundsValid()) {
        CalcBounds();
    }
    return Record::Of(mHandle)->bounds;
}

bool Polygon::BoundsValid() const {
    return mHandle != nullptr && Record::Of(mHandle)->boundsValid != 0;
}

void Polygon::CalcBounds() const {
    if (mHandle == nullptr) {
        return;
    }
    Rect r;
    for (long i = 0; i <= LastIndex(); ++i) {
        r |= GetPt(i);
    }
    Record* const record = Record::Of(mHandle);
    record->boundsValid = 1;
    record->bounds = r;
}

Polygon& Polygon::InvalBounds() {
    if (mHandle != nullptr) {
        Record::Of(mHandle)->boundsValid = 0;
    }
    return *this;
}

bool Polygon::Contains(Pt const& p) const {
    return Bounds().Contains(p) && OddCrossings(*this, LastGeometryEdge(), p);
}

Pt Polygon::TPt(double t) const {
    if (t == 0.0) {
        return GetPt(0);
    }
    if (t == 1.0) {
        return GetPt(LastIndex());
    }
    double const target = t * Length();
    double sum = 0.0;
    for (long i = 0; i <= LastEdge(); ++i) {
        Line const edge = GetEdge(i);
        double const before = sum;
        sum += edge.Length();
        if (sum >= target) {
            return edge.TPt((target - before) / edge.Length());
        }
    }
    return GetPt(LastIndex());
}

Pt Polygon::TPt(double t, std::vector<double>* table) const {
    if (table == nullptr) {
        std::vector<double> built;
        BuildLTable(*this, built);
        return TPt(t, &built);
    }
    t = std::max(std::min(t, 1.0), 0.0);
    if (0.0001 > std::abs(t)) {
        return GetPt(0);
    }
    double const target = (*table)[static_cast<std::size_t>(LastIndex())] * t;
    std::size_t lo = 0;
    std::size_t hi = table->size() - 1;
    std::size_t k = 0;
    do {
        k = (lo + hi) / 2;
        if (target > (*table)[k]) {
            lo = k;
        } else {
            hi = k;
        }
    } while (hi - lo > 1);
    if ((*table)[k] > target) {
        --k;
    }
    double const span = (*table)[k + 1] - (*table)[k];
    Pt const a = GetPt(static_cast<long>(k));
    if (span != 0.0) {
        double const f = (target - (*table)[k]) / span;
        return a + (GetPt(static_cast<long>(k) + 1) - a) * f;
    }
    return a;
}

namespace {

class PointSort {
public:
    explicit PointSort(bool byH) : mByH(byH) {}
    bool operator()(Pt const& a, Pt const& b) const {
        if (mByH && a.h != b.h) {
            return a.h < b.h;
        }
        if (a.v != b.v) {
            return a.v < b.v;
        }
        return a.h < b.h;
    }

private:
    bool mByH;
};

} // namespace

std::vector<Line> Polygon::Clip(Line const& line) const {
    std::vector<Pt> points;
    std::vector<Line> pieces;
    bool const byH = 1.0 > std::abs(line.Slope());
    PointSort const sorter(byH);
    points.push_back(line.mStart);
    points.push_back(line.mEnd);
    std::sort(points.begin(), points.end(), sorter);
    for (long i = 0; i <= LastGeometryEdge(); ++i) {
        Line const edge = GetEdge(i);
        Pt where;
        if (line.SegmentsIntersect(edge, where)) {
            points.push_back(where);
        }
    }
    std::sort(points.begin(), points.end(), sorter);
    for (std::size_t k = 0; k + 1 < points.size(); ++k) {
        Line const piece(points[k], points[k + 1]);
        if (Contains(piece.MidPt())) {
            pieces.push_back(piece);
        }
    }
    return pieces;
}

void BuildLTable(Polygon const& polygon, std::vector<double>& table) {
    double sum = 0.0;
    for (long i = 0; i <= polygon.LastIndex(); ++i) {
        if (i > 0) {
            Pt const a = polygon.GetPt(i - 1);
            Pt const b = polygon.GetPt(i);
            double const dh = b.h - a.h;
            double const dv = b.v - a.v;
            sum += std::sqrt(dh * dh + dv * dv);
        }
        table.push_back(sum);
    }
}

// ------------------------------------------------------------------------------------------------
// The handle polygon, whose points lie where no double is aligned

struct HandlePolygon::Record {
    std::int16_t reserved1;
    std::int16_t closed;
    std::int16_t reserved2;
    std::int16_t boundsValid;
    Rect bounds;
    std::uint32_t path;

    static Record* Of(char** handle) { return reinterpret_cast<Record*>(*handle); }
    static char* PointAt(char** handle, long index) { return *handle + (index - 1) * 16 + 60; }
};

HandlePolygon::HandlePolygon(bool create) : mRef(create ? NewHandle(44) : nullptr) {}

void HandlePolygon::Dispose() {
    if (mRef != nullptr) {
        DisposeHandle(mRef);
        mRef = nullptr;
    }
}

long HandlePolygon::DataSize() const { return mRef != nullptr ? GetHandleSize(mRef) : 0; }

long HandlePolygon::LastIndex() const { return mRef != nullptr ? (DataSize() - 60) / 16 : -1; }

Pt HandlePolygon::PolyPoints(long index) const {
    Pt p;
    if (index >= 0 && index <= LastIndex()) {
        char const* const from = Record::PointAt(mRef, index);
        std::memcpy(&p.v, from, sizeof p.v);
        std::memcpy(&p.h, from + sizeof p.v, sizeof p.h);
    }
    return p;
}

void HandlePolygon::SetPolyPoints(long index, Pt const& p) {
    if (index >= 0 && index <= LastIndex()) {
        char* const to = Record::PointAt(mRef, index);
        std::memcpy(to, &p.v, sizeof p.v);
        std::memcpy(to + sizeof p.v, &p.h, sizeof p.h);
        InvalBounds();
    }
}

void HandlePolygon::Append(Pt const& p) {
    if (mRef == nullptr) {
        return;
    }
    PtrAndHand(&p, mRef, kPointSize);
    Record* const record = Record::Of(mRef);
    if (record->boundsValid != 0) {
        record->bounds |= p;
    }
    record->path = 0;
}

bool HandlePolygon::BoundsValid() const {
    return mRef != nullptr && Record::Of(mRef)->boundsValid != 0;
}

void HandlePolygon::InvalBounds() const {
    if (mRef == nullptr) {
        return;
    }
    Record* const record = Record::Of(mRef);
    if (record->boundsValid != 0) {
        record->bounds = Rect();
        record->boundsValid = 0;
    }
    if (record->path != 0) {
        record->path = 0;
    }
}

void HandlePolygon::CalcBounds() const {
    if (mRef == nullptr) {
        return;
    }
    Rect r;
    for (long i = LastIndex(); i >= 0; --i) {
        r |= PolyPoints(i);
    }
    Record* const record = Record::Of(mRef);
    record->bounds = r;
    record->boundsValid = 1;
}

Rect HandlePolygon::Bounds() const {
    if (mRef == nullptr) {
        return Rect();
    }
    if (!BoundsValid()) {
        CalcBounds();
    }
    return Record::Of(mRef)->bounds;
}

void HandlePolygon::Offset(Pt const& d) {
    for (long i = LastIndex(); i >= 0; --i) {
        SetPolyPoints(i, PolyPoints(i) += d);
    }
    InvalBounds();
}

void HandlePolygon::Rotate(double angle, Pt const& centre) {
    for (long i = LastIndex(); i >= 0; --i) {
        SetPolyPoints(i, PolyPoints(i).Rotate(angle, centre));
    }
    InvalBounds();
}

long HandlePolygon::EdgeCount() const { return LastIndex() - 1; }

Line HandlePolygon::GetEdge(long index) const {
    if (index <= EdgeCount()) {
        return Line(PolyPoints(index), PolyPoints(index + 1));
    }
    return Line(PolyPoints(index), PolyPoints(0));
}

long HandlePolygon::GeometryEdgeCount() const {
    long const last = LastIndex();
    if (last >= 0 && PolyPoints(0) == PolyPoints(last)) {
        return last - 1;
    }
    return last;
}

bool HandlePolygon::Contains(Pt const& p) const {
    return OddCrossings(*this, GeometryEdgeCount(), p);
}

} // namespace plain
