// SPDX-License-Identifier: MIT

// An arc of a map that keeps some of its vertices. Not installed.

#ifndef TRAMMEL_ARCCHAIN_P_H
#define TRAMMEL_ARCCHAIN_P_H

#include "TPoint.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// A line in place of the vertices `from` to `to` of an arc.
struct ArcChord {
    std::size_t from;
    std::size_t to;
    double distance;    ///< no vertex between is farther from the line
    std::size_t middle; ///< the farthest one; `from` where there is none

    bool IsEdge() const { return to == from + 1; }
};

/// The chords of an arc, from its first vertex to its last one.
class ArcChain {
public:
    /// Makes chords that keep the tolerance. `ids` are numbers of `vertices`; a closed arc gets two
    /// chords at least. O(n log n).
    ArcChain(std::vector<TPoint<double>> const& vertices, std::vector<std::size_t> const& ids,
             double tolerance);

    std::vector<ArcChord> const& Chords() const { return mChords; }
    /// Divides the marked chords at their farthest vertices, or into all of their edges. The new
    /// chords keep the tolerance.
    void Refine(std::vector<char> const& isMarked, bool whole);

private:
    /// Appends chords for the vertices between two that keep the tolerance.
    void Append(std::size_t from, std::size_t to, std::vector<ArcChord>& chords) const;
    ArcChord ChordOf(std::size_t from, std::size_t to) const;
    /// The greatest difference of a coordinate to that of `from`, all of them multiplied by
    /// `scale`.
    double ExtentOf(std::size_t from, std::size_t to, double scale) const;
    TPoint<double> const& At(std::size_t i) const { return (*mVertices)[(*mIds)[i]]; }

    std::vector<TPoint<double>> const* mVertices;
    std::vector<std::size_t> const* mIds;
    double mTolerance;
    std::vector<ArcChord> mChords;
};

} // namespace trammel_detail

#endif
