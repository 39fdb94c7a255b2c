# SPDX-License-Identifier: MIT

# Settings for the targets of this repository. Targets of users do not get them.

# Checks of pointers that cost GCC a third of the time of a build with sanitizers, in tests and kernels the half.
# The address sanitizer finds most of what they find.
set(TRAMMEL_FEWER_CHECKS -fno-sanitize=null,alignment,vptr,object-size)

# trammel_own_target(NAME): turns on warnings and, with TRAMMEL_SANITIZE, the sanitizers. Messages of the
# program name its sources relative to the repository.
function(trammel_own_target target)
    target_compile_options(${target} PRIVATE "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")
    # Builds with the sanitizers leave warnings to the others, and are quicker without.
    if(NOT TRAMMEL_SANITIZE)
        target_compile_options(
            ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wdouble-promotion
                              $<$<BOOL:${TRAMMEL_WARNINGS_AS_ERRORS}>:-Werror>
        )
    else()
        target_compile_options(${target} PRIVATE -w)
        set(flags -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
        # Tests ask for this name, which GCC defines by itself.
        if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
            target_compile_definitions(${target} PRIVATE __SANITIZE_ADDRESS__)
        endif()
        target_compile_options(${target} PRIVATE ${flags})
        target_link_options(${target} PRIVATE ${flags})
        if(NOT target STREQUAL "trammel")
            target_compile_options(${target} PRIVATE ${TRAMMEL_FEWER_CHECKS})
        endif()
    endif()
endfunction()
