// SPDX-License-Identifier: MIT

// The identity suite. More than a million inputs go through the library, from drawings and from the
// edges of what doubles can hold. Every bit that comes back goes into one hash. It changes when
// another compiler, optimisation level, processor or algorithm changes anything: one bit of a
// result, the order of two points, a counter. The hashes of the parts tell where. Many inputs go
// through the plain forms (tests/plain), too, and their results are compared one by one.
//
// The parts are of two groups. Results of the group "arithmetic" come from the four operations and
// the square root, so their hash is the same on every machine. Those of the group "functions" come
// from the C library's sines and the like, too, so their hash is the same with the same C library.
//
//     trammel_identity [--quick] [--hashes-only] [--portable] [--threads N] [--expect FILE] [--part
//     NAME]...
//
// --quick        makes a small part of the inputs, for builds that are slow, with other hashes
// --threads      runs the parts in N threads at the same time, and leaves the plain forms out. The
//                settings of the process are fixed, and the counters are left out, so there is a
//                third kind of hashes, the same for each N.
// --hashes-only  leaves the plain forms out
// --portable     runs the forms for every processor, also where this one has more
// --expect       compares with the hashes in FILE, which are what the program prints
// --part         runs only the parts whose names begin with NAME
//
// The program ends with
//
//     0   when all is the same
//     1   when something differs from FILE or from a plain form
//     2   for wrong arguments
//     77  when the group "arithmetic" is the same, and "functions" is not, because the C library's
//         own functions give other bits here than where FILE was made
//
// The plain forms call the C library's hypot. On processors with fused operations it has other bits
// than the library's own, so --hashes-only belongs there.

#include "CBSpline.h"
#include "CBezier.h"
#include "Dispatch_p.h"
#include "Identity.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <future>
#include <map>
#include <sstream>

namespace identity {

namespace {

/// The C library's functions. They are not ours, so they have a part of their own.
void CLibrary(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(100000); i > 0; --i) {
        // Volatile, so that the function is called and not computed by the compiler.
        double volatile x = random.OneIn(4) ? random.Binary(-30, 30) : random.Uniform(-7, 7);
        double volatile y = random.OneIn(4) ? random.Binary(-500, 500) : random.Uniform(-7, 7);
        Digest digest;
        digest.Add(std::sin(x));
        digest.Add(std::cos(x));
        digest.Add(std::hypot(x, y));
        digest.Add(std::sqrt(std::abs(y)));
        digest.Add(std::atan2(y, x));
        digest.Add(std::acos(x));
        part.Take(digest);
    }
}

constexpr char const* kCLibrary = "c-library";

typedef std::map<std::string, std::uint64_t> Hashes;

/// "quick curve.hit" and so on, and their hashes; false when the file cannot be read.
bool ReadHashes(char const* file, Hashes& hashes) {
    std::ifstream in(file);
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string size;
        std::string part;
        std::string hash;
        if (words >> size >> part >> hash && size[0] != '#') {
            hashes[size.append(" ").append(part)] = std::stoull(hash, nullptr, 16);
        }
    }
    return in.eof();
}

struct Options {
    bool quick = false;
    bool compares = true;
    int threads = 0; ///< 0: one thread, which changes the settings
    char const* expect = nullptr;
    std::vector<std::string> parts;

    char const* Size() const { return threads > 0 ? "fixed" : quick ? "quick" : "full"; }
    int Thinning() const { return threads > 0 ? 10 : quick ? 40 : 1; }
    bool Selects(std::string const& name) const {
        bool selected = parts.empty();
        for (std::string const& begin : parts) {
            selected = selected || name.compare(0, begin.size(), begin) == 0;
        }
        return selected;
    }
};

/// A part that has run.
struct Outcome {
    Entry entry;
    Part part;
    double seconds;
};

Outcome Run(Entry const& entry, Options const& options) {
    auto const start = std::chrono::steady_clock::now();
    Part part(entry.name, options.Thinning(), options.compares);
    entry.run(part);
    std::chrono::duration<double> const time = std::chrono::steady_clock::now() - start;
    return {entry, part, time.count()};
}

/// Runs the parts in threads. Each thread takes the next part as soon as it is free.
std::vector<Outcome> RunInThreads(std::vector<Entry> const& entries, Options const& options) {
    // Wild curves are subdivided to the end, so the depth is small.
    gShared = true;
    CBezier::mMaxError = CBSpline::mMaxError = 0.5;
    CBezier::mRecursionLimit = CBSpline::mRecursionLimit = 7;
    std::vector<std::future<Outcome>> runs;
    std::vector<std::packaged_task<Outcome()>> tasks;
    for (Entry const& entry : entries) {
        tasks.emplace_back([&entry, &options] { return Run(entry, options); });
        runs.push_back(tasks.back().get_future());
    }
    std::atomic<std::size_t> next{0};
    std::vector<std::future<void>> workers;
    for (int i = 0; i < options.threads; ++i) {
        workers.push_back(std::async(std::launch::async, [&] {
            for (std::size_t k = next++; k < tasks.size(); k = next++) {
                tasks[k]();
            }
        }));
    }
    std::vector<Outcome> outcomes;
    for (std::future<Outcome>& run : runs) {
        outcomes.push_back(run.get());
    }
    return outcomes;
}

