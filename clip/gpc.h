// SPDX-License-Identifier: MIT

/*
 * Boolean operations on polygons: the C interface of the polygon clipper.
 *
 * A polygon is any number of closed contours. A point is inside where a ray from it crosses the
 * contours an odd number of times (even-odd rule). So contours may cross themselves and each other,
 * overlap, and run in either direction. Usable from C and from C++. No state is kept between calls:
 * calls on different records may run in several threads at once.
 */
#ifndef TRAMMEL_GPC_H
#define TRAMMEL_GPC_H

#include "TrammelExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The operations: what part of the plane the result of "subject, clip" covers. */
#ifdef __cplusplus
/* The underlying type is the one that C gives it; named, so that a code from elsewhere that is none
 * of the four has a defined meaning in C++ as well. */
typedef enum : unsigned int {
#else
typedef enum {
#endif
    GPC_DIFF = 0, /**< in the subject and not in the clip polygon */
    GPC_INT = 1,  /**< in both */
    GPC_XOR = 2,  /**< in exactly one of them */
    GPC_UNION = 3 /**< in at least one of them */
} gpc_op;

/** A vertex. */
typedef struct {
    double x;
    double y;
} gpc_vertex;

/** A contour: its vertices in order, the closing edge from the last to the first implied. */
typedef struct {
    int num_vertices;
    gpc_vertex* vertex;
} gpc_vertex_list;

/**
 * A polygon. `hole` and `contour` have `num_contours` elements each and are null if there are none.
 * `hole[i]` is nonzero where contour `i` bounds a hole of the polygon. Results have it right;
 * operands need not, and may have a null `hole`, as only the even-odd rule counts there.
 */
typedef struct {
    int num_contours;
    int* hole;
    gpc_vertex_list* contour;
} gpc_polygon;

/**
 * Stores in `*result` what `operation` makes of `*subject` and `*clip`.
 *
 * The result: its contours do not cross, and meet in single points at most. Each has three or more
 * vertices, none twice, and an area. Contours of holes run in the positive direction, which is
 * counterclockwise where y points up, and start at their highest vertex. The others run in the
 * negative direction and end there. Of several highest vertices it is the one with the greatest x.
 * A vertex between two horizontal edges of one line is left out. Other vertices of the operands
 * stay even on a straight edge. The contours come in descending (y, x) order of a low point of
 * each.
 *
 * Accuracy: the plane is a grid of up to 2^61 steps along each axis of the operands' bounding box,
 * or of the doubles where those are coarser. A vertex of an operand that survives is the same
 * double, bit for bit. A point where edges cross is right to about 2^-52 of the box, or is the
 * nearest double. That holds for any size of the box from 1e-300 upwards, any place of it, and any
 * ratio of its sides. Details smaller than a step may vanish. Vertices nearer to zero than 2^-8 of
 * the box can be finer than the grid. Edges that end in such a vertex may run up to half a step
 * off, and cross others that come as near as that.
 *
 * Degenerate: a contour with a NaN or infinite coordinate, fewer than three vertices or a null
 * pointer counts as absent, as does a part that encloses nothing. A polygon with no contours is the
 * empty set: its union with another is that other polygon with its contours set in order. An
 * `operation` that is none of the four gives no contours.
 *
 * Ownership: `result` is only written, after the operands were read, and may be one of them. Its
 * previous arrays are not released. The new arrays are allocated with `malloc`, and
 * gpc_free_polygon() releases them.
 *
 * Errors: when memory runs out, writes "gpc malloc failure: " and its purpose, as one line, to
 * standard error and ends the process with exit(1).
 *
 * Cost: in practice time proportional to n log n + k for n vertices and k points where edges meet.
 * At worst it is proportional to the number of pairs of edges whose bounding boxes meet. Memory is
 * proportional to n + k. Some 32 KB of it are on the stack, and small operands fit in them.
 */
TRAMMEL_API void gpc_polygon_clip(gpc_op operation, gpc_polygon* subject, gpc_polygon* clip,
                                  gpc_polygon* result);

/**
 * Releases the arrays of `*polygon` with `free` and leaves it with no contours and null pointers.
 * They must come from gpc_polygon_clip() or from `malloc`. Releasing twice does no harm.
 */
TRAMMEL_API void gpc_free_polygon(gpc_polygon* polygon);

#ifdef __cplusplus
}
#endif

#endif
