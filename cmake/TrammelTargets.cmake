# SPDX-License-Identifier: MIT

# Settings of the targets that are built in this repository, and of no one else's.

# trammel_own_target(NAME): warnings, source names in messages relative to the repository, and the
# sanitizers where they are asked for.
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
