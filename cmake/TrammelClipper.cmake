# SPDX-License-Identifier: MIT

# The polygon clipper: the General Polygon Clipper where the system has it, or our own provider of the
# same C interface over libpolyclipping. <trammel/gpc.h> is installed in both cases.
#
# Include this before the library's target is made, and call trammel_use_clipper(trammel) after. It
# sets TRAMMEL_CLIPPER to SYSTEM or BUNDLED, and for SYSTEM takes the files of the room clip/ out of
# TRAMMEL_HEADERS and TRAMMEL_SOURCES.

set(TRAMMEL_GPC "AUTO"
    CACHE STRING "Polygon clipper: AUTO (the system's if it is there), SYSTEM or BUNDLED"
)
set_property(CACHE TRAMMEL_GPC PROPERTY STRINGS AUTO SYSTEM BUNDLED)

if(NOT TRAMMEL_GPC MATCHES "^(AUTO|SYSTEM|BUNDLED)$")
    message(FATAL_ERROR "TRAMMEL_GPC is '${TRAMMEL_GPC}': AUTO, SYSTEM or BUNDLED expected")
endif()

set(TRAMMEL_CLIPPER "BUNDLED")
if(NOT TRAMMEL_GPC STREQUAL "BUNDLED")
    list(PREPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}")
    if(TRAMMEL_GPC STREQUAL "SYSTEM")
        find_package(GPC REQUIRED)
    else()
        find_package(GPC QUIET)
    endif()
    list(POP_FRONT CMAKE_MODULE_PATH)
    if(GPC_FOUND)
        set(TRAMMEL_CLIPPER "SYSTEM")
    endif()
endif()

if(TRAMMEL_CLIPPER STREQUAL "SYSTEM")
    # A header of the same name that includes the system's, and declares it to be C.
    set(TRAMMEL_GPC_HEADER "${PROJECT_BINARY_DIR}/clipper/gpc.h")
    file(
        CONFIGURE
        OUTPUT "${TRAMMEL_GPC_HEADER}"
        CONTENT
            "/* SPDX-License-Identifier: MIT
 *
 * Boolean operations on polygons: the General Polygon Clipper that this build of Trammel uses.
 */
#ifndef TRAMMEL_GPC_H
#define TRAMMEL_GPC_H

#ifdef __cplusplus
extern \"C\" {
#endif

#include \"@GPC_INCLUDE_DIR@/gpc.h\"

#ifdef __cplusplus
}
#endif

#endif
"
        @ONLY
    )
    set(TRAMMEL_CLIPPER_SUMMARY "the system's, ${GPC_LIBRARY}")
    list(REMOVE_ITEM TRAMMEL_HEADERS clip/gpc.h)
    list(FILTER TRAMMEL_SOURCES EXCLUDE REGEX "^clip/")
else()
    find_package(PkgConfig QUIET)
    if(PkgConfig_FOUND)
        pkg_check_modules(TRAMMEL_POLYCLIPPING QUIET polyclipping)
    endif()
    # The .pc file names the folder that clipper.hpp is in; we write <polyclipping/clipper.hpp>.
    find_path(
        TRAMMEL_POLYCLIPPING_INCLUDE polyclipping/clipper.hpp
        HINTS ${TRAMMEL_POLYCLIPPING_INCLUDE_DIRS} ${TRAMMEL_POLYCLIPPING_INCLUDEDIR} PATH_SUFFIXES ..
    )
    find_library(
        TRAMMEL_POLYCLIPPING_LIBRARY polyclipping
        HINTS ${TRAMMEL_POLYCLIPPING_LIBRARY_DIRS} ${TRAMMEL_POLYCLIPPING_LIBDIR}
    )
    mark_as_advanced(TRAMMEL_POLYCLIPPING_INCLUDE TRAMMEL_POLYCLIPPING_LIBRARY)
    if(NOT TRAMMEL_POLYCLIPPING_INCLUDE OR NOT TRAMMEL_POLYCLIPPING_LIBRARY)
        message(FATAL_ERROR "libpolyclipping was not found (Debian: libpolyclipping-dev)")
    endif()
    file(STRINGS "${TRAMMEL_POLYCLIPPING_INCLUDE}/polyclipping/clipper.hpp"
         TRAMMEL_POLYCLIPPING_VERSION REGEX "define CLIPPER_VERSION"
    )
    string(REGEX REPLACE ".*\"(.*)\".*" "\\1" TRAMMEL_POLYCLIPPING_VERSION
                         "${TRAMMEL_POLYCLIPPING_VERSION}"
    )
    set(TRAMMEL_CLIPPER_SUMMARY
        "bundled, over libpolyclipping ${TRAMMEL_POLYCLIPPING_VERSION} (${TRAMMEL_POLYCLIPPING_LIBRARY})"
    )
endif()

message(STATUS "Polygon clipper: ${TRAMMEL_CLIPPER_SUMMARY}")

# trammel_use_clipper(TARGET): what the target needs to be compiled and linked with the clipper. To be
# called once the folder of header links, TRAMMEL_SHIM_DIR, is there.
function(trammel_use_clipper target)
    if(TRAMMEL_CLIPPER STREQUAL "SYSTEM")
        # Users call the system's functions themselves, through the header; so it is theirs as well.
        # As a path, not as GPC::GPC: an installed package would have to find that target again.
        target_link_libraries(${target} PUBLIC "${GPC_LIBRARY}")
        target_include_directories(${target} BEFORE PRIVATE "${PROJECT_BINARY_DIR}/clipper")
        file(CREATE_LINK "${TRAMMEL_GPC_HEADER}" "${TRAMMEL_SHIM_DIR}/trammel/gpc.h" SYMBOLIC)
        if(TRAMMEL_INSTALL)
            install(FILES "${TRAMMEL_GPC_HEADER}"
                    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/trammel"
            )
        endif()
    else()
        target_include_directories(${target} SYSTEM PRIVATE "${TRAMMEL_POLYCLIPPING_INCLUDE}")
        target_link_libraries(${target} PRIVATE "${TRAMMEL_POLYCLIPPING_LIBRARY}")
    endif()
endfunction()
