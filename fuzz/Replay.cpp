// SPDX-License-Identifier: MIT

// The targets without a fuzzer, for every compiler:
//
//     trammel_replay TARGET FILE...         runs the inputs in these files
//     trammel_replay TARGET --corpus FILE   runs the inputs of a corpus, one a line in hexadecimal
//     trammel_replay TARGET --random N      runs N inputs of random bytes, the same in every run
//     trammel_replay TARGET --unpack FILE FOLDER   writes each input of a corpus to a file
//
// The sanitizers end the program, or a requirement that does not hold. With TRAMMEL_REPLAY_VERBOSE
// in the environment, it prints the number of each random input, and the line of each input of a
// corpus, before it runs.

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

void Announce(char const* what, long number) {
    if (std::getenv("TRAMMEL_REPLAY_VERBOSE") != nullptr) {
        std::fprintf(stderr, "%s %ld\n", what, number);
    }
}

void RunRandom(fuzz::Target const& target, long count) {
    bool const isText = std::strcmp(target.name, "text") == 0;
    for (long i = 0; i < count; ++i) {
        identity::Random random(static_cast<std::uint64_t>(i));
        Bytes const bytes = RandomBytes(random, isText);
        Announce("input", i);
        Run(target, bytes);
    }
    std::printf("%s: %ld inputs\n", target.name, count);
}

/// Calls `use` with each input of a corpus and its line. Empty lines and lines that begin
/// with # are none. Returns the number of inputs, or -1 for a file that cannot be read.
template <class Use> long ForCorpus(char const* name, Use const& use) {
    std::ifstream file(name);
    if (!file) {
        std::fprintf(stderr, "trammel_replay: cannot read '%s'\n", name);
        return -1;
    }
    long count = 0;
    std::string text;
    for (long line = 1; std::getline(file, text); ++line) {
        if (text.empty() || text[0] == '#') {
            continue;
        }
        Bytes bytes;
        for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
            bytes.push_back(
                static_cast<std::uint8_t>(std::strtoul(text.substr(i, 2).c_str(), nullptr, 16)));
        }
        use(bytes, line);
        ++count;
    }
    return count;
}

bool RunCorpus(fuzz::Target const& target, char const* name) {
    long const count = ForCorpus(name, [&target](Bytes const& bytes, long line) {
        Announce("line", line);
        Run(target, bytes);
    });
    std::printf("%s: %ld inputs of its corpus\n", target.name, count);
    return count >= 0;
}

bool Unpack(char const* name, std::string const& folder) {
    return ForCorpus(name, [&folder](Bytes const& bytes, long line) {
               std::ofstream out(folder + "/line-" + std::to_string(line), std::ios::binary);
               out.write(reinterpret_cast<char const*>(bytes.data()),
                         static_cast<std::streamsize>(bytes.size()));
           }) >= 0;
}

bool RunFile(fuzz::Target const& target, char const* name) {
    std::ifstream file(name, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "trammel_replay: cannot read '%s'\n", name);
        return false;
    }
    std::printf("%s\n", name);
    Run(target, Bytes(std::istreambuf_iterator<char>(file), {}));
    return true;
}

int Usage() {
    std::fputs("usage: trammel_replay TARGET (FILE | --corpus FILE | --random N)...\n"
               "       trammel_replay TARGET --unpack FILE FOLDER\n",
               stderr);
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
    if (std::strcmp(argv[2], "--unpack") == 0) {
        return argc != 5 ? Usage() : Unpack(argv[3], argv[4]) ? 0 : 1;
    }
    for (int i = 2; i < argc; ++i) {
        std::string const option = argv[i];
        bool const hasValue = option == "--random" || option == "--corpus";
        if (hasValue && ++i == argc) {
            return Usage();
        }
        if (option == "--random") {
            long const count = std::strtol(argv[i], nullptr, 10);
            if (count <= 0) {
                return Usage();
            }
            RunRandom(*chosen, count);
        } else if (!(hasValue ? RunCorpus(*chosen, argv[i]) : RunFile(*chosen, argv[i]))) {
            return 1;
        }
    }
    return 0;
}
