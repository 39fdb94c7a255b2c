# SPDX-License-Identifier: MIT

# `cmake --install` installs the library, the headers, a CMake package, a pkg-config file and the licence.

include(CMakePackageConfigHelpers)

set(TRAMMEL_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/Trammel")

# CMake package: find_package(Trammel) and Trammel::trammel.
install(
    TARGETS trammel
    EXPORT TrammelTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
)
install(EXPORT TrammelTargets NAMESPACE Trammel:: DESTINATION "${TRAMMEL_CMAKE_DIR}")
configure_package_config_file(
    cmake/TrammelConfig.cmake.in "${PROJECT_BINARY_DIR}/TrammelConfig.cmake"
    INSTALL_DESTINATION "${TRAMMEL_CMAKE_DIR}"
    NO_SET_AND_CHECK_MACRO
)
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/TrammelConfigVersion.cmake" COMPATIBILITY SameMajorVersion
)
install(
    FILES "${PROJECT_BINARY_DIR}/TrammelConfig.cmake"
          "${PROJECT_BINARY_DIR}/TrammelConfigVersion.cmake"
    DESTINATION "${TRAMMEL_CMAKE_DIR}"
)

# Headers, flat.
install(FILES ${TRAMMEL_HEADERS} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/trammel")

# pkg-config. The file derives the prefix from its own place, so that an installed tree can be moved.
# Folders that the user gave as absolute paths stay absolute.
set(TRAMMEL_PC_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(TRAMMEL_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
    file(RELATIVE_PATH TRAMMEL_PC_UP "/prefix/${TRAMMEL_PC_DIR}" "/prefix")
    string(REGEX REPLACE "/$" "" TRAMMEL_PC_UP "${TRAMMEL_PC_UP}")
    set(TRAMMEL_PC_PREFIX "\${pcfiledir}/${TRAMMEL_PC_UP}")
endif()
foreach(kind IN ITEMS INCLUDEDIR LIBDIR)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${kind}}")
        set(TRAMMEL_PC_${kind} "${CMAKE_INSTALL_${kind}}")
    else()
        set(TRAMMEL_PC_${kind} "\${prefix}/${CMAKE_INSTALL_${kind}}")
    endif()
endforeach()
# Users of a static library link the C++ runtime themselves; a shared library brings it along.
if(TRAMMEL_TYPE STREQUAL "STATIC_LIBRARY")
    set(TRAMMEL_PC_PRIVATE_LIBS "-lstdc++ -lm")
else()
    set(TRAMMEL_PC_PRIVATE_LIBS "")
endif()
if(TRAMMEL_GPC STREQUAL "SYSTEM")
    set(TRAMMEL_PC_LIBS "${GPC_LIBRARY}")
else()
    set(TRAMMEL_PC_LIBS "")
endif()
configure_file(cmake/trammel.pc.in "${PROJECT_BINARY_DIR}/trammel.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/trammel.pc" DESTINATION "${TRAMMEL_PC_DIR}")

install(FILES LICENSE DESTINATION "${CMAKE_INSTALL_DATADIR}/licenses/trammel")
