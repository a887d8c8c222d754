# SPDX-License-Identifier: BSD-3-Clause
# One variable takes the list of sanitizers and applies it to everything we build.
add_library(vhl_sanitizers INTERFACE)
if(VHL_SANITIZE)
    target_compile_options(vhl_sanitizers INTERFACE
        -fsanitize=${VHL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
        # GCC's instrumentation hides from this warning what has been initialised, std::regex for one.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
        # Before instances of a template are inlined GCC folds those that are alike by then, of a vector and of a colour,
        # and warns of a colour read out of a vector.
        $<$<CXX_COMPILER_ID:GNU>:-fno-ipa-icf>)
    target_link_options(vhl_sanitizers INTERFACE -fsanitize=${VHL_SANITIZE})
endif()
