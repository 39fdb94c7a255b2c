// SPDX-License-Identifier: MIT
//
// Work that is done by several: by the library, by its plain form (plain/Plain.h) and by other
// libraries (peers/Peer.h). All are measured in one run, so that the ratios hold whatever else the
// machine does: a benchmark is named
//
//     compare/WORK/INPUT/WHO
//
// and script/bench makes a table of all of that name, a line for a WORK and INPUT, a column for a
// WHO. One iteration is a pass over all items of the input; items are counted, so the time of an
// item is known. Counters that the table shows beside the time:
//
//     target   how many times as fast as the plain form the library is to be
//     limit    how many nanoseconds an item may take
//     worst    the greatest error, p95 the error that 95 of 100 items do not exceed; the unit is
//              that of the work
//     points   how many points an item comes to

#ifndef TRAMMEL_COMPARE_H
#define TRAMMEL_COMPARE_H

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace compare {

/// What one participant does: a pass over all items, which returns a sum over the results.
typedef std::function<double()> Pass;

/// A work on an input.
struct Job {
    std::size_t items = 0;                  ///< in a pass; 0: there is no such input here
    Pass plain;                             ///< the same by the plain form, whose sum is the same
    Pass trammel;                           ///<
    std::map<std::string, double> counters; ///< of the library's benchmark
};

/// Makes a job when it is first needed.
typedef std::function<std::shared_ptr<Job>()> Maker;

/// Registers the benchmarks of the library and of the plain form. Before either is measured, the
/// sums of both are compared, to the last bit: if they differ, that is the benchmark's result.
void Register(std::string const& work, std::string const& input, Maker make);

/// Registers the benchmark of one participant; what it returns is not compared.
void RegisterAlone(std::string const& work, std::string const& input, std::string const& who,
                   std::function<Job()> make);

} // namespace compare

#endif
