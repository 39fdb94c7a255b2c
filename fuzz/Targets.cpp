// SPDX-License-Identifier: MIT

#include "Targets.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace fuzz {

Target const* FindTarget(std::string_view name) {
    auto const found = std::find_if(kTargets.begin(), kTargets.end(),
                                    [name](Target const& target) { return name == target.name; });
    return found != kTargets.end() ? &*found : nullptr;
}

void Require(bool holds, char const* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

} // namespace fuzz
