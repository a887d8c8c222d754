# SPDX-License-Identifier: BSD-3-Clause
# Installs what the tests need beside the build, once, and runs them.
# Variables: node, npm, chromium, source (this folder), work, site, vhrender.
cmake_minimum_required(VERSION 3.22)

if(${source}/package-lock.json IS_NEWER_THAN ${work}/node_modules/.package-lock.json)
    file(COPY ${source}/package.json ${source}/package-lock.json ${source}/.npmrc DESTINATION ${work})
    execute_process(COMMAND ${npm} ci WORKING_DIRECTORY ${work} COMMAND_ERROR_IS_FATAL ANY)
endif()
execute_process(
    COMMAND ${CMAKE_COMMAND} -E env SITE=${site} SOURCE=${source}/../.. MODULES=${work} CHROMIUM=${chromium}
            VHRENDER=${vhrender} ${node} --test ${source}/site.test.mjs
    COMMAND_ERROR_IS_FATAL ANY)
