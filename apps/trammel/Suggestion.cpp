// SPDX-License-Identifier: MIT

#include "Suggestion.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace tool {

namespace {

/// Returns how many letters have to be put in, taken out or replaced to make one word of the other.
/// Two neighbours that change places count as one.
std::size_t Distance(std::string const& a, std::string const& b) {
    std::vector<std::size_t> before;
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t k = 1; k <= b.size(); ++k) {
            std::size_t const replaced = last[k - 1] + (a[i - 1] == b[k - 1] ? 0 : 1);
            row[k] = std::min({replaced, last[k] + 1, row[k - 1] + 1});
            if (i > 1 && k > 1 && a[i - 1] == b[k - 2] && a[i - 2] == b[k - 1]) {
                row[k] = std::min(row[k], before[k - 2] + 1);
            }
        }
        before = last;
        std::swap(last, row);
    }
    return last[b.size()];
}

} // namespace

std::string Suggestion(std::string const& word, std::vector<std::string> const& names) {
    std::string const* best = nullptr;
    // The hyphens before an option are not what makes it like another one.
    std::size_t const letters = word.size() - std::min(word.find_first_not_of('-'), word.size());
    std::size_t least = letters / 3 + 1;
    // A word of a book's length is no misspelt name.
    for (std::size_t i = 0; i < names.size() && word.size() <= 100; ++i) {
        std::size_t const distance = Distance(word, names[i]);
        if (distance < least) {
            least = distance;
            best = &names[i];
        }
    }
    return best != nullptr ? "; did you mean '" + *best + "'?" : "";
}

} // namespace tool
