# SPDX-License-Identifier: BSD-3-Clause
# Runs a command; another status than 0 ends the test.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "status ${status}: ${ARGN}")
    endif()
endfunction()
