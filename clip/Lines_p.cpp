// SPDX-License-Identifier: MIT

#include "Lines_p.h"

#include "Predicates_p.h"

#include <algorithm>
#include <cstddef>

namespace trammel_detail {

void GridLines::Close(Operands operand) {
    std::size_t begin = ends.empty() ? 0 : ends.back();
    // False when b repeats a or c, or the line turns back at b.
    auto const encloses = [](GridPoint a, GridPoint b, GridPoint c) {
        return a != b && b != c && (Cross(b, a, c) != 0 || !SameDirection(b, a, c));
    };
    std::size_t size = begin;
    for (std::size_t i = begin; i < points.size(); ++i) {
        GridPoint const p = points[i];
        while (size >= begin + 2 && !encloses(points[size - 2], points[size - 1], p)) {
            --size;
        }
        if (size == begin || points[size - 1] != p) {
            points[size++] = p;
        }
    }
    // The same across the seam.
    for (bool again = true; again && size - begin >= 3;) {
        again = false;
        if (!encloses(points[size - 2], points[size - 1], points[begin])) {
            --size;
            again = true;
        } else if (!encloses(points[size - 1], points[begin], points[begin + 1])) {
            ++begin;
            again = true;
        }
    }
    std::size_t const start = ends.empty() ? 0 : ends.back();
    if (size - begin < 3) {
        points.resize(start);
        return;
    }
    if (begin != start) {
        std::move(points.begin() + static_cast<std::ptrdiff_t>(begin),
                  points.begin() + static_cast<std::ptrdiff_t>(size),
                  points.begin() + static_cast<std::ptrdiff_t>(start));
        size -= begin - start;
    }
    points.resize(size);
    ends.push_back(size);
    operands.push_back(operand);
}

void GridLines::CloseOwned(std::uint32_t owner) {
    std::size_t const count = Count();
    Close(1);
    if (Count() > count) {
        owners.push_back(owner);
    }
}

} // namespace trammel_detail
