# SPDX-License-Identifier: BSD-3-Clause
# Renders SCENE and compares with PICTURE, with the tolerances of tests/scenes/compare.cmake. Variables: VHRENDER,
# IDIFF, SCENE, PICTURE, RENDERED.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "status ${status}: ${ARGN}")
    endif()
endfunction()

run(${VHRENDER} -file_name ${RENDERED} ${SCENE})
run(${IDIFF} -fail 0.0157 -failpercent 1 -warn 1 ${RENDERED} ${PICTURE})
