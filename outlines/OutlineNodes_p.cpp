// SPDX-License-Identifier: MIT

#include "OutlineNodes_p.h"

#include "PointMath_p.h"

#include <algorithm>
#include <cstddef>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// The curves to both sides of a joint, both leading away from it, the lesser one first.
struct Passage {
    Cubic one;
    Cubic other;
    std::size_t subpath;
    std::size_t element; ///< which begins here
    bool isNode;         ///< whatever passes here otherwise

    bool IsBefore(Passage const& p) const { return Compare(p) < 0; }
    int Compare(Passage const& p) const {
        int const first = CompareCurves(one, p.one);
        return first != 0 ? first : CompareCurves(other, p.other);
    }
};

bool IsFinite(Cubic const& c) {
    return std::all_of(c.begin(), c.end(), [](Pt const& p) { return trammel_detail::IsFinite(p); });
}

} // namespace

int CompareCurves(Cubic const& a, Cubic const& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i] != b[i]) {
            bool const isLess = a[i].h != b[i].h ? a[i].h < b[i].h : a[i].v < b[i].v;
            return isLess ? -1 : 1;
        }
    }
    return 0;
}

std::vector<std::vector<char>> FindNodes(std::vector<std::vector<Cubic>> const& subpaths) {
    std::vector<std::vector<char>> nodes(subpaths.size());
    std::vector<Passage> passages;
    auto const add = [&](std::size_t subpath, std::size_t element, Cubic const& before,
                         Cubic const& behind, bool isNode) {
        Cubic const back = Reversed(before);
        bool const inOrder = CompareCurves(back, behind) <= 0;
        passages.push_back(
            {inOrder ? back : behind, inOrder ? behind : back, subpath, element, isNode});
    };
    for (std::size_t s = 0; s < subpaths.size(); ++s) {
        std::vector<Cubic> const& curves = subpaths[s];
        nodes[s].assign(curves.size(), 1);
        for (std::size_t i = 0; i < curves.size(); ++i) {
            bool const isFinite = IsFinite(curves[i]);
            bool const follows = i > 0 && IsFinite(curves[i - 1]);
            if (isFinite && follows && curves[i - 1][3] == curves[i][0]) {
                add(s, i, curves[i - 1], curves[i], false);
                continue;
            }
            if (isFinite) {
                add(s, i, Reversed(curves[i]), curves[i], true);
            }
            if (follows) {
                add(s, curves.size(), curves[i - 1], Reversed(curves[i - 1]), true);
            }
        }
        if (!curves.empty() && IsFinite(curves.back())) { // its end, which no element owns
            add(s, curves.size(), curves.back(), Reversed(curves.back()), true);
        }
    }
    std::sort(passages.begin(), passages.end(),
              [](Passage const& p, Passage const& q) { return p.IsBefore(q); });
    for (std::size_t first = 0; first < passages.size();) {
        // Passages at one point follow each other, as the first point of all curves is that one.
        std::size_t end = first;
        bool isNode = false;
        while (end < passages.size() && passages[end].one[0] == passages[first].one[0]) {
            isNode = isNode || passages[end].isNode || passages[end].Compare(passages[first]) != 0;
            ++end;
        }
        for (; first < end; ++first) {
            Passage const& p = passages[first];
            if (p.element < nodes[p.subpath].size()) {
                nodes[p.subpath][p.element] = isNode ? 1 : 0;
            }
        }
    }
    return nodes;
}

} // namespace trammel_detail
