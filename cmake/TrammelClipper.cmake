# SPDX-License-Identifier: MIT

# The polygon clipper behind <trammel/gpc.h>: our own engine, or the system's General Polygon Clipper.
# BUNDLED is the default, so that results do not depend on what happens to be installed.
#
# The engine is built in both cases, as other parts of the library stand on it. SYSTEM leaves out only
# the C interface, clip/gpc.h and clip/gpc.cpp.
#
# Include this before the library's target is made, and call trammel_use_clipper(trammel) after.

set(TRAMMEL_GPC "BUNDLED" CACHE STRING "Polygon clipper: BUNDLED or SYSTEM")
set_property(CACHE TRAMMEL_GPC PROPERTY STRINGS BUNDLED SYSTEM)

if(NOT TRAMMEL_GPC MATCHES "^(BUNDLED|SYSTEM)$")
    message(FATAL_ERROR "TRAMMEL_GPC is '${TRAMMEL_GPC}': BUNDLED or SYSTEM expected")
endif()

if(TRAMMEL_GPC STREQUAL "SYSTEM")
    list(PREPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}")
    find_package(GPC REQUIRED)
    list(POP_FRONT CMAKE_MODULE_PATH)
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
    list(REMOVE_ITEM TRAMMEL_HEADERS clip/gpc.h)
    list(REMOVE_ITEM TRAMMEL_SOURCES clip/gpc.cpp)
    message(STATUS "Polygon clipper: the system's, ${GPC_LIBRARY}")
else()
    message(STATUS "Polygon clipper: bundled")
endif()

# trammel_use_clipper(TARGET): what the target needs to be compiled and linked with the clipper. To be
# called once the folder of header links, TRAMMEL_SHIM_DIR, is there.
function(trammel_use_clipper target)
    if(TRAMMEL_GPC STREQUAL "SYSTEM")
        # Users call the system's functions themselves, through the header; so it is theirs as well.
        # As a path, not as GPC::GPC: an installed package would have to find that target again.
        target_link_libraries(${target} PUBLIC "${GPC_LIBRARY}")
        # Before the folder clip/, which holds our header of that name.
        target_include_directories(${target} BEFORE PRIVATE "${PROJECT_BINARY_DIR}/clipper")
        file(CREATE_LINK "${TRAMMEL_GPC_HEADER}" "${TRAMMEL_SHIM_DIR}/trammel/gpc.h" SYMBOLIC)
        if(TRAMMEL_INSTALL)
            install(FILES "${TRAMMEL_GPC_HEADER}"
                    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/trammel"
            )
        endif()
    endif()
endfunction()
