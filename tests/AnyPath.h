// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_ANYPATH_H
#define TRAMMEL_ANYPATH_H

#include "CPath.h"
#include "TPoint.h"

#include <cstddef>
#include <random>

namespace trammel_test {

/// A small path of any codes and points, as the building operations and as nobody makes them. Its
/// coordinates are integers from 0 to 6.
inline CPath AnyPath(std::mt19937& random) {
    CPath path;
    auto const point = [&] {
        return TPoint<double>(static_cast<double>(random() % 7), static_cast<double>(random() % 7));
    };
    std::size_t const count = random() % 14;
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t const kind = random() % 16;
        if (kind == 15) {
            path.AddCtl(9);
        } else if (kind == 14) {
            path.AddCtl(kPathClose);
        } else if (kind < 3) {
            path.MoveTo(point());
        } else if (kind < 7) {
            path.LineTo(point());
        } else if (kind < 11) {
            path.CurveTo(point(), point(), point());
        } else {
            path.ClosePath();
        }
    }
    if (random() % 4 == 0 && !path.mPts.empty()) {
        path.mPts.pop_back();
    }
    return path;
}

} // namespace trammel_test

#endif
