// SPDX-License-Identifier: MIT

// The clipper's C interface.
//
// Each operation is: doubles to a grid of integers fitted to the operands; their edges cut wherever
// they meet, exactly; of the pieces those that bound the result linked to contours; back to
// doubles. libpolyclipping's sweep stands by for what cutting might not settle.
#include "gpc.h"

#include "ContourOrder_p.h"
#include "Contours_p.h"
#include "Grid_p.h"
#include "Scratch_p.h"
#include "Sweep_p.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

// Programs built with the original's header must be able to call this.
static_assert(sizeof(gpc_op) == sizeof(int) && GPC_UNION == 3);
static_assert(sizeof(gpc_vertex) == 2 * sizeof(double));
static_assert(offsetof(gpc_vertex_list, vertex) == sizeof(void*));
static_assert(offsetof(gpc_polygon, hole) == sizeof(void*));
static_assert(offsetof(gpc_polygon, contour) == 2 * sizeof(void*));
static_assert(std::is_trivial_v<gpc_polygon> && std::is_standard_layout_v<gpc_polygon>);

namespace {

using trammel_detail::ClipGrid;
using trammel_detail::GridLines;
using trammel_detail::Operands;
using trammel_detail::RegionOf;
using trammel_detail::ResolvedContours;
using trammel_detail::Scratch;
using trammel_detail::ScratchVector;

[[noreturn]] void FailFor(char const* what) {
    std::fprintf(stderr, "gpc malloc failure: %s\n", what);
    std::exit(1);
}

/// malloc for `count` elements that cannot fail and gives null for none.
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

/// A rectangle with its edges; none as long as low > high.
struct Bounds {
    double lowX = std::numeric_limits<double>::infinity();
    double lowY = std::numeric_limits<double>::infinity();
    double highX = -std::numeric_limits<double>::infinity();
    double highY = -std::numeric_limits<double>::infinity();

    void Include(gpc_vertex const& v) {
        lowX = std::min(lowX, v.x);
        lowY = std::min(lowY, v.y);
        highX = std::max(highX, v.x);
        highY = std::max(highY, v.y);
    }
    void Include(Bounds const& b) {
        lowX = std::min(lowX, b.lowX);
        lowY = std::min(lowY, b.lowY);
        highX = std::max(highX, b.highX);
        highY = std::max(highY, b.highY);
    }
    bool HasArea() const { return lowX < highX && lowY < highY; }
    bool Meets(Bounds const& b) const {
        return lowX <= b.highX && b.lowX <= highX && lowY <= b.highY && b.lowY <= highY;
    }
};

/// A contour of an operand that can enclose something.
struct Contour {
    gpc_vertex_list const* list;
    Bounds bounds;
};

struct Operand {
    ScratchVector<Contour> contours;
    Bounds bounds;

