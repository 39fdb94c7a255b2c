# SPDX-License-Identifier: MIT

# Compiles the files of a room together, as two sources: those of its public headers, and its private ones. A build of
# the whole library takes half of the time so. Checks use this; a build for daily work compiles each file alone, as
# then a change takes less time, and a file that misses an include shows.

option(TRAMMEL_UNITY "Compile the files of each room together, for checks" OFF)
mark_as_advanced(TRAMMEL_UNITY)

# trammel_use_unity(TARGET): joins the library's sources, where the option says so.
#
# These sources stay alone, for one of these reasons:
# - It has a name in its unnamed namespace that another source of the room has, too.
# - It instantiates a template's members, which it must do before others call them.
# - It has a field with a type of an unnamed namespace. GCC warns of that outside a main file.
set(TRAMMEL_ALONE
    platform/PathObject.cpp
    Sources/CFPolygonRef.cpp
    Sources/CMatrix3x3.cpp
    Sources/TLine.cpp
    Sources/TPoint.cpp
    Sources/TPoly.cpp
    Sources/TRect.cpp
    Sources/UGeometry.cpp
    Sources/UHandle.cpp
    Sources/UHygiene.cpp
    Sources/UScalar.cpp
    Sources/UTrigonometry.cpp
    queries/AccurateFlatten.cpp
    queries/AccurateNearest.cpp
    queries/PreparedOutline.cpp
    queries/PreparedPolygon.cpp
    outlines/HandleFit_p.cpp
    outlines/OutlineArcs_p.cpp
    outlines/OutlineLift_p.cpp
    outlines/PieceCertificates_p.cpp
    outlines/RegionArea.cpp
    outlines/RingArcs_p.cpp
    outlines/Simplify.cpp
    outlines/SimplifyRings.cpp
    outlines/StrokeMatch_p.cpp
    outlines/StrokePath_p.cpp
    outlines/StrokeShape_p.cpp
)

function(trammel_use_unity target)
    if(NOT TRAMMEL_UNITY)
        return()
    endif()
    foreach(source IN LISTS TRAMMEL_SOURCES)
        get_filename_component(group "${source}" DIRECTORY)
        if(source MATCHES "_p\\.cpp$")
            string(APPEND group "_p")
        endif()
        set_source_files_properties("${source}" PROPERTIES UNITY_GROUP "${group}")
    endforeach()
    set_source_files_properties(${TRAMMEL_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    # A name of one file may hide a name of another one. The build for daily work tells what hides within a file.
    target_compile_options(${target} PRIVATE -Wno-shadow)
endfunction()
