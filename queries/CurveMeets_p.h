// SPDX-License-Identifier: MIT

// The places where two cubic curves meet. Not installed.
//
// docs/intersections.md explains the method.

#ifndef TRAMMEL_CURVEMEETS_P_H
#define TRAMMEL_CURVEMEETS_P_H

#include "Cubic_p.h"
#include "CurveCells_p.h"
#include "CurveMeet_p.h"
#include "ShortList_p.h"

#include <cstddef>

namespace trammel_detail {

/// Events that lie together on both curves, on the way to a meet.
struct CurveMeetGroup {
    CurveMeet meet;
    double before; ///< as of an event, the most certain one
    double after;
    double beforeAt; ///< on A: the place of the event that tells `before`
    double afterAt;
    double lowT;
    double highT;
    int crossings;
    int nearest; ///< the number of events whose places are the nearest
    int events;

    explicit CurveMeetGroup(CurveEvent const& e);
    /// Takes in another group, which does not begin before this one.
    void Include(CurveMeetGroup const& g, Cubic const& a, double accuracy);
};

/// Finds where two curves meet. One finder serves any number of pairs, one after the other, and
/// keeps its memory.
class CurveMeetFinder {
public:
    /// Finds all stretches in which the curves are near each other, in the order of s0. Returns the
    /// distance that is kept: `accuracy`, or more (see Intersections.h). A curve with a coordinate
    /// that is not finite meets nothing.
    /// \param straightA, straightB true for a line of even speed, whose control points may be off
    ///     by the rounding of its coordinates.
    double Find(Cubic const& a, Cubic const& b, double accuracy, bool straightA, bool straightB);
    /// What the last call found.
    CurveMeets const& Meets() const { return mMeets; }
    /// The curves of the last call that found something, moved and multiplied by a power of two:
    /// products of four coordinates neither overflow nor underflow.
    Cubic const& ScaledA() const { return mA; }
    Cubic const& ScaledB() const { return mB; }
    /// The distance that was kept, for the scaled curves.
    double ScaledAccuracy() const { return mAccuracy; }

private:
    void Join();
    void Describe(CurveMeetGroup const& group);

    Cubic mA;
    Cubic mB;
    double mAccuracy = 0.0;
    CurveEvents mEvents;
    // While events are joined: memory that calls use one after the other.
    ShortList<std::size_t, 8> mFirsts;
    ShortList<std::size_t, 8> mOpen;
    ShortList<CurveMeetGroup, 4> mGroups;
    CurveMeets mMeets;
};

} // namespace trammel_detail

#endif
