# SPDX-License-Identifier: BSD-3-Clause
# Installation. A renderer looks for libraries in lib/ and for declarations in include/; other code finds the
# public classes as the CMake package vhl (target vhl::core) or through pkg-config.
if(NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()
include(CMakePackageConfigHelpers)

install(TARGETS vhl LIBRARY DESTINATION lib COMPONENT vhl)
install(FILES declarations/vhl.mi declarations/recipes.mi DESTINATION include COMPONENT vhl)

install(TARGETS vhl_core EXPORT vhl ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT vhl)
install(FILES ${VHL_PUBLIC_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vhl COMPONENT vhl)

# The value types convert to and from the renderer's own, so its interface comes along, unless the library was
# built against the renderer's headers: then who uses it has them.
set(VHL_INTERFACE_CFLAGS "-I\${includedir}/vhl/mi")
if(VHL_RENDERER_INCLUDE_DIR)
    set(VHL_INTERFACE_CFLAGS "-I${VHL_RENDERER_INCLUDE_DIR}")
else()
    install(FILES mi/shader.h mi/geoshader.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vhl/mi COMPONENT vhl)
    target_include_directories(vhl_core INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/vhl/mi>)
endif()
target_include_directories(vhl_core INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/vhl)
install(EXPORT vhl NAMESPACE vhl:: FILE vhlTargets.cmake DESTINATION ${package} COMPONENT vhl)
configure_package_config_file(cmake/vhlConfig.cmake.in vhlConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(vhlConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vhlConfig.cmake ${PROJECT_BINARY_DIR}/vhlConfigVersion.cmake
        DESTINATION ${package} COMPONENT vhl)

# Relative to the file itself, so that an installation can be moved.
file(RELATIVE_PATH VHL_PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/vhl.pc.in vhl.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vhl.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT vhl)