    explicit Operand(Scratch* scratch) : contours(scratch) {}
    std::size_t Size() const {
        std::size_t size = 0;
        for (Contour const& c : contours) {
            size += static_cast<std::size_t>(c.list->num_vertices);
        }
        return size;
    }
    void Keep(Bounds const& where) {
        contours.erase(std::remove_if(contours.begin(), contours.end(),
                                      [&](Contour const& c) { return !c.bounds.Meets(where); }),
                       contours.end());
        Measure();
    }
    void Measure() {
        bounds = Bounds();
        for (Contour const& c : contours) {
            bounds.Include(c.bounds);
        }
    }
};

/// The contour's bounds; none if it counts as absent.
std::optional<Bounds> BoundsOf(gpc_vertex_list const& list) {
    if (list.num_vertices < 3 || list.vertex == nullptr) {
        return std::nullopt;
    }
    Bounds bounds;
    for (int i = 0; i < list.num_vertices; ++i) {
        gpc_vertex const& v = list.vertex[i];
        if (!std::isfinite(v.x) || !std::isfinite(v.y)) {
            return std::nullopt;
        }
        bounds.Include(v);
    }
    if (!bounds.HasArea()) {
        return std::nullopt;
    }
    return bounds;
}

Operand Read(gpc_polygon const& polygon, Scratch* scratch) {
    Operand operand(scratch);
    for (int i = 0; i < polygon.num_contours && polygon.contour != nullptr; ++i) {
        if (std::optional<Bounds> const bounds = BoundsOf(polygon.contour[i])) {
            operand.contours.push_back({&polygon.contour[i], *bounds});
        }
    }
    operand.Measure();
    return operand;
}

/// Leaves out contours that cannot change the result: a contour has no effect outside its bounds.
void LeaveOutUseless(gpc_op operation, Operand& subject, Operand& clip) {
    if (operation == GPC_INT) {
        subject.Keep(clip.bounds);
    }
    if (operation == GPC_INT || operation == GPC_DIFF) {
        clip.Keep(subject.bounds);
    }
}

/// The sides of a rectangle beyond which a point lies, as bits.
unsigned Beyond(Bounds const& where, gpc_vertex const& v) {
    return (v.x < where.lowX ? 1U : 0U) | (v.x > where.highX ? 2U : 0U) |
           (v.y < where.lowY ? 4U : 0U) | (v.y > where.highY ? 8U : 0U);
}

/// Appends the contours' grid points, a line each. What is inside has to be right within `where`
/// only: of vertices that follow each other beyond the same side of it those in the middle are left
/// out, which changes nothing but on that side.
void AppendLines(Operand const& operand, Operands bit, Bounds const& where, ClipGrid& grid,
                 GridLines& lines) {
    for (Contour const& contour : operand.contours) {
        gpc_vertex const* const v = contour.list->vertex;
        auto const count = static_cast<std::size_t>(contour.list->num_vertices);
        unsigned last = 0;
        unsigned next = Beyond(where, v[0]);
        for (std::size_t i = 0; i < count; ++i) {
            unsigned const here = next;
            next = i + 1 < count ? Beyond(where, v[i + 1]) : 0;
            if ((last & here & next) == 0) {
                lines.points.push_back(grid.Add(v[i].x, v[i].y));
                last = here;
            }
        }
        lines.Close(bit);
    }
}

Operands const kSubject = 1;
Operands const kClip = 2;

/// The operands' lines.
GridLines LinesOf(gpc_op operation, Operand const& subject, Operand const& clip, ClipGrid& grid,
                  Scratch* scratch) {
    GridLines lines(scratch);
    lines.points.reserve(subject.Size() + clip.Size());
    lines.ends.reserve(subject.contours.size() + clip.contours.size());
    lines.operands.reserve(lines.ends.capacity());
    // Nothing of an intersection lies outside of either operand, or of a difference outside of the
    // first.
    AppendLines(subject, kSubject, operation == GPC_INT ? clip.bounds : subject.bounds, grid,
                lines);
    AppendLines(clip, kClip,
                operation == GPC_INT || operation == GPC_DIFF ? subject.bounds : clip.bounds, grid,
                lines);
    grid.FinishAdding();
    return lines;
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

gpc_polygon ToRecord(ResolvedContours const& resolved, ScratchVector<std::size_t> const& order,
                     ClipGrid const& grid) {
    GridLines const& contours = resolved.contours;
    if (order.size() > INT_MAX) {
        FailFor("contours");
    }
    gpc_polygon result{static_cast<int>(order.size()), nullptr, nullptr};
    result.hole = Allocate<int>(order.size(), "hole flags");
    result.contour = Allocate<gpc_vertex_list>(order.size(), "contours");
    for (std::size_t i = 0; i < order.size(); ++i) {
        std::size_t const begin = contours.Begin(order[i]);
        std::size_t const count = contours.End(order[i]) - begin;
        if (count > INT_MAX) {
            FailFor("vertices");
        }
        gpc_vertex* const vertices = Allocate<gpc_vertex>(count, "vertices");
        for (std::size_t k = 0; k < count; ++k) {
            grid.ToDoubles(contours.points[begin + k], vertices[k].x, vertices[k].y);
        }
        result.hole[i] = resolved.holes[order[i]] != 0 ? 1 : 0;
        result.contour[i] = {static_cast<int>(count), vertices};
    }
    return result;
}

gpc_polygon Clip(gpc_op operation, gpc_polygon const& a, gpc_polygon const& b) {
    gpc_polygon const none{0, nullptr, nullptr};
    if (operation > GPC_UNION) {
        return none;
    }
    Scratch scratch;
    Operand subject = Read(a, &scratch);
    Operand clip = Read(b, &scratch);
    LeaveOutUseless(operation, subject, clip);
    Bounds all = subject.bounds;
    all.Include(clip.bounds);
    if (!all.HasArea()) {
        return none;
    }
    ClipGrid grid(all.lowX, all.lowY, all.highX, all.highY);
    RegionOf const region = RegionOfResult(operation);
    GridLines lines = LinesOf(operation, subject, clip, grid, &scratch);
    ResolvedContours resolved(&scratch);
    if (!trammel_detail::ResolveContours(lines, region, grid, resolved) &&
        !(trammel_detail::SweepBoundary(region, grid, lines) &&
          trammel_detail::ResolveContours(lines, trammel_detail::kInsideSwept, grid, resolved))) {
        FailFor("sweep");
    }
    ScratchVector<std::size_t> const order = trammel_detail::OrderContours(resolved);
    return ToRecord(resolved, order, grid);
}

} // namespace

extern "C" void gpc_polygon_clip(gpc_op operation, gpc_polygon* subject, gpc_polygon* clip,
                                 gpc_polygon* result) {
    try {
        *result = Clip(operation, *subject, *clip);
    } catch (...) {
        // Out of memory, or of the range of a container. libpolyclipping throws nothing else for
        // coordinates on the grid. Nothing may leave a C function.
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
