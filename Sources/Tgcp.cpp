// SPDX-License-Identifier: MIT

#include "Tgcp.h"

#include "UFPoly.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <utility>

static_assert(static_cast<int>(kPolyDifference) == GPC_DIFF &&
              static_cast<int>(kPolyIntersection) == GPC_INT &&
              static_cast<int>(kPolyXor) == GPC_XOR && static_cast<int>(kPolyUnion) == GPC_UNION);

namespace {

/// Frees a clipper record at the end of its scope. The arrays come from malloc, because the clipper
/// frees them with free.
class GpcRecord {
public:
    GpcRecord() = default;
    ~GpcRecord() { gpc_free_polygon(&mRecord); }
    GpcRecord(GpcRecord const&) = delete;
    GpcRecord& operator=(GpcRecord const&) = delete;

    gpc_polygon* Get() { return &mRecord; }
    gpc_polygon Release() { return std::exchange(mRecord, gpc_polygon{}); }

private:
    gpc_polygon mRecord = {};
};

/// Returns an uninitialised array of `count` items from malloc. Throws std::bad_alloc.
template <class Item> Item* Allocate(std::size_t count) {
    if (count > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw std::bad_alloc(); // the records count in ints
    }
    if (count == 0) {
        return nullptr;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the clipper frees with free
    void* const items = std::malloc(count * sizeof(Item));
    if (items == nullptr) {
        throw std::bad_alloc();
    }
    return static_cast<Item*>(items);
}

void Fill(gpc_polygon& record, Tgpc_polygon const& p) {
    record.hole = Allocate<int>(p.mContours.size());
    record.contour = Allocate<gpc_vertex_list>(p.mContours.size());
    for (Tgcp_contour const& contour : p.mContours) {
        gpc_vertex* const vertices = Allocate<gpc_vertex>(contour.mVertices.size());
        // Counted only when complete, so that the record can be freed at any moment.
        int const i = record.num_contours++;
        record.hole[i] = contour.mHole ? 1 : 0;
        record.contour[i].num_vertices = static_cast<int>(contour.mVertices.size());
        record.contour[i].vertex = vertices;
        for (std::size_t k = 0; k < contour.mVertices.size(); ++k) {
            vertices[k].x = contour.mVertices[k].h;
            vertices[k].y = contour.mVertices[k].v;
        }
    }
}

} // namespace

Tgcp_contour::Tgcp_contour() : mReserved(false), mHole(false) {}

Tgcp_contour::Tgcp_contour(TRect<double> const& r)
    : mReserved(false),
      mHole(false), mVertices{r.TopLeft(), r.TopRight(), r.BottomRight(), r.BottomLeft()} {}

Tgcp_contour::Tgcp_contour(CFPolygonRef poly) : mReserved(false), mHole(false) {
    long const last = LastFPolyIndex(poly);
    mVertices.reserve(static_cast<std::size_t>(std::max(last + 1, 0L))); // no header: below -1
    for (long i = last; i >= 0; --i) {
        mVertices.push_back(poly.PolyPoints(i));
    }
}

CFPolygonRef Tgcp_contour::ConvertToFPoly() const {
    CFPolygonRef const poly = OpenFPoly();
    for (TPoint<double> const& vertex : mVertices) {
        AppendPolyPt(vertex, poly);
    }
    if (!mVertices.empty()) {
        AppendPolyPt(mVertices.front(), poly);
    }
    return poly;
}

TRect<double> Tgcp_contour::Bounds() const {
    TRect<double> bounds;
    for (TPoint<double> const& vertex : mVertices) {
        bounds |= vertex;
    }
    return bounds;
}

Tgpc_polygon::Tgpc_polygon() = default;

Tgpc_polygon::Tgpc_polygon(TRect<double> const& r) : mContours{Tgcp_contour(r)} {}

Tgpc_polygon::Tgpc_polygon(CFPolygonRef poly) : mContours{Tgcp_contour(poly)} {}

void Tgpc_polygon::AddContour(Tgcp_contour const& c) { mContours.push_back(c); }

CFPolygonRef Tgpc_polygon::ConvertToFPoly(long i) const {
    return i >= 0 && i < NumContours() ? mContours[static_cast<std::size_t>(i)].ConvertToFPoly()
                                       : OpenFPoly();
}

TRect<double> Tgpc_polygon::Bounds() const {
    TRect<double> bounds;
    for (Tgcp_contour const& contour : mContours) {
        bounds |= contour.Bounds();
    }
    return bounds;
}

gpc_polygon Create_gpc(Tgpc_polygon const& p) {
    GpcRecord record;
    Fill(*record.Get(), p);
    return record.Release();
}

Tgpc_polygon Create_Tgpc(gpc_polygon* g) {
    Tgpc_polygon polygon;
    int const count = g != nullptr && g->contour != nullptr ? g->num_contours : 0;
    polygon.mContours.reserve(static_cast<std::size_t>(std::max(count, 0)));
    for (int i = 0; i < count; ++i) {
        gpc_vertex_list const& list = g->contour[i];
        polygon.mContours.emplace_back();
        Tgcp_contour& contour = polygon.mContours.back();
        int const size = list.vertex != nullptr ? std::max(list.num_vertices, 0) : 0;
        contour.mVertices.reserve(static_cast<std::size_t>(size));
        for (int k = 0; k < size; ++k) {
            contour.mVertices.emplace_back(list.vertex[k].x, list.vertex[k].y);
        }
        contour.mHole = g->hole != nullptr && g->hole[i] != 0;
    }
    return polygon;
}

void Tgpc_polygon_clip(TPolyOp op, Tgpc_polygon const& a, Tgpc_polygon const& b,
                       Tgpc_polygon& result) {
    if (op < kPolyDifference || op > kPolyUnion) {
        result = Tgpc_polygon();
        return;
    }
    // Declared in this order so that they are freed in the order ga, gb, gr.
    GpcRecord gr;
    GpcRecord gb;
    GpcRecord ga;
    Fill(*ga.Get(), a);
    Fill(*gb.Get(), b);
    gpc_polygon_clip(static_cast<gpc_op>(op), ga.Get(), gb.Get(), gr.Get());
    result = Create_Tgpc(gr.Get());
}
