// SPDX-License-Identifier: MIT

/* The header of a stand-in for a system's polygon clipper: plain C, which does not know of C++ or
 * of Trammel. script/check-system-clipper installs it beside a library that it makes from our
 * engine.
 */
#ifndef GPC_H
#define GPC_H

typedef enum { GPC_DIFF, GPC_INT, GPC_XOR, GPC_UNION } gpc_op;

typedef struct {
    double x;
    double y;
} gpc_vertex;

typedef struct {
    int num_vertices;
    gpc_vertex* vertex;
} gpc_vertex_list;

typedef struct {
    int num_contours;
    int* hole;
    gpc_vertex_list* contour;
} gpc_polygon;

void gpc_polygon_clip(gpc_op operation, gpc_polygon* subject, gpc_polygon* clip,
                      gpc_polygon* result);
void gpc_free_polygon(gpc_polygon* polygon);

#endif
