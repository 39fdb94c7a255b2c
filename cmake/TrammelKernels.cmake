# SPDX-License-Identifier: MIT
# The curve kernels in the form for processors with AVX2, where the compiler can make it. Which form
# runs is found out at run time, so the library runs on every processor of the family.

include(CheckCXXCompilerFlag)
check_cxx_compiler_flag("-mavx2 -Werror" TRAMMEL_HAS_MAVX2)

function(trammel_use_kernels target)
    if(TRAMMEL_HAS_MAVX2 AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
        set(forms ${TRAMMEL_AVX2_SOURCES})
        target_sources(${target} PRIVATE ${forms})
        list(TRANSFORM forms PREPEND "${PROJECT_SOURCE_DIR}/")
        set_source_files_properties(${forms} PROPERTIES COMPILE_OPTIONS -mavx2)
        target_compile_definitions(${target} PRIVATE TRAMMEL_AVX2_KERNELS)
    endif()
endfunction()
