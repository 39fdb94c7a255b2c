// SPDX-License-Identifier: MIT

// The warnings of one drawing: each place once, and no more of them than somebody reads.

#ifndef TRAMMEL_APP_SVGCOMPLAINTS_H
#define TRAMMEL_APP_SVGCOMPLAINTS_H

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace tool {

/// Collects the warnings of one file.
class Complaints {
public:
    explicit Complaints(std::string const& file) : mFile(file) {}

    /// Warns of something that is left out, once for each place.
    void Add(std::string const& place, std::string const& message);
    /// Counts an element of a kind that has no outlines.
    void CountOther(std::string_view kind, std::string const& place) {
        Count(mOthers, kind, place);
    }
    /// Counts an element that has something which is not drawn.
    void CountUnread(std::string_view part, std::string const& place) {
        Count(mUnread, part, place);
    }
    /// Warns of everything that was counted, once for each kind.
    void Tell() const;

private:
    /// The first place of each kind, and the number of places.
    typedef std::map<std::string, std::pair<std::string, std::size_t>, std::less<>> Counts;
    static void Count(Counts& counts, std::string_view kind, std::string const& place);

    std::string mFile;
    std::set<std::string> mAdded;
    Counts mOthers;
    Counts mUnread;
};

} // namespace tool

#endif
