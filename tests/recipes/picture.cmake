# SPDX-License-Identifier: BSD-3-Clause
# Renders SCENE and compares with PICTURE, with the tolerances of tests/scenes/compare.cmake. Variables: VHRENDER,
# IDIFF, SCENE, PICTURE, RENDERED.
include(${CMAKE_CURRENT_LIST_DIR}/../scenes/run.cmake)

run(${VHRENDER} -file_name ${RENDERED} ${SCENE})
run(${IDIFF} -fail 0.0157 -failpercent 1 -warn 1 ${RENDERED} ${PICTURE})
