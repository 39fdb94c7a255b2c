// SPDX-License-Identifier: MIT

// Cutting arcs until their chords meet as they do. Not installed.
//
// docs/outlines.md describes the tests and why they suffice.

#ifndef TRAMMEL_PIECECERTIFICATES_P_H
#define TRAMMEL_PIECECERTIFICATES_P_H

#include "Box_p.h"
#include "Cubic_p.h"
#include "OutlineArcs_p.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// A stretch of an arc.
struct ArcStretch {
    Index arc;
    double from;
    double to;
};

/// Two stretches that are nearer to each other than the certificates can tell.
struct ArcContact {
    ArcStretch a;
    ArcStretch b;
};

/// A place at which an arc is cut.
struct ArcCut {
    Index arc;
    double t;
    Index vertex;
    bool halving; ///< whether it is there for the certificates only
};

/// The arcs' parts, each of which its chord stands for.
///
/// Two parts that are in no contact have only an end in common, or nothing, and so have their
/// chords. The chords of all parts lie in the plane as the parts do.
class CertifiedParts {
public:
    /// Cuts the arcs. Adds vertices where they cross and where certificates need them.
    explicit CertifiedParts(OutlineArcs& arcs);

    /// The parts of arc i are those from Begin(i) on and before End(i). Part k runs from vertex
    /// VertexAt(k + i) to VertexAt(k + i + 1).
    std::size_t Begin(Index arc) const { return mBegins[arc] - arc; }
    std::size_t End(Index arc) const { return mBegins[arc + 1] - arc - 1; }
    /// Returns the vertex before part k of an arc. End(arc) gives the one behind the last part.
    Index VertexAt(Index arc, std::size_t k) const { return mPlaces[k + arc].vertex; }
    /// Returns the parameter on the arc of the same vertex.
    double ParameterAt(Index arc, std::size_t k) const { return mPlaces[k + arc].t; }
    std::size_t Count() const { return mPlaces.size() - (mBegins.size() - 1); }

    /// True when the work ended before all pairs were tested; the others are contacts.
    bool IsIncomplete() const { return mIncomplete; }
    std::vector<ArcContact> const& Contacts() const { return mContacts; }
    /// Returns how far chords in contacts are from their arcs at most, in work units.
    double GreatestHeight() const { return mGreatestHeight; }

private:
    class Work;
    struct Place {
        double t;
        Index vertex;
    };
    void TakeCuts(OutlineArcs& arcs, std::vector<ArcCut>& cuts);

    std::vector<std::size_t> mBegins; // by arc: of its places, and one more
    std::vector<Place> mPlaces;
    std::vector<ArcContact> mContacts;
    double mGreatestHeight = 0.0;
    bool mIncomplete = false;
};

} // namespace trammel_detail

#endif
