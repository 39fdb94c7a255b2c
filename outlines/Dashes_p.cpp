// SPDX-License-Identifier: MIT

#include "Dashes_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace trammel_detail {

namespace {

/// A line gets no more dashes, whatever its length is.
constexpr double kMostDashes = 0x1p16;
/// Rounding is off by no more than this share of the period, or dashes have no meaning.
constexpr double kMostBlur = 0x1p-10;

} // namespace

DashPattern::DashPattern(std::vector<double> const& lengths, double offset) {
    if (!std::all_of(lengths.begin(), lengths.end(),
                     [](double d) { return d >= 0.0 && std::isfinite(d); })) {
        return;
    }
    std::size_t const count = lengths.size() % 2 == 0 ? lengths.size() : 2 * lengths.size();
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        double const next = sum + lengths[i % lengths.size()];
        if (i % 2 == 0) {
            mEdges.push_back(sum);
            mEdges.push_back(next);
        }
        sum = next;
    }
    if (!std::isfinite(sum)) {
        return;
    }
    mPeriod = sum;
    if (sum > 0.0 && std::isfinite(offset)) {
        mOffset = std::fmod(offset, sum);
        if (mOffset < 0.0) {
            mOffset += sum;
        }
    }
}

bool DashPattern::Find(double length, double blur, std::vector<DashRange>& out) const {
    double const dashes = 0.5 * static_cast<double>(mEdges.size());
    if (!(mPeriod > 0.0) || !((length / mPeriod + 2.0) * dashes <= kMostDashes)) {
        return false;
    }
    double const off = std::min(blur, kMostBlur * mPeriod);
    for (std::size_t period = 0;; ++period) {
        double const begin = static_cast<double>(period) * mPeriod - mOffset;
        for (std::size_t i = 0; i < mEdges.size(); i += 2) {
            double const from = begin + mEdges[i];
            double const to = begin + mEdges[i + 1];
            if (from >= length - off && from > off) {
                return true;
            }
            if (to > off || from >= -off) {
                double const start = from > off ? from : 0.0;
                out.push_back({start, to < length - off ? std::max(to, start) : length});
            }
        }
    }
}

} // namespace trammel_detail
