// SPDX-License-Identifier: MIT

#include "UHandle.h"

void GrowHandle(char** h, long delta) {
    long size = 0;
    if (__builtin_add_overflow(GetHandleSize(h), delta, &size)) {
        return;
    }
    SetHandleSize(h, size < 0 ? 0 : size);
}
