// SPDX-License-Identifier: MIT
//
// The arithmetic of flattening, in a form for every processor and in one for those with AVX2, of
// the same bits. AccurateFlatten.cpp tells the method. Not installed.

#ifndef TRAMMEL_ACCURATEFLATTEN_P_H
#define TRAMMEL_ACCURATEFLATTEN_P_H

#include <cstdint>

namespace trammel_detail {

/// A cubic relative to its start, 3at + 3bt² + ct³ in both coordinates.
struct FlatCubic {
    double aH, aV, bH, bV, cH, cV;
    double endH, endV;   ///< the point at 1, exactly
    double lastH, lastV; ///< a third of the derivative there
};

/// The square of the longer one of the control points' second differences.
[[gnu::always_inline]] inline double SquaredBend(FlatCubic const& c) {
    double const h = c.bH + c.cH;
    double const v = c.bV + c.cV;
    double const first = c.bH * c.bH + c.bV * c.bV;
    double const last = h * h + v * v;
    return first > last ? first : last;
}

/// Panels in which the bend is looked at: few for few points.
inline constexpr int kFewPanels = 16;
inline constexpr int kManyPanels = 64;
/// With more points than this there are many panels.
inline constexpr double kFewPoints = 80.0;

/// Into so many chords at most a curve is divided without a plan.
inline constexpr int kFewChords = 8;

/// Where on the curve the points are to lie. Arrays have room for whole packs.
struct FlatPlan {
    int panels = kFewPanels;
    int panel;       ///< the one that the next chord ends in
    int chords;      ///< into which the curve is divided
    int done;        ///< of them
    double step;     ///< the share of a chord in the last sum
    double perChord; ///< its inverse; infinite or NaN where there is no bend
    double density[kManyPanels + 4];
    double sums[kManyPanels + 4]; ///< integrals of the density from 0 to the panels' ends
};

/// Planned points, computed together.
struct FlatRun {
    static constexpr int kRoom = 60;

    int count;
    std::uint64_t failing; ///< bit i: the chord to point i + 1 is not known to keep the tolerance
    // At index 0 the point before the run: its parameter, itself, a third of the derivative. Room
    // for whole packs.
    double t[kRoom + 8];
    double h[kRoom + 8];
    double v[kRoom + 8];
    double dh[kRoom + 8];
    double dv[kRoom + 8];
};

/// Sets the plan's panels, densities and sums. Returns the last sum, which is the number of chords
/// that leave the curve by the tolerance. `scale` is 3/(4·tolerance).
double PlanFlatteningPortable(FlatCubic const& curve, double scale, FlatPlan& plan);
double PlanFlatteningAvx2(FlatCubic const& curve, double scale, FlatPlan& plan);

/// Computes the next points of the plan, and verifies the chords that end in them. count is 0 when
/// the plan is done.
void NextFlatRunPortable(FlatCubic const& curve, double tolerance, FlatPlan& plan, FlatRun& run);
void NextFlatRunAvx2(FlatCubic const& curve, double tolerance, FlatPlan& plan, FlatRun& run);

/// Divides a curve into two to kFewChords chords that all keep the tolerance. Returns how many,
/// and stores the points at their ends, h and v alone, from index 1 on. 0 when it did not succeed,
/// for whatever reason; then a plan is made. `scale` as above.
int FewChordsPortable(FlatCubic const& curve, double scale, double tolerance, FlatRun& run);
int FewChordsAvx2(FlatCubic const& curve, double scale, double tolerance, FlatRun& run);

} // namespace trammel_detail

#endif
