# SPDX-License-Identifier: BSD-3-Clause
# Renders SCENE small, by one thread and by several, and compares: the two must be the same to the bit, and like
# REFERENCE. With UPDATE the picture becomes the reference. OPTIONS are further options for this scene.
#
# Tolerances: intersections round differently on machines with other vector units, which moves a silhouette by a
# sample here and there. So up to 1 % of the pixels may differ by more than 4 of 255 levels, while a wrong colour,
# which covers a surface, exceeds both.

include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(MAKE_DIRECTORY ${FOLDER})
get_filename_component(textures ${SCENE} DIRECTORY)
separate_arguments(OPTIONS)
set(options -resolution 160 120 -samples 1 1 ${OPTIONS} -texture_path ${textures} ${SCENE})
run(${VHRENDER} -threads 1 -file_name ${FOLDER}/one.png ${options})
run(${VHRENDER} -threads 5 -file_name ${FOLDER}/several.png ${options})
run(${IDIFF} -fail 0 -warn 0 ${FOLDER}/one.png ${FOLDER}/several.png)
if(UPDATE)
    file(COPY_FILE ${FOLDER}/one.png ${REFERENCE})
else()
    run(${IDIFF} -fail 0.0157 -failpercent 1 -warn 1 ${FOLDER}/one.png ${REFERENCE})
endif()
