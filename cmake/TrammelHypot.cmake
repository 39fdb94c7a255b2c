# SPDX-License-Identifier: MIT

# Does the inlined hypot (kernels/Hypot_p.h) give the bits of the C library's hypot? The configuration runs
# both side by side. It cannot do that when it compiles for another machine; the library then calls the C
# library.

if(NOT DEFINED TRAMMEL_HYPOT_AGREES)
    if(CMAKE_CROSSCOMPILING)
        set(agrees OFF)
    else()
        try_run(
            ran compiled "${PROJECT_BINARY_DIR}/check_hypot" "${PROJECT_SOURCE_DIR}/cmake/check_hypot.cpp"
            CMAKE_FLAGS "-DINCLUDE_DIRECTORIES=${PROJECT_SOURCE_DIR}/kernels"
            COMPILE_DEFINITIONS -O2 -ffp-contract=off CXX_STANDARD 17 CXX_STANDARD_REQUIRED ON
        )
        if(compiled AND ran EQUAL 0)
            set(agrees ON)
        else()
            set(agrees OFF)
        endif()
    endif()
    set(TRAMMEL_HYPOT_AGREES "${agrees}" CACHE INTERNAL "Whether the inlined hypot gives the C library's bits")
    message(STATUS "The inlined hypot gives the C library's bits: ${agrees}")
endif()

function(trammel_use_hypot target)
    if(TRAMMEL_HYPOT_AGREES)
        target_compile_definitions(${target} PRIVATE TRAMMEL_INLINE_HYPOT)
    endif()
endfunction()
