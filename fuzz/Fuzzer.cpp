// SPDX-License-Identifier: MIT
//
// The targets behind libFuzzer: trammel_fuzz --target=NAME [OPTION...] [FOLDER...].

#include "Targets.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

fuzz::Target const* gTarget = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    char const option[] = "--target=";
    for (int i = 1; i < *argc; ++i) {
        char const* const argument = (*argv)[i];
        if (std::strncmp(argument, option, sizeof option - 1) == 0) {
            for (fuzz::Target const& target : fuzz::kTargets) {
                if (std::strcmp(argument + sizeof option - 1, target.name) == 0) {
                    gTarget = &target;
                }
            }
        }
    }
    if (gTarget == nullptr) {
        std::fputs("trammel_fuzz: --target=NAME is missing or none of:", stderr);
        for (fuzz::Target const& target : fuzz::kTargets) {
            std::fprintf(stderr, " %s", target.name);
        }
        std::fputs("\n", stderr);
        std::exit(2);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    fuzz::Input input(bytes, size);
    gTarget->run(input);
    return 0;
}
