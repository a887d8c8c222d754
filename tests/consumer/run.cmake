# SPDX-License-Identifier: BSD-3-Clause
# Installs the library, moves the installation, then builds and runs the project beside this file against it: with
# the CMake package and with pkg-config. Variables: build, work, project, source, generator, compiler, flags.
cmake_minimum_required(VERSION 3.22)

function(run)
    execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE output)
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect text)
    if(NOT output STREQUAL text)
        message(FATAL_ERROR "expected \"${text}\", got \"${output}\"")
    endif()
endfunction()

file(REMOVE_RECURSE ${work})
run(${CMAKE_COMMAND} --install ${build} --component vhl --prefix ${work}/first)
set(prefix ${work}/moved)
file(RENAME ${work}/first ${prefix})

if(NOT EXISTS ${prefix}/lib/libvhl.so)
    message(FATAL_ERROR "lib/libvhl.so is not installed")
endif()
foreach(declarations vhl.mi recipes.mi)
    run(${CMAKE_COMMAND} -E compare_files ${prefix}/include/${declarations} ${source}/declarations/${declarations})
endforeach()

set(printed "1 0.75 1 a;b; 50 9 0.25 1 0.5 151 same\n")

run(${CMAKE_COMMAND} -S ${project} -B ${work}/cmake -G ${generator} -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${compiler}
    -DCMAKE_CXX_FLAGS=${flags})
run(${CMAKE_COMMAND} --build ${work}/cmake)
run(${work}/cmake/consumer)
expect("${printed}")

# The program that the manual shows, by its own CMakeLists.txt and with pkg-config below.
file(READ ${source}/docs/cpp.md page)
function(shown language result)
    string(FIND "${page}" "\n```${language}\n" begin)
    string(LENGTH "\n```${language}\n" length)
    math(EXPR begin "${begin} + ${length}")
    string(SUBSTRING "${page}" ${begin} -1 rest)
    string(FIND "${rest}" "```" end)
    string(SUBSTRING "${rest}" 0 ${end} text)
    set(${result} "${text}" PARENT_SCOPE)
endfunction()
shown(cmake lists)
shown(cpp code)
shown(text told)
file(WRITE ${work}/manual/CMakeLists.txt "${lists}")
file(WRITE ${work}/manual/program.cpp "${code}")
run(${CMAKE_COMMAND} -S ${work}/manual -B ${work}/manual/build -G ${generator} -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${compiler} -DCMAKE_CXX_FLAGS=${flags})
run(${CMAKE_COMMAND} --build ${work}/manual/build)
run(${work}/manual/build/program)
expect("${told}")

# The example that people begin from, which draws the manual's pictures.
run(${CMAKE_COMMAND} -S ${source}/examples/noise -B ${work}/noise -G ${generator} -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${compiler} -DCMAKE_CXX_FLAGS=${flags})
run(${CMAKE_COMMAND} --build ${work}/noise)
file(MAKE_DIRECTORY ${work}/pictures)
run(${work}/noise/noise_pictures ${work}/pictures)
file(GLOB pictures ${work}/pictures/*.pgm)
list(LENGTH pictures count)
if(NOT count EQUAL 12)
    message(FATAL_ERROR "the noise example wrote ${count} pictures")
endif()

file(GLOB_RECURSE description ${prefix}/*/vhl.pc)
cmake_path(GET description PARENT_PATH directory)
set(ENV{PKG_CONFIG_PATH} ${directory})
run(pkg-config --cflags --libs vhl)
string(STRIP "${flags} ${output}" options)
separate_arguments(options UNIX_COMMAND "${options}")
run(${compiler} -std=c++20 -Wall -Wextra -Werror ${project}/main.cpp ${options} -o ${work}/consumer)
run(${work}/consumer)
expect("${printed}")

run(${compiler} -std=c++20 -Wall -Wextra -Werror ${work}/manual/program.cpp ${options} -o ${work}/manual/program)
run(${work}/manual/program)
expect("${told}")

# Roundings are contract outside as well: no fused multiply and add, even where the machine has one.
run(${compiler} -std=c++20 -O2 -mfma ${project}/main.cpp ${options} -S -o -)
if(output MATCHES "vfn?m(add|sub)")
    message(FATAL_ERROR "the value types fuse multiplications and additions")
endif()
