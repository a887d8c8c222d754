# SPDX-License-Identifier: BSD-3-Clause
# Looks for functions that others could call in the objects for one kind of processor. Variable: objects.
cmake_minimum_required(VERSION 3.22)

list(FILTER objects INCLUDE REGEX "(noise_|wide/)avx")
list(LENGTH objects count)
if(NOT count EQUAL 4)
    message(FATAL_ERROR "expected four objects, got \"${objects}\"")
endif()
foreach(object ${objects})
    execute_process(COMMAND nm ${object} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
    if(symbols MATCHES " [TWi] [^\n]*")
        message(FATAL_ERROR "${object} offers${CMAKE_MATCH_0}")
    endif()
endforeach()