int Run(Options const& options) {
    Hashes expected;
    if (options.expect != nullptr && !ReadHashes(options.expect, expected)) {
        std::fprintf(stderr, "trammel_identity: cannot read %s\n", options.expect);
        return 2;
    }
    std::vector<Entry> entries = {{kCLibrary, CLibrary}};
    for (std::vector<Entry> const& some : {CurveParts(), PathParts(), PolygonParts()}) {
        entries.insert(entries.end(), some.begin(), some.end());
    }
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [&](Entry const& e) { return !options.Selects(e.name); }),
                  entries.end());

    std::string const size = options.Size();
    Digest all;
    Digest groups[2];
    long inputs = 0;
    long groupInputs[2] = {0, 0};
    long compared = 0;
    long differences = 0;
    bool otherLibrary = false;
    bool otherArithmetic = false;
    bool otherFunctions = false;
    // One line of the table; tells when it is not what was expected.
    auto const report = [&](std::string const& name, std::uint64_t value, long count,
                            double seconds) {
        auto const found = expected.find(size + " " + name);
        bool const same =
            options.expect == nullptr || (found != expected.end() && found->second == value);
        std::printf("%s %-20s %016" PRIx64 " %8ld inputs %6.2f s%s\n", size.c_str(), name.c_str(),
                    value, count, seconds, same ? "" : "  DIFFERS");
        std::fflush(stdout);
        return same;
    };

    auto const take = [&](Outcome const& run) {
        Part const& part = run.part;
        bool const same = report(run.entry.name, part.Value(), part.Inputs(), run.seconds);
        if (run.entry.name == kCLibrary) {
            otherLibrary = !same;
            return; // its hash tells about other people's code
        }
        (run.entry.group == Group::kArithmetic ? otherArithmetic : otherFunctions) |= !same;
        all.Add(part.Value());
        inputs += part.Inputs();
        groups[static_cast<int>(run.entry.group)].Add(part.Value());
        groupInputs[static_cast<int>(run.entry.group)] += part.Inputs();
        compared += part.Compared();
        differences += part.Differences();
    };
    if (options.threads > 0) {
        for (Outcome const& run : RunInThreads(entries, options)) {
            take(run);
        }
    } else {
        for (Entry const& entry : entries) {
            take(Run(entry, options));
        }
    }
    if (options.parts.empty()) {
        otherArithmetic |= !report("arithmetic", groups[0].Value(), groupInputs[0], 0.0);
        otherFunctions |= !report("functions", groups[1].Value(), groupInputs[1], 0.0);
        bool const same = report("all", all.Value(), inputs, 0.0);
        otherArithmetic |= !same && !otherFunctions;
    }
    std::printf("%ld of %ld compared with the plain forms, %ld differ\n", compared, inputs,
                differences);
    if (differences > 0 || otherArithmetic) {
        return 1;
    }
    if (otherFunctions && otherLibrary) {
        std::fprintf(stderr, "trammel_identity: this C library's functions give other bits than "
                             "the one that the hashes are from\n");
        return 77;
    }
    return otherFunctions ? 1 : 0;
}

int Main(int count, char** arguments) {
    Options options;
    for (int i = 1; i < count; ++i) {
        std::string const argument = arguments[i];
        if (argument == "--quick") {
            options.quick = true;
        } else if (argument == "--hashes-only") {
            options.compares = false;
        } else if (argument == "--portable") {
            if (!trammel_detail::UsePortableForms(true)) {
                std::puts("This processor has the portable forms only.");
            }
        } else if (argument == "--threads" && i + 1 < count) {
            options.threads = std::clamp(std::atoi(arguments[++i]), 1, 64);
            options.compares = false;
        } else if (argument == "--expect" && i + 1 < count) {
            options.expect = arguments[++i];
        } else if (argument == "--part" && i + 1 < count) {
            options.parts.emplace_back(arguments[++i]);
        } else {
            std::fprintf(stderr,
                         "trammel_identity [--quick] [--hashes-only] [--portable] [--threads N] "
                         "[--expect FILE] [--part NAME]...: not %s\n",
                         argument.c_str());
            return 2;
        }
    }
    return Run(options);
}

} // namespace

} // namespace identity

int main(int count, char** arguments) {
    try {
        return identity::Main(count, arguments);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "trammel_identity: %s\n", error.what());
        return 1;
    }
}
