# SPDX-License-Identifier: MIT

# One case of CMakeLists.txt beside this file.

set(command "${COMPILER}" -std=c++17 -fsyntax-only "-I${INCLUDE}")

execute_process(COMMAND ${command} "${FILE}" RESULT_VARIABLE status ERROR_VARIABLE output)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "${FILE}: what is allowed does not compile:\n${output}")
endif()

execute_process(
    COMMAND ${command} -DTRAMMEL_FORBIDDEN "${FILE}" RESULT_VARIABLE status ERROR_VARIABLE output
)
if(status EQUAL 0)
    message(FATAL_ERROR "${FILE}: what is forbidden compiles")
endif()
if(NOT output MATCHES "${MESSAGE}")
    message(FATAL_ERROR "${FILE}: refused, but not with '${MESSAGE}':\n${output}")
endif()
