# SPDX-License-Identifier: BSD-3-Clause
# One variable takes the list of sanitizers and applies it to everything we build.
add_library(vhl_sanitizers INTERFACE)
if(VHL_SANITIZE)
    target_compile_options(vhl_sanitizers INTERFACE
        -fsanitize=${VHL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
        # GCC's instrumentation hides from this warning what has been initialised, std::regex for one.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(vhl_sanitizers INTERFACE -fsanitize=${VHL_SANITIZE})
endif()
