// SPDX-License-Identifier: MIT

// The targets behind libFuzzer: trammel_fuzz --target=NAME [OPTION...] [FOLDER...]. AFL++ has
// arguments of its own, so there the environment's TRAMMEL_FUZZ_TARGET names the target.

#include "Targets.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

fuzz::Target const* gTarget = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    std::string_view const option = "--target=";
    if (char const* const name = std::getenv("TRAMMEL_FUZZ_TARGET")) {
        gTarget = fuzz::FindTarget(name);
    }
    for (int i = 1; i < *argc; ++i) {
        std::string_view const argument = (*argv)[i];
        if (argument.substr(0, option.size()) == option) {
            gTarget = fuzz::FindTarget(argument.substr(option.size()));
        }
    }
    if (gTarget == nullptr) {
        std::fputs("trammel_fuzz: no target; --target=NAME is one of:", stderr);
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
