// SPDX-License-Identifier: MIT

#include "RingArcs_p.h"

#include <algorithm>
#include <map>
#include <utility>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

bool Precedes(Pt const& a, Pt const& b) { return a.h < b.h || (a.h == b.h && a.v < b.v); }

/// The neighbours that a vertex has wherever a ring passes through it.
struct Neighbours {
    std::size_t low = kNone;
    std::size_t high = kNone;
    bool isNode = false; ///< there are others

    void Add(std::size_t a, std::size_t b) {
        std::size_t const first = std::min(a, b);
        std::size_t const second = std::max(a, b);
        if (low == kNone) {
            low = first;
            high = second;
        }
        isNode = isNode || low != first || high != second;
    }
};

} // namespace

RingArcs::RingArcs(std::vector<std::vector<Pt>> const& of) : rings(of.size()) {
    for (std::vector<Pt> const& ring : of) {
        vertices.insert(vertices.end(), ring.begin(), ring.end());
    }
    std::sort(vertices.begin(), vertices.end(), Precedes);
    vertices.erase(std::unique(vertices.begin(), vertices.end()), vertices.end());

    std::vector<std::vector<std::size_t>> numbers(of.size());
    std::vector<Neighbours> neighbours(vertices.size());
    for (std::size_t r = 0; r < of.size(); ++r) {
        std::vector<std::size_t>& ids = numbers[r];
        ids.reserve(of[r].size());
        for (Pt const& p : of[r]) {
            auto const place = std::lower_bound(vertices.begin(), vertices.end(), p, Precedes);
            ids.push_back(static_cast<std::size_t>(place - vertices.begin()));
        }
        for (std::size_t i = 0; i < ids.size(); ++i) {
            neighbours[ids[i]].Add(ids[i == 0 ? ids.size() - 1 : i - 1],
                                   ids[i + 1 == ids.size() ? 0 : i + 1]);
        }
    }

    // An arc is known by its first two vertices: from there on each vertex has one way to go.
    std::map<std::pair<std::size_t, std::size_t>, std::size_t> known;
    for (std::size_t r = 0; r < of.size(); ++r) {
        std::vector<std::size_t>& ids = numbers[r];
        if (ids.size() < 2) {
            continue;
        }
        // Begin at a node. Rings without any begin at their least vertex, so that equal ones agree.
        auto begin = std::find_if(ids.begin(), ids.end(),
                                  [&](std::size_t id) { return neighbours[id].isNode; });
        if (begin == ids.end()) {
            begin = std::min_element(ids.begin(), ids.end());
        }
        std::rotate(ids.begin(), begin, ids.end());
        ids.push_back(ids.front());
        for (std::size_t i = 0; i + 1 < ids.size();) {
            std::size_t end = i + 1;
            while (end + 1 < ids.size() && !neighbours[ids[end]].isNode) {
                ++end;
            }
            auto const at = [&](std::size_t k) {
                return std::make_pair(ids[i + k], ids[i + k + 1]);
            };
            auto const back = std::make_pair(ids[end], ids[end - 1]);
            bool const isReversed = back < at(0);
            std::size_t const next = arcs.size();
            auto const place = known.emplace(isReversed ? back : at(0), next).first;
            if (place->second == next) {
                auto const first = ids.begin() + static_cast<std::ptrdiff_t>(i);
                auto const last = ids.begin() + static_cast<std::ptrdiff_t>(end) + 1;
                arcs.emplace_back(first, last);
                if (isReversed) {
                    std::reverse(arcs.back().begin(), arcs.back().end());
                }
            }
            rings[r].push_back({place->second, isReversed});
            i = end;
        }
    }
}

} // namespace trammel_detail
