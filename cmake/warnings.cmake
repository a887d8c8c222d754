# SPDX-License-Identifier: BSD-3-Clause
# Warnings for our own code; errors only where a developer asks for it (the presets do).
add_library(vhl_warnings INTERFACE)
target_compile_options(vhl_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wcast-qual -Wformat=2
    # Plain -Wshadow rejects a class that bears its entry point's name, which the contract has.
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wshadow=local>
    # GCC 12 finds overlapping copies in "text" + std::string() where there are none (its bug 105651).
    $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
    $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>
    $<$<BOOL:${VHL_WERROR}>:-Werror>)
