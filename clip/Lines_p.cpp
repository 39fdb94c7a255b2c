// SPDX-License-Identifier: MIT

#include "Lines_p.h"

#include "Predicates_p.h"

#include <algorithm>
#include <cstddef>

namespace trammel_detail {

void GridLines::AppendPoints(GridLines const& from, std::size_t line) {
    auto const begin = static_cast<std::ptrdiff_t>(from.Begin(line));
    auto const end = static_cast<std::ptrdiff_t>(from.End(line));
    points.insert(points.end(), from.points.begin() + begin, from.points.begin() + end);
    if (!from.origins.empty()) {
        origins.insert(origins.end(), from.origins.begin() + begin, from.origins.begin() + end);
    }
    ends.push_back(points.size());
}

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
            Skip(size - 2, size - 1, i);
            --size;
        }
        if (size == begin || points[size - 1] != p) {
            points[size++] = p;
        }
        if (!origins.empty()) {
            origins[size - 1] = origins[i];
        }
    }
    // The same across the seam.
    for (bool again = true; again && size - begin >= 3;) {
        again = false;
        if (!encloses(points[size - 2], points[size - 1], points[begin])) {
            Skip(size - 2, size - 1, begin);
            --size;
            again = true;
        } else if (!encloses(points[size - 1], points[begin], points[begin + 1])) {
            Skip(size - 1, begin, begin + 1);
            ++begin;
            again = true;
        }
    }
    std::size_t const start = ends.empty() ? 0 : ends.back();
    if (size - begin < 3) {
        points.resize(start);
        origins.resize(std::min(origins.size(), start));
        return;
    }
    auto const moveToStart = [&](auto& values) {
        std::move(values.begin() + static_cast<std::ptrdiff_t>(begin),
                  values.begin() + static_cast<std::ptrdiff_t>(size),
                  values.begin() + static_cast<std::ptrdiff_t>(start));
    };
    std::size_t const end = size - begin + start;
    if (begin != start) {
        moveToStart(points);
        if (!origins.empty()) {
            moveToStart(origins);
        }
    }
    points.resize(end);
    origins.resize(std::min(origins.size(), end));
    ends.push_back(end);
    operands.push_back(operand);
}

void GridLines::Skip(std::size_t a, std::size_t b, std::size_t c) {
    // Where the line turns back at b, the longer one of its edges there holds the new edge.
    if (!origins.empty() && points[b] != points[c] &&
        (points[a] == points[b] || !Contains(BoxOf(points[a], points[b]), points[c]))) {
        origins[a] = origins[b];
    }
}

void GridLines::CloseOwned(std::uint32_t owner) {
    std::size_t const count = Count();
    Close(1);
    if (Count() > count) {
        owners.push_back(owner);
    }
}

} // namespace trammel_detail
