// SPDX-License-Identifier: MIT

// The arithmetic of flattening, in a form for every processor and in one for AVX2, of the same
// bits. queries/AccurateFlatten.cpp tells the method. Not installed.
//
// A caller tries DivideIntoChords first. For more chords it calls PlanFlattening, sets the number
// of chords in the plan, and calls NextFlatRun until a run has no points. The curves of a path go
// four at a time through DividePack.

#ifndef TRAMMEL_FLATTENKERNELS_P_H
#define TRAMMEL_FLATTENKERNELS_P_H

#include "Dispatch_p.h"
#include "Vector_p.h"

#include <cstdint>

namespace trammel_detail {

/// The finest tolerance, as a part of the control vectors' magnitudes. Rounding moves the computed
/// distances from chords by 2^-49 of the same magnitudes.
inline constexpr double kFinest = 0x1p-40;
/// The part of the tolerance for which points are planned, so that few chords have to be divided.
inline constexpr double kPlanned = 0.98;
/// The same for some chords. With fewer panels more chords would fail.
inline constexpr double kPlannedForSome = 0.97;
/// By n equal steps of the parameter a curve keeps the tolerance where no second difference of its
/// control points is longer than this many tolerances, times n².
inline constexpr double kMostBend = 4.0 / 3.0;
/// Curves that take more such steps than these are too bent for few chords, and for some. Ten steps
/// are some eight steps of equal bend. Nearly all curves of 70 steps take more than kSomeChords
/// steps of equal bend.
inline constexpr double kFewSteps = 10.0;
inline constexpr double kSomeSteps = 70.0;
constexpr double Biquadrate(double x) { return x * x * x * x; }

/// The numbers of a vector's lanes.
inline constexpr double kCounting[4] = {0.0, 1.0, 2.0, 3.0};

/// A cubic relative to its start, 3at + 3bt² + ct³ in both coordinates.
struct FlatCubic {
    double aH, aV, bH, bV, cH, cV;
    double endH, endV;   ///< the point at 1, exactly
    double lastH, lastV; ///< a third of the derivative there
};

/// Returns whether the ends of a piece are far enough apart for DeviationOf. The arguments are the
/// squared length of the chord and the squared tolerance.
///
/// A chord may be far shorter than the tolerance. But its square must not underflow, and the
/// tolerance is 2^-40 of the curve's size or more.
template <class Number>
[[gnu::always_inline]] inline auto IsChord(Number const& square, Number const& limit) {
    return limit * Number(0x1p-80) < square;
}

/// Returns a bound on how far from its start a piece over a parameter range of that width gets. Its
/// chord has the squared length `square`. `squaredSpeed` is the greater one of the squared thirds
/// of the derivatives at its ends.
///
/// Relative to the start, the control points are 0, v0, d - v1 and d, and the two in the middle
/// have 3/4 of the weight at most.
[[gnu::always_inline]] inline double ReachOf(double width, double square, double squaredSpeed) {
    return __builtin_sqrt(square) + 0.75 * width * __builtin_sqrt(squaredSpeed);
}

/// Upper bounds on the distance between a piece of a curve and its chord, times the chord's length.
/// Number is double or a vector.
template <class Number> struct ChordDeviation {
    Number across; ///< from the line through the ends
    Number along;  ///< beyond the ends

    /// Returns the square of a bound for all directions.
    [[gnu::always_inline]] inline Number Square() const { return across * across + along * along; }
};

/// Returns the bounds for a piece over a parameter range of width `h`. Its chord is (dh, dv), of
/// squared length `square`; a third of the derivative is (v0h, v0v) at its start and (v1h, v1v) at
/// its end.
template <class Number>
[[gnu::always_inline]] inline ChordDeviation<Number>
DeviationOf(Number const& h, Number const& dh, Number const& dv, Number const& square,
            Number const& v0h, Number const& v0v, Number const& v1h, Number const& v1v) {
    Number const e1 = h * (dh * v0v - dv * v0h);
    Number const e2 = h * (dv * v1h - dh * v1v);
    // Magnitudes stand for comparisons. `greater` is the greater one of |e1| and |e2|. `lesser` is
    // the lesser one, negated when the two lie on different sides of the chord. It counts 11/36
    // when positive, and 4/9 - 1/sqrt(12), rounded down, when negative.
    Number const half = Number(0.5);
    Number const sum = Abs(e1 + e2);
    Number const difference = Abs(e1 - e2);
    Number const greater = half * (sum + difference);
    Number const lesser = half * (sum - difference);
    constexpr double kSame = 11.0 / 36.0;
    constexpr double kOpposite = 0.1557;
    Number const across = Number(4.0 / 9.0) * greater + Number(0.5 * (kSame + kOpposite)) * lesser +
                          Number(0.5 * (kSame - kOpposite)) * Abs(lesser);
    // Along the chord the ends lie at 0 and `square`. The control points lie at a1 and square - a2.
    // The code measures their distances from the middle.
    Number const middle = half * square;
    Number const a1 = Abs(h * (dh * v0h + dv * v0v) - middle);
    Number const a2 = Abs(h * (dh * v1h + dv * v1v) - middle);
    Number const beyond = half * (a1 + a2 + Abs(a1 - a2)) - middle;
    return {across, Number(0.375) * (beyond + Abs(beyond))};
}

inline constexpr int kPanels = 64;     ///< panels of a plan for many chords
inline constexpr int kSomePanels = 16; ///< panels of a plan for some chords
inline constexpr int kFewPanels = 4;   ///< panels of a plan for few chords
inline constexpr int kFewChords = 8;   ///< the most chords that are few
inline constexpr int kSomeChords = 32; ///< the most chords that DivideIntoChords gives
/// The points for which DivideIntoChords has to have room.
inline constexpr int kChordRoom = kSomeChords;

/// Where on the curve the points are to lie. Panels are equal parts of the parameter.
/// PlanFlattening sets the arrays. Its caller sets the other fields: `panel` and `done` to 0.
/// Arrays have room for whole vectors.
struct FlatPlan {
    int panel;                   ///< the panel in which the next chord ends
    int chords;                  ///< the number of chords that the curve is divided into
    int done;                    ///< the number of chords whose ends are computed
    double step;                 ///< the last sum divided by the number of chords
    double perChord;             ///< the inverse of `step`; infinite or NaN where there is no bend
    double density[kPanels + 4]; ///< chords per unit of the parameter, at the panels' ends
    double sums[kPanels + 4];    ///< integrals of the density from 0 to the panels' ends
};

/// Planned points, computed together.
struct FlatRun {
    static constexpr int kRoom = 60;

