# SPDX-License-Identifier: MIT

# Settings for the targets of this repository. Targets of users do not get them.

# trammel_own_target(NAME): turns on warnings and, with TRAMMEL_SANITIZE, the sanitizers. Messages of the
# program name its sources relative to the repository.
function(trammel_own_target target)
    target_compile_options(${target} PRIVATE "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")
    target_compile_options(
        ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wdouble-promotion
                          $<$<BOOL:${TRAMMEL_WARNINGS_AS_ERRORS}>:-Werror>
    )
    if(TRAMMEL_SANITIZE)
        set(flags -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_compile_options(${target} PRIVATE ${flags})
        target_link_options(${target} PRIVATE ${flags})
    endif()
endfunction()
