// SPDX-License-Identifier: MIT

// Works that have several participants: the library, its plain form (plain/Plain.h) and other
// libraries (peers/Works.h). One run measures all of them, so the ratios hold whatever else the
// machine does. A benchmark is named
//
//     compare/WORK/INPUT/WHO
//
// and script/bench makes a table of each WORK, with a line for a WHO and a column for an INPUT. One
// iteration is a pass over all items of the input. The benchmark counts items, which gives the time
// of an item. These counters stand beside the time:
//
//     target   how many times as fast as the plain form the library is to be
//     limit    how many nanoseconds an item may take
//     worst    the greatest error, and p95, the error that 95 of 100 items do not exceed (Truth.h)
//     points   how many points an item comes to
//
// A further benchmark needs such a name and SetItemsProcessed, however it is registered. A new WHO
// gets a line of its own. A query of the library that gives the same result is named
// "trammel-SOMETHING". README.md in this folder says more.

#ifndef TRAMMEL_COMPARE_H
#define TRAMMEL_COMPARE_H

#include "Truth.h"

#include <trammel/TLine.h>
#include <trammel/TPoly.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace compare {

/// The work of one participant: a pass over all items, which returns a sum over the results.
typedef std::function<double()> Pass;

/// A work on an input.
struct Job {
    std::size_t items = 0;                  ///< in a pass; 0: there is no such input here
    Pass plain;                             ///< the same by the plain form, whose sum is the same
    Pass trammel;                           ///<
    std::map<std::string, double> counters; ///< of the library's benchmark
    /// What RegisterAlone compares the sum with, if it is not NaN, and the relative difference that
    /// it lets pass.
    double expected = std::numeric_limits<double>::quiet_NaN();
    double slack = 0.0;
    bool agrees = true; ///< with whatever it was compared with when it was made

    void Add(truth::Errors const& errors) {
        counters["worst"] = errors.worst;
        counters["p95"] = errors.p95;
    }
};

/// How many calls on something of that many vertices make a pass of reasonable length, at most
/// `most`.
inline std::size_t Calls(std::size_t vertices, std::size_t most) {
    std::size_t const calls = 1000000 / std::max<std::size_t>(vertices, 1);
    return std::max<std::size_t>(20, std::min(most, calls));
}

/// Makes a job when it is first needed.
typedef std::function<std::shared_ptr<Job>()> Maker;

/// Registers the benchmarks of the library and of the plain form. Before either is measured, the
/// sums of both are compared, to the last bit. If they differ, the benchmark reports that instead
/// of a time.
void Register(std::string const& work, std::string const& input, Maker make);

/// Registers the benchmark of one participant, whose pass is `trammel`. If the pass does not return
/// the expected sum, or the job does not agree, the benchmark reports that instead of a time.
void RegisterAlone(std::string const& work, std::string const& input, std::string const& who,
                   std::function<Job()> make);

/// Returns the closed polygon of the ring's vertices.
TPolygon<double> Polygon(truth::Chain const& ring);

/// Returns the vertices of a polygon.
truth::Chain Vertices(TPolygon<double> const& polygon);

/// Returns the number of points that the library finds inside of the ring.
double ContainedIn(truth::Chain const& ring, truth::Chain const& points);

/// Returns the length of all lines inside of the ring, as the library finds it.
double ClippedBy(truth::Chain const& ring, std::vector<TLine<double>> const& lines);

} // namespace compare

#endif