    int count;
    std::uint64_t failing; ///< bit i: the chord to point i + 1 is not known to keep the tolerance
    // Index 0 holds the place before the run, which the caller sets before NextFlatRun. There is
    // room for whole vectors.
    double t[kRoom + 8]; ///< parameters
    double h[kRoom + 8]; ///< points
    double v[kRoom + 8];
    double dh[kRoom + 8]; ///< a third of the derivatives
    double dv[kRoom + 8];
};

double PlanFlatteningPortable(FlatCubic const& curve, double scale, FlatPlan& plan);
double PlanFlatteningAvx2(FlatCubic const& curve, double scale, FlatPlan& plan);

/// Sets the plan's densities and sums. Returns the last sum: the number of chords, not yet
/// rounded, that leave the curve by about d. `scale` is 3/(4·d), where the caller takes d a little
/// below the tolerance.
[[gnu::always_inline]] inline double PlanFlattening(FlatCubic const& curve, double scale,
                                                    FlatPlan& plan) {
    return Dispatch<PlanFlatteningPortable, PlanFlatteningAvx2>(curve, scale, plan);
}

void NextFlatRunPortable(FlatCubic const& curve, double tolerance, FlatPlan& plan, FlatRun& run);
void NextFlatRunAvx2(FlatCubic const& curve, double tolerance, FlatPlan& plan, FlatRun& run);

/// Computes the next points of the plan, and verifies the chords that end in them. The run's count
/// is 0 when the plan is done. Between two calls the caller moves the last place to index 0.
[[gnu::always_inline]] inline void NextFlatRun(FlatCubic const& curve, double tolerance,
                                               FlatPlan& plan, FlatRun& run) {
    Dispatch<NextFlatRunPortable, NextFlatRunAvx2>(curve, tolerance, plan, run);
}

/// Chords into which a curve is divided.
struct FlatChords {
    std::uint64_t failing;     ///< bit i: chord i is not known to keep the tolerance
    double t[kSomeChords + 8]; ///< the parameters at the chords' ends; chord i ends at entry i + 1
};

int DivideIntoChordsPortable(double const* points, double tolerance, double* out,
                             FlatChords& chords);
int DivideIntoChordsAvx2(double const* points, double tolerance, double* out, FlatChords& chords);

/// Divides a curve into one to kSomeChords chords, and verifies them. `points` has v and h of its
/// four points in turn. Returns the number of chords, or
/// - 0 for a curve that takes more of them,
/// - -1 where the tolerance is too fine for the coordinates' magnitudes, or products might overflow
///   or underflow.
///
/// `out` has room for kChordRoom points and gets v and h of the points at the chords' ends. The
/// last point, and what lies behind it, mean nothing. Where a chord fails, it was divided in the
/// middle, or the parameters are set.
[[gnu::always_inline]] inline int DivideIntoChords(double const* points, double tolerance,
                                                   double* out, FlatChords& chords) {
    return Dispatch<DivideIntoChordsPortable, DivideIntoChordsAvx2>(points, tolerance, out, chords);
}

/// The curves of a FlatPack.
inline constexpr int kPack = 4;

/// Four curves that are divided together.
struct FlatPack {
    double chords[kPack]; ///< the numbers of chords, up to kFewChords and one more; else 0
    /// v and h of the chords' ends. The last chord's is not known exactly.
    double points[kPack][2 * (kFewChords + 1)];
};

void DividePackPortable(double const* const (&curves)[kPack], double tolerance, FlatPack& pack);
void DividePackAvx2(double const* const (&curves)[kPack], double tolerance, FlatPack& pack);

/// Divides four curves into few chords, of which each is given by v and h of its four points in
/// turn. The chords are those of DivideIntoChords. The number is 0 for a curve on which that has to
/// be called. What lies in the pack behind a curve's points means nothing.
[[gnu::always_inline]] inline void DividePack(double const* const (&curves)[kPack],
                                              double tolerance, FlatPack& pack) {
    Dispatch<DividePackPortable, DividePackAvx2>(curves, tolerance, pack);
}

} // namespace trammel_detail

#endif
