# SPDX-License-Identifier: MIT

# The library's rooms, from the bottom to the top: the lines of cmake/rooms.txt. The scripts read the
# same file. A room that holds no file yet has no folder.
#
# Checks that concern only the lower rooms stop at one: with TRAMMEL_TOP_ROOM, the rooms above it are left out.
# Headers stay complete.
#
# Sets, for all rooms together:
#   TRAMMEL_ROOMS          the rooms that exist
#   TRAMMEL_ROOM_DIRS      their folders
#   TRAMMEL_HEADERS        the public headers: trammel.h, and all headers except NAME_p.h
#   TRAMMEL_SOURCES        all sources except NAMEAvx2_p.cpp
#   TRAMMEL_AVX2_SOURCES   the sources NAMEAvx2_p.cpp, for processors with AVX2

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS cmake/rooms.txt)
file(STRINGS cmake/rooms.txt rooms)
set(TRAMMEL_ROOMS)
set(TRAMMEL_HEADERS trammel.h)
set(TRAMMEL_SOURCES)
set(TRAMMEL_TOP_ROOM "" CACHE STRING "The last room of the library that is built, for checks")
mark_as_advanced(TRAMMEL_TOP_ROOM)
set(beyond_top OFF)
foreach(room IN LISTS rooms)
    file(GLOB headers RELATIVE "${PROJECT_SOURCE_DIR}" CONFIGURE_DEPENDS ${room}/*.h)
    file(GLOB sources RELATIVE "${PROJECT_SOURCE_DIR}" CONFIGURE_DEPENDS ${room}/*.cpp)
    if(headers OR sources)
        list(APPEND TRAMMEL_ROOMS ${room})
        list(FILTER headers EXCLUDE REGEX "_p\\.h$")
        list(APPEND TRAMMEL_HEADERS ${headers})
        if(NOT beyond_top)
            list(APPEND TRAMMEL_SOURCES ${sources})
        endif()
    endif()
    if(room STREQUAL TRAMMEL_TOP_ROOM)
        set(beyond_top ON)
    endif()
endforeach()
set(TRAMMEL_AVX2_SOURCES ${TRAMMEL_SOURCES})
list(FILTER TRAMMEL_AVX2_SOURCES INCLUDE REGEX "Avx2_p\\.cpp$")
list(FILTER TRAMMEL_SOURCES EXCLUDE REGEX "Avx2_p\\.cpp$")
set(TRAMMEL_ROOM_DIRS ${TRAMMEL_ROOMS})
list(TRANSFORM TRAMMEL_ROOM_DIRS PREPEND "${PROJECT_SOURCE_DIR}/")
