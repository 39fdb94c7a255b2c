// SPDX-License-Identifier: MIT

// A truth value is no polygon: the constructor that takes one must be called by name.

#include <trammel/CFPolygonRef.h>

CFPolygonRef MakeReference(bool closed) {
#ifdef TRAMMEL_FORBIDDEN
    CFPolygonRef polygon = closed;
#else
    CFPolygonRef polygon(closed);
#endif
    return polygon;
}
