# SPDX-License-Identifier: BSD-3-Clause
# The tool writes exactly the files that are committed. Variables: tool, source, work.
cmake_minimum_required(VERSION 3.22)

file(REMOVE_RECURSE ${work})
execute_process(COMMAND ${tool} ${work} ${source} COMMAND_ERROR_IS_FATAL ANY)

file(GLOB_RECURSE written RELATIVE ${work} ${work}/*)
file(GLOB committed RELATIVE ${source} ${source}/declarations/* ${source}/docs/reference/*
     ${source}/docs/recipes/*)
list(REMOVE_ITEM committed declarations/recipes.mi) # written by hand
list(SORT written)
list(SORT committed)
if(NOT written STREQUAL committed)
    message(FATAL_ERROR "written: ${written}\ncommitted: ${committed}\nBuild the target declarations.")
endif()
foreach(file ${written})
    execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${work}/${file} ${source}/${file} RESULT_VARIABLE differs)
    if(differs)
        message(FATAL_ERROR "${file} is not what the sources say. Build the target declarations.")
    endif()
endforeach()
