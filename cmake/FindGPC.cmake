# SPDX-License-Identifier: MIT

# Finds the General Polygon Clipper: the header gpc.h and the library gpc, or gpcl.
#
#   GPC_FOUND         both are there, and the library has gpc_polygon_clip
#   GPC_INCLUDE_DIR   the folder of gpc.h
#   GPC_LIBRARY       the library
#   GPC::GPC          an imported target of the two
#
# GPC_ROOT (a variable or an environment variable) names a place to look at first.

find_path(GPC_INCLUDE_DIR NAMES gpc.h PATH_SUFFIXES gpc)
find_library(GPC_LIBRARY NAMES gpc gpcl)

# Other projects have a library of that name as well.
if(GPC_INCLUDE_DIR AND GPC_LIBRARY AND NOT DEFINED GPC_HAS_POLYGON_CLIP)
    file(STRINGS "${GPC_INCLUDE_DIR}/gpc.h" GPC_DECLARATION REGEX "gpc_polygon_clip")
    if(GPC_DECLARATION)
        include(CheckCXXSourceCompiles)
        include(CMakePushCheckState)
        cmake_push_check_state(RESET)
        set(CMAKE_REQUIRED_INCLUDES "${GPC_INCLUDE_DIR}")
        set(CMAKE_REQUIRED_LIBRARIES "${GPC_LIBRARY}")
        set(CMAKE_REQUIRED_QUIET ON)
        check_cxx_source_compiles(
            "extern \"C\" {\n#include <gpc.h>\n}\n
             int main() {
                 gpc_polygon none = {0, 0, 0}, result = {0, 0, 0};
                 gpc_polygon_clip(GPC_UNION, &none, &none, &result);
                 gpc_free_polygon(&result);
             }"
            GPC_HAS_POLYGON_CLIP
        )
        cmake_pop_check_state()
    endif()
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
    GPC REQUIRED_VARS GPC_LIBRARY GPC_INCLUDE_DIR GPC_HAS_POLYGON_CLIP
)
mark_as_advanced(GPC_INCLUDE_DIR GPC_LIBRARY)

if(GPC_FOUND AND NOT TARGET GPC::GPC)
    add_library(GPC::GPC UNKNOWN IMPORTED)
    set_target_properties(
        GPC::GPC PROPERTIES IMPORTED_LOCATION "${GPC_LIBRARY}"
                            INTERFACE_INCLUDE_DIRECTORIES "${GPC_INCLUDE_DIR}"
    )
endif()
