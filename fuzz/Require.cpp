// SPDX-License-Identifier: MIT

#include "Targets.h"

#include <cstdio>
#include <cstdlib>

void fuzz::Require(bool holds, char const* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}
