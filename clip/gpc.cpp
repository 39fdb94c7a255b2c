// SPDX-License-Identifier: MIT

// The polygon engine's C interface: converts the records and leaves the work to Combine().

#include "gpc.h"

#include "Boolean_p.h"
#include "Scratch_p.h"

#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <type_traits>

// Programs built with the original's header must be able to call this.
static_assert(sizeof(gpc_op) == sizeof(int) && GPC_UNION == 3);
static_assert(sizeof(gpc_vertex) == 2 * sizeof(double));
static_assert(offsetof(gpc_vertex_list, vertex) == sizeof(void*));
static_assert(offsetof(gpc_polygon, hole) == sizeof(void*));
static_assert(offsetof(gpc_polygon, contour) == 2 * sizeof(void*));
static_assert(std::is_trivial_v<gpc_polygon> && std::is_standard_layout_v<gpc_polygon>);

namespace {

using trammel_detail::BooleanOperand;
using trammel_detail::BooleanResult;
using trammel_detail::RegionOf;
using trammel_detail::Scratch;

[[noreturn]] void FailFor(char const* what) {
    std::fprintf(stderr, "gpc malloc failure: %s\n", what);
    std::exit(1);
}

/// Returns memory from malloc for `count` elements, and null for none. Ends the process on failure.
template <class Element> Element* Allocate(std::size_t count, char const* what) {
    if (count == 0) {
        return nullptr;
    }
    void* const block = count <= std::numeric_limits<std::size_t>::max() / sizeof(Element)
                            // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the interface says so
                            ? std::malloc(count * sizeof(Element))
                            : nullptr;
    if (block == nullptr) {
        FailFor(what);
    }
    return static_cast<Element*>(block);
}

void Read(gpc_polygon const& polygon, BooleanOperand& operand) {
    for (int i = 0; i < polygon.num_contours && polygon.contour != nullptr; ++i) {
        gpc_vertex_list const& list = polygon.contour[i];
        if (list.num_vertices > 0 && list.vertex != nullptr) {
            operand.Add(&list.vertex->x, static_cast<std::size_t>(list.num_vertices));
        }
    }
}

RegionOf RegionOfResult(gpc_op operation) {
    switch (operation) {
    case GPC_DIFF:
        return {false, true, false, false};
    case GPC_INT:
        return {false, false, false, true};
    case GPC_XOR:
        return {false, true, true, false};
    case GPC_UNION:
        break;
    }
    return {false, true, true, true};
}

gpc_polygon ToRecord(BooleanResult const& result) {
    if (result.Count() > INT_MAX) {
        FailFor("contours");
    }
    gpc_polygon record{static_cast<int>(result.Count()), nullptr, nullptr};
    record.hole = Allocate<int>(result.Count(), "hole flags");
    record.contour = Allocate<gpc_vertex_list>(result.Count(), "contours");
    for (std::size_t i = 0; i < result.Count(); ++i) {
        std::size_t const count = result.VertexCount(i);
        if (count > INT_MAX) {
            FailFor("vertices");
        }
        gpc_vertex* const vertices = Allocate<gpc_vertex>(count, "vertices");
        trammel_detail::GridPoint const* const points = result.Vertices(i);
        for (std::size_t k = 0; k < count; ++k) {
            result.grid.ToDoubles(points[k], vertices[k].x, vertices[k].y);
        }
        record.hole[i] = result.IsHole(i) ? 1 : 0;
        record.contour[i] = {static_cast<int>(count), vertices};
    }
    return record;
}

gpc_polygon Clip(gpc_op operation, gpc_polygon const& a, gpc_polygon const& b) {
    if (operation > GPC_UNION) {
        return {0, nullptr, nullptr};
    }
    Scratch scratch;
    BooleanOperand subject(&scratch);
    BooleanOperand clip(&scratch);
    Read(a, subject);
    Read(b, clip);
    return ToRecord(trammel_detail::Combine(subject, clip, RegionOfResult(operation), &scratch));
}

} // namespace

extern "C" void gpc_polygon_clip(gpc_op operation, gpc_polygon* subject, gpc_polygon* clip,
                                 gpc_polygon* result) {
    try {
        *result = Clip(operation, *subject, *clip);
    } catch (...) {
        // Memory ran out, or the range of a container did. No exception may leave a C function.
        FailFor("sweep");
    }
}

// NOLINTBEGIN(cppcoreguidelines-no-malloc): the interface says so
extern "C" void gpc_free_polygon(gpc_polygon* polygon) {
    for (int i = 0; i < polygon->num_contours && polygon->contour != nullptr; ++i) {
        std::free(polygon->contour[i].vertex);
    }
    std::free(polygon->hole);
    std::free(polygon->contour);
    *polygon = {0, nullptr, nullptr};
}
// NOLINTEND(cppcoreguidelines-no-malloc)
