// SPDX-License-Identifier: MIT

#include "SvgComplaints.h"

#include "Warning.h"

namespace tool {

namespace {

/// A drawing with a thousand mistakes of one kind is told once of them.
constexpr std::size_t kMostWarnings = 20;

} // namespace

void Complaints::Add(std::string const& place, std::string const& message) {
    if (mAdded.insert(place + ": " + message).second && mAdded.size() <= kMostWarnings) {
        Warn(mFile, place, message);
    }
}

void Complaints::Count(Counts& counts, std::string_view kind, std::string const& place) {
    ++counts.emplace(kind, std::make_pair(place, 0U)).first->second.second;
}

void Complaints::Tell() const {
    if (mAdded.size() > kMostWarnings) {
        Warn(mFile, "",
             std::to_string(mAdded.size() - kMostWarnings) + " more mistakes of this kind");
    }
    for (auto const& [kind, places] : mOthers) {
        std::string const more =
            places.second == 1 ? "" : ", nor have " + std::to_string(places.second - 1) + " more";
        Warn(mFile, places.first, "has no outlines here" + more);
    }
    for (auto const& [part, places] : mUnread) {
        std::string message = "has " + part + ", left out";
        if (places.second > 1) {
            message += " of this and of " + std::to_string(places.second - 1) + " more";
        }
        Warn(mFile, places.first, message);
    }
}

} // namespace tool
