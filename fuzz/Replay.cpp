// SPDX-License-Identifier: MIT

// The targets without a fuzzer, for every compiler:
//
//     trammel_replay TARGET FILE...     runs the inputs in these files
//     trammel_replay TARGET --random N  runs N inputs of random bytes, the same in every run
//
// The sanitizers end the program, or a requirement that does not hold. With TRAMMEL_REPLAY_VERBOSE
// in the environment, it prints the number of each random input before it runs.

#include "Targets.h"

#include "identity/Identity.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

namespace {

typedef std::vector<std::uint8_t> Bytes;

void Run(fuzz::Target const& target, Bytes const& bytes) {
    fuzz::Input input(bytes.data(), bytes.size());
    target.run(input);
}

/// Random bytes, or (as most random bytes are no path text) characters of the grammar.
Bytes RandomBytes(identity::Random& random, bool asText) {
    static char const kLetters[] = "MmLlHhVvCcSsQqTtAaZz0123456789.-+eE, \n";
    Bytes bytes(static_cast<std::size_t>(random.Int(0, random.OneIn(8) ? 2000 : 200)));
    for (std::uint8_t& byte : bytes) {
        auto const bits = random.Bits() >> 20U;
        byte = asText && !random.OneIn(200)
                   ? static_cast<std::uint8_t>(kLetters[bits % (sizeof kLetters - 1)])
                   : static_cast<std::uint8_t>(bits);
    }
    return bytes;
}

void RunRandom(fuzz::Target const& target, long count) {
    bool const isText = std::strcmp(target.name, "text") == 0;
    bool const isVerbose = std::getenv("TRAMMEL_REPLAY_VERBOSE") != nullptr;
    for (long i = 0; i < count; ++i) {
        identity::Random random(static_cast<std::uint64_t>(i));
        Bytes const bytes = RandomBytes(random, isText);
        if (isVerbose) {
            std::fprintf(stderr, "input %ld\n", i);
        }
        Run(target, bytes);
    }
    std::printf("%s: %ld inputs\n", target.name, count);
}

int Usage() {
    std::fputs("usage: trammel_replay TARGET FILE... | TARGET --random N\n", stderr);
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        return Usage();
    }
    fuzz::Target const* const chosen = fuzz::FindTarget(argv[1]);
    if (chosen == nullptr) {
        std::fprintf(stderr, "trammel_replay: no target '%s'\n", argv[1]);
        return 2;
    }
    if (std::strcmp(argv[2], "--random") == 0) {
        long const count = argc == 4 ? std::strtol(argv[3], nullptr, 10) : 0;
        if (count <= 0) {
            return Usage();
        }
        RunRandom(*chosen, count);
        return 0;
    }
    for (int i = 2; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        if (!file) {
            std::fprintf(stderr, "trammel_replay: cannot read '%s'\n", argv[i]);
            return 1;
        }
        std::printf("%s\n", argv[i]);
        Run(*chosen, Bytes(std::istreambuf_iterator<char>(file), {}));
    }
    return 0;
}
