# SPDX-License-Identifier: MIT

# The kernels in the form for processors with AVX2, where the compiler can make it. The library finds
# out at run time which form this processor runs, so it runs on every processor of the family.

include(CheckCXXCompilerFlag)
check_cxx_compiler_flag("-mavx2 -Werror" TRAMMEL_HAS_MAVX2)

# trammel_avx2_sources(TARGET FILE...): adds files that are compiled for AVX2, or none of them where the
# compiler cannot do that. Such a file shares no function with others (kernels/Vector_p.h).
function(trammel_avx2_sources target)
    if(TRAMMEL_HAS_MAVX2 AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
        target_sources(${target} PRIVATE ${ARGN})
        set_source_files_properties(
            ${ARGN} PROPERTIES COMPILE_OPTIONS -mavx2 SKIP_PRECOMPILE_HEADERS ON
        )
        target_compile_definitions(${target} PRIVATE TRAMMEL_AVX2_KERNELS)
    endif()
endfunction()

# trammel_use_kernels(TARGET): adds the kernels' forms for AVX2 to a target that has their other sources.
function(trammel_use_kernels target)
    set(forms ${TRAMMEL_AVX2_SOURCES})
    list(TRANSFORM forms PREPEND "${PROJECT_SOURCE_DIR}/")
    trammel_avx2_sources(${target} ${forms})
endfunction()
