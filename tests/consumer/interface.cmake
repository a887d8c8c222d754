# SPDX-License-Identifier: BSD-3-Clause
# Builds the library alone against another include directory, whose headers differ from ours as some generations of the
# renderer's do: miBoolean is an enumeration, mi_eval a macro, and what only we define is gone. Also with a machine's
# fused multiply and add on offer, which the library must not take. Variables: source, work, generator, compiler.
cmake_minimum_required(VERSION 3.22)

file(REMOVE_RECURSE ${work})
file(COPY ${source}/mi/geoshader.h DESTINATION ${work}/include)
file(READ ${source}/mi/shader.h header)
set(integer "typedef int miBoolean;\n#define miFALSE 0\n#define miTRUE 1\n")
set(enumeration "typedef enum miBoolean { miFALSE = 0, miTRUE = 1 } miBoolean;\n")
string(REPLACE "${integer}" "${enumeration}" changed "${header}")
if(changed STREQUAL header)
    message(FATAL_ERROR "mi/shader.h declares miBoolean in another way than this test expects")
endif()
string(REPLACE "#define miNULLTAG 0u\n" "" changed "${changed}")
string(REPLACE "static inline void* mi_eval(" "#define mi_eval(state, p) evaluate_parameter((state), (p))\nstatic inline void* evaluate_parameter(" changed "${changed}")
if(changed MATCHES "miNULLTAG" OR NOT changed MATCHES "define mi_eval")
    message(FATAL_ERROR "mi/shader.h is not what this test expects")
endif()
file(WRITE ${work}/include/shader.h "${changed}")

execute_process(COMMAND ${CMAKE_COMMAND} -S ${source} -B ${work}/build -G ${generator}
                        -DCMAKE_CXX_COMPILER=${compiler} -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS=-mfma -DVHL_HOST=OFF -DVHL_WERROR=ON
                        -DVHL_RENDERER_INCLUDE_DIR=${work}/include
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${work}/build COMMAND_ERROR_IS_FATAL ANY)
if(NOT EXISTS ${work}/build/lib/libvhl.so)
    message(FATAL_ERROR "there is no libvhl.so")
endif()
# The compiler must not fuse multiplications and additions by itself. The forms for one kind of processor do so by
# intrinsics, where they show that the results stay the same.
file(GLOB_RECURSE objects ${work}/build/*.o)
list(FILTER objects EXCLUDE REGEX "/wide/avx(2|512)\\.cpp\\.o$")
list(LENGTH objects count)
if(count LESS 20)
    message(FATAL_ERROR "only ${count} object files")
endif()
execute_process(COMMAND objdump -d ${objects} OUTPUT_VARIABLE code COMMAND_ERROR_IS_FATAL ANY)
if(code MATCHES "vfn?m(add|sub)")
    message(FATAL_ERROR "libvhl.so fuses multiplications and additions")
endif()
