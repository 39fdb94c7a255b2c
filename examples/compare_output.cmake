# SPDX-License-Identifier: MIT

# Runs PROGRAM and compares what it prints with the file EXPECTED.

execute_process(COMMAND "${PROGRAM}" RESULT_VARIABLE status OUTPUT_VARIABLE output)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} ends with ${status}")
endif()
file(READ "${EXPECTED}" expected)
if(NOT output STREQUAL expected)
    message(FATAL_ERROR "${PROGRAM} prints\n${output}\nnot what is in ${EXPECTED}:\n${expected}")
endif()
