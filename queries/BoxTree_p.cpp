// SPDX-License-Identifier: MIT

#include "BoxTree_p.h"

#include "MortonOrder_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace trammel_detail {

namespace {

/// The position of a coordinate between two others on the grid of Morton codes.
std::int64_t OnGrid(double x, double low, double high) {
    // Halves, as the difference may overflow.
    double const length = 0.5 * high - 0.5 * low;
    double const part = length > 0.0 ? (0.5 * x - 0.5 * low) / length : 0.0;
    // In this order of arguments, NaN takes the lowest place. No integer stands for NaN.
    return static_cast<std::int64_t>(std::min(std::max(-1.0, 2.0 * part - 1.0), 1.0) * 0x1p59);
}

} // namespace

void AddLevelsAbove(std::vector<std::vector<Box<double>>>& levels, std::size_t fan) {
    while (levels.back().size() > 1) {
        std::vector<Box<double>> const& below = levels.back();
        std::vector<Box<double>> level((below.size() + fan - 1) / fan);
        for (std::size_t i = 0; i < below.size(); ++i) {
            level[i / fan].Include(below[i]);
        }
        levels.push_back(std::move(level));
    }
}

BoxTree::BoxTree(std::vector<Box<double>> const& boxes) {
    if (boxes.empty()) {
        return;
    }
    Box<double> all;
    for (Box<double> const& b : boxes) {
        all.Include(b);
    }
    std::vector<std::pair<std::uint64_t, std::size_t>> codes;
    codes.reserve(boxes.size());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        Box<double> const& b = boxes[i];
        codes.emplace_back(MortonCode({OnGrid(0.5 * b.lowX + 0.5 * b.highX, all.lowX, all.highX),
                                       OnGrid(0.5 * b.lowY + 0.5 * b.highY, all.lowY, all.highY)}),
                           i);
    }
    std::sort(codes.begin(), codes.end());
    mOrder.reserve(boxes.size());
    mLevels.emplace_back();
    mLevels[0].reserve(boxes.size());
    for (auto const& [code, i] : codes) {
        mOrder.push_back(i);
        mLevels[0].push_back(boxes[i]);
    }
    AddLevelsAbove(mLevels, kFan);
}

} // namespace trammel_detail
