// SPDX-License-Identifier: MIT

// The places where two cubic curves meet. Not installed.
//
// docs/intersections.md explains the method.

#ifndef TRAMMEL_CURVEMEETS_P_H
#define TRAMMEL_CURVEMEETS_P_H

#include "Cubic_p.h"
#include "CurveCells_p.h"
#include "ShortList_p.h"

#include <cstddef>

namespace trammel_detail {

/// A stretch of two curves, A and B, in which they stay near each other.
struct CurveMeet {
    double s0; ///< where the stretch begins on A
    double s1; ///< where it ends on A, not less than s0
    double t0; ///< the parameter on B beside s0
    double t1; ///< the parameter on B beside s1
    double s;  ///< the place on A: where they cross, or come nearest to each other
    double t;  ///< the place on B
    /// The side of B on which A lies before the stretch. It is 1 where the turn from B's direction
    /// toward A is from h toward v, and -1 where it is from v toward h. It is 0 where it is not
    /// known, and where A begins in the stretch.
    int before;
    int after;    ///< the same after the stretch
    bool overlap; ///< whether the curves coincide along the stretch
};

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

/// The meets of two curves, which are nine at most, unless the curves nearly coincide.
typedef ShortList<CurveMeet, 4> CurveMeets;

/// Finds where two curves meet. One finder serves any number of pairs, one after the other, and
/// keeps its memory.
class CurveMeetFinder {
public:
    /// Finds all stretches in which the curves are near each other, in the order of s0. Returns the
    /// distance that is kept: `accuracy`, or more (see Intersections.h). A curve with a coordinate
    /// that is not finite meets nothing.
    /// \param straightA, straightB true for a line of even speed, whose control points may be off
    /// by
    ///     the rounding of its coordinates.
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
